// Selection geometry on plain paths: segments and arcs against straight
// edges, points against polygons, extents with arcs.
#include "host/editor/selgeom.h"

#include <algorithm>
#include <cmath>

namespace zepk::editor::selgeom {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kEps = 1e-9;

Pt sub(Pt a, Pt b) { return {a.x - b.x, a.y - b.y}; }
double cross(Pt a, Pt b) { return a.x * b.y - a.y * b.x; }
double dot(Pt a, Pt b) { return a.x * b.x + a.y * b.y; }
double len(Pt a) { return std::hypot(a.x, a.y); }

// One segment of a path: straight, or an arc about c of radius r from
// angle a0 sweeping by sweep (signed, counter-clockwise positive).
struct Seg {
  Pt a, b;
  bool arc = false;
  Pt c;
  double r = 0, a0 = 0, sweep = 0;
};

Seg makeSeg(Pt a, Pt b, double bulge) {
  Seg s;
  s.a = a;
  s.b = b;
  Pt d = sub(b, a);
  double chord = len(d);
  if (std::fabs(bulge) < 1e-12 || chord == 0) return s;
  s.arc = true;
  double k = (1 - bulge * bulge) / (4 * bulge);  // centre offset per chord length
  Pt left{-d.y, d.x};
  s.c = {(a.x + b.x) / 2 + left.x * k, (a.y + b.y) / 2 + left.y * k};
  s.r = chord * (1 + bulge * bulge) / (4 * std::fabs(bulge));
  s.a0 = std::atan2(a.y - s.c.y, a.x - s.c.x);
  s.sweep = 4 * std::atan(bulge);
  return s;
}

// Whether the direction at angle ang from the centre falls on the arc.
bool onArc(const Seg& s, double ang) {
  double t = s.sweep > 0 ? ang - s.a0 : s.a0 - ang;
  t = std::fmod(t, 2 * kPi);
  if (t < 0) t += 2 * kPi;
  double sw = std::fabs(s.sweep);
  return t <= sw + kEps || t >= 2 * kPi - kEps;
}

template <class F>
void forSegments(const Path& p, F f) {
  size_t n = p.pts.size();
  if (n < 2) return;
  size_t segs = p.closed ? n : n - 1;
  for (size_t i = 0; i < segs; ++i) f(makeSeg(p.pts[i], p.pts[(i + 1) % n], p.bulge(i)));
}

// Straight segments pq and rs meet (touching included).
bool linesMeet(Pt p, Pt q, Pt r, Pt s) {
  Pt d1 = sub(q, p), d2 = sub(s, r), w = sub(r, p);
  double scale = std::max({len(d1), len(d2), 1e-300});
  double den = cross(d1, d2);
  if (std::fabs(den) <= kEps * scale * scale) {
    // Parallel: they meet only when on one line and overlapping.
    if (std::fabs(cross(w, d1)) > kEps * scale * std::max(len(w), scale)) return false;
    double l1 = dot(d1, d1);
    if (l1 == 0) {
      double l2 = dot(d2, d2);
      if (l2 == 0) return len(w) <= kEps * scale;
      double t = dot(sub(p, r), d2) / l2;
      return t >= -kEps && t <= 1 + kEps;
    }
    double t0 = dot(w, d1) / l1, t1 = dot(sub(s, p), d1) / l1;
    if (t0 > t1) std::swap(t0, t1);
    return t1 >= -kEps && t0 <= 1 + kEps;
  }
  double t = cross(w, d2) / den, u = cross(w, d1) / den;
  return t >= -kEps && t <= 1 + kEps && u >= -kEps && u <= 1 + kEps;
}

// A straight segment pq meets the arc.
bool lineMeetsArc(Pt p, Pt q, const Seg& s) {
  Pt d = sub(q, p), f = sub(p, s.c);
  double A = dot(d, d), B = 2 * dot(f, d), C = dot(f, f) - s.r * s.r;
  double tol = kEps * std::max(s.r, 1.0);
  if (A == 0) return std::fabs(len(f) - s.r) <= tol && onArc(s, std::atan2(f.y, f.x));
  double disc = B * B - 4 * A * C;
  if (disc < 0) {
    // A tangent that rounding moved off the circle.
    if (disc < -tol * A * s.r * 8) return false;
    disc = 0;
  }
  double sq = std::sqrt(disc);
  for (double t : {(-B - sq) / (2 * A), (-B + sq) / (2 * A)}) {
    if (t < -kEps || t > 1 + kEps) continue;
    Pt x{p.x + d.x * t, p.y + d.y * t};
    if (onArc(s, std::atan2(x.y - s.c.y, x.x - s.c.x))) return true;
  }
  return false;
}

bool segMeetsLine(const Seg& s, Pt p, Pt q) { return s.arc ? lineMeetsArc(p, q, s) : linesMeet(s.a, s.b, p, q); }

double distToLine(Pt p, Pt a, Pt b) {
  Pt d = sub(b, a);
  double l = dot(d, d);
  double t = l == 0 ? 0 : std::clamp(dot(sub(p, a), d) / l, 0.0, 1.0);
  return len(sub(p, {a.x + d.x * t, a.y + d.y * t}));
}

double distToSeg(const Seg& s, Pt p) {
  if (!s.arc) return distToLine(p, s.a, s.b);
  Pt v = sub(p, s.c);
  if (len(v) > 0 && onArc(s, std::atan2(v.y, v.x))) return std::fabs(len(v) - s.r);
  return std::min(len(sub(p, s.a)), len(sub(p, s.b)));
}

template <class F>
bool anyVertex(const Shape& s, F f) {
  for (const Path& p : s.paths)
    for (Pt v : p.pts)
      if (f(v)) return true;
  return false;
}

// Some segment of the shape meets one of the straight edges.
bool meetsEdges(const Shape& s, const std::vector<Pt>& pts, bool closed) {
  size_t n = pts.size();
  if (n == 0) return false;
  size_t edges = n == 1 ? 1 : closed ? n : n - 1;
  for (const Path& p : s.paths) {
    if (p.pts.size() == 1) {
      for (size_t i = 0; i < edges; ++i)
        if (distToLine(p.pts[0], pts[i], pts[(i + 1) % n]) <= kEps) return true;
      continue;
    }
    bool hit = false;
    forSegments(p, [&](const Seg& g) {
      for (size_t i = 0; i < edges && !hit; ++i) hit = segMeetsLine(g, pts[i], pts[(i + 1) % n]);
    });
    if (hit) return true;
  }
  return false;
}

// Inside the area of a filled shape (even-odd over its closed paths; arcs
// count by a fine chord approximation).
bool insideFill(const Shape& s, Pt q) {
  if (!s.filled) return false;
  bool in = false;
  for (const Path& p : s.paths) {
    if (!p.closed || p.pts.size() < 2 || (p.pts.size() == 2 && p.bulge(0) == 0 && p.bulge(1) == 0)) continue;
    std::vector<Pt> ring;
    forSegments(p, [&](const Seg& g) {
      ring.push_back(g.a);
      if (g.arc) {
        int n = std::max(2, static_cast<int>(std::ceil(std::fabs(g.sweep) / (kPi / 180))));
        for (int k = 1; k < n; ++k) {
          double a = g.a0 + g.sweep * k / n;
          ring.push_back({g.c.x + g.r * std::cos(a), g.c.y + g.r * std::sin(a)});
        }
      }
    });
    if (pointInPolygon(q, ring)) in = !in;
  }
  return in;
}

std::vector<Pt> rectangle(const Box& b) { return {b.lo, {b.hi.x, b.lo.y}, b.hi, {b.lo.x, b.hi.y}}; }

}  // namespace

