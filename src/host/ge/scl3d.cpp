// Scale factors along the axes.
#include <cmath>

#include "host/gemat3d.h"
#include "host/gescl3d.h"

AcGeScale3d AcGeScale3d::inverse() const {
  if (sx == 0.0 || sy == 0.0 || sz == 0.0) return *this;
  return {1.0 / sx, 1.0 / sy, 1.0 / sz};
}

bool AcGeScale3d::isProperScale() const {
  double eps = AcGeContext::gTol.equalVector();
  return std::fabs(sx) > eps && std::fabs(sy) > eps && std::fabs(sz) > eps;
}

void AcGeScale3d::getMatrix(AcGeMatrix3d& mat) const {
  mat.setToIdentity();
  mat.entry[0][0] = sx;
  mat.entry[1][1] = sy;
  mat.entry[2][2] = sz;
}

AcGeScale3d::operator AcGeMatrix3d() const {
  AcGeMatrix3d m;
  getMatrix(m);
  return m;
}

AcGeScale3d& AcGeScale3d::extractScale(const AcGeMatrix3d& mat) {
  sx = mat.getCsXAxis().length();
  sy = mat.getCsYAxis().length();
  sz = mat.getCsZAxis().length();
  return *this;
}

AcGeScale3d& AcGeScale3d::removeScale(AcGeMatrix3d& mat) {
  extractScale(mat);
  const double s[3] = {sx, sy, sz};
  for (int c = 0; c < 3; ++c)
    if (s[c] != 0.0)
      for (int r = 0; r < 3; ++r) mat.entry[r][c] /= s[c];
  return *this;
}

bool AcGeScale3d::isEqualTo(const AcGeScale3d& s, const AcGeTol& tol) const {
  double eps = tol.equalVector();
  return std::fabs(sx - s.sx) <= eps && std::fabs(sy - s.sy) <= eps && std::fabs(sz - s.sz) <= eps;
}
