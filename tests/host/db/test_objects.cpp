// The object model on a class made for the test: handles and ids, the open
// protocol and its refusals, notifications in the host's order, undo,
// extended data, and one schema driving both filers.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/db/memfiler.h"
#include "host/db/schema.h"
#include "host/dbmain.h"

using zepk::db::ClassSchema;
using zepk::db::field;
using zepk::db::kOptional;
using zepk::db::MemoryDwgFiler;
using zepk::db::MemoryDxfFiler;

namespace {

// A small class with one field of each common kind.
class Marker : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(Marker);
  static const ClassSchema& schema();
  double size() const { return size_; }
  void setSize(double s) {
    assertWriteEnabled();
    size_ = s;
  }
  void setLabel(std::u16string s) {
    assertWriteEnabled();
    label_ = std::move(s);
  }
  const std::u16string& label() const { return label_; }
  void setOther(AcDbObjectId id) {
    assertWriteEnabled();
    other_ = id;
  }
  AcDbObjectId other() const { return other_; }
  AcGePoint3d at() const { return at_; }

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

  // What the marker heard as a persistent reactor of others.
  std::vector<std::string> heard;
  void modified(const AcDbObject*) override { heard.push_back("modified"); }
  void erased(const AcDbObject*, bool e) override { heard.push_back(e ? "erased" : "unerased"); }

  double size_ = 1.0;
  std::u16string label_;
  AcGePoint3d at_;
  int16_t flags_ = 0;
  AcDbObjectId other_;
};

ACRX_DEFINE_MEMBERS(Marker);

const ClassSchema& Marker::schema() {
  static const ClassSchema s{u"TestMarker",
                             {
                                 field<&Marker::size_>(40, "Size", 1.0),
                                 field<&Marker::label_>(1, "Label"),
                                 field<&Marker::at_>(10, "Position"),
                                 field<&Marker::flags_>(70, "Flags", 0, kOptional),
                                 field<&Marker::other_>(340, "Other"),
                             }};
  return s;
}

struct Log : AcDbObjectReactor, AcDbDatabaseReactor {
  std::vector<std::string> events;
  void openedForModify(const AcDbObject*) override { events.push_back("openedForModify"); }
  void modified(const AcDbObject*) override { events.push_back("modified"); }
  void modifiedXData(const AcDbObject*) override { events.push_back("modifiedXData"); }
  void erased(const AcDbObject*, bool e) override { events.push_back(e ? "erased" : "unerased"); }
  void objectClosed(AcDbObjectId) override { events.push_back("objectClosed"); }
  void objectAppended(const AcDbDatabase*, const AcDbObject*) override { events.push_back("db:appended"); }
  void objectModified(const AcDbDatabase*, const AcDbObject*) override { events.push_back("db:modified"); }
  void objectErased(const AcDbDatabase*, const AcDbObject*, bool) override { events.push_back("db:erased"); }
};

class ObjectsTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!Marker::gpDesc)
      Marker::gpDesc = newAcRxClass(u"TestMarker", u"AcDbObject", [] { return static_cast<AcRxObject*>(new Marker); },
                                    u"TESTMARKER", u"tests");
  }
  AcDbObjectId add(double size = 1.0) {
    auto* m = new Marker;
    m->size_ = size;
    AcDbObjectId id;
    EXPECT_EQ(db.addAcDbObject(id, m), Acad::eOk);
    m->close();
    return id;
  }
  AcDbDatabase db;
};

TEST_F(ObjectsTest, HandlesAreUniqueAndFoundAgain) {
  AcDbObjectId a = add(), b = add();
  EXPECT_NE(a, b);
  EXPECT_EQ(b.handle().value(), a.handle().value() + 1);
  EXPECT_EQ(db.handseed().value(), b.handle().value() + 1);
  AcDbObjectId found;
  ASSERT_EQ(db.getAcDbObjectId(found, false, b.handle()), Acad::eOk);
  EXPECT_EQ(found, b);
  EXPECT_EQ(db.getAcDbObjectId(found, false, AcDbHandle(0xABCDEF)), Acad::eKeyNotFound);
  EXPECT_EQ(AcDbHandle(u"1f").value(), 0x1Fu);
  EXPECT_EQ(AcDbHandle(u"xyz").value(), 0u);
  EXPECT_EQ(AcDbHandle(0x2A).ascii(), u"2A");
  // A handle read from a file keeps its number, and the seed moves past it.
  AcDbObjectId c;
  auto* m = new Marker;
  ASSERT_EQ(db.addAcDbObjectWithHandle(c, m, AcDbHandle(0x400)), Acad::eOk);
  m->close();
  EXPECT_EQ(db.handseed().value(), 0x401u);
  auto* dup = new Marker;
  AcDbObjectId d;
  EXPECT_EQ(db.addAcDbObjectWithHandle(d, dup, AcDbHandle(0x400)), Acad::eHandleInUse);
  delete dup;
  EXPECT_EQ(db.setHandseed(AcDbHandle(0x10)), Acad::eInvalidInput);
}

