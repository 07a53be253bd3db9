// A position in the plane. A point minus a point is a vector; a point plus a
// vector is a point.
#pragma once

#include "host/gevec2d.h"

class AcGeMatrix2d;
class AcGeLine2d;

class AcGePoint2d {
 public:
  constexpr AcGePoint2d() = default;
  constexpr AcGePoint2d(double xx, double yy) : x(xx), y(yy) {}

  static const AcGePoint2d kOrigin;

  AcGePoint2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
  AcGePoint2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
  AcGeVector2d operator-(const AcGePoint2d& p) const { return {x - p.x, y - p.y}; }
  AcGePoint2d& operator+=(const AcGeVector2d& v) { x += v.x; y += v.y; return *this; }
  AcGePoint2d& operator-=(const AcGeVector2d& v) { x -= v.x; y -= v.y; return *this; }
  AcGePoint2d operator*(double s) const { return {x * s, y * s}; }
  AcGePoint2d operator/(double s) const { return {x / s, y / s}; }
  AcGePoint2d& operator*=(double s) { x *= s; y *= s; return *this; }
  AcGePoint2d& operator/=(double s) { x /= s; y /= s; return *this; }

  AcGePoint2d& set(double xx, double yy) { x = xx; y = yy; return *this; }
  AcGePoint2d& setToSum(const AcGePoint2d& p, const AcGeVector2d& v) { return *this = p + v; }
  AcGePoint2d& setToProduct(const AcGeMatrix2d& mat, const AcGePoint2d& p);

  AcGePoint2d& transformBy(const AcGeMatrix2d& leftSide);
  // Counter-clockwise by the angle about wrtPoint.
  AcGePoint2d& rotateBy(double angle, const AcGePoint2d& wrtPoint = AcGePoint2d::kOrigin);
  // Reflection in the line.
  AcGePoint2d& mirror(const AcGeLine2d& line);
  AcGePoint2d& scaleBy(double scaleFactor, const AcGePoint2d& wrtPoint = AcGePoint2d::kOrigin);

  double distanceTo(const AcGePoint2d& p) const { return (*this - p).length(); }
  AcGeVector2d asVector() const { return {x, y}; }

  // Equal when the distance is at most equalPoint.
  bool isEqualTo(const AcGePoint2d& p, const AcGeTol& tol = AcGeContext::gTol) const {
    return distanceTo(p) <= tol.equalPoint();
  }
  bool operator==(const AcGePoint2d& p) const { return isEqualTo(p); }
  bool operator!=(const AcGePoint2d& p) const { return !isEqualTo(p); }

  double operator[](unsigned int i) const { return i == 0 ? x : y; }
  double& operator[](unsigned int i) { return i == 0 ? x : y; }

  double x = 0.0, y = 0.0;
};

inline AcGePoint2d operator*(double s, const AcGePoint2d& p) { return p * s; }
AcGePoint2d operator*(const AcGeMatrix2d& mat, const AcGePoint2d& pnt);
