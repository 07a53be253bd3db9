// Symbol tables as a user of the host sees them: what a new drawing holds,
// names found without regard to case, the refusals, erased records, undo,
// blocks with their entities, and every record class filed and read back
// through both filers by its one schema.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "host/db/dbobjects.h"
#include "host/db/internal.h"
#include "host/db/memfiler.h"
#include "host/db/schema.h"
#include "host/dbdict.h"
#include "host/dbents.h"
#include "host/dblayout.h"
#include "host/dbsymtb.h"
#include "host/dbxrecrd.h"

using zepk::db::DxfItem;
using zepk::db::MemoryDwgFiler;
using zepk::db::MemoryDxfFiler;

namespace {

// The names of a table's live records, in table order.
std::vector<std::u16string> names(AcDbObjectId tableId) {
  std::vector<std::u16string> out;
  AcDbObjectPointer<AcDbSymbolTable> table(tableId, AcDb::kForRead);
  if (!table) return out;
  AcDbSymbolTableIterator* it = nullptr;
  table->newIterator(it);
  for (; !it->done(); it->step()) {
    AcDbSymbolTableRecord* rec = nullptr;
    if (it->getRecord(rec) != Acad::eOk) continue;
    out.push_back(rec->name());
    rec->close();
  }
  delete it;
  return out;
}

std::vector<std::u16string> keys(AcDbObjectId dictId) {
  std::vector<std::u16string> out;
  AcDbObjectPointer<AcDbDictionary> dict(dictId, AcDb::kForRead);
  if (!dict) return out;
  for (const auto& e : dict->entries()) out.push_back(e.name);
  return out;
}

class TablesTest : public ::testing::Test {
 protected:
  AcDbDatabase db{true};

