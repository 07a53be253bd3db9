// An infinite line in the plane.
#pragma once

#include "host/gelinent2d.h"

class AcGeLine2d : public AcGeLinearEnt2d {
 public:
  // The X axis.
  AcGeLine2d() = default;
  AcGeLine2d(const AcGePoint2d& pnt, const AcGeVector2d& vec) : AcGeLinearEnt2d(pnt, vec) {}
  AcGeLine2d(const AcGePoint2d& pnt1, const AcGePoint2d& pnt2) : AcGeLinearEnt2d(pnt1, pnt2 - pnt1) {}

  static const AcGeLine2d kXAxis;
  static const AcGeLine2d kYAxis;

  AcGeLine2d& set(const AcGePoint2d& pnt, const AcGeVector2d& vec);
  AcGeLine2d& set(const AcGePoint2d& pnt1, const AcGePoint2d& pnt2);

  AcGe::EntityId type() const override { return AcGe::kLine2d; }
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kLine2d || AcGeLinearEnt2d::isKindOf(entType);
  }
  AcGeEntity2d* copy() const override { return new AcGeLine2d(*this); }
  bool isEqualTo(const AcGeEntity2d& ent, const AcGeTol& tol = AcGeContext::gTol) const override;
  void getInterval(double& lower, double& upper) const override;
  AcGeLine2d& transformBy(const AcGeMatrix2d& xfm) override {
    AcGeLinearEnt2d::transformBy(xfm);
    return *this;
  }
};
