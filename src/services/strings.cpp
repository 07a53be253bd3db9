// Text operations of the string family.
#include "services/strings.h"

#include <string>

#include "host/wincompat.h"

namespace zepk::services {

namespace {

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

}  // namespace zepk::services
