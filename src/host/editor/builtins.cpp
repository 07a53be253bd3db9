// The host's own commands: drawings (NEW, OPEN, SAVE...), drawing entities
// (LINE, CIRCLE, POINT, TEXT), changing them (ERASE, MOVE, COPY), layers,
// undo, and loading programs.
#include <cmath>
#include <cstdio>
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/dbapserv.h"
#include "host/dbents.h"
#include "host/dbidmap.h"
#include "host/dbsymtb.h"
#include "host/editor/cmd_common.h"
#include "host/editor/commands.h"
#include "host/editor/input.h"
#include "host/editor/selectmodes.h"
#include "host/editor/sysvars.h"
#include "host/entlist.h"
#include "host/gemat3d.h"
#include "host/editor/docman.h"
#include "host/rxmodule.h"
#include "host/system/utf.h"

namespace zepk::editor {

namespace {
Commands& cmds() { return Commands::get(); }
}  // namespace

namespace cmd {

AcDbDatabase* db() { return acdbHostApplicationServices()->workingDatabase(); }

void say(const std::string& utf8) { cmds().print(utf8); }

std::u16string upper(std::u16string s) { return sys::asciiUpper(s); }

std::u16string sysString(const char16_t* name) {
  SysValue v;
  return getSysVar(name, &v) && v.kind == SysValue::String ? v.s : std::u16string();
}

double sysReal(const char16_t* name, double fallback) {
  SysValue v;
  if (!getSysVar(name, &v)) return fallback;
  return v.kind == SysValue::Real ? v.r : v.kind == SysValue::Int ? v.i : fallback;
}

int sysInt(const char16_t* name, int fallback) {
  SysValue v;
  return getSysVar(name, &v) && v.kind == SysValue::Int ? v.i : fallback;
}

std::string fmt(double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.4f", v);
  return buf;
}

AcDbObjectId appendEntity(AcDbEntity* e) {
  AcDbObjectId id;
  AcDbDatabase* d = db();
  if (!d) {
    delete e;
    return id;
  }
  AcDbBlockTable* table = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  if (d->getBlockTable(table, AcDb::kForRead) == Acad::eOk) {
    table->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite);
    table->close();
  }
  if (!space || space->appendAcDbEntity(id, e) != Acad::eOk) {
    if (space) space->close();
    delete e;
    return AcDbObjectId();
  }
  space->close();
  e->close();
  return id;
}

AcDbObjectId addEntity(AcDbEntity* e) {
  AcDbDatabase* d = db();
  if (!d) {
    delete e;
    return AcDbObjectId();
  }
  e->setDatabaseDefaults(d);
  std::u16string layer = sysString(u"CLAYER");
  if (!layer.empty()) e->setLayer(layer.c_str());
  std::u16string lt = sysString(u"CELTYPE");
  if (!lt.empty()) e->setLinetype(lt.c_str());
  std::u16string color = upper(sysString(u"CECOLOR"));
  if (color == u"BYBLOCK") {
    e->setColorIndex(0);
  } else if (!color.empty() && color != u"BYLAYER") {
    int index = std::atoi(sys::toUtf8(color).c_str());
    if (index >= 1 && index <= 255) e->setColorIndex(static_cast<Adesk::UInt16>(index));
  }
  return appendEntity(e);
}

int transformEntities(const std::vector<AcDbObjectId>& ids, const AcGeMatrix3d& m) {
  int refused = 0;
  for (const AcDbObjectId& id : ids) {
    AcDbEntity* e = nullptr;
    if (acdbOpenObject(e, id, AcDb::kForWrite) != Acad::eOk) {
      ++refused;
      continue;
    }
    if (e->transformBy(m) != Acad::eOk) ++refused;
    e->close();
  }
  return refused;
}

std::vector<AcDbObjectId> copyEntities(const std::vector<AcDbObjectId>& ids) {
  std::vector<AcDbObjectId> copies;
  AcDbDatabase* d0 = db();
  AcDbBlockTable* table = nullptr;
  AcDbObjectId space;
  if (!d0 || d0->getBlockTable(table, AcDb::kForRead) != Acad::eOk) return copies;
  table->getAt(ACDB_MODEL_SPACE, space);
  table->close();
  AcDbIdMapping map;
  if (d0->deepCloneObjects(ids, space, map) != Acad::eOk) return copies;
  for (const AcDbObjectId& id : ids) {
    AcDbIdPair pair(id, AcDbObjectId(), false);
    if (map.compute(pair) && pair.isCloned()) copies.push_back(pair.value());
  }
  return copies;
}

void eraseEntities(const std::vector<AcDbObjectId>& ids) {
  for (const AcDbObjectId& id : ids) {
    AcDbEntity* e = nullptr;
    if (acdbOpenObject(e, id, AcDb::kForWrite) != Acad::eOk) continue;
    e->erase();
    e->close();
  }
}

int& undoneByLastCommand() {
  static int n = 0;
  return n;
}

}  // namespace cmd

