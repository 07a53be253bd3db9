// Drawings read from DXF and written back: records of unknown classes kept
// as proxies, references and points as the classes see them, the header,
// classes and unknown sections kept; malformed files refused with the line
// at fault and no drawing made; saving atomic; R12 files given handles,
// owners and what later releases store.
#include <gtest/gtest.h>

#include <dirent.h>
#include <algorithm>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "host/db/dxffile.h"
#include "host/db/dxfinternal.h"
#include "host/db/internal.h"
#include "host/db/schema.h"
#include "host/dbdict.h"
#include "host/dbents.h"
#include "host/dblayout.h"
#include "host/dbproxy.h"
#include "host/dbsymtb.h"
#include "host/dxf/reader.h"
#include "host/dxf/structure.h"

using zepk::db::DxfReadOptions;
using zepk::db::readDxfBytes;
using zepk::db::writeDxfBytes;
using zepk::dxf::Group;

namespace zepk::dxf {
// Groups in failure messages as "code value".
void PrintTo(const Group& g, std::ostream* os) {
  *os << g.code << " ";
  if (g.isText()) *os << '"' << g.text() << '"';
  else if (g.isReal()) *os << g.real();
  else *os << g.integer();
}
}  // namespace zepk::dxf

namespace {

// A DXF text from "code\nvalue" pairs written one pair a line as
// "code value" (the value may be empty or hold spaces).
std::string dxf(const std::vector<std::string>& pairs) {
  std::string out;
  for (const std::string& p : pairs) {
    size_t sp = p.find(' ');
    out += (sp == std::string::npos ? p : p.substr(0, sp)) + "\n";
    out += (sp == std::string::npos ? "" : p.substr(sp + 1)) + "\n";
  }
  return out;
}

std::vector<std::string> concat(std::initializer_list<std::vector<std::string>> parts) {
  std::vector<std::string> out;
  for (const auto& p : parts) out.insert(out.end(), p.begin(), p.end());
  return out;
}

bool ezdxfAvailable() { return std::system("/usr/bin/python3 -c 'import ezdxf' >/dev/null 2>&1") == 0; }

// What a command prints.
std::string output(const std::string& cmd) {
  std::string out;
  if (FILE* p = popen(cmd.c_str(), "r")) {
    char buf[4096];
    size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
    pclose(p);
  }
  return out;
}

// A class of the tests' own, registered at run time by an application.
class ZepkTestThing : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(ZepkTestThing);
  static const zepk::db::ClassSchema& schema() {
    static const zepk::db::ClassSchema s{u"ZepkTestThing",
                                         {
                                             zepk::db::field<&ZepkTestThing::size_>(40, "Size", 1.0),
                                             zepk::db::field<&ZepkTestThing::label_>(1, "Label"),
                                             zepk::db::field<&ZepkTestThing::other_>(340, "Other"),
                                         }};
    return s;
  }
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* f) const override {
    AcDbObject::dwgOutFields(f);
    return schema().dwgOut(this, f);
  }
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* f) override {
    AcDbObject::dwgInFields(f);
    return schema().dwgIn(this, f);
  }
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* f) const override {
    AcDbObject::dxfOutFields(f);
    return schema().dxfOut(this, f);
  }
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* f) override {
    Acad::ErrorStatus es = AcDbObject::dxfInFields(f);
    return es != Acad::eOk ? es : schema().dxfIn(this, f);
  }
  double size_ = 1.0;
  std::u16string label_;
  AcDbObjectId other_;
};
ACRX_DEFINE_MEMBERS(ZepkTestThing);

// The groups of the records of a written file, by handle.
struct Parsed {
  std::vector<Group> groups;
  zepk::dxf::Layout layout;
  // The groups of the record with this handle (its group 0 first), empty
  // when there is none.
  std::vector<Group> record(const std::string& handle) const {
    for (const auto& s : layout.sections)
      for (const auto& r : s.records) {
        for (size_t i = r.begin + 1; i < r.end && groups[i].code != 100; ++i)
          if ((groups[i].code == 5 || groups[i].code == 105) && groups[i].text() == handle)
            return std::vector<Group>(groups.begin() + r.begin, groups.begin() + r.end);
      }
    return {};
  }
  // The groups of a header variable after its group 9.
  std::vector<Group> var(const std::string& name) const {
    const auto* h = layout.find(zepk::dxf::SectionKind::Header);
    if (!h) return {};
    for (const auto& r : h->records)
      if (groups[r.begin].text() == name) return std::vector<Group>(groups.begin() + r.begin + 1, groups.begin() + r.end);
    return {};
  }
  std::vector<std::string> varNames() const {
    std::vector<std::string> out;
    if (const auto* h = layout.find(zepk::dxf::SectionKind::Header))
      for (const auto& r : h->records) out.push_back(groups[r.begin].text());
    return out;
  }
};

Parsed parse(const std::string& bytes) {
  Parsed p;
  auto rr = zepk::dxf::readGroups(bytes);
  EXPECT_TRUE(rr.ok) << rr.error;
  p.groups = std::move(rr.groups);
  p.layout = zepk::dxf::splitSections(p.groups);
  EXPECT_TRUE(p.layout.ok) << p.layout.error;
  return p;
}

std::vector<Group> groupsOf(const std::vector<std::string>& pairs) {
  auto rr = zepk::dxf::readGroups(dxf(pairs));
  EXPECT_TRUE(rr.ok) << rr.error;
  return rr.groups;
}

