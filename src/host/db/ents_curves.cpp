// Lines, circles, arcs, ellipses, rays, construction lines, points, faces,
// solids and traces: entities whose state is a handful of plain fields.
#include <cmath>

#include "host/db/ents_internal.h"
#include "host/dbelipse.h"
#include "host/dbray.h"
#include "host/dbxline.h"

using zepk::db::ClassSchema;
using zepk::db::field;
using zepk::db::kOptional;
using zepk::db::kDegreesInFile;

namespace {

constexpr double kTwoPi = 6.28318530717958647692;
const AcGeVector3d kZ(0, 0, 1);

// A normal is kept as a unit vector; a zero vector is refused.
bool unitNormal(const AcGeVector3d& n, AcGeVector3d& out) {
  double len = n.length();
  if (!(len > 1e-12)) return false;
  out = n / len;
  return true;
}

}  // namespace

// Setters that store a value as it is.
#define ZEPK_SET(CLASS, NAME, TYPE, MEMBER)   \
  Acad::ErrorStatus CLASS::NAME(TYPE v) {     \
    assertWriteEnabled();                      \
    MEMBER = v;                                \
    return Acad::eOk;                          \
  }
#define ZEPK_SET_NORMAL(CLASS, MEMBER)                        \
  Acad::ErrorStatus CLASS::setNormal(const AcGeVector3d& n) { \
    AcGeVector3d u;                                           \
    if (!unitNormal(n, u)) return Acad::eInvalidInput;        \
    assertWriteEnabled();                                     \
    MEMBER = u;                                               \
    return Acad::eOk;                                         \
  }

// ---------------------------------------------------------------- line

ZEPK_DEFINE_ENTITY_CLASS(AcDbLine, AcDbCurve, u"LINE")
ZEPK_DEFINE_ENTITY_FILERS(AcDbLine, AcDbCurve)

const ClassSchema& AcDbLine::schema() {
  static const ClassSchema s{u"AcDbLine",
                             {
                                 field<&AcDbLine::thickness_>(39, "Thickness", 0.0, kOptional),
                                 field<&AcDbLine::start_>(10, "StartPoint"),
                                 field<&AcDbLine::end_>(11, "EndPoint"),
                                 field<&AcDbLine::normal_>(210, "Normal", kZ, kOptional),
                             }};
  return s;
}

ZEPK_SET(AcDbLine, setStartPoint, const AcGePoint3d&, start_)
ZEPK_SET(AcDbLine, setEndPoint, const AcGePoint3d&, end_)
ZEPK_SET(AcDbLine, setThickness, double, thickness_)
ZEPK_SET_NORMAL(AcDbLine, normal_)

// ---------------------------------------------------------------- circle

ZEPK_DEFINE_ENTITY_CLASS(AcDbCircle, AcDbCurve, u"CIRCLE")
ZEPK_DEFINE_ENTITY_FILERS(AcDbCircle, AcDbCurve)

const ClassSchema& AcDbCircle::schema() {
  static const ClassSchema s{u"AcDbCircle",
                             {
                                 field<&AcDbCircle::thickness_>(39, "Thickness", 0.0, kOptional),
                                 field<&AcDbCircle::center_>(10, "Center"),
                                 field<&AcDbCircle::radius_>(40, "Radius"),
                                 field<&AcDbCircle::normal_>(210, "Normal", kZ, kOptional),
                             }};
  return s;
}

ZEPK_SET(AcDbCircle, setCenter, const AcGePoint3d&, center_)
ZEPK_SET(AcDbCircle, setThickness, double, thickness_)
ZEPK_SET_NORMAL(AcDbCircle, normal_)

