// Block references (INSERT) and their arrays (MINSERT), with the attributes
// they own.
#include "host/db/ents_internal.h"

using zepk::db::ClassSchema;
using zepk::db::customPart;
using zepk::db::DxfItem;
using zepk::db::field;
using zepk::db::kOptional;
using zepk::db::kDegreesInFile;
using zepk::db::MemoryDxfFiler;

namespace {

bool hasAttributes(const AcDbObject* o) {
  zepk::db::OwnedSequence* seq = zepk::db::EntityAccess::sequence(static_cast<const AcDbEntity*>(o));
  return seq && !seq->items.empty();
}

}  // namespace

ZEPK_DEFINE_ENTITY_CLASS(AcDbBlockReference, AcDbEntity, u"INSERT")
ZEPK_DEFINE_ENTITY_FILERS(AcDbBlockReference, AcDbEntity)

const ClassSchema& AcDbBlockReference::schema() {
  static const ClassSchema s{
      u"AcDbBlockReference",
      {
          zepk::db::followsFlagPart<hasAttributes>(),
          // The block: its record in memory, its name in a file.
          zepk::db::recordRefPart<&AcDbBlockReference::blockId_, &AcDbBlockReference::blockName_, 2,
                                  zepk::db::blockIdByName, zepk::db::RefDefault::None>(),
          field<&AcDbBlockReference::position_>(10, "Position"),
          field<&AcDbBlockReference::scaleX_>(41, "ScaleX", 1.0, kOptional),
          field<&AcDbBlockReference::scaleY_>(42, "ScaleY", 1.0, kOptional),
          field<&AcDbBlockReference::scaleZ_>(43, "ScaleZ", 1.0, kOptional),
          field<&AcDbBlockReference::rotation_>(50, "Rotation", 0.0, kOptional | kDegreesInFile),
          field<&AcDbBlockReference::columns_>(70, "Columns", 1, kOptional | zepk::db::kOmittedWhenDefault),
          field<&AcDbBlockReference::rows_>(71, "Rows", 1, kOptional | zepk::db::kOmittedWhenDefault),
          field<&AcDbBlockReference::columnSpacing_>(44, "ColumnSpacing", 0.0, kOptional),
          field<&AcDbBlockReference::rowSpacing_>(45, "RowSpacing", 0.0, kOptional),
          field<&AcDbBlockReference::normal_>(210, "Normal", AcGeVector3d(0, 0, 1), kOptional),
          zepk::db::sequencePart(),
      }};
  return s;
}

AcDbBlockReference::AcDbBlockReference() = default;
AcDbBlockReference::~AcDbBlockReference() = default;

AcDbBlockReference::AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId blockTableRec)
    : blockId_(blockTableRec), position_(position) {
  blockName_ = zepk::db::recordName(blockTableRec);
}

zepk::db::OwnedSequence* AcDbBlockReference::ownedSequence() const {
  if (!seq_) seq_ = std::make_unique<zepk::db::OwnedSequence>();
  return seq_.get();
}

AcDbObjectId AcDbBlockReference::blockTableRecord() const {
  if (blockId_.isNull() && !blockName_.empty()) {
    if (AcDbDatabase* db = database()) blockId_ = zepk::db::blockIdByName(db, blockName_);
  }
  return blockId_;
}

Acad::ErrorStatus AcDbBlockReference::setBlockTableRecord(AcDbObjectId id) {
  if (id.isNull()) return Acad::eNullObjectId;
  assertWriteEnabled();
  blockId_ = id;
  std::u16string name = zepk::db::recordName(id);
  if (!name.empty()) blockName_ = name;
  return Acad::eOk;
}

// The record's name, or the one kept when it is the same but for case.
std::u16string AcDbBlockReference::blockName() const { return zepk::db::recordNameOr(blockId_, blockName_); }

