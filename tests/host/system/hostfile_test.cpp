// Whole-file reads and atomic writes, and the Windows code-page calls.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/hostfile.h"
#include "host/system/utf.h"
#include "host/wincompat.h"

namespace fs = std::filesystem;

namespace {

struct TempDir {
  fs::path dir;
  TempDir() {
    char t[] = "/tmp/zepk_hostfile_XXXXXX";
    dir = ::mkdtemp(t);
  }
  ~TempDir() { fs::remove_all(dir); }
  std::u16string wide(const std::string& name) const { return zepk::sys::fromUtf8((dir / name).string()); }
};

}  // namespace

TEST(HostFile, WritesWholeAndReadsBackThroughEitherSeparator) {
  TempDir t;
  std::string data("a\0b\r\n\xE4\xB8\xAD", 7);
  ASSERT_TRUE(acutWriteWholeFile(t.wide("x.bin"), data));
  std::string back;
  ASSERT_TRUE(acutReadWholeFile(t.wide("x.bin"), &back));
  EXPECT_EQ(back, data);
  std::u16string bs = t.wide("x.bin");
  for (char16_t& c : bs)
    if (c == u'/') c = u'\\';
  ASSERT_TRUE(acutReadWholeFile(bs, &back));
  EXPECT_EQ(back, data);
  // Only the file itself is left: no temporary beside it.
  EXPECT_EQ(std::distance(fs::directory_iterator(t.dir), fs::directory_iterator()), 1);
}

TEST(HostFile, FailuresLeaveWhatWasThere) {
  TempDir t;
  std::string back = "stale";
  EXPECT_FALSE(acutReadWholeFile(t.wide("missing"), &back));
  EXPECT_TRUE(back.empty());
  EXPECT_FALSE(acutReadWholeFile(zepk::sys::fromUtf8(t.dir.string()), &back));  // a folder
  EXPECT_FALSE(acutWriteWholeFile(t.wide("no/such/folder/f"), "x"));
  // A file kept when its folder refuses new files; its mode is kept when
  // it is replaced.
  ASSERT_TRUE(acutWriteWholeFile(t.wide("keep"), "old"));
  ::chmod((t.dir / "keep").c_str(), 0640);
  ASSERT_TRUE(acutWriteWholeFile(t.wide("keep"), "new"));
  struct stat st {};
  ::stat((t.dir / "keep").c_str(), &st);
  EXPECT_EQ(st.st_mode & 0777, 0640u);
  if (::geteuid() != 0) {  // root writes anywhere
    ::chmod(t.dir.c_str(), 0500);
    EXPECT_FALSE(acutWriteWholeFile(t.wide("keep"), "newer"));
    ::chmod(t.dir.c_str(), 0700);
  }
  ASSERT_TRUE(acutReadWholeFile(t.wide("keep"), &back));
  EXPECT_EQ(back, "new");
}

TEST(WinCodePage, ConversionsSizesAndTerminators) {
  EXPECT_EQ(GetACP(), 936u);
  const char gbk[] = "\xD6\xD0\xCE\xC4";  // 中文 in code page 936
  WCHAR w[8] = {};
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, gbk, -1, nullptr, 0), 3);  // with the terminator
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, gbk, -1, w, 8), 3);
  EXPECT_EQ(std::u16string(w), u"中文");
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, gbk, 4, w, 1), 0);  // too small
  char b[16] = {};
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, u"中", -1, b, 16, nullptr, nullptr), 4);
  EXPECT_STREQ(b, "\xE4\xB8\xAD");
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, u"中x", 2, b, 16, nullptr, nullptr), 3);
  EXPECT_EQ(std::string(b, 3), "\xD6\xD0x");
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, u"\u0e01", 1, b, 16, nullptr, nullptr), 1);
  EXPECT_EQ(b[0], '?');  // Thai is not in code page 936
}
