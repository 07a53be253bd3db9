// Boolean operations on areas bounded by line and arc loops.
#include "host/ge/boolean.h"

#include <algorithm>
#include <cmath>

#include "host/ge/kernels.h"

namespace zepk::ge {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2 * kPi;

double angleOf(double x, double y) { return std::atan2(y, x); }

// The fraction along an arc of a point on its circle, in [0, 1) (a point
// just before the start comes out near 1 only when it is past the end).
double arcFraction(const Edge2d& e, double x, double y) {
  double a0 = angleOf(e.ax - e.cx, e.ay - e.cy);
  double d = (angleOf(x - e.cx, y - e.cy) - a0) * (e.sweep > 0 ? 1 : -1);
  d = std::fmod(d, kTwoPi);
  if (d < 0) d += kTwoPi;
  return d / std::fabs(e.sweep);
}

struct Box {
  double x0, y0, x1, y1;
  bool meets(const Box& o, double m) const {
    return x0 <= o.x1 + m && o.x0 <= x1 + m && y0 <= o.y1 + m && o.y0 <= y1 + m;
  }
};

Box boxOf(const Edge2d& e) {
  Box b{std::min(e.ax, e.bx), std::min(e.ay, e.by), std::max(e.ax, e.bx), std::max(e.ay, e.by)};
  if (!e.arc) return b;
  // The arc's extreme points in each axis direction it passes.
  double a0 = angleOf(e.ax - e.cx, e.ay - e.cy);
  for (int k = 0; k < 4; ++k) {
    double ang = k * kPi / 2;
    double d = (ang - a0) * (e.sweep > 0 ? 1 : -1);
    d = std::fmod(d, kTwoPi);
    if (d < 0) d += kTwoPi;
    if (d <= std::fabs(e.sweep)) {
      double x = e.cx + e.r * std::cos(ang), y = e.cy + e.r * std::sin(ang);
      b.x0 = std::min(b.x0, x);
      b.x1 = std::max(b.x1, x);
      b.y0 = std::min(b.y0, y);
      b.y1 = std::max(b.y1, y);
    }
  }
  return b;
}

struct Cut {
  double f, x, y;
};

// The fraction of a point on the edge, when it lies on it within tol.
bool fractionOn(const Edge2d& e, double x, double y, double tol, double& f) {
  if (!e.arc) {
    double dx = e.bx - e.ax, dy = e.by - e.ay, l2 = dx * dx + dy * dy;
    if (l2 == 0) return false;
    f = ((x - e.ax) * dx + (y - e.ay) * dy) / l2;
    double px = e.ax + f * dx - x, py = e.ay + f * dy - y;
    double slack = tol / std::sqrt(l2);
    return std::hypot(px, py) <= tol && f >= -slack && f <= 1 + slack;
  }
  if (std::fabs(std::hypot(x - e.cx, y - e.cy) - e.r) > tol) return false;
  f = arcFraction(e, x, y);
  double slack = tol / (e.r * std::fabs(e.sweep));
  double period = kTwoPi / std::fabs(e.sweep);
  if (f > 1 + slack && period - f <= slack) f -= period;  // just before the start
  return f >= -slack && f <= 1 + slack;
}

// Where two edges meet: cuts on each.
void meet(const Edge2d& e, const Edge2d& g, double tol, std::vector<Cut>& ce, std::vector<Cut>& cg) {
  auto put = [&](double x, double y) {
    double fe, fg;
    if (fractionOn(e, x, y, tol * 10, fe) && fractionOn(g, x, y, tol * 10, fg)) {
      ce.push_back({std::clamp(fe, 0.0, 1.0), x, y});
      cg.push_back({std::clamp(fg, 0.0, 1.0), x, y});
    }
  };
  auto overlapEnds = [&]() {
    // Coincident carriers: each edge's ends that lie on the other.
    double f;
    if (fractionOn(g, e.ax, e.ay, tol, f)) put(e.ax, e.ay);
    if (fractionOn(g, e.bx, e.by, tol, f)) put(e.bx, e.by);
    if (fractionOn(e, g.ax, g.ay, tol, f)) put(g.ax, g.ay);
    if (fractionOn(e, g.bx, g.by, tol, f)) put(g.bx, g.by);
  };
  if (!e.arc && !g.arc) {
    double d1x = e.bx - e.ax, d1y = e.by - e.ay, d2x = g.bx - g.ax, d2y = g.by - g.ay;
    double den = d1x * d2y - d1y * d2x;
    double l1 = std::hypot(d1x, d1y), l2 = std::hypot(d2x, d2y);
    if (std::fabs(den) <= 1e-13 * l1 * l2) {
      // Parallel: coincident when g's start lies on e's line.
      double dist = std::fabs((g.ax - e.ax) * d1y - (g.ay - e.ay) * d1x) / l1;
      if (dist <= tol) overlapEnds();
      return;
    }
    double wx = g.ax - e.ax, wy = g.ay - e.ay;
    double s = (wx * d2y - wy * d2x) / den;
    put(e.ax + s * d1x, e.ay + s * d1y);
    return;
  }
  if (e.arc != g.arc) {
    const Edge2d& l = e.arc ? g : e;
    const Edge2d& c = e.arc ? e : g;
    double t[2];
    int k = intersectLineCircle(l.ax, l.ay, l.bx - l.ax, l.by - l.ay, c.cx, c.cy, c.r, tol, t);
    for (int i = 0; i < k; ++i) put(l.ax + t[i] * (l.bx - l.ax), l.ay + t[i] * (l.by - l.ay));
    return;
  }
  double q[4];
  int k = intersectCircles(e.cx, e.cy, e.r, g.cx, g.cy, g.r, tol, q);
  if (k < 0) {
    overlapEnds();
    return;
  }
  for (int i = 0; i < k; ++i) put(q[2 * i], q[2 * i + 1]);
}

// The piece of an edge between two cuts.
Edge2d piece(const Edge2d& e, const Cut& a, const Cut& b) {
  if (!e.arc) return Edge2d::line(a.x, a.y, b.x, b.y);
  Edge2d r = e;
  r.ax = a.x;
  r.ay = a.y;
  r.bx = b.x;
  r.by = b.y;
  r.sweep = e.sweep * (b.f - a.f);
  return r;
}

std::vector<Edge2d> splitAll(const std::vector<Loop2d>& loops, std::vector<std::vector<Cut>>& cuts) {
  std::vector<Edge2d> out;
  size_t k = 0;
  for (const Loop2d& loop : loops) {
    for (const Edge2d& e : loop) {
      std::vector<Cut>& c = cuts[k++];
      c.push_back({0.0, e.ax, e.ay});
      c.push_back({1.0, e.bx, e.by});
      std::sort(c.begin(), c.end(), [](const Cut& p, const Cut& q) { return p.f < q.f; });
      for (size_t i = 0; i + 1 < c.size(); ++i) {
        if (c[i + 1].f - c[i].f <= 1e-12) continue;
        Edge2d p = piece(e, c[i], c[i + 1]);
        if (p.length() > 0) out.push_back(p);
      }
    }
  }
  return out;
}

double distanceToEdge(const Edge2d& e, double x, double y, double& tx, double& ty) {
  if (!e.arc) {
    double dx = e.bx - e.ax, dy = e.by - e.ay, l2 = dx * dx + dy * dy;
    double f = l2 > 0 ? std::clamp(((x - e.ax) * dx + (y - e.ay) * dy) / l2, 0.0, 1.0) : 0.0;
    tx = dx;
    ty = dy;
    return std::hypot(e.ax + f * dx - x, e.ay + f * dy - y);
  }
  double f = arcFraction(e, x, y);
  if (f > 1) {
    double ds = std::hypot(e.ax - x, e.ay - y), de = std::hypot(e.bx - x, e.by - y);
    f = ds < de ? 0.0 : 1.0;
  }
  double px, py;
  e.pointAt(f, px, py);
  e.tangentAt(f, tx, ty);
  return std::hypot(px - x, py - y);
}

}  // namespace

