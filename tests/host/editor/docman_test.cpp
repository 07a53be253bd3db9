// Documents: LISP symbols per document (also when a program opens one),
// the module messages for every document, per-document data and
// variables, reactors, message boxes answered from the input, and timers
// of document windows.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/acdocman.h"
#include "host/acedwin.h"
#include "host/ads.h"
#include "host/dbapserv.h"
#include "host/editor/commands.h"
#include "host/editor/docman.h"
#include "host/editor/sysvars.h"
#include "host/lisp/bridge.h"
#include "host/lisp/interp.h"
#include "host/lisp/printer.h"
#include "host/rxmodule.h"
#include "host/system/utf.h"
#include "host/system/winmsg.h"
#include "host/wincompat.h"

namespace ed = zepk::editor;
namespace lisp = zepk::lisp;
namespace sys = zepk::sys;

namespace {

std::vector<std::string> journal;

std::string title() {
  AcApDocument* d = acDocManager->curDocument();
  return d ? zepk::sys::toUtf8(d->docTitle()) : "-";
}

int watchFn() {
  acedRetStr(acDocManager->curDocument()->docTitle());
  return RSRSLT;
}

// A module that notes its messages with the document current at each, and
// defines (watch-doc) in each document.
AcRx::AppRetCode watchEntry(AcRx::AppMsgCode msg, void*) {
  switch (msg) {
    case AcRx::kInitAppMsg: journal.push_back("init"); break;
    case AcRx::kUnloadAppMsg: journal.push_back("unload"); break;
    case AcRx::kLoadDwgMsg:
      journal.push_back("load " + title());
      acedDefun(u"watch-doc", 0);
      acedRegFunc(watchFn, 0);
      ads_queueexpr(u"(setq queued-in (watch-doc))");
      break;
    case AcRx::kUnloadDwgMsg:
      journal.push_back("unload " + title());
      acedUndef(u"watch-doc", 0);
      break;
    default: break;
  }
  return AcRx::kRetOK;
}
zepk::rx::ModuleRegistrar registrar(u"docwatch", &watchEntry, false);

class Journal : public AcApDocManagerReactor {
 public:
  void documentCreateStarted(AcApDocument* d) override { note("createStarted", d); }
  void documentCreated(AcApDocument* d) override { note("created", d); }
  void documentToBeDestroyed(AcApDocument* d) override { note("toBeDestroyed", d); }
  void documentDestroyed(const ACHAR* name) override { journal.push_back("destroyed " + sys::toUtf8(name)); }
  void documentBecameCurrent(AcApDocument* d) override { note("becameCurrent", d); }
  void documentToBeActivated(AcApDocument* d) override { note("toBeActivated", d); }
  void documentToBeDeactivated(AcApDocument* d) override { note("toBeDeactivated", d); }
  void documentActivated(AcApDocument* d) override { note("activated", d); }

 private:
  void note(const char* what, AcApDocument* d) { journal.push_back(std::string(what) + " " + sys::toUtf8(d->docTitle())); }
};

// Adds a new document from inside a running program, as (command "NEW") does.
lisp::Value fnNewDoc(lisp::Interp&, lisp::ArgSpan) {
  ed::addDocument(std::make_unique<AcDbDatabase>(true), u"");
  return lisp::Value();
}

class Documents : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    in_ = new lisp::Interp;
    lisp::installBridge(*in_);
    in_->defSubr("TEST-NEWDOC", fnNewDoc);
    in_->setOutput(&out_);
    ed::initDocuments();
    ed::captureLispBase();
  }
  void SetUp() override {
    journal.clear();
    out_.text.clear();
    // Each test starts from one document, the first.
    while (acDocManager->documentCount() > 1) ed::closeCurrentDocument();
  }
  std::string eval(const std::string& text) {
    lisp::Value v;
    if (!in_->evalText(sys::fromUtf8(text), &v)) return "<error>";
    ed::documentsIdle();
    return sys::toUtf8(lisp::prin1String(v));
  }
  void newDocument() {
    ed::addDocument(std::make_unique<AcDbDatabase>(true), u"");
    ed::documentsIdle();
  }
  static lisp::Interp* in_;
  static lisp::StringOutput out_;
};
lisp::Interp* Documents::in_ = nullptr;
lisp::StringOutput Documents::out_;