Acad::ErrorStatus AcDbCircle::setRadius(double r) {
  if (!(r > 0.0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  radius_ = r;
  return Acad::eOk;
}

// ---------------------------------------------------------------- arc

ZEPK_DEFINE_ENTITY_CLASS(AcDbArc, AcDbCurve, u"ARC")

const ClassSchema& AcDbArc::circleSchema() {
  static const ClassSchema s{u"AcDbCircle",
                             {
                                 field<&AcDbArc::thickness_>(39, "Thickness", 0.0, kOptional),
                                 field<&AcDbArc::center_>(10, "Center"),
                                 field<&AcDbArc::radius_>(40, "Radius"),
                                 field<&AcDbArc::normal_>(210, "Normal", kZ, kOptional),
                             }};
  return s;
}

const ClassSchema& AcDbArc::schema() {
  static const ClassSchema s{u"AcDbArc",
                             {
                                 field<&AcDbArc::startAngle_>(50, "StartAngle", 0.0, kDegreesInFile),
                                 field<&AcDbArc::endAngle_>(51, "EndAngle", 0.0, kDegreesInFile),
                             }};
  return s;
}

Acad::ErrorStatus AcDbArc::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbCurve::dwgOutFields(f);
  if (es == Acad::eOk) es = zepk::db::dwgOutPart(circleSchema(), this, f);
  return es != Acad::eOk ? es : zepk::db::dwgOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbArc::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbCurve::dwgInFields(f);
  if (es == Acad::eOk) es = zepk::db::dwgInPart(circleSchema(), this, f);
  return es != Acad::eOk ? es : zepk::db::dwgInPart(schema(), this, f);
}

Acad::ErrorStatus AcDbArc::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbCurve::dxfOutFields(f);
  if (es == Acad::eOk) es = zepk::db::dxfOutPart(circleSchema(), this, f);
  return es != Acad::eOk ? es : zepk::db::dxfOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbArc::dxfInFields(AcDbDxfFiler* f) {
  Acad::ErrorStatus es = AcDbCurve::dxfInFields(f);
  if (es == Acad::eOk) es = zepk::db::dxfInPart(circleSchema(), this, f);
  return es != Acad::eOk ? es : zepk::db::dxfInPart(schema(), this, f);
}

ZEPK_SET(AcDbArc, setCenter, const AcGePoint3d&, center_)
ZEPK_SET(AcDbArc, setStartAngle, double, startAngle_)
ZEPK_SET(AcDbArc, setEndAngle, double, endAngle_)
ZEPK_SET(AcDbArc, setThickness, double, thickness_)
ZEPK_SET_NORMAL(AcDbArc, normal_)

Acad::ErrorStatus AcDbArc::setRadius(double r) {
  if (!(r > 0.0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  radius_ = r;
  return Acad::eOk;
}

// ---------------------------------------------------------------- ellipse

ZEPK_DEFINE_ENTITY_CLASS(AcDbEllipse, AcDbCurve, u"ELLIPSE")
ZEPK_DEFINE_ENTITY_FILERS(AcDbEllipse, AcDbCurve)

const ClassSchema& AcDbEllipse::schema() {
  static const ClassSchema s{u"AcDbEllipse",
                             {
                                 field<&AcDbEllipse::center_>(10, "Center"),
                                 field<&AcDbEllipse::majorAxis_>(11, "MajorAxis", AcGeVector3d(1, 0, 0)),
                                 field<&AcDbEllipse::normal_>(210, "Normal", kZ, kOptional),
                                 field<&AcDbEllipse::ratio_>(40, "RadiusRatio", 1.0),
                                 field<&AcDbEllipse::startParam_>(41, "StartParam", 0.0),
                                 field<&AcDbEllipse::endParam_>(42, "EndParam", kTwoPi),
                             }};
  return s;
}

AcDbEllipse::AcDbEllipse(const AcGePoint3d& center, const AcGeVector3d& unitNormal, const AcGeVector3d& majorAxis,
                         double radiusRatio, double startAngle, double endAngle) {
  set(center, unitNormal, majorAxis, radiusRatio, startAngle, endAngle);
}

AcGeVector3d AcDbEllipse::minorAxis() const { return normal_.crossProduct(majorAxis_) * ratio_; }

ZEPK_SET(AcDbEllipse, setCenter, const AcGePoint3d&, center_)
ZEPK_SET(AcDbEllipse, setStartParam, double, startParam_)
ZEPK_SET(AcDbEllipse, setEndParam, double, endParam_)

Acad::ErrorStatus AcDbEllipse::setRadiusRatio(double ratio) {
  if (!(ratio > 0.0 && ratio <= 1.0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  ratio_ = ratio;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::set(const AcGePoint3d& center, const AcGeVector3d& normal,
                                   const AcGeVector3d& majorAxis, double radiusRatio, double startAngle,
                                   double endAngle) {
  AcGeVector3d n;
  if (!unitNormal(normal, n) || !(radiusRatio > 0.0 && radiusRatio <= 1.0)) return Acad::eInvalidInput;
  double len = majorAxis.length();
  if (!(len > 1e-12) || std::fabs(n.dotProduct(majorAxis)) > 1e-9 * len) return Acad::eInvalidInput;
  assertWriteEnabled();
  center_ = center;
  normal_ = n;
  majorAxis_ = majorAxis;
  ratio_ = radiusRatio;
  startParam_ = paramAtAngle(startAngle);
  endParam_ = paramAtAngle(endAngle);
  // A whole turn stays whole.
  if (std::fabs(endAngle - startAngle - kTwoPi) < 1e-12 && endParam_ <= startParam_) endParam_ += kTwoPi;
  return Acad::eOk;
}

double AcDbEllipse::paramAtAngle(double angle) const {
  if (std::fabs(angle - kTwoPi) < 1e-12) return kTwoPi;
  double p = std::atan2(std::sin(angle), ratio_ * std::cos(angle));
  return p < 0 ? p + kTwoPi : p;
}

double AcDbEllipse::angleAtParam(double param) const {
  if (std::fabs(param - kTwoPi) < 1e-12) return kTwoPi;
  double a = std::atan2(ratio_ * std::sin(param), std::cos(param));
  return a < 0 ? a + kTwoPi : a;
}

bool AcDbEllipse::isClosed() const {
  double span = endParam_ - startParam_;
  return std::fabs(std::fabs(span) - kTwoPi) < 1e-10 || std::fabs(span) < 1e-12;
}

// ---------------------------------------------------------------- ray and construction line

ZEPK_DEFINE_ENTITY_CLASS(AcDbRay, AcDbCurve, u"RAY")
ZEPK_DEFINE_ENTITY_FILERS(AcDbRay, AcDbCurve)

const ClassSchema& AcDbRay::schema() {
  static const ClassSchema s{u"AcDbRay",
                             {
                                 field<&AcDbRay::basePoint_>(10, "BasePoint"),
                                 field<&AcDbRay::unitDir_>(11, "UnitDir", AcGeVector3d(1, 0, 0)),
                             }};
  return s;
}

ZEPK_SET(AcDbRay, setBasePoint, const AcGePoint3d&, basePoint_)

Acad::ErrorStatus AcDbRay::setUnitDir(const AcGeVector3d& v) {
  AcGeVector3d u;
  if (!unitNormal(v, u)) return Acad::eInvalidInput;
  assertWriteEnabled();
  unitDir_ = u;
  return Acad::eOk;
}

ZEPK_DEFINE_ENTITY_CLASS(AcDbXline, AcDbCurve, u"XLINE")
ZEPK_DEFINE_ENTITY_FILERS(AcDbXline, AcDbCurve)

const ClassSchema& AcDbXline::schema() {
  static const ClassSchema s{u"AcDbXline",
                             {
                                 field<&AcDbXline::basePoint_>(10, "BasePoint"),
                                 field<&AcDbXline::unitDir_>(11, "UnitDir", AcGeVector3d(1, 0, 0)),
                             }};
  return s;
}

ZEPK_SET(AcDbXline, setBasePoint, const AcGePoint3d&, basePoint_)

Acad::ErrorStatus AcDbXline::setUnitDir(const AcGeVector3d& v) {
  AcGeVector3d u;
  if (!unitNormal(v, u)) return Acad::eInvalidInput;
  assertWriteEnabled();
  unitDir_ = u;
  return Acad::eOk;
}

// ---------------------------------------------------------------- point

ZEPK_DEFINE_ENTITY_CLASS(AcDbPoint, AcDbEntity, u"POINT")
ZEPK_DEFINE_ENTITY_FILERS(AcDbPoint, AcDbEntity)

const ClassSchema& AcDbPoint::schema() {
  static const ClassSchema s{u"AcDbPoint",
                             {
                                 field<&AcDbPoint::position_>(10, "Position"),
                                 field<&AcDbPoint::thickness_>(39, "Thickness", 0.0, kOptional),
                                 field<&AcDbPoint::normal_>(210, "Normal", kZ, kOptional),
                                 field<&AcDbPoint::ecsRotation_>(50, "EcsRotation", 0.0, kOptional | kDegreesInFile),
                             }};
  return s;
}

ZEPK_SET(AcDbPoint, setPosition, const AcGePoint3d&, position_)
ZEPK_SET(AcDbPoint, setThickness, double, thickness_)
ZEPK_SET(AcDbPoint, setEcsRotation, double, ecsRotation_)
ZEPK_SET_NORMAL(AcDbPoint, normal_)

// ---------------------------------------------------------------- face

ZEPK_DEFINE_ENTITY_CLASS(AcDbFace, AcDbEntity, u"3DFACE")
ZEPK_DEFINE_ENTITY_FILERS(AcDbFace, AcDbEntity)

const ClassSchema& AcDbFace::schema() {
  static const ClassSchema s{u"AcDbFace",
                             {
                                 field<&AcDbFace::p0_>(10, "Vertex0"),
                                 field<&AcDbFace::p1_>(11, "Vertex1"),
                                 field<&AcDbFace::p2_>(12, "Vertex2"),
                                 field<&AcDbFace::p3_>(13, "Vertex3"),
                                 field<&AcDbFace::invisibleEdges_>(70, "InvisibleEdges", 0, kOptional),
                             }};
  return s;
}

AcDbFace::AcDbFace(const AcGePoint3d& pt0, const AcGePoint3d& pt1, const AcGePoint3d& pt2, const AcGePoint3d& pt3,
                   bool e0vis, bool e1vis, bool e2vis, bool e3vis)
    : p0_(pt0), p1_(pt1), p2_(pt2), p3_(pt3) {
  invisibleEdges_ = static_cast<int16_t>((e0vis ? 0 : 1) | (e1vis ? 0 : 2) | (e2vis ? 0 : 4) | (e3vis ? 0 : 8));
}

AcDbFace::AcDbFace(const AcGePoint3d& pt0, const AcGePoint3d& pt1, const AcGePoint3d& pt2, bool e0vis, bool e1vis,
                   bool e2vis, bool e3vis)
    : AcDbFace(pt0, pt1, pt2, pt2, e0vis, e1vis, e2vis, e3vis) {}

Acad::ErrorStatus AcDbFace::getVertexAt(Adesk::UInt16 index, AcGePoint3d& pt) const {
  const AcGePoint3d* p[4] = {&p0_, &p1_, &p2_, &p3_};
  if (index > 3) return Acad::eInvalidIndex;
  pt = *p[index];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::setVertexAt(Adesk::UInt16 index, const AcGePoint3d& pt) {
  AcGePoint3d* p[4] = {&p0_, &p1_, &p2_, &p3_};
  if (index > 3) return Acad::eInvalidIndex;
  assertWriteEnabled();
  *p[index] = pt;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::isEdgeVisibleAt(Adesk::UInt16 index, bool& visible) const {
  if (index > 3) return Acad::eInvalidIndex;
  visible = !(invisibleEdges_ & (1 << index));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::makeEdgeVisibleAt(Adesk::UInt16 index) {
  if (index > 3) return Acad::eInvalidIndex;
  assertWriteEnabled();
  invisibleEdges_ = static_cast<int16_t>(invisibleEdges_ & ~(1 << index));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::makeEdgeInvisibleAt(Adesk::UInt16 index) {
  if (index > 3) return Acad::eInvalidIndex;
  assertWriteEnabled();
  invisibleEdges_ = static_cast<int16_t>(invisibleEdges_ | (1 << index));
  return Acad::eOk;
}

// ---------------------------------------------------------------- solid and trace

// Both file their corners under the marker "AcDbTrace".
#define ZEPK_QUAD_ENTITY(CLASS, DXF_NAME)                                                        \
  ZEPK_DEFINE_ENTITY_CLASS(CLASS, AcDbEntity, DXF_NAME)                                          \
  ZEPK_DEFINE_ENTITY_FILERS(CLASS, AcDbEntity)                                                   \
  const ClassSchema& CLASS::schema() {                                                           \
    static const ClassSchema s{u"AcDbTrace",                                                     \
                               {                                                                 \
                                   field<&CLASS::p0_>(10, "Point0"),                             \
                                   field<&CLASS::p1_>(11, "Point1"),                             \
                                   field<&CLASS::p2_>(12, "Point2"),                             \
                                   field<&CLASS::p3_>(13, "Point3"),                             \
                                   field<&CLASS::thickness_>(39, "Thickness", 0.0, kOptional),   \
                                   field<&CLASS::normal_>(210, "Normal", kZ, kOptional),         \
                               }};                                                               \
    return s;                                                                                    \
  }                                                                                              \
  Acad::ErrorStatus CLASS::getPointAt(Adesk::UInt16 idx, AcGePoint3d& pnt) const {              \
    const AcGePoint3d* p[4] = {&p0_, &p1_, &p2_, &p3_};                                          \
    if (idx > 3) return Acad::eInvalidIndex;                                                     \
    pnt = *p[idx];                                                                               \
    return Acad::eOk;                                                                            \
  }                                                                                              \
  Acad::ErrorStatus CLASS::setPointAt(Adesk::UInt16 idx, const AcGePoint3d& pnt) {              \
    AcGePoint3d* p[4] = {&p0_, &p1_, &p2_, &p3_};                                                \
    if (idx > 3) return Acad::eInvalidIndex;                                                     \
    assertWriteEnabled();                                                                        \
    *p[idx] = pnt;                                                                               \
    return Acad::eOk;                                                                            \
  }                                                                                              \
  ZEPK_SET(CLASS, setThickness, double, thickness_)                                              \
  ZEPK_SET_NORMAL(CLASS, normal_)

ZEPK_QUAD_ENTITY(AcDbSolid, u"SOLID")
ZEPK_QUAD_ENTITY(AcDbTrace, u"TRACE")
