// Reading a DXF file into a new database.
//
// The file is read as groups and split into sections (host/dxf); here each
// record becomes an object. A record's type (group 0) names its class by
// DXF name; its handle (group 5, 105 for a dimension style) is the object's
// handle; its other groups become the typed items the class reads with
// dxfInFields: references as object ids (made ahead for objects further on
// in the file), the x, y and z groups of a point as one point. Extended
// data goes to the object after its class data.
//
// The structure around the records is the reader's: the records of a table
// go into the table, the entities between BLOCK and ENDBLK into that
// block's record, the entities of the ENTITIES section into model space or
// the paper space that owns them, vertices and attributes into the
// polyline or block reference before them.
//
// A record of a class the host does not know, or that its class cannot
// read, becomes a proxy that keeps its groups (with a warning for the
// second kind). R12 files have no subclass markers, no owners and often no
// handles: the reader adds the markers, gives the objects handles and
// owners, and makes the block records R12 does not store.
#include <sys/mman.h>

#include <algorithm>
#include <map>
#include <optional>
#include <unordered_map>

#include "host/db/dbobjects.h"
#include "host/db/dxfinternal.h"
#include "host/db/ents_internal.h"
#include "host/db/internal.h"
#include "host/dbdict.h"
#include "host/dbents.h"
#include "host/dbproxy.h"
#include "host/dbsymtb.h"
#include "host/dxf/memory.h"
#include "host/dxf/reader.h"
#include "host/dxf/structure.h"
#include "host/system/utf.h"

namespace zepk::db {

namespace {

using Group = dxf::GroupRef;
using dxf::GroupRange;
using dxf::Section;
using dxf::SectionKind;

std::string_view trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
  return s;
}

std::u16string upper(std::u16string s) {
  for (char16_t& c : s) c = sys::asciiUpper(c);
  return s;
}

std::string narrow(const std::u16string& s) { return sys::toUtf8(s); }

// UTF-8 text as UTF-16: ASCII (most of a drawing's text) widened as it is.
std::u16string widen(std::string_view s) {
  unsigned char any = 0;
  for (const char c : s) any |= static_cast<unsigned char>(c);
  if (any & 0x80) return sys::fromUtf8(s);
  std::u16string out(s.size(), u'\0');
  for (size_t i = 0; i < s.size(); ++i) out[i] = static_cast<char16_t>(s[i]);
  return out;
}

// How a record is named in messages: "LINE 2F" or "LINE" without a handle.
std::string recordLabel(const std::string& type, uint64_t handle) {
  return handle ? type + " " + handleText(handle) : type;
}

// Where a record stands in the file: what it may be.
enum class Place { Table, Block, Entities, Objects };

// A record of the file, read up to the point where its object is made.
struct Record {
  const Group* type = nullptr;  // its group 0
  std::string name;             // the type, trimmed
  std::u16string wname;
  uint64_t handle = 0;          // 0: none in the file
  std::vector<DxfItem> items;   // class data
  resbuf* xdata = nullptr;      // extended data, owned
  int line = 0;
  Record() = default;
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;
  ~Record() {
    acutRelRb(xdata);
    if (spare) {
      items.clear();
      if (items.capacity() > spare->capacity()) items.swap(*spare);
    }
  }
  std::vector<DxfItem>* spare = nullptr;  // where the items' room goes back to
};


// The owner a record names: its group 330 before the class data, outside
// the 102 groups of reactors and extension dictionary.
AcDbObjectId ownerIn(const std::vector<DxfItem>& items) {
  bool inBraces = false;
  for (const DxfItem& it : items) {
    if (it.code == 100) break;
    if (it.code == 102) inBraces = !it.s.empty() && it.s[0] == u'{';
    else if (it.code == 330 && !inBraces && it.kind == DxfItem::Id) return it.id;
  }
  return {};
}

// Where the file puts a record decides its owner, whatever its group 330
// said. The object is the reader's own, not open anywhere.
void adoptedBy(AcDbObjectId id, AcDbObjectId owner) {
  if (AcDbObject* o = peekObject(id); o && o->ownerId() != owner) o->setOwnerId(owner);
}

// A polyline or block reference and what follows it in the file.
struct Complex {
  AcDbObjectId parent;
  std::vector<AcDbObjectId> children;
  AcDbObjectId seqend;
};

class Reader {
 public:
  Reader(AcDbDatabase* db, const dxf::GroupRefs& groups, int version, std::vector<std::string>* warnings)
      : db_(db), g_(groups), warnings_(warnings), r12_(version > 0 && version < 1012) {}
  // The file's bytes are the reader's own: those it is past may be given
  // back to the system as it goes (see releaseBefore).
  void mayRelease(std::string_view bytes) { bytes_ = bytes; }
  // The heap the objects are made in grows in large pages.
  void growIn(dxf::LargePageHeap* heap) { heap_ = heap; }

  bool run(const dxf::Layout& layout);
  const std::string& error() const { return error_; }

 private:
  // ---- messages
  bool fail(int line, const std::string& what) {
    if (error_.empty()) error_ = "line " + std::to_string(line) + ": " + what;
    return false;
  }
  void warn(int line, const std::string& what) {
    if (warnings_) warnings_->push_back("line " + std::to_string(line) + ": " + what);
  }

  // ---- sections
  bool readHeader(const Section& s);
  bool readClasses(const Section& s);
  bool readTables(const Section& s);
  bool readBlocks(const Section& s);
  bool readEntities(const Section& s);
  bool readObjects(const Section& s);
  void keepSection(const Section& s);
  bool prescanHandles(const dxf::Layout& layout);

