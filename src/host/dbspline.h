// A NURBS curve (SPLINE): degree, knots, control points and, for a rational
// spline, weights; and the fit data it may have been made from (fit points,
// fit tolerance, end tangents). Flags (group 70): 1 closed, 2 periodic,
// 4 rational, 8 planar, 16 linear.
#pragma once

#include <vector>

#include "host/dbents.h"

class AcDbSpline : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSpline);
  AcDbSpline() = default;
  // From the NURBS data: weights (one per control point, or none for a
  // non-rational spline).
  AcDbSpline(int degree, bool rational, bool closed, bool periodic, const AcGePoint3dArray& controlPoints,
             const AcGeDoubleArray& knots, const AcGeDoubleArray& weights, double controlPtTol = 0.0,
             double knotTol = 0.0);
  // From fit data: the curve through the points. The control frame is
  // worked out by the geometry library; until then the spline holds its
  // fit data alone.
  AcDbSpline(const AcGePoint3dArray& fitPoints, int order = 4, double fitTolerance = 0.0);
  AcDbSpline(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent, const AcGeVector3d& endTangent,
             int order = 4, double fitTolerance = 0.0);

  enum Flags { kClosed = 1, kPeriodic = 2, kRational = 4, kPlanar = 8, kLinear = 16 };

  int degree() const { return degree_; }
  bool isRational() const { return flags_ & kRational; }
  bool isClosed() const override { return flags_ & kClosed; }
  bool isPeriodic() const override { return flags_ & kPeriodic; }
  bool isPlanar() const { return flags_ & kPlanar; }
  bool isLinear() const { return flags_ & kLinear; }
  Adesk::Int16 flags() const { return flags_; }
  // The plane's normal of a planar spline.
  AcGeVector3d normal() const { return normal_; }
  bool isNull() const { return controlPoints_.empty() && fitPoints_.empty(); }

  int numControlPoints() const { return static_cast<int>(controlPoints_.size()); }
  Acad::ErrorStatus getControlPointAt(int index, AcGePoint3d& point) const;
  Acad::ErrorStatus setControlPointAt(int index, const AcGePoint3d& point);
  int numKnots() const { return static_cast<int>(knots_.size()); }
  const AcGeDoubleArray& knots() const { return knots_; }
  int numWeights() const { return static_cast<int>(weights_.size()); }
  // 1 for every point of a non-rational spline.
  double weightAt(int index) const;
  // Makes the spline rational when it was not.
  Acad::ErrorStatus setWeightAt(int index, double weight);

  Acad::ErrorStatus getNurbsData(int& degree, bool& rational, bool& closed, bool& periodic,
                                 AcGePoint3dArray& controlPoints, AcGeDoubleArray& knots, AcGeDoubleArray& weights,
                                 double& controlPtTol, double& knotTol) const;
  // Knots must number control points + degree + 1, weights none or one per
  // control point (eInvalidInput otherwise). Replaces the fit data.
  Acad::ErrorStatus setNurbsData(int degree, bool rational, bool closed, bool periodic,
                                 const AcGePoint3dArray& controlPoints, const AcGeDoubleArray& knots,
                                 const AcGeDoubleArray& weights, double controlPtTol = 0.0, double knotTol = 0.0);

  bool hasFitData() const { return !fitPoints_.empty(); }
  int numFitPoints() const { return static_cast<int>(fitPoints_.size()); }
  Acad::ErrorStatus getFitPointAt(int index, AcGePoint3d& point) const;
  Acad::ErrorStatus setFitPointAt(int index, const AcGePoint3d& point);
  Acad::ErrorStatus insertFitPointAt(int index, const AcGePoint3d& point);
  Acad::ErrorStatus removeFitPointAt(int index);
  Acad::ErrorStatus getFitData(AcGePoint3dArray& fitPoints, int& degree, double& fitTolerance, bool& tangentsExist,
                               AcGeVector3d& startTangent, AcGeVector3d& endTangent) const;
  Acad::ErrorStatus setFitData(const AcGePoint3dArray& fitPoints, int degree, double fitTolerance,
                               const AcGeVector3d& startTangent, const AcGeVector3d& endTangent);
  // eOk with the tangents when they are given (not zero vectors).
  Acad::ErrorStatus getFitTangents(AcGeVector3d& startTangent, AcGeVector3d& endTangent) const;
  Acad::ErrorStatus setFitTangents(const AcGeVector3d& startTangent, const AcGeVector3d& endTangent);
  double fitTolerance() const { return fitTolerance_; }
  Acad::ErrorStatus setFitTol(double tol);
  double knotTolerance() const { return knotTolerance_; }
  double controlPointTolerance() const { return controlPointTolerance_; }
  // Drops the fit data, keeping the control frame.
  Acad::ErrorStatus purgeFitData();

  ZEPK_DB_CURVE_GEOMETRY;
  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 private:
  friend struct zepk::db::EntityAccess;
  void updatePlanarity();
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
  int16_t flags_ = 0;
  int16_t degree_ = 3;
  double knotTolerance_ = 1e-10;
  double controlPointTolerance_ = 1e-10;
  double fitTolerance_ = 1e-10;
  AcGeVector3d startTangent_, endTangent_;
  AcGeDoubleArray knots_;
  AcGeDoubleArray weights_;
  AcGePoint3dArray controlPoints_;
  AcGePoint3dArray fitPoints_;
};
