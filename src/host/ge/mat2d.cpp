// 3 by 3 matrices of the plane.
#include <algorithm>
#include <cmath>
#include <utility>

#include "host/gelin2d.h"
#include "host/gemat2d.h"

namespace {

bool isAffine(const AcGeMatrix2d& m) {
  return m.entry[2][0] == 0.0 && m.entry[2][1] == 0.0 && m.entry[2][2] == 1.0;
}

AcGeVector2d column(const AcGeMatrix2d& m, int c) { return {m.entry[0][c], m.entry[1][c]}; }

void setAffine(AcGeMatrix2d& m, double a, double b, double c, double d, const AcGeVector2d& t) {
  m.entry[0][0] = a;
  m.entry[0][1] = b;
  m.entry[0][2] = t.x;
  m.entry[1][0] = c;
  m.entry[1][1] = d;
  m.entry[1][2] = t.y;
  m.entry[2][0] = 0.0;
  m.entry[2][1] = 0.0;
  m.entry[2][2] = 1.0;
}

}  // namespace

AcGeMatrix2d& AcGeMatrix2d::setToIdentity() { return *this = AcGeMatrix2d(); }

AcGeMatrix2d AcGeMatrix2d::operator*(const AcGeMatrix2d& mat) const {
  AcGeMatrix2d r;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) {
      double s = 0.0;
      for (int k = 0; k < 3; ++k) s += entry[i][k] * mat.entry[k][j];
      r.entry[i][j] = s;
    }
  return r;
}

AcGeMatrix2d& AcGeMatrix2d::preMultBy(const AcGeMatrix2d& leftSide) { return *this = leftSide * *this; }
AcGeMatrix2d& AcGeMatrix2d::postMultBy(const AcGeMatrix2d& rightSide) { return *this = *this * rightSide; }
AcGeMatrix2d& AcGeMatrix2d::setToProduct(const AcGeMatrix2d& mat1, const AcGeMatrix2d& mat2) {
  return *this = mat1 * mat2;
}

double AcGeMatrix2d::det() const {
  const auto& e = entry;
  return e[0][0] * (e[1][1] * e[2][2] - e[1][2] * e[2][1]) - e[0][1] * (e[1][0] * e[2][2] - e[1][2] * e[2][0]) +
         e[0][2] * (e[1][0] * e[2][1] - e[1][1] * e[2][0]);
}

bool AcGeMatrix2d::isSingular(const AcGeTol& tol) const {
  if (isAffine(*this)) {
    double lengths = column(*this, 0).length() * column(*this, 1).length();
    double d = entry[0][0] * entry[1][1] - entry[0][1] * entry[1][0];
    return lengths == 0.0 || std::fabs(d) <= tol.equalVector() * lengths;
  }
  double lengths = 1.0;
  for (int c = 0; c < 3; ++c)
    lengths *= std::sqrt(entry[0][c] * entry[0][c] + entry[1][c] * entry[1][c] + entry[2][c] * entry[2][c]);
  return lengths == 0.0 || std::fabs(det()) <= tol.equalVector() * lengths;
}

bool AcGeMatrix2d::inverse(AcGeMatrix2d& inv, double tol) const {
  AcGeTol t;
  t.setEqualPoint(tol);
  t.setEqualVector(tol);
  if (isSingular(t)) return false;
  // The adjugate over the determinant.
  const auto& e = entry;
  double d = det();
  AcGeMatrix2d r;
  r.entry[0][0] = (e[1][1] * e[2][2] - e[1][2] * e[2][1]) / d;
  r.entry[0][1] = (e[0][2] * e[2][1] - e[0][1] * e[2][2]) / d;
  r.entry[0][2] = (e[0][1] * e[1][2] - e[0][2] * e[1][1]) / d;
  r.entry[1][0] = (e[1][2] * e[2][0] - e[1][0] * e[2][2]) / d;
  r.entry[1][1] = (e[0][0] * e[2][2] - e[0][2] * e[2][0]) / d;
  r.entry[1][2] = (e[0][2] * e[1][0] - e[0][0] * e[1][2]) / d;
  r.entry[2][0] = (e[1][0] * e[2][1] - e[1][1] * e[2][0]) / d;
  r.entry[2][1] = (e[0][1] * e[2][0] - e[0][0] * e[2][1]) / d;
  r.entry[2][2] = (e[0][0] * e[1][1] - e[0][1] * e[1][0]) / d;
  inv = r;
  return true;
}

AcGeMatrix2d AcGeMatrix2d::inverse() const {
  AcGeMatrix2d r = *this;
  inverse(r, AcGeContext::gTol.equalVector());
  return r;
}

AcGeMatrix2d& AcGeMatrix2d::invert() { return *this = inverse(); }

AcGeMatrix2d& AcGeMatrix2d::transposeIt() {
  for (int i = 0; i < 3; ++i)
    for (int j = i + 1; j < 3; ++j) std::swap(entry[i][j], entry[j][i]);
  return *this;
}

AcGeMatrix2d AcGeMatrix2d::transpose() const {
  AcGeMatrix2d r = *this;
  return r.transposeIt();
}

