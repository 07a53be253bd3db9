// A straight segment in space, from a start point to an end point;
// parameter 0 at the start and 1 at the end.
#pragma once

#include "host/gelinent3d.h"

class AcGeLineSeg3d : public AcGeLinearEnt3d {
 public:
  // The segment from the origin to (1, 0, 0).
  AcGeLineSeg3d() = default;
  AcGeLineSeg3d(const AcGePoint3d& pnt1, const AcGePoint3d& pnt2) : AcGeLinearEnt3d(pnt1, pnt2 - pnt1) {}
  // From pnt to pnt + vec.
  AcGeLineSeg3d(const AcGePoint3d& pnt, const AcGeVector3d& vec) : AcGeLinearEnt3d(pnt, vec) {}

  AcGeLineSeg3d& set(const AcGePoint3d& pnt1, const AcGePoint3d& pnt2);
  AcGeLineSeg3d& set(const AcGePoint3d& pnt, const AcGeVector3d& vec);

  AcGePoint3d startPoint() const { return point_; }
  AcGePoint3d endPoint() const { return point_ + vector_; }
  AcGePoint3d midPoint() const { return point_ + vector_ * 0.5; }
  using AcGeLinearEnt3d::length;
  double length() const { return vector_.length(); }
  // The point start + blendCoeff * (end - start).
  AcGePoint3d baryComb(double blendCoeff) const { return evalPoint(blendCoeff); }
  // The plane through the midpoint perpendicular to the segment.
  void getBisector(AcGePlane& plane) const;

  AcGe::EntityId type() const override { return AcGe::kLineSeg3d; }
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kLineSeg3d || AcGeLinearEnt3d::isKindOf(entType);
  }
  AcGeEntity3d* copy() const override { return new AcGeLineSeg3d(*this); }
  // Another segment with the same end points, in either order.
  bool isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol = AcGeContext::gTol) const override;
  void getInterval(double& lower, double& upper) const override;
  AcGeLineSeg3d& transformBy(const AcGeMatrix3d& xfm) override {
    AcGeLinearEnt3d::transformBy(xfm);
    return *this;
  }
};
