#include "host/lisp/wildcard.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace zepk::lisp {

bool wcIsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// Letters as the system's character classification sees them: ASCII and
// Latin-1 letters, and beyond those the letter blocks of the scripts users
// write drawing text in (Latin extensions, Greek, Cyrillic, Hebrew, Arabic,
// Thai, kana, Hangul, CJK ideographs, full-width Latin). Punctuation,
// symbols, full-width digits and surrogate halves are not letters.
bool wcIsAlpha(char16_t c) {
  if (c < 0x80) return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
  if (c < 0x100) return c == 0xAA || c == 0xB5 || c == 0xBA || (c >= 0xC0 && c != 0xD7 && c != 0xF7);
  struct Range {
    char16_t lo, hi;
  };
  static constexpr Range letters[] = {
      {0x0100, 0x02AF}, {0x0386, 0x0386}, {0x0388, 0x03FF}, {0x0400, 0x0481}, {0x048A, 0x052F},
      {0x0531, 0x0556}, {0x0561, 0x0587}, {0x05D0, 0x05EA}, {0x0620, 0x064A}, {0x0E01, 0x0E30},
      {0x1E00, 0x1FBC}, {0x3041, 0x3096}, {0x309D, 0x309F}, {0x30A1, 0x30FA}, {0x30FC, 0x30FF},
      {0x3105, 0x312F}, {0x3131, 0x318E}, {0x3400, 0x4DBF}, {0x4E00, 0x9FFF}, {0xA000, 0xA48C},
      {0xAC00, 0xD7A3}, {0xF900, 0xFAFF}, {0xFF21, 0xFF3A}, {0xFF41, 0xFF5A}, {0xFF66, 0xFFDC},
  };
  auto it = std::upper_bound(std::begin(letters), std::end(letters), c, [](char16_t v, const Range& r) { return v < r.lo; });
  return it != std::begin(letters) && c <= (it - 1)->hi;
}

char16_t foldUpper(char16_t c) {
  if (c >= u'a' && c <= u'z') return static_cast<char16_t>(c - 32);
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return static_cast<char16_t>(c - 32);
  return c;
}

char16_t foldLower(char16_t c) {
  if (c >= u'A' && c <= u'Z') return static_cast<char16_t>(c + 32);
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return static_cast<char16_t>(c + 32);
  return c;
}

