// Entities: the objects a drawing shows, with the properties they all share
// (layer, linetype, colour, lineweight, visibility, transparency), and the
// plain entity classes: lines, circles, arcs, points, faces, solids, traces,
// texts and attributes, block references, 2D and 3D polylines with their
// vertices, polyface and polygon meshes.
//
// Each class declares its persistent fields once, in its schema; DXF and
// DWG filing, entget/entmod and undo walk it. A class writes its parent's
// part first, then its own, each under its subclass marker as the DXF
// reference lays them out. Groups of a part that a class does not model are
// kept with the entity and written back in their place, so that reading and
// writing a drawing loses nothing.
//
// Names and texts come back as strings the caller owns. Every setter calls
// assertWriteEnabled(), so that undo records the state before a change.
// Angles are in radians.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/dbcolor.h"
#include "host/dbmain.h"
#include "host/gepnt2d.h"
#include "host/gepnt3d.h"
#include "host/gescl3d.h"
#include "host/gevec2d.h"
#include "host/gevec3d.h"

namespace zepk::db {
class ClassSchema;
struct EntityExtras;
struct OwnedSequence;
struct EntityAccess;
}  // namespace zepk::db

typedef std::vector<AcGePoint3d> AcGePoint3dArray;
typedef std::vector<AcGePoint2d> AcGePoint2dArray;
typedef std::vector<AcGeVector3d> AcGeVector3dArray;
typedef std::vector<double> AcGeDoubleArray;
typedef std::vector<void*> AcDbVoidPtrArray;
class AcGeMatrix3d;
class AcGiWorldDraw;

namespace AcDb {

// Lineweights in hundredths of a millimetre, as DXF group 370 holds them.
enum LineWeight {
  kLnWt000 = 0,
  kLnWt005 = 5,
  kLnWt009 = 9,
  kLnWt013 = 13,
  kLnWt015 = 15,
  kLnWt018 = 18,
  kLnWt020 = 20,
  kLnWt025 = 25,
  kLnWt030 = 30,
  kLnWt035 = 35,
  kLnWt040 = 40,
  kLnWt050 = 50,
  kLnWt053 = 53,
  kLnWt060 = 60,
  kLnWt070 = 70,
  kLnWt080 = 80,
  kLnWt090 = 90,
  kLnWt100 = 100,
  kLnWt106 = 106,
  kLnWt120 = 120,
  kLnWt140 = 140,
  kLnWt158 = 158,
  kLnWt200 = 200,
  kLnWt211 = 211,
  kLnWtByLayer = -1,
  kLnWtByBlock = -2,
  kLnWtByLwDefault = -3,
};

enum Visibility { kVisible = 0, kInvisible = 1 };

enum Vertex2dType { k2dVertex = 0, k2dSplineCtlVertex = 1, k2dSplineFitVertex = 2, k2dCurveFitVertex = 3 };
enum Vertex3dType { k3dSimpleVertex = 0, k3dControlVertex = 1, k3dFitVertex = 2 };
enum Poly2dType { k2dSimplePoly = 0, k2dFitCurvePoly = 1, k2dQuadSplinePoly = 2, k2dCubicSplinePoly = 3 };
enum Poly3dType { k3dSimplePoly = 0, k3dQuadSplinePoly = 1, k3dCubicSplinePoly = 2 };
enum PolyMeshType { kSimpleMesh = 0, kQuadSurfaceMesh = 5, kCubicSurfaceMesh = 6, kBezierSurfaceMesh = 8 };

enum TextHorzMode { kTextLeft = 0, kTextCenter = 1, kTextRight = 2, kTextAlign = 3, kTextMid = 4, kTextFit = 5 };
enum TextVertMode { kTextBase = 0, kTextBottom = 1, kTextVertMid = 2, kTextTop = 3 };

}  // namespace AcDb

// The transformation an entity class takes (host/db/transform.cpp).
#define ZEPK_DB_TRANSFORM Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override

// The filing members every entity class declares: the four filers and the
// class's schema (its own part).
#define ZEPK_DB_ENTITY_FILERS                                           \
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;         \
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;  \
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;         \
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;  \
  static const zepk::db::ClassSchema& schema()

class AcDbExtents;

