// The kernel over drawing curves: sampling every kind, turning curves and
// region loops into polylines with the shape and properties kept,
// reversing, and moving a closed polyline's start, for curves in and out
// of a drawing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "geometry/curves.h"
#include "host/dbelipse.h"
#include "host/gearc3d.h"
#include "host/gecomp3d.h"
#include "host/geell3d.h"
#include "host/gelin3d.h"
#include "host/gelineseg3d.h"
#include "host/gemat3d.h"
#include "host/genurb3d.h"
#include "host/dbray.h"
#include "host/dbspline.h"
#include "host/dbsymtb.h"

using namespace zepk::geometry;

namespace {

constexpr double kPi = 3.14159265358979323846;

double areaOf(const AcDbPolyline& pl) { return polySignedArea(toLwPoly(pl)); }

std::unique_ptr<AcDbPolyline> rect(double x0, double y0, double x1, double y1) {
  auto p = std::make_unique<AcDbPolyline>();
  p->addVertexAt(0, {x0, y0});
  p->addVertexAt(1, {x1, y0});
  p->addVertexAt(2, {x1, y1});
  p->addVertexAt(3, {x0, y1});
  p->setClosed(true);
  return p;
}

AcDbObjectId modelSpace(AcDbDatabase* db) {
  AcDbBlockTable* t = nullptr;
  EXPECT_EQ(db->getBlockTable(t, AcDb::kForRead), Acad::eOk);
  AcDbObjectId id;
  t->getAt(ACDB_MODEL_SPACE, id);
  t->close();
  return id;
}

AcDbObjectId append(AcDbDatabase* db, AcDbEntity* ent) {
  AcDbBlockTableRecord* b = nullptr;
  EXPECT_EQ(acdbOpenObject(b, modelSpace(db), AcDb::kForWrite), Acad::eOk);
  AcDbObjectId id;
  EXPECT_EQ(b->appendAcDbEntity(id, ent), Acad::eOk);
  ent->close();
  b->close();
  return id;
}

}  // namespace

TEST(CurveSampling, EveryKindOnTheCurveWithinTheTolerance) {
  AcDbCircle circle(AcGePoint3d(5, 5, 2), AcGeVector3d::kZAxis, 10.0);
  std::vector<AcGePoint3d> s = sampleCurve(&circle, 0.05, true);
  ASSERT_GT(s.size(), 10u);
  EXPECT_GT(s.front().distanceTo(s.back()), 1e-6) << "the closing point was to be dropped";
  for (size_t i = 0; i < s.size(); ++i) {
    EXPECT_NEAR(s[i].distanceTo(AcGePoint3d(5, 5, 2)), 10.0, 1e-9);
    const AcGePoint3d& b = s[(i + 1) % s.size()];
    const AcGePoint3d mid((s[i].x + b.x) / 2, (s[i].y + b.y) / 2, 2);
    EXPECT_LE(10.0 - mid.distanceTo(AcGePoint3d(5, 5, 2)), 0.05 + 1e-9);
  }
  EXPECT_EQ(sampleCurve(&circle, 0.05, false).size(), s.size() + 1);

  // Shorter than 1e-8: its two ends, whatever the tolerance.
  AcDbLine tiny(AcGePoint3d(1, 1, 0), AcGePoint3d(1 + 1e-9, 1, 0));
  EXPECT_EQ(sampleCurve(&tiny, 1e-12, true).size(), 2u);
  EXPECT_EQ(sampleCurveByCount(&tiny, 50, true).size(), 2u);

  // An arc from its start to its end; an ellipse between its parameters.
  AcDbArc arc(AcGePoint3d(0, 0, 0), 4.0, 0.0, kPi / 2);
  s = sampleCurve(&arc, 0.01, true);
  ASSERT_GE(s.size(), 3u);
  EXPECT_LT(s.front().distanceTo(AcGePoint3d(4, 0, 0)), 1e-9);
  EXPECT_LT(s.back().distanceTo(AcGePoint3d(0, 4, 0)), 1e-9);
  AcDbEllipse half(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, AcGeVector3d(6, 0, 0), 0.5, 0.0, kPi);
  s = sampleCurve(&half, 0.01, true);
  EXPECT_LT(s.back().distanceTo(AcGePoint3d(-6, 0, 0)), 1e-9);

  // By count: count+1 points, the closing one dropped on request.
  EXPECT_EQ(sampleCurveByCount(&circle, 8, true).size(), 8u);
  EXPECT_EQ(sampleCurveByCount(&arc, 8, true).size(), 9u);
}

