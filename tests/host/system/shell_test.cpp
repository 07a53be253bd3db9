// Special folders under a made-up home, shortcuts as desktop files, the
// host's and its modules' files, and running programs.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "host/system/shell.h"
#include "host/system/utf.h"
#include "host/wincompat.h"

namespace fs = std::filesystem;
namespace sys = zepk::sys;

namespace {

class Shell : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("zepk-shell-" + std::to_string(::getpid()) + "-" +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    for (const char* v : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_DESKTOP_DIR", "XDG_DOCUMENTS_DIR", "TMPDIR"}) {
      const char* old = std::getenv(v);
      saved_.emplace_back(v, old ? std::optional<std::string>(old) : std::nullopt);
      ::unsetenv(v);
    }
    ::setenv("HOME", dir_.c_str(), 1);
  }
  void TearDown() override {
    for (auto& [k, v] : saved_) {
      if (v) ::setenv(k.c_str(), v->c_str(), 1);
      else ::unsetenv(k.c_str());
    }
    fs::remove_all(dir_);
  }
  std::u16string folder(int csidl, bool create = false) {
    WCHAR buf[MAX_PATH];
    if (!SHGetSpecialFolderPathW(nullptr, buf, csidl, create ? TRUE : FALSE)) return u"<none>";
    return buf;
  }
  std::u16string home() const { return sys::fromUtf8(dir_.string()); }
  fs::path dir_;
  std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};

TEST_F(Shell, SpecialFoldersFollowTheXdgSettings) {
  EXPECT_EQ(folder(CSIDL_DESKTOP), home() + u"/Desktop");
  EXPECT_EQ(folder(CSIDL_PERSONAL), home() + u"/Documents");
  EXPECT_EQ(folder(CSIDL_APPDATA), home() + u"/.config");
  EXPECT_EQ(folder(CSIDL_LOCAL_APPDATA), home() + u"/.local/share");
  EXPECT_EQ(folder(CSIDL_FONTS), home() + u"/.local/share/fonts");
  EXPECT_EQ(folder(CSIDL_PROFILE), home());
  EXPECT_EQ(folder(0x77), u"<none>");
  // The user's folder list, then the environment, take precedence.
  fs::create_directories(dir_ / "cfg");
  ::setenv("XDG_CONFIG_HOME", (dir_ / "cfg").c_str(), 1);
  {
    std::ofstream f(dir_ / "cfg" / "user-dirs.dirs");
    f << "# written by xdg-user-dirs-update\nXDG_DESKTOP_DIR=\"$HOME/桌面\"\nXDG_DOCUMENTS_DIR=\"/srv/docs/\"\n";
  }
  EXPECT_EQ(folder(CSIDL_DESKTOPDIRECTORY), home() + u"/桌面");
  EXPECT_EQ(folder(CSIDL_PERSONAL), u"/srv/docs");
  EXPECT_EQ(folder(CSIDL_APPDATA), home() + u"/cfg");
  ::setenv("XDG_DESKTOP_DIR", (dir_ / "desk").c_str(), 1);
  EXPECT_EQ(folder(CSIDL_DESKTOP), home() + u"/desk");
  // Relative settings are ignored, as the XDG rules say.
  ::setenv("XDG_DATA_HOME", "relative/data", 1);
  EXPECT_EQ(folder(CSIDL_LOCAL_APPDATA), home() + u"/.local/share");
  // A missing folder is made only when asked.
  EXPECT_FALSE(fs::exists(dir_ / "desk"));
  EXPECT_EQ(folder(CSIDL_DESKTOP | CSIDL_FLAG_CREATE), home() + u"/desk");
  EXPECT_TRUE(fs::is_directory(dir_ / "desk"));
  ::setenv("TMPDIR", (dir_.string() + "/").c_str(), 1);
  WCHAR tmp[MAX_PATH];
  EXPECT_EQ(GetTempPathW(MAX_PATH, tmp), home().size() + 1);
  EXPECT_EQ(std::u16string(tmp), home() + u"/");
}

