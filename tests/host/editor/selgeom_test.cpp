// Selection geometry: the cases users meet (an arc bulging out of a
// window, a window inside a circle or inside a solid, a fence through a
// point) and random shapes against shapely.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <unistd.h>

#include "host/editor/selgeom.h"
#include "testseed.h"

using namespace zepk::editor::selgeom;

namespace {

Path line(Pt a, Pt b) { return Path{{a, b}, {}, false}; }
Shape shape(Path p, bool filled = false) { return Shape{{p}, filled}; }
// A circle of radius r about c, as two half arcs.
Path circle(Pt c, double r) { return Path{{{c.x - r, c.y}, {c.x + r, c.y}}, {1.0, 1.0}, true}; }
std::vector<Pt> square(double x0, double y0, double x1, double y1) { return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}}; }

TEST(SelectionGeometry, WindowTakesArcsWhole) {
  // A half circle above its chord from (0,0) to (2,0) reaches y = 1.
  Shape arc = shape(Path{{{2, 0}, {0, 0}}, {1.0}, false});
  Box e = extents(arc);
  EXPECT_NEAR(e.hi.y, 1.0, 1e-12);
  EXPECT_NEAR(e.lo.y, 0.0, 1e-12);
  EXPECT_FALSE(insideWindow(arc, windowOf({-1, -1}, {3, 0.9})));
  EXPECT_TRUE(insideWindow(arc, windowOf({3, 1.1}, {-1, -1})));  // corners in any order
  EXPECT_TRUE(crossesWindow(arc, windowOf({0.9, 0.5}, {1.1, 2})));
  // The window under the arc's top, between it and the chord: nothing meets.
  EXPECT_FALSE(crossesWindow(arc, windowOf({0.9, 0.2}, {1.1, 0.5})));
}

TEST(SelectionGeometry, WindowInsideAShapeCrossesOnlyWhenFilled) {
  Box w = windowOf({-1, -1}, {1, 1});
  EXPECT_FALSE(crossesWindow(shape(circle({0, 0}, 5)), w));
  EXPECT_TRUE(crossesWindow(shape(circle({0, 0}, 5), true), w));
  Path solid{square(-5, -5, 5, 5), {}, true};
  EXPECT_FALSE(crossesWindow(shape(solid), w));
  EXPECT_TRUE(crossesWindow(shape(solid, true), w));
  // A hole of a filled shape is no part of it.
  Shape holed{{solid, Path{square(-2, -2, 2, 2), {}, true}}, true};
  EXPECT_FALSE(crossesWindow(holed, w));
  EXPECT_EQ(distanceTo(holed, {0, 0}), 2.0);
  EXPECT_EQ(distanceTo(holed, {3, 0}), 0.0);
}

TEST(SelectionGeometry, PointsAndTouching) {
  Shape dot = shape(Path{{{1, 1}}, {}, false});
  EXPECT_TRUE(insideWindow(dot, windowOf({0, 0}, {2, 2})));
  EXPECT_TRUE(crossesFence(dot, {{0, 0}, {2, 2}}));
  EXPECT_FALSE(crossesFence(dot, {{0, 0}, {2, 2.1}}));
  // A line ending on a window's edge crosses it; one along the edge too.
  EXPECT_TRUE(crossesWindow(shape(line({2, 1}, {5, 1})), windowOf({0, 0}, {2, 2})));
  EXPECT_TRUE(crossesWindow(shape(line({2, -1}, {2, 5})), windowOf({0, 0}, {2, 2})));
  EXPECT_FALSE(crossesWindow(shape(line({2.01, -1}, {2.01, 5})), windowOf({0, 0}, {2, 2})));
  EXPECT_NEAR(distanceTo(shape(circle({0, 0}, 5)), {1, 0}), 4.0, 1e-12);
  EXPECT_NEAR(distanceTo(shape(line({0, 0}, {10, 0})), {12, 0}), 2.0, 1e-12);
}

TEST(SelectionGeometry, PolygonsAndFences) {
  // An L-shaped polygon: a line across its notch lies in its box but not in it.
  std::vector<Pt> ell{{0, 0}, {4, 0}, {4, 1}, {1, 1}, {1, 4}, {0, 4}};
  Shape across = shape(line({0.5, 3}, {3, 0.5}));
  EXPECT_FALSE(insidePolygon(across, ell));
  EXPECT_TRUE(crossesPolygon(across, ell));
  EXPECT_TRUE(insidePolygon(shape(line({0.5, 3}, {0.5, 0.5})), ell));
  Shape notch = shape(line({2, 2}, {3, 3}));
  EXPECT_FALSE(crossesPolygon(notch, ell));
  EXPECT_FALSE(crossesFence(notch, {{0, 0}, {4, 0}, {4, 4}}));
  EXPECT_TRUE(crossesFence(notch, {{0, 0}, {4, 0}, {4, 4}, {0, 4}, {4, 0}}));
  // Degenerate input selects nothing rather than everything.
  EXPECT_FALSE(crossesPolygon(notch, {{0, 0}, {5, 5}}));
  EXPECT_FALSE(insidePolygon(Shape{}, ell));
}

