// The wide string class.
#include "host/cstring.h"

#include <algorithm>

#include "host/system/winformat.h"

namespace {

size_t clampPos(int i, size_t len) { return i <= 0 ? 0 : std::min(static_cast<size_t>(i), len); }

bool inSet(WCHAR c, const WCHAR* set) {
  if (!set) return false;
  for (; *set; ++set)
    if (*set == c) return true;
  return false;
}

// White space as the Windows runtime's iswspace sees it in the C locale.
bool isSpace(WCHAR c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); }

WCHAR foldAscii(WCHAR c) { return c >= u'A' && c <= u'Z' ? static_cast<WCHAR>(c + 32) : c; }

}  // namespace

void CString::FormatV(const WCHAR* format, va_list args) { s_ = zepk::sys::vformatW(format, args); }

void CString::Format(const WCHAR* format, ...) {
  va_list ap;
  va_start(ap, format);
  s_ = zepk::sys::vformatW(format, ap);
  va_end(ap);
}

void CString::AppendFormat(const WCHAR* format, ...) {
  va_list ap;
  va_start(ap, format);
  s_ += zepk::sys::vformatW(format, ap);
  va_end(ap);
}

int CString::Find(const WCHAR* sub, int start) const {
  if (start < 0) start = 0;
  if (static_cast<size_t>(start) > s_.size()) return -1;
  size_t at = s_.find(sub ? sub : u"", static_cast<size_t>(start));
  return at == std::u16string::npos ? -1 : static_cast<int>(at);
}

int CString::Find(WCHAR ch, int start) const {
  if (start < 0) start = 0;
  if (static_cast<size_t>(start) >= s_.size()) return -1;
  size_t at = s_.find(ch, static_cast<size_t>(start));
  return at == std::u16string::npos ? -1 : static_cast<int>(at);
}

int CString::ReverseFind(WCHAR ch) const {
  size_t at = s_.rfind(ch);
  return at == std::u16string::npos ? -1 : static_cast<int>(at);
}

int CString::FindOneOf(const WCHAR* set) const {
  for (size_t i = 0; i < s_.size(); ++i)
    if (inSet(s_[i], set)) return static_cast<int>(i);
  return -1;
}

CString CString::Mid(int first) const { return Mid(first, GetLength()); }

CString CString::Mid(int first, int count) const {
  size_t f = clampPos(first, s_.size());
  size_t n = count <= 0 ? 0 : std::min(static_cast<size_t>(count), s_.size() - f);
  return CString(s_.substr(f, n));
}

CString CString::Left(int count) const { return CString(s_.substr(0, clampPos(count, s_.size()))); }

CString CString::Right(int count) const {
  size_t n = clampPos(count, s_.size());
  return CString(s_.substr(s_.size() - n));
}

CString CString::SpanIncluding(const WCHAR* set) const {
  size_t i = 0;
  while (i < s_.size() && inSet(s_[i], set)) ++i;
  return CString(s_.substr(0, i));
}

CString CString::SpanExcluding(const WCHAR* set) const {
  size_t i = 0;
  while (i < s_.size() && !inSet(s_[i], set)) ++i;
  return CString(s_.substr(0, i));
}

CString CString::Tokenize(const WCHAR* tokens, int& start) const {
  if (start < 0 || static_cast<size_t>(start) > s_.size()) {
    start = -1;
    return CString();
  }
  size_t i = static_cast<size_t>(start);
  while (i < s_.size() && inSet(s_[i], tokens)) ++i;
  if (i >= s_.size()) {
    start = -1;
    return CString();
  }
  size_t j = i;
  while (j < s_.size() && !inSet(s_[j], tokens)) ++j;
  start = static_cast<int>(j < s_.size() ? j + 1 : j);
  return CString(s_.substr(i, j - i));
}

int CString::Insert(int index, const WCHAR* text) {
  s_.insert(clampPos(index, s_.size()), text ? text : u"");
  return GetLength();
}

