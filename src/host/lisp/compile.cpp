// The body of a LISP function, compiled into a tree of nodes the first time
// the function runs a second time. A node does what evaluating its form
// does, without walking the list structure again: arguments are counted,
// constants are taken out, variables are bound to their symbols, and the
// common special forms (quote, if, setq, progn, while, and, or, cond,
// repeat, foreach) become nodes of their own.
//
// LISP stays dynamic: every node that depends on what a symbol names (the
// head of a call, a special form) checks it at run time, and when the name
// has come to mean something else, evaluates its original form the ordinary
// way. So redefining a function, or even a special form, behaves exactly as
// it does without compilation.
#include <memory>
#include <utility>

#include "host/lisp/interp.h"

namespace zepk::lisp {

namespace {

struct Node {
  virtual ~Node() = default;
  virtual Value eval(Interp& in) const = 0;
};
using NodePtr = std::unique_ptr<Node>;
using Nodes = std::vector<NodePtr>;

// What most arguments are: a variable or a constant, evaluated here
// without a virtual call; anything else is a node.
struct Operand {
  Symbol* sym = nullptr;
  Value constant;
  NodePtr node;
  Value eval(Interp& in) const {
    if (sym) return sym->value;
    if (node) return node->eval(in);
    return constant;
  }
};
using Operands = std::vector<Operand>;

}  // namespace

struct CompiledBody {
  Nodes forms;
};

// Access to the evaluator's internals for the nodes.
struct EvalAccess {
  static Value evalForm(Interp& in, const Value& form) { return in.evalForm(form); }
  static Value*& argTop(Interp& in) { return in.argTop_; }
  static Value* argEnd(Interp& in) { return in.argEnd_; }
  static Value callUsubr(Interp& in, Usubr* u, ArgSpan a) { return in.callUsubr(u, a); }
};

namespace {

const char16_t* kStackLimit = u"Hard error occurred *** internal stack limit reached (simulated)";

Value runAll(Interp& in, const Nodes& nodes) {
  Value result;
  for (const NodePtr& n : nodes) result = n->eval(in);
  return result;
}

struct ConstNode : Node {
  Value v;
  explicit ConstNode(Value x) : v(std::move(x)) {}
  Value eval(Interp&) const override { return v; }
};

struct VarNode : Node {
  Symbol* sym;
  explicit VarNode(Symbol* s) : sym(s) {}
  Value eval(Interp&) const override { return sym->value; }
};

// A form evaluated the ordinary way: what the compiler does not handle.
struct FormNode : Node {
  Value form;
  explicit FormNode(Value f) : form(std::move(f)) {}
  Value eval(Interp& in) const override { return in.eval(form); }
};

// Base of nodes for special forms: runs only while the head symbol still
// names the special form it was compiled for.
struct SpecialNode : Node {
  Value form;
  Symbol* head;
  const Subr* expected;
  bool current() const {
    const Value& fv = head->value;
    return fv.tag() == Tag::Subr && fv.as<Subr>() == expected;
  }
};

// Compiled nodes need no depth count of their own: recursion goes through
// calls of LISP functions, which count it, and nesting in the source is
// bounded by the compiler's own limit.

// A call with a fixed small number of arguments, evaluated into an array
// on the C++ stack.
template <size_t N>
struct CallNodeN : Node {
  Value form;
  Symbol* head;
  Operand args[N];
  template <size_t... I>
  Value call(Interp& in, std::index_sequence<I...>) const {
    const Value& fv = head->value;
    Tag t = fv.tag();
    if (t == Tag::Subr && !fv.as<Subr>()->special) {
      Subr* s = fv.as<Subr>();  // built-ins live as long as the interpreter
      Value a[N] = {args[I].eval(in)...};
      return s->fn(in, ArgSpan{a, N});
    }
    if (t == Tag::Usubr) {
      Value fn = fv;  // the symbol may be rebound while arguments are evaluated
      Value a[N] = {args[I].eval(in)...};
      return EvalAccess::callUsubr(in, fn.as<Usubr>(), ArgSpan{a, N});
    }
    return EvalAccess::evalForm(in, form);
  }
  Value eval(Interp& in) const override { return call(in, std::make_index_sequence<N>{}); }
};

// A call of whatever the head symbol names when it runs, with more
// arguments than the fixed forms take: they go on the argument stack.
struct CallNode : Node {
  Value form;
  Symbol* head;
  Operands args;
  Value eval(Interp& in) const override {
    const Value& fv = head->value;
    Tag t = fv.tag();
    if (t != Tag::Usubr && (t != Tag::Subr || fv.as<Subr>()->special)) {
      // Anything else (a special form bound to a new name, a compiled
      // function, a lambda list, an error) goes the ordinary way.
      return EvalAccess::evalForm(in, form);
    }
    Value fn = fv;  // the symbol may be rebound while arguments are evaluated
    Value*& top = EvalAccess::argTop(in);
    Value* base = top;
    struct Pop {
      Value*& top;
      Value* base;
      ~Pop() {
        while (top > base) (--top)->~Value();
      }
    } pop{top, base};
    if (EvalAccess::argEnd(in) - top < static_cast<ptrdiff_t>(args.size())) in.fail(std::u16string_view(kStackLimit));
    for (const Operand& a : args) {
      Value v = a.eval(in);
      new (top) Value(std::move(v));
      ++top;
    }
    ArgSpan span{base, args.size()};
    if (t == Tag::Subr) return fn.as<Subr>()->fn(in, span);
    return EvalAccess::callUsubr(in, fn.as<Usubr>(), span);
  }
};

struct QuoteNode : SpecialNode {
  Value v;
  Value eval(Interp& in) const override { return current() ? v : EvalAccess::evalForm(in, form); }
};

struct IfNode : SpecialNode {
  Operand test, then, otherwise;  // otherwise nil when absent
  Value eval(Interp& in) const override {
    if (!current()) return EvalAccess::evalForm(in, form);
    if (test.eval(in).truthy()) return then.eval(in);
    return otherwise.eval(in);
  }
};

struct SetqNode : SpecialNode {
  std::vector<std::pair<Symbol*, Operand>> pairs;
  Value eval(Interp& in) const override {
    if (!current()) return EvalAccess::evalForm(in, form);
    Value result;
    for (const auto& [sym, value] : pairs) {
      result = value.eval(in);
      sym->value = result;
    }
    return result;
  }
};

struct PrognNode : SpecialNode {
  Nodes body;
  Value eval(Interp& in) const override {
    if (!current()) return EvalAccess::evalForm(in, form);
    return runAll(in, body);
  }
};

struct WhileNode : SpecialNode {
  NodePtr test;
  Nodes body;
  Value eval(Interp& in) const override {
    if (!current()) return EvalAccess::evalForm(in, form);
    Value result;
    while (test->eval(in).truthy()) result = runAll(in, body);
    return result;
  }
};

struct AndOrNode : SpecialNode {
  bool isAnd;
  Nodes parts;
  Value eval(Interp& in) const override {
    if (!current()) return EvalAccess::evalForm(in, form);
    for (const NodePtr& p : parts)
      if (p->eval(in).truthy() != isAnd) return isAnd ? Value() : T();
    return isAnd ? T() : Value();
  }
};

struct CondNode : SpecialNode {
  struct Clause {
    NodePtr test;
    Nodes body;
  };
  std::vector<Clause> clauses;
  Value eval(Interp& in) const override {
    if (!current()) return EvalAccess::evalForm(in, form);
    for (const Clause& c : clauses) {
      Value t = c.test->eval(in);
      if (t.truthy()) return c.body.empty() ? t : runAll(in, c.body);
    }
    return Value();
  }
};

struct RepeatNode : SpecialNode {
  NodePtr count;
  Nodes body;
  Value eval(Interp& in) const override {
    if (!current()) return EvalAccess::evalForm(in, form);
    Value n = count->eval(in);
    int32_t times = argInt(in, n);
    Value result;
    for (int32_t i = 0; i < times; ++i) result = runAll(in, body);
    return result;
  }
};

struct ForeachNode : SpecialNode {
  Symbol* var;
  NodePtr items;
  Nodes body;
  Value eval(Interp& in) const override {
    if (!current()) return EvalAccess::evalForm(in, form);
    Value list = items->eval(in);
    if (!list.isList()) in.badType("listp", list);
    size_t mark = in.bindMark();
    struct Unbind {
      Interp& in;
      size_t mark;
      ~Unbind() { in.unbindTo(mark); }
    } unbind{in, mark};
    in.bind(var, Value());
    Value result;
    for (const Value* p = &list; p->isCons(); p = &p->as<Cons>()->cdr) {
      var->value = p->as<Cons>()->car;
      result = runAll(in, body);
    }
    return result;
  }
};

// ---- the compiler

class Compiler {
 public:
  NodePtr compile(const Value& form);
  Operand operand(const Value& form);
  bool compileList(const Value& forms, Nodes* out);
  bool compileOperands(const Value& forms, Operands* out);

