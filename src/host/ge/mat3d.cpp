// 4 by 4 matrices of space.
#include <algorithm>
#include <cmath>
#include <utility>

#include "host/gelin3d.h"
#include "host/gemat3d.h"
#include "host/geplane.h"

namespace {

typedef double Mat4[4][4];

bool isAffine(const AcGeMatrix3d& m) {
  return m.entry[3][0] == 0.0 && m.entry[3][1] == 0.0 && m.entry[3][2] == 0.0 && m.entry[3][3] == 1.0;
}

AcGeVector3d column(const AcGeMatrix3d& m, int c) {
  return {m.entry[0][c], m.entry[1][c], m.entry[2][c]};
}

double det3(const AcGeMatrix3d& m) {
  const auto& e = m.entry;
  return e[0][0] * (e[1][1] * e[2][2] - e[1][2] * e[2][1]) -
         e[0][1] * (e[1][0] * e[2][2] - e[1][2] * e[2][0]) +
         e[0][2] * (e[1][0] * e[2][1] - e[1][1] * e[2][0]);
}

// Sets the linear part to l and the translation to t, bottom row (0, 0, 0, 1).
void setAffine(AcGeMatrix3d& m, const double l[3][3], const AcGeVector3d& t) {
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) m.entry[r][c] = l[r][c];
    m.entry[3][r] = 0.0;
  }
  m.entry[0][3] = t.x;
  m.entry[1][3] = t.y;
  m.entry[2][3] = t.z;
  m.entry[3][3] = 1.0;
}

}  // namespace

AcGeMatrix3d& AcGeMatrix3d::setToIdentity() { return *this = AcGeMatrix3d(); }

AcGeMatrix3d AcGeMatrix3d::operator*(const AcGeMatrix3d& mat) const {
  AcGeMatrix3d r;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) {
      double s = 0.0;
      for (int k = 0; k < 4; ++k) s += entry[i][k] * mat.entry[k][j];
      r.entry[i][j] = s;
    }
  return r;
}

AcGeMatrix3d& AcGeMatrix3d::preMultBy(const AcGeMatrix3d& leftSide) { return *this = leftSide * *this; }
AcGeMatrix3d& AcGeMatrix3d::postMultBy(const AcGeMatrix3d& rightSide) { return *this = *this * rightSide; }
AcGeMatrix3d& AcGeMatrix3d::setToProduct(const AcGeMatrix3d& mat1, const AcGeMatrix3d& mat2) {
  return *this = mat1 * mat2;
}

double AcGeMatrix3d::det() const {
  // Elimination with partial pivoting on a copy.
  Mat4 a;
  std::copy(&entry[0][0], &entry[0][0] + 16, &a[0][0]);
  double d = 1.0;
  for (int c = 0; c < 4; ++c) {
    int p = c;
    for (int r = c + 1; r < 4; ++r)
      if (std::fabs(a[r][c]) > std::fabs(a[p][c])) p = r;
    if (a[p][c] == 0.0) return 0.0;
    if (p != c) {
      for (int k = 0; k < 4; ++k) std::swap(a[p][k], a[c][k]);
      d = -d;
    }
    d *= a[c][c];
    for (int r = c + 1; r < 4; ++r) {
      double f = a[r][c] / a[c][c];
      for (int k = c; k < 4; ++k) a[r][k] -= f * a[c][k];
    }
  }
  return d;
}

bool AcGeMatrix3d::isSingular(const AcGeTol& tol) const {
  if (isAffine(*this)) {
    double lengths = column(*this, 0).length() * column(*this, 1).length() * column(*this, 2).length();
    return lengths == 0.0 || std::fabs(det3(*this)) <= tol.equalVector() * lengths;
  }
  double lengths = 1.0;
  for (int c = 0; c < 4; ++c)
    lengths *= std::sqrt(entry[0][c] * entry[0][c] + entry[1][c] * entry[1][c] +
                         entry[2][c] * entry[2][c] + entry[3][c] * entry[3][c]);
  return lengths == 0.0 || std::fabs(det()) <= tol.equalVector() * lengths;
}

