// Surveyors' numbers: angle forms, roundings, bases and geodesy.
#include "services/numbers.h"

#include <cmath>
#include <cstdio>

namespace zepk::services {

double degToDms(double x) {
  double a = std::fabs(x);
  double d = std::trunc(a);
  double mm = (a - d) * 60.0;
  double m = std::trunc(mm);
  double s = (mm - m) * 60.0;
  if (std::fabs(s - 60.0) < 1e-7) {
    s = 0.0;
    m += 1;
    if (m == 60) {
      m = 0;
      d += 1;
    }
  }
  double r = (m * 0.01 + d + s * 0.0001) * (x > 0 ? 1.0 : -1.0);
  return std::fabs(r) < 1e-15 ? 0.0 : r;
}

double dmsToDeg(double x) {
  double a = std::fabs(x);
  double d = std::trunc(a);
  double f = a - d;
  double m = std::trunc(f * 100.0);
  double r = (f * 10000.0 - m * 100.0) / 3600.0 + (m / 60.0 + d);
  if (x < 0) r = -r;
  return std::fabs(r) < 1e-15 ? 0.0 : r;
}

double roundOffset(double x, int n) {
  double i;
  double f = std::modf(x, &i);
  float scale = 1.0f, base = 10.0f;
  for (unsigned e = static_cast<unsigned>(n < 0 ? -static_cast<long>(n) : n); e; e >>= 1) {
    if (e & 1) scale *= base;
    base *= base;
  }
  if (n < 0) scale = 1.0f / scale;
  const double wide = scale;
  const double offset = static_cast<float>(0.5001);
  double t = x >= 0 ? f * wide + offset : f * wide - offset;
  return i + std::trunc(t) / wide;
}

std::optional<double> roundHalfEven(double x, int n) {
  if (n < 0) return std::nullopt;
  double s = x > 0 ? 1.0 : -1.0;
  double p = std::pow(10.0, n);
  double i;
  double f = std::modf(std::fabs(x) * p, &i);
  if (f > 0.5) return s * (i + 1) / p;
  if (f == 0.5) return std::fmod(i, 2.0) == 0 ? s * i / p : s * (i + 1) / p;
  return s * i / p;
}

std::optional<std::string> toBase(int base, int32_t value) {
  char buf[40];
  uint32_t bits = static_cast<uint32_t>(value);
  switch (base) {
    case 2: {
      std::string s;
      for (int b = 31; b >= 0; --b) s += (bits >> b) & 1 ? '1' : '0';
      size_t first = s.find('1');
      return first == std::string::npos ? std::string() : s.substr(first);
    }
    case 8: std::snprintf(buf, sizeof buf, "%o", bits); return std::string(buf);
    case 10: std::snprintf(buf, sizeof buf, "%d", value); return std::string(buf);
    case 16: std::snprintf(buf, sizeof buf, "%x", bits); return std::string(buf);
    default: return std::nullopt;
  }
}

std::optional<int32_t> fromBase(int base, std::string_view text) {
  if (base != 2 && base != 8 && base != 10 && base != 16) return std::nullopt;
  uint32_t v = 0;
  for (char c : text) {
    int d = -1;
    if (c >= '0' && c <= '9') d = c - '0';
    else if (c >= 'a' && c <= 'f') d = c - 'a' + 10;
    else if (c >= 'A' && c <= 'F') d = c - 'A' + 10;
    if (d < 0 || d >= base) continue;
    v = v * static_cast<uint32_t>(base) + static_cast<uint32_t>(d);
  }
  return static_cast<int32_t>(v);
}

const Ellipsoid* ellipsoidNumber(int n) {
  static const Ellipsoid kEllipsoids[4] = {
      {6378245.0, 298.3}, {6378140.0, 298.257}, {6378137.0, 298.257223563}, {6378137.0, 298.257222101}};
  return n >= 1 && n <= 4 ? &kEllipsoids[n - 1] : nullptr;
}

void geodeticToCartesian(const Ellipsoid& e, double lat, double lon, double h, double xyz[3]) {
  double e2 = e.e2(), s = std::sin(lat);
  double n = e.a / std::sqrt(1 - e2 * s * s);
  xyz[0] = (n + h) * std::cos(lat) * std::cos(lon);
  xyz[1] = (n + h) * std::cos(lat) * std::sin(lon);
  xyz[2] = (n * (1 - e2) + h) * s;
}

void cartesianToGeodetic(const Ellipsoid& e, const double xyz[3], double* lat, double* lon, double* h) {
  double e2 = e.e2();
  double p = std::hypot(xyz[0], xyz[1]);
  *lon = std::atan2(xyz[1], xyz[0]);
  // Latitude by fixed-point iteration on tan B = (z + N e2 sin B) / p,
  // written with atan2 so that the poles need no special case.
  double b = std::atan2(xyz[2], p * (1 - e2));
  double n = e.a;
  for (int i = 0; i < 50; ++i) {
    double s = std::sin(b);
    n = e.a / std::sqrt(1 - e2 * s * s);
    double next = std::atan2(xyz[2] + n * e2 * s, p);
    bool done = std::fabs(next - b) < 1e-12;
    b = next;
    if (done) break;
  }
  double s = std::sin(b), c = std::cos(b);
  n = e.a / std::sqrt(1 - e2 * s * s);
  // Height from whichever of the two forms is better conditioned.
  *h = std::fabs(c) > 0.1 ? p / c - n : xyz[2] / s - n * (1 - e2);
  *lat = b;
}

namespace {

// The series coefficients of the third flattening n.
struct Krueger {
  double scaleA;                 // the rectifying radius
  double alpha[6], beta[6];
  double e;                      // eccentricity
  explicit Krueger(const Ellipsoid& el) {
    double f = 1 / el.inverseFlat;
    double n = f / (2 - f), n2 = n * n, n3 = n2 * n, n4 = n3 * n, n5 = n4 * n, n6 = n5 * n;
    scaleA = el.a / (1 + n) * (1 + n2 / 4 + n4 / 64 + n6 / 256);
    alpha[0] = n / 2 - 2 * n2 / 3 + 5 * n3 / 16 + 41 * n4 / 180 - 127 * n5 / 288 + 7891 * n6 / 37800;
    alpha[1] = 13 * n2 / 48 - 3 * n3 / 5 + 557 * n4 / 1440 + 281 * n5 / 630 - 1983433 * n6 / 1935360;
    alpha[2] = 61 * n3 / 240 - 103 * n4 / 140 + 15061 * n5 / 26880 + 167603 * n6 / 181440;
    alpha[3] = 49561 * n4 / 161280 - 179 * n5 / 168 + 6601661 * n6 / 7257600;
    alpha[4] = 34729 * n5 / 80640 - 3418889 * n6 / 1995840;
    alpha[5] = 212378941 * n6 / 319334400;
    beta[0] = n / 2 - 2 * n2 / 3 + 37 * n3 / 96 - n4 / 360 - 81 * n5 / 512 + 96199 * n6 / 604800;
    beta[1] = n2 / 48 + n3 / 15 - 437 * n4 / 1440 + 46 * n5 / 105 - 1118711 * n6 / 3870720;
    beta[2] = 17 * n3 / 480 - 37 * n4 / 840 - 209 * n5 / 4480 + 5569 * n6 / 90720;
    beta[3] = 4397 * n4 / 161280 - 11 * n5 / 504 - 830251 * n6 / 7257600;
    beta[4] = 4583 * n5 / 161280 - 108847 * n6 / 3991680;
    beta[5] = 20648693 * n6 / 638668800;
    e = std::sqrt(el.e2());
  }
};

}  // namespace

void gaussKruegerForward(const Ellipsoid& el, double centralMeridian, double lat, double lon, double* x, double* y) {
  Krueger k(el);
  double dl = lon - centralMeridian;
  double s = std::sin(lat);
  // The conformal latitude, as its tangent.
  double t = std::sinh(std::atanh(s) - k.e * std::atanh(k.e * s));
  double xi1 = std::atan2(t, std::cos(dl));
  double eta1 = std::atanh(std::sin(dl) / std::sqrt(1 + t * t));
  double xi = xi1, eta = eta1;
  for (int j = 1; j <= 6; ++j) {
    xi += k.alpha[j - 1] * std::sin(2 * j * xi1) * std::cosh(2 * j * eta1);
    eta += k.alpha[j - 1] * std::cos(2 * j * xi1) * std::sinh(2 * j * eta1);
  }
  *x = k.scaleA * xi;
  *y = k.scaleA * eta;
}

void gaussKruegerInverse(const Ellipsoid& el, double centralMeridian, double x, double y, double* lat, double* lon) {
  Krueger k(el);
  double xi = x / k.scaleA, eta = y / k.scaleA;
  double xi1 = xi, eta1 = eta;
  for (int j = 1; j <= 6; ++j) {
    xi1 -= k.beta[j - 1] * std::sin(2 * j * xi) * std::cosh(2 * j * eta);
    eta1 -= k.beta[j - 1] * std::cos(2 * j * xi) * std::sinh(2 * j * eta);
  }
  double sh = std::sinh(eta1), c = std::cos(xi1);
  double tauc = std::sin(xi1) / std::hypot(sh, c);  // tangent of the conformal latitude
  *lon = centralMeridian + std::atan2(sh, c);
  // The geodetic latitude's tangent from the conformal one, by Newton.
  double e2 = k.e * k.e, tau = tauc;
  for (int i = 0; i < 10; ++i) {
    double sig = std::sinh(k.e * std::atanh(k.e * tau / std::sqrt(1 + tau * tau)));
    double taui = tau * std::sqrt(1 + sig * sig) - sig * std::sqrt(1 + tau * tau);
    double d = (tauc - taui) / std::sqrt(1 + taui * taui) * (1 + (1 - e2) * tau * tau) /
               ((1 - e2) * std::sqrt(1 + tau * tau));
    tau += d;
    if (std::fabs(d) < 1e-14) break;
  }
  *lat = std::atan(tau);
}

}  // namespace zepk::services
