// Files and folders under their Windows names: a tree made, listed,
// copied, moved and removed, checked on disk.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/system/utf.h"
#include "host/wincompat.h"

namespace fs = std::filesystem;

namespace {

struct Tree {
  fs::path dir;
  Tree() {
    char t[] = "/tmp/zepk_winfile_XXXXXX";
    dir = ::mkdtemp(t);
  }
  ~Tree() { fs::remove_all(dir); }
  // A Windows-looking path: backslashes.
  std::u16string w(const std::string& rel) const {
    std::u16string s = zepk::sys::fromUtf8((dir / rel).string());
    for (char16_t& c : s)
      if (c == u'/') c = u'\\';
    return s;
  }
  std::vector<std::string> list(const std::string& pattern) const {
    std::vector<std::string> names;
    WIN32_FIND_DATAW d;
    HANDLE h = FindFirstFileW(w(pattern).c_str(), &d);
    if (h == INVALID_HANDLE_VALUE) return names;
    do names.push_back(zepk::sys::toUtf8(d.cFileName) + ((d.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) ? "/" : ""));
    while (FindNextFileW(h, &d));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_MORE_FILES));
    FindClose(h);
    return names;
  }
};

void write(const fs::path& p, const std::string& s) { std::ofstream(p, std::ios::binary) << s; }
std::string read(const fs::path& p) {
  std::ifstream f(p, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(f), {});
}

}  // namespace

TEST(WinFile, MakeListCopyMoveRemove) {
  Tree t;
  ASSERT_TRUE(CreateDirectoryW(t.w("测绘").c_str(), nullptr));
  EXPECT_FALSE(CreateDirectoryW(t.w("测绘").c_str(), nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
  EXPECT_FALSE(CreateDirectoryW(t.w("no\\such").c_str(), nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
  write(t.dir / "测绘" / "a.DXF", "drawing");
  write(t.dir / "测绘" / "b.txt", "text");
  write(t.dir / "测绘" / "README", "plain");
  EXPECT_EQ(t.list("测绘\\*.*"), (std::vector<std::string>{"./", "../", "README", "a.DXF", "b.txt"}));
  EXPECT_EQ(t.list("测绘\\*.dxf"), (std::vector<std::string>{"a.DXF"}));  // no regard to case
  EXPECT_EQ(t.list("测绘\\?.txt"), (std::vector<std::string>{"b.txt"}));
  EXPECT_TRUE(t.list("测绘\\*.shp").empty());
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  EXPECT_TRUE(t.list("none\\*.*").empty());
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));

  EXPECT_EQ(GetFileAttributesW(t.w("测绘").c_str()), static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));
  EXPECT_EQ(GetFileAttributesW(t.w("测绘\\b.txt").c_str()), static_cast<DWORD>(FILE_ATTRIBUTE_NORMAL));
  EXPECT_EQ(GetFileAttributesW(t.w("missing").c_str()), INVALID_FILE_ATTRIBUTES);

  ASSERT_TRUE(CopyFileW(t.w("测绘\\a.DXF").c_str(), t.w("copy.dxf").c_str(), TRUE));
  EXPECT_EQ(read(t.dir / "copy.dxf"), "drawing");
  EXPECT_FALSE(CopyFileW(t.w("测绘\\b.txt").c_str(), t.w("copy.dxf").c_str(), TRUE));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_EXISTS));
  ASSERT_TRUE(CopyFileW(t.w("测绘\\b.txt").c_str(), t.w("copy.dxf").c_str(), FALSE));  // overwritten
  EXPECT_EQ(read(t.dir / "copy.dxf"), "text");
  EXPECT_FALSE(CopyFileW(t.w("copy.dxf").c_str(), t.w("copy.dxf").c_str(), FALSE));
  EXPECT_EQ(read(t.dir / "copy.dxf"), "text");

  EXPECT_FALSE(MoveFileW(t.w("copy.dxf").c_str(), t.w("测绘\\b.txt").c_str()));  // target exists
  ASSERT_TRUE(MoveFileW(t.w("copy.dxf").c_str(), t.w("测绘\\moved.dxf").c_str()));
  EXPECT_FALSE(fs::exists(t.dir / "copy.dxf"));
  EXPECT_EQ(read(t.dir / "测绘" / "moved.dxf"), "text");

  EXPECT_FALSE(RemoveDirectoryW(t.w("测绘").c_str()));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DIR_NOT_EMPTY));
  EXPECT_FALSE(DeleteFileW(t.w("测绘").c_str()));  // a folder is no file
  for (const char* f : {"a.DXF", "b.txt", "README", "moved.dxf"})
    EXPECT_TRUE(DeleteFileW(t.w(std::string("测绘\\") + f).c_str())) << f;
  EXPECT_FALSE(DeleteFileW(t.w("测绘\\a.DXF").c_str()));
  EXPECT_TRUE(RemoveDirectoryW(t.w("测绘").c_str()));
  EXPECT_TRUE(fs::is_empty(t.dir));
}
