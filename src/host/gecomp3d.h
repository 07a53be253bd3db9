// A composite curve in space: curves joined end to end (a polyline is one
// of segments and arcs). Its parameter counts the pieces: piece i runs over
// [i, i + 1], its own parameter mapped there linearly, so that along a
// segment the fraction goes with length and along an arc with angle.
#pragma once

#include <memory>
#include <vector>

#include "host/gecurv3d.h"

class AcGeCompositeCurve3d : public AcGeCurve3d {
 public:
  AcGeCompositeCurve3d() = default;
  // Copies of the curves, which must be bounded.
  explicit AcGeCompositeCurve3d(const std::vector<AcGeCurve3d*>& curveList);
  AcGeCompositeCurve3d(const AcGeCompositeCurve3d& src);
  AcGeCompositeCurve3d& operator=(const AcGeCompositeCurve3d& src);

  // The composite's own pieces (it owns them).
  void getCurveList(std::vector<AcGeCurve3d*>& curveList) const;
  AcGeCompositeCurve3d& setCurveList(const std::vector<AcGeCurve3d*>& curveList);
  // Takes the curve over (the composite deletes it).
  AcGeCompositeCurve3d& appendOwned(AcGeCurve3d* curve);
  int numCurves() const { return static_cast<int>(curves_.size()); }
  const AcGeCurve3d& curveAt(int i) const { return *curves_[i]; }
  // The piece and its own parameter of a composite parameter, and back.
  double globalToLocalParam(double param, int& segNum) const;
  double localToGlobalParam(double param, int segNum) const;

  AcGe::EntityId type() const override { return AcGe::kCompositeCrv3d; }
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kCompositeCrv3d || AcGeCurve3d::isKindOf(entType);
  }
  AcGeEntity3d* copy() const override { return new AcGeCompositeCurve3d(*this); }
  bool isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol = AcGeContext::gTol) const override;
  AcGeCompositeCurve3d& transformBy(const AcGeMatrix3d& xfm) override;

  void getInterval(double& lower, double& upper) const override;
  using AcGeCurve3d::evalPoint;
  AcGePoint3d evalPoint(double param) const override;
  AcGePoint3d evalPoint(double param, int numDeriv, AcGeVector3dArray& derivArray) const override;
  double paramOf(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  using AcGeCurve3d::length;
  double length(double fromParam, double toParam, double tol = 1e-12) const override;
  double paramAtLength(double datumParam, double length, bool posParamDir = true,
                       double tol = 1e-12) const override;
  using AcGeCurve3d::getSamplePoints;
  void getSamplePoints(double fromParam, double toParam, double approxEps, AcGePoint3dArray& pointArray,
                       AcGeDoubleArray& paramArray) const override;
  AcGeCurve3d* trimmedCopy(double fromParam, double toParam) const override;
  AcGeCurve3d& reverseParam() override;
  AcGeBoundBlock3d orthoBoundBlock() const override;
  void getBreakParams(AcGeDoubleArray& params) const override;

 private:
  void span(int i, double& lo, double& hi) const { curves_[i]->getInterval(lo, hi); }
  std::vector<std::unique_ptr<AcGeCurve3d>> curves_;
};

namespace zepk::ge {
// A polyline's segment from a to b with a bulge (the tangent of a quarter
// of the included angle, positive counter-clockwise about normal): a line
// segment, or an arc whose parameter runs from a to b. The caller deletes it.
AcGeCurve3d* bulgeSegment(const AcGePoint3d& a, const AcGePoint3d& b, double bulge, const AcGeVector3d& normal);
}  // namespace zepk::ge
