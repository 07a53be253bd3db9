#include "host/editor/docman.h"

#include <algorithm>
#include <cstdlib>
#include <unordered_map>
#include <vector>

#include "host/acedwin.h"
#include "host/aced.h"
#include "host/dbapserv.h"
#include "host/editor/commands.h"
#include "host/editor/sysvars.h"
#include "host/lisp/interp.h"
#include "host/rxmodule.h"
#include "host/selset.h"
#include "host/system/msgbox.h"
#include "host/system/utf.h"
#include "host/system/winmsg.h"

namespace zepk::editor {

namespace {

using lisp::Symbol;
using lisp::Value;

// A document's LISP symbols while another document's are in place.
typedef std::unordered_map<Symbol*, Value> Namespace;

class Document;

// Sets DBMOD when the drawing changes.
class ModifiedWatch : public AcDbDatabaseReactor {
 public:
  explicit ModifiedWatch(Document* d) : doc_(d) {}
  void objectAppended(const AcDbDatabase*, const AcDbObject*) override { touch(); }
  void objectModified(const AcDbDatabase*, const AcDbObject*) override { touch(); }
  void objectErased(const AcDbDatabase*, const AcDbObject*, bool) override { touch(); }
  void objectUnAppended(const AcDbDatabase*, const AcDbObject*) override { touch(); }
  void objectReAppended(const AcDbDatabase*, const AcDbObject*) override { touch(); }

 private:
  void touch();
  Document* doc_;
};

class Document : public AcApDocument {
 public:
  Document(std::unique_ptr<AcDbDatabase> db, std::u16string path, std::u16string title, HWND frame)
      : db_(std::move(db)), watch_(this) {
    setPath(path, title);
    vars = newDocumentVariables();
    sets = db::newSelectionSets();
    // A child of the main window, as drawing windows are.
    wnd = sys::createWindow(u"AfxMDIFrame", title_, frame, true);
    db_->addReactor(&watch_);
  }
  ~Document() override {
    db_->removeReactor(&watch_);
    sys::destroyWindow(wnd);
  }

  AcDbDatabase* database() const override { return db_.get(); }
  const ACHAR* fileName() const override { return path_.c_str(); }
  const ACHAR* docTitle() const override { return title_.c_str(); }
  AcAp::DocLockMode lockMode(bool) const override { return locks.empty() ? AcAp::kNotLocked : strongest(); }
  AcAp::DocLockMode myLockMode() const override { return locks.empty() ? AcAp::kNone : strongest(); }
  bool isReadOnly() const override { return false; }
  bool isQuiescent() const override { return Commands::get().depth() == 0 || this != current(); }
  HWND window() const override { return wnd; }

  // The drawing's file (empty before it has one) and its title.
  void setPath(const std::u16string& path, const std::u16string& title) {
    titled = !path.empty();
    if (titled) {
      path_ = path;
      size_t slash = path.find_last_of(u"/\\");
      folder_ = slash == std::u16string::npos ? u"" : path.substr(0, slash + 1);
      title_ = slash == std::u16string::npos ? path : path.substr(slash + 1);
    } else {
      path_ = title_ = title;
      folder_.clear();
    }
  }
  const std::u16string& folder() const { return folder_; }
  const std::u16string& title() const { return title_; }

  static Document* current();

  std::shared_ptr<DocumentVariables> vars;
  std::shared_ptr<db::SelectionSets> sets;
  Namespace lisp;
  HWND wnd = nullptr;
  bool titled = false;
  // LISP expressions queued for it while it was not current.
  std::vector<std::u16string> queued;
  // kLoadDwgMsg has gone to the modules (kUnloadDwgMsg is due at close).
  bool loaded = false;
  std::vector<AcAp::DocLockMode> locks;

 private:
  AcAp::DocLockMode strongest() const {
    int m = 0;
    for (AcAp::DocLockMode l : locks) m |= l;
    for (AcAp::DocLockMode l : {AcAp::kXWrite, AcAp::kWrite, AcAp::kProtectedAutoWrite, AcAp::kAutoWrite, AcAp::kRead}) {
      if ((m & l) == l) return l;
    }
    return AcAp::kNone;
  }

