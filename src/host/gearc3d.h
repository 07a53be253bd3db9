// A circular arc in space: a centre, a unit normal, a unit reference
// vector in the plane, a radius, and the start and end angles measured
// from the reference vector counter-clockwise about the normal. The
// parameter is that angle, from startAng() to endAng() (endAng() above
// startAng() by at most 2 pi; a full circle sweeps exactly 2 pi).
#pragma once

#include "host/gecurv3d.h"

class AcGeCircArc3d : public AcGeCurve3d {
 public:
  // The unit circle in the XY plane.
  AcGeCircArc3d() = default;
  // A full circle; the reference vector by the arbitrary-axis rule.
  AcGeCircArc3d(const AcGePoint3d& cent, const AcGeVector3d& nrm, double radius);
  AcGeCircArc3d(const AcGePoint3d& cent, const AcGeVector3d& nrm, const AcGeVector3d& refVec, double radius,
                double startAngle = 0.0, double endAngle = 6.28318530717958647692);
  // The arc from startPoint through pnt to endPoint. Points on a line make
  // a degenerate arc of radius 0.
  AcGeCircArc3d(const AcGePoint3d& startPoint, const AcGePoint3d& pnt, const AcGePoint3d& endPoint);

  AcGeCircArc3d& set(const AcGePoint3d& cent, const AcGeVector3d& nrm, double radius);
  AcGeCircArc3d& set(const AcGePoint3d& cent, const AcGeVector3d& nrm, const AcGeVector3d& refVec, double radius,
                     double startAngle, double endAngle);
  AcGeCircArc3d& set(const AcGePoint3d& startPoint, const AcGePoint3d& pnt, const AcGePoint3d& endPoint);

  AcGePoint3d center() const { return center_; }
  AcGeVector3d normal() const { return normal_; }
  AcGeVector3d refVec() const { return refVec_; }
  double radius() const { return radius_; }
  double startAng() const { return startAng_; }
  double endAng() const { return endAng_; }
  AcGePoint3d startPoint() const { return evalPoint(startAng_); }
  AcGePoint3d endPoint() const { return evalPoint(endAng_); }
  AcGeCircArc3d& setCenter(const AcGePoint3d& c) { center_ = c; return *this; }
  AcGeCircArc3d& setRadius(double r) { radius_ = r; return *this; }
  // The end angle is taken above the start angle, by up to 2 pi.
  AcGeCircArc3d& setAngles(double startAngle, double endAngle);
  // The plane of the arc.
  void getPlane(AcGePlane& plane) const;

  AcGe::EntityId type() const override { return AcGe::kCircArc3d; }
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kCircArc3d || AcGeCurve3d::isKindOf(entType);
  }
  AcGeEntity3d* copy() const override { return new AcGeCircArc3d(*this); }
  // The same set of points: same circle, same ends (a full circle equals a
  // full circle whatever its start).
  bool isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol = AcGeContext::gTol) const override;
  // Similarities only (rotations, uniform scaling, mirrors, translations).
  AcGeCircArc3d& transformBy(const AcGeMatrix3d& xfm) override;

  void getInterval(double& lower, double& upper) const override;
  using AcGeCurve3d::evalPoint;
  AcGePoint3d evalPoint(double param) const override;
  AcGePoint3d evalPoint(double param, int numDeriv, AcGeVector3dArray& derivArray) const override;
  // Of a point off the arc: the parameter of its nearest point.
  double paramOf(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  bool isClosed(const AcGeTol& tol = AcGeContext::gTol) const override;
  bool isPeriodic(double& period) const override;
  bool isPlanar(AcGePlane& plane, const AcGeTol& tol = AcGeContext::gTol) const override;
  using AcGeCurve3d::length;
  double length(double fromParam, double toParam, double tol = 1e-12) const override;
  double paramAtLength(double datumParam, double length, bool posParamDir = true,
                       double tol = 1e-12) const override;
  AcGeCurve3d* trimmedCopy(double fromParam, double toParam) const override;
  AcGeCurve3d& reverseParam() override;
  AcGeBoundBlock3d orthoBoundBlock() const override;

  // The angle of a point (its projection on the plane) from the reference
  // vector, in [startAng(), startAng() + 2 pi).
  double angleOf(const AcGePoint3d& pnt) const;

 private:
  AcGeVector3d perp() const { return normal_.crossProduct(refVec_); }
  AcGePoint3d center_;
  AcGeVector3d normal_{0, 0, 1};
  AcGeVector3d refVec_{1, 0, 0};
  double radius_ = 1.0;
  double startAng_ = 0.0, endAng_ = 6.28318530717958647692;
};
