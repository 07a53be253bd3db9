// The area a hatch fills: exact values for simple loops, the hatch styles
// and loop flags, and random hatches of every edge kind against shapely
// (with ezdxf's arcs, ellipses and splines) on the same loops.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <unistd.h>

#include "host/dbhatch.h"
#include "testseed.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
using Edge = AcDbHatch::Edge;

Edge line(double x0, double y0, double x1, double y1) {
  Edge e;
  e.type = AcDbHatch::kLine;
  e.start.set(x0, y0);
  e.end.set(x1, y1);
  return e;
}

Edge arc(double cx, double cy, double r, double s, double t, bool ccw = true) {
  Edge e;
  e.type = AcDbHatch::kCirArc;
  e.center.set(cx, cy);
  e.radius = r;
  e.startAngle = s;
  e.endAngle = t;
  e.ccw = ccw;
  return e;
}

Edge ellipse(double cx, double cy, double mx, double my, double ratio, double s, double t, bool ccw = true) {
  Edge e;
  e.type = AcDbHatch::kEllArc;
  e.center.set(cx, cy);
  e.majorAxis.set(mx, my);
  e.minorMajorRatio = ratio;
  e.startAngle = s;
  e.endAngle = t;
  e.ccw = ccw;
  return e;
}

void square(AcDbHatch& h, double x0, double y0, double side, Adesk::Int32 type = AcDbHatch::kExternal) {
  h.appendLoop(type, {line(x0, y0, x0 + side, y0), line(x0 + side, y0, x0 + side, y0 + side),
                      line(x0 + side, y0 + side, x0, y0 + side), line(x0, y0 + side, x0, y0)});
}

double areaOf(const AcDbHatch& h) {
  double a = -1;
  EXPECT_EQ(h.getArea(a), Acad::eOk);
  return a;
}

}  // namespace

TEST(HatchArea, LoopsOfEveryKindCountExactly) {
  // A square less a circle, the circle clockwise (angles kept negated).
  AcDbHatch h;
  square(h, 0, 0, 10);
  h.appendLoop(AcDbHatch::kDefault, {arc(5, 5, 2, 0, 2 * kPi, false)});
  EXPECT_NEAR(areaOf(h), 100 - 4 * kPi, 1e-9);
  // A polyline loop: a square with a half circle on one side.
  AcDbHatch p;
  p.appendLoop(AcDbHatch::kPolyline | AcDbHatch::kExternal, {{0, 0}, {4, 0}, {4, 4}, {0, 4}}, {0, 1, 0, 0});
  EXPECT_NEAR(areaOf(p), 16 + 2 * kPi, 1e-9);
  // Three quarters of an ellipse closed by two radii, drawn both ways: a
  // clockwise edge keeps its angles negated and runs from minus the start.
  {
    AcDbHatch e;
    e.appendLoop(AcDbHatch::kExternal,
                 {line(10, 5, 10, 8), ellipse(10, 5, 0, 3, 0.5, 0, 1.5 * kPi), line(11.5, 5, 10, 5)});
    EXPECT_NEAR(areaOf(e), 0.75 * kPi * 3 * 1.5, 1e-9);
    AcDbHatch c;
    c.appendLoop(AcDbHatch::kExternal,
                 {line(10, 5, 11.5, 5), ellipse(10, 5, 0, 3, 0.5, -1.5 * kPi, 0, false), line(10, 8, 10, 5)});
    EXPECT_NEAR(areaOf(c), 0.75 * kPi * 3 * 1.5, 1e-9);
  }
  // A quarter circle clockwise from (3, 3) to (5, 1) about (3, 1).
  AcDbHatch pie;
  pie.appendLoop(AcDbHatch::kExternal, {line(3, 1, 3, 3), arc(3, 1, 2, -kPi / 2, 0, false), line(5, 1, 3, 1)});
  EXPECT_NEAR(areaOf(pie), kPi, 1e-9);
  // A loop that does not come back to its start is closed by a chord.
  AcDbHatch open;
  open.appendLoop(AcDbHatch::kExternal, {line(0, 0, 4, 0), line(4, 0, 4, 3)});
  EXPECT_NEAR(areaOf(open), 6, 1e-12);
  // A spline known by its fit points runs through them: twenty-four points
  // on a circle close to the circle's area. Knots that do not fit the
  // control points make no curve, and the loop's other edges still count.
  Edge fit;
  fit.type = AcDbHatch::kSpline;
  for (int k = 0; k <= 24; ++k) fit.fitPoints.emplace_back(3 * std::cos(k * kPi / 12), 3 * std::sin(k * kPi / 12));
  AcDbHatch round;
  round.appendLoop(AcDbHatch::kExternal, {fit});
  EXPECT_NEAR(areaOf(round), 9 * kPi, 9 * kPi * 1e-3);
  Edge bad;
  bad.type = AcDbHatch::kSpline;
  bad.controlPoints = {{0, 0}, {1, 5}, {2, 0}};
  bad.knots = {0, 1};
  AcDbHatch broken;
  broken.appendLoop(AcDbHatch::kExternal, {line(0, 0, 4, 0), line(4, 0, 4, 3), bad});
  EXPECT_NEAR(areaOf(broken), 6, 1e-12);
  // No loops, no area.
  EXPECT_EQ(areaOf(AcDbHatch()), 0.0);
}

