// A NURBS curve in space: degree, knots, control points and weights (all 1
// for a non-rational curve). The parameter runs over the knots' domain,
// from knot[degree] to knot[numControlPoints].
#pragma once

#include "host/gecurv3d.h"

class AcGeLineSeg3d;
class AcGeCircArc3d;
class AcGeEllipArc3d;

class AcGeNurbCurve3d : public AcGeCurve3d {
 public:
  AcGeNurbCurve3d() = default;
  // Knots must number control points + degree + 1 (a curve made of data
  // that does not fit is empty: no control points).
  AcGeNurbCurve3d(int degree, const AcGeDoubleArray& knots, const AcGePoint3dArray& controlPoints,
                  bool isPeriodic = false);
  AcGeNurbCurve3d(int degree, const AcGeDoubleArray& knots, const AcGePoint3dArray& controlPoints,
                  const AcGeDoubleArray& weights, bool isPeriodic = false);
  // The curve of that degree through the fit points (chord-length
  // parameters from 0 to 1), with the end tangents when they are defined.
  AcGeNurbCurve3d(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
                  const AcGeVector3d& endTangent, bool startTangentDefined = true, bool endTangentDefined = true,
                  int degree = 3);
  explicit AcGeNurbCurve3d(const AcGePoint3dArray& fitPoints, int degree = 3);
  // Exact conversions: a segment as a degree 1 curve, arcs and ellipses as
  // rational quadratic curves of at most a quarter turn per span.
  explicit AcGeNurbCurve3d(const AcGeLineSeg3d& linSeg);
  explicit AcGeNurbCurve3d(const AcGeCircArc3d& arc);
  explicit AcGeNurbCurve3d(const AcGeEllipArc3d& ellipse);
  // Any bounded curve as a NURBS curve (composites joined, the degree
  // raised to the highest of their parts); null for an unbounded one. The
  // caller deletes it.
  static AcGeNurbCurve3d* convertFrom(const AcGeCurve3d& curve);

  int degree() const { return degree_; }
  int order() const { return degree_ + 1; }
  int numControlPoints() const { return static_cast<int>(points_.size()); }
  AcGePoint3d controlPointAt(int idx) const { return points_[idx]; }
  AcGeNurbCurve3d& setControlPointAt(int idx, const AcGePoint3d& pnt);
  int numKnots() const { return static_cast<int>(knots_.size()); }
  double knotAt(int idx) const { return knots_[idx]; }
  const AcGeDoubleArray& knots() const { return knots_; }
  int numWeights() const { return rational_ ? numControlPoints() : 0; }
  double weightAt(int idx) const { return rational_ ? weights_[idx] : 1.0; }
  AcGeNurbCurve3d& setWeightAt(int idx, double weight);
  bool isRational(const AcGeTol& tol = AcGeContext::gTol) const;
  void getDefinitionData(int& degree, bool& rational, bool& periodic, AcGeDoubleArray& knots,
                         AcGePoint3dArray& controlPoints, AcGeDoubleArray& weights) const;

  // Inserts a knot once; the curve does not change.
  AcGeNurbCurve3d& insertKnot(double newKnot);
  // Raises the degree by plusDegree; the curve does not change.
  AcGeNurbCurve3d& elevateDegree(int plusDegree);
  // Appends the curve that starts where this one ends (within equalPoint):
  // degrees are matched first; the other's parameters follow on from this
  // end. Nothing changes when the ends do not meet.
  AcGeNurbCurve3d& joinWith(const AcGeNurbCurve3d& curve);
  // Keeps the part between the two parameters, clamped.
  AcGeNurbCurve3d& hardTrimByParams(double newStartParam, double newEndParam);

  AcGe::EntityId type() const override { return AcGe::kNurbCurve3d; }
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kNurbCurve3d || entType == AcGe::kSplineEnt3d || AcGeCurve3d::isKindOf(entType);
  }
  AcGeEntity3d* copy() const override { return new AcGeNurbCurve3d(*this); }
  // The same definition: degree, knots, points and weights.
  bool isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol = AcGeContext::gTol) const override;
  // Exact for affine matrices (the control points move).
  AcGeNurbCurve3d& transformBy(const AcGeMatrix3d& xfm) override;

  void getInterval(double& lower, double& upper) const override;
  using AcGeCurve3d::evalPoint;
  AcGePoint3d evalPoint(double param) const override;
  AcGePoint3d evalPoint(double param, int numDeriv, AcGeVector3dArray& derivArray) const override;
  bool isPeriodic(double& period) const override;
  AcGeCurve3d* trimmedCopy(double fromParam, double toParam) const override;
  AcGeCurve3d& reverseParam() override;
  void getBreakParams(AcGeDoubleArray& params) const override;

 private:
  void setRational();
  int degree_ = 1;
  bool rational_ = false;
  bool periodic_ = false;
  AcGeDoubleArray knots_;
  AcGePoint3dArray points_;
  AcGeDoubleArray weights_;
};