namespace {

using namespace cmd;

// --------------------------------------------------------------- drawing

void cmdLine() {
  double first[3], prev[3];
  int st = getPoint(nullptr, u"\nSpecify first point: ", first);
  if (st != RTNORM) return;
  for (int i = 0; i < 3; ++i) prev[i] = first[i];
  std::vector<AcDbObjectId> made;
  std::vector<std::array<double, 3>> pts{{first[0], first[1], first[2]}};
  for (;;) {
    initGet(0, made.size() >= 2 ? u"Close Undo" : u"Undo");
    const char16_t* prompt =
        made.size() >= 2 ? u"\nSpecify next point or [Close/Undo]: " : u"\nSpecify next point or [Undo]: ";
    double p[3];
    st = getPoint(prev, prompt, p);
    if (st == RTKWORD) {
      std::u16string k = lastInputKeyword();
      if (k == u"Undo") {
        if (made.empty()) {
          say("All segments already undone.\n");
          continue;
        }
        AcDbEntity* e = nullptr;
        if (acdbOpenObject(e, made.back(), AcDb::kForWrite) == Acad::eOk) {
          e->erase();
          e->close();
        }
        made.pop_back();
        pts.pop_back();
        for (int i = 0; i < 3; ++i) prev[i] = pts.back()[i];
        continue;
      }
      // Close: back to the first point, and the command ends.
      made.push_back(addEntity(new AcDbLine(AcGePoint3d(prev[0], prev[1], prev[2]),
                                            AcGePoint3d(first[0], first[1], first[2]))));
      return;
    }
    if (st != RTNORM) return;
    made.push_back(addEntity(new AcDbLine(AcGePoint3d(prev[0], prev[1], prev[2]), AcGePoint3d(p[0], p[1], p[2]))));
    pts.push_back({p[0], p[1], p[2]});
    for (int i = 0; i < 3; ++i) prev[i] = p[i];
  }
}

void cmdCircle() {
  double c[3];
  if (getPoint(nullptr, u"\nSpecify center point for circle: ", c) != RTNORM) return;
  double r = 0;
  initGet(RSG_NOZERO | RSG_NONEG, u"Diameter");
  int st = getReal(u"\nSpecify radius of circle or [Diameter]: ", &r, false, c);
  if (st == RTKWORD) {
    initGet(RSG_NOZERO | RSG_NONEG, u"");
    if (getReal(u"\nSpecify diameter of circle: ", &r, false, c) != RTNORM) return;
    r /= 2;
  } else if (st != RTNORM) {
    return;
  }
  addEntity(new AcDbCircle(AcGePoint3d(c[0], c[1], c[2]), AcGeVector3d(0, 0, 1), r));
}

void cmdPoint() {
  double p[3];
  if (getPoint(nullptr, u"\nSpecify a point: ", p) != RTNORM) return;
  addEntity(new AcDbPoint(AcGePoint3d(p[0], p[1], p[2])));
}

void cmdText() {
  double p[3];
  if (getPoint(nullptr, u"\nSpecify start point of text: ", p) != RTNORM) return;
  double h = sysReal(u"TEXTSIZE", 2.5);
  initGet(RSG_NOZERO | RSG_NONEG, u"");
  int st = getReal(u"\nSpecify height <" + sys::fromUtf8(fmt(h)) + u">: ", &h, false, p);
  if (st != RTNORM && st != RTNONE) return;
  double angle = 0;
  st = getReal(u"\nSpecify rotation angle of text <0>: ", &angle, false, nullptr);
  if (st != RTNORM && st != RTNONE) return;
  std::u16string text;
  if (getString(true, u"\nEnter text: ", &text) != RTNORM) return;
  if (st == RTNONE) angle = 0;
  setSysVar(u"TEXTSIZE", SysValue::real(h));
  auto* t = new AcDbText(AcGePoint3d(p[0], p[1], p[2]), text.c_str());
  t->setHeight(h);
  t->setRotation(angle * M_PI / 180.0);
  addEntity(t);
}

// ------------------------------------------------------------- selection

// "Select objects:" through the editor's shared prompt (selectmodes.h),
// leaving out entities on locked layers. False when cancelled.
}  // namespace

