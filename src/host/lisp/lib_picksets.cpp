// Selection sets: ssget (the modes that need no picking), ssadd, ssdel,
// sslength, ssname, ssmemb, ssgetfirst, sssetfirst.
#include "host/dbapserv.h"
#include "host/lisp/drawing.h"
#include "host/entlist.h"
#include "host/selset.h"

namespace zepk::lisp {

namespace {

void argPickset(Interp& in, const Value& v, int64_t out[2]) {
  if (v.tag() != Tag::Pickset) in.badType("lselsetp", v);
  out[0] = v.as<Pickset>()->name[0];
  out[1] = v.as<Pickset>()->name[1];
}

bool isFilterList(const Value& v) {
  if (!v.isCons()) return false;
  double p[3];
  return !toPoint(v, p);
}

// (ssget [mode] [point [point]] [filter]): without picking on screen, the
// modes are "X" (the whole drawing), "L" (the last entity), "P" (the
// previous selection) and "I" (the selection made before); a selection
// that asks for picking selects nothing here.
Value fnSsget(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 4);
  const Value* mode = nullptr;
  const Value* filter = nullptr;
  for (size_t i = 0; i < a.size; ++i) {
    if (i == 0 && a[i].isStr()) {
      mode = &a[i];
    } else if (i + 1 == a.size && isFilterList(a[i])) {
      filter = &a[i];
    }
  }
  std::vector<db::DxfItem> groups;
  if (filter) {
    Value bad;
    if (!listToGroups(*filter, &groups, &bad)) in.fail(u"bad SSGET list value");
    std::vector<AcDbObjectId> none;
    if (!db::filterIds({}, groups, &none)) in.fail(u"bad SSGET list value");
  }
  if (!mode) return Value();
  resbuf* chain = db::groupsToChain(groups);
  ads_name ss;
  int st = acedSSGet(mode->as<String>()->s.c_str(), nullptr, nullptr, chain, ss);
  acutRelRb(chain);
  if (st != RTNORM) return Value();
  return picksetValue(ss);
}

Value fnSsadd(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 2);
  int64_t e[2] = {0, 0}, s[2] = {0, 0};
  if (a.size > 0) argEname(in, a[0], e);
  if (a.size > 1) argPickset(in, a[1], s);
  ads_name out;
  if (acedSSAdd(e, s, out) != RTNORM) return Value();
  return a.size > 1 ? a[1] : picksetValue(out);
}

Value fnSsdel(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  int64_t e[2], s[2];
  argEname(in, a[0], e);
  argPickset(in, a[1], s);
  return acedSSDel(e, s) == RTNORM ? a[1] : Value();
}

Value fnSslength(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  int64_t s[2];
  argPickset(in, a[0], s);
  int32_t n = 0;
  if (acedSSLength(s, &n) != RTNORM) return Value();
  return Value::integer(n);
}

Value fnSsname(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  int64_t s[2];
  argPickset(in, a[0], s);
  double i = argNum(in, a[1]);
  if (i < 0 || i > 2147483647.0) return Value();
  ads_name e;
  if (acedSSName(s, static_cast<int32_t>(i), e) != RTNORM) return Value();
  return enameValue(e);
}

Value fnSsmemb(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  int64_t e[2], s[2];
  argEname(in, a[0], e);
  argPickset(in, a[1], s);
  return acedSSMemb(e, s) == RTNORM ? a[0] : Value();
}

Value fnSsgetfirst(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 0);
  resbuf* g = nullptr;
  resbuf* p = nullptr;
  acedSSGetFirst(&g, &p);
  Value pick;
  if (p && p->restype == RTPICKS) pick = picksetValue(p->resval.rlname);
  acutRelRb(g);
  acutRelRb(p);
  return list({Value(), pick});
}

Value fnSssetfirst(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  int64_t s[2] = {0, 0};
  if (a.size > 1 && !a[1].isNil()) argPickset(in, a[1], s);
  if (acedSSSetFirst(s, nullptr) != RTNORM) return Value();
  return list({a[0], a.size > 1 ? a[1] : Value()});
}

}  // namespace

void registerPicksetFunctions(Interp& in) {
  in.defSubr("ssget", fnSsget);
  in.defSubr("ssadd", fnSsadd);
  in.defSubr("ssdel", fnSsdel);
  in.defSubr("sslength", fnSslength);
  in.defSubr("ssname", fnSsname);
  in.defSubr("ssmemb", fnSsmemb);
  in.defSubr("ssgetfirst", fnSsgetfirst);
  in.defSubr("sssetfirst", fnSssetfirst);
}

}  // namespace zepk::lisp
