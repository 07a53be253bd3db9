// Where curves meet. Lines, segments, rays and circular arcs meet in closed
// form; every other pair is found on fine samples of both curves and
// refined on the curves themselves (Gauss-Newton on the two parameters),
// which also finds points where the curves only touch.
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "host/ge/kernels.h"
#include "host/ge/linear_parts.h"
#include "host/gearc3d.h"
#include "host/gecint3d.h"
#include "host/gecomp3d.h"
#include "host/gelinent3d.h"
#include "host/gelineseg3d.h"
#include "host/gemat3d.h"
#include "host/genurb3d.h"

using Hit = AcGeCurveCurveInt3d::Hit;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kInf = std::numeric_limits<double>::infinity();

// One smooth piece of a curve: the curve itself over [lo, hi] of its own
// parameter, and how its parameter maps to the parameter of the whole.
struct Piece {
  const AcGeCurve3d* curve;
  double lo, hi;
  std::function<double(double)> toGlobal;
};

double magnitude(const AcGePoint3d& p) { return std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)}); }

// ---- closed forms

void lineLine(const AcGeLinearEnt3d& a, const AcGeLinearEnt3d& b, const AcGeTol& tol, std::vector<Hit>& out) {
  AcGeLinearParts A = AcGeLinearParts::of(a), B = AcGeLinearParts::of(b);
  if (A.degenerate(tol) || B.degenerate(tol)) return;
  if (A.parallel(B, tol)) {
    if (!A.colinear(B, tol)) return;
    // Common range on A.
    double b0 = A.footParam(B.at(std::isfinite(B.lo) ? B.lo : 0.0));
    double b1 = A.footParam(B.at(std::isfinite(B.hi) ? B.hi : 1.0));
    double blo, bhi;
    bool sameDir = A.v.dotProduct(B.v) > 0;
    // An unbounded side of B stretches its range that way on A.
    double lo = std::isfinite(B.lo) ? b0 : (sameDir ? -kInf : kInf);
    double hi = std::isfinite(B.hi) ? b1 : (sameDir ? kInf : -kInf);
    blo = std::min(lo, hi);
    bhi = std::max(lo, hi);
    double s0 = std::max(A.lo, blo), s1 = std::min(A.hi, bhi);
    double len = A.v.length();
    if (s1 < s0 - tol.equalPoint() / len) return;
    if (!std::isfinite(s0) || !std::isfinite(s1)) return;  // unbounded overlap: no end points to give
    if ((s1 - s0) * len <= tol.equalPoint()) {
      AcGePoint3d p = A.at(0.5 * (s0 + s1));
      out.push_back({p, 0.5 * (s0 + s1), B.footParam(p), false, false});
      return;
    }
    for (double s : {s0, s1}) {
      AcGePoint3d p = A.at(s);
      out.push_back({p, s, B.footParam(p), true, true});
    }
    return;
  }
  double s, t;
  if (!A.intersect(B, tol, s, t)) return;
  if (!A.inRange(s, tol) || !B.inRange(t, tol)) return;
  s = A.clamp(s);
  t = B.clamp(t);
  AcGePoint3d p = A.at(s);
  if (p.distanceTo(B.at(t)) > tol.equalPoint() * 10 + 1e-13 * magnitude(p)) return;
  out.push_back({p, s, t, false, false});
}

// The arc's parameter of a point on its circle, when the point lies on the
// arc (within tol along it).
bool arcParam(const AcGeCircArc3d& arc, const AcGePoint3d& p, const AcGeTol& tol, double& t) {
  double a = arc.angleOf(p);
  double r = std::max(arc.radius(), 1e-300);
  double slack = tol.equalPoint() / r;
  if (a <= arc.endAng() + slack) {
    t = std::min(a, arc.endAng());
    return true;
  }
  if (a >= arc.startAng() + 2 * kPi - slack) {
    t = arc.startAng();
    return true;
  }
  return false;
}

