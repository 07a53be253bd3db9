#include "frame/lisp_bridge.h"

#include <cstdlib>
#include <cstring>

#include "host/dbapserv.h"
#include "host/dbmain.h"

namespace {

// A list of three numbers whose first is one of these integers reaches
// compiled code as a node of that type: the other two numbers are its first
// two doubles.
bool isCodedPoint(int t) {
  return (t >= 10 && t <= 19) || (t >= 110 && t <= 112) || t == 210 || t == 220 || t == 230;
}

bool readPointNode(const resbuf* rb, double out[3]) {
  int t = rb->restype;
  if (t == RT3DPOINT || t == RTPOINT) {
    for (int i = 0; i < 3; ++i) out[i] = rb->resval.rpoint[i];
    return true;
  }
  if (isCodedPoint(t)) {
    out[0] = t;
    out[1] = rb->resval.rpoint[0];
    out[2] = rb->resval.rpoint[1];
    return true;
  }
  return false;
}

resbuf* node(int type) { return acutNewRb(type); }

ACHAR* copyText(const std::u16string& s) {
  auto* p = static_cast<ACHAR*>(std::malloc((s.size() + 1) * sizeof(ACHAR)));
  if (!p) return nullptr;
  std::memcpy(p, s.c_str(), (s.size() + 1) * sizeof(ACHAR));
  return p;
}

}  // namespace

int RbGetPoint3d(resbuf** cursor, AcGePoint3d& pt) {
  ads_point p;
  int st = RbGetPoint3d(cursor, p);
  if (st == RTNORM) pt.set(p[0], p[1], p[2]);
  return st;
}

int RbGetPoint3d(resbuf** cursor, ads_point pt) {
  resbuf* rb = *cursor;
  if (!rb) return RTNONE;
  double p[3];
  if (!readPointNode(rb, p)) return RTERROR;
  for (int i = 0; i < 3; ++i) pt[i] = p[i];
  *cursor = rb->rbnext;
  return RTNORM;
}

int RbGetPoint2d(resbuf** cursor, AcGePoint2d& pt) {
  resbuf* rb = *cursor;
  if (!rb) return RTNONE;
  double p[3];
  if (!readPointNode(rb, p)) return RTERROR;
  pt.set(p[0], p[1]);
  *cursor = rb->rbnext;
  return RTNORM;
}

int RbGetShort(resbuf** cursor, int32_t& value) {
  resbuf* rb = *cursor;
  if (!rb) return RTNONE;
  if (rb->restype != RTSHORT) return RTERROR;
  value = rb->resval.rint;
  *cursor = rb->rbnext;
  return RTNORM;
}

int RbGetLong(resbuf** cursor, int32_t& value) {
  resbuf* rb = *cursor;
  if (!rb) return RTNONE;
  if (rb->restype == RTSHORT) {
    value = rb->resval.rint;
  } else if (rb->restype == RTLONG) {
    value = rb->resval.rlong;
  } else {
    return RTERROR;
  }
  *cursor = rb->rbnext;
  return RTNORM;
}

// A long is refused: the host sends integers beyond 16 bits as RTLONG, and
// the walker takes only what fits a short or is a real.
int RbGetReal(resbuf** cursor, double& value) {
  resbuf* rb = *cursor;
  if (!rb) return RTNONE;
  if (rb->restype == RTREAL) {
    value = rb->resval.rreal;
  } else if (rb->restype == RTSHORT) {
    value = rb->resval.rint;
  } else {
    return RTERROR;
  }
  *cursor = rb->rbnext;
  return RTNORM;
}

int RbGetEntName(resbuf** cursor, ads_name name) {
  resbuf* rb = *cursor;
  if (!rb) return RTNONE;
  if (rb->restype != RTENAME) return RTERROR;
  ads_name_set(rb->resval.rlname, name);
  *cursor = rb->rbnext;
  return RTNORM;
}

int RbGetObjectId(resbuf** cursor, AcDbObjectId& id) {
  resbuf* rb = *cursor;
  if (!rb) return RTNONE;
  if (rb->restype != RTENAME) return RTERROR;
  AcDbObjectId got;
  if (acdbGetObjectId(got, rb->resval.rlname) != Acad::eOk) return RTERROR;
  id = got;
  *cursor = rb->rbnext;
  return RTNORM;
}

int RbGetPickSet(resbuf** cursor, ads_name ss) {
  resbuf* rb = *cursor;
  if (!rb) return RTNONE;
  if (rb->restype != RTPICKS) return RTERROR;
  ads_name_set(rb->resval.rlname, ss);
  *cursor = rb->rbnext;
  return RTNORM;
}

