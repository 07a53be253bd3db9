#include "host/dxf/reader.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

#include "host/dxf/structure.h"
#include "host/system/codepage.h"

namespace zepk::dxf {
namespace {

using Pairs = std::vector<std::pair<int, std::string>>;

// A file of the pairs, each code right-aligned as writers do.
std::string dxf(const Pairs& pairs, std::string_view eol = "\n") {
  std::string out;
  for (const auto& [code, value] : pairs) {
    std::string c = std::to_string(code);
    out += std::string(c.size() < 3 ? 3 - c.size() : 0, ' ') + c;
    out += eol;
    out += value;
    out += eol;
  }
  return out;
}

std::string gbk(std::u16string_view s) { return sys::toCodePage(s, 936); }

Pairs header(const std::string& version, const std::string& codePage) {
  Pairs p = {{0, "SECTION"}, {2, "HEADER"}, {9, "$ACADVER"}, {1, version}};
  if (!codePage.empty()) p.insert(p.end(), {{9, "$DWGCODEPAGE"}, {3, codePage}});
  p.insert(p.end(), {{0, "ENDSEC"}});
  return p;
}

Pairs operator+(Pairs a, const Pairs& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Text values with a given code, in file order.
std::vector<std::string> texts(const ReadResult& r, int code) {
  std::vector<std::string> out;
  for (const Group& g : r.groups)
    if (g.code == code) out.push_back(g.text());
  return out;
}

// ---------------------------------------------------------------- text

TEST(ReadText, R12FileInCodePage936) {
  const Pairs tables = {{0, "SECTION"}, {2, "TABLES"}, {0, "TABLE"},   {2, "LAYER"},
                        {70, "2"},      {0, "LAYER"},  {2, gbk(u"地形")}, {70, "0"},
                        {62, "7"},      {6, "CONTINUOUS"}, {0, "LAYER"}, {2, gbk(u"控制点")},
                        {70, "0"},      {62, "1"},     {6, "CONTINUOUS"}, {0, "ENDTAB"},
                        {0, "ENDSEC"}};
  const Pairs entities = {{0, "SECTION"}, {2, "ENTITIES"}, {0, "TEXT"}, {8, gbk(u"控制点")},
                          {10, "1.5"},    {20, "2.5"},     {30, "0.0"}, {40, "2.0"},
                          {1, gbk(u"点号：K1，高程 23.4m")}, {0, "ENDSEC"}, {0, "EOF"}};
  const ReadResult r = readGroups(dxf(header("AC1009", "ANSI_936") + tables + entities, "\r\n"));
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.version, "AC1009");
  EXPECT_EQ(r.codePage, 936);
  EXPECT_TRUE(r.warnings.empty());
  EXPECT_EQ(texts(r, 2), (std::vector<std::string>{"HEADER", "TABLES", "LAYER", "地形", "控制点", "ENTITIES"}));
  EXPECT_EQ(texts(r, 8), std::vector<std::string>{"控制点"});
  EXPECT_EQ(texts(r, 1), (std::vector<std::string>{"AC1009", "点号：K1，高程 23.4m"}));
}

TEST(ReadText, FilesFrom2007OnAreUtf8WhateverTheCodePage) {
  const Pairs body = {{0, "SECTION"}, {2, "ENTITIES"}, {0, "TEXT"}, {8, "测量"}, {1, "café ∅ 😀"},
                      {0, "ENDSEC"},  {0, "EOF"}};
  const ReadResult r = readGroups(dxf(header("AC1032", "ANSI_1252") + body));
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.codePage, kUtf8);
  EXPECT_EQ(texts(r, 8), std::vector<std::string>{"测量"});
  EXPECT_EQ(texts(r, 1).back(), "café ∅ 😀");

