// Vectors and points in space.
#include <cmath>
#include <numbers>

#include "host/gemat3d.h"
#include "host/gepnt2d.h"
#include "host/gepnt3d.h"
#include "host/geplane.h"
#include "host/gevec2d.h"
#include "host/gevec3d.h"

// --- AcGeVector3d ---------------------------------------------------------

AcGeVector3d::AcGeVector3d(const AcGePlanarEnt& pln, const AcGeVector2d& vec) { set(pln, vec); }

AcGeVector3d& AcGeVector3d::set(const AcGePlanarEnt& pln, const AcGeVector2d& vec) {
  AcGePoint3d origin;
  AcGeVector3d u, v;
  pln.getCoordSystem(origin, u, v);
  return *this = u * vec.x + v * vec.y;
}

AcGeVector3d& AcGeVector3d::setToProduct(const AcGeMatrix3d& mat, const AcGeVector3d& v) {
  const auto& e = mat.entry;
  return *this = AcGeVector3d(e[0][0] * v.x + e[0][1] * v.y + e[0][2] * v.z,
                              e[1][0] * v.x + e[1][1] * v.y + e[1][2] * v.z,
                              e[2][0] * v.x + e[2][1] * v.y + e[2][2] * v.z);
}

AcGeVector3d operator*(const AcGeMatrix3d& mat, const AcGeVector3d& vec) {
  AcGeVector3d r;
  return r.setToProduct(mat, vec);
}

AcGeVector3d& AcGeVector3d::transformBy(const AcGeMatrix3d& leftSide) {
  return setToProduct(leftSide, AcGeVector3d(*this));
}

AcGeVector3d& AcGeVector3d::rotateBy(double ang, const AcGeVector3d& axis) {
  return transformBy(AcGeMatrix3d::rotation(ang, axis));
}

AcGeVector3d& AcGeVector3d::mirror(const AcGeVector3d& normalToPlane) {
  AcGeVector3d n = normalToPlane.normal();
  if (n.isZeroLength()) return *this;
  return *this -= n * (2.0 * dotProduct(n));
}

AcGeVector3d AcGeVector3d::project(const AcGeVector3d& planeNormal,
                                   const AcGeVector3d& projectDirection) const {
  AcGe::ErrorCondition flag;
  return project(planeNormal, projectDirection, AcGeContext::gTol, flag);
}

AcGeVector3d AcGeVector3d::project(const AcGeVector3d& planeNormal, const AcGeVector3d& projectDirection,
                                   const AcGeTol& tol, AcGe::ErrorCondition& flag) const {
  AcGeVector3d n = planeNormal.normal(tol);
  AcGeVector3d d = projectDirection.normal(tol);
  double nd = n.dotProduct(d);
  if (n.isZeroLength(tol) || d.isZeroLength(tol) || std::fabs(nd) <= tol.equalVector()) {
    flag = AcGe::kDegenerateGeometry;
    return *this;
  }
  flag = AcGe::kOk;
  return *this - d * (dotProduct(n) / nd);
}

AcGeVector3d AcGeVector3d::orthoProject(const AcGeVector3d& planeNormal) const {
  AcGe::ErrorCondition flag;
  return orthoProject(planeNormal, AcGeContext::gTol, flag);
}

AcGeVector3d AcGeVector3d::orthoProject(const AcGeVector3d& planeNormal, const AcGeTol& tol,
                                        AcGe::ErrorCondition& flag) const {
  AcGeVector3d n = planeNormal.normal(tol);
  if (n.isZeroLength(tol)) {
    flag = AcGe::kDegenerateGeometry;
    return *this;
  }
  flag = AcGe::kOk;
  return *this - n * dotProduct(n);
}

AcGeVector2d AcGeVector3d::convert2d(const AcGePlanarEnt& pln) const {
  AcGePoint3d origin;
  AcGeVector3d u, v;
  pln.getCoordSystem(origin, u, v);
  return {dotProduct(u), dotProduct(v)};
}

AcGeVector2d AcGeVector3d::convert2d() const { return {x, y}; }

