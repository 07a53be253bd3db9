#include "host/db/schema.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace zepk::db {

Acad::ErrorStatus ClassSchema::dxfOut(const AcDbObject* obj, AcDbDxfFiler* f) const {
  f->writeString(100, marker_);
  for (const Field& fd : fields_) {
    if (fd.customDxfOut) {
      Acad::ErrorStatus es = fd.customDxfOut(obj, f);
      if (es != Acad::eOk) return es;
      continue;
    }
    if ((fd.flags & kOptional) && !f->includesDefaultValues() && fd.isDefault(obj)) continue;
    if ((fd.flags & kOmittedWhenDefault) && f->includesDefaultValues() && fd.isDefault(obj)) continue;
    if ((fd.flags & kDegreesInFile) && f->filerType() == AcDb::kFileFiler) {
      MemoryDxfFiler value(AcDb::kCopyFiler);
      fd.writeDxf(obj, fd, &value);
      if (value.items().size() == 1) {
        f->writeDouble(fd.code, value.items()[0].p[0] * 180.0 / M_PI);
        continue;
      }
    }
    fd.writeDxf(obj, fd, f);
  }
  return f->filerStatus();
}

Acad::ErrorStatus ClassSchema::dxfIn(AcDbObject* obj, AcDbDxfFiler* filer) const {
  auto* f = dynamic_cast<MemoryDxfFiler*>(filer);
  if (!f) return Acad::eNotApplicable;
  if (!f->atSubclassData(marker_)) return Acad::eBadDxfSequence;
  for (const Field& fd : fields_)
    if (fd.reset) fd.reset(obj);
  // Which fields have taken a group; on the stack for all but the longest
  // tables.
  constexpr size_t kLocal = 64;
  bool local[kLocal] = {};
  std::unique_ptr<bool[]> more;
  bool* filled = local;
  if (fields_.size() > kLocal) {
    more.reset(new bool[fields_.size()]());
    filled = more.get();
  }
  for (;;) {
    int code = f->peekCode();
    if (f->atEOF() || code == 100 || code == 1001) break;
    // A custom part whose codes include this group reads its stretch.
    bool taken = false;
    for (size_t i = 0; i < fields_.size() && !taken; ++i) {
      const Field& fd = fields_[i];
      if (fd.customDxfIn) {
        if (filled[i] || std::find(fd.customCodes.begin(), fd.customCodes.end(), code) == fd.customCodes.end()) continue;
        Acad::ErrorStatus es = fd.customDxfIn(obj, f);
        if (es != Acad::eOk) return es;
        filled[i] = true;
        taken = true;
      } else if (!filled[i] && fd.code == code) {
        const DxfItem* it = f->next();
        if ((fd.flags & kDegreesInFile) && f->filerType() == AcDb::kFileFiler && it->kind == DxfItem::Real) {
          DxfItem radians = *it;
          radians.p[0] = radians.p[0] * M_PI / 180.0;
          if (!fd.readDxf(obj, radians)) return Acad::eInvalidResBuf;
        } else if (!fd.readDxf(obj, *it)) {
          return Acad::eInvalidResBuf;
        }
        filled[i] = true;
        taken = true;
      }
    }
    if (!taken) {
      // A group this class does not know: end of the class's part.
      break;
    }
  }
  return f->filerStatus();
}

Acad::ErrorStatus ClassSchema::dwgOut(const AcDbObject* obj, AcDbDwgFiler* f) const {
  for (const Field& fd : fields_) {
    if (fd.customDwgOut) {
      Acad::ErrorStatus es = fd.customDwgOut(obj, f);
      if (es != Acad::eOk) return es;
    } else {
      fd.writeDwg(obj, f);
    }
  }
  return f->filerStatus();
}

Acad::ErrorStatus ClassSchema::dwgIn(AcDbObject* obj, AcDbDwgFiler* f) const {
  for (const Field& fd : fields_) {
    if (fd.customDwgIn) {
      Acad::ErrorStatus es = fd.customDwgIn(obj, f);
      if (es != Acad::eOk) return es;
    } else {
      fd.readDwg(obj, f);
    }
    if (f->filerStatus() != Acad::eOk) return f->filerStatus();
  }
  return f->filerStatus();
}

const Field* ClassSchema::byName(std::string_view name) const {
  auto eq = [](std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
      char x = a[i], y = b[i];
      if (x >= 'a' && x <= 'z') x = static_cast<char>(x - 32);
      if (y >= 'a' && y <= 'z') y = static_cast<char>(y - 32);
      if (x != y) return false;
    }
    return true;
  };
  for (const Field& fd : fields_)
    if (!fd.customDxfOut && eq(fd.name, name)) return &fd;
  return nullptr;
}

}  // namespace zepk::db
