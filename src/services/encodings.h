// Text and file encodings on plain bytes: Base64, MD5, a DES whose bits run
// lowest first in each byte, this system's two scrambling routines, the URL
// form and the hexadecimal text form of binary data. The LISP functions
// around them turn wide text into bytes in the code page each one uses.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zepk::services {

std::string base64Encode(std::string_view bytes);
// Nothing when the text is not Base64 (white space is skipped).
std::optional<std::string> base64Decode(std::string_view text);

// The digest as 32 lower-case hexadecimal digits.
std::string md5Hex(std::string_view bytes);

// DES on 8-byte blocks. Bits are numbered from the lowest bit of the first
// byte, so each byte enters and leaves the standard tables bit-reversed;
// the key's first 8 bytes are used, parity ignored.
class BitDes {
 public:
  explicit BitDes(const uint8_t key[8]);
  void encrypt(uint8_t block[8]) const;
  void decrypt(uint8_t block[8]) const;

 private:
  void run(uint8_t block[8], bool decrypt) const;
  uint64_t sub_[16];  // the round keys, 48 bits each
};

// A whole buffer in 8-byte blocks; a last short block is padded with zero
// bytes before it is enciphered, so the result is a multiple of 8 long.
std::string desEncryptBytes(std::string_view bytes, const uint8_t key[8]);
// Deciphers every full block; a short tail (not made by the encryption) is
// kept as it stands.
std::string desDecryptBytes(std::string_view bytes, const uint8_t key[8]);

// The one-way scrambling of printable text with a key: each character's
// place among the codes 32..126 plus the key character's place, plus 32;
// a result of 32 becomes '*'. The text is padded with blanks to a whole
// number of key lengths. An empty key gives an empty result.
std::u16string scrambleText(std::u16string_view text, std::u16string_view key);

// Each byte exclusive-or the key repeated to the text's length.
std::string xorWithKey(std::string_view bytes, std::string_view key);

// "%03d" for each byte.
std::string threeDigitGroups(std::string_view bytes);
// The reverse; nothing when the text is not groups of three digits of
// values up to 255.
std::optional<std::string> fromThreeDigitGroups(std::string_view digits);

// Percent-encoding of UTF-8 bytes: letters, digits and the marks
// @*_+-./!',$ pass, a blank becomes '+', a byte above 127 opens a group of
// three bytes written as one, any other byte is %XX.
std::string urlEncode(std::string_view utf8);

// Bytes as hexadecimal text: each pair of bytes as four digits (first byte
// high), a last odd byte as two; lower case, no separators.
std::string bytesToHexText(std::string_view bytes);
// Two digits at a time back to bytes, white space between pairs skipped;
// reading stops at the first pair that is not hexadecimal.
std::string hexTextToBytes(std::string_view text);

}  // namespace zepk::services
