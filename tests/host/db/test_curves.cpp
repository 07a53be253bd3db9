// Curve entities: the parameters each kind has, points and distances along
// them, derivatives, areas, nearest points, splits, offsets, intersections
// in the four extend modes, extents, explosion, splines and projections;
// and the vertex operations of lightweight polylines.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "host/dbelipse.h"
#include "host/dbpl.h"
#include "host/dbray.h"
#include "host/dbspline.h"
#include "host/dbxline.h"
#include "host/gearc3d.h"
#include "host/gelineseg2d.h"
#include "host/gelineseg3d.h"
#include "host/geplane.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

void expectNear(const AcGePoint3d& a, const AcGePoint3d& b, double tol = 1e-9) {
  EXPECT_NEAR(a.x, b.x, tol);
  EXPECT_NEAR(a.y, b.y, tol);
  EXPECT_NEAR(a.z, b.z, tol);
}

std::unique_ptr<AcDbPolyline> poly(const std::vector<std::vector<double>>& v, bool closed) {
  auto p = std::make_unique<AcDbPolyline>();
  for (size_t i = 0; i < v.size(); ++i)
    p->addVertexAt(static_cast<unsigned>(i), {v[i][0], v[i][1]}, v[i].size() > 2 ? v[i][2] : 0.0);
  p->setClosed(closed);
  return p;
}

struct Owned {
  AcDbVoidPtrArray items;
  ~Owned() {
    for (void* p : items) delete static_cast<AcDbEntity*>(p);
  }
  AcDbCurve* at(size_t i) const { return static_cast<AcDbCurve*>(items[i]); }
};

double param(const AcDbCurve& c, bool end) {
  double p = -1;
  EXPECT_EQ(end ? c.getEndParam(p) : c.getStartParam(p), Acad::eOk);
  return p;
}

// ---------------------------------------------------------------- parameters

TEST(DbCurves, EachKindHasItsOwnParameter) {
  AcDbLine line(AcGePoint3d(1, 1, 0), AcGePoint3d(4, 5, 0));
  EXPECT_DOUBLE_EQ(param(line, true), 5.0);
  AcGePoint3d p;
  ASSERT_EQ(line.getPointAtParam(2.5, p), Acad::eOk);
  expectNear(p, {2.5, 3, 0});

  // An arc across 0 degrees: the end parameter above the start.
  AcDbArc arc(AcGePoint3d(0, 0, 0), 2.0, 350 * kPi / 180, 10 * kPi / 180);
  EXPECT_NEAR(param(arc, false), 350 * kPi / 180, 1e-12);
  EXPECT_NEAR(param(arc, true), 370 * kPi / 180, 1e-12);
  ASSERT_EQ(arc.getPointAtParam(2 * kPi, p), Acad::eOk);
  expectNear(p, {2, 0, 0});

  AcDbCircle circle(AcGePoint3d(1, 2, 3), AcGeVector3d::kZAxis, 4.0);
  EXPECT_EQ(param(circle, false), 0.0);
  EXPECT_NEAR(param(circle, true), 2 * kPi, 1e-15);

  // An ellipse by its eccentric angle: at pi/2 the end of the minor axis.
  AcDbEllipse ell(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, AcGeVector3d(4, 0, 0), 0.5, 0.0, kPi);
  ASSERT_EQ(ell.getPointAtParam(kPi / 2, p), Acad::eOk);
  expectNear(p, {0, 2, 0});
  ASSERT_EQ(ell.getPointAtParam(kPi / 4, p), Acad::eOk);
  expectNear(p, {4 * std::cos(kPi / 4), 2 * std::sin(kPi / 4), 0});

  // A polyline by vertex index; along an arc the fraction goes with the angle.
  auto pl = poly({{0, 0}, {10, 0, 1}, {10, 10}}, false);
  EXPECT_EQ(param(*pl, true), 2.0);
  ASSERT_EQ(pl->getPointAtParam(1.5, p), Acad::eOk);
  expectNear(p, {15, 5, 0});
  ASSERT_EQ(pl->getPointAtParam(1.25, p), Acad::eOk);
  expectNear(p, {10 + 5 * std::sin(kPi / 4), 5 - 5 * std::cos(kPi / 4), 0});
  pl->setClosed(true);
  EXPECT_EQ(param(*pl, true), 3.0);

  // Rays and xlines by distance from the base point; unbounded ends far out.
  AcDbRay ray;
  ray.setBasePoint({1, 1, 0});
  ray.setUnitDir({0, 2, 0});
  EXPECT_EQ(param(ray, false), 0.0);
  EXPECT_GE(param(ray, true), 1e99);
  ASSERT_EQ(ray.getPointAtDist(3.0, p), Acad::eOk);
  expectNear(p, {1, 4, 0});
  AcDbXline xl;
  EXPECT_LE(param(xl, false), -1e99);
  EXPECT_EQ(xl.getStartPoint(p), Acad::eNotApplicable);
}

