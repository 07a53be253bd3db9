// Jigs without a screen: each answer is a sample, Enter ends the drag.
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "host/aced.h"
#include "host/dbapserv.h"
#include "host/dbjig.h"
#include "host/dbsymtb.h"
#include "host/editor/input.h"

using namespace zepk::editor;

namespace {

enum Kind { kPointKind, kAngleKind, kDistKind, kStringKind };

// The index of the keyword in the list (either form), -1 if none.
int keywordIndex(const std::u16string& list, const std::u16string& word) {
  std::vector<std::u16string> local, global;
  std::vector<std::u16string>* into = &local;
  size_t i = 0;
  while (i < list.size()) {
    while (i < list.size() && list[i] == u' ') ++i;
    size_t e = list.find(u' ', i);
    if (e == std::u16string::npos) e = list.size();
    if (e > i) {
      std::u16string w = list.substr(i, e - i);
      if (w[0] == u'_') into = &global, w.erase(0, 1);
      size_t comma = w.find(u',');
      if (comma != std::u16string::npos) w.resize(comma);
      if (!w.empty()) into->push_back(w);
    }
    i = e;
  }
  for (auto* l : {&global, &local})
    for (size_t k = 0; k < l->size(); ++k)
      if ((*l)[k] == word) return static_cast<int>(k);
  return -1;
}

}  // namespace

AcEdJig::DragStatus AcEdJig::acquire(int kind, const AcGePoint3d* base, AcGePoint3d* point, double* value,
                                     ACHAR* str) {
  int bits = 0;
  if (!(controls_ & kNullResponseAccepted) && !ended_ && last_.x != last_.x) bits |= RSG_NONULL;
  if (controls_ & kNoZeroResponseAccepted) bits |= RSG_NOZERO;
  if (controls_ & kNoNegativeResponseAccepted) bits |= RSG_NONEG;
  if (controls_ & kAcceptOtherInputString) bits |= RSG_OTHER;
  initGet(bits, keywords_);
  double b[3] = {0, 0, 0};
  if (base) b[0] = base->x, b[1] = base->y, b[2] = base->z;
  int st = RTERROR;
  if (kind == kPointKind) {
    double p[3];
    st = getPoint(base ? b : nullptr, prompt_, p);
    if (st == RTNORM) *point = AcGePoint3d(p[0], p[1], p[2]);
  } else if (kind == kAngleKind) {
    st = getAngle(base ? b : nullptr, prompt_, value);
  } else if (kind == kDistKind) {
    st = getReal(prompt_, value, false, b);
  } else {
    std::u16string s;
    st = getString(true, prompt_, &s);
    if (st == RTNORM && s.empty()) st = RTNONE;
    if (st == RTNORM && str) {
      size_t n = std::min<size_t>(s.size(), 2048);
      std::copy(s.begin(), s.begin() + static_cast<long>(n), str);
      str[n] = 0;
    }
  }
  if (st == RTNORM) return kNormal;
  if (st == RTNONE) {
    ended_ = true;
    return kNull;
  }
  if (st == RTKWORD) {
    int k = keywordIndex(keywords_, lastInputKeyword());
    if (k >= 0 && k < 9) return static_cast<DragStatus>(kKW1 + k);
    return kOther;
  }
  return kCancel;
}

AcEdJig::DragStatus AcEdJig::acquirePoint(AcGePoint3d& p) { return acquire(kPointKind, nullptr, &p, nullptr, nullptr); }
AcEdJig::DragStatus AcEdJig::acquirePoint(AcGePoint3d& p, const AcGePoint3d& base) {
  return acquire(kPointKind, &base, &p, nullptr, nullptr);
}
AcEdJig::DragStatus AcEdJig::acquireAngle(double& a) { return acquire(kAngleKind, nullptr, nullptr, &a, nullptr); }
AcEdJig::DragStatus AcEdJig::acquireAngle(double& a, const AcGePoint3d& base) {
  return acquire(kAngleKind, &base, nullptr, &a, nullptr);
}
AcEdJig::DragStatus AcEdJig::acquireDist(double& d) {
  AcGePoint3d origin;
  return acquire(kDistKind, &origin, nullptr, &d, nullptr);
}
AcEdJig::DragStatus AcEdJig::acquireDist(double& d, const AcGePoint3d& base) {
  return acquire(kDistKind, &base, nullptr, &d, nullptr);
}
AcEdJig::DragStatus AcEdJig::acquireString(ACHAR* s) { return acquire(kStringKind, nullptr, nullptr, nullptr, s); }

AcEdJig::DragStatus AcEdJig::drag() {
  ended_ = false;
  last_ = AcGePoint3d(NAN, 0, 0);  // no sample yet
  bool any = false;
  for (;;) {
    DragStatus s = sampler();
    if (ended_) break;
    if (s == kCancel || s == kOther || s >= kKW1) return s;
    if (s == kNormal) {
      update();
      any = true;
      last_ = AcGePoint3d(0, 0, 0);
    } else if (s == kNull) {
      break;
    }
  }
  return any ? kNormal : kNull;
}

AcDbObjectId AcEdJig::append() {
  AcDbObjectId id;
  AcDbEntity* e = entity();
  AcDbDatabase* db = acdbHostApplicationServices()->workingDatabase();
  if (!e || !db) return id;
  AcDbBlockTable* table = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  if (db->getBlockTable(table, AcDb::kForRead) != Acad::eOk) return id;
  table->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite);
  table->close();
  if (!space) return id;
  if (space->appendAcDbEntity(id, e) == Acad::eOk) e->close();
  space->close();
  return id;
}
