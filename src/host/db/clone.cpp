// Copying objects: within a drawing (deepClone: COPY, arrays, blocks made of
// a selection) and from one drawing into another (wblockClone: WBLOCK, a
// drawing inserted as a block).
//
// A copy is made in two passes, as a CAD host makes it. The first pass makes
// each copy through the object's own DWG-style filing (so a class that files
// its fields is copied without writing anything more), records source and
// copy in the id map, and follows what the object owns (and, for wblock,
// what it refers to by hard pointer). The second pass files every copy out
// and in again with each reference translated through the map: a reference
// to something copied points to the copy; one to something left behind
// keeps pointing to it within a drawing, and becomes null across drawings;
// an ownership that was not copied is dropped (nothing gets two owners).
#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

#include "host/db/dbobjects.h"
#include "host/db/dxffile.h"
#include "host/db/internal.h"
#include "host/db/memfiler.h"
#include "host/dbdict.h"
#include "host/dbidmap.h"
#include "host/dbsymtb.h"

ACRX_DEFINE_HOST_CLASS(AcDbIdMapping, AcRxObject, nullptr, nullptr)

// ------------------------------------------------------------------ the map

Acad::ErrorStatus AcDbIdMapping::assign(const AcDbIdPair& pair) {
  const void* key = pair.key().stub();
  if (!key) return Acad::eNullObjectId;
  auto it = index_.find(key);
  if (it != index_.end()) {
    pairs_[it->second] = pair;
  } else {
    index_.emplace(key, pairs_.size());
    pairs_.push_back(pair);
  }
  return Acad::eOk;
}

bool AcDbIdMapping::compute(AcDbIdPair& pair) const {
  auto it = index_.find(pair.key().stub());
  if (it == index_.end()) return false;
  pair = pairs_[it->second];
  return true;
}

bool AcDbIdMapping::change(const AcDbIdPair& pair) {
  auto it = index_.find(pair.key().stub());
  if (it == index_.end()) return false;
  pairs_[it->second] = pair;
  return true;
}

bool AcDbIdMapping::del(AcDbObjectId key) {
  auto it = index_.find(key.stub());
  if (it == index_.end()) return false;
  size_t at = it->second;
  index_.erase(it);
  pairs_.erase(pairs_.begin() + static_cast<std::ptrdiff_t>(at));
  for (auto& [k, i] : index_)
    if (i > at) --i;
  return true;
}

namespace zepk::db {
namespace {

enum class IdKind { SoftPointer, HardPointer, SoftOwner, HardOwner };

// The DWG-style stream of an object, with the references it wrote and
// their kinds.
class CollectingFiler : public MemoryDwgFiler {
 public:
  CollectingFiler(AcDb::FilerType type, AcDbDatabase* db) : MemoryDwgFiler(type, db) {}
  struct Ref {
    AcDbObjectId id;
    IdKind kind;
  };
  std::vector<Ref> refs;

  Acad::ErrorStatus writeHardOwnershipId(const AcDbObjectId& v) override {
    refs.push_back({v, IdKind::HardOwner});
    return MemoryDwgFiler::writeHardOwnershipId(v);
  }
  Acad::ErrorStatus writeSoftOwnershipId(const AcDbObjectId& v) override {
    refs.push_back({v, IdKind::SoftOwner});
    return MemoryDwgFiler::writeSoftOwnershipId(v);
  }
  Acad::ErrorStatus writeHardPointerId(const AcDbObjectId& v) override {
    refs.push_back({v, IdKind::HardPointer});
    return MemoryDwgFiler::writeHardPointerId(v);
  }
  Acad::ErrorStatus writeSoftPointerId(const AcDbObjectId& v) override {
    refs.push_back({v, IdKind::SoftPointer});
    return MemoryDwgFiler::writeSoftPointerId(v);
  }
};

// The stream of a copy with its references translated as it is written.
class TranslatingFiler : public MemoryDwgFiler {
 public:
  TranslatingFiler(const AcDbIdMapping& map, AcDbDatabase* dest)
      : MemoryDwgFiler(AcDb::kIdXlateFiler, dest), map_(map), dest_(dest) {}

