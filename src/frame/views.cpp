// The view of the drawing for LISP: a window shown, and the view kept in
// the document's record to come back to.
#include <algorithm>
#include <cmath>

#include "frame/app.h"
#include "frame/views.h"
#include "geometry/lisp_args.h"
#include "host/aced.h"
#include "host/dbsymtb.h"

namespace zepk::frame {

namespace {

using geometry::lispargs::Args;
using geometry::lispargs::retNil;
using geometry::lispargs::Styles;

constexpr Styles kBang{MsgStyle::Bang, MsgStyle::Bang};

bool readVar(const ACHAR* name, double out[3]) {
  resbuf rb;
  if (acedGetVar(name, &rb) != RTNORM) return false;
  if (rb.restype == RTREAL) out[0] = rb.resval.rreal;
  else if (rb.restype == RTPOINT || rb.restype == RT3DPOINT) std::copy(rb.resval.rpoint, rb.resval.rpoint + 3, out);
  else return false;
  return true;
}

// Lower left and upper right of what the window shows now.
bool currentView(double box[4]) {
  double ctr[3] = {0, 0, 0}, size[3] = {0, 0, 0}, screen[3] = {0, 0, 0};
  if (!readVar(u"VIEWCTR", ctr) || !readVar(u"VIEWSIZE", size)) return false;
  double h = size[0];
  double w = readVar(u"SCREENSIZE", screen) && screen[1] > 0 ? h * screen[0] / screen[1] : h;
  box[0] = ctr[0] - w / 2, box[1] = ctr[1] - h / 2;
  box[2] = ctr[0] + w / 2, box[3] = ctr[1] + h / 2;
  return true;
}

bool showWindow(double x0, double y0, double x1, double y1) {
  double w = std::fabs(x1 - x0), h = std::fabs(y1 - y0);
  if (!(w > 0) || !(h > 0)) return false;
  AcDbViewTableRecord view;
  view.setCenterPoint(AcGePoint2d((x0 + x1) / 2, (y0 + y1) / 2));
  view.setWidth(w);
  view.setHeight(h);
  return acedSetCurrentView(&view, nullptr) == Acad::eOk;
}

int retBoxOf(const double box[4]) {
  ads_point lo = {box[0], box[1], 0}, hi = {box[2], box[3], 0};
  return retList(acutBuildList(RT3DPOINT, lo, RT3DPOINT, hi, RTNONE));
}

}  // namespace

// (ZEPK-Doc-ZoomWinDow corner1 corner2): the window shown whole.
int lispDocZoomWindow() {
  Args a(kBang);
  AcGePoint3d p, q;
  if (!a.point(p) || !a.point(q) || !a.end()) return RTERROR;
  if (!showWindow(p.x, p.y, q.x, q.y)) return failBadArg(MsgStyle::Bang, 2), retNil();
  acedRetT();
  return RSRSLT;
}

// (ZEPK-Doc-SaveViewSize): the view now kept in the document's record;
// returns it as (lower-left upper-right).
int lispDocSaveViewSize() {
  Args a(kBang);
  if (!a.end()) return RTERROR;
  CDocData& data = currentDocData();
  if (!currentView(data.savedView)) return retNil();
  data.savedViewFlag = 1;
  return retBoxOf(data.savedView);
}

// (ZEPK-Doc-ReViewSize): the kept view shown again.
int lispDocReViewSize() {
  Args a(kBang);
  if (!a.end()) return RTERROR;
  const double* v = currentDocData().savedView;
  if (!showWindow(v[0], v[1], v[2], v[3])) return retNil();
  acedRetT();
  return RSRSLT;
}

}  // namespace zepk::frame
