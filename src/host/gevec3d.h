// A vector in space: a direction with a length, not a position. It ignores
// the translation of a matrix that transforms it.
#pragma once

#include <cmath>

#include "host/gegbl.h"

class AcGeMatrix3d;
class AcGePlanarEnt;
class AcGeVector2d;

class AcGeVector3d {
 public:
  constexpr AcGeVector3d() = default;
  constexpr AcGeVector3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
  // The vector u * x + v * y in the plane's own axes.
  AcGeVector3d(const AcGePlanarEnt& pln, const AcGeVector2d& vec);

  static const AcGeVector3d kIdentity;  // the zero vector
  static const AcGeVector3d kXAxis;
  static const AcGeVector3d kYAxis;
  static const AcGeVector3d kZAxis;

  // Arithmetic.
  AcGeVector3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
  AcGeVector3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
  AcGeVector3d operator-() const { return {-x, -y, -z}; }
  AcGeVector3d operator*(double s) const { return {x * s, y * s, z * s}; }
  AcGeVector3d operator/(double s) const { return {x / s, y / s, z / s}; }
  AcGeVector3d& operator+=(const AcGeVector3d& v) { x += v.x; y += v.y; z += v.z; return *this; }
  AcGeVector3d& operator-=(const AcGeVector3d& v) { x -= v.x; y -= v.y; z -= v.z; return *this; }
  AcGeVector3d& operator*=(double s) { x *= s; y *= s; z *= s; return *this; }
  AcGeVector3d& operator/=(double s) { x /= s; y /= s; z /= s; return *this; }
  AcGeVector3d& set(double xx, double yy, double zz) { x = xx; y = yy; z = zz; return *this; }
  AcGeVector3d& set(const AcGePlanarEnt& pln, const AcGeVector2d& vec);
  AcGeVector3d& setToSum(const AcGeVector3d& v1, const AcGeVector3d& v2) { return *this = v1 + v2; }
  AcGeVector3d& setToProduct(const AcGeVector3d& v, double s) { return *this = v * s; }
  // The linear part of the matrix applied to the vector as a column.
  AcGeVector3d& setToProduct(const AcGeMatrix3d& mat, const AcGeVector3d& v);
  AcGeVector3d& negate() { x = -x; y = -y; z = -z; return *this; }

  // Transformations in place.
  AcGeVector3d& transformBy(const AcGeMatrix3d& leftSide);
  // Counter-clockwise by the angle, seen from the tip of the axis.
  AcGeVector3d& rotateBy(double ang, const AcGeVector3d& axis);
  // Reflection in the plane through the origin with that normal.
  AcGeVector3d& mirror(const AcGeVector3d& normalToPlane);

  // Projection onto the plane through the origin with that normal, along
  // projectDirection. A direction parallel to the plane (its sine with the
  // plane is within equalVector) cannot project: the vector comes back as it is.
  AcGeVector3d project(const AcGeVector3d& planeNormal, const AcGeVector3d& projectDirection) const;
  AcGeVector3d project(const AcGeVector3d& planeNormal, const AcGeVector3d& projectDirection,
                       const AcGeTol& tol, AcGe::ErrorCondition& flag) const;
  // Projection along the plane's normal. A zero normal leaves the vector as it is.
  AcGeVector3d orthoProject(const AcGeVector3d& planeNormal) const;
  AcGeVector3d orthoProject(const AcGeVector3d& planeNormal, const AcGeTol& tol,
                            AcGe::ErrorCondition& flag) const;

  // The components along the plane's two axes.
  AcGeVector2d convert2d(const AcGePlanarEnt& pln) const;
  // x and y, dropping z.
  AcGeVector2d convert2d() const;

  // Measures.
  double length() const { return std::sqrt(x * x + y * y + z * z); }
  double lengthSqrd() const { return x * x + y * y + z * z; }
  double dotProduct(const AcGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }
  AcGeVector3d crossProduct(const AcGeVector3d& v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  // The angle between the two vectors, in [0, pi]; 0 when either is zero.
  double angleTo(const AcGeVector3d& vec) const;
  // The angle from this vector to vec turning counter-clockwise about
  // refVec, in [0, 2 pi): angleTo(vec) when refVec . (this x vec) >= 0, else
  // 2 pi minus it.
  double angleTo(const AcGeVector3d& vec, const AcGeVector3d& refVec) const;
  // Index (0, 1 or 2) of the component of largest magnitude; the first of equals.
  unsigned int largestElement() const;

  // The unit vector of the same direction. A vector of zero length (within
  // equalVector) has no direction: normal() gives it back as it is and
  // normalize() leaves it unchanged, with kDegenerateGeometry in the flag form.
  AcGeVector3d normal(const AcGeTol& tol = AcGeContext::gTol) const;
  AcGeVector3d& normalize(const AcGeTol& tol = AcGeContext::gTol);
  AcGeVector3d& normalize(const AcGeTol& tol, AcGe::ErrorCondition& flag);

  // A unit vector perpendicular to this one, by the arbitrary-axis rule that
  // also places the X axis of an entity's own coordinate system: with N the
  // unit vector of this one, if both |N.x| and |N.y| are below 1/64 the
  // result is the unit of (world Y x N), otherwise of (world Z x N). The zero
  // vector gives the zero vector.
  AcGeVector3d perpVector() const;

  // The rotation about the origin that turns this vector onto the direction
  // of vec (lengths are not changed). The rotation axis is this x vec. When
  // the two are opposite, the rotation is a half turn about the part of axis
  // perpendicular to this vector, or about perpVector() when axis gives none
  // (the default axis is the zero vector). Codirectional vectors, and a zero
  // vector on either side, give the identity.
  AcGeMatrix3d rotateTo(const AcGeVector3d& vec,
                        const AcGeVector3d& axis = AcGeVector3d::kIdentity) const;

  // Tolerant tests; the rules are in host/getol.h. Zero vectors (within
  // equalVector) have no direction: they are not parallel, codirectional or
  // perpendicular to anything.
  bool isUnitLength(const AcGeTol& tol = AcGeContext::gTol) const;
  bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const;
  // |unit(this) x unit(vec)| <= equalVector.
  bool isParallelTo(const AcGeVector3d& vec, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isParallelTo(const AcGeVector3d& vec, const AcGeTol& tol, AcGe::ErrorCondition& flag) const;
  // Parallel and pointing the same way.
  bool isCodirectionalTo(const AcGeVector3d& vec, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isCodirectionalTo(const AcGeVector3d& vec, const AcGeTol& tol,
                         AcGe::ErrorCondition& flag) const;
  // |unit(this) . unit(vec)| <= equalVector.
  bool isPerpendicularTo(const AcGeVector3d& vec, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isPerpendicularTo(const AcGeVector3d& vec, const AcGeTol& tol,
                         AcGe::ErrorCondition& flag) const;
  // |this - vec| <= equalVector.
  bool isEqualTo(const AcGeVector3d& vec, const AcGeTol& tol = AcGeContext::gTol) const;
  bool operator==(const AcGeVector3d& vec) const { return isEqualTo(vec); }
  bool operator!=(const AcGeVector3d& vec) const { return !isEqualTo(vec); }

  double operator[](unsigned int i) const { return i == 0 ? x : i == 1 ? y : z; }
  double& operator[](unsigned int i) { return i == 0 ? x : i == 1 ? y : z; }

  double x = 0.0, y = 0.0, z = 0.0;
};

inline AcGeVector3d operator*(double s, const AcGeVector3d& v) { return v * s; }
AcGeVector3d operator*(const AcGeMatrix3d& mat, const AcGeVector3d& vec);
