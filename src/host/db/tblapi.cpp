// Symbol tables and dictionaries as LISP and compiled code see them:
// tblsearch, tblnext, tblobjname, snvalid, regapp, xdroom, xdsize and the
// dictionary functions.
#include <map>
#include <set>

#include "host/ads.h"
#include "host/db/dxfinternal.h"
#include "host/db/internal.h"
#include "host/dbapserv.h"
#include "host/dbdict.h"
#include "host/dbsymtb.h"
#include "host/entlist.h"
#include "host/lisp/wildcard.h"
#include "host/ol_errno.h"

using namespace zepk;

namespace zepk::db {
namespace {

AcDbDatabase* workingDb() { return acdbHostApplicationServices()->workingDatabase(); }

std::u16string upper(std::u16string s) {
  for (char16_t& c : s) c = lisp::foldUpper(c);
  return s;
}

}  // namespace

AcDbObjectId tableId(AcDbDatabase* db, const ACHAR* name) {
  if (!db || !name) return {};
  std::u16string n = upper(name);
  if (n == u"LAYER") return db->layerTableId();
  if (n == u"LTYPE") return db->linetypeTableId();
  if (n == u"VIEW") return db->viewTableId();
  if (n == u"STYLE") return db->textStyleTableId();
  if (n == u"BLOCK") return db->blockTableId();
  if (n == u"UCS") return db->UCSTableId();
  if (n == u"APPID") return db->regAppTableId();
  if (n == u"DIMSTYLE") return db->dimStyleTableId();
  if (n == u"VPORT") return db->viewportTableId();
  hostErrno() = OL_ETBLNAME;
  return {};
}

namespace {

AcDbObjectIdArray records(AcDbObjectId table) {
  AcDbObjectPointer<AcDbSymbolTable> t(table, AcDb::kForRead);
  return t ? t->recordIds() : AcDbObjectIdArray();
}

// The groups of a table's entry as tblsearch gives them: the record's own
// groups without those that tie it into the drawing; a layer shows only
// its flags, colour and linetype, a block its flags, origin and first
// entity, as the host's table lists always have.
resbuf* recordList(AcDbObjectId id, const std::u16string& table) {
  std::vector<DxfItem> items;
  if (!objectGroups(id, {}, &items)) return nullptr;
  std::vector<DxfItem> out;
  DxfItem type = makeItem(0, DxfItem::String);
  type.s = table;
  out.push_back(type);
  static const std::set<int> layerCodes = {2, 70, 62, 6};
  static const std::set<int> styleCodes = {2, 70, 40, 41, 50, 71, 42, 3, 4};
  if (table == u"BLOCK") {
    AcDbObjectPointer<AcDbBlockTableRecord> b(id, AcDb::kForRead);
    if (!b) return nullptr;
    const ACHAR* name = nullptr;
    b->getName(name);
    DxfItem n = makeItem(2, DxfItem::String);
    n.s = name ? name : u"";
    out.push_back(n);
    int flags = (b->isAnonymous() ? 1 : 0) | (b->hasAttributeDefinitions() ? 2 : 0) |
                (b->isFromExternalReference() ? 4 : 0) | (b->isFromOverlayReference() ? 8 : 0);
    DxfItem f = makeItem(70, DxfItem::Int);
    f.i = flags;
    out.push_back(f);
    DxfItem o = makeItem(10, DxfItem::Point);
    o.p[0] = b->origin().x, o.p[1] = b->origin().y, o.p[2] = b->origin().z;
    out.push_back(o);
    AcDbObjectIdArray ents = b->entityIds();
    if (!ents.empty()) {
      DxfItem e = makeItem(-2, DxfItem::Id);
      e.id = ents.front();
      out.push_back(e);
    }
    return groupsToChain(out);
  }
  bool braces = false;
  for (const DxfItem& it : items) {
    if (it.code == 102) {
      braces = !it.s.empty() && it.s[0] == u'{';
      continue;
    }
    if (braces || it.code < 1 || it.code == 5 || it.code == 100 || it.code == 105 || it.code == 330 ||
        it.code == 360 || it.code == 390 || it.code == 347 || it.code == 348 || it.code >= 1000)
      continue;
    if (table == u"LAYER" && !layerCodes.count(it.code)) continue;
    if (table == u"STYLE" && !styleCodes.count(it.code)) continue;
    out.push_back(it);
  }
  return groupsToChain(out);
}

// Where tblnext stands in each table, and dictnext in each dictionary.
struct Cursors {
  AcDbDatabase* db = nullptr;
  std::map<AcDbObjectId, size_t> at;
};
Cursors& cursors() {
  static auto* c = new Cursors;
  AcDbDatabase* db = workingDb();
  if (c->db != db) {
    c->at.clear();
    c->db = db;
  }
  return *c;
}

bool idOf(const ads_name n, AcDbObjectId& id) {
  if (n && acdbGetObjectId(id, n) == Acad::eOk && !id.isNull()) return true;
  hostErrno() = OL_ENAMEVALID;
  return false;
}

int xdItemSize(const resbuf* p) {
  int code = p->restype;
  if (code == 1001 || (code >= 1000 && code <= 1003) || (code >= 1005 && code <= 1009)) {
    int len = 0;
    if (p->resval.rstring)
      for (const ACHAR* s = p->resval.rstring; *s; ++s) ++len;
    return 2 + len;
  }
  if (code == 1004) return 3 + p->resval.rbinary.clen;
  if (code >= 1010 && code <= 1039) return 2 + 24;
  if (code >= 1040 && code <= 1042) return 2 + 8;
  if (code == 1070) return 2 + 2;
  if (code == 1071) return 2 + 4;
  return 2;
}

// The entries of a dictionary in the order dictnext walks them.
std::vector<AcDbDictionary::Entry> entries(AcDbObjectId dict) {
  AcDbObjectPointer<AcDbDictionary> d(dict, AcDb::kForRead);
  std::vector<AcDbDictionary::Entry> out;
  if (!d) return out;
  AcDbDictionaryIterator* it = d->newIterator();
  for (; it && !it->done(); it->next()) out.push_back({it->name(), it->objectId()});
  delete it;
  return out;
}

resbuf* entryList(AcDbObjectId id) {
  std::vector<DxfItem> items;
  if (!objectGroups(id, {}, &items)) return nullptr;
  return groupsToChain(items);
}

}  // namespace
}  // namespace zepk::db

