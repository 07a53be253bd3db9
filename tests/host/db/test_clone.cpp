// Copying objects within a drawing and between drawings, and drawings as
// files: what comes along with a copy, how references are translated, how
// names both drawings have are merged, and what a reader refuses.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <algorithm>
#include <string>
#include <vector>

#include "host/db/dbobjects.h"
#include "host/db/dxffile.h"
#include "host/dbdict.h"
#include "host/dbents.h"
#include "host/dbidmap.h"
#include "host/dbsymtb.h"
#include "host/dbxrecrd.h"

namespace {

AcDbObjectId spaceId(AcDbDatabase* db, const ACHAR* name = ACDB_MODEL_SPACE) {
  AcDbBlockTable* t = nullptr;
  EXPECT_EQ(db->getBlockTable(t, AcDb::kForRead), Acad::eOk);
  AcDbObjectId id;
  t->getAt(name, id);
  t->close();
  return id;
}

template <class E>
AcDbObjectId append(AcDbDatabase* db, E* ent, AcDbObjectId block = {}) {
  AcDbBlockTableRecord* b = nullptr;
  EXPECT_EQ(acdbOpenObject(b, block.isNull() ? spaceId(db) : block, AcDb::kForWrite), Acad::eOk);
  AcDbObjectId id;
  EXPECT_EQ(b->appendAcDbEntity(id, ent), Acad::eOk);
  ent->close();
  b->close();
  return id;
}

AcDbObjectId makeLayer(AcDbDatabase* db, const ACHAR* name, int colour, const ACHAR* linetype = nullptr) {
  AcDbLinetypeTable* lt = nullptr;
  AcDbObjectId ltId;
  if (linetype) {
    EXPECT_EQ(db->getLinetypeTable(lt, AcDb::kForWrite), Acad::eOk);
    if (lt->getAt(linetype, ltId) != Acad::eOk) {
      auto* rec = new AcDbLinetypeTableRecord;
      rec->setName(linetype);
      static_cast<AcDbSymbolTable*>(lt)->add(ltId, rec);
      rec->close();
    }
    lt->close();
  }
  AcDbLayerTable* t = nullptr;
  EXPECT_EQ(db->getLayerTable(t, AcDb::kForWrite), Acad::eOk);
  auto* rec = new AcDbLayerTableRecord;
  rec->setName(name);
  rec->setColorIndex(static_cast<Adesk::Int16>(colour));
  if (!ltId.isNull()) rec->setLinetypeObjectId(ltId);
  AcDbObjectId id;
  EXPECT_EQ(static_cast<AcDbSymbolTable*>(t)->add(id, rec), Acad::eOk);
  rec->close();
  t->close();
  return id;
}

AcDbObjectId lineOn(AcDbDatabase* db, const ACHAR* layer, double x, AcDbObjectId block = {}) {
  auto* line = new AcDbLine(AcGePoint3d(x, 0, 0), AcGePoint3d(x + 1, 2, 0));
  line->setDatabaseDefaults(db);
  if (layer) line->setLayer(layer);
  return append(db, line, block);
}

AcDbObjectIdArray entitiesOf(AcDbObjectId block) {
  AcDbObjectIdArray out;
  AcDbBlockTableRecord* b = nullptr;
  if (acdbOpenObject(b, block, AcDb::kForRead) != Acad::eOk) return out;
  AcDbBlockTableRecordIterator* it = nullptr;
  b->newIterator(it);
  for (; !it->done(); it->step()) {
    AcDbObjectId id;
    it->getEntityId(id);
    out.push_back(id);
  }
  delete it;
  b->close();
  return out;
}

AcDbObjectId copyOf(const AcDbIdMapping& map, AcDbObjectId id) {
  AcDbIdPair p(id, AcDbObjectId(), false);
  return map.compute(p) ? p.value() : AcDbObjectId();
}

int layerColour(AcDbObjectId layer) {
  AcDbLayerTableRecord* r = nullptr;
  if (acdbOpenObject(r, layer, AcDb::kForRead) != Acad::eOk) return -1;
  int c = r->colorIndex();
  r->close();
  return c;
}

std::u16string nameOf(AcDbObjectId rec) {
  AcDbSymbolTableRecord* r = nullptr;
  if (acdbOpenObject(r, rec, AcDb::kForRead) != Acad::eOk) return u"?";
  std::u16string n = r->name();
  r->close();
  return n;
}

struct CopyWatcher : AcDbObjectReactor {
  int copies = 0;
  AcDbObjectId lastCopy;
  void copied(const AcDbObject*, const AcDbObject* copy) override {
    ++copies;
    lastCopy = copy->objectId();
  }
};

// ---------------------------------------------------------------- within a drawing

TEST(DeepClone, CopiesEntitiesIntoTheSpaceWithNewHandlesAndTheSameLayer) {
  AcDbDatabase db(true);
  AcDbObjectId layer = makeLayer(&db, u"SURVEY", 3);
  AcDbObjectId a = lineOn(&db, u"SURVEY", 0);
  AcDbObjectId b = lineOn(&db, u"SURVEY", 5);
  {
    AcDbObjectPointer<AcDbLine> gone(b, AcDb::kForWrite);
    gone->erase();
  }
  CopyWatcher watcher;
  AcDbObjectId watcherObject;
  {
    auto* xr = new AcDbXrecord;
    db.addAcDbObject(watcherObject, xr);
    xr->close();
    AcDbObjectPointer<AcDbLine> src(a, AcDb::kForWrite);
    src->addReactor(&watcher);
    src->addPersistentReactor(watcherObject);
  }
  AcDbIdMapping map;
  ASSERT_EQ(db.deepCloneObjects({a, b}, spaceId(&db), map), Acad::eOk);
  AcDbObjectId copy = copyOf(map, a);
  ASSERT_FALSE(copy.isNull());
  EXPECT_NE(copy.handle(), a.handle());
  EXPECT_TRUE(copyOf(map, b).isNull()) << "an erased object is not copied";
  EXPECT_EQ(watcher.copies, 1);
  EXPECT_EQ(watcher.lastCopy, copy);

  AcDbObjectPointer<AcDbLine> line(copy, AcDb::kForRead);
  ASSERT_EQ(line.openStatus(), Acad::eOk);
  EXPECT_EQ(line->ownerId(), spaceId(&db));
  EXPECT_EQ(line->layerId(), layer);
  EXPECT_EQ(line->endPoint(), AcGePoint3d(1, 2, 0));
  // A persistent reactor of the original does not watch the copy unless
  // it chooses to when told of it.
  EXPECT_FALSE(line->hasPersistentReactor(watcherObject));
  AcDbObjectIdArray ents = entitiesOf(spaceId(&db));
  EXPECT_EQ(ents.back(), copy);
  AcDbIdPair pair(a, AcDbObjectId(), false);
  ASSERT_TRUE(map.compute(pair));
  EXPECT_TRUE(pair.isCloned());
  EXPECT_TRUE(pair.isPrimary());
  {
    AcDbObjectPointer<AcDbLine> src(a, AcDb::kForRead);
    src->removeReactor(&watcher);
  }
}

TEST(DeepClone, BringsWhatTheObjectOwnsAndLeavesTheOriginalAlone) {
  AcDbDatabase db(true);
  AcGePoint3dArray pts{AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0), AcGePoint3d(10, 10, 0)};
  auto* pline = new AcDb2dPolyline(AcDb::k2dSimplePoly, pts);
  AcDbObjectId src = append(&db, pline);
  // An extension dictionary with a record, and extended data.
  {
    AcDbObjectPointer<AcDb2dPolyline> p(src, AcDb::kForWrite);
    ASSERT_EQ(p->createExtensionDictionary(), Acad::eOk);
    AcDbObjectPointer<AcDbDictionary> ext(p->extensionDictionary(), AcDb::kForWrite);
    auto* xr = new AcDbXrecord;
    resbuf* rb = acutBuildList(1, u"parcel 7", 40, 12.5, 0);
    xr->setFromRbChain(rb);
    acutRelRb(rb);
    AcDbObjectId xrId;
    ASSERT_EQ(ext->setAt(u"ZEPK", xr, xrId), Acad::eOk);
    xr->close();
  }
  AcDbIdMapping map;
  ASSERT_EQ(db.deepCloneObjects({src}, spaceId(&db), map), Acad::eOk);
  AcDbObjectId copy = copyOf(map, src);
  AcDbObjectPointer<AcDb2dPolyline> c(copy, AcDb::kForRead);
  ASSERT_EQ(c.openStatus(), Acad::eOk);
  AcDbObjectIterator* it = c->vertexIterator();
  int n = 0;
  for (; !it->done(); it->step()) {
    AcDbObjectId v = it->objectId();
    EXPECT_EQ(v.database(), &db);
    AcDbObjectPointer<AcDb2dVertex> vert(v, AcDb::kForRead);
    ASSERT_EQ(vert.openStatus(), Acad::eOk);
    EXPECT_EQ(vert->ownerId(), copy) << "the copied vertices belong to the copy";
    EXPECT_FALSE(copyOf(map, v).isNull() && v == copy);
    ++n;
  }
  delete it;
  EXPECT_EQ(n, 3);
  // The copy's extension dictionary is its own, with a copy of the record.
  ASSERT_FALSE(c->extensionDictionary().isNull());
  AcDbObjectId srcExt;
  {
    AcDbObjectPointer<AcDb2dPolyline> s(src, AcDb::kForRead);
    srcExt = s->extensionDictionary();
  }
  EXPECT_NE(c->extensionDictionary(), srcExt);
  AcDbObjectPointer<AcDbDictionary> ext(c->extensionDictionary(), AcDb::kForRead);
  EXPECT_EQ(ext->ownerId(), copy);
  AcDbObjectId xrId;
  ASSERT_EQ(ext->getAt(u"ZEPK", xrId), Acad::eOk);
  AcDbObjectPointer<AcDbXrecord> xr(xrId, AcDb::kForRead);
  resbuf* rb = nullptr;
  xr->rbChain(&rb);
  ASSERT_NE(rb, nullptr);
  EXPECT_EQ(std::u16string(rb->resval.rstring), u"parcel 7");
  acutRelRb(rb);
}