Edge2d Edge2d::line(double ax, double ay, double bx, double by) {
  Edge2d e;
  e.ax = ax;
  e.ay = ay;
  e.bx = bx;
  e.by = by;
  return e;
}

Edge2d Edge2d::arcOf(double cx, double cy, double r, double a0, double sweep) {
  Edge2d e;
  e.arc = true;
  e.cx = cx;
  e.cy = cy;
  e.r = r;
  e.sweep = sweep;
  e.ax = cx + r * std::cos(a0);
  e.ay = cy + r * std::sin(a0);
  if (std::fabs(std::fabs(sweep) - kTwoPi) < 1e-15) {
    e.bx = e.ax;
    e.by = e.ay;
  } else {
    e.bx = cx + r * std::cos(a0 + sweep);
    e.by = cy + r * std::sin(a0 + sweep);
  }
  return e;
}

void Edge2d::pointAt(double f, double& x, double& y) const {
  if (!arc) {
    x = ax + f * (bx - ax);
    y = ay + f * (by - ay);
    return;
  }
  if (f <= 0) {
    x = ax, y = ay;
    return;
  }
  if (f >= 1) {
    x = bx, y = by;
    return;
  }
  double a = std::atan2(ay - cy, ax - cx) + sweep * f;
  x = cx + r * std::cos(a);
  y = cy + r * std::sin(a);
}

