#include "host/rxmodule.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <memory>

#include "host/ads.h"
#include "host/lisp/bridge.h"
#include "host/lisp/printer.h"
#include "host/rxdlinkr.h"
#include "host/system/shell.h"
#include "host/system/utf.h"

namespace zepk::rx {

enum class State { NotLoaded, Loading, Loaded, Unloading };

struct Module {
  std::u16string name;
  std::u16string key;
  AcRxEntryPoint entry = nullptr;
  bool autoload = false;
  State state = State::NotLoaded;
  uint64_t loadSeq = 0;
  bool locked = true;  // the dynamic linker's view; set anew at each load
  bool mdiAware = false;
};

namespace {

// Modules are registered by static objects of the libraries that hold them,
// in no defined order, and never go away: a module's record outlives its
// unloading, so a pointer to it stays valid.
std::vector<std::unique_ptr<Module>>& registry() {
  static auto* r = new std::vector<std::unique_ptr<Module>>;
  return *r;
}

uint64_t gLoadSeq = 0;

Module* find(std::u16string_view nameOrPath) {
  std::u16string key = moduleKey(nameOrPath);
  if (key.empty()) return nullptr;
  for (auto& m : registry()) {
    if (m->key == key) return m.get();
  }
  return nullptr;
}

void report(std::u16string_view s) {
  if (lisp::Interp* in = lisp::Interp::current()) {
    in->out().write(s);
    return;
  }
  std::string u = sys::toUtf8(s);
  std::fwrite(u.data(), 1, u.size(), stdout);
}

// Sends one message. Whatever escapes the module is reported and taken as
// its refusal; nothing crosses back into the host.
AcRx::AppRetCode send(Module* m, AcRx::AppMsgCode msg, void* pkt) {
  lisp::ModuleScope scope(m);
  try {
    return m->entry(msg, pkt);
  } catch (const lisp::LispAbort&) {
  } catch (const lisp::LispError& e) {
    if (lisp::Interp* in = lisp::Interp::current()) in->printError(e.message);
  } catch (const lisp::LispExitWithValue&) {
  } catch (const std::exception& e) {
    report(u"\nUnhandled exception in application \"" + m->name + u"\": " + sys::fromUtf8(e.what()) + u"\n");
  } catch (...) {
    report(u"\nUnhandled exception in application \"" + m->name + u"\"\n");
  }
  return AcRx::kRetError;
}

std::vector<Module*> loadedInOrder() {
  std::vector<Module*> out;
  for (auto& m : registry()) {
    if (m->state == State::Loaded) out.push_back(m.get());
  }
  std::sort(out.begin(), out.end(), [](Module* a, Module* b) { return a->loadSeq < b->loadSeq; });
  return out;
}

void dropDefinitions(Module* m) { lisp::undefineModuleFunctions(m); }

DocumentWalker& walker() {
  static auto* w = new DocumentWalker;
  return *w;
}

void eachDocument(const std::function<void()>& fn) {
  if (walker()) {
    walker()(fn);
  } else {
    fn();
  }
}

}  // namespace

std::u16string moduleKey(std::u16string_view s) {
  size_t slash = s.find_last_of(u"/\\");
  if (slash != std::u16string_view::npos) s.remove_prefix(slash + 1);
  if (s.size() >= 2 && s[1] == u':' && sys::asciiUpper(s[0]) >= u'A' && sys::asciiUpper(s[0]) <= u'Z') {
    s.remove_prefix(2);
  }
  std::u16string key;
  for (char16_t c : s) key += sys::asciiLower(c);
  for (std::u16string_view ext : {u".arx", u".crx"}) {
    if (key.size() > ext.size() && key.compare(key.size() - ext.size(), ext.size(), ext) == 0) {
      key.resize(key.size() - ext.size());
      break;
    }
  }
  return key;
}

bool registerModule(std::u16string_view name, AcRxEntryPoint entry, bool autoload) {
  if (!entry) return false;
  std::u16string key = moduleKey(name);
  if (key.empty()) return false;
  for (auto& m : registry()) {
    if (m->key == key) return false;
  }
  auto m = std::make_unique<Module>();
  m->name = std::u16string(name);
  m->key = key;
  m->entry = entry;
  m->autoload = autoload;
  // The module's handle (what kInitAppMsg gets) names its file.
  sys::registerModuleHandle(m.get(), m->name);
  registry().push_back(std::move(m));
  return true;
}

// kInitAppMsg, then kLoadDwgMsg for the open document. A module that
// answers kRetError to either is not loaded: after a refused kLoadDwgMsg it
// gets kUnloadAppMsg to undo its initialisation, and whatever it defined
// meanwhile is undefined.
Status loadModule(std::u16string_view nameOrPath) {
  Module* m = find(nameOrPath);
  if (!m) return Status::NotFound;
  if (m->state != State::NotLoaded) return Status::AlreadyLoaded;
  m->state = State::Loading;
  m->locked = true;
  m->mdiAware = false;
  if (send(m, AcRx::kInitAppMsg, m) == AcRx::kRetError) {
    dropDefinitions(m);
    m->state = State::NotLoaded;
    return Status::Refused;
  }
  m->loadSeq = ++gLoadSeq;
  m->state = State::Loaded;
  bool refused = false;
  eachDocument([&] {
    if (!refused && send(m, AcRx::kLoadDwgMsg, nullptr) == AcRx::kRetError) refused = true;
  });
  if (refused) {
    m->state = State::Unloading;
    send(m, AcRx::kUnloadAppMsg, m);
    dropDefinitions(m);
    m->state = State::NotLoaded;
    return Status::Refused;
  }
  return Status::Ok;
}

// kUnloadDwgMsg, then kUnloadAppMsg. kRetError to either refuses the
// unload: the module stays loaded with what it still has defined, and after
// a refused kUnloadDwgMsg it does not get kUnloadAppMsg. A module unloaded
// loses every LISP function it left defined.
Status unloadModule(std::u16string_view nameOrPath) {
  Module* m = find(nameOrPath);
  if (!m || m->state != State::Loaded) return Status::NotLoaded;
  m->state = State::Unloading;
  bool refused = false;
  eachDocument([&] {
    if (!refused && send(m, AcRx::kUnloadDwgMsg, nullptr) == AcRx::kRetError) refused = true;
  });
  if (refused || send(m, AcRx::kUnloadAppMsg, m) == AcRx::kRetError) {
    m->state = State::Loaded;
    return Status::Refused;
  }
  dropDefinitions(m);
  m->state = State::NotLoaded;
  return Status::Ok;
}

bool isLoaded(std::u16string_view nameOrPath) {
  Module* m = find(nameOrPath);
  return m && m->state == State::Loaded;
}

std::vector<std::u16string> loadedModules() {
  std::vector<std::u16string> out;
  for (Module* m : loadedInOrder()) out.push_back(m->name);
  return out;
}

std::vector<std::u16string> registeredModules() {
  std::vector<std::u16string> out;
  for (auto& m : registry()) out.push_back(m->name);
  return out;
}

int loadAutoloadModules() {
  int n = 0;
  for (size_t i = 0; i < registry().size(); ++i) {
    Module* m = registry()[i].get();
    if (m->autoload && m->state == State::NotLoaded && loadModule(m->name) == Status::Ok) ++n;
  }
  return n;
}

int unloadAllModules() {
  std::vector<Module*> mods = loadedInOrder();
  int refused = 0;
  for (auto it = mods.rbegin(); it != mods.rend(); ++it) {
    if ((*it)->state == State::Loaded && unloadModule((*it)->name) != Status::Ok) ++refused;
  }
  return refused;
}

void documentOpened() {
  for (Module* m : loadedInOrder()) {
    if (m->state == State::Loaded) send(m, AcRx::kLoadDwgMsg, nullptr);
  }
}

void documentClosing() {
  std::vector<Module*> mods = loadedInOrder();
  for (auto it = mods.rbegin(); it != mods.rend(); ++it) {
    if ((*it)->state == State::Loaded) send(*it, AcRx::kUnloadDwgMsg, nullptr);
  }
}

void setDocumentWalker(DocumentWalker w) { walker() = std::move(w); }

const std::u16string& moduleName(const Module* m) { return m->name; }
AcRxEntryPoint moduleEntry(const Module* m) { return m->entry; }

}  // namespace zepk::rx

