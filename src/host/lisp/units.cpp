#include "host/lisp/units.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numeric>

namespace zepk::lisp {

namespace {

constexpr double kPi = 3.14159265358979323846;

// Decimal places beyond what a double holds are zeros; past this they are
// not written at all.
constexpr int kMaxPlaces = 20;

std::u16string widen(const std::string& s) { return std::u16string(s.begin(), s.end()); }

// A whole number written out in full (feet, whole inches, degrees).
std::string whole(double w) {
  char buf[400];
  std::snprintf(buf, sizeof buf, "%.0f", w);
  return buf;
}

// A non-negative number rounded to a count of decimal places.
struct Fixed {
  std::string whole;  // at least one digit
  std::string frac;   // exactly the requested places
  bool isZero() const {
    return whole.find_first_not_of('0') == std::string::npos && frac.find_first_not_of('0') == std::string::npos;
  }
  double value() const { return std::strtod((whole + "." + frac).c_str(), nullptr); }
};

// The seventeen significant digits of a >= 0 and the place of its decimal
// point (the count of digits in front of it, which may be zero or negative).
void decimalDigits(double a, std::string& digits, int& point) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.16e", a);
  digits.clear();
  const char* p = buf;
  for (; *p && *p != 'e'; ++p)
    if (*p >= '0' && *p <= '9') digits.push_back(*p);
  point = (*p == 'e' ? std::atoi(p + 1) : 0) + 1;
}

// Adds one to the last digit, carrying; true when the carry runs out of the
// front (999 -> 000).
bool increment(std::string& d) {
  for (size_t i = d.size(); i-- > 0;) {
    if (d[i] != '9') {
      ++d[i];
      return false;
    }
    d[i] = '0';
  }
  return true;
}

Fixed roundFixed(double a, int places) {
  std::string d;
  int point;
  decimalDigits(a, d, point);
  if (point <= 0) {
    d.insert(0, static_cast<size_t>(-point), '0');
    point = 0;
  } else if (static_cast<int>(d.size()) < point) {
    d.append(static_cast<size_t>(point) - d.size(), '0');
  }
  size_t keep = static_cast<size_t>(point + places);
  if (d.size() > keep) {
    bool up = d[keep] >= '5';
    d.resize(keep);
    if (up && increment(d)) {
      d.insert(d.begin(), '1');
      ++point;
    }
  } else {
    d.append(keep - d.size(), '0');
  }
  Fixed f;
  f.whole = d.substr(0, static_cast<size_t>(point));
  f.frac = d.substr(static_cast<size_t>(point));
  size_t nz = f.whole.find_first_not_of('0');
  f.whole = nz == std::string::npos ? "0" : f.whole.substr(nz);
  return f;
}

std::string joinDecimal(const Fixed& f, const UnitStyle& st, bool leadingZeroRule) {
  std::string whole = f.whole;
  std::string frac = f.frac;
  if (st.dimzin & 8)
    while (!frac.empty() && frac.back() == '0') frac.pop_back();
  if (leadingZeroRule && (st.dimzin & 4) && whole == "0" && !frac.empty()) whole.clear();
  return frac.empty() ? whole : whole + "." + frac;
}

std::string nonFinite(double v) {
  if (std::isnan(v)) return "1.#QNAN";
  return v < 0 ? "-1.#INF" : "1.#INF";
}

std::string scientific(double a, int prec, const UnitStyle& st) {
  std::string d;
  int point;
  decimalDigits(a, d, point);
  int exp10 = a == 0.0 ? 0 : point - 1;
  size_t keep = static_cast<size_t>(prec) + 1;
  if (d.size() > keep) {
    bool up = d[keep] >= '5';
    d.resize(keep);
    if (up && increment(d)) {
      d.insert(d.begin(), '1');
      d.pop_back();
      ++exp10;
    }
  } else {
    d.append(keep - d.size(), '0');
  }
  Fixed m{d.substr(0, 1), d.substr(1)};
  std::string out = joinDecimal(m, st, false);
  char buf[16];
  std::snprintf(buf, sizeof buf, "E%c%02d", exp10 < 0 ? '-' : '+', std::abs(exp10));
  return out + buf;
}

// Feet and inches put together under DIMZIN's zero rules. inchZero tells
// whether the inches are precisely zero after rounding.
std::string feetInches(double feet, const std::string& inches, bool inchZero, const UnitStyle& st) {
  bool feetZero = feet == 0.0;
  int rule = st.dimzin & 3;
  bool showFeet = !feetZero || rule == 1 || rule == 2;
  bool showInches = !inchZero || rule == 1 || rule == 3;
  if (!showFeet && !showInches) showInches = true;
  std::string out;
  if (showFeet) out = whole(feet) + "'";
  if (showFeet && showInches && st.unitmode != 1) out += "-";
  if (showInches) out += inches + "\"";
  return out;
}

// Whole and numerator/denominator of a >= 0 rounded to 1/2^prec.
struct Fraction {
  double whole;
  long long num, den;
};

Fraction toFraction(double a, int prec) {
  long long den = 1LL << prec;
  // Beyond 2^53 a double has no fraction left to write.
  if (a * static_cast<double>(den) >= 9007199254740992.0) return {std::round(a), 0, 1};
  double n = std::round(a * static_cast<double>(den));
  double whole = std::floor(n / static_cast<double>(den));
  long long num = static_cast<long long>(n - whole * static_cast<double>(den));
  if (num != 0) {
    long long g = std::gcd(num, den);
    num /= g;
    den /= g;
  }
  return {whole, num, den};
}

std::string fractionText(double w, long long num, long long den, const UnitStyle& st) {
  if (num == 0) return whole(w);
  std::string frac = std::to_string(num) + "/" + std::to_string(den);
  if (w == 0.0) return frac;
  return whole(w) + (st.unitmode == 1 ? "-" : " ") + frac;
}

std::string engineering(double a, int prec, const UnitStyle& st) {
  double feet = std::floor(a / 12.0);
  Fixed in = roundFixed(a - feet * 12.0, prec);
  if (in.value() >= 12.0) {
    feet += 1.0;
    in = roundFixed(0.0, prec);
  }
  return feetInches(feet, joinDecimal(in, st, false), in.isZero(), st);
}

std::string architectural(double a, int prec, const UnitStyle& st) {
  Fraction f = toFraction(a, prec);
  double feet = std::floor(f.whole / 12.0);
  double inches = f.whole - feet * 12.0;
  // "1'-0 1/2\"" keeps the zero before a fraction; with no feet shown the
  // fraction stands alone.
  bool zero = inches == 0.0 && f.num == 0;
  std::string text = fractionText(inches, f.num, f.den, st);
  std::string out = feetInches(feet, text, zero, st);
  if (inches == 0.0 && f.num != 0 && out.find('\'') != std::string::npos) {
    size_t at = out.find('\'') + 1 + (st.unitmode != 1 ? 1 : 0);
    out.insert(at, st.unitmode == 1 ? "0-" : "0 ");
  }
  return out;
}

}  // namespace

