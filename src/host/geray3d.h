// A ray in space: from a base point along a direction without end; the
// parameter t gives base + t * vector for t >= 0.
#pragma once

#include "host/gelinent3d.h"

class AcGeRay3d : public AcGeLinearEnt3d {
 public:
  // From the origin along the X axis.
  AcGeRay3d() = default;
  AcGeRay3d(const AcGePoint3d& pnt, const AcGeVector3d& vec) : AcGeLinearEnt3d(pnt, vec) {}
  // From pnt1 through pnt2 (at parameter 1).
  AcGeRay3d(const AcGePoint3d& pnt1, const AcGePoint3d& pnt2) : AcGeLinearEnt3d(pnt1, pnt2 - pnt1) {}

  AcGeRay3d& set(const AcGePoint3d& pnt, const AcGeVector3d& vec) {
    point_ = pnt;
    vector_ = vec;
    return *this;
  }
  AcGeRay3d& set(const AcGePoint3d& pnt1, const AcGePoint3d& pnt2) { return set(pnt1, pnt2 - pnt1); }

  AcGe::EntityId type() const override { return AcGe::kRay3d; }
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kRay3d || AcGeLinearEnt3d::isKindOf(entType);
  }
  AcGeEntity3d* copy() const override { return new AcGeRay3d(*this); }
  // Another ray from the same base in the same direction.
  bool isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol = AcGeContext::gTol) const override;
  void getInterval(double& lower, double& upper) const override;
  AcGeRay3d& transformBy(const AcGeMatrix3d& xfm) override {
    AcGeLinearEnt3d::transformBy(xfm);
    return *this;
  }
};
