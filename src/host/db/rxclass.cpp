// The class dictionary and the records of run-time classes.
#include "host/rxdlinkr.h"
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>

#include "host/db/internal.h"
#include "host/rxobject.h"
#include "host/system/utf.h"
#include "host/system/winformat.h"

namespace {

struct ClassDictionary {
  std::map<std::u16string, std::unique_ptr<AcRxClass>> byName;
};

ClassDictionary& dict() {
  static auto* d = new ClassDictionary;  // lives for the process, as the host's does
  static bool registering = false;
  if (!registering) {
    // The host's own classes stand in the dictionary before anything is
    // looked up or derived from them.
    registering = true;
    zepk::db::registerHostClasses();
  }
  return *d;
}

std::u16string nameOf(const ACHAR* s) { return s ? std::u16string(s) : std::u16string(); }

}  // namespace

// The two roots are made on first use like the other host classes; not as
// function statics, since making the dictionary registers them in turn.
namespace {
AcRxClass* gRxObject = nullptr;
AcRxClass* gRxClass = nullptr;
}  // namespace

AcRxClass* AcRxObject::desc() {
  if (!gRxObject) gRxObject = newAcRxClass(u"AcRxObject", nullptr, nullptr, u"", u"");
  return gRxObject;
}

bool AcRxObject::isKindOf(const AcRxClass* aClass) const {
  const AcRxClass* c = isA();
  return c && c->isDerivedFrom(aClass);
}

AcRxClass::AcRxClass(const ACHAR* name, AcRxClass* parent, AcRxPseudoConstructor ctor, const ACHAR* dxfName,
                     const ACHAR* appName, int dwgVersion, int maintenanceVersion, int proxyFlags)
    : name_(nameOf(name)),
      dxfName_(nameOf(dxfName)),
      appName_(nameOf(appName)),
      parent_(parent),
      ctor_(ctor),
      dwgVersion_(dwgVersion),
      maintenanceVersion_(maintenanceVersion),
      proxyFlags_(proxyFlags) {}

bool AcRxClass::isDerivedFrom(const AcRxClass* other) const {
  for (const AcRxClass* c = this; c; c = c->parent_)
    if (c == other) return true;
  return false;
}

AcRxClass* AcRxClass::desc() {
  if (!gRxClass) gRxClass = newAcRxClass(u"AcRxClass", u"AcRxObject");
  return gRxClass;
}

AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentClassName, int dwgVersion, int maintVersion,
                        int proxyFlags, AcRxPseudoConstructor pseudoConstructor, const ACHAR* dxfName,
                        const ACHAR* appName) {
  std::u16string name = nameOf(className);
  if (name.empty()) return nullptr;
  auto& d = dict();
  auto it = d.byName.find(name);
  if (it != d.byName.end()) return it->second.get();  // the record already made
  AcRxClass* parent = nullptr;
  if (parentClassName && *parentClassName) {
    auto p = d.byName.find(parentClassName);
    if (p == d.byName.end()) return nullptr;
    parent = p->second.get();
  }
  auto rec = std::make_unique<AcRxClass>(className, parent, pseudoConstructor, dxfName, appName, dwgVersion,
                                         maintVersion, proxyFlags);
  AcRxClass* out = rec.get();
  d.byName.emplace(std::move(name), std::move(rec));
  return out;
}

AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentClassName, AcRxPseudoConstructor ctor,
                        const ACHAR* dxfName, const ACHAR* appName) {
  return newAcRxClass(className, parentClassName, 0, 0, 0, ctor, dxfName, appName);
}

void deleteAcRxClass(AcRxClass* pClassObj) {
  if (!pClassObj) return;
  auto& d = dict();
  for (auto it = d.byName.begin(); it != d.byName.end(); ++it) {
    if (it->second.get() == pClassObj) {
      d.byName.erase(it);
      return;
    }
  }
}

void acrxBuildClassHierarchy() {}

void acrx_abort(const ACHAR* format, ...) {
  va_list ap;
  va_start(ap, format);
  std::u16string msg = zepk::sys::vformatW(format, ap);
  va_end(ap);
  std::fprintf(stderr, "zepk: fatal: %s\n", zepk::sys::toUtf8(msg).c_str());
  std::abort();
}

AcRxClass* acrxFindClass(const ACHAR* name) {
  auto& d = dict();
  auto it = d.byName.find(nameOf(name));
  return it == d.byName.end() ? nullptr : it->second.get();
}

AcRxClass* acrxFindClassByDxfName(const ACHAR* dxfName) {
  std::u16string n = nameOf(dxfName);
  if (n.empty()) return nullptr;
  for (auto& [k, c] : dict().byName)
    if (n == c->dxfName()) return c.get();
  return nullptr;
}

std::vector<AcRxClass*> acrxAllClasses() {
  std::vector<AcRxClass*> out;
  for (auto& [k, c] : dict().byName) out.push_back(c.get());
  return out;
}

// ---------------------------------------------------------------- services

namespace {

struct Service : AcRxObject {};

std::vector<std::pair<std::u16string, std::unique_ptr<Service>>>& services() {
  static auto* s = new std::vector<std::pair<std::u16string, std::unique_ptr<Service>>>;
  return *s;
}

}  // namespace

bool acrxServiceIsRegistered(const ACHAR* name) {
  if (!name) return false;
  for (auto& s : services()) {
    if (s.first == name) return true;
  }
  return false;
}

AcRxObject* acrxRegisterService(const ACHAR* name) {
  if (!name || !*name) return nullptr;
  for (auto& s : services()) {
    if (s.first == name) return s.second.get();
  }
  services().emplace_back(name, std::make_unique<Service>());
  return services().back().second.get();
}
