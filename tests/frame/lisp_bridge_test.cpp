// The argument walkers, result builders and message styles on plain
// result-buffer chains, as the host hands them to a LISP function.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/lisp_bridge.h"
#include "host/gemat3d.h"
#include "host/system/utf.h"

using namespace zepk::frame;

namespace {

struct Chain {
  resbuf* head;
  explicit Chain(resbuf* h) : head(h) {}
  ~Chain() { acutRelRb(head); }
};

resbuf* coded(int code, double y, double z) {
  resbuf* rb = acutNewRb(code);
  rb->resval.rpoint[0] = y;
  rb->resval.rpoint[1] = z;
  return rb;
}

std::vector<int> types(const resbuf* rb) {
  std::vector<int> out;
  for (; rb; rb = rb->rbnext) out.push_back(rb->restype);
  return out;
}

}  // namespace

TEST(Walkers, NumbersTakeOnlyTheirTypesAndLeaveTheCursorOnRefusal) {
  Chain c(acutBuildList(RTSHORT, 7, RTLONG, 70000, RTREAL, 2.5, RTSTR, u"x", 0));
  resbuf* cur = c.head;
  double r = 0;
  int32_t i = 0;
  EXPECT_EQ(RbGetReal(&cur, r), RTNORM);  // a short is a real
  EXPECT_EQ(r, 7.0);
  EXPECT_EQ(RbGetReal(&cur, r), RTERROR);  // a long is not
  EXPECT_EQ(cur->restype, RTLONG);
  EXPECT_EQ(RbGetShort(&cur, i), RTERROR);
  EXPECT_EQ(RbGetLong(&cur, i), RTNORM);
  EXPECT_EQ(i, 70000);
  EXPECT_EQ(RbGetLong(&cur, i), RTERROR);
  EXPECT_EQ(RbGetReal(&cur, r), RTNORM);
  // The string walkers cannot tell a wrong type from the end of the list.
  std::u16string s;
  resbuf* before = cur;
  EXPECT_EQ(RbGetCString(&cur, s), RTNORM);
  EXPECT_EQ(s, u"x");
  EXPECT_EQ(RbGetReal(&cur, r), RTNONE);
  cur = before->rbnext;
  EXPECT_EQ(RbGetCString(&cur, s), RTNONE);
  Chain n(acutBuildList(RTREAL, 1.0, 0));
  cur = n.head;
  EXPECT_EQ(RbGetCString(&cur, s), RTNONE);
  EXPECT_EQ(cur, n.head);
}

TEST(Walkers, CodedPointsReadBackExact) {
  // (10 2.0 3.0) arrives as a node of type 10 holding 2.0 and 3.0.
  Chain c(coded(10, 2.0, 3.0));
  c.head->rbnext = coded(230, 0.0, 1.0);
  resbuf* cur = c.head;
  AcGePoint3d p;
  ASSERT_EQ(RbGetPoint3d(&cur, p), RTNORM);
  EXPECT_EQ(p, AcGePoint3d(10.0, 2.0, 3.0));
  AcGePoint2d q;
  ASSERT_EQ(RbGetPoint2d(&cur, q), RTNORM);
  EXPECT_EQ(q, AcGePoint2d(230.0, 0.0));
  EXPECT_EQ(RbGetPoint3d(&cur, p), RTNONE);
  // A bare list of numbers is no point.
  Chain l(acutBuildList(RTLB, RTREAL, 1.0, RTREAL, 2.0, RTLE, 0));
  cur = l.head;
  EXPECT_EQ(RbGetPoint3d(&cur, p), RTERROR);
}

TEST(Walkers, StringArraysInTheirThreeShapes) {
  std::vector<std::u16string> out;
  // A list of strings.
  Chain a(acutBuildList(RTLB, RTSTR, u"a", RTSTR, u"b", RTLE, RTSHORT, 1, 0));
  resbuf* cur = a.head;
  ASSERT_EQ(RbGetStringArray(&cur, out), RTNORM);
  EXPECT_EQ(cur->restype, RTSHORT);
  // Strings in a row, up to the first other node; appended.
  Chain b(acutBuildList(RTSTR, u"c", RTSTR, u"d", RTREAL, 1.0, 0));
  cur = b.head;
  ASSERT_EQ(RbGetStringArray(&cur, out), RTNORM);
  EXPECT_EQ(cur->restype, RTREAL);
  EXPECT_EQ(out, (std::vector<std::u16string>{u"a", u"b", u"c", u"d"}));
  // A list with a number, an empty list, another type: refused, cursor kept.
  Chain m(acutBuildList(RTLB, RTSTR, u"a", RTSHORT, 1, RTLE, 0));
  cur = m.head;
  EXPECT_EQ(RbGetStringArray(&cur, out), RTNONE);
  EXPECT_EQ(cur, m.head);
  Chain e(acutBuildList(RTLB, RTLE, 0));
  cur = e.head;
  EXPECT_EQ(RbGetStringArray(&cur, out), RTNONE);
  Chain r(acutBuildList(RTREAL, 1.0, 0));
  cur = r.head;
  EXPECT_EQ(RbGetStringArray(&cur, out), RTNONE);
  EXPECT_EQ(out.size(), 4u);
}

