// Two evaluators of formulas held in text.
#include "services/express.h"

#include <cmath>
#include <cstring>

#include "host/hostfile.h"
#include "host/wincompat.h"
#include "services/numbers.h"

namespace zepk::services {

namespace {

// The functions, in table order; log and pow take two arguments.
const WCHAR* const kFunctions[10] = {u"sin", u"cos", u"tan", u"exp", u"log", u"asin", u"acos", u"atan", u"sign", u"pow"};
bool twoArguments(int f) { return f == 4 || f == 9; }

bool holdsFunction(const CString& t) {
  for (const WCHAR* name : kFunctions)
    if (t.Find(name) >= 0) return true;
  return false;
}

bool isOperator(WCHAR c) { return c == u'+' || c == u'-' || c == u'*' || c == u'/'; }

CString fixed(double v) {
  CString s;
  s.Format(u"%f", v);
  return s;
}

// A call found in the text: [start, end) covers name, brackets and argument.
struct Call {
  int start = 0, open = 0, close = 0, index = 0;
};

// The call whose "]" stands leftmost: back to its "[", then back to the
// start of the name at an operator, a bracket or the start of the text. An
// unknown name counts as the first function.
bool findCall(const CString& t, Call* c) {
  c->close = t.Find(u']');
  if (c->close < 0) return false;
  c->open = -1;
  for (int i = c->close - 1; i >= 0; --i)
    if (t[i] == u'[') {
      c->open = i;
      break;
    }
  if (c->open < 0) return false;
  c->start = c->open;
  while (c->start > 0 && !isOperator(t[c->start - 1]) && t[c->start - 1] != u'(' && t[c->start - 1] != u'[') --c->start;
  CString name = t.Mid(c->start, c->open - c->start);
  c->index = 0;
  for (int i = 0; i < 10; ++i)
    if (name == kFunctions[i]) c->index = i;
  return true;
}

double apply(int f, double a, double b) {
  double rad = a * kPi / 180.0;
  switch (f) {
    case 0: return std::sin(rad);
    case 1: return std::cos(rad);
    case 2: return std::tan(rad);
    case 3: return std::exp(a);
    case 4: return std::log(b) / std::log(a);
    case 5: return std::asin(a) * 180.0 / kPi;
    case 6: return std::acos(a) * 180.0 / kPi;
    case 7: return std::atan(a) * 180.0 / kPi;
    case 8: return a > 0 ? 1 : a < 0 ? -1 : 0;
    default: return std::pow(a, b);
  }
}

// Puts a value in place of text[from, to), repairing the sign where the
// value is negative: after "-" the two minuses make "+", after "+" a "-";
// after "*" or "/" the operand before is multiplied or divided at once and
// the negation goes on to the left, where a "+" or "-" is swapped (or a "-"
// put in front at the start of the text or after a bracket).
CString replaceWithValue(const CString& text, int from, int to, const CString& value) {
  CString left = text.Left(from), right = text.Mid(to), v = value;
  WCHAR before = from > 0 ? text[from - 1] : 0;
  if (v.GetLength() > 0 && v[0] == u'-') {
    if (before == u'-' || before == u'+') {
      v.Delete(0);
      left.SetAt(from - 1, before == u'-' ? u'+' : u'-');
    } else if (before == u'*' || before == u'/') {
      v.Delete(0);
      // The operand before the operator, then the operator with it, give
      // way to their product or quotient.
      int op = from - 1, s = op;
      while (s > 0 && !isOperator(left[s - 1]) && left[s - 1] != u'(' && left[s - 1] != u'[') --s;
      CString operand = left.Mid(s, op - s);
      // Only a number can be combined at once; after a function call the
      // sign stays with the value, where the flat routine reads it.
      if (operand.IsEmpty() || operand.FindOneOf(u"[]") >= 0) return left + value + right;
      double a = _wtof(operand), b = _wtof(v);
      CString combined = fixed(before == u'*' ? a * b : a / b);
      left = left.Left(s);
      WCHAR sign = s > 0 ? left[s - 1] : 0;
      if (sign == u'-' || sign == u'+') left.SetAt(s - 1, sign == u'-' ? u'+' : u'-');
      else combined = u"-" + combined;
      return left + combined + right;
    }
  } else if (v.GetLength() > 0 && v[0] == u'+' && before == u'-') {
    v.Delete(0);
  }
  return left + v + right;
}

// Numbers and the four operators alone. Multiplication and division first,
// whichever stands leftmost ("/" on a tie), then addition and subtraction;
// each result is printed with six decimals back into the text. A "+" or "-"
// at the start or straight after another operator is a number's sign.
double flat(CString t) {
  auto isSign = [&](int i) { return (t[i] == u'-' || t[i] == u'+') && (i == 0 || isOperator(t[i - 1])); };
  for (int guard = 0; guard < 10000; ++guard) {
    int mul = -1, add = -1;
    for (int i = 0; i < t.GetLength(); ++i) {
      if (!isOperator(t[i]) || isSign(i)) continue;
      if ((t[i] == u'*' || t[i] == u'/') && mul < 0) mul = i;
      if ((t[i] == u'+' || t[i] == u'-') && add < 0) add = i;
    }
    int p = mul >= 0 ? mul : add;
    if (p < 0) break;
    int s = p;
    while (s > 0 && !(isOperator(t[s - 1]) && !isSign(s - 1))) --s;
    int e = p + 1;
    if (e < t.GetLength() && isSign(e)) ++e;
    while (e < t.GetLength() && !isOperator(t[e])) ++e;
    double a = _wtof(t.Mid(s, p - s)), b = _wtof(t.Mid(p + 1, e - p - 1));
    double r = t[p] == u'*' ? a * b : t[p] == u'/' ? a / b : t[p] == u'+' ? a + b : a - b;
    t = t.Left(s) + fixed(r) + t.Mid(e);
  }
  return _wtof(t);
}

}  // namespace

void CExpress::fail(const WCHAR* message) {
  if (notify_) notify_(CString(message));
}

bool CExpress::validate(CString& text) {
  CString copy = text;
  for (auto [open, close] : {std::pair{u'(', u')'}, std::pair{u'[', u']'}}) {
    WCHAR pair[3] = {open, close, 0};
    if (copy.Find(pair) >= 0) return false;
    int opens = 0, closes = 0;
    for (int i = 0; i < copy.GetLength(); ++i) opens += copy[i] == open, closes += copy[i] == close;
    if (opens != closes) return false;
  }
  while (holdsFunction(copy)) {
    Call c;
    if (!findCall(copy, &c)) return false;
    bool comma = copy.Mid(c.open + 1, c.close - c.open - 1).Find(u',') >= 0;
    if (comma != twoArguments(c.index)) return false;
    copy = copy.Left(c.start) + u"@" + copy.Mid(c.close + 1);
  }
  // The constants, by plain replacement over the whole text.
  text.Replace(u"E", u"2.71828");
  text.Replace(u"PI", u"3.1415926");
  return true;
}

double CExpress::withoutParens(CString t) {
  for (Call c; holdsFunction(t) && findCall(t, &c);) {
    CString inner = t.Mid(c.open + 1, c.close - c.open - 1);
    double a = 0, b = 0;
    if (twoArguments(c.index)) {
      int comma = inner.Find(u',');
      a = withoutParens(comma < 0 ? inner : inner.Left(comma));
      b = withoutParens(comma < 0 ? CString() : inner.Mid(comma + 1));
    } else {
      a = withoutParens(inner);
    }
    double v = apply(c.index, a, b);
    CString text;
    if (c.index == 8) text.Format(u"%d", static_cast<int>(v));
    else text = fixed(v);
    t = replaceWithValue(t, c.start, c.close + 1, text);
  }
  return flat(t);
}

double CExpress::steps(CString t) {
  for (;;) {
    CString line;
    line.Format(u"step%d=%s\n", step_ + 1, t.GetString());
    log_ += line.str();
    ++step_;
    int close = t.Find(u')');
    if (t.Find(u'(') < 0 || close < 0) {
      double v = withoutParens(t);
      line.Format(u"result=%.4f\n", v);
      log_ += line.str();
      return v;
    }
    int open = -1;
    for (int i = close - 1; i >= 0; --i)
      if (t[i] == u'(') {
        open = i;
        break;
      }
    if (open < 0) {  // a ")" before any "(": nothing more can be paired
      double v = withoutParens(t);
      line.Format(u"result=%.4f\n", v);
      log_ += line.str();
      return v;
    }
    double v = withoutParens(t.Mid(open + 1, close - open - 1));
    t = replaceWithValue(t, open, close + 1, fixed(v));
  }
}

double CExpress::run(CString text) {
  if (!validate(text)) {
    fail(u"表达式非法！");
    return 0.0;
  }
  log_ = u"****************计算步骤*******************\n";
  step_ = 0;
  double v = steps(text);
  // The log in the system code page; where the current folder cannot be
  // written, in the temporary folder.
  std::string bytes(static_cast<size_t>(WideCharToMultiByte(CP_ACP, 0, log_.data(), static_cast<int>(log_.size()),
                                                            nullptr, 0, nullptr, nullptr)),
                    '\0');
  if (!bytes.empty())
    WideCharToMultiByte(CP_ACP, 0, log_.data(), static_cast<int>(log_.size()), bytes.data(),
                        static_cast<int>(bytes.size()), nullptr, nullptr);
  if (!acutWriteWholeFile(logPath_, bytes)) {
    WCHAR tmp[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, tmp);
    acutWriteWholeFile(std::u16string(tmp) + u"result.txt", bytes);
  }
  return v;
}

double CExpress::evaluate(const CString& expr) { return run(expr); }

double CExpress::evaluate(const CString& expr, const CString& name, double value) {
  CString t = expr;
  t.Replace(name, fixed(value));
  return run(t);
}

double CExpress::evaluate(const CString& expr, const CString& name1, const CString& name2, double value1,
                          double value2) {
  return evaluate(expr, std::vector<CString>{name1, name2}, std::vector<double>{value1, value2});
}

double CExpress::evaluate(const CString& expr, const std::vector<CString>& names, const std::vector<double>& values) {
  if (names.size() != values.size()) {
    fail(u"参数与参数值个数不匹配！");
    return 0.0;
  }
  CString t = expr;
  for (size_t i = 0; i < names.size(); ++i)
    if (!names[i].IsEmpty()) t.Replace(names[i], fixed(values[i]));
  return run(t);
}

// ------------------------------------------------------- plain calculator

namespace {

int stackPriority(char op) {
  switch (op) {
    case '#': return 0;
    case '(': return 1;
    case '+': case '-': return 3;
    case '*': case '/': return 5;
    default: return 7;  // ')'
  }
}

int incomingPriority(char op) {
  switch (op) {
    case '#': return 0;
    case '(': return 6;
    case '+': case '-': return 2;
    case '*': case '/': return 4;
    default: return 1;  // ')'
  }
}

}  // namespace

double calculate(std::string_view text) {
  auto trimmable = [](char c) { return c == ' ' || c == '=' || (c >= '\t' && c <= '\r'); };
  while (!text.empty() && trimmable(text.front())) text.remove_prefix(1);
  while (!text.empty() && trimmable(text.back())) text.remove_suffix(1);
  std::string t(text);
  if (t.empty() || t.back() != '#') t += '#';
  std::vector<char> ops{'#'};
  std::vector<double> values;
  auto pop = [&]() {
    double v = values.empty() ? 0.0 : values.back();
    if (!values.empty()) values.pop_back();
    return v;
  };
  std::string number;
  for (char c : t) {
    if (!std::strchr("+-*/()#", c)) {
      number += c;
      continue;
    }
    if (!number.empty()) values.push_back(winAtof(number.c_str()));
    number.clear();
    for (;;) {
      if (ops.empty()) return values.empty() ? 0.0 : values.back();
      char top = ops.back();
      int s = stackPriority(top), in = incomingPriority(c);
      if (s > in) {
        ops.pop_back();
        if (top == '+' || top == '-' || top == '*' || top == '/') {
          double b = pop(), a = pop();
          values.push_back(top == '+' ? a + b : top == '-' ? a - b : top == '*' ? a * b : a / b);
        }
        continue;
      }
      if (s < in) ops.push_back(c);
      else ops.pop_back();
      break;
    }
    if (ops.empty()) break;  // "#" met "#": the end
  }
  return values.empty() ? 0.0 : values.back();
}

namespace {

std::string multibyte(const CString& text) {
  const std::u16string& w = text.str();
  if (w.empty()) return {};
  int len = WideCharToMultiByte(CP_ACP, 0, w.data(), static_cast<int>(w.size()), nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<size_t>(len > 0 ? len : 0), '\0');
  if (len > 0)
    WideCharToMultiByte(CP_ACP, 0, w.data(), static_cast<int>(w.size()), bytes.data(), len, nullptr, nullptr);
  return bytes;
}

}  // namespace

std::optional<double> calculateFormula(const CString& text) {
  CString t = text;
  t.Trim();
  const int len = t.GetLength();
  if (len >= 2 && t[0] == u'(' && t[len - 1] == u')') {
    CString inner = t.Mid(1, len - 2);
    if (std::fabs(_wtof(inner) - calculate(multibyte(inner))) < 1e-6) return std::nullopt;
  }
  if (t.Find(u'#') >= 0 || t.Find(u'号') >= 0) return std::nullopt;
  return calculate(multibyte(t));
}

}  // namespace zepk::services
