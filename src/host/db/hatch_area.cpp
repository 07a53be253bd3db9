// The area a hatch fills. Each loop's area comes from the integral of
// x dy - y dx along its edges: exact for lines, circular and elliptical
// arcs and bulged polyline segments, and over fine samples for splines.
// Loops nest by containment; the hatch style says which levels count:
// normal fills alternate levels (outer areas less their islands, plus
// islands inside those), outer fills the outermost level less the first
// islands, ignore fills the outermost level only.
#include <algorithm>
#include <cmath>
#include <vector>

#include "host/dbhatch.h"
#include "host/genurb3d.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
// The chord tolerance of spline samples, relative to the spline's size.
constexpr double kSplineChord = 1e-5;

struct Ring {
  double twiceArea = 0.0;           // signed, counter-clockwise positive
  std::vector<AcGePoint2d> points;  // samples along the loop, for containment
};

double cross(double ax, double ay, double bx, double by) { return ax * by - ay * bx; }

// Adds a straight piece.
void addLine(Ring& r, const AcGePoint2d& a, const AcGePoint2d& b) {
  r.twiceArea += cross(a.x, a.y, b.x, b.y);
  r.points.push_back(a);
}

// Adds the curve p(t) = c + u cos t + v sin t for t from t0 over sweep
// (signed). Its integral of p x dp is c x (p(t1) - p(t0)) + (u x v) sweep.
AcGePoint2d addConic(Ring& r, const AcGePoint2d& c, const AcGeVector2d& u, const AcGeVector2d& v, double t0,
                     double sweep) {
  auto at = [&](double t) { return AcGePoint2d(c.x + u.x * std::cos(t) + v.x * std::sin(t), c.y + u.y * std::cos(t) + v.y * std::sin(t)); };
  const AcGePoint2d p0 = at(t0), p1 = at(t0 + sweep);
  r.twiceArea += cross(c.x, c.y, p1.x - p0.x, p1.y - p0.y) + cross(u.x, u.y, v.x, v.y) * sweep;
  const int n = 8 + static_cast<int>(std::fabs(sweep) / (2 * kPi) * 64);
  for (int k = 0; k < n; ++k) r.points.push_back(at(t0 + sweep * k / n));
  return p1;
}

// The sweep of an arc from start to end angle counter-clockwise, in (0, 2pi].
double ccwSweep(double start, double end) {
  double s = std::fmod(end - start, 2 * kPi);
  if (s <= 1e-12) s += 2 * kPi;
  return s;
}

// An arc or elliptical edge: counter-clockwise from the start angle, or, for
// a clockwise edge (whose angles the file keeps negated), clockwise from
// minus the start angle.
AcGePoint2d addArcEdge(Ring& r, const AcGePoint2d& c, const AcGeVector2d& u, const AcGeVector2d& v,
                       const AcDbHatch::Edge& e) {
  const double sweep = ccwSweep(e.startAngle, e.endAngle);
  if (e.ccw) return addConic(r, c, u, v, e.startAngle, sweep);
  return addConic(r, c, u, v, -e.startAngle, -sweep);
}

// Adds the spline's samples; false when it has none.
bool addSpline(Ring& r, const AcDbHatch::Edge& e, AcGePoint2d& end) {
  AcGePoint3dArray pts;
  AcGePoint3dArray cps;
  for (const AcGePoint2d& p : e.controlPoints) cps.emplace_back(p.x, p.y, 0.0);
  AcGeNurbCurve3d nc;
  if (!cps.empty()) {
    AcGeDoubleArray knots(e.knots.begin(), e.knots.end());
    nc = e.rational && e.weights.size() == cps.size()
             ? AcGeNurbCurve3d(e.degree, knots, cps, AcGeDoubleArray(e.weights.begin(), e.weights.end()), e.periodic)
             : AcGeNurbCurve3d(e.degree, knots, cps, e.periodic);
  } else if (e.fitPoints.size() >= 2) {
    // A spline known by its fit points runs through them, with the end
    // tangents the file gives.
    AcGePoint3dArray fit;
    for (const AcGePoint2d& p : e.fitPoints) fit.emplace_back(p.x, p.y, 0.0);
    nc = AcGeNurbCurve3d(fit, AcGeVector3d(e.startTangent.x, e.startTangent.y, 0.0),
                         AcGeVector3d(e.endTangent.x, e.endTangent.y, 0.0), e.hasStartTangent, e.hasEndTangent,
                         e.degree > 0 ? e.degree : 3);
  }
  // Data that makes no curve (knots that do not fit) leaves it empty.
  if (nc.numControlPoints() > 0) {
    double lo = 0, hi = 0;
    nc.getInterval(lo, hi);
    // The curve lies within its control points: their spread is its size.
    cps.clear();
    for (int i = 0; i < nc.numControlPoints(); ++i) cps.push_back(nc.controlPointAt(i));
    double x0 = cps[0].x, x1 = x0, y0 = cps[0].y, y1 = y0;
    for (const AcGePoint3d& p : cps) x0 = std::min(x0, p.x), x1 = std::max(x1, p.x), y0 = std::min(y0, p.y), y1 = std::max(y1, p.y);
    const double size = std::hypot(x1 - x0, y1 - y0);
    AcGeDoubleArray params;
    if (std::isfinite(lo) && std::isfinite(hi) && hi > lo)
      nc.getSamplePoints(lo, hi, std::max(size * kSplineChord, 1e-9), pts, params);
  }
  if (pts.empty()) {
    // No curve could be made of the data: the fit points stand for it.
    for (const AcGePoint2d& p : e.fitPoints) pts.emplace_back(p.x, p.y, 0.0);
  }
  for (size_t k = 0; k + 1 < pts.size(); ++k)
    addLine(r, AcGePoint2d(pts[k].x, pts[k].y), AcGePoint2d(pts[k + 1].x, pts[k + 1].y));
  if (pts.empty()) return false;
  end.set(pts.back().x, pts.back().y);
  return true;
}

