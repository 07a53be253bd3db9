// printf-style formatting with the rules of the Windows C runtime the toolkit
// was written against. acutPrintf, the string class's Format and every file
// that the toolkit writes with printf patterns go through here, so that the
// text is the same as the original program's.
//
// Conversions: d i u o x X c C s S e E f g G p %.
// Flags "- + space # 0", width and precision (digits or '*'; a negative '*'
// width means '-', a negative '*' precision means none).
// Length modifiers:
//   h (short; with c/s: narrow), l (32 bits: %ld reads an int; with c/s: wide),
//   w (wide character/string), ll and I64 (64 bits), I32 (32 bits),
//   I (pointer size: 64 bits). z, j and t are read as 64 bits too, an
//   extension for callers written on Linux. L and l on floats read a double.
// Strings and characters:
//   In a wide format %s and %c are wide (char16_t strings, a char16_t
//   promoted to int), %S %hs %hc %C are narrow (bytes in the system code
//   page, converted), %ls %ws %lc %wc wide.
//   In a narrow format %s and %c are narrow, %S %ls %ws %C %lc wide, converted
//   to the system code page ('?' for what it cannot hold).
//   A null string prints "(null)". The precision of a string counts source
//   characters: UTF-16 units for a wide string, multibyte characters (a
//   double-byte pair is one) for a narrow string; the width of a converted
//   string is counted the same way, as that runtime did, so a wide Chinese
//   string in a narrow format pads by characters, not bytes. The '0' flag
//   pads strings with zeros, as that runtime did.
// Integers: the '0' flag is ignored when a precision is given; "%#x" of 0 is
//   "0"; %p is 16 upper-case hex digits with no prefix.
// Floating point:
//   A value is first reduced to 17 significant decimal digits (rounded half
//   away from zero on its exact binary value); the digits asked for beyond
//   those 17 are zeros ("%.20f" of 0.1 is "0.10000000000000001000").
//   Rounding to the precision is then half away from zero: "%.2f" of 0.125 is
//   "0.13" and "%.0f" of 2.5 is "3", while 2.675, just below the tie in
//   binary, gives "2.67". A value whose 17 digits end in a tie rounds as a
//   tie: 2.355 (2.35499999999999998... in binary, 2.3550000000000000 in 17
//   digits) gives "%.2f" "2.36". The exponent has at least three digits
//   ("1.000000e+006", "%g" of 1e-6 is "1e-006").
//   Infinity and NaN print as that runtime did: the text "1#INF", "1#QNAN",
//   "1#SNAN" or "1#IND" (the NaN that 0.0/0.0 produces) stands for the
//   digits, so "%f" gives "1.#INF00", "-1.#INF00", "1.#QNAN0", "-1.#IND00",
//   "%g" gives "1.#INF", and rounding applies to that text too ("%.2f" of
//   infinity is "1.#J").
// Other:
//   %% prints '%'. %n consumes its pointer argument and writes nothing. An
//   unknown conversion is printed as written, with its flags and width, and
//   consumes no argument (a '*' in it still consumes its int). Widths are
//   capped at 1048576 and numeric precisions at 512, so a garbage '*'
//   argument cannot exhaust memory. A null format gives an empty string.
//
// The varargs must have the types the format names, as with any printf: an
// int for %d %c %ld, long long for %lld %I64d, double for %f, pointers for
// strings and %p.
#pragma once

#include <cstdarg>
#include <string>

namespace zepk::sys {

std::u16string vformatW(const char16_t* fmt, va_list ap);
std::u16string formatW(const char16_t* fmt, ...);

std::string vformatA(const char* fmt, va_list ap);
std::string formatA(const char* fmt, ...);

// One floating-point conversion with the rules above: conv is one of
// 'f' 'e' 'E' 'g' 'G' (anything else is taken as 'f'); a negative precision
// means the default 6; alt is the '#' flag. The result carries a '-' for
// negative values and no padding.
std::string formatDouble(double v, char conv, int precision, bool alt = false);

}  // namespace zepk::sys