double AcGeVector3d::angleTo(const AcGeVector3d& vec) const {
  // atan2 of sine and cosine keeps full precision near 0 and pi, where acos
  // of the dot product does not.
  return std::atan2(crossProduct(vec).length(), dotProduct(vec));
}

double AcGeVector3d::angleTo(const AcGeVector3d& vec, const AcGeVector3d& refVec) const {
  double a = angleTo(vec);
  if (refVec.dotProduct(crossProduct(vec)) >= 0.0) return a;
  return 2.0 * std::numbers::pi - a;
}

unsigned int AcGeVector3d::largestElement() const {
  unsigned int i = 0;
  if (std::fabs(y) > std::fabs(x)) i = 1;
  if (std::fabs(z) > std::fabs((*this)[i])) i = 2;
  return i;
}

AcGeVector3d AcGeVector3d::normal(const AcGeTol& tol) const {
  double len = length();
  if (len <= tol.equalVector()) return *this;
  return *this / len;
}

AcGeVector3d& AcGeVector3d::normalize(const AcGeTol& tol) { return *this = normal(tol); }

AcGeVector3d& AcGeVector3d::normalize(const AcGeTol& tol, AcGe::ErrorCondition& flag) {
  flag = isZeroLength(tol) ? AcGe::kDegenerateGeometry : AcGe::kOk;
  return normalize(tol);
}

AcGeVector3d AcGeVector3d::perpVector() const {
  AcGeVector3d n = normal();
  if (n.isZeroLength()) return AcGeVector3d(0.0, 0.0, 0.0);
  constexpr double kLimit = 1.0 / 64.0;
  AcGeVector3d r = (std::fabs(n.x) < kLimit && std::fabs(n.y) < kLimit) ? kYAxis.crossProduct(n)
                                                                         : kZAxis.crossProduct(n);
  return r.normal();
}

AcGeMatrix3d AcGeVector3d::rotateTo(const AcGeVector3d& vec, const AcGeVector3d& axis) const {
  const AcGeTol& tol = AcGeContext::gTol;
  AcGeVector3d u = normal(), w = vec.normal();
  if (u.isZeroLength() || w.isZeroLength()) return AcGeMatrix3d::kIdentity;
  AcGeVector3d c = u.crossProduct(w);
  double sine = c.length(), cosine = u.dotProduct(w);
  if (sine > tol.equalVector()) return AcGeMatrix3d::rotation(std::atan2(sine, cosine), c);
  if (cosine > 0.0) return AcGeMatrix3d::kIdentity;
  AcGeVector3d a = axis - u * axis.dotProduct(u);
  if (a.isZeroLength()) a = u.perpVector();
  return AcGeMatrix3d::rotation(std::numbers::pi, a);
}

bool AcGeVector3d::isUnitLength(const AcGeTol& tol) const {
  return std::fabs(length() - 1.0) <= tol.equalVector();
}

bool AcGeVector3d::isZeroLength(const AcGeTol& tol) const { return length() <= tol.equalVector(); }

bool AcGeVector3d::isParallelTo(const AcGeVector3d& vec, const AcGeTol& tol) const {
  AcGe::ErrorCondition flag;
  return isParallelTo(vec, tol, flag);
}

bool AcGeVector3d::isParallelTo(const AcGeVector3d& vec, const AcGeTol& tol,
                                AcGe::ErrorCondition& flag) const {
  if (isZeroLength(tol) || vec.isZeroLength(tol)) {
    flag = AcGe::kDegenerateGeometry;
    return false;
  }
  flag = AcGe::kOk;
  return normal(tol).crossProduct(vec.normal(tol)).length() <= tol.equalVector();
}

bool AcGeVector3d::isCodirectionalTo(const AcGeVector3d& vec, const AcGeTol& tol) const {
  AcGe::ErrorCondition flag;
  return isCodirectionalTo(vec, tol, flag);
}

bool AcGeVector3d::isCodirectionalTo(const AcGeVector3d& vec, const AcGeTol& tol,
                                     AcGe::ErrorCondition& flag) const {
  return isParallelTo(vec, tol, flag) && dotProduct(vec) > 0.0;
}

