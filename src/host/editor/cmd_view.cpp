// The view of model space: ZOOM and REGEN. The view is its centre
// (VIEWCTR) and height (VIEWSIZE) in a window of the proportions of
// SCREENSIZE; ZOOM Extents and All also bring the drawing's extents
// (EXTMIN, EXTMAX) up to date.
#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "host/aced.h"
#include "host/dbents.h"
#include "host/dbmtext.h"
#include "host/dbsymtb.h"
#include "host/editor/cmd_common.h"
#include "host/editor/commands.h"
#include "host/editor/input.h"
#include "host/editor/sysvars.h"
#include "host/system/utf.h"

namespace zepk::editor {

namespace {

using namespace cmd;

struct View {
  double cx = 0, cy = 0, height = 1;
};

std::vector<View>& previousViews() {
  static std::vector<View> v;
  return v;
}

View currentView() {
  View v;
  SysValue c;
  if (getSysVar(u"VIEWCTR", &c)) v.cx = c.p[0], v.cy = c.p[1];
  v.height = sysReal(u"VIEWSIZE", 9.0);
  return v;
}

double aspect() {
  SysValue s;
  if (getSysVar(u"SCREENSIZE", &s) && s.p[1] > 0) return s.p[0] / s.p[1];
  return 4.0 / 3.0;
}

void setView(const View& v) {
  if (!(v.height > 0) || !std::isfinite(v.height)) return;
  std::vector<View>& prev = previousViews();
  prev.push_back(currentView());
  if (prev.size() > 10) prev.erase(prev.begin());
  setSysVarByHost(u"VIEWCTR", SysValue::point(v.cx, v.cy, 0, true));
  setSysVarByHost(u"VIEWSIZE", SysValue::real(v.height));
}

// The view that shows the box whole.
View viewOf(const AcDbExtents& box) {
  AcGePoint3d lo = box.minPoint(), hi = box.maxPoint();
  View v;
  v.cx = (lo.x + hi.x) / 2;
  v.cy = (lo.y + hi.y) / 2;
  v.height = std::max(hi.y - lo.y, (hi.x - lo.x) / aspect());
  if (v.height <= 0) v.height = 1;
  return v;
}

// Grows the box by an entity's extents.
void addExtents(const AcDbEntity* e, AcDbExtents& box, bool& any) {
  AcDbExtents x;
  if (e->getGeomExtents(x) != Acad::eOk) return;
  box.addExt(x);
  any = true;
}

// The extents of model space; false for an empty drawing.
bool drawingExtents(AcDbExtents& box) {
  AcDbBlockTable* t = nullptr;
  if (!db() || db()->getBlockTable(t, AcDb::kForRead) != Acad::eOk) return false;
  AcDbBlockTableRecord* ms = nullptr;
  t->getAt(ACDB_MODEL_SPACE, ms, AcDb::kForRead);
  t->close();
  if (!ms) return false;
  AcDbObjectIdArray ids = ms->entityIds();
  ms->close();
  bool any = false;
  for (const AcDbObjectId& id : ids) {
    AcDbEntity* e = nullptr;
    if (acdbOpenObject(e, id, AcDb::kForRead) != Acad::eOk) continue;
    addExtents(e, box, any);
    e->close();
  }
  return any;
}

// Brings EXTMIN and EXTMAX up to date; false for an empty drawing.
bool updateExtents(AcDbExtents& box) {
  if (!drawingExtents(box)) return false;
  AcGePoint3d lo = box.minPoint(), hi = box.maxPoint();
  setSysVarByHost(u"EXTMIN", SysValue::point(lo.x, lo.y, lo.z, true));
  setSysVarByHost(u"EXTMAX", SysValue::point(hi.x, hi.y, hi.z, true));
  return true;
}

// "2", "2x" (of the current view) or "2xp": a magnification; false when
// the text is none.
bool magnification(const std::u16string& text, double* height) {
  std::u16string t = upper(text);
  bool relative = false;
  if (t.size() > 2 && t.substr(t.size() - 2) == u"XP") {
    t.resize(t.size() - 2);
    relative = true;
  } else if (t.size() > 1 && t.back() == u'X') {
    t.pop_back();
    relative = true;
  }
  double f = 0;
  if (!parseReal(t, &f) || !(f > 0)) return false;
  if (relative) {
    *height = currentView().height / f;
  } else {
    SysValue lo, hi;
    getSysVar(u"LIMMIN", &lo);
    getSysVar(u"LIMMAX", &hi);
    double h = std::max(hi.p[1] - lo.p[1], (hi.p[0] - lo.p[0]) / aspect());
    *height = (h > 0 ? h : 9.0) / f;
  }
  return true;
}

void zoomWindow(const double a[3], const double b[3]) {
  AcDbExtents box(AcGePoint3d(std::min(a[0], b[0]), std::min(a[1], b[1]), 0),
                  AcGePoint3d(std::max(a[0], b[0]), std::max(a[1], b[1]), 0));
  if (a[0] == b[0] && a[1] == b[1]) return;
  setView(viewOf(box));
}

void cmdZoom() {
  initGet(RSG_OTHER, u"All Center Dynamic Extents Previous Scale Window Object");
  double p[3];
  int st = getPoint(nullptr,
                    u"\nSpecify corner of window, enter a scale factor (nX or nXP), or\n"
                    u"[All/Center/Dynamic/Extents/Previous/Scale/Window/Object] <real time>: ",
                    p);
  if (st == RTNONE) return;  // real time: nothing to do without a screen
  if (st == RTNORM) {
    double q[3];
    if (getPoint(p, u"\nSpecify opposite corner: ", q) != RTNORM) return;
    zoomWindow(p, q);
    return;
  }
  if (st != RTKWORD) return;
  std::u16string k = lastInputKeyword();
  double h = 0;
  if (k == u"All") {
    AcDbExtents box;
    SysValue lo, hi;
    getSysVar(u"LIMMIN", &lo);
    getSysVar(u"LIMMAX", &hi);
    box.addPoint(AcGePoint3d(lo.p[0], lo.p[1], 0));
    box.addPoint(AcGePoint3d(hi.p[0], hi.p[1], 0));
    AcDbExtents ext;
    if (updateExtents(ext)) box.addExt(ext);
    setView(viewOf(box));
  } else if (k == u"Extents") {
    AcDbExtents ext;
    if (updateExtents(ext)) setView(viewOf(ext));
  } else if (k == u"Center") {
    double c[3];
    if (getPoint(nullptr, u"\nSpecify center point: ", c) != RTNORM) return;
    View v = currentView();
    for (;;) {
      std::u16string s;
      if (getString(false, u"\nEnter magnification or height <" + sys::fromUtf8(fmt(v.height)) + u">: ", &s) !=
          RTNORM)
        return;
      if (s.empty()) break;
      double height = 0;
      if (parseReal(s, &height) && height > 0) {
        v.height = height;
        break;
      }
      if (magnification(s, &height) && upper(s).back() != u'0') {
        v.height = height;
        break;
      }
      say("Requires a positive number, nX or nXP.\n");
    }
    v.cx = c[0];
    v.cy = c[1];
    setView(v);
  } else if (k == u"Previous") {
    std::vector<View>& prev = previousViews();
    if (prev.empty()) {
      say("No previous view saved.\n");
      return;
    }
    View v = prev.back();
    prev.pop_back();
    setSysVarByHost(u"VIEWCTR", SysValue::point(v.cx, v.cy, 0, true));
    setSysVarByHost(u"VIEWSIZE", SysValue::real(v.height));
  } else if (k == u"Scale") {
    for (;;) {
      std::u16string s;
      if (getString(false, u"\nEnter a scale factor (nX or nXP): ", &s) != RTNORM || s.empty()) return;
      if (magnification(s, &h)) break;
      say("Requires a positive number, nX or nXP.\n");
    }
    View v = currentView();
    v.height = h;
    setView(v);
  } else if (k == u"Window" || k == u"Dynamic") {
    double a[3], b[3];
    if (getPoint(nullptr, u"\nSpecify first corner: ", a) != RTNORM) return;
    if (getPoint(a, u"\nSpecify opposite corner: ", b) != RTNORM) return;
    zoomWindow(a, b);
  } else if (k == u"Object") {
    std::vector<AcDbObjectId> ids;
    if (!selectObjects(&ids) || ids.empty()) return;
    AcDbExtents box;
    bool any = false;
    for (const AcDbObjectId& id : ids) {
      AcDbEntity* e = nullptr;
      if (acdbOpenObject(e, id, AcDb::kForRead) != Acad::eOk) continue;
      addExtents(e, box, any);
      e->close();
    }
    if (any) setView(viewOf(box));
  } else if (magnification(k, &h)) {
    View v = currentView();
    v.height = h;
    setView(v);
  } else {
    say("Requires a point, a scale factor (nX or nXP) or an option keyword.\n");
  }
}

void cmdRegen() { say("Regenerating model.\n"); }

void add(const char16_t* name, AcRxFunctionPtr fn) {
  CommandDef d;
  d.group = u"ZEPK_HOST";
  d.global = d.local = name;
  d.fn = fn;
  d.builtin = true;
  d.noUndoMark = true;
  if (std::u16string(name) == u"ZOOM") d.flags = ACRX_CMD_TRANSPARENT;
  Commands::get().add(d);
}

}  // namespace

void registerViewCommands() {
  add(u"ZOOM", cmdZoom);
  add(u"REGEN", cmdRegen);
}

}  // namespace zepk::editor

Acad::ErrorStatus acedSetCurrentView(AcDbViewTableRecord* view, AcDbViewport*) {
  if (!view) return Acad::eInvalidInput;
  double h = view->height(), w = view->width();
  if (!(h > 0) || !(w > 0) || !std::isfinite(h) || !std::isfinite(w)) return Acad::eInvalidInput;
  AcGePoint2d c = view->centerPoint();
  const double lo[3] = {c.x - w / 2, c.y - h / 2, 0}, hi[3] = {c.x + w / 2, c.y + h / 2, 0};
  zepk::editor::zoomWindow(lo, hi);
  return Acad::eOk;
}
