// What the non-graphical objects share: name folding and the groups a
// class keeps without knowing them.
#include "host/db/dbobjects.h"

#include <cstring>

#include "host/system/utf.h"

namespace zepk::db {

std::u16string foldName(std::u16string_view name) {
  std::u16string out(name);
  for (char16_t& c : out) c = zepk::sys::asciiUpper(c);
  return out;
}

bool sameName(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (zepk::sys::asciiUpper(a[i]) != zepk::sys::asciiUpper(b[i])) return false;
  return true;
}

// ---------------------------------------------------------------- kept groups

Acad::ErrorStatus writeDxfItem(AcDbDxfFiler* f, const DxfItem& it) {
  switch (it.kind) {
    case DxfItem::String: return f->writeString(it.code, it.s);
    case DxfItem::Int: return f->writeInt64(it.code, it.i);
    case DxfItem::Real: return f->writeDouble(it.code, it.p[0]);
    case DxfItem::Point:
      if (it.dims == 2) return f->writePoint2d(it.code, AcGePoint2d(it.p[0], it.p[1]));
      return f->writePoint3d(it.code, AcGePoint3d(it.p[0], it.p[1], it.p[2]));
    case DxfItem::Id: return f->writeObjectId(it.code, it.id);
    case DxfItem::Handle: return f->writeHandle(it.code, it.handle);
    case DxfItem::Binary: return f->writeBinaryChunk(it.code, it.b);
  }
  return Acad::eInvalidResBuf;
}

Acad::ErrorStatus writeDxfItems(AcDbDxfFiler* f, const std::vector<DxfItem>& items) {
  for (const DxfItem& it : items) {
    Acad::ErrorStatus es = writeDxfItem(f, it);
    if (es != Acad::eOk) return es;
  }
  return f->filerStatus();
}

namespace {

// The kind of reference a group code makes, as the DWG-style stream
// files it (copies follow owned objects, not pointed-to ones).
enum class RefKind { SoftPointer, HardPointer, SoftOwner, HardOwner };
RefKind refKind(int code) {
  if (code >= 340 && code <= 349) return RefKind::HardPointer;
  if (code >= 350 && code <= 359) return RefKind::SoftOwner;
  if (code >= 360 && code <= 369) return RefKind::HardOwner;
  if ((code >= 390 && code <= 399) || code == 480 || code == 481) return RefKind::HardPointer;
  return RefKind::SoftPointer;
}

}  // namespace

Acad::ErrorStatus writeDwgItems(AcDbDwgFiler* f, const std::vector<DxfItem>& items) {
  f->writeInt32(static_cast<Adesk::Int32>(items.size()));
  for (const DxfItem& it : items) {
    f->writeInt16(static_cast<Adesk::Int16>(it.code));
    f->writeInt16(static_cast<Adesk::Int16>(it.kind));
    switch (it.kind) {
      case DxfItem::String: f->writeString(it.s); break;
      case DxfItem::Int: f->writeInt64(it.i); break;
      case DxfItem::Real: f->writeDouble(it.p[0]); break;
      case DxfItem::Point:
        f->writePoint3d(AcGePoint3d(it.p[0], it.p[1], it.p[2]));
        f->writeInt16(static_cast<Adesk::Int16>(it.dims));
        break;
      case DxfItem::Id:
        switch (refKind(it.code)) {
          case RefKind::SoftPointer: f->writeSoftPointerId(it.id); break;
          case RefKind::HardPointer: f->writeHardPointerId(it.id); break;
          case RefKind::SoftOwner: f->writeSoftOwnershipId(it.id); break;
          case RefKind::HardOwner: f->writeHardOwnershipId(it.id); break;
        }
        break;
      case DxfItem::Handle: f->writeHandle(it.handle); break;
      case DxfItem::Binary:
        f->writeInt32(static_cast<Adesk::Int32>(it.b.size()));
        f->writeBytes(it.b.data(), it.b.size());
        break;
    }
  }
  return f->filerStatus();
}

Acad::ErrorStatus readDwgItems(AcDbDwgFiler* f, std::vector<DxfItem>* items) {
  items->clear();
  Adesk::Int32 n = 0;
  if (f->readInt32(&n) != Acad::eOk || n < 0) return f->filerStatus();
  for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
    Adesk::Int16 code = 0, kind = 0;
    f->readInt16(&code);
    f->readInt16(&kind);
    DxfItem it;
    it.code = code;
    it.kind = static_cast<DxfItem::Kind>(kind);
    switch (it.kind) {
      case DxfItem::String: f->readString(&it.s); break;
      case DxfItem::Int: f->readInt64(&it.i); break;
      case DxfItem::Real: f->readDouble(&it.p[0]); break;
      case DxfItem::Point: {
        AcGePoint3d p;
        f->readPoint3d(&p);
        it.p[0] = p.x, it.p[1] = p.y, it.p[2] = p.z;
        Adesk::Int16 dims = 3;
        f->readInt16(&dims);
        it.dims = dims;
        break;
      }
      case DxfItem::Id:
        switch (refKind(code)) {
          case RefKind::SoftPointer: f->readSoftPointerId(&it.id); break;
          case RefKind::HardPointer: f->readHardPointerId(&it.id); break;
          case RefKind::SoftOwner: f->readSoftOwnershipId(&it.id); break;
          case RefKind::HardOwner: f->readHardOwnershipId(&it.id); break;
        }
        break;
      case DxfItem::Handle: f->readHandle(&it.handle); break;
      case DxfItem::Binary: {
        Adesk::Int32 len = 0;
        f->readInt32(&len);
        if (len < 0) return Acad::eFilerError;
        it.b.resize(static_cast<size_t>(len));
        if (len > 0) f->readBytes(it.b.data(), it.b.size());
        break;
      }
      default: f->setFilerStatus(Acad::eFilerError); break;
    }
    items->push_back(std::move(it));
  }
  return f->filerStatus();
}

