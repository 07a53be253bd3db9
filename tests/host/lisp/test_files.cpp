// The file functions where a transcript cannot look: the bytes they leave
// on disk, the support path and the command-line input the host sets, and
// files of arbitrary bytes.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "host/lisp/files.h"
#include "host/lisp/interp.h"
#include "host/lisp/printer.h"
#include "host/system/utf.h"

namespace zepk::lisp {
namespace {

namespace fs = std::filesystem;

std::string readBytes(const fs::path& p) {
  std::ifstream f(p, std::ios::binary);
  std::stringstream ss;
  ss << f.rdbuf();
  return ss.str();
}

void writeBytes(const fs::path& p, std::string_view bytes) {
  std::ofstream f(p, std::ios::binary);
  f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// Runs each test in a folder of its own, made current, with the output of
// the command line captured. One interpreter serves the suite, as one serves
// the host's session.
class Files : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { in_ = new Interp; }
  static void TearDownTestSuite() {
    delete in_;
    in_ = nullptr;
  }
  void SetUp() override {
    char tmpl[] = "/tmp/zepk-files-XXXXXX";
    ASSERT_NE(::mkdtemp(tmpl), nullptr);
    dir_ = tmpl;
    old_ = fs::current_path();
    fs::current_path(dir_);
    in_->setOutput(&out_);
  }
  void TearDown() override {
    supportPath().clear();
    commandLineInput() = nullptr;
    in_->setOutput(nullptr);
    fs::current_path(old_);
    fs::remove_all(dir_);
  }
  // The value of the expression in prin1 form, or "error: <what was printed>".
  std::string eval(std::string_view expr) {
    out_.text.clear();
    Value v;
    if (!in_->evalText(sys::fromUtf8(expr), &v)) return "error: " + out_.text;
    return sys::toUtf8(prin1String(v));
  }

  static Interp* in_;
  fs::path dir_, old_;
  StringOutput out_;
};

Interp* Files::in_ = nullptr;

TEST_F(Files, TextIsWrittenInTheSystemCodePage) {
  eval(R"((setq f (open "gbk.txt" "w")))");
  eval(R"((write-line "中文 A" f))");
  eval(R"((write-char 25991 f))");
  eval(R"((prin1 "测" f))");
  eval("(close f)");
  EXPECT_EQ(readBytes(dir_ / "gbk.txt"), "\xD6\xD0\xCE\xC4 A\n\xCE\xC4\"\xB2\xE2\"");
  EXPECT_EQ(eval(R"((setq f (open "gbk.txt" "r")) (list (read-line f) (read-char f) (read-line f)))"),
            R"(("中文 A" 25991 "\"测\""))");
}

TEST_F(Files, AppendingToAUtf8FileWritesUtf8) {
  writeBytes(dir_ / "u.txt", "\xEF\xBB\xBF\xE4\xB8\xAD\n");
  eval(R"((setq f (open "u.txt" "a")) (write-line "文" f) (close f))");
  EXPECT_EQ(readBytes(dir_ / "u.txt"), "\xEF\xBB\xBF\xE4\xB8\xAD\n\xE6\x96\x87\n");
  // Writing anew drops the mark and the encoding with it.
  eval(R"((setq f (open "u.txt" "w")) (write-line "文" f) (close f))");
  EXPECT_EQ(readBytes(dir_ / "u.txt"), "\xCE\xC4\n");
}

TEST_F(Files, CopyReplacesNothingAndLeavesNoTemporaryFile) {
  writeBytes(dir_ / "src.bin", std::string("a\0b\r\n\xFF", 6));
  writeBytes(dir_ / "dst.bin", "old");
  EXPECT_EQ(eval(R"((vl-file-copy "src.bin" "dst.bin"))"), "nil");
  EXPECT_EQ(readBytes(dir_ / "dst.bin"), "old");
  EXPECT_EQ(eval(R"((vl-file-copy "src.bin" "dst.bin" T))"), "9");
  EXPECT_EQ(readBytes(dir_ / "dst.bin"), std::string("olda\0b\r\n\xFF", 9));
  EXPECT_EQ(eval(R"((vl-file-copy "src.bin" "new.bin"))"), "6");
  EXPECT_EQ(readBytes(dir_ / "new.bin"), readBytes(dir_ / "src.bin"));
  EXPECT_EQ(fs::status(dir_ / "new.bin").permissions() & fs::perms::owner_read, fs::perms::owner_read);
  int files = 0;
  for (auto& e : fs::directory_iterator(dir_)) files += e.is_regular_file();
  EXPECT_EQ(files, 3);
}

TEST_F(Files, FindfileAndLoadSearchTheSupportPath) {
  fs::create_directories(dir_ / "drive" / "lib");
  fs::create_directories(dir_ / "posix");
  writeBytes(dir_ / "drive" / "lib" / "tool.lsp", "(defun tool () 'win)\n(tool)\n");
  writeBytes(dir_ / "posix" / "tool.lsp", "'posix\n");
  writeBytes(dir_ / "posix" / "only.lsp", "'only\n");
  ::setenv("ZEPK_DRIVE_Q", (dir_ / "drive").c_str(), 1);
  supportPath() = {"Q:\\lib", (dir_ / "posix").string() + "/"};
  EXPECT_EQ(eval(R"((findfile "tool.lsp"))"), R"("Q:\\lib\\tool.lsp")");
  EXPECT_EQ(eval(R"((load "tool"))"), "WIN");
  EXPECT_EQ(eval(R"((findfile "only.lsp"))"), "\"" + (dir_ / "posix" / "only.lsp").string() + "\"");
  EXPECT_EQ(eval(R"((load "only"))"), "ONLY");
  // The current folder comes first.
  writeBytes(dir_ / "tool.lsp", "'here\n");
  EXPECT_EQ(eval(R"((load "tool"))"), "HERE");
  // A name with a folder is not looked for along the path.
  EXPECT_EQ(eval(R"((findfile "lib\\tool.lsp"))"), "nil");
  ::unsetenv("ZEPK_DRIVE_Q");
}

TEST_F(Files, ReadingWithoutAFileTakesTheCommandLine) {
  EXPECT_EQ(eval("(read-line)"), "nil");
  std::vector<std::u16string> typed = {u"first 中", u"second", u"third"};
  size_t next = 0;
  commandLineInput() = [&]() -> std::optional<std::u16string> {
    if (next == typed.size()) return std::nullopt;
    return typed[next++];
  };
  EXPECT_EQ(eval("(read-line)"), R"("first 中")");
  EXPECT_EQ(eval("(list (read-char) (read-char))"), "(115 101)");
  EXPECT_EQ(eval("(read-line)"), R"("cond")");
  EXPECT_EQ(eval("(list (read-char) (read-char) (read-char) (read-char) (read-char) (read-char))"),
            "(116 104 105 114 100 10)");
  EXPECT_EQ(eval("(read-char)"), "nil");
  EXPECT_EQ(eval("(read-line)"), "nil");
}

// Whatever the bytes, reading ends at the end of the file and keeps every
// byte that is text.
TEST_F(Files, ArbitraryBytesReadToTheEnd) {
  std::mt19937 rng(7);
  for (int round = 0; round < 40; ++round) {
    std::string bytes;
    if (round % 4 == 0) bytes = "\xEF\xBB\xBF";
    size_t n = rng() % 300;
    for (size_t k = 0; k < n; ++k) bytes.push_back(static_cast<char>(rng() % 4 == 0 ? "\r\n\x81\xF0"[rng() % 4] : rng()));
    writeBytes(dir_ / "r.bin", bytes);
    size_t newlines = std::count(bytes.begin(), bytes.end(), '\n');
    std::string r = eval(R"((setq f (open "r.bin" "r") n 0) (while (read-line f) (setq n (1+ n))) (close f) n)");
    size_t lines = newlines + (bytes.empty() || bytes.back() == '\n' || bytes == "\xEF\xBB\xBF" ? 0 : 1);
    EXPECT_EQ(r, std::to_string(lines)) << "round " << round;
    r = eval(R"((setq f (open "r.bin" "r") n 0) (while (setq c (read-char f)) (if (= c 10) (setq n (1+ n)))) (close f) n)");
    EXPECT_EQ(r, std::to_string(newlines)) << "round " << round;
  }
}

TEST_F(Files, LongLinesAreKeptWhole) {
  std::string line(300000, 'x');
  line[150000] = '\r';
  writeBytes(dir_ / "long.txt", line + "\r\nend");
  EXPECT_EQ(eval(R"((setq f (open "long.txt" "r")) (list (strlen (read-line f)) (read-line f) (read-line f)))"),
            R"((300000 "end" nil))");
  eval("(close f)");
}

}  // namespace
}  // namespace zepk::lisp
