// Filers that keep what objects write in memory: the DWG-style stream that
// copies objects and records them for undo, and the DXF group list that the
// DXF files, entget/entmod and undo of the database's own classes use.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "host/dbfiler.h"

namespace zepk::db {

// One value of the DWG-style stream.
using DwgItem = std::variant<bool, int64_t, uint64_t, double, AcGePoint2d, AcGePoint3d, AcGeVector3d,
                             std::u16string, std::string, AcDbHandle, AcDbObjectId>;

class MemoryDwgFiler : public AcDbDwgFiler {
 public:
  explicit MemoryDwgFiler(AcDb::FilerType type = AcDb::kCopyFiler, AcDbDatabase* db = nullptr)
      : type_(type), db_(db) {}
  Acad::ErrorStatus filerStatus() const override { return status_; }
  AcDb::FilerType filerType() const override { return type_; }
  void setFilerStatus(Acad::ErrorStatus es) override { status_ = es; }
  void resetFilerStatus() override { status_ = Acad::eOk; }
  AcDbDatabase* database() const override { return db_; }
  // Starts reading from the first item again.
  void rewind() {
    pos_ = 0;
    status_ = Acad::eOk;
  }
  const std::vector<DwgItem>& items() const { return items_; }

  Acad::ErrorStatus readBool(bool* v) override { return get(v); }
  Acad::ErrorStatus writeBool(bool v) override { return put(v); }
  Acad::ErrorStatus readInt8(Adesk::Int8* v) override { return getInt(v); }
  Acad::ErrorStatus writeInt8(Adesk::Int8 v) override { return put(int64_t{v}); }
  Acad::ErrorStatus readInt16(Adesk::Int16* v) override { return getInt(v); }
  Acad::ErrorStatus writeInt16(Adesk::Int16 v) override { return put(int64_t{v}); }
  Acad::ErrorStatus readInt32(Adesk::Int32* v) override { return getInt(v); }
  Acad::ErrorStatus writeInt32(Adesk::Int32 v) override { return put(int64_t{v}); }
  Acad::ErrorStatus readInt64(Adesk::Int64* v) override { return getInt(v); }
  Acad::ErrorStatus writeInt64(Adesk::Int64 v) override { return put(int64_t{v}); }
  Acad::ErrorStatus readUInt8(Adesk::UInt8* v) override { return getInt(v); }
  Acad::ErrorStatus writeUInt8(Adesk::UInt8 v) override { return put(int64_t{v}); }
  Acad::ErrorStatus readUInt16(Adesk::UInt16* v) override { return getInt(v); }
  Acad::ErrorStatus writeUInt16(Adesk::UInt16 v) override { return put(int64_t{v}); }
  Acad::ErrorStatus readUInt32(Adesk::UInt32* v) override { return getInt(v); }
  Acad::ErrorStatus writeUInt32(Adesk::UInt32 v) override { return put(int64_t{v}); }
  Acad::ErrorStatus readUInt64(Adesk::UInt64* v) override { return get(v); }
  Acad::ErrorStatus writeUInt64(Adesk::UInt64 v) override { return put(uint64_t{v}); }
  Acad::ErrorStatus readDouble(double* v) override { return get(v); }
  Acad::ErrorStatus writeDouble(double v) override { return put(v); }
  Acad::ErrorStatus readPoint2d(AcGePoint2d* v) override { return get(v); }
  Acad::ErrorStatus writePoint2d(const AcGePoint2d& v) override { return put(v); }
  Acad::ErrorStatus readPoint3d(AcGePoint3d* v) override { return get(v); }
  Acad::ErrorStatus writePoint3d(const AcGePoint3d& v) override { return put(v); }
  Acad::ErrorStatus readVector3d(AcGeVector3d* v) override { return get(v); }
  Acad::ErrorStatus writeVector3d(const AcGeVector3d& v) override { return put(v); }
  Acad::ErrorStatus readString(std::u16string* v) override { return get(v); }
  Acad::ErrorStatus writeString(const std::u16string& v) override { return put(v); }
  using AcDbDwgFiler::readString;
  using AcDbDwgFiler::writeString;
  Acad::ErrorStatus readBytes(void* buf, Adesk::UIntPtr n) override;
  Acad::ErrorStatus writeBytes(const void* buf, Adesk::UIntPtr n) override;
  Acad::ErrorStatus readHandle(AcDbHandle* v) override { return get(v); }
  Acad::ErrorStatus writeHandle(const AcDbHandle& v) override { return put(v); }
  Acad::ErrorStatus readHardOwnershipId(AcDbObjectId* v) override { return get(v); }
  Acad::ErrorStatus writeHardOwnershipId(const AcDbObjectId& v) override { return put(v); }
  Acad::ErrorStatus readSoftOwnershipId(AcDbObjectId* v) override { return get(v); }
  Acad::ErrorStatus writeSoftOwnershipId(const AcDbObjectId& v) override { return put(v); }
  Acad::ErrorStatus readHardPointerId(AcDbObjectId* v) override { return get(v); }
  Acad::ErrorStatus writeHardPointerId(const AcDbObjectId& v) override { return put(v); }
  Acad::ErrorStatus readSoftPointerId(AcDbObjectId* v) override { return get(v); }
  Acad::ErrorStatus writeSoftPointerId(const AcDbObjectId& v) override { return put(v); }

