// Regions made of curves, their measures, their Boolean operations and
// their explosion, through the plane algorithms of host/ge/boolean.h.
#include <algorithm>
#include <cmath>
#include <memory>

#include "host/db/curve_internal.h"
#include "host/dbregion.h"
#include "host/ge/boolean.h"
#include "host/gearc3d.h"
#include "host/gecomp3d.h"
#include "host/gelineseg3d.h"
#include "host/gemat3d.h"
#include "host/geplane.h"

using zepk::ge::Edge2d;
using zepk::ge::Loop2d;

namespace {

constexpr double kPi = 3.14159265358979323846;

// A region's own loops as plane loops in its plane's coordinates.
std::vector<Loop2d> toPlane(const std::vector<AcDbRegion::Loop>& loops) {
  std::vector<Loop2d> out;
  for (const AcDbRegion::Loop& loop : loops) {
    Loop2d l;
    for (const AcDbRegion::Edge& e : loop) {
      if (!e.isArc) {
        l.push_back(Edge2d::line(e.start.x, e.start.y, e.end.x, e.end.y));
        continue;
      }
      double sweep = e.endAngle - e.startAngle;
      if (e.ccw) {
        if (sweep <= 0 || sweep > 2 * kPi) sweep = std::fmod(sweep, 2 * kPi), sweep += sweep <= 0 ? 2 * kPi : 0;
      } else {
        if (sweep >= 0 || sweep < -2 * kPi) sweep = std::fmod(sweep, 2 * kPi), sweep -= sweep >= 0 ? 2 * kPi : 0;
      }
      l.push_back(Edge2d::arcOf(e.center.x, e.center.y, e.radius, e.startAngle, sweep));
    }
    // Consecutive edges share their points exactly.
    for (size_t i = 0; i < l.size(); ++i) {
      Edge2d& next = l[(i + 1) % l.size()];
      next.ax = l[i].bx;
      next.ay = l[i].by;
    }
    out.push_back(l);
  }
  return out;
}

std::vector<AcDbRegion::Loop> fromPlane(const std::vector<Loop2d>& loops) {
  std::vector<AcDbRegion::Loop> out;
  for (const Loop2d& l : loops) {
    AcDbRegion::Loop loop;
    for (const Edge2d& e : l) {
      AcDbRegion::Edge r;
      r.start.set(e.ax, e.ay);
      r.end.set(e.bx, e.by);
      if (e.arc) {
        r.isArc = true;
        r.center.set(e.cx, e.cy);
        r.radius = e.r;
        r.startAngle = std::atan2(e.ay - e.cy, e.ax - e.cx);
        r.endAngle = r.startAngle + e.sweep;
        r.ccw = e.sweep > 0;
      }
      loop.push_back(r);
    }
    out.push_back(loop);
  }
  return out;
}

// Plane loops of another plane's loops: through the world.
std::vector<Loop2d> replane(const std::vector<Loop2d>& loops, const AcGeVector3d& from, const AcGeVector3d& to) {
  AcGeMatrix3d m = AcGeMatrix3d::worldToPlane(to) * AcGeMatrix3d::planeToWorld(from);
  bool flip = from.dotProduct(to) < 0;
  std::vector<Loop2d> out;
  for (const Loop2d& l : loops) {
    Loop2d r;
    for (Edge2d e : l) {
      AcGePoint3d a = m * AcGePoint3d(e.ax, e.ay, 0), b = m * AcGePoint3d(e.bx, e.by, 0),
                  c = m * AcGePoint3d(e.cx, e.cy, 0);
      e.ax = a.x, e.ay = a.y, e.bx = b.x, e.by = b.y, e.cx = c.x, e.cy = c.y;
      if (flip) e.sweep = -e.sweep;
      r.push_back(e);
    }
    out.push_back(r);
  }
  return out;
}

// The edges of a curve in the plane of the normal (coordinates of
// worldToPlane(normal)).
bool curveEdges(const AcDbCurve* c, const AcGeVector3d& normal, std::vector<Edge2d>& out, AcGePoint3d& first,
                AcGePoint3d& last) {
  AcGeCurve3d* g = nullptr;
  if (c->getAcGeCurve(g) != Acad::eOk || !g) return false;
  std::unique_ptr<AcGeCurve3d> own(g);
  double lo, hi;
  g->getInterval(lo, hi);
  if (!std::isfinite(lo) || !std::isfinite(hi)) return false;
  AcGeMatrix3d m = AcGeMatrix3d::worldToPlane(normal);
  auto add = [&](const AcGeCurve3d& k) {
    double a, b;
    k.getInterval(a, b);
    if (k.isKindOf(AcGe::kLinearEnt3d)) {
      AcGePoint3d p = m * k.evalPoint(a), q = m * k.evalPoint(b);
      if (p.distanceTo(q) > 0) out.push_back(Edge2d::line(p.x, p.y, q.x, q.y));
    } else if (k.type() == AcGe::kCircArc3d) {
      const auto& arc = static_cast<const AcGeCircArc3d&>(k);
      AcGePoint3d cc = m * arc.center(), s = m * arc.startPoint();
      double sweep = (b - a) * (arc.normal().dotProduct(normal) >= 0 ? 1 : -1);
      Edge2d e = Edge2d::arcOf(cc.x, cc.y, arc.radius(), std::atan2(s.y - cc.y, s.x - cc.x), sweep);
      out.push_back(e);
    } else {
      AcGePoint3dArray pts;
      AcGeDoubleArray prm;
      double size = k.length(a, b);
      k.getSamplePoints(a, b, std::max(size * 1e-5, 1e-9), pts, prm);
      for (size_t i = 0; i + 1 < pts.size(); ++i) {
        AcGePoint3d p = m * pts[i], q = m * pts[i + 1];
        out.push_back(Edge2d::line(p.x, p.y, q.x, q.y));
      }
    }
  };
  if (g->type() == AcGe::kCompositeCrv3d) {
    const auto& comp = static_cast<const AcGeCompositeCurve3d&>(*g);
    for (int i = 0; i < comp.numCurves(); ++i) add(comp.curveAt(i));
  } else {
    add(*g);
  }
  first = g->evalPoint(lo);
  last = g->evalPoint(hi);
  return !out.empty();
}

void extentsOf(const Loop2d& l, double& x0, double& y0, double& x1, double& y1) {
  for (const Edge2d& e : l) {
    auto take = [&](double x, double y) {
      x0 = std::min(x0, x), y0 = std::min(y0, y), x1 = std::max(x1, x), y1 = std::max(y1, y);
    };
    take(e.ax, e.ay);
    take(e.bx, e.by);
    if (!e.arc) continue;
    double a0 = std::atan2(e.ay - e.cy, e.ax - e.cx);
    for (int k = 0; k < 4; ++k) {
      double d = (k * kPi / 2 - a0) * (e.sweep > 0 ? 1 : -1);
      d = std::fmod(d, 2 * kPi);
      if (d < 0) d += 2 * kPi;
      if (d <= std::fabs(e.sweep)) take(e.cx + e.r * std::cos(k * kPi / 2), e.cy + e.r * std::sin(k * kPi / 2));
    }
  }
}

}  // namespace

