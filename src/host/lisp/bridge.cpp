#include "host/lisp/bridge.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <map>
#include <unordered_map>

#include "host/dxf/group.h"
#include "host/lisp/printer.h"
#include "host/rxmodule.h"
#include "host/system/utf.h"
#include "host/system/winformat.h"

namespace zepk::lisp {

// ---------------------------------------------------------------- node types

// The value each type code carries. Group codes take their value type
// from the one table of DXF group codes (dxf::groupType), as result buffers
// hold them: points in one node for 10-19, 110-112, 210 and 1010-1019 (and
// 220 and 230, which the coded point form uses); handles (5, 105, 1005) and
// the handles kept as they are (320-329) as strings; references to objects
// as names; booleans as 16-bit integers.
RbKind rbKind(int t) {
  switch (t) {
    case RTNONE:
    case RTLB:
    case RTLE:
    case RTDOTE:
    case RTNIL:
    case RTT:
    case RTVOID: return RbKind::None;
    case RTREAL:
    case RTANG:
    case RTORINT: return RbKind::Real;
    case RTPOINT:
    case RT3DPOINT: return RbKind::Point;
    case RTSHORT: return RbKind::Short;
    case RTLONG: return RbKind::Long;
    case RTSTR:
    case RTDXF0: return RbKind::String;
    case RTENAME:
    case RTPICKS: return RbKind::Name;
    default: break;
  }
  if (t >= 5000 || t < -5) return RbKind::Unknown;
  if (t == -1 || t == -2 || t == -5) return RbKind::Name;
  if (t == -3) return RbKind::None;
  if (t == -4) return RbKind::String;
  if ((t >= 10 && t <= 19) || (t >= 110 && t <= 112) || t == 210 || t == 220 || t == 230 || (t >= 1010 && t <= 1019))
    return RbKind::Point;
  using dxf::GroupType;
  switch (dxf::groupType(t)) {
    case GroupType::String: return RbKind::String;
    case GroupType::Handle:
      return (t == 5 || t == 105 || t == 1005 || (t >= 320 && t <= 329)) ? RbKind::String : RbKind::Name;
    case GroupType::Binary: return RbKind::Binary;
    case GroupType::Real: return RbKind::Real;
    case GroupType::Int16:
    case GroupType::Bool: return RbKind::Short;
    case GroupType::Int32: return RbKind::Long;
    case GroupType::Int64: return RbKind::Int64;
    case GroupType::Unknown: break;
  }
  return RbKind::Unknown;
}

namespace {

bool isCodedPointType(int32_t c) {
  return (c >= 10 && c <= 19) || (c >= 110 && c <= 112) || c == 210 || c == 220 || c == 230;
}

ACHAR* dupString(std::u16string_view s) {
  auto* p = static_cast<ACHAR*>(std::malloc((s.size() + 1) * sizeof(ACHAR)));
  if (!p) return nullptr;
  if (!s.empty()) std::memcpy(p, s.data(), s.size() * sizeof(ACHAR));
  p[s.size()] = 0;
  return p;
}

ACHAR* dupString(const ACHAR* s) {
  if (!s) return nullptr;
  return dupString(std::u16string_view(s));
}

// A chain under construction; released unless taken.
struct Chain {
  resbuf* head = nullptr;
  resbuf* last = nullptr;
  Chain() = default;
  Chain(const Chain&) = delete;
  Chain& operator=(const Chain&) = delete;
  ~Chain() {
    if (head) acutRelRb(head);
  }
  resbuf* add(int type) {
    resbuf* rb = acutNewRb(type);
    if (!rb) throw std::bad_alloc();
    if (last) {
      last->rbnext = rb;
    } else {
      head = rb;
    }
    last = rb;
    return rb;
  }
  resbuf* take() {
    resbuf* h = head;
    head = last = nullptr;
    return h;
  }
};

// Where output goes when no interpreter runs (a module's messages at
// start-up, before the command line exists).
void print(std::u16string_view s) {
  if (Interp* in = Interp::current()) {
    in->out().write(s);
    return;
  }
  std::string u = sys::toUtf8(s);
  std::fwrite(u.data(), 1, u.size(), stdout);
  std::fflush(stdout);
}

// ---------------------------------------------------------------- calls

// A compiled function defined by acedDefun. The binding keeps the EXRXSUBR
// alive while it is defined; a copy of the value held elsewhere in LISP
// after acedUndef no longer finds its binding and is not called.
struct Binding {
  Value fn;
  Symbol* sym;
  rx::Module* owner;
  int code;
};

std::unordered_map<const Obj*, Binding>& bindings() {
  static auto* b = new std::unordered_map<const Obj*, Binding>;
  return *b;
}

std::map<std::pair<rx::Module*, int>, AcedFunction>& regFuncs() {
  static auto* r = new std::map<std::pair<rx::Module*, int>, AcedFunction>;
  return *r;
}

// One running call of a compiled function. Calls nest when compiled code
// calls LISP (acedInvoke) that calls compiled code again; acedGetArgs,
// acedGetFunCode and acedRet* refer to the innermost.
struct CallState {
  int code;
  rx::Module* module;
  resbuf* args;
  ArgSpan lispArgs;
  Value result;
  bool hasResult = false;
};

std::vector<CallState*> gCalls;
rx::Module* gCurrentModule = nullptr;

struct CallScope {
  explicit CallScope(CallState* cs) { gCalls.push_back(cs); }
  ~CallScope() { gCalls.pop_back(); }
};

// The argument chain of a call. The function may cut it (a sub-list
// walker ends the members of a list in place) or move values between its
// nodes, so every node and every string it was built with is recorded and
// released from the record, not by walking the chain.
struct ArgChain {
  resbuf* head = nullptr;
  std::vector<resbuf*> nodes;
  std::vector<void*> blocks;
  void adopt(resbuf* h) {
    head = h;
    for (resbuf* p = h; p; p = p->rbnext) {
      nodes.push_back(p);
      RbKind k = rbKind(p->restype);
      if (k == RbKind::String && p->resval.rstring) blocks.push_back(p->resval.rstring);
      if (k == RbKind::Binary && p->resval.rbinary.buf) blocks.push_back(p->resval.rbinary.buf);
    }
  }
  ~ArgChain() {
    for (void* b : blocks) std::free(b);
    for (resbuf* n : nodes) std::free(n);
  }
};

// ---------------------------------------------------------------- LISP to chain

bool emitAtom(Chain& c, const Value& v, Value* bad) {
  switch (v.tag()) {
    case Tag::Nil: c.add(RTNIL); return true;
    case Tag::Int: {
      int32_t i = v.asInt();
      if (i >= -32768 && i <= 32767) {
        c.add(RTSHORT)->resval.rint = static_cast<short>(i);
      } else {
        c.add(RTLONG)->resval.rlong = i;
      }
      return true;
    }
    case Tag::Real: c.add(RTREAL)->resval.rreal = v.asReal(); return true;
    case Tag::Sym: {
      Symbol* s = v.asSym();
      if (s == symT) {
        c.add(RTT);
      } else if (s == symVoid) {
        c.add(RTVOID);
      } else if (s == symNil) {
        c.add(RTNIL);
      } else {
        c.add(RTSTR)->resval.rstring = dupString(std::u16string_view(sys::fromUtf8(s->name)));
      }
      return true;
    }
    case Tag::Str: c.add(RTSTR)->resval.rstring = dupString(std::u16string_view(v.as<String>()->s)); return true;
    case Tag::Ename: {
      resbuf* rb = c.add(RTENAME);
      rb->resval.rlname[0] = v.as<Ename>()->name[0];
      rb->resval.rlname[1] = v.as<Ename>()->name[1];
      return true;
    }
    case Tag::Pickset: {
      resbuf* rb = c.add(RTPICKS);
      rb->resval.rlname[0] = v.as<Pickset>()->name[0];
      rb->resval.rlname[1] = v.as<Pickset>()->name[1];
      return true;
    }
    default:
      if (bad) *bad = v;
      return false;
  }
}

// A list member or a whole value. Lists are walked with an explicit stack
// so that a deeply nested list cannot exhaust the machine stack.
bool emitValue(Chain& c, const Value& root, Value* bad) {
  std::vector<const Value*> open;  // the rest of each open list
  auto item = [&](const Value& x) -> bool {
    if (!x.isCons()) return emitAtom(c, x, bad);
    double p[3];
    int dim = 0;
    if (toPoint(x, p, &dim)) {
      const Value& first = car(x);
      if (dim == 3 && first.isInt() && isCodedPointType(first.asInt())) {
        resbuf* rb = c.add(first.asInt());
        rb->resval.rpoint[0] = p[1];
        rb->resval.rpoint[1] = p[2];
        rb->resval.rpoint[2] = 0.0;
      } else {
        resbuf* rb = c.add(dim == 2 ? RTPOINT : RT3DPOINT);
        rb->resval.rpoint[0] = p[0];
        rb->resval.rpoint[1] = p[1];
        rb->resval.rpoint[2] = dim == 2 ? 0.0 : p[2];
      }
      return true;
    }
    c.add(RTLB);
    open.push_back(&x);
    return true;
  };
  if (!item(root)) return false;
  while (!open.empty()) {
    const Value* rest = open.back();
    if (rest->isCons()) {
      const Cons* k = rest->as<Cons>();
      open.back() = &k->cdr;
      if (!item(k->car)) return false;
    } else if (rest->isNil()) {
      c.add(RTLE);
      open.pop_back();
    } else {
      c.add(RTDOTE);
      if (!emitAtom(c, *rest, bad)) return false;
      c.add(RTLE);
      open.pop_back();
    }
  }
  return true;
}

// ---------------------------------------------------------------- chain to LISP

std::u16string hexString(const char* buf, int len) {
  static const char16_t* digits = u"0123456789ABCDEF";
  std::u16string s;
  for (int i = 0; i < len; ++i) {
    auto b = static_cast<unsigned char>(buf[i]);
    s += digits[b >> 4];
    s += digits[b & 15];
  }
  return s;
}

Value stringOf(const ACHAR* s) { return str(std::u16string(s ? s : u"")); }

bool nodeValue(const resbuf* rb, Value* out) {
  const auto& v = rb->resval;
  switch (rb->restype) {
    case RTNONE:
    case RTNIL: *out = Value(); return true;
    case RTT: *out = T(); return true;
    case RTVOID: *out = voidValue(); return true;
    case RTREAL:
    case RTANG:
    case RTORINT: *out = Value::real(v.rreal); return true;
    case RTPOINT: *out = pointValue(v.rpoint, 2); return true;
    case RT3DPOINT: *out = pointValue(v.rpoint, 3); return true;
    case RTSHORT: *out = Value::integer(v.rint); return true;
    case RTLONG: *out = Value::integer(v.rlong); return true;
    case RTSTR: *out = stringOf(v.rstring); return true;
    case RTENAME: *out = Value::obj(new Ename(v.rlname[0], v.rlname[1])); return true;
    case RTPICKS: *out = picksetValue(v.rlname); return true;
    default: break;
  }
  int code = rb->restype == RTDXF0 ? 0 : rb->restype;
  if (code >= 5000) return false;
  Value key = Value::integer(code);
  Value val;
  switch (rbKind(rb->restype)) {
    case RbKind::Point: val = pointValue(v.rpoint, 3); break;
    case RbKind::Real: val = Value::real(v.rreal); break;
    case RbKind::Short: val = Value::integer(v.rint); break;
    case RbKind::Long: val = Value::integer(v.rlong); break;
    case RbKind::Int64:
      if (v.mnInt64 >= INT32_MIN && v.mnInt64 <= INT32_MAX) {
        val = Value::integer(static_cast<int32_t>(v.mnInt64));
      } else {
        val = Value::real(static_cast<double>(v.mnInt64));
      }
      break;
    case RbKind::String: val = stringOf(v.rstring); break;
    case RbKind::Name: val = Value::obj(new Ename(v.rlname[0], v.rlname[1])); break;
    case RbKind::Binary: val = str(hexString(v.rbinary.buf, v.rbinary.buf ? v.rbinary.clen : 0)); break;
    default: return false;
  }
  *out = cons(std::move(key), std::move(val));
  return true;
}

// One list being read: its members, and the tail after an RTDOTE.
struct Frame {
  std::vector<Value> items;
  Value tail;
  int dot = 0;  // 0 none, 1 RTDOTE read, 2 its value read
  size_t xdata = std::string::npos;  // index of the first member after -3
};

bool addTo(Frame& f, Value v) {
  if (f.dot == 2) return false;
  if (f.dot == 1) {
    f.tail = std::move(v);
    f.dot = 2;
    return true;
  }
  f.items.push_back(std::move(v));
  return true;
}

// The members after a -3 node, grouped by application as entget gives
// extended data: (-3 ("APP1" (1000 . "a")) ("APP2" ...)).
void groupXData(Frame& f) {
  if (f.xdata == std::string::npos) return;
  std::vector<Value> loose;
  std::vector<std::vector<Value>> apps;
  for (size_t i = f.xdata; i < f.items.size(); ++i) {
    const Value& it = f.items[i];
    if (it.isCons() && car(it).isInt() && car(it).asInt() == 1001) {
      apps.push_back({cdr(it)});
    } else if (apps.empty()) {
      loose.push_back(it);
    } else {
      apps.back().push_back(it);
    }
  }
  for (auto& a : apps) loose.push_back(listFrom(std::move(a)));
  f.items.resize(f.xdata);
  f.items.push_back(cons(Value::integer(-3), listFrom(std::move(loose))));
  f.xdata = std::string::npos;
}

Value finish(Frame& f) {
  groupXData(f);
  return listFrom(std::move(f.items), std::move(f.tail));
}

enum class Mode { One, List, Values };

// Reads the chain into top: its first value (One), its members as the
// body of a list (List), or its values one after another (Values).
bool parseChain(const resbuf* p, Mode mode, Frame& top) {
  std::vector<Frame> open;
  for (; p; p = p->rbnext) {
    if (mode == Mode::One && open.empty() && !top.items.empty()) break;
    bool atTop = open.empty();
    Frame& f = atTop ? top : open.back();
    switch (p->restype) {
      case RTLB:
        if (f.dot == 2) return false;
        open.emplace_back();
        continue;
      case RTLE: {
        if (atTop || f.dot == 1) return false;
        Value v = finish(f);
        open.pop_back();
        if (!addTo(open.empty() ? top : open.back(), std::move(v))) return false;
        continue;
      }
      case RTDOTE:
        if ((atTop && mode != Mode::List) || f.items.empty() || f.dot != 0) return false;
        f.dot = 1;
        continue;
      case -3:
        if ((atTop && mode != Mode::List) || f.dot != 0 || f.xdata != std::string::npos) return false;
        f.xdata = f.items.size();
        continue;
      default: {
        Value v;
        if (!nodeValue(p, &v) || !addTo(f, std::move(v))) return false;
      }
    }
  }
  return open.empty() && top.dot != 1;
}

}  // namespace

resbuf* valueToRb(const Value& v, Value* bad) {
  Chain c;
  if (!emitValue(c, v, bad)) return nullptr;
  return c.take();
}

resbuf* valuesToRb(ArgSpan values, bool* ok, Value* bad) {
  Chain c;
  for (const Value& v : values) {
    if (!emitValue(c, v, bad)) {
      if (ok) *ok = false;
      return nullptr;
    }
  }
  if (ok) *ok = true;
  return c.take();
}

bool rbToValue(const resbuf* rb, Value* out) {
  Frame top;
  if (!parseChain(rb, Mode::One, top) || top.items.empty()) return false;
  *out = std::move(top.items[0]);
  return true;
}

// A chain that is one list, RTLB ... RTLE, is that list; any other chain
// is the list of its members. So a function can return a list it built
// with RTLB and RTLE, or the bare members, and LISP sees the same list.
bool rbToList(const resbuf* rb, Value* out) {
  Frame top;
  if (!parseChain(rb, Mode::List, top)) return false;
  if (rb && rb->restype == RTLB && top.items.size() == 1 && top.dot == 0 && top.xdata == std::string::npos) {
    *out = std::move(top.items[0]);
  } else {
    *out = finish(top);
  }
  return true;
}

bool rbToValues(const resbuf* rb, std::vector<Value>* out) {
  Frame top;
  if (!parseChain(rb, Mode::Values, top)) return false;
  *out = std::move(top.items);
  return true;
}

// ---------------------------------------------------------------- modules

rx::Module* currentModule() { return gCurrentModule; }

ModuleScope::ModuleScope(rx::Module* m) : saved_(gCurrentModule) { gCurrentModule = m; }
ModuleScope::~ModuleScope() { gCurrentModule = saved_; }

void undefineModuleFunctions(rx::Module* m) {
  auto& b = bindings();
  for (auto it = b.begin(); it != b.end();) {
    if (it->second.owner == m) {
      Symbol* s = it->second.sym;
      if (s->value.identical(it->second.fn)) s->value = Value();
      it = b.erase(it);
    } else {
      ++it;
    }
  }
  auto& r = regFuncs();
  for (auto it = r.begin(); it != r.end();) {
    it = it->first.first == m ? r.erase(it) : std::next(it);
  }
}

// ---------------------------------------------------------------- the call

namespace {

// Interp::callExrx: runs a compiled function on LISP arguments. The
// function's own failures stay inside: a status of RTERROR gives nil after
// what it printed, a function that set no result gives nil, and a C++
// exception that escapes it becomes a LISP error of the call.
Value callCompiled(Interp& in, Exrx* fn, ArgSpan args) {
  auto it = bindings().find(fn);
  if (it == bindings().end()) in.fail(u"no function definition: " + sys::fromUtf8(fn->name));
  rx::Module* owner = it->second.owner;
  int code = it->second.code;
  auto rf = regFuncs().find({owner, code});
  AcedFunction direct = rf == regFuncs().end() ? nullptr : rf->second;
  AcRxEntryPoint entry = owner ? rx::moduleEntry(owner) : nullptr;
  if (!direct && !entry) in.fail(u"no function definition: " + sys::fromUtf8(fn->name));

  ArgChain chain;
  bool ok = true;
  Value bad;
  chain.adopt(valuesToRb(args, &ok, &bad));
  if (!ok) in.fail(u"bad argument type: " + prin1String(bad));

  Value keep(Value::obj(fn));  // the function may undefine itself
  CallState cs{code, owner, chain.head, args, Value(), false};
  int status = RSRSLT;
  bool crashed = false;
  std::u16string what;
  {
    CallScope call(&cs);
    ModuleScope module(owner);
    try {
      status = direct ? direct() : static_cast<int>(entry(AcRx::kInvkSubrMsg, nullptr));
    } catch (const LispAbort&) {
      throw;
    } catch (const LispError&) {
      throw;
    } catch (const LispExitWithValue&) {
      throw;
    } catch (const std::exception& e) {
      crashed = true;
      what = sys::fromUtf8(e.what());
    } catch (...) {
      crashed = true;
      what = u"unknown exception";
    }
  }
  if (crashed) in.fail(u"exception in " + sys::fromUtf8(fn->name) + u": " + what);
  if (status == RTERROR || !cs.hasResult) return Value();
  return std::move(cs.result);
}

int setResult(Value v) {
  if (gCalls.empty()) return RTERROR;
  CallState* cs = gCalls.back();
  cs->result = std::move(v);
  cs->hasResult = true;
  return RTNORM;
}

// Restores the count of open vl-catch-all-apply calls after acedInvoke.
struct CatchReset {
  Interp& in;
  int saved;
  explicit CatchReset(Interp& i) : in(i), saved(i.catchDepth) { in.catchDepth = 0; }
  ~CatchReset() { in.catchDepth = saved; }
};

}  // namespace

void installBridge(Interp& in) {
  in.callExrx = &callCompiled;
  registerModuleFunctions(in);
}

}  // namespace zepk::lisp

