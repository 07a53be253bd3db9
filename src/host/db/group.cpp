// Groups: an ordered set of entities, named by the dictionary it is filed
// in, and a persistent reactor of each entity it holds.
#include <algorithm>
#include <cstring>

#include "host/db/dbobjects.h"
#include "host/db/internal.h"
#include "host/dbgroup.h"

using namespace zepk::db;

namespace {

AcRxObject* makeGroup() { return new AcDbGroup; }

}  // namespace

ACRX_DEFINE_HOST_CLASS(AcDbGroup, AcDbObject, u"GROUP", makeGroup)

AcDbGroup::AcDbGroup() = default;

AcDbGroup::AcDbGroup(const ACHAR* description, bool selectable)
    : description_(description ? description : u""), selectable_(selectable ? 1 : 0) {}

const ClassSchema& AcDbGroup::schema() {
  using G = AcDbGroup;
  static const ClassSchema s{
      u"AcDbGroup",
      {
          field<&G::description_>(300, "Description"),
          field<&G::unnamed_>(70, "Unnamed", 0),
          field<&G::selectable_>(71, "Selectable", 1),
          // The members in order; erased ones are left out of a file.
          custom(
              {340},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                for (const AcDbObjectId& id : static_cast<const G*>(o)->entities_)
                  if (!id.isErased()) f->writeObjectId(340, id);
                return f->filerStatus();
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                auto* g = static_cast<G*>(o);
                while (f->peekCode() == 340 && !f->atEOF()) {
                  const DxfItem* it = f->next();
                  if (it->kind != DxfItem::Id) return Acad::eInvalidResBuf;
                  if (!it->id.isNull() && std::find(g->entities_.begin(), g->entities_.end(), it->id) == g->entities_.end())
                    g->entities_.push_back(it->id);
                }
                return f->filerStatus();
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                auto* g = static_cast<const G*>(o);
                f->writeInt32(static_cast<Adesk::Int32>(g->entities_.size()));
                for (const AcDbObjectId& id : g->entities_) f->writeHardPointerId(id);
                return f->filerStatus();
              },
              [](AcDbObject* o, AcDbDwgFiler* f) {
                auto* g = static_cast<G*>(o);
                g->entities_.clear();
                Adesk::Int32 n = 0;
                f->readInt32(&n);
                for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
                  AcDbObjectId id;
                  f->readHardPointerId(&id);
                  g->entities_.push_back(id);
                }
                return f->filerStatus();
              }),
      }};
  return s;
}

Acad::ErrorStatus AcDbGroup::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dwgOutFields(f);
  return es != Acad::eOk ? es : schema().dwgOut(this, f);
}

Acad::ErrorStatus AcDbGroup::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbObject::dwgInFields(f);
  return es != Acad::eOk ? es : schema().dwgIn(this, f);
}

Acad::ErrorStatus AcDbGroup::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dxfOutFields(f);
  return es != Acad::eOk ? es : schema().dxfOut(this, f);
}

Acad::ErrorStatus AcDbGroup::dxfInFields(AcDbDxfFiler* f) {
  entities_.clear();
  Acad::ErrorStatus es = AcDbObject::dxfInFields(f);
  return es != Acad::eOk ? es : schema().dxfIn(this, f);
}

// ---------------------------------------------------------------- name

std::u16string AcDbGroup::name() const {
  std::u16string n;
  if (auto* dict = peek<AcDbDictionary>(ownerId())) dict->nameAt(objectId(), n);
  return n;
}

