// Two objects exchanging their ids.
#include <utility>

#include "host/db/ents_internal.h"
#include "host/db/internal.h"
#include "host/dbmain.h"

namespace zepk::db {

void swapStubObjects(AcDbStub* a, AcDbStub* b) {
  std::swap(a->object, b->object);
  if (a->object) AcDbObjectAccess::setStub(a->object, a);
  if (b->object) AcDbObjectAccess::setStub(b->object, b);
}

}  // namespace zepk::db

namespace {

// What an object owns (vertices and their end marker, attributes, its
// extension dictionary) names it as owner; after the exchange that must be
// its new id.
void reownChildren(AcDbObject* obj, bool withExtDict) {
  AcDbObjectIdArray children;
  if (auto* ent = AcDbEntity::cast(obj)) {
    if (zepk::db::OwnedSequence* seq = zepk::db::EntityAccess::sequence(ent)) {
      for (const auto& slot : seq->items)
        if (!slot.id.isNull()) children.push_back(slot.id);
      if (!seq->seqEnd.isNull()) children.push_back(seq->seqEnd);
    }
  }
  if (withExtDict && !obj->extensionDictionary().isNull()) children.push_back(obj->extensionDictionary());
  for (const AcDbObjectId& id : children) {
    AcDbObject* child = nullptr;
    if (acdbOpenAcDbObject(child, id, AcDb::kForWrite, true) != Acad::eOk) continue;
    child->setOwnerId(obj->objectId());
    child->close();
  }
}

}  // namespace

Acad::ErrorStatus AcDbObject::swapIdWith(AcDbObjectId otherId, bool swapXdata, bool swapExtDict) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!stub_) return Acad::eNotInDatabase;
  if (otherId.isNull()) return Acad::eNullObjectId;
  if (otherId == objectId() || otherId.database() != database()) return Acad::eInvalidInput;
  if (isErased()) return Acad::eWasErased;
  AcDbObject* other = nullptr;
  Acad::ErrorStatus es = acdbOpenAcDbObject(other, otherId, AcDb::kForWrite);
  if (es != Acad::eOk) return es;

  // Both states are recorded at their first ids before anything moves.
  assertWriteEnabled();
  other->assertWriteEnabled();
  AcDbStub* mine = stub_;
  AcDbStub* theirs = other->stub_;
  zepk::db::swapStubObjects(mine, theirs);
  if (zepk::db::UndoMark* mark = zepk::db::openUndoMark(mine->db)) mark->swaps.emplace_back(mine, theirs);

  // Each takes the other's place in its owner.
  std::swap(owner_, other->owner_);
  if (swapXdata) {
    std::swap(xdata_, other->xdata_);
    xdataModified_ = other->xdataModified_ = true;
  }
  if (swapExtDict) std::swap(extDict_, other->extDict_);
  reownChildren(this, !swapExtDict);
  reownChildren(other, !swapExtDict);
  return other->close();
}