  AcDbObjectId addLayer(const ACHAR* name) {
    AcDbObjectPointer<AcDbLayerTable> table(db.layerTableId(), AcDb::kForWrite);
    auto* rec = new AcDbLayerTableRecord;
    EXPECT_EQ(rec->setName(name), Acad::eOk);
    AcDbObjectId id;
    EXPECT_EQ(table->add(id, rec), Acad::eOk);
    rec->close();
    return id;
  }
  AcDbObjectId layer(const ACHAR* name, bool erased = false) {
    AcDbObjectPointer<AcDbLayerTable> table(db.layerTableId(), AcDb::kForRead);
    AcDbObjectId id;
    table->getAt(name, id, erased);
    return id;
  }
};

TEST_F(TablesTest, ANewDrawingHoldsWhatADrawingNeeds) {
  EXPECT_EQ(names(db.layerTableId()), (std::vector<std::u16string>{u"0"}));
  EXPECT_EQ(names(db.linetypeTableId()), (std::vector<std::u16string>{u"ByBlock", u"ByLayer", u"Continuous"}));
  EXPECT_EQ(names(db.textStyleTableId()), (std::vector<std::u16string>{u"Standard"}));
  EXPECT_EQ(names(db.dimStyleTableId()), (std::vector<std::u16string>{u"Standard"}));
  EXPECT_EQ(names(db.regAppTableId()), (std::vector<std::u16string>{u"ACAD"}));
  EXPECT_EQ(names(db.viewportTableId()), (std::vector<std::u16string>{u"*Active"}));
  EXPECT_EQ(names(db.blockTableId()), (std::vector<std::u16string>{u"*Model_Space", u"*Paper_Space"}));
  EXPECT_TRUE(names(db.viewTableId()).empty());
  EXPECT_TRUE(names(db.UCSTableId()).empty());
  EXPECT_EQ(keys(db.namedObjectsDictionaryId()), (std::vector<std::u16string>{u"ACAD_GROUP", u"ACAD_LAYOUT",
                                                                              u"ACAD_MLINESTYLE", u"ACAD_PLOTSTYLENAME"}));
  EXPECT_EQ(keys(db.layoutDictionaryId()), (std::vector<std::u16string>{u"Layout1", u"Model"}));
  EXPECT_EQ(keys(db.mLStyleDictionaryId()), (std::vector<std::u16string>{u"Standard"}));
  EXPECT_EQ(keys(db.plotStyleNameDictionaryId()), (std::vector<std::u16string>{u"Normal"}));
  EXPECT_TRUE(keys(db.groupDictionaryId()).empty());

  // Each space and its sheet point to each other.
  for (auto [space, sheet, tab] : {std::tuple{ACDB_MODEL_SPACE, u"Model", 0}, {ACDB_PAPER_SPACE, u"Layout1", 1}}) {
    AcDbObjectPointer<AcDbBlockTable> blocks(db.blockTableId(), AcDb::kForRead);
    AcDbBlockTableRecord* block = nullptr;
    ASSERT_EQ(blocks->getAt(space, block, AcDb::kForRead), Acad::eOk);
    AcDbObjectId blockId = block->objectId(), layoutId = block->getLayoutId();
    EXPECT_TRUE(block->isLayout());
    block->close();
    AcDbObjectPointer<AcDbLayout> layout(layoutId, AcDb::kForRead);
    ASSERT_EQ(layout.openStatus(), Acad::eOk) << std::string(sheet, sheet + 1);
    EXPECT_EQ(layout->getLayoutName(), sheet);
    EXPECT_EQ(layout->getTabOrder(), tab);
    EXPECT_EQ(layout->getBlockTableRecordId(), blockId);
    EXPECT_EQ(layout->ownerId(), db.layoutDictionaryId());
  }

  // Layer "0" draws continuous lines with the default plot style; the
  // dimension style writes with "Standard".
  AcDbObjectPointer<AcDbLayerTableRecord> zero(layer(u"0"), AcDb::kForRead);
  EXPECT_EQ(zero->linetypeObjectId(), zepk::db::linetypeIdByName(&db, u"CONTINUOUS"));
  EXPECT_EQ(zero->colorIndex(), 7);
  EXPECT_EQ(zero->ownerId(), db.layerTableId());
  AcDbObjectPointer<AcDbDictionaryWithDefault> styles(db.plotStyleNameDictionaryId(), AcDb::kForRead);
  EXPECT_FALSE(styles->defaultId().isNull());
  EXPECT_EQ(zero->plotStyleNameId(), styles->defaultId());
  AcDbObjectPointer<AcDbDimStyleTable> dims(db.dimStyleTableId(), AcDb::kForRead);
  AcDbDimStyleTableRecord* standard = nullptr;
  ASSERT_EQ(dims->getAt(u"standard", standard, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(zepk::db::recordName(standard->dimtxsty()), u"Standard");
  standard->close();

  EXPECT_EQ(zepk::db::defaultLayerId(&db), layer(u"0"));
  EXPECT_EQ(zepk::db::recordName(zepk::db::byLayerLinetypeId(&db)), u"ByLayer");
  std::u16string version;
  for (const auto& v : zepk::db::headerVars(&db))
    if (v.name == u"$ACADVER") version = v.groups.at(0).s;
  EXPECT_EQ(version, u"AC1032");
  EXPECT_EQ(zepk::db::initNewDrawing(&db), Acad::eAlreadyInDb);

  // An empty database has none of it, and lookups answer nothing.
  AcDbDatabase empty;
  EXPECT_TRUE(empty.layerTableId().isNull());
  EXPECT_TRUE(zepk::db::defaultLayerId(&empty).isNull());
  AcDbLayerTable* none = nullptr;
  EXPECT_EQ(empty.getLayerTable(none), Acad::eNullObjectId);
  EXPECT_EQ(zepk::db::recordName(AcDbObjectId()), u"");
}

TEST_F(TablesTest, NamesAreFoundWithoutRegardToCaseAndKeepTheirs) {
  AcDbObjectId lines = addLayer(u"Survey-Lines");
  AcDbObjectId chinese = addLayer(u"一层建筑面积线");
  EXPECT_EQ(layer(u"SURVEY-lines"), lines);
  EXPECT_EQ(layer(u"一层建筑面积线"), chinese);
  EXPECT_EQ(zepk::db::recordName(lines), u"Survey-Lines");
  EXPECT_EQ(zepk::db::layerIdByName(&db, u"survey-LINES"), lines);

  AcDbObjectPointer<AcDbLayerTable> table(db.layerTableId(), AcDb::kForWrite);
  EXPECT_TRUE(table->has(u"survey-lines"));
  EXPECT_TRUE(table->has(lines));
  // The same name in another case is the same name.
  auto* dup = new AcDbLayerTableRecord;
  dup->setName(u"SURVEY-LINES");
  EXPECT_EQ(table->add(dup), Acad::eDuplicateRecordName);
  EXPECT_TRUE(dup->objectId().isNull());
  delete dup;
  // A record of another kind has no place in the table.
  auto* style = new AcDbTextStyleTableRecord;
  style->setName(u"Lines");
  EXPECT_EQ(table->add(static_cast<AcDbSymbolTableRecord*>(style)), Acad::eWrongObjectType);
  delete style;
  auto* unnamed = new AcDbLayerTableRecord;
  EXPECT_EQ(table->add(unnamed), Acad::eInvalidInput);
  delete unnamed;
  table.close();

  // Names with the characters names may not hold are refused as given.
  AcDbLayerTableRecord probe;
  for (const ACHAR* bad : {u"a/b", u"a*b", u"a|b", u"", u"x\ny"})
    EXPECT_EQ(probe.setName(bad), Acad::eInvalidSymbolTableName) << std::u16string(bad).size();

  // A table open for read takes nothing.
  AcDbObjectPointer<AcDbLayerTable> reading(db.layerTableId(), AcDb::kForRead);
  auto* late = new AcDbLayerTableRecord;
  late->setName(u"Late");
  EXPECT_EQ(reading->add(late), Acad::eNotOpenForWrite);
  delete late;
}

TEST_F(TablesTest, RenamedAndErasedRecordsLeaveTheirNames) {
  AcDbObjectId id = addLayer(u"Draft");
  {
    AcDbObjectPointer<AcDbLayerTableRecord> rec(id, AcDb::kForWrite);
    EXPECT_EQ(rec->setName(u"0"), Acad::eDuplicateRecordName);
    EXPECT_EQ(rec->setName(u"Final"), Acad::eOk);
  }
  EXPECT_TRUE(layer(u"Draft").isNull());
  EXPECT_EQ(layer(u"final"), id);
  // Changing only the case is a rename too.
  {
    AcDbObjectPointer<AcDbLayerTableRecord> rec(id, AcDb::kForWrite);
    EXPECT_EQ(rec->setName(u"FINAL"), Acad::eOk);
  }
  EXPECT_EQ(zepk::db::recordName(layer(u"final")), u"FINAL");

  {
    AcDbObjectPointer<AcDbLayerTableRecord> rec(id, AcDb::kForWrite);
    ASSERT_EQ(rec->erase(), Acad::eOk);
  }
  EXPECT_TRUE(layer(u"Final").isNull());
  EXPECT_EQ(layer(u"Final", true), id);  // asked for, the erased record answers
  EXPECT_EQ(names(db.layerTableId()), (std::vector<std::u16string>{u"0"}));
  // Its name is free again.
  AcDbObjectId again = addLayer(u"Final");
  EXPECT_NE(again, id);
  EXPECT_EQ(layer(u"final"), again);
  EXPECT_EQ(layer(u"final", true), again);  // the live one first
  AcDbObjectPointer<AcDbLayerTable> table(db.layerTableId(), AcDb::kForRead);
  AcDbLayerTableIterator* it = nullptr;
  table->newIterator(it, true, false);
  int all = 0;
  for (; !it->done(); it->step(true, false)) ++all;
  delete it;
  EXPECT_EQ(all, 3);
  table.close();

  // What the drawing needs cannot go.
  {
    AcDbObjectPointer<AcDbLayerTableRecord> zero(layer(u"0"), AcDb::kForWrite);
    EXPECT_EQ(zero->erase(), Acad::eCannotBeErasedByCaller);
    EXPECT_EQ(zero->setName(u"Zero"), Acad::eNotApplicable);
  }
  AcDbObjectPointer<AcDbBlockTable> blocks(db.blockTableId(), AcDb::kForRead);
  AcDbBlockTableRecord* model = nullptr;
  ASSERT_EQ(blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(model->erase(), Acad::eCannotBeErasedByCaller);
  model->close();
}

TEST_F(TablesTest, ALockedLayerIsKnownByItsId) {
  AcDbObjectId id = addLayer(u"Boundaries");
  EXPECT_FALSE(zepk::db::isLayerLocked(id));
  {
    AcDbObjectPointer<AcDbLayerTableRecord> rec(id, AcDb::kForWrite);
    rec->setIsLocked(true);
    rec->setIsOff(true);
    EXPECT_EQ(rec->setColorIndex(3), Acad::eOk);
    EXPECT_EQ(rec->setColorIndex(256), Acad::eInvalidInput);  // by layer means nothing here
    EXPECT_EQ(rec->setLineWeight(static_cast<AcDb::LineWeight>(7)), Acad::eInvalidInput);
    EXPECT_EQ(rec->setLineWeight(AcDb::kLnWtByLayer), Acad::eInvalidInput);
    EXPECT_EQ(rec->setLineWeight(AcDb::kLnWt030), Acad::eOk);
    // A true colour keeps its nearest index for readers that know only those.
    AcCmColor c;
    c.setRGB(255, 0, 0);
    EXPECT_EQ(rec->setColor(c), Acad::eOk);
    EXPECT_EQ(rec->trueColor(), 0xFF0000);
    EXPECT_EQ(rec->colorIndex(), 1);
    EXPECT_TRUE(rec->color().isByColor());
    c.setByLayer();
    EXPECT_EQ(rec->setColor(c), Acad::eInvalidInput);
    c.setColorIndex(3);
    EXPECT_EQ(rec->setColor(c), Acad::eOk);
    EXPECT_EQ(rec->trueColor(), -1);
    EXPECT_EQ(rec->color().colorIndex(), 3);
  }
  EXPECT_TRUE(zepk::db::isLayerLocked(id));
  EXPECT_FALSE(zepk::db::isLayerLocked(layer(u"0")));

  // In a file: locked is bit 4 of 70, off is a negative colour, the
  // linetype goes by name.
  AcDbObjectPointer<AcDbLayerTableRecord> rec(id, AcDb::kForRead);
  EXPECT_EQ(zepk::db::recordName(rec->linetypeObjectId()), u"Continuous");
  MemoryDxfFiler out(AcDb::kFileFiler, &db);
  ASSERT_EQ(rec->dxfOutFields(&out), Acad::eOk);
  auto group = [&](int code) -> const DxfItem* {
    for (const DxfItem& it : out.items())
      if (it.code == code) return &it;
    return nullptr;
  };
  ASSERT_NE(group(70), nullptr);
  EXPECT_EQ(group(70)->i, 4);
  EXPECT_EQ(group(62)->i, -3);
  EXPECT_EQ(group(6)->s, u"Continuous");
  EXPECT_EQ(group(370)->i, 30);
  EXPECT_EQ(group(290), nullptr);  // plotted, as by default
  EXPECT_EQ(out.items().front().code, 330);
  EXPECT_EQ(out.items()[1].s, u"AcDbSymbolTableRecord");
  EXPECT_EQ(out.items()[2].s, u"AcDbLayerTableRecord");

  AcDbLayerTableRecord back;
  out.rewind();
  ASSERT_EQ(back.dxfInFields(&out), Acad::eOk);
  EXPECT_TRUE(back.isOff());
  EXPECT_TRUE(back.isLocked());
  EXPECT_EQ(back.colorIndex(), 3);
  EXPECT_EQ(back.linetypeObjectId(), rec->linetypeObjectId());
}

TEST_F(TablesTest, UndoPutsTablesBack) {
  AcDbObjectId kept = addLayer(u"Kept");
  db.beginUndoMark();
  AcDbObjectId added = addLayer(u"Added");
  {
    AcDbObjectPointer<AcDbLayerTableRecord> rec(kept, AcDb::kForWrite);
    rec->setName(u"Renamed");
    rec->setColorIndex(1);
  }
  db.endUndoMark();
  EXPECT_EQ(layer(u"Renamed"), kept);
  ASSERT_TRUE(db.undoBack());
  EXPECT_TRUE(added.isErased());
  EXPECT_TRUE(layer(u"Added").isNull());
  EXPECT_TRUE(layer(u"Renamed").isNull());
  EXPECT_EQ(layer(u"Kept"), kept);
  AcDbObjectPointer<AcDbLayerTableRecord> rec(kept, AcDb::kForRead);
  EXPECT_EQ(rec->colorIndex(), 7);
  rec.close();
  EXPECT_EQ(names(db.layerTableId()), (std::vector<std::u16string>{u"0", u"Kept"}));
  // And the name given up by undo can be taken.
  EXPECT_FALSE(addLayer(u"Added").isNull());

  // Undo of an erase brings the record back under its name.
  db.beginUndoMark();
  {
    AcDbObjectPointer<AcDbLayerTableRecord> w(kept, AcDb::kForWrite);
    w->erase();
  }
  db.endUndoMark();
  EXPECT_TRUE(layer(u"Kept").isNull());
  db.undoBack();
  EXPECT_EQ(layer(u"Kept"), kept);
}

TEST_F(TablesTest, BlocksKeepTheirEntitiesInOrder) {
  AcDbObjectPointer<AcDbBlockTable> blocks(db.blockTableId(), AcDb::kForWrite);
  auto* block = new AcDbBlockTableRecord;
  block->setName(u"Marker");
  block->setOrigin(AcGePoint3d(1, 2, 0));
  AcDbObjectId blockId;
  ASSERT_EQ(blocks->add(blockId, block), Acad::eOk);
  AcDbObjectIdArray ids;
  for (int i = 0; i < 3; ++i) {
    auto* line = new AcDbLine(AcGePoint3d(i, 0, 0), AcGePoint3d(i, 1, 0));
    AcDbObjectId id;
    ASSERT_EQ(block->appendAcDbEntity(id, line), Acad::eOk);
    EXPECT_EQ(line->ownerId(), blockId);
    EXPECT_EQ(line->database(), &db);
    line->close();
    ids.push_back(id);
  }
  // Only entities go into blocks, and only new ones.
  auto* xrec = new AcDbXrecord;
  EXPECT_EQ(block->appendEntityObject(ids.emplace_back(), xrec), Acad::eNotAnEntity);
  ids.pop_back();
  delete xrec;
  {
    AcDbObjectPointer<AcDbLine> first(ids[0], AcDb::kForRead);
    auto* stray = first.object();
    EXPECT_EQ(block->appendAcDbEntity(stray), Acad::eAlreadyInDb);
  }

  // Anonymous blocks are numbered.
  AcDbObjectId anon1, anon2;
  for (AcDbObjectId* id : {&anon1, &anon2}) {
    auto* a = new AcDbBlockTableRecord;
    a->setName(u"*U");
    ASSERT_EQ(blocks->add(*id, a), Acad::eOk);
    EXPECT_TRUE(a->isAnonymous());
    a->close();
  }
  EXPECT_EQ(zepk::db::recordName(anon1), u"*U1");
  EXPECT_EQ(zepk::db::recordName(anon2), u"*U2");
  blocks.close();

  {
    AcDbObjectPointer<AcDbLine> middle(ids[1], AcDb::kForWrite);
    middle->erase();
  }
  AcDbBlockTableRecordIterator* it = nullptr;
  block->newIterator(it);
  AcDbObjectIdArray seen;
  for (; !it->done(); it->step()) {
    AcDbEntity* ent = nullptr;
    ASSERT_EQ(it->getEntity(ent), Acad::eOk);
    seen.push_back(ent->objectId());
    ent->close();
  }
  delete it;
  EXPECT_EQ(seen, (AcDbObjectIdArray{ids[0], ids[2]}));
  EXPECT_EQ(block->entityIds(true), ids);

  // The BLOCK part a file writes for it.
  MemoryDxfFiler begin(AcDb::kFileFiler, &db);
  ASSERT_EQ(AcDbBlockTableRecord::blockBeginSchema().dxfOut(block, &begin), Acad::eOk);
  std::vector<int> codes;
  for (const DxfItem& g : begin.items()) codes.push_back(g.code);
  EXPECT_EQ(codes, (std::vector<int>{100, 2, 70, 10, 3, 1}));
  EXPECT_EQ(begin.items()[4].s, u"Marker");

  // Erasing the block erases its entities; undo brings back those the
  // erase took, and only those.
  block->close();
  db.beginUndoMark();
  {
    AcDbObjectPointer<AcDbBlockTableRecord> w(blockId, AcDb::kForWrite);
    ASSERT_EQ(w->erase(), Acad::eOk);
  }
  db.endUndoMark();
  EXPECT_TRUE(ids[0].isErased());
  EXPECT_TRUE(ids[2].isErased());
  EXPECT_TRUE(zepk::db::recordName(blockId) == u"Marker" && blockId.isErased());
  ASSERT_TRUE(db.undoBack());
  EXPECT_FALSE(blockId.isErased());
  EXPECT_FALSE(ids[0].isErased());
  EXPECT_FALSE(ids[2].isErased());
  EXPECT_TRUE(ids[1].isErased());
}

// ---------------------------------------------------------------- schemas

// One class filed out, read into a fresh object and filed again gives the
// same groups, through the DXF list and through the DWG stream.
struct SchemaCase {
  const char16_t* dxfName;
  const zepk::db::ClassSchema& (*schema)();
  // Gives the object what its custom parts hold, as a list of groups it
  // reads (after its subclass markers).
  std::vector<DxfItem> (*custom)(AcDbDatabase* db);
};

std::ostream& operator<<(std::ostream& os, const SchemaCase& c) {
  for (const char16_t* p = c.dxfName; *p; ++p) os << static_cast<char>(*p);
  return os;
}

DxfItem str(int code, std::u16string s) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::String;
  it.s = std::move(s);
  return it;
}
DxfItem num(int code, int64_t v) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::Int;
  it.i = v;
  return it;
}
DxfItem real(int code, double v) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::Real;
  it.p[0] = v;
  return it;
}
DxfItem ref(int code, AcDbObjectId id) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::Id;
  it.id = id;
  return it;
}

