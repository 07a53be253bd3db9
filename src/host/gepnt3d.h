// A position in space. A point minus a point is a vector; a point plus a
// vector is a point.
#pragma once

#include "host/gevec3d.h"

class AcGeMatrix3d;
class AcGePlane;
class AcGePlanarEnt;
class AcGeLine3d;
class AcGePoint2d;

class AcGePoint3d {
 public:
  constexpr AcGePoint3d() = default;
  constexpr AcGePoint3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
  // The point origin + u * x + v * y of the plane.
  AcGePoint3d(const AcGePlanarEnt& pln, const AcGePoint2d& pnt2d);

  static const AcGePoint3d kOrigin;

  AcGePoint3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
  AcGePoint3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
  AcGeVector3d operator-(const AcGePoint3d& p) const { return {x - p.x, y - p.y, z - p.z}; }
  AcGePoint3d& operator+=(const AcGeVector3d& v) { x += v.x; y += v.y; z += v.z; return *this; }
  AcGePoint3d& operator-=(const AcGeVector3d& v) { x -= v.x; y -= v.y; z -= v.z; return *this; }
  // Scaling about the origin.
  AcGePoint3d operator*(double s) const { return {x * s, y * s, z * s}; }
  AcGePoint3d operator/(double s) const { return {x / s, y / s, z / s}; }
  AcGePoint3d& operator*=(double s) { x *= s; y *= s; z *= s; return *this; }
  AcGePoint3d& operator/=(double s) { x /= s; y /= s; z /= s; return *this; }

  AcGePoint3d& set(double xx, double yy, double zz) { x = xx; y = yy; z = zz; return *this; }
  AcGePoint3d& set(const AcGePlanarEnt& pln, const AcGePoint2d& pnt2d);
  AcGePoint3d& setToSum(const AcGePoint3d& p, const AcGeVector3d& v) { return *this = p + v; }
  // The matrix applied to the point as a column (x, y, z, 1); a projective
  // bottom row divides by the resulting w unless w is 0.
  AcGePoint3d& setToProduct(const AcGeMatrix3d& mat, const AcGePoint3d& p);

  AcGePoint3d& transformBy(const AcGeMatrix3d& leftSide);
  // Counter-clockwise by the angle about the axis through wrtPoint.
  AcGePoint3d& rotateBy(double angle, const AcGeVector3d& vec,
                        const AcGePoint3d& wrtPoint = AcGePoint3d::kOrigin);
  // Reflection in the plane.
  AcGePoint3d& mirror(const AcGePlane& pln);
  AcGePoint3d& scaleBy(double scaleFactor, const AcGePoint3d& wrtPoint = AcGePoint3d::kOrigin);

  // The point's image on the plane along vec. A direction parallel to the
  // plane cannot reach it: the point comes back as it is.
  AcGePoint3d project(const AcGePlane& pln, const AcGeVector3d& vec) const;
  // The foot of the perpendicular on the plane.
  AcGePoint3d orthoProject(const AcGePlane& pln) const;
  // The plane coordinates (u, v) of the point's foot on the plane.
  AcGePoint2d convert2d(const AcGePlanarEnt& pln) const;
  // x and y, dropping z.
  AcGePoint2d convert2d() const;

  double distanceTo(const AcGePoint3d& p) const { return (*this - p).length(); }
  AcGeVector3d asVector() const { return {x, y, z}; }

  // Equal when the distance is at most equalPoint.
  bool isEqualTo(const AcGePoint3d& p, const AcGeTol& tol = AcGeContext::gTol) const {
    return distanceTo(p) <= tol.equalPoint();
  }
  bool operator==(const AcGePoint3d& p) const { return isEqualTo(p); }
  bool operator!=(const AcGePoint3d& p) const { return !isEqualTo(p); }

  double operator[](unsigned int i) const { return i == 0 ? x : i == 1 ? y : z; }
  double& operator[](unsigned int i) { return i == 0 ? x : i == 1 ? y : z; }

  double x = 0.0, y = 0.0, z = 0.0;
};

inline AcGePoint3d operator*(double s, const AcGePoint3d& p) { return p * s; }
AcGePoint3d operator*(const AcGeMatrix3d& mat, const AcGePoint3d& pnt);
