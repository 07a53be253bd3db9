// The wide string class that the toolkit's text handling is written
// against, with the members and edge rules of the Windows class it imitates:
// positions are zero-based UTF-16 units, out-of-range positions and counts
// are clamped rather than refused, Find gives -1 when nothing is found, and
// Format follows the Windows C runtime (see host/system/winformat.h).
#pragma once

#include <cstdarg>
#include <string>
#include <string_view>

#include "host/wincompat.h"

class CString {
 public:
  CString() = default;
  CString(const WCHAR* s) : s_(s ? s : u"") {}  // NOLINT: converts as the original does
  CString(const WCHAR* s, int n) : s_(s ? std::u16string(s, n < 0 ? 0 : static_cast<size_t>(n)) : u"") {}
  CString(WCHAR ch, int repeat = 1) : s_(repeat > 0 ? static_cast<size_t>(repeat) : 0, ch) {}
  CString(std::u16string s) : s_(std::move(s)) {}  // NOLINT
  CString(std::u16string_view s) : s_(s) {}        // NOLINT

  int GetLength() const { return static_cast<int>(s_.size()); }
  bool IsEmpty() const { return s_.empty(); }
  void Empty() { s_.clear(); }
  WCHAR GetAt(int i) const { return i >= 0 && i < GetLength() ? s_[static_cast<size_t>(i)] : 0; }
  void SetAt(int i, WCHAR ch) {
    if (i >= 0 && i < GetLength()) s_[static_cast<size_t>(i)] = ch;
  }
  WCHAR operator[](int i) const { return GetAt(i); }
  operator const WCHAR*() const { return s_.c_str(); }  // NOLINT
  const WCHAR* GetString() const { return s_.c_str(); }
  const std::u16string& str() const { return s_; }

  // printf-style, by the Windows runtime's rules.
  void Format(const WCHAR* format, ...);
  void FormatV(const WCHAR* format, va_list args);
  void AppendFormat(const WCHAR* format, ...);

  // -1 when not found or when start lies past the end; an empty sub is
  // found at start.
  int Find(const WCHAR* sub, int start = 0) const;
  int Find(WCHAR ch, int start = 0) const;
  int ReverseFind(WCHAR ch) const;
  int FindOneOf(const WCHAR* set) const;

  // Start below 0 is 0; a count below 0 is 0 (Mid with no count: to the end).
  CString Mid(int first) const;
  CString Mid(int first, int count) const;
  CString Left(int count) const;
  CString Right(int count) const;
  CString SpanIncluding(const WCHAR* set) const;
  CString SpanExcluding(const WCHAR* set) const;
  // The next token after *start, separated by any of the characters of
  // tokens; *start becomes -1 and the result empty when none is left.
  CString Tokenize(const WCHAR* tokens, int& start) const;

  // Each returns the new length, or for Replace and Remove the count of
  // changes.
  int Insert(int index, const WCHAR* text);
  int Insert(int index, WCHAR ch);
  int Delete(int index, int count = 1);
  int Replace(const WCHAR* oldText, const WCHAR* newText);
  int Replace(WCHAR oldCh, WCHAR newCh);
  int Remove(WCHAR ch);

  // With no argument white space goes; with a character or a set, those.
  CString& TrimLeft();
  CString& TrimLeft(WCHAR ch);
  CString& TrimLeft(const WCHAR* set);
  CString& TrimRight();
  CString& TrimRight(WCHAR ch);
  CString& TrimRight(const WCHAR* set);
  CString& Trim() { return TrimRight().TrimLeft(); }
  CString& Trim(const WCHAR* set) { return TrimRight(set).TrimLeft(set); }

  CString& MakeUpper();
  CString& MakeLower();
  CString& MakeReverse();

  // <0, 0, >0 by code unit; NoCase folds the Latin letters A-Z only.
  int Compare(const WCHAR* other) const;
  int CompareNoCase(const WCHAR* other) const;

  // A buffer of at least minLength units (plus the terminator) that the
  // caller may write; ReleaseBuffer cuts the string at newLength, or at the
  // first zero when it is -1.
  WCHAR* GetBuffer(int minLength = 0);
  void ReleaseBuffer(int newLength = -1);

  CString& operator=(const WCHAR* s) {
    s_ = s ? s : u"";
    return *this;
  }
  CString& operator+=(const CString& o) {
    s_ += o.s_;
    return *this;
  }
  CString& operator+=(const WCHAR* s) {
    if (s) s_ += s;
    return *this;
  }
  CString& operator+=(WCHAR ch) {
    s_ += ch;
    return *this;
  }
  friend CString operator+(CString a, const CString& b) { return a += b; }
  friend CString operator+(CString a, const WCHAR* b) { return a += b; }
  friend CString operator+(const WCHAR* a, const CString& b) { return CString(a) += b; }
  friend CString operator+(CString a, WCHAR b) { return a += b; }
  friend bool operator==(const CString& a, const CString& b) { return a.s_ == b.s_; }
  friend bool operator==(const CString& a, const WCHAR* b) { return a.s_ == (b ? b : u""); }
  friend bool operator!=(const CString& a, const CString& b) { return a.s_ != b.s_; }
  friend bool operator<(const CString& a, const CString& b) { return a.s_ < b.s_; }

 private:
  std::u16string s_;
};