bool cmd::selectObjects(std::vector<AcDbObjectId>* out) {
  SelectOptions opt;
  opt.rejectLocked = true;
  return zepk::editor::selectObjects(opt, out) == RTNORM;
}

namespace {

using namespace cmd;

void cmdErase() {
  std::vector<AcDbObjectId> ids;
  if (!selectObjects(&ids)) return;
  eraseEntities(ids);
}

bool displacement(double d[3]) {
  double base[3], second[3];
  initGet(0, u"Displacement");
  int st = getPoint(nullptr, u"\nSpecify base point or [Displacement] <Displacement>: ", base);
  if (st == RTKWORD || st == RTNONE) {
    double last[3] = {0, 0, 0};
    if (getPoint(last, u"\nSpecify displacement <0.0000, 0.0000, 0.0000>: ", d) == RTNONE) d[0] = d[1] = d[2] = 0;
    return !cmds().cancelled;
  }
  if (st != RTNORM) return false;
  st = getPoint(base, u"\nSpecify second point or <use first point as displacement>: ", second);
  if (st == RTNONE) {
    for (int i = 0; i < 3; ++i) d[i] = base[i];
    return true;
  }
  if (st != RTNORM) return false;
  for (int i = 0; i < 3; ++i) d[i] = second[i] - base[i];
  return true;
}

AcGeMatrix3d moving(const double d[3]) { return AcGeMatrix3d::translation(AcGeVector3d(d[0], d[1], d[2])); }

void cmdMove() {
  std::vector<AcDbObjectId> ids;
  if (!selectObjects(&ids) || ids.empty()) return;
  double d[3];
  if (!displacement(d)) return;
  transformEntities(ids, moving(d));
}

void cmdCopy() {
  std::vector<AcDbObjectId> ids;
  if (!selectObjects(&ids) || ids.empty()) return;
  double d[3];
  if (!displacement(d)) return;
  transformEntities(copyEntities(ids), moving(d));
}

// ----------------------------------------------------------------- files

bool endsWithDxf(const std::u16string& s) {
  return s.size() >= 4 && upper(s.substr(s.size() - 4)) == u".DXF";
}

std::u16string currentPath() {
  std::u16string prefix = sysString(u"DWGPREFIX"), name = sysString(u"DWGNAME");
  return prefix + name;
}

bool saveTo(std::u16string path) {
  if (!endsWithDxf(path)) path += u".dxf";
  Acad::ErrorStatus es = db()->saveAs(path.c_str());
  if (es != Acad::eOk) {
    say("Cannot save " + sys::toUtf8(path) + ": " + db()->lastFileError() + "\n");
    return false;
  }
  documentSaved(path);
  return true;
}

// Whether the working drawing has a file of its own (opened or saved).
bool named() { return currentDocumentTitled(); }

void cmdSaveAs() {
  std::u16string path;
  std::u16string prompt = u"\nSave drawing as <" + currentPath() + u">: ";
  if (getString(true, prompt, &path) != RTNORM) return;
  if (path.empty()) path = currentPath();
  saveTo(path);
}

void cmdQSave() {
  if (!named()) {
    cmdSaveAs();
    return;
  }
  saveTo(currentPath());
}

// NEW and OPEN make a new document, which becomes the current one.
void makeCurrent(AcDbDatabase* d, const std::u16string& path) {
  addDocument(std::unique_ptr<AcDbDatabase>(d), path);
}

// NEW: a drawing made from a template drawing (a DXF file), or with "."
// (and Enter) a new drawing of the host's own defaults. The new drawing
// has no file of its own yet.
void cmdNew() {
  std::u16string templ;
  if (getString(true, u"\nEnter template file name or [. (for none)] <.>: ", &templ) != RTNORM) return;
  if (templ.empty() || templ == u".") {
    makeCurrent(new AcDbDatabase(true), u"");
    return;
  }
  auto d = std::make_unique<AcDbDatabase>(false);
  Acad::ErrorStatus es = d->readDwgFile(templ.c_str());
  if (es != Acad::eOk && !endsWithDxf(templ)) {
    d = std::make_unique<AcDbDatabase>(false);
    es = d->readDwgFile((templ + u".dxf").c_str());
  }
  if (es != Acad::eOk) {
    std::string msg = d->lastFileError();
    say((msg.empty() ? "Cannot open template " + sys::toUtf8(templ) : msg) + "\n");
    return;
  }
  makeCurrent(d.release(), u"");
}

void cmdOpen() {
  std::u16string path;
  if (getString(true, u"\nEnter name of drawing to open: ", &path) != RTNORM || path.empty()) return;
  auto d = std::make_unique<AcDbDatabase>(false);
  Acad::ErrorStatus es = d->readDwgFile(path.c_str());
  if (es != Acad::eOk && !endsWithDxf(path)) {
    d = std::make_unique<AcDbDatabase>(false);
    es = d->readDwgFile((path + u".dxf").c_str());
    if (es == Acad::eOk) path += u".dxf";
  }
  if (es != Acad::eOk) {
    std::string msg = d->lastFileError();
    say((msg.empty() ? "Cannot open " + sys::toUtf8(path) : msg) + "\n");
    return;
  }
  makeCurrent(d.release(), path);
}

void cmdClose() { closeCurrentDocument(); }

// ----------------------------------------------------------------- layers

AcDbLayerTableRecord* openLayer(const std::u16string& name, AcDb::OpenMode mode) {
  AcDbLayerTable* table = nullptr;
  if (db()->getLayerTable(table, AcDb::kForRead) != Acad::eOk) return nullptr;
  AcDbLayerTableRecord* rec = nullptr;
  table->getAt(name.c_str(), rec, mode);
  table->close();
  return rec;
}

bool newLayer(const std::u16string& name) {
  if (AcDbLayerTableRecord* rec = openLayer(name, AcDb::kForRead)) {
    rec->close();
    return true;
  }
  AcDbLayerTable* table = nullptr;
  if (db()->getLayerTable(table, AcDb::kForWrite) != Acad::eOk) return false;
  auto* rec = new AcDbLayerTableRecord;
  bool ok = rec->setName(name.c_str()) == Acad::eOk && table->add(rec) == Acad::eOk;
  if (ok) {
    rec->close();
  } else {
    delete rec;
  }
  table->close();
  return ok;
}

// Layer names of an answer: a comma-separated list.
std::vector<std::u16string> names(const std::u16string& s) {
  std::vector<std::u16string> out;
  size_t start = 0;
  while (start <= s.size()) {
    size_t c = s.find(u',', start);
    if (c == std::u16string::npos) c = s.size();
    if (c > start) out.push_back(s.substr(start, c - start));
    start = c + 1;
  }
  return out;
}

void cmdLayer() {
  for (;;) {
    std::u16string k;
    initGet(0, u"New Make Set ON OFF Color Lock Unlock");
    say("Current layer:  \"" + sys::toUtf8(sysString(u"CLAYER")) + "\"\n");
    int st = getKword(u"\nEnter an option [New/Make/Set/ON/OFF/Color/Lock/Unlock]: ", &k);
    if (st != RTNORM) return;
    std::u16string answer;
    if (k == u"Color") {
      std::u16string color;
      if (getString(false, u"\nEnter color name or number (1-255): ", &color) != RTNORM) return;
      int index = std::atoi(sys::toUtf8(color).c_str());
      if (index < 1 || index > 255) {
        say("Invalid color.\n");
        continue;
      }
      if (getString(false, u"\nEnter name list of layer(s) for color " + color + u" <" + sysString(u"CLAYER") + u">: ",
                    &answer) != RTNORM)
        return;
      if (answer.empty()) answer = sysString(u"CLAYER");
      for (const std::u16string& n : names(answer))
        if (AcDbLayerTableRecord* rec = openLayer(n, AcDb::kForWrite)) {
          rec->setColorIndex(static_cast<Adesk::Int16>(index));
          rec->close();
        }
      continue;
    }
    std::u16string prompt = k == u"New"    ? u"\nEnter name list for new layer(s): "
                            : k == u"Make" ? u"\nEnter name for new layer (becomes the current layer) <" +
                                                 sysString(u"CLAYER") + u">: "
                            : k == u"Set"  ? u"\nEnter layer name to make current or <select object>: "
                                           : u"\nEnter name list of layer(s) to " + upper(k) + u": ";
    if (k == u"Lock" || k == u"Unlock") prompt = u"\nEnter name list of layer(s) to " + k + u": ";
    if (getString(false, prompt, &answer) != RTNORM) return;
    if (answer.empty()) continue;
    if (k == u"New") {
      for (const std::u16string& n : names(answer))
        if (!newLayer(n)) say("Invalid layer name.\n");
    } else if (k == u"Make") {
      if (!newLayer(answer)) {
        say("Invalid layer name.\n");
      } else {
        setSysVar(u"CLAYER", SysValue::string(answer));
      }
    } else if (k == u"Set") {
      if (AcDbLayerTableRecord* rec = openLayer(answer, AcDb::kForRead)) {
        rec->close();
        setSysVar(u"CLAYER", SysValue::string(answer));
      } else {
        say("Cannot find layer \"" + sys::toUtf8(answer) + "\".\n");
      }
    } else {
      for (const std::u16string& n : names(answer)) {
        AcDbLayerTableRecord* rec = openLayer(n, AcDb::kForWrite);
        if (!rec) {
          say("Cannot find layer \"" + sys::toUtf8(n) + "\".\n");
          continue;
        }
        if (k == u"ON") rec->setIsOff(false);
        if (k == u"OFF") rec->setIsOff(true);
        if (k == u"Lock") rec->setIsLocked(true);
        if (k == u"Unlock") rec->setIsLocked(false);
        rec->close();
      }
    }
  }
}

// ------------------------------------------------------------------- undo

void undoSteps(int n) {
  int done = 0;
  while (done < n && db()->undoMarkCount() > 0 && db()->undoBack()) ++done;
  if (done == 0) say("Everything has been undone\n");
  undoneByLastCommand() = done;
}

void cmdU() { undoSteps(1); }

std::vector<int>& marks() {
  // UNDO Mark: the mark count at each mark, newest last.
  static std::vector<int> m;
  return m;
}

void cmdUndo() {
  initGet(RSG_NOZERO | RSG_NONEG, u"Mark Back");
  double n = 1;
  int st = getReal(u"\nEnter the number of operations to undo or [Mark/Back] <1>: ", &n, true, nullptr);
  if (st == RTNONE) n = 1;
  if (st == RTKWORD) {
    std::u16string k = lastInputKeyword();
    if (k == u"Mark") {
      marks().push_back(db()->undoMarkCount());
      return;
    }
    int done = 0;
    if (marks().empty()) {
      while (db()->undoMarkCount() > 0 && db()->undoBack()) ++done;
      say("Everything has been undone\n");
      undoneByLastCommand() = done;
      return;
    }
    int target = marks().back();
    marks().pop_back();
    while (db()->undoMarkCount() > target && db()->undoBack()) ++done;
    undoneByLastCommand() = done;
    return;
  }
  if (st != RTNORM && st != RTNONE) return;
  undoSteps(static_cast<int>(n));
}

// -------------------------------------------------------------- inquiry

void cmdId() {
  double p[3];
  if (getPoint(nullptr, u"\nSpecify point: ", p) != RTNORM) return;
  say("X = " + fmt(p[0]) + "     Y = " + fmt(p[1]) + "     Z = " + fmt(p[2]) + "\n");
}

std::string xyz(const char* label, const double p[3]) {
  char buf[160];
  std::snprintf(buf, sizeof buf, "%*s X=%9.4f  Y=%9.4f  Z=%9.4f\n", 24, label, p[0], p[1], p[2]);
  return buf;
}

std::string field(const char* label, const std::string& value) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%*s", 24, label);
  return std::string(buf) + " " + value + "\n";
}