  std::unique_ptr<AcDbDatabase> db_;
  ModifiedWatch watch_;
  std::u16string path_, folder_, title_;
};

void ModifiedWatch::touch() { setDrawingModified(doc_->vars.get(), 1); }

class Iterator : public AcApDocumentIterator {
 public:
  explicit Iterator(std::vector<AcApDocument*> docs) : docs_(std::move(docs)) {}
  bool done() const override { return i_ >= docs_.size(); }
  void step() override { ++i_; }
  AcApDocument* document() override { return done() ? nullptr : docs_[i_]; }

 private:
  std::vector<AcApDocument*> docs_;
  size_t i_ = 0;
};

bool lispRunning() {
  lisp::Interp* in = lisp::Interp::current();
  return in && in->running() > 0;
}

class Manager : public AcApDocManager {
 public:
  // ----------------------------------------------------------- queries
  AcApDocument* curDocument() const override { return cur_; }
  AcApDocument* mdiActiveDocument() const override { return active_ ? active_ : cur_; }
  AcApDocument* document(const AcDbDatabase* db) const override {
    for (auto& d : docs_) {
      if (d->database() == db) return d.get();
    }
    return nullptr;
  }
  int documentCount() const override { return static_cast<int>(docs_.size()); }
  AcApDocumentIterator* newAcApDocumentIterator() override {
    std::vector<AcApDocument*> v;
    for (auto& d : docs_) v.push_back(d.get());
    return new Iterator(std::move(v));
  }
  bool isApplicationContext() const override { return !lispRunning() && Commands::get().depth() == 0; }

  // ------------------------------------------------------ switching
  Acad::ErrorStatus setCurDocument(AcApDocument* doc, AcAp::DocLockMode mode, bool activate) override {
    Document* d = find(doc);
    if (!d) return Acad::eInvalidInput;
    if (mode != AcAp::kNone) d->locks.push_back(mode);
    makeCurrent(d, activate);
    return Acad::eOk;
  }
  Acad::ErrorStatus activateDocument(AcApDocument* doc, bool) override {
    Document* d = find(doc);
    if (!d) return Acad::eInvalidInput;
    makeCurrent(d, true);
    return Acad::eOk;
  }
  Acad::ErrorStatus lockDocument(AcApDocument* doc, AcAp::DocLockMode mode, const ACHAR* global, const ACHAR*,
                                 bool) override {
    Document* d = find(doc);
    if (!d || mode == AcAp::kNone) return Acad::eInvalidInput;
    AcAp::DocLockMode before = d->myLockMode();
    d->locks.push_back(mode);
    for (AcApDocManagerReactor* r : reactorsNow())
      r->documentLockModeChanged(d, before, d->myLockMode(), d->lockMode(true), global ? global : u"");
    return Acad::eOk;
  }
  Acad::ErrorStatus unlockDocument(AcApDocument* doc) override {
    Document* d = find(doc);
    if (!d || d->locks.empty()) return Acad::eNotApplicable;
    AcAp::DocLockMode before = d->myLockMode();
    d->locks.pop_back();
    for (AcApDocManagerReactor* r : reactorsNow())
      r->documentLockModeChanged(d, before, d->myLockMode(), d->lockMode(true), u"");
    return Acad::eOk;
  }

  // ----------------------------------------------------- open, close
  Acad::ErrorStatus appContextNewDocument(const ACHAR* templ) override {
    auto db = std::make_unique<AcDbDatabase>(true);
    if (templ && *templ && std::u16string(templ) != u".") {
      // A template is a drawing read as the start of the new one.
      db = std::make_unique<AcDbDatabase>(false);
      Acad::ErrorStatus es = db->readDwgFile(templ);
      if (es != Acad::eOk) return es;
    }
    add(std::move(db), u"");
    return Acad::eOk;
  }
  Acad::ErrorStatus appContextOpenDocument(const ACHAR* fileName) override {
    if (!fileName || !*fileName) return Acad::eInvalidInput;
    std::u16string path = fileName;
    auto db = std::make_unique<AcDbDatabase>(false);
    Acad::ErrorStatus es = db->readDwgFile(path.c_str());
    if (es != Acad::eOk) return es;
    add(std::move(db), path);
    return Acad::eOk;
  }
  Acad::ErrorStatus newDocument() override { return appContextNewDocument(nullptr); }
  Acad::ErrorStatus openDocument() override {
    ACHAR buf[1024];
    if (acedGetString(1, u"\nEnter name of drawing to open: ", buf, 1024) != RTNORM || !buf[0])
      return Acad::eInvalidInput;
    return appContextOpenDocument(buf);
  }
  Acad::ErrorStatus closeDocument(AcApDocument* doc) override {
    Document* d = find(doc);
    if (!d) return Acad::eInvalidInput;
    close(d);
    return Acad::eOk;
  }

