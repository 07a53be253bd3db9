// Circular and elliptical arcs.
#include <algorithm>
#include <cmath>

#include "host/gearc3d.h"
#include "host/geell3d.h"
#include "host/gemat3d.h"
#include "host/geplane.h"

namespace {
constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2 * kPi;

// The end angle above the start by (0, 2 pi]; equal angles mean a full turn
// only when they were given as a full turn.
void orderAngles(double& s, double& e) {
  if (e - s >= kTwoPi) {
    e = s + kTwoPi;
    return;
  }
  double sweep = std::fmod(e - s, kTwoPi);
  if (sweep < 0) sweep += kTwoPi;
  if (sweep == 0.0 && e != s) sweep = kTwoPi;
  e = s + sweep;
}
}  // namespace

// ---------------------------------------------------------------- circular arcs

AcGeCircArc3d::AcGeCircArc3d(const AcGePoint3d& cent, const AcGeVector3d& nrm, double radius) {
  set(cent, nrm, radius);
}

AcGeCircArc3d::AcGeCircArc3d(const AcGePoint3d& cent, const AcGeVector3d& nrm, const AcGeVector3d& refVec,
                             double radius, double startAngle, double endAngle) {
  set(cent, nrm, refVec, radius, startAngle, endAngle);
}

AcGeCircArc3d::AcGeCircArc3d(const AcGePoint3d& s, const AcGePoint3d& m, const AcGePoint3d& e) { set(s, m, e); }

AcGeCircArc3d& AcGeCircArc3d::set(const AcGePoint3d& cent, const AcGeVector3d& nrm, double radius) {
  return set(cent, nrm, nrm.perpVector(), radius, 0.0, kTwoPi);
}

AcGeCircArc3d& AcGeCircArc3d::set(const AcGePoint3d& cent, const AcGeVector3d& nrm, const AcGeVector3d& refVec,
                                  double radius, double startAngle, double endAngle) {
  center_ = cent;
  normal_ = nrm.normal();
  if (normal_.isZeroLength()) normal_ = AcGeVector3d::kZAxis;
  // The reference vector made perpendicular to the normal.
  AcGeVector3d r = refVec - normal_ * refVec.dotProduct(normal_);
  refVec_ = r.isZeroLength() ? normal_.perpVector() : r.normal();
  radius_ = std::fabs(radius);
  startAng_ = startAngle;
  endAng_ = endAngle;
  orderAngles(startAng_, endAng_);
  return *this;
}

AcGeCircArc3d& AcGeCircArc3d::set(const AcGePoint3d& s, const AcGePoint3d& m, const AcGePoint3d& e) {
  AcGeVector3d a = m - s, b = e - s;
  AcGeVector3d n = a.crossProduct(b);
  double nn = n.lengthSqrd();
  if (nn <= 1e-30 * a.lengthSqrd() * b.lengthSqrd() || nn == 0.0) {
    center_ = s;
    radius_ = 0.0;
    normal_ = AcGeVector3d::kZAxis;
    refVec_ = AcGeVector3d::kXAxis;
    startAng_ = endAng_ = 0.0;
    return *this;
  }
  // Circumcentre: s + (|a|^2 (b x n) + |b|^2 (n x a)) / (2 |n|^2).
  AcGePoint3d c = s + (b.crossProduct(n) * a.lengthSqrd() + n.crossProduct(a) * b.lengthSqrd()) / (2 * nn);
  center_ = c;
  normal_ = n.normal();
  radius_ = c.distanceTo(s);
  refVec_ = (s - c).normal();
  startAng_ = 0.0;
  AcGeVector3d pe = e - c;
  endAng_ = std::atan2(pe.dotProduct(perp()), pe.dotProduct(refVec_));
  if (endAng_ <= 0) endAng_ += kTwoPi;
  return *this;
}

AcGeCircArc3d& AcGeCircArc3d::setAngles(double startAngle, double endAngle) {
  startAng_ = startAngle;
  endAng_ = endAngle;
  orderAngles(startAng_, endAng_);
  return *this;
}

