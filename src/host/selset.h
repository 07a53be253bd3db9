// Selection sets of the working drawing, as the compiled acedSS* functions
// and LISP's ss* functions share them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/ads.h"
#include "host/db/memfiler.h"
#include "host/dbmain.h"

namespace zepk::db {

// Every entity of the drawing's spaces (model space first) that passes the
// filter (see ssfilter.h). False with a reason for a malformed filter.
bool selectAll(AcDbDatabase* db, const std::vector<DxfItem>& filter, std::vector<AcDbObjectId>* out,
               std::string* why = nullptr);
// The live ones of ids that pass the filter.
bool filterIds(const std::vector<AcDbObjectId>& ids, const std::vector<DxfItem>& filter,
               std::vector<AcDbObjectId>* out);
// A new set of those entities; it becomes the previous selection.
void makeSet(std::vector<AcDbObjectId> ids, ads_name out);
// The members of a set, null when the name names no set.
const std::vector<AcDbObjectId>* setMembers(const ads_name ss);
// Each document has its own sets, pickfirst and previous selection; the
// document manager makes the current document's sets current.
struct SelectionSets;
std::shared_ptr<SelectionSets> newSelectionSets();
void setCurrentSelectionSets(std::shared_ptr<SelectionSets> sets);

// The entities selected before a command (ssgetfirst, sssetfirst).
std::vector<AcDbObjectId>& pickfirstSet();
const std::vector<AcDbObjectId>& previousSet();

// The selections acedSSGet leaves to the editor: picking, windows,
// polygons, fences and asking the user (mode as given, null for none; the
// points as acedSSGet takes them). Returns RTNORM with the entities,
// RTCAN when the user cancelled, RTERROR for a mode it does not know.
using EditorSelection = int (*)(const ACHAR* mode, const void* pt1, const void* pt2,
                                const std::vector<DxfItem>& filter, std::vector<AcDbObjectId>* out);
void setEditorSelection(EditorSelection fn);

}  // namespace zepk::db
