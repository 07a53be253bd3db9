#include "host/db/poly2dfit.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zepk::db::fit {

namespace {

constexpr double kTiny = 1e-12;

Pt sub(Pt a, Pt b) { return {a.x - b.x, a.y - b.y}; }
Pt add(Pt a, Pt b) { return {a.x + b.x, a.y + b.y}; }
Pt scale(Pt a, double s) { return {a.x * s, a.y * s}; }
double dot(Pt a, Pt b) { return a.x * b.x + a.y * b.y; }
double cross(Pt a, Pt b) { return a.x * b.y - a.y * b.x; }
double len(Pt a) { return std::hypot(a.x, a.y); }

Pt unit(Pt a) {
  double l = len(a);
  return l > kTiny ? scale(a, 1.0 / l) : Pt{0, 0};
}

bool same(Pt a, Pt b) { return len(sub(a, b)) <= kTiny * (1.0 + std::max(len(a), len(b))); }

// The tangent at m of the circle through a, m, b (travelled a -> m -> b):
// proportional to (m-a)/|m-a|^2 + (b-m)/|b-m|^2, which for collinear
// points is the line's direction.
Pt circleTangentMid(Pt a, Pt m, Pt b) {
  Pt u = sub(m, a), v = sub(b, m);
  double uu = dot(u, u), vv = dot(v, v);
  Pt t{0, 0};
  if (uu > kTiny * kTiny) t = add(t, scale(u, 1.0 / uu));
  if (vv > kTiny * kTiny) t = add(t, scale(v, 1.0 / vv));
  return unit(t);
}

// The tangent at a of the circle through a, m, b: the chord a -> m
// mirrored about the circle's tangent at m.
Pt circleTangentStart(Pt a, Pt m, Pt b) {
  Pt tm = circleTangentMid(a, m, b);
  Pt c = unit(sub(m, a));
  // Reflect tm about the chord direction: the angle from chord to the
  // tangent at a is minus that from chord to the tangent at m.
  double cs = dot(c, tm), sn = cross(c, tm);
  Pt r{c.x * cs + c.y * sn, c.y * cs - c.x * sn};
  return unit(r);
}

}  // namespace

std::vector<Pt> fitTangents(const std::vector<Pt>& pts, bool closed) {
  const size_t n = pts.size();
  std::vector<Pt> out(n, Pt{0, 0});
  if (n < 2) return out;
  // The nearest vertex before and after i that is not at i's place.
  auto neighbour = [&](size_t i, int step, bool& found) -> Pt {
    found = false;
    long j = static_cast<long>(i);
    for (size_t k = 1; k < n; ++k) {
      j += step;
      if (j < 0 || j >= static_cast<long>(n)) {
        if (!closed) return pts[i];
        j = (j + static_cast<long>(n)) % static_cast<long>(n);
      }
      if (!same(pts[j], pts[i])) {
        found = true;
        return pts[j];
      }
    }
    return pts[i];
  };
  for (size_t i = 0; i < n; ++i) {
    bool hasPrev = false, hasNext = false;
    Pt prev = neighbour(i, -1, hasPrev), next = neighbour(i, +1, hasNext);
    if (hasPrev && hasNext) {
      out[i] = circleTangentMid(prev, pts[i], next);
    } else if (hasNext) {
      // The open start: the circle through this point and the next two.
      bool found2 = false;
      size_t j = i + 1;
      while (j < n && same(pts[j], pts[i])) ++j;
      Pt after = j < n ? neighbour(j, +1, found2) : next;
      out[i] = found2 ? circleTangentStart(pts[i], next, after) : unit(sub(next, pts[i]));
    } else if (hasPrev) {
      long j = static_cast<long>(i) - 1;
      while (j >= 0 && same(pts[j], pts[i])) --j;
      bool found2 = false;
      Pt before = j >= 0 ? neighbour(static_cast<size_t>(j), -1, found2) : prev;
      // Travelled backwards the end is a start; the tangent turns round.
      out[i] = found2 ? scale(circleTangentStart(pts[i], prev, before), -1.0) : unit(sub(pts[i], prev));
    }
  }
  return out;
}

double bulgeFromTangent(Pt a, Pt t, Pt b) {
  Pt c = sub(b, a);
  if (len(c) <= kTiny || len(t) <= kTiny) return 0.0;
  // The arc's included angle is twice the angle from tangent to chord,
  // and the bulge is the tangent of a quarter of it.
  double theta = std::atan2(cross(t, c), dot(t, c));
  return std::tan(theta / 2.0);
}

Biarc biarc(Pt a, Pt ta, Pt b, Pt tb) {
  Biarc r;
  Pt v = sub(b, a);
  ta = unit(ta);
  tb = unit(tb);
  const double l = len(v);
  if (l <= kTiny || len(ta) <= kTiny || len(tb) <= kTiny) {
    r.joint = scale(add(a, b), 0.5);
    r.jointTangent = unit(v);
    return r;
  }
  // The joints of all pairs of arcs that fit the two tangents lie on one
  // circle through a and b, which leaves a at half the difference of the
  // tangents' angles to the chord. Its point halfway between a and b keeps
  // the two arcs alike in size however the tangents turn.
  double thA = std::atan2(cross(v, ta), dot(v, ta));
  double thB = std::atan2(cross(v, tb), dot(v, tb));
  double phi = 0.5 * (thA - thB);
  Pt left{-v.y / l, v.x / l};
  r.joint = add(scale(add(a, b), 0.5), scale(left, 0.5 * l * std::tan(phi / 2.0)));
  r.bulge1 = bulgeFromTangent(a, ta, r.joint);
  // The first arc ends turned from its chord as far as it started, the
  // other way.
  Pt c = unit(sub(r.joint, a));
  double psi = std::atan2(cross(c, ta), dot(c, ta));
  r.jointTangent = {c.x * std::cos(-psi) - c.y * std::sin(-psi), c.x * std::sin(-psi) + c.y * std::cos(-psi)};
  r.bulge2 = bulgeFromTangent(r.joint, r.jointTangent, b);
  return r;
}

