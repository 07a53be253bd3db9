// A 4 by 4 transformation matrix of space.
//
// entry[row][col]. Points and vectors are columns and the matrix stands on
// their left: p' = M * p, so the first three columns are the images of the X,
// Y and Z axes and the last column's top three entries are the translation. A
// product A * B applies B first. An affine matrix has the bottom row
// (0, 0, 0, 1); the operations here build only such matrices, and products,
// inverses and determinants work on all sixteen entries.
#pragma once

#include "host/gepnt3d.h"

class AcGePlane;
class AcGeLine3d;

class AcGeMatrix3d {
 public:
  constexpr AcGeMatrix3d()
      : entry{{1.0, 0.0, 0.0, 0.0}, {0.0, 1.0, 0.0, 0.0}, {0.0, 0.0, 1.0, 0.0}, {0.0, 0.0, 0.0, 1.0}} {}

  static const AcGeMatrix3d kIdentity;

  AcGeMatrix3d& setToIdentity();

  // Products. A * B applies B first; preMultBy(L) makes this L * this,
  // postMultBy(R) makes it this * R.
  AcGeMatrix3d operator*(const AcGeMatrix3d& mat) const;
  AcGeMatrix3d& operator*=(const AcGeMatrix3d& mat) { return postMultBy(mat); }
  AcGeMatrix3d& preMultBy(const AcGeMatrix3d& leftSide);
  AcGeMatrix3d& postMultBy(const AcGeMatrix3d& rightSide);
  AcGeMatrix3d& setToProduct(const AcGeMatrix3d& mat1, const AcGeMatrix3d& mat2);

  // Inversion. A singular matrix (isSingular with the tolerance given, else
  // gTol) has no inverse: invert() leaves it unchanged, inverse() returns it
  // unchanged, and the status form returns false and leaves inv as it was.
  AcGeMatrix3d& invert();
  AcGeMatrix3d inverse() const;
  AcGeMatrix3d inverse(const AcGeTol& tol) const;
  bool inverse(AcGeMatrix3d& inv, double tol) const;
  // Singular when the volume spanned by the columns is at most equalVector
  // times the product of their lengths, so the test does not depend on the
  // scale of the matrix. An affine matrix is judged by its linear part alone
  // (the upper-left 3 by 3), so a large translation does not count; any other
  // matrix by all four columns. A zero column is always singular.
  bool isSingular(const AcGeTol& tol = AcGeContext::gTol) const;

  AcGeMatrix3d& transposeIt();
  AcGeMatrix3d transpose() const;

  // Equal when the images of the three axes (the first three columns) are
  // equal as vectors within equalVector, the translations as points within
  // equalPoint, and the bottom rows entry by entry within equalVector.
  bool isEqualTo(const AcGeMatrix3d& mat, const AcGeTol& tol = AcGeContext::gTol) const;
  bool operator==(const AcGeMatrix3d& mat) const { return isEqualTo(mat); }
  bool operator!=(const AcGeMatrix3d& mat) const { return !isEqualTo(mat); }

  // The columns of the linear part are mutually perpendicular (unit columns'
  // dot products within equalVector), none of zero length, and the bottom
  // row is (0, 0, 0, 1): a rotation or reflection combined with scaling
  // along the axes.
  bool isScaledOrtho(const AcGeTol& tol = AcGeContext::gTol) const;
  // Scaled ortho with all three column lengths equal: each divided by the
  // longest is 1 within equalVector. Rigid motions and uniform scalings.
  bool isUniScaledOrtho(const AcGeTol& tol = AcGeContext::gTol) const;
  // Determinant of all sixteen entries.
  double det() const;

  // Translation part.
  AcGeMatrix3d& setTranslation(const AcGeVector3d& vec);
  AcGeVector3d translation() const { return {entry[0][3], entry[1][3], entry[2][3]}; }

