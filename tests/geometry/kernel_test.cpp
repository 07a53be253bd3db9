// The plain curve kernel: the arc arithmetic on bulges, areas and turning
// sense, rounding, polylines cut, sampled, reversed, restarted and chained,
// with the awkward cases a survey drawing brings (coincident vertices,
// degenerate arcs, tiny curves); and the same arithmetic on random
// polylines checked against ezdxf's own, also as composite plane curves.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <unistd.h>

#include "geometry/curves.h"
#include "geometry/kernel.h"
#include "geometry/lines.h"
#include "testseed.h"

using namespace zepk::geometry;

namespace {

constexpr double kPi = 3.14159265358979323846;

LwPoly poly(std::initializer_list<std::array<double, 3>> xyb, bool closed) {
  LwPoly p;
  for (const auto& v : xyb) p.verts.push_back({{v[0], v[1], 0}, v[2]});
  p.closed = closed;
  return p;
}

void expectNear(const Point& a, const Point& b, double tol = 1e-12) {
  EXPECT_NEAR(a.x, b.x, tol);
  EXPECT_NEAR(a.y, b.y, tol);
  EXPECT_NEAR(a.z, b.z, tol);
}

}  // namespace

TEST(Bulges, CentreMiddleAndBulgeOfThreePoints) {
  Point c;
  // A half circle over (0,0)-(2,0): counter-clockwise swells below the chord.
  ASSERT_TRUE(getCenter({0, 0}, {2, 0}, 1.0, c));
  expectNear(c, {1, 0});
  expectNear(getArcMidPoint({0, 0}, {2, 0}, 1.0), {1, -1});
  expectNear(getArcMidPoint({0, 0}, {2, 0}, -1.0), {1, 1});
  // Clockwise and flatter: the arc swells above, the centre lies below.
  ASSERT_TRUE(getCenter({0, 0}, {2, 0}, -0.5, c));
  expectNear(c, {1, -0.75});
  EXPECT_NEAR(calBulge({0, 0}, {1, -1}, {2, 0}), 1.0, 1e-12);
  EXPECT_NEAR(calBulge({0, 0}, {1, 1}, {2, 0}), -1.0, 1e-12);

  // Too flat to have a centre: the start comes back and the answer is no.
  c = {9, 9, 9};
  EXPECT_FALSE(getCenter({3, 4, 5}, {7, 4}, 1e-6, c));
  expectNear(c, {3, 4, 5});
  EXPECT_FALSE(getCenter({3, 4}, {7, 4}, -9.9e-6, c));
  // The middle is the arc's from 1e-6 on, the chord's below.
  expectNear(getArcMidPoint({0, 0}, {2, 0}, 0.99e-6), {1, 0});
  EXPECT_NE(getArcMidPoint({0, 0}, {2, 0}, 1e-6).y, 0.0);

  // Collinear points in order make no arc; nor does the angle wrap matter:
  // chords on both sides of direction 0 give the bulge of any other pair.
  EXPECT_NEAR(calBulge({0, 0}, {1, 1}, {3, 3}), 0.0, 1e-12);
  const double b = calBulge({0, 0}, {1, -0.2}, {2, 0});
  EXPECT_NEAR(calBulge({0, 0}, {1, 0.2}, {2, 0}), -b, 1e-12);
  EXPECT_NEAR(b, std::tan(0.5 * 2 * std::atan(0.2)), 1e-12);
  EXPECT_NEAR(calBulge({5, 5}, {5.2, 6}, {5, 7}), b, 1e-12);
}

