// Selection sets: numbered lists of entities that live until freed (a LISP
// selection set frees its set when LISP drops the last reference to it).
#include <algorithm>
#include <map>
#include <memory>

#include "host/ads.h"
#include "host/dbapserv.h"
#include "host/dbsymtb.h"
#include "host/entlist.h"
#include "host/ol_errno.h"
#include "host/selset.h"
#include "host/ssfilter.h"
#include "host/system/utf.h"

namespace zepk::db {

namespace {

}  // namespace

struct SelectionSets {
  std::map<int64_t, std::vector<AcDbObjectId>> sets;
  std::vector<AcDbObjectId> pickfirst;
  std::vector<AcDbObjectId> previous;
};

namespace {

// Set names are numbered across the session, so that a name kept from one
// document never names a set of another.
int64_t gNextSet = 1;

std::shared_ptr<SelectionSets>& currentSets() {
  static auto* s = new std::shared_ptr<SelectionSets>(std::make_shared<SelectionSets>());
  return *s;
}
SelectionSets& sets() { return *currentSets(); }

// The set of a name; a name of no set sets ERRNO.
std::vector<AcDbObjectId>* find(const ads_name n) {
  auto it = n && n[1] == 0 ? sets().sets.find(n[0]) : sets().sets.end();
  if (it != sets().sets.end()) return &it->second;
  hostErrno() = OL_ESSVALID;
  return nullptr;
}

void newSet(std::vector<AcDbObjectId> ids, ads_name out) {
  SelectionSets& s = sets();
  int64_t n = gNextSet++;
  s.sets.emplace(n, std::move(ids));
  out[0] = n;
  out[1] = 0;
}

bool entityId(const ads_name e, AcDbObjectId& id) {
  if (e && acdbGetObjectId(id, e) == Acad::eOk && !id.isNull()) return true;
  hostErrno() = OL_ENAMEVALID;
  return false;
}

AcDbObjectIdArray spaceEntities(AcDbDatabase* db) {
  AcDbObjectIdArray out;
  AcDbBlockTable* bt = nullptr;
  if (db->getBlockTable(bt, AcDb::kForRead) != Acad::eOk) return out;
  AcDbObjectIdArray blocks = bt->recordIds();
  bt->close();
  // Model space first, then the paper spaces.
  std::stable_partition(blocks.begin(), blocks.end(), [](AcDbObjectId id) {
    AcDbObjectPointer<AcDbBlockTableRecord> b(id, AcDb::kForRead);
    const ACHAR* name = nullptr;
    if (b) b->getName(name);
    std::u16string n = name ? name : u"";
    for (char16_t& c : n)
      if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - u'a' + u'A');
    return n == u"*MODEL_SPACE";
  });
  for (AcDbObjectId bid : blocks) {
    AcDbObjectPointer<AcDbBlockTableRecord> b(bid, AcDb::kForRead);
    if (!b || !b->isLayout()) continue;
    AcDbObjectIdArray ids = b->entityIds();
    out.insert(out.end(), ids.begin(), ids.end());
  }
  return out;
}

}  // namespace

bool selectAll(AcDbDatabase* db, const std::vector<DxfItem>& filter, std::vector<AcDbObjectId>* out,
               std::string* why) {
  out->clear();
  SelectionFilter f;
  if (!f.parse(filter, why)) return false;
  if (!db) return true;
  std::vector<DxfItem> groups;
  for (AcDbObjectId id : spaceEntities(db)) {
    if (!f.empty()) {
      if (!objectGroups(id, {u"*"}, &groups) || !f.matches(groups)) continue;
    }
    out->push_back(id);
  }
  return true;
}

bool filterIds(const std::vector<AcDbObjectId>& ids, const std::vector<DxfItem>& filter,
               std::vector<AcDbObjectId>* out) {
  out->clear();
  SelectionFilter f;
  if (!f.parse(filter)) return false;
  std::vector<DxfItem> groups;
  for (AcDbObjectId id : ids) {
    if (id.isNull() || id.isErased()) continue;
    if (!f.empty() && (!objectGroups(id, {u"*"}, &groups) || !f.matches(groups))) continue;
    out->push_back(id);
  }
  return true;
}

void makeSet(std::vector<AcDbObjectId> ids, ads_name out) {
  sets().previous = ids;
  newSet(std::move(ids), out);
}

const std::vector<AcDbObjectId>* setMembers(const ads_name ss) { return find(ss); }

std::shared_ptr<SelectionSets> newSelectionSets() { return std::make_shared<SelectionSets>(); }

void setCurrentSelectionSets(std::shared_ptr<SelectionSets> s) {
  if (s) currentSets() = std::move(s);
}

std::vector<AcDbObjectId>& pickfirstSet() { return sets().pickfirst; }
const std::vector<AcDbObjectId>& previousSet() { return sets().previous; }

namespace {
EditorSelection editorSelection = nullptr;
}
void setEditorSelection(EditorSelection fn) { editorSelection = fn; }

}  // namespace zepk::db