TEST(DbCurves, SplinesGoByTheirKnots) {
  AcGePoint3dArray cp{{0, 0, 0}, {1, 2, 0}, {3, 2, 0}, {4, 0, 0}};
  AcDbSpline s(3, false, false, false, cp, {0, 0, 0, 0, 2, 2, 2, 2}, {});
  EXPECT_EQ(param(s, false), 0.0);
  EXPECT_EQ(param(s, true), 2.0);
  AcGePoint3d p;
  ASSERT_EQ(s.getPointAtParam(1.0, p), Acad::eOk);
  expectNear(p, {2, 1.5, 0});
  // A spline of fit points passes through them; its knots are chord lengths.
  AcDbSpline fit(AcGePoint3dArray{{0, 0, 0}, {3, 4, 0}, {6, 0, 0}});
  EXPECT_NEAR(param(fit, true), 10.0, 1e-12);
  double t;
  ASSERT_EQ(fit.getParamAtPoint({3, 4, 0}, t), Acad::eOk);
  EXPECT_NEAR(t, 5.0, 1e-9);
}

TEST(DbCurves, DistancesAndPointsRoundTripAndRefuseWhatIsOff) {
  auto pl = poly({{0, 0}, {10, 0, 1}, {10, 10}, {0, 10}}, false);
  double len = 10 + 5 * kPi + 10;
  double d;
  ASSERT_EQ(pl->getDistAtParam(3.0, d), Acad::eOk);
  EXPECT_NEAR(d, len, 1e-9);
  AcGePoint3d p;
  ASSERT_EQ(pl->getPointAtDist(10 + 2.5 * kPi, p), Acad::eOk);
  expectNear(p, {15, 5, 0});
  double t;
  ASSERT_EQ(pl->getParamAtDist(10 + 2.5 * kPi, t), Acad::eOk);
  EXPECT_NEAR(t, 1.5, 1e-12);
  ASSERT_EQ(pl->getDistAtPoint({5, 10, 0}, d), Acad::eOk);
  EXPECT_NEAR(d, 15 + 5 * kPi, 1e-9);
  ASSERT_EQ(pl->getParamAtPoint({10, 0, 0}, t), Acad::eOk);
  EXPECT_NEAR(t, 1.0, 1e-12);
  EXPECT_EQ(pl->getParamAtPoint({5, 1, 0}, t), Acad::eInvalidInput);
  // On the line of a segment but past its end is not on the curve.
  AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0));
  EXPECT_EQ(line.getParamAtPoint({12, 0, 0}, t), Acad::eInvalidInput);
  EXPECT_EQ(pl->getParamAtPoint({0, 10 + 1e-3, 0}, t), Acad::eInvalidInput);
  EXPECT_EQ(pl->getPointAtParam(3.01, p), Acad::eInvalidInput);
  EXPECT_EQ(pl->getPointAtParam(-0.5, p), Acad::eInvalidInput);
  EXPECT_EQ(pl->getPointAtDist(len + 0.1, p), Acad::eInvalidInput);
  EXPECT_EQ(pl->getDistAtPoint({20, 20, 0}, d), Acad::eInvalidInput);
  AcDbPolyline empty;
  EXPECT_EQ(empty.getStartParam(t), Acad::eDegenerateGeometry);
}

