// The curve operations every curve entity shares, worked on the curve's
// geometry (getAcGeCurve): parameters, points, distances, derivatives,
// nearest points, areas, splits, offsets, projections, intersections,
// extents. New curves made here take the source's properties.
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "host/db/curve_internal.h"
#include "host/dbelipse.h"
#include "host/dbpl.h"
#include "host/dbray.h"
#include "host/dbspline.h"
#include "host/dbxline.h"
#include "host/ge/kernels.h"
#include "host/ge/offset.h"
#include "host/gearc3d.h"
#include "host/gecint3d.h"
#include "host/gecomp3d.h"
#include "host/geell3d.h"
#include "host/gelin3d.h"
#include "host/gelineseg3d.h"
#include "host/gemat3d.h"
#include "host/genurb3d.h"
#include "host/geplane.h"
#include "host/geray3d.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kUnbounded = 1e99;  // how an unbounded end's parameter is given

using GePtr = std::unique_ptr<AcGeCurve3d>;

double magnitude(const AcGePoint3d& p) { return std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)}); }

// How near a point must be to lie on a curve.
double onTolerance(const AcGePoint3d& p) {
  return std::max(AcGeContext::gTol.equalPoint() * 100, 1e-11 * magnitude(p));
}

}  // namespace

namespace zepk::db {

// The geometry of a curve and its parameter in the curve's terms.
struct CurveGeom {
  GePtr ge;
  double scale = 1.0;  // curve parameter = ge parameter * scale
  double lo = 0, hi = 0;  // the ge interval
  double toDb(double t) const { return t * scale; }
  double toGe(double p) const { return scale == 0 ? 0 : p / scale; }
};

struct CurveAccess {
  static double scale(const AcDbCurve* c) { return c->geParamScale(); }
  static void extended(const AcDbCurve* c, std::vector<AcGeCurve3d*>& out) { c->getExtendedGeCurves(out); }
};

Acad::ErrorStatus geomOf(const AcDbCurve* c, CurveGeom& g) {
  AcGeCurve3d* p = nullptr;
  Acad::ErrorStatus es = c->getAcGeCurve(p);
  if (es != Acad::eOk) return es;
  if (!p) return Acad::eDegenerateGeometry;
  g.ge.reset(p);
  g.scale = CurveAccess::scale(c);
  p->getInterval(g.lo, g.hi);
  return Acad::eOk;
}

AcDbArc* arcFromGe(const AcGeCircArc3d& arcIn, const AcGeVector3d& preferredNormal) {
  AcGeCircArc3d arc(arcIn);
  if (arc.normal().dotProduct(preferredNormal) < 0) arc.reverseParam();
  AcGeVector3d n = arc.normal();
  AcGeVector3d x = n.perpVector(), y = n.crossProduct(x);
  auto angleOf = [&](const AcGePoint3d& p) {
    AcGeVector3d d = p - arc.center();
    double a = std::atan2(d.dotProduct(y), d.dotProduct(x));
    return a < 0 ? a + 2 * kPi : a;
  };
  return new AcDbArc(arc.center(), n, arc.radius(), angleOf(arc.startPoint()), angleOf(arc.endPoint()));
}

AcDbCurve* curveFromGe(const AcGeCurve3d& ge, const AcDbCurve* like) {
  AcGeVector3d likeNormal = AcGeVector3d::kZAxis;
  double elevation = 0.0;
  if (auto* pl = AcDbPolyline::cast(like)) {
    likeNormal = pl->normal();
    elevation = pl->elevation();
  } else if (auto* p2 = AcDb2dPolyline::cast(like)) {
    likeNormal = p2->normal();
    elevation = p2->elevation();
  } else if (auto* a = AcDbArc::cast(like)) {
    likeNormal = a->normal();
  } else if (auto* c = AcDbCircle::cast(like)) {
    likeNormal = c->normal();
  } else if (auto* e = AcDbEllipse::cast(like)) {
    likeNormal = e->normal();
  }
  AcDbCurve* out = nullptr;
  switch (ge.type()) {
    case AcGe::kLineSeg3d: {
      const auto& s = static_cast<const AcGeLineSeg3d&>(ge);
      if (like && (AcDbPolyline::cast(like) || AcDb2dPolyline::cast(like) || AcDb3dPolyline::cast(like))) {
        AcGeCompositeCurve3d comp;
        comp.appendOwned(static_cast<AcGeCurve3d*>(s.copy()));
        return curveFromGe(comp, like);
      }
      out = new AcDbLine(s.startPoint(), s.endPoint());
      break;
    }
    case AcGe::kRay3d: {
      const auto& r = static_cast<const AcGeRay3d&>(ge);
      auto* ray = new AcDbRay();
      ray->setBasePoint(r.pointOnLine());
      ray->setUnitDir(r.direction());
      out = ray;
      break;
    }
    case AcGe::kLine3d: {
      const auto& l = static_cast<const AcGeLine3d&>(ge);
      auto* x = new AcDbXline();
      x->setBasePoint(l.pointOnLine());
      x->setUnitDir(l.direction());
      out = x;
      break;
    }
    case AcGe::kCircArc3d: {
      const auto& a = static_cast<const AcGeCircArc3d&>(ge);
      if (like && (AcDbPolyline::cast(like) || AcDb2dPolyline::cast(like))) {
        AcGeCompositeCurve3d comp;
        comp.appendOwned(static_cast<AcGeCurve3d*>(a.copy()));
        return curveFromGe(comp, like);
      }
      if (a.isClosed()) {
        AcGeVector3d n = a.normal().dotProduct(likeNormal) < 0 ? -a.normal() : a.normal();
        out = new AcDbCircle(a.center(), n, a.radius());
      } else {
        out = arcFromGe(a, likeNormal);
      }
      break;
    }
    case AcGe::kEllipArc3d: {
      const auto& e = static_cast<const AcGeEllipArc3d&>(ge);
      auto* el = new AcDbEllipse();
      double ratio = e.majorRadius() > 0 ? e.minorRadius() / e.majorRadius() : 1.0;
      if (ratio > 1.0) ratio = 1.0;
      if (el->set(e.center(), e.normal(), e.majorAxis() * e.majorRadius(), std::max(ratio, 1e-6), e.startAng(),
                  e.endAng()) != Acad::eOk) {
        delete el;
        return nullptr;
      }
      out = el;
      break;
    }
    case AcGe::kNurbCurve3d: {
      const auto& n = static_cast<const AcGeNurbCurve3d&>(ge);
      int degree;
      bool rational, periodic;
      AcGeDoubleArray knots, weights;
      AcGePoint3dArray pts;
      n.getDefinitionData(degree, rational, periodic, knots, pts, weights);
      if (pts.empty()) return nullptr;
      bool closed = pts.front().isEqualTo(pts.back());
      auto* sp = new AcDbSpline(degree, rational, closed, false, pts, knots, weights);
      out = sp;
      break;
    }
    case AcGe::kCompositeCrv3d: {
      const auto& comp = static_cast<const AcGeCompositeCurve3d&>(ge);
      if (comp.numCurves() == 0) return nullptr;
      AcGePoint3dArray pts;
      AcGeDoubleArray bulges;
      for (int i = 0; i < comp.numCurves(); ++i) {
        const AcGeCurve3d& k = comp.curveAt(i);
        double lo, hi;
        k.getInterval(lo, hi);
        pts.push_back(k.evalPoint(lo));
        double b = 0;
        if (k.type() == AcGe::kCircArc3d) {
          const auto& a = static_cast<const AcGeCircArc3d&>(k);
          b = std::tan((hi - lo) / 4) * (a.normal().dotProduct(likeNormal) >= 0 ? 1 : -1);
        }
        bulges.push_back(b);
      }
      double lo, hi;
      comp.getInterval(lo, hi);
      AcGePoint3d last = comp.evalPoint(hi);
      bool closed = last.isEqualTo(pts.front()) && comp.numCurves() > 1;
      if (!closed) {
        pts.push_back(last);
        bulges.push_back(0);
      }
      if (AcDb3dPolyline::cast(like)) {
        out = new AcDb3dPolyline(AcDb::k3dSimplePoly, pts, closed);
        break;
      }
      AcGeMatrix3d toOcs = AcGeMatrix3d::worldToPlane(likeNormal);
      AcGePoint3dArray ocs;
      for (const AcGePoint3d& p : pts) ocs.push_back(toOcs * p);
      if (!AcDbPolyline::cast(like) && !AcDb2dPolyline::cast(like) && !ocs.empty()) elevation = ocs[0].z;
      if (AcDb2dPolyline::cast(like)) {
        auto* p2 = new AcDb2dPolyline(AcDb::k2dSimplePoly, ocs, elevation, closed, 0.0, 0.0, &bulges);
        p2->setNormal(likeNormal);
        out = p2;
        break;
      }
      auto* pl = new AcDbPolyline(static_cast<unsigned int>(ocs.size()));
      for (size_t i = 0; i < ocs.size(); ++i) pl->addVertexAt(static_cast<unsigned int>(i), {ocs[i].x, ocs[i].y}, bulges[i]);
      pl->setNormal(likeNormal);
      pl->setElevation(elevation);
      pl->setClosed(closed);
      out = pl;
      break;
    }
    default:
      return nullptr;
  }
  if (out && like) out->setPropertiesFrom(like);
  return out;
}

// A closed curve's piece from a to the end joined to the piece from the
// start to b (ge parameters), as one curve.
GePtr acrossSeam(const AcGeCurve3d& c, double a, double b) {
  double lo, hi;
  c.getInterval(lo, hi);
  switch (c.type()) {
    case AcGe::kCircArc3d: {
      auto* r = static_cast<AcGeCircArc3d*>(c.copy());
      r->setAngles(a, b + (hi - lo));
      return GePtr(r);
    }
    case AcGe::kEllipArc3d: {
      auto* r = static_cast<AcGeEllipArc3d*>(c.copy());
      r->setAngles(a, b + (hi - lo));
      return GePtr(r);
    }
    case AcGe::kCompositeCrv3d: {
      GePtr tail(a < hi ? c.trimmedCopy(a, hi) : nullptr), head(b > lo ? c.trimmedCopy(lo, b) : nullptr);
      auto* r = new AcGeCompositeCurve3d();
      for (AcGeCurve3d* part : {tail.get(), head.get()}) {
        if (!part) continue;
        const auto& comp = static_cast<const AcGeCompositeCurve3d&>(*part);
        for (int i = 0; i < comp.numCurves(); ++i) r->appendOwned(static_cast<AcGeCurve3d*>(comp.curveAt(i).copy()));
      }
      return GePtr(r);
    }
    default: {
      GePtr tail(a < hi ? c.trimmedCopy(a, hi) : nullptr), head(b > lo ? c.trimmedCopy(lo, b) : nullptr);
      if (!tail) return head;
      if (!head) return tail;
      std::unique_ptr<AcGeNurbCurve3d> t(AcGeNurbCurve3d::convertFrom(*tail)), h(AcGeNurbCurve3d::convertFrom(*head));
      if (!t || !h) return tail;
      t->joinWith(*h);
      return GePtr(t.release());
    }
  }
}

}  // namespace zepk::db