void AcGeCircArc3d::getPlane(AcGePlane& plane) const { plane.set(center_, refVec_, perp()); }

bool AcGeCircArc3d::isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol) const {
  if (ent.type() != AcGe::kCircArc3d) return false;
  const auto& o = static_cast<const AcGeCircArc3d&>(ent);
  if (!center_.isEqualTo(o.center_, tol) || std::fabs(radius_ - o.radius_) > tol.equalPoint()) return false;
  if (!normal_.isParallelTo(o.normal_, tol)) return false;
  bool full = isClosed(tol), ofull = o.isClosed(tol);
  if (full || ofull) return full == ofull;
  bool same = normal_.isCodirectionalTo(o.normal_, tol);
  return same ? startPoint().isEqualTo(o.startPoint(), tol) && endPoint().isEqualTo(o.endPoint(), tol)
              : startPoint().isEqualTo(o.endPoint(), tol) && endPoint().isEqualTo(o.startPoint(), tol);
}

AcGeCircArc3d& AcGeCircArc3d::transformBy(const AcGeMatrix3d& xfm) {
  AcGeVector3d u = xfm * (refVec_ * radius_), v = xfm * (perp() * radius_);
  center_ = xfm * center_;
  radius_ = 0.5 * (u.length() + v.length());
  AcGeVector3d n = u.crossProduct(v);
  if (!u.isZeroLength() && !n.isZeroLength()) {
    refVec_ = u.normal();
    normal_ = n.normal();
  }
  return *this;
}

void AcGeCircArc3d::getInterval(double& lower, double& upper) const {
  lower = startAng_;
  upper = endAng_;
}

AcGePoint3d AcGeCircArc3d::evalPoint(double param) const {
  return center_ + (refVec_ * std::cos(param) + perp() * std::sin(param)) * radius_;
}

AcGePoint3d AcGeCircArc3d::evalPoint(double param, int numDeriv, AcGeVector3dArray& derivArray) const {
  derivArray.assign(std::max(0, numDeriv), AcGeVector3d());
  double c = std::cos(param), s = std::sin(param);
  AcGeVector3d p = perp();
  // The k-th derivative is the point's vector turned by k quarter turns.
  for (int k = 1; k <= numDeriv; ++k) {
    double ck = std::cos(param + k * kPi / 2), sk = std::sin(param + k * kPi / 2);
    derivArray[k - 1] = (refVec_ * ck + p * sk) * radius_;
  }
  return center_ + (refVec_ * c + p * s) * radius_;
}

double AcGeCircArc3d::angleOf(const AcGePoint3d& pnt) const {
  AcGeVector3d d = pnt - center_;
  double a = std::atan2(d.dotProduct(perp()), d.dotProduct(refVec_));
  double r = std::fmod(a - startAng_, kTwoPi);
  if (r < 0) r += kTwoPi;
  return startAng_ + r;
}

double AcGeCircArc3d::paramOf(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  AcGeVector3d d = pnt - center_;
  AcGeVector3d inPlane = d - normal_ * d.dotProduct(normal_);
  if (inPlane.length() <= tol.equalPoint() * 1e-3) return startAng_;
  double a = angleOf(pnt);
  if (a <= endAng_) return a;
  // Past the end: whichever end is nearer (within equalPoint of the start,
  // a point on a full turn is at the start).
  AcGePoint3d q = center_ + inPlane.normal() * radius_;
  double ds = q.distanceTo(startPoint()), de = q.distanceTo(endPoint());
  if (ds <= tol.equalPoint() && a - endAng_ > 0) return startAng_;
  return ds < de ? startAng_ : endAng_;
}

bool AcGeCircArc3d::isClosed(const AcGeTol& tol) const {
  return endAng_ - startAng_ >= kTwoPi - 1e-12 || startPoint().isEqualTo(endPoint(), tol) && radius_ > 0 &&
                                                     endAng_ - startAng_ > kPi;
}

