// Two evaluators of formulas held in text.
//
// CExpress rewrites the text step by step: it finds an innermost piece,
// computes it, prints the value back into the text with six decimals and
// starts over, so every intermediate result is rounded as the text shows
// it. It knows ten functions (trigonometry in degrees), the constants PI
// and E and named parameters, and logs each step to "result.txt".
//
// The plain calculator is a two-stack operator-precedence parser for the
// four operations and parentheses, on text in the system code page.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/cstring.h"

namespace zepk::services {

class CExpress {
 public:
  // Called with the text of a failure ("表达式非法！" and the like); the
  // LISP side shows it in a message box.
  using Notify = std::function<void(const CString&)>;
  explicit CExpress(Notify notify = {}) : notify_(std::move(notify)) {}

  // Each gives the value, or 0.0 after a failure (reported through notify).
  double evaluate(const CString& expr);
  double evaluate(const CString& expr, const CString& name, double value);
  double evaluate(const CString& expr, const CString& name1, const CString& name2, double value1, double value2);
  double evaluate(const CString& expr, const std::vector<CString>& names, const std::vector<double>& values);

  // The step log of the last evaluation, as written to "result.txt".
  const std::u16string& log() const { return log_; }
  // Where the log goes: "result.txt" in the current folder by default.
  void setLogPath(std::u16string path) { logPath_ = std::move(path); }

 private:
  bool validate(CString& text);
  double run(CString text);
  double steps(CString text);
  double withoutParens(CString text);
  void fail(const WCHAR* message);

  Notify notify_;
  std::u16string log_;
  std::u16string logPath_ = u"result.txt";
  int step_ = 0;
};

// The plain calculator: blanks and "=" at both ends are ignored; bad text
// gives a meaningless number or 0.0, never an error.
double calculate(std::string_view text);

// The calculator on a text that may be a survey label rather than a
// formula: nothing for a single number in parentheses ("(12)") and for a
// text holding "#" or "号"; otherwise the calculator's value of the text
// (trimmed, in the system code page).
std::optional<double> calculateFormula(const CString& text);

}  // namespace zepk::services
