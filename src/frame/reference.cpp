#include "frame/reference.h"

#include <map>
#include <set>
#include <vector>

#include "frame/commands.h"
#include "frame/functable.h"
#include "host/system/utf.h"

namespace zepk::frame {

namespace {

std::string u8(const char16_t* s) { return s ? sys::toUtf8(s) : std::string(); }

// Markdown table cells: a bar would end the cell.
std::string cell(std::string s) {
  std::string out;
  for (char c : s) {
    if (c == '|') {
      out += "\\|";
    } else if (c == '\n') {
      out += ' ';
    } else {
      out += c;
    }
  }
  return out;
}

}  // namespace

int liveFunctionCount() {
  // A name defined twice counts once.
  std::set<std::u16string> live;
  const FunctionRow* rows = functionRows();
  for (size_t i = 0; i < kFunctionCount; ++i) {
    if (rows[i].fn) live.insert(rows[i].name);
  }
  return static_cast<int>(live.size());
}

int liveCommandCount() {
  std::set<std::u16string> live;
  for (auto table : {commandTable1(), commandTable2()}) {
    for (const CommandRow& c : table) {
      if (c.fn) live.insert(c.local);
    }
  }
  return static_cast<int>(live.size());
}

std::string lispReferenceMarkdown() {
  const FunctionRow* rows = functionRows();
  std::vector<std::string> order;
  std::map<std::string, std::vector<size_t>> byFamily;
  for (size_t i = 0; i < kFunctionCount; ++i) {
    std::string f = rows[i].family;
    if (!byFamily.count(f)) order.push_back(f);
    byFamily[f].push_back(i);
  }
  std::string out;
  out += "# LISP functions\n\n";
  out += "Made from the function table by `cmake --build BUILD --target docs`; do not edit by hand.\n\n";
  out += "Every function of the toolkit, by family. The code is the function's index in the table. "
         "A function that is not live yet is not defined in LISP: calling it gives \"no function definition\".\n\n";
  out += std::to_string(liveFunctionCount()) + " of " + std::to_string(kFunctionCount) + " rows are live.\n";
  for (const std::string& f : order) {
    int live = 0;
    for (size_t i : byFamily[f]) live += rows[i].fn ? 1 : 0;
    out += "\n## " + f + " (" + std::to_string(live) + " of " + std::to_string(byFamily[f].size()) + " live)\n\n";
    out += "| code | function | arguments -> result | live |\n|---|---|---|---|\n";
    for (size_t i : byFamily[f]) {
      std::string shape = rows[i].shape && *rows[i].shape ? rows[i].shape : "";
      out += "| " + std::to_string(i) + " | `" + u8(rows[i].name) + "` | " + cell(shape) + " | " +
             (rows[i].fn ? "yes" : "no") + " |\n";
    }
  }
  return out;
}

std::string commandsMarkdown() {
  std::string out;
  out += "# Commands\n\n";
  out += "Made from the command tables by `cmake --build BUILD --target docs`; do not edit by hand.\n\n";
  out += "Type the local name, or the global name after \"_\". A command that is not live yet is not registered: "
         "typing it gives the host's unknown command message.\n\n";
  out += std::to_string(liveCommandCount()) + " commands are live.\n";
  auto table = [&](const char* title, std::span<const CommandRow> rows) {
    out += std::string("\n## ") + title + "\n\n";
    out += "| local | global | group | flags | family | what it does | live |\n|---|---|---|---|---|---|---|\n";
    for (const CommandRow& c : rows) {
      out += "| `" + u8(c.local) + "` | `" + u8(c.global) + "` | " + u8(c.group) + " | " +
             (c.flags == 0x200003 ? std::string("0x200003") : std::to_string(c.flags)) + " | " + cell(c.family) +
             " | " + cell(c.what) + " | " + (c.fn ? "yes" : "no") + " |\n";
    }
  };
  table("Registered with the module", commandTable1());
  table("Added at load", commandTable2());
  return out;
}

}  // namespace zepk::frame
