// Writing a database as an AC1032 (2018) DXF file, text in UTF-8.
//
//   HEADER    the drawing's header variables as kept, with $ACADVER
//             "AC1032", $DWGCODEPAGE the drawing's ("ANSI_1252" when it
//             has none) and $HANDSEED the next free handle of the database
//   CLASSES   the records the drawing came with, and records for classes of
//             applications whose objects it holds
//   TABLES    VPORT, LTYPE, LAYER, STYLE, VIEW, UCS, APPID, DIMSTYLE,
//             BLOCK_RECORD, each TABLE with its records in table order
//   BLOCKS    each block: its BLOCK, its entities, its ENDBLK (the two
//             spaces' entities are in ENTITIES)
//   ENTITIES  model space, then the paper space of the current sheet
//   OBJECTS   the named objects dictionary, then every other object in
//             handle order
//   and the sections the drawing came with that the host does not read.
//
// Each object is its type (the DXF name of its class; a proxy's original
// one), its handle, what its dxfOutFields gives (points as x, y, z groups,
// references as the handles of the objects), and its extended data. A
// polyline's vertices and a block reference's attributes follow it, closed
// by their SEQEND.
#include <algorithm>
#include <cmath>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <unordered_map>

#include "host/db/dbobjects.h"
#include "host/db/dxfinternal.h"
#include "host/db/ents_internal.h"
#include "host/db/internal.h"
#include "host/dbdict.h"
#include "host/dbents.h"
#include "host/dbpl.h"
#include "host/dbproxy.h"
#include "host/dbsymtb.h"
#include "host/dxf/writer.h"
#include "host/system/utf.h"

namespace zepk::db {

namespace {

using dxf::GroupWriter;

// Classes of the host whose objects a file lists in CLASSES, with the
// record a file gives them: C++ name, proxy flags, entity. The host files
// them as their application.
struct StandardClass {
  const char16_t* dxfName;
  const char16_t* className;
  int32_t flags;
  bool entity;
};
constexpr StandardClass kStandardClasses[] = {
    {u"ACDBDICTIONARYWDFLT", u"AcDbDictionaryWithDefault", 0, false},
    {u"DICTIONARYVAR", u"AcDbDictionaryVar", 0, false},
    {u"ACDBPLACEHOLDER", u"AcDbPlaceHolder", 0, false},
    {u"LAYOUT", u"AcDbLayout", 0, false},
    {u"SORTENTSTABLE", u"AcDbSortentsTable", 0, false},
    {u"IMAGE", u"AcDbRasterImage", 2175, true},
    {u"IMAGEDEF", u"AcDbRasterImageDef", 0, false},
    {u"IMAGEDEF_REACTOR", u"AcDbRasterImageDefReactor", 1, false},
    {u"RASTERVARIABLES", u"AcDbRasterVariables", 0, false},
};

const char16_t* kHostApp = u"ZEPK host";

// Text as UTF-8 in `buf`: ASCII copied as it is, without a conversion.
std::string_view utf8In(std::string& buf, const std::u16string& s) {
  buf.resize(s.size());
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] >= 0x80) {
      buf = sys::toUtf8(s);
      return buf;
    }
    buf[i] = static_cast<char>(s[i]);
  }
  return buf;
}

// A filer that writes what an object gives straight to the file's groups,
// as the memory filer's items would be written one by one: a real in an
// integer group as its whole value, points as x, y (and z) groups,
// references as the handles of the objects (0 for none or an erased one).
// Only for writing; a fault of the groups is the group writer's to tell.
class StreamFiler : public AcDbDxfFiler {
 public:
  StreamFiler(GroupWriter& w, AcDbDatabase* db) : w_(w), db_(db) {}
  Acad::ErrorStatus filerStatus() const override { return status_; }
  AcDb::FilerType filerType() const override { return AcDb::kFileFiler; }
  void setFilerStatus(Acad::ErrorStatus es) override { status_ = es; }
  void resetFilerStatus() override { status_ = Acad::eOk; }
  AcDbDatabase* database() const override { return db_; }
  bool includesDefaultValues() const override { return false; }

