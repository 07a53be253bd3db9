#include "host/editor/sysvars.h"

#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <map>
#include <memory>
#include <sys/time.h>
#include <sys/utsname.h>

#include "host/ads.h"
#include "host/dbdict.h"
#include "host/dbapserv.h"
#include "host/dbheader.h"
#include "host/dbsymtb.h"
#include "host/ol_errno.h"
#include "host/system/utf.h"

namespace zepk::editor {

namespace {

using db::DxfItem;

enum class Type { Short, Real, String, Point2, Point3 };

// Extra rules a value must meet.
enum class Rule {
  None,
  Positive,     // a real above 0
  NonNegative,  // a real of 0 or more
  Layer,        // the name of a layer of the drawing, not frozen
  Linetype,     // a linetype of the drawing
  TextStyle,    // a text style of the drawing
  Color,        // BYLAYER, BYBLOCK, or an index 0-256 as text
  LineWeight,   // -3, -2, -1 or a standard weight
  PointMode,    // 0-4 plus 32, 64 or 96
  Layout,       // "Model" or a layout of the drawing
  MlineStyle,   // the multiline style dictionary holds it
};

// How a variable's value is found when it is not a plain stored or
// session value.
enum class Source { Plain, Computed };

struct Def {
  const char* name;
  Type type;
  bool readOnly;
  const char16_t* header;  // "$NAME" when the drawing stores it
  int code;                // the header's group code
  double dflt = 0;
  const char16_t* dfltText = u"";
  int lo = -32768, hi = 32767;
  Rule rule = Rule::None;
  Source source = Source::Plain;
  double p[3] = {0, 0, 0};  // point default
};

Def def(const char* name, Type t, bool ro, const char16_t* header, int code, double dflt = 0) {
  Def d{name, t, ro, header, code};
  d.dflt = dflt;
  return d;
}
Def ranged(const char* name, bool ro, const char16_t* header, int code, int dflt, int lo, int hi) {
  Def d{name, Type::Short, ro, header, code};
  d.dflt = dflt;
  d.lo = lo;
  d.hi = hi;
  return d;
}
Def text(const char* name, bool ro, const char16_t* header, int code, const char16_t* dflt, Rule rule = Rule::None) {
  Def d{name, Type::String, ro, header, code};
  d.dfltText = dflt;
  d.rule = rule;
  return d;
}
Def real(const char* name, const char16_t* header, int code, double dflt, Rule rule = Rule::None) {
  Def d{name, Type::Real, false, header, code};
  d.dflt = dflt;
  d.rule = rule;
  return d;
}
Def point(const char* name, Type t, bool ro, const char16_t* header, double x, double y, double z = 0) {
  Def d{name, t, ro, header, 10};
  d.p[0] = x, d.p[1] = y, d.p[2] = z;
  return d;
}
Def computed(Def d) {
  d.source = Source::Computed;
  return d;
}
Def withRule(Def d, Rule r) {
  d.rule = r;
  return d;
}

const std::vector<Def>& table() {
  static const std::vector<Def> t = [] {
    std::vector<Def> v;
    const char16_t* ur[] = {u"$USERR1", u"$USERR2", u"$USERR3", u"$USERR4", u"$USERR5"};
    const char16_t* ui[] = {u"$USERI1", u"$USERI2", u"$USERI3", u"$USERI4", u"$USERI5"};
    const char* urn[] = {"USERR1", "USERR2", "USERR3", "USERR4", "USERR5"};
    const char* uin[] = {"USERI1", "USERI2", "USERI3", "USERI4", "USERI5"};
    const char* usn[] = {"USERS1", "USERS2", "USERS3", "USERS4", "USERS5"};
    for (int k = 0; k < 5; ++k) v.push_back(real(urn[k], ur[k], 40, 0.0));
    for (int k = 0; k < 5; ++k) v.push_back(ranged(uin[k], false, ui[k], 70, 0, -32768, 32767));
    for (int k = 0; k < 5; ++k) v.push_back(text(usn[k], false, nullptr, 0, u""));
    v.push_back(text("CLAYER", false, u"$CLAYER", 8, u"0", Rule::Layer));
    v.push_back(withRule(computed(text("CECOLOR", false, u"$CECOLOR", 62, u"BYLAYER")), Rule::Color));
    v.push_back(text("CELTYPE", false, u"$CELTYPE", 6, u"ByLayer", Rule::Linetype));
    v.push_back(real("CELTSCALE", u"$CELTSCALE", 40, 1.0, Rule::Positive));
    v.push_back(withRule(ranged("CELWEIGHT", false, u"$CELWEIGHT", 370, -1, -3, 211), Rule::LineWeight));
    v.push_back(text("TEXTSTYLE", false, u"$TEXTSTYLE", 7, u"Standard", Rule::TextStyle));
    v.push_back(real("TEXTSIZE", u"$TEXTSIZE", 40, 0.2, Rule::Positive));
    v.push_back(ranged("TILEMODE", false, u"$TILEMODE", 70, 1, 0, 1));
    v.push_back(ranged("NOMUTT", false, nullptr, 0, 0, 0, 1));
    v.push_back(ranged("CMDECHO", false, nullptr, 0, 1, 0, 1));
    v.push_back(point("LASTPOINT", Type::Point3, false, nullptr, 0, 0, 0));
    v.push_back(computed(def("CDATE", Type::Real, true, nullptr, 0)));
    v.push_back(computed(def("DATE", Type::Real, true, nullptr, 0)));
    v.push_back(computed(text("DWGNAME", true, nullptr, 0, u"")));
    v.push_back(computed(text("DWGPREFIX", true, nullptr, 0, u"")));
    v.push_back(computed(ranged("DBMOD", true, nullptr, 0, 0, 0, 31)));
    v.push_back(point("VIEWCTR", Type::Point3, true, nullptr, 6.0, 4.5, 0.0));
    v.push_back(def("VIEWSIZE", Type::Real, true, nullptr, 0, 9.0));
    v.push_back(point("SCREENSIZE", Type::Point2, true, nullptr, 1024.0, 768.0));
    v.push_back(point("LIMMIN", Type::Point2, false, u"$LIMMIN", 0, 0));
    v.push_back(point("LIMMAX", Type::Point2, false, u"$LIMMAX", 12, 9));
    v.push_back(point("EXTMIN", Type::Point3, true, u"$EXTMIN", 1e20, 1e20, 1e20));
    v.push_back(point("EXTMAX", Type::Point3, true, u"$EXTMAX", -1e20, -1e20, -1e20));
    v.push_back(ranged("INSUNITS", false, u"$INSUNITS", 70, 1, 0, 24));
    v.push_back(ranged("PICKBOX", false, nullptr, 0, 3, 0, 50));
    v.push_back(ranged("OSMODE", false, nullptr, 0, 4133, 0, 32767));
    v.push_back(ranged("FILEDIA", false, nullptr, 0, 1, 0, 1));
    v.push_back(ranged("CMDDIA", false, nullptr, 0, 1, 0, 1));
    v.push_back(text("CMLSTYLE", false, u"$CMLSTYLE", 2, u"Standard", Rule::MlineStyle));
    v.push_back(text("DIMSTYLE", true, u"$DIMSTYLE", 2, u"Standard"));
    v.push_back(computed(text("HANDSEED", true, nullptr, 0, u"")));
    v.push_back(text("CPROFILE", true, nullptr, 0, u"<<Unnamed Profile>>"));
    v.push_back(ranged("DYNMODE", false, nullptr, 0, 3, -3, 3));
    v.push_back(ranged("LUNITS", false, u"$LUNITS", 70, 2, 1, 5));
    v.push_back(ranged("LUPREC", false, u"$LUPREC", 70, 4, 0, 8));
    v.push_back(ranged("AUNITS", false, u"$AUNITS", 70, 0, 0, 4));
    v.push_back(ranged("AUPREC", false, u"$AUPREC", 70, 0, 0, 8));
    v.push_back(real("ANGBASE", u"$ANGBASE", 50, 0.0));
    v.push_back(ranged("ANGDIR", false, u"$ANGDIR", 70, 0, 0, 1));
    v.push_back(point("UCSORG", Type::Point3, true, u"$UCSORG", 0, 0, 0));
    v.push_back(point("UCSXDIR", Type::Point3, true, u"$UCSXDIR", 1, 0, 0));
    v.push_back(point("UCSYDIR", Type::Point3, true, u"$UCSYDIR", 0, 1, 0));
    v.push_back(computed(ranged("WORLDUCS", true, nullptr, 0, 1, 0, 1)));
    v.push_back(withRule(ranged("PDMODE", false, u"$PDMODE", 70, 0, 0, 100), Rule::PointMode));
    v.push_back(real("PDSIZE", u"$PDSIZE", 40, 0.0));
    v.push_back(real("ELEVATION", u"$ELEVATION", 40, 0.0));
    v.push_back(real("THICKNESS", u"$THICKNESS", 40, 0.0));
    v.push_back(ranged("ORTHOMODE", false, u"$ORTHOMODE", 70, 0, 0, 1));
    v.push_back(ranged("SNAPMODE", false, nullptr, 0, 0, 0, 1));
    v.push_back(computed(ranged("ERRNO", false, nullptr, 0, 0, -32768, 32767)));
    v.push_back(text("ACADVER", true, nullptr, 0, u"17.1"));
    v.push_back(computed(text("PLATFORM", true, nullptr, 0, u"")));
    v.push_back(text("PRODUCT", true, nullptr, 0, u"ZEPK"));
    v.push_back(text("PROGRAM", true, nullptr, 0, u"zepk"));
    v.push_back(computed(text("LOGINNAME", true, nullptr, 0, u"")));
    v.push_back(text("MENUNAME", true, nullptr, 0, u"zepk"));
    v.push_back(real("DIMSCALE", u"$DIMSCALE", 40, 1.0, Rule::NonNegative));
    v.push_back(real("LTSCALE", u"$LTSCALE", 40, 1.0, Rule::Positive));
    v.push_back(ranged("MEASUREMENT", false, u"$MEASUREMENT", 70, 0, 0, 1));
    v.push_back(ranged("HIGHLIGHT", false, nullptr, 0, 1, 0, 1));
    v.push_back(real("PLINEWID", u"$PLINEWID", 40, 0.0, Rule::NonNegative));
    v.push_back(ranged("SPLINESEGS", false, u"$SPLINESEGS", 70, 8, -32768, 32767));
    v.push_back(ranged("SPLINETYPE", false, u"$SPLINETYPE", 70, 6, 5, 6));
    v.push_back(withRule(text("CTAB", false, nullptr, 0, u"Model"), Rule::Layout));
    v.push_back(ranged("DIMZIN", false, u"$DIMZIN", 70, 0, 0, 15));
    v.push_back(ranged("UNITMODE", false, u"$UNITMODE", 70, 0, 0, 1));
    v.push_back(ranged("ATTREQ", false, u"$ATTREQ", 70, 1, 0, 1));
    v.push_back(ranged("ATTDIA", false, nullptr, 0, 0, 0, 1));
    v.push_back(ranged("MIRRTEXT", false, u"$MIRRTEXT", 70, 0, 0, 1));
    v.push_back(text("INSNAME", false, nullptr, 0, u""));
    return v;
  }();
  return t;
}

std::u16string upper(std::u16string_view s) { return sys::asciiUpper(s); }

const Def* find(std::u16string_view name) {
  std::string key = sys::toUtf8(upper(name));
  for (const Def& d : table())
    if (key == d.name) return &d;
  return nullptr;
}

}  // namespace

// The values of one document that its drawing does not store.
struct DocumentVariables {
  std::map<std::string, SysValue> values;
  std::u16string folder, name = u"Drawing1.dwg";
  int dbmod = 0;
};

namespace {

// The current document's set; the session's first set serves until the
// documents install their own.
std::shared_ptr<DocumentVariables>& currentVars() {
  static auto* s = new std::shared_ptr<DocumentVariables>(std::make_shared<DocumentVariables>());
  return *s;
}
DocumentVariables& session() { return *currentVars(); }

AcDbDatabase* workingDb() { return acdbHostApplicationServices()->workingDatabase(); }

SysValue defaultOf(const Def& d) {
  switch (d.type) {
    case Type::Short: return SysValue::integer(static_cast<int32_t>(d.dflt));
    case Type::Real: return SysValue::real(d.dflt);
    case Type::String: return SysValue::string(d.dfltText);
    case Type::Point2: return SysValue::point(d.p[0], d.p[1], 0, false);
    case Type::Point3: return SysValue::point(d.p[0], d.p[1], d.p[2], true);
  }
  return {};
}

SysValue fromItem(const Def& d, const DxfItem& it) {
  SysValue v = defaultOf(d);
  switch (d.type) {
    case Type::Short:
      if (it.kind == DxfItem::Int) v.i = static_cast<int32_t>(it.i);
      break;
    case Type::Real:
      if (it.kind == DxfItem::Real) v.r = it.p[0];
      else if (it.kind == DxfItem::Int) v.r = static_cast<double>(it.i);
      break;
    case Type::String:
      if (it.kind == DxfItem::String) v.s = it.s;
      break;
    case Type::Point2:
    case Type::Point3:
      if (it.kind == DxfItem::Point) {
        v.p[0] = it.p[0], v.p[1] = it.p[1];
        v.p[2] = d.type == Type::Point3 ? it.p[2] : 0.0;
      }
      break;
  }
  return v;
}

DxfItem toItem(const Def& d, const SysValue& v) {
  DxfItem it;
  it.code = d.code;
  switch (d.type) {
    case Type::Short: it.kind = DxfItem::Int, it.i = v.i; break;
    case Type::Real: it.kind = DxfItem::Real, it.p[0] = v.r; break;
    case Type::String: it.kind = DxfItem::String, it.s = v.s; break;
    case Type::Point2:
    case Type::Point3:
      it.kind = DxfItem::Point;
      it.p[0] = v.p[0], it.p[1] = v.p[1], it.p[2] = v.p[2];
      it.dims = d.type == Type::Point2 ? 2 : 3;
      break;
  }
  return it;
}

// Local time as the host's calendar real YYYYMMDD.HHMMSSmmm, and the
// Julian date.
double calendarDate() {
  timeval tv{};
  gettimeofday(&tv, nullptr);
  std::tm t{};
  time_t secs = tv.tv_sec;
  localtime_r(&secs, &t);
  double day = (t.tm_year + 1900) * 10000.0 + (t.tm_mon + 1) * 100.0 + t.tm_mday;
  double frac = t.tm_hour * 1e-2 + t.tm_min * 1e-4 + t.tm_sec * 1e-6 + (tv.tv_usec / 1000) * 1e-9;
  return day + frac;
}

double julianDate() {
  timeval tv{};
  gettimeofday(&tv, nullptr);
  std::tm t{};
  time_t secs = tv.tv_sec;
  localtime_r(&secs, &t);
  // Days since 1970-01-01 in local time, plus that day's Julian number.
  double localSecs = static_cast<double>(secs + t.tm_gmtoff) + tv.tv_usec / 1e6;
  return 2440587.5 + localSecs / 86400.0;
}

std::u16string colorText(int index) {
  if (index == 256) return u"BYLAYER";
  if (index == 0) return u"BYBLOCK";
  return sys::fromUtf8(std::to_string(index));
}

SysValue computedValue(const Def& d) {
  std::string n = d.name;
  if (n == "CDATE") return SysValue::real(calendarDate());
  if (n == "DATE") return SysValue::real(julianDate());
  if (n == "DWGNAME") return SysValue::string(session().name);
  if (n == "DBMOD") return SysValue::integer(session().dbmod);
  if (n == "DWGPREFIX") {
    if (!session().folder.empty()) return SysValue::string(session().folder);
    char buf[4096];
    std::string cwd = getcwd(buf, sizeof buf) ? buf : "/";
    if (cwd.empty() || cwd.back() != '/') cwd += '/';
    return SysValue::string(sys::fromUtf8(cwd));
  }
  if (n == "HANDSEED") {
    AcDbDatabase* db = workingDb();
    char buf[32];
    std::snprintf(buf, sizeof buf, "%llX", static_cast<unsigned long long>(db ? db->handseed().value() : 0));
    return SysValue::string(sys::fromUtf8(buf));
  }
  if (n == "PLATFORM") {
    utsname u{};
    std::string s = uname(&u) == 0 ? std::string(u.sysname) + " " + u.machine : "Linux";
    return SysValue::string(sys::fromUtf8(s));
  }
  if (n == "LOGINNAME") {
    const char* user = std::getenv("USER");
    if (!user || !*user) user = std::getenv("LOGNAME");
    return SysValue::string(sys::fromUtf8(user && *user ? user : "user"));
  }
  if (n == "WORLDUCS") {
    SysValue o, x, y;
    getSysVar(u"UCSORG", &o);
    getSysVar(u"UCSXDIR", &x);
    getSysVar(u"UCSYDIR", &y);
    bool world = o.p[0] == 0 && o.p[1] == 0 && o.p[2] == 0 && x.p[0] == 1 && x.p[1] == 0 && x.p[2] == 0 &&
                 y.p[0] == 0 && y.p[1] == 1 && y.p[2] == 0;
    return SysValue::integer(world ? 1 : 0);
  }
  if (n == "ERRNO") return SysValue::integer(hostErrno());
  if (n == "CECOLOR") {
    DxfItem it;
    int index = 256;
    if (getHeaderVar(workingDb(), u"$CECOLOR", &it) && it.kind == DxfItem::Int) index = static_cast<int>(it.i);
    return SysValue::string(colorText(index));
  }
  return defaultOf(d);
}

// Whether the table has a record of the name; the name becomes the
// record's own spelling.
bool hasRecord(AcDbObjectId table, std::u16string& name) {
  AcDbObjectPointer<AcDbSymbolTable> t(table, AcDb::kForRead);
  AcDbObjectId id;
  if (!t || t->getAt(name.c_str(), id) != Acad::eOk) return false;
  AcDbObjectPointer<AcDbSymbolTableRecord> rec(id, AcDb::kForRead);
  const ACHAR* own = nullptr;
  if (rec && rec->getName(own) == Acad::eOk && own) name = own;
  return true;
}

// Checks a value of the variable's type against its rules; may put it in
// its stored form (a colour's index, a layer's own spelling).
bool meetsRule(const Def& d, SysValue& v) {
  AcDbDatabase* db = workingDb();
  switch (d.rule) {
    case Rule::None: return true;
    case Rule::Positive: return v.r > 0;
    case Rule::NonNegative: return v.r >= 0;
    case Rule::Layer: {
      if (!db) return false;
      AcDbLayerTableRecord* rec = nullptr;
      AcDbLayerTable* t = nullptr;
      if (db->getLayerTable(t, AcDb::kForRead) != Acad::eOk) return false;
      Acad::ErrorStatus es = t->getAt(v.s.c_str(), rec, AcDb::kForRead);
      t->close();
      if (es != Acad::eOk) return false;
      bool frozen = rec->isFrozen();
      const ACHAR* name = nullptr;
      rec->getName(name);
      if (name) v.s = name;
      rec->close();
      return !frozen;
    }
    case Rule::Linetype: return db && hasRecord(db->linetypeTableId(), v.s);
    case Rule::TextStyle: return db && hasRecord(db->textStyleTableId(), v.s);
    case Rule::MlineStyle: {
      AcDbObjectPointer<AcDbDictionary> styles(db ? db->mLStyleDictionaryId() : AcDbObjectId(), AcDb::kForRead);
      return styles && styles->has(v.s.c_str());
    }
    case Rule::Color: {
      std::u16string u = upper(v.s);
      if (u == u"BYLAYER") v.i = 256;
      else if (u == u"BYBLOCK") v.i = 0;
      else {
        if (u.empty() || u.size() > 3) return false;
        int n = 0;
        for (char16_t c : u) {
          if (c < u'0' || c > u'9') return false;
          n = n * 10 + (c - u'0');
        }
        if (n < 1 || n > 255) return false;
        v.i = n;
      }
      return true;
    }
    case Rule::LineWeight: {
      static const int weights[] = {-3, -2, -1, 0, 5, 9, 13, 15, 18, 20, 25, 30, 35, 40, 50, 53,
                                    60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};
      for (int w : weights)
        if (v.i == w) return true;
      return false;
    }
    case Rule::PointMode: {
      int base = v.i & 31, extra = v.i & ~31;
      return base <= 4 && (extra == 0 || extra == 32 || extra == 64 || extra == 96);
    }
    case Rule::Layout: {
      if (upper(v.s) == u"MODEL") {
        v.s = u"Model";
        return true;
      }
      AcDbDictionary* layouts = nullptr;
      if (!db || db->getLayoutDictionary(layouts, AcDb::kForRead) != Acad::eOk) return false;
      bool has = layouts->has(v.s.c_str());
      layouts->close();
      return has;
    }
  }
  return false;
}

}  // namespace

bool getSysVar(std::u16string_view name, SysValue* out) {
  const Def* d = find(name);
  if (!d) return false;
  if (d->source == Source::Computed) {
    *out = computedValue(*d);
    return true;
  }
  if (d->header) {
    DxfItem it;
    *out = getHeaderVar(workingDb(), d->header, &it) ? fromItem(*d, it) : defaultOf(*d);
    return true;
  }
  auto it = session().values.find(d->name);
  *out = it != session().values.end() ? it->second : defaultOf(*d);
  return true;
}

namespace {

// Checks and stores a value of a variable that may be set.
SetStatus setValue(const Def* d, const SysValue& value) {
  SysValue v = defaultOf(*d);
  switch (d->type) {
    case Type::Short:
      if (value.kind != SysValue::Int || value.i < d->lo || value.i > d->hi) return SetStatus::Refused;
      v.i = value.i;
      break;
    case Type::Real:
      if (value.kind == SysValue::Int) v.r = value.i;
      else if (value.kind == SysValue::Real) v.r = value.r;
      else return SetStatus::Refused;
      if (!std::isfinite(v.r)) return SetStatus::Refused;
      break;
    case Type::String:
      if (value.kind != SysValue::String) return SetStatus::Refused;
      v.s = value.s;
      break;
    case Type::Point2:
    case Type::Point3:
      if (value.kind != SysValue::Point2 && value.kind != SysValue::Point3) return SetStatus::Refused;
      v.p[0] = value.p[0], v.p[1] = value.p[1];
      v.p[2] = d->type == Type::Point3 && value.kind == SysValue::Point3 ? value.p[2] : 0.0;
      break;
  }
  if (!meetsRule(*d, v)) return SetStatus::Refused;
  if (d->rule == Rule::Color) {
    // Stored as the colour's index.
    DxfItem it;
    it.code = 62;
    it.kind = DxfItem::Int;
    it.i = v.i;
    if (AcDbDatabase* db = workingDb()) setHeaderVar(db, u"$CECOLOR", it);
    return SetStatus::Ok;
  }
  if (d->header) {
    AcDbDatabase* db = workingDb();
    if (!db) return SetStatus::Refused;
    setHeaderVar(db, d->header, toItem(*d, v));
    session().dbmod |= 4;  // a variable of the drawing changed
    return SetStatus::Ok;
  }
  if (std::string(d->name) == "ERRNO") {
    hostErrno() = v.i;
    return SetStatus::Ok;
  }
  session().values[d->name] = v;
  if (std::string(d->name) == "CTAB") {
    SysValue tile = SysValue::integer(v.s == u"Model" ? 1 : 0);
    setSysVar(u"TILEMODE", tile);
  }
  return SetStatus::Ok;
}

}  // namespace

SetStatus setSysVar(std::u16string_view name, const SysValue& value) {
  const Def* d = find(name);
  if (!d) return SetStatus::Unknown;
  if (d->readOnly) {
    hostErrno() = OL_ERDONLY;
    return SetStatus::ReadOnly;
  }
  SetStatus st = setValue(d, value);
  if (st == SetStatus::Refused) hostErrno() = OL_ERANGE;
  return st;
}

SetStatus setSysVarByHost(std::u16string_view name, const SysValue& value) {
  const Def* d = find(name);
  if (!d) return SetStatus::Unknown;
  return setValue(d, value);
}

std::vector<std::u16string> sysVarNames() {
  std::vector<std::u16string> out;
  for (const Def& d : table()) out.push_back(sys::fromUtf8(d.name));
  return out;
}

void setErrno(int code) { hostErrno() = code; }

std::shared_ptr<DocumentVariables> newDocumentVariables() { return std::make_shared<DocumentVariables>(); }

void setCurrentDocumentVariables(std::shared_ptr<DocumentVariables> vars) {
  if (vars) currentVars() = std::move(vars);
}

void setDrawingModified(DocumentVariables* vars, int bits) {
  if (vars) vars->dbmod = bits;
}

int drawingModified(const DocumentVariables* vars) { return vars ? vars->dbmod : 0; }

void setDrawingPath(std::u16string folder, std::u16string name) {
  session().folder = std::move(folder);
  session().name = std::move(name);
}

bool setCurrentUcs(const double origin[3], const double xdir[3], const double ydir[3]) {
  AcDbDatabase* db = workingDb();
  if (!db) return false;
  double x[3] = {xdir[0], xdir[1], xdir[2]};
  double lx = std::sqrt(x[0] * x[0] + x[1] * x[1] + x[2] * x[2]);
  if (lx == 0) return false;
  for (double& c : x) c /= lx;
  // The y axis: ydir less its part along x, made unit.
  double dot = ydir[0] * x[0] + ydir[1] * x[1] + ydir[2] * x[2];
  double y[3] = {ydir[0] - dot * x[0], ydir[1] - dot * x[1], ydir[2] - dot * x[2]};
  double ly = std::sqrt(y[0] * y[0] + y[1] * y[1] + y[2] * y[2]);
  if (ly < 1e-12) return false;
  for (double& c : y) c /= ly;
  auto item = [](const double p[3]) {
    DxfItem it;
    it.code = 10;
    it.kind = DxfItem::Point;
    it.p[0] = p[0], it.p[1] = p[1], it.p[2] = p[2];
    return it;
  };
  setHeaderVar(db, u"$UCSORG", item(origin));
  setHeaderVar(db, u"$UCSXDIR", item(x));
  setHeaderVar(db, u"$UCSYDIR", item(y));
  return true;
}

}  // namespace zepk::editor

