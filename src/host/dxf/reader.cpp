#include "host/dxf/reader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>
#include <stdexcept>
#include <thread>

#include "host/dxf/encoding.h"
#include "host/dxf/memory.h"
#include "host/system/codepage.h"
#include "host/system/utf.h"

namespace zepk::dxf {

namespace {

constexpr std::string_view kBinarySentinel = "AutoCAD Binary DXF";
constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";
// Line numbers are ints; a file this long (gigabytes) is refused, not miscounted.
constexpr int kMaxLines = 2'000'000'000;

bool isBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view trim(std::string_view s) {
  while (!s.empty() && isBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && (isBlank(s.back()) || s.back() == '\r')) s.remove_suffix(1);
  return s;
}

bool allBlank(std::string_view s) {
  return std::all_of(s.begin(), s.end(), [](char c) { return isBlank(c) || c == '\r' || c == '\n'; });
}

// A value as it appears in a message: quoted, at most 40 bytes, with control
// and non-ASCII bytes as \xNN (the text is not decoded yet).
std::string quoted(std::string_view s) {
  static const char kHex[] = "0123456789ABCDEF";
  std::string out = "\"";
  const size_t n = std::min<size_t>(s.size(), 40);
  for (size_t i = 0; i < n; ++i) {
    const auto b = static_cast<unsigned char>(s[i]);
    if (b < 0x20 || b >= 0x7F) {
      out += "\\x";
      out += kHex[b >> 4];
      out += kHex[b & 15];
    } else {
      if (b == '"' || b == '\\') out += '\\';
      out += static_cast<char>(b);
    }
  }
  if (n < s.size()) out += "...";
  out += '"';
  return out;
}

std::string at(int line, std::string_view what) { return "line " + std::to_string(line) + ": " + std::string(what); }

// The lines of the file, one at a time, without their ends.
class Lines {
 public:
  // `before`: the lines of the file before these bytes.
  Lines(std::string_view bytes, char eol, int before = 0)
      : p_(bytes.data()), end_(bytes.data() + bytes.size()), eol_(eol), line_(before) {}

  bool next(std::string_view& out) {
    if (p_ >= end_) return false;
    const auto* nl = static_cast<const char*>(std::memchr(p_, eol_, static_cast<size_t>(end_ - p_)));
    const char* stop = nl != nullptr ? nl : end_;
    size_t len = static_cast<size_t>(stop - p_);
    if (eol_ == '\n' && len > 0 && stop[-1] == '\r') --len;
    out = std::string_view(p_, len);
    p_ = nl != nullptr ? nl + 1 : end_;
    ++line_;
    return true;
  }
  int line() const { return line_; }  // the line last returned
  std::string_view rest() const { return std::string_view(p_, static_cast<size_t>(end_ - p_)); }

