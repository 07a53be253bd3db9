// Scale factors along the three axes, as block references carry them.
#pragma once

#include "host/gegbl.h"

class AcGeMatrix3d;

class AcGeScale3d {
 public:
  constexpr AcGeScale3d() = default;
  constexpr explicit AcGeScale3d(double factor) : sx(factor), sy(factor), sz(factor) {}
  constexpr AcGeScale3d(double xFactor, double yFactor, double zFactor)
      : sx(xFactor), sy(yFactor), sz(zFactor) {}

  static const AcGeScale3d kIdentity;

  AcGeScale3d operator*(const AcGeScale3d& s) const { return {sx * s.sx, sy * s.sy, sz * s.sz}; }
  AcGeScale3d& operator*=(const AcGeScale3d& s) { return *this = *this * s; }
  AcGeScale3d operator*(double f) const { return {sx * f, sy * f, sz * f}; }
  AcGeScale3d& operator*=(double f) { return *this = *this * f; }
  AcGeScale3d& setToProduct(const AcGeScale3d& s1, const AcGeScale3d& s2) { return *this = s1 * s2; }
  AcGeScale3d& setToProduct(const AcGeScale3d& s, double f) { return *this = s * f; }
  AcGeScale3d& set(double xFactor, double yFactor, double zFactor) {
    sx = xFactor; sy = yFactor; sz = zFactor;
    return *this;
  }

  // Reciprocals; a zero factor has none and the whole scale stays unchanged.
  AcGeScale3d inverse() const;
  AcGeScale3d& invert() { return *this = inverse(); }
  // No factor is zero (within equalVector).
  bool isProperScale() const;

  // The diagonal matrix of the factors.
  void getMatrix(AcGeMatrix3d& mat) const;
  operator AcGeMatrix3d() const;
  // The lengths of the matrix's three linear columns.
  AcGeScale3d& extractScale(const AcGeMatrix3d& mat);
  // Divides the matrix's linear columns by their lengths and keeps the lengths.
  AcGeScale3d& removeScale(AcGeMatrix3d& mat);

  // Each factor within equalVector.
  bool isEqualTo(const AcGeScale3d& s, const AcGeTol& tol = AcGeContext::gTol) const;
  bool operator==(const AcGeScale3d& s) const { return isEqualTo(s); }
  bool operator!=(const AcGeScale3d& s) const { return !isEqualTo(s); }

  double operator[](unsigned int i) const { return i == 0 ? sx : i == 1 ? sy : sz; }
  double& operator[](unsigned int i) { return i == 0 ? sx : i == 1 ? sy : sz; }

  double sx = 1.0, sy = 1.0, sz = 1.0;
};

inline AcGeScale3d operator*(double f, const AcGeScale3d& s) { return s * f; }
