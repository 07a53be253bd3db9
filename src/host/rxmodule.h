// Compiled modules: the host's application messages and the registry of the
// modules linked into this program.
//
// A module is a library with one entry point that takes the host's numbered
// messages, as a loadable application does in the CAD host. Linking the
// library registers it through a static ModuleRegistrar; loading it by name
// (arxload, acedArxLoad, or at start-up for autoload modules) sends
// kInitAppMsg and then kLoadDwgMsg for the open document; unloading sends
// kUnloadDwgMsg and then kUnloadAppMsg. While a module's messages run, and
// while one of its LISP functions runs, it is the current module: what it
// defines with acedDefun and acedRegFunc belongs to it, and its function
// codes are its own. A function it defined without acedRegFunc is called by
// sending it kInvkSubrMsg, which returns the function's status.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace AcRx {

enum AppMsgCode {
  kNullMsg = 0,
  kInitAppMsg = 1,
  kUnloadAppMsg = 2,
  kLoadDwgMsg = 3,
  kUnloadDwgMsg = 4,
  kInvkSubrMsg = 5,
  kCfgMsg = 6,
  kEndMsg = 7,
  kQuitMsg = 8,
  kSaveMsg = 9,
  kDependencyMsg = 10,
  kNoDependencyMsg = 11,
  kOleUnloadAppMsg = 12,
  kPreQuitMsg = 13,
  kInitDialogMsg = 14,
  kEndDialogMsg = 15,
  kSuspendMsg = 16,
};

enum AppRetCode {
  kRetOK = 0,
  kRetError = 3,
};

}  // namespace AcRx

// A module's entry point. For kInitAppMsg and kUnloadAppMsg pkt is the
// module's application handle (opaque); for the document messages and
// kInvkSubrMsg it is null. For kInvkSubrMsg the result is the called
// function's status (RSRSLT, RTERROR...) cast to AppRetCode.
typedef AcRx::AppRetCode (*AcRxEntryPoint)(AcRx::AppMsgCode msg, void* pkt);

namespace zepk::rx {

struct Module;

// Adds a module to the registry. Names are compared without case; a second
// module of a name already registered is refused (false).
bool registerModule(std::u16string_view name, AcRxEntryPoint entry, bool autoload = false);

// Put one of these at namespace scope in the module's library:
//   static zepk::rx::ModuleRegistrar reg(u"mymodule", &entryPoint);
// and make sure the linker keeps that object file (see
// examples/sample_module/CMakeLists.txt).
struct ModuleRegistrar {
  ModuleRegistrar(const char16_t* name, AcRxEntryPoint entry, bool autoload = false) {
    registerModule(name, entry, autoload);
  }
};

enum class Status {
  Ok,
  NotFound,       // no module of that name is linked in
  AlreadyLoaded,  // load of a loaded module (or one being loaded)
  NotLoaded,      // unload of a module that is not loaded
  Refused,        // the module answered kRetError
};

// The registry key of a name as the user gives it: the file name without
// its folder and without an ".arx" or ".crx" extension, in lower case.
// "C:\\Apps\\ZepkSample.arx" and "zepksample" are the same module.
std::u16string moduleKey(std::u16string_view nameOrPath);

Status loadModule(std::u16string_view nameOrPath);
Status unloadModule(std::u16string_view nameOrPath);
bool isLoaded(std::u16string_view nameOrPath);
// Registered names of the loaded modules, in the order they were loaded.
std::vector<std::u16string> loadedModules();
std::vector<std::u16string> registeredModules();

// Start-up and shut-down of the host: loads every autoload module (returns
// how many loaded), unloads all loaded modules in reverse order (returns how
// many refused and stay loaded).
int loadAutoloadModules();
int unloadAllModules();

// Documents opened or closed after the modules were loaded: kLoadDwgMsg or
// kUnloadDwgMsg to every loaded module (closing in the reverse order), with
// that document current.
void documentOpened();
void documentClosing();

// The open documents, for a module loaded or unloaded while several are
// open: the walker runs fn once for each document that has been set up,
// with that document current, so that the module gets kLoadDwgMsg (or
// kUnloadDwgMsg) for each as the host sends them. The document manager
// sets it; with none, the messages go once, for the one drawing.
using DocumentWalker = std::function<void(const std::function<void()>&)>;
void setDocumentWalker(DocumentWalker walker);

// The bridge's side: the registered name and entry point of a module.
const std::u16string& moduleName(const Module* m);
AcRxEntryPoint moduleEntry(const Module* m);

}  // namespace zepk::rx
