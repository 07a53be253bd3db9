// Text operations of the string family.
#include "services/strings.h"

#include <string>

#include "host/wincompat.h"

namespace zepk::services {

namespace {

// What a conversion reads after its '*' ints.
enum class ArgKind { None, Int, LongLong, Double, Pointer };

// One conversion run through Format with zeros for everything it reads.
template <typename T>
CString formatOne(const CString& conversion, int stars, T zero) {
  CString out;
  if (stars == 0) out.Format(conversion, zero);
  else if (stars == 1) out.Format(conversion, 0, zero);
  else out.Format(conversion, 0, 0, zero);
  return out;
}

// Reads one conversion from text at i (the '%'), in the order and with the
// letters the formatter knows; gives its end, how many '*' it holds and
// what its value is.
int scanConversion(const CString& text, int i, int* stars, ArgKind* kind) {
  const int n = text.GetLength();
  auto at = [&](int k) { return k < n ? text[k] : WCHAR(0); };
  *stars = 0;
  *kind = ArgKind::None;
  ++i;
  while (at(i) == u'-' || at(i) == u'+' || at(i) == u' ' || at(i) == u'#' || at(i) == u'0') ++i;
  if (at(i) == u'*') ++i, ++*stars;
  while (at(i) >= u'0' && at(i) <= u'9') ++i;
  if (at(i) == u'.') {
    ++i;
    if (at(i) == u'*') ++i, ++*stars;
    while (at(i) >= u'0' && at(i) <= u'9') ++i;
  }
  bool wide64 = false;
  switch (at(i)) {
    case u'h': ++i; if (at(i) == u'h') ++i; break;
    case u'l': ++i; if (at(i) == u'l') ++i, wide64 = true; break;
    case u'w': case u'L': ++i; break;
    case u'z': case u'j': case u't': ++i, wide64 = true; break;
    case u'I':
      ++i;
      if (at(i) == u'6' && at(i + 1) == u'4') i += 2, wide64 = true;
      else if (at(i) == u'3' && at(i + 1) == u'2') i += 2;
      else wide64 = true;
      break;
    default: break;
  }
  if (i >= n) return n;  // ends inside the conversion: printed as written
  switch (text[i]) {
    case u'd': case u'i': case u'u': case u'o': case u'x': case u'X':
      *kind = wide64 ? ArgKind::LongLong : ArgKind::Int;
      break;
    case u'c': case u'C': *kind = ArgKind::Int; break;
    case u'e': case u'E': case u'f': case u'g': case u'G': *kind = ArgKind::Double; break;
    case u's': case u'S': case u'p': case u'n': *kind = ArgKind::Pointer; break;
    default: break;  // "%%" and unknown letters read no value
  }
  return i + 1;
}

// Finds the earliest separator in what remains; ties go to the earlier one
// in the list. Its position and length, or -1.
int findFirst(const CString& rest, const std::vector<CString>& seps, int* len) {
  int best = -1;
  for (const CString& s : seps) {
    if (s.IsEmpty()) continue;
    int at = rest.Find(s);
    if (at >= 0 && (best < 0 || at < best)) best = at, *len = s.GetLength();
  }
  return best;
}

std::vector<CString> splitWith(const CString& text, const std::vector<CString>& seps, bool keepEmpty) {
  std::vector<CString> out;
  if (text.IsEmpty()) return out;
  bool any = false;
  for (const CString& s : seps) any = any || !s.IsEmpty();
  if (!any) return {text};
  CString rest = text;
  for (int len = 0, at; (at = findFirst(rest, seps, &len)) >= 0;) {
    if (at == 0) {
      if (keepEmpty) out.emplace_back();
    } else {
      out.push_back(rest.Left(at));
    }
    rest = rest.Mid(at + len);
  }
  if (!rest.IsEmpty() || keepEmpty) out.push_back(rest);
  return out;
}

}  // namespace

CString formatWithoutArguments(const CString& text) {
  CString out;
  const int n = text.GetLength();
  for (int i = 0; i < n;) {
    int pct = text.Find(u'%', i);
    if (pct < 0) {
      out += text.Mid(i);
      break;
    }
    out += text.Mid(i, pct - i);
    int stars = 0;
    ArgKind kind = ArgKind::None;
    int end = scanConversion(text, pct, &stars, &kind);
    CString conversion = text.Mid(pct, end - pct);
    switch (kind) {
      case ArgKind::Int: out += formatOne(conversion, stars, 0); break;
      case ArgKind::LongLong: out += formatOne(conversion, stars, 0LL); break;
      case ArgKind::Double: out += formatOne(conversion, stars, 0.0); break;
      case ArgKind::Pointer: out += formatOne(conversion, stars, static_cast<const void*>(nullptr)); break;
      case ArgKind::None: out += formatOne(conversion, stars, 0); break;  // the zero is not read
    }
    i = end;
  }
  return out;
}

std::vector<CString> splitText(const CString& text, const CString& separator, bool keepEmpty) {
  return splitWith(text, {separator}, keepEmpty);
}

std::vector<CString> splitText(const CString& text, const std::vector<CString>& separators, bool keepEmpty) {
  return splitWith(text, separators, keepEmpty);
}

int searchText(const CString& pattern, const CString& text, int start) {
  int p = pattern.GetLength(), t = text.GetLength();
  for (int i = start; i + p < t; ++i) {
    bool same = true;
    for (int k = 0; k < p && same; ++k) same = i + k >= 0 && text[i + k] == pattern[k];
    if (same) return i;
  }
  return -1;
}

CString deleteChars(const CString& text, int start, int count) {
  CString out = text;
  if (start < 0) start = 0;
  if (count > 0 && start < text.GetLength()) out.Delete(start, count);
  return out;
}

CString midChars(const CString& text, int start, int count) {
  if (start < 0) start = 0;
  if (start >= text.GetLength()) return CString();
  return count < 0 ? text.Mid(start) : text.Mid(start, count);
}

CString insertChars(const CString& text, int index, const CString& insert) {
  if (text.IsEmpty()) return CString();
  CString out = text;
  out.Insert(index < 0 ? 0 : index, insert);
  return out;
}

std::vector<CString> splitByByteClass(const CString& text) {
  std::vector<CString> out;
  int n = WideCharToMultiByte(CP_ACP, 0, text.GetString(), text.GetLength(), nullptr, 0, nullptr, nullptr);
  if (n <= 0) return out;
  std::string bytes(static_cast<size_t>(n), '\0');
  WideCharToMultiByte(CP_ACP, 0, text.GetString(), text.GetLength(), bytes.data(), n, nullptr, nullptr);
  auto wide = [](const std::string& run) {
    int m = MultiByteToWideChar(CP_ACP, 0, run.data(), static_cast<int>(run.size()), nullptr, 0);
    std::u16string w(static_cast<size_t>(m > 0 ? m : 0), u'\0');
    if (m > 0) MultiByteToWideChar(CP_ACP, 0, run.data(), static_cast<int>(run.size()), w.data(), m);
    return CString(w);
  };
  size_t start = 0;
  for (size_t i = 1; i <= bytes.size(); ++i) {
    bool high = static_cast<unsigned char>(bytes[i - 1]) >= 160;
    if (i == bytes.size() || (static_cast<unsigned char>(bytes[i]) >= 160) != high) {
      out.push_back(wide(bytes.substr(start, i - start)));
      start = i;
    }
  }
  return out;
}

CString fileNameFull(const CString& path) { return path.Mid(path.ReverseFind(u'\\') + 1); }

CString fileNameBase(const CString& path) {
  CString name = fileNameFull(path);
  int dot = name.ReverseFind(u'.');
  return dot < 0 ? name : name.Left(dot);
}

CString fileNamePath(const CString& path) { return path.Left(path.ReverseFind(u'\\') + 1); }

CString fileNameExt(const CString& path) {
  CString name = fileNameFull(path);
  int dot = name.ReverseFind(u'.');
  return dot < 0 ? CString() : name.Mid(dot + 1);
}

bool isValidFileName(const CString& name) {
  // Seven marks and three rare code units that stand where two-character
  // constants were once typed into this table (so backslash, quote and tab
  // are allowed). The table is kept as it is.
  static const WCHAR kRefused[] = {u'/', u':', u'*', u'?', u'<', u'>', u'|', 0x2F2F, 0x2F22, 0x2F74, 0};
  return name.FindOneOf(kRefused) < 0;
}

bool isValidPath(const CString& path) {
  CString p = path;
  if (p.GetLength() > 1 && p[1] == u':') p.Delete(0, 2);
  return isValidFileName(p);
}

void sortNumbersUp(resbuf* chain) {
  // A point node becomes the list it was typed as, in place: the node turns
  // into the list's start and its coordinates follow as reals.
  for (resbuf* a = chain; a; a = a->rbnext) {
    if (a->restype != RTPOINT && a->restype != RT3DPOINT) continue;
    const int n = a->restype == RTPOINT ? 2 : 3;
    resbuf* tail = acutNewRb(RTLE);
    for (int i = n - 1; i >= 0; --i) {
      resbuf* c = acutNewRb(RTREAL);
      c->resval.rreal = a->resval.rpoint[i];
      c->rbnext = tail;
      tail = c;
    }
    resbuf* last = tail;
    while (last->rbnext) last = last->rbnext;
    last->rbnext = a->rbnext;
    a->restype = RTLB;
    a->rbnext = tail;
  }
  auto isNumber = [](const resbuf* rb) { return rb->restype == RTSHORT || rb->restype == RTREAL; };
  auto value = [](const resbuf* rb) { return rb->restype == RTSHORT ? double(rb->resval.rint) : rb->resval.rreal; };
  auto store = [](resbuf* rb, short type, double v) {
    rb->restype = type;
    if (type == RTSHORT) rb->resval.rint = static_cast<short>(v);
    else rb->resval.rreal = v;
  };
  for (resbuf* a = chain; a; a = a->rbnext) {
    if (!isNumber(a)) continue;
    for (resbuf* b = a->rbnext; b; b = b->rbnext) {
      if (!isNumber(b) || !(value(a) > value(b))) continue;
      const short ta = a->restype, tb = b->restype;
      const double va = value(a), vb = value(b);
      store(a, tb, vb);
      store(b, ta, va);
    }
  }
}

}  // namespace zepk::services