TEST_F(Documents, EachDocumentHasItsOwnSymbols) {
  AcApDocument* first = acDocManager->curDocument();
  eval("(setq shared-name 1)");
  eval("(defun only-here () 'first)");
  newDocument();
  AcApDocument* second = acDocManager->curDocument();
  ASSERT_NE(first, second);
  EXPECT_EQ(acDocManager->documentCount(), 2);
  EXPECT_EQ(eval("shared-name"), "nil");
  EXPECT_EQ(eval("(only-here)"), "<error>");
  EXPECT_EQ(eval("(car '(built-ins are there))"), "BUILT-INS");
  eval("(setq shared-name 2)");
  // Back in the first, by activation and by closing the second.
  ASSERT_EQ(acDocManager->activateDocument(first), Acad::eOk);
  ed::documentsIdle();
  EXPECT_EQ(eval("shared-name"), "1");
  ASSERT_EQ(acDocManager->activateDocument(second), Acad::eOk);
  ed::documentsIdle();
  EXPECT_EQ(eval("shared-name"), "2");
  ed::closeCurrentDocument();
  EXPECT_EQ(acDocManager->curDocument(), first);
  EXPECT_EQ(eval("shared-name"), "1");
  EXPECT_EQ(eval("(only-here)"), "FIRST");
}

TEST_F(Documents, AProgramThatOpensADocumentKeepsItsOwnVariables) {
  // The program goes on with the variables it started with, its locals
  // unwind into its own document, and the new document starts clean.
  eval("(defun opener (/ loc) (setq loc 5 seen 'before) (test-newdoc) (setq after loc) loc)");
  EXPECT_EQ(eval("(opener)"), "5");
  EXPECT_EQ(eval("(list seen after loc)"), "(nil nil nil)");
  ed::closeCurrentDocument();
  EXPECT_EQ(eval("(list seen after loc)"), "(BEFORE 5 nil)");
}

TEST_F(Documents, ModulesHearOfEveryDocument) {
  AcApDocument* first = acDocManager->curDocument();
  newDocument();
  std::string second = title();
  ASSERT_EQ(zepk::rx::loadModule(u"docwatch"), zepk::rx::Status::Ok);
  // Loaded with two documents open: each gets kLoadDwgMsg, current at the time.
  std::string firstTitle = sys::toUtf8(first->docTitle());
  EXPECT_EQ(journal, (std::vector<std::string>{"init", "load " + firstTitle, "load " + second}));
  EXPECT_EQ(eval("(watch-doc)"), "\"" + second + "\"");
  // What the module queued for each document runs in that document, when
  // it is current at an idle time.
  EXPECT_EQ(eval("queued-in"), "\"" + second + "\"");
  acDocManager->activateDocument(first);
  ed::documentsIdle();
  EXPECT_EQ(eval("queued-in"), "\"" + firstTitle + "\"");
  {
    AcApDocumentIterator* it = acDocManager->newAcApDocumentIterator();
    for (; !it->done(); it->step()) {
      if (sys::toUtf8(it->document()->docTitle()) == second) acDocManager->activateDocument(it->document());
    }
    delete it;
  }
  ed::documentsIdle();
  EXPECT_EQ(eval("(watch-doc)"), "\"" + second + "\"");
  journal.clear();
  newDocument();
  std::string third = title();
  EXPECT_EQ(journal, (std::vector<std::string>{"load " + third}));
  EXPECT_EQ(eval("(watch-doc)"), "\"" + third + "\"");
  journal.clear();
  ed::closeCurrentDocument();
  EXPECT_EQ(journal, (std::vector<std::string>{"unload " + third}));
  EXPECT_EQ(eval("(watch-doc)"), "\"" + second + "\"");
  journal.clear();
  ASSERT_EQ(zepk::rx::unloadModule(u"docwatch"), zepk::rx::Status::Ok);
  EXPECT_EQ(journal, (std::vector<std::string>{"unload " + firstTitle, "unload " + second, "unload"}));
  EXPECT_EQ(eval("(watch-doc)"), "<error>");
  acDocManager->activateDocument(first);
  ed::documentsIdle();
  EXPECT_EQ(eval("(watch-doc)"), "<error>");
}

