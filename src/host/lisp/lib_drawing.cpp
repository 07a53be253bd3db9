// Entity data lists: entget, entmake, entmakex, entmod, entupd, entdel,
// entnext, entlast, handent.
#include <cstring>

#include "host/dbapserv.h"
#include "host/editor/sysvars.h"
#include "host/entlist.h"
#include "host/lisp/bridge.h"
#include "host/lisp/drawing.h"
#include "host/lisp/printer.h"
#include "host/ol_errno.h"
#include "host/selset.h"
#include "host/system/utf.h"

namespace zepk::lisp {

using db::DxfItem;

namespace {

std::u16string hex(const std::string& bytes) {
  static const char16_t* digits = u"0123456789ABCDEF";
  std::u16string s;
  for (unsigned char b : bytes) {
    s += digits[b >> 4];
    s += digits[b & 15];
  }
  return s;
}

bool hexBytes(const std::u16string& s, std::string* out) {
  if (s.size() % 2) return false;
  auto digit = [](char16_t c) -> int {
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (c >= u'A' && c <= u'F') return c - u'A' + 10;
    if (c >= u'a' && c <= u'f') return c - u'a' + 10;
    return -1;
  };
  out->clear();
  for (size_t i = 0; i < s.size(); i += 2) {
    int a = digit(s[i]), b = digit(s[i + 1]);
    if (a < 0 || b < 0) return false;
    out->push_back(static_cast<char>(a * 16 + b));
  }
  return true;
}

Value itemValue(const DxfItem& it) {
  Value key = Value::integer(it.code);
  switch (it.kind) {
    case DxfItem::String: return cons(key, str(it.s));
    case DxfItem::Int:
      if (it.i >= INT32_MIN && it.i <= INT32_MAX) return cons(key, Value::integer(static_cast<int32_t>(it.i)));
      return cons(key, Value::real(static_cast<double>(it.i)));
    case DxfItem::Real: return cons(key, Value::real(it.p[0]));
    case DxfItem::Point: {
      Value pt = pointValue(it.p, it.dims == 2 ? 2 : 3);
      return cons(key, pt);
    }
    case DxfItem::Id: {
      if (it.id.isNull()) return Value();
      ads_name n;
      if (acdbGetAdsName(n, it.id) != Acad::eOk) return Value();
      return cons(key, enameValue(n));
    }
    case DxfItem::Handle: {
      char buf[24];
      std::snprintf(buf, sizeof buf, "%llX", static_cast<unsigned long long>(it.handle.value()));
      return cons(key, str(std::string_view(buf)));
    }
    case DxfItem::Binary: return cons(key, str(hex(it.b)));
  }
  return Value();
}

// One group of a data list by its code's kind.
bool memberToItem(int code, const Value& v, DxfItem* out) {
  DxfItem it;
  it.code = code;
  switch (rbKind(code)) {
    case RbKind::String:
      if (!v.isStr()) return false;
      it.kind = DxfItem::String;
      it.s = v.as<String>()->s;
      break;
    case RbKind::Real:
      if (!v.isNumber()) return false;
      it.kind = DxfItem::Real;
      it.p[0] = v.asNumber();
      break;
    case RbKind::Short:
    case RbKind::Long:
    case RbKind::Int64:
      if (!v.isInt()) return false;
      it.kind = DxfItem::Int;
      it.i = v.asInt();
      if (rbKind(code) == RbKind::Short && (it.i < -32768 || it.i > 32767)) return false;
      break;
    case RbKind::Point: {
      int dim = 0;
      if (!v.isCons() || !toPoint(v, it.p, &dim)) return false;
      if (dim == 2) it.p[2] = 0;
      it.kind = DxfItem::Point;
      it.dims = dim;
      break;
    }
    case RbKind::Name: {
      if (v.tag() != Tag::Ename) return false;
      it.kind = DxfItem::Id;
      if (acdbGetObjectId(it.id, v.as<Ename>()->name) != Acad::eOk) return false;
      break;
    }
    case RbKind::Binary:
      if (!v.isStr() || !hexBytes(v.as<String>()->s, &it.b)) return false;
      it.kind = DxfItem::Binary;
      break;
    default: return false;
  }
  *out = std::move(it);
  return true;
}

DxfItem markItem(int code) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::String;
  return it;
}

[[noreturn]] void badGroup(Interp& in, const Value& member) {
  in.fail(u"bad DXF group: " + prin1String(member));
}

// A list argument of entmake/entmod as groups; a member that is no group
// is the host's "bad DXF group" error.
std::vector<DxfItem> argGroups(Interp& in, const Value& list) {
  if (!list.isCons()) in.badType("listp", list);
  std::vector<DxfItem> items;
  Value bad;
  if (!listToGroups(list, &items, &bad)) badGroup(in, bad);
  return items;
}

Value fnEntget(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  int64_t n[2];
  argEname(in, a[0], n);
  std::vector<std::u16string> apps;
  if (a.size > 1) {
    argList(in, a[1]);
    for (const Value* p = &a[1]; p->isCons(); p = &p->as<Cons>()->cdr) apps.push_back(argStr(in, car(*p)));
  }
  AcDbObjectId id;
  if (acdbGetObjectId(id, n) != Acad::eOk) {
    hostErrno() = OL_ENAMEVALID;
    return Value();
  }
  std::vector<DxfItem> items;
  if (!db::objectGroups(id, apps, &items)) return Value();
  return groupsToList(items);
}

Value make(Interp& in, ArgSpan a, bool nonGraphical) {
  checkArgc(in, a, 0, 1);
  if (a.size == 0 || a[0].isNil()) {
    // No list: a run of calls that was building something is dropped.
    db::EntListError err;
    db::makeFromGroups({}, false, nullptr, nullptr, &err);
    return Value();
  }
  std::vector<DxfItem> items = argGroups(in, a[0]);
  AcDbObjectId made;
  std::u16string block;
  db::EntListError err;
  if (!db::makeFromGroups(items, nonGraphical, &made, &block, &err)) {
    if (!err.message.empty()) in.out().write(err.message);
    return Value();
  }
  if (!block.empty()) return str(block);
  if (nonGraphical && !made.isNull()) {
    ads_name n;
    acdbGetAdsName(n, made);
    return enameValue(n);
  }
  return a[0];
}

Value fnEntmake(Interp& in, ArgSpan a) { return make(in, a, false); }
Value fnEntmakex(Interp& in, ArgSpan a) { return make(in, a, true); }

Value fnEntmod(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  std::vector<DxfItem> items = argGroups(in, a[0]);
  db::EntListError err;
  if (!db::modifyFromGroups(items, &err)) {
    if (!err.message.empty()) in.out().write(err.message);
    return Value();
  }
  return a[0];
}

Value fnEntupd(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  int64_t n[2];
  argEname(in, a[0], n);
  return acdbEntUpd(n) == RTNORM ? a[0] : Value();
}

Value fnEntdel(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  int64_t n[2];
  argEname(in, a[0], n);
  return acdbEntDel(n) == RTNORM ? a[0] : Value();
}

Value nameOrNil(int status, const ads_name n) { return status == RTNORM ? enameValue(n) : Value(); }

Value fnEntnext(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 1);
  int64_t n[2] = {0, 0};
  if (a.size == 1 && !a[0].isNil()) argEname(in, a[0], n);
  ads_name out;
  return nameOrNil(acdbEntNext(n, out), out);
}

