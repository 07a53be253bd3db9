// Strings.
#include "host/lisp/interp.h"

namespace zepk::lisp {

void registerStrings(Interp& in) {}

}  // namespace zepk::lisp