 private:
  const char* p_;
  const char* end_;
  char eol_;
  int line_;
};

// A group code: a number 0..32767 with optional blanks around it.
bool parseCode(std::string_view s, int& code) {
  size_t i = 0;
  while (i < s.size() && isBlank(s[i])) ++i;
  const size_t first = i;
  int v = 0;
  while (i < s.size() && s[i] >= '0' && s[i] <= '9' && i - first < 6) v = v * 10 + (s[i++] - '0');
  if (i == first || v > 32767) return false;
  while (i < s.size() && (isBlank(s[i]) || s[i] == '\r')) ++i;
  if (i != s.size()) return false;
  code = v;
  return true;
}

// Drops one leading '+' (which from_chars does not take); false when nothing
// that can be a number is left.
bool stripPlus(std::string_view& s) {
  const bool plus = !s.empty() && s.front() == '+';
  if (plus) s.remove_prefix(1);
  return !s.empty() && !(plus && (s.front() == '+' || s.front() == '-'));
}

bool parseReal(std::string_view s, double& out) {
  s = trim(s);
  if (!stripPlus(s)) return false;
  double v = 0;
  auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v, std::chars_format::general);
  if (ec != std::errc() || end != s.data() + s.size() || !std::isfinite(v)) return false;
  out = v;
  return true;
}

bool parseInteger(std::string_view s, std::int64_t& out) {
  s = trim(s);
  if (!stripPlus(s)) return false;
  std::int64_t v = 0;
  auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
  if (ec == std::errc() && end == s.data() + s.size()) {
    out = v;
    return true;
  }
  // Some writers put "1.0" or "1." in integer groups: take it when it is whole.
  double d = 0;
  if (!parseReal(s, d) || d != std::trunc(d) || d < -9.2e18 || d > 9.2e18) return false;
  out = static_cast<std::int64_t>(d);
  return true;
}

// The range an integer type accepts. Some writers put unsigned values in
// 16- and 32-bit groups (flags, colors), so the upper bounds are unsigned.
bool inRange(GroupType type, std::int64_t v) {
  switch (type) {
    case GroupType::Int16: return v >= -32768 && v <= 65535;
    case GroupType::Int32: return v >= -2147483648LL && v <= 4294967295LL;
    default: return true;
  }
}

// What a text holds that decoding cares about.
struct TextScan {
  bool ascii = true;
  bool backslash = false;
};

TextScan scan(std::string_view s) {
  unsigned char acc = 0;
  bool backslash = false;
  for (char c : s) {
    acc |= static_cast<unsigned char>(c);
    backslash |= c == '\\';
  }
  return {(acc & 0x80) == 0, backslash};
}

bool isAscii(std::string_view s) {
  unsigned char acc = 0;
  for (char c : s) acc |= static_cast<unsigned char>(c);
  return (acc & 0x80) == 0;
}

bool decodes(const GroupRef& g) {
  const GroupType t = groupType(g.code);
  return t == GroupType::String || t == GroupType::Unknown;
}

// The values of the header variables that decide how text is decoded: the
// groups after 9/$ACADVER and 9/$DWGCODEPAGE in the HEADER section.
struct TextSettings {
  const GroupRef* version = nullptr;
  const GroupRef* codePage = nullptr;
};

TextSettings findTextSettings(const GroupRefs& groups) {
  TextSettings t;
  const size_t n = groups.size();
  for (size_t i = 0; i + 1 < n; ++i) {
    if (!(groups[i].code == 0 && groups[i + 1].code == 2 && trim(groups[i].text()) == "SECTION" &&
          trim(groups[i + 1].text()) == "HEADER"))
      continue;
    for (size_t k = i + 2; k < n && groups[k].code != 0; ++k) {
      if (groups[k].code != 9 || k + 1 >= n || !groups[k + 1].isText()) continue;
      const std::string_view name = trim(groups[k].text());
      if (name == "$ACADVER" && t.version == nullptr) t.version = &groups[k + 1];
      if (name == "$DWGCODEPAGE" && t.codePage == nullptr) t.codePage = &groups[k + 1];
    }
    break;
  }
  return t;
}

// Decides the file's encoding and decodes the text that needs it; decoded
// text goes to r.decoded and its groups view it there. `plain`: every text
// is ASCII without a backslash, and none needs decoding.
void decodeAll(GroupList& r, const ReadOptions& options, bool plain) {
  GroupRefs& groups = r.groups;
  const TextSettings settings = findTextSettings(groups);
  const GroupRef* ver = settings.version;
  const GroupRef* page = settings.codePage;
  if (ver != nullptr) r.version = std::string(trim(ver->text()));

  int named = 0;
  if (page != nullptr) {
    named = codePageFromName(page->text());
    if (named != 0 && named != kUtf8 && !sys::isCodePageSupported(named)) named = 0;
    if (named == 0 && !trim(page->text()).empty())
      r.warnings.push_back(at(page->line + 1, "the code page " + quoted(trim(page->text())) + " is not known here"));
  }
  const int fallback =
      options.fallbackCodePage > 0 && sys::isCodePageSupported(options.fallbackCodePage) ? options.fallbackCodePage : 1252;
  const int legacy = named != 0 && named != kUtf8 ? named : fallback;

  bool utf8 = versionNumber(r.version) >= 1021 || named == kUtf8;
  if (!utf8 && named == 0) {
    // No usable code page: UTF-8 when every text is well-formed UTF-8.
    utf8 = true;
    for (const GroupRef& g : plain ? std::span<const GroupRef>() : std::span<const GroupRef>(groups)) {
      if (decodes(g) && !isAscii(g.text()) && !sys::isValidUtf8(g.text())) {
        utf8 = false;
        break;
      }
    }
  }
  r.codePage = utf8 ? kUtf8 : legacy;

  int badLines = 0;
  int firstBad = 0;
  for (GroupRef& g : plain ? std::span<GroupRef>() : std::span<GroupRef>(groups)) {
    if (!decodes(g)) continue;
    const std::string_view s = g.text();
    const TextScan t = scan(s);
    if (t.ascii && !t.backslash) continue;
    const bool escapes = t.backslash && hasEscape(s);
    int cp = r.codePage;
    if (utf8) {
      const bool valid = t.ascii || sys::isValidUtf8(s);
      if (valid && !escapes) continue;
      if (!valid) {
        // Text that a UTF-8 file holds in a legacy code page (some writers
        // do this): read it in that code page rather than lose it.
        cp = legacy;
        if (badLines++ == 0) firstBad = g.line + 1;
      }
    } else if (t.ascii && !escapes) {
      continue;
    }
    g.setText(r.decoded.emplace_back(decodeText(s, cp)));
  }
  if (badLines > 0) {
    r.warnings.push_back(at(firstBad, std::to_string(badLines) + (badLines == 1 ? " text is" : " texts are") +
                                          " not UTF-8; read in code page " + std::to_string(legacy)));
  }
}

// How reading a stretch of lines ended.
enum class Stop { End, Eof, Blank, Fault };

struct Parsed {
  Stop stop = Stop::End;
  int errorLine = 0;     // a fault's line and what it is
  std::string error;
  int lastLine = 0;      // the line last read
  std::string_view rest;  // what follows it
  bool plain = true;      // every text read is ASCII without a backslash
};

// Where parsed groups go: the end of a list, or room set aside in it
// (put() false when that is full).
struct ToList {
  GroupRefs& list;
  bool put(const GroupRef& g) {
    list.push_back(g);
    return true;
  }
};
struct ToRoom {
  GroupRef* at;
  GroupRef* end;
  bool put(const GroupRef& g) {
    if (at == end) return false;
    *at++ = g;
    return true;
  }
};

// Reads the groups of `bytes`, the lines after the first `before` of the
// file, into `out`, up to the end, 0/EOF, blank lines to the end, or a fault.
template <class Out>
Parsed parseLines(std::string_view bytes, char eol, int before, Out&& out) {
  Lines lines(bytes, eol, before);
  std::string_view codeLine, valueLine;
  Parsed p;
  auto fault = [&](int line, std::string what) {
    p.stop = Stop::Fault;
    p.errorLine = line;
    p.error = std::move(what);
    return p;
  };
  while (lines.next(codeLine)) {
    if (lines.line() > kMaxLines) return fault(lines.line(), "the file has too many lines to be read");
    int code = 0;
    if (!parseCode(codeLine, code)) {
      if (trim(codeLine).empty() && allBlank(lines.rest())) {  // blank lines at the end
        p.stop = Stop::Blank;
        break;
      }
      return fault(lines.line(), "expected a group code, found " + quoted(codeLine));
    }
    const int line = lines.line();
    if (!lines.next(valueLine))
      return fault(line + 1, "expected the value of group " + std::to_string(code) + ", found the end of the file");

    const GroupType type = groupType(code);
    switch (valueKind(type)) {
      case ValueKind::Text:
        if (valueLine.size() > UINT32_MAX) return fault(line + 1, "the line is too long to be read");
        if (p.plain) {
          // Seen here, while the text is at hand: text that decoding
          // leaves as it is needs no second look.
          const TextScan t = scan(valueLine);
          p.plain = t.ascii && !t.backslash;
        }
        if (!out.put(GroupRef::ofText(code, line, valueLine))) return fault(line, "no room for the groups");
        break;
      case ValueKind::Real: {
        double d = 0;
        if (!parseReal(valueLine, d))
          return fault(line + 1, "expected a real number for group " + std::to_string(code) + ", found " +
                                    quoted(valueLine));
        if (!out.put(GroupRef::ofReal(code, line, d))) return fault(line, "no room for the groups");
        break;
      }
      case ValueKind::Integer: {
        std::int64_t v = 0;
        if (!parseInteger(valueLine, v) || !inRange(type, v))
          return fault(line + 1, std::string("expected ") + describe(type) + " for group " + std::to_string(code) +
                                    ", found " + quoted(valueLine));
        // Unsigned forms become the signed values with the same bits.
        if (type == GroupType::Int16 && v > 32767) v -= 65536;
        if (type == GroupType::Int32 && v > 2147483647LL) v -= 4294967296LL;
        if (!out.put(GroupRef::ofInteger(code, line, type == GroupType::Bool ? std::int64_t{v != 0} : v)))
          return fault(line, "no room for the groups");
        break;
      }
    }
    if (code == 0 && trim(valueLine) == "EOF") {
      p.stop = Stop::Eof;
      break;
    }
  }
  p.lastLine = lines.line();
  p.rest = lines.rest();
  return p;
}

// Files from this size on are read in two halves at once.
constexpr size_t kHalvesFrom = size_t{8} << 20;

// Reads `bytes` in two halves at once into `out`, `firstHalfNewlines`
// being the count of "\n" in the first half of the bytes (size / 2) and
// `newlines` in all of them. False, with `out` empty, when the halves
// cannot stand for one reading.
bool parseHalves(std::string_view bytes, char eol, size_t firstHalfNewlines, size_t newlines, GroupRefs& out,
                 Parsed& parsed) {
  // The second half starts at the first code line after the middle: a
  // line with an odd number.
  size_t split = bytes.size() / 2;
  size_t before = eol == '\n' ? firstHalfNewlines
                              : static_cast<size_t>(std::count(bytes.begin(), bytes.begin() + split, eol));
  auto nextLine = [&] {
    const void* at = std::memchr(bytes.data() + split, eol, bytes.size() - split);
    if (at == nullptr) return false;
    split = static_cast<size_t>(static_cast<const char*>(at) - bytes.data()) + 1;
    ++before;
    return true;
  };
  if (!nextLine()) return false;
  if (before % 2 != 0 && !nextLine()) return false;
  if (split >= bytes.size() || before > static_cast<size_t>(kMaxLines)) return false;

  // Each half's groups go straight to their places in the list: the first
  // half's lines make at most before / 2 groups (exactly that many when it
  // reads to its end), the second's at most half of its lines and one.
  const size_t lines = eol == '\n' ? newlines : static_cast<size_t>(std::count(bytes.begin(), bytes.end(), eol));
  const size_t firstRoom = before / 2;
  const size_t secondRoom = (lines - before) / 2 + 2;
  Parsed secondParsed;
  bool secondDone = false;
  size_t secondCount = 0;
  bool firstPlain = true;
  try {
    out.resize(firstRoom + secondRoom);  // the groups are not touched here
    GroupRef* const second = out.data() + firstRoom;
    std::thread other([&] {
      try {
        ToRoom room{second, second + secondRoom};
        secondParsed = parseLines(bytes.substr(split), eol, static_cast<int>(before), room);
        secondCount = static_cast<size_t>(room.at - second);
        secondDone = secondParsed.stop != Stop::Fault || secondParsed.error != "no room for the groups";
      } catch (const std::exception&) {
        // Out of memory: the one reading below fails as it fails.
      }
    });
    Parsed first;
    bool firstDone = false;
    ToRoom room{out.data(), second};
    try {
      first = parseLines(bytes.substr(0, split), eol, 0, room);
      firstDone = true;
    } catch (const std::exception&) {
      // As for the second half.
    }
    other.join();
    firstPlain = first.plain;
    if (!firstDone || !secondDone || first.stop != Stop::End || room.at != second) {
      out.clear();
      return false;
    }
  } catch (const std::exception&) {
    // No thread to be had: one reading does it.
    out.clear();
    return false;
  }
  out.resize(firstRoom + secondCount);
  parsed = std::move(secondParsed);
  parsed.plain = parsed.plain && firstPlain;
  return true;
}

}  // namespace

