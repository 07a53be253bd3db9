// Surveyors' numbers: angles as radians, decimal degrees and the ddd.mmss
// form, two roundings, number bases, and conversions between geodetic,
// space rectangular and Gauss-Krueger plane coordinates on four
// ellipsoids. Plain arithmetic that other families call directly.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zepk::services {

inline constexpr double kPi = 3.141592653589793;

// Multiplication first, then the division: the order is part of the result.
inline double radToDeg(double r) { return r * 180.0 / kPi; }
inline double degToRad(double d) { return d * kPi / 180.0; }

// Degrees to ddd.mmss. Seconds that come within 1e-7 of 60 carry into the
// minutes (and 60 minutes into the degrees), so 29.9999999999 never shows
// as 60 seconds; a result below 1e-15 in size is 0.0 (never -0.0).
double degToDms(double deg);
// ddd.mmss to degrees, by plain truncation of the digits: 30.3 may read as
// 29 minutes and almost 60 seconds, which is the same angle; no range check
// (30.9999 is 99 minutes, 99 seconds).
double dmsToDeg(double dms);
inline double dmsToRad(double dms) { return degToRad(dmsToDeg(dms)); }
inline double radToDms(double r) { return degToDms(radToDeg(r)); }

// Rounding to n decimals (n < 0: to tens, hundreds...) with a fixed offset
// of 0.5001 on the fraction, so that fractions from 0.4999 up round away
// from zero; the power of ten is taken in single precision.
double roundOffset(double x, int n);
// Rounding half to even, for n >= 0 (nothing otherwise).
std::optional<double> roundHalfEven(double x, int n);

// A 32-bit value in base 2, 8, 10 or 16 (nothing for other bases). Base 2
// has no leading zeros (0 gives ""), 8 and 16 print the 32-bit pattern of
// a negative value, 16 in lower case.
std::optional<std::string> toBase(int base, int32_t value);
// Digits of the base read from the left, other characters skipped, the
// value kept in 32 bits (it wraps). Nothing for other bases.
std::optional<int32_t> fromBase(int base, std::string_view text);

struct Ellipsoid {
  double a;             // semi-major axis, metres
  double inverseFlat;   // 1 / flattening
  double e2() const { return (2 * inverseFlat - 1) / inverseFlat / inverseFlat; }
};
// Ellipsoids 1 to 4 (Krassovsky 1940, IAG 1975, WGS 84, CGCS2000);
// null for any other number.
const Ellipsoid* ellipsoidNumber(int n);

// Geodetic latitude and longitude (radians) and height to space
// rectangular x, y, z, and back (the inverse iterates to 1e-12 rad).
void geodeticToCartesian(const Ellipsoid& e, double lat, double lon, double h, double xyz[3]);
void cartesianToGeodetic(const Ellipsoid& e, const double xyz[3], double* lat, double* lon, double* h);

// Gauss-Krueger (transverse Mercator, scale 1 on the central meridian):
// latitude and longitude in radians to northing x and easting y measured
// from the central meridian (no false easting), and back. Krueger's series
// to the sixth power of the third flattening: far below a millimetre
// within several degrees of the meridian.
void gaussKruegerForward(const Ellipsoid& e, double centralMeridian, double lat, double lon, double* x, double* y);
void gaussKruegerInverse(const Ellipsoid& e, double centralMeridian, double x, double y, double* lat, double* lon);

}  // namespace zepk::services
