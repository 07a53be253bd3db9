// Curves of the geometry library: the kernels on their own, then what each
// kind of curve answers, then where curves meet.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

#include "host/ge/kernels.h"
#include "host/gearc3d.h"
#include "host/gecint3d.h"
#include "host/gecomp3d.h"
#include "host/geell3d.h"
#include "host/gelin3d.h"
#include "host/gelineseg3d.h"
#include "host/gemat3d.h"
#include "host/genurb3d.h"
#include "host/geplane.h"
#include "host/geray3d.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
using zepk::ge::HPoint;

void expectNear(const AcGePoint3d& a, const AcGePoint3d& b, double tol = 1e-9) {
  EXPECT_NEAR(a.x, b.x, tol);
  EXPECT_NEAR(a.y, b.y, tol);
  EXPECT_NEAR(a.z, b.z, tol);
}

AcGeNurbCurve3d randomSpline(std::mt19937& rng, int degree, int n, bool rational) {
  std::uniform_real_distribution<double> u(-10, 10), w(0.5, 2.0);
  AcGePoint3dArray pts;
  AcGeDoubleArray weights;
  for (int i = 0; i < n; ++i) {
    pts.push_back({u(rng), u(rng), u(rng)});
    weights.push_back(rational ? w(rng) : 1.0);
  }
  AcGeDoubleArray knots(degree + 1, 0.0);
  for (int i = 1; i < n - degree; ++i) knots.push_back(i);
  knots.insert(knots.end(), degree + 1, n - degree);
  return AcGeNurbCurve3d(degree, knots, pts, weights);
}

std::unique_ptr<AcGeCompositeCurve3d> polyline(const std::vector<AcGePoint3d>& pts, const std::vector<double>& bulges,
                                               bool closed) {
  auto c = std::make_unique<AcGeCompositeCurve3d>();
  size_t n = closed ? pts.size() : pts.size() - 1;
  for (size_t i = 0; i < n; ++i)
    c->appendOwned(zepk::ge::bulgeSegment(pts[i], pts[(i + 1) % pts.size()], bulges[i], AcGeVector3d::kZAxis));
  return c;
}

// ---------------------------------------------------------------- kernels

TEST(GeKernels, BasisFunctionsSumToOneAndDerivativesMatchDifferences) {
  std::vector<double> U{0, 0, 0, 0, 1, 2, 2, 3, 4, 4, 4, 4};
  int p = 3, n = static_cast<int>(U.size()) - p - 2;
  for (double u : {0.0, 0.5, 1.0, 1.999, 2.0, 3.7, 4.0}) {
    int span = zepk::ge::findSpan(n, p, u, U);
    EXPECT_LE(U[span], u);
    EXPECT_GT(U[span + 1], std::min(u, 3.9999));
    std::vector<std::vector<double>> d;
    zepk::ge::dersBasisFuns(span, u, p, 2, U, d);
    double sum = 0, dsum = 0;
    for (int j = 0; j <= p; ++j) sum += d[0][j], dsum += d[1][j];
    EXPECT_NEAR(sum, 1.0, 1e-14);
    EXPECT_NEAR(dsum, 0.0, 1e-12);
  }
}

TEST(GeKernels, InsertionElevationAndRemovalKeepTheCurve) {
  std::mt19937 rng(7);
  for (bool rational : {false, true}) {
    AcGeNurbCurve3d c = randomSpline(rng, 3, 7, rational);
    AcGeNurbCurve3d ins(c), ele(c);
    ins.insertKnot(1.3).insertKnot(1.3).insertKnot(2.0);
    ele.elevateDegree(2);
    EXPECT_EQ(ins.numControlPoints(), c.numControlPoints() + 3);
    EXPECT_EQ(ele.degree(), 5);
    // Continuity is kept: each of the 3 interior simple knots appears 3 times.
    EXPECT_EQ(ele.numKnots(), 6 * 2 + 3 * 3);
    for (int i = 0; i <= 40; ++i) {
      double t = 4.0 * i / 40;
      expectNear(ins.evalPoint(t), c.evalPoint(t));
      expectNear(ele.evalPoint(t), c.evalPoint(t));
    }
    std::vector<HPoint> Pw;
    for (int i = 0; i < ins.numControlPoints(); ++i) {
      AcGePoint3d q = ins.controlPointAt(i);
      double w = ins.weightAt(i);
      Pw.push_back({q.x * w, q.y * w, q.z * w, w});
    }
    std::vector<double> U = ins.knots();
    EXPECT_EQ(zepk::ge::removeKnot(3, U, Pw, 1.3, 2, 1e-9), 2);
    EXPECT_EQ(Pw.size(), static_cast<size_t>(c.numControlPoints() + 1));
  }
}

