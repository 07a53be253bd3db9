#include "host/system/winformat.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "host/system/codepage.h"

namespace zepk::sys {

namespace {

constexpr int kMaxWidth = 1 << 20;
constexpr int kMaxPrecision = 512;
// Significant digits the runtime computes before laying a number out.
constexpr int kSignificantDigits = 17;

// ---------------------------------------------------------------------------
// Exact decimal expansion of a double.
//
// A finite double is m * 2^e with m odd. For e >= 0 it is the integer
// m * 2^e; for e < 0 it is m * 5^-e / 10^-e, whose digits are those of the
// integer m * 5^-e with -e of them after the point. A small base-10^9 big
// integer gives those digits exactly (at most 767 significant digits).

class BigDecimal {
 public:
  explicit BigDecimal(uint64_t v) {
    do {
      limbs_.push_back(static_cast<uint32_t>(v % kBase));
      v /= kBase;
    } while (v != 0);
  }
  void multiply(uint32_t k) {
    uint64_t carry = 0;
    for (uint32_t& limb : limbs_) {
      const uint64_t t = static_cast<uint64_t>(limb) * k + carry;
      limb = static_cast<uint32_t>(t % kBase);
      carry = t / kBase;
    }
    while (carry != 0) {
      limbs_.push_back(static_cast<uint32_t>(carry % kBase));
      carry /= kBase;
    }
  }
  void multiplyPow(uint32_t base, uint32_t maxChunkPow, uint32_t chunk, int n) {
    for (; n >= static_cast<int>(maxChunkPow); n -= maxChunkPow) multiply(chunk);
    uint32_t rest = 1;
    for (; n > 0; --n) rest *= base;
    if (rest != 1) multiply(rest);
  }
  std::string digits() const {
    std::string s = std::to_string(limbs_.back());
    char buf[16];
    for (size_t i = limbs_.size() - 1; i-- > 0;) {
      uint32_t v = limbs_[i];
      for (int k = 8; k >= 0; --k, v /= 10) buf[k] = static_cast<char>('0' + v % 10);
      s.append(buf, 9);
    }
    return s;
  }

