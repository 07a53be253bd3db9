// The base of the geometry library's entities in space: lines, segments,
// planes, bounding blocks (and curves as they come). Entities are values:
// they copy with their class, compare with a tolerance and move by matrices.
#pragma once

#include "host/gepnt3d.h"

class AcGeMatrix3d;
class AcGePlane;

class AcGeEntity3d {
 public:
  virtual ~AcGeEntity3d() = default;

  virtual AcGe::EntityId type() const = 0;
  // True for the entity's own kind and for every kind it derives from.
  virtual bool isKindOf(AcGe::EntityId entType) const { return entType == AcGe::kEntity3d; }
  // A new entity of the same class and value; the caller deletes it.
  virtual AcGeEntity3d* copy() const = 0;

  // Same kind, and the same set of points within the tolerance.
  virtual bool isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol = AcGeContext::gTol) const = 0;
  bool operator==(const AcGeEntity3d& ent) const { return isEqualTo(ent); }
  bool operator!=(const AcGeEntity3d& ent) const { return !isEqualTo(ent); }
  // The point lies on the entity: within equalPoint of it.
  virtual bool isOn(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const = 0;

  // Moves the entity by an affine matrix.
  virtual AcGeEntity3d& transformBy(const AcGeMatrix3d& xfm) = 0;
  AcGeEntity3d& translateBy(const AcGeVector3d& translateVec);
  AcGeEntity3d& rotateBy(double angle, const AcGeVector3d& vec,
                         const AcGePoint3d& wrtPoint = AcGePoint3d::kOrigin);
  AcGeEntity3d& mirror(const AcGePlane& plane);
  AcGeEntity3d& scaleBy(double scaleFactor, const AcGePoint3d& wrtPoint = AcGePoint3d::kOrigin);

 protected:
  AcGeEntity3d() = default;
  AcGeEntity3d(const AcGeEntity3d&) = default;
  AcGeEntity3d& operator=(const AcGeEntity3d&) = default;
};