TEST(GeKernels, InterpolationPassesThroughThePointsWithTheTangentsAsked) {
  std::vector<HPoint> pts{{0, 0, 0, 1}, {1, 2, 0, 1}, {3, 1, 0, 1}, {4, 4, 1, 1}, {6, 3, 0, 1}};
  HPoint st{1, 0, 0, 0}, et{0, -1, 0, 0};
  int p;
  std::vector<double> U;
  std::vector<HPoint> Pw;
  ASSERT_TRUE(zepk::ge::interpolate(pts, 3, &st, &et, p, U, Pw));
  AcGePoint3dArray cp;
  for (auto& q : Pw) cp.push_back({q.x, q.y, q.z});
  AcGeNurbCurve3d c(p, U, cp);
  for (auto& q : pts) EXPECT_LT(c.distanceTo({q.x, q.y, q.z}), 1e-9);
  AcGeVector3dArray d;
  c.evalPoint(0.0, 1, d);
  EXPECT_TRUE(d[0].isCodirectionalTo({1, 0, 0}));
  c.evalPoint(1.0, 1, d);
  EXPECT_TRUE(d[0].isCodirectionalTo({0, -1, 0}));
  // Repeated points cannot be interpolated.
  std::vector<HPoint> bad{{0, 0, 0, 1}, {0, 0, 0, 1}};
  EXPECT_FALSE(zepk::ge::interpolate(bad, 3, nullptr, nullptr, p, U, Pw));
}

TEST(GeKernels, LineAndCircleMeetingsCountTangency) {
  double t[2], pts[4];
  EXPECT_EQ(zepk::ge::intersectLineCircle(-5, 0, 1, 0, 0, 0, 2, 1e-10, t), 2);
  EXPECT_DOUBLE_EQ(t[0], 3);
  EXPECT_DOUBLE_EQ(t[1], 7);
  EXPECT_EQ(zepk::ge::intersectLineCircle(-5, 2, 1, 0, 0, 0, 2, 1e-10, t), 1);
  EXPECT_EQ(zepk::ge::intersectLineCircle(-5, 2.1, 1, 0, 0, 0, 2, 1e-10, t), 0);
  EXPECT_EQ(zepk::ge::intersectCircles(0, 0, 1, 2, 0, 1, 1e-10, pts), 1);
  EXPECT_NEAR(pts[0], 1, 1e-12);
  EXPECT_EQ(zepk::ge::intersectCircles(0, 0, 2, 1, 0, 1, 1e-10, pts), 1);  // inside, touching
  EXPECT_NEAR(pts[0], 2, 1e-12);
  EXPECT_EQ(zepk::ge::intersectCircles(0, 0, 1, 1, 0, 1, 1e-10, pts), 2);
  EXPECT_EQ(zepk::ge::intersectCircles(0, 0, 1, 0, 0, 1, 1e-10, pts), -1);
  EXPECT_EQ(zepk::ge::intersectCircles(0, 0, 1, 0, 0, 2, 1e-10, pts), 0);
  EXPECT_NEAR(zepk::ge::integrate([](double x) { return std::sqrt(x); }, 0, 1), 2.0 / 3.0, 1e-12);
}

// ---------------------------------------------------------------- kinds

