#include "geometry/kernel.h"

#include <algorithm>
#include <cmath>

namespace zepk::geometry {

namespace {

constexpr double kPi = 3.14159265358979323846;
// No arc is cut into more pieces than this, whatever the tolerance asked.
constexpr size_t kMaxArcPieces = size_t{1} << 16;

double dist2d(const Point& a, const Point& b) { return std::hypot(b.x - a.x, b.y - a.y); }

bool samePoint(const Point& a, const Point& b, double tol) {
  return std::fabs(a.x - b.x) <= tol && std::fabs(a.y - b.y) <= tol && std::fabs(a.z - b.z) <= tol;
}

// The arc of a segment: centre, radius, start angle and signed sweep.
struct Arc {
  Point center;
  double radius = 0.0;
  double startAngle = 0.0;
  double sweep = 0.0;  // positive counter-clockwise
};

// The arc of the segment from a to b with the bulge; false for a straight one.
bool arcOf(const Point& a, const Point& b, double bulge, Arc& arc) {
  if (std::fabs(bulge) < kStraightBulge) return false;
  const double chord = dist2d(a, b);
  if (chord == 0.0) return false;
  arc.sweep = 4.0 * std::atan(bulge);
  arc.radius = chord / (2.0 * std::sin(std::fabs(arc.sweep) / 2.0));
  // The centre lies to the left of the chord for a counter-clockwise arc,
  // at the distance r - sagitta from its middle.
  const double sagitta = 0.5 * chord * std::fabs(bulge);
  const double offset = (arc.radius - sagitta) * (bulge > 0 ? 1.0 : -1.0);
  const double ux = (b.x - a.x) / chord, uy = (b.y - a.y) / chord;
  arc.center = {(a.x + b.x) / 2 - uy * offset, (a.y + b.y) / 2 + ux * offset, a.z};
  arc.startAngle = std::atan2(a.y - arc.center.y, a.x - arc.center.x);
  return true;
}

Point onArc(const Arc& arc, double share, double z) {
  const double t = arc.startAngle + share * arc.sweep;
  return {arc.center.x + arc.radius * std::cos(t), arc.center.y + arc.radius * std::sin(t), z};
}

const PolyVertex& nextVertex(const LwPoly& poly, size_t i) { return poly.verts[(i + 1) % poly.verts.size()]; }

}  // namespace

double angleOf(const Point& a, const Point& b) {
  double t = std::atan2(b.y - a.y, b.x - a.x);
  if (t < 0) t += 2 * kPi;
  return t;
}

double planeDistance(const Point& a, const Point& b) { return dist2d(a, b); }

double calBulge(const Point& start, const Point& middle, const Point& end) {
  // The two angles are not brought into one turn: the tangent's period of
  // pi makes a difference of 2pi in them give the same bulge.
  return std::tan(0.5 * (angleOf(middle, end) - angleOf(start, middle)));
}

bool getCenter(const Point& start, const Point& end, double bulge, Point& center) {
  if (std::fabs(bulge) < kNoCenterBulge) {
    center = start;
    return false;
  }
  Point s = start, e = end;
  if (bulge < 0) {
    std::swap(s, e);
    bulge = -bulge;
  }
  const double d = dist2d(s, e) / 2.0;
  const double h = d * bulge;
  const double a = angleOf(s, e);
  const Point mid{s.x + d * std::cos(a), s.y + d * std::sin(a), s.z};
  const double toCenter = (h * h + d * d) / (2.0 * h) - h;
  center = {mid.x + toCenter * std::cos(a + kPi / 2), mid.y + toCenter * std::sin(a + kPi / 2), mid.z};
  return true;
}

Point getArcMidPoint(const Point& start, const Point& end, double bulge) {
  Point mid{(start.x + end.x) / 2, (start.y + end.y) / 2, (start.z + end.z) / 2};
  if (std::fabs(bulge) < kStraightBulge) return mid;
  const double dx = end.x - start.x, dy = end.y - start.y;
  const double chord = std::hypot(dx, dy);
  if (chord == 0.0) return mid;
  // (end - start) crossed with +z points to the right of the travel: a
  // counter-clockwise arc swells that way.
  const double h = 0.5 * chord * bulge;
  mid.x += h * dy / chord;
  mid.y += h * -dx / chord;
  return mid;
}

double signedArea(const std::vector<Point>& ring) {
  const size_t n = ring.size();
  if (n < 3) return 0.0;
  double sum = 0.0;
  for (size_t i = 0; i < n; ++i) {
    const Point& a = ring[i];
    const Point& b = ring[(i + 1) % n];
    sum += a.x * b.y - a.y * b.x;
  }
  return 0.5 * sum;
}

bool isClockwise(const std::vector<Point>& ring) {
  if (ring.empty()) return false;
  double sum = 0.0;
  const Point* p = &ring.back();
  for (const Point& c : ring) {
    sum += p->x * c.y - p->y * c.x;
    p = &c;
  }
  return sum < 0.0;
}

bool isClockwise3(const Point& a, const Point& b, const Point& c) {
  return (c.y - a.y) * (b.x - a.x) < (b.y - a.y) * (c.x - a.x);
}

double roundTo(double value, int digits) {
  double whole;
  const double fraction = std::modf(value, &whole);
  const double scale = std::pow(10.0, digits);
  const double nudged = std::trunc(fraction * scale + (value < 0 ? -0.5001 : 0.5001));
  return whole + nudged / scale;
}

Point pointAtParam(const LwPoly& poly, double param) {
  const size_t n = poly.verts.size();
  if (n == 0) return {0, 0, poly.elevation};
  const size_t segments = poly.numSegments();
  if (segments == 0 || !(param > 0)) {
    const Point& p = poly.verts[0].pt;
    return {p.x, p.y, poly.elevation};
  }
  if (param >= static_cast<double>(segments)) {
    const Point& p = poly.closed ? poly.verts[0].pt : poly.verts[n - 1].pt;
    return {p.x, p.y, poly.elevation};
  }
  const size_t i = static_cast<size_t>(param);
  const double share = param - static_cast<double>(i);
  const PolyVertex& v = poly.verts[i];
  const Point& b = nextVertex(poly, i).pt;
  Arc arc;
  if (arcOf(v.pt, b, v.bulge, arc)) return onArc(arc, share, poly.elevation);
  return {v.pt.x + share * (b.x - v.pt.x), v.pt.y + share * (b.y - v.pt.y), poly.elevation};
}

PolyPoints polySegmentPoints(const LwPoly& poly, int segmentsPerArc) {
  PolyPoints out;
  const size_t n = poly.verts.size();
  if (n == 0) return out;
  const int k = segmentsPerArc < 2 ? 1 : segmentsPerArc;
  const double step = 1.0 / k;
  const size_t last = poly.closed ? n : n - 1;
  auto emit = [&](const Point& p, double bulge) {
    out.points.push_back({p.x, p.y, poly.elevation});
    out.bulges.push_back(bulge);
  };
  for (size_t i = 0; i < last; ++i) {
    const PolyVertex& v = poly.verts[i];
    const bool hasNext = poly.closed || i + 1 < n;
    if (hasNext && n > 1 && samePoint(v.pt, nextVertex(poly, i).pt, kSameVertex)) continue;
    if (std::fabs(v.bulge) <= kStraightBulge || k == 1) {
      emit(v.pt, v.bulge);
      continue;
    }
    Point start = v.pt;
    for (int j = 0; j < k; ++j) {
      const double base = static_cast<double>(i);
      const Point middle = pointAtParam(poly, base + step * (j + 0.5));
      const Point end = j + 1 == k ? pointAtParam(poly, base + 1.0) : pointAtParam(poly, base + step * (j + 1));
      emit(start, calBulge(start, middle, end));
      start = end;
    }
  }
  if (!poly.closed) emit(poly.verts[n - 1].pt, 0.0);
  return out;
}

std::vector<Point> samplePoly(const LwPoly& poly, double chordTolerance, bool dropClosingPoint) {
  std::vector<Point> out;
  const size_t n = poly.verts.size();
  if (n == 0) return out;
  if (!(chordTolerance > 0)) chordTolerance = kChordTolerance;
  auto keep = [&](const Point& p) {
    const Point q{p.x, p.y, poly.elevation};
    if (out.empty() || !samePoint(out.back(), q, kSamePoint)) out.push_back(q);
  };
  const size_t segments = poly.numSegments();
  out.reserve(n + 1);
  for (size_t i = 0; i < segments; ++i) {
    const PolyVertex& v = poly.verts[i];
    const Point& b = nextVertex(poly, i).pt;
    keep(v.pt);
    Arc arc;
    if (!arcOf(v.pt, b, v.bulge, arc)) continue;
    // The largest angle whose chord stays within the tolerance of the arc.
    const double x = std::clamp(1.0 - chordTolerance / arc.radius, -1.0, 1.0);
    const double maxStep = 2.0 * std::acos(x);
    size_t pieces = 1;
    if (maxStep > 0) {
      const double want = std::ceil(std::fabs(arc.sweep) / maxStep);
      pieces = want >= static_cast<double>(kMaxArcPieces) ? kMaxArcPieces : std::max<size_t>(1, static_cast<size_t>(want));
    } else {
      pieces = kMaxArcPieces;
    }
    for (size_t j = 1; j < pieces; ++j) keep(onArc(arc, static_cast<double>(j) / pieces, poly.elevation));
  }
  if (poly.closed) {
    if (!dropClosingPoint) {
      const Point& p = poly.verts[0].pt;
      out.push_back({p.x, p.y, poly.elevation});
    }
  } else {
    keep(poly.verts[n - 1].pt);
  }
  if (segments == 0 && out.empty()) keep(poly.verts[0].pt);
  return out;
}

double polyLength(const LwPoly& poly) {
  double length = 0.0;
  for (size_t i = 0; i < poly.numSegments(); ++i) {
    const PolyVertex& v = poly.verts[i];
    const Point& b = nextVertex(poly, i).pt;
    Arc arc;
    length += arcOf(v.pt, b, v.bulge, arc) ? arc.radius * std::fabs(arc.sweep) : dist2d(v.pt, b);
  }
  return length;
}

double polySignedArea(const LwPoly& poly) {
  const size_t n = poly.verts.size();
  if (n < 2) return 0.0;
  double sum = 0.0;
  for (size_t i = 0; i < n; ++i) {
    const PolyVertex& v = poly.verts[i];
    const Point& b = nextVertex(poly, i).pt;
    sum += 0.5 * (v.pt.x * b.y - v.pt.y * b.x);
    Arc arc;
    // The circular segment between chord and arc: a counter-clockwise arc
    // swells to the right of its chord, outward for a counter-clockwise ring.
    if (arcOf(v.pt, b, v.bulge, arc)) {
      const double t = std::fabs(arc.sweep);
      const double piece = 0.5 * arc.radius * arc.radius * (t - std::sin(t));
      sum += v.bulge > 0 ? piece : -piece;
    }
  }
  return sum;
}

LwPoly reversed(const LwPoly& poly) {
  LwPoly out = poly;
  const size_t n = poly.verts.size();
  if (n < 2) return out;
  for (size_t k = 0; k < n; ++k) {
    PolyVertex& to = out.verts[k];
    to.pt = poly.verts[n - 1 - k].pt;
    // The segment that leaves the new vertex k used to end at it: the old
    // segment n-2-k, or for the last vertex of a closed polyline the old
    // closing segment.
    const PolyVertex* from = nullptr;
    if (k + 1 < n) from = &poly.verts[n - 2 - k];
    else if (poly.closed) from = &poly.verts[n - 1];
    if (from) {
      to.bulge = -from->bulge;
      to.startWidth = from->endWidth;
      to.endWidth = from->startWidth;
    } else {
      to.bulge = 0.0;
      to.startWidth = poly.verts[0].endWidth;
      to.endWidth = poly.verts[0].startWidth;
    }
  }
  return out;
}

LwPoly rotatedStart(const LwPoly& poly, size_t index) {
  if (!poly.closed || index == 0 || index >= poly.verts.size()) return poly;
  LwPoly out = poly;
  std::rotate(out.verts.begin(), out.verts.begin() + static_cast<std::ptrdiff_t>(index), out.verts.end());
  out.closed = true;
  return out;
}

std::vector<LwPoly> chainEdges(std::vector<LwPoly> edges, double tolerance) {
  std::vector<LwPoly> rings;
  std::vector<LwPoly> open;
  for (LwPoly& e : edges) {
    if (e.verts.empty()) continue;
    if (e.closed) rings.push_back(std::move(e));
    else open.push_back(std::move(e));
  }
  auto endOf = [](const LwPoly& p) { return p.verts.back().pt; };
  while (!open.empty()) {
    LwPoly chain = std::move(open.front());
    open.erase(open.begin());
    while (!open.empty() && !samePoint(endOf(chain), chain.verts.front().pt, tolerance)) {
      const Point end = endOf(chain);
      double best = 999999999.0;
      size_t pick = 0;
      bool turn = false;
      for (size_t i = 0; i < open.size(); ++i) {
        const double toStart = dist2d(end, open[i].verts.front().pt);
        if (toStart < best) best = toStart, pick = i, turn = false;
        const double toEnd = dist2d(end, open[i].verts.back().pt);
        if (toEnd < best) best = toEnd, pick = i, turn = true;
      }
      LwPoly next = turn ? reversed(open[pick]) : std::move(open[pick]);
      open.erase(open.begin() + static_cast<std::ptrdiff_t>(pick));
      chain.verts.insert(chain.verts.end(), next.verts.begin(), next.verts.end());
    }
    chain.closed = true;
    // A vertex that repeats its successor goes (the successor of the last
    // is the first); the successor keeps its bulge, the one of the segment
    // that starts there.
    std::vector<PolyVertex> kept;
    const size_t n = chain.verts.size();
    for (size_t i = 0; i < n; ++i)
      if (n == 1 || !samePoint(chain.verts[i].pt, chain.verts[(i + 1) % n].pt, tolerance)) kept.push_back(chain.verts[i]);
    if (kept.empty()) kept.push_back(chain.verts.front());
    chain.verts = std::move(kept);
    rings.push_back(std::move(chain));
  }
  return rings;
}

}  // namespace zepk::geometry