void lineArc(const AcGeLinearEnt3d& line, const AcGeCircArc3d& arc, bool swap, const AcGeTol& tol,
             std::vector<Hit>& out) {
  AcGeLinearParts L = AcGeLinearParts::of(line);
  if (L.degenerate(tol) || arc.radius() <= 0) return;
  AcGeVector3d n = arc.normal(), u = arc.refVec(), w = n.crossProduct(u);
  AcGePoint3d c = arc.center();
  double vn = L.v.dotProduct(n);
  auto emit = [&](double s, bool tangent) {
    if (!L.inRange(s, tol)) return;
    s = L.clamp(s);
    AcGePoint3d p = L.at(s);
    double t;
    if (!arcParam(arc, p, tol, t)) return;
    out.push_back(swap ? Hit{p, t, s, tangent, false} : Hit{p, s, t, tangent, false});
  };
  if (std::fabs(vn) <= tol.equalVector() * L.v.length()) {
    if (std::fabs((L.p - c).dotProduct(n)) > tol.equalPoint()) return;
    AcGeVector3d d = L.p - c;
    double ts[2];
    int k = zepk::ge::intersectLineCircle(d.dotProduct(u), d.dotProduct(w), L.v.dotProduct(u), L.v.dotProduct(w),
                                          0.0, 0.0, arc.radius(), tol.equalPoint(), ts);
    for (int i = 0; i < k; ++i) emit(ts[i], k == 1);
    return;
  }
  double s = (c - L.p).dotProduct(n) / vn;
  AcGePoint3d p = L.at(s);
  if (std::fabs(p.distanceTo(c) - arc.radius()) <= tol.equalPoint()) emit(s, false);
}

void arcArc(const AcGeCircArc3d& a, const AcGeCircArc3d& b, const AcGeTol& tol, std::vector<Hit>& out,
            bool& handled) {
  handled = false;
  if (a.radius() <= 0 || b.radius() <= 0) {
    handled = true;
    return;
  }
  AcGeVector3d n = a.normal();
  if (!n.isParallelTo(b.normal(), tol) || std::fabs((b.center() - a.center()).dotProduct(n)) > tol.equalPoint())
    return;  // not coplanar: left to the general search
  handled = true;
  AcGeVector3d u = a.refVec(), w = n.crossProduct(u);
  AcGeVector3d d = b.center() - a.center();
  double pts[4];
  int k = zepk::ge::intersectCircles(0.0, 0.0, a.radius(), d.dotProduct(u), d.dotProduct(w), b.radius(),
                                     tol.equalPoint(), pts);
  if (k == -1) {
    // The same circle: the common stretches of the two arcs, in a's angles.
    bool same = n.isCodirectionalTo(b.normal(), tol);
    double sweepB = b.endAng() - b.startAng();
    double x = same ? a.angleOf(b.startPoint()) : a.angleOf(b.endPoint());
    double r = a.radius();
    for (int shift = -1; shift <= 1; ++shift) {
      double lo = std::max(a.startAng(), x + shift * 2 * kPi);
      double hi = std::min(a.endAng(), x + shift * 2 * kPi + sweepB);
      if (hi < lo - tol.equalPoint() / r) continue;
      auto put = [&](double s, bool overlap) {
        AcGePoint3d p = a.evalPoint(s);
        double t;
        if (!arcParam(b, p, tol, t)) t = b.paramOf(p);
        out.push_back({p, s, t, overlap, overlap});
      };
      if ((hi - lo) * r <= tol.equalPoint()) {
        put(0.5 * (lo + hi), false);
      } else {
        put(lo, true);
        put(hi, true);
      }
    }
    return;
  }
  for (int i = 0; i < k; ++i) {
    AcGePoint3d p = a.center() + u * pts[2 * i] + w * pts[2 * i + 1];
    double s, t;
    if (arcParam(a, p, tol, s) && arcParam(b, p, tol, t)) out.push_back({p, s, t, k == 1, false});
  }
}

// ---- the general search

struct Polyline {
  std::vector<AcGePoint3d> pts;
  std::vector<double> prm;
};

Polyline sample(const AcGeCurve3d& c, double lo, double hi, double eps) {
  Polyline pl;
  c.getSamplePoints(lo, hi, eps, pl.pts, pl.prm);
  if (pl.pts.size() < 2) {
    pl.pts = {c.evalPoint(lo), c.evalPoint(hi)};
    pl.prm = {lo, hi};
  }
  return pl;
}

