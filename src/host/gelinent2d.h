// What lines and line segments in the plane share: a point and a vector, the
// points pointOnLine + t * vector for every t on a line and for t in [0, 1]
// on a segment. Tolerances as in space (host/gelinent3d.h).
#pragma once

#include "host/gecurv2d.h"

class AcGeLine2d;

class AcGeLinearEnt2d : public AcGeCurve2d {
 public:
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kLinearEnt2d || AcGeCurve2d::isKindOf(entType);
  }

  // The one point where the two meet; parallel entities have none.
  bool intersectWith(const AcGeLinearEnt2d& line, AcGePoint2d& intPnt,
                     const AcGeTol& tol = AcGeContext::gTol) const;
  // The common part of two colinear entities as a new entity the caller
  // deletes (a line when both are lines, else a segment running the way
  // this one runs); touching ends are no overlap.
  bool overlap(const AcGeLinearEnt2d& line, AcGeLinearEnt2d*& overlap,
               const AcGeTol& tol = AcGeContext::gTol) const;

  bool isOn(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  bool isOn(const AcGePoint2d& pnt, double& param, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isOn(double param, const AcGeTol& tol = AcGeContext::gTol) const override;

  bool isParallelTo(const AcGeLinearEnt2d& line, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isPerpendicularTo(const AcGeLinearEnt2d& line, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isColinearTo(const AcGeLinearEnt2d& line, const AcGeTol& tol = AcGeContext::gTol) const;

  // The line through pnt perpendicular to this one.
  void getPerpLine(const AcGePoint2d& pnt, AcGeLine2d& perpLine) const;
  AcGePoint2d pointOnLine() const { return point_; }
  AcGeVector2d direction() const { return vector_.normal(); }
  void getLine(AcGeLine2d& line) const;

  AcGePoint2d closestPointTo(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;
  AcGePoint2d closestPointTo(const AcGeLinearEnt2d& line, AcGePoint2d& pntOnOtherCrv,
                             const AcGeTol& tol = AcGeContext::gTol) const;
  double distanceTo(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;
  double distanceTo(const AcGeLinearEnt2d& line, const AcGeTol& tol = AcGeContext::gTol) const;

  AcGePoint2d evalPoint(double param) const override { return point_ + vector_ * param; }
  double paramOf(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  // The part between the two parameters as a segment (parameterised
  // afresh); null for an empty range or one outside a segment.
  AcGeCurve2d* trimmedCopy(double fromParam, double toParam) const override;
  AcGeCurve2d& reverseParam() override;
  AcGeCurve3d* to3d() const override;
  bool isBounded() const;

  AcGeLinearEnt2d& transformBy(const AcGeMatrix2d& xfm) override;

 protected:
  friend struct AcGeLinearParts;
  AcGeLinearEnt2d() = default;
  AcGeLinearEnt2d(const AcGeLinearEnt2d&) = default;
  AcGeLinearEnt2d& operator=(const AcGeLinearEnt2d&) = default;
  AcGeLinearEnt2d(const AcGePoint2d& pnt, const AcGeVector2d& vec) : point_(pnt), vector_(vec) {}

  AcGePoint2d point_;
  AcGeVector2d vector_{1.0, 0.0};
};