TEST(HatchArea, StylesDecideWhichIslandsFill) {
  // Three squares one inside the other.
  AcDbHatch h;
  square(h, 0, 0, 10);
  square(h, 2, 2, 6, AcDbHatch::kDefault);
  square(h, 4, 4, 2, AcDbHatch::kDefault);
  h.setHatchStyle(AcDbHatch::kNormal);
  EXPECT_NEAR(areaOf(h), 100 - 36 + 4, 1e-12);
  h.setHatchStyle(AcDbHatch::kOuter);
  EXPECT_NEAR(areaOf(h), 100 - 36, 1e-12);
  h.setHatchStyle(AcDbHatch::kIgnore);
  EXPECT_NEAR(areaOf(h), 100, 1e-12);
  // Two areas side by side both count; a loop marked duplicate does not.
  AcDbHatch two;
  square(two, 0, 0, 1);
  square(two, 5, 0, 2);
  square(two, 5, 0, 2, AcDbHatch::kDuplicate);
  EXPECT_NEAR(areaOf(two), 5, 1e-12);
}

namespace {

std::string num(double v) {
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.17g", v);
  return buf;
}

std::string json(const AcDbHatch& h) {
  std::string s = "{\"style\": " + std::to_string(static_cast<int>(h.hatchStyle())) + ", \"loops\": [";
  for (int i = 0; i < h.numLoops(); ++i) {
    const AcDbHatch::Loop& l = h.loopAt(i);
    s += i ? ", " : "";
    if (l.type & AcDbHatch::kPolyline) {
      s += "{\"poly\": [";
      for (size_t k = 0; k < l.vertices.size(); ++k)
        s += (k ? ", [" : "[") + num(l.vertices[k].x) + ", " + num(l.vertices[k].y) + ", " + num(l.bulges[k]) + "]";
      s += "]}";
      continue;
    }
    s += "{\"edges\": [";
    for (size_t k = 0; k < l.edges.size(); ++k) {
      const Edge& e = l.edges[k];
      s += k ? ", " : "";
      const std::string ccw = e.ccw ? "true" : "false";
      switch (e.type) {
        case AcDbHatch::kLine:
          s += "[\"line\", " + num(e.start.x) + ", " + num(e.start.y) + ", " + num(e.end.x) + ", " + num(e.end.y) + "]";
          break;
        case AcDbHatch::kCirArc:
          s += "[\"arc\", " + num(e.center.x) + ", " + num(e.center.y) + ", " + num(e.radius) + ", " +
               num(e.startAngle) + ", " + num(e.endAngle) + ", " + ccw + "]";
          break;
        case AcDbHatch::kEllArc:
          s += "[\"ell\", " + num(e.center.x) + ", " + num(e.center.y) + ", " + num(e.majorAxis.x) + ", " +
               num(e.majorAxis.y) + ", " + num(e.minorMajorRatio) + ", " + num(e.startAngle) + ", " +
               num(e.endAngle) + ", " + ccw + "]";
          break;
        case AcDbHatch::kSpline: {
          s += "[\"spline\", " + std::to_string(e.degree) + ", [";
          for (size_t j = 0; j < e.knots.size(); ++j) s += (j ? ", " : "") + num(e.knots[j]);
          s += "], [";
          for (size_t j = 0; j < e.controlPoints.size(); ++j)
            s += (j ? ", [" : "[") + num(e.controlPoints[j].x) + ", " + num(e.controlPoints[j].y) + "]";
          s += "], [";
          for (size_t j = 0; j < e.weights.size(); ++j) s += (j ? ", " : "") + num(e.weights[j]);
          s += "]]";
          break;
        }
      }
    }
    s += "]}";
  }
  return s + "]}";
}

std::vector<double> oracle(const std::vector<std::string>& requests) {
  const char* data = std::getenv("ZEPK_TEST_DATA");
  const std::string script = std::string(data ? data : "tests/geometry") + "/hatch_oracle.py";
  char in[] = "/tmp/zepk_hatch_oracle_XXXXXX";
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
  std::vector<double> areas;
  std::istringstream lines(out);
  double v;
  while (lines >> v) areas.push_back(v);
  EXPECT_EQ(areas.size(), requests.size()) << out;
  areas.resize(requests.size(), std::nan(""));
  return areas;
}

}  // namespace