  // ---- records
  // The index of the record's handle group, or npos.
  size_t handleGroup(const GroupRange& r) const;
  bool convert(size_t begin, size_t end, std::vector<DxfItem>& out, size_t* xdataAt);
  bool convertXData(size_t begin, size_t end, resbuf** out);
  bool loadRecord(const GroupRange& r, Record& rec);
  // Makes the object of a record, owned by `owner` when the record names
  // no owner (as in R12). A null id, with error_ set, on a fault that ends
  // reading.
  AcDbObjectId makeObject(Record& rec, Place place, AcDbObjectId owner);
  // The class of a record's type.
  AcRxClass* classFor(const Record& rec, bool entity);
  bool addToDatabase(AcDbObject* obj, const Record& rec, AcDbObjectId& id);
  // Reads a run of entity records [first, last) of a section into `out`
  // (top-level entities in order) and `complexes`.
  bool readEntityRun(const Section& s, size_t first, size_t last, Place place, AcDbObjectId owner,
                     std::vector<AcDbObjectId>& out);

  // Gives back to the system the memory of the groups before `index`, and
  // of the file's bytes before that group's when they are the reader's own:
  // the entities of the ENTITIES section are read once, in order, and
  // nothing looks back at their groups, so most of what a file takes is
  // free again before the drawing is whole. Done a few megabytes at a time.
  void releaseBefore(size_t index);

  // ---- structure
  AcDbObjectId blockRecordByName(const std::u16string& name) const {
    auto it = blockRecords_.find(upper(name));
    return it == blockRecords_.end() ? AcDbObjectId() : it->second;
  }
  // The block record of that name, made (R12, or a file without it) when
  // missing.
  AcDbObjectId ensureBlockRecord(const std::u16string& name);
  AcDbObjectId ensureTable(const std::u16string& tableName);
  bool linkEntities(AcDbObjectId blockRecord, const std::vector<AcDbObjectId>& ids, int line);
  bool linkComplexes();
  bool finish();

  AcDbDatabase* db_;
  const dxf::GroupRefs& g_;
  std::vector<std::string>* warnings_;
  bool r12_;
  std::string error_;