// Some object of the database to point at.
AcDbObjectId target(AcDbDatabase* db) { return db->layerTableId(); }

std::vector<DxfItem> noCustom(AcDbDatabase*) { return {}; }

const SchemaCase kSchemaCases[] = {
    {u"LAYER", &AcDbLayerTableRecord::schema,
     [](AcDbDatabase*) { return std::vector<DxfItem>{num(62, -5), num(420, 0x123456), str(6, u"DASHED")}; }},
    {u"LTYPE", &AcDbLinetypeTableRecord::schema,
     [](AcDbDatabase* db) {
       return std::vector<DxfItem>{num(73, 3),      real(40, 2.0),   real(49, 1.25), num(74, 0),
                                   real(49, -0.25), num(74, 2),      num(75, 0),     ref(340, target(db)),
                                   real(46, 0.1),   real(50, 30.0),  real(44, -0.1), real(45, -0.05),
                                   str(9, u"GAS"),  real(49, -0.5),  num(74, 4),     num(75, 131),
                                   ref(340, target(db)), real(46, 1.0), real(50, 0.0), real(44, 0.0),
                                   real(45, 0.0)};
     }},
    {u"STYLE", &AcDbTextStyleTableRecord::schema, noCustom},
    {u"DIMSTYLE", &AcDbDimStyleTableRecord::schema, noCustom},
    {u"UCS", &AcDbUCSTableRecord::schema, noCustom},
    {u"VIEW", &AcDbViewTableRecord::schema, noCustom},
    {u"VPORT", &AcDbViewportTableRecord::schema, noCustom},
    {u"APPID", &AcDbRegAppTableRecord::schema, noCustom},
    {u"BLOCK_RECORD", &AcDbBlockTableRecord::schema, noCustom},
};