  // A 2007 file that holds text in its legacy code page keeps that text.
  const Pairs legacy = {{0, "SECTION"}, {2, "ENTITIES"}, {0, "TEXT"}, {8, gbk(u"测量")}, {1, "ok ✓"},
                        {0, "ENDSEC"},  {0, "EOF"}};
  const ReadResult m = readGroups(dxf(header("AC1021", "ANSI_936") + legacy));
  ASSERT_TRUE(m.ok) << m.error;
  EXPECT_EQ(texts(m, 8), std::vector<std::string>{"测量"});
  EXPECT_EQ(texts(m, 1).back(), "ok ✓");
  ASSERT_EQ(m.warnings.size(), 1u);
  EXPECT_EQ(m.warnings[0], "line 22: 1 text is not UTF-8; read in code page 936");
}

// The list a drawing is read through holds the same groups as readGroups
// gives, its text where it stands in the file unless decoding changed it;
// a failure is the same message.
TEST(ReadText, GroupListViewsTheFileAndKeepsDecodedText) {
  const Pairs body = {{0, "SECTION"}, {2, "ENTITIES"}, {0, "TEXT"}, {8, gbk(u"测量")}, {1, "plain"},
                      {1, "\\U+00D8 12"}, {10, "1.5"}, {70, "65535"}, {0, "ENDSEC"}, {0, "EOF"}};
  const std::string file = dxf(header("AC1015", "ANSI_936") + body, "\r\n");
  const ReadResult copies = readGroups(file);
  GroupList list = readGroupList(file);
  ASSERT_TRUE(list.ok) << list.error;
  ASSERT_EQ(list.groups.size(), copies.groups.size());
  for (size_t i = 0; i < list.groups.size(); ++i) {
    EXPECT_EQ(list.groups[i].toGroup(), copies.groups[i]) << i;
    EXPECT_EQ(list.groups[i].line, copies.groups[i].line) << i;
  }
  EXPECT_EQ(list.version, "AC1015");
  EXPECT_EQ(list.codePage, 936);
  auto inFile = [&](std::string_view v) { return v.data() >= file.data() && v.data() < file.data() + file.size(); };
  size_t decoded = 0;
  for (const GroupRef& g : list.groups) {
    if (!g.isText()) continue;
    if (g.text() == "测量" || g.text() == "Ø 12") {
      EXPECT_FALSE(inFile(g.text()));
      ++decoded;
    } else {
      EXPECT_TRUE(inFile(g.text())) << g.text();
    }
  }
  EXPECT_EQ(decoded, 2u);
  // Moved, the list still views its decoded text.
  const GroupList moved = std::move(list);
  EXPECT_EQ(texts(copies, 8), std::vector<std::string>{std::string(moved.groups[10].text())});
  EXPECT_EQ(splitSections(moved.groups).sections.size(), 2u);

  const std::string bad = dxf({{0, "SECTION"}, {10, "x1"}});
  const GroupList failed = readGroupList(bad);
  EXPECT_FALSE(failed.ok);
  EXPECT_EQ(failed.error, readGroups(bad).error);
  EXPECT_TRUE(failed.groups.empty());
}

TEST(ReadText, OldFilesThatNameNoCodePage) {
  const Pairs body = {{0, "SECTION"}, {2, "ENTITIES"}, {0, "TEXT"}, {1, "Ø 12 — 测"}, {0, "ENDSEC"}, {0, "EOF"}};
  // Well-formed UTF-8: taken as UTF-8.
  ReadResult r = readGroups(dxf(body));
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.codePage, kUtf8);
  EXPECT_EQ(texts(r, 1), std::vector<std::string>{"Ø 12 — 测"});
  EXPECT_EQ(r.version, "");

