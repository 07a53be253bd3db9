// Dictionaries and the objects filed in them: ownership, keys, erased
// entries, extension dictionaries, xrecords, groups, layouts, the draw
// order table, and the schemas of these classes through both filers.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "host/db/dbobjects.h"
#include "host/db/internal.h"
#include "host/db/memfiler.h"
#include "host/dbdict.h"
#include "host/dbents.h"
#include "host/dbgroup.h"
#include "host/dblayout.h"
#include "host/dbmstyle.h"
#include "host/dbsymtb.h"
#include "host/dbxrecrd.h"
#include "host/sorttab.h"

using zepk::db::DxfItem;
using zepk::db::MemoryDwgFiler;
using zepk::db::MemoryDxfFiler;

namespace {

std::vector<std::u16string> keys(const AcDbDictionary* d) {
  std::vector<std::u16string> out;
  AcDbDictionaryIterator* it = d->newIterator();
  for (; !it->done(); it->next()) out.push_back(it->name());
  delete it;
  return out;
}

std::vector<int> codes(const MemoryDxfFiler& f) {
  std::vector<int> out;
  for (const DxfItem& it : f.items()) out.push_back(it.code);
  return out;
}

class DictionariesTest : public ::testing::Test {
 protected:
  AcDbDatabase db{true};

