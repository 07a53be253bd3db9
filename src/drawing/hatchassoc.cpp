// HATCHASSOC: a hatch's loops tied to the closed curves that have their
// shapes, so that the hatch is associative and the curves know it.
#include "drawing/hatchassoc.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "drawing/hatchloops.h"
#include "geometry/curves.h"
#include "host/aced.h"
#include "host/dbapserv.h"
#include "host/dbhatch.h"
#include "host/dbpl.h"

namespace zepk::drawing {

namespace {

constexpr double kTwoPi = 6.283185307179586476925286766559;

struct Arc {
  double cx, cy, r, a0, sweep;  // sweep signed: positive counterclockwise
};

// The arc of a bulged segment from (x0, y0) to (x1, y1).
Arc arcOf(double x0, double y0, double x1, double y1, double bulge) {
  double dx = x1 - x0, dy = y1 - y0, l = std::hypot(dx, dy);
  // The centre lies off the chord's middle, to the left for a positive bulge.
  double off = l / 2 * (1 - bulge * bulge) / (2 * bulge);
  Arc a;
  a.cx = (x0 + x1) / 2 - dy / l * off;
  a.cy = (y0 + y1) / 2 + dx / l * off;
  a.r = std::hypot(x0 - a.cx, y0 - a.cy);
  a.a0 = std::atan2(y0 - a.cy, x0 - a.cx);
  a.sweep = 4 * std::atan(bulge);
  return a;
}

size_t segmentCount(const PolylineData& d) {
  size_t n = d.points.size();
  if (n < 2) return 0;
  return d.closed ? n : n - 1;
}

double bulgeAt(const PolylineData& d, size_t i) { return i < d.bulges.size() ? d.bulges[i] : 0.0; }

bool straight(double x0, double y0, double x1, double y1, double bulge) {
  return std::fabs(bulge) < 1e-12 || std::hypot(x1 - x0, y1 - y0) < 1e-15;
}

double toSegment(double px, double py, double x0, double y0, double x1, double y1) {
  double dx = x1 - x0, dy = y1 - y0, ll = dx * dx + dy * dy;
  double t = ll > 0 ? std::clamp(((px - x0) * dx + (py - y0) * dy) / ll, 0.0, 1.0) : 0.0;
  return std::hypot(px - (x0 + t * dx), py - (y0 + t * dy));
}

double toArc(double px, double py, double x0, double y0, double x1, double y1, double bulge) {
  Arc a = arcOf(x0, y0, x1, y1, bulge);
  double ang = std::atan2(py - a.cy, px - a.cx);
  double from = a.sweep >= 0 ? ang - a.a0 : a.a0 - ang;
  from = std::fmod(from, kTwoPi);
  if (from < 0) from += kTwoPi;
  if (from <= std::fabs(a.sweep)) return std::fabs(std::hypot(px - a.cx, py - a.cy) - a.r);
  return std::min(std::hypot(px - x0, py - y0), std::hypot(px - x1, py - y1));
}

// Points along the outline: each segment at quarters of its length.
std::vector<AcGePoint2d> samples(const PolylineData& d) {
  std::vector<AcGePoint2d> out;
  const size_t n = d.points.size();
  if (n == 1) out.emplace_back(d.points[0].x, d.points[0].y);
  for (size_t i = 0; i < segmentCount(d); ++i) {
    const AcGePoint3d &p = d.points[i], &q = d.points[(i + 1) % n];
    double b = bulgeAt(d, i);
    for (int k = 0; k < 4; ++k) {
      double t = k / 4.0;
      if (straight(p.x, p.y, q.x, q.y, b)) {
        out.emplace_back(p.x + t * (q.x - p.x), p.y + t * (q.y - p.y));
      } else {
        Arc a = arcOf(p.x, p.y, q.x, q.y, b);
        double ang = a.a0 + t * a.sweep;
        out.emplace_back(a.cx + a.r * std::cos(ang), a.cy + a.r * std::sin(ang));
      }
    }
  }
  return out;
}

// The curve as an outline in world x and y; false for a curve that is
// not closed or that the kernel cannot model.
bool outlineOf(const AcDbCurve& c, PolylineData& out) {
  std::unique_ptr<AcDbPolyline> pl(geometry::curveToLwPoly(&c));
  if (!pl || pl->numVerts() < 2) return false;
  out = PolylineData{};
  for (unsigned i = 0; i < pl->numVerts(); ++i) {
    AcGePoint3d p;
    double b = 0;
    pl->getPointAt(i, p);
    pl->getBulgeAt(i, b);
    out.points.push_back(p);
    out.bulges.push_back(b);
  }
  out.closed = pl->isClosed();
  if (!out.closed && out.points.front().distanceTo(out.points.back()) < 1e-9) {
    // Closed by a last vertex on the first.
    out.points.pop_back();
    out.bulges.pop_back();
    out.closed = true;
  }
  return out.closed;
}

double sizeOf(const PolylineData& d) {
  if (d.points.empty()) return 0;
  double x0 = d.points[0].x, x1 = x0, y0 = d.points[0].y, y1 = y0;
  for (const AcGePoint3d& p : d.points) {
    x0 = std::min(x0, p.x), x1 = std::max(x1, p.x);
    y0 = std::min(y0, p.y), y1 = std::max(y1, p.y);
  }
  return std::hypot(x1 - x0, y1 - y0);
}

}  // namespace

double distanceToOutline(const PolylineData& d, double x, double y) {
  const size_t n = d.points.size();
  if (n == 0) return HUGE_VAL;
  if (n == 1) return std::hypot(x - d.points[0].x, y - d.points[0].y);
  double best = HUGE_VAL;
  for (size_t i = 0; i < segmentCount(d); ++i) {
    const AcGePoint3d &p = d.points[i], &q = d.points[(i + 1) % n];
    double b = bulgeAt(d, i);
    double dist = straight(p.x, p.y, q.x, q.y, b) ? toSegment(x, y, p.x, p.y, q.x, q.y)
                                                  : toArc(x, y, p.x, p.y, q.x, q.y, b);
    best = std::min(best, dist);
  }
  return best;
}

bool sameOutline(const PolylineData& a, const PolylineData& b, double tol) {
  if (a.points.size() < 2 || b.points.size() < 2) return false;
  for (const AcGePoint2d& p : samples(a))
    if (distanceToOutline(b, p.x, p.y) > tol) return false;
  for (const AcGePoint2d& p : samples(b))
    if (distanceToOutline(a, p.x, p.y) > tol) return false;
  return true;
}

int associateHatch(AcDbObjectId hatchId, const std::vector<AcDbObjectId>& curves) {
  AcDbObjectPointer<AcDbHatch> hatch(hatchId, AcDb::kForWrite);
  if (hatch.openStatus() != Acad::eOk) return -1;
  std::vector<PolylineData> loops = hatchLoops(*hatch.object());
  // The curves' outlines, read once.
  std::vector<std::pair<AcDbObjectId, PolylineData>> outlines;
  for (AcDbObjectId id : curves) {
    if (id == hatchId) continue;
    AcDbObjectPointer<AcDbCurve> c(id, AcDb::kForRead);
    PolylineData d;
    if (c.openStatus() == Acad::eOk && outlineOf(*c.object(), d)) outlines.emplace_back(id, d);
  }
  int tied = 0;
  for (size_t i = 0; i < loops.size() && i < static_cast<size_t>(hatch->numLoops()); ++i) {
    const double tol = 1e-6 * (1.0 + sizeOf(loops[i]));
    for (const auto& [id, outline] : outlines) {
      if (!sameOutline(loops[i], outline, tol)) continue;
      AcDbObjectPointer<AcDbCurve> c(id, AcDb::kForWrite);
      if (c.openStatus() != Acad::eOk) break;
      hatch->setAssocObjIdsAt(static_cast<int>(i), AcDbObjectIdArray{id});
      c->addPersistentReactor(hatchId);
      ++tied;
      break;
    }
  }
  if (tied > 0) hatch->setAssociative(true);
  return tied;
}

void cmdHatchAssoc() {
  ads_name e;
  ads_point p;
  AcDbObjectId hatchId;
  if (acedEntSel(u"\n选择填充: ", e, p) != RTNORM || acdbGetObjectId(hatchId, e) != Acad::eOk) return;
  {
    AcDbObjectPointer<AcDbHatch> h(hatchId, AcDb::kForRead);
    if (h.openStatus() != Acad::eOk) {
      acutPrintf(u"\n所选对象不是填充.");
      return;
    }
  }
  acutPrintf(u"\n选择边界对象:");
  ads_name ss;
  if (acedSSGet(nullptr, nullptr, nullptr, nullptr, ss) != RTNORM) return;
  int32_t n = 0;
  acedSSLength(ss, &n);
  std::vector<AcDbObjectId> ids;
  for (int32_t i = 0; i < n; ++i) {
    ads_name x;
    AcDbObjectId id;
    if (acedSSName(ss, i, x) == RTNORM && acdbGetObjectId(id, x) == Acad::eOk) ids.push_back(id);
  }
  acedSSFree(ss);
  int tied = associateHatch(hatchId, ids);
  if (tied < 0) {
    acutPrintf(u"\n填充不能修改.");
    return;
  }
  acutPrintf(u"\n关联了 %d 个环.", tied);
}

}  // namespace zepk::drawing
