// The function and command tables: every name in its place, the live rows
// listed, and the references in docs/ made from the tables as they stand.
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "frame/commands.h"
#include "frame/functable.h"
#include "frame/reference.h"
#include "host/system/utf.h"

using namespace zepk::frame;

TEST(FunctionTable, EveryNameInItsPlace) {
  const FunctionRow* rows = functionRows();
  // Codes fixed by position: the first, one in the middle and the last.
  EXPECT_EQ(std::u16string(rows[0].name), u"ZEPK-GetPoint");
  EXPECT_EQ(std::u16string(rows[8].name), u"ZEPK-GetVerSion");
  EXPECT_EQ(std::u16string(rows[kFunctionCount - 1].name), u"ZEPK-ADO-GetallTablenames");
  std::multiset<std::u16string> names;
  for (size_t i = 0; i < kFunctionCount; ++i) {
    ASSERT_NE(rows[i].name, nullptr) << i;
    ASSERT_NE(rows[i].family, nullptr) << i;
    names.insert(rows[i].name);
    // A live row says how it is called.
    if (rows[i].fn) EXPECT_TRUE(rows[i].shape && *rows[i].shape) << zepk::sys::toUtf8(rows[i].name);
  }
  // One name stands twice; rows sharing a body have names of their own.
  EXPECT_EQ(names.count(u"ZEPK-Point-PerToLine"), 2u);
  EXPECT_EQ(names.size() - std::set<std::u16string>(names.begin(), names.end()).size(), 1u);
}

TEST(CommandTables, NamesGroupsAndFlags) {
  auto t1 = commandTable1();
  auto t2 = commandTable2();
  EXPECT_EQ(t1.size(), 57u);
  EXPECT_EQ(t2.size(), 65u);  // TOPU is added twice
  std::set<std::u16string> groups;
  for (const CommandRow& c : t2) groups.insert(c.group);
  EXPECT_EQ(groups, (std::set<std::u16string>{kGroupAddEntity, kGroupCitors}));
  for (const CommandRow& c : t1) {
    EXPECT_EQ(std::u16string(c.group), kGroupApi);
    EXPECT_TRUE(c.flags == 0 || c.flags == 1 || c.flags == 0x200003) << zepk::sys::toUtf8(c.local);
  }
  int topu = 0;
  for (const CommandRow& c : t2) topu += std::u16string(c.local) == u"TOPU";
  EXPECT_EQ(topu, 2);
}

// Lists what is live, so that the log of a run shows the counts.
TEST(FrameTables, LiveRowsListed) {
  const FunctionRow* rows = functionRows();
  std::string live;
  for (size_t i = 0; i < kFunctionCount; ++i) {
    if (rows[i].fn) live += " " + zepk::sys::toUtf8(rows[i].name);
  }
  std::string cmds;
  for (auto t : {commandTable1(), commandTable2()}) {
    for (const CommandRow& c : t) {
      if (c.fn) cmds += " " + zepk::sys::toUtf8(c.local);
    }
  }
  std::printf("live functions (%d of %zu):%s\nlive commands (%d):%s\n", liveFunctionCount(), kFunctionCount,
              live.c_str(), liveCommandCount(), cmds.c_str());
  EXPECT_GE(liveFunctionCount(), 17);
  EXPECT_GE(liveCommandCount(), 10);
}

namespace {
std::string readFile(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  std::stringstream s;
  s << f.rdbuf();
  return s.str();
}
}  // namespace

TEST(FrameTables, ReferencesInDocsAreUpToDate) {
  EXPECT_EQ(readFile(std::string(ZEPK_DOCS_DIR) + "/lisp-reference.md"), lispReferenceMarkdown())
      << "docs/lisp-reference.md is stale: cmake --build BUILD --target docs";
  EXPECT_EQ(readFile(std::string(ZEPK_DOCS_DIR) + "/commands.md"), commandsMarkdown())
      << "docs/commands.md is stale: cmake --build BUILD --target docs";
}