  // Otherwise the fallback code page: 1252 unless the caller names another.
  const Pairs western = {{0, "TEXT"}, {1, "caf\xE9 \x80"}, {0, "EOF"}};
  r = readGroups(dxf(header("AC1015", "") + western));
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.codePage, 1252);
  EXPECT_EQ(texts(r, 1).back(), "café €");

  const Pairs chinese = {{0, "TEXT"}, {1, gbk(u"宗地")}, {0, "EOF"}};
  r = readGroups(dxf(chinese), ReadOptions{.fallbackCodePage = 936});
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(texts(r, 1), std::vector<std::string>{"宗地"});

  // A name that is not known: a warning, then the same rules.
  r = readGroups(dxf(header("AC1015", "ANSI_31337") + western));
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.codePage, 1252);
  EXPECT_EQ(texts(r, 1).back(), "café €");
  ASSERT_EQ(r.warnings.size(), 1u);
  EXPECT_EQ(r.warnings[0], "line 12: the code page \"ANSI_31337\" is not known here");
}

TEST(ReadText, EscapesInEveryVersion) {
  const Pairs body = {{0, "TEXT"}, {1, "\\U+6D4B\\U+8BD5 \\M+5B2E2 \\U+D83D\\U+DE00"}, {1000, "\\U+00B0"}, {0, "EOF"}};
  for (std::string version : {"AC1009", "AC1015", "AC1032"}) {
    const ReadResult r = readGroups(dxf(header(version, "ANSI_1252") + body));
    ASSERT_TRUE(r.ok) << r.error;
    EXPECT_EQ(texts(r, 1).back(), "测试 测 😀") << version;
    EXPECT_EQ(texts(r, 1000), std::vector<std::string>{"°"}) << version;
  }
  // Paths and MTEXT codes with backslashes stay as they are.
  const ReadResult r = readGroups(dxf({{1, "C:\\Users\\P\\data.dxf"}, {1, "\\PLine\\~two"}}));
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(texts(r, 1), (std::vector<std::string>{"C:\\Users\\P\\data.dxf", "\\PLine\\~two"}));
}

// ---------------------------------------------------------------- lines and values

TEST(ReadLines, LineEndsAndSpaces) {
  const std::string file =
      "\xEF\xBB\xBF  0\r\nSECTION\r\n2  \r\nENTITIES\r\n\t0\t\r\nLINE\r\n  8\r\n  Layer 1  \r\n"
      " 10\r\n   12.5\r\n 20 \r\n-3.25  \r\n 70\r\n  +4\r\n  0\r\nENDSEC\r\n  0\r\nEOF\r\n";
  const ReadResult r = readGroups(file);
  ASSERT_TRUE(r.ok) << r.error;
  ASSERT_EQ(r.groups.size(), 9u);
  EXPECT_TRUE(r.groups[0].is(0, "SECTION"));
  EXPECT_TRUE(r.groups[1].is(2, "ENTITIES"));
  EXPECT_TRUE(r.groups[2].is(0, "LINE"));
  EXPECT_EQ(r.groups[3].text(), "  Layer 1  ");  // text keeps its spaces
  EXPECT_EQ(r.groups[4].real(), 12.5);
  EXPECT_EQ(r.groups[5].real(), -3.25);
  EXPECT_EQ(r.groups[6].integer(), 4);
  EXPECT_EQ(r.groups[4].line, 9);
  EXPECT_EQ(r.groups[8].line, 17);

  // Old Macintosh files end lines in "\r" alone; files may lack the last line end.
  const ReadResult mac = readGroups("0\rSECTION\r2\rENTITIES\r0\rENDSEC\r0\rEOF");
  ASSERT_TRUE(mac.ok) << mac.error;
  ASSERT_EQ(mac.groups.size(), 4u);
  EXPECT_TRUE(mac.groups[3].is(0, "EOF"));
  EXPECT_EQ(mac.groups[3].line, 7);

  // An empty value line is an empty text.
  const ReadResult empty = readGroups("  1\n\n  0\nEOF\n");
  ASSERT_TRUE(empty.ok) << empty.error;
  EXPECT_EQ(empty.groups[0].text(), "");
}

