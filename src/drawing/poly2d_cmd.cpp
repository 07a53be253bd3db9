// 2dPl: polylines made old-style 2D polylines of a chosen type.
#include "drawing/poly2d_cmd.h"

#include <string>
#include <vector>

#include "geometry/poly2d_lisp.h"
#include "host/aced.h"
#include "host/dbapserv.h"
#include "host/dbents.h"
#include "host/dbmain.h"
#include "host/dbpl.h"

namespace zepk::drawing {

namespace {

// The type a keyword names; the keywords are those of the prompt.
AcDb::Poly2dType typeOf(const std::u16string& k) {
  if (k == u"Simple") return AcDb::k2dSimplePoly;
  if (k == u"Fit") return AcDb::k2dFitCurvePoly;
  if (k == u"Quadratic") return AcDb::k2dQuadSplinePoly;
  return AcDb::k2dCubicSplinePoly;
}

}  // namespace

void cmd2dPl() {
  resbuf filter;
  filter.restype = 0;
  filter.resval.rstring = const_cast<ACHAR*>(u"LWPOLYLINE,POLYLINE");
  filter.rbnext = nullptr;
  ads_name ss;
  acutPrintf(u"\n选择多段线:");
  if (acedSSGet(nullptr, nullptr, nullptr, &filter, ss) != RTNORM) return;
  acedInitGet(0, u"Simple Fit Quadratic Cubic");
  ACHAR kw[32] = {0};
  int rc = acedGetKword(u"\n多段线类型 [Simple/Fit/Quadratic/Cubic] <Cubic>: ", kw, 32);
  if (rc != RTNORM && rc != RTNONE) {
    acedSSFree(ss);
    return;
  }
  const AcDb::Poly2dType type = typeOf(rc == RTNORM ? std::u16string(kw) : std::u16string(u"Cubic"));
  int32_t n = 0;
  acedSSLength(ss, &n);
  int done = 0;
  for (int32_t i = 0; i < n; ++i) {
    ads_name e;
    AcDbObjectId id;
    if (acedSSName(ss, i, e) != RTNORM || acdbGetObjectId(id, e) != Acad::eOk) continue;
    {
      // A 3D polyline or a mesh is no 2D polyline and is passed over.
      AcDbObjectPointer<AcDbEntity> ent(id, AcDb::kForRead);
      if (ent.openStatus() != Acad::eOk) continue;
      if (!AcDbPolyline::cast(ent.object()) && !AcDb2dPolyline::cast(ent.object())) continue;
    }
    AcDbObjectId two = geometry::curveTo2dPoly(id, false);
    AcDbObjectPointer<AcDb2dPolyline> p(two, AcDb::kForWrite);
    if (p.openStatus() == Acad::eOk && p->convertToPolyType(type) == Acad::eOk) ++done;
  }
  acedSSFree(ss);
  acutPrintf(u"\n转换 %d 条多段线.", done);
}

}  // namespace zepk::drawing