int versionNumber(std::string_view acadver) {
  acadver = trim(acadver);
  if (acadver.size() < 3 || acadver.substr(0, 2) != "AC") return 0;
  int n = 0;
  auto [end, ec] = std::from_chars(acadver.data() + 2, acadver.data() + acadver.size(), n);
  return ec == std::errc() && end == acadver.data() + acadver.size() ? n : 0;
}

ReadResult readGroups(std::string_view bytes, const ReadOptions& options) {
  GroupList list = readGroupList(bytes, options);
  ReadResult r;
  r.ok = list.ok;
  r.error = std::move(list.error);
  r.errorLine = list.errorLine;
  r.warnings = std::move(list.warnings);
  r.version = std::move(list.version);
  r.codePage = list.codePage;
  r.groups.reserve(list.groups.size());
  for (const GroupRef& g : list.groups) r.groups.push_back(g.toGroup());
  return r;
}

GroupList readGroupList(std::string_view bytes, const ReadOptions& options) {
  GroupList r;
  auto fail = [&r](int line, const std::string& what) {
    r.ok = false;
    r.errorLine = line;
    r.error = at(line, what);
    r.groups.clear();
    r.groups.shrink_to_fit();
    r.decoded.clear();
    r.warnings.clear();
    return std::move(r);
  };

  if (bytes.substr(0, kBinarySentinel.size()) == kBinarySentinel)
    return fail(1, "this is a binary DXF file, which cannot be read; save the drawing as ASCII DXF");
  if (bytes.substr(0, kUtf8Bom.size()) == kUtf8Bom) bytes.remove_prefix(kUtf8Bom.size());
  if (allBlank(bytes)) return fail(1, "the file is empty");

  // Lines end in "\n" (with or without "\r"); a file without any "\n" may use "\r" alone.
  const size_t firstHalfNewlines = static_cast<size_t>(std::count(bytes.begin(), bytes.begin() + bytes.size() / 2, '\n'));
  const size_t newlines =
      firstHalfNewlines + static_cast<size_t>(std::count(bytes.begin() + bytes.size() / 2, bytes.end(), '\n'));
  const char eol = newlines == 0 && bytes.find('\r') != std::string_view::npos ? '\r' : '\n';
  r.groups.reserve(newlines / 2 + 2);
  adviseLargePages(r.groups.data(), r.groups.capacity() * sizeof(GroupRef));

  // A large file is read in two halves at once, the second from the first
  // code line after its middle. The halves' groups are the same as one
  // reading's; when the first half does not simply run to its end (a fault,
  // 0/EOF, blank lines), the file is read again in one piece, so that every
  // message is the one a single reading gives.
  Parsed parsed;
  bool done = false;
  if (bytes.size() >= kHalvesFrom) done = parseHalves(bytes, eol, firstHalfNewlines, newlines, r.groups, parsed);
  if (!done) parsed = parseLines(bytes, eol, 0, ToList{r.groups});
  if (parsed.stop == Stop::Fault) return fail(parsed.errorLine, parsed.error);
  const bool sawEof = parsed.stop == Stop::Eof;
  Lines lines(parsed.rest, eol, parsed.lastLine);

  if (sawEof) {
    std::string_view rest = lines.rest();
    while (!rest.empty() && (rest.back() == '\x1A' || rest.back() == '\0')) rest.remove_suffix(1);
    if (!allBlank(rest)) r.warnings.push_back(at(lines.line() + 1, "text after 0/EOF is ignored"));
  }

  decodeAll(r, options, parsed.plain);
  r.ok = true;
  return r;
}

}  // namespace zepk::dxf
