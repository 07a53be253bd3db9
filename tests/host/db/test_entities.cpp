// Entities: one round trip over every class through both filers, driven by
// the classes' schemas; the parts with repeating data (polyline vertices,
// hatch loops, text markers, colours); sub-entities owned up to a SEQEND;
// groups a class does not model kept in place; undo.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/db/ents_internal.h"
#include "host/dbelipse.h"
#include "host/dbhatch.h"
#include "host/dbmtext.h"
#include "host/dbpl.h"
#include "host/dbray.h"
#include "host/dbregion.h"
#include "host/dbspline.h"
#include "host/dbsymtb.h"
#include "host/dbxline.h"
#include "host/imgent.h"

using zepk::db::ClassSchema;
using zepk::db::DwgItem;
using zepk::db::DxfItem;
using zepk::db::MemoryDwgFiler;
using zepk::db::MemoryDxfFiler;

namespace {

constexpr double kPi = 3.14159265358979323846;

// ---------------------------------------------------------------- helpers

DxfItem str(int code, std::u16string s) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::String;
  it.s = std::move(s);
  return it;
}

DxfItem integer(int code, int64_t v) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::Int;
  it.i = v;
  return it;
}

DxfItem real(int code, double v) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::Real;
  it.p[0] = v;
  return it;
}

DxfItem point(int code, double x, double y, double z = 0) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::Point;
  it.p[0] = x, it.p[1] = y, it.p[2] = z;
  return it;
}

DxfItem ref(int code, AcDbObjectId id) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::Id;
  it.id = id;
  return it;
}

std::vector<int> codesOf(const MemoryDxfFiler& f) {
  std::vector<int> out;
  for (const DxfItem& it : f.items()) out.push_back(it.code);
  return out;
}

// The items with this code, in order.
std::vector<DxfItem> groupsOf(const MemoryDxfFiler& f, int code) {
  std::vector<DxfItem> out;
  for (const DxfItem& it : f.items())
    if (it.code == code) out.push_back(it);
  return out;
}

// An entity of the class made by its pseudo-constructor, read from groups.
std::unique_ptr<AcDbEntity> readEntity(AcRxClass* cls, std::vector<DxfItem> items, Acad::ErrorStatus* status = nullptr,
                                       AcDbDatabase* db = nullptr) {
  std::unique_ptr<AcDbEntity> e(AcDbEntity::cast(cls->create()));
  MemoryDxfFiler f(AcDb::kFileFiler, db);
  f.items() = std::move(items);
  Acad::ErrorStatus es = e->dxfInFields(&f);
  if (status) *status = es;
  return e;
}

// Sets one group of an entity as entmod would: the entity's groups with
// that code's first value replaced, read back. A group the list leaves out
// while it holds its default (a block reference's column count) is added
// at the end of the list.
void editGroup(AcDbEntity* e, DxfItem value) {
  MemoryDxfFiler f(AcDb::kBagFiler);
  ASSERT_EQ(e->dxfOutFields(&f), Acad::eOk);
  bool found = false;
  for (DxfItem& it : f.items())
    if (!found && it.code == value.code) it = value, found = true;
  if (!found && (value.code == 70 || value.code == 71)) f.items().push_back(value), found = true;
  ASSERT_TRUE(found) << "no group " << value.code;
  f.rewind();
  ASSERT_EQ(e->dxfInFields(&f), Acad::eOk);
}

bool near(double a, double b) { return std::fabs(a - b) <= 1e-12 * std::max({1.0, std::fabs(a), std::fabs(b)}); }

// Two DWG-style streams hold the same values (reals within rounding).
::testing::AssertionResult sameStream(const MemoryDwgFiler& a, const MemoryDwgFiler& b) {
  const auto& x = a.items();
  const auto& y = b.items();
  if (x.size() != y.size())
    return ::testing::AssertionFailure() << x.size() << " items against " << y.size();
  for (size_t i = 0; i < x.size(); ++i) {
    if (x[i].index() != y[i].index()) return ::testing::AssertionFailure() << "item " << i << " of another kind";
    bool same = std::visit(
        [&](const auto& v) {
          using T = std::decay_t<decltype(v)>;
          const T& w = std::get<T>(y[i]);
          if constexpr (std::is_same_v<T, double>) return near(v, w);
          else if constexpr (std::is_same_v<T, AcGePoint2d>) return near(v.x, w.x) && near(v.y, w.y);
          else if constexpr (std::is_same_v<T, AcGePoint3d> || std::is_same_v<T, AcGeVector3d>)
            return near(v.x, w.x) && near(v.y, w.y) && near(v.z, w.z);
          else return v == w;
        },
        x[i]);
    if (!same) return ::testing::AssertionFailure() << "item " << i << " differs";
  }
  return ::testing::AssertionSuccess();
}

MemoryDwgFiler dwgOf(const AcDbObject* o) {
  MemoryDwgFiler f;
  o->dwgOutFields(&f);
  return f;
}

// ---------------------------------------------------------------- the classes, filled

// Values unlike any default for what every entity has.
void fillCommon(AcDbEntity* e) {
  ASSERT_EQ(e->setLayer(u"测量层"), Acad::eOk);
  ASSERT_EQ(e->setLinetype(u"DASHED"), Acad::eOk);
  AcCmColor c;
  c.setRGB(12, 34, 56);
  c.setNames(u"深蓝", u"色册");
  ASSERT_EQ(e->setColor(c), Acad::eOk);
  ASSERT_EQ(e->setLinetypeScale(2.5), Acad::eOk);
  ASSERT_EQ(e->setLineWeight(AcDb::kLnWt035), Acad::eOk);
  ASSERT_EQ(e->setVisibility(AcDb::kInvisible), Acad::eOk);
  ASSERT_EQ(e->setTransparency(AcCmTransparency(77)), Acad::eOk);
  editGroup(e, integer(67, 1));  // in paper space
}

const AcGeVector3d kTilted = AcGeVector3d(0.3, -0.4, 0.866).normal();

struct Case {
  std::string name;
  std::function<AcDbEntity*()> make;
  std::function<std::vector<const ClassSchema*>()> parts;
  std::set<std::string> notFilled;  // fields that keep their defaults on purpose
};

template <class T>
T* withCommon(T* e) {
  fillCommon(e);
  return e;
}

// Ids of a database that lives through the tests: references to objects.
AcDbDatabase& refDb() {
  static AcDbDatabase* db = new AcDbDatabase;
  return *db;
}

AcDbObjectId someId(int n) {
  AcDbObjectId id;
  refDb().getAcDbObjectId(id, true, AcDbHandle(0x500 + n));
  return id;
}

AcDbHatch* filledHatch() {
  auto* h = new AcDbHatch;
  h->setPattern(AcDbHatch::kCustomDefined, u"ANSI31");
  h->setPatternAngle(kPi / 4);
  h->setPatternScale(2.0);
  h->setPatternDouble(true);
  h->setHatchStyle(AcDbHatch::kOuter);
  h->setAssociative(true);
  h->setElevation(3.5);
  h->setNormal(kTilted);
  h->setPixelSize(0.7);
  AcDbHatch::Loop poly;
  poly.type = AcDbHatch::kPolyline | AcDbHatch::kExternal;
  poly.vertices = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
  poly.bulges = {0, 0.5, 0, -0.25};
  poly.sourceIds = {someId(1), someId(2)};
  h->appendLoop(poly);
  AcDbHatch::Edge line, arc, ell, spl;
  line.type = AcDbHatch::kLine;
  line.start = {1, 1}, line.end = {5, 1};
  arc.type = AcDbHatch::kCirArc;
  arc.center = {5, 3}, arc.radius = 2, arc.startAngle = -kPi / 2, arc.endAngle = kPi / 2, arc.ccw = false;
  ell.type = AcDbHatch::kEllArc;
  ell.center = {3, 5}, ell.majorAxis = {2, 0}, ell.minorMajorRatio = 0.5, ell.startAngle = 0, ell.endAngle = kPi;
  spl.type = AcDbHatch::kSpline;
  spl.degree = 3, spl.rational = true;
  spl.knots = {0, 0, 0, 0, 1, 1, 1, 1};
  spl.controlPoints = {{1, 5}, {1, 4}, {1, 2}, {1, 1}};
  spl.weights = {1, 0.5, 0.5, 1};
  spl.fitPoints = {{1, 5}, {1, 1}};
  spl.hasFitCount = spl.hasStartTangent = spl.hasEndTangent = true;
  spl.startTangent = {0, -1}, spl.endTangent = {0, -1};
  h->appendLoop(AcDbHatch::kOutermost, std::vector<AcDbHatch::Edge>{line, arc, ell, spl});
  AcDbHatch::PatternLine l1, l2;
  l1.angle = kPi / 4, l1.offsetX = -0.088, l1.offsetY = 0.088;
  l2.angle = kPi / 2, l2.baseX = 1, l2.baseY = 2, l2.offsetY = 3, l2.dashes = {0.5, -0.25, 0};
  h->setPatternDefinitions({l1, l2});
  h->setSeedPoints({{5, 5}, {2, 3}});
  h->setHatchObjectType(AcDbHatch::kGradientObject);
  h->setGradient(AcDbHatch::kPreDefinedGradient, u"CYLINDER");
  h->setGradientAngle(0.5);
  h->setGradientShift(1.0);
  h->setShadeTintValue(0.25);
  h->setGradientOneColorMode(true);
  AcDbHatch::GradientColor c1, c2;
  c1.value = 0, c1.colorIndex = 5, c1.rgb = 0x0000FF;
  c2.value = 1, c2.rgb = 0xFFFF00;
  h->setGradientColors({c1, c2});
  // A gradient fills solid; the pattern above stays as data.
  h->setPattern(AcDbHatch::kCustomDefined, u"ANSI31");
  return withCommon(h);
}

