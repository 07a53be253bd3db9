#include "host/dxf/encoding.h"

#include <charconv>

#include "host/system/codepage.h"
#include "host/system/utf.h"

namespace zepk::dxf {

namespace {

std::string upperTrimmed(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r')) s.remove_suffix(1);
  std::string out(s);
  for (char& c : out)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return out;
}

// The number after a prefix ("ANSI_" in "ANSI_936"), or 0.
int numberAfter(std::string_view s, std::string_view prefix) {
  if (s.size() <= prefix.size() || s.substr(0, prefix.size()) != prefix) return 0;
  s.remove_prefix(prefix.size());
  int n = 0;
  auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), n);
  return ec == std::errc() && end == s.data() + s.size() && n > 0 ? n : 0;
}

int hexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  return -1;
}

// The four hex digits at text[i..i+4) as a number, or -1.
int hex4(std::u16string_view text, size_t i) {
  if (i + 4 > text.size()) return -1;
  int v = 0;
  for (size_t k = 0; k < 4; ++k) {
    const int d = hexDigit(text[i + k]);
    if (d < 0) return -1;
    v = v * 16 + d;
  }
  return v;
}

}  // namespace

int codePageFromName(std::string_view name) {
  const std::string n = upperTrimmed(name);
  if (n.empty() || n == "UNDEFINED") return 0;
  if (n == "UTF8" || n == "UTF-8") return kUtf8;
  if (n == "ASCII") return 20127;
  if (n == "BIG5") return 950;
  if (n == "GB2312" || n == "GBK") return 936;
  if (n == "KSC5601") return 949;
  if (n == "JOHAB") return 1361;
  if (n == "MACINTOSH") return 10000;
  for (std::string_view prefix : {"ANSI_", "DOS", "CP"})
    if (int cp = numberAfter(n, prefix)) return cp;
  for (std::string_view prefix : {"ISO8859-", "ISO8859_", "ISO-8859-", "ISO_8859-"})
    if (int part = numberAfter(n, prefix); part > 0 && part <= 16) return 28590 + part;
  return 0;
}

std::string codePageName(int cp) {
  switch (cp) {
    case kUtf8: return "UTF8";
    case 20127: return "ASCII";
    case 1361: return "JOHAB";
    case 10000: return "MACINTOSH";
    case 437: case 850: case 852: case 855: case 857: case 860: case 861: case 863: case 864:
    case 865: case 866: case 869:
      return "DOS" + std::to_string(cp);
    case 874: case 932: case 936: case 949: case 950:
      return "ANSI_" + std::to_string(cp);
    default: break;
  }
  if (cp >= 1250 && cp <= 1258) return "ANSI_" + std::to_string(cp);
  if (cp >= 28591 && cp <= 28600) return "ISO8859-" + std::to_string(cp - 28590);
  return "ANSI_1252";
}

int escapeCodePage(char digit) {
  switch (digit) {
    case '1': return 932;
    case '2': return 950;
    case '3': return 949;
    case '4': return 1361;
    case '5': return 936;
    default: return 0;
  }
}

bool hasEscape(std::string_view bytes) {
  for (size_t i = bytes.find('\\'); i != std::string_view::npos; i = bytes.find('\\', i + 1)) {
    if (i + 2 < bytes.size() && (bytes[i + 1] == 'U' || bytes[i + 1] == 'M') && bytes[i + 2] == '+') return true;
  }
  return false;
}

std::u16string decodeEscapes(std::u16string_view text) {
  std::u16string out;
  out.reserve(text.size());
  size_t i = 0;
  while (i < text.size()) {
    const char16_t c = text[i];
    if (c == u'\\' && i + 2 < text.size() && text[i + 2] == u'+') {
      if (text[i + 1] == u'U') {
        if (int v = hex4(text, i + 3); v >= 0) {
          out.push_back(static_cast<char16_t>(v));
          i += 7;
          continue;
        }
      } else if (text[i + 1] == u'M' && i + 3 < text.size()) {
        const int cp = text[i + 3] < 0x80 ? escapeCodePage(static_cast<char>(text[i + 3])) : 0;
        if (int v = hex4(text, i + 4); cp != 0 && v >= 0) {
          std::string bytes;
          if (v > 0xFF) bytes.push_back(static_cast<char>(v >> 8));
          bytes.push_back(static_cast<char>(v & 0xFF));
          out += sys::fromCodePage(bytes, cp);
          i += 8;
          continue;
        }
      }
    }
    out.push_back(c);
    ++i;
  }
  return out;
}

std::string decodeText(std::string_view bytes, int cp) {
  const bool escapes = hasEscape(bytes);
  if (cp == kUtf8 && !escapes && sys::isValidUtf8(bytes)) return std::string(bytes);
  std::u16string wide = cp == kUtf8 ? sys::fromUtf8(bytes) : sys::fromCodePage(bytes, cp);
  if (escapes) wide = decodeEscapes(wide);
  return sys::toUtf8(wide);
}

}  // namespace zepk::dxf
