// Every drawing of the DXF corpus (made by ezdxf at test time, one per
// release from R12 to R2018) read and saved, then judged by programs
// nobody here wrote: compare.py --strict against the original and
// audit.py on the saved file. A second save of the saved drawing must give
// the same bytes.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "host/db/dxffile.h"

namespace {

std::string corpusScripts() {
  const char* data = std::getenv("ZEPK_TEST_DATA");
  return std::string(data ? data : ".") + "/../dxf/corpus";
}

// Runs a command, giving its exit status and what it printed.
int run(const std::string& command, std::string* output) {
  output->clear();
  FILE* p = popen((command + " 2>&1").c_str(), "r");
  if (!p) return -1;
  std::array<char, 4096> buf;
  size_t n;
  while ((n = fread(buf.data(), 1, buf.size(), p)) > 0) output->append(buf.data(), n);
  int status = pclose(p);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string shellQuoted(const std::string& s) { return "'" + s + "'"; }

std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

class DxfCorpus : public ::testing::TestWithParam<const char*> {
 protected:
  static void SetUpTestSuite() {
    char tmpl[] = "/tmp/zepk-dxf-corpus-XXXXXX";
    if (!mkdtemp(tmpl)) return;
    dir_ = tmpl;
    std::string out;
    status_ = run("/usr/bin/python3 " + shellQuoted(corpusScripts() + "/make_corpus.py") + " " + shellQuoted(dir_ + "/corpus"),
                  &out);
    made_ = out;
  }
  static void TearDownTestSuite() {
    if (!dir_.empty()) {
      std::string out;
      run("rm -rf " + shellQuoted(dir_), &out);
    }
  }
  static std::string dir_;
  static std::string made_;
  static int status_;
};
std::string DxfCorpus::dir_;
std::string DxfCorpus::made_;
int DxfCorpus::status_ = -1;

// Differences compare.py reports that are known: first what saving as
// AC1032 in UTF-8 does to a drawing of an older release, then what the
// classes of the drawing do not keep yet. Anything else fails.
struct Known {
  const char* files;    // the corpus files it applies to ("" all; else names containing any of "a|b")
  const char* pattern;  // a regular expression on the reported line
  const char* why;
};

const Known kKnown[] = {
    // The file is saved as AC1032, whatever release it came in.
    {"", R"(^  HEADER \$ACADVER: 'AC10(09|15|18|24)' != 'AC1032'$)", "saved as AC1032"},
    // From R2013 on, ACIS data is binary in the ACDSDATA section; the text
    // form of older releases is written as it was, which readers of AC1032
    // do not look at.
    {"r2000|r2004|r2010", R"(^  LAYOUT 'Model' (REGION|3DSOLID) #\w+ layer '0': ACIS data( \(binary\))?: only in)",
     "ACIS text data in an AC1032 file"},
    // An R12 drawing gains what AC1032 lists: class records for its layouts
    // and dictionaries, and a flag (74) on each linetype element; ezdxf
    // also counts an R12 linetype's handle among its pattern groups.
    {"r12", R"(^  CLASSES (ACDBDICTIONARYWDFLT|ACDBPLACEHOLDER|LAYOUT) \(\w+\): only in B$)", "R12 has no CLASSES"},
    {"r12", R"(^  TABLE LTYPE '[^']+' LTYPE #\w+ name '[^']+': pattern tags: \d+ items in A, \d+ in B; first difference at \[0\]: \(5, '\w+'\) in A, \(72, 65\) in B$)",
     "R12 linetype patterns"},
    // Dimension variables that came after R12: an R12 style does not have
    // them, and an AC1032 file states them with the host's defaults, where
    // ezdxf fills in defaults of its own when reading the R12 file.
    {"r12", R"(^  TABLE DIMSTYLE '[^']+' DIMSTYLE #\w+ name '[^']+': attribute (dimazin|dimadec|dimdec|dimtdec|dimalttd|dimdsep|dimtolj|dimtzin): )",
     "R12 dimension styles"},
    // Classes that do not keep everything yet.
    {"", R"(^  TABLE VPORT '\*Active' VPORT #\w+ name '\*Active': attribute (ucs_(origin|xaxis|yaxis|ortho_type): only in B|ucs_vp: 0 != 1))",
     "AcDbViewportTableRecord: UCS groups written that the file did not have"},
};

const Known* known(const std::string& line, const std::string& file) {
  for (const Known& k : kKnown) {
    bool applies = !*k.files;
    std::istringstream names(k.files);
    for (std::string n; !applies && std::getline(names, n, '|');) applies = file.find(n) != std::string::npos;
    if (applies && std::regex_search(line, std::regex(k.pattern))) return &k;
  }
  return nullptr;
}

TEST_P(DxfCorpus, ReadSavedAndJudgedByEzdxf) {
  if (status_ != 0) GTEST_SKIP() << "the corpus could not be made (is python3-ezdxf installed?): " << made_;
  const std::string name = GetParam();
  const std::string original = dir_ + "/corpus/" + name, saved = dir_ + "/saved_" + name;

  std::unique_ptr<AcDbDatabase> db;
  std::string error;
  std::vector<std::string> warnings;
  zepk::db::DxfReadOptions options;
  options.warnings = &warnings;
  ASSERT_TRUE(zepk::db::readDxf(original, &db, &error, options)) << error;
  for (const std::string& w : warnings) std::printf("  warning: %s\n", w.c_str());
  ASSERT_TRUE(zepk::db::writeDxf(db.get(), saved, &error)) << error;

  std::string report;
  int cmp = run("/usr/bin/python3 " + shellQuoted(corpusScripts() + "/compare.py") + " " + shellQuoted(original) + " " +
                    shellQuoted(saved) + " --strict --max-report 0",
                &report);
  ASSERT_NE(cmp, 2) << report;
  std::vector<std::string> unexpected;
  std::map<std::string, int> seen;
  std::istringstream lines(report);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("  ", 0) != 0) continue;  // differences are indented
    if (const Known* k = known(line, name)) ++seen[k->why];
    else unexpected.push_back(line);
  }
  for (const auto& [why, n] : seen) std::printf("  known: %s (%d)\n", why.c_str(), n);
  std::string shown;
  for (const std::string& u : unexpected) shown += u + "\n";
  EXPECT_TRUE(unexpected.empty()) << unexpected.size() << " difference(s):\n" << shown;

  std::string audit;
  EXPECT_EQ(run("/usr/bin/python3 " + shellQuoted(corpusScripts() + "/audit.py") + " " + shellQuoted(saved), &audit), 0) << audit;

  // What was saved reads back to the same file.
  std::unique_ptr<AcDbDatabase> again;
  ASSERT_TRUE(zepk::db::readDxf(saved, &again, &error)) << error;
  std::string bytes;
  ASSERT_TRUE(zepk::db::writeDxfBytes(again.get(), &bytes, &error)) << error;
  EXPECT_TRUE(bytes == slurp(saved)) << "a second save differs from the first";
}

INSTANTIATE_TEST_SUITE_P(Releases, DxfCorpus,
                         ::testing::Values("corpus_r12.dxf", "corpus_r2000.dxf", "corpus_r2004_cp936.dxf",
                                           "corpus_r2010.dxf", "corpus_r2018.dxf"),
                         [](const auto& info) {
                           std::string n = info.param;
                           return n.substr(7, n.size() - 11);
                         });

}  // namespace
