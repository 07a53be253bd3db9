// What planes share. A planar entity keeps an origin and an orthonormal
// frame: unit axes u and v in the plane and the unit normal u x v. Its
// points are origin + a * u + b * v, with (a, b) its plane coordinates.
//
// Tolerances: a point is on the plane within equalPoint of it; directions
// are parallel, perpendicular or coplanar by the sine or cosine of their
// angle within equalVector. A degenerate plane (three points on a line, a
// zero normal) has a zero normal and meets nothing.
#pragma once

#include "host/gepnt2d.h"
#include "host/geent3d.h"

class AcGeLinearEnt3d;

class AcGePlanarEnt : public AcGeEntity3d {
 public:
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kPlanarEnt || entType == AcGe::kSurface || AcGeEntity3d::isKindOf(entType);
  }

  // Where the linear entity crosses the plane; none when it is parallel to it
  // (also when it lies in it), or when the crossing is outside a segment.
  bool intersectWith(const AcGeLinearEnt3d& linEnt, AcGePoint3d& intPnt,
                     const AcGeTol& tol = AcGeContext::gTol) const;
  // The foot of the perpendicular from pnt.
  AcGePoint3d closestPointTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isOn(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;

  bool isParallelTo(const AcGeLinearEnt3d& linEnt, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isParallelTo(const AcGePlanarEnt& otherPlnEnt, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isPerpendicularTo(const AcGeLinearEnt3d& linEnt, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isPerpendicularTo(const AcGePlanarEnt& otherPlnEnt, const AcGeTol& tol = AcGeContext::gTol) const;
  // Parallel, and the other's origin lies on this plane.
  bool isCoplanarTo(const AcGePlanarEnt& otherPlnEnt, const AcGeTol& tol = AcGeContext::gTol) const;

  // The points origin + u, origin and origin + v.
  void get(AcGePoint3d& pntU, AcGePoint3d& org, AcGePoint3d& pntV) const;
  AcGePoint3d pointOnPlane() const { return origin_; }
  AcGeVector3d normal() const { return normal_; }
  // a x + b y + c z + d = 0 for the plane's points, with (a, b, c) the unit normal.
  void getCoefficients(double& a, double& b, double& c, double& d) const;
  // The origin and the unit axes u and v.
  void getCoordSystem(AcGePoint3d& origin, AcGeVector3d& axis1, AcGeVector3d& axis2) const;

  AcGePoint3d evalPoint(const AcGePoint2d& param) const;
  // The plane coordinates of the point's foot.
  AcGePoint2d paramOf(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;

  // Moves origin and axes. The u axis follows the matrix, the normal is
  // carried as a plane's normal is (by the inverse transpose, so a mirror in
  // a plane parallel to this one turns it over), and v = normal x u keeps
  // the frame orthonormal and right-handed after any matrix.
  AcGePlanarEnt& transformBy(const AcGeMatrix3d& xfm) override;

 protected:
  AcGePlanarEnt() = default;
  // Sets the frame from an origin and two directions in the plane: u is the
  // unit of uDir, the normal the unit of uDir x vDir, v = normal x u.
  // Parallel or zero directions leave a degenerate plane.
  void setFrame(const AcGePoint3d& org, const AcGeVector3d& uDir, const AcGeVector3d& vDir);
  // Sets the frame from an origin and a normal, the u axis by the
  // arbitrary-axis rule (normal.perpVector()).
  void setFrameFromNormal(const AcGePoint3d& org, const AcGeVector3d& normal);

  AcGePoint3d origin_;
  AcGeVector3d uAxis_{1.0, 0.0, 0.0};
  AcGeVector3d vAxis_{0.0, 1.0, 0.0};
  AcGeVector3d normal_{0.0, 0.0, 1.0};
};