TEST_F(ObjectsTest, OpenProtocolRefusesWhatTheHostRefuses) {
  AcDbObjectId id = add();
  Marker *r1 = nullptr, *r2 = nullptr, *w = nullptr;
  ASSERT_EQ(acdbOpenObject(r1, id, AcDb::kForRead), Acad::eOk);
  ASSERT_EQ(acdbOpenObject(r2, id, AcDb::kForRead), Acad::eOk);  // readers share
  EXPECT_EQ(acdbOpenObject(w, id, AcDb::kForWrite), Acad::eWasOpenForRead);
  EXPECT_EQ(r1->upgradeOpen(), Acad::eWasOpenForRead);  // another reader is there
  r2->close();
  EXPECT_EQ(r1->upgradeOpen(), Acad::eOk);
  EXPECT_TRUE(r1->isWriteEnabled());
  EXPECT_EQ(acdbOpenObject(r2, id, AcDb::kForRead), Acad::eWasOpenForWrite);
  r1->close();
  EXPECT_EQ(acdbOpenObject(w, AcDbObjectId::kNull, AcDb::kForWrite), Acad::eNullObjectId);

  ASSERT_EQ(acdbOpenObject(w, id, AcDb::kForWrite), Acad::eOk);
  ASSERT_EQ(w->erase(), Acad::eOk);
  w->close();
  EXPECT_TRUE(id.isErased());
  EXPECT_EQ(acdbOpenObject(r1, id, AcDb::kForRead), Acad::eWasErased);
  ASSERT_EQ(acdbOpenObject(w, id, AcDb::kForWrite, true), Acad::eOk);
  EXPECT_EQ(w->erase(false), Acad::eOk);
  w->close();
  EXPECT_FALSE(id.isErased());

  // The smart pointer closes on every path.
  {
    AcDbObjectPointer<Marker> p(id, AcDb::kForWrite);
    ASSERT_EQ(p.openStatus(), Acad::eOk);
    p->setSize(7);
  }
  AcDbObjectPointer<Marker> again(id, AcDb::kForWrite);
  EXPECT_EQ(again.openStatus(), Acad::eOk);
  EXPECT_EQ(again->size(), 7);
}

TEST_F(ObjectsTest, NotificationsComeInTheHostsOrder) {
  AcDbObjectId id = add(), watcher = add();
  Log log;
  db.addReactor(&log);
  {
    AcDbObjectPointer<Marker> w(id, AcDb::kForWrite);
    w->addReactor(&log);
    w->addPersistentReactor(watcher);
  }
  log.events.clear();
  {
    AcDbObjectPointer<Marker> w(id, AcDb::kForWrite);
    w->setSize(2);
    w->setSize(3);  // one openedForModify per open
    // While it notifies, the changed object refuses to be opened for write.
  }
  EXPECT_EQ(log.events, (std::vector<std::string>{"openedForModify", "modified", "db:modified", "objectClosed"}));
  AcDbObjectPointer<Marker> seen(watcher, AcDb::kForRead);
  EXPECT_EQ(seen->heard, (std::vector<std::string>{"modified"}));
  seen.close();

  log.events.clear();
  {
    AcDbObjectPointer<Marker> w(id, AcDb::kForWrite);
    w->erase();
  }
  EXPECT_EQ(log.events.front(), "openedForModify");
  EXPECT_EQ(log.events[1], "erased");
  EXPECT_EQ(log.events[2], "db:erased");

  log.events.clear();
  auto* fresh = new Marker;
  AcDbObjectId fid;
  db.addAcDbObject(fid, fresh);
  fresh->close();
  EXPECT_EQ(log.events, (std::vector<std::string>{"db:appended"}));
  db.removeReactor(&log);
  AcDbObjectPointer<Marker> w(id, AcDb::kForWrite, true);
  w->removeReactor(&log);
}

// A reactor that tries to change the object that notifies it.
struct Meddler : AcDbObjectReactor {
  Acad::ErrorStatus status = Acad::eOk;
  void modified(const AcDbObject* o) override {
    Marker* m = nullptr;
    status = acdbOpenObject(m, o->objectId(), AcDb::kForWrite);
    if (m) m->close();
  }
};

