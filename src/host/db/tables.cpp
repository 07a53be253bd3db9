// Symbol tables: the record base, the tables with their name index, the
// iterators, the database's roots, and the lookups the rest of the
// database makes by name.
#include <algorithm>
#include <cstring>

#include "host/db/dbobjects.h"
#include "host/db/internal.h"
#include "host/dbdict.h"
#include "host/dbsymtb.h"

using zepk::db::foldName;
using zepk::db::peek;
using zepk::db::sameName;

namespace {

template <class T>
AcRxObject* make() {
  return new T;
}

}  // namespace

// ---------------------------------------------------------------- records

ACRX_DEFINE_HOST_CLASS(AcDbSymbolTableRecord, AcDbObject, nullptr, nullptr)

AcDbSymbolTableRecord::AcDbSymbolTableRecord() = default;
AcDbSymbolTableRecord::~AcDbSymbolTableRecord() = default;

Acad::ErrorStatus AcDbSymbolTableRecord::getName(ACHAR*& name) const {
  name = new ACHAR[name_.size() + 1];
  std::memcpy(name, name_.c_str(), (name_.size() + 1) * sizeof(ACHAR));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::getName(const ACHAR*& name) const {
  name = name_.c_str();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::getName(std::u16string& name) const {
  name = name_;
  return Acad::eOk;
}

bool AcDbSymbolTableRecord::isValidName(std::u16string_view name) const {
  if (name.empty() || name.size() > 255) return false;
  for (char16_t c : name) {
    if (c < 0x20) return false;
    if (std::u16string_view(u"<>/\\\":;?*,=`").find(c) != std::u16string_view::npos) return false;
    // A vertical bar joins a reference's name to the record's, in records
    // that come from a reference.
    if (c == u'|' && !isDependent()) return false;
  }
  return true;
}

Acad::ErrorStatus AcDbSymbolTableRecord::setName(const ACHAR* name) {
  if (!name) return Acad::eInvalidInput;
  if (Acad::ErrorStatus es = zepk::db::writable(this); es != Acad::eOk) return es;
  std::u16string s(name);
  if (!isValidName(s)) return Acad::eInvalidSymbolTableName;
  if (!objectId().isNull() && isStandardRecord() && !sameName(s, name_)) return Acad::eNotApplicable;
  if (auto* table = peek<AcDbSymbolTable>(ownerId())) {
    AcDbObjectId other;
    if (table->getAt(name, other) == Acad::eOk && other != objectId()) return Acad::eDuplicateRecordName;
  }
  assertWriteEnabled();
  name_ = std::move(s);
  nameChanged();
  return Acad::eOk;
}

void AcDbSymbolTableRecord::nameChanged() const {
  if (auto* table = peek<AcDbSymbolTable>(ownerId())) AcDbSymbolTableAccess::invalidate(table);
}

Acad::ErrorStatus AcDbSymbolTableRecord::subErase(bool erasing) {
  if (erasing && isStandardRecord()) return Acad::eCannotBeErasedByCaller;
  nameChanged();
  return Acad::eOk;
}

void AcDbSymbolTableRecord::resetCustomData() { kept_.clear(); }

// The record's own fields are in each kind's schema; this part only marks
// the subclass and keeps the table's index honest after a read.
Acad::ErrorStatus AcDbSymbolTableRecord::dwgOutFields(AcDbDwgFiler* f) const { return AcDbObject::dwgOutFields(f); }

Acad::ErrorStatus AcDbSymbolTableRecord::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbObject::dwgInFields(f);
  nameChanged();
  return es;
}

Acad::ErrorStatus AcDbSymbolTableRecord::dxfOutFields(AcDbDxfFiler* f) const {
  AcDbObject::dxfOutFields(f);
  f->writeString(100, u"AcDbSymbolTableRecord");
  return f->filerStatus();
}

Acad::ErrorStatus AcDbSymbolTableRecord::dxfInFields(AcDbDxfFiler* f) {
  resetCustomData();
  Acad::ErrorStatus es = AcDbObject::dxfInFields(f);
  if (es != Acad::eOk) return es;
  // Drawings of old releases have no subclass markers before the kind's.
  f->atSubclassData(u"AcDbSymbolTableRecord");
  nameChanged();
  return f->filerStatus();
}

// ---------------------------------------------------------------- tables

ACRX_DEFINE_HOST_CLASS(AcDbSymbolTable, AcDbObject, nullptr, nullptr)
ACRX_DEFINE_HOST_CLASS(AcDbBlockTable, AcDbSymbolTable, u"TABLE", make<AcDbBlockTable>)
ACRX_DEFINE_HOST_CLASS(AcDbLayerTable, AcDbSymbolTable, u"TABLE", make<AcDbLayerTable>)
ACRX_DEFINE_HOST_CLASS(AcDbTextStyleTable, AcDbSymbolTable, u"TABLE", make<AcDbTextStyleTable>)
ACRX_DEFINE_HOST_CLASS(AcDbLinetypeTable, AcDbSymbolTable, u"TABLE", make<AcDbLinetypeTable>)
ACRX_DEFINE_HOST_CLASS(AcDbDimStyleTable, AcDbSymbolTable, u"TABLE", make<AcDbDimStyleTable>)
ACRX_DEFINE_HOST_CLASS(AcDbUCSTable, AcDbSymbolTable, u"TABLE", make<AcDbUCSTable>)
ACRX_DEFINE_HOST_CLASS(AcDbViewTable, AcDbSymbolTable, u"TABLE", make<AcDbViewTable>)
ACRX_DEFINE_HOST_CLASS(AcDbViewportTable, AcDbSymbolTable, u"TABLE", make<AcDbViewportTable>)
ACRX_DEFINE_HOST_CLASS(AcDbRegAppTable, AcDbSymbolTable, u"TABLE", make<AcDbRegAppTable>)

AcDbSymbolTable::AcDbSymbolTable() = default;
AcDbSymbolTable::~AcDbSymbolTable() = default;

AcRxClass* AcDbSymbolTable::recordClass() const { return AcDbSymbolTableRecord::desc(); }

void AcDbSymbolTable::rebuildIndex() const {
  index_.clear();
  for (const AcDbObjectId& id : records_) {
    if (id.isErased()) continue;
    if (auto* rec = peek<AcDbSymbolTableRecord>(id)) index_.emplace(foldName(rec->name()), id);
  }
  indexValid_ = true;
}

AcDbObjectId AcDbSymbolTable::find(std::u16string_view name) const {
  if (!indexValid_) rebuildIndex();
  std::u16string key = foldName(name);
  auto it = index_.find(key);
  if (it == index_.end()) return {};
  auto* rec = peek<AcDbSymbolTableRecord>(it->second);
  if (rec && !it->second.isErased() && sameName(rec->name(), name)) return it->second;
  // A change the index was not told of: look again from the records.
  rebuildIndex();
  it = index_.find(key);
  return it == index_.end() ? AcDbObjectId() : it->second;
}

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* name, AcDbObjectId& id, bool getErasedRecord) const {
  id.setNull();
  if (!name) return Acad::eInvalidInput;
  id = find(name);
  if (id.isNull() && getErasedRecord) {
    for (const AcDbObjectId& r : records_) {
      auto* rec = peek<AcDbSymbolTableRecord>(r);
      if (rec && sameName(rec->name(), name)) {
        id = r;
        break;
      }
    }
  }
  return id.isNull() ? Acad::eKeyNotFound : Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* name, AcDbSymbolTableRecord*& record, AcDb::OpenMode mode,
                                         bool openErasedRecord) const {
  record = nullptr;
  AcDbObjectId id;
  Acad::ErrorStatus es = getAt(name, id, openErasedRecord);
  return es != Acad::eOk ? es : acdbOpenObject(record, id, mode, openErasedRecord);
}