Acad::ErrorStatus AcDbBlockReference::setBlockName(const ACHAR* name) {
  if (!name || !*name) return Acad::eInvalidInput;
  AcDbObjectId id;
  if (AcDbDatabase* db = database()) id = zepk::db::blockIdByName(db, name);
  assertWriteEnabled();
  blockName_ = name;
  blockId_ = id;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::setPosition(const AcGePoint3d& p) {
  assertWriteEnabled();
  position_ = p;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::setScaleFactors(const AcGeScale3d& scale) {
  if (scale.sx == 0 || scale.sy == 0 || scale.sz == 0) return Acad::eInvalidInput;
  assertWriteEnabled();
  scaleX_ = scale.sx;
  scaleY_ = scale.sy;
  scaleZ_ = scale.sz;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::setRotation(double a) {
  assertWriteEnabled();
  rotation_ = a;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::setNormal(const AcGeVector3d& n) {
  double len = n.length();
  if (!(len > 1e-12)) return Acad::eInvalidInput;
  assertWriteEnabled();
  normal_ = n / len;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbAttribute* pAttr) {
  return zepk::db::appendSubentity(this, pAttr, nullptr);
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbObjectId& attId, AcDbAttribute* pAttr) {
  return zepk::db::appendSubentity(this, pAttr, &attId);
}

AcDbObjectIterator* AcDbBlockReference::attributeIterator() const { return zepk::db::newSubentityIterator(this); }

Acad::ErrorStatus AcDbBlockReference::openSequenceEnd(AcDbSequenceEnd*& p, AcDb::OpenMode mode) {
  return zepk::db::openSequenceEnd(this, p, mode);
}

// ---------------------------------------------------------------- MINSERT

ZEPK_DEFINE_ENTITY_CLASS(AcDbMInsertBlock, AcDbBlockReference, u"INSERT")

// The same fields under its own marker, in place of the reference's part.
const ClassSchema& AcDbMInsertBlock::schema() {
  static const ClassSchema s{u"AcDbMInsertBlock", AcDbBlockReference::schema().fields()};
  return s;
}

Acad::ErrorStatus AcDbMInsertBlock::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbEntity::dwgOutFields(f);
  return es != Acad::eOk ? es : zepk::db::dwgOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbMInsertBlock::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbEntity::dwgInFields(f);
  return es != Acad::eOk ? es : zepk::db::dwgInPart(schema(), this, f);
}

Acad::ErrorStatus AcDbMInsertBlock::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbEntity::dxfOutFields(f);
  return es != Acad::eOk ? es : zepk::db::dxfOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbMInsertBlock::dxfInFields(AcDbDxfFiler* f) {
  Acad::ErrorStatus es = AcDbEntity::dxfInFields(f);
  return es != Acad::eOk ? es : zepk::db::dxfInPart(schema(), this, f);
}

AcDbMInsertBlock::AcDbMInsertBlock(const AcGePoint3d& position, AcDbObjectId blockTableRec, Adesk::UInt16 columns,
                                   Adesk::UInt16 rows, double colSpacing, double rowSpacing)
    : AcDbBlockReference(position, blockTableRec) {
  columns_ = static_cast<int16_t>(columns);
  rows_ = static_cast<int16_t>(rows);
  columnSpacing_ = colSpacing;
  rowSpacing_ = rowSpacing;
}

Acad::ErrorStatus AcDbMInsertBlock::setColumns(Adesk::UInt16 n) {
  if (n == 0) return Acad::eInvalidInput;
  assertWriteEnabled();
  columns_ = static_cast<int16_t>(n);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMInsertBlock::setRows(Adesk::UInt16 n) {
  if (n == 0) return Acad::eInvalidInput;
  assertWriteEnabled();
  rows_ = static_cast<int16_t>(n);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMInsertBlock::setColumnSpacing(double d) {
  assertWriteEnabled();
  columnSpacing_ = d;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMInsertBlock::setRowSpacing(double d) {
  assertWriteEnabled();
  rowSpacing_ = d;
  return Acad::eOk;
}