TEST(GeCurves, ArcAnswersByAngle) {
  AcGeCircArc3d arc(AcGePoint3d(1, 1, 0), AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 2.0, kPi / 2, kPi);
  expectNear(arc.startPoint(), {1, 3, 0});
  expectNear(arc.endPoint(), {-1, 1, 0});
  EXPECT_NEAR(arc.length(), kPi, 1e-12);
  EXPECT_NEAR(arc.paramOf({1 - std::sqrt(2.0), 1 + std::sqrt(2.0), 0}), 3 * kPi / 4, 1e-12);
  // Off the arc: the nearer end.
  EXPECT_NEAR(arc.paramOf({5, 0.9, 0}), kPi / 2, 1e-12);
  EXPECT_NEAR(arc.paramOf({-1, -3, 0}), kPi, 1e-12);
  EXPECT_NEAR(arc.paramAtLength(kPi / 2, kPi / 2), 3 * kPi / 4, 1e-12);
  // An end angle below the start is taken a turn later.
  AcGeCircArc3d wrap(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 1, 3 * kPi / 2, kPi / 2);
  EXPECT_NEAR(wrap.endAng() - wrap.startAng(), kPi, 1e-12);
  // Through three points, and reversed: the same points the other way.
  AcGeCircArc3d three(AcGePoint3d(1, 0, 0), AcGePoint3d(0, 1, 0), AcGePoint3d(-1, 0, 0));
  expectNear(three.center(), AcGePoint3d::kOrigin);
  EXPECT_NEAR(three.length(), kPi, 1e-12);
  AcGeCircArc3d rev(three);
  rev.reverseParam();
  expectNear(rev.startPoint(), three.endPoint());
  expectNear(rev.evalPoint(0.5 * (rev.startAng() + rev.endAng())), {0, 1, 0});
  AcGePoint3d lo, hi;
  arc.orthoBoundBlock().getMinMaxPoints(lo, hi);
  expectNear(lo, {-1, 1, 0});
  expectNear(hi, {1, 3, 0});
}

TEST(GeCurves, EllipseKeepsItsPointsUnderAnyAffineMatrix) {
  AcGeEllipArc3d e(AcGePoint3d(1, 2, 0), AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 4, 1, 0.3, 2.0);
  AcGeMatrix3d m = AcGeMatrix3d::rotation(0.7, AcGeVector3d::kZAxis) * AcGeMatrix3d::scaling(1.0);
  m.entry[0][0] *= 0.5;  // a shear and a squeeze
  m.entry[0][1] += 0.8;
  AcGeEllipArc3d t(e);
  t.transformBy(m);
  EXPECT_GE(t.majorRadius(), t.minorRadius());
  EXPECT_NEAR(t.majorAxis().dotProduct(t.minorAxis()), 0.0, 1e-12);
  expectNear(t.startPoint(), m * e.startPoint());
  expectNear(t.endPoint(), m * e.endPoint());
  for (int i = 0; i <= 10; ++i) EXPECT_LT(t.distanceTo(m * e.evalPoint(0.3 + 1.7 * i / 10)), 1e-9);
}

TEST(GeCurves, ConversionsToNurbsAreExact) {
  AcGeCircArc3d arc(AcGePoint3d(2, 1, 3), AcGeVector3d(1, 1, 1), 5.0);
  AcGeNurbCurve3d n(arc);
  EXPECT_EQ(n.degree(), 2);
  EXPECT_TRUE(n.isRational());
  for (int i = 0; i <= 50; ++i) EXPECT_NEAR(n.evalPoint(i * 2 * kPi / 50).distanceTo(arc.center()), 5.0, 1e-12);
  AcGeEllipArc3d e(AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 3, 1, 0.5, 4.0);
  AcGeNurbCurve3d ne(e);
  expectNear(ne.evalPoint(0.5), e.startPoint());
  expectNear(ne.evalPoint(4.0), e.endPoint());
  for (int i = 0; i <= 50; ++i) {
    AcGePoint3d q = ne.evalPoint(0.5 + 3.5 * i / 50);
    EXPECT_NEAR(q.x * q.x / 9 + q.y * q.y, 1.0, 1e-12);
  }
  // A polyline with an arc: joined into one curve through the same points.
  auto pl = polyline({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}}, {0, 0.5, -1}, false);
  std::unique_ptr<AcGeNurbCurve3d> np(AcGeNurbCurve3d::convertFrom(*pl));
  ASSERT_TRUE(np);
  EXPECT_EQ(np->degree(), 2);
  EXPECT_NEAR(np->length(), pl->length(), 1e-9);
  expectNear(np->evalPoint(0.0), pl->evalPoint(0.0));
  AcGePoint3d e0;
  np->hasEndPoint(e0);
  expectNear(e0, {0, 4, 0});
  for (int i = 0; i <= 30; ++i) EXPECT_LT(pl->distanceTo(np->evalPoint(np->knots().front() + (np->knots().back() - np->knots().front()) * i / 30)), 1e-9);
}

