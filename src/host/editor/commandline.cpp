#include "host/editor/commandline.h"

#include "host/editor/commands.h"
#include "host/editor/docman.h"
#include "host/lisp/printer.h"
#include "host/system/utf.h"

namespace zepk::editor {

using lisp::Value;

namespace {

// The last command run from the command line: Enter at "Command: " runs it
// again, in scripts too.
std::u16string& lastCommandName() {
  static std::u16string name;
  return name;
}

}  // namespace

int CommandLine::openParens(const std::u16string& t) {
  int depth = 0;
  bool inString = false;
  for (size_t i = 0; i < t.size(); ++i) {
    char16_t c = t[i];
    if (inString) {
      if (c == u'\\') {
        ++i;
      } else if (c == u'"') {
        inString = false;
      }
      continue;
    }
    if (c == u'"') {
      inString = true;
    } else if (c == u';') {
      if (i + 1 < t.size() && t[i + 1] == u'|') {
        size_t end = t.find(u"|;", i + 2);
        if (end == std::u16string::npos) return depth + 1;  // open block comment
        i = end + 1;
      } else {
        size_t nl = t.find(u'\n', i);
        if (nl == std::u16string::npos) break;
        i = nl;
      }
    } else if (c == u'(') {
      ++depth;
    } else if (c == u')') {
      --depth;
    }
  }
  return inString ? depth + 1 : depth;
}

bool CommandLine::evalAndPrint(const std::u16string& text) {
  Value v;
  bool ok = in_.evalText(text, &v);
  if (ok && !lisp::isVoid(v)) {
    in_.out().freshLine();
    in_.out().write(lisp::prin1String(v));
    in_.out().write(std::string_view("\n"));
  }
  in_.runQueued();
  documentsIdle();
  return ok;
}

void CommandLine::runCommand(const std::u16string& name) {
  Commands::get().run(name);
  in_.runQueued();
  documentsIdle();
}

void CommandLine::feed(const std::string& utf8Line, bool echo) {
  std::string line = utf8Line;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  std::u16string text = sys::fromUtf8(line);
  size_t first = text.find_first_not_of(u" \t");
  if (pending_.empty()) {
    if (first == std::u16string::npos) {
      // Enter repeats the last command.
      if (lastCommandName().empty()) return;
      if (echo) {
        in_.out().freshLine();
        in_.out().write(prompt());
        in_.out().write(std::u16string_view(lastCommandName()));
        in_.out().write(std::string_view("\n"));
      }
      runCommand(std::u16string(lastCommandName()));
      return;
    }
    if (text[first] == u';') return;  // a comment line
  }
  bool command = pending_.empty() && text[first] != u'(' && text[first] != u'\'' && text[first] != u'!';
  if (command) {
    // A command name; the rest of the line answers its prompts, and what
    // the command leaves of it is read at "Command: " again.
    size_t end = text.find_first_of(u" \t", first);
    std::u16string name = text.substr(first, end == std::u16string::npos ? std::u16string::npos : end - first);
    if (echo) {
      in_.out().freshLine();
      in_.out().write(prompt());
      in_.out().write(std::u16string_view(name));
      in_.out().write(std::string_view("\n"));
    }
    Commands& c = Commands::get();
    if (end != std::u16string::npos) c.setLine(text.substr(end + 1));
    // An unknown name is not remembered.
    if (c.run(name) != RTERROR) lastCommandName() = name;
    in_.runQueued();
    std::u16string rest;
    if (c.takeLineRest(&rest) && rest.find_first_not_of(u" \t") != std::u16string::npos)
      feed(sys::toUtf8(rest.substr(rest.find_first_not_of(u" \t"))), echo);
    return;
  }
  if (echo) {
    in_.out().freshLine();
    in_.out().write(prompt() + line + "\n");
  }
  if (pending_.empty() && text[first] == u'!') {
    // !symbol shows a variable's value, as at the host's prompt.
    evalAndPrint(text.substr(first + 1));
    return;
  }
  pending_ += text;
  pending_ += u'\n';
  if (openParens(pending_) > 0) return;
  std::u16string expr = std::move(pending_);
  pending_.clear();
  evalAndPrint(expr);
}

void CommandLine::feedScript(const std::string& text, bool echo) {
  size_t pos = 0;
  run(
      [&](std::string* line) {
        if (pos >= text.size()) return false;
        size_t nl = text.find('\n', pos);
        if (nl == std::string::npos) nl = text.size();
        *line = text.substr(pos, nl - pos);
        pos = nl + 1;
        return true;
      },
      echo);
}

void CommandLine::run(std::function<bool(std::string*)> next, bool echo) {
  Commands& c = Commands::get();
  // Commands read their answers from the same input; a script inside a
  // script takes over until its end.
  auto saved = c.lineSource();
  bool savedEcho = c.echo();
  c.setLineSource(next, echo);
  std::string line;
  while (!quitRequested && next(&line)) feed(line, echo);
  c.setLineSource(saved, savedEcho);
}

void CommandLine::finish() {
  if (pending_.empty()) return;
  std::u16string expr = std::move(pending_);
  pending_.clear();
  evalAndPrint(expr);
}

}  // namespace zepk::editor
