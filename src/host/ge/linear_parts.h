// Internal: the arithmetic of linear entities, shared by lines and segments
// in space and in the plane (a plane entity is worked on with z = 0).
#pragma once

#include "host/gelinent2d.h"
#include "host/gelinent3d.h"

// A linear entity as numbers: the points p + t * v for t in [lo, hi], where
// an unbounded side is an infinity.
struct AcGeLinearParts {
  AcGePoint3d p;
  AcGeVector3d v;
  double lo, hi;

  static AcGeLinearParts of(const AcGeLinearEnt3d& e);
  static AcGeLinearParts of(const AcGeLinearEnt2d& e);

  bool degenerate(const AcGeTol& tol) const { return v.isZeroLength(tol); }
  bool bounded() const;
  AcGePoint3d at(double t) const { return p + v * t; }
  // Parameter of the foot of q on the carrying line (0 when degenerate).
  double footParam(const AcGePoint3d& q) const;
  double clamp(double t) const;
  // t lies in [lo, hi] widened by equalPoint measured along the entity.
  bool inRange(double t, const AcGeTol& tol) const;
  // The entity's point nearest q.
  AcGePoint3d closest(const AcGePoint3d& q) const { return at(clamp(footParam(q))); }
  bool contains(const AcGePoint3d& q, const AcGeTol& tol) const;
  bool parallel(const AcGeLinearParts& o, const AcGeTol& tol) const { return v.isParallelTo(o.v, tol); }
  bool colinear(const AcGeLinearParts& o, const AcGeTol& tol) const;

  // The intersection of two non-parallel entities, as parameters on each.
  bool intersect(const AcGeLinearParts& o, const AcGeTol& tol, double& s, double& t) const;
  // The same, seen along dir.
  bool projIntersect(const AcGeLinearParts& o, const AcGeVector3d& dir, const AcGeTol& tol, double& s,
                     double& t) const;
  // Parameters of a nearest pair of points of the two entities.
  void closestPair(const AcGeLinearParts& o, const AcGeTol& tol, double& s, double& t) const;
  // The common parameter range on this entity of two colinear entities,
  // longer than equalPoint.
  bool overlap(const AcGeLinearParts& o, const AcGeTol& tol, double& s0, double& s1) const;
};