std::vector<Case> cases() {
  using V = std::vector<const ClassSchema*>;
  std::vector<Case> out;
  out.push_back({"Line",
                 [] {
                   auto* e = new AcDbLine(AcGePoint3d(1, 2, 3), AcGePoint3d(4, 5, 6));
                   e->setThickness(0.5);
                   e->setNormal(kTilted);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbLine::schema()}; },
                 {}});
  out.push_back({"Circle",
                 [] {
                   auto* e = new AcDbCircle(AcGePoint3d(1, 2, 3), kTilted, 4.5);
                   e->setThickness(-1);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbCircle::schema()}; },
                 {}});
  out.push_back({"Arc",
                 [] {
                   auto* e = new AcDbArc(AcGePoint3d(1, 2, 3), kTilted, 4.5, 0.25, 3.0);
                   e->setThickness(2);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbArc::circleSchema(), &AcDbArc::schema()}; },
                 {}});
  out.push_back({"Ellipse",
                 [] {
                   auto* e = new AcDbEllipse;
                   AcGeVector3d major = kTilted.perpVector() * 3;
                   EXPECT_EQ(e->set(AcGePoint3d(1, 2, 3), kTilted, major, 0.5, 0.3, 2.0), Acad::eOk);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbEllipse::schema()}; },
                 {}});
  out.push_back({"Ray",
                 [] {
                   auto* e = new AcDbRay;
                   e->setBasePoint(AcGePoint3d(1, 2, 3));
                   e->setUnitDir(AcGeVector3d(1, 1, 1));
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbRay::schema()}; },
                 {}});
  out.push_back({"Xline",
                 [] {
                   auto* e = new AcDbXline;
                   e->setBasePoint(AcGePoint3d(-1, 2, 3));
                   e->setUnitDir(AcGeVector3d(0, 2, 1));
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbXline::schema()}; },
                 {}});
  out.push_back({"Point",
                 [] {
                   auto* e = new AcDbPoint(AcGePoint3d(7, 8, 9));
                   e->setThickness(1.5);
                   e->setNormal(kTilted);
                   e->setEcsRotation(0.75);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbPoint::schema()}; },
                 {}});
  out.push_back({"Face",
                 [] {
                   return withCommon(new AcDbFace(AcGePoint3d(0, 0, 1), AcGePoint3d(1, 0, 2), AcGePoint3d(1, 1, 3),
                                                  AcGePoint3d(0, 1, 4), true, false, true, false));
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbFace::schema()}; },
                 {}});
  out.push_back({"Solid",
                 [] {
                   auto* e = new AcDbSolid(AcGePoint3d(0, 0, 1), AcGePoint3d(1, 0, 1), AcGePoint3d(0, 1, 1),
                                           AcGePoint3d(1, 1, 1));
                   e->setThickness(2);
                   e->setNormal(kTilted);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbSolid::schema()}; },
                 {}});
  out.push_back({"Trace",
                 [] {
                   auto* e = new AcDbTrace(AcGePoint3d(0, 0, 1), AcGePoint3d(1, 0, 1), AcGePoint3d(0, 1, 1),
                                           AcGePoint3d(1, 1, 1));
                   e->setThickness(3);
                   e->setNormal(kTilted);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbTrace::schema()}; },
                 {}});
  out.push_back({"LwPolyline",
                 [] {
                   auto* e = new AcDbPolyline;
                   e->setConstantWidth(0.25);
                   e->addVertexAt(0, AcGePoint2d(0, 0), 0.5, 0.1, 0.2, 7);
                   e->addVertexAt(1, AcGePoint2d(10, 0));  // the constant width
                   e->addVertexAt(2, AcGePoint2d(10, 10), -1.0, 0.0, 0.0);
                   e->setClosed(true);
                   e->setPlinegen(true);
                   e->setElevation(12.5);
                   e->setThickness(1);
                   e->setNormal(kTilted);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbPolyline::schema()}; },
                 {}});
  out.push_back({"Polyline2d",
                 [] {
                   auto* e = new AcDb2dPolyline;
                   e->setPolyType(AcDb::k2dQuadSplinePoly);
                   e->makeClosed();
                   e->setLinetypeGenerationOn();
                   e->setDefaultStartWidth(0.5);
                   e->setDefaultEndWidth(0.75);
                   e->setThickness(2);
                   e->setNormal(kTilted);
                   e->setElevation(4);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDb2dPolyline::schema()}; },
                 {}});
  out.push_back({"Vertex2d",
                 [] {
                   auto* e = new AcDb2dVertex(AcGePoint3d(1, 2, 4), 0.5, 0.1, 0.2, 1.25, 9);
                   e->setVertexType(AcDb::k2dSplineFitVertex);
                   e->useTangent();
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbVertex::vertexSchema(), &AcDb2dVertex::schema()}; },
                 {}});
  out.push_back({"Polyline3d",
                 [] {
                   auto* e = new AcDb3dPolyline;
                   e->setPolyType(AcDb::k3dCubicSplinePoly);
                   e->makeClosed();
                   editGroup(e, point(10, 0, 0, 2));
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDb3dPolyline::schema()}; },
                 {}});
  out.push_back({"Vertex3d",
                 [] {
                   auto* e = new AcDb3dPolylineVertex(AcGePoint3d(1, 2, 3));
                   e->setVertexType(AcDb::k3dControlVertex);
                   editGroup(e, integer(91, 4));
                   return withCommon(e);
                 },
                 [] {
                   return V{&AcDbEntity::schema(), &AcDbVertex::vertexSchema(), &AcDb3dPolylineVertex::schema()};
                 },
                 {}});
  out.push_back({"PolygonMesh",
                 [] {
                   auto* e = new AcDbPolygonMesh;
                   e->setPolyMeshType(AcDb::kCubicSurfaceMesh);
                   e->setMSize(3);
                   e->setNSize(4);
                   e->setMSurfaceDensity(6);
                   e->setNSurfaceDensity(8);
                   e->makeMClosed();
                   e->makeNClosed();
                   editGroup(e, point(10, 0, 0, 1));
                   editGroup(e, point(210, 0, 1, 0));
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbPolygonMesh::schema()}; },
                 {}});
  out.push_back({"PolygonMeshVertex",
                 [] { return withCommon(new AcDbPolygonMeshVertex(AcGePoint3d(1, 2, 3))); },
                 [] {
                   return V{&AcDbEntity::schema(), &AcDbVertex::vertexSchema(), &AcDbPolygonMeshVertex::schema()};
                 },
                 {"Flags"}});
  out.push_back({"PolyFaceMesh",
                 [] {
                   auto* e = new AcDbPolyFaceMesh;
                   editGroup(e, point(10, 0, 0, 1));
                   editGroup(e, integer(71, 8));
                   editGroup(e, integer(72, 6));
                   editGroup(e, point(210, 1, 0, 0));
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbPolyFaceMesh::schema()}; },
                 {"Flags"}});
  out.push_back({"PolyFaceMeshVertex",
                 [] { return withCommon(new AcDbPolyFaceMeshVertex(AcGePoint3d(1, 2, 3))); },
                 [] {
                   return V{&AcDbEntity::schema(), &AcDbVertex::vertexSchema(), &AcDbPolyFaceMeshVertex::schema()};
                 },
                 {"Flags"}});
  out.push_back({"FaceRecord",
                 [] {
                   auto* e = new AcDbFaceRecord(1, 2, 3, 4);
                   e->makeEdgeInvisibleAt(1);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbFaceRecord::schema()}; },
                 {"Flags", "Position"}});
  out.push_back({"Spline",
                 [] {
                   auto* e = new AcDbSpline;
                   // Control points in a tilted plane: a planar spline with that normal.
                   AcGeVector3d u = kTilted.perpVector(), v = kTilted.crossProduct(u);
                   AcGePoint3dArray cps;
                   for (int i = 0; i < 5; ++i) cps.push_back(AcGePoint3d(1, 1, 1) + u * i + v * (i % 2));
                   EXPECT_EQ(e->setNurbsData(3, true, false, false, cps, {0, 0, 0, 0, 0.5, 1, 1, 1, 1},
                                             {1, 0.5, 2, 0.5, 1}, 1e-9, 1e-8),
                             Acad::eOk);
                   EXPECT_EQ(e->setFitData({cps[0], cps[2], cps[4]}, 3, 0.01, u, v), Acad::eOk);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbSpline::schema()}; },
                 {"Degree"}});
  out.push_back({"Text",
                 [] {
                   auto* e = new AcDbText(AcGePoint3d(1, 2, 3), u"界址点 J1 测量", AcDbObjectId::kNull, 3.5, 0.5);
                   e->setTextStyleName(u"仿宋");
                   e->setThickness(1);
                   e->setWidthFactor(0.8);
                   e->setOblique(0.2);
                   e->mirroredInX(true);
                   e->mirroredInY(true);
                   e->setHorizontalMode(AcDb::kTextRight);
                   e->setVerticalMode(AcDb::kTextTop);
                   e->setAlignmentPoint(AcGePoint3d(9, 8, 7));
                   e->setNormal(kTilted);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbText::schema(), &AcDbText::alignmentSchema()}; },
                 {}});
  out.push_back({"Attribute",
                 [] {
                   auto* e = new AcDbAttribute(AcGePoint3d(1, 2, 3), u"二号井", u"井号");
                   e->setHeight(2.5);
                   e->setRotation(0.5);
                   e->setTextStyleName(u"宋体");
                   e->setThickness(1);
                   e->setWidthFactor(0.8);
                   e->setOblique(0.2);
                   e->mirroredInX(true);
                   e->setHorizontalMode(AcDb::kTextCenter);
                   e->setVerticalMode(AcDb::kTextVertMid);
                   e->setAlignmentPoint(AcGePoint3d(9, 8, 7));
                   e->setNormal(kTilted);
                   e->setInvisible(true);
                   e->setFieldLength(12);
                   e->setLockPositionInBlock(true);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbText::schema(), &AcDbAttribute::schema()}; },
                 {}});
  out.push_back({"AttributeDefinition",
                 [] {
                   auto* e = new AcDbAttributeDefinition(AcGePoint3d(1, 2, 3), u"默认", u"编号", u"请输入编号");
                   e->setHeight(2.5);
                   e->setRotation(0.5);
                   e->setTextStyleName(u"宋体");
                   e->setThickness(1);
                   e->setWidthFactor(0.8);
                   e->setOblique(0.2);
                   e->mirroredInY(true);
                   e->setHorizontalMode(AcDb::kTextMid);
                   e->setVerticalMode(AcDb::kTextBottom);
                   e->setAlignmentPoint(AcGePoint3d(9, 8, 7));
                   e->setNormal(kTilted);
                   e->setConstant(true);
                   e->setVerifiable(true);
                   e->setPreset(true);
                   e->setFieldLength(12);
                   e->setLockPositionInBlock(true);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbText::schema(), &AcDbAttributeDefinition::schema()}; },
                 {}});
  out.push_back({"MText",
                 [] {
                   auto* e = new AcDbMText;
                   // Long enough for three chunks, with a character outside
                   // the basic plane right where a chunk would end.
                   std::u16string text;
                   for (int i = 0; i < 249; ++i) text += u'界';
                   text += u"\U0002000B";
                   for (int i = 0; i < 300; ++i) text += (i % 50 == 49) ? u"\\P" : u"址";
                   e->setContents(text.c_str());
                   e->setLocation(AcGePoint3d(1, 2, 3));
                   e->setTextHeight(3.5);
                   e->setWidth(40);
                   e->setHeight(20);
                   e->setAttachment(AcDbMText::kMiddleCenter);
                   e->setFlowDirection(AcDbMText::kTtoB);
                   e->setTextStyleName(u"黑体");
                   e->setNormal(kTilted);
                   e->setRotation(0.75);
                   e->setActualExtents(38.5, 17.25);
                   e->setLineSpacingStyle(AcDbMText::kExactly);
                   e->setLineSpacingFactor(1.5);
                   e->setBackgroundFill(true);
                   e->setUseBackgroundColor(true);
                   AcCmColor bg;
                   bg.setRGB(200, 100, 50);
                   bg.setNames(u"橙", u"色册");
                   e->setBackgroundFillColor(bg);
                   e->setBackgroundScaleFactor(2.0);
                   e->setBackgroundTransparency(AcCmTransparency(100));
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbMText::schema()}; },
                 {}});
  out.push_back({"BlockReference",
                 [] {
                   auto* e = new AcDbBlockReference;
                   e->setBlockName(u"井盖");
                   e->setPosition(AcGePoint3d(1, 2, 3));
                   e->setScaleFactors(AcGeScale3d(2, -3, 4));
                   e->setRotation(0.5);
                   e->setNormal(kTilted);
                   editGroup(e, integer(70, 2));
                   editGroup(e, integer(71, 3));
                   editGroup(e, real(44, 5));
                   editGroup(e, real(45, 6));
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbBlockReference::schema()}; },
                 {}});
  out.push_back({"MInsertBlock",
                 [] {
                   auto* e = new AcDbMInsertBlock(AcGePoint3d(1, 2, 3), AcDbObjectId::kNull, 4, 5, 1.5, 2.5);
                   e->setBlockName(u"树");
                   e->setScaleFactors(AcGeScale3d(2, 3, 4));
                   e->setRotation(0.5);
                   e->setNormal(kTilted);
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbMInsertBlock::schema()}; },
                 {}});
  out.push_back({"Hatch", [] { return filledHatch(); },
                 [] { return V{&AcDbEntity::schema(), &AcDbHatch::schema()}; },
                 {}});
  out.push_back({"Region",
                 [] {
                   Acad::ErrorStatus es;
                   auto e = readEntity(AcDbRegion::desc(),
                                       {str(100, u"AcDbEntity"), str(8, u"0"), str(100, u"AcDbModelerGeometry"),
                                        integer(70, 1), str(1, u"ACIS data line one"), str(3, u"and more")},
                                       &es);
                   EXPECT_EQ(es, Acad::eOk);
                   AcDbRegion::Edge a, b, c;
                   a.start = {0, 0}, a.end = {4, 0};
                   b.isArc = true, b.center = {4, 2}, b.radius = 2, b.startAngle = -kPi / 2, b.endAngle = kPi / 2;
                   c.start = {4, 4}, c.end = {0, 0};
                   auto* r = static_cast<AcDbRegion*>(e.release());
                   r->setNormal(kTilted);
                   r->appendLoop({a, b, c});
                   return withCommon(r);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbRegion::modelerSchema(), &AcDbRegion::schema()}; },
                 {}});
  out.push_back({"RasterImage",
                 [] {
                   auto* e = new AcDbRasterImage;
                   e->setImageSize(AcGeVector2d(640, 480));
                   e->setOrientation(AcGePoint3d(1, 2, 3), AcGeVector3d(64, 0, 0), AcGeVector3d(0, 48, 1));
                   e->setImageDefId(someId(3));
                   e->setReactorId(someId(4));
                   e->setDisplayOpt(AcDbRasterImage::kTransparent, true);
                   e->setClipped(true);
                   e->setBrightness(60);
                   e->setContrast(40);
                   e->setFade(10);
                   e->setClipBoundary(AcDbRasterImage::kPoly, {{-0.5, -0.5}, {100, 20}, {50, 200}});
                   e->setClipInverted(true);
                   editGroup(e, integer(90, 1));
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbRasterImage::schema()}; },
                 {}});
  out.push_back({"Wipeout",
                 [] {
                   auto* e = new AcDbWipeout;
                   e->setFrom({{1, 1}, {10, 1}, {10, 5}, {1, 5}});
                   e->setDisplayOpt(AcDbRasterImage::kTransparent, true);
                   e->setImageDefId(someId(5));
                   e->setReactorId(someId(6));
                   e->setBrightness(60);
                   e->setContrast(40);
                   e->setFade(10);
                   e->setClipInverted(true);
                   editGroup(e, integer(90, 1));
                   editGroup(e, point(12, 0, 5, 1));
                   return withCommon(e);
                 },
                 [] { return V{&AcDbEntity::schema(), &AcDbWipeout::schema()}; },
                 {"ImageSize"}});
  out.push_back({"SequenceEnd", [] { return withCommon(new AcDbSequenceEnd); },
                 [] { return V{&AcDbEntity::schema()}; },
                 {}});
  return out;
}