int RbGetStrPtr(resbuf** cursor, const ACHAR*& s) {
  resbuf* rb = *cursor;
  if (!rb || rb->restype != RTSTR) return RTNONE;
  s = rb->resval.rstring ? rb->resval.rstring : u"";
  *cursor = rb->rbnext;
  return RTNORM;
}

int RbGetCString(resbuf** cursor, std::u16string& s) {
  const ACHAR* p = nullptr;
  int st = RbGetStrPtr(cursor, p);
  if (st == RTNORM) s = p;
  return st;
}

int RbGetCString(resbuf** cursor, CString& s) {
  const ACHAR* p = nullptr;
  int st = RbGetStrPtr(cursor, p);
  if (st == RTNORM) s = p;
  return st;
}

int RbGetStrCopy(resbuf** cursor, ACHAR*& s) {
  const ACHAR* p = nullptr;
  int st = RbGetStrPtr(cursor, p);
  if (st != RTNORM) return st;
  std::u16string t(p);
  s = new ACHAR[t.size() + 1];
  std::memcpy(s, t.c_str(), (t.size() + 1) * sizeof(ACHAR));
  return RTNORM;
}

int RbGetStringArray(resbuf** cursor, std::vector<std::u16string>& out) {
  resbuf* rb = *cursor;
  if (!rb) return RTNONE;
  if (rb->restype == RTLB) {
    std::vector<std::u16string> got;
    resbuf* p = rb->rbnext;
    for (; p && p->restype == RTSTR; p = p->rbnext) got.emplace_back(p->resval.rstring ? p->resval.rstring : u"");
    if (!p || p->restype != RTLE || got.empty()) return RTNONE;
    out.insert(out.end(), got.begin(), got.end());
    *cursor = p->rbnext;
    return RTNORM;
  }
  if (rb->restype != RTSTR) return RTNONE;
  for (; rb && rb->restype == RTSTR; rb = rb->rbnext) out.emplace_back(rb->resval.rstring ? rb->resval.rstring : u"");
  *cursor = rb;
  return RTNORM;
}

// Rows may be short (the places they do not reach keep the caller's
// values) and numbers past the fourth in a row are skipped; the list ends
// with its own RTLE, which must come by the fourth row's end.
int RbGetMatrix(resbuf** cursor, ads_matrix m) {
  resbuf* rb = *cursor;
  if (!rb) return RTNONE;
  if (rb->restype != RTLB) return RTERROR;
  int row = 0, col = 0;
  bool inRow = false;
  for (rb = rb->rbnext; rb; rb = rb->rbnext) {
    switch (rb->restype) {
      case RTLB:
        if (inRow || row >= 4) return RTERROR;
        inRow = true;
        col = 0;
        break;
      case RTREAL:
      case RTSHORT:
        if (!inRow) return RTERROR;
        if (col < 4) m[row][col] = rb->restype == RTREAL ? rb->resval.rreal : rb->resval.rint;
        ++col;
        break;
      case RTLE:
        if (!inRow) {
          *cursor = rb->rbnext;
          return RTNORM;
        }
        inRow = false;
        ++row;
        break;
      default:
        return RTERROR;
    }
  }
  return RTERROR;
}

int RbGetSubList(resbuf** cursor, resbuf*& members) {
  resbuf* rb = *cursor;
  if (!rb) return RTNONE;
  if (rb->restype != RTLB) return RTERROR;
  int depth = 0;
  resbuf* last = nullptr;
  for (resbuf* p = rb->rbnext; p; last = p, p = p->rbnext) {
    if (p->restype == RTLB) {
      ++depth;
    } else if (p->restype == RTLE) {
      if (depth == 0) {
        members = last ? rb->rbnext : nullptr;
        if (last) last->rbnext = nullptr;
        *cursor = p->rbnext;
        return RTNORM;
      }
      --depth;
    }
  }
  return RTERROR;
}

// ---------------------------------------------------------------- builders

resbuf* RbFromMatrix(const ads_matrix m) {
  zepk::frame::RbBuilder b;
  for (int r = 0; r < 4; ++r) {
    b.add(node(RTLB));
    for (int c = 0; c < 4; ++c) b.add(acutBuildList(RTREAL, m[r][c], 0));
    b.add(node(RTLE));
  }
  return b.release();
}

resbuf* RbFromPoints3d(const std::vector<AcGePoint3d>& pts) {
  zepk::frame::RbBuilder b;
  for (const AcGePoint3d& p : pts) {
    ads_point q = {p.x, p.y, p.z};
    b.add(acutBuildList(RT3DPOINT, q, 0));
  }
  return b.release();
}

