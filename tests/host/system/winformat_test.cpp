#include "host/system/winformat.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

#include "host/system/codepage.h"

namespace zepk::sys {
namespace {

const char kGbkTest[] = "\xB2\xE2\xCA\xD4";  // u"测试" in code page 936

// Every test starts and ends with the default system code page.
class WinFormat : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(setSystemCodePage(kCodePageGbk)); }
  void TearDown() override { setSystemCodePage(kCodePageGbk); }
};

TEST_F(WinFormat, IntegerFlagsWidthAndPrecision) {
  EXPECT_EQ(formatA("[%d|%5d|%-5d|%05d]", 42, 42, 42, 42), "[42|   42|42   |00042]");
  EXPECT_EQ(formatA("[%+d|%+d|% d|% d|%+ d]", 5, -5, 5, -5, 5), "[+5|-5| 5|-5|+5]");
  EXPECT_EQ(formatA("[%05d|%-05d|%+06d]", -42, -42, 42), "[-0042|-42  |+00042]");
  // A precision pads with zeros and switches off the '0' flag.
  EXPECT_EQ(formatA("[%.3d|%05.3d|%.0d|%5.0d]", 7, 7, 0, 0), "[007|  007||     ]");
  EXPECT_EQ(formatA("[%*d|%*d|%.*d|%.*d]", 4, 1, -4, 1, 3, 1, -3, 1), "[   1|1   |001|1]");
  EXPECT_EQ(formatA("%i", -2147483647 - 1), "-2147483648");
}

TEST_F(WinFormat, IntegerRadixAndAlternateForms) {
  EXPECT_EQ(formatA("%x %X %o %u", 255, 255, 8, 3000000000u), "ff FF 10 3000000000");
  EXPECT_EQ(formatA("%u %x", -1, -1), "4294967295 ffffffff");
  EXPECT_EQ(formatA("[%#x|%#X|%#o|%#x|%#o|%#.0o]", 255, 255, 8, 0, 0, 0), "[0xff|0XFF|010|0|0|0]");
  EXPECT_EQ(formatA("[%#08x|%#-8x]", 255, 255), "[0x0000ff|0xff    ]");
  EXPECT_EQ(formatA("%+u", 5), "5");  // no sign on unsigned conversions
}

TEST_F(WinFormat, LengthModifiersFollowThatRuntime) {
  // %ld is 32 bits: callers pass an int, negative values must survive.
  EXPECT_EQ(formatA("%ld %d %ld", -5, 7, -2000000000), "-5 7 -2000000000");
  EXPECT_EQ(formatA("%lu %lx", -1, -1), "4294967295 ffffffff");
  EXPECT_EQ(formatA("%hd %hu %hx", 65535, -1, 0x12345), "-1 65535 2345");
  EXPECT_EQ(formatA("%hhd %hhu", 255, 511), "-1 255");
  EXPECT_EQ(formatA("%I64d %I64u", -9000000000LL, 18446744073709551615ULL), "-9000000000 18446744073709551615");
  EXPECT_EQ(formatA("%I64X %lld %llx", 0x1234567890ABCDEFULL, -1LL << 40, 1ULL << 40),
            "1234567890ABCDEF -1099511627776 10000000000");
  EXPECT_EQ(formatA("%I32d %Id %Iu", -7, -8000000000LL, size_t{1} << 35), "-7 -8000000000 34359738368");
  EXPECT_EQ(formatA("%zu %d", size_t{1} << 33, 3), "8589934592 3");
  EXPECT_EQ(formatW(u"%ld|%I64d|%5hd", -3, -9000000000LL, -1), u"-3|-9000000000|   -1");
}

TEST_F(WinFormat, Pointers) {
  EXPECT_EQ(formatA("%p", reinterpret_cast<void*>(0xDEADBEEF)), "00000000DEADBEEF");
  EXPECT_EQ(formatA("%p", nullptr), "0000000000000000");
  EXPECT_EQ(formatW(u"[%20p]", reinterpret_cast<void*>(0xabcULL)), u"[    0000000000000ABC]");
}

