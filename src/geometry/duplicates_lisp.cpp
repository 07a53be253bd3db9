// Duplicate removal for LISP: repeated vertices of polylines of every kind,
// and curves that repeat one another in a selection.
#include <memory>
#include <vector>

#include "frame/lisp_bridge.h"
#include "geometry/curves.h"
#include "geometry/kernel.h"
#include "geometry/lisp.h"
#include "geometry/lisp_args.h"
#include "host/dbelipse.h"
#include "host/dbents.h"
#include "host/dbpl.h"
#include "host/dbspline.h"

namespace zepk::geometry {

using namespace lispargs;

namespace {

constexpr Styles kBangStyle{MsgStyle::Bang, MsgStyle::Bang};
constexpr double kDefaultTolerance = 1e-5;

Point plain(const AcGePoint3d& p) { return {p.x, p.y, p.z}; }

// The vertex entities of an old-style polyline with their ids, in order
// (erased ones are passed over by the iterator).
template <class Vertex, class Poly>
bool vertexIds(const Poly* poly, std::vector<AcDbObjectId>& ids) {
  std::unique_ptr<AcDbObjectIterator> it(poly->vertexIterator());
  if (!it) return false;
  for (; !it->done(); it->step()) {
    if (it->objectId().isNull()) return false;  // not in a drawing
    ids.push_back(it->objectId());
  }
  return true;
}

// Erases the vertices that did not stay, and gives those that did the bulge
// the dumping left them (2D only).
template <class Vertex>
void applyDump(const std::vector<AcDbObjectId>& ids, const DumpedVertices& d, bool bulges) {
  std::vector<bool> kept(ids.size(), false);
  for (size_t k = 0; k < d.source.size(); ++k) {
    kept[d.source[k]] = true;
    if (!bulges) continue;
    AcDbObjectPointer<AcDb2dVertex> v(ids[d.source[k]], AcDb::kForWrite);
    if (v.openStatus() == Acad::eOk && v->bulge() != d.verts[k].bulge) v->setBulge(d.verts[k].bulge);
  }
  for (size_t i = 0; i < ids.size(); ++i) {
    if (kept[i]) continue;
    AcDbObjectPointer<Vertex> v(ids[i], AcDb::kForWrite);
    if (v.openStatus() == Acad::eOk) v->erase();
  }
}

// Dumps the vertices of one polyline of any kind; false when the entity is
// none. A fitted old-style polyline is left as it is: its vertices are
// made by the fitting.
bool dumpPolyline(const AcDbObjectId& id, double tol, bool collinear) {
  AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForWrite);
  if (e.openStatus() != Acad::eOk) return false;
  if (auto* pl = AcDbPolyline::cast(e.object())) {
    const LwPoly before = toLwPoly(*pl);
    const LwPoly after = dumpPoints(before, tol, collinear);
    // Bulges change only where a vertex goes.
    if (after.verts.size() != before.verts.size())
      assignLwPoly(*pl, after);
    return true;
  }
  if (auto* p2 = AcDb2dPolyline::cast(e.object())) {
    if (p2->polyType() != AcDb::k2dSimplePoly) return true;
    std::vector<AcDbObjectId> ids;
    if (!vertexIds<AcDb2dVertex>(p2, ids)) return true;
    std::vector<PolyVertex> verts;
    for (const AcDbObjectId& vid : ids) {
      AcDbObjectPointer<AcDb2dVertex> v(vid, AcDb::kForRead);
      if (v.openStatus() != Acad::eOk) return true;
      verts.push_back({plain(v->position()), v->bulge(), v->startWidth(), v->endWidth()});
    }
    applyDump<AcDb2dVertex>(ids, dumpVertices(verts, p2->isClosed(), tol, collinear), true);
    return true;
  }
  if (auto* p3 = AcDb3dPolyline::cast(e.object())) {
    if (p3->polyType() != AcDb::k3dSimplePoly) return true;
    std::vector<AcDbObjectId> ids;
    if (!vertexIds<AcDb3dPolylineVertex>(p3, ids)) return true;
    std::vector<PolyVertex> verts;
    for (const AcDbObjectId& vid : ids) {
      AcDbObjectPointer<AcDb3dPolylineVertex> v(vid, AcDb::kForRead);
      if (v.openStatus() != Acad::eOk) return true;
      verts.push_back({plain(v->position())});
    }
    applyDump<AcDb3dPolylineVertex>(ids, dumpVertices(verts, p3->isClosed(), tol, collinear), false);
    return true;
  }
  return false;
}


// The kinds of curve the duplicate test tells apart; others are not compared.
enum CurveKind { kNoKind = 0, kLine, kArc, kCircle, kEllipse, kSpline, kLwPolyline, k2dPolyline, k3dPolyline };

// Points at equal steps of the parameter: what a smooth curve is compared
// by. Run the other way a curve gives the same points backwards.
constexpr int kShapeSteps = 8;

// The curve as the duplicate test sees it; kind kNoKind for a curve that is
// not compared.
CurveShape shapeOf(const AcDbCurve* c) {
  CurveShape s;
  double endParam = 0;
  if (c->getEndParam(endParam) != Acad::eOk || c->getDistAtParam(endParam, s.length) != Acad::eOk) return s;
  auto add = [&](const AcGePoint3d& p, double bulge = 0.0) { s.verts.push_back({plain(p), bulge}); };
  if (auto* ln = AcDbLine::cast(c)) {
    s.kind = kLine;
    add(ln->startPoint());
    add(ln->endPoint());
    return s;
  }
  if (auto* pl = AcDbPolyline::cast(c)) {
    s.kind = kLwPolyline;
    s.closed = pl->isClosed();
    // Bulges turn about the normal: seen from above, a polyline whose
    // normal points down turns the other way.
    const double sense = pl->normal().z < 0 ? -1.0 : 1.0;
    for (unsigned i = 0; i < pl->numVerts(); ++i) {
      AcGePoint3d p;
      double b = 0;
      pl->getPointAt(i, p);
      pl->getBulgeAt(i, b);
      add(p, sense * b);
    }
    return s;
  }
  if (auto* p2 = AcDb2dPolyline::cast(c)) {
    AcGePoint3dArray pts;
    AcGeDoubleArray bulges;
    if (p2->getCurveVertices(pts, bulges) != Acad::eOk) return s;
    s.kind = k2dPolyline;
    s.closed = p2->isClosed();
    const double sense = p2->normal().z < 0 ? -1.0 : 1.0;
    for (size_t i = 0; i < pts.size(); ++i) add(pts[i], i < bulges.size() ? sense * bulges[i] : 0.0);
    return s;
  }
  if (auto* p3 = AcDb3dPolyline::cast(c)) {
    AcGePoint3dArray pts;
    if (p3->getCurveVertices(pts) != Acad::eOk) return s;
    s.kind = k3dPolyline;
    s.closed = p3->isClosed();
    for (const AcGePoint3d& p : pts) add(p);
    return s;
  }
  if (AcDbArc::cast(c)) s.kind = kArc;
  else if (AcDbCircle::cast(c)) s.kind = kCircle;
  else if (AcDbEllipse::cast(c)) s.kind = kEllipse;
  else if (AcDbSpline::cast(c)) s.kind = kSpline;
  else return s;
  double startParam = 0;
  c->getStartParam(startParam);
  for (int k = 0; k <= kShapeSteps; ++k) {
    AcGePoint3d p;
    if (c->getPointAtParam(startParam + (endParam - startParam) * k / kShapeSteps, p) != Acad::eOk) {
      s.kind = kNoKind;
      return s;
    }
    add(p);
  }
  return s;
}

// The entity properties the caller asked to be the same.
struct Looks {
  AcDbObjectId layer, linetype;
  AcCmColor color;
};

}  // namespace