TEST(Areas, SignAndTurningSense) {
  const std::vector<Point> ccw{{0, 0}, {4, 0}, {4, 3}, {0, 3}};
  const std::vector<Point> cw{{0, 0}, {0, 3}, {4, 3}, {4, 0}};
  EXPECT_DOUBLE_EQ(signedArea(ccw), 12.0);
  EXPECT_DOUBLE_EQ(signedArea(cw), -12.0);
  EXPECT_DOUBLE_EQ(signedArea({{0, 0}, {5, 5}}), 0.0);
  EXPECT_TRUE(isClockwise(cw));
  EXPECT_FALSE(isClockwise(ccw));
  EXPECT_FALSE(isClockwise({}));
  EXPECT_TRUE(isClockwise3({0, 0}, {0, 1}, {1, 1}));
  EXPECT_FALSE(isClockwise3({0, 0}, {1, 1}, {0, 1}));
  EXPECT_FALSE(isClockwise3({0, 0}, {1, 1}, {2, 2}));  // collinear is not clockwise

  // Arcs count in a polyline's own area: a circle of two half arcs.
  EXPECT_NEAR(polySignedArea(poly({{0, 0, 1}, {2, 0, 1}}, true)), kPi, 1e-12);
  EXPECT_NEAR(polySignedArea(poly({{0, 0, -1}, {2, 0, -1}}, true)), -kPi, 1e-12);
  EXPECT_NEAR(polyLength(poly({{0, 0, 1}, {2, 0, 1}}, true)), 2 * kPi, 1e-12);
  EXPECT_NEAR(polyLength(poly({{0, 0, 0}, {3, 4, 0}}, false)), 5.0, 1e-12);
}

TEST(Rounding, NudgedHalvesAndNegativeDigits) {
  EXPECT_DOUBLE_EQ(roundTo(2.345, 2), 2.35);
  EXPECT_DOUBLE_EQ(roundTo(-2.345, 2), -2.35);
  EXPECT_DOUBLE_EQ(roundTo(2.344, 2), 2.34);
  EXPECT_DOUBLE_EQ(roundTo(7.5, 0), 8.0);
  EXPECT_DOUBLE_EQ(roundTo(-7.5, 0), -8.0);
  // The nudge: a fraction just under the half rounds up.
  EXPECT_DOUBLE_EQ(roundTo(0.49995, 0), 1.0);
  EXPECT_DOUBLE_EQ(roundTo(0.4998, 0), 0.0);
  // Negative digits scale the fraction down: only the whole part stays.
  EXPECT_DOUBLE_EQ(roundTo(1234.9, -2), 1234.0);
}

TEST(PolylinePoints, ArcsCutIntoPiecesAndDoubledVerticesDropped) {
  // A closed circle cut into 4 pieces per arc: 8 vertices on the circle,
  // each piece a quarter of a half circle.
  const LwPoly circle = poly({{0, 0, 1}, {2, 0, 1}}, true);
  PolyPoints pp = polySegmentPoints(circle, 4);
  ASSERT_EQ(pp.points.size(), 8u);
  for (size_t i = 0; i < 8; ++i) {
    EXPECT_NEAR(std::hypot(pp.points[i].x - 1, pp.points[i].y), 1.0, 1e-12);
    EXPECT_NEAR(pp.bulges[i], std::tan(kPi / 16), 1e-12);
  }
  // One piece per arc (or fewer asked) gives the vertices as they are.
  pp = polySegmentPoints(circle, 0);
  ASSERT_EQ(pp.points.size(), 2u);
  EXPECT_EQ(pp.bulges[1], 1.0);

  // Neighbours within 0.001: the first of them goes, with its bulge; an
  // open polyline ends with its end point and bulge 0; z is the elevation.
  LwPoly p = poly({{0, 0, 0.5}, {0.0005, 0, 0.7}, {10, 0, 0}, {10, 10, 0.3}}, false);
  p.elevation = 2.5;
  pp = polySegmentPoints(p, 1);
  ASSERT_EQ(pp.points.size(), 3u);
  expectNear(pp.points[0], {0.0005, 0, 2.5});
  EXPECT_EQ(pp.bulges[0], 0.7);
  expectNear(pp.points[2], {10, 10, 2.5});
  EXPECT_EQ(pp.bulges[2], 0.0);
}

