// Entities flattened for selection, the entities a user can see, and picks
// by a point, flat or into block references.
#include "host/editor/pick.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "host/db/textmetrics.h"
#include "host/dbapserv.h"
#include "host/dbelipse.h"
#include "host/dbhatch.h"
#include "host/dbmtext.h"
#include "host/dbpl.h"
#include "host/dbray.h"
#include "host/dbregion.h"
#include "host/dbspline.h"
#include "host/dbsymtb.h"
#include "host/dbxline.h"
#include "host/editor/commands.h"
#include "host/editor/coords.h"
#include "host/editor/input.h"
#include "host/entlist.h"
#include "host/ol_errno.h"
#include "host/editor/sysvars.h"

namespace zepk::editor {

namespace {

using selgeom::Path;
using selgeom::Pt;
using selgeom::Shape;

constexpr double kPi = 3.14159265358979323846;
// Block references nest no deeper than this (a damaged drawing may make a
// block hold a reference to itself).
constexpr int kMaxDepth = 16;
// Unbounded lines reach this far each way.
constexpr double kFar = 1e8;

double sysNumber(const char16_t* name, double fallback) {
  SysValue v;
  if (!getSysVar(name, &v)) return fallback;
  return v.kind == SysValue::Real ? v.r : v.kind == SysValue::Int ? v.i : fallback;
}

AcGeMatrix3d planeToWorld(const AcGeVector3d& n) {
  AcGeMatrix3d m;
  m.setToPlaneToWorld(n);
  return m;
}

// Draws runs of points given in some coordinate system through a matrix
// to the display. Arcs stay arcs when the matrix keeps circles circles in
// the display; otherwise they are drawn as fine chords.
class Pen {
 public:
  Pen(const AcGeMatrix3d& m, Shape* out) : m_(m), out_(out) {
    double ax = m.entry[0][0], ay = m.entry[1][0], bx = m.entry[0][1], by = m.entry[1][1];
    double la = std::hypot(ax, ay), lb = std::hypot(bx, by);
    double tol = 1e-9 * std::max(la, lb);
    similar_ = la > 0 && std::fabs(la - lb) <= tol && std::fabs(ax * bx + ay * by) <= tol * std::max(la, lb);
    sign_ = ax * by - ay * bx < 0 ? -1 : 1;
  }

  Pt map(double x, double y, double z = 0) const {
    AcGePoint3d p = m_ * AcGePoint3d(x, y, z);
    return {p.x, p.y};
  }

  // A run of vertices with bulges (in the plane z = elevation).
  void poly(const std::vector<AcGePoint2d>& v, const std::vector<double>& bulges, bool closed, double z = 0) {
    Path p;
    p.closed = closed;
    size_t n = v.size();
    for (size_t i = 0; i < n; ++i) {
      double b = i < bulges.size() ? bulges[i] : 0.0;
      p.pts.push_back(map(v[i].x, v[i].y, z));
      bool last = i + 1 == n;
      if (b == 0 || (last && !closed)) {
        p.bulges.push_back(0);
        continue;
      }
      if (similar_) {
        p.bulges.push_back(b * sign_);
        continue;
      }
      // Chords along the arc to the next vertex.
      p.bulges.push_back(0);
      const AcGePoint2d& a = v[i];
      const AcGePoint2d& c = v[(i + 1) % n];
      double dx = c.x - a.x, dy = c.y - a.y, chord = std::hypot(dx, dy);
      if (chord == 0) continue;
      double k = (1 - b * b) / (4 * b);
      double cx = (a.x + c.x) / 2 - dy * k, cy = (a.y + c.y) / 2 + dx * k;
      double r = chord * (1 + b * b) / (4 * std::fabs(b));
      double a0 = std::atan2(a.y - cy, a.x - cx), sweep = 4 * std::atan(b);
      int steps = std::max(2, static_cast<int>(std::ceil(std::fabs(sweep) / (kPi / 90))));
      for (int s = 1; s < steps; ++s) {
        double t = a0 + sweep * s / steps;
        p.pts.push_back(map(cx + r * std::cos(t), cy + r * std::sin(t), z));
        p.bulges.push_back(0);
      }
    }
    if (!p.pts.empty()) out_->paths.push_back(std::move(p));
  }

