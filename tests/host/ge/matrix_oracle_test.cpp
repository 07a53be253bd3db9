// Matrix operations against numpy, on random input made for each run.
// tests/host/ge/matrix_oracle.py answers; the seed is printed on failure.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "host/gelin3d.h"
#include "host/gemat3d.h"
#include "host/geplane.h"
#include "testseed.h"

namespace {

std::string fmt(double v) {
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.17g", v);
  return buf;
}

// One batch of requests to numpy: each request is a line, each answer the
// numbers of the matching output line.
class Oracle {
 public:
  void add(const std::string& op, const std::vector<double>& values) {
    std::string line = op;
    for (double v : values) line += " " + fmt(v);
    requests_ += line + "\n";
  }

  // Runs numpy over every request added so far.
  bool run(std::vector<std::vector<double>>& answers, std::string& error) {
    const char* data = std::getenv("ZEPK_TEST_DATA");
    std::string script = std::string(data ? data : "tests/host/ge") + "/matrix_oracle.py";
    char in[] = "/tmp/zepk_ge_oracle_XXXXXX";
    int fd = mkstemp(in);
    if (fd < 0) return error = "no temporary file", false;
    ::close(fd);
    std::ofstream(in) << requests_;
    std::string cmd = "/usr/bin/python3 " + script + " < " + in + " 2>&1";
    FILE* p = ::popen(cmd.c_str(), "r");
    std::string out;
    if (p) {
      char buf[4096];
      size_t n;
      while ((n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
      if (::pclose(p) != 0) error = "numpy oracle failed: " + out;
    } else {
      error = "cannot run " + cmd;
    }
    std::remove(in);
    if (!error.empty()) return false;
    std::istringstream lines(out);
    std::string line;
    while (std::getline(lines, line)) {
      std::istringstream nums(line);
      std::vector<double> row;
      double v;
      while (nums >> v) row.push_back(v);
      answers.push_back(row);
    }
    return true;
  }

 private:
  std::string requests_;
};

std::vector<double> flat(const AcGeMatrix3d& m) {
  std::vector<double> v;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) v.push_back(m.entry[r][c]);
  return v;
}

std::vector<double> cat(std::initializer_list<std::vector<double>> parts) {
  std::vector<double> v;
  for (const auto& p : parts) v.insert(v.end(), p.begin(), p.end());
  return v;
}

std::vector<double> xyz(const AcGePoint3d& p) { return {p.x, p.y, p.z}; }
std::vector<double> xyz(const AcGeVector3d& p) { return {p.x, p.y, p.z}; }

// Entry by entry within tol times the larger of 1 and the entry's size.
void expectMatrixNear(const AcGeMatrix3d& got, const std::vector<double>& want, double tol,
                      const std::string& what) {
  ASSERT_GE(want.size(), 16u) << what;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) {
      double w = want[r * 4 + c];
      EXPECT_NEAR(got.entry[r][c], w, tol * std::max(1.0, std::fabs(w))) << what << " entry " << r << c;
    }
}

class MatrixOracle : public ::testing::Test {
 protected:
  void SetUp() override {
    seed_ = testSeed();
    rng_.seed(seed_);
  }

  double uniform(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(rng_); }
  AcGeVector3d vec(double r) { return {uniform(-r, r), uniform(-r, r), uniform(-r, r)}; }
  AcGePoint3d pnt(double r) { return AcGePoint3d::kOrigin + vec(r); }

  // A random matrix: affine with a survey-sized translation, or fully general.
  AcGeMatrix3d randomMatrix(bool affine) {
    AcGeMatrix3d m;
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c) m.entry[r][c] = uniform(-10.0, 10.0);
    if (affine) {
      m.entry[3][0] = m.entry[3][1] = m.entry[3][2] = 0.0;
      m.entry[3][3] = 1.0;
      m.setTranslation(vec(1e6));
    }
    return m;
  }

  std::vector<std::vector<double>> ask(Oracle& oracle) {
    std::vector<std::vector<double>> answers;
    std::string error;
    EXPECT_TRUE(oracle.run(answers, error)) << error;
    return answers;
  }

  unsigned seed_ = 0;
  std::mt19937_64 rng_;
};

