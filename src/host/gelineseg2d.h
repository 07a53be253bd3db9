// A straight segment in the plane; parameter 0 at the start and 1 at the end.
#pragma once

#include "host/gelinent2d.h"

class AcGeLineSeg2d : public AcGeLinearEnt2d {
 public:
  // The segment from the origin to (1, 0).
  AcGeLineSeg2d() = default;
  AcGeLineSeg2d(const AcGePoint2d& pnt1, const AcGePoint2d& pnt2) : AcGeLinearEnt2d(pnt1, pnt2 - pnt1) {}
  AcGeLineSeg2d(const AcGePoint2d& pnt, const AcGeVector2d& vec) : AcGeLinearEnt2d(pnt, vec) {}

  AcGeLineSeg2d& set(const AcGePoint2d& pnt1, const AcGePoint2d& pnt2);
  AcGeLineSeg2d& set(const AcGePoint2d& pnt, const AcGeVector2d& vec);

  AcGePoint2d startPoint() const { return point_; }
  AcGePoint2d endPoint() const { return point_ + vector_; }
  AcGePoint2d midPoint() const { return point_ + vector_ * 0.5; }
  double length() const { return vector_.length(); }
  AcGePoint2d baryComb(double blendCoeff) const { return evalPoint(blendCoeff); }
  // The perpendicular bisector: through the midpoint, along the segment's
  // direction turned a quarter turn counter-clockwise.
  void getBisector(AcGeLine2d& line) const;

  AcGe::EntityId type() const override { return AcGe::kLineSeg2d; }
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kLineSeg2d || AcGeLinearEnt2d::isKindOf(entType);
  }
  AcGeEntity2d* copy() const override { return new AcGeLineSeg2d(*this); }
  // Another segment with the same end points, in either order.
  bool isEqualTo(const AcGeEntity2d& ent, const AcGeTol& tol = AcGeContext::gTol) const override;
  void getInterval(double& lower, double& upper) const override;
  AcGeLineSeg2d& transformBy(const AcGeMatrix2d& xfm) override {
    AcGeLinearEnt2d::transformBy(xfm);
    return *this;
  }
};
