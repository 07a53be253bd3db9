// Xrecords: a list of groups of any kind that applications file in
// dictionaries (the estate floors under ESTATE_DICT, settings of a
// drawing). The list is given and taken as a chain of result buffers with
// DXF group codes, each node holding the value its code carries: any code
// of object data (1 to 999) but the handles 5 and 105 and the subclass
// marker 100, and the codes of extended data (1000 to 1071) but 1001.
#pragma once

#include <vector>

#include "host/dbdict.h"
#include "host/dbmain.h"

class AcDbXrecord : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbXrecord);
  AcDbXrecord();
  ~AcDbXrecord() override;
  static const zepk::db::ClassSchema& schema();

  // A copy of the list, which the caller frees with acutRelRb; null (and
  // eOk) for an empty list.
  Acad::ErrorStatus rbChain(resbuf** ppRb, AcDbDatabase* auxDb = nullptr) const;
  // Replaces the list. A group code outside the ranges above gives
  // eInvalidResBuf and changes nothing; the object must be open for write.
  Acad::ErrorStatus setFromRbChain(const resbuf* pRb, AcDbDatabase* auxDb = nullptr);
  // Whether the list is empty.
  bool isEmpty() const { return data_.empty(); }
  // What cloning does with a key both drawings have (group 280).
  AcDb::DuplicateRecordCloning mergeStyle() const { return static_cast<AcDb::DuplicateRecordCloning>(cloning_); }
  void setMergeStyle(AcDb::DuplicateRecordCloning style);

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 private:
  friend struct AcDbXrecordAccess;
  Adesk::Int16 cloning_ = AcDb::kDrcIgnore;
  std::vector<zepk::db::DxfItem> data_;
};
