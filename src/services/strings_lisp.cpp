// The LISP functions of the string and file-name family: each reads its
// arguments, calls the text operations of strings.cpp and returns.
//
// Most of them take their string arguments through the string class's
// Format step (formatWithoutArguments), so "%%" in an argument arrives as
// "%". Search, Length, SplitSingles, SplitByChEn, unSPlit and SortUp take
// them as they stand.
#include "services/strings_lisp.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

#include "frame/lisp_bridge.h"
#include "host/aced.h"
#include "services/strings.h"

namespace zepk::services {

namespace {

using frame::ArgReader;
using frame::MsgStyle;
using frame::failBadArg;
using frame::failTooFew;
using frame::failTooMany;

constexpr MsgStyle kStyle = MsgStyle::Colon;

// A required string argument, through the Format step.
bool text(ArgReader& in, CString& s, int n) {
  std::u16string raw;
  if (!in.string(raw, n)) return false;
  s = formatWithoutArguments(CString(raw));
  return true;
}

// A required integer argument: RTSHORT only, an RTLONG is refused.
bool shortInt(ArgReader& in, int& v, int n) {
  if (in.atEnd()) {
    failTooFew(in.style());
    return false;
  }
  int32_t x = 0;
  if (RbGetShort(in.cursor(), x) != RTNORM) {
    failBadArg(in.style(), n);
    return false;
  }
  v = x;
  return true;
}

// Moves past one argument, a whole list when it is one.
void skipArgument(resbuf** cursor) {
  int depth = 0;
  do {
    if ((*cursor)->restype == RTLB) ++depth;
    else if ((*cursor)->restype == RTLE) --depth;
    *cursor = (*cursor)->rbnext;
  } while (*cursor && depth > 0);
}

int retText(const CString& s) {
  acedRetStr(s.GetString());
  return RSRSLT;
}

int retBool(bool b) {
  if (b) acedRetT();
  else acedRetNil();
  return RSRSLT;
}

// nil for no strings.
int retStrings(const std::vector<CString>& parts) {
  std::vector<std::u16string> w;
  w.reserve(parts.size());
  for (const CString& p : parts) w.push_back(p.str());
  return frame::retList(RbFromStrings(w));
}

// One string in (through Format), one value out.
template <typename F>
int withOneText(F f) {
  ArgReader in(kStyle);
  CString s;
  if (!text(in, s, 1) || !in.end()) return RTERROR;
  return f(s);
}

// Text and an optional set of characters for the trim functions.
template <typename F>
int trimWith(F trim) {
  ArgReader in(kStyle);
  CString s, set;
  if (!text(in, s, 1)) return RTERROR;
  bool hasSet = !in.atEnd();
  if (hasSet && !text(in, set, 2)) return RTERROR;
  if (!in.end()) return RTERROR;
  trim(s, hasSet ? set.GetString() : nullptr);
  return retText(s);
}

// Text, a start and an optional count, for Delete and Mid.
template <typename F>
int withRange(int defaultCount, F f) {
  ArgReader in(kStyle);
  CString s;
  int start = 0, count = defaultCount;
  if (!text(in, s, 1) || !shortInt(in, start, 2)) return RTERROR;
  if (!in.atEnd() && !shortInt(in, count, 3)) return RTERROR;
  if (!in.end()) return RTERROR;
  return retText(f(s, start, count));
}

}  // namespace

int lispListSortUp() {
  resbuf* args = acedGetArgs();
  if (!args) {
    failTooFew(MsgStyle::Plain);
    acedRetVoid();
    return RTERROR;
  }
  // The chain is the host's: after the result is set, the nodes that the
  // sort put in for point arguments go, and the host's nodes are linked as
  // they came.
  std::vector<resbuf*> hosts;
  for (resbuf* p = args; p; p = p->rbnext) hosts.push_back(p);
  sortNumbersUp(args);
  acedRetList(args);
  std::unordered_set<resbuf*> kept(hosts.begin(), hosts.end());
  for (resbuf* p = args; p;) {
    resbuf* next = p->rbnext;
    if (!kept.count(p)) {
      p->rbnext = nullptr;
      acutRelRb(p);
    }
    p = next;
  }
  for (size_t i = 0; i < hosts.size(); ++i) hosts[i]->rbnext = i + 1 < hosts.size() ? hosts[i + 1] : nullptr;
  return RSRSLT;
}

int lispFileNameIsValid() {
  return withOneText([](const CString& s) { return retBool(isValidFileName(s)); });
}

int lispPathIsValid() {
  return withOneText([](const CString& s) { return retBool(isValidPath(s)); });
}

// (ZEPK-String-Split text separator-or-list [keep-empty])
int lispStringSplit() {
  ArgReader in(kStyle);
  CString s, separator;
  std::vector<CString> separators;
  if (!text(in, s, 1)) return RTERROR;
  if (in.atEnd()) return failTooFew(kStyle);
  const bool several = in.type() == RTLB;
  if (several) {
    std::vector<std::u16string> raw;
    if (RbGetStringArray(in.cursor(), raw) != RTNORM) return failBadArg(kStyle, 2);
    for (const std::u16string& r : raw) separators.push_back(formatWithoutArguments(CString(r)));
  } else if (in.type() != RTSTR || !text(in, separator, 2)) {
    return failBadArg(kStyle, 2);
  }
  bool keepEmpty = false;
  if (!in.atEnd()) {
    keepEmpty = in.type() != RTNIL;
    skipArgument(in.cursor());
  }
  if (!in.end()) return RTERROR;
  return retStrings(several ? splitText(s, separators, keepEmpty) : splitText(s, separator, keepEmpty));
}

// (ZEPK-String-unSPlit strings [separator]): its failures print and still
// return RSRSLT, with no result.
int lispStringUnsplit() {
  constexpr MsgStyle style = MsgStyle::LineBang;
  resbuf* cur = acedGetArgs();
  if (!cur) return RSRSLT;
  std::vector<std::u16string> parts;
  std::u16string separator;
  if (RbGetStringArray(&cur, parts) != RTNORM) {
    failBadArg(style, 1);
  } else if (cur && RbGetCString(&cur, separator) != RTNORM) {
    failBadArg(style, 2);
  } else if (cur) {
    failTooMany(style);
  } else {
    std::u16string joined = parts.front();
    for (size_t i = 1; i < parts.size(); ++i) joined += separator + parts[i];
    acedRetStr(joined.c_str());
  }
  return RSRSLT;
}

int lispStringReplace() {
  ArgReader in(kStyle);
  CString s, from, to;
  if (!text(in, s, 1) || !text(in, from, 2) || !text(in, to, 3) || !in.end()) return RTERROR;
  s.Replace(from, to);
  return retText(s);
}

int lispStringReverse() {
  return withOneText([](CString s) { return retText(s.MakeReverse()); });
}

// (ZEPK-String-Search pattern text [start]): too few and too many in the
// colon style, a bad argument without the "错误:" prefix.
int lispStringSearch() {
  constexpr MsgStyle bad = MsgStyle::LineEnd;
  resbuf* cur = acedGetArgs();
  if (!cur) return failTooFew(kStyle);
  const ACHAR* pattern = nullptr;
  const ACHAR* s = nullptr;
  int32_t start = 0;
  if (RbGetStrPtr(&cur, pattern) != RTNORM) return failBadArg(bad, 1);
  if (RbGetStrPtr(&cur, s) != RTNORM) return failBadArg(bad, 2);
  if (cur && RbGetShort(&cur, start) != RTNORM) return failBadArg(bad, 3);
  if (cur) return failTooMany(kStyle);
  acedRetInt(searchText(pattern, s, start));
  return RSRSLT;
}

int lispStringTrimLeft() {
  return trimWith([](CString& s, const ACHAR* set) { set ? s.TrimLeft(set) : s.TrimLeft(); });
}

int lispStringTrimRight() {
  return trimWith([](CString& s, const ACHAR* set) { set ? s.TrimRight(set) : s.TrimRight(); });
}

int lispStringTrim() {
  return trimWith([](CString& s, const ACHAR* set) {
    if (set) s.TrimLeft(set).TrimRight(set);
    else s.TrimLeft().TrimRight();
  });
}

int lispStringDelete() { return withRange(1, deleteChars); }

int lispStringMid() { return withRange(-1, midChars); }

int lispStringRemove() {
  ArgReader in(kStyle);
  CString s, set;
  if (!text(in, s, 1) || !text(in, set, 2) || !in.end()) return RTERROR;
  for (int i = 0; i < set.GetLength(); ++i) s.Remove(set[i]);
  return retText(s);
}

int lispStringInsert() {
  ArgReader in(kStyle);
  CString s, insert;
  int index = 0;
  if (!text(in, s, 1) || !shortInt(in, index, 2) || !text(in, insert, 3) || !in.end()) return RTERROR;
  return retText(insertChars(s, index, insert));
}

// Length and SplitSingles report a wrong type without a number.
int lispStringLength() {
  ArgReader in(kStyle);
  std::u16string s;
  if (!in.string(s, 0) || !in.end()) return RTERROR;
  acedRetInt(static_cast<int>(s.size()));
  return RSRSLT;
}

int lispStringSplitSingles() {
  ArgReader in(kStyle);
  std::u16string s;
  if (!in.string(s, 0) || !in.end()) return RTERROR;
  std::vector<CString> singles;
  for (char16_t c : s) singles.emplace_back(c);
  return retStrings(singles);
}

// One string; whatever follows it is not looked at. Nothing found sets no
// value.
int lispStringSplitByChEn() {
  ArgReader in(kStyle);
  std::u16string s;
  if (!in.string(s, 1)) return RTERROR;
  std::vector<CString> runs = splitByByteClass(CString(s));
  return runs.empty() ? RSRSLT : retStrings(runs);
}

int lispStringCompareNoCase() {
  ArgReader in(kStyle);
  CString a, b;
  if (!text(in, a, 1) || !text(in, b, 2) || !in.end()) return RTERROR;
  return retBool(a.CompareNoCase(b) == 0);
}

int lispFileNameBase() {
  return withOneText([](const CString& s) { return retText(fileNameBase(s)); });
}

int lispFileNameFull() {
  return withOneText([](const CString& s) { return retText(fileNameFull(s)); });
}

int lispFileNamePath() {
  return withOneText([](const CString& s) { return retText(fileNamePath(s)); });
}

int lispFileNameExt() {
  return withOneText([](const CString& s) { return retText(fileNameExt(s)); });
}

// The folder of the module's file, cut after its last separator. This host
// keeps every module's file beside its program and names it with "/", so
// the program's file is asked for and "/" counts as a separator as well as
// "\".
int lispApiPath() {
  if (acedGetArgs()) return failTooMany(kStyle);
  WCHAR file[MAX_PATH + 1] = {0};
  GetModuleFileNameW(nullptr, file, MAX_PATH);
  CString path(file);
  int cut = std::max(path.ReverseFind(u'\\'), path.ReverseFind(u'/'));
  return retText(path.Left(cut + 1));
}

}  // namespace zepk::services
