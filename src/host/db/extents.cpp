// The extents of entities that are not curves: block references by their
// contents, texts, hatches, regions, points, faces and solids.
#include <cmath>
#include <memory>

#include "host/db/textmetrics.h"
#include "host/dbents.h"
#include "host/dbhatch.h"
#include "host/dbmtext.h"
#include "host/dbregion.h"
#include "host/gemat3d.h"

namespace {

// Nesting of block references being measured, so that a block that holds
// itself cannot recurse for ever.
thread_local int gDepth = 0;

struct Grow {
  AcDbExtents& box;
  bool any = false;
  void add(const AcGePoint3d& p) {
    if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) return;
    box.addPoint(p);
    any = true;
  }
  void add(const AcDbExtents& e) {
    add(e.minPoint());
    add(e.maxPoint());
  }
};

// A point of the hatch's plane in world coordinates.
AcGePoint3d toWorld(const AcGePoint2d& p, double elevation, const AcGeVector3d& normal) {
  AcGePoint3d q(p.x, p.y, elevation);
  if (normal.isParallelTo(AcGeVector3d::kZAxis) && normal.z > 0) return q;
  return q.transformBy(AcGeMatrix3d::planeToWorld(normal));
}

// The points that bound an arc of a circle: its ends and the quadrant
// points its sweep passes.
template <class Add>
void arcBound(const AcGePoint2d& c, double r, double start, double end, bool ccw, Add add) {
  if (!ccw) {
    double s = -end, e = -start;
    start = s;
    end = e;
  }
  double sweep = std::fmod(end - start, 2 * M_PI);
  if (sweep <= 0) sweep += 2 * M_PI;
  add(AcGePoint2d(c.x + r * std::cos(start), c.y + r * std::sin(start)));
  add(AcGePoint2d(c.x + r * std::cos(start + sweep), c.y + r * std::sin(start + sweep)));
  for (int k = 0; k < 8; ++k) {
    double q = k * M_PI / 2;
    double from = std::fmod(q - start, 2 * M_PI);
    if (from < 0) from += 2 * M_PI;
    if (from <= sweep) add(AcGePoint2d(c.x + r * std::cos(q), c.y + r * std::sin(q)));
  }
}

void hatchExtents(const AcDbHatch& h, Grow& g) {
  double z = h.elevation();
  AcGeVector3d n = h.normal();
  auto add = [&](const AcGePoint2d& p) { g.add(toWorld(p, z, n)); };
  for (int i = 0; i < h.numLoops(); ++i) {
    const AcDbHatch::Loop& loop = h.loopAt(i);
    size_t nv = loop.vertices.size();
    for (size_t k = 0; k < nv; ++k) {
      add(loop.vertices[k]);
      double b = k < loop.bulges.size() ? loop.bulges[k] : 0.0;
      if (b == 0.0 || (k + 1 == nv && !loop.closed)) continue;
      // The arc from this vertex to the next.
      const AcGePoint2d &p = loop.vertices[k], &q = loop.vertices[(k + 1) % nv];
      double chord = std::hypot(q.x - p.x, q.y - p.y);
      if (chord == 0) continue;
      double r = chord * (1 + b * b) / (4 * std::fabs(b));
      // The centre lies off the chord's middle along its left normal (for a
      // counter-clockwise arc), by the radius less the arc's height; past a
      // half circle that distance turns negative.
      double off = (r - std::fabs(b) * chord / 2) * (b > 0 ? 1 : -1);
      double ux = -(q.y - p.y) / chord, uy = (q.x - p.x) / chord;
      AcGePoint2d c((p.x + q.x) / 2 + ux * off, (p.y + q.y) / 2 + uy * off);
      double a1 = std::atan2(p.y - c.y, p.x - c.x), a2 = std::atan2(q.y - c.y, q.x - c.x);
      arcBound(c, r, a1, a2, b > 0, add);
    }
    for (const AcDbHatch::Edge& e : loop.edges) {
      switch (e.type) {
        case AcDbHatch::kLine: add(e.start); add(e.end); break;
        case AcDbHatch::kCirArc: arcBound(e.center, e.radius, e.startAngle, e.endAngle, e.ccw, add); break;
        case AcDbHatch::kEllArc: {
          double a = e.majorAxis.length(), ang = std::atan2(e.majorAxis.y, e.majorAxis.x);
          double b = a * e.minorMajorRatio, s = e.startAngle, t = e.endAngle;
          if (!e.ccw) std::swap(s, t);
          if (t <= s) t += 2 * M_PI;
          for (int k = 0; k <= 64; ++k) {
            double u = s + (t - s) * k / 64;
            double x = a * std::cos(u), y = b * std::sin(u);
            add(AcGePoint2d(e.center.x + x * std::cos(ang) - y * std::sin(ang),
                            e.center.y + x * std::sin(ang) + y * std::cos(ang)));
          }
          break;
        }
        default:
          // A spline lies within its control points.
          for (const AcGePoint2d& p : e.controlPoints) add(p);
          break;
      }
    }
  }
}

