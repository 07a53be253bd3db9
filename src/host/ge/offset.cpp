// Offsets of plane polylines with bulges.
#include "host/ge/offset.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "host/ge/boolean.h"
#include "host/ge/kernels.h"
#include "host/gearc3d.h"
#include "host/gecint3d.h"
#include "host/gecomp3d.h"
#include "host/gelineseg3d.h"

namespace zepk::ge {

namespace {

constexpr double kPi = 3.14159265358979323846;

struct P {
  double x = 0, y = 0;
};
P operator+(P a, P b) { return {a.x + b.x, a.y + b.y}; }
P operator-(P a, P b) { return {a.x - b.x, a.y - b.y}; }
P operator*(P a, double s) { return {a.x * s, a.y * s}; }
double len(P a) { return std::hypot(a.x, a.y); }
double ang(P a) { return std::atan2(a.y, a.x); }
// An angle brought into (-pi, pi].
double wrap(double a) {
  while (a > kPi) a -= 2 * kPi;
  while (a <= -kPi) a += 2 * kPi;
  return a;
}

// A segment of the offset: a line from a to b, or an arc about c of radius
// r whose travel sweeps `sweep` (positive counter-clockwise).
struct Seg {
  bool arc = false;
  P a, b, c;
  double r = 0, sweep = 0;
  P vertexAfter;  // the original vertex at the end of the source segment
  P dir;          // a line's direction before the joins
  double sweep0 = 0;  // an arc's sweep before the joins
};

// A segment the joins have turned round: trimmed past its other end.
bool inverted(const Seg& s) {
  if (s.arc) return s.sweep * s.sweep0 < 0;
  return (s.b.x - s.a.x) * s.dir.x + (s.b.y - s.a.y) * s.dir.y < 0;
}

// Points where the carriers of two segments (lines unbounded, arcs as whole
// circles) meet.
int carrierMeet(const Seg& s, const Seg& t, P out[2]) {
  auto lineLine = [&](const Seg& l1, const Seg& l2) {
    P d1 = l1.b - l1.a, d2 = l2.b - l2.a;
    double den = d1.x * d2.y - d1.y * d2.x;
    if (std::fabs(den) <= 1e-12 * len(d1) * len(d2)) return 0;
    P w = l2.a - l1.a;
    double u = (w.x * d2.y - w.y * d2.x) / den;
    out[0] = l1.a + d1 * u;
    return 1;
  };
  auto lineCircle = [&](const Seg& l, const Seg& c) {
    P d = l.b - l.a;
    double ts[2];
    double tol = 1e-10 * std::max(1.0, c.r);
    int k = intersectLineCircle(l.a.x, l.a.y, d.x, d.y, c.c.x, c.c.y, c.r, tol, ts);
    for (int i = 0; i < k; ++i) out[i] = l.a + d * ts[i];
    return k;
  };
  if (!s.arc && !t.arc) return lineLine(s, t);
  if (!s.arc) return lineCircle(s, t);
  if (!t.arc) return lineCircle(t, s);
  double q[4];
  int k = intersectCircles(s.c.x, s.c.y, s.r, t.c.x, t.c.y, t.r, 1e-10 * std::max(1.0, s.r + t.r), q);
  if (k < 0) return 0;
  for (int i = 0; i < k; ++i) out[i] = {q[2 * i], q[2 * i + 1]};
  return k;
}

// Moves an arc's start or end to a new point on its circle, keeping the
// sweep continuous (a small change of angle, not a turn the long way).
void moveArcStart(Seg& s, P np) {
  double d = wrap(ang(np - s.c) - ang(s.a - s.c));
  s.sweep -= d;
  s.a = np;
}
void moveArcEnd(Seg& s, P np) {
  double d = wrap(ang(np - s.c) - ang(s.b - s.c));
  s.sweep += d;
  s.b = np;
}

AcGePoint3d lift(P p) { return {p.x, p.y, 0.0}; }

std::unique_ptr<AcGeCompositeCurve3d> toCurve(const BulgePolyline& pl) {
  auto c = std::make_unique<AcGeCompositeCurve3d>();
  size_t n = pl.verts.size();
  size_t segs = pl.closed ? n : (n ? n - 1 : 0);
  for (size_t i = 0; i < segs; ++i) {
    const BulgeVertex& a = pl.verts[i];
    const BulgeVertex& b = pl.verts[(i + 1) % n];
    if (a.x == b.x && a.y == b.y) continue;
    c->appendOwned(bulgeSegment({a.x, a.y, 0}, {b.x, b.y, 0}, a.bulge, AcGeVector3d::kZAxis));
  }
  return c;
}

// The vertices of a composite of segments and arcs in the XY plane, its
// last point included.
std::vector<BulgeVertex> verticesOf(const AcGeCompositeCurve3d& c) {
  std::vector<BulgeVertex> r;
  for (int i = 0; i < c.numCurves(); ++i) {
    const AcGeCurve3d& k = c.curveAt(i);
    double lo, hi;
    k.getInterval(lo, hi);
    AcGePoint3d s = k.evalPoint(lo);
    double bulge = 0;
    if (k.type() == AcGe::kCircArc3d) {
      const auto& a = static_cast<const AcGeCircArc3d&>(k);
      bulge = std::tan((hi - lo) / 4) * (a.normal().z >= 0 ? 1 : -1);
    }
    r.push_back({s.x, s.y, bulge});
  }
  if (c.numCurves()) {
    double lo, hi;
    c.getInterval(lo, hi);
    AcGePoint3d e = c.evalPoint(hi);
    r.push_back({e.x, e.y, 0});
  }
  return r;
}

// A closed polyline as a plane loop, for telling inside from outside.
Loop2d loopOf(const BulgePolyline& pl) {
  Loop2d loop;
  size_t n = pl.verts.size();
  for (size_t i = 0; i < n; ++i) {
    const BulgeVertex& va = pl.verts[i];
    const BulgeVertex& vb = pl.verts[(i + 1) % n];
    P a{va.x, va.y}, b{vb.x, vb.y};
    double chord = len(b - a);
    if (chord == 0) continue;
    if (std::fabs(va.bulge) < 1e-12) {
      loop.push_back(Edge2d::line(a.x, a.y, b.x, b.y));
      continue;
    }
    double theta = 4 * std::atan(va.bulge);
    double r = chord / (2 * std::sin(std::fabs(theta) / 2));
    P mid = (a + b) * 0.5, u = (b - a) * (1.0 / chord), left{-u.y, u.x};
    double h = r * std::cos(std::fabs(theta) / 2);
    P c = mid + left * (theta > 0 ? h : -h);
    Edge2d e = Edge2d::arcOf(c.x, c.y, r, ang(a - c), theta);
    e.bx = b.x;
    e.by = b.y;
    loop.push_back(e);
  }
  return loop;
}

}  // namespace

std::vector<BulgePolyline> offsetPolyline(const BulgePolyline& pl, double dist) {
  std::vector<BulgePolyline> result;
  size_t n = pl.verts.size();
  if (n < 2 || dist == 0.0) return result;
  double scale = 0;
  for (const auto& v : pl.verts) scale = std::max({scale, std::fabs(v.x), std::fabs(v.y)});
  const double eps = 1e-9 * std::max(1.0, scale);
  // 1. Each segment moved sideways.
  std::vector<Seg> segs;
  size_t count = pl.closed ? n : n - 1;
  for (size_t i = 0; i < count; ++i) {
    const BulgeVertex& va = pl.verts[i];
    const BulgeVertex& vb = pl.verts[(i + 1) % n];
    P a{va.x, va.y}, b{vb.x, vb.y};
    double chord = len(b - a);
    if (chord <= eps) continue;
    Seg s;
    s.vertexAfter = b;
    if (std::fabs(va.bulge) < 1e-12) {
      P u = (b - a) * (1.0 / chord);
      P right{u.y, -u.x};
      s.a = a + right * dist;
      s.b = b + right * dist;
      s.dir = u;
    } else {
      double theta = 4 * std::atan(va.bulge);  // signed sweep
      double r = chord / (2 * std::sin(std::fabs(theta) / 2));
      P mid = (a + b) * 0.5, u = (b - a) * (1.0 / chord);
      P left{-u.y, u.x};
      double h = r * std::cos(std::fabs(theta) / 2);
      P c = mid + left * (theta > 0 ? h : -h);
      // Right of travel is outside a counter-clockwise arc, inside a clockwise one.
      double nr = theta > 0 ? r + dist : r - dist;
      if (nr <= eps) continue;  // the arc shrinks to nothing
      s.arc = true;
      s.c = c;
      s.r = nr;
      s.sweep = theta;
      s.sweep0 = theta;
      s.a = c + (a - c) * (nr / r);
      s.b = c + (b - c) * (nr / r);
    }
    segs.push_back(s);
  }
  if (segs.empty()) return result;
  // 2. Neighbours joined where their carriers meet nearest the vertex, or
  // by an arc about the vertex.
  std::vector<Seg> joined;
  size_t m = segs.size();
  std::vector<Seg> fillers(m);
  std::vector<bool> hasFiller(m, false);
  size_t joins = pl.closed ? m : m - 1;
  for (size_t i = 0; i < joins; ++i) {
    Seg& s = segs[i];
    Seg& t = segs[(i + 1) % m];
    if (len(s.b - t.a) <= eps) {
      P mid = (s.b + t.a) * 0.5;
      if (s.arc) moveArcEnd(s, mid); else s.b = mid;
      if (t.arc) moveArcStart(t, mid); else t.a = mid;
      continue;
    }
    P v = s.vertexAfter;
    P cand[2];
    int k = carrierMeet(s, t, cand);
    int best = -1;
    for (int j = 0; j < k; ++j)
      if (best < 0 || len(cand[j] - v) < len(cand[best] - v)) best = j;
    // A meeting far beyond the offset distance is a spike: an arc is used.
    if (best >= 0 && len(cand[best] - v) <= std::fabs(dist) * 1e3) {
      P x = cand[best];
      if (s.arc) moveArcEnd(s, x); else s.b = x;
      if (t.arc) moveArcStart(t, x); else t.a = x;
    } else {
      Seg f;
      f.arc = true;
      f.c = v;
      f.r = std::fabs(dist);
      f.a = s.b;
      f.b = t.a;
      f.sweep = wrap(ang(f.b - v) - ang(f.a - v));
      fillers[i] = f;
      hasFiller[i] = true;
    }
  }
  // A segment the joins turned round lies on the wrong side: it goes, and
  // its neighbours are joined where their carriers meet, until none is left.
  for (size_t pass = 0; pass < m && !segs.empty(); ++pass) {
    size_t n = segs.size(), i = 0;
    while (i < n && !inverted(segs[i])) ++i;
    if (i == n) break;
    if (n <= 2) {
      segs.clear();
      break;
    }
    bool hasPrev = pl.closed || i > 0, hasNext = pl.closed || i + 1 < n;
    size_t ip = (i + n - 1) % n, in = (i + 1) % n;
    if (hasPrev && hasNext) {
      Seg& s = segs[ip];
      Seg& t = segs[in];
      P mid = (segs[i].a + segs[i].b) * 0.5;
      P cand[2];
      int k = carrierMeet(s, t, cand);
      if (k == 0) {
        // Parallel neighbours: a straight bridge between them instead.
        Seg& g = segs[i];
        g.arc = false;
        g.a = s.b;
        g.b = t.a;
        g.dir = g.b - g.a;
        hasFiller[ip] = hasFiller[i] = false;
        continue;
      }
      int best = 0;
      if (k == 2 && len(cand[1] - mid) < len(cand[0] - mid)) best = 1;
      if (s.arc) moveArcEnd(s, cand[best]); else s.b = cand[best];
      if (t.arc) moveArcStart(t, cand[best]); else t.a = cand[best];
    }
    hasFiller[ip] = false;
    segs.erase(segs.begin() + i);
    fillers.erase(fillers.begin() + i);
    hasFiller.erase(hasFiller.begin() + i);
  }
  if (segs.empty()) return result;
  m = segs.size();
  for (size_t i = 0; i < m; ++i) {
    joined.push_back(segs[i]);
    if (hasFiller[i]) joined.push_back(fillers[i]);
  }
  // The raw offset as a polyline.
  BulgePolyline raw;
  raw.closed = pl.closed;
  for (const Seg& s : joined) {
    double bulge = s.arc ? std::tan(s.sweep / 4) : 0.0;
    raw.verts.push_back({s.a.x, s.a.y, bulge});
  }
  if (!pl.closed) raw.verts.push_back({joined.back().b.x, joined.back().b.y, 0.0});
  // 3. Cut where the offset crosses itself; keep the pieces that lie the
  // full distance from the polyline.
  std::unique_ptr<AcGeCompositeCurve3d> source = toCurve(pl), rawCurve = toCurve(raw);
  if (rawCurve->numCurves() == 0) return result;
  AcGeTol tol;
  tol.setEqualPoint(eps);
  auto hits = intersectCurves(*rawCurve, *rawCurve, true, tol);
  double lo, hi;
  rawCurve->getInterval(lo, hi);
  std::vector<double> cuts;
  for (const auto& h : hits) {
    cuts.push_back(h.param1);
    cuts.push_back(h.param2);
  }
  std::sort(cuts.begin(), cuts.end());
  cuts.erase(std::unique(cuts.begin(), cuts.end(), [](double a, double b) { return std::fabs(a - b) < 1e-9; }),
             cuts.end());
  std::vector<std::pair<double, double>> ranges;
  std::vector<double> bounds{lo};
  for (double c : cuts)
    if (c > lo + 1e-9 && c < hi - 1e-9) bounds.push_back(c);
  bounds.push_back(hi);
  for (size_t i = 0; i + 1 < bounds.size(); ++i) ranges.push_back({bounds[i], bounds[i + 1]});
  std::vector<std::unique_ptr<AcGeCompositeCurve3d>> kept;
  double need = std::fabs(dist) * (1 - 1e-6) - eps;
  // Of a closed polyline the offset lies wholly inside or wholly outside:
  // inside for the left of a counter-clockwise one, the right of a
  // clockwise one.
  std::vector<Loop2d> sourceLoop;
  bool wantInside = false;
  if (pl.closed) {
    sourceLoop.push_back(loopOf(pl));
    wantInside = (loopArea(sourceLoop[0]) > 0) == (dist < 0);
  }
  std::vector<bool> keep;
  for (const auto& [a, b] : ranges) {
    bool ok = true;
    for (double f : {0.25, 0.5, 0.75}) {
      double mid = rawCurve->paramAtLength(a, rawCurve->length(a, b) * f);
      AcGePoint3d q = rawCurve->evalPoint(mid);
      if (source->distanceTo(q) < need) ok = false;
      if (ok && pl.closed && (winding(sourceLoop, q.x, q.y) != 0) != wantInside) ok = false;
    }
    keep.push_back(ok);
  }
  // A closed offset's first and last pieces are one across the seam.
  std::vector<std::vector<BulgeVertex>> pieces;
  for (size_t i = 0; i < ranges.size(); ++i) {
    if (!keep[i]) continue;
    std::unique_ptr<AcGeCurve3d> piece(rawCurve->trimmedCopy(ranges[i].first, ranges[i].second));
    if (!piece) continue;
    pieces.push_back(verticesOf(static_cast<const AcGeCompositeCurve3d&>(*piece)));
  }
  auto same = [&](const BulgeVertex& a, const BulgeVertex& b) { return std::hypot(a.x - b.x, a.y - b.y) <= eps * 10; };
  // Where the offset runs twice along one stretch (the two sides of a
  // slit), the stretch is kept once.
  for (size_t i = 0; i < pieces.size(); ++i) {
    for (size_t j = pieces.size(); j-- > i + 1;) {
      const auto& a = pieces[i];
      const auto& b = pieces[j];
      if (a.size() != b.size()) continue;
      bool dup = true;
      for (size_t k = 0; k < a.size() && dup; ++k)
        dup = same(a[k], b[k]) && std::fabs(a[k].bulge - b[k].bulge) <= 1e-9;
      if (dup) pieces.erase(pieces.begin() + j);
    }
  }
  // A joint where two straight pieces continue one line is no vertex.
  auto append = [&](std::vector<BulgeVertex>& chain, const std::vector<BulgeVertex>& next) {
    chain.pop_back();
    if (chain.size() >= 1 && next.size() >= 2 && chain.back().bulge == 0.0 && next[0].bulge == 0.0) {
      const BulgeVertex &a = chain.back(), &m = next[0], &b = next[1];
      double cross = (m.x - a.x) * (b.y - m.y) - (m.y - a.y) * (b.x - m.x);
      double dot = (m.x - a.x) * (b.x - m.x) + (m.y - a.y) * (b.y - m.y);
      if (std::fabs(cross) <= eps * std::hypot(b.x - a.x, b.y - a.y) && dot > 0) {
        chain.insert(chain.end(), next.begin() + 1, next.end());
        return;
      }
    }
    chain.insert(chain.end(), next.begin(), next.end());
  };
  // Chain the pieces end to start, over and over until nothing joins.
  bool merged = true;
  while (merged) {
    merged = false;
    for (size_t i = 0; i < pieces.size() && !merged; ++i) {
      if (same(pieces[i].back(), pieces[i].front()) && pieces[i].size() > 2) continue;
      for (size_t j = 0; j < pieces.size(); ++j) {
        if (j == i || !same(pieces[i].back(), pieces[j].front())) continue;
        append(pieces[i], pieces[j]);
        pieces.erase(pieces.begin() + j);
        merged = true;
        break;
      }
    }
  }
  for (auto& chain : pieces) {
    BulgePolyline out;
    out.closed = chain.size() > 2 && same(chain.back(), chain.front());
    if (out.closed) {
      chain.pop_back();
      // The seam too, when it lies inside a straight stretch made by cutting.
      size_t m = chain.size();
      if (m > 3 && chain[m - 1].bulge == 0.0 && chain[0].bulge == 0.0) {
        const BulgeVertex &a = chain[m - 1], &q = chain[0], &b = chain[1];
        double cross = (q.x - a.x) * (b.y - q.y) - (q.y - a.y) * (b.x - q.x);
        double dot = (q.x - a.x) * (b.x - q.x) + (q.y - a.y) * (b.y - q.y);
        bool cutHere = !ranges.empty() && ranges.size() > 1;
        if (cutHere && std::fabs(cross) <= eps * std::hypot(b.x - a.x, b.y - a.y) && dot > 0)
          chain.erase(chain.begin());
      }
    }
    out.verts = chain;
    if (out.verts.size() >= 2) result.push_back(out);
  }
  return result;
}

}  // namespace zepk::ge
