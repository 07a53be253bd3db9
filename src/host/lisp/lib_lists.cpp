// Lists: access, construction, search, sorting and the higher-order list
// functions of the vl- family.
#include <algorithm>
#include <cmath>

#include "host/lisp/interp.h"
#include "host/lisp/printer.h"
#include "host/system/utf.h"

namespace zepk::lisp {

bool lispEqual(const Value& a, const Value& b, double fuzz) {
  if (a.isNumber() && b.isNumber()) {
    if (a.isInt() && b.isInt()) return std::abs(static_cast<double>(a.asInt()) - b.asInt()) <= fuzz;
    return std::abs(a.asNumber() - b.asNumber()) <= fuzz;
  }
  if (a.tag() != b.tag()) return false;
  switch (a.tag()) {
    case Tag::Str: return a.as<String>()->s == b.as<String>()->s;
    case Tag::Cons: {
      const Value* p = &a;
      const Value* q = &b;
      while (p->isCons() && q->isCons()) {
        if (!lispEqual(p->as<Cons>()->car, q->as<Cons>()->car, fuzz)) return false;
        p = &p->as<Cons>()->cdr;
        q = &q->as<Cons>()->cdr;
      }
      return lispEqual(*p, *q, fuzz);
    }
    case Tag::Ename: return a.as<Ename>()->name[0] == b.as<Ename>()->name[0] && a.as<Ename>()->name[1] == b.as<Ename>()->name[1];
    case Tag::Pickset:
      return a.as<Pickset>()->name[0] == b.as<Pickset>()->name[0] && a.as<Pickset>()->name[1] == b.as<Pickset>()->name[1];
    default: return a.identical(b);
  }
}

namespace {

const Value& consArg(Interp& in, const Value& v) {
  if (!v.isList()) in.badType("consp", v);
  return v;
}

// car/cdr compositions: path is read right to left, 'a' for car, 'd' for cdr.
template <char... Path>
Value cxr(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  Value v = a[0];
  constexpr char path[] = {Path...};
  for (int i = static_cast<int>(sizeof...(Path)) - 1; i >= 0; --i) {
    consArg(in, v);
    if (v.isNil()) return Value();
    Value next = path[i] == 'a' ? v.as<Cons>()->car : v.as<Cons>()->cdr;
    v = std::move(next);
  }
  return v;
}

Value fnCons(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  return cons(a[0], a[1]);
}

Value fnList(Interp& in, ArgSpan a) {
  Value out;
  for (size_t i = a.size; i-- > 0;) out = cons(a[i], std::move(out));
  return out;
}

// (vl-list* a b ... tail): like list, with the last argument as the tail.
Value fnListStar(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, SIZE_MAX);
  Value out = a[a.size - 1];
  for (size_t i = a.size - 1; i-- > 0;) out = cons(a[i], std::move(out));
  return out;
}

Value fnAppend(Interp& in, ArgSpan a) {
  if (a.size == 0) return Value();
  for (size_t i = 0; i < a.size; ++i) argList(in, a[i]);
  std::vector<Value> items;
  for (size_t i = 0; i + 1 < a.size; ++i)
    for (const Value* p = &a[i]; p->isCons(); p = &p->as<Cons>()->cdr) items.push_back(p->as<Cons>()->car);
  return listFrom(std::move(items), a[a.size - 1]);
}

// Length of a proper list; a dotted list is a "bad list".
size_t properLength(Interp& in, const Value& v) {
  argList(in, v);
  size_t n = 0;
  const Value* p = &v;
  for (; p->isCons(); p = &p->as<Cons>()->cdr) ++n;
  if (!p->isNil()) in.fail(u"bad list: " + prin1String(v));
  return n;
}

Value fnLength(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return Value::integer(static_cast<int32_t>(properLength(in, a[0])));
}

Value fnListLength(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  argList(in, a[0]);
  size_t n = 0;
  const Value* p = &a[0];
  for (; p->isCons(); p = &p->as<Cons>()->cdr) ++n;
  if (!p->isNil()) return Value();
  return Value::integer(static_cast<int32_t>(n));
}

Value fnReverse(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  properLength(in, a[0]);
  Value out;
  for (const Value* p = &a[0]; p->isCons(); p = &p->as<Cons>()->cdr) out = cons(p->as<Cons>()->car, std::move(out));
  return out;
}

Value fnNth(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  int32_t n = argInt(in, a[0]);
  argList(in, a[1]);
  if (n < 0) return Value();
  const Value* p = &a[1];
  for (; n > 0 && p->isCons(); --n) p = &p->as<Cons>()->cdr;
  return p->isCons() ? p->as<Cons>()->car : Value();
}

Value fnLast(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  argList(in, a[0]);
  const Value* p = &a[0];
  if (!p->isCons()) return Value();
  while (p->as<Cons>()->cdr.isCons()) p = &p->as<Cons>()->cdr;
  return p->as<Cons>()->car;
}

Value fnMember(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  argList(in, a[1]);
  for (const Value* p = &a[1]; p->isCons(); p = &p->as<Cons>()->cdr)
    if (lispEqual(a[0], p->as<Cons>()->car, 0.0)) return *p;
  return Value();
}

Value fnAssoc(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  argList(in, a[1]);
  for (const Value* p = &a[1]; p->isCons(); p = &p->as<Cons>()->cdr) {
    const Value& item = p->as<Cons>()->car;
    if (item.isCons() && lispEqual(a[0], item.as<Cons>()->car, 0.0)) return item;
  }
  return Value();
}

// (subst new old list): a copy of the list with each top-level member equal
// to old replaced by new.
Value fnSubst(Interp& in, ArgSpan a) {
  checkArgc(in, a, 3, 3);
  if (!a[2].isCons()) return a[2];
  std::vector<Value> items;
  const Value* p = &a[2];
  for (; p->isCons(); p = &p->as<Cons>()->cdr) {
    const Value& x = p->as<Cons>()->car;
    items.push_back(lispEqual(x, a[1], 0.0) ? a[0] : x);
  }
  return listFrom(std::move(items), *p);
}

Value fnRemove(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  argList(in, a[1]);
  std::vector<Value> items;
  for (const Value* p = &a[1]; p->isCons(); p = &p->as<Cons>()->cdr)
    if (!lispEqual(a[0], p->as<Cons>()->car, 0.0)) items.push_back(p->as<Cons>()->car);
  return listFrom(std::move(items));
}

Value callPred(Interp& in, const Value& fn, const Value& x) { return in.apply(fn, ArgSpan{&x, 1}); }

template <bool Keep>
Value removeIf(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  argList(in, a[1]);
  std::vector<Value> items;
  for (const Value* p = &a[1]; p->isCons(); p = &p->as<Cons>()->cdr) {
    const Value& x = p->as<Cons>()->car;
    if (callPred(in, a[0], x).truthy() == Keep) items.push_back(x);
  }
  return listFrom(std::move(items));
}

template <bool Want>
Value memberIf(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  argList(in, a[1]);
  for (const Value* p = &a[1]; p->isCons(); p = &p->as<Cons>()->cdr)
    if (callPred(in, a[0], p->as<Cons>()->car).truthy() == Want) return *p;
  return Value();
}

Value fnPosition(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  argList(in, a[1]);
  int32_t i = 0;
  for (const Value* p = &a[1]; p->isCons(); p = &p->as<Cons>()->cdr, ++i)
    if (lispEqual(a[0], p->as<Cons>()->car, 0.0)) return Value::integer(i);
  return Value();
}

// (vl-some pred list...) and (vl-every pred list...): the predicate on the
// members in step, until the shortest list ends.
template <bool Every>
Value someEvery(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, SIZE_MAX);
  std::vector<const Value*> lists;
  for (size_t i = 1; i < a.size; ++i) lists.push_back(&argList(in, a[i]));
  std::vector<Value> args(lists.size());
  for (;;) {
    for (size_t i = 0; i < lists.size(); ++i) {
      if (!lists[i]->isCons()) return Every ? T() : Value();
      args[i] = lists[i]->as<Cons>()->car;
      lists[i] = &lists[i]->as<Cons>()->cdr;
    }
    Value r = in.apply(a[0], args);
    if (Every && !r.truthy()) return Value();
    if (!Every && r.truthy()) return r;
  }
}

