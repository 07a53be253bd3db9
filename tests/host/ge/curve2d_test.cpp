// Curves in the plane: arcs made every way and turned round, segments as
// curves, and composites with their piece-counting parameters, split,
// trimmed, reversed and sampled.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "host/gearc2d.h"
#include "host/gecomp2d.h"
#include "host/gelin2d.h"
#include "host/gelineseg2d.h"
#include "host/gemat2d.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

void expectAt(const AcGePoint2d& p, double x, double y, double tol = 1e-12) {
  EXPECT_NEAR(p.x, x, tol);
  EXPECT_NEAR(p.y, y, tol);
}

// A unit square with a half circle swelling out of its right side, open or
// closed, as segments and an arc.
AcGeCompositeCurve2d squareWithBulge(bool closed) {
  AcGeCompositeCurve2d c;
  c.appendOwned(new AcGeLineSeg2d(AcGePoint2d(0, 0), AcGePoint2d(2, 0)));
  // Counter-clockwise: the arc swells to the right of the travel, out of the square.
  c.appendOwned(new AcGeCircArc2d(AcGePoint2d(2, 0), AcGePoint2d(2, 2), 1.0));
  c.appendOwned(new AcGeLineSeg2d(AcGePoint2d(2, 2), AcGePoint2d(0, 2)));
  if (closed) c.appendOwned(new AcGeLineSeg2d(AcGePoint2d(0, 2), AcGePoint2d(0, 0)));
  return c;
}

}  // namespace

TEST(CircArc2d, MadeFromBulgesAndThreePointsInEitherSense) {
  // A positive bulge turns counter-clockwise: the half circle over (0,0)-(2,0)
  // runs below the chord.
  AcGeCircArc2d ccw({0, 0}, {2, 0}, 1.0);
  EXPECT_FALSE(ccw.isClockWise());
  expectAt(ccw.center(), 1, 0);
  EXPECT_NEAR(ccw.radius(), 1, 1e-12);
  expectAt(ccw.startPoint(), 0, 0);
  expectAt(ccw.endPoint(), 2, 0);
  expectAt(ccw.evalPoint((ccw.startAng() + ccw.endAng()) / 2), 1, -1);
  AcGeCircArc2d cw({0, 0}, {2, 0}, -1.0);
  EXPECT_TRUE(cw.isClockWise());
  expectAt(cw.evalPoint((cw.startAng() + cw.endAng()) / 2), 1, 1);
  // A small bulge: the arc below the chord, the centre far above it.
  AcGeCircArc2d flat({0, 0}, {2, 0}, 0.1);
  EXPECT_NEAR(flat.length(), 4 * std::atan(0.1) * flat.radius(), 1e-12);
  EXPECT_GT(flat.center().y, 0);
  // Through three points, clockwise when they turn clockwise.
  AcGeCircArc2d three({0, 0}, {1, 1}, {2, 0});
  EXPECT_TRUE(three.isClockWise());
  expectAt(three.center(), 1, 0);
  EXPECT_NEAR(three.length(), kPi, 1e-12);
  EXPECT_TRUE(three.isOn(AcGePoint2d(1, 1)));
  EXPECT_FALSE(three.isOn(AcGePoint2d(1, -1)));
  // A full circle is closed and equals itself started anywhere.
  AcGeCircArc2d circle({5, 5}, 2);
  EXPECT_TRUE(circle.isClosed());
  EXPECT_TRUE(circle.isEqualTo(AcGeCircArc2d({5, 5}, 2, 1.0, 1.0 + 2 * kPi)));
  EXPECT_FALSE(ccw.isClosed());
}

TEST(CircArc2d, ReversedTrimmedAndMirroredKeepThePoints) {
  AcGeCircArc2d a({0, 0}, {2, 0}, 0.7);
  const AcGePoint2d s = a.startPoint(), e = a.endPoint(), m = a.evalPoint((a.startAng() + a.endAng()) / 2);
  const double len = a.length();
  AcGeCircArc2d r = a;
  r.reverseParam();
  EXPECT_TRUE(r.isClockWise());
  expectAt(r.startPoint(), e.x, e.y);
  expectAt(r.endPoint(), s.x, s.y);
  expectAt(r.evalPoint((r.startAng() + r.endAng()) / 2), m.x, m.y);
  EXPECT_NEAR(r.length(), len, 1e-12);
  EXPECT_TRUE(r.isEqualTo(a));
  // Split at the middle: two halves that meet there, each half as long.
  AcGeCurve2d *p1 = nullptr, *p2 = nullptr;
  a.getSplitCurves((a.startAng() + a.endAng()) / 2, p1, p2);
  ASSERT_TRUE(p1 && p2);
  std::unique_ptr<AcGeCurve2d> h1(p1), h2(p2);
  AcGePoint2d q;
  ASSERT_TRUE(h1->hasEndPoint(q));
  expectAt(q, m.x, m.y);
  EXPECT_NEAR(h1->length(), len / 2, 1e-12);
  EXPECT_NEAR(h2->length(), len / 2, 1e-12);
  // Splitting at an end leaves one side empty.
  a.getSplitCurves(a.startAng(), p1, p2);
  EXPECT_EQ(p1, nullptr);
  delete p2;
  // A mirror turns the sense and keeps the arc on its mirrored points.
  AcGeCircArc2d mir = a;
  mir.transformBy(AcGeMatrix2d::mirroring(AcGeLine2d::kXAxis));
  EXPECT_TRUE(mir.isClockWise());
  expectAt(mir.startPoint(), s.x, -s.y);
  expectAt(mir.evalPoint((mir.startAng() + mir.endAng()) / 2), m.x, -m.y);
}

