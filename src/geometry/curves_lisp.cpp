// Curves for LISP: the host's queries on a curve one to one, lengths,
// middles, samples, areas, turning sense, the polyline model of a curve, and
// curves made from curves (polylines, splines, projections, regions).
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "frame/lisp_bridge.h"
#include "geometry/curves.h"
#include "geometry/kernel.h"
#include "geometry/lisp.h"
#include "geometry/lisp_args.h"
#include "host/dbents.h"
#include "host/dbhatch.h"
#include "host/dbpl.h"
#include "host/dbregion.h"
#include "host/dbspline.h"
#include "host/dbsymtb.h"
#include "host/geplane.h"

namespace zepk::geometry {

using namespace lispargs;

namespace {

constexpr Styles kCurveGet{MsgStyle::LineEnd, MsgStyle::LineEnd};
constexpr Styles kPlain{MsgStyle::Plain, MsgStyle::Plain};
constexpr Styles kColon{MsgStyle::Colon, MsgStyle::Colon};
constexpr Styles kBang{MsgStyle::Bang, MsgStyle::Bang};

Point plain(const AcGePoint3d& p) { return {p.x, p.y, p.z}; }
AcGePoint3d ge(const Point& p) { return AcGePoint3d(p.x, p.y, p.z); }

std::vector<Point> plain(const std::vector<AcGePoint3d>& pts) {
  std::vector<Point> out;
  out.reserve(pts.size());
  for (const AcGePoint3d& p : pts) out.push_back(plain(p));
  return out;
}

// Reads the curve argument and opens it for read; false after printing
// (a bad name as a bad first argument, an object that cannot be opened or
// is no curve as the style's object text).
bool readCurve(Args& a, Styles s, AcDbObjectPointer<AcDbCurve>& curve, AcDb::OpenMode mode = AcDb::kForRead) {
  AcDbObjectId id;
  if (!a.objectId(id)) return false;
  curve.open(id, mode);
  if (curve.openStatus() != Acad::eOk) {
    frame::fail(s.count == MsgStyle::LineEnd ? frame::kObjOpenError : frame::badArgText(s.position, 1).c_str());
    return false;
  }
  return true;
}

// Appends an entity to the block that owns the source (the source's space),
// with the source's properties; the entity's id, or null (the entity is
// then deleted).
AcDbObjectId appendBeside(const AcDbEntity* source, AcDbEntity* made) {
  made->setPropertiesFrom(source);
  AcDbObjectPointer<AcDbBlockTableRecord> owner(source->ownerId(), AcDb::kForWrite);
  AcDbObjectId id;
  if (owner.openStatus() != Acad::eOk || owner->appendAcDbEntity(id, made) != Acad::eOk) {
    delete made;
    return AcDbObjectId::kNull;
  }
  made->close();
  return id;
}

int retIds(const std::vector<AcDbObjectId>& ids) {
  if (ids.empty()) return retNil();
  return frame::retList(RbFromObjectIds(ids));
}

// The one-to-one queries: the curve, then a parameter, a distance or a
// point as the query needs; nil when the host refuses.
template <class Q>
int curveQuery(Q q) {
  Args a(kCurveGet);
  AcDbObjectPointer<AcDbCurve> c;
  if (!readCurve(a, kCurveGet, c)) return RTERROR;
  return q(a, *c.object());
}

template <class Get>
int noArg(Get get) {
  return curveQuery([&](Args& a, const AcDbCurve& c) -> int {
    if (!a.end()) return RTERROR;
    return get(c);
  });
}

template <class Get>
int realArg(Get get) {
  return curveQuery([&](Args& a, const AcDbCurve& c) -> int {
    double v = 0;
    if (!a.real(v) || !a.end()) return RTERROR;
    return get(c, v);
  });
}

template <class Get>
int pointArg(Get get) {
  return curveQuery([&](Args& a, const AcDbCurve& c) -> int {
    AcGePoint3d p;
    if (!a.point(p) || !a.end()) return RTERROR;
    return get(c, p);
  });
}

int okPoint(Acad::ErrorStatus es, const AcGePoint3d& p) { return es == Acad::eOk ? retPoint(p) : retNil(); }
int okReal(Acad::ErrorStatus es, const double& v) { return es == Acad::eOk ? retReal(v) : retNil(); }
int okVec(Acad::ErrorStatus es, const AcGeVector3d& v) { return es == Acad::eOk ? retVec(v) : retNil(); }

double curveLength(const AcDbCurve& c, bool* ok) {
  double end = 0, len = 0;
  *ok = c.getEndParam(end) == Acad::eOk && c.getDistAtParam(end, len) == Acad::eOk;
  return len;
}

}  // namespace

int lispCurveGetStartParam() {
  return noArg([](const AcDbCurve& c) -> int { double v = 0; return okReal(c.getStartParam(v), v); });
}
int lispCurveGetEndParam() {
  return noArg([](const AcDbCurve& c) -> int { double v = 0; return okReal(c.getEndParam(v), v); });
}
int lispCurveGetStartPoint() {
  return noArg([](const AcDbCurve& c) -> int { AcGePoint3d p; return okPoint(c.getStartPoint(p), p); });
}
int lispCurveGetEndPoint() {
  return noArg([](const AcDbCurve& c) -> int { AcGePoint3d p; return okPoint(c.getEndPoint(p), p); });
}
int lispCurveIsClosed() { return noArg([](const AcDbCurve& c) -> int { return retBool(c.isClosed()); }); }
int lispCurveIsPeriodic() { return noArg([](const AcDbCurve& c) -> int { return retBool(c.isPeriodic()); }); }
int lispCurveGetDistAtParam() {
  return realArg([](const AcDbCurve& c, double t) -> int { double v = 0; return okReal(c.getDistAtParam(t, v), v); });
}
int lispCurveGetParamAtDist() {
  return realArg([](const AcDbCurve& c, double d) -> int { double v = 0; return okReal(c.getParamAtDist(d, v), v); });
}
int lispCurveGetPointAtParam() {
  return realArg([](const AcDbCurve& c, double t) -> int { AcGePoint3d p; return okPoint(c.getPointAtParam(t, p), p); });
}
int lispCurveGetPointAtDist() {
  return realArg([](const AcDbCurve& c, double d) -> int { AcGePoint3d p; return okPoint(c.getPointAtDist(d, p), p); });
}
int lispCurveGetDistAtPoint() {
  return pointArg([](const AcDbCurve& c, const AcGePoint3d& p) -> int { double v = 0; return okReal(c.getDistAtPoint(p, v), v); });
}
int lispCurveGetParamAtPoint() {
  return pointArg([](const AcDbCurve& c, const AcGePoint3d& p) -> int { double v = 0; return okReal(c.getParamAtPoint(p, v), v); });
}

namespace {

// A derivative at a parameter or at a point.
int derivative(bool second) {
  return curveQuery([&](Args& a, const AcDbCurve& c) -> int {
    AcGeVector3d v;
    Acad::ErrorStatus es;
    if (a.nextIsPoint()) {
      AcGePoint3d p;
      a.point(p);
      es = second ? c.getSecondDeriv(p, v) : c.getFirstDeriv(p, v);
    } else {
      double t = 0;
      if (!a.real(t)) return RTERROR;
      es = second ? c.getSecondDeriv(t, v) : c.getFirstDeriv(t, v);
    }
    if (!a.end()) return RTERROR;
    return okVec(es, v);
  });
}

}  // namespace

int lispCurveGetFirstDeriv() { return derivative(false); }
int lispCurveGetSecondDeriv() { return derivative(true); }

int lispCurveLength() {
  return noArg([](const AcDbCurve& c) -> int {
    bool ok = false;
    double len = curveLength(c, &ok);
    return ok ? retReal(len) : retNil();
  });
}

// The point half way along the curve.
int lispCurveMidPoint() {
  return noArg([](const AcDbCurve& c) -> int {
    bool ok = false;
    double len = curveLength(c, &ok);
    AcGePoint3d p;
    if (!ok) return retNil();
    return okPoint(c.getPointAtDist(len / 2, p), p);
  });
}

// (e pt [extend]): the curve's point nearest pt.
int lispCurveGetClosestPointTo() {
  return curveQuery([](Args& a, const AcDbCurve& c) -> int {
    AcGePoint3d p, on;
    if (!a.point(p)) return RTERROR;
    bool extend = a.more() && a.flag();
    if (!a.end()) return RTERROR;
    return okPoint(c.getClosestPointTo(p, on, extend), on);
  });
}

// (e pt): the distance from the point to the curve.
int lispCurveDistanceTo() {
  return pointArg([](const AcDbCurve& c, const AcGePoint3d& p) -> int {
    AcGePoint3d on;
    if (c.getClosestPointTo(p, on) != Acad::eOk) return retNil();
    return retReal(p.distanceTo(on));
  });
}

int lispCurveReverse() {
  Args a(kColon);
  AcDbObjectPointer<AcDbCurve> c;
  if (!readCurve(a, kColon, c, AcDb::kForWrite) || !a.end()) return RTERROR;
  if (reverseCurve(c.object()) != Acad::eOk) return retNil();
  acedRetT();
  return RSRSLT;
}

// (e [tolerance-or-count] [keep-closing-point]): points along the curve.
int lispCurveGetSamplet() {
  Args a(kPlain);
  AcDbObjectPointer<AcDbCurve> c;
  if (!readCurve(a, kPlain, c)) return RTERROR;
  double tol = 0.1;
  int32_t count = 0;
  if (a.more()) {
    if (a.type() == RTSHORT || a.type() == RTLONG) {
      if (!a.integer(count)) return RTERROR;
    } else if (!a.real(tol)) {
      return RTERROR;
    }
  }
  bool keepClosing = a.more() && a.flag();
  if (!a.end()) return RTERROR;
  std::vector<AcGePoint3d> pts = count > 0 ? sampleCurveByCount(c.object(), count, !keepClosing)
                                           : sampleCurve(c.object(), tol, !keepClosing);
  return retPoints(pts);
}

// (e n): n points at equal distances; nil without a word for n under 2 or
// a curve that cannot be opened.
int lispCurveGetUniformPoints() {
  resbuf* cur = acedGetArgs();
  AcDbObjectId id;
  int32_t n = 0;
  if (!cur) return frame::failTooFew(MsgStyle::Plain);
  if (RbGetObjectId(&cur, id) != RTNORM) return frame::failBadArg(MsgStyle::Plain, 1);
  if (!cur) return frame::failTooFew(MsgStyle::Plain);
  if (RbGetLong(&cur, n) != RTNORM) return frame::failBadArg(MsgStyle::Plain, 2);
  if (cur) return frame::failTooMany(MsgStyle::Plain);
  AcDbObjectPointer<AcDbCurve> c(id, AcDb::kForRead);
  if (n < 2 || c.openStatus() != Acad::eOk) return retNil();
  bool ok = false;
  double len = curveLength(*c.object(), &ok);
  if (!ok) return retNil();
  std::vector<AcGePoint3d> pts;
  for (int i = c->isClosed() ? 0 : 1; i < n; ++i) {
    AcGePoint3d p;
    if (c->getPointAtDist(i * len / n, p) == Acad::eOk) pts.push_back(p);
  }
  return retPoints(pts);
}

// (e [segments-per-arc]): ((points) (bulges)).
int lispPolyGetData() {
  Args a(kPlain);
  AcDbObjectId id;
  if (!a.objectId(id)) return RTERROR;
  int32_t k = 1;
  if (a.more() && !a.integer(k)) return RTERROR;
  if (!a.end()) return RTERROR;
  AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForRead);
  if (e.openStatus() != Acad::eOk) return frame::failBadArg(MsgStyle::Plain, 1);
  const AcDbCurve* c = AcDbCurve::cast(e.object());
  PolyPoints pp;
  if (!c || !curvePolyPoints(c, k, pp)) return frame::fail(u"\n参数1对象类型错误!");
  frame::RbBuilder b;
  b.add(acutNewRb(RTLB));
  std::vector<AcGePoint3d> pts;
  for (const Point& p : pp.points) pts.push_back(ge(p));
  b.add(RbFromPoints3d(pts));
  b.add(acutNewRb(RTLE));
  b.add(acutNewRb(RTLB));
  b.add(RbFromReals(pp.bulges.data(), static_cast<int>(pp.bulges.size())));
  b.add(acutNewRb(RTLE));
  return frame::retList(b.release());
}