// Parameters of the nearest points of segments p0p1 and q0q1, as fractions.
double segSegDistance(const AcGePoint3d& p0, const AcGePoint3d& p1, const AcGePoint3d& q0, const AcGePoint3d& q1,
                      double& s, double& t) {
  AcGeVector3d d1 = p1 - p0, d2 = q1 - q0, r = p0 - q0;
  double a = d1.dotProduct(d1), e = d2.dotProduct(d2), f = d2.dotProduct(r);
  if (a <= 1e-300 && e <= 1e-300) {
    s = t = 0;
    return p0.distanceTo(q0);
  }
  if (a <= 1e-300) {
    s = 0;
    t = std::clamp(f / e, 0.0, 1.0);
  } else {
    double c = d1.dotProduct(r);
    if (e <= 1e-300) {
      t = 0;
      s = std::clamp(-c / a, 0.0, 1.0);
    } else {
      double b = d1.dotProduct(d2), den = a * e - b * b;
      s = den > 1e-300 ? std::clamp((b * f - c * e) / den, 0.0, 1.0) : 0.0;
      t = (b * s + f) / e;
      if (t < 0) {
        t = 0;
        s = std::clamp(-c / a, 0.0, 1.0);
      } else if (t > 1) {
        t = 1;
        s = std::clamp((b - c) / a, 0.0, 1.0);
      }
    }
  }
  return (p0 + d1 * s).distanceTo(q0 + d2 * t);
}

// Gauss-Newton on |A(s) - B(t)|, both kept in their ranges.
double refinePair(const AcGeCurve3d& A, double alo, double ahi, const AcGeCurve3d& B, double blo, double bhi,
                  double& s, double& t) {
  AcGeVector3dArray da, db;
  double best = kInf;
  for (int it = 0; it < 60; ++it) {
    AcGePoint3d pa = A.evalPoint(s, 1, da), pb = B.evalPoint(t, 1, db);
    AcGeVector3d F = pa - pb;
    double dist = F.length();
    best = dist;
    if (dist == 0.0) break;
    AcGeVector3d ja = da[0], jb = -db[0];
    double a11 = ja.dotProduct(ja), a12 = ja.dotProduct(jb), a22 = jb.dotProduct(jb);
    double g1 = -ja.dotProduct(F), g2 = -jb.dotProduct(F);
    double det = a11 * a22 - a12 * a12;
    double ds, dt;
    if (std::fabs(det) > 1e-14 * (a11 * a22 + 1e-300)) {
      ds = (g1 * a22 - g2 * a12) / det;
      dt = (a11 * g2 - a12 * g1) / det;
    } else {
      // Parallel tangents: move each curve's point towards the other.
      ds = a11 > 0 ? g1 / a11 * 0.5 : 0.0;
      dt = a22 > 0 ? g2 / a22 * 0.5 : 0.0;
    }
    double ns = std::clamp(s + ds, alo, ahi), nt = std::clamp(t + dt, blo, bhi);
    if (std::fabs(ns - s) <= 1e-16 * std::max(1.0, std::fabs(s)) &&
        std::fabs(nt - t) <= 1e-16 * std::max(1.0, std::fabs(t)))
      break;
    s = ns;
    t = nt;
  }
  return A.evalPoint(s).distanceTo(B.evalPoint(t));
}

// A bounded range of a linear piece that covers the box of the other piece.
bool clipToBox(const AcGeLinearEnt3d& line, const AcGeBoundBlock3d& box, double margin, double& lo, double& hi) {
  AcGePoint3d mn, mx;
  box.getMinMaxPoints(mn, mx);
  double l, h;
  line.getInterval(l, h);
  double a = kInf, b = -kInf;
  for (int i = 0; i < 8; ++i) {
    AcGePoint3d c((i & 1) ? mx.x + margin : mn.x - margin, (i & 2) ? mx.y + margin : mn.y - margin,
                  (i & 4) ? mx.z + margin : mn.z - margin);
    double t = line.paramOf(c);
    a = std::min(a, t);
    b = std::max(b, t);
  }
  lo = std::max(l, a);
  hi = std::min(h, b);
  return lo < hi;
}

