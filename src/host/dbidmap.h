// What copying objects records: for each source object the object that
// stands for it in the destination, whether it was copied or only mapped
// (an owner, or a record that the destination already has by name), and
// whether it was asked for or came along with another.
#pragma once

#include <unordered_map>
#include <vector>

#include "host/dbmain.h"

class AcDbDatabase;

namespace AcDb {
// Why objects are being copied.
enum DeepCloneType {
  kDcCopy = 0,
  kDcExplode = 1,
  kDcBlock = 2,
  kDcXrefBind = 3,
  kDcSymTableMerge = 4,
  kDcInsert = 6,
  kDcWblock = 7,
  kDcObjects = 8,
  kDcXrefInsert = 9,
  kDcInsertCopy = 10,
  kDcWblkObjects = 11,
};
}  // namespace AcDb

class AcDbIdPair {
 public:
  AcDbIdPair() = default;
  AcDbIdPair(AcDbObjectId key, AcDbObjectId value, bool isCloned, bool isPrimary = false, bool isOwnerXlated = true)
      : key_(key), value_(value), cloned_(isCloned), primary_(isPrimary), ownerXlated_(isOwnerXlated) {}
  AcDbObjectId key() const { return key_; }
  AcDbObjectId value() const { return value_; }
  bool isCloned() const { return cloned_; }
  bool isPrimary() const { return primary_; }
  bool isOwnerXlated() const { return ownerXlated_; }
  void setKey(AcDbObjectId id) { key_ = id; }
  void setValue(AcDbObjectId id) { value_ = id; }
  void setIsCloned(bool b) { cloned_ = b; }
  void setIsPrimary(bool b) { primary_ = b; }
  void setIsOwnerXlated(bool b) { ownerXlated_ = b; }

 private:
  AcDbObjectId key_;
  AcDbObjectId value_;
  bool cloned_ = false;
  bool primary_ = false;
  bool ownerXlated_ = true;
};

class AcDbIdMapping : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbIdMapping);
  AcDbIdMapping() = default;

  // Adds a pair, or replaces the pair of the same key.
  Acad::ErrorStatus assign(const AcDbIdPair& pair);
  // Fills the pair of pair.key(); false when the key is not mapped.
  bool compute(AcDbIdPair& pair) const;
  // Replaces the pair of pair.key(); false when the key is not mapped.
  bool change(const AcDbIdPair& pair);
  bool del(AcDbObjectId key);

  Acad::ErrorStatus destDb(AcDbDatabase*& db) const {
    db = dest_;
    return Acad::eOk;
  }
  Acad::ErrorStatus setDestDb(AcDbDatabase* db) {
    dest_ = db;
    return Acad::eOk;
  }
  Acad::ErrorStatus origDb(AcDbDatabase*& db) const {
    db = orig_;
    return Acad::eOk;
  }
  AcDb::DeepCloneType deepCloneContext() const { return context_; }
  AcDb::DuplicateRecordCloning duplicateRecordCloning() const { return drc_; }

  // Set by the database's copy operations.
  void setOrigDb(AcDbDatabase* db) { orig_ = db; }
  void setDeepCloneContext(AcDb::DeepCloneType t) { context_ = t; }
  void setDuplicateRecordCloning(AcDb::DuplicateRecordCloning drc) { drc_ = drc; }

  // Pairs in the order they were first assigned.
  const std::vector<AcDbIdPair>& pairs() const { return pairs_; }

 private:
  std::vector<AcDbIdPair> pairs_;
  std::unordered_map<const void*, size_t> index_;
  AcDbDatabase* dest_ = nullptr;
  AcDbDatabase* orig_ = nullptr;
  AcDb::DeepCloneType context_ = AcDb::kDcCopy;
  AcDb::DuplicateRecordCloning drc_ = AcDb::kDrcIgnore;
};

// Walks the pairs of a mapping in the order they were assigned.
class AcDbIdMappingIter {
 public:
  explicit AcDbIdMappingIter(const AcDbIdMapping& map) : map_(map) {}
  void start() { pos_ = 0; }
  bool done() const { return pos_ >= map_.pairs().size(); }
  bool next() {
    if (!done()) ++pos_;
    return !done();
  }
  bool getMap(AcDbIdPair& pair) const {
    if (done()) return false;
    pair = map_.pairs()[pos_];
    return true;
  }

 private:
  const AcDbIdMapping& map_;
  size_t pos_ = 0;
};