CurveFit curveFit(const std::vector<Pt>& pts, bool closed, const std::vector<Pt>* fixedTangents) {
  CurveFit out;
  const size_t n = pts.size();
  out.tangents = fitTangents(pts, closed);
  if (fixedTangents)
    for (size_t i = 0; i < n && i < fixedTangents->size(); ++i)
      if (len((*fixedTangents)[i]) > kTiny) out.tangents[i] = unit((*fixedTangents)[i]);
  if (n < 2) return out;
  size_t segs = closed ? n : n - 1;
  for (size_t i = 0; i < segs; ++i) {
    size_t j = (i + 1) % n;
    out.arcs.push_back(biarc(pts[i], out.tangents[i], pts[j], out.tangents[j]));
  }
  return out;
}

// ---------------------------------------------------------------- B-spline

UniformBSpline::UniformBSpline(std::vector<Pt> ctrl, int degree, bool closed)
    : ctrl_(std::move(ctrl)), degree_(std::max(1, degree)), closed_(closed) {
  const int n = static_cast<int>(ctrl_.size());
  if (closed_ && n < 3) closed_ = false;
  if (!closed_) degree_ = std::max(1, std::min(degree_, n - 1));
}

double UniformBSpline::endParam() const {
  const int n = static_cast<int>(ctrl_.size());
  if (n < 2) return 0.0;
  return closed_ ? n : n - degree_;
}

std::vector<double> UniformBSpline::knots() const {
  const int n = static_cast<int>(ctrl_.size()), p = degree_;
  std::vector<double> t;
  if (n < 2) return t;
  if (closed_) {
    for (int i = -p; i <= n + p; ++i) t.push_back(i);
  } else {
    for (int i = 0; i <= p; ++i) t.push_back(0.0);
    for (int i = 1; i < n - p; ++i) t.push_back(i);
    for (int i = 0; i <= p; ++i) t.push_back(n - p);
  }
  return t;
}

std::vector<Pt> UniformBSpline::unwrappedCtrl() const {
  if (!closed_) return ctrl_;
  std::vector<Pt> c = ctrl_;
  for (int i = 0; i < degree_; ++i) c.push_back(ctrl_[static_cast<size_t>(i)]);
  return c;
}

Pt UniformBSpline::at(double u) const {
  const int n = static_cast<int>(ctrl_.size());
  if (n == 0) return {};
  if (n == 1) return ctrl_[0];
  const std::vector<double> t = knots();
  const std::vector<Pt> c = unwrappedCtrl();
  const int p = degree_, m = static_cast<int>(c.size());
  u = std::clamp(u, t[static_cast<size_t>(p)], t[static_cast<size_t>(m)]);
  // The span k with t[k] <= u < t[k+1], the last one for the end.
  int k = p;
  while (k < m - 1 && u >= t[static_cast<size_t>(k + 1)]) ++k;
  // de Boor.
  std::vector<Pt> d(static_cast<size_t>(p + 1));
  for (int j = 0; j <= p; ++j) d[static_cast<size_t>(j)] = c[static_cast<size_t>(j + k - p)];
  for (int r = 1; r <= p; ++r) {
    for (int j = p; j >= r; --j) {
      double lo = t[static_cast<size_t>(j + k - p)], hi = t[static_cast<size_t>(j + 1 + k - r)];
      double alpha = hi > lo ? (u - lo) / (hi - lo) : 0.0;
      d[static_cast<size_t>(j)] = add(scale(d[static_cast<size_t>(j - 1)], 1.0 - alpha), scale(d[static_cast<size_t>(j)], alpha));
    }
  }
  return d[static_cast<size_t>(p)];
}

std::vector<Pt> splineFitPoints(const std::vector<Pt>& frame, int degree, bool closed, int segsPerSpan) {
  std::vector<Pt> out;
  const size_t n = frame.size();
  if (n == 0) return out;
  if (n == 1) return frame;
  segsPerSpan = std::max(1, segsPerSpan);
  UniformBSpline s(frame, degree, closed);
  const bool isClosed = s.closed();
  const size_t edges = isClosed ? n : n - 1;
  const size_t total = edges * static_cast<size_t>(segsPerSpan);
  const double end = s.endParam();
  const size_t count = isClosed ? total : total + 1;
  out.reserve(count);
  for (size_t i = 0; i < count; ++i) {
    if (!isClosed && i + 1 == count) {
      out.push_back(frame.back());  // exactly the last frame point
      break;
    }
    if (!isClosed && i == 0) {
      out.push_back(frame.front());
      continue;
    }
    out.push_back(s.at(end * static_cast<double>(i) / static_cast<double>(total)));
  }
  return out;
}

}  // namespace zepk::db::fit
