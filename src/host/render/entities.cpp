#include "host/render/entities.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "host/dbelipse.h"
#include "host/dbhatch.h"
#include "host/dbmtext.h"
#include "host/dbpl.h"
#include "host/dbray.h"
#include "host/dbregion.h"
#include "host/dbspline.h"
#include "host/dbxline.h"
#include "host/gecurv3d.h"
#include "host/imgent.h"
#include "host/render/outline.h"

namespace zepk::render {

namespace {

constexpr double kTwoPi = 6.28318530717958647692;

// How far a chord may stray from its curve, in drawing units: a quarter of
// a pixel on a canvas, a thousandth of the size elsewhere.
double tolerance(const Sink& s, double size) {
  double ppu = s.pixelsPerUnit();
  if (ppu > 0) return 0.25 / ppu;
  return std::max(size, 1e-9) * 1e-3;
}

void fillMode(Sink& s, bool fill) { s.setFillType(fill ? kAcGiFillAlways : kAcGiFillNever); }

void drawLine(const AcDbLine* l, Sink& s) {
  AcGePoint3d p[2] = {l->startPoint(), l->endPoint()};
  s.polyline(2, p);
}

}  // namespace

AcGePoint3d fromOcs(const AcGeVector3d& n, const AcGePoint3d& p) {
  if ((n.x == 0 && n.y == 0 && n.z > 0) || n.isZeroLength()) return p;
  AcGePoint3d q = p;
  q.transformBy(AcGeMatrix3d::planeToWorld(n));
  return q;
}

namespace {

void drawArc(const AcDbArc* a, Sink& s) {
  AcGeMatrix3d ocs = AcGeMatrix3d::planeToWorld(a->normal());
  double a0 = a->startAngle(), sweep = a->endAngle() - a0;
  while (sweep <= 0) sweep += kTwoPi;
  while (sweep > kTwoPi) sweep -= kTwoPi;
  AcGeVector3d start = ocs.getCsXAxis() * std::cos(a0) + ocs.getCsYAxis() * std::sin(a0);
  s.circularArc(fromOcs(a->normal(), a->center()), a->radius(), a->normal(), start, sweep);
}

void drawEllipse(const AcDbEllipse* e, Sink& s) {
  double t0 = e->startParam(), t1 = e->endParam();
  while (t1 <= t0) t1 += kTwoPi;
  if (t1 - t0 > kTwoPi) t1 = t0 + kTwoPi;
  s.ellipticalArc(e->center(), e->majorAxis(), e->minorAxis(), t0, t1);
}

// A planar run of vertices with bulges, in the plane of the normal.
struct PlanarVertex {
  AcGePoint3d p;  // world
  double bulge = 0, w0 = 0, w1 = 0;
};

// plinegen: the linetype runs on along the whole polyline; without it the
// pattern starts again at each vertex, as the host draws polylines.
void drawPlanarRun(const std::vector<PlanarVertex>& v, bool closed, const AcGeVector3d& normal, Sink& s,
                   bool plinegen = true) {
  size_t n = v.size();
  if (n == 0) return;
  if (n == 1) {
    s.polyline(1, &v[0].p);
    return;
  }
  bool wide = false;
  for (const PlanarVertex& x : v) wide = wide || x.w0 > 0 || x.w1 > 0;
  size_t segs = closed ? n : n - 1;
  if (wide) {
    // Widths are laid out in the polyline's own plane.
    AcGeMatrix3d toOcs = AcGeMatrix3d::worldToPlane(normal), fromOcs = AcGeMatrix3d::planeToWorld(normal);
    std::vector<WideVertex> w(n);
    double z = 0, size = 0;
    for (size_t i = 0; i < n; ++i) {
      AcGePoint3d q = v[i].p;
      q.transformBy(toOcs);
      z = q.z;
      w[i] = {{q.x, q.y}, v[i].bulge, v[i].w0, v[i].w1};
      size = std::max({size, std::fabs(q.x), std::fabs(q.y)});
    }
    std::vector<std::vector<Pt>> outlines = wideOutlines(w, closed, tolerance(s, size));
    AcGiFillType was = s.fillType();
    for (size_t i = 0; i < segs && i < outlines.size(); ++i) {
      if (outlines[i].empty()) continue;
      std::vector<AcGePoint3d> pts;
      pts.reserve(outlines[i].size());
      for (const Pt& p : outlines[i]) {
        AcGePoint3d q(p.x, p.y, z);
        q.transformBy(fromOcs);
        pts.push_back(q);
      }
      fillMode(s, true);
      s.polygon(static_cast<Adesk::UInt32>(pts.size()), pts.data());
    }
    s.setFillType(was);
    // Segments without width are lines.
    for (size_t i = 0; i < segs; ++i) {
      if (i < outlines.size() && !outlines[i].empty()) continue;
      std::vector<PlanarVertex> one = {v[i], v[(i + 1) % n]};
      for (PlanarVertex& x : one) x.w0 = x.w1 = 0;
      drawPlanarRun(one, false, normal, s, plinegen);
    }
    return;
  }
  // Straight runs as one polyline each, arcs exactly.
  std::vector<AcGePoint3d> run;
  auto flush = [&] {
    if (run.size() >= 2) s.polyline(static_cast<Adesk::UInt32>(run.size()), run.data());
    run.clear();
  };
  AcGeVector3d nz = normal.normal();
  for (size_t i = 0; i < segs; ++i) {
    const AcGePoint3d& a = v[i].p;
    const AcGePoint3d& b = v[(i + 1) % n].p;
    double bulge = v[i].bulge;
    if (bulge == 0 || !std::isfinite(bulge) || a.isEqualTo(b)) {
      if (!plinegen) flush();
      if (run.empty()) run.push_back(a);
      run.push_back(b);
      continue;
    }
    flush();
    double sweep = 4 * std::atan(bulge);
    AcGeVector3d chord = b - a;
    double r = chord.length() / (2 * std::sin(std::fabs(sweep) / 2));
    double h = r * std::cos(sweep / 2) * (bulge > 0 ? 1 : -1);
    AcGeVector3d left = nz.crossProduct(chord).normal();
    AcGePoint3d c = a + chord * 0.5 + left * h;
    if (sweep > 0) s.circularArc(c, r, nz, a - c, sweep);
    else s.circularArc(c, r, -nz, a - c, -sweep);
  }
  flush();
}

void drawLwPolyline(const AcDbPolyline* p, Sink& s) {
  std::vector<PlanarVertex> v(p->numVerts());
  double cw = p->constantWidth();
  for (unsigned i = 0; i < p->numVerts(); ++i) {
    p->getPointAt(i, v[i].p);
    p->getBulgeAt(i, v[i].bulge);
    double w0 = -1, w1 = -1;
    p->getWidthsAt(i, w0, w1);
    v[i].w0 = w0 >= 0 ? w0 : cw;
    v[i].w1 = w1 >= 0 ? w1 : cw;
  }
  drawPlanarRun(v, p->isClosed(), p->normal(), s, p->hasPlinegen());
}

void draw2dPolyline(const AcDb2dPolyline* p, Sink& s) {
  std::vector<PlanarVertex> v;
  bool fitted = p->polyType() != AcDb::k2dSimplePoly;
  if (!fitted) {
    std::unique_ptr<AcDbObjectIterator> it(p->vertexIterator());
    for (; it && !it->done(); it->step()) {
      AcDb2dVertex* vx = nullptr;
      if (acdbOpenObject(vx, it->objectId(), AcDb::kForRead) != Acad::eOk) continue;
      if (!(vx->flags() & AcDbVertexFlags::kSplineFrame)) {
        PlanarVertex pv;
        pv.p = p->vertexPosition(*vx);
        pv.bulge = vx->bulge();
        pv.w0 = vx->startWidth();
        pv.w1 = vx->endWidth();
        v.push_back(pv);
      }
      vx->close();
    }
  }
  if (fitted || v.empty()) {
    AcGePoint3dArray pts;
    AcGeDoubleArray bulges;
    if (p->getCurveVertices(pts, bulges) != Acad::eOk) return;
    v.clear();
    for (size_t i = 0; i < pts.size(); ++i) v.push_back({pts[i], i < bulges.size() ? bulges[i] : 0.0, 0, 0});
  }
  drawPlanarRun(v, p->isClosed(), p->normal(), s, p->isLinetypeGenerationOn());
}

// Any other curve through its geometry, sampled within the tolerance.
void drawSampled(const AcDbCurve* c, Sink& s) {
  AcGeCurve3d* ge = nullptr;
  if (c->getAcGeCurve(ge) != Acad::eOk || !ge) return;
  std::unique_ptr<AcGeCurve3d> owned(ge);
  double lo = 0, hi = 0;
  ge->getInterval(lo, hi);
  if (!std::isfinite(lo) || !std::isfinite(hi)) return;
  AcGePoint3d a = ge->evalPoint(lo), b = ge->evalPoint((lo + hi) / 2);
  double size = std::max(a.distanceTo(b), 1e-9);
  AcGePoint3dArray pts;
  AcGeDoubleArray params;
  ge->getSamplePoints(lo, hi, tolerance(s, size), pts, params);
  if (pts.size() > 200000) return;
  if (!pts.empty()) s.polyline(static_cast<Adesk::UInt32>(pts.size()), pts.data());
}

void draw3dPolyline(const AcDb3dPolyline* p, Sink& s) {
  if (p->polyType() != AcDb::k3dSimplePoly) {
    drawSampled(p, s);
    return;
  }
  std::vector<AcGePoint3d> pts;
  std::unique_ptr<AcDbObjectIterator> it(p->vertexIterator());
  for (; it && !it->done(); it->step()) {
    AcDb3dPolylineVertex* vx = nullptr;
    if (acdbOpenObject(vx, it->objectId(), AcDb::kForRead) != Acad::eOk) continue;
    if (!(vx->flags() & AcDbVertexFlags::kSplineFrame)) pts.push_back(vx->position());
    vx->close();
  }
  if (p->isClosed() && pts.size() > 2) pts.push_back(pts.front());
  if (!pts.empty()) s.polyline(static_cast<Adesk::UInt32>(pts.size()), pts.data());
}

void drawPolygonMesh(const AcDbPolygonMesh* m, Sink& s) {
  std::vector<AcGePoint3d> pts;
  std::unique_ptr<AcDbObjectIterator> it(m->vertexIterator());
  for (; it && !it->done(); it->step()) {
    AcDbPolygonMeshVertex* vx = nullptr;
    if (acdbOpenObject(vx, it->objectId(), AcDb::kForRead) != Acad::eOk) continue;
    pts.push_back(vx->position());
    vx->close();
  }
  int mc = m->mSize(), nc = m->nSize();
  if (mc <= 0 || nc <= 0 || static_cast<size_t>(mc) * nc > pts.size()) return;
  bool mClosed = m->isMClosed(), nClosed = m->isNClosed();
  std::vector<AcGePoint3d> line;
  for (int i = 0; i < mc; ++i) {
    line.assign(pts.begin() + i * nc, pts.begin() + (i + 1) * nc);
    if (nClosed) line.push_back(line.front());
    s.polyline(static_cast<Adesk::UInt32>(line.size()), line.data());
  }
  for (int j = 0; j < nc; ++j) {
    line.clear();
    for (int i = 0; i < mc; ++i) line.push_back(pts[i * nc + j]);
    if (mClosed) line.push_back(line.front());
    s.polyline(static_cast<Adesk::UInt32>(line.size()), line.data());
  }
}

void drawPolyFaceMesh(const AcDbPolyFaceMesh* m, Sink& s) {
  std::vector<AcGePoint3d> pts;
  std::unique_ptr<AcDbObjectIterator> it(m->vertexIterator());
  for (; it && !it->done(); it->step()) {
    AcDbObject* o = nullptr;
    if (acdbOpenAcDbObject(o, it->objectId(), AcDb::kForRead) != Acad::eOk) continue;
    if (const AcDbPolyFaceMeshVertex* vx = AcDbPolyFaceMeshVertex::cast(o)) {
      pts.push_back(vx->position());
    } else if (const AcDbFaceRecord* f = AcDbFaceRecord::cast(o)) {
      // Each visible edge of the face: vertex numbers count from 1, a
      // negative one hides the edge that starts there.
      Adesk::Int16 idx[4] = {0, 0, 0, 0};
      int count = 0;
      for (Adesk::UInt16 k = 0; k < 4; ++k) {
        f->getVertexAt(k, idx[k]);
        if (idx[k] != 0) count = k + 1;
      }
      for (int k = 0; k < count; ++k) {
        Adesk::Int16 a = idx[k], b = idx[(k + 1) % count];
        bool visible = true;
        f->isEdgeVisibleAt(static_cast<Adesk::UInt16>(k), visible);
        int ia = std::abs(a) - 1, ib = std::abs(b) - 1;
        if (!visible || ia < 0 || ib < 0 || ia >= static_cast<int>(pts.size()) || ib >= static_cast<int>(pts.size()))
          continue;
        AcGePoint3d e[2] = {pts[ia], pts[ib]};
        s.polyline(2, e);
      }
    }
    o->close();
  }
}

void drawPoint(const AcDbPoint* p, Sink& s) {
  const DrawingProps& props = s.props();
  int mode = props.pdmode;
  double size = props.pdsize;
  // 0 is five percent of the view's height, below 0 a percentage of it.
  if (size == 0) size = s.viewHeight * 0.05;
  else if (size < 0) size = s.viewHeight * (-size) / 100.0;
  double h = size / 2;
  AcGePoint3d c = p->position();
  int shape = mode & 7;
  if (shape == 0) s.polyline(1, &c);
  // The figure turns against the angle of the X axis kept with the point.
  double ca = std::cos(-p->ecsRotation()), sa = std::sin(-p->ecsRotation());
  auto seg = [&](double x0, double y0, double x1, double y1) {
    AcGePoint3d e[2] = {AcGePoint3d(c.x + x0 * ca - y0 * sa, c.y + x0 * sa + y0 * ca, c.z),
                        AcGePoint3d(c.x + x1 * ca - y1 * sa, c.y + x1 * sa + y1 * ca, c.z)};
    s.polyline(2, e);
  };
  if (shape == 2) seg(-h, 0, h, 0), seg(0, -h, 0, h);
  if (shape == 3) seg(-h, -h, h, h), seg(-h, h, h, -h);
  if (shape == 4) seg(0, 0, 0, h);
  if (mode & 32) s.circle(c, h, AcGeVector3d::kZAxis);
  if (mode & 64) seg(-h, -h, h, -h), seg(h, -h, h, h), seg(h, h, -h, h), seg(-h, h, -h, -h);
}

// A solid or trace: its corners are in zigzag order (the fourth opposite
// the first), filled.
void drawQuad(const AcGePoint3d q[4], Sink& s) {
  AcGePoint3d pts[4] = {q[0], q[1], q[3], q[2]};
  Adesk::UInt32 n = q[2].isEqualTo(q[3]) ? 3 : 4;
  AcGiFillType was = s.fillType();
  fillMode(s, true);
  s.polygon(n, pts);
  s.setFillType(was);
}

void drawFace(const AcDbFace* f, Sink& s) {
  AcGePoint3d q[4];
  for (Adesk::UInt16 i = 0; i < 4; ++i) f->getVertexAt(i, q[i]);
  for (Adesk::UInt16 i = 0; i < 4; ++i) {
    bool visible = true;
    f->isEdgeVisibleAt(i, visible);
    const AcGePoint3d& a = q[i];
    const AcGePoint3d& b = q[(i + 1) % 4];
    if (!visible || a.isEqualTo(b)) continue;
    AcGePoint3d e[2] = {a, b};
    s.polyline(2, e);
  }
}

void drawRegion(const AcDbRegion* r, Sink& s) {
  AcGeMatrix3d ocs = AcGeMatrix3d::planeToWorld(r->normal());
  for (const AcDbRegion::Loop& loop : r->loops()) {
    for (const AcDbRegion::Edge& e : loop) {
      if (!e.isArc) {
        AcGePoint3d p[2] = {AcGePoint3d(e.start.x, e.start.y, 0), AcGePoint3d(e.end.x, e.end.y, 0)};
        p[0].transformBy(ocs);
        p[1].transformBy(ocs);
        s.polyline(2, p);
        continue;
      }
      // The sweep from the start point to the end point, about the normal
      // or, clockwise, against it.
      AcGeVector3d n = r->normal().normal();
      if (!e.ccw) n = -n;
      AcGePoint3d c(e.center.x, e.center.y, 0), a(e.start.x, e.start.y, 0), b(e.end.x, e.end.y, 0);
      double a0 = std::atan2(a.y - c.y, a.x - c.x), a1 = std::atan2(b.y - c.y, b.x - c.x);
      double sweep = e.ccw ? a1 - a0 : a0 - a1;
      while (sweep <= 1e-12) sweep += kTwoPi;
      c.transformBy(ocs);
      a.transformBy(ocs);
      s.circularArc(c, e.radius, n, a - c, sweep);
    }
  }
}

void drawImageFrame(const AcDbRasterImage* img, Sink& s) {
  if (const AcDbWipeout* w = AcDbWipeout::cast(img)) {
    AcGePoint3dArray v;
    w->getVertices(v);
    if (v.size() >= 3) {
      // A wipeout covers what is under it in the background colour; its
      // frame is not drawn.
      AcGiFillType was = s.fillType();
      AcCmEntityColor c = s.trueColor();
      AcCmEntityColor bg;
      bg.setColorMethod(AcCmEntityColor::kNone);
      s.setTrueColor(bg);
      fillMode(s, true);
      s.polygon(static_cast<Adesk::UInt32>(v.size()), v.data());
      s.setFillType(was);
      s.setTrueColor(c);
    }
    return;
  }
  AcGePoint3d o;
  AcGeVector3d u, v;
  img->getOrientation(o, u, v);
  AcGePoint3d pts[4] = {o, o + u, o + u + v, o + v};
  s.polygon(4, pts);
}

// A ray or construction line: the part of it on the canvas, and a little
// beyond; nothing for extents, which infinite lines have none of.
void drawInfinite(const AcGePoint3d& base, const AcGeVector3d& dir, bool bothWays, Sink& s) {
  if (!(s.pixelsPerUnit() > 0) || dir.isZeroLength()) return;
  AcGeVector3d d = dir.normal();
  double dx = d.x, dy = d.y;
  double len2 = dx * dx + dy * dy;
  if (len2 < 1e-24) return;  // seen end on
  double r = 2 * s.viewHeight * 2;
  // Where |base + t d - centre| = r on the plan.
  double ox = base.x - s.viewCenterX, oy = base.y - s.viewCenterY;
  double b = ox * dx + oy * dy, c = ox * ox + oy * oy - r * r;
  double disc = b * b - len2 * c;
  if (disc <= 0) return;
  double t0 = (-b - std::sqrt(disc)) / len2, t1 = (-b + std::sqrt(disc)) / len2;
  if (!bothWays) t0 = std::max(t0, 0.0);
  if (t1 <= t0) return;
  AcGePoint3d e[2] = {base + d * t0, base + d * t1};
  s.polyline(2, e);
}

}  // namespace

bool drawHostEntity(AcDbEntity* e, Sink& s) {
  if (const AcDbLine* l = AcDbLine::cast(e)) return drawLine(l, s), true;
  if (const AcDbArc* a = AcDbArc::cast(e)) return drawArc(a, s), true;
  if (const AcDbCircle* c = AcDbCircle::cast(e)) return s.circle(fromOcs(c->normal(), c->center()), c->radius(), c->normal()), true;
  if (const AcDbEllipse* el = AcDbEllipse::cast(e)) return drawEllipse(el, s), true;
  if (const AcDbPolyline* p = AcDbPolyline::cast(e)) return drawLwPolyline(p, s), true;
  if (const AcDb2dPolyline* p = AcDb2dPolyline::cast(e)) return draw2dPolyline(p, s), true;
  if (const AcDb3dPolyline* p = AcDb3dPolyline::cast(e)) return draw3dPolyline(p, s), true;
  if (const AcDbPolygonMesh* m = AcDbPolygonMesh::cast(e)) return drawPolygonMesh(m, s), true;
  if (const AcDbPolyFaceMesh* m = AcDbPolyFaceMesh::cast(e)) return drawPolyFaceMesh(m, s), true;
  if (const AcDbSpline* sp = AcDbSpline::cast(e)) return drawSampled(sp, s), true;
  if (const AcDbPoint* p = AcDbPoint::cast(e)) return drawPoint(p, s), true;
  if (const AcDbSolid* so = AcDbSolid::cast(e)) {
    AcGePoint3d q[4];
    for (Adesk::UInt16 i = 0; i < 4; ++i) so->getPointAt(i, q[i]), q[i] = fromOcs(so->normal(), q[i]);
    return drawQuad(q, s), true;
  }
  if (const AcDbTrace* tr = AcDbTrace::cast(e)) {
    AcGePoint3d q[4];
    for (Adesk::UInt16 i = 0; i < 4; ++i) tr->getPointAt(i, q[i]), q[i] = fromOcs(tr->normal(), q[i]);
    return drawQuad(q, s), true;
  }
  if (const AcDbFace* f = AcDbFace::cast(e)) return drawFace(f, s), true;
  if (const AcDbAttributeDefinition* d = AcDbAttributeDefinition::cast(e)) {
    // Outside a block a definition shows its tag.
    std::u16string tag = d->tag();
    if (!d->isInvisible()) drawText(d, s, &tag);
    return true;
  }
  if (const AcDbAttribute* a = AcDbAttribute::cast(e)) {
    if (!a->isInvisible()) drawText(a, s);
    return true;
  }
  if (const AcDbText* t = AcDbText::cast(e)) return drawText(t, s), true;
  if (const AcDbMText* t = AcDbMText::cast(e)) return drawMText(t, s), true;
  if (const AcDbHatch* h = AcDbHatch::cast(e)) return drawHatch(h, s), true;
  if (const AcDbRegion* r = AcDbRegion::cast(e)) return drawRegion(r, s), true;
  if (const AcDbRasterImage* img = AcDbRasterImage::cast(e)) return drawImageFrame(img, s), true;
  if (const AcDbRay* ray = AcDbRay::cast(e)) return drawInfinite(ray->basePoint(), ray->unitDir(), false, s), true;
  if (const AcDbXline* x = AcDbXline::cast(e)) return drawInfinite(x->basePoint(), x->unitDir(), true, s), true;
  if (const AcDbCurve* c = AcDbCurve::cast(e)) return drawSampled(c, s), true;
  return false;
}

}  // namespace zepk::render
