// The geometry of each curve class for the shared curve operations, the
// extensions used by intersections, and what only polylines do: their
// segments, explosion and the conversions between the two 2D forms.
#include <cmath>
#include <memory>

#include "host/db/curve_internal.h"
#include "host/dbelipse.h"
#include "host/dbpl.h"
#include "host/dbray.h"
#include "host/dbspline.h"
#include "host/dbxline.h"
#include "host/gearc3d.h"
#include "host/gecomp3d.h"
#include "host/geell3d.h"
#include "host/gelin3d.h"
#include "host/gelineseg2d.h"
#include "host/gelineseg3d.h"
#include "host/gemat3d.h"
#include "host/genurb3d.h"
#include "host/geray3d.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

AcGeCircArc3d arcOf(const AcGePoint3d& c, const AcGeVector3d& n, double r, double s, double e) {
  return AcGeCircArc3d(c, n, n.perpVector(), r, s, e);
}

// The rest of an arc's circle, from the arc's end round to its start.
AcGeCircArc3d* complement(const AcGeCircArc3d& a) {
  double sweep = a.endAng() - a.startAng();
  if (sweep >= 2 * kPi - 1e-12) return nullptr;
  return new AcGeCircArc3d(a.center(), a.normal(), a.refVec(), a.radius(), a.endAng(), a.startAng() + 2 * kPi);
}

// A polyline's composite of segments and arcs, one piece per vertex
// (pieces of no length kept, so that the parameter counts vertices).
Acad::ErrorStatus composite(const AcGePoint3dArray& pts, const AcGeDoubleArray& bulges, bool closed,
                            const AcGeVector3d& normal, AcGeCurve3d*& out) {
  out = nullptr;
  size_t n = pts.size();
  if (n < 2) return Acad::eDegenerateGeometry;
  auto* c = new AcGeCompositeCurve3d();
  size_t segs = closed ? n : n - 1;
  for (size_t i = 0; i < segs; ++i)
    c->appendOwned(zepk::ge::bulgeSegment(pts[i], pts[(i + 1) % n], i < bulges.size() ? bulges[i] : 0.0, normal));
  out = c;
  return Acad::eOk;
}

// The extensions of an open polyline's end pieces: before its start and
// after its end, each running away from the polyline.
void extendEnds(const AcGeCompositeCurve3d& c, std::vector<AcGeCurve3d*>& out) {
  if (c.numCurves() == 0) return;
  const AcGeCurve3d& first = c.curveAt(0);
  const AcGeCurve3d& last = c.curveAt(c.numCurves() - 1);
  double lo, hi;
  if (first.isKindOf(AcGe::kLinearEnt3d)) {
    const auto& s = static_cast<const AcGeLinearEnt3d&>(first);
    first.getInterval(lo, hi);
    if (!s.direction().isZeroLength()) out.push_back(new AcGeRay3d(first.evalPoint(lo), -s.direction()));
  } else if (first.type() == AcGe::kCircArc3d) {
    if (AcGeCircArc3d* r = complement(static_cast<const AcGeCircArc3d&>(first))) {
      r->reverseParam();
      out.push_back(r);
    }
  }
  if (last.isKindOf(AcGe::kLinearEnt3d)) {
    const auto& s = static_cast<const AcGeLinearEnt3d&>(last);
    last.getInterval(lo, hi);
    if (!s.direction().isZeroLength()) out.push_back(new AcGeRay3d(last.evalPoint(hi), s.direction()));
  } else if (last.type() == AcGe::kCircArc3d) {
    if (AcGeCircArc3d* r = complement(static_cast<const AcGeCircArc3d&>(last))) out.push_back(r);
  }
}

// Lines and arcs of a polyline's pieces, with its properties; arcs face
// the polyline's normal.
void explodePieces(const AcGeCurve3d* geom, const AcGeVector3d& normal, const AcDbEntity* like,
                   AcDbVoidPtrArray& out) {
  const auto& c = static_cast<const AcGeCompositeCurve3d&>(*geom);
  for (int i = 0; i < c.numCurves(); ++i) {
    const AcGeCurve3d& k = c.curveAt(i);
    AcDbEntity* e = nullptr;
    if (k.type() == AcGe::kCircArc3d) {
      e = zepk::db::arcFromGe(static_cast<const AcGeCircArc3d&>(k), normal);
    } else {
      const auto& s = static_cast<const AcGeLineSeg3d&>(k);
      if (s.length() == 0.0) continue;
      e = new AcDbLine(s.startPoint(), s.endPoint());
    }
    e->setPropertiesFrom(like);
    out.push_back(e);
  }
}

}  // namespace

