// Xrecords: a list of groups held as the DXF group list it is, given and
// taken as result buffers by each group code's value type.
#include <cstdlib>
#include <cstring>

#include "host/db/dbobjects.h"
#include "host/db/internal.h"
#include "host/dbxrecrd.h"
#include "host/lisp/bridge.h"

using namespace zepk::db;
using zepk::lisp::RbKind;

namespace {

AcRxObject* makeXrecord() { return new AcDbXrecord; }

// The codes a list may hold: every code of object data but the handle (5,
// 105) and the subclass marker (100), and those of extended data but the
// application name (1001), which would end the object's data in a file.
bool allowedCode(int code) {
  if (code >= 1 && code <= 999) return code != 5 && code != 100 && code != 105;
  return code >= 1000 && code <= 1071 && code != 1001;
}

const std::vector<int>& listCodes() {
  static const std::vector<int> codes = [] {
    std::vector<int> v;
    for (int c = 1; c <= 1071; ++c)
      if (allowedCode(c) || c == 5 || c == 105) v.push_back(c);
    return v;
  }();
  return codes;
}

ACHAR* newString(const std::u16string& s) {
  auto* p = static_cast<ACHAR*>(std::malloc((s.size() + 1) * sizeof(ACHAR)));
  std::memcpy(p, s.c_str(), (s.size() + 1) * sizeof(ACHAR));
  return p;
}

double realOf(const DxfItem& it) { return it.kind == DxfItem::Int ? static_cast<double>(it.i) : it.p[0]; }
int64_t intOf(const DxfItem& it) { return it.kind == DxfItem::Real ? static_cast<int64_t>(it.p[0]) : it.i; }

// One group as a node of the kind its code carries.
resbuf* toNode(const DxfItem& it, AcDbDatabase* db) {
  resbuf* rb = acutNewRb(it.code);
  if (!rb) return nullptr;
  auto& v = rb->resval;
  switch (zepk::lisp::rbKind(it.code)) {
    case RbKind::String:
      v.rstring = newString(it.kind == DxfItem::Handle ? it.handle.ascii() : it.s);
      break;
    case RbKind::Real: v.rreal = realOf(it); break;
    case RbKind::Point:
      for (int k = 0; k < 3; ++k) v.rpoint[k] = it.kind == DxfItem::Point ? it.p[k] : (k == 0 ? realOf(it) : 0.0);
      break;
    case RbKind::Short: v.rint = static_cast<short>(intOf(it)); break;
    case RbKind::Long: v.rlong = static_cast<int32_t>(intOf(it)); break;
    case RbKind::Int64: v.mnInt64 = intOf(it); break;
    case RbKind::Name: {
      AcDbObjectId id = it.id;
      if (it.kind == DxfItem::Handle && db) db->getAcDbObjectId(id, false, it.handle);
      v.rlname[0] = id.asOldId();
      v.rlname[1] = 0;
      break;
    }
    case RbKind::Binary:
      v.rbinary.clen = static_cast<short>(it.b.size());
      v.rbinary.buf = nullptr;
      if (!it.b.empty()) {
        v.rbinary.buf = static_cast<char*>(std::malloc(it.b.size()));
        std::memcpy(v.rbinary.buf, it.b.data(), it.b.size());
      }
      break;
    default: break;
  }
  return rb;
}

// One node as a group; false for a node no group can hold.
bool fromNode(const resbuf* rb, DxfItem* it) {
  it->code = rb->restype;
  if (!allowedCode(rb->restype)) return false;
  const auto& v = rb->resval;
  switch (zepk::lisp::rbKind(rb->restype)) {
    case RbKind::String:
      it->kind = DxfItem::String;
      it->s = v.rstring ? v.rstring : u"";
      return true;
    case RbKind::Real:
      it->kind = DxfItem::Real;
      it->p[0] = v.rreal;
      return true;
    case RbKind::Point:
      it->kind = DxfItem::Point;
      for (int k = 0; k < 3; ++k) it->p[k] = v.rpoint[k];
      return true;
    case RbKind::Short:
      it->kind = DxfItem::Int;
      it->i = v.rint;
      return true;
    case RbKind::Long:
      it->kind = DxfItem::Int;
      it->i = v.rlong;
      return true;
    case RbKind::Int64:
      it->kind = DxfItem::Int;
      it->i = v.mnInt64;
      return true;
    case RbKind::Name:
      it->kind = DxfItem::Id;
      it->id.setFromOldId(static_cast<intptr_t>(v.rlname[0]));
      return true;
    case RbKind::Binary:
      it->kind = DxfItem::Binary;
      if (v.rbinary.buf && v.rbinary.clen > 0) it->b.assign(v.rbinary.buf, static_cast<size_t>(v.rbinary.clen));
      return true;
    default: return false;
  }
}

}  // namespace

