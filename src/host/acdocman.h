// Documents: the drawings open in the session. Each document has its
// drawing, its own LISP symbols (a global set in one is not seen in
// another), its selection sets, its undo (kept by its drawing), the
// system variables that belong to a drawing, and a window. One document is
// current at a time; NEW and OPEN make a new one current and CLOSE closes
// the current one. Loaded modules get kLoadDwgMsg once a document is set
// up and kUnloadDwgMsg before it goes, with it current.
#pragma once

#include <map>

#include "host/acadstrc.h"
#include "host/adesk.h"
#include "host/dbmain.h"
#include "host/wincompat.h"

namespace AcAp {
enum DocLockMode {
  kNone = 0x00,
  kAutoWrite = 0x01,
  kNotLocked = 0x02,
  kWrite = 0x04,
  kProtectedAutoWrite = 0x14,
  kRead = 0x20,
  kXWrite = 0x40,
};
}  // namespace AcAp

class AcApDocument {
 public:
  virtual ~AcApDocument() = default;
  virtual AcDbDatabase* database() const = 0;
  // The drawing's file with its folder; a drawing never saved has its
  // title ("Drawing2.dwg") here.
  virtual const ACHAR* fileName() const = 0;
  // The name without its folder.
  virtual const ACHAR* docTitle() const = 0;
  // The strongest lock held on the document (kNotLocked when none).
  virtual AcAp::DocLockMode lockMode(bool bIncludeMyLocks = true) const = 0;
  virtual AcAp::DocLockMode myLockMode() const = 0;
  virtual bool isReadOnly() const = 0;
  // No command is running in it.
  virtual bool isQuiescent() const = 0;
  // The document's window.
  virtual HWND window() const = 0;

 protected:
  AcApDocument() = default;
};

class AcApDocManagerReactor {
 public:
  virtual ~AcApDocManagerReactor() = default;
  virtual void documentCreateStarted(AcApDocument*) {}
  virtual void documentCreated(AcApDocument*) {}
  virtual void documentToBeDestroyed(AcApDocument*) {}
  virtual void documentDestroyed(const ACHAR* fileName) {}
  virtual void documentLockModeChanged(AcApDocument*, AcAp::DocLockMode myPreviousMode, AcAp::DocLockMode myCurrentMode,
                                       AcAp::DocLockMode currentMode, const ACHAR* pGlobalCmdName) {}
  virtual void documentBecameCurrent(AcApDocument*) {}
  virtual void documentToBeActivated(AcApDocument*) {}
  virtual void documentToBeDeactivated(AcApDocument*) {}
  virtual void documentActivated(AcApDocument*) {}
};

class AcApDocumentIterator {
 public:
  virtual ~AcApDocumentIterator() = default;
  virtual bool done() const = 0;
  virtual void step() = 0;
  virtual AcApDocument* document() = 0;
};

class AcApDocManager {
 public:
  virtual ~AcApDocManager() = default;

  // The document commands and programs work on.
  virtual AcApDocument* curDocument() const = 0;
  // The document whose window is in front; the same as the current one
  // here, except while a program works in another for a moment.
  virtual AcApDocument* mdiActiveDocument() const = 0;
  virtual AcApDocument* document(const AcDbDatabase* db) const = 0;
  virtual int documentCount() const = 0;
  // In the order the documents were opened; the caller deletes it.
  virtual AcApDocumentIterator* newAcApDocumentIterator() = 0;

  // Makes a document current (and with activate, active as well).
  virtual Acad::ErrorStatus setCurDocument(AcApDocument* doc, AcAp::DocLockMode mode = AcAp::kNone,
                                           bool activate = false) = 0;
  virtual Acad::ErrorStatus activateDocument(AcApDocument* doc, bool bPassScript = false) = 0;

  virtual Acad::ErrorStatus lockDocument(AcApDocument* doc, AcAp::DocLockMode mode = AcAp::kWrite,
                                         const ACHAR* globalCmdName = nullptr, const ACHAR* localCmdName = nullptr,
                                         bool prompt = true) = 0;
  virtual Acad::ErrorStatus unlockDocument(AcApDocument* doc) = 0;

  // A new drawing (a template file, or none for the host's new drawing)
  // as the active document.
  virtual Acad::ErrorStatus appContextNewDocument(const ACHAR* templateName) = 0;
  // A drawing read from a file as the active document. A file that cannot
  // be read gives eFileNotFound or the reader's status, and no document.
  virtual Acad::ErrorStatus appContextOpenDocument(const ACHAR* fileName) = 0;
  // The same from a program's context: newDocument makes a drawing with
  // no template; openDocument asks for the file name on the command line.
  virtual Acad::ErrorStatus newDocument() = 0;
  virtual Acad::ErrorStatus openDocument() = 0;
  // Closes a document without saving. Closing the last one leaves a new
  // drawing in its place, since the command line always works on one.
  virtual Acad::ErrorStatus closeDocument(AcApDocument* doc) = 0;

  virtual void addReactor(AcApDocManagerReactor* r) = 0;
  virtual void removeReactor(AcApDocManagerReactor* r) = 0;
  virtual bool isApplicationContext() const = 0;
};

AcApDocManager* acDocManagerPtr();
#define acDocManager acDocManagerPtr()

// The document of the working drawing, as compiled code asks for it.
inline AcApDocument* curDoc() { return acDocManager->curDocument(); }

// Data kept for each document: a record is made on first use and dropped
// when its document is about to be destroyed.
template <class T>
class AcApDataManager : public AcApDocManagerReactor {
 public:
  AcApDataManager() { acDocManager->addReactor(this); }
  ~AcApDataManager() override { acDocManager->removeReactor(this); }
  AcApDataManager(const AcApDataManager&) = delete;
  AcApDataManager& operator=(const AcApDataManager&) = delete;

  void documentToBeDestroyed(AcApDocument* doc) override { data_.erase(doc); }

  T& docData(AcApDocument* doc) { return data_[doc]; }
  T& docData() { return docData(acDocManager->curDocument()); }
  bool hasData(AcApDocument* doc) const { return data_.count(doc) != 0; }
  size_t size() const { return data_.size(); }

 private:
  std::map<AcApDocument*, T> data_;
};