  // The line of each record made, by handle, in the order made: looked up
  // only for messages, so a list (no node for each) is enough.
  std::vector<std::pair<uint64_t, int>> handleLines_;
  bool handleLinesSorted_ = false;  // once every record is made, for many look-ups
  // The line of the first record made with this handle, or 0.
  int handleLine(uint64_t handle) const {
    if (handleLinesSorted_) {
      auto it = std::lower_bound(handleLines_.begin(), handleLines_.end(), std::make_pair(handle, 0),
                                 [](const auto& a, const auto& b) { return a.first < b.first; });
      return it != handleLines_.end() && it->first == handle ? it->second : 0;
    }
    for (const auto& [h, line] : handleLines_)
      if (h == handle) return line;
    return 0;
  }
  std::map<std::u16string, DxfClassRecord> classes_;  // by DXF name
  std::map<std::u16string, AcDbObjectId> tables_;     // "LAYER" -> table
  std::map<std::u16string, AcDbObjectId> blockRecords_;  // upper-case name -> record
  std::unordered_map<std::u16string, AcRxClass*> classByName_;  // by the type of a record
  std::vector<Complex> complexes_;
  std::vector<AcDbObjectId> objectsInOrder_;  // the OBJECTS section
  std::vector<AcDbObjectId> entityOwners_;    // the owner of each top-level entity of a run
  std::vector<DxfItem> spareItems_;            // room for the next record's items
  int polylineFlags_ = 0;                      // of the polyline being read (R12 vertices)
  AcDbObjectId lastSpace_;                     // the block record an entity named as owner last
  std::string_view bytes_;                     // the file's bytes, when the reader may release them
  size_t groupsReleased_ = 0;                  // bytes of the group list given back
  size_t bytesReleased_ = 0;                   // and of the file
  dxf::LargePageHeap* heap_ = nullptr;
};

// ---------------------------------------------------------------- records

size_t Reader::handleGroup(const GroupRange& r) const {
  std::string_view type = trim(g_[r.begin].text());
  const int code = type == "DIMSTYLE" ? 105 : 5;
  for (size_t i = r.begin + 1; i < r.end; ++i) {
    const int c = g_[i].code;
    if (c == 100 || c == 1001 || c == 0) break;
    if (c == code) return i;
  }
  return std::string::npos;
}

bool Reader::convert(size_t begin, size_t end, std::vector<DxfItem>& out, size_t* xdataAt) {
  *xdataAt = end;
  for (size_t i = begin; i < end; ++i) {
    const Group& g = g_[i];
    const int c = g.code;
    if (c == 999) continue;  // a comment
    if (c == 1001) {
      *xdataAt = i;
      return true;
    }
    // Made in its place in the list.
    DxfItem& it = out.emplace_back();
    it.code = c;
    if (isPointCode(c) && g.isReal() && i + 1 < end && g_[i + 1].code == c + 10 && g_[i + 1].isReal()) {
      it.kind = DxfItem::Point;
      it.p[0] = g.real();
      it.p[1] = g_[i + 1].real();
      ++i;
      if (i + 1 < end && g_[i + 1].code == c + 20 && g_[i + 1].isReal()) {
        it.p[2] = g_[i + 1].real();
        ++i;
      } else {
        it.dims = 2;
      }
      continue;
    }
    if (g.isReal()) {
      it.kind = DxfItem::Real;
      it.p[0] = g.real();
    } else if (g.isInteger()) {
      it.kind = DxfItem::Int;
      it.i = g.integer();
    } else if (isReferenceCode(c)) {
      it.kind = DxfItem::Id;
      std::string_view text = trim(g.text());
      if (!text.empty() && text != "0") {
        auto h = parseHandle(text);
        if (!h) return fail(g.line, "expected a handle (a hexadecimal number) in group " + std::to_string(c) +
                                        ", found \"" + std::string(text.substr(0, 40)) + "\"");
        db_->getAcDbObjectId(it.id, true, AcDbHandle(*h));
      }
    } else if (dxf::groupType(c) == dxf::GroupType::Binary) {
      auto bytes = hexToBytes(trim(g.text()));
      if (!bytes) return fail(g.line, "expected binary data (pairs of hexadecimal digits) in group " + std::to_string(c));
      it.kind = DxfItem::Binary;
      it.b = std::move(*bytes);
    } else {
      it.s = widen(g.text());
    }
  }
  return true;
}

namespace {

char16_t* copyText(std::string_view utf8) {
  std::u16string s = sys::fromUtf8(utf8);
  auto* p = static_cast<char16_t*>(std::malloc((s.size() + 1) * sizeof(char16_t)));
  std::copy(s.begin(), s.end(), p);
  p[s.size()] = 0;
  return p;
}

}  // namespace

bool Reader::convertXData(size_t begin, size_t end, resbuf** out) {
  resbuf** tail = out;
  for (size_t i = begin; i < end; ++i) {
    const Group& g = g_[i];
    const int c = g.code;
    if (c == 999) continue;
    if (c < 1000 || c > 1071)
      return fail(g.line, "expected extended data (a group from 1000 to 1071) after the application name, found group " +
                              std::to_string(c));
    resbuf* rb = acutNewRb(c);
    if (!rb) return fail(g.line, "out of memory");
    *tail = rb;
    tail = &rb->rbnext;
    if (isPointCode(c)) {
      rb->resval.rpoint[0] = g.real();
      for (int k = 1; k <= 2; ++k) {
        if (i + 1 < end && g_[i + 1].code == c + 10 * k && g_[i + 1].isReal()) rb->resval.rpoint[k] = g_[++i].real();
      }
    } else if (c == 1004) {
      auto bytes = hexToBytes(trim(g.text()));
      if (!bytes || bytes->size() > 32767)
        return fail(g.line, "expected binary data (pairs of hexadecimal digits) in group 1004");
      rb->resval.rbinary.clen = static_cast<short>(bytes->size());
      rb->resval.rbinary.buf = static_cast<char*>(std::malloc(bytes->empty() ? 1 : bytes->size()));
      std::copy(bytes->begin(), bytes->end(), rb->resval.rbinary.buf);
    } else if (g.isReal()) {
      rb->resval.rreal = g.real();
    } else if (g.isInteger()) {
      if (c == 1071) rb->resval.rlong = static_cast<int32_t>(g.integer());
      else rb->resval.rint = static_cast<short>(g.integer());
    } else {
      rb->resval.rstring = copyText(g.text());
    }
  }
  return true;
}

bool Reader::loadRecord(const GroupRange& r, Record& rec) {
  rec.type = &g_[r.begin];
  rec.line = rec.type->line;
  rec.name = std::string(trim(rec.type->text()));
  rec.wname = widen(rec.name);
  size_t h = handleGroup(r);
  if (h != std::string::npos) {
    auto v = parseHandle(g_[h].text());
    if (!v || *v == 0)
      return fail(g_[h].line, "expected a handle (a hexadecimal number) in group " + std::to_string(g_[h].code) +
                                  " of " + rec.name + ", found \"" + std::string(trim(g_[h].text()).substr(0, 40)) + "\"");
    rec.handle = *v;
  }
  // The type and handle are the reader's; so is a TABLE's name. Both stand
  // before the class data and extended data.
  std::vector<size_t> skip;
  if (h != std::string::npos) skip.push_back(h);
  if (rec.name == "TABLE")
    for (size_t i = r.begin + 1; i < r.end && g_[i].code != 100 && g_[i].code != 1001; ++i)
      if (g_[i].code == 2) {
        skip.push_back(i);
        break;
      }
  std::sort(skip.begin(), skip.end());
  // The list of the last record read, emptied: its room is reused.
  std::vector<DxfItem> items;
  items.swap(spareItems_);
  items.clear();
  items.reserve(r.size());
  size_t start = r.begin + 1;
  size_t xdataAt = r.end;
  for (size_t s : skip) {
    if (!convert(start, s, items, &xdataAt)) return false;
    start = s + 1;
  }
  if (!convert(start, r.end, items, &xdataAt)) return false;
  rec.items = std::move(items);
  rec.spare = &spareItems_;
  if (xdataAt < r.end && !convertXData(xdataAt, r.end, &rec.xdata)) return false;
  return true;
}

bool Reader::addToDatabase(AcDbObject* obj, const Record& rec, AcDbObjectId& id) {
  Acad::ErrorStatus es = rec.handle ? db_->addAcDbObjectWithHandle(id, obj, AcDbHandle(rec.handle))
                                    : db_->addAcDbObject(id, obj);
  if (es == Acad::eOk) {
    handleLines_.emplace_back(id.handle().value(), rec.line);
    return true;
  }
  delete obj;
  if (es == Acad::eHandleInUse) {
    const int at = handleLine(rec.handle);
    return fail(rec.line, "the handle " + handleText(rec.handle) + " of " + rec.name + " is already used" +
                              (at != 0 ? " by the record at line " + std::to_string(at) : ""));
  }
  return fail(rec.line, "cannot add " + rec.name + " to the drawing");
}

AcRxClass* Reader::classFor(const Record& rec, bool entity) {
  // These three are told apart by their groups.
  if (entity && (rec.wname == u"POLYLINE" || rec.wname == u"VERTEX" || rec.wname == u"INSERT"))
    return entityClassFor(rec.wname, rec.items);
  // Any other type names one class (or none), the same for every record.
  auto [at, added] = classByName_.try_emplace(rec.wname, nullptr);
  if (added) at->second = entity ? entityClassFor(rec.wname, rec.items) : acrxFindClassByDxfName(rec.wname.c_str());
  return at->second;
}

AcDbObjectId Reader::makeObject(Record& rec, Place place, AcDbObjectId owner) {
  if (heap_) heap_->poll();
  const bool entity = place == Place::Block || place == Place::Entities;
  if (r12_) addSubclassMarkers(rec.wname, rec.items, polylineFlags_);
  // A record that names no owner (every record of R12) gets the one its
  // place in the file gives it.
  if (!owner.isNull() && ownerIn(rec.items).isNull()) {
    auto at = std::find_if(rec.items.begin(), rec.items.end(), [](const DxfItem& it) { return it.code == 100; });
    if (at != rec.items.end() || rec.items.empty() || r12_) {
      // Before the class data, after the reactors and dictionary.
      auto pos = rec.items.begin();
      while (pos != at && pos != rec.items.end() && (pos->code == 102 || pos->code == 330 || pos->code == 360)) ++pos;
      DxfItem o = makeItem(330, DxfItem::Id);
      o.id = owner;
      rec.items.insert(pos, o);
    }
  }
  // The class by DXF name; a TABLE by the table it is.
  AcDbObject* obj = nullptr;
  std::string why;
  auto cls = classes_.find(rec.wname);
  if (rec.name == "TABLE") {
    // made by the caller
  } else if (AcRxClass* c = classFor(rec, entity)) {
    obj = AcDbObject::cast(c->create());
    if (obj && entity != (AcDbEntity::cast(obj) != nullptr)) {
      // An entity stands in a block, an object in the OBJECTS section; a
      // record in the wrong place is kept as it is, for what it is there.
      delete obj;
      obj = nullptr;
      why = entity ? "its class is not an entity" : "an entity in the OBJECTS section";
    }
    if (!obj && why.empty()) why = "its class makes no objects";
  }
  auto proxyFor = [&](bool raw) {
    AcDbObject* p = makeProxy(entity, rec.wname, cls != classes_.end() ? cls->second.className : rec.wname,
                              cls != classes_.end() ? cls->second.appName : u"", cls != classes_.end() ? cls->second.proxyFlags : 0);
    if (raw) proxyData(p)->rawEntityPart = true;
    return p;
  };
  bool proxy = false;
  if (!obj) {
    if (!why.empty()) warn(rec.line, recordLabel(rec.name, rec.handle) + ": kept as a proxy: " + why);
    obj = proxyFor(false);
    proxy = true;
  }
  AcDbObjectId id;
  if (!addToDatabase(obj, rec, id)) return {};
  const uint64_t handle = id.handle().value();
  // The record's items go to the filer and come back after it, as they
  // were: a reader that reorders them leaves a copy of the originals.
  auto readInto = [&](AcDbObject* o, Acad::ErrorStatus* es) {
    MemoryDxfFiler f(AcDb::kFileFiler, db_);
    f.items().swap(rec.items);
    std::vector<DxfItem> original;
    f.keepOriginalIn(&original);
    *es = o->dxfInFields(&f);
    int stopped = -1;
    if (*es == Acad::eOk && !f.atEOF()) {
      *es = Acad::eInvalidDxfCode;
      stopped = static_cast<int>(f.position());
    }
    if (f.reordered()) rec.items = std::move(original);
    else rec.items.swap(f.items());
    return stopped;
  };
  Acad::ErrorStatus es;
  int stoppedAt = readInto(obj, &es);
  // A class that cannot read its record leaves it to a proxy; an entity
  // proxy whose entity part cannot be read either keeps that part raw.
  for (int attempt = 0; es != Acad::eOk && attempt < 2; ++attempt) {
    if (proxy && (!entity || proxyData(obj)->rawEntityPart)) break;
    std::string reason = stoppedAt >= 0 ? "its class does not read group " +
                                              std::to_string(rec.items[static_cast<size_t>(stoppedAt)].code)
                                        : "its class could not read it (status " + std::to_string(es) + ")";
    if (!proxy) warn(rec.line, recordLabel(rec.name, handle) + ": kept as a proxy: " + reason);
    delete obj;  // frees the handle's record for the proxy
    obj = proxyFor(proxy);
    proxy = true;
    Acad::ErrorStatus added = db_->addAcDbObjectWithHandle(id, obj, AcDbHandle(handle));
    if (added != Acad::eOk) {
      delete obj;
      fail(rec.line, "cannot add " + rec.name + " to the drawing");
      return {};
    }
    stoppedAt = readInto(obj, &es);
  }
  if (es != Acad::eOk) {
    obj->close();
    fail(rec.line, "cannot read " + recordLabel(rec.name, handle) +
                       ": the groups before its class data are not what every object starts with");
    return {};
  }
  if (rec.xdata) {
    Acad::ErrorStatus xs = obj->setXData(rec.xdata);
    if (xs != Acad::eOk)
      warn(rec.line, recordLabel(rec.name, handle) + ": extended data left out: " +
                         (xs == Acad::eXdataSizeExceeded ? "more than 16 KB" : "not valid"));
  }
  obj->close();
  return id;
}

// ---------------------------------------------------------------- sections

bool Reader::readHeader(const Section& s) {
  auto& vars = headerVars(db_);
  vars.clear();
  for (const GroupRange& r : s.records) {
    HeaderVar v;
    v.name = sys::fromUtf8(trim(g_[r.begin].text()));
    size_t xd;
    if (!convert(r.begin + 1, r.end, v.groups, &xd)) return false;
    if (xd != r.end) return fail(g_[xd].line, "expected the value of " + narrow(v.name) + ", found group 1001");
    // A variable given twice keeps its last value, in its first place.
    auto same = std::find_if(vars.begin(), vars.end(), [&](const HeaderVar& o) { return o.name == v.name; });
    if (same != vars.end()) {
      warn(g_[r.begin].line, "the header variable " + narrow(v.name) + " is given twice: the second value is kept");
      same->groups = std::move(v.groups);
    } else {
      vars.push_back(std::move(v));
    }
  }
  return true;
}

bool Reader::prescanHandles(const dxf::Layout& layout) {
  uint64_t top = 0;
  size_t records = 0;
  for (const Section& s : layout.sections) records += s.records.size();
  handleLines_.reserve(records);
  // An object for each record, and a few more the drawing adds.
  AcDbDatabaseAccess::reserveObjects(db_, records + 64);
  for (const Section& s : layout.sections) {
    if (s.kind != SectionKind::Tables && s.kind != SectionKind::Blocks && s.kind != SectionKind::Entities &&
        s.kind != SectionKind::Objects)
      continue;
    for (const GroupRange& r : s.records) {
      size_t h = handleGroup(r);
      if (h == std::string::npos) continue;
      if (auto v = parseHandle(g_[h].text())) top = std::max(top, *v);
    }
  }
  uint64_t seed = top + 1;
  if (const Section* hs = layout.find(SectionKind::Header)) {
    for (const GroupRange& r : hs->records) {
      if (trim(g_[r.begin].text()) != "$HANDSEED") continue;
      for (size_t i = r.begin + 1; i < r.end; ++i)
        if (auto v = parseHandle(g_[i].text()); v && g_[i].isText()) seed = std::max(seed, *v);
    }
  }
  if (seed == 0) seed = 1;
  db_->setHandseed(AcDbHandle(seed));
  return true;
}

bool Reader::readClasses(const Section& s) {
  auto& out = dxfFileData(db_).classes;
  out.clear();
  for (const GroupRange& r : s.records) {
    const Group& head = g_[r.begin];
    if (trim(head.text()) != "CLASS")
      return fail(head.line, "expected 0/CLASS in the CLASSES section, found 0/" + std::string(trim(head.text())));
    DxfClassRecord c;
    for (size_t i = r.begin + 1; i < r.end; ++i) {
      const Group& g = g_[i];
      switch (g.code) {
        case 1: c.dxfName = sys::fromUtf8(trim(g.text())); break;
        case 2: c.className = sys::fromUtf8(g.text()); break;
        case 3: c.appName = sys::fromUtf8(g.text()); break;
        case 90: c.proxyFlags = static_cast<int32_t>(g.integer()); break;
        case 91: c.instances = static_cast<int32_t>(g.integer()); break;
        case 280: c.wasProxy = g.integer() != 0; break;
        case 281: c.isEntity = g.integer() != 0; break;
        default: break;
      }
    }
    if (c.dxfName.empty()) return fail(head.line, "expected the class's DXF name (group 1) in this CLASS");
    if (classes_.count(c.dxfName)) {
      warn(head.line, "the class " + narrow(c.dxfName) + " is given twice: the first record is kept");
      continue;
    }
    classes_.emplace(c.dxfName, c);
    out.push_back(std::move(c));
  }
  return true;
}

AcDbObjectId Reader::ensureTable(const std::u16string& tableName) {
  auto it = tables_.find(tableName);
  if (it != tables_.end()) return it->second;
  AcDbSymbolTable* t = newSymbolTable(tableName);
  if (!t) return {};
  AcDbObjectId id;
  if (db_->addAcDbObject(id, t) != Acad::eOk) {
    delete t;
    return {};
  }
  t->close();
  db_->setRootId(symbolTableRoot(t), id);
  tables_.emplace(tableName, id);
  return id;
}

bool Reader::readTables(const Section& s) {
  size_t i = 0;
  while (i < s.records.size()) {
    const GroupRange& r = s.records[i];
    const Group& head = g_[r.begin];
    std::string type(trim(head.text()));
    if (type != "TABLE") return fail(head.line, "expected 0/TABLE, found 0/" + type);
    Record rec;
    if (!loadRecord(r, rec)) return false;
    // The table's name stands in its group 2.
    std::u16string name;
    for (size_t k = r.begin + 1; k < r.end && g_[k].code != 100; ++k)
      if (g_[k].code == 2) {
        name = upper(sys::fromUtf8(trim(g_[k].text())));
        break;
      }
    // Its records, up to ENDTAB.
    size_t end = i + 1;
    while (end < s.records.size() && trim(g_[s.records[end].begin].text()) != "ENDTAB") {
      if (trim(g_[s.records[end].begin].text()) == "TABLE")
        return fail(g_[s.records[end].begin].line, "expected 0/ENDTAB before the next 0/TABLE");
      ++end;
    }
    if (end == s.records.size()) return fail(head.line, "expected 0/ENDTAB to close this TABLE");

    AcDbObjectId tableId;
    AcDbSymbolTable* table = newSymbolTable(name);
    if (!table) {
      warn(head.line, "the table " + narrow(name) + " is not one the host keeps: left out with its " +
                          std::to_string(end - i - 1) + " records");
      i = end + 1;
      continue;
    }
    if (tables_.count(name)) {
      // A second table of the same kind: its records join the first.
      delete table;
      tableId = tables_[name];
      warn(head.line, "a second " + narrow(name) + " table: its records join the first");
    } else {
      if (r12_) addSubclassMarkers(u"TABLE", rec.items, 0);
      if (!addToDatabase(table, rec, tableId)) return false;
      MemoryDxfFiler f(AcDb::kFileFiler, db_);
      f.items() = rec.items;
      Acad::ErrorStatus es = table->dxfInFields(&f);
      if (es != Acad::eOk) warn(head.line, "TABLE " + narrow(name) + ": its own groups could not be read");
      if (rec.xdata) table->setXData(rec.xdata);
      table->close();
      db_->setRootId(symbolTableRoot(table), tableId);
      tables_.emplace(name, tableId);
    }
    // The records.
    std::vector<AcDbObjectId> ids;
    for (size_t k = i + 1; k < end; ++k) {
      Record er;
      if (!loadRecord(s.records[k], er)) return false;
      if (upper(er.wname) != name)
        warn(er.line, recordLabel(er.name, er.handle) + " in the " + narrow(name) + " table");
      AcDbObjectId id = makeObject(er, Place::Table, tableId);
      if (id.isNull()) return false;
      ids.push_back(id);
      if (name == u"BLOCK_RECORD") {
        AcDbObject* o = nullptr;
        if (acdbOpenAcDbObject(o, id, AcDb::kForRead) == Acad::eOk) {
          if (auto* btr = AcDbBlockTableRecord::cast(o)) {
            const ACHAR* n = nullptr;
            btr->getName(n);
            if (n) blockRecords_.emplace(upper(n), id);
          }
          o->close();
        }
      }
    }
    AcDbSymbolTable* t = nullptr;
    if (acdbOpenObject(t, tableId, AcDb::kForWrite) != Acad::eOk) return fail(head.line, "cannot open the table read");
    for (size_t k = 0; k < ids.size(); ++k) {
      Acad::ErrorStatus es = linkRecord(t, ids[k]);
      if (es != Acad::eOk)
        warn(g_[s.records[i + 1 + k].begin].line, "this record cannot be in the " + narrow(name) + " table (status " +
                                                      std::to_string(es) + ")");
      else
        adoptedBy(ids[k], tableId);
    }
    t->close();
    i = end + 1;
  }
  return true;
}

AcDbObjectId Reader::ensureBlockRecord(const std::u16string& name) {
  AcDbObjectId id = blockRecordByName(name);
  if (!id.isNull()) return id;
  AcDbObjectId tableId = ensureTable(u"BLOCK_RECORD");
  if (tableId.isNull()) return {};
  auto* rec = new AcDbBlockTableRecord;
  if (db_->addAcDbObject(id, rec) != Acad::eOk) {
    delete rec;
    return {};
  }
  rec->setName(name.c_str());
  rec->setOwnerId(tableId);
  rec->close();
  AcDbSymbolTable* t = nullptr;
  if (acdbOpenObject(t, tableId, AcDb::kForWrite) == Acad::eOk) {
    linkRecord(t, id);
    t->close();
  }
  blockRecords_.emplace(upper(name), id);
  return id;
}

bool Reader::linkEntities(AcDbObjectId blockRecord, const std::vector<AcDbObjectId>& ids, int line) {
  if (ids.empty()) return true;
  AcDbBlockTableRecord* btr = nullptr;
  if (acdbOpenObject(btr, blockRecord, AcDb::kForWrite) != Acad::eOk)
    return fail(line, "cannot open the block the entities belong to");
  std::vector<Acad::ErrorStatus> statuses;
  zepk::db::linkEntities(btr, ids, &statuses);
  for (size_t i = 0; i < ids.size(); ++i) {
    if (statuses[i] != Acad::eOk)
      warn(line, "an entity could not join its block (status " + std::to_string(statuses[i]) + ")");
    else adoptedBy(ids[i], blockRecord);
  }
  btr->close();
  return true;
}

void Reader::releaseBefore(size_t index) {
  constexpr uintptr_t kPage = 4096;
  constexpr size_t kStep = size_t{4} << 20;
  auto release = [&](const void* data, size_t upto, size_t& done) {
    const auto base = reinterpret_cast<uintptr_t>(data);
    const uintptr_t begin = (base + done + kPage - 1) & ~(kPage - 1);
    const uintptr_t end = (base + upto) & ~(kPage - 1);
    if (end < begin + kStep) return;
    ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_DONTNEED);
    done = end - base;
  };
  if (index >= g_.size()) return;
  release(g_.data(), index * sizeof(Group), groupsReleased_);
  const Group& g = g_[index];
  if (bytes_.empty() || !g.isText()) return;
  const char* at = g.text().data();
  // Decoded text is elsewhere; the file's text views its own line.
  if (at < bytes_.data() || at > bytes_.data() + bytes_.size()) return;
  release(bytes_.data(), static_cast<size_t>(at - bytes_.data()), bytesReleased_);
}

