#include "host/render/hatchlines.h"

#include <algorithm>
#include <cmath>

namespace zepk::render {

bool hatchSegments(const std::vector<std::vector<Pt>>& loops, const PatternFamily& f, size_t maxSegments,
                   std::vector<Segment>* out) {
  double dx = std::cos(f.angle), dy = std::sin(f.angle);
  double nx = -dy, ny = dx;
  double spacing = f.offset.x * nx + f.offset.y * ny;  // between lines
  if (!std::isfinite(spacing) || std::fabs(spacing) < 1e-12) return false;

  // The band of lines that can cross the loops.
  double lo = INFINITY, hi = -INFINITY;
  for (const auto& loop : loops)
    for (const Pt& p : loop) {
      double s = (p.x - f.base.x) * nx + (p.y - f.base.y) * ny;
      lo = std::min(lo, s), hi = std::max(hi, s);
    }
  if (!(lo <= hi)) return true;
  double k0 = std::ceil(std::min(lo / spacing, hi / spacing)), k1 = std::floor(std::max(lo / spacing, hi / spacing));
  if (k1 - k0 + 1 > static_cast<double>(maxSegments)) return false;

  double period = 0;
  for (double d : f.dashes) period += std::fabs(d);
  bool dashed = period > 0 && std::isfinite(period);
  if (dashed && (hi - lo) > 0) {
    // A dash pattern far finer than the area would make pieces without end.
    double along = 0;
    for (const auto& loop : loops)
      for (const Pt& p : loop) along = std::max(along, std::fabs((p.x - f.base.x) * dx + (p.y - f.base.y) * dy));
    if ((k1 - k0 + 1) * (2 * along / period) * f.dashes.size() > static_cast<double>(maxSegments) * 4) return false;
  }

  std::vector<double> ts;
  for (double k = k0; k <= k1; k += 1) {
    double ox = f.base.x + f.offset.x * k, oy = f.base.y + f.offset.y * k;
    ts.clear();
    for (const auto& loop : loops) {
      size_t n = loop.size();
      for (size_t i = 0; i < n; ++i) {
        const Pt& p = loop[i];
        const Pt& q = loop[(i + 1) % n];
        double sp = (p.x - ox) * nx + (p.y - oy) * ny, sq = (q.x - ox) * nx + (q.y - oy) * ny;
        // Half-open at each end, so that a vertex on the line counts once.
        if ((sp > 0) == (sq > 0)) continue;
        double u = sp / (sp - sq);
        double ix = p.x + (q.x - p.x) * u, iy = p.y + (q.y - p.y) * u;
        ts.push_back((ix - ox) * dx + (iy - oy) * dy);
      }
    }
    std::sort(ts.begin(), ts.end());
    for (size_t i = 0; i + 1 < ts.size(); i += 2) {
      double t0 = ts[i], t1 = ts[i + 1];
      if (t1 <= t0) continue;
      auto at = [&](double t) { return Pt{ox + dx * t, oy + dy * t}; };
      if (!dashed) {
        out->push_back({at(t0), at(t1)});
      } else {
        // The pattern starts at the line's own base point (the family's
        // base moved by k offsets), so dashes line up as the file has them.
        double start = std::floor(t0 / period) * period;
        for (double p0 = start; p0 < t1; p0 += period) {
          double pos = p0;
          for (double d : f.dashes) {
            double len = std::fabs(d);
            if (d >= 0) {
              double a = std::max(pos, t0), b = std::min(pos + len, t1);
              if (d == 0 ? (pos >= t0 && pos <= t1) : a < b) out->push_back({at(a), at(d == 0 ? a : b)});
            }
            pos += len;
          }
          if (out->size() > maxSegments) return false;
        }
      }
      if (out->size() > maxSegments) return false;
    }
  }
  return true;
}

}  // namespace zepk::render