void general(const Piece& pa, const Piece& pb, const AcGeTol& tol, std::vector<Hit>& out) {
  double alo = pa.lo, ahi = pa.hi, blo = pb.lo, bhi = pb.hi;
  const AcGeCurve3d& A = *pa.curve;
  const AcGeCurve3d& B = *pb.curve;
  if (!std::isfinite(alo) || !std::isfinite(ahi)) {
    AcGeCurve3d* bb = B.trimmedCopy(blo, bhi);
    if (!bb) return;
    AcGeBoundBlock3d box = bb->orthoBoundBlock();
    delete bb;
    if (!clipToBox(static_cast<const AcGeLinearEnt3d&>(A), box, 1.0, alo, ahi)) return;
  }
  if (!std::isfinite(blo) || !std::isfinite(bhi)) {
    AcGeCurve3d* ab = A.trimmedCopy(alo, ahi);
    if (!ab) return;
    AcGeBoundBlock3d box = ab->orthoBoundBlock();
    delete ab;
    if (!clipToBox(static_cast<const AcGeLinearEnt3d&>(B), box, 1.0, blo, bhi)) return;
  }
  // Sample both at a chord error well below their size.
  AcGePoint3d a0 = A.evalPoint(alo), b0 = B.evalPoint(blo);
  double size = std::max({A.evalPoint(0.5 * (alo + ahi)).distanceTo(a0), A.evalPoint(ahi).distanceTo(a0),
                          B.evalPoint(0.5 * (blo + bhi)).distanceTo(b0), B.evalPoint(bhi).distanceTo(b0), 1e-9});
  double eps = size * 1e-3;
  Polyline PA = sample(A, alo, ahi, eps), PB = sample(B, blo, bhi, eps);
  double margin = 4 * eps + tol.equalPoint();
  double accept = std::max(tol.equalPoint(), 1e-13 * std::max(magnitude(a0), magnitude(b0))) * 10;
  std::vector<Hit> found;
  for (size_t i = 0; i + 1 < PA.pts.size(); ++i) {
    AcGeBoundBlock3d boxA(PA.pts[i], PA.pts[i + 1]);
    boxA.swell(margin);
    for (size_t j = 0; j + 1 < PB.pts.size(); ++j) {
      AcGeBoundBlock3d boxB(PB.pts[j], PB.pts[j + 1]);
      if (boxA.isDisjoint(boxB)) continue;
      double fs, ft;
      double d = segSegDistance(PA.pts[i], PA.pts[i + 1], PB.pts[j], PB.pts[j + 1], fs, ft);
      if (d > margin) continue;
      double s = PA.prm[i] + fs * (PA.prm[i + 1] - PA.prm[i]);
      double t = PB.prm[j] + ft * (PB.prm[j + 1] - PB.prm[j]);
      double dist = refinePair(A, alo, ahi, B, blo, bhi, s, t);
      if (dist > accept) continue;
      AcGeVector3dArray da, db;
      AcGePoint3d p = A.evalPoint(s, 1, da);
      B.evalPoint(t, 1, db);
      bool tangent = da[0].normal().crossProduct(db[0].normal()).length() < 1e-6;
      if (tangent) {
        // Where the curves only touch the two-parameter search is slow to
        // settle: settle the point on A where B comes nearest instead.
        double w = (ahi - alo) * 1e-3, lo = std::max(alo, s - w), hi = std::min(ahi, s + w);
        auto gap = [&](double x) { return B.distanceTo(A.evalPoint(x)); };
        for (int it = 0; it < 80 && hi - lo > 1e-15 * std::max(1.0, std::fabs(s)); ++it) {
          double m1 = lo + (hi - lo) / 3, m2 = hi - (hi - lo) / 3;
          if (gap(m1) < gap(m2))
            hi = m2;
          else
            lo = m1;
        }
        s = 0.5 * (lo + hi);
        p = A.evalPoint(s);
        t = B.paramOf(p);
        if (t < blo || t > bhi) continue;
      }
      found.push_back({p, s, t, tangent, false});
    }
  }
  // One touching point found from neighbouring sample pairs comes once.
  std::vector<Hit> merged;
  for (const Hit& h : found) {
    bool dup = false;
    for (Hit& k : merged)
      if ((k.tangent || h.tangent) && k.point.distanceTo(h.point) <= size * 1e-4) {
        dup = true;
        k.tangent = true;
      }
    if (!dup) merged.push_back(h);
  }
  out.insert(out.end(), merged.begin(), merged.end());
}

