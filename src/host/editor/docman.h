// The session's documents (host/acdocman.h) as the commands and the
// command loop drive them.
//
// What belongs to a document is switched with it: the working drawing, the
// variables its drawing does not store, its selection sets, and its LISP
// symbols. The symbols are switched only when no LISP runs: a program that
// opens a drawing (command "NEW") goes on with its own variables, and the
// new document's symbols come in when the command line is idle again. The
// new document's kLoadDwgMsg goes to the modules at that time, so that what
// they define lands in it.
#pragma once

#include <memory>
#include <string>

#include "host/acdocman.h"

namespace zepk::editor {

// Sets up the session with a first new drawing (Drawing1.dwg) as the
// current document. Safe to call again: only the first call acts.
void initDocuments();
// What a new document's LISP symbols start with: the values they have
// now, less the functions programs defined. Call it once the host's own
// functions are installed and before any program runs.
void captureLispBase();
// Closes every document (the modules have been unloaded by then).
void shutdownDocuments();

// A document for a drawing made or read by a command, made current and
// active. path is empty for a new drawing.
AcApDocument* addDocument(std::unique_ptr<AcDbDatabase> db, const std::u16string& path);
// CLOSE: the current document, without saving.
void closeCurrentDocument();
// Whether the current document's drawing has a file of its own.
bool currentDocumentTitled();
// The current drawing was saved as path: it is titled now, and DBMOD is 0.
void documentSaved(const std::u16string& path);

// Idle time of the command loop: the current document's symbols come in
// if a program left them waiting, its modules hear of it, queued
// expressions run, and timers and window messages are handled. While a
// command or a program waits for input only the timers and messages run.
void documentsIdle();

// Registers ZEPKCLOCK and the other commands of the documents and the
// host's windows.
void registerDocumentCommands();

}  // namespace zepk::editor
