// Entities moved, turned, scaled and mirrored by transformBy. The curves are
// checked by their own geometry (points on the old curve land on the new
// one); a drawing of every kind is also transformed by ezdxf, which
// compares its result with ours.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "host/dbelipse.h"
#include "host/dbents.h"
#include "host/dbhatch.h"
#include "host/dbmtext.h"
#include "host/dbpl.h"
#include "host/dbray.h"
#include "host/dbregion.h"
#include "host/dbspline.h"
#include "host/dbsymtb.h"
#include "host/dbxline.h"
#include "host/gemat3d.h"
#include "host/geplane.h"
#include "host/imgent.h"
#include "host/system/utf.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

AcGeMatrix3d moveBy(double x, double y, double z = 0) { return AcGeMatrix3d::translation(AcGeVector3d(x, y, z)); }
AcGeMatrix3d turn(double deg, AcGePoint3d c = AcGePoint3d(0, 0, 0)) {
  return AcGeMatrix3d::rotation(deg * kPi / 180, AcGeVector3d::kZAxis, c);
}
AcGeMatrix3d scale(double s, AcGePoint3d c = AcGePoint3d(0, 0, 0)) { return AcGeMatrix3d::scaling(s, c); }
// Mirror in the vertical line x = x0.
AcGeMatrix3d mirrorX(double x0) {
  return AcGeMatrix3d::mirroring(AcGePlane(AcGePoint3d(x0, 0, 0), AcGeVector3d(1, 0, 0)));
}
AcGeMatrix3d stretch(double sx, double sy) {
  AcGeMatrix3d m;
  m.entry[0][0] = sx;
  m.entry[1][1] = sy;
  return m;
}

AcGePoint3d apply(const AcGeMatrix3d& m, AcGePoint3d p) { return p.transformBy(m); }

void expectNear(const AcGePoint3d& a, const AcGePoint3d& b, double tol = 1e-9) {
  EXPECT_NEAR(a.x, b.x, tol);
  EXPECT_NEAR(a.y, b.y, tol);
  EXPECT_NEAR(a.z, b.z, tol);
}

// Every curve: points sampled along it, transformed, lie on the new curve,
// whose ends are the images of the old ends (either way round: a mirrored
// arc runs from the image of its old end).
void checkCurveFollows(AcDbCurve* c, const AcGeMatrix3d& m, const char* what) {
  SCOPED_TRACE(what);
  double t0 = 0, t1 = 0;
  ASSERT_EQ(c->getStartParam(t0), Acad::eOk);
  ASSERT_EQ(c->getEndParam(t1), Acad::eOk);
  std::vector<AcGePoint3d> samples;
  for (int i = 0; i <= 16; ++i) {
    AcGePoint3d p;
    ASSERT_EQ(c->getPointAtParam(t0 + (t1 - t0) * i / 16.0, p), Acad::eOk);
    samples.push_back(apply(m, p));
  }
  AcGePoint3d s0, e0;
  c->getStartPoint(s0);
  c->getEndPoint(e0);
  bool closed = c->isClosed();
  ASSERT_EQ(c->transformBy(m), Acad::eOk);
  for (const AcGePoint3d& p : samples) {
    AcGePoint3d on;
    ASSERT_EQ(c->getClosestPointTo(p, on), Acad::eOk);
    EXPECT_LT(on.distanceTo(p), 1e-7) << p.x << "," << p.y << "," << p.z;
  }
  if (closed) return;  // where a closed curve starts is its own affair
  AcGePoint3d s1, e1;
  c->getStartPoint(s1);
  c->getEndPoint(e1);
  AcGePoint3d ms = apply(m, s0), me = apply(m, e0);
  bool same = s1.distanceTo(ms) < 1e-7 && e1.distanceTo(me) < 1e-7;
  bool swapped = s1.distanceTo(me) < 1e-7 && e1.distanceTo(ms) < 1e-7;
  EXPECT_TRUE(same || swapped);
}