// ================================================================ ads.h

using namespace zepk;
using namespace zepk::lisp;

resbuf* acutNewRb(int type) {
  auto* rb = static_cast<resbuf*>(std::calloc(1, sizeof(resbuf)));
  if (rb) rb->restype = static_cast<short>(type);
  return rb;
}

int acutRelRb(resbuf* rb) {
  while (rb) {
    resbuf* next = rb->rbnext;
    RbKind k = rbKind(rb->restype);
    if (k == RbKind::String) std::free(rb->resval.rstring);
    if (k == RbKind::Binary) std::free(rb->resval.rbinary.buf);
    std::free(rb);
    rb = next;
  }
  return RTNORM;
}

resbuf* acutBuildList(int type, ...) {
  va_list ap;
  va_start(ap, type);
  Chain c;
  bool ok = true;
  try {
    for (int t = type; t != 0 && t != RTNONE; t = va_arg(ap, int)) {
      RbKind k = rbKind(t);
      if (k == RbKind::Unknown || t < -32768 || t > 32767) {
        ok = false;
        break;
      }
      resbuf* rb = c.add(t == RTDXF0 ? 0 : t);
      auto& v = rb->resval;
      switch (k) {
        case RbKind::Real: v.rreal = va_arg(ap, double); break;
        case RbKind::Point: {
          const double* p = va_arg(ap, const double*);
          if (p) std::memcpy(v.rpoint, p, sizeof v.rpoint);
          break;
        }
        case RbKind::Short: v.rint = static_cast<short>(va_arg(ap, int)); break;
        case RbKind::Long: v.rlong = va_arg(ap, int); break;
        case RbKind::Int64: v.mnInt64 = va_arg(ap, int64_t); break;
        case RbKind::String: v.rstring = dupString(va_arg(ap, const ACHAR*)); break;
        case RbKind::Name: {
          const int64_t* n = va_arg(ap, const int64_t*);
          if (n) {
            v.rlname[0] = n[0];
            v.rlname[1] = n[1];
          }
          break;
        }
        case RbKind::Binary: {
          const ads_binary* b = va_arg(ap, const ads_binary*);
          if (b && b->buf && b->clen > 0) {
            v.rbinary.buf = static_cast<char*>(std::malloc(b->clen));
            if (v.rbinary.buf) {
              std::memcpy(v.rbinary.buf, b->buf, b->clen);
              v.rbinary.clen = b->clen;
            }
          }
          break;
        }
        default: break;
      }
    }
  } catch (...) {
    ok = false;
  }
  va_end(ap);
  return ok ? c.take() : nullptr;
}

