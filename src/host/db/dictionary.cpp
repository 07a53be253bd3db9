// Dictionaries, dictionaries with a default, place holders.
#include <algorithm>
#include <cstring>
#include <string>

#include "host/db/dbobjects.h"
#include "host/db/internal.h"
#include "host/dbdict.h"

using namespace zepk::db;

namespace {

template <class T>
AcRxObject* make() {
  return new T;
}

}  // namespace

ACRX_DEFINE_HOST_CLASS(AcDbDictionary, AcDbObject, u"DICTIONARY", make<AcDbDictionary>)
ACRX_DEFINE_HOST_CLASS(AcDbDictionaryWithDefault, AcDbDictionary, u"ACDBDICTIONARYWDFLT",
                       make<AcDbDictionaryWithDefault>)
ACRX_DEFINE_HOST_CLASS(AcDbPlaceHolder, AcDbObject, u"ACDBPLACEHOLDER", make<AcDbPlaceHolder>)

AcDbDictionary::AcDbDictionary() = default;
AcDbDictionary::~AcDbDictionary() = default;

const ClassSchema& AcDbDictionary::schema() {
  using D = AcDbDictionary;
  static const ClassSchema s{
      u"AcDbDictionary",
      {
          field<&D::hardOwner_>(280, "TreatElementsAsHard", false, kOptional),
          field<&D::mergeStyle_>(281, "MergeStyle", 1),
          // The entries in key order: the key (3), then the object, 360
          // when the dictionary owns its entries hard and 350 otherwise.
          custom(
              {3, 350, 360},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                auto* d = static_cast<const D*>(o);
                for (const Entry& e : d->entries()) {
                  f->writeString(3, e.name);
                  f->writeObjectId(d->hardOwner_ ? 360 : 350, e.id);
                }
                return f->filerStatus();
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                auto* d = static_cast<D*>(o);
                std::u16string key;
                bool haveKey = false;
                for (int c = f->peekCode(); c == 3 || c == 350 || c == 360; c = f->peekCode()) {
                  const DxfItem* it = f->next();
                  if (c == 3) {
                    if (it->kind != DxfItem::String) return Acad::eInvalidResBuf;
                    key = it->s;
                    haveKey = true;
                    continue;
                  }
                  if (it->kind != DxfItem::Id) return Acad::eInvalidResBuf;
                  // A dictionary whose entries are written as hard owners
                  // owns them hard, whatever its flag says.
                  if (c == 360) d->hardOwner_ = true;
                  if (haveKey && !it->id.isNull()) d->entries_.emplace(foldName(key), Entry{key, it->id});
                  haveKey = false;
                }
                return f->filerStatus();
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                auto* d = static_cast<const D*>(o);
                f->writeInt32(static_cast<Adesk::Int32>(d->entries_.size()));
                for (const auto& [key, e] : d->entries_) {
                  f->writeString(e.name);
                  if (d->hardOwner_) f->writeHardOwnershipId(e.id);
                  else f->writeSoftOwnershipId(e.id);
                }
                return f->filerStatus();
              },
              [](AcDbObject* o, AcDbDwgFiler* f) {
                auto* d = static_cast<D*>(o);
                d->entries_.clear();
                Adesk::Int32 n = 0;
                f->readInt32(&n);
                for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
                  Entry e;
                  f->readString(&e.name);
                  if (d->hardOwner_) f->readHardOwnershipId(&e.id);
                  else f->readSoftOwnershipId(&e.id);
                  d->entries_.emplace(foldName(e.name), std::move(e));
                }
                return f->filerStatus();
              }),
      }};
  return s;
}

Acad::ErrorStatus AcDbDictionary::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dwgOutFields(f);
  return es != Acad::eOk ? es : schema().dwgOut(this, f);
}

Acad::ErrorStatus AcDbDictionary::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbObject::dwgInFields(f);
  return es != Acad::eOk ? es : schema().dwgIn(this, f);
}

Acad::ErrorStatus AcDbDictionary::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dxfOutFields(f);
  return es != Acad::eOk ? es : schema().dxfOut(this, f);
}

