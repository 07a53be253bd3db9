#include "host/system/msgbox.h"

#include <cstdio>

#include "host/system/utf.h"

namespace zepk::sys {

namespace {

MessageBoxHandler& handler() {
  static auto* h = new MessageBoxHandler;
  return *h;
}

}  // namespace

void setMessageBoxHandler(MessageBoxHandler h) { handler() = std::move(h); }

std::vector<int> messageBoxButtons(UINT type) {
  switch (type & 0xF) {
    case MB_OKCANCEL: return {IDOK, IDCANCEL};
    case MB_ABORTRETRYIGNORE: return {IDABORT, IDRETRY, IDIGNORE};
    case MB_YESNOCANCEL: return {IDYES, IDNO, IDCANCEL};
    case MB_YESNO: return {IDYES, IDNO};
    case MB_RETRYCANCEL: return {IDRETRY, IDCANCEL};
    default: return {IDOK};
  }
}

int messageBoxDefault(UINT type) {
  std::vector<int> b = messageBoxButtons(type);
  size_t i = (type & 0xF00) == MB_DEFBUTTON2 ? 1 : (type & 0xF00) == MB_DEFBUTTON3 ? 2 : 0;
  return i < b.size() ? b[i] : b[0];
}

std::u16string messageBoxWord(int id) {
  switch (id) {
    case IDOK: return u"OK";
    case IDCANCEL: return u"Cancel";
    case IDABORT: return u"Abort";
    case IDRETRY: return u"Retry";
    case IDIGNORE: return u"Ignore";
    case IDYES: return u"Yes";
    case IDNO: return u"No";
    default: return u"";
  }
}

std::u16string messageBoxKeywords(UINT type) {
  std::u16string out;
  for (int id : messageBoxButtons(type)) {
    if (!out.empty()) out += u' ';
    out += messageBoxWord(id);
  }
  return out;
}

int messageBoxAnswer(std::u16string_view answer, UINT type) {
  if (answer.empty()) return 0;
  for (int id : messageBoxButtons(type)) {
    std::u16string w = messageBoxWord(id);
    if (answer.size() > w.size()) continue;
    bool match = true;
    for (size_t i = 0; i < answer.size() && match; ++i) match = asciiUpper(answer[i]) == asciiUpper(w[i]);
    if (match) return id;
  }
  return 0;
}

}  // namespace zepk::sys

using namespace zepk;

int MessageBoxW(HWND, LPCWSTR text, LPCWSTR caption, UINT type) {
  std::u16string_view t = text ? text : u"";
  std::u16string_view c = caption ? caption : u"Error";
  if (sys::handler()) return sys::handler()(t, c, type);
  std::string out = "\n" + sys::toUtf8(c) + ": " + sys::toUtf8(t) + "\n";
  std::fwrite(out.data(), 1, out.size(), stdout);
  std::fflush(stdout);
  return sys::messageBoxDefault(type);
}

int AfxMessageBox(LPCWSTR text, UINT type, UINT) { return MessageBoxW(nullptr, text, u"ZEPK", type); }