int CString::Insert(int index, WCHAR ch) {
  s_.insert(s_.begin() + static_cast<std::ptrdiff_t>(clampPos(index, s_.size())), ch);
  return GetLength();
}

int CString::Delete(int index, int count) {
  size_t f = clampPos(index, s_.size());
  if (count > 0) s_.erase(f, std::min(static_cast<size_t>(count), s_.size() - f));
  return GetLength();
}

int CString::Replace(const WCHAR* oldText, const WCHAR* newText) {
  std::u16string_view from(oldText ? oldText : u""), to(newText ? newText : u"");
  if (from.empty()) return 0;
  std::u16string out;
  int n = 0;
  size_t pos = 0;
  for (size_t at; (at = s_.find(from, pos)) != std::u16string::npos; pos = at + from.size(), ++n)
    out.append(s_, pos, at - pos).append(to);
  if (n) s_ = out.append(s_, pos, std::u16string::npos);
  return n;
}

int CString::Replace(WCHAR oldCh, WCHAR newCh) {
  int n = 0;
  for (WCHAR& c : s_)
    if (c == oldCh) c = newCh, ++n;
  return n;
}

int CString::Remove(WCHAR ch) {
  size_t before = s_.size();
  s_.erase(std::remove(s_.begin(), s_.end(), ch), s_.end());
  return static_cast<int>(before - s_.size());
}

CString& CString::TrimLeft() {
  size_t i = 0;
  while (i < s_.size() && isSpace(s_[i])) ++i;
  s_.erase(0, i);
  return *this;
}

CString& CString::TrimLeft(WCHAR ch) {
  size_t i = 0;
  while (i < s_.size() && s_[i] == ch) ++i;
  s_.erase(0, i);
  return *this;
}

CString& CString::TrimLeft(const WCHAR* set) {
  size_t i = 0;
  while (i < s_.size() && inSet(s_[i], set)) ++i;
  s_.erase(0, i);
  return *this;
}

CString& CString::TrimRight() {
  while (!s_.empty() && isSpace(s_.back())) s_.pop_back();
  return *this;
}

CString& CString::TrimRight(WCHAR ch) {
  while (!s_.empty() && s_.back() == ch) s_.pop_back();
  return *this;
}

CString& CString::TrimRight(const WCHAR* set) {
  while (!s_.empty() && inSet(s_.back(), set)) s_.pop_back();
  return *this;
}

CString& CString::MakeUpper() {
  for (WCHAR& c : s_)
    if (c >= u'a' && c <= u'z') c = static_cast<WCHAR>(c - 32);
  return *this;
}

CString& CString::MakeLower() {
  for (WCHAR& c : s_) c = foldAscii(c);
  return *this;
}

CString& CString::MakeReverse() {
  std::reverse(s_.begin(), s_.end());
  return *this;
}

int CString::Compare(const WCHAR* other) const {
  int c = s_.compare(other ? other : u"");
  return c < 0 ? -1 : c > 0 ? 1 : 0;
}

int CString::CompareNoCase(const WCHAR* other) const {
  std::u16string_view o(other ? other : u"");
  for (size_t i = 0;; ++i) {
    if (i == s_.size() || i == o.size()) return i == s_.size() ? (i == o.size() ? 0 : -1) : 1;
    WCHAR a = foldAscii(s_[i]), b = foldAscii(o[i]);
    if (a != b) return a < b ? -1 : 1;
  }
}

WCHAR* CString::GetBuffer(int minLength) {
  if (minLength > GetLength()) s_.resize(static_cast<size_t>(minLength));
  return s_.data();
}

void CString::ReleaseBuffer(int newLength) {
  if (newLength < 0) {
    size_t z = s_.find(u'\0');
    if (z != std::u16string::npos) s_.resize(z);
  } else {
    s_.resize(std::min(static_cast<size_t>(newLength), s_.size()));
  }
}