Acad::ErrorStatus AcDbDictionary::dxfInFields(AcDbDxfFiler* f) {
  entries_.clear();
  Acad::ErrorStatus es = AcDbObject::dxfInFields(f);
  return es != Acad::eOk ? es : schema().dxfIn(this, f);
}

const AcDbDictionary::Entry* AcDbDictionary::findEntry(const std::u16string& key) const {
  auto it = entries_.find(foldName(key));
  return it == entries_.end() ? nullptr : &it->second;
}

std::vector<AcDbDictionary::Entry> AcDbDictionary::entries() const {
  std::vector<Entry> out;
  for (const auto& [key, e] : entries_)
    if (!e.id.isNull() && !e.id.isErased()) out.push_back(e);
  return out;
}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* key, AcDbObjectId& id) const {
  id.setNull();
  if (!key) return Acad::eInvalidKey;
  const Entry* e = findEntry(key);
  if (!e || e->id.isNull() || e->id.isErased()) return Acad::eKeyNotFound;
  id = e->id;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* key, AcDbObject*& obj, AcDb::OpenMode mode) const {
  obj = nullptr;
  AcDbObjectId id;
  Acad::ErrorStatus es = getAt(key, id);
  return es != Acad::eOk ? es : acdbOpenAcDbObject(obj, id, mode);
}