// Sorting. The comparison function says whether its first argument goes
// before its second. A stable merge sort is used so that an inconsistent
// comparison cannot break the sort.
std::vector<size_t> sortedOrder(Interp& in, const std::vector<Value>& items, const Value& fn) {
  std::vector<size_t> order(items.size());
  for (size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(), [&](size_t x, size_t y) {
    Value pair[2] = {items[x], items[y]};
    return in.apply(fn, ArgSpan{pair, 2}).truthy();
  });
  return order;
}

// vl-sort drops members that are the very same atom as their neighbour after
// sorting (integers, symbols, the same object), as the host's does; reals
// and distinct strings stay.
Value fnSort(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  argList(in, a[0]);
  std::vector<Value> items = listToVector(a[0]);
  std::vector<size_t> order = sortedOrder(in, items, a[1]);
  std::vector<Value> out;
  for (size_t i : order) {
    const Value& x = items[i];
    if (!out.empty() && !x.isReal() && !x.isCons() && out.back().identical(x)) continue;
    out.push_back(x);
  }
  return listFrom(std::move(out));
}

Value fnSortI(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  argList(in, a[0]);
  std::vector<Value> items = listToVector(a[0]);
  std::vector<size_t> order = sortedOrder(in, items, a[1]);
  std::vector<Value> out;
  for (size_t i : order) out.push_back(Value::integer(static_cast<int32_t>(i)));
  return listFrom(std::move(out));
}