void PrintTo(const Case& c, std::ostream* os) { *os << c.name; }

class EntityRoundTrip : public ::testing::TestWithParam<Case> {};

TEST_P(EntityRoundTrip, EveryFieldSurvivesBothFilers) {
  const Case& c = GetParam();
  std::unique_ptr<AcDbEntity> orig(c.make());
  ASSERT_NE(orig, nullptr);
  AcRxClass* cls = orig->isA();
  ASSERT_NE(cls->dxfName(), std::u16string()) << "registered without a DXF name";

  // Every field of every part holds something other than its default, so
  // that the round trip below proves each one; names are unique.
  std::set<std::string> names;
  for (const ClassSchema* s : c.parts()) {
    for (const zepk::db::Field& fd : s->fields()) {
      if (fd.customDxfOut) continue;
      EXPECT_TRUE(names.insert(fd.name).second) << "name twice: " << fd.name;
      if (c.notFilled.count(fd.name)) continue;
      EXPECT_FALSE(fd.isDefault(orig.get())) << c.name << ": " << fd.name << " holds its default";
    }
  }

  // DXF, as a file writes it (defaults left out).
  MemoryDxfFiler dxf(AcDb::kFileFiler);
  ASSERT_EQ(orig->dxfOutFields(&dxf), Acad::eOk);
  // The reader finds the class from the DXF name and the groups.
  EXPECT_EQ(zepk::db::entityClassFor(cls->dxfName(), dxf.items()), cls);
  std::unique_ptr<AcDbEntity> fromDxf(AcDbEntity::cast(cls->create()));
  ASSERT_NE(fromDxf, nullptr);
  dxf.rewind();
  ASSERT_EQ(fromDxf->dxfInFields(&dxf), Acad::eOk);
  EXPECT_TRUE(dxf.atEOF()) << "stopped at group " << dxf.peekCode();
  EXPECT_TRUE(sameStream(dwgOf(orig.get()), dwgOf(fromDxf.get())));
  // Read again and written, the groups are the same.
  MemoryDxfFiler again(AcDb::kFileFiler);
  fromDxf->dxfOutFields(&again);
  EXPECT_EQ(codesOf(again), codesOf(dxf));

  // DWG-style stream.
  MemoryDwgFiler dwg = dwgOf(orig.get());
  std::unique_ptr<AcDbEntity> fromDwg(AcDbEntity::cast(cls->create()));
  dwg.rewind();
  ASSERT_EQ(fromDwg->dwgInFields(&dwg), Acad::eOk);
  EXPECT_TRUE(sameStream(dwg, dwgOf(fromDwg.get())));

  // entget's groups (with defaults) read back the same.
  MemoryDxfFiler bag(AcDb::kBagFiler);
  orig->dxfOutFields(&bag);
  std::unique_ptr<AcDbEntity> fromBag(AcDbEntity::cast(cls->create()));
  bag.rewind();
  ASSERT_EQ(fromBag->dxfInFields(&bag), Acad::eOk);
  EXPECT_TRUE(sameStream(dwgOf(orig.get()), dwgOf(fromBag.get())));
}

