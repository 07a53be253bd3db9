#include "host/dxf/structure.h"

namespace zepk::dxf {

namespace {

std::string_view trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
  return s;
}

// True for a 0 group whose value is `name`.
template <class G>
bool isMarker(const G& g, std::string_view name) { return g.code == 0 && trim(g.text()) == name; }

// How a group appears in a message: 0/SECTION, group 8 "0".
template <class G>
std::string describeGroup(const G& g) {
  if (g.code == 0) return "0/" + std::string(trim(g.text()));
  std::string s = "group " + std::to_string(g.code);
  if (g.isText()) {
    // At most 40 bytes, cut before a character, not inside one.
    std::string_view v = g.text();
    if (v.size() > 40) {
      size_t n = 40;
      while (n > 0 && (static_cast<unsigned char>(v[n]) & 0xC0) == 0x80) --n;
      v = v.substr(0, n);
    }
    s += " \"" + std::string(v) + (v.size() < g.text().size() ? "...\"" : "\"");
  }
  return s;
}

// Sections whose body is all records, with nothing before the first one.
bool onlyRecords(SectionKind k) {
  switch (k) {
    case SectionKind::Header:
    case SectionKind::Classes:
    case SectionKind::Tables:
    case SectionKind::Blocks:
    case SectionKind::Entities:
    case SectionKind::Objects: return true;
    default: return false;
  }
}

}  // namespace

SectionKind sectionKind(std::string_view name) {
  name = trim(name);
  if (name == "HEADER") return SectionKind::Header;
  if (name == "CLASSES") return SectionKind::Classes;
  if (name == "TABLES") return SectionKind::Tables;
  if (name == "BLOCKS") return SectionKind::Blocks;
  if (name == "ENTITIES") return SectionKind::Entities;
  if (name == "OBJECTS") return SectionKind::Objects;
  if (name == "THUMBNAILIMAGE") return SectionKind::ThumbnailImage;
  if (name == "ACDSDATA") return SectionKind::AcDsData;
  return SectionKind::Unknown;
}

const Section* Layout::find(SectionKind kind) const {
  for (const Section& s : sections)
    if (s.kind == kind) return &s;
  return nullptr;
}

namespace {

template <class G>
Layout split(std::span<const G> groups) {
  Layout out;
  auto fail = [&out](int line, const std::string& what) {
    out.ok = false;
    out.errorLine = line;
    out.error = "line " + std::to_string(line) + ": " + what;
    return std::move(out);
  };
  // The line after the last group, for faults at the end of the file.
  const int endLine = groups.empty() ? 1 : groups.back().line + 2;

  size_t i = 0;
  bool sawEof = false;
  while (i < groups.size()) {
    const G& g = groups[i];
    if (g.code == 999) {
      ++i;
      continue;
    }
    if (isMarker(g, "EOF")) {
      sawEof = true;
      if (i + 1 < groups.size())
        out.warnings.push_back("line " + std::to_string(groups[i + 1].line) + ": groups after 0/EOF are ignored");
      break;
    }
    if (!isMarker(g, "SECTION"))
      return fail(g.line, "expected 0/SECTION or 0/EOF, found " + describeGroup(g));
    if (i + 1 >= groups.size() || groups[i + 1].code != 2) {
      const int line = i + 1 < groups.size() ? groups[i + 1].line : endLine;
      return fail(line, "expected group 2 with the section name after 0/SECTION, found " +
                            (i + 1 < groups.size() ? describeGroup(groups[i + 1]) : std::string("the end of the file")));
    }

    Section s;
    s.name = std::string(trim(groups[i + 1].text()));
    s.kind = sectionKind(s.name);
    s.line = g.line;
    s.start = i;
    s.body.begin = i + 2;
    const int recordCode = s.kind == SectionKind::Header ? 9 : 0;

    size_t k = s.body.begin;
    for (; k < groups.size(); ++k) {
      const G& h = groups[k];
      if (h.code == 0) {
        const std::string_view v = trim(h.text());
        if (v == "ENDSEC") break;
        if (v == "SECTION" || v == "EOF")
          return fail(h.line, "expected 0/ENDSEC to close the section " + s.name + " opened on line " +
                                  std::to_string(s.line) + ", found " + describeGroup(h));
      }
      if (h.code == recordCode) {
        if (!s.records.empty()) s.records.back().end = k;
        s.records.push_back({k, k});
      } else if (s.records.empty() && h.code != 999 && onlyRecords(s.kind)) {
        return fail(h.line, "expected " + std::string(recordCode == 9 ? "a header variable (group 9)" : "a group 0") +
                                " to start a record in the section " + s.name + ", found " + describeGroup(h));
      }
    }
    if (k >= groups.size())
      return fail(endLine, "the section " + s.name + " opened on line " + std::to_string(s.line) +
                               " has no 0/ENDSEC before the end of the file");
    s.body.end = k;
    if (!s.records.empty()) s.records.back().end = k;
    s.preamble = {s.body.begin, s.records.empty() ? s.body.end : s.records.front().begin};
    out.sections.push_back(std::move(s));
    i = k + 1;
  }
  if (!sawEof) out.warnings.push_back("line " + std::to_string(endLine) + ": the file ends without 0/EOF");
  out.ok = true;
  return out;
}

}  // namespace

Layout splitSections(std::span<const Group> groups) { return split(groups); }
Layout splitSections(std::span<const GroupRef> groups) { return split(groups); }

}  // namespace zepk::dxf