std::u16string formatLinear(double value, int mode, int prec, const UnitStyle& style) {
  if (mode < 1 || mode > kMaxLinearMode) return {};
  prec = std::clamp(prec, 0, kMaxPlaces);
  if (!std::isfinite(value)) return widen(nonFinite(value));
  double a = std::fabs(value);
  std::string body;
  switch (mode) {
    case 1: body = scientific(a, prec, style); break;
    case 2: body = joinDecimal(roundFixed(a, prec), style, true); break;
    case 3: body = engineering(a, prec, style); break;
    case 4: body = architectural(a, std::min(prec, 8), style); break;
    case 5: {
      Fraction f = toFraction(a, std::min(prec, 8));
      body = fractionText(f.whole, f.num, f.den, style);
      break;
    }
  }
  // No "-0.00": a negative number that rounds to zero loses its sign.
  bool allZero = body.find_first_of("123456789") == std::string::npos;
  if (value < 0 && !allZero) body.insert(body.begin(), '-');
  return widen(body);
}

namespace {

// Degrees/minutes/seconds of deg in [0, limit], rounded to the unit the
// precision asks for, without any bearing letters. Sets *rounded to the
// rounded count of that unit and *full to the count in the limit, so that
// callers can spot 0 and the limit; a full circle wraps to 0d.
std::string dms(double deg, int prec, double* rounded, double* full, double limit) {
  int secPlaces = prec > 4 ? std::min(prec - 4, 8) : 0;
  double perDeg = prec < 2 ? 1.0 : prec < 4 ? 60.0 : 3600.0 * std::pow(10.0, secPlaces);
  double n = std::round(deg * perDeg);
  *rounded = n;
  *full = limit * perDeg;
  if (n >= *full && limit == 360.0) n -= *full;
  char buf[96];
  if (prec < 2) {
    std::snprintf(buf, sizeof buf, "%.0fd", n);
  } else if (prec < 4) {
    double d = std::floor(n / 60.0);
    std::snprintf(buf, sizeof buf, "%.0fd%.0f'", d, n - d * 60.0);
  } else {
    double scale = std::pow(10.0, secPlaces);
    double perMin = 60.0 * scale;
    double d = std::floor(n / (60.0 * perMin));
    double rest = n - d * 60.0 * perMin;
    double m = std::floor(rest / perMin);
    double s = rest - m * perMin;
    double sWhole = std::floor(s / scale);
    double sFrac = s - sWhole * scale;
    if (secPlaces == 0)
      std::snprintf(buf, sizeof buf, "%.0fd%.0f'%.0f\"", d, m, sWhole);
    else
      std::snprintf(buf, sizeof buf, "%.0fd%.0f'%.0f.%0*.0f\"", d, m, sWhole, secPlaces, sFrac);
  }
  return buf;
}

std::string surveyor(double deg, int prec, const UnitStyle& st) {
  char ns, ew;
  double b;
  if (deg <= 90.0) {
    ns = 'N', ew = 'E', b = 90.0 - deg;
  } else if (deg <= 180.0) {
    ns = 'N', ew = 'W', b = deg - 90.0;
  } else if (deg <= 270.0) {
    ns = 'S', ew = 'W', b = 270.0 - deg;
  } else {
    ns = 'S', ew = 'E', b = deg - 270.0;
  }
  double n, full;
  std::string text = dms(b, prec, &n, &full, 90.0);
  if (n == 0.0) return std::string(1, ns);
  if (n >= full) return std::string(1, ew);
  const char* gap = st.unitmode == 1 ? "" : " ";
  return std::string(1, ns) + gap + text + gap + std::string(1, ew);
}

}  // namespace

