// Text files as the file functions read them: which encoding a file's
// first bytes choose, and where its lines end.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "services/textfiles.h"

using namespace zepk::services;
using Lines = std::vector<std::u16string>;

TEST(TextFiles, TheMarkChoosesTheEncodingElseTheSystemCodePage) {
  // 测量 in code page 936, in UTF-8 after its mark, in UTF-16 after its mark.
  EXPECT_EQ(decodeTextFile("\xB2\xE2\xC1\xBF"), u"测量");
  EXPECT_EQ(decodeTextFile("\xEF\xBB\xBF\xE6\xB5\x8B\xE9\x87\x8F"), u"测量");
  EXPECT_EQ(decodeTextFile(std::string("\xFF\xFE\x4B\x6D\xCF\x91", 6)), u"测量");
  // UTF-8 without its mark is read as 936, as the system reads it.
  EXPECT_NE(decodeTextFile("\xE6\xB5\x8B\xE9\x87\x8F"), u"测量");
  // An odd last byte of UTF-16 is dropped; marks alone are empty texts.
  EXPECT_EQ(decodeTextFile(std::string("\xFF\xFE" "a\0b", 5)), u"a");
  EXPECT_EQ(decodeTextFile("\xEF\xBB\xBF"), u"");
  EXPECT_EQ(decodeTextFile("\xFF\xFE"), u"");
  EXPECT_EQ(decodeTextFile(""), u"");
  // Zero bytes are kept as characters, not taken as the text's end.
  EXPECT_EQ(decodeTextFile(std::string("a\0b", 3)), std::u16string(u"a\0b", 3));
}

TEST(TextFiles, LinesEndAtNewlinesWithOrWithoutReturns) {
  EXPECT_EQ(splitTextLines(u""), Lines{});
  EXPECT_EQ(splitTextLines(u"\n"), Lines{u""});
  EXPECT_EQ(splitTextLines(u"a"), Lines{u"a"});
  EXPECT_EQ(splitTextLines(u"a\r\nb\n"), (Lines{u"a", u"b"}));
  EXPECT_EQ(splitTextLines(u"a\n\n\nb"), (Lines{u"a", u"", u"", u"b"}));
  // A return not before a newline belongs to the line.
  EXPECT_EQ(splitTextLines(u"a\rb\r\r\n"), (Lines{u"a\rb\r"}));
  EXPECT_EQ(joinLines({}), u"");
  EXPECT_EQ(joinLines({u"甲", u"", u"乙"}), u"甲\r\n\r\n乙");
  // Joining and splitting again gives the lines back.
  Lines some{u"x", u"", u"测量 y"};
  EXPECT_EQ(splitTextLines(joinLines(some)), some);
}
