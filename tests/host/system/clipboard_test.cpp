// Clipboard text without a display: the shared file, through the Windows
// calls a program makes (open, empty, set, get, close).
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "host/system/clipboard.h"
#include "host/system/codepage.h"
#include "host/wincompat.h"

namespace fs = std::filesystem;
namespace sys = zepk::sys;

namespace {

class Clipboard : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("zepk-clip-" + std::to_string(::getpid()));
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    if (const char* d = std::getenv("DISPLAY")) display_ = d;
    ::unsetenv("DISPLAY");
    ::setenv("XDG_RUNTIME_DIR", dir_.c_str(), 1);
  }
  void TearDown() override {
    if (!display_.empty()) ::setenv("DISPLAY", display_.c_str(), 1);
    fs::remove_all(dir_);
  }
  fs::path dir_;
  std::string display_;
};

bool put(const std::u16string& text) {
  if (!OpenClipboard(nullptr)) return false;
  EmptyClipboard();
  HGLOBAL h = GlobalAlloc(GMEM_MOVEABLE, (text.size() + 1) * 2);
  std::memcpy(GlobalLock(h), text.c_str(), (text.size() + 1) * 2);
  GlobalUnlock(h);
  bool ok = SetClipboardData(CF_UNICODETEXT, h) != nullptr;
  CloseClipboard();
  return ok;
}

TEST_F(Clipboard, TextGoesThroughTheSharedFile) {
  EXPECT_EQ(sys::clipboardFile(), (dir_ / "zepk-clipboard").string());
  ASSERT_TRUE(put(u"测站\tX\r\nA-1"));
  EXPECT_TRUE(fs::exists(sys::clipboardFile()));
  // Another program (a new session) reads it back.
  ASSERT_TRUE(OpenClipboard(nullptr));
  EXPECT_FALSE(OpenClipboard(nullptr));  // already open
  EXPECT_TRUE(IsClipboardFormatAvailable(CF_UNICODETEXT));
  HANDLE h = GetClipboardData(CF_UNICODETEXT);
  ASSERT_NE(h, nullptr);
  EXPECT_EQ(std::u16string(static_cast<const char16_t*>(GlobalLock(h))), u"测站\tX\r\nA-1");
  // The 8-bit form is in the system code page.
  HANDLE a = GetClipboardData(CF_TEXT);
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(std::string(static_cast<const char*>(GlobalLock(a))), sys::toCodePage(u"测站\tX\r\nA-1"));
  EXPECT_EQ(GetClipboardData(2), nullptr);  // no pictures
  EXPECT_TRUE(CloseClipboard());
  EXPECT_FALSE(CloseClipboard());
  // Nothing is set or read while the clipboard is closed.
  EXPECT_EQ(GetClipboardData(CF_UNICODETEXT), nullptr);
  EXPECT_FALSE(EmptyClipboard());
  std::u16string t;
  ASSERT_TRUE(sys::getClipboardText(&t));
  EXPECT_EQ(t, u"测站\tX\r\nA-1");
  ASSERT_TRUE(OpenClipboard(nullptr));
  EXPECT_TRUE(EmptyClipboard());
  CloseClipboard();
  EXPECT_FALSE(IsClipboardFormatAvailable(CF_UNICODETEXT));
}

}  // namespace