TEST(Walkers, MatricesRowByRow) {
  // Rows of reals and shorts, a fifth number in a row skipped, one row
  // short: the places not reached keep the caller's identity.
  Chain c(acutBuildList(RTLB, RTLB, RTREAL, 2.0, RTSHORT, 3, RTREAL, 0.0, RTREAL, 4.0, RTREAL, 99.0, RTLE,  //
                        RTLB, RTREAL, 0.0, RTREAL, 5.0, RTLE, RTLE, RTSTR, u"next", 0));
  ads_matrix m = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
  resbuf* cur = c.head;
  ASSERT_EQ(RbGetMatrix(&cur, m), RTNORM);
  EXPECT_EQ(cur->restype, RTSTR);
  EXPECT_EQ(m[0][0], 2.0);
  EXPECT_EQ(m[0][1], 3.0);
  EXPECT_EQ(m[0][3], 4.0);
  EXPECT_EQ(m[1][1], 5.0);
  EXPECT_EQ(m[1][2], 0.0);
  EXPECT_EQ(m[2][2], 1.0);
  EXPECT_EQ(m[3][3], 1.0);
  // A string in a row, a number outside a row, a fifth row: refused.
  for (resbuf* bad : {acutBuildList(RTLB, RTLB, RTSTR, u"x", RTLE, RTLE, 0), acutBuildList(RTLB, RTREAL, 1.0, RTLE, 0),
                      acutBuildList(RTLB, RTLB, RTLE, RTLB, RTLE, RTLB, RTLE, RTLB, RTLE, RTLB, RTLE, RTLE, 0),
                      acutBuildList(RTREAL, 1.0, 0)}) {
    Chain b(bad);
    cur = b.head;
    EXPECT_EQ(RbGetMatrix(&cur, m), RTERROR);
  }
  // Round trip: the builder's members, wrapped in a list as LISP sends it.
  RbBuilder wrapped;
  wrapped.add(acutNewRb(RTLB)).add(RbFromMatrix(m)).add(acutNewRb(RTLE));
  cur = wrapped.head();
  ads_matrix m2 = {};
  ASSERT_EQ(RbGetMatrix(&cur, m2), RTNORM);
  EXPECT_EQ(cur, nullptr);
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) EXPECT_EQ(m2[i][j], m[i][j]);
}

TEST(Walkers, SubListsAreCutOutOfTheHostsList) {
  Chain c(acutBuildList(RTLB, RTSHORT, 1, RTLB, RTSHORT, 2, RTLE, RTSHORT, 3, RTLE, RTSTR, u"after", 0));
  resbuf* outerClose = c.head;
  for (int k = 0; k < 6; ++k) outerClose = outerClose->rbnext;
  ASSERT_EQ(outerClose->restype, RTLE);
  resbuf* cur = c.head;
  resbuf* members = nullptr;
  ASSERT_EQ(RbGetSubList(&cur, members), RTNORM);
  EXPECT_EQ(types(members), (std::vector<int>{RTSHORT, RTLB, RTSHORT, RTLE, RTSHORT}));
  EXPECT_EQ(cur->restype, RTSTR);
  // The chain was cut in place; the list stays the host's, which joins it
  // back here so that it is released whole.
  resbuf* last = members;
  while (last->rbnext) last = last->rbnext;
  last->rbnext = outerClose;
  Chain notList(acutBuildList(RTSHORT, 1, 0));
  cur = notList.head;
  EXPECT_EQ(RbGetSubList(&cur, members), RTERROR);
  EXPECT_EQ(cur, notList.head);
}

TEST(Builders, ShapesAndLimits) {
  int32_t ints[] = {1, 40000, -2};
  Chain i(RbFromInts(ints, 3));
  ASSERT_EQ(types(i.head), (std::vector<int>{RTSHORT, RTSHORT, RTSHORT}));
  EXPECT_EQ(i.head->rbnext->resval.rint, static_cast<short>(40000));  // cut to 16 bits
  double reals[] = {1.5, 2.5};
  Chain r(RbFromReals(reals, 2));
  EXPECT_EQ(types(r.head), (std::vector<int>{RTREAL, RTREAL}));
  Chain p(RbFromPoints2d({AcGePoint2d(1, 2)}));
  EXPECT_EQ(p.head->restype, RTPOINT);
  EXPECT_EQ(p.head->resval.rpoint[2], 0.0);
  Chain s(RbFromStrings({u"测量", u""}));
  EXPECT_EQ(std::u16string(s.head->rbnext->resval.rstring), u"");
  EXPECT_EQ(RbFromReals(reals, 0), nullptr);
  EXPECT_EQ(RbFromStrings({}), nullptr);
  Chain m(RbFromMatrix(AcGeMatrix3d::kIdentity.entry));
  EXPECT_EQ(types(m.head).size(), 24u);
}

TEST(Messages, SixStylesWordedAsUsersSeeThem) {
  struct Case {
    MsgStyle style;
    const char16_t *few, *many, *bad, *bad3;
  };
  const Case cases[] = {
      {MsgStyle::Colon, u"错误:参数太少\n", u"错误:参数太多\n", u"错误:参数错误\n", u"错误:参数3错误\n"},
      {MsgStyle::LineBang, u"\n参数太少!", u"\n参数太多!", u"\n参数错误!", u"\n参数3错误!"},
      {MsgStyle::Plain, u"参数太少", u"参数太多", u"参数错误", u"参数3错误"},
      {MsgStyle::LineEnd, u"参数太少\n", u"参数太多\n", u"参数错误\n", u"参数3错误\n"},
      {MsgStyle::Bang, u"参数太少!", u"参数太多!", u"参数错误!", u"参数3错误!"},
      {MsgStyle::LineDot, u"\n参数太少.", u"\n参数太多.", u"\n参数错误.", u"\n参数3错误."},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(tooFewText(c.style), c.few);
    EXPECT_EQ(tooManyText(c.style), c.many);
    EXPECT_EQ(badArgText(c.style), c.bad);
    EXPECT_EQ(badArgText(c.style, 3), c.bad3);
  }
}
