#include "host/dxf/encoding.h"

#include <gtest/gtest.h>

namespace zepk::dxf {
namespace {

TEST(CodePageNames, HeaderNamesToNumbers) {
  EXPECT_EQ(codePageFromName("ANSI_936"), 936);
  EXPECT_EQ(codePageFromName("ansi_1252"), 1252);
  EXPECT_EQ(codePageFromName(" ANSI_950 "), 950);
  EXPECT_EQ(codePageFromName("ANSI_1250"), 1250);
  EXPECT_EQ(codePageFromName("ANSI_1258"), 1258);
  EXPECT_EQ(codePageFromName("DOS850"), 850);
  EXPECT_EQ(codePageFromName("DOS932"), 932);
  EXPECT_EQ(codePageFromName("GB2312"), 936);
  EXPECT_EQ(codePageFromName("BIG5"), 950);
  EXPECT_EQ(codePageFromName("KSC5601"), 949);
  EXPECT_EQ(codePageFromName("JOHAB"), 1361);
  EXPECT_EQ(codePageFromName("ISO8859-2"), 28592);
  EXPECT_EQ(codePageFromName("UTF8"), kUtf8);
  EXPECT_EQ(codePageFromName(""), 0);
  EXPECT_EQ(codePageFromName("UNDEFINED"), 0);
  EXPECT_EQ(codePageFromName("ANSI_"), 0);
  EXPECT_EQ(codePageFromName("KLINGON"), 0);
  EXPECT_EQ(codePageFromName("ISO8859-99"), 0);
  for (int cp : {936, 950, 932, 949, 1250, 1252, 1258, 874, 850, 437, 28592, 1361, kUtf8})
    EXPECT_EQ(codePageFromName(codePageName(cp)), cp) << cp;
  EXPECT_EQ(codePageName(12345), "ANSI_1252");
}

TEST(Escapes, UnicodeAndMultibyteEscapesBecomeCharacters) {
  EXPECT_EQ(decodeEscapes(u"\\U+6D4B\\U+8BD5"), u"测试");
  EXPECT_EQ(decodeEscapes(u"x=\\U+00b0!"), u"x=°!");  // hex digits in either case
  EXPECT_EQ(decodeEscapes(u"\\U+D83D\\U+DE00"), u"😀");
  EXPECT_EQ(decodeEscapes(u"\\M+5B2E2\\M+5CAD4"), u"测试");  // GBK bytes
  EXPECT_EQ(decodeEscapes(u"\\M+2B4FA"), u"測");              // Big5
  EXPECT_EQ(decodeEscapes(u"\\M+18FCE"), u"笑");              // Shift-JIS
  EXPECT_EQ(decodeEscapes(u"\\M+3C7D1\\M+4D065"), u"한한");    // Korean, Johab
  // What only looks like an escape stays.
  for (std::u16string_view s : {u"\\U+12", u"\\U+12G4", u"\\U+", u"\\u+0041", u"\\M+9B2E2", u"\\M+5B2", u"C:\\Users\\M+x",
                                 u"\\P\\U\\", u"\\"})
    EXPECT_EQ(decodeEscapes(s), s);
  EXPECT_EQ(decodeEscapes(u"\\\\U+0041"), u"\\A");
}

TEST(Escapes, DecodeTextFromBytes) {
  EXPECT_EQ(decodeText("\xB2\xE2\\U+8BD5", 936), "测试");
  EXPECT_EQ(decodeText("caf\xE9", 1252), "café");
  EXPECT_EQ(decodeText("café \\U+00E9", kUtf8), "café é");
  EXPECT_EQ(decodeText("bad \xFF", kUtf8), "bad \xEF\xBF\xBD");
  EXPECT_TRUE(hasEscape("a\\U+0041"));
  EXPECT_TRUE(hasEscape("\\M+5B2E2"));
  EXPECT_FALSE(hasEscape("C:\\Users\\x"));
  EXPECT_FALSE(hasEscape("\\U"));
}

}  // namespace
}  // namespace zepk::dxf