// Three points, a curve, or a list of points: T when they turn clockwise.
int lispClockWiseP() {
  resbuf* cur = acedGetArgs();
  if (!cur) return frame::failTooFew(MsgStyle::Plain);
  if (cur->restype == RTENAME) {
    AcDbObjectId id;
    if (RbGetObjectId(&cur, id) != RTNORM) return frame::fail(u"无效对象");
    if (cur) return frame::failTooMany(MsgStyle::Plain);
    AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForRead);
    if (e.openStatus() != Acad::eOk) return frame::fail(u"对象打开错误");
    const AcDbCurve* c = AcDbCurve::cast(e.object());
    if (!c) return frame::fail(u"对象非曲线!");
    AcDbExtents ext;
    if (c->getGeomExtents(ext) != Acad::eOk) return retNil();
    AcGeVector3d d = ext.maxPoint() - ext.minPoint();
    double tol = std::max(d.x, d.y) / 50.0;
    return retBool(isClockwise(plain(sampleCurve(c, tol > 0 ? tol : 0.1, true))));
  }
  if (cur->restype == RTLB) {
    std::vector<AcGePoint3d> ring;
    if (!readPointList(cur, ring)) return frame::failBadArg(MsgStyle::Plain);
    if (cur) return frame::failTooMany(MsgStyle::Plain);
    return retBool(isClockwise(plain(ring)));
  }
  Args a(kPlain);
  AcGePoint3d q[3];
  for (AcGePoint3d& x : q)
    if (!a.point(x)) return RTERROR;
  if (!a.end()) return RTERROR;
  return retBool(isClockwise3(plain(q[0]), plain(q[1]), plain(q[2])));
}