bool AcDbSymbolTable::has(const ACHAR* name) const { return name && !find(name).isNull(); }

bool AcDbSymbolTable::has(AcDbObjectId id) const {
  return !id.isNull() && !id.isErased() && std::find(records_.begin(), records_.end(), id) != records_.end();
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbSymbolTableRecord* record) {
  AcDbObjectId id;
  return add(id, record);
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbObjectId& id, AcDbSymbolTableRecord* record) {
  id.setNull();
  if (!record) return Acad::eNullObjectPointer;
  AcDbDatabase* db = database();
  if (!db) return Acad::eNotInDatabase;
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!record->objectId().isNull()) return Acad::eAlreadyInDb;
  if (!record->isKindOf(recordClass())) return Acad::eWrongObjectType;
  if (!prepareNewRecord(record)) return Acad::eInvalidInput;
  const std::u16string& name = record->name();
  if (name.empty()) return Acad::eInvalidInput;
  if (has(name.c_str())) return Acad::eDuplicateRecordName;
  Acad::ErrorStatus es = db->addAcDbObject(id, record);
  if (es != Acad::eOk) return es;
  record->setOwnerId(objectId());
  record->addedToTable(db);
  assertWriteEnabled();
  records_.push_back(id);
  if (indexValid_) index_.emplace(foldName(name), id);
  return Acad::eOk;
}