TEST(TransformBy, CurvesFollowEveryKindOfMatrix) {
  const std::vector<std::pair<const char*, AcGeMatrix3d>> mats = {
      {"move", moveBy(5, -3, 2)},
      {"turn", turn(37, AcGePoint3d(2, 1, 0))},
      {"scale", scale(2.5, AcGePoint3d(1, 1, 0))},
      {"mirror", mirrorX(3)},
      {"3d turn", AcGeMatrix3d::rotation(0.7, AcGeVector3d(1, 2, 3).normal(), AcGePoint3d(1, 0, 0))},
  };
  for (const auto& [name, m] : mats) {
    SCOPED_TRACE(name);
    AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(4, 3, 1));
    checkCurveFollows(&line, m, "line");
    AcDbArc arc(AcGePoint3d(1, 2, 0), 3, 0.3, 2.5);
    checkCurveFollows(&arc, m, "arc");
    AcDbArc across(AcGePoint3d(1, 2, 0), 3, 5.5, 1.0);  // through angle 0
    checkCurveFollows(&across, m, "arc across 0");
    AcDbCircle circle(AcGePoint3d(1, 2, 0), AcGeVector3d::kZAxis, 2);
    checkCurveFollows(&circle, m, "circle");
    AcDbEllipse ell(AcGePoint3d(1, 1, 0), AcGeVector3d::kZAxis, AcGeVector3d(3, 1, 0), 0.4, 0.5, 4.0);
    checkCurveFollows(&ell, m, "elliptical arc");
    AcDbPolyline pl;
    pl.addVertexAt(0, AcGePoint2d(0, 0), 0.5);
    pl.addVertexAt(1, AcGePoint2d(4, 0), 0);
    pl.addVertexAt(2, AcGePoint2d(4, 3), -1.0);
    pl.addVertexAt(3, AcGePoint2d(1, 5), 0);
    pl.setElevation(1.5);
    checkCurveFollows(&pl, m, "polyline with bulges");
    AcGePoint3dArray fit = {{0, 0, 0}, {1, 2, 0}, {3, 1, 1}, {5, 4, 0}};
    AcDbSpline sp(fit);
    AcGeDoubleArray knots = {0, 0, 0, 0, 1, 2, 2, 2, 2};
    AcDbSpline nurbs(3, false, false, false, {{0, 0, 0}, {1, 3, 0}, {3, 3, 1}, {4, 0, 0}, {6, 1, 0}}, knots, {});
    checkCurveFollows(&nurbs, m, "spline");
  }
}

TEST(TransformBy, NonUniformScalingRefusedByRoundKindsButNotByEllipsesAndLines) {
  AcGeMatrix3d m = stretch(2, 1);
  AcDbCircle circle(AcGePoint3d(1, 2, 0), AcGeVector3d::kZAxis, 2);
  EXPECT_EQ(circle.transformBy(m), Acad::eCannotScaleNonUniformly);
  EXPECT_EQ(circle.radius(), 2);
  AcDbArc arc(AcGePoint3d(0, 0, 0), 1, 0, 1);
  EXPECT_EQ(arc.transformBy(m), Acad::eCannotScaleNonUniformly);
  // A text takes a stretch along its own axes (height and width factor),
  // not one across them.
  AcDbText text(AcGePoint3d(0, 0, 0), u"A", AcDbObjectId::kNull, 1.0);
  ASSERT_EQ(text.transformBy(m), Acad::eOk);
  EXPECT_DOUBLE_EQ(text.height(), 1.0);
  EXPECT_DOUBLE_EQ(text.widthFactor(), 2.0);
  text.setRotation(kPi / 4);
  EXPECT_EQ(text.transformBy(m), Acad::eCannotScaleNonUniformly);
  AcDbPolyline curved;
  curved.addVertexAt(0, AcGePoint2d(0, 0), 1.0);
  curved.addVertexAt(1, AcGePoint2d(1, 0));
  EXPECT_EQ(curved.transformBy(m), Acad::eCannotScaleNonUniformly);

  // A circle's transformed copy is an ellipse through the stretched points.
  AcDbEntity* copy = nullptr;
  ASSERT_EQ(circle.getTransformedCopy(m, copy), Acad::eOk);
  std::unique_ptr<AcDbEntity> own(copy);
  AcDbEllipse* e = AcDbEllipse::cast(copy);
  ASSERT_NE(e, nullptr);
  EXPECT_NEAR(e->majorRadius(), 4, 1e-9);
  EXPECT_NEAR(e->minorRadius(), 2, 1e-9);
  expectNear(e->center(), AcGePoint3d(2, 2, 0));
  // Ellipses and straight polylines take it.
  AcDbEllipse ell(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, AcGeVector3d(1, 1, 0), 0.5);
  checkCurveFollows(&ell, m, "ellipse stretched");
  AcDbEllipse arcOf(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, AcGeVector3d(1, 1, 0), 0.5, 1.0, 2.0);
  checkCurveFollows(&arcOf, stretch(1, 3), "elliptical arc stretched so its axes change roles");
  AcDbPolyline straight;
  straight.addVertexAt(0, AcGePoint2d(0, 0));
  straight.addVertexAt(1, AcGePoint2d(1, 1));
  checkCurveFollows(&straight, m, "straight polyline");
  // A singular matrix is no transformation.
  AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0));
  EXPECT_EQ(line.transformBy(stretch(0, 1)), Acad::eInvalidInput);
  EXPECT_EQ(line.endPoint(), AcGePoint3d(1, 1, 0));
}

