// An ellipse or elliptical arc: centre, major axis (a vector from the
// centre, its length the major radius), the ratio of the minor to the major
// radius, and the start and end parameters (0 and 2 pi for a whole
// ellipse). The point at parameter t is centre + cos t * major + sin t *
// minor, the minor axis being normal x major scaled by the ratio.
#pragma once

#include "host/dbents.h"

class AcDbEllipse : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDbEllipse);
  AcDbEllipse() = default;
  AcDbEllipse(const AcGePoint3d& center, const AcGeVector3d& unitNormal, const AcGeVector3d& majorAxis,
              double radiusRatio, double startAngle = 0.0, double endAngle = 6.28318530717958647692);

  AcGePoint3d center() const { return center_; }
  Acad::ErrorStatus setCenter(const AcGePoint3d& c);
  AcGeVector3d normal() const { return normal_; }
  AcGeVector3d majorAxis() const { return majorAxis_; }
  AcGeVector3d minorAxis() const;
  double majorRadius() const { return majorAxis_.length(); }
  double minorRadius() const { return majorAxis_.length() * ratio_; }
  double radiusRatio() const { return ratio_; }
  // A ratio outside (0, 1] is refused (eInvalidInput).
  Acad::ErrorStatus setRadiusRatio(double ratio);
  // Sets everything at once; angles are measured from the major axis and
  // stored as parameters. A major axis not perpendicular to the normal, or
  // a bad ratio, is refused (eInvalidInput).
  Acad::ErrorStatus set(const AcGePoint3d& center, const AcGeVector3d& unitNormal, const AcGeVector3d& majorAxis,
                        double radiusRatio, double startAngle = 0.0, double endAngle = 6.28318530717958647692);
  double startParam() const { return startParam_; }
  Acad::ErrorStatus setStartParam(double p);
  double endParam() const { return endParam_; }
  Acad::ErrorStatus setEndParam(double p);
  double startAngle() const { return angleAtParam(startParam_); }
  Acad::ErrorStatus setStartAngle(double a) { return setStartParam(paramAtAngle(a)); }
  double endAngle() const { return angleAtParam(endParam_); }
  Acad::ErrorStatus setEndAngle(double a) { return setEndParam(paramAtAngle(a)); }
  // The angle from the major axis of the point at a parameter, and back;
  // both in [0, 2 pi) except that 2 pi stays 2 pi.
  double paramAtAngle(double angle) const;
  double angleAtParam(double param) const;
  bool isClosed() const override;

  ZEPK_DB_CURVE_GEOMETRY;
  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 protected:
  void getExtendedGeCurves(std::vector<AcGeCurve3d*>& curves) const override;


 private:
  AcGePoint3d center_;
  AcGeVector3d majorAxis_ = AcGeVector3d(1, 0, 0);
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
  double ratio_ = 1.0;
  double startParam_ = 0.0;
  double endParam_ = 6.28318530717958647692;
};
