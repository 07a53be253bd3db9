// Duplicate removal on plain data: vertices that repeat their neighbour or
// lie on a straight run, and curves that repeat another one, drawn either
// way round or from another vertex of a ring.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "geometry/kernel.h"

using namespace zepk::geometry;

namespace {

LwPoly poly(std::initializer_list<std::array<double, 3>> xyb, bool closed) {
  LwPoly p;
  for (const auto& v : xyb) p.verts.push_back({{v[0], v[1], 0}, v[2]});
  p.closed = closed;
  return p;
}

std::vector<std::array<double, 3>> xyb(const LwPoly& p) {
  std::vector<std::array<double, 3>> out;
  for (const PolyVertex& v : p.verts) out.push_back({v.pt.x, v.pt.y, v.bulge});
  return out;
}

using V = std::vector<std::array<double, 3>>;

}  // namespace

TEST(DumpVertices, RepeatedVerticesGoAndTheirArcStays) {
  // A repeat within the tolerance goes; one just outside it stays.
  LwPoly p = poly({{0, 0, 0}, {5, 0, 0}, {5.000005, 0, 0}, {10, 0, 0}, {10, 0.0001, 0}}, false);
  EXPECT_EQ(xyb(dumpPoints(p, 1e-5, false)), (V{{0, 0, 0}, {5.000005, 0, 0}, {10, 0, 0}, {10, 0.0001, 0}}));
  // The dropped vertex carried the arc: the repeat that stays takes it over,
  // unless it has an arc of its own.
  p = poly({{0, 0, 0}, {5, 0, 0.5}, {5, 0, 0}, {10, 0, 0}}, false);
  EXPECT_EQ(xyb(dumpPoints(p, 1e-5, false)), (V{{0, 0, 0}, {5, 0, 0.5}, {10, 0, 0}}));
  p = poly({{0, 0, 0}, {5, 0, 0.5}, {5, 0, -0.25}, {10, 0, 0}}, false);
  EXPECT_EQ(xyb(dumpPoints(p, 1e-5, false)), (V{{0, 0, 0}, {5, 0, -0.25}, {10, 0, 0}}));
  // Three copies of one point in a row leave one.
  p = poly({{0, 0, 0}, {1, 1, 0}, {1, 1, 0}, {1, 1, 0}, {2, 0, 0}}, false);
  EXPECT_EQ(xyb(dumpPoints(p, 1e-5, false)), (V{{0, 0, 0}, {1, 1, 0}, {2, 0, 0}}));
}

TEST(DumpVertices, ClosedRingsWrapAndOpenEndsStay) {
  // The closing vertex that repeats the first goes on a closed ring.
  LwPoly ring = poly({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}, {0, 0, 0}}, true);
  EXPECT_EQ(xyb(dumpPoints(ring, 1e-5, false)), (V{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}));
  // On an open polyline both ends stay, even where it comes back to its start.
  LwPoly open = ring;
  open.closed = false;
  EXPECT_EQ(dumpPoints(open, 1e-5, false).verts.size(), 5u);
  // The walk stops once fewer than three vertices are left.
  LwPoly tiny = poly({{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}}, true);
  EXPECT_EQ(dumpPoints(tiny, 1e-5, false).verts.size(), 2u);
}

TEST(DumpVertices, CollinearVerticesGoOnlyOnStraightRunsWhenAsked) {
  LwPoly p = poly({{0, 0, 0}, {5, 0, 0}, {10, 0, 0}, {10, 5, 0}, {10, 10, 0}}, false);
  EXPECT_EQ(dumpPoints(p, 1e-5, false).verts.size(), 5u);
  EXPECT_EQ(xyb(dumpPoints(p, 1e-5, true)), (V{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}}));
  // An arc on either side keeps the vertex between.
  p = poly({{0, 0, 0}, {5, 0, 0.3}, {10, 0, 0}, {20, 0, 0}}, false);
  EXPECT_EQ(xyb(dumpPoints(p, 1e-5, true)), (V{{0, 0, 0}, {5, 0, 0.3}, {10, 0, 0}, {20, 0, 0}}));
  // A closed square keeps its corners, and loses the midpoint of a side
  // even when that midpoint is where the ring starts.
  LwPoly sq = poly({{5, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}, {0, 0, 0}}, true);
  EXPECT_EQ(xyb(dumpPoints(sq, 1e-5, true)), (V{{10, 0, 0}, {10, 10, 0}, {0, 10, 0}, {0, 0, 0}}));
  // Parallel in the host's sense: a run that turns straight back counts.
  p = poly({{0, 0, 0}, {10, 0, 0}, {4, 0, 0}, {4, 4, 0}}, false);
  EXPECT_EQ(xyb(dumpPoints(p, 1e-5, true)), (V{{0, 0, 0}, {4, 0, 0}, {4, 4, 0}}));
  // A bend smaller than the tolerance in angle is straight; a larger one is not.
  p = poly({{0, 0, 0}, {10, 0, 0}, {20, 1e-6, 0}}, false);
  EXPECT_EQ(dumpPoints(p, 1e-5, true).verts.size(), 2u);
  p = poly({{0, 0, 0}, {10, 0, 0}, {20, 1e-3, 0}}, false);
  EXPECT_EQ(dumpPoints(p, 1e-5, true).verts.size(), 3u);
}