INSTANTIATE_TEST_SUITE_P(AllClasses, EntityRoundTrip, ::testing::ValuesIn(cases()),
                         [](const ::testing::TestParamInfo<Case>& info) { return info.param.name; });

// ---------------------------------------------------------------- lightweight polyline

TEST(LwPolyline, VertexOperationsKeepTheArraysTogether) {
  AcDbPolyline pl;
  EXPECT_EQ(pl.addVertexAt(0, AcGePoint2d(1, 1)), Acad::eOk);
  EXPECT_EQ(pl.addVertexAt(99, AcGePoint2d(3, 3), 0.5), Acad::eOk);  // past the end: appended
  EXPECT_EQ(pl.addVertexAt(1, AcGePoint2d(2, 2), 0.0, 0.1, 0.2), Acad::eOk);
  ASSERT_EQ(pl.numVerts(), 3u);
  AcGePoint2d p;
  double b = 0, s = 0, e = 0;
  pl.getPointAt(1, p);
  EXPECT_EQ(p, AcGePoint2d(2, 2));
  pl.getBulgeAt(2, b);
  EXPECT_EQ(b, 0.5);
  pl.getWidthsAt(1, s, e);
  EXPECT_EQ(s, 0.1);
  EXPECT_EQ(e, 0.2);

  // Indices at or past the end are refused and change nothing.
  EXPECT_EQ(pl.getPointAt(3, p), Acad::eInvalidIndex);
  EXPECT_EQ(pl.setPointAt(3, AcGePoint2d(9, 9)), Acad::eInvalidIndex);
  EXPECT_EQ(pl.setBulgeAt(5, 1.0), Acad::eInvalidIndex);
  EXPECT_EQ(pl.setWidthsAt(3, 1, 1), Acad::eInvalidIndex);
  EXPECT_EQ(pl.removeVertexAt(3), Acad::eInvalidIndex);
  EXPECT_EQ(pl.numVerts(), 3u);

  // Widths not given follow the constant width.
  pl.getWidthsAt(0, s, e);
  EXPECT_EQ(s, 0.0);
  EXPECT_EQ(pl.getConstantWidth(s), Acad::eNotApplicable);
  pl.setConstantWidth(0.3);
  pl.getWidthsAt(1, s, e);
  EXPECT_EQ(e, 0.3);
  EXPECT_EQ(pl.getConstantWidth(s), Acad::eOk);
  EXPECT_EQ(s, 0.3);

  EXPECT_EQ(pl.segType(0), AcDbPolyline::kLine);
  EXPECT_EQ(pl.segType(1), AcDbPolyline::kLine);
  EXPECT_EQ(pl.segType(2), AcDbPolyline::kEmpty);  // the last of an open polyline
  pl.setClosed(true);
  EXPECT_EQ(pl.segType(2), AcDbPolyline::kArc);
  EXPECT_FALSE(pl.isOnlyLines());

  EXPECT_EQ(pl.removeVertexAt(0), Acad::eOk);
  pl.getPointAt(0, p);
  EXPECT_EQ(p, AcGePoint2d(2, 2));
  pl.getBulgeAt(1, b);
  EXPECT_EQ(b, 0.5);

  // In world coordinates: the elevation, in the plane of the normal.
  pl.setElevation(5);
  AcGePoint3d w;
  pl.getPointAt(0, w);
  EXPECT_EQ(w, AcGePoint3d(2, 2, 5));
  pl.setNormal(AcGeVector3d(0, 0, -1));
  pl.getPointAt(0, w);
  EXPECT_EQ(w, AcGePoint3d(-2, 2, -5));
}

TEST(LwPolyline, FileGroupsPerVertex) {
  AcDbPolyline pl;
  pl.addVertexAt(0, AcGePoint2d(0, 0), 0.5);
  pl.addVertexAt(1, AcGePoint2d(1, 0), 0, 0.2, 0.3);
  MemoryDxfFiler f(AcDb::kFileFiler);
  pl.dxfOutFields(&f);
  // 90 counts; widths only where given, bulges only where not 0.
  std::vector<int> codes = codesOf(f);
  std::vector<int> own(codes.end() - 7, codes.end());
  EXPECT_EQ(own, (std::vector<int>{90, 70, 10, 42, 10, 40, 41}));
  EXPECT_EQ(groupsOf(f, 90).at(0).i, 2);
  // A file with widths on every vertex and a vertex identifier.
  Acad::ErrorStatus es;
  auto e = readEntity(AcDbPolyline::desc(),
                      {str(100, u"AcDbEntity"), str(8, u"0"), str(100, u"AcDbPolyline"), integer(90, 2),
                       integer(70, 1), point(10, 1, 2), real(40, 0.5), real(41, 0.25), integer(91, 7),
                       point(10, 3, 4), real(42, -1)},
                      &es);
  ASSERT_EQ(es, Acad::eOk);
  auto* r = AcDbPolyline::cast(e.get());
  ASSERT_EQ(r->numVerts(), 2u);
  double s = 0, w = 0, b = 0;
  Adesk::Int32 id = 0;
  r->getWidthsAt(0, s, w);
  r->getVertexIdentifierAt(0, id);
  r->getBulgeAt(1, b);
  EXPECT_EQ(s, 0.5);
  EXPECT_EQ(w, 0.25);
  EXPECT_EQ(id, 7);
  EXPECT_EQ(b, -1);
  EXPECT_TRUE(r->isClosed());
}

TEST(OldStylePolylines, VertexKindsByTheirFlags) {
  auto kindOf = [](int flags) {
    AcDb2dVertex v;
    editGroup(&v, integer(70, flags));
    return v.vertexType();
  };
  EXPECT_EQ(kindOf(0), AcDb::k2dVertex);
  EXPECT_EQ(kindOf(1 | 2), AcDb::k2dCurveFitVertex);
  EXPECT_EQ(kindOf(8), AcDb::k2dSplineFitVertex);
  EXPECT_EQ(kindOf(16), AcDb::k2dSplineCtlVertex);
  AcDb2dVertex v;
  v.setVertexType(AcDb::k2dSplineCtlVertex);
  v.useTangent();
  EXPECT_EQ(v.flags(), 16 | 2);
  v.setVertexType(AcDb::k2dVertex);
  EXPECT_EQ(v.flags(), 2);
  AcDb2dPolyline pl;
  pl.setPolyType(AcDb::k2dQuadSplinePoly);
  EXPECT_EQ(pl.flags() & 6, 4);
  EXPECT_EQ(pl.curveType(), 5);
  EXPECT_EQ(pl.polyType(), AcDb::k2dQuadSplinePoly);
  pl.setPolyType(AcDb::k2dFitCurvePoly);
  EXPECT_EQ(pl.flags() & 6, 2);
  EXPECT_EQ(pl.curveType(), 0);
  AcDb3dPolylineVertex v3;
  EXPECT_EQ(v3.flags(), 32);  // every 3D vertex says so
  v3.setVertexType(AcDb::k3dFitVertex);
  EXPECT_EQ(v3.flags(), 32 | 8);
}

// ---------------------------------------------------------------- hatch