// A polyline segment from a to b with the bulge.
void addBulged(Ring& r, const AcGePoint2d& a, const AcGePoint2d& b, double bulge) {
  const double chord = std::hypot(b.x - a.x, b.y - a.y);
  if (std::fabs(bulge) < 1e-10 || chord == 0.0) return addLine(r, a, b);
  const double sweep = 4.0 * std::atan(bulge);
  const double radius = chord / (2.0 * std::sin(std::fabs(sweep) / 2.0));
  const double off = (radius - 0.5 * chord * std::fabs(bulge)) * (bulge > 0 ? 1.0 : -1.0);
  const double ux = (b.x - a.x) / chord, uy = (b.y - a.y) / chord;
  const AcGePoint2d c((a.x + b.x) / 2 - uy * off, (a.y + b.y) / 2 + ux * off);
  addConic(r, c, AcGeVector2d(radius, 0), AcGeVector2d(0, radius), std::atan2(a.y - c.y, a.x - c.x), sweep);
}

Ring ringOf(const AcDbHatch::Loop& loop) {
  Ring r;
  if (loop.type & AcDbHatch::kPolyline) {
    const size_t n = loop.vertices.size();
    for (size_t k = 0; k < n; ++k) {
      if (k + 1 == n && !loop.closed) break;
      addBulged(r, loop.vertices[k], loop.vertices[(k + 1) % n], k < loop.bulges.size() ? loop.bulges[k] : 0.0);
    }
    if (!loop.closed && n > 1) r.twiceArea += cross(loop.vertices[n - 1].x, loop.vertices[n - 1].y, loop.vertices[0].x, loop.vertices[0].y);
    if (!loop.closed && n > 0) r.points.push_back(loop.vertices[n - 1]);
    return r;
  }
  bool any = false;
  AcGePoint2d first, last;
  for (const AcDbHatch::Edge& e : loop.edges) {
    const size_t before = r.points.size();
    AcGePoint2d end;
    switch (e.type) {
      case AcDbHatch::kLine:
        addLine(r, e.start, e.end);
        end = e.end;
        break;
      case AcDbHatch::kCirArc:
        end = addArcEdge(r, e.center, AcGeVector2d(e.radius, 0), AcGeVector2d(0, e.radius), e);
        break;
      case AcDbHatch::kEllArc: {
        const AcGeVector2d u = e.majorAxis;
        const AcGeVector2d v = AcGeVector2d(-u.y, u.x) * e.minorMajorRatio;
        end = addArcEdge(r, e.center, u, v, e);
        break;
      }
      case AcDbHatch::kSpline:
        if (!addSpline(r, e, end)) continue;
        break;
      default:
        continue;
    }
    if (!any) first = r.points[before], any = true;
    last = end;
  }
  // A chain that does not come back to its start is closed by a chord.
  if (any) r.twiceArea += cross(last.x, last.y, first.x, first.y);
  return r;
}

// Whether the point lies inside the ring of samples (even-odd rule).
bool inside(const std::vector<AcGePoint2d>& ring, const AcGePoint2d& p) {
  bool in = false;
  for (size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
    const AcGePoint2d &a = ring[i], &b = ring[j];
    if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) in = !in;
  }
  return in;
}

// Whether ring a lies within ring b: most of its samples do.
bool within(const Ring& a, const Ring& b) {
  if (b.points.size() < 3 || std::fabs(a.twiceArea) >= std::fabs(b.twiceArea)) return false;
  size_t in = 0;
  for (const AcGePoint2d& p : a.points) in += inside(b.points, p) ? 1 : 0;
  return 2 * in > a.points.size();
}

}  // namespace

Acad::ErrorStatus AcDbHatch::getArea(double& area) const {
  assertReadEnabled();
  std::vector<Ring> rings;
  for (const Loop& loop : loops_) {
    // A loop that repeats another one adds nothing of its own.
    if (loop.type & kDuplicate) continue;
    Ring r = ringOf(loop);
    if (r.points.size() >= 2) rings.push_back(std::move(r));
  }
  area = 0.0;
  for (const Ring& r : rings) {
    int depth = 0;
    for (const Ring& other : rings)
      if (&other != &r && within(r, other)) ++depth;
    const double a = std::fabs(r.twiceArea) / 2.0;
    switch (hatchStyle()) {
      case kNormal: area += depth % 2 == 0 ? a : -a; break;
      case kOuter: area += depth == 0 ? a : depth == 1 ? -a : 0.0; break;
      case kIgnore: area += depth == 0 ? a : 0.0; break;
    }
  }
  return Acad::eOk;
}
