// Commands that draw: ARC in its point, centre, angle, length, direction
// and radius forms, PLINE with widths and arcs, and INSERT (-INSERT) of a
// block of the drawing or of a drawing file.
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "host/dbents.h"
#include "host/dbpl.h"
#include "host/dbsymtb.h"
#include "host/editor/cmd_common.h"
#include "host/editor/commands.h"
#include "host/editor/input.h"
#include "host/editor/sysvars.h"
#include "host/gemat3d.h"
#include "host/lisp/units.h"
#include "host/system/utf.h"

namespace zepk::editor {

namespace {

using namespace cmd;

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2 * kPi;

// In [0, 2 pi); a hair below a whole turn is 0.
double wrap(double a) {
  a = std::fmod(a, kTwoPi);
  if (a < 0) a += kTwoPi;
  return a > kTwoPi - 1e-12 ? 0 : a;
}

double angleOf(const double a[3], const double b[3]) { return std::atan2(b[1] - a[1], b[0] - a[0]); }
double dist2d(const double a[3], const double b[3]) { return std::hypot(b[0] - a[0], b[1] - a[1]); }

std::u16string showAngle(double radians) {
  return lisp::formatAngle(wrap(radians), sysInt(u"AUNITS", 0), sysInt(u"AUPREC", 0));
}

// A signed angle typed in the drawing's angle units (an included angle:
// negative runs clockwise).
int getSignedAngle(const std::u16string& prompt, double* out) {
  for (;;) {
    std::u16string s;
    int st = getString(false, prompt, &s);
    if (st != RTNORM) return st;
    bool neg = !s.empty() && s[0] == u'-';
    std::optional<double> v = lisp::parseAngle(neg ? s.substr(1) : s, sysInt(u"AUNITS", 0));
    if (v && !s.empty()) {
      double a = *v;
      if (sysInt(u"ANGDIR", 0) == 1) a = -a;
      *out = neg ? -a : a;
      return RTNORM;
    }
    say("Requires valid numeric angle or second point.\n");
  }
}

// The plane geometry of an arc from s to e turning by sweep (positive
// counter-clockwise): its centre and radius.
bool arcBySweep(const double s[3], const double e[3], double sweep, double c[3], double* r) {
  double chord = dist2d(s, e);
  if (chord == 0 || std::fabs(std::sin(sweep / 2)) < 1e-12) return false;
  double mx = (s[0] + e[0]) / 2, my = (s[1] + e[1]) / 2;
  double nx = -(e[1] - s[1]) / chord, ny = (e[0] - s[0]) / chord;  // left of the chord
  double k = chord / 2 / std::tan(sweep / 2);
  c[0] = mx + nx * k;
  c[1] = my + ny * k;
  c[2] = s[2];
  *r = chord / 2 / std::fabs(std::sin(sweep / 2));
  return true;
}

// Adds the arc from s to e turning by sweep.
void addArcBySweep(const double s[3], const double e[3], double sweep) {
  double c[3], r = 0;
  if (!arcBySweep(s, e, sweep, c, &r)) {
    say("Invalid arc.\n");
    return;
  }
  double a0 = angleOf(c, s), a1 = angleOf(c, e);
  if (sweep < 0) std::swap(a0, a1);
  addEntity(new AcDbArc(AcGePoint3d(c[0], c[1], c[2]), r, wrap(a0), wrap(a1)));
}

// The arc about c from s turning by sweep.
void addArcAbout(const double c[3], const double s[3], double sweep) {
  double r = dist2d(c, s);
  if (r == 0 || sweep == 0) {
    say("Invalid arc.\n");
    return;
  }
  double a0 = angleOf(c, s), a1 = a0 + sweep;
  if (sweep < 0) std::swap(a0, a1);
  addEntity(new AcDbArc(AcGePoint3d(c[0], c[1], s[2]), r, wrap(a0), wrap(a1)));
}

// Counter-clockwise turn from s to e about c.
double ccwSweep(const double c[3], const double s[3], const double e[3]) {
  double t = wrap(angleOf(c, e) - angleOf(c, s));
  return t == 0 ? kTwoPi : t;
}

// The sweep of the arc through three points (negative when clockwise).
bool threePointSweep(const double a[3], const double b[3], const double e[3], double* sweep) {
  double d = 2 * ((b[0] - a[0]) * (e[1] - a[1]) - (b[1] - a[1]) * (e[0] - a[0]));
  if (std::fabs(d) < 1e-12) return false;
  double ab = (b[0] - a[0]) * (b[0] + a[0]) + (b[1] - a[1]) * (b[1] + a[1]);
  double ae = (e[0] - a[0]) * (e[0] + a[0]) + (e[1] - a[1]) * (e[1] + a[1]);
  double c[3] = {(ab * (e[1] - a[1]) - ae * (b[1] - a[1])) / d, (ae * (b[0] - a[0]) - ab * (e[0] - a[0])) / d, a[2]};
  double toEnd = ccwSweep(c, a, e), toMid = ccwSweep(c, a, b);
  *sweep = toMid < toEnd ? toEnd : toEnd - kTwoPi;
  return true;
}

// The turn of a chord of that length on a circle of radius r: positive
// lengths the minor arc, negative the major.
bool chordSweep(double length, double r, double* sweep) {
  if (r == 0 || std::fabs(length) > 2 * r) return false;
  double t = 2 * std::asin(std::fabs(length) / (2 * r));
  *sweep = length >= 0 ? t : kTwoPi - t;
  return true;
}

// ARC after a start point and a centre: end point, included angle or
// chord length.
void arcFromCenter(const double s[3], const double c[3]) {
  double e[3];
  initGet(0, u"Angle Length");
  int st = getPoint(c, u"\nSpecify end point of arc or [Angle/chord Length]: ", e);
  if (st == RTNORM) {
    addArcAbout(c, s, ccwSweep(c, s, e));
    return;
  }
  if (st != RTKWORD) return;
  if (lastInputKeyword() == u"Angle") {
    double a = 0;
    if (getSignedAngle(u"\nSpecify included angle: ", &a) != RTNORM) return;
    addArcAbout(c, s, a);
    return;
  }
  double len = 0, sweep = 0;
  initGet(RSG_NOZERO, u"");
  if (getReal(u"\nSpecify length of chord: ", &len, false, s) != RTNORM) return;
  if (!chordSweep(len, dist2d(c, s), &sweep)) {
    say("Invalid arc.\n");
    return;
  }
  addArcAbout(c, s, sweep);
}

void cmdArc() {
  double s[3], c[3], m[3], e[3];
  initGet(0, u"Center");
  int st = getPoint(nullptr, u"\nSpecify start point of arc or [Center]: ", s);
  if (st == RTKWORD) {
    if (getPoint(nullptr, u"\nSpecify center point of arc: ", c) != RTNORM) return;
    if (getPoint(c, u"\nSpecify start point of arc: ", s) != RTNORM) return;
    arcFromCenter(s, c);
    return;
  }
  if (st != RTNORM) return;
  initGet(0, u"Center End");
  st = getPoint(s, u"\nSpecify second point of arc or [Center/End]: ", m);
  if (st == RTNORM) {
    if (getPoint(m, u"\nSpecify end point of arc: ", e) != RTNORM) return;
    double sweep = 0;
    if (!threePointSweep(s, m, e, &sweep)) {
      say("Invalid arc.\n");
      return;
    }
    addArcBySweep(s, e, sweep);
    return;
  }
  if (st != RTKWORD) return;
  if (lastInputKeyword() == u"Center") {
    if (getPoint(s, u"\nSpecify center point of arc: ", c) != RTNORM) return;
    arcFromCenter(s, c);
    return;
  }
  if (getPoint(s, u"\nSpecify end point of arc: ", e) != RTNORM) return;
  initGet(0, u"Angle Direction Radius");
  st = getPoint(e, u"\nSpecify center point of arc or [Angle/Direction/Radius]: ", c);
  if (st == RTNORM) {
    double r = dist2d(c, s);
    // The end lies on the circle through the start: only its direction counts.
    addArcAbout(c, s, ccwSweep(c, s, e));
    (void)r;
    return;
  }
  if (st != RTKWORD) return;
  std::u16string k = lastInputKeyword();
  if (k == u"Angle") {
    double a = 0;
    if (getSignedAngle(u"\nSpecify included angle: ", &a) != RTNORM) return;
    addArcBySweep(s, e, a);
  } else if (k == u"Direction") {
    double d = 0;
    if (getAngle(s, u"\nSpecify tangent direction for the start point of arc: ", &d) != RTNORM) return;
    double turn = std::remainder(angleOf(s, e) - d, kTwoPi);
    addArcBySweep(s, e, 2 * turn);
  } else {
    double r = 0, sweep = 0;
    initGet(RSG_NOZERO, u"");
    if (getReal(u"\nSpecify radius of arc: ", &r, false, e) != RTNORM) return;
    if (!chordSweep(r >= 0 ? dist2d(s, e) : -dist2d(s, e), std::fabs(r), &sweep)) {
      say("Invalid arc.\n");
      return;
    }
    addArcBySweep(s, e, sweep);
  }
}

// ------------------------------------------------------------ PLINE

struct PlineState {
  struct Vtx {
    double p[3];
    double bulge = 0, startWidth = 0, endWidth = 0;
  };
  std::vector<Vtx> v;
  double width = 0;  // of the segments to come
  double nextStart = 0, nextEnd = 0;

