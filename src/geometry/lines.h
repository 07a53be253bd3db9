// Plain computations on lines, segments and triangles in space: where two
// lines meet, whether two segments lie on one line and what they share, the
// foot of a perpendicular, and the height of a point on a triangle's plane.
#pragma once

#include <optional>
#include <utility>

#include "geometry/kernel.h"

namespace zepk::geometry {

// Where the line through a1, a2 meets the line through b1, b2: nothing for
// parallel lines, for a line given by two equal points, or for lines that
// pass each other at a distance above the tolerance.
std::optional<Point> intersectLines(const Point& a1, const Point& a2, const Point& b1, const Point& b2,
                                    double tolerance);

// True when b1 and b2 both lie on the line through a1, a2 within the
// distance tolerance; a segment of two equal points (within the point
// tolerance) is on a line through that point.
bool onOneLine(const Point& a1, const Point& a2, const Point& b1, const Point& b2, double distanceTolerance,
               double pointTolerance);

// The part two segments on one line share, from the end nearer a1: nothing
// when they are not on one line or do not overlap (touching end to end is a
// share of one point, given as two equal points).
std::optional<std::pair<Point, Point>> commonPart(const Point& a1, const Point& a2, const Point& b1, const Point& b2,
                                                  double tolerance);

// The foot of the perpendicular from p to the line through a, b (a itself
// when a and b are one point).
Point perpendicularFoot(const Point& p, const Point& a, const Point& b);
// The distance from p to the line through a, b.
double distanceToLine(const Point& p, const Point& a, const Point& b);

// The point of the plane through the triangle a, b, c straight above or
// below p (p's x and y, the plane's z there); nothing when the triangle is
// degenerate or its plane vertical.
std::optional<Point> heightOnTriangle(const Point& p, const Point& a, const Point& b, const Point& c);

}  // namespace zepk::geometry
