// Outlines compared for HATCHASSOC: the same shape from any start and in
// either direction, different shapes told apart however close.
#include <gtest/gtest.h>

#include <cmath>

#include "drawing/hatchassoc.h"

namespace {

using zepk::drawing::PolylineData;
using zepk::drawing::distanceToOutline;
using zepk::drawing::sameOutline;

PolylineData outline(std::vector<std::vector<double>> v, bool closed = true) {
  PolylineData d;
  for (auto& p : v) {
    d.points.emplace_back(p[0], p[1], 0.0);
    d.bulges.push_back(p.size() > 2 ? p[2] : 0.0);
  }
  d.closed = closed;
  return d;
}

TEST(HatchAssocOutlines, SameShapeFromAnyStartEitherWay) {
  // A square with a half circle on its right side.
  PolylineData a = outline({{0, 0}, {10, 0, 1.0}, {10, 10}, {0, 10}});
  PolylineData fromCorner = outline({{10, 10}, {0, 10}, {0, 0}, {10, 0, 1.0}});
  PolylineData reversed = outline({{10, 10, -1.0}, {10, 0}, {0, 0}, {0, 10}});
  // The half circle in two quarter arcs, through an extra vertex.
  PolylineData split = outline({{0, 0}, {10, 0, std::tan(M_PI / 8)}, {15, 5, std::tan(M_PI / 8)}, {10, 10}, {0, 10}});
  EXPECT_TRUE(sameOutline(a, fromCorner, 1e-9));
  EXPECT_TRUE(sameOutline(a, reversed, 1e-9));
  EXPECT_TRUE(sameOutline(a, split, 1e-9));
  EXPECT_TRUE(sameOutline(split, reversed, 1e-9));
}

TEST(HatchAssocOutlines, NearlyTheSameIsNotTheSame) {
  PolylineData a = outline({{0, 0}, {10, 0, 1.0}, {10, 10}, {0, 10}});
  // The arc bulging inwards, the plain square, one corner moved a little,
  // a square that covers only part of it.
  EXPECT_FALSE(sameOutline(a, outline({{0, 0}, {10, 0, -1.0}, {10, 10}, {0, 10}}), 1e-6));
  EXPECT_FALSE(sameOutline(a, outline({{0, 0}, {10, 0}, {10, 10}, {0, 10}}), 1e-6));
  EXPECT_FALSE(sameOutline(a, outline({{0, 0}, {10, 0, 1.0}, {10, 10}, {0, 10.001}}), 1e-6));
  EXPECT_FALSE(sameOutline(outline({{0, 0}, {10, 0}, {10, 10}, {0, 10}}), outline({{0, 0}, {5, 0}, {5, 10}, {0, 10}}), 1e-6));
  EXPECT_TRUE(sameOutline(a, outline({{0, 0}, {10, 0, 1.0}, {10, 10}, {0, 10.001}}), 1e-2));
  // Too few points is no outline.
  EXPECT_FALSE(sameOutline(outline({{0, 0}}), outline({{0, 0}}), 1));
}

TEST(HatchAssocOutlines, DistanceToArcsAndSegments) {
  // A half circle of radius 5 about (10, 5), to the right of x = 10.
  PolylineData a = outline({{0, 0}, {10, 0, 1.0}, {10, 10}, {0, 10}});
  EXPECT_NEAR(distanceToOutline(a, 17, 5), 2.0, 1e-12);   // outside the arc
  EXPECT_NEAR(distanceToOutline(a, 12, 5), 3.0, 1e-12);   // inside the half circle
  EXPECT_NEAR(distanceToOutline(a, 5, -3), 3.0, 1e-12);   // below the bottom edge
  EXPECT_NEAR(distanceToOutline(a, 10, 13), 3.0, 1e-12);  // above the arc's end, beyond the sweep
  EXPECT_NEAR(distanceToOutline(outline({{0, 0}, {10, 0}}, false), 5, 4), 4.0, 1e-12);
}

}  // namespace