using namespace zepk;

int acedSSGet(const ACHAR* str, const void* pt1, const void* pt2, const resbuf* filter, ads_name ss) {
  if (!ss) return RTERROR;
  ads_name_clear(ss);
  std::u16string mode(str ? str : u"");
  if (!mode.empty() && mode[0] == u'_') mode.erase(0, 1);
  for (char16_t& c : mode)
    if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - u'a' + u'A');
  std::vector<db::DxfItem> f;
  if (filter && !db::chainToGroups(filter, &f, nullptr)) return RTERROR;
  AcDbDatabase* dbp = acdbHostApplicationServices()->workingDatabase();
  std::vector<AcDbObjectId> ids;
  if (mode == u"X" || mode == u"A") {
    if (!db::selectAll(dbp, f, &ids, nullptr)) return RTERROR;
  } else if (mode == u"L") {
    AcDbObjectId last = db::lastEntity(dbp);
    if (!last.isNull() && !last.isErased()) {
      if (!db::filterIds({last}, f, &ids)) return RTERROR;
    }
  } else if (mode == u"P") {
    if (!db::filterIds(db::previousSet(), f, &ids)) return RTERROR;
  } else if (mode == u"I") {
    if (!db::filterIds(db::pickfirstSet(), f, &ids)) return RTERROR;
  } else {
    // Picking, windows and asking: the editor's.
    if (!db::editorSelection) return RTERROR;
    int st = db::editorSelection(str, pt1, pt2, f, &ids);
    if (st != RTNORM) return st;
  }
  if (ids.empty()) return RTERROR;
  db::makeSet(std::move(ids), ss);
  return RTNORM;
}

int acedSSFree(const ads_name sname) {
  if (!sname || !db::setMembers(sname)) return RTERROR;
  db::sets().sets.erase(sname[0]);
  return RTNORM;
}

int acedSSLength(const ads_name sname, int32_t* len) {
  const auto* s = db::setMembers(sname);
  if (!s || !len) return RTERROR;
  *len = static_cast<int32_t>(s->size());
  return RTNORM;
}

int acedSSName(const ads_name ss, int32_t i, ads_name entres) {
  const auto* s = db::setMembers(ss);
  if (!s || !entres || i < 0 || static_cast<size_t>(i) >= s->size()) return RTERROR;
  return adsNameOf(entres, (*s)[static_cast<size_t>(i)]) == Acad::eOk ? RTNORM : RTERROR;
}

int acedSSAdd(const ads_name ename, const ads_name sname, ads_name result) {
  if (!result) return RTERROR;
  AcDbObjectId id;
  const bool haveEnt = ename && !ads_name_nil(ename);
  if (haveEnt && !db::entityId(ename, id)) return RTERROR;
  const bool haveSet = sname && !ads_name_nil(sname);
  if (!haveSet) {
    std::vector<AcDbObjectId> ids;
    if (haveEnt) ids.push_back(id);
    db::newSet(std::move(ids), result);
    return RTNORM;
  }
  auto* s = db::find(sname);
  if (!s) return RTERROR;
  if (haveEnt && std::find(s->begin(), s->end(), id) == s->end()) s->push_back(id);
  ads_name_set(sname, result);
  return RTNORM;
}

int acedSSDel(const ads_name ename, const ads_name ss) {
  auto* s = db::find(ss);
  AcDbObjectId id;
  if (!s || !db::entityId(ename, id)) return RTERROR;
  auto it = std::find(s->begin(), s->end(), id);
  if (it == s->end()) return RTERROR;
  s->erase(it);
  return RTNORM;
}

int acedSSMemb(const ads_name ename, const ads_name ss) {
  const auto* s = db::setMembers(ss);
  AcDbObjectId id;
  if (!s || !db::entityId(ename, id)) return RTERROR;
  return std::find(s->begin(), s->end(), id) != s->end() ? RTNORM : RTERROR;
}

int acedSSGetFirst(resbuf** gset, resbuf** pset) {
  if (gset) *gset = nullptr;
  if (pset) *pset = nullptr;
  auto& first = db::pickfirstSet();
  first.erase(std::remove_if(first.begin(), first.end(), [](AcDbObjectId id) { return id.isErased(); }), first.end());
  if (gset) *gset = acutNewRb(RTNIL);
  if (pset) {
    if (first.empty()) {
      *pset = acutNewRb(RTNIL);
    } else {
      *pset = acutNewRb(RTPICKS);
      if (*pset) db::newSet(first, (*pset)->resval.rlname);
    }
  }
  return RTNORM;
}

int acedSSSetFirst(const ads_name pset, const ads_name unused) {
  (void)unused;
  auto& first = db::pickfirstSet();
  if (!pset || ads_name_nil(pset)) {
    first.clear();
    return RTNORM;
  }
  const auto* s = db::setMembers(pset);
  if (!s) return RTERROR;
  first = *s;
  return RTNORM;
}