TEST(DbCurves, DerivativesAreWithRespectToTheParameter) {
  AcDbArc arc(AcGePoint3d(0, 0, 0), 2.0, 0, kPi);
  AcGeVector3d d;
  ASSERT_EQ(arc.getFirstDeriv(kPi / 2, d), Acad::eOk);
  EXPECT_NEAR(d.x, -2, 1e-12);
  ASSERT_EQ(arc.getSecondDeriv(AcGePoint3d(0, 2, 0), d), Acad::eOk);
  EXPECT_NEAR(d.y, -2, 1e-12);
  AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(3, 4, 0));
  ASSERT_EQ(line.getFirstDeriv(1.0, d), Acad::eOk);  // a unit vector: the parameter is the distance
  EXPECT_NEAR(d.length(), 1.0, 1e-12);
  auto pl = poly({{0, 0}, {10, 0}, {10, 10}}, false);
  ASSERT_EQ(pl->getFirstDeriv(1.5, d), Acad::eOk);
  EXPECT_NEAR(d.y, 10.0, 1e-12);
}

TEST(DbCurves, AreasCloseOpenCurvesByTheirChords) {
  double a;
  auto square = poly({{0, 0}, {10, 0}, {10, 10}, {0, 10}}, true);
  ASSERT_EQ(square->getArea(a), Acad::eOk);
  EXPECT_NEAR(a, 100, 1e-9);
  // A bulge of 1 on the right side adds a half disc; -1 takes it away.
  auto bulged = poly({{0, 0}, {10, 0, 1}, {10, 10}, {0, 10}}, true);
  ASSERT_EQ(bulged->getArea(a), Acad::eOk);
  EXPECT_NEAR(a, 100 + 12.5 * kPi, 1e-9);
  auto dented = poly({{0, 0}, {10, 0, -1}, {10, 10}, {0, 10}}, true);
  ASSERT_EQ(dented->getArea(a), Acad::eOk);
  EXPECT_NEAR(a, 100 - 12.5 * kPi, 1e-9);
  // Clockwise or counter-clockwise alike; open ones closed by the chord.
  auto open = poly({{0, 10}, {10, 10}, {10, 0}, {0, 0}}, false);
  ASSERT_EQ(open->getArea(a), Acad::eOk);
  EXPECT_NEAR(a, 100, 1e-9);
  AcDbArc half(AcGePoint3d(0, 0, 0), 2.0, 0, kPi / 2);
  ASSERT_EQ(half.getArea(a), Acad::eOk);
  EXPECT_NEAR(a, kPi - 2, 1e-12);
  AcDbEllipse ell(AcGePoint3d(5, 5, 5), AcGeVector3d(0, 1, 0), AcGeVector3d(3, 0, 0), 0.5);
  ASSERT_EQ(ell.getArea(a), Acad::eOk);
  EXPECT_NEAR(a, kPi * 3 * 1.5, 1e-9);
  AcDbCircle c(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 1, 1), 3.0);
  ASSERT_EQ(c.getArea(a), Acad::eOk);
  EXPECT_NEAR(a, 9 * kPi, 1e-9);
}

TEST(DbCurves, NearestPointsPlainExtendedAndAlongADirection) {
  AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0));
  AcGePoint3d p;
  ASSERT_EQ(line.getClosestPointTo({15, 3, 0}, p), Acad::eOk);
  expectNear(p, {10, 0, 0});
  ASSERT_EQ(line.getClosestPointTo({15, 3, 0}, p, true), Acad::eOk);
  expectNear(p, {15, 0, 0});
  AcDbArc arc(AcGePoint3d(0, 0, 0), 5.0, 0, kPi / 2);
  ASSERT_EQ(arc.getClosestPointTo({0, -10, 0}, p, true), Acad::eOk);
  expectNear(p, {0, -5, 0});
  // Seen from above, a point high over the line's middle is nearest the middle.
  AcDbLine slope(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 10));
  ASSERT_EQ(slope.getClosestPointTo({5, 0, 100}, AcGeVector3d::kZAxis, p), Acad::eOk);
  expectNear(p, {5, 0, 5});
}