TEST(TransformBy, MirrorFlipsArcsBulgesAndTextButKeepsTheNormal) {
  AcGeMatrix3d m = mirrorX(0);
  AcDbArc arc(AcGePoint3d(2, 0, 0), 1, 0, kPi / 2);  // from (3,0) to (2,1)
  ASSERT_EQ(arc.transformBy(m), Acad::eOk);
  EXPECT_EQ(arc.normal(), AcGeVector3d::kZAxis);
  AcGePoint3d s, e;
  arc.getStartPoint(s);
  arc.getEndPoint(e);
  expectNear(s, AcGePoint3d(-2, 1, 0));
  expectNear(e, AcGePoint3d(-3, 0, 0));

  AcDbPolyline pl;
  pl.addVertexAt(0, AcGePoint2d(0, 0), 0.5, 0.2, 0.4);
  pl.addVertexAt(1, AcGePoint2d(2, 0), 0, 0.4, 0.4);
  ASSERT_EQ(pl.transformBy(m), Acad::eOk);
  double b = 0, w0 = 0, w1 = 0;
  pl.getBulgeAt(0, b);
  pl.getWidthsAt(0, w0, w1);
  EXPECT_DOUBLE_EQ(b, -0.5);
  EXPECT_DOUBLE_EQ(w0, 0.2);
  ASSERT_EQ(pl.transformBy(scale(2)), Acad::eOk);
  pl.getWidthsAt(0, w0, w1);
  EXPECT_DOUBLE_EQ(w1, 0.8);

  // Text reads backwards from the mirrored place: its glyphs advance to
  // the left while its rotation stays.
  AcDbText text(AcGePoint3d(1, 1, 0), u"AB", AcDbObjectId::kNull, 2.0, 0.0);
  ASSERT_EQ(text.transformBy(m), Acad::eOk);
  EXPECT_TRUE(text.isMirroredInX());
  expectNear(text.position(), AcGePoint3d(-1, 1, 0));
  EXPECT_NEAR(std::sin(text.rotation()), 0, 1e-12);
  EXPECT_NEAR(std::cos(text.rotation()), 1, 1e-12);
  // Mirrored in a horizontal line it stands on its head: backwards and
  // turned half round.
  AcDbText upright(AcGePoint3d(1, 1, 0), u"AB", AcDbObjectId::kNull, 2.0, 0.0);
  ASSERT_EQ(upright.transformBy(AcGeMatrix3d::mirroring(AcGePlane(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 1, 0)))),
            Acad::eOk);
  EXPECT_TRUE(upright.isMirroredInX());
  EXPECT_NEAR(upright.rotation(), kPi, 1e-12);
  ASSERT_EQ(text.transformBy(m), Acad::eOk);  // mirrored back
  EXPECT_FALSE(text.isMirroredInX());
  EXPECT_NEAR(std::sin(text.rotation()), 0, 1e-12);
  EXPECT_NEAR(std::cos(text.rotation()), 1, 1e-12);
}