void Box::add(Pt p) {
  lo.x = std::min(lo.x, p.x);
  lo.y = std::min(lo.y, p.y);
  hi.x = std::max(hi.x, p.x);
  hi.y = std::max(hi.y, p.y);
}

Box windowOf(Pt a, Pt b) {
  Box w;
  w.add(a);
  w.add(b);
  return w;
}

Box extents(const Shape& s) {
  Box b;
  for (const Path& p : s.paths) {
    for (Pt v : p.pts) b.add(v);
    forSegments(p, [&](const Seg& g) {
      if (!g.arc) return;
      for (int k = 0; k < 4; ++k) {
        double a = k * kPi / 2;
        if (onArc(g, a)) b.add({g.c.x + g.r * std::cos(a), g.c.y + g.r * std::sin(a)});
      }
    });
  }
  return b;
}

bool pointInPolygon(Pt p, const std::vector<Pt>& poly) {
  bool in = false;
  size_t n = poly.size();
  for (size_t i = 0, j = n - 1; i < n; j = i++) {
    Pt a = poly[i], b = poly[j];
    if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) in = !in;
  }
  return in;
}

bool insideWindow(const Shape& s, const Box& w) {
  Box e = extents(s);
  return !e.empty() && e.lo.x >= w.lo.x && e.lo.y >= w.lo.y && e.hi.x <= w.hi.x && e.hi.y <= w.hi.y;
}

bool crossesWindow(const Shape& s, const Box& w) {
  if (insideWindow(s, w)) return true;
  return crossesPolygon(s, rectangle(w));
}

bool insidePolygon(const Shape& s, const std::vector<Pt>& poly) {
  if (poly.size() < 3 || s.paths.empty()) return false;
  bool any = false;
  if (anyVertex(s, [&](Pt v) { return any = true, !pointInPolygon(v, poly); })) return false;
  return any && !meetsEdges(s, poly, true);
}

bool crossesPolygon(const Shape& s, const std::vector<Pt>& poly) {
  if (poly.size() < 3) return false;
  if (anyVertex(s, [&](Pt v) { return pointInPolygon(v, poly); })) return true;
  if (meetsEdges(s, poly, true)) return true;
  return insideFill(s, poly[0]);
}

bool crossesFence(const Shape& s, const std::vector<Pt>& fence) {
  if (fence.empty()) return false;
  if (fence.size() >= 2 && meetsEdges(s, fence, false)) return true;
  return insideFill(s, fence[0]);
}

double distanceTo(const Shape& s, Pt q) {
  if (insideFill(s, q)) return 0;
  double best = 1e300;
  for (const Path& p : s.paths) {
    if (p.pts.size() == 1) best = std::min(best, len(sub(q, p.pts[0])));
    forSegments(p, [&](const Seg& g) { best = std::min(best, distToSeg(g, q)); });
  }
  return best;
}

}  // namespace zepk::editor::selgeom