// LIST: each entity's kind, layer, handle and its defining values.
void cmdList() {
  std::vector<AcDbObjectId> ids;
  if (!selectObjects(&ids)) return;
  for (const AcDbObjectId& id : ids) {
    ads_name en;
    if (acdbGetAdsName(en, id) != Acad::eOk) continue;
    resbuf* list = acdbEntGet(en);
    if (!list) continue;
    std::string type, layer, handle;
    const resbuf* g10 = nullptr;
    const resbuf* g11 = nullptr;
    double r40 = 0, r50 = 0;
    std::string text;
    for (const resbuf* p = list; p; p = p->rbnext) {
      auto str = [&] { return p->resval.rstring ? sys::toUtf8(p->resval.rstring) : std::string(); };
      switch (p->restype) {
        case 0: type = str(); break;
        case 8: layer = str(); break;
        case 5: handle = str(); break;
        case 1: text = str(); break;
        case 10: g10 = p; break;
        case 11: g11 = p; break;
        case 40: r40 = p->resval.rreal; break;
        case 50: r50 = p->resval.rreal; break;
        default: break;
      }
    }
    char head[160];
    std::snprintf(head, sizeof head, "%*s    Layer: \"%s\"\n", 22, type.c_str(), layer.c_str());
    std::string out = head;
    out += field("", "Space: Model space");
    out += field("Handle =", handle);
    if (type == "LINE" && g10 && g11) {
      out += xyz("from point,", g10->resval.rpoint);
      out += xyz("to point,", g11->resval.rpoint);
      double d = std::hypot(g11->resval.rpoint[0] - g10->resval.rpoint[0], g11->resval.rpoint[1] - g10->resval.rpoint[1],
                            g11->resval.rpoint[2] - g10->resval.rpoint[2]);
      out += field("Length =", fmt(d));
    } else if (type == "CIRCLE" && g10) {
      out += xyz("center point,", g10->resval.rpoint);
      out += field("radius", fmt(r40));
      out += field("circumference", fmt(2 * M_PI * r40));
      out += field("area", fmt(M_PI * r40 * r40));
    } else if (type == "POINT" && g10) {
      out += xyz("at point,", g10->resval.rpoint);
    } else if (type == "TEXT" && g10) {
      out += field("Text", text);
      out += xyz("Start point,", g10->resval.rpoint);
      out += field("Height", fmt(r40));
      out += field("Rotation angle", fmt(r50 * 180.0 / M_PI));
    }
    say(out);
    acutRelRb(list);
  }
}