bool AcGeVector3d::isPerpendicularTo(const AcGeVector3d& vec, const AcGeTol& tol) const {
  AcGe::ErrorCondition flag;
  return isPerpendicularTo(vec, tol, flag);
}

bool AcGeVector3d::isPerpendicularTo(const AcGeVector3d& vec, const AcGeTol& tol,
                                     AcGe::ErrorCondition& flag) const {
  if (isZeroLength(tol) || vec.isZeroLength(tol)) {
    flag = AcGe::kDegenerateGeometry;
    return false;
  }
  flag = AcGe::kOk;
  return std::fabs(normal(tol).dotProduct(vec.normal(tol))) <= tol.equalVector();
}

bool AcGeVector3d::isEqualTo(const AcGeVector3d& vec, const AcGeTol& tol) const {
  return (*this - vec).length() <= tol.equalVector();
}

// --- AcGePoint3d ----------------------------------------------------------

AcGePoint3d::AcGePoint3d(const AcGePlanarEnt& pln, const AcGePoint2d& pnt2d) { set(pln, pnt2d); }

AcGePoint3d& AcGePoint3d::set(const AcGePlanarEnt& pln, const AcGePoint2d& pnt2d) {
  return *this = pln.evalPoint(pnt2d);
}

AcGePoint3d& AcGePoint3d::setToProduct(const AcGeMatrix3d& mat, const AcGePoint3d& p) {
  const auto& e = mat.entry;
  double rx = e[0][0] * p.x + e[0][1] * p.y + e[0][2] * p.z + e[0][3];
  double ry = e[1][0] * p.x + e[1][1] * p.y + e[1][2] * p.z + e[1][3];
  double rz = e[2][0] * p.x + e[2][1] * p.y + e[2][2] * p.z + e[2][3];
  double w = e[3][0] * p.x + e[3][1] * p.y + e[3][2] * p.z + e[3][3];
  if (w != 1.0 && w != 0.0) {
    rx /= w;
    ry /= w;
    rz /= w;
  }
  return set(rx, ry, rz);
}

AcGePoint3d operator*(const AcGeMatrix3d& mat, const AcGePoint3d& pnt) {
  AcGePoint3d r;
  return r.setToProduct(mat, pnt);
}

AcGePoint3d& AcGePoint3d::transformBy(const AcGeMatrix3d& leftSide) {
  return setToProduct(leftSide, AcGePoint3d(*this));
}

AcGePoint3d& AcGePoint3d::rotateBy(double angle, const AcGeVector3d& vec, const AcGePoint3d& wrtPoint) {
  return transformBy(AcGeMatrix3d::rotation(angle, vec, wrtPoint));
}

AcGePoint3d& AcGePoint3d::mirror(const AcGePlane& pln) {
  AcGeVector3d n = pln.normal();
  return *this -= n * (2.0 * pln.signedDistanceTo(*this));
}

AcGePoint3d& AcGePoint3d::scaleBy(double scaleFactor, const AcGePoint3d& wrtPoint) {
  return *this = wrtPoint + (*this - wrtPoint) * scaleFactor;
}

AcGePoint3d AcGePoint3d::project(const AcGePlane& pln, const AcGeVector3d& vec) const {
  const AcGeTol& tol = AcGeContext::gTol;
  AcGeVector3d n = pln.normal();
  AcGeVector3d d = vec.normal();
  double nd = n.dotProduct(d);
  if (n.isZeroLength() || d.isZeroLength() || std::fabs(nd) <= tol.equalVector()) return *this;
  return *this - d * (pln.signedDistanceTo(*this) / nd);
}

AcGePoint3d AcGePoint3d::orthoProject(const AcGePlane& pln) const { return pln.closestPointTo(*this); }

AcGePoint2d AcGePoint3d::convert2d(const AcGePlanarEnt& pln) const { return pln.paramOf(*this); }

AcGePoint2d AcGePoint3d::convert2d() const { return {x, y}; }
