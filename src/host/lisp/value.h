// LISP values. A Value is a small tagged word: integers, reals and symbols
// are held directly, everything else is a reference-counted heap object.
// AutoLISP has no destructive list operations, so the heap cannot form
// cycles through conses; symbols are interned for the life of the process
// and are not counted, which keeps the one place where a cycle could appear
// (a symbol whose value holds the symbol) harmless.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zepk::lisp {

class Interp;
class Value;
struct Symbol;

enum class Tag : uint8_t {
  Nil,
  Int,
  Real,
  Sym,
  // Heap objects, counted.
  Str,
  Cons,
  Ename,
  Pickset,
  File,
  Subr,
  Usubr,
  Exrx,
  CatchError,
};

struct Obj {
  uint32_t refs = 0;
  Tag tag;
  explicit Obj(Tag t) : tag(t) { ++live; }
  ~Obj() { --live; }
  // Heap objects alive now; tests use it to prove that programs leave
  // nothing behind.
  static inline size_t live = 0;
};

void destroyObj(Obj* o);

class Value {
 public:
  Value() : tag_(Tag::Nil), i_(0) {}
  static Value integer(int32_t v) {
    Value x;
    x.tag_ = Tag::Int;
    x.i_ = v;
    return x;
  }
  static Value real(double v) {
    Value x;
    x.tag_ = Tag::Real;
    x.r_ = v;
    return x;
  }
  static Value sym(Symbol* s) {
    Value x;
    x.tag_ = Tag::Sym;
    x.s_ = s;
    return x;
  }
  // Takes a new reference to o (which may be freshly made with refs == 0).
  static Value obj(Obj* o) {
    Value x;
    x.tag_ = o->tag;
    x.o_ = o;
    ++o->refs;
    return x;
  }

  Value(const Value& v) : tag_(v.tag_), i64_(v.i64_) {
    if (isHeap()) ++o_->refs;
  }
  Value(Value&& v) noexcept : tag_(v.tag_), i64_(v.i64_) { v.tag_ = Tag::Nil; }
  Value& operator=(const Value& v) {
    if (v.isHeap()) ++v.o_->refs;
    release();
    tag_ = v.tag_;
    i64_ = v.i64_;
    return *this;
  }
  Value& operator=(Value&& v) noexcept {
    if (this != &v) {
      release();
      tag_ = v.tag_;
      i64_ = v.i64_;
      v.tag_ = Tag::Nil;
    }
    return *this;
  }
  ~Value() { release(); }

  Tag tag() const { return tag_; }
  bool isNil() const { return tag_ == Tag::Nil; }
  bool truthy() const { return tag_ != Tag::Nil; }
  bool isInt() const { return tag_ == Tag::Int; }
  bool isReal() const { return tag_ == Tag::Real; }
  bool isNumber() const { return tag_ == Tag::Int || tag_ == Tag::Real; }
  bool isSym() const { return tag_ == Tag::Sym; }
  bool isStr() const { return tag_ == Tag::Str; }
  bool isCons() const { return tag_ == Tag::Cons; }
  // nil or a cons: what AutoLISP calls a list.
  bool isList() const { return tag_ == Tag::Nil || tag_ == Tag::Cons; }
  bool isHeap() const { return tag_ >= Tag::Str; }

  int32_t asInt() const { return i_; }
  double asReal() const { return r_; }
  double asNumber() const { return tag_ == Tag::Int ? static_cast<double>(i_) : r_; }
  Symbol* asSym() const { return s_; }
  Obj* asObj() const { return o_; }
  template <class T>
  T* as() const {
    return static_cast<T*>(o_);
  }
  // Identity, as eq tests it: the same heap object, the same symbol, or the
  // same immediate number.
  bool identical(const Value& v) const;

 private:
  void release() {
    if (isHeap() && --o_->refs == 0) destroyObj(o_);
  }
  Tag tag_;
  union {
    int32_t i_;
    double r_;
    Symbol* s_;
    Obj* o_;
    int64_t i64_;
  };
};

struct Cons : Obj {
  Value car, cdr;
  Cons(Value a, Value d) : Obj(Tag::Cons), car(std::move(a)), cdr(std::move(d)) {}
};

struct String : Obj {
  std::u16string s;
  explicit String(std::u16string v) : Obj(Tag::Str), s(std::move(v)) {}
};

