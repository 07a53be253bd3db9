// Lines and segments in space and in the plane.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>

#include "host/gelin2d.h"
#include "host/gelin3d.h"
#include "host/gelineseg2d.h"
#include "host/gelineseg3d.h"
#include "host/gemat3d.h"
#include "host/geplane.h"

namespace {

typedef AcGePoint3d P3;
typedef AcGePoint2d P2;
typedef AcGeVector3d V3;

TEST(Line3d, IntersectionOfCrossingSkewAndParallelLines) {
  AcGeLine3d a(P3(0, 0, 0), V3(1, 0, 0));
  AcGeLine3d b(P3(5, -3, 0), V3(0, 2, 0));
  P3 x;
  ASSERT_TRUE(a.intersectWith(b, x));
  EXPECT_TRUE(x.isEqualTo(P3(5, 0, 0)));
  // Skew lines pass each other: no point, unless the tolerance bridges the gap.
  AcGeLine3d skew(P3(5, -3, 1e-6), V3(0, 2, 0));
  EXPECT_FALSE(a.intersectWith(skew, x));
  AcGeTol loose;
  loose.setEqualPoint(1e-5);
  EXPECT_TRUE(a.intersectWith(skew, x, loose));
  EXPECT_TRUE(x.isEqualTo(P3(5, 0, 0)));  // the point on the first line
  // Parallel and colinear lines have no single point.
  EXPECT_FALSE(a.intersectWith(AcGeLine3d(P3(0, 1, 0), V3(-3, 0, 0)), x));
  EXPECT_FALSE(a.intersectWith(AcGeLine3d(P3(7, 0, 0), V3(2, 0, 0)), x));
  // Nor does a degenerate one.
  EXPECT_FALSE(a.intersectWith(AcGeLine3d(P3(1, 1, 0), V3(0, 0, 0)), x));
  // Survey-sized coordinates keep their precision.
  AcGeLine3d c(P3(512345.678, 3456789.012, 100), P3(512355.678, 3456799.012, 100));
  AcGeLine3d d(P3(512345.678, 3456799.012, 100), P3(512355.678, 3456789.012, 100));
  ASSERT_TRUE(c.intersectWith(d, x));
  EXPECT_TRUE(x.isEqualTo(P3(512350.678, 3456794.012, 100), AcGeTol()));
}

TEST(LineSeg3d, IntersectionStaysWithinBothSegments) {
  AcGeLineSeg3d s(P3(0, 0, 0), P3(10, 0, 0));
  P3 x;
  EXPECT_TRUE(s.intersectWith(AcGeLineSeg3d(P3(3, -1, 0), P3(3, 1, 0)), x));
  EXPECT_TRUE(x.isEqualTo(P3(3, 0, 0)));
  // The lines cross beyond the end of one segment.
  EXPECT_FALSE(s.intersectWith(AcGeLineSeg3d(P3(3, 1, 0), P3(3, 2, 0)), x));
  EXPECT_FALSE(s.intersectWith(AcGeLineSeg3d(P3(11, -1, 0), P3(11, 1, 0)), x));
  // Touching at an end counts, within equalPoint of it.
  EXPECT_TRUE(s.intersectWith(AcGeLineSeg3d(P3(10, 0, 0), P3(12, 5, 0)), x));
  EXPECT_TRUE(x.isEqualTo(P3(10, 0, 0)));
  EXPECT_TRUE(s.intersectWith(AcGeLineSeg3d(P3(10 + 5e-11, -1, 0), P3(10 + 5e-11, 1, 0)), x));
  EXPECT_FALSE(s.intersectWith(AcGeLineSeg3d(P3(10 + 5e-10, -1, 0), P3(10 + 5e-10, 1, 0)), x));
  // A segment against an infinite line.
  EXPECT_TRUE(s.intersectWith(AcGeLine3d(P3(4, 50, 0), V3(0, 1, 0)), x));
  EXPECT_TRUE(x.isEqualTo(P3(4, 0, 0)));
}

TEST(Line3d, ProjectedIntersectionLooksAlongTheDirection) {
  // Two lines at different heights cross when seen from above.
  AcGeLine3d a(P3(0, 0, 0), V3(1, 1, 0));
  AcGeLine3d b(P3(0, 4, 10), V3(1, -1, 2));
  P3 onA, onB;
  ASSERT_TRUE(a.projIntersectWith(b, V3(0, 0, 1), onA, onB));
  EXPECT_TRUE(onA.isEqualTo(P3(2, 2, 0)));
  EXPECT_TRUE(onB.isEqualTo(P3(2, 2, 14)));
  // Along a slanted direction the pair differs by a multiple of it.
  V3 dir(1, 2, 3);
  ASSERT_TRUE(a.projIntersectWith(b, dir, onA, onB));
  EXPECT_TRUE((onB - onA).isParallelTo(dir, AcGeTol()) || onA.isEqualTo(onB));
  EXPECT_TRUE(a.isOn(onA) && b.isOn(onB));
  // Images that are parallel, or a line seen end-on, give nothing.
  EXPECT_FALSE(a.projIntersectWith(AcGeLine3d(P3(0, 1, 5), V3(1, 1, 7)), V3(0, 0, 1), onA, onB));
  EXPECT_FALSE(a.projIntersectWith(AcGeLine3d(P3(0, 1, 5), V3(0, 0, 1)), V3(0, 0, 1), onA, onB));
  // Segments: the crossing must be on both.
  AcGeLineSeg3d s1(P3(0, 0, 0), P3(1, 1, 0)), s2(P3(0, 4, 10), P3(4, 0, 12));
  EXPECT_FALSE(s1.projIntersectWith(s2, V3(0, 0, 1), onA, onB));
}

TEST(LinearEnt3d, ClosestPointsAndDistances) {
  AcGeLineSeg3d s(P3(0, 0, 0), P3(10, 0, 0));
  EXPECT_TRUE(s.closestPointTo(P3(4, 3, 0)).isEqualTo(P3(4, 0, 0)));
  EXPECT_TRUE(s.closestPointTo(P3(-4, 3, 0)).isEqualTo(P3(0, 0, 0)));
  EXPECT_TRUE(s.closestPointTo(P3(14, 3, 0)).isEqualTo(P3(10, 0, 0)));
  EXPECT_DOUBLE_EQ(s.distanceTo(P3(13, 4, 0)), 5.0);
  AcGeLine3d line;
  s.getLine(line);
  EXPECT_TRUE(line.closestPointTo(P3(14, 3, 0)).isEqualTo(P3(14, 0, 0)));
  EXPECT_DOUBLE_EQ(line.paramOf(P3(14, 3, 0)), 1.4);  // the segment's own vector
  EXPECT_DOUBLE_EQ(s.paramOf(P3(14, 3, 0)), 1.4);

  // Between segments: crossing skew, end to middle, end to end.
  P3 other;
  P3 mine = s.closestPointTo(AcGeLineSeg3d(P3(5, -1, 2), P3(5, 1, 2)), other);
  EXPECT_TRUE(mine.isEqualTo(P3(5, 0, 0)));
  EXPECT_TRUE(other.isEqualTo(P3(5, 0, 2)));
  mine = s.closestPointTo(AcGeLineSeg3d(P3(12, -1, 1), P3(12, 1, 1)), other);
  EXPECT_TRUE(mine.isEqualTo(P3(10, 0, 0)));
  EXPECT_TRUE(other.isEqualTo(P3(12, 0, 1)));
  EXPECT_DOUBLE_EQ(s.distanceTo(AcGeLineSeg3d(P3(13, 4, 0), P3(20, 4, 0))), 5.0);
  // Parallel segments: the first place along this one where they are nearest.
  mine = s.closestPointTo(AcGeLineSeg3d(P3(12, 1, 0), P3(4, 1, 0)), other);
  EXPECT_TRUE(mine.isEqualTo(P3(4, 0, 0)));
  EXPECT_TRUE(other.isEqualTo(P3(4, 1, 0)));
  mine = s.closestPointTo(AcGeLineSeg3d(P3(-5, 1, 0), P3(-2, 1, 0)), other);
  EXPECT_TRUE(mine.isEqualTo(P3(0, 0, 0)));
  EXPECT_TRUE(other.isEqualTo(P3(-2, 1, 0)));
  EXPECT_DOUBLE_EQ(AcGeLine3d(P3(0, 0, 0), V3(1, 0, 0)).distanceTo(AcGeLine3d(P3(0, 3, 4), V3(-2, 0, 0))), 5.0);
}

TEST(LinearEnt3d, OnParallelColinear) {
  AcGeLineSeg3d s(P3(1, 1, 1), P3(3, 3, 3));
  double param = -1;
  EXPECT_TRUE(s.isOn(P3(2, 2, 2), param));
  EXPECT_DOUBLE_EQ(param, 0.5);
  EXPECT_FALSE(s.isOn(P3(4, 4, 4)));
  EXPECT_TRUE(AcGeLine3d(P3(1, 1, 1), P3(3, 3, 3)).isOn(P3(4, 4, 4)));
  EXPECT_TRUE(s.isOn(P3(3, 3, 3 + 5e-11)));
  EXPECT_FALSE(s.isOn(P3(3, 3, 3 + 5e-10)));
  EXPECT_TRUE(s.isOn(1.0) && !s.isOn(1.1));
  EXPECT_TRUE(s.isParallelTo(AcGeLine3d(P3(0, 0, 5), V3(-1, -1, -1))));
  EXPECT_FALSE(s.isColinearTo(AcGeLine3d(P3(0, 0, 5), V3(-1, -1, -1))));
  EXPECT_TRUE(s.isColinearTo(AcGeLineSeg3d(P3(7, 7, 7), P3(9, 9, 9))));
  EXPECT_TRUE(s.isPerpendicularTo(AcGeLine3d(P3(0, 0, 0), V3(1, -1, 0))));
  EXPECT_TRUE(s.isPerpendicularTo(AcGePlane(P3(0, 0, 0), V3(2, 2, 2))));
  EXPECT_TRUE(AcGeLineSeg3d(P3(0, 0, 1), P3(5, 3, 1)).isOn(AcGePlane(P3(9, 9, 1), V3(0, 0, -1))));
  EXPECT_EQ(AcGeLineSeg3d(P3(0, 0, 0), P3(2, 0, 0)).midPoint().x, 1.0);
  EXPECT_DOUBLE_EQ(s.length(), std::sqrt(12.0));
}

TEST(LinearEnt3d, OverlapIsTheCommonPartOfColinearEntities) {
  AcGeLineSeg3d s(P3(0, 0, 0), P3(10, 0, 0));
  AcGeLinearEnt3d* common = nullptr;
  ASSERT_TRUE(s.overlap(AcGeLineSeg3d(P3(12, 0, 0), P3(4, 0, 0)), common));
  std::unique_ptr<AcGeLinearEnt3d> hold(common);
  ASSERT_EQ(common->type(), AcGe::kLineSeg3d);
  auto* seg = static_cast<AcGeLineSeg3d*>(common);
  // It runs the way this segment runs.
  EXPECT_TRUE(seg->startPoint().isEqualTo(P3(4, 0, 0)));
  EXPECT_TRUE(seg->endPoint().isEqualTo(P3(10, 0, 0)));
  // Contained, and against a line.
  ASSERT_TRUE(s.overlap(AcGeLine3d(P3(-100, 0, 0), V3(-1, 0, 0)), common));
  hold.reset(common);
  EXPECT_TRUE(common->isEqualTo(s));
  ASSERT_TRUE(AcGeLine3d(P3(0, 0, 0), V3(1, 0, 0)).overlap(AcGeLine3d(P3(5, 0, 0), V3(2, 0, 0)), common));
  hold.reset(common);
  EXPECT_EQ(common->type(), AcGe::kLine3d);
  // Ends that only touch, disjoint pieces, and parallel but apart: none.
  EXPECT_FALSE(s.overlap(AcGeLineSeg3d(P3(10, 0, 0), P3(20, 0, 0)), common));
  EXPECT_EQ(common, nullptr);
  EXPECT_FALSE(s.overlap(AcGeLineSeg3d(P3(11, 0, 0), P3(20, 0, 0)), common));
  EXPECT_FALSE(s.overlap(AcGeLineSeg3d(P3(0, 1e-3, 0), P3(5, 1e-3, 0)), common));
}

TEST(LinearEnt3d, TransformAndEquality) {
  AcGeLineSeg3d s(P3(1, 0, 0), P3(3, 0, 0));
  s.transformBy(AcGeMatrix3d::rotation(std::numbers::pi / 2, V3(0, 0, 1)));
  EXPECT_TRUE(s.startPoint().isEqualTo(P3(0, 1, 0)));
  EXPECT_TRUE(s.endPoint().isEqualTo(P3(0, 3, 0)));
  s.translateBy(V3(1, 1, 1)).scaleBy(2.0, P3(1, 1, 1));
  EXPECT_TRUE(s.endPoint().isEqualTo(P3(1, 7, 1)));
  EXPECT_TRUE(s.isEqualTo(AcGeLineSeg3d(s.endPoint(), s.startPoint())));
  EXPECT_FALSE(s.isEqualTo(AcGeLine3d(s.startPoint(), s.endPoint())));
  EXPECT_TRUE(AcGeLine3d(P3(0, 0, 0), V3(1, 0, 0)).isEqualTo(AcGeLine3d(P3(9, 0, 0), V3(-4, 0, 0))));
  std::unique_ptr<AcGeEntity3d> copy(s.copy());
  EXPECT_TRUE(copy->isKindOf(AcGe::kLinearEnt3d));
  EXPECT_TRUE(copy->isKindOf(AcGe::kCurve3d));
  EXPECT_FALSE(copy->isKindOf(AcGe::kLine3d));
  EXPECT_TRUE(copy->isEqualTo(s));
}

TEST(LineSeg2d, IntersectionOverlapAndClosestPoints) {
  AcGeLineSeg2d s(P2(0, 0), P2(4, 4));
  P2 x;
  ASSERT_TRUE(s.intersectWith(AcGeLineSeg2d(P2(0, 4), P2(4, 0)), x));
  EXPECT_TRUE(x.isEqualTo(P2(2, 2)));
  EXPECT_FALSE(s.intersectWith(AcGeLineSeg2d(P2(0, 9), P2(9, 0)), x));
  EXPECT_TRUE(AcGeLine2d(P2(0, 0), P2(4, 4)).intersectWith(AcGeLineSeg2d(P2(0, 9), P2(9, 0)), x));
  EXPECT_TRUE(x.isEqualTo(P2(4.5, 4.5)));
  EXPECT_FALSE(s.intersectWith(AcGeLineSeg2d(P2(1, 0), P2(5, 4)), x));
  EXPECT_TRUE(s.isColinearTo(AcGeLineSeg2d(P2(5, 5), P2(6, 6))));
  EXPECT_FALSE(s.isColinearTo(AcGeLineSeg2d(P2(1, 0), P2(5, 4))));
  AcGeLinearEnt2d* common = nullptr;
  ASSERT_TRUE(s.overlap(AcGeLineSeg2d(P2(3, 3), P2(-1, -1)), common));
  std::unique_ptr<AcGeLinearEnt2d> hold(common);
  EXPECT_TRUE(common->isEqualTo(AcGeLineSeg2d(P2(0, 0), P2(3, 3))));
  EXPECT_FALSE(s.overlap(AcGeLineSeg2d(P2(4, 4), P2(5, 5)), common));
  EXPECT_TRUE(s.closestPointTo(P2(4, 0)).isEqualTo(P2(2, 2)));
  EXPECT_TRUE(s.closestPointTo(P2(9, 0)).isEqualTo(P2(4, 4)));
  EXPECT_TRUE(s.isOn(P2(1, 1)) && !s.isOn(P2(1, 1.001)) && !s.isOn(P2(5, 5)));
  EXPECT_DOUBLE_EQ(s.length(), std::sqrt(32.0));
  EXPECT_TRUE(s.midPoint().isEqualTo(P2(2, 2)));
  AcGeLine2d bis;
  s.getBisector(bis);
  EXPECT_TRUE(bis.isOn(P2(0, 4)) && bis.isOn(P2(4, 0)));
  P2 other;
  P2 mine = s.closestPointTo(AcGeLineSeg2d(P2(6, 0), P2(6, 10)), other);
  EXPECT_TRUE(mine.isEqualTo(P2(4, 4)));
  EXPECT_TRUE(other.isEqualTo(P2(6, 4)));
}

}  // namespace
