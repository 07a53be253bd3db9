#include "host/system/codepage.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

#include "host/system/utf.h"

namespace zepk::sys {
namespace {

const std::string kGbkData = "\xB2\xE2\xCA\xD4\xCA\xFD\xBE\xDD";  // u"测试数据"

class CodePage : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(setSystemCodePage(kCodePageGbk)); }
  void TearDown() override { setSystemCodePage(kCodePageGbk); }
};

TEST_F(CodePage, ChineseRoundTripsThroughGbk) {
  EXPECT_EQ(systemCodePage(), 936);
  EXPECT_EQ(toCodePage(u"测试数据"), kGbkData);
  EXPECT_EQ(toCodePage(u"测试数据", 936), kGbkData);
  EXPECT_EQ(fromCodePage(kGbkData), u"测试数据");
  EXPECT_EQ(toCodePage(u"X=1.5，高程：23.4m"), "X=1.5\xA3\xAC\xB8\xDF\xB3\xCC\xA3\xBA" "23.4m");
  EXPECT_EQ(fromCodePage("\x80"), u"€");
  EXPECT_EQ(toCodePage(u""), "");
  EXPECT_EQ(fromCodePage(""), u"");
}

TEST_F(CodePage, OtherCodePages) {
  EXPECT_EQ(toCodePage(u"測試", 950), "\xB4\xFA\xB8\xD5");
  EXPECT_EQ(fromCodePage("\xB4\xFA\xB8\xD5", 950), u"測試");
  EXPECT_EQ(toCodePage(u"café €", 1252), "caf\xE9 \x80");
  EXPECT_EQ(fromCodePage("caf\xE9 \x80", 1252), u"café €");
  EXPECT_EQ(toCodePage(u"测😀", 65001), "\xE6\xB5\x8B\xF0\x9F\x98\x80");
  EXPECT_EQ(fromCodePage("\xE6\xB5\x8B\xF0\x9F\x98\x80", 65001), u"测😀");
  EXPECT_EQ(toCodePage(u"plain", 20127), "plain");
}

TEST_F(CodePage, UnconvertibleCharactersBecomeOneQuestionMarkEach) {
  EXPECT_EQ(toCodePage(u"a😀b"), "a?b");    // a surrogate pair is one character
  EXPECT_EQ(toCodePage(u"한국"), "??");      // no Hangul in GBK
  EXPECT_EQ(toCodePage(u"\xD800x"), "?x");   // unpaired surrogates
  EXPECT_EQ(toCodePage(u"x\xDC00"), "x?");
  EXPECT_EQ(toCodePage(u"x\xD83D"), "x?");
  EXPECT_EQ(toCodePage(u"测试", 950), "??");  // simplified forms are not in Big5
  EXPECT_EQ(toCodePage(u"é", 20127), "?");
  EXPECT_EQ(toCodePage(u"a\xD800", 65001), "a?");
  EXPECT_EQ(toCodePage(u"Ā数", 1252), "??");
}

TEST_F(CodePage, UndecodableBytesBecomeOneQuestionMarkEach) {
  // A lead byte with a malformed trail loses only itself; the trail is read again.
  EXPECT_EQ(fromCodePage("\x81\x20" "A"), u"? A");
  EXPECT_EQ(fromCodePage("\xB2\x30\xB2\xE2"), u"?0测");
  // A lead byte at the end, and bytes that are never valid.
  EXPECT_EQ(fromCodePage("A\xB2"), u"A?");
  EXPECT_EQ(fromCodePage("\xB2\xE2\xFF\xB2\xE2"), u"测?测");
  // A well-formed pair that names no character: one '?' per byte.
  EXPECT_EQ(fromCodePage("\xAA\xA1" "b"), u"??b");
  EXPECT_EQ(fromCodePage("\x81", 950), u"?");
  EXPECT_EQ(fromCodePage("caf\x81", 1252), u"caf?");
  EXPECT_EQ(fromCodePage("\x80z", 20127), u"?z");
  EXPECT_EQ(fromCodePage("\xE6\x41", 65001), u"?A");
  EXPECT_EQ(fromCodePage("x\xE6\xB5", 65001), u"x??");
  // Nothing is dropped: the output has as many '?' as bad bytes, the rest intact.
  std::string bytes;
  for (int i = 0; i < 300; ++i) bytes += (i % 3 == 0) ? std::string("\xFF") : kGbkData;
  const std::u16string text = fromCodePage(bytes);
  EXPECT_EQ(text.size(), 100u + 200u * 4u);
}

