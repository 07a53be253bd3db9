// LISP functions of the command processor (command, command-s, vl-cmdf,
// getpoint and the other input functions) and the hooks that let commands
// evaluate LISP.
#pragma once

#include "host/lisp/interp.h"

namespace zepk::editor {

void installCommandFunctions(lisp::Interp& in);

}  // namespace zepk::editor