  Acad::ErrorStatus writeHardOwnershipId(const AcDbObjectId& v) override {
    return MemoryDwgFiler::writeHardOwnershipId(translate(v, true));
  }
  Acad::ErrorStatus writeSoftOwnershipId(const AcDbObjectId& v) override {
    return MemoryDwgFiler::writeSoftOwnershipId(translate(v, true));
  }
  Acad::ErrorStatus writeHardPointerId(const AcDbObjectId& v) override {
    return MemoryDwgFiler::writeHardPointerId(translate(v, false));
  }
  Acad::ErrorStatus writeSoftPointerId(const AcDbObjectId& v) override {
    return MemoryDwgFiler::writeSoftPointerId(translate(v, false));
  }

 private:
  AcDbObjectId translate(AcDbObjectId id, bool owned) const {
    if (id.isNull()) return id;
    AcDbIdPair pair(id, AcDbObjectId(), false);
    if (map_.compute(pair)) {
      // An owner that maps to an object kept as it is (a record the
      // destination had) does not take a second copy into its ownership.
      if (owned && !pair.isCloned()) return AcDbObjectId();
      return pair.value();
    }
    if (owned) return AcDbObjectId();
    return id.database() == dest_ ? id : AcDbObjectId();
  }
  const AcDbIdMapping& map_;
  AcDbDatabase* dest_;
};

// One copy operation: what both passes share.
struct Cloning {
  AcDbIdMapping& map;
  AcDbDatabase* source;
  AcDbDatabase* dest;
  bool wblock;
  AcDb::DuplicateRecordCloning drc;
};

bool isCloned(const AcDbIdMapping& map, AcDbObjectId id) {
  AcDbIdPair p(id, AcDbObjectId(), false);
  return map.compute(p) && p.isCloned();
}

AcDbObjectId mapped(const AcDbIdMapping& map, AcDbObjectId id) {
  AcDbIdPair p(id, AcDbObjectId(), false);
  return map.compute(p) ? p.value() : AcDbObjectId();
}

// The table of the destination that matches the source record's table.
AcDbObjectId destinationTable(AcDbDatabase* dest, const AcDbSymbolTableRecord* rec) {
  auto* table = peek<AcDbSymbolTable>(rec->ownerId());
  if (!table) return {};
  AcDbDatabase::Root root = symbolTableRoot(table);
  switch (root) {
    case AcDbDatabase::kRootBlockTable: return dest->blockTableId();
    case AcDbDatabase::kRootLayerTable: return dest->layerTableId();
    case AcDbDatabase::kRootTextStyleTable: return dest->textStyleTableId();
    case AcDbDatabase::kRootLinetypeTable: return dest->linetypeTableId();
    case AcDbDatabase::kRootViewTable: return dest->viewTableId();
    case AcDbDatabase::kRootUcsTable: return dest->UCSTableId();
    case AcDbDatabase::kRootViewportTable: return dest->viewportTableId();
    case AcDbDatabase::kRootRegAppTable: return dest->regAppTableId();
    case AcDbDatabase::kRootDimStyleTable: return dest->dimStyleTableId();
    default: return {};
  }
}

// A name for a copied record that the destination table does not have:
// "$0$NAME", "$1$NAME", ...
std::u16string mangledName(const AcDbSymbolTable* table, const std::u16string& name) {
  for (int n = 0;; ++n) {
    std::u16string candidate = u"$";
    for (char c : std::to_string(n)) candidate.push_back(static_cast<char16_t>(c));
    candidate += u"$";
    candidate += name;
    if (!table->has(candidate.c_str())) return candidate;
  }
}

Acad::ErrorStatus cloneReferenced(Cloning& c, AcDbObjectId id);

// Records every drawing has by the same name and that a copy always
// shares, whatever the rule for names: layer "0", the three standard
// linetypes, the spaces, and registered applications.
bool sharedByEveryDrawing(const AcDbSymbolTableRecord* rec) {
  const std::u16string& n = rec->name();
  if (AcDbLayerTableRecord::cast(rec)) return n == u"0";
  if (AcDbLinetypeTableRecord::cast(rec))
    return sameName(n, u"ByBlock") || sameName(n, u"ByLayer") || sameName(n, u"Continuous");
  if (AcDbBlockTableRecord::cast(rec))
    return sameName(n, ACDB_MODEL_SPACE) || sameName(n.substr(0, 12), ACDB_PAPER_SPACE);
  return AcDbRegAppTableRecord::cast(rec) != nullptr;
}

// Makes the copy of src in the destination, owned by ownerId, records it,
// and follows what src owns (and, for wblock, what it refers to by hard
// pointer). The copy is left open for write.
Acad::ErrorStatus copyObject(Cloning& c, const AcDbObject* src, AcDbObjectId ownerId, bool primary,
                             AcDbObject*& out) {
  out = nullptr;
  if (src->isErased() || isCloned(c.map, src->objectId())) return Acad::eOk;
  AcDbObject* copy = AcDbObject::cast(src->isA()->create());
  if (!copy) return Acad::eNotApplicable;
  CollectingFiler filer(c.wblock ? AcDb::kWblockCloneFiler : AcDb::kDeepCloneFiler, src->database());
  Acad::ErrorStatus es = src->dwgOutFields(&filer);
  if (es != Acad::eOk) {
    delete copy;
    return es;
  }
  AcDbObjectId copyId;
  es = c.dest->addAcDbObject(copyId, copy);
  if (es != Acad::eOk) {
    delete copy;
    return es;
  }
  filer.rewind();
  es = copy->dwgInFields(&filer);
  if (es != Acad::eOk) {
    // The copy is in the drawing already: it goes as an erased object.
    copy->erase();
    copy->close();
    return es;
  }
  copy->setOwnerId(ownerId);
  c.map.assign(AcDbIdPair(src->objectId(), copyId, true, primary, true));
  out = copy;

  for (const CollectingFiler::Ref& ref : filer.refs) {
    if (ref.id.isNull() || ref.id == src->ownerId()) continue;
    if (ref.kind == IdKind::HardOwner || ref.kind == IdKind::SoftOwner) {
      AcDbObject* sub = nullptr;
      if (acdbOpenAcDbObject(sub, ref.id, AcDb::kForRead) != Acad::eOk) continue;  // erased ones stay behind
      AcDbObject* subCopy = nullptr;
      Acad::ErrorStatus subEs =
          c.wblock ? sub->wblockClone(copy, subCopy, c.map, false) : sub->deepClone(copy, subCopy, c.map, false);
      if (subCopy) subCopy->close();
      sub->close();
      if (subEs != Acad::eOk && subEs != Acad::eNotApplicable) return subEs;
    } else if (ref.kind == IdKind::HardPointer && c.wblock && ref.id.database() != c.dest) {
      Acad::ErrorStatus refEs = cloneReferenced(c, ref.id);
      if (refEs != Acad::eOk) return refEs;
    }
  }
  return Acad::eOk;
}

// What an object copied across drawings refers to by hard pointer: a
// symbol record merged by name with the destination's, or another object
// copied under the copy of its owner (a dictionary the destination has by
// key merges the same way).
Acad::ErrorStatus cloneReferenced(Cloning& c, AcDbObjectId id) {
  if (!mapped(c.map, id).isNull()) return Acad::eOk;
  AcDbObject* src = nullptr;
  if (acdbOpenAcDbObject(src, id, AcDb::kForRead) != Acad::eOk) return Acad::eOk;
  Acad::ErrorStatus es = Acad::eOk;
  AcDbObject* copy = nullptr;
  if (auto* rec = AcDbSymbolTableRecord::cast(src)) {
    AcDbObjectId tableId = destinationTable(c.dest, rec);
    AcDbSymbolTable* table = nullptr;
    if (tableId.isNull() || acdbOpenObject(table, tableId, AcDb::kForWrite) != Acad::eOk) {
      src->close();
      return Acad::eOk;  // a destination without that table: the reference becomes null
    }
    AcDbObjectId existing;
    bool isBlock = AcDbBlockTableRecord::cast(rec) != nullptr;
    bool taken = table->getAt(rec->name().c_str(), existing) == Acad::eOk;
    bool mangle = c.drc == AcDb::kDrcMangleName || c.drc == AcDb::kDrcXrefMangleName;
    if (taken && (!mangle || sharedByEveryDrawing(rec))) {
      if (c.drc == AcDb::kDrcReplace && !isBlock && !sharedByEveryDrawing(rec)) {
        // The destination's record takes the source's values, keeping its
        // own identity, owner and name.
        AcDbObject* target = nullptr;
        if (acdbOpenAcDbObject(target, existing, AcDb::kForWrite) == Acad::eOk) {
          CollectingFiler filer(AcDb::kWblockCloneFiler, src->database());
          src->dwgOutFields(&filer);
          AcDbObjectId owner = target->ownerId();
          std::u16string name = rec->name();
          filer.rewind();
          target->dwgInFields(&filer);
          target->setOwnerId(owner);
          AcDbSymbolTableAccess::name(static_cast<AcDbSymbolTableRecord*>(target)) = name;
          c.map.assign(AcDbIdPair(id, existing, true, false, true));
          target->close();
          table->close();
          src->close();
          // What the record uses comes along as for a copy.
          for (const CollectingFiler::Ref& ref : filer.refs) {
            if (ref.kind != IdKind::HardPointer || ref.id.isNull() || ref.id.database() == c.dest) continue;
            if (Acad::ErrorStatus refEs = cloneReferenced(c, ref.id); refEs != Acad::eOk) return refEs;
          }
          return Acad::eOk;
        }
      } else {
        c.map.assign(AcDbIdPair(id, existing, false, false, true));
      }
      table->close();
      src->close();
      return Acad::eOk;
    }
    es = copyObject(c, src, tableId, false, copy);
    if (es == Acad::eOk && copy) {
      auto* recCopy = static_cast<AcDbSymbolTableRecord*>(copy);
      if (taken) AcDbSymbolTableAccess::name(recCopy) = mangledName(table, rec->name());
      linkRecord(table, copy->objectId());
      copy->close();
    }
    table->close();
    src->close();
    return es;
  }
  // Another object: it goes under its owner's counterpart.
  AcDbObjectId srcOwner = src->ownerId();
  AcDbObjectId destOwner = mapped(c.map, srcOwner);
  AcDbIdPair ownerPair(srcOwner, AcDbObjectId(), false);
  bool ownerKept = c.map.compute(ownerPair) && !ownerPair.isCloned();
  auto* srcDict = peek<AcDbDictionary>(srcOwner);
  std::u16string key;
  if (srcDict) srcDict->nameAt(id, key);
  if (ownerKept && srcDict && !key.empty()) {
    // A dictionary the destination has: merge by key.
    AcDbDictionary* dict = nullptr;
    if (acdbOpenObject(dict, destOwner, AcDb::kForWrite) == Acad::eOk) {
      AcDbObjectId existing;
      if (dict->getAt(key.c_str(), existing) == Acad::eOk && c.drc != AcDb::kDrcMangleName) {
        c.map.assign(AcDbIdPair(id, existing, false, false, true));
      } else {
        es = copyObject(c, src, destOwner, false, copy);
        if (es == Acad::eOk && copy) {
          std::u16string name = key;
          if (dict->has(name.c_str())) name = u"$0$" + key;
          AcDbObjectId ignored;
          dict->setAt(name.c_str(), copy, ignored);
          copy->close();
        }
      }
      dict->close();
    }
    src->close();
    return es;
  }
  // Whatever else: copied without an owner in the destination unless its
  // owner is copied too.
  es = copyObject(c, src, destOwner, false, copy);
  if (copy) copy->close();
  src->close();
  return es;
}

// The second pass: each copy filed out and in with its references
// translated; lists that lost an entry to an object left behind close up.
Acad::ErrorStatus translate(AcDbIdMapping& map, AcDbDatabase* dest) {
  std::vector<AcDbIdPair> pairs = map.pairs();
  for (const AcDbIdPair& pair : pairs) {
    if (!pair.isCloned()) continue;
    AcDbObject* copy = nullptr;
    if (acdbOpenAcDbObject(copy, pair.value(), AcDb::kForWrite, true) != Acad::eOk) continue;
    TranslatingFiler filer(map, dest);
    copy->dwgOutFields(&filer);
    filer.rewind();
    copy->dwgInFields(&filer);
    // Persistent reactors go with a copy only when they were copied too:
    // a reactor that watches the original is told of the copy instead
    // (copied) and decides.
    for (AcDbObjectId r : AcDbObjectIdArray(copy->getPersistentReactors())) {
      bool keep = !r.isNull() && std::any_of(pairs.begin(), pairs.end(), [&](const AcDbIdPair& p) {
        return p.isCloned() && p.value() == r;
      });
      if (!keep) copy->removePersistentReactor(r);
    }
    if (auto* block = AcDbBlockTableRecord::cast(copy)) {
      AcDbObjectIdArray& ents = AcDbSymbolTableAccess::entities(block);
      ents.erase(std::remove_if(ents.begin(), ents.end(), [](const AcDbObjectId& e) { return e.isNull(); }),
                 ents.end());
    }
    if (auto* dict = AcDbDictionary::cast(copy)) {
      for (const AcDbDictionary::Entry& e : dict->entries())
        if (e.id.isNull()) dict->remove(e.name.c_str());
    }
    copy->close();
  }
  return Acad::eOk;
}

// Tells the sources' reactors of their copies.
void sendCopied(const AcDbIdMapping& map) {
  for (const AcDbIdPair& pair : std::vector<AcDbIdPair>(map.pairs())) {
    if (!pair.isCloned()) continue;
    AcDbObject* src = nullptr;
    if (acdbOpenAcDbObject(src, pair.key(), AcDb::kForRead) != Acad::eOk) continue;
    AcDbObject* copy = nullptr;
    if (acdbOpenAcDbObject(copy, pair.value(), AcDb::kForWrite) == Acad::eOk) {
      AcDbObjectAccess::sendCopied(src, copy);
      copy->close();
    }
    src->close();
  }
}

// Maps the roots of the source drawing (its tables and named objects
// dictionary, and the dictionaries the named objects dictionary holds that
// the destination has by key) to those of the destination, so that what
// is copied into them merges.
void mapRoots(Cloning& c) {
  const AcDbObjectId srcRoots[] = {c.source->blockTableId(),    c.source->layerTableId(),
                                   c.source->textStyleTableId(), c.source->linetypeTableId(),
                                   c.source->viewTableId(),      c.source->UCSTableId(),
                                   c.source->viewportTableId(),  c.source->regAppTableId(),
                                   c.source->dimStyleTableId(),  c.source->namedObjectsDictionaryId()};
  const AcDbObjectId destRoots[] = {c.dest->blockTableId(),    c.dest->layerTableId(),
                                    c.dest->textStyleTableId(), c.dest->linetypeTableId(),
                                    c.dest->viewTableId(),      c.dest->UCSTableId(),
                                    c.dest->viewportTableId(),  c.dest->regAppTableId(),
                                    c.dest->dimStyleTableId(),  c.dest->namedObjectsDictionaryId()};
  for (size_t i = 0; i < std::size(srcRoots); ++i) {
    if (srcRoots[i].isNull() || destRoots[i].isNull()) continue;
    if (!mapped(c.map, srcRoots[i]).isNull()) continue;
    c.map.assign(AcDbIdPair(srcRoots[i], destRoots[i], false, false, true));
  }
  auto* srcNod = peek<AcDbDictionary>(c.source->namedObjectsDictionaryId());
  auto* destNod = peek<AcDbDictionary>(c.dest->namedObjectsDictionaryId());
  if (!srcNod || !destNod) return;
  for (const AcDbDictionary::Entry& e : srcNod->entries()) {
    AcDbObjectId there;
    if (!peek<AcDbDictionary>(e.id) || destNod->getAt(e.name.c_str(), there) != Acad::eOk) continue;
    if (peek<AcDbDictionary>(there) && mapped(c.map, e.id).isNull())
      c.map.assign(AcDbIdPair(e.id, there, false, false, true));
  }
}

Acad::ErrorStatus cloneObjects(AcDbDatabase* source, const AcDbObjectIdArray& ids, AcDbObjectId owner,
                               AcDbIdMapping& map, bool wblock, AcDb::DuplicateRecordCloning drc, bool defer) {
  if (owner.isNull()) return Acad::eNullObjectId;
  AcDbDatabase* dest = owner.database();
  if (!wblock && dest != source) return Acad::eWrongDatabase;
  for (const AcDbObjectId& id : ids)
    if (id.isNull() || id.database() != source) return id.isNull() ? Acad::eNullObjectId : Acad::eWrongDatabase;
  AcDbDatabase* mapDest = nullptr;
  map.destDb(mapDest);
  if (mapDest && mapDest != dest) return Acad::eWrongDatabase;
  map.setDestDb(dest);
  map.setOrigDb(source);
  if (!wblock && map.deepCloneContext() == AcDb::kDcCopy) map.setDeepCloneContext(AcDb::kDcObjects);
  if (wblock) map.setDuplicateRecordCloning(drc);
  Cloning c{map, source, dest, wblock, drc};
  if (wblock && dest != source) mapRoots(c);

  AcDbObject* ownerObj = nullptr;
  Acad::ErrorStatus es = acdbOpenAcDbObject(ownerObj, owner, AcDb::kForWrite);
  if (es != Acad::eOk) return es;
  // The sources' owners map to the new owner, so that each copy's owner
  // translates to it.
  for (const AcDbObjectId& id : ids) {
    AcDbObject* src = nullptr;
    if (acdbOpenAcDbObject(src, id, AcDb::kForRead) != Acad::eOk) continue;
    AcDbObjectId srcOwner = src->ownerId();
    src->close();
    if (!srcOwner.isNull() && !isCloned(map, srcOwner)) map.assign(AcDbIdPair(srcOwner, owner, false, false, true));
  }
  for (const AcDbObjectId& id : ids) {
    AcDbObject* src = nullptr;
    Acad::ErrorStatus openEs = acdbOpenAcDbObject(src, id, AcDb::kForRead);
    if (openEs == Acad::eWasErased) continue;
    if (openEs != Acad::eOk) {
      es = openEs;
      break;
    }
    AcDbObject* copy = nullptr;
    es = wblock ? src->wblockClone(ownerObj, copy, map, true) : src->deepClone(ownerObj, copy, map, true);
    if (copy) copy->close();
    src->close();
    if (es != Acad::eOk) break;
  }
  ownerObj->close();
  if (es != Acad::eOk) return es;
  sendCopied(map);
  if (!defer) translate(map, dest);
  return Acad::eOk;
}

// The default copy of AcDbObject::deepClone and wblockClone.
Acad::ErrorStatus defaultClone(const AcDbObject* src, AcRxObject* ownerObject, AcDbObject*& clone,
                               AcDbIdMapping& map, bool primary, bool wblock) {
  clone = nullptr;
  if (!ownerObject) return Acad::eNullObjectPointer;
  AcDbObjectId ownerId;
  AcDbDatabase* dest = nullptr;
  AcDbObject* owner = AcDbObject::cast(ownerObject);
  if (owner) {
    ownerId = owner->objectId();
    dest = owner->database();
  } else if (auto* db = AcDbDatabase::cast(ownerObject)) {
    dest = db;
  }
  if (!dest) return Acad::eNotInDatabase;
  if (!wblock && dest != src->database()) return Acad::eWrongDatabase;
  AcDbDatabase* source = src->database();
  AcDb::DuplicateRecordCloning drc = map.duplicateRecordCloning();
  Cloning c{map, source, dest, wblock, drc};
  // Reached from a database rather than an owner: a referenced object.
  if (!owner) {
    Acad::ErrorStatus es = cloneReferenced(c, src->objectId());
    if (es == Acad::eOk) {
      AcDbIdPair p(src->objectId(), AcDbObjectId(), false);
      if (map.compute(p) && p.isCloned()) acdbOpenAcDbObject(clone, p.value(), AcDb::kForWrite);
    }
    return es;
  }
  Acad::ErrorStatus es = copyObject(c, src, ownerId, primary, clone);
  if (es != Acad::eOk || !clone) return es;
  // An entity asked for joins the block it is copied into; one that comes
  // with its owner is already in the owner's list.
  if (primary && AcDbEntity::cast(clone)) {
    if (auto* block = AcDbBlockTableRecord::cast(owner)) linkEntity(block, clone->objectId());
  }
  return Acad::eOk;
}

}  // namespace
}  // namespace zepk::db

