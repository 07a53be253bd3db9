// An unbounded plane.
#pragma once

#include "host/geplanar.h"

class AcGeLine3d;

class AcGePlane : public AcGePlanarEnt {
 public:
  // The XY plane.
  AcGePlane() = default;
  // Through origin with that normal; the u axis by the arbitrary-axis rule.
  AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& normal);
  // Through three points, with origin org: u towards pntU, normal
  // (pntU - org) x (pntV - org), so the order of the points decides which
  // side the normal faces.
  AcGePlane(const AcGePoint3d& pntU, const AcGePoint3d& org, const AcGePoint3d& pntV);
  // Through org, spanned by the two directions.
  AcGePlane(const AcGePoint3d& org, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis);
  // The points with a x + b y + c z + d = 0. The origin is the plane's point
  // nearest the world origin; the u axis by the arbitrary-axis rule.
  AcGePlane(double a, double b, double c, double d);

  static const AcGePlane kXYPlane;
  static const AcGePlane kYZPlane;
  static const AcGePlane kZXPlane;

  AcGePlane& set(const AcGePoint3d& pnt, const AcGeVector3d& normal);
  AcGePlane& set(const AcGePoint3d& pntU, const AcGePoint3d& org, const AcGePoint3d& pntV);
  AcGePlane& set(double a, double b, double c, double d);
  AcGePlane& set(const AcGePoint3d& org, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis);

  // Distance from the plane, positive on the side the normal faces.
  double signedDistanceTo(const AcGePoint3d& pnt) const;
  double distanceTo(const AcGePoint3d& pnt) const;

  using AcGePlanarEnt::intersectWith;
  // The line where two planes meet, through the point of it nearest this
  // plane's origin, along this normal x the other's. Parallel planes
  // (coincident ones too) have none.
  bool intersectWith(const AcGePlane& otherPln, AcGeLine3d& resultLine,
                     const AcGeTol& tol = AcGeContext::gTol) const;

  AcGe::EntityId type() const override { return AcGe::kPlane; }
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kPlane || AcGePlanarEnt::isKindOf(entType);
  }
  AcGeEntity3d* copy() const override { return new AcGePlane(*this); }
  // Another plane with the same points, whichever way its normal faces.
  bool isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol = AcGeContext::gTol) const override;
  AcGePlane& transformBy(const AcGeMatrix3d& xfm) override {
    AcGePlanarEnt::transformBy(xfm);
    return *this;
  }
};
