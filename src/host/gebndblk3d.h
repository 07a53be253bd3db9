// A bounding block in space: either a box with faces parallel to the world
// planes, or a parallelepiped, base + a * dir1 + b * dir2 + c * dir3 with a,
// b and c in [0, 1].
#pragma once

#include "host/geent3d.h"

class AcGeBoundBlock3d : public AcGeEntity3d {
 public:
  // The box with both corners at the origin: it holds the origin, so
  // extending it always takes the origin in.
  AcGeBoundBlock3d() = default;
  // The box with these opposite corners, in any order.
  AcGeBoundBlock3d(const AcGePoint3d& point1, const AcGePoint3d& point2);
  // A parallelepiped; with axis-aligned directions it is a box.
  AcGeBoundBlock3d(const AcGePoint3d& base, const AcGeVector3d& dir1, const AcGeVector3d& dir2,
                   const AcGeVector3d& dir3);

  AcGeBoundBlock3d& set(const AcGePoint3d& point1, const AcGePoint3d& point2);
  AcGeBoundBlock3d& set(const AcGePoint3d& base, const AcGeVector3d& dir1, const AcGeVector3d& dir2,
                        const AcGeVector3d& dir3);

  // The smallest and largest coordinates of the block's corners.
  void getMinMaxPoints(AcGePoint3d& point1, AcGePoint3d& point2) const;
  void get(AcGePoint3d& base, AcGeVector3d& side1, AcGeVector3d& side2, AcGeVector3d& side3) const;

  // Grows the block to take the point in. A box grows its corners; a
  // parallelepiped grows along its own directions, unless they are
  // dependent, when it becomes the box of its corners and the point.
  AcGeBoundBlock3d& extend(const AcGePoint3d& point);
  // Moves every face out by distance (in by a negative one, down to a flat block).
  AcGeBoundBlock3d& swell(double distance);

  // The point lies in the block or within equalPoint of its faces.
  bool contains(const AcGePoint3d& point) const;
  // No point of the two blocks lies within equalPoint of the other block.
  bool isDisjoint(const AcGeBoundBlock3d& block) const;

  bool isBox() const { return isBox_; }
  // true: becomes the box of its corners; false: keeps its points and is
  // handled as a parallelepiped from then on.
  AcGeBoundBlock3d& setToBox(bool toBox);

  AcGe::EntityId type() const override { return AcGe::kBoundBlock3d; }
  bool isKindOf(AcGe::EntityId entType) const override {
    return entType == AcGe::kBoundBlock3d || AcGeEntity3d::isKindOf(entType);
  }
  AcGeEntity3d* copy() const override { return new AcGeBoundBlock3d(*this); }
  // Same kind of block with the same base and sides (corners within equalPoint).
  bool isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol = AcGeContext::gTol) const override;
  // A block is solid: on means contained.
  bool isOn(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  // A parallelepiped moves exactly; a box becomes the box of its moved
  // corners, so that it still holds whatever it held.
  AcGeBoundBlock3d& transformBy(const AcGeMatrix3d& xfm) override;

 private:
  void corners(AcGePoint3d out[8]) const;

  AcGePoint3d base_;
  AcGeVector3d dir_[3] = {{0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}};
  bool isBox_ = true;
};
