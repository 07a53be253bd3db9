// Commands that change what is drawn: ROTATE, SCALE, MIRROR, EXPLODE, and
// REDO after U or UNDO.
#include <cmath>
#include <string>
#include <vector>

#include "host/dbents.h"
#include "host/dbhatch.h"
#include "host/dbmtext.h"
#include "host/dbpl.h"
#include "host/dbregion.h"
#include "host/dbsymtb.h"
#include "host/editor/cmd_common.h"
#include "host/editor/commands.h"
#include "host/editor/input.h"
#include "host/gemat3d.h"
#include "host/geplane.h"
#include "host/lisp/units.h"
#include "host/system/utf.h"

namespace zepk::editor {

namespace {

using namespace cmd;

constexpr double kPi = 3.14159265358979323846;

// An angle as the host shows it in prompts: in the drawing's units.
std::u16string showAngle(double radians) {
  return lisp::formatAngle(radians, sysInt(u"AUNITS", 0), sysInt(u"AUPREC", 0));
}

std::u16string showReal(double v) { return sys::fromUtf8(fmt(v)); }

// The defaults the commands offer, remembered for the session.
double lastRotation = 0, lastReferenceAngle = 0, lastScale = 1, lastReferenceLength = 1;

AcGePoint3d pt(const double p[3]) { return AcGePoint3d(p[0], p[1], p[2]); }

// Two points answering "[Points]": the angle or the distance between them.
bool twoPoints(double a[3], double b[3]) {
  if (getPoint(nullptr, u"\nSpecify first point: ", a) != RTNORM) return false;
  return getPoint(a, u"\nSpecify second point: ", b) == RTNORM;
}

// The selection, or its copy: the objects a command changes.
std::vector<AcDbObjectId> targets(const std::vector<AcDbObjectId>& ids, bool copy) {
  return copy ? copyEntities(ids) : ids;
}

void cmdRotate() {
  say("Current positive angle in UCS:  ANGDIR=" +
      std::string(sysInt(u"ANGDIR", 0) == 1 ? "clockwise" : "counterclockwise") +
      "  ANGBASE=" + sys::toUtf8(showAngle(sysReal(u"ANGBASE", 0))) + "\n");
  std::vector<AcDbObjectId> ids;
  if (!selectObjects(&ids) || ids.empty()) return;
  double base[3];
  initGet(RSG_NONULL, u"");
  if (getPoint(nullptr, u"\nSpecify base point: ", base) != RTNORM) return;
  bool copy = false;
  double angle = 0;
  for (;;) {
    initGet(0, u"Copy Reference");
    int st = getAngle(base, u"\nSpecify rotation angle or [Copy/Reference] <" + showAngle(lastRotation) + u">: ",
                      &angle);
    if (st == RTNONE) {
      angle = lastRotation;
      break;
    }
    if (st == RTNORM) break;
    if (st != RTKWORD) return;
    if (lastInputKeyword() == u"Copy") {
      copy = true;
      say("Rotating a copy of the selected objects.\n");
      continue;
    }
    // Reference: the angle the objects stand at now, and the one wanted.
    double ref = 0;
    st = getAngle(nullptr, u"\nSpecify the reference angle <" + showAngle(lastReferenceAngle) + u">: ", &ref);
    if (st == RTNONE) ref = lastReferenceAngle;
    else if (st != RTNORM) return;
    double to = 0;
    initGet(0, u"Points");
    st = getAngle(base, u"\nSpecify the new angle or [Points] <" + showAngle(ref) + u">: ", &to);
    if (st == RTKWORD) {
      double a[3], b[3];
      if (!twoPoints(a, b)) return;
      to = std::atan2(b[1] - a[1], b[0] - a[0]);
    } else if (st == RTNONE) {
      to = ref;
    } else if (st != RTNORM) {
      return;
    }
    lastReferenceAngle = ref;
    angle = to - ref;
    break;
  }
  lastRotation = std::fmod(angle, 2 * kPi);
  if (lastRotation < 0) lastRotation += 2 * kPi;
  transformEntities(targets(ids, copy), AcGeMatrix3d::rotation(angle, AcGeVector3d::kZAxis, pt(base)));
}

void cmdScale() {
  std::vector<AcDbObjectId> ids;
  if (!selectObjects(&ids) || ids.empty()) return;
  double base[3];
  initGet(RSG_NONULL, u"");
  if (getPoint(nullptr, u"\nSpecify base point: ", base) != RTNORM) return;
  bool copy = false;
  double factor = 1;
  for (;;) {
    initGet(RSG_NOZERO | RSG_NONEG, u"Copy Reference");
    int st = getReal(u"\nSpecify scale factor or [Copy/Reference] <" + showReal(lastScale) + u">: ", &factor, false,
                     base);
    if (st == RTNONE) {
      factor = lastScale;
      break;
    }
    if (st == RTNORM) break;
    if (st != RTKWORD) return;
    if (lastInputKeyword() == u"Copy") {
      copy = true;
      say("Scaling a copy of the selected objects.\n");
      continue;
    }
    double ref = 1;
    initGet(RSG_NOZERO | RSG_NONEG, u"");
    st = getReal(u"\nSpecify reference length <" + showReal(lastReferenceLength) + u">: ", &ref, false, nullptr);
    if (st == RTNONE) ref = lastReferenceLength;
    else if (st != RTNORM) return;
    double to = 1;
    initGet(RSG_NOZERO | RSG_NONEG, u"Points");
    st = getReal(u"\nSpecify new length or [Points] <" + showReal(ref) + u">: ", &to, false, base);
    if (st == RTKWORD) {
      double a[3], b[3];
      if (!twoPoints(a, b)) return;
      to = std::hypot(b[0] - a[0], b[1] - a[1], b[2] - a[2]);
      if (to == 0) return;
    } else if (st == RTNONE) {
      to = ref;
    } else if (st != RTNORM) {
      return;
    }
    lastReferenceLength = ref;
    factor = to / ref;
    break;
  }
  lastScale = factor;
  int refused = transformEntities(targets(ids, copy), AcGeMatrix3d::scaling(factor, pt(base)));
  (void)refused;
}

// With MIRRTEXT 0 a mirrored text reads as before: not backwards, turned
// the way of the two along its mirrored baseline that reads left to right.
void keepReadable(AcDbText* t, bool wasBackwards) {
  if (t->isMirroredInX() == wasBackwards) return;  // not mirrored
  t->mirroredInX(wasBackwards);
  double r = t->rotation();
  double c = std::cos(r), s = std::sin(r);
  bool reads = c > 1e-9 || (std::fabs(c) <= 1e-9 && s > 0);
  if (reads) return;
  t->setRotation(std::fmod(r + kPi, 2 * kPi));
  if (t->horizontalMode() == AcDb::kTextAlign || t->horizontalMode() == AcDb::kTextFit) {
    AcGePoint3d p = t->position();
    t->setPosition(t->alignmentPoint());
    t->setAlignmentPoint(p);
  }
}

// Mirrors one entity; texts and a reference's attributes kept readable
// unless MIRRTEXT is 1.
bool mirrorOne(const AcDbObjectId& id, const AcGeMatrix3d& m, bool mirrText) {
  AcDbEntity* e = nullptr;
  if (acdbOpenObject(e, id, AcDb::kForWrite) != Acad::eOk) return false;
  std::vector<std::pair<AcDbObjectId, bool>> attributes;
  AcDbText* text = AcDbText::cast(e);
  bool backwards = text && text->isMirroredInX();
  if (AcDbBlockReference* ref = AcDbBlockReference::cast(e)) {
    AcDbObjectIterator* it = ref->attributeIterator();
    for (; it && !it->done(); it->step()) {
      AcDbText* a = nullptr;
      if (acdbOpenObject(a, it->objectId(), AcDb::kForRead) == Acad::eOk) {
        attributes.emplace_back(it->objectId(), a->isMirroredInX());
        a->close();
      }
    }
    delete it;
  }
  bool ok = e->transformBy(m) == Acad::eOk;
  if (ok && !mirrText && text) keepReadable(text, backwards);
  e->close();
  if (ok && !mirrText)
    for (const auto& [aid, was] : attributes) {
      AcDbText* a = nullptr;
      if (acdbOpenObject(a, aid, AcDb::kForWrite) != Acad::eOk) continue;
      keepReadable(a, was);
      a->close();
    }
  return ok;
}

void cmdMirror() {
  std::vector<AcDbObjectId> ids;
  if (!selectObjects(&ids) || ids.empty()) return;
  double a[3], b[3];
  initGet(RSG_NONULL, u"");
  if (getPoint(nullptr, u"\nSpecify first point of mirror line: ", a) != RTNORM) return;
  for (;;) {
    initGet(RSG_NONULL, u"");
    if (getPoint(a, u"\nSpecify second point of mirror line: ", b) != RTNORM) return;
    if (std::hypot(b[0] - a[0], b[1] - a[1]) > 0) break;
    say("Points must be distinct.\n");
  }
  std::u16string k;
  initGet(0, u"Yes No");
  int st = getKword(u"\nErase source objects? [Yes/No] <N>: ", &k);
  if (st != RTNORM && st != RTNONE) return;
  bool erase = st == RTNORM && k == u"Yes";
  // The plane through the line, upright in the drawing's XY plane.
  AcGeVector3d along(b[0] - a[0], b[1] - a[1], 0);
  AcGeVector3d normal = along.crossProduct(AcGeVector3d::kZAxis);
  normal.normalize();
  AcGeMatrix3d m = AcGeMatrix3d::mirroring(AcGePlane(pt(a), normal));
  bool mirrText = sysInt(u"MIRRTEXT", 0) == 1;
  for (const AcDbObjectId& id : targets(ids, !erase)) mirrorOne(id, m, mirrText);
}

// ------------------------------------------------------------ EXPLODE

// Whether the entity lost widths in exploding (its pieces have none).
bool hadWidth(const AcDbEntity* e) {
  if (const AcDbPolyline* p = AcDbPolyline::cast(e)) return p->hasWidth() || p->constantWidth() != 0;
  if (const AcDb2dPolyline* p = AcDb2dPolyline::cast(e)) {
    if (p->defaultStartWidth() != 0 || p->defaultEndWidth() != 0) return true;
    bool width = false;
    AcDbObjectIterator* it = p->vertexIterator();
    for (; it && !it->done(); it->step()) {
      AcDb2dVertex* v = nullptr;
      if (acdbOpenObject(v, it->objectId(), AcDb::kForRead) != Acad::eOk) continue;
      width = width || v->startWidth() != 0 || v->endWidth() != 0;
      v->close();
    }
    delete it;
    return width;
  }
  return false;
}

// Whether the block of a reference allows exploding its references.
bool blockExplodable(const AcDbEntity* e) {
  const AcDbBlockReference* r = AcDbBlockReference::cast(e);
  AcDbBlockTableRecord* rec = nullptr;
  if (!r || acdbOpenObject(rec, r->blockTableRecord(), AcDb::kForRead) != Acad::eOk) return true;
  bool ok = rec->explodable();
  rec->close();
  return ok;
}

// Block references give their block's entities, polylines lines and
// arcs, regions their edges; other kinds (hatches among them) stay, and
// so do references to a block that is not explodable.
void cmdExplode() {
  std::vector<AcDbObjectId> ids;
  if (!selectObjects(&ids) || ids.empty()) return;
  int failed = 0;
  bool lostWidth = false;
  for (const AcDbObjectId& id : ids) {
    AcDbEntity* e = nullptr;
    if (acdbOpenObject(e, id, AcDb::kForRead) != Acad::eOk) {
      ++failed;
      continue;
    }
    bool kind = (AcDbBlockReference::cast(e) && !AcDbMInsertBlock::cast(e) && blockExplodable(e)) ||
                AcDbPolyline::cast(e) || AcDb2dPolyline::cast(e) || AcDb3dPolyline::cast(e) || AcDbRegion::cast(e);
    AcDbVoidPtrArray pieces;
    Acad::ErrorStatus es = kind ? e->explode(pieces) : Acad::eNotApplicable;
    bool width = es == Acad::eOk && hadWidth(e);
    e->close();
    if (es != Acad::eOk) {
      for (void* p : pieces) delete static_cast<AcDbEntity*>(p);
      ++failed;
      continue;
    }
    lostWidth = lostWidth || width;
    for (void* p : pieces) appendEntity(static_cast<AcDbEntity*>(p));
    if (acdbOpenObject(e, id, AcDb::kForWrite) == Acad::eOk) {
      e->erase();
      e->close();
    }
  }
  if (lostWidth) say("Exploding this polyline has lost width information.\nThe UNDO command will restore it.\n");
  if (failed == 1) say("1 was not able to be exploded.\n");
  if (failed > 1) say(std::to_string(failed) + " were not able to be exploded.\n");
}

// ------------------------------------------------------------ REDO

void cmdRedo() {
  int n = undoneByLastCommand();
  AcDbDatabase* d = db();
  if (!d || n <= 0 || d->redoCount() == 0) {
    say("Everything has been redone\n");
    return;
  }
  for (int i = 0; i < n && d->redoForward(); ++i) {
  }
  undoneByLastCommand() = 0;
}

void add(const char16_t* name, AcRxFunctionPtr fn, bool noUndo = false) {
  CommandDef d;
  d.group = u"ZEPK_HOST";
  d.global = d.local = name;
  d.fn = fn;
  d.builtin = true;
  d.noUndoMark = noUndo;
  Commands::get().add(d);
}

}  // namespace

void registerModifyCommands() {
  add(u"ROTATE", cmdRotate);
  add(u"SCALE", cmdScale);
  add(u"MIRROR", cmdMirror);
  add(u"EXPLODE", cmdExplode);
  add(u"REDO", cmdRedo, true);
}

}  // namespace zepk::editor