TEST_F(Shell, ShortcutsAreDesktopFiles) {
  std::string prog = (dir_ / "run.sh").string();
  {
    std::ofstream f(prog);
    f << "#!/bin/sh\n";
  }
  ::chmod(prog.c_str(), 0755);
  sys::Shortcut s;
  s.target = prog;
  s.arguments = "--fast \"two words\"";
  s.workingDir = dir_.string();
  s.description = "测绘\n工具";
  std::string written = sys::writeShortcut((dir_ / "links" / "Survey.lnk").string(), s);
  ASSERT_EQ(written, (dir_ / "links" / "Survey.desktop").string());
  struct stat sb;
  ASSERT_EQ(::stat(written.c_str(), &sb), 0);
  EXPECT_TRUE(sb.st_mode & S_IXUSR);
  sys::Shortcut back;
  ASSERT_TRUE(sys::readShortcut(written, &back));
  EXPECT_EQ(back.target, prog);
  EXPECT_EQ(back.arguments, s.arguments);
  EXPECT_EQ(back.workingDir, s.workingDir);
  EXPECT_EQ(back.description, s.description);
  // A document opens as a link.
  s = sys::Shortcut{};
  s.target = "/srv/data/site plan.dxf";
  written = sys::writeShortcut((dir_ / "Plan").string(), s);
  ASSERT_EQ(written, (dir_ / "Plan.desktop").string());
  std::ifstream f(written);
  std::string text((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
  EXPECT_NE(text.find("Type=Link\n"), std::string::npos);
  EXPECT_NE(text.find("URL=file:///srv/data/site plan.dxf\n"), std::string::npos);
  ASSERT_TRUE(sys::readShortcut(written, &back));
  EXPECT_EQ(back.target, s.target);
  EXPECT_FALSE(sys::readShortcut(prog, &back));
  EXPECT_EQ(sys::writeShortcut((dir_ / "x").string(), sys::Shortcut{}), "");
}

TEST_F(Shell, ProgramAndModuleFiles) {
  WCHAR buf[4096];
  DWORD n = GetModuleFileNameW(nullptr, buf, 4096);
  ASSERT_GT(n, 0u);
  std::u16string exe(buf, n);
  EXPECT_EQ(exe, sys::fromUtf8(sys::programFile()));
  EXPECT_TRUE(fs::exists(sys::toUtf8(exe)));
  int handle = 0;
  sys::registerModuleHandle(&handle, u"zepkapi");
  n = GetModuleFileNameW(reinterpret_cast<HMODULE>(&handle), buf, 4096);
  std::u16string folder = exe.substr(0, exe.find_last_of(u'/'));
  EXPECT_EQ(std::u16string(buf, n), folder + u"/zepkapi.arx");
  // A short buffer gets what fits and its zero.
  n = GetModuleFileNameW(reinterpret_cast<HMODULE>(&handle), buf, 5);
  EXPECT_EQ(n, 5u);
  EXPECT_EQ(std::u16string(buf), exe.substr(0, 4));
  int other = 0;
  EXPECT_EQ(GetModuleFileNameW(reinterpret_cast<HMODULE>(&other), buf, 4096), 0u);
}

TEST_F(Shell, CommandsRunWithTheirStatusAndOutput) {
  std::string out;
  EXPECT_EQ(sys::runCommand("printf '测 %s' \"$HOME\"; exit 3", &out), 3);
  EXPECT_EQ(out, "测 " + dir_.string());
  EXPECT_EQ(sys::runCommand("kill -9 $$"), 128 + 9);
  EXPECT_EQ(sys::runCommand("true"), 0);
  EXPECT_EQ(sys::findProgram("sh").empty(), false);
  EXPECT_EQ(sys::findProgram("no-such-program-here"), "");
  // WinExec starts without waiting; the program's work shows afterwards.
  std::string mark = (dir_ / "ran").string();
  EXPECT_GT(WinExec(("sh -c \"sleep 0.1; echo yes > " + mark + "\"").c_str(), 0), 31u);
  EXPECT_FALSE(fs::exists(mark));
  for (int i = 0; i < 100 && !fs::exists(mark); ++i) ::usleep(50000);
  EXPECT_TRUE(fs::exists(mark));
  EXPECT_EQ(WinExec("no-such-program-here now", 0), static_cast<UINT>(ERROR_FILE_NOT_FOUND));
  // ShellExecute: a program runs in its folder with its parameters; a
  // missing file is SE_ERR_FNF.
  std::string script = (dir_ / "mk.sh").string();
  {
    std::ofstream f(script);
    f << "#!/bin/sh\necho \"$1\" > made.txt\n";
  }
  ::chmod(script.c_str(), 0755);
  HINSTANCE r = ShellExecuteW(nullptr, u"open", sys::fromUtf8(script).c_str(), u"hello", home().c_str(), SW_SHOW);
  EXPECT_GT(reinterpret_cast<intptr_t>(r), 32);
  for (int i = 0; i < 100 && !fs::exists(dir_ / "made.txt"); ++i) ::usleep(50000);
  std::ifstream made(dir_ / "made.txt");
  std::string word;
  made >> word;
  EXPECT_EQ(word, "hello");
  r = ShellExecuteW(nullptr, nullptr, (home() + u"/missing.dxf").c_str(), nullptr, nullptr, SW_SHOW);
  EXPECT_EQ(reinterpret_cast<intptr_t>(r), 2);
  r = ShellExecuteW(nullptr, u"print", sys::fromUtf8(script).c_str(), nullptr, nullptr, SW_SHOW);
  EXPECT_LE(reinterpret_cast<intptr_t>(r), 32);
}

}  // namespace
