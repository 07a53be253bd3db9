// Lines and line segments, in space and in the plane.
#include <algorithm>
#include <cmath>
#include <limits>

#include "host/ge/linear_parts.h"
#include "host/gelin2d.h"
#include "host/gelin3d.h"
#include "host/gelineseg2d.h"
#include "host/gelineseg3d.h"
#include "host/gemat2d.h"
#include "host/gemat3d.h"
#include "host/geplane.h"

namespace {
constexpr double kInf = std::numeric_limits<double>::infinity();

AcGePoint3d lift(const AcGePoint2d& p) { return {p.x, p.y, 0.0}; }
AcGePoint2d drop(const AcGePoint3d& p) { return {p.x, p.y}; }
}  // namespace

// --- The shared arithmetic ------------------------------------------------

AcGeLinearParts AcGeLinearParts::of(const AcGeLinearEnt3d& e) {
  AcGeLinearParts r{e.point_, e.vector_, 0.0, 0.0};
  e.getInterval(r.lo, r.hi);
  return r;
}

AcGeLinearParts AcGeLinearParts::of(const AcGeLinearEnt2d& e) {
  AcGeLinearParts r{lift(e.point_), AcGeVector3d(e.vector_.x, e.vector_.y, 0.0), 0.0, 0.0};
  e.getInterval(r.lo, r.hi);
  return r;
}

bool AcGeLinearParts::bounded() const { return std::isfinite(lo) && std::isfinite(hi); }

double AcGeLinearParts::footParam(const AcGePoint3d& q) const {
  double vv = v.lengthSqrd();
  return vv == 0.0 ? 0.0 : (q - p).dotProduct(v) / vv;
}

double AcGeLinearParts::clamp(double t) const { return std::clamp(t, lo, hi); }

bool AcGeLinearParts::inRange(double t, const AcGeTol& tol) const {
  double len = v.length();
  double slack = len == 0.0 ? 0.0 : tol.equalPoint() / len;
  return t >= lo - slack && t <= hi + slack;
}

bool AcGeLinearParts::contains(const AcGePoint3d& q, const AcGeTol& tol) const {
  return closest(q).isEqualTo(q, tol);
}

bool AcGeLinearParts::colinear(const AcGeLinearParts& o, const AcGeTol& tol) const {
  return parallel(o, tol) && at(footParam(o.p)).isEqualTo(o.p, tol);
}

bool AcGeLinearParts::intersect(const AcGeLinearParts& o, const AcGeTol& tol, double& s, double& t) const {
  if (degenerate(tol) || o.degenerate(tol) || parallel(o, tol)) return false;
  // The nearest points of the two carrying lines.
  AcGeVector3d r = p - o.p;
  double a = v.lengthSqrd(), b = v.dotProduct(o.v), e = o.v.lengthSqrd();
  double c = v.dotProduct(r), f = o.v.dotProduct(r);
  double den = a * e - b * b;
  s = (b * f - c * e) / den;
  t = (a * f - b * c) / den;
  return at(s).isEqualTo(o.at(t), tol) && inRange(s, tol) && o.inRange(t, tol);
}

bool AcGeLinearParts::projIntersect(const AcGeLinearParts& o, const AcGeVector3d& dir, const AcGeTol& tol,
                                    double& s, double& t) const {
  AcGeVector3d d = dir.normal(tol);
  if (d.isZeroLength(tol) || degenerate(tol) || o.degenerate(tol)) return false;
  // Both entities flattened onto the plane through the origin normal to d;
  // there the carrying lines meet unless parallel, and the parameters carry
  // back unchanged.
  AcGeLinearParts a = *this, b = o;
  a.p = AcGePoint3d::kOrigin + p.asVector().orthoProject(d);
  a.v = v.orthoProject(d);
  b.p = AcGePoint3d::kOrigin + o.p.asVector().orthoProject(d);
  b.v = o.v.orthoProject(d);
  // An entity running along d flattens to a point.
  if (a.v.length() <= tol.equalVector() * v.length() || b.v.length() <= tol.equalVector() * o.v.length())
    return false;
  AcGeTol loose = tol;
  loose.setEqualPoint(std::numeric_limits<double>::infinity());
  if (!a.intersect(b, loose, s, t)) return false;
  return inRange(s, tol) && o.inRange(t, tol);
}

