// What the database's own source files share and nothing else sees.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "host/db/memfiler.h"
#include "host/dbmain.h"

#define ZEPK_WIDE2(x) u##x
#define ZEPK_WIDE(x) ZEPK_WIDE2(x)
// The record of a class of the database itself, made on first use.
#define ACRX_DEFINE_HOST_CLASS(CLASS_NAME, PARENT, DXF_NAME, CTOR)                                        \
  AcRxClass* CLASS_NAME::gpDesc = nullptr;                                                              \
  AcRxClass* CLASS_NAME::desc() {                                                                       \
    if (!gpDesc) gpDesc = newAcRxClass(ZEPK_WIDE(#CLASS_NAME), PARENT::desc()->name(), 0, 0, 0, CTOR, DXF_NAME, u"ZEPK host"); \
    return gpDesc;                                                                                      \
  }

namespace zepk::db {

// The state of an object before its first change under an undo mark.
struct UndoRecord {
  AcDbStub* stub = nullptr;
  std::shared_ptr<MemoryDwgFiler> state;
  bool erased = false;
};

struct UndoMark {
  std::vector<UndoRecord> records;
  std::vector<AcDbStub*> added;
  // Pairs of ids whose objects were exchanged, in the order it was done.
  std::vector<std::pair<AcDbStub*, AcDbStub*>> swaps;
};

// Exchanges the objects of two ids (both stubs and the objects' links).
void swapStubObjects(AcDbStub* a, AcDbStub* b);

// Makes the records of all the database's own classes (called once, when
// the class dictionary is first used).
void registerHostClasses();

// ---- Symbol tables as entities and the file reader need them. Implemented
// with the tables; a database without its tables answers null ids and "".

// The layer and linetype table records of a database by name
// (case-insensitive); null when there is none.
AcDbObjectId layerIdByName(AcDbDatabase* db, const std::u16string& name);
AcDbObjectId linetypeIdByName(AcDbDatabase* db, const std::u16string& name);
// The name of any symbol table record; "" for a null id.
std::u16string recordName(AcDbObjectId id);
// Whether the layer record is locked (entities on it refuse a write open).
bool isLayerLocked(AcDbObjectId layerId);
// The layer "0" and the linetype "ByLayer" of the database: what new
// entities get.
AcDbObjectId defaultLayerId(AcDbDatabase* db);
AcDbObjectId byLayerLinetypeId(AcDbDatabase* db);

// ---- Header variables ($ACADVER, $HANDSEED, ... ) as the drawing stores
// them: each name with its groups, in the order they were read or set.
struct HeaderVar {
  std::u16string name;  // with the "$"
  std::vector<DxfItem> groups;
};
std::vector<HeaderVar>& headerVars(AcDbDatabase* db);

// Puts an object back into its recorded state, without notifications.
void restoreRecord(const UndoRecord& r);
// The open undo mark of the database, or null.
UndoMark* openUndoMark(AcDbDatabase* db);
// Calls f for each reactor of the database (a copy of the list, so that a
// reactor may remove itself).
void dbNotify(AcDbDatabase* db, const std::function<void(AcDbDatabaseReactor*)>& f);

}  // namespace zepk::db

struct AcDbObjectAccess {
  static auto* impl(AcDbDatabase* db) { return db->impl_.get(); }
  static Acad::ErrorStatus open(AcDbObject* o, AcDb::OpenMode mode);
  static AcDbStub* stub(const AcDbObject* o) { return o->stub_; }
  static void setStub(AcDbObject* o, AcDbStub* s) { o->stub_ = s; }
  // Tells the original's reactors (transient, then persistent) of its copy.
  static void sendCopied(AcDbObject* original, AcDbObject* copy);
  // Drops what a copy made outside any database must not share with its
  // original: owner, extension dictionary, persistent reactors.
  static void detachCopy(AcDbObject* copy);
};

struct AcDbDatabaseAccess {
  // Moves every object, handle and root of `from` into `to`, which must
  // hold no object; each keeps its reactors. `from` is left empty.
  static Acad::ErrorStatus moveContents(AcDbDatabase* from, AcDbDatabase* to);
  // Room for `count` more objects' handles, made once (a drawing about to
  // be read).
  static void reserveObjects(AcDbDatabase* db, size_t count);
};
