// Entity wrappers for LISP: boxes, grip and stretch points, matching
// properties, exploding, transforms, draw order and hyperlinks.
#include <cmath>
#include <memory>
#include <vector>

#include "drawing/create.h"
#include "drawing/lisp.h"
#include "drawing/lisp_common.h"
#include "host/dbsymtb.h"
#include "host/sorttab.h"

namespace zepk::drawing {

namespace {

constexpr Styles kPlain{MsgStyle::Plain, MsgStyle::Plain};
constexpr Styles kLineBang{MsgStyle::LineBang, MsgStyle::LineBang};

// An entity opened for read or write; false after the object message.
template <class E = AcDbEntity>
bool openEntity(AcDbObjectId id, AcDbObjectPointer<E>& e, AcDb::OpenMode mode, const ACHAR* message) {
  e.open(id, mode);
  if (e.openStatus() == Acad::eOk) return true;
  frame::fail(e.openStatus() == Acad::eOnLockedLayer ? u"对象锁定，无法修改!" : message);
  return false;
}

double roundTo(double v, int digits) {
  double f = std::pow(10.0, digits);
  return std::round(v * f) / f;
}

AcGePoint3d mid(const AcGePoint3d& a, const AcGePoint3d& b) {
  return AcGePoint3d((a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2);
}

}  // namespace

// The box of an entity in the frame turned by angle about the origin: the
// corners lower left, lower right, upper right, upper left, in world
// coordinates. False when the entity has no extents.
bool boxCorners(const AcDbEntity& e, double angle, AcGePoint3d corners[4]) {
  AcDbExtents ext;
  if (angle == 0.0) {
    if (e.getGeomExtents(ext) != Acad::eOk) return false;
  } else {
    AcDbEntity* turned = nullptr;
    if (e.getTransformedCopy(AcGeMatrix3d::rotation(-angle, AcGeVector3d::kZAxis, AcGePoint3d::kOrigin), turned) !=
            Acad::eOk ||
        !turned)
      return false;
    std::unique_ptr<AcDbEntity> owned(turned);
    if (turned->getGeomExtents(ext) != Acad::eOk) return false;
  }
  AcGePoint3d lo = ext.minPoint(), hi = ext.maxPoint();
  corners[0].set(lo.x, lo.y, lo.z);
  corners[1].set(hi.x, lo.y, lo.z);
  corners[2].set(hi.x, hi.y, lo.z);
  corners[3].set(lo.x, hi.y, lo.z);
  if (angle != 0.0) {
    AcGeMatrix3d back = AcGeMatrix3d::rotation(angle, AcGeVector3d::kZAxis, AcGePoint3d::kOrigin);
    for (int i = 0; i < 4; ++i) corners[i].transformBy(back);
  }
  return true;
}

int retBox(const AcGePoint3d corners[4], bool nine, int digits) {
  std::vector<AcGePoint3d> pts;
  if (nine) {
    // Reading order from the upper left: the top row, the middle row, the
    // bottom row.
    const AcGePoint3d &ll = corners[0], &lr = corners[1], &ur = corners[2], &ul = corners[3];
    pts = {ul, mid(ul, ur), ur, mid(ul, ll), mid(ll, ur), mid(lr, ur), ll, mid(ll, lr), lr};
  } else {
    pts = {corners[0], corners[2]};
  }
  if (digits >= 0) {
    for (AcGePoint3d& p : pts) p.set(roundTo(p.x, digits), roundTo(p.y, digits), roundTo(p.z, digits));
  }
  return frame::retList(RbFromPoints3d(pts));
}

namespace {

// The box functions: entity, then the angle when turned, then an optional
// number of decimal places.
int entityBox(bool turned, bool nine) {
  Args a(kPlain);
  AcDbObjectId id;
  double angle = 0;
  int32_t digits = -1;
  if (!a.objectId(id)) return RTERROR;
  if (turned && !a.real(angle)) return RTERROR;
  if (a.more() && !a.integer(digits)) return RTERROR;
  if (!a.end()) return RTERROR;
  AcDbObjectPointer<AcDbEntity> e;
  if (!openEntity(id, e, AcDb::kForRead, u"打开对象ID错误")) return RTERROR;
  AcGePoint3d corners[4];
  if (!boxCorners(*e.object(), angle, corners)) return retNil();
  return retBox(corners, nine, digits);
}

int entityPoints(bool stretch) {
  Args a(kBang);
  AcDbObjectId id;
  if (!a.objectId(id) || !a.end()) return RTERROR;
  AcDbObjectPointer<AcDbEntity> e;
  if (!openEntity(id, e, AcDb::kForRead, u"对象错误!")) return RTERROR;
  std::vector<AcGePoint3d> pts;
  Acad::ErrorStatus es = stretch ? e->getStretchPoints(pts) : e->getGripPoints(pts);
  if (es != Acad::eOk || pts.empty()) return retNil();
  return frame::retList(RbFromPoints3d(pts));
}

// Transforms the entities in place, or copies of them beside them.
int transform(bool copy) {
  Args a(kLineBang);
  std::vector<AcDbObjectId> ids;
  AcGeMatrix3d m;
  if (!a.entities(ids) || !a.matrix(m) || !a.end()) return RTERROR;
  std::vector<AcDbObjectId> made;
  for (AcDbObjectId id : ids) {
    AcDbObjectPointer<AcDbEntity> e(id, copy ? AcDb::kForRead : AcDb::kForWrite);
    if (e.openStatus() != Acad::eOk) continue;
    if (!copy) {
      if (e->transformBy(m) == Acad::eOk) made.push_back(id);
      continue;
    }
    AcDbEntity* c = nullptr;
    if (e->getTransformedCopy(m, c) != Acad::eOk || !c) continue;
    c->setPropertiesFrom(e.object());
    AcDbObjectId cid;
    if (appendToOwner(c, e->ownerId(), cid) == Acad::eOk) made.push_back(cid);
  }
  if (!copy) return made.empty() ? retNil() : retT();
  return made.empty() ? retNil() : frame::retList(RbFromObjectIds(made));
}

// The draw-order table of the block that owns the entities, for write.
Acad::ErrorStatus sortTable(AcDbObjectId entity, AcDbSortentsTable*& table) {
  table = nullptr;
  AcDbObjectPointer<AcDbEntity> e(entity, AcDb::kForRead);
  if (e.openStatus() != Acad::eOk) return e.openStatus();
  AcDbObjectPointer<AcDbBlockTableRecord> owner(e->ownerId(), AcDb::kForWrite);
  if (owner.openStatus() != Acad::eOk) return owner.openStatus();
  return owner->getSortentsTable(table, AcDb::kForWrite, true);
}

template <class Op>
int withSortTable(AcDbObjectId entity, Op op) {
  AcDbSortentsTable* table = nullptr;
  if (sortTable(entity, table) != Acad::eOk || !table) return frame::fail(u"对象错误!"), retNil();
  Acad::ErrorStatus es = op(*table);
  table->close();
  return es == Acad::eOk ? retT() : retNil();
}

int moveTo(bool top, Styles s) {
  Args a(s);
  std::vector<AcDbObjectId> ids;
  if (!a.entities(ids) || !a.end()) return RTERROR;
  if (ids.empty()) return retNil();
  AcDbObjectIdArray arr(ids.begin(), ids.end());
  return withSortTable(ids[0], [&](AcDbSortentsTable& t) { return top ? t.moveToTop(arr) : t.moveToBottom(arr); });
}

int moveBeside(bool above) {
  Args a(kBang);
  std::vector<AcDbObjectId> ids;
  AcDbObjectId target;
  if (!a.entities(ids) || !a.objectId(target) || !a.end()) return RTERROR;
  if (ids.empty()) return retNil();
  AcDbObjectIdArray arr(ids.begin(), ids.end());
  return withSortTable(target, [&](AcDbSortentsTable& t) {
    return above ? t.moveAbove(arr, target) : t.moveBelow(arr, target);
  });
}

}  // namespace

int lispEntGetBox() { return entityBox(false, false); }
int lispEntGetBoxAngle() { return entityBox(true, false); }
int lispEntGetBox9Pts() { return entityBox(false, true); }
int lispEntGetBoxAngle9Pts() { return entityBox(true, true); }
int lispEntGetGripPoints() { return entityPoints(false); }
int lispEntGetStretchPoints() { return entityPoints(true); }

// The first entity's layer, colour, linetype, scale, weight and
// visibility given to the others.
int lispEntMatchProp() {
  Args a(kLineBang);
  AcDbObjectId source;
  std::vector<AcDbObjectId> ids;
  if (!a.objectId(source) || !a.entities(ids) || !a.end()) return RTERROR;
  AcDbObjectPointer<AcDbEntity> from;
  if (!openEntity(source, from, AcDb::kForRead, u"\n打开对象错误!")) return RTERROR;
  int done = 0;
  for (AcDbObjectId id : ids) {
    if (id == source) continue;
    AcDbObjectPointer<AcDbEntity> to(id, AcDb::kForWrite);
    if (to.openStatus() == Acad::eOk && to->setPropertiesFrom(from.object()) == Acad::eOk) ++done;
  }
  return done ? retT() : retNil();
}

// The parts of an entity added beside it; the entity itself is erased when
// the flag is given.
int lispExplode() {
  Args a(kBang);
  AcDbObjectId id;
  if (!a.objectId(id)) return RTERROR;
  bool erase = a.more() && a.flag();
  if (!a.end()) return RTERROR;
  AcDbObjectPointer<AcDbEntity> e;
  if (!openEntity(id, e, erase ? AcDb::kForWrite : AcDb::kForRead, u"对象错误!")) return RTERROR;
  AcDbVoidPtrArray parts;
  if (e->explode(parts) != Acad::eOk || parts.empty()) {
    for (void* p : parts) delete static_cast<AcDbEntity*>(p);
    return retNil();
  }
  std::vector<AcDbObjectId> made;
  for (void* p : parts) {
    AcDbObjectId pid;
    if (appendToOwner(static_cast<AcDbEntity*>(p), e->ownerId(), pid) == Acad::eOk) made.push_back(pid);
  }
  if (erase && !made.empty()) e->erase();
  return made.empty() ? retNil() : frame::retList(RbFromObjectIds(made));
}

int lispTransformBy() { return transform(false); }
int lispTransformByCopy() { return transform(true); }

int lispMoveToTop() { return moveTo(true, kLineBang); }
int lispMoveToBottom() { return moveTo(false, kLineBang); }
int lispMoveAbove() { return moveBeside(true); }
int lispMoveBelow() { return moveBeside(false); }

int lispSwapOrder() {
  Args a(kBang);
  AcDbObjectId e1, e2;
  if (!a.objectId(e1) || !a.objectId(e2) || !a.end()) return RTERROR;
  return withSortTable(e1, [&](AcDbSortentsTable& t) { return t.swapOrder(e1, e2); });
}

// The entities drawn in the order given (the others keep theirs).
int lispSetRelativeDrawOrder() {
  Args a(kBang);
  std::vector<AcDbObjectId> ids;
  if (!a.entities(ids) || !a.end()) return RTERROR;
  if (ids.empty()) return retNil();
  AcDbObjectIdArray arr(ids.begin(), ids.end());
  return withSortTable(ids[0], [&](AcDbSortentsTable& t) { return t.setRelativeDrawOrder(arr); });
}

// The handle an entity is drawn by, as hexadecimal text.
int lispGetSortHandle() {
  Args a(kBang);
  AcDbObjectId id;
  if (!a.objectId(id) || !a.end()) return RTERROR;
  AcDbSortentsTable* table = nullptr;
  if (sortTable(id, table) != Acad::eOk || !table) return frame::fail(u"对象错误!"), retNil();
  AcDbHandle h;
  Acad::ErrorStatus es = table->getSortHandle(id, h);
  table->close();
  if (es != Acad::eOk) return retNil();
  ACHAR text[32];
  h.getIntoAsciiBuffer(text);
  acedRetStr(text);
  return RSRSLT;
}

// A link kept as the entity's extended data of the application PE_URL:
// the address, then in braces the description and the place in the
// target.
int lispEntAddHyperlinks() {
  Args a(kBang);
  std::vector<AcDbObjectId> ids;
  std::u16string url, description, place;
  if (!a.entities(ids) || !a.string(url)) return RTERROR;
  if (a.more() && !a.string(description)) return RTERROR;
  if (a.more() && !a.string(place)) return RTERROR;
  if (!a.end()) return RTERROR;
  if (url.empty()) return frame::failBadArg(MsgStyle::Bang, 2), RTERROR;
  acdbRegApp(u"PE_URL");
  frame::RbChain data(acutBuildList(1001, u"PE_URL", 1000, url.c_str(), 1002, u"{", 1000, description.c_str(), 1002,
                                    u"{", 1071, 1, 1002, u"}", 1000, place.c_str(), 1002, u"}", RTNONE));
  int done = 0;
  for (AcDbObjectId id : ids) {
    AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForWrite);
    if (e.openStatus() == Acad::eOk && e->setXData(data.get()) == Acad::eOk) ++done;
  }
  return done ? retT() : retNil();
}

namespace {

// Two entities exchange ids; the flags say whether extended data and the
// extension dictionary stay with the ids.
int swapIds(Styles styles, bool fixedFlags, bool keepData) {
  Args a(styles);
  AcDbObjectId e1, e2;
  if (!a.objectId(e1) || !a.objectId(e2)) return RTERROR;
  bool swapXdata = keepData, swapExtDict = keepData;
  if (!fixedFlags) {
    swapXdata = a.flag();
    swapExtDict = a.flag();
  }
  if (!a.end()) return RTERROR;
  AcDbObject* obj = nullptr;
  Acad::ErrorStatus es = acdbOpenAcDbObject(obj, e1, AcDb::kForWrite);
  if (es == Acad::eOk) {
    es = obj->swapIdWith(e2, swapXdata, swapExtDict);
    obj->close();
  }
  if (es != Acad::eOk) return frame::fail(es == Acad::eOnLockedLayer ? u"对象锁定，无法修改!" : u"对象错误!"), retNil();
  return retT();
}

}  // namespace

int lispEntSwapId() { return swapIds({MsgStyle::Plain, MsgStyle::Plain}, false, false); }
int lispSwapEnt() { return swapIds(kBang, true, true); }


}  // namespace zepk::drawing