void AcGeLinearParts::closestPair(const AcGeLinearParts& o, const AcGeTol& tol, double& s, double& t) const {
  double a = v.lengthSqrd(), e = o.v.lengthSqrd();
  if (a == 0.0 || e == 0.0) {
    s = a == 0.0 ? clamp(0.0) : clamp(footParam(o.p));
    t = e == 0.0 ? o.clamp(0.0) : o.clamp(o.footParam(at(s)));
    return;
  }
  if (parallel(o, tol)) {
    // The other's range seen on this entity; the first common place, else
    // the end of this entity nearest the other.
    double t0 = o.lo, t1 = o.hi;
    double k = o.v.dotProduct(v) / a, base = footParam(o.p);
    double s0 = std::isfinite(t0) ? base + k * t0 : (k > 0 ? -kInf : kInf);
    double s1 = std::isfinite(t1) ? base + k * t1 : (k > 0 ? kInf : -kInf);
    if (s0 > s1) std::swap(s0, s1);
    double from = std::max(lo, s0), to = std::min(hi, s1);
    if (from <= to)
      s = std::isfinite(from) ? from : std::isfinite(to) ? to : base;
    else
      s = s1 < lo ? lo : hi;
    t = o.clamp(o.footParam(at(s)));
    return;
  }
  AcGeVector3d r = p - o.p;
  double b = v.dotProduct(o.v), c = v.dotProduct(r), f = o.v.dotProduct(r);
  double den = a * e - b * b;
  s = clamp((b * f - c * e) / den);
  t = o.clamp((b * s + f) / e);
  s = clamp((b * t - c) / a);
}

bool AcGeLinearParts::overlap(const AcGeLinearParts& o, const AcGeTol& tol, double& s0, double& s1) const {
  if (degenerate(tol) || o.degenerate(tol) || !colinear(o, tol)) return false;
  double k = o.v.dotProduct(v) / v.lengthSqrd(), base = footParam(o.p);
  double a = std::isfinite(o.lo) ? base + k * o.lo : (k > 0 ? -kInf : kInf);
  double b = std::isfinite(o.hi) ? base + k * o.hi : (k > 0 ? kInf : -kInf);
  if (a > b) std::swap(a, b);
  s0 = std::max(lo, a);
  s1 = std::min(hi, b);
  if (!std::isfinite(s0) || !std::isfinite(s1)) return s0 < s1;
  return (s1 - s0) * v.length() > tol.equalPoint();
}

// --- AcGeEntity3d and AcGeEntity2d ----------------------------------------

AcGeEntity3d& AcGeEntity3d::translateBy(const AcGeVector3d& translateVec) {
  return transformBy(AcGeMatrix3d::translation(translateVec));
}
AcGeEntity3d& AcGeEntity3d::rotateBy(double angle, const AcGeVector3d& vec, const AcGePoint3d& wrtPoint) {
  return transformBy(AcGeMatrix3d::rotation(angle, vec, wrtPoint));
}
AcGeEntity3d& AcGeEntity3d::mirror(const AcGePlane& plane) { return transformBy(AcGeMatrix3d::mirroring(plane)); }
AcGeEntity3d& AcGeEntity3d::scaleBy(double scaleFactor, const AcGePoint3d& wrtPoint) {
  return transformBy(AcGeMatrix3d::scaling(scaleFactor, wrtPoint));
}

AcGeEntity2d& AcGeEntity2d::translateBy(const AcGeVector2d& translateVec) {
  return transformBy(AcGeMatrix2d::translation(translateVec));
}
AcGeEntity2d& AcGeEntity2d::rotateBy(double angle, const AcGePoint2d& wrtPoint) {
  return transformBy(AcGeMatrix2d::rotation(angle, wrtPoint));
}
AcGeEntity2d& AcGeEntity2d::mirror(const AcGeLine2d& line) { return transformBy(AcGeMatrix2d::mirroring(line)); }
AcGeEntity2d& AcGeEntity2d::scaleBy(double scaleFactor, const AcGePoint2d& wrtPoint) {
  return transformBy(AcGeMatrix2d::scaling(scaleFactor, wrtPoint));
}

// --- AcGeLinearEnt3d ------------------------------------------------------

bool AcGeLinearEnt3d::intersectWith(const AcGeLinearEnt3d& line, AcGePoint3d& intPt, const AcGeTol& tol) const {
  AcGeLinearParts a = AcGeLinearParts::of(*this);
  double s, t;
  if (!a.intersect(AcGeLinearParts::of(line), tol, s, t)) return false;
  intPt = a.at(s);
  return true;
}

bool AcGeLinearEnt3d::intersectWith(const AcGePlanarEnt& plane, AcGePoint3d& intPnt, const AcGeTol& tol) const {
  return plane.intersectWith(*this, intPnt, tol);
}

