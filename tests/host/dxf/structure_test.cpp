#include "host/dxf/structure.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/dxf/reader.h"

namespace zepk::dxf {
namespace {

// Groups from "code value" lines written one pair per line for brevity.
std::vector<Group> groups(std::initializer_list<std::pair<int, const char*>> pairs) {
  std::string file;
  for (const auto& [code, value] : pairs) file += std::to_string(code) + "\n" + value + "\n";
  ReadResult r = readGroups(file);
  EXPECT_TRUE(r.ok) << r.error;
  return std::move(r.groups);
}

TEST(Structure, SectionsAndRecords) {
  const auto g = groups({{999, "made by hand"},
                         {0, "SECTION"}, {2, "HEADER"},
                         {9, "$ACADVER"}, {1, "AC1032"},
                         {9, "$EXTMIN"}, {10, "0"}, {20, "0"}, {30, "0"},
                         {0, "ENDSEC"},
                         {0, "SECTION"}, {2, "TABLES"},
                         {0, "TABLE"}, {2, "LAYER"}, {70, "1"},
                         {0, "LAYER"}, {2, "0"}, {70, "0"},
                         {0, "ENDTAB"},
                         {0, "ENDSEC"},
                         {0, "SECTION"}, {2, "ENTITIES"},
                         {0, "ENDSEC"},
                         {0, "SECTION"}, {2, "THUMBNAILIMAGE"},
                         {90, "2"}, {310, "0A0B"},
                         {0, "ENDSEC"},
                         {0, "SECTION"}, {2, "ACDSDATA"},
                         {70, "2"}, {71, "6"},
                         {0, "ACDSSCHEMA"}, {90, "0"},
                         {0, "ENDSEC"},
                         {0, "SECTION"}, {2, "  MYAPPDATA "},
                         {1, "kept"},
                         {0, "ENDSEC"},
                         {0, "EOF"}});
  const Layout layout = splitSections(g);
  ASSERT_TRUE(layout.ok) << layout.error;
  EXPECT_TRUE(layout.warnings.empty());
  ASSERT_EQ(layout.sections.size(), 6u);

  const Section* header = layout.find(SectionKind::Header);
  ASSERT_NE(header, nullptr);
  EXPECT_EQ(header->line, 3);
  ASSERT_EQ(header->records.size(), 2u);
  EXPECT_TRUE(g[header->records[0].begin].is(9, "$ACADVER"));
  EXPECT_EQ(header->records[1].size(), 4u);
  EXPECT_TRUE(header->preamble.empty());

  const Section* tables = layout.find(SectionKind::Tables);
  ASSERT_NE(tables, nullptr);
  ASSERT_EQ(tables->records.size(), 3u);  // TABLE, LAYER, ENDTAB in a row
  EXPECT_TRUE(g[tables->records[1].begin].is(0, "LAYER"));
  EXPECT_EQ(tables->records[1].size(), 3u);
  EXPECT_TRUE(g[tables->body.end].is(0, "ENDSEC"));

  const Section* entities = layout.find(SectionKind::Entities);
  ASSERT_NE(entities, nullptr);
  EXPECT_TRUE(entities->body.empty());
  EXPECT_TRUE(entities->records.empty());

  const Section* thumb = layout.find(SectionKind::ThumbnailImage);
  ASSERT_NE(thumb, nullptr);
  EXPECT_EQ(thumb->preamble.size(), 2u);
  EXPECT_TRUE(thumb->records.empty());

  const Section* ds = layout.find(SectionKind::AcDsData);
  ASSERT_NE(ds, nullptr);
  EXPECT_EQ(ds->preamble.size(), 2u);
  ASSERT_EQ(ds->records.size(), 1u);

  const Section& mine = layout.sections[5];
  EXPECT_EQ(mine.name, "MYAPPDATA");
  EXPECT_EQ(mine.kind, SectionKind::Unknown);
  EXPECT_EQ(mine.preamble.size(), 1u);
  EXPECT_EQ(layout.find(SectionKind::Objects), nullptr);
}

TEST(Structure, MissingEofIsOnlyAWarning) {
  const auto g = groups({{0, "SECTION"}, {2, "ENTITIES"}, {0, "POINT"}, {10, "1"}, {0, "ENDSEC"}});
  const Layout layout = splitSections(g);
  ASSERT_TRUE(layout.ok) << layout.error;
  ASSERT_EQ(layout.sections.size(), 1u);
  EXPECT_EQ(layout.sections[0].records.size(), 1u);
  EXPECT_EQ(layout.warnings, std::vector<std::string>{"line 11: the file ends without 0/EOF"});
}

TEST(Structure, FaultsNameTheLine) {
  const struct {
    std::vector<Group> groups;
    std::string error;
  } cases[] = {
      {groups({{0, "SECTION"}, {2, "HEADER"}, {9, "$ACADVER"}, {1, "AC1032"},
               {0, "SECTION"}, {2, "ENTITIES"}, {0, "ENDSEC"}, {0, "EOF"}}),
       "line 9: expected 0/ENDSEC to close the section HEADER opened on line 1, found 0/SECTION"},
      {groups({{0, "SECTION"}, {2, "ENTITIES"}, {0, "LINE"}, {8, "0"}}),
       "line 9: the section ENTITIES opened on line 1 has no 0/ENDSEC before the end of the file"},
      {groups({{0, "SECTION"}, {2, "ENTITIES"}, {0, "LINE"}, {0, "EOF"}}),
       "line 7: expected 0/ENDSEC to close the section ENTITIES opened on line 1, found 0/EOF"},
      {groups({{0, "SECTION"}, {8, "0"}, {0, "ENDSEC"}}),
       "line 3: expected group 2 with the section name after 0/SECTION, found group 8 \"0\""},
      {groups({{0, "SECTION"}}),
       "line 3: expected group 2 with the section name after 0/SECTION, found the end of the file"},
      {groups({{0, "SECTION"}, {2, "ENTITIES"}, {0, "ENDSEC"}, {8, "stray"}, {0, "EOF"}}),
       "line 7: expected 0/SECTION or 0/EOF, found group 8 \"stray\""},
      {groups({{0, "ENDSEC"}, {0, "EOF"}}), "line 1: expected 0/SECTION or 0/EOF, found 0/ENDSEC"},
      {groups({{0, "SECTION"}, {2, "ENTITIES"}, {8, "0"}, {0, "LINE"}, {0, "ENDSEC"}}),
       "line 5: expected a group 0 to start a record in the section ENTITIES, found group 8 \"0\""},
      {groups({{0, "SECTION"}, {2, "HEADER"}, {1, "AC1032"}, {0, "ENDSEC"}}),
       "line 5: expected a header variable (group 9) to start a record in the section HEADER, found group 1 \"AC1032\""},
  };
  for (const auto& c : cases) {
    const Layout layout = splitSections(c.groups);
    EXPECT_FALSE(layout.ok);
    EXPECT_EQ(layout.error, c.error);
    EXPECT_EQ(layout.error.rfind("line " + std::to_string(layout.errorLine) + ": ", 0), 0u);
  }
}

}  // namespace
}  // namespace zepk::dxf