Acad::ErrorStatus AcDbRegion::createFromCurves(const AcDbVoidPtrArray& curveSegments, AcDbVoidPtrArray& regions) {
  std::vector<const AcDbCurve*> curves;
  for (void* p : curveSegments) {
    const AcDbCurve* c = AcDbCurve::cast(static_cast<AcDbObject*>(p));
    if (!c) return Acad::eInvalidInput;
    curves.push_back(c);
  }
  if (curves.empty()) return Acad::eInvalidInput;
  // One plane for all.
  AcGePlane plane;
  bool have = false;
  for (const AcDbCurve* c : curves) {
    AcGePlane p;
    AcDb::Planarity k;
    if (c->getPlane(p, k) != Acad::eOk) return Acad::eInvalidInput;
    if (k == AcDb::kPlanar && !have) {
      plane = p;
      have = true;
    }
  }
  if (!have) return Acad::eInvalidInput;  // straight curves alone bound nothing
  AcGeVector3d normal = plane.normal();
  if (normal.z < 0 || (normal.z == 0 && (normal.y < 0 || (normal.y == 0 && normal.x < 0)))) normal = -normal;
  struct Piece {
    std::vector<Edge2d> edges;
    const AcDbCurve* src;
    bool used = false;
  };
  std::vector<Piece> open;
  std::vector<std::pair<Loop2d, const AcDbCurve*>> loops;
  for (const AcDbCurve* c : curves) {
    Piece p{{}, c};
    AcGePoint3d s, e;
    if (!curveEdges(c, normal, p.edges, s, e)) return Acad::eInvalidInput;
    for (const Edge2d& k : p.edges) {
      AcGePoint3d w = AcGeMatrix3d::planeToWorld(normal) * AcGePoint3d(k.ax, k.ay, 0);
      if (!plane.isOn(w, AcGeTol()) && plane.distanceTo(w) > 1e-8 * std::max(1.0, w.asVector().length()))
        return Acad::eInvalidInput;
    }
    if (c->isClosed() || s.isEqualTo(e)) {
      loops.push_back({p.edges, c});
    } else {
      open.push_back(p);
    }
  }
  // Open curves joined end to end, either way round.
  auto near = [](double ax, double ay, double bx, double by) {
    return std::hypot(ax - bx, ay - by) <= 1e-8 * std::max({1.0, std::fabs(ax), std::fabs(ay)});
  };
  for (size_t i = 0; i < open.size(); ++i) {
    if (open[i].used) continue;
    open[i].used = true;
    Loop2d chain = open[i].edges;
    bool grown = true;
    while (grown && !near(chain.back().bx, chain.back().by, chain[0].ax, chain[0].ay)) {
      grown = false;
      for (Piece& q : open) {
        if (q.used) continue;
        if (near(q.edges.front().ax, q.edges.front().ay, chain.back().bx, chain.back().by)) {
          chain.insert(chain.end(), q.edges.begin(), q.edges.end());
        } else if (near(q.edges.back().bx, q.edges.back().by, chain.back().bx, chain.back().by)) {
          for (auto it = q.edges.rbegin(); it != q.edges.rend(); ++it) chain.push_back(it->reversed());
        } else {
          continue;
        }
        q.used = grown = true;
        break;
      }
    }
    if (near(chain.back().bx, chain.back().by, chain[0].ax, chain[0].ay)) loops.push_back({chain, open[i].src});
  }
  if (loops.empty()) return Acad::eInvalidInput;
  for (auto& [loop, src] : loops) {
    for (size_t i = 0; i < loop.size(); ++i) {
      loop[(i + 1) % loop.size()].ax = loop[i].bx;
      loop[(i + 1) % loop.size()].ay = loop[i].by;
    }
    std::vector<Loop2d> one{loop};
    zepk::ge::orientLoops(one);
    auto* r = new AcDbRegion();
    r->setPropertiesFrom(src);
    r->normal_ = normal;
    r->loops_ = fromPlane(one);
    regions.push_back(r);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRegion::getArea(double& area) const {
  if (loops_.empty()) return Acad::eNotApplicable;
  std::vector<Loop2d> l = toPlane(loops_);
  zepk::ge::orientLoops(l);
  area = 0;
  for (const Loop2d& k : l) area += zepk::ge::loopArea(k);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRegion::getPerimeter(double& perimeter) const {
  if (loops_.empty()) return Acad::eNotApplicable;
  perimeter = 0;
  for (const Loop2d& k : toPlane(loops_)) perimeter += zepk::ge::loopLength(k);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRegion::getAreaProp(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                                          const AcGeVector3d& yAxis, double& perimeter, double& area,
                                          AcGePoint2d& centroid, double momInertia[2], double& prodInertia,
                                          double prinMoments[2], AcGeVector2d prinAxes[2], double radiiGyration[2],
                                          AcGePoint2d& extentsLow, AcGePoint2d& extentsHigh) const {
  if (loops_.empty()) return Acad::eNotApplicable;
  AcGeVector3d x = xAxis.normal(), y = yAxis.normal();
  if (x.isZeroLength() || y.isZeroLength() || !x.isPerpendicularTo(y, AcGeTol()) && std::fabs(x.dotProduct(y)) > 1e-9)
    return Acad::eInvalidInput;
  if (std::fabs(x.dotProduct(normal_)) > 1e-9 || std::fabs(y.dotProduct(normal_)) > 1e-9) return Acad::eInvalidInput;
  // The loops in the frame: world points measured along x and y.
  AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal_);
  bool flip = x.crossProduct(y).dotProduct(normal_) < 0;
  std::vector<Loop2d> loops = toPlane(loops_);
  for (Loop2d& l : loops) {
    for (Edge2d& e : l) {
      auto map = [&](double& u, double& v) {
        AcGeVector3d d = toWorld * AcGePoint3d(u, v, 0) - origin;
        u = d.dotProduct(x);
        v = d.dotProduct(y);
      };
      map(e.ax, e.ay);
      map(e.bx, e.by);
      map(e.cx, e.cy);
      if (flip) e.sweep = -e.sweep;
    }
  }
  zepk::ge::orientLoops(loops);
  area = 0;
  perimeter = 0;
  double x0 = 1e300, y0 = 1e300, x1 = -1e300, y1 = -1e300;
  for (const Loop2d& l : loops) {
    area += zepk::ge::loopArea(l);
    perimeter += zepk::ge::loopLength(l);
    extentsOf(l, x0, y0, x1, y1);
  }
  double sx = zepk::ge::boundaryIntegral(loops, [](double u, double) { return u * u / 2; });
  double sy = zepk::ge::boundaryIntegral(loops, [](double u, double v) { return u * v; });
  double ixx = zepk::ge::boundaryIntegral(loops, [](double u, double v) { return u * v * v; });
  double iyy = zepk::ge::boundaryIntegral(loops, [](double u, double) { return u * u * u / 3; });
  double ixy = zepk::ge::boundaryIntegral(loops, [](double u, double v) { return u * u * v / 2; });
  double cx = area != 0 ? sx / area : 0, cy = area != 0 ? sy / area : 0;
  centroid.set(cx, cy);
  momInertia[0] = ixx;
  momInertia[1] = iyy;
  prodInertia = ixy;
  double icx = ixx - area * cy * cy, icy = iyy - area * cx * cx, icxy = ixy - area * cx * cy;
  double mid = 0.5 * (icx + icy), rad = std::hypot(0.5 * (icx - icy), icxy);
  prinMoments[0] = mid - rad;
  prinMoments[1] = mid + rad;
  // The axis of the smaller moment, and the one perpendicular to it.
  double theta = 0.5 * std::atan2(-2 * icxy, icx - icy);
  AcGeVector2d a1(std::cos(theta), std::sin(theta));
  double i1 = icx * a1.x * a1.x + icy * a1.y * a1.y - 2 * icxy * a1.x * a1.y;
  if (std::fabs(i1 - prinMoments[0]) > std::fabs(i1 - prinMoments[1])) a1.set(-a1.y, a1.x);
  prinAxes[0] = a1;
  prinAxes[1].set(-a1.y, a1.x);
  radiiGyration[0] = area > 0 ? std::sqrt(std::max(0.0, ixx / area)) : 0;
  radiiGyration[1] = area > 0 ? std::sqrt(std::max(0.0, iyy / area)) : 0;
  extentsLow.set(x0, y0);
  extentsHigh.set(x1, y1);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRegion::booleanOper(AcDb::BoolOperType operation, AcDbRegion* otherRegion) {
  if (!otherRegion || otherRegion == this) return Acad::eInvalidInput;
  if (operation < AcDb::kBoolUnite || operation > AcDb::kBoolSubtract) return Acad::eInvalidInput;
  if (hasModelerData() || otherRegion->hasModelerData()) return Acad::eNotApplicable;
  if (!normal_.isParallelTo(otherRegion->normal_)) return Acad::eInvalidInput;
  std::vector<Loop2d> a = toPlane(loops_);
  std::vector<Loop2d> b = replane(toPlane(otherRegion->loops_), otherRegion->normal_, normal_);
  zepk::ge::orientLoops(a);
  zepk::ge::orientLoops(b);
  auto op = operation == AcDb::kBoolUnite       ? zepk::ge::BoolOp::Unite
            : operation == AcDb::kBoolIntersect ? zepk::ge::BoolOp::Intersect
                                                : zepk::ge::BoolOp::Subtract;
  std::vector<Loop2d> r = zepk::ge::booleanLoops(a, b, op);
  assertWriteEnabled();
  loops_ = fromPlane(r);
  otherRegion->assertWriteEnabled();
  otherRegion->loops_.clear();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRegion::explode(AcDbVoidPtrArray& entitySet) const {
  if (loops_.empty()) return Acad::eNotApplicable;
  AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal_);
  for (const Loop2d& l : toPlane(loops_)) {
    for (const Edge2d& e : l) {
      AcDbEntity* out;
      if (!e.arc) {
        out = new AcDbLine(toWorld * AcGePoint3d(e.ax, e.ay, 0), toWorld * AcGePoint3d(e.bx, e.by, 0));
      } else if (std::fabs(std::fabs(e.sweep) - 2 * kPi) < 1e-12) {
        out = new AcDbCircle(toWorld * AcGePoint3d(e.cx, e.cy, 0), normal_, e.r);
      } else {
        AcGeVector3d n = e.sweep > 0 ? normal_ : -normal_;
        AcGePoint3d c = toWorld * AcGePoint3d(e.cx, e.cy, 0);
        AcGeCircArc3d arc(c, n, toWorld * AcGePoint3d(e.ax, e.ay, 0) - c, e.r, 0.0, std::fabs(e.sweep));
        out = zepk::db::arcFromGe(arc, normal_);
      }
      out->setPropertiesFrom(this);
      entitySet.push_back(out);
    }
  }
  return Acad::eOk;
}