int acedDefun(const ACHAR* name, short funcode) {
  if (!name || !*name) return RTERROR;
  try {
    Symbol* s = intern(sys::toUtf8(name));
    if (s->isConstant || s == symNil || s == symT || s == symVoid) return RTERROR;
    // A name defined again replaces its earlier definition.
    if (s->value.tag() == Tag::Exrx) {
      auto it = bindings().find(s->value.asObj());
      if (it != bindings().end() && it->second.sym == s) bindings().erase(it);
    }
    auto* e = new Exrx;
    e->name = s->name;
    e->code = funcode;
    Value v = Value::obj(e);
    bindings()[e] = Binding{v, s, currentModule(), funcode};
    s->value = std::move(v);
    return RTNORM;
  } catch (...) {
    return RTERROR;
  }
}

int acedRegFunc(AcedFunction fhdl, int fcode) {
  try {
    auto key = std::make_pair(currentModule(), fcode);
    if (fhdl) {
      regFuncs()[key] = fhdl;
    } else {
      regFuncs().erase(key);
    }
    return RTNORM;
  } catch (...) {
    return RTERROR;
  }
}

// Only the module that defined a name, with the same code, undefines it.
int acedUndef(const ACHAR* name, short funcode) {
  if (!name) return RTERROR;
  try {
    Symbol* s = findSymbol(sys::toUtf8(name));
    if (!s || s->value.tag() != Tag::Exrx) return RTERROR;
    auto it = bindings().find(s->value.asObj());
    if (it == bindings().end() || it->second.sym != s || it->second.owner != currentModule() ||
        it->second.code != funcode) {
      return RTERROR;
    }
    bindings().erase(it);
    s->value = Value();
    return RTNORM;
  } catch (...) {
    return RTERROR;
  }
}