  Acad::ErrorStatus readItem(resbuf*) override { return Acad::eNotApplicable; }
  void pushBackItem() override {}
  bool atEOF() override { return true; }
  bool atSubclassData(const ACHAR*) override { return false; }
  bool atExtendedData() override { return true; }
  int peekCode() override { return 0; }

  Acad::ErrorStatus writeItem(const resbuf& item) override {
    if (status_ != Acad::eOk) return status_;
    // Converted as the memory filer converts it.
    MemoryDxfFiler m(AcDb::kFileFiler, db_);
    m.writeItem(item);
    for (const DxfItem& it : m.items()) zepk::db::writeItem(this, it);
    return Acad::eOk;
  }
  Acad::ErrorStatus writeString(int code, const std::u16string& s) override {
    if (status_ == Acad::eOk) w_.text(code, utf8In(text_, s));
    return status_;
  }
  using AcDbDxfFiler::writeString;
  Acad::ErrorStatus writeInt64(int code, Adesk::Int64 v) override {
    if (status_ == Acad::eOk) w_.integer(code, v);
    return status_;
  }
  Acad::ErrorStatus writeDouble(int code, double v, int) override {
    if (status_ != Acad::eOk) return status_;
    if (dxf::valueKind(code) == dxf::ValueKind::Integer) w_.integer(code, std::llround(v));
    else w_.real(code, v);
    return status_;
  }
  Acad::ErrorStatus writePoint3d(int code, const AcGePoint3d& p, int) override {
    if (status_ == Acad::eOk) w_.point(code, p.x, p.y, p.z);
    return status_;
  }
  Acad::ErrorStatus writePoint2d(int code, const AcGePoint2d& p, int) override {
    if (status_ == Acad::eOk) w_.point(code, p.x, p.y);
    return status_;
  }
  Acad::ErrorStatus writeObjectId(int code, const AcDbObjectId& id) override {
    if (status_ != Acad::eOk) return status_;
    const uint64_t h = id.isNull() || id.isErased() ? 0 : id.handle().value();
    w_.text(code, handleText(h));
    return status_;
  }
  Acad::ErrorStatus writeHandle(int code, const AcDbHandle& h) override {
    if (status_ == Acad::eOk) w_.text(code, handleText(h.value()));
    return status_;
  }
  Acad::ErrorStatus writeBinaryChunk(int code, const std::string& bytes) override {
    if (status_ == Acad::eOk) w_.text(code, bytesToHex(bytes));
    return status_;
  }

 private:
  GroupWriter& w_;
  AcDbDatabase* db_;
  Acad::ErrorStatus status_ = Acad::eOk;
  std::string text_;
};

class Writer {
 public:
  explicit Writer(AcDbDatabase* db) : db_(db), filer_(AcDb::kFileFiler, db), stream_(w_, db) {}
  // The bytes go to `sink` as they are made rather than staying here.
  void setSink(GroupWriter::Sink sink) {
    streaming_ = true;
    w_.setSink(std::move(sink));
  }
  bool run();
  std::string release() { return w_.release(); }
  const std::string& error() const { return error_; }

 private:
  bool fail(const std::string& what) {
    if (error_.empty()) error_ = what;
    return false;
  }
  bool check(AcDbObject* obj) {
    if (w_.ok()) return true;
    return fail(obj ? label(obj) + ": " + w_.error() : w_.error());
  }
  std::string label(const AcDbObject* obj) const {
    return sys::toUtf8(typeName(obj)) + " " + handleText(obj->objectId().handle().value());
  }
  // What the writer needs to know of an object's class, found once a class.
  struct Kind {
    bool proxy = false;   // a proxy: its type is its own
    bool table = false;   // a symbol table
    bool record = false;  // a symbol table record
    bool entity = false;
  };
  const Kind& kindOf(const AcDbObject* obj);
  std::u16string typeName(const AcDbObject* obj) const;
  // The type as the file writes it, in UTF-8; the same string for every
  // object of a class.
  const std::string& typeText(const AcDbObject* obj);
  // Text as UTF-8: ASCII copied as it is, without a conversion.
  std::string_view utf8(const std::u16string& s);

  void beginSection(const char* name) {
    w_.text(0, "SECTION");
    w_.text(2, name);
  }
  void endSection() { w_.text(0, "ENDSEC"); }