// Whether two files are the same, and where they first differ.
::testing::AssertionResult sameFile(const std::string& a, const std::string& b) {
  if (a == b) return ::testing::AssertionSuccess();
  size_t at = 0;
  while (at < a.size() && at < b.size() && a[at] == b[at]) ++at;
  size_t line = 1 + static_cast<size_t>(std::count(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
  auto around = [&](const std::string& s) {
    size_t from = at > 80 ? at - 80 : 0;
    return s.substr(from, 160);
  };
  return ::testing::AssertionFailure() << "the files differ from line " << line << ":\n---\n"
                                       << around(a) << "\n+++\n" << around(b);
}

AcDbObjectId idOf(AcDbDatabase* db, uint64_t handle) {
  AcDbObjectId id;
  db->getAcDbObjectId(id, false, AcDbHandle(handle));
  return id;
}

const std::vector<std::string> kHeader = {
    "0 SECTION", "2 HEADER",
    "9 $ACADVER", "1 AC1027",
    "9 $HANDSEED", "5 40",
    "9 $LIMMIN", "10 0.0", "20 0.0",
    "9 $EXTMIN", "10 1.0", "20 2.0", "30 3.0",
    "9 $DWGCODEPAGE", "3 ANSI_936",
    "9 $USERR1", "40 1.5",
    "0 ENDSEC",
};

// An object of an application the host does not know, referring forward
// and back, with a 2D point, binary and 64-bit groups and extended data.
const std::vector<std::string> kThing20 = {
    "0 ZEPK_THING", "5 20", "102 {ZEPK", "1 app data", "40 2.0", "330 21", "102 }", "102 {ACAD_REACTORS", "330 C",
    "102 }", "330 C", "100 ZepkThing",
    "10 1.5", "20 2.5", "30 3.5", "11 4.0", "21 5.0", "340 21", "310 DEADBEEF", "160 1234567890123",
    "1 text", "90 7", "1001 ZEPK", "1000 hello", "1010 1.0", "1020 2.0", "1030 3.0", "1071 70000",
    "1004 0102", "1002 {", "1070 -3", "1002 }",
};
const std::vector<std::string> kThing21 = {
    "0 ZEPK_THING", "5 21", "330 20", "100 ZepkThing", "40 0.25", "340 20", "100 ZepkThingMore", "1 more",
    // A real of a point's place without its point.
    "1001 ZEPK", "1033 7.5",
};

std::vector<std::string> objectsFile() {
  return concat({kHeader,
                 {"0 SECTION", "2 CLASSES", "0 CLASS", "1 ZEPK_THING", "2 ZepkThing", "3 Someone", "90 1", "91 2",
                  "280 0", "281 0", "0 ENDSEC"},
                 {"0 SECTION", "2 OBJECTS", "0 DICTIONARY", "5 C", "330 0", "100 AcDbDictionary", "281 1",
                  "3 THINGS", "350 20"},
                 kThing20, kThing21,
                 {"0 ENDSEC", "0 SECTION", "2 ZEPKDATA", "90 1", "1 anything", "0 ENDSEC", "0 EOF"}});
}

class DxfFileTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!ZepkTestThing::gpDesc)
      ZepkTestThing::gpDesc =
          newAcRxClass(u"ZepkTestThing", u"AcDbObject", [] { return static_cast<AcRxObject*>(new ZepkTestThing); },
                       u"ZEPKTESTTHING", u"ZEPK tests");
  }
  std::unique_ptr<AcDbDatabase> read(const std::string& text) {
    std::unique_ptr<AcDbDatabase> db;
    std::string error;
    warnings.clear();
    DxfReadOptions opt;
    opt.warnings = &warnings;
    EXPECT_TRUE(readDxfBytes(text, &db, &error, opt)) << error;
    return db;
  }
  std::string write(AcDbDatabase* db) {
    std::string bytes, error;
    EXPECT_TRUE(writeDxfBytes(db, &bytes, &error)) << error;
    return bytes;
  }
  std::vector<std::string> warnings;
};

// ---------------------------------------------------------------- proxies

TEST_F(DxfFileTest, UnknownObjectsComeBackUnchanged) {
  auto db = read(dxf(objectsFile()));
  ASSERT_TRUE(db);
  AcDbObjectId a = idOf(db.get(), 0x20), b = idOf(db.get(), 0x21);
  {
    AcDbObjectPointer<AcDbProxyObject> p(a, AcDb::kForRead);
    ASSERT_EQ(p.openStatus(), Acad::eOk);
    EXPECT_EQ(std::u16string(p->originalDxfName()), u"ZEPK_THING");
    EXPECT_EQ(std::u16string(p->originalClassName()), u"ZepkThing");
    EXPECT_EQ(std::u16string(p->applicationDescription()), u"Someone");
    EXPECT_EQ(p->ownerId(), idOf(db.get(), 0xC));
    // The forward reference found the object read after it.
    AcDbObjectIdArray refs;
    p->getReferences(refs);
    ASSERT_EQ(refs.size(), 1u);
    EXPECT_EQ(refs[0], b);
    EXPECT_TRUE(refs[0].isValid());
    resbuf* xd = p->xData(u"ZEPK");
    ASSERT_NE(xd, nullptr);
    EXPECT_EQ(xd->rbnext->restype, 1000);
    acutRelRb(xd);
  }
  {
    AcDbObjectPointer<AcDbProxyObject> p(b, AcDb::kForRead);
    ASSERT_EQ(p.openStatus(), Acad::eOk);
    AcDbObjectIdArray refs;
    p->getReferences(refs);
    ASSERT_EQ(refs.size(), 1u);
    EXPECT_EQ(refs[0], a);
  }
  // Written back, every group of both records is as it was.
  Parsed out = parse(write(db.get()));
  EXPECT_EQ(out.record("20"), groupsOf(kThing20));
  EXPECT_EQ(out.record("21"), groupsOf(kThing21));
}

