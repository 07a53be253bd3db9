// The system's 8-bit code page: the encoding of narrow strings that cross the
// host boundary (narrow printf arguments, files written "in the system code
// page", conversions of the string class). One process-wide setting, 936 (GBK)
// unless the host configures another.
//
// Conversions go through iconv with descriptors cached per thread and code
// page; the C locale is never consulted. Nothing is dropped silently: each
// character that the target cannot represent becomes one '?', and each byte
// that does not decode becomes one U+003F. A GBK lead byte followed by a byte
// that is not a valid trail gives one '?' for the lead byte, and decoding goes
// on at the following byte.
#pragma once

#include <string>
#include <string_view>

namespace zepk::sys {

// Code pages known by number. Others are tried as iconv's "CP<n>".
inline constexpr int kCodePageGbk = 936;
inline constexpr int kCodePageBig5 = 950;
inline constexpr int kCodePageWestern = 1252;
inline constexpr int kCodePageAscii = 20127;
inline constexpr int kCodePageUtf8 = 65001;

int systemCodePage();
// Makes cp the system code page. Returns false, leaving the setting as it
// was, when cp is not a code page this system can convert.
bool setSystemCodePage(int cp);
bool isCodePageSupported(int cp);

// cp 0 means the system code page. An unsupported code page converts as
// 7-bit ASCII (every other character or byte becomes '?').
std::string toCodePage(std::u16string_view s, int cp = 0);
std::u16string fromCodePage(std::string_view bytes, int cp = 0);

// True when b starts a two-byte character in a double-byte code page (936,
// 949, 950, 932); always false for single-byte pages and for UTF-8.
bool isLeadByte(unsigned char b, int cp = 0);

}  // namespace zepk::sys
