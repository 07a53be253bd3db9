#include "host/dxf/writer.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <sstream>

#include "host/dxf/reader.h"
#include "host/dxf/structure.h"

namespace zepk::dxf {
namespace {

namespace fs = std::filesystem;

TEST(Writer, LayoutOfGroups) {
  GroupWriter w;
  w.text(0, "SECTION");
  w.text(2, "HEADER");
  w.text(9, "$ACADVER");
  w.text(1, "AC1032");
  w.point(10, 1.0, 0.1, -2.5e-7);
  w.integer(70, -5);
  w.boolean(290, true);
  w.text(1001, "ZEPK");
  w.integer(1071, 123456789);
  w.integer(40, 3);  // an integer where a real belongs is written as a real
  w.text(330, "1F");
  ASSERT_TRUE(w.ok()) << w.error();
  EXPECT_EQ(w.bytes(),
            "  0\r\nSECTION\r\n  2\r\nHEADER\r\n  9\r\n$ACADVER\r\n  1\r\nAC1032\r\n"
            " 10\r\n1.0\r\n 20\r\n0.1\r\n 30\r\n-2.5e-07\r\n 70\r\n-5\r\n290\r\n1\r\n"
            "1001\r\nZEPK\r\n1071\r\n123456789\r\n 40\r\n3.0\r\n330\r\n1F\r\n");

  GroupWriter lf(LineEnd::Lf);
  lf.text(0, "EOF");
  lf.real(1040, -0.0);
  lf.real(50, 1e300);
  EXPECT_EQ(lf.release(), "  0\nEOF\n1040\n-0.0\n 50\n1e+300\n");
}

TEST(Writer, RefusesWhatCannotBeWritten) {
  const struct {
    bool (*write)(GroupWriter&);
    const char* error;
  } cases[] = {
      {[](GroupWriter& w) { return w.text(1, "two\nlines"); }, "group 1: a line break cannot be written in a text value"},
      {[](GroupWriter& w) { return w.text(1000, "cr\r"); }, "group 1000: a line break cannot be written in a text value"},
      {[](GroupWriter& w) { return w.real(10, NAN); }, "group 10: a real number that is not finite cannot be written"},
      {[](GroupWriter& w) { return w.real(40, INFINITY); }, "group 40: a real number that is not finite cannot be written"},
      {[](GroupWriter& w) { return w.integer(70, 40000); }, "group 70: 40000 is out of range for a 16-bit integer"},
      {[](GroupWriter& w) { return w.integer(90, 1LL << 31); }, "group 90: 2147483648 is out of range for a 32-bit integer"},
      {[](GroupWriter& w) { return w.integer(290, 2); }, "group 290: 2 is out of range for a boolean (0 or 1)"},
      {[](GroupWriter& w) { return w.text(10, "1.5"); }, "group 10: text cannot be written where a real number belongs"},
      {[](GroupWriter& w) { return w.real(70, 1.0); }, "group 70: a real number cannot be written where a 16-bit integer belongs"},
      {[](GroupWriter& w) { return w.integer(8, 1); }, "group 8: an integer cannot be written where a string belongs"},
      {[](GroupWriter& w) { return w.text(-3, "x"); }, "group -3: a negative code belongs to entity lists, not to files"},
  };
  for (const auto& c : cases) {
    GroupWriter w;
    w.text(0, "LINE");
    EXPECT_FALSE(c.write(w));
    EXPECT_EQ(w.error(), c.error);
    // The refused group is not written, and nothing after the first refusal is.
    EXPECT_FALSE(w.text(8, "0"));
    EXPECT_FALSE(w.real(10, 1.0));
    EXPECT_EQ(w.error(), c.error);
    EXPECT_EQ(w.bytes(), "  0\r\nLINE\r\n");
  }
}

uint64_t bits(double d) {
  uint64_t b;
  std::memcpy(&b, &d, sizeof b);
  return b;
}

// What is written reads back as it was: codes, kinds, text byte for byte,
// reals bit for bit.
TEST(Writer, RoundTripThroughTheReader) {
  std::vector<Group> groups = {
      {0, std::string("SECTION")}, {2, std::string("HEADER")}, {9, std::string("$ACADVER")},
      {1, std::string("AC1032")},  {0, std::string("ENDSEC")},  {0, std::string("SECTION")},
      {2, std::string("ENTITIES")}, {0, std::string("TEXT")}, {8, std::string("地形 层")},
      {1, std::string("  leading and trailing  ")}, {1, std::string("")}, {1, std::string("tab\there ^J")},
      {1, std::string("😀 \xE2\x80\x8B")}, {310, std::string("00FFA0")}, {160, std::int64_t{-9007199254740993LL}},
      {62, std::int64_t{-32768}}, {420, std::int64_t{0x00FFFFFF}}, {291, std::int64_t{0}}, {1071, std::int64_t{-7}},
  };
  std::mt19937_64 rng(7);
  const double specials[] = {0.0, -0.0, 0.1, 1.0 / 3.0, 2.0 / 3.0, 1e300, -1e-300, 5e-324, DBL_MAX, -DBL_MAX,
                             DBL_MIN, 123456789.123456789, 6378137.0, 298.257223563, 0.1 + 0.2, M_PI};
  for (double d : specials) groups.push_back({10, d});
  for (int i = 0; i < 2000; ++i) {
    double d;
    const uint64_t b = rng();
    std::memcpy(&d, &b, sizeof d);
    if (!std::isfinite(d)) continue;
    groups.push_back({1010 + i % 50, d});
  }
  for (int i = 0; i < 200; ++i) groups.push_back({20, std::uniform_real_distribution<double>(-1e7, 1e7)(rng)});
  groups.push_back({0, std::string("ENDSEC")});
  groups.push_back({0, std::string("EOF")});

  for (LineEnd eol : {LineEnd::CrLf, LineEnd::Lf}) {
    GroupWriter w(eol);
    for (const Group& g : groups) w.group(g);
    ASSERT_TRUE(w.ok()) << w.error();
    const ReadResult r = readGroups(w.bytes());
    ASSERT_TRUE(r.ok) << r.error;
    EXPECT_TRUE(r.warnings.empty());
    ASSERT_EQ(r.groups.size(), groups.size());
    for (size_t i = 0; i < groups.size(); ++i) {
      ASSERT_EQ(r.groups[i], groups[i]) << i;
      EXPECT_EQ(r.groups[i].line, static_cast<int>(2 * i + 1));
      if (groups[i].isReal()) {
        ASSERT_EQ(bits(r.groups[i].real()), bits(groups[i].real())) << groups[i].real();
      }
    }
    EXPECT_TRUE(splitSections(r.groups).ok);
  }
}

// ---------------------------------------------------------------- files

class AtomicWrite : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string tmpl = (fs::temp_directory_path() / "zepk-dxf-XXXXXX").string();
    ASSERT_NE(::mkdtemp(tmpl.data()), nullptr);
    dir_ = tmpl;
  }
  void TearDown() override {
    std::error_code ec;
    fs::permissions(dir_, fs::perms::owner_all, fs::perm_options::add, ec);
    fs::remove_all(dir_, ec);
  }
  static std::string slurp(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
  }
  // Names in the folder, to see that no temporary file stays.
  std::vector<std::string> names(const fs::path& folder = {}) const {
    std::vector<std::string> out;
    for (const auto& e : fs::directory_iterator(folder.empty() ? dir_ : folder)) out.push_back(e.path().filename().string());
    std::sort(out.begin(), out.end());
    return out;
  }
  fs::path dir_;
};

