// The string family's text rules on the cases its users meet.
#include <gtest/gtest.h>

#include "services/strings.h"

using namespace zepk::services;

namespace {
std::vector<std::u16string> strs(const std::vector<CString>& v) {
  std::vector<std::u16string> out;
  for (const CString& s : v) out.push_back(s.str());
  return out;
}
using L = std::vector<std::u16string>;
}  // namespace

TEST(Strings, Split) {
  EXPECT_EQ(strs(splitText(u"", u",", true)), L{});
  EXPECT_EQ(strs(splitText(u",,", u",", false)), L{});
  EXPECT_EQ(strs(splitText(u",,", u",", true)), (L{u"", u"", u""}));
  EXPECT_EQ(strs(splitText(u"a,", u",", true)), (L{u"a", u""}));
  EXPECT_EQ(strs(splitText(u"a,", u",", false)), (L{u"a"}));
  EXPECT_EQ(strs(splitText(u"a::b", u"::", false)), (L{u"a", u"b"}));
  EXPECT_EQ(strs(splitText(u"abc", u"", false)), (L{u"abc"}));
  EXPECT_EQ(strs(splitText(u"a;b,c", std::vector<CString>{u";", u","}, false)), (L{u"a", u"b", u"c"}));
  // On a tie the separator listed first wins: ",," before ",".
  EXPECT_EQ(strs(splitText(u"a,,b,c", std::vector<CString>{u",,", u","}, false)), (L{u"a", u"b", u"c"}));
  EXPECT_EQ(strs(splitText(u"a,,b", std::vector<CString>{u",", u",,"}, true)), (L{u"a", u"", u"b"}));
  EXPECT_EQ(strs(splitText(u"a,b", std::vector<CString>{}, false)), (L{u"a,b"}));
  EXPECT_EQ(strs(splitText(u"中文，测试", u"，", false)), (L{u"中文", u"测试"}));
}

TEST(Strings, SearchNeverFindsAMatchEndingOnTheLastCharacter) {
  EXPECT_EQ(searchText(u"bc", u"abc", 0), -1);
  EXPECT_EQ(searchText(u"b", u"abc", 0), 1);
  EXPECT_EQ(searchText(u"b", u"abcb", 2), -1);
  EXPECT_EQ(searchText(u"", u"abc", 2), 2);
  EXPECT_EQ(searchText(u"", u"abc", 3), -1);
  EXPECT_EQ(searchText(u"a", u"abca", -2), 0);  // a negative start is used as it is
}

TEST(Strings, DeleteMidInsertByCharacters) {
  EXPECT_EQ(deleteChars(u"abc", 1, 1), u"ac");
  EXPECT_EQ(deleteChars(u"abc", -4, 2), u"c");
  EXPECT_EQ(deleteChars(u"abc", 1, 0), u"abc");
  EXPECT_EQ(deleteChars(u"abc", 5, 1), u"abc");
  EXPECT_EQ(deleteChars(u"abc", 1, 99), u"a");
  EXPECT_EQ(midChars(u"abcdef", 2, 2), u"cd");
  EXPECT_EQ(midChars(u"abcdef", 2, -5), u"cdef");
  EXPECT_EQ(midChars(u"abcdef", -1, 1), u"a");
  EXPECT_EQ(midChars(u"abcdef", 6, 1), u"");
  EXPECT_EQ(insertChars(u"", 0, u"x"), u"");
  EXPECT_EQ(insertChars(u"abc", 1, u"XY"), u"aXYbc");
  EXPECT_EQ(insertChars(u"abc", -3, u"X"), u"Xabc");
  EXPECT_EQ(insertChars(u"abc", 10, u"X"), u"abcX");
}

TEST(Strings, RunsOfSingleAndDoubleByteText) {
  EXPECT_EQ(strs(splitByByteClass(u"ab中文12测")), (L{u"ab", u"中文", u"12", u"测"}));
  EXPECT_EQ(strs(splitByByteClass(u"")), L{});
  EXPECT_EQ(strs(splitByByteClass(u"全")), (L{u"全"}));
}

