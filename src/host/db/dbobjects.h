// What the database's non-graphical objects (symbol tables, dictionaries,
// xrecords, groups, layouts) share with each other and with the drawing
// file reader and writer. Not part of the host interface.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/db/schema.h"
#include "host/dbmain.h"
#include "host/dbsymtb.h"

namespace zepk::db {

// ---- names

// Symbol names and dictionary keys compare without regard to ASCII case,
// as the host compares them; the text keeps the case it was given.
std::u16string foldName(std::u16string_view name);
bool sameName(std::u16string_view a, std::u16string_view b);

// Registers the classes of symbol tables, dictionaries, xrecords, groups,
// layouts, draw order tables and multiline styles, parents first.
void registerObjectClasses();

// ---- a new drawing

// Builds in an empty database what a new drawing holds: the nine tables
// with layer "0", linetypes "ByBlock", "ByLayer" and "Continuous", text
// style and dimension style "Standard", application "ACAD", viewport
// "*Active", the blocks "*Model_Space" and "*Paper_Space" with their
// layouts "Model" and "Layout1", the named objects dictionary with
// ACAD_GROUP, ACAD_LAYOUT, ACAD_MLINESTYLE ("Standard") and
// ACAD_PLOTSTYLENAME ("Normal"), and the header variables of a new drawing.
// A database that has a root already is refused with eAlreadyInDb.
Acad::ErrorStatus initNewDrawing(AcDbDatabase* db);

// ---- what the file reader needs

// The table class for the name a TABLE carries in its group 2 ("LAYER",
// "BLOCK_RECORD", ...), made empty; null for a name that is not a table.
AcDbSymbolTable* newSymbolTable(std::u16string_view tableName);
// The table of a drawing that a table name names ("LAYER", "LTYPE", ...,
// the names tblsearch takes, in any case); null and ERRNO set for others.
AcDbObjectId tableId(AcDbDatabase* db, const ACHAR* name);
// The name of the kind of table ("LAYER"): what group 2 of a TABLE holds.
const char16_t* symbolTableName(const AcDbSymbolTable* table);
// The root the table is in a database.
AcDbDatabase::Root symbolTableRoot(const AcDbSymbolTable* table);
// Files list a table's records apart from the table: each record names
// its table as owner. These put a record, or an entity, already in the
// table's (block's) database into it, at the end; the table or block must
// be open for write. A record of another kind gives eWrongObjectType, an
// object of another database eWrongDatabase.
Acad::ErrorStatus linkRecord(AcDbSymbolTable* table, AcDbObjectId recordId);
Acad::ErrorStatus linkEntity(AcDbBlockTableRecord* block, AcDbObjectId entityId);
// Appends many entities at once, in order; each gets its own status, as
// linkEntity would give it.
void linkEntities(AcDbBlockTableRecord* block, const std::vector<AcDbObjectId>& ids,
                  std::vector<Acad::ErrorStatus>* statuses);

// ---- groups a class keeps without knowing them

// Writes and reads a list of groups; in the DWG-style stream each group is
// its code, its kind and its value, references by their kind of ownership.
Acad::ErrorStatus writeDxfItem(AcDbDxfFiler* f, const DxfItem& item);
Acad::ErrorStatus writeDxfItems(AcDbDxfFiler* f, const std::vector<DxfItem>& items);
Acad::ErrorStatus writeDwgItems(AcDbDwgFiler* f, const std::vector<DxfItem>& items);
Acad::ErrorStatus readDwgItems(AcDbDwgFiler* f, std::vector<DxfItem>* items);
// Equal code, kind and value.
bool sameItem(const DxfItem& a, const DxfItem& b);

// Takes a class's groups from the filer's place to the next subclass
// marker, extended data or the end: groups of the schema's ordinary fields
// go to their fields, groups of its custom parts to those parts, and every
// other group is kept as it was read. The first group is always kept (the
// schema hands over a group it has no field left for).
// `self` is the custom reader of the part that calls it, which is not
// handed groups again.
Acad::ErrorStatus readRemainingGroups(AcDbObject* obj, MemoryDxfFiler* f, const ClassSchema& schema,
                                      std::vector<DxfItem>* kept,
                                      Acad::ErrorStatus (*self)(AcDbObject*, MemoryDxfFiler*));
// The codes a class may carry in its data: 1 to 999 but for 100.
const std::vector<int>& anyClassCode();

// The last part of a schema: whatever the class does not know, kept in
// the member Kept (a std::vector<DxfItem>) and written back after its
// known fields, so that nothing in a drawing is lost.
template <auto Kept, const ClassSchema& (*Schema)()>
struct KeptGroups {
  using C = typename MemberOf<Kept>::Class;
  static Acad::ErrorStatus dxfOut(const AcDbObject* o, AcDbDxfFiler* f) {
    return writeDxfItems(f, static_cast<const C*>(o)->*Kept);
  }
  static Acad::ErrorStatus dxfIn(AcDbObject* o, MemoryDxfFiler* f) {
    return readRemainingGroups(o, f, Schema(), &(static_cast<C*>(o)->*Kept), &dxfIn);
  }
  static Acad::ErrorStatus dwgOut(const AcDbObject* o, AcDbDwgFiler* f) {
    return writeDwgItems(f, static_cast<const C*>(o)->*Kept);
  }
  static Acad::ErrorStatus dwgIn(AcDbObject* o, AcDbDwgFiler* f) {
    return readDwgItems(f, &(static_cast<C*>(o)->*Kept));
  }
};

template <auto Kept, const ClassSchema& (*Schema)()>
Field keptGroups() {
  using K = KeptGroups<Kept, Schema>;
  return custom(anyClassCode(), &K::dxfOut, &K::dxfIn, &K::dwgOut, &K::dwgIn);
}

// The object an id names, without opening it: for lookups the database
// makes on its own behalf while the object may be open elsewhere. Null for
// a null id or an id whose object is not in memory.
inline AcDbObject* peekObject(AcDbObjectId id) {
  return id.isNull() || !id.stub() ? nullptr : id.stub()->object;
}
template <class T>
T* peek(AcDbObjectId id) {
  return T::cast(peekObject(id));
}

// The four filers of a class whose own part is one schema after its
// parent's part.
#define ZEPK_SCHEMA_FILERS(CLASS, PARENT, SCHEMA)                        \
  Acad::ErrorStatus CLASS::dwgOutFields(AcDbDwgFiler* f) const {         \
    Acad::ErrorStatus es = PARENT::dwgOutFields(f);                      \
    return es != Acad::eOk ? es : SCHEMA().dwgOut(this, f);              \
  }                                                                      \
  Acad::ErrorStatus CLASS::dwgInFields(AcDbDwgFiler* f) {                \
    Acad::ErrorStatus es = PARENT::dwgInFields(f);                       \
    return es != Acad::eOk ? es : SCHEMA().dwgIn(this, f);               \
  }                                                                      \
  Acad::ErrorStatus CLASS::dxfOutFields(AcDbDxfFiler* f) const {         \
    Acad::ErrorStatus es = PARENT::dxfOutFields(f);                      \
    return es != Acad::eOk ? es : SCHEMA().dxfOut(this, f);              \
  }                                                                      \
  Acad::ErrorStatus CLASS::dxfInFields(AcDbDxfFiler* f) {                \
    Acad::ErrorStatus es = PARENT::dxfInFields(f);                       \
    return es != Acad::eOk ? es : SCHEMA().dxfIn(this, f);               \
  }

// Whether an object may be changed: open for write, or not in a database
// yet (a new object is the caller's to fill).
inline Acad::ErrorStatus writable(const AcDbObject* o) {
  return (!o->objectId().isNull() && !o->isWriteEnabled()) ? Acad::eNotOpenForWrite : Acad::eOk;
}

}  // namespace zepk::db

// What the tables' own code reaches inside records and tables.
struct AcDbSymbolTableAccess {
  static std::u16string& name(AcDbSymbolTableRecord* r) { return r->name_; }
  static Adesk::Int16& flags(AcDbSymbolTableRecord* r) { return r->flags_; }
  static AcDbObjectIdArray& records(AcDbSymbolTable* t) { return t->records_; }
  static void invalidate(AcDbSymbolTable* t) { t->indexValid_ = false; }
  static AcDbObjectIdArray& entities(AcDbBlockTableRecord* b) { return b->entities_; }
};