bool Reader::readEntityRun(const Section& s, size_t first, size_t last, Place place, AcDbObjectId owner,
                           std::vector<AcDbObjectId>& out) {
  Complex* open = nullptr;  // the polyline or block reference whose parts follow
  bool openIsPolyline = false;
  for (size_t k = first; k < last; ++k) {
    if (place == Place::Entities && k % 4096 == 0) releaseBefore(s.records[k].begin);
    Record rec;
    if (!loadRecord(s.records[k], rec)) return false;
    const bool part = rec.name == "VERTEX" || rec.name == "ATTRIB" || rec.name == "SEQEND";
    if (part && open && (rec.name == "SEQEND" || (rec.name == "VERTEX") == openIsPolyline)) {
      AcDbObjectId id = makeObject(rec, place, r12_ ? open->parent : AcDbObjectId());
      if (id.isNull()) return false;
      if (rec.name == "SEQEND") {
        open->seqend = id;
        open = nullptr;
      } else {
        open->children.push_back(id);
      }
      continue;
    }
    if (part) warn(rec.line, recordLabel(rec.name, rec.handle) + " outside a polyline or block reference");
    // The owner in the ENTITIES section: the file's, else by the paper
    // space flag (67).
    AcDbObjectId entOwner = owner;
    if (place == Place::Entities) {
      AcDbObjectId named = ownerIn(rec.items);
      // Most entities name the owner the one before named.
      if (!named.isNull() && named == lastSpace_) {
        entOwner = named;
      } else if (AcDbBlockTableRecord::cast(peekObject(named))) {
        lastSpace_ = named;
        entOwner = named;
      } else {
        bool paper = std::any_of(rec.items.begin(), rec.items.end(),
                                 [](const DxfItem& it) { return it.code == 67 && it.kind == DxfItem::Int && it.i == 1; });
        entOwner = ensureBlockRecord(paper ? ACDB_PAPER_SPACE : ACDB_MODEL_SPACE);
      }
    }
    if (rec.name == "POLYLINE") {
      polylineFlags_ = 0;
      for (const DxfItem& it : rec.items)
        if (it.code == 70 && it.kind == DxfItem::Int) polylineFlags_ = static_cast<int>(it.i);
    }
    AcDbObjectId id = makeObject(rec, place, entOwner);
    if (id.isNull()) return false;
    out.push_back(id);
    entityOwners_.push_back(entOwner);
    open = nullptr;
    if (rec.name == "POLYLINE" || rec.name == "INSERT") {
      complexes_.push_back(Complex{id, {}, {}});
      open = &complexes_.back();
      openIsPolyline = rec.name == "POLYLINE";
    }
  }
  return true;
}

