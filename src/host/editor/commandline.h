// The command line: text typed by a user or read from a script, split into
// LISP expressions (a line starting with "(") and commands with their
// answers. A LISP expression may run over several lines while parentheses
// are open. Commands defined in LISP as C: functions run by their names.
#pragma once

#include <deque>
#include <functional>
#include <string>

#include "host/lisp/interp.h"

namespace zepk::editor {

class CommandLine {
 public:
  explicit CommandLine(lisp::Interp& in) : in_(in) {}

  // Feeds one line as typed. With echo, the prompt and the line are written
  // to the output first, as the host's text window shows them (used when the
  // input is not a terminal, which does not echo by itself).
  void feed(const std::string& utf8Line, bool echo);
  // Reads lines from next until its end or QUIT; commands take their
  // answers from the same lines.
  void run(std::function<bool(std::string*)> next, bool echo);
  // Feeds a whole script, line by line.
  void feedScript(const std::string& utf8Text, bool echo);
  // True while an expression is open (more lines are needed).
  bool continuing() const { return !pending_.empty(); }
  // Ends the input: an expression still open is reported as malformed.
  void finish();
  // The prompt for the next line: "Command: " or, inside an open
  // expression, "(_> ".
  std::string prompt() const { return continuing() ? "(_> " : "Command: "; }

  // Runs a LISP expression given as text, printing its value on a line of
  // its own (unless it is the null symbol). Returns false after an error.
  bool evalAndPrint(const std::u16string& text);
  // Runs a command by name: a C: function, else "Unknown command".
  void runCommand(const std::u16string& name);

 private:
  // Net count of open parentheses in the text, ignoring strings and
  // comments; negative when closed too often.
  static int openParens(const std::u16string& text);

  lisp::Interp& in_;
  std::u16string pending_;
};

}  // namespace zepk::editor
