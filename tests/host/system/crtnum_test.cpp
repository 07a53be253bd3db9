// The C runtime's wide number readers against tables of the Windows
// runtime's answers.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "host/wincompat.h"

namespace {

TEST(CrtNumbers, WtofReadsThePrefixThatIsANumber) {
  struct Row {
    const char16_t* text;
    double value;
  } rows[] = {
      {u"12.5", 12.5},        {u"  \t\n-3.25xyz", -3.25}, {u"+.5", 0.5},       {u"5.", 5.0},
      {u"1e3", 1000.0},       {u"1E-2", 0.01},            {u"2.5d2", 250.0},   {u"2.5D+1", 25.0},
      {u"3e", 3.0},           {u"3e+", 3.0},              {u"7.1.2", 7.1},     {u"1,5", 1.0},
      {u"abc", 0.0},          {u"", 0.0},                 {u"-", 0.0},         {u".", 0.0},
      {u"- 1", 0.0},          {u"inf", 0.0},              {u"nan", 0.0},       {u"0x1A", 0.0},
      {u"１２", 0.0},  // full-width digits are no digits
      {u"1e-400", 0.0},       {u"(1.5)", 0.0},            {u"100 200", 100.0},
  };
  for (const Row& r : rows) EXPECT_DOUBLE_EQ(_wtof(r.text), r.value);
  EXPECT_EQ(_wtof(u"1e400"), HUGE_VAL);
  EXPECT_EQ(_wtof(u"-1e400"), -HUGE_VAL);
  EXPECT_EQ(_wtof(nullptr), 0.0);
  // The 8-bit reader follows the same rules, not the C library's.
  EXPECT_EQ(winAtof("0x1A"), 0.0);
  EXPECT_EQ(winAtof(" -1.5d1x"), -15.0);
  EXPECT_EQ(winAtof("infinity"), 0.0);
  EXPECT_EQ(winAtof("1\xA1\xA3"), 1.0);
  EXPECT_EQ(winAtoi("  12\xB2\xE3"), 12);
  EXPECT_EQ(winAtoi("9999999999"), INT_MAX);
}

TEST(CrtNumbers, WtoiStopsAtTheFirstBadCharacterAndClampsOverflow) {
  struct Row {
    const char16_t* text;
    int value;
  } rows[] = {
      {u"42", 42},           {u"  -17abc", -17},        {u"+8", 8},             {u"3.9", 3},
      {u"12层", 12},         {u"层12", 0},              {u"", 0},               {u"--1", 0},
      {u"2147483647", INT_MAX}, {u"2147483648", INT_MAX}, {u"-2147483648", INT_MIN},
      {u"-2147483649", INT_MIN}, {u"99999999999999999999999", INT_MAX}, {u"-99999999999999999999", INT_MIN},
      {u"0x10", 0},          {u"\t\r\v\f 5", 5},
  };
  for (const Row& r : rows) EXPECT_EQ(_wtoi(r.text), r.value);
  EXPECT_EQ(_wtol(u"-2147483649"), INT32_MIN);
  EXPECT_EQ(_wtoi64(u"9223372036854775807"), INT64_MAX);
  EXPECT_EQ(_wtoi64(u"9223372036854775808"), INT64_MAX);
  EXPECT_EQ(_wtoi64(u"-9223372036854775808"), INT64_MIN);
  EXPECT_EQ(_wtoi(nullptr), 0);
}

}  // namespace