// ---------------------------------------------------------------- new curves

TEST(DbCurves, SplitsInOrderAndAcrossTheSeam) {
  AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0));
  line.setColorIndex(3);
  Owned parts;
  ASSERT_EQ(line.getSplitCurves(AcGeDoubleArray{7.0, 2.0}, parts.items), Acad::eOk);
  ASSERT_EQ(parts.items.size(), 3u);
  AcGePoint3d s, e;
  parts.at(1)->getStartPoint(s);
  parts.at(1)->getEndPoint(e);
  expectNear(s, {2, 0, 0});
  expectNear(e, {7, 0, 0});
  EXPECT_EQ(parts.at(2)->colorIndex(), 3);

  // A closed polyline at two points: two pieces, the second over the seam.
  auto sq = poly({{0, 0}, {10, 0}, {10, 10}, {0, 10}}, true);
  Owned q;
  ASSERT_EQ(sq->getSplitCurves(AcGePoint3dArray{{5, 0, 0}, {5, 10, 0}}, q.items), Acad::eOk);
  ASSERT_EQ(q.items.size(), 2u);
  auto* second = AcDbPolyline::cast(q.at(1));
  ASSERT_TRUE(second);
  EXPECT_FALSE(second->isClosed());
  EXPECT_EQ(second->numVerts(), 4u);
  second->getStartPoint(s);
  second->getEndPoint(e);
  expectNear(s, {5, 10, 0});
  expectNear(e, {5, 0, 0});
  double l1, l2;
  q.at(0)->getDistAtParam(param(*q.at(0), true), l1);
  q.at(1)->getDistAtParam(param(*q.at(1), true), l2);
  EXPECT_NEAR(l1 + l2, 40, 1e-9);

  // A circle at one parameter: one arc all round; at two: two arcs.
  AcDbCircle c(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 1.0);
  Owned arcs;
  ASSERT_EQ(c.getSplitCurves(AcGeDoubleArray{1.0, 4.0}, arcs.items), Acad::eOk);
  ASSERT_EQ(arcs.items.size(), 2u);
  auto* across = AcDbArc::cast(arcs.at(1));
  ASSERT_TRUE(across);
  EXPECT_NEAR(across->startAngle(), 4.0, 1e-12);
  EXPECT_NEAR(across->endAngle(), 1.0, 1e-12);
  // An arc's piece is cut at a bulge's fraction of angle.
  auto pl = poly({{0, 0, 1}, {10, 0}}, false);
  Owned halves;
  ASSERT_EQ(pl->getSplitCurves(AcGeDoubleArray{0.5}, halves.items), Acad::eOk);
  ASSERT_EQ(halves.items.size(), 2u);
  double b;
  AcDbPolyline::cast(halves.at(0))->getBulgeAt(0, b);
  EXPECT_NEAR(b, std::tan(kPi / 8), 1e-12);
  Owned none;
  EXPECT_EQ(line.getSplitCurves(AcGeDoubleArray{11.0}, none.items), Acad::eInvalidInput);
}

