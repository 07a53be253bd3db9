// The rows of the LISP function table.
#include "frame/functable.h"

namespace zepk::frame {

namespace {

// Filled family by family; see functable.h.
const FunctionRow kRows[kFunctionCount] = {};

}  // namespace

const FunctionRow* functionRows() { return kRows; }

}  // namespace zepk::frame