TEST(DumpVertices, SourceIndexesNameTheVerticesThatStay) {
  // The 3D form: points differ in z only are not repeats.
  std::vector<PolyVertex> v{{{0, 0, 0}}, {{0, 0, 1}}, {{0, 0, 1}}, {{5, 5, 1}}, {{5, 5, 1.000001}}};
  DumpedVertices d = dumpVertices(v, false, 1e-5, false);
  EXPECT_EQ(d.source, (std::vector<size_t>{0, 2, 4}));
  ASSERT_EQ(d.verts.size(), 3u);
  EXPECT_EQ(d.verts[1].pt.z, 1.0);
}

namespace {

CurveShape shape(int kind, std::initializer_list<std::array<double, 3>> xyb, bool closed) {
  CurveShape s;
  s.kind = kind;
  s.closed = closed;
  LwPoly p = poly(xyb, closed);
  s.verts = p.verts;
  s.length = polyLength(p);
  return s;
}

}  // namespace

TEST(SameCurve, RepeatsForwardBackwardAndFromAnyVertexOfARing) {
  CurveShape line = shape(1, {{0, 0, 0}, {10, 5, 0}}, false);
  EXPECT_TRUE(sameCurve(line, shape(1, {{10, 5, 0}, {0, 0, 0}}, false), 1e-5, 1e-5));
  EXPECT_TRUE(sameCurve(line, shape(1, {{0, 0, 0}, {10, 5.000001, 0}}, false), 1e-5, 1e-5));
  EXPECT_FALSE(sameCurve(line, shape(1, {{0, 0, 0}, {10, 5.001, 0}}, false), 1e-5, 1e-5));
  // Another kind with the same points is not a repeat.
  EXPECT_FALSE(sameCurve(line, shape(2, {{0, 0, 0}, {10, 5, 0}}, false), 1e-5, 1e-5));
  // An arc run backwards has its bulge negated.
  CurveShape arc = shape(3, {{0, 0, 0.5}, {10, 0, 0}}, false);
  EXPECT_TRUE(sameCurve(arc, shape(3, {{10, 0, -0.5}, {0, 0, 0}}, false), 1e-5, 1e-5));
  EXPECT_FALSE(sameCurve(arc, shape(3, {{10, 0, 0.5}, {0, 0, 0}}, false), 1e-5, 1e-5));
  // A polyline with an arc, backwards.
  CurveShape pl = shape(4, {{0, 0, 0}, {10, 0, 1}, {10, 10, 0}, {0, 10, 0}}, false);
  EXPECT_TRUE(sameCurve(pl, shape(4, {{0, 10, 0}, {10, 10, -1}, {10, 0, 0}, {0, 0, 0}}, false), 1e-5, 1e-5));
  // The same vertices in another order are another curve.
  EXPECT_FALSE(sameCurve(pl, shape(4, {{10, 0, 1}, {0, 0, 0}, {10, 10, 0}, {0, 10, 0}}, false), 1e-5, 1e-5));
  // A ring from another vertex and the other way round.
  CurveShape ring = shape(4, {{0, 0, 0}, {10, 0, 0.2}, {10, 10, 0}, {0, 10, 0}}, true);
  EXPECT_TRUE(sameCurve(ring, shape(4, {{10, 10, 0}, {0, 10, 0}, {0, 0, 0}, {10, 0, 0.2}}, true), 1e-5, 1e-5));
  EXPECT_TRUE(sameCurve(ring, shape(4, {{0, 0, 0}, {0, 10, 0}, {10, 10, -0.2}, {10, 0, 0}}, true), 1e-5, 1e-5));
  // An open polyline over the ring's vertices is not the ring.
  EXPECT_FALSE(sameCurve(ring, shape(4, {{0, 0, 0}, {10, 0, 0.2}, {10, 10, 0}, {0, 10, 0}}, false), 1e-5, 1e-5));
}

TEST(SameCurve, LengthToleranceAndPointToleranceAreSeparate) {
  CurveShape a = shape(1, {{0, 0, 0}, {10, 0, 0}}, false);
  CurveShape b = shape(1, {{0, 0, 0}, {10, 0, 0}}, false);
  b.length += 0.001;
  EXPECT_FALSE(sameCurve(a, b, 1e-5, 1e-5));
  EXPECT_TRUE(sameCurve(a, b, 0.01, 1e-5));
  b = shape(1, {{0, 0, 0}, {10.001, 0, 0}}, false);
  EXPECT_FALSE(sameCurve(a, b, 0.01, 1e-4));
}
