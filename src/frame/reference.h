// The references users read: every LISP function of the table by family,
// with its arguments and result and whether it is live, and every command.
#pragma once

#include <string>

namespace zepk::frame {

std::string lispReferenceMarkdown();
std::string commandsMarkdown();

// Counts of live rows, for the references and the tests.
int liveFunctionCount();
int liveCommandCount();

}  // namespace zepk::frame