TEST(Hatch, LoopsOfBothKindsAsFilesHoldThem) {
  std::unique_ptr<AcDbHatch> h(filledHatch());
  MemoryDxfFiler f(AcDb::kFileFiler);
  ASSERT_EQ(h->dxfOutFields(&f), Acad::eOk);
  // The polyline loop with bulges: 72 1, a 42 after each vertex.
  std::vector<DxfItem> flags = groupsOf(f, 92);
  ASSERT_EQ(flags.size(), 2u);
  EXPECT_EQ(flags[0].i, AcDbHatch::kPolyline | AcDbHatch::kExternal);
  EXPECT_EQ(groupsOf(f, 42).size(), 4u + 4u);  // bulges, and the spline's weights
  // Angles of edges in degrees: the clockwise arc as -90 to 90.
  std::vector<DxfItem> starts = groupsOf(f, 50);
  ASSERT_EQ(starts.size(), 2u);
  EXPECT_NEAR(starts[0].p[0], -90.0, 1e-12);
  EXPECT_NEAR(groupsOf(f, 53).at(0).p[0], 45.0, 1e-12);
  // Each loop's sources: 97 and 330s.
  std::vector<DxfItem> sources = groupsOf(f, 330);
  ASSERT_GE(sources.size(), 3u);  // the owner, then two sources
  EXPECT_EQ(sources[1].id, someId(1));

  f.rewind();
  AcDbHatch back;
  ASSERT_EQ(back.dxfInFields(&f), Acad::eOk);
  ASSERT_EQ(back.numLoops(), 2);
  const AcDbHatch::Loop& edges = back.loopAt(1);
  ASSERT_EQ(edges.edges.size(), 4u);
  EXPECT_EQ(edges.edges[1].type, AcDbHatch::kCirArc);
  EXPECT_FALSE(edges.edges[1].ccw);
  EXPECT_NEAR(edges.edges[1].startAngle, -kPi / 2, 1e-12);
  const AcDbHatch::Edge& spl = edges.edges[3];
  EXPECT_EQ(spl.weights, (std::vector<double>{1, 0.5, 0.5, 1}));
  EXPECT_EQ(spl.fitPoints.size(), 2u);
  EXPECT_TRUE(spl.hasEndTangent);
  AcDbObjectIdArray ids;
  back.getAssocObjIdsAt(0, ids);
  EXPECT_EQ(ids, (AcDbObjectIdArray{someId(1), someId(2)}));
  // The gradient's groups stand, but the hatch is a pattern (450 0).
  EXPECT_FALSE(back.isGradient());
  EXPECT_EQ(back.patternName(), u"ANSI31");
  EXPECT_EQ(back.gradientName(), u"CYLINDER");
  back.setHatchObjectType(AcDbHatch::kGradientObject);
  EXPECT_TRUE(back.isGradient());
  EXPECT_TRUE(back.isSolidFill());
  EXPECT_EQ(back.gradientColors().at(0).colorIndex, 5);
  EXPECT_EQ(back.gradientColors().at(1).colorIndex, -1);  // none given
  EXPECT_EQ(back.numPatternDefinitions(), 2);
  EXPECT_EQ(back.seedPoints().size(), 2u);
}

TEST(Hatch, SplineEdgeWithoutFitCountBeforeTheSources) {
  // An older file: the spline edge has no fit data, and the loop's 97
  // follows at once; it is the loop's count of sources, not the edge's.
  std::vector<DxfItem> items = {str(100, u"AcDbEntity"), str(8, u"0"), str(100, u"AcDbHatch"),
                                point(10, 0, 0), point(210, 0, 0, 1), str(2, u"SOLID"), integer(70, 1),
                                integer(71, 1), integer(91, 1), integer(92, 0), integer(93, 1), integer(72, 4),
                                integer(94, 1), integer(73, 0), integer(74, 0), integer(95, 4), integer(96, 2),
                                real(40, 0), real(40, 0), real(40, 1), real(40, 1), point(10, 0, 0),
                                point(10, 1, 1), integer(97, 1), ref(330, someId(7)), integer(75, 0),
                                integer(76, 1), integer(98, 0)};
  Acad::ErrorStatus es;
  auto e = readEntity(AcDbHatch::desc(), items, &es);
  ASSERT_EQ(es, Acad::eOk);
  auto* h = AcDbHatch::cast(e.get());
  ASSERT_EQ(h->numLoops(), 1);
  EXPECT_FALSE(h->loopAt(0).edges.at(0).hasFitCount);
  EXPECT_EQ(h->loopAt(0).sourceIds, (AcDbObjectIdArray{someId(7)}));
  // Written back the same way.
  MemoryDxfFiler out(AcDb::kFileFiler);
  h->dxfOutFields(&out);
  EXPECT_EQ(groupsOf(out, 97).size(), 1u);
  // A loop that breaks off is an error, not a guess.
  items.erase(items.begin() + 12);  // the spline's degree
  readEntity(AcDbHatch::desc(), items, &es);
  EXPECT_EQ(es, Acad::eBadDxfSequence);
}

// ---------------------------------------------------------------- texts

TEST(Text, TwoMarkersAndTheAttributesVariant) {
  AcDbText t(AcGePoint3d(1, 2, 0), u"测试", AcDbObjectId::kNull, 2.5);
  t.setVerticalMode(AcDb::kTextTop);
  t.setHorizontalMode(AcDb::kTextCenter);
  t.setAlignmentPoint(AcGePoint3d(3, 2, 0));
  MemoryDxfFiler f(AcDb::kFileFiler);
  t.dxfOutFields(&f);
  std::vector<std::u16string> markers;
  for (const DxfItem& it : f.items())
    if (it.code == 100) markers.push_back(it.s);
  EXPECT_EQ(markers, (std::vector<std::u16string>{u"AcDbEntity", u"AcDbText", u"AcDbText"}));
  EXPECT_EQ(f.items().back().code, 73);
  EXPECT_EQ(f.items()[f.items().size() - 2].code, 100);
  EXPECT_EQ(groupsOf(f, 1).at(0).s, u"测试");

  // An attribute keeps its vertical alignment as 74 in its own part, and
  // its lock flag after a version 280 of its own.
  AcDbAttribute a(AcGePoint3d(0, 0, 0), u"值", u"tag");
  EXPECT_EQ(a.tag(), u"TAG");
  EXPECT_EQ(a.setTag(u"with space"), Acad::eInvalidInput);
  a.setVerticalMode(AcDb::kTextBottom);
  a.setLockPositionInBlock(true);
  MemoryDxfFiler g(AcDb::kFileFiler);
  a.dxfOutFields(&g);
  std::vector<int> codes = codesOf(g);
  auto marker = std::find_if(g.items().begin(), g.items().end(),
                             [](const DxfItem& it) { return it.code == 100 && it.s == u"AcDbAttribute"; });
  ASSERT_NE(marker, g.items().end());
  size_t at = static_cast<size_t>(marker - g.items().begin());
  std::vector<int> own(codes.begin() + static_cast<long>(at) + 1, codes.end());
  EXPECT_EQ(own, (std::vector<int>{280, 2, 70, 74, 280}));
  EXPECT_EQ(groupsOf(g, 73).size(), 0u);
  g.rewind();
  AcDbAttribute back;
  ASSERT_EQ(back.dxfInFields(&g), Acad::eOk);
  EXPECT_TRUE(back.lockPositionInBlock());
  EXPECT_EQ(back.verticalMode(), AcDb::kTextBottom);
  // Without the version (an older file) the one 280 is the lock flag.
  Acad::ErrorStatus es;
  auto old = readEntity(AcDbAttribute::desc(),
                        {str(100, u"AcDbEntity"), str(8, u"0"), str(100, u"AcDbText"), point(10, 0, 0),
                         real(40, 1), str(1, u"x"), str(100, u"AcDbAttribute"), str(2, u"T"), integer(70, 0),
                         integer(280, 1)},
                        &es);
  ASSERT_EQ(es, Acad::eOk);
  EXPECT_TRUE(AcDbAttribute::cast(old.get())->lockPositionInBlock());
}

TEST(MText, ContentsInChunksThatNeverSplitACharacter) {
  AcDbMText m;
  std::u16string text(249, u'测');
  text += u"\U0002000B";  // two units, at 249 and 250
  text += std::u16string(10, u'量');
  m.setContents(text.c_str());
  MemoryDxfFiler f(AcDb::kFileFiler);
  m.dxfOutFields(&f);
  std::vector<DxfItem> threes = groupsOf(f, 3), ones = groupsOf(f, 1);
  ASSERT_EQ(threes.size(), 1u);
  ASSERT_EQ(ones.size(), 1u);
  EXPECT_EQ(threes[0].s.size(), 249u);
  EXPECT_EQ(threes[0].s + ones[0].s, text);
  f.rewind();
  AcDbMText back;
  ASSERT_EQ(back.dxfInFields(&f), Acad::eOk);
  EXPECT_EQ(back.contents(), text);
  // Exactly 250 units fit in group 1 alone.
  m.setContents(std::u16string(250, u'x').c_str());
  MemoryDxfFiler g(AcDb::kFileFiler);
  m.dxfOutFields(&g);
  EXPECT_EQ(groupsOf(g, 3).size(), 0u);
}

// ---------------------------------------------------------------- colours