TEST_F(AtomicWrite, CreatesAndReplaces) {
  const std::string path = (dir_ / "site.dxf").string();
  std::string error;
  ASSERT_TRUE(writeFileAtomically(path, "first", &error)) << error;
  EXPECT_EQ(slurp(path), "first");
  fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  const std::string big(3 << 20, 'x');
  ASSERT_TRUE(writeFileAtomically(path, big, &error)) << error;
  EXPECT_EQ(slurp(path), big);
  EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  ASSERT_TRUE(writeFileAtomically(path, "", &error)) << error;
  EXPECT_EQ(fs::file_size(path), 0u);

  // A link stays a link; the file it names is replaced.
  fs::create_directory(dir_ / "real");
  fs::create_symlink("real/plan.dxf", dir_ / "link.dxf");
  ASSERT_TRUE(writeFileAtomically((dir_ / "real" / "plan.dxf").string(), "old", &error)) << error;
  ASSERT_TRUE(writeFileAtomically((dir_ / "link.dxf").string(), "new", &error)) << error;
  EXPECT_TRUE(fs::is_symlink(dir_ / "link.dxf"));
  EXPECT_EQ(slurp(dir_ / "real" / "plan.dxf"), "new");
  fs::create_symlink("real/later.dxf", dir_ / "dangling.dxf");
  ASSERT_TRUE(writeFileAtomically((dir_ / "dangling.dxf").string(), "made", &error)) << error;
  EXPECT_TRUE(fs::is_symlink(dir_ / "dangling.dxf"));
  EXPECT_EQ(slurp(dir_ / "real" / "later.dxf"), "made");

  // A name as long as names may be still leaves room for the temporary one.
  const std::string longName = std::string(251, 'n') + ".dxf";
  ASSERT_TRUE(writeFileAtomically((dir_ / longName).string(), "long", &error)) << error;
  EXPECT_EQ(slurp(dir_ / longName), "long");
  EXPECT_EQ(names(), (std::vector<std::string>{"dangling.dxf", "link.dxf", longName, "real", "site.dxf"}));
  EXPECT_EQ(names(dir_ / "real"), (std::vector<std::string>{"later.dxf", "plan.dxf"}));
}