TEST(CurveToPolyline, ExactWhereItCanBeAndCloseWhereNot) {
  AcDbLine line(AcGePoint3d(0, 0, 3), AcGePoint3d(10, 0, 7));
  line.setColorIndex(3);
  std::unique_ptr<AcDbPolyline> pl(curveToLwPoly(&line));
  ASSERT_TRUE(pl);
  EXPECT_EQ(pl->numVerts(), 2u);
  EXPECT_EQ(pl->elevation(), 3.0);
  EXPECT_EQ(pl->colorIndex(), 3) << "the source's properties pass on";

  AcDbArc arc(AcGePoint3d(0, 0, 1), 2.0, 0.0, kPi);
  pl.reset(curveToLwPoly(&arc));
  ASSERT_TRUE(pl);
  double b = 0;
  pl->getBulgeAt(0, b);
  EXPECT_NEAR(b, 1.0, 1e-12);
  AcGePoint3d mid;
  pl->getPointAtParam(0.5, mid);
  EXPECT_LT(mid.distanceTo(AcGePoint3d(0, 2, 1)), 1e-9);
  // An arc mirrored (normal down) is the same arc seen from above, clockwise.
  AcDbArc mirrored(AcGePoint3d(0, 0, 0), -AcGeVector3d::kZAxis, 2.0, 0.0, kPi / 2);
  AcGePoint3d ms, me, mm;
  mirrored.getStartPoint(ms);
  mirrored.getEndPoint(me);
  mirrored.getPointAtParam(kPi / 4, mm);
  pl.reset(curveToLwPoly(&mirrored));
  ASSERT_TRUE(pl);
  AcGePoint3d ps, pm;
  pl->getStartPoint(ps);
  pl->getPointAtParam(0.5, pm);
  EXPECT_LT(ps.distanceTo(ms), 1e-9);
  EXPECT_LT(pm.distanceTo(mm), 1e-9);

  AcDbCircle circle(AcGePoint3d(1, 1, 0), AcGeVector3d::kZAxis, 3.0);
  pl.reset(curveToLwPoly(&circle));
  ASSERT_TRUE(pl);
  EXPECT_TRUE(pl->isClosed());
  EXPECT_NEAR(areaOf(*pl), kPi * 9, 1e-9);

  // Ellipses and splines: arcs through samples, close to the curve.
  AcDbEllipse ellipse(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, AcGeVector3d(10, 0, 0), 0.5);
  pl.reset(curveToLwPoly(&ellipse));
  ASSERT_TRUE(pl);
  EXPECT_TRUE(pl->isClosed());
  EXPECT_NEAR(areaOf(*pl), kPi * 10 * 5, 0.5);
  AcDbSpline spline(AcGePoint3dArray{{0, 0, 0}, {5, 5, 0}, {10, 0, 0}, {15, 5, 0}}, 3, 0.0);
  pl.reset(curveToLwPoly(&spline));
  ASSERT_TRUE(pl);
  AcGePoint3d end;
  pl->getEndPoint(end);
  EXPECT_LT(end.distanceTo(AcGePoint3d(15, 5, 0)), 1e-6);

  // A lightweight polyline comes back as it was, widths and all.
  auto src = rect(0, 0, 4, 2);
  src->setBulgeAt(1, 0.5);
  src->setWidthsAt(2, 0.1, 0.3);
  pl.reset(curveToLwPoly(src.get()));
  ASSERT_TRUE(pl);
  double sw = 0, ew = 0;
  pl->getWidthsAt(2, sw, ew);
  EXPECT_EQ(sw, 0.1);
  EXPECT_EQ(ew, 0.3);
  EXPECT_NEAR(areaOf(*pl), areaOf(*src), 1e-12);

  // Kinds that are no polyline give nothing.
  AcDbRay ray;
  EXPECT_EQ(curveToLwPoly(&ray), nullptr);
}