// ---------------------------------------------------------------- lines, rays, xlines

Acad::ErrorStatus AcDbLine::getAcGeCurve(AcGeCurve3d*& pGeCurve) const {
  pGeCurve = new AcGeLineSeg3d(start_, end_);
  return Acad::eOk;
}

double AcDbLine::geParamScale() const {
  double l = start_.distanceTo(end_);
  return l > 0 ? l : 1.0;
}

void AcDbLine::getExtendedGeCurves(std::vector<AcGeCurve3d*>& curves) const {
  curves.push_back(new AcGeLineSeg3d(start_, end_));
  AcGeVector3d d = end_ - start_;
  if (d.isZeroLength()) return;
  curves.push_back(new AcGeRay3d(start_, -d));
  curves.push_back(new AcGeRay3d(end_, d));
}

Acad::ErrorStatus AcDbRay::getAcGeCurve(AcGeCurve3d*& pGeCurve) const {
  pGeCurve = new AcGeRay3d(basePoint_, unitDir_);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbXline::getAcGeCurve(AcGeCurve3d*& pGeCurve) const {
  pGeCurve = new AcGeLine3d(basePoint_, unitDir_);
  return Acad::eOk;
}

// ---------------------------------------------------------------- circles, arcs, ellipses

Acad::ErrorStatus AcDbCircle::getAcGeCurve(AcGeCurve3d*& pGeCurve) const {
  pGeCurve = nullptr;
  if (radius_ <= 0) return Acad::eDegenerateGeometry;
  pGeCurve = new AcGeCircArc3d(arcOf(center_, normal_, radius_, 0.0, 2 * kPi));
  return Acad::eOk;
}

double AcDbCircle::circumference() const { return 2 * kPi * radius_; }

Acad::ErrorStatus AcDbCircle::setCircumference(double c) { return setRadius(c / (2 * kPi)); }

Acad::ErrorStatus AcDbArc::getAcGeCurve(AcGeCurve3d*& pGeCurve) const {
  pGeCurve = nullptr;
  if (radius_ <= 0) return Acad::eDegenerateGeometry;
  pGeCurve = new AcGeCircArc3d(arcOf(center_, normal_, radius_, startAngle_, endAngle_));
  return Acad::eOk;
}

double AcDbArc::totalAngle() const {
  double s = std::fmod(endAngle_ - startAngle_, 2 * kPi);
  return s < 0 ? s + 2 * kPi : s;
}

void AcDbArc::getExtendedGeCurves(std::vector<AcGeCurve3d*>& curves) const {
  AcGeCurve3d* c = nullptr;
  if (getAcGeCurve(c) != Acad::eOk) return;
  curves.push_back(c);
  if (AcGeCircArc3d* r = complement(*static_cast<AcGeCircArc3d*>(c))) curves.push_back(r);
}

Acad::ErrorStatus AcDbEllipse::getAcGeCurve(AcGeCurve3d*& pGeCurve) const {
  pGeCurve = nullptr;
  double a = majorAxis_.length();
  if (a <= 0) return Acad::eDegenerateGeometry;
  pGeCurve = new AcGeEllipArc3d(center_, majorAxis_, normal_.crossProduct(majorAxis_), a, a * ratio_, startParam_,
                                endParam_);
  return Acad::eOk;
}

void AcDbEllipse::getExtendedGeCurves(std::vector<AcGeCurve3d*>& curves) const {
  AcGeCurve3d* c = nullptr;
  if (getAcGeCurve(c) != Acad::eOk) return;
  curves.push_back(c);
  auto* e = static_cast<AcGeEllipArc3d*>(c);
  if (!e->isClosed()) {
    auto* rest = new AcGeEllipArc3d(*e);
    rest->setAngles(e->endAng(), e->startAng() + 2 * kPi);
    curves.push_back(rest);
  }
}

// ---------------------------------------------------------------- splines

Acad::ErrorStatus AcDbSpline::getAcGeCurve(AcGeCurve3d*& pGeCurve) const {
  pGeCurve = nullptr;
  if (!controlPoints_.empty()) {
    auto* n = new AcGeNurbCurve3d(degree_, knots_, controlPoints_, isRational() ? weights_ : AcGeDoubleArray(),
                                  isPeriodic());
    if (n->numControlPoints() == 0) {
      delete n;
      return Acad::eDegenerateGeometry;
    }
    pGeCurve = n;
    return Acad::eOk;
  }
  if (fitPoints_.size() < 2) return Acad::eDegenerateGeometry;
  // A spline of fit points alone: the curve through them, its knots the
  // chord lengths along the points.
  AcGeNurbCurve3d fitted(fitPoints_, startTangent_, endTangent_, !startTangent_.isZeroLength(),
                         !endTangent_.isZeroLength(), degree_ > 0 ? degree_ : 3);
  if (fitted.numControlPoints() == 0) return Acad::eDegenerateGeometry;
  double chord = 0;
  for (size_t i = 1; i < fitPoints_.size(); ++i) chord += fitPoints_[i].distanceTo(fitPoints_[i - 1]);
  AcGeDoubleArray knots = fitted.knots();
  for (double& k : knots) k *= chord;
  AcGePoint3dArray pts;
  for (int i = 0; i < fitted.numControlPoints(); ++i) pts.push_back(fitted.controlPointAt(i));
  pGeCurve = new AcGeNurbCurve3d(fitted.degree(), knots, pts);
  return Acad::eOk;
}

// ---------------------------------------------------------------- lightweight polylines

Acad::ErrorStatus AcDbPolyline::getAcGeCurve(AcGeCurve3d*& pGeCurve) const {
  AcGePoint3dArray pts;
  AcGeDoubleArray bulges;
  for (unsigned int i = 0; i < numVerts(); ++i) {
    AcGePoint3d p;
    getPointAt(i, p);
    pts.push_back(p);
    bulges.push_back(verts_[i].bulge);
  }
  return composite(pts, bulges, isClosed(), normal_, pGeCurve);
}

void AcDbPolyline::getExtendedGeCurves(std::vector<AcGeCurve3d*>& curves) const {
  AcGeCurve3d* c = nullptr;
  if (getAcGeCurve(c) != Acad::eOk) return;
  curves.push_back(c);
  if (!isClosed()) extendEnds(static_cast<const AcGeCompositeCurve3d&>(*c), curves);
}

Acad::ErrorStatus AcDbPolyline::getLineSegAt(unsigned int index, AcGeLineSeg3d& ln) const {
  SegType t = segType(index);
  if (t == kEmpty || t == kPoint) return Acad::eInvalidIndex;
  if (t == kArc) return Acad::eNotApplicable;
  AcGePoint3d a, b;
  getPointAt(index, a);
  getPointAt((index + 1) % numVerts(), b);
  ln.set(a, b);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getLineSegAt(unsigned int index, AcGeLineSeg2d& ln) const {
  SegType t = segType(index);
  if (t == kEmpty || t == kPoint) return Acad::eInvalidIndex;
  if (t == kArc) return Acad::eNotApplicable;
  ln.set(verts_[index].point, verts_[(index + 1) % numVerts()].point);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getArcSegAt(unsigned int index, AcGeCircArc3d& arc) const {
  SegType t = segType(index);
  if (t == kEmpty || t == kPoint) return Acad::eInvalidIndex;
  if (t != kArc) return Acad::eNotApplicable;
  AcGePoint3d a, b;
  getPointAt(index, a);
  getPointAt((index + 1) % numVerts(), b);
  std::unique_ptr<AcGeCurve3d> seg(zepk::ge::bulgeSegment(a, b, verts_[index].bulge, normal_));
  if (seg->type() != AcGe::kCircArc3d) return Acad::eNotApplicable;
  arc = static_cast<const AcGeCircArc3d&>(*seg);
  return Acad::eOk;
}

bool AcDbPolyline::onSegAt(unsigned int index, const AcGePoint2d& pt2d, double& param) const {
  SegType t = segType(index);
  if (t != kLine && t != kArc) return false;
  const AcGePoint2d& a = verts_[index].point;
  const AcGePoint2d& b = verts_[(index + 1) % numVerts()].point;
  std::unique_ptr<AcGeCurve3d> seg(zepk::ge::bulgeSegment({a.x, a.y, 0}, {b.x, b.y, 0}, verts_[index].bulge,
                                                          AcGeVector3d::kZAxis));
  AcGePoint3d p(pt2d.x, pt2d.y, 0);
  double s;
  if (!seg->isOn(p, s, AcGeTol())) {
    if (seg->distanceTo(p) > std::max(1e-9, 1e-12 * std::max(std::fabs(p.x), std::fabs(p.y)))) return false;
    s = seg->paramOf(p);
  }
  double lo, hi;
  seg->getInterval(lo, hi);
  param = index + (hi > lo ? (s - lo) / (hi - lo) : 0.0);
  return true;
}

Acad::ErrorStatus AcDbPolyline::explode(AcDbVoidPtrArray& entitySet) const {
  AcGeCurve3d* c = nullptr;
  Acad::ErrorStatus es = getAcGeCurve(c);
  if (es != Acad::eOk) return es;
  explodePieces(c, normal_, this, entitySet);
  delete c;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::convertFrom(AcDbEntity*& pPline, bool transferId) {
  auto* src = AcDb2dPolyline::cast(pPline);
  if (!src) return Acad::eInvalidInput;
  if (src->polyType() != AcDb::k2dSimplePoly) return Acad::eNotApplicable;
  if (transferId && !src->objectId().isNull()) return Acad::eNotApplicable;
  std::unique_ptr<AcDbObjectIterator> it(src->vertexIterator());
  struct V {
    AcGePoint3d p;
    double bulge, sw, ew;
  };
  std::vector<V> vs;
  for (; !it->done(); it->step()) {
    AcDb2dVertex* v = AcDb2dVertex::cast(it->entity());
    bool opened = false;
    if (!v && acdbOpenObject(v, it->objectId(), AcDb::kForRead) == Acad::eOk) opened = true;
    if (!v) continue;
    vs.push_back({v->position(), v->bulge(), v->startWidth(), v->endWidth()});
    if (opened) v->close();
  }
  reset(false, 0);
  for (size_t i = 0; i < vs.size(); ++i)
    addVertexAt(static_cast<unsigned int>(i), {vs[i].p.x, vs[i].p.y}, vs[i].bulge, vs[i].sw, vs[i].ew);
  setNormal(src->normal());
  setElevation(src->elevation());
  setThickness(src->thickness());
  setClosed(src->isClosed());
  setPlinegen(src->isLinetypeGenerationOn());
  setPropertiesFrom(src);
  if (transferId) {
    delete src;
    pPline = this;
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::convertTo(AcDb2dPolyline*& pPline, bool transferId) const {
  pPline = nullptr;
  if (transferId && !objectId().isNull()) return Acad::eNotApplicable;
  AcGePoint3dArray pts;
  AcGeDoubleArray bulges;
  for (const Vertex& v : verts_) {
    pts.push_back({v.point.x, v.point.y, elevation_});
    bulges.push_back(v.bulge);
  }
  auto* p = new AcDb2dPolyline(AcDb::k2dSimplePoly, pts, elevation_, isClosed(), 0.0, 0.0, &bulges);
  // Widths vertex by vertex.
  std::unique_ptr<AcDbObjectIterator> it(p->vertexIterator());
  for (size_t i = 0; !it->done() && i < verts_.size(); it->step(), ++i) {
    auto* v = AcDb2dVertex::cast(it->entity());
    if (!v) continue;
    double sw = verts_[i].startWidth < 0 ? constantWidth_ : verts_[i].startWidth;
    double ew = verts_[i].endWidth < 0 ? constantWidth_ : verts_[i].endWidth;
    v->setStartWidth(sw);
    v->setEndWidth(ew);
  }
  p->setNormal(normal_);
  p->setThickness(thickness_);
  if (hasPlinegen()) p->setLinetypeGenerationOn();
  p->setPropertiesFrom(this);
  pPline = p;
  return Acad::eOk;
}

// ---------------------------------------------------------------- old-style polylines

Acad::ErrorStatus AcDb2dPolyline::getCurveVertices(AcGePoint3dArray& points, AcGeDoubleArray& bulges) const {
  points.clear();
  bulges.clear();
  std::unique_ptr<AcDbObjectIterator> it(vertexIterator());
  for (; !it->done(); it->step()) {
    AcDb2dVertex* v = AcDb2dVertex::cast(it->entity());
    bool opened = false;
    if (!v) {
      Acad::ErrorStatus es = acdbOpenObject(v, it->objectId(), AcDb::kForRead);
      if (es != Acad::eOk) return es;
      opened = true;
    }
    // A spline-fit polyline's frame points are not on its curve.
    if (v->vertexType() != AcDb::k2dSplineCtlVertex) {
      points.push_back(vertexPosition(*v));
      bulges.push_back(v->bulge());
    }
    if (opened) v->close();
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::getAcGeCurve(AcGeCurve3d*& pGeCurve) const {
  pGeCurve = nullptr;
  AcGePoint3dArray pts;
  AcGeDoubleArray bulges;
  Acad::ErrorStatus es = getCurveVertices(pts, bulges);
  if (es != Acad::eOk) return es;
  return composite(pts, bulges, isClosed(), normal_, pGeCurve);
}

void AcDb2dPolyline::getExtendedGeCurves(std::vector<AcGeCurve3d*>& curves) const {
  AcGeCurve3d* c = nullptr;
  if (getAcGeCurve(c) != Acad::eOk) return;
  curves.push_back(c);
  if (!isClosed()) extendEnds(static_cast<const AcGeCompositeCurve3d&>(*c), curves);
}

Acad::ErrorStatus AcDb2dPolyline::explode(AcDbVoidPtrArray& entitySet) const {
  AcGeCurve3d* c = nullptr;
  Acad::ErrorStatus es = getAcGeCurve(c);
  if (es != Acad::eOk) return es;
  explodePieces(c, normal_, this, entitySet);
  delete c;
  return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::getCurveVertices(AcGePoint3dArray& points) const {
  points.clear();
  std::unique_ptr<AcDbObjectIterator> it(vertexIterator());
  for (; !it->done(); it->step()) {
    AcDb3dPolylineVertex* v = AcDb3dPolylineVertex::cast(it->entity());
    bool opened = false;
    if (!v) {
      Acad::ErrorStatus es = acdbOpenObject(v, it->objectId(), AcDb::kForRead);
      if (es != Acad::eOk) return es;
      opened = true;
    }
    if (v->vertexType() != AcDb::k3dControlVertex) points.push_back(v->position());
    if (opened) v->close();
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::getAcGeCurve(AcGeCurve3d*& pGeCurve) const {
  pGeCurve = nullptr;
  AcGePoint3dArray pts;
  Acad::ErrorStatus es = getCurveVertices(pts);
  if (es != Acad::eOk) return es;
  return composite(pts, AcGeDoubleArray(pts.size(), 0.0), isClosed(), AcGeVector3d::kZAxis, pGeCurve);
}

void AcDb3dPolyline::getExtendedGeCurves(std::vector<AcGeCurve3d*>& curves) const {
  AcGeCurve3d* c = nullptr;
  if (getAcGeCurve(c) != Acad::eOk) return;
  curves.push_back(c);
  if (!isClosed()) extendEnds(static_cast<const AcGeCompositeCurve3d&>(*c), curves);
}

Acad::ErrorStatus AcDb3dPolyline::explode(AcDbVoidPtrArray& entitySet) const {
  AcGeCurve3d* c = nullptr;
  Acad::ErrorStatus es = getAcGeCurve(c);
  if (es != Acad::eOk) return es;
  explodePieces(c, AcGeVector3d::kZAxis, this, entitySet);
  delete c;
  return Acad::eOk;
}