  bool prepare();
  bool header();
  bool classes();
  bool tables();
  bool blocks();
  bool entities();
  bool objects();
  void keptSections();

  void item(const DxfItem& it);
  void xdata(const AcDbObject* obj);
  // One object: type, handle, data, extended data. A BLOCK adds its
  // block's own part after its entity part.
  bool object(AcDbObject* obj, const AcDbBlockTableRecord* blockOf = nullptr);
  // An entity and the vertices or attributes that follow it.
  bool entity(AcDbObjectId id);
  bool blockEntities(AcDbBlockTableRecord* btr);
  // Writes these entities in order, the groups of some runs of them made
  // by a second thread meanwhile.
  bool entitiesInParallel(const AcDbObjectIdArray& ids);
  // Writes entities [from, to) of `ids` to the writer's own groups up to
  // one it may not write in a second thread; the index of that one, or `to`.
  size_t entitiesAside(const AcDbObjectIdArray& ids, size_t from, size_t to);
  // The BLOCK and ENDBLK of a block, made when the block has none yet.
  bool blockEnds(AcDbBlockTableRecord* btr, AcDbObjectId& begin, AcDbObjectId& end);

  AcDbDatabase* db_;
  GroupWriter w_;
  std::string error_;
  MemoryDxfFiler filer_;  // what each object gives, one object at a time
  StreamFiler stream_;    // or straight to the groups
  std::unordered_map<const AcRxClass*, std::string> typeTexts_;
  std::string proxyType_;
  std::string text_;      // utf8()'s result
  std::vector<std::pair<const AcRxClass*, Kind>> kinds_;  // kindOf's, a few classes
  AcDbObjectIdArray all_;  // every object in handle order, as classes() found them
  uint64_t allSeed_ = 0;   // the next handle then
  bool streaming_ = false;
};

std::u16string Writer::typeName(const AcDbObject* obj) const {
  if (const ProxyData* p = proxyData(obj)) return p->dxfName;
  if (AcDbSymbolTable::cast(obj)) return u"TABLE";
  const AcRxClass* c = obj->isA();
  const char16_t* n = c ? c->dxfName() : nullptr;
  if (n && *n) return n;
  // A class registered without a DXF name is filed under its C++ name.
  std::u16string s = c ? c->name() : u"OBJECT";
  for (char16_t& ch : s) ch = sys::asciiUpper(ch);
  return s;
}

const Writer::Kind& Writer::kindOf(const AcDbObject* obj) {
  const AcRxClass* c = obj->isA();
  for (const auto& [k, kind] : kinds_)
    if (k == c) return kind;
  Kind kind;
  kind.proxy = proxyData(obj) != nullptr;
  kind.table = AcDbSymbolTable::cast(obj) != nullptr;
  kind.record = AcDbSymbolTableRecord::cast(obj) != nullptr;
  kind.entity = AcDbEntity::cast(obj) != nullptr;
  return kinds_.emplace_back(c, kind).second;
}

const std::string& Writer::typeText(const AcDbObject* obj) {
  const Kind& kind = kindOf(obj);
  if (kind.proxy || kind.table) {
    proxyType_ = sys::toUtf8(typeName(obj));
    return proxyType_;
  }
  auto [at, added] = typeTexts_.try_emplace(obj->isA());
  if (added) at->second = sys::toUtf8(typeName(obj));
  return at->second;
}

std::string_view Writer::utf8(const std::u16string& s) { return utf8In(text_, s); }

void Writer::item(const DxfItem& it) {
  const int c = it.code;
  switch (it.kind) {
    case DxfItem::String: w_.text(c, utf8(it.s)); break;
    case DxfItem::Int: w_.integer(c, it.i); break;
    case DxfItem::Real:
      // A real in an integer group: its whole value.
      if (dxf::valueKind(c) == dxf::ValueKind::Integer) w_.integer(c, std::llround(it.p[0]));
      else w_.real(c, it.p[0]);
      break;
    case DxfItem::Point:
      if (it.dims == 2) w_.point(c, it.p[0], it.p[1]);
      else w_.point(c, it.p[0], it.p[1], it.p[2]);
      break;
    case DxfItem::Id: {
      // A reference to an object that is erased is no reference.
      uint64_t h = it.id.isNull() || it.id.isErased() ? 0 : it.id.handle().value();
      w_.text(c, handleText(h));
      break;
    }
    case DxfItem::Handle: w_.text(c, handleText(it.handle.value())); break;
    case DxfItem::Binary: w_.text(c, bytesToHex(it.b)); break;
  }
}