bool AcGeMatrix3d::inverse(AcGeMatrix3d& inv, double tol) const {
  AcGeTol t;
  t.setEqualPoint(tol);
  t.setEqualVector(tol);
  if (isSingular(t)) return false;
  // Gauss-Jordan elimination with partial pivoting.
  Mat4 a;
  std::copy(&entry[0][0], &entry[0][0] + 16, &a[0][0]);
  AcGeMatrix3d r;
  for (int c = 0; c < 4; ++c) {
    int p = c;
    for (int k = c + 1; k < 4; ++k)
      if (std::fabs(a[k][c]) > std::fabs(a[p][c])) p = k;
    if (a[p][c] == 0.0) return false;
    if (p != c)
      for (int k = 0; k < 4; ++k) {
        std::swap(a[p][k], a[c][k]);
        std::swap(r.entry[p][k], r.entry[c][k]);
      }
    double piv = a[c][c];
    for (int k = 0; k < 4; ++k) {
      a[c][k] /= piv;
      r.entry[c][k] /= piv;
    }
    for (int k = 0; k < 4; ++k) {
      if (k == c || a[k][c] == 0.0) continue;
      double f = a[k][c];
      for (int j = 0; j < 4; ++j) {
        a[k][j] -= f * a[c][j];
        r.entry[k][j] -= f * r.entry[c][j];
      }
    }
  }
  inv = r;
  return true;
}

AcGeMatrix3d AcGeMatrix3d::inverse(const AcGeTol& tol) const {
  AcGeMatrix3d r = *this;
  inverse(r, tol.equalVector());
  return r;
}

AcGeMatrix3d AcGeMatrix3d::inverse() const { return inverse(AcGeContext::gTol); }

AcGeMatrix3d& AcGeMatrix3d::invert() { return *this = inverse(); }

AcGeMatrix3d& AcGeMatrix3d::transposeIt() {
  for (int i = 0; i < 4; ++i)
    for (int j = i + 1; j < 4; ++j) std::swap(entry[i][j], entry[j][i]);
  return *this;
}

AcGeMatrix3d AcGeMatrix3d::transpose() const {
  AcGeMatrix3d r = *this;
  return r.transposeIt();
}

bool AcGeMatrix3d::isEqualTo(const AcGeMatrix3d& mat, const AcGeTol& tol) const {
  for (int c = 0; c < 3; ++c)
    if (!column(*this, c).isEqualTo(column(mat, c), tol)) return false;
  if (!getCsOrigin().isEqualTo(mat.getCsOrigin(), tol)) return false;
  for (int c = 0; c < 4; ++c)
    if (std::fabs(entry[3][c] - mat.entry[3][c]) > tol.equalVector()) return false;
  return true;
}

bool AcGeMatrix3d::isScaledOrtho(const AcGeTol& tol) const {
  const double bottom[4] = {0.0, 0.0, 0.0, 1.0};
  for (int c = 0; c < 4; ++c)
    if (std::fabs(entry[3][c] - bottom[c]) > tol.equalVector()) return false;
  AcGeVector3d c0 = column(*this, 0), c1 = column(*this, 1), c2 = column(*this, 2);
  // isPerpendicularTo is false for zero vectors, so zero columns fail too.
  return c0.isPerpendicularTo(c1, tol) && c1.isPerpendicularTo(c2, tol) && c0.isPerpendicularTo(c2, tol);
}

bool AcGeMatrix3d::isUniScaledOrtho(const AcGeTol& tol) const {
  if (!isScaledOrtho(tol)) return false;
  double l[3] = {column(*this, 0).length(), column(*this, 1).length(), column(*this, 2).length()};
  double lmax = std::max({l[0], l[1], l[2]});
  for (double li : l)
    if (std::fabs(li / lmax - 1.0) > tol.equalVector()) return false;
  return true;
}

AcGeMatrix3d& AcGeMatrix3d::setTranslation(const AcGeVector3d& vec) {
  entry[0][3] = vec.x;
  entry[1][3] = vec.y;
  entry[2][3] = vec.z;
  return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                                           const AcGeVector3d& yAxis, const AcGeVector3d& zAxis) {
  const double l[3][3] = {{xAxis.x, yAxis.x, zAxis.x}, {xAxis.y, yAxis.y, zAxis.y}, {xAxis.z, yAxis.z, zAxis.z}};
  setAffine(*this, l, origin.asVector());
  return *this;
}

void AcGeMatrix3d::getCoordSystem(AcGePoint3d& origin, AcGeVector3d& xAxis, AcGeVector3d& yAxis,
                                  AcGeVector3d& zAxis) const {
  origin = getCsOrigin();
  xAxis = getCsXAxis();
  yAxis = getCsYAxis();
  zAxis = getCsZAxis();
}

