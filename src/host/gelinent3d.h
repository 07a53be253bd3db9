// What lines and line segments in space share. A linear entity is a point
// and a vector: its points are pointOnLine + t * vector, for every t on a
// line and for t in [0, 1] on a segment (whose vector runs from start to end).
//
// Tolerances: a point is on the entity when it is within equalPoint of it;
// two entities are parallel when the sine of the angle between them is
// within equalVector; a parameter bound counts as reached within equalPoint
// of the end point. Degenerate entities (a zero vector) have no direction:
// they are parallel to nothing and meet nothing.
#pragma once

#include "host/gecurv3d.h"

class AcGeLine3d;
class AcGePlanarEnt;
class AcGePlane;

class AcGeLinearEnt3d : public AcGeCurve3d {
 public:
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kLinearEnt3d || AcGeCurve3d::isKindOf(entType);
  }
  using AcGeCurve3d::length;

  // As a curve: the derivative is the vector, the others are zero; the
  // length is |vector| per unit of parameter.
  AcGePoint3d evalPoint(double param, int numDeriv, AcGeVector3dArray& derivArray) const override;
  double length(double fromParam, double toParam, double tol = 1e-12) const override;
  double paramAtLength(double datumParam, double length, bool posParamDir = true,
                       double tol = 1e-12) const override;
  // A segment between two finite parameters, a ray with one infinite side,
  // a line with both.
  AcGeCurve3d* trimmedCopy(double fromParam, double toParam) const override;
  // A segment swaps its ends and a line turns its direction; a ray cannot
  // run the other way and stays as it is.
  AcGeCurve3d& reverseParam() override;
  AcGeBoundBlock3d orthoBoundBlock() const override;

  // The one point where the two meet. Parallel entities (even colinear ones)
  // have none. Lines that pass each other farther apart than equalPoint do
  // not meet. The point given is the one on this entity.
  bool intersectWith(const AcGeLinearEnt3d& line, AcGePoint3d& intPt,
                     const AcGeTol& tol = AcGeContext::gTol) const;
  // Where the entity crosses the plane; none when it is parallel to it.
  bool intersectWith(const AcGePlanarEnt& plane, AcGePoint3d& intPnt,
                     const AcGeTol& tol = AcGeContext::gTol) const;
  // The two entities seen along projDir: where their images meet, as the
  // point on this entity and the point on the other one that lie on one line
  // parallel to projDir. None when the images are parallel, or either entity
  // runs along projDir.
  bool projIntersectWith(const AcGeLinearEnt3d& line, const AcGeVector3d& projDir,
                         AcGePoint3d& pntOnThisLine, AcGePoint3d& pntOnOtherLine,
                         const AcGeTol& tol = AcGeContext::gTol) const;
  // The common part of two colinear entities, as a new entity that the
  // caller deletes: a line when both are lines, else a segment running the
  // way this entity runs. A common part no longer than equalPoint (ends that
  // only touch) is no overlap: false, with overlap set to null.
  bool overlap(const AcGeLinearEnt3d& line, AcGeLinearEnt3d*& overlap,
               const AcGeTol& tol = AcGeContext::gTol) const;

  bool isOn(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  // The same, and the parameter of the point's foot.
  bool isOn(const AcGePoint3d& pnt, double& param, const AcGeTol& tol = AcGeContext::gTol) const;
  // The parameter lies within the entity's range.
  bool isOn(double param, const AcGeTol& tol = AcGeContext::gTol) const override;
  // The entity lies in the plane.
  bool isOn(const AcGePlanarEnt& plane, const AcGeTol& tol = AcGeContext::gTol) const;

  bool isParallelTo(const AcGeLinearEnt3d& line, const AcGeTol& tol = AcGeContext::gTol) const;
  // The direction lies in the plane (its sine with the plane within equalVector).
  bool isParallelTo(const AcGePlanarEnt& plane, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isPerpendicularTo(const AcGeLinearEnt3d& line, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isPerpendicularTo(const AcGePlanarEnt& plane, const AcGeTol& tol = AcGeContext::gTol) const;
  // Parallel, and the other's point lies on this entity's infinite line.
  bool isColinearTo(const AcGeLinearEnt3d& line, const AcGeTol& tol = AcGeContext::gTol) const;

  // The plane through pnt perpendicular to the direction.
  void getPerpPlane(const AcGePoint3d& pnt, AcGePlane& plane) const;
  AcGePoint3d pointOnLine() const { return point_; }
  // The unit direction (zero for a degenerate entity).
  AcGeVector3d direction() const { return vector_.normal(); }
  // The infinite line that carries the entity.
  void getLine(AcGeLine3d& line) const;

  // The entity's point nearest pnt.
  AcGePoint3d closestPointTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  // The point of this entity nearest the other one, and in pntOnOtherCrv the
  // point of the other nearest it. Parallel entities give a pair at the
  // first place along this entity where they are nearest.
  AcGePoint3d closestPointTo(const AcGeLinearEnt3d& line, AcGePoint3d& pntOnOtherCrv,
                             const AcGeTol& tol = AcGeContext::gTol) const;
  double distanceTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  double distanceTo(const AcGeLinearEnt3d& line, const AcGeTol& tol = AcGeContext::gTol) const;

  AcGePoint3d evalPoint(double param) const override { return point_ + vector_ * param; }
  // The parameter of the point's foot on the infinite line (0 for a
  // degenerate entity).
  double paramOf(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  // The parameter range: [-inf, +inf] for a line, [0, 1] for a segment.
  void getInterval(double& lower, double& upper) const override = 0;
  bool isBounded() const;

  AcGeLinearEnt3d& transformBy(const AcGeMatrix3d& xfm) override;

 protected:
  friend struct AcGeLinearParts;
  AcGeLinearEnt3d() = default;
  AcGeLinearEnt3d(const AcGePoint3d& pnt, const AcGeVector3d& vec) : point_(pnt), vector_(vec) {}

  AcGePoint3d point_;
  AcGeVector3d vector_{1.0, 0.0, 0.0};
};
