// Numbers: arithmetic with the host's 32-bit integers (which wrap) and
// doubles, comparisons, transcendental functions and bit operations.
#include <climits>
#include <cmath>
#include <numeric>

#include "host/lisp/interp.h"
#include "host/lisp/printer.h"
#include "host/system/utf.h"

namespace zepk::lisp {

namespace {

// Integer operations wrap at 32 bits, computed unsigned to stay defined.
int32_t wrapAdd(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b)); }
int32_t wrapSub(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b)); }
int32_t wrapMul(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b)); }

[[noreturn]] void undefinedFor(Interp& in, const Value& v) {
  in.fail(u"function undefined for argument: " + prin1String(v));
}

enum class Op { Add, Sub, Mul, Div };

Value arith(Interp& in, ArgSpan a, Op op) {
  if (a.size == 0) return Value::integer(0);
  const Value& first = a[0];
  argNum(in, first);
  if (a.size == 1) {
    if (op == Op::Sub) return first.isInt() ? Value::integer(wrapSub(0, first.asInt())) : Value::real(-first.asReal());
    return first;
  }
  bool isInt = first.isInt();
  int32_t iacc = isInt ? first.asInt() : 0;
  double racc = first.asNumber();
  for (size_t k = 1; k < a.size; ++k) {
    const Value& x = a[k];
    argNum(in, x);
    if (isInt && x.isInt()) {
      int32_t v = x.asInt();
      switch (op) {
        case Op::Add: iacc = wrapAdd(iacc, v); break;
        case Op::Sub: iacc = wrapSub(iacc, v); break;
        case Op::Mul: iacc = wrapMul(iacc, v); break;
        case Op::Div:
          if (v == 0) in.fail(std::u16string_view(u"divide by zero"));
          iacc = (iacc == INT32_MIN && v == -1) ? INT32_MIN : iacc / v;
          break;
      }
      racc = iacc;
      continue;
    }
    if (isInt) {
      isInt = false;
      racc = iacc;
    }
    double v = x.asNumber();
    switch (op) {
      case Op::Add: racc += v; break;
      case Op::Sub: racc -= v; break;
      case Op::Mul: racc *= v; break;
      case Op::Div:
        if (v == 0.0) in.fail(std::u16string_view(u"divide by zero"));
        racc /= v;
        break;
    }
  }
  return isInt ? Value::integer(iacc) : Value::real(racc);
}

Value fnAdd(Interp& in, ArgSpan a) {
  // The common case of two integers, without the general loop.
  if (a.size == 2 && a[0].isInt() && a[1].isInt()) return Value::integer(wrapAdd(a[0].asInt(), a[1].asInt()));
  return arith(in, a, Op::Add);
}
Value fnSub(Interp& in, ArgSpan a) {
  if (a.size == 2 && a[0].isInt() && a[1].isInt()) return Value::integer(wrapSub(a[0].asInt(), a[1].asInt()));
  return arith(in, a, Op::Sub);
}
Value fnMul(Interp& in, ArgSpan a) { return arith(in, a, Op::Mul); }
Value fnDiv(Interp& in, ArgSpan a) { return arith(in, a, Op::Div); }

Value fn1Plus(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  argNum(in, a[0]);
  return a[0].isInt() ? Value::integer(wrapAdd(a[0].asInt(), 1)) : Value::real(a[0].asReal() + 1.0);
}
Value fn1Minus(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  argNum(in, a[0]);
  return a[0].isInt() ? Value::integer(wrapSub(a[0].asInt(), 1)) : Value::real(a[0].asReal() - 1.0);
}

// (rem a b ...): remainder of a by b, then of that by the next.
Value fnRem(Interp& in, ArgSpan a) {
  if (a.size == 0) return Value::integer(0);
  Value acc = a[0];
  argNum(in, acc);
  for (size_t k = 1; k < a.size; ++k) {
    argNum(in, a[k]);
    if (acc.isInt() && a[k].isInt()) {
      int32_t d = a[k].asInt();
      if (d == 0) in.fail(std::u16string_view(u"divide by zero"));
      acc = Value::integer(d == -1 ? 0 : acc.asInt() % d);
    } else {
      double d = a[k].asNumber();
      if (d == 0.0) in.fail(std::u16string_view(u"divide by zero"));
      acc = Value::real(std::fmod(acc.asNumber(), d));
    }
  }
  return acc;
}

Value fnAbs(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  argNum(in, a[0]);
  if (a[0].isInt()) return Value::integer(a[0].asInt() < 0 ? wrapSub(0, a[0].asInt()) : a[0].asInt());
  return Value::real(std::fabs(a[0].asReal()));
}