// (pl-or-ss [tolerance] [collinear]): repeated vertices removed, and with
// the flag the vertices inside straight runs. T.
int lispPolyDumpPoint() {
  Args a(kBangStyle);
  const bool single = a.type() == RTENAME;
  std::vector<AcDbObjectId> ids;
  if (!a.entities(ids)) return RTERROR;
  double tol = kDefaultTolerance;
  if (a.more() && !a.real(tol)) return RTERROR;
  const bool collinear = a.more() && a.flag();
  if (!a.end()) return RTERROR;
  for (const AcDbObjectId& id : ids) {
    if (!dumpPolyline(id, tol, collinear) && single) return frame::failBadArg(MsgStyle::Bang, 1);
  }
  acedRetT();
  return RSRSLT;
}

// (ss [tolerance [point-tolerance]] [same-layer] [same-linetype]
// [same-colour]): each curve that repeats one before it is erased; a
// selection of the curves that remain. The point tolerance is the
// tolerance cut to 0.0001 unless it is given.
int lispCurveDumpLine() {
  constexpr MsgStyle st = MsgStyle::Plain;
  resbuf* cur = acedGetArgs();
  if (!cur) return frame::failTooFew(st);
  std::vector<AcDbObjectId> ids;
  if (cur->restype == RTPICKS) {
    int32_t len = 0;
    acedSSLength(cur->resval.rlname, &len);
    for (int32_t i = 0; i < len; ++i) {
      ads_name e;
      AcDbObjectId id;
      if (acedSSName(cur->resval.rlname, i, e) == RTNORM && acdbGetObjectId(id, e) == Acad::eOk) ids.push_back(id);
    }
    cur = cur->rbnext;
  } else {
    AcDbObjectId id;
    if (RbGetObjectId(&cur, id) != RTNORM) return frame::failBadArg(st);
    ids.push_back(id);
  }
  double tol = kDefaultTolerance;
  double pointTol = -1;
  auto number = [&](double& v) {
    if (cur->restype == RTREAL) v = cur->resval.rreal;
    else v = cur->resval.rint;
    cur = cur->rbnext;
  };
  if (cur && (cur->restype == RTREAL || cur->restype == RTSHORT)) number(tol);
  if (cur && (cur->restype == RTREAL || cur->restype == RTSHORT)) number(pointTol);
  bool check[3] = {false, false, false};
  for (bool& c : check) {
    if (!cur) break;
    c = cur->restype != RTNIL;
    cur = cur->rbnext;
  }
  if (cur) return frame::failTooMany(st);
  if (tol < 0 || (pointTol != -1 && pointTol < 0)) return frame::failBadArg(st);
  if (pointTol < 0) pointTol = tol > 1e-4 ? 1e-4 : tol;

  struct Item {
    AcDbObjectId id;
    CurveShape shape;
    Looks looks;
    bool gone = false;
  };
  std::vector<Item> items;
  for (const AcDbObjectId& id : ids) {
    AcDbObjectPointer<AcDbCurve> c(id, AcDb::kForRead);
    if (c.openStatus() != Acad::eOk) continue;
    items.push_back({id, shapeOf(c.object()), {c->layerId(), c->linetypeId(), c->color()}});
  }
  for (size_t i = 0; i < items.size(); ++i) {
    if (items[i].gone || items[i].shape.kind == kNoKind) continue;
    for (size_t j = i + 1; j < items.size(); ++j) {
      Item& later = items[j];
      if (later.gone || (check[0] && later.looks.layer != items[i].looks.layer) ||
          (check[1] && later.looks.linetype != items[i].looks.linetype) ||
          (check[2] && !(later.looks.color == items[i].looks.color)) ||
          !sameCurve(items[i].shape, later.shape, tol, pointTol))
        continue;
      AcDbObjectPointer<AcDbCurve> c(later.id, AcDb::kForWrite);
      if (c.openStatus() == Acad::eOk && c->erase() == Acad::eOk) later.gone = true;
    }
  }
  ads_name ss;
  bool any = false;
  for (const Item& it : items) {
    ads_name e;
    if (it.gone || acdbGetAdsName(e, it.id) != Acad::eOk) continue;
    if (!any && acedSSAdd(nullptr, nullptr, ss) != RTNORM) return retNil();
    any = true;
    acedSSAdd(e, ss, ss);
  }
  if (!any) return retNil();
  acedRetName(ss, RTPICKS);
  return RSRSLT;
}

}  // namespace zepk::geometry