void Writer::xdata(const AcDbObject* obj) {
  resbuf* chain = obj->xData();
  for (const resbuf* p = chain; p; p = p->rbnext) {
    const int c = p->restype;
    if (isPointCode(c)) {
      w_.point(c, p->resval.rpoint[0], p->resval.rpoint[1], p->resval.rpoint[2]);
    } else if (c == 1004) {
      w_.text(c, bytesToHex(std::string_view(p->resval.rbinary.buf ? p->resval.rbinary.buf : "",
                                             p->resval.rbinary.buf ? static_cast<size_t>(p->resval.rbinary.clen) : 0)));
    } else if (c >= 1010 && c <= 1059) {
      w_.real(c, p->resval.rreal);
    } else if (c == 1071) {
      w_.integer(c, p->resval.rlong);
    } else if (c >= 1060 && c <= 1070) {
      w_.integer(c, p->resval.rint);
    } else {
      w_.text(c, sys::toUtf8(p->resval.rstring ? p->resval.rstring : u""));
    }
  }
  acutRelRb(chain);
}

bool Writer::object(AcDbObject* obj, const AcDbBlockTableRecord* blockOf) {
  if (!blockOf) {
    // The type and handle, then what the object gives as it gives it.
    const std::string& type = typeText(obj);
    w_.text(0, type);
    if (kindOf(obj).table) w_.text(2, sys::toUtf8(symbolTableName(static_cast<const AcDbSymbolTable*>(obj))));
    w_.text(type == "DIMSTYLE" ? 105 : 5, handleText(obj->objectId().handle().value()));
    stream_.resetFilerStatus();
    Acad::ErrorStatus es = obj->dxfOutFields(&stream_);
    if (es != Acad::eOk) return fail(label(obj) + ": its class could not write it (status " + std::to_string(es) + ")");
    xdata(obj);
    return check(obj);
  }
  // A BLOCK: its block's own part follows its entity part unless the
  // object wrote that part itself.
  MemoryDxfFiler& f = filer_;
  f.clear();
  Acad::ErrorStatus es = obj->dxfOutFields(&f);
  if (es == Acad::eOk && blockOf &&
      std::none_of(f.items().begin(), f.items().end(),
                   [](const DxfItem& it) { return it.code == 100 && it.s == u"AcDbBlockBegin"; }))
    es = AcDbBlockTableRecord::blockBeginSchema().dxfOut(blockOf, &f);
  if (es != Acad::eOk) return fail(label(obj) + ": its class could not write it (status " + std::to_string(es) + ")");
  const std::string& type = typeText(obj);
  w_.text(0, type);
  if (kindOf(obj).table) w_.text(2, sys::toUtf8(symbolTableName(static_cast<const AcDbSymbolTable*>(obj))));
  w_.text(type == "DIMSTYLE" ? 105 : 5, handleText(obj->objectId().handle().value()));
  for (const DxfItem& it : f.items()) item(it);
  xdata(obj);
  return check(obj);
}

// ---------------------------------------------------------------- sections

