// What the geometry family's LISP functions share: reading arguments in
// order with the family's message styles, and giving values back.
#pragma once

#include <vector>

#include "frame/lisp_bridge.h"
#include "host/dbapserv.h"
#include "host/dbid.h"
#include "host/gemat3d.h"
#include "host/gepnt3d.h"
#include "host/gevec3d.h"

namespace zepk::geometry::lispargs {

using frame::MsgStyle;

// Where a family puts its texts: the count messages in one style, the
// position messages (argument N is wrong) in another.
struct Styles {
  MsgStyle count;
  MsgStyle position;
};

inline constexpr Styles kVec{MsgStyle::Bang, MsgStyle::Bang};
inline constexpr Styles kVecTests{MsgStyle::Bang, MsgStyle::LineBang};
inline constexpr Styles kMat{MsgStyle::LineBang, MsgStyle::LineBang};
inline constexpr Styles kLines{MsgStyle::LineDot, MsgStyle::LineDot};
inline constexpr Styles kPointLine{MsgStyle::LineEnd, MsgStyle::LineEnd};

// A list of points at cur (cur at its RTLB): the points, cur after the
// list. False when a member is not a point or the list does not end.
inline bool readPointList(resbuf*& cur, std::vector<AcGePoint3d>& out) {
  resbuf* p = cur->rbnext;
  for (; p && p->restype != RTLE; p = p->rbnext) {
    resbuf* one = p;
    AcGePoint3d q;
    if (RbGetPoint3d(&one, q) != RTNORM) return false;
    out.push_back(q);
  }
  if (!p) return false;
  cur = p->rbnext;
  return true;
}

// Reads the arguments in order; every read returns false after printing.
class Args {
 public:
  explicit Args(Styles s) : s_(s), cur_(acedGetArgs()) {}

  bool vec(AcGeVector3d& v) {
    AcGePoint3d p;
    if (!point(p)) return false;
    v.set(p.x, p.y, p.z);
    return true;
  }
  bool point(AcGePoint3d& p) { return take(RbGetPoint3d(&cur_, p)); }
  bool real(double& r) { return take(RbGetReal(&cur_, r)); }
  // A matrix starts as the identity: places the list does not reach keep it.
  bool matrix(AcGeMatrix3d& m) {
    m.setToIdentity();
    return take(RbGetMatrix(&cur_, m.entry));
  }
  bool more() const { return cur_ != nullptr; }
  // The next argument's node, null after the last.
  const resbuf* peek() const { return cur_; }
  // Whether the next argument is a point or vector, or a number.
  bool nextIsPoint() const {
    int t = type();
    return t == RTPOINT || t == RT3DPOINT || (t >= 10 && t <= 19) || (t >= 110 && t <= 112) || t == 210 ||
           t == 220 || t == 230;
  }
  bool nextIsNumber() const { return type() == RTREAL || type() == RTSHORT; }
  // The entity named by the next argument.
  bool objectId(AcDbObjectId& id) { return take(RbGetObjectId(&cur_, id)); }
  bool integer(int32_t& v) { return take(RbGetLong(&cur_, v)); }
  // An optional flag: anything but nil is true.
  bool flag() {
    ++n_;
    bool on = cur_ && cur_->restype != RTNIL;
    if (cur_) cur_ = cur_->rbnext;
    return on;
  }
  // Several entities: a selection set, one entity name or a list of names.
  bool entities(std::vector<AcDbObjectId>& ids) {
    ++n_;
    if (!cur_) return frame::failTooFew(s_.count), false;
    if (cur_->restype == RTPICKS || cur_->restype == RTENAME) {
      if (cur_->restype == RTPICKS) {
        int32_t len = 0;
        acedSSLength(cur_->resval.rlname, &len);
        for (int32_t i = 0; i < len; ++i) {
          ads_name e;
          AcDbObjectId id;
          if (acedSSName(cur_->resval.rlname, i, e) == RTNORM && acdbGetObjectId(id, e) == Acad::eOk) ids.push_back(id);
        }
      } else {
        AcDbObjectId id;
        if (acdbGetObjectId(id, cur_->resval.rlname) != Acad::eOk) return frame::failBadArg(s_.position, n_), false;
        ids.push_back(id);
      }
      cur_ = cur_->rbnext;
      return true;
    }
    if (cur_->restype != RTLB) return frame::failBadArg(s_.position, n_), false;
    resbuf* p = cur_->rbnext;
    for (; p && p->restype == RTENAME; p = p->rbnext) {
      AcDbObjectId id;
      if (acdbGetObjectId(id, p->resval.rlname) != Acad::eOk) return frame::failBadArg(s_.position, n_), false;
      ids.push_back(id);
    }
    if (!p || p->restype != RTLE) return frame::failBadArg(s_.position, n_), false;
    cur_ = p->rbnext;
    return true;
  }
  // A list of points.
  bool points(std::vector<AcGePoint3d>& pts) {
    ++n_;
    if (!cur_) return frame::failTooFew(s_.count), false;
    if (cur_->restype != RTLB || !readPointList(cur_, pts)) return frame::failBadArg(s_.position, n_), false;
    return true;
  }
  // A string.
  bool string(std::u16string& text) {
    if (cur_ && cur_->restype != RTSTR) return frame::failBadArg(s_.position, ++n_), false;
    return take(RbGetCString(&cur_, text));
  }
  int type() const { return cur_ ? static_cast<int>(cur_->restype) : static_cast<int>(RTNONE); }
  bool end() {
    if (!cur_) return true;
    frame::failTooMany(s_.count);
    return false;
  }

 private:
  bool take(int st) {
    ++n_;
    if (st == RTNORM) return true;
    if (st == RTNONE) {
      frame::failTooFew(s_.count);
    } else {
      frame::failBadArg(s_.position, n_);
    }
    return false;
  }
  Styles s_;
  resbuf* cur_;
  int n_ = 0;
};

inline int retVec(const AcGeVector3d& v) {
  ads_point p = {v.x, v.y, v.z};
  acedRetPoint(p);
  return RSRSLT;
}

inline int retPoint(const AcGePoint3d& v) {
  ads_point p = {v.x, v.y, v.z};
  acedRetPoint(p);
  return RSRSLT;
}

inline int retBool(bool b) {
  b ? acedRetT() : acedRetNil();
  return RSRSLT;
}

inline int retReal(double r) {
  acedRetReal(r);
  return RSRSLT;
}

inline int retPoints(const std::vector<AcGePoint3d>& pts) { return frame::retList(RbFromPoints3d(pts)); }

inline int retNil() {
  acedRetNil();
  return RSRSLT;
}

inline int retMatrix(const AcGeMatrix3d& m) { return frame::retList(RbFromMatrix(m.entry)); }

}  // namespace zepk::geometry::lispargs
