// Special forms, function definition and application, predicates on types,
// symbols, and the error functions.
#include <algorithm>

#include "host/lisp/interp.h"
#include "host/lisp/printer.h"
#include "host/lisp/reader.h"
#include "host/system/utf.h"

namespace zepk::lisp {

namespace {


void formCount(Interp& in, const Value& forms, size_t min, size_t max) {
  size_t n = listLength(forms);
  if (n < min) in.fail(std::u16string_view(u"too few arguments"));
  if (n > max) in.fail(std::u16string_view(u"too many arguments"));
}

// Parses (a b / c d) into parameters and locals.
void parseParams(Interp& in, const Value& paramList, Usubr* u) {
  if (!paramList.isList()) in.badType("listp", paramList);
  bool locals = false;
  for (const Value* p = &paramList; p->isCons(); p = &p->as<Cons>()->cdr) {
    const Value& s = p->as<Cons>()->car;
    if (!s.isSym()) in.badType("symbolp", s);
    if (s.asSym()->name == "/") {
      if (locals) in.fail(std::u16string_view(u"bad argument list"));
      locals = true;
      continue;
    }
    (locals ? u->locals : u->params).push_back(s.asSym());
  }
}

Value makeUsubr(Interp& in, std::string name, const Value& paramList, const Value& body) {
  auto* u = new Usubr;
  Value keep = Value::obj(u);
  u->name = std::move(name);
  parseParams(in, paramList, u);
  u->body = body;
  return keep;
}

// ---- special forms

Value sfQuote(Interp& in, const Value& f) {
  formCount(in, f, 1, 1);
  return car(f);
}

Value sfFunction(Interp& in, const Value& f) {
  formCount(in, f, 1, 1);
  const Value& x = car(f);
  if (x.isCons() && car(x).isSym() && car(x).asSym() == symLambda) {
    return makeUsubr(in, "", car(cdr(x)), cdr(cdr(x)));
  }
  return x;
}

Value sfLambda(Interp& in, const Value& f) {
  formCount(in, f, 1, SIZE_MAX);
  return makeUsubr(in, "", car(f), cdr(f));
}

Value sfSetq(Interp& in, const Value& f) {
  if (f.isNil()) in.fail(std::u16string_view(u"too few arguments"));
  Value result;
  for (const Value* p = &f; p->isCons();) {
    const Value& target = p->as<Cons>()->car;
    Symbol* s = argSym(in, target);
    const Value& rest = p->as<Cons>()->cdr;
    if (!rest.isCons()) in.fail(std::u16string_view(u"too few arguments"));
    result = in.eval(rest.as<Cons>()->car);
    s->value = result;
    p = &rest.as<Cons>()->cdr;
  }
  return result;
}

Value sfIf(Interp& in, const Value& f) {
  if (!f.isCons() || !f.as<Cons>()->cdr.isCons()) in.fail(std::u16string_view(u"too few arguments"));
  const Cons* c = f.as<Cons>();
  const Cons* rest = c->cdr.as<Cons>();
  if (rest->cdr.isCons() && rest->cdr.as<Cons>()->cdr.isCons()) in.fail(std::u16string_view(u"too many arguments"));
  if (in.eval(c->car).truthy()) return in.eval(rest->car);
  if (rest->cdr.isCons()) return in.eval(rest->cdr.as<Cons>()->car);
  return Value();
}

Value sfCond(Interp& in, const Value& f) {
  for (const Value* p = &f; p->isCons(); p = &p->as<Cons>()->cdr) {
    const Value& clause = p->as<Cons>()->car;
    if (!clause.isCons()) in.badType("consp", clause);
    Value test = in.eval(clause.as<Cons>()->car);
    if (test.truthy()) {
      const Value& body = clause.as<Cons>()->cdr;
      if (body.isNil()) return test;
      return in.progn(body);
    }
  }
  return Value();
}

Value sfWhile(Interp& in, const Value& f) {
  formCount(in, f, 1, SIZE_MAX);
  Value result;
  const Value& test = car(f);
  const Value& body = cdr(f);
  while (in.eval(test).truthy()) result = in.progn(body);
  return result;
}

Value sfRepeat(Interp& in, const Value& f) {
  formCount(in, f, 1, SIZE_MAX);
  Value n = in.eval(car(f));
  int32_t count = argInt(in, n);
  Value result;
  const Value& body = cdr(f);
  for (int32_t i = 0; i < count; ++i) result = in.progn(body);
  return result;
}

Value sfForeach(Interp& in, const Value& f) {
  formCount(in, f, 2, SIZE_MAX);
  Symbol* var = argSym(in, car(f));
  Value items = in.eval(car(cdr(f)));
  if (!items.isList()) in.badType("listp", items);
  const Value& body = cdr(cdr(f));
  size_t mark = in.bindMark();
  struct Unbind {
    Interp& in;
    size_t mark;
    ~Unbind() { in.unbindTo(mark); }
  } unbind{in, mark};
  in.bind(var, Value());
  Value result;
  for (const Value* p = &items; p->isCons(); p = &p->as<Cons>()->cdr) {
    var->value = p->as<Cons>()->car;
    result = in.progn(body);
  }
  return result;
}

Value sfProgn(Interp& in, const Value& f) { return in.progn(f); }

Value sfAnd(Interp& in, const Value& f) {
  for (const Value* p = &f; p->isCons(); p = &p->as<Cons>()->cdr)
    if (!in.eval(p->as<Cons>()->car).truthy()) return Value();
  return T();
}

Value sfOr(Interp& in, const Value& f) {
  for (const Value* p = &f; p->isCons(); p = &p->as<Cons>()->cdr)
    if (in.eval(p->as<Cons>()->car).truthy()) return T();
  return Value();
}

Value sfDefun(Interp& in, const Value& f) {
  formCount(in, f, 2, SIZE_MAX);
  Symbol* name = argSym(in, car(f));
  name->value = makeUsubr(in, name->name, car(cdr(f)), cdr(cdr(f)));
  return Value::sym(name);
}

// defun-q keeps the definition as a list, ((params / locals) body...), so
// that programs can read and extend it.
Value sfDefunQ(Interp& in, const Value& f) {
  formCount(in, f, 2, SIZE_MAX);
  Symbol* name = argSym(in, car(f));
  Usubr check;  // validates the parameter list
  check.refs = 1;
  parseParams(in, car(cdr(f)), &check);
  name->value = cdr(f);
  return Value::sym(name);
}

// ---- application

Value fnApply(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  argList(in, a[1]);
  std::vector<Value> args = listToVector(a[1]);
  return in.apply(a[0], args);
}

Value fnMapcar(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, SIZE_MAX);
  std::vector<const Value*> lists;
  for (size_t i = 1; i < a.size; ++i) lists.push_back(&argList(in, a[i]));
  std::vector<Value> out;
  std::vector<Value> args(lists.size());
  for (;;) {
    for (size_t i = 0; i < lists.size(); ++i) {
      if (!lists[i]->isCons()) return listFrom(std::move(out));
      args[i] = lists[i]->as<Cons>()->car;
      lists[i] = &lists[i]->as<Cons>()->cdr;
    }
    out.push_back(in.apply(a[0], args));
  }
}

Value fnEval(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return in.eval(a[0]);
}

Value fnSet(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  argSym(in, a[0])->value = a[1];
  return a[1];
}

Value fnRead(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 1);
  if (a.size == 0) return Value();
  Reader r(argStr(in, a[0]));
  ReadError err;
  err.line = 0;
  std::optional<Value> v = r.next(&err);
  if (!v) {
    if (err.line == 0) return Value();
    in.fail(std::u16string_view(err.message));
  }
  return *v;
}