 private:
  template <class T>
  Acad::ErrorStatus put(T v) {
    if (status_ != Acad::eOk) return status_;
    items_.emplace_back(std::move(v));
    return Acad::eOk;
  }
  // Reads the next item, which must hold a T; anything else stops the filer.
  template <class T>
  Acad::ErrorStatus get(T* out) {
    if (status_ != Acad::eOk) return status_;
    if (pos_ >= items_.size()) return status_ = Acad::eEndOfFile;
    const T* v = std::get_if<T>(&items_[pos_]);
    if (!v) return status_ = Acad::eFilerError;
    ++pos_;
    *out = *v;
    return Acad::eOk;
  }
  template <class T>
  Acad::ErrorStatus getInt(T* out) {
    int64_t v = 0;
    Acad::ErrorStatus es = get(&v);
    if (es == Acad::eOk) *out = static_cast<T>(v);
    return es;
  }

  AcDb::FilerType type_;
  AcDbDatabase* db_;
  std::vector<DwgItem> items_;
  size_t pos_ = 0;
  Acad::ErrorStatus status_ = Acad::eOk;
};

// One group of a DXF group list.
struct DxfItem {
  enum Kind { String, Int, Real, Point, Id, Handle, Binary };
  int code = 0;
  Kind kind = String;
  std::u16string s;  // strings, and binary chunks as bytes in std::string b
  std::string b;
  int64_t i = 0;
  double p[3] = {0, 0, 0};  // a real in p[0]
  AcDbObjectId id;
  AcDbHandle handle;
  int dims = 3;  // a point's coordinates in a file: 2 (x, y) or 3
};

class MemoryDxfFiler : public AcDbDxfFiler {
 public:
  explicit MemoryDxfFiler(AcDb::FilerType type = AcDb::kFileFiler, AcDbDatabase* db = nullptr)
      : type_(type), db_(db) {}
  ~MemoryDxfFiler() override;
  Acad::ErrorStatus filerStatus() const override { return status_; }
  AcDb::FilerType filerType() const override { return type_; }
  void setFilerStatus(Acad::ErrorStatus es) override { status_ = es; }
  void resetFilerStatus() override { status_ = Acad::eOk; }
  AcDbDatabase* database() const override { return db_; }
  // Files leave out optional fields that hold their defaults; entget and
  // undo records keep everything.
  bool includesDefaultValues() const override { return type_ != AcDb::kFileFiler; }

  std::vector<DxfItem>& items() { return items_; }
  const std::vector<DxfItem>& items() const { return items_; }
  void rewind() {
    pos_ = 0;
    status_ = Acad::eOk;
  }
  size_t position() const { return pos_; }
  // Reading goes on from item `pos` (at most the end).
  void seek(size_t pos) { pos_ = pos < items_.size() ? pos : items_.size(); }
  // Reading ends at item `end` as at the end of the list, until limitEnd()
  // is called again with a later end (SIZE_MAX: the list's own end). This
  // lets a part of an object be read where it stands, without a copy.
  void limitEnd(size_t end) { limit_ = end; }
  size_t readEnd() const { return limit_ < items_.size() ? limit_ : items_.size(); }
  // A reader that is about to change the order of the items calls
  // aboutToReorder(); when keepOriginalIn() named a list, a copy of the
  // items as they were goes there first (once), for a caller that reads
  // the same items again should this reading fail.
  void keepOriginalIn(std::vector<DxfItem>* list) { original_ = list; }
  void aboutToReorder() {
    if (original_ == nullptr) return;
    *original_ = items_;
    original_ = nullptr;
    reordered_ = true;
  }
  bool reordered() const { return reordered_; }
  // Empty again, for the next object, keeping the room the items had.
  void clear() {
    items_.clear();
    pos_ = 0;
    limit_ = SIZE_MAX;
    status_ = Acad::eOk;
  }

  Acad::ErrorStatus readItem(resbuf* pItem) override;
  void pushBackItem() override {
    if (pos_ > 0) --pos_;
  }
  bool atEOF() override { return pos_ >= readEnd(); }
  bool atSubclassData(const ACHAR* subClassName) override;
  bool atExtendedData() override { return pos_ >= readEnd() || items_[pos_].code == 1001; }
  int peekCode() override { return pos_ < readEnd() ? items_[pos_].code : 0; }
  // The next item itself, typed; null at the end.
  const DxfItem* next();

  Acad::ErrorStatus writeItem(const resbuf& item) override;
  Acad::ErrorStatus writeString(int code, const std::u16string& s) override;
  using AcDbDxfFiler::writeString;
  Acad::ErrorStatus writeInt64(int code, Adesk::Int64 v) override;
  Acad::ErrorStatus writeDouble(int code, double v, int prec = AcDb::kDfltPrec) override;
  Acad::ErrorStatus writePoint3d(int code, const AcGePoint3d& p, int prec = AcDb::kDfltPrec) override;
  Acad::ErrorStatus writePoint2d(int code, const AcGePoint2d& p, int prec = AcDb::kDfltPrec) override;
  Acad::ErrorStatus writeObjectId(int code, const AcDbObjectId& id) override;
  Acad::ErrorStatus writeHandle(int code, const AcDbHandle& h) override;
  Acad::ErrorStatus writeBinaryChunk(int code, const std::string& bytes) override;

 private:
  AcDb::FilerType type_;
  AcDbDatabase* db_;
  std::vector<DxfItem> items_;
  size_t pos_ = 0;
  size_t limit_ = SIZE_MAX;
  std::vector<DxfItem>* original_ = nullptr;
  bool reordered_ = false;
  Acad::ErrorStatus status_ = Acad::eOk;
  ACHAR* lastString_ = nullptr;  // the string of the last readItem
  Acad::ErrorStatus add(DxfItem item);
};

}  // namespace zepk::db
