// Blocks: the block table record with its entities, its iterator, and the
// block table's numbering of anonymous blocks.
#include <algorithm>
#include <string>
#include <unordered_set>

#include "host/db/dbobjects.h"
#include "host/db/ents_internal.h"
#include "host/db/internal.h"
#include "host/dbdict.h"
#include "host/dbsymtb.h"
#include "host/sorttab.h"

using namespace zepk::db;

namespace {

AcRxObject* makeBlock() { return new AcDbBlockTableRecord; }

bool startsWithFolded(std::u16string_view s, std::u16string_view prefix) {
  return s.size() >= prefix.size() && sameName(s.substr(0, prefix.size()), prefix);
}

}  // namespace

ACRX_DEFINE_HOST_CLASS(AcDbBlockTableRecord, AcDbSymbolTableRecord, u"BLOCK_RECORD", makeBlock)

AcDbBlockTableRecord::AcDbBlockTableRecord() = default;
AcDbBlockTableRecord::~AcDbBlockTableRecord() = default;

// BLOCK_RECORD in the tables.
const ClassSchema& AcDbBlockTableRecord::schema() {
  using B = AcDbBlockTableRecord;
  static const ClassSchema s{u"AcDbBlockTableRecord",
                             {
                                 field<&B::name_>(2, "Name"),
                                 field<&B::layout_>(340, "Layout", {}, kNone, FieldType::HardPointer),
                                 field<&B::units_>(70, "InsertUnits", 0),
                                 field<&B::explodable_>(280, "Explodable", 1),
                                 field<&B::scalable_>(281, "BlockScaling", 0),
                                 keptGroups<&B::kept_, &B::schema>(),
                             }};
  return s;
}

// BLOCK in the blocks section: the name twice (2 and 3) around the flags
// and the origin. The name is the record's, kept once in the stream.
const ClassSchema& AcDbBlockTableRecord::blockBeginSchema() {
  using B = AcDbBlockTableRecord;
  auto name2 = [](const AcDbObject* o, AcDbDxfFiler* f) { return f->writeString(2, static_cast<const B*>(o)->name_); };
  auto name3 = [](const AcDbObject* o, AcDbDxfFiler* f) { return f->writeString(3, static_cast<const B*>(o)->name_); };
  auto nameIn = [](AcDbObject* o, MemoryDxfFiler* f) {
    int code = f->peekCode();
    const DxfItem* it = f->next();
    if (it->kind != DxfItem::String) return Acad::eInvalidResBuf;
    auto* b = static_cast<B*>(o);
    if (code == 2 || b->name_.empty()) b->name_ = it->s;
    return f->filerStatus();
  };
  auto none = [](const AcDbObject*, AcDbDwgFiler* f) { return f->filerStatus(); };
  auto noneIn = [](AcDbObject*, AcDbDwgFiler* f) { return f->filerStatus(); };
  static const ClassSchema s{u"AcDbBlockBegin",
                             {
                                 custom({2}, name2, nameIn, none, noneIn),
                                 field<&B::flags_>(70, "Flags", 0),
                                 field<&B::origin_>(10, "Origin"),
                                 custom({3}, name3, nameIn, none, noneIn),
                                 field<&B::pathName_>(1, "PathName"),
                                 field<&B::comments_>(4, "Comments", u"", kOptional),
                             }};
  return s;
}

Acad::ErrorStatus AcDbBlockTableRecord::dwgOutFields(AcDbDwgFiler* f) const {
  AcDbSymbolTableRecord::dwgOutFields(f);
  schema().dwgOut(this, f);
  blockBeginSchema().dwgOut(this, f);
  f->writeInt32(static_cast<Adesk::Int32>(entities_.size()));
  for (const AcDbObjectId& id : entities_) f->writeHardOwnershipId(id);
  f->writeHardOwnershipId(blockBegin_);
  f->writeHardOwnershipId(blockEnd_);
  return f->filerStatus();
}