bool Reader::readBlocks(const Section& s) {
  size_t i = 0;
  while (i < s.records.size()) {
    const GroupRange& r = s.records[i];
    const Group& head = g_[r.begin];
    std::string type(trim(head.text()));
    if (type != "BLOCK") return fail(head.line, "expected 0/BLOCK, found 0/" + type);
    size_t end = i + 1;
    while (end < s.records.size() && trim(g_[s.records[end].begin].text()) != "ENDBLK") {
      if (trim(g_[s.records[end].begin].text()) == "BLOCK")
        return fail(g_[s.records[end].begin].line, "expected 0/ENDBLK before the next 0/BLOCK");
      ++end;
    }
    if (end == s.records.size()) return fail(head.line, "expected 0/ENDBLK to close this BLOCK");

    Record begin;
    if (!loadRecord(r, begin)) return false;
    // The block's record: the one the BLOCK names as owner, else the one of
    // its name (made for an R12 file, which has none).
    std::u16string name;
    for (const DxfItem& it : begin.items)
      if (it.code == 2 && it.kind == DxfItem::String) {
        name = it.s;
        break;
      }
    if (r12_) {
      if (upper(name) == u"$MODEL_SPACE") name = ACDB_MODEL_SPACE;
      if (upper(name) == u"$PAPER_SPACE") name = ACDB_PAPER_SPACE;
      for (DxfItem& it : begin.items)
        if ((it.code == 2 || it.code == 3) && it.kind == DxfItem::String &&
            (upper(it.s) == u"$MODEL_SPACE" || upper(it.s) == u"$PAPER_SPACE"))
          it.s = name;
    }
    AcDbObjectId record = ownerIn(begin.items);
    if (record.isNull() || !AcDbBlockTableRecord::cast(peekObject(record))) {
      if (name.empty()) return fail(head.line, "expected the block's name (group 2) in this BLOCK");
      record = ensureBlockRecord(name);
      if (record.isNull()) return fail(head.line, "cannot make the block record of this BLOCK");
    }
    if (r12_) addSubclassMarkers(begin.wname, begin.items, 0);
    // The BLOCK's own part (flags, origin, path, description) is the
    // record's; the object keeps the entity part.
    std::vector<DxfItem> blockPart;
    for (size_t k = 0; k < begin.items.size(); ++k) {
      if (begin.items[k].code == 100 && begin.items[k].s == u"AcDbBlockBegin") {
        blockPart.assign(begin.items.begin() + static_cast<std::ptrdiff_t>(k), begin.items.end());
        begin.items.resize(k);
        break;
      }
    }
    AcDbObjectId beginId = makeObject(begin, Place::Block, record);
    if (beginId.isNull()) return false;
    std::vector<AcDbObjectId> ids;
    entityOwners_.clear();
    if (!readEntityRun(s, i + 1, end, Place::Block, record, ids)) return false;
    Record endRec;
    if (!loadRecord(s.records[end], endRec)) return false;
    AcDbObjectId endId = makeObject(endRec, Place::Block, record);
    if (endId.isNull()) return false;
    AcDbBlockTableRecord* btr = nullptr;
    if (acdbOpenObject(btr, record, AcDb::kForWrite) != Acad::eOk)
      return fail(head.line, "cannot open the block record of this BLOCK");
    if (!btr->blockBeginId().isNull()) {
      warn(head.line, "a second BLOCK for the block " + narrow(btr->name()) + ": its entities join the first");
    } else {
      btr->setBlockBeginAndEnd(beginId, endId);
      if (!blockPart.empty()) {
        MemoryDxfFiler f(AcDb::kFileFiler, db_);
        f.items() = std::move(blockPart);
        Acad::ErrorStatus es = AcDbBlockTableRecord::blockBeginSchema().dxfIn(btr, &f);
        if (es != Acad::eOk || !f.atEOF())
          warn(head.line, "BLOCK " + narrow(btr->name()) + ": its flags, origin and path could not all be read");
      }
    }
    btr->close();
    if (!linkEntities(record, ids, head.line)) return false;
    i = end + 1;
  }
  return true;
}

