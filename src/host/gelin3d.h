// An infinite line in space: a point and a direction vector.
#pragma once

#include "host/gelinent3d.h"

class AcGeLine3d : public AcGeLinearEnt3d {
 public:
  // The X axis.
  AcGeLine3d() = default;
  // The line through pnt along vec; the parameter t gives pnt + t * vec.
  AcGeLine3d(const AcGePoint3d& pnt, const AcGeVector3d& vec) : AcGeLinearEnt3d(pnt, vec) {}
  // The line through both points, parameter 0 at the first and 1 at the second.
  AcGeLine3d(const AcGePoint3d& pnt1, const AcGePoint3d& pnt2) : AcGeLinearEnt3d(pnt1, pnt2 - pnt1) {}

  static const AcGeLine3d kXAxis;
  static const AcGeLine3d kYAxis;
  static const AcGeLine3d kZAxis;

  AcGeLine3d& set(const AcGePoint3d& pnt, const AcGeVector3d& vec);
  AcGeLine3d& set(const AcGePoint3d& pnt1, const AcGePoint3d& pnt2);

  AcGe::EntityId type() const override { return AcGe::kLine3d; }
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kLine3d || AcGeLinearEnt3d::isKindOf(entType);
  }
  AcGeEntity3d* copy() const override { return new AcGeLine3d(*this); }
  // Another line with the same points: colinear.
  bool isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol = AcGeContext::gTol) const override;
  void getInterval(double& lower, double& upper) const override;
  AcGeLine3d& transformBy(const AcGeMatrix3d& xfm) override {
    AcGeLinearEnt3d::transformBy(xfm);
    return *this;
  }
};