resbuf* acdbTblNext(const ACHAR* tblname, int rewind) {
  AcDbObjectId table = db::tableId(db::workingDb(), tblname);
  if (table.isNull()) return nullptr;
  AcDbObjectIdArray recs = db::records(table);
  auto& c = db::cursors();
  size_t& pos = c.at[table];
  if (rewind) pos = 0;
  while (pos < recs.size() && recs[pos].isErased()) ++pos;
  if (pos >= recs.size()) return nullptr;
  return db::recordList(recs[pos++], db::upper(tblname));
}

resbuf* acdbTblSearch(const ACHAR* tblname, const ACHAR* sym, int setnext) {
  AcDbObjectId table = db::tableId(db::workingDb(), tblname);
  if (table.isNull() || !sym) return nullptr;
  AcDbObjectPointer<AcDbSymbolTable> t(table, AcDb::kForRead);
  AcDbObjectId id;
  if (!t || t->getAt(sym, id) != Acad::eOk) return nullptr;
  t.close();
  if (setnext) {
    AcDbObjectIdArray recs = db::records(table);
    for (size_t i = 0; i < recs.size(); ++i)
      if (recs[i] == id) db::cursors().at[table] = i + 1;
  }
  return db::recordList(id, db::upper(tblname));
}

int acdbTblObjName(const ACHAR* tblname, const ACHAR* sym, ads_name result) {
  if (!result) return RTERROR;
  ads_name_clear(result);
  AcDbObjectId table = db::tableId(db::workingDb(), tblname);
  if (table.isNull() || !sym) return RTERROR;
  AcDbObjectPointer<AcDbSymbolTable> t(table, AcDb::kForRead);
  AcDbObjectId id;
  if (!t || t->getAt(sym, id) != Acad::eOk) return RTERROR;
  return adsNameOf(result, id) == Acad::eOk ? RTNORM : RTERROR;
}

// A valid name: 1 to 255 characters, none a control character or one of
// < > / \ " : ; ? * , = `; the vertical bar only with pipetest, and not
// first or last.
int acdbSNValid(const ACHAR* tbstr, int pipetest) {
  if (!tbstr || !*tbstr) return RTERROR;
  std::u16string_view s(tbstr);
  if (s.size() > 255) return RTERROR;
  for (size_t i = 0; i < s.size(); ++i) {
    char16_t c = s[i];
    if (c < 32) return RTERROR;
    if (std::u16string_view(u"<>/\\\":;?*,=`").find(c) != std::u16string_view::npos) return RTERROR;
    if (c == u'|' && (!pipetest || i == 0 || i + 1 == s.size())) return RTERROR;
  }
  return RTNORM;
}