Value fnEntlast(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 0);
  ads_name out;
  return nameOrNil(acdbEntLast(out), out);
}

Value fnHandent(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  const std::u16string& h = argStr(in, a[0]);
  ads_name out;
  return nameOrNil(acdbHandEnt(h.c_str(), out), out);
}

}  // namespace

Value enameValue(const int64_t name[2]) { return Value::obj(new Ename(name[0], name[1])); }

void argEname(Interp& in, const Value& v, int64_t out[2]) {
  if (v.tag() != Tag::Ename) in.badType("lentityp", v);
  out[0] = v.as<Ename>()->name[0];
  out[1] = v.as<Ename>()->name[1];
}

Value groupsToList(const std::vector<DxfItem>& items) {
  std::vector<Value> out;
  size_t i = 0;
  for (; i < items.size() && items[i].code != -3; ++i) {
    Value v = itemValue(items[i]);
    if (!v.isNil()) out.push_back(std::move(v));
  }
  if (i < items.size()) {
    std::vector<Value> apps;
    std::vector<Value> app;
    for (++i; i < items.size(); ++i) {
      if (items[i].code == 1001) {
        if (!app.empty()) apps.push_back(listFrom(std::move(app)));
        app.clear();
        app.push_back(str(items[i].s));
        continue;
      }
      Value v = itemValue(items[i]);
      if (!v.isNil()) app.push_back(std::move(v));
    }
    if (!app.empty()) apps.push_back(listFrom(std::move(app)));
    out.push_back(cons(Value::integer(-3), listFrom(std::move(apps))));
  }
  return listFrom(std::move(out));
}

