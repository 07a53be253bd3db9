// Strings: building, cutting and searching text, conversions between text
// and numbers (including the host's unit formats), and wildcard matching.
//
// Text is UTF-16; lengths and positions count UTF-16 units. substr counts
// from 1, the vl-string- functions from 0.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "host/lisp/interp.h"
#include "host/lisp/printer.h"
#include "host/lisp/units.h"
#include "host/lisp/wildcard.h"
#include "host/system/utf.h"

namespace zepk::lisp {

namespace {

// ---- shared argument helpers

[[noreturn]] void badValue(Interp& in, std::u16string_view what, const Value& v) {
  std::u16string m = u"bad argument value: ";
  m += what;
  if (!what.empty()) m += u" ";
  m += prin1String(v);
  in.fail(std::u16string_view(m));
}

// An optional 0-based position: absent or nil is 0.
size_t optPos(Interp& in, ArgSpan a, size_t i) {
  if (i >= a.size || a[i].isNil()) return 0;
  int32_t p = argInt(in, a[i]);
  if (p < 0) badValue(in, u"non-negative", a[i]);
  return static_cast<size_t>(p);
}

bool isCSpace(char16_t c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); }

std::u16string_view skipCSpace(std::u16string_view s) {
  while (!s.empty() && isCSpace(s.front())) s.remove_prefix(1);
  return s;
}

// ---- building and measuring

Value fnStrcat(Interp& in, ArgSpan a) {
  std::u16string out;
  for (const Value& v : a) out += argStr(in, v);
  return str(std::move(out));
}

Value fnStrlen(Interp& in, ArgSpan a) {
  size_t n = 0;
  for (const Value& v : a) n += argStr(in, v).size();
  return Value::integer(static_cast<int32_t>(n));
}

// (substr string start [length]): start counts from 1 and must be positive;
// a start past the end gives "". A negative length, like a missing one,
// takes the rest of the string.
Value fnSubstr(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 3);
  const std::u16string& s = argStr(in, a[0]);
  int32_t start = argInt(in, a[1]);
  if (start < 1) badValue(in, u"positive", a[1]);
  int64_t len = -1;
  if (a.size == 3 && !a[2].isNil()) len = argInt(in, a[2]);
  size_t from = static_cast<size_t>(start) - 1;
  if (from >= s.size()) return str(std::u16string());
  return str(len < 0 ? s.substr(from) : s.substr(from, static_cast<size_t>(len)));
}

// (strcase string [lower]): ASCII and Latin-1 letters change case; other
// characters, Chinese included, are left alone.
Value fnStrcase(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  std::u16string s = argStr(in, a[0]);
  bool lower = a.size == 2 && a[1].truthy();
  for (char16_t& c : s) c = lower ? foldLower(c) : foldUpper(c);
  return str(std::move(s));
}

Value fnAscii(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  const std::u16string& s = argStr(in, a[0]);
  return Value::integer(s.empty() ? 0 : s[0]);
}

// (chr code): a one-character string; the code is taken to 16 bits, and
// code 0 (which would end the host's string at once) gives "".
Value fnChr(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  char16_t c = static_cast<char16_t>(argInt(in, a[0]) & 0xFFFF);
  return str(c == 0 ? std::u16string() : std::u16string(1, c));
}

// ---- numbers and text

// (atoi string): the leading integer, as C's atoi reads it (blanks, a sign,
// digits); 0 when there is none; clamped to the 32-bit range.
Value fnAtoi(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  std::u16string_view s = skipCSpace(argStr(in, a[0]));
  bool neg = false;
  if (!s.empty() && (s[0] == u'-' || s[0] == u'+')) {
    neg = s[0] == u'-';
    s.remove_prefix(1);
  }
  int64_t v = 0;
  for (char16_t c : s) {
    if (c < u'0' || c > u'9') break;
    v = v * 10 + (c - u'0');
    if (v > 2147483648LL) v = 2147483648LL;
  }
  if (neg) v = -v;
  if (v > INT32_MAX) v = INT32_MAX;
  return Value::integer(static_cast<int32_t>(v));
}

