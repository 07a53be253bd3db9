// Entity data lists through the classes' own DXF filing.
#include "host/entlist.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>

#include "host/db/dxfinternal.h"
#include "host/db/ents_internal.h"
#include "host/db/internal.h"
#include "host/dbapserv.h"
#include "host/dbdict.h"
#include "host/dbents.h"
#include "host/dblayout.h"
#include "host/dbproxy.h"
#include "host/dbsymtb.h"
#include "host/lisp/bridge.h"
#include "host/lisp/wildcard.h"
#include "host/ol_errno.h"
#include "host/system/utf.h"

namespace zepk::db {

using lisp::RbKind;
using lisp::rbKind;

namespace {

template <class T>
struct Closer {
  T* obj = nullptr;
  ~Closer() {
    if (obj) obj->close();
  }
};

std::u16string upper(std::u16string s) {
  for (char16_t& c : s) c = lisp::foldUpper(c);
  return s;
}

const DxfItem* findCode(const std::vector<DxfItem>& items, int code) {
  for (const DxfItem& it : items)
    if (it.code == code) return &it;
  return nullptr;
}

DxfItem stringItem(int code, std::u16string s) {
  DxfItem it = makeItem(code, DxfItem::String);
  it.s = std::move(s);
  return it;
}

DxfItem intItem(int code, int64_t v) {
  DxfItem it = makeItem(code, DxfItem::Int);
  it.i = v;
  return it;
}

// Where the part of a subclass marker ends: the next marker, extended
// data, or the end.
size_t partEnd(const std::vector<DxfItem>& items, size_t marker) {
  size_t e = marker + 1;
  while (e < items.size() && items[e].code != 100 && items[e].code != -3) ++e;
  return e;
}

size_t findMarker(const std::vector<DxfItem>& items, std::u16string_view name) {
  for (size_t i = 0; i < items.size(); ++i)
    if (items[i].code == 100 && items[i].kind == DxfItem::String && items[i].s == name) return i;
  return items.size();
}

// The common entity groups the host leaves out of a list while they hold
// their defaults (colour and linetype by layer, line weight, linetype
// scale, visibility, transparency): what the file filer leaves out of the
// AcDbEntity part, except the space (67), which the list always shows.
// Thickness (39) likewise only shows when it is not zero, and the flag of
// entities following (66) when it is set.
std::vector<DxfItem> pruneDefaults(const std::vector<DxfItem>& all, const std::vector<DxfItem>& file) {
  std::vector<DxfItem> out;
  size_t ent = findMarker(all, u"AcDbEntity");
  size_t entEnd = ent < all.size() ? partEnd(all, ent) : ent;
  size_t fileEnt = findMarker(file, u"AcDbEntity");
  size_t fileEntEnd = fileEnt < file.size() ? partEnd(file, fileEnt) : fileEnt;
  auto inFilePart = [&](int code) {
    for (size_t i = fileEnt + 1; i < fileEntEnd; ++i)
      if (file[i].code == code) return true;
    return false;
  };
  const bool fileHasThickness = findCode(file, 39) != nullptr;
  for (size_t i = 0; i < all.size(); ++i) {
    const DxfItem& it = all[i];
    if (i > ent && i < entEnd && it.code != 67 && it.code != 8 && !inFilePart(it.code)) continue;
    if (it.code == 39 && !fileHasThickness && it.kind == DxfItem::Real && it.p[0] == 0.0) continue;
    // "Entities follow" shows only when they do.
    if (it.code == 66 && it.kind == DxfItem::Int && it.i == 0) continue;
    out.push_back(it);
  }
  return out;
}

// The layout an entity's block is the space of ("Model", "Layout1"), or
// empty for an entity of a block definition or a sub-entity.
std::u16string layoutNameOf(AcDbObjectId owner) {
  AcDbObjectPointer<AcDbBlockTableRecord> btr(owner, AcDb::kForRead);
  if (!btr || !btr->isLayout()) return u"";
  AcDbObjectPointer<AcDbLayout> layout(btr->getLayoutId(), AcDb::kForRead);
  if (layout) return layout->getLayoutName();
  const ACHAR* name = nullptr;
  btr->getName(name);
  return name && upper(name) == u"*MODEL_SPACE" ? u"Model" : u"Layout1";
}

bool appWanted(const std::u16string& app, const std::vector<std::u16string>& apps) {
  for (const std::u16string& p : apps)
    if (lisp::wcMatch(app, p, false)) return true;
  return false;
}

// One node as a group; false for a node that is no group.
bool itemFromNode(const resbuf* rb, DxfItem* out) {
  int code = rb->restype == RTDXF0 ? 0 : rb->restype;
  const auto& v = rb->resval;
  DxfItem it;
  it.code = code;
  switch (rbKind(code)) {
    case RbKind::String:
      it.kind = DxfItem::String;
      it.s = v.rstring ? std::u16string(v.rstring) : std::u16string();
      break;
    case RbKind::Real:
      it.kind = DxfItem::Real;
      it.p[0] = v.rreal;
      break;
    case RbKind::Point:
      it.kind = DxfItem::Point;
      std::memcpy(it.p, v.rpoint, sizeof it.p);
      break;
    case RbKind::Short:
      it.kind = DxfItem::Int;
      it.i = v.rint;
      break;
    case RbKind::Long:
      it.kind = DxfItem::Int;
      it.i = v.rlong;
      break;
    case RbKind::Int64:
      it.kind = DxfItem::Int;
      it.i = v.mnInt64;
      break;
    case RbKind::Name:
      it.kind = DxfItem::Id;
      if (!ads_name_nil(v.rlname) && acdbGetObjectId(it.id, v.rlname) != Acad::eOk) return false;
      break;
    case RbKind::Binary:
      it.kind = DxfItem::Binary;
      if (v.rbinary.buf && v.rbinary.clen > 0) it.b.assign(v.rbinary.buf, static_cast<size_t>(v.rbinary.clen));
      break;
    default: return false;
  }
  *out = std::move(it);
  return true;
}

ACHAR* dup(const std::u16string& s) {
  auto* p = static_cast<ACHAR*>(std::malloc((s.size() + 1) * sizeof(ACHAR)));
  if (!p) return nullptr;
  std::memcpy(p, s.c_str(), (s.size() + 1) * sizeof(ACHAR));
  return p;
}

resbuf* nodeFromItem(const DxfItem& it) {
  resbuf* rb = acutNewRb(it.code);
  if (!rb) return nullptr;
  auto& v = rb->resval;
  RbKind k = rbKind(it.code);
  switch (it.kind) {
    case DxfItem::String: v.rstring = dup(it.s); break;
    case DxfItem::Handle: v.rstring = dup(sys::fromUtf8(handleText(it.handle.value()))); break;
    case DxfItem::Int:
      if (k == RbKind::Long) v.rlong = static_cast<int32_t>(it.i);
      else if (k == RbKind::Int64) v.mnInt64 = it.i;
      else if (k == RbKind::Real) v.rreal = static_cast<double>(it.i);
      else v.rint = static_cast<short>(it.i);
      break;
    case DxfItem::Real: v.rreal = it.p[0]; break;
    case DxfItem::Point: std::memcpy(v.rpoint, it.p, sizeof v.rpoint); break;
    case DxfItem::Id:
      if (!it.id.isNull()) acdbGetAdsName(v.rlname, it.id);
      break;
    case DxfItem::Binary:
      if (!it.b.empty()) {
        v.rbinary.buf = static_cast<char*>(std::malloc(it.b.size()));
        if (v.rbinary.buf) {
          std::memcpy(v.rbinary.buf, it.b.data(), it.b.size());
          v.rbinary.clen = static_cast<short>(it.b.size());
        }
      }
      break;
  }
  return rb;
}

AcDbDatabase* workingDb() { return acdbHostApplicationServices()->workingDatabase(); }

// A header variable's text (CLAYER and the like), or fallback.
std::u16string headerText(AcDbDatabase* db, std::u16string_view name, std::u16string fallback) {
  for (const HeaderVar& v : headerVars(db))
    if (v.name == name && !v.groups.empty() && v.groups[0].kind == DxfItem::String) return v.groups[0].s;
  return fallback;
}

AcDbObjectId blockByName(AcDbDatabase* db, const std::u16string& name) {
  AcDbBlockTable* bt = nullptr;
  if (db->getBlockTable(bt, AcDb::kForRead) != Acad::eOk) return {};
  AcDbObjectId id;
  bt->getAt(name.c_str(), id);
  bt->close();
  return id;
}

// The space an entity of the list goes to: the layout (410) it names, else
// paper space for (67 . 1), else model space.
AcDbObjectId spaceFor(AcDbDatabase* db, const std::vector<DxfItem>& items) {
  if (const DxfItem* l = findCode(items, 410); l && l->kind == DxfItem::String && !l->s.empty()) {
    if (upper(l->s) == u"MODEL") return blockByName(db, ACDB_MODEL_SPACE);
    AcDbDictionary* layouts = nullptr;
    if (db->getLayoutDictionary(layouts, AcDb::kForRead) == Acad::eOk) {
      AcDbObjectId lid;
      Acad::ErrorStatus es = layouts->getAt(l->s.c_str(), lid);
      layouts->close();
      if (es == Acad::eOk) {
        AcDbObjectPointer<AcDbLayout> layout(lid, AcDb::kForRead);
        if (layout) return layout->getBlockTableRecordId();
      }
    }
    return {};
  }
  const DxfItem* ps = findCode(items, 67);
  return blockByName(db, ps && ps->kind == DxfItem::Int && ps->i == 1 ? ACDB_PAPER_SPACE : ACDB_MODEL_SPACE);
}

bool fail(EntListError* err, std::u16string message = {}) {
  if (err) err->message = std::move(message);
  return false;
}

// A failure that leaves its code in ERRNO.
bool failWith(EntListError* err, int code) {
  hostErrno() = code;
  return fail(err);
}

// Groups an entity's type needs in a list; without them the host makes
// nothing.
const std::vector<int>& requiredCodes(const std::u16string& type) {
  static const std::map<std::u16string, std::vector<int>> table = {
      {u"LINE", {10, 11}},      {u"CIRCLE", {10, 40}},      {u"ARC", {10, 40, 50, 51}}, {u"POINT", {10}},
      {u"TEXT", {10, 40, 1}},   {u"ATTRIB", {10, 40, 1, 2}}, {u"ATTDEF", {10, 40, 1, 2, 3}},
      {u"INSERT", {2, 10}},     {u"SOLID", {10, 11, 12}},   {u"TRACE", {10, 11, 12}},   {u"3DFACE", {10, 11, 12}},
      {u"ELLIPSE", {10, 11, 40}}, {u"MTEXT", {10}},         {u"LWPOLYLINE", {10}},      {u"VERTEX", {10}},
      {u"RAY", {10, 11}},       {u"XLINE", {10, 11}},       {u"HATCH", {2, 91}},
  };
  static const std::vector<int> none;
  auto it = table.find(type);
  return it == table.end() ? none : it->second;
}

// The object part of a list and its extended data as a chain.
struct SplitList {
  std::vector<DxfItem> body;
  std::vector<DxfItem> xdata;  // 1001 and the groups after -3
  bool hasXData = false;
};

SplitList split(const std::vector<DxfItem>& items) {
  SplitList s;
  bool inX = false;
  for (const DxfItem& it : items) {
    if (it.code == -3) {
      inX = true;
      s.hasXData = true;
      continue;
    }
    (inX ? s.xdata : s.body).push_back(it);
  }
  return s;
}

// Every application the extended data names must be registered.
bool appsRegistered(AcDbDatabase* db, const std::vector<DxfItem>& x) {
  AcDbRegAppTable* t = nullptr;
  if (db->getRegAppTable(t, AcDb::kForRead) != Acad::eOk) return false;
  bool ok = true;
  for (const DxfItem& it : x)
    if (it.code == 1001 && (it.kind != DxfItem::String || !t->has(it.s.c_str()))) ok = false;
  t->close();
  if (!x.empty() && x[0].code != 1001) ok = false;
  for (const DxfItem& it : x)
    if (it.code < 1000 || it.code > 1071) ok = false;
  return ok;
}

Acad::ErrorStatus applyXData(AcDbObject* obj, const std::vector<DxfItem>& x) {
  if (x.empty()) return Acad::eOk;
  resbuf* chain = groupsToChain(x);
  Acad::ErrorStatus es = obj->setXData(chain);
  acutRelRb(chain);
  return es;
}

// The groups of the list that the object reads: without the name, type,
// handle, layout, and (for a new object) owner and reactors.
std::vector<DxfItem> readable(const std::vector<DxfItem>& body, bool forNew) {
  std::vector<DxfItem> out;
  bool braces = false;
  bool beforeClass = true;
  for (const DxfItem& it : body) {
    if (it.code == 100) beforeClass = false;
    if (it.code == -1 || it.code == 0 || it.code == 5 || it.code == 410) continue;
    if (it.code == 102) {
      braces = it.kind == DxfItem::String && !it.s.empty() && it.s[0] == u'{';
      if (forNew) continue;
      out.push_back(it);
      continue;
    }
    if (forNew && (braces || (beforeClass && it.code == 330))) continue;
    out.push_back(it);
  }
  return out;
}

// The groups an entity keeps that its class does not model, by part. A
// list given to entmake or entmod adds none: groups its class does not
// take are left out, as the host leaves them; an entity keeps those its
// file gave it.
using UnmodelledGroups = std::vector<std::pair<const ClassSchema*, std::vector<ExtraGroup>>>;

UnmodelledGroups unmodelledGroups(const AcDbObject* obj) {
  UnmodelledGroups out;
  const auto* e = AcDbEntity::cast(obj);
  if (const EntityExtras* x = e ? EntityAccess::extras(e, false) : nullptr)
    for (const PartState& p : x->parts) out.emplace_back(p.schema, p.extras);
  return out;
}

void setUnmodelledGroups(AcDbObject* obj, const UnmodelledGroups& kept) {
  auto* e = AcDbEntity::cast(obj);
  EntityExtras* x = e ? EntityAccess::extras(e, false) : nullptr;
  if (!x) return;
  for (PartState& p : x->parts) {
    p.extras.clear();
    for (const auto& [schema, extras] : kept)
      if (schema == p.schema) p.extras = extras;
  }
}

// Reads the groups into an object, adding the subclass markers a list
// without them leaves out.
bool readGroups(AcDbObject* obj, const std::u16string& type, std::vector<DxfItem> groups, int polylineFlags) {
  if (AcDbEntity::cast(obj) && findMarker(groups, u"AcDbEntity") == groups.size()) {
    groups.erase(std::remove_if(groups.begin(), groups.end(), [](const DxfItem& it) { return it.code == 100; }),
                 groups.end());
    addSubclassMarkers(type, groups, polylineFlags);
  }
  // A table record listed without its markers gets them, as a file of the
  // oldest release gives it.
  if (AcDbSymbolTableRecord::cast(obj)) addSubclassMarkers(type, groups, 0);
  MemoryDxfFiler f(AcDb::kBagFiler, obj->database() ? obj->database() : workingDb());
  f.items() = std::move(groups);
  Acad::ErrorStatus es = obj->dxfInFields(&f);
  if (es != Acad::eOk || !f.atEOF()) return false;
  setUnmodelledGroups(obj, {});
  return true;
}

// The run of entmake calls that builds a complex entity or a block.
struct Run {
  AcDbDatabase* db = nullptr;
  // A polyline or a block reference with attributes, waiting for SEQEND.
  std::unique_ptr<AcDbEntity> owner;
  std::vector<DxfItem> ownerXData;
  std::vector<std::vector<DxfItem>> partXData;
  AcDbObjectId ownerSpace;
  int ownerFlags = 0;
  // A block definition, waiting for ENDBLK.
  bool inBlock = false;
  std::u16string blockName;
  int blockFlags = 0;
  AcGePoint3d blockOrigin;
  std::u16string blockDescription;
  struct Pending {
    std::unique_ptr<AcDbEntity> ent;
    std::vector<DxfItem> xdata;
    std::vector<std::vector<DxfItem>> partXData;
  };
  std::vector<Pending> blockEntities;