// ---- types and predicates

Value fnType(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  const char* name = nullptr;
  switch (a[0].tag()) {
    case Tag::Nil: return Value();
    case Tag::Int: name = "INT"; break;
    case Tag::Real: name = "REAL"; break;
    case Tag::Sym: name = "SYM"; break;
    case Tag::Str: name = "STR"; break;
    case Tag::Cons: name = "LIST"; break;
    case Tag::Ename: name = "ENAME"; break;
    case Tag::Pickset: name = "PICKSET"; break;
    case Tag::File: name = "FILE"; break;
    case Tag::Subr: name = "SUBR"; break;
    case Tag::Usubr: name = "USUBR"; break;
    case Tag::Exrx: name = "EXRXSUBR"; break;
    case Tag::CatchError: name = "VL-CATCH-ALL-APPLY-ERROR"; break;
  }
  return sym(name);
}

Value fnNull(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return boolean(a[0].isNil());
}
Value fnAtom(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return boolean(!a[0].isCons());
}
Value fnListp(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return boolean(a[0].isList());
}
Value fnConsp(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return boolean(a[0].isCons());
}
Value fnSymbolp(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return boolean(a[0].isSym() || a[0].isNil());
}
Value fnBoundp(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  if (a[0].isNil()) return Value();
  return boolean(argSym(in, a[0])->value.truthy());
}
Value fnSymbolName(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  if (a[0].isNil()) return str(std::string_view("nil"));
  return str(std::string_view(argSym(in, a[0])->name));
}
Value fnSymbolValue(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  if (a[0].isNil()) return Value();
  return argSym(in, a[0])->value;
}