// (atof string): the leading decimal number, as C's atof reads it; 0.0
// when there is none.
Value fnAtof(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  std::u16string_view s = skipCSpace(argStr(in, a[0]));
  std::string t;
  size_t i = 0;
  auto digitAt = [&](size_t k) { return k < s.size() && s[k] >= u'0' && s[k] <= u'9'; };
  if (i < s.size() && (s[i] == u'-' || s[i] == u'+')) t.push_back(static_cast<char>(s[i++]));
  bool digits = false;
  while (digitAt(i)) t.push_back(static_cast<char>(s[i++])), digits = true;
  if (i < s.size() && s[i] == u'.') {
    t.push_back('.');
    ++i;
    while (digitAt(i)) t.push_back(static_cast<char>(s[i++])), digits = true;
  }
  if (!digits) return Value::real(0.0);
  if (i < s.size() && (s[i] == u'e' || s[i] == u'E')) {
    size_t j = i + 1;
    std::string e = "e";
    if (j < s.size() && (s[j] == u'-' || s[j] == u'+')) e.push_back(static_cast<char>(s[j++]));
    while (digitAt(j)) e.push_back(static_cast<char>(s[j++]));
    if (e.back() >= '0' && e.back() <= '9') t += e;
  }
  return Value::real(std::strtod(t.c_str(), nullptr));
}

Value fnItoa(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return str(sys::fromUtf8(std::to_string(argInt(in, a[0]))));
}

Value fnPrin1ToString(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return str(prin1String(a[0]));
}

Value fnPrincToString(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return str(princString(a[0]));
}

// ---- units

UnitStyle unitStyle(Interp& in) {
  UnitStyle st;
  st.dimzin = in.sysvarInt("DIMZIN", 0);
  st.unitmode = in.sysvarInt("UNITMODE", 0);
  return st;
}

int modeArg(Interp& in, ArgSpan a, size_t i, const char* sysvar, int fallback, int lo, int hi) {
  if (i >= a.size) return in.sysvarInt(sysvar, fallback);
  int32_t m = argInt(in, a[i]);
  if (m < lo || m > hi) badValue(in, u"", a[i]);
  return m;
}

int precArg(Interp& in, ArgSpan a, size_t i, const char* sysvar, int fallback) {
  if (i >= a.size) return in.sysvarInt(sysvar, fallback);
  int32_t p = argInt(in, a[i]);
  if (p < 0) badValue(in, u"non-negative", a[i]);
  return p;
}

// (rtos number [mode [precision]]): defaults from LUNITS and LUPREC.
Value fnRtos(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 3);
  double v = argNum(in, a[0]);
  int mode = modeArg(in, a, 1, "LUNITS", 2, 1, kMaxLinearMode);
  int prec = precArg(in, a, 2, "LUPREC", 4);
  return str(formatLinear(v, mode, prec, unitStyle(in)));
}

// (distof string [mode]): the distance, or nil when the text is not one.
Value fnDistof(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  const std::u16string& s = argStr(in, a[0]);
  int mode = modeArg(in, a, 1, "LUNITS", 2, 1, kMaxLinearMode);
  std::optional<double> v = parseLinear(s, mode);
  return v ? Value::real(*v) : Value();
}

// The drawing's angle base and sense (ANGBASE, ANGDIR). Angles show as
// the host shows directions: measured from the base, clockwise when ANGDIR
// is 1. Surveyor's bearings (mode 4) name absolute directions and are left
// as they are.
struct AngleFrame {
  double base = 0;
  bool clockwise = false;
  bool applies(int mode) const { return mode != 4 && (base != 0 || clockwise); }
};

AngleFrame angleFrame(Interp& in) {
  AngleFrame f;
  if (!in.sysvar) return f;
  Value b = in.sysvar("ANGBASE");
  if (b.isNumber()) f.base = b.asNumber();
  f.clockwise = in.sysvarInt("ANGDIR", 0) == 1;
  return f;
}