TEST_F(DxfFileTest, UnknownEntitiesAndRecordsOutOfPlaceAreKeptWhereTheyStand) {
  const std::vector<std::string> shape = {"0 ZEPK_SHAPE", "5 30", "100 AcDbEntity", "8 0", "62 5",
                                          "100 ZepkShape", "10 1.0", "20 2.0", "30 0.0", "40 2.5", "1001 ZEPK",
                                          "1000 x"};
  // An entity without the part every entity has: kept whole.
  const std::vector<std::string> bare = {"0 ZEPK_BARE", "5 32", "100 ZepkBare", "10 1.0", "20 2.0", "30 0.0",
                                         "8 not a layer"};
  // A LINE among the objects is no entity of any block: kept as it stands.
  const std::vector<std::string> line = {"0 LINE", "5 31", "330 C", "100 AcDbEntity", "8 0", "100 AcDbLine",
                                         "10 0.0", "20 0.0", "30 0.0", "11 1.0", "21 1.0", "31 0.0"};
  auto db = read(dxf(concat({{"0 SECTION", "2 ENTITIES"}, shape, bare, {"0 ENDSEC", "0 SECTION", "2 OBJECTS", "0 DICTIONARY", "5 C",
                                                                  "330 0", "100 AcDbDictionary"},
                             line, {"0 ENDSEC", "0 EOF"}})));
  ASSERT_TRUE(db);
  AcDbObjectId model;
  {
    AcDbBlockTable* bt = nullptr;
    ASSERT_EQ(db->getBlockTable(bt), Acad::eOk);
    bt->getAt(ACDB_MODEL_SPACE, model);
    bt->close();
  }
  {
    AcDbObjectPointer<AcDbProxyEntity> p(idOf(db.get(), 0x30), AcDb::kForRead);
    ASSERT_EQ(p.openStatus(), Acad::eOk);
    EXPECT_EQ(p->ownerId(), model);
    EXPECT_EQ(p->colorIndex(), 5);
    EXPECT_EQ(std::u16string(p->originalDxfName()), u"ZEPK_SHAPE");
    AcDbObjectPointer<AcDbBlockTableRecord> ms(model, AcDb::kForRead);
    EXPECT_EQ(ms->entityIds(), (AcDbObjectIdArray{idOf(db.get(), 0x30), idOf(db.get(), 0x32)}));
    AcDbObjectPointer<AcDbProxyEntity> b(idOf(db.get(), 0x32), AcDb::kForRead);
    EXPECT_EQ(b.openStatus(), Acad::eOk);
    AcDbObjectPointer<AcDbProxyObject> o(idOf(db.get(), 0x31), AcDb::kForRead);
    EXPECT_EQ(o.openStatus(), Acad::eOk);
  }
  ASSERT_EQ(warnings.size(), 1u);
  EXPECT_NE(warnings[0].find("LINE 31: kept as a proxy: an entity in the OBJECTS section"), std::string::npos) << warnings[0];
  Parsed out = parse(write(db.get()));
  std::vector<std::string> owned = shape;
  const std::u16string modelHandle = model.handle().ascii();
  owned.insert(owned.begin() + 2, "330 " + std::string(modelHandle.begin(), modelHandle.end()));
  EXPECT_EQ(out.record("30"), groupsOf(owned));
  owned = bare;
  owned.insert(owned.begin() + 2, "330 " + std::string(modelHandle.begin(), modelHandle.end()));
  EXPECT_EQ(out.record("32"), groupsOf(owned));
  EXPECT_EQ(out.record("31"), groupsOf(line));
  const auto* entities = out.layout.find(zepk::dxf::SectionKind::Entities);
  ASSERT_NE(entities, nullptr);
  ASSERT_EQ(entities->records.size(), 2u);
  EXPECT_EQ(out.groups[entities->records[0].begin + 1].text(), "30");
}

TEST_F(DxfFileTest, WhereARecordStandsDecidesItsOwner) {
  auto db = read(dxf({
      "0 SECTION", "2 TABLES",
      "0 TABLE", "2 LAYER", "5 10", "330 0", "100 AcDbSymbolTable", "70 1",
      // The layer names an owner that is not there.
      "0 LAYER", "5 11", "330 99", "100 AcDbSymbolTableRecord", "100 AcDbLayerTableRecord", "2 L", "70 0", "62 1",
      "6 Continuous", "0 ENDTAB",
      "0 TABLE", "2 BLOCK_RECORD", "5 1", "330 0", "100 AcDbSymbolTable", "70 2",
      "0 BLOCK_RECORD", "5 2", "330 1", "100 AcDbSymbolTableRecord", "100 AcDbBlockTableRecord", "2 A",
      "0 BLOCK_RECORD", "5 3", "330 1", "100 AcDbSymbolTableRecord", "100 AcDbBlockTableRecord", "2 B",
      "0 ENDTAB", "0 ENDSEC",
      "0 SECTION", "2 BLOCKS",
      "0 BLOCK", "5 4", "330 2", "100 AcDbEntity", "8 0", "100 AcDbBlockBegin", "2 A", "70 0", "10 0.0", "20 0.0",
      "30 0.0", "3 A", "1 ",
      // In block A, naming block B as its owner.
      "0 LINE", "5 5", "330 3", "100 AcDbEntity", "8 L", "100 AcDbLine", "10 0.0", "20 0.0", "30 0.0", "11 1.0",
      "21 0.0", "31 0.0",
      "0 ENDBLK", "5 6", "330 2", "100 AcDbEntity", "8 0", "100 AcDbBlockEnd",
      "0 BLOCK", "5 7", "330 3", "100 AcDbEntity", "8 0", "100 AcDbBlockBegin", "2 B", "70 0", "10 0.0", "20 0.0",
      "30 0.0", "3 B", "1 ",
      "0 ENDBLK", "5 8", "330 3", "100 AcDbEntity", "8 0", "100 AcDbBlockEnd",
      "0 ENDSEC", "0 EOF"}));
  ASSERT_TRUE(db);
  AcDbObjectPointer<AcDbLine> line(idOf(db.get(), 5), AcDb::kForRead);
  ASSERT_EQ(line.openStatus(), Acad::eOk);
  EXPECT_EQ(line->ownerId(), idOf(db.get(), 2));
  AcDbObjectPointer<AcDbBlockTableRecord> a(idOf(db.get(), 2), AcDb::kForRead), b(idOf(db.get(), 3), AcDb::kForRead);
  EXPECT_EQ(a->entityIds(), AcDbObjectIdArray{idOf(db.get(), 5)});
  EXPECT_TRUE(b->entityIds().empty());
  EXPECT_EQ(a->blockBeginId(), idOf(db.get(), 4));
  EXPECT_EQ(a->blockEndId(), idOf(db.get(), 6));
  AcDbObjectPointer<AcDbBlockBegin> begin(idOf(db.get(), 4), AcDb::kForRead);
  AcDbObjectPointer<AcDbBlockEnd> end(idOf(db.get(), 6), AcDb::kForRead);
  ASSERT_EQ(begin.openStatus(), Acad::eOk);
  ASSERT_EQ(end.openStatus(), Acad::eOk);
  EXPECT_EQ(begin->ownerId(), idOf(db.get(), 2));
  AcDbObjectPointer<AcDbLayerTableRecord> layer(idOf(db.get(), 0x11), AcDb::kForRead);
  ASSERT_EQ(layer.openStatus(), Acad::eOk);
  EXPECT_EQ(layer->ownerId(), idOf(db.get(), 0x10));
  EXPECT_EQ(line->layerId(), idOf(db.get(), 0x11));
}