using zepk::db::CurveGeom;
using zepk::db::geomOf;

// ---------------------------------------------------------------- extents

void AcDbExtents::addPoint(const AcGePoint3d& pt) {
  if (!valid_) {
    min_ = max_ = pt;
    valid_ = true;
    return;
  }
  min_.set(std::min(min_.x, pt.x), std::min(min_.y, pt.y), std::min(min_.z, pt.z));
  max_.set(std::max(max_.x, pt.x), std::max(max_.y, pt.y), std::max(max_.z, pt.z));
}

void AcDbExtents::addExt(const AcDbExtents& ext) {
  if (!ext.valid_) return;
  addPoint(ext.min_);
  addPoint(ext.max_);
}

// ---------------------------------------------------------------- the operations

Acad::ErrorStatus AcDbCurve::getAcGeCurve(AcGeCurve3d*& pGeCurve) const {
  pGeCurve = nullptr;
  return Acad::eNotApplicable;
}

void AcDbCurve::getExtendedGeCurves(std::vector<AcGeCurve3d*>& curves) const {
  AcGeCurve3d* c = nullptr;
  if (getAcGeCurve(c) == Acad::eOk && c) curves.push_back(c);
}

bool AcDbCurve::isPlanar() const {
  AcGePlane p;
  AcDb::Planarity k;
  return getPlane(p, k) == Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  planarity = AcDb::kNonPlanar;
  if (!g.ge->isPlanar(plane)) return Acad::eNotApplicable;
  planarity = g.ge->isKindOf(AcGe::kLinearEnt3d) ? AcDb::kLinear : AcDb::kPlanar;
  if (planarity == AcDb::kPlanar) {
    // A straight polyline or spline is linear too.
    AcGePoint3dArray pts;
    double lo = g.lo, hi = g.hi;
    if (std::isfinite(lo) && std::isfinite(hi)) {
      g.ge->getSamplePoints(9, pts);
      AcGeLineSeg3d chord(pts.front(), pts.back());
      bool straight = chord.length() > 0;
      for (const AcGePoint3d& p : pts) straight = straight && chord.isOn(p, AcGeTol());
      if (straight) planarity = AcDb::kLinear;
    }
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getStartParam(double& param) const {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  param = std::isfinite(g.lo) ? g.toDb(g.lo) : -kUnbounded;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getEndParam(double& param) const {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  param = std::isfinite(g.hi) ? g.toDb(g.hi) : kUnbounded;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getStartPoint(AcGePoint3d& point) const {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  if (!std::isfinite(g.lo)) return Acad::eNotApplicable;
  point = g.ge->evalPoint(g.lo);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getEndPoint(AcGePoint3d& point) const {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  if (!std::isfinite(g.hi)) return Acad::eNotApplicable;
  point = g.ge->evalPoint(g.hi);
  return Acad::eOk;
}

namespace {

// The ge parameter of a curve parameter inside the curve's range.
bool geParam(const CurveGeom& g, double param, double& t) {
  t = g.toGe(param);
  double eps = 1e-10 * std::max(1.0, std::fabs(t));
  if (t < g.lo - eps || t > g.hi + eps) return false;
  t = std::clamp(t, g.lo, g.hi);
  return true;
}

// The ge parameter of a point on the curve.
bool geParamOfPoint(const CurveGeom& g, const AcGePoint3d& pt, double& t) {
  t = g.ge->paramOf(pt);
  // A segment gives the foot on its whole line: only its own part counts.
  if (std::isfinite(g.lo)) t = std::max(t, g.lo);
  if (std::isfinite(g.hi)) t = std::min(t, g.hi);
  return g.ge->evalPoint(t).distanceTo(pt) <= onTolerance(pt);
}

}  // namespace

Acad::ErrorStatus AcDbCurve::getPointAtParam(double param, AcGePoint3d& point) const {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  double t;
  if (!geParam(g, param, t)) return Acad::eInvalidInput;
  point = g.ge->evalPoint(t);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getParamAtPoint(const AcGePoint3d& point, double& param) const {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  double t;
  if (!geParamOfPoint(g, point, t)) return Acad::eInvalidInput;
  param = g.toDb(t);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getDistAtParam(double param, double& dist) const {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  double t;
  if (!geParam(g, param, t)) return Acad::eInvalidInput;
  // An xline has no start: distances run from its base point.
  double from = std::isfinite(g.lo) ? g.lo : 0.0;
  dist = g.ge->length(from, t);
  if (!std::isfinite(g.lo) && t < 0) dist = -dist;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getParamAtDist(double dist, double& param) const {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  double from = std::isfinite(g.lo) ? g.lo : 0.0;
  double total = std::isfinite(g.hi) ? g.ge->length(from, g.hi) : std::numeric_limits<double>::infinity();
  double eps = 1e-10 * std::max(1.0, std::fabs(dist));
  if ((std::isfinite(g.lo) && dist < -eps) || dist > total + eps) return Acad::eInvalidInput;
  double t = dist >= 0 ? g.ge->paramAtLength(from, std::min(dist, total)) : g.ge->paramAtLength(from, -dist, false);
  param = g.toDb(t);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getDistAtPoint(const AcGePoint3d& point, double& dist) const {
  double param;
  Acad::ErrorStatus es = getParamAtPoint(point, param);
  if (es != Acad::eOk) return es;
  return getDistAtParam(param, dist);
}

Acad::ErrorStatus AcDbCurve::getPointAtDist(double dist, AcGePoint3d& point) const {
  double param;
  Acad::ErrorStatus es = getParamAtDist(dist, param);
  if (es != Acad::eOk) return es;
  return getPointAtParam(param, point);
}

namespace {

Acad::ErrorStatus derivAt(const AcDbCurve* c, double param, int k, AcGeVector3d& d) {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(c, g);
  if (es != Acad::eOk) return es;
  double t;
  if (!geParam(g, param, t)) return Acad::eInvalidInput;
  AcGeVector3dArray ders;
  g.ge->evalPoint(t, k, ders);
  d = ders[k - 1] / std::pow(g.scale == 0 ? 1.0 : g.scale, k);
  return Acad::eOk;
}

}  // namespace

Acad::ErrorStatus AcDbCurve::getFirstDeriv(double param, AcGeVector3d& firstDeriv) const {
  return derivAt(this, param, 1, firstDeriv);
}

Acad::ErrorStatus AcDbCurve::getFirstDeriv(const AcGePoint3d& point, AcGeVector3d& firstDeriv) const {
  double param;
  Acad::ErrorStatus es = getParamAtPoint(point, param);
  return es != Acad::eOk ? es : derivAt(this, param, 1, firstDeriv);
}

Acad::ErrorStatus AcDbCurve::getSecondDeriv(double param, AcGeVector3d& secDeriv) const {
  return derivAt(this, param, 2, secDeriv);
}

Acad::ErrorStatus AcDbCurve::getSecondDeriv(const AcGePoint3d& point, AcGeVector3d& secDeriv) const {
  double param;
  Acad::ErrorStatus es = getParamAtPoint(point, param);
  return es != Acad::eOk ? es : derivAt(this, param, 2, secDeriv);
}

Acad::ErrorStatus AcDbCurve::getClosestPointTo(const AcGePoint3d& givenPoint, AcGePoint3d& pointOnCurve,
                                               bool extend) const {
  std::vector<AcGeCurve3d*> curves;
  if (extend) {
    zepk::db::CurveAccess::extended(this, curves);
  } else {
    AcGeCurve3d* c = nullptr;
    Acad::ErrorStatus es = getAcGeCurve(c);
    if (es != Acad::eOk) return es;
    curves.push_back(c);
  }
  if (curves.empty()) return Acad::eDegenerateGeometry;
  double best = std::numeric_limits<double>::infinity();
  for (AcGeCurve3d* c : curves) {
    AcGePoint3d q = c->closestPointTo(givenPoint);
    if (q.distanceTo(givenPoint) < best) {
      best = q.distanceTo(givenPoint);
      pointOnCurve = q;
    }
    delete c;
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getClosestPointTo(const AcGePoint3d& givenPoint, const AcGeVector3d& direction,
                                               AcGePoint3d& pointOnCurve, bool extend) const {
  if (direction.isZeroLength()) return Acad::eInvalidInput;
  std::vector<AcGeCurve3d*> curves;
  if (extend) {
    zepk::db::CurveAccess::extended(this, curves);
  } else {
    AcGeCurve3d* c = nullptr;
    Acad::ErrorStatus es = getAcGeCurve(c);
    if (es != Acad::eOk) return es;
    curves.push_back(c);
  }
  if (curves.empty()) return Acad::eDegenerateGeometry;
  AcGeVector3d u = direction.normal();
  double best = std::numeric_limits<double>::infinity();
  for (AcGeCurve3d* c : curves) {
    AcGePoint3d q = c->projClosestPointTo(givenPoint, u);
    AcGeVector3d d = q - givenPoint;
    double flat = (d - u * d.dotProduct(u)).length();
    if (flat < best) {
      best = flat;
      pointOnCurve = q;
    }
    delete c;
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getArea(double& area) const {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  if (!std::isfinite(g.lo) || !std::isfinite(g.hi)) return Acad::eNotApplicable;
  // Half the integral of r x dr about the start point; the chord back to
  // the start adds nothing about that point.
  const AcGeCurve3d& c = *g.ge;
  AcGePoint3d o = c.evalPoint(g.lo);
  AcGeVector3d total;
  std::vector<double> pieces = zepk::ge::smoothPieces(c, g.lo, g.hi);
  // A piece whose integrand is zero but for rounding (a straight piece
  // through the start point, a component across the curve's plane) must
  // not be refined for ever: below a tolerance on the curve's scale it is
  // done.
  const double scale = c.length(g.lo, g.hi);
  const double absTol = 1e-15 * scale * scale;
  for (size_t k = 0; k + 1 < pieces.size(); ++k) {
    for (int axis = 0; axis < 3; ++axis) {
      total[axis] += zepk::ge::integrate(
          [&](double t) {
            AcGeVector3dArray d;
            AcGePoint3d p = c.evalPoint(t, 1, d);
            return (p - o).crossProduct(d[0])[axis];
          },
          pieces[k], pieces[k + 1], 1e-13, absTol);
    }
  }
  area = 0.5 * total.length();
  // What a straight curve leaves is rounding, not area.
  double len = c.length(g.lo, g.hi);
  if (area <= 1e-12 * len * len) area = 0.0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getSplitCurves(const AcGeDoubleArray& params, AcDbVoidPtrArray& curveSegments) const {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  std::vector<double> ts;
  for (double p : params) {
    double t;
    if (!geParam(g, p, t)) return Acad::eInvalidInput;
    ts.push_back(t);
  }
  std::sort(ts.begin(), ts.end());
  double span = std::isfinite(g.hi - g.lo) ? g.hi - g.lo : 1.0;
  double eps = 1e-10 * std::max(1.0, span);
  bool closed = isClosed() && std::isfinite(g.lo) && std::isfinite(g.hi);
  std::vector<double> cuts;
  for (double t : ts) {
    if (closed && t >= g.hi - eps) t = g.lo;  // the end of a closed curve is its start
    if (!cuts.empty() && std::fabs(t - cuts.back()) <= eps) continue;
    cuts.push_back(t);
  }
  std::sort(cuts.begin(), cuts.end());
  std::vector<GePtr> pieces;
  if (!closed) {
    std::vector<double> b{g.lo};
    for (double t : cuts)
      if (t > g.lo + eps && t < g.hi - eps) b.push_back(t);
    b.push_back(g.hi);
    for (size_t i = 0; i + 1 < b.size(); ++i) pieces.emplace_back(g.ge->trimmedCopy(b[i], b[i + 1]));
  } else {
    if (cuts.empty()) return Acad::eOk;
    for (size_t i = 0; i + 1 < cuts.size(); ++i) pieces.emplace_back(g.ge->trimmedCopy(cuts[i], cuts[i + 1]));
    pieces.push_back(zepk::db::acrossSeam(*g.ge, cuts.back(), cuts.front()));
  }
  for (const GePtr& p : pieces) {
    if (!p) continue;
    AcDbCurve* c = zepk::db::curveFromGe(*p, this);
    if (c) curveSegments.push_back(c);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getSplitCurves(const AcGePoint3dArray& points, AcDbVoidPtrArray& curveSegments) const {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  AcGeDoubleArray params;
  for (const AcGePoint3d& p : points) {
    double t;
    if (!geParamOfPoint(g, p, t)) return Acad::eInvalidInput;
    params.push_back(g.toDb(t));
  }
  return getSplitCurves(params, curveSegments);
}

namespace {

// The offset of a smooth curve in its plane, sampled and fitted by a spline.
AcDbCurve* sampledOffset(const AcGeCurve3d& c, const AcGeVector3d& normal, double dist, const AcDbCurve* like) {
  double lo, hi;
  c.getInterval(lo, hi);
  AcGePoint3dArray pts;
  AcGeDoubleArray prm;
  double size = c.length();
  c.getSamplePoints(lo, hi, std::max(size * 1e-5, 1e-9), pts, prm);
  AcGePoint3dArray fit;
  for (double t : prm) {
    AcGeVector3dArray d;
    AcGePoint3d p = c.evalPoint(t, 1, d);
    AcGeVector3d right = d[0].crossProduct(normal).normal();
    fit.push_back(p + right * dist);
  }
  bool closed = c.isClosed();
  if (closed) fit.back() = fit.front();
  AcGeNurbCurve3d n(fit);
  if (n.numControlPoints() == 0) return nullptr;
  return zepk::db::curveFromGe(n, like);
}

}  // namespace

Acad::ErrorStatus AcDbCurve::getOffsetCurves(double offsetDist, AcDbVoidPtrArray& offsetCurves) const {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  if (offsetDist == 0.0) {
    AcDbCurve* c = zepk::db::curveFromGe(*g.ge, this);
    if (c) offsetCurves.push_back(c);
    return Acad::eOk;
  }
  AcGePlane plane;
  AcDb::Planarity kind;
  if (getPlane(plane, kind) != Acad::eOk) return Acad::eNotApplicable;
  AcGeVector3d n = plane.normal();
  // Lines offset in the plane of their normal; rays and xlines, which have
  // none, in the XY plane.
  if (auto* l = AcDbLine::cast(this)) n = l->normal();
  if (AcDbRay::cast(this) || AcDbXline::cast(this)) n = AcGeVector3d::kZAxis;
  switch (g.ge->type()) {
    case AcGe::kLineSeg3d:
    case AcGe::kRay3d:
    case AcGe::kLine3d: {
      const auto& l = static_cast<const AcGeLinearEnt3d&>(*g.ge);
      AcGeVector3d right = l.direction().crossProduct(n);
      if (right.isZeroLength()) right = l.direction().perpVector();
      AcGeCurve3d* moved = static_cast<AcGeCurve3d*>(l.copy());
      moved->transformBy(AcGeMatrix3d::translation(right.normal() * offsetDist));
      AcDbCurve* c = zepk::db::curveFromGe(*moved, this);
      delete moved;
      if (c) offsetCurves.push_back(c);
      return Acad::eOk;
    }
    case AcGe::kCircArc3d: {
      auto arc = *static_cast<const AcGeCircArc3d*>(g.ge.get());
      double r = arc.radius() + offsetDist;
      if (r <= 0) return Acad::eInvalidInput;
      arc.setRadius(r);
      AcDbCurve* c = zepk::db::curveFromGe(arc, this);
      if (c) offsetCurves.push_back(c);
      return Acad::eOk;
    }
    case AcGe::kCompositeCrv3d: {
      if (AcDb3dPolyline::cast(this)) return Acad::eNotApplicable;
      // In the polyline's own coordinates.
      AcGeVector3d pn = n;
      if (auto* pl = AcDbPolyline::cast(this)) pn = pl->normal();
      if (auto* p2 = AcDb2dPolyline::cast(this)) pn = p2->normal();
      AcGeMatrix3d toOcs = AcGeMatrix3d::worldToPlane(pn), toWcs = AcGeMatrix3d::planeToWorld(pn);
      const auto& comp = static_cast<const AcGeCompositeCurve3d&>(*g.ge);
      zepk::ge::BulgePolyline src;
      src.closed = isClosed();
      double elevation = 0;
      for (int i = 0; i < comp.numCurves(); ++i) {
        const AcGeCurve3d& k = comp.curveAt(i);
        double lo, hi;
        k.getInterval(lo, hi);
        AcGePoint3d p = toOcs * k.evalPoint(lo);
        elevation = p.z;
        double b = 0;
        if (k.type() == AcGe::kCircArc3d)
          b = std::tan((hi - lo) / 4) * (static_cast<const AcGeCircArc3d&>(k).normal().dotProduct(pn) >= 0 ? 1 : -1);
        src.verts.push_back({p.x, p.y, b});
      }
      if (!src.closed) {
        AcGePoint3d e = toOcs * comp.evalPoint(comp.numCurves());
        src.verts.push_back({e.x, e.y, 0});
      }
      auto results = zepk::ge::offsetPolyline(src, offsetDist);
      if (results.empty()) return Acad::eInvalidInput;
      for (const auto& r : results) {
        AcGeCompositeCurve3d out;
        size_t m = r.verts.size(), segs = r.closed ? m : m - 1;
        for (size_t i = 0; i < segs; ++i) {
          const auto& a = r.verts[i];
          const auto& b = r.verts[(i + 1) % m];
          out.appendOwned(zepk::ge::bulgeSegment(toWcs * AcGePoint3d(a.x, a.y, elevation),
                                                 toWcs * AcGePoint3d(b.x, b.y, elevation), a.bulge, pn));
        }
        AcDbCurve* c = zepk::db::curveFromGe(out, this);
        if (!c) continue;
        if (auto* pl = AcDbPolyline::cast(c)) pl->setClosed(r.closed);
        if (auto* p2 = AcDb2dPolyline::cast(c)) r.closed ? p2->makeClosed() : p2->makeOpen();
        offsetCurves.push_back(c);
      }
      return Acad::eOk;
    }
    default: {
      if (g.ge->type() == AcGe::kEllipArc3d) n = static_cast<const AcGeEllipArc3d&>(*g.ge).normal();
      AcDbCurve* c = sampledOffset(*g.ge, n, offsetDist, this);
      if (!c) return Acad::eInvalidInput;
      offsetCurves.push_back(c);
      return Acad::eOk;
    }
  }
}

Acad::ErrorStatus AcDbCurve::getSpline(AcDbSpline*& spline) const {
  spline = nullptr;
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  std::unique_ptr<AcGeNurbCurve3d> n(AcGeNurbCurve3d::convertFrom(*g.ge));
  if (!n || n->numControlPoints() == 0) return Acad::eNotApplicable;
  AcDbCurve* c = zepk::db::curveFromGe(*n, this);
  spline = AcDbSpline::cast(c);
  if (!spline) {
    delete c;
    return Acad::eNotApplicable;
  }
  return Acad::eOk;
}

namespace {

Acad::ErrorStatus projectCurve(const AcDbCurve* self, const AcGePlane& plane, const AcGeVector3d& dir,
                               AcDbCurve*& projCrv) {
  projCrv = nullptr;
  if (dir.isZeroLength() || dir.isPerpendicularTo(plane.normal())) return Acad::eInvalidInput;
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(self, g);
  if (es != Acad::eOk) return es;
  AcGeMatrix3d m = AcGeMatrix3d::projection(plane, dir);
  const AcGeCurve3d& c = *g.ge;
  AcGePlane own;
  bool planar = c.isPlanar(own);
  bool parallel = planar && own.normal().isParallelTo(plane.normal());
  GePtr out;
  switch (c.type()) {
    case AcGe::kLineSeg3d:
    case AcGe::kRay3d:
    case AcGe::kLine3d: {
      out.reset(static_cast<AcGeCurve3d*>(c.copy()));
      out->transformBy(m);
      const auto& l = static_cast<const AcGeLinearEnt3d&>(*out);
      if (AcGeVector3d(l.direction()).isZeroLength()) return Acad::eDegenerateGeometry;
      break;
    }
    case AcGe::kCircArc3d:
    case AcGe::kEllipArc3d: {
      if (parallel && c.type() == AcGe::kCircArc3d && dir.isParallelTo(plane.normal())) {
        out.reset(static_cast<AcGeCurve3d*>(c.copy()));
        out->transformBy(m);
        break;
      }
      AcGeEllipArc3d e = c.type() == AcGe::kCircArc3d ? AcGeEllipArc3d(static_cast<const AcGeCircArc3d&>(c))
                                                      : static_cast<const AcGeEllipArc3d&>(c);
      e.transformBy(m);
      if (e.minorRadius() <= 1e-12 * std::max(1.0, e.majorRadius())) return Acad::eDegenerateGeometry;
      out.reset(new AcGeEllipArc3d(e));
      break;
    }
    case AcGe::kCompositeCrv3d:
      if (parallel || AcDb3dPolyline::cast(self)) {
        out.reset(static_cast<AcGeCurve3d*>(c.copy()));
        out->transformBy(m);
        break;
      }
      [[fallthrough]];
    default: {
      AcGeNurbCurve3d* n = AcGeNurbCurve3d::convertFrom(c);
      if (!n) return Acad::eNotApplicable;
      n->transformBy(m);
      out.reset(n);
      break;
    }
  }
  const AcDbCurve* like = self;
  std::unique_ptr<AcDbCurve> planeLike;
  if (out->type() == AcGe::kCompositeCrv3d && (AcDbPolyline::cast(self) || AcDb2dPolyline::cast(self))) {
    // The new polyline lies in the plane: its own coordinates are the plane's.
    auto* pl = new AcDbPolyline();
    pl->setNormal(plane.normal());
    pl->setElevation((AcGeMatrix3d::worldToPlane(plane.normal()) * plane.pointOnPlane()).z);
    pl->setPropertiesFrom(self);
    planeLike.reset(pl);
    like = pl;
  }
  projCrv = zepk::db::curveFromGe(*out, like);
  if (projCrv && planeLike) projCrv->setPropertiesFrom(self);
  return projCrv ? Acad::eOk : Acad::eDegenerateGeometry;
}

}  // namespace

Acad::ErrorStatus AcDbCurve::getOrthoProjectedCurve(const AcGePlane& plane, AcDbCurve*& projCrv) const {
  return projectCurve(this, plane, plane.normal(), projCrv);
}

Acad::ErrorStatus AcDbCurve::getProjectedCurve(const AcGePlane& plane, const AcGeVector3d& projDir,
                                               AcDbCurve*& projCrv) const {
  return projectCurve(this, plane, projDir, projCrv);
}

Acad::ErrorStatus AcDbCurve::intersectWith(const AcDbEntity* pEnt, AcDb::Intersect intType,
                                           AcGePoint3dArray& points) const {
  const AcDbCurve* other = AcDbCurve::cast(pEnt);
  if (!other) return Acad::eNotApplicable;
  auto curvesOf = [](const AcDbCurve* c, bool extend, std::vector<AcGeCurve3d*>& out) {
    if (extend) {
      zepk::db::CurveAccess::extended(c, out);
    } else {
      AcGeCurve3d* g = nullptr;
      if (c->getAcGeCurve(g) == Acad::eOk && g) out.push_back(g);
    }
  };
  std::vector<AcGeCurve3d*> mine, theirs;
  curvesOf(this, intType == AcDb::kExtendThis || intType == AcDb::kExtendBoth, mine);
  curvesOf(other, intType == AcDb::kExtendArg || intType == AcDb::kExtendBoth, theirs);
  // Order along this curve: the curve itself first; an extension piece
  // before the start runs away from the start, one after the end away
  // from the end.
  struct Found {
    double key;
    AcGePoint3d p;
  };
  std::vector<Found> found;
  double lo = 0, hi = 0;
  AcGePoint3d start;
  if (!mine.empty()) {
    mine[0]->getInterval(lo, hi);
    if (std::isfinite(lo)) start = mine[0]->evalPoint(lo);
  }
  bool self = other == this;
  for (size_t i = 0; i < mine.size(); ++i) {
    double plo, phi;
    mine[i]->getInterval(plo, phi);
    bool before = i > 0 && std::isfinite(plo) && mine[i]->evalPoint(plo).isEqualTo(start, AcGeTol());
    for (AcGeCurve3d* t : theirs) {
      auto hits = zepk::ge::intersectCurves(*mine[i], *t, self && i == 0, AcGeContext::gTol);
      for (const auto& h : hits) {
        double key = i == 0 ? h.param1 : before ? lo - (h.param1 - plo) - 1 : hi + (h.param1 - plo) + 1;
        found.push_back({key, h.point});
        if (self && i == 0) found.push_back({h.param2, h.point});
      }
    }
  }
  for (auto* c : mine) delete c;
  for (auto* c : theirs) delete c;
  std::stable_sort(found.begin(), found.end(), [](const Found& a, const Found& b) { return a.key < b.key; });
  for (const Found& f : found) {
    bool dup = false;
    for (const AcGePoint3d& q : points) dup = dup || q.distanceTo(f.p) <= onTolerance(f.p);
    if (!dup) points.push_back(f.p);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getGeomExtents(AcDbExtents& extents) const {
  CurveGeom g;
  Acad::ErrorStatus es = geomOf(this, g);
  if (es != Acad::eOk) return es;
  if (!std::isfinite(g.lo) || !std::isfinite(g.hi)) return Acad::eNotApplicable;
  AcGePoint3d a, b;
  g.ge->orthoBoundBlock().getMinMaxPoints(a, b);
  extents = AcDbExtents(a, b);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::explode(AcDbVoidPtrArray&) const { return Acad::eNotApplicable; }
