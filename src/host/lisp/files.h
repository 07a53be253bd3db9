// Settings of the file functions that the host fills in: where findfile and
// load look, and where read-line and read-char without a file take their
// input from.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zepk::lisp {

// Folders that findfile and load search after the current folder, in order.
// Entries are UTF-8, Windows-style ("C:\\support") or POSIX.
std::vector<std::string>& supportPath();

// One line typed on the command line (without its end), or nullopt when the
// input has ended. Unset, read-line and read-char without a file give nil.
using LineSource = std::function<std::optional<std::u16string>()>;
LineSource& commandLineInput();

}  // namespace zepk::lisp
