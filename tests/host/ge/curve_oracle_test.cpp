// Curves against ezdxf.math and shapely, on random curves made for each
// run: B-spline points and derivatives, bulges as arcs, ellipse points and
// lengths, interpolation, and where polylines with arcs meet. The seed is
// printed on failure.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "testseed.h"
#include "host/gearc3d.h"
#include "host/gecint3d.h"
#include "host/ge/offset.h"
#include "host/gecomp3d.h"
#include "host/geell3d.h"
#include "host/genurb3d.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

std::string num(double v) {
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.17g", v);
  return buf;
}
std::string arr(const std::vector<double>& v) {
  std::string s = "[";
  for (size_t i = 0; i < v.size(); ++i) s += (i ? "," : "") + num(v[i]);
  return s + "]";
}
std::string pts(const AcGePoint3dArray& p, bool twoD = false) {
  std::string s = "[";
  for (size_t i = 0; i < p.size(); ++i)
    s += (i ? ",[" : "[") + num(p[i].x) + "," + num(p[i].y) + (twoD ? "" : "," + num(p[i].z)) + "]";
  return s + "]";
}

// Runs the requests (JSON lines) through curve_oracle.py; one row of
// numbers per request.
std::vector<std::vector<double>> ask(const std::vector<std::string>& requests) {
  const char* data = std::getenv("ZEPK_TEST_DATA");
  std::string script = std::string(data ? data : "tests/host/ge") + "/curve_oracle.py";
  char in[] = "/tmp/zepk_curve_oracle_XXXXXX";
  int fd = mkstemp(in);
  EXPECT_GE(fd, 0);
  ::close(fd);
  {
    std::ofstream f(in);
    for (const auto& r : requests) f << r << "\n";
  }
  std::string cmd = "/usr/bin/python3 " + script + " < " + in + " 2>&1";
  FILE* p = ::popen(cmd.c_str(), "r");
  std::string out;
  char buf[4096];
  size_t n;
  while (p && (n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
  int rc = p ? ::pclose(p) : -1;
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
  rows.resize(requests.size());
  return rows;
}

class CurveOracle : public ::testing::Test {
 protected:
  void SetUp() override { rng_.seed(seed_ = testSeed()); }
  double uni(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(rng_); }
  int pick(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng_); }
  unsigned seed_ = 0;
  std::mt19937 rng_;
};

TEST_F(CurveOracle, BSplinePointsAndDerivatives) {
  SCOPED_TRACE("seed " + std::to_string(seed_));
  std::vector<AcGeNurbCurve3d> curves;
  std::vector<std::vector<double>> params;
  std::vector<std::string> req;
  for (int k = 0; k < 12; ++k) {
    int p = pick(1, 4), n = pick(p + 1, p + 8);
    bool rational = k % 2;
    AcGePoint3dArray cp;
    AcGeDoubleArray w, knots(p + 1, 0.0);
    for (int i = 0; i < n; ++i) {
      cp.push_back({uni(-100, 100), uni(-100, 100), uni(-100, 100)});
      w.push_back(rational ? uni(0.3, 3) : 1.0);
    }
    double u = 0;
    for (int i = 0; i < n - p - 1; ++i) knots.push_back(u += uni(0.1, 2) * (pick(0, 4) ? 1 : 0) + 0.05);
    knots.insert(knots.end(), p + 1, u + uni(0.1, 2));
    curves.emplace_back(p, knots, cp, w);
    std::vector<double> t;
    for (int i = 0; i < 9; ++i) t.push_back(knots.front() + (knots.back() - knots.front()) * uni(0, 1));
    t.push_back(knots.back());
    params.push_back(t);
    req.push_back("{\"op\":\"bspline\",\"p\":" + std::to_string(p) + ",\"knots\":" + arr(knots) +
                  ",\"ctrl\":" + pts(cp) + ",\"w\":" + (rational ? arr(w) : "null") + ",\"t\":" + arr(t) + "}");
  }
  auto rows = ask(req);
  for (size_t k = 0; k < curves.size(); ++k) {
    bool rational = curves[k].isRational();
    size_t stride = rational ? 3 : 9;
    ASSERT_EQ(rows[k].size(), params[k].size() * stride) << req[k];
    for (size_t i = 0; i < params[k].size(); ++i) {
      AcGeVector3dArray d;
      AcGePoint3d q = curves[k].evalPoint(params[k][i], 2, d);
      const double* w = &rows[k][i * stride];
      for (int c = 0; c < 3; ++c) EXPECT_NEAR(q[c], w[c], 1e-9 * 100) << req[k];
      if (rational) continue;
      for (int c = 0; c < 3; ++c) {
        EXPECT_NEAR(d[0][c], w[3 + c], 1e-8 * std::max(1.0, std::fabs(w[3 + c]))) << req[k];
        EXPECT_NEAR(d[1][c], w[6 + c], 1e-7 * std::max(1.0, std::fabs(w[6 + c]))) << req[k];
      }
    }
  }
}

TEST_F(CurveOracle, BulgesEllipsesAndInterpolation) {
  SCOPED_TRACE("seed " + std::to_string(seed_));
  std::vector<std::string> req;
  struct Bulge {
    AcGePoint3d a, b;
    double bulge;
  };
  std::vector<Bulge> bulges;
  for (int k = 0; k < 10; ++k) {
    Bulge g{{uni(-1e3, 1e3), uni(-1e3, 1e3), 0}, {uni(-1e3, 1e3), uni(-1e3, 1e3), 0}, uni(-3, 3)};
    bulges.push_back(g);
    req.push_back("{\"op\":\"bulge\",\"a\":[" + num(g.a.x) + "," + num(g.a.y) + "],\"b\":[" + num(g.b.x) + "," +
                  num(g.b.y) + "],\"bulge\":" + num(g.bulge) + "}");
  }
  std::vector<AcGeEllipArc3d> ells;
  std::vector<double> t{0.1, 1.0, 2.5, 4.0};
  for (int k = 0; k < 5; ++k) {
    double a = uni(1, 50), ratio = uni(0.05, 1), rot = uni(0, 2 * kPi), s = uni(0, 6), e = uni(0, 6);
    AcGeVector3d major(a * std::cos(rot), a * std::sin(rot), 0);
    AcGePoint3d c(uni(-100, 100), uni(-100, 100), uni(-10, 10));
    ells.emplace_back(c, major, AcGeVector3d::kZAxis.crossProduct(major), a, a * ratio, s, e);
    req.push_back("{\"op\":\"ellipse\",\"c\":" + pts({c}).substr(1, pts({c}).size() - 2) + ",\"major\":[" +
                  num(major.x) + "," + num(major.y) + ",0],\"ratio\":" + num(ratio) + ",\"s\":" + num(s) +
                  ",\"e\":" + num(e) + ",\"t\":" + arr(t) + "}");
  }
  AcGePoint3dArray fit;
  for (int i = 0; i < 7; ++i) fit.push_back({i * 3 + uni(0, 2), uni(-5, 5), uni(-1, 1)});
  // The curve through fit points, evaluated by ezdxf at the chord-length
  // parameters of the points, gives the points back.
  AcGeNurbCurve3d ours(fit);
  std::vector<double> fitParams{0.0};
  for (size_t i = 1; i < fit.size(); ++i) fitParams.push_back(fitParams.back() + fit[i].distanceTo(fit[i - 1]));
  for (double& u : fitParams) u /= fitParams.back();
  AcGePoint3dArray ctrl;
  for (int i = 0; i < ours.numControlPoints(); ++i) ctrl.push_back(ours.controlPointAt(i));
  req.push_back("{\"op\":\"bspline\",\"p\":3,\"knots\":" + arr(ours.knots()) + ",\"ctrl\":" + pts(ctrl) +
                ",\"w\":null,\"t\":" + arr(fitParams) + "}");
  auto rows = ask(req);
  for (size_t k = 0; k < bulges.size(); ++k) {
    ASSERT_EQ(rows[k].size(), 5u);
    std::unique_ptr<AcGeCurve3d> seg(zepk::ge::bulgeSegment(bulges[k].a, bulges[k].b, bulges[k].bulge,
                                                            AcGeVector3d::kZAxis));
    ASSERT_EQ(seg->type(), AcGe::kCircArc3d);
    auto& arc = static_cast<AcGeCircArc3d&>(*seg);
    EXPECT_NEAR(arc.center().x, rows[k][0], 1e-7);
    EXPECT_NEAR(arc.center().y, rows[k][1], 1e-7);
    EXPECT_NEAR(arc.radius(), rows[k][4], 1e-7);
    EXPECT_TRUE(arc.startPoint().isEqualTo(bulges[k].a, AcGeTol()) || arc.startPoint().distanceTo(bulges[k].a) < 1e-9);
    EXPECT_LT(arc.endPoint().distanceTo(bulges[k].b), 1e-9);
    // Counter-clockwise from the oracle's start angle to its end angle.
    double sweep = std::fmod(rows[k][3] - rows[k][2] + 4 * kPi, 2 * kPi);
    EXPECT_NEAR(arc.length(), sweep * rows[k][4], 1e-6);
  }
  for (size_t k = 0; k < ells.size(); ++k) {
    const auto& row = rows[bulges.size() + k];
    ASSERT_EQ(row.size(), t.size() * 3 + 1);
    for (size_t i = 0; i < t.size(); ++i) {
      AcGePoint3d q = ells[k].evalPoint(t[i]);
      for (int c = 0; c < 3; ++c) EXPECT_NEAR(q[c], row[3 * i + c], 1e-9);
    }
    EXPECT_NEAR(ells[k].length(), row.back(), 1e-6 * row.back());
  }
  const auto& ip = rows.back();
  ASSERT_EQ(ip.size(), fit.size() * 9);
  for (size_t i = 0; i < fit.size(); ++i)
    for (int c = 0; c < 3; ++c) EXPECT_NEAR(ip[9 * i + c], fit[i][c], 1e-9);
}

TEST_F(CurveOracle, PolylinesWithArcsMeetWhereShapelySays) {
  SCOPED_TRACE("seed " + std::to_string(seed_));
  std::vector<std::string> req;
  std::vector<std::vector<AcGePoint3d>> ours;
  for (int k = 0; k < 8; ++k) {
    AcGeCompositeCurve3d c[2];
    AcGePoint3dArray sampled[2];
    for (int j = 0; j < 2; ++j) {
      int n = pick(2, 6);
      AcGePoint3d prev(uni(0, 100), uni(0, 100), 0);
      for (int i = 0; i < n; ++i) {
        AcGePoint3d next(uni(0, 100), uni(0, 100), 0);
        double b = pick(0, 2) ? uni(-1.5, 1.5) : 0.0;
        c[j].appendOwned(zepk::ge::bulgeSegment(prev, next, b, AcGeVector3d::kZAxis));
        prev = next;
      }
      AcGeDoubleArray prm;
      c[j].getSamplePoints(0, c[j].numCurves(), 1e-7, sampled[j], prm);
    }
    req.push_back("{\"op\":\"inter\",\"a\":" + pts(sampled[0], true) + ",\"b\":" + pts(sampled[1], true) + "}");
    AcGeCurveCurveInt3d x(c[0], c[1]);
    std::vector<AcGePoint3d> found;
    for (int i = 0; i < x.numIntPoints(); ++i) {
      found.push_back(x.intPoint(i));
      double p1, p2;
      x.getIntParams(i, p1, p2);
      EXPECT_LT(c[0].evalPoint(p1).distanceTo(x.intPoint(i)), 1e-8);
      EXPECT_LT(c[1].evalPoint(p2).distanceTo(x.intPoint(i)), 1e-8);
      if (i) {
        double q1, q2;
        x.getIntParams(i - 1, q1, q2);
        EXPECT_LE(q1, p1);
      }
    }
    ours.push_back(found);
  }
  auto rows = ask(req);
  for (size_t k = 0; k < ours.size(); ++k) {
    // Every point shapely finds on the fine samples is one of ours, and the
    // other way round (tangencies aside, which random input does not make).
    ASSERT_EQ(rows[k].size() / 2, ours[k].size()) << req[k];
    for (size_t i = 0; i + 1 < rows[k].size(); i += 2) {
      AcGePoint3d w(rows[k][i], rows[k][i + 1], 0);
      double best = 1e300;
      for (const AcGePoint3d& q : ours[k]) best = std::min(best, q.distanceTo(w));
      EXPECT_LT(best, 1e-4) << req[k];
    }
  }
}

TEST_F(CurveOracle, PolygonOffsetsAgainstShapelyBuffers) {
  SCOPED_TRACE("seed " + std::to_string(seed_));
  // Polygons (counter-clockwise), grown and shrunk: the area of what the
  // offset leaves equals the mitred buffer's.
  std::vector<std::string> req;
  std::vector<double> ours;
  for (int k = 0; k < 12; ++k) {
    bool grow = k % 2 == 0;
    double d = (grow ? 1 : -1) * uni(0.5, 6);
    zepk::ge::BulgePolyline pl;
    pl.closed = true;
    AcGePoint3dArray p;
    // Corners on a circle (convex, no needle corners), grown and shrunk;
    // the offsets of concave outlines are checked by the curve entity
    // tests on outlines made for the purpose. The buffer first simplifies
    // its input by a hundredth of the distance, so a corner that stands
    // out less than that from its neighbours' chord would be measured
    // differently: such polygons are drawn again.
    for (bool ok = false; !ok;) {
      int n = pick(5, 14);
      // Angles with no gap of half a turn: the polygon winds once about
      // the origin, counter-clockwise.
      std::vector<double> ang;
      for (int i = 0; i < n; ++i) ang.push_back(uni(0, 2 * kPi));
      std::sort(ang.begin(), ang.end());
      ok = ang.front() + 2 * kPi - ang.back() < kPi * 0.9;
      for (int i = 1; i < n; ++i) ok = ok && ang[i] - ang[i - 1] < kPi * 0.9;
      if (!ok) continue;
      pl.verts.clear();
      p.clear();
      double r0 = uni(20, 100);
      for (double a : ang) {
        pl.verts.push_back({r0 * std::cos(a), r0 * std::sin(a), 0.0});
        p.push_back({r0 * std::cos(a), r0 * std::sin(a), 0});
      }
      for (size_t i = 0; i < p.size() && ok; ++i) {
        const AcGePoint3d &a = p[(i + p.size() - 1) % p.size()], &b = p[(i + 1) % p.size()];
        AcGeVector3d u = a - p[i], v = b - p[i];
        double standOut = std::fabs((b - a).crossProduct(p[i] - a).z) / a.distanceTo(b);
        ok = u.angleTo(v) >= 0.3 && standOut > std::fabs(d) * 0.05;
      }
    }
    req.push_back("{\"op\":\"buffer\",\"pts\":" + pts(p, true) + ",\"d\":" + num(d) + "}");
    double area = 0;
    for (const auto& r : zepk::ge::offsetPolyline(pl, d)) {
      EXPECT_TRUE(r.closed) << req.back();
      for (size_t i = 0; i < r.verts.size(); ++i) {
        const auto& a = r.verts[i];
        const auto& b = r.verts[(i + 1) % r.verts.size()];
        EXPECT_EQ(a.bulge, 0.0);
        area += 0.5 * (a.x * b.y - b.x * a.y);
      }
    }
    ours.push_back(area);
  }
  auto rows = ask(req);
  for (size_t k = 0; k < ours.size(); ++k) {
    ASSERT_EQ(rows[k].size(), 1u);
    EXPECT_NEAR(ours[k], rows[k][0], 1e-7 * std::max(1.0, rows[k][0])) << req[k];
  }
}

}  // namespace