TEST(HatchArea, RandomHatchesAgreeWithShapely) {
  const unsigned seed = testSeed();
  SCOPED_TRACE("seed " + std::to_string(seed) + " (ZEPK_SEED repeats it)");
  std::mt19937 rng(seed);
  auto uni = [&](double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(rng); };
  std::vector<AcDbHatch> hatches(12);
  std::vector<std::string> req;
  for (size_t k = 0; k < hatches.size(); ++k) {
    AcDbHatch& h = hatches[k];
    h.setHatchStyle(static_cast<AcDbHatch::HatchStyle>(k % 3));
    // The outer boundary: a square of polyline vertices swelling outwards.
    h.appendLoop(AcDbHatch::kPolyline | AcDbHatch::kExternal, {{0, 0}, {100, 0}, {100, 100}, {0, 100}},
                 {uni(0, 0.4), uni(0, 0.4), uni(0, 0.4), uni(0, 0.4)});
    // A circular hole, either way round.
    h.appendLoop(AcDbHatch::kDefault, {arc(25 + uni(-3, 3), 25 + uni(-3, 3), uni(5, 15), 0, 2 * kPi, k % 2 == 0)});
    // An elliptical hole at a slant.
    const double t = uni(0, kPi), a = uni(8, 18);
    h.appendLoop(AcDbHatch::kDefault,
                 {ellipse(72, 28, a * std::cos(t), a * std::sin(t), uni(0.2, 0.9), 0, 2 * kPi, k % 4 < 2)});
    // A hole of lines and a half circle, with a spline island in it.
    const double r = uni(10, 18);
    h.appendLoop(AcDbHatch::kDefault, {line(50, 60, 90, 60), line(90, 60, 90, 75), arc(70, 75, 20, 0, kPi),
                                        line(50, 75, 50, 60)});
    Edge sp;
    sp.type = AcDbHatch::kSpline;
    sp.degree = 3;
    const int n = 7;
    for (int j = 0; j < n; ++j) {
      const double ang = 2 * kPi * j / (n - 1);
      sp.controlPoints.emplace_back(70 + std::cos(ang) * r * 0.3, 72 + std::sin(ang) * uni(2, 5));
    }
    sp.knots = {0, 0, 0, 0, 1, 2, 3, 4, 4, 4, 4};
    if (k % 2) {
      sp.rational = true;
      for (int j = 0; j < n; ++j) sp.weights.push_back(j == 0 || j == n - 1 ? 1.0 : uni(0.5, 2));
    }
    h.appendLoop(AcDbHatch::kDefault, {sp});
    req.push_back(json(h));
  }
  const std::vector<double> want = oracle(req);
  for (size_t k = 0; k < hatches.size(); ++k)
    EXPECT_NEAR(areaOf(hatches[k]), want[k], 2e-4 * want[k]) << "hatch " << k << ": " << req[k];
}
