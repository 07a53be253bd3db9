// Distances and angles as text, in the host's unit formats. rtos, distof,
// angtos and angtof are thin wrappers over these; the host's conversion
// services (acdbRToS, acdbAngToS and the rest) and the command line's
// distance and angle input use them too.
//
// Linear modes (LUNITS):
//   1 scientific     "1.7500E+01"
//   2 decimal        "17.5000"
//   3 engineering    "1'-5.5000\""   feet and decimal inches
//   4 architectural  "1'-5 1/2\""    feet and fractional inches
//   5 fractional     "17 1/2"
// For modes 1-3 the precision is the number of decimal places; for modes 4
// and 5 the fraction's denominator is 2 to the precision (0 to 8).
//
// Angular modes (AUNITS):
//   0 degrees        "45.0000"
//   1 deg/min/sec    "45d30'15\""
//   2 grads          "50.0000g"
//   3 radians        "0.7854r"
//   4 surveyor's     "N 45d0' E"
// For modes 1 and 4 the precision counts the digits after the degrees:
// 0-1 whole degrees, 2-3 minutes, 4 seconds, and each one above 4 a decimal
// place of the seconds.
//
// Rounding is half away from zero on the number's decimal digits (the
// seventeen significant digits a double carries), never to even.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zepk::lisp {

// The system variables that change how numbers are written.
struct UnitStyle {
  // DIMZIN: bits 0-1 zero feet and inches (0 suppresses zero feet and
  // precisely zero inches, 1 includes both, 2 includes zero feet only,
  // 3 includes zero inches only); 4 drops the leading zero of a decimal
  // ("0.5" -> ".5"); 8 drops trailing zeros ("3.5000" -> "3.5").
  int dimzin = 0;
  // UNITMODE 1 writes what one types: "1'5-1/2\"", "17-1/2", "N45d0'E".
  int unitmode = 0;
};

inline constexpr int kMaxLinearMode = 5;
inline constexpr int kMaxAngularMode = 4;

// An empty string when mode is out of range. The precision is taken
// between 0 and 20.
std::u16string formatLinear(double value, int mode, int prec, const UnitStyle& style = {});
std::u16string formatAngle(double radians, int mode, int prec, const UnitStyle& style = {});

// Reads a distance written in mode. Every mode reads decimal, scientific
// and fractional numbers ("17.5", "1.75E+01", "17 1/2", "17-1/2", "1/2");
// modes 3 and 4 also read feet and inches in either of their forms
// ("1'-5.5\"", "1'5-1/2\"", "1'", "5.5\""), and a bare number there is
// inches. Blanks around the text are ignored. nullopt when the text is not
// a distance or the mode is out of range.
std::optional<double> parseLinear(std::u16string_view text, int mode);

// Reads an angle and returns it in radians, in [0, 2pi). Every mode reads
// degrees/minutes/seconds ("45d30'15\""), grads and radians with their
// suffix ("50g", "0.7854r") and surveyor's bearings ("N 45d0' E", "N45dE",
// "E"); a bare number is in the mode's own unit (degrees for 0, 1 and 4).
std::optional<double> parseAngle(std::u16string_view text, int mode);

}  // namespace zepk::lisp