TEST_F(DxfFileTest, TheNamedObjectsDictionaryIsTheOneNothingOwns) {
  auto db = read(dxf({"0 SECTION", "2 OBJECTS",
                      "0 XRECORD", "5 A", "330 B", "100 AcDbXrecord", "1 data",
                      "0 DICTIONARY", "5 B", "330 0", "100 AcDbDictionary", "3 X", "350 A",
                      "0 ENDSEC", "0 EOF"}));
  ASSERT_TRUE(db);
  EXPECT_EQ(db->namedObjectsDictionaryId(), idOf(db.get(), 0xB));
  // Written first among the objects, with what every drawing's has added.
  Parsed out = parse(write(db.get()));
  const auto* objects = out.layout.find(zepk::dxf::SectionKind::Objects);
  ASSERT_NE(objects, nullptr);
  EXPECT_EQ(out.groups[objects->records[0].begin + 1].text(), "B");
  AcDbDictionary* nod = nullptr;
  ASSERT_EQ(db->getNamedObjectsDictionary(nod), Acad::eOk);
  EXPECT_TRUE(nod->has(u"X"));
  EXPECT_TRUE(nod->has(u"ACAD_LAYOUT"));
  nod->close();
}

TEST_F(DxfFileTest, ProxiesSurviveCopyThroughTheDwgFiler) {
  auto db = read(dxf(objectsFile()));
  ASSERT_TRUE(db);
  AcDbObjectPointer<AcDbProxyObject> p(idOf(db.get(), 0x20), AcDb::kForRead);
  ASSERT_EQ(p.openStatus(), Acad::eOk);
  zepk::db::MemoryDwgFiler dwg;
  ASSERT_EQ(p->dwgOutFields(&dwg), Acad::eOk);
  AcDbProxyObject copy;
  ASSERT_EQ(copy.dwgInFields(&dwg), Acad::eOk);
  EXPECT_EQ(std::u16string(copy.originalDxfName()), u"ZEPK_THING");
  zepk::db::MemoryDxfFiler a, b;
  p->dxfOutFields(&a);
  copy.dxfOutFields(&b);
  ASSERT_EQ(a.items().size(), b.items().size());
  for (size_t i = 0; i < a.items().size(); ++i) {
    EXPECT_EQ(a.items()[i].code, b.items()[i].code);
    EXPECT_EQ(a.items()[i].kind, b.items()[i].kind);
    EXPECT_EQ(a.items()[i].dims, b.items()[i].dims);
  }
}

TEST_F(DxfFileTest, ARecordItsClassCannotReadIsKeptAsAProxy) {
  auto file = concat({kHeader,
                      {"0 SECTION", "2 OBJECTS", "0 DICTIONARY", "5 C", "330 0", "100 AcDbDictionary", "3 A", "350 30",
                       "3 B", "350 31"},
                      {"0 ZEPKTESTTHING", "5 30", "330 C", "100 ZepkTestThing", "40 2.5", "1 label", "340 31"},
                      // Group 72 is none of the class's: the record stays whole as a proxy.
                      {"0 ZEPKTESTTHING", "5 31", "330 C", "100 ZepkTestThing", "40 3.5", "72 9", "1 other"},
                      {"0 ENDSEC", "0 EOF"}});
  auto db = read(dxf(file));
  ASSERT_TRUE(db);
  {
    AcDbObjectPointer<ZepkTestThing> t(idOf(db.get(), 0x30), AcDb::kForRead);
    ASSERT_EQ(t.openStatus(), Acad::eOk);
    EXPECT_EQ(t->size_, 2.5);
    EXPECT_EQ(t->label_, u"label");
    EXPECT_EQ(t->other_, idOf(db.get(), 0x31));
  }
  AcDbObjectPointer<AcDbProxyObject> p(idOf(db.get(), 0x31), AcDb::kForRead);
  ASSERT_EQ(p.openStatus(), Acad::eOk);
  EXPECT_EQ(std::u16string(p->originalDxfName()), u"ZEPKTESTTHING");
  ASSERT_EQ(warnings.size(), 1u);
  EXPECT_NE(warnings[0].find("line "), std::string::npos);
  EXPECT_NE(warnings[0].find("ZEPKTESTTHING 31: kept as a proxy"), std::string::npos) << warnings[0];
  p.close();
  Parsed out = parse(write(db.get()));
  EXPECT_EQ(out.record("31"), groupsOf({"0 ZEPKTESTTHING", "5 31", "330 C", "100 ZepkTestThing", "40 3.5", "72 9", "1 other"}));
  EXPECT_EQ(out.record("30"), groupsOf({"0 ZEPKTESTTHING", "5 30", "330 C", "100 ZepkTestThing", "40 2.5", "1 label", "340 31"}));
}

// ---------------------------------------------------------------- header, classes, sections