TEST(Colours, ByLayerByBlockAndTrueColour) {
  AcCmColor c;
  EXPECT_TRUE(c.isByLayer());
  EXPECT_EQ(c.colorIndex(), 256);
  EXPECT_EQ(c.setColorIndex(0), Acad::eOk);
  EXPECT_TRUE(c.isByBlock());
  EXPECT_EQ(c.setColorIndex(300), Acad::eInvalidInput);
  EXPECT_TRUE(c.isByBlock());
  c.setColorIndex(1);
  EXPECT_EQ(c.colorMethod(), AcCmEntityColor::kByACI);
  EXPECT_EQ(c.red(), 255);
  EXPECT_EQ(c.green(), 0);
  c.setRGB(250, 5, 5);
  EXPECT_EQ(c.colorMethod(), AcCmEntityColor::kByColor);
  EXPECT_EQ(c.colorIndex(), 1);  // the nearest index
  EXPECT_EQ(c.green(), 5);

  // In a file: ByLayer leaves 62 out, ByBlock is 0, a true colour gives
  // the nearest index and 420, a book colour 430 as well.
  auto groups = [](const AcCmColor& color) {
    AcDbLine l;
    l.setColor(color);
    MemoryDxfFiler f(AcDb::kFileFiler);
    l.dxfOutFields(&f);
    return f.items();
  };
  auto has = [](const std::vector<DxfItem>& items, int code) {
    return std::any_of(items.begin(), items.end(), [&](const DxfItem& it) { return it.code == code; });
  };
  AcCmColor byLayer, byBlock, rgb;
  byBlock.setByBlock();
  rgb.setRGB(0x12, 0x34, 0x56);
  rgb.setNames(u"海蓝", u"色册");
  EXPECT_FALSE(has(groups(byLayer), 62));
  std::vector<DxfItem> b = groups(byBlock);
  ASSERT_TRUE(has(b, 62));
  EXPECT_FALSE(has(b, 420));
  std::vector<DxfItem> t = groups(rgb);
  ASSERT_TRUE(has(t, 420));
  for (const DxfItem& it : t) {
    if (it.code == 420) {
      EXPECT_EQ(it.i, 0x123456);
    }
    if (it.code == 430) {
      EXPECT_EQ(it.s, u"色册$海蓝");
    }
    if (it.code == 62) {
      EXPECT_EQ(it.i, AcCmEntityColor::lookUpACI(0x12, 0x34, 0x56));
    }
  }
  Acad::ErrorStatus es;
  auto back = readEntity(AcDbLine::desc(), {str(100, u"AcDbEntity"), str(8, u"0"), integer(62, 5),
                                            integer(420, 0x123456), str(430, u"色册$海蓝"), str(100, u"AcDbLine"),
                                            point(10, 0, 0), point(11, 1, 1)},
                         &es);
  ASSERT_EQ(es, Acad::eOk);
  EXPECT_EQ(back->color(), rgb);
  EXPECT_EQ(back->colorIndex(), AcCmEntityColor::lookUpACI(0x12, 0x34, 0x56));

  AcCmTransparency tr(51);
  EXPECT_EQ(tr.serializeOut(), 0x02000033u);
  AcCmTransparency blockT;
  blockT.setMethod(AcCmTransparency::kByBlock);
  EXPECT_EQ(blockT.serializeOut(), 0x01000000u);
  AcCmTransparency in;
  in.serializeIn(0x02000033u);
  EXPECT_EQ(in, tr);
  AcDbLine l;
  EXPECT_EQ(l.setLineWeight(static_cast<AcDb::LineWeight>(7)), Acad::eInvalidInput);
  EXPECT_EQ(l.setLineWeight(AcDb::kLnWtByLwDefault), Acad::eOk);
  EXPECT_EQ(l.setLinetypeScale(0), Acad::eInvalidInput);
}

// ---------------------------------------------------------------- groups the classes do not model

TEST(UnknownGroups, KeptAndWrittenBackInPlace) {
  // A material (347) after the layer, a group no line has between its points.
  std::vector<DxfItem> items = {str(100, u"AcDbEntity"), str(8, u"L1"),     ref(347, someId(9)),
                                str(100, u"AcDbLine"),   point(10, 1, 2, 3), integer(94, 5),
                                point(11, 4, 5, 6),      str(999, u"note")};
  Acad::ErrorStatus es;
  auto line = readEntity(AcDbLine::desc(), items, &es);
  ASSERT_EQ(es, Acad::eOk);
  EXPECT_EQ(AcDbLine::cast(line.get())->endPoint(), AcGePoint3d(4, 5, 6));
  MemoryDxfFiler out(AcDb::kFileFiler);
  line->dxfOutFields(&out);
  std::vector<int> codes = codesOf(out);
  EXPECT_EQ(codes, (std::vector<int>{330, 100, 8, 347, 100, 10, 94, 11, 999}));
  // They survive a copy and an undo record, which use the other filer.
  MemoryDwgFiler dwg = dwgOf(line.get());
  AcDbLine copy;
  dwg.rewind();
  copy.dwgInFields(&dwg);
  MemoryDxfFiler again(AcDb::kFileFiler);
  copy.dxfOutFields(&again);
  EXPECT_EQ(codesOf(again), codes);
  // A group of a known code standing twice is kept as well.
  items.insert(items.begin() + 6, point(10, 9, 9, 9));
  auto twice = readEntity(AcDbLine::desc(), items, &es);
  ASSERT_EQ(es, Acad::eOk);
  EXPECT_EQ(AcDbLine::cast(twice.get())->startPoint(), AcGePoint3d(1, 2, 3));
  MemoryDxfFiler twiceOut(AcDb::kFileFiler);
  twice->dxfOutFields(&twiceOut);
  EXPECT_EQ(groupsOf(twiceOut, 10).size(), 2u);
}

TEST(UnknownGroups, AFileIsWrittenBackWithTheGroupsItHeld) {
  // A default written out (thickness 0, a vertex's tangent) stays; a
  // required group the file left out (the width of a text box) stays out
  // until it gets a value.
  Acad::ErrorStatus es;
  auto line = readEntity(AcDbLine::desc(), {str(100, u"AcDbEntity"), str(8, u"0"), str(100, u"AcDbLine"),
                                            real(39, 0), point(10, 0, 0), point(11, 1, 1)},
                         &es);
  ASSERT_EQ(es, Acad::eOk);
  MemoryDxfFiler out(AcDb::kFileFiler);
  line->dxfOutFields(&out);
  EXPECT_EQ(groupsOf(out, 39).size(), 1u);
  // entget and entmod in between change nothing of that.
  MemoryDxfFiler bag(AcDb::kBagFiler);
  line->dxfOutFields(&bag);
  bag.rewind();
  ASSERT_EQ(line->dxfInFields(&bag), Acad::eOk);
  MemoryDxfFiler again(AcDb::kFileFiler);
  line->dxfOutFields(&again);
  EXPECT_EQ(codesOf(again), codesOf(out));
  auto mtext = readEntity(AcDbMText::desc(), {str(100, u"AcDbEntity"), str(8, u"0"), str(100, u"AcDbMText"),
                                              point(10, 0, 0), real(40, 2.5), integer(71, 1), integer(72, 1),
                                              str(1, u"无宽度")},
                          &es);
  ASSERT_EQ(es, Acad::eOk);
  MemoryDxfFiler m(AcDb::kFileFiler);
  mtext->dxfOutFields(&m);
  EXPECT_TRUE(groupsOf(m, 41).empty());
  AcDbMText::cast(mtext.get())->setWidth(30);
  MemoryDxfFiler m2(AcDb::kFileFiler);
  mtext->dxfOutFields(&m2);
  EXPECT_EQ(groupsOf(m2, 41).size(), 1u);
  // Made here, a line writes what the schema says: no thickness of 0.
  AcDbLine fresh(AcGePoint3d(), AcGePoint3d(1, 0, 0));
  MemoryDxfFiler f(AcDb::kFileFiler);
  fresh.dxfOutFields(&f);
  EXPECT_TRUE(groupsOf(f, 39).empty());
}

TEST(UnknownGroups, ListsWithoutMarkersAndBadSequences) {
  // As entmake gets them: no markers, groups in any order.
  Acad::ErrorStatus es;
  auto line = readEntity(AcDbLine::desc(), {point(11, 4, 5, 6), str(8, u"边界"), integer(62, 3), point(10, 1, 2, 3)},
                         &es);
  ASSERT_EQ(es, Acad::eOk);
  EXPECT_EQ(line->layer(), u"边界");
  EXPECT_EQ(line->colorIndex(), 3);
  EXPECT_EQ(AcDbLine::cast(line.get())->startPoint(), AcGePoint3d(1, 2, 3));
  // Another class's marker is refused.
  readEntity(AcDbLine::desc(), {str(100, u"AcDbEntity"), str(8, u"0"), str(100, u"AcDbCircle"), point(10, 0, 0)}, &es);
  EXPECT_EQ(es, Acad::eBadDxfSequence);
  // A group of the wrong kind for its field.
  readEntity(AcDbLine::desc(), {str(100, u"AcDbEntity"), str(8, u"0"), str(100, u"AcDbLine"), str(10, u"x")}, &es);
  EXPECT_EQ(es, Acad::eInvalidResBuf);
  // Too much that no class knows: the reader is told to keep it whole.
  std::vector<DxfItem> junk = {str(100, u"AcDbEntity"), str(8, u"0"), str(100, u"AcDbLine")};
  for (size_t i = 0; i <= zepk::db::kMaxExtraGroups; ++i) junk.push_back(integer(94, static_cast<int64_t>(i)));
  readEntity(AcDbLine::desc(), junk, &es);
  EXPECT_EQ(es, Acad::eMakeMeProxy);
}