TEST(TransformBy, TextsBlocksAndFlatKindsTakePlacementRotationAndScale) {
  AcGeMatrix3d m = scale(2, AcGePoint3d(1, 0, 0)) * turn(90);
  AcDbText text(AcGePoint3d(1, 0, 0), u"T", AcDbObjectId::kNull, 1.5, 0.25);
  ASSERT_EQ(text.transformBy(m), Acad::eOk);
  expectNear(text.position(), AcGePoint3d(-1, 2, 0));
  EXPECT_NEAR(text.rotation(), 0.25 + kPi / 2, 1e-12);
  EXPECT_NEAR(text.height(), 3.0, 1e-12);

  AcDbMText mt;
  mt.setLocation(AcGePoint3d(1, 0, 0));
  mt.setTextHeight(2);
  mt.setWidth(10);
  ASSERT_EQ(mt.transformBy(m), Acad::eOk);
  EXPECT_NEAR(mt.textHeight(), 4, 1e-12);
  EXPECT_NEAR(mt.width(), 20, 1e-12);
  EXPECT_NEAR(mt.rotation(), kPi / 2, 1e-12);
  // Mirrored multiline text still reads left to right.
  ASSERT_EQ(mt.transformBy(mirrorX(0)), Acad::eOk);
  EXPECT_NEAR(mt.rotation(), kPi / 2, 1e-12);

  AcDbBlockReference ref(AcGePoint3d(1, 0, 0), AcDbObjectId::kNull);
  ref.setScaleFactors(AcGeScale3d(1, 2, 1));
  ASSERT_EQ(ref.transformBy(m), Acad::eOk);
  expectNear(ref.position(), AcGePoint3d(-1, 2, 0));
  EXPECT_NEAR(ref.rotation(), kPi / 2, 1e-12);
  EXPECT_NEAR(ref.scaleFactors().sx, 2, 1e-12);
  EXPECT_NEAR(ref.scaleFactors().sy, 4, 1e-12);
  // Mirrored, the X scale goes negative.
  AcDbBlockReference flat(AcGePoint3d(3, 0, 0), AcDbObjectId::kNull);
  ASSERT_EQ(flat.transformBy(mirrorX(0)), Acad::eOk);
  expectNear(flat.position(), AcGePoint3d(-3, 0, 0));
  EXPECT_NEAR(flat.scaleFactors().sx, -1, 1e-12);
  EXPECT_NEAR(flat.scaleFactors().sy, 1, 1e-12);
  EXPECT_NEAR(std::sin(flat.rotation()), 0, 1e-12);
  // A stretch across a turned reference would skew it.
  AcDbBlockReference turned(AcGePoint3d(0, 0, 0), AcDbObjectId::kNull);
  turned.setRotation(kPi / 4);
  EXPECT_EQ(turned.transformBy(stretch(2, 1)), Acad::eCannotScaleNonUniformly);
  EXPECT_EQ(turned.transformBy(stretch(2, 3) * turn(-45)), Acad::eOk);
  EXPECT_NEAR(turned.scaleFactors().sx, 2, 1e-12);
  EXPECT_NEAR(turned.scaleFactors().sy, 3, 1e-12);

  AcDbSolid solid(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), AcGePoint3d(0, 1, 0), AcGePoint3d(1, 1, 0));
  ASSERT_EQ(solid.transformBy(moveBy(1, 2)), Acad::eOk);
  AcGePoint3d p;
  solid.getPointAt(3, p);
  expectNear(p, AcGePoint3d(2, 3, 0));
  AcDbPoint point(AcGePoint3d(1, 1, 1));
  ASSERT_EQ(point.transformBy(m), Acad::eOk);
  expectNear(point.position(), AcGePoint3d(-3, 2, 2));
  AcDbRay ray;
  ray.setBasePoint(AcGePoint3d(1, 0, 0));
  ASSERT_EQ(ray.transformBy(m), Acad::eOk);
  EXPECT_NEAR(ray.unitDir().y, 1, 1e-12);
  EXPECT_NEAR(ray.unitDir().length(), 1, 1e-12);
  AcDbFace face(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), AcGePoint3d(0, 1, 0));
  ASSERT_EQ(face.transformBy(moveBy(0, 0, 5)), Acad::eOk);
  face.getVertexAt(2, p);
  expectNear(p, AcGePoint3d(0, 1, 5));
}