// ---------------------------------------------------------------- modules

void cmdArx() {
  std::u16string k;
  initGet(0, u"? Load Unload");
  if (getKword(u"\nEnter an option [?/Load/Unload]: ", &k) != RTNORM) return;
  if (k == u"?") {
    resbuf* list = acedArxLoaded();
    for (resbuf* p = list; p; p = p->rbnext)
      if (p->restype == RTSTR && p->resval.rstring) say(sys::toUtf8(p->resval.rstring) + "\n");
    acutRelRb(list);
    return;
  }
  std::u16string name;
  if (getString(true, k == u"Load" ? u"\nRuntime extension file: " : u"\nUnload Runtime extension: ", &name) != RTNORM)
    return;
  if (name.empty()) return;
  rx::Status st = k == u"Load" ? rx::loadModule(name) : rx::unloadModule(name);
  if (st != rx::Status::Ok)
    say(sys::toUtf8(name) + (k == u"Load" ? " could not be loaded.\n" : " could not be unloaded.\n"));
}

}  // namespace

// Runs LISP's load on a file; set by the LISP side.
std::function<bool(const std::u16string&)> loadLispFile;

namespace {

void cmdAppload() {
  std::u16string path;
  if (getString(true, u"\nFile to load: ", &path) != RTNORM || path.empty()) return;
  if (!loadLispFile || !loadLispFile(path)) return;
  std::u16string base = path.substr(path.find_last_of(u'/') == std::u16string::npos ? 0 : path.find_last_of(u'/') + 1);
  say(sys::toUtf8(base) + " successfully loaded.\n");
}

// Script files: their lines are read as if typed, after the command ends.
std::function<void(const std::u16string&)> runScriptHook;

void cmdScript() {
  std::u16string path;
  if (getString(true, u"\nEnter script file name: ", &path) != RTNORM || path.empty()) return;
  if (runScriptHook) runScriptHook(path);
}

void cmdQuit() { quitRequested = true; }

}  // namespace