std::u16string formatAngle(double radians, int mode, int prec, const UnitStyle& style) {
  if (mode < 0 || mode > kMaxAngularMode) return {};
  prec = std::clamp(prec, 0, kMaxPlaces);
  if (!std::isfinite(radians)) return widen(nonFinite(radians));
  double a = std::fmod(radians, 2.0 * kPi);
  if (a < 0) a += 2.0 * kPi;
  if (a >= 2.0 * kPi) a = 0.0;
  double deg = a * 180.0 / kPi;
  std::string out;
  switch (mode) {
    case 0:
    case 2: {
      double v = mode == 0 ? deg : a * 200.0 / kPi;
      double circle = mode == 0 ? 360.0 : 400.0;
      Fixed f = roundFixed(v, prec);
      if (f.value() >= circle) f = roundFixed(0.0, prec);
      out = joinDecimal(f, style, true);
      if (mode == 2) out += "g";
      break;
    }
    case 3: out = joinDecimal(roundFixed(a, prec), style, true) + "r"; break;
    case 1: {
      double n, full;
      out = dms(deg, prec, &n, &full, 360.0);
      break;
    }
    case 4: out = surveyor(deg, prec, style); break;
  }
  return widen(out);
}

// ---- reading

namespace {

class Scanner {
 public:
  explicit Scanner(std::u16string_view s) : s_(s) {}
  bool atEnd() const { return i_ >= s_.size(); }
  char16_t peek(size_t k = 0) const { return i_ + k < s_.size() ? s_[i_ + k] : 0; }
  bool eat(char16_t c) {
    if (peek() != c) return false;
    ++i_;
    return true;
  }
  bool eatAnyCase(char16_t upper) {
    char16_t c = peek();
    if (c != upper && c != upper + 32) return false;
    ++i_;
    return true;
  }
  void skipSpaces() {
    while (peek() == u' ' || peek() == u'\t') ++i_;
  }
  size_t pos() const { return i_; }
  void reset(size_t p) { i_ = p; }

