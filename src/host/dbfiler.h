// Filers: how objects write and read their persistent state. Every object
// class writes itself to a DWG-style filer (a typed stream, used to copy
// objects and to keep undo records of classes that write themselves) and to
// a DXF filer (group codes and values: DXF files, entget and entmod, undo
// records of the database's own classes).
#pragma once

#include <string>

#include "host/acadstrc.h"
#include "host/adesk.h"
#include "host/ads.h"
#include "host/dbid.h"
#include "host/gepnt2d.h"
#include "host/gepnt3d.h"
#include "host/gevec3d.h"
#include "host/rxobject.h"

namespace AcDb {

enum FilerType {
  kFileFiler = 0,
  kCopyFiler = 1,
  kUndoFiler = 2,
  kBagFiler = 3,
  kIdXlateFiler = 4,
  kPageFiler = 5,
  kDeepCloneFiler = 6,
  kIdFiler = 7,
  kPurgeFiler = 8,
  kWblockCloneFiler = 9,
};

enum OpenMode {
  kForRead = 0,
  kForWrite = 1,
  kForNotify = 2,
};

// What copying does with a name both drawings have (group 281 of a
// dictionary).
enum DuplicateRecordCloning {
  kDrcNotApplicable = 0,
  kDrcIgnore = 1,
  kDrcReplace = 2,
  kDrcXrefMangleName = 3,
  kDrcMangleName = 4,
  kDrcUnmangleName = 5,
};

// Precision for reals written to DXF: full precision by default.
enum { kDfltPrec = -1 };

}  // namespace AcDb

class AcDbDwgFiler : public AcRxObject {
 public:
  virtual Acad::ErrorStatus filerStatus() const = 0;
  virtual AcDb::FilerType filerType() const = 0;
  virtual void setFilerStatus(Acad::ErrorStatus) = 0;
  virtual void resetFilerStatus() = 0;
  virtual AcDbDatabase* database() const { return nullptr; }

  virtual Acad::ErrorStatus readBool(bool*) = 0;
  virtual Acad::ErrorStatus writeBool(bool) = 0;
  Acad::ErrorStatus readBoolean(Adesk::Boolean* v) { return readBool(v); }
  Acad::ErrorStatus writeBoolean(Adesk::Boolean v) { return writeBool(v); }
  virtual Acad::ErrorStatus readInt8(Adesk::Int8*) = 0;
  virtual Acad::ErrorStatus writeInt8(Adesk::Int8) = 0;
  virtual Acad::ErrorStatus readInt16(Adesk::Int16*) = 0;
  virtual Acad::ErrorStatus writeInt16(Adesk::Int16) = 0;
  virtual Acad::ErrorStatus readInt32(Adesk::Int32*) = 0;
  virtual Acad::ErrorStatus writeInt32(Adesk::Int32) = 0;
  virtual Acad::ErrorStatus readInt64(Adesk::Int64*) = 0;
  virtual Acad::ErrorStatus writeInt64(Adesk::Int64) = 0;
  virtual Acad::ErrorStatus readUInt8(Adesk::UInt8*) = 0;
  virtual Acad::ErrorStatus writeUInt8(Adesk::UInt8) = 0;
  virtual Acad::ErrorStatus readUInt16(Adesk::UInt16*) = 0;
  virtual Acad::ErrorStatus writeUInt16(Adesk::UInt16) = 0;
  virtual Acad::ErrorStatus readUInt32(Adesk::UInt32*) = 0;
  virtual Acad::ErrorStatus writeUInt32(Adesk::UInt32) = 0;
  virtual Acad::ErrorStatus readUInt64(Adesk::UInt64*) = 0;
  virtual Acad::ErrorStatus writeUInt64(Adesk::UInt64) = 0;
  virtual Acad::ErrorStatus readDouble(double*) = 0;
  virtual Acad::ErrorStatus writeDouble(double) = 0;
  virtual Acad::ErrorStatus readPoint2d(AcGePoint2d*) = 0;
  virtual Acad::ErrorStatus writePoint2d(const AcGePoint2d&) = 0;
  virtual Acad::ErrorStatus readPoint3d(AcGePoint3d*) = 0;
  virtual Acad::ErrorStatus writePoint3d(const AcGePoint3d&) = 0;
  virtual Acad::ErrorStatus readVector3d(AcGeVector3d*) = 0;
  virtual Acad::ErrorStatus writeVector3d(const AcGeVector3d&) = 0;
  virtual Acad::ErrorStatus readString(std::u16string*) = 0;
  virtual Acad::ErrorStatus writeString(const std::u16string&) = 0;
  Acad::ErrorStatus writeString(const ACHAR* s) { return writeString(std::u16string(s ? s : u"")); }
  virtual Acad::ErrorStatus readBytes(void*, Adesk::UIntPtr) = 0;
  virtual Acad::ErrorStatus writeBytes(const void*, Adesk::UIntPtr) = 0;
  virtual Acad::ErrorStatus readHandle(AcDbHandle*) = 0;
  virtual Acad::ErrorStatus writeHandle(const AcDbHandle&) = 0;
  // References to other objects, by kind of ownership.
  virtual Acad::ErrorStatus readHardOwnershipId(AcDbObjectId*) = 0;
  virtual Acad::ErrorStatus writeHardOwnershipId(const AcDbObjectId&) = 0;
  virtual Acad::ErrorStatus readSoftOwnershipId(AcDbObjectId*) = 0;
  virtual Acad::ErrorStatus writeSoftOwnershipId(const AcDbObjectId&) = 0;
  virtual Acad::ErrorStatus readHardPointerId(AcDbObjectId*) = 0;
  virtual Acad::ErrorStatus writeHardPointerId(const AcDbObjectId&) = 0;
  virtual Acad::ErrorStatus readSoftPointerId(AcDbObjectId*) = 0;
  virtual Acad::ErrorStatus writeSoftPointerId(const AcDbObjectId&) = 0;
};