AcGeMatrix3d& AcGeMatrix3d::setToTranslation(const AcGeVector3d& vec) {
  setToIdentity();
  return setTranslation(vec);
}

AcGeMatrix3d& AcGeMatrix3d::setToRotation(double angle, const AcGeVector3d& axis, const AcGePoint3d& center) {
  AcGeVector3d a = axis.normal();
  if (a.isZeroLength()) return setToIdentity();
  // Rodrigues: R = cos I + sin [a]x + (1 - cos) a a^T.
  double c = std::cos(angle), s = std::sin(angle), t = 1.0 - c;
  const double l[3][3] = {
      {t * a.x * a.x + c, t * a.x * a.y - s * a.z, t * a.x * a.z + s * a.y},
      {t * a.x * a.y + s * a.z, t * a.y * a.y + c, t * a.y * a.z - s * a.x},
      {t * a.x * a.z - s * a.y, t * a.y * a.z + s * a.x, t * a.z * a.z + c},
  };
  setAffine(*this, l, AcGeVector3d());
  // p' = R (p - center) + center.
  return setTranslation(center.asVector() - (*this) * center.asVector());
}

AcGeMatrix3d& AcGeMatrix3d::setToScaling(double scaleAll, const AcGePoint3d& center) {
  const double l[3][3] = {{scaleAll, 0.0, 0.0}, {0.0, scaleAll, 0.0}, {0.0, 0.0, scaleAll}};
  setAffine(*this, l, center.asVector() * (1.0 - scaleAll));
  return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGePlane& mirrorPlane) {
  AcGeVector3d n = mirrorPlane.normal();
  if (n.isZeroLength()) return setToIdentity();
  // p' = p - 2 (n . (p - o)) n = (I - 2 n n^T) p + 2 (n . o) n.
  const double l[3][3] = {
      {1.0 - 2.0 * n.x * n.x, -2.0 * n.x * n.y, -2.0 * n.x * n.z},
      {-2.0 * n.y * n.x, 1.0 - 2.0 * n.y * n.y, -2.0 * n.y * n.z},
      {-2.0 * n.z * n.x, -2.0 * n.z * n.y, 1.0 - 2.0 * n.z * n.z},
  };
  setAffine(*this, l, n * (2.0 * n.dotProduct(mirrorPlane.pointOnPlane().asVector())));
  return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGePoint3d& mirrorPoint) {
  const double l[3][3] = {{-1.0, 0.0, 0.0}, {0.0, -1.0, 0.0}, {0.0, 0.0, -1.0}};
  setAffine(*this, l, mirrorPoint.asVector() * 2.0);
  return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGeLine3d& mirrorLine) {
  AcGeVector3d d = mirrorLine.direction();
  if (d.isZeroLength()) return setToIdentity();
  // p' = 2 foot(p) - p = (2 d d^T - I) p + 2 (q - (d . q) d), q on the line.
  AcGeVector3d q = mirrorLine.pointOnLine().asVector();
  const double l[3][3] = {
      {2.0 * d.x * d.x - 1.0, 2.0 * d.x * d.y, 2.0 * d.x * d.z},
      {2.0 * d.y * d.x, 2.0 * d.y * d.y - 1.0, 2.0 * d.y * d.z},
      {2.0 * d.z * d.x, 2.0 * d.z * d.y, 2.0 * d.z * d.z - 1.0},
  };
  setAffine(*this, l, (q - d * d.dotProduct(q)) * 2.0);
  return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToProjection(const AcGePlane& projectionPlane, const AcGeVector3d& projectDir) {
  AcGeVector3d n = projectionPlane.normal();
  AcGeVector3d d = projectDir.normal();
  double nd = n.dotProduct(d);
  if (n.isZeroLength() || d.isZeroLength() || std::fabs(nd) <= AcGeContext::gTol.equalVector())
    return setToIdentity();
  // p' = p - (n . (p - o)) / (n . d) d.
  double l[3][3];
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) l[r][c] = (r == c ? 1.0 : 0.0) - d[r] * n[c] / nd;
  setAffine(*this, l, d * (n.dotProduct(projectionPlane.pointOnPlane().asVector()) / nd));
  return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToAlignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis,
                                               const AcGeVector3d& fromYAxis, const AcGeVector3d& fromZAxis,
                                               const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
                                               const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis) {
  AcGeMatrix3d from, to;
  from.setCoordSystem(fromOrigin, fromXAxis, fromYAxis, fromZAxis);
  if (from.isSingular()) return setToIdentity();
  to.setCoordSystem(toOrigin, toXAxis, toYAxis, toZAxis);
  return *this = to * from.inverse();
}

