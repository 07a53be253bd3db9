#include "host/system/hostenv.h"

#include <cstdlib>

#include "host/rxregsvc.h"
#include "host/system/utf.h"
#include "host/wincompat.h"

namespace zepk::sys {

std::u16string profileKey() { return std::u16string(acrxProductKey()) + u"\\Profiles\\<<Unnamed Profile>>"; }

std::optional<std::u16string> hostSetting(std::u16string_view name) {
  if (name.empty()) return std::nullopt;
  std::u16string n(name);
  HKEY k = nullptr;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, (profileKey() + u"\\General").c_str(), 0, KEY_READ, &k) == ERROR_SUCCESS) {
    DWORD type = 0, size = 0;
    if (RegQueryValueExW(k, n.c_str(), nullptr, &type, nullptr, &size) == ERROR_SUCCESS &&
        (type == REG_SZ || type == REG_EXPAND_SZ)) {
      std::u16string buf(size / 2 + 1, u'\0');
      DWORD got = size;
      if (RegQueryValueExW(k, n.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(buf.data()), &got) ==
          ERROR_SUCCESS) {
        buf.resize(got / 2);
        size_t zero = buf.find(u'\0');
        if (zero != std::u16string::npos) buf.resize(zero);
        RegCloseKey(k);
        return buf;
      }
    }
    RegCloseKey(k);
  }
  const char* v = std::getenv(toUtf8(name).c_str());
  if (!v) return std::nullopt;
  return fromUtf8(v);
}

bool setHostSetting(std::u16string_view name, std::u16string_view value) {
  if (name.empty()) return false;
  HKEY k = nullptr;
  if (RegCreateKeyExW(HKEY_CURRENT_USER, (profileKey() + u"\\General").c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                      &k, nullptr) != ERROR_SUCCESS)
    return false;
  std::u16string n(name), v(value);
  LSTATUS st = RegSetValueExW(k, n.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(v.c_str()),
                              static_cast<DWORD>((v.size() + 1) * 2));
  RegCloseKey(k);
  return st == ERROR_SUCCESS;
}

std::vector<std::u16string> supportFolders() {
  std::vector<std::u16string> out;
  std::optional<std::u16string> acad = hostSetting(u"ACAD");
  if (!acad) return out;
  size_t pos = 0;
  while (pos <= acad->size()) {
    size_t semi = acad->find(u';', pos);
    if (semi == std::u16string::npos) semi = acad->size();
    std::u16string part = acad->substr(pos, semi - pos);
    size_t a = part.find_first_not_of(u' '), b = part.find_last_not_of(u' ');
    if (a != std::u16string::npos) out.push_back(part.substr(a, b - a + 1));
    pos = semi + 1;
  }
  return out;
}

}  // namespace zepk::sys

int acedGetEnv(const ACHAR* sym, ACHAR* var, size_t len) {
  if (!sym || !var || len == 0) return RTERROR;
  std::optional<std::u16string> v = zepk::sys::hostSetting(sym);
  if (!v) {
    var[0] = 0;
    return RTERROR;
  }
  if (v->size() >= len) return RTERROR;  // the buffer is too small
  std::copy(v->begin(), v->end(), var);
  var[v->size()] = 0;
  return RTNORM;
}

int acedSetEnv(const ACHAR* sym, const ACHAR* val) {
  if (!sym || !*sym || !val) return RTERROR;
  return zepk::sys::setHostSetting(sym, val) ? RTNORM : RTERROR;
}