// A list of points (signed area), or one entity: a curve's area, a
// region's or a hatch's.
int lispGetArea() {
  resbuf* cur = acedGetArgs();
  if (!cur) return frame::failTooFew(MsgStyle::LineEnd);
  if (cur->restype == RTLB) {
    std::vector<AcGePoint3d> ring;
    if (!readPointList(cur, ring)) return frame::failBadArg(MsgStyle::LineEnd);
    if (cur) return frame::failTooMany(MsgStyle::LineEnd);
    return retReal(signedArea(plain(ring)));
  }
  AcDbObjectId id;
  if (RbGetObjectId(&cur, id) != RTNORM) return frame::failBadArg(MsgStyle::LineEnd);
  if (cur) return frame::failTooMany(MsgStyle::LineEnd);
  AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForRead);
  if (e.openStatus() != Acad::eOk) return frame::fail(frame::kObjOpenError);
  double area = 0;
  if (const AcDbCurve* c = AcDbCurve::cast(e.object())) {
    return okReal(c->getArea(area), area);
  }
  if (const AcDbRegion* r = AcDbRegion::cast(e.object())) return okReal(r->getArea(area), area);
  if (const AcDbHatch* h = AcDbHatch::cast(e.object())) return okReal(h->getArea(area), area);
  return frame::failBadArg(MsgStyle::LineEnd);
}