// (atoms-family format [names]): every symbol that has a value, or for each
// given name its symbol (format 0) or name (format 1) when it has one.
Value fnAtomsFamily(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  int32_t format = argInt(in, a[0]);
  auto item = [format](Symbol* s) { return format == 1 ? str(std::string_view(s->name)) : Value::sym(s); };
  std::vector<Value> out;
  if (a.size == 2) {
    for (const Value& n : listToVector(argList(in, a[1]))) {
      Symbol* s = findSymbol(sys::toUtf8(argStr(in, n)));
      out.push_back(s && s->value.truthy() ? item(s) : Value());
    }
    return listFrom(std::move(out));
  }
  std::vector<Symbol*> syms = allSymbols();
  std::sort(syms.begin(), syms.end(), [](Symbol* x, Symbol* y) { return x->name < y->name; });
  for (Symbol* s : syms)
    if (s->value.truthy()) out.push_back(item(s));
  return listFrom(std::move(out));
}

// ---- errors

Value fnExit(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 0);
  in.fail(std::u16string_view(u"quit / exit abort"));
}

Value fnCatchAllApply(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  argList(in, a[1]);
  std::vector<Value> args = listToVector(a[1]);
  ++in.catchDepth;
  struct Restore {
    Interp& in;
    ~Restore() { --in.catchDepth; }
  } restore{in};
  try {
    return in.apply(a[0], args);
  } catch (LispError& e) {
    return Value::obj(new CatchError(std::move(e.message)));
  }
}

Value fnCatchAllErrorP(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return boolean(a[0].tag() == Tag::CatchError);
}

Value fnCatchAllErrorMessage(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  if (a[0].tag() != Tag::CatchError) in.badType("vl-catch-all-apply-error-p", a[0]);
  return str(a[0].as<CatchError>()->message);
}

// Hands an error message on to the error handling of the caller: from inside
// *error* it is printed as the final error; elsewhere it is raised.
Value fnExitWithError(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  const std::u16string& msg = argStr(in, a[0]);
  if (in.inErrorHandler()) {
    in.printError(msg);
    throw LispAbort{};
  }
  in.fail(std::u16string_view(msg));
}

Value fnExitWithValue(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  throw LispExitWithValue{a[0]};
}

// Marks a function as callable from compiled code; every function is here,
// so this only checks that the symbol names one.
Value fnAcadDefun(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  // Compiled code names the function by a string (acedInvoke cannot pass
  // a symbol); it is the symbol of that name.
  Symbol* s = a[0].isStr() ? intern(sys::toUtf8(argStr(in, a[0]))) : argSym(in, a[0]);
  if (s->value.isNil()) in.fail(u"no function definition: " + sys::fromUtf8(s->name));
  return Value::sym(s);
}

Value fnDefunQListRef(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  Value v = argSym(in, a[0])->value;
  return v.isCons() ? v : Value();
}

Value fnDefunQListSet(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  Symbol* s = argSym(in, a[0]);
  argList(in, a[1]);
  s->value = a[1];
  return Value::sym(s);
}

}  // namespace

void registerCore(Interp& in) {
  in.defSpecial("quote", sfQuote);
  in.defSpecial("function", sfFunction);
  in.defSpecial("lambda", sfLambda);
  in.defSpecial("setq", sfSetq);
  in.defSpecial("if", sfIf);
  in.defSpecial("cond", sfCond);
  in.defSpecial("while", sfWhile);
  in.defSpecial("repeat", sfRepeat);
  in.defSpecial("foreach", sfForeach);
  in.defSpecial("progn", sfProgn);
  in.defSpecial("and", sfAnd);
  in.defSpecial("or", sfOr);
  in.defSpecial("defun", sfDefun);
  in.defSpecial("defun-q", sfDefunQ);

  in.defSubr("apply", fnApply);
  in.defSubr("mapcar", fnMapcar);
  in.defSubr("eval", fnEval);
  in.defSubr("set", fnSet);
  in.defSubr("read", fnRead);
  in.defSubr("type", fnType);
  in.defSubr("null", fnNull);
  in.defSubr("not", fnNull);
  in.defSubr("atom", fnAtom);
  in.defSubr("listp", fnListp);
  in.defSubr("vl-consp", fnConsp);
  in.defSubr("vl-symbolp", fnSymbolp);
  in.defSubr("boundp", fnBoundp);
  in.defSubr("vl-symbol-name", fnSymbolName);
  in.defSubr("vl-symbol-value", fnSymbolValue);
  in.defSubr("atoms-family", fnAtomsFamily);
  in.defSubr("exit", fnExit);
  in.defSubr("quit", fnExit);
  in.defSubr("vl-catch-all-apply", fnCatchAllApply);
  in.defSubr("vl-catch-all-error-p", fnCatchAllErrorP);
  in.defSubr("vl-catch-all-error-message", fnCatchAllErrorMessage);
  in.defSubr("vl-exit-with-error", fnExitWithError);
  in.defSubr("vl-exit-with-value", fnExitWithValue);
  in.defSubr("vl-acad-defun", fnAcadDefun);
  in.defSubr("defun-q-list-ref", fnDefunQListRef);
  in.defSubr("defun-q-list-set", fnDefunQListSet);

  in.setVar("T", T());
  in.setVar("PI", Value::real(3.14159265358979323846));
}

}  // namespace zepk::lisp