TEST_F(CodePage, SystemCodePageSetting) {
  EXPECT_TRUE(isCodePageSupported(936));
  EXPECT_TRUE(isCodePageSupported(950));
  EXPECT_TRUE(isCodePageSupported(1252));
  EXPECT_TRUE(isCodePageSupported(65001));
  EXPECT_TRUE(isCodePageSupported(20127));
  EXPECT_FALSE(isCodePageSupported(0));
  EXPECT_FALSE(isCodePageSupported(1200));
  EXPECT_FALSE(isCodePageSupported(987654));

  EXPECT_FALSE(setSystemCodePage(987654));
  EXPECT_EQ(systemCodePage(), 936);
  ASSERT_TRUE(setSystemCodePage(1252));
  EXPECT_EQ(systemCodePage(), 1252);
  EXPECT_EQ(toCodePage(u"é"), "\xE9");
  EXPECT_EQ(fromCodePage(kGbkData.substr(0, 2)), u"²â");
  // An unsupported page named explicitly converts as ASCII.
  EXPECT_EQ(toCodePage(u"aé😀", 987654), "a??");
  EXPECT_EQ(fromCodePage("a\xE9", 987654), u"a?");
}

TEST_F(CodePage, LeadBytes) {
  EXPECT_TRUE(isLeadByte(0xB2));
  EXPECT_FALSE(isLeadByte('A'));
  EXPECT_FALSE(isLeadByte(0x80));
  EXPECT_FALSE(isLeadByte(0xFF));
  EXPECT_TRUE(isLeadByte(0xA4, 950));
  EXPECT_FALSE(isLeadByte(0xB2, 1252));
  EXPECT_FALSE(isLeadByte(0xE6, 65001));
}

TEST_F(CodePage, ThreadsConvertIndependently) {
  std::vector<std::thread> threads;
  std::vector<int> failures(4, 0);
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t, &failures] {
      for (int i = 0; i < 2000; ++i) {
        if (toCodePage(u"测试数据", 936) != kGbkData) ++failures[t];
        if (fromCodePage("\xB4\xFA\xB8\xD5", 950) != u"測試") ++failures[t];
      }
    });
  }
  for (auto& th : threads) th.join();
  EXPECT_EQ(failures, std::vector<int>(4, 0));
}

// The iconv program (glibc's, written by others) must produce the same bytes.
std::string runIconv(const std::string& input, const char* to) {
  char path[] = "/tmp/zepk_cp_XXXXXX";
  const int fd = mkstemp(path);
  if (fd < 0) return "<no temp file>";
  close(fd);
  std::ofstream(path, std::ios::binary) << input;
  const std::string cmd = std::string("iconv -f UTF-8 -t ") + to + " " + path + " 2>/dev/null";
  std::string out;
  if (FILE* p = popen(cmd.c_str(), "r")) {
    char buf[4096];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
    pclose(p);
  }
  std::remove(path);
  return out;
}

TEST_F(CodePage, MatchesTheIconvProgram) {
  if (std::system("iconv --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "no iconv program";
  const std::u16string simplified =
      u"三角网生成完毕！等高线间距=0.5m；土方量（挖方）：1234.56立方米。"
      u"宗地面积、界址点、房屋结构「砖混」，管线：给水/排水/燃气 ①②③ ÷×±≤≥ 〇";
  EXPECT_EQ(toCodePage(simplified, 936), runIconv(toUtf8(simplified), "CP936"));
  EXPECT_EQ(fromCodePage(runIconv(toUtf8(simplified), "CP936"), 936), simplified);
  const std::u16string traditional = u"測量資料處理：座標轉換與面積計算，誤差≦0.05公尺。";
  EXPECT_EQ(toCodePage(traditional, 950), runIconv(toUtf8(traditional), "CP950"));
  EXPECT_EQ(fromCodePage(runIconv(toUtf8(traditional), "CP950"), 950), traditional);
}

}  // namespace
}  // namespace zepk::sys