int acdbRegApp(const ACHAR* appname) {
  AcDbDatabase* dbp = db::workingDb();
  if (!dbp || acdbSNValid(appname, 0) != RTNORM) return RTERROR;
  AcDbRegAppTable* t = nullptr;
  if (dbp->getRegAppTable(t, AcDb::kForWrite) != Acad::eOk) return RTERROR;
  if (t->has(appname)) {
    t->close();
    return RTERROR;
  }
  auto* rec = new AcDbRegAppTableRecord;
  AcDbObjectId id;
  if (rec->setName(appname) != Acad::eOk || t->add(id, rec) != Acad::eOk) {
    delete rec;
    t->close();
    return RTERROR;
  }
  rec->close();
  t->close();
  return RTNORM;
}

int acdbXdRoom(const ads_name ent, int32_t* result) {
  AcDbObjectId id;
  if (!result || !db::idOf(ent, id)) return RTERROR;
  AcDbObjectPointer<AcDbObject> obj(id, AcDb::kForRead);
  if (!obj) return RTERROR;
  *result = 16383 - obj->xDataSize();
  return RTNORM;
}

int acdbXdSize(const resbuf* rb, int32_t* result) {
  if (!result) return RTERROR;
  int n = 0;
  for (const resbuf* p = rb; p; p = p->rbnext) {
    if (p->restype == -3) continue;
    if (p->restype < 1000 || p->restype > 1071) return RTERROR;
    n += db::xdItemSize(p);
  }
  *result = n;
  return RTNORM;
}

int acdbNamedObjDict(ads_name result) {
  if (!result) return RTERROR;
  ads_name_clear(result);
  AcDbDatabase* dbp = db::workingDb();
  if (!dbp || dbp->namedObjectsDictionaryId().isNull()) return RTERROR;
  return adsNameOf(result, dbp->namedObjectsDictionaryId()) == Acad::eOk ? RTNORM : RTERROR;
}

resbuf* acdbDictSearch(const ads_name dict, const ACHAR* sym, int setnext) {
  AcDbObjectId did;
  if (!db::idOf(dict, did) || !sym) return nullptr;
  std::vector<AcDbDictionary::Entry> es = db::entries(did);
  std::u16string key = db::upper(sym);
  for (size_t i = 0; i < es.size(); ++i) {
    if (db::upper(es[i].name) != key) continue;
    if (setnext) db::cursors().at[did] = i + 1;
    return db::entryList(es[i].id);
  }
  return nullptr;
}

resbuf* acdbDictNext(const ads_name dict, int rewind) {
  AcDbObjectId did;
  if (!db::idOf(dict, did)) return nullptr;
  std::vector<AcDbDictionary::Entry> es = db::entries(did);
  size_t& pos = db::cursors().at[did];
  if (rewind) pos = 0;
  while (pos < es.size()) {
    resbuf* rb = db::entryList(es[pos++].id);
    if (rb) return rb;
  }
  return nullptr;
}

int acdbDictAdd(const ads_name dict, const ACHAR* sym, const ads_name newobj) {
  AcDbObjectId did, oid;
  if (!db::idOf(dict, did) || !db::idOf(newobj, oid) || !sym || !*sym) return RTERROR;
  AcDbObjectPointer<AcDbDictionary> d(did, AcDb::kForWrite);
  if (!d || d->has(sym)) return RTERROR;
  // The object must be one that no dictionary holds yet.
  AcDbObjectPointer<AcDbObject> o(oid, AcDb::kForWrite);
  if (!o || AcDbEntity::cast(o.object()) != nullptr) return RTERROR;
  AcDbObjectId filed;
  return d->setAt(sym, o.object(), filed) == Acad::eOk ? RTNORM : RTERROR;
}

int acdbDictRemove(const ads_name dict, const ACHAR* symname) {
  AcDbObjectId did;
  if (!db::idOf(dict, did) || !symname) return RTERROR;
  AcDbObjectPointer<AcDbDictionary> d(did, AcDb::kForWrite);
  if (!d) return RTERROR;
  AcDbObjectId removed;
  return d->remove(symname, removed) == Acad::eOk ? RTNORM : RTERROR;
}

int acdbDictRename(const ads_name dictname, const ACHAR* oldsym, const ACHAR* newsym) {
  AcDbObjectId did;
  if (!db::idOf(dictname, did) || !oldsym || !newsym || !*newsym) return RTERROR;
  AcDbObjectPointer<AcDbDictionary> d(did, AcDb::kForWrite);
  if (!d || !d->has(oldsym) || d->has(newsym)) return RTERROR;
  return d->setName(oldsym, newsym) == Acad::eOk ? RTNORM : RTERROR;
}