TEST(ReadLines, ValuesByTheirCodes) {
  const ReadResult r = readGroups(dxf({{5, "1F"},
                                       {10, "1e3"},
                                       {40, ".5"},
                                       {50, "-0.0"},
                                       {62, "256"},
                                       {70, "1.0"},
                                       {70, "65535"},
                                       {90, "4294967295"},
                                       {160, "9007199254740993"},
                                       {290, "1"},
                                       {291, "7"},
                                       {310, "0A1B"},
                                       {330, "2F"},
                                       {150, "whatever"},
                                       {1071, "-2147483648"},
                                       {1040, "0.1"}}));
  ASSERT_TRUE(r.ok) << r.error;
  const auto& g = r.groups;
  EXPECT_EQ(g[0].text(), "1F");
  EXPECT_EQ(g[1].real(), 1000.0);
  EXPECT_EQ(g[2].real(), 0.5);
  EXPECT_TRUE(g[3].isReal() && std::signbit(g[3].real()));
  EXPECT_EQ(g[4].integer(), 256);
  EXPECT_EQ(g[5].integer(), 1);
  EXPECT_EQ(g[6].integer(), -1);  // unsigned forms read as the same bits
  EXPECT_EQ(g[7].integer(), -1);
  EXPECT_EQ(g[8].integer(), 9007199254740993LL);  // beyond a double's precision
  EXPECT_EQ(g[9].integer(), 1);
  EXPECT_EQ(g[10].integer(), 1);
  EXPECT_EQ(g[11].text(), "0A1B");
  EXPECT_EQ(g[12].text(), "2F");
  EXPECT_EQ(g[13].text(), "whatever");
  EXPECT_EQ(g[14].integer(), -2147483648LL);
  EXPECT_EQ(g[15].real(), 0.1);
}

TEST(ReadLines, StopsAtEof) {
  ReadResult r = readGroups("  0\nEOF\n\n\x1A");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.groups.size(), 1u);
  EXPECT_TRUE(r.warnings.empty());

  r = readGroups("  0\nEOF\nsomething else\nnot = a group\n");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.groups.size(), 1u);
  EXPECT_EQ(r.warnings, std::vector<std::string>{"line 3: text after 0/EOF is ignored"});

  // Blank lines after the last group, with or without an EOF.
  r = readGroups("  0\nSECTION\n  2\nENTITIES\n  0\nENDSEC\n\n\n  \n");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.groups.size(), 3u);
}

// ---------------------------------------------------------------- faults

TEST(ReadFaults, MessagesNameTheLine) {
  const struct {
    std::string file;
    int line;
    std::string error;
  } cases[] = {
      {"  0\nLINE\n 10\nabc\n", 4, "line 4: expected a real number for group 10, found \"abc\""},
      {"  0\nLINE\n 10\n1,5\n", 4, "line 4: expected a real number for group 10, found \"1,5\""},
      {"  0\nLINE\n 10\n1.#IND\n", 4, "line 4: expected a real number for group 10, found \"1.#IND\""},
      {"  0\nLINE\n 10\nnan\n", 4, "line 4: expected a real number for group 10, found \"nan\""},
      {"  0\nLINE\n 10\n\n", 4, "line 4: expected a real number for group 10, found \"\""},
      {"  0\nLINE\n 70\n1.5\n", 4, "line 4: expected a 16-bit integer for group 70, found \"1.5\""},
      {"  0\nLINE\n 70\n70000\n", 4, "line 4: expected a 16-bit integer for group 70, found \"70000\""},
      {"  0\nLINE\n 90\n5000000000\n", 4, "line 4: expected a 32-bit integer for group 90, found \"5000000000\""},
      {" 290\nyes\n", 2, "line 2: expected a boolean (0 or 1) for group 290, found \"yes\""},
      {"  0\nLINE\nLINE\n  8\n", 3, "line 3: expected a group code, found \"LINE\""},
      {"  0\nLINE\n -1\n  8\n", 3, "line 3: expected a group code, found \" -1\""},
      {"  0\nLINE\n\n  8\n0\n", 3, "line 3: expected a group code, found \"\""},
      {"  0\nLINE\n  8\n", 4, "line 4: expected the value of group 8, found the end of the file"},
      {"  0\nLINE\n  8", 4, "line 4: expected the value of group 8, found the end of the file"},
      {"  0\nTEXT\n  1\n\xB2\xE2\n 10\n\xB2\xE2\n", 6, "line 6: expected a real number for group 10, found \"\\xB2\\xE2\"",},
      {"", 1, "line 1: the file is empty"},
      {"\n\r\n  \n", 1, "line 1: the file is empty"},
      {std::string("AutoCAD Binary DXF\r\n\x1A\0", 22) + "\x00\x00", 1,
       "line 1: this is a binary DXF file, which cannot be read; save the drawing as ASCII DXF"},
  };
  for (const auto& c : cases) {
    const ReadResult r = readGroups(c.file);
    EXPECT_FALSE(r.ok) << c.file;
    EXPECT_EQ(r.error, c.error);
    EXPECT_EQ(r.errorLine, c.line) << c.error;
    EXPECT_TRUE(r.groups.empty());
  }
  // Long values are cut in the message.
  const ReadResult r = readGroups(" 10\n" + std::string(200, 'x') + "\n");
  EXPECT_EQ(r.error, "line 2: expected a real number for group 10, found \"" + std::string(40, 'x') + "...\"");
}

