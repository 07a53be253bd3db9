#include "geometry/lines.h"

#include <algorithm>
#include <cmath>

namespace zepk::geometry {

namespace {

struct V {
  double x, y, z;
};
V sub(const Point& a, const Point& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
double dot(const V& a, const V& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
V cross(const V& a, const V& b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
double len(const V& a) { return std::sqrt(dot(a, a)); }
Point along(const Point& p, const V& d, double t) { return {p.x + t * d.x, p.y + t * d.y, p.z + t * d.z}; }
double dist(const Point& a, const Point& b) { return len(sub(a, b)); }

}  // namespace

std::optional<Point> intersectLines(const Point& a1, const Point& a2, const Point& b1, const Point& b2,
                                    double tolerance) {
  const V u = sub(a2, a1), v = sub(b2, b1), w = sub(a1, b1);
  const double uu = dot(u, u), vv = dot(v, v), uv = dot(u, v);
  if (uu == 0.0 || vv == 0.0) return std::nullopt;
  const double denom = uu * vv - uv * uv;
  // Parallel when the sine of the angle between the lines vanishes.
  if (denom <= 1e-24 * uu * vv) return std::nullopt;
  const double s = (uv * dot(v, w) - vv * dot(u, w)) / denom;
  const double t = (uu * dot(v, w) - uv * dot(u, w)) / denom;
  const Point p = along(a1, u, s), q = along(b1, v, t);
  if (dist(p, q) > tolerance) return std::nullopt;
  return Point{(p.x + q.x) / 2, (p.y + q.y) / 2, (p.z + q.z) / 2};
}

bool onOneLine(const Point& a1, const Point& a2, const Point& b1, const Point& b2, double distanceTolerance,
               double pointTolerance) {
  if (dist(a1, a2) <= pointTolerance) {
    // The first "segment" is a point: the line is the second one's.
    if (dist(b1, b2) <= pointTolerance) return dist(a1, b1) <= pointTolerance;
    return distanceToLine(a1, b1, b2) <= distanceTolerance;
  }
  return distanceToLine(b1, a1, a2) <= distanceTolerance && distanceToLine(b2, a1, a2) <= distanceTolerance;
}

std::optional<std::pair<Point, Point>> commonPart(const Point& a1, const Point& a2, const Point& b1, const Point& b2,
                                                  double tolerance) {
  if (!onOneLine(a1, a2, b1, b2, tolerance, tolerance)) return std::nullopt;
  const V u = sub(a2, a1);
  const double uu = dot(u, u);
  if (uu == 0.0) return std::nullopt;
  const double length = std::sqrt(uu);
  // Positions along the first segment, in its own length units.
  auto at = [&](const Point& p) { return dot(sub(p, a1), u) / length; };
  double lo = std::max(0.0, std::min(at(b1), at(b2)));
  double hi = std::min(length, std::max(at(b1), at(b2)));
  if (hi < lo - tolerance) return std::nullopt;
  if (hi < lo) hi = lo;
  return std::make_pair(along(a1, u, lo / length), along(a1, u, hi / length));
}

Point perpendicularFoot(const Point& p, const Point& a, const Point& b) {
  const V u = sub(b, a);
  const double uu = dot(u, u);
  if (uu == 0.0) return a;
  return along(a, u, dot(sub(p, a), u) / uu);
}

double distanceToLine(const Point& p, const Point& a, const Point& b) { return dist(p, perpendicularFoot(p, a, b)); }

std::optional<Point> heightOnTriangle(const Point& p, const Point& a, const Point& b, const Point& c) {
  const V n = cross(sub(b, a), sub(c, a));
  const double size = len(n);
  if (size == 0.0 || std::fabs(n.z) <= 1e-12 * size) return std::nullopt;
  // n . (q - a) = 0 with q = (p.x, p.y, z).
  const double z = a.z - (n.x * (p.x - a.x) + n.y * (p.y - a.y)) / n.z;
  return Point{p.x, p.y, z};
}

}  // namespace zepk::geometry
