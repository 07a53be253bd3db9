#include "host/editor/commandline.h"

#include "host/lisp/printer.h"
#include "host/system/utf.h"

namespace zepk::editor {

using lisp::Value;

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
  return ok;
}

void CommandLine::runCommand(const std::u16string& name) {
  std::string n = sys::toUtf8(name);
  // "_" asks for the global name and "." for the built-in form; with only
  // LISP commands both come to the same.
  while (!n.empty() && (n[0] == '_' || n[0] == '.' || n[0] == '\'')) n.erase(0, 1);
  lisp::Symbol* fn = lisp::findSymbol("C:" + n);
  if (!n.empty() && fn && fn->value.truthy()) {
    Value v;
    if (in_.callTop(fn->value, {}, &v) && !lisp::isVoid(v)) {
      in_.out().freshLine();
      in_.out().write(lisp::prin1String(v));
      in_.out().write(std::string_view("\n"));
    }
    in_.runQueued();
    return;
  }
  for (char& c : n)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  in_.out().freshLine();
  in_.out().write("Unknown command \"" + n + "\".  Press F1 for help.\n");
}

void CommandLine::feed(const std::string& utf8Line, bool echo) {
  std::string line = utf8Line;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  std::u16string text = sys::fromUtf8(line);
  size_t first = text.find_first_not_of(u" \t");
  if (pending_.empty()) {
    if (first == std::u16string::npos) return;  // an empty line ends nothing yet
    if (text[first] == u';') return;            // a comment line
  }
  if (echo) {
    in_.out().freshLine();
    in_.out().write(prompt() + line + "\n");
  }
  if (pending_.empty() && text[first] != u'(' && text[first] != u'\'' && text[first] != u'!') {
    // A command name; the rest of the line is its answers, which are kept
    // for the command's prompts once commands take answers.
    size_t end = text.find_first_of(u" \t", first);
    runCommand(text.substr(first, end == std::u16string::npos ? std::u16string::npos : end - first));
    return;
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
  size_t start = 0;
  while (start <= text.size()) {
    size_t nl = text.find('\n', start);
    if (nl == std::string::npos) {
      if (start < text.size()) feed(text.substr(start), echo);
      break;
    }
    feed(text.substr(start, nl - start), echo);
    start = nl + 1;
  }
}

void CommandLine::finish() {
  if (pending_.empty()) return;
  std::u16string expr = std::move(pending_);
  pending_.clear();
  evalAndPrint(expr);
}

}  // namespace zepk::editor