  // An arc about c (counter-clockwise from a0 to a1; a whole circle when
  // they are equal), as bulged pieces of at most a half turn.
  void arc(double cx, double cy, double z, double r, double a0, double a1, bool closed) {
    double sweep = a1 - a0;
    if (closed) {
      sweep = 2 * kPi;
    } else {
      sweep = std::fmod(sweep, 2 * kPi);
      if (sweep <= 0) sweep += 2 * kPi;
    }
    int pieces = static_cast<int>(std::ceil(sweep / kPi - 1e-12));
    std::vector<AcGePoint2d> v;
    std::vector<double> b;
    for (int i = 0; i <= pieces; ++i) {
      if (closed && i == pieces) break;
      double t = a0 + sweep * i / pieces;
      v.emplace_back(cx + r * std::cos(t), cy + r * std::sin(t));
      b.push_back(i < pieces ? std::tan(sweep / pieces / 4) : 0.0);
    }
    poly(v, b, closed, z);
  }

  void points(const std::vector<AcGePoint3d>& world, bool closed) {
    Path p;
    p.closed = closed;
    for (const AcGePoint3d& q : world) p.pts.push_back(map(q.x, q.y, q.z));
    if (!p.pts.empty()) out_->paths.push_back(std::move(p));
  }

 private:
  AcGeMatrix3d m_;
  Shape* out_;
  bool similar_ = false;
  double sign_ = 1;
};

// Width of a text in the host's text font.
double textWidth(const std::u16string& s, double height) { return db::textWidth(s, height); }

void textShape(const AcDbText* t, const AcGeMatrix3d& toDisplay, Shape* out) {
  double h = t->height() > 0 ? t->height() : 2.5;
  double w = textWidth(t->textString(), h) * t->widthFactor();
  int hm = t->horizontalMode(), vm = t->verticalMode();
  AcGePoint3d at = t->position();
  double rot = t->rotation();
  double x0 = 0, y0 = 0;
  if (hm == AcDb::kTextAlign || hm == AcDb::kTextFit) {
    AcGePoint3d b = t->alignmentPoint();
    w = std::hypot(b.x - at.x, b.y - at.y);
    rot = std::atan2(b.y - at.y, b.x - at.x);
  } else if (hm != AcDb::kTextLeft || vm != AcDb::kTextBase) {
    at = t->alignmentPoint();
    x0 = hm == AcDb::kTextCenter || hm == AcDb::kTextMid ? -w / 2 : hm == AcDb::kTextRight ? -w : 0;
    y0 = hm == AcDb::kTextMid || vm == AcDb::kTextVertMid ? -h / 2 : vm == AcDb::kTextTop ? -h : 0;
  }
  AcGeMatrix3d m = toDisplay * AcGeMatrix3d::translation(at.asVector()) *
                   AcGeMatrix3d::rotation(rot, t->normal());
  Pen pen(m, out);
  pen.poly({{x0, y0}, {x0 + w, y0}, {x0 + w, y0 + h}, {x0, y0 + h}}, {}, true);
  out->filled = true;
}

void mtextShape(const AcDbMText* t, const AcGeMatrix3d& toDisplay, Shape* out) {
  double h = t->textHeight() > 0 ? t->textHeight() : 2.5;
  std::u16string s = t->contents();
  int lines = 1;
  double widest = 0;
  size_t start = 0;
  for (size_t i = 0; i <= s.size(); ++i) {
    if (i == s.size() || (s[i] == u'\\' && i + 1 < s.size() && (s[i + 1] == u'P' || s[i + 1] == u'p'))) {
      widest = std::max(widest, textWidth(s.substr(start, i - start), h));
      if (i < s.size()) ++lines, start = i + 2;
    }
  }
  double w = t->width() > 0 ? t->width() : widest;
  double tall = h * (1 + (lines - 1) * 5.0 / 3.0);
  int a = static_cast<int>(t->attachment()) - 1;  // 0..8: top left ... bottom right
  if (a < 0 || a > 8) a = 0;
  double x0 = -w * (a % 3) / 2.0, y0 = -tall * (2 - a / 3) / 2.0;
  AcGeVector3d x = t->direction();
  if (x.length() == 0) x = AcGeVector3d(1, 0, 0);
  AcGeVector3d n = t->normal();
  AcGeMatrix3d cs;
  cs.setCoordSystem(t->location(), x.normal(), n.crossProduct(x).normal(), n.normal());
  Pen pen(toDisplay * cs, out);
  pen.poly({{x0, y0}, {x0 + w, y0}, {x0 + w, y0 + tall}, {x0, y0 + tall}}, {}, true);
  out->filled = true;
}

void hatchShape(const AcDbHatch* hatch, const AcGeMatrix3d& toDisplay, Shape* out) {
  Pen pen(toDisplay * planeToWorld(hatch->normal()), out);
  double z = hatch->elevation();
  for (int i = 0; i < hatch->numLoops(); ++i) {
    const AcDbHatch::Loop& loop = hatch->loopAt(i);
    if (loop.type & AcDbHatch::kPolyline) {
      std::vector<AcGePoint2d> v(loop.vertices.begin(), loop.vertices.end());
      pen.poly(v, loop.bulges, loop.closed, z);
      continue;
    }
    // Edges as chords, joined into one closed run.
    std::vector<AcGePoint2d> v;
    for (const AcDbHatch::Edge& e : loop.edges) {
      if (e.type == AcDbHatch::kLine) {
        v.push_back(e.start);
        v.push_back(e.end);
      } else if (e.type == AcDbHatch::kCirArc || e.type == AcDbHatch::kEllArc) {
        double a0 = e.ccw ? e.startAngle : -e.startAngle, a1 = e.ccw ? e.endAngle : -e.endAngle;
        if (e.ccw ? a1 <= a0 : a1 >= a0) a1 += e.ccw ? 2 * kPi : -2 * kPi;
        AcGeVector2d major = e.type == AcDbHatch::kCirArc ? AcGeVector2d(e.radius, 0) : e.majorAxis;
        double ratio = e.type == AcDbHatch::kCirArc ? 1.0 : e.minorMajorRatio;
        AcGeVector2d minor(-major.y * ratio, major.x * ratio);
        int steps = std::max(2, static_cast<int>(std::fabs(a1 - a0) / (kPi / 90)));
        for (int s = 0; s <= steps; ++s) {
          double t = a0 + (a1 - a0) * s / steps;
          v.emplace_back(e.center.x + major.x * std::cos(t) + minor.x * std::sin(t),
                         e.center.y + major.y * std::cos(t) + minor.y * std::sin(t));
        }
      } else {
        const auto& pts = e.fitPoints.empty() ? e.controlPoints : e.fitPoints;
        v.insert(v.end(), pts.begin(), pts.end());
      }
    }
    pen.poly(v, {}, true, z);
  }
  out->filled = true;
}

// Any curve by its points: enough of them to follow it closely.
void sampledCurve(const AcDbCurve* c, const AcGeMatrix3d& toDisplay, Shape* out) {
  double p0 = 0, p1 = 0;
  if (c->getStartParam(p0) != Acad::eOk || c->getEndParam(p1) != Acad::eOk) return;
  const int steps = 256;
  std::vector<AcGePoint3d> pts;
  for (int i = 0; i <= steps; ++i) {
    AcGePoint3d q;
    if (c->getPointAtParam(p0 + (p1 - p0) * i / steps, q) == Acad::eOk) pts.push_back(q);
  }
  Pen(toDisplay, out).points(pts, false);
}

bool layerVisible(AcDbObjectId layer) {
  AcDbObjectPointer<AcDbLayerTableRecord> l(layer, AcDb::kForRead);
  return !l || (!l->isOff() && !l->isFrozen());
}

bool layerLocked(AcDbObjectId layer) {
  AcDbObjectPointer<AcDbLayerTableRecord> l(layer, AcDb::kForRead);
  return l && l->isLocked();
}

bool shapeOf(const AcDbEntity* e, const AcGeMatrix3d& xf, const AcGeMatrix3d& toDisplay, int depth, Shape* out);

// The entities of a block drawn through a reference.
void blockShape(const AcDbBlockReference* ref, const AcGeMatrix3d& xf, const AcGeMatrix3d& toDisplay, int depth,
                Shape* out) {
  if (depth >= kMaxDepth) return;
  AcDbObjectPointer<AcDbBlockTableRecord> block(ref->blockTableRecord(), AcDb::kForRead);
  if (!block) return;
  AcGeMatrix3d inner = xf * blockTransform(ref);
  for (AcDbObjectId id : block->entityIds()) {
    AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForRead);
    // Attribute definitions show in the block, not through references.
    if (!e || !isVisible(e.object()) || AcDbAttributeDefinition::cast(e.object())) continue;
    Shape part;
    if (shapeOf(e.object(), inner, toDisplay, depth + 1, &part)) {
      out->filled = out->filled || part.filled;
      for (Path& p : part.paths) out->paths.push_back(std::move(p));
    }
  }
  std::unique_ptr<AcDbObjectIterator> it(ref->attributeIterator());
  for (it->start(); !it->done(); it->step()) {
    AcDbObjectPointer<AcDbEntity> a(it->objectId(), AcDb::kForRead);
    if (a && isVisible(a.object())) shapeOf(a.object(), xf, toDisplay, depth + 1, out);
  }
}

bool shapeOf(const AcDbEntity* e, const AcGeMatrix3d& xf, const AcGeMatrix3d& toDisplay, int depth, Shape* out) {
  size_t before = out->paths.size();
  AcGeMatrix3d m = toDisplay * xf;
  if (auto* l = AcDbLine::cast(e)) {
    Pen(m, out).points({l->startPoint(), l->endPoint()}, false);
  } else if (auto* c = AcDbCircle::cast(e)) {
    AcGeMatrix3d w2p = planeToWorld(c->normal()).inverse();
    AcGePoint3d o = w2p * c->center();
    Pen(m * planeToWorld(c->normal()), out).arc(o.x, o.y, o.z, c->radius(), 0, 0, true);
  } else if (auto* a = AcDbArc::cast(e)) {
    AcGeMatrix3d w2p = planeToWorld(a->normal()).inverse();
    AcGePoint3d o = w2p * a->center();
    Pen(m * planeToWorld(a->normal()), out).arc(o.x, o.y, o.z, a->radius(), a->startAngle(), a->endAngle(), false);
  } else if (auto* pl = AcDbPolyline::cast(e)) {
    std::vector<AcGePoint2d> v;
    std::vector<double> b;
    for (unsigned i = 0; i < pl->numVerts(); ++i) {
      AcGePoint2d q;
      double bu = 0;
      pl->getPointAt(i, q);
      pl->getBulgeAt(i, bu);
      v.push_back(q);
      b.push_back(bu);
    }
    Pen(m * planeToWorld(pl->normal()), out).poly(v, b, pl->isClosed(), pl->elevation());
  } else if (auto* pt = AcDbPoint::cast(e)) {
    Pen(m, out).points({pt->position()}, false);
  } else if (auto* t = AcDbText::cast(e)) {
    textShape(t, m, out);
  } else if (auto* mt = AcDbMText::cast(e)) {
    mtextShape(mt, m, out);
  } else if (auto* so = AcDbSolid::cast(e)) {
    AcGePoint3d q[4];
    for (int i = 0; i < 4; ++i) so->getPointAt(static_cast<Adesk::UInt16>(i), q[i]);
    // Solids keep their corners in a zigzag: 0 1 3 2 goes round.
    Pen(m, out).points({q[0], q[1], q[3], q[2]}, true);
    out->filled = true;
  } else if (auto* tr = AcDbTrace::cast(e)) {
    AcGePoint3d q[4];
    for (int i = 0; i < 4; ++i) tr->getPointAt(static_cast<Adesk::UInt16>(i), q[i]);
    Pen(m, out).points({q[0], q[1], q[3], q[2]}, true);
    out->filled = true;
  } else if (auto* f = AcDbFace::cast(e)) {
    AcGePoint3d q[4];
    for (int i = 0; i < 4; ++i) f->getVertexAt(static_cast<Adesk::UInt16>(i), q[i]);
    Pen(m, out).points({q[0], q[1], q[2], q[3]}, true);
  } else if (auto* h = AcDbHatch::cast(e)) {
    hatchShape(h, m, out);
  } else if (auto* ray = AcDbRay::cast(e)) {
    Pen(m, out).points({ray->basePoint(), ray->basePoint() + ray->unitDir() * kFar}, false);
  } else if (auto* xl = AcDbXline::cast(e)) {
    Pen(m, out).points({xl->basePoint() - xl->unitDir() * kFar, xl->basePoint() + xl->unitDir() * kFar}, false);
  } else if (auto* ref = AcDbBlockReference::cast(e)) {
    blockShape(ref, xf, toDisplay, depth, out);
  } else if (auto* cv = AcDbCurve::cast(e)) {
    // Old-style polylines come apart into lines and arcs; other curves
    // (ellipses, splines) are followed point by point.
    AcDbVoidPtrArray parts;
    if ((AcDb2dPolyline::cast(e) || AcDb3dPolyline::cast(e)) && cv->explode(parts) == Acad::eOk) {
      for (void* p : parts) {
        std::unique_ptr<AcDbEntity> piece(static_cast<AcDbEntity*>(p));
        shapeOf(piece.get(), xf, toDisplay, depth + 1, out);
      }
    } else {
      sampledCurve(cv, m, out);
    }
  } else if (auto* region = AcDbRegion::cast(e)) {
    // A region through the curves of its loops.
    AcDbVoidPtrArray parts;
    if (depth < kMaxDepth && region->explode(parts) == Acad::eOk) {
      for (void* p : parts) {
        std::unique_ptr<AcDbEntity> piece(static_cast<AcDbEntity*>(p));
        shapeOf(piece.get(), xf, toDisplay, depth + 1, out);
      }
    }
  }
  return out->paths.size() > before;
}

AcDbObjectId currentSpace() {
  AcDbDatabase* db = acdbHostApplicationServices()->workingDatabase();
  AcDbObjectId id;
  AcDbBlockTable* table = nullptr;
  if (!db || db->getBlockTable(table, AcDb::kForRead) != Acad::eOk) return id;
  bool paper = sysNumber(u"TILEMODE", 1) == 0;
  if (table->getAt(paper ? ACDB_PAPER_SPACE : ACDB_MODEL_SPACE, id) != Acad::eOk)
    table->getAt(ACDB_MODEL_SPACE, id);
  table->close();
  return id;
}

// The pick nearest the top among entities of a block, going in.
bool nestedIn(const AcDbBlockReference* ref, const AcGeMatrix3d& xf, const AcGeMatrix3d& toDisplay, Pt p, double tol,
              int depth, NestedPick* out) {
  if (depth >= kMaxDepth) return false;
  // Attributes lie over the block's entities.
  std::unique_ptr<AcDbObjectIterator> it(ref->attributeIterator());
  for (it->start(true); !it->done(); it->step(true)) {
    AcDbObjectPointer<AcDbEntity> a(it->objectId(), AcDb::kForRead);
    Shape s;
    if (a && isVisible(a.object()) && shapeOf(a.object(), xf, toDisplay, depth + 1, &s) &&
        selgeom::distanceTo(s, p) <= tol) {
      out->id = it->objectId();
      out->xf = xf;
      return true;
    }
  }
  AcDbObjectPointer<AcDbBlockTableRecord> block(ref->blockTableRecord(), AcDb::kForRead);
  if (!block) return false;
  AcGeMatrix3d inner = xf * blockTransform(ref);
  AcDbObjectIdArray ids = block->entityIds();
  for (auto i = ids.rbegin(); i != ids.rend(); ++i) {
    AcDbObjectPointer<AcDbEntity> e(*i, AcDb::kForRead);
    if (!e || !isVisible(e.object()) || AcDbAttributeDefinition::cast(e.object())) continue;
    if (auto* sub = AcDbBlockReference::cast(e.object())) {
      if (nestedIn(sub, inner, toDisplay, p, tol, depth + 1, out)) {
        out->containers.push_back(*i);
        return true;
      }
      continue;
    }
    Shape s;
    if (shapeOf(e.object(), inner, toDisplay, depth + 1, &s) && selgeom::distanceTo(s, p) <= tol) {
      out->id = *i;
      out->xf = inner;
      return true;
    }
  }
  return false;
}

}  // namespace

