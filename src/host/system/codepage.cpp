#include "host/system/codepage.h"

#include <iconv.h>

#include <atomic>
#include <bit>
#include <cerrno>
#include <string>
#include <unordered_map>

namespace zepk::sys {

namespace {

std::atomic<int> gSystemCodePage{kCodePageGbk};

// iconv's name for the UTF-16 of this machine's char16_t (no byte order mark).
constexpr const char* kWideName = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

std::string iconvName(int cp) {
  switch (cp) {
    case kCodePageUtf8: return "UTF-8";
    case kCodePageAscii: return "ASCII";
    case 54936: return "GB18030";
    case 20932: return "EUC-JP";
    case 51949: return "EUC-KR";
    default: break;
  }
  if (cp >= 28591 && cp <= 28599) return "ISO-8859-" + std::to_string(cp - 28590);
  // UTF-16 and UTF-32 (1200, 1201, 12000, 12001) are not byte code pages.
  if (cp <= 0 || cp == 1200 || cp == 1201 || cp == 12000 || cp == 12001) return {};
  return "CP" + std::to_string(cp);
}

// Code pages whose bytes 0x00-0x7F are ASCII, so pure ASCII text converts by copying.
bool isAsciiCompatible(int cp) {
  switch (cp) {
    case 936: case 950: case 949: case 932: case 54936: case 20127: case 65001:
    case 437: case 850: case 852: case 866: case 874:
      return true;
    default:
      return (cp >= 1250 && cp <= 1258) || (cp >= 28591 && cp <= 28599);
  }
}

bool isTrailByte(unsigned char b, int cp) {
  switch (cp) {
    case 936: return b >= 0x40 && b <= 0xFE && b != 0x7F;
    case 950: return (b >= 0x40 && b <= 0x7E) || (b >= 0xA1 && b <= 0xFE);
    case 949: return (b >= 0x41 && b <= 0x5A) || (b >= 0x61 && b <= 0x7A) || (b >= 0x81 && b <= 0xFE);
    case 932: return b >= 0x40 && b <= 0xFC && b != 0x7F;
    default: return false;
  }
}

// The pair of descriptors for one code page. iconv descriptors carry state and
// must not be shared between threads, so each thread keeps its own cache.
struct Converter {
  iconv_t toBytes = reinterpret_cast<iconv_t>(-1);
  iconv_t toWide = reinterpret_cast<iconv_t>(-1);
  bool ok() const { return toBytes != reinterpret_cast<iconv_t>(-1) && toWide != reinterpret_cast<iconv_t>(-1); }
};

class ConverterCache {
 public:
  ~ConverterCache() {
    for (auto& [cp, c] : map_) close(c);
  }
  // Null when iconv cannot convert this code page.
  Converter* get(int cp) {
    auto it = map_.find(cp);
    if (it == map_.end()) {
      Converter c;
      const std::string name = iconvName(cp);
      if (!name.empty()) {
        c.toBytes = iconv_open(name.c_str(), kWideName);
        c.toWide = iconv_open(kWideName, name.c_str());
      }
      if (!c.ok()) close(c);
      it = map_.emplace(cp, c).first;
    }
    return it->second.ok() ? &it->second : nullptr;
  }

 private:
  static void close(Converter& c) {
    if (c.toBytes != reinterpret_cast<iconv_t>(-1)) iconv_close(c.toBytes);
    if (c.toWide != reinterpret_cast<iconv_t>(-1)) iconv_close(c.toWide);
    c = Converter{};
  }
  std::unordered_map<int, Converter> map_;
};

Converter* converterFor(int cp) {
  thread_local ConverterCache cache;
  return cache.get(cp);
}

int resolve(int cp) { return cp == 0 ? systemCodePage() : cp; }

bool isAscii(std::u16string_view s) {
  for (char16_t c : s)
    if (c >= 0x80) return false;
  return true;
}

bool isAscii(std::string_view s) {
  for (char c : s)
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  return true;
}

// A growable output buffer for iconv.
template <typename Unit>
class Sink {
 public:
  explicit Sink(size_t units) : buf_(units < 16 ? 16 : units, Unit{}) {}
  char** ptr() { return &out_; }
  size_t* left() { return &left_; }
  void grow() {
    const size_t used = usedBytes();
    buf_.resize(buf_.size() * 2);
    out_ = reinterpret_cast<char*>(buf_.data()) + used;
    left_ = buf_.size() * sizeof(Unit) - used;
  }
  void put(Unit u) {
    if (left_ < sizeof(Unit)) grow();
    *reinterpret_cast<Unit*>(out_) = u;
    out_ += sizeof(Unit);
    left_ -= sizeof(Unit);
  }
  std::basic_string<Unit> take() {
    buf_.resize(usedBytes() / sizeof(Unit));
    return std::move(buf_);
  }