TEST(LineSeg2d, IsACurveWithParametersZeroToOne) {
  AcGeLineSeg2d seg(AcGePoint2d(1, 1), AcGePoint2d(4, 5));
  const AcGeCurve2d& c = seg;
  EXPECT_TRUE(c.isKindOf(AcGe::kCurve2d));
  EXPECT_NEAR(c.length(), 5, 1e-12);
  EXPECT_NEAR(c.length(0.2, 0.6), 2, 1e-12);
  EXPECT_NEAR(c.paramOf(AcGePoint2d(2.5, 3)), 0.5, 1e-12);
  std::unique_ptr<AcGeCurve2d> piece(c.trimmedCopy(0.2, 0.6));
  ASSERT_TRUE(piece);
  AcGePoint2d p;
  ASSERT_TRUE(piece->hasStartPoint(p));
  expectAt(p, 1.6, 1.8);
  seg.reverseParam();
  expectAt(seg.startPoint(), 4, 5);
  expectAt(seg.endPoint(), 1, 1);
  // An infinite line has no ends and no length.
  AcGeLine2d line({0, 0}, AcGeVector2d(1, 1));
  EXPECT_FALSE(line.hasStartPoint(p));
  EXPECT_FALSE(line.isClosed());
}

TEST(CompositeCurve2d, ParametersCountPiecesAndMeasuresFollowThem) {
  AcGeCompositeCurve2d c = squareWithBulge(true);
  double lo, hi;
  c.getInterval(lo, hi);
  EXPECT_EQ(lo, 0);
  EXPECT_EQ(hi, 4);
  EXPECT_TRUE(c.isClosed());
  EXPECT_FALSE(squareWithBulge(false).isClosed());
  // Piece 1 is the half circle: half way along it is its outermost point.
  expectAt(c.evalPoint(1.5), 3, 1);
  expectAt(c.evalPoint(0.25), 0.5, 0);
  EXPECT_NEAR(c.length(), 6 + kPi, 1e-9);
  EXPECT_NEAR(c.length(0.5, 1.5), 1 + kPi / 2, 1e-9);
  EXPECT_NEAR(c.length(1.5, 0.5), 1 + kPi / 2, 1e-9);
  EXPECT_NEAR(c.paramOf(AcGePoint2d(3, 1)), 1.5, 1e-9);
  EXPECT_NEAR(c.paramOf(AcGePoint2d(0, 1)), 3.5, 1e-9);
  EXPECT_TRUE(c.isOn(AcGePoint2d(1, 2)));
  EXPECT_FALSE(c.isOn(AcGePoint2d(1, 1)));
  // Samples by count go by parameter; by tolerance they keep every joint.
  AcGePoint2dArray pts;
  c.getSamplePoints(9, pts);
  ASSERT_EQ(pts.size(), 9u);
  expectAt(pts[3], 3, 1);
  AcGeDoubleArray prm;
  c.getSamplePoints(0, 4, 0.01, pts, prm);
  for (double joint : {0.0, 1.0, 2.0, 3.0, 4.0})
    EXPECT_NE(std::find(prm.begin(), prm.end(), joint), prm.end()) << joint;
  for (size_t i = 0; i + 1 < pts.size(); ++i) {
    // Each chord's middle lies within the tolerance of the curve.
    const AcGePoint2d mid((pts[i].x + pts[i + 1].x) / 2, (pts[i].y + pts[i + 1].y) / 2);
    EXPECT_LE(mid.distanceTo(c.evalPoint(c.paramOf(mid))), 0.01 + 1e-12);
  }
}

TEST(CompositeCurve2d, SplitTrimmedAndReversed) {
  AcGeCompositeCurve2d c = squareWithBulge(false);
  const double len = c.length();
  AcGeCurve2d *p1 = nullptr, *p2 = nullptr;
  c.getSplitCurves(1.5, p1, p2);
  ASSERT_TRUE(p1 && p2);
  std::unique_ptr<AcGeCurve2d> a(p1), b(p2);
  EXPECT_NEAR(a->length() + b->length(), len, 1e-9);
  AcGePoint2d end, start;
  ASSERT_TRUE(a->hasEndPoint(end) && b->hasStartPoint(start));
  expectAt(end, 3, 1, 1e-12);
  expectAt(start, 3, 1, 1e-12);
  // The pieces are parameterised afresh: the second half of the arc, then a segment.
  double lo, hi;
  b->getInterval(lo, hi);
  EXPECT_EQ(hi - lo, 2);
  // Reversed: the point at t is the old point at n - t.
  AcGeCompositeCurve2d r = c;
  r.reverseParam();
  for (double t : {0.0, 0.3, 1.25, 1.5, 2.9, 3.0}) {
    const AcGePoint2d p = r.evalPoint(3 - t), q = c.evalPoint(t);
    expectAt(p, q.x, q.y, 1e-12);
  }
  EXPECT_NEAR(r.length(), len, 1e-9);
  // A range outside the curve gives nothing.
  EXPECT_EQ(c.trimmedCopy(5, 6), nullptr);
}
