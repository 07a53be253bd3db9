// The compiled entity-list functions of ads.h over host/entlist.h.
#include "host/ads.h"
#include "host/dbapserv.h"
#include "host/dbents.h"
#include "host/entlist.h"
#include "host/ol_errno.h"

using namespace zepk;

namespace {

AcDbDatabase* workingDb() { return acdbHostApplicationServices()->workingDatabase(); }

// The object of a name; a name of nothing sets ERRNO.
bool idOf(const ads_name n, AcDbObjectId& id) {
  if (n && acdbGetObjectId(id, n) == Acad::eOk && !id.isNull()) return true;
  hostErrno() = OL_ENAMEVALID;
  return false;
}

int failWith(int code) {
  hostErrno() = code;
  return RTERROR;
}

int nameResult(AcDbObjectId id, ads_name out, int missing) {
  if (!out) return RTERROR;
  ads_name_clear(out);
  if (id.isNull()) return failWith(missing);
  return adsNameOf(out, id) == Acad::eOk ? RTNORM : RTERROR;
}

std::vector<std::u16string> appNames(const resbuf* apps) {
  std::vector<std::u16string> out;
  for (const resbuf* p = apps; p; p = p->rbnext)
    if (p->restype == RTSTR && p->resval.rstring) out.emplace_back(p->resval.rstring);
  return out;
}

int makeFrom(const resbuf* list, bool nonGraphical, ads_name result) {
  std::vector<db::DxfItem> items;
  db::EntListError err;
  if (!db::chainToGroups(list, &items, &err)) return RTREJ;
  AcDbObjectId made;
  std::u16string block;
  if (!db::makeFromGroups(items, nonGraphical, &made, &block, &err)) return RTREJ;
  if (result) {
    ads_name_clear(result);
    if (!made.isNull()) adsNameOf(result, made);
  }
  return RTNORM;
}

}  // namespace

resbuf* acdbEntGet(const ads_name ent) { return acdbEntGetX(ent, nullptr); }

resbuf* acdbEntGetX(const ads_name ent, const resbuf* apps) {
  AcDbObjectId id;
  if (!idOf(ent, id)) return nullptr;
  std::vector<db::DxfItem> items;
  if (!db::objectGroups(id, appNames(apps), &items)) return nullptr;
  return db::groupsToChain(items);
}

int acdbEntMod(const resbuf* ent) {
  std::vector<db::DxfItem> items;
  db::EntListError err;
  if (!db::chainToGroups(ent, &items, &err)) return RTREJ;
  return db::modifyFromGroups(items, &err) ? RTNORM : RTERROR;
}

int acdbEntMake(const resbuf* ent) { return makeFrom(ent, false, nullptr); }

int acdbEntMakeX(const resbuf* entm, ads_name result) { return makeFrom(entm, true, result); }

int acdbEntDel(const ads_name ent) {
  AcDbObjectId id;
  if (!idOf(ent, id)) return RTERROR;
  Acad::ErrorStatus es = db::toggleErased(id);
  if (es == Acad::eOnLockedLayer) return failWith(OL_EMMLL);
  return es == Acad::eOk ? RTNORM : RTERROR;
}

int acdbEntNext(const ads_name ent, ads_name result) {
  AcDbObjectId id;
  if (ent && !ads_name_nil(ent) && !idOf(ent, id)) return RTERROR;
  return nameResult(db::nextEntity(workingDb(), id), result, OL_EEOEF);
}

int acdbEntLast(ads_name result) { return nameResult(db::lastEntity(workingDb()), result, OL_EEMPDB); }

int acdbHandEnt(const ACHAR* handle, ads_name entres) {
  if (!handle) return RTERROR;
  return nameResult(db::objectByHandle(workingDb(), handle), entres, OL_EHANDLE);
}

int acdbEntUpd(const ads_name ent) {
  AcDbObjectId id;
  if (!idOf(ent, id)) return RTERROR;
  if (id.isErased()) return failWith(OL_ENAMEVALID);
  AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForRead);
  return e ? RTNORM : RTERROR;
}