TEST_F(WinFormat, ExponentHasThreeDigits) {
  EXPECT_EQ(formatA("%e", 1e6), "1.000000e+006");
  EXPECT_EQ(formatA("%E", 1.5e-10), "1.500000E-010");
  EXPECT_EQ(formatA("%e", 0.0), "0.000000e+000");
  EXPECT_EQ(formatA("%.2e", 1e300), "1.00e+300");
  EXPECT_EQ(formatA("%e", std::numeric_limits<double>::max()), "1.797693e+308");
  EXPECT_EQ(formatA("%e", std::numeric_limits<double>::denorm_min()), "4.940656e-324");
  EXPECT_EQ(formatA("%g", 1e-6), "1e-006");
  EXPECT_EQ(formatA("%g", 1e6), "1e+006");
  EXPECT_EQ(formatA("%G", 1e-10), "1E-010");
  EXPECT_EQ(formatA("%g", std::numeric_limits<double>::min()), "2.22507e-308");
  EXPECT_EQ(formatW(u"%.3e", -12345.678), u"-1.235e+004");
}

TEST_F(WinFormat, GeneralFormatChoosesStyleAndCropsZeros) {
  EXPECT_EQ(formatA("%g %g %g %g", 100000.0, 0.0001, 0.00001, 0.0), "100000 0.0001 1e-005 0");
  EXPECT_EQ(formatA("%g %g %.3g %.0g", 123456789.0, 1.5, 3.14159, 7.7), "1.23457e+008 1.5 3.14 8");
  EXPECT_EQ(formatA("%g", 999999.5), "1e+006");  // rounding decides the style
  EXPECT_EQ(formatA("%#g %#.3g %#g", 1.0, 0.0001, 1e-6), "1.00000 0.000100 1.00000e-006");
  EXPECT_EQ(formatA("%.10g", 3512345.678), "3512345.678");
}

TEST_F(WinFormat, TiesRoundAwayFromZero) {
  // Exact binary ties.
  EXPECT_EQ(formatA("%.2f %.1f %.3f", 0.125, 0.25, 0.0625), "0.13 0.3 0.063");
  EXPECT_EQ(formatA("%.0f %.0f %.0f %.0f %.0f", 0.5, 1.5, 2.5, -2.5, 9.5), "1 2 3 -3 10");
  EXPECT_EQ(formatA("%.0e %.1e %.2g", 25.0, 0.125, 0.125), "3e+001 1.3e-001 0.13");
  // Decimal ties that are not ties in binary go the way the binary value lies.
  EXPECT_EQ(formatA("%.2f %.2f %.2f %.3f", 2.675, 1.005, 9.995, 1.0005), "2.67 1.00 9.99 1.000");
  EXPECT_EQ(formatA("%.1f %.1f %.1f %.2f", 0.15, 0.35, 0.05, 0.005), "0.1 0.3 0.1 0.01");
  EXPECT_EQ(formatA("%.0f", 0.49999999999999994), "0");
  // Carries through nines.
  EXPECT_EQ(formatA("%.2f %.2f %.3e %.3e", 9.999, 99.995, 9.9995, 9.99951), "10.00 100.00 9.999e+000 1.000e+001");
  // An 18-digit exact tie: half up where round-half-even would keep ...312.
  EXPECT_EQ(formatA("%.16e", 0x1p-25), "2.9802322387695313e-008");
}

TEST_F(WinFormat, SeventeenSignificantDigitsThenZeros) {
  EXPECT_EQ(formatA("%.20f %.20f", 0.1, 0.5), "0.10000000000000001000 0.50000000000000000000");
  EXPECT_EQ(formatA("%.0f", 1e23), "99999999999999992000000");
  EXPECT_EQ(formatA("%.3f", 123456789012345.6875), "123456789012345.690");
  // Rounded to 17 digits first: ...0000000000000047 becomes ...05, which then rounds up;
  // 2.355 is 2.35499999999999998... in binary, 2.3550000000000000 in 17 digits.
  EXPECT_EQ(formatA("%.2f %.2f", 2.355, 2.675), "2.36 2.67");
  EXPECT_EQ(formatA("%.15e", 0.031900000000000005), "3.190000000000001e-002");
  const std::string big = formatA("%f", 1e300);
  EXPECT_EQ(big.substr(0, 17), "10000000000000001");
  EXPECT_EQ(big.size(), 301u + 7u);
  EXPECT_EQ(big.substr(17, 284), std::string(284, '0'));
}

TEST_F(WinFormat, FloatFlagsAndSigns) {
  EXPECT_EQ(formatA("[%+.2f|% .2f|%08.2f|%-8.2f|%8.2f]", 1.0, 1.0, -1.5, 1.5, 1.5),
            "[+1.00| 1.00|-0001.50|1.50    |    1.50]");
  EXPECT_EQ(formatA("[%.0f|%#.0f|%#.0e|%.1f]", 3.0, 3.0, 3.0, 3.0), "[3|3.|3.e+000|3.0]");
  EXPECT_EQ(formatA("%f %.2f %e", -0.0, -0.001, -0.0), "-0.000000 -0.00 -0.000000e+000");
  EXPECT_EQ(formatA("%lf %Lf %*.*f", 2.5, 2.5, 7, 1, 2.25), "2.500000 2.500000     2.3");
  EXPECT_EQ(formatA("%f", 3512345.678), "3512345.678000");
}