  void addReactor(AcApDocManagerReactor* r) override {
    if (r && std::find(reactors_.begin(), reactors_.end(), r) == reactors_.end()) reactors_.push_back(r);
  }
  void removeReactor(AcApDocManagerReactor* r) override {
    reactors_.erase(std::remove(reactors_.begin(), reactors_.end(), r), reactors_.end());
  }

  // ----------------------------------------------------- the session
  Document* cur() const { return cur_; }

  Document* add(std::unique_ptr<AcDbDatabase> db, const std::u16string& path) {
    std::u16string title = u"Drawing" + sys::fromUtf8(std::to_string(++untitled_)) + u".dwg";
    if (!path.empty()) --untitled_;
    auto owned = std::make_unique<Document>(std::move(db), path, title, mainWindow());
    Document* d = owned.get();
    for (AcApDocManagerReactor* r : reactorsNow()) r->documentCreateStarted(d);
    if (!started_) {
      // The session's first document: the symbols in place are its own.
      started_ = true;
      lispOwner_ = d;
    } else {
      if (!baseCaptured_) captureBase();
      d->lisp = base_;
    }
    docs_.push_back(std::move(owned));
    for (AcApDocManagerReactor* r : reactorsNow()) r->documentCreated(d);
    makeCurrent(d, true);
    return d;
  }

  void close(Document* d) {
    // The modules hear of it while it is current; then the data kept for
    // it goes.
    if (d->loaded) {
      d->loaded = false;
      withDocument(d, [] { rx::documentClosing(); });
    }
    for (AcApDocManagerReactor* r : reactorsNow()) r->documentToBeDestroyed(d);
    std::u16string name = d->fileName();
    auto it = std::find_if(docs_.begin(), docs_.end(), [&](auto& p) { return p.get() == d; });
    std::unique_ptr<Document> gone = std::move(*it);
    docs_.erase(it);
    if (lispOwner_ == d) {
      // Its symbols are in place; the next document's replace them
      // without being kept.
      lispOwner_ = nullptr;
    }
    if (active_ == d) active_ = nullptr;
    if (cur_ == d) {
      cur_ = nullptr;
      if (docs_.empty()) {
        add(std::make_unique<AcDbDatabase>(true), u"");
      } else {
        makeCurrent(docs_.back().get(), true);
      }
    }
    gone.reset();
    for (AcApDocManagerReactor* r : reactorsNow()) r->documentDestroyed(name.c_str());
  }

  void makeCurrent(Document* d, bool activate) {
    Document* was = cur_;
    if (activate && active_ != d) {
      if (active_) {
        for (AcApDocManagerReactor* r : reactorsNow()) r->documentToBeDeactivated(active_);
      }
      for (AcApDocManagerReactor* r : reactorsNow()) r->documentToBeActivated(d);
    }
    cur_ = d;
    install(d);
    if (was != d) {
      for (AcApDocManagerReactor* r : reactorsNow()) r->documentBecameCurrent(d);
    }
    if (activate && active_ != d) {
      active_ = d;
      for (AcApDocManagerReactor* r : reactorsNow()) r->documentActivated(d);
    }
    if (!lispRunning()) settle();
  }

  // The current document's symbols in place and its modules told, when no
  // LISP runs.
  void settle() {
    if (!cur_) return;
    switchLisp(cur_);
    if (!cur_->loaded) {
      cur_->loaded = true;
      rx::documentOpened();
    }
    // Expressions queued for it while another was current run now.
    if (lisp::Interp* in = lisp::Interp::current(); in && !cur_->queued.empty()) {
      for (std::u16string& e : cur_->queued) in->queued.push_back(std::move(e));
      cur_->queued.clear();
    }
  }