// A valid file to damage.
std::string sampleFile() {
  const Pairs p = header("AC1015", "ANSI_936") +
                  Pairs{{0, "SECTION"}, {2, "TABLES"}, {0, "TABLE"}, {2, "LAYER"}, {70, "1"}, {0, "LAYER"},
                        {2, gbk(u"道路")}, {70, "0"}, {62, "3"}, {6, "CONTINUOUS"}, {0, "ENDTAB"}, {0, "ENDSEC"},
                        {0, "SECTION"}, {2, "ENTITIES"}, {0, "LINE"}, {5, "2A"}, {8, gbk(u"道路")}, {10, "100.25"},
                        {20, "-3.5e2"}, {30, "0.0"}, {11, "7"}, {21, "8"}, {31, "0"}, {0, "LWPOLYLINE"},
                        {8, "0"}, {90, "3"}, {70, "1"}, {10, "0"}, {20, "0"}, {42, "0.5"}, {10, "1"}, {20, "0"},
                        {10, "1"}, {20, "1"}, {0, "TEXT"}, {8, "0"}, {1, "\\U+6D4B " + gbk(u"里程")},
                        {10, "2"}, {20, "2"}, {40, "2.5"}, {1001, "ZEPK"}, {1000, "x"}, {1071, "12"},
                        {1040, "1.5"}, {0, "ENDSEC"}, {0, "EOF"}};
  return dxf(p, "\r\n");
}

std::vector<std::string> splitLines(const std::string& s) {
  std::vector<std::string> out;
  size_t start = 0;
  for (size_t nl; (nl = s.find('\n', start)) != std::string::npos; start = nl + 1) out.push_back(s.substr(start, nl + 1 - start));
  if (start < s.size()) out.push_back(s.substr(start));
  return out;
}