TEST_F(WinFormat, InfinityAndNaNPrintAsThatRuntimeDid) {
  const double inf = std::numeric_limits<double>::infinity();
  const double qnan = std::numeric_limits<double>::quiet_NaN();
  const double indefinite = std::bit_cast<double>(0xFFF8000000000000ULL);
  EXPECT_EQ(formatA("%f %f %f %f", inf, -inf, qnan, indefinite), "1.#INF00 -1.#INF00 1.#QNAN0 -1.#IND00");
  EXPECT_EQ(formatA("%g %e %.0f %.2f", inf, inf, inf, inf), "1.#INF 1.#INF00e+000 1 1.#J");
  EXPECT_EQ(formatA("[%10f|%-10g|%+f]", inf, qnan, inf), "[  1.#INF00|1.#QNAN   |+1.#INF00]");
  EXPECT_EQ(formatDouble(-inf, 'g', -1), "-1.#INF");
}

TEST_F(WinFormat, FormatDoubleHelper) {
  EXPECT_EQ(formatDouble(2.5, 'f', 0), "3");
  EXPECT_EQ(formatDouble(-1e-6, 'g', -1), "-1e-006");
  EXPECT_EQ(formatDouble(1234.5, 'E', 2), "1.23E+003");
  EXPECT_EQ(formatDouble(1.0, 'g', 3, true), "1.00");
  EXPECT_EQ(formatDouble(0.125, 'q', 2), "0.13");  // unknown conversion: fixed
}

// Away from ties and within 12 significant digits, the result must agree
// with glibc's exact conversion once its exponent is widened to three digits.
TEST_F(WinFormat, AgreesWithTheCLibraryAwayFromTies) {
  std::mt19937_64 rng(20080101);
  std::uniform_real_distribution<double> mag(-25.0, 25.0);
  auto widenExponent = [](std::string s) {
    const auto e = s.find_first_of("eE");
    if (e != std::string::npos && s.size() - e == 4) s.insert(e + 2, "0");
    return s;
  };
  for (int i = 0; i < 20000; ++i) {
    double v = std::pow(10.0, mag(rng)) * (rng() & 1 ? 1 : -1);
    // Random low mantissa bits keep the value off decimal ties.
    v = std::bit_cast<double>(std::bit_cast<uint64_t>(v) | 1);
    const int exp10 = static_cast<int>(std::floor(std::log10(std::fabs(v))));
    const int pe = static_cast<int>(rng() % 12);
    const int pg = 1 + static_cast<int>(rng() % 12);
    const int pf = std::max(0, static_cast<int>(rng() % 12) - std::max(exp10 + 1, 0));
    char buf[128];
    for (const auto& [fmt, prec] : {std::pair{"%.*e", pe}, {"%.*g", pg}, {"%.*f", pf}, {"%#.*G", pg}}) {
      if (fmt[3] == 'f' && exp10 >= 12) continue;  // more integer digits than tested here
      std::snprintf(buf, sizeof buf, fmt, prec, v);
      ASSERT_EQ(formatA(fmt, prec, v), widenExponent(buf)) << fmt << " " << prec << " of " << buf;
    }
  }
}

TEST_F(WinFormat, WideFormatStrings) {
  EXPECT_EQ(formatW(u"%s=%d", u"测试", 5), u"测试=5");
  EXPECT_EQ(formatW(u"[%5s|%-5s|%05s|%.1s]", u"ab", u"ab", u"ab", u"测试"), u"[   ab|ab   |000ab|测]");
  EXPECT_EQ(formatW(u"%ls %ws %lS %wS", u"a", u"b", u"c", u"d"), u"a b c d");
  // Narrow arguments are bytes in the system code page.
  EXPECT_EQ(formatW(u"%S|%hs|%hS", kGbkTest, kGbkTest, "x"), u"测试|测试|x");
  // Precision and width count characters of the narrow string, not bytes.
  EXPECT_EQ(formatW(u"[%.1S|%-4S|%4S]", kGbkTest, kGbkTest, kGbkTest), u"[测|测试  |  测试]");
  EXPECT_EQ(formatW(u"%S", "\xB2\xE2\xFF"), u"测?");
  EXPECT_EQ(formatW(u"%s %S %.3s", static_cast<const char16_t*>(nullptr), static_cast<const char*>(nullptr),
                    static_cast<const char16_t*>(nullptr)),
            u"(null) (null) (nu");
}