namespace zepk::geometry {

namespace {

double dist3d(const Point& a, const Point& b) { return std::sqrt((b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y) + (b.z - a.z) * (b.z - a.z)); }

// Parallel as the host tests it, with the tolerance as the bound on the
// cross product of the two unit directions; a direction of no length is
// parallel to nothing.
bool parallel(const Point& a, const Point& b, const Point& c, const Point& d, double tol) {
  double ux = b.x - a.x, uy = b.y - a.y, uz = b.z - a.z;
  double vx = d.x - c.x, vy = d.y - c.y, vz = d.z - c.z;
  const double lu = std::sqrt(ux * ux + uy * uy + uz * uz), lv = std::sqrt(vx * vx + vy * vy + vz * vz);
  if (lu <= tol || lv <= tol) return false;
  ux /= lu, uy /= lu, uz /= lu;
  vx /= lv, vy /= lv, vz /= lv;
  const double cx = uy * vz - uz * vy, cy = uz * vx - ux * vz, cz = ux * vy - uy * vx;
  return std::sqrt(cx * cx + cy * cy + cz * cz) <= tol;
}

bool straight(double bulge) { return std::fabs(bulge) < kStraightBulge; }

}  // namespace

DumpedVertices dumpVertices(const std::vector<PolyVertex>& verts, bool closed, double tolerance, bool dropCollinear) {
  DumpedVertices out;
  out.verts = verts;
  out.source.resize(verts.size());
  for (size_t i = 0; i < verts.size(); ++i) out.source[i] = i;
  std::vector<PolyVertex>& v = out.verts;
  size_t i = 0;
  while (v.size() >= 3 && i < v.size()) {
    const size_t n = v.size();
    const bool hasNext = closed || i + 1 < n;
    const bool hasPrev = closed || i > 0;
    const size_t next = (i + 1) % n, prev = (i + n - 1) % n;
    bool drop = false;
    if (hasNext && dist3d(v[i].pt, v[next].pt) <= tolerance) {
      if (straight(v[next].bulge)) v[next].bulge = v[i].bulge;
      drop = true;
    } else if (dropCollinear && hasNext && hasPrev && straight(v[prev].bulge) && straight(v[i].bulge) &&
               parallel(v[prev].pt, v[i].pt, v[i].pt, v[next].pt, tolerance)) {
      drop = true;
    }
    if (!drop) {
      ++i;
      continue;
    }
    v.erase(v.begin() + static_cast<std::ptrdiff_t>(i));
    out.source.erase(out.source.begin() + static_cast<std::ptrdiff_t>(i));
    // Removing the vertex before the first one of a closed ring shifts nothing
    // that was already looked at; the walk goes on at the same index.
  }
  return out;
}

LwPoly dumpPoints(const LwPoly& poly, double tolerance, bool dropCollinear) {
  LwPoly out = poly;
  out.verts = dumpVertices(poly.verts, poly.closed, tolerance, dropCollinear).verts;
  return out;
}

namespace {

bool sameVerts(const std::vector<PolyVertex>& a, const std::vector<PolyVertex>& b, double tol) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (dist3d(a[i].pt, b[i].pt) > tol || std::fabs(a[i].bulge - b[i].bulge) > tol) return false;
  }
  return true;
}

}  // namespace

bool sameCurve(const CurveShape& a, const CurveShape& b, double lengthTolerance, double pointTolerance) {
  if (a.kind != b.kind || a.closed != b.closed || a.verts.size() != b.verts.size()) return false;
  if (std::fabs(a.length - b.length) > lengthTolerance) return false;
  LwPoly fwd;
  fwd.verts = b.verts;
  fwd.closed = b.closed;
  const LwPoly back = reversed(fwd);
  // A closed curve has no distinguished start: it is the same ring drawn
  // from any of its vertices.
  const size_t starts = a.closed ? a.verts.size() : 1;
  for (size_t k = 0; k < starts; ++k) {
    if (sameVerts(a.verts, rotatedStart(fwd, k).verts, pointTolerance) ||
        sameVerts(a.verts, rotatedStart(back, k).verts, pointTolerance))
      return true;
  }
  return false;
}

}  // namespace zepk::geometry
