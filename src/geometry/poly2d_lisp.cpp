// Curves turned into old-style 2D polylines for LISP.
#include "geometry/poly2d_lisp.h"

#include <memory>
#include <vector>

#include "frame/lisp_bridge.h"
#include "geometry/curves.h"
#include "geometry/lisp_args.h"
#include "host/dbents.h"
#include "host/dbpl.h"
#include "host/dbsymtb.h"

namespace zepk::geometry {

using namespace lispargs;

namespace {

constexpr Styles kStyles{MsgStyle::LineEnd, MsgStyle::LineEnd};

// The 2D polyline of the curve's shape, with its properties and extended
// data; null for a curve the kernel cannot model as a polyline.
AcDb2dPolyline* make2dPoly(const AcDbCurve* source) {
  std::unique_ptr<AcDbPolyline> lw(curveToLwPoly(source));
  if (!lw) return nullptr;
  AcDb2dPolyline* out = nullptr;
  if (lw->convertTo(out, false) != Acad::eOk || !out) return nullptr;
  out->setPropertiesFrom(source);
  return out;
}

// Adds the entity to the block that owns the source; its id, or null (the
// entity is then deleted).
AcDbObjectId appendBeside(const AcDbEntity* source, AcDbEntity* made) {
  AcDbObjectPointer<AcDbBlockTableRecord> owner(source->ownerId(), AcDb::kForWrite);
  AcDbObjectId id;
  if (owner.openStatus() != Acad::eOk || owner->appendAcDbEntity(id, made) != Acad::eOk) {
    delete made;
    return AcDbObjectId::kNull;
  }
  made->close();
  return id;
}

}  // namespace

AcDbObjectId curveTo2dPoly(AcDbObjectId id, bool keep) {
  AcDbObjectPointer<AcDbCurve> c(id, keep ? AcDb::kForRead : AcDb::kForWrite);
  if (c.openStatus() != Acad::eOk) return AcDbObjectId::kNull;
  if (AcDb2dPolyline::cast(c.object())) return id;
  AcDb2dPolyline* made = make2dPoly(c.object());
  if (!made) return AcDbObjectId::kNull;
  AcDbObjectId out = appendBeside(c.object(), made);
  if (out.isNull()) return out;
  // Extended data names registered applications: it goes on once the
  // polyline is in the drawing.
  if (resbuf* xd = c->xData()) {
    AcDbObjectPointer<AcDb2dPolyline> p(out, AcDb::kForWrite);
    if (p.openStatus() == Acad::eOk) p->setXData(xd);
    acutRelRb(xd);
  }
  if (!keep) c->erase();
  return out;
}

namespace {

int retSet(const std::vector<AcDbObjectId>& ids) {
  ads_name ss;
  if (ids.empty() || acedSSAdd(nullptr, nullptr, ss) != RTNORM) return retNil();
  for (AcDbObjectId id : ids) {
    ads_name e;
    if (acdbGetAdsName(e, id) == Acad::eOk) acedSSAdd(e, ss, ss);
  }
  acedRetName(ss, RTPICKS);
  return RSRSLT;
}

}  // namespace

int lispPolyTo2dPoly() {
  Args a(kStyles);
  const int form = a.peek() ? a.peek()->restype : RTNONE;
  std::vector<AcDbObjectId> ids;
  if (!a.entities(ids)) return RTERROR;
  bool keep = a.more() && a.flag();
  if (!a.end()) return RTERROR;
  std::vector<AcDbObjectId> made;
  for (const AcDbObjectId& id : ids) {
    AcDbObjectId m = curveTo2dPoly(id, keep);
    if (!m.isNull()) made.push_back(m);
  }
  if (form == RTENAME) {
    if (made.empty()) return retNil();
    ads_name e;
    if (acdbGetAdsName(e, made[0]) != Acad::eOk) return retNil();
    acedRetName(e, RTENAME);
    return RSRSLT;
  }
  if (form == RTPICKS) return retSet(made);
  if (made.empty()) return retNil();
  return frame::retList(RbFromObjectIds(made));
}

}  // namespace zepk::geometry
