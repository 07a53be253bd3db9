// The Reg* functions over the session's registry store.
#include <algorithm>
#include <cstring>
#include <map>

#include "host/system/registry.h"
#include "host/wincompat.h"

namespace zepk::sys {

namespace {

using Key = RegistryStore::Key;

struct Handles {
  std::map<uintptr_t, std::shared_ptr<Key>> open;
  uintptr_t next = 0x1000;
};

Handles& handles() {
  static auto* h = new Handles;
  return *h;
}

// The key of a handle: a root's predefined value, or one opened. Null for
// a handle that is not open.
std::shared_ptr<Key> keyOf(HKEY h) {
  uintptr_t v = reinterpret_cast<uintptr_t>(h);
  if (v >= 0x80000000u && v <= 0x80000005u) {
    int i = static_cast<int>(v - 0x80000000u);
    if (i == 5) i = 4;  // HKEY_CURRENT_CONFIG
    if (i == 4 && v == 0x80000004u) return nullptr;  // HKEY_PERFORMANCE_DATA: none here
    return registry().root(i);
  }
  auto it = handles().open.find(v);
  return it == handles().open.end() ? nullptr : it->second;
}

HKEY newHandle(std::shared_ptr<Key> k) {
  Handles& h = handles();
  uintptr_t v = h.next;
  h.next += 4;
  h.open.emplace(v, std::move(k));
  return reinterpret_cast<HKEY>(v);
}

LSTATUS commit() { return registry().save() ? ERROR_SUCCESS : ERROR_WRITE_FAULT; }

std::u16string_view text(LPCWSTR s) { return s ? std::u16string_view(s) : std::u16string_view(); }

}  // namespace

void dropRegistryHandles() { handles().open.clear(); }

}  // namespace zepk::sys

using namespace zepk::sys;

LSTATUS RegCreateKeyExW(HKEY hKey, LPCWSTR subKey, DWORD, LPWSTR, DWORD, DWORD, void*, PHKEY result,
                        LPDWORD disposition) {
  if (!result) return ERROR_INVALID_PARAMETER;
  *result = nullptr;
  auto from = keyOf(hKey);
  if (!from) return ERROR_INVALID_HANDLE;
  if (from->deleted) return ERROR_KEY_DELETED;
  std::u16string_view path = text(subKey);
  if (!path.empty() && path.front() == u'\\') return ERROR_INVALID_PARAMETER;
  bool created = false;
  auto k = registry().create(from, path, &created);
  if (!k) return ERROR_INVALID_PARAMETER;
  if (disposition) *disposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
  if (created) {
    LSTATUS st = commit();
    if (st != ERROR_SUCCESS) return st;
  }
  *result = newHandle(std::move(k));
  return ERROR_SUCCESS;
}

LSTATUS RegOpenKeyExW(HKEY hKey, LPCWSTR subKey, DWORD, DWORD, PHKEY result) {
  if (!result) return ERROR_INVALID_PARAMETER;
  *result = nullptr;
  auto from = keyOf(hKey);
  if (!from) return ERROR_INVALID_HANDLE;
  if (from->deleted) return ERROR_KEY_DELETED;
  auto k = registry().find(from, text(subKey));
  if (!k) return ERROR_FILE_NOT_FOUND;
  *result = newHandle(std::move(k));
  return ERROR_SUCCESS;
}

