// Dictionaries: objects filed under names. The drawing's named objects
// dictionary holds the dictionaries of groups, layouts, multiline styles
// and plot styles and whatever applications file there; any object may
// carry an extension dictionary of its own.
//
// Keys compare without regard to ASCII case and keep the case they were
// given; entries are kept, and iterated, in key order. An entry whose
// object was erased is skipped by lookups and iteration until undo brings
// the object back; putting a new object under its key replaces it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/dbmain.h"

namespace zepk::db {
struct DxfItem;
class ClassSchema;
}  // namespace zepk::db


namespace AcRx {
enum DictIterType { kDictSorted = 0, kDictCollated = 1 };
}  // namespace AcRx

class AcDbDictionaryIterator;

class AcDbDictionary : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDictionary);
  AcDbDictionary();
  ~AcDbDictionary() override;

  // The entry's object; eKeyNotFound when the key is free (or its object
  // erased), eInvalidKey for a null key.
  Acad::ErrorStatus getAt(const ACHAR* key, AcDbObject*& obj, AcDb::OpenMode mode) const;
  Acad::ErrorStatus getAt(const ACHAR* key, AcDbObjectId& id) const;
  template <class T>
  Acad::ErrorStatus getAt(const ACHAR* key, T*& obj, AcDb::OpenMode mode) const {
    obj = nullptr;
    AcDbObjectId id;
    Acad::ErrorStatus es = getAt(key, id);
    return es != Acad::eOk ? es : acdbOpenObject(obj, id, mode);
  }
  // The key the object is filed under.
  Acad::ErrorStatus nameAt(AcDbObjectId id, ACHAR*& name) const;
  Acad::ErrorStatus nameAt(AcDbObjectId id, std::u16string& name) const;
  bool has(const ACHAR* key) const;
  bool has(AcDbObjectId id) const;
  int numEntries() const;

  // Files the object under the key. An object in no database goes into
  // the dictionary's database; an object without an owner becomes the
  // dictionary's. An object already filed under the key is replaced, and
  // erased when the dictionary owned it. The key "*" files the object
  // under a new anonymous key ("*A1", "*A2", ...). The dictionary must be
  // open for write and in a database; the object is left open as it was
  // (a new one open for write) for the caller to close.
  Acad::ErrorStatus setAt(const ACHAR* key, AcDbObject* newValue, AcDbObjectId& retObjId);
  // Takes the entry out; the object itself stays as it is.
  Acad::ErrorStatus remove(const ACHAR* key);
  Acad::ErrorStatus remove(const ACHAR* key, AcDbObjectId& returnId);
  Acad::ErrorStatus remove(AcDbObjectId objId);
  // Files the entry under a new key: eKeyNotFound when there is no entry
  // oldName, eDuplicateKey when newName is taken by another, eInvalidKey
  // for an empty name.
  Acad::ErrorStatus setName(const ACHAR* oldName, const ACHAR* newName);

  AcDbDictionaryIterator* newIterator(AcRx::DictIterType type = AcRx::kDictSorted) const;

  // Whether the dictionary owns its entries hard (they go with it, and a
  // file writes them as 360 rather than 350).
  bool isTreatElementsAsHard() const { return hardOwner_; }
  void setTreatElementsAsHard(bool doIt);
  AcDb::DuplicateRecordCloning mergeStyle() const { return static_cast<AcDb::DuplicateRecordCloning>(mergeStyle_); }
  void setMergeStyle(AcDb::DuplicateRecordCloning style);

  static const zepk::db::ClassSchema& schema();
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  // One entry: the key as given and the object.
  struct Entry {
    std::u16string name;
    AcDbObjectId id;
  };
  // Live entries in key order.
  std::vector<Entry> entries() const;

 protected:
  // Erasing a dictionary erases the objects it owns.
  Acad::ErrorStatus subErase(bool erasing) override;

 private:
  friend struct AcDbDictionaryAccess;
  const Entry* findEntry(const std::u16string& key) const;
  bool hardOwner_ = false;
  Adesk::Int16 mergeStyle_ = AcDb::kDrcIgnore;
  // Folded key -> entry.
  std::map<std::u16string, Entry> entries_;
};

// Walks a dictionary's entries in key order, as they were when it was
// made; erased entries are skipped.
class AcDbDictionaryIterator {
 public:
  explicit AcDbDictionaryIterator(std::vector<AcDbDictionary::Entry> entries) : entries_(std::move(entries)) {}
  virtual ~AcDbDictionaryIterator() = default;
  const ACHAR* name() const { return done() ? u"" : entries_[pos_].name.c_str(); }
  AcDbObjectId objectId() const { return done() ? AcDbObjectId() : entries_[pos_].id; }
  Acad::ErrorStatus getObject(AcDbObject*& obj, AcDb::OpenMode mode) const;
  template <class T>
  Acad::ErrorStatus getObject(T*& obj, AcDb::OpenMode mode) const {
    obj = nullptr;
    return done() ? Acad::eInvalidIndex : acdbOpenObject(obj, objectId(), mode);
  }
  bool done() const { return pos_ >= entries_.size(); }
  bool next() {
    if (!done()) ++pos_;
    return !done();
  }
  // Goes to the entry of the object (or the key); false when there is none.
  bool setPosition(AcDbObjectId id);

 private:
  std::vector<AcDbDictionary::Entry> entries_;
  size_t pos_ = 0;
};

// A dictionary with a default entry (the plot style names' "Normal").
class AcDbDictionaryWithDefault : public AcDbDictionary {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDictionaryWithDefault);
  static const zepk::db::ClassSchema& schema();

  AcDbObjectId defaultId() const { return default_; }
  Acad::ErrorStatus setDefaultId(const AcDbObjectId& id);

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 private:
  friend struct AcDbDictionaryAccess;
  AcDbObjectId default_;
};

// An object with no data of its own, filed under a name (the plot style
// "Normal").
class AcDbPlaceHolder : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPlaceHolder);
};
