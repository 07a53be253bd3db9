// The host's registry record: its product key, the record of a loadable
// application that the host reads to load it on demand, and the host's
// settings.
#pragma once

#include <string>

#include "host/adesk.h"
#include "host/ads.h"

// The key under which the host keeps its settings in both the user's and
// the machine's hive: "Software\Zepk\Host\R17.1" (release 17.1).
const ACHAR* acrxProductKey();

// An application's record under <product key>\Applications\<name>:
// DESCRIPTION (text), LOADER (the module's file) and LOADCTRLS (when the
// host loads it, a 32-bit number).
class AcadAppInfo {
 public:
  enum AppInfoCode { kNoError = 0, kNoModule = 1, kWriteFailed = 2, kNoName = 3 };

  void setAppName(const ACHAR* name) { name_ = name ? name : u""; }
  const ACHAR* appName() const { return name_.c_str(); }
  void setModuleName(const ACHAR* module) { module_ = module ? module : u""; }
  const ACHAR* moduleName() const { return module_.c_str(); }
  void setAppDesc(const ACHAR* desc) { desc_ = desc ? desc : u""; }
  const ACHAR* appDesc() const { return desc_.c_str(); }
  void setLoadReason(int reason) { reason_ = reason; }
  int loadReason() const { return reason_; }

  // Writes the record to the current user's hive, or with machineHive to
  // the machine's (HKEY_LOCAL_MACHINE). The first argument is kept for
  // the host's signature and has no effect here.
  AppInfoCode writeToRegistry(bool alsoWriteNonDBXSection = false, bool machineHive = false);
  // Reads the record of appName() back from the user's hive; kNoName when
  // there is none.
  AppInfoCode readFromRegistry();

 private:
  std::u16string name_, module_, desc_;
  int reason_ = 0;
};

// The host's settings (as LISP's getenv and setenv see them), kept in the
// current profile's General key under the product key: RTNORM, or RTERROR
// for a name with no setting (nor a variable of the process environment)
// or a buffer too small for the value and its zero.
int acedGetEnv(const ACHAR* sym, ACHAR* var, size_t len);
int acedSetEnv(const ACHAR* sym, const ACHAR* val);
