#include "host/lisp/units.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "host/system/utf.h"

namespace zepk::lisp {
namespace {

constexpr double kPi = 3.14159265358979323846;

std::string lin(double v, int mode, int prec, UnitStyle st = {}) { return sys::toUtf8(formatLinear(v, mode, prec, st)); }
std::string ang(double v, int mode, int prec, UnitStyle st = {}) { return sys::toUtf8(formatAngle(v, mode, prec, st)); }
std::optional<double> plin(const char* s, int mode) { return parseLinear(sys::fromUtf8(s), mode); }
std::optional<double> pang(const char* s, int mode) { return parseAngle(sys::fromUtf8(s), mode); }
double deg(double d) { return d * kPi / 180.0; }

TEST(FormatLinear, EachMode) {
  EXPECT_EQ(lin(17.5, 1, 4), "1.7500E+01");
  EXPECT_EQ(lin(17.5, 2, 4), "17.5000");
  EXPECT_EQ(lin(17.5, 3, 4), "1'-5.5000\"");
  EXPECT_EQ(lin(17.5, 4, 4), "1'-5 1/2\"");
  EXPECT_EQ(lin(17.5, 5, 4), "17 1/2");
  EXPECT_EQ(lin(-17.5, 3, 4), "-1'-5.5000\"");
  EXPECT_EQ(lin(-17.5, 5, 4), "-17 1/2");
  EXPECT_EQ(formatLinear(1.0, 0, 4), u"");
  EXPECT_EQ(formatLinear(1.0, 6, 4), u"");
}

TEST(FormatLinear, RoundsHalfAwayFromZero) {
  EXPECT_EQ(lin(0.5, 2, 0), "1");
  EXPECT_EQ(lin(2.5, 2, 0), "3");
  EXPECT_EQ(lin(-2.5, 2, 0), "-3");
  EXPECT_EQ(lin(0.125, 2, 2), "0.13");
  EXPECT_EQ(lin(0.375, 2, 2), "0.38");
  EXPECT_EQ(lin(9.9996, 2, 3), "10.000");
  EXPECT_EQ(lin(999999.5, 2, 0), "1000000");
  // Decided on the double's digits: 2.675 is 2.67499999999999982...
  EXPECT_EQ(lin(2.675, 2, 2), "2.67");
  // A negative number that rounds to zero has no sign.
  EXPECT_EQ(lin(-0.001, 2, 2), "0.00");
  EXPECT_EQ(lin(-0.001, 2, 3), "-0.001");
  EXPECT_EQ(lin(1e-7, 2, 4), "0.0000");
  EXPECT_EQ(lin(1234567.891, 2, 2), "1234567.89");
  EXPECT_EQ(lin(kPi, 2, 16), "3.1415926535897931");
  EXPECT_EQ(lin(0.1, 2, 20), "0.10000000000000001000");
}

TEST(FormatLinear, Scientific) {
  EXPECT_EQ(lin(0.0, 1, 4), "0.0000E+00");
  EXPECT_EQ(lin(0.00012346, 1, 3), "1.235E-04");
  EXPECT_EQ(lin(9.99996, 1, 4), "1.0000E+01");
  EXPECT_EQ(lin(-123.0, 1, 0), "-1E+02");
  EXPECT_EQ(lin(1e100, 1, 2), "1.00E+100");
  EXPECT_EQ(lin(17.5, 1, 4, {8, 0}), "1.75E+01");
}

TEST(FormatLinear, DimzinDecimals) {
  EXPECT_EQ(lin(3.5, 2, 4, {8, 0}), "3.5");
  EXPECT_EQ(lin(3.0, 2, 4, {8, 0}), "3");
  EXPECT_EQ(lin(0.5, 2, 2, {4, 0}), ".50");
  EXPECT_EQ(lin(0.5, 2, 2, {12, 0}), ".5");
  EXPECT_EQ(lin(-0.5, 2, 2, {4, 0}), "-.50");
  EXPECT_EQ(lin(0.0, 2, 2, {12, 0}), "0");
}

TEST(FormatLinear, FeetAndInchesZeroRules) {
  // DIMZIN 0: no zero feet, no precisely-zero inches.
  EXPECT_EQ(lin(5.5, 3, 2), "5.50\"");
  EXPECT_EQ(lin(24.0, 3, 2), "2'");
  EXPECT_EQ(lin(0.0, 3, 2), "0.00\"");
  EXPECT_EQ(lin(0.5, 4, 4), "1/2\"");
  EXPECT_EQ(lin(24.0, 4, 4), "2'");
  EXPECT_EQ(lin(0.0, 4, 4), "0\"");
  // 1: both shown; 2: zero feet only; 3: zero inches only.
  EXPECT_EQ(lin(5.5, 3, 2, {1, 0}), "0'-5.50\"");
  EXPECT_EQ(lin(24.0, 3, 2, {1, 0}), "2'-0.00\"");
  EXPECT_EQ(lin(24.0, 4, 4, {2, 0}), "2'");
  EXPECT_EQ(lin(6.0, 4, 4, {2, 0}), "0'-6\"");
  EXPECT_EQ(lin(24.0, 4, 4, {3, 0}), "2'-0\"");
  EXPECT_EQ(lin(6.0, 4, 4, {3, 0}), "6\"");
  // A fraction after whole feet keeps its zero inches.
  EXPECT_EQ(lin(12.5, 4, 4), "1'-0 1/2\"");
  EXPECT_EQ(lin(12.5, 4, 4, {0, 1}), "1'0-1/2\"");
}

TEST(FormatLinear, FeetAndInchesCarry) {
  EXPECT_EQ(lin(23.9999, 3, 2), "2'");
  EXPECT_EQ(lin(23.999, 4, 4), "2'");
  EXPECT_EQ(lin(23.97, 4, 4), "2'");  // to the 1/16, 0.97 rounds to a whole inch
  EXPECT_EQ(lin(23.97, 4, 5), "1'-11 31/32\"");
  EXPECT_EQ(lin(1.0 / 3.0, 4, 3), "3/8\"");
  EXPECT_EQ(lin(100.0 / 3.0, 4, 8), "2'-9 85/256\"");
  EXPECT_EQ(lin(17.5, 4, 0), "1'-6\"");  // half rounds up at whole inches
  EXPECT_EQ(lin(17.5, 4, 12), "1'-5 1/2\"");  // denominator caps at 256
}

TEST(FormatLinear, ExtremeValuesAndPrecisions) {
  EXPECT_EQ(lin(1e300, 5, 8).size(), 301u);
  EXPECT_EQ(lin(1e300, 4, 8).back(), '\'');
  EXPECT_EQ(lin(-1e300, 3, 2).substr(0, 2), "-8");
  EXPECT_EQ(lin(kPi, 2, 1000), lin(kPi, 2, 20));
  EXPECT_EQ(lin(kPi, 2, -3), "3");
}

TEST(FormatLinear, UnitmodeWritesInputForm) {
  EXPECT_EQ(lin(17.5, 3, 4, {0, 1}), "1'5.5000\"");
  EXPECT_EQ(lin(17.5, 4, 4, {0, 1}), "1'5-1/2\"");
  EXPECT_EQ(lin(17.5, 5, 4, {0, 1}), "17-1/2");
}

TEST(FormatLinear, Fractional) {
  EXPECT_EQ(lin(0.5, 5, 4), "1/2");
  EXPECT_EQ(lin(17.0, 5, 4), "17");
  EXPECT_EQ(lin(0.0, 5, 4), "0");
  EXPECT_EQ(lin(-0.01, 5, 4), "0");
  EXPECT_EQ(lin(2.99, 5, 2), "3");
  EXPECT_EQ(lin(2.3, 5, 0), "2");
}

TEST(ParseLinear, EveryModeReadsPlainNumbers) {
  for (int mode = 1; mode <= 5; ++mode) {
    EXPECT_DOUBLE_EQ(*plin("17.5", mode), 17.5) << mode;
    EXPECT_DOUBLE_EQ(*plin("1.75E+01", mode), 17.5) << mode;
    EXPECT_DOUBLE_EQ(*plin("17 1/2", mode), 17.5) << mode;
    EXPECT_DOUBLE_EQ(*plin("17-1/2", mode), 17.5) << mode;
    EXPECT_DOUBLE_EQ(*plin("-1/2", mode), -0.5) << mode;
    EXPECT_DOUBLE_EQ(*plin(" .5 ", mode), 0.5) << mode;
    EXPECT_DOUBLE_EQ(*plin("+3.", mode), 3.0) << mode;
  }
}

TEST(ParseLinear, FeetAndInchesOnlyInEngineeringAndArchitectural) {
  for (int mode : {3, 4}) {
    EXPECT_DOUBLE_EQ(*plin("1'-5.5\"", mode), 17.5);
    EXPECT_DOUBLE_EQ(*plin("1'5.5\"", mode), 17.5);
    EXPECT_DOUBLE_EQ(*plin("1'-5 1/2\"", mode), 17.5);
    EXPECT_DOUBLE_EQ(*plin("1'5-1/2\"", mode), 17.5);
    EXPECT_DOUBLE_EQ(*plin("1'-5", mode), 17.0);
    EXPECT_DOUBLE_EQ(*plin("2'", mode), 24.0);
    EXPECT_DOUBLE_EQ(*plin("1.5'", mode), 18.0);
    EXPECT_DOUBLE_EQ(*plin("5.5\"", mode), 5.5);
    EXPECT_DOUBLE_EQ(*plin("1/2\"", mode), 0.5);
    EXPECT_DOUBLE_EQ(*plin("-1'-5.5\"", mode), -17.5);
  }
  for (int mode : {1, 2, 5}) {
    EXPECT_FALSE(plin("1'-5.5\"", mode)) << mode;
    EXPECT_FALSE(plin("5\"", mode)) << mode;
  }
}

TEST(ParseLinear, RejectsWhatIsNotADistance) {
  for (const char* bad : {"", "abc", "1.2.3", "17 1/0", "1/", "1'-", "1'-5\"x", "1e", "--1", "1 2", "1'2'"})
    EXPECT_FALSE(plin(bad, 4)) << bad;
  EXPECT_FALSE(plin("1", 0));
  EXPECT_FALSE(plin("1", 6));
}

TEST(ParseLinear, ReadsWhatFormatWrites) {
  const double values[] = {0.0, 0.5, 17.5, 123.4375, -40.25, 1234.0625};
  for (int mode = 1; mode <= 5; ++mode)
    for (double v : values)
      for (UnitStyle st : {UnitStyle{0, 0}, UnitStyle{1, 1}, UnitStyle{8, 0}}) {
        std::u16string text = formatLinear(v, mode, 4, st);
        auto back = parseLinear(text, mode);
        ASSERT_TRUE(back) << sys::toUtf8(text);
        // Scientific keeps five significant digits at precision 4.
        EXPECT_NEAR(*back, v, mode == 1 ? 1e-4 * std::fabs(v) : 1e-9) << sys::toUtf8(text);
      }
}

TEST(FormatAngle, EachMode) {
  EXPECT_EQ(ang(0.785398, 0, 4), "45.0000");
  EXPECT_EQ(ang(0.785398, 1, 4), "45d0'0\"");
  EXPECT_EQ(ang(0.785398, 2, 4), "50.0000g");
  EXPECT_EQ(ang(0.785398, 3, 4), "0.7854r");
  EXPECT_EQ(ang(0.785398, 4, 2), "N 45d0' E");
  EXPECT_EQ(ang(0.785398, 4, 2, {0, 1}), "N45d0'E");
  EXPECT_EQ(formatAngle(1.0, 5, 0), u"");
}

TEST(FormatAngle, NormalisesToOneTurn) {
  EXPECT_EQ(ang(-0.785398, 0, 4), "315.0000");
  EXPECT_EQ(ang(2 * kPi + deg(10), 0, 2), "10.00");
  EXPECT_EQ(ang(deg(359.99999), 0, 2), "0.00");
  EXPECT_EQ(ang(deg(359.99999), 1, 4), "0d0'0\"");
  EXPECT_EQ(ang(deg(399.99999 * 0.9), 2, 2), "0.00g");
}

TEST(FormatAngle, DegreesMinutesSecondsPrecision) {
  double a = deg(45.0 + 30.0 / 60 + 15.26 / 3600);
  EXPECT_EQ(ang(a, 1, 0), "46d");
  EXPECT_EQ(ang(a, 1, 1), "46d");
  EXPECT_EQ(ang(a, 1, 2), "45d30'");
  EXPECT_EQ(ang(a, 1, 3), "45d30'");
  EXPECT_EQ(ang(a, 1, 4), "45d30'15\"");
  EXPECT_EQ(ang(a, 1, 5), "45d30'15.3\"");
  EXPECT_EQ(ang(a, 1, 6), "45d30'15.26\"");
  EXPECT_EQ(ang(deg(10.0 + 5.0 / 3600), 1, 8), "10d0'5.0000\"");
  // Seconds that round to 60 carry into the minutes and degrees.
  EXPECT_EQ(ang(deg(29.0 + 59.0 / 60 + 59.7 / 3600), 1, 4), "30d0'0\"");
}

TEST(FormatAngle, SurveyorsQuadrantsAndAxes) {
  EXPECT_EQ(ang(deg(30), 4, 4), "N 60d0'0\" E");
  EXPECT_EQ(ang(deg(120), 4, 4), "N 30d0'0\" W");
  EXPECT_EQ(ang(deg(200), 4, 4), "S 70d0'0\" W");
  EXPECT_EQ(ang(deg(300), 4, 0), "S 30d E");
  EXPECT_EQ(ang(0.0, 4, 4), "E");
  EXPECT_EQ(ang(deg(90), 4, 4), "N");
  EXPECT_EQ(ang(deg(180), 4, 4), "W");
  EXPECT_EQ(ang(deg(270), 4, 4), "S");
  EXPECT_EQ(ang(deg(89.9999), 4, 2), "N");  // the bearing rounds to 0
  EXPECT_EQ(ang(deg(0.0001), 4, 2), "E");
}

TEST(ParseAngle, Forms) {
  EXPECT_NEAR(*pang("45", 0), deg(45), 1e-12);
  EXPECT_NEAR(*pang("45d30'15\"", 1), deg(45 + 30.0 / 60 + 15.0 / 3600), 1e-12);
  EXPECT_NEAR(*pang("45d30'", 0), deg(45.5), 1e-12);
  EXPECT_NEAR(*pang("45d", 0), deg(45), 1e-12);
  EXPECT_NEAR(*pang("50", 2), deg(45), 1e-12);
  EXPECT_NEAR(*pang("50g", 0), deg(45), 1e-12);
  EXPECT_NEAR(*pang("1", 3), 1.0, 1e-12);
  EXPECT_NEAR(*pang("0.5r", 0), 0.5, 1e-12);
  EXPECT_NEAR(*pang("N 45d0' E", 4), deg(45), 1e-12);
  EXPECT_NEAR(*pang("N45dW", 4), deg(135), 1e-12);
  EXPECT_NEAR(*pang("s 45d w", 4), deg(225), 1e-12);
  EXPECT_NEAR(*pang("S 10 E", 4), deg(280), 1e-12);
  EXPECT_NEAR(*pang("N", 4), deg(90), 1e-12);
  EXPECT_NEAR(*pang("W", 4), deg(180), 1e-12);
  EXPECT_NEAR(*pang("-90", 0), deg(270), 1e-12);
  EXPECT_NEAR(*pang("360", 0), 0.0, 1e-12);
  for (const char* bad : {"", "abc", "45x", "N 100d E", "N 45d", "45d30'x", "d", "NE"}) EXPECT_FALSE(pang(bad, 4)) << bad;
}

TEST(ParseAngle, ReadsWhatFormatWrites) {
  const double angles[] = {0.0, deg(45), deg(123.456), deg(181), deg(270), deg(359.5)};
  for (int mode = 0; mode <= 4; ++mode)
    for (double a : angles)
      for (UnitStyle st : {UnitStyle{0, 0}, UnitStyle{0, 1}}) {
        std::u16string text = formatAngle(a, mode, 8, st);
        auto back = parseAngle(text, mode);
        ASSERT_TRUE(back) << sys::toUtf8(text);
        EXPECT_NEAR(*back, a, 1e-6) << sys::toUtf8(text);
      }
}

}  // namespace
}  // namespace zepk::lisp