class SchemaRoundTrip : public ::testing::TestWithParam<SchemaCase> {
 protected:
  AcDbDatabase db{true};
};

// A value of the field's kind that differs from what the object holds.
DxfItem otherValue(const zepk::db::Field& f, AcDbObject*, AcDbDatabase* db, int attempt) {
  using zepk::db::FieldType;
  DxfItem it;
  it.code = f.code;
  switch (f.type) {
    case FieldType::Bool: it.kind = DxfItem::Int, it.i = attempt; break;
    case FieldType::Int16: it.kind = DxfItem::Int, it.i = attempt ? 3 : 7; break;
    case FieldType::Int32: it.kind = DxfItem::Int, it.i = attempt ? 70000 : 5; break;
    case FieldType::Real: it.kind = DxfItem::Real, it.p[0] = attempt ? 2.5 : 0.375; break;
    case FieldType::Point2d:
      it.kind = DxfItem::Point, it.p[0] = attempt + 1.5, it.p[1] = -2.0, it.dims = 2;
      break;
    case FieldType::Point3d:
    case FieldType::Vector3d:
      it.kind = DxfItem::Point, it.p[0] = attempt ? 0.0 : 1.0, it.p[1] = 0.5, it.p[2] = -3.0;
      break;
    case FieldType::String: it.kind = DxfItem::String, it.s = attempt ? u"测试 name" : u"other"; break;
    default: it.kind = DxfItem::Id, it.id = attempt ? db->layerTableId() : db->blockTableId(); break;
  }
  return it;
}