 private:
  static constexpr uint64_t kBase = 1000000000;
  std::vector<uint32_t> limbs_;
};

// Digits of a finite positive value: value = 0.DIGITS * 10^decpt, no leading
// or trailing zeros.
void exactDigits(double ax, std::string& digits, int& decpt) {
  int e2 = 0;
  const double fr = std::frexp(ax, &e2);
  uint64_t m = static_cast<uint64_t>(std::ldexp(fr, 53));
  int e = e2 - 53;
  const int tz = std::countr_zero(m);
  m >>= tz;
  e += tz;
  BigDecimal n(m);
  int fracDigits = 0;
  if (e > 0) {
    n.multiplyPow(2, 29, 1u << 29, e);
  } else if (e < 0) {
    n.multiplyPow(5, 13, 1220703125u, -e);
    fracDigits = -e;
  }
  digits = n.digits();
  decpt = static_cast<int>(digits.size()) - fracDigits;
  while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
}

// Rounds the digit text to n characters, half away from zero: the character
// after the cut decides, and any character from '5' up (the runtime compares
// characters, so the letters of "1#INF" count as high digits) rounds up.
// When rounding carries out of the first digit a '1' is prepended and decpt
// grows. n < 0 means the cut lies left of every digit: nothing is kept.
std::string roundDigits(const std::string& man, int& decpt, int n) {
  std::string r;
  if (n < 0) return r;
  r.reserve(static_cast<size_t>(n) + 1);
  for (int i = 0; i < n; ++i) r.push_back(static_cast<size_t>(i) < man.size() ? man[i] : '0');
  if (static_cast<size_t>(n) < man.size() && man[n] >= '5') {
    int i = n - 1;
    while (i >= 0 && r[i] == '9') r[i--] = '0';
    if (i >= 0) {
      ++r[i];
    } else {
      r.insert(r.begin(), '1');
      ++decpt;
    }
  }
  return r;
}

// The runtime's view of a value: its first significant digits (or the text
// that stands for infinity or NaN), where the decimal point goes, the sign.
struct Mantissa {
  std::string man;
  int decpt = 1;
  bool negative = false;
};

Mantissa toMantissa(double v) {
  Mantissa m;
  m.negative = std::signbit(v);
  if (std::isinf(v)) {
    m.man = "1#INF";
  } else if (std::isnan(v)) {
    const auto bits = std::bit_cast<uint64_t>(v);
    const bool quiet = (bits >> 51) & 1;
    const uint64_t payload = bits & ((uint64_t{1} << 51) - 1);
    if (m.negative && quiet && payload == 0)
      m.man = "1#IND";  // the "indefinite" NaN of invalid operations such as 0.0/0.0
    else
      m.man = quiet ? "1#QNAN" : "1#SNAN";
  } else if (v == 0) {
    m.man = "0";
  } else {
    std::string digits;
    exactDigits(std::fabs(v), digits, m.decpt);
    m.man = roundDigits(digits, m.decpt, std::min<int>(kSignificantDigits, static_cast<int>(digits.size())));
  }
  return m;
}

// Lays out digits r (exactly decpt + ndec of them, or none when that is
// negative) with ndec digits after the point.
std::string layoutFixed(const std::string& r, int decpt, int ndec, bool alt) {
  std::string out;
  if (decpt > 0)
    out.append(r, 0, static_cast<size_t>(decpt));
  else
    out.push_back('0');
  if (ndec > 0 || alt) out.push_back('.');
  if (ndec > 0) {
    if (decpt >= 0) {
      out.append(r, static_cast<size_t>(decpt));
    } else {
      out.append(static_cast<size_t>(std::min(ndec, -decpt)), '0');
      out.append(r);
    }
  }
  return out;
}

// r holds the significant digits, decpt the point position of the value.
std::string layoutExponent(const std::string& r, int decpt, bool alt, bool upper, bool cropZeros) {
  std::string out(1, r[0]);
  if (r.size() > 1 || alt) out.push_back('.');
  out.append(r, 1);
  if (cropZeros) {
    while (!out.empty() && out.back() == '0') out.pop_back();
    if (!out.empty() && out.back() == '.') out.pop_back();
  }
  const int exp10 = decpt - 1;
  out.push_back(upper ? 'E' : 'e');
  out.push_back(exp10 < 0 ? '-' : '+');
  std::string e = std::to_string(exp10 < 0 ? -exp10 : exp10);
  if (e.size() < 3) e.insert(0, 3 - e.size(), '0');
  return out + e;
}

// Formats |v| per conv; the sign is reported separately.
std::string formatMagnitude(const Mantissa& m, char conv, int precision, bool alt) {
  if (precision > kMaxPrecision) precision = kMaxPrecision;
  int decpt = m.decpt;
  switch (conv) {
    case 'e':
    case 'E': {
      const int p = precision < 0 ? 6 : precision;
      std::string r = roundDigits(m.man, decpt, p + 1);
      r.resize(static_cast<size_t>(p) + 1);  // drops the extra digit a carry adds
      return layoutExponent(r, decpt, alt, conv == 'E', false);
    }
    case 'g':
    case 'G': {
      const int p = precision < 0 ? 6 : precision == 0 ? 1 : precision;
      std::string r = roundDigits(m.man, decpt, p);
      r.resize(static_cast<size_t>(p));
      const int exp10 = decpt - 1;
      if (exp10 < -4 || exp10 >= p) return layoutExponent(r, decpt, alt, conv == 'G', !alt);
      std::string out = layoutFixed(r, decpt, p - decpt, alt);
      if (!alt && out.find('.') != std::string::npos) {
        while (out.back() == '0') out.pop_back();
        if (out.back() == '.') out.pop_back();
      }
      return out;
    }
    default: {
      const int ndec = precision < 0 ? 6 : precision;
      const std::string r = roundDigits(m.man, decpt, decpt + ndec);
      return layoutFixed(r, decpt, ndec, alt);
    }
  }
}

// ---------------------------------------------------------------------------
// The format engine, shared by the narrow and the wide format.

template <typename Ch>
using Str = std::basic_string<Ch>;

template <typename Ch>
Str<Ch> widen(std::string_view ascii) {
  return Str<Ch>(ascii.begin(), ascii.end());
}

// Bytes of the first maxChars characters of a narrow string in the system
// code page (a double-byte pair, or a UTF-8 sequence, is one character).
size_t narrowPrefixBytes(const char* s, int maxChars) {
  const int cp = systemCodePage();
  size_t i = 0;
  for (int n = 0; s[i] != '\0' && (maxChars < 0 || n < maxChars); ++n) {
    const auto b = static_cast<unsigned char>(s[i]);
    if (isLeadByte(b, cp) && s[i + 1] != '\0') {
      i += 2;
    } else {
      ++i;
      if (cp == kCodePageUtf8 && b >= 0xC0)
        while ((static_cast<unsigned char>(s[i]) & 0xC0) == 0x80) ++i;
    }
  }
  return i;
}

size_t boundedLength(const char* s, int maxUnits) {
  size_t n = 0;
  while ((maxUnits < 0 || n < static_cast<size_t>(maxUnits)) && s[n] != '\0') ++n;
  return n;
}

size_t boundedLength(const char16_t* s, int maxUnits) {
  size_t n = 0;
  while ((maxUnits < 0 || n < static_cast<size_t>(maxUnits)) && s[n] != u'\0') ++n;
  return n;
}

enum class Size { kDefault, kChar, kShort, kLong, kWide, k32, k64 };

struct Conversion {
  bool left = false, plus = false, space = false, alt = false, zero = false;
  int width = 0;
  int precision = -1;
  Size size = Size::kDefault;
};

template <typename Ch>
class Engine {
 public:
  explicit Engine(va_list& ap) : ap_(ap) {}