  // Digits only: an unsigned integer.
  std::optional<double> integer() {
    size_t start = i_;
    double v = 0;
    while (peek() >= u'0' && peek() <= u'9') v = v * 10 + (s_[i_++] - u'0');
    if (i_ == start) return std::nullopt;
    return v;
  }

  // An unsigned decimal: "17", "17.5", "17.", ".5", with an exponent
  // ("1.75E+01") when allowed.
  std::optional<double> decimal(bool allowExponent) {
    size_t start = i_;
    std::string t;
    while (peek() >= u'0' && peek() <= u'9') t.push_back(static_cast<char>(s_[i_++]));
    bool digits = !t.empty();
    if (peek() == u'.') {
      t.push_back('.');
      ++i_;
      while (peek() >= u'0' && peek() <= u'9') {
        t.push_back(static_cast<char>(s_[i_++]));
        digits = true;
      }
    }
    if (!digits) {
      i_ = start;
      return std::nullopt;
    }
    if (allowExponent && (peek() == u'e' || peek() == u'E')) {
      size_t mark = i_;
      std::string e = "e";
      ++i_;
      if (peek() == u'+' || peek() == u'-') e.push_back(static_cast<char>(s_[i_++]));
      bool expDigits = false;
      while (peek() >= u'0' && peek() <= u'9') {
        e.push_back(static_cast<char>(s_[i_++]));
        expDigits = true;
      }
      if (expDigits)
        t += e;
      else
        i_ = mark;
    }
    return std::strtod(t.c_str(), nullptr);
  }

  // "17 1/2", "17-1/2" or "1/2"; nullopt (and nothing consumed) otherwise.
  std::optional<double> fraction() {
    size_t start = i_;
    auto simple = [&]() -> std::optional<double> {
      size_t at = i_;
      auto n = integer();
      if (n && eat(u'/')) {
        auto d = integer();
        if (d && *d != 0) return *n / *d;
      }
      i_ = at;
      return std::nullopt;
    };
    if (auto f = simple()) return f;
    auto w = integer();
    if (w && (peek() == u' ' || peek() == u'-')) {
      if (peek() == u' ')
        skipSpaces();
      else
        ++i_;
      if (auto f = simple()) return *w + *f;
    }
    i_ = start;
    return std::nullopt;
  }

  // A plain number as distances accept it: a fraction or a decimal.
  std::optional<double> number(bool allowExponent) {
    if (auto f = fraction()) return f;
    return decimal(allowExponent);
  }

 private:
  std::u16string_view s_;
  size_t i_ = 0;
};

std::u16string_view trim(std::u16string_view s) {
  auto blank = [](char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; };
  while (!s.empty() && blank(s.front())) s.remove_prefix(1);
  while (!s.empty() && blank(s.back())) s.remove_suffix(1);
  return s;
}

// Feet and inches: 1'-5.5", 1'5-1/2", 1', 5.5", 1'-5.
std::optional<double> feetInches(Scanner& sc) {
  size_t start = sc.pos();
  if (auto feet = sc.decimal(false); feet && sc.eat(u'\'')) {
    if (sc.atEnd()) return *feet * 12.0;
    sc.eat(u'-') || sc.eat(u' ');
    auto in = sc.number(false);
    if (!in) return std::nullopt;
    sc.eat(u'"');
    if (!sc.atEnd()) return std::nullopt;
    return *feet * 12.0 + *in;
  }
  sc.reset(start);
  auto in = sc.number(true);
  if (!in || !sc.eat(u'"') || !sc.atEnd()) return std::nullopt;
  return *in;
}

}  // namespace