  void reset() {
    owner.reset();
    ownerXData.clear();
    partXData.clear();
    inBlock = false;
    blockEntities.clear();
  }
};

Run& run() {
  static auto* r = new Run;
  return *r;
}

// Gives the sub-entities of an owner just added their extended data.
void applyPartXData(AcDbObjectId ownerId, const std::vector<std::vector<DxfItem>>& parts) {
  AcDbObjectPointer<AcDbEntity> owner(ownerId, AcDb::kForRead);
  if (!owner) return;
  AcDbObjectIdArray ids = subentityIds(owner.object());
  owner.close();
  for (size_t i = 0; i < ids.size() && i < parts.size(); ++i) {
    if (parts[i].empty()) continue;
    AcDbObjectPointer<AcDbObject> sub(ids[i], AcDb::kForWrite);
    if (sub) applyXData(sub.object(), parts[i]);
  }
}

// Appends an entity to a block record; the entity is closed after.
bool appendTo(AcDbObjectId block, std::unique_ptr<AcDbEntity> ent, const std::vector<DxfItem>& xdata,
              const std::vector<std::vector<DxfItem>>& partXData, AcDbObjectId* made) {
  AcDbObjectPointer<AcDbBlockTableRecord> btr(block, AcDb::kForWrite);
  if (!btr) return false;
  AcDbObjectId id;
  if (btr->appendAcDbEntity(id, ent.get()) != Acad::eOk) return false;
  AcDbEntity* e = ent.release();
  applyXData(e, xdata);
  e->close();
  if (!partXData.empty()) applyPartXData(id, partXData);
  if (made) *made = id;
  return true;
}

bool finishBlock(Run& r, std::u16string* blockName, EntListError* err) {
  AcDbDatabase* db = r.db;
  AcDbBlockTable* bt = nullptr;
  if (db->getBlockTable(bt, AcDb::kForWrite) != Acad::eOk) return fail(err);
  Closer<AcDbBlockTable> btClose{bt};
  AcDbObjectId id;
  const bool anonymous = (r.blockFlags & 1) != 0;
  if (!anonymous && bt->getAt(r.blockName.c_str(), id) == Acad::eOk) {
    // A block defined again: its entities are replaced.
    AcDbObjectPointer<AcDbBlockTableRecord> old(id, AcDb::kForWrite);
    if (!old || old->isLayout()) return fail(err);
    for (AcDbObjectId e : old->entityIds()) {
      AcDbObjectPointer<AcDbEntity> ent(e, AcDb::kForWrite);
      if (ent) ent->erase();
    }
    old->setOrigin(r.blockOrigin);
  } else {
    auto* rec = new AcDbBlockTableRecord;
    if (rec->setName(r.blockName.c_str()) != Acad::eOk) {
      delete rec;
      return fail(err);
    }
    rec->setOrigin(r.blockOrigin);
    if (anonymous) rec->setIsAnonymous(true);
    if (!r.blockDescription.empty()) rec->setComments(r.blockDescription.c_str());
    if (bt->add(id, rec) != Acad::eOk) {
      delete rec;
      return fail(err);
    }
    rec->close();
  }
  btClose.obj = nullptr;
  bt->close();
  bool attdefs = false;
  for (const Run::Pending& p : r.blockEntities)
    if (AcDbAttributeDefinition::cast(p.ent.get())) attdefs = true;
  if (attdefs) {
    AcDbObjectPointer<AcDbBlockTableRecord> rec(id, AcDb::kForWrite);
    if (rec) rec->setHasAttributeDefinitions(true);
  }
  for (Run::Pending& p : r.blockEntities) appendTo(id, std::move(p.ent), p.xdata, p.partXData, nullptr);
  AcDbObjectPointer<AcDbBlockTableRecord> rec(id, AcDb::kForRead);
  const ACHAR* name = nullptr;
  if (rec) rec->getName(name);
  if (blockName) *blockName = name ? name : r.blockName;
  return true;
}

bool isComplexStart(const std::u16string& type, const std::vector<DxfItem>& body) {
  if (type == u"POLYLINE") return true;
  if (type != u"INSERT") return false;
  const DxfItem* f = findCode(body, 66);
  return f && f->kind == DxfItem::Int && f->i == 1;
}

int intOf(const std::vector<DxfItem>& items, int code, int fallback) {
  const DxfItem* it = findCode(items, code);
  return it && it->kind == DxfItem::Int ? static_cast<int>(it->i) : fallback;
}

}  // namespace

std::u16string dxfTypeName(const AcDbObject* obj) {
  if (const ProxyData* p = proxyData(obj)) return p->dxfName;
  if (AcDbSymbolTable::cast(obj)) return u"TABLE";
  const AcRxClass* c = obj->isA();
  const char16_t* n = c ? c->dxfName() : nullptr;
  if (n && *n) return n;
  std::u16string s = c ? c->name() : u"OBJECT";
  return upper(s);
}

bool objectGroups(AcDbObjectId id, const std::vector<std::u16string>& apps, std::vector<DxfItem>* out) {
  if (id.isNull()) return false;
  AcDbObject* obj = nullptr;
  if (acdbOpenAcDbObject(obj, id, AcDb::kForRead) != Acad::eOk) return false;
  Closer<AcDbObject> close{obj};
  AcDbDatabase* db = id.database();
  MemoryDxfFiler all(AcDb::kBagFiler, db);
  if (obj->dxfOutFields(&all) != Acad::eOk) return false;
  std::vector<DxfItem> items = all.items();
  const bool entity = AcDbEntity::cast(obj) != nullptr;
  if (entity) {
    MemoryDxfFiler file(AcDb::kFileFiler, db);
    if (obj->dxfOutFields(&file) == Acad::eOk) items = pruneDefaults(items, file.items());
  }
  out->clear();
  DxfItem self = makeItem(-1, DxfItem::Id);
  self.id = id;
  out->push_back(self);
  out->push_back(stringItem(0, dxfTypeName(obj)));
  const size_t base = out->size();
  out->insert(out->end(), items.begin(), items.end());
  // The handle: after the owner when the owner comes first, else before
  // the reactors and dictionary that open the object's groups.
  size_t at = base + ((!items.empty() && items[0].code == 330) ? 1 : 0);
  out->insert(out->begin() + static_cast<long>(at), stringItem(5, sys::fromUtf8(handleText(id.handle().value()))));
  if (entity) {
    size_t m = findMarker(*out, u"AcDbEntity");
    if (m < out->size()) {
      size_t pos = m + 1;
      if (pos < out->size() && (*out)[pos].code == 67) {
        ++pos;
      } else {
        out->insert(out->begin() + static_cast<long>(pos), intItem(67, 0));
        ++pos;
      }
      std::u16string layout = layoutNameOf(obj->ownerId());
      if (!layout.empty()) out->insert(out->begin() + static_cast<long>(pos), stringItem(410, layout));
    }
  }
  if (!apps.empty()) {
    resbuf* x = obj->xData();
    bool any = false;
    bool take = false;
    for (const resbuf* p = x; p; p = p->rbnext) {
      if (p->restype == 1001) take = p->resval.rstring && appWanted(p->resval.rstring, apps);
      if (!take) continue;
      DxfItem it;
      if (!itemFromNode(p, &it)) continue;
      if (!any) out->push_back(makeItem(-3, DxfItem::String));
      any = true;
      out->push_back(std::move(it));
    }
    acutRelRb(x);
  }
  return true;
}

resbuf* groupsToChain(const std::vector<DxfItem>& items) {
  resbuf* head = nullptr;
  resbuf** tail = &head;
  for (const DxfItem& it : items) {
    resbuf* rb = it.code == -3 ? acutNewRb(-3) : nodeFromItem(it);
    if (!rb) {
      acutRelRb(head);
      return nullptr;
    }
    *tail = rb;
    tail = &rb->rbnext;
  }
  return head;
}

bool chainToGroups(const resbuf* rb, std::vector<DxfItem>* out, EntListError* err) {
  out->clear();
  int index = 0;
  for (const resbuf* p = rb; p; p = p->rbnext, ++index) {
    if (p->restype == -3) {
      out->push_back(makeItem(-3, DxfItem::String));
      continue;
    }
    DxfItem it;
    if (!itemFromNode(p, &it)) {
      if (err) {
        err->badGroup = true;
        err->badIndex = index;
      }
      return false;
    }
    out->push_back(std::move(it));
  }
  return true;
}

AcDbObjectId ensureLayer(AcDbDatabase* db, const std::u16string& name) {
  if (AcDbObjectId id = layerIdByName(db, name); !id.isNull()) return id;
  AcDbLayerTable* lt = nullptr;
  if (db->getLayerTable(lt, AcDb::kForWrite) != Acad::eOk) return {};
  auto* rec = new AcDbLayerTableRecord;
  AcDbObjectId id;
  if (rec->setName(name.c_str()) != Acad::eOk || lt->add(id, rec) != Acad::eOk) {
    delete rec;
    lt->close();
    return {};
  }
  rec->close();
  lt->close();
  return id;
}

bool makeFromGroups(const std::vector<DxfItem>& items, bool nonGraphical, AcDbObjectId* made,
                    std::u16string* blockName, EntListError* err) {
  if (made) made->setNull();
  if (blockName) blockName->clear();
  AcDbDatabase* db = workingDb();
  if (!db) return fail(err);
  Run& r = run();
  if (r.db != db) {
    r.reset();
    r.db = db;
  }
  if (items.empty()) {
    // No list: a run that was building something is dropped.
    r.reset();
    return fail(err);
  }
  SplitList list = split(items);
  const DxfItem* typeItem = findCode(list.body, 0);
  if (!typeItem || typeItem->kind != DxfItem::String) return failWith(err, OL_EMKMANDF);
  const std::u16string type = upper(typeItem->s);
  if (list.hasXData && !appsRegistered(db, list.xdata)) return fail(err);
  for (int code : requiredCodes(type))
    if (!findCode(list.body, code)) return failWith(err, OL_EMKMANDF);

  // A failure inside a run ends the run, as the host drops what it held.
  auto abandon = [&](bool endBlock, int code = OL_EMKTYPE) {
    hostErrno() = code;
    r.owner.reset();
    r.partXData.clear();
    if (endBlock) {
      r.inBlock = false;
      r.blockEntities.clear();
    }
    return fail(err);
  };

  if (type == u"BLOCK") {
    const DxfItem* name = findCode(list.body, 2);
    if (!name || name->kind != DxfItem::String || name->s.empty()) return abandon(true, OL_EMKNOBNM);
    if (r.inBlock || r.owner) return abandon(true);
    r.inBlock = true;
    r.blockName = name->s;
    r.blockFlags = intOf(list.body, 70, 0);
    const DxfItem* o = findCode(list.body, 10);
    r.blockOrigin = o && o->kind == DxfItem::Point ? AcGePoint3d(o->p[0], o->p[1], o->p[2]) : AcGePoint3d();
    const DxfItem* d = findCode(list.body, 4);
    r.blockDescription = d && d->kind == DxfItem::String ? d->s : u"";
    r.blockEntities.clear();
    return true;
  }
  if (type == u"ENDBLK") {
    if (!r.inBlock || r.owner) return abandon(true);
    bool ok = finishBlock(r, blockName, err);
    r.inBlock = false;
    r.blockEntities.clear();
    return ok;
  }
  if (type == u"SEQEND") {
    if (!r.owner) return abandon(false);
    std::unique_ptr<AcDbEntity> owner = std::move(r.owner);
    std::vector<std::vector<DxfItem>> parts = std::move(r.partXData);
    r.partXData.clear();
    if (r.inBlock) {
      r.blockEntities.push_back({std::move(owner), r.ownerXData, std::move(parts)});
      return true;
    }
    if (!appendTo(r.ownerSpace, std::move(owner), r.ownerXData, parts, made)) return fail(err);
    return true;
  }

  AcRxClass* cls = acrxFindClassByDxfName(type.c_str());
  if (cls && cls->isDerivedFrom(AcDbEntity::desc())) cls = entityClassFor(type, list.body);
  if (!cls) return abandon(false);
  AcRxObject* made0 = cls->create();
  AcDbObject* obj = made0 ? AcDbObject::cast(made0) : nullptr;
  if (!obj) {
    delete made0;
    return abandon(false);
  }
  std::unique_ptr<AcDbObject> holder(obj);
  auto* ent = AcDbEntity::cast(obj);
  // A table record (a layer, linetype, text style...) goes into its table,
  // made by entmake as well as entmakex; a name the table has already is
  // refused. Blocks come as BLOCK ... ENDBLK.
  if (auto* rec = AcDbSymbolTableRecord::cast(obj); rec && !AcDbBlockTableRecord::cast(obj)) {
    if (r.owner || r.inBlock) return abandon(false);
    const DxfItem* name = findCode(list.body, 2);
    if (!name || name->kind != DxfItem::String || name->s.empty()) return failWith(err, OL_EMKMANDF);
    AcDbObjectId tid = tableId(db, type.c_str());
    if (tid.isNull()) return abandon(false);
    if (!readGroups(obj, type, readable(list.body, false), 0)) return fail(err);
    AcDbObjectPointer<AcDbSymbolTable> table(tid, AcDb::kForWrite);
    if (!table) return fail(err);
    if (table->has(name->s.c_str())) return failWith(err, OL_ESNVALID);
    AcDbObjectId id;
    if (table->add(id, rec) != Acad::eOk) return fail(err);
    holder.release();
    applyXData(obj, list.xdata);
    obj->close();
    if (made) *made = id;
    return true;
  }
  if (!ent) {
    if (!nonGraphical || r.owner) return abandon(false);
    if (!readGroups(obj, type, readable(list.body, false), 0)) return fail(err);
    AcDbObjectId id;
    if (db->addAcDbObject(id, obj) != Acad::eOk) return fail(err);
    holder.release();
    applyXData(obj, list.xdata);
    obj->close();
    if (made) *made = id;
    return true;
  }

  std::vector<DxfItem> groups = readable(list.body, true);
  // The layer: the one named, made when missing, else the current one.
  const DxfItem* layer = findCode(groups, 8);
  if (layer && (layer->kind != DxfItem::String || layer->s.empty())) return abandon(false, OL_EMMLAY);
  if (!layer) {
    std::u16string current = headerText(db, u"$CLAYER", u"0");
    if (layerIdByName(db, current).isNull()) current = u"0";
    size_t m = findMarker(groups, u"AcDbEntity");
    size_t pos = m < groups.size() ? m + 1 : 0;
    groups.insert(groups.begin() + static_cast<long>(pos), stringItem(8, current));
  } else if (ensureLayer(db, layer->s).isNull()) {
    return abandon(false, OL_EMMLAY);
  }
  if (const DxfItem* lt = findCode(groups, 6)) {
    if (lt->kind != DxfItem::String || linetypeIdByName(db, lt->s).isNull()) return abandon(false, OL_EMMLT);
  }
  // Records named by the list must exist: the block of an insert, the
  // text style of a text.
  if (type == u"INSERT" || type == u"MINSERT") {
    const DxfItem* b = findCode(groups, 2);
    if (!b || b->kind != DxfItem::String) return abandon(false, OL_EMKBNAME);
    // A space is no block to insert.
    AcDbObjectPointer<AcDbBlockTableRecord> block(blockByName(db, b->s), AcDb::kForRead);
    if (!block || block->isLayout()) return abandon(false, OL_EMKBNAME);
  }
  if (const DxfItem* st = findCode(groups, 7);
      st && (type == u"TEXT" || type == u"MTEXT" || type == u"ATTDEF" || type == u"ATTRIB")) {
    AcDbTextStyleTable* t = nullptr;
    bool has = st->kind == DxfItem::String && db->getTextStyleTable(t, AcDb::kForRead) == Acad::eOk &&
               t->has(st->s.c_str());
    if (t) t->close();
    if (!has) return abandon(false, OL_EMMSTYLE);
  }

  const bool part = type == u"VERTEX" || type == u"ATTRIB";
  if (part) {
    if (!r.owner) return abandon(false);
    if (!readGroups(obj, type, std::move(groups), r.ownerFlags)) return abandon(false);
    holder.release();
    if (appendSubentity(r.owner.get(), ent, nullptr) != Acad::eOk) {
      delete ent;
      return abandon(false);
    }
    r.partXData.push_back(list.xdata);
    return true;
  }
  if (r.owner) return abandon(false);
  if (!readGroups(obj, type, std::move(groups), 0)) return abandon(false);
  holder.release();
  std::unique_ptr<AcDbEntity> entity(ent);
  if (isComplexStart(type, list.body)) {
    AcDbObjectId space = r.inBlock ? AcDbObjectId() : spaceFor(db, list.body);
    if (!r.inBlock && space.isNull()) return fail(err);
    r.owner = std::move(entity);
    r.ownerSpace = space;
    r.ownerXData = list.xdata;
    r.ownerFlags = intOf(list.body, 70, 0);
    r.partXData.clear();
    return true;
  }
  if (r.inBlock) {
    r.blockEntities.push_back({std::move(entity), list.xdata, {}});
    return true;
  }
  AcDbObjectId space = spaceFor(db, list.body);
  if (space.isNull() || !appendTo(space, std::move(entity), list.xdata, {}, made)) return fail(err);
  return true;
}

namespace {

bool isEntityCommonCode(int code) {
  return code == 62 || code == 6 || code == 370 || code == 48 || code == 60 || code == 420 || code == 430 ||
         code == 440 || code == 8 || code == 67 || code == 347 || code == 390 || code == 284;
}

// The current groups with those of the list put in: each group of the list
// takes the place of the group of its code in the same turn; a group the
// object does not show yet joins its part. When the list holds a code more
// or fewer times than the object (vertices added or removed), the list's
// class groups are taken whole and the object's common groups kept.
std::vector<DxfItem> mergeGroups(const std::vector<DxfItem>& current, const std::vector<DxfItem>& given,
                                 const std::u16string& type) {
  std::map<int, int> curCount, givenCount;
  for (const DxfItem& it : current) ++curCount[it.code];
  for (const DxfItem& it : given) ++givenCount[it.code];
  bool positional = true;
  for (auto& [code, n] : givenCount)
    if (code != 100 && code != 102 && curCount[code] != 0 && curCount[code] != n) positional = false;
  if (positional) {
    std::vector<DxfItem> out = current;
    std::map<int, int> seen;
    for (const DxfItem& it : given) {
      if (it.code == 100 || it.code == 102) continue;
      int k = seen[it.code]++;
      int found = -1;
      for (size_t i = 0, n = 0; i < out.size(); ++i) {
        if (out[i].code == it.code && static_cast<int>(n++) == k) {
          found = static_cast<int>(i);
          break;
        }
      }
      if (found >= 0) {
        out[static_cast<size_t>(found)] = it;
        continue;
      }
      size_t m = findMarker(out, u"AcDbEntity");
      size_t at = isEntityCommonCode(it.code) && m < out.size() ? partEnd(out, m) : out.size();
      out.insert(out.begin() + static_cast<long>(at), it);
    }
    return out;
  }
  // Whole: the object-level groups of the current list, then the given
  // class groups with markers.
  std::vector<DxfItem> out;
  size_t firstMarker = 0;
  while (firstMarker < current.size() && current[firstMarker].code != 100) ++firstMarker;
  out.assign(current.begin(), current.begin() + static_cast<long>(firstMarker));
  std::vector<DxfItem> body;
  for (const DxfItem& it : given)
    if (it.code != 102 && !(it.code == 330 && body.empty())) body.push_back(it);
  if (findMarker(body, u"AcDbEntity") == body.size()) {
    body.erase(std::remove_if(body.begin(), body.end(), [](const DxfItem& it) { return it.code == 100; }), body.end());
    addSubclassMarkers(type, body, 0);
  }
  // Common groups the list leaves out keep their values.
  size_t cm = findMarker(current, u"AcDbEntity");
  size_t bm = findMarker(body, u"AcDbEntity");
  if (cm < current.size() && bm < body.size()) {
    for (size_t i = cm + 1; i < partEnd(current, cm); ++i) {
      if (findCode(body, current[i].code)) continue;
      body.insert(body.begin() + static_cast<long>(partEnd(body, bm)), current[i]);
    }
  }
  out.insert(out.end(), body.begin(), body.end());
  return out;
}

}  // namespace

bool modifyFromGroups(const std::vector<DxfItem>& items, EntListError* err) {
  SplitList list = split(items);
  const DxfItem* self = findCode(list.body, -1);
  if (!self || self->kind != DxfItem::Id || self->id.isNull()) return failWith(err, OL_ENAMEVALID);
  AcDbObjectId id = self->id;
  AcDbDatabase* db = id.database();
  if (!db) return fail(err);
  if (list.hasXData && !appsRegistered(db, list.xdata)) return fail(err);
  AcDbObject* obj = nullptr;
  if (Acad::ErrorStatus es = acdbOpenAcDbObject(obj, id, AcDb::kForWrite); es != Acad::eOk)
    return failWith(err, es == Acad::eOnLockedLayer ? OL_EMMLL : es == Acad::eWasErased ? OL_EMODDEL : OL_ENAMEVALID);
  const std::u16string type = dxfTypeName(obj);
  if (const DxfItem* t = findCode(list.body, 0); t && (t->kind != DxfItem::String || upper(t->s) != upper(type))) {
    obj->close();
    return failWith(err, OL_EMMTYPE);
  }
  MemoryDxfFiler all(AcDb::kBagFiler, db);
  if (obj->dxfOutFields(&all) != Acad::eOk) {
    obj->close();
    return fail(err);
  }
  std::vector<DxfItem> given = readable(list.body, false);
  // The owner and reactors are the object's own; a list cannot move it.
  bool braces = false;
  given.erase(std::remove_if(given.begin(), given.end(),
                             [&](const DxfItem& it) {
                               if (it.code == 102) {
                                 braces = !it.s.empty() && it.s[0] == u'{';
                                 return true;
                               }
                               return braces || it.code == 330 || it.code == 360;
                             }),
              given.end());
  if (const DxfItem* layer = findCode(given, 8)) {
    if (layer->kind != DxfItem::String || layer->s.empty() || ensureLayer(db, layer->s).isNull()) {
      obj->close();
      return failWith(err, OL_EMMLAY);
    }
  }
  if (const DxfItem* lt = findCode(given, 6)) {
    if (lt->kind != DxfItem::String || linetypeIdByName(db, lt->s).isNull()) {
      obj->close();
      return failWith(err, OL_EMMLT);
    }
  }
  // A record takes a new name only as setName allows it: valid, free in
  // its table, and not the name of a record every drawing has.
  if (auto* rec = AcDbSymbolTableRecord::cast(obj)) {
    const DxfItem* name = findCode(given, 2);
    if (name && (name->kind != DxfItem::String || rec->setName(name->s.c_str()) != Acad::eOk)) {
      obj->cancel();
      return failWith(err, OL_ESNVALID);
    }
  }
  std::vector<DxfItem> merged = mergeGroups(all.items(), given, type);
  MemoryDxfFiler f(AcDb::kBagFiler, db);
  f.items() = std::move(merged);
  UnmodelledGroups kept = unmodelledGroups(obj);
  Acad::ErrorStatus es = obj->dxfInFields(&f);
  if (es != Acad::eOk || !f.atEOF()) {
    obj->cancel();
    return fail(err);
  }
  setUnmodelledGroups(obj, kept);
  if (list.hasXData && applyXData(obj, list.xdata) != Acad::eOk) {
    obj->cancel();
    return fail(err);
  }
  obj->close();
  return true;
}

AcDbObjectId nextEntity(AcDbDatabase* db, AcDbObjectId id) {
  if (!db) return {};
  auto spaceEntities = [&](const char16_t* name) {
    AcDbObjectPointer<AcDbBlockTableRecord> btr(blockByName(db, name), AcDb::kForRead);
    return btr ? btr->entityIds() : AcDbObjectIdArray();
  };
  auto firstLive = [](const AcDbObjectIdArray& ids, size_t from) -> AcDbObjectId {
    for (size_t i = from; i < ids.size(); ++i)
      if (!ids[i].isErased()) return ids[i];
    return {};
  };
  if (id.isNull()) {
    AcDbObjectId first = firstLive(spaceEntities(ACDB_MODEL_SPACE), 0);
    return first.isNull() ? firstLive(spaceEntities(ACDB_PAPER_SPACE), 0) : first;
  }
  AcDbObjectPointer<AcDbEntity> ent(id, AcDb::kForRead, true);
  if (!ent) return {};
  // Into a complex entity: its first part, or its SEQEND.
  if (hasSubentities(ent.object())) {
    AcDbObjectId part = firstLive(subentityIds(ent.object()), 0);
    if (!part.isNull()) return part;
    AcDbObjectId end = sequenceEndId(ent.object());
    if (!end.isNull()) return end;
  }
  AcDbObjectId owner = ent->ownerId();
  ent.close();
  AcDbObjectPointer<AcDbEntity> ownerEnt(owner, AcDb::kForRead, true);
  if (ownerEnt) {
    // Within a complex entity: the next part, then the SEQEND; after the
    // SEQEND the walk goes on after the owner.
    AcDbObjectIdArray parts = subentityIds(ownerEnt.object());
    AcDbObjectId end = sequenceEndId(ownerEnt.object());
    auto at = std::find(parts.begin(), parts.end(), id);
    if (at != parts.end()) {
      AcDbObjectId next = firstLive(parts, static_cast<size_t>(at - parts.begin()) + 1);
      return next.isNull() ? end : next;
    }
    if (id != end) return {};
    id = owner;
    owner = ownerEnt->ownerId();
    ownerEnt.close();
  }
  AcDbObjectPointer<AcDbBlockTableRecord> btr(owner, AcDb::kForRead);
  if (!btr) return {};
  AcDbObjectIdArray ids = btr->entityIds();
  const ACHAR* name = nullptr;
  btr->getName(name);
  const bool model = name && upper(name) == u"*MODEL_SPACE";
  btr.close();
  auto at = std::find(ids.begin(), ids.end(), id);
  if (at == ids.end()) return {};
  AcDbObjectId next = firstLive(ids, static_cast<size_t>(at - ids.begin()) + 1);
  if (next.isNull() && model) next = firstLive(spaceEntities(ACDB_PAPER_SPACE), 0);
  return next;
}

AcDbObjectId lastEntity(AcDbDatabase* db) {
  if (!db) return {};
  AcDbObjectId best;
  for (const char16_t* space : {ACDB_MODEL_SPACE, ACDB_PAPER_SPACE}) {
    AcDbObjectPointer<AcDbBlockTableRecord> btr(blockByName(db, space), AcDb::kForRead);
    if (!btr) continue;
    for (AcDbObjectId id : btr->entityIds())
      if (best.isNull() || id.handle().value() > best.handle().value()) best = id;
  }
  return best;
}

Acad::ErrorStatus toggleErased(AcDbObjectId id) {
  AcDbObject* obj = nullptr;
  Acad::ErrorStatus es = acdbOpenAcDbObject(obj, id, AcDb::kForWrite, true);
  if (es != Acad::eOk) return es;
  if (!AcDbEntity::cast(obj)) {
    obj->close();
    return Acad::eNotAnEntity;
  }
  // A part of a complex entity goes only with its owner.
  {
    AcDbObject* o = nullptr;
    if (acdbOpenAcDbObject(o, obj->ownerId(), AcDb::kForRead, true) == Acad::eOk) {
      bool part = AcDbEntity::cast(o) != nullptr;
      o->close();
      if (part) {
        obj->close();
        return Acad::eNotApplicable;
      }
    }
  }
  es = obj->erase(!obj->isErased());
  obj->close();
  return es;
}

AcDbObjectId objectByHandle(AcDbDatabase* db, std::u16string_view handle) {
  if (!db || handle.empty() || handle.size() > 16) return {};
  std::optional<uint64_t> h = parseHandle(sys::toUtf8(handle));
  if (!h || *h == 0) return {};
  AcDbObjectId id;
  if (db->getAcDbObjectId(id, false, AcDbHandle(*h)) != Acad::eOk || id.isNull() || id.isErased()) return {};
  return id;
}

}  // namespace zepk::db