TEST(PolylineSampling, ChordsWithinTheToleranceAndNoRepeatedPoints) {
  const LwPoly circle = poly({{0, 0, 1}, {20, 0, 1}}, true);
  std::vector<Point> s = samplePoly(circle, 0.1, true);
  ASSERT_GT(s.size(), 8u);
  EXPECT_FALSE(std::fabs(s.front().x - s.back().x) < 1e-9 && std::fabs(s.front().y - s.back().y) < 1e-9)
      << "the closing point was to be dropped";
  for (size_t i = 0; i < s.size(); ++i) {
    const Point& a = s[i];
    const Point& b = s[(i + 1) % s.size()];
    EXPECT_NEAR(std::hypot(a.x - 10, a.y), 10.0, 1e-9);
    const double sagitta = 10.0 - std::hypot((a.x + b.x) / 2 - 10, (a.y + b.y) / 2);
    EXPECT_LE(sagitta, 0.1 + 1e-12);
  }
  const std::vector<Point> kept = samplePoly(circle, 0.1, false);
  ASSERT_EQ(kept.size(), s.size() + 1);
  expectNear(kept.back(), kept.front());

  // Repeated vertices give one sample; a degenerate polyline one point.
  s = samplePoly(poly({{1, 1, 0}, {1, 1, 0}, {2, 1, 0}}, false), 0.1, true);
  ASSERT_EQ(s.size(), 2u);
  EXPECT_EQ(samplePoly(poly({{1, 1, 0}}, false), 0.1, true).size(), 1u);
  // A tolerance of nothing is the default one, not a hang.
  EXPECT_EQ(samplePoly(circle, 0.0, true).size(), samplePoly(circle, kChordTolerance, true).size());
}

TEST(PolylineReversal, ArcsAndWidthsRunTheOtherWay) {
  LwPoly p = poly({{0, 0, 0.5}, {10, 0, 0}, {10, 10, -0.25}}, true);
  p.verts[0].startWidth = 1, p.verts[0].endWidth = 2;
  p.verts[2].startWidth = 3, p.verts[2].endWidth = 4;
  const LwPoly r = reversed(p);
  ASSERT_EQ(r.verts.size(), 3u);
  expectNear(r.verts[0].pt, {10, 10});
  EXPECT_EQ(r.verts[0].bulge, 0.0);      // the old (10,0)-(10,10) segment
  expectNear(r.verts[1].pt, {10, 0});
  EXPECT_EQ(r.verts[1].bulge, -0.5);     // the old first segment
  EXPECT_EQ(r.verts[1].startWidth, 2);
  EXPECT_EQ(r.verts[1].endWidth, 1);
  EXPECT_EQ(r.verts[2].bulge, 0.25);     // the old closing segment
  EXPECT_EQ(r.verts[2].startWidth, 4);
  EXPECT_NEAR(polySignedArea(r), -polySignedArea(p), 1e-9);
  const LwPoly back = reversed(r);
  for (size_t i = 0; i < 3; ++i) {
    expectNear(back.verts[i].pt, p.verts[i].pt);
    EXPECT_EQ(back.verts[i].bulge, p.verts[i].bulge);
  }
  // An open polyline's new last vertex has no segment.
  const LwPoly o = reversed(poly({{0, 0, 0.3}, {5, 0, 0}}, false));
  EXPECT_EQ(o.verts[0].bulge, -0.3);
  EXPECT_EQ(o.verts[1].bulge, 0.0);
}

TEST(PolylineStart, AClosedPolylineRestartsWithItsShapeKept) {
  const LwPoly p = poly({{0, 0, 0}, {10, 0, 0.4}, {10, 10, 0}, {0, 10, 0}}, true);
  const LwPoly r = rotatedStart(p, 1);
  expectNear(r.verts[0].pt, {10, 0});
  EXPECT_EQ(r.verts[0].bulge, 0.4);
  expectNear(r.verts[3].pt, {0, 0});
  EXPECT_TRUE(r.closed);
  EXPECT_NEAR(polySignedArea(r), polySignedArea(p), 1e-12);
  // Open polylines and indexes outside are left alone.
  EXPECT_EQ(rotatedStart(p, 4).verts[0].pt.x, 0.0);
  LwPoly open = p;
  open.closed = false;
  EXPECT_EQ(rotatedStart(open, 2).verts[0].pt.x, 0.0);
}