TEST(DbCurves, OffsetsGoRightOfTravelAndPolylinesAreTrimmed) {
  AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0));
  Owned o;
  ASSERT_EQ(line.getOffsetCurves(2.0, o.items), Acad::eOk);
  AcGePoint3d s;
  o.at(0)->getStartPoint(s);
  expectNear(s, {0, -2, 0});
  AcDbArc arc(AcGePoint3d(0, 0, 0), 5.0, 0, kPi);
  Owned a;
  ASSERT_EQ(arc.getOffsetCurves(1.0, a.items), Acad::eOk);
  EXPECT_NEAR(AcDbArc::cast(a.at(0))->radius(), 6.0, 1e-12);
  Owned bad;
  EXPECT_EQ(arc.getOffsetCurves(-6.0, bad.items), Acad::eInvalidInput);

  // A counter-clockwise square grows to the right of travel, mitred.
  auto sq = poly({{0, 0}, {10, 0}, {10, 10}, {0, 10}}, true);
  Owned out, in;
  ASSERT_EQ(sq->getOffsetCurves(1.0, out.items), Acad::eOk);
  ASSERT_EQ(out.items.size(), 1u);
  double area;
  out.at(0)->getArea(area);
  EXPECT_NEAR(area, 144, 1e-9);
  EXPECT_TRUE(out.at(0)->isClosed());
  ASSERT_EQ(sq->getOffsetCurves(-3.0, in.items), Acad::eOk);
  in.at(0)->getArea(area);
  EXPECT_NEAR(area, 16, 1e-9);
  Owned gone;
  sq->getOffsetCurves(-6.0, gone.items);
  EXPECT_TRUE(gone.items.empty());
  // A U shape whose inner offset would cross itself across the gap:
  // what is left is trimmed where the two arms meet.
  auto u = poly({{0, 0}, {10, 0}, {10, 10}, {8, 10}, {8, 2}, {2, 2}, {2, 10}, {0, 10}}, true);
  Owned inner;
  ASSERT_EQ(u->getOffsetCurves(-0.5, inner.items), Acad::eOk);
  ASSERT_EQ(inner.items.size(), 1u);
  inner.at(0)->getArea(area);
  EXPECT_NEAR(area, 9 * 1 + 2 * (1 * 8), 1e-9);  // the bottom strip and two arms
  // A notch narrower than twice the distance: its walls' offsets cross and
  // the loop between them is cut away.
  auto notch = poly({{0, 0}, {10, 0}, {10, 10}, {5.5, 10}, {5.5, 4}, {4.5, 4}, {4.5, 10}, {0, 10}}, true);
  Owned filled;
  ASSERT_EQ(notch->getOffsetCurves(1.0, filled.items), Acad::eOk);
  ASSERT_EQ(filled.items.size(), 1u);
  filled.at(0)->getArea(area);
  EXPECT_NEAR(area, 144, 1e-9);
  EXPECT_EQ(AcDbPolyline::cast(filled.at(0))->numVerts(), 4u);
  // A bulge stays a bulge on the offset.
  auto round = poly({{0, 0, 1}, {0, 10, 1}}, true);  // a circle of radius 5 of two halves
  Owned r;
  ASSERT_EQ(round->getOffsetCurves(1.0, r.items), Acad::eOk);
  r.at(0)->getArea(area);
  EXPECT_NEAR(area, kPi * 36, 1e-9);
}

TEST(DbCurves, IntersectionsInTheFourExtendModes) {
  AcDbLine a(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0));
  AcDbLine b(AcGePoint3d(12, -5, 0), AcGePoint3d(12, -1, 0));
  AcGePoint3dArray pts;
  ASSERT_EQ(a.intersectWith(&b, AcDb::kOnBothOperands, pts), Acad::eOk);
  EXPECT_TRUE(pts.empty());
  ASSERT_EQ(a.intersectWith(&b, AcDb::kExtendThis, pts), Acad::eOk);
  EXPECT_TRUE(pts.empty());
  ASSERT_EQ(a.intersectWith(&b, AcDb::kExtendBoth, pts), Acad::eOk);
  ASSERT_EQ(pts.size(), 1u);
  expectNear(pts[0], {12, 0, 0});
  AcDbLine c(AcGePoint3d(5, -5, 0), AcGePoint3d(5, -1, 0));
  pts.clear();
  a.intersectWith(&c, AcDb::kExtendArg, pts);
  ASSERT_EQ(pts.size(), 1u);
  pts.clear();
  a.intersectWith(&c, AcDb::kExtendThis, pts);
  EXPECT_TRUE(pts.empty());
  // In order along this curve, through an extended arc.
  AcDbArc arc(AcGePoint3d(0, 0, 0), 5.0, 0.0, kPi / 2);
  AcDbLine across(AcGePoint3d(10, -3, 0), AcGePoint3d(-10, -3, 0));
  pts.clear();
  across.intersectWith(&arc, AcDb::kExtendArg, pts);
  ASSERT_EQ(pts.size(), 2u);
  expectNear(pts[0], {4, -3, 0});
  expectNear(pts[1], {-4, -3, 0});
  pts.clear();
  across.intersectWith(&arc, AcDb::kOnBothOperands, pts);
  EXPECT_TRUE(pts.empty());
  // A polyline's end segment extended.
  auto pl = poly({{0, 0}, {5, 0}, {5, 5}}, false);
  AcDbLine far(AcGePoint3d(-1, 20, 0), AcGePoint3d(11, 20, 0));
  pts.clear();
  pl->intersectWith(&far, AcDb::kExtendThis, pts);
  ASSERT_EQ(pts.size(), 1u);
  expectNear(pts[0], {5, 20, 0});
  AcDbPoint notACurve;
  EXPECT_EQ(a.intersectWith(&notACurve, AcDb::kOnBothOperands, pts), Acad::eNotApplicable);
}