class AcDbDxfFiler : public AcRxObject {
 public:
  virtual Acad::ErrorStatus filerStatus() const = 0;
  virtual AcDb::FilerType filerType() const = 0;
  virtual void setFilerStatus(Acad::ErrorStatus) = 0;
  virtual void resetFilerStatus() = 0;
  virtual AcDbDatabase* database() const { return nullptr; }
  // Whether values equal to their defaults are written too.
  virtual bool includesDefaultValues() const { return true; }

  // Reading. readItem fills the node with the next group: its restype is
  // the group code; strings stay owned by the filer until the next read.
  // At the end of the object's groups it gives eEndOfFile.
  virtual Acad::ErrorStatus readItem(resbuf* pItem) = 0;
  Acad::ErrorStatus readResBuf(resbuf* pItem) { return readItem(pItem); }
  // Puts the group just read back, to be read again.
  virtual void pushBackItem() = 0;
  virtual bool atEOF() = 0;
  // True, consuming the marker, when the next group is the subclass marker
  // 100 with this name.
  virtual bool atSubclassData(const ACHAR* subClassName) = 0;
  // True when the next group starts extended data (1001) or the end.
  virtual bool atExtendedData() = 0;
  // The next group's code without reading it; 0 at the end.
  virtual int peekCode() = 0;

  // Writing, by the value type of the group.
  virtual Acad::ErrorStatus writeItem(const resbuf& item) = 0;
  Acad::ErrorStatus writeResBuf(const resbuf& item) { return writeItem(item); }
  virtual Acad::ErrorStatus writeString(int code, const std::u16string& s) = 0;
  Acad::ErrorStatus writeString(int code, const ACHAR* s) { return writeString(code, std::u16string(s ? s : u"")); }
  virtual Acad::ErrorStatus writeInt64(int code, Adesk::Int64 v) = 0;
  Acad::ErrorStatus writeInt8(int code, Adesk::Int8 v) { return writeInt64(code, v); }
  Acad::ErrorStatus writeInt16(int code, Adesk::Int16 v) { return writeInt64(code, v); }
  Acad::ErrorStatus writeInt32(int code, Adesk::Int32 v) { return writeInt64(code, v); }
  Acad::ErrorStatus writeUInt8(int code, Adesk::UInt8 v) { return writeInt64(code, v); }
  Acad::ErrorStatus writeUInt16(int code, Adesk::UInt16 v) { return writeInt64(code, v); }
  Acad::ErrorStatus writeUInt32(int code, Adesk::UInt32 v) { return writeInt64(code, v); }
  Acad::ErrorStatus writeBool(int code, bool v) { return writeInt64(code, v ? 1 : 0); }
  Acad::ErrorStatus writeBoolean(int code, Adesk::Boolean v) { return writeBool(code, v); }
  virtual Acad::ErrorStatus writeDouble(int code, double v, int prec = AcDb::kDfltPrec) = 0;
  Acad::ErrorStatus writeReal(int code, double v, int prec = AcDb::kDfltPrec) { return writeDouble(code, v, prec); }
  Acad::ErrorStatus writeAngle(int code, double v, int prec = AcDb::kDfltPrec) { return writeDouble(code, v, prec); }
  virtual Acad::ErrorStatus writePoint3d(int code, const AcGePoint3d& p, int prec = AcDb::kDfltPrec) = 0;
  // A point of two coordinates: files write it without a z group.
  virtual Acad::ErrorStatus writePoint2d(int code, const AcGePoint2d& p, int prec = AcDb::kDfltPrec) {
    return writePoint3d(code, AcGePoint3d(p.x, p.y, 0.0), prec);
  }
  Acad::ErrorStatus writeVector3d(int code, const AcGeVector3d& v, int prec = AcDb::kDfltPrec) {
    return writePoint3d(code, AcGePoint3d(v.x, v.y, v.z), prec);
  }
  virtual Acad::ErrorStatus writeObjectId(int code, const AcDbObjectId& id) = 0;
  virtual Acad::ErrorStatus writeHandle(int code, const AcDbHandle& h) = 0;
  virtual Acad::ErrorStatus writeBinaryChunk(int code, const std::string& bytes) = 0;
};