bool Writer::header() {
  beginSection("HEADER");
  std::vector<HeaderVar> vars = headerVars(db_);
  auto find = [&](const char16_t* name) {
    return std::find_if(vars.begin(), vars.end(), [&](const HeaderVar& v) { return v.name == name; });
  };
  auto text = [](int code, std::u16string value) {
    DxfItem it = makeItem(code, DxfItem::String);
    it.s = std::move(value);
    return std::vector<DxfItem>{it};
  };
  // The three the writer decides, in the places the drawing has them; the
  // missing ones after $ACADVER.
  if (find(u"$ACADVER") == vars.end()) vars.insert(vars.begin(), HeaderVar{u"$ACADVER", {}});
  find(u"$ACADVER")->groups = text(1, u"AC1032");
  size_t at = static_cast<size_t>(find(u"$ACADVER") - vars.begin()) + 1;
  // The text is UTF-8 whatever the drawing's code page; the variable keeps
  // the drawing's value, as readers of this release expect.
  if (find(u"$DWGCODEPAGE") == vars.end()) vars.insert(vars.begin() + static_cast<std::ptrdiff_t>(at++), HeaderVar{u"$DWGCODEPAGE", {}});
  auto page = find(u"$DWGCODEPAGE");
  if (page->groups.size() != 1 || page->groups[0].code != 3 || page->groups[0].kind != DxfItem::String ||
      page->groups[0].s.empty())
    page->groups = text(3, u"ANSI_1252");
  if (find(u"$HANDSEED") == vars.end()) vars.insert(vars.begin() + static_cast<std::ptrdiff_t>(at), HeaderVar{u"$HANDSEED", {}});
  find(u"$HANDSEED")->groups = text(5, sys::fromUtf8(handleText(db_->handseed().value())));
  for (const HeaderVar& v : vars) {
    w_.text(9, sys::toUtf8(v.name));
    for (const DxfItem& it : v.groups) item(it);
    if (!w_.ok()) return fail("header variable " + sys::toUtf8(v.name) + ": " + w_.error());
  }
  endSection();
  return true;
}

bool Writer::classes() {
  std::vector<DxfClassRecord> records = dxfFileData(db_).classes;
  // Objects per DXF name, and the classes that have them.
  std::map<std::u16string, int> counts;
  std::map<std::u16string, const AcDbObject*> sample;
  // Objects are counted by class first (proxies and tables by their own
  // names), in handle order, so that each name's sample is its first object.
  struct PerClass {
    int count = 0;
    size_t first = 0;
    const AcDbObject* sample = nullptr;
  };
  std::unordered_map<const AcRxClass*, PerClass> perClass;
  std::map<std::u16string, size_t> firstAt;
  auto add = [&](const std::u16string& n, const AcDbObject* o, size_t at, int count) {
    counts[n] += count;
    auto [f, added] = firstAt.emplace(n, at);
    if (added || at < f->second) {
      f->second = at;
      sample[n] = o;
    }
  };
  all_ = db_->allObjects();
  allSeed_ = db_->handseed().value();
  const AcDbObjectIdArray& all = all_;
  for (size_t k = 0; k < all.size(); ++k) {
    AcDbObjectId id = all[k];
    if (id.isErased()) continue;
    AcDbObject* o = peekObject(id);
    if (!o) continue;
    const Kind& kind = kindOf(o);
    if (kind.proxy || kind.table) {
      add(typeName(o), o, k, 1);
      continue;
    }
    PerClass& c = perClass[o->isA()];
    if (c.count++ == 0) {
      c.first = k;
      c.sample = o;
    }
  }
  for (const auto& [cls, c] : perClass) add(typeName(c.sample), c.sample, c.first, c.count);
  // The file is about this many bytes an object.
  if (!streaming_) w_.reserve(all.size() * 320 + (1 << 16));
  for (auto& [name, obj] : sample) {
    bool have = std::any_of(records.begin(), records.end(), [&](const DxfClassRecord& r) { return r.dxfName == name; });
    if (have) continue;
    DxfClassRecord r;
    r.dxfName = name;
    r.isEntity = AcDbEntity::cast(obj) != nullptr;
    if (proxyData(obj)) continue;  // a proxy keeps its record from its file, if it had one
    const AcRxClass* c = obj->isA();
    bool standard = false;
    for (const StandardClass& s : kStandardClasses) {
      if (name == s.dxfName) {
        r.className = s.className;
        r.appName = kHostApp;
        r.proxyFlags = s.flags;
        r.isEntity = s.entity;
        standard = true;
      }
    }
    if (!standard) {
      // The host's own classes have fixed types in every reader; those of
      // applications are listed.
      if (!c || std::u16string(c->appName()) == kHostApp || c->name() == std::u16string(u"AcDbObject")) continue;
      r.className = c->name();
      r.appName = c->appName();
      r.proxyFlags = c->proxyFlags();
    }
    records.push_back(std::move(r));
  }
  beginSection("CLASSES");
  for (const DxfClassRecord& r : records) {
    w_.text(0, "CLASS");
    w_.text(1, sys::toUtf8(r.dxfName));
    w_.text(2, sys::toUtf8(r.className));
    w_.text(3, sys::toUtf8(r.appName));
    w_.integer(90, r.proxyFlags);
    auto n = counts.find(r.dxfName);
    w_.integer(91, n == counts.end() ? 0 : n->second);
    w_.integer(280, r.wasProxy ? 1 : 0);
    w_.integer(281, r.isEntity ? 1 : 0);
    if (!w_.ok()) return fail("class " + sys::toUtf8(r.dxfName) + ": " + w_.error());
  }
  endSection();
  return true;
}

