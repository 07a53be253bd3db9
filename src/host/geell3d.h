// An elliptical arc in space: centre, unit major and minor axes, the two
// radii, and start and end parameters. The point at parameter t (the
// eccentric angle) is centre + majorRadius cos t major + minorRadius sin t
// minor; the normal is major x minor.
#pragma once

#include "host/gecurv3d.h"

class AcGeCircArc3d;

class AcGeEllipArc3d : public AcGeCurve3d {
 public:
  AcGeEllipArc3d() = default;
  // The ellipse of the circle, with its angles.
  explicit AcGeEllipArc3d(const AcGeCircArc3d& arc);
  AcGeEllipArc3d(const AcGePoint3d& cent, const AcGeVector3d& majorAxis, const AcGeVector3d& minorAxis,
                 double majorRadius, double minorRadius, double startAngle = 0.0,
                 double endAngle = 6.28318530717958647692);

  AcGeEllipArc3d& set(const AcGePoint3d& cent, const AcGeVector3d& majorAxis, const AcGeVector3d& minorAxis,
                      double majorRadius, double minorRadius, double startAngle = 0.0,
                      double endAngle = 6.28318530717958647692);

  AcGePoint3d center() const { return center_; }
  AcGeVector3d majorAxis() const { return major_; }
  AcGeVector3d minorAxis() const { return minor_; }
  AcGeVector3d normal() const { return major_.crossProduct(minor_).normal(); }
  double majorRadius() const { return majorRadius_; }
  double minorRadius() const { return minorRadius_; }
  double startAng() const { return startAng_; }
  double endAng() const { return endAng_; }
  AcGePoint3d startPoint() const { return evalPoint(startAng_); }
  AcGePoint3d endPoint() const { return evalPoint(endAng_); }
  // The end parameter is taken above the start, by up to 2 pi.
  AcGeEllipArc3d& setAngles(double startAngle, double endAngle);
  bool isCircular(const AcGeTol& tol = AcGeContext::gTol) const;

  AcGe::EntityId type() const override { return AcGe::kEllipArc3d; }
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kEllipArc3d || AcGeCurve3d::isKindOf(entType);
  }
  AcGeEntity3d* copy() const override { return new AcGeEllipArc3d(*this); }
  bool isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol = AcGeContext::gTol) const override;
  // Any affine matrix: the image is an ellipse, its axes found afresh
  // (the parameters shift so that the points stay).
  AcGeEllipArc3d& transformBy(const AcGeMatrix3d& xfm) override;

  void getInterval(double& lower, double& upper) const override;
  using AcGeCurve3d::evalPoint;
  AcGePoint3d evalPoint(double param) const override;
  AcGePoint3d evalPoint(double param, int numDeriv, AcGeVector3dArray& derivArray) const override;
  bool isClosed(const AcGeTol& tol = AcGeContext::gTol) const override;
  bool isPeriodic(double& period) const override;
  bool isPlanar(AcGePlane& plane, const AcGeTol& tol = AcGeContext::gTol) const override;
  AcGeCurve3d* trimmedCopy(double fromParam, double toParam) const override;
  AcGeCurve3d& reverseParam() override;

 private:
  AcGePoint3d center_;
  AcGeVector3d major_{1, 0, 0}, minor_{0, 1, 0};
  double majorRadius_ = 1.0, minorRadius_ = 1.0;
  double startAng_ = 0.0, endAng_ = 6.28318530717958647692;
};
