// Curves in the plane: what line segments, circular arcs and composite
// curves in the plane share. A curve is a map from an interval of
// parameters to points; each kind says what its parameter is, and the
// parameters are those of the same curve in space lying in the XY plane
// (host/gecurv3d.h), through which the measures are worked out.
#pragma once

#include <vector>

#include "host/geent2d.h"
#include "host/gevec2d.h"

class AcGeCurve3d;

typedef std::vector<AcGePoint2d> AcGePoint2dArray;
typedef std::vector<double> AcGeDoubleArray;

class AcGeCurve2d : public AcGeEntity2d {
 public:
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kCurve2d || AcGeEntity2d::isKindOf(entType);
  }

  // The parameter range; an unbounded side is an infinity.
  virtual void getInterval(double& lower, double& upper) const = 0;
  virtual AcGePoint2d evalPoint(double param) const = 0;

  // The parameter of the curve's point nearest pnt (of pnt itself when it
  // lies on the curve).
  virtual double paramOf(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isOn(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  bool isOn(const AcGePoint2d& pnt, double& param, const AcGeTol& tol = AcGeContext::gTol) const;
  // The parameter lies in the curve's interval.
  virtual bool isOn(double param, const AcGeTol& tol = AcGeContext::gTol) const;

  // Bounded, and the end point equals the start point.
  bool isClosed(const AcGeTol& tol = AcGeContext::gTol) const;
  bool hasStartPoint(AcGePoint2d& startPnt) const;
  bool hasEndPoint(AcGePoint2d& endPnt) const;

  // The length between two parameters (in either order); the whole
  // curve's length when it is bounded.
  double length(double fromParam, double toParam, double tol = 1e-12) const;
  double length() const;

  // numSample points at equal steps of the parameter, ends included.
  void getSamplePoints(int numSample, AcGePoint2dArray& pointArray) const;
  // Points from fromParam to toParam, ends included, in order, such that no
  // chord is farther than approxEps from the curve; with their parameters.
  // Joints of a composite curve are always among them.
  void getSamplePoints(double fromParam, double toParam, double approxEps, AcGePoint2dArray& pointArray,
                       AcGeDoubleArray& paramArray) const;

  // Two new curves (the caller deletes them), the part before param and the
  // part after it; a side of no length is null.
  void getSplitCurves(double param, AcGeCurve2d*& piece1, AcGeCurve2d*& piece2) const;
  // A new curve of the same kind: the part between the two parameters.
  // Segments and composites are parameterised afresh; arcs keep their
  // parameters. Null when the range is empty or outside the curve.
  virtual AcGeCurve2d* trimmedCopy(double fromParam, double toParam) const = 0;
  // Reverses the direction of travel; the points stay.
  virtual AcGeCurve2d& reverseParam() = 0;

  // The same curve in space, in the XY plane, with the same parameters;
  // the caller deletes it.
  virtual AcGeCurve3d* to3d() const = 0;

 protected:
  AcGeCurve2d() = default;
  AcGeCurve2d(const AcGeCurve2d&) = default;
  AcGeCurve2d& operator=(const AcGeCurve2d&) = default;
};