int acedGetFunCode() { return gCalls.empty() ? RTERROR : gCalls.back()->code; }

resbuf* acedGetArgs() { return gCalls.empty() ? nullptr : gCalls.back()->args; }

int acedRetInt(int value) { return setResult(Value::integer(value)); }
int acedRetReal(ads_real value) { return setResult(Value::real(value)); }
int acedRetNil() { return setResult(Value()); }
int acedRetT() { return setResult(T()); }
int acedRetVoid() { return setResult(voidValue()); }

int acedRetStr(const ACHAR* s) {
  if (!s) return RTERROR;
  try {
    return setResult(str(std::u16string(s)));
  } catch (...) {
    return RTERROR;
  }
}

int acedRetPoint(const ads_point pt) {
  if (!pt) return RTERROR;
  try {
    return setResult(pointValue(pt, 3));
  } catch (...) {
    return RTERROR;
  }
}

int acedRetName(const ads_name aname, int type) {
  if (!aname || gCalls.empty()) return RTERROR;
  try {
    if (type == RTENAME) return setResult(Value::obj(new Ename(aname[0], aname[1])));
    if (type == RTPICKS) return setResult(picksetValue(aname));
    return RTERROR;
  } catch (...) {
    return RTERROR;
  }
}

int acedRetList(const resbuf* rbuf) {
  if (gCalls.empty()) return RTERROR;
  try {
    Value v;
    if (!rbToList(rbuf, &v)) return RTERROR;
    return setResult(std::move(v));
  } catch (...) {
    return RTERROR;
  }
}

