// Single-line text and mtext as text primitives, placed by the font's
// metrics.
#include <cmath>

#include "host/dbmtext.h"
#include "host/dbsymtb.h"
#include "host/render/entities.h"
#include "host/render/mtext.h"
#include "host/render/text.h"

namespace zepk::render {

namespace {

// The text size of the entity's style, for texts of no height.
double styleHeight(AcDbObjectId style) {
  double h = 0;
  AcDbTextStyleTableRecord* rec = nullptr;
  if (!style.isNull() && acdbOpenObject(rec, style, AcDb::kForRead) == Acad::eOk) {
    h = rec->textSize();
    rec->close();
  }
  return h > 0 ? h : 2.5;
}

}  // namespace

void drawText(const AcDbText* t, Sink& s, const std::u16string* shown) {
  std::u16string plain = decodeTextCodes(shown ? *shown : t->textString());
  if (plain.empty()) return;
  double h = t->height() > 0 ? t->height() : styleHeight(t->textStyle());
  double wf = t->widthFactor() > 0 ? t->widthFactor() : 1.0;
  double rot = t->rotation();
  AcGeVector3d n = t->normal().isZeroLength() ? AcGeVector3d::kZAxis : t->normal().normal();
  AcGeMatrix3d ocs = AcGeMatrix3d::planeToWorld(n);
  AcGePoint3d at = fromOcs(n, t->position());
  double width = textAdvance(plain) * h * wf;
  int hm = t->horizontalMode(), vm = t->verticalMode();
  if (hm == AcDb::kTextAlign || hm == AcDb::kTextFit) {
    // The text runs from the position to the alignment point: aligned
    // text keeps its proportions (the height follows), fitted text its
    // height (the width factor follows).
    AcGePoint3d b = fromOcs(n, t->alignmentPoint());
    double len = at.distanceTo(b);
    if (len > 0 && width > 0) {
      AcGeVector3d d = b - at;
      AcGePoint3d local(d.x, d.y, d.z);
      local.transformBy(AcGeMatrix3d::worldToPlane(n));
      rot = std::atan2(local.y, local.x);
      if (hm == AcDb::kTextAlign) h *= len / width;
      else wf *= len / width;
      width = len;
    }
  } else if (hm != AcDb::kTextLeft || vm != AcDb::kTextBase) {
    at = fromOcs(n, t->alignmentPoint());
    double dx = 0, dy = 0;
    if (hm == AcDb::kTextCenter || hm == AcDb::kTextMid) dx = -width / 2;
    else if (hm == AcDb::kTextRight) dx = -width;
    if (hm == AcDb::kTextMid) dy = -h / 2;
    else if (vm == AcDb::kTextTop) dy = -h;
    else if (vm == AcDb::kTextVertMid) dy = -h / 2;
    else if (vm == AcDb::kTextBottom) dy = fontDescent() * h;
    if (t->isMirroredInX()) dx = -dx;
    if (t->isMirroredInY()) dy = -dy;
    AcGeVector3d x = ocs.getCsXAxis() * std::cos(rot) + ocs.getCsYAxis() * std::sin(rot);
    AcGeVector3d y = n.crossProduct(x);
    at = at + x * dx + y * dy;
  }
  AcGeVector3d x = ocs.getCsXAxis() * std::cos(rot) + ocs.getCsYAxis() * std::sin(rot);
  // Backwards text runs the other way with the same up; upside-down text
  // the same way with up turned down. Both through the normal.
  AcGeVector3d dir = x, normal = n;
  if (t->isMirroredInX()) dir = -dir, normal = -normal;
  if (t->isMirroredInY()) normal = -normal;
  s.text(at, normal, dir, h, wf, t->oblique(), plain.c_str());
}

void drawMText(const AcDbMText* t, Sink& s) {
  double h = t->textHeight() > 0 ? t->textHeight() : styleHeight(t->textStyle());
  int a = static_cast<int>(t->attachment()) - 1;
  if (a < 0 || a > 8) a = 0;
  int column = a % 3, row = a / 3;
  MTextLayout lay = layoutMText(t->contents(), h, t->width(), t->lineSpacingFactor(), column,
                                [](std::u16string_view v) { return textAdvance(v); });
  if (lay.runs.empty()) return;
  AcGeVector3d n = t->normal().isZeroLength() ? AcGeVector3d::kZAxis : t->normal().normal();
  AcGeVector3d x = t->direction();
  x = x - n * x.dotProduct(n);
  if (x.isZeroLength()) {
    AcGeMatrix3d ocs = AcGeMatrix3d::planeToWorld(n);
    x = ocs.getCsXAxis() * std::cos(t->rotation()) + ocs.getCsYAxis() * std::sin(t->rotation());
  }
  x = x.normal();
  AcGeVector3d y = n.crossProduct(x);
  double box = t->width() > 0 ? t->width() : lay.width;
  AcGePoint3d topLeft = t->location() - x * (box * column / 2.0) + y * (lay.height * row / 2.0);
  AcCmEntityColor was = s.trueColor();
  if (t->backgroundFillOn()) {
    // The mask behind the text: its box grown by the border factor, in
    // the colour given or in the background's.
    double m = (t->backgroundScaleFactor() > 1 ? t->backgroundScaleFactor() - 1 : 0) * h / 2;
    AcGePoint3d c0 = topLeft - x * m + y * m, c2 = topLeft + x * (box + m) - y * (lay.height + m);
    AcGePoint3d corners[4] = {c0, c0 + x * (box + 2 * m), c2, c2 - x * (box + 2 * m)};
    AcCmEntityColor fill;
    if (t->useBackgroundColorOn()) fill.setColorMethod(AcCmEntityColor::kNone);
    else fill = t->backgroundFillColor();
    s.setTrueColor(fill);
    AcGiFillType type = s.fillType();
    s.setFillType(kAcGiFillAlways);
    s.polygon(4, corners);
    s.setFillType(type);
    s.setTrueColor(was);
  }
  for (const MTextRun& r : lay.runs) {
    if (r.trueColor >= 0) {
      AcCmEntityColor c;
      c.setRGB(static_cast<Adesk::UInt32>(r.trueColor));
      s.setTrueColor(c);
    } else if (r.color > 0) {
      s.setColor(static_cast<Adesk::UInt16>(r.color));
    } else {
      s.setTrueColor(was);
    }
    AcGePoint3d at = topLeft + x * r.x + y * r.y;
    s.text(at, n, x, r.height, r.widthFactor, r.oblique, r.text.c_str());
    if (r.underline) {
      AcGePoint3d u[2] = {at - y * (r.height * 0.2), at + x * r.width - y * (r.height * 0.2)};
      s.polyline(2, u);
    }
  }
  s.setTrueColor(was);
}

}  // namespace zepk::render
