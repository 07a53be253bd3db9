// Clipboard text. With DISPLAY set and xclip or xsel installed, the X11
// clipboard; otherwise a file, "zepk-clipboard" under $XDG_RUNTIME_DIR
// (else /tmp/zepk-clipboard-<uid>), that the user's sessions share.
#pragma once

#include <string>

namespace zepk::sys {

// False when the clipboard holds no text (or cannot be read).
bool getClipboardText(std::u16string* out);
bool setClipboardText(std::u16string_view text);
// The file used when there is no X11 clipboard.
std::string clipboardFile();

}  // namespace zepk::sys