AcDbObjectIdArray AcDbSymbolTable::recordIds(bool includeErased) const {
  AcDbObjectIdArray out;
  for (const AcDbObjectId& id : records_)
    if (includeErased || !id.isErased()) out.push_back(id);
  return out;
}

Acad::ErrorStatus AcDbSymbolTable::newIterator(AcDbSymbolTableIterator*& it, bool atBeginning,
                                               bool skipDeleted) const {
  it = new AcDbSymbolTableIterator(recordIds(true));
  it->start(atBeginning, skipDeleted);
  return Acad::eOk;
}

// The records are objects of their own: the table's part in the DWG-style
// stream lists them; in DXF each names the table as its owner.
Acad::ErrorStatus AcDbSymbolTable::dwgOutFields(AcDbDwgFiler* f) const {
  AcDbObject::dwgOutFields(f);
  f->writeInt32(static_cast<Adesk::Int32>(records_.size()));
  for (const AcDbObjectId& id : records_) f->writeHardOwnershipId(id);
  return f->filerStatus();
}

Acad::ErrorStatus AcDbSymbolTable::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbObject::dwgInFields(f);
  if (es != Acad::eOk) return es;
  Adesk::Int32 n = 0;
  f->readInt32(&n);
  records_.clear();
  for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
    AcDbObjectId id;
    f->readHardOwnershipId(&id);
    records_.push_back(id);
  }
  indexValid_ = false;
  return f->filerStatus();
}

Acad::ErrorStatus AcDbSymbolTable::dxfOutFields(AcDbDxfFiler* f) const {
  AcDbObject::dxfOutFields(f);
  f->writeString(100, u"AcDbSymbolTable");
  f->writeInt16(70, static_cast<Adesk::Int16>(recordIds().size()));
  return f->filerStatus();
}

Acad::ErrorStatus AcDbSymbolTable::dxfInFields(AcDbDxfFiler* f) {
  Acad::ErrorStatus es = AcDbObject::dxfInFields(f);
  if (es != Acad::eOk) return es;
  f->atSubclassData(u"AcDbSymbolTable");
  // The count of records is the writer's; the records are what is read.
  resbuf rb;
  while (f->peekCode() == 70) f->readItem(&rb);
  return f->filerStatus();
}

Acad::ErrorStatus AcDbDimStyleTable::dxfOutFields(AcDbDxfFiler* f) const {
  AcDbSymbolTable::dxfOutFields(f);
  f->writeString(100, u"AcDbDimStyleTable");
  AcDbObjectIdArray ids = recordIds();
  f->writeInt16(71, static_cast<Adesk::Int16>(ids.size()));
  for (const AcDbObjectId& id : ids) f->writeObjectId(340, id);
  return f->filerStatus();
}

Acad::ErrorStatus AcDbDimStyleTable::dxfInFields(AcDbDxfFiler* f) {
  Acad::ErrorStatus es = AcDbSymbolTable::dxfInFields(f);
  if (es != Acad::eOk) return es;
  if (f->atSubclassData(u"AcDbDimStyleTable")) {
    resbuf rb;
    for (int c = f->peekCode(); c == 71 || c == 340; c = f->peekCode()) f->readItem(&rb);
  }
  return f->filerStatus();
}

// ---------------------------------------------------------------- iterators

void AcDbSymbolTableIterator::skip(bool forward, bool skipDeleted) {
  while (!done() && skipDeleted && ids_[pos_].isErased()) pos_ += forward ? 1 : -1;
}

void AcDbSymbolTableIterator::start(bool atBeginning, bool skipDeleted) {
  pos_ = atBeginning ? 0 : static_cast<long>(ids_.size()) - 1;
  skip(atBeginning, skipDeleted);
}