TEST(DeepClone, RefusesAnOwnerOfAnotherDrawingAndUndoTakesCopiesBack) {
  AcDbDatabase db(true), other(true);
  AcDbObjectId a = lineOn(&db, nullptr, 0);
  AcDbIdMapping map;
  EXPECT_EQ(db.deepCloneObjects({a}, spaceId(&other), map), Acad::eWrongDatabase);
  size_t before = entitiesOf(spaceId(&db)).size();
  db.beginUndoMark();
  AcDbIdMapping map2;
  ASSERT_EQ(db.deepCloneObjects({a}, spaceId(&db), map2), Acad::eOk);
  db.endUndoMark();
  EXPECT_EQ(entitiesOf(spaceId(&db)).size(), before + 1);
  ASSERT_TRUE(db.undoBack());
  EXPECT_EQ(entitiesOf(spaceId(&db)).size(), before);
}

// ---------------------------------------------------------------- between drawings

TEST(WblockClone, BringsLayersLinetypesAndBlocksAndMergesNamesByTheRule) {
  AcDbDatabase src(true);
  AcDbObjectId survey = makeLayer(&src, u"SURVEY", 3, u"DASHED");
  AcDbObjectId onZero = lineOn(&src, nullptr, 0);
  AcDbObjectId onSurvey = lineOn(&src, u"SURVEY", 1);
  // A block with one line, and a reference to it.
  AcDbObjectId blockId;
  {
    AcDbBlockTable* t = nullptr;
    src.getBlockTable(t, AcDb::kForWrite);
    auto* rec = new AcDbBlockTableRecord;
    rec->setName(u"MARK");
    static_cast<AcDbSymbolTable*>(t)->add(blockId, rec);
    rec->close();
    t->close();
    lineOn(&src, u"SURVEY", 7, blockId);
  }
  auto* ref = new AcDbBlockReference(AcGePoint3d(3, 3, 0), blockId);
  ref->setDatabaseDefaults(&src);
  AcDbObjectId refId = append(&src, ref);

  for (AcDb::DuplicateRecordCloning drc : {AcDb::kDrcIgnore, AcDb::kDrcReplace, AcDb::kDrcMangleName}) {
    SCOPED_TRACE(static_cast<int>(drc));
    AcDbDatabase dest(true);
    AcDbObjectId destSurvey = makeLayer(&dest, u"SURVEY", 1);
    AcDbIdMapping map;
    ASSERT_EQ(src.wblockCloneObjects({onZero, onSurvey, refId}, spaceId(&dest), map, drc), Acad::eOk);
    AcDbObjectIdArray ents = entitiesOf(spaceId(&dest));
    ASSERT_EQ(ents.size(), 3u);
    for (AcDbObjectId e : ents) EXPECT_EQ(e.database(), &dest);

    AcDbObjectPointer<AcDbLine> l0(copyOf(map, onZero), AcDb::kForRead);
    ASSERT_EQ(l0.openStatus(), Acad::eOk);
    EXPECT_EQ(nameOf(l0->layerId()), u"0");
    EXPECT_EQ(l0->layerId().database(), &dest);
    AcDbObjectPointer<AcDbLine> l1(copyOf(map, onSurvey), AcDb::kForRead);
    AcDbObjectId layerThere = l1->layerId();
    EXPECT_EQ(layerThere.database(), &dest);
    if (drc == AcDb::kDrcIgnore) {
      EXPECT_EQ(layerThere, destSurvey);
      EXPECT_EQ(layerColour(layerThere), 1) << "the destination's layer is kept";
    } else if (drc == AcDb::kDrcReplace) {
      EXPECT_EQ(layerThere, destSurvey);
      EXPECT_EQ(layerColour(layerThere), 3) << "the destination's layer takes the source's values";
      AcDbObjectPointer<AcDbLayerTableRecord> lr(layerThere, AcDb::kForRead);
      EXPECT_EQ(nameOf(lr->linetypeObjectId()), u"DASHED");
      EXPECT_EQ(lr->linetypeObjectId().database(), &dest);
    } else {
      EXPECT_NE(layerThere, destSurvey);
      EXPECT_EQ(nameOf(layerThere), u"$0$SURVEY");
      EXPECT_EQ(layerColour(layerThere), 3);
    }
    // The block came along with its line, on the destination's records.
    AcDbObjectPointer<AcDbBlockReference> r(copyOf(map, refId), AcDb::kForRead);
    ASSERT_EQ(r.openStatus(), Acad::eOk);
    AcDbObjectId blockThere = r->blockTableRecord();
    EXPECT_EQ(blockThere.database(), &dest);
    EXPECT_EQ(nameOf(blockThere), u"MARK");
    AcDbObjectIdArray inBlock = entitiesOf(blockThere);
    ASSERT_EQ(inBlock.size(), 1u);
    AcDbObjectPointer<AcDbLine> bl(inBlock[0], AcDb::kForRead);
    EXPECT_EQ(bl->ownerId(), blockThere);
    EXPECT_EQ(bl->layerId().database(), &dest);
    // Nothing of the source changed.
    EXPECT_EQ(layerColour(survey), 3);
    EXPECT_EQ(entitiesOf(spaceId(&src)).size(), 3u);
  }
}

