// The Windows code-page conversions over the host's converters.
#include <algorithm>
#include <cstring>
#include <string>

#include "host/system/codepage.h"
#include "host/wincompat.h"

namespace {

int pageOf(UINT cp) { return cp == CP_ACP || cp == CP_OEMCP ? 0 : static_cast<int>(cp); }

// Copies n units into out when there is room; the result is what Windows
// returns: the count written, the count needed for a size of 0, or 0 with
// ERROR_INSUFFICIENT_BUFFER when the output is too small.
template <class C>
int deliver(const C* data, int n, C* out, int room) {
  if (room == 0) return n;
  if (!out || room < n) {
    SetLastError(122);  // ERROR_INSUFFICIENT_BUFFER
    return 0;
  }
  std::copy(data, data + n, out);
  return n;
}

}  // namespace

UINT GetACP() { return static_cast<UINT>(zepk::sys::systemCodePage()); }

int MultiByteToWideChar(UINT CodePage, DWORD, const char* src, int n, LPWSTR out, int room) {
  if (!src || n == 0 || n < -1 || room < 0) {
    SetLastError(87);  // ERROR_INVALID_PARAMETER
    return 0;
  }
  size_t len = n == -1 ? std::strlen(src) + 1 : static_cast<size_t>(n);
  std::u16string w = zepk::sys::fromCodePage(std::string_view(src, len), pageOf(CodePage));
  return deliver(w.data(), static_cast<int>(w.size()), out, room);
}

int WideCharToMultiByte(UINT CodePage, DWORD, LPCWSTR src, int n, char* out, int room, const char*,
                        BOOL* usedDefault) {
  if (!src || n == 0 || n < -1 || room < 0) {
    SetLastError(87);
    return 0;
  }
  size_t len = n == -1 ? std::char_traits<char16_t>::length(src) + 1 : static_cast<size_t>(n);
  std::string b = zepk::sys::toCodePage(std::u16string_view(src, len), pageOf(CodePage));
  if (usedDefault) *usedDefault = FALSE;
  return deliver(b.data(), static_cast<int>(b.size()), out, room);
}