Acad::ErrorStatus AcDbBlockTableRecord::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbSymbolTableRecord::dwgInFields(f);
  if (es == Acad::eOk) es = schema().dwgIn(this, f);
  if (es == Acad::eOk) es = blockBeginSchema().dwgIn(this, f);
  if (es != Acad::eOk) return es;
  Adesk::Int32 n = 0;
  f->readInt32(&n);
  entities_.clear();
  for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
    AcDbObjectId id;
    f->readHardOwnershipId(&id);
    entities_.push_back(id);
  }
  f->readHardOwnershipId(&blockBegin_);
  f->readHardOwnershipId(&blockEnd_);
  return f->filerStatus();
}

// The record's DXF is the BLOCK_RECORD; the file writer adds the BLOCK
// through blockBeginSchema().
Acad::ErrorStatus AcDbBlockTableRecord::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbSymbolTableRecord::dxfOutFields(f);
  return es != Acad::eOk ? es : schema().dxfOut(this, f);
}

Acad::ErrorStatus AcDbBlockTableRecord::dxfInFields(AcDbDxfFiler* f) {
  Acad::ErrorStatus es = AcDbSymbolTableRecord::dxfInFields(f);
  return es != Acad::eOk ? es : schema().dxfIn(this, f);
}

bool AcDbBlockTableRecord::isValidName(std::u16string_view name) const {
  // Spaces and anonymous blocks start with a star.
  if (!name.empty() && name[0] == u'*') name.remove_prefix(1);
  return AcDbSymbolTableRecord::isValidName(name);
}

bool AcDbBlockTableRecord::isStandardRecord() const {
  return sameName(name_, ACDB_MODEL_SPACE) || sameName(name_, ACDB_PAPER_SPACE);
}

bool AcDbBlockTableRecord::isLayout() const {
  return startsWithFolded(name_, ACDB_MODEL_SPACE) || startsWithFolded(name_, ACDB_PAPER_SPACE);
}