bool AcGeLinearEnt3d::projIntersectWith(const AcGeLinearEnt3d& line, const AcGeVector3d& projDir,
                                        AcGePoint3d& pntOnThisLine, AcGePoint3d& pntOnOtherLine,
                                        const AcGeTol& tol) const {
  AcGeLinearParts a = AcGeLinearParts::of(*this), b = AcGeLinearParts::of(line);
  double s, t;
  if (!a.projIntersect(b, projDir, tol, s, t)) return false;
  pntOnThisLine = a.at(s);
  pntOnOtherLine = b.at(t);
  return true;
}

bool AcGeLinearEnt3d::overlap(const AcGeLinearEnt3d& line, AcGeLinearEnt3d*& overlap, const AcGeTol& tol) const {
  overlap = nullptr;
  AcGeLinearParts a = AcGeLinearParts::of(*this);
  double s0, s1;
  if (!a.overlap(AcGeLinearParts::of(line), tol, s0, s1)) return false;
  if (std::isfinite(s0) && std::isfinite(s1))
    overlap = new AcGeLineSeg3d(a.at(s0), a.at(s1));
  else
    overlap = new AcGeLine3d(point_, vector_);
  return true;
}

bool AcGeLinearEnt3d::isOn(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  return AcGeLinearParts::of(*this).contains(pnt, tol);
}

bool AcGeLinearEnt3d::isOn(const AcGePoint3d& pnt, double& param, const AcGeTol& tol) const {
  AcGeLinearParts a = AcGeLinearParts::of(*this);
  if (!a.contains(pnt, tol)) return false;
  param = a.footParam(pnt);
  return true;
}

bool AcGeLinearEnt3d::isOn(double param, const AcGeTol& tol) const {
  return AcGeLinearParts::of(*this).inRange(param, tol);
}

bool AcGeLinearEnt3d::isOn(const AcGePlanarEnt& plane, const AcGeTol& tol) const {
  return !vector_.isZeroLength(tol) && isParallelTo(plane, tol) && plane.isOn(point_, tol);
}

bool AcGeLinearEnt3d::isParallelTo(const AcGeLinearEnt3d& line, const AcGeTol& tol) const {
  return vector_.isParallelTo(line.vector_, tol);
}

bool AcGeLinearEnt3d::isParallelTo(const AcGePlanarEnt& plane, const AcGeTol& tol) const {
  return vector_.isPerpendicularTo(plane.normal(), tol);
}

bool AcGeLinearEnt3d::isPerpendicularTo(const AcGeLinearEnt3d& line, const AcGeTol& tol) const {
  return vector_.isPerpendicularTo(line.vector_, tol);
}

bool AcGeLinearEnt3d::isPerpendicularTo(const AcGePlanarEnt& plane, const AcGeTol& tol) const {
  return vector_.isParallelTo(plane.normal(), tol);
}

bool AcGeLinearEnt3d::isColinearTo(const AcGeLinearEnt3d& line, const AcGeTol& tol) const {
  return AcGeLinearParts::of(*this).colinear(AcGeLinearParts::of(line), tol);
}

void AcGeLinearEnt3d::getPerpPlane(const AcGePoint3d& pnt, AcGePlane& plane) const { plane.set(pnt, vector_); }

void AcGeLinearEnt3d::getLine(AcGeLine3d& line) const { line.set(point_, vector_); }

AcGePoint3d AcGeLinearEnt3d::closestPointTo(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  return AcGeLinearParts::of(*this).closest(pnt);
}

AcGePoint3d AcGeLinearEnt3d::closestPointTo(const AcGeLinearEnt3d& line, AcGePoint3d& pntOnOtherCrv,
                                            const AcGeTol& tol) const {
  AcGeLinearParts a = AcGeLinearParts::of(*this), b = AcGeLinearParts::of(line);
  double s, t;
  a.closestPair(b, tol, s, t);
  pntOnOtherCrv = b.at(t);
  return a.at(s);
}

double AcGeLinearEnt3d::distanceTo(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  return closestPointTo(pnt, tol).distanceTo(pnt);
}

double AcGeLinearEnt3d::distanceTo(const AcGeLinearEnt3d& line, const AcGeTol& tol) const {
  AcGePoint3d other;
  return closestPointTo(line, other, tol).distanceTo(other);
}

double AcGeLinearEnt3d::paramOf(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  return AcGeLinearParts::of(*this).footParam(pnt);
}

bool AcGeLinearEnt3d::isBounded() const { return AcGeLinearParts::of(*this).bounded(); }