  Str<Ch> run(const Ch* fmt) {
    if (fmt == nullptr) return {};
    const Ch* p = fmt;
    while (*p != Ch{}) {
      if (*p != Ch('%')) {
        out_.push_back(*p++);
        continue;
      }
      const Ch* start = p++;
      Conversion s;
      parseConversion(p, s);
      const Ch c = *p;
      if (c == Ch{}) {  // the format ended inside a conversion: print it as written
        out_.append(start, p);
        break;
      }
      ++p;
      if (!convert(static_cast<char32_t>(c), s)) out_.append(start, p);
    }
    return std::move(out_);
  }

 private:
  static constexpr bool kWideFormat = sizeof(Ch) == sizeof(char16_t);

  static bool isDigit(Ch c) { return c >= Ch('0') && c <= Ch('9'); }

  int readNumber(const Ch*& p, int cap) {
    long long v = 0;
    while (isDigit(*p)) {
      v = std::min<long long>(v * 10 + (*p++ - Ch('0')), cap);
    }
    return static_cast<int>(v);
  }

  void parseConversion(const Ch*& p, Conversion& s) {
    for (;; ++p) {
      if (*p == Ch('-')) s.left = true;
      else if (*p == Ch('+')) s.plus = true;
      else if (*p == Ch(' ')) s.space = true;
      else if (*p == Ch('#')) s.alt = true;
      else if (*p == Ch('0')) s.zero = true;
      else break;
    }
    if (*p == Ch('*')) {
      ++p;
      long long w = va_arg(ap_, int);
      if (w < 0) {
        s.left = true;
        w = -w;
      }
      s.width = static_cast<int>(std::min<long long>(w, kMaxWidth));
    } else {
      s.width = readNumber(p, kMaxWidth);
    }
    if (*p == Ch('.')) {
      ++p;
      if (*p == Ch('*')) {
        ++p;
        const int v = va_arg(ap_, int);
        s.precision = v < 0 ? -1 : v;
      } else {
        s.precision = readNumber(p, 1 << 30);
      }
    }
    switch (*p) {
      case Ch('h'):
        ++p;
        s.size = Size::kShort;
        if (*p == Ch('h')) ++p, s.size = Size::kChar;
        break;
      case Ch('l'):
        ++p;
        s.size = Size::kLong;
        if (*p == Ch('l')) ++p, s.size = Size::k64;
        break;
      case Ch('w'): ++p, s.size = Size::kWide; break;
      case Ch('L'): ++p; break;  // long double is double on that runtime
      case Ch('z'): case Ch('j'): case Ch('t'): ++p, s.size = Size::k64; break;
      case Ch('I'):
        ++p;
        if (p[0] == Ch('6') && p[1] == Ch('4')) {
          p += 2;
          s.size = Size::k64;
        } else if (p[0] == Ch('3') && p[1] == Ch('2')) {
          p += 2;
          s.size = Size::k32;
        } else {
          s.size = Size::k64;  // pointer-sized
        }
        break;
      default: break;
    }
  }

