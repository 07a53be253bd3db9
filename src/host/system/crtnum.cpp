// The C runtime's wide number readers, with the rules of the Windows
// runtime the toolkit was written against.
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <string>

#include "host/wincompat.h"

namespace {

bool isSpace(char16_t c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); }
bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// The sign and digits of an integer, clamped to [lo, hi] on overflow.
int64_t readInteger(const WCHAR* s, int64_t lo, int64_t hi) {
  if (!s) return 0;
  while (isSpace(*s)) ++s;
  bool neg = false;
  if (*s == u'+' || *s == u'-') neg = *s++ == u'-';
  // Accumulate as a negative number so that the lowest value fits.
  int64_t v = 0;
  bool over = false;
  for (; isDigit(*s); ++s) {
    int d = *s - u'0';
    if (!over) {
      if (v < (INT64_MIN + d) / 10) {
        over = true;
      } else {
        v = v * 10 - d;
      }
    }
  }
  if (over) return neg ? lo : hi;
  if (neg) return v < lo ? lo : v;
  if (v == INT64_MIN) return hi;
  v = -v;
  return v > hi ? hi : v;
}

}  // namespace

double _wtof(const WCHAR* s) {
  if (!s) return 0.0;
  while (isSpace(*s)) ++s;
  // The longest prefix of the form [sign] digits [. digits] [(e|E|d|D) [sign] digits],
  // read by strtod on ASCII text (the d exponent given as e).
  std::string text;
  const WCHAR* p = s;
  if (*p == u'+' || *p == u'-') text += static_cast<char>(*p++);
  bool digits = false;
  for (; isDigit(*p); ++p) text += static_cast<char>(*p), digits = true;
  if (*p == u'.') {
    text += '.';
    ++p;
    for (; isDigit(*p); ++p) text += static_cast<char>(*p), digits = true;
  }
  if (!digits) return 0.0;
  if (*p == u'e' || *p == u'E' || *p == u'd' || *p == u'D') {
    const WCHAR* q = p + 1;
    std::string exp = "e";
    if (*q == u'+' || *q == u'-') exp += static_cast<char>(*q++);
    if (isDigit(*q)) {
      for (; isDigit(*q); ++q) {
        // Very long exponents only need to stay huge.
        if (exp.size() < 12) exp += static_cast<char>(*q);
      }
      text += exp;
    }
  }
  errno = 0;
  double v = std::strtod(text.c_str(), nullptr);
  return v;
}

int _wtoi(const WCHAR* s) { return static_cast<int>(readInteger(s, INT_MIN, INT_MAX)); }
LONG _wtol(const WCHAR* s) { return static_cast<LONG>(readInteger(s, INT32_MIN, INT32_MAX)); }
int64_t _wtoi64(const WCHAR* s) { return readInteger(s, INT64_MIN, INT64_MAX); }

namespace {

// Only ASCII matters to the readers; other bytes stop them either way.
std::u16string widen(const char* s) {
  std::u16string w;
  if (s) {
    for (; *s; ++s) w += static_cast<char16_t>(static_cast<unsigned char>(*s) < 0x80 ? *s : 0x80);
  }
  return w;
}

}  // namespace

double winAtof(const char* s) { return s ? _wtof(widen(s).c_str()) : 0.0; }
int winAtoi(const char* s) { return s ? _wtoi(widen(s).c_str()) : 0; }
