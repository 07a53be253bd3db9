#include "host/rxregsvc.h"
#include "host/wincompat.h"

const ACHAR* acrxProductKey() { return u"Software\\Zepk\\Host\\R17.1"; }

namespace {

LSTATUS setText(HKEY k, const char16_t* name, const std::u16string& v) {
  return RegSetValueExW(k, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(v.c_str()),
                        static_cast<DWORD>((v.size() + 1) * sizeof(char16_t)));
}

std::u16string recordPath(const std::u16string& name) {
  return std::u16string(acrxProductKey()) + u"\\Applications\\" + name;
}

}  // namespace

AcadAppInfo::AppInfoCode AcadAppInfo::writeToRegistry(bool, bool machineHive) {
  if (name_.empty()) return kNoName;
  if (module_.empty()) return kNoModule;
  HKEY key = nullptr;
  if (RegCreateKeyExW(machineHive ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER, recordPath(name_).c_str(), 0, nullptr,
                      REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr, &key, nullptr) != ERROR_SUCCESS) {
    return kWriteFailed;
  }
  DWORD reason = static_cast<DWORD>(reason_);
  bool ok = setText(key, u"DESCRIPTION", desc_) == ERROR_SUCCESS && setText(key, u"LOADER", module_) == ERROR_SUCCESS &&
            RegSetValueExW(key, u"LOADCTRLS", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&reason), 4) ==
                ERROR_SUCCESS;
  RegCloseKey(key);
  return ok ? kNoError : kWriteFailed;
}

AcadAppInfo::AppInfoCode AcadAppInfo::readFromRegistry() {
  if (name_.empty()) return kNoName;
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, recordPath(name_).c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return kNoName;
  auto text = [&](const char16_t* name, std::u16string* out) {
    DWORD type = 0, size = 0;
    if (RegQueryValueExW(key, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS || type != REG_SZ) return;
    std::u16string buf(size / 2 + 1, u'\0');
    if (RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(buf.data()), &size) != ERROR_SUCCESS)
      return;
    buf.resize(size / 2);
    while (!buf.empty() && buf.back() == 0) buf.pop_back();
    *out = buf;
  };
  text(u"DESCRIPTION", &desc_);
  text(u"LOADER", &module_);
  DWORD type = 0, reason = 0, size = 4;
  if (RegQueryValueExW(key, u"LOADCTRLS", nullptr, &type, reinterpret_cast<BYTE*>(&reason), &size) == ERROR_SUCCESS &&
      type == REG_DWORD)
    reason_ = static_cast<int>(reason);
  RegCloseKey(key);
  return kNoError;
}