TEST_F(DxfFileTest, HeaderClassesAndUnknownSectionsAreKept) {
  auto db = read(dxf(objectsFile()));
  ASSERT_TRUE(db);
  EXPECT_GE(db->handseed().value(), 0x40u);
  // An object of a class an application registered in this session gets
  // a CLASSES record.
  auto* t = new ZepkTestThing;
  AcDbObjectId id;
  ASSERT_EQ(db->addAcDbObject(id, t), Acad::eOk);
  t->setOwnerId(idOf(db.get(), 0xC));
  t->close();
  Parsed out = parse(write(db.get()));
  std::vector<std::string> names = out.varNames();
  ASSERT_GE(names.size(), 6u);
  // The kept order, with the values the writer decides.
  EXPECT_EQ(std::vector<std::string>(names.begin(), names.begin() + 6),
            (std::vector<std::string>{"$ACADVER", "$HANDSEED", "$LIMMIN", "$EXTMIN", "$DWGCODEPAGE", "$USERR1"}));
  EXPECT_EQ(out.var("$ACADVER"), groupsOf({"1 AC1032"}));
  // The text is UTF-8; the code page stays the drawing's.
  EXPECT_EQ(out.var("$DWGCODEPAGE"), groupsOf({"3 ANSI_936"}));
  EXPECT_EQ(out.var("$LIMMIN"), groupsOf({"10 0.0", "20 0.0"}));
  EXPECT_EQ(out.var("$EXTMIN"), groupsOf({"10 1.0", "20 2.0", "30 3.0"}));
  EXPECT_EQ(out.var("$USERR1"), groupsOf({"40 1.5"}));
  auto seed = out.var("$HANDSEED");
  ASSERT_EQ(seed.size(), 1u);
  EXPECT_GT(std::stoull(seed[0].text(), nullptr, 16), id.handle().value());

  // The file's record first, as it was (but for the count of objects); the
  // application's class among the ones added.
  const auto* classes = out.layout.find(zepk::dxf::SectionKind::Classes);
  ASSERT_NE(classes, nullptr);
  std::vector<std::vector<Group>> records;
  for (const auto& r : classes->records)
    records.emplace_back(out.groups.begin() + r.begin, out.groups.begin() + r.end);
  ASSERT_GE(records.size(), 2u);
  EXPECT_EQ(records[0], groupsOf({"0 CLASS", "1 ZEPK_THING", "2 ZepkThing", "3 Someone", "90 1", "91 2", "280 0", "281 0"}));
  EXPECT_EQ(std::count(records.begin(), records.end(),
                       groupsOf({"0 CLASS", "1 ZEPKTESTTHING", "2 ZepkTestThing", "3 ZEPK tests", "90 0", "91 1", "280 0",
                                 "281 0"})),
            1);

  bool kept = false;
  for (const auto& s : out.layout.sections)
    if (s.name == "ZEPKDATA") {
      kept = true;
      EXPECT_EQ(std::vector<Group>(out.groups.begin() + s.body.begin, out.groups.begin() + s.body.end),
                groupsOf({"90 1", "1 anything"}));
    }
  EXPECT_TRUE(kept);
}

TEST_F(DxfFileTest, ASavedDrawingReadsBackToTheSameFile) {
  auto db = read(dxf(objectsFile()));
  ASSERT_TRUE(db);
  std::string first = write(db.get());
  auto again = read(first);
  ASSERT_TRUE(again);
  EXPECT_TRUE(sameFile(first, write(again.get())));
}

// A large file read from its path, whose memory the reader gives back as it
// goes, makes the same drawing and the same warnings as its bytes read from
// memory.
TEST_F(DxfFileTest, ALargeFileReadFromItsPathIsTheSameAsItsBytes) {
  const int lines = 90000;
  std::string text = "  0\nSECTION\n  2\nENTITIES\n";
  for (int i = 0; i < lines; ++i) {
    char handle[16];
    std::snprintf(handle, sizeof handle, "%X", 0x100 + i);
    text += "  0\nLINE\n  5\n" + std::string(handle) + "\n100\nAcDbEntity\n  8\n0\n100\nAcDbLine\n 10\n" +
            std::to_string(i) + ".5\n 20\n" + std::to_string(-i) + ".25\n 30\n0.0\n 11\n" + std::to_string(i + 1) +
            ".0\n 21\n2.0\n 31\n0.0\n";
  }
  // Near the end, a record that draws a warning naming its line.
  const int seqendLine = static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 1;
  text += "  0\nSEQEND\n  5\nFFFFF\n  0\nENDSEC\n  0\nEOF\n";

  // Large enough to be read in halves, in a heap made ready ahead.
  ASSERT_GT(text.size(), size_t{8} << 20);

  char dir[] = "/tmp/zepk-dxffile-XXXXXX";
  ASSERT_NE(mkdtemp(dir), nullptr);
  const std::string path = std::string(dir) + "/large.dxf";
  std::ofstream(path, std::ios::binary) << text;
  std::unique_ptr<AcDbDatabase> fromPath;
  std::string error;
  std::vector<std::string> pathWarnings;
  DxfReadOptions opt;
  opt.warnings = &pathWarnings;
  ASSERT_TRUE(zepk::db::readDxf(path, &fromPath, &error, opt)) << error;
  std::remove(path.c_str());
  rmdir(dir);

  auto fromBytes = read(text);
  ASSERT_TRUE(fromBytes);
  EXPECT_EQ(pathWarnings, warnings);
  EXPECT_NE(std::find(warnings.begin(), warnings.end(),
                      "line " + std::to_string(seqendLine) + ": SEQEND FFFFF outside a polyline or block reference"),
            warnings.end());
  const std::string saved = write(fromPath.get());
  EXPECT_TRUE(saved == write(fromBytes.get()));
  EXPECT_NE(saved.find("\r\n 10\r\n" + std::to_string(lines - 1) + ".5\r\n"), std::string::npos);
}