class AcDbEntity : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbEntity);
  ~AcDbEntity() override;

  // The block table record that owns the entity.
  AcDbObjectId blockId() const { return ownerId(); }

  // Layer. In a database with layers the entity refers to a layer record;
  // outside one (or in a database without layer records yet) it keeps the
  // name, and takes the record of that name when it comes to a database
  // that has it. A new entity is on "0".
  std::u16string layer() const;
  AcDbObjectId layerId() const { return layerId_; }
  // A name that the entity's database has no layer of is refused with
  // eKeyNotFound.
  Acad::ErrorStatus setLayer(const ACHAR* newVal, bool doSubents = true, bool allowHiddenLayer = false);
  Acad::ErrorStatus setLayer(AcDbObjectId newVal, bool doSubents = true, bool allowHiddenLayer = false);

  // Linetype, by the same rules; "ByLayer" unless set.
  std::u16string linetype() const;
  AcDbObjectId linetypeId() const { return linetypeId_; }
  Acad::ErrorStatus setLinetype(const ACHAR* newVal, bool doSubents = true);
  Acad::ErrorStatus setLinetype(AcDbObjectId newVal, bool doSubents = true);
  double linetypeScale() const { return linetypeScale_; }
  // A scale of 0 or less is refused (eInvalidInput).
  Acad::ErrorStatus setLinetypeScale(double newVal, bool doSubents = true);

  AcCmColor color() const { return color_; }
  Acad::ErrorStatus setColor(const AcCmColor& color, bool doSubents = true);
  AcCmEntityColor entityColor() const { return color_; }
  Adesk::UInt16 colorIndex() const { return color_.colorIndex(); }
  Acad::ErrorStatus setColorIndex(Adesk::UInt16 color, bool doSubents = true);

  AcDb::LineWeight lineWeight() const { return static_cast<AcDb::LineWeight>(lineWeight_); }
  // A value that is not one of AcDb::LineWeight is refused (eInvalidInput).
  Acad::ErrorStatus setLineWeight(AcDb::LineWeight newVal, bool doSubents = true);

  AcDb::Visibility visibility() const { return visibility_ ? AcDb::kInvisible : AcDb::kVisible; }
  Acad::ErrorStatus setVisibility(AcDb::Visibility newVal, bool doSubents = true);

  AcCmTransparency transparency() const;
  Acad::ErrorStatus setTransparency(const AcCmTransparency& trans, bool doSubents = true);

  // Layer, linetype, linetype scale, colour, lineweight, visibility and
  // transparency of the other entity.
  Acad::ErrorStatus setPropertiesFrom(const AcDbEntity* pEntity, bool doSubents = true);
  // The properties a new entity takes from its database (this entity's, or
  // the one given): layer "0", linetype ByLayer, colour ByLayer, lineweight
  // ByLayer, scale 1, visible.
  void setDatabaseDefaults(bool doSubents = true);
  void setDatabaseDefaults(AcDbDatabase* pDb, bool doSubents = true);
  virtual void subSetDatabaseDefaults(AcDbDatabase* pDb) {}

  // Moves, turns, scales or mirrors the entity (and what it owns: vertices,
  // attributes) by the matrix, which must be affine and not singular. A
  // kind that cannot take the matrix (a circle, arc or text scaled
  // differently along its axes) gives eCannotScaleNonUniformly and stays as
  // it was; a kind that has no geometry to move gives eNotApplicable.
  virtual Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform);
  // A new entity (in no database, the caller owns it) that is this one
  // transformed. Where transformBy refuses a non-uniform scale a curve
  // changes kind: a circle or an arc becomes an ellipse.
  virtual Acad::ErrorStatus getTransformedCopy(const AcGeMatrix3d& xform, AcDbEntity*& pEnt) const;
  // The simpler entities this one is made of (the caller owns them);
  // eNotApplicable for an entity that is already simple.
  virtual Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const;

  // The points a user drags to edit the entity (grips) and those a stretch
  // moves. The host's kinds: a line's ends and middle, an arc's ends,
  // middle and centre, a circle's or ellipse's centre and quadrants, the
  // vertices of polylines, a spline's fit points (else its control points),
  // the insertion points of points, texts and block references. Stretch
  // points are the same except a line's and an arc's ends only and a
  // circle's centre. eNotApplicable (and no points) for other kinds.
  // Describes the entity's picture through the graphics interface (see
  // host/acgi.h). True when it has drawn itself; the host's own classes
  // answer false and the picture renderer draws them by their kind.
  virtual Adesk::Boolean worldDraw(AcGiWorldDraw* mode) { return false; }
  // Draws the entity now, over everything else, until the next redraw of
  // the drawing (in this host: in pictures of the drawing). eNotInDatabase
  // for an entity that is not in one.
  Acad::ErrorStatus draw();

  virtual Acad::ErrorStatus getGripPoints(std::vector<AcGePoint3d>& gripPoints) const;
  virtual Acad::ErrorStatus getStretchPoints(std::vector<AcGePoint3d>& stretchPoints) const;

  // The box of what the entity shows, in world coordinates: curves exactly
  // (curves override it), block references by what their definitions show
  // (attributes included), texts by their measured lines, hatches by their
  // loops, points, faces and solids by their points. eNotApplicable for
  // kinds with nothing to measure and for an empty one.
  virtual Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const;

  // An entity on a locked layer refuses to be opened for write.
  Acad::ErrorStatus checkWriteOpen() const override;
  Acad::ErrorStatus subClose() override;
  Acad::ErrorStatus subErase(bool erasing) override;

  ZEPK_DB_ENTITY_FILERS;

 protected:
  AcDbEntity();
  // The vertices or attributes an entity owns, closed by a SEQEND; null for
  // entities that own none.
  virtual zepk::db::OwnedSequence* ownedSequence() const { return nullptr; }

 private:
  friend struct zepk::db::EntityAccess;
  // Applies f to the entity's sub-entities when doSubents is set.
  template <class F>
  void forSubents(bool doSubents, F f);

  AcDbObjectId layerId_;
  std::u16string layerName_ = u"0";
  AcDbObjectId linetypeId_;
  std::u16string linetypeName_ = u"ByLayer";
  AcCmColor color_;
  // With a true colour, the index that files carry beside it in 62: the
  // nearest one for a colour set here, the one a file gave (-1 for none).
  int16_t fileColorIndex_ = -1;
  double linetypeScale_ = 1.0;
  int16_t lineWeight_ = AcDb::kLnWtByLayer;
  int16_t visibility_ = 0;
  int32_t transparency_ = 0;  // as group 440 holds it; 0 is ByLayer
  int16_t paperSpace_ = 0;
  std::unique_ptr<zepk::db::EntityExtras> extras_;
};

// Walks the sub-entities of a polyline (vertices) or a block reference
// (attributes). For an owner in a database, objectId() names each one (open
// it to use it) and entity() is null; for an owner not in a database yet,
// entity() gives the sub-entity itself and objectId() is null.
class AcDbObjectIterator : public AcRxObject {
 public:
  bool done() const { return pos_ < 0 || pos_ >= static_cast<long>(items_.size()); }
  void start(bool atEnd = false);
  // Moves on; erased sub-entities are passed over unless skipDeleted is false.
  void step(bool backwards = false, bool skipDeleted = true);
  bool setPosition(AcDbObjectId id);
  bool setPosition(AcDbEntity* pEnt);
  AcDbEntity* entity() const;
  AcDbObjectId objectId() const;

  struct Item {
    AcDbObjectId id;
    AcDbEntity* entity = nullptr;
  };
  explicit AcDbObjectIterator(std::vector<Item> items) : items_(std::move(items)) { start(); }

 private:
  void skipErased(bool backwards);
  std::vector<Item> items_;
  long pos_ = 0;
};

namespace AcDb {
// How far two curves are taken when they are intersected: as they are, or
// extended (lines to infinite lines, arcs to their circles, the end
// segments of a polyline along their own lines or circles).
enum Intersect { kOnBothOperands = 0, kExtendThis = 1, kExtendArg = 2, kExtendBoth = 3 };
enum Planarity { kNonPlanar = 0, kPlanar = 1, kLinear = 2 };
// How acdbTextFind compares: letters in any case unless kTextFindMatchCase;
// anywhere in the text unless kTextFindWholeWord (not touching a letter or
// digit); with kTextFindWildcards the whole text must match the pattern
// (as wcmatch does) and a replacement replaces the whole text.
enum TextFindFlags { kTextFindMatchCase = 0x01, kTextFindWholeWord = 0x02, kTextFindWildcards = 0x04 };
}  // namespace AcDb

typedef std::vector<void*> AcDbVoidPtrArray;
class AcGeCurve3d;
class AcGePlane;
class AcDbSpline;

// Finds the texts of the drawing that hold findString: single and
// multiline texts (their stored contents) in model space and the layouts,
// and the attributes of block references there; or only the entities of
// selSet (and their attributes) when it is not empty. With a replacement,
// each match is replaced; a text that cannot be written (a locked layer)
// is left out of the result. The ids found go to resultSet in drawing
// order. eInvalidInput for an empty findString.
Acad::ErrorStatus acdbTextFind(AcDbDatabase* db, AcDbObjectIdArray& resultSet, const ACHAR* findString,
                               const ACHAR* replaceString = nullptr, Adesk::UInt8 searchOptions = 0,
                               const AcDbObjectIdArray& selSet = AcDbObjectIdArray());

// The box of an entity, lower and upper corners.
class AcDbExtents {
 public:
  AcDbExtents() = default;
  AcDbExtents(const AcGePoint3d& min, const AcGePoint3d& max) : min_(min), max_(max), valid_(true) {}
  AcGePoint3d minPoint() const { return min_; }
  AcGePoint3d maxPoint() const { return max_; }
  // Grows the box to take the point in (the first point sets it).
  void addPoint(const AcGePoint3d& pt);
  void addExt(const AcDbExtents& ext);

 private:
  AcGePoint3d min_, max_;
  bool valid_ = false;
};