bool Reader::readEntities(const Section& s) {
  std::vector<AcDbObjectId> ids;
  entityOwners_.clear();
  for (const GroupRange& r : s.records) {
    const std::string_view type = trim(g_[r.begin].text());
    if (type == "BLOCK" || type == "ENDBLK" || type == "TABLE" || type == "ENDTAB")
      return fail(g_[r.begin].line, "0/" + std::string(type) + " does not belong in the ENTITIES section");
  }
  // The section's own line, before the run releases its groups.
  const int sectionLine = g_[s.start].line;
  if (!readEntityRun(s, 0, s.records.size(), Place::Entities, AcDbObjectId(), ids)) return false;
  // Into their spaces, in file order.
  // Each run of entities of one space joins it at once.
  for (size_t k = 0; k < ids.size();) {
    size_t end = k + 1;
    while (end < ids.size() && entityOwners_[end] == entityOwners_[k]) ++end;
    std::vector<AcDbObjectId> run(ids.begin() + static_cast<std::ptrdiff_t>(k), ids.begin() + static_cast<std::ptrdiff_t>(end));
    if (!linkEntities(entityOwners_[k], run, sectionLine)) return false;
    k = end;
  }
  return true;
}

bool Reader::readObjects(const Section& s) {
  for (const GroupRange& r : s.records) {
    Record rec;
    if (!loadRecord(r, rec)) return false;
    AcDbObjectId id = makeObject(rec, Place::Objects, AcDbObjectId());
    if (id.isNull()) return false;
    objectsInOrder_.push_back(id);
  }
  return true;
}