Acad::ErrorStatus AcDbObject::deepClone(AcDbObject* pOwnerObject, AcDbObject*& pClonedObject, AcDbIdMapping& idMap,
                                        bool isPrimary) const {
  return zepk::db::defaultClone(this, pOwnerObject, pClonedObject, idMap, isPrimary, false);
}

Acad::ErrorStatus AcDbObject::wblockClone(AcRxObject* pOwnerObject, AcDbObject*& pClonedObject,
                                          AcDbIdMapping& idMap, bool isPrimary) const {
  return zepk::db::defaultClone(this, pOwnerObject, pClonedObject, idMap, isPrimary, true);
}

// ------------------------------------------------------------------ the database's operations

Acad::ErrorStatus AcDbDatabase::deepCloneObjects(const AcDbObjectIdArray& objectIds, AcDbObjectId owner,
                                                 AcDbIdMapping& idMap, bool deferXlation) {
  return zepk::db::cloneObjects(this, objectIds, owner, idMap, false, AcDb::kDrcIgnore, deferXlation);
}

Acad::ErrorStatus AcDbDatabase::wblockCloneObjects(const AcDbObjectIdArray& objectIds, AcDbObjectId owner,
                                                   AcDbIdMapping& idMap, AcDb::DuplicateRecordCloning drc,
                                                   bool deferXlation) {
  if (idMap.deepCloneContext() == AcDb::kDcCopy) idMap.setDeepCloneContext(AcDb::kDcWblkObjects);
  return zepk::db::cloneObjects(this, objectIds, owner, idMap, true, drc, deferXlation);
}