TEST_F(AtomicWrite, FailureLeavesWhatWasThere) {
  // A folder where the file should go cannot be replaced.
  fs::create_directory(dir_ / "drawing.dxf");
  std::ofstream(dir_ / "drawing.dxf" / "inside.txt") << "keep";
  std::string error;
  const std::string target = (dir_ / "drawing.dxf").string();
  EXPECT_FALSE(writeFileAtomically(target, "data", &error));
  EXPECT_EQ(error, "cannot write \"" + target + "\": it is a folder");
  EXPECT_EQ(slurp(dir_ / "drawing.dxf" / "inside.txt"), "keep");

  // A folder that does not exist.
  const std::string missing = (dir_ / "no" / "such.dxf").string();
  EXPECT_FALSE(writeFileAtomically(missing, "data", &error));
  EXPECT_EQ(error, "cannot write \"" + missing + "\": No such file or directory");
  EXPECT_EQ(names(), std::vector<std::string>{"drawing.dxf"});

  // A folder that cannot be written (meaningless as root, who may write anywhere).
  if (::geteuid() != 0) {
    const std::string path = (dir_ / "old.dxf").string();
    ASSERT_TRUE(writeFileAtomically(path, "old", &error)) << error;
    fs::permissions(dir_, fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_FALSE(writeFileAtomically(path, "new", &error));
    EXPECT_NE(error.find("Permission denied"), std::string::npos) << error;
    fs::permissions(dir_, fs::perms::owner_all);
    EXPECT_EQ(slurp(path), "old");
    EXPECT_EQ(names(), (std::vector<std::string>{"drawing.dxf", "old.dxf"}));
  }
}

// Bytes made while the file is written: a writer handing its groups over a
// piece at a time makes the same file as one holding them all, and a
// writer that fails leaves the old file as it was, with its own message.
TEST_F(AtomicWrite, StreamedGroupsMakeTheSameFile) {
  auto groups = [](GroupWriter& w, int count) {
    for (int i = 0; i < count; ++i) {
      w.text(0, "LINE");
      w.text(8, "road edge");
      w.point(10, i * 0.1, -i / 3.0, 1e300);
      w.integer(90, i);
    }
    return w.text(0, "EOF");
  };
  GroupWriter whole;
  groups(whole, 40000);  // some megabytes: several pieces
  ASSERT_GT(whole.bytes().size(), 3u << 20);

  const std::string path = (dir_ / "plan.dxf").string();
  std::string error;
  int pieces = 0;
  ASSERT_TRUE(writeFileAtomically(
      path,
      [&](const std::function<bool(std::string_view)>& append) {
        GroupWriter w;
        w.setSink([&](std::string_view piece) {
          ++pieces;
          return append(piece);
        });
        groups(w, 40000);
        return w.flush() && w.ok() && w.bytes().empty();
      },
      &error))
      << error;
  EXPECT_GT(pieces, 2);
  EXPECT_EQ(slurp(path), whole.bytes());

  // A writer that stops half way: the old file stays, no temporary file is
  // left, and the message is the writer's.
  auto refusing = [&](const std::function<bool(std::string_view)>& append) {
    GroupWriter w;
    w.setSink(append);
    groups(w, 40000);
    w.text(1, "two\nlines");
    w.flush();
    error = w.error();
    return w.ok();
  };
  EXPECT_FALSE(writeFileAtomically(path, refusing, &error));
  EXPECT_EQ(error, "group 1: a line break cannot be written in a text value");
  EXPECT_EQ(slurp(path), whole.bytes());
  EXPECT_EQ(names(), std::vector<std::string>{"plan.dxf"});

  // Where both the bytes and the path fail, the bytes' fault is told, as
  // when the bytes are made before the file is opened; the path's fault
  // when the bytes are good.
  const std::string missing = (dir_ / "no" / "such.dxf").string();
  EXPECT_FALSE(writeFileAtomically(missing, refusing, &error));
  EXPECT_EQ(error, "group 1: a line break cannot be written in a text value");
  EXPECT_FALSE(writeFileAtomically(
      missing, [](const std::function<bool(std::string_view)>& append) { return append("0\nEOF\n"); }, &error));
  EXPECT_EQ(error, "cannot write \"" + missing + "\": No such file or directory");

  // A sink that fails stops the writer.
  GroupWriter w;
  w.setSink([](std::string_view) { return false; });
  groups(w, 40000);
  EXPECT_TRUE(w.sinkFailed());
  EXPECT_FALSE(w.ok());
}

// ---------------------------------------------------------------- an independent reader

// Runs Debian's Python with ezdxf; false when either is missing.
bool ezdxfAvailable() {
  return std::system("/usr/bin/python3 -c 'import ezdxf' >/dev/null 2>&1") == 0;
}

std::string run(const std::string& command) {
  std::string out;
  if (FILE* p = ::popen(command.c_str(), "r")) {
    char buf[4096];
    size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
    ::pclose(p);
  }
  return out;
}

TEST_F(AtomicWrite, AnotherReaderReadsWhatIsWritten) {
  if (!ezdxfAvailable()) GTEST_SKIP() << "python3-ezdxf is not installed";
  GroupWriter w;
  w.text(999, "written by the ZEPK tests");
  w.text(0, "SECTION");
  w.text(2, "HEADER");
  w.text(9, "$ACADVER");
  w.text(1, "AC1032");
  w.text(9, "$HANDSEED");
  w.text(5, "FF");
  w.text(0, "ENDSEC");
  w.text(0, "SECTION");
  w.text(2, "ENTITIES");
  w.text(0, "LINE");
  w.text(5, "A1");
  w.text(100, "AcDbEntity");
  w.text(8, "测量");
  w.text(100, "AcDbLine");
  w.point(10, 0.1, 1.0 / 3.0, 0.0);
  w.point(11, 1e6 + 0.5, -2.5e-7, 3.0);
  w.text(0, "TEXT");
  w.text(5, "A2");
  w.text(100, "AcDbEntity");
  w.text(8, "0");
  w.text(100, "AcDbText");
  w.point(10, 1.0, 2.0, 0.0);
  w.real(40, 2.5);
  w.text(1, "高程 23.4m ∅");
  w.text(100, "AcDbText");
  w.text(0, "ENDSEC");
  w.text(0, "EOF");
  ASSERT_TRUE(w.ok()) << w.error();
  const std::string path = (dir_ / "oracle.dxf").string();
  std::string error;
  ASSERT_TRUE(writeFileAtomically(path, w.bytes(), &error)) << error;

  const std::string script =
      "import sys, ezdxf\n"
      "doc = ezdxf.readfile(sys.argv[1])\n"
      "print(doc.dxfversion)\n"
      "for e in doc.modelspace():\n"
      "    if e.dxftype() == 'LINE':\n"
      "        print('LINE', e.dxf.layer, repr(tuple(e.dxf.start)), repr(tuple(e.dxf.end)))\n"
      "    elif e.dxftype() == 'TEXT':\n"
      "        print('TEXT', e.dxf.layer, e.dxf.text, repr(e.dxf.height))\n";
  std::ofstream(dir_ / "check.py") << script;
  const std::string out =
      run("PYTHONIOENCODING=utf-8 /usr/bin/python3 '" + (dir_ / "check.py").string() + "' '" + path + "' 2>&1");
  EXPECT_EQ(out,
            "AC1032\n"
            "LINE 测量 (0.1, 0.3333333333333333, 0.0) (1000000.5, -2.5e-07, 3.0)\n"
            "TEXT 0 高程 23.4m ∅ 2.5\n");
}

}  // namespace
}  // namespace zepk::dxf