TEST(CurveToPolyline, OldStylePolylinesInADrawing) {
  AcDbDatabase db(true);
  AcGeDoubleArray bulges{0.0, 1.0, 0.0};
  auto* p2 = new AcDb2dPolyline(AcDb::k2dSimplePoly, AcGePoint3dArray{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}}, 2.0,
                                false, 0.0, 0.0, &bulges);
  const AcDbObjectId id2 = append(&db, p2);
  auto* p3 = new AcDb3dPolyline(AcDb::k3dSimplePoly, AcGePoint3dArray{{0, 0, 5}, {3, 4, 6}, {6, 0, 7}}, true);
  const AcDbObjectId id3 = append(&db, p3);

  {
    AcDbObjectPointer<AcDb2dPolyline> p(id2, AcDb::kForRead);
    ASSERT_TRUE(p);
    std::unique_ptr<AcDbPolyline> pl(curveToLwPoly(p.object()));
    ASSERT_TRUE(pl);
    EXPECT_EQ(pl->numVerts(), 3u);
    EXPECT_EQ(pl->elevation(), 2.0);
    double b = 0;
    pl->getBulgeAt(1, b);
    EXPECT_EQ(b, 1.0);
    PolyPoints pp;
    ASSERT_TRUE(curvePolyPoints(p.object(), 2, pp));
    EXPECT_EQ(pp.points.size(), 4u);  // the half circle in two, and the end point
    EXPECT_EQ(pp.points[0].z, 2.0);
  }
  {
    AcDbObjectPointer<AcDb3dPolyline> p(id3, AcDb::kForRead);
    std::unique_ptr<AcDbPolyline> pl(curveToLwPoly(p.object()));
    ASSERT_TRUE(pl);
    EXPECT_TRUE(pl->isClosed());
    EXPECT_EQ(pl->elevation(), 5.0);
    EXPECT_NEAR(std::fabs(areaOf(*pl)), 12.0, 1e-12);
  }
  // Reversed in place, vertex by vertex; it needs the polyline open for write.
  {
    AcDbObjectPointer<AcDb2dPolyline> p(id2, AcDb::kForWrite);
    ASSERT_EQ(reverseCurve(p.object()), Acad::eOk);
  }
  {
    AcDbObjectPointer<AcDb2dPolyline> p(id2, AcDb::kForRead);
    AcGePoint3d s, m;
    p->getStartPoint(s);
    EXPECT_LT(s.distanceTo(AcGePoint3d(10, 10, 2)), 1e-9);
    // The half circle, now the first segment, swells the same way: its
    // middle is where it was.
    p->getPointAtParam(0.5, m);
    EXPECT_LT(m.distanceTo(AcGePoint3d(15, 5, 2)), 1e-9);
  }
}

TEST(CurvePolyPoints, ArcsAndCirclesBecomeVerticesAndOtherKindsAreRefused) {
  AcDbArc arc(AcGePoint3d(0, 0, 0), 1.0, 0.0, kPi);
  PolyPoints pp;
  ASSERT_TRUE(curvePolyPoints(&arc, 1, pp));
  ASSERT_EQ(pp.points.size(), 2u);
  EXPECT_NEAR(pp.bulges[0], 1.0, 1e-12);
  AcDbCircle circle(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 1.0);
  ASSERT_TRUE(curvePolyPoints(&circle, 3, pp));
  EXPECT_EQ(pp.points.size(), 6u);
  AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
  EXPECT_FALSE(curvePolyPoints(&line, 1, pp));
}

