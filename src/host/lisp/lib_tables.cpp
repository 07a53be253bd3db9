// Symbol tables and dictionaries: tblsearch, tblnext, tblobjname, snvalid,
// regapp, xdroom, xdsize, namedobjdict, dictsearch, dictnext, dictadd,
// dictremove, dictrename.
#include "host/dbapserv.h"
#include "host/entlist.h"
#include "host/lisp/drawing.h"
#include "host/lisp/printer.h"

namespace zepk::lisp {

namespace {

const ACHAR* s16(Interp& in, const Value& v) { return argStr(in, v).c_str(); }
int flag(ArgSpan a, size_t i) { return a.size > i && a[i].truthy() ? 1 : 0; }

Value fnTblsearch(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 3);
  return takeChainAsList(acdbTblSearch(s16(in, a[0]), s16(in, a[1]), flag(a, 2)));
}

Value fnTblnext(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  return takeChainAsList(acdbTblNext(s16(in, a[0]), flag(a, 1)));
}

Value fnTblobjname(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  ads_name n;
  if (acdbTblObjName(s16(in, a[0]), s16(in, a[1]), n) != RTNORM) return Value();
  return enameValue(n);
}

Value fnSnvalid(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  int pipe = 0;
  if (a.size > 1) pipe = argInt(in, a[1]);
  return boolean(acdbSNValid(s16(in, a[0]), pipe) == RTNORM);
}

Value fnRegapp(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return acdbRegApp(s16(in, a[0])) == RTNORM ? a[0] : Value();
}

Value fnXdroom(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  int64_t n[2];
  argEname(in, a[0], n);
  int32_t room = 0;
  return acdbXdRoom(n, &room) == RTNORM ? Value::integer(room) : Value();
}

// (xdsize '((-3 ("APP" (1000 . "x"))))) or the application lists alone.
Value fnXdsize(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  argList(in, a[0]);
  Value whole = a[0];
  if (!(whole.isCons() && car(whole).isCons() && car(car(whole)).isInt() && car(car(whole)).asInt() == -3))
    whole = list({cons(Value::integer(-3), a[0])});
  std::vector<db::DxfItem> items;
  Value bad;
  if (!listToGroups(whole, &items, &bad)) in.fail(u"bad DXF group: " + prin1String(bad));
  resbuf* chain = db::groupsToChain(items);
  int32_t size = 0;
  int st = acdbXdSize(chain, &size);
  acutRelRb(chain);
  return st == RTNORM ? Value::integer(size) : Value();
}

Value fnNamedobjdict(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 0);
  ads_name n;
  if (acdbNamedObjDict(n) != RTNORM) return Value();
  return enameValue(n);
}

Value fnDictsearch(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 3);
  int64_t d[2];
  argEname(in, a[0], d);
  return takeChainAsList(acdbDictSearch(d, s16(in, a[1]), flag(a, 2)));
}

Value fnDictnext(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  int64_t d[2];
  argEname(in, a[0], d);
  return takeChainAsList(acdbDictNext(d, flag(a, 1)));
}

Value fnDictadd(Interp& in, ArgSpan a) {
  checkArgc(in, a, 3, 3);
  int64_t d[2], o[2];
  argEname(in, a[0], d);
  const ACHAR* key = s16(in, a[1]);
  argEname(in, a[2], o);
  return acdbDictAdd(d, key, o) == RTNORM ? a[2] : Value();
}

Value fnDictremove(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  int64_t d[2];
  argEname(in, a[0], d);
  const ACHAR* key = s16(in, a[1]);
  // The entry's object, named before it leaves the dictionary.
  resbuf* entry = acdbDictSearch(d, key, 0);
  Value name;
  if (entry && entry->restype == -1) name = enameValue(entry->resval.rlname);
  acutRelRb(entry);
  if (acdbDictRemove(d, key) != RTNORM) return Value();
  return name;
}

Value fnDictrename(Interp& in, ArgSpan a) {
  checkArgc(in, a, 3, 3);
  int64_t d[2];
  argEname(in, a[0], d);
  return acdbDictRename(d, s16(in, a[1]), s16(in, a[2])) == RTNORM ? a[2] : Value();
}

}  // namespace

void registerTableFunctions(Interp& in) {
  in.defSubr("tblsearch", fnTblsearch);
  in.defSubr("tblnext", fnTblnext);
  in.defSubr("tblobjname", fnTblobjname);
  in.defSubr("snvalid", fnSnvalid);
  in.defSubr("regapp", fnRegapp);
  in.defSubr("xdroom", fnXdroom);
  in.defSubr("xdsize", fnXdsize);
  in.defSubr("namedobjdict", fnNamedobjdict);
  in.defSubr("dictsearch", fnDictsearch);
  in.defSubr("dictnext", fnDictnext);
  in.defSubr("dictadd", fnDictadd);
  in.defSubr("dictremove", fnDictremove);
  in.defSubr("dictrename", fnDictrename);
}

}  // namespace zepk::lisp
