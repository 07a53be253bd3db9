#include "host/lisp/reader.h"

#include <cmath>
#include <cstdlib>

#include "host/system/utf.h"

namespace zepk::lisp {

namespace {
struct ReadFailure {
  ReadError e;
};
constexpr int kMaxNesting = 10000;

bool isDelimiter(char16_t c) {
  return c == 0 || c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f' || c == u'(' || c == u')' ||
         c == u'\'' || c == u'"' || c == u';';
}
bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }
}  // namespace

std::u16string ReadError::where() const {
  return message + sys::fromUtf8(" at line " + std::to_string(line) + ", column " + std::to_string(column));
}

char16_t Reader::get() {
  char16_t c = text_[pos_++];
  if (c == u'\n') {
    ++line_;
    col_ = 1;
  } else {
    ++col_;
  }
  return c;
}

void Reader::error(const char16_t* msg, int line, int col) { throw ReadFailure{ReadError{msg, line, col}}; }

void Reader::skipBlank() {
  for (;;) {
    char16_t c = peek();
    if (c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f' || c == 0x1A || c == 0xFEFF) {
      if (pos_ >= text_.size()) return;
      get();
    } else if (c == u';') {
      if (pos_ + 1 < text_.size() && text_[pos_ + 1] == u'|') {
        // Block comment ;| ... |;
        int line = line_, col = col_;
        get();
        get();
        for (;;) {
          if (pos_ >= text_.size()) error(u"malformed comment on input", line, col);
          if (peek() == u'|' && pos_ + 1 < text_.size() && text_[pos_ + 1] == u';') {
            get();
            get();
            break;
          }
          get();
        }
      } else {
        while (pos_ < text_.size() && peek() != u'\n') get();
      }
    } else {
      return;
    }
  }
}

bool Reader::atEnd() {
  try {
    skipBlank();
  } catch (ReadFailure&) {
    return false;
  }
  return pos_ >= text_.size();
}

std::optional<Value> Reader::next(ReadError* err) {
  try {
    skipBlank();
    if (pos_ >= text_.size()) return std::nullopt;
    return readExpr(0);
  } catch (ReadFailure& f) {
    if (err) *err = f.e;
    // Skip the rest so that a caller looping on next() stops.
    pos_ = text_.size();
    return std::nullopt;
  }
}

Value Reader::readExpr(int depth) {
  skipBlank();
  if (pos_ >= text_.size()) error(u"malformed list on input", line_, col_);
  if (depth > kMaxNesting) error(u"malformed list on input", line_, col_);
  int line = line_, col = col_;
  char16_t c = peek();
  if (c == u'(') {
    get();
    return readList(depth + 1, line, col);
  }
  if (c == u')') {
    get();
    error(u"extra right paren on input", line, col);
  }
  if (c == u'\'') {
    get();
    skipBlank();
    if (pos_ >= text_.size()) error(u"malformed list on input", line, col);
    Value q = readExpr(depth + 1);
    return cons(Value::sym(symQuote), cons(std::move(q), Value()));
  }
  if (c == u'"') return readString();
  return readAtom();
}

Value Reader::readList(int depth, int line, int col) {
  std::vector<Value> items;
  Value tail;
  for (;;) {
    skipBlank();
    if (pos_ >= text_.size()) error(u"malformed list on input", line, col);
    char16_t c = peek();
    if (c == u')') {
      get();
      break;
    }
    // A lone "." makes a dotted pair.
    if (c == u'.' && !items.empty() && isDelimiter(pos_ + 1 < text_.size() ? text_[pos_ + 1] : 0)) {
      int dline = line_, dcol = col_;
      get();
      skipBlank();
      if (pos_ >= text_.size() || peek() == u')') error(u"malformed dotted pair on input", dline, dcol);
      tail = readExpr(depth);
      skipBlank();
      if (pos_ >= text_.size()) error(u"malformed list on input", line, col);
      if (peek() != u')') error(u"malformed dotted pair on input", dline, dcol);
      get();
      break;
    }
    items.push_back(readExpr(depth));
  }
  return listFrom(std::move(items), std::move(tail));
}

Value Reader::readString() {
  int line = line_, col = col_;
  get();  // opening quote
  std::u16string s;
  for (;;) {
    if (pos_ >= text_.size()) error(u"malformed string on input", line, col);
    char16_t c = get();
    if (c == u'"') break;
    if (c != u'\\') {
      s.push_back(c);
      continue;
    }
    if (pos_ >= text_.size()) error(u"malformed string on input", line, col);
    char16_t e = get();
    switch (e) {
      case u'n': s.push_back(u'\n'); break;
      case u'r': s.push_back(u'\r'); break;
      case u't': s.push_back(u'\t'); break;
      case u'e': s.push_back(u'\x1b'); break;
      case u'\\': s.push_back(u'\\'); break;
      case u'"': s.push_back(u'"'); break;
      default:
        if (e >= u'0' && e <= u'7') {
          // \nnn: up to three octal digits.
          int v = e - u'0';
          for (int k = 0; k < 2 && peek() >= u'0' && peek() <= u'7' && pos_ < text_.size(); ++k) v = v * 8 + (get() - u'0');
          s.push_back(static_cast<char16_t>(v));
        } else {
          // An unknown escape stands for the character itself.
          s.push_back(e);
        }
    }
  }
  return str(std::move(s));
}

std::optional<Value> parseNumber(std::u16string_view t) {
  if (t.empty()) return std::nullopt;
  size_t i = 0;
  if (t[0] == u'+' || t[0] == u'-') i = 1;
  size_t digitsBefore = 0, digitsAfter = 0;
  while (i < t.size() && isDigit(t[i])) ++i, ++digitsBefore;
  bool isReal = false;
  if (i < t.size() && t[i] == u'.') {
    isReal = true;
    ++i;
    while (i < t.size() && isDigit(t[i])) ++i, ++digitsAfter;
  }
  if (digitsBefore + digitsAfter == 0) return std::nullopt;
  if (i < t.size() && (t[i] == u'e' || t[i] == u'E')) {
    size_t j = i + 1;
    if (j < t.size() && (t[j] == u'+' || t[j] == u'-')) ++j;
    size_t expDigits = 0;
    while (j < t.size() && isDigit(t[j])) ++j, ++expDigits;
    if (expDigits == 0) return std::nullopt;
    isReal = true;
    i = j;
  }
  if (i != t.size()) return std::nullopt;
  std::string ascii(t.begin(), t.end());
  if (!isReal) {
    errno = 0;
    long long v = std::strtoll(ascii.c_str(), nullptr, 10);
    if (errno == 0 && v >= INT32_MIN && v <= INT32_MAX) return Value::integer(static_cast<int32_t>(v));
    // An integer too large for 32 bits reads as a real.
  }
  return Value::real(std::strtod(ascii.c_str(), nullptr));
}

Value Reader::readAtom() {
  size_t start = pos_;
  while (pos_ < text_.size() && !isDelimiter(peek())) get();
  std::u16string_view tok = text_.substr(start, pos_ - start);
  if (auto n = parseNumber(tok)) return *n;
  std::string name = sys::toUtf8(tok);
  Symbol* s = intern(name);
  if (s == symNil) return Value();
  return Value::sym(s);
}

}  // namespace zepk::lisp