// Damaged files never crash or hang; each either reads or fails with a
// message that starts with the line it names, a line of the file.
TEST(ReadFaults, DamagedFilesReadOrFailWithALine) {
  const std::string good = sampleFile();
  {
    const ReadResult r = readGroups(good);
    ASSERT_TRUE(r.ok) << r.error;
    const Layout layout = splitSections(r.groups);
    ASSERT_TRUE(layout.ok) << layout.error;
  }
  std::mt19937 rng(20240611);
  auto pick = [&rng](size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(rng); };
  int failures = 0;
  for (int round = 0; round < 2000; ++round) {
    std::string bad = good;
    std::vector<std::string> lines = splitLines(good);
    switch (round % 5) {
      case 0:  // cut anywhere
        bad.resize(pick(good.size() + 1));
        break;
      case 1:  // flip a few bytes
        for (int k = 0; k < 1 + static_cast<int>(pick(4)); ++k) bad[pick(bad.size())] = static_cast<char>(pick(256));
        break;
      case 2:  // swap two lines
        std::swap(lines[pick(lines.size())], lines[pick(lines.size())]);
        bad.clear();
        for (const auto& l : lines) bad += l;
        break;
      case 3:  // drop a line
        lines.erase(lines.begin() + static_cast<long>(pick(lines.size())));
        bad.clear();
        for (const auto& l : lines) bad += l;
        break;
      case 4:  // a line twice
        {
          const size_t i = pick(lines.size());
          lines.insert(lines.begin() + static_cast<long>(i), lines[i]);
        }
        bad.clear();
        for (const auto& l : lines) bad += l;
        break;
    }
    const int lineCount = static_cast<int>(splitLines(bad).size());
    const ReadResult r = readGroups(bad);
    if (!r.ok) {
      ++failures;
      ASSERT_GE(r.errorLine, 1) << r.error;
      ASSERT_LE(r.errorLine, lineCount + 1) << r.error;
      ASSERT_EQ(r.error.rfind("line " + std::to_string(r.errorLine) + ": ", 0), 0u) << r.error;
      continue;
    }
    const Layout layout = splitSections(r.groups);
    if (!layout.ok) {
      ASSERT_GE(layout.errorLine, 1) << layout.error;
      ASSERT_LE(layout.errorLine, lineCount + 2) << layout.error;
      ASSERT_EQ(layout.error.rfind("line " + std::to_string(layout.errorLine) + ": ", 0), 0u) << layout.error;
    }
  }
  EXPECT_GT(failures, 200);  // the mutations do break files
}


// ---------------------------------------------------------------- large files

// A file large enough to be read in two halves at once: lines and points,
// pair i on lines 2i+1 (code) and 2i+2 (value).
Pairs largePairs() {
  Pairs p = {{0, "SECTION"}, {2, "ENTITIES"}};
  for (int i = 0; p.size() * 14 < (size_t{10} << 20); ++i) {
    p.insert(p.end(), {{0, "LINE"}, {8, "L" + std::to_string(i % 7)}, {10, std::to_string(i) + ".25"},
                       {20, "-" + std::to_string(i)}, {70, std::to_string(i % 3)}});
  }
  p.insert(p.end(), {{0, "ENDSEC"}, {0, "EOF"}});
  return p;
}

