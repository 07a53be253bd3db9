// Selection sets and groups for LISP: a set's box, sets to lists and
// back, union and difference of sets, and groups made, grown and shrunk.
#include <string>
#include <vector>

#include "drawing/create.h"
#include "drawing/lisp.h"
#include "drawing/lisp_common.h"
#include "host/dbdict.h"
#include "host/dbgroup.h"

namespace zepk::drawing {

int retSet(const std::vector<AcDbObjectId>& ids) {
  ads_name ss;
  if (ids.empty() || acedSSAdd(nullptr, nullptr, ss) != RTNORM) return retNil();
  for (AcDbObjectId id : ids) {
    ads_name e;
    if (acdbGetAdsName(e, id) == Acad::eOk) acedSSAdd(e, ss, ss);
  }
  acedRetName(ss, RTPICKS);
  return RSRSLT;
}

namespace {

constexpr Styles kLineBang{MsgStyle::LineBang, MsgStyle::LineBang};
constexpr Styles kColon{MsgStyle::Colon, MsgStyle::Colon};

bool contains(const std::vector<AcDbObjectId>& ids, AcDbObjectId id) {
  for (AcDbObjectId x : ids)
    if (x == id) return true;
  return false;
}

// The group named, or the first group the entity belongs to.
AcDbObjectId findGroup(resbuf* arg) {
  AcDbDatabase* db = databaseOr(nullptr);
  AcDbDictionary* dict = nullptr;
  if (!db || db->getGroupDictionary(dict, AcDb::kForRead) != Acad::eOk) return AcDbObjectId::kNull;
  AcDbObjectId found;
  if (arg->restype == RTSTR) {
    dict->getAt(arg->resval.rstring, found);
  } else if (arg->restype == RTENAME) {
    AcDbObjectId member;
    if (acdbGetObjectId(member, arg->resval.rlname) == Acad::eOk) {
      AcDbDictionaryIterator* it = dict->newIterator();
      for (; it && !it->done() && found.isNull(); it->next()) {
        AcDbObjectPointer<AcDbGroup> g(it->objectId(), AcDb::kForRead);
        if (g.openStatus() == Acad::eOk && g->has(member)) found = it->objectId();
      }
      delete it;
    }
  }
  dict->close();
  return found;
}

// Adds the entities to the group, or takes them out of it.
int changeGroup(bool add) {
  resbuf* first = acedGetArgs();
  if (!first) return frame::failTooFew(MsgStyle::Colon), RTERROR;
  Args a(kColon);
  // The first argument (a name or a member) is read by hand; the reader
  // then takes the entities.
  if (first->restype != RTSTR && first->restype != RTENAME) return frame::failBadArg(MsgStyle::Colon, 1), RTERROR;
  a.flag();
  std::vector<AcDbObjectId> ids;
  if (!a.entities(ids) || !a.end()) return RTERROR;
  AcDbObjectId gid = findGroup(first);
  if (gid.isNull()) return frame::failBadArg(MsgStyle::Colon, 1), RTERROR;
  AcDbObjectPointer<AcDbGroup> g(gid, AcDb::kForWrite);
  if (g.openStatus() != Acad::eOk) return retNil();
  for (AcDbObjectId id : ids) {
    if (add) {
      if (!g->has(id)) g->append(id);
    } else if (g->has(id)) {
      g->remove(id);
    }
  }
  return retT();
}

}  // namespace

// The box of all the entities of a set.
int lispPickSetGetBox() {
  Args a(kBang);
  std::vector<AcDbObjectId> ids;
  int32_t digits = -1;
  if (!a.entities(ids)) return RTERROR;
  if (a.more() && !a.integer(digits)) return RTERROR;
  if (!a.end()) return RTERROR;
  AcGePoint3d lo, hi;
  bool any = false;
  for (AcDbObjectId id : ids) {
    AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForRead);
    AcGePoint3d c[4];
    if (e.openStatus() != Acad::eOk || !boxCorners(*e.object(), 0.0, c)) continue;
    if (!any) {
      lo = c[0];
      hi = c[2];
      any = true;
    }
    lo.set(std::min(lo.x, c[0].x), std::min(lo.y, c[0].y), std::min(lo.z, c[0].z));
    hi.set(std::max(hi.x, c[2].x), std::max(hi.y, c[2].y), std::max(hi.z, c[2].z));
  }
  if (!any) return retNil();
  AcGePoint3d corners[4] = {lo, AcGePoint3d(hi.x, lo.y, lo.z), hi, AcGePoint3d(lo.x, hi.y, lo.z)};
  return retBox(corners, false, digits);
}

