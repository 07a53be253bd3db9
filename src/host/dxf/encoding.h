// Text in DXF files. Files of AC1021 (2007) and later are UTF-8; earlier
// ones are in the code page that the header variable $DWGCODEPAGE names.
// In every version a character may be written as an escape: \U+XXXX (one
// UTF-16 unit in hexadecimal) or \M+NXXXX (the bytes XXXX of a double-byte
// character in the code page numbered N: 1 = 932, 2 = 950, 3 = 949,
// 4 = 1361, 5 = 936). Groups hold their text as UTF-8 with escapes decoded.
#pragma once

#include <string>
#include <string_view>

namespace zepk::dxf {

inline constexpr int kUtf8 = 65001;

// The code page that a $DWGCODEPAGE value names ("ANSI_936" -> 936,
// "DOS850" -> 850, "BIG5" -> 950, "ISO8859-2" -> 28592, "UTF8" -> 65001;
// letters in either case), or 0 when the name is empty or unknown.
int codePageFromName(std::string_view name);

// The $DWGCODEPAGE value for a code page: "ANSI_936", "DOS850", "ISO8859-2",
// "UTF8"; "ANSI_1252" when the number has no name.
std::string codePageName(int cp);

// The code page that a \M+N escape's digit N names, or 0.
int escapeCodePage(char digit);

// True when the bytes hold a \U+XXXX or \M+NXXXX escape.
bool hasEscape(std::string_view bytes);

// Replaces the escapes in UTF-16 text with the characters they stand for.
// Something that only looks like an escape (too few hex digits, an unknown
// N) stays as it is. Two \U+ escapes that make a surrogate pair make one
// character.
std::u16string decodeEscapes(std::u16string_view text);

// A value's bytes as UTF-8: decoded from UTF-8 (cp 65001; ill-formed
// sequences become U+FFFD) or from the code page (0: the system code page),
// then with escapes decoded.
std::string decodeText(std::string_view bytes, int cp);

}  // namespace zepk::dxf