TEST(Insert, MakesABlockFromAnotherDrawingAndRefusesNamesInUse) {
  AcDbDatabase src(true);
  makeLayer(&src, u"PIPE", 5);
  lineOn(&src, u"PIPE", 0);
  lineOn(&src, u"PIPE", 4);
  AcDbDatabase dest(true);
  AcDbObjectId block;
  ASSERT_EQ(dest.insert(block, u"PIPES", &src), Acad::eOk);
  EXPECT_EQ(nameOf(block), u"PIPES");
  AcDbObjectIdArray ents = entitiesOf(block);
  ASSERT_EQ(ents.size(), 2u);
  AcDbObjectPointer<AcDbLine> l(ents[0], AcDb::kForRead);
  EXPECT_EQ(nameOf(l->layerId()), u"PIPE");
  EXPECT_EQ(layerColour(l->layerId()), 5);
  EXPECT_EQ(entitiesOf(spaceId(&src)).size(), 2u) << "the source keeps its entities";

  AcDbObjectId again;
  EXPECT_EQ(dest.insert(again, u"pipes", &src), Acad::eDuplicateRecordName);
  EXPECT_TRUE(again.isNull());
  EXPECT_EQ(dest.insert(again, u"SELF", &dest), Acad::eSelfReference);
}

// ---------------------------------------------------------------- drawings as files