TEST(RegionLoops, EveryLoopAClosedPolylineWithTheRegionsProperties) {
  // A 10 x 10 square with a round hole of radius 2: two loops.
  auto square = rect(0, 0, 10, 10);
  AcDbCircle hole(AcGePoint3d(5, 5, 0), AcGeVector3d::kZAxis, 2.0);
  AcDbVoidPtrArray in{square.get(), &hole}, out;
  ASSERT_EQ(AcDbRegion::createFromCurves(in, out), Acad::eOk);
  ASSERT_EQ(out.size(), 2u);
  std::unique_ptr<AcDbRegion> a(static_cast<AcDbRegion*>(out[0])), b(static_cast<AcDbRegion*>(out[1]));
  ASSERT_EQ(a->booleanOper(AcDb::kBoolSubtract, b.get()), Acad::eOk);
  a->setColorIndex(5);
  std::vector<AcDbPolyline*> loops = regionToLwPolys(a.get());
  ASSERT_EQ(loops.size(), 2u);
  double total = 0;
  for (AcDbPolyline* pl : loops) {
    EXPECT_TRUE(pl->isClosed());
    EXPECT_EQ(pl->colorIndex(), 5);
    total += std::fabs(areaOf(*pl));
  }
  EXPECT_NEAR(total, 100.0 + kPi * 4, 1e-9);
  for (AcDbPolyline* pl : loops) delete pl;

  // A loop of a line and an arc: one ring, the arc kept as an arc.
  auto d = std::make_unique<AcDbPolyline>();
  d->addVertexAt(0, {0, 0}, 1.0);
  d->addVertexAt(1, {4, 0});
  d->setClosed(true);
  AcDbVoidPtrArray in2{d.get()}, out2;
  ASSERT_EQ(AcDbRegion::createFromCurves(in2, out2), Acad::eOk);
  ASSERT_EQ(out2.size(), 1u);
  std::unique_ptr<AcDbRegion> r(static_cast<AcDbRegion*>(out2[0]));
  loops = regionToLwPolys(r.get());
  ASSERT_EQ(loops.size(), 1u);
  EXPECT_EQ(loops[0]->numVerts(), 2u);
  EXPECT_NEAR(std::fabs(areaOf(*loops[0])), kPi * 2, 1e-9);
  delete loops[0];
}

TEST(CurveReversal, ShapeKeptDirectionTurned) {
  auto pl = rect(0, 0, 4, 2);
  pl->setBulgeAt(0, 0.5);
  const double before = areaOf(*pl);
  ASSERT_EQ(reverseCurve(pl.get()), Acad::eOk);
  EXPECT_NEAR(areaOf(*pl), -before, 1e-12);

  AcDbLine line(AcGePoint3d(1, 2, 3), AcGePoint3d(4, 5, 6));
  ASSERT_EQ(reverseCurve(&line), Acad::eOk);
  EXPECT_EQ(line.startPoint(), AcGePoint3d(4, 5, 6));

  AcDbSpline spline(AcGePoint3dArray{{0, 0, 0}, {5, 5, 0}, {10, 0, 0}, {15, 5, 0}}, 3, 0.0);
  double length = 0, end = 0;
  spline.getEndParam(end);
  spline.getDistAtParam(end, length);
  AcGePoint3d third;
  spline.getPointAtDist(length / 3, third);
  ASSERT_EQ(reverseCurve(&spline), Acad::eOk);
  AcGePoint3d s, twoThirds;
  spline.getStartPoint(s);
  EXPECT_LT(s.distanceTo(AcGePoint3d(15, 5, 0)), 1e-9);
  spline.getPointAtDist(2 * length / 3, twoThirds);
  EXPECT_LT(twoThirds.distanceTo(third), 1e-6);

  // A spline of a control frame only, rational, with uneven knots.
  AcDbSpline frame;
  ASSERT_EQ(frame.setNurbsData(2, true, false, false, AcGePoint3dArray{{0, 0, 0}, {2, 4, 0}, {6, 4, 0}, {8, 0, 0}},
                               AcGeDoubleArray{0, 0, 0, 0.3, 1, 1, 1}, AcGeDoubleArray{1, 2, 0.5, 1}),
            Acad::eOk);
  frame.getEndParam(end);
  frame.getDistAtParam(end, length);
  frame.getPointAtDist(length / 4, third);
  ASSERT_EQ(reverseCurve(&frame), Acad::eOk);
  AcGePoint3d threeQuarters;
  frame.getPointAtDist(3 * length / 4, threeQuarters);
  EXPECT_LT(threeQuarters.distanceTo(third), 1e-6);
  frame.getStartPoint(s);
  EXPECT_LT(s.distanceTo(AcGePoint3d(8, 0, 0)), 1e-9);

  AcDbCircle circle(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 1.0);
  EXPECT_EQ(reverseCurve(&circle), Acad::eNotApplicable);
}