bool Writer::tables() {
  const AcDbObjectId order[] = {db_->viewportTableId(), db_->linetypeTableId(), db_->layerTableId(),
                                db_->textStyleTableId(), db_->viewTableId(),     db_->UCSTableId(),
                                db_->regAppTableId(),    db_->dimStyleTableId(), db_->blockTableId()};
  beginSection("TABLES");
  for (AcDbObjectId tid : order) {
    auto* table = AcDbSymbolTable::cast(peekObject(tid));
    if (!table || tid.isErased()) continue;
    if (!object(table)) return false;
    for (AcDbObjectId rid : table->recordIds(false)) {
      AcDbObject* rec = peekObject(rid);
      if (rec && !rid.isErased() && !object(rec)) return false;
    }
    w_.text(0, "ENDTAB");
  }
  endSection();
  return true;
}

bool Writer::entity(AcDbObjectId id) {
  AcDbObject* obj = peekObject(id);
  if (!obj || id.isErased()) return true;
  if (!object(obj)) return false;
  std::vector<AcDbObjectId> parts;
  AcDbObjectId seqend;
  entityParts(obj, parts, seqend);
  for (AcDbObjectId p : parts) {
    AcDbObject* po = peekObject(p);
    if (po && !p.isErased() && !object(po)) return false;
  }
  if (AcDbObject* se = peekObject(seqend); se && !seqend.isErased() && !parts.empty()) {
    if (!object(se)) return false;
  }
  return true;
}

// Entities from this many on are written by two threads.
constexpr size_t kParallelFrom = 8192;
// Entities in a run that one thread writes.
constexpr size_t kRun = 1024;
// Runs a second thread may have written ahead of the file.
constexpr size_t kRunsAhead = 6;

bool Writer::blockEntities(AcDbBlockTableRecord* btr) {
  const AcDbObjectIdArray ids = btr->entityIds(false);
  if (ids.size() >= kParallelFrom) return entitiesInParallel(ids);
  for (AcDbObjectId id : ids)
    if (!entity(id)) return false;
  return true;
}

namespace {

// The classes whose objects a second thread may write while the first
// writes others: their writing reads the object, the records it names and
// its vertices or attributes, and changes nothing anywhere.
bool writableAside(const AcDbObject* o) {
  const AcRxClass* c = o ? o->isA() : nullptr;
  return c == AcDbLine::desc() || c == AcDbPolyline::desc() || c == AcDbText::desc() || c == AcDbAttribute::desc() ||
         c == AcDbBlockReference::desc() || c == AcDbSequenceEnd::desc() || c == AcDbCircle::desc() ||
         c == AcDbArc::desc() || c == AcDbPoint::desc();
}

}  // namespace

size_t Writer::entitiesAside(const AcDbObjectIdArray& ids, size_t from, size_t to) {
  for (size_t k = from; k < to; ++k) {
    AcDbObject* obj = peekObject(ids[k]);
    if (!obj || ids[k].isErased()) continue;
    if (!writableAside(obj)) return k;
    // Its vertices or attributes: all there, SEQEND included, and as plain.
    if (const auto* e = AcDbEntity::cast(obj); e && hasSubentities(e)) {
      if (sequenceEndId(e).isNull()) return k;
      for (AcDbObjectId p : subentityIds(e))
        if (!writableAside(peekObject(p))) return k;
    }
    if (!entity(ids[k])) return k;
  }
  return to;
}