// ---------------------------------------------------------------- LISP

namespace zepk::lisp {

namespace {

// The value of a failed arxload or arxunload that was given onfailure: the
// value itself, or its result when it is a function.
Value onFailure(Interp& in, const Value& v) {
  Tag t = v.tag();
  if (t == Tag::Subr || t == Tag::Usubr || t == Tag::Exrx) return in.apply(v, ArgSpan{nullptr, 0});
  return v;
}

// (arxload name [onfailure]): the name on success. Failure (no module of
// that name, already loaded, refused by the module) is the error
// LOAD failed: "name", or onfailure when given.
Value fnArxload(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  const std::u16string& name = argStr(in, a[0]);
  if (rx::loadModule(name) == rx::Status::Ok) return a[0];
  if (a.size < 2) in.fail(u"LOAD failed: " + prin1String(a[0]));
  return onFailure(in, a[1]);
}

// (arxunload name [onfailure]): the name on success. A module that is not
// loaded, or that refuses, gives the error ARXUNLOAD failed: "name", or
// onfailure when given.
Value fnArxunload(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  const std::u16string& name = argStr(in, a[0]);
  if (rx::unloadModule(name) == rx::Status::Ok) return a[0];
  if (a.size < 2) in.fail(u"ARXUNLOAD failed: " + prin1String(a[0]));
  return onFailure(in, a[1]);
}

// (arx): the names of the loaded modules, in the order they were loaded.
Value fnArx(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 0);
  std::vector<Value> names;
  for (const std::u16string& n : rx::loadedModules()) names.push_back(str(n));
  return listFrom(std::move(names));
}

}  // namespace

