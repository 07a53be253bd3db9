// The environment: the host's settings, the variables of the process, and
// the version of the language.
#include <cstdlib>
#include <optional>

#include "host/lisp/interp.h"
#include "host/system/hostenv.h"
#include "host/system/utf.h"

namespace zepk::lisp {

namespace {

// The host's settings: those setenv keeps (in the registry store, so they
// last), then the process environment.
Value fnGetenv(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  const std::u16string& name = argStr(in, a[0]);
  std::optional<std::u16string> v = sys::hostSetting(name);
  return v ? str(std::move(*v)) : Value();
}

Value fnSetenv(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  const std::u16string& name = argStr(in, a[0]);
  const std::u16string& value = argStr(in, a[1]);
  sys::setHostSetting(name, value);
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