TEST(GeCurves, CompositeParameterCountsPiecesLinearInLengthAndAngle) {
  auto pl = polyline({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}}, {0, 1, 0}, false);
  EXPECT_EQ(pl->numCurves(), 2);
  double lo, hi;
  pl->getInterval(lo, hi);
  EXPECT_EQ(hi, 2.0);
  expectNear(pl->evalPoint(0.25), {2.5, 0, 0});
  // The second piece is a half circle about (10, 5) counter-clockwise.
  expectNear(pl->evalPoint(1.5), {15, 5, 0});
  EXPECT_NEAR(pl->length(), 10 + 5 * kPi, 1e-12);
  EXPECT_NEAR(pl->length(0.5, 1.5), 5 + 2.5 * kPi, 1e-12);
  EXPECT_NEAR(pl->paramAtLength(0.0, 10 + 2.5 * kPi), 1.5, 1e-12);
  EXPECT_NEAR(pl->paramAtLength(2.0, 2.5 * kPi, false), 1.5, 1e-12);
  EXPECT_NEAR(pl->paramOf({16, 5, 0}), 1.5, 1e-12);
  AcGeVector3dArray d;
  pl->evalPoint(0.5, 1, d);
  expectNear(AcGePoint3d::kOrigin + d[0], {10, 0, 0});
  // Samples: the vertex is among them and no chord strays.
  AcGePoint3dArray pts;
  AcGeDoubleArray prm;
  pl->getSamplePoints(0, 2, 0.01, pts, prm);
  bool vertex = false;
  for (size_t i = 0; i < pts.size(); ++i) {
    vertex = vertex || pts[i].isEqualTo({10, 0, 0});
    EXPECT_LT(pl->distanceTo(pts[i]), 1e-9);
    if (i) {
      EXPECT_GT(prm[i], prm[i - 1]);
      AcGePoint3d mid = pts[i - 1] + (pts[i] - pts[i - 1]) * 0.5;
      EXPECT_LT(pl->distanceTo(mid), 0.01 + 1e-12);
    }
  }
  EXPECT_TRUE(vertex);
  // Split inside the arc.
  AcGeCurve3d *a, *b;
  pl->getSplitCurves(1.5, a, b);
  ASSERT_TRUE(a && b);
  EXPECT_NEAR(a->length() + b->length(), pl->length(), 1e-9);
  AcGePoint3d e;
  a->hasEndPoint(e);
  expectNear(e, {15, 5, 0});
  delete a;
  delete b;
  AcGeCurve3d *c, *n;
  pl->getSplitCurves(0.0, c, n);
  EXPECT_EQ(c, nullptr);
  delete n;
}

TEST(GeCurves, SamplingATinyCurveGivesItsTwoEnds) {
  AcGeLineSeg3d s(AcGePoint3d(1, 1, 1), AcGePoint3d(1, 1, 1 + 1e-9));
  AcGePoint3dArray pts;
  AcGeDoubleArray prm;
  s.getSamplePoints(0, 1, 0.1, pts, prm);
  EXPECT_EQ(pts.size(), 2u);
  AcGeCircArc3d circle(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis, 1.0);
  circle.getSamplePoints(0, 2 * kPi, 0.001, pts, prm);
  EXPECT_GT(pts.size(), 20u);
  expectNear(pts.front(), pts.back());
}