TEST(TransformBy, HatchesRegionsAndWipeoutsKeepTheirShapeInTheirPlane) {
  AcDbHatch h;
  h.setPattern(AcDbHatch::kPreDefined, u"ANSI31");
  h.setPatternScale(1.0);
  h.appendLoop(AcDbHatch::kExternal | AcDbHatch::kPolyline, {{0, 0}, {4, 0}, {4, 2}}, {0.5, 0, 0});
  AcDbHatch::Edge arc;
  arc.type = AcDbHatch::kCirArc;
  arc.center = AcGePoint2d(10, 0);
  arc.radius = 1;
  arc.startAngle = 0;
  arc.endAngle = kPi;
  h.appendLoop(AcDbHatch::kDefault, std::vector<AcDbHatch::Edge>{arc});
  ASSERT_EQ(h.transformBy(mirrorX(0) * scale(2)), Acad::eOk);
  AcGePoint2dArray v;
  AcGeDoubleArray b;
  Adesk::Int32 type = 0;
  h.getLoopAt(0, type, v, b);
  EXPECT_NEAR(v[1].x, -8, 1e-12);
  EXPECT_NEAR(b[0], -0.5, 1e-12);
  EXPECT_NEAR(h.patternScale(), 2, 1e-12);
  const AcDbHatch::Edge& e = h.loopAt(1).edges[0];
  EXPECT_NEAR(e.center.x, -20, 1e-12);
  EXPECT_NEAR(e.radius, 2, 1e-12);
  // The arc still starts at the image of its old start, (-22, 0), and
  // runs the other way round.
  double a0 = e.ccw ? e.startAngle : -e.startAngle;
  EXPECT_NEAR(e.center.x + e.radius * std::cos(a0), -22, 1e-9);
  EXPECT_FALSE(e.ccw);
  EXPECT_EQ(h.transformBy(stretch(1, 2)), Acad::eCannotScaleNonUniformly);

  AcDbRegion r;
  AcDbRegion::Edge l1, l2;
  AcDbRegion::Loop loop;
  l1.start = AcGePoint2d(0, 0), l1.end = AcGePoint2d(2, 0);
  AcDbRegion::Edge half;
  half.isArc = true;
  half.start = AcGePoint2d(2, 0), half.end = AcGePoint2d(0, 0);
  half.center = AcGePoint2d(1, 0), half.radius = 1, half.startAngle = 0, half.endAngle = kPi;
  r.setLoops({{l1, half}});
  double area0 = 0, area1 = 0;
  r.getArea(area0);
  ASSERT_EQ(r.transformBy(mirrorX(5) * scale(3)), Acad::eOk);
  r.getArea(area1);
  EXPECT_NEAR(area1, 9 * area0, 1e-9);
  EXPECT_EQ(r.transformBy(moveBy(0, 0, 1)), Acad::eNotApplicable);

  AcDbWipeout w;
  ASSERT_EQ(w.setFrom({{0, 0}, {2, 0}, {2, 1}}), Acad::eOk);
  ASSERT_EQ(w.transformBy(moveBy(3, 4)), Acad::eOk);
  AcGePoint3dArray pts;
  w.getVertices(pts);
  ASSERT_GE(pts.size(), 3u);
  expectNear(pts[1], AcGePoint3d(5, 4, 0), 1e-9);
}

// ------------------------------------------------------------ in a drawing

AcDbObjectId modelSpace(AcDbDatabase* db) {
  AcDbBlockTable* t = nullptr;
  db->getBlockTable(t, AcDb::kForRead);
  AcDbObjectId id;
  t->getAt(ACDB_MODEL_SPACE, id);
  t->close();
  return id;
}

AcDbObjectId append(AcDbDatabase* db, AcDbEntity* ent, AcDbObjectId block = {}) {
  AcDbBlockTableRecord* b = nullptr;
  EXPECT_EQ(acdbOpenObject(b, block.isNull() ? modelSpace(db) : block, AcDb::kForWrite), Acad::eOk);
  AcDbObjectId id;
  EXPECT_EQ(b->appendAcDbEntity(id, ent), Acad::eOk);
  ent->close();
  b->close();
  return id;
}

AcDbObjectId makeBlock(AcDbDatabase* db, const ACHAR* name, AcGePoint3d origin) {
  AcDbBlockTable* t = nullptr;
  db->getBlockTable(t, AcDb::kForWrite);
  auto* rec = new AcDbBlockTableRecord;
  rec->setName(name);
  rec->setOrigin(origin);
  AcDbObjectId id;
  EXPECT_EQ(t->add(id, rec), Acad::eOk);
  rec->close();
  t->close();
  return id;
}

