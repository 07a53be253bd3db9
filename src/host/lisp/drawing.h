// The LISP functions that read and change the working drawing: entity data
// lists, selection sets, symbol tables and dictionaries, system variables
// and coordinate systems. They are thin: each reads its arguments, calls
// the host function (host/entlist.h, host/selset.h, the ads.h table and
// dictionary functions, host/editor/sysvars.h) and builds the result.
#pragma once

#include <vector>

#include "host/db/memfiler.h"
#include "host/lisp/interp.h"

namespace zepk::lisp {

// Defines the functions, frees a selection set when LISP drops its last
// reference, and gives the interpreter the system variables (rtos and the
// like take their defaults from them).
void installDrawing(Interp& in);

// An entity data list as LISP shows it: (code . value) pairs, points as
// (code x y [z]), names as entity names, extended data grouped by
// application after -3.
Value groupsToList(const std::vector<db::DxfItem>& items);
// A LISP data list as groups; false with *bad the member that is no group
// of its code's kind.
bool listToGroups(const Value& list, std::vector<db::DxfItem>* out, Value* bad);

// Shared by the families.
void registerEntityFunctions(Interp& in);
void registerPicksetFunctions(Interp& in);
void registerTableFunctions(Interp& in);
void registerSysvarFunctions(Interp& in);
void registerCurveFunctions(Interp& in);
// A chain a host function gave, as a LISP list (nil for none), released.
Value takeChainAsList(resbuf* rb);
// The entity name argument (lentityp) as a host name.
void argEname(Interp& in, const Value& v, int64_t out[2]);
Value enameValue(const int64_t name[2]);

}  // namespace zepk::lisp