void registerModuleFunctions(Interp& in) {
  in.defSubr("arxload", fnArxload);
  in.defSubr("arxunload", fnArxunload);
  in.defSubr("arx", fnArx);
}

}  // namespace zepk::lisp

// ---------------------------------------------------------------- ads.h

int acedArxLoad(const ACHAR* app) {
  if (!app) return RTERROR;
  try {
    return zepk::rx::loadModule(app) == zepk::rx::Status::Ok ? RTNORM : RTERROR;
  } catch (...) {
    return RTERROR;
  }
}

int acedArxUnload(const ACHAR* app) {
  if (!app) return RTERROR;
  try {
    return zepk::rx::unloadModule(app) == zepk::rx::Status::Ok ? RTNORM : RTERROR;
  } catch (...) {
    return RTERROR;
  }
}

resbuf* acedArxLoaded() {
  resbuf* head = nullptr;
  resbuf** tail = &head;
  for (const std::u16string& n : zepk::rx::loadedModules()) {
    resbuf* rb = acutBuildList(RTSTR, n.c_str(), 0);
    if (!rb) break;
    *tail = rb;
    tail = &rb->rbnext;
  }
  return head;
}

const ACHAR* acedGetAppName() {
  zepk::rx::Module* m = zepk::lisp::currentModule();
  return m ? m->name.c_str() : u"";
}

// ---------------------------------------------------------------- rxdlinkr.h

namespace {

// The handle an application holds is its module record.
zepk::rx::Module* byHandle(void* appId) {
  auto* m = static_cast<zepk::rx::Module*>(appId);
  for (auto& r : zepk::rx::registry()) {
    if (r.get() == m) return m;
  }
  return nullptr;
}

}  // namespace

bool AcRxDynamicLinker::unlockApplication(void* appId) const {
  zepk::rx::Module* m = byHandle(appId);
  if (m) m->locked = false;
  return m != nullptr;
}

bool AcRxDynamicLinker::lockApplication(void* appId) const {
  zepk::rx::Module* m = byHandle(appId);
  if (m) m->locked = true;
  return m != nullptr;
}

bool AcRxDynamicLinker::isApplicationLocked(const ACHAR* name) const {
  zepk::rx::Module* m = name ? zepk::rx::find(name) : nullptr;
  return m && m->state != zepk::rx::State::NotLoaded && m->locked;
}

bool AcRxDynamicLinker::registerAppMDIAware(void* appId) const {
  zepk::rx::Module* m = byHandle(appId);
  if (m) m->mdiAware = true;
  return m != nullptr;
}

bool AcRxDynamicLinker::registerAppNotMDIAware(void* appId) const {
  zepk::rx::Module* m = byHandle(appId);
  if (m) m->mdiAware = false;
  return m != nullptr;
}

bool AcRxDynamicLinker::isAppMDIAware(const ACHAR* name) const {
  zepk::rx::Module* m = name ? zepk::rx::find(name) : nullptr;
  return m && m->mdiAware;
}

AcRxDynamicLinker* acrxDynamicLinkerPtr() {
  static auto* linker = new AcRxDynamicLinker;
  return linker;
}