std::string show(const std::vector<DxfItem>& items) {
  std::string s;
  for (const DxfItem& it : items) {
    s += std::to_string(it.code) + ":";
    switch (it.kind) {
      case DxfItem::String: for (char16_t c : it.s) s += c < 128 ? static_cast<char>(c) : '?'; break;
      case DxfItem::Int: s += std::to_string(it.i); break;
      case DxfItem::Real: s += std::to_string(it.p[0]); break;
      case DxfItem::Point: s += std::to_string(it.p[0]) + "," + std::to_string(it.p[1]); break;
      default: s += "#"; break;
    }
    s += " ";
  }
  return s;
}

bool same(const std::vector<DxfItem>& a, const std::vector<DxfItem>& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (!zepk::db::sameItem(a[i], b[i])) return false;
  return true;
}

TEST_P(SchemaRoundTrip, EveryFieldComesBackThroughBothFilers) {
  const SchemaCase& c = GetParam();
  AcRxClass* cls = acrxFindClassByDxfName(c.dxfName);
  ASSERT_NE(cls, nullptr);
  auto make = [&] { return static_cast<AcDbObject*>(cls->create()); };
  std::unique_ptr<AcDbObject> obj(make());
  ASSERT_NE(obj, nullptr);
  const zepk::db::ClassSchema& schema = c.schema();

  // A list of groups that gives every ordinary field a value other than
  // its default, the custom parts their data, and adds a group the class
  // does not know, in the order the class writes them.
  MemoryDxfFiler first(AcDb::kCopyFiler, &db);
  first.writeObjectId(330, db.layerTableId());
  first.writeString(100, u"AcDbSymbolTableRecord");
  first.writeString(100, schema.marker());
  std::vector<int> used;
  for (const auto& f : schema.fields())
    if (f.customDxfIn && f.customCodes.size() < 100) used.insert(used.end(), f.customCodes.begin(), f.customCodes.end());
    else if (!f.customDxfIn) used.push_back(f.code);
  int unknown = 0;
  for (int code : {347, 430, 92, 300, 1})
    if (std::find(used.begin(), used.end(), code) == used.end()) {
      unknown = code;
      break;
    }
  ASSERT_NE(unknown, 0);
  bool customDone = false;
  std::unique_ptr<AcDbObject> scratch(make());
  for (const auto& f : schema.fields()) {
    if (f.customDxfIn && f.customCodes.size() > 100) {
      first.items().push_back(unknown == 347 ? ref(347, db.blockTableId())
                              : unknown == 92 ? num(92, 12345)
                                              : str(unknown, u"kept as read"));
    } else if (f.customDxfIn) {
      if (!customDone)
        for (const DxfItem& g : c.custom(&db)) first.items().push_back(g);
      customDone = true;
    } else {
      DxfItem v;
      for (int attempt = 0; attempt < 2; ++attempt) {
        v = otherValue(f, scratch.get(), &db, attempt);
        ASSERT_TRUE(f.readDxf(scratch.get(), v)) << f.name;
        if (!f.isDefault(scratch.get())) break;
      }
      EXPECT_FALSE(f.isDefault(scratch.get())) << f.name;
      first.items().push_back(v);
    }
  }

  std::unique_ptr<AcDbObject> a(make());
  first.rewind();
  ASSERT_EQ(a->dxfInFields(&first), Acad::eOk);
  EXPECT_TRUE(first.atEOF()) << "left unread from " << first.position();
  MemoryDxfFiler out(AcDb::kCopyFiler, &db);
  ASSERT_EQ(a->dxfOutFields(&out), Acad::eOk);
  // Everything comes out as it went in, the unknown group included.
  EXPECT_TRUE(same(out.items(), first.items())) << show(out.items()) << "\n" << show(first.items());

  // Read again: the same list.
  std::unique_ptr<AcDbObject> b(make());
  out.rewind();
  ASSERT_EQ(b->dxfInFields(&out), Acad::eOk);
  MemoryDxfFiler again(AcDb::kCopyFiler, &db);
  b->dxfOutFields(&again);
  EXPECT_TRUE(same(out.items(), again.items())) << show(out.items()) << "\n" << show(again.items());

  // Through the DWG stream: the same list.
  MemoryDwgFiler dwg(AcDb::kCopyFiler, &db);
  ASSERT_EQ(b->dwgOutFields(&dwg), Acad::eOk);
  std::unique_ptr<AcDbObject> d(make());
  dwg.rewind();
  ASSERT_EQ(d->dwgInFields(&dwg), Acad::eOk);
  MemoryDxfFiler viaDwg(AcDb::kCopyFiler, &db);
  d->dxfOutFields(&viaDwg);
  EXPECT_TRUE(same(out.items(), viaDwg.items())) << show(out.items()) << "\n" << show(viaDwg.items());

  // A file leaves out optional fields at their defaults; read back, the
  // object has its defaults all the same.
  std::unique_ptr<AcDbObject> fresh(make()), reread(make());
  MemoryDxfFiler file(AcDb::kFileFiler, &db), full(AcDb::kCopyFiler, &db), full2(AcDb::kCopyFiler, &db);
  fresh->dxfOutFields(&file);
  file.rewind();
  ASSERT_EQ(reread->dxfInFields(&file), Acad::eOk);
  fresh->dxfOutFields(&full);
  reread->dxfOutFields(&full2);
  EXPECT_TRUE(same(full.items(), full2.items())) << show(full.items()) << "\n" << show(full2.items());
}