Acad::ErrorStatus AcDbGroup::getName(ACHAR*& name) const {
  std::u16string n = this->name();
  name = new ACHAR[n.size() + 1];
  std::memcpy(name, n.c_str(), (n.size() + 1) * sizeof(ACHAR));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::setName(const ACHAR* newName) {
  if (!newName || !*newName) return Acad::eInvalidInput;
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  std::u16string old = name();
  if (old.empty()) return Acad::eNotInDatabase;  // no dictionary names it
  AcDbDictionary* dict = nullptr;
  Acad::ErrorStatus es = acdbOpenObject(dict, ownerId(), AcDb::kForWrite);
  if (es != Acad::eOk) return es;
  es = dict->setName(old.c_str(), newName);
  dict->close();
  if (es != Acad::eOk) return es;
  if (newName[0] != u'*' && unnamed_) {
    assertWriteEnabled();
    unnamed_ = 0;
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::setDescription(const ACHAR* description) {
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  assertWriteEnabled();
  description_ = description ? description : u"";
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::setSelectable(bool selectable) {
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  assertWriteEnabled();
  selectable_ = selectable ? 1 : 0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::setAnonymous() {
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  assertWriteEnabled();
  unnamed_ = 1;
  return Acad::eOk;
}

// ---------------------------------------------------------------- members

// A group watches its entities: it is a persistent reactor of each. An
// entity that cannot be opened for write (on a locked layer) is told all
// the same, as the reactor list is not the entity's drawn state.
void AcDbGroup::attach(AcDbObjectId id, bool on) const {
  if (objectId().isNull() || id.isNull()) return;
  AcDbObject* ent = nullptr;
  bool opened = acdbOpenAcDbObject(ent, id, AcDb::kForWrite, true) == Acad::eOk;
  if (!opened) ent = peekObject(id);
  if (!ent) return;
  if (on) ent->addPersistentReactor(objectId());
  else ent->removePersistentReactor(objectId());
  if (opened) ent->close();
}

Acad::ErrorStatus AcDbGroup::insert(size_t pos, AcDbObjectId id) {
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  if (id.isNull()) return Acad::eNullObjectId;
  if (database() && id.database() != database()) return Acad::eWrongDatabase;
  if (std::find(entities_.begin(), entities_.end(), id) != entities_.end()) return Acad::eDuplicateKey;
  assertWriteEnabled();
  entities_.insert(entities_.begin() + static_cast<long>(std::min(pos, entities_.size())), id);
  attach(id, true);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::append(AcDbObjectId id) { return insert(entities_.size(), id); }

Acad::ErrorStatus AcDbGroup::append(const AcDbObjectIdArray& ids) {
  for (const AcDbObjectId& id : ids) {
    Acad::ErrorStatus es = append(id);
    if (es != Acad::eOk) return es;
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::prepend(AcDbObjectId id) { return insert(0, id); }

Acad::ErrorStatus AcDbGroup::insertAt(Adesk::UInt32 index, AcDbObjectId id) {
  if (index > entities_.size()) return Acad::eInvalidIndex;
  return insert(index, id);
}

Acad::ErrorStatus AcDbGroup::remove(AcDbObjectId id) {
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  auto it = std::find(entities_.begin(), entities_.end(), id);
  if (it == entities_.end() || id.isNull()) return Acad::eKeyNotFound;
  assertWriteEnabled();
  entities_.erase(it);
  attach(id, false);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::removeAt(Adesk::UInt32 index) {
  AcDbObjectIdArray ids;
  allEntityIds(ids);
  if (index >= ids.size()) return Acad::eInvalidIndex;
  return remove(ids[index]);
}

Acad::ErrorStatus AcDbGroup::clear() {
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  assertWriteEnabled();
  AcDbObjectIdArray old;
  old.swap(entities_);
  for (const AcDbObjectId& id : old) attach(id, false);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::reverse() {
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  assertWriteEnabled();
  std::reverse(entities_.begin(), entities_.end());
  return Acad::eOk;
}

Adesk::UInt32 AcDbGroup::allEntityIds(AcDbObjectIdArray& ids) const {
  ids.clear();
  for (const AcDbObjectId& id : entities_)
    if (!id.isErased()) ids.push_back(id);
  return static_cast<Adesk::UInt32>(ids.size());
}

Adesk::UInt32 AcDbGroup::numEntities() const {
  AcDbObjectIdArray ids;
  return allEntityIds(ids);
}

bool AcDbGroup::has(AcDbObjectId id) const {
  return !id.isNull() && !id.isErased() && std::find(entities_.begin(), entities_.end(), id) != entities_.end();
}

Acad::ErrorStatus AcDbGroup::getIndex(AcDbObjectId id, Adesk::UInt32& index) const {
  AcDbObjectIdArray ids;
  allEntityIds(ids);
  auto it = std::find(ids.begin(), ids.end(), id);
  if (it == ids.end()) return Acad::eKeyNotFound;
  index = static_cast<Adesk::UInt32>(it - ids.begin());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::subErase(bool erasing) {
  // An erased group stops watching its entities; brought back, it watches
  // them again.
  for (const AcDbObjectId& id : entities_) attach(id, !erasing);
  return Acad::eOk;
}
