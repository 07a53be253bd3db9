// The drawing database: objects, their ids and handles, the open and close
// protocol, notifications and undo.
//
// An object belongs to one database once it is added; the database keeps it
// alive until the drawing closes (erasing only marks it). Code reaches an
// object by opening its id for read (shared), for write (exclusive) or for
// notify, and closes it when done; AcDbObjectPointer does both. Closing an
// object that was open for write sends the notifications a CAD host sends:
// to the object's transient reactors, to the objects that hold it as a
// persistent reactor, and to the database's reactors.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/acadstrc.h"
#include "host/ads.h"
#include "host/dbfiler.h"
#include "host/dbid.h"
#include "host/rxobject.h"

class AcDbObject;
class AcDbDatabase;
class AcDbDictionary;
class AcDbBlockTable;
class AcDbLayerTable;
class AcDbTextStyleTable;
class AcDbLinetypeTable;
class AcDbViewTable;
class AcDbUCSTable;
class AcDbViewportTable;
class AcDbRegAppTable;
class AcDbDimStyleTable;
class AcDbIdMapping;
class AcDbBlockTableRecord;
class AcGePoint3d;

// A reactor that code attaches to an object for the session (not saved).
class AcDbObjectReactor : public AcRxObject {
 public:
  virtual void cancelled(const AcDbObject*) {}
  virtual void copied(const AcDbObject*, const AcDbObject*) {}
  virtual void erased(const AcDbObject*, bool /*erasing*/ = true) {}
  virtual void goodbye(const AcDbObject*) {}
  virtual void openedForModify(const AcDbObject*) {}
  virtual void modified(const AcDbObject*) {}
  virtual void modifiedXData(const AcDbObject*) {}
  virtual void objectClosed(AcDbObjectId) {}
};

// A reactor on a whole database.
class AcDbDatabaseReactor : public AcRxObject {
 public:
  virtual void objectAppended(const AcDbDatabase*, const AcDbObject*) {}
  virtual void objectUnAppended(const AcDbDatabase*, const AcDbObject*) {}
  virtual void objectReAppended(const AcDbDatabase*, const AcDbObject*) {}
  virtual void objectOpenedForModify(const AcDbDatabase*, const AcDbObject*) {}
  virtual void objectModified(const AcDbDatabase*, const AcDbObject*) {}
  virtual void objectErased(const AcDbDatabase*, const AcDbObject*, bool /*erased*/ = true) {}
  virtual void goodbye(const AcDbDatabase*) {}
};