INSTANTIATE_TEST_SUITE_P(Records, SchemaRoundTrip, ::testing::ValuesIn(kSchemaCases));

TEST(RecordFields, AnglesAreRadiansHereAndDegreesInFiles) {
  const double kPi = 3.14159265358979323846;
  AcDbTextStyleTableRecord style;
  EXPECT_EQ(style.setObliquingAngle(kPi / 12), Acad::eOk);
  EXPECT_EQ(style.setObliquingAngle(-kPi / 12 + 2 * kPi), Acad::eOk);  // -15 degrees, given the long way
  EXPECT_NEAR(style.obliquingAngle(), -kPi / 12, 1e-12);
  EXPECT_EQ(style.setObliquingAngle(kPi / 2), Acad::eInvalidInput);  // no text leans that far
  EXPECT_EQ(style.setXScale(0.0), Acad::eInvalidInput);
  MemoryDxfFiler out(AcDb::kCopyFiler);
  style.dxfOutFields(&out);
  for (const DxfItem& it : out.items())
    if (it.code == 50) {
      EXPECT_NEAR(it.p[0], -15.0, 1e-9);
    }

  // A viewport's corners and centre are points of two coordinates: files
  // write no z for them. Its width is its height times its aspect.
  AcDbViewportTableRecord vp;
  vp.setHeight(9.0);
  vp.setWidth(12.0);
  EXPECT_DOUBLE_EQ(vp.aspectRatio(), 12.0 / 9.0);
  vp.setViewTwist(kPi / 6);
  vp.setSnapAngle(kPi / 4);
  MemoryDxfFiler vout(AcDb::kCopyFiler);
  vp.dxfOutFields(&vout);
  for (const DxfItem& it : vout.items()) {
    if (it.code >= 10 && it.code <= 15) {
      EXPECT_EQ(it.dims, 2) << it.code;
    }
    if (it.code == 16 || it.code == 17 || it.code == 110) {
      EXPECT_EQ(it.dims, 3) << it.code;
    }
    if (it.code == 51) {
      EXPECT_NEAR(it.p[0], 30.0, 1e-9);
    }
    if (it.code == 50) {
      EXPECT_NEAR(it.p[0], 45.0, 1e-9);
    }
  }
  AcDbViewTableRecord view;
  view.setViewTwist(-kPi / 2);
  MemoryDxfFiler wout(AcDb::kCopyFiler);
  view.dxfOutFields(&wout);
  AcDbViewTableRecord back;
  wout.rewind();
  ASSERT_EQ(back.dxfInFields(&wout), Acad::eOk);
  EXPECT_NEAR(back.viewTwist(), -kPi / 2, 1e-12);
}