// (angtos angle [mode [precision]]): defaults from AUNITS and AUPREC.
Value fnAngtos(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 3);
  double v = argNum(in, a[0]);
  int mode = modeArg(in, a, 1, "AUNITS", 0, 0, kMaxAngularMode);
  int prec = precArg(in, a, 2, "AUPREC", 0);
  AngleFrame f = angleFrame(in);
  if (f.applies(mode)) v = f.clockwise ? f.base - v : v - f.base;
  return str(formatAngle(v, mode, prec, unitStyle(in)));
}

// (angtof string [mode]): the absolute angle in radians of a direction
// written as angtos writes it.
Value fnAngtof(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  const std::u16string& s = argStr(in, a[0]);
  int mode = modeArg(in, a, 1, "AUNITS", 0, 0, kMaxAngularMode);
  std::optional<double> v = parseAngle(s, mode);
  if (!v) return Value();
  AngleFrame f = angleFrame(in);
  if (f.applies(mode)) {
    double r = f.clockwise ? f.base - *v : f.base + *v;
    const double full = 2 * 3.14159265358979323846;
    r = std::fmod(r, full);
    if (r < 0) r += full;
    v = r;
  }
  return Value::real(*v);
}

// ---- the vl-string family

Value fnStringToList(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  const std::u16string& s = argStr(in, a[0]);
  Value out;
  for (size_t i = s.size(); i-- > 0;) out = cons(Value::integer(s[i]), std::move(out));
  return out;
}

// (vl-list->string codes): a code of 0 ends the string, as it ends the
// host's own strings.
Value fnListToString(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  argList(in, a[0]);
  std::u16string s;
  bool ended = false;
  for (const Value* p = &a[0]; p->isCons(); p = &p->as<Cons>()->cdr) {
    char16_t c = static_cast<char16_t>(argInt(in, p->as<Cons>()->car) & 0xFFFF);
    if (c == 0) ended = true;
    if (!ended) s.push_back(c);
  }
  return str(std::move(s));
}

Value fnStringElt(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  const std::u16string& s = argStr(in, a[0]);
  int32_t i = argInt(in, a[1]);
  if (i < 0 || static_cast<size_t>(i) >= s.size()) badValue(in, u"string position is out of range", a[1]);
  return Value::integer(s[static_cast<size_t>(i)]);
}

template <bool Left, bool Right>
Value stringTrim(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  const std::u16string& set = argStr(in, a[0]);
  std::u16string_view s = argStr(in, a[1]);
  auto inSet = [&](char16_t c) { return set.find(c) != std::u16string::npos; };
  if (Left)
    while (!s.empty() && inSet(s.front())) s.remove_prefix(1);
  if (Right)
    while (!s.empty() && inSet(s.back())) s.remove_suffix(1);
  return str(std::u16string(s));
}

// (vl-string-mismatch s1 s2 [pos1 [pos2 [ignore-case]]]): the length of
// the common prefix of s1 from pos1 and s2 from pos2.
Value fnStringMismatch(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 5);
  const std::u16string& s1 = argStr(in, a[0]);
  const std::u16string& s2 = argStr(in, a[1]);
  size_t p1 = optPos(in, a, 2);
  size_t p2 = optPos(in, a, 3);
  bool fold = a.size == 5 && a[4].truthy();
  size_t n = 0;
  while (p1 + n < s1.size() && p2 + n < s2.size()) {
    char16_t x = s1[p1 + n], y = s2[p2 + n];
    if (x != y && !(fold && foldUpper(x) == foldUpper(y))) break;
    ++n;
  }
  return Value::integer(static_cast<int32_t>(n));
}