// A curve. Each kind has its own parameter: a line the distance from its
// start; an arc the angle (its end parameter above its start even across
// 0); a circle 0 to 2 pi; an ellipse the eccentric angle; a spline its
// knots; a polyline the vertex index plus the fraction of the segment
// (linear in length on a line, in angle on an arc), 0 to n - 1 when open
// and 0 to n when closed; a ray and an xline the distance from the base
// point. The operations give eInvalidInput for a parameter, distance or
// point that is not on the curve, eDegenerateGeometry for a curve without
// extent, and eNotApplicable where the kind has no answer.
namespace zepk::db {
struct CurveAccess;
}

class AcDbCurve : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbCurve);
  virtual bool isClosed() const { return false; }
  virtual bool isPeriodic() const { return false; }

  // The curve in the geometry library, with the same parameter (a line's
  // segment runs from 0 to 1: its parameter is the fraction of the
  // length). The caller deletes it.
  virtual Acad::ErrorStatus getAcGeCurve(AcGeCurve3d*& pGeCurve) const;

  virtual bool isPlanar() const;
  // The curve's plane; a straight curve gives a plane through it with
  // planarity kLinear; a curve in no plane gives kNonPlanar and
  // eNotApplicable.
  virtual Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const;

  virtual Acad::ErrorStatus getStartParam(double& param) const;
  virtual Acad::ErrorStatus getEndParam(double& param) const;
  virtual Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const;
  virtual Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const;
  virtual Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const;
  virtual Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& param) const;
  virtual Acad::ErrorStatus getDistAtParam(double param, double& dist) const;
  virtual Acad::ErrorStatus getParamAtDist(double dist, double& param) const;
  virtual Acad::ErrorStatus getDistAtPoint(const AcGePoint3d& point, double& dist) const;
  virtual Acad::ErrorStatus getPointAtDist(double dist, AcGePoint3d& point) const;
  // Derivatives with respect to the curve's parameter.
  virtual Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d& firstDeriv) const;
  virtual Acad::ErrorStatus getFirstDeriv(const AcGePoint3d& point, AcGeVector3d& firstDeriv) const;
  virtual Acad::ErrorStatus getSecondDeriv(double param, AcGeVector3d& secDeriv) const;
  virtual Acad::ErrorStatus getSecondDeriv(const AcGePoint3d& point, AcGeVector3d& secDeriv) const;

  // The curve's point nearest the given one; with extend, of the curve
  // extended as for intersections.
  virtual Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& givenPoint, AcGePoint3d& pointOnCurve,
                                              bool extend = false) const;
  // Nearest as seen along the direction (the curve and the point
  // projected on the plane through the point normal to it); the point
  // given back lies on the curve.
  virtual Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& givenPoint, const AcGeVector3d& direction,
                                              AcGePoint3d& pointOnCurve, bool extend = false) const;

  // The area enclosed, an open curve closed by its chord (always >= 0).
  virtual Acad::ErrorStatus getArea(double& area) const;

  // New curves (the caller deletes them) with this one's properties.
  // Offsets lie to the right of the direction of travel for a positive
  // distance (outside for arcs and circles, which grow); a polyline's
  // pieces are joined and its offset trimmed where it would cross itself.
  virtual Acad::ErrorStatus getOffsetCurves(double offsetDist, AcDbVoidPtrArray& offsetCurves) const;
  // The pieces between the parameters or points, in order; a closed curve
  // split at k places gives k pieces, the last running across the seam.
  virtual Acad::ErrorStatus getSplitCurves(const AcGeDoubleArray& params, AcDbVoidPtrArray& curveSegments) const;
  virtual Acad::ErrorStatus getSplitCurves(const AcGePoint3dArray& points, AcDbVoidPtrArray& curveSegments) const;
  // The curve as a spline (eNotApplicable for an unbounded curve).
  virtual Acad::ErrorStatus getSpline(AcDbSpline*& spline) const;
  // The curve projected on the plane, straight down or along a direction.
  virtual Acad::ErrorStatus getOrthoProjectedCurve(const AcGePlane& plane, AcDbCurve*& projCrv) const;
  virtual Acad::ErrorStatus getProjectedCurve(const AcGePlane& plane, const AcGeVector3d& projDir,
                                              AcDbCurve*& projCrv) const;

  // Points where this curve meets the other entity (a curve), in order
  // along this curve.
  virtual Acad::ErrorStatus intersectWith(const AcDbEntity* pEnt, AcDb::Intersect intType,
                                          AcGePoint3dArray& points) const;
  // The box of the curve; eNotApplicable for an unbounded curve.
  Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
  // The simpler entities the curve is made of (polylines give lines and
  // arcs); eNotApplicable for curves that are already simple.
  virtual Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const;

 protected:
  AcDbCurve() = default;
  friend struct zepk::db::CurveAccess;
  // The geometry's parameter times this is the curve's (a line's length).
  virtual double geParamScale() const { return 1.0; }
  // The curve extended for intersections and nearest points with extend.
  virtual void getExtendedGeCurves(std::vector<AcGeCurve3d*>& curves) const;
};

// The geometry a curve class gives the curve operations.
#define ZEPK_DB_CURVE_GEOMETRY \
  Acad::ErrorStatus getAcGeCurve(AcGeCurve3d*& pGeCurve) const override

class AcDbLine : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDbLine);
  AcDbLine() = default;
  AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) : start_(start), end_(end) {}

  AcGePoint3d startPoint() const { return start_; }
  Acad::ErrorStatus setStartPoint(const AcGePoint3d& p);
  AcGePoint3d endPoint() const { return end_; }
  Acad::ErrorStatus setEndPoint(const AcGePoint3d& p);
  double thickness() const { return thickness_; }
  Acad::ErrorStatus setThickness(double t);
  AcGeVector3d normal() const { return normal_; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);

  ZEPK_DB_CURVE_GEOMETRY;
  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 protected:
  double geParamScale() const override;
  void getExtendedGeCurves(std::vector<AcGeCurve3d*>& curves) const override;

 private:
  AcGePoint3d start_, end_;
  double thickness_ = 0.0;
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
};

class AcDbCircle : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDbCircle);
  AcDbCircle() = default;
  AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius)
      : center_(center), radius_(radius), normal_(normal) {}

  AcGePoint3d center() const { return center_; }
  Acad::ErrorStatus setCenter(const AcGePoint3d& c);
  double radius() const { return radius_; }
  // A radius of 0 or less is refused (eInvalidInput).
  Acad::ErrorStatus setRadius(double r);
  double thickness() const { return thickness_; }
  Acad::ErrorStatus setThickness(double t);
  AcGeVector3d normal() const { return normal_; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);
  bool isClosed() const override { return true; }
  bool isPeriodic() const override { return true; }
  double circumference() const;
  Acad::ErrorStatus setCircumference(double c);
  double diameter() const { return 2 * radius_; }

  ZEPK_DB_CURVE_GEOMETRY;
  ZEPK_DB_TRANSFORM;
  Acad::ErrorStatus getTransformedCopy(const AcGeMatrix3d& xform, AcDbEntity*& pEnt) const override;
  ZEPK_DB_ENTITY_FILERS;

 private:
  double thickness_ = 0.0;
  AcGePoint3d center_;
  double radius_ = 0.0;
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
};