AcGeMatrix3d worldToDisplay() {
  CoordSys u = currentUcs();
  AcGeMatrix3d m;
  m.setCoordSystem(AcGePoint3d(u.o[0], u.o[1], u.o[2]), AcGeVector3d(u.x[0], u.x[1], u.x[2]),
                   AcGeVector3d(u.y[0], u.y[1], u.y[2]), AcGeVector3d(u.z[0], u.z[1], u.z[2]));
  return m.inverse();
}

AcGeMatrix3d blockTransform(const AcDbBlockReference* ref) {
  AcGePoint3d base;
  AcDbObjectPointer<AcDbBlockTableRecord> block(ref->blockTableRecord(), AcDb::kForRead);
  if (block) base = block->origin();
  AcGeScale3d s = ref->scaleFactors();
  AcGeMatrix3d scale;
  scale.entry[0][0] = s.sx;
  scale.entry[1][1] = s.sy;
  scale.entry[2][2] = s.sz;
  // The position lies in the reference's own system (its normal's).
  AcGeMatrix3d ecs = planeToWorld(ref->normal());
  AcGePoint3d at = ecs * ref->position();
  return AcGeMatrix3d::translation(at.asVector()) * ecs * AcGeMatrix3d::rotation(ref->rotation(), AcGeVector3d(0, 0, 1)) *
         scale * AcGeMatrix3d::translation(-base.asVector());
}