TEST(EntityClasses, TheReaderTellsPolylinesVerticesAndInsertsApart) {
  using zepk::db::entityClassFor;
  EXPECT_EQ(entityClassFor(u"POLYLINE", {str(100, u"AcDbEntity"), str(100, u"AcDb3dPolyline")}),
            AcDb3dPolyline::desc());
  EXPECT_EQ(entityClassFor(u"VERTEX", {str(100, u"AcDbVertex"), str(100, u"AcDbPolyFaceMeshVertex")}),
            AcDbPolyFaceMeshVertex::desc());
  EXPECT_EQ(entityClassFor(u"INSERT", {str(100, u"AcDbMInsertBlock")}), AcDbMInsertBlock::desc());
  // Files without markers: by the flags.
  EXPECT_EQ(entityClassFor(u"POLYLINE", {integer(70, 64)}), AcDbPolyFaceMesh::desc());
  EXPECT_EQ(entityClassFor(u"POLYLINE", {integer(70, 16 | 1)}), AcDbPolygonMesh::desc());
  EXPECT_EQ(entityClassFor(u"POLYLINE", {integer(70, 8)}), AcDb3dPolyline::desc());
  EXPECT_EQ(entityClassFor(u"POLYLINE", {integer(70, 1)}), AcDb2dPolyline::desc());
  EXPECT_EQ(entityClassFor(u"VERTEX", {integer(70, 128)}), AcDbFaceRecord::desc());
  EXPECT_EQ(entityClassFor(u"VERTEX", {integer(70, 192)}), AcDbPolyFaceMeshVertex::desc());
  EXPECT_EQ(entityClassFor(u"VERTEX", {integer(70, 64)}), AcDbPolygonMeshVertex::desc());
  EXPECT_EQ(entityClassFor(u"VERTEX", {integer(70, 32 | 16)}), AcDb3dPolylineVertex::desc());
  EXPECT_EQ(entityClassFor(u"VERTEX", {integer(70, 8)}), AcDb2dVertex::desc());
  EXPECT_EQ(entityClassFor(u"INSERT", {integer(70, 3)}), AcDbMInsertBlock::desc());
  EXPECT_EQ(entityClassFor(u"INSERT", {}), AcDbBlockReference::desc());
  EXPECT_EQ(entityClassFor(u"LWPOLYLINE", {}), AcDbPolyline::desc());
  EXPECT_EQ(entityClassFor(u"NO SUCH THING", {}), nullptr);
}

// ---------------------------------------------------------------- in a database

// The entity's id after adding it and closing it.
AcDbObjectId addClosed(AcDbDatabase& db, AcDbEntity* e) {
  AcDbObjectId id;
  EXPECT_EQ(db.addAcDbObject(id, e), Acad::eOk);
  e->close();
  return id;
}

TEST(InADatabase, UndoPutsTheGeometryBack) {
  AcDbDatabase db;
  AcDbObjectId id = addClosed(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0)));
  AcDbObjectId plId;
  {
    auto* pl = new AcDbPolyline;
    pl->addVertexAt(0, AcGePoint2d(0, 0));
    pl->addVertexAt(1, AcGePoint2d(5, 0), 1.0);
    plId = addClosed(db, pl);
  }
  AcDbObjectId pl2dId = addClosed(db, new AcDb2dPolyline(AcDb::k2dSimplePoly, {{0, 0, 0}, {1, 0, 0}}));
  AcDbObjectId addedVertex;
  db.beginUndoMark();
  {
    AcDbObjectPointer<AcDb2dPolyline> p(pl2dId, AcDb::kForWrite);
    ASSERT_EQ(p->appendVertex(addedVertex, new AcDb2dVertex(AcGePoint3d(2, 2, 0))), Acad::eOk);
    p->makeClosed();
  }
  {
    AcDbObjectPointer<AcDbLine> l(id, AcDb::kForWrite);
    ASSERT_EQ(l.openStatus(), Acad::eOk);
    l->setStartPoint(AcGePoint3d(9, 9, 9));
    l->setLayer(u"改过");
    AcDbObjectPointer<AcDbPolyline> pl(plId, AcDb::kForWrite);
    pl->removeVertexAt(0);
    pl->setBulgeAt(0, 0.0);
  }
  db.endUndoMark();
  ASSERT_TRUE(db.undoBack());
  AcDbObjectPointer<AcDbLine> l(id, AcDb::kForRead);
  EXPECT_EQ(l->startPoint(), AcGePoint3d(0, 0, 0));
  EXPECT_EQ(l->layer(), u"0");
  // A vertex appended under the mark is taken back with the polyline's list.
  EXPECT_TRUE(addedVertex.isErased());
  AcDbObjectPointer<AcDb2dPolyline> p2(pl2dId, AcDb::kForRead);
  EXPECT_EQ(zepk::db::subentityIds(p2.object()).size(), 2u);
  EXPECT_FALSE(p2->isClosed());
  AcDbObjectPointer<AcDbPolyline> pl(plId, AcDb::kForRead);
  ASSERT_EQ(pl->numVerts(), 2u);
  double b = 0;
  pl->getBulgeAt(1, b);
  EXPECT_EQ(b, 1.0);
}

