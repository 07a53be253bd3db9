#include "geometry/curves.h"

#include <algorithm>
#include <cmath>

#include "host/ads.h"
#include "host/dbelipse.h"
#include "host/dbspline.h"
#include "host/gearc2d.h"
#include "host/gearc3d.h"
#include "host/gecomp3d.h"
#include "host/geell3d.h"
#include "host/gemat3d.h"
#include "host/gelineseg2d.h"
#include "host/gelineseg3d.h"
#include "host/genurb3d.h"
#include "host/geplane.h"

namespace zepk::geometry {

namespace {

constexpr double kPi = 3.14159265358979323846;

Point P(const AcGePoint3d& p) { return {p.x, p.y, p.z}; }

bool isZ(const AcGeVector3d& n) { return std::fabs(n.x) < 1e-10 && std::fabs(n.y) < 1e-10 && n.z > 0; }
bool isMinusZ(const AcGeVector3d& n) { return std::fabs(n.x) < 1e-10 && std::fabs(n.y) < 1e-10 && n.z < 0; }

// A new polyline with the source's properties and extended data.
AcDbPolyline* newPolyLike(const AcDbEntity* source, const LwPoly& poly) {
  auto* pl = new AcDbPolyline();
  assignLwPoly(*pl, poly);
  if (source) {
    pl->setPropertiesFrom(source);
    if (resbuf* xd = source->xData()) {
      pl->setXData(xd);
      acutRelRb(xd);
    }
  }
  return pl;
}

// Calls f on each vertex of a 2D or 3D polyline, in or out of a drawing;
// the vertex is open for write when forWrite is set.
template <class Vertex, class Poly, class F>
bool eachVertex(const Poly* poly, bool forWrite, F f) {
  std::unique_ptr<AcDbObjectIterator> it(poly->vertexIterator());
  if (!it) return false;
  for (; !it->done(); it->step()) {
    if (AcDbEntity* e = it->entity()) {
      if (auto* v = Vertex::cast(e)) f(*v);
      continue;
    }
    AcDbObjectPointer<Vertex> v(it->objectId(), forWrite ? AcDb::kForWrite : AcDb::kForRead);
    if (!v) return false;
    f(*v.object());
  }
  return true;
}

double sweepOf(const AcDbArc* arc) {
  double sweep = arc->endAngle() - arc->startAngle();
  while (sweep <= 0) sweep += 2 * kPi;
  while (sweep > 2 * kPi) sweep -= 2 * kPi;
  return sweep;
}

// Straight polyline vertices through points, at the first one's z.
LwPoly straightThrough(const std::vector<AcGePoint3d>& pts, bool closed) {
  LwPoly poly;
  for (const AcGePoint3d& p : pts) poly.verts.push_back({P(p), 0.0});
  poly.closed = closed;
  if (!pts.empty()) poly.elevation = pts.front().z;
  return poly;
}

}  // namespace

LwPoly toLwPoly(const AcDbPolyline& pl) {
  LwPoly poly;
  poly.closed = pl.isClosed();
  poly.elevation = pl.elevation();
  const AcGeVector3d n = pl.normal();
  poly.normal = {n.x, n.y, n.z};
  poly.verts.reserve(pl.numVerts());
  for (unsigned i = 0; i < pl.numVerts(); ++i) {
    PolyVertex v;
    AcGePoint2d p;
    pl.getPointAt(i, p);
    v.pt = {p.x, p.y, poly.elevation};
    pl.getBulgeAt(i, v.bulge);
    pl.getWidthsAt(i, v.startWidth, v.endWidth);
    poly.verts.push_back(v);
  }
  return poly;
}

void assignLwPoly(AcDbPolyline& pl, const LwPoly& poly) {
  pl.reset(false, 0);
  for (unsigned i = 0; i < poly.verts.size(); ++i) {
    const PolyVertex& v = poly.verts[i];
    pl.addVertexAt(i, AcGePoint2d(v.pt.x, v.pt.y), v.bulge, v.startWidth, v.endWidth);
  }
  pl.setClosed(poly.closed);
  pl.setElevation(poly.elevation);
  pl.setNormal(AcGeVector3d(poly.normal.x, poly.normal.y, poly.normal.z));
}

std::unique_ptr<AcGeCurve3d> dbCurveToGeCurve(const AcDbCurve* curve) {
  if (!curve) return nullptr;
  AcGeCurve3d* ge = nullptr;
  if (curve->getAcGeCurve(ge) != Acad::eOk) {
    delete ge;
    return nullptr;
  }
  return std::unique_ptr<AcGeCurve3d>(ge);
}

std::unique_ptr<AcGeCompositeCurve2d> lwPolyToCurve2d(const LwPoly& poly) {
  if (poly.verts.size() < 2) return nullptr;
  auto c = std::make_unique<AcGeCompositeCurve2d>();
  const size_t n = poly.verts.size();
  for (size_t i = 0; i < poly.numSegments(); ++i) {
    const PolyVertex& v = poly.verts[i];
    const PolyVertex& w = poly.verts[(i + 1) % n];
    const AcGePoint2d a(v.pt.x, v.pt.y), b(w.pt.x, w.pt.y);
    // A segment of no length stays, as a point-like segment, so that piece
    // i is still the polyline's segment i.
    if (std::fabs(v.bulge) < kStraightBulge || a.isEqualTo(b))
      c->appendOwned(new AcGeLineSeg2d(a, b));
    else
      c->appendOwned(new AcGeCircArc2d(a, b, v.bulge));
  }
  return c;
}

namespace {

constexpr double kTwoPi = 2 * kPi;

// The angle of a direction in the coordinate system of a normal (the
// arbitrary axis rule), from its X axis.
double ocsAngle(const AcGeVector3d& dir, const AcGeVector3d& normal) {
  AcGeVector3d d = dir;
  d.transformBy(AcGeMatrix3d::worldToPlane(normal));
  return std::atan2(d.y, d.x);
}

AcDbCurve* arcToDb(const AcGeCircArc3d& arc) {
  if (arc.endAng() - arc.startAng() >= kTwoPi - 1e-12) return new AcDbCircle(arc.center(), arc.normal(), arc.radius());
  const AcGeVector3d n = arc.normal();
  return new AcDbArc(arc.center(), n, arc.radius(), ocsAngle(arc.startPoint() - arc.center(), n),
                     ocsAngle(arc.endPoint() - arc.center(), n));
}

AcDbCurve* ellipseToDb(const AcGeEllipArc3d& e) {
  AcGeVector3d major = e.majorAxis() * e.majorRadius(), minor = e.minorAxis() * e.minorRadius();
  double start = e.startAng(), end = e.endAng();
  if (e.majorRadius() <= 0 || e.minorRadius() <= 0) return nullptr;
  if (e.minorRadius() > e.majorRadius()) {
    // The longer axis leads: the point at t on the old axes is the point
    // at t - pi/2 on (minor, -major).
    const AcGeVector3d m = major;
    major = minor;
    minor = -m;
    start -= kPi / 2;
    end -= kPi / 2;
  }
  const AcGeVector3d n = major.crossProduct(minor).normal();
  const double ratio = minor.length() / major.length();
  auto* out = new AcDbEllipse(e.center(), n, major, ratio);
  if (end - start < kTwoPi - 1e-12) {
    // Parameters, not angles; an arc over the zero parameter ends below
    // where it starts.
    auto wrap = [](double t) {
      t = std::fmod(t, kTwoPi);
      return t < 0 ? t + kTwoPi : t;
    };
    out->setStartParam(wrap(start));
    out->setEndParam(wrap(end) == 0.0 ? kTwoPi : wrap(end));
  }
  return out;
}

AcDbCurve* nurbsToDb(const AcGeNurbCurve3d& c) {
  if (c.numControlPoints() < 2) return nullptr;
  AcGePoint3dArray pts;
  AcGeDoubleArray knots, weights;
  for (int i = 0; i < c.numControlPoints(); ++i) pts.push_back(c.controlPointAt(i));
  for (int i = 0; i < c.numKnots(); ++i) knots.push_back(c.knotAt(i));
  const bool rational = c.isRational();
  if (rational)
    for (int i = 0; i < c.numControlPoints(); ++i) weights.push_back(c.weightAt(i));
  double period = 0.0;
  return new AcDbSpline(c.degree(), rational, c.isClosed(), c.isPeriodic(period), pts, knots, weights);
}

// A composite of segments and arcs in one plane as a polyline in it.
AcDbCurve* compositeToDb(const AcGeCompositeCurve3d& c) {
  if (c.numCurves() == 0) return nullptr;
  AcGePlane plane;
  if (!c.isPlanar(plane)) return nullptr;
  AcGeVector3d n = plane.normal();
  const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(n);
  auto inPlane = [&](AcGePoint3d p) { return p.transformBy(toPlane); };
  LwPoly poly;
  poly.normal = {n.x, n.y, n.z};
  bool haveElevation = false;
  for (int i = 0; i < c.numCurves(); ++i) {
    const AcGeCurve3d& piece = c.curveAt(i);
    double lo, hi;
    piece.getInterval(lo, hi);
    const AcGePoint3d s = inPlane(piece.evalPoint(lo));
    if (!haveElevation) poly.elevation = s.z, haveElevation = true;
    double bulge = 0.0;
    if (piece.type() == AcGe::kCircArc3d) {
      const auto& arc = static_cast<const AcGeCircArc3d&>(piece);
      // Counter-clockwise about the plane's normal is a positive bulge.
      const double sweep = arc.endAng() - arc.startAng();
      bulge = std::tan(sweep / 4) * (arc.normal().dotProduct(n) >= 0 ? 1.0 : -1.0);
    } else if (piece.type() != AcGe::kLineSeg3d) {
      return nullptr;
    }
    poly.verts.push_back({{s.x, s.y, s.z}, bulge});
  }
  double lo, hi;
  c.getInterval(lo, hi);
  const AcGePoint3d first = c.evalPoint(lo), last = c.evalPoint(hi);
  if (first.isEqualTo(last) && poly.verts.size() > 1) {
    poly.closed = true;
  } else {
    const AcGePoint3d e = inPlane(last);
    poly.verts.push_back({{e.x, e.y, e.z}});
  }
  auto* pl = new AcDbPolyline();
  assignLwPoly(*pl, poly);
  return pl;
}

}  // namespace

AcDbCurve* geCurveToDbCurve(const AcGeCurve3d* curve) {
  if (!curve) return nullptr;
  switch (curve->type()) {
    case AcGe::kLineSeg3d: {
      double lo, hi;
      curve->getInterval(lo, hi);
      return new AcDbLine(curve->evalPoint(lo), curve->evalPoint(hi));
    }
    case AcGe::kCircArc3d: return arcToDb(static_cast<const AcGeCircArc3d&>(*curve));
    case AcGe::kEllipArc3d: return ellipseToDb(static_cast<const AcGeEllipArc3d&>(*curve));
    case AcGe::kNurbCurve3d: return nurbsToDb(static_cast<const AcGeNurbCurve3d&>(*curve));
    case AcGe::kCompositeCrv3d: return compositeToDb(static_cast<const AcGeCompositeCurve3d&>(*curve));
    default: return nullptr;
  }
}

AcDbCurve* geCurveToDbCurve(const AcGeCurve2d* curve) {
  if (!curve) return nullptr;
  std::unique_ptr<AcGeCurve3d> c(curve->to3d());
  return geCurveToDbCurve(c.get());
}

std::vector<AcGePoint3d> sampleCurve(const AcDbCurve* curve, double chordTolerance, bool dropClosingPoint) {
  std::vector<AcGePoint3d> out;
  if (!curve) return out;
  double endParam = 0.0, length = 0.0;
  curve->getEndParam(endParam);
  if (curve->getDistAtParam(endParam, length) != Acad::eOk || length < kNoShapeLength) {
    // No shape: its two end points, whatever it is.
    AcGePoint3d s, e;
    if (curve->getStartPoint(s) == Acad::eOk && curve->getEndPoint(e) == Acad::eOk) out = {s, e};
    if (length >= kNoShapeLength || !out.empty()) return out;
  }
  std::unique_ptr<AcGeCurve3d> ge = dbCurveToGeCurve(curve);
  if (!ge) {
    acutPrintf(u"\n创建几何曲线失败");
    return out;
  }
  if (!(chordTolerance > 0)) chordTolerance = kChordTolerance;
  double lo, hi;
  ge->getInterval(lo, hi);
  double from = lo, to = hi;
  if (AcDbEllipse::cast(curve)) {
    curve->getStartParam(from);
    curve->getEndParam(to);
  } else if (AcDbCircle::cast(curve)) {
    from = 0.0, to = 2 * kPi;
  } else if (AcDbPolyline::cast(curve) || AcDb2dPolyline::cast(curve)) {
    from = 0.0, to = endParam;
  } else if (!curve->isClosed()) {
    AcGePoint3d s, e;
    if (curve->getStartPoint(s) == Acad::eOk && curve->getEndPoint(e) == Acad::eOk) {
      from = ge->paramOf(s);
      to = ge->paramOf(e);
    }
  }
  if (std::isfinite(lo)) from = std::max(from, lo), to = std::max(to, lo);
  if (std::isfinite(hi)) from = std::min(from, hi), to = std::min(to, hi);
  AcGePoint3dArray pts;
  AcGeDoubleArray params;
  ge->getSamplePoints(from, to, chordTolerance, pts, params);
  if (dropClosingPoint && ge->isClosed() && !pts.empty()) pts.pop_back();
  out.reserve(pts.size());
  for (const AcGePoint3d& p : pts)
    if (out.empty() || out.back().distanceTo(p) > kSamePoint) out.push_back(p);
  return out;
}

std::vector<AcGePoint3d> sampleCurveByCount(const AcDbCurve* curve, int count, bool dropClosingPoint) {
  std::vector<AcGePoint3d> out;
  if (!curve) return out;
  double endParam = 0.0, length = 0.0;
  curve->getEndParam(endParam);
  if (curve->getDistAtParam(endParam, length) != Acad::eOk || length < kNoShapeLength) {
    AcGePoint3d s, e;
    if (curve->getStartPoint(s) == Acad::eOk && curve->getEndPoint(e) == Acad::eOk) out = {s, e};
    return out;
  }
  std::unique_ptr<AcGeCurve3d> ge = dbCurveToGeCurve(curve);
  if (!ge) {
    acutPrintf(u"\n创建几何曲线失败");
    return out;
  }
  ge->getSamplePoints(std::max(count, 1) + 1, out);
  if (dropClosingPoint && ge->isClosed() && !out.empty()) out.pop_back();
  return out;
}

AcDbPolyline* sampledCurveToLwPoly(const AcDbCurve* curve, bool withArcs, double chordTolerance) {
  if (!curve) return nullptr;
  const bool closed = curve->isClosed();
  if (!withArcs) {
    std::vector<AcGePoint3d> s = sampleCurve(curve, chordTolerance, true);
    if (s.empty()) return nullptr;
    return newPolyLike(curve, straightThrough(s, closed));
  }
  const std::vector<AcGePoint3d> s = sampleCurve(curve, chordTolerance / 2, true);
  if (s.empty()) return nullptr;
  LwPoly poly;
  poly.elevation = s.front().z;
  // Each three samples (0,1,2), (2,3,4), ... make an arc from the first.
  size_t i = 0;
  for (; i + 2 < s.size(); i += 2) poly.verts.push_back({P(s[i]), calBulge(P(s[i]), P(s[i + 1]), P(s[i + 2]))});
  const size_t left = s.size() - i;
  if (left == 1) {
    poly.verts.push_back({P(s[i]), 0.0});
    poly.closed = closed;
  } else if (left == 2) {
    if (closed) {
      // The last arc runs through the last sample back to the first point.
      poly.verts.push_back({P(s[i]), calBulge(P(s[i]), P(s[i + 1]), P(s[0]))});
      poly.closed = true;
    } else {
      poly.verts.push_back({P(s[i]), 0.0});
      poly.verts.push_back({P(s[i + 1]), 0.0});
    }
  }
  return newPolyLike(curve, poly);
}

AcDbPolyline* curveToLwPoly(const AcDbCurve* curve) {
  if (!curve) return nullptr;
  if (auto* pl = AcDbPolyline::cast(curve)) {
    AcDbPolyline* copy = newPolyLike(pl, toLwPoly(*pl));
    // Only a width every vertex shares is set as the constant one: setting
    // it sets every vertex's.
    double width = 0;
    if (pl->getConstantWidth(width) == Acad::eOk) copy->setConstantWidth(width);
    copy->setThickness(pl->thickness());
    copy->setPlinegen(pl->hasPlinegen());
    return copy;
  }
  if (auto* p2 = AcDb2dPolyline::cast(curve)) {
    if (p2->polyType() != AcDb::k2dSimplePoly) return sampledCurveToLwPoly(curve, false, kChordTolerance);
    LwPoly poly;
    poly.elevation = p2->elevation();
    const AcGeVector3d n = p2->normal();
    poly.normal = {n.x, n.y, n.z};
    const bool ok = eachVertex<AcDb2dVertex>(p2, false, [&](const AcDb2dVertex& v) {
      poly.verts.push_back({P(v.position()), v.bulge(), v.startWidth(), v.endWidth()});
    });
    if (!ok) return nullptr;
    poly.closed = p2->isClosed();
    AcDbPolyline* pl = newPolyLike(p2, poly);
    pl->setThickness(p2->thickness());
    return pl;
  }
  if (auto* line = AcDbLine::cast(curve)) {
    const AcGePoint3d s = line->startPoint(), e = line->endPoint();
    LwPoly poly;
    poly.verts = {{P(s), 0.0}, {P(e), 0.0}};
    poly.elevation = s.z;
    return newPolyLike(line, poly);
  }
  if (auto* arc = AcDbArc::cast(curve)) {
    const AcGeVector3d n = arc->normal();
    if (!isZ(n) && !isMinusZ(n)) return sampledCurveToLwPoly(curve, true, kChordTolerance);
    AcGePoint3d s, e;
    arc->getStartPoint(s);
    arc->getEndPoint(e);
    // Seen from above, an arc whose normal points down runs clockwise.
    const double bulge = std::tan(sweepOf(arc) * 0.25) * (isZ(n) ? 1.0 : -1.0);
    LwPoly poly;
    poly.verts = {{P(s), bulge}, {P(e), 0.0}};
    poly.elevation = arc->center().z;
    return newPolyLike(arc, poly);
  }
  if (auto* circle = AcDbCircle::cast(curve)) {
    const AcGeVector3d n = circle->normal();
    if (!isZ(n) && !isMinusZ(n)) return sampledCurveToLwPoly(curve, true, kChordTolerance);
    AcGePoint3d a, b;
    circle->getPointAtParam(0.0, a);
    circle->getPointAtParam(kPi, b);
    const double bulge = isZ(n) ? 1.0 : -1.0;
    LwPoly poly;
    poly.verts = {{P(a), bulge}, {P(b), bulge}};
    poly.closed = true;
    poly.elevation = circle->center().z;
    return newPolyLike(circle, poly);
  }
  if (AcDbEllipse::cast(curve) || AcDbSpline::cast(curve)) return sampledCurveToLwPoly(curve, true, kChordTolerance);
  if (auto* p3 = AcDb3dPolyline::cast(curve)) {
    std::vector<AcGePoint3d> pts;
    const bool ok = eachVertex<AcDb3dPolylineVertex>(p3, false, [&](const AcDb3dPolylineVertex& v) {
      if (v.vertexType() != AcDb::k3dControlVertex) pts.push_back(v.position());
    });
    if (!ok || pts.empty()) return nullptr;
    return newPolyLike(p3, straightThrough(pts, p3->isClosed()));
  }
  return nullptr;
}

bool curvePolyPoints(const AcDbCurve* curve, int segmentsPerArc, PolyPoints& out) {
  LwPoly poly;
  if (auto* pl = AcDbPolyline::cast(curve)) {
    poly = toLwPoly(*pl);
  } else if (auto* arc = AcDbArc::cast(curve)) {
    AcGePoint3d s, m, e;
    double from = 0, to = 0;
    arc->getStartParam(from);
    arc->getEndParam(to);
    arc->getStartPoint(s);
    arc->getEndPoint(e);
    arc->getPointAtParam((from + to) / 2, m);
    poly.verts = {{P(s), calBulge(P(s), P(m), P(e))}, {P(e), 0.0}};
    poly.elevation = s.z;
  } else if (auto* circle = AcDbCircle::cast(curve)) {
    AcGePoint3d a, b;
    circle->getPointAtParam(0.0, a);
    circle->getPointAtParam(kPi, b);
    poly.verts = {{P(a), 1.0}, {P(b), 1.0}};
    poly.closed = true;
    poly.elevation = a.z;
  } else if (AcDb2dPolyline::cast(curve)) {
    std::unique_ptr<AcDbPolyline> pl(curveToLwPoly(curve));
    if (!pl) return false;
    poly = toLwPoly(*pl);
  } else {
    return false;
  }
  out = polySegmentPoints(poly, segmentsPerArc);
  return true;
}

std::vector<AcDbPolyline*> regionToLwPolys(const AcDbRegion* region) {
  std::vector<AcDbPolyline*> result;
  if (!region) return result;
  std::vector<LwPoly> edges;
  // Explode until only curves are left: regions inside go round again.
  std::vector<AcDbEntity*> work;
  {
    AcDbVoidPtrArray parts;
    if (region->explode(parts) != Acad::eOk) return result;
    for (void* p : parts) work.push_back(static_cast<AcDbEntity*>(p));
  }
  while (!work.empty()) {
    std::unique_ptr<AcDbEntity> e(work.back());
    work.pop_back();
    if (auto* inner = AcDbRegion::cast(e.get())) {
      AcDbVoidPtrArray parts;
      if (inner->explode(parts) == Acad::eOk)
        for (void* p : parts) work.push_back(static_cast<AcDbEntity*>(p));
      continue;
    }
    auto* curve = AcDbCurve::cast(e.get());
    if (!curve) continue;
    LwPoly edge;
    if (auto* line = AcDbLine::cast(curve)) {
      edge.verts = {{P(line->startPoint()), 0.0}, {P(line->endPoint()), 0.0}};
    } else if (auto* arc = AcDbArc::cast(curve)) {
      AcGePoint3d s, en;
      arc->getStartPoint(s);
      arc->getEndPoint(en);
      const double bulge = std::tan(sweepOf(arc) * 0.25) * (isMinusZ(arc->normal()) ? -1.0 : 1.0);
      edge.verts = {{P(s), bulge}, {P(en), 0.0}};
    } else if (auto* circle = AcDbCircle::cast(curve)) {
      AcGePoint3d a, b;
      circle->getPointAtParam(0.0, a);
      circle->getPointAtParam(kPi, b);
      const double bulge = isMinusZ(circle->normal()) ? -1.0 : 1.0;
      edge.verts = {{P(a), bulge}, {P(b), bulge}};
      edge.closed = true;
    } else {
      // Ellipses, splines and the rest: straight through their samples.
      const bool closed = curve->isClosed();
      if (closed && AcDbSpline::cast(curve)) acutPrintf(u"\nSPline闭合...");
      std::vector<AcGePoint3d> s = sampleCurve(curve, kChordTolerance, closed);
      if (s.size() < 2) continue;
      edge = straightThrough(s, closed);
    }
    if (!edge.verts.empty()) edge.elevation = edge.verts.front().pt.z;
    edges.push_back(std::move(edge));
  }
  // The edges came off the work list last first: chain them in their order.
  std::reverse(edges.begin(), edges.end());
  for (LwPoly& ring : chainEdges(std::move(edges), AcGeContext::gTol.equalPoint())) {
    ring.closed = true;
    result.push_back(newPolyLike(region, ring));
  }
  return result;
}

Acad::ErrorStatus reverseCurve(AcDbCurve* curve) {
  if (!curve) return Acad::eNullObjectPointer;
  if (auto* pl = AcDbPolyline::cast(curve)) {
    assignLwPoly(*pl, reversed(toLwPoly(*pl)));
    return Acad::eOk;
  }
  if (auto* line = AcDbLine::cast(curve)) {
    const AcGePoint3d s = line->startPoint();
    line->setStartPoint(line->endPoint());
    line->setEndPoint(s);
    return Acad::eOk;
  }
  if (auto* p2 = AcDb2dPolyline::cast(curve)) {
    LwPoly poly;
    if (!eachVertex<AcDb2dVertex>(p2, false, [&](const AcDb2dVertex& v) {
          poly.verts.push_back({P(v.position()), v.bulge(), v.startWidth(), v.endWidth()});
        }))
      return Acad::eInvalidInput;
    poly.closed = p2->isClosed();
    const LwPoly r = reversed(poly);
    size_t i = 0;
    if (!eachVertex<AcDb2dVertex>(p2, true, [&](AcDb2dVertex& v) {
          if (i >= r.verts.size()) return;
          const PolyVertex& w = r.verts[i++];
          v.setPosition(AcGePoint3d(w.pt.x, w.pt.y, v.position().z));
          v.setBulge(w.bulge);
          v.setStartWidth(w.startWidth);
          v.setEndWidth(w.endWidth);
        }))
      return Acad::eInvalidInput;
    return Acad::eOk;
  }
  if (auto* p3 = AcDb3dPolyline::cast(curve)) {
    std::vector<AcGePoint3d> pts;
    if (!eachVertex<AcDb3dPolylineVertex>(p3, false,
                                           [&](const AcDb3dPolylineVertex& v) { pts.push_back(v.position()); }))
      return Acad::eInvalidInput;
    std::reverse(pts.begin(), pts.end());
    size_t i = 0;
    if (!eachVertex<AcDb3dPolylineVertex>(p3, true, [&](AcDb3dPolylineVertex& v) {
          if (i < pts.size()) v.setPosition(pts[i++]);
        }))
      return Acad::eInvalidInput;
    return Acad::eOk;
  }
  if (auto* sp = AcDbSpline::cast(curve)) {
    // A spline defined by fit points is those points run backwards, its
    // tangents turned round; the control frame follows from them.
    AcGePoint3dArray fit;
    int fitDegree = 0;
    double fitTol = 0;
    bool tangents = false;
    AcGeVector3d st, et;
    if (sp->hasFitData() && sp->getFitData(fit, fitDegree, fitTol, tangents, st, et) == Acad::eOk) {
      std::reverse(fit.begin(), fit.end());
      const AcGeVector3d zero(0, 0, 0);
      return sp->setFitData(fit, fitDegree, fitTol, tangents ? -et : zero, tangents ? -st : zero);
    }
    int degree;
    bool rational, closed, periodic;
    AcGePoint3dArray ctrl;
    AcGeDoubleArray knots, weights;
    double ctrlTol, knotTol;
    Acad::ErrorStatus es = sp->getNurbsData(degree, rational, closed, periodic, ctrl, knots, weights, ctrlTol, knotTol);
    if (es != Acad::eOk) return es;
    std::reverse(ctrl.begin(), ctrl.end());
    std::reverse(weights.begin(), weights.end());
    if (!knots.empty()) {
      // Knots mirrored within their range keep the spacing, backwards.
      const double a = knots.front(), b = knots.back();
      std::reverse(knots.begin(), knots.end());
      for (double& k : knots) k = a + b - k;
    }
    return sp->setNurbsData(degree, rational, closed, periodic, ctrl, knots, weights, ctrlTol, knotTol);
  }
  return Acad::eNotApplicable;
}

Acad::ErrorStatus rotateClosedPolyStart(AcDbPolyline* poly, unsigned int index) {
  if (!poly) return Acad::eNullObjectPointer;
  if (poly->objectId().isValid() && !poly->isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!poly->isClosed()) return Acad::eNotApplicable;
  if (index >= poly->numVerts()) return Acad::eInvalidIndex;
  assignLwPoly(*poly, rotatedStart(toLwPoly(*poly), index));
  return Acad::eOk;
}

}  // namespace zepk::geometry