// The area of one curve; several curves are united first, which needs the
// clipping engine and is refused for now.
int lispCurveGetArea() {
  Args a(kCurveGet);
  std::vector<AcDbObjectId> ids;
  if (!a.entities(ids)) return RTERROR;
  int32_t mode = 3;
  double tol = 0.005;
  if (a.more() && !a.integer(mode)) return RTERROR;
  if (a.more() && !a.real(tol)) return RTERROR;
  if (!a.end()) return RTERROR;
  std::vector<AcDbObjectId> curves;
  for (const AcDbObjectId& id : ids) {
    AcDbObjectPointer<AcDbCurve> c(id, AcDb::kForRead);
    if (c.openStatus() == Acad::eOk) curves.push_back(id);
  }
  if (curves.empty()) return retNil();
  if (curves.size() > 1) return frame::failBadArg(MsgStyle::LineEnd, 1);
  AcDbObjectPointer<AcDbCurve> c(curves[0], AcDb::kForRead);
  double area = 0;
  return okReal(c->getArea(area), area);
}

// Each curve of the selection becomes a lightweight polyline in its place,
// with its properties and extended data.
int lispCurveToLwpolyline() {
  Args a(kCurveGet);
  std::vector<AcDbObjectId> ids;
  if (!a.entities(ids) || !a.end()) return RTERROR;
  for (const AcDbObjectId& id : ids) {
    AcDbObjectPointer<AcDbCurve> c(id, AcDb::kForWrite);
    if (c.openStatus() != Acad::eOk || AcDbPolyline::cast(c.object())) continue;
    AcDbPolyline* pl = curveToLwPoly(c.object());
    if (!pl) continue;
    if (!appendBeside(c.object(), pl).isNull()) c->erase();
  }
  acedRetT();
  return RSRSLT;
}