void Reader::keepSection(const Section& s) {
  KeptSection k;
  k.name = s.name;
  k.body.reserve(s.body.size());
  for (size_t i = s.body.begin; i < s.body.end; ++i) {
    k.body.push_back(g_[i].toGroup());
    k.body.back().line = 0;
  }
  dxfFileData(db_).sections.push_back(std::move(k));
}

bool Reader::linkComplexes() {
  for (const Complex& c : complexes_) {
    Acad::ErrorStatus es = linkParts(c.parent, c.children, c.seqend);
    if (es != Acad::eOk) {
      if (!handleLinesSorted_) {
        std::stable_sort(handleLines_.begin(), handleLines_.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        handleLinesSorted_ = true;
      }
      const int line = handleLine(c.parent.handle().value());
      warn(line, "the vertices or attributes of this entity could not join it (status " + std::to_string(es) + ")");
    }
  }
  return true;
}

bool Reader::finish() {
  // The named objects dictionary: files have it first in the OBJECTS
  // section; in any case it is a dictionary that nothing owns.
  for (AcDbObjectId id : objectsInOrder_) {
    AcDbObject* o = peekObject(id);
    if (AcDbDictionary::cast(o) && o->ownerId().isNull()) {
      db_->setRootId(AcDbDatabase::kRootNamedObjects, id);
      break;
    }
  }
  std::string err;
  if (!completeDrawing(db_, warnings_, &err)) {
    if (error_.empty()) error_ = err;
    return false;
  }
  return true;
}

bool Reader::run(const dxf::Layout& layout) {
  if (!prescanHandles(layout)) return false;
  // The tables every drawing has are made, when the file lacks them, once
  // its own are read and before anything that refers to them.
  bool tablesComplete = false;
  auto completeTablesOnce = [&] {
    if (tablesComplete) return true;
    tablesComplete = true;
    std::string err;
    if (completeTables(db_, &err)) return true;
    error_ = err;
    return false;
  };
  for (const Section& s : layout.sections) {
    bool ok = true;
    switch (s.kind) {
      case SectionKind::Header: ok = readHeader(s); break;
      case SectionKind::Classes: ok = readClasses(s); break;
      case SectionKind::Tables: ok = readTables(s) && completeTablesOnce(); break;
      case SectionKind::Blocks: ok = completeTablesOnce() && readBlocks(s); break;
      case SectionKind::Entities: ok = completeTablesOnce() && readEntities(s); break;
      case SectionKind::Objects: ok = readObjects(s); break;
      default: keepSection(s); break;
    }
    if (!ok) return false;
  }
  if (!linkComplexes()) return false;
  return finish();
}

}  // namespace