// Files of other writers put a kind's groups in their own order and carry
// variables this host does not model: known groups still reach their
// fields, the others are kept in the order read.
TEST(RecordFields, LateAndUnknownGroupsOfADimensionStyle) {
  MemoryDxfFiler in;
  in.writeObjectId(330, AcDbObjectId());
  in.writeString(100, u"AcDbSymbolTableRecord");
  in.writeString(100, u"AcDbDimStyleTableRecord");
  in.writeString(2, u"ISO-25");
  in.writeInt16(70, 0);
  in.writeDouble(41, 2.5);
  in.writeInt16(69, 1);            // DIMTFILL: not modelled
  in.writeDouble(140, 3.5);        // DIMTXT after it
  in.writeInt16(290, 1);           // DIMFXLON: not modelled
  in.writeInt16(77, 1);            // DIMTAD
  in.writeString(1001, u"ACAD");   // extended data ends the record
  AcDbDimStyleTableRecord ds;
  ASSERT_EQ(ds.dxfInFields(&in), Acad::eOk);
  EXPECT_EQ(in.peekCode(), 1001);
  EXPECT_EQ(ds.name(), u"ISO-25");
  EXPECT_DOUBLE_EQ(ds.dimasz(), 2.5);
  EXPECT_DOUBLE_EQ(ds.dimtxt(), 3.5);
  EXPECT_EQ(ds.dimtad(), 1);
  EXPECT_DOUBLE_EQ(ds.dimscale(), 1.0);  // not in the file: the default
  MemoryDxfFiler out(AcDb::kFileFiler);
  ds.dxfOutFields(&out);
  std::vector<int> tail;
  for (size_t i = out.items().size() - 3; i < out.items().size(); ++i) tail.push_back(out.items()[i].code);
  EXPECT_EQ(tail, (std::vector<int>{372, 69, 290}));  // after the known ones, as read
}