  // Runs fn with d as the current document in every respect, then puts
  // back what was current. The symbols are switched both ways exactly, so
  // that a program running meanwhile finds its own again.
  template <class F>
  void withDocument(Document* d, F&& fn) {
    Document* savedCur = cur_;
    Document* savedOwner = lispOwner_;
    bool lispAway = lispOwner_ != d;
    Namespace held;
    if (lispAway) {
      held = capture();
      load(d->lisp);
      lispOwner_ = d;
    }
    cur_ = d;
    install(d);
    lisp::Interp* in = lisp::Interp::current();
    size_t queuedBefore = in ? in->queued.size() : 0;
    fn();
    if (in && in->queued.size() > queuedBefore) {
      // What fn queued (ads_queueexpr) runs in d, when d is current at an
      // idle time; a document that closes takes its expressions with it.
      auto first = in->queued.begin() + static_cast<std::ptrdiff_t>(queuedBefore);
      if (find(d)) d->queued.insert(d->queued.end(), first, in->queued.end());
      in->queued.erase(first, in->queued.end());
    }
    if (lispAway) {
      // d may have closed meanwhile only through fn; its symbols are kept
      // if it is still open.
      if (find(d)) d->lisp = capture();
      load(held);
      lispOwner_ = savedOwner;
    }
    cur_ = savedCur && find(savedCur) ? savedCur : cur_;
    if (cur_) install(cur_);
  }

  // Every open document that has been set up, one after another as current.
  void forEachLoaded(const std::function<void()>& fn) {
    std::vector<Document*> ds;
    for (auto& d : docs_) {
      if (d->loaded) ds.push_back(d.get());
    }
    for (Document* d : ds) {
      if (find(d)) withDocument(d, fn);
    }
  }

  void captureBase() {
    baseCaptured_ = true;
    base_.clear();
    for (Symbol* s : lisp::allSymbols()) {
      if (s->isConstant || s->value.isNil()) continue;
      lisp::Tag t = s->value.tag();
      if (t == lisp::Tag::Exrx || t == lisp::Tag::Usubr) continue;
      base_.emplace(s, s->value);
    }
  }

  void shutdown() {
    while (!docs_.empty()) {
      Document* d = docs_.back().get();
      for (AcApDocManagerReactor* r : reactorsNow()) r->documentToBeDestroyed(d);
      std::u16string name = d->fileName();
      if (lispOwner_ == d) lispOwner_ = nullptr;
      std::unique_ptr<Document> gone = std::move(docs_.back());
      docs_.pop_back();
      if (cur_ == d) cur_ = nullptr;
      if (active_ == d) active_ = nullptr;
      if (acdbHostApplicationServices()->workingDatabase() == gone->database())
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
      gone.reset();
      for (AcApDocManagerReactor* r : reactorsNow()) r->documentDestroyed(name.c_str());
    }
  }

  Document* find(AcApDocument* doc) const {
    for (auto& d : docs_) {
      if (d.get() == doc) return d.get();
    }
    return nullptr;
  }

  HWND mainWindow() {
    if (!main_) main_ = sys::createWindow(u"AfxFrameOrView", u"ZEPK", nullptr, true);
    return main_;
  }

 private:
  // Reactors may remove themselves while told.
  std::vector<AcApDocManagerReactor*> reactorsNow() const { return reactors_; }

  void install(Document* d) {
    acdbHostApplicationServices()->setWorkingDatabase(d->database());
    setCurrentDocumentVariables(d->vars);
    setDrawingPath(d->folder(), d->title());
    db::setCurrentSelectionSets(d->sets);
  }

  static Namespace capture() {
    Namespace ns;
    for (Symbol* s : lisp::allSymbols()) {
      if (s->isConstant || s->value.isNil()) continue;
      ns.emplace(s, s->value);
    }
    return ns;
  }

  static void load(const Namespace& ns) {
    for (Symbol* s : lisp::allSymbols()) {
      if (s->isConstant) continue;
      auto it = ns.find(s);
      s->value = it == ns.end() ? Value() : it->second;
    }
  }

  void switchLisp(Document* d) {
    if (lispOwner_ == d) return;
    if (lispOwner_) lispOwner_->lisp = capture();
    load(d->lisp);
    d->lisp.clear();
    lispOwner_ = d;
  }

