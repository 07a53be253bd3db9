#include "host/lisp/value.h"

#include <memory>
#include <unordered_map>

#include "host/system/utf.h"

namespace zepk::lisp {

void (*releasePickset)(const int64_t name[2]) = nullptr;

namespace {
struct NameHash {
  size_t operator()(const std::pair<int64_t, int64_t>& n) const noexcept {
    return std::hash<int64_t>()(n.first) * 31 + std::hash<int64_t>()(n.second);
  }
};
// The live selection-set objects by name.
std::unordered_map<std::pair<int64_t, int64_t>, Pickset*, NameHash>& picksets() {
  static auto* m = new std::unordered_map<std::pair<int64_t, int64_t>, Pickset*, NameHash>;
  return *m;
}
}  // namespace

Pickset::Pickset(int64_t a, int64_t b) : Obj(Tag::Pickset), name{a, b} { picksets()[{a, b}] = this; }

Pickset::~Pickset() {
  auto it = picksets().find({name[0], name[1]});
  if (it != picksets().end() && it->second == this) picksets().erase(it);
}

Value picksetValue(const int64_t name[2]) {
  auto it = picksets().find({name[0], name[1]});
  if (it != picksets().end()) return Value::obj(it->second);
  return Value::obj(new Pickset(name[0], name[1]));
}

FileObj::~FileObj() {
  if (fp) std::fclose(fp);
}

bool Value::identical(const Value& v) const {
  if (tag_ != v.tag_) return false;
  switch (tag_) {
    case Tag::Nil: return true;
    case Tag::Int: return i_ == v.i_;
    case Tag::Real: return r_ == v.r_;
    case Tag::Sym: return s_ == v.s_;
    // An entity name is the host's name of the entity: two LISP objects
    // that hold one name are one entity, as eq sees them in the host.
    case Tag::Ename:
      return o_ == v.o_ || (as<Ename>()->name[0] == v.as<Ename>()->name[0] && as<Ename>()->name[1] == v.as<Ename>()->name[1]);
    default: return o_ == v.o_;
  }
}

namespace {

// Frees one object whose count reached zero. Children whose count drops to
// zero in turn are queued rather than freed recursively, so that a list of
// a million conses (or a deeply nested one) is released without deep
// recursion.
thread_local std::vector<Obj*>* pending = nullptr;

void freeOne(Obj* o, std::vector<Obj*>& queue) {
  auto drop = [&queue](Value& v) {
    if (v.isHeap()) {
      Obj* c = v.asObj();
      if (c->refs == 1) {
        // Steal the last reference: forget it in v without releasing.
        new (&v) Value();  // v now nil; the object is ours to free
        queue.push_back(c);
      } else {
        v = Value();
      }
    }
  };
  switch (o->tag) {
    case Tag::Cons: {
      auto* c = static_cast<Cons*>(o);
      drop(c->car);
      drop(c->cdr);
      delete c;
      break;
    }
    case Tag::Str: delete static_cast<String*>(o); break;
    case Tag::Ename: delete static_cast<Ename*>(o); break;
    case Tag::Pickset: {
      auto* p = static_cast<Pickset*>(o);
      if (releasePickset) releasePickset(p->name);
      delete p;
      break;
    }
    case Tag::File: delete static_cast<FileObj*>(o); break;
    case Tag::Subr: delete static_cast<Subr*>(o); break;
    case Tag::Usubr: {
      auto* u = static_cast<Usubr*>(o);
      drop(u->body);
      delete u;
      break;
    }
    case Tag::Exrx: delete static_cast<Exrx*>(o); break;
    case Tag::CatchError: delete static_cast<CatchError*>(o); break;
    default: break;
  }
}

}  // namespace

void destroyObj(Obj* o) {
  if (pending) {
    // Already inside a release loop: queue it.
    pending->push_back(o);
    return;
  }
  std::vector<Obj*> queue;
  pending = &queue;
  queue.push_back(o);
  while (!queue.empty()) {
    Obj* next = queue.back();
    queue.pop_back();
    freeOne(next, queue);
  }
  pending = nullptr;
}

namespace {

struct SymbolTable {
  std::unordered_map<std::string, std::unique_ptr<Symbol>> map;
};

SymbolTable& table() {
  static auto* t = new SymbolTable;  // lives for the process; symbols are never freed
  return *t;
}

std::string foldName(std::string_view name) {
  std::string s(name);
  for (char& c : s)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  return s;
}

}  // namespace

Symbol* intern(std::string_view name) {
  auto& t = table();
  std::string key = foldName(name);
  auto it = t.map.find(key);
  if (it != t.map.end()) return it->second.get();
  auto s = std::make_unique<Symbol>();
  s->name = key;
  Symbol* p = s.get();
  t.map.emplace(std::move(key), std::move(s));
  return p;
}

Symbol* findSymbol(std::string_view name) {
  auto& t = table();
  auto it = t.map.find(foldName(name));
  return it == t.map.end() ? nullptr : it->second.get();
}

std::vector<Symbol*> allSymbols() {
  std::vector<Symbol*> out;
  for (auto& [k, v] : table().map) out.push_back(v.get());
  return out;
}

Symbol* symT = intern("T");
Symbol* symNil = intern("NIL");
Symbol* symQuote = intern("QUOTE");
Symbol* symLambda = intern("LAMBDA");
Symbol* symFunction = intern("FUNCTION");
Symbol* symVoid = intern("");

Value str(std::string_view utf8) { return str(sys::fromUtf8(utf8)); }

Value list(std::initializer_list<Value> items) {
  std::vector<Value> v(items);
  return listFrom(std::move(v));
}

Value listFrom(std::vector<Value> items, Value tail) {
  Value out = std::move(tail);
  for (auto it = items.rbegin(); it != items.rend(); ++it) out = cons(std::move(*it), std::move(out));
  return out;
}

}  // namespace zepk::lisp
