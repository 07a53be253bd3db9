#include "host/lisp/interp.h"

#include <cstdio>
#include <fstream>
#include <sstream>

#include "host/lisp/printer.h"
#include "host/lisp/reader.h"
#include "host/system/codepage.h"
#include "host/system/utf.h"

namespace zepk::lisp {

void registerCore(Interp&);
void registerLists(Interp&);
void registerNumbers(Interp&);
void registerStrings(Interp&);
void registerFiles(Interp&);
void registerEnv(Interp&);
void registerGeometry(Interp&);

namespace {
Interp* gCurrent = nullptr;
constexpr size_t kArgStackSize = 1 << 18;
const char16_t* kStackLimit = u"Hard error occurred *** internal stack limit reached (simulated)";
}  // namespace

// Error paths of calls, kept out of line so that the hot paths stay small.
[[gnu::cold, gnu::noinline]] void Interp::failNoFunction(const std::string& name) {
  fail(u"no function definition: " + sys::fromUtf8(name));
}
[[gnu::cold, gnu::noinline]] void Interp::failBadFunction(const Value& v) { fail(u"bad function: " + prin1String(v)); }
[[gnu::cold, gnu::noinline]] void Interp::failArgCount(bool tooFew) {
  fail(std::u16string_view(tooFew ? u"too few arguments" : u"too many arguments"));
}

// ---------------------------------------------------------------- output

void Output::write(std::u16string_view s) { write(std::string_view(sys::toUtf8(s))); }

void Output::write(std::string_view utf8) {
  if (utf8.empty()) return;
  emit(utf8);
  size_t nl = utf8.rfind('\n');
  if (nl == std::string_view::npos) {
    column_ += static_cast<int>(utf8.size());
  } else {
    column_ = static_cast<int>(utf8.size() - nl - 1);
  }
}

void Output::freshLine() {
  if (column_ != 0) write(std::string_view("\n"));
}

void StdoutOutput::emit(std::string_view utf8) {
  std::fwrite(utf8.data(), 1, utf8.size(), stdout);
  std::fflush(stdout);
}

// ---------------------------------------------------------------- setup

Interp::Interp() {
  argBase_ = static_cast<Value*>(::operator new(sizeof(Value) * kArgStackSize));
  argTop_ = argBase_;
  argEnd_ = argBase_ + kArgStackSize;
  previous_ = gCurrent;
  gCurrent = this;
  registerCore(*this);
  registerLists(*this);
  registerNumbers(*this);
  registerStrings(*this);
  registerFiles(*this);
  registerEnv(*this);
  registerGeometry(*this);
}

Interp::~Interp() {
  unbindTo(0);
  // The session's variables die with it; built-ins lose the reference that
  // kept them alive.
  for (Symbol* s : allSymbols()) s->value = Value();
  for (Subr* s : subrs_)
    if (--s->refs == 0) destroyObj(s);
  while (argTop_ > argBase_) (--argTop_)->~Value();
  ::operator delete(argBase_);
  gCurrent = previous_;
}

Interp* Interp::current() { return gCurrent; }

void Interp::defSubr(std::string_view name, SubrFn fn) {
  auto* s = new Subr;
  s->refs = 1;  // built-ins live as long as the interpreter
  subrs_.push_back(s);
  s->name = intern(name)->name;
  s->fn = fn;
  intern(name)->value = Value::obj(s);
}

void Interp::defSpecial(std::string_view name, SpecialFn fn) {
  auto* s = new Subr;
  s->refs = 1;  // built-ins live as long as the interpreter
  subrs_.push_back(s);
  s->name = intern(name)->name;
  s->special = fn;
  intern(name)->value = Value::obj(s);
}

Value Interp::getVar(std::string_view name) const {
  Symbol* s = findSymbol(name);
  return s ? s->value : Value();
}

int Interp::sysvarInt(std::string_view name, int fallback) {
  if (!sysvar) return fallback;
  Value v = sysvar(name);
  return v.isInt() ? v.asInt() : fallback;
}


// ---------------------------------------------------------------- errors

void Interp::fail(std::string_view utf8) { fail(std::u16string_view(sys::fromUtf8(utf8))); }

void Interp::badType(std::string_view pred, const Value& v) {
  std::u16string m = u"bad argument type: " + sys::fromUtf8(pred) + u" " + prin1String(v);
  fail(std::u16string_view(m));
}

void Interp::fail(std::u16string_view message) {
  if (catchDepth > 0) throw LispError{std::u16string(message)};
  reportError(message);
  throw LispAbort{};
}

// Calls the *error* function in effect where the error happened, with the
// message; without one, or when *error* itself fails, prints the message as
// the host's default handler does.
void Interp::reportError(std::u16string_view message) {
  Value handler = getVar("*ERROR*");
  if (handler.truthy() && !inErrorHandler_) {
    inErrorHandler_ = true;
    int savedCatch = catchDepth;
    catchDepth = 0;
    try {
      Value msg = str(std::u16string(message));
      apply(handler, ArgSpan{&msg, 1});
    } catch (LispAbort&) {
    } catch (LispError&) {
    } catch (LispExitWithValue&) {
      inErrorHandler_ = false;
      catchDepth = savedCatch;
      throw;
    }
    catchDepth = savedCatch;
    inErrorHandler_ = false;
    return;
  }
  printError(message);
}

void Interp::printError(std::u16string_view message) {
  out().freshLine();
  out().write(u"; error: ");
  out().write(message);
  out().write(std::string_view("\n"));
}

// ---------------------------------------------------------------- evaluation

namespace {

struct DepthGuard {
  int& d;
  DepthGuard(Interp& in, int& depth) : d(depth) {
    if (++d > in.maxDepth) {
      --d;
      in.fail(std::u16string_view(kStackLimit));
    }
  }
  ~DepthGuard() { --d; }
};

struct ArgFrame {
  Value*& top;
  Value* base;
  explicit ArgFrame(Value*& t) : top(t), base(t) {}
  ~ArgFrame() {
    while (top > base) (--top)->~Value();
  }
};

}  // namespace

Value Interp::progn(const Value& forms) {
  Value result;
  for (const Value* p = &forms; p->isCons(); p = &p->as<Cons>()->cdr) result = eval(p->as<Cons>()->car);
  return result;
}

// Evaluates the argument forms onto the argument stack.
inline void Interp::pushArgs(const Value& argForms) {
  for (const Value* p = &argForms; p->isCons(); p = &p->as<Cons>()->cdr) {
    if (argTop_ == argEnd_) fail(std::u16string_view(kStackLimit));
    const Value& f = p->as<Cons>()->car;
    switch (f.tag()) {
      case Tag::Sym: new (argTop_) Value(f.asSym()->value); break;
      case Tag::Cons: {
        Value v = evalForm(f);
        new (argTop_) Value(std::move(v));
        break;
      }
      default: new (argTop_) Value(f); break;
    }
    ++argTop_;
  }
}

// The depth of nesting is counted where evaluation can recurse without
// bound: calls of LISP functions, special forms and apply.
Value Interp::evalForm(const Value& form) {
  const Cons* c = form.as<Cons>();
  const Value& head = c->car;
  if (head.isSym()) {
    const Value& fv = head.asSym()->value;
    if (fv.tag() == Tag::Subr) {
      // Built-ins live as long as the interpreter, so no reference is taken.
      Subr* s = fv.as<Subr>();
      if (s->special) {
        DepthGuard g(*this, depth_);
        return s->special(*this, c->cdr);
      }
      ArgFrame frame(argTop_);
      pushArgs(c->cdr);
      return s->fn(*this, ArgSpan{frame.base, static_cast<size_t>(argTop_ - frame.base)});
    }
    if (fv.tag() == Tag::Usubr) {
      Value fn = fv;  // the symbol may be rebound while arguments are evaluated
      ArgFrame frame(argTop_);
      pushArgs(c->cdr);
      return callUsubr(fn.as<Usubr>(), ArgSpan{frame.base, static_cast<size_t>(argTop_ - frame.base)});
    }
    Value fn = fv;
    return evalArgsAndCall(fn, c->cdr, head);
  }
  if (head.isCons()) {
    Value fn = eval(head);
    return evalArgsAndCall(fn, c->cdr, head);
  }
  return evalArgsAndCall(head, c->cdr, head);
}

Value Interp::evalArgsAndCall(const Value& fn, const Value& argForms, const Value& head) {
  switch (fn.tag()) {
    case Tag::Subr:
    case Tag::Usubr:
    case Tag::Exrx:
    case Tag::Cons: break;
    case Tag::Nil:
      if (head.isSym()) failNoFunction(head.asSym()->name);
      failBadFunction(head);
    default: failBadFunction(fn);
  }
  ArgFrame frame(argTop_);
  pushArgs(argForms);
  ArgSpan args{frame.base, static_cast<size_t>(argTop_ - frame.base)};
  switch (fn.tag()) {
    case Tag::Subr: {
      Subr* s = fn.as<Subr>();
      if (s->special) failBadFunction(fn);
      return s->fn(*this, args);
    }
    case Tag::Usubr: return callUsubr(fn.as<Usubr>(), args);
    case Tag::Exrx:
      if (!callExrx) failNoFunction(fn.as<Exrx>()->name);
      return callExrx(*this, fn.as<Exrx>(), args);
    default: return callLambdaList(fn, args);
  }
}

// The old values of the parameters and locals are saved on the argument
// stack, above the arguments, and put back when the call ends or unwinds.
// Every caller holds a reference to the function, so it outlives the call
// even when the program redefines it.
Value Interp::callUsubr(Usubr* u, ArgSpan args) {
  if (args.size != u->params.size()) [[unlikely]]
    failArgCount(args.size < u->params.size());
  DepthGuard g(*this, depth_);
  const size_t nParams = u->params.size();
  const size_t nLocals = u->locals.size();
  if (argEnd_ - argTop_ < static_cast<ptrdiff_t>(nParams + nLocals + 1)) fail(std::u16string_view(kStackLimit));
  struct Restore {
    Value*& top;
    Value* base;
    Symbol* const* syms;
    size_t n;
    Symbol* const* locals;
    ~Restore() {
      // Saved in order params then locals; a symbol listed twice is put
      // back last-saved first, so walk backwards.
      for (size_t i = static_cast<size_t>(top - base); i-- > 0;) {
        Symbol* s = i < n ? syms[i] : locals[i - n];
        s->value = std::move(base[i]);
        base[i].~Value();
      }
      top = base;
    }
  } restore{argTop_, argTop_, u->params.data(), nParams, u->locals.data()};
  for (size_t i = 0; i < nParams; ++i) {
    Symbol* s = u->params[i];
    new (argTop_) Value(std::move(s->value));
    ++argTop_;
    s->value = args[i];
  }
  for (size_t i = 0; i < nLocals; ++i) {
    Symbol* s = u->locals[i];
    new (argTop_) Value(std::move(s->value));
    ++argTop_;
    s->value = Value();
  }
  // A function that runs a second time is worth compiling.
  if (u->compiled || ++u->calls >= 2) return runCompiled(*this, u);
  return progn(u->body);
}

// A function given as a list: (LAMBDA (params / locals) body...) or, as
// defun-q makes them, ((params / locals) body...).
Value Interp::callLambdaList(const Value& fn, ArgSpan args) {
  Value params, body;
  if (car(fn).isSym() && car(fn).asSym() == symLambda) {
    params = car(cdr(fn));
    body = cdr(cdr(fn));
  } else if (car(fn).isList()) {
    params = car(fn);
    body = cdr(fn);
  } else {
    failBadFunction(fn);
  }
  Usubr u;
  bool locals = false;
  for (const Value* p = &params; p->isCons(); p = &p->as<Cons>()->cdr) {
    const Value& s = p->as<Cons>()->car;
    if (!s.isSym()) badType("symbolp", s);
    if (s.asSym()->name == "/") {
      locals = true;
      continue;
    }
    (locals ? u.locals : u.params).push_back(s.asSym());
  }
  u.body = body;
  u.refs = 1;  // on the stack; never freed through its count
  return callUsubr(&u, args);
}

Value Interp::apply(const Value& fnIn, ArgSpan args) {
  Value fn = fnIn;
  if (fn.isSym()) {
    Symbol* s = fn.asSym();
    fn = s->value;
    if (fn.isNil()) failNoFunction(s->name);
  }
  DepthGuard g(*this, depth_);
  switch (fn.tag()) {
    case Tag::Subr: {
      Subr* s = fn.as<Subr>();
      if (s->special) {
        // A special form applied to values: quote them back into forms.
        std::vector<Value> forms;
        for (const Value& a : args) forms.push_back(list({Value::sym(symQuote), a}));
        return s->special(*this, listFrom(std::move(forms)));
      }
      return s->fn(*this, args);
    }
    case Tag::Usubr: return callUsubr(fn.as<Usubr>(), args);
    case Tag::Exrx:
      if (!callExrx) failNoFunction(fn.as<Exrx>()->name);
      return callExrx(*this, fn.as<Exrx>(), args);
    case Tag::Cons: return callLambdaList(fn, args);
    default: failBadFunction(fn);
  }
}

// ---------------------------------------------------------------- top level

// Runs f at the top level: every LISP error is reported (after *error* had
// its turn at the place of the error) and turned into false.
template <class F>
bool Interp::topLevel(F&& f, Value* result) {
  struct Running {
    int& n;
    explicit Running(int& r) : n(r) { ++n; }
    ~Running() { --n; }
  } running(running_);
  try {
    Value v = f();
    if (result) *result = std::move(v);
    return true;
  } catch (LispAbort&) {
    return false;
  } catch (LispError& e) {
    reportError(e.message);
    return false;
  } catch (LispExitWithValue& x) {
    if (result) *result = std::move(x.value);
    return true;
  }
}

Value Interp::evalAll(std::u16string_view text, std::u16string_view source) {
  Reader r(text);
  Value last;
  for (;;) {
    ReadError err;
    err.line = 0;
    std::optional<Value> form = r.next(&err);
    if (!form) {
      if (err.line == 0) return last;
      std::u16string msg = err.where();
      if (!source.empty()) msg += u" in " + std::u16string(source);
      fail(std::u16string_view(msg));
    }
    last = eval(*form);
  }
}

bool Interp::evalText(std::u16string_view text, Value* last, std::u16string_view source) {
  return topLevel([&] { return evalAll(text, source); }, last);
}

std::u16string decodeSource(std::string_view bytes) {
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF") return sys::fromUtf8(bytes.substr(3));
  if (sys::isValidUtf8(bytes)) return sys::fromUtf8(bytes);
  return sys::fromCodePage(bytes);
}

bool Interp::loadFile(const std::string& path, Value* last) {
  std::ifstream f(path, std::ios::binary);
  if (!f) return false;
  std::stringstream ss;
  ss << f.rdbuf();
  return evalText(decodeSource(ss.str()), last, sys::fromUtf8(path));
}

bool Interp::callTop(const Value& fn, const std::vector<Value>& args, Value* result) {
  return topLevel([&] { return apply(fn, args); }, result);
}

void Interp::runQueued() {
  while (!queued.empty()) {
    std::u16string expr = std::move(queued.front());
    queued.erase(queued.begin());
    evalText(expr);
  }
}

// ---------------------------------------------------------------- argument checks

void checkArgc(Interp& in, ArgSpan a, size_t min, size_t max) {
  if (a.size < min) in.fail(std::u16string_view(u"too few arguments"));
  if (a.size > max) in.fail(std::u16string_view(u"too many arguments"));
}

int32_t argInt(Interp& in, const Value& v) {
  if (!v.isInt()) in.badType("fixnump:", v);
  return v.asInt();
}

double argNum(Interp& in, const Value& v) {
  if (!v.isNumber()) in.badType("numberp:", v);
  return v.asNumber();
}

const std::u16string& argStr(Interp& in, const Value& v) {
  if (!v.isStr()) in.badType("stringp", v);
  return v.as<String>()->s;
}

Symbol* argSym(Interp& in, const Value& v) {
  if (!v.isSym()) in.badType("symbolp", v);
  return v.asSym();
}

const Value& argList(Interp& in, const Value& v) {
  if (!v.isList()) in.badType("listp", v);
  return v;
}

bool toPoint(const Value& v, double p[3], int* dim) {
  int n = 0;
  p[0] = p[1] = p[2] = 0.0;
  const Value* q = &v;
  for (; q->isCons(); q = &q->as<Cons>()->cdr) {
    const Value& x = q->as<Cons>()->car;
    if (!x.isNumber() || n == 3) return false;
    p[n++] = x.asNumber();
  }
  if (!q->isNil() || n < 2) return false;
  if (dim) *dim = n;
  return true;
}

void argPoint(Interp& in, const Value& v, double p[3], int* dim) {
  if (!toPoint(v, p, dim)) in.badType("2D/3D point:", v);
}

size_t listLength(const Value& v) {
  size_t n = 0;
  for (const Value* p = &v; p->isCons(); p = &p->as<Cons>()->cdr) ++n;
  return n;
}

std::vector<Value> listToVector(const Value& v) {
  std::vector<Value> out;
  for (const Value* p = &v; p->isCons(); p = &p->as<Cons>()->cdr) out.push_back(p->as<Cons>()->car);
  return out;
}

Value pointValue(const double p[3], int dim) {
  if (dim == 2) return list({Value::real(p[0]), Value::real(p[1])});
  return list({Value::real(p[0]), Value::real(p[1]), Value::real(p[2])});
}

}  // namespace zepk::lisp