// (bulge start middle end).
int lispPointGetBulge() {
  Args a(kPlain);
  AcGePoint3d s, m, e;
  if (!a.point(s) || !a.point(m) || !a.point(e) || !a.end()) return RTERROR;
  return retReal(calBulge(plain(s), plain(m), plain(e)));
}

// (start end bulge) or (start middle end): the arc's centre, or nil for a
// bulge too small to have one.
int lispPointGetCenter() {
  Args a(kPlain);
  AcGePoint3d s, e;
  double bulge = 0;
  if (!a.point(s) || !a.point(e)) return RTERROR;
  if (a.nextIsPoint()) {
    AcGePoint3d end;
    a.point(end);
    bulge = calBulge(plain(s), plain(e), plain(end));
    e = end;
  } else if (!a.real(bulge)) {
    return RTERROR;
  }
  if (!a.end()) return RTERROR;
  Point c;
  if (!getCenter(plain(s), plain(e), bulge, c)) return retNil();
  return retPoint(ge(c));
}

// (c1 c2 [extend]): where two curves meet.
int lispCurveInters() {
  Args a(kPlain);
  AcDbObjectPointer<AcDbCurve> c1, c2;
  if (!readCurve(a, kPlain, c1) || !readCurve(a, kPlain, c2)) return RTERROR;
  int32_t mode = 0;
  if (a.more() && !a.integer(mode)) return RTERROR;
  if (!a.end()) return RTERROR;
  if (mode < 0 || mode > 3) return frame::failBadArg(MsgStyle::Plain, 3);
  AcGePoint3dArray pts;
  if (c1->intersectWith(c2.object(), static_cast<AcDb::Intersect>(mode), pts) != Acad::eOk) return retNil();
  return retPoints(std::vector<AcGePoint3d>(pts.begin(), pts.end()));
}

// (ss): every point where two curves of the set meet, each once.
int lispGetIntersPoints() {
  Args a(kPlain);
  std::vector<AcDbObjectId> ids;
  if (!a.entities(ids) || !a.end()) return RTERROR;
  std::vector<AcGePoint3d> out;
  for (size_t i = 0; i < ids.size(); ++i) {
    AcDbObjectPointer<AcDbCurve> c1(ids[i], AcDb::kForRead);
    if (c1.openStatus() != Acad::eOk) continue;
    for (size_t j = i + 1; j < ids.size(); ++j) {
      AcDbObjectPointer<AcDbCurve> c2(ids[j], AcDb::kForRead);
      AcGePoint3dArray pts;
      if (c2.openStatus() != Acad::eOk || c1->intersectWith(c2.object(), AcDb::kOnBothOperands, pts) != Acad::eOk)
        continue;
      for (const AcGePoint3d& p : pts) {
        bool seen = std::any_of(out.begin(), out.end(), [&](const AcGePoint3d& q) {
          return std::fabs(p.x - q.x) < 1e-4 && std::fabs(p.y - q.y) < 1e-4 && std::fabs(p.z - q.z) < 1e-4;
        });
        if (!seen) out.push_back(p);
      }
    }
  }
  return out.empty() ? retNil() : retPoints(out);
}

namespace {

// A curve made from a curve by the host, appended beside it.
template <class Make>
int madeCurve(Args& a, Make make) {
  AcDbObjectPointer<AcDbCurve> c;
  if (!readCurve(a, kCurveGet, c)) return RTERROR;
  AcDbCurve* made = nullptr;
  if (!make(a, *c.object(), made)) return RTERROR;
  if (!made) return retNil();
  AcDbObjectId id = appendBeside(c.object(), made);
  if (id.isNull()) return retNil();
  return retIds({id});
}

}  // namespace