// A drawing with entities enough to be written by two threads: every
// entity in its place, kinds the second thread leaves to the first among
// those it writes, as ezdxf's own reader lists them; a value that cannot be
// written is told naming its entity, wherever it stands.
TEST_F(DxfFileTest, ALargeDrawingsEntitiesAreWrittenInTheirOrder) {
  std::string text = "  0\nSECTION\n  2\nENTITIES\n";
  std::vector<std::string> expected;  // "TYPE HANDLE"
  const int count = 12000;
  for (int i = 0; i < count; ++i) {
    char h[16];
    std::snprintf(h, sizeof h, "%X", 0x100 + i);
    const std::string at = " 10\n" + std::to_string(i) + ".5\n 20\n" + std::to_string(i % 97) + ".25\n 30\n0.0\n";
    std::string type;
    if (i % 997 == 500) {
      type = "ELLIPSE";
      text += "  0\nELLIPSE\n  5\n" + std::string(h) + "\n100\nAcDbEntity\n  8\n0\n100\nAcDbEllipse\n" + at +
              " 11\n2.0\n 21\n0.0\n 31\n0.0\n 40\n0.5\n 41\n0.0\n 42\n6.283185307179586\n";
    } else if (i % 1499 == 700) {
      type = "ZEPKBLOB";
      text += "  0\nZEPKBLOB\n  5\n" + std::string(h) + "\n100\nAcDbEntity\n  8\n0\n100\nZepkBlob\n  1\nkept as it is\n";
    } else if (i % 3 == 0) {
      type = "LINE";
      text += "  0\nLINE\n  5\n" + std::string(h) + "\n100\nAcDbEntity\n  8\n0\n100\nAcDbLine\n" + at +
              " 11\n1.0\n 21\n2.0\n 31\n0.0\n";
    } else if (i % 3 == 1) {
      type = "CIRCLE";
      text += "  0\nCIRCLE\n  5\n" + std::string(h) + "\n100\nAcDbEntity\n  8\n0\n100\nAcDbCircle\n" + at +
              " 40\n" + std::to_string(1 + i % 7) + ".0\n";
    } else {
      type = "TEXT";
      text += "  0\nTEXT\n  5\n" + std::string(h) + "\n100\nAcDbEntity\n  8\n0\n100\nAcDbText\n" + at +
              " 40\n2.5\n  1\nP" + std::to_string(i) + "\n100\nAcDbText\n";
    }
    expected.push_back(type + " " + h);
  }
  text += "  0\nENDSEC\n  0\nEOF\n";
  auto db = read(text);
  ASSERT_TRUE(db);
  const std::string saved = write(db.get());
  auto again = read(saved);
  ASSERT_TRUE(again);
  EXPECT_TRUE(write(again.get()) == saved);

  if (!ezdxfAvailable()) GTEST_SKIP() << "python3-ezdxf is not installed";
  char dir[] = "/tmp/zepk-dxffile-XXXXXX";
  ASSERT_NE(mkdtemp(dir), nullptr);
  const std::string path = std::string(dir) + "/large.dxf";
  std::ofstream(path, std::ios::binary) << saved;
  // ezdxf's tag reader, so that entities it does not know are listed too.
  const std::string listed = output(
      "/usr/bin/python3 -c \"import sys\n"
      "from ezdxf.lldxf.tagger import ascii_tags_loader\n"
      "tags = list(ascii_tags_loader(open(sys.argv[1], encoding='utf-8')))\n"
      "inside = False\n"
      "for i, t in enumerate(tags):\n"
      "    if t.code == 2 and i > 0 and tags[i-1] == (0, 'SECTION'): inside = t.value == 'ENTITIES'\n"
      "    elif t == (0, 'ENDSEC'): inside = False\n"
      "    elif inside and t.code == 0 and t.value != 'SEQEND': print(t.value, tags[i+1].value)\n"
      "\" " + path);
  std::remove(path.c_str());
  rmdir(dir);
  std::vector<std::string> got;
  std::istringstream lines(listed);
  for (std::string l; std::getline(lines, l);) got.push_back(l);
  for (size_t i = 0; i < std::min(got.size(), expected.size()); ++i) ASSERT_EQ(got[i], expected[i]) << "entity " << i;
  EXPECT_EQ(got.size(), expected.size()) << got.back();

  // A text that cannot be written, in the first run and in a later one.
  for (int i : {2, 1502, 9998}) {
    char h[16];
    std::snprintf(h, sizeof h, "%X", 0x100 + i);
    ASSERT_EQ(expected[static_cast<size_t>(i)], std::string("TEXT ") + h);
    AcDbObjectId id;
    ASSERT_EQ(db->getAcDbObjectId(id, false, AcDbHandle(static_cast<uint64_t>(0x100 + i))), Acad::eOk);
    {
      AcDbObjectPointer<AcDbText> t(id, AcDb::kForWrite);
      ASSERT_EQ(t.openStatus(), Acad::eOk);
      t->setTextString(u"two\nlines");
    }
    std::string bytes, error;
    EXPECT_FALSE(writeDxfBytes(db.get(), &bytes, &error));
    EXPECT_EQ(error, std::string("TEXT ") + h + ": group 1: a line break cannot be written in a text value");
    AcDbObjectPointer<AcDbText> t(id, AcDb::kForWrite);
    t->setTextString(u"one line");
  }
}

// ---------------------------------------------------------------- malformed files

std::vector<std::string> kR12Lines();

struct BadFile {
  const char* what;
  std::vector<std::string> pairs;
  int line;             // the line the message must name
  const char* message;  // a part of it
};

