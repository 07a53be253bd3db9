// The reader: text to LISP values, with AutoLISP's lexical rules.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/lisp/value.h"

namespace zepk::lisp {

struct ReadError {
  std::u16string message;  // the host's text, e.g. "malformed list on input"
  int line = 0;
  int column = 0;
  // The message with its place: "malformed list on input at line 3, column 7".
  std::u16string where() const;
};

class Reader {
 public:
  explicit Reader(std::u16string_view text) : text_(text) {}
  // Reads the next expression. Returns nullopt at the end of the text; sets
  // *error and returns nullopt on malformed input.
  std::optional<Value> next(ReadError* error);
  // True when only blanks and comments remain.
  bool atEnd();
  size_t position() const { return pos_; }

 private:
  Value readExpr(int depth);
  Value readList(int depth, int line, int col);
  Value readString();
  Value readAtom();
  void skipBlank();
  [[noreturn]] void error(const char16_t* msg, int line, int col);
  char16_t peek() const { return pos_ < text_.size() ? text_[pos_] : 0; }
  char16_t get();

  std::u16string_view text_;
  size_t pos_ = 0;
  int line_ = 1;
  int col_ = 1;
};

// Parses a number token as the reader does; nullopt when it is not one.
std::optional<Value> parseNumber(std::u16string_view token);

}  // namespace zepk::lisp