void pairHits(const Piece& pa, const Piece& pb, const AcGeTol& tol, std::vector<Hit>& out) {
  const AcGeCurve3d& A = *pa.curve;
  const AcGeCurve3d& B = *pb.curve;
  bool la = A.isKindOf(AcGe::kLinearEnt3d), lb = B.isKindOf(AcGe::kLinearEnt3d);
  bool ca = A.type() == AcGe::kCircArc3d, cb = B.type() == AcGe::kCircArc3d;
  std::vector<Hit> local;
  if (la && lb) {
    lineLine(static_cast<const AcGeLinearEnt3d&>(A), static_cast<const AcGeLinearEnt3d&>(B), tol, local);
  } else if (la && cb) {
    lineArc(static_cast<const AcGeLinearEnt3d&>(A), static_cast<const AcGeCircArc3d&>(B), false, tol, local);
  } else if (ca && lb) {
    lineArc(static_cast<const AcGeLinearEnt3d&>(B), static_cast<const AcGeCircArc3d&>(A), true, tol, local);
  } else {
    bool handled = false;
    if (ca && cb) arcArc(static_cast<const AcGeCircArc3d&>(A), static_cast<const AcGeCircArc3d&>(B), tol, local, handled);
    if (!handled) general(pa, pb, tol, local);
  }
  for (Hit& h : local) {
    // Only the piece's own range counts (pieces of a self search are parts
    // of one curve).
    double e = 1e-12;
    if (h.param1 < pa.lo - e || h.param1 > pa.hi + e || h.param2 < pb.lo - e || h.param2 > pb.hi + e) continue;
    h.param1 = pa.toGlobal(h.param1);
    h.param2 = pb.toGlobal(h.param2);
    out.push_back(h);
  }
}

std::vector<Piece> piecesOf(const AcGeCurve3d& c) {
  std::vector<Piece> r;
  if (c.type() == AcGe::kCompositeCrv3d) {
    const auto& comp = static_cast<const AcGeCompositeCurve3d&>(c);
    for (int i = 0; i < comp.numCurves(); ++i) {
      const AcGeCurve3d& ci = comp.curveAt(i);
      double lo, hi;
      ci.getInterval(lo, hi);
      r.push_back({&ci, lo, hi, [&comp, i](double t) { return comp.localToGlobalParam(t, i); }});
    }
    return r;
  }
  double lo, hi;
  c.getInterval(lo, hi);
  r.push_back({&c, lo, hi, [](double t) { return t; }});
  return r;
}

// Splits smooth pieces that turn by more than a right angle, so that no
// piece can meet itself.
std::vector<Piece> flatPieces(const std::vector<Piece>& in) {
  std::vector<Piece> r;
  for (const Piece& p : in) {
    if (p.curve->isKindOf(AcGe::kLinearEnt3d) || p.curve->type() == AcGe::kCircArc3d ||
        p.curve->type() == AcGe::kEllipArc3d) {
      // Arcs and ellipses meet themselves only as a full turn's seam.
      r.push_back(p);
      continue;
    }
    std::vector<double> cuts = zepk::ge::smoothPieces(*p.curve, p.lo, p.hi);
    std::vector<double> bounds{p.lo};
    for (size_t k = 0; k + 1 < cuts.size(); ++k) {
      const int n = 32;
      AcGeVector3dArray d;
      p.curve->evalPoint(cuts[k], 1, d);
      AcGeVector3d ref = d[0];
      for (int i = 1; i <= n; ++i) {
        double t = cuts[k] + (cuts[k + 1] - cuts[k]) * i / n;
        p.curve->evalPoint(t, 1, d);
        if (ref.angleTo(d[0]) > kPi / 2 * 0.8) {
          double prev = cuts[k] + (cuts[k + 1] - cuts[k]) * (i - 1) / n;
          if (prev > bounds.back()) bounds.push_back(prev);
          ref = d[0];
        }
      }
      if (k + 2 < cuts.size()) bounds.push_back(cuts[k + 1]);
    }
    bounds.push_back(p.hi);
    for (size_t k = 0; k + 1 < bounds.size(); ++k)
      if (bounds[k + 1] > bounds[k]) r.push_back({p.curve, bounds[k], bounds[k + 1], p.toGlobal});
  }
  return r;
}

// The span of a closed curve's parameter, 0 for an open one: parameters
// that far apart name the same point.
double seamSpan(const AcGeCurve3d& c, const AcGeTol& tol) {
  double lo, hi;
  c.getInterval(lo, hi);
  return std::isfinite(lo) && std::isfinite(hi) && c.isClosed(tol) ? hi - lo : 0.0;
}

bool sameParam(double a, double b, double span) {
  double e = 1e-7 * std::max(1.0, std::fabs(b));
  return std::fabs(a - b) <= e || (span > 0 && std::fabs(std::fabs(a - b) - span) <= e);
}

