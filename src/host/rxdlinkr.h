// The dynamic linker: what the host knows of each loaded application
// besides its messages. An application is locked when it loads; unlocking
// it says that it may be unloaded while the session runs (this host unloads
// any module on request and only records the state). MDI awareness says
// that it copes with several open drawings. Both take the handle the
// application got with kInitAppMsg.
#pragma once

#include "host/ads.h"
#include "host/rxobject.h"  // services are AcRxObjects

class AcRxDynamicLinker {
 public:
  bool unlockApplication(void* appId) const;
  bool lockApplication(void* appId) const;
  bool isApplicationLocked(const ACHAR* name) const;
  bool registerAppMDIAware(void* appId) const;
  bool registerAppNotMDIAware(void* appId) const;
  bool isAppMDIAware(const ACHAR* name) const;
};

AcRxDynamicLinker* acrxDynamicLinkerPtr();
#define acrxDynamicLinker acrxDynamicLinkerPtr()

// Services: names an application registers so that others can ask whether
// it (or what it provides) is present. A service stays registered for the
// session.
bool acrxServiceIsRegistered(const ACHAR* serviceName);
// Registers the name (again is harmless) and gives the service's record.
AcRxObject* acrxRegisterService(const ACHAR* serviceName);
