// The two formula evaluators: the cases surveyors type, the step log byte
// for byte, and random formulas against Python's arithmetic.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <unistd.h>

#include "host/system/utf.h"
#include "services/express.h"
#include "testseed.h"

using zepk::services::CExpress;
using zepk::services::calculate;

namespace {

struct Express {
  std::vector<std::u16string> boxes;
  std::filesystem::path dir;
  CExpress ex{[this](const CString& m) { boxes.push_back(m.str()); }};
  Express() {
    char t[] = "/tmp/zepk_express_XXXXXX";
    dir = ::mkdtemp(t);
    ex.setLogPath(zepk::sys::fromUtf8((dir / "result.txt").string()));
  }
  ~Express() { std::filesystem::remove_all(dir); }
  std::string file() const {
    std::ifstream f(dir / "result.txt", std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(f), {});
  }
};

}  // namespace

TEST(Express, ValuesOfTheCasesUsersType) {
  Express e;
  EXPECT_DOUBLE_EQ(e.ex.evaluate(u"1+2*3"), 7.0);
  EXPECT_NEAR(e.ex.evaluate(u"sin[30]"), 0.5, 1e-6);
  EXPECT_NEAR(e.ex.evaluate(u"log[10,100]"), 2.0, 1e-12);
  EXPECT_NEAR(e.ex.evaluate(u"pow[2,3]"), 8.0, 1e-12);
  // 1/3 lives as "0.333333" before it is multiplied.
  EXPECT_DOUBLE_EQ(e.ex.evaluate(u"1/3*3"), 0.999999);
  EXPECT_NEAR(e.ex.evaluate(u"2*(1-3)"), -4.0, 1e-12);
  EXPECT_NEAR(e.ex.evaluate(u"1+2*(1-3)"), -3.0, 1e-12);
  EXPECT_NEAR(e.ex.evaluate(u"1-(0-3)"), 4.0, 1e-12);
  EXPECT_NEAR(e.ex.evaluate(u"6/(1-3)+1"), -2.0, 1e-12);
  EXPECT_NEAR(e.ex.evaluate(u"-2-3"), -5.0, 1e-12);
  EXPECT_NEAR(e.ex.evaluate(u"1-sin[0-30]"), 1.5, 1e-6);
  EXPECT_NEAR(e.ex.evaluate(u"2*sign[0-5]+asin[1]"), 88.0, 1e-6);
  EXPECT_DOUBLE_EQ(e.ex.evaluate(u"PI*2"), 6.283185);  // 3.1415926 times 2, printed with six decimals
  EXPECT_NEAR(e.ex.evaluate(u"E"), 2.71828, 1e-12);
  EXPECT_TRUE(e.boxes.empty());
}

TEST(Express, InvalidFormulasGiveTheBoxAndZero) {
  Express e;
  for (const char16_t* bad : {u"pow[2]", u"sin[1,2]", u"(1+2", u"1+2)", u"()", u"sin[]", u"log[2]"}) {
    e.boxes.clear();
    EXPECT_EQ(e.ex.evaluate(bad), 0.0) << zepk::sys::toUtf8(bad);
    ASSERT_EQ(e.boxes.size(), 1u) << zepk::sys::toUtf8(bad);
    EXPECT_EQ(e.boxes[0], u"表达式非法！");
  }
  EXPECT_FALSE(std::filesystem::exists(e.dir / "result.txt"));  // no evaluation ran
  e.boxes.clear();
  EXPECT_EQ(e.ex.evaluate(u"a+b", {CString(u"a")}, {1.0, 2.0}), 0.0);
  ASSERT_EQ(e.boxes.size(), 1u);
  EXPECT_EQ(e.boxes[0], u"参数与参数值个数不匹配！");
}

TEST(Express, ParametersGoInBeforeTheConstants) {
  Express e;
  EXPECT_NEAR(e.ex.evaluate(u"E1*2+x", {CString(u"E1"), CString(u"x")}, {1.5, 0.25}), 3.25, 1e-12);
  EXPECT_NEAR(e.ex.evaluate(u"h/2", CString(u"h"), 3.0), 1.5, 1e-12);
  EXPECT_NEAR(e.ex.evaluate(u"a*b", CString(u"a"), CString(u"b"), 2.0, 4.5), 9.0, 1e-12);
}