bool Writer::entitiesInParallel(const AcDbObjectIdArray& ids) {
  // Runs of entities in file order, every other one written by each
  // thread: this one straight to the file, the second into groups of its
  // own that this one appends when it gets there. The second thread stops
  // a run at an entity it may not write, and this one writes the rest.
  struct Run {
    std::string groups;
    size_t stoppedAt = 0;
    std::string error;
    bool done = false;
  };
  const size_t runs = (ids.size() + kRun - 1) / kRun;
  std::vector<Run> written(runs);
  std::mutex mutex;
  std::condition_variable changed;
  size_t next = 1;      // the next run of the second thread's (every other one)
  size_t appended = 0;  // runs this thread is past
  bool stop = false;

  auto second = [&] {
    Writer aside(db_);
    for (;;) {
      size_t r;
      {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [&] { return stop || next >= runs || next < appended + kRunsAhead; });
        if (stop || next >= runs) return;
        r = next;
        next += 2;
      }
      const size_t from = r * kRun, to = std::min(ids.size(), from + kRun);
      Run out;
      out.stoppedAt = aside.entitiesAside(ids, from, to);
      if (!aside.error_.empty()) out.error = aside.error_;
      out.groups = aside.w_.release();
      aside.error_.clear();
      aside.w_ = GroupWriter();
      {
        std::lock_guard<std::mutex> lock(mutex);
        out.done = true;
        written[r] = std::move(out);
      }
      changed.notify_all();
    }
  };
  std::thread thread;
  try {
    thread = std::thread(second);
  } catch (const std::exception&) {
    // No second thread: this one writes them all.
    for (AcDbObjectId id : ids)
      if (!entity(id)) return false;
    return true;
  }
  struct Join {
    std::thread& t;
    std::mutex& m;
    std::condition_variable& c;
    bool& stop;
    ~Join() {
      {
        std::lock_guard<std::mutex> lock(m);
        stop = true;
      }
      c.notify_all();
      t.join();
    }
  } join{thread, mutex, changed, stop};

  for (size_t r = 0; r < runs; ++r) {
    const size_t from = r * kRun, to = std::min(ids.size(), from + kRun);
    const bool mine = r % 2 == 0;
    Run run;
    if (!mine) {
      std::unique_lock<std::mutex> lock(mutex);
      changed.wait(lock, [&] { return written[r].done; });
      run = std::move(written[r]);
    }
    size_t k = from;
    if (!mine) {
      w_.append(run.groups);
      if (!run.error.empty()) return fail(run.error);
      k = run.stoppedAt;
    }
    for (; k < to; ++k)
      if (!entity(ids[k])) return false;
    {
      std::lock_guard<std::mutex> lock(mutex);
      appended = r + 1;
    }
    changed.notify_all();
  }
  return true;
}

bool Writer::blockEnds(AcDbBlockTableRecord* btr, AcDbObjectId& begin, AcDbObjectId& end) {
  begin = btr->blockBeginId();
  end = btr->blockEndId();
  if (peekObject(begin) && peekObject(end)) return true;
  // A block made in this session: its BLOCK and ENDBLK are made now, with
  // handles of their own, as the drawing will keep them.
  auto make = [&](const char16_t* dxfName, AcDbObjectId& id) {
    if (peekObject(id)) return true;
    AcRxClass* c = acrxFindClassByDxfName(dxfName);
    AcDbObject* o = c ? AcDbObject::cast(c->create()) : nullptr;
    if (!o) return fail("no class for " + sys::toUtf8(dxfName));
    if (db_->addAcDbObject(id, o) != Acad::eOk) {
      delete o;
      return fail("cannot add the " + sys::toUtf8(dxfName) + " of a block to the drawing");
    }
    o->setOwnerId(btr->objectId());
    o->close();
    return true;
  };
  if (!make(u"BLOCK", begin) || !make(u"ENDBLK", end)) return false;
  AcDbBlockTableRecord* open = nullptr;
  if (acdbOpenObject(open, btr->objectId(), AcDb::kForWrite) != Acad::eOk)
    return fail("block " + sys::toUtf8(btr->name()) + ": open elsewhere; cannot give it its BLOCK and ENDBLK");
  open->setBlockBeginAndEnd(begin, end);
  open->close();
  return true;
}

