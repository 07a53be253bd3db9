// Angle forms, roundings and bases on the cases surveyors meet, and the
// geodetic conversions against PROJ (through pyproj) on random points.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <unistd.h>

#include "services/numbers.h"
#include "testseed.h"

using namespace zepk::services;

TEST(Angles, DmsFormCarriesAndSigns) {
  EXPECT_DOUBLE_EQ(degToDms(30.5), 30.3);
  EXPECT_NEAR(dmsToDeg(30.3), 30.5, 1e-12);
  EXPECT_NEAR(dmsToDeg(30.1530), 30 + 15 / 60.0 + 30 / 3600.0, 1e-12);
  // Seconds within 1e-7 of 60 carry into the minutes, and 60 minutes into
  // the degrees.
  EXPECT_NEAR(degToDms(10 + 5 / 60.0 + 59.99999999 / 3600), 10.06, 1e-12);
  EXPECT_NEAR(degToDms(10 + 59 / 60.0 + 59.99999999 / 3600), 11.0, 1e-12);
  double zero = degToDms(0.0);
  EXPECT_EQ(zero, 0.0);
  EXPECT_FALSE(std::signbit(zero));
  EXPECT_NEAR(degToDms(-30.5), -30.3, 1e-12);
  EXPECT_NEAR(dmsToDeg(-30.3), -30.5, 1e-12);
  EXPECT_NEAR(dmsToDeg(30.9999), 30 + 99 / 60.0 + 99 / 3600.0, 1e-9);  // no range check
  EXPECT_DOUBLE_EQ(radToDeg(kPi), 180.0);
  EXPECT_NEAR(radToDms(degToRad(45.25)), 45.15, 1e-12);
  EXPECT_NEAR(dmsToRad(90.0), kPi / 2, 1e-15);
  // Round trips over the whole circle and beyond, with seconds away from
  // a whole minute.
  for (int deg = -400; deg < 400; deg += 7)
    for (int min = 0; min < 60; min += 11) {
      double d = deg + (deg < 0 ? -1 : 1) * (min / 60.0 + (0.5 + (deg + 400) % 59) / 3600);
      EXPECT_NEAR(dmsToDeg(degToDms(d)), d, 1e-9) << d;
    }
  // The digits are cut, not rounded: a ddd.mm whose double lies just below
  // the minute reads as one minute less and "99.99" seconds.
  EXPECT_LT(398.09 - 398, 0.09);
  EXPECT_NEAR(dmsToDeg(398.09), 398 + 8 / 60.0 + 100 / 3600.0, 1e-9);
}

TEST(Rounding, OffsetRuleAndEvenRule) {
  EXPECT_EQ(roundOffset(2.4999, 0), 3.0);
  EXPECT_EQ(roundOffset(2.4998, 0), 2.0);
  EXPECT_EQ(roundOffset(-2.4999, 0), -3.0);
  EXPECT_NEAR(roundOffset(3.14159, 2), 3.14, 1e-12);
  // Only the fraction is rounded: with negative digits it goes, whatever
  // its size, and the integer part stays.
  EXPECT_EQ(roundOffset(1264.9, -2), 1264.0);
  EXPECT_EQ(roundOffset(-1264.9, -2), -1264.0);
  EXPECT_EQ(roundHalfEven(2.4999, 0).value(), 2.0);
  EXPECT_EQ(roundHalfEven(2.5, 0).value(), 2.0);
  EXPECT_EQ(roundHalfEven(3.5, 0).value(), 4.0);
  EXPECT_EQ(roundHalfEven(-3.5, 0).value(), -4.0);
  EXPECT_NEAR(roundHalfEven(1.2345, 3).value(), 1.234, 1e-12);  // 1234.5 in binary lies below the half
  EXPECT_FALSE(roundHalfEven(1.0, -1));
}

