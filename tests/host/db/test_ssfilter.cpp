// Selection filters on plain group lists: every operator, defaults for
// groups an object leaves out, extended data, and malformed filters.
#include <gtest/gtest.h>

#include "host/ssfilter.h"

using zepk::db::DxfItem;
using zepk::db::SelectionFilter;

namespace {

DxfItem S(int code, std::u16string s) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::String;
  it.s = std::move(s);
  return it;
}
DxfItem I(int code, int64_t v) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::Int;
  it.i = v;
  return it;
}
DxfItem R(int code, double v) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::Real;
  it.p[0] = v;
  return it;
}
DxfItem P(int code, double x, double y, double z) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::Point;
  it.p[0] = x, it.p[1] = y, it.p[2] = z;
  return it;
}
DxfItem Op(const char16_t* op) { return S(-4, op); }
DxfItem X() { return S(-3, u""); }

// A red circle of radius 2.5 on layer "Walls" with data of two
// applications, and a line with colour by layer on layer "0".
const std::vector<DxfItem> circle = {S(0, u"CIRCLE"), S(8, u"Walls"), I(62, 1),  P(10, 1, 2, 0),
                                     R(40, 2.5),      X(),            S(1001, u"ZEPK"), S(1000, u"x"),
                                     S(1001, u"OTHER_APP"), I(1070, 3)};
const std::vector<DxfItem> line = {S(0, u"LINE"), S(8, u"0"), P(10, -1, 5, 0), P(11, 4, 5, 0), I(70, 6)};

bool pass(const std::vector<DxfItem>& filter, const std::vector<DxfItem>& groups) {
  SelectionFilter f;
  std::string why;
  EXPECT_TRUE(f.parse(filter, &why)) << why;
  return f.matches(groups);
}

bool refused(const std::vector<DxfItem>& filter) {
  SelectionFilter f;
  return !f.parse(filter);
}

}  // namespace

TEST(SelectionFilter, EqualityAndWildcardsWithoutCase) {
  EXPECT_TRUE(pass({}, circle));
  EXPECT_TRUE(pass({S(0, u"circle")}, circle));
  EXPECT_FALSE(pass({S(0, u"circle")}, line));
  EXPECT_TRUE(pass({S(0, u"LINE,CIRCLE")}, line));
  EXPECT_TRUE(pass({S(8, u"w*")}, circle));
  EXPECT_TRUE(pass({S(8, u"~0")}, circle));
  EXPECT_FALSE(pass({S(8, u"~0")}, line));
  // Every group must pass: an implicit AND.
  EXPECT_FALSE(pass({S(0, u"CIRCLE"), S(8, u"0")}, circle));
  EXPECT_TRUE(pass({R(40, 2.5)}, circle));
  EXPECT_FALSE(pass({R(40, 2.4)}, circle));
  EXPECT_TRUE(pass({P(10, 1, 2, 0)}, circle));
  // A group the object does not have fails, except those with a default.
  EXPECT_FALSE(pass({R(40, 2.5)}, line));
  EXPECT_TRUE(pass({I(62, 256)}, line));
  EXPECT_TRUE(pass({S(6, u"ByLayer")}, line));
  EXPECT_TRUE(pass({I(67, 0)}, line));
}

TEST(SelectionFilter, RelationalOperatorsOnNumbers) {
  EXPECT_TRUE(pass({Op(u">"), R(40, 2.0)}, circle));
  EXPECT_FALSE(pass({Op(u">"), R(40, 2.5)}, circle));
  EXPECT_TRUE(pass({Op(u">="), R(40, 2.5)}, circle));
  EXPECT_TRUE(pass({Op(u"<"), R(40, 3)}, circle));
  EXPECT_FALSE(pass({Op(u"<="), R(40, 2.4)}, circle));
  EXPECT_TRUE(pass({Op(u"!="), I(62, 2)}, circle));
  EXPECT_TRUE(pass({Op(u"/="), I(62, 2)}, circle));
  EXPECT_FALSE(pass({Op(u"<>"), I(62, 1)}, circle));
  EXPECT_TRUE(pass({Op(u"="), I(62, 1)}, circle));
  EXPECT_TRUE(pass({Op(u"*"), R(40, 99)}, circle));
  // Bits: & any of them, &= all of them.
  EXPECT_TRUE(pass({Op(u"&"), I(70, 2)}, line));
  EXPECT_FALSE(pass({Op(u"&"), I(70, 1)}, line));
  EXPECT_TRUE(pass({Op(u"&="), I(70, 6)}, line));
  EXPECT_FALSE(pass({Op(u"&="), I(70, 7)}, line));
  // A string tested for (in)equality only.
  EXPECT_TRUE(pass({Op(u"!="), S(8, u"0")}, circle));
}