TEST_F(MatrixOracle, InverseDeterminantProductTranspose) {
  SCOPED_TRACE("seed " + std::to_string(seed_));
  Oracle oracle;
  std::vector<AcGeMatrix3d> ms;
  for (int i = 0; i < 40; ++i) ms.push_back(randomMatrix(i % 2 == 0));
  for (size_t i = 0; i < ms.size(); ++i) {
    oracle.add("inv", flat(ms[i]));
    oracle.add("det", flat(ms[i]));
    oracle.add("mul", cat({flat(ms[i]), flat(ms[(i + 1) % ms.size()])}));
  }
  auto answers = ask(oracle);
  ASSERT_EQ(answers.size(), ms.size() * 3);
  for (size_t i = 0; i < ms.size(); ++i) {
    const AcGeMatrix3d& m = ms[i];
    const AcGeMatrix3d& next = ms[(i + 1) % ms.size()];
    const auto& inv = answers[i * 3];
    double cond = inv[16];
    ASSERT_FALSE(m.isSingular());
    expectMatrixNear(m.inverse(), inv, 1e-14 * cond, "inverse");
    AcGeMatrix3d inverted = m;
    inverted.invert();
    expectMatrixNear(inverted, inv, 1e-14 * cond, "invert");
    double det = answers[i * 3 + 1][0];
    EXPECT_NEAR(m.det(), det, 1e-12 * std::max(1.0, std::fabs(det)) * cond);
    const auto& prod = answers[i * 3 + 2];
    expectMatrixNear(m * next, prod, 1e-14, "operator*");
    expectMatrixNear(AcGeMatrix3d().setToProduct(m, next), prod, 1e-14, "setToProduct");
    expectMatrixNear(AcGeMatrix3d(next).preMultBy(m), prod, 1e-14, "preMultBy");
    expectMatrixNear(AcGeMatrix3d(m).postMultBy(next), prod, 1e-14, "postMultBy");
    AcGeMatrix3d t = m.transpose();
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c) EXPECT_EQ(t.entry[r][c], m.entry[c][r]);
    EXPECT_NEAR(t.det(), m.det(), 1e-12 * std::max(1.0, std::fabs(det)) * cond);
  }
}

TEST_F(MatrixOracle, SingularMatricesAreFoundAndLeftAlone) {
  SCOPED_TRACE("seed " + std::to_string(seed_));
  Oracle oracle;
  std::vector<AcGeMatrix3d> ms;
  for (int i = 0; i < 20; ++i) {
    // Integer entries and one column an integer combination of two others:
    // exactly singular, so numpy's rank is exact too.
    AcGeMatrix3d m;
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c) m.entry[r][c] = std::round(uniform(-9.0, 9.0));
    bool affine = i % 2 == 0;
    if (affine) m.entry[3][0] = m.entry[3][1] = m.entry[3][2] = 0.0, m.entry[3][3] = 1.0;
    int a = std::round(uniform(-3, 3)), b = std::round(uniform(-3, 3));
    int target = affine ? 2 : i % 4;
    for (int r = 0; r < (affine ? 3 : 4); ++r)
      m.entry[r][target] = a * m.entry[r][(target + 1) % 3] + b * m.entry[r][(target + 2) % 3];
    ms.push_back(m);
    oracle.add("rank", flat(m));
  }
  auto answers = ask(oracle);
  ASSERT_EQ(answers.size(), ms.size());
  for (size_t i = 0; i < ms.size(); ++i) {
    const AcGeMatrix3d& m = ms[i];
    ASSERT_EQ(answers[i].size(), 1u);
    EXPECT_LE(answers[i][0], 3.0);
    EXPECT_TRUE(m.isSingular()) << i;
    AcGeMatrix3d inv = m.inverse();
    expectMatrixNear(inv, flat(m), 0.0, "inverse of a singular matrix");
    AcGeMatrix3d inverted = m;
    inverted.invert();
    expectMatrixNear(inverted, flat(m), 0.0, "invert of a singular matrix");
    AcGeMatrix3d out = AcGeMatrix3d::kIdentity;
    EXPECT_FALSE(m.inverse(out, 1e-12));
    expectMatrixNear(out, flat(AcGeMatrix3d::kIdentity), 0.0, "status form leaves its output");
    EXPECT_NEAR(m.det(), 0.0, 1e-9);
  }
}

TEST_F(MatrixOracle, RotationsAboutAnAxisThroughAPoint) {
  SCOPED_TRACE("seed " + std::to_string(seed_));
  Oracle oracle;
  struct Case {
    double angle;
    AcGeVector3d axis;
    AcGePoint3d center;
  };
  std::vector<Case> cases;
  for (int i = 0; i < 30; ++i) {
    Case c{uniform(-7.0, 7.0), vec(5.0), pnt(1000.0)};
    cases.push_back(c);
    oracle.add("rot", cat({{c.angle}, xyz(c.axis), xyz(c.center)}));
  }
  auto answers = ask(oracle);
  ASSERT_EQ(answers.size(), cases.size());
  for (size_t i = 0; i < cases.size(); ++i) {
    const Case& c = cases[i];
    AcGeMatrix3d m;
    m.setToRotation(c.angle, c.axis, c.center);
    // The translation part grows with the centre's distance from the origin.
    expectMatrixNear(m, answers[i], 1e-14 * std::max(1.0, c.center.asVector().length()), "setToRotation");
    EXPECT_TRUE(m.isUniScaledOrtho());
    EXPECT_NEAR(m.det(), 1.0, 1e-12);
    // Points and vectors rotate by the same matrix.
    AcGePoint3d p = pnt(100.0);
    AcGePoint3d q = p;
    q.rotateBy(c.angle, c.axis, c.center);
    EXPECT_TRUE(q.isEqualTo(m * p, AcGeTol())) << i;
    AcGeVector3d v = vec(3.0);
    AcGeVector3d w = v;
    w.rotateBy(c.angle, c.axis);
    EXPECT_TRUE(w.isEqualTo(m * v, AcGeTol())) << i;
  }
}

