#include "host/render/outline.h"

#include <algorithm>
#include <cmath>

namespace zepk::render {

namespace {

// An arc of a bulge: centre, radius, the angle of a and the signed sweep.
struct BulgeArc {
  Pt c;
  double r = 0, a0 = 0, sweep = 0;
};

bool arcOf(Pt a, Pt b, double bulge, BulgeArc* out) {
  double dx = b.x - a.x, dy = b.y - a.y, chord = std::hypot(dx, dy);
  if (bulge == 0 || !std::isfinite(bulge) || chord == 0) return false;
  double sweep = 4 * std::atan(bulge);
  double r = chord / (2 * std::sin(std::fabs(sweep) / 2));
  // The centre lies off the chord's midpoint, on the left for a positive
  // bulge below a half circle.
  double h = r * std::cos(sweep / 2) * (bulge > 0 ? 1 : -1);
  double mx = (a.x + b.x) / 2, my = (a.y + b.y) / 2;
  double nx = -dy / chord, ny = dx / chord;
  out->c = {mx + nx * h, my + ny * h};
  out->r = r;
  out->a0 = std::atan2(a.y - out->c.y, a.x - out->c.x);
  out->sweep = sweep;
  return std::isfinite(r);
}

int stepsFor(double r, double sweep, double tol) {
  if (!(tol > 0)) tol = r * 1e-3;
  double step = tol >= r ? M_PI / 2 : 2 * std::acos(1 - tol / r);
  int n = static_cast<int>(std::ceil(std::fabs(sweep) / std::max(step, 1e-3)));
  return std::clamp(n, 2, 512);
}

// Where the lines p1-p2 and q1-q2 cross; false when parallel.
bool cross(Pt p1, Pt p2, Pt q1, Pt q2, Pt* out) {
  double d1x = p2.x - p1.x, d1y = p2.y - p1.y, d2x = q2.x - q1.x, d2y = q2.y - q1.y;
  double den = d1x * d2y - d1y * d2x;
  double len = std::hypot(d1x, d1y) * std::hypot(d2x, d2y);
  if (len == 0 || std::fabs(den) < 1e-9 * len) return false;
  double t = ((q1.x - p1.x) * d2y - (q1.y - p1.y) * d2x) / den;
  *out = {p1.x + d1x * t, p1.y + d1y * t};
  return true;
}

struct Band {
  std::vector<Pt> left, right;  // from the segment's start to its end
  double w0 = 0, w1 = 0;
};

Band band(const WideVertex& s, Pt b, double tol) {
  Band out;
  out.w0 = s.startWidth, out.w1 = s.endWidth;
  BulgeArc arc;
  if (arcOf(s.p, b, s.bulge, &arc)) {
    int n = stepsFor(arc.r + std::max(out.w0, out.w1) / 2, arc.sweep, tol);
    for (int i = 0; i <= n; ++i) {
      double f = static_cast<double>(i) / n;
      double t = arc.a0 + arc.sweep * f;
      double w = (out.w0 + (out.w1 - out.w0) * f) / 2;
      // Left of the way along a counterclockwise arc is towards the centre.
      double k = arc.sweep > 0 ? -1 : 1;
      double ux = std::cos(t), uy = std::sin(t);
      out.left.push_back({arc.c.x + ux * (arc.r + k * w), arc.c.y + uy * (arc.r + k * w)});
      out.right.push_back({arc.c.x + ux * (arc.r - k * w), arc.c.y + uy * (arc.r - k * w)});
    }
    return out;
  }
  double dx = b.x - s.p.x, dy = b.y - s.p.y, len = std::hypot(dx, dy);
  double nx = len > 0 ? -dy / len : 0, ny = len > 0 ? dx / len : 0;
  out.left = {{s.p.x + nx * out.w0 / 2, s.p.y + ny * out.w0 / 2}, {b.x + nx * out.w1 / 2, b.y + ny * out.w1 / 2}};
  out.right = {{s.p.x - nx * out.w0 / 2, s.p.y - ny * out.w0 / 2}, {b.x - nx * out.w1 / 2, b.y - ny * out.w1 / 2}};
  return out;
}

// Mitres the join of a band's end and the next band's start.
void mitre(Band& a, Band& b) {
  if (a.w1 <= 0 || b.w0 <= 0 || std::fabs(a.w1 - b.w0) > 1e-9 * std::max(a.w1, b.w0)) return;
  if (a.left.size() < 2 || b.left.size() < 2) return;
  double limit = 4 * a.w1;
  for (int side = 0; side < 2; ++side) {
    std::vector<Pt>& p = side ? a.right : a.left;
    std::vector<Pt>& q = side ? b.right : b.left;
    Pt x;
    if (!cross(p[p.size() - 2], p.back(), q[0], q[1], &x)) continue;
    if (std::hypot(x.x - p.back().x, x.y - p.back().y) > limit) continue;
    p.back() = x;
    q.front() = x;
  }
}

}  // namespace

std::vector<Pt> bulgePoints(Pt a, Pt b, double bulge, double tol) {
  BulgeArc arc;
  if (!arcOf(a, b, bulge, &arc)) return {a, b};
  int n = stepsFor(arc.r, arc.sweep, tol);
  std::vector<Pt> out;
  out.reserve(n + 1);
  out.push_back(a);
  for (int i = 1; i < n; ++i) {
    double t = arc.a0 + arc.sweep * i / n;
    out.push_back({arc.c.x + arc.r * std::cos(t), arc.c.y + arc.r * std::sin(t)});
  }
  out.push_back(b);
  return out;
}

std::vector<std::vector<Pt>> wideOutlines(const std::vector<WideVertex>& v, bool closed, double tol) {
  size_t n = v.size();
  size_t segs = closed ? n : (n > 0 ? n - 1 : 0);
  if (n < 2) return {};
  std::vector<Band> bands;
  bands.reserve(segs);
  for (size_t i = 0; i < segs; ++i) bands.push_back(band(v[i], v[(i + 1) % n].p, tol));
  for (size_t i = 0; i + 1 < segs; ++i) mitre(bands[i], bands[i + 1]);
  if (closed && segs > 2) mitre(bands[segs - 1], bands[0]);
  std::vector<std::vector<Pt>> out(segs);
  for (size_t i = 0; i < segs; ++i) {
    const Band& b = bands[i];
    if (b.w0 <= 0 && b.w1 <= 0) continue;
    std::vector<Pt>& o = out[i];
    o = b.left;
    o.insert(o.end(), b.right.rbegin(), b.right.rend());
  }
  return out;
}

}  // namespace zepk::render