// acad_strlsort: a list of strings in alphabetical order; nil when a member
// is not a string.
Value fnStrlsort(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  argList(in, a[0]);
  std::vector<Value> items = listToVector(a[0]);
  for (const Value& v : items)
    if (!v.isStr()) return Value();
  auto key = [](const std::u16string& s) {
    std::u16string k = s;
    for (char16_t& c : k) c = sys::asciiUpper(c);
    return k;
  };
  std::stable_sort(items.begin(), items.end(), [&](const Value& x, const Value& y) {
    const std::u16string &sx = x.as<String>()->s, &sy = y.as<String>()->s;
    std::u16string kx = key(sx), ky = key(sy);
    if (kx != ky) return kx < ky;
    return sx < sy;
  });
  return listFrom(std::move(items));
}

Value fnEq(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  return boolean(a[0].identical(a[1]));
}

Value fnEqual(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 3);
  double fuzz = a.size == 3 ? argNum(in, a[2]) : 0.0;
  return boolean(lispEqual(a[0], a[1], std::abs(fuzz)));
}

}  // namespace

void registerLists(Interp& in) {
  in.defSubr("car", cxr<'a'>);
  in.defSubr("cdr", cxr<'d'>);
  in.defSubr("caar", cxr<'a', 'a'>);
  in.defSubr("cadr", cxr<'a', 'd'>);
  in.defSubr("cdar", cxr<'d', 'a'>);
  in.defSubr("cddr", cxr<'d', 'd'>);
  in.defSubr("caaar", cxr<'a', 'a', 'a'>);
  in.defSubr("caadr", cxr<'a', 'a', 'd'>);
  in.defSubr("cadar", cxr<'a', 'd', 'a'>);
  in.defSubr("caddr", cxr<'a', 'd', 'd'>);
  in.defSubr("cdaar", cxr<'d', 'a', 'a'>);
  in.defSubr("cdadr", cxr<'d', 'a', 'd'>);
  in.defSubr("cddar", cxr<'d', 'd', 'a'>);
  in.defSubr("cdddr", cxr<'d', 'd', 'd'>);
  in.defSubr("caaaar", cxr<'a', 'a', 'a', 'a'>);
  in.defSubr("caaadr", cxr<'a', 'a', 'a', 'd'>);
  in.defSubr("caadar", cxr<'a', 'a', 'd', 'a'>);
  in.defSubr("caaddr", cxr<'a', 'a', 'd', 'd'>);
  in.defSubr("cadaar", cxr<'a', 'd', 'a', 'a'>);
  in.defSubr("cadadr", cxr<'a', 'd', 'a', 'd'>);
  in.defSubr("caddar", cxr<'a', 'd', 'd', 'a'>);
  in.defSubr("cadddr", cxr<'a', 'd', 'd', 'd'>);
  in.defSubr("cdaaar", cxr<'d', 'a', 'a', 'a'>);
  in.defSubr("cdaadr", cxr<'d', 'a', 'a', 'd'>);
  in.defSubr("cdadar", cxr<'d', 'a', 'd', 'a'>);
  in.defSubr("cdaddr", cxr<'d', 'a', 'd', 'd'>);
  in.defSubr("cddaar", cxr<'d', 'd', 'a', 'a'>);
  in.defSubr("cddadr", cxr<'d', 'd', 'a', 'd'>);
  in.defSubr("cdddar", cxr<'d', 'd', 'd', 'a'>);
  in.defSubr("cddddr", cxr<'d', 'd', 'd', 'd'>);
  in.defSubr("cons", fnCons);
  in.defSubr("list", fnList);
  in.defSubr("vl-list*", fnListStar);
  in.defSubr("append", fnAppend);
  in.defSubr("length", fnLength);
  in.defSubr("vl-list-length", fnListLength);
  in.defSubr("reverse", fnReverse);
  in.defSubr("nth", fnNth);
  in.defSubr("last", fnLast);
  in.defSubr("member", fnMember);
  in.defSubr("assoc", fnAssoc);
  in.defSubr("subst", fnSubst);
  in.defSubr("vl-remove", fnRemove);
  in.defSubr("vl-remove-if", removeIf<false>);
  in.defSubr("vl-remove-if-not", removeIf<true>);
  in.defSubr("vl-member-if", memberIf<true>);
  in.defSubr("vl-member-if-not", memberIf<false>);
  in.defSubr("vl-position", fnPosition);
  in.defSubr("vl-some", someEvery<false>);
  in.defSubr("vl-every", someEvery<true>);
  in.defSubr("vl-sort", fnSort);
  in.defSubr("vl-sort-i", fnSortI);
  in.defSubr("acad_strlsort", fnStrlsort);
  in.defSubr("eq", fnEq);
  in.defSubr("equal", fnEqual);
}

}  // namespace zepk::lisp