bool AcGeCircArc3d::isPeriodic(double& period) const {
  period = kTwoPi;
  return endAng_ - startAng_ >= kTwoPi - 1e-12;
}

bool AcGeCircArc3d::isPlanar(AcGePlane& plane, const AcGeTol&) const {
  plane.set(center_, normal_);
  return true;
}

double AcGeCircArc3d::length(double fromParam, double toParam, double) const {
  return std::fabs(toParam - fromParam) * radius_;
}

double AcGeCircArc3d::paramAtLength(double datumParam, double len, bool posParamDir, double) const {
  if (radius_ == 0.0) return datumParam;
  double t = datumParam + (posParamDir ? len : -len) / radius_;
  return std::clamp(t, startAng_, endAng_);
}

AcGeCurve3d* AcGeCircArc3d::trimmedCopy(double fromParam, double toParam) const {
  double a = std::max(std::min(fromParam, toParam), startAng_);
  double b = std::min(std::max(fromParam, toParam), endAng_);
  if (!(a < b)) return nullptr;
  auto* r = new AcGeCircArc3d(*this);
  r->startAng_ = a;
  r->endAng_ = b;
  return r;
}

AcGeCurve3d& AcGeCircArc3d::reverseParam() {
  normal_ = -normal_;
  double s = -endAng_, e = -startAng_;
  double shift = std::floor(s / kTwoPi) * kTwoPi;
  startAng_ = s - shift;
  endAng_ = e - shift;
  return *this;
}

AcGeBoundBlock3d AcGeCircArc3d::orthoBoundBlock() const {
  AcGePoint3d s = startPoint();
  AcGeBoundBlock3d box(s, s);
  box.extend(endPoint());
  AcGeVector3d p = perp();
  for (int axis = 0; axis < 3; ++axis) {
    double t0 = std::atan2(p[axis], refVec_[axis]);
    for (int k = -2; k <= 3; ++k) {
      double t = t0 + k * kPi;
      if (t >= startAng_ && t <= endAng_) box.extend(evalPoint(t));
    }
  }
  return box;
}

// ---------------------------------------------------------------- elliptical arcs

AcGeEllipArc3d::AcGeEllipArc3d(const AcGeCircArc3d& arc) {
  AcGeVector3d ref = arc.refVec();
  set(arc.center(), ref, arc.normal().crossProduct(ref), arc.radius(), arc.radius(), arc.startAng(), arc.endAng());
}

AcGeEllipArc3d::AcGeEllipArc3d(const AcGePoint3d& cent, const AcGeVector3d& majorAxis,
                               const AcGeVector3d& minorAxis, double majorRadius, double minorRadius,
                               double startAngle, double endAngle) {
  set(cent, majorAxis, minorAxis, majorRadius, minorRadius, startAngle, endAngle);
}

AcGeEllipArc3d& AcGeEllipArc3d::set(const AcGePoint3d& cent, const AcGeVector3d& majorAxis,
                                    const AcGeVector3d& minorAxis, double majorRadius, double minorRadius,
                                    double startAngle, double endAngle) {
  center_ = cent;
  major_ = majorAxis.normal();
  AcGeVector3d m = minorAxis - major_ * minorAxis.dotProduct(major_);
  minor_ = m.isZeroLength() ? major_.perpVector() : m.normal();
  majorRadius_ = std::fabs(majorRadius);
  minorRadius_ = std::fabs(minorRadius);
  startAng_ = startAngle;
  endAng_ = endAngle;
  orderAngles(startAng_, endAng_);
  return *this;
}

AcGeEllipArc3d& AcGeEllipArc3d::setAngles(double startAngle, double endAngle) {
  startAng_ = startAngle;
  endAng_ = endAngle;
  orderAngles(startAng_, endAng_);
  return *this;
}

bool AcGeEllipArc3d::isCircular(const AcGeTol& tol) const {
  return std::fabs(majorRadius_ - minorRadius_) <= tol.equalPoint();
}

