// The draw order of a block's entities (ACAD_SORTENTS in the block's
// extension dictionary). Entities are drawn in the order of their sort
// handles; an entity without an entry sorts by its own handle. Moving
// entities hands the sort handles of the block's entities out anew, so
// that the table stays a permutation of those handles.
#pragma once

#include <utility>
#include <vector>

#include "host/dbmain.h"

namespace zepk::db {
class ClassSchema;
}

class AcDbSortentsTable : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSortentsTable);
  AcDbSortentsTable();
  ~AcDbSortentsTable() override;
  static const zepk::db::ClassSchema& schema();

  AcDbObjectId blockId() const { return block_; }
  Acad::ErrorStatus setBlockId(AcDbObjectId id);
  // The handle the entity sorts by.
  Acad::ErrorStatus getSortHandle(AcDbObjectId id, AcDbHandle& h) const;
  // The block's live entities in draw order (the block is read through
  // its entity list, without opening it).
  Acad::ErrorStatus getFullDrawOrder(AcDbObjectIdArray& ids, Adesk::UInt8 honorSortentsMask = 0) const;
  // Puts the given entities of the block in the given relative order and
  // keeps the others where they were.
  Acad::ErrorStatus getRelativeDrawOrder(AcDbObjectIdArray& ids, Adesk::UInt8 honorSortentsMask = 0) const;
  Acad::ErrorStatus setRelativeDrawOrder(const AcDbObjectIdArray& ids);
  // The entities go last (drawn on top) or first, in the order they keep
  // among themselves; below or above the target entity.
  Acad::ErrorStatus moveToTop(const AcDbObjectIdArray& ids);
  Acad::ErrorStatus moveToBottom(const AcDbObjectIdArray& ids);
  Acad::ErrorStatus moveBelow(const AcDbObjectIdArray& ids, AcDbObjectId target);
  Acad::ErrorStatus moveAbove(const AcDbObjectIdArray& ids, AcDbObjectId target);
  Acad::ErrorStatus swapOrder(AcDbObjectId id1, AcDbObjectId id2);
  // Whether the entity is drawn before the other.
  bool firstEntityIsDrawnBeforeSecond(AcDbObjectId first, AcDbObjectId second) const;

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 private:
  friend struct AcDbSortentsAccess;
  // Gives the entities of the block, in this order, the block's sort
  // handles in ascending order.
  Acad::ErrorStatus setOrder(const AcDbObjectIdArray& order);
  AcDbObjectId block_;
  // Entity -> the handle it sorts by, for entities that do not sort by
  // their own.
  std::vector<std::pair<AcDbObjectId, AcDbHandle>> entries_;
};