// An arc: a circle's part (centre, radius, normal, thickness) under the
// marker "AcDbCircle", then its angles under "AcDbArc", counter-clockwise
// about the normal.
class AcDbArc : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDbArc);
  AcDbArc() = default;
  AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle)
      : center_(center), radius_(radius), startAngle_(startAngle), endAngle_(endAngle) {}
  AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius, double startAngle, double endAngle)
      : center_(center), radius_(radius), normal_(normal), startAngle_(startAngle), endAngle_(endAngle) {}

  AcGePoint3d center() const { return center_; }
  Acad::ErrorStatus setCenter(const AcGePoint3d& c);
  double radius() const { return radius_; }
  Acad::ErrorStatus setRadius(double r);
  double startAngle() const { return startAngle_; }
  Acad::ErrorStatus setStartAngle(double a);
  double endAngle() const { return endAngle_; }
  Acad::ErrorStatus setEndAngle(double a);
  double thickness() const { return thickness_; }
  Acad::ErrorStatus setThickness(double t);
  AcGeVector3d normal() const { return normal_; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);

  double totalAngle() const;
  double length() const { return radius_ * totalAngle(); }

  ZEPK_DB_CURVE_GEOMETRY;
  ZEPK_DB_TRANSFORM;
  Acad::ErrorStatus getTransformedCopy(const AcGeMatrix3d& xform, AcDbEntity*& pEnt) const override;
  ZEPK_DB_ENTITY_FILERS;
  // The circle's part of an arc.
  static const zepk::db::ClassSchema& circleSchema();

 protected:
  void getExtendedGeCurves(std::vector<AcGeCurve3d*>& curves) const override;

 private:
  double thickness_ = 0.0;
  AcGePoint3d center_;
  double radius_ = 0.0;
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
  double startAngle_ = 0.0, endAngle_ = 0.0;
};

class AcDbPoint : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPoint);
  AcDbPoint() = default;
  explicit AcDbPoint(const AcGePoint3d& position) : position_(position) {}

  AcGePoint3d position() const { return position_; }
  Acad::ErrorStatus setPosition(const AcGePoint3d& p);
  double thickness() const { return thickness_; }
  Acad::ErrorStatus setThickness(double t);
  AcGeVector3d normal() const { return normal_; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);
  // The angle of the X axis of the coordinate system the point was drawn in.
  double ecsRotation() const { return ecsRotation_; }
  Acad::ErrorStatus setEcsRotation(double a);

  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 private:
  AcGePoint3d position_;
  double thickness_ = 0.0;
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
  double ecsRotation_ = 0.0;
};

// A three- or four-sided face in space (3DFACE); a triangle repeats its
// third corner. Edge i runs from corner i to corner i+1.
class AcDbFace : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbFace);
  AcDbFace() = default;
  AcDbFace(const AcGePoint3d& pt0, const AcGePoint3d& pt1, const AcGePoint3d& pt2, const AcGePoint3d& pt3,
           bool e0vis = true, bool e1vis = true, bool e2vis = true, bool e3vis = true);
  AcDbFace(const AcGePoint3d& pt0, const AcGePoint3d& pt1, const AcGePoint3d& pt2, bool e0vis = true,
           bool e1vis = true, bool e2vis = true, bool e3vis = true);

  // Index 0 to 3; others give eInvalidIndex.
  Acad::ErrorStatus getVertexAt(Adesk::UInt16 index, AcGePoint3d& pt) const;
  Acad::ErrorStatus setVertexAt(Adesk::UInt16 index, const AcGePoint3d& pt);
  Acad::ErrorStatus isEdgeVisibleAt(Adesk::UInt16 index, bool& visible) const;
  Acad::ErrorStatus makeEdgeVisibleAt(Adesk::UInt16 index);
  Acad::ErrorStatus makeEdgeInvisibleAt(Adesk::UInt16 index);

  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 private:
  AcGePoint3d p0_, p1_, p2_, p3_;
  int16_t invisibleEdges_ = 0;  // bit i: edge i is invisible
};

// SOLID and TRACE share their layout: four corners (the third repeated for
// a triangle), in the order 0 1 3 2 around the outline.
class AcDbSolid : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSolid);
  AcDbSolid() = default;
  AcDbSolid(const AcGePoint3d& pt0, const AcGePoint3d& pt1, const AcGePoint3d& pt2, const AcGePoint3d& pt3)
      : p0_(pt0), p1_(pt1), p2_(pt2), p3_(pt3) {}
  AcDbSolid(const AcGePoint3d& pt0, const AcGePoint3d& pt1, const AcGePoint3d& pt2)
      : p0_(pt0), p1_(pt1), p2_(pt2), p3_(pt2) {}

  Acad::ErrorStatus getPointAt(Adesk::UInt16 idx, AcGePoint3d& pntRes) const;
  Acad::ErrorStatus setPointAt(Adesk::UInt16 idx, const AcGePoint3d& pnt);
  double thickness() const { return thickness_; }
  Acad::ErrorStatus setThickness(double t);
  AcGeVector3d normal() const { return normal_; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);

  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 private:
  AcGePoint3d p0_, p1_, p2_, p3_;
  double thickness_ = 0.0;
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
};

class AcDbTrace : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbTrace);
  AcDbTrace() = default;
  AcDbTrace(const AcGePoint3d& pt0, const AcGePoint3d& pt1, const AcGePoint3d& pt2, const AcGePoint3d& pt3)
      : p0_(pt0), p1_(pt1), p2_(pt2), p3_(pt3) {}

  Acad::ErrorStatus getPointAt(Adesk::UInt16 idx, AcGePoint3d& pntRes) const;
  Acad::ErrorStatus setPointAt(Adesk::UInt16 idx, const AcGePoint3d& pnt);
  double thickness() const { return thickness_; }
  Acad::ErrorStatus setThickness(double t);
  AcGeVector3d normal() const { return normal_; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);

  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 private:
  AcGePoint3d p0_, p1_, p2_, p3_;
  double thickness_ = 0.0;
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
};

// ---------------------------------------------------------------- text

