#include "host/lisp/printer.h"

#include <cmath>
#include <cstdio>

#include "host/system/utf.h"

namespace zepk::lisp {

std::string formatReal(double d) {
  if (std::isnan(d)) return "1.#QNAN";
  if (std::isinf(d)) return d < 0 ? "-1.#INF" : "1.#INF";
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.6g", d);
  std::string s = buf;
  // Widen the exponent to three digits, as the host's runtime prints it.
  size_t e = s.find('e');
  std::string mant = e == std::string::npos ? s : s.substr(0, e);
  std::string exp = e == std::string::npos ? "" : s.substr(e);
  if (!exp.empty()) {
    std::string digits = exp.substr(2);
    while (digits.size() < 3) digits.insert(digits.begin(), '0');
    exp = exp.substr(0, 2) + digits;
  }
  if (mant.find('.') == std::string::npos) mant += ".0";
  return mant + exp;
}

namespace {

void hexPointer(std::u16string& out, const void* p) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%016llX", static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(p)));
  out += sys::fromUtf8(buf);
}

void printString(std::u16string& out, const std::u16string& s, bool escape) {
  if (!escape) {
    out += s;
    return;
  }
  out.push_back(u'"');
  for (char16_t c : s) {
    switch (c) {
      case u'"': out += u"\\\""; break;
      case u'\\': out += u"\\\\"; break;
      case u'\n': out += u"\\n"; break;
      case u'\r': out += u"\\r"; break;
      case u'\t': out += u"\\t"; break;
      case u'\x1b': out += u"\\e"; break;
      default:
        if (c < 0x20) {
          char buf[8];
          std::snprintf(buf, sizeof buf, "\\%03o", static_cast<unsigned>(c));
          out += sys::fromUtf8(buf);
        } else {
          out.push_back(c);
        }
    }
  }
  out.push_back(u'"');
}

void print(std::u16string& out, const Value& v, bool escape);

void printList(std::u16string& out, const Value& v, bool escape) {
  out.push_back(u'(');
  const Value* p = &v;
  bool first = true;
  while (p->isCons()) {
    if (!first) out.push_back(u' ');
    first = false;
    print(out, p->as<Cons>()->car, escape);
    p = &p->as<Cons>()->cdr;
  }
  if (!p->isNil()) {
    out += u" . ";
    print(out, *p, escape);
  }
  out.push_back(u')');
}

void print(std::u16string& out, const Value& v, bool escape) {
  char buf[64];
  switch (v.tag()) {
    case Tag::Nil: out += u"nil"; break;
    case Tag::Int:
      std::snprintf(buf, sizeof buf, "%d", v.asInt());
      out += sys::fromUtf8(buf);
      break;
    case Tag::Real: out += sys::fromUtf8(formatReal(v.asReal())); break;
    case Tag::Sym: out += sys::fromUtf8(v.asSym()->name); break;
    case Tag::Str: printString(out, v.as<String>()->s, escape); break;
    case Tag::Cons: printList(out, v, escape); break;
    case Tag::Ename:
      std::snprintf(buf, sizeof buf, "<Entity name: %llx>", static_cast<unsigned long long>(v.as<Ename>()->name[0]));
      out += sys::fromUtf8(buf);
      break;
    case Tag::Pickset:
      std::snprintf(buf, sizeof buf, "<Selection set: %llx>", static_cast<unsigned long long>(v.as<Pickset>()->name[0]));
      out += sys::fromUtf8(buf);
      break;
    case Tag::File:
      out += u"#<file ";
      printString(out, v.as<FileObj>()->name, true);
      out += u">";
      break;
    case Tag::Subr:
      out += u"#<SUBR @";
      hexPointer(out, v.asObj());
      out += u" " + sys::fromUtf8(v.as<Subr>()->name) + u">";
      break;
    case Tag::Usubr: {
      out += u"#<USUBR @";
      hexPointer(out, v.asObj());
      const std::string& n = v.as<Usubr>()->name;
      out += u" " + sys::fromUtf8(n.empty() ? std::string("-lambda-") : n) + u">";
      break;
    }
    case Tag::Exrx:
      out += u"#<EXRXSUBR @";
      hexPointer(out, v.asObj());
      out += u" " + sys::fromUtf8(v.as<Exrx>()->name) + u">";
      break;
    case Tag::CatchError: out += u"#<%catch-all-apply-error%>"; break;
  }
}

}  // namespace

std::u16string prin1String(const Value& v) {
  std::u16string out;
  print(out, v, true);
  return out;
}

std::u16string princString(const Value& v) {
  std::u16string out;
  print(out, v, false);
  return out;
}

}  // namespace zepk::lisp
