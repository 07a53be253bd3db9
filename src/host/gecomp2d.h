// A composite curve in the plane: curves joined end to end (a polyline is
// one of segments and arcs). Its parameter counts the pieces: piece i runs
// over [i, i + 1], its own parameter mapped there linearly, so that along a
// segment the fraction goes with length and along an arc with angle.
#pragma once

#include <memory>
#include <vector>

#include "host/gecurv2d.h"

class AcGeCompositeCurve2d : public AcGeCurve2d {
 public:
  AcGeCompositeCurve2d() = default;
  // Copies of the curves, which must be bounded.
  explicit AcGeCompositeCurve2d(const std::vector<AcGeCurve2d*>& curveList);
  AcGeCompositeCurve2d(const AcGeCompositeCurve2d& src);
  AcGeCompositeCurve2d& operator=(const AcGeCompositeCurve2d& src);

  // The composite's own pieces (it owns them).
  void getCurveList(std::vector<AcGeCurve2d*>& curveList) const;
  AcGeCompositeCurve2d& setCurveList(const std::vector<AcGeCurve2d*>& curveList);
  // Takes the curve over (the composite deletes it).
  AcGeCompositeCurve2d& appendOwned(AcGeCurve2d* curve);
  int numCurves() const { return static_cast<int>(curves_.size()); }
  const AcGeCurve2d& curveAt(int i) const { return *curves_[i]; }
  // The piece and its own parameter of a composite parameter, and back.
  double globalToLocalParam(double param, int& segNum) const;
  double localToGlobalParam(double param, int segNum) const;

  AcGe::EntityId type() const override { return AcGe::kCompositeCrv2d; }
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kCompositeCrv2d || AcGeCurve2d::isKindOf(entType);
  }
  AcGeEntity2d* copy() const override { return new AcGeCompositeCurve2d(*this); }
  // The same pieces in the same order.
  bool isEqualTo(const AcGeEntity2d& ent, const AcGeTol& tol = AcGeContext::gTol) const override;
  AcGeCompositeCurve2d& transformBy(const AcGeMatrix2d& xfm) override;

  void getInterval(double& lower, double& upper) const override;
  using AcGeCurve2d::evalPoint;
  AcGePoint2d evalPoint(double param) const override;
  AcGeCurve2d* trimmedCopy(double fromParam, double toParam) const override;
  AcGeCurve2d& reverseParam() override;
  AcGeCurve3d* to3d() const override;

 private:
  std::vector<std::unique_ptr<AcGeCurve2d>> curves_;
};