// (e normal): the curve projected straight onto the plane through its start
// with that normal.
int lispCurveGetOrthoProjectedCurve() {
  Args a(kCurveGet);
  return madeCurve(a, [&](Args& a, const AcDbCurve& c, AcDbCurve*& made) {
    AcGeVector3d n;
    if (!a.vec(n) || !a.end()) return false;
    AcGePoint3d s;
    c.getStartPoint(s);
    if (c.getOrthoProjectedCurve(AcGePlane(s, n), made) != Acad::eOk) made = nullptr;
    return true;
  });
}

// (e normal direction): the same along a direction.
int lispCurveGetProjectCurve() {
  Args a(kCurveGet);
  return madeCurve(a, [&](Args& a, const AcDbCurve& c, AcDbCurve*& made) {
    AcGeVector3d n, dir;
    if (!a.vec(n) || !a.vec(dir) || !a.end()) return false;
    AcGePoint3d s;
    c.getStartPoint(s);
    if (c.getProjectedCurve(AcGePlane(s, n), dir, made) != Acad::eOk) made = nullptr;
    return true;
  });
}

int lispCurveGetSpline() {
  Args a(kCurveGet);
  return madeCurve(a, [&](Args& a, const AcDbCurve& c, AcDbCurve*& made) {
    if (!a.end()) return false;
    AcDbSpline* sp = nullptr;
    made = c.getSpline(sp) == Acad::eOk ? sp : nullptr;
    return true;
  });
}

// (ss-or-ename): the regions the closed curves make, beside the first.
int lispCurveToRegion() {
  Args a(kPlain);
  std::vector<AcDbObjectId> ids;
  if (!a.entities(ids) || !a.end()) return RTERROR;
  std::vector<std::unique_ptr<AcDbObjectPointer<AcDbCurve>>> open;
  AcDbVoidPtrArray curves;
  for (const AcDbObjectId& id : ids) {
    auto c = std::make_unique<AcDbObjectPointer<AcDbCurve>>(id, AcDb::kForRead);
    if (c->openStatus() != Acad::eOk) continue;
    curves.push_back(c->object());
    open.push_back(std::move(c));
  }
  if (curves.empty()) return retNil();
  AcDbVoidPtrArray regions;
  if (AcDbRegion::createFromCurves(curves, regions) != Acad::eOk) return retNil();
  const AcDbEntity* source = open.front()->object();
  std::vector<AcDbObjectId> made;
  for (void* r : regions) {
    AcDbObjectId id = appendBeside(source, static_cast<AcDbRegion*>(r));
    if (!id.isNull()) made.push_back(id);
  }
  return retIds(made);
}

// (region): closed polylines of its loops, beside it.
int lispRegionToPoly() {
  Args a(kPlain);
  AcDbObjectId id;
  if (!a.objectId(id) || !a.end()) return RTERROR;
  AcDbObjectPointer<AcDbRegion> r(id, AcDb::kForRead);
  if (r.openStatus() != Acad::eOk) return frame::failBadArg(MsgStyle::Plain, 1);
  std::vector<AcDbObjectId> made;
  for (AcDbPolyline* pl : regionToLwPolys(r.object())) {
    AcDbObjectId m = appendBeside(r.object(), pl);
    if (!m.isNull()) made.push_back(m);
  }
  return retIds(made);
}

// (e): the centroid of the area a closed curve encloses.
int lispCurveCentroid() {
  Args a(kPlain);
  AcDbObjectPointer<AcDbCurve> c;
  if (!readCurve(a, kPlain, c) || !a.end()) return RTERROR;
  std::vector<Point> ring = plain(sampleCurve(c.object(), 0.01, true));
  double area = signedArea(ring);
  if (ring.size() < 3 || std::fabs(area) < 1e-12) return retNil();
  double cx = 0, cy = 0;
  for (size_t i = 0; i < ring.size(); ++i) {
    const Point& p = ring[i];
    const Point& q = ring[(i + 1) % ring.size()];
    double w = p.x * q.y - q.x * p.y;
    cx += (p.x + q.x) * w;
    cy += (p.y + q.y) * w;
  }
  return retPoint(AcGePoint3d(cx / (6 * area), cy / (6 * area), ring[0].z));
}