bool AcGeEllipArc3d::isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol) const {
  if (ent.type() != AcGe::kEllipArc3d) return false;
  const auto& o = static_cast<const AcGeEllipArc3d&>(ent);
  return center_.isEqualTo(o.center_, tol) && std::fabs(majorRadius_ - o.majorRadius_) <= tol.equalPoint() &&
         std::fabs(minorRadius_ - o.minorRadius_) <= tol.equalPoint() && major_.isParallelTo(o.major_, tol) &&
         normal().isParallelTo(o.normal(), tol) && startPoint().isEqualTo(o.startPoint(), tol) &&
         endPoint().isEqualTo(o.endPoint(), tol);
}

AcGeEllipArc3d& AcGeEllipArc3d::transformBy(const AcGeMatrix3d& xfm) {
  AcGeVector3d P = xfm * (major_ * majorRadius_), Q = xfm * (minor_ * minorRadius_);
  center_ = xfm * center_;
  // Points c + P cos t + Q sin t; the principal axes are at t0 with
  // tan 2 t0 = 2 P.Q / (P.P - Q.Q).
  double t0 = 0.5 * std::atan2(2 * P.dotProduct(Q), P.dotProduct(P) - Q.dotProduct(Q));
  AcGeVector3d A = P * std::cos(t0) + Q * std::sin(t0);
  AcGeVector3d B = -P * std::sin(t0) + Q * std::cos(t0);
  double shift = t0;
  if (B.length() > A.length()) {
    // The other axis is the major one: a quarter turn further.
    AcGeVector3d t = A;
    A = B;
    B = -t;
    shift += kPi / 2;
  }
  majorRadius_ = A.length();
  minorRadius_ = B.length();
  if (majorRadius_ > 0) major_ = A.normal();
  if (minorRadius_ > 0) minor_ = B.normal();
  startAng_ -= shift;
  endAng_ -= shift;
  return *this;
}

void AcGeEllipArc3d::getInterval(double& lower, double& upper) const {
  lower = startAng_;
  upper = endAng_;
}

AcGePoint3d AcGeEllipArc3d::evalPoint(double param) const {
  return center_ + major_ * (majorRadius_ * std::cos(param)) + minor_ * (minorRadius_ * std::sin(param));
}

AcGePoint3d AcGeEllipArc3d::evalPoint(double param, int numDeriv, AcGeVector3dArray& derivArray) const {
  derivArray.assign(std::max(0, numDeriv), AcGeVector3d());
  for (int k = 1; k <= numDeriv; ++k) {
    double t = param + k * kPi / 2;
    derivArray[k - 1] = major_ * (majorRadius_ * std::cos(t)) + minor_ * (minorRadius_ * std::sin(t));
  }
  return evalPoint(param);
}

bool AcGeEllipArc3d::isClosed(const AcGeTol&) const { return endAng_ - startAng_ >= kTwoPi - 1e-12; }

bool AcGeEllipArc3d::isPeriodic(double& period) const {
  period = kTwoPi;
  return isClosed();
}

bool AcGeEllipArc3d::isPlanar(AcGePlane& plane, const AcGeTol&) const {
  plane.set(center_, normal());
  return true;
}

AcGeCurve3d* AcGeEllipArc3d::trimmedCopy(double fromParam, double toParam) const {
  double a = std::max(std::min(fromParam, toParam), startAng_);
  double b = std::min(std::max(fromParam, toParam), endAng_);
  if (!(a < b)) return nullptr;
  auto* r = new AcGeEllipArc3d(*this);
  r->startAng_ = a;
  r->endAng_ = b;
  return r;
}

AcGeCurve3d& AcGeEllipArc3d::reverseParam() {
  minor_ = -minor_;
  double s = -endAng_, e = -startAng_;
  double shift = std::floor(s / kTwoPi) * kTwoPi;
  startAng_ = s - shift;
  endAng_ = e - shift;
  return *this;
}
