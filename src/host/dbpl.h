// The lightweight polyline (LWPOLYLINE): 2D vertices in a plane at an
// elevation, each with a bulge (the tangent of a quarter of the included
// angle of the segment that starts there, positive counter-clockwise) and
// start and end widths.
#pragma once

#include <vector>

#include "host/dbents.h"

class AcGeLineSeg3d;
class AcGeLineSeg2d;
class AcGeCircArc3d;

class AcDbPolyline : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPolyline);
  AcDbPolyline() = default;
  // Room for that many vertices; none is added.
  explicit AcDbPolyline(unsigned int num) { verts_.reserve(num); }

  enum SegType { kLine, kArc, kCoincident, kPoint, kEmpty };

  unsigned int numVerts() const { return static_cast<unsigned int>(verts_.size()); }
  // Inserts before the vertex at index; an index past the end appends. A
  // width below 0 means the polyline's constant width.
  Acad::ErrorStatus addVertexAt(unsigned int index, const AcGePoint2d& pt, double bulge = 0.0,
                                double startWidth = -1.0, double endWidth = -1.0, Adesk::Int32 vertexIdentifier = 0);
  // Indexed operations give eInvalidIndex for an index at or past the end
  // and change nothing.
  Acad::ErrorStatus removeVertexAt(unsigned int index);
  Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint2d& pt) const;
  // In world coordinates: the vertex at the elevation, in the plane of the
  // normal.
  Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint3d& pt) const;
  Acad::ErrorStatus setPointAt(unsigned int index, const AcGePoint2d& pt);
  Acad::ErrorStatus getBulgeAt(unsigned int index, double& bulge) const;
  Acad::ErrorStatus setBulgeAt(unsigned int index, double bulge);
  Acad::ErrorStatus getWidthsAt(unsigned int index, double& startWidth, double& endWidth) const;
  Acad::ErrorStatus setWidthsAt(unsigned int index, double startWidth, double endWidth);
  Acad::ErrorStatus getStartWidthAt(unsigned int index, double& w) const;
  Acad::ErrorStatus getEndWidthAt(unsigned int index, double& w) const;
  Acad::ErrorStatus getVertexIdentifierAt(unsigned int index, Adesk::Int32& id) const;
  Acad::ErrorStatus setVertexIdentifierAt(unsigned int index, Adesk::Int32 id);
  // The kind of the segment that starts at the vertex: empty past the
  // end, a point for a single vertex, coincident when it ends where it
  // starts, an arc for a bulge, a line otherwise.
  SegType segType(unsigned int index) const;

  bool isClosed() const override { return flags_ & 1; }
  void setClosed(bool closed);
  bool hasPlinegen() const { return flags_ & 128; }
  void setPlinegen(bool plinegen);
  bool isOnlyLines() const;
  bool hasBulges() const { return !isOnlyLines(); }
  bool hasWidth() const;
  // eOk with the width when every vertex has the same widths (the constant
  // width); eNotApplicable otherwise.
  Acad::ErrorStatus getConstantWidth(double& width) const;
  double constantWidth() const { return constantWidth_; }
  // Sets the width of every vertex.
  Acad::ErrorStatus setConstantWidth(double width);
  double elevation() const { return elevation_; }
  void setElevation(double elev);
  double thickness() const { return thickness_; }
  Acad::ErrorStatus setThickness(double t);
  AcGeVector3d normal() const { return normal_; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);
  // Empties the polyline (reuse false) or keeps its first numVerts vertices.
  void reset(bool reuse, unsigned int numVerts);
  void minimizeMemory() { verts_.shrink_to_fit(); }
  void maximizeMemory() {}

  // The segment that starts at the vertex, in world coordinates; on the
  // plane of the polyline in its own coordinates for the 2D forms.
  // eInvalidIndex past the last segment, eNotApplicable when the segment is
  // not of that kind.
  Acad::ErrorStatus getLineSegAt(unsigned int index, AcGeLineSeg3d& ln) const;
  Acad::ErrorStatus getLineSegAt(unsigned int index, AcGeLineSeg2d& ln) const;
  Acad::ErrorStatus getArcSegAt(unsigned int index, AcGeCircArc3d& arc) const;
  // The point (in the polyline's own 2D coordinates) lies on the segment
  // that starts at the vertex, and its parameter on the whole polyline.
  bool onSegAt(unsigned int index, const AcGePoint2d& pt2d, double& param) const;

  // Conversions with the old-style 2D polyline. convertFrom takes the
  // vertices, bulges, widths, closure and plane of a simple 2D polyline
  // (pPline); convertTo makes a new 2D polyline of this one (the caller
  // owns it). Fitted polylines give eNotApplicable. With transferId the new
  // polyline would take the old one's place under its id; an object not in
  // a database has no id to hand over and converts as without it, and a
  // database-resident one gives eNotApplicable (this database does not
  // hand ids over).
  Acad::ErrorStatus convertFrom(AcDbEntity*& pPline, bool transferId = true);
  Acad::ErrorStatus convertTo(AcDb2dPolyline*& pPline, bool transferId = true) const;

  ZEPK_DB_CURVE_GEOMETRY;
  Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const override;
  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 protected:
  void getExtendedGeCurves(std::vector<AcGeCurve3d*>& curves) const override;

 private:
  struct Vertex {
    AcGePoint2d point;
    double bulge = 0.0;
    double startWidth = -1.0, endWidth = -1.0;  // below 0: the constant width
    Adesk::Int32 id = 0;
  };
  friend struct zepk::db::EntityAccess;
  int16_t flags_ = 0;
  double constantWidth_ = 0.0;
  double elevation_ = 0.0;
  double thickness_ = 0.0;
  std::vector<Vertex> verts_;
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
};