namespace {

enum class Kind : uint8_t { Literal, Digit, Alpha, NonAlnum, Any, Star, Set };

struct Token {
  Kind kind;
  bool negated = false;       // [~...]
  char16_t ch = 0;            // Literal
  size_t setBegin = 0;        // Set: index range into Pattern::ranges
  size_t setEnd = 0;
};

struct CharRange {
  char16_t lo, hi;
};

struct Alternative {
  bool negated = false;
  std::vector<Token> tokens;
};

struct Pattern {
  std::vector<Alternative> alternatives;
  std::vector<CharRange> ranges;
};

// Compiles the pattern. A "[" without its closing "]" stands for itself; so
// does a "`" at the very end. The first character of a set (after an
// optional "~") is always a member, so "[]]" is the set of "]". A "," inside
// a set is a member, not a separator.
Pattern compile(std::u16string_view p) {
  Pattern out;
  out.alternatives.emplace_back();
  size_t i = 0;
  bool atStart = true;
  while (i < p.size()) {
    Alternative& alt = out.alternatives.back();
    char16_t c = p[i];
    if (atStart && c == u'~') {
      alt.negated = true;
      atStart = false;
      ++i;
      continue;
    }
    atStart = false;
    Token t{Kind::Literal};
    switch (c) {
      case u',':
        out.alternatives.emplace_back();
        atStart = true;
        ++i;
        continue;
      case u'#': t.kind = Kind::Digit; break;
      case u'@': t.kind = Kind::Alpha; break;
      case u'.': t.kind = Kind::NonAlnum; break;
      case u'?': t.kind = Kind::Any; break;
      case u'*':
        // Consecutive stars are one star.
        if (!alt.tokens.empty() && alt.tokens.back().kind == Kind::Star) {
          ++i;
          continue;
        }
        t.kind = Kind::Star;
        break;
      case u'`':
        if (i + 1 < p.size()) ++i;
        t.ch = p[i];
        break;
      case u'[': {
        size_t j = i + 1;
        bool neg = false;
        if (j < p.size() && p[j] == u'~') {
          neg = true;
          ++j;
        }
        size_t mark = out.ranges.size();
        bool first = true;
        bool closed = false;
        while (j < p.size()) {
          char16_t m = p[j];
          if (m == u']' && !first) {
            closed = true;
            break;
          }
          first = false;
          if (m == u'`' && j + 1 < p.size()) m = p[++j];
          ++j;
          char16_t hi = m;
          // a-z: a range, unless the "-" is the last member.
          if (j + 1 < p.size() && p[j] == u'-' && p[j + 1] != u']') {
            hi = p[j + 1];
            j += 2;
            if (hi == u'`' && j < p.size()) hi = p[j++];
          }
          out.ranges.push_back({m, hi});
        }
        if (!closed) {
          out.ranges.resize(mark);
          t.ch = u'[';
          break;
        }
        t.kind = Kind::Set;
        t.negated = neg;
        t.setBegin = mark;
        t.setEnd = out.ranges.size();
        i = j;  // at the "]"
        break;
      }
      default: t.ch = c; break;
    }
    alt.tokens.push_back(t);
    ++i;
  }
  return out;
}

bool inSet(const Pattern& pat, const Token& t, char16_t c, bool caseSensitive) {
  auto has = [&](char16_t x) {
    for (size_t k = t.setBegin; k < t.setEnd; ++k)
      if (x >= pat.ranges[k].lo && x <= pat.ranges[k].hi) return true;
    return false;
  };
  bool found = has(c) || (!caseSensitive && (has(foldUpper(c)) || has(foldLower(c))));
  return found != t.negated;
}

bool matchesOne(const Pattern& pat, const Token& t, char16_t c, bool caseSensitive) {
  switch (t.kind) {
    case Kind::Literal: return c == t.ch || (!caseSensitive && foldUpper(c) == foldUpper(t.ch));
    case Kind::Digit: return wcIsDigit(c);
    case Kind::Alpha: return wcIsAlpha(c);
    case Kind::NonAlnum: return !wcIsDigit(c) && !wcIsAlpha(c);
    case Kind::Any: return true;
    case Kind::Set: return inSet(pat, t, c, caseSensitive);
    case Kind::Star: return true;
  }
  return false;
}

// Runs the alternative as a set of live positions in its token list (a
// non-deterministic automaton simulated breadth-first), so that stars never
// cause backtracking.
bool matchAlternative(const Pattern& pat, const Alternative& alt, std::u16string_view s, bool caseSensitive) {
  const std::vector<Token>& tk = alt.tokens;
  size_t m = tk.size();
  std::vector<char> live(m + 1, 0), next(m + 1, 0);
  auto close = [&](std::vector<char>& v) {
    for (size_t k = 0; k < m; ++k)
      if (v[k] && tk[k].kind == Kind::Star) v[k + 1] = 1;
  };
  live[0] = 1;
  close(live);
  for (char16_t c : s) {
    std::fill(next.begin(), next.end(), 0);
    bool any = false;
    for (size_t k = 0; k < m; ++k) {
      if (!live[k]) continue;
      if (tk[k].kind == Kind::Star) {
        next[k] = 1;
        any = true;
      } else if (matchesOne(pat, tk[k], c, caseSensitive)) {
        next[k + 1] = 1;
        any = true;
      }
    }
    if (!any) return false;
    close(next);
    live.swap(next);
  }
  return live[m] != 0;
}

}  // namespace

bool wcMatch(std::u16string_view s, std::u16string_view pattern, bool caseSensitive) {
  Pattern pat = compile(pattern);
  for (const Alternative& alt : pat.alternatives)
    if (matchAlternative(pat, alt, s, caseSensitive) != alt.negated) return true;
  return false;
}

}  // namespace zepk::lisp
