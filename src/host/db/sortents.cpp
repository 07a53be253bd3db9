// The draw order table of a block.
#include <algorithm>

#include "host/db/dbobjects.h"
#include "host/db/internal.h"
#include "host/dbsymtb.h"
#include "host/sorttab.h"

using namespace zepk::db;

namespace {

AcRxObject* makeSortents() { return new AcDbSortentsTable; }

}  // namespace

ACRX_DEFINE_HOST_CLASS(AcDbSortentsTable, AcDbObject, u"SORTENTSTABLE", makeSortents)

AcDbSortentsTable::AcDbSortentsTable() = default;
AcDbSortentsTable::~AcDbSortentsTable() = default;

const ClassSchema& AcDbSortentsTable::schema() {
  using S = AcDbSortentsTable;
  static const ClassSchema s{
      u"AcDbSortentsTable",
      {
          field<&S::block_>(330, "BlockId"),
          // Pairs: the entity (331), then the handle it sorts by (5).
          custom(
              {331, 5},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                for (const auto& [id, h] : static_cast<const S*>(o)->entries_) {
                  f->writeObjectId(331, id);
                  f->writeHandle(5, h);
                }
                return f->filerStatus();
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                auto* t = static_cast<S*>(o);
                AcDbObjectId pending;
                for (int c = f->peekCode(); (c == 331 || c == 5) && !f->atEOF(); c = f->peekCode()) {
                  const DxfItem* it = f->next();
                  if (c == 331) {
                    if (it->kind != DxfItem::Id) return Acad::eInvalidResBuf;
                    pending = it->id;
                    continue;
                  }
                  AcDbHandle h;
                  if (it->kind == DxfItem::Handle) h = it->handle;
                  else if (it->kind == DxfItem::String) h = AcDbHandle(it->s.c_str());
                  else return Acad::eInvalidResBuf;
                  if (!pending.isNull() && !h.isNull()) t->entries_.emplace_back(pending, h);
                  pending.setNull();
                }
                return f->filerStatus();
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                auto* t = static_cast<const S*>(o);
                f->writeInt32(static_cast<Adesk::Int32>(t->entries_.size()));
                for (const auto& [id, h] : t->entries_) {
                  f->writeSoftPointerId(id);
                  f->writeHandle(h);
                }
                return f->filerStatus();
              },
              [](AcDbObject* o, AcDbDwgFiler* f) {
                auto* t = static_cast<S*>(o);
                t->entries_.clear();
                Adesk::Int32 n = 0;
                f->readInt32(&n);
                for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
                  AcDbObjectId id;
                  AcDbHandle h;
                  f->readSoftPointerId(&id);
                  f->readHandle(&h);
                  t->entries_.emplace_back(id, h);
                }
                return f->filerStatus();
              }),
      }};
  return s;
}

Acad::ErrorStatus AcDbSortentsTable::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dwgOutFields(f);
  return es != Acad::eOk ? es : schema().dwgOut(this, f);
}

Acad::ErrorStatus AcDbSortentsTable::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbObject::dwgInFields(f);
  return es != Acad::eOk ? es : schema().dwgIn(this, f);
}

Acad::ErrorStatus AcDbSortentsTable::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dxfOutFields(f);
  return es != Acad::eOk ? es : schema().dxfOut(this, f);
}

Acad::ErrorStatus AcDbSortentsTable::dxfInFields(AcDbDxfFiler* f) {
  entries_.clear();
  Acad::ErrorStatus es = AcDbObject::dxfInFields(f);
  return es != Acad::eOk ? es : schema().dxfIn(this, f);
}