Acad::ErrorStatus AcDbBlockTableRecord::subErase(bool erasing) {
  Acad::ErrorStatus es = AcDbSymbolTableRecord::subErase(erasing);
  if (es != Acad::eOk) return es;
  // The entities go with the block. One that cannot be opened (on a
  // locked layer, open elsewhere) stays as it is.
  for (const AcDbObjectId& id : entities_) {
    if (id.isErased() == erasing) continue;
    AcDbObject* ent = nullptr;
    if (acdbOpenAcDbObject(ent, id, AcDb::kForWrite, true) != Acad::eOk) continue;
    ent->erase(erasing);
    ent->close();
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::appendEntityObject(AcDbObjectId& id, AcDbObject* entity) {
  id.setNull();
  if (!entity) return Acad::eNullObjectPointer;
  AcDbDatabase* db = database();
  if (!db) return Acad::eNotInDatabase;
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!entity->objectId().isNull()) return Acad::eAlreadyInDb;
  AcRxClass* entityClass = acrxFindClass(u"AcDbEntity");
  if (!entityClass || !entity->isKindOf(entityClass)) return Acad::eNotAnEntity;
  Acad::ErrorStatus es = db->addAcDbObject(id, entity);
  if (es != Acad::eOk) return es;
  entity->setOwnerId(objectId());
  zepk::db::EntityAccess::setPaperSpace(static_cast<AcDbEntity*>(entity), startsWithFolded(name_, ACDB_PAPER_SPACE));
  assertWriteEnabled();
  entities_.push_back(id);
  return Acad::eOk;
}

AcDbObjectIdArray AcDbBlockTableRecord::entityIds(bool includeErased) const {
  AcDbObjectIdArray out;
  for (const AcDbObjectId& id : entities_)
    if (includeErased || !id.isErased()) out.push_back(id);
  return out;
}

bool AcDbBlockTableRecord::hasEntities() const {
  return std::any_of(entities_.begin(), entities_.end(), [](const AcDbObjectId& id) { return !id.isErased(); });
}

Acad::ErrorStatus AcDbBlockTableRecord::newIterator(AcDbBlockTableRecordIterator*& it, bool atBeginning,
                                                    bool skipDeleted) const {
  it = new AcDbBlockTableRecordIterator(entities_);
  it->start(atBeginning, skipDeleted);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::setOrigin(const AcGePoint3d& p) {
  assertWriteEnabled();
  origin_ = p;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::comments(const ACHAR*& text) const {
  text = comments_.c_str();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::setComments(const ACHAR* text) {
  assertWriteEnabled();
  comments_ = text ? text : u"";
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::pathName(const ACHAR*& path) const {
  path = pathName_.c_str();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::setPathName(const ACHAR* path) {
  assertWriteEnabled();
  pathName_ = path ? path : u"";
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::setIsAnonymous(bool anonymous) {
  assertWriteEnabled();
  flags_ = static_cast<Adesk::Int16>(anonymous ? (flags_ | 1) : (flags_ & ~1));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::setHasAttributeDefinitions(bool has) {
  assertWriteEnabled();
  flags_ = static_cast<Adesk::Int16>(has ? (flags_ | 2) : (flags_ & ~2));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::setLayoutId(AcDbObjectId id) {
  assertWriteEnabled();
  layout_ = id;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::setBlockInsertUnits(Adesk::Int16 units) {
  if (units < 0 || units > 24) return Acad::eInvalidInput;
  assertWriteEnabled();
  units_ = units;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::setExplodable(bool explodable) {
  assertWriteEnabled();
  explodable_ = explodable ? 1 : 0;
  return Acad::eOk;
}

void AcDbBlockTableRecord::setBlockBeginAndEnd(AcDbObjectId begin, AcDbObjectId end) {
  assertWriteEnabled();
  blockBegin_ = begin;
  blockEnd_ = end;
}

Acad::ErrorStatus AcDbBlockTableRecord::getSortentsTable(AcDbSortentsTable*& table, AcDb::OpenMode mode,
                                                         bool createIfNecessary) {
  table = nullptr;
  AcDbObjectId dictId = extensionDictionary();
  if (dictId.isNull() || dictId.isErased()) {
    if (!createIfNecessary) return Acad::eKeyNotFound;
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    Acad::ErrorStatus es = createExtensionDictionary();
    if (es != Acad::eOk) return es;
    dictId = extensionDictionary();
  }
  AcDbDictionary* dict = nullptr;
  Acad::ErrorStatus es = acdbOpenObject(dict, dictId, AcDb::kForRead);
  if (es != Acad::eOk) return es;
  AcDbObjectId sortId;
  if (dict->getAt(u"ACAD_SORTENTS", sortId) == Acad::eOk) {
    dict->close();
    return acdbOpenObject(table, sortId, mode);
  }
  if (!createIfNecessary) {
    dict->close();
    return Acad::eKeyNotFound;
  }
  es = dict->upgradeOpen();
  if (es != Acad::eOk) {
    dict->close();
    return es;
  }
  auto* sort = new AcDbSortentsTable;
  sort->setBlockId(objectId());
  es = dict->setAt(u"ACAD_SORTENTS", sort, sortId);
  dict->close();
  if (es != Acad::eOk) {
    delete sort;
    return es;
  }
  if (mode == AcDb::kForWrite) {
    table = sort;
    return Acad::eOk;
  }
  sort->close();
  return acdbOpenObject(table, sortId, mode);
}

// ---------------------------------------------------------------- the entity iterator

void AcDbBlockTableRecordIterator::skip(bool forward, bool skipDeleted) {
  while (!done() && skipDeleted && ids_[pos_].isErased()) pos_ += forward ? 1 : -1;
}

void AcDbBlockTableRecordIterator::start(bool atBeginning, bool skipDeleted) {
  pos_ = atBeginning ? 0 : static_cast<long>(ids_.size()) - 1;
  skip(atBeginning, skipDeleted);
}

void AcDbBlockTableRecordIterator::step(bool forward, bool skipDeleted) {
  if (done()) return;
  pos_ += forward ? 1 : -1;
  skip(forward, skipDeleted);
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntityId(AcDbObjectId& id) const {
  if (done()) return Acad::eInvalidIndex;
  id = ids_[pos_];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::seek(AcDbObjectId id) {
  auto it = std::find(ids_.begin(), ids_.end(), id);
  if (it == ids_.end()) return Acad::eKeyNotFound;
  pos_ = it - ids_.begin();
  return Acad::eOk;
}

// ---------------------------------------------------------------- the block table

bool AcDbBlockTable::prepareNewRecord(AcDbSymbolTableRecord* record) const {
  std::u16string& name = AcDbSymbolTableAccess::name(record);
  bool letter = name.size() == 2 && name[0] == u'*' &&
                ((name[1] >= u'A' && name[1] <= u'Z') || (name[1] >= u'a' && name[1] <= u'z'));
  if (!letter) return true;
  // An anonymous block: the next number after the highest of its letter.
  long highest = 0;
  for (const AcDbObjectId& id : recordIds(true)) {
    auto* rec = peek<AcDbSymbolTableRecord>(id);
    if (!rec || !startsWithFolded(rec->name(), name) || rec->name().size() == 2) continue;
    long n = 0;
    bool digits = true;
    for (size_t i = 2; i < rec->name().size() && digits; ++i) {
      char16_t c = rec->name()[i];
      digits = c >= u'0' && c <= u'9';
      if (digits && n < 100000000) n = n * 10 + (c - u'0');
    }
    if (digits) highest = std::max(highest, n);
  }
  std::string number = std::to_string(highest + 1);
  for (char c : number) name.push_back(static_cast<char16_t>(c));
  AcDbSymbolTableAccess::flags(record) |= 1;
  return true;
}

namespace zepk::db {

Acad::ErrorStatus linkEntity(AcDbBlockTableRecord* block, AcDbObjectId entityId) {
  if (!block) return Acad::eNullObjectPointer;
  if (!block->isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (entityId.isNull()) return Acad::eNullObjectId;
  if (entityId.database() != block->database()) return Acad::eWrongDatabase;
  AcDbObjectIdArray& ents = AcDbSymbolTableAccess::entities(block);
  if (std::find(ents.begin(), ents.end(), entityId) != ents.end()) return Acad::eAlreadyInDb;
  block->assertWriteEnabled();
  ents.push_back(entityId);
  return Acad::eOk;
}

void linkEntities(AcDbBlockTableRecord* block, const std::vector<AcDbObjectId>& ids,
                  std::vector<Acad::ErrorStatus>* statuses) {
  statuses->assign(ids.size(), Acad::eOk);
  if (!block || !block->isWriteEnabled()) {
    statuses->assign(ids.size(), block ? Acad::eNotOpenForWrite : Acad::eNullObjectPointer);
    return;
  }
  AcDbObjectIdArray& ents = AcDbSymbolTableAccess::entities(block);
  // One pass with a set instead of a search of the block per entity: a
  // drawing's model space holds hundreds of thousands of them.
  std::unordered_set<const void*> present;
  present.reserve(ents.size() + ids.size());
  for (const AcDbObjectId& e : ents) present.insert(reinterpret_cast<const void*>(e.asOldId()));
  block->assertWriteEnabled();
  ents.reserve(ents.size() + ids.size());
  for (size_t i = 0; i < ids.size(); ++i) {
    const AcDbObjectId& id = ids[i];
    if (id.isNull()) (*statuses)[i] = Acad::eNullObjectId;
    else if (id.database() != block->database()) (*statuses)[i] = Acad::eWrongDatabase;
    else if (!present.insert(reinterpret_cast<const void*>(id.asOldId())).second) (*statuses)[i] = Acad::eAlreadyInDb;
    else ents.push_back(id);
  }
}

}  // namespace zepk::db