  // Writes prefix + body into width; count is what the width measures body by.
  void emit(const Str<Ch>& prefix, const Str<Ch>& body, size_t count, const Conversion& s) {
    const size_t used = prefix.size() + count;
    const size_t pad = static_cast<size_t>(s.width) > used ? static_cast<size_t>(s.width) - used : 0;
    if (!s.left && !s.zero) out_.append(pad, Ch(' '));
    out_.append(prefix);
    if (!s.left && s.zero) out_.append(pad, Ch('0'));
    out_.append(body);
    if (s.left) out_.append(pad, Ch(' '));
  }
  void emit(const Str<Ch>& body, const Conversion& s) { emit({}, body, body.size(), s); }

  bool convert(char32_t c, const Conversion& s) {
    switch (c) {
      case '%': out_.push_back(Ch('%')); return true;
      case 'd': case 'i': formatSigned(s); return true;
      case 'u': formatUnsigned(s, 10, false); return true;
      case 'o': formatUnsigned(s, 8, false); return true;
      case 'x': formatUnsigned(s, 16, false); return true;
      case 'X': formatUnsigned(s, 16, true); return true;
      case 'p': formatPointer(s); return true;
      case 'e': case 'E': case 'f': case 'g': case 'G': formatFloat(s, static_cast<char>(c)); return true;
      case 'c': formatChar(s, !isNarrowArg(s, false)); return true;
      case 'C': formatChar(s, !isNarrowArg(s, true)); return true;
      case 's': formatString(s, !isNarrowArg(s, false)); return true;
      case 'S': formatString(s, !isNarrowArg(s, true)); return true;
      case 'n': (void)va_arg(ap_, void*); return true;
      default: return false;
    }
  }

  // Whether a c/s argument is narrow. Upper-case C/S name the other width
  // than the format's own; h forces narrow, l and w force wide.
  bool isNarrowArg(const Conversion& s, bool upperCase) const {
    if (s.size == Size::kShort || s.size == Size::kChar) return true;
    if (s.size == Size::kLong || s.size == Size::kWide || s.size == Size::k64) return false;
    return kWideFormat == upperCase;
  }

  void formatSigned(const Conversion& s) {
    long long v;
    switch (s.size) {
      case Size::k64: v = va_arg(ap_, long long); break;
      case Size::kShort: v = static_cast<short>(va_arg(ap_, int)); break;
      case Size::kChar: v = static_cast<signed char>(va_arg(ap_, int)); break;
      default: v = va_arg(ap_, int); break;  // l and I32 are 32 bits
    }
    const unsigned long long magnitude = v < 0 ? 0ull - static_cast<unsigned long long>(v) : v;
    std::string prefix;
    if (v < 0) prefix = "-";
    else if (s.plus) prefix = "+";
    else if (s.space) prefix = " ";
    formatInteger(s, magnitude, prefix, 10, false);
  }

  void formatUnsigned(const Conversion& s, int radix, bool upper) {
    unsigned long long v;
    switch (s.size) {
      case Size::k64: v = va_arg(ap_, unsigned long long); break;
      case Size::kShort: v = static_cast<unsigned short>(va_arg(ap_, unsigned)); break;
      case Size::kChar: v = static_cast<unsigned char>(va_arg(ap_, unsigned)); break;
      default: v = va_arg(ap_, unsigned); break;
    }
    std::string prefix;
    if (s.alt && radix == 16 && v != 0) prefix = upper ? "0X" : "0x";
    formatInteger(s, v, prefix, radix, upper);
  }

  void formatPointer(const Conversion& s) {
    const auto v = reinterpret_cast<uintptr_t>(va_arg(ap_, void*));
    Conversion ps = s;
    ps.precision = 16;
    std::string prefix;
    if (s.alt && v != 0) prefix = "0X";
    formatInteger(ps, v, prefix, 16, true);
  }