// Entity and selection-set names carry the host's two-word name. A pickset's
// last reference going away tells the host through releasePickset, so that
// its selection set is freed as the host frees unreferenced sets.
struct Ename : Obj {
  int64_t name[2];
  Ename(int64_t a, int64_t b) : Obj(Tag::Ename), name{a, b} {}
};
// A set has one LISP object at a time (picksetValue finds it), so that the
// host frees the set only when the last reference to it goes.
struct Pickset : Obj {
  int64_t name[2];
  Pickset(int64_t a, int64_t b);
  ~Pickset();
  Pickset(const Pickset&) = delete;
  Pickset& operator=(const Pickset&) = delete;
};
extern void (*releasePickset)(const int64_t name[2]);
// The LISP object of the selection set of that name: the live one when
// there is one, else a new one.
Value picksetValue(const int64_t name[2]);

struct FileObj : Obj {
  std::FILE* fp = nullptr;
  std::u16string name;
  char mode = 'r';  // 'r', 'w' or 'a'
  FileObj() : Obj(Tag::File) {}
  ~FileObj();
};

using Args = std::vector<Value>;
struct ArgSpan {
  const Value* data;
  size_t size;
  const Value& operator[](size_t i) const { return data[i]; }
  const Value* begin() const { return data; }
  const Value* end() const { return data + size; }
};

// A function written in C++. A special form receives its argument forms
// unevaluated, as one list; an ordinary built-in receives evaluated values.
using SubrFn = Value (*)(Interp&, ArgSpan);
using SpecialFn = Value (*)(Interp&, const Value& forms);
struct Subr : Obj {
  std::string name;
  SubrFn fn = nullptr;
  SpecialFn special = nullptr;
  Subr() : Obj(Tag::Subr) {}
};

// A function defined in LISP (defun, lambda). Its body is also kept in a
// compiled form, made on its second call (see compile.h).
struct CompiledBody;
struct Usubr : Obj {
  std::string name;  // empty for an anonymous lambda
  std::vector<Symbol*> params;
  std::vector<Symbol*> locals;
  Value body;  // list of forms
  uint32_t calls = 0;
  CompiledBody* compiled = nullptr;
  Usubr() : Obj(Tag::Usubr) {}
  ~Usubr();
  Usubr(const Usubr&) = delete;
  Usubr& operator=(const Usubr&) = delete;
};

// A function defined by compiled code through the bridge.
struct Exrx : Obj {
  std::string name;
  int code = 0;
  Exrx() : Obj(Tag::Exrx) {}
};

// What vl-catch-all-apply returns when the call failed.
struct CatchError : Obj {
  std::u16string message;
  explicit CatchError(std::u16string m) : Obj(Tag::CatchError), message(std::move(m)) {}
};

struct Symbol {
  std::string name;  // upper case, UTF-8
  Value value;
  bool isConstant = false;  // nil, T, pi and the like refuse setq
};

// Interned symbols, case-insensitive (ASCII letters fold to upper case).
Symbol* intern(std::string_view name);
Symbol* findSymbol(std::string_view name);
std::vector<Symbol*> allSymbols();

// Constructors.
inline Value cons(Value a, Value d) { return Value::obj(new Cons(std::move(a), std::move(d))); }
inline Value str(std::u16string s) { return Value::obj(new String(std::move(s))); }
Value str(std::string_view utf8);
inline Value sym(std::string_view name) { return Value::sym(intern(name)); }
Value list(std::initializer_list<Value> items);
Value listFrom(std::vector<Value> items, Value tail = Value());

// Accessors that assume the shape was checked.
inline const Value& car(const Value& v) { return v.isCons() ? v.as<Cons>()->car : v; }
inline const Value& cdr(const Value& v) {
  static const Value nil;
  return v.isCons() ? v.as<Cons>()->cdr : nil;
}

extern Symbol* symT;
extern Symbol* symNil;
extern Symbol* symQuote;
extern Symbol* symLambda;
extern Symbol* symFunction;
// The null symbol: what (princ) returns so that the command line prints
// nothing after a program that ends with it.
extern Symbol* symVoid;
inline Value voidValue() { return Value::sym(symVoid); }
inline bool isVoid(const Value& v) { return v.isSym() && v.asSym() == symVoid; }
inline Value T() { return Value::sym(symT); }
inline Value boolean(bool b) { return b ? T() : Value(); }

}  // namespace zepk::lisp