 private:
  // The special form the symbol names now, or null.
  static const Subr* specialOf(Symbol* s) {
    const Value& v = s->value;
    return v.tag() == Tag::Subr && v.as<Subr>()->special ? v.as<Subr>() : nullptr;
  }
  template <class N>
  std::unique_ptr<N> special(const Value& form, Symbol* head, const Subr* sub) {
    auto n = std::make_unique<N>();
    n->form = form;
    n->head = head;
    n->expected = sub;
    return n;
  }
  NodePtr compileSpecial(const Value& form, Symbol* head, const Subr* sub);
  template <size_t N>
  static NodePtr fixedCall(const Value& form, Symbol* head, Operands& args) {
    auto call = std::make_unique<CallNodeN<N>>();
    call->form = form;
    call->head = head;
    for (size_t i = 0; i < N; ++i) call->args[i] = std::move(args[i]);
    return call;
  }
  int depth_ = 0;
};

bool Compiler::compileList(const Value& forms, Nodes* out) {
  const Value* p = &forms;
  for (; p->isCons(); p = &p->as<Cons>()->cdr) out->push_back(compile(p->as<Cons>()->car));
  return p->isNil();
}

Operand Compiler::operand(const Value& form) {
  Operand o;
  if (form.isSym()) {
    o.sym = form.asSym();
  } else if (form.isCons()) {
    o.node = compile(form);
  } else {
    o.constant = form;
  }
  return o;
}

bool Compiler::compileOperands(const Value& forms, Operands* out) {
  const Value* p = &forms;
  for (; p->isCons(); p = &p->as<Cons>()->cdr) out->push_back(operand(p->as<Cons>()->car));
  return p->isNil();
}

NodePtr Compiler::compile(const Value& form) {
  switch (form.tag()) {
    case Tag::Sym: return std::make_unique<VarNode>(form.asSym());
    case Tag::Cons: break;
    default: return std::make_unique<ConstNode>(form);
  }
  // Very deep code is left to the ordinary evaluator rather than compiled
  // by deep recursion here.
  if (depth_ > 200) return std::make_unique<FormNode>(form);
  struct Depth {
    int& d;
    ~Depth() { --d; }
  } depth{++depth_};
  const Value& head = car(form);
  if (!head.isSym()) return std::make_unique<FormNode>(form);
  Symbol* h = head.asSym();
  if (const Subr* sub = specialOf(h)) return compileSpecial(form, h, sub);
  Operands args;
  if (!compileOperands(cdr(form), &args)) return std::make_unique<FormNode>(form);
  switch (args.size()) {
    case 1: return fixedCall<1>(form, h, args);
    case 2: return fixedCall<2>(form, h, args);
    case 3: return fixedCall<3>(form, h, args);
    default: break;
  }
  auto call = std::make_unique<CallNode>();
  call->form = form;
  call->head = h;
  call->args = std::move(args);
  return call;
}

NodePtr Compiler::compileSpecial(const Value& form, Symbol* head, const Subr* sub) {
  const std::string& name = head->name;
  const Value& args = cdr(form);
  size_t n = listLength(args);
  const Value* rest = &args;
  for (size_t i = 0; i < n; ++i) rest = &cdr(*rest);
  bool proper = rest->isNil();
  auto fallback = [&form]() -> NodePtr { return std::make_unique<FormNode>(form); };
  // Each form is compiled only in the shape its special form accepts; any
  // other shape keeps its ordinary evaluation, which reports the error.
  if (!proper) return fallback();
  if (name == "QUOTE" && n == 1) {
    auto q = special<QuoteNode>(form, head, sub);
    q->v = car(args);
    return q;
  }
  if (name == "IF" && (n == 2 || n == 3)) {
    auto x = special<IfNode>(form, head, sub);
    x->test = operand(car(args));
    x->then = operand(car(cdr(args)));
    if (n == 3) x->otherwise = operand(car(cdr(cdr(args))));
    return x;
  }
  if (name == "SETQ" && n >= 2 && n % 2 == 0) {
    auto x = special<SetqNode>(form, head, sub);
    for (const Value* p = &args; p->isCons(); p = &cdr(cdr(*p))) {
      if (!car(*p).isSym()) return fallback();
      x->pairs.emplace_back(car(*p).asSym(), operand(car(cdr(*p))));
    }
    return x;
  }
  if (name == "PROGN") {
    auto x = special<PrognNode>(form, head, sub);
    compileList(args, &x->body);
    return x;
  }
  if (name == "WHILE" && n >= 1) {
    auto x = special<WhileNode>(form, head, sub);
    x->test = compile(car(args));
    compileList(cdr(args), &x->body);
    return x;
  }
  if (name == "AND" || name == "OR") {
    auto x = special<AndOrNode>(form, head, sub);
    x->isAnd = name == "AND";
    compileList(args, &x->parts);
    return x;
  }
  if (name == "COND") {
    auto x = special<CondNode>(form, head, sub);
    for (const Value* p = &args; p->isCons(); p = &p->as<Cons>()->cdr) {
      const Value& clause = p->as<Cons>()->car;
      if (!clause.isCons() || listLength(clause) == 0) return fallback();
      CondNode::Clause c;
      c.test = compile(car(clause));
      if (!compileList(cdr(clause), &c.body)) return fallback();
      x->clauses.push_back(std::move(c));
    }
    return x;
  }
  if (name == "REPEAT" && n >= 1) {
    auto x = special<RepeatNode>(form, head, sub);
    x->count = compile(car(args));
    compileList(cdr(args), &x->body);
    return x;
  }
  if (name == "FOREACH" && n >= 2 && car(args).isSym()) {
    auto x = special<ForeachNode>(form, head, sub);
    x->var = car(args).asSym();
    x->items = compile(car(cdr(args)));
    compileList(cdr(cdr(args)), &x->body);
    return x;
  }
  return fallback();
}

}  // namespace

Usubr::~Usubr() { delete compiled; }

Value runCompiled(Interp& in, Usubr* u) {
  if (!u->compiled) {
    auto body = std::make_unique<CompiledBody>();
    Compiler c;
    if (!c.compileList(u->body, &body->forms)) return in.progn(u->body);
    u->compiled = body.release();
  }
  return runAll(in, u->compiled->forms);
}

}  // namespace zepk::lisp
