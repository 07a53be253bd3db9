// Regions (REGION): closed areas in a plane. A region made here holds its
// boundary as loops of line and arc edges, in 2D coordinates of its plane
// (the plane through the origin with the region's normal, by the arbitrary
// axis rule). A region read from a drawing made elsewhere carries the
// modeller's own data (groups 70, 1, 3 ... of "AcDbModelerGeometry"); that
// data is kept as read and written back unchanged.
#pragma once

#include <string>
#include <vector>

#include "host/dbents.h"

namespace AcDb {
enum BoolOperType { kBoolUnite = 0, kBoolIntersect = 1, kBoolSubtract = 2 };
}

class AcDbRegion : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbRegion);
  AcDbRegion() = default;
  ~AcDbRegion() override;

  // A line from start to end, or an arc about center from startAngle to
  // endAngle (radians, counter-clockwise unless ccw is false).
  struct Edge {
    bool isArc = false;
    AcGePoint2d start, end;
    AcGePoint2d center;
    double radius = 0.0;
    double startAngle = 0.0, endAngle = 0.0;
    bool ccw = true;
  };
  typedef std::vector<Edge> Loop;

  AcGeVector3d normal() const { return normal_; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);
  int numLoops() const { return static_cast<int>(loops_.size()); }
  const std::vector<Loop>& loops() const { return loops_; }
  // A loop needs at least one edge (eInvalidInput).
  Acad::ErrorStatus appendLoop(const Loop& loop);
  Acad::ErrorStatus setLoops(const std::vector<Loop>& loops);
  // True when the region has neither loops nor modeller data.
  bool isNull() const;
  // Whether the region carries modeller data from another program.
  bool hasModelerData() const;

  // One region for each closed loop the curves make: closed curves alone,
  // open ones joined end to end. Curves out of one plane, or curves that
  // close no loop, give eInvalidInput; the regions (the caller owns them) take the
  // properties of the loop's first curve. Ellipses and splines are followed
  // by short straight edges.
  static Acad::ErrorStatus createFromCurves(const AcDbVoidPtrArray& curveSegments, AcDbVoidPtrArray& regions);
  // Area and perimeter of the region (holes taken off the area, added to
  // the perimeter). eNotApplicable for a region of modeller data alone.
  Acad::ErrorStatus getArea(double& area) const;
  Acad::ErrorStatus getPerimeter(double& perimeter) const;
  // Mass properties in the coordinate system of origin and the two axes
  // (which must lie in the region's plane): moments about that system's
  // axes, the centroid's principal moments and axes, radii of gyration and
  // the extents of the area there.
  Acad::ErrorStatus getAreaProp(const AcGePoint3d& origin, const AcGeVector3d& xAxis, const AcGeVector3d& yAxis,
                                double& perimeter, double& area, AcGePoint2d& centroid, double momInertia[2],
                                double& prodInertia, double prinMoments[2], AcGeVector2d prinAxes[2],
                                double radiiGyration[2], AcGePoint2d& extentsLow, AcGePoint2d& extentsHigh) const;
  // Unites, intersects or subtracts the other region (in the same plane)
  // into this one; the other is left empty. Arcs stay arcs.
  Acad::ErrorStatus booleanOper(AcDb::BoolOperType operation, AcDbRegion* otherRegion);
  // The region's edges as lines and arcs (the caller owns them).
  Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const override;

  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;
  // The modeller's part ("AcDbModelerGeometry").
  static const zepk::db::ClassSchema& modelerSchema();

 private:
  friend struct zepk::db::EntityAccess;
  // One group of the modeller's data, as read.
  struct ModelerGroup {
    int code = 0;
    bool isText = true;
    std::u16string text;
    int64_t value = 0;
  };
  std::vector<ModelerGroup> modeler_;
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
  std::vector<Loop> loops_;
};