// Files from this size on are read with the help of large pages.
constexpr size_t kLargeFile = size_t{8} << 20;

bool readDxfBytes(std::string_view bytes, std::unique_ptr<AcDbDatabase>* out, std::string* error,
                  const DxfReadOptions& options) {
  return readDxfBytes(bytes, out, error, options, false);
}

bool readDxfBytes(std::string_view bytes, std::unique_ptr<AcDbDatabase>* out, std::string* error,
                  const DxfReadOptions& options, bool bytesAreOurs) {
  dxf::ReadOptions ro;
  if (options.fallbackCodePage) ro.fallbackCodePage = options.fallbackCodePage;
  dxf::GroupList rr = dxf::readGroupList(bytes, ro);
  if (!rr.ok) {
    if (error) *error = rr.error;
    return false;
  }
  if (options.warnings)
    options.warnings->insert(options.warnings->end(), rr.warnings.begin(), rr.warnings.end());
  dxf::Layout layout = dxf::splitSections(rr.groups);
  if (!layout.ok) {
    if (error) *error = layout.error;
    return false;
  }
  if (options.warnings)
    options.warnings->insert(options.warnings->end(), layout.warnings.begin(), layout.warnings.end());
  auto db = std::make_unique<AcDbDatabase>();
  Reader reader(db.get(), rr.groups, dxf::versionNumber(rr.version), options.warnings);
  if (bytesAreOurs) reader.mayRelease(bytes);
  // A large drawing's objects: many small ones, in a heap made ready ahead.
  std::optional<dxf::LargePageHeap> heap;
  if (bytes.size() >= kLargeFile) {
    heap.emplace();
    reader.growIn(&*heap);
  }
  if (!reader.run(layout)) {
    if (error) *error = reader.error();
    return false;
  }
  *out = std::move(db);
  return true;
}

}  // namespace zepk::db