  std::vector<std::unique_ptr<Document>> docs_;
  std::vector<AcApDocManagerReactor*> reactors_;
  Document* cur_ = nullptr;
  Document* active_ = nullptr;
  // The document whose symbols are in place.
  Document* lispOwner_ = nullptr;
  Namespace base_;
  bool baseCaptured_ = false;
  bool started_ = false;
  int untitled_ = 0;
  HWND main_ = nullptr;
};

Manager& manager() {
  static auto* m = new Manager;
  return *m;
}

Document* Document::current() { return manager().cur(); }

// --------------------------------------------------------------- ZEPKCLOCK

// ZEPKCLOCK: the host's clock for timers. A number of milliseconds moves
// the virtual clock forward (switching to it first), firing the timers due
// on the way in order; Virtual stops the clock where it is (at 0 the first
// time), Real lets it run with the real time again.
void cmdClock() {
  ACHAR buf[256];
  acedInitGet(0, u"Real Virtual");
  std::u16string prompt = u"\nMilliseconds to advance the clock or [Real/Virtual] <0>: ";
  int rc = acedGetString(0, prompt.c_str(), buf, 256);
  if (rc != RTNORM) return;
  std::u16string answer = buf;
  std::u16string up;
  for (char16_t c : answer) up += sys::asciiUpper(c);
  if (!up.empty() && std::u16string(u"REAL").compare(0, up.size(), up) == 0) {
    sys::useVirtualClock(false);
    return;
  }
  if (!up.empty() && std::u16string(u"VIRTUAL").compare(0, up.size(), up) == 0) {
    sys::useVirtualClock(true);
    return;
  }
  std::string text = sys::toUtf8(answer);
  char* end = nullptr;
  long long ms = text.empty() ? 0 : std::strtoll(text.c_str(), &end, 10);
  if (!text.empty() && (end == text.c_str() || *end != 0 || ms < 0)) {
    Commands::get().print("\nRequires a number of milliseconds, Real or Virtual.\n");
    return;
  }
  sys::advance(static_cast<uint64_t>(ms));
  if (lisp::Interp* in = lisp::Interp::current()) in->runQueued();
}

// ZEPKPOST: posts a window message to the current document's window, as
// the window system would on a key or a click: the message number, then
// wParam and lParam (0 for Enter). Watchers see it when the command line
// is idle next.
void cmdPost() {
  int msg = 0, w = 0, l = 0;
  acedInitGet(4, nullptr);
  if (acedGetInt(u"\nMessage number: ", &msg) != RTNORM) return;
  int rc = acedGetInt(u"\nwParam <0>: ", &w);
  if (rc != RTNORM && rc != RTNONE) return;
  rc = acedGetInt(u"\nlParam <0>: ", &l);
  if (rc != RTNORM && rc != RTNONE) return;
  PostMessageW(adsw_acadDocWnd(), static_cast<UINT>(msg), static_cast<WPARAM>(w), static_cast<LPARAM>(l));
}

// The status bar's meter.
struct Progress {
  bool shown = false;
  std::u16string label;
  int lo = 0, hi = 0, pos = 0, updates = 0;
};
Progress& progress() {
  static auto* p = new Progress;
  return *p;
}

// Message boxes on the command line: the title and the text, then, for a
// box that asks, a prompt with the buttons, answered from the pending input.
int messageBox(std::u16string_view text, std::u16string_view caption, UINT type) {
  Commands& c = Commands::get();
  c.print(u"\n" + std::u16string(caption) + u": " + std::u16string(text) + u"\n");
  std::vector<int> buttons = sys::messageBoxButtons(type);
  int dflt = sys::messageBoxDefault(type);
  if (buttons.size() < 2) return dflt;
  std::u16string prompt = u"[";
  for (size_t i = 0; i < buttons.size(); ++i) prompt += (i ? u"/" : u"") + sys::messageBoxWord(buttons[i]);
  prompt += u"] <" + sys::messageBoxWord(dflt) + u">: ";
  for (;;) {
    Answer a;
    bool wasCancelled = c.cancelled;
    int rc = c.next(prompt, false, &a);
    // A box left unanswered does not cancel the command that showed it.
    c.cancelled = wasCancelled;
    if (rc != RTNORM) {
      // No input left: a box that can be cancelled is, else the default.
      for (int b : buttons) {
        if (b == IDCANCEL) return IDCANCEL;
      }
      return dflt;
    }
    if (a.kind != Answer::Text) continue;
    if (a.text.empty()) return dflt;
    if (int id = sys::messageBoxAnswer(a.text, type)) return id;
    c.print(u"Invalid option keyword.\n");
  }
}

}  // namespace

void initDocuments() {
  Manager& m = manager();
  if (m.cur()) return;
  m.mainWindow();
  sys::setMessageBoxHandler(messageBox);
  m.add(std::make_unique<AcDbDatabase>(true), u"");
  // A module loaded or unloaded hears of every open document.
  rx::setDocumentWalker([](const std::function<void()>& fn) { manager().forEachLoaded(fn); });
}

void captureLispBase() { manager().captureBase(); }

void shutdownDocuments() {
  rx::setDocumentWalker(nullptr);
  manager().shutdown();
}

AcApDocument* addDocument(std::unique_ptr<AcDbDatabase> db, const std::u16string& path) {
  if (!db) return nullptr;
  return manager().add(std::move(db), path);
}

void closeCurrentDocument() {
  if (Document* d = manager().cur()) manager().close(d);
}

bool currentDocumentTitled() {
  Document* d = manager().cur();
  return d && d->titled;
}

void documentSaved(const std::u16string& path) {
  Document* d = manager().cur();
  if (!d) return;
  d->setPath(path, d->title());
  setDrawingPath(d->folder(), d->title());
  setDrawingModified(d->vars.get(), 0);
  SetWindowTextW(d->wnd, d->title().c_str());
}

void documentsIdle() {
  // While a command or a program waits for input (the terminal's idle
  // time), only timers and window messages run, as in a message loop; the
  // document's symbols and queued expressions wait for the command line.
  bool busy = lispRunning() || Commands::get().depth() > 0;
  lisp::Interp* in = lisp::Interp::current();
  if (!busy) {
    manager().settle();
    if (in) in->runQueued();
  }
  if (sys::pump() > 0 && !busy && in) in->runQueued();
}

void registerDocumentCommands() {
  CommandDef d;
  d.group = u"ZEPK_HOST";
  d.global = d.local = u"ZEPKCLOCK";
  d.fn = cmdClock;
  d.builtin = true;
  d.noUndoMark = true;
  d.flags = ACRX_CMD_TRANSPARENT;
  Commands::get().add(d);
  d.global = d.local = u"ZEPKPOST";
  d.fn = cmdPost;
  Commands::get().add(d);
}

}  // namespace zepk::editor