// Single-line text. The file holds its part under "AcDbText" twice: the
// text itself, then the vertical alignment (73) under a second marker.
// The style is a text style record, kept by name until the database has it.
class AcDbText : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbText);
  AcDbText() = default;
  AcDbText(const AcGePoint3d& position, const ACHAR* text, AcDbObjectId style = AcDbObjectId::kNull,
           double height = 0.0, double rotation = 0.0);

  AcGePoint3d position() const { return position_; }
  Acad::ErrorStatus setPosition(const AcGePoint3d& p);
  // The second alignment point, used unless the text is left and baseline
  // aligned.
  AcGePoint3d alignmentPoint() const { return alignment_; }
  Acad::ErrorStatus setAlignmentPoint(const AcGePoint3d& p);
  bool isDefaultAlignment() const { return horizontal_ == AcDb::kTextLeft && vertical_ == AcDb::kTextBase; }
  AcGeVector3d normal() const { return normal_; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);
  double thickness() const { return thickness_; }
  Acad::ErrorStatus setThickness(double t);
  double oblique() const { return oblique_; }
  Acad::ErrorStatus setOblique(double a);
  double rotation() const { return rotation_; }
  Acad::ErrorStatus setRotation(double a);
  double height() const { return height_; }
  Acad::ErrorStatus setHeight(double h);
  double widthFactor() const { return widthFactor_; }
  Acad::ErrorStatus setWidthFactor(double w);
  bool isMirroredInX() const { return (generation_ & 2) != 0; }
  Acad::ErrorStatus mirroredInX(bool mirror);
  bool isMirroredInY() const { return (generation_ & 4) != 0; }
  Acad::ErrorStatus mirroredInY(bool mirror);
  AcDb::TextHorzMode horizontalMode() const { return static_cast<AcDb::TextHorzMode>(horizontal_); }
  Acad::ErrorStatus setHorizontalMode(AcDb::TextHorzMode mode);
  AcDb::TextVertMode verticalMode() const { return static_cast<AcDb::TextVertMode>(vertical_); }
  Acad::ErrorStatus setVerticalMode(AcDb::TextVertMode mode);

  const ACHAR* textStringConst() const { return text_.c_str(); }
  std::u16string textString() const { return text_; }
  Acad::ErrorStatus setTextString(const ACHAR* text);

  // The text style record; null until the style is found by its name.
  AcDbObjectId textStyle() const { return styleId_; }
  Acad::ErrorStatus setTextStyle(AcDbObjectId style);
  std::u16string textStyleName() const;
  Acad::ErrorStatus setTextStyleName(const ACHAR* name);

  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;
  // The second part, under the second "AcDbText" marker.
  static const zepk::db::ClassSchema& alignmentSchema();

 protected:
  friend struct zepk::db::EntityAccess;
  // The part of the text that attributes and attribute definitions share.
  Acad::ErrorStatus dxfOutTextPart(AcDbDxfFiler* filer) const;
  Acad::ErrorStatus dxfInTextPart(AcDbDxfFiler* filer);
  Acad::ErrorStatus dwgOutTextPart(AcDbDwgFiler* filer) const;
  Acad::ErrorStatus dwgInTextPart(AcDbDwgFiler* filer);

  double thickness_ = 0.0;
  AcGePoint3d position_;
  double height_ = 0.0;
  std::u16string text_;
  double rotation_ = 0.0;
  double widthFactor_ = 1.0;
  double oblique_ = 0.0;
  AcDbObjectId styleId_;
  std::u16string styleName_ = u"Standard";
  int16_t generation_ = 0;
  int16_t horizontal_ = 0;
  AcGePoint3d alignment_;
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
  int16_t vertical_ = 0;
};

// The flags of attributes and attribute definitions (group 70).
class AcDbAttributeFlags {
 public:
  enum { kInvisible = 1, kConstant = 2, kVerifiable = 4, kPreset = 8 };
};

// An attribute of a block reference (ATTRIB): a text with a tag, owned by
// the reference and filed after it, up to the reference's SEQEND. Its
// vertical alignment is group 74 of its own part.
class AcDbAttribute : public AcDbText {
 public:
  ACRX_DECLARE_MEMBERS(AcDbAttribute);
  AcDbAttribute() = default;
  AcDbAttribute(const AcGePoint3d& position, const ACHAR* text, const ACHAR* tag,
                AcDbObjectId style = AcDbObjectId::kNull);

  std::u16string tag() const { return tag_; }
  const ACHAR* tagConst() const { return tag_.c_str(); }
  // A tag is stored in upper case; spaces are refused (eInvalidInput).
  Acad::ErrorStatus setTag(const ACHAR* tag);
  bool isInvisible() const { return flags_ & AcDbAttributeFlags::kInvisible; }
  Acad::ErrorStatus setInvisible(bool invisible);
  bool isConstant() const { return flags_ & AcDbAttributeFlags::kConstant; }
  bool isVerifiable() const { return flags_ & AcDbAttributeFlags::kVerifiable; }
  bool isPreset() const { return flags_ & AcDbAttributeFlags::kPreset; }
  Adesk::UInt16 fieldLength() const { return static_cast<Adesk::UInt16>(fieldLength_); }
  Acad::ErrorStatus setFieldLength(Adesk::UInt16 length);
  bool lockPositionInBlock() const { return lockPosition_ != 0; }
  Acad::ErrorStatus setLockPositionInBlock(bool lock);
  // Takes tag, flags, text and placement from a definition.
  Acad::ErrorStatus setAttributeFromBlock(const class AcDbAttributeDefinition* def);

  ZEPK_DB_ENTITY_FILERS;

 private:
  int16_t version_ = 0;
  std::u16string tag_;
  int16_t flags_ = 0;
  int16_t fieldLength_ = 0;
  int16_t lockPosition_ = 0;
};

// An attribute definition (ATTDEF) in a block: tag, prompt and default text.
class AcDbAttributeDefinition : public AcDbText {
 public:
  ACRX_DECLARE_MEMBERS(AcDbAttributeDefinition);
  AcDbAttributeDefinition() = default;
  AcDbAttributeDefinition(const AcGePoint3d& position, const ACHAR* text, const ACHAR* tag, const ACHAR* prompt,
                          AcDbObjectId style = AcDbObjectId::kNull);

  std::u16string tag() const { return tag_; }
  const ACHAR* tagConst() const { return tag_.c_str(); }
  Acad::ErrorStatus setTag(const ACHAR* tag);
  std::u16string prompt() const { return prompt_; }
  const ACHAR* promptConst() const { return prompt_.c_str(); }
  Acad::ErrorStatus setPrompt(const ACHAR* prompt);
  bool isInvisible() const { return flags_ & AcDbAttributeFlags::kInvisible; }
  Acad::ErrorStatus setInvisible(bool v);
  bool isConstant() const { return flags_ & AcDbAttributeFlags::kConstant; }
  Acad::ErrorStatus setConstant(bool v);
  bool isVerifiable() const { return flags_ & AcDbAttributeFlags::kVerifiable; }
  Acad::ErrorStatus setVerifiable(bool v);
  bool isPreset() const { return flags_ & AcDbAttributeFlags::kPreset; }
  Acad::ErrorStatus setPreset(bool v);
  Adesk::UInt16 fieldLength() const { return static_cast<Adesk::UInt16>(fieldLength_); }
  Acad::ErrorStatus setFieldLength(Adesk::UInt16 length);
  bool lockPositionInBlock() const { return lockPosition_ != 0; }
  Acad::ErrorStatus setLockPositionInBlock(bool lock);

  ZEPK_DB_ENTITY_FILERS;

 private:
  friend class AcDbAttribute;
  Acad::ErrorStatus setFlag(int bit, bool on);
  int16_t version_ = 0;
  std::u16string prompt_;
  std::u16string tag_;
  int16_t flags_ = 0;
  int16_t fieldLength_ = 0;
  int16_t lockPosition_ = 0;
};

// ---------------------------------------------------------------- sequences

// The end of a sequence of sub-entities (SEQEND), owned by the polyline or
// block reference whose vertices or attributes it closes.
class AcDbSequenceEnd : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSequenceEnd);
  AcDbSequenceEnd() = default;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
};