TEST(PolylineStart, RotatedOnlyWhenClosedAndInRange) {
  auto pl = rect(0, 0, 4, 2);
  ASSERT_EQ(rotateClosedPolyStart(pl.get(), 2), Acad::eOk);
  AcGePoint2d p;
  pl->getPointAt(0, p);
  EXPECT_EQ(p, AcGePoint2d(4, 2));
  EXPECT_TRUE(pl->isClosed());
  EXPECT_EQ(rotateClosedPolyStart(pl.get(), 4), Acad::eInvalidIndex);
  pl->setClosed(false);
  EXPECT_EQ(rotateClosedPolyStart(pl.get(), 1), Acad::eNotApplicable);
}

namespace {

// The largest distance between the two curves at points along the first,
// matched by distance along each.
double apart(const AcGeCurve3d& ge, const AcDbCurve& db) {
  double lo, hi, end = 0, len = 0;
  ge.getInterval(lo, hi);
  db.getEndParam(end);
  db.getDistAtParam(end, len);
  EXPECT_NEAR(len, ge.length(), 1e-6);
  double worst = 0;
  for (int i = 0; i <= 16; ++i) {
    const double t = lo + (hi - lo) * i / 16;
    AcGePoint3d p;
    if (db.getPointAtDist(std::min(len, ge.length(lo, t)), p) != Acad::eOk) return 1e300;
    worst = std::max(worst, p.distanceTo(ge.evalPoint(t)));
  }
  return worst;
}

}  // namespace

TEST(GeCurveToDbCurve, EachKindBecomesItsDatabaseCurve) {
  const AcGeLineSeg3d seg(AcGePoint3d(1, 2, 3), AcGePoint3d(4, 6, 3));
  std::unique_ptr<AcDbCurve> line(geCurveToDbCurve(&seg));
  ASSERT_TRUE(AcDbLine::cast(line.get()));
  EXPECT_LT(apart(seg, *line), 1e-12);
  // An arc in a tilted plane, and the whole circle.
  const AcGeVector3d n = AcGeVector3d(1, -2, 3).normal();
  const AcGeCircArc3d arc(AcGePoint3d(5, 5, 5), n, n.perpVector(), 4, 0.3, 2.5);
  std::unique_ptr<AcDbCurve> a(geCurveToDbCurve(&arc));
  ASSERT_TRUE(AcDbArc::cast(a.get()));
  EXPECT_LT(apart(arc, *a), 1e-9);
  std::unique_ptr<AcDbCurve> c(geCurveToDbCurve(&static_cast<const AcGeCurve3d&>(AcGeCircArc3d(AcGePoint3d(1, 1, 0), n, 2))));
  ASSERT_TRUE(AcDbCircle::cast(c.get()));
  EXPECT_NEAR(AcDbCircle::cast(c.get())->radius(), 2, 1e-12);
  // An elliptical arc whose second axis is the longer one.
  const AcGeEllipArc3d ell(AcGePoint3d(0, 0, 1), AcGeVector3d(1, 0, 0), AcGeVector3d(0, 1, 0), 2, 5, 0.5, 4.0);
  std::unique_ptr<AcDbCurve> e(geCurveToDbCurve(&ell));
  ASSERT_TRUE(AcDbEllipse::cast(e.get()));
  EXPECT_NEAR(AcDbEllipse::cast(e.get())->majorRadius(), 5, 1e-12);
  EXPECT_LT(apart(ell, *e), 1e-6);
  // A rational NURBS curve.
  const AcGeNurbCurve3d nurbs(3, {0, 0, 0, 0, 1, 2, 2, 2, 2},
                              {{0, 0, 0}, {1, 3, 0}, {4, 4, 1}, {6, 1, 0}, {9, 2, 0}}, {1, 2, 0.5, 1, 1});
  std::unique_ptr<AcDbCurve> s(geCurveToDbCurve(&nurbs));
  ASSERT_TRUE(AcDbSpline::cast(s.get()));
  EXPECT_LT(apart(nurbs, *s), 1e-6);
  // Kinds without a database curve give none.
  const AcGeLine3d inf(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 0, 0));
  EXPECT_EQ(geCurveToDbCurve(&inf), nullptr);
  EXPECT_EQ(geCurveToDbCurve(static_cast<const AcGeCurve3d*>(nullptr)), nullptr);
}