class DrawingFiles : public ::testing::Test {
 protected:
  std::string dir_;
  void SetUp() override {
    char tmpl[] = "/tmp/zepk-clone-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    dir_ = tmpl;
  }
  void TearDown() override { std::system(("rm -rf '" + dir_ + "'").c_str()); }
  std::u16string path(const std::string& name) const {
    std::string p = dir_ + "/" + name;
    return std::u16string(p.begin(), p.end());
  }
  void write(const std::string& name, const std::string& bytes) const {
    std::ofstream(dir_ + "/" + name, std::ios::binary) << bytes;
  }
};

TEST_F(DrawingFiles, WblockSavesADrawingThatEzdxfReadsAndReadDwgFileReadsBack) {
  AcDbDatabase src(true);
  makeLayer(&src, u"BOUNDARY", 2);
  AcDbObjectId a = lineOn(&src, u"BOUNDARY", 0);
  lineOn(&src, nullptr, 9);  // not written
  AcDbDatabase* out = nullptr;
  ASSERT_EQ(src.wblock(out, {a}, AcGePoint3d(1, 2, 0)), Acad::eOk);
  std::unique_ptr<AcDbDatabase> owned(out);
  ASSERT_EQ(out->saveAs(path("part.dxf").c_str()), Acad::eOk);

  std::string check = "/usr/bin/python3 -c \""
                      "import ezdxf,sys\n"
                      "d=ezdxf.readfile(sys.argv[1])\n"
                      "a=d.audit()\n"
                      "assert not a.has_errors, a.errors\n"
                      "m=list(d.modelspace())\n"
                      "assert len(m)==1 and m[0].dxftype()=='LINE', m\n"
                      "assert m[0].dxf.layer=='BOUNDARY'\n"
                      "assert d.layers.get('BOUNDARY').color==2\n"
                      "assert tuple(d.header['\\$INSBASE'])[:2]==(1,2), d.header['\\$INSBASE']\n"
                      "\" " + dir_ + "/part.dxf";
  EXPECT_EQ(std::system(check.c_str()), 0) << check;

  AcDbDatabase back(false);
  ASSERT_EQ(back.readDwgFile(path("part.dxf").c_str()), Acad::eOk);
  AcDbObjectIdArray ents = entitiesOf(spaceId(&back));
  ASSERT_EQ(ents.size(), 1u);
  EXPECT_EQ(ents[0].database(), &back);
  AcDbObjectPointer<AcDbLine> l(ents[0], AcDb::kForRead);
  EXPECT_EQ(nameOf(l->layerId()), u"BOUNDARY");
  // A database that holds a drawing already does not read another.
  EXPECT_EQ(back.readDwgFile(path("part.dxf").c_str()), Acad::eAlreadyInDb);
}