// ---------------------------------------------------------------- meetings

TEST(GeIntersect, LinesArcsAndTangents) {
  AcGeLineSeg3d seg(AcGePoint3d(-5, 1, 0), AcGePoint3d(5, 1, 0));
  AcGeCircArc3d circle(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis, 1.0);
  AcGeCurveCurveInt3d tan(seg, circle);
  ASSERT_EQ(tan.numIntPoints(), 1);
  EXPECT_TRUE(tan.isTangential(0));
  expectNear(tan.intPoint(0), {0, 1, 0});
  AcGeLineSeg3d cross(AcGePoint3d(-5, 0.5, 0), AcGePoint3d(5, 0.5, 0));
  AcGeCurveCurveInt3d two(cross, circle);
  ASSERT_EQ(two.numIntPoints(), 2);
  double p1, p2, q1, q2;
  two.getIntParams(0, p1, p2);
  two.getIntParams(1, q1, q2);
  EXPECT_LT(p1, q1);  // in order along the segment
  EXPECT_NEAR(p2, 5 * kPi / 6, 1e-12);
  two.orderWrt2();
  two.getIntParams(0, p1, p2);
  EXPECT_NEAR(p2, kPi / 6, 1e-12);
  // A line through the plane of an arc in space.
  AcGeLine3d through(AcGePoint3d(1, 0, -3), AcGeVector3d(0, 0, 1));
  AcGeCurveCurveInt3d one(through, circle);
  ASSERT_EQ(one.numIntPoints(), 1);
  EXPECT_NEAR(one.intPoint(0).z, 0, 1e-12);
  // A ray meets only ahead of its base.
  AcGeRay3d ray(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 0, 0));
  EXPECT_EQ(AcGeCurveCurveInt3d(ray, circle).numIntPoints(), 1);
}

TEST(GeIntersect, CoincidentStretchesGiveTheirEnds) {
  AcGeLineSeg3d a(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0)), b(AcGePoint3d(12, 0, 0), AcGePoint3d(4, 0, 0));
  AcGeCurveCurveInt3d r(a, b);
  ASSERT_EQ(r.numIntPoints(), 2);
  EXPECT_EQ(r.overlapCount(), 2);
  expectNear(r.intPoint(0), {4, 0, 0});
  expectNear(r.intPoint(1), {10, 0, 0});
  double s, t;
  r.getIntParams(0, s, t);
  EXPECT_NEAR(t, 1.0, 1e-12);
  // End to end is a single meeting, not an overlap.
  AcGeLineSeg3d c(AcGePoint3d(10, 0, 0), AcGePoint3d(20, 0, 0));
  AcGeCurveCurveInt3d touch(a, c);
  ASSERT_EQ(touch.numIntPoints(), 1);
  EXPECT_EQ(touch.overlapCount(), 0);
  // Two arcs of one circle.
  AcGeCircArc3d arc1(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 1, 0, kPi);
  AcGeCircArc3d arc2(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 1, kPi / 2, 3 * kPi / 2);
  AcGeCurveCurveInt3d arcs(arc1, arc2);
  ASSERT_EQ(arcs.numIntPoints(), 2);
  expectNear(arcs.intPoint(0), {0, 1, 0});
  expectNear(arcs.intPoint(1), {-1, 0, 0});
}