LSTATUS RegCloseKey(HKEY hKey) {
  uintptr_t v = reinterpret_cast<uintptr_t>(hKey);
  if (v >= 0x80000000u && v <= 0x80000005u) return ERROR_SUCCESS;
  return handles().open.erase(v) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

LSTATUS RegSetValueExW(HKEY hKey, LPCWSTR name, DWORD, DWORD type, const BYTE* data, DWORD size) {
  auto k = keyOf(hKey);
  if (!k) return ERROR_INVALID_HANDLE;
  if (k->deleted) return ERROR_KEY_DELETED;
  if (!data && size) return ERROR_INVALID_PARAMETER;
  if (type == REG_DWORD && size != 4) return ERROR_INVALID_PARAMETER;
  std::vector<uint8_t> bytes(data, data + size);
  registry().setValue(*k, text(name), type, std::move(bytes));
  return commit();
}

LSTATUS RegQueryValueExW(HKEY hKey, LPCWSTR name, LPDWORD, LPDWORD type, LPBYTE data, LPDWORD size) {
  auto k = keyOf(hKey);
  if (!k) return ERROR_INVALID_HANDLE;
  if (k->deleted) return ERROR_KEY_DELETED;
  if (data && !size) return ERROR_INVALID_PARAMETER;
  const RegistryStore::Value* v = RegistryStore::value(*k, text(name));
  if (!v) return ERROR_FILE_NOT_FOUND;
  if (type) *type = v->type;
  DWORD need = static_cast<DWORD>(v->data.size());
  if (!data) {
    if (size) *size = need;
    return ERROR_SUCCESS;
  }
  if (*size < need) {
    *size = need;
    return ERROR_MORE_DATA;
  }
  if (need) std::memcpy(data, v->data.data(), need);
  *size = need;
  return ERROR_SUCCESS;
}

LSTATUS RegDeleteValueW(HKEY hKey, LPCWSTR name) {
  auto k = keyOf(hKey);
  if (!k) return ERROR_INVALID_HANDLE;
  if (k->deleted) return ERROR_KEY_DELETED;
  if (!registry().removeValue(*k, text(name))) return ERROR_FILE_NOT_FOUND;
  return commit();
}

LSTATUS RegDeleteKeyW(HKEY hKey, LPCWSTR subKey) {
  auto from = keyOf(hKey);
  if (!from) return ERROR_INVALID_HANDLE;
  if (from->deleted) return ERROR_KEY_DELETED;
  if (text(subKey).empty()) return ERROR_ACCESS_DENIED;  // a key does not delete itself this way
  auto k = registry().find(from, text(subKey));
  if (!k) return ERROR_FILE_NOT_FOUND;
  if (!registry().removeKey(k)) return ERROR_ACCESS_DENIED;
  return commit();
}

namespace {

// Copies a name to a buffer of *cch characters (with its zero); on return
// *cch is the length without it.
LSTATUS giveName(const std::u16string& name, LPWSTR buf, LPDWORD cch) {
  if (!buf || !cch) return ERROR_INVALID_PARAMETER;
  if (*cch < name.size() + 1) {
    return ERROR_MORE_DATA;
  }
  std::copy(name.begin(), name.end(), buf);
  buf[name.size()] = 0;
  *cch = static_cast<DWORD>(name.size());
  return ERROR_SUCCESS;
}

}  // namespace

LSTATUS RegEnumKeyExW(HKEY hKey, DWORD index, LPWSTR name, LPDWORD cch, LPDWORD, LPWSTR cls, LPDWORD cchClass,
                      void*) {
  auto k = keyOf(hKey);
  if (!k) return ERROR_INVALID_HANDLE;
  if (k->deleted) return ERROR_KEY_DELETED;
  auto subs = RegistryStore::sortedSubkeys(*k);
  if (index >= subs.size()) return ERROR_NO_MORE_ITEMS;
  if (cls && cchClass && *cchClass) cls[0] = 0;
  if (cchClass) *cchClass = 0;
  return giveName(subs[index]->name, name, cch);
}

LSTATUS RegEnumValueW(HKEY hKey, DWORD index, LPWSTR name, LPDWORD cch, LPDWORD, LPDWORD type, LPBYTE data,
                      LPDWORD size) {
  auto k = keyOf(hKey);
  if (!k) return ERROR_INVALID_HANDLE;
  if (k->deleted) return ERROR_KEY_DELETED;
  if (index >= k->values.size()) return ERROR_NO_MORE_ITEMS;
  const RegistryStore::Value& v = k->values[index];
  LSTATUS st = giveName(v.name, name, cch);
  if (st != ERROR_SUCCESS) return st;
  if (type) *type = v.type;
  DWORD need = static_cast<DWORD>(v.data.size());
  if (data) {
    if (!size) return ERROR_INVALID_PARAMETER;
    if (*size < need) {
      *size = need;
      return ERROR_MORE_DATA;
    }
    if (need) std::memcpy(data, v.data.data(), need);
  }
  if (size) *size = need;
  return ERROR_SUCCESS;
}

LSTATUS RegQueryInfoKeyW(HKEY hKey, LPWSTR cls, LPDWORD cchClass, LPDWORD, LPDWORD subKeys, LPDWORD maxSubKeyLen,
                         LPDWORD maxClassLen, LPDWORD values, LPDWORD maxValueNameLen, LPDWORD maxValueLen,
                         LPDWORD securityDescriptor, void*) {
  auto k = keyOf(hKey);
  if (!k) return ERROR_INVALID_HANDLE;
  if (k->deleted) return ERROR_KEY_DELETED;
  if (cls && cchClass && *cchClass) cls[0] = 0;
  if (cchClass) *cchClass = 0;
  DWORD msk = 0, mvn = 0, mv = 0;
  for (auto& s : k->subkeys) msk = std::max<DWORD>(msk, static_cast<DWORD>(s->name.size()));
  for (auto& v : k->values) {
    mvn = std::max<DWORD>(mvn, static_cast<DWORD>(v.name.size()));
    mv = std::max<DWORD>(mv, static_cast<DWORD>(v.data.size()));
  }
  if (subKeys) *subKeys = static_cast<DWORD>(k->subkeys.size());
  if (maxSubKeyLen) *maxSubKeyLen = msk;
  if (maxClassLen) *maxClassLen = 0;
  if (values) *values = static_cast<DWORD>(k->values.size());
  if (maxValueNameLen) *maxValueNameLen = mvn;
  if (maxValueLen) *maxValueLen = mv;
  if (securityDescriptor) *securityDescriptor = 0;
  return ERROR_SUCCESS;
}