void dedupe(std::vector<Hit>& hits, double tolP, double span1, double span2) {
  std::sort(hits.begin(), hits.end(), [](const Hit& a, const Hit& b) {
    return a.param1 < b.param1 || (a.param1 == b.param1 && a.param2 < b.param2);
  });
  std::vector<Hit> r;
  for (const Hit& h : hits) {
    bool dup = false;
    for (Hit& k : r) {
      if (k.point.distanceTo(h.point) <= tolP && sameParam(k.param1, h.param1, span1) &&
          sameParam(k.param2, h.param2, span2)) {
        k.tangent = k.tangent || h.tangent;
        k.overlapEnd = k.overlapEnd || h.overlapEnd;
        dup = true;
        break;
      }
    }
    if (!dup) r.push_back(h);
  }
  hits.swap(r);
}

}  // namespace

namespace zepk::ge {

std::vector<Hit> intersectCurves(const AcGeCurve3d& c1, const AcGeCurve3d& c2, bool self, const AcGeTol& tol) {
  std::vector<Hit> hits;
  std::vector<Piece> P1 = piecesOf(c1);
  if (!self) {
    std::vector<Piece> P2 = piecesOf(c2);
    if (P1.size() == 1 && P2.size() == 1) {
      // Two simple curves: no boxes to sort pieces by.
      pairHits(P1[0], P2[0], tol, hits);
      if (hits.size() > 1) {
        double scale = 0;
        for (const Hit& h : hits) scale = std::max(scale, magnitude(h.point));
        dedupe(hits, std::max(tol.equalPoint() * 10, 1e-12 * scale), seamSpan(c1, tol), seamSpan(c2, tol));
      }
      return hits;
    }
    std::vector<AcGeBoundBlock3d> boxes2;
    for (const Piece& q : P2) {
      bool bounded = std::isfinite(q.lo) && std::isfinite(q.hi);
      AcGeCurve3d* t = bounded ? q.curve->trimmedCopy(q.lo, q.hi) : nullptr;
      AcGeBoundBlock3d b = t ? t->orthoBoundBlock() : AcGeBoundBlock3d();
      delete t;
      boxes2.push_back(b);
    }
    for (const Piece& p : P1) {
      bool bounded = std::isfinite(p.lo) && std::isfinite(p.hi);
      AcGeBoundBlock3d bp;
      if (bounded) {
        AcGeCurve3d* t = p.curve->trimmedCopy(p.lo, p.hi);
        if (t) bp = t->orthoBoundBlock();
        delete t;
        bp.swell(tol.equalPoint());
      }
      for (size_t j = 0; j < P2.size(); ++j) {
        const Piece& q = P2[j];
        bool qb = std::isfinite(q.lo) && std::isfinite(q.hi);
        if (bounded && qb && bp.isDisjoint(boxes2[j])) continue;
        pairHits(p, q, tol, hits);
      }
    }
    double scale = 0;
    for (const Hit& h : hits) scale = std::max(scale, magnitude(h.point));
    dedupe(hits, std::max(tol.equalPoint() * 10, 1e-12 * scale), seamSpan(c1, tol), seamSpan(c2, tol));
    return hits;
  }
  // One curve with itself: its pieces pairwise, joints of neighbours and
  // the seam of a closed curve left out.
  std::vector<Piece> raw = flatPieces(P1);
  std::vector<Piece> P;
  for (const Piece& p : raw)
    if (p.curve->length(p.lo, p.hi) > tol.equalPoint()) P.push_back(p);
  bool closed = c1.isClosed(tol);
  size_t n = P.size();
  for (size_t i = 0; i < n; ++i) {
    for (size_t j = i + 1; j < n; ++j) {
      bool next = j == i + 1, seam = closed && i == 0 && j == n - 1;
      std::vector<Hit> local;
      pairHits(P[i], P[j], tol, local);
      AcGePoint3d joint = P[i].curve->evalPoint(P[i].hi), seamPt = P[i].curve->evalPoint(P[i].lo);
      for (Hit& h : local) {
        if (next && h.point.distanceTo(joint) <= tol.equalPoint() * 10) continue;
        if (seam && h.point.distanceTo(seamPt) <= tol.equalPoint() * 10) continue;
        if (h.param1 > h.param2) std::swap(h.param1, h.param2);
        hits.push_back(h);
      }
    }
  }
  double scale = 0;
  for (const Hit& h : hits) scale = std::max(scale, magnitude(h.point));
  double span = seamSpan(c1, tol);
  dedupe(hits, std::max(tol.equalPoint() * 10, 1e-12 * scale), span, span);
  return hits;
}

}  // namespace zepk::ge