TEST_F(ObjectsTest, ANotifyingObjectRefusesAWriteOpen) {
  AcDbObjectId id = add();
  Meddler meddler;
  Marker* m = nullptr;
  ASSERT_EQ(acdbOpenObject(m, id, AcDb::kForWrite), Acad::eOk);
  m->addReactor(&meddler);
  m->setSize(4);
  m->close();
  // An object telling others of its change refuses to be changed by them.
  EXPECT_EQ(meddler.status, Acad::eWasNotifying);
  ASSERT_EQ(acdbOpenObject(m, id, AcDb::kForWrite), Acad::eOk);
  m->removeReactor(&meddler);
  m->close();
}

TEST_F(ObjectsTest, UndoPutsObjectsBackInReverse) {
  AcDbObjectId id = add(1.0);
  db.beginUndoMark();
  {
    AcDbObjectPointer<Marker> w(id, AcDb::kForWrite);
    w->setSize(2);
    w->setLabel(u"changed");
  }
  {
    AcDbObjectPointer<Marker> w(id, AcDb::kForWrite);
    w->setSize(3);
    w->erase();
  }
  AcDbObjectId added = add(9);
  db.endUndoMark();
  Log log;
  db.addReactor(&log);
  ASSERT_TRUE(db.undoBack());
  db.removeReactor(&log);
  EXPECT_TRUE(log.events.empty());  // undo is silent
  EXPECT_FALSE(id.isErased());
  EXPECT_TRUE(added.isErased());
  AcDbObjectPointer<Marker> r(id, AcDb::kForRead);
  EXPECT_EQ(r->size(), 1.0);
  EXPECT_EQ(r->label(), u"");
  EXPECT_FALSE(db.undoBack());
}

TEST_F(ObjectsTest, ExtendedDataByApplication) {
  AcDbObjectId id = add();
  AcDbObjectPointer<Marker> w(id, AcDb::kForWrite);
  resbuf* xd = acutBuildList(1001, u"APP1", 1000, u"text", 1070, 7, 1001, u"APP2", 1040, 2.5, 0);
  ASSERT_EQ(w->setXData(xd), Acad::eOk);
  acutRelRb(xd);
  resbuf* app2 = w->xData(u"app2");
  ASSERT_NE(app2, nullptr);
  EXPECT_EQ(app2->restype, 1001);
  ASSERT_NE(app2->rbnext, nullptr);
  EXPECT_EQ(app2->rbnext->resval.rreal, 2.5);
  EXPECT_EQ(app2->rbnext->rbnext, nullptr);
  acutRelRb(app2);
  // Naming an application alone removes its part; the others stay.
  resbuf* drop = acutBuildList(1001, u"APP1", 0);
  ASSERT_EQ(w->setXData(drop), Acad::eOk);
  acutRelRb(drop);
  EXPECT_EQ(w->xData(u"APP1"), nullptr);
  resbuf* all = w->xData();
  ASSERT_NE(all, nullptr);
  EXPECT_EQ(std::u16string(all->resval.rstring), u"APP2");
  acutRelRb(all);
  // Over the limit: refused, nothing changed.
  std::u16string big(300, u'x');
  resbuf* huge = acutBuildList(1001, u"BIG", 0);
  resbuf* tail = huge;
  for (int i = 0; i < 60; ++i) {
    tail->rbnext = acutBuildList(1000, big.c_str(), 0);
    tail = tail->rbnext;
  }
  EXPECT_EQ(w->setXData(huge), Acad::eXdataSizeExceeded);
  acutRelRb(huge);
  EXPECT_EQ(w->xData(u"BIG"), nullptr);
  resbuf* bad = acutBuildList(1000, u"no application", 0);
  EXPECT_EQ(w->setXData(bad), Acad::eInvalidXDataAppName);
  acutRelRb(bad);
}