// (pl index pt [bulge]): a vertex added before the index.
int lispPolyAddVertex() {
  Args a(kBang);
  AcDbObjectId id;
  int32_t index = 0;
  AcGePoint3d p;
  double bulge = 0;
  if (!a.objectId(id) || !a.integer(index) || !a.point(p)) return RTERROR;
  if (a.more() && !a.real(bulge)) return RTERROR;
  if (!a.end()) return RTERROR;
  AcDbObjectPointer<AcDbPolyline> pl(id, AcDb::kForWrite);
  if (pl.openStatus() != Acad::eOk) return frame::failBadArg(MsgStyle::Bang, 1);
  if (index < 0 || static_cast<unsigned>(index) > pl->numVerts()) return frame::failBadArg(MsgStyle::Bang, 2);
  if (pl->addVertexAt(static_cast<unsigned>(index), AcGePoint2d(p.x, p.y), bulge) != Acad::eOk) return retNil();
  acedRetT();
  return RSRSLT;
}

// (pl index): the vertex at the index removed.
int lispPolyRemovePoint() {
  Args a(kBang);
  AcDbObjectId id;
  int32_t index = 0;
  if (!a.objectId(id) || !a.integer(index) || !a.end()) return RTERROR;
  AcDbObjectPointer<AcDbPolyline> pl(id, AcDb::kForWrite);
  if (pl.openStatus() != Acad::eOk) return frame::failBadArg(MsgStyle::Bang, 1);
  if (index < 0 || static_cast<unsigned>(index) >= pl->numVerts()) return frame::failBadArg(MsgStyle::Bang, 2);
  if (pl->removeVertexAt(static_cast<unsigned>(index)) != Acad::eOk) return retNil();
  acedRetT();
  return RSRSLT;
}

// (pl index): a closed polyline restarted at the vertex, shape unchanged.
int lispPolyOrderByIndex() {
  Args a(kColon);
  AcDbObjectId id;
  int32_t index = 0;
  if (!a.objectId(id) || !a.integer(index) || !a.end()) return RTERROR;
  AcDbObjectPointer<AcDbPolyline> pl(id, AcDb::kForWrite);
  if (pl.openStatus() != Acad::eOk) return frame::failBadArg(MsgStyle::Colon, 1);
  if (!pl->isClosed() || index < 0 || static_cast<unsigned>(index) >= pl->numVerts())
    return frame::failBadArg(MsgStyle::Colon, 2);
  if (rotateClosedPolyStart(pl.object(), static_cast<unsigned>(index)) != Acad::eOk) return retNil();
  acedRetT();
  return RSRSLT;
}

// (points matrix): the points transformed.
int lispPointsTransFormBy() {
  resbuf* cur = acedGetArgs();
  if (!cur) return frame::failTooFew(MsgStyle::Plain);
  std::vector<AcGePoint3d> pts;
  if (cur->restype == RTLB) {
    if (!readPointList(cur, pts)) return frame::failBadArg(MsgStyle::Plain, 1);
  } else {
    AcGePoint3d q;
    if (RbGetPoint3d(&cur, q) != RTNORM) return frame::failBadArg(MsgStyle::Plain, 1);
    pts.push_back(q);
  }
  if (!cur) return frame::failTooFew(MsgStyle::Plain);
  AcGeMatrix3d m;
  if (RbGetMatrix(&cur, m.entry) != RTNORM) return frame::failBadArg(MsgStyle::Plain, 2);
  if (cur) return frame::failTooMany(MsgStyle::Plain);
  for (AcGePoint3d& p : pts) p.transformBy(m);
  return retPoints(pts);
}

namespace {

// (e): grip or stretch points of an entity.
int entityPoints(bool stretch) {
  Args a(kPlain);
  AcDbObjectId id;
  if (!a.objectId(id) || !a.end()) return RTERROR;
  AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForRead);
  if (e.openStatus() != Acad::eOk) return frame::failBadArg(MsgStyle::Plain, 1);
  std::vector<AcGePoint3d> pts;
  Acad::ErrorStatus es = stretch ? e->getStretchPoints(pts) : e->getGripPoints(pts);
  if (es != Acad::eOk || pts.empty()) return retNil();
  return retPoints(pts);
}

}  // namespace

int lispCurveGetGripPoints() { return entityPoints(false); }
int lispCurveGetStretchPoints() { return entityPoints(true); }

}  // namespace zepk::geometry
