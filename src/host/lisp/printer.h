// Printing values as the host prints them: prin1 form (strings quoted, with
// escapes) and princ form (strings as they are).
#pragma once

#include <string>

#include "host/lisp/value.h"

namespace zepk::lisp {

std::u16string prin1String(const Value& v);
std::u16string princString(const Value& v);
// A real as the host prints it: six significant digits, always with a
// decimal point, three exponent digits ("1.0", "0.333333", "1.0e-006").
std::string formatReal(double d);

}  // namespace zepk::lisp