template <bool Max>
Value minMax(Interp& in, ArgSpan a) {
  if (a.size == 0) return Value::integer(0);
  bool anyReal = false;
  size_t best = 0;
  for (size_t k = 0; k < a.size; ++k) {
    argNum(in, a[k]);
    anyReal |= a[k].isReal();
    if (k > 0 && (Max ? a[k].asNumber() > a[best].asNumber() : a[k].asNumber() < a[best].asNumber())) best = k;
  }
  return anyReal ? Value::real(a[best].asNumber()) : a[best];
}

Value fnGcd(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, SIZE_MAX);
  int64_t g = 0;
  for (const Value& v : a) {
    int32_t x = argInt(in, v);
    if (x <= 0) in.fail(u"bad argument value: positive " + prin1String(v));
    g = std::gcd(g, static_cast<int64_t>(x));
  }
  return Value::integer(static_cast<int32_t>(g));
}

Value fnSqrt(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  double x = argNum(in, a[0]);
  if (x < 0) undefinedFor(in, a[0]);
  return Value::real(std::sqrt(x));
}

Value fnExp(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return Value::real(std::exp(argNum(in, a[0])));
}

Value fnLog(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  double x = argNum(in, a[0]);
  if (x <= 0) undefinedFor(in, a[0]);
  return Value::real(std::log(x));
}

// (expt base power): integers give an integer (a negative power of an
// integer truncates, as integer division does); otherwise a real.
Value fnExpt(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  double b = argNum(in, a[0]);
  double p = argNum(in, a[1]);
  if (a[0].isInt() && a[1].isInt()) {
    int32_t base = a[0].asInt(), pw = a[1].asInt();
    if (pw < 0) {
      if (base == 0) in.fail(std::u16string_view(u"divide by zero"));
      if (base == 1) return Value::integer(1);
      if (base == -1) return Value::integer((pw & 1) ? -1 : 1);
      return Value::integer(0);
    }
    int32_t r = 1;
    while (pw > 0) {
      if (pw & 1) r = wrapMul(r, base);
      base = wrapMul(base, base);
      pw >>= 1;
    }
    return Value::integer(r);
  }
  double r = std::pow(b, p);
  if (std::isnan(r)) undefinedFor(in, a[0]);
  return Value::real(r);
}

Value fnSin(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return Value::real(std::sin(argNum(in, a[0])));
}
Value fnCos(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return Value::real(std::cos(argNum(in, a[0])));
}
Value fnAtan(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  double y = argNum(in, a[0]);
  if (a.size == 1) return Value::real(std::atan(y));
  return Value::real(std::atan2(y, argNum(in, a[1])));
}

// fix truncates toward zero; a real beyond the integer range stays a real,
// truncated.
Value fnFix(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  argNum(in, a[0]);
  if (a[0].isInt()) return a[0];
  double t = std::trunc(a[0].asReal());
  if (t >= -2147483648.0 && t <= 2147483647.0) return Value::integer(static_cast<int32_t>(t));
  return Value::real(t);
}

Value fnFloat(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return Value::real(argNum(in, a[0]));
}

Value fnMinusp(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return boolean(argNum(in, a[0]) < 0);
}
Value fnZerop(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return boolean(argNum(in, a[0]) == 0);
}
Value fnNumberp(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return boolean(a[0].isNumber());
}

// (boole op i1 i2 ...): op is a truth table; bit 8 for (0,0), 4 for (0,1),
// 2 for (1,0), 1 for (1,1).
Value fnBoole(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, SIZE_MAX);
  uint32_t op = static_cast<uint32_t>(argInt(in, a[0]));
  uint32_t acc = static_cast<uint32_t>(argInt(in, a[1]));
  for (size_t k = 2; k < a.size; ++k) {
    uint32_t b = static_cast<uint32_t>(argInt(in, a[k]));
    uint32_t r = 0;
    if (op & 8) r |= ~acc & ~b;
    if (op & 4) r |= ~acc & b;
    if (op & 2) r |= acc & ~b;
    if (op & 1) r |= acc & b;
    acc = r;
  }
  return Value::integer(static_cast<int32_t>(acc));
}

Value fnLogand(Interp& in, ArgSpan a) {
  uint32_t acc = 0xFFFFFFFFu;
  if (a.size == 0) return Value::integer(0);
  for (const Value& v : a) acc &= static_cast<uint32_t>(argInt(in, v));
  return Value::integer(static_cast<int32_t>(acc));
}

Value fnLogior(Interp& in, ArgSpan a) {
  uint32_t acc = 0;
  for (const Value& v : a) acc |= static_cast<uint32_t>(argInt(in, v));
  return Value::integer(static_cast<int32_t>(acc));
}

