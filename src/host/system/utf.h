// Conversions between UTF-8 (files, terminals, source code) and UTF-16 (the
// host's wide strings). Invalid input never throws: an ill-formed UTF-8
// sequence becomes U+FFFD, an unpaired surrogate is encoded as U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace zepk::sys {

std::u16string fromUtf8(std::string_view s);
std::string toUtf8(std::u16string_view s);
// True when the bytes are well-formed UTF-8.
bool isValidUtf8(std::string_view s);

// ASCII-only case mapping, as the host does for symbol names and keywords.
char16_t asciiUpper(char16_t c);
char16_t asciiLower(char16_t c);
std::u16string asciiUpper(std::u16string_view s);

}  // namespace zepk::sys