bool listToGroups(const Value& list, std::vector<DxfItem>* out, Value* bad) {
  out->clear();
  for (const Value* p = &list; p->isCons(); p = &p->as<Cons>()->cdr) {
    const Value& m = car(*p);
    if (!m.isCons() || !car(m).isInt()) {
      *bad = m;
      return false;
    }
    int code = car(m).asInt();
    if (code == -3) {
      out->push_back(markItem(-3));
      // (-3 ("APP" (1000 . "x") ...) ...)
      for (const Value* q = &cdr(m); q->isCons(); q = &q->as<Cons>()->cdr) {
        const Value& app = car(*q);
        if (!app.isCons() || !car(app).isStr()) {
          *bad = m;
          return false;
        }
        DxfItem name = markItem(1001);
        name.s = car(app).as<String>()->s;
        out->push_back(name);
        for (const Value* g = &cdr(app); g->isCons(); g = &g->as<Cons>()->cdr) {
          const Value& grp = car(*g);
          DxfItem it;
          if (!grp.isCons() || !car(grp).isInt() || car(grp).asInt() < 1000 ||
              !memberToItem(car(grp).asInt(), cdr(grp), &it)) {
            *bad = grp;
            return false;
          }
          out->push_back(std::move(it));
        }
      }
      continue;
    }
    DxfItem it;
    if (!memberToItem(code, cdr(m), &it)) {
      *bad = m;
      return false;
    }
    out->push_back(std::move(it));
  }
  return true;
}

Value takeChainAsList(resbuf* rb) {
  if (!rb) return Value();
  Value v;
  bool ok = rbToList(rb, &v);
  acutRelRb(rb);
  return ok ? v : Value();
}

void registerEntityFunctions(Interp& in) {
  in.defSubr("entget", fnEntget);
  in.defSubr("entmake", fnEntmake);
  in.defSubr("entmakex", fnEntmakex);
  in.defSubr("entmod", fnEntmod);
  in.defSubr("entupd", fnEntupd);
  in.defSubr("entdel", fnEntdel);
  in.defSubr("entnext", fnEntnext);
  in.defSubr("entlast", fnEntlast);
  in.defSubr("handent", fnHandent);
}

namespace {

Value sysvarValue(std::string_view name) {
  editor::SysValue v;
  if (!editor::getSysVar(sys::fromUtf8(name), &v)) return Value();
  switch (v.kind) {
    case editor::SysValue::Int: return Value::integer(v.i);
    case editor::SysValue::Real: return Value::real(v.r);
    case editor::SysValue::String: return str(v.s);
    case editor::SysValue::Point2: return pointValue(v.p, 2);
    case editor::SysValue::Point3: return pointValue(v.p, 3);
  }
  return Value();
}

void freeSet(const int64_t name[2]) { acedSSFree(name); }

}  // namespace

void installDrawing(Interp& in) {
  registerEntityFunctions(in);
  registerPicksetFunctions(in);
  registerTableFunctions(in);
  registerSysvarFunctions(in);
  registerCurveFunctions(in);
  releasePickset = &freeSet;
  in.sysvar = [](std::string_view name) { return sysvarValue(name); };
}

}  // namespace zepk::lisp