TEST(RecordFields, IteratorsWalkBothWaysAndSeek) {
  AcDbDatabase db(true);
  AcDbLinetypeTable* table = nullptr;
  ASSERT_EQ(db.getLinetypeTable(table), Acad::eOk);
  AcDbLinetypeTableIterator* it = nullptr;
  table->newIterator(it, false);
  std::vector<std::u16string> back;
  for (; !it->done(); it->step(false)) {
    AcDbLinetypeTableRecord* rec = nullptr;
    ASSERT_EQ(it->getRecord(rec), Acad::eOk);
    back.push_back(rec->name());
    rec->close();
  }
  EXPECT_EQ(back, (std::vector<std::u16string>{u"Continuous", u"ByLayer", u"ByBlock"}));
  AcDbObjectId byLayer;
  table->getAt(u"bylayer", byLayer);
  ASSERT_EQ(it->seek(byLayer), Acad::eOk);
  AcDbObjectId at;
  it->getRecordId(at);
  EXPECT_EQ(at, byLayer);
  EXPECT_EQ(it->seek(db.layerTableId()), Acad::eKeyNotFound);
  delete it;
  table->close();
}

TEST(LinetypePattern, ElementsAreWrittenAsFilesHaveThem) {
  AcDbLinetypeTableRecord lt;
  lt.setName(u"GAS_LINE");
  lt.setComments(u"Gas line ----GAS----");
  lt.setPatternLength(1.75);
  ASSERT_EQ(lt.setNumDashes(3), Acad::eOk);
  lt.setDashLengthAt(0, 1.25);
  lt.setDashLengthAt(1, -0.25);
  lt.setTextAt(1, u"GAS");
  lt.setShapeScaleAt(1, 0.1);
  lt.setShapeRotationAt(1, 3.14159265358979323846 / 2);
  lt.setShapeOffsetAt(1, AcGeVector2d(-0.1, -0.05));
  lt.setDashLengthAt(2, -0.25);
  EXPECT_EQ(lt.setDashLengthAt(3, 1.0), Acad::eInvalidIndex);
  MemoryDxfFiler out(AcDb::kFileFiler);
  lt.dxfOutFields(&out);
  std::vector<int> codes;
  for (const DxfItem& g : out.items()) codes.push_back(g.code);
  EXPECT_EQ(codes, (std::vector<int>{330, 100, 100, 2, 70, 3, 72, 73, 40, 49, 74, 49, 74, 75, 340, 46, 50, 44, 45,
                                     9, 49, 74}));
  EXPECT_DOUBLE_EQ(out.items()[16].p[0], 90.0);  // degrees in the file
  EXPECT_EQ(out.items()[12].i, 2);               // a text element
  AcDbLinetypeTableRecord back;
  out.rewind();
  ASSERT_EQ(back.dxfInFields(&out), Acad::eOk);
  EXPECT_EQ(back.numDashes(), 3);
  const ACHAR* text = nullptr;
  back.textAt(1, text);
  EXPECT_EQ(std::u16string(text), u"GAS");
  EXPECT_NEAR(back.shapeRotationAt(1), 3.14159265358979323846 / 2, 1e-12);
  EXPECT_DOUBLE_EQ(back.patternLength(), 1.75);
}

}  // namespace