// A block reference (INSERT): the block table record it shows, placed,
// scaled and rotated; its attributes are owned by it and filed after it.
// The block is a record of the database's block table: by its id in
// memory, by its name in a file. A reference read before its block's
// record exists keeps the name and finds the record when asked.
class AcDbBlockReference : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbBlockReference);
  AcDbBlockReference();
  AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId blockTableRec);
  ~AcDbBlockReference() override;

  AcDbObjectId blockTableRecord() const;
  Acad::ErrorStatus setBlockTableRecord(AcDbObjectId id);
  // The name of the block: of the record, or the one read from the file.
  std::u16string blockName() const;
  // Sets the block by name (resolved to the record when the database has it).
  Acad::ErrorStatus setBlockName(const ACHAR* name);
  AcGePoint3d position() const { return position_; }
  Acad::ErrorStatus setPosition(const AcGePoint3d& p);
  AcGeScale3d scaleFactors() const { return AcGeScale3d(scaleX_, scaleY_, scaleZ_); }
  // A factor of 0 is refused (eInvalidInput).
  Acad::ErrorStatus setScaleFactors(const AcGeScale3d& scale);
  double rotation() const { return rotation_; }
  Acad::ErrorStatus setRotation(double a);
  AcGeVector3d normal() const { return normal_; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);
  // Block coordinates to world coordinates, as the reference places the
  // block (its base point goes to the position).
  AcGeMatrix3d blockTransform() const;

  // Attributes. The reference must be open for write when it is in a
  // database (eNotOpenForWrite); the attribute must not be in a database yet
  // (eAlreadyInDb). In a database, the attribute is added and left closed.
  Acad::ErrorStatus appendAttribute(AcDbAttribute* pAttr);
  Acad::ErrorStatus appendAttribute(AcDbObjectId& attId, AcDbAttribute* pAttr);
  // The caller deletes the iterator.
  AcDbObjectIterator* attributeIterator() const;
  Acad::ErrorStatus openSequenceEnd(AcDbSequenceEnd*& pSeqEnd, AcDb::OpenMode mode);

  ZEPK_DB_TRANSFORM;
  // The block's entities placed as the reference shows them, and its
  // attributes as texts.
  Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const override;
  ZEPK_DB_ENTITY_FILERS;

 protected:
  zepk::db::OwnedSequence* ownedSequence() const override;
  AcGeMatrix3d placement(const AcGePoint3d& base) const;
  friend struct zepk::db::EntityAccess;
  AcDbObjectId mutable blockId_;
  std::u16string blockName_;
  AcGePoint3d position_;
  double scaleX_ = 1.0, scaleY_ = 1.0, scaleZ_ = 1.0;
  double rotation_ = 0.0;
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
  // MINSERT's array; 1 by 1 for a plain reference.
  int16_t columns_ = 1, rows_ = 1;
  double columnSpacing_ = 0.0, rowSpacing_ = 0.0;
  mutable std::unique_ptr<zepk::db::OwnedSequence> seq_;
};

// A block reference repeated in rows and columns (MINSERT, filed as INSERT
// under the marker "AcDbMInsertBlock").
class AcDbMInsertBlock : public AcDbBlockReference {
 public:
  ACRX_DECLARE_MEMBERS(AcDbMInsertBlock);
  AcDbMInsertBlock() = default;
  AcDbMInsertBlock(const AcGePoint3d& position, AcDbObjectId blockTableRec, Adesk::UInt16 columns,
                   Adesk::UInt16 rows, double colSpacing, double rowSpacing);

  Adesk::UInt16 columns() const { return static_cast<Adesk::UInt16>(columns_); }
  Acad::ErrorStatus setColumns(Adesk::UInt16 n);
  Adesk::UInt16 rows() const { return static_cast<Adesk::UInt16>(rows_); }
  Acad::ErrorStatus setRows(Adesk::UInt16 n);
  double columnSpacing() const { return columnSpacing_; }
  Acad::ErrorStatus setColumnSpacing(double d);
  double rowSpacing() const { return rowSpacing_; }
  Acad::ErrorStatus setRowSpacing(double d);

  ZEPK_DB_ENTITY_FILERS;
};

// ---------------------------------------------------------------- old-style polylines

// The vertex flags of group 70.
class AcDbVertexFlags {
 public:
  enum {
    kCurveFitExtra = 1,    // made by curve fitting
    kTangentUsed = 2,      // a curve-fit tangent is defined
    kSplineFit = 8,        // made by spline fitting
    kSplineFrame = 16,     // a control point of the spline frame
    k3dPolyline = 32,      // a vertex of a 3D polyline
    kPolygonMesh = 64,     // a vertex of a polygon mesh
    kPolyfaceMesh = 128,   // of a polyface mesh (with 64: a vertex; alone: a face)
  };
};

// A vertex of an old-style polyline (VERTEX). Every kind files an empty
// "AcDbVertex" part before its own.
class AcDbVertex : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbVertex);
  static const zepk::db::ClassSchema& vertexSchema();

 protected:
  AcDbVertex() = default;
};

class AcDb2dVertex : public AcDbVertex {
 public:
  ACRX_DECLARE_MEMBERS(AcDb2dVertex);
  AcDb2dVertex() = default;
  explicit AcDb2dVertex(const AcGePoint3d& position, double bulge = 0.0, double startWidth = 0.0,
                        double endWidth = 0.0, double tangent = 0.0, Adesk::Int32 vertexIdentifier = 0);

  // The kind by the flags: a curve-fit or spline-fit vertex made by fitting,
  // a control point of a spline frame, or an ordinary vertex.
  AcDb::Vertex2dType vertexType() const;
  // Sets the flags of that kind (the others are kept).
  Acad::ErrorStatus setVertexType(AcDb::Vertex2dType type);
  // In the polyline's own coordinate system (OCS).
  AcGePoint3d position() const { return position_; }
  Acad::ErrorStatus setPosition(const AcGePoint3d& p);
  double startWidth() const { return startWidth_; }
  Acad::ErrorStatus setStartWidth(double w);
  double endWidth() const { return endWidth_; }
  Acad::ErrorStatus setEndWidth(double w);
  double bulge() const { return bulge_; }
  Acad::ErrorStatus setBulge(double b);
  bool isTangentUsed() const { return flags_ & AcDbVertexFlags::kTangentUsed; }
  Acad::ErrorStatus useTangent();
  Acad::ErrorStatus ignoreTangent();
  double tangent() const { return tangent_; }
  Acad::ErrorStatus setTangent(double t);
  Adesk::Int32 vertexIdentifier() const { return vertexId_; }
  Acad::ErrorStatus setVertexIdentifier(Adesk::Int32 id);
  Adesk::Int16 flags() const { return flags_; }

  ZEPK_DB_ENTITY_FILERS;

 private:
  AcGePoint3d position_;
  double startWidth_ = 0.0, endWidth_ = 0.0, bulge_ = 0.0;
  int16_t flags_ = 0;
  double tangent_ = 0.0;
  int32_t vertexId_ = 0;
};

class AcDb3dPolylineVertex : public AcDbVertex {
 public:
  ACRX_DECLARE_MEMBERS(AcDb3dPolylineVertex);
  AcDb3dPolylineVertex() = default;
  explicit AcDb3dPolylineVertex(const AcGePoint3d& position) : position_(position) {}

  AcDb::Vertex3dType vertexType() const;
  Acad::ErrorStatus setVertexType(AcDb::Vertex3dType type);
  AcGePoint3d position() const { return position_; }
  Acad::ErrorStatus setPosition(const AcGePoint3d& p);
  Adesk::Int16 flags() const { return flags_; }

  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 private:
  AcGePoint3d position_;
  int16_t flags_ = AcDbVertexFlags::k3dPolyline;
  int32_t vertexId_ = 0;
};

