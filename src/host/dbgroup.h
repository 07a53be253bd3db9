// Groups: named, ordered sets of entities, filed in the drawing's group
// dictionary (ACAD_GROUP) under their names. A group is a persistent
// reactor of each of its entities; erased entities drop out of what it
// shows until undo brings them back.
#pragma once

#include <string>

#include "host/dbdict.h"
#include "host/dbmain.h"

class AcDbGroup : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbGroup);
  AcDbGroup();
  explicit AcDbGroup(const ACHAR* description, bool selectable = true);
  static const zepk::db::ClassSchema& schema();

  // The key the group is filed under in its dictionary; "" when it is in
  // none.
  Acad::ErrorStatus getName(ACHAR*& name) const;
  std::u16string name() const;
  // Files the group under a new key of its dictionary.
  Acad::ErrorStatus setName(const ACHAR* newName);
  const std::u16string& description() const { return description_; }
  Acad::ErrorStatus setDescription(const ACHAR* description);
  bool isSelectable() const { return selectable_ != 0; }
  Acad::ErrorStatus setSelectable(bool selectable);
  // An unnamed group ("*A1" ...; group 70).
  bool isAnonymous() const { return unnamed_ != 0; }
  Acad::ErrorStatus setAnonymous();

  // Members. Appending an entity the group has gives eDuplicateKey, a
  // null id eNullObjectId; removing one it has not eKeyNotFound. The
  // group must be open for write.
  Acad::ErrorStatus append(AcDbObjectId id);
  Acad::ErrorStatus append(const AcDbObjectIdArray& ids);
  Acad::ErrorStatus prepend(AcDbObjectId id);
  Acad::ErrorStatus insertAt(Adesk::UInt32 index, AcDbObjectId id);
  Acad::ErrorStatus remove(AcDbObjectId id);
  Acad::ErrorStatus removeAt(Adesk::UInt32 index);
  Acad::ErrorStatus clear();
  Acad::ErrorStatus reverse();
  // The live members in order.
  Adesk::UInt32 numEntities() const;
  Adesk::UInt32 allEntityIds(AcDbObjectIdArray& ids) const;
  bool has(AcDbObjectId id) const;
  Acad::ErrorStatus getIndex(AcDbObjectId id, Adesk::UInt32& index) const;

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 protected:
  Acad::ErrorStatus subErase(bool erasing) override;

 private:
  friend struct AcDbGroupAccess;
  Acad::ErrorStatus insert(size_t pos, AcDbObjectId id);
  void attach(AcDbObjectId id, bool on) const;
  std::u16string description_;
  Adesk::Int16 unnamed_ = 0;
  Adesk::Int16 selectable_ = 1;
  AcDbObjectIdArray entities_;
};