bool sameItem(const DxfItem& a, const DxfItem& b) {
  if (a.code != b.code || a.kind != b.kind) return false;
  switch (a.kind) {
    case DxfItem::String: return a.s == b.s;
    case DxfItem::Int: return a.i == b.i;
    case DxfItem::Real: return a.p[0] == b.p[0];
    case DxfItem::Point: return a.p[0] == b.p[0] && a.p[1] == b.p[1] && a.p[2] == b.p[2] && a.dims == b.dims;
    case DxfItem::Id: return a.id == b.id;
    case DxfItem::Handle: return a.handle == b.handle;
    case DxfItem::Binary: return a.b == b.b;
  }
  return false;
}

const std::vector<int>& anyClassCode() {
  static const std::vector<int> codes = [] {
    std::vector<int> v;
    for (int c = 1; c <= 999; ++c)
      if (c != 100) v.push_back(c);
    return v;
  }();
  return codes;
}

Acad::ErrorStatus readRemainingGroups(AcDbObject* obj, MemoryDxfFiler* f, const ClassSchema& schema,
                                      std::vector<DxfItem>* kept,
                                      Acad::ErrorStatus (*self)(AcDbObject*, MemoryDxfFiler*)) {
  kept->clear();
  bool first = true;
  while (!f->atEOF()) {
    int code = f->peekCode();
    if (code == 100 || code == 1001) break;
    if (!first) {
      // A group of a known field that came late: to its field or part.
      const Field* known = nullptr;
      for (const Field& fd : schema.fields()) {
        if (fd.customDxfIn) {
          if (fd.customDxfIn == self) continue;
          for (int c : fd.customCodes)
            if (c == code) known = &fd;
        } else if (fd.code == code) {
          known = &fd;
        }
        if (known) break;
      }
      if (known && !known->customDxfIn) {
        if (!known->readDxf(obj, *f->next())) return Acad::eInvalidResBuf;
        continue;
      }
      if (known) {
        size_t before = f->position();
        Acad::ErrorStatus es = known->customDxfIn(obj, f);
        if (es != Acad::eOk) return es;
        if (f->position() != before) continue;
      }
    }
    first = false;
    kept->push_back(*f->next());
  }
  return f->filerStatus();
}

}  // namespace zepk::db

#include "host/dbdict.h"
#include "host/dbgroup.h"
#include "host/dblayout.h"
#include "host/dbmstyle.h"
#include "host/dbxrecrd.h"
#include "host/sorttab.h"

namespace zepk::db {

void registerObjectClasses() {
  AcDbSymbolTable::desc();
  AcDbBlockTable::desc();
  AcDbLayerTable::desc();
  AcDbTextStyleTable::desc();
  AcDbLinetypeTable::desc();
  AcDbViewTable::desc();
  AcDbUCSTable::desc();
  AcDbViewportTable::desc();
  AcDbRegAppTable::desc();
  AcDbDimStyleTable::desc();
  AcDbSymbolTableRecord::desc();
  AcDbBlockTableRecord::desc();
  AcDbLayerTableRecord::desc();
  AcDbTextStyleTableRecord::desc();
  AcDbLinetypeTableRecord::desc();
  AcDbAbstractViewTableRecord::desc();
  AcDbViewTableRecord::desc();
  AcDbViewportTableRecord::desc();
  AcDbUCSTableRecord::desc();
  AcDbRegAppTableRecord::desc();
  AcDbDimStyleTableRecord::desc();
  AcDbDictionary::desc();
  AcDbDictionaryWithDefault::desc();
  AcDbPlaceHolder::desc();
  AcDbXrecord::desc();
  AcDbGroup::desc();
  AcDbPlotSettings::desc();
  AcDbLayout::desc();
  AcDbSortentsTable::desc();
  AcDbMlineStyle::desc();
}

}  // namespace zepk::db
