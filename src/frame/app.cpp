#include "frame/app.h"

#include <algorithm>
#include <span>

#include "frame/commands.h"
#include "frame/functable.h"
#include "frame/version.h"
#include "host/acedinpt.h"
#include "host/aced.h"
#include "host/dbents.h"
#include "host/gegbl.h"
#include "host/rxdlinkr.h"
#include "host/rxregsvc.h"
#include "host/wincompat.h"

namespace zepk::frame {

// ---------------------------------------------------------------- records

void MonitorState::reset() {
  pointCount = 0;
  text.clear();
  points.clear();
  resbuf rb;
  if (acedGetVar(u"LASTPOINT", &rb) == RTNORM && (rb.restype == RT3DPOINT || rb.restype == RTPOINT)) {
    lastPoint.set(rb.resval.rpoint[0], rb.resval.rpoint[1], rb.restype == RT3DPOINT ? rb.resval.rpoint[2] : 0.0);
  }
  document = acDocManager->curDocument();
}

namespace {

bool readVar(const ACHAR* name, double out[3]) {
  resbuf rb;
  if (acedGetVar(name, &rb) != RTNORM) return false;
  switch (rb.restype) {
    case RTPOINT:
    case RT3DPOINT:
      for (int i = 0; i < 3; ++i) out[i] = rb.resval.rpoint[i];
      return true;
    case RTREAL: out[0] = rb.resval.rreal; return true;
    case RTSHORT: out[0] = rb.resval.rint; return true;
    default: return false;
  }
}

}  // namespace

// The view is found from its centre, its height and the screen's shape.
CDocData::CDocData() : tolerance(AcGeContext::gTol) {
  double ctr[3] = {0, 0, 0}, size[3] = {0, 0, 0}, screen[3] = {0, 0, 0};
  if (readVar(u"VIEWCTR", ctr) && readVar(u"VIEWSIZE", size)) {
    double h = size[0];
    double w = (readVar(u"SCREENSIZE", screen) && screen[1] > 0) ? h * screen[0] / screen[1] : h;
    savedView[0] = ctr[0] - w / 2;
    savedView[1] = ctr[1] - h / 2;
    savedView[2] = ctr[0] + w / 2;
    savedView[3] = ctr[1] + h / 2;
  }
}

AcApDataManager<CDocData>& docDataManager() {
  static auto* m = new AcApDataManager<CDocData>;
  return *m;
}

CDocData& currentDocData() { return docDataManager().docData(); }

// ---------------------------------------------------------------- reactors

ACRX_DEFINE_MEMBERS(CMyDatabaseReactor);
ACRX_DEFINE_MEMBERS(CMyInputPointFilter);

namespace {

// Registers a class once: a class of that name already in the dictionary
// is taken when it is this one, and stops the host when it is another.
void initClass(AcRxClass*& gp, const ACHAR* name) {
  if (AcRxClass* c = acrxFindClass(name)) {
    if (c != gp) acrx_abort(u"Class mismatch");
    return;
  }
  gp = newAcRxClass(name, u"AcRxObject", 0, 0, 0, nullptr, u"", u"ZEPK API");
}

void addOnce(std::vector<const AcDbEntity*>& v, const AcDbObject* obj) {
  const AcDbEntity* e = AcDbEntity::cast(obj);
  if (!e) return;
  if (std::find(v.begin(), v.end(), e) == v.end()) {
    // Room grows eight entries at a time.
    if (v.size() == v.capacity()) v.reserve(v.size() + 8);
    v.push_back(e);
  }
}

}  // namespace

void CMyDatabaseReactor::rxInit() { initClass(gpDesc, u"CMyDatabaseReactor"); }
void CMyInputPointFilter::rxInit() { initClass(gpDesc, u"CMyInputPointFilter"); }

CMyDatabaseReactor::CMyDatabaseReactor(AcDbDatabase* db) : db_(db) {
  if (db_) db_->addReactor(this);
}

CMyDatabaseReactor::~CMyDatabaseReactor() {
  if (db_) db_->removeReactor(this);
}

void CMyDatabaseReactor::objectAppended(const AcDbDatabase* db, const AcDbObject* obj) {
  addOnce(appended_, obj);
  AcDbDatabaseReactor::objectAppended(db, obj);
}

void CMyDatabaseReactor::objectModified(const AcDbDatabase* db, const AcDbObject* obj) {
  addOnce(modified_, obj);
  AcDbDatabaseReactor::objectModified(db, obj);
}

void CMyDatabaseReactor::objectErased(const AcDbDatabase* db, const AcDbObject* obj, bool erased) {
  addOnce(erased_, obj);
  AcDbDatabaseReactor::objectErased(db, obj, erased);
}

CMyInputContextReactor::CMyInputContextReactor(AcApDocument* doc) : doc_(doc) {
  if (doc_) acedInputPointManager(doc_)->addInputContextReactor(this);
}

CMyInputContextReactor::~CMyInputContextReactor() {
  if (doc_) acedInputPointManager(doc_)->removeInputContextReactor(this);
}

void CMyInputContextReactor::beginGetPoint(const AcGePoint3d* pointIn, const ACHAR* p, int, const ACHAR* kw) {
  prompt = p ? p : u"";
  keywords = kw ? kw : u"";
  if (pointIn) point = *pointIn;
}

void CMyInputContextReactor::endGetPoint(Acad::PromptStatus status, const AcGePoint3d& pointOut, const ACHAR*&) {
  lastStatus = status;
  point = pointOut;
}

CMyInputPointFilter::CMyInputPointFilter(AcApDocument* doc) : doc_(doc) {
  if (doc_) acedInputPointManager(doc_)->registerPointFilter(this);
}

CMyInputPointFilter::~CMyInputPointFilter() {
  AcEdInputPointManager* m = doc_ ? acedInputPointManager(doc_) : nullptr;
  if (m && m->currentPointFilter() == this) m->revokePointFilter();
}

Acad::ErrorStatus CMyInputPointFilter::processInputPoint(const AcEdInputPoint&, bool& changedPoint, AcGePoint3d&) {
  changedPoint = false;
  return Acad::eOk;
}

// ---------------------------------------------------------------- tables

namespace {

// The class registration table. Rows whose class is not built yet are
// empty and skipped.
struct ClassRow {
  const ACHAR* name;
  AcRxClass** desc;
  void (*init)();
  bool registered;
};

ClassRow gClassRows[] = {
    {u"CMyMonitor", nullptr, nullptr, false},
    {u"CMyDatabaseReactor", &CMyDatabaseReactor::gpDesc, &CMyDatabaseReactor::rxInit, false},
    {u"KTV_MyEntity", nullptr, nullptr, false},
    {u"CDimXYZ", nullptr, nullptr, false},
    {u"CMyInputPointFilter", &CMyInputPointFilter::gpDesc, &CMyInputPointFilter::rxInit, false},
    {u"CWall", nullptr, nullptr, false},
    {u"CJZLine", nullptr, nullptr, false},
    {u"CZEPKPolyline", nullptr, nullptr, false},
    {u"CPowerLine", nullptr, nullptr, false},
    {u"CRailWay", nullptr, nullptr, false},
    {u"CSlope", nullptr, nullptr, false},
};

// The symbol section: LISP names defined for each document besides the
// function table. It holds no rows in this module.
struct SymbolRow {
  const ACHAR* name;
  int (*fn)();
  bool regFunc;
  int resource;
};
constexpr std::span<const SymbolRow> kSymbolRows{};

}  // namespace

// ---------------------------------------------------------------- messages

AcRx::AppRetCode CAPIApp::baseInit(void* pkt) {
  module_ = pkt;
  if (unlock_) acrxDynamicLinker->unlockApplication(pkt);
  if (mdiAware_) acrxDynamicLinker->registerAppMDIAware(pkt);
  bool any = false;
  for (ClassRow& row : gClassRows) {
    if (!row.init) continue;
    row.init();
    row.registered = true;
    any = true;
  }
  if (any) acrxBuildClassHierarchy();
  return AcRx::kRetOK;
}

void CAPIApp::baseTerm() {
  for (ClassRow& row : gClassRows) {
    if (!row.registered || !row.desc) continue;
    AcRxClass* cls = *row.desc;
    for (ClassRow& other : gClassRows) {
      if (&other != &row && other.desc && *other.desc == cls) other.registered = false;
    }
    deleteAcRxClass(cls);
    *row.desc = nullptr;
    row.registered = false;
  }
  for (const CommandRow& c : commandTable1()) {
    if (c.fn) acedRegCmds->removeCmd(c.group, c.global);
  }
  acedRegCmds->removeGroup(kGroupApi);
}

AcRx::AppRetCode CAPIApp::On_kInitAppMsg(void* pkt) {
  acrxDynamicLinker->unlockApplication(pkt);
  acrxDynamicLinker->registerAppMDIAware(pkt);
  AcRx::AppRetCode result = baseInit(pkt);

  // The command section: a module handle unless the flags carry bit 21.
  for (const CommandRow& c : commandTable1()) {
    if (!c.fn) continue;
    void* handle = (c.flags & 0x200000) ? nullptr : module_;
    acedRegCmds->addCommand(c.group, c.global, c.local, c.flags, c.fn, nullptr, -1, handle);
  }

  // The application's record in the host's registry, for the user and for
  // the machine.
  AcadAppInfo info;
  info.setAppName(u"ZEPK API");
  ACHAR file[1024] = {0};
  if (GetModuleFileNameW(static_cast<HMODULE>(module_), file, 1024) > 0) {
    info.setModuleName(file);
  } else {
    info.setModuleName(acedGetAppName());
  }
  info.setAppDesc((std::u16string(u"ZEPK API ") + kVersion).c_str());
  info.setLoadReason(14);
  info.writeToRegistry(false, false);
  info.writeToRegistry(false, true);

  // The second table, group by group, each call with function code -1.
  for (const CommandRow& c : commandTable2()) {
    if (c.fn) acedRegCmds->addCommand(c.group, c.global, c.local, c.flags, c.fn, nullptr, -1);
  }

  acutPrintf(u"\n====== ZEPK_API For AutoCAD R%d V%s 已加载！====== ", 2008, kVersion);

  if (!acrxServiceIsRegistered(u"KTVENTITY_DBXSERVICE")) {
    acrxBuildClassHierarchy();
    acrxRegisterService(u"KTVENTITY_DBXSERVICE");
  }
  return result;
}

AcRx::AppRetCode CAPIApp::On_kUnloadAppMsg(void*) {
  // Nothing to detach: no input monitor of the module is attached to any
  // document, so the unload goes on without the reactor count.
  acedRegCmds->removeGroup(kGroupAddEntity);
  acedRegCmds->removeGroup(kGroupCitors);
  if (hookInstalled()) removeHook();
  baseTerm();
  return AcRx::kRetOK;
}

AcRx::AppRetCode CAPIApp::On_kLoadDwgMsg(void*) {
  for (const SymbolRow& s : kSymbolRows) {
    if (!s.name) continue;
    acedDefun(s.name, 0);
    if (s.regFunc) acedRegFunc(s.fn, 0);
  }
  // Every row that has a function, its index as its code; the first
  // failure ends the definitions without a word.
  const FunctionRow* rows = functionRows();
  for (size_t i = 0; i < kFunctionCount; ++i) {
    if (!rows[i].fn) continue;
    if (acedDefun(rows[i].name, static_cast<short>(i)) != RTNORM) break;
    if (acedRegFunc(rows[i].fn, static_cast<int>(i)) != RTNORM) break;
  }
  queueCatchWrapper();
  CDocData& d = currentDocData();
  d.pointMonitorOn = false;
  d.monitor.reset();
  return AcRx::kRetOK;
}

AcRx::AppRetCode CAPIApp::On_kUnloadDwgMsg(void*) {
  for (const SymbolRow& s : kSymbolRows) {
    if (s.name) acedUndef(s.name, 0);
  }
  const FunctionRow* rows = functionRows();
  for (size_t i = 0; i < kFunctionCount; ++i) acedUndef(rows[i].name, static_cast<short>(i));
  return AcRx::kRetOK;
}

// Only the symbol section's functions come this way; the function table's
// are bound directly.
AcRx::AppRetCode CAPIApp::On_kInvkSubrMsg(void*) {
  int code = acedGetFunCode();
  int n = 0;
  for (const SymbolRow& s : kSymbolRows) {
    if (!s.name) continue;
    if (n++ == code) return static_cast<AcRx::AppRetCode>(s.fn());
  }
  return AcRx::kRetOK;
}

CAPIApp& theApp() {
  static auto* app = new CAPIApp;
  return *app;
}

AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt) {
  CAPIApp& a = theApp();
  switch (static_cast<int>(msg)) {
    case 1: return a.On_kInitAppMsg(pkt);
    case 2: return a.On_kUnloadAppMsg(pkt);
    case 3: return a.On_kLoadDwgMsg(pkt);
    case 4: return a.On_kUnloadDwgMsg(pkt);
    case 5: return a.On_kInvkSubrMsg(pkt);
    case 6: return a.On_kCfgMsg(pkt);
    case 7: return a.On_kEndMsg(pkt);
    case 8: return a.On_kQuitMsg(pkt);
    case 9: return a.On_kSaveMsg(pkt);
    case 10: return a.On_kDependencyMsg(pkt);
    case 11: return a.On_kNoDependencyMsg(pkt);
    case 12: return a.On_kOleUnloadAppMsg(pkt);
    case 13: return a.On_kPreQuitMsg(pkt);
    case 14: return a.On_kInitDialogMsg(pkt);
    case 15: return a.On_kEndDialogMsg(pkt);
    default: return AcRx::kRetOK;
  }
}

// The host generation the module was built for.
int acrxGetApiVersion() { return 17; }

namespace {
// The module is linked into the host and loaded when the session starts.
zepk::rx::ModuleRegistrar gRegistrar(kModuleName, &acrxEntryPoint, true);
}  // namespace

}  // namespace zepk::frame

// Referred to by the linker so that the registrar's object file is kept.
extern "C" {
int zepk_frame_module_link = 0;
}
