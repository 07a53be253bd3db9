// Selection sets: ssget, ssadd, ssdel,
// sslength, ssname, ssmemb, ssgetfirst, sssetfirst.
#include "host/aced.h"
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

// (ssget [mode] [point [point] | point-list] [filter]): no mode asks
// ("Select objects:", or picks at the point given); "W" and "C" take two
// corners, "WP", "CP" and "F" a list of points; "X", "L", "P", "I" and the
// option strings (":S", ":E", ":L"...) as acedSSGet takes them. A filter
// list comes last. Nothing selected gives nil.
Value fnSsget(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 4);
  size_t i = 0;
  std::u16string mode;
  bool haveMode = a.size > 0 && a[0].isStr();
  if (haveMode) mode = a[i++].as<String>()->s;
  std::u16string m = mode;
  for (char16_t& c : m)
    if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - 32);
  if (!m.empty() && m[0] == u'_') m.erase(0, 1);
  double p1[3] = {0, 0, 0}, p2[3] = {0, 0, 0};
  bool havePt1 = false;
  resbuf* pointList = nullptr;
  struct Chain {
    resbuf*& rb;
    ~Chain() { acutRelRb(rb); }
  } guard{pointList};
  if (m == u"WP" || m == u"CP" || m == u"F") {
    if (i >= a.size || !a[i].isCons()) in.fail(u"bad point argument");
    resbuf** tail = &pointList;
    for (Value v = a[i++]; v.isCons(); v = cdr(v)) {
      double p[3];
      argPoint(in, car(v), p);
      *tail = acutNewRb(RT3DPOINT);
      for (int k = 0; k < 3; ++k) (*tail)->resval.rpoint[k] = p[k];
      tail = &(*tail)->rbnext;
    }
  } else if (m == u"W" || m == u"C") {
    if (i + 1 >= a.size) in.fail(u"bad point argument");
    argPoint(in, a[i++], p1);
    argPoint(in, a[i++], p2);
  } else if (!haveMode && i < a.size && !isFilterList(a[i])) {
    argPoint(in, a[i++], p1);
    havePt1 = true;
  }
  std::vector<db::DxfItem> groups;
  if (i < a.size) {
    if (i + 1 != a.size || !isFilterList(a[i])) in.fail(u"bad argument type");
    Value bad;
    if (!listToGroups(a[i], &groups, &bad)) in.fail(u"bad SSGET list value");
    std::vector<AcDbObjectId> none;
    if (!db::filterIds({}, groups, &none)) in.fail(u"bad SSGET list value");
  }
  resbuf* chain = db::groupsToChain(groups);
  ads_name ss;
  const void* pt1 = pointList ? static_cast<const void*>(pointList) : (havePt1 || m == u"W" || m == u"C") ? p1 : nullptr;
  int st = acedSSGet(haveMode ? mode.c_str() : nullptr, pt1, m == u"W" || m == u"C" ? p2 : nullptr, chain, ss);
  acutRelRb(chain);
  if (st == RTCAN) in.fail(u"Function cancelled");
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

// ---------------------------------------------------------- picking one

Value pickResult(Interp& in, int st, const ads_name e, const ads_point p) {
  if (st == RTCAN) in.fail(u"Function cancelled");
  if (st == RTKWORD) {
    ACHAR kw[512];
    acedGetInput(kw, 512);
    return str(kw);
  }
  if (st != RTNORM) return Value();
  return list({enameValue(e), pointValue(p, 3)});
}

Value containers(resbuf* chain) {
  std::vector<Value> out;
  for (resbuf* r = chain; r; r = r->rbnext) out.push_back(enameValue(r->resval.rlname));
  acutRelRb(chain);
  return listFrom(std::move(out));
}

// (entsel [prompt]): the entity picked and the point, nil for a pick on
// nothing or Enter (ERRNO 7 or 52), a keyword of initget as a string.
Value fnEntsel(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 1);
  std::u16string prompt = a.size && !a[0].isNil() ? argStr(in, a[0]) : u"";
  ads_name e;
  ads_point p;
  int st = acedEntSel(prompt.empty() ? nullptr : prompt.c_str(), e, p);
  return pickResult(in, st, e, p);
}

// (nentsel [prompt]): as entsel, going into block references; an entity
// inside one adds the transform to the world as four points (the X, Y and
// Z axes and the origin) and the references, the innermost first.
Value fnNentsel(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 1);
  std::u16string prompt = a.size && !a[0].isNil() ? argStr(in, a[0]) : u"";
  ads_name e;
  ads_point p, xf[4];
  resbuf* refs = nullptr;
  int st = acedNEntSel(prompt.empty() ? nullptr : prompt.c_str(), e, p, xf, &refs);
  Value r = pickResult(in, st, e, p);
  if (st != RTNORM || !refs) {
    acutRelRb(refs);
    return r;
  }
  Value m = list({pointValue(xf[0], 3), pointValue(xf[1], 3), pointValue(xf[2], 3), pointValue(xf[3], 3)});
  return list({car(r), car(cdr(r)), m, containers(refs)});
}

// (nentselp [prompt] [point]): as nentsel with the transform as a 4x4
// matrix (rows); with a point it picks there without asking.
Value fnNentselp(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 2);
  std::u16string prompt;
  ads_point p = {0, 0, 0};
  bool given = false;
  for (size_t i = 0; i < a.size; ++i) {
    if (a[i].isStr()) {
      prompt = a[i].as<String>()->s;
    } else if (!a[i].isNil()) {
      argPoint(in, a[i], p);
      given = true;
    }
  }
  ads_name e;
  ads_matrix xf;
  resbuf* refs = nullptr;
  int st = acedNEntSelP(prompt.empty() ? nullptr : prompt.c_str(), e, p, given, xf, &refs);
  Value r = pickResult(in, st, e, p);
  if (st != RTNORM || !refs) {
    acutRelRb(refs);
    return r;
  }
  std::vector<Value> rows;
  for (int i = 0; i < 4; ++i)
    rows.push_back(list({Value::real(xf[i][0]), Value::real(xf[i][1]), Value::real(xf[i][2]), Value::real(xf[i][3])}));
  return list({car(r), car(cdr(r)), listFrom(std::move(rows)), containers(refs)});
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
  in.defSubr("entsel", fnEntsel);
  in.defSubr("nentsel", fnNentsel);
  in.defSubr("nentselp", fnNentselp);
}

}  // namespace zepk::lisp