TEST_F(MatrixOracle, AlignmentOfCoordinateSystems) {
  SCOPED_TRACE("seed " + std::to_string(seed_));
  Oracle oracle;
  std::vector<std::vector<AcGeVector3d>> frames;
  for (int i = 0; i < 30; ++i) {
    // Skewed, unequal axes on both sides.
    std::vector<AcGeVector3d> f;
    for (int k = 0; k < 8; ++k) f.push_back(k % 4 == 0 ? vec(1e5) : vec(4.0));
    frames.push_back(f);
    std::vector<double> args;
    for (const auto& v : f) args.insert(args.end(), {v.x, v.y, v.z});
    oracle.add("align", args);
  }
  auto answers = ask(oracle);
  ASSERT_EQ(answers.size(), frames.size());
  for (size_t i = 0; i < frames.size(); ++i) {
    const auto& f = frames[i];
    AcGeMatrix3d from;
    from.setCoordSystem(AcGePoint3d::kOrigin + f[0], f[1], f[2], f[3]);
    if (from.isSingular(AcGeTol())) continue;
    AcGeMatrix3d m;
    m.setToAlignCoordSys(AcGePoint3d::kOrigin + f[0], f[1], f[2], f[3], AcGePoint3d::kOrigin + f[4], f[5], f[6],
                         f[7]);
    // Entries grow with the translation (1e5) over the axes' spread.
    double size = 0.0;
    for (double v : answers[i]) size = std::max(size, std::fabs(v));
    expectMatrixNear(m, answers[i], 1e-9 * size, "setToAlignCoordSys");
    // The "from" origin lands on the "to" origin, and the from axes on the to axes.
    AcGeTol scaled;
    scaled.setEqualPoint(1e-9 * size);
    EXPECT_TRUE((m * (AcGePoint3d::kOrigin + f[0])).isEqualTo(AcGePoint3d::kOrigin + f[4], scaled)) << i;
    EXPECT_LT((m * f[1] - f[5]).length(), 1e-9 * f[5].length() * size) << i;
  }
}

TEST_F(MatrixOracle, MirroringInPlanesAndLines) {
  SCOPED_TRACE("seed " + std::to_string(seed_));
  Oracle oracle;
  std::vector<std::vector<AcGePoint3d>> cases;
  for (int i = 0; i < 30; ++i) {
    AcGePoint3d base = pnt(1e4);
    cases.push_back({base, base + vec(50.0), base + vec(50.0)});
    oracle.add("mirplane", cat({xyz(cases.back()[0]), xyz(cases.back()[1]), xyz(cases.back()[2])}));
    oracle.add("mirline", cat({xyz(cases.back()[0]), xyz(cases.back()[1])}));
  }
  auto answers = ask(oracle);
  ASSERT_EQ(answers.size(), cases.size() * 2);
  for (size_t i = 0; i < cases.size(); ++i) {
    const auto& c = cases[i];
    AcGePlane plane(c[1], c[0], c[2]);
    AcGeMatrix3d mp = AcGeMatrix3d::mirroring(plane);
    expectMatrixNear(mp, answers[i * 2], 1e-9, "mirroring in a plane");
    EXPECT_NEAR(mp.det(), -1.0, 1e-12);
    EXPECT_TRUE((mp * mp).isEqualTo(AcGeMatrix3d::kIdentity, AcGeTol()));
    // A point mirrors the same way by the matrix and by itself.
    AcGePoint3d p = c[0] + vec(100.0);
    EXPECT_TRUE(AcGePoint3d(p).mirror(plane).isEqualTo(mp * p, AcGeTol()));

    AcGeLine3d line(c[0], c[1]);
    AcGeMatrix3d ml = AcGeMatrix3d::mirroring(line);
    expectMatrixNear(ml, answers[i * 2 + 1], 1e-9, "mirroring in a line");
    EXPECT_NEAR(ml.det(), 1.0, 1e-12);
    EXPECT_TRUE((ml * c[1]).isEqualTo(c[1], AcGeTol()));
  }
  // Through a point: p' = 2c - p.
  AcGePoint3d center = pnt(1e3), p = pnt(1e3);
  EXPECT_TRUE((AcGeMatrix3d::mirroring(center) * p).isEqualTo(center + (center - p)));
}

}  // namespace