TEST_F(DxfFileTest, MalformedFilesNameTheLineAndMakeNoDrawing) {
  const std::vector<std::string> open = {"0 SECTION", "2 OBJECTS"};
  const std::vector<std::string> close = {"0 ENDSEC", "0 EOF"};
  const std::vector<BadFile> cases = {
      {"a real that is not a number", concat({open, {"0 ZEPK_THING", "5 20", "100 ZepkThing", "40 abc"}, close}), 12,
       "expected a real number"},
      {"a handle that is not hexadecimal", concat({open, {"0 ZEPK_THING", "5 XYZ", "100 ZepkThing"}, close}), 7,
       "expected a handle"},
      {"a handle used twice", concat({open, {"0 ZEPK_THING", "5 20", "0 ZEPK_THING", "5 20"}, close}), 9,
       "already used by the record at line 5"},
      {"a reference that is not a handle",
       concat({open, {"0 ZEPK_THING", "5 20", "100 ZepkThing", "340 G1"}, close}), 11, "expected a handle"},
      {"binary data of odd length", concat({open, {"0 ZEPK_THING", "5 20", "100 ZepkThing", "310 ABC"}, close}), 11,
       "expected binary data"},
      {"class data after extended data",
       concat({open, {"0 ZEPK_THING", "5 20", "100 ZepkThing", "1001 ZEPK", "1000 x", "40 1.0"}, close}), 15,
       "expected extended data"},
      {"a table not closed",
       {"0 SECTION", "2 TABLES", "0 TABLE", "2 LAYER", "70 1", "0 LAYER", "2 A", "70 0", "0 ENDSEC", "0 EOF"}, 5,
       "expected 0/ENDTAB"},
      {"a record outside a table", {"0 SECTION", "2 TABLES", "0 LAYER", "2 A", "0 ENDSEC", "0 EOF"}, 5,
       "expected 0/TABLE, found 0/LAYER"},
      {"an entity before its BLOCK",
       {"0 SECTION", "2 BLOCKS", "0 LINE", "8 0", "0 ENDSEC", "0 EOF"}, 5, "expected 0/BLOCK, found 0/LINE"},
      {"a block not closed",
       {"0 SECTION", "2 BLOCKS", "0 BLOCK", "2 B", "8 0", "0 LINE", "8 0", "0 ENDSEC", "0 EOF"}, 5,
       "expected 0/ENDBLK"},
      {"a section not closed", {"0 SECTION", "2 OBJECTS", "0 DICTIONARY", "5 C", "0 EOF"}, 0, "ENDSEC"},
      {"a CLASS without its name", {"0 SECTION", "2 CLASSES", "0 CLASS", "2 X", "0 ENDSEC", "0 EOF"}, 5,
       "expected the class's DXF name"},
  };
  for (const BadFile& c : cases) {
    SCOPED_TRACE(c.what);
    auto keep = std::make_unique<AcDbDatabase>();
    AcDbDatabase* before = keep.get();
    std::string error;
    EXPECT_FALSE(readDxfBytes(dxf(c.pairs), &keep, &error));
    EXPECT_EQ(keep.get(), before);  // the caller's drawing is untouched
    if (c.line) {
      EXPECT_EQ(error.rfind("line " + std::to_string(c.line) + ": ", 0), 0u) << error;
    }
    EXPECT_NE(error.find(c.message), std::string::npos) << error;
  }
}

// Every line of two small drawings in turn dropped, or replaced by text no
// group holds: the reader either reads the rest or names a line, and never
// fails in another way.
TEST_F(DxfFileTest, DamagedFilesAreReadOrRefusedWithALine) {
  for (const std::string& text : {dxf(objectsFile()), dxf(kR12Lines())}) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string l; std::getline(in, l);) lines.push_back(l);
    for (size_t i = 0; i < lines.size(); ++i) {
      for (int variant = 0; variant < 2; ++variant) {
        std::string damaged;
        for (size_t k = 0; k < lines.size(); ++k) {
          if (k == i && variant == 0) continue;
          damaged += (k == i ? std::string("\x01zz") : lines[k]) + "\n";
        }
        std::unique_ptr<AcDbDatabase> db;
        std::string error;
        if (!readDxfBytes(damaged, &db, &error)) {
          EXPECT_FALSE(db);
          EXPECT_EQ(error.rfind("line ", 0), 0u) << "line " << i + 1 << ": " << error;
          continue;
        }
        std::string bytes;
        EXPECT_TRUE(writeDxfBytes(db.get(), &bytes, &error)) << "line " << i + 1 << ": " << error;
      }
    }
  }
}

TEST_F(DxfFileTest, AMissingFileIsAMessage) {
  std::unique_ptr<AcDbDatabase> db;
  std::string error;
  EXPECT_FALSE(zepk::db::readDxf("/nonexistent/zepk/drawing.dxf", &db, &error));
  EXPECT_FALSE(db);
  EXPECT_NE(error.find("/nonexistent/zepk/drawing.dxf"), std::string::npos);
}

// ---------------------------------------------------------------- saving

std::vector<std::string> filesIn(const std::string& dir) {
  std::vector<std::string> out;
  if (DIR* d = opendir(dir.c_str())) {
    while (dirent* e = readdir(d))
      if (std::string(e->d_name) != "." && std::string(e->d_name) != "..") out.push_back(e->d_name);
    closedir(d);
  }
  return out;
}

std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

TEST_F(DxfFileTest, AFailedSaveLeavesTheOldFileWhole) {
  char tmpl[] = "/tmp/zepk-dxffile-XXXXXX";
  ASSERT_NE(mkdtemp(tmpl), nullptr);
  std::string dir = tmpl, path = dir + "/drawing.dxf";
  auto db = read(dxf(objectsFile()));
  ASSERT_TRUE(db);
  std::string error;
  ASSERT_TRUE(zepk::db::writeDxf(db.get(), path, &error)) << error;
  std::string saved = slurp(path);
  ASSERT_FALSE(saved.empty());
  // A text with a line break cannot be written: the save fails as a whole.
  zepk::db::HeaderVar bad{u"$PROJECTNAME", {}};
  zepk::db::DxfItem it;
  it.code = 1;
  it.s = u"two\nlines";
  bad.groups.push_back(it);
  zepk::db::headerVars(db.get()).push_back(bad);
  EXPECT_FALSE(zepk::db::writeDxf(db.get(), path, &error));
  EXPECT_NE(error.find("$PROJECTNAME"), std::string::npos) << error;
  EXPECT_TRUE(slurp(path) == saved);
  EXPECT_EQ(filesIn(dir), std::vector<std::string>{"drawing.dxf"});
  // A folder that is not there.
  zepk::db::headerVars(db.get()).pop_back();
  EXPECT_FALSE(zepk::db::writeDxf(db.get(), dir + "/missing/drawing.dxf", &error));
  EXPECT_NE(error.find(dir + "/missing/drawing.dxf"), std::string::npos) << error;
  unlink(path.c_str());
  rmdir(dir.c_str());
}

// ---------------------------------------------------------------- R12