std::string num(double v) {
  char b[40];
  std::snprintf(b, sizeof b, "%.17g", v);
  return b;
}
std::string pts(const std::vector<Pt>& v) {
  std::string s = "[";
  for (size_t i = 0; i < v.size(); ++i) s += (i ? ",[" : "[") + num(v[i].x) + "," + num(v[i].y) + "]";
  return s + "]";
}

TEST(SelectionGeometryOracle, RandomShapesAgainstShapely) {
  unsigned seed = testSeed();
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> u(-10, 10), bul(-1.5, 1.5), unit(0, 1);
  struct Case {
    Shape s;
    std::vector<Pt> poly, fence;
  };
  std::vector<Case> cases;
  for (int n = 0; n < 600; ++n) {
    Case c;
    int kind = n % 4;
    if (kind == 3) {
      // A filled closed shape: a circle or a star.
      c.s.filled = true;
      if (unit(rng) < 0.5) {
        c.s.paths.push_back(circle({u(rng), u(rng)}, 0.5 + 6 * unit(rng)));
      } else {
        Path p;
        p.closed = true;
        Pt o{u(rng), u(rng)};
        for (int k = 0; k < 7; ++k) {
          double a = 2 * M_PI * k / 7, r = 1 + 6 * unit(rng);
          p.pts.push_back({o.x + r * std::cos(a), o.y + r * std::sin(a)});
        }
        c.s.paths.push_back(p);
      }
    } else {
      Path p;
      int nv = kind == 0 ? 1 : 2 + static_cast<int>(unit(rng) * 4);
      Pt o{u(rng), u(rng)};
      for (int k = 0; k < nv; ++k) {
        p.pts.push_back({o.x + u(rng) / 4, o.y + u(rng) / 4});
        p.bulges.push_back(kind == 2 ? bul(rng) : 0.0);
      }
      c.s.paths.push_back(p);
    }
    Pt o{u(rng) / 2, u(rng) / 2};
    int m = 3 + static_cast<int>(unit(rng) * 6);
    std::vector<double> angles;
    for (int k = 0; k < m; ++k) angles.push_back(2 * M_PI * unit(rng));
    std::sort(angles.begin(), angles.end());
    for (double a : angles) {
      double r = 2 + 8 * unit(rng);
      c.poly.push_back({o.x + r * std::cos(a), o.y + r * std::sin(a)});
    }
    for (int k = 0; k < 3; ++k) c.fence.push_back({u(rng), u(rng)});
    cases.push_back(c);
  }
  char in[] = "/tmp/zepk_selgeom_XXXXXX";
  int fd = mkstemp(in);
  ASSERT_GE(fd, 0);
  ::close(fd);
  {
    std::ofstream f(in);
    for (const Case& c : cases) {
      f << "{\"paths\":[";
      for (size_t i = 0; i < c.s.paths.size(); ++i) {
        const Path& p = c.s.paths[i];
        f << (i ? "," : "") << "{\"pts\":" << pts(p.pts) << ",\"bulges\":[";
        for (size_t k = 0; k < p.bulges.size(); ++k) f << (k ? "," : "") << num(p.bulges[k]);
        f << "],\"closed\":" << (p.closed ? "true" : "false") << "}";
      }
      f << "],\"filled\":" << (c.s.filled ? "true" : "false") << ",\"poly\":" << pts(c.poly)
        << ",\"fence\":" << pts(c.fence) << "}\n";
    }
  }
  const char* data = std::getenv("ZEPK_TEST_DATA");
  std::string cmd = "/usr/bin/python3 " + std::string(data ? data : "tests/host/editor") + "/selgeom_oracle.py < " +
                    in + " 2>&1";
  FILE* p = ::popen(cmd.c_str(), "r");
  ASSERT_TRUE(p);
  std::string out;
  char buf[4096];
  size_t got;
  while ((got = fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, got);
  ::pclose(p);
  ::unlink(in);
  std::istringstream lines(out);
  int checked = 0, inside = 0, crossing = 0, fenced = 0;
  for (const Case& c : cases) {
    int wi, cr, fe;
    double margin;
    ASSERT_TRUE(lines >> wi >> cr >> fe >> margin) << "oracle said: " << out.substr(0, 400);
    if (margin < 1e-4) continue;  // too near a line for sampled arcs to decide
    ++checked;
    inside += wi, crossing += cr, fenced += fe;
    SCOPED_TRACE("seed " + std::to_string(seed) + " case " + std::to_string(&c - &cases[0]));
    EXPECT_EQ(insidePolygon(c.s, c.poly), wi != 0);
    EXPECT_EQ(crossesPolygon(c.s, c.poly), cr != 0);
    EXPECT_EQ(crossesFence(c.s, c.fence), fe != 0);
  }
  // The random cases must exercise both answers of each test.
  EXPECT_GT(checked, 500);
  EXPECT_GT(inside, 10);
  EXPECT_LT(crossing, checked);
  EXPECT_GT(fenced, 20);
  EXPECT_LT(fenced, checked);
}

}  // namespace