TEST(DbCurves, ExtentsExplosionSplinesAndProjections) {
  AcDbArc arc(AcGePoint3d(0, 0, 0), 5.0, 0.0, kPi);
  AcDbExtents ext;
  ASSERT_EQ(arc.getGeomExtents(ext), Acad::eOk);
  expectNear(ext.minPoint(), {-5, 0, 0});
  expectNear(ext.maxPoint(), {5, 5, 0});
  AcDbRay ray;
  EXPECT_EQ(ray.getGeomExtents(ext), Acad::eNotApplicable);

  auto pl = poly({{0, 0}, {10, 0, -1}, {10, 10}, {10, 10}}, false);
  Owned parts;
  ASSERT_EQ(pl->explode(parts.items), Acad::eOk);
  ASSERT_EQ(parts.items.size(), 2u);  // the segment of no length gives nothing
  auto* a = AcDbArc::cast(parts.at(1));
  ASSERT_TRUE(a);
  // A clockwise bulge is an arc counter-clockwise from the far end.
  AcGePoint3d s;
  a->getStartPoint(s);
  expectNear(s, {10, 10, 0});
  EXPECT_EQ(AcDbLine(AcGePoint3d(), AcGePoint3d(1, 0, 0)).explode(parts.items), Acad::eNotApplicable);

  AcDbSpline* sp = nullptr;
  ASSERT_EQ(pl->getSpline(sp), Acad::eOk);
  std::unique_ptr<AcDbSpline> owned(sp);
  double l1, l2;
  pl->getDistAtParam(3.0, l1);
  sp->getDistAtParam(param(*sp, true), l2);
  EXPECT_NEAR(l1, l2, 1e-9);

  // A tilted circle seen from above is an ellipse; a line stays a line.
  AcDbCircle c(AcGePoint3d(0, 0, 5), AcGeVector3d(0, 1, 1), 2.0);
  AcDbCurve* proj = nullptr;
  ASSERT_EQ(c.getOrthoProjectedCurve(AcGePlane::kXYPlane, proj), Acad::eOk);
  std::unique_ptr<AcDbCurve> pp(proj);
  auto* e = AcDbEllipse::cast(proj);
  ASSERT_TRUE(e);
  EXPECT_NEAR(e->majorRadius(), 2.0, 1e-12);
  EXPECT_NEAR(e->minorRadius(), 2.0 * std::sqrt(0.5), 1e-12);
  AcDbLine up(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 1));
  ASSERT_EQ(up.getProjectedCurve(AcGePlane::kXYPlane, AcGeVector3d(0, 1, 1), proj), Acad::eOk);
  pp.reset(proj);
  AcGePoint3d q;
  proj->getEndPoint(q);
  expectNear(q, {1, 0, 0});
}

