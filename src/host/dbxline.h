// A construction line: infinite both ways through a base point.
#pragma once

#include "host/dbents.h"

class AcDbXline : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDbXline);
  AcDbXline() = default;

  AcGePoint3d basePoint() const { return basePoint_; }
  Acad::ErrorStatus setBasePoint(const AcGePoint3d& p);
  AcGeVector3d unitDir() const { return unitDir_; }
  // A zero vector is refused (eInvalidInput).
  Acad::ErrorStatus setUnitDir(const AcGeVector3d& v);
  AcGePoint3d secondPoint() const { return basePoint_ + unitDir_; }
  Acad::ErrorStatus setSecondPoint(const AcGePoint3d& p) { return setUnitDir(p - basePoint_); }

  ZEPK_DB_CURVE_GEOMETRY;
  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 private:
  AcGePoint3d basePoint_;
  AcGeVector3d unitDir_ = AcGeVector3d(1, 0, 0);
};