ACRX_DEFINE_HOST_CLASS(AcDbXrecord, AcDbObject, u"XRECORD", makeXrecord)

AcDbXrecord::AcDbXrecord() = default;
AcDbXrecord::~AcDbXrecord() = default;

const ClassSchema& AcDbXrecord::schema() {
  using X = AcDbXrecord;
  static const ClassSchema s{
      u"AcDbXrecord",
      {
          field<&X::cloning_>(280, "MergeStyle", 1),
          // The list, as it stands, to the end of the object's data.
          custom(
              listCodes(), [](const AcDbObject* o, AcDbDxfFiler* f) { return writeDxfItems(f, static_cast<const X*>(o)->data_); },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                auto* x = static_cast<X*>(o);
                while (!f->atEOF() && f->peekCode() != 1001) x->data_.push_back(*f->next());
                return f->filerStatus();
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) { return writeDwgItems(f, static_cast<const X*>(o)->data_); },
              [](AcDbObject* o, AcDbDwgFiler* f) { return readDwgItems(f, &static_cast<X*>(o)->data_); }),
      }};
  return s;
}

Acad::ErrorStatus AcDbXrecord::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dwgOutFields(f);
  return es != Acad::eOk ? es : schema().dwgOut(this, f);
}

Acad::ErrorStatus AcDbXrecord::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbObject::dwgInFields(f);
  return es != Acad::eOk ? es : schema().dwgIn(this, f);
}

Acad::ErrorStatus AcDbXrecord::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dxfOutFields(f);
  return es != Acad::eOk ? es : schema().dxfOut(this, f);
}

Acad::ErrorStatus AcDbXrecord::dxfInFields(AcDbDxfFiler* f) {
  data_.clear();
  Acad::ErrorStatus es = AcDbObject::dxfInFields(f);
  return es != Acad::eOk ? es : schema().dxfIn(this, f);
}

Acad::ErrorStatus AcDbXrecord::rbChain(resbuf** ppRb, AcDbDatabase* auxDb) const {
  if (!ppRb) return Acad::eInvalidInput;
  *ppRb = nullptr;
  AcDbDatabase* db = auxDb ? auxDb : database();
  resbuf** tail = ppRb;
  for (const DxfItem& it : data_) {
    resbuf* rb = toNode(it, db);
    if (!rb) {
      acutRelRb(*ppRb);
      *ppRb = nullptr;
      return Acad::eOutOfMemory;
    }
    *tail = rb;
    tail = &rb->rbnext;
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::setFromRbChain(const resbuf* pRb, AcDbDatabase* auxDb) {
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  std::vector<DxfItem> items;
  for (const resbuf* p = pRb; p; p = p->rbnext) {
    DxfItem it;
    if (!fromNode(p, &it)) return Acad::eInvalidResBuf;
    items.push_back(std::move(it));
  }
  assertWriteEnabled();
  data_ = std::move(items);
  return Acad::eOk;
}

void AcDbXrecord::setMergeStyle(AcDb::DuplicateRecordCloning style) {
  assertWriteEnabled();
  cloning_ = static_cast<Adesk::Int16>(style);
}