TEST_F(WinFormat, NarrowFormatStrings) {
  EXPECT_EQ(formatA("[%s|%.3s|%-4s|%4s]", "abc", "abcdef", "ab", "ab"), "[abc|abc|ab  |  ab]");
  EXPECT_EQ(formatA("%S|%ls|%ws", u"测试", u"测试", u"a"), std::string(kGbkTest) + "|" + kGbkTest + "|a");
  EXPECT_EQ(formatA("%hs|%hS", "a", "b"), "a|b");
  // The width of a wide argument counts its characters, as that runtime did.
  EXPECT_EQ(formatA("[%-4S|%.1S]", u"测试", u"测试"), std::string("[") + kGbkTest + "  |\xB2\xE2]");
  EXPECT_EQ(formatA("%S", u"a😀한b"), "a??b");  // one '?' per character, surrogate pairs included
  EXPECT_EQ(formatA("%s %S", static_cast<const char*>(nullptr), static_cast<const char16_t*>(nullptr)),
            "(null) (null)");
  // Multibyte text is copied as bytes and measured in bytes.
  EXPECT_EQ(formatA("[%6s]", kGbkTest), std::string("[  ") + kGbkTest + "]");
}

TEST_F(WinFormat, StringsFollowTheSystemCodePage) {
  ASSERT_TRUE(setSystemCodePage(kCodePageWestern));
  EXPECT_EQ(formatA("%S", u"café"), "caf\xE9");
  EXPECT_EQ(formatW(u"%S", "caf\xE9"), u"café");
  ASSERT_TRUE(setSystemCodePage(kCodePageUtf8));
  EXPECT_EQ(formatW(u"[%.2S]", "\xE6\xB5\x8B\xE8\xAF\x95x"), u"[测试]");
}

TEST_F(WinFormat, Characters) {
  EXPECT_EQ(formatW(u"%c%c", u'测', u'a'), u"测a");
  EXPECT_EQ(formatW(u"%C|%hc|%lc|%3c", 'A', 'B', u'试', u'x'), u"A|B|试|  x");
  EXPECT_EQ(formatW(u"%hc", 0xB2), u"?");  // a lead byte alone is no character
  EXPECT_EQ(formatA("%c|%-3c|%C|%lc|%wc", 'x', 'y', u'测', u'A', u'€'), "x|y  |\xB2\xE2|A|\x80");
  const std::string withNul = formatA("a%cb", 0);
  EXPECT_EQ(withNul, std::string("a\0b", 3));
}

TEST_F(WinFormat, OddFormatsHaveDefinedResults) {
  EXPECT_EQ(formatA("100%% %d", 1), "100% 1");
  EXPECT_EQ(formatA("%y %-5k %d", 3), "%y %-5k 3");  // unknown conversions consume nothing
  EXPECT_EQ(formatA("abc%"), "abc%");
  EXPECT_EQ(formatA("abc%-08.3"), "abc%-08.3");
  EXPECT_EQ(formatW(u"%q%d", 4), u"%q4");
  int untouched = 77;
  EXPECT_EQ(formatA("a%nb%d", &untouched, 5), "ab5");
  EXPECT_EQ(untouched, 77);
  EXPECT_EQ(formatA(nullptr), "");
  EXPECT_EQ(formatW(nullptr), u"");
  EXPECT_EQ(formatA("[%*d]", -2000000000, 1).size(), (1u << 20) + 2);  // width is capped
  EXPECT_EQ(formatA("%.1000d", 5).size(), 512u);
}

std::string twiceA(const char* fmt, ...) {
  va_list ap;
  va_start(ap, fmt);
  std::string a = vformatA(fmt, ap);
  std::string b = vformatA(fmt, ap);
  va_end(ap);
  return a + "/" + b;
}

std::u16string twiceW(const char16_t* fmt, ...) {
  va_list ap;
  va_start(ap, fmt);
  std::u16string a = vformatW(fmt, ap);
  std::u16string b = vformatW(fmt, ap);
  va_end(ap);
  return a + u"/" + b;
}

TEST_F(WinFormat, VarargFormsLeaveTheCallersListUntouched) {
  EXPECT_EQ(twiceA("%d %s %.1f", 1, "x", 2.25), "1 x 2.3/1 x 2.3");
  EXPECT_EQ(twiceW(u"%d %s", 2, u"测"), u"2 测/2 测");
}

}  // namespace
}  // namespace zepk::sys
