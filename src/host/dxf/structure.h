// The structure of a DXF file over its groups: sections, and within each
// section the records (an entity, a table entry, a class, a header
// variable). Only the frame is checked here; what the records mean is for
// the database to read.
//
//   0/SECTION 2/<name> <records> 0/ENDSEC  ...  0/EOF
//
// A record starts at a group 0 (at a group 9 in the HEADER section) and runs
// up to the next one. Nested frames (TABLE ... ENDTAB, BLOCK ... ENDBLK,
// POLYLINE ... SEQEND) are records in a row here. Comments (999) may stand
// between sections. A missing 0/EOF at the end is accepted with a warning,
// as many writers leave it out; every other fault is an error naming its line.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/dxf/group.h"

namespace zepk::dxf {

enum class SectionKind { Header, Classes, Tables, Blocks, Entities, Objects, ThumbnailImage, AcDsData, Unknown };

// "HEADER" -> Header ...; any other name -> Unknown.
SectionKind sectionKind(std::string_view name);

// Indices [begin, end) into the group list.
struct GroupRange {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::size_t size() const { return end - begin; }
  bool empty() const { return begin == end; }
};

struct Section {
  std::string name;  // as written, without surrounding blanks
  SectionKind kind = SectionKind::Unknown;
  int line = 0;      // the line of its 0/SECTION group
  std::size_t start = 0;  // the index of its 0/SECTION group
  GroupRange body;   // from after 2/<name> up to, not including, 0/ENDSEC
  // Groups at the start of the body before its first record. Only sections
  // whose content is not a list of records have them: THUMBNAILIMAGE (90,
  // 310...), ACDSDATA (70, 71) and sections this layer does not know.
  GroupRange preamble;
  std::vector<GroupRange> records;  // each begins with a group 0 (9 in HEADER)
};

struct Layout {
  bool ok = false;
  std::string error;  // "line N: ..." when !ok
  int errorLine = 0;
  std::vector<Section> sections;  // in file order, unknown ones included
  std::vector<std::string> warnings;

  // The first section of that kind, or null.
  const Section* find(SectionKind kind) const;
};

Layout splitSections(std::span<const Group> groups);
Layout splitSections(std::span<const GroupRef> groups);

}  // namespace zepk::dxf
