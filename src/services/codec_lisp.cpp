// LISP functions of the encodings and ciphers family. Each turns its wide
// text into bytes in the code page the function works in (UTF-8 for Base64
// and the URL form, the system code page for MD5, DES and the two
// scramblers), calls the byte routines of encodings.cpp and turns the
// result back. Files are read and written whole, a write going to a
// temporary name first.
//
// Except String-Encrypt and String-unCrypt, these report nothing: an
// argument that cannot be read, or a file that cannot be, gives no result;
// what follows the arguments a function reads is not looked at.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/lisp_bridge.h"
#include "host/ads.h"
#include "host/hostfile.h"
#include "host/wincompat.h"
#include "services/encodings.h"
#include "services/system_lisp.h"

namespace zepk::services {

namespace {

using frame::MsgStyle;
using frame::failBadArg;
using frame::failTooFew;
using frame::failTooMany;

std::string toBytes(std::u16string_view s, UINT codePage) {
  if (s.empty()) return {};
  const int len = static_cast<int>(s.size());
  int n = WideCharToMultiByte(codePage, 0, s.data(), len, nullptr, 0, nullptr, nullptr);
  std::string out(std::max(n, 0), '\0');
  if (n > 0) WideCharToMultiByte(codePage, 0, s.data(), len, out.data(), n, nullptr, nullptr);
  return out;
}

std::u16string fromBytes(std::string_view b, UINT codePage) {
  if (b.empty()) return {};
  const int len = static_cast<int>(b.size());
  int n = MultiByteToWideChar(codePage, 0, b.data(), len, nullptr, 0);
  std::u16string out(std::max(n, 0), u'\0');
  if (n > 0) MultiByteToWideChar(codePage, 0, b.data(), len, out.data(), n);
  return out;
}

// The silent readers: false when the argument is missing or no string.
bool text(resbuf** cur, std::u16string& s) { return RbGetCString(cur, s) == RTNORM; }

bool readFile(const std::u16string& path, std::string& bytes) { return acutReadWholeFile(path, &bytes); }

int retWide(const std::u16string& s) {
  acedRetStr(s.c_str());
  return RSRSLT;
}

// ASCII results (Base64, hexadecimal, digests, the URL form).
int retAscii(std::string_view s) { return retWide(fromBytes(s, CP_UTF8)); }

int retT() {
  acedRetT();
  return RSRSLT;
}

// T after the bytes are written; no result when they cannot be.
int retWritten(const std::u16string& path, std::string_view bytes) {
  return acutWriteWholeFile(path, bytes) ? retT() : RSRSLT;
}

// The DES key: the first 8 bytes of the key's text in the system code
// page, zero bytes after a shorter one.
void desKey(const std::u16string& key, uint8_t out[8]) {
  std::string b = toBytes(key, CP_ACP);
  std::memset(out, 0, 8);
  std::memcpy(out, b.data(), std::min<size_t>(8, b.size()));
}

// One 8-byte block of the text's bytes (zero after a shorter text, the
// rest of a longer one unused), enciphered or deciphered; the block read
// back as text in the system code page up to its first zero byte.
int stringDes(bool decrypt) {
  resbuf* cur = acedGetArgs();
  std::u16string plain, key;
  if (!text(&cur, plain) || !text(&cur, key)) return RSRSLT;
  uint8_t block[8] = {0}, k[8];
  std::string b = toBytes(plain, CP_ACP);
  std::memcpy(block, b.data(), std::min<size_t>(8, b.size()));
  desKey(key, k);
  BitDes des(k);
  if (decrypt) des.decrypt(block);
  else des.encrypt(block);
  const char* p = reinterpret_cast<const char*>(block);
  return retWide(fromBytes(std::string_view(p, strnlen(p, 8)), CP_ACP));
}

// (ZEPK-File-DESEncrypt source target key): T, or nil when a file cannot be
// read or written.
int fileDes(bool decrypt) {
  resbuf* cur = acedGetArgs();
  std::u16string source, target, key;
  if (!text(&cur, source) || !text(&cur, target) || !text(&cur, key)) return RSRSLT;
  std::string bytes;
  uint8_t k[8];
  desKey(key, k);
  if (readFile(source, bytes) &&
      acutWriteWholeFile(target, decrypt ? desDecryptBytes(bytes, k) : desEncryptBytes(bytes, k)))
    return retT();
  acedRetNil();
  return RSRSLT;
}

// The bytes of String-unCrypt's first argument: a digit string in groups
// of three, or a list of integers (a point node when the list held two or
// three numbers), each taken as one byte.
bool cipherBytes(resbuf** cursor, std::string& out) {
  resbuf* rb = *cursor;
  if (!rb) return false;
  if (rb->restype == RTSTR) {
    std::u16string s;
    if (RbGetCString(cursor, s) != RTNORM) return false;
    std::optional<std::string> b = fromThreeDigitGroups(toBytes(s, CP_UTF8));
    if (!b) {
      *cursor = rb;
      return false;
    }
    out = *b;
    return true;
  }
  if (rb->restype == RTPOINT || rb->restype == RT3DPOINT) {
    for (int i = 0; i < (rb->restype == RTPOINT ? 2 : 3); ++i)
      out += static_cast<char>(static_cast<int32_t>(rb->resval.rpoint[i]));
    *cursor = rb->rbnext;
    return true;
  }
  if (rb->restype != RTLB) return false;
  std::string got;
  for (rb = rb->rbnext; rb && rb->restype != RTLE; rb = rb->rbnext) {
    if (rb->restype == RTSHORT) got += static_cast<char>(rb->resval.rint);
    else if (rb->restype == RTLONG) got += static_cast<char>(rb->resval.rlong);
    else return false;
  }
  if (!rb) return false;
  out = std::move(got);
  *cursor = rb->rbnext;
  return true;
}

}  // namespace

// ------------------------------------------------------- hexadecimal text

int lispFileBinary2Text() {
  resbuf* cur = acedGetArgs();
  std::u16string source, target;
  std::string bytes;
  if (!text(&cur, source) || !text(&cur, target) || !readFile(source, bytes)) return RSRSLT;
  return retWritten(target, bytesToHexText(bytes));
}

int lispFileText2Binary() {
  resbuf* cur = acedGetArgs();
  std::u16string source, target;
  std::string hex;
  if (!text(&cur, source) || !text(&cur, target) || !readFile(source, hex)) return RSRSLT;
  return retWritten(target, hexTextToBytes(hex));
}

int lispFileBinary2TextStr() {
  resbuf* cur = acedGetArgs();
  std::u16string path;
  std::string bytes;
  if (!text(&cur, path) || !readFile(path, bytes)) return RSRSLT;
  return retAscii(bytesToHexText(bytes));
}

int lispFileTextStr2Binary() {
  resbuf* cur = acedGetArgs();
  std::u16string hex, target;
  if (!text(&cur, hex) || !text(&cur, target)) return RSRSLT;
  return retWritten(target, hexTextToBytes(toBytes(hex, CP_UTF8)));
}

// ----------------------------------------------------------------- Base64

// (ZEPK-File-Base64Encode source [target]): the text, or T after it is
// written to the target.
int lispFileBase64Encode() {
  resbuf* cur = acedGetArgs();
  std::u16string source, target;
  std::string bytes;
  if (!text(&cur, source) || !readFile(source, bytes)) return RSRSLT;
  std::string b64 = base64Encode(bytes);
  if (text(&cur, target)) return retWritten(target, b64);
  return retAscii(b64);
}

int lispFileBase64Decode() {
  resbuf* cur = acedGetArgs();
  std::u16string b64, target;
  if (!text(&cur, b64) || !text(&cur, target)) return RSRSLT;
  std::optional<std::string> bytes = base64Decode(toBytes(b64, CP_UTF8));
  if (!bytes) return RSRSLT;
  return retWritten(target, *bytes);
}

int lispStringBase64Encode() {
  resbuf* cur = acedGetArgs();
  std::u16string s;
  if (!text(&cur, s)) return RSRSLT;
  return retAscii(base64Encode(toBytes(s, CP_UTF8)));
}

int lispStringBase64Decode() {
  resbuf* cur = acedGetArgs();
  std::u16string b64;
  if (!text(&cur, b64)) return RSRSLT;
  std::optional<std::string> bytes = base64Decode(toBytes(b64, CP_UTF8));
  if (!bytes) return RSRSLT;
  return retWide(fromBytes(*bytes, CP_UTF8));
}

// -------------------------------------------------------------------- MD5

int lispFileMD5() {
  resbuf* cur = acedGetArgs();
  std::u16string path;
  std::string bytes;
  if (!text(&cur, path) || !readFile(path, bytes)) return RSRSLT;
  return retAscii(md5Hex(bytes));
}

// (ZEPK-String-MD5 text [flag]): with a flag that is not nil the text is a
// file's path and the file is hashed.
int lispStringMD5() {
  resbuf* cur = acedGetArgs();
  std::u16string s;
  if (!text(&cur, s)) return RSRSLT;
  if (cur && cur->restype != RTNIL) {
    std::string bytes;
    if (!readFile(s, bytes)) return RSRSLT;
    return retAscii(md5Hex(bytes));
  }
  return retAscii(md5Hex(toBytes(s, CP_ACP)));
}

// -------------------------------------------------------------------- DES

int lispStringDESEncrypt() { return stringDes(false); }
int lispStringDESDecrypt() { return stringDes(true); }
int lispFileDESEncrypt() { return fileDes(false); }
int lispFileDESDecrypt() { return fileDes(true); }

// ----------------------------------------------------- the own scramblers

// (ZEPK-String-Encrypt text key): a wrong type at either place is reported
// as the first argument's.
int lispStringEncrypt() {
  constexpr MsgStyle style = MsgStyle::LineDot;
  resbuf* cur = acedGetArgs();
  std::u16string s, key;
  for (std::u16string* arg : {&s, &key}) {
    if (!cur) return failTooFew(style);
    if (RbGetCString(&cur, *arg) != RTNORM) return failBadArg(style, 1);
  }
  if (cur) return failTooMany(style);
  return retWide(scrambleText(s, key));
}

// (ZEPK-String-Crypt text key [flag]): the bytes as "%03d" groups with a
// flag that is not nil, else as a list of integers.
int lispStringCrypt() {
  resbuf* cur = acedGetArgs();
  std::u16string s, key;
  if (!text(&cur, s) || !text(&cur, key)) return RSRSLT;
  std::string x = xorWithKey(toBytes(s, CP_ACP), toBytes(key, CP_ACP));
  if (cur && cur->restype != RTNIL) return retAscii(threeDigitGroups(x));
  std::vector<int32_t> values(x.begin(), x.end());
  for (int32_t& v : values) v &= 0xFF;
  return frame::retList(RbFromInts(values.data(), static_cast<int>(values.size())));
}

// (ZEPK-String-unCrypt digits-or-integers key)
int lispStringUnCrypt() {
  constexpr MsgStyle style = MsgStyle::LineBang;
  resbuf* cur = acedGetArgs();
  std::string bytes;
  std::u16string key;
  if (!cipherBytes(&cur, bytes)) return failBadArg(style, 1);
  if (!text(&cur, key)) return failBadArg(style, 2);
  if (cur) return failTooMany(style);
  return retWide(fromBytes(xorWithKey(bytes, toBytes(key, CP_ACP)), CP_ACP));
}

// ------------------------------------------------------------ the URL form

int lispStringURLCoding() {
  resbuf* cur = acedGetArgs();
  std::u16string s;
  if (!text(&cur, s)) return RSRSLT;
  return retAscii(urlEncode(toBytes(s, CP_UTF8)));
}

}  // namespace zepk::services
