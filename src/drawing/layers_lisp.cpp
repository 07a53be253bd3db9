// The layer functions of LISP: make a layer, and switch layers on or off,
// lock and freeze them by name or all at once.
#include <vector>

#include "drawing/create.h"
#include "drawing/lisp.h"
#include "drawing/lisp_common.h"
#include "host/dbsymtb.h"

namespace zepk::drawing {

namespace {

enum class LayerState { kOn, kLock, kFreeze };

void setState(AcDbLayerTableRecord* rec, LayerState what, bool flag) {
  switch (what) {
    case LayerState::kOn: rec->setIsOff(!flag); break;
    case LayerState::kLock: rec->setIsLocked(flag); break;
    case LayerState::kFreeze: rec->setIsFrozen(flag); break;
  }
}

// The flag after the other arguments: on unless an explicit nil follows.
bool trailingFlag(const resbuf* rb) { return !rb || rb->restype != RTNIL; }

// Sets the state of the named layers; a name not found, or a layer that
// cannot be opened, is skipped.
int setNamed(LayerState what) {
  resbuf* cur = acedGetArgs();
  std::vector<std::u16string> names;
  if (!cur) return frame::failTooFew(MsgStyle::Bang), RTERROR;
  if (RbGetStringArray(&cur, names) != RTNORM) return frame::failBadArg(MsgStyle::Bang, 1), RTERROR;
  bool flag = trailingFlag(cur);
  AcDbDatabase* db = databaseOr(nullptr);
  AcDbLayerTable* table = nullptr;
  if (!db || db->getLayerTable(table, AcDb::kForRead) != Acad::eOk) return retNil();
  for (const std::u16string& name : names) {
    AcDbObjectId id;
    if (table->getAt(name.c_str(), id) != Acad::eOk) continue;
    AcDbObjectPointer<AcDbLayerTableRecord> rec(id, AcDb::kForWrite);
    if (rec.openStatus() != Acad::eOk) continue;
    setState(rec.object(), what, flag);
  }
  table->close();
  return retT();
}

// Sets the state of every layer.
bool setAll(LayerState what, bool flag) {
  AcDbDatabase* db = databaseOr(nullptr);
  AcDbLayerTable* table = nullptr;
  if (!db || db->getLayerTable(table, AcDb::kForRead) != Acad::eOk) return false;
  AcDbLayerTableIterator* it = nullptr;
  table->newIterator(it);
  for (; it && !it->done(); it->step()) {
    AcDbLayerTableRecord* rec = nullptr;
    if (it->getRecord(rec, AcDb::kForWrite) != Acad::eOk) continue;
    setState(rec, what, flag);
    rec->close();
  }
  delete it;
  table->close();
  return true;
}

int setAllFromArgs(LayerState what) {
  resbuf* cur = acedGetArgs();
  bool flag = trailingFlag(cur);
  if (cur && cur->rbnext) return frame::failTooMany(MsgStyle::Bang), RTERROR;
  return setAll(what, flag) ? retT() : retNil();
}

}  // namespace

int lispLayerMake() {
  resbuf* cur = acedGetArgs();
  std::u16string name;
  if (!cur) return frame::failTooFew(MsgStyle::Bang), RTERROR;
  if (RbGetCString(&cur, name) != RTNORM || name.empty()) return frame::failBadArg(MsgStyle::Bang, 1), RTERROR;
  AcDbDatabase* db = databaseOr(nullptr);
  if (!db) return retNil();
  // An existing layer's colour and linetype are the defaults.
  int color = 7;
  std::u16string linetype = u"CONTINUOUS";
  AcDbLayerTable* table = nullptr;
  if (db->getLayerTable(table, AcDb::kForRead) == Acad::eOk) {
    AcDbLayerTableRecord* rec = nullptr;
    if (table->getAt(name.c_str(), rec, AcDb::kForRead) == Acad::eOk) {
      color = rec->colorIndex();
      AcDbObjectPointer<AcDbLinetypeTableRecord> lt(rec->linetypeObjectId(), AcDb::kForRead);
      if (lt.openStatus() == Acad::eOk) lt->getName(linetype);
      rec->close();
    }
    table->close();
  }
  if (cur && cur->restype == RTSHORT) {
    if (cur->resval.rint < 1 || cur->resval.rint > 255) return frame::failBadArg(MsgStyle::Bang, 2), RTERROR;
    color = cur->resval.rint;
    cur = cur->rbnext;
  }
  if (cur && cur->restype == RTSTR) {
    linetype = cur->resval.rstring;
    cur = cur->rbnext;
  }
  bool current = cur && cur->restype != RTNIL;
  AcDbObjectId id;
  if (makeLayer(id, name.c_str(), color, linetype.c_str(), current, db) != Acad::eOk) return retNil();
  return retName(id);
}

int lispLayerOn() { return setNamed(LayerState::kOn); }
int lispLayerLock() { return setNamed(LayerState::kLock); }
int lispLayerFreeze() { return setNamed(LayerState::kFreeze); }
int lispLayerOnAll() { return setAllFromArgs(LayerState::kOn); }
int lispLayerLockAll() { return setAllFromArgs(LayerState::kLock); }
int lispLayerFreezeAll() { return setAllFromArgs(LayerState::kFreeze); }

int lispLayerUnLockAll() {
  if (acedGetArgs()) {
    frame::failTooMany(MsgStyle::LineBang);
    acedRetVoid();
    return RSRSLT;
  }
  return setAll(LayerState::kLock, false) ? retT() : retNil();
}

}  // namespace zepk::drawing