bool entityShape(const AcDbEntity* e, const AcGeMatrix3d& xf, Shape* out) {
  return shapeOf(e, xf, worldToDisplay(), 0, out);
}

bool isVisible(const AcDbEntity* e) {
  return e->visibility() == AcDb::kVisible && layerVisible(e->layerId());
}

std::vector<Candidate> visibleEntities() {
  std::vector<Candidate> out;
  AcDbObjectPointer<AcDbBlockTableRecord> space(currentSpace(), AcDb::kForRead);
  if (!space) return out;
  AcGeMatrix3d toDisplay = worldToDisplay();
  for (AcDbObjectId id : space->entityIds()) {
    AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForRead);
    if (!e || !isVisible(e.object())) continue;
    Candidate c;
    c.id = id;
    c.locked = layerLocked(e->layerId());
    if (shapeOf(e.object(), AcGeMatrix3d::kIdentity, toDisplay, 0, &c.shape)) out.push_back(std::move(c));
  }
  return out;
}

double pickTolerance() {
  double pixels = sysNumber(u"PICKBOX", 3);
  double view = sysNumber(u"VIEWSIZE", 9.0);
  double height = 768;
  SysValue v;
  if (getSysVar(u"SCREENSIZE", &v) && (v.kind == SysValue::Point2 || v.kind == SysValue::Point3) && v.p[1] > 0)
    height = v.p[1];
  if (view <= 0) view = 9.0;
  // PICKBOX 0 still takes what lies exactly under the point.
  return std::max(pixels, 0.5) * view / height;
}