AcGeLinearEnt3d& AcGeLinearEnt3d::transformBy(const AcGeMatrix3d& xfm) {
  point_.transformBy(xfm);
  vector_.transformBy(xfm);
  return *this;
}

// --- AcGeLine3d and AcGeLineSeg3d -----------------------------------------

const AcGeLine3d AcGeLine3d::kXAxis(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(1.0, 0.0, 0.0));
const AcGeLine3d AcGeLine3d::kYAxis(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(0.0, 1.0, 0.0));
const AcGeLine3d AcGeLine3d::kZAxis(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(0.0, 0.0, 1.0));

AcGeLine3d& AcGeLine3d::set(const AcGePoint3d& pnt, const AcGeVector3d& vec) {
  point_ = pnt;
  vector_ = vec;
  return *this;
}

AcGeLine3d& AcGeLine3d::set(const AcGePoint3d& pnt1, const AcGePoint3d& pnt2) { return set(pnt1, pnt2 - pnt1); }

bool AcGeLine3d::isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol) const {
  return ent.type() == AcGe::kLine3d && isColinearTo(static_cast<const AcGeLine3d&>(ent), tol);
}

void AcGeLine3d::getInterval(double& lower, double& upper) const {
  lower = -kInf;
  upper = kInf;
}

AcGeLineSeg3d& AcGeLineSeg3d::set(const AcGePoint3d& pnt1, const AcGePoint3d& pnt2) {
  point_ = pnt1;
  vector_ = pnt2 - pnt1;
  return *this;
}

AcGeLineSeg3d& AcGeLineSeg3d::set(const AcGePoint3d& pnt, const AcGeVector3d& vec) {
  point_ = pnt;
  vector_ = vec;
  return *this;
}

void AcGeLineSeg3d::getBisector(AcGePlane& plane) const { plane.set(midPoint(), vector_); }

bool AcGeLineSeg3d::isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol) const {
  if (ent.type() != AcGe::kLineSeg3d) return false;
  const auto& o = static_cast<const AcGeLineSeg3d&>(ent);
  return (startPoint().isEqualTo(o.startPoint(), tol) && endPoint().isEqualTo(o.endPoint(), tol)) ||
         (startPoint().isEqualTo(o.endPoint(), tol) && endPoint().isEqualTo(o.startPoint(), tol));
}

void AcGeLineSeg3d::getInterval(double& lower, double& upper) const {
  lower = 0.0;
  upper = 1.0;
}

// --- AcGeLinearEnt2d ------------------------------------------------------

bool AcGeLinearEnt2d::intersectWith(const AcGeLinearEnt2d& line, AcGePoint2d& intPnt, const AcGeTol& tol) const {
  AcGeLinearParts a = AcGeLinearParts::of(*this);
  double s, t;
  if (!a.intersect(AcGeLinearParts::of(line), tol, s, t)) return false;
  intPnt = evalPoint(s);
  return true;
}

bool AcGeLinearEnt2d::overlap(const AcGeLinearEnt2d& line, AcGeLinearEnt2d*& overlap, const AcGeTol& tol) const {
  overlap = nullptr;
  double s0, s1;
  if (!AcGeLinearParts::of(*this).overlap(AcGeLinearParts::of(line), tol, s0, s1)) return false;
  if (std::isfinite(s0) && std::isfinite(s1))
    overlap = new AcGeLineSeg2d(evalPoint(s0), evalPoint(s1));
  else
    overlap = new AcGeLine2d(point_, vector_);
  return true;
}

bool AcGeLinearEnt2d::isOn(const AcGePoint2d& pnt, const AcGeTol& tol) const {
  return AcGeLinearParts::of(*this).contains(lift(pnt), tol);
}

bool AcGeLinearEnt2d::isOn(const AcGePoint2d& pnt, double& param, const AcGeTol& tol) const {
  AcGeLinearParts a = AcGeLinearParts::of(*this);
  if (!a.contains(lift(pnt), tol)) return false;
  param = a.footParam(lift(pnt));
  return true;
}

bool AcGeLinearEnt2d::isOn(double param, const AcGeTol& tol) const {
  return AcGeLinearParts::of(*this).inRange(param, tol);
}

bool AcGeLinearEnt2d::isParallelTo(const AcGeLinearEnt2d& line, const AcGeTol& tol) const {
  return vector_.isParallelTo(line.vector_, tol);
}

bool AcGeLinearEnt2d::isPerpendicularTo(const AcGeLinearEnt2d& line, const AcGeTol& tol) const {
  return vector_.isPerpendicularTo(line.vector_, tol);
}

