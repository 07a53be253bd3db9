// The environment: variables of the process and the version of the language.
#include <cstdlib>
#include <map>

#include "host/lisp/interp.h"
#include "host/system/utf.h"

namespace zepk::lisp {

namespace {

// Values set by setenv during the session; they shadow the process
// environment, as the host's own settings shadow the system's.
std::map<std::string, std::u16string>& settings() {
  static std::map<std::string, std::u16string> m;
  return m;
}

std::string key(const std::u16string& name) {
  std::string k = sys::toUtf8(name);
  for (char& c : k)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  return k;
}

Value fnGetenv(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  const std::u16string& name = argStr(in, a[0]);
  auto it = settings().find(key(name));
  if (it != settings().end()) return str(it->second);
  const char* v = std::getenv(sys::toUtf8(name).c_str());
  if (!v) return Value();
  return str(std::string_view(v));
}

Value fnSetenv(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  const std::u16string& name = argStr(in, a[0]);
  const std::u16string& value = argStr(in, a[1]);
  settings()[key(name)] = value;
  return a[1];
}

Value fnVer(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 0);
  return str(std::string_view("Visual LISP 2008 (en)"));
}

}  // namespace

void registerEnv(Interp& in) {
  in.defSubr("getenv", fnGetenv);
  in.defSubr("setenv", fnSetenv);
  in.defSubr("ver", fnVer);
}

}  // namespace zepk::lisp