bool Writer::blocks() {
  auto* bt = AcDbSymbolTable::cast(peekObject(db_->blockTableId()));
  beginSection("BLOCKS");
  if (bt) {
    for (AcDbObjectId rid : bt->recordIds(false)) {
      auto* btr = AcDbBlockTableRecord::cast(peekObject(rid));
      if (!btr) continue;
      AcDbObjectId begin, end;
      if (!blockEnds(btr, begin, end)) return false;
      if (!object(peekObject(begin), btr)) return false;
      if (!sameName(btr->name(), ACDB_MODEL_SPACE) && !sameName(btr->name(), ACDB_PAPER_SPACE) &&
          !blockEntities(btr))
        return false;
      if (!object(peekObject(end))) return false;
    }
  }
  endSection();
  return true;
}

bool Writer::entities() {
  beginSection("ENTITIES");
  if (auto* bt = AcDbSymbolTable::cast(peekObject(db_->blockTableId()))) {
    for (const char16_t* space : {ACDB_MODEL_SPACE, ACDB_PAPER_SPACE}) {
      AcDbObjectId id;
      if (bt->getAt(space, id) != Acad::eOk) continue;
      if (auto* btr = AcDbBlockTableRecord::cast(peekObject(id)); btr && !blockEntities(btr)) return false;
    }
  }
  endSection();
  return true;
}

bool Writer::objects() {
  beginSection("OBJECTS");
  AcDbObjectId nod = db_->namedObjectsDictionaryId();
  if (AcDbObject* o = peekObject(nod); o && !nod.isErased() && !object(o)) return false;
  // The objects as classes() listed them, unless some were added since.
  if (db_->handseed().value() != allSeed_) all_ = db_->allObjects();
  for (AcDbObjectId id : all_) {
    if (id == nod || id.isErased()) continue;
    AcDbObject* o = peekObject(id);
    if (!o) continue;
    const Kind& kind = kindOf(o);
    if (kind.entity || kind.table || kind.record) continue;
    if (!object(o)) return false;
  }
  endSection();
  return true;
}

void Writer::keptSections() {
  for (const KeptSection& s : dxfFileData(db_).sections) {
    beginSection(s.name.c_str());
    for (const dxf::Group& g : s.body) w_.group(g);
    endSection();
  }
}

bool Writer::prepare() {
  // What the file holds that the drawing has not made yet (the BLOCK and
  // ENDBLK of a new block, the SEQEND of a new polyline) is made before
  // anything is written, so that the header's next handle is above it.
  auto* bt = AcDbSymbolTable::cast(peekObject(db_->blockTableId()));
  if (!bt) return true;
  for (AcDbObjectId rid : bt->recordIds(false)) {
    auto* btr = AcDbBlockTableRecord::cast(peekObject(rid));
    if (!btr) continue;
    AcDbObjectId begin, end;
    if (!blockEnds(btr, begin, end)) return false;
    std::vector<AcDbObjectId> parts;
    AcDbObjectId seqend;
    for (AcDbObjectId id : btr->entityIds(false)) entityParts(peekObject(id), parts, seqend);
  }
  return true;
}

bool Writer::run() {
  if (!prepare() || !header() || !classes() || !tables() || !blocks() || !entities() || !objects()) return false;
  keptSections();
  w_.text(0, "EOF");
  w_.flush();
  if (!w_.ok()) return fail(w_.error());
  return true;
}

}  // namespace

bool writeDxfPieces(AcDbDatabase* db, const std::function<bool(std::string_view)>& append, std::string* error) {
  if (!db) {
    if (error) *error = "no drawing to write";
    return false;
  }
  Writer w(db);
  w.setSink(append);
  if (!w.run()) {
    if (error) *error = w.error();
    return false;
  }
  return true;
}

bool writeDxfBytes(AcDbDatabase* db, std::string* bytes, std::string* error) {
  if (!db) {
    if (error) *error = "no drawing to write";
    return false;
  }
  Writer w(db);
  if (!w.run()) {
    if (error) *error = w.error();
    return false;
  }
  *bytes = w.release();
  return true;
}

}  // namespace zepk::db
