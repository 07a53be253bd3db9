// The table of the toolkit's LISP functions. A row's index is its function
// code; every name is always present, in order. A row whose family is not
// built yet has no function and is neither defined in LISP nor callable.
#pragma once

#include <cstddef>

namespace zepk::frame {

// A LISP function of the toolkit: reads its arguments with acedGetArgs,
// sets its result with an acedRetXxx call and returns RSRSLT, or prints its
// failure and returns RTERROR.
using LispFunction = int (*)();

struct FunctionRow {
  const char16_t* name;  // the LISP name, exactly as users call it
  LispFunction fn;       // null while the row's family is not built
  const char* family;    // the family that owns the row, for the reference
  const char* shape;     // arguments and result in one line, for the reference
};

inline constexpr std::size_t kFunctionCount = 408;

// The rows, kFunctionCount of them, in table order.
const FunctionRow* functionRows();

}  // namespace zepk::frame
