// A vector in the plane: a direction with a length, not a position.
#pragma once

#include <cmath>

#include "host/gegbl.h"

class AcGeMatrix2d;

class AcGeVector2d {
 public:
  constexpr AcGeVector2d() = default;
  constexpr AcGeVector2d(double xx, double yy) : x(xx), y(yy) {}

  static const AcGeVector2d kIdentity;  // the zero vector
  static const AcGeVector2d kXAxis;
  static const AcGeVector2d kYAxis;

  AcGeVector2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
  AcGeVector2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
  AcGeVector2d operator-() const { return {-x, -y}; }
  AcGeVector2d operator*(double s) const { return {x * s, y * s}; }
  AcGeVector2d operator/(double s) const { return {x / s, y / s}; }
  AcGeVector2d& operator+=(const AcGeVector2d& v) { x += v.x; y += v.y; return *this; }
  AcGeVector2d& operator-=(const AcGeVector2d& v) { x -= v.x; y -= v.y; return *this; }
  AcGeVector2d& operator*=(double s) { x *= s; y *= s; return *this; }
  AcGeVector2d& operator/=(double s) { x /= s; y /= s; return *this; }
  AcGeVector2d& set(double xx, double yy) { x = xx; y = yy; return *this; }
  AcGeVector2d& setToSum(const AcGeVector2d& v1, const AcGeVector2d& v2) { return *this = v1 + v2; }
  AcGeVector2d& setToProduct(const AcGeVector2d& v, double s) { return *this = v * s; }
  AcGeVector2d& setToProduct(const AcGeMatrix2d& mat, const AcGeVector2d& v);
  AcGeVector2d& negate() { x = -x; y = -y; return *this; }

  // The linear part of the matrix applied to the vector.
  AcGeVector2d& transformBy(const AcGeMatrix2d& leftSide);
  // Counter-clockwise by the angle.
  AcGeVector2d& rotateBy(double angle);
  // Reflection in the line through the origin along line.
  AcGeVector2d& mirror(const AcGeVector2d& line);

  double length() const { return std::hypot(x, y); }
  double lengthSqrd() const { return x * x + y * y; }
  double dotProduct(const AcGeVector2d& v) const { return x * v.x + y * v.y; }
  // The z of the cross product of the two vectors as 3d vectors: positive when
  // v lies counter-clockwise of this one.
  double crossProduct(const AcGeVector2d& v) const { return x * v.y - y * v.x; }
  // Angle from the X axis, counter-clockwise, in [0, 2 pi); 0 for the zero vector.
  double angle() const;
  // Angle between the two vectors, in [0, pi]; 0 when either is zero.
  double angleTo(const AcGeVector2d& vec) const;

  // The unit vector; a zero-length vector (within equalVector) stays as it is.
  AcGeVector2d normal(const AcGeTol& tol = AcGeContext::gTol) const;
  AcGeVector2d& normalize(const AcGeTol& tol = AcGeContext::gTol);
  AcGeVector2d& normalize(const AcGeTol& tol, AcGe::ErrorCondition& flag);
  // The vector turned a quarter turn counter-clockwise: (-y, x).
  AcGeVector2d perpVector() const { return {-y, x}; }

  // Tolerant tests, as for 3d vectors.
  bool isUnitLength(const AcGeTol& tol = AcGeContext::gTol) const;
  bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const;
  bool isParallelTo(const AcGeVector2d& vec, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isCodirectionalTo(const AcGeVector2d& vec, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isPerpendicularTo(const AcGeVector2d& vec, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isEqualTo(const AcGeVector2d& vec, const AcGeTol& tol = AcGeContext::gTol) const;
  bool operator==(const AcGeVector2d& vec) const { return isEqualTo(vec); }
  bool operator!=(const AcGeVector2d& vec) const { return !isEqualTo(vec); }

  double operator[](unsigned int i) const { return i == 0 ? x : y; }
  double& operator[](unsigned int i) { return i == 0 ? x : y; }

  double x = 0.0, y = 0.0;
};

inline AcGeVector2d operator*(double s, const AcGeVector2d& v) { return v * s; }
AcGeVector2d operator*(const AcGeMatrix2d& mat, const AcGeVector2d& vec);
