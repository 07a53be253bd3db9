// Vectors and points in the plane.
#include <cmath>
#include <numbers>

#include "host/gelin2d.h"
#include "host/gemat2d.h"
#include "host/gepnt2d.h"
#include "host/gevec2d.h"

// --- AcGeVector2d ---------------------------------------------------------

AcGeVector2d& AcGeVector2d::setToProduct(const AcGeMatrix2d& mat, const AcGeVector2d& v) {
  const auto& e = mat.entry;
  return *this = AcGeVector2d(e[0][0] * v.x + e[0][1] * v.y, e[1][0] * v.x + e[1][1] * v.y);
}

AcGeVector2d operator*(const AcGeMatrix2d& mat, const AcGeVector2d& vec) {
  AcGeVector2d r;
  return r.setToProduct(mat, vec);
}

AcGeVector2d& AcGeVector2d::transformBy(const AcGeMatrix2d& leftSide) {
  return setToProduct(leftSide, AcGeVector2d(*this));
}

AcGeVector2d& AcGeVector2d::rotateBy(double angle) {
  double c = std::cos(angle), s = std::sin(angle);
  return set(c * x - s * y, s * x + c * y);
}

AcGeVector2d& AcGeVector2d::mirror(const AcGeVector2d& line) {
  AcGeVector2d d = line.normal();
  if (d.isZeroLength()) return *this;
  return *this = d * (2.0 * dotProduct(d)) - *this;
}

double AcGeVector2d::angle() const {
  double a = std::atan2(y, x);
  if (a < 0.0) a += 2.0 * std::numbers::pi;
  // A tiny negative angle rounds up to exactly 2 pi; keep the range half open.
  return a >= 2.0 * std::numbers::pi ? 0.0 : a;
}

double AcGeVector2d::angleTo(const AcGeVector2d& vec) const {
  return std::atan2(std::fabs(crossProduct(vec)), dotProduct(vec));
}

AcGeVector2d AcGeVector2d::normal(const AcGeTol& tol) const {
  double len = length();
  if (len <= tol.equalVector()) return *this;
  return *this / len;
}

AcGeVector2d& AcGeVector2d::normalize(const AcGeTol& tol) { return *this = normal(tol); }

AcGeVector2d& AcGeVector2d::normalize(const AcGeTol& tol, AcGe::ErrorCondition& flag) {
  flag = isZeroLength(tol) ? AcGe::kDegenerateGeometry : AcGe::kOk;
  return normalize(tol);
}

bool AcGeVector2d::isUnitLength(const AcGeTol& tol) const {
  return std::fabs(length() - 1.0) <= tol.equalVector();
}

bool AcGeVector2d::isZeroLength(const AcGeTol& tol) const { return length() <= tol.equalVector(); }

bool AcGeVector2d::isParallelTo(const AcGeVector2d& vec, const AcGeTol& tol) const {
  if (isZeroLength(tol) || vec.isZeroLength(tol)) return false;
  return std::fabs(normal(tol).crossProduct(vec.normal(tol))) <= tol.equalVector();
}

bool AcGeVector2d::isCodirectionalTo(const AcGeVector2d& vec, const AcGeTol& tol) const {
  return isParallelTo(vec, tol) && dotProduct(vec) > 0.0;
}

bool AcGeVector2d::isPerpendicularTo(const AcGeVector2d& vec, const AcGeTol& tol) const {
  if (isZeroLength(tol) || vec.isZeroLength(tol)) return false;
  return std::fabs(normal(tol).dotProduct(vec.normal(tol))) <= tol.equalVector();
}

bool AcGeVector2d::isEqualTo(const AcGeVector2d& vec, const AcGeTol& tol) const {
  return (*this - vec).length() <= tol.equalVector();
}

// --- AcGePoint2d ----------------------------------------------------------

AcGePoint2d& AcGePoint2d::setToProduct(const AcGeMatrix2d& mat, const AcGePoint2d& p) {
  const auto& e = mat.entry;
  double rx = e[0][0] * p.x + e[0][1] * p.y + e[0][2];
  double ry = e[1][0] * p.x + e[1][1] * p.y + e[1][2];
  double w = e[2][0] * p.x + e[2][1] * p.y + e[2][2];
  if (w != 1.0 && w != 0.0) {
    rx /= w;
    ry /= w;
  }
  return set(rx, ry);
}

AcGePoint2d operator*(const AcGeMatrix2d& mat, const AcGePoint2d& pnt) {
  AcGePoint2d r;
  return r.setToProduct(mat, pnt);
}

AcGePoint2d& AcGePoint2d::transformBy(const AcGeMatrix2d& leftSide) {
  return setToProduct(leftSide, AcGePoint2d(*this));
}

AcGePoint2d& AcGePoint2d::rotateBy(double angle, const AcGePoint2d& wrtPoint) {
  AcGeVector2d v = *this - wrtPoint;
  return *this = wrtPoint + v.rotateBy(angle);
}

AcGePoint2d& AcGePoint2d::mirror(const AcGeLine2d& line) {
  if (line.direction().isZeroLength()) return *this;
  AcGePoint2d foot = line.closestPointTo(*this);
  return *this = foot + (foot - *this);
}

AcGePoint2d& AcGePoint2d::scaleBy(double scaleFactor, const AcGePoint2d& wrtPoint) {
  return *this = wrtPoint + (*this - wrtPoint) * scaleFactor;
}