TEST(Strings, FileNamePartsAndChecks) {
  EXPECT_EQ(fileNameBase(u"c:\\dir\\file.tar.gz"), u"file.tar");
  EXPECT_EQ(fileNameFull(u"c:\\dir\\file.txt"), u"file.txt");
  EXPECT_EQ(fileNamePath(u"c:\\dir\\file.txt"), u"c:\\dir\\");
  EXPECT_EQ(fileNamePath(u"file.txt"), u"");
  EXPECT_EQ(fileNameExt(u"c:\\a.b\\c"), u"");
  EXPECT_EQ(fileNameExt(u"c:/a/b.dxf"), u"dxf");  // "/" is no separator
  EXPECT_EQ(fileNameFull(u"c:/a/b.dxf"), u"c:/a/b.dxf");
  EXPECT_TRUE(isValidFileName(u"a\\b"));
  EXPECT_TRUE(isValidFileName(u"a\"b\tc"));
  EXPECT_TRUE(isValidFileName(u""));
  EXPECT_FALSE(isValidFileName(u"a/b"));
  EXPECT_FALSE(isValidFileName(u"a?"));
  EXPECT_FALSE(isValidFileName(std::u16string(1, char16_t(0x2F74))));
  EXPECT_TRUE(isValidPath(u"c:\\dir\\f.txt"));
  EXPECT_FALSE(isValidPath(u"c:\\dir:x"));
  EXPECT_FALSE(isValidPath(u"c:/dir"));
}

TEST(Strings, FormatStepOfStringArguments) {
  EXPECT_EQ(formatWithoutArguments(u"50%%").str(), u"50%");
  EXPECT_EQ(formatWithoutArguments(u"中文 %% a%%%%b").str(), u"中文 % a%%b");
  // Conversions read zeros: numbers print 0, strings "(null)".
  EXPECT_EQ(formatWithoutArguments(u"[%d|%5.2f|%s|%x|%I64d|%*d|%.*s]").str(), u"[0| 0.00|(null)|0|0|0|]");
  // Unknown letters and a "%" at the end stay as written.
  EXPECT_EQ(formatWithoutArguments(u"%q %y 5%").str(), u"%q %y 5%");
  EXPECT_EQ(formatWithoutArguments(u"").str(), u"");
}

TEST(Strings, SortNumbersUpMovesOnlyNumbers) {
  resbuf* chain = acutBuildList(RTSHORT, 3, RTSTR, u"x", RTREAL, 1.5, RTLB, RTSHORT, 2, RTLE, RTREAL, -1.0, 0);
  sortNumbersUp(chain);
  resbuf* rb = chain;
  EXPECT_EQ(rb->restype, RTREAL);
  EXPECT_EQ(rb->resval.rreal, -1.0);
  rb = rb->rbnext;
  EXPECT_EQ(rb->restype, RTSTR);
  rb = rb->rbnext;
  EXPECT_EQ(rb->restype, RTREAL);
  EXPECT_EQ(rb->resval.rreal, 1.5);
  rb = rb->rbnext;
  EXPECT_EQ(rb->restype, RTLB);
  rb = rb->rbnext;
  EXPECT_EQ(rb->restype, RTSHORT);
  EXPECT_EQ(rb->resval.rint, 2);
  rb = rb->rbnext->rbnext;
  EXPECT_EQ(rb->restype, RTSHORT);
  EXPECT_EQ(rb->resval.rint, 3);
  acutRelRb(chain);

  // A list of three numbers travels as one point: it becomes the list
  // again, its numbers sorted with the others.
  ads_point p = {3, 1, 2};
  chain = acutBuildList(RTSHORT, 2, RT3DPOINT, p, 0);
  sortNumbersUp(chain);
  std::vector<short> types;
  std::vector<double> values;
  for (rb = chain; rb; rb = rb->rbnext) {
    types.push_back(rb->restype);
    if (rb->restype == RTREAL) values.push_back(rb->resval.rreal);
    if (rb->restype == RTSHORT) values.push_back(rb->resval.rint);
  }
  EXPECT_EQ(types, (std::vector<short>{RTREAL, RTLB, RTSHORT, RTREAL, RTREAL, RTLE}));
  EXPECT_EQ(values, (std::vector<double>{1, 2, 2, 3}));
  acutRelRb(chain);
}