Acad::ErrorStatus AcDbDictionary::nameAt(AcDbObjectId id, std::u16string& name) const {
  // An erased object keeps its key, so that whoever tidies up after it
  // can find it.
  for (const auto& [key, e] : entries_)
    if (e.id == id && !id.isNull()) {
      name = e.name;
      return Acad::eOk;
    }
  return Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbDictionary::nameAt(AcDbObjectId id, ACHAR*& name) const {
  name = nullptr;
  std::u16string s;
  Acad::ErrorStatus es = nameAt(id, s);
  if (es != Acad::eOk) return es;
  name = new ACHAR[s.size() + 1];
  std::memcpy(name, s.c_str(), (s.size() + 1) * sizeof(ACHAR));
  return Acad::eOk;
}

bool AcDbDictionary::has(const ACHAR* key) const {
  AcDbObjectId id;
  return getAt(key, id) == Acad::eOk;
}

bool AcDbDictionary::has(AcDbObjectId id) const {
  if (id.isNull() || id.isErased()) return false;
  return std::any_of(entries_.begin(), entries_.end(), [&](const auto& kv) { return kv.second.id == id; });
}

int AcDbDictionary::numEntries() const { return static_cast<int>(entries().size()); }

Acad::ErrorStatus AcDbDictionary::setAt(const ACHAR* key, AcDbObject* newValue, AcDbObjectId& retObjId) {
  retObjId.setNull();
  if (!key || !*key) return Acad::eInvalidKey;
  if (!newValue) return Acad::eNullObjectPointer;
  AcDbDatabase* db = database();
  if (!db) return Acad::eNotInDatabase;
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  AcDbObjectId id = newValue->objectId();
  if (!id.isNull() && id.database() != db) return Acad::eWrongDatabase;
  if (id == objectId()) return Acad::eSelfReference;
  std::u16string name = key;
  if (name == u"*") {
    // The next anonymous key after the highest in use.
    long highest = 0;
    for (const auto& [k, e] : entries_) {
      if (k.size() < 3 || k.compare(0, 2, u"*A") != 0) continue;
      long n = 0;
      bool digits = true;
      for (size_t i = 2; i < k.size() && digits; ++i) {
        digits = k[i] >= u'0' && k[i] <= u'9';
        if (digits && n < 100000000) n = n * 10 + (k[i] - u'0');
      }
      if (digits) highest = std::max(highest, n);
    }
    name = u"*A";
    for (char c : std::to_string(highest + 1)) name.push_back(static_cast<char16_t>(c));
  }
  if (id.isNull()) {
    Acad::ErrorStatus es = db->addAcDbObject(id, newValue);
    if (es != Acad::eOk) return es;
  }
  if (newValue->ownerId().isNull() || newValue->isNewObject()) newValue->setOwnerId(objectId());
  std::u16string folded = foldName(name);
  auto it = entries_.find(folded);
  assertWriteEnabled();
  if (it != entries_.end() && it->second.id != id) {
    // The object filed under the key before goes, if it was ours.
    AcDbObject* old = nullptr;
    if (!it->second.id.isErased() && acdbOpenAcDbObject(old, it->second.id, AcDb::kForWrite) == Acad::eOk) {
      if (old->ownerId() == objectId()) old->erase();
      old->close();
    }
  }
  entries_[folded] = Entry{name, id};
  retObjId = id;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* key, AcDbObjectId& returnId) {
  returnId.setNull();
  if (!key) return Acad::eInvalidKey;
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  auto it = entries_.find(foldName(key));
  if (it == entries_.end()) return Acad::eKeyNotFound;
  assertWriteEnabled();
  returnId = it->second.id;
  entries_.erase(it);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* key) {
  AcDbObjectId id;
  return remove(key, id);
}

Acad::ErrorStatus AcDbDictionary::remove(AcDbObjectId objId) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  for (auto it = entries_.begin(); it != entries_.end(); ++it) {
    if (it->second.id == objId && !objId.isNull()) {
      assertWriteEnabled();
      entries_.erase(it);
      return Acad::eOk;
    }
  }
  return Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbDictionary::setName(const ACHAR* oldName, const ACHAR* newName) {
  if (!oldName || !newName || !*newName) return Acad::eInvalidKey;
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  AcDbObjectId id;
  if (getAt(oldName, id) != Acad::eOk) return Acad::eKeyNotFound;
  std::u16string from = foldName(oldName), to = foldName(newName);
  if (from != to && has(newName)) return Acad::eDuplicateKey;
  assertWriteEnabled();
  entries_.erase(from);
  // An entry of an erased object under the new key gives way.
  entries_[to] = Entry{newName, id};
  return Acad::eOk;
}

AcDbDictionaryIterator* AcDbDictionary::newIterator(AcRx::DictIterType) const {
  return new AcDbDictionaryIterator(entries());
}

void AcDbDictionary::setTreatElementsAsHard(bool doIt) {
  assertWriteEnabled();
  hardOwner_ = doIt;
}

void AcDbDictionary::setMergeStyle(AcDb::DuplicateRecordCloning style) {
  assertWriteEnabled();
  mergeStyle_ = static_cast<Adesk::Int16>(style);
}

Acad::ErrorStatus AcDbDictionary::subErase(bool erasing) {
  // What the dictionary owns goes with it, and comes back with it.
  for (const auto& [key, e] : entries_) {
    if (e.id.isNull() || e.id.isErased() == erasing) continue;
    AcDbObject* obj = nullptr;
    if (acdbOpenAcDbObject(obj, e.id, AcDb::kForWrite, true) != Acad::eOk) continue;
    if (obj->ownerId() == objectId()) obj->erase(erasing);
    obj->close();
  }
  return Acad::eOk;
}

// ---------------------------------------------------------------- iterator

Acad::ErrorStatus AcDbDictionaryIterator::getObject(AcDbObject*& obj, AcDb::OpenMode mode) const {
  obj = nullptr;
  if (done()) return Acad::eInvalidIndex;
  return acdbOpenAcDbObject(obj, objectId(), mode);
}

bool AcDbDictionaryIterator::setPosition(AcDbObjectId id) {
  for (size_t i = 0; i < entries_.size(); ++i)
    if (entries_[i].id == id) {
      pos_ = i;
      return true;
    }
  return false;
}

// ---------------------------------------------------------------- with default

const ClassSchema& AcDbDictionaryWithDefault::schema() {
  using D = AcDbDictionaryWithDefault;
  static const ClassSchema s{u"AcDbDictionaryWithDefault",
                             {
                                 field<&D::default_>(340, "DefaultId", {}, kNone, FieldType::HardPointer),
                             }};
  return s;
}

ZEPK_SCHEMA_FILERS(AcDbDictionaryWithDefault, AcDbDictionary, schema)

Acad::ErrorStatus AcDbDictionaryWithDefault::setDefaultId(const AcDbObjectId& id) {
  assertWriteEnabled();
  default_ = id;
  return Acad::eOk;
}