resbuf* RbFromPoints2d(const std::vector<AcGePoint2d>& pts) {
  zepk::frame::RbBuilder b;
  for (const AcGePoint2d& p : pts) {
    ads_point q = {p.x, p.y, 0.0};
    b.add(acutBuildList(RTPOINT, q, 0));
  }
  return b.release();
}

resbuf* RbFromObjectIds(const std::vector<AcDbObjectId>& ids) {
  zepk::frame::RbBuilder b;
  for (const AcDbObjectId& id : ids) {
    ads_name n = {0, 0};
    acdbGetAdsName(n, id);
    b.add(acutBuildList(RTENAME, n, 0));
  }
  return b.release();
}

resbuf* RbFromObjects(const std::vector<AcDbObject*>& objs) {
  std::vector<AcDbObjectId> ids;
  for (AcDbObject* o : objs) ids.push_back(o ? o->objectId() : AcDbObjectId::kNull);
  return RbFromObjectIds(ids);
}

resbuf* RbFromPickSet(const ads_name ss) {
  int32_t len = 0;
  if (acedSSLength(ss, &len) != RTNORM) return nullptr;
  zepk::frame::RbBuilder b;
  for (int32_t i = 0; i < len; ++i) {
    ads_name e;
    if (acedSSName(ss, i, e) == RTNORM) b.add(acutBuildList(RTENAME, e, 0));
  }
  return b.release();
}

resbuf* RbFromReals(const double* values, int count) {
  zepk::frame::RbBuilder b;
  for (int i = 0; i < count; ++i) b.add(acutBuildList(RTREAL, values[i], 0));
  return b.release();
}

resbuf* RbFromInts(const int32_t* values, int count) {
  zepk::frame::RbBuilder b;
  for (int i = 0; i < count; ++i) {
    resbuf* n = node(RTSHORT);
    if (n) n->resval.rint = static_cast<short>(values[i]);
    b.add(n);
  }
  return b.release();
}

resbuf* RbFromStrings(const std::vector<std::u16string>& strings) {
  zepk::frame::RbBuilder b;
  for (const std::u16string& s : strings) {
    resbuf* n = node(RTSTR);
    if (n) n->resval.rstring = copyText(s);
    b.add(n);
  }
  return b.release();
}

namespace zepk::frame {

RbBuilder& RbBuilder::add(resbuf* chain) {
  if (!chain) return *this;
  *tail_ = chain;
  while (chain->rbnext) chain = chain->rbnext;
  tail_ = &chain->rbnext;
  return *this;
}

resbuf* RbBuilder::release() {
  resbuf* h = head_;
  head_ = nullptr;
  tail_ = &head_;
  return h;
}

RbBuilder::~RbBuilder() {
  if (head_) acutRelRb(head_);
}

int retList(resbuf* chain) {
  if (chain) {
    acedRetList(chain);
    acutRelRb(chain);
  } else {
    acedRetNil();
  }
  return RSRSLT;
}

namespace {

struct StyleParts {
  const char16_t* prefix;
  const char16_t* suffix;
};

StyleParts parts(MsgStyle s) {
  switch (s) {
    case MsgStyle::Colon: return {u"错误:", u"\n"};
    case MsgStyle::LineBang: return {u"\n", u"!"};
    case MsgStyle::Plain: return {u"", u""};
    case MsgStyle::LineEnd: return {u"", u"\n"};
    case MsgStyle::Bang: return {u"", u"!"};
    case MsgStyle::LineDot: return {u"\n", u"."};
  }
  return {u"", u""};
}

std::u16string wrap(MsgStyle s, std::u16string_view body) {
  StyleParts p = parts(s);
  return std::u16string(p.prefix) + std::u16string(body) + p.suffix;
}

}  // namespace

std::u16string tooFewText(MsgStyle s) { return wrap(s, u"参数太少"); }
std::u16string tooManyText(MsgStyle s) { return wrap(s, u"参数太多"); }

std::u16string badArgText(MsgStyle s, int n) {
  std::u16string body = u"参数";
  if (n > 0) {
    for (char c : std::to_string(n)) body += static_cast<char16_t>(c);
  }
  return wrap(s, body + u"错误");
}

int fail(const ACHAR* text) {
  acdbFail(text);
  return RTERROR;
}

int failTooFew(MsgStyle s) { return fail(tooFewText(s).c_str()); }
int failTooMany(MsgStyle s) { return fail(tooManyText(s).c_str()); }
int failBadArg(MsgStyle s, int n) { return fail(badArgText(s, n).c_str()); }

}  // namespace zepk::frame
