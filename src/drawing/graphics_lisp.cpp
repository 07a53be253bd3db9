// Temporary graphics over the drawing, and documents: what a program shows
// for the moment (vectors, point marks, entities drawn on top) until the
// next redraw, and new or opened drawings.
#include <algorithm>
#include <cmath>

#include "drawing/lisp.h"
#include "drawing/lisp_common.h"
#include "host/acdocman.h"
#include "host/aced.h"

namespace zepk::drawing {

namespace {

int retStatus(int st) { return st == RTNORM ? retT() : retNil(); }

// An optional colour index from -1 to 255; the default when absent or nil.
bool colourArg(Args& a, int& colour) {
  if (!a.more() || a.type() == RTNIL) {
    a.flag();
    return true;
  }
  int32_t c = 0;
  if (!a.integer(c)) return false;
  if (c < -1 || c > 255) return frame::failBadArg(MsgStyle::Plain, 0), false;
  colour = c;
  return true;
}

}  // namespace

// (ZEPK-GrDrawLines points [colour] [closed] [highlight]): temporary
// vectors through the points.
int lispGrDrawLines() {
  constexpr Styles kPlain{MsgStyle::Plain, MsgStyle::Plain};
  Args a(kPlain);
  std::vector<AcGePoint3d> pts;
  int colour = 7;
  if (!a.points(pts) || !colourArg(a, colour)) return RTERROR;
  bool closed = a.flag();
  bool highlight = a.flag();
  if (!a.end()) return RTERROR;
  if (pts.size() < 2) return frame::failBadArg(MsgStyle::Plain, 0), retNil();
  size_t n = closed && pts.size() > 2 ? pts.size() : pts.size() - 1;
  for (size_t i = 0; i < n; ++i) {
    const AcGePoint3d& p = pts[i];
    const AcGePoint3d& q = pts[(i + 1) % pts.size()];
    ads_point from = {p.x, p.y, p.z}, to = {q.x, q.y, q.z};
    if (acedGrDraw(from, to, colour, highlight ? 1 : 0) != RTNORM) return retNil();
  }
  return retT();
}

// (ZEPK-GrPoint point [colour] [size]): a temporary cross at the point;
// the size is in drawing units, by default a fortieth of the view height.
int lispGrPoint() {
  constexpr Styles kColon{MsgStyle::Colon, MsgStyle::Colon};
  Args a(kColon);
  AcGePoint3d p;
  int colour = 7;
  if (!a.point(p) || !colourArg(a, colour)) return RTERROR;
  double size = 0;
  if (a.more() && !a.real(size)) return RTERROR;
  if (!a.end()) return RTERROR;
  if (size <= 0) {
    resbuf rb;
    size = acedGetVar(u"VIEWSIZE", &rb) == RTNORM && rb.restype == RTREAL ? rb.resval.rreal / 40.0 : 0.25;
  }
  double h = size / 2;
  ads_point a1 = {p.x - h, p.y - h, p.z}, b1 = {p.x + h, p.y + h, p.z};
  ads_point a2 = {p.x - h, p.y + h, p.z}, b2 = {p.x + h, p.y - h, p.z};
  if (acedGrDraw(a1, b1, colour, 0) != RTNORM || acedGrDraw(a2, b2, colour, 0) != RTNORM) return retNil();
  return retT();
}

// (ZEPK-Ent-Draw entities): each drawn again over everything else.
int lispEntDraw() {
  Args a(kBang);
  std::vector<AcDbObjectId> ids;
  if (!a.entities(ids) || !a.end()) return RTERROR;
  int drawn = 0;
  for (const AcDbObjectId& id : ids) {
    AcDbEntity* e = nullptr;
    if (acdbOpenObject(e, id, AcDb::kForRead) != Acad::eOk) continue;
    if (e->draw() == Acad::eOk) ++drawn;
    e->close();
  }
  return drawn ? retT() : retNil();
}

// (ZEPK-ReDraw [entities [mode]]): the whole drawing redrawn (temporary
// graphics gone), or the entities shown (1), hidden (2), highlighted (3)
// or shown plainly (4).
int lispReDraw() {
  Args a(kBang);
  if (!a.more()) return retStatus(acedRedraw(nullptr, 0));
  std::vector<AcDbObjectId> ids;
  int32_t mode = 1;
  if (!a.entities(ids) || (a.more() && !a.integer(mode)) || !a.end()) return RTERROR;
  if (mode < 1 || mode > 4) return frame::failBadArg(MsgStyle::Bang, 2), retNil();
  int done = 0;
  for (const AcDbObjectId& id : ids) {
    ads_name n;
    if (acdbGetAdsName(n, id) == Acad::eOk && acedRedraw(n, mode) == RTNORM) ++done;
  }
  return done ? retT() : retNil();
}

// (ZEPK-Doc-New [template]): a new drawing, made the current document.
int lispDocNew() {
  Args a(kBang);
  std::u16string templ;
  if (a.more() && a.type() != RTNIL && !a.string(templ)) return RTERROR;
  if (a.more() && a.type() == RTNIL) a.flag();
  if (!a.end()) return RTERROR;
  Acad::ErrorStatus es = acDocManager->appContextNewDocument(templ.empty() ? nullptr : templ.c_str());
  if (es != Acad::eOk) return frame::fail(u"\n新建图形失败!"), retNil();
  return retT();
}

// (ZEPK-Doc-Open file): the drawing read from the file, made the current
// document.
int lispDocOpen() {
  Args a(kBang);
  std::u16string file;
  if (!a.string(file) || !a.end()) return RTERROR;
  ACHAR found[1024];
  const ACHAR* path = acedFindFile(file.c_str(), found, 1024) == RTNORM ? found : file.c_str();
  Acad::ErrorStatus es = acDocManager->appContextOpenDocument(path);
  if (es != Acad::eOk) return frame::fail(u"\n打开图形失败!"), retNil();
  return retT();
}

}  // namespace zepk::drawing