  const double* last() const { return v.back().p; }
  // The direction the polyline leaves its last point in.
  double tangent() const {
    if (v.size() < 2) return 0;
    const Vtx& a = v[v.size() - 2];
    const Vtx& b = v.back();
    return angleOf(a.p, b.p) + 2 * std::atan(a.bulge);
  }
  void add(const double p[3], double bulge) {
    Vtx& a = v.back();
    a.bulge = bulge;
    a.startWidth = nextStart;
    a.endWidth = nextEnd;
    nextStart = nextEnd;
    Vtx b;
    for (int i = 0; i < 3; ++i) b.p[i] = p[i];
    v.push_back(b);
  }
  void undo() {
    v.pop_back();
    Vtx& a = v.back();
    nextStart = a.startWidth;
    nextEnd = a.endWidth;
    a.bulge = 0;
  }
};

// Width or Halfwidth: the widths of the next segment.
bool askWidths(PlineState& pl, bool half) {
  double k = half ? 0.5 : 1.0;
  double start = pl.nextEnd * k, end = 0;
  initGet(RSG_NONEG, u"");
  int st = getReal(half ? u"\nSpecify starting half-width <" + sys::fromUtf8(fmt(start)) + u">: "
                        : u"\nSpecify starting width <" + sys::fromUtf8(fmt(start)) + u">: ",
                   &start, false, pl.last());
  if (st != RTNORM && st != RTNONE) return false;
  end = start;
  initGet(RSG_NONEG, u"");
  st = getReal(half ? u"\nSpecify ending half-width <" + sys::fromUtf8(fmt(end)) + u">: "
                    : u"\nSpecify ending width <" + sys::fromUtf8(fmt(end)) + u">: ",
               &end, false, pl.last());
  if (st != RTNORM && st != RTNONE) return false;
  pl.nextStart = start / k;
  pl.nextEnd = end / k;
  setSysVar(u"PLINEWID", SysValue::real(pl.nextEnd));
  return true;
}

void finishPline(PlineState& pl, bool closed) {
  if (pl.v.size() < 2) return;
  auto* p = new AcDbPolyline(static_cast<unsigned int>(pl.v.size()));
  for (size_t i = 0; i < pl.v.size(); ++i) {
    const PlineState::Vtx& x = pl.v[i];
    bool lastOpen = i + 1 == pl.v.size() && !closed;  // no segment starts there
    p->addVertexAt(static_cast<unsigned int>(i), AcGePoint2d(x.p[0], x.p[1]), lastOpen ? 0 : x.bulge,
                   lastOpen ? pl.nextStart : x.startWidth, lastOpen ? pl.nextStart : x.endWidth);
  }
  p->setElevation(pl.v[0].p[2]);
  p->setClosed(closed);
  addEntity(p);
}

// Arc mode: returns false when the command ends.
enum class Mode { Line, Arc, Done, Cancel };

Mode plineArc(PlineState& pl) {
  initGet(0, u"Angle CEnter CLose Direction Halfwidth Line Radius Second Undo Width");
  double e[3];
  const double* s = pl.last();
  int st = getPoint(s,
                    u"\nSpecify endpoint of arc or\n"
                    u"[Angle/CEnter/CLose/Direction/Halfwidth/Line/Radius/Second pt/Undo/Width]: ",
                    e);
  if (st == RTNONE) return Mode::Done;
  if (st == RTNORM) {
    double turn = std::remainder(angleOf(s, e) - pl.tangent(), kTwoPi);
    pl.add(e, std::tan(turn / 2));
    return Mode::Arc;
  }
  if (st != RTKWORD) return Mode::Cancel;
  std::u16string k = lastInputKeyword();
  auto addSweep = [&](const double end[3], double sweep) { pl.add(end, std::tan(sweep / 4)); };
  if (k == u"Line") return Mode::Line;
  if (k == u"Undo") {
    if (pl.v.size() < 2) {
      say("All segments already undone.\n");
    } else {
      pl.undo();
    }
    return Mode::Arc;
  }
  if (k == u"Width" || k == u"Halfwidth") return askWidths(pl, k == u"Halfwidth") ? Mode::Arc : Mode::Cancel;
  if (k == u"CLose") {
    if (pl.v.size() < 2) return Mode::Arc;
    double first[3] = {pl.v[0].p[0], pl.v[0].p[1], pl.v[0].p[2]};
    double turn = std::remainder(angleOf(s, first) - pl.tangent(), kTwoPi);
    pl.v.back().bulge = std::tan(turn / 2);
    pl.v.back().startWidth = pl.nextStart;
    pl.v.back().endWidth = pl.nextEnd;
    finishPline(pl, true);
    return Mode::Cancel;  // drawn
  }
  if (k == u"Angle") {
    double a = 0;
    if (getSignedAngle(u"\nSpecify included angle: ", &a) != RTNORM) return Mode::Cancel;
    initGet(0, u"CEnter Radius");
    st = getPoint(s, u"\nSpecify endpoint of arc or [CEnter/Radius]: ", e);
    if (st == RTNORM) {
      addSweep(e, a);
      return Mode::Arc;
    }
    if (st != RTKWORD) return Mode::Cancel;
    if (lastInputKeyword() == u"CEnter") {
      double c[3];
      if (getPoint(s, u"\nSpecify center point of arc: ", c) != RTNORM) return Mode::Cancel;
      double r = dist2d(c, s), a1 = angleOf(c, s) + a;
      double end[3] = {c[0] + r * std::cos(a1), c[1] + r * std::sin(a1), s[2]};
      addSweep(end, a);
      return Mode::Arc;
    }
    double r = 0, dir = 0;
    initGet(RSG_NOZERO | RSG_NONEG, u"");
    if (getReal(u"\nSpecify radius of arc: ", &r, false, s) != RTNORM) return Mode::Cancel;
    double chordDir = pl.tangent() + a / 2;
    st = getAngle(s, u"\nSpecify direction of chord for arc <" + showAngle(chordDir) + u">: ", &dir);
    if (st == RTNONE) dir = chordDir;
    else if (st != RTNORM) return Mode::Cancel;
    double chord = 2 * r * std::fabs(std::sin(a / 2));
    double end[3] = {s[0] + chord * std::cos(dir), s[1] + chord * std::sin(dir), s[2]};
    addSweep(end, a);
    return Mode::Arc;
  }
  if (k == u"CEnter") {
    double c[3];
    if (getPoint(s, u"\nSpecify center point of arc: ", c) != RTNORM) return Mode::Cancel;
    initGet(0, u"Angle Length");
    st = getPoint(c, u"\nSpecify endpoint of arc or [Angle/Length]: ", e);
    double r = dist2d(c, s), sweep = 0;
    if (st == RTNORM) {
      sweep = ccwSweep(c, s, e);
    } else if (st == RTKWORD && lastInputKeyword() == u"Angle") {
      if (getSignedAngle(u"\nSpecify included angle: ", &sweep) != RTNORM) return Mode::Cancel;
    } else if (st == RTKWORD) {
      double len = 0;
      if (getReal(u"\nSpecify length of chord: ", &len, false, s) != RTNORM) return Mode::Cancel;
      if (!chordSweep(len, r, &sweep)) {
        say("Invalid arc.\n");
        return Mode::Arc;
      }
    } else {
      return Mode::Cancel;
    }
    double a1 = angleOf(c, s) + sweep;
    double end[3] = {c[0] + r * std::cos(a1), c[1] + r * std::sin(a1), s[2]};
    addSweep(end, sweep);
    return Mode::Arc;
  }
  if (k == u"Direction") {
    double d = 0;
    if (getAngle(s, u"\nSpecify the tangent direction for the start point of arc: ", &d) != RTNORM)
      return Mode::Cancel;
    if (getPoint(s, u"\nSpecify endpoint of the arc: ", e) != RTNORM) return Mode::Cancel;
    double turn = std::remainder(angleOf(s, e) - d, kTwoPi);
    pl.add(e, std::tan(turn / 2));
    return Mode::Arc;
  }
  if (k == u"Radius") {
    double r = 0;
    initGet(RSG_NOZERO | RSG_NONEG, u"");
    if (getReal(u"\nSpecify radius of arc: ", &r, false, s) != RTNORM) return Mode::Cancel;
    initGet(0, u"Angle");
    st = getPoint(s, u"\nSpecify endpoint of arc or [Angle]: ", e);
    double sweep = 0;
    if (st == RTNORM) {
      if (!chordSweep(dist2d(s, e), r, &sweep)) {
        say("Invalid arc.\n");
        return Mode::Arc;
      }
      addSweep(e, sweep);
      return Mode::Arc;
    }
    if (st != RTKWORD) return Mode::Cancel;
    if (getSignedAngle(u"\nSpecify included angle: ", &sweep) != RTNORM) return Mode::Cancel;
    double dir = 0, chordDir = pl.tangent() + sweep / 2;
    st = getAngle(s, u"\nSpecify direction of chord for arc <" + showAngle(chordDir) + u">: ", &dir);
    if (st == RTNONE) dir = chordDir;
    else if (st != RTNORM) return Mode::Cancel;
    double chord = 2 * r * std::fabs(std::sin(sweep / 2));
    double end[3] = {s[0] + chord * std::cos(dir), s[1] + chord * std::sin(dir), s[2]};
    addSweep(end, sweep);
    return Mode::Arc;
  }
  // Second pt: the arc through a second point to its end.
  double m[3];
  if (getPoint(s, u"\nSpecify second point on arc: ", m) != RTNORM) return Mode::Cancel;
  if (getPoint(m, u"\nSpecify end point of arc: ", e) != RTNORM) return Mode::Cancel;
  double sweep = 0;
  if (!threePointSweep(s, m, e, &sweep)) {
    say("Invalid arc.\n");
    return Mode::Arc;
  }
  addSweep(e, sweep);
  return Mode::Arc;
}

Mode plineLine(PlineState& pl) {
  bool canClose = pl.v.size() >= 2;
  initGet(0, canClose ? u"Arc Close Halfwidth Length Undo Width" : u"Arc Halfwidth Length Undo Width");
  double p[3];
  int st = getPoint(pl.last(),
                    canClose ? u"\nSpecify next point or [Arc/Close/Halfwidth/Length/Undo/Width]: "
                             : u"\nSpecify next point or [Arc/Halfwidth/Length/Undo/Width]: ",
                    p);
  if (st == RTNONE) return Mode::Done;
  if (st == RTNORM) {
    pl.add(p, 0);
    return Mode::Line;
  }
  if (st != RTKWORD) return Mode::Cancel;
  std::u16string k = lastInputKeyword();
  if (k == u"Arc") return Mode::Arc;
  if (k == u"Close") {
    pl.v.back().startWidth = pl.nextStart;
    pl.v.back().endWidth = pl.nextEnd;
    finishPline(pl, true);
    return Mode::Cancel;
  }
  if (k == u"Undo") {
    if (pl.v.size() < 2) {
      say("All segments already undone.\n");
    } else {
      pl.undo();
    }
    return Mode::Line;
  }
  if (k == u"Length") {
    double len = 0;
    if (getReal(u"\nSpecify length of line: ", &len, false, pl.last()) != RTNORM) return Mode::Cancel;
    double a = pl.tangent();
    const double* s = pl.last();
    double e[3] = {s[0] + len * std::cos(a), s[1] + len * std::sin(a), s[2]};
    pl.add(e, 0);
    return Mode::Line;
  }
  return askWidths(pl, k == u"Halfwidth") ? Mode::Line : Mode::Cancel;
}

void cmdPline() {
  PlineState pl;
  PlineState::Vtx first;
  if (getPoint(nullptr, u"\nSpecify start point: ", first.p) != RTNORM) return;
  pl.v.push_back(first);
  pl.width = sysReal(u"PLINEWID", 0);
  pl.nextStart = pl.nextEnd = pl.width;
  say("Current line-width is " + fmt(pl.width) + "\n");
  Mode mode = Mode::Line;
  for (;;) {
    mode = mode == Mode::Line ? plineLine(pl) : plineArc(pl);
    if (mode == Mode::Done) {
      finishPline(pl, false);
      return;
    }
    if (mode == Mode::Cancel) return;
  }
}

// ------------------------------------------------------------ INSERT

AcDbObjectId findBlock(const std::u16string& name) {
  AcDbBlockTable* t = nullptr;
  AcDbObjectId id;
  if (db()->getBlockTable(t, AcDb::kForRead) != Acad::eOk) return id;
  t->getAt(name.c_str(), id);
  t->close();
  return id;
}

bool fileExists(const std::u16string& path) {
  std::FILE* f = std::fopen(sys::toUtf8(path).c_str(), "rb");
  if (f) std::fclose(f);
  return f != nullptr;
}

// A block from a drawing file, made under the name given.
AcDbObjectId blockFromFile(const std::u16string& name, std::u16string path) {
  if (!fileExists(path) && fileExists(path + u".dxf")) path += u".dxf";
  auto src = std::make_unique<AcDbDatabase>(false);
  if (src->readDwgFile(path.c_str()) != Acad::eOk) {
    std::string msg = src->lastFileError();
    say("\"" + sys::toUtf8(path) + "\": Can't find or read file" + (msg.empty() ? "" : ": " + msg) + "\n");
    return AcDbObjectId();
  }
  AcDbObjectId id;
  Acad::ErrorStatus es = db()->insert(id, name.c_str(), src.get());
  if (es != Acad::eOk) {
    say("Cannot make block \"" + sys::toUtf8(name) + "\" of " + sys::toUtf8(path) + ".\n");
    return AcDbObjectId();
  }
  return id;
}

// The block an answer names: "name", "name=file" or a file path.
AcDbObjectId blockOfAnswer(const std::u16string& answer, std::u16string* name) {
  size_t eq = answer.find(u'=');
  if (eq != std::u16string::npos) {
    *name = answer.substr(0, eq);
    return blockFromFile(*name, answer.substr(eq + 1));
  }
  size_t slash = answer.find_last_of(u"/\\");
  std::u16string base = slash == std::u16string::npos ? answer : answer.substr(slash + 1);
  if (base.size() > 4 && upper(base.substr(base.size() - 4)) == u".DXF") base.resize(base.size() - 4);
  *name = base;
  if (slash == std::u16string::npos) {
    AcDbObjectId id = findBlock(base);
    if (!id.isNull()) return id;
  }
  std::u16string path = answer;
  if (!fileExists(path) && !fileExists(path + u".dxf")) {
    say("\"" + sys::toUtf8(base) + ".dxf\": Can't find file in search path.\n");
    return AcDbObjectId();
  }
  AcDbObjectId id = findBlock(base);
  return id.isNull() ? blockFromFile(base, path) : id;
}

// A scale factor or a point (the opposite corner); RTKWORD for keywords.
int scaleOrCorner(const std::u16string& prompt, const char16_t* keywords, double* factor, double corner[3],
                  bool* isCorner, const double* base) {
  for (;;) {
    initGet(RSG_OTHER, keywords);
    int st = getPoint(base, prompt, corner);
    if (st == RTNORM) {
      *isCorner = true;
      return RTNORM;
    }
    if (st != RTKWORD) return st;
    std::u16string k = lastInputKeyword();
    if (k == u"Corner" || k == u"XYZ") return RTKWORD;
    double v = 0;
    if (parseReal(k, &v) && v != 0) {
      *isCorner = false;
      *factor = v;
      return RTNORM;
    }
    say(v == 0 && parseReal(k, &v) ? "Value must be nonzero.\n" : "Requires numeric value.\n");
  }
}

// A scale factor with a default; false when cancelled.
bool askFactor(const std::u16string& prompt, double dflt, double* out) {
  initGet(RSG_NOZERO, u"");
  int st = getReal(prompt, out, false, nullptr);
  if (st == RTNONE) *out = dflt;
  return st == RTNORM || st == RTNONE;
}

void cmdInsert() {
  std::u16string last = sysString(u"INSNAME");
  std::u16string answer;
  if (getString(false, u"\nEnter block name or [?] <" + last + u">: ", &answer) != RTNORM) return;
  if (answer.empty()) answer = last;
  if (answer.empty()) return;
  if (answer == u"?") {
    AcDbBlockTable* t = nullptr;
    if (db()->getBlockTable(t, AcDb::kForRead) != Acad::eOk) return;
    AcDbBlockTableIterator* it = nullptr;
    say("Defined blocks.\n");
    if (t->newIterator(it) == Acad::eOk) {
      for (; !it->done(); it->step()) {
        AcDbBlockTableRecord* rec = nullptr;
        if (it->getRecord(rec, AcDb::kForRead) != Acad::eOk) continue;
        const ACHAR* n = nullptr;
        rec->getName(n);
        if (n && n[0] != u'*') say("  \"" + sys::toUtf8(n) + "\"\n");
        rec->close();
      }
      delete it;
    }
    t->close();
    return;
  }
  std::u16string name;
  AcDbObjectId block = blockOfAnswer(answer, &name);
  if (block.isNull()) return;
  setSysVar(u"INSNAME", SysValue::string(name));

  double ins[3];
  double sx = 1, sy = 1, sz = 1, rot = 0;
  bool scaleSet = false, rotSet = false;
  for (;;) {
    initGet(RSG_NONULL, u"Basepoint Scale X Y Z Rotate");
    int st = getPoint(nullptr, u"\nSpecify insertion point or [Basepoint/Scale/X/Y/Z/Rotate]: ", ins);
    if (st == RTNORM) break;
    if (st != RTKWORD) return;
    std::u16string k = lastInputKeyword();
    if (k == u"Rotate") {
      st = getAngle(nullptr, u"\nSpecify rotation angle <0>: ", &rot);
      if (st != RTNORM && st != RTNONE) return;
      rotSet = true;
    } else if (k == u"Basepoint") {
      double b[3];
      if (getPoint(nullptr, u"\nSpecify base point: ", b) != RTNORM) return;
    } else {
      double f = 1;
      if (!askFactor(k == u"Scale" ? u"\nSpecify scale factor for XYZ axes <1>: "
                                   : u"\nSpecify " + k + u" scale factor <1>: ",
                     1, &f))
        return;
      if (k == u"Scale" || k == u"X") sx = f;
      if (k == u"Scale" || k == u"Y") sy = f;
      if (k == u"Scale" || k == u"Z") sz = f;
      scaleSet = true;
    }
  }
  if (!scaleSet) {
    double corner[3];
    bool isCorner = false;
    int st = scaleOrCorner(u"\nEnter X scale factor, specify opposite corner, or [Corner/XYZ] <1>: ", u"Corner XYZ",
                           &sx, corner, &isCorner, ins);
    if (st == RTKWORD && lastInputKeyword() == u"Corner") {
      if (getPoint(ins, u"\nSpecify opposite corner: ", corner) != RTNORM) return;
      isCorner = true;
      st = RTNORM;
    }
    if (st == RTKWORD) {  // XYZ
      st = scaleOrCorner(u"\nSpecify X scale factor or [Corner] <1>: ", u"Corner", &sx, corner, &isCorner, ins);
      if (st == RTKWORD) {
        if (getPoint(ins, u"\nSpecify opposite corner: ", corner) != RTNORM) return;
        isCorner = true;
        st = RTNORM;
      }
      if (st == RTNONE) sx = 1, st = RTNORM;
      if (st != RTNORM) return;
      if (isCorner) {
        sx = corner[0] - ins[0], sy = corner[1] - ins[1];
        if (sx == 0 || sy == 0) return;
      } else if (!askFactor(u"\nSpecify Y scale factor or <use X scale factor>: ", sx, &sy)) {
        return;
      }
      if (!askFactor(u"\nSpecify Z scale factor or <use X scale factor>: ", sx, &sz)) return;
    } else {
      if (st == RTNONE) sx = 1, st = RTNORM;
      if (st != RTNORM) return;
      if (isCorner) {
        sx = corner[0] - ins[0], sy = corner[1] - ins[1];
        if (sx == 0 || sy == 0) {
          say("Invalid corner.\n");
          return;
        }
      } else if (!askFactor(u"\nEnter Y scale factor <use X scale factor>: ", sx, &sy)) {
        return;
      }
      sz = sx;
    }
  }
  if (!rotSet) {
    int st = getAngle(ins, u"\nSpecify rotation angle <0>: ", &rot);
    if (st == RTNONE) rot = 0;
    else if (st != RTNORM) return;
  }

  // The attribute definitions of the block, in their order, and the values
  // the user gives them.
  struct Att {
    std::unique_ptr<AcDbAttribute> attr;
    std::u16string prompt, value;
    bool ask = false;
  };
  std::vector<Att> atts;
  {
    AcDbBlockTableRecord* rec = nullptr;
    if (acdbOpenObject(rec, block, AcDb::kForRead) != Acad::eOk) return;
    AcDbBlockTableRecordIterator* it = nullptr;
    if (rec->newIterator(it) == Acad::eOk) {
      for (; !it->done(); it->step()) {
        AcDbAttributeDefinition* def = nullptr;
        if (it->getEntity(def) != Acad::eOk) continue;
        if (!def->isConstant()) {
          Att a;
          a.attr = std::make_unique<AcDbAttribute>();
          a.attr->setAttributeFromBlock(def);
          a.prompt = def->prompt().empty() ? def->tag() : def->prompt();
          a.value = def->textString();
          a.ask = !def->isPreset();
          atts.push_back(std::move(a));
        }
        def->close();
      }
      delete it;
    }
    rec->close();
  }
  if (sysInt(u"ATTREQ", 1) == 1) {
    bool any = false;
    for (Att& a : atts) {
      if (!a.ask) continue;
      if (!any) say("Enter attribute values\n");
      any = true;
      std::u16string v;
      std::u16string prompt = u"\n" + a.prompt + (a.value.empty() ? u": " : u" <" + a.value + u">: ");
      if (getString(true, prompt, &v) != RTNORM) return;
      if (!v.empty()) a.value = v;
    }
  }

  auto* ref = new AcDbBlockReference(AcGePoint3d(ins[0], ins[1], ins[2]), block);
  ref->setScaleFactors(AcGeScale3d(sx, sy, sz));
  ref->setRotation(rot);
  AcDbObjectId refId = addEntity(ref);
  if (refId.isNull() || atts.empty()) return;
  AcDbObjectPointer<AcDbBlockReference> r(refId, AcDb::kForWrite);
  if (!r) return;
  AcGePoint3d origin;
  {
    AcDbObjectPointer<AcDbBlockTableRecord> rec(block, AcDb::kForRead);
    if (rec) origin = rec->origin();
  }
  AcGeMatrix3d scale;
  scale.entry[0][0] = sx;
  scale.entry[1][1] = sy;
  scale.entry[2][2] = sz;
  AcGeMatrix3d place = AcGeMatrix3d::translation(AcGeVector3d(ins[0], ins[1], ins[2])) *
                       AcGeMatrix3d::rotation(rot, AcGeVector3d::kZAxis) * scale *
                       AcGeMatrix3d::translation(-origin.asVector());
  for (Att& a : atts) {
    a.attr->setTextString(a.value.c_str());
    // A text cannot take uneven scales; it takes the X scale then.
    if (a.attr->transformBy(place) != Acad::eOk) {
      AcGeMatrix3d even = AcGeMatrix3d::translation(AcGeVector3d(ins[0], ins[1], ins[2])) *
                          AcGeMatrix3d::rotation(rot, AcGeVector3d::kZAxis) *
                          AcGeMatrix3d::scaling(std::fabs(sx)) * AcGeMatrix3d::translation(-origin.asVector());
      a.attr->transformBy(even);
    }
    a.attr->setPropertiesFrom(r.object(), false);
    if (r->appendAttribute(a.attr.get()) == Acad::eOk) a.attr.release();
  }
}

void add(const char16_t* name, AcRxFunctionPtr fn) {
  CommandDef d;
  d.group = u"ZEPK_HOST";
  d.global = d.local = name;
  d.fn = fn;
  d.builtin = true;
  Commands::get().add(d);
}

}  // namespace

void registerDrawCommands() {
  add(u"ARC", cmdArc);
  add(u"PLINE", cmdPline);
  add(u"-INSERT", cmdInsert);
  add(u"INSERT", cmdInsert);
}

}  // namespace zepk::editor