const std::vector<std::string> kR12 = {
    "0 SECTION", "2 HEADER", "9 $ACADVER", "1 AC1009", "0 ENDSEC",
    "0 SECTION", "2 TABLES",
    "0 TABLE", "2 LTYPE", "70 1",
    "0 LTYPE", "2 CONTINUOUS", "70 0", "3 Solid line", "72 65", "73 0", "40 0.0", "0 ENDTAB",
    "0 TABLE", "2 LAYER", "70 1",
    "0 LAYER", "2 WALLS", "70 0", "62 1", "6 CONTINUOUS", "0 ENDTAB", "0 ENDSEC",
    "0 SECTION", "2 BLOCKS",
    "0 BLOCK", "8 0", "2 DOOR", "70 0", "10 0.0", "20 0.0", "30 0.0", "3 DOOR",
    "0 LINE", "8 0", "10 0.0", "20 0.0", "30 0.0", "11 1.0", "21 0.0", "31 0.0",
    "0 ENDBLK", "8 0", "0 ENDSEC",
    "0 SECTION", "2 ENTITIES",
    "0 LINE", "8 WALLS", "10 0.0", "20 0.0", "30 0.0", "11 10.0", "21 0.0", "31 0.0",
    "0 TEXT", "8 0", "67 1", "10 1.0", "20 1.0", "30 0.0", "40 2.5", "1 PAPER",
    "0 POLYLINE", "8 0", "66 1", "10 0.0", "20 0.0", "30 0.0", "70 1",
    "0 VERTEX", "8 0", "10 0.0", "20 0.0", "30 0.0",
    "0 VERTEX", "8 0", "10 1.0", "20 0.0", "30 0.0",
    "0 SEQEND", "8 0",
    "0 INSERT", "8 0", "2 DOOR", "10 5.0", "20 5.0", "30 0.0",
    "0 ENDSEC", "0 EOF",
};

std::vector<std::string> kR12Lines() { return kR12; }

TEST_F(DxfFileTest, AnR12DrawingGetsHandlesOwnersAndWhatLaterReleasesStore) {
  auto db = read(dxf(kR12));
  ASSERT_TRUE(db);
  // Every object has a handle of its own.
  AcDbObjectIdArray all = db->allObjects();
  std::set<uint64_t> handles;
  for (AcDbObjectId id : all) handles.insert(id.handle().value());
  EXPECT_EQ(handles.size(), all.size());
  EXPECT_EQ(handles.count(0), 0u);

  AcDbBlockTable* bt = nullptr;
  ASSERT_EQ(db->getBlockTable(bt), Acad::eOk);
  AcDbObjectId model, paper, door;
  EXPECT_EQ(bt->getAt(ACDB_MODEL_SPACE, model), Acad::eOk);
  EXPECT_EQ(bt->getAt(ACDB_PAPER_SPACE, paper), Acad::eOk);
  EXPECT_EQ(bt->getAt(u"DOOR", door), Acad::eOk);
  bt->close();
  auto entitiesOf = [&](AcDbObjectId block) {
    AcDbObjectPointer<AcDbBlockTableRecord> b(block, AcDb::kForRead);
    return b ? b->entityIds() : AcDbObjectIdArray{};
  };
  AcDbObjectIdArray inModel = entitiesOf(model), inPaper = entitiesOf(paper), inDoor = entitiesOf(door);
  ASSERT_EQ(inModel.size(), 3u);
  ASSERT_EQ(inPaper.size(), 1u);
  ASSERT_EQ(inDoor.size(), 1u);
  {
    // Read by their classes, the subclass markers put in; owned by their blocks.
    AcDbObjectPointer<AcDbLine> line(inModel[0], AcDb::kForRead);
    ASSERT_EQ(line.openStatus(), Acad::eOk);
    EXPECT_EQ(line->ownerId(), model);
    EXPECT_EQ(line->layer(), u"WALLS");
    EXPECT_EQ(line->endPoint(), AcGePoint3d(10, 0, 0));
    AcDbObjectPointer<AcDbText> text(inPaper[0], AcDb::kForRead);
    ASSERT_EQ(text.openStatus(), Acad::eOk);
    EXPECT_EQ(text->ownerId(), paper);
    AcDbObjectPointer<AcDbLine> inner(inDoor[0], AcDb::kForRead);
    ASSERT_EQ(inner.openStatus(), Acad::eOk);
    EXPECT_EQ(inner->ownerId(), door);
    AcDbObjectPointer<AcDb2dPolyline> pl(inModel[1], AcDb::kForRead);
    ASSERT_EQ(pl.openStatus(), Acad::eOk);
    AcDbObjectIterator* it = pl->vertexIterator();
    int n = 0;
    for (it->start(); !it->done(); it->step(), ++n) {
      AcDbObjectPointer<AcDb2dVertex> v(it->objectId(), AcDb::kForRead);
      ASSERT_EQ(v.openStatus(), Acad::eOk);
      EXPECT_EQ(v->ownerId(), inModel[1]);
    }
    delete it;
    EXPECT_EQ(n, 2);
    AcDbObjectPointer<AcDbBlockReference> ref(inModel[2], AcDb::kForRead);
    ASSERT_EQ(ref.openStatus(), Acad::eOk);
    EXPECT_EQ(ref->blockTableRecord(), door);
  }
  {
    AcDbLayerTable* lt = nullptr;
    ASSERT_EQ(db->getLayerTable(lt), Acad::eOk);
    AcDbObjectId walls;
    EXPECT_EQ(lt->getAt(u"WALLS", walls), Acad::eOk);
    EXPECT_TRUE(lt->has(u"0"));  // a drawing always has layer 0
    AcDbObjectId tableId = lt->objectId();
    lt->close();
    AcDbObjectPointer<AcDbLayerTableRecord> rec(walls, AcDb::kForRead);
    ASSERT_EQ(rec.openStatus(), Acad::eOk);
    EXPECT_EQ(rec->ownerId(), tableId);
  }
  // What R12 does not store: the dictionaries and a layout for each space.
  EXPECT_FALSE(db->namedObjectsDictionaryId().isNull());
  AcDbDictionary* layouts = nullptr;
  ASSERT_EQ(db->getLayoutDictionary(layouts), Acad::eOk);
  EXPECT_TRUE(layouts->has(u"Model"));
  layouts->close();
  AcDbObjectPointer<AcDbBlockTableRecord> ms(model, AcDb::kForRead);
  EXPECT_FALSE(ms->getLayoutId().isNull());
  ms.close();
  // Saved as AC1032 and read again, it is the same drawing.
  std::string first = write(db.get());
  auto again = read(first);
  ASSERT_TRUE(again);
  EXPECT_TRUE(sameFile(first, write(again.get())));
}

}  // namespace
