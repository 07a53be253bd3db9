#include "host/system/clipboard.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include "host/system/codepage.h"
#include "host/system/shell.h"
#include "host/system/utf.h"
#include "host/wincompat.h"

namespace zepk::sys {

namespace {

// The X11 tool's commands to read and to write, empty without one.
bool x11Tool(std::string* read, std::string* write) {
  const char* display = std::getenv("DISPLAY");
  if (!display || !*display) return false;
  std::string p = findProgram("xclip");
  if (!p.empty()) {
    *read = shellQuote(p) + " -selection clipboard -o 2>/dev/null";
    *write = shellQuote(p) + " -selection clipboard -i 2>/dev/null";
    return true;
  }
  p = findProgram("xsel");
  if (!p.empty()) {
    *read = shellQuote(p) + " --clipboard --output 2>/dev/null";
    *write = shellQuote(p) + " --clipboard --input 2>/dev/null";
    return true;
  }
  return false;
}

bool writeFileAtomically(const std::string& path, const std::string& bytes) {
  std::string tmp = path + ".tmp" + std::to_string(::getpid());
  int fd = ::open(tmp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (fd < 0) return false;
  bool ok = ::write(fd, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
  ok = ::close(fd) == 0 && ok;
  if (!ok || ::rename(tmp.c_str(), path.c_str()) != 0) {
    ::unlink(tmp.c_str());
    return false;
  }
  return true;
}

}  // namespace

std::string clipboardFile() {
  const char* run = std::getenv("XDG_RUNTIME_DIR");
  if (run && *run == '/') return std::string(run) + "/zepk-clipboard";
  return tempFolder() + "/zepk-clipboard-" + std::to_string(::getuid());
}

bool getClipboardText(std::u16string* out) {
  std::string rd, wr, bytes;
  if (x11Tool(&rd, &wr)) {
    if (runCommand(rd, &bytes) != 0) return false;
  } else {
    std::ifstream f(clipboardFile(), std::ios::binary);
    if (!f) return false;
    std::stringstream ss;
    ss << f.rdbuf();
    bytes = ss.str();
  }
  *out = isValidUtf8(bytes) ? fromUtf8(bytes) : fromCodePage(bytes);
  return true;
}

bool setClipboardText(std::u16string_view text) {
  std::string bytes = toUtf8(text);
  std::string rd, wr;
  if (x11Tool(&rd, &wr)) {
    // The text goes through a file, so that no quoting can break it.
    std::string tmp = tempFolder() + "/zepk-clip-" + std::to_string(::getpid());
    if (!writeFileAtomically(tmp, bytes)) return false;
    int rc = runCommand(wr + " < " + shellQuote(tmp));
    ::unlink(tmp.c_str());
    return rc == 0;
  }
  return writeFileAtomically(clipboardFile(), bytes);
}

}  // namespace zepk::sys

// ---------------------------------------------------------------- Windows

using namespace zepk;

namespace {

struct Global {
  size_t size;
  // the bytes follow
};

struct ClipState {
  bool open = false;
  bool emptied = false;
  HGLOBAL unicode = nullptr;  // what GetClipboardData gave, kept till the next
  HGLOBAL ansi = nullptr;
};

ClipState& clip() {
  static auto* c = new ClipState;
  return *c;
}

HGLOBAL globalFrom(const void* data, size_t n) {
  HGLOBAL h = GlobalAlloc(GMEM_MOVEABLE, n);
  if (h && n) std::memcpy(GlobalLock(h), data, n);
  return h;
}

}  // namespace

HGLOBAL GlobalAlloc(UINT flags, size_t n) {
  auto* g = static_cast<Global*>(std::malloc(sizeof(Global) + (n ? n : 1)));
  if (!g) return nullptr;
  g->size = n;
  if (flags & GMEM_ZEROINIT) std::memset(g + 1, 0, n);
  return g;
}
void* GlobalLock(HGLOBAL h) { return h ? static_cast<void*>(static_cast<Global*>(h) + 1) : nullptr; }
// No lock count is kept: the memory is always unlocked afterwards (FALSE).
BOOL GlobalUnlock(HGLOBAL) { return FALSE; }
HGLOBAL GlobalFree(HGLOBAL h) {
  std::free(h);
  return nullptr;
}
size_t GlobalSize(HGLOBAL h) { return h ? static_cast<Global*>(h)->size : 0; }

BOOL OpenClipboard(HWND) {
  if (clip().open) return FALSE;
  clip().open = true;
  clip().emptied = false;
  return TRUE;
}

BOOL CloseClipboard() {
  if (!clip().open) return FALSE;
  clip().open = false;
  return TRUE;
}

BOOL EmptyClipboard() {
  if (!clip().open) return FALSE;
  clip().emptied = true;
  return sys::setClipboardText(u"") ? TRUE : FALSE;
}

BOOL IsClipboardFormatAvailable(UINT format) {
  if (format != CF_UNICODETEXT && format != CF_TEXT) return FALSE;
  std::u16string t;
  return sys::getClipboardText(&t) && !t.empty() ? TRUE : FALSE;
}

HANDLE GetClipboardData(UINT format) {
  ClipState& c = clip();
  if (!c.open || (format != CF_UNICODETEXT && format != CF_TEXT)) return nullptr;
  std::u16string t;
  if (!sys::getClipboardText(&t)) return nullptr;
  if (format == CF_UNICODETEXT) {
    if (c.unicode) GlobalFree(c.unicode);
    c.unicode = globalFrom(t.c_str(), (t.size() + 1) * sizeof(char16_t));
    return c.unicode;
  }
  std::string bytes = sys::toCodePage(t);
  if (c.ansi) GlobalFree(c.ansi);
  c.ansi = globalFrom(bytes.c_str(), bytes.size() + 1);
  return c.ansi;
}

HANDLE SetClipboardData(UINT format, HANDLE h) {
  ClipState& c = clip();
  if (!c.open || !h || (format != CF_UNICODETEXT && format != CF_TEXT)) return nullptr;
  size_t n = GlobalSize(h);
  const char* p = static_cast<const char*>(GlobalLock(h));
  std::u16string text;
  if (format == CF_UNICODETEXT) {
    size_t units = n / 2;
    text.assign(reinterpret_cast<const char16_t*>(p), units);
  } else {
    text = sys::fromCodePage(std::string_view(p, n));
  }
  size_t zero = text.find(u'\0');
  if (zero != std::u16string::npos) text.resize(zero);
  bool ok = sys::setClipboardText(text);
  // The clipboard owns the memory from now on.
  GlobalFree(h);
  return ok ? h : nullptr;
}