TEST_F(DrawingFiles, ReadDwgFileRefusesWhatItCannotReadAndStaysEmpty) {
  write("binary.dwg", std::string("AC1032\0\0\0\0", 10));
  write("broken.dxf", "0\nSECTION\n2\nENTITIES\n0\nLINE\n10\nnot a number\n0\nENDSEC\n0\nEOF\n");
  AcDbDatabase db(false);
  EXPECT_EQ(db.readDwgFile(path("missing.dxf").c_str()), Acad::eFileNotFound);
  EXPECT_EQ(db.readDwgFile(path("binary.dwg").c_str()), Acad::eInvalidDwgVersion);
  EXPECT_EQ(db.readDwgFile(path("broken.dxf").c_str()), Acad::eBadDxfSequence);
  EXPECT_NE(db.lastFileError().find("line 8"), std::string::npos) << db.lastFileError();
  EXPECT_TRUE(db.blockTableId().isNull());
  EXPECT_TRUE(db.allObjects().empty());
}

TEST(Wblock, TheWholeDrawingIsAFaithfulCopy) {
  AcDbDatabase src(true);
  makeLayer(&src, u"KEEP", 4);
  AcDbObjectId a = lineOn(&src, u"KEEP", 0);
  AcDbDatabase* out = nullptr;
  ASSERT_EQ(src.wblock(out), Acad::eOk);
  std::unique_ptr<AcDbDatabase> owned(out);
  AcDbObjectId there;
  ASSERT_EQ(out->getAcDbObjectId(there, false, a.handle()), Acad::eOk);
  AcDbObjectPointer<AcDbLine> l(there, AcDb::kForRead);
  ASSERT_EQ(l.openStatus(), Acad::eOk);
  EXPECT_EQ(nameOf(l->layerId()), u"KEEP");
}

}  // namespace