// The box of a line of text from its insertion point, along its direction,
// as wide as the font measures it.
void textExtents(const AcDbText& t, Grow& g) {
  double h = t.height();
  double w = zepk::db::textWidth(t.textString(), h) * t.widthFactor();
  AcGePoint3d p = t.position();
  double cs = std::cos(t.rotation()), sn = std::sin(t.rotation());
  auto at = [&](double x, double y) { g.add(AcGePoint3d(p.x + x * cs - y * sn, p.y + x * sn + y * cs, p.z)); };
  at(0, 0);
  at(w, 0);
  at(w, h);
  at(0, h);
}

void mtextExtents(const AcDbMText& m, Grow& g) {
  double h = m.textHeight();
  double w = m.actualWidth() > 0 ? m.actualWidth() : m.width();
  double ht = m.actualHeight() > 0 ? m.actualHeight() : h;
  // The attachment point's place in the box: 1-9, left to right, top to
  // bottom.
  int a = static_cast<int>(m.attachment());
  double left = -w * ((a - 1) % 3) / 2.0, top = ht * ((a - 1) / 3) / 2.0;
  AcGePoint3d p = m.location();
  double cs = std::cos(m.rotation()), sn = std::sin(m.rotation());
  auto at = [&](double x, double y) { g.add(AcGePoint3d(p.x + x * cs - y * sn, p.y + x * sn + y * cs, p.z)); };
  at(left, top);
  at(left + w, top);
  at(left + w, top - ht);
  at(left, top - ht);
}

}  // namespace

Acad::ErrorStatus AcDbEntity::getGeomExtents(AcDbExtents& extents) const {
  extents = AcDbExtents();
  Grow g{extents};
  if (const auto* r = AcDbBlockReference::cast(this)) {
    if (gDepth > 16) return Acad::eNotApplicable;
    ++gDepth;
    AcDbVoidPtrArray pieces;
    if (r->explode(pieces) == Acad::eOk) {
      for (void* p : pieces) {
        std::unique_ptr<AcDbEntity> piece(static_cast<AcDbEntity*>(p));
        AcDbExtents x;
        if (piece->getGeomExtents(x) == Acad::eOk) g.add(x);
      }
    }
    --gDepth;
    if (!g.any) g.add(r->position());
  } else if (const auto* t = AcDbText::cast(this)) {
    textExtents(*t, g);
  } else if (const auto* m = AcDbMText::cast(this)) {
    mtextExtents(*m, g);
  } else if (const auto* p = AcDbPoint::cast(this)) {
    g.add(p->position());
  } else if (const auto* f = AcDbFace::cast(this)) {
    for (Adesk::UInt16 i = 0; i < 4; ++i) {
      AcGePoint3d q;
      if (f->getVertexAt(i, q) == Acad::eOk) g.add(q);
    }
  } else if (const auto* s = AcDbSolid::cast(this)) {
    for (Adesk::UInt16 i = 0; i < 4; ++i) {
      AcGePoint3d q;
      if (s->getPointAt(i, q) == Acad::eOk) g.add(q);
    }
  } else if (const auto* h = AcDbHatch::cast(this)) {
    hatchExtents(*h, g);
  } else {
    // Kinds made of simpler entities (regions, meshes, ...).
    AcDbVoidPtrArray pieces;
    if (explode(pieces) == Acad::eOk) {
      for (void* p : pieces) {
        std::unique_ptr<AcDbEntity> piece(static_cast<AcDbEntity*>(p));
        AcDbExtents x;
        if (piece->getGeomExtents(x) == Acad::eOk) g.add(x);
      }
    }
  }
  return g.any ? Acad::eOk : Acad::eNotApplicable;
}