int lispPickSetToList() {
  resbuf* cur = acedGetArgs();
  if (!cur) return frame::failTooFew(MsgStyle::LineBang), RTERROR;
  ads_name ss;
  if (RbGetPickSet(&cur, ss) != RTNORM) return frame::failBadArg(MsgStyle::LineBang, 1), RTERROR;
  if (cur) return frame::failTooMany(MsgStyle::LineBang), RTERROR;
  return frame::retList(RbFromPickSet(ss));
}

int lispListToPickSet() {
  Args a(kLineBang);
  std::vector<AcDbObjectId> ids;
  if (!a.entities(ids) || !a.end()) return RTERROR;
  return retSet(ids);
}

// The entities of every set given, each once, in order.
int lispSsUnion() {
  Args a(kBang);
  std::vector<AcDbObjectId> all;
  if (!a.more()) return frame::failTooFew(MsgStyle::Bang), RTERROR;
  while (a.more()) {
    std::vector<AcDbObjectId> ids;
    if (!a.entities(ids)) return RTERROR;
    for (AcDbObjectId id : ids)
      if (!contains(all, id)) all.push_back(id);
  }
  return retSet(all);
}

// The entities of the first set that are in none of the others.
int lispSsSub() {
  Args a(kBang);
  std::vector<AcDbObjectId> first, out;
  if (!a.entities(first)) return RTERROR;
  if (!a.more()) return frame::failTooFew(MsgStyle::Bang), RTERROR;
  std::vector<AcDbObjectId> rest;
  while (a.more())
    if (!a.entities(rest)) return RTERROR;
  for (AcDbObjectId id : first)
    if (!contains(rest, id)) out.push_back(id);
  return retSet(out);
}

// Frees the sets given.
int lispSsFree() {
  resbuf* cur = acedGetArgs();
  if (!cur) return frame::failTooFew(MsgStyle::Bang), RTERROR;
  for (int n = 1; cur; ++n, cur = cur->rbnext) {
    if (cur->restype != RTPICKS) return frame::failBadArg(MsgStyle::Bang, n), RTERROR;
    acedSSFree(cur->resval.rlname);
  }
  return retT();
}

// A group by name ("*U" for an unnamed one), with the entities given.
int lispGroupMake() {
  resbuf* first = acedGetArgs();
  if (first && first->restype != RTSTR) return frame::failBadArg(MsgStyle::Colon, 1), RTERROR;
  Args a(kColon);
  std::u16string name;
  std::vector<AcDbObjectId> ids;
  if (!a.string(name)) return RTERROR;
  if (a.more() && !a.entities(ids)) return RTERROR;
  if (!a.end()) return RTERROR;
  bool anonymous = name == u"*U" || name == u"*u";
  if (name.empty()) return frame::failBadArg(MsgStyle::Colon, 1), RTERROR;
  AcDbDatabase* db = databaseOr(nullptr);
  AcDbDictionary* dict = nullptr;
  if (!db || db->getGroupDictionary(dict, AcDb::kForWrite) != Acad::eOk) return retNil();
  if (anonymous) {
    // The first free name *A1, *A2, ...
    for (int n = 1;; ++n) {
      std::string digits = std::to_string(n);
      std::u16string key = u"*A" + std::u16string(digits.begin(), digits.end());
      AcDbObjectId x;
      if (dict->getAt(key.c_str(), x) != Acad::eOk) {
        name = key;
        break;
      }
    }
  } else {
    AcDbObjectId x;
    if (dict->getAt(name.c_str(), x) == Acad::eOk) {
      dict->close();
      return retNil();
    }
  }
  auto* g = new AcDbGroup(u"", true);
  AcDbObjectId gid;
  if (dict->setAt(name.c_str(), g, gid) != Acad::eOk) {
    dict->close();
    delete g;
    return retNil();
  }
  dict->close();
  if (anonymous) g->setAnonymous();
  for (AcDbObjectId id : ids) g->append(id);
  g->close();
  return retT();
}

int lispGroupAddTo() { return changeGroup(true); }
int lispGroupRemove() { return changeGroup(false); }

}  // namespace zepk::drawing
