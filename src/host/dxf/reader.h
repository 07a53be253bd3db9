// Reading ASCII DXF as a sequence of groups.
//
// A file is pairs of lines: a group code, then its value. Lines end in "\n"
// or "\r\n" (a file with no "\n" at all may use bare "\r"). A code line may
// have spaces before and after the number. Values are read by the type of
// their code (see groupType): numbers may have spaces around them, and an
// integer group also accepts a real written with a zero fraction ("1.0"),
// and a 16- or 32-bit group its unsigned form ("65535" is read as -1); a
// boolean group reads any integer, other than 0 as 1. Text keeps its spaces. A UTF-8 byte order mark at the start is skipped.
// Reading stops after the group 0/EOF; what follows it is ignored (with a
// warning when it is more than blank space or the old end-of-file mark ^Z).
//
// Text is decoded to UTF-8 as the header says: from AC1021 (2007) on, the
// file is UTF-8; before, it is in the code page that $DWGCODEPAGE names. A
// file that names no code page (many old ones have no header at all) is
// read as UTF-8 when all its text is well-formed UTF-8, else in the
// fallback code page. \U+XXXX and \M+NXXXX escapes become the characters in
// every version.
//
// Binary DXF is not read. Any fault in the file ends reading with a message
// that names the line and what was expected there; nothing throws.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/dxf/encoding.h"
#include "host/dxf/group.h"

namespace zepk::dxf {

struct ReadOptions {
  // The code page of text in a pre-2007 file that names none, or names one
  // that cannot be converted here, and whose text is not UTF-8. The DXF
  // default is 1252; the host may pass its system code page instead.
  int fallbackCodePage = 1252;
};

struct ReadResult {
  bool ok = false;
  // When !ok: "line 1234: expected a real number for group 10, found \"abc\"".
  std::string error;
  int errorLine = 0;  // the line the error names, 1-based
  std::vector<Group> groups;  // empty when !ok
  // Things read past that the user may want to know about, each starting
  // "line N: " when it belongs to a line.
  std::vector<std::string> warnings;
  std::string version;  // $ACADVER ("AC1032"), empty when the header has none
  int codePage = 0;     // what text was decoded from: kUtf8 for UTF-8
};

ReadResult readGroups(std::string_view fileBytes, const ReadOptions& options = {});

// Room for the groups of a whole file. Growing it leaves the new groups
// unset (a reader fills them in place, two halves of a file at once), so
// that no group's memory is touched twice.
template <class T>
struct GroupAllocator : std::allocator<T> {
  GroupAllocator() = default;
  template <class U>
  GroupAllocator(const GroupAllocator<U>&) noexcept {}
  template <class U>
  void construct(U*) noexcept {}
  template <class U, class... Args>
  void construct(U* p, Args&&... args) {
    ::new (static_cast<void*>(p)) U(std::forward<Args>(args)...);
  }
  template <class U>
  bool operator==(const GroupAllocator<U>&) const noexcept {
    return true;
  }
};
using GroupRefs = std::vector<GroupRef, GroupAllocator<GroupRef>>;

// The same reading, with the groups' text left where it is: each group
// views the file's bytes, which must stay alive and unchanged as long as
// the groups are used, or, for text that decoding changed, `decoded`.
// This is how a whole drawing is read without a copy of every value.
struct GroupList {
  bool ok = false;
  std::string error;
  int errorLine = 0;
  GroupRefs groups;
  std::vector<std::string> warnings;
  std::string version;
  int codePage = 0;
  std::deque<std::string> decoded;  // stays where it is when the list moves
};

GroupList readGroupList(std::string_view fileBytes, const ReadOptions& options = {});

// The release number in an $ACADVER value ("AC1032" -> 1032), or 0.
int versionNumber(std::string_view acadver);

}  // namespace zepk::dxf
