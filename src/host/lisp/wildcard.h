// Wildcard patterns as the host matches them in wcmatch, in selection-set
// filters and in table-name lookups.
//
//   #      any digit (0-9)
//   @      any alphabetic character
//   .      any character that is neither a letter nor a digit
//   *      any sequence of characters, including none
//   ?      any single character
//   ~      at the start of a pattern: anything that does not match the rest
//   [...]  any one of the characters inside; a-z inside is a range
//   [~...] any one character that is not inside
//   `      the next character stands for itself
//   ,      separates alternative patterns; the string matches if any does
//
// The whole string must match. Matching runs in time proportional to the
// string length times the pattern length, whatever the pattern.
#pragma once

#include <string_view>

namespace zepk::lisp {

bool wcMatch(std::u16string_view s, std::u16string_view pattern, bool caseSensitive = true);

// The character classes of # @ and ., shared with the other text functions.
bool wcIsDigit(char16_t c);
bool wcIsAlpha(char16_t c);
// Case mapping of ASCII and Latin-1 letters; other characters unchanged.
char16_t foldUpper(char16_t c);
char16_t foldLower(char16_t c);

}  // namespace zepk::lisp
