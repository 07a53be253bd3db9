// The bridge between the interpreter and compiled code: the ads.h functions
// (result buffers, acedDefun and its kin, arguments and results of a call,
// acedInvoke), the conversions between LISP values and result-buffer
// chains, and the module functions arxload, arxunload and arx.
//
// Conversions, LISP to chain (arguments, acedGetSym, acedInvoke's result):
//   nil RTNIL, T RTT, the null symbol (what princ returns) RTVOID, another
//   symbol RTSTR with its name; an integer RTSHORT in -32768..32767, else
//   RTLONG; a real RTREAL; a string RTSTR; entity and selection-set names
//   RTENAME and RTPICKS.
//   A list of exactly two or three numbers is one RTPOINT or RT3DPOINT node,
//   except the coded form: three numbers of which the first is an integer
//   10-19, 110-112, 210, 220 or 230 go as one node of that type whose point
//   holds the other two (the third coordinate 0.0).
//   A dotted pair is RTLB car RTDOTE cdr RTLE; an improper list (a b . c)
//   is RTLB a b RTDOTE c RTLE; every other list RTLB members RTLE.
//   Functions, files and caught errors have no node form.
// Chain to LISP (results, acedInvoke's arguments, acedPutSym):
//   RTSHORT, RTLONG integers; RTREAL, RTANG, RTORINT reals; RTPOINT and
//   RT3DPOINT lists of two and three reals; RTSTR strings (a null string
//   is ""); RTENAME, RTPICKS names; RTNIL and RTNONE nil; RTT T; RTVOID the
//   null symbol; RTLB ... [RTDOTE x] RTLE a list.
//   A node whose type is a DXF group code becomes (code . value) with the
//   value read by the group code's type (rbKind): a string, a real, an
//   integer, an entity name, a binary chunk as a string of upper-case hex
//   digits, and a point as (code x y z): all three coordinates, as entget
//   gives them. So the coded form '(10 1.0 2.0) handed back unchanged comes
//   back as (10 1.0 2.0 0.0). A -3 node gathers the extended data that
//   follows it in its list as entget does: (-3 ("APP" (1000 . "x") ...) ...),
//   each 1001 node starting an application's group.
//   A chain that does not parse (RTLE without RTLB, an RTDOTE not followed
//   by one value and RTLE, an unknown type code) has no value.
#pragma once

#include <string>
#include <vector>

#include "host/ads.h"
#include "host/lisp/interp.h"

namespace zepk::rx {
struct Module;
}

namespace zepk::lisp {

// Hooks the bridge into the interpreter (Interp::callExrx) and defines
// arxload, arxunload and arx. Call it once after creating the interpreter,
// before loading modules.
void installBridge(Interp& in);

// What the value of a node of a type holds.
enum class RbKind { None, Real, Point, Short, Long, Int64, String, Name, Binary, Unknown };
RbKind rbKind(int restype);

// One value as a new chain (the caller releases it with acutRelRb); null
// when the value, or a member of it, has no node form. *bad then names it.
resbuf* valueToRb(const Value& v, Value* bad = nullptr);
// Several values, one after the other, as one chain (the form of a call's
// arguments). Null for none; *ok is false when one has no node form.
resbuf* valuesToRb(ArgSpan values, bool* ok, Value* bad = nullptr);

// The chain's first value (an RTLB list is one value), as acedRetVal and
// acedPutSym take it.
bool rbToValue(const resbuf* rb, Value* out);
// The chain as acedRetList takes it: one list of its members, or, when the
// chain is one RTLB ... RTLE list, that list.
bool rbToList(const resbuf* rb, Value* out);
// Each top-level value of the chain, as acedInvoke's arguments.
bool rbToValues(const resbuf* rb, std::vector<Value>* out);

// Between the bridge and the module registry.
//
// The module whose code runs: what acedDefun and acedRegFunc bind belongs
// to it. Null for the host itself (and for code outside any module).
rx::Module* currentModule();
class ModuleScope {
 public:
  explicit ModuleScope(rx::Module* m);
  ~ModuleScope();
  ModuleScope(const ModuleScope&) = delete;
  ModuleScope& operator=(const ModuleScope&) = delete;

 private:
  rx::Module* saved_;
};
// Undefines every LISP function the module still has defined and forgets
// its acedRegFunc bindings.
void undefineModuleFunctions(rx::Module* m);
void registerModuleFunctions(Interp& in);

}  // namespace zepk::lisp