class AcDbObject : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbObject);
  AcDbObject();
  ~AcDbObject() override;
  AcDbObject(const AcDbObject&) = delete;
  AcDbObject& operator=(const AcDbObject&) = delete;

  AcDbObjectId objectId() const;
  AcDbObjectId ownerId() const { return owner_; }
  virtual Acad::ErrorStatus setOwnerId(AcDbObjectId owner);
  AcDbHandle getDbHandle() const { return objectId().handle(); }
  void getAcDbHandle(AcDbHandle& h) const { h = getDbHandle(); }
  AcDbDatabase* database() const;

  // Open state.
  bool isReadEnabled() const { return mode_ != Mode::Closed; }
  bool isWriteEnabled() const { return mode_ == Mode::Write; }
  bool isNotifyEnabled() const { return mode_ == Mode::Notify || notifying_; }
  bool isNotifying() const { return notifying_; }
  bool isNewObject() const { return isNew_; }
  bool isModified() const { return modified_; }
  bool isErased() const;
  Acad::ErrorStatus upgradeOpen();
  Acad::ErrorStatus downgradeOpen();
  Acad::ErrorStatus close();
  // Closes, dropping the changes made since the object was opened for
  // write (they are taken back from the undo record).
  Acad::ErrorStatus cancel();

  // Marks the object as being changed: the first call while open for
  // write records its state for undo and tells its reactors it is opened
  // for modify. Every setter calls it.
  void assertWriteEnabled(bool autoUndo = true, bool recordModified = true);
  void assertReadEnabled() const {}
  void assertNotifyEnabled() const {}

  Acad::ErrorStatus erase(bool erasing = true);

  // The object and the other one (same database, not erased) exchange
  // their ids: what referred to one by id now refers to the other, and
  // each takes the other's place in its owner (so also its draw order).
  // This object is open for write; the other is opened here and must not
  // be open already. Each object keeps its extended data and extension
  // dictionary unless swapXdata / swapExtDict say that these stay with the
  // ids. Undone as one step with the rest of the undo mark.
  Acad::ErrorStatus swapIdWith(AcDbObjectId otherId, bool swapXdata = false, bool swapExtDict = false);

  // Extended data: a chain of 1001 application names each followed by its
  // groups (1000-1071). xData(name) gives that application's part, xData()
  // all of it; the caller releases the chain with acutRelRb. setXData
  // replaces the parts of the applications it names; an application name
  // alone removes that part. A part over 16 KB is refused.
  resbuf* xData(const ACHAR* regappName = nullptr) const;
  Acad::ErrorStatus setXData(const resbuf* xdata);
  // Bytes of extended data as the host counts them.
  int xDataSize() const;

  AcDbObjectId extensionDictionary() const { return extDict_; }
  Acad::ErrorStatus createExtensionDictionary();
  Acad::ErrorStatus releaseExtensionDictionary();

  void addReactor(AcDbObjectReactor* reactor) const;
  void removeReactor(AcDbObjectReactor* reactor) const;
  void addPersistentReactor(AcDbObjectId id);
  Acad::ErrorStatus removePersistentReactor(AcDbObjectId id);
  bool hasPersistentReactor(AcDbObjectId id) const;
  const AcDbObjectIdArray& getPersistentReactors() const { return persistentReactors_; }

  // Persistence. Each class writes its parent's fields first, then its own.
  virtual Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer);
  virtual Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const;
  virtual Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer);
  virtual Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const;

  // Copies. deepClone copies the object within its database into the given
  // owner (a block for an entity asked for, which gets it appended); what
  // the object owns is copied with it. wblockClone copies into the owner's
  // database, which may be another (the owner may then be that database
  // itself), and also brings what the object refers to by hard pointer:
  // its layer, linetype, text style, block. Each copy is recorded in the
  // map; references inside the copies are translated through the map once
  // everything is copied, by the database's operations below. The copy is
  // returned open for write, for the caller to close; an erased object
  // and one already copied give no copy and eOk.
  virtual Acad::ErrorStatus deepClone(AcDbObject* pOwnerObject, AcDbObject*& pClonedObject, AcDbIdMapping& idMap,
                                      bool isPrimary = true) const;
  virtual Acad::ErrorStatus wblockClone(AcRxObject* pOwnerObject, AcDbObject*& pClonedObject, AcDbIdMapping& idMap,
                                        bool isPrimary = true) const;

  // Notifications received by an object that is a persistent reactor of
  // another (dbObj is the object that changed).
  virtual void cancelled(const AcDbObject* dbObj) {}
  virtual void copied(const AcDbObject* dbObj, const AcDbObject* newObj) {}
  virtual void erased(const AcDbObject* dbObj, bool erasing = true) {}
  virtual void goodbye(const AcDbObject* dbObj) {}
  virtual void openedForModify(const AcDbObject* dbObj) {}
  virtual void modified(const AcDbObject* dbObj) {}
  virtual void modifiedXData(const AcDbObject* dbObj) {}
  virtual void objectClosed(const AcDbObjectId objId) {}

  // Hooks of the object's own life.
  virtual Acad::ErrorStatus subOpen(AcDb::OpenMode mode) { return Acad::eOk; }
  virtual Acad::ErrorStatus subClose() { return Acad::eOk; }
  virtual Acad::ErrorStatus subErase(bool erasing) { return Acad::eOk; }
  // Whether opening for write is refused for another reason (an entity on
  // a locked layer).
  virtual Acad::ErrorStatus checkWriteOpen() const { return Acad::eOk; }

 private:
  friend class AcDbDatabase;
  friend struct AcDbObjectAccess;
  enum class Mode : unsigned char { Closed, Read, Write, Notify };

  AcDbStub* stub_ = nullptr;
  AcDbObjectId owner_;
  AcDbObjectId extDict_;
  AcDbObjectIdArray persistentReactors_;
  mutable std::vector<AcDbObjectReactor*> reactors_;
  // Extended data: 1001 application nodes each followed by its groups.
  resbuf* xdata_ = nullptr;
  // Application data groups as a file gave them (102 "{NAME", its groups,
  // 102 "}"), written back in their place.
  resbuf* appData_ = nullptr;
  Mode mode_ = Mode::Closed;
  int readers_ = 0;
  bool notifying_ = false;
  bool isNew_ = true;
  bool modified_ = false;
  bool openedForModifySent_ = false;
  bool xdataModified_ = false;
  bool undoRecorded_ = false;
};