int acedRetVal(const resbuf* rbuf) {
  if (gCalls.empty()) return RTERROR;
  try {
    Value v;
    if (!rbToValue(rbuf, &v)) return RTERROR;
    return setResult(std::move(v));
  } catch (...) {
    return RTERROR;
  }
}

int acedInvoke(const resbuf* args, resbuf** result) {
  if (result) *result = nullptr;
  Interp* in = Interp::current();
  if (!in || !args || args->restype != RTSTR || !args->resval.rstring || !*args->resval.rstring) return RTERROR;
  try {
    std::vector<Value> argv;
    if (!rbToValues(args->rbnext, &argv)) return RTERROR;
    Value fn = Value::sym(intern(sys::toUtf8(args->resval.rstring)));
    Value v;
    {
      // The call is a top-level one: an error in it is reported where it
      // happens and ends it, whatever vl-catch-all-apply runs around the
      // compiled caller.
      CatchReset reset(*in);
      if (!in->callTop(fn, argv, &v)) return RTERROR;
    }
    resbuf* rb = valueToRb(v);
    if (!rb) return RTERROR;
    if (result) {
      *result = rb;
    } else {
      acutRelRb(rb);
    }
    return RTNORM;
  } catch (const std::exception& e) {
    in->printError(sys::fromUtf8(e.what()));
    return RTERROR;
  } catch (...) {
    return RTERROR;
  }
}

