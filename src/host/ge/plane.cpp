// Planes.
#include <cmath>

#include "host/ge/linear_parts.h"
#include "host/gelin3d.h"
#include "host/gemat3d.h"
#include "host/geplane.h"

// --- AcGePlanarEnt --------------------------------------------------------

void AcGePlanarEnt::setFrame(const AcGePoint3d& org, const AcGeVector3d& uDir, const AcGeVector3d& vDir) {
  origin_ = org;
  normal_ = uDir.crossProduct(vDir).normal();
  if (normal_.isZeroLength() || uDir.isZeroLength() || vDir.isZeroLength()) {
    // Parallel or zero directions: no plane. Keep a zero normal so that
    // every test fails, and whatever direction there is as u.
    normal_ = AcGeVector3d::kIdentity;
    uAxis_ = (uDir.isZeroLength() ? vDir : uDir).normal();
    vAxis_ = AcGeVector3d::kIdentity;
    return;
  }
  uAxis_ = uDir.normal();
  vAxis_ = normal_.crossProduct(uAxis_);
}

void AcGePlanarEnt::setFrameFromNormal(const AcGePoint3d& org, const AcGeVector3d& normal) {
  origin_ = org;
  normal_ = normal.normal();
  if (normal_.isZeroLength()) {
    normal_ = uAxis_ = vAxis_ = AcGeVector3d::kIdentity;
    return;
  }
  uAxis_ = normal_.perpVector();
  vAxis_ = normal_.crossProduct(uAxis_);
}

bool AcGePlanarEnt::intersectWith(const AcGeLinearEnt3d& linEnt, AcGePoint3d& intPnt, const AcGeTol& tol) const {
  AcGeLinearParts a = AcGeLinearParts::of(linEnt);
  if (normal_.isZeroLength(tol) || a.degenerate(tol)) return false;
  double nv = normal_.dotProduct(a.v);
  if (std::fabs(nv) <= tol.equalVector() * a.v.length()) return false;
  double s = normal_.dotProduct(origin_ - a.p) / nv;
  if (!a.inRange(s, tol)) return false;
  intPnt = a.at(s);
  return true;
}

AcGePoint3d AcGePlanarEnt::closestPointTo(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  return pnt - normal_ * normal_.dotProduct(pnt - origin_);
}

bool AcGePlanarEnt::isOn(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  return !normal_.isZeroLength(tol) && std::fabs(normal_.dotProduct(pnt - origin_)) <= tol.equalPoint();
}

bool AcGePlanarEnt::isParallelTo(const AcGeLinearEnt3d& linEnt, const AcGeTol& tol) const {
  return linEnt.isParallelTo(*this, tol);
}

bool AcGePlanarEnt::isParallelTo(const AcGePlanarEnt& otherPlnEnt, const AcGeTol& tol) const {
  return normal_.isParallelTo(otherPlnEnt.normal_, tol);
}

bool AcGePlanarEnt::isPerpendicularTo(const AcGeLinearEnt3d& linEnt, const AcGeTol& tol) const {
  return linEnt.isPerpendicularTo(*this, tol);
}

bool AcGePlanarEnt::isPerpendicularTo(const AcGePlanarEnt& otherPlnEnt, const AcGeTol& tol) const {
  return normal_.isPerpendicularTo(otherPlnEnt.normal_, tol);
}

bool AcGePlanarEnt::isCoplanarTo(const AcGePlanarEnt& otherPlnEnt, const AcGeTol& tol) const {
  return isParallelTo(otherPlnEnt, tol) && isOn(otherPlnEnt.origin_, tol);
}

void AcGePlanarEnt::get(AcGePoint3d& pntU, AcGePoint3d& org, AcGePoint3d& pntV) const {
  pntU = origin_ + uAxis_;
  org = origin_;
  pntV = origin_ + vAxis_;
}

void AcGePlanarEnt::getCoefficients(double& a, double& b, double& c, double& d) const {
  a = normal_.x;
  b = normal_.y;
  c = normal_.z;
  d = -normal_.dotProduct(origin_.asVector());
}

void AcGePlanarEnt::getCoordSystem(AcGePoint3d& origin, AcGeVector3d& axis1, AcGeVector3d& axis2) const {
  origin = origin_;
  axis1 = uAxis_;
  axis2 = vAxis_;
}

