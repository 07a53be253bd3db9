// Output and files.
#include "host/lisp/interp.h"
#include "host/lisp/printer.h"

namespace zepk::lisp {

namespace {
Value fnPrinc(Interp& in, ArgSpan a) {
  if (a.size == 0) return Value();
  in.out().write(princString(a[0]));
  return a[0];
}
Value fnPrin1(Interp& in, ArgSpan a) {
  if (a.size == 0) return Value();
  in.out().write(prin1String(a[0]));
  return a[0];
}
}  // namespace

void registerFiles(Interp& in) {
  in.defSubr("princ", fnPrinc);
  in.defSubr("prin1", fnPrin1);
}

}  // namespace zepk::lisp
