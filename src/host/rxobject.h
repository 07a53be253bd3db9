// Run-time classes. Every database class has one AcRxClass record: its name,
// its parent, its DXF name and the application that registered it, and a
// pseudo-constructor that makes an empty instance (the DXF reader makes
// objects by DXF name through it). Records live in the class dictionary
// until they are deleted; the toolkit registers its own classes at load and
// deletes some at unload.
#pragma once

#include <string>
#include <vector>

#include "host/ads.h"

class AcRxClass;

class AcRxObject {
 public:
  virtual ~AcRxObject() = default;
  static AcRxClass* desc();
  static AcRxObject* cast(const AcRxObject* inPtr) { return const_cast<AcRxObject*>(inPtr); }
  virtual AcRxClass* isA() const { return desc(); }
  bool isKindOf(const AcRxClass* aClass) const;
};

typedef AcRxObject* (*AcRxPseudoConstructor)();

class AcRxClass : public AcRxObject {
 public:
  AcRxClass(const ACHAR* name, AcRxClass* parent, AcRxPseudoConstructor ctor, const ACHAR* dxfName,
            const ACHAR* appName, int dwgVersion = 0, int maintenanceVersion = 0, int proxyFlags = 0);
  const ACHAR* name() const { return name_.c_str(); }
  const ACHAR* dxfName() const { return dxfName_.c_str(); }
  const ACHAR* appName() const { return appName_.c_str(); }
  AcRxClass* myParent() const { return parent_; }
  AcRxObject* create() const { return ctor_ ? ctor_() : nullptr; }
  bool isDerivedFrom(const AcRxClass* other) const;
  int proxyFlags() const { return proxyFlags_; }
  int dwgVersion() const { return dwgVersion_; }
  int maintenanceVersion() const { return maintenanceVersion_; }

  static AcRxClass* desc();
  AcRxClass* isA() const override { return desc(); }

 private:
  std::u16string name_, dxfName_, appName_;
  AcRxClass* parent_;
  AcRxPseudoConstructor ctor_;
  int dwgVersion_, maintenanceVersion_, proxyFlags_;
};

// Registers a class under its name in the class dictionary. A class whose
// parent is not registered yet is refused (null).
AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentClassName, int dwgVersion, int maintVersion,
                        int proxyFlags, AcRxPseudoConstructor pseudoConstructor, const ACHAR* dxfName,
                        const ACHAR* appName);
AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentClassName,
                        AcRxPseudoConstructor pseudoConstructor = nullptr, const ACHAR* dxfName = nullptr,
                        const ACHAR* appName = nullptr);
// Removes a class from the class dictionary and frees its record.
void deleteAcRxClass(AcRxClass* pClassObj);
// Kept for code that calls it after registering; records are linked to
// their parents when they are made.
void acrxBuildClassHierarchy();
// Stops the host with the message, as the host does on a fatal error.
[[noreturn]] void acrx_abort(const ACHAR* format, ...);

// The class dictionary ("ClassDictionary"): lookups by name and DXF name.
AcRxClass* acrxFindClass(const ACHAR* name);
AcRxClass* acrxFindClassByDxfName(const ACHAR* dxfName);
std::vector<AcRxClass*> acrxAllClasses();

// The members every database class declares: its record, the checked cast
// and isA. ACRX_DEFINE_MEMBERS(Class) goes in one source file.
#define ACRX_DECLARE_MEMBERS(CLASS_NAME)                                                \
  static AcRxClass* desc();                                                             \
  static CLASS_NAME* cast(const AcRxObject* inPtr) {                                    \
    return (inPtr && inPtr->isKindOf(CLASS_NAME::desc())) ? (CLASS_NAME*)(inPtr) : nullptr; \
  }                                                                                     \
  AcRxClass* isA() const override { return desc(); }                                    \
  static AcRxClass* gpDesc

#define ACRX_DEFINE_MEMBERS(CLASS_NAME)             \
  AcRxClass* CLASS_NAME::gpDesc = nullptr;           \
  AcRxClass* CLASS_NAME::desc() { return gpDesc; }