std::optional<double> parseLinear(std::u16string_view text, int mode) {
  if (mode < 1 || mode > kMaxLinearMode) return std::nullopt;
  Scanner sc(trim(text));
  double sign = 1.0;
  if (sc.eat(u'-'))
    sign = -1.0;
  else
    sc.eat(u'+');
  size_t start = sc.pos();
  if (auto v = sc.number(true); v && sc.atEnd()) return sign * *v;
  if (mode == 3 || mode == 4) {
    sc.reset(start);
    if (auto v = feetInches(sc)) return sign * *v;
  }
  return std::nullopt;
}

namespace {

bool isDegreeSign(char16_t c) { return c == u'd' || c == u'D' || c == 0x00B0; }

// Degrees/minutes/seconds, in degrees: 45d, 45d30', 45d30'15.5", 45d30'15.
std::optional<double> readDms(Scanner& sc) {
  size_t start = sc.pos();
  auto d = sc.decimal(false);
  if (!d || !isDegreeSign(sc.peek())) {
    sc.reset(start);
    return std::nullopt;
  }
  sc.reset(sc.pos() + 1);
  double deg = *d;
  size_t mark = sc.pos();
  if (auto m = sc.decimal(false)) {
    if (!sc.eat(u'\'')) {
      sc.reset(mark);
      return deg;
    }
    deg += *m / 60.0;
    mark = sc.pos();
    if (auto s = sc.decimal(false)) {
      sc.eat(u'"');
      deg += *s / 3600.0;
    } else {
      sc.reset(mark);
    }
  }
  return deg;
}

// An angle in degrees after the bearing letter: DMS or a decimal.
std::optional<double> readBearingAngle(Scanner& sc) {
  if (auto d = readDms(sc)) return d;
  return sc.decimal(false);
}

std::optional<double> readSurveyor(Scanner& sc) {
  char16_t c = sc.peek();
  bool north = c == u'N' || c == u'n';
  bool south = c == u'S' || c == u's';
  if (!north && !south) {
    if (sc.eatAnyCase(u'E') && sc.atEnd()) return 0.0;
    if (sc.eatAnyCase(u'W') && sc.atEnd()) return 180.0;
    return std::nullopt;
  }
  sc.reset(sc.pos() + 1);
  if (sc.atEnd()) return north ? 90.0 : 270.0;
  sc.skipSpaces();
  auto b = readBearingAngle(sc);
  if (!b || *b > 90.0) return std::nullopt;
  sc.skipSpaces();
  bool east = sc.eatAnyCase(u'E');
  bool west = !east && sc.eatAnyCase(u'W');
  if ((!east && !west) || !sc.atEnd()) return std::nullopt;
  if (north) return east ? 90.0 - *b : 90.0 + *b;
  return west ? 270.0 - *b : 270.0 + *b;
}

}  // namespace

std::optional<double> parseAngle(std::u16string_view text, int mode) {
  if (mode < 0 || mode > kMaxAngularMode) return std::nullopt;
  Scanner sc(trim(text));
  std::optional<double> radians;
  if (auto deg = readSurveyor(sc)) {
    radians = *deg * kPi / 180.0;
  } else {
    sc.reset(0);
    double sign = 1.0;
    if (sc.eat(u'-'))
      sign = -1.0;
    else
      sc.eat(u'+');
    size_t start = sc.pos();
    if (auto deg = readDms(sc); deg && sc.atEnd()) {
      radians = sign * *deg * kPi / 180.0;
    } else {
      sc.reset(start);
      auto v = sc.decimal(true);
      if (!v) return std::nullopt;
      double unit = mode == 2 ? kPi / 200.0 : mode == 3 ? 1.0 : kPi / 180.0;
      if (sc.eatAnyCase(u'G'))
        unit = kPi / 200.0;
      else if (sc.eatAnyCase(u'R'))
        unit = 1.0;
      if (!sc.atEnd()) return std::nullopt;
      radians = sign * *v * unit;
    }
  }
  double a = std::fmod(*radians, 2.0 * kPi);
  if (a < 0) a += 2.0 * kPi;
  if (a >= 2.0 * kPi) a = 0.0;
  return a;
}

}  // namespace zepk::lisp