TEST(SelectionFilter, PointsPerCoordinate) {
  EXPECT_TRUE(pass({Op(u">,>,*"), P(10, 0, 1, 99)}, circle));
  EXPECT_FALSE(pass({Op(u">,>,*"), P(10, 1, 1, 99)}, circle));
  EXPECT_TRUE(pass({Op(u"<=,<="), P(10, 1, 2, 0)}, circle));
  // One operator for every coordinate.
  EXPECT_TRUE(pass({Op(u"<"), P(11, 5, 6, 1)}, line));
  EXPECT_FALSE(pass({Op(u"<"), P(11, 5, 6, 0)}, line));
}

TEST(SelectionFilter, LogicalGroupsNest) {
  EXPECT_TRUE(pass({Op(u"<OR"), S(0, u"ARC"), S(8, u"WALLS"), Op(u"OR>")}, circle));
  EXPECT_FALSE(pass({Op(u"<AND"), S(0, u"CIRCLE"), S(8, u"0"), Op(u"AND>")}, circle));
  EXPECT_TRUE(pass({Op(u"<not"), S(0, u"LINE"), Op(u"not>")}, circle));
  EXPECT_TRUE(pass({Op(u"<XOR"), S(0, u"CIRCLE"), S(8, u"0"), Op(u"XOR>")}, circle));
  EXPECT_FALSE(pass({Op(u"<XOR"), S(0, u"CIRCLE"), S(8, u"WALLS"), Op(u"XOR>")}, circle));
  // (circles of radius over 2 on Walls) or lines
  std::vector<DxfItem> f = {Op(u"<OR"),  Op(u"<AND"), S(0, u"CIRCLE"), Op(u">"), R(40, 2),
                            S(8, u"Walls"), Op(u"AND>"), S(0, u"LINE"), Op(u"OR>")};
  EXPECT_TRUE(pass(f, circle));
  EXPECT_TRUE(pass(f, line));
  EXPECT_FALSE(pass({Op(u"<NOT"), Op(u"<OR"), S(0, u"LINE"), S(0, u"CIRCLE"), Op(u"OR>"), Op(u"NOT>")}, circle));
}

TEST(SelectionFilter, ExtendedDataByApplication) {
  EXPECT_TRUE(pass({X(), S(1001, u"ZEPK")}, circle));
  EXPECT_TRUE(pass({X(), S(1001, u"zepk"), S(1001, u"OTHER*")}, circle));
  EXPECT_FALSE(pass({X(), S(1001, u"ZEPK"), S(1001, u"NONE")}, circle));
  EXPECT_FALSE(pass({X(), S(1001, u"ZEPK")}, line));
  // Groups of the extended data are not the object's own groups.
  EXPECT_FALSE(pass({S(1000, u"x")}, circle));
}

TEST(SelectionFilter, MalformedFiltersAreRefused) {
  EXPECT_TRUE(refused({Op(u"<OR"), S(0, u"LINE")}));
  EXPECT_TRUE(refused({S(0, u"LINE"), Op(u"OR>")}));
  EXPECT_TRUE(refused({Op(u"<AND"), S(0, u"LINE"), Op(u"OR>")}));
  EXPECT_TRUE(refused({Op(u"<NOT"), S(0, u"LINE"), S(8, u"0"), Op(u"NOT>")}));
  EXPECT_TRUE(refused({Op(u"<XOR"), S(0, u"LINE"), Op(u"XOR>")}));
  EXPECT_TRUE(refused({Op(u"<OR"), Op(u"OR>")}));
  EXPECT_TRUE(refused({Op(u"=~"), I(62, 1)}));
  EXPECT_TRUE(refused({Op(u">")}));
  EXPECT_TRUE(refused({Op(u"<"), S(8, u"A")}));
  EXPECT_TRUE(refused({Op(u"&"), R(40, 1.0)}));
  EXPECT_TRUE(refused({Op(u">,>"), R(40, 1.0)}));
  EXPECT_TRUE(refused({X()}));
  EXPECT_TRUE(refused({Op(u"<FOO"), S(0, u"LINE"), Op(u"FOO>")}));
}
