// Curves in space: what lines, rays, segments, circular and elliptical
// arcs, NURBS curves and composite curves share. A curve is a map from an
// interval of parameters to points; each kind says what its parameter is.
//
// Tolerances: a point is on a curve within equalPoint of it. Measures
// (lengths, sample points) are worked out to a relative precision far
// below equalPoint for curves of ordinary size.
#pragma once

#include <vector>

#include "host/gebndblk3d.h"
#include "host/geent3d.h"

class AcGePlane;

typedef std::vector<AcGePoint3d> AcGePoint3dArray;
typedef std::vector<AcGeVector3d> AcGeVector3dArray;
typedef std::vector<double> AcGeDoubleArray;

class AcGeCurve3d : public AcGeEntity3d {
 public:
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kCurve3d || AcGeEntity3d::isKindOf(entType);
  }

  // The parameter range; an unbounded side is an infinity.
  virtual void getInterval(double& lower, double& upper) const = 0;
  virtual AcGePoint3d evalPoint(double param) const = 0;
  // The point and its derivatives with respect to the parameter, the k-th
  // in derivArray[k - 1] (derivArray gets numDeriv entries).
  virtual AcGePoint3d evalPoint(double param, int numDeriv, AcGeVector3dArray& derivArray) const = 0;

  // The parameter of the curve's point nearest pnt (of pnt itself when it
  // lies on the curve).
  virtual double paramOf(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;
  // The curve's point nearest pnt.
  virtual AcGePoint3d closestPointTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;
  // The same, seen along a direction: the curve's point whose image on the
  // plane through pnt perpendicular to projectDirection is nearest pnt.
  AcGePoint3d projClosestPointTo(const AcGePoint3d& pnt, const AcGeVector3d& projectDirection,
                                 const AcGeTol& tol = AcGeContext::gTol) const;
  virtual double distanceTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;

  bool isOn(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  bool isOn(const AcGePoint3d& pnt, double& param, const AcGeTol& tol = AcGeContext::gTol) const;
  // The parameter lies in the curve's interval.
  virtual bool isOn(double param, const AcGeTol& tol = AcGeContext::gTol) const;

  // Bounded, and the end point equals the start point.
  virtual bool isClosed(const AcGeTol& tol = AcGeContext::gTol) const;
  // Periodic curves (full circles and ellipses, periodic NURBS) repeat
  // after period.
  virtual bool isPeriodic(double& period) const;
  // The curve lies in a plane; a line lies in many, and gets one of them.
  virtual bool isPlanar(AcGePlane& plane, const AcGeTol& tol = AcGeContext::gTol) const;
  bool hasStartPoint(AcGePoint3d& startPnt) const;
  bool hasEndPoint(AcGePoint3d& endPnt) const;

  // The length between two parameters (in either order); the whole
  // curve's length when it is bounded.
  virtual double length(double fromParam, double toParam, double tol = 1e-12) const;
  double length() const;
  // The parameter at that length from datumParam, forwards or backwards.
  virtual double paramAtLength(double datumParam, double length, bool posParamDir = true,
                               double tol = 1e-12) const;

  // numSample points at equal steps of the parameter, ends included.
  void getSamplePoints(int numSample, AcGePoint3dArray& pointArray) const;
  // Points from fromParam to toParam, ends included, in order, such that
  // no chord is farther than approxEps from the curve; with their
  // parameters. Corners of the curve (composite joints) are always among them.
  virtual void getSamplePoints(double fromParam, double toParam, double approxEps, AcGePoint3dArray& pointArray,
                               AcGeDoubleArray& paramArray) const;

  // Two new curves (the caller deletes them), the part before param and the
  // part after it; a side of no length is null.
  void getSplitCurves(double param, AcGeCurve3d*& piece1, AcGeCurve3d*& piece2) const;
  // A new curve of the same kind: the part between the two parameters.
  // Segment and composite pieces are parameterised afresh; the others keep
  // their parameters. Null when the range is empty or outside the curve.
  virtual AcGeCurve3d* trimmedCopy(double fromParam, double toParam) const = 0;
  // Reverses the direction of travel; the points stay.
  virtual AcGeCurve3d& reverseParam() = 0;

  // The axis-aligned box of the curve (of a bounded curve).
  virtual AcGeBoundBlock3d orthoBoundBlock() const;

  // Parameters inside the interval where the curve may not be smooth
  // (knots, joints); the measures work piece by piece between them.
  virtual void getBreakParams(AcGeDoubleArray& params) const;

  AcGeCurve3d& transformBy(const AcGeMatrix3d& xfm) override = 0;

 protected:
  AcGeCurve3d() = default;
  AcGeCurve3d(const AcGeCurve3d&) = default;
  AcGeCurve3d& operator=(const AcGeCurve3d&) = default;
  // The parameter nearest pnt, searched on [lo, hi].
  double nearestParam(const AcGePoint3d& pnt, double lo, double hi) const;
};

namespace zepk::ge {
// The smooth pieces of a curve over [lo, hi]: lo, the break parameters
// inside, hi.
std::vector<double> smoothPieces(const AcGeCurve3d& c, double lo, double hi);
}  // namespace zepk::ge