TEST_F(Documents, ReactorsAndPerDocumentData) {
  Journal reactor;
  acDocManager->addReactor(&reactor);
  AcApDataManager<int> data;
  AcApDocument* first = acDocManager->curDocument();
  data.docData() = 11;
  newDocument();
  AcApDocument* second = acDocManager->curDocument();
  std::string a = sys::toUtf8(first->docTitle()), b = sys::toUtf8(second->docTitle());
  EXPECT_EQ(journal, (std::vector<std::string>{"createStarted " + b, "created " + b, "toBeDeactivated " + a,
                                               "toBeActivated " + b, "becameCurrent " + b, "activated " + b}));
  EXPECT_EQ(data.docData(), 0);  // a new record on first use
  data.docData() = 22;
  EXPECT_EQ(data.docData(first), 11);
  EXPECT_EQ(data.size(), 2u);
  journal.clear();
  ed::closeCurrentDocument();
  EXPECT_EQ(journal.front(), "toBeDestroyed " + b);
  EXPECT_EQ(journal.back(), "destroyed " + b);
  EXPECT_FALSE(data.hasData(second));
  EXPECT_EQ(data.docData(), 11);
  acDocManager->removeReactor(&reactor);

  // The iterator walks the open documents; a database finds its document.
  newDocument();
  int count = 0;
  AcApDocumentIterator* it = acDocManager->newAcApDocumentIterator();
  for (; !it->done(); it->step()) {
    ++count;
    EXPECT_EQ(acDocManager->document(it->document()->database()), it->document());
  }
  delete it;
  EXPECT_EQ(count, 2);
  EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), acDocManager->curDocument()->database());
  EXPECT_EQ(acDocManager->lockDocument(first, AcAp::kWrite), Acad::eOk);
  EXPECT_EQ(first->lockMode(), AcAp::kWrite);
  EXPECT_EQ(acDocManager->unlockDocument(first), Acad::eOk);
  EXPECT_EQ(first->lockMode(), AcAp::kNotLocked);
  EXPECT_EQ(acDocManager->unlockDocument(first), Acad::eNotApplicable);
}

TEST_F(Documents, VariablesSelectionsAndDrawingStatePerDocument) {
  resbuf rb;
  rb.restype = RTSHORT;
  rb.resval.rint = 0;
  ASSERT_EQ(acedSetVar(u"CMDECHO", &rb), RTNORM);
  ads_name ss;
  ASSERT_EQ(acedSSAdd(nullptr, nullptr, ss), RTNORM);
  int32_t len = -1;
  ASSERT_EQ(acedSSLength(ss, &len), RTNORM);
  newDocument();
  resbuf got;
  ASSERT_EQ(acedGetVar(u"CMDECHO", &got), RTNORM);
  EXPECT_EQ(got.resval.rint, 1);
  EXPECT_EQ(acedSSLength(ss, &len), RTERROR);  // a set of the other document
  ASSERT_EQ(acedGetVar(u"DBMOD", &got), RTNORM);
  EXPECT_EQ(got.resval.rint, 0);
  ed::closeCurrentDocument();
  ASSERT_EQ(acedGetVar(u"CMDECHO", &got), RTNORM);
  EXPECT_EQ(got.resval.rint, 0);
  EXPECT_EQ(acedSSLength(ss, &len), RTNORM);
  acedSSFree(ss);
  rb.resval.rint = 1;
  acedSetVar(u"CMDECHO", &rb);
}

TEST_F(Documents, OpeningAMissingFileMakesNoDocument) {
  int before = acDocManager->documentCount();
  EXPECT_NE(acDocManager->appContextOpenDocument(u"/no/such/drawing.dxf"), Acad::eOk);
  EXPECT_EQ(acDocManager->documentCount(), before);
  EXPECT_EQ(acDocManager->closeDocument(reinterpret_cast<AcApDocument*>(&before)), Acad::eInvalidInput);
}

TEST_F(Documents, ClosingTheLastDocumentLeavesANewOne) {
  eval("(setq left-behind 1)");
  AcApDocument* only = acDocManager->curDocument();
  ASSERT_EQ(acDocManager->documentCount(), 1);
  ed::closeCurrentDocument();
  ASSERT_EQ(acDocManager->documentCount(), 1);
  EXPECT_NE(acDocManager->curDocument(), only);
  EXPECT_EQ(eval("left-behind"), "nil");
  EXPECT_EQ(eval("(+ 1 2)"), "3");
}

// --------------------------------------------------------- message boxes

