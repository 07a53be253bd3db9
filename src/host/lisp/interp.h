// The interpreter: evaluation with dynamic scope, errors and *error*, the
// output of the command line, and loading of files and text.
//
// Variables are bound shallowly: a symbol holds its current value, and a
// call saves the old values of its parameters and locals on a stack and puts
// them back when it returns or unwinds. Lookup is one pointer read.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/lisp/value.h"

namespace zepk::lisp {

// An error that vl-catch-all-apply can catch: thrown only while a catch is
// active. Without one, the error is reported at the place it happened (where
// the locals of the failing program are still bound, so that its *error*
// sees them) and then LispAbort unwinds to the top level.
struct LispError {
  std::u16string message;
};
struct LispAbort {};
// vl-exit-with-value: unwinds to the nearest top-level call with a value.
struct LispExitWithValue {
  Value value;
};

// Where the command line's output goes. Tracks the column so that a value or
// an error can start on a fresh line.
class Output {
 public:
  virtual ~Output() = default;
  void write(std::u16string_view s);
  void write(std::string_view utf8);
  // Starts a new line unless the cursor is at the start of one.
  void freshLine();
  int column() const { return column_; }

 protected:
  virtual void emit(std::string_view utf8) = 0;

 private:
  int column_ = 0;
};

class StdoutOutput : public Output {
 protected:
  void emit(std::string_view utf8) override;
};

class StringOutput : public Output {
 public:
  std::string text;

 protected:
  void emit(std::string_view utf8) override { text.append(utf8); }
};

class Interp {
 public:
  Interp();
  ~Interp();
  Interp(const Interp&) = delete;
  Interp& operator=(const Interp&) = delete;

  // The interpreter the host is running. The bridge and the host's services
  // reach it through here.
  static Interp* current();

  Value eval(const Value& form) {
    switch (form.tag()) {
      case Tag::Sym: return form.asSym()->value;
      case Tag::Cons: return evalForm(form);
      default: return form;
    }
  }
  // Calls a function value (a symbol naming one, a built-in, a defun'd
  // function, a compiled function or a lambda list) on evaluated arguments.
  Value apply(const Value& fn, ArgSpan args);
  Value apply(const Value& fn, const std::vector<Value>& args) { return apply(fn, ArgSpan{args.data(), args.size()}); }

  // Raises a LISP error with the host's message text (without "; error: ").
  [[noreturn]] void fail(std::u16string_view message);
  [[noreturn]] void fail(std::string_view utf8);
  // "bad argument type: <pred> <value>"; pred includes its colon where the
  // host prints one ("numberp:").
  [[noreturn]] void badType(std::string_view pred, const Value& v);

  // Top-level entry points. Each catches every LISP error (after printing
  // it) and never throws. They return false when an error occurred.
  bool evalText(std::u16string_view text, Value* last = nullptr, std::u16string_view source = u"");
  // Evaluates every expression of a text and gives the last value; errors
  // propagate as from any other evaluation (load works this way). A reader
  // error names its place, and the source when one is given.
  Value evalAll(std::u16string_view text, std::u16string_view source = u"");
  bool loadFile(const std::string& path, Value* last = nullptr);
  // Runs a function from outside any LISP evaluation (the bridge's
  // acedInvoke, the command processor): errors are reported and false
  // returned.
  bool callTop(const Value& fn, const std::vector<Value>& args, Value* result);

  // Output of the command line.
  Output& out() { return *out_; }
  void setOutput(Output* o) { out_ = o ? o : &stdout_; }

  // Registration of built-ins.
  void defSubr(std::string_view name, SubrFn fn);
  void defSpecial(std::string_view name, SpecialFn fn);
  void setVar(std::string_view name, Value v) { intern(name)->value = std::move(v); }
  Value getVar(std::string_view name) const;

