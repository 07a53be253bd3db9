// The base of the geometry library's entities in the plane.
#pragma once

#include "host/gepnt2d.h"

class AcGeMatrix2d;
class AcGeLine2d;

class AcGeEntity2d {
 public:
  virtual ~AcGeEntity2d() = default;

  virtual AcGe::EntityId type() const = 0;
  virtual bool isKindOf(AcGe::EntityId entType) const { return entType == AcGe::kEntity2d; }
  virtual AcGeEntity2d* copy() const = 0;

  virtual bool isEqualTo(const AcGeEntity2d& ent, const AcGeTol& tol = AcGeContext::gTol) const = 0;
  bool operator==(const AcGeEntity2d& ent) const { return isEqualTo(ent); }
  bool operator!=(const AcGeEntity2d& ent) const { return !isEqualTo(ent); }
  virtual bool isOn(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const = 0;

  virtual AcGeEntity2d& transformBy(const AcGeMatrix2d& xfm) = 0;
  AcGeEntity2d& translateBy(const AcGeVector2d& translateVec);
  AcGeEntity2d& rotateBy(double angle, const AcGePoint2d& wrtPoint = AcGePoint2d::kOrigin);
  AcGeEntity2d& mirror(const AcGeLine2d& line);
  AcGeEntity2d& scaleBy(double scaleFactor, const AcGePoint2d& wrtPoint = AcGePoint2d::kOrigin);

 protected:
  AcGeEntity2d() = default;
  AcGeEntity2d(const AcGeEntity2d&) = default;
  AcGeEntity2d& operator=(const AcGeEntity2d&) = default;
};