class AcDbPolygonMeshVertex : public AcDbVertex {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPolygonMeshVertex);
  AcDbPolygonMeshVertex() = default;
  explicit AcDbPolygonMeshVertex(const AcGePoint3d& position) : position_(position) {}
  AcGePoint3d position() const { return position_; }
  Acad::ErrorStatus setPosition(const AcGePoint3d& p);
  Adesk::Int16 flags() const { return flags_; }

  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 private:
  AcGePoint3d position_;
  int16_t flags_ = AcDbVertexFlags::kPolygonMesh;
};

class AcDbPolyFaceMeshVertex : public AcDbVertex {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPolyFaceMeshVertex);
  AcDbPolyFaceMeshVertex() = default;
  explicit AcDbPolyFaceMeshVertex(const AcGePoint3d& position) : position_(position) {}
  AcGePoint3d position() const { return position_; }
  Acad::ErrorStatus setPosition(const AcGePoint3d& p);

  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 private:
  AcGePoint3d position_;
  int16_t flags_ = AcDbVertexFlags::kPolyfaceMesh | AcDbVertexFlags::kPolygonMesh;
};

// A face of a polyface mesh: up to four 1-based vertex numbers, negative
// where the edge that starts at that vertex is invisible, 0 where unused.
// Filed under "AcDbFaceRecord" without the "AcDbVertex" part.
class AcDbFaceRecord : public AcDbVertex {
 public:
  ACRX_DECLARE_MEMBERS(AcDbFaceRecord);
  AcDbFaceRecord() = default;
  AcDbFaceRecord(Adesk::Int16 vtx0, Adesk::Int16 vtx1, Adesk::Int16 vtx2, Adesk::Int16 vtx3);

  // The vertex number (positive) at index 0 to 3.
  Acad::ErrorStatus getVertexAt(Adesk::UInt16 faceIdx, Adesk::Int16& vtxIdx) const;
  Acad::ErrorStatus setVertexAt(Adesk::UInt16 faceIdx, Adesk::Int16 vtxIdx);
  Acad::ErrorStatus isEdgeVisibleAt(Adesk::UInt16 faceIndex, bool& visible) const;
  Acad::ErrorStatus makeEdgeVisibleAt(Adesk::UInt16 faceIndex);
  Acad::ErrorStatus makeEdgeInvisibleAt(Adesk::UInt16 faceIndex);

  ZEPK_DB_ENTITY_FILERS;

 private:
  int16_t* slot(Adesk::UInt16 i);
  AcGePoint3d position_;  // always the origin in files
  int16_t flags_ = AcDbVertexFlags::kPolyfaceMesh;
  int16_t v0_ = 0, v1_ = 0, v2_ = 0, v3_ = 0;
};

// The flags of an old-style polyline (group 70).
class AcDbPolylineFlags {
 public:
  enum {
    kClosed = 1,           // closed (a polygon mesh: closed in M)
    kCurveFit = 2,         // curve-fit vertices added
    kSplineFit = 4,        // spline-fit vertices added
    k3d = 8,               // a 3D polyline
    kPolygonMesh = 16,
    kClosedN = 32,         // a polygon mesh closed in N
    kPolyfaceMesh = 64,
    kPlinegen = 128,       // the linetype runs continuously around the vertices
  };
};

// A 2D polyline of the old style (POLYLINE): its vertices (AcDb2dVertex)
// are entities of their own, owned by it and filed after it up to a SEQEND.
// Vertices appended while the polyline is not in a database are kept with
// it and go into the database with it (when it is first closed there).
class AcDb2dPolyline : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDb2dPolyline);
  AcDb2dPolyline();
  // Vertices at the points' x and y, at the elevation.
  AcDb2dPolyline(AcDb::Poly2dType type, const AcGePoint3dArray& vertices, double elevation = 0.0,
                 bool closed = false, double defStartWidth = 0.0, double defEndWidth = 0.0,
                 const AcGeDoubleArray* bulges = nullptr);
  ~AcDb2dPolyline() override;

  AcDb::Poly2dType polyType() const;
  // Makes the polyline of the type, fitting or straightening its vertices
  // (the same as convertToPolyType).
  Acad::ErrorStatus setPolyType(AcDb::Poly2dType type);
  Acad::ErrorStatus convertToPolyType(AcDb::Poly2dType type);

  // Fitting. The polyline must be open for write when it is in a database
  // (eNotOpenForWrite). Vertices made by an earlier fit are removed first;
  // the vertices of the polyline as drawn before any fit (a spline's frame)
  // keep their ids.
  //
  // Curve fit: a pair of arcs per segment through every vertex, tangent
  // to each other at an inserted curve-fit vertex; the tangent at a vertex
  // is its own where one was set (useTangent), else the tangent of the
  // circle through it and its neighbours. Bulges and widths are set.
  Acad::ErrorStatus curveFit();
  // Spline fit: the vertices become the frame (spline control vertices,
  // kept but not drawn) of a uniform B-spline, clamped at the ends of an
  // open polyline and periodic on a closed one, and splineSegs spline-fit
  // vertices per frame edge follow them. The plain form takes the type and
  // the count from the drawing's SPLINETYPE (5 quadratic, 6 cubic) and
  // SPLINESEGS (8 by default; a negative count fits as many segments).
  Acad::ErrorStatus splineFit();
  Acad::ErrorStatus splineFit(AcDb::Poly2dType splineType, Adesk::Int16 splineSegs);
  // Removes the fitted vertices: back to the frame or the vertices as they
  // were, with straight segments.
  Acad::ErrorStatus straighten();
  bool isClosed() const override { return flags_ & AcDbPolylineFlags::kClosed; }
  Acad::ErrorStatus makeClosed();
  Acad::ErrorStatus makeOpen();
  bool isLinetypeGenerationOn() const { return flags_ & AcDbPolylineFlags::kPlinegen; }
  Acad::ErrorStatus setLinetypeGenerationOn();
  Acad::ErrorStatus setLinetypeGenerationOff();
  double defaultStartWidth() const { return defaultStartWidth_; }
  Acad::ErrorStatus setDefaultStartWidth(double w);
  double defaultEndWidth() const { return defaultEndWidth_; }
  Acad::ErrorStatus setDefaultEndWidth(double w);
  double thickness() const { return thickness_; }
  Acad::ErrorStatus setThickness(double t);
  AcGeVector3d normal() const { return normal_; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);
  double elevation() const { return elevationPoint_.z; }
  Acad::ErrorStatus setElevation(double z);
  Adesk::Int16 flags() const { return flags_; }
  // Curve and surface type (group 75): 0, or 5, 6, 8 for quadratic, cubic
  // and Bezier fitting.
  Adesk::Int16 curveType() const { return curveType_; }

  // Vertices. The polyline must be open for write when it is in a database
  // (eNotOpenForWrite); a vertex already in a database is refused
  // (eAlreadyInDb). In a database the vertex is added and left closed.
  Acad::ErrorStatus appendVertex(AcDb2dVertex* pNewVertex);
  Acad::ErrorStatus appendVertex(AcDbObjectId& objId, AcDb2dVertex* pNewVertex);
  // Inserts after the vertex given (at the start for a null id);
  // eInvalidInput when it is not one of this polyline's.
  Acad::ErrorStatus insertVertexAt(AcDbObjectId& newVertId, AcDbObjectId indexVertId, AcDb2dVertex* pNewVertex);
  AcDbObjectIterator* vertexIterator() const;
  Acad::ErrorStatus openSequenceEnd(AcDbSequenceEnd*& pSeqEnd, AcDb::OpenMode mode);
  // The vertex's position in world coordinates.
  AcGePoint3d vertexPosition(const AcDb2dVertex& vertex) const;

  // The vertices the curve passes through (a spline-fit polyline's frame
  // points are not among them): world positions and bulges.
  Acad::ErrorStatus getCurveVertices(AcGePoint3dArray& points, AcGeDoubleArray& bulges) const;

  ZEPK_DB_CURVE_GEOMETRY;
  Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const override;
  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 protected:
  zepk::db::OwnedSequence* ownedSequence() const override;
  void getExtendedGeCurves(std::vector<AcGeCurve3d*>& curves) const override;

 private:
  AcGePoint3d elevationPoint_;  // group 10: (0, 0, elevation)
  int16_t flags_ = 0;
  double defaultStartWidth_ = 0.0, defaultEndWidth_ = 0.0;
  int16_t curveType_ = 0;
  double thickness_ = 0.0;
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
  mutable std::unique_ptr<zepk::db::OwnedSequence> seq_;

  void setTypeFlags(AcDb::Poly2dType type);
  Acad::ErrorStatus refit(AcDb::Poly2dType type, int splineSegs);
};