AcDbObjectId pickAt(const std::vector<Candidate>& cands, const double p[3]) {
  double tol = pickTolerance();
  for (auto it = cands.rbegin(); it != cands.rend(); ++it)
    if (selgeom::distanceTo(it->shape, {p[0], p[1]}) <= tol) return it->id;
  return AcDbObjectId();
}

bool nestedPickAt(const double p[3], NestedPick* out) {
  std::vector<Candidate> cands = visibleEntities();
  AcDbObjectId top = pickAt(cands, p);
  if (top.isNull()) return false;
  *out = NestedPick{};
  out->id = top;
  out->xf = AcGeMatrix3d::kIdentity;
  AcDbObjectPointer<AcDbBlockReference> ref(top, AcDb::kForRead);
  if (!ref) return true;
  NestedPick inner;
  if (nestedIn(ref.object(), AcGeMatrix3d::kIdentity, worldToDisplay(), {p[0], p[1]}, pickTolerance(), 0, &inner)) {
    // An attribute of the reference is an entity of the space itself.
    AcDbObjectPointer<AcDbAttribute> attribute(inner.id, AcDb::kForRead);
    if (!inner.containers.empty() || !attribute) inner.containers.push_back(top);
    *out = std::move(inner);
  }
  return true;
}

int pickOne(const std::u16string& prompt, const double* given, bool nested, double pt[3], NestedPick* out) {
  *out = NestedPick{};
  for (;;) {
    if (given) {
      std::copy(given, given + 3, pt);
    } else {
      std::u16string other;
      int64_t name[2] = {0, 0};
      int st = getPickPoint(prompt.empty() ? u"\nSelect object: " : prompt, pt, &other, name);
      if (st == RTNONE) {
        hostErrno() = OL_ENTSELNULL;
        return RTERROR;
      }
      if (st == RTREJ) {
        std::u16string u = other;
        for (char16_t& c : u)
          if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - 32);
        AcDbObjectId id;
        if (name[0] || name[1]) {
          // An entity name given by a program.
          ads_name en = {name[0], name[1]};
          if (acdbGetObjectId(id, en) != Acad::eOk) id = AcDbObjectId();
        } else if (u == u"L" || u == u"LAST" || u == u"_L" || u == u"_LAST") {
          id = db::lastEntity(acdbHostApplicationServices()->workingDatabase());
        } else {
          Commands::get().print(u"*Invalid selection*\nExpects a point or Last\n");
          continue;
        }
        if (id.isNull() || id.isErased()) {
          hostErrno() = OL_ENTSELPICK;
          return RTERROR;
        }
        // The point of a selection without a pick is the last point.
        SysValue v;
        if (getSysVar(u"LASTPOINT", &v))
          for (int i = 0; i < 3; ++i) pt[i] = v.p[i];
        out->id = id;
        out->xf = AcGeMatrix3d::kIdentity;
        return RTNORM;
      }
      if (st != RTNORM) return st;
    }
    bool hit = false;
    if (nested) {
      hit = nestedPickAt(pt, out);
    } else {
      out->id = pickAt(visibleEntities(), pt);
      out->xf = AcGeMatrix3d::kIdentity;
      hit = !out->id.isNull();
    }
    if (!hit) {
      hostErrno() = OL_ENTSELPICK;
      return RTERROR;
    }
    return RTNORM;
  }
}

}  // namespace zepk::editor