TEST(Express, TheStepLogByteForByte) {
  Express e;
  e.ex.evaluate(u"1+2*3");
  EXPECT_EQ(e.file(), "****************\xBC\xC6\xCB\xE3\xB2\xBD\xD6\xE8*******************\n"
                      "step1=1+2*3\nresult=7.0000\n");
  e.ex.evaluate(u"(1+2)*(4-sin[30])");
  EXPECT_EQ(e.file(), "****************\xBC\xC6\xCB\xE3\xB2\xBD\xD6\xE8*******************\n"
                      "step1=(1+2)*(4-sin[30])\n"
                      "step2=3.000000*(4-sin[30])\n"
                      "step3=3.000000*3.500000\n"
                      "result=10.5000\n");
  e.ex.evaluate(u"10-(2-5)*2");
  EXPECT_EQ(e.file(), "****************\xBC\xC6\xCB\xE3\xB2\xBD\xD6\xE8*******************\n"
                      "step1=10-(2-5)*2\n"
                      "step2=10+3.000000*2\n"
                      "result=16.0000\n");
  e.ex.evaluate(u"4*(1-2)");
  EXPECT_EQ(e.file(), "****************\xBC\xC6\xCB\xE3\xB2\xBD\xD6\xE8*******************\n"
                      "step1=4*(1-2)\n"
                      "step2=-4.000000\n"
                      "result=-4.0000\n");
}

TEST(Express, RandomFormulasAgreeWithPython) {
  unsigned seed = testSeed();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 rng(seed);
  std::function<std::string(int)> gen = [&](int depth) -> std::string {
    if (depth == 0 || rng() % 3 == 0) return std::to_string(1 + rng() % 9);
    std::string a = gen(depth - 1), b = gen(depth - 1);
    const char* ops = "+-*";
    std::string op(1, ops[rng() % 3]);
    return rng() % 2 ? "(" + a + op + b + ")" : a + op + b;
  };
  std::vector<std::string> formulas;
  for (int i = 0; i < 60; ++i) formulas.push_back(gen(4));
  std::ostringstream script;
  script << "for f in [";
  for (const auto& f : formulas) script << "'" << f << "',";
  script << "]: print(repr(float(eval(f))))";
  std::string cmd = "/usr/bin/python3 -c \"" + script.str() + "\"";
  FILE* p = ::popen(cmd.c_str(), "r");
  ASSERT_NE(p, nullptr);
  std::string out;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
  ::pclose(p);
  std::istringstream lines(out);
  Express e;
  for (const auto& f : formulas) {
    double want = 0;
    ASSERT_TRUE(lines >> want) << out;
    EXPECT_NEAR(e.ex.evaluate(CString(zepk::sys::fromUtf8(f))), want, 1e-9) << f;
    EXPECT_NEAR(calculate(f), want, 1e-9) << f;
  }
}

TEST(Calculator, FourOperationsAndParentheses) {
  EXPECT_DOUBLE_EQ(calculate("=1+2="), 3.0);
  EXPECT_DOUBLE_EQ(calculate(" 2*(3+4) "), 14.0);
  EXPECT_DOUBLE_EQ(calculate("1.5*2"), 3.0);
  EXPECT_DOUBLE_EQ(calculate("8/4/2"), 1.0);
  EXPECT_DOUBLE_EQ(calculate("12#"), 12.0);
  EXPECT_DOUBLE_EQ(calculate("-3+1"), -2.0);  // a leading minus subtracts from nothing
  EXPECT_DOUBLE_EQ(calculate(""), 0.0);
  // Bad text gives some number, never a failure or a hang.
  for (const char* bad : {"((", "))1", "*", "1+*2)", "#(#", "abc"}) (void)calculate(bad);
}

// Survey labels fed to the calculator are recognised and left alone.
TEST(Calculator, LabelsAreNoFormulas) {
  using zepk::services::calculateFormula;
  EXPECT_FALSE(calculateFormula(u"(12)").has_value());
  EXPECT_FALSE(calculateFormula(u"  (12.5) ").has_value());
  EXPECT_FALSE(calculateFormula(u"3#").has_value());
  EXPECT_FALSE(calculateFormula(u"12号").has_value());
  EXPECT_FALSE(calculateFormula(u"()").has_value());
  ASSERT_TRUE(calculateFormula(u"(1+2)").has_value());
  EXPECT_DOUBLE_EQ(*calculateFormula(u"(1+2)"), 3.0);
  EXPECT_DOUBLE_EQ(*calculateFormula(u"(1+2)*(3+4)"), 21.0);
  EXPECT_DOUBLE_EQ(*calculateFormula(u" =1+2= "), 3.0);
  EXPECT_DOUBLE_EQ(*calculateFormula(u""), 0.0);
}