  void formatInteger(Conversion s, unsigned long long v, const std::string& prefix, int radix, bool upper) {
    int precision = 1;
    if (s.precision >= 0) {
      s.zero = false;
      precision = std::min(s.precision, kMaxPrecision);
    }
    const char* digitSet = upper ? "0123456789ABCDEF" : "0123456789abcdef";
    std::string digits;
    for (; v != 0; v /= static_cast<unsigned>(radix)) digits.push_back(digitSet[v % static_cast<unsigned>(radix)]);
    if (static_cast<int>(digits.size()) < precision) digits.append(precision - digits.size(), '0');
    if (s.alt && radix == 8 && (digits.empty() || digits.back() != '0')) digits.push_back('0');
    std::reverse(digits.begin(), digits.end());
    const Str<Ch> body = widen<Ch>(digits);
    emit(widen<Ch>(prefix), body, body.size(), s);
  }

  void formatFloat(const Conversion& s, char conv) {
    const double v = va_arg(ap_, double);
    const Mantissa m = toMantissa(v);
    std::string prefix;
    if (m.negative) prefix = "-";
    else if (s.plus) prefix = "+";
    else if (s.space) prefix = " ";
    const Str<Ch> body = widen<Ch>(formatMagnitude(m, conv, s.precision, s.alt));
    emit(widen<Ch>(prefix), body, body.size(), s);
  }

  void formatChar(const Conversion& s, bool wideArg) {
    const int v = va_arg(ap_, int);
    Str<Ch> body;
    if constexpr (kWideFormat) {
      if (wideArg) {
        body.push_back(static_cast<char16_t>(v));
      } else {
        const char b = static_cast<char>(v);
        body = fromCodePage(std::string_view(&b, 1));
      }
    } else {
      if (wideArg) {
        const char16_t w = static_cast<char16_t>(v);
        body = toCodePage(std::u16string_view(&w, 1));
      } else {
        body.push_back(static_cast<char>(v));
      }
    }
    emit(body, s);
  }

  void formatString(const Conversion& s, bool wideArg) {
    if (wideArg) {
      const char16_t* w = va_arg(ap_, const char16_t*);
      if (w == nullptr) w = u"(null)";
      const std::u16string_view text(w, boundedLength(w, s.precision));
      if constexpr (kWideFormat) {
        emit(Str<Ch>(text), s);
      } else {
        // The width counts the wide characters, not the bytes they become.
        emit({}, toCodePage(text), text.size(), s);
      }
    } else {
      const char* n = va_arg(ap_, const char*);
      if (n == nullptr) n = "(null)";
      if constexpr (kWideFormat) {
        emit(fromCodePage(std::string_view(n, narrowPrefixBytes(n, s.precision))), s);
      } else {
        emit(Str<Ch>(n, boundedLength(n, s.precision)), s);
      }
    }
  }

  va_list& ap_;
  Str<Ch> out_;
};

}  // namespace

std::string formatDouble(double v, char conv, int precision, bool alt) {
  switch (conv) {
    case 'f': case 'e': case 'E': case 'g': case 'G': break;
    default: conv = 'f';
  }
  const Mantissa m = toMantissa(v);
  std::string body = formatMagnitude(m, conv, precision, alt);
  return m.negative ? "-" + body : body;
}

std::u16string vformatW(const char16_t* fmt, va_list ap) {
  va_list args;
  va_copy(args, ap);
  std::u16string out = Engine<char16_t>(args).run(fmt);
  va_end(args);
  return out;
}

std::u16string formatW(const char16_t* fmt, ...) {
  va_list ap;
  va_start(ap, fmt);
  std::u16string out = vformatW(fmt, ap);
  va_end(ap);
  return out;
}

std::string vformatA(const char* fmt, va_list ap) {
  va_list args;
  va_copy(args, ap);
  std::string out = Engine<char>(args).run(fmt);
  va_end(args);
  return out;
}

std::string formatA(const char* fmt, ...) {
  va_list ap;
  va_start(ap, fmt);
  std::string out = vformatA(fmt, ap);
  va_end(ap);
  return out;
}

}  // namespace zepk::sys
