// Hatch loops for LISP and the hatch commands: loops read as vertices,
// closed curves added as loops, loops made polylines.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "drawing/create.h"
#include "drawing/hatchloops.h"
#include "drawing/lisp.h"
#include "drawing/lisp_common.h"
#include "geometry/curves.h"
#include "host/aced.h"
#include "host/dbpl.h"
#include "host/dbsymtb.h"

namespace zepk::drawing {

namespace {

constexpr Styles kLineEnd{MsgStyle::LineEnd, MsgStyle::LineEnd};

bool openHatch(AcDbObjectId id, AcDbObjectPointer<AcDbHatch>& h, AcDb::OpenMode mode) {
  h.open(id, mode);
  if (h.openStatus() == Acad::eOk) return true;
  frame::fail(frame::kObjOpenError);
  return false;
}

// Makes the hatch's loops as closed polylines beside it, with its
// properties; the names made.
std::vector<AcDbObjectId> loopsAsPolylines(const AcDbHatch& h, int only = -1) {
  std::vector<AcDbObjectId> made;
  std::vector<PolylineData> loops = hatchLoops(h);
  for (size_t i = 0; i < loops.size(); ++i) {
    if (only >= 0 && static_cast<int>(i) != only) continue;
    AcDbPolyline* pl = newLwPolyline(loops[i]);
    pl->setNormal(h.normal());
    pl->setPropertiesFrom(&h);
    AcDbObjectId id;
    if (appendToOwner(pl, h.ownerId(), id) == Acad::eOk) made.push_back(id);
  }
  return made;
}

}  // namespace

// Each loop as a list of vertices (x y bulge), the bulge that of the part
// that starts at the vertex.
int lispHatchGetLoop() {
  Args a(kLineEnd);
  AcDbObjectId id;
  if (!a.objectId(id) || !a.end()) return RTERROR;
  AcDbObjectPointer<AcDbHatch> h;
  if (!openHatch(id, h, AcDb::kForRead)) return RTERROR;
  std::vector<PolylineData> loops = hatchLoops(*h.object());
  if (loops.empty()) return retNil();
  // One list of loops, also when there is only one.
  frame::RbBuilder out;
  out.add(acutBuildList(RTLB, RTNONE));
  for (const PolylineData& d : loops) {
    out.add(acutBuildList(RTLB, RTNONE));
    for (size_t k = 0; k < d.points.size(); ++k) {
      out.add(acutBuildList(RTLB, RTREAL, d.points[k].x, RTREAL, d.points[k].y, RTREAL,
                            k < d.bulges.size() ? d.bulges[k] : 0.0, RTLE, RTNONE));
    }
    out.add(acutBuildList(RTLE, RTNONE));
  }
  out.add(acutBuildList(RTLE, RTNONE));
  return frame::retList(out.release());
}

// Closed curves (or one list of points) added to the hatch as outer loops.
int lispHatchAppendLoop() {
  Args a(kLineEnd);
  AcDbObjectId id;
  if (!a.objectId(id)) return RTERROR;
  std::vector<std::vector<AcGePoint2d>> rings;
  std::vector<std::vector<double>> bulges;
  const resbuf* next = a.peek();
  if (next && next->restype == RTLB && next->rbnext && next->rbnext->restype != RTENAME) {
    // A list of points rather than of entity names.
    std::vector<AcGePoint3d> pts;
    if (!a.points(pts)) return RTERROR;
    {
      rings.emplace_back();
      for (const AcGePoint3d& p : pts) rings.back().emplace_back(p.x, p.y);
      bulges.emplace_back(pts.size(), 0.0);
    }
  }
  if (rings.empty()) {
    std::vector<AcDbObjectId> curves;
    if (!a.entities(curves)) return RTERROR;
    for (AcDbObjectId cid : curves) {
      AcDbObjectPointer<AcDbCurve> c(cid, AcDb::kForRead);
      if (c.openStatus() != Acad::eOk || !c->isClosed()) return frame::failBadArg(MsgStyle::LineEnd, 2), RTERROR;
      std::unique_ptr<AcDbPolyline> pl(geometry::curveToLwPoly(c.object()));
      if (!pl) return frame::failBadArg(MsgStyle::LineEnd, 2), RTERROR;
      rings.emplace_back();
      bulges.emplace_back();
      for (unsigned k = 0; k < pl->numVerts(); ++k) {
        AcGePoint2d p;
        double b = 0;
        pl->getPointAt(k, p);
        pl->getBulgeAt(k, b);
        rings.back().push_back(p);
        bulges.back().push_back(b);
      }
    }
  }
  if (!a.end()) return RTERROR;
  AcDbObjectPointer<AcDbHatch> h;
  if (!openHatch(id, h, AcDb::kForWrite)) return RTERROR;
  for (size_t i = 0; i < rings.size(); ++i) {
    bool arcs = false;
    for (double b : bulges[i]) arcs = arcs || b != 0.0;
    // Two vertices close a loop only with arcs between them (a circle).
    if (rings[i].size() < (arcs ? 2u : 3u)) return frame::failBadArg(MsgStyle::LineEnd, 2), RTERROR;
    AcGePoint2dArray pts(rings[i].begin(), rings[i].end());
    AcGeDoubleArray b(bulges[i].begin(), bulges[i].end());
    if (h->appendLoop(AcDbHatch::kExternal | AcDbHatch::kPolyline, pts, b) != Acad::eOk) return retNil();
  }
  return retT();
}

// The boundary of each selected hatch made polylines.
void cmdHatchBoundary() {
  resbuf filter;
  filter.restype = 0;
  filter.resval.rstring = const_cast<ACHAR*>(u"HATCH");
  filter.rbnext = nullptr;
  ads_name ss;
  acutPrintf(u"\n选择填充对象:");
  if (acedSSGet(nullptr, nullptr, nullptr, &filter, ss) != RTNORM) return;
  int32_t n = 0;
  acedSSLength(ss, &n);
  size_t made = 0;
  for (int32_t i = 0; i < n; ++i) {
    ads_name e;
    AcDbObjectId id;
    if (acedSSName(ss, i, e) != RTNORM || acdbGetObjectId(id, e) != Acad::eOk) continue;
    AcDbObjectPointer<AcDbHatch> h(id, AcDb::kForRead);
    if (h.openStatus() == Acad::eOk) made += loopsAsPolylines(*h.object()).size();
  }
  acedSSFree(ss);
  acutPrintf(u"\n生成边界 %d 个.", static_cast<int>(made));
}

// One hatch's loops, all or one by number, made polylines.
void cmdHatchLoop() {
  ads_name e;
  ads_point p;
  AcDbObjectId id;
  if (acedEntSel(u"\n选择填充: ", e, p) != RTNORM || acdbGetObjectId(id, e) != Acad::eOk) return;
  AcDbObjectPointer<AcDbHatch> h(id, AcDb::kForRead);
  if (h.openStatus() != Acad::eOk) {
    acutPrintf(u"\n所选对象不是填充.");
    return;
  }
  int count = h->numLoops();
  acutPrintf(u"\n填充有 %d 个环.", count);
  acedInitGet(RSG_NOZERO | RSG_NONEG, u"All");
  int which = 0;
  int rc = acedGetInt(u"\n环号 [All] <All>: ", &which);
  if (rc == RTCAN || rc == RTERROR) return;
  int only = rc == RTNORM ? which - 1 : -1;
  if (only >= count) {
    acutPrintf(u"\n没有第 %d 个环.", which);
    return;
  }
  acutPrintf(u"\n生成 %d 个多段线.", static_cast<int>(loopsAsPolylines(*h.object(), only).size()));
}

}  // namespace zepk::drawing