TEST_F(Documents, MessageBoxesAreAnsweredFromTheInput) {
  std::vector<std::string> lines;
  size_t next = 0;
  auto& c = ed::Commands::get();
  c.setLineSource(
      [&](std::string* l) {
        if (next >= lines.size()) return false;
        *l = lines[next++];
        return true;
      },
      true);
  lines = {"n"};
  EXPECT_EQ(MessageBoxW(nullptr, u"删除图层?", u"警告", MB_YESNO), IDNO);
  EXPECT_NE(out_.text.find("警告: 删除图层?\n[Yes/No] <Yes>: n"), std::string::npos) << out_.text;
  lines = {"maybe", "CANCEL"};
  next = 0;
  EXPECT_EQ(MessageBoxW(nullptr, u"Save?", u"ZEPK", MB_YESNOCANCEL), IDCANCEL);
  EXPECT_NE(out_.text.find("Invalid option keyword."), std::string::npos);
  lines = {""};
  next = 0;
  EXPECT_EQ(MessageBoxW(nullptr, u"Go?", u"ZEPK", MB_OKCANCEL | MB_DEFBUTTON2), IDCANCEL);
  next = 0;
  lines = {"r"};
  EXPECT_EQ(MessageBoxW(nullptr, u"Disk?", u"ZEPK", MB_ABORTRETRYIGNORE), IDRETRY);
  // No input left: a box that can be cancelled is, else its default.
  lines.clear();
  next = 0;
  EXPECT_EQ(MessageBoxW(nullptr, u"Again?", u"ZEPK", MB_YESNOCANCEL), IDCANCEL);
  EXPECT_EQ(MessageBoxW(nullptr, u"Really?", u"ZEPK", MB_YESNO | MB_DEFBUTTON2), IDNO);
  // A box that only tells takes no input.
  lines = {"keep"};
  next = 0;
  out_.text.clear();
  EXPECT_EQ(AfxMessageBox(u"创建SHAPE文件失败!"), IDOK);
  EXPECT_EQ(out_.text, "ZEPK: 创建SHAPE文件失败!\n");
  EXPECT_EQ(next, 0u);
  c.setLineSource(nullptr, true);
}

// ------------------------------------------------------------------ timers

std::vector<std::pair<HWND, HWND>> ticks;  // timer's window, current document's window
void tick(HWND w, UINT, UINT_PTR, DWORD) { ticks.push_back({w, adsw_acadDocWnd()}); }

TEST_F(Documents, TimersOfDocumentWindows) {
  HWND a = adsw_acadDocWnd();
  ASSERT_TRUE(IsWindow(a));
  EXPECT_TRUE(IsWindow(adsw_acadMainWnd()));
  EXPECT_NE(a, adsw_acadMainWnd());
  ticks.clear();
  sys::useVirtualClock(true);
  ASSERT_EQ(SetTimer(a, 1, 100, tick), 1u);
  newDocument();
  HWND b = adsw_acadDocWnd();
  ASSERT_NE(a, b);
  ASSERT_EQ(SetTimer(b, 1, 150, tick), 1u);
  sys::advance(300);
  // In order of time; each timer's window is its own document's, whichever
  // document is current.
  std::vector<std::pair<HWND, HWND>> want{{a, b}, {b, b}, {a, b}, {a, b}, {b, b}};
  EXPECT_EQ(ticks, want);
  // A document that closes takes its window's timers with it.
  ed::closeCurrentDocument();
  EXPECT_FALSE(IsWindow(b));
  ticks.clear();
  sys::advance(100);
  EXPECT_EQ(ticks.size(), 1u);
  KillTimer(a, 1);
  sys::useVirtualClock(false);
}

TEST_F(Documents, ProgressMeter) {
  EXPECT_EQ(acedSetStatusBarProgressMeterPos(5), -1);
  EXPECT_EQ(acedSetStatusBarProgressMeter(u"计算", 0, 100), 0);
  EXPECT_EQ(acedSetStatusBarProgressMeterPos(150), 0);
  AcedProgressState s = acedStatusBarProgress();
  EXPECT_TRUE(s.shown);
  EXPECT_EQ(std::u16string(s.label), u"计算");
  EXPECT_EQ(s.pos, 100);
  acedRestoreStatusBar();
  EXPECT_FALSE(acedStatusBarProgress().shown);
  EXPECT_EQ(acedSetStatusBarProgressMeter(u"x", 10, 5), -1);
}

}  // namespace