int ads_queueexpr(const ACHAR* expr) {
  Interp* in = Interp::current();
  if (!in || !expr) return RTERROR;
  try {
    in->queued.emplace_back(expr);
    return RTNORM;
  } catch (...) {
    return RTERROR;
  }
}

int acedGetSym(const ACHAR* sname, resbuf** value) {
  if (!value) return RTERROR;
  *value = nullptr;
  if (!sname || !*sname) return RTERROR;
  try {
    Symbol* s = findSymbol(sys::toUtf8(sname));
    Value v = s ? s->value : Value();
    resbuf* rb = valueToRb(v);
    if (!rb) return RTERROR;
    *value = rb;
    return RTNORM;
  } catch (...) {
    return RTERROR;
  }
}

// A null value sets the symbol to nil.
int acedPutSym(const ACHAR* sname, resbuf* value) {
  if (!sname || !*sname) return RTERROR;
  try {
    Symbol* s = intern(sys::toUtf8(sname));
    if (s->isConstant || s == symNil || s == symT || s == symVoid) return RTERROR;
    Value v;
    if (value && !rbToValue(value, &v)) return RTERROR;
    s->value = std::move(v);
    return RTNORM;
  } catch (...) {
    return RTERROR;
  }
}

int acutPrintf(const ACHAR* format, ...) {
  if (!format) return 0;
  try {
    va_list ap;
    va_start(ap, format);
    std::u16string s = sys::vformatW(format, ap);
    va_end(ap);
    print(s);
    return static_cast<int>(s.size());
  } catch (...) {
    return 0;
  }
}

void acdbFail(const ACHAR* message) {
  if (!message) return;
  try {
    print(message);
  } catch (...) {
  }
}