TEST(Chaining, LooseEdgesBecomeClosedRings) {
  // A square's four sides in a jumble, two of them the wrong way round,
  // one an arc, and a closed circle on its own.
  std::vector<LwPoly> edges{
      poly({{10, 0, 0}, {10, 10, 0}}, false),
      poly({{0, 0, 0}, {10, 0, 0}}, false),
      poly({{50, 0, 1}, {52, 0, 1}}, true),
      poly({{0, 10, 0}, {0, 0, 0}}, false),
      poly({{0, 10, -0.5}, {10, 10, 0}}, false),  // runs against the ring
  };
  const std::vector<LwPoly> rings = chainEdges(edges, 1e-9);
  ASSERT_EQ(rings.size(), 2u);
  EXPECT_EQ(rings[0].verts.size(), 2u);  // the circle, as it came
  const LwPoly& sq = rings[1];
  EXPECT_TRUE(sq.closed);
  ASSERT_EQ(sq.verts.size(), 4u);
  expectNear(sq.verts[0].pt, {10, 0});
  expectNear(sq.verts[1].pt, {10, 10});
  // The turned arc carries its bulge negated, on its new start.
  EXPECT_EQ(sq.verts[1].bulge, 0.5);
  expectNear(sq.verts[2].pt, {0, 10});
  // Its area: the square and the half-circle-less segment the arc adds.
  const LwPoly plain = poly({{10, 0, 0}, {10, 10, 0}, {0, 10, 0}, {0, 0, 0}}, true);
  EXPECT_GT(polySignedArea(sq), polySignedArea(plain));
  // Nothing to chain gives nothing.
  EXPECT_TRUE(chainEdges({}, 1e-9).empty());
}

TEST(Lines, MeetingsSharesFeetAndHeights) {
  auto x = intersectLines({0, 0}, {2, 2}, {0, 2}, {2, 0}, 1e-9);
  ASSERT_TRUE(x);
  expectNear(*x, {1, 1});
  // Beyond the given points the lines still meet.
  x = intersectLines({0, 0}, {1, 0}, {5, 1}, {5, 2}, 1e-9);
  ASSERT_TRUE(x);
  expectNear(*x, {5, 0});
  EXPECT_FALSE(intersectLines({0, 0}, {1, 0}, {0, 1}, {1, 1}, 1e-9));        // parallel
  EXPECT_FALSE(intersectLines({0, 0, 0}, {1, 0, 0}, {0, 1, 1}, {0, 2, 1}, 1e-9));  // skew
  EXPECT_FALSE(intersectLines({0, 0}, {0, 0}, {0, 1}, {1, 1}, 1e-9));        // no line

  EXPECT_TRUE(onOneLine({0, 0}, {10, 0}, {12, 1e-8}, {20, 0}, 1e-6, 1e-9));
  EXPECT_FALSE(onOneLine({0, 0}, {10, 0}, {12, 1e-3}, {20, 0}, 1e-6, 1e-9));
  auto part = commonPart({0, 0}, {10, 0}, {12, 0}, {4, 0}, 1e-9);
  ASSERT_TRUE(part);
  expectNear(part->first, {4, 0});
  expectNear(part->second, {10, 0});
  part = commonPart({0, 0}, {10, 0}, {10, 0}, {14, 0}, 1e-9);  // touching end to end
  ASSERT_TRUE(part);
  expectNear(part->first, part->second);
  EXPECT_FALSE(commonPart({0, 0}, {10, 0}, {11, 0}, {14, 0}, 1e-9));

  expectNear(perpendicularFoot({3, 5}, {0, 0}, {10, 0}), {3, 0});
  EXPECT_DOUBLE_EQ(distanceToLine({3, 5}, {0, 0}, {10, 0}), 5.0);
  expectNear(perpendicularFoot({3, 5}, {1, 1}, {1, 1}), {1, 1});

  auto h = heightOnTriangle({1, 1, 99}, {0, 0, 10}, {10, 0, 20}, {0, 10, 10});
  ASSERT_TRUE(h);
  expectNear(*h, {1, 1, 11});
  EXPECT_FALSE(heightOnTriangle({1, 1}, {0, 0, 0}, {10, 0, 0}, {10, 0, 5}));  // vertical
  EXPECT_FALSE(heightOnTriangle({1, 1}, {0, 0, 0}, {1, 1, 0}, {2, 2, 0}));    // no plane
}