TEST(Bases, BothDirections) {
  EXPECT_EQ(toBase(16, 255).value(), "ff");
  EXPECT_EQ(toBase(2, 0).value(), "");
  EXPECT_EQ(toBase(2, 5).value(), "101");
  EXPECT_EQ(toBase(2, -1).value(), std::string(32, '1'));
  EXPECT_EQ(toBase(8, -1).value(), "37777777777");
  EXPECT_EQ(toBase(10, -12).value(), "-12");
  EXPECT_FALSE(toBase(3, 5));
  EXPECT_EQ(fromBase(2, "1x01").value(), 5);
  EXPECT_EQ(fromBase(16, "fF").value(), 255);
  EXPECT_EQ(fromBase(8, "789").value(), 7);
  EXPECT_EQ(fromBase(16, "100000000").value(), 0);  // wraps at 32 bits
  EXPECT_FALSE(fromBase(12, "1"));
}

TEST(Geodesy, AgreesWithProjWithinAMillimetre) {
  unsigned seed = testSeed();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 rng(seed);
  auto uni = [&](double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(rng); };
  struct Case {
    int ell;
    double lon0, lat, lon, h;
  };
  std::vector<Case> cases;
  for (int i = 0; i < 200; ++i) {
    double lon0 = 75 + 3 * static_cast<int>(uni(0, 20));
    cases.push_back({1 + i % 4, lon0, uni(-60, 60), lon0 + uni(-4, 4), uni(-100, 5000)});
  }
  char in[] = "/tmp/zepk_geodesy_XXXXXX";
  int fd = ::mkstemp(in);
  ASSERT_GE(fd, 0);
  ::close(fd);
  {
    std::ofstream f(in);
    f.precision(17);
    for (const Case& c : cases) {
      const Ellipsoid* e = ellipsoidNumber(c.ell);
      f << e->a << " " << e->inverseFlat << " " << c.lon0 << " " << c.lat << " " << c.lon << " " << c.h << "\n";
    }
  }
  const char* data = std::getenv("ZEPK_TEST_DATA");
  std::string cmd = "/usr/bin/python3 " + std::string(data ? data : "tests/services") + "/geodesy_oracle.py < " + in;
  FILE* p = ::popen(cmd.c_str(), "r");
  ASSERT_NE(p, nullptr);
  std::string out;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
  EXPECT_EQ(::pclose(p), 0) << out;
  std::remove(in);
  std::istringstream lines(out);
  for (const Case& c : cases) {
    double north, east, gx, gy, gz;
    ASSERT_TRUE(lines >> north >> east >> gx >> gy >> gz) << out;
    const Ellipsoid& e = *ellipsoidNumber(c.ell);
    double x, y;
    gaussKruegerForward(e, degToRad(c.lon0), degToRad(c.lat), degToRad(c.lon), &x, &y);
    EXPECT_NEAR(x, north, 1e-3) << c.lat << " " << c.lon;
    EXPECT_NEAR(y, east, 1e-3) << c.lat << " " << c.lon;
    double lat, lon;
    gaussKruegerInverse(e, degToRad(c.lon0), north, east, &lat, &lon);
    // A millimetre on the ground is about 1.6e-10 rad.
    EXPECT_NEAR(lat, degToRad(c.lat), 1.5e-10);
    EXPECT_NEAR(lon, degToRad(c.lon), 1.5e-10);
    double xyz[3];
    geodeticToCartesian(e, degToRad(c.lat), degToRad(c.lon), c.h, xyz);
    EXPECT_NEAR(xyz[0], gx, 1e-3);
    EXPECT_NEAR(xyz[1], gy, 1e-3);
    EXPECT_NEAR(xyz[2], gz, 1e-3);
    double b, l, h;
    cartesianToGeodetic(e, xyz, &b, &l, &h);
    EXPECT_NEAR(b, degToRad(c.lat), 1e-11);
    EXPECT_NEAR(l, degToRad(c.lon), 1e-11);
    EXPECT_NEAR(h, c.h, 1e-4);
  }
  EXPECT_EQ(ellipsoidNumber(0), nullptr);
  EXPECT_EQ(ellipsoidNumber(5), nullptr);
}