TEST(TransformBy, ComplexEntitiesCarryTheirVerticesAndAttributesAndUndoTakesItBack) {
  AcDbDatabase db(true);
  auto* pl = new AcDb3dPolyline(AcDb::k3dSimplePoly, {{0, 0, 0}, {1, 0, 1}, {1, 1, 2}});
  AcDbObjectId plId = append(&db, pl);
  AcDbObjectId block = makeBlock(&db, u"B", AcGePoint3d(0, 0, 0));
  auto* ref = new AcDbBlockReference(AcGePoint3d(1, 1, 0), block);
  AcDbObjectId refId = append(&db, ref);
  {
    AcDbObjectPointer<AcDbBlockReference> r(refId, AcDb::kForWrite);
    auto* att = new AcDbAttribute(AcGePoint3d(2, 1, 0), u"42", u"NO");
    att->setHeight(1);
    ASSERT_EQ(r->appendAttribute(att), Acad::eOk);
  }
  db.beginUndoMark();
  for (AcDbObjectId id : {plId, refId}) {
    AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForWrite);
    ASSERT_EQ(e->transformBy(turn(90)), Acad::eOk);
  }
  db.endUndoMark();
  {
    AcDbObjectPointer<AcDb3dPolyline> p(plId, AcDb::kForRead);
    AcGePoint3dArray pts;
    p->getCurveVertices(pts);
    ASSERT_EQ(pts.size(), 3u);
    expectNear(pts[2], AcGePoint3d(-1, 1, 2));
    AcDbObjectPointer<AcDbBlockReference> r(refId, AcDb::kForRead);
    std::unique_ptr<AcDbObjectIterator> it(r->attributeIterator());
    AcDbObjectPointer<AcDbAttribute> a(it->objectId(), AcDb::kForRead);
    expectNear(a->position(), AcGePoint3d(-1, 2, 0));
    EXPECT_NEAR(a->rotation(), kPi / 2, 1e-12);
  }
  ASSERT_TRUE(db.undoBack());
  {
    AcDbObjectPointer<AcDb3dPolyline> p(plId, AcDb::kForRead);
    AcGePoint3dArray pts;
    p->getCurveVertices(pts);
    expectNear(pts[2], AcGePoint3d(1, 1, 2));
    AcDbObjectPointer<AcDbBlockReference> r(refId, AcDb::kForRead);
    std::unique_ptr<AcDbObjectIterator> it(r->attributeIterator());
    AcDbObjectPointer<AcDbAttribute> a(it->objectId(), AcDb::kForRead);
    expectNear(a->position(), AcGePoint3d(2, 1, 0));
  }
  // Redo puts the turn back.
  ASSERT_TRUE(db.redoForward());
  {
    AcDbObjectPointer<AcDbBlockReference> r(refId, AcDb::kForRead);
    expectNear(r->position(), AcGePoint3d(-1, 1, 0));
  }
  EXPECT_FALSE(db.redoForward());
}

TEST(Explode, ReferencesGiveTheirBlockPlacedAndDefinitionsForAttributes) {
  AcDbDatabase db(true);
  AcDbObjectId block = makeBlock(&db, u"TREE", AcGePoint3d(1, 0, 0));
  append(&db, new AcDbCircle(AcGePoint3d(1, 0, 0), AcGeVector3d::kZAxis, 1), block);
  append(&db, new AcDbLine(AcGePoint3d(1, 0, 0), AcGePoint3d(3, 0, 0)), block);
  append(&db, new AcDbAttributeDefinition(AcGePoint3d(1, 2, 0), u"oak", u"KIND", u"Kind"), block);
  auto* ref = new AcDbBlockReference(AcGePoint3d(10, 10, 0), block);
  ref->setScaleFactors(AcGeScale3d(2, 1, 1));
  ref->setRotation(kPi / 2);
  AcDbObjectId refId = append(&db, ref);
  AcDbObjectPointer<AcDbBlockReference> r(refId, AcDb::kForRead);
  AcDbVoidPtrArray pieces;
  ASSERT_EQ(r->explode(pieces), Acad::eOk);
  ASSERT_EQ(pieces.size(), 3u);
  std::vector<std::unique_ptr<AcDbEntity>> own;
  for (void* p : pieces) own.emplace_back(static_cast<AcDbEntity*>(p));
  // The circle, stretched along the block's X (turned to world Y), is an
  // ellipse.
  auto* e = AcDbEllipse::cast(own[0].get());
  ASSERT_NE(e, nullptr);
  expectNear(e->center(), AcGePoint3d(10, 10, 0));
  EXPECT_NEAR(std::fabs(e->majorAxis().y), 2, 1e-9);
  auto* l = AcDbLine::cast(own[1].get());
  ASSERT_NE(l, nullptr);
  expectNear(l->endPoint(), AcGePoint3d(10, 14, 0));
  auto* d = AcDbAttributeDefinition::cast(own[2].get());
  ASSERT_NE(d, nullptr);
  EXPECT_EQ(d->tag(), u"KIND");
  expectNear(d->position(), AcGePoint3d(8, 10, 0));
}

// ------------------------------------------------------------ ezdxf

bool haveEzdxf() { return std::system("/usr/bin/python3 -c 'import ezdxf' >/dev/null 2>&1") == 0; }

