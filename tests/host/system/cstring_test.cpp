// The wide string class on the edges callers rely on: clamped positions,
// -1 for what is not found, Format by the Windows runtime's rules.
#include <gtest/gtest.h>

#include "host/cstring.h"

TEST(CString, PositionsAreClampedNotRefused) {
  CString s(u"abcdef");
  EXPECT_EQ(s.Mid(2, 2), u"cd");
  EXPECT_EQ(s.Mid(-3, 2), u"ab");
  EXPECT_EQ(s.Mid(4, 100), u"ef");
  EXPECT_EQ(s.Mid(9), u"");
  EXPECT_EQ(s.Mid(2, -1), u"");
  EXPECT_EQ(s.Left(-1), u"");
  EXPECT_EQ(s.Right(2), u"ef");
  EXPECT_EQ(s.Right(20), u"abcdef");
  CString d(u"abc");
  EXPECT_EQ(d.Delete(1), 2);
  EXPECT_EQ(d, u"ac");
  d = u"abc";
  d.Delete(-5, 2);
  EXPECT_EQ(d, u"c");
  d = u"abc";
  d.Delete(7, 2);
  EXPECT_EQ(d, u"abc");
  d.Insert(99, u"Z");
  d.Insert(-1, u'Y');
  EXPECT_EQ(d, u"YabcZ");
}

TEST(CString, FindReplaceRemoveTrim) {
  CString s(u"a-b--c");
  EXPECT_EQ(s.Find(u"--"), 3);
  EXPECT_EQ(s.Find(u"x"), -1);
  EXPECT_EQ(s.Find(u""), 0);
  EXPECT_EQ(s.Find(u"", 6), 6);
  EXPECT_EQ(s.Find(u"", 7), -1);
  EXPECT_EQ(s.Find(u'-', 2), 3);
  EXPECT_EQ(s.ReverseFind(u'-'), 4);
  EXPECT_EQ(s.FindOneOf(u"cb"), 2);
  EXPECT_EQ(s.Replace(u"-", u"+="), 3);
  EXPECT_EQ(s, u"a+=b+=+=c");
  EXPECT_EQ(s.Replace(u"", u"x"), 0);
  CString aa(u"aaaa");
  EXPECT_EQ(aa.Replace(u"aa", u"a"), 2);  // left to right, no overlaps
  EXPECT_EQ(aa, u"aa");
  EXPECT_EQ(s.Remove(u'='), 3);
  EXPECT_EQ(s, u"a+b++c");
  CString t(u" \t中文 \r\n");
  EXPECT_EQ(t.Trim(), u"中文");
  CString u(u"xxyhixy");
  EXPECT_EQ(u.TrimLeft(u"xy"), u"hixy");
  EXPECT_EQ(u.TrimRight(u'y'), u"hix");
  int pos = 0;
  CString list(u",a,,bc,");
  EXPECT_EQ(list.Tokenize(u",", pos), u"a");
  EXPECT_EQ(list.Tokenize(u",", pos), u"bc");
  EXPECT_EQ(list.Tokenize(u",", pos), u"");
  EXPECT_EQ(pos, -1);
}

TEST(CString, CaseFormatAndBuffers) {
  CString s(u"AbC中");
  EXPECT_EQ(s.CompareNoCase(u"abc中"), 0);
  EXPECT_LT(s.CompareNoCase(u"abd"), 0);
  EXPECT_GT(s.CompareNoCase(u"ab"), 0);
  EXPECT_EQ(CString(u"b").Compare(u"a"), 1);
  EXPECT_EQ(CString(u"ab").MakeUpper(), u"AB");
  EXPECT_EQ(CString(u"ab中").MakeReverse(), u"中ba");
  CString f;
  f.Format(u"%s=%.2f %e %d%%", u"x", 0.125, 1e6, 5);
  EXPECT_EQ(f, u"x=0.13 1.000000e+006 5%");
  f.Format(u"50%%");  // a text used as its own format loses one '%'
  EXPECT_EQ(f, u"50%");
  f.AppendFormat(u"-%ld", 7);
  EXPECT_EQ(f, u"50%-7");
  CString b;
  WCHAR* p = b.GetBuffer(10);
  p[0] = u'o';
  p[1] = u'k';
  p[2] = 0;
  b.ReleaseBuffer();
  EXPECT_EQ(b, u"ok");
  EXPECT_EQ(b.GetLength(), 2);
  EXPECT_EQ(CString(u"a") + u"b" + CString(u'c', 2), u"abcc");
}