// (vl-string-position code string [start [from-end]]): from-end searches
// from the last character back to start.
Value fnStringPosition(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 4);
  int32_t code = argInt(in, a[0]);
  const std::u16string& s = argStr(in, a[1]);
  size_t start = optPos(in, a, 2);
  bool fromEnd = a.size == 4 && a[3].truthy();
  if (start >= s.size() || code < 0 || code > 0xFFFF) return Value();
  char16_t c = static_cast<char16_t>(code);
  size_t at = fromEnd ? s.rfind(c) : s.find(c, start);
  if (at == std::u16string::npos || at < start) return Value();
  return Value::integer(static_cast<int32_t>(at));
}

// (vl-string-search pattern string [start]).
Value fnStringSearch(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 3);
  const std::u16string& pat = argStr(in, a[0]);
  const std::u16string& s = argStr(in, a[1]);
  size_t start = optPos(in, a, 2);
  if (start > s.size()) return Value();
  size_t at = s.find(pat, start);
  return at == std::u16string::npos ? Value() : Value::integer(static_cast<int32_t>(at));
}

// (vl-string-subst new pattern string [start]): the first occurrence only.
Value fnStringSubst(Interp& in, ArgSpan a) {
  checkArgc(in, a, 3, 4);
  const std::u16string& repl = argStr(in, a[0]);
  const std::u16string& pat = argStr(in, a[1]);
  const std::u16string& s = argStr(in, a[2]);
  size_t start = optPos(in, a, 3);
  size_t at = start > s.size() ? std::u16string::npos : s.find(pat, start);
  if (at == std::u16string::npos) return a[2];
  std::u16string out = s;
  out.replace(at, pat.size(), repl);
  return str(std::move(out));
}

// (vl-string-translate from to string): each character found in from is
// replaced by the one at the same place in to; a character of from beyond
// the end of to is left as it is. The first occurrence in from counts.
Value fnStringTranslate(Interp& in, ArgSpan a) {
  checkArgc(in, a, 3, 3);
  const std::u16string& from = argStr(in, a[0]);
  const std::u16string& to = argStr(in, a[1]);
  std::u16string s = argStr(in, a[2]);
  for (char16_t& c : s) {
    size_t k = from.find(c);
    if (k != std::u16string::npos && k < to.size()) c = to[k];
  }
  return str(std::move(s));
}

Value fnWcmatch(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  const std::u16string& s = argStr(in, a[0]);
  const std::u16string& pat = argStr(in, a[1]);
  return boolean(wcMatch(s, pat, true));
}

}  // namespace

void registerStrings(Interp& in) {
  in.defSubr("strcat", fnStrcat);
  in.defSubr("strlen", fnStrlen);
  in.defSubr("substr", fnSubstr);
  in.defSubr("strcase", fnStrcase);
  in.defSubr("ascii", fnAscii);
  in.defSubr("chr", fnChr);
  in.defSubr("atoi", fnAtoi);
  in.defSubr("atof", fnAtof);
  in.defSubr("itoa", fnItoa);
  in.defSubr("vl-prin1-to-string", fnPrin1ToString);
  in.defSubr("vl-princ-to-string", fnPrincToString);
  in.defSubr("rtos", fnRtos);
  in.defSubr("distof", fnDistof);
  in.defSubr("angtos", fnAngtos);
  in.defSubr("angtof", fnAngtof);
  in.defSubr("vl-string->list", fnStringToList);
  in.defSubr("vl-list->string", fnListToString);
  in.defSubr("vl-string-elt", fnStringElt);
  in.defSubr("vl-string-left-trim", stringTrim<true, false>);
  in.defSubr("vl-string-right-trim", stringTrim<false, true>);
  in.defSubr("vl-string-trim", stringTrim<true, true>);
  in.defSubr("vl-string-mismatch", fnStringMismatch);
  in.defSubr("vl-string-position", fnStringPosition);
  in.defSubr("vl-string-search", fnStringSearch);
  in.defSubr("vl-string-subst", fnStringSubst);
  in.defSubr("vl-string-translate", fnStringTranslate);
  in.defSubr("wcmatch", fnWcmatch);
}

}  // namespace zepk::lisp