// ezdxf transforms the entities of before.dxf by the matrix and compares
// them, in order, with after.dxf: geometry by points where the two may
// write the same entity differently (a mirrored reference, an ellipse).
const char* kOracle = R"PY(
import sys, math
import ezdxf
from ezdxf.math import Matrix44, Vec3
before, after = ezdxf.readfile(sys.argv[1]), ezdxf.readfile(sys.argv[2])
m = Matrix44([float(v) for v in sys.argv[3].split(',')])
theirs = list(before.modelspace())
ours = list(after.modelspace())
assert len(theirs) == len(ours), (len(theirs), len(ours))
bad = []
def close(a, b, tol=1e-6):
    return Vec3(a).isclose(Vec3(b), abs_tol=tol)
def samples(e):
    if e.dxftype() in ('LINE',):
        return [e.dxf.start, e.dxf.end]
    if e.dxftype() in ('CIRCLE', 'ARC', 'ELLIPSE', 'LWPOLYLINE', 'SPLINE'):
        from ezdxf import path
        p = path.make_path(e)
        return list(p.flattening(0.001))
    return []
for t, o in zip(theirs, ours):
    t.transform(m)
    kind = o.dxftype()
    if kind != t.dxftype():
        bad.append((kind, t.dxftype())); continue
    if kind in ('LINE', 'CIRCLE', 'ARC', 'ELLIPSE', 'LWPOLYLINE', 'SPLINE'):
        # Every point of their curve lies on ours and back.
        from ezdxf.math import ConstructionPolyline
        a, b = samples(t), samples(o)
        pa, pb = ConstructionPolyline(a), ConstructionPolyline(b)
        def dist(p, poly):
            return min((Vec3(p) - q).magnitude for q in poly)
        if max(dist(p, b) for p in a) > 0.01 or max(dist(p, a) for p in b) > 0.01:
            bad.append((kind, 'shape'))
        if kind == 'LWPOLYLINE':
            tw = [(round(v[2], 9), round(v[3], 9)) for v in t.get_points('xyseb')]
            ow = [(round(v[2], 9), round(v[3], 9)) for v in o.get_points('xyseb')]
            if tw != ow: bad.append((kind, 'widths', tw, ow))
    elif kind == 'INSERT':
        tm, om = t.matrix44(), o.matrix44()
        if not all(math.isclose(x, y, abs_tol=1e-9) for x, y in zip(tm, om)): bad.append((kind, list(tm), list(om)))
    elif kind in ('TEXT', 'ATTDEF'):
        # ezdxf may turn a mirrored text's normal over: compare in world terms.
        ti, oi = t.ocs().to_wcs(t.dxf.insert), o.ocs().to_wcs(o.dxf.insert)
        if not close(ti, oi): bad.append((kind, 'insert', ti, oi))
        if not math.isclose(t.dxf.height, o.dxf.height): bad.append((kind, 'height'))
    elif kind == 'MTEXT':
        if not close(t.dxf.insert, o.dxf.insert) or not math.isclose(t.dxf.char_height, o.dxf.char_height):
            bad.append((kind,))
    elif kind == 'POINT':
        if not close(t.dxf.location, o.dxf.location): bad.append((kind,))
    elif kind in ('SOLID', '3DFACE', 'TRACE'):
        tv = [t.dxf.get('vtx%d' % i) for i in range(4)]
        ov = [o.dxf.get('vtx%d' % i) for i in range(4)]
        if kind != '3DFACE':
            tv = [t.ocs().to_wcs(v) for v in tv]
            ov = [o.ocs().to_wcs(v) for v in ov]
        if not all(close(a, b) for a, b in zip(tv, ov)): bad.append((kind, tv, ov))
    elif kind in ('XLINE', 'RAY'):
        if not close(t.dxf.start, o.dxf.start) or not close(t.dxf.unit_vector, o.dxf.unit_vector): bad.append((kind,))
if bad:
    print(bad)
    sys.exit(1)
print('ok', len(ours))
)PY";

std::string tempDir() {
  char tmpl[] = "/tmp/zepk-transform-XXXXXX";
  char* d = mkdtemp(tmpl);
  return d ? d : "/tmp";
}