TEST(GeIntersect, CurveWithItselfLeavesJointsAndSeamOut) {
  // A bow tie: closed, crossing once in the middle.
  auto bow = polyline({{0, 0, 0}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}}, {0, 0, 0, 0}, true);
  AcGeCurveCurveInt3d self(*bow, *bow);
  ASSERT_EQ(self.numIntPoints(), 1);
  expectNear(self.intPoint(0), {5, 5, 0});
  double a, b;
  self.getIntParams(0, a, b);
  EXPECT_NEAR(a, 0.5, 1e-12);
  EXPECT_NEAR(b, 2.5, 1e-12);
  // A square does not meet itself; neither does a circle.
  auto square = polyline({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0, 0.3, 0, 0}, true);
  EXPECT_EQ(AcGeCurveCurveInt3d(*square, *square).numIntPoints(), 0);
  AcGeCircArc3d circle(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis, 1.0);
  EXPECT_EQ(AcGeCurveCurveInt3d(circle, circle).numIntPoints(), 0);
  // A loop in a spline.
  AcGePoint3dArray fit{{0, 0, 0}, {4, 0, 0}, {5, 2, 0}, {3, 3, 0}, {2, 1, 0}, {3, -2, 0}, {6, -3, 0}};
  AcGeNurbCurve3d loop(fit);
  AcGeCurveCurveInt3d ls(loop, loop);
  ASSERT_EQ(ls.numIntPoints(), 1);
  ls.getIntParams(0, a, b);
  expectNear(loop.evalPoint(a), loop.evalPoint(b), 1e-8);
}

TEST(GeIntersect, SplinesAndEllipsesMeetOthersNumerically) {
  AcGeEllipArc3d e(AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 4, 2);
  AcGeLine3d axis(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 0, 0));
  AcGeCurveCurveInt3d r(axis, e);
  ASSERT_EQ(r.numIntPoints(), 2);
  expectNear(r.intPoint(0), {-4, 0, 0}, 1e-9);
  // Touching the top of the ellipse.
  AcGeLineSeg3d top(AcGePoint3d(-5, 2, 0), AcGePoint3d(5, 2, 0));
  AcGeCurveCurveInt3d t(top, e);
  ASSERT_EQ(t.numIntPoints(), 1);
  EXPECT_TRUE(t.isTangential(0));
  expectNear(t.intPoint(0), {0, 2, 0}, 1e-6);
  AcGeCircArc3d c(AcGePoint3d(4, 0, 0), AcGeVector3d::kZAxis, 1.0);
  AcGeCurveCurveInt3d ec(e, c);
  EXPECT_EQ(ec.numIntPoints(), 2);
  for (int i = 0; i < ec.numIntPoints(); ++i) {
    EXPECT_NEAR(ec.intPoint(i).distanceTo(c.center()), 1.0, 1e-9);
    double s, u;
    ec.getIntParams(i, s, u);
    expectNear(e.evalPoint(s), ec.intPoint(i), 1e-9);
  }
}

}  // namespace

TEST(GeCurves, BoxesOfCurvedKindsTouchTheirExtremes) {
  // A whole circle as an exact rational NURBS curve, tilted out of its
  // plane: its box is the centre plus and minus r sqrt(1 - n_i^2).
  const AcGeVector3d n = AcGeVector3d(1, 2, 2).normal();
  const AcGeNurbCurve3d circle(AcGeCircArc3d(AcGePoint3d(3, -1, 2), n, 5));
  AcGePoint3d lo, hi;
  circle.orthoBoundBlock().getMinMaxPoints(lo, hi);
  for (unsigned i = 0; i < 3; ++i) {
    const double half = 5 * std::sqrt(1 - n[i] * n[i]);
    EXPECT_NEAR(lo[i], AcGePoint3d(3, -1, 2)[i] - half, 1e-10) << i;
    EXPECT_NEAR(hi[i], AcGePoint3d(3, -1, 2)[i] + half, 1e-10) << i;
  }
  // A whole ellipse at a slant: half widths sqrt(a^2 cos^2 + b^2 sin^2).
  const double t = 0.6;
  const AcGeEllipArc3d e(AcGePoint3d(0, 0, 0), AcGeVector3d(std::cos(t), std::sin(t), 0),
                         AcGeVector3d(-std::sin(t), std::cos(t), 0), 4, 1.5);
  e.orthoBoundBlock().getMinMaxPoints(lo, hi);
  EXPECT_NEAR(hi.x, std::hypot(4 * std::cos(t), 1.5 * std::sin(t)), 1e-10);
  EXPECT_NEAR(lo.y, -std::hypot(4 * std::sin(t), 1.5 * std::cos(t)), 1e-10);
}
