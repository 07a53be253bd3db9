// The small input family, the example command C:MYINPUT, the process-wide
// tolerance and the version: LISP functions that need nothing but the
// bridge and the editor.
#pragma once

namespace zepk::frame {

int lispGetPoint();
int lispEntSel();
int lispGetInt();
int lispGetReal();
int lispGetString();
int lispMyInput();
int lispSetPrec();
int lispGetPrec();
int lispGetVersion();

}  // namespace zepk::frame
