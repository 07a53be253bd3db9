// System variables and coordinate systems: getvar, setvar, trans.
#include "host/dbapserv.h"
#include "host/editor/coords.h"
#include "host/editor/sysvars.h"
#include "host/lisp/drawing.h"
#include "host/lisp/printer.h"
#include "host/ol_errno.h"
#include "host/system/utf.h"

namespace zepk::lisp {

namespace {

Value fnGetvar(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  if (!a[0].isStr()) in.badType("stringp", a[0]);
  return in.sysvar ? in.sysvar(sys::toUtf8(a[0].as<String>()->s)) : Value();
}

// (setvar name value): the value, or the host's error when the variable
// is unknown, read-only, or refuses the value.
Value fnSetvar(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  const std::u16string& name = argStr(in, a[0]);
  editor::SysValue v;
  double p[3];
  int dim = 0;
  bool typed = true;
  switch (a[1].tag()) {
    case Tag::Int: v = editor::SysValue::integer(a[1].asInt()); break;
    case Tag::Real: v = editor::SysValue::real(a[1].asReal()); break;
    case Tag::Str: v = editor::SysValue::string(a[1].as<String>()->s); break;
    case Tag::Cons:
      if (toPoint(a[1], p, &dim)) {
        v = editor::SysValue::point(p[0], p[1], dim == 3 ? p[2] : 0.0, dim == 3);
        break;
      }
      typed = false;
      break;
    default: typed = false; break;
  }
  if (typed && editor::setSysVar(name, v) == editor::SetStatus::Ok) return a[1];
  in.fail(u"variable setting rejected: " + prin1String(a[0]) + u" " + prin1String(a[1]));
}

// A coordinate system argument of trans: 0, 1 or 2, an entity name, or a
// normal vector.
bool csArg(Interp& in, const Value& v, editor::CoordSys* out) {
  if (v.isInt()) {
    int c = v.asInt();
    if (c == 0) {
      *out = editor::CoordSys();
      return true;
    }
    if (c == 1 || c == 2) {
      *out = editor::currentUcs();
      return true;
    }
    return false;
  }
  if (v.tag() == Tag::Ename) {
    resbuf rb{};
    rb.restype = RTENAME;
    rb.resval.rlname[0] = v.as<Ename>()->name[0];
    rb.resval.rlname[1] = v.as<Ename>()->name[1];
    return editor::coordSysOf(&rb, out);
  }
  double p[3];
  int dim = 0;
  if (v.isCons() && toPoint(v, p, &dim) && dim == 3) return editor::normalCs(p, out);
  in.badType("coordinate system", v);
}

Value fnTrans(Interp& in, ArgSpan a) {
  checkArgc(in, a, 3, 4);
  double p[3];
  int dim = 0;
  argPoint(in, a[0], p, &dim);
  if (dim == 2) p[2] = 0;
  editor::CoordSys from, to;
  if (!csArg(in, a[1], &from) || !csArg(in, a[2], &to)) {
    hostErrno() = OL_ETRANS;
    return Value();
  }
  double out[3];
  editor::transPoint(p, from, to, a.size > 3 && a[3].truthy(), out);
  return pointValue(out, 3);
}

}  // namespace

void registerSysvarFunctions(Interp& in) {
  in.defSubr("getvar", fnGetvar);
  in.defSubr("setvar", fnSetvar);
  in.defSubr("trans", fnTrans);
}

}  // namespace zepk::lisp