void AcDbSymbolTableIterator::step(bool forward, bool skipDeleted) {
  if (done()) return;
  pos_ += forward ? 1 : -1;
  skip(forward, skipDeleted);
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecordId(AcDbObjectId& id) const {
  if (done()) return Acad::eInvalidIndex;
  id = ids_[pos_];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecord(AcDbSymbolTableRecord*& record, AcDb::OpenMode mode,
                                                     bool openErasedRecord) const {
  record = nullptr;
  if (done()) return Acad::eInvalidIndex;
  return acdbOpenObject(record, ids_[pos_], mode, openErasedRecord);
}

Acad::ErrorStatus AcDbSymbolTableIterator::seek(AcDbObjectId id) {
  auto it = std::find(ids_.begin(), ids_.end(), id);
  if (it == ids_.end()) return Acad::eKeyNotFound;
  pos_ = it - ids_.begin();
  return Acad::eOk;
}

// ---------------------------------------------------------------- the database's roots

namespace {

template <class T>
Acad::ErrorStatus openRoot(AcDbObjectId id, T*& out, AcDb::OpenMode mode) {
  out = nullptr;
  if (id.isNull()) return Acad::eNullObjectId;
  return acdbOpenObject(out, id, mode);
}

AcDbObjectId namedEntry(const AcDbDatabase* db, const ACHAR* key) {
  AcDbObjectId id;
  if (auto* nod = peek<AcDbDictionary>(db->namedObjectsDictionaryId())) nod->getAt(key, id);
  return id;
}

}  // namespace

AcDbObjectId AcDbDatabase::groupDictionaryId() const { return namedEntry(this, u"ACAD_GROUP"); }
AcDbObjectId AcDbDatabase::layoutDictionaryId() const { return namedEntry(this, u"ACAD_LAYOUT"); }
AcDbObjectId AcDbDatabase::mLStyleDictionaryId() const { return namedEntry(this, u"ACAD_MLINESTYLE"); }
AcDbObjectId AcDbDatabase::plotStyleNameDictionaryId() const { return namedEntry(this, u"ACAD_PLOTSTYLENAME"); }

Acad::ErrorStatus AcDbDatabase::getBlockTable(AcDbBlockTable*& t, AcDb::OpenMode m) {
  return openRoot(blockTableId(), t, m);
}
Acad::ErrorStatus AcDbDatabase::getLayerTable(AcDbLayerTable*& t, AcDb::OpenMode m) {
  return openRoot(layerTableId(), t, m);
}
Acad::ErrorStatus AcDbDatabase::getTextStyleTable(AcDbTextStyleTable*& t, AcDb::OpenMode m) {
  return openRoot(textStyleTableId(), t, m);
}
Acad::ErrorStatus AcDbDatabase::getLinetypeTable(AcDbLinetypeTable*& t, AcDb::OpenMode m) {
  return openRoot(linetypeTableId(), t, m);
}
Acad::ErrorStatus AcDbDatabase::getViewTable(AcDbViewTable*& t, AcDb::OpenMode m) {
  return openRoot(viewTableId(), t, m);
}
Acad::ErrorStatus AcDbDatabase::getUCSTable(AcDbUCSTable*& t, AcDb::OpenMode m) { return openRoot(UCSTableId(), t, m); }
Acad::ErrorStatus AcDbDatabase::getViewportTable(AcDbViewportTable*& t, AcDb::OpenMode m) {
  return openRoot(viewportTableId(), t, m);
}
Acad::ErrorStatus AcDbDatabase::getRegAppTable(AcDbRegAppTable*& t, AcDb::OpenMode m) {
  return openRoot(regAppTableId(), t, m);
}
Acad::ErrorStatus AcDbDatabase::getDimStyleTable(AcDbDimStyleTable*& t, AcDb::OpenMode m) {
  return openRoot(dimStyleTableId(), t, m);
}
Acad::ErrorStatus AcDbDatabase::getNamedObjectsDictionary(AcDbDictionary*& d, AcDb::OpenMode m) {
  return openRoot(namedObjectsDictionaryId(), d, m);
}
Acad::ErrorStatus AcDbDatabase::getGroupDictionary(AcDbDictionary*& d, AcDb::OpenMode m) {
  return openRoot(groupDictionaryId(), d, m);
}
Acad::ErrorStatus AcDbDatabase::getLayoutDictionary(AcDbDictionary*& d, AcDb::OpenMode m) {
  return openRoot(layoutDictionaryId(), d, m);
}

// ---------------------------------------------------------------- lookups by name

namespace zepk::db {

namespace {

AcDbObjectId recordByName(AcDbObjectId tableId, const std::u16string& name) {
  AcDbObjectId id;
  if (auto* table = peek<AcDbSymbolTable>(tableId)) table->getAt(name.c_str(), id);
  return id;
}

struct TableKind {
  const char16_t* name;
  AcRxClass* (*desc)();
  AcDbDatabase::Root root;
};

const TableKind kTableKinds[] = {
    {u"VPORT", &AcDbViewportTable::desc, AcDbDatabase::kRootViewportTable},
    {u"LTYPE", &AcDbLinetypeTable::desc, AcDbDatabase::kRootLinetypeTable},
    {u"LAYER", &AcDbLayerTable::desc, AcDbDatabase::kRootLayerTable},
    {u"STYLE", &AcDbTextStyleTable::desc, AcDbDatabase::kRootTextStyleTable},
    {u"VIEW", &AcDbViewTable::desc, AcDbDatabase::kRootViewTable},
    {u"UCS", &AcDbUCSTable::desc, AcDbDatabase::kRootUcsTable},
    {u"APPID", &AcDbRegAppTable::desc, AcDbDatabase::kRootRegAppTable},
    {u"DIMSTYLE", &AcDbDimStyleTable::desc, AcDbDatabase::kRootDimStyleTable},
    {u"BLOCK_RECORD", &AcDbBlockTable::desc, AcDbDatabase::kRootBlockTable},
};

const TableKind* kindOf(const AcDbSymbolTable* table) {
  if (!table) return nullptr;
  for (const TableKind& k : kTableKinds)
    if (table->isA() == k.desc()) return &k;
  return nullptr;
}

}  // namespace

AcDbObjectId layerIdByName(AcDbDatabase* db, const std::u16string& name) {
  return db ? recordByName(db->layerTableId(), name) : AcDbObjectId();
}

AcDbObjectId linetypeIdByName(AcDbDatabase* db, const std::u16string& name) {
  return db ? recordByName(db->linetypeTableId(), name) : AcDbObjectId();
}

std::u16string recordName(AcDbObjectId id) {
  auto* rec = peek<AcDbSymbolTableRecord>(id);
  return rec ? rec->name() : std::u16string();
}

bool isLayerLocked(AcDbObjectId layerId) {
  auto* layer = peek<AcDbLayerTableRecord>(layerId);
  return layer && layer->isLocked();
}

AcDbObjectId defaultLayerId(AcDbDatabase* db) { return layerIdByName(db, u"0"); }
AcDbObjectId byLayerLinetypeId(AcDbDatabase* db) { return linetypeIdByName(db, u"ByLayer"); }

AcDbSymbolTable* newSymbolTable(std::u16string_view tableName) {
  for (const TableKind& k : kTableKinds)
    if (sameName(k.name, tableName)) return AcDbSymbolTable::cast(k.desc()->create());
  return nullptr;
}

const char16_t* symbolTableName(const AcDbSymbolTable* table) {
  const TableKind* k = kindOf(table);
  return k ? k->name : u"";
}

AcDbDatabase::Root symbolTableRoot(const AcDbSymbolTable* table) {
  const TableKind* k = kindOf(table);
  return k ? k->root : AcDbDatabase::kRootCount;
}

Acad::ErrorStatus linkRecord(AcDbSymbolTable* table, AcDbObjectId recordId) {
  if (!table) return Acad::eNullObjectPointer;
  if (!table->isWriteEnabled()) return Acad::eNotOpenForWrite;
  auto* rec = peek<AcDbSymbolTableRecord>(recordId);
  if (!rec) return recordId.isNull() ? Acad::eNullObjectId : Acad::eWrongObjectType;
  if (recordId.database() != table->database()) return Acad::eWrongDatabase;
  if (!rec->isKindOf(table->recordClass())) return Acad::eWrongObjectType;
  AcDbObjectIdArray& records = AcDbSymbolTableAccess::records(table);
  if (std::find(records.begin(), records.end(), recordId) != records.end()) return Acad::eAlreadyInDb;
  table->assertWriteEnabled();
  records.push_back(recordId);
  AcDbSymbolTableAccess::invalidate(table);
  return Acad::eOk;
}

}  // namespace zepk::db