Acad::ErrorStatus AcDbSortentsTable::setBlockId(AcDbObjectId id) {
  assertWriteEnabled();
  block_ = id;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::getSortHandle(AcDbObjectId id, AcDbHandle& h) const {
  if (id.isNull()) return Acad::eNullObjectId;
  h = id.handle();
  for (const auto& [e, sh] : entries_)
    if (e == id) h = sh;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::getFullDrawOrder(AcDbObjectIdArray& ids, Adesk::UInt8) const {
  ids.clear();
  auto* block = peek<AcDbBlockTableRecord>(block_);
  if (!block) return Acad::eNullObjectId;
  std::vector<std::pair<AcDbHandle, AcDbObjectId>> keyed;
  for (const AcDbObjectId& id : block->entityIds()) {
    AcDbHandle h;
    getSortHandle(id, h);
    keyed.emplace_back(h, id);
  }
  std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const auto& [h, id] : keyed) ids.push_back(id);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::getRelativeDrawOrder(AcDbObjectIdArray& ids, Adesk::UInt8) const {
  AcDbObjectIdArray order;
  Acad::ErrorStatus es = getFullDrawOrder(order);
  if (es != Acad::eOk) return es;
  auto pos = [&](const AcDbObjectId& id) { return std::find(order.begin(), order.end(), id) - order.begin(); };
  for (const AcDbObjectId& id : ids)
    if (pos(id) == static_cast<long>(order.size())) return Acad::eInvalidInput;
  std::stable_sort(ids.begin(), ids.end(), [&](const AcDbObjectId& a, const AcDbObjectId& b) { return pos(a) < pos(b); });
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::setOrder(const AcDbObjectIdArray& order) {
  std::vector<AcDbHandle> handles;
  for (const AcDbObjectId& id : order) handles.push_back(id.handle());
  std::sort(handles.begin(), handles.end());
  assertWriteEnabled();
  entries_.clear();
  for (size_t i = 0; i < order.size(); ++i)
    if (order[i].handle() != handles[i]) entries_.emplace_back(order[i], handles[i]);
  return Acad::eOk;
}

namespace {

// Takes ids out of the order, keeping their order among themselves; false
// when one is not in it.
bool takeOut(AcDbObjectIdArray& order, const AcDbObjectIdArray& ids, AcDbObjectIdArray& taken) {
  for (const AcDbObjectId& id : ids)
    if (std::find(order.begin(), order.end(), id) == order.end()) return false;
  taken.clear();
  AcDbObjectIdArray rest;
  for (const AcDbObjectId& id : order)
    (std::find(ids.begin(), ids.end(), id) != ids.end() ? taken : rest).push_back(id);
  order.swap(rest);
  return true;
}

}  // namespace

Acad::ErrorStatus AcDbSortentsTable::moveToTop(const AcDbObjectIdArray& ids) {
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  AcDbObjectIdArray order, taken;
  if (Acad::ErrorStatus es = getFullDrawOrder(order); es != Acad::eOk) return es;
  if (!takeOut(order, ids, taken)) return Acad::eInvalidInput;
  order.insert(order.end(), taken.begin(), taken.end());
  return setOrder(order);
}

Acad::ErrorStatus AcDbSortentsTable::moveToBottom(const AcDbObjectIdArray& ids) {
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  AcDbObjectIdArray order, taken;
  if (Acad::ErrorStatus es = getFullDrawOrder(order); es != Acad::eOk) return es;
  if (!takeOut(order, ids, taken)) return Acad::eInvalidInput;
  order.insert(order.begin(), taken.begin(), taken.end());
  return setOrder(order);
}

Acad::ErrorStatus AcDbSortentsTable::moveBelow(const AcDbObjectIdArray& ids, AcDbObjectId target) {
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  if (std::find(ids.begin(), ids.end(), target) != ids.end()) return Acad::eInvalidInput;
  AcDbObjectIdArray order, taken;
  if (Acad::ErrorStatus es = getFullDrawOrder(order); es != Acad::eOk) return es;
  if (!takeOut(order, ids, taken)) return Acad::eInvalidInput;
  auto at = std::find(order.begin(), order.end(), target);
  if (at == order.end()) return Acad::eInvalidInput;
  order.insert(at, taken.begin(), taken.end());
  return setOrder(order);
}

Acad::ErrorStatus AcDbSortentsTable::moveAbove(const AcDbObjectIdArray& ids, AcDbObjectId target) {
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  if (std::find(ids.begin(), ids.end(), target) != ids.end()) return Acad::eInvalidInput;
  AcDbObjectIdArray order, taken;
  if (Acad::ErrorStatus es = getFullDrawOrder(order); es != Acad::eOk) return es;
  if (!takeOut(order, ids, taken)) return Acad::eInvalidInput;
  auto at = std::find(order.begin(), order.end(), target);
  if (at == order.end()) return Acad::eInvalidInput;
  order.insert(at + 1, taken.begin(), taken.end());
  return setOrder(order);
}

Acad::ErrorStatus AcDbSortentsTable::swapOrder(AcDbObjectId id1, AcDbObjectId id2) {
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  AcDbObjectIdArray order;
  if (Acad::ErrorStatus es = getFullDrawOrder(order); es != Acad::eOk) return es;
  auto a = std::find(order.begin(), order.end(), id1), b = std::find(order.begin(), order.end(), id2);
  if (a == order.end() || b == order.end()) return Acad::eInvalidInput;
  std::iter_swap(a, b);
  return setOrder(order);
}

Acad::ErrorStatus AcDbSortentsTable::setRelativeDrawOrder(const AcDbObjectIdArray& ids) {
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  AcDbObjectIdArray order;
  if (Acad::ErrorStatus es = getFullDrawOrder(order); es != Acad::eOk) return es;
  // The places the entities hold now take them in the given order.
  std::vector<size_t> places;
  for (size_t i = 0; i < order.size(); ++i)
    if (std::find(ids.begin(), ids.end(), order[i]) != ids.end()) places.push_back(i);
  if (places.size() != ids.size()) return Acad::eInvalidInput;
  for (size_t k = 0; k < places.size(); ++k) order[places[k]] = ids[k];
  return setOrder(order);
}

bool AcDbSortentsTable::firstEntityIsDrawnBeforeSecond(AcDbObjectId first, AcDbObjectId second) const {
  AcDbObjectIdArray order;
  getFullDrawOrder(order);
  auto a = std::find(order.begin(), order.end(), first), b = std::find(order.begin(), order.end(), second);
  return a != order.end() && b != order.end() && a < b;
}