AcGeMatrix3d& AcGeMatrix3d::setToPlaneToWorld(const AcGeVector3d& normal) {
  AcGeVector3d z = normal.normal();
  if (z.isZeroLength()) return setToIdentity();
  AcGeVector3d x = z.perpVector();
  return setCoordSystem(AcGePoint3d::kOrigin, x, z.crossProduct(x), z);
}

AcGeMatrix3d& AcGeMatrix3d::setToPlaneToWorld(const AcGePlane& plane) {
  AcGePoint3d origin;
  AcGeVector3d u, v;
  plane.getCoordSystem(origin, u, v);
  if (plane.normal().isZeroLength()) return setToIdentity();
  return setCoordSystem(origin, u, v, plane.normal());
}

namespace {

// The inverse of a rigid motion: the transposed rotation, and the
// translation taken back through it.
AcGeMatrix3d rigidInverse(const AcGeMatrix3d& m) {
  AcGeMatrix3d r;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) r.entry[i][j] = m.entry[j][i];
  r.setTranslation(-(r * m.translation()));
  return r;
}

}  // namespace

AcGeMatrix3d& AcGeMatrix3d::setToWorldToPlane(const AcGeVector3d& normal) {
  setToPlaneToWorld(normal);
  return *this = rigidInverse(*this);
}

AcGeMatrix3d& AcGeMatrix3d::setToWorldToPlane(const AcGePlane& plane) {
  setToPlaneToWorld(plane);
  return *this = rigidInverse(*this);
}

double AcGeMatrix3d::norm() const {
  double m = 0.0;
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) m = std::max(m, std::fabs(entry[r][c]));
  return m;
}

double AcGeMatrix3d::scale() const {
  return std::max({column(*this, 0).length(), column(*this, 1).length(), column(*this, 2).length()});
}

AcGeMatrix3d AcGeMatrix3d::translation(const AcGeVector3d& vec) { return AcGeMatrix3d().setToTranslation(vec); }
AcGeMatrix3d AcGeMatrix3d::rotation(double angle, const AcGeVector3d& axis, const AcGePoint3d& center) {
  return AcGeMatrix3d().setToRotation(angle, axis, center);
}
AcGeMatrix3d AcGeMatrix3d::scaling(double scaleAll, const AcGePoint3d& center) {
  return AcGeMatrix3d().setToScaling(scaleAll, center);
}
AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGePlane& plane) { return AcGeMatrix3d().setToMirroring(plane); }
AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGePoint3d& point) { return AcGeMatrix3d().setToMirroring(point); }
AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGeLine3d& line) { return AcGeMatrix3d().setToMirroring(line); }
AcGeMatrix3d AcGeMatrix3d::projection(const AcGePlane& projectionPlane, const AcGeVector3d& projectDir) {
  return AcGeMatrix3d().setToProjection(projectionPlane, projectDir);
}
AcGeMatrix3d AcGeMatrix3d::alignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis,
                                         const AcGeVector3d& fromYAxis, const AcGeVector3d& fromZAxis,
                                         const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
                                         const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis) {
  return AcGeMatrix3d().setToAlignCoordSys(fromOrigin, fromXAxis, fromYAxis, fromZAxis, toOrigin, toXAxis,
                                           toYAxis, toZAxis);
}
AcGeMatrix3d AcGeMatrix3d::worldToPlane(const AcGeVector3d& normal) {
  return AcGeMatrix3d().setToWorldToPlane(normal);
}
AcGeMatrix3d AcGeMatrix3d::worldToPlane(const AcGePlane& plane) { return AcGeMatrix3d().setToWorldToPlane(plane); }
AcGeMatrix3d AcGeMatrix3d::planeToWorld(const AcGeVector3d& normal) {
  return AcGeMatrix3d().setToPlaneToWorld(normal);
}
AcGeMatrix3d AcGeMatrix3d::planeToWorld(const AcGePlane& plane) { return AcGeMatrix3d().setToPlaneToWorld(plane); }