void addEveryKind(AcDbDatabase* db) {
  append(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(4, 3, 0)));
  append(db, new AcDbCircle(AcGePoint3d(1, 2, 0), AcGeVector3d::kZAxis, 2));
  append(db, new AcDbArc(AcGePoint3d(1, 2, 0), 3, 0.3, 2.5));
  append(db, new AcDbEllipse(AcGePoint3d(1, 1, 0), AcGeVector3d::kZAxis, AcGeVector3d(3, 1, 0), 0.4, 0.5, 4.0));
  auto* pl = new AcDbPolyline;
  pl->addVertexAt(0, AcGePoint2d(0, 0), 0.5, 0.1, 0.3);
  pl->addVertexAt(1, AcGePoint2d(4, 0), 0, 0.3, 0.3);
  pl->addVertexAt(2, AcGePoint2d(4, 3), -1.0, 0, 0);
  append(db, pl);
  AcGeDoubleArray knots = {0, 0, 0, 0, 1, 2, 2, 2, 2};
  append(db, new AcDbSpline(3, false, false, false, {{0, 0, 0}, {1, 3, 0}, {3, 3, 0}, {4, 0, 0}, {6, 1, 0}}, knots,
                            {}));
  append(db, new AcDbText(AcGePoint3d(1, 1, 0), u"Site", AcDbObjectId::kNull, 2.0, 0.3));
  auto* mt = new AcDbMText;
  mt->setLocation(AcGePoint3d(2, 5, 0));
  mt->setTextHeight(1.5);
  mt->setContents(u"North");
  append(db, mt);
  append(db, new AcDbPoint(AcGePoint3d(3, 4, 1)));
  append(db, new AcDbSolid(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), AcGePoint3d(0, 1, 0), AcGePoint3d(1, 1, 0)));
  append(db, new AcDbFace(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 1), AcGePoint3d(0, 1, 2)));
  auto* xl = new AcDbXline;
  xl->setBasePoint(AcGePoint3d(1, 1, 0));
  xl->setUnitDir(AcGeVector3d(1, 1, 0));
  append(db, xl);
  AcDbObjectId block = makeBlock(db, u"MARK", AcGePoint3d(0, 0, 0));
  append(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)), block);
  auto* ref = new AcDbBlockReference(AcGePoint3d(5, 5, 0), block);
  ref->setRotation(0.4);
  ref->setScaleFactors(AcGeScale3d(2, 2, 2));
  append(db, ref);
}

TEST(TransformByOracle, EzdxfTransformsTheSameEntitiesAlike) {
  if (!haveEzdxf()) GTEST_SKIP() << "ezdxf is not installed";
  std::string dir = tempDir();
  std::string script = dir + "/oracle.py";
  std::ofstream(script) << kOracle;
  const std::vector<std::pair<const char*, AcGeMatrix3d>> mats = {
      {"move", moveBy(5, -3, 0)},
      {"turn and scale", scale(1.5, AcGePoint3d(2, 1, 0)) * turn(33, AcGePoint3d(1, 1, 0))},
      {"mirror", mirrorX(2)},
      {"mirror on a slant", AcGeMatrix3d::mirroring(AcGePlane(AcGePoint3d(1, 0, 0), AcGeVector3d(1, 1, 0).normal()))},
  };
  for (const auto& [name, m] : mats) {
    SCOPED_TRACE(name);
    AcDbDatabase db(true);
    addEveryKind(&db);
    std::string before = dir + "/before.dxf", after = dir + "/after.dxf";
    ASSERT_EQ(db.saveAs(zepk::sys::fromUtf8(before).c_str()), Acad::eOk);
    AcDbBlockTableRecord* ms = nullptr;
    ASSERT_EQ(acdbOpenObject(ms, modelSpace(&db), AcDb::kForRead), Acad::eOk);
    AcDbObjectIdArray ids = ms->entityIds();
    ms->close();
    for (AcDbObjectId id : ids) {
      AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForWrite);
      EXPECT_EQ(e->transformBy(m), Acad::eOk) << zepk::sys::toUtf8(e->isA()->name());
    }
    ASSERT_EQ(db.saveAs(zepk::sys::fromUtf8(after).c_str()), Acad::eOk);
    // ezdxf's matrices are row-major with the translation in the last row.
    std::string rows;
    for (int c = 0; c < 4; ++c)
      for (int r = 0; r < 4; ++r) {
        char buf[40];
        std::snprintf(buf, sizeof buf, "%s%.17g", rows.empty() ? "" : ",", m.entry[r][c]);
        rows += buf;
      }
    std::string cmd = "/usr/bin/python3 " + script + " " + before + " " + after + " " + rows + " 2>&1";
    FILE* p = popen(cmd.c_str(), "r");
    std::string out;
    char buf[4096];
    while (p && fgets(buf, sizeof buf, p)) out += buf;
    int status = p ? pclose(p) : -1;
    EXPECT_EQ(status, 0) << out;
  }
  std::system(("rm -rf '" + dir + "'").c_str());
}

}  // namespace
