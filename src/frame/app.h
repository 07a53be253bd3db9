// The module's entry into the host: the one application object, the
// per-document record, and the small reactor classes the frame registers.
//
// The host sends numbered messages to acrxEntryPoint, which forwards each
// to a slot of the global CAPIApp: at init it registers classes, commands,
// the registry record and the service and prints the banner; for every
// document it defines the LISP functions and queues the catch wrapper; at
// unload it refuses to go while input monitors stay attached.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "frame/callbacks.h"
#include "host/acdocman.h"
#include "host/acedinpt.h"
#include "host/dbmain.h"
#include "host/getol.h"
#include "host/rxmodule.h"

class AcDbEntity;

namespace zepk::frame {

// What a document's input monitors collect: points picked and their text.
struct MonitorState {
  int32_t pointCount = 0;
  std::u16string text;
  std::vector<AcGePoint3d> points;
  AcGePoint3d lastPoint;
  AcApDocument* document = nullptr;
  void reset();  // counts and texts emptied, last point from LASTPOINT
};

// The record kept for each open document.
struct CDocData {
  CDocData();
  MonitorState monitor;
  bool xdataMonitorOn = false;
  bool attributeMonitorOn = false;
  bool citorsMonitorOn = false;
  ProgressMeter progress;
  bool pointMonitorOn = false;
  // The view's lower left and upper right, saved by ZEPK-Doc-SaveViewSize
  // and filled from the current view when the record is made.
  double savedView[4] = {0, 0, 0, 0};
  int32_t savedViewFlag = 0;
  int32_t reserved[3] = {-1, -1, -1};
  AcGeTol tolerance;  // the global tolerance when the record was made
};

// The manager of the records: a lookup never fails (a missing record is
// made with defaults) and a record goes with its document.
AcApDataManager<CDocData>& docDataManager();
CDocData& currentDocData();

// Watches one database and collects the entities appended, modified and
// erased in it, each once (the callback jig reads them).
class CMyDatabaseReactor : public AcDbDatabaseReactor {
 public:
  ACRX_DECLARE_MEMBERS(CMyDatabaseReactor);
  static void rxInit();

  explicit CMyDatabaseReactor(AcDbDatabase* db = nullptr);
  ~CMyDatabaseReactor() override;

  void objectAppended(const AcDbDatabase* db, const AcDbObject* obj) override;
  void objectModified(const AcDbDatabase* db, const AcDbObject* obj) override;
  void objectErased(const AcDbDatabase* db, const AcDbObject* obj, bool erased = true) override;

  const std::vector<const AcDbEntity*>& modified() const { return modified_; }
  const std::vector<const AcDbEntity*>& erased() const { return erased_; }
  const std::vector<const AcDbEntity*>& appended() const { return appended_; }
  AcDbDatabase* database() const { return db_; }

 private:
  std::vector<const AcDbEntity*> modified_, erased_, appended_;
  AcDbDatabase* db_;
};

// Hears the document's point requests and their answers; remembers the
// last prompt, keywords, point and status.
class CMyInputContextReactor : public AcEdInputContextReactor {
 public:
  explicit CMyInputContextReactor(AcApDocument* doc = nullptr);
  ~CMyInputContextReactor() override;
  void beginGetPoint(const AcGePoint3d* pointIn, const ACHAR* prompt, int initGetFlags,
                     const ACHAR* keywords) override;
  void endGetPoint(Acad::PromptStatus status, const AcGePoint3d& pointOut, const ACHAR*& keyword) override;

  std::u16string prompt, keywords;
  AcGePoint3d point;
  int lastStatus = RTNONE;

 private:
  AcApDocument* doc_;
};

// A point filter that leaves every point as it is.
class CMyInputPointFilter : public AcEdInputPointFilter {
 public:
  ACRX_DECLARE_MEMBERS(CMyInputPointFilter);
  static void rxInit();
  explicit CMyInputPointFilter(AcApDocument* doc = nullptr);
  ~CMyInputPointFilter() override;
  Acad::ErrorStatus processInputPoint(const AcEdInputPoint& input, bool& changedPoint,
                                      AcGePoint3d& newPoint) override;

 private:
  AcApDocument* doc_;
};

// The application object. Slots in the order the host's messages number
// them (message n goes to slot n-1).
class CAPIApp {
 public:
  virtual ~CAPIApp() = default;
  virtual AcRx::AppRetCode On_kInitAppMsg(void* pkt);
  virtual AcRx::AppRetCode On_kUnloadAppMsg(void* pkt);
  virtual AcRx::AppRetCode On_kLoadDwgMsg(void* pkt);
  virtual AcRx::AppRetCode On_kUnloadDwgMsg(void* pkt);
  virtual AcRx::AppRetCode On_kInvkSubrMsg(void* pkt);
  virtual AcRx::AppRetCode On_kCfgMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kEndMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kQuitMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kSaveMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kDependencyMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kNoDependencyMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kOleUnloadAppMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kPreQuitMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kInitDialogMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kEndDialogMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kReservedMsg(void*) { return AcRx::kRetOK; }
  virtual void RegisterServerComponents() {}

  void* moduleHandle() const { return module_; }

 private:
  AcRx::AppRetCode baseInit(void* pkt);
  void baseTerm();

  void* module_ = nullptr;
  bool unlock_ = true;
  bool mdiAware_ = true;
};

CAPIApp& theApp();

// The module's export: messages 1 to 15 go to slot number-1; others give
// success with no call.
AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt);
int acrxGetApiVersion();

// The name under which the module is registered with the host ("zepkapi").
inline constexpr const char16_t* kModuleName = u"zepkapi";

}  // namespace zepk::frame