// (lsh int bits): shift left, or right (filling with zeros) for negative bits.
Value fnLsh(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 2);
  if (a.size == 0) return Value::integer(0);
  uint32_t v = static_cast<uint32_t>(argInt(in, a[0]));
  int32_t n = a.size == 2 ? argInt(in, a[1]) : 0;
  if (n >= 32 || n <= -32) return Value::integer(0);
  v = n >= 0 ? v << n : v >> (-n);
  return Value::integer(static_cast<int32_t>(v));
}

Value fnNot(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return Value::integer(~argInt(in, a[0]));
}

// Comparisons take numbers or strings (compared by character code).
int compare(Interp& in, const Value& x, const Value& y) {
  if (x.isNumber() && y.isNumber()) {
    if (x.isInt() && y.isInt()) return (x.asInt() > y.asInt()) - (x.asInt() < y.asInt());
    double a = x.asNumber(), b = y.asNumber();
    return (a > b) - (a < b);
  }
  if (x.isStr() && y.isStr()) {
    int c = x.as<String>()->s.compare(y.as<String>()->s);
    return (c > 0) - (c < 0);
  }
  const Value& bad = (x.isNumber() || x.isStr()) ? y : x;
  in.badType("numberp:", bad);
}

template <class Pred>
Value chain(Interp& in, ArgSpan a, Pred pred) {
  checkArgc(in, a, 1, SIZE_MAX);
  if (a.size == 1) {
    if (!a[0].isNumber() && !a[0].isStr()) in.badType("numberp:", a[0]);
    return T();
  }
  for (size_t k = 0; k + 1 < a.size; ++k)
    if (!pred(compare(in, a[k], a[k + 1]))) return Value();
  return T();
}

// = compares numbers or strings; other values are simply unequal.
Value fnNumEq(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, SIZE_MAX);
  for (size_t k = 0; k + 1 < a.size; ++k) {
    const Value &x = a[k], &y = a[k + 1];
    if ((x.isNumber() && y.isNumber()) || (x.isStr() && y.isStr())) {
      if (compare(in, x, y) != 0) return Value();
    } else if (!x.identical(y)) {
      return Value();
    }
  }
  return T();
}

Value fnNumNe(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, SIZE_MAX);
  for (size_t k = 0; k + 1 < a.size; ++k) {
    const Value &x = a[k], &y = a[k + 1];
    if ((x.isNumber() && y.isNumber()) || (x.isStr() && y.isStr())) {
      if (compare(in, x, y) == 0) return Value();
    } else if (x.identical(y)) {
      return Value();
    }
  }
  return T();
}

Value fnLt(Interp& in, ArgSpan a) {
  if (a.size == 2 && a[0].isInt() && a[1].isInt()) return boolean(a[0].asInt() < a[1].asInt());
  return chain(in, a, [](int c) { return c < 0; });
}
Value fnGt(Interp& in, ArgSpan a) {
  if (a.size == 2 && a[0].isInt() && a[1].isInt()) return boolean(a[0].asInt() > a[1].asInt());
  return chain(in, a, [](int c) { return c > 0; });
}
Value fnLe(Interp& in, ArgSpan a) {
  return chain(in, a, [](int c) { return c <= 0; });
}
Value fnGe(Interp& in, ArgSpan a) {
  return chain(in, a, [](int c) { return c >= 0; });
}

}  // namespace

void registerNumbers(Interp& in) {
  in.defSubr("+", fnAdd);
  in.defSubr("-", fnSub);
  in.defSubr("*", fnMul);
  in.defSubr("/", fnDiv);
  in.defSubr("1+", fn1Plus);
  in.defSubr("1-", fn1Minus);
  in.defSubr("rem", fnRem);
  in.defSubr("abs", fnAbs);
  in.defSubr("min", minMax<false>);
  in.defSubr("max", minMax<true>);
  in.defSubr("gcd", fnGcd);
  in.defSubr("sqrt", fnSqrt);
  in.defSubr("exp", fnExp);
  in.defSubr("log", fnLog);
  in.defSubr("expt", fnExpt);
  in.defSubr("sin", fnSin);
  in.defSubr("cos", fnCos);
  in.defSubr("atan", fnAtan);
  in.defSubr("fix", fnFix);
  in.defSubr("float", fnFloat);
  in.defSubr("minusp", fnMinusp);
  in.defSubr("zerop", fnZerop);
  in.defSubr("numberp", fnNumberp);
  in.defSubr("boole", fnBoole);
  in.defSubr("logand", fnLogand);
  in.defSubr("logior", fnLogior);
  in.defSubr("lsh", fnLsh);
  in.defSubr("~", fnNot);
  in.defSubr("=", fnNumEq);
  in.defSubr("/=", fnNumNe);
  in.defSubr("<", fnLt);
  in.defSubr(">", fnGt);
  in.defSubr("<=", fnLe);
  in.defSubr(">=", fnGe);
}

}  // namespace zepk::lisp