// A 3D polyline (POLYLINE with flag 8) and its AcDb3dPolylineVertex objects.
class AcDb3dPolyline : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDb3dPolyline);
  AcDb3dPolyline();
  AcDb3dPolyline(AcDb::Poly3dType type, const AcGePoint3dArray& vertices, bool closed = false);
  ~AcDb3dPolyline() override;

  AcDb::Poly3dType polyType() const;
  Acad::ErrorStatus setPolyType(AcDb::Poly3dType type);
  bool isClosed() const override { return flags_ & AcDbPolylineFlags::kClosed; }
  Acad::ErrorStatus makeClosed();
  Acad::ErrorStatus makeOpen();
  Adesk::Int16 flags() const { return flags_; }

  Acad::ErrorStatus appendVertex(AcDb3dPolylineVertex* pNewVertex);
  Acad::ErrorStatus appendVertex(AcDbObjectId& objId, AcDb3dPolylineVertex* pNewVertex);
  Acad::ErrorStatus insertVertexAt(AcDbObjectId& newVertId, AcDbObjectId indexVertId,
                                   AcDb3dPolylineVertex* pNewVertex);
  AcDbObjectIterator* vertexIterator() const;
  Acad::ErrorStatus openSequenceEnd(AcDbSequenceEnd*& pSeqEnd, AcDb::OpenMode mode);

  // The vertices the curve passes through (a splined polyline's frame
  // points are not among them).
  Acad::ErrorStatus getCurveVertices(AcGePoint3dArray& points) const;

  ZEPK_DB_CURVE_GEOMETRY;
  Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const override;
  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 protected:
  zepk::db::OwnedSequence* ownedSequence() const override;
  void getExtendedGeCurves(std::vector<AcGeCurve3d*>& curves) const override;

 private:
  AcGePoint3d elevationPoint_;
  int16_t flags_ = AcDbPolylineFlags::k3d;
  int16_t curveType_ = 0;
  mutable std::unique_ptr<zepk::db::OwnedSequence> seq_;
};

// A polygon mesh (POLYLINE with flag 16): M by N AcDbPolygonMeshVertex.
class AcDbPolygonMesh : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPolygonMesh);
  AcDbPolygonMesh();
  ~AcDbPolygonMesh() override;

  AcDb::PolyMeshType polyMeshType() const { return static_cast<AcDb::PolyMeshType>(surfaceType_); }
  Acad::ErrorStatus setPolyMeshType(AcDb::PolyMeshType type);
  Adesk::Int16 mSize() const { return mCount_; }
  Acad::ErrorStatus setMSize(Adesk::Int16 m);
  Adesk::Int16 nSize() const { return nCount_; }
  Acad::ErrorStatus setNSize(Adesk::Int16 n);
  bool isMClosed() const { return flags_ & AcDbPolylineFlags::kClosed; }
  bool isNClosed() const { return flags_ & AcDbPolylineFlags::kClosedN; }
  Acad::ErrorStatus makeMClosed();
  Acad::ErrorStatus makeMOpen();
  Acad::ErrorStatus makeNClosed();
  Acad::ErrorStatus makeNOpen();
  Adesk::Int16 mSurfaceDensity() const { return mDensity_; }
  Acad::ErrorStatus setMSurfaceDensity(Adesk::Int16 d);
  Adesk::Int16 nSurfaceDensity() const { return nDensity_; }
  Acad::ErrorStatus setNSurfaceDensity(Adesk::Int16 d);

  Acad::ErrorStatus appendVertex(AcDbPolygonMeshVertex* pVertex);
  Acad::ErrorStatus appendVertex(AcDbObjectId& objId, AcDbPolygonMeshVertex* pVertex);
  AcDbObjectIterator* vertexIterator() const;
  Acad::ErrorStatus openSequenceEnd(AcDbSequenceEnd*& pSeqEnd, AcDb::OpenMode mode);

  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 protected:
  zepk::db::OwnedSequence* ownedSequence() const override;

 private:
  AcGePoint3d elevationPoint_;
  int16_t flags_ = AcDbPolylineFlags::kPolygonMesh;
  int16_t mCount_ = 0, nCount_ = 0, mDensity_ = 0, nDensity_ = 0, surfaceType_ = 0;
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
  mutable std::unique_ptr<zepk::db::OwnedSequence> seq_;
};

// A polyface mesh (POLYLINE with flag 64): its vertices
// (AcDbPolyFaceMeshVertex) first, then its faces (AcDbFaceRecord).
class AcDbPolyFaceMesh : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPolyFaceMesh);
  AcDbPolyFaceMesh();
  ~AcDbPolyFaceMesh() override;

  Adesk::Int16 numVertices() const { return numVertices_; }
  Adesk::Int16 numFaces() const { return numFaces_; }
  Acad::ErrorStatus appendVertex(AcDbPolyFaceMeshVertex* pVertex);
  Acad::ErrorStatus appendVertex(AcDbObjectId& objId, AcDbPolyFaceMeshVertex* pVertex);
  Acad::ErrorStatus appendFaceRecord(AcDbFaceRecord* pFace);
  Acad::ErrorStatus appendFaceRecord(AcDbObjectId& objId, AcDbFaceRecord* pFace);
  AcDbObjectIterator* vertexIterator() const;
  Acad::ErrorStatus openSequenceEnd(AcDbSequenceEnd*& pSeqEnd, AcDb::OpenMode mode);

  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 protected:
  zepk::db::OwnedSequence* ownedSequence() const override;

 private:
  AcGePoint3d elevationPoint_;
  int16_t flags_ = AcDbPolylineFlags::kPolyfaceMesh;
  int16_t numVertices_ = 0, numFaces_ = 0;
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
  mutable std::unique_ptr<zepk::db::OwnedSequence> seq_;
};