namespace {

TEST_F(DrawingFiles, AnglesAreDegreesInTheFileAndRadiansInTheDrawing) {
  write("arc.dxf",
        "0\nSECTION\n2\nENTITIES\n0\nARC\n8\n0\n10\n1.0\n20\n2.0\n30\n0.0\n40\n5.0\n50\n90.0\n51\n180.0\n"
        "0\nTEXT\n8\n0\n10\n0.0\n20\n0.0\n30\n0.0\n40\n2.5\n1\nT\n50\n45.0\n0\nENDSEC\n0\nEOF\n");
  AcDbDatabase db(false);
  ASSERT_EQ(db.readDwgFile(path("arc.dxf").c_str()), Acad::eOk) << db.lastFileError();
  AcDbObjectIdArray ents = entitiesOf(spaceId(&db));
  ASSERT_EQ(ents.size(), 2u);
  {
    AcDbObjectPointer<AcDbArc> arc(ents[0], AcDb::kForRead);
    ASSERT_EQ(arc.openStatus(), Acad::eOk);
    EXPECT_NEAR(arc->startAngle(), M_PI / 2, 1e-12);
    EXPECT_NEAR(arc->endAngle(), M_PI, 1e-12);
    AcDbObjectPointer<AcDbText> text(ents[1], AcDb::kForRead);
    ASSERT_EQ(text.openStatus(), Acad::eOk);
    EXPECT_NEAR(text->rotation(), M_PI / 4, 1e-12);
  }
  ASSERT_EQ(db.saveAs(path("again.dxf").c_str()), Acad::eOk);
  // The saved groups, trimmed: the arc's angles are back in degrees.
  std::ifstream in(dir_ + "/again.dxf");
  std::vector<std::string> lines;
  for (std::string l; std::getline(in, l);) {
    while (!l.empty() && (l.back() == '\r' || l.back() == ' ')) l.pop_back();
    lines.push_back(l.substr(l.find_first_not_of(' ') == std::string::npos ? 0 : l.find_first_not_of(' ')));
  }
  auto valueOf = [&](const std::string& code, size_t from) {
    for (size_t i = from; i + 1 < lines.size(); i += 1)
      if (lines[i] == code) return std::stod(lines[i + 1]);
    return -1.0;
  };
  size_t arcAt = std::find(lines.begin(), lines.end(), "AcDbArc") - lines.begin();
  EXPECT_NEAR(valueOf("50", arcAt), 90.0, 1e-9);
  EXPECT_NEAR(valueOf("51", arcAt), 180.0, 1e-9);
}

}  // namespace