  // Host hooks set by the areas above the interpreter. A compiled function
  // defined through the bridge is called through callExrx; system variables
  // needed by formatting (LUNITS, LUPREC, AUNITS, AUPREC, DIMZIN...) come
  // through sysvar, which returns nil for an unknown name.
  Value (*callExrx)(Interp&, Exrx*, ArgSpan) = nullptr;
  std::function<Value(std::string_view)> sysvar;
  int sysvarInt(std::string_view name, int fallback);

  // Expressions queued by the bridge, run when the command line is idle.
  std::vector<std::u16string> queued;
  void runQueued();

  // Depth of nested vl-catch-all-apply calls.
  int catchDepth = 0;
  // Limit on nested evaluation, so that runaway recursion is an error and
  // not a crash.
  int maxDepth = 6000;

  // Binding of dynamic variables for a call.
  struct Binding {
    Symbol* sym;
    Value saved;
  };
  size_t bindMark() const { return bindings_.size(); }
  void bind(Symbol* s, Value v) {
    bindings_.push_back(Binding{s, std::move(s->value)});
    s->value = std::move(v);
  }
  void unbindTo(size_t mark) {
    while (bindings_.size() > mark) {
      Binding& b = bindings_.back();
      b.sym->value = std::move(b.saved);
      bindings_.pop_back();
    }
  }

  // Top-level evaluations under way (evalText, loadFile, callTop): 0 when
  // no LISP runs, as between the command line's expressions.
  int running() const { return running_; }

  // Stack of evaluated arguments, used by calls so that no call allocates.
  Value* argTop() { return argTop_; }

 private:
  friend struct EvalAccess;
  Value evalForm(const Value& form);
  Value callUsubr(Usubr* u, ArgSpan args);
  Value callLambdaList(const Value& fn, ArgSpan args);
  Value evalArgsAndCall(const Value& fn, const Value& argForms, const Value& head);
  void pushArgs(const Value& argForms);
  [[noreturn]] void failNoFunction(const std::string& name);
  [[noreturn]] void failBadFunction(const Value& v);
  [[noreturn]] void failArgCount(bool tooFew);
  void reportError(std::u16string_view message);
  template <class F>
  bool topLevel(F&& f, Value* result);

  StdoutOutput stdout_;
  Output* out_ = &stdout_;
  std::vector<Binding> bindings_;
  std::vector<Subr*> subrs_;
  Value* argBase_ = nullptr;
  Value* argTop_ = nullptr;
  Value* argEnd_ = nullptr;
  int depth_ = 0;
  int running_ = 0;
  bool inErrorHandler_ = false;
  Interp* previous_ = nullptr;

 public:
  // Shared by the special forms.
  Value progn(const Value& forms);
  bool inErrorHandler() const { return inErrorHandler_; }
  // Prints an error as the default handler does, without calling *error*.
  void printError(std::u16string_view message);
};

// Argument checks shared by the built-ins. Each raises the host's error.
void checkArgc(Interp& in, ArgSpan a, size_t min, size_t max);
int32_t argInt(Interp& in, const Value& v);          // fixnump:
double argNum(Interp& in, const Value& v);           // numberp:
const std::u16string& argStr(Interp& in, const Value& v);  // stringp
Symbol* argSym(Interp& in, const Value& v);          // symbolp
const Value& argList(Interp& in, const Value& v);   // listp
// A point: a list of two or three numbers.
bool toPoint(const Value& v, double p[3], int* dim = nullptr);
void argPoint(Interp& in, const Value& v, double p[3], int* dim = nullptr);  // 2D/3D point:

// Runs the compiled form of a function's body, compiling it first if
// needed.
Value runCompiled(Interp& in, Usubr* u);

// equal: structural, numbers within fuzz.
bool lispEqual(const Value& a, const Value& b, double fuzz);

// Source text from a file's bytes: UTF-8, with or without a byte-order
// mark, else the system code page.
std::u16string decodeSource(std::string_view bytes);

// List helpers.
size_t listLength(const Value& v);  // proper part only
std::vector<Value> listToVector(const Value& v);
Value pointValue(const double p[3], int dim);

}  // namespace zepk::lisp