TEST_F(ObjectsTest, OneSchemaDrivesBothFilers) {
  AcDbObjectId other = add();
  AcDbObjectId id = add();
  {
    AcDbObjectPointer<Marker> w(id, AcDb::kForWrite);
    w->setSize(2.5);
    w->setLabel(u"测点 A");
    w->setOther(other);
    w->at_ = AcGePoint3d(1, 2, 3);
  }
  AcDbObjectPointer<Marker> r(id, AcDb::kForRead);
  MemoryDxfFiler out(AcDb::kFileFiler, &db);
  ASSERT_EQ(r->dxfOutFields(&out), Acad::eOk);
  std::vector<int> codes;
  for (auto& it : out.items()) codes.push_back(it.code);
  // The optional flags field holds its default and is left out of files.
  EXPECT_EQ(codes, (std::vector<int>{330, 100, 40, 1, 10, 340}));

  Marker copy;
  out.rewind();
  ASSERT_EQ(copy.dxfInFields(&out), Acad::eOk);
  EXPECT_EQ(copy.size(), 2.5);
  EXPECT_EQ(copy.label(), u"测点 A");
  EXPECT_EQ(copy.other(), other);
  EXPECT_EQ(copy.at().z, 3);

  MemoryDwgFiler dwg;
  ASSERT_EQ(r->dwgOutFields(&dwg), Acad::eOk);
  Marker copy2;
  dwg.rewind();
  ASSERT_EQ(copy2.dwgInFields(&dwg), Acad::eOk);
  EXPECT_EQ(copy2.label(), u"测点 A");
  EXPECT_EQ(copy2.other(), other);

  // A group list without the class's marker is refused.
  MemoryDxfFiler bad;
  bad.writeDouble(40, 1.0);
  Marker m;
  EXPECT_EQ(m.dxfInFields(&bad), Acad::eBadDxfSequence);
  // A group of the wrong kind for its field is refused.
  MemoryDxfFiler wrong;
  wrong.writeString(100, u"TestMarker");
  wrong.writeString(40, u"not a number");
  EXPECT_EQ(m.dxfInFields(&wrong), Acad::eInvalidResBuf);

  EXPECT_NE(Marker::schema().byName("size"), nullptr);
  EXPECT_EQ(Marker::schema().byName("nothing"), nullptr);
}

TEST(RxClasses, RecordsKnowTheirFamily) {
  AcRxClass* base = AcDbObject::desc();
  ASSERT_NE(base, nullptr);
  AcRxClass* mine = newAcRxClass(u"TestDerived", u"AcDbObject", nullptr, u"TESTDERIVED", u"tests");
  ASSERT_NE(mine, nullptr);
  EXPECT_TRUE(mine->isDerivedFrom(base));
  EXPECT_FALSE(base->isDerivedFrom(mine));
  EXPECT_EQ(acrxFindClassByDxfName(u"TESTDERIVED"), mine);
  // Registering the same name again gives the same record.
  EXPECT_EQ(newAcRxClass(u"TestDerived", u"AcDbObject"), mine);
  // A parent that does not exist refuses the class.
  EXPECT_EQ(newAcRxClass(u"Orphan", u"NoSuchParent"), nullptr);
  deleteAcRxClass(mine);
  EXPECT_EQ(acrxFindClass(u"TestDerived"), nullptr);
}

}  // namespace

namespace {

// Result buffers in and out of a group list keep each code's kind: points
// in one node, handles as text, references as names, 16-bit and 32-bit
// integers in their own fields.
TEST(MemoryDxfFilerTest, ResultBuffersKeepTheirKinds) {
  MemoryDxfFiler f;
  const ads_point pt = {1, 2, 3};
  const ads_name none = {0, 0};
  // Group 0 is given as RTDXF0, since 0 ends the list.
  resbuf* in = acutBuildList(RTDXF0, u"LINE", 5, u"2F", 10, pt, 40, 2.5, 70, 3, 90, 70000, 330, none, 0);
  for (resbuf* p = in; p; p = p->rbnext) ASSERT_EQ(f.writeItem(*p), Acad::eOk) << p->restype;
  acutRelRb(in);
  std::vector<zepk::db::DxfItem::Kind> kinds;
  for (auto& it : f.items()) kinds.push_back(it.kind);
  using K = zepk::db::DxfItem;
  EXPECT_EQ(kinds, (std::vector<K::Kind>{K::String, K::String, K::Point, K::Real, K::Int, K::Int, K::Id}));
  resbuf rb;
  ASSERT_EQ(f.readItem(&rb), Acad::eOk);
  EXPECT_EQ(std::u16string(rb.resval.rstring), u"LINE");
  f.readItem(&rb);
  f.readItem(&rb);
  EXPECT_EQ(rb.resval.rpoint[2], 3.0);
  f.readItem(&rb);
  EXPECT_EQ(rb.resval.rreal, 2.5);
  f.readItem(&rb);
  EXPECT_EQ(rb.resval.rint, 3);
  f.readItem(&rb);
  EXPECT_EQ(rb.resval.rlong, 70000);
  f.readItem(&rb);
  EXPECT_EQ(f.readItem(&rb), Acad::eEndOfFile);
  f.pushBackItem();
  EXPECT_EQ(f.peekCode(), 330);
}

}  // namespace