// ---------------------------------------------------------------- ezdxf

namespace {

std::string num(double v) {
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.17g", v);
  return buf;
}

std::string verts(const LwPoly& p) {
  std::string s = "[";
  for (size_t i = 0; i < p.verts.size(); ++i)
    s += (i ? ",[" : "[") + num(p.verts[i].pt.x) + "," + num(p.verts[i].pt.y) + "," + num(p.verts[i].bulge) + "]";
  return s + "]";
}

std::vector<std::vector<double>> ask(const std::vector<std::string>& requests) {
  const char* data = std::getenv("ZEPK_TEST_DATA");
  const std::string script = std::string(data ? data : "tests/geometry") + "/kernel_oracle.py";
  char in[] = "/tmp/zepk_kernel_oracle_XXXXXX";
  const int fd = mkstemp(in);
  EXPECT_GE(fd, 0);
  ::close(fd);
  {
    std::ofstream f(in);
    for (const auto& r : requests) f << r << "\n";
  }
  const std::string cmd = "/usr/bin/python3 " + script + " < " + in + " 2>&1";
  FILE* p = ::popen(cmd.c_str(), "r");
  std::string out;
  char buf[4096];
  size_t n;
  while (p && (n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
  const int rc = p ? ::pclose(p) : -1;
  std::remove(in);
  EXPECT_EQ(rc, 0) << out;
  std::vector<std::vector<double>> rows;
  std::istringstream lines(out);
  std::string line;
  while (std::getline(lines, line)) {
    std::istringstream nums(line);
    std::vector<double> row;
    double v;
    while (nums >> v) row.push_back(v);
    rows.push_back(row);
  }
  EXPECT_EQ(rows.size(), requests.size()) << out;
  // Rows the oracle did not give are NaN, so that each check fails alone.
  rows.resize(requests.size());
  for (auto& row : rows) row.resize(std::max<size_t>(row.size(), 2), std::nan(""));
  return rows;
}

}  // namespace

TEST(KernelOracle, RandomPolylinesAgreeWithEzdxf) {
  const unsigned seed = testSeed();
  SCOPED_TRACE("seed " + std::to_string(seed) + " (ZEPK_SEED repeats it)");
  std::mt19937 rng(seed);
  auto uni = [&](double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(rng); };

  // Single arcs: centre, middle and the bulge back from three points.
  std::vector<std::string> req;
  std::vector<std::array<Point, 2>> chords;
  std::vector<double> bulges;
  for (int k = 0; k < 40; ++k) {
    const Point s{uni(-100, 100), uni(-100, 100)}, e{uni(-100, 100), uni(-100, 100)};
    double b = uni(0.01, 3.0) * (k % 2 ? -1 : 1);
    chords.push_back({s, e});
    bulges.push_back(b);
    const std::string args = "\"s\":[" + num(s.x) + "," + num(s.y) + "],\"e\":[" + num(e.x) + "," + num(e.y) +
                             "],\"b\":" + num(b);
    req.push_back("{\"op\":\"center\"," + args + "}");
    req.push_back("{\"op\":\"mid\"," + args + "}");
  }
  auto rows = ask(req);
  for (size_t k = 0; k < chords.size(); ++k) {
    const auto& [s, e] = chords[k];
    Point c;
    ASSERT_TRUE(getCenter(s, e, bulges[k], c));
    const Point m = getArcMidPoint(s, e, bulges[k]);
    const double scale = 1e-9 * (1 + std::fabs(c.x) + std::fabs(c.y));
    EXPECT_NEAR(c.x, rows[2 * k][0], scale) << "centre of arc " << k;
    EXPECT_NEAR(c.y, rows[2 * k][1], scale) << "centre of arc " << k;
    EXPECT_NEAR(m.x, rows[2 * k + 1][0], 1e-8) << "middle of arc " << k;
    EXPECT_NEAR(m.y, rows[2 * k + 1][1], 1e-8) << "middle of arc " << k;
    EXPECT_NEAR(calBulge(s, m, e), bulges[k], 1e-8 * (1 + std::fabs(bulges[k])));
  }

  // Polylines with random bulges: area and length; samples on the curve
  // with chords within the tolerance; arcs cut into pieces keep the shape.
  std::vector<LwPoly> polys;
  req.clear();
  for (int k = 0; k < 25; ++k) {
    // A star-shaped ring, so that random bulges keep it simple enough.
    LwPoly p;
    const int n = 3 + k % 9;
    for (int i = 0; i < n; ++i) {
      const double t = 2 * kPi * (i + uni(0.1, 0.9)) / n, r = uni(20, 60);
      p.verts.push_back({{r * std::cos(t), r * std::sin(t)}, (i % 3 == 0) ? 0.0 : uni(-0.6, 0.6)});
    }
    p.closed = k % 4 != 3;
    polys.push_back(p);
    const double tol = k % 2 ? 0.1 : 0.01;
    const std::vector<Point> s = samplePoly(p, tol, false);
    std::string pts = "[";
    for (size_t i = 0; i < s.size(); ++i) pts += (i ? ",[" : "[") + num(s[i].x) + "," + num(s[i].y) + "]";
    pts += "]";
    const std::string closed = p.closed ? "true" : "false";
    req.push_back("{\"op\":\"poly\",\"v\":" + verts(p) + ",\"closed\":" + closed + "}");
    req.push_back("{\"op\":\"near\",\"v\":" + verts(p) + ",\"closed\":" + closed + ",\"p\":" + pts + "}");
    // The same polyline rebuilt from its arcs cut in three.
    LwPoly cut;
    const PolyPoints pp = polySegmentPoints(p, 3);
    for (size_t i = 0; i < pp.points.size(); ++i) cut.verts.push_back({pp.points[i], pp.bulges[i]});
    cut.closed = p.closed;
    req.push_back("{\"op\":\"poly\",\"v\":" + verts(cut) + ",\"closed\":" + closed + "}");
  }
  rows = ask(req);
  for (size_t k = 0; k < polys.size(); ++k) {
    const LwPoly& p = polys[k];
    const double tol = k % 2 ? 0.1 : 0.01;
    const auto& whole = rows[3 * k];
    const auto& near = rows[3 * k + 1];
    const auto& cut = rows[3 * k + 2];
    if (p.closed) {
      EXPECT_NEAR(polySignedArea(p), whole[0], 1e-7) << "area of polyline " << k;
    }
    EXPECT_NEAR(polyLength(p), whole[1], 1e-8) << "length of polyline " << k;
    EXPECT_LE(near[0], 1e-8) << "a sample of polyline " << k << " is off the curve";
    EXPECT_LE(near[1], tol + 1e-9) << "a chord of polyline " << k << " strays beyond the tolerance";
    EXPECT_NEAR(cut[0], whole[0], 1e-7) << "polyline " << k << " cut into pieces changed its area";
    EXPECT_NEAR(cut[1], whole[1], 1e-7) << "polyline " << k << " cut into pieces changed its length";
  }
}

TEST(KernelOracle, PolylinesAsPlaneCurvesAgreeWithEzdxf) {
  const unsigned seed = testSeed();
  SCOPED_TRACE("seed " + std::to_string(seed) + " (ZEPK_SEED repeats it)");
  std::mt19937 rng(seed);
  auto uni = [&](double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(rng); };
  auto list = [](const AcGePoint2dArray& s) {
    std::string pts = "[";
    for (size_t i = 0; i < s.size(); ++i) pts += (i ? ",[" : "[") + num(s[i].x) + "," + num(s[i].y) + "]";
    return pts + "]";
  };
  std::vector<LwPoly> polys;
  std::vector<std::unique_ptr<AcGeCompositeCurve2d>> curves;
  std::vector<std::string> req;
  for (int k = 0; k < 20; ++k) {
    LwPoly p;
    const int n = 3 + k % 7;
    for (int i = 0; i < n; ++i) {
      const double t = 2 * kPi * (i + uni(0.1, 0.9)) / n, r = uni(20, 60);
      p.verts.push_back({{r * std::cos(t), r * std::sin(t)}, (i % 3 == 1) ? 0.0 : uni(-0.8, 0.8)});
    }
    p.closed = k % 3 != 2;
    auto c = lwPolyToCurve2d(p);
    ASSERT_TRUE(c);
    const std::string v = verts(p), closed = p.closed ? "true" : "false";
    req.push_back("{\"op\":\"poly\",\"v\":" + v + ",\"closed\":" + closed + "}");
    // Points at every quarter of every piece, and samples within a chord tolerance.
    AcGePoint2dArray at;
    for (double t = 0; t <= c->numCurves(); t += 0.25) at.push_back(c->evalPoint(t));
    req.push_back("{\"op\":\"near\",\"v\":" + v + ",\"closed\":" + closed + ",\"p\":" + list(at) + "}");
    AcGePoint2dArray s;
    AcGeDoubleArray prm;
    c->getSamplePoints(0, c->numCurves(), k % 2 ? 0.05 : 0.005, s, prm);
    req.push_back("{\"op\":\"near\",\"v\":" + v + ",\"closed\":" + closed + ",\"p\":" + list(s) + "}");
    polys.push_back(p);
    curves.push_back(std::move(c));
  }
  const auto rows = ask(req);
  for (size_t k = 0; k < polys.size(); ++k) {
    const AcGeCompositeCurve2d& c = *curves[k];
    const double len = rows[3 * k][1];
    EXPECT_NEAR(c.length(), len, 1e-8) << "length of polyline " << k;
    EXPECT_LE(rows[3 * k + 1][0], 1e-9) << "a point of polyline " << k << " is off it";
    EXPECT_LE(rows[3 * k + 2][0], 1e-9) << "a sample of polyline " << k << " is off it";
    EXPECT_LE(rows[3 * k + 2][1], (k % 2 ? 0.05 : 0.005) + 1e-9) << "a chord of polyline " << k << " strays";
    EXPECT_EQ(c.isClosed(), polys[k].closed);
    // The composite's parameters are the polyline's.
    for (double t : {0.0, 0.5, 1.0, 1.7, c.numCurves() - 0.25, double(c.numCurves())}) {
      const Point q = pointAtParam(polys[k], t);
      const AcGePoint2d at = c.evalPoint(t);
      EXPECT_NEAR(at.x, q.x, 1e-9) << "polyline " << k << " at " << t;
      EXPECT_NEAR(at.y, q.y, 1e-9) << "polyline " << k << " at " << t;
      // The start of a closed curve is also its end: the point, not the
      // parameter, is what comes back.
      EXPECT_NEAR(c.evalPoint(c.paramOf(at)).distanceTo(at), 0, 1e-9) << "polyline " << k << " at " << t;
    }
    // Split anywhere, the two parts make up the whole; reversed, the same length.
    AcGeCurve2d *a = nullptr, *b = nullptr;
    c.getSplitCurves(1.3, a, b);
    std::unique_ptr<AcGeCurve2d> pa(a), pb(b);
    ASSERT_TRUE(a && b);
    EXPECT_NEAR(a->length() + b->length(), len, 1e-8);
    AcGeCompositeCurve2d r = c;
    r.reverseParam();
    EXPECT_NEAR(r.length(), len, 1e-8);
    const AcGePoint2d q = r.evalPoint(c.numCurves() - 1.3), want = c.evalPoint(1.3);
    EXPECT_NEAR(q.distanceTo(want), 0, 1e-9);
  }
}
