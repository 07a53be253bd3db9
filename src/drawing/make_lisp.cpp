// Drawing from LISP: lines, circles, arcs, wipeouts and text made in the
// current space with the drawing's current properties.
#include <vector>

#include "drawing/create.h"
#include "drawing/lisp.h"
#include "drawing/lisp_common.h"
#include "host/imgent.h"

namespace zepk::drawing {

namespace {

constexpr Styles kColon{MsgStyle::Colon, MsgStyle::Colon};
constexpr Styles kLineDot{MsgStyle::LineDot, MsgStyle::LineDot};

int retMade(Acad::ErrorStatus es, AcDbObjectId id) { return es == Acad::eOk ? retName(id) : retNil(); }

}  // namespace

int lispMakeLine() {
  Args a(kBang);
  AcGePoint3d p1, p2;
  if (!a.point(p1) || !a.point(p2) || !a.end()) return RTERROR;
  AcDbObjectId id;
  return retMade(makeLine(id, p1, p2), id);
}

// Lines joining the points in turn, and the last to the first when the
// flag is given; the list of their names.
int lispMakeLines() {
  Args a(kColon);
  std::vector<AcGePoint3d> pts;
  if (!a.points(pts)) return RTERROR;
  bool closed = a.more() && a.flag();
  if (!a.end()) return RTERROR;
  if (pts.size() < 2) return frame::failBadArg(MsgStyle::Colon, 1), RTERROR;
  std::vector<AcDbObjectId> made;
  size_t n = pts.size(), segments = closed && n > 2 ? n : n - 1;
  for (size_t i = 0; i < segments; ++i) {
    AcDbObjectId id;
    if (makeLine(id, pts[i], pts[(i + 1) % n]) == Acad::eOk) made.push_back(id);
  }
  return made.empty() ? retNil() : frame::retList(RbFromObjectIds(made));
}

// A circle by centre and radius, by two points of a diameter, or through
// three points.
int lispMakeCircle() {
  Args a(kBang);
  AcGePoint3d p1, p2, p3;
  if (!a.point(p1)) return RTERROR;
  AcDbObjectId id;
  if (a.nextIsNumber()) {
    double r = 0;
    if (!a.real(r) || !a.end()) return RTERROR;
    if (!(r > 0)) return frame::failBadArg(MsgStyle::Bang, 2), RTERROR;
    return retMade(makeCircle(id, p1, r), id);
  }
  if (!a.point(p2)) return RTERROR;
  if (!a.more()) return retMade(makeCircle2P(id, p1, p2), id);
  if (!a.point(p3) || !a.end()) return RTERROR;
  return retMade(makeCircle3P(id, p1, p2, p3), id);
}

// An arc by centre, radius, start and end angle (counter-clockwise), or
// from the first point through the second to the third.
int lispMakeArc() {
  Args a(kBang);
  AcGePoint3d p1, p2, p3;
  if (!a.point(p1)) return RTERROR;
  AcDbObjectId id;
  if (a.nextIsNumber()) {
    double r = 0, start = 0, end = 0;
    if (!a.real(r) || !a.real(start) || !a.real(end) || !a.end()) return RTERROR;
    if (!(r > 0)) return frame::failBadArg(MsgStyle::Bang, 2), RTERROR;
    return retMade(makeArc(id, p1, r, start, end), id);
  }
  if (!a.point(p2) || !a.point(p3) || !a.end()) return RTERROR;
  return retMade(makeArc3P(id, p1, p2, p3), id);
}

// A wipeout whose frame is the polygon of the points.
int lispMakeWipeout() {
  Args a(kColon);
  std::vector<AcGePoint3d> pts;
  if (!a.points(pts) || !a.end()) return RTERROR;
  AcGePoint2dArray poly;
  for (const AcGePoint3d& p : pts) poly.emplace_back(p.x, p.y);
  auto* w = new AcDbWipeout();
  if (w->setFrom(poly) != Acad::eOk) {
    delete w;
    return frame::failBadArg(MsgStyle::Colon, 1), RTERROR;
  }
  AcDbObjectId id;
  return retMade(appendToSpace(w, id), id);
}

// A single-line text: point, content, height, optional rotation.
int lispDrawText() {
  Args a(kLineDot);
  AcGePoint3d p;
  std::u16string text;
  double height = 0, rotation = 0;
  if (!a.point(p) || !a.string(text) || !a.real(height)) return RTERROR;
  if (a.more() && !a.real(rotation)) return RTERROR;
  if (!a.end()) return RTERROR;
  if (!(height > 0)) return frame::failBadArg(MsgStyle::LineDot, 3), RTERROR;
  AcDbObjectId id;
  return retMade(makeText(id, p, height, text.c_str(), rotation), id);
}

}  // namespace zepk::drawing