// ---------------------------------------------------------------- host API

using namespace zepk;

AcApDocManager* acDocManagerPtr() { return &editor::manager(); }

HWND adsw_acadMainWnd() { return editor::manager().mainWindow(); }

HWND adsw_acadDocWnd() {
  AcApDocument* d = editor::manager().curDocument();
  return d ? d->window() : nullptr;
}

bool acedRegisterWatchWinMsg(AcedWatchWinMsgFn pfn) { return sys::addWatcher(pfn); }
bool acedRemoveWatchWinMsg(AcedWatchWinMsgFn pfn) { return sys::removeWatcher(pfn); }

int acedSetStatusBarProgressMeter(const ACHAR* label, int lo, int hi) {
  if (hi < lo) return -1;
  editor::Progress& p = editor::progress();
  p.shown = true;
  p.label = label ? label : u"";
  p.lo = lo;
  p.hi = hi;
  p.pos = lo;
  p.updates = 0;
  return 0;
}

int acedSetStatusBarProgressMeterPos(int pos) {
  editor::Progress& p = editor::progress();
  if (!p.shown) return -1;
  p.pos = std::clamp(pos, p.lo, p.hi);
  ++p.updates;
  return 0;
}

void acedRestoreStatusBar() { editor::progress() = editor::Progress{}; }

AcedProgressState acedStatusBarProgress() {
  const editor::Progress& p = editor::progress();
  AcedProgressState s;
  s.shown = p.shown;
  s.label = p.shown ? p.label.c_str() : nullptr;
  s.minPos = p.lo;
  s.maxPos = p.hi;
  s.pos = p.pos;
  s.updates = p.updates;
  return s;
}
