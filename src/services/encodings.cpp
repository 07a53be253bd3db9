// Text and file encodings on plain bytes.
#include "services/encodings.h"

#include <nettle/base64.h>
#include <nettle/md5.h>

#include <cstdio>

namespace zepk::services {

// ------------------------------------------------------------------ Base64

std::string base64Encode(std::string_view bytes) {
  std::string out(BASE64_ENCODE_RAW_LENGTH(bytes.size()), '\0');
  base64_encode_raw(reinterpret_cast<char*>(out.data()), bytes.size(), reinterpret_cast<const uint8_t*>(bytes.data()));
  return out;
}

std::optional<std::string> base64Decode(std::string_view text) {
  base64_decode_ctx ctx;
  base64_decode_init(&ctx);
  std::string out(BASE64_DECODE_LENGTH(text.size()) + 1, '\0');
  size_t n = out.size();
  if (!base64_decode_update(&ctx, &n, reinterpret_cast<uint8_t*>(out.data()), text.size(), text.data()) ||
      !base64_decode_final(&ctx))
    return std::nullopt;
  out.resize(n);
  return out;
}

// --------------------------------------------------------------------- MD5

std::string md5Hex(std::string_view bytes) {
  md5_ctx ctx;
  md5_init(&ctx);
  md5_update(&ctx, bytes.size(), reinterpret_cast<const uint8_t*>(bytes.data()));
  uint8_t digest[MD5_DIGEST_SIZE];
  md5_digest(&ctx, sizeof digest, digest);
  static const char kHex[] = "0123456789abcdef";
  std::string out;
  for (uint8_t b : digest) {
    out += kHex[b >> 4];
    out += kHex[b & 15];
  }
  return out;
}

// --------------------------------------------------------------------- DES
//
// The standard tables number bits from 1 at the high end of a 64-bit word.
// A block comes in as bytes whose bits count from the lowest, so each byte
// is reversed on the way into the word and on the way out.

namespace {

const uint8_t kIP[64] = {58, 50, 42, 34, 26, 18, 10, 2, 60, 52, 44, 36, 28, 20, 12, 4,
                         62, 54, 46, 38, 30, 22, 14, 6, 64, 56, 48, 40, 32, 24, 16, 8,
                         57, 49, 41, 33, 25, 17, 9,  1, 59, 51, 43, 35, 27, 19, 11, 3,
                         61, 53, 45, 37, 29, 21, 13, 5, 63, 55, 47, 39, 31, 23, 15, 7};
const uint8_t kFP[64] = {40, 8, 48, 16, 56, 24, 64, 32, 39, 7, 47, 15, 55, 23, 63, 31,
                         38, 6, 46, 14, 54, 22, 62, 30, 37, 5, 45, 13, 53, 21, 61, 29,
                         36, 4, 44, 12, 52, 20, 60, 28, 35, 3, 43, 11, 51, 19, 59, 27,
                         34, 2, 42, 10, 50, 18, 58, 26, 33, 1, 41, 9,  49, 17, 57, 25};
const uint8_t kE[48] = {32, 1,  2,  3,  4,  5,  4,  5,  6,  7,  8,  9,  8,  9,  10, 11,
                        12, 13, 12, 13, 14, 15, 16, 17, 16, 17, 18, 19, 20, 21, 20, 21,
                        22, 23, 24, 25, 24, 25, 26, 27, 28, 29, 28, 29, 30, 31, 32, 1};
const uint8_t kP[32] = {16, 7, 20, 21, 29, 12, 28, 17, 1,  15, 23, 26, 5,  18, 31, 10,
                        2,  8, 24, 14, 32, 27, 3,  9,  19, 13, 30, 6,  22, 11, 4,  25};
const uint8_t kPC1[56] = {57, 49, 41, 33, 25, 17, 9,  1,  58, 50, 42, 34, 26, 18, 10, 2,  59, 51, 43,
                          35, 27, 19, 11, 3,  60, 52, 44, 36, 63, 55, 47, 39, 31, 23, 15, 7,  62, 54,
                          46, 38, 30, 22, 14, 6,  61, 53, 45, 37, 29, 21, 13, 5,  28, 20, 12, 4};
const uint8_t kPC2[48] = {14, 17, 11, 24, 1,  5,  3,  28, 15, 6,  21, 10, 23, 19, 12, 4,
                          26, 8,  16, 7,  27, 20, 13, 2,  41, 52, 31, 37, 47, 55, 30, 40,
                          51, 45, 33, 48, 44, 49, 39, 56, 34, 53, 46, 42, 50, 36, 29, 32};
const uint8_t kShifts[16] = {1, 1, 2, 2, 2, 2, 2, 2, 1, 2, 2, 2, 2, 2, 2, 1};
const uint8_t kS[8][64] = {
    {14, 4, 13, 1, 2, 15, 11, 8, 3, 10, 6, 12, 5, 9, 0, 7, 0, 15, 7, 4, 14, 2, 13, 1, 10, 6, 12, 11, 9, 5, 3, 8,
     4, 1, 14, 8, 13, 6, 2, 11, 15, 12, 9, 7, 3, 10, 5, 0, 15, 12, 8, 2, 4, 9, 1, 7, 5, 11, 3, 14, 10, 0, 6, 13},
    {15, 1, 8, 14, 6, 11, 3, 4, 9, 7, 2, 13, 12, 0, 5, 10, 3, 13, 4, 7, 15, 2, 8, 14, 12, 0, 1, 10, 6, 9, 11, 5,
     0, 14, 7, 11, 10, 4, 13, 1, 5, 8, 12, 6, 9, 3, 2, 15, 13, 8, 10, 1, 3, 15, 4, 2, 11, 6, 7, 12, 0, 5, 14, 9},
    {10, 0, 9, 14, 6, 3, 15, 5, 1, 13, 12, 7, 11, 4, 2, 8, 13, 7, 0, 9, 3, 4, 6, 10, 2, 8, 5, 14, 12, 11, 15, 1,
     13, 6, 4, 9, 8, 15, 3, 0, 11, 1, 2, 12, 5, 10, 14, 7, 1, 10, 13, 0, 6, 9, 8, 7, 4, 15, 14, 3, 11, 5, 2, 12},
    {7, 13, 14, 3, 0, 6, 9, 10, 1, 2, 8, 5, 11, 12, 4, 15, 13, 8, 11, 5, 6, 15, 0, 3, 4, 7, 2, 12, 1, 10, 14, 9,
     10, 6, 9, 0, 12, 11, 7, 13, 15, 1, 3, 14, 5, 2, 8, 4, 3, 15, 0, 6, 10, 1, 13, 8, 9, 4, 5, 11, 12, 7, 2, 14},
    {2, 12, 4, 1, 7, 10, 11, 6, 8, 5, 3, 15, 13, 0, 14, 9, 14, 11, 2, 12, 4, 7, 13, 1, 5, 0, 15, 10, 3, 9, 8, 6,
     4, 2, 1, 11, 10, 13, 7, 8, 15, 9, 12, 5, 6, 3, 0, 14, 11, 8, 12, 7, 1, 14, 2, 13, 6, 15, 0, 9, 10, 4, 5, 3},
    {12, 1, 10, 15, 9, 2, 6, 8, 0, 13, 3, 4, 14, 7, 5, 11, 10, 15, 4, 2, 7, 12, 9, 5, 6, 1, 13, 14, 0, 11, 3, 8,
     9, 14, 15, 5, 2, 8, 12, 3, 7, 0, 4, 10, 1, 13, 11, 6, 4, 3, 2, 12, 9, 5, 15, 10, 11, 14, 1, 7, 6, 0, 8, 13},
    {4, 11, 2, 14, 15, 0, 8, 13, 3, 12, 9, 7, 5, 10, 6, 1, 13, 0, 11, 7, 4, 9, 1, 10, 14, 3, 5, 12, 2, 15, 8, 6,
     1, 4, 11, 13, 12, 3, 7, 14, 10, 15, 6, 8, 0, 5, 9, 2, 6, 11, 13, 8, 1, 4, 10, 7, 9, 5, 0, 15, 14, 2, 3, 12},
    {13, 2, 8, 4, 6, 15, 11, 1, 10, 9, 3, 14, 5, 0, 12, 7, 1, 15, 13, 8, 10, 3, 7, 4, 12, 5, 6, 11, 0, 14, 9, 2,
     7, 11, 4, 1, 9, 12, 14, 2, 0, 6, 10, 13, 15, 3, 5, 8, 2, 1, 14, 7, 4, 10, 8, 13, 15, 12, 9, 0, 3, 5, 6, 11},
};

// Picks bits of an inBits-wide word by a table of 1-based positions counted
// from the high end, into a word as wide as the table.
uint64_t permute(uint64_t in, int inBits, const uint8_t* table, int n) {
  uint64_t out = 0;
  for (int i = 0; i < n; ++i) out = (out << 1) | ((in >> (inBits - table[i])) & 1);
  return out;
}

uint8_t reverseBits(uint8_t b) {
  b = static_cast<uint8_t>((b & 0xF0) >> 4 | (b & 0x0F) << 4);
  b = static_cast<uint8_t>((b & 0xCC) >> 2 | (b & 0x33) << 2);
  return static_cast<uint8_t>((b & 0xAA) >> 1 | (b & 0x55) << 1);
}

uint64_t wordOf(const uint8_t b[8]) {
  uint64_t w = 0;
  for (int i = 0; i < 8; ++i) w = (w << 8) | reverseBits(b[i]);
  return w;
}

void bytesOf(uint64_t w, uint8_t b[8]) {
  for (int i = 7; i >= 0; --i, w >>= 8) b[i] = reverseBits(static_cast<uint8_t>(w));
}

uint32_t feistel(uint32_t r, uint64_t k) {
  uint64_t x = permute(r, 32, kE, 48) ^ k;
  uint32_t s = 0;
  for (int i = 0; i < 8; ++i) {
    unsigned six = static_cast<unsigned>((x >> (42 - 6 * i)) & 63);
    unsigned row = ((six >> 4) & 2) | (six & 1), col = (six >> 1) & 15;
    s = (s << 4) | kS[i][row * 16 + col];
  }
  return static_cast<uint32_t>(permute(s, 32, kP, 32));
}

}  // namespace

BitDes::BitDes(const uint8_t key[8]) {
  uint64_t cd = permute(wordOf(key), 64, kPC1, 56);
  uint32_t c = static_cast<uint32_t>(cd >> 28), d = static_cast<uint32_t>(cd & 0xFFFFFFF);
  for (int i = 0; i < 16; ++i) {
    for (int s = 0; s < kShifts[i]; ++s) {
      c = ((c << 1) | (c >> 27)) & 0xFFFFFFF;
      d = ((d << 1) | (d >> 27)) & 0xFFFFFFF;
    }
    sub_[i] = permute((static_cast<uint64_t>(c) << 28) | d, 56, kPC2, 48);
  }
}

void BitDes::run(uint8_t block[8], bool decrypt) const {
  uint64_t x = permute(wordOf(block), 64, kIP, 64);
  uint32_t l = static_cast<uint32_t>(x >> 32), r = static_cast<uint32_t>(x);
  for (int i = 0; i < 16; ++i) {
    uint32_t next = l ^ feistel(r, sub_[decrypt ? 15 - i : i]);
    l = r;
    r = next;
  }
  bytesOf(permute((static_cast<uint64_t>(r) << 32) | l, 64, kFP, 64), block);
}

void BitDes::encrypt(uint8_t block[8]) const { run(block, false); }
void BitDes::decrypt(uint8_t block[8]) const { run(block, true); }

std::string desEncryptBytes(std::string_view bytes, const uint8_t key[8]) {
  BitDes des(key);
  std::string out(bytes);
  out.resize((out.size() + 7) / 8 * 8, '\0');
  for (size_t i = 0; i < out.size(); i += 8) des.encrypt(reinterpret_cast<uint8_t*>(out.data() + i));
  return out;
}

std::string desDecryptBytes(std::string_view bytes, const uint8_t key[8]) {
  BitDes des(key);
  std::string out(bytes);
  for (size_t i = 0; i + 8 <= out.size(); i += 8) des.decrypt(reinterpret_cast<uint8_t*>(out.data() + i));
  return out;
}

// -------------------------------------------------------- the scramblers

std::u16string scrambleText(std::u16string_view text, std::u16string_view key) {
  size_t k = key.size();
  if (k == 0) return {};
  // A character outside the printable range has no place of its own in the
  // table; it counts as place 0, as a blank does.
  auto place = [](char16_t c) { return c >= 32 && c <= 126 ? c - 32 : 0; };
  size_t blocks = text.size() / k + (text.size() % k ? 1 : 0);
  std::u16string out;
  out.reserve(blocks * k);
  for (size_t i = 0; i < blocks * k; ++i) {
    char16_t t = i < text.size() ? text[i] : u' ';
    int v = (place(t) + place(key[i % k])) % 1024 + 32;
    out += static_cast<char16_t>(v == 32 ? 42 : v);
  }
  return out;
}

std::string xorWithKey(std::string_view bytes, std::string_view key) {
  std::string out(bytes);
  if (key.empty()) return out;
  for (size_t i = 0; i < out.size(); ++i) out[i] = static_cast<char>(out[i] ^ key[i % key.size()]);
  return out;
}

std::string threeDigitGroups(std::string_view bytes) {
  std::string out;
  char buf[8];
  for (unsigned char b : bytes) {
    std::snprintf(buf, sizeof buf, "%03d", b);
    out += buf;
  }
  return out;
}

std::optional<std::string> fromThreeDigitGroups(std::string_view digits) {
  if (digits.size() % 3) return std::nullopt;
  std::string out;
  for (size_t i = 0; i < digits.size(); i += 3) {
    int v = 0;
    for (size_t j = i; j < i + 3; ++j) {
      if (digits[j] < '0' || digits[j] > '9') return std::nullopt;
      v = v * 10 + (digits[j] - '0');
    }
    if (v > 255) return std::nullopt;
    out += static_cast<char>(v);
  }
  return out;
}

// ------------------------------------------------------- URL and hex text

std::string urlEncode(std::string_view utf8) {
  static const std::string_view kPass = "@*_+-./!',$";
  std::string out;
  char buf[8];
  for (size_t i = 0; i < utf8.size(); ++i) {
    unsigned char b = static_cast<unsigned char>(utf8[i]);
    if (b > 127) {
      // Taken as the lead of a three-byte sequence, whatever it is.
      for (size_t j = i; j < i + 3 && j < utf8.size(); ++j) {
        std::snprintf(buf, sizeof buf, "%%%02X", static_cast<unsigned char>(utf8[j]));
        out += buf;
      }
      i += 2;
    } else if ((b >= '0' && b <= '9') || (b >= 'a' && b <= 'z') || (b >= 'A' && b <= 'Z') ||
               kPass.find(static_cast<char>(b)) != std::string_view::npos) {
      out += static_cast<char>(b);
    } else if (b == ' ') {
      out += '+';
    } else {
      std::snprintf(buf, sizeof buf, "%%%02X", b);
      out += buf;
    }
  }
  return out;
}

std::string bytesToHexText(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size() * 2);
  char buf[8];
  size_t i = 0;
  for (; i + 1 < bytes.size(); i += 2) {
    std::snprintf(buf, sizeof buf, "%04x",
                  static_cast<unsigned char>(bytes[i]) * 256 + static_cast<unsigned char>(bytes[i + 1]));
    out += buf;
  }
  if (i < bytes.size()) {
    std::snprintf(buf, sizeof buf, "%02x", static_cast<unsigned char>(bytes[i]));
    out += buf;
  }
  return out;
}

std::string hexTextToBytes(std::string_view text) {
  auto digit = [](char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
  };
  std::string out;
  size_t i = 0;
  for (;;) {
    while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r'))) ++i;
    if (i >= text.size() || digit(text[i]) < 0) break;
    int v = digit(text[i++]);
    if (i < text.size() && digit(text[i]) >= 0) v = v * 16 + digit(text[i++]);
    out += static_cast<char>(v);
  }
  return out;
}

}  // namespace zepk::services
