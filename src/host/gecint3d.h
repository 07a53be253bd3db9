// The points where two curves in space meet, or where one curve meets
// itself. Each point comes with its parameter on either curve and whether
// the curves touch there (tangent) or cross. A stretch where the curves
// coincide is given as its two end points. Points come in order along the
// first curve unless orderWrt2() asks for the second.
//
// A curve with itself (the same object, or an equal curve): the points
// where it crosses or touches itself, each once with its two parameters,
// the smaller first. The joints of its pieces and the seam of a closed
// curve are not intersections.
#pragma once

#include <memory>
#include <vector>

#include "host/gecurv3d.h"

class AcGeCurveCurveInt3d : public AcGeEntity3d {
 public:
  AcGeCurveCurveInt3d() = default;
  AcGeCurveCurveInt3d(const AcGeCurve3d& curve1, const AcGeCurve3d& curve2, const AcGeTol& tol = AcGeContext::gTol);
  AcGeCurveCurveInt3d(const AcGeCurveCurveInt3d& src);
  AcGeCurveCurveInt3d& operator=(const AcGeCurveCurveInt3d& src);

  AcGeCurveCurveInt3d& set(const AcGeCurve3d& curve1, const AcGeCurve3d& curve2,
                           const AcGeTol& tol = AcGeContext::gTol);

  const AcGeCurve3d* curve1() const { return c1_.get(); }
  const AcGeCurve3d* curve2() const { return c2_.get(); }
  AcGeTol tolerance() const { return tol_; }

  int numIntPoints() const { return static_cast<int>(pts_.size()); }
  int numIntPoints(AcGe::ErrorCondition& err) const {
    err = AcGe::kOk;
    return numIntPoints();
  }
  AcGePoint3d intPoint(int intNum) const;
  void getIntParams(int intNum, double& param1, double& param2) const;
  // The curves touch at the point (their tangents parallel) rather than cross.
  bool isTangential(int intNum) const;
  bool isTransversal(int intNum) const { return !isTangential(intNum); }
  // How many points are ends of stretches where the curves coincide.
  int overlapCount() const;
  bool isOverlapEnd(int intNum) const;

  // Sort the points along the first curve, or along the second.
  AcGeCurveCurveInt3d& orderWrt1();
  AcGeCurveCurveInt3d& orderWrt2();

  AcGe::EntityId type() const override { return AcGe::kCurveCurveInt3d; }
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kCurveCurveInt3d || AcGeEntity3d::isKindOf(entType);
  }
  AcGeEntity3d* copy() const override { return new AcGeCurveCurveInt3d(*this); }
  bool isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol = AcGeContext::gTol) const override;
  bool isOn(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  AcGeCurveCurveInt3d& transformBy(const AcGeMatrix3d& xfm) override;

  struct Hit {
    AcGePoint3d point;
    double param1 = 0, param2 = 0;
    bool tangent = false;
    bool overlapEnd = false;
  };

 private:
  std::unique_ptr<AcGeCurve3d> c1_, c2_;
  AcGeTol tol_;
  std::vector<Hit> pts_;
};

namespace zepk::ge {
// The meetings of two curves, in order along the first; self when the two
// are one curve. The engine of AcGeCurveCurveInt3d.
std::vector<AcGeCurveCurveInt3d::Hit> intersectCurves(const AcGeCurve3d& c1, const AcGeCurve3d& c2, bool self,
                                                      const AcGeTol& tol);
}  // namespace zepk::ge