TEST(InADatabase, VerticesAreEntitiesOwnedByThePolyline) {
  AcDbDatabase db;
  auto* pl = new AcDb2dPolyline(AcDb::k2dSimplePoly, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}, 2.0, true);
  // Not in a database yet: the vertices are the polyline's own.
  std::unique_ptr<AcDbObjectIterator> it(pl->vertexIterator());
  int n = 0;
  for (; !it->done(); it->step()) {
    EXPECT_TRUE(it->objectId().isNull());
    EXPECT_NE(it->entity(), nullptr);
    ++n;
  }
  EXPECT_EQ(n, 3);
  AcDbObjectId plId = addClosed(db, pl);
  // Closed in the database, they are in it too, owned by the polyline, with
  // a SEQEND after them.
  AcDbObjectIdArray ids;
  {
    AcDbObjectPointer<AcDb2dPolyline> p(plId, AcDb::kForRead);
    std::unique_ptr<AcDbObjectIterator> vi(p->vertexIterator());
    for (; !vi->done(); vi->step()) ids.push_back(vi->objectId());
    EXPECT_TRUE(zepk::db::hasSubentities(p.object()));
    EXPECT_EQ(zepk::db::subentityIds(p.object()), ids);
    AcDbObjectPointer<AcDb2dVertex> v(ids.at(2), AcDb::kForRead);
    ASSERT_EQ(v.openStatus(), Acad::eOk);
    EXPECT_EQ(v->ownerId(), plId);
    EXPECT_EQ(p->vertexPosition(*v.object()), AcGePoint3d(1, 1, 2));
  }
  ASSERT_EQ(ids.size(), 3u);
  AcDbObjectId seqEnd, added;
  {
    AcDbObjectPointer<AcDb2dPolyline> p(plId, AcDb::kForWrite);
    AcDbSequenceEnd* end = nullptr;
    ASSERT_EQ(p->openSequenceEnd(end, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(end->ownerId(), plId);
    seqEnd = end->objectId();
    end->close();
    // A vertex after the first one, and one at the start.
    ASSERT_EQ(p->insertVertexAt(added, ids[0], new AcDb2dVertex(AcGePoint3d(0.5, -1, 0))), Acad::eOk);
    AcDbObjectId bad;
    auto* stray = new AcDb2dVertex;
    EXPECT_EQ(p->insertVertexAt(bad, AcDbObjectId(), stray), Acad::eOk);  // at the start
  }
  {
    AcDbObjectPointer<AcDb2dPolyline> p(plId, AcDb::kForRead);
    AcDbObjectIdArray now = zepk::db::subentityIds(p.object());
    ASSERT_EQ(now.size(), 5u);
    EXPECT_EQ(now[1], ids[0]);
    EXPECT_EQ(now[2], added);
    EXPECT_EQ(now[4], ids[2]);
    // Appending needs the polyline open for write.
    auto* v = new AcDb2dVertex;
    EXPECT_EQ(AcDbObjectPointer<AcDb2dPolyline>(plId, AcDb::kForRead)->appendVertex(v), Acad::eNotOpenForWrite);
    delete v;
  }
  // Erasing the polyline erases what it owns, and unerasing brings it back.
  {
    AcDbObjectPointer<AcDb2dPolyline> p(plId, AcDb::kForWrite);
    ASSERT_EQ(p->erase(), Acad::eOk);
  }
  EXPECT_TRUE(ids[1].isErased());
  EXPECT_TRUE(seqEnd.isErased());
  {
    AcDbObjectPointer<AcDb2dPolyline> p(plId, AcDb::kForWrite, true);
    ASSERT_EQ(p->erase(false), Acad::eOk);
  }
  EXPECT_FALSE(ids[1].isErased());
  EXPECT_FALSE(seqEnd.isErased());

  // A copy through the DWG-style stream refers to the same vertices.
  AcDbObjectPointer<AcDb2dPolyline> p(plId, AcDb::kForRead);
  MemoryDwgFiler dwg = dwgOf(p.object());
  AcDb2dPolyline copy;
  dwg.rewind();
  ASSERT_EQ(copy.dwgInFields(&dwg), Acad::eOk);
  EXPECT_EQ(zepk::db::subentityIds(&copy), zepk::db::subentityIds(p.object()));
  EXPECT_EQ(zepk::db::sequenceEndId(&copy), seqEnd);
}

TEST(InADatabase, TheFileReaderHandsOverSubentities) {
  AcDbDatabase db;
  AcDbObjectId refId = addClosed(db, new AcDbBlockReference);
  AcDbObjectId att = addClosed(db, new AcDbAttribute(AcGePoint3d(), u"1", u"A"));
  AcDbObjectId vertex = addClosed(db, new AcDb2dVertex);
  AcDbObjectId end = addClosed(db, new AcDbSequenceEnd);
  AcDbObjectPointer<AcDbBlockReference> r(refId, AcDb::kForWrite);
  EXPECT_FALSE(zepk::db::hasSubentities(r.object()));  // no attributes, no SEQEND in the file
  MemoryDxfFiler none(AcDb::kFileFiler);
  r->dxfOutFields(&none);
  EXPECT_TRUE(groupsOf(none, 66).empty());
  EXPECT_EQ(zepk::db::adoptSubentity(r.object(), vertex), Acad::eWrongObjectType);
  ASSERT_EQ(zepk::db::adoptSubentity(r.object(), att), Acad::eOk);
  ASSERT_EQ(zepk::db::adoptSequenceEnd(r.object(), end), Acad::eOk);
  EXPECT_TRUE(zepk::db::hasSubentities(r.object()));
  EXPECT_EQ(zepk::db::sequenceEndId(r.object()), end);
  MemoryDxfFiler some(AcDb::kFileFiler);
  r->dxfOutFields(&some);
  ASSERT_EQ(groupsOf(some, 66).size(), 1u);
  EXPECT_EQ(groupsOf(some, 66)[0].i, 1);
  AcDbObjectPointer<AcDbAttribute> a(att, AcDb::kForRead);
  EXPECT_EQ(a->ownerId(), refId);
}

TEST(InADatabase, AppendedAttributesGetASequenceEnd) {
  AcDbDatabase db;
  AcDbObjectId refId = addClosed(db, new AcDbBlockReference(AcGePoint3d(1, 1, 0), AcDbObjectId::kNull));
  AcDbObjectPointer<AcDbBlockReference> r(refId, AcDb::kForWrite);
  AcDbObjectId attId;
  ASSERT_EQ(r->appendAttribute(attId, new AcDbAttribute(AcGePoint3d(), u"一", u"T1")), Acad::eOk);
  EXPECT_FALSE(zepk::db::sequenceEndId(r.object()).isNull());
  auto* twice = new AcDbAttribute;
  AcDbObjectId twiceId = addClosed(db, twice);
  AcDbObject* o = nullptr;
  acdbOpenAcDbObject(o, twiceId, AcDb::kForWrite);
  EXPECT_EQ(r->appendAttribute(AcDbAttribute::cast(o)), Acad::eAlreadyInDb);
  o->close();
  std::unique_ptr<AcDbObjectIterator> it(r->attributeIterator());
  ASSERT_FALSE(it->done());
  EXPECT_EQ(it->objectId(), attId);
  it->step();
  EXPECT_TRUE(it->done());
}

// ---------------------------------------------------------------- with the tables

TEST(WithTables, LayersStylesBlocksAndTheLockedLayer) {
  AcDbDatabase db(true);
  AcDbObjectId lockedId, styleId, blockId, msId;
  {
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(db.getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
    auto* rec = new AcDbLayerTableRecord;
    rec->setName(u"锁定");
    rec->setIsLocked(true);
    ASSERT_EQ(layers->add(lockedId, rec), Acad::eOk);
    rec->close();
    layers->close();
    AcDbTextStyleTable* styles = nullptr;
    ASSERT_EQ(db.getTextStyleTable(styles, AcDb::kForWrite), Acad::eOk);
    auto* style = new AcDbTextStyleTableRecord;
    style->setName(u"仿宋");
    ASSERT_EQ(styles->add(styleId, style), Acad::eOk);
    style->close();
    styles->close();
    AcDbBlockTable* blocks = nullptr;
    ASSERT_EQ(db.getBlockTable(blocks, AcDb::kForWrite), Acad::eOk);
    auto* block = new AcDbBlockTableRecord;
    block->setName(u"井盖");
    ASSERT_EQ(blocks->add(blockId, block), Acad::eOk);
    block->close();
    blocks->getAt(ACDB_MODEL_SPACE, msId);
    blocks->close();
  }
  AcDbObjectId layer0;
  {
    AcDbLayerTable* layers = nullptr;
    db.getLayerTable(layers);
    layers->getAt(u"0", layer0);
    layers->close();
  }

  AcDbObjectId lineId, circleId;
  {
    AcDbBlockTableRecord* ms = nullptr;
    ASSERT_EQ(acdbOpenObject(ms, msId, AcDb::kForWrite), Acad::eOk);
    auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    line->setDatabaseDefaults(&db);
    EXPECT_EQ(line->layerId(), layer0);
    EXPECT_FALSE(line->linetypeId().isNull());
    ASSERT_EQ(ms->appendAcDbEntity(lineId, line), Acad::eOk);
    // In a database with layers a name must be one of them.
    EXPECT_EQ(line->setLayer(u"没有这层"), Acad::eKeyNotFound);
    EXPECT_EQ(line->layerId(), layer0);
    EXPECT_EQ(line->setLayer(u"锁定"), Acad::eOk);
    EXPECT_EQ(line->layerId(), lockedId);
    line->close();
    // A name given before the entity came to the database finds its
    // record when it is first closed there.
    auto* circle = new AcDbCircle(AcGePoint3d(), AcGeVector3d(0, 0, 1), 1);
    circle->setLayer(u"锁定");
    EXPECT_TRUE(circle->layerId().isNull());
    ASSERT_EQ(ms->appendAcDbEntity(circleId, circle), Acad::eOk);
    circle->close();
    ms->close();
  }
  // On a locked layer: read yes, write no.
  AcDbLine* w = nullptr;
  EXPECT_EQ(acdbOpenObject(w, lineId, AcDb::kForWrite), Acad::eOnLockedLayer);
  AcDbCircle* c = nullptr;
  EXPECT_EQ(acdbOpenObject(c, circleId, AcDb::kForWrite), Acad::eOnLockedLayer);
  {
    AcDbObjectPointer<AcDbLine> r(lineId, AcDb::kForRead);
    ASSERT_EQ(r.openStatus(), Acad::eOk);
    EXPECT_EQ(r->layer(), u"锁定");
    EXPECT_EQ(r->upgradeOpen(), Acad::eOnLockedLayer);
  }
  {
    AcDbObjectPointer<AcDbLayerTableRecord> rec(lockedId, AcDb::kForWrite);
    rec->setIsLocked(false);
  }
  {
    AcDbObjectPointer<AcDbLine> line(lineId, AcDb::kForWrite);
    EXPECT_EQ(line.openStatus(), Acad::eOk);
  }

  // Read from a file of this database: records found by name, any case;
  // the file's spelling is written back (as the record's name when the
  // record is renamed), a name set here takes the record's.
  Acad::ErrorStatus es;
  auto text = readEntity(AcDbText::desc(),
                         {str(100, u"AcDbEntity"), str(8, u"锁定"), str(6, u"continuous"), str(100, u"AcDbText"),
                          point(10, 0, 0), real(40, 1), str(1, u"字"), str(7, u"仿宋"), str(100, u"AcDbText")},
                         &es, &db);
  ASSERT_EQ(es, Acad::eOk);
  EXPECT_EQ(text->layerId(), lockedId);
  EXPECT_EQ(text->linetype(), u"continuous");
  AcDbObjectId continuous = text->linetypeId();
  EXPECT_FALSE(continuous.isNull());
  {
    AcDbObjectPointer<AcDbLine> line(lineId, AcDb::kForWrite);
    ASSERT_EQ(line->setLinetype(u"CONTINUOUS"), Acad::eOk);
    EXPECT_EQ(line->linetype(), u"Continuous");
    EXPECT_EQ(line->linetypeId(), continuous);
  }
  {
    AcDbObjectPointer<AcDbLayerTableRecord> rec(lockedId, AcDb::kForWrite);
    rec->setName(u"改名");
  }
  EXPECT_EQ(text->layer(), u"改名");
  EXPECT_EQ(AcDbText::cast(text.get())->textStyle(), styleId);
  auto insert = readEntity(AcDbBlockReference::desc(),
                           {str(100, u"AcDbEntity"), str(8, u"0"), str(100, u"AcDbBlockReference"), str(2, u"井盖"),
                            point(10, 0, 0)},
                           &es, &db);
  ASSERT_EQ(es, Acad::eOk);
  EXPECT_EQ(AcDbBlockReference::cast(insert.get())->blockTableRecord(), blockId);
  // A block not defined yet keeps its name and is found once it is.
  auto early = readEntity(AcDbBlockReference::desc(),
                          {str(100, u"AcDbEntity"), str(8, u"0"), str(100, u"AcDbBlockReference"), str(2, u"后来"),
                           point(10, 0, 0)},
                          &es, &db);
  auto* ref = AcDbBlockReference::cast(early.release());
  EXPECT_TRUE(ref->blockTableRecord().isNull());
  AcDbObjectId refId;
  {
    AcDbBlockTableRecord* ms = nullptr;
    acdbOpenObject(ms, msId, AcDb::kForWrite);
    ms->appendAcDbEntity(refId, ref);
    ref->close();
    ms->close();
    AcDbBlockTable* blocks = nullptr;
    db.getBlockTable(blocks, AcDb::kForWrite);
    auto* block = new AcDbBlockTableRecord;
    block->setName(u"后来");
    AcDbObjectId laterId;
    blocks->add(laterId, block);
    block->close();
    blocks->close();
    AcDbObjectPointer<AcDbBlockReference> r(refId, AcDb::kForRead);
    EXPECT_EQ(r->blockTableRecord(), laterId);
    EXPECT_EQ(r->blockName(), u"后来");
  }
}

}  // namespace