bool AcGeMatrix2d::isEqualTo(const AcGeMatrix2d& mat, const AcGeTol& tol) const {
  for (int c = 0; c < 2; ++c)
    if (!column(*this, c).isEqualTo(column(mat, c), tol)) return false;
  AcGePoint2d t1(entry[0][2], entry[1][2]), t2(mat.entry[0][2], mat.entry[1][2]);
  if (!t1.isEqualTo(t2, tol)) return false;
  for (int c = 0; c < 3; ++c)
    if (std::fabs(entry[2][c] - mat.entry[2][c]) > tol.equalVector()) return false;
  return true;
}

bool AcGeMatrix2d::isScaledOrtho(const AcGeTol& tol) const {
  const double bottom[3] = {0.0, 0.0, 1.0};
  for (int c = 0; c < 3; ++c)
    if (std::fabs(entry[2][c] - bottom[c]) > tol.equalVector()) return false;
  return column(*this, 0).isPerpendicularTo(column(*this, 1), tol);
}

bool AcGeMatrix2d::isUniScaledOrtho(const AcGeTol& tol) const {
  if (!isScaledOrtho(tol)) return false;
  double l0 = column(*this, 0).length(), l1 = column(*this, 1).length();
  return std::fabs(std::min(l0, l1) / std::max(l0, l1) - 1.0) <= tol.equalVector();
}

double AcGeMatrix2d::scale() const { return std::max(column(*this, 0).length(), column(*this, 1).length()); }

AcGeMatrix2d& AcGeMatrix2d::setTranslation(const AcGeVector2d& vec) {
  entry[0][2] = vec.x;
  entry[1][2] = vec.y;
  return *this;
}

AcGeMatrix2d& AcGeMatrix2d::setCoordSystem(const AcGePoint2d& origin, const AcGeVector2d& e0,
                                           const AcGeVector2d& e1) {
  setAffine(*this, e0.x, e1.x, e0.y, e1.y, origin.asVector());
  return *this;
}

void AcGeMatrix2d::getCoordSystem(AcGePoint2d& origin, AcGeVector2d& e0, AcGeVector2d& e1) const {
  origin.set(entry[0][2], entry[1][2]);
  e0 = column(*this, 0);
  e1 = column(*this, 1);
}

AcGeMatrix2d& AcGeMatrix2d::setToTranslation(const AcGeVector2d& vec) {
  setToIdentity();
  return setTranslation(vec);
}

AcGeMatrix2d& AcGeMatrix2d::setToRotation(double angle, const AcGePoint2d& center) {
  double c = std::cos(angle), s = std::sin(angle);
  AcGeVector2d p = center.asVector();
  setAffine(*this, c, -s, s, c, p - AcGeVector2d(c * p.x - s * p.y, s * p.x + c * p.y));
  return *this;
}

AcGeMatrix2d& AcGeMatrix2d::setToScaling(double scaleAll, const AcGePoint2d& center) {
  setAffine(*this, scaleAll, 0.0, 0.0, scaleAll, center.asVector() * (1.0 - scaleAll));
  return *this;
}

AcGeMatrix2d& AcGeMatrix2d::setToMirroring(const AcGePoint2d& pnt) {
  setAffine(*this, -1.0, 0.0, 0.0, -1.0, pnt.asVector() * 2.0);
  return *this;
}

AcGeMatrix2d& AcGeMatrix2d::setToMirroring(const AcGeLine2d& line) {
  AcGeVector2d d = line.direction();
  if (d.isZeroLength()) return setToIdentity();
  // p' = 2 foot(p) - p = (2 d d^T - I) p + 2 (q - (d . q) d), q on the line.
  AcGeVector2d q = line.pointOnLine().asVector();
  setAffine(*this, 2.0 * d.x * d.x - 1.0, 2.0 * d.x * d.y, 2.0 * d.x * d.y, 2.0 * d.y * d.y - 1.0,
            (q - d * d.dotProduct(q)) * 2.0);
  return *this;
}

AcGeMatrix2d& AcGeMatrix2d::setToAlignCoordSys(const AcGePoint2d& fromOrigin, const AcGeVector2d& fromE0,
                                               const AcGeVector2d& fromE1, const AcGePoint2d& toOrigin,
                                               const AcGeVector2d& toE0, const AcGeVector2d& toE1) {
  AcGeMatrix2d from, to;
  from.setCoordSystem(fromOrigin, fromE0, fromE1);
  if (from.isSingular()) return setToIdentity();
  to.setCoordSystem(toOrigin, toE0, toE1);
  return *this = to * from.inverse();
}

AcGeMatrix2d AcGeMatrix2d::translation(const AcGeVector2d& vec) { return AcGeMatrix2d().setToTranslation(vec); }
AcGeMatrix2d AcGeMatrix2d::rotation(double angle, const AcGePoint2d& center) {
  return AcGeMatrix2d().setToRotation(angle, center);
}
AcGeMatrix2d AcGeMatrix2d::scaling(double scaleAll, const AcGePoint2d& center) {
  return AcGeMatrix2d().setToScaling(scaleAll, center);
}
AcGeMatrix2d AcGeMatrix2d::mirroring(const AcGePoint2d& pnt) { return AcGeMatrix2d().setToMirroring(pnt); }
AcGeMatrix2d AcGeMatrix2d::mirroring(const AcGeLine2d& line) { return AcGeMatrix2d().setToMirroring(line); }