TEST(GeCurveToDbCurve, CompositesOfSegmentsAndArcsBecomePolylines) {
  // A closed polyline with arcs either way round, through a plane curve and back.
  LwPoly p;
  p.verts = {{{0, 0}, 0.0}, {{10, 0}, 0.5}, {{10, 10}, -0.3}, {{0, 10}, 0.0}};
  p.closed = true;
  auto plane = lwPolyToCurve2d(p);
  ASSERT_TRUE(plane);
  std::unique_ptr<AcDbCurve> made(geCurveToDbCurve(plane.get()));
  auto* pl = AcDbPolyline::cast(made.get());
  ASSERT_TRUE(pl);
  const LwPoly back = toLwPoly(*pl);
  EXPECT_TRUE(back.closed);
  ASSERT_EQ(back.verts.size(), 4u);
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_NEAR(back.verts[i].pt.x, p.verts[i].pt.x, 1e-9);
    EXPECT_NEAR(back.verts[i].pt.y, p.verts[i].pt.y, 1e-9);
    EXPECT_NEAR(back.verts[i].bulge, p.verts[i].bulge, 1e-9);
  }
  // The same open, lifted into a tilted plane at a height: the polyline
  // lies in that plane, its arcs turning the same way.
  p.closed = false;
  const AcGeVector3d n = AcGeVector3d(0, -1, 1).normal();
  AcGeCompositeCurve3d tilted;
  const AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(n) * AcGeMatrix3d::translation(AcGeVector3d(0, 0, 7));
  for (size_t i = 0; i + 1 < p.verts.size(); ++i) {
    AcGePoint3d a(p.verts[i].pt.x, p.verts[i].pt.y, 0), b(p.verts[i + 1].pt.x, p.verts[i + 1].pt.y, 0);
    tilted.appendOwned(zepk::ge::bulgeSegment(a.transformBy(toWorld), b.transformBy(toWorld), p.verts[i].bulge, n));
  }
  std::unique_ptr<AcDbCurve> open(geCurveToDbCurve(&tilted));
  pl = AcDbPolyline::cast(open.get());
  ASSERT_TRUE(pl);
  EXPECT_FALSE(pl->isClosed());
  EXPECT_EQ(pl->numVerts(), 4u);
  EXPECT_LT(apart(tilted, *pl), 1e-9);
  // A composite with an elliptical piece has no polyline.
  AcGeCompositeCurve3d mixed;
  mixed.appendOwned(new AcGeLineSeg3d(AcGePoint3d(2, 0, 0), AcGePoint3d(4, 0, 0)));
  mixed.appendOwned(new AcGeEllipArc3d(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 0, 0), AcGeVector3d(0, 1, 0), 4, 2, 0, 1));
  EXPECT_EQ(geCurveToDbCurve(&mixed), nullptr);
}
