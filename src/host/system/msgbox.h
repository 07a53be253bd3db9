// Message boxes on a host with no screen: the box's title and text go to
// the command line, and a box that asks a question is answered from the
// pending input. The editor installs the handler that does this; without
// one a box is printed on standard output and gets its default answer.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/wincompat.h"

namespace zepk::sys {

using MessageBoxHandler = std::function<int(std::u16string_view text, std::u16string_view caption, UINT type)>;
void setMessageBoxHandler(MessageBoxHandler handler);

// The buttons of a box of this type (IDOK, IDYES...), in the order shown.
std::vector<int> messageBoxButtons(UINT type);
// The answer of the default button (MB_DEFBUTTON2 and 3 pick the second
// and third).
int messageBoxDefault(UINT type);
// The button an answer names: its word or the word's first letters, in
// any case ("y", "Yes", "CANCEL"); 0 when it names none of the box's.
int messageBoxAnswer(std::u16string_view answer, UINT type);
// The keywords of the box's buttons ("Yes No Cancel").
std::u16string messageBoxKeywords(UINT type);
// The name of a button's answer ("Yes" for IDYES).
std::u16string messageBoxWord(int id);

}  // namespace zepk::sys