  // A new dictionary filed in the named objects dictionary, open for write.
  AcDbDictionary* newDictionary(const ACHAR* key, bool hard) {
    AcDbDictionary* nod = nullptr;
    EXPECT_EQ(db.getNamedObjectsDictionary(nod, AcDb::kForWrite), Acad::eOk);
    auto* d = new AcDbDictionary;
    d->setTreatElementsAsHard(hard);
    AcDbObjectId id;
    EXPECT_EQ(nod->setAt(key, d, id), Acad::eOk);
    nod->close();
    return d;
  }
  AcDbObjectId addXrecord(AcDbDictionary* d, const ACHAR* key) {
    auto* x = new AcDbXrecord;
    AcDbObjectId id;
    EXPECT_EQ(d->setAt(key, x, id), Acad::eOk);
    x->close();
    return id;
  }
  AcDbObjectId addLine(double x) {
    AcDbBlockTable* blocks = nullptr;
    db.getBlockTable(blocks);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
    blocks->close();
    auto* line = new AcDbLine(AcGePoint3d(x, 0, 0), AcGePoint3d(x, 1, 0));
    AcDbObjectId id;
    EXPECT_EQ(model->appendAcDbEntity(id, line), Acad::eOk);
    line->close();
    model->close();
    return id;
  }
};

TEST_F(DictionariesTest, EntriesAreOwnedFiledByKeyAndKeptInKeyOrder) {
  AcDbDictionary* d = newDictionary(u"ZEPK_DICT", false);
  AcDbObjectId dictId = d->objectId();
  EXPECT_EQ(d->ownerId(), db.namedObjectsDictionaryId());
  AcDbObjectId b = addXrecord(d, u"object_to_area_2");
  AcDbObjectId a = addXrecord(d, u"Object_To_Area_1");
  AcDbObjectId c = addXrecord(d, u"object_to_area_10");
  EXPECT_EQ(keys(d), (std::vector<std::u16string>{u"Object_To_Area_1", u"object_to_area_10", u"object_to_area_2"}));
  EXPECT_EQ(d->numEntries(), 3);
  {
    AcDbObjectPointer<AcDbXrecord> x(a, AcDb::kForRead);
    EXPECT_EQ(x->ownerId(), dictId);  // a new object becomes the dictionary's
  }
  AcDbObjectId found;
  EXPECT_EQ(d->getAt(u"OBJECT_TO_AREA_1", found), Acad::eOk);
  EXPECT_EQ(found, a);
  EXPECT_EQ(d->getAt(u"object_to_area_3", found), Acad::eKeyNotFound);  // the key is free
  EXPECT_EQ(d->getAt(nullptr, found), Acad::eInvalidKey);
  std::u16string name;
  EXPECT_EQ(d->nameAt(c, name), Acad::eOk);
  EXPECT_EQ(name, u"object_to_area_10");
  AcDbXrecord* typed = nullptr;
  ASSERT_EQ(d->getAt(u"object_to_area_2", typed, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(typed->objectId(), b);
  typed->close();

  // Rename: a taken key is refused, a missing one is not found.
  EXPECT_EQ(d->setName(u"object_to_area_2", u"OBJECT_TO_AREA_10"), Acad::eDuplicateKey);
  EXPECT_EQ(d->setName(u"nothing", u"x"), Acad::eKeyNotFound);
  EXPECT_EQ(d->setName(u"object_to_area_2", u"area_b"), Acad::eOk);
  EXPECT_FALSE(d->has(u"object_to_area_2"));
  EXPECT_TRUE(d->has(u"AREA_B"));
  EXPECT_EQ(d->nameAt(b, name), Acad::eOk);
  EXPECT_EQ(name, u"area_b");

  // Remove takes the entry out and leaves the object as it is.
  AcDbObjectId removed;
  EXPECT_EQ(d->remove(u"area_b", removed), Acad::eOk);
  EXPECT_EQ(removed, b);
  EXPECT_FALSE(d->has(b));
  EXPECT_FALSE(b.isErased());
  EXPECT_EQ(d->remove(u"area_b"), Acad::eKeyNotFound);
  EXPECT_EQ(d->remove(c), Acad::eOk);

  // The star asks for an anonymous key.
  AcDbObjectId anon1 = addXrecord(d, u"*"), anon2 = addXrecord(d, u"*");
  EXPECT_EQ(d->nameAt(anon1, name), Acad::eOk);
  EXPECT_EQ(name, u"*A1");
  d->nameAt(anon2, name);
  EXPECT_EQ(name, u"*A2");
  d->close();

  // A dictionary open for read is not changed.
  AcDbObjectPointer<AcDbDictionary> reading(dictId, AcDb::kForRead);
  auto* x = new AcDbXrecord;
  EXPECT_EQ(reading->setAt(u"late", x, found), Acad::eNotOpenForWrite);
  delete x;
  EXPECT_EQ(reading->remove(u"*A1"), Acad::eNotOpenForWrite);
}

TEST_F(DictionariesTest, ErasedEntriesAreSkippedAndReplacedEntriesErased) {
  AcDbDictionary* d = newDictionary(u"SETTINGS", true);
  AcDbObjectId first = addXrecord(d, u"scale");
  {
    AcDbObjectPointer<AcDbXrecord> x(first, AcDb::kForWrite);
    x->erase();
  }
  EXPECT_FALSE(d->has(u"scale"));
  EXPECT_EQ(d->numEntries(), 0);
  EXPECT_TRUE(keys(d).empty());
  AcDbObjectId second = addXrecord(d, u"SCALE");
  EXPECT_TRUE(d->has(u"scale"));
  // Filing another object under the key erases the one the dictionary owned.
  AcDbObjectId third = addXrecord(d, u"scale");
  EXPECT_TRUE(second.isErased());
  AcDbObjectId now;
  d->getAt(u"scale", now);
  EXPECT_EQ(now, third);

  // Erasing the dictionary erases what it owns; undo brings both back.
  d->close();
  db.beginUndoMark();
  {
    AcDbObjectPointer<AcDbDictionary> w(d->objectId(), AcDb::kForWrite);
    ASSERT_EQ(w->erase(), Acad::eOk);
  }
  db.endUndoMark();
  EXPECT_TRUE(third.isErased());
  ASSERT_TRUE(db.undoBack());
  EXPECT_FALSE(third.isErased());
  AcDbObjectPointer<AcDbDictionary> r(d->objectId(), AcDb::kForRead);
  EXPECT_TRUE(r->has(u"scale"));
}

TEST_F(DictionariesTest, FilesWriteSoftAndHardOwnersApart) {
  AcDbDictionary* soft = newDictionary(u"SOFT", false);
  addXrecord(soft, u"one");
  MemoryDxfFiler out(AcDb::kFileFiler, &db);
  ASSERT_EQ(soft->dxfOutFields(&out), Acad::eOk);
  // No 280 when the entries are soft: only a hard owner says so.
  EXPECT_EQ(codes(out), (std::vector<int>{330, 100, 281, 3, 350}));
  soft->setTreatElementsAsHard(true);
  MemoryDxfFiler hard(AcDb::kFileFiler, &db);
  soft->dxfOutFields(&hard);
  EXPECT_EQ(codes(hard), (std::vector<int>{330, 100, 280, 281, 3, 360}));
  soft->close();

  // Read back: the same entries, and a 360 entry makes a hard owner.
  AcDbDictionary back;
  hard.rewind();
  ASSERT_EQ(back.dxfInFields(&hard), Acad::eOk);
  EXPECT_TRUE(back.isTreatElementsAsHard());
  EXPECT_EQ(keys(&back), (std::vector<std::u16string>{u"one"}));
  MemoryDwgFiler dwg(AcDb::kCopyFiler, &db);
  back.dwgOutFields(&dwg);
  AcDbDictionary copy;
  dwg.rewind();
  ASSERT_EQ(copy.dwgInFields(&dwg), Acad::eOk);
  EXPECT_EQ(keys(&copy), (std::vector<std::u16string>{u"one"}));
  EXPECT_TRUE(copy.isTreatElementsAsHard());
}

TEST_F(DictionariesTest, AnObjectGetsOneExtensionDictionary) {
  AcDbObjectId layerId = zepk::db::defaultLayerId(&db);
  {
    AcDbObjectPointer<AcDbLayerTableRecord> r(layerId, AcDb::kForRead);
    EXPECT_EQ(r->createExtensionDictionary(), Acad::eNotOpenForWrite);
    EXPECT_TRUE(r->extensionDictionary().isNull());
  }
  AcDbObjectId dictId;
  {
    AcDbObjectPointer<AcDbLayerTableRecord> w(layerId, AcDb::kForWrite);
    ASSERT_EQ(w->createExtensionDictionary(), Acad::eOk);
    dictId = w->extensionDictionary();
    ASSERT_FALSE(dictId.isNull());
    EXPECT_EQ(w->createExtensionDictionary(), Acad::eOk);  // it has one: nothing new
    EXPECT_EQ(w->extensionDictionary(), dictId);
  }
  AcDbObjectPointer<AcDbDictionary> x(dictId, AcDb::kForRead);
  EXPECT_EQ(x->ownerId(), layerId);
  EXPECT_TRUE(x->isTreatElementsAsHard());
  EXPECT_TRUE(x->hasPersistentReactor(layerId));
  // Files name it in the owner's groups.
  AcDbObjectPointer<AcDbLayerTableRecord> r(layerId, AcDb::kForRead);
  MemoryDxfFiler out(AcDb::kFileFiler, &db);
  r->dxfOutFields(&out);
  ASSERT_GE(out.items().size(), 3u);
  EXPECT_EQ(out.items()[0].s, u"{ACAD_XDICTIONARY");
  EXPECT_EQ(out.items()[1].id, dictId);
  AcDbXrecord free;
  EXPECT_EQ(free.createExtensionDictionary(), Acad::eNotInDatabase);
}

// The groups of every kind an xrecord holds, through every road they take.
TEST_F(DictionariesTest, XrecordsKeepEveryKindOfGroup) {
  AcDbDictionary* d = newDictionary(u"ESTATE_DICT", false);
  AcDbObjectId xid = addXrecord(d, u"LAYERRECORD");
  d->close();
  const ads_point pt = {1.5, -2.0, 3.25};
  ads_name ename = {0, 0};
  ename[0] = xid.asOldId();
  const char bytes[] = {'\x01', '\x00', '\xff'};
  ads_binary chunk{3, const_cast<char*>(bytes)};
  resbuf* list = acutBuildList(1, u"一层", 300, u"二层", 10, pt, 40, 2.5, 70, -3, 90, 70000, 160, int64_t(1) << 40,
                               290, 1, 330, ename, 310, &chunk, 1000, u"text", 1040, 0.5, 1070, 12, 1071, 123456, 0);
  ASSERT_NE(list, nullptr);
  {
    AcDbObjectPointer<AcDbXrecord> x(xid, AcDb::kForWrite);
    ASSERT_EQ(x->setFromRbChain(list), Acad::eOk);
    // Codes no list may hold are refused, and the list stays.
    resbuf* bad = acutBuildList(5, u"1F", 0);
    EXPECT_EQ(x->setFromRbChain(bad), Acad::eInvalidResBuf);
    acutRelRb(bad);
    resbuf* app = acutBuildList(1001, u"APP", 0);
    EXPECT_EQ(x->setFromRbChain(app), Acad::eInvalidResBuf);
    acutRelRb(app);
  }
  auto check = [&](const AcDbXrecord* x, const char* road) {
    resbuf* got = nullptr;
    ASSERT_EQ(x->rbChain(&got), Acad::eOk);
    const resbuf* p = got;
    const resbuf* q = list;
    for (; p && q; p = p->rbnext, q = q->rbnext) {
      ASSERT_EQ(p->restype, q->restype) << road;
      switch (p->restype) {
        case 1:
        case 300:
        case 1000: EXPECT_EQ(std::u16string(p->resval.rstring), std::u16string(q->resval.rstring)) << road; break;
        case 10:
          for (int k = 0; k < 3; ++k) EXPECT_EQ(p->resval.rpoint[k], q->resval.rpoint[k]) << road;
          break;
        case 40:
        case 1040: EXPECT_EQ(p->resval.rreal, q->resval.rreal) << road; break;
        case 70:
        case 290:
        case 1070: EXPECT_EQ(p->resval.rint, q->resval.rint) << road; break;
        case 90:
        case 1071: EXPECT_EQ(p->resval.rlong, q->resval.rlong) << road; break;
        case 160: EXPECT_EQ(p->resval.mnInt64, q->resval.mnInt64) << road; break;
        case 330: EXPECT_EQ(p->resval.rlname[0], q->resval.rlname[0]) << road; break;
        case 310:
          ASSERT_EQ(p->resval.rbinary.clen, 3) << road;
          EXPECT_EQ(std::memcmp(p->resval.rbinary.buf, bytes, 3), 0) << road;
          break;
      }
    }
    EXPECT_EQ(p, nullptr) << road;
    EXPECT_EQ(q, nullptr) << road;
    acutRelRb(got);
  };
  AcDbObjectPointer<AcDbXrecord> x(xid, AcDb::kForRead);
  check(x.object(), "rbChain");

  MemoryDxfFiler dxf(AcDb::kFileFiler, &db);
  ASSERT_EQ(x->dxfOutFields(&dxf), Acad::eOk);
  EXPECT_EQ(dxf.items()[1].s, u"AcDbXrecord");
  EXPECT_EQ(dxf.items()[2].code, 280);  // the cloning flag before the list
  AcDbXrecord viaDxf;
  dxf.rewind();
  ASSERT_EQ(viaDxf.dxfInFields(&dxf), Acad::eOk);
  EXPECT_TRUE(dxf.atEOF());
  check(&viaDxf, "DXF");

  MemoryDwgFiler dwg(AcDb::kCopyFiler, &db);
  ASSERT_EQ(x->dwgOutFields(&dwg), Acad::eOk);
  AcDbXrecord viaDwg;
  dwg.rewind();
  ASSERT_EQ(viaDwg.dwgInFields(&dwg), Acad::eOk);
  check(&viaDwg, "DWG");
  acutRelRb(list);

  AcDbXrecord empty;
  resbuf* none = reinterpret_cast<resbuf*>(1);
  EXPECT_EQ(empty.rbChain(&none), Acad::eOk);
  EXPECT_EQ(none, nullptr);
}

TEST_F(DictionariesTest, GroupsAreNamedByTheirDictionaryAndWatchTheirEntities) {
  AcDbObjectId a = addLine(0), b = addLine(1), c = addLine(2);
  AcDbDictionary* groups = nullptr;
  ASSERT_EQ(db.getGroupDictionary(groups, AcDb::kForWrite), Acad::eOk);
  auto* g = new AcDbGroup(u"boundary of lot 7");
  AcDbObjectId gid;
  ASSERT_EQ(groups->setAt(u"LOT7", g, gid), Acad::eOk);
  groups->close();
  EXPECT_EQ(g->name(), u"LOT7");
  ASSERT_EQ(g->append(b), Acad::eOk);
  ASSERT_EQ(g->append(AcDbObjectIdArray{c}), Acad::eOk);
  ASSERT_EQ(g->prepend(a), Acad::eOk);
  EXPECT_EQ(g->append(a), Acad::eDuplicateKey);
  EXPECT_EQ(g->append(AcDbObjectId()), Acad::eNullObjectId);
  AcDbObjectIdArray ids;
  EXPECT_EQ(g->allEntityIds(ids), 3u);
  EXPECT_EQ(ids, (AcDbObjectIdArray{a, b, c}));
  {
    AcDbObjectPointer<AcDbLine> line(b, AcDb::kForRead);
    EXPECT_TRUE(line->hasPersistentReactor(gid));
  }
  ASSERT_EQ(g->remove(b), Acad::eOk);
  EXPECT_EQ(g->remove(b), Acad::eKeyNotFound);
  {
    AcDbObjectPointer<AcDbLine> line(b, AcDb::kForRead);
    EXPECT_FALSE(line->hasPersistentReactor(gid));
  }
  ASSERT_EQ(g->setName(u"Lot 7"), Acad::eOk);
  EXPECT_EQ(g->name(), u"Lot 7");
  g->close();

  // An erased entity drops out of what the group shows and what files get.
  {
    AcDbObjectPointer<AcDbLine> line(a, AcDb::kForWrite);
    line->erase();
  }
  AcDbObjectPointer<AcDbGroup> r(gid, AcDb::kForRead);
  EXPECT_EQ(r->numEntities(), 1u);
  EXPECT_FALSE(r->has(a));
  MemoryDxfFiler out(AcDb::kFileFiler, &db);
  r->dxfOutFields(&out);
  EXPECT_EQ(codes(out), (std::vector<int>{330, 100, 300, 70, 71, 340}));
  EXPECT_EQ(out.items()[2].s, u"boundary of lot 7");
  EXPECT_EQ(out.items().back().id, c);
  AcDbGroup back;
  out.rewind();
  ASSERT_EQ(back.dxfInFields(&out), Acad::eOk);
  EXPECT_EQ(back.description(), u"boundary of lot 7");
  EXPECT_TRUE(back.isSelectable());
  EXPECT_TRUE(back.has(c));
}

TEST_F(DictionariesTest, LayoutsRenameTheirEntry) {
  AcDbDictionary* layouts = nullptr;
  ASSERT_EQ(db.getLayoutDictionary(layouts), Acad::eOk);
  AcDbObjectId sheet, model;
  layouts->getAt(u"Layout1", sheet);
  layouts->getAt(u"MODEL", model);
  layouts->close();
  {
    AcDbObjectPointer<AcDbLayout> l(sheet, AcDb::kForWrite);
    EXPECT_EQ(l->setLayoutName(u"Model"), Acad::eInvalidInput);
    EXPECT_EQ(l->setLayoutName(u"宗地图"), Acad::eOk);
  }
  {
    AcDbObjectPointer<AcDbLayout> m(model, AcDb::kForWrite);
    EXPECT_EQ(m->setLayoutName(u"Sheet"), Acad::eInvalidInput);
    EXPECT_TRUE(m->modelType());
  }
  ASSERT_EQ(db.getLayoutDictionary(layouts), Acad::eOk);
  EXPECT_EQ(keys(layouts), (std::vector<std::u16string>{u"Model", u"宗地图"}));
  layouts->close();
}

TEST_F(DictionariesTest, DrawOrderHandsOutTheBlocksSortHandles) {
  AcDbObjectIdArray ents;
  for (int i = 0; i < 4; ++i) ents.push_back(addLine(i));
  AcDbBlockTable* blocks = nullptr;
  db.getBlockTable(blocks);
  AcDbBlockTableRecord* model = nullptr;
  blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
  blocks->close();
  AcDbSortentsTable* sort = nullptr;
  EXPECT_EQ(model->getSortentsTable(sort, AcDb::kForWrite, false), Acad::eKeyNotFound);
  ASSERT_EQ(model->getSortentsTable(sort, AcDb::kForWrite, true), Acad::eOk);
  AcDbObjectId sortId = sort->objectId();
  EXPECT_EQ(sort->blockId(), model->objectId());
  {
    AcDbObjectPointer<AcDbDictionary> x(model->extensionDictionary(), AcDb::kForRead);
    AcDbObjectId found;
    EXPECT_EQ(x->getAt(u"ACAD_SORTENTS", found), Acad::eOk);
    EXPECT_EQ(found, sortId);
  }
  AcDbObjectIdArray order;
  sort->getFullDrawOrder(order);
  EXPECT_EQ(order, ents);  // without entries: the entities' own handles

  ASSERT_EQ(sort->moveToTop(AcDbObjectIdArray{ents[0]}), Acad::eOk);
  ASSERT_EQ(sort->moveToBottom(AcDbObjectIdArray{ents[3]}), Acad::eOk);
  ASSERT_EQ(sort->moveAbove(AcDbObjectIdArray{ents[1]}, ents[2]), Acad::eOk);
  sort->getFullDrawOrder(order);
  EXPECT_EQ(order, (AcDbObjectIdArray{ents[3], ents[2], ents[1], ents[0]}));
  EXPECT_TRUE(sort->firstEntityIsDrawnBeforeSecond(ents[2], ents[1]));
  ASSERT_EQ(sort->swapOrder(ents[3], ents[0]), Acad::eOk);
  sort->getFullDrawOrder(order);
  EXPECT_EQ(order, (AcDbObjectIdArray{ents[0], ents[2], ents[1], ents[3]}));
  EXPECT_EQ(sort->moveBelow(AcDbObjectIdArray{ents[1]}, ents[1]), Acad::eInvalidInput);
  EXPECT_EQ(sort->moveToTop(AcDbObjectIdArray{sortId}), Acad::eInvalidInput);  // not an entity of the block

  // The sort handles are the entities' handles, handed out anew.
  std::vector<uint64_t> own, given;
  for (const AcDbObjectId& id : ents) {
    AcDbHandle h;
    sort->getSortHandle(id, h);
    own.push_back(id.handle().value());
    given.push_back(h.value());
  }
  std::sort(given.begin(), given.end());
  EXPECT_EQ(given, own);

  // Files write pairs of entity and sort handle; read back, the order holds.
  MemoryDxfFiler out(AcDb::kFileFiler, &db);
  sort->dxfOutFields(&out);
  std::vector<int> c = codes(out);
  ASSERT_GE(c.size(), 5u);
  EXPECT_EQ(std::vector<int>(c.begin() + 3, c.begin() + 5), (std::vector<int>{331, 5}));
  sort->close();
  model->close();
  AcDbSortentsTable back;
  out.rewind();
  ASSERT_EQ(back.dxfInFields(&out), Acad::eOk);
  AcDbObjectIdArray backOrder;
  back.getFullDrawOrder(backOrder);
  EXPECT_EQ(backOrder, (AcDbObjectIdArray{ents[0], ents[2], ents[1], ents[3]}));
}

// The other classes' schemas, filed out with content and read back through
// both filers.
TEST_F(DictionariesTest, ObjectSchemasComeBackThroughBothFilers) {
  auto* style = new AcDbMlineStyle;
  style->setName(u"Wall");
  style->initMlineStyle();
  style->addElement(0.0, 1, u"DASHED");
  style->setStartAngle(3.14159265358979323846 / 4);
  std::unique_ptr<AcDbMlineStyle> styleOwner(style);

  AcDbObjectId layoutId;
  AcDbDictionary* layouts = nullptr;
  db.getLayoutDictionary(layouts);
  layouts->getAt(u"Layout1", layoutId);
  layouts->close();
  AcDbObjectPointer<AcDbLayout> layout(layoutId, AcDb::kForRead);

  AcDbDictionaryWithDefault withDefault;
  withDefault.setDefaultId(layoutId);

  const AcDbObject* objects[] = {style, layout.object(), &withDefault};
  for (const AcDbObject* obj : objects) {
    MemoryDxfFiler out(AcDb::kCopyFiler, &db);
    ASSERT_EQ(obj->dxfOutFields(&out), Acad::eOk);
    std::unique_ptr<AcDbObject> viaDxf(static_cast<AcDbObject*>(obj->isA()->create()));
    out.rewind();
    ASSERT_EQ(viaDxf->dxfInFields(&out), Acad::eOk) << obj->isA()->dxfName()[0] + 0;
    EXPECT_TRUE(out.atEOF());
    MemoryDwgFiler dwg(AcDb::kCopyFiler, &db);
    viaDxf->dwgOutFields(&dwg);
    std::unique_ptr<AcDbObject> viaDwg(static_cast<AcDbObject*>(obj->isA()->create()));
    dwg.rewind();
    ASSERT_EQ(viaDwg->dwgInFields(&dwg), Acad::eOk);
    MemoryDxfFiler again(AcDb::kCopyFiler, &db);
    viaDwg->dxfOutFields(&again);
    ASSERT_EQ(again.items().size(), out.items().size());
    for (size_t i = 0; i < out.items().size(); ++i)
      EXPECT_TRUE(zepk::db::sameItem(out.items()[i], again.items()[i])) << "group " << out.items()[i].code;
  }
  // The multiline style: three lines by offset, largest first.
  MemoryDxfFiler out(AcDb::kFileFiler);
  style->dxfOutFields(&out);
  std::vector<int> c = codes(out);
  EXPECT_EQ(c, (std::vector<int>{330, 100, 2, 70, 3, 62, 51, 52, 71, 49, 62, 6, 49, 62, 6, 49, 62, 6}));
  EXPECT_EQ(out.items()[14].s, u"DASHED");
  EXPECT_DOUBLE_EQ(out.items()[6].p[0], 45.0);
  // A layout's two parts, each under its marker.
  MemoryDxfFiler lay(AcDb::kFileFiler, &db);
  layout->dxfOutFields(&lay);
  int markers = 0;
  for (const DxfItem& it : lay.items())
    if (it.code == 100) {
      EXPECT_EQ(it.s, markers++ ? u"AcDbLayout" : u"AcDbPlotSettings");
    }
  EXPECT_EQ(markers, 2);
}

}  // namespace
