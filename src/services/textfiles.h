// Text files as the file functions read them: bytes to wide text by the
// file's byte order mark, else in the system code page, and the lines a
// line-by-line reader gives.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zepk::services {

// UTF-8 after its mark (EF BB BF), UTF-16 little-endian after FF FE (an odd
// last byte dropped), anything else in the system code page, where a byte
// that is no character there becomes "?".
std::u16string decodeTextFile(std::string_view bytes);

// "\n" ends a line and a "\r" before it goes with it; a last line end makes
// no empty line after it, so an empty text has no lines.
std::vector<std::u16string> splitTextLines(std::u16string_view text);

// The lines joined by "\r\n".
std::u16string joinLines(const std::vector<std::u16string>& lines);

}  // namespace zepk::services