// ---------------------------------------------------------------- the class

AcGeCurveCurveInt3d::AcGeCurveCurveInt3d(const AcGeCurve3d& curve1, const AcGeCurve3d& curve2,
                                         const AcGeTol& tol) {
  set(curve1, curve2, tol);
}

AcGeCurveCurveInt3d::AcGeCurveCurveInt3d(const AcGeCurveCurveInt3d& src) : AcGeEntity3d(src) { *this = src; }

AcGeCurveCurveInt3d& AcGeCurveCurveInt3d::operator=(const AcGeCurveCurveInt3d& src) {
  if (this == &src) return *this;
  c1_.reset(src.c1_ ? static_cast<AcGeCurve3d*>(src.c1_->copy()) : nullptr);
  c2_.reset(src.c2_ ? static_cast<AcGeCurve3d*>(src.c2_->copy()) : nullptr);
  tol_ = src.tol_;
  pts_ = src.pts_;
  return *this;
}

AcGeCurveCurveInt3d& AcGeCurveCurveInt3d::set(const AcGeCurve3d& curve1, const AcGeCurve3d& curve2,
                                              const AcGeTol& tol) {
  bool self = &curve1 == &curve2 || curve1.isEqualTo(curve2, tol);
  pts_ = zepk::ge::intersectCurves(curve1, curve2, self, tol);
  c1_.reset(static_cast<AcGeCurve3d*>(curve1.copy()));
  c2_.reset(static_cast<AcGeCurve3d*>(curve2.copy()));
  tol_ = tol;
  return *this;
}

AcGePoint3d AcGeCurveCurveInt3d::intPoint(int intNum) const {
  return intNum >= 0 && intNum < numIntPoints() ? pts_[intNum].point : AcGePoint3d();
}

void AcGeCurveCurveInt3d::getIntParams(int intNum, double& param1, double& param2) const {
  if (intNum < 0 || intNum >= numIntPoints()) return;
  param1 = pts_[intNum].param1;
  param2 = pts_[intNum].param2;
}

bool AcGeCurveCurveInt3d::isTangential(int intNum) const {
  return intNum >= 0 && intNum < numIntPoints() && pts_[intNum].tangent;
}

int AcGeCurveCurveInt3d::overlapCount() const {
  int n = 0;
  for (const Hit& h : pts_) n += h.overlapEnd;
  return n;
}

bool AcGeCurveCurveInt3d::isOverlapEnd(int intNum) const {
  return intNum >= 0 && intNum < numIntPoints() && pts_[intNum].overlapEnd;
}

AcGeCurveCurveInt3d& AcGeCurveCurveInt3d::orderWrt1() {
  std::stable_sort(pts_.begin(), pts_.end(), [](const Hit& a, const Hit& b) { return a.param1 < b.param1; });
  return *this;
}

AcGeCurveCurveInt3d& AcGeCurveCurveInt3d::orderWrt2() {
  std::stable_sort(pts_.begin(), pts_.end(), [](const Hit& a, const Hit& b) { return a.param2 < b.param2; });
  return *this;
}

bool AcGeCurveCurveInt3d::isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol) const {
  if (ent.type() != AcGe::kCurveCurveInt3d) return false;
  const auto& o = static_cast<const AcGeCurveCurveInt3d&>(ent);
  if (o.pts_.size() != pts_.size()) return false;
  for (size_t i = 0; i < pts_.size(); ++i)
    if (!pts_[i].point.isEqualTo(o.pts_[i].point, tol)) return false;
  return true;
}

bool AcGeCurveCurveInt3d::isOn(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  for (const Hit& h : pts_)
    if (h.point.isEqualTo(pnt, tol)) return true;
  return false;
}

AcGeCurveCurveInt3d& AcGeCurveCurveInt3d::transformBy(const AcGeMatrix3d& xfm) {
  if (c1_) c1_->transformBy(xfm);
  if (c2_) c2_->transformBy(xfm);
  for (Hit& h : pts_) h.point = xfm * h.point;
  return *this;
}