// Opens an object by id. A null id gives eNullObjectId, an erased object
// eWasErased unless openErased, an object of another class
// eNotThatKindOfClass; for write, an object open for read by others gives
// eWasOpenForRead, one open for write eWasOpenForWrite, one sending
// notifications eWasNotifying, an entity on a locked layer eOnLockedLayer.
Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& pObj, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased = false);

template <class T>
Acad::ErrorStatus acdbOpenObject(T*& pObj, AcDbObjectId id, AcDb::OpenMode mode, bool openErased = false) {
  AcDbObject* p = nullptr;
  pObj = nullptr;
  Acad::ErrorStatus es = acdbOpenAcDbObject(p, id, mode, openErased);
  if (es != Acad::eOk) return es;
  T* t = T::cast(p);
  if (!t) {
    p->close();
    return Acad::eNotThatKindOfClass;
  }
  pObj = t;
  return Acad::eOk;
}

// Opens on construction and closes on destruction, on every path.
template <class T>
class AcDbObjectPointer {
 public:
  AcDbObjectPointer() = default;
  AcDbObjectPointer(AcDbObjectId id, AcDb::OpenMode mode, bool openErased = false) {
    status_ = acdbOpenObject(ptr_, id, mode, openErased);
  }
  ~AcDbObjectPointer() { close(); }
  AcDbObjectPointer(const AcDbObjectPointer&) = delete;
  AcDbObjectPointer& operator=(const AcDbObjectPointer&) = delete;
  Acad::ErrorStatus open(AcDbObjectId id, AcDb::OpenMode mode, bool openErased = false) {
    close();
    status_ = acdbOpenObject(ptr_, id, mode, openErased);
    return status_;
  }
  Acad::ErrorStatus openStatus() const { return status_; }
  Acad::ErrorStatus close() {
    if (!ptr_) return Acad::eOk;
    Acad::ErrorStatus es = ptr_->close();
    ptr_ = nullptr;
    return es;
  }
  T* object() const { return ptr_; }
  T* operator->() const { return ptr_; }
  explicit operator bool() const { return ptr_ != nullptr; }

 private:
  T* ptr_ = nullptr;
  Acad::ErrorStatus status_ = Acad::eNullObjectId;
};