  // The matrix taking world coordinates to the coordinate system with this
  // origin and axes: columns xAxis, yAxis, zAxis and origin, bottom row
  // (0, 0, 0, 1). The axes are taken as given, neither normalised nor
  // checked. getCoordSystem reads the same four columns back.
  AcGeMatrix3d& setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                               const AcGeVector3d& yAxis, const AcGeVector3d& zAxis);
  void getCoordSystem(AcGePoint3d& origin, AcGeVector3d& xAxis, AcGeVector3d& yAxis,
                      AcGeVector3d& zAxis) const;
  AcGePoint3d getCsOrigin() const { return {entry[0][3], entry[1][3], entry[2][3]}; }
  AcGeVector3d getCsXAxis() const { return {entry[0][0], entry[1][0], entry[2][0]}; }
  AcGeVector3d getCsYAxis() const { return {entry[0][1], entry[1][1], entry[2][1]}; }
  AcGeVector3d getCsZAxis() const { return {entry[0][2], entry[1][2], entry[2][2]}; }

  // Builders; each replaces the whole matrix.
  AcGeMatrix3d& setToTranslation(const AcGeVector3d& vec);
  // Counter-clockwise by angle (radians) seen from the tip of axis, about
  // the axis through center. A zero axis gives the identity.
  AcGeMatrix3d& setToRotation(double angle, const AcGeVector3d& axis,
                              const AcGePoint3d& center = AcGePoint3d::kOrigin);
  // Uniform scaling about center.
  AcGeMatrix3d& setToScaling(double scaleAll, const AcGePoint3d& center = AcGePoint3d::kOrigin);
  // Reflection in a plane; through a point (p' = 2 c - p); about a line (a
  // half turn about it: p' = 2 foot(p) - p). A degenerate plane or line
  // gives the identity.
  AcGeMatrix3d& setToMirroring(const AcGePlane& mirrorPlane);
  AcGeMatrix3d& setToMirroring(const AcGePoint3d& mirrorPoint);
  AcGeMatrix3d& setToMirroring(const AcGeLine3d& mirrorLine);
  // Parallel projection onto the plane along projectDir. A direction parallel
  // to the plane gives the identity.
  AcGeMatrix3d& setToProjection(const AcGePlane& projectionPlane, const AcGeVector3d& projectDir);
  // The matrix that carries the "from" coordinate system onto the "to" one:
  // To * From^-1 with From and To as setCoordSystem builds them. Axes need
  // not be unit or orthogonal; a singular "from" system gives the identity.
  AcGeMatrix3d& setToAlignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis,
                                   const AcGeVector3d& fromYAxis, const AcGeVector3d& fromZAxis,
                                   const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
                                   const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis);
  // Plane to world: the plane's own system (origin and unit axes u, v and
  // the normal) to world coordinates. For a bare normal the plane passes
  // through the origin and its X axis is normal.perpVector() (the
  // arbitrary-axis rule), Y = N x X: the entity coordinate system of that
  // normal. World to plane is the inverse (the transpose of the rotation).
  // A zero normal gives the identity.
  AcGeMatrix3d& setToWorldToPlane(const AcGeVector3d& normal);
  AcGeMatrix3d& setToWorldToPlane(const AcGePlane& plane);
  AcGeMatrix3d& setToPlaneToWorld(const AcGeVector3d& normal);
  AcGeMatrix3d& setToPlaneToWorld(const AcGePlane& plane);

  // The largest absolute value among the nine entries of the linear part.
  double norm() const;
  // The largest length of the three columns of the linear part: how much
  // the matrix stretches at most along a world axis.
  double scale() const;

  // The same builders as values.
  static AcGeMatrix3d translation(const AcGeVector3d& vec);
  static AcGeMatrix3d rotation(double angle, const AcGeVector3d& axis,
                               const AcGePoint3d& center = AcGePoint3d::kOrigin);
  static AcGeMatrix3d scaling(double scaleAll, const AcGePoint3d& center = AcGePoint3d::kOrigin);
  static AcGeMatrix3d mirroring(const AcGePlane& plane);
  static AcGeMatrix3d mirroring(const AcGePoint3d& point);
  static AcGeMatrix3d mirroring(const AcGeLine3d& line);
  static AcGeMatrix3d projection(const AcGePlane& projectionPlane, const AcGeVector3d& projectDir);
  static AcGeMatrix3d alignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis,
                                    const AcGeVector3d& fromYAxis, const AcGeVector3d& fromZAxis,
                                    const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
                                    const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis);
  static AcGeMatrix3d worldToPlane(const AcGeVector3d& normal);
  static AcGeMatrix3d worldToPlane(const AcGePlane& plane);
  static AcGeMatrix3d planeToWorld(const AcGeVector3d& normal);
  static AcGeMatrix3d planeToWorld(const AcGePlane& plane);

  double operator()(unsigned int row, unsigned int col) const { return entry[row][col]; }
  double& operator()(unsigned int row, unsigned int col) { return entry[row][col]; }
  const double* operator[](unsigned int row) const { return entry[row]; }
  double* operator[](unsigned int row) { return entry[row]; }

  double entry[4][4];
};
