// A 3 by 3 transformation matrix of the plane, laid out as the 3d one:
// entry[row][col], points as columns on the right (p' = M * p), the
// translation in the last column.
#pragma once

#include "host/gepnt2d.h"

class AcGeLine2d;

class AcGeMatrix2d {
 public:
  constexpr AcGeMatrix2d() : entry{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}} {}

  static const AcGeMatrix2d kIdentity;

  AcGeMatrix2d& setToIdentity();

  AcGeMatrix2d operator*(const AcGeMatrix2d& mat) const;
  AcGeMatrix2d& operator*=(const AcGeMatrix2d& mat) { return postMultBy(mat); }
  AcGeMatrix2d& preMultBy(const AcGeMatrix2d& leftSide);
  AcGeMatrix2d& postMultBy(const AcGeMatrix2d& rightSide);
  AcGeMatrix2d& setToProduct(const AcGeMatrix2d& mat1, const AcGeMatrix2d& mat2);

  // As for the 3d matrix: a singular matrix is left, or returned, unchanged.
  AcGeMatrix2d& invert();
  AcGeMatrix2d inverse() const;
  bool inverse(AcGeMatrix2d& inv, double tol) const;
  // The rule of the 3d matrix, on the 2 by 2 linear part of an affine matrix.
  bool isSingular(const AcGeTol& tol = AcGeContext::gTol) const;

  AcGeMatrix2d& transposeIt();
  AcGeMatrix2d transpose() const;

  bool isEqualTo(const AcGeMatrix2d& mat, const AcGeTol& tol = AcGeContext::gTol) const;
  bool operator==(const AcGeMatrix2d& mat) const { return isEqualTo(mat); }
  bool operator!=(const AcGeMatrix2d& mat) const { return !isEqualTo(mat); }

  bool isScaledOrtho(const AcGeTol& tol = AcGeContext::gTol) const;
  bool isUniScaledOrtho(const AcGeTol& tol = AcGeContext::gTol) const;
  double det() const;
  // The largest length of the two columns of the linear part.
  double scale() const;

  AcGeMatrix2d& setTranslation(const AcGeVector2d& vec);
  AcGeVector2d translation() const { return {entry[0][2], entry[1][2]}; }

  AcGeMatrix2d& setCoordSystem(const AcGePoint2d& origin, const AcGeVector2d& e0,
                               const AcGeVector2d& e1);
  void getCoordSystem(AcGePoint2d& origin, AcGeVector2d& e0, AcGeVector2d& e1) const;

  AcGeMatrix2d& setToTranslation(const AcGeVector2d& vec);
  // Counter-clockwise about center.
  AcGeMatrix2d& setToRotation(double angle, const AcGePoint2d& center = AcGePoint2d::kOrigin);
  AcGeMatrix2d& setToScaling(double scaleAll, const AcGePoint2d& center = AcGePoint2d::kOrigin);
  // Through a point (p' = 2 c - p), or in a line; a degenerate line gives
  // the identity.
  AcGeMatrix2d& setToMirroring(const AcGePoint2d& pnt);
  AcGeMatrix2d& setToMirroring(const AcGeLine2d& line);
  // To * From^-1; a singular "from" system gives the identity.
  AcGeMatrix2d& setToAlignCoordSys(const AcGePoint2d& fromOrigin, const AcGeVector2d& fromE0,
                                   const AcGeVector2d& fromE1, const AcGePoint2d& toOrigin,
                                   const AcGeVector2d& toE0, const AcGeVector2d& toE1);

  static AcGeMatrix2d translation(const AcGeVector2d& vec);
  static AcGeMatrix2d rotation(double angle, const AcGePoint2d& center = AcGePoint2d::kOrigin);
  static AcGeMatrix2d scaling(double scaleAll, const AcGePoint2d& center = AcGePoint2d::kOrigin);
  static AcGeMatrix2d mirroring(const AcGePoint2d& pnt);
  static AcGeMatrix2d mirroring(const AcGeLine2d& line);

  double operator()(unsigned int row, unsigned int col) const { return entry[row][col]; }
  double& operator()(unsigned int row, unsigned int col) { return entry[row][col]; }
  const double* operator[](unsigned int row) const { return entry[row]; }
  double* operator[](unsigned int row) { return entry[row]; }

  double entry[3][3];
};