TEST(DbPolylineVertices, SegmentsAndConversions) {
  auto pl = poly({{0, 0}, {10, 0, 1}, {10, 10}, {10, 10}}, false);
  EXPECT_EQ(pl->segType(0), AcDbPolyline::kLine);
  EXPECT_EQ(pl->segType(1), AcDbPolyline::kArc);
  EXPECT_EQ(pl->segType(2), AcDbPolyline::kCoincident);
  AcGeLineSeg3d seg;
  EXPECT_EQ(pl->getLineSegAt(0, seg), Acad::eOk);
  expectNear(seg.endPoint(), {10, 0, 0});
  EXPECT_EQ(pl->getLineSegAt(1, seg), Acad::eNotApplicable);
  EXPECT_EQ(pl->getLineSegAt(3, seg), Acad::eInvalidIndex);
  AcGeCircArc3d arc;
  ASSERT_EQ(pl->getArcSegAt(1, arc), Acad::eOk);
  expectNear(arc.center(), {10, 5, 0});
  EXPECT_NEAR(arc.radius(), 5, 1e-12);
  double t;
  EXPECT_TRUE(pl->onSegAt(1, {15, 5}, t));
  EXPECT_NEAR(t, 1.5, 1e-12);
  EXPECT_FALSE(pl->onSegAt(0, {15, 5}, t));

  pl->setConstantWidth(0.5);
  pl->setElevation(3.0);
  AcDb2dPolyline* old = nullptr;
  ASSERT_EQ(pl->convertTo(old, false), Acad::eOk);
  std::unique_ptr<AcDb2dPolyline> two(old);
  AcGePoint3d e;
  two->getEndPoint(e);
  expectNear(e, {10, 10, 3});
  double len1, len2;
  pl->getDistAtParam(3.0, len1);
  two->getDistAtParam(3.0, len2);
  EXPECT_NEAR(len1, len2, 1e-9);
  AcDbPolyline back;
  AcDbEntity* src = two.get();
  ASSERT_EQ(back.convertFrom(src, false), Acad::eOk);
  EXPECT_EQ(back.numVerts(), 4u);
  double b, sw, ew;
  back.getBulgeAt(1, b);
  back.getWidthsAt(0, sw, ew);
  EXPECT_NEAR(b, 1.0, 1e-15);
  EXPECT_NEAR(sw, 0.5, 1e-15);
  EXPECT_NEAR(back.elevation(), 3.0, 1e-15);
}

TEST(DbPolylineVertices, FittedOldStylePolylinesFollowTheirFitVertices) {
  // A spline-fit polyline: the frame vertex is not on the curve.
  AcDb2dPolyline p;
  auto add = [&](double x, double y, AcDb::Vertex2dType type) {
    auto* v = new AcDb2dVertex(AcGePoint3d(x, y, 0));
    v->setVertexType(type);
    p.appendVertex(v);
  };
  add(0, 0, AcDb::k2dSplineCtlVertex);
  add(0, 0, AcDb::k2dSplineFitVertex);
  add(50, 50, AcDb::k2dSplineCtlVertex);
  add(5, 1, AcDb::k2dSplineFitVertex);
  add(10, 0, AcDb::k2dSplineFitVertex);
  EXPECT_EQ(param(p, true), 2.0);
  AcGeVector3d dir;
  AcGePoint3d q;
  ASSERT_EQ(p.getPointAtParam(1.0, q), Acad::eOk);
  expectNear(q, {5, 1, 0});
  AcDb3dPolyline p3(AcDb::k3dSimplePoly, AcGePoint3dArray{{0, 0, 0}, {3, 4, 12}}, false);
  double d;
  ASSERT_EQ(p3.getDistAtParam(1.0, d), Acad::eOk);
  EXPECT_NEAR(d, 13, 1e-12);
  AcGePlane plane;
  AcDb::Planarity kind;
  ASSERT_EQ(p3.getPlane(plane, kind), Acad::eOk);
  EXPECT_EQ(kind, AcDb::kLinear);
}

}  // namespace
