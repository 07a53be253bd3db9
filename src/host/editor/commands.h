// The command processor: the registered commands, the answers pending for
// their prompts, and running a command as one undo step.
//
// Answers come, in this order, from those given to a running command (the
// arguments of LISP's command, acedCmdS), from the rest of the line being
// read (a script line, a typed line) and then from the next lines of the
// input. In a line a space or the line's end ends an answer, except for
// text answers, which take the rest of the line; an empty answer is Enter.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "host/aced.h"

namespace zepk::editor {

struct Answer {
  enum Kind { Text, Point, Real, Int, Name, Picks, Pause } kind = Text;
  std::u16string text;
  double p[3] = {0, 0, 0};
  double r = 0;
  int32_t i = 0;
  int64_t name[2] = {0, 0};
};

struct CommandDef {
  std::u16string group, global, local;
  int32_t flags = 0;
  AcRxFunctionPtr fn = nullptr;
  bool builtin = false;  // found by ".NAME"
  bool noUndoMark = false;
};

class Commands {
 public:
  static Commands& get();

  Acad::ErrorStatus add(const CommandDef& def);
  Acad::ErrorStatus removeGroup(std::u16string_view group);
  Acad::ErrorStatus remove(std::u16string_view group, std::u16string_view global);
  // Finds a command as typed ("_", "." and "'" prefixes); null if none.
  const CommandDef* find(std::u16string_view typed) const;

  // Runs a command typed by name: a registered one, else a LISP C:
  // function, else "Unknown command". Returns RTNORM, RTCAN when cancelled,
  // RTERROR for an unknown name.
  int run(std::u16string_view typed);
  // True for a name asking for the host's own command (".LINE").
  static bool builtinOnly(std::u16string_view typed);
  int depth() const { return depth_; }
  // Nesting of LISP expressions being evaluated as answers.
  int waiting() const { return waiting_; }

  // Input. The line source gives the next line of the input (false at its
  // end); echo writes each prompt with its answer, as the host's text
  // window shows input that came from a file.
  void setLineSource(std::function<bool(std::string*)> next, bool echo) {
    next_ = std::move(next);
    echo_ = echo;
  }
  const std::function<bool(std::string*)>& lineSource() const { return next_; }
  bool echo() const { return echo_; }
  // The rest of the line being read after a command name.
  void setLine(std::u16string rest) {
    line_ = std::move(rest);
    pos_ = 0;
    haveLine_ = true;
  }
  // Takes what is left of the line (the command line runs it next).
  bool takeLineRest(std::u16string* rest);
  void queue(const Answer& a) { queued_.push_back(a); }
  void clearQueue() { queued_.clear(); }
  bool nextQueued(Answer* out);
  size_t queued() const { return queued_.size(); }
  // While set, an answer missing cancels instead of reading the input.
  bool onlyQueued = false;

  // The next answer for a prompt. text: the answer runs to the line's end.
  // Prints the prompt and, when echoing, the answer. RTNORM or RTCAN.
  int next(const std::u16string& prompt, bool text, Answer* out);
  // Writes to the command line.
  void print(const std::u16string& s);
  void print(const std::string& utf8);

  // While set, nothing is written (CMDECHO 0 for commands run by programs).
  bool quiet = false;
  // Set when an input function gave RTCAN in the running command.
  bool cancelled = false;

  // Evaluates a LISP expression typed as an answer; set by the LISP side.
  std::function<bool(const std::u16string&, Answer*)> evalAnswer;
  // Runs a C: function of that name; false when there is none.
  std::function<bool(const std::u16string&, int*)> runLispCommand;

 private:
  std::vector<CommandDef> cmds_;
  std::deque<Answer> queued_;
  std::u16string line_;
  size_t pos_ = 0;
  bool haveLine_ = false;
  std::function<bool(std::string*)> next_;
  bool echo_ = true;
  int depth_ = 0;
  int waiting_ = 0;
};

// Runs the commands named in the answers queued, each taking the answers
// after its name. With onlyQueued a missing answer cancels the command.
int runQueuedCommands(bool onlyQueued);

// Registers the host's own commands (LINE, CIRCLE, SAVEAS...).
void registerBuiltinCommands();

// Parses a typed point ("x,y", "x,y,z", "@dx,dy", "d<a", "@d<a"), relative
// forms from last; false for anything else.
bool parsePoint(std::u16string_view s, const double last[3], double out[3]);
bool parseReal(std::u16string_view s, double* out);

}  // namespace zepk::editor

namespace zepk::editor {

// Set by QUIT: the session ends after the running input.
extern bool quitRequested;
// SCRIPT runs a file through this (set by the command line).
void setScriptRunner(std::function<void(const std::u16string&)> fn);

}  // namespace zepk::editor