// The halves read as one reading does: every group in order with its line,
// the first fault in the file told wherever the halves meet, and what
// follows 0/EOF ignored.
TEST(ReadLarge, HalvesReadAsOne) {
  const Pairs pairs = largePairs();
  for (std::string_view eol : {"\n", "\r\n", "\r"}) {
    const std::string file = dxf(pairs, eol);  // the groups view it
    const GroupList list = readGroupList(file);
    ASSERT_TRUE(list.ok) << list.error;
    ASSERT_EQ(list.groups.size(), pairs.size());
    for (size_t i = 0; i < pairs.size(); i += 997) {
      const GroupRef& g = list.groups[i];
      ASSERT_EQ(g.code, pairs[i].first) << i;
      ASSERT_EQ(g.line, static_cast<int>(2 * i + 1)) << i;
      if (g.isText()) {
        ASSERT_EQ(g.text(), pairs[i].second) << i;
      }
      if (g.isReal()) {
        ASSERT_EQ(g.real(), std::stod(pairs[i].second)) << i;
      }
      if (g.isInteger()) {
        ASSERT_EQ(g.integer(), std::stoll(pairs[i].second)) << i;
      }
    }
    EXPECT_TRUE(list.warnings.empty());
  }
  // A pair whose value is no real, at a quarter, the middle (either side of
  // where the second half starts) and three quarters of the file.
  const size_t n = pairs.size();
  auto badAt = [&](size_t i) {
    while (pairs[i].first != 10) ++i;
    return i;
  };
  const size_t quarter = badAt(n / 4), middle = badAt(n / 2 - 5), later = badAt(n / 2 + 1), last = badAt(3 * n / 4);
  auto message = [](size_t i) {
    return "line " + std::to_string(2 * i + 2) + ": expected a real number for group 10, found \"x\"";
  };
  for (const std::vector<size_t>& bad : std::vector<std::vector<size_t>>{
           {quarter}, {middle}, {later}, {last}, {quarter, last}, {later, last}, {middle, later}}) {
    Pairs damaged = pairs;
    for (size_t i : bad) damaged[i].second = "x";
    const std::string file = dxf(damaged, "\r\n");
    const GroupList list = readGroupList(file);
    EXPECT_FALSE(list.ok);
    EXPECT_EQ(list.error, message(bad.front()));
    EXPECT_EQ(list.errorLine, static_cast<int>(2 * bad.front() + 2));
    EXPECT_TRUE(list.groups.empty());
  }
  // 0/EOF in the first half: the rest, faults and all, is ignored.
  {
    Pairs early(pairs.begin(), pairs.begin() + static_cast<long>(n / 3));
    early.push_back({0, "EOF"});
    std::string file = dxf(early) + "after the end\n";
    const size_t extra = (n - n / 3) * 2;
    for (size_t k = 0; k < extra; ++k) file += k % 2 ? " 10\n" : "not a number at all, nor a code\n";
    const GroupList list = readGroupList(file);
    ASSERT_TRUE(list.ok) << list.error;
    EXPECT_EQ(list.groups.size(), early.size());
    EXPECT_EQ(list.warnings,
              std::vector<std::string>{"line " + std::to_string(2 * early.size() + 1) + ": text after 0/EOF is ignored"});
  }
  // A blank code line in the first half is a fault unless only blank lines
  // follow it.
  {
    std::string file = dxf(Pairs(pairs.begin(), pairs.begin() + static_cast<long>(n / 3)));
    const int blank = static_cast<int>(2 * (n / 3) + 1);
    file += "\n" + dxf(Pairs(pairs.begin() + static_cast<long>(n / 3), pairs.end()));
    const GroupList list = readGroupList(file);
    EXPECT_FALSE(list.ok);
    EXPECT_EQ(list.error, "line " + std::to_string(blank) + ": expected a group code, found \"\"");
  }
}

// Text that decoding changes, in one half of a large file only, the rest
// plain ASCII: decoded wherever it stands, by the code page the header names.
TEST(ReadLarge, TextIsDecodedInEitherHalf) {
  const Pairs pairs = largePairs();
  const size_t n = pairs.size();
  for (size_t at : {n / 4, 3 * n / 4}) {
    while (pairs[at].first != 8) ++at;
    Pairs header = {{0, "SECTION"}, {2, "HEADER"}, {9, "$ACADVER"}, {1, "AC1015"}, {9, "$DWGCODEPAGE"},
                    {3, "ANSI_1252"}, {0, "ENDSEC"}};
    Pairs file = header;
    file.insert(file.end(), pairs.begin(), pairs.end());
    const size_t escaped = at + header.size(), latin = escaped + 5;
    ASSERT_EQ(file[latin].first, 8);
    file[escaped].second = "Stra\\U+00DFe";  // \U+00DF in the file
    file[latin].second = "Caf\xE9";          // 1252's e acute
    const std::string bytes = dxf(file, "\r\n");
    ASSERT_GE(bytes.size(), size_t{8} << 20);  // read in halves
    const GroupList list = readGroupList(bytes);
    ASSERT_TRUE(list.ok) << list.error;
    EXPECT_EQ(list.groups[escaped].text(), "Stra\xC3\x9F" "e") << at;
    EXPECT_EQ(list.groups[latin].text(), "Caf\xC3\xA9") << at;
    EXPECT_EQ(list.groups[escaped + 10].text(), file[escaped + 10].second);
  }
}

}  // namespace
}  // namespace zepk::dxf
