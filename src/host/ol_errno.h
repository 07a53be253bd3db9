// The codes the host leaves in the system variable ERRNO when one of its
// functions fails. A success leaves ERRNO as it was: programs set it to 0
// before the call they want to check.
#pragma once

enum : int {
  OL_GOOD = 0,
  OL_ESNVALID = 1,     // invalid symbol table name
  OL_ENAMEVALID = 2,   // invalid entity or selection set name
  OL_ESSVALID = 4,     // invalid selection set
  OL_ENTSELPICK = 7,   // entsel: the pick found no entity
  OL_EEOEF = 8,        // end of the entity file
  OL_EEMPDB = 10,      // entlast: the drawing is empty
  OL_EHANDLE = 13,     // invalid handle
  OL_ETRANS = 15,      // invalid trans request
  OL_ETBLNAME = 18,    // invalid table name
  OL_ERDONLY = 20,     // setting a read-only variable
  OL_ERANGE = 22,      // value out of range
  OL_EMMTYPE = 24,     // changing an entity's type
  OL_EMMLAY = 25,      // bad layer name
  OL_EMMLT = 26,       // bad linetype name
  OL_EMMSTYLE = 28,    // bad text style name
  OL_EMODDEL = 31,     // modifying an erased entity
  OL_EMMLL = 35,       // entity on a locked layer
  OL_EMKTYPE = 36,     // bad entity type
  OL_EMKBNAME = 39,    // invalid block name
  OL_EMKNOBNM = 43,    // missing block name
  OL_EMKMANDF = 47,    // mandatory field missing
  OL_ENTSELNULL = 52,  // entsel: Enter instead of a pick
};

namespace zepk {
// ERRNO itself.
int& hostErrno();
}  // namespace zepk