// ---------------------------------------------------------------- ads.h

using namespace zepk;

int acedGetVar(const ACHAR* sym, resbuf* result) {
  if (!sym || !result) return RTERROR;
  editor::SysValue v;
  if (!editor::getSysVar(sym, &v)) return RTERROR;
  auto& r = result->resval;
  switch (v.kind) {
    case editor::SysValue::Int: result->restype = RTSHORT, r.rint = static_cast<short>(v.i); break;
    case editor::SysValue::Real: result->restype = RTREAL, r.rreal = v.r; break;
    case editor::SysValue::String: {
      result->restype = RTSTR;
      auto* p = static_cast<ACHAR*>(std::malloc((v.s.size() + 1) * sizeof(ACHAR)));
      if (!p) return RTERROR;
      std::copy(v.s.c_str(), v.s.c_str() + v.s.size() + 1, p);
      r.rstring = p;
      break;
    }
    case editor::SysValue::Point2:
    case editor::SysValue::Point3:
      result->restype = v.kind == editor::SysValue::Point2 ? RTPOINT : RT3DPOINT;
      r.rpoint[0] = v.p[0], r.rpoint[1] = v.p[1], r.rpoint[2] = v.p[2];
      break;
  }
  return RTNORM;
}

int acedSetVar(const ACHAR* sym, const resbuf* val) {
  if (!sym || !val) return RTERROR;
  editor::SysValue v;
  const auto& r = val->resval;
  switch (val->restype) {
    case RTSHORT: v = editor::SysValue::integer(r.rint); break;
    case RTLONG: v = editor::SysValue::integer(r.rlong); break;
    case RTREAL:
    case RTANG:
    case RTORINT: v = editor::SysValue::real(r.rreal); break;
    case RTSTR: v = editor::SysValue::string(r.rstring ? r.rstring : u""); break;
    case RTPOINT: v = editor::SysValue::point(r.rpoint[0], r.rpoint[1], 0, false); break;
    case RT3DPOINT: v = editor::SysValue::point(r.rpoint[0], r.rpoint[1], r.rpoint[2], true); break;
    default: return RTERROR;
  }
  return editor::setSysVar(sym, v) == editor::SetStatus::Ok ? RTNORM : RTERROR;
}