void Edge2d::tangentAt(double f, double& x, double& y) const {
  if (!arc) {
    x = bx - ax;
    y = by - ay;
    return;
  }
  double a = std::atan2(ay - cy, ax - cx) + sweep * f;
  double s = sweep > 0 ? 1 : -1;
  x = -std::sin(a) * s;
  y = std::cos(a) * s;
}

double Edge2d::length() const { return arc ? r * std::fabs(sweep) : std::hypot(bx - ax, by - ay); }

Edge2d Edge2d::reversed() const {
  Edge2d e = *this;
  std::swap(e.ax, e.bx);
  std::swap(e.ay, e.by);
  e.sweep = -sweep;
  return e;
}

double loopArea(const Loop2d& loop) {
  // Green: half the integral of x dy - y dx; an arc adds its segment.
  double a = 0;
  for (const Edge2d& e : loop) {
    a += 0.5 * (e.ax * e.by - e.bx * e.ay);
    if (e.arc) a += 0.5 * e.r * e.r * (e.sweep - std::sin(e.sweep));
  }
  return a;
}

double loopLength(const Loop2d& loop) {
  double l = 0;
  for (const Edge2d& e : loop) l += e.length();
  return l;
}

double boundaryIntegral(const std::vector<Loop2d>& loops, const std::function<double(double, double)>& g) {
  double total = 0;
  for (const Loop2d& loop : loops)
    for (const Edge2d& e : loop)
      total += integrate(
          [&](double f) {
            double x, y, tx, ty;
            e.pointAt(f, x, y);
            e.tangentAt(f, tx, ty);
            if (e.arc) {
              double k = e.r * std::fabs(e.sweep);
              tx *= k;
              ty *= k;
            }
            return g(x, y) * ty;
          },
          0.0, 1.0, 1e-12);
  return total;
}

int winding(const std::vector<Loop2d>& loops, double x, double y) {
  double total = 0;
  for (const Loop2d& loop : loops) {
    for (const Edge2d& e : loop) {
      double a = angleOf(e.ax - x, e.ay - y), b = angleOf(e.bx - x, e.by - y);
      double d = b - a;
      while (d > kPi) d -= kTwoPi;
      while (d <= -kPi) d += kTwoPi;
      if (e.arc && std::hypot(x - e.cx, y - e.cy) < e.r) {
        // Seen from inside its circle an arc turns the view by its own sense.
        if (e.sweep > 0 && d <= 0) d += kTwoPi;
        if (e.sweep < 0 && d >= 0) d -= kTwoPi;
        if (std::fabs(std::fabs(e.sweep) - kTwoPi) < 1e-12) d = e.sweep > 0 ? kTwoPi : -kTwoPi;
      }
      total += d;
    }
  }
  return static_cast<int>(std::lround(total / kTwoPi));
}

void orientLoops(std::vector<Loop2d>& loops) {
  for (size_t i = 0; i < loops.size(); ++i) {
    if (loops[i].empty()) continue;
    double x, y;
    loops[i][0].pointAt(0.5, x, y);
    int depth = 0;
    for (size_t j = 0; j < loops.size(); ++j) {
      if (j == i) continue;
      if (winding({loops[j]}, x, y) != 0) ++depth;
    }
    bool ccw = loopArea(loops[i]) > 0;
    if (ccw != (depth % 2 == 0)) {
      Loop2d r;
      for (auto it = loops[i].rbegin(); it != loops[i].rend(); ++it) r.push_back(it->reversed());
      loops[i] = r;
    }
  }
}

