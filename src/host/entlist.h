// Entity data lists: an object as the list of its DXF groups, as entget
// gives it, and objects made or changed from such a list (entmake, entmod).
// The lists come from the classes' own DXF filing (their schemas), never
// from a second list of fields. LISP and the compiled acdbEnt* functions
// share these; each turns the groups into its own form.
//
// A list is a sequence of groups:
//   -1 the object's name, 0 its type, 330 its owner, 5 its handle, the
//   object's groups in the order its class files them (102 groups for
//   reactors and the extension dictionary, 100 subclass markers, points as
//   one group), and, for an entity, (67 . space) and (410 . layout) after
//   the AcDbEntity marker; then, when asked for, extended data: a -3 group
//   followed by each application's 1001 group and its groups.
#pragma once

#include <string>
#include <vector>

#include "host/ads.h"
#include "host/db/memfiler.h"
#include "host/dbmain.h"

namespace zepk::db {

// How an attempt to make or change an object from a list failed.
struct EntListError {
  // The group that is not a group of its code's kind ("bad DXF group").
  bool badGroup = false;
  int badIndex = -1;  // its index in the list
  // A message the host prints for the failure, or empty.
  std::u16string message;
};

// The groups of an object. apps names the applications whose extended data
// is wanted (patterns, "*" for all); empty gives none. False for a null,
// erased or unknown object.
bool objectGroups(AcDbObjectId id, const std::vector<std::u16string>& apps, std::vector<DxfItem>* out);

// Makes an object from a list in the working drawing (entmake). A complex
// entity is made by a run of calls: POLYLINE then VERTEX... then SEQEND,
// INSERT with (66 . 1) then ATTRIB... then SEQEND, BLOCK then its entities
// then ENDBLK; the parts are held until the run ends and the whole is added
// at its end. made is the new object's id (null while a run is open);
// blockName the name of a block that ENDBLK completed.
// nonGraphical allows objects that are not entities (entmakex).
bool makeFromGroups(const std::vector<DxfItem>& items, bool nonGraphical, AcDbObjectId* made,
                    std::u16string* blockName, EntListError* err);
// Changes the object the list's -1 group names (entmod). Groups the list
// does not hold keep their values.
bool modifyFromGroups(const std::vector<DxfItem>& items, EntListError* err);

// The walk of entnext: the first entity of the drawing (model space, then
// paper space) when id is null; after a complex entity its sub-entities and
// SEQEND; after an entity of a block definition the next of that block.
AcDbObjectId nextEntity(AcDbDatabase* db, AcDbObjectId id);
// The last main entity added to the drawing's spaces.
AcDbObjectId lastEntity(AcDbDatabase* db);
// Erases a live entity, or brings an erased one back.
Acad::ErrorStatus toggleErased(AcDbObjectId id);
// The object of a handle given as hexadecimal text; null when none or
// erased.
AcDbObjectId objectByHandle(AcDbDatabase* db, std::u16string_view handle);
// The layer of the drawing by name, made when missing.
AcDbObjectId ensureLayer(AcDbDatabase* db, const std::u16string& name);

// Conversions of groups to and from result-buffer chains (the compiled
// functions' form). Points of 2D groups become 3D nodes.
resbuf* groupsToChain(const std::vector<DxfItem>& items);
// False (with err) for a node whose type is no group code or whose value
// cannot be read.
bool chainToGroups(const resbuf* rb, std::vector<DxfItem>* out, EntListError* err);

// The name of the DXF type of an object ("LINE", "DICTIONARY").
std::u16string dxfTypeName(const AcDbObject* obj);

}  // namespace zepk::db