using namespace zepk::editor;

namespace {

int pickFor(const ACHAR* str, const double* given, bool nested, ads_name entres, ads_point ptres, NestedPick* out) {
  if (!entres || !ptres) return RTERROR;
  int st = pickOne(str ? std::u16string(str) : std::u16string(), given, nested, ptres, out);
  if (st != RTNORM) return st;
  ads_name n;
  if (acdbGetAdsName(n, out->id) != Acad::eOk) return RTERROR;
  ads_name_set(n, entres);
  return RTNORM;
}

resbuf* containerChain(const NestedPick& p) {
  resbuf* head = nullptr;
  resbuf** tail = &head;
  for (AcDbObjectId id : p.containers) {
    *tail = acutNewRb(RTENAME);
    acdbGetAdsName((*tail)->resval.rlname, id);
    tail = &(*tail)->rbnext;
  }
  return head;
}

}  // namespace

int acedEntSel(const ACHAR* str, ads_name entres, ads_point ptres) {
  NestedPick p;
  return pickFor(str, nullptr, false, entres, ptres, &p);
}

int acedNEntSel(const ACHAR* str, ads_name entres, ads_point ptres, ads_point xformres[4], resbuf** refstkres) {
  NestedPick p;
  if (refstkres) *refstkres = nullptr;
  int st = pickFor(str, nullptr, true, entres, ptres, &p);
  if (st != RTNORM) return st;
  if (xformres)
    for (int c = 0; c < 4; ++c)
      for (int r = 0; r < 3; ++r) xformres[c][r] = p.xf.entry[r][c];
  if (refstkres) *refstkres = containerChain(p);
  return RTNORM;
}

int acedNEntSelP(const ACHAR* str, ads_name entres, ads_point ptres, int pickflag, ads_matrix xformres,
                 resbuf** refstkres) {
  NestedPick p;
  if (refstkres) *refstkres = nullptr;
  double given[3] = {0, 0, 0};
  if (pickflag && ptres) std::copy(ptres, ptres + 3, given);
  int st = pickFor(str, pickflag ? given : nullptr, true, entres, ptres, &p);
  if (st != RTNORM) return st;
  if (xformres)
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c) xformres[r][c] = p.xf.entry[r][c];
  if (refstkres) *refstkres = containerChain(p);
  return RTNORM;
}
