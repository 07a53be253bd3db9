#include "host/system/paths.h"

#include <cstdlib>

#include "host/system/utf.h"

namespace zepk::sys {

namespace {

bool isSeparator(char16_t c) { return c == u'/' || c == u'\\'; }

bool isDriveLetter(char16_t c) { return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z'); }

bool hasDrive(std::u16string_view p) { return p.size() >= 2 && isDriveLetter(p[0]) && p[1] == u':'; }

std::string driveRoot(char16_t letter) {
  const char upper = static_cast<char>(asciiUpper(letter));
  const std::string var = std::string("ZEPK_DRIVE_") + upper;
  if (const char* v = std::getenv(var.c_str()); v != nullptr && *v != '\0') return v;
  if (upper == 'C') return "/";
  return std::string("/mnt/") + static_cast<char>(asciiLower(letter));
}

// Appends UTF-8 text to out, turning both separators into '/' and collapsing runs.
void appendCollapsed(std::string& out, std::string_view text) {
  for (char c : text) {
    if (c == '\\') c = '/';
    if (c == '/' && !out.empty() && out.back() == '/') continue;
    out.push_back(c);
  }
}

}  // namespace

std::string toNativePath(std::u16string_view path) {
  std::string out;
  if (hasDrive(path)) {
    appendCollapsed(out, driveRoot(path[0]));
    path.remove_prefix(2);
    if (out.empty() || out.back() != '/') out.push_back('/');
  }
  // Separators are ASCII, so collapsing on the UTF-8 form is safe.
  appendCollapsed(out, toUtf8(path));
  return out;
}

std::u16string fromNativePath(std::string_view nativePath) { return fromUtf8(nativePath); }

bool isAbsolutePath(std::u16string_view path) {
  return hasDrive(path) || (!path.empty() && isSeparator(path[0]));
}

}  // namespace zepk::sys