std::vector<Loop2d> booleanLoops(const std::vector<Loop2d>& a, const std::vector<Loop2d>& b, BoolOp op,
                                 double tol) {
  size_t na = 0, nb = 0;
  std::vector<const Edge2d*> ea, eb;
  for (const Loop2d& l : a)
    for (const Edge2d& e : l) ea.push_back(&e), ++na;
  for (const Loop2d& l : b)
    for (const Edge2d& e : l) eb.push_back(&e), ++nb;
  double scale = 1;
  for (auto* e : ea) scale = std::max({scale, std::fabs(e->ax), std::fabs(e->ay), e->r});
  for (auto* e : eb) scale = std::max({scale, std::fabs(e->ax), std::fabs(e->ay), e->r});
  double t = tol * scale;
  // 1. Split both at every meeting (boxes sorted by x to skip far pairs).
  std::vector<std::vector<Cut>> ca(na), cb(nb);
  std::vector<Box> ba(na), bb(nb);
  for (size_t i = 0; i < na; ++i) ba[i] = boxOf(*ea[i]);
  for (size_t j = 0; j < nb; ++j) bb[j] = boxOf(*eb[j]);
  std::vector<size_t> order(nb);
  for (size_t j = 0; j < nb; ++j) order[j] = j;
  std::sort(order.begin(), order.end(), [&](size_t p, size_t q) { return bb[p].x0 < bb[q].x0; });
  for (size_t i = 0; i < na; ++i) {
    for (size_t k : order) {
      if (bb[k].x0 > ba[i].x1 + t) break;
      if (!ba[i].meets(bb[k], t)) continue;
      meet(*ea[i], *eb[k], t, ca[i], cb[k]);
    }
  }
  std::vector<Edge2d> pa = splitAll(a, ca), pb = splitAll(b, cb);
  // 2. Keep pieces by where their middles lie.
  enum Where { kIn, kOut, kSame, kOpposite };
  auto classify = [&](const Edge2d& p, const std::vector<Loop2d>& other, const std::vector<const Edge2d*>& oe) {
    double x, y, tx, ty;
    p.pointAt(0.5, x, y);
    p.tangentAt(0.5, tx, ty);
    for (const Edge2d* e : oe) {
      double ux, uy;
      if (distanceToEdge(*e, x, y, ux, uy) <= t * 10) return tx * ux + ty * uy > 0 ? kSame : kOpposite;
    }
    return winding(other, x, y) > 0 ? kIn : kOut;
  };
  std::vector<Edge2d> kept;
  for (const Edge2d& p : pa) {
    Where w = classify(p, b, eb);
    bool keep = op == BoolOp::Unite ? (w == kOut || w == kSame)
                : op == BoolOp::Intersect ? (w == kIn || w == kSame)
                                          : (w == kOut || w == kOpposite);
    if (keep) kept.push_back(p);
  }
  for (const Edge2d& p : pb) {
    Where w = classify(p, a, ea);
    if (op == BoolOp::Unite && w == kOut) kept.push_back(p);
    if (op == BoolOp::Intersect && w == kIn) kept.push_back(p);
    if (op == BoolOp::Subtract && w == kIn) kept.push_back(p.reversed());
  }
  // 3. Join into loops, turning as far left as possible where several
  // pieces leave one point, so that loops that touch stay apart.
  std::vector<size_t> byStart(kept.size());
  for (size_t i = 0; i < kept.size(); ++i) byStart[i] = i;
  std::sort(byStart.begin(), byStart.end(), [&](size_t p, size_t q) { return kept[p].ax < kept[q].ax; });
  std::vector<bool> used(kept.size(), false);
  double snap = t * 100;
  auto leaving = [&](double x, double y) {
    std::vector<size_t> r;
    auto it = std::lower_bound(byStart.begin(), byStart.end(), x - snap,
                               [&](size_t p, double v) { return kept[p].ax < v; });
    for (; it != byStart.end() && kept[*it].ax <= x + snap; ++it)
      if (!used[*it] && std::fabs(kept[*it].ay - y) <= snap) r.push_back(*it);
    return r;
  };
  std::vector<Loop2d> result;
  for (size_t s = 0; s < kept.size(); ++s) {
    if (used[s]) continue;
    Loop2d loop{kept[s]};
    used[s] = true;
    for (size_t guard = 0; guard < kept.size(); ++guard) {
      const Edge2d& last = loop.back();
      if (std::hypot(last.bx - loop[0].ax, last.by - loop[0].ay) <= snap) break;
      std::vector<size_t> next = leaving(last.bx, last.by);
      if (next.empty()) break;
      double ix, iy;
      last.tangentAt(1.0, ix, iy);
      size_t best = next[0];
      double bestTurn = -10;
      for (size_t k : next) {
        double ox, oy;
        kept[k].tangentAt(0.0, ox, oy);
        double turn = std::atan2(ix * oy - iy * ox, ix * ox + iy * oy);
        if (turn > bestTurn) bestTurn = turn, best = k;
      }
      used[best] = true;
      loop.push_back(kept[best]);
    }
    // Close exactly.
    loop.back().bx = loop[0].ax;
    loop.back().by = loop[0].ay;
    if (std::fabs(loopArea(loop)) > t * t) result.push_back(loop);
  }
  return result;
}

}  // namespace zepk::ge
