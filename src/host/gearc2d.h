// A circular arc in the plane: a centre, a radius, a unit reference vector,
// and the start and end angles measured from the reference vector,
// counter-clockwise for a counter-clockwise arc and clockwise for a
// clockwise one. The parameter is that angle, from startAng() to endAng()
// (endAng() above startAng() by at most 2 pi; a full circle sweeps exactly
// 2 pi). As a curve in space a clockwise arc has the normal -Z.
#pragma once

#include "host/gecurv2d.h"

class AcGeCircArc2d : public AcGeCurve2d {
 public:
  // The unit circle, counter-clockwise.
  AcGeCircArc2d() = default;
  // A full circle, counter-clockwise from the X axis.
  AcGeCircArc2d(const AcGePoint2d& cent, double radius);
  AcGeCircArc2d(const AcGePoint2d& cent, double radius, double startAng, double endAng,
                const AcGeVector2d& refVec = AcGeVector2d(1.0, 0.0), bool isClockWise = false);
  // The arc from startPoint through point to endPoint. Points on a line make
  // a degenerate arc of radius 0.
  AcGeCircArc2d(const AcGePoint2d& startPoint, const AcGePoint2d& point, const AcGePoint2d& endPoint);
  // The arc from startPoint to endPoint with the bulge (the tangent of a
  // quarter of its included angle, positive counter-clockwise); with
  // bulgeFlag false the value is taken as the included angle instead.
  AcGeCircArc2d(const AcGePoint2d& startPoint, const AcGePoint2d& endPoint, double bulge, bool bulgeFlag = true);

  AcGeCircArc2d& set(const AcGePoint2d& cent, double radius);
  AcGeCircArc2d& set(const AcGePoint2d& cent, double radius, double startAng, double endAng,
                     const AcGeVector2d& refVec = AcGeVector2d(1.0, 0.0), bool isClockWise = false);
  AcGeCircArc2d& set(const AcGePoint2d& startPoint, const AcGePoint2d& point, const AcGePoint2d& endPoint);
  AcGeCircArc2d& set(const AcGePoint2d& startPoint, const AcGePoint2d& endPoint, double bulge, bool bulgeFlag = true);

  AcGePoint2d center() const { return center_; }
  double radius() const { return radius_; }
  double startAng() const { return startAng_; }
  double endAng() const { return endAng_; }
  bool isClockWise() const { return clockwise_; }
  AcGeVector2d refVec() const { return refVec_; }
  AcGePoint2d startPoint() const { return evalPoint(startAng_); }
  AcGePoint2d endPoint() const { return evalPoint(endAng_); }
  AcGeCircArc2d& setCenter(const AcGePoint2d& c) { center_ = c; return *this; }
  AcGeCircArc2d& setRadius(double r) { radius_ = r; return *this; }
  // The end angle is taken above the start angle, by up to 2 pi.
  AcGeCircArc2d& setAngles(double startAng, double endAng);
  AcGeCircArc2d& setToComplement();

  AcGe::EntityId type() const override { return AcGe::kCircArc2d; }
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kCircArc2d || AcGeCurve2d::isKindOf(entType);
  }
  AcGeEntity2d* copy() const override { return new AcGeCircArc2d(*this); }
  // The same set of points: same circle, same ends (a full circle equals a
  // full circle whatever its start).
  bool isEqualTo(const AcGeEntity2d& ent, const AcGeTol& tol = AcGeContext::gTol) const override;
  // Similarities only (rotations, uniform scaling, mirrors, translations);
  // a mirror turns the arc's sense.
  AcGeCircArc2d& transformBy(const AcGeMatrix2d& xfm) override;

  void getInterval(double& lower, double& upper) const override;
  using AcGeCurve2d::evalPoint;
  AcGePoint2d evalPoint(double param) const override;
  AcGeCurve2d* trimmedCopy(double fromParam, double toParam) const override;
  AcGeCurve2d& reverseParam() override;
  AcGeCurve3d* to3d() const override;

 private:
  AcGeVector2d perp() const { return clockwise_ ? AcGeVector2d(refVec_.y, -refVec_.x) : AcGeVector2d(-refVec_.y, refVec_.x); }
  AcGePoint2d center_;
  double radius_ = 1.0;
  AcGeVector2d refVec_{1.0, 0.0};
  double startAng_ = 0.0, endAng_ = 6.28318530717958647692;
  bool clockwise_ = false;
};
