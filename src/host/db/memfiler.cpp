#include "host/db/memfiler.h"

#include <cstring>

#include "host/dxf/group.h"

namespace zepk::db {

Acad::ErrorStatus MemoryDwgFiler::readBytes(void* buf, Adesk::UIntPtr n) {
  std::string bytes;
  Acad::ErrorStatus es = get(&bytes);
  if (es != Acad::eOk) return es;
  if (bytes.size() != n) return status_ = Acad::eFilerError;
  std::memcpy(buf, bytes.data(), n);
  return Acad::eOk;
}

Acad::ErrorStatus MemoryDwgFiler::writeBytes(const void* buf, Adesk::UIntPtr n) {
  return put(std::string(static_cast<const char*>(buf), n));
}

namespace {

using zepk::dxf::GroupType;

// A result buffer holds a point in one node for these codes; the file
// writes them as separate x, y and z groups.
bool isPointCode(int code) {
  return (code >= 10 && code <= 18) || (code >= 110 && code <= 112) || code == 210 || (code >= 1010 && code <= 1013);
}

// How a group code's integer sits in a result buffer: 16-bit codes (and
// booleans) in rint, 64-bit codes in mnInt64, the rest in rlong.
enum class IntField { Short, Long, Int64 };
IntField intField(int code) {
  switch (zepk::dxf::groupType(code)) {
    case GroupType::Int16:
    case GroupType::Bool: return IntField::Short;
    case GroupType::Int64: return IntField::Int64;
    default: return IntField::Long;
  }
}

}  // namespace

MemoryDxfFiler::~MemoryDxfFiler() { delete[] lastString_; }

const DxfItem* MemoryDxfFiler::next() {
  if (status_ != Acad::eOk || pos_ >= readEnd()) return nullptr;
  return &items_[pos_++];
}

Acad::ErrorStatus MemoryDxfFiler::readItem(resbuf* rb) {
  if (status_ != Acad::eOk) return status_;
  if (pos_ >= readEnd()) return Acad::eEndOfFile;
  const DxfItem& it = items_[pos_++];
  rb->restype = static_cast<short>(it.code);
  switch (it.kind) {
    case DxfItem::String: {
      delete[] lastString_;
      lastString_ = new ACHAR[it.s.size() + 1];
      std::memcpy(lastString_, it.s.c_str(), (it.s.size() + 1) * sizeof(ACHAR));
      rb->resval.rstring = lastString_;
      break;
    }
    case DxfItem::Int:
      switch (intField(it.code)) {
        case IntField::Short: rb->resval.rint = static_cast<short>(it.i); break;
        case IntField::Long: rb->resval.rlong = static_cast<int32_t>(it.i); break;
        case IntField::Int64: rb->resval.mnInt64 = it.i; break;
      }
      break;
    case DxfItem::Real: rb->resval.rreal = it.p[0]; break;
    case DxfItem::Point:
      for (int k = 0; k < 3; ++k) rb->resval.rpoint[k] = it.p[k];
      break;
    case DxfItem::Id:
      rb->resval.rlname[0] = it.id.asOldId();
      rb->resval.rlname[1] = 0;
      break;
    case DxfItem::Handle: {
      uint64_t v = it.handle.value();
      std::memcpy(rb->resval.ihandle, &v, 8);
      break;
    }
    case DxfItem::Binary:
      rb->resval.rbinary.clen = static_cast<short>(it.b.size());
      rb->resval.rbinary.buf = const_cast<char*>(it.b.data());
      break;
  }
  return Acad::eOk;
}

bool MemoryDxfFiler::atSubclassData(const ACHAR* name) {
  if (pos_ < readEnd() && items_[pos_].code == 100 && items_[pos_].s == name) {
    ++pos_;
    return true;
  }
  return false;
}

Acad::ErrorStatus MemoryDxfFiler::writeItem(const resbuf& rb) {
  int code = rb.restype;
  if (isPointCode(code))
    return writePoint3d(code, AcGePoint3d(rb.resval.rpoint[0], rb.resval.rpoint[1], rb.resval.rpoint[2]));
  switch (zepk::dxf::groupType(code)) {
    case GroupType::String:
    case GroupType::Unknown: return writeString(code, rb.resval.rstring ? rb.resval.rstring : u"");
    case GroupType::Real: return writeDouble(code, rb.resval.rreal);
    case GroupType::Handle: {
      // Handles (5, 105, 1005) are text; references to objects are names.
      if (code == 5 || code == 105 || code == 1005) return writeString(code, rb.resval.rstring ? rb.resval.rstring : u"");
      AcDbObjectId id;
      id.setFromOldId(static_cast<intptr_t>(rb.resval.rlname[0]));
      return writeObjectId(code, id);
    }
    case GroupType::Binary:
      return writeBinaryChunk(code, std::string(rb.resval.rbinary.buf ? rb.resval.rbinary.buf : "",
                                                rb.resval.rbinary.buf ? rb.resval.rbinary.clen : 0));
    default: break;
  }
  switch (intField(code)) {
    case IntField::Short: return writeInt64(code, rb.resval.rint);
    case IntField::Int64: return writeInt64(code, rb.resval.mnInt64);
    case IntField::Long: return writeInt64(code, rb.resval.rlong);
  }
  return Acad::eInvalidResBuf;
}

Acad::ErrorStatus MemoryDxfFiler::add(DxfItem item) {
  if (status_ != Acad::eOk) return status_;
  items_.push_back(std::move(item));
  return Acad::eOk;
}

Acad::ErrorStatus MemoryDxfFiler::writeString(int code, const std::u16string& s) {
  DxfItem it{code, DxfItem::String};
  it.s = s;
  return add(std::move(it));
}

Acad::ErrorStatus MemoryDxfFiler::writeInt64(int code, Adesk::Int64 v) {
  DxfItem it{code, DxfItem::Int};
  it.i = v;
  return add(std::move(it));
}

Acad::ErrorStatus MemoryDxfFiler::writeDouble(int code, double v, int) {
  DxfItem it{code, DxfItem::Real};
  it.p[0] = v;
  return add(std::move(it));
}

Acad::ErrorStatus MemoryDxfFiler::writePoint3d(int code, const AcGePoint3d& p, int) {
  DxfItem it{code, DxfItem::Point};
  it.p[0] = p.x;
  it.p[1] = p.y;
  it.p[2] = p.z;
  return add(std::move(it));
}

Acad::ErrorStatus MemoryDxfFiler::writePoint2d(int code, const AcGePoint2d& p, int) {
  DxfItem it{code, DxfItem::Point};
  it.p[0] = p.x;
  it.p[1] = p.y;
  it.dims = 2;
  return add(std::move(it));
}

Acad::ErrorStatus MemoryDxfFiler::writeObjectId(int code, const AcDbObjectId& id) {
  DxfItem it{code, DxfItem::Id};
  it.id = id;
  return add(std::move(it));
}

Acad::ErrorStatus MemoryDxfFiler::writeHandle(int code, const AcDbHandle& h) {
  DxfItem it{code, DxfItem::Handle};
  it.handle = h;
  return add(std::move(it));
}

Acad::ErrorStatus MemoryDxfFiler::writeBinaryChunk(int code, const std::string& bytes) {
  DxfItem it{code, DxfItem::Binary};
  it.b = bytes;
  return add(std::move(it));
}

}  // namespace zepk::db