bool AcGeLinearEnt2d::isColinearTo(const AcGeLinearEnt2d& line, const AcGeTol& tol) const {
  return AcGeLinearParts::of(*this).colinear(AcGeLinearParts::of(line), tol);
}

void AcGeLinearEnt2d::getPerpLine(const AcGePoint2d& pnt, AcGeLine2d& perpLine) const {
  perpLine.set(pnt, vector_.perpVector());
}

void AcGeLinearEnt2d::getLine(AcGeLine2d& line) const { line.set(point_, vector_); }

AcGePoint2d AcGeLinearEnt2d::closestPointTo(const AcGePoint2d& pnt, const AcGeTol& tol) const {
  return drop(AcGeLinearParts::of(*this).closest(lift(pnt)));
}

AcGePoint2d AcGeLinearEnt2d::closestPointTo(const AcGeLinearEnt2d& line, AcGePoint2d& pntOnOtherCrv,
                                            const AcGeTol& tol) const {
  AcGeLinearParts a = AcGeLinearParts::of(*this), b = AcGeLinearParts::of(line);
  double s, t;
  a.closestPair(b, tol, s, t);
  pntOnOtherCrv = line.evalPoint(t);
  return evalPoint(s);
}

double AcGeLinearEnt2d::distanceTo(const AcGePoint2d& pnt, const AcGeTol& tol) const {
  return closestPointTo(pnt, tol).distanceTo(pnt);
}

double AcGeLinearEnt2d::distanceTo(const AcGeLinearEnt2d& line, const AcGeTol& tol) const {
  AcGePoint2d other;
  return closestPointTo(line, other, tol).distanceTo(other);
}

double AcGeLinearEnt2d::paramOf(const AcGePoint2d& pnt, const AcGeTol& tol) const {
  return AcGeLinearParts::of(*this).footParam(lift(pnt));
}

bool AcGeLinearEnt2d::isBounded() const { return AcGeLinearParts::of(*this).bounded(); }

AcGeLinearEnt2d& AcGeLinearEnt2d::transformBy(const AcGeMatrix2d& xfm) {
  point_.transformBy(xfm);
  vector_.transformBy(xfm);
  return *this;
}

// --- AcGeLine2d and AcGeLineSeg2d -----------------------------------------

const AcGeLine2d AcGeLine2d::kXAxis(AcGePoint2d(0.0, 0.0), AcGeVector2d(1.0, 0.0));
const AcGeLine2d AcGeLine2d::kYAxis(AcGePoint2d(0.0, 0.0), AcGeVector2d(0.0, 1.0));

AcGeLine2d& AcGeLine2d::set(const AcGePoint2d& pnt, const AcGeVector2d& vec) {
  point_ = pnt;
  vector_ = vec;
  return *this;
}

AcGeLine2d& AcGeLine2d::set(const AcGePoint2d& pnt1, const AcGePoint2d& pnt2) { return set(pnt1, pnt2 - pnt1); }

bool AcGeLine2d::isEqualTo(const AcGeEntity2d& ent, const AcGeTol& tol) const {
  return ent.type() == AcGe::kLine2d && isColinearTo(static_cast<const AcGeLine2d&>(ent), tol);
}

void AcGeLine2d::getInterval(double& lower, double& upper) const {
  lower = -kInf;
  upper = kInf;
}

AcGeLineSeg2d& AcGeLineSeg2d::set(const AcGePoint2d& pnt1, const AcGePoint2d& pnt2) {
  point_ = pnt1;
  vector_ = pnt2 - pnt1;
  return *this;
}

AcGeLineSeg2d& AcGeLineSeg2d::set(const AcGePoint2d& pnt, const AcGeVector2d& vec) {
  point_ = pnt;
  vector_ = vec;
  return *this;
}

void AcGeLineSeg2d::getBisector(AcGeLine2d& line) const { line.set(midPoint(), vector_.perpVector()); }

bool AcGeLineSeg2d::isEqualTo(const AcGeEntity2d& ent, const AcGeTol& tol) const {
  if (ent.type() != AcGe::kLineSeg2d) return false;
  const auto& o = static_cast<const AcGeLineSeg2d&>(ent);
  return (startPoint().isEqualTo(o.startPoint(), tol) && endPoint().isEqualTo(o.endPoint(), tol)) ||
         (startPoint().isEqualTo(o.endPoint(), tol) && endPoint().isEqualTo(o.startPoint(), tol));
}

void AcGeLineSeg2d::getInterval(double& lower, double& upper) const {
  lower = 0.0;
  upper = 1.0;
}