bool quitRequested = false;

void setScriptRunner(std::function<void(const std::u16string&)> fn) { runScriptHook = std::move(fn); }

void registerBuiltinCommands() {
  struct Row {
    const char16_t* name;
    AcRxFunctionPtr fn;
    bool noUndo;
  };
  static const Row rows[] = {
      {u"LINE", cmdLine, false},     {u"CIRCLE", cmdCircle, false}, {u"POINT", cmdPoint, false},
      {u"TEXT", cmdText, false},     {u"ERASE", cmdErase, false},   {u"MOVE", cmdMove, false},
      {u"COPY", cmdCopy, false},     {u"-LAYER", cmdLayer, false},  {u"U", cmdU, true},
      {u"UNDO", cmdUndo, true},      {u"ID", cmdId, true},          {u"LIST", cmdList, true},
      {u"SAVE", cmdSaveAs, true},
      {u"SAVEAS", cmdSaveAs, true},  {u"QSAVE", cmdQSave, true},    {u"NEW", cmdNew, true},
      {u"OPEN", cmdOpen, true},      {u"CLOSE", cmdClose, true},    {u"QUIT", cmdQuit, true},
      {u"ARX", cmdArx, true},        {u"APPLOAD", cmdAppload, true}, {u"SCRIPT", cmdScript, true},
  };
  for (const Row& r : rows) {
    CommandDef d;
    d.group = u"ZEPK_HOST";
    d.global = d.local = r.name;
    d.fn = r.fn;
    d.builtin = true;
    d.noUndoMark = r.noUndo;
    if (std::u16string(r.name) == u"ID") d.flags = ACRX_CMD_TRANSPARENT;
    Commands::get().add(d);
  }
  registerModifyCommands();
  registerDrawCommands();
  registerViewCommands();
}

}  // namespace zepk::editor
