// Encodings against programs and libraries nobody here wrote: base64 and
// md5sum from the system, the standard DES of nettle with each byte's bits
// reversed, on random data made for each run.
#include <gtest/gtest.h>
#include <nettle/des.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <unistd.h>

#include "services/encodings.h"
#include "testseed.h"

using namespace zepk::services;

namespace {

std::string randomBytes(std::mt19937& rng, size_t n) {
  std::string s(n, '\0');
  for (char& c : s) c = static_cast<char>(rng() & 0xFF);
  return s;
}

// Runs a shell command on a file holding the bytes; its standard output.
std::string runOn(const std::string& bytes, const std::string& command) {
  char path[] = "/tmp/zepk_enc_XXXXXX";
  int fd = ::mkstemp(path);
  EXPECT_GE(fd, 0);
  ::close(fd);
  std::ofstream(path, std::ios::binary) << bytes;
  std::string out;
  FILE* p = ::popen((command + " " + path).c_str(), "r");
  char buf[4096];
  size_t n;
  while (p && (n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
  if (p) ::pclose(p);
  std::remove(path);
  return out;
}

uint8_t rev(uint8_t b) {
  uint8_t r = 0;
  for (int i = 0; i < 8; ++i) r = static_cast<uint8_t>(r | (((b >> i) & 1) << (7 - i)));
  return r;
}

}  // namespace

TEST(Encodings, Base64AndMd5AgreeWithTheSystemTools) {
  unsigned seed = testSeed();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 rng(seed);
  for (size_t n : {0, 1, 2, 3, 57, 1000, 65537}) {
    std::string data = randomBytes(rng, n);
    std::string b64 = runOn(data, "base64 -w0");
    EXPECT_EQ(base64Encode(data), b64) << n;
    auto back = base64Decode(b64);
    ASSERT_TRUE(back) << n;
    EXPECT_EQ(*back, data);
    EXPECT_EQ(md5Hex(data), runOn(data, "md5sum").substr(0, 32)) << n;
  }
  EXPECT_EQ(base64Encode("\xE4\xB8\xAD"), "5Lit");  // 中 in UTF-8
  EXPECT_EQ(base64Decode("5L\nit").value_or("?"), "\xE4\xB8\xAD");
  EXPECT_FALSE(base64Decode("5L!t"));
  EXPECT_EQ(md5Hex(""), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(Encodings, DesIsTheStandardCipherWithEachBytesBitsReversed) {
  // The published example: key 133457799BBCDFF1, 0123456789ABCDEF ->
  // 85E813540F0AB405, here with every byte's bits reversed.
  const uint8_t stdKey[8] = {0x13, 0x34, 0x57, 0x79, 0x9B, 0xBC, 0xDF, 0xF1};
  const uint8_t stdPlain[8] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
  const uint8_t stdCipher[8] = {0x85, 0xE8, 0x13, 0x54, 0x0F, 0x0A, 0xB4, 0x05};
  uint8_t key[8], block[8];
  for (int i = 0; i < 8; ++i) key[i] = rev(stdKey[i]), block[i] = rev(stdPlain[i]);
  BitDes des(key);
  des.encrypt(block);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(block[i], rev(stdCipher[i])) << i;
  des.decrypt(block);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(block[i], rev(stdPlain[i])) << i;

  unsigned seed = testSeed();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 rng(seed);
  for (int round = 0; round < 50; ++round) {
    std::string k = randomBytes(rng, 8), data = randomBytes(rng, 8 * (1 + rng() % 20));
    uint8_t rk[8];
    for (int i = 0; i < 8; ++i) rk[i] = rev(static_cast<uint8_t>(k[i]));
    des_ctx ctx;
    if (!des_set_key(&ctx, rk)) continue;  // a weak key: nettle refuses it
    std::string reversed(data.size(), '\0');
    for (size_t i = 0; i < data.size(); ++i) reversed[i] = static_cast<char>(rev(static_cast<uint8_t>(data[i])));
    std::string expect(data.size(), '\0');
    des_encrypt(&ctx, data.size(), reinterpret_cast<uint8_t*>(expect.data()),
                reinterpret_cast<const uint8_t*>(reversed.data()));
    for (char& c : expect) c = static_cast<char>(rev(static_cast<uint8_t>(c)));
    std::string ours = desEncryptBytes(data, reinterpret_cast<const uint8_t*>(k.data()));
    ASSERT_EQ(ours, expect) << "round " << round;
    EXPECT_EQ(desDecryptBytes(ours, reinterpret_cast<const uint8_t*>(k.data())), data);
  }
}

TEST(Encodings, DesPadsALastShortBlockAndKeepsAShortTail) {
  const uint8_t key[8] = {'k', 'e', 'y', 's', 'a', 'l', 't', '!'};
  std::string enc = desEncryptBytes("hello, world", key);  // 12 bytes
  ASSERT_EQ(enc.size(), 16u);
  std::string dec = desDecryptBytes(enc, key);
  EXPECT_EQ(dec, std::string("hello, world\0\0\0\0", 16));
  // A tail that no encryption made is kept as it was.
  EXPECT_EQ(desDecryptBytes(enc + "xyz", key).substr(16), "xyz");
}

TEST(Encodings, TheSystemsScramblers) {
  EXPECT_EQ(scrambleText(u"  ", u" "), u"**");
  // Shorter than the key: padded to the key's length with blanks.
  EXPECT_EQ(scrambleText(u"A", u"!!!"), u"B!!");  // 'A'+1, then blank+1 twice
  // No reduction to the printable range: '~' + '~' reaches 220.
  EXPECT_EQ(scrambleText(u"~", u"~"), std::u16string(1, char16_t(220)));
  EXPECT_EQ(scrambleText(u"abc", u""), u"");

  EXPECT_EQ(threeDigitGroups(xorWithKey("ab", "a")), "000003");
  EXPECT_EQ(xorWithKey(xorWithKey("survey", "key"), "key"), "survey");
  EXPECT_EQ(xorWithKey("ab", "abcdef"), std::string("\0\0", 2));  // a longer key is used once
  EXPECT_EQ(fromThreeDigitGroups("000003255").value_or("?"), std::string("\0\3\xFF", 3));
  EXPECT_FALSE(fromThreeDigitGroups("0000"));
  EXPECT_FALSE(fromThreeDigitGroups("256"));
  EXPECT_FALSE(fromThreeDigitGroups("0a0"));
}

TEST(Encodings, UrlAndHexForms) {
  EXPECT_EQ(urlEncode("\xE4\xB8\xAD a+b@x.y/z!'(,$)~"), "%E4%B8%AD+a+b@x.y/z!'%28,$%29%7E");
  EXPECT_EQ(urlEncode("\xC3\xA9x"), "%C3%A9%78");  // a two-byte sequence swallows the next byte
  EXPECT_EQ(urlEncode("\xE4"), "%E4");             // a lead byte at the end
  EXPECT_EQ(bytesToHexText(std::string("\x01\xAB\xFF", 3)), "01abff");
  EXPECT_EQ(bytesToHexText(std::string("\x00\x10", 2)), "0010");
  EXPECT_EQ(hexTextToBytes("01abff"), std::string("\x01\xAB\xFF", 3));
  EXPECT_EQ(hexTextToBytes(" 01 AB\nff\n"), std::string("\x01\xAB\xFF", 3));
  EXPECT_EQ(hexTextToBytes("01zz02"), std::string("\x01", 1));
  std::mt19937 rng(testSeed());
  std::string data = randomBytes(rng, 999);
  EXPECT_EQ(hexTextToBytes(bytesToHexText(data)), data);
}