class AcDbDatabase : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDatabase);
  // An empty database: no tables, no named objects; a drawing is read into
  // it or built in it.
  AcDbDatabase();
  // With buildDefaultDrawing, the database holds what a new drawing holds
  // (the nine symbol tables with their standard records, the two spaces
  // with their layouts, the named objects dictionary); without, it is
  // empty as above.
  explicit AcDbDatabase(bool buildDefaultDrawing, bool noDocument = false);
  ~AcDbDatabase() override;
  AcDbDatabase(const AcDbDatabase&) = delete;
  AcDbDatabase& operator=(const AcDbDatabase&) = delete;

  // Adds a new object (not in any database yet) with the next handle; the
  // database owns it from now on, and it is left open for write as the
  // host leaves appended objects, to be closed by the caller.
  Acad::ErrorStatus addAcDbObject(AcDbObjectId& id, AcDbObject* obj);
  // The same with a given handle (reading a drawing); a handle in use is
  // refused with eHandleInUse.
  Acad::ErrorStatus addAcDbObjectWithHandle(AcDbObjectId& id, AcDbObject* obj, AcDbHandle h);
  Acad::ErrorStatus getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound, const AcDbHandle& h);
  AcDbHandle handseed() const { return handseed_; }
  // Handles at or above the seed are unused; setting it lower than a
  // handle in use is refused.
  Acad::ErrorStatus setHandseed(const AcDbHandle& h);
  // Every object in handle order.
  AcDbObjectIdArray allObjects() const;

  void addReactor(AcDbDatabaseReactor* r) const;
  void removeReactor(AcDbDatabaseReactor* r) const;

  // Copying objects (see AcDbObject::deepClone). deepCloneObjects copies
  // objects of this database into an owner of this database;
  // wblockCloneObjects copies objects of this database into an owner of
  // another (or of this), bringing the records and blocks they use: a
  // record the destination has by name is used as it is (kDrcIgnore),
  // overwritten (kDrcReplace, not for blocks) or copied under a new name
  // "$0$NAME" (kDrcMangleName). References are translated at the end
  // unless deferXlation; the map keeps every pair.
  Acad::ErrorStatus deepCloneObjects(const AcDbObjectIdArray& objectIds, AcDbObjectId owner, AcDbIdMapping& idMap,
                                     bool deferXlation = false);
  Acad::ErrorStatus wblockCloneObjects(const AcDbObjectIdArray& objectIds, AcDbObjectId owner, AcDbIdMapping& idMap,
                                       AcDb::DuplicateRecordCloning drc, bool deferXlation = false);
  // A new drawing holding copies of the entities, in model space, with
  // the base point as its insertion base.
  Acad::ErrorStatus wblock(AcDbDatabase*& pOutputDb, const AcDbObjectIdArray& outObjIds, const AcGePoint3d& basePoint);
  // A new drawing whose model space holds the block's entities, with the
  // block's origin as its insertion base.
  Acad::ErrorStatus wblock(AcDbDatabase*& pOutputDb, AcDbObjectId blockId);
  // A copy of the whole drawing.
  Acad::ErrorStatus wblock(AcDbDatabase*& pOutputDb);
  // Makes a block named pBlockName from the model space of another
  // drawing (with what its entities use), its origin the drawing's
  // insertion base. A name in use gives eDuplicateRecordName; the source
  // is left as it was.
  Acad::ErrorStatus insert(AcDbObjectId& blockId, const ACHAR* pBlockName, AcDbDatabase* pDb,
                           bool preserveSourceDatabase = true);
  // The same from one block of another drawing.
  Acad::ErrorStatus insert(AcDbObjectId& blockId, const ACHAR* pSourceBlockName, const ACHAR* pDestinationBlockName,
                           AcDbDatabase* pDb, bool preserveSourceDatabase = true);
  // Translates the references of the copies of a map (what a deferred
  // copy leaves to do).
  Acad::ErrorStatus translateClonedIds(AcDbIdMapping& idMap);

  // Drawing files. This host reads and writes drawings as DXF: readDwgFile
  // reads a DXF file into an empty database (a binary DWG file gives
  // eInvalidDwgVersion, a missing one eFileNotFound, a malformed one
  // eBadDxfSequence, with the database left empty); saveAs writes DXF,
  // atomically.
  Acad::ErrorStatus readDwgFile(const ACHAR* fileName);
  Acad::ErrorStatus saveAs(const ACHAR* fileName);
  // The message of the last failed readDwgFile or saveAs, naming the line
  // of a malformed file.
  const std::string& lastFileError() const;

  // Undo. Inside a mark, the first change of an object records its state;
  // undoBack restores the records of the last mark in reverse order,
  // silently (no notifications), and takes back objects added since.
  void beginUndoMark();
  void endUndoMark();
  bool undoBack();
  int undoMarkCount() const;
  // Redo: puts back what the last undoBack took back (objects as they
  // were, objects added under the mark), and the mark with it. Marks taken
  // back are kept until a new mark begins. False when there is none.
  bool redoForward();
  int redoCount() const;

  // The drawing's roots: its symbol tables and its named objects
  // dictionary, null in a database that has none (see host/dbsymtb.h and
  // host/dbdict.h). The get functions open them; a missing one gives
  // eNullObjectId.
  AcDbObjectId blockTableId() const { return roots_[kRootBlockTable]; }
  AcDbObjectId layerTableId() const { return roots_[kRootLayerTable]; }
  AcDbObjectId textStyleTableId() const { return roots_[kRootTextStyleTable]; }
  AcDbObjectId linetypeTableId() const { return roots_[kRootLinetypeTable]; }
  AcDbObjectId viewTableId() const { return roots_[kRootViewTable]; }
  AcDbObjectId UCSTableId() const { return roots_[kRootUcsTable]; }
  AcDbObjectId viewportTableId() const { return roots_[kRootViewportTable]; }
  AcDbObjectId regAppTableId() const { return roots_[kRootRegAppTable]; }
  AcDbObjectId dimStyleTableId() const { return roots_[kRootDimStyleTable]; }
  AcDbObjectId namedObjectsDictionaryId() const { return roots_[kRootNamedObjects]; }
  // Entries of the named objects dictionary (null when missing).
  AcDbObjectId groupDictionaryId() const;
  AcDbObjectId layoutDictionaryId() const;
  AcDbObjectId mLStyleDictionaryId() const;
  AcDbObjectId plotStyleNameDictionaryId() const;
  Acad::ErrorStatus getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getLayerTable(AcDbLayerTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getTextStyleTable(AcDbTextStyleTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getLinetypeTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getViewTable(AcDbViewTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getUCSTable(AcDbUCSTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getViewportTable(AcDbViewportTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getRegAppTable(AcDbRegAppTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getDimStyleTable(AcDbDimStyleTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getSymbolTable(AcDbBlockTable*& t, AcDb::OpenMode m = AcDb::kForRead) { return getBlockTable(t, m); }
  Acad::ErrorStatus getSymbolTable(AcDbLayerTable*& t, AcDb::OpenMode m = AcDb::kForRead) { return getLayerTable(t, m); }
  Acad::ErrorStatus getSymbolTable(AcDbTextStyleTable*& t, AcDb::OpenMode m = AcDb::kForRead) { return getTextStyleTable(t, m); }
  Acad::ErrorStatus getSymbolTable(AcDbLinetypeTable*& t, AcDb::OpenMode m = AcDb::kForRead) { return getLinetypeTable(t, m); }
  Acad::ErrorStatus getSymbolTable(AcDbViewTable*& t, AcDb::OpenMode m = AcDb::kForRead) { return getViewTable(t, m); }
  Acad::ErrorStatus getSymbolTable(AcDbUCSTable*& t, AcDb::OpenMode m = AcDb::kForRead) { return getUCSTable(t, m); }
  Acad::ErrorStatus getSymbolTable(AcDbViewportTable*& t, AcDb::OpenMode m = AcDb::kForRead) { return getViewportTable(t, m); }
  Acad::ErrorStatus getSymbolTable(AcDbRegAppTable*& t, AcDb::OpenMode m = AcDb::kForRead) { return getRegAppTable(t, m); }
  Acad::ErrorStatus getSymbolTable(AcDbDimStyleTable*& t, AcDb::OpenMode m = AcDb::kForRead) { return getDimStyleTable(t, m); }
  Acad::ErrorStatus getNamedObjectsDictionary(AcDbDictionary*& dict, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getGroupDictionary(AcDbDictionary*& dict, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getLayoutDictionary(AcDbDictionary*& dict, AcDb::OpenMode mode = AcDb::kForRead);

  // Used by the new drawing and the file reader: which object is which root.
  enum Root {
    kRootBlockTable, kRootLayerTable, kRootTextStyleTable, kRootLinetypeTable, kRootViewTable,
    kRootUcsTable, kRootViewportTable, kRootRegAppTable, kRootDimStyleTable, kRootNamedObjects, kRootCount
  };
  void setRootId(Root which, AcDbObjectId id) { roots_[which] = id; }

 private:
  friend class AcDbObject;
  friend struct AcDbObjectAccess;
  friend struct AcDbDatabaseAccess;
  struct Impl;
  AcDbStub* newStub(AcDbHandle h);
  std::unique_ptr<Impl> impl_;
  AcDbHandle handseed_{1};
  AcDbObjectId roots_[kRootCount];
};

// One object record of a database; an AcDbObjectId points to it.
struct AcDbStub {
  AcDbDatabase* db = nullptr;
  AcDbHandle handle;
  AcDbObject* object = nullptr;
  bool erased = false;
};