AcGePoint3d AcGePlanarEnt::evalPoint(const AcGePoint2d& param) const {
  return origin_ + uAxis_ * param.x + vAxis_ * param.y;
}

AcGePoint2d AcGePlanarEnt::paramOf(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  AcGeVector3d d = pnt - origin_;
  return {d.dotProduct(uAxis_), d.dotProduct(vAxis_)};
}

AcGePlanarEnt& AcGePlanarEnt::transformBy(const AcGeMatrix3d& xfm) {
  AcGeVector3d u = xfm * uAxis_, v = xfm * vAxis_;
  AcGePoint3d o = xfm * origin_;
  if (normal_.isZeroLength()) {
    origin_ = o;
    uAxis_ = u.normal();
    return *this;
  }
  setFrame(o, u, v);
  // The frame u x v turns with the handedness of the matrix; the normal goes
  // with the points instead (as the inverse transpose carries it), so a
  // reflection turns it over.
  if (xfm.det() < 0.0) {
    normal_ = -normal_;
    vAxis_ = -vAxis_;
  }
  return *this;
}

// --- AcGePlane ------------------------------------------------------------

const AcGePlane AcGePlane::kXYPlane(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 0, 0), AcGeVector3d(0, 1, 0));
const AcGePlane AcGePlane::kYZPlane(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 1, 0), AcGeVector3d(0, 0, 1));
const AcGePlane AcGePlane::kZXPlane(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0));

AcGePlane::AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& normal) { set(origin, normal); }
AcGePlane::AcGePlane(const AcGePoint3d& pntU, const AcGePoint3d& org, const AcGePoint3d& pntV) {
  set(pntU, org, pntV);
}
AcGePlane::AcGePlane(const AcGePoint3d& org, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis) {
  set(org, uAxis, vAxis);
}
AcGePlane::AcGePlane(double a, double b, double c, double d) { set(a, b, c, d); }

AcGePlane& AcGePlane::set(const AcGePoint3d& pnt, const AcGeVector3d& normal) {
  setFrameFromNormal(pnt, normal);
  return *this;
}

AcGePlane& AcGePlane::set(const AcGePoint3d& pntU, const AcGePoint3d& org, const AcGePoint3d& pntV) {
  setFrame(org, pntU - org, pntV - org);
  return *this;
}

AcGePlane& AcGePlane::set(double a, double b, double c, double d) {
  AcGeVector3d n(a, b, c);
  double nn = n.lengthSqrd();
  AcGePoint3d origin = nn == 0.0 ? AcGePoint3d::kOrigin : AcGePoint3d::kOrigin - n * (d / nn);
  setFrameFromNormal(origin, n);
  return *this;
}

AcGePlane& AcGePlane::set(const AcGePoint3d& org, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis) {
  setFrame(org, uAxis, vAxis);
  return *this;
}

double AcGePlane::signedDistanceTo(const AcGePoint3d& pnt) const { return normal_.dotProduct(pnt - origin_); }

double AcGePlane::distanceTo(const AcGePoint3d& pnt) const { return std::fabs(signedDistanceTo(pnt)); }

bool AcGePlane::intersectWith(const AcGePlane& otherPln, AcGeLine3d& resultLine, const AcGeTol& tol) const {
  if (normal_.isZeroLength(tol) || otherPln.normal_.isZeroLength(tol)) return false;
  if (normal_.isParallelTo(otherPln.normal_, tol)) return false;
  AcGeVector3d dir = normal_.crossProduct(otherPln.normal_);
  // The point of the line nearest this origin o: o + a n1 + b n2 with
  // n1 . x = n1 . o (so a + b c = 0) and n2 . x = n2 . o2 (so a c + b = h),
  // where c = n1 . n2 and h = n2 . (o2 - o).
  double c = normal_.dotProduct(otherPln.normal_);
  double h = otherPln.normal_.dotProduct(otherPln.origin_ - origin_);
  double den = 1.0 - c * c;
  double b = h / den, a = -c * h / den;
  resultLine.set(origin_ + normal_ * a + otherPln.normal_ * b, dir.normal());
  return true;
}

bool AcGePlane::isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol) const {
  return ent.type() == AcGe::kPlane && isCoplanarTo(static_cast<const AcGePlane&>(ent), tol);
}