 private:
  size_t usedBytes() const { return static_cast<size_t>(out_ - reinterpret_cast<const char*>(buf_.data())); }
  std::basic_string<Unit> buf_;
  char* out_ = reinterpret_cast<char*>(buf_.data());
  size_t left_ = buf_.size() * sizeof(Unit);
};

}  // namespace

int systemCodePage() { return gSystemCodePage.load(std::memory_order_relaxed); }

bool setSystemCodePage(int cp) {
  if (!isCodePageSupported(cp)) return false;
  gSystemCodePage.store(cp, std::memory_order_relaxed);
  return true;
}

bool isCodePageSupported(int cp) { return cp > 0 && converterFor(cp) != nullptr; }

bool isLeadByte(unsigned char b, int cp) {
  switch (resolve(cp)) {
    case 936: case 949: case 950: return b >= 0x81 && b <= 0xFE;
    case 932: return (b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xFC);
    default: return false;
  }
}

std::string toCodePage(std::u16string_view s, int cp) {
  cp = resolve(cp);
  Converter* conv = converterFor(cp);
  if (isAscii(s) && (conv == nullptr || isAsciiCompatible(cp))) {
    return std::string(s.begin(), s.end());
  }
  if (conv == nullptr) {
    std::string out;
    for (size_t i = 0; i < s.size(); ++i) {
      const char16_t c = s[i];
      out.push_back(c < 0x80 ? static_cast<char>(c) : '?');
      // A surrogate pair is one character: one '?'.
      if (c >= 0xD800 && c <= 0xDBFF && i + 1 < s.size() && s[i + 1] >= 0xDC00 && s[i + 1] <= 0xDFFF) ++i;
    }
    return out;
  }

  iconv(conv->toBytes, nullptr, nullptr, nullptr, nullptr);
  Sink<char> sink(s.size() * 2);
  const char* const begin = reinterpret_cast<const char*>(s.data());
  char* in = const_cast<char*>(begin);
  size_t inLeft = s.size() * sizeof(char16_t);
  while (inLeft > 0) {
    if (iconv(conv->toBytes, &in, &inLeft, sink.ptr(), sink.left()) != static_cast<size_t>(-1)) break;
    if (errno == E2BIG) {
      sink.grow();
      continue;
    }
    // EILSEQ (no such character in the code page, or an unpaired surrogate)
    // or EINVAL (a high surrogate at the very end): one '?' for the character.
    const size_t unit = static_cast<size_t>(in - begin) / sizeof(char16_t);
    size_t skip = 1;
    if (s[unit] >= 0xD800 && s[unit] <= 0xDBFF && unit + 1 < s.size() && s[unit + 1] >= 0xDC00 &&
        s[unit + 1] <= 0xDFFF)
      skip = 2;
    sink.put('?');
    in += skip * sizeof(char16_t);
    inLeft -= skip * sizeof(char16_t);
    iconv(conv->toBytes, nullptr, nullptr, nullptr, nullptr);
  }
  // Flush any shift state (stateful encodings only).
  while (iconv(conv->toBytes, nullptr, nullptr, sink.ptr(), sink.left()) == static_cast<size_t>(-1) && errno == E2BIG)
    sink.grow();
  return sink.take();
}

std::u16string fromCodePage(std::string_view bytes, int cp) {
  cp = resolve(cp);
  Converter* conv = converterFor(cp);
  if (isAscii(bytes) && (conv == nullptr || isAsciiCompatible(cp))) {
    return std::u16string(bytes.begin(), bytes.end());
  }
  if (conv == nullptr) {
    std::u16string out;
    for (char b : bytes) out.push_back(static_cast<unsigned char>(b) < 0x80 ? static_cast<char16_t>(b) : u'?');
    return out;
  }

  iconv(conv->toWide, nullptr, nullptr, nullptr, nullptr);
  Sink<char16_t> sink(bytes.size());
  const char* const begin = bytes.data();
  char* in = const_cast<char*>(begin);
  size_t inLeft = bytes.size();
  while (inLeft > 0) {
    if (iconv(conv->toWide, &in, &inLeft, sink.ptr(), sink.left()) != static_cast<size_t>(-1)) break;
    if (errno == E2BIG) {
      sink.grow();
      continue;
    }
    // EILSEQ or EINVAL (truncated at the end): one '?' per byte that does not
    // decode. A lead byte with a well-formed trail that names no character
    // spoils both bytes; with a malformed trail only the lead byte is lost and
    // decoding resumes at the trail.
    const size_t pos = static_cast<size_t>(in - begin);
    size_t skip = 1;
    if (isLeadByte(static_cast<unsigned char>(bytes[pos]), cp) && pos + 1 < bytes.size() &&
        isTrailByte(static_cast<unsigned char>(bytes[pos + 1]), cp))
      skip = 2;
    for (size_t k = 0; k < skip; ++k) sink.put(u'?');
    in += skip;
    inLeft -= skip;
    iconv(conv->toWide, nullptr, nullptr, nullptr, nullptr);
  }
  return sink.take();
}

}  // namespace zepk::sys
