#include "host/system/paths.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

namespace zepk::sys {
namespace {

// Clears the drive variables for each test and puts them back afterwards.
class Paths : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : kNames) {
      const char* v = std::getenv(name);
      saved_.push_back(v ? std::optional<std::string>(v) : std::nullopt);
      unsetenv(name);
    }
  }
  void TearDown() override {
    for (size_t i = 0; i < saved_.size(); ++i) {
      if (saved_[i])
        setenv(kNames[i], saved_[i]->c_str(), 1);
      else
        unsetenv(kNames[i]);
    }
  }
  static constexpr const char* kNames[] = {"ZEPK_DRIVE_C", "ZEPK_DRIVE_D", "ZEPK_DRIVE_X"};
  std::vector<std::optional<std::string>> saved_;
};

TEST_F(Paths, DriveCMapsToRootByDefault) {
  EXPECT_EQ(toNativePath(u"C:\\data\\site.dat"), "/data/site.dat");
  EXPECT_EQ(toNativePath(u"c:/data/site.dat"), "/data/site.dat");
  EXPECT_EQ(toNativePath(u"C:\\"), "/");
  EXPECT_EQ(toNativePath(u"C:"), "/");
}

TEST_F(Paths, OtherDrivesMapUnderMnt) {
  EXPECT_EQ(toNativePath(u"D:\\survey\\2008\\a.dxf"), "/mnt/d/survey/2008/a.dxf");
  EXPECT_EQ(toNativePath(u"x:\\a"), "/mnt/x/a");
  EXPECT_EQ(toNativePath(u"D:"), "/mnt/d/");
  EXPECT_EQ(toNativePath(u"D:notes.txt"), "/mnt/d/notes.txt");  // drive-relative: from the root
}

TEST_F(Paths, EnvironmentChoosesDriveRoots) {
  setenv("ZEPK_DRIVE_C", "/tmp/zepk-c", 1);
  setenv("ZEPK_DRIVE_D", "/srv/data/", 1);
  EXPECT_EQ(toNativePath(u"C:\\Program Files\\zepk\\a.lsp"), "/tmp/zepk-c/Program Files/zepk/a.lsp");
  EXPECT_EQ(toNativePath(u"C:"), "/tmp/zepk-c/");
  EXPECT_EQ(toNativePath(u"d:\\\\x\\y"), "/srv/data/x/y");
  EXPECT_EQ(toNativePath(u"D:x"), "/srv/data/x");
  setenv("ZEPK_DRIVE_X", "", 1);  // empty counts as unset
  EXPECT_EQ(toNativePath(u"X:\\a"), "/mnt/x/a");
}

TEST_F(Paths, SeparatorsAndPlainPaths) {
  EXPECT_EQ(toNativePath(u"/usr//share///zepk/"), "/usr/share/zepk/");
  EXPECT_EQ(toNativePath(u"/home/user/a.dxf"), "/home/user/a.dxf");
  EXPECT_EQ(toNativePath(u"data\\sub/file.txt"), "data/sub/file.txt");
  EXPECT_EQ(toNativePath(u"..\\up\\.\\here"), "../up/./here");
  EXPECT_EQ(toNativePath(u"\\\\server\\share\\f"), "/server/share/f");
  EXPECT_EQ(toNativePath(u""), "");
  EXPECT_EQ(toNativePath(u"E:\\测量\\成果.dxf"), "/mnt/e/\xE6\xB5\x8B\xE9\x87\x8F/\xE6\x88\x90\xE6\x9E\x9C.dxf");
}

TEST_F(Paths, NativePathsComeBackUnchanged) {
  EXPECT_EQ(fromNativePath("/mnt/e/\xE6\xB5\x8B\xE9\x87\x8F/a.dxf"), u"/mnt/e/测量/a.dxf");
  EXPECT_EQ(toNativePath(fromNativePath("/srv/a b/c.txt")), "/srv/a b/c.txt");
  EXPECT_EQ(fromNativePath("rel/x"), u"rel/x");
}

TEST_F(Paths, AbsoluteOrRelative) {
  EXPECT_TRUE(isAbsolutePath(u"C:\\a"));
  EXPECT_TRUE(isAbsolutePath(u"d:/a"));
  EXPECT_TRUE(isAbsolutePath(u"D:a"));
  EXPECT_TRUE(isAbsolutePath(u"/usr"));
  EXPECT_TRUE(isAbsolutePath(u"\\a"));
  EXPECT_FALSE(isAbsolutePath(u"a\\b"));
  EXPECT_FALSE(isAbsolutePath(u"./a"));
  EXPECT_FALSE(isAbsolutePath(u""));
  EXPECT_FALSE(isAbsolutePath(u"1:\\a"));
}

}  // namespace
}  // namespace zepk::sys