Acad::ErrorStatus AcDbDatabase::translateClonedIds(AcDbIdMapping& idMap) {
  AcDbDatabase* dest = nullptr;
  idMap.destDb(dest);
  if (!dest) return Acad::eNotApplicable;
  return zepk::db::translate(idMap, dest);
}

namespace {

// The ids of a block's entities, in order.
AcDbObjectIdArray blockEntities(AcDbObjectId blockId) {
  AcDbObjectIdArray ids;
  AcDbBlockTableRecord* block = nullptr;
  if (acdbOpenObject(block, blockId, AcDb::kForRead) != Acad::eOk) return ids;
  AcDbBlockTableRecordIterator* it = nullptr;
  if (block->newIterator(it) == Acad::eOk) {
    for (; !it->done(); it->step()) {
      AcDbObjectId id;
      if (it->getEntityId(id) == Acad::eOk) ids.push_back(id);
    }
    delete it;
  }
  block->close();
  return ids;
}

AcDbObjectId modelSpaceOf(AcDbDatabase* db) {
  AcDbBlockTable* table = nullptr;
  AcDbObjectId id;
  if (db->getBlockTable(table, AcDb::kForRead) != Acad::eOk) return id;
  table->getAt(ACDB_MODEL_SPACE, id);
  table->close();
  return id;
}

void setInsBase(AcDbDatabase* db, const AcGePoint3d& p) {
  std::vector<zepk::db::HeaderVar>& vars = zepk::db::headerVars(db);
  zepk::db::DxfItem item;
  item.code = 10;
  item.kind = zepk::db::DxfItem::Point;
  item.p[0] = p.x, item.p[1] = p.y, item.p[2] = p.z;
  for (zepk::db::HeaderVar& v : vars) {
    if (v.name == u"$INSBASE") {
      v.groups = {item};
      return;
    }
  }
  vars.push_back({u"$INSBASE", {item}});
}

AcGePoint3d insBase(AcDbDatabase* db) {
  for (const zepk::db::HeaderVar& v : zepk::db::headerVars(db))
    if (v.name == u"$INSBASE" && !v.groups.empty() && v.groups[0].kind == zepk::db::DxfItem::Point)
      return AcGePoint3d(v.groups[0].p[0], v.groups[0].p[1], v.groups[0].p[2]);
  return AcGePoint3d();
}

}  // namespace

