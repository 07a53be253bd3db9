// Compiled code calling LISP back by name: the queued catch wrapper, LISP
// timers, the window message hook and the status-bar progress meter.
#pragma once

#include <string>

#include "host/ads.h"

namespace zepk::frame {

// The progress meter of one document (kept in its CDocData).
struct ProgressMeter {
  const ACHAR* title = nullptr;  // not owned
  int32_t limit = 100;           // the value that means 100 percent
  int32_t current = 0;
  int32_t scale = 100;
  int32_t shown = 0;  // the last position sent to the status bar
};

// Queues the three expressions every document gets at load: the wrapper
// brightwren-Catch and its export to compiled code.
void queueCatchWrapper();
// The wrapper's definition, one line as it is queued.
const std::u16string& catchWrapperText();

// Makes a LISP function callable from compiled code (vl-acad-defun).
void defineCallback(const ACHAR* name);
// Calls the LISP function name with one argument of the given type:
// RTNONE for a null name, RTERROR when the list cannot be built, else the
// status of acedInvoke. *result gets its result list (the caller releases
// it).
int invokeCallback(const ACHAR* name, int type, const void* value, resbuf** result);

// Removes the window message hook when one is installed (unload uses it):
// prints the outcome and clears the flag on success. False when none was
// installed or the removal failed.
bool removeHook();
bool hookInstalled();

// LISP functions.
int lispSetLispTimer();
int lispKillLispTimer();
int lispRegisterHook();
int lispRemoveHook();
int lispProgressInit();
int lispProgress();
int lispProgressDone();
int lispModal2Modeless();

// The command InvokeLsp: queues the load of "c:/test.lsp".
void cmdInvokeLsp();

}  // namespace zepk::frame