Acad::ErrorStatus AcDbDatabase::wblock(AcDbDatabase*& pOutputDb, const AcDbObjectIdArray& outObjIds,
                                       const AcGePoint3d& basePoint) {
  pOutputDb = nullptr;
  auto out = std::make_unique<AcDbDatabase>(true);
  AcDbObjectId ms = modelSpaceOf(out.get());
  AcDbIdMapping map;
  map.setDeepCloneContext(AcDb::kDcWblock);
  Acad::ErrorStatus es = wblockCloneObjects(outObjIds, ms, map, AcDb::kDrcIgnore);
  if (es != Acad::eOk) return es;
  setInsBase(out.get(), basePoint);
  pOutputDb = out.release();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::wblock(AcDbDatabase*& pOutputDb, AcDbObjectId blockId) {
  pOutputDb = nullptr;
  AcDbBlockTableRecord* block = nullptr;
  Acad::ErrorStatus es = acdbOpenObject(block, blockId, AcDb::kForRead);
  if (es != Acad::eOk) return es;
  AcGePoint3d origin = block->origin();
  block->close();
  if (blockId.database() != this) return Acad::eWrongDatabase;
  return wblock(pOutputDb, blockEntities(blockId), origin);
}

Acad::ErrorStatus AcDbDatabase::wblock(AcDbDatabase*& pOutputDb) {
  // The whole drawing: filed out and read back, so that handles, header
  // and everything kept as it was read come along unchanged.
  pOutputDb = nullptr;
  std::string bytes, error;
  if (!zepk::db::writeDxfBytes(this, &bytes, &error)) return Acad::eFilerError;
  std::unique_ptr<AcDbDatabase> out;
  if (!zepk::db::readDxfBytes(bytes, &out, &error)) return Acad::eFilerError;
  pOutputDb = out.release();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::insert(AcDbObjectId& blockId, const ACHAR* pBlockName, AcDbDatabase* pDb,
                                       bool preserveSourceDatabase) {
  blockId.setNull();
  if (!pDb || !pBlockName) return Acad::eNullObjectPointer;
  AcDbObjectId ms = modelSpaceOf(pDb);
  if (ms.isNull()) return Acad::eNotInDatabase;
  return insert(blockId, ACDB_MODEL_SPACE, pBlockName, pDb, preserveSourceDatabase);
}

Acad::ErrorStatus AcDbDatabase::insert(AcDbObjectId& blockId, const ACHAR* pSourceBlockName,
                                       const ACHAR* pDestinationBlockName, AcDbDatabase* pDb,
                                       bool /*preserveSourceDatabase*/) {
  blockId.setNull();
  if (!pDb || !pSourceBlockName || !pDestinationBlockName) return Acad::eNullObjectPointer;
  if (pDb == this) return Acad::eSelfReference;
  AcDbBlockTable* srcTable = nullptr;
  Acad::ErrorStatus es = pDb->getBlockTable(srcTable, AcDb::kForRead);
  if (es != Acad::eOk) return es;
  AcDbObjectId srcBlock;
  es = srcTable->getAt(pSourceBlockName, srcBlock);
  srcTable->close();
  if (es != Acad::eOk) return es;
  bool fromModelSpace = zepk::db::sameName(pSourceBlockName, ACDB_MODEL_SPACE);
  AcGePoint3d origin = insBase(pDb);
  if (!fromModelSpace) {
    AcDbBlockTableRecord* b = nullptr;
    if (acdbOpenObject(b, srcBlock, AcDb::kForRead) == Acad::eOk) {
      origin = b->origin();
      b->close();
    }
  }

  AcDbBlockTable* table = nullptr;
  es = getBlockTable(table, AcDb::kForWrite);
  if (es != Acad::eOk) return es;
  if (table->has(pDestinationBlockName)) {
    table->close();
    return Acad::eDuplicateRecordName;
  }
  auto* record = new AcDbBlockTableRecord;
  es = record->setName(pDestinationBlockName);
  AcDbObjectId recordId;
  if (es == Acad::eOk) es = static_cast<AcDbSymbolTable*>(table)->add(recordId, record);
  table->close();
  if (es != Acad::eOk) {
    if (!record->objectId().isNull()) {
      record->erase();
      record->close();
    } else {
      delete record;
    }
    return es;
  }
  record->setOrigin(origin);
  record->close();

  AcDbIdMapping map;
  map.setDeepCloneContext(AcDb::kDcInsert);
  es = pDb->wblockCloneObjects(blockEntities(srcBlock), recordId, map, AcDb::kDrcIgnore);
  if (es != Acad::eOk) return es;
  blockId = recordId;
  return Acad::eOk;
}
