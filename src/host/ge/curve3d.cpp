// What every curve in space does through its points and derivatives alone:
// nearest points, lengths, sampling, planarity, boxes. Kinds with closed
// forms override these.
#include <algorithm>
#include <cmath>
#include <limits>

#include "host/ge/kernels.h"
#include "host/gecurv3d.h"
#include "host/geplane.h"

namespace zepk::ge {

std::vector<double> smoothPieces(const AcGeCurve3d& c, double lo, double hi) {
  AcGeDoubleArray breaks;
  c.getBreakParams(breaks);
  std::vector<double> r{lo};
  double eps = 1e-12 * std::max(1.0, std::fabs(hi - lo));
  for (double b : breaks)
    if (b > lo + eps && b < hi - eps) r.push_back(b);
  r.push_back(hi);
  std::sort(r.begin() + 1, r.end() - 1);
  return r;
}

}  // namespace zepk::ge

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

// Newton on (C(t) - P) . C'(t) = 0 from t, kept within [a, b].
double refineNearest(const AcGeCurve3d& c, const AcGePoint3d& p, double t, double a, double b) {
  AcGeVector3dArray d;
  for (int it = 0; it < 30; ++it) {
    AcGePoint3d q = c.evalPoint(t, 2, d);
    AcGeVector3d r = q - p;
    double f = r.dotProduct(d[0]);
    double fp = d[0].dotProduct(d[0]) + r.dotProduct(d[1]);
    if (fp <= 0.0) fp = d[0].dotProduct(d[0]);
    if (fp == 0.0) break;
    double nt = std::clamp(t - f / fp, a, b);
    if (std::fabs(nt - t) <= 1e-15 * std::max(1.0, std::fabs(t))) {
      t = nt;
      break;
    }
    t = nt;
  }
  return t;
}

}  // namespace

double AcGeCurve3d::nearestParam(const AcGePoint3d& pnt, double lo, double hi) const {
  std::vector<double> pieces = zepk::ge::smoothPieces(*this, lo, hi);
  double bestT = lo, bestD = kInf;
  for (size_t k = 0; k + 1 < pieces.size(); ++k) {
    double a = pieces[k], b = pieces[k + 1];
    const int n = 32;
    std::vector<double> dist(n + 1);
    for (int i = 0; i <= n; ++i) dist[i] = evalPoint(a + (b - a) * i / n).distanceTo(pnt);
    // Refine every local minimum of the samples.
    for (int i = 0; i <= n; ++i) {
      bool localMin = (i == 0 || dist[i] <= dist[i - 1]) && (i == n || dist[i] <= dist[i + 1]);
      if (!localMin) continue;
      double t0 = a + (b - a) * i / n;
      double lo2 = a + (b - a) * std::max(0, i - 1) / n, hi2 = a + (b - a) * std::min(n, i + 1) / n;
      double t = refineNearest(*this, pnt, t0, lo2, hi2);
      double d = evalPoint(t).distanceTo(pnt);
      if (d < bestD) {
        bestD = d;
        bestT = t;
      }
    }
  }
  return bestT;
}

double AcGeCurve3d::paramOf(const AcGePoint3d& pnt, const AcGeTol&) const {
  double lo, hi;
  getInterval(lo, hi);
  return nearestParam(pnt, lo, hi);
}

AcGePoint3d AcGeCurve3d::closestPointTo(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  return evalPoint(paramOf(pnt, tol));
}

AcGePoint3d AcGeCurve3d::projClosestPointTo(const AcGePoint3d& pnt, const AcGeVector3d& dir,
                                            const AcGeTol& tol) const {
  AcGeVector3d u = dir.normal();
  if (u.isZeroLength()) return closestPointTo(pnt, tol);
  // Nearest in the metric that ignores the component along dir: search the
  // samples, then refine by Newton on the projected distance.
  double lo, hi;
  getInterval(lo, hi);
  auto flat = [&](const AcGeVector3d& v) { return v - u * v.dotProduct(u); };
  std::vector<double> pieces = zepk::ge::smoothPieces(*this, lo, hi);
  double bestT = lo, bestD = kInf;
  for (size_t k = 0; k + 1 < pieces.size(); ++k) {
    double a = pieces[k], b = pieces[k + 1];
    const int n = 64;
    for (int i = 0; i <= n; ++i) {
      double t = a + (b - a) * i / n;
      double lo2 = a + (b - a) * std::max(0, i - 1) / n, hi2 = a + (b - a) * std::min(n, i + 1) / n;
      AcGeVector3dArray d;
      for (int it = 0; it < 30; ++it) {
        AcGePoint3d q = evalPoint(t, 2, d);
        AcGeVector3d r = flat(q - pnt), d1 = flat(d[0]), d2 = flat(d[1]);
        double f = r.dotProduct(d1), fp = d1.dotProduct(d1) + r.dotProduct(d2);
        if (fp <= 0.0) fp = d1.dotProduct(d1);
        if (fp == 0.0) break;
        double nt = std::clamp(t - f / fp, lo2, hi2);
        if (std::fabs(nt - t) <= 1e-15 * std::max(1.0, std::fabs(t))) break;
        t = nt;
      }
      double dd = flat(evalPoint(t) - pnt).length();
      if (dd < bestD - 1e-14) {
        bestD = dd;
        bestT = t;
      }
    }
  }
  return evalPoint(bestT);
}

double AcGeCurve3d::distanceTo(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  return closestPointTo(pnt, tol).distanceTo(pnt);
}

bool AcGeCurve3d::isOn(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  double t;
  return isOn(pnt, t, tol);
}

bool AcGeCurve3d::isOn(const AcGePoint3d& pnt, double& param, const AcGeTol& tol) const {
  double t = paramOf(pnt, tol);
  if (evalPoint(t).distanceTo(pnt) > tol.equalPoint()) return false;
  param = t;
  return true;
}

bool AcGeCurve3d::isOn(double param, const AcGeTol& tol) const {
  double lo, hi;
  getInterval(lo, hi);
  double slack = tol.equalPoint();
  return param >= lo - slack && param <= hi + slack;
}

bool AcGeCurve3d::isClosed(const AcGeTol& tol) const {
  double lo, hi;
  getInterval(lo, hi);
  if (!std::isfinite(lo) || !std::isfinite(hi)) return false;
  return evalPoint(lo).isEqualTo(evalPoint(hi), tol);
}

bool AcGeCurve3d::isPeriodic(double& period) const {
  period = 0.0;
  return false;
}

bool AcGeCurve3d::isPlanar(AcGePlane& plane, const AcGeTol& tol) const {
  double lo, hi;
  getInterval(lo, hi);
  if (!std::isfinite(lo) || !std::isfinite(hi)) {
    AcGePoint3d p = evalPoint(std::isfinite(lo) ? lo : 0.0);
    AcGeVector3dArray d;
    evalPoint(std::isfinite(lo) ? lo : 0.0, 1, d);
    plane.set(p, d[0].perpVector());
    return true;
  }
  AcGePoint3dArray pts;
  AcGeDoubleArray prm;
  std::vector<double> pieces = zepk::ge::smoothPieces(*this, lo, hi);
  for (size_t k = 0; k + 1 < pieces.size(); ++k)
    for (int i = 0; i <= 16; ++i) pts.push_back(evalPoint(pieces[k] + (pieces[k + 1] - pieces[k]) * i / 16));
  AcGePoint3d p0 = pts[0];
  size_t i1 = 0;
  double far = 0.0;
  for (size_t i = 0; i < pts.size(); ++i)
    if (pts[i].distanceTo(p0) > far) far = pts[i].distanceTo(p0), i1 = i;
  AcGeVector3d u = pts[i1] - p0;
  AcGeVector3d best;
  for (const AcGePoint3d& q : pts) {
    AcGeVector3d c = u.crossProduct(q - p0);
    if (c.length() > best.length()) best = c;
  }
  if (far == 0.0 || best.length() <= tol.equalPoint() * u.length()) {
    // A straight curve (or a point): any plane through it.
    AcGeVector3d n = far == 0.0 ? AcGeVector3d::kZAxis : u.perpVector();
    plane.set(p0, n);
    return true;
  }
  AcGeVector3d n = best.normal();
  for (const AcGePoint3d& q : pts)
    if (std::fabs((q - p0).dotProduct(n)) > tol.equalPoint() * std::max(1.0, far)) return false;
  // An orientation that follows the curve's turning where it can: the
  // normal with a positive Z, else the one found.
  if (n.z < 0 || (n.z == 0 && (n.y < 0 || (n.y == 0 && n.x < 0)))) n = -n;
  plane.set(p0, n);
  return true;
}

bool AcGeCurve3d::hasStartPoint(AcGePoint3d& startPnt) const {
  double lo, hi;
  getInterval(lo, hi);
  if (!std::isfinite(lo)) return false;
  startPnt = evalPoint(lo);
  return true;
}

bool AcGeCurve3d::hasEndPoint(AcGePoint3d& endPnt) const {
  double lo, hi;
  getInterval(lo, hi);
  if (!std::isfinite(hi)) return false;
  endPnt = evalPoint(hi);
  return true;
}

double AcGeCurve3d::length(double fromParam, double toParam, double tol) const {
  double a = std::min(fromParam, toParam), b = std::max(fromParam, toParam);
  if (!std::isfinite(a) || !std::isfinite(b)) return kInf;
  double total = 0.0;
  std::vector<double> pieces = zepk::ge::smoothPieces(*this, a, b);
  for (size_t k = 0; k + 1 < pieces.size(); ++k) {
    total += zepk::ge::integrate(
        [this](double t) {
          AcGeVector3dArray d;
          evalPoint(t, 1, d);
          return d[0].length();
        },
        pieces[k], pieces[k + 1], std::max(tol, 1e-14));
  }
  return total;
}

double AcGeCurve3d::length() const {
  double lo, hi;
  getInterval(lo, hi);
  return length(lo, hi);
}

double AcGeCurve3d::paramAtLength(double datumParam, double len, bool posParamDir, double tol) const {
  double lo, hi;
  getInterval(lo, hi);
  double target = std::fabs(len);
  bool forward = posParamDir == (len >= 0);
  double limit = forward ? hi : lo;
  if (std::isfinite(limit)) {
    double full = length(datumParam, limit, tol);
    if (target >= full) return limit;
  }
  // Bracket the answer, then Newton with bisection.
  double a = datumParam, b = limit;
  if (!std::isfinite(b)) {
    double step = 1.0;
    b = datumParam + (forward ? step : -step);
    while (length(datumParam, b, tol) < target) {
      step *= 2;
      b = datumParam + (forward ? step : -step);
    }
  }
  double t = a + (b - a) * 0.5;
  double ta = a, tb = b;
  for (int it = 0; it < 100; ++it) {
    double l = length(datumParam, t, tol);
    double err = l - target;
    if (std::fabs(err) <= 1e-12 * std::max(1.0, target)) break;
    if (err < 0)
      ta = t;
    else
      tb = t;
    AcGeVector3dArray d;
    evalPoint(t, 1, d);
    double speed = d[0].length();
    double nt = speed > 0 ? t + (forward ? -err : err) / speed : 0.5 * (ta + tb);
    if (!(nt > std::min(ta, tb) && nt < std::max(ta, tb))) nt = 0.5 * (ta + tb);
    if (nt == t) break;
    t = nt;
  }
  return t;
}

void AcGeCurve3d::getSamplePoints(int numSample, AcGePoint3dArray& pointArray) const {
  pointArray.clear();
  double lo, hi;
  getInterval(lo, hi);
  if (numSample <= 0 || !std::isfinite(lo) || !std::isfinite(hi)) return;
  if (numSample == 1) {
    pointArray.push_back(evalPoint(lo));
    return;
  }
  for (int i = 0; i < numSample; ++i) pointArray.push_back(evalPoint(lo + (hi - lo) * i / (numSample - 1)));
}

namespace {

double chordDeviation(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& q) {
  AcGeVector3d ab = b - a;
  double l2 = ab.lengthSqrd();
  if (l2 == 0.0) return q.distanceTo(a);
  double t = std::clamp((q - a).dotProduct(ab) / l2, 0.0, 1.0);
  return q.distanceTo(a + ab * t);
}

void subdivide(const AcGeCurve3d& c, double a, const AcGePoint3d& pa, double b, const AcGePoint3d& pb, double eps,
               int depth, AcGePoint3dArray& pts, AcGeDoubleArray& prm) {
  double m = 0.5 * (a + b);
  AcGePoint3d pm = c.evalPoint(m);
  bool fine = chordDeviation(pa, pb, pm) <= eps;
  if (fine) {
    // A second look at the quarter points catches an S between the samples.
    AcGePoint3d q1 = c.evalPoint(0.5 * (a + m)), q3 = c.evalPoint(0.5 * (m + b));
    fine = chordDeviation(pa, pb, q1) <= eps && chordDeviation(pa, pb, q3) <= eps;
  }
  if (fine || depth >= 24) {
    pts.push_back(pb);
    prm.push_back(b);
    return;
  }
  subdivide(c, a, pa, m, pm, eps, depth + 1, pts, prm);
  subdivide(c, m, pm, b, pb, eps, depth + 1, pts, prm);
}

}  // namespace

void AcGeCurve3d::getSamplePoints(double fromParam, double toParam, double approxEps, AcGePoint3dArray& pointArray,
                                  AcGeDoubleArray& paramArray) const {
  pointArray.clear();
  paramArray.clear();
  double lo, hi;
  getInterval(lo, hi);
  double a = std::max(std::min(fromParam, toParam), lo), b = std::min(std::max(fromParam, toParam), hi);
  if (!std::isfinite(a) || !std::isfinite(b) || a > b) return;
  pointArray.push_back(evalPoint(a));
  paramArray.push_back(a);
  if (a == b) return;
  if (length(a, b) < 1e-8) {
    pointArray.push_back(evalPoint(b));
    paramArray.push_back(b);
    return;
  }
  double eps = approxEps > 0 ? approxEps : 1e-6;
  std::vector<double> pieces = zepk::ge::smoothPieces(*this, a, b);
  for (size_t k = 0; k + 1 < pieces.size(); ++k) {
    // Four starting steps per piece, so that a piece that comes back on
    // itself (a whole circle) is not taken for its chord.
    const int n0 = 4;
    double pa = pieces[k];
    AcGePoint3d ppa = evalPoint(pa);
    for (int i = 1; i <= n0; ++i) {
      double pb = pieces[k] + (pieces[k + 1] - pieces[k]) * i / n0;
      if (i == n0) pb = pieces[k + 1];
      AcGePoint3d ppb = evalPoint(pb);
      subdivide(*this, pa, ppa, pb, ppb, eps, 0, pointArray, paramArray);
      pa = pb;
      ppa = ppb;
    }
  }
  if (fromParam > toParam) {
    std::reverse(pointArray.begin(), pointArray.end());
    std::reverse(paramArray.begin(), paramArray.end());
  }
}

void AcGeCurve3d::getSplitCurves(double param, AcGeCurve3d*& piece1, AcGeCurve3d*& piece2) const {
  piece1 = piece2 = nullptr;
  double lo, hi;
  getInterval(lo, hi);
  double eps = 1e-12 * std::max(1.0, std::fabs(param));
  if (param > lo + eps) piece1 = trimmedCopy(lo, std::min(param, hi));
  if (param < hi - eps) piece2 = trimmedCopy(std::max(param, lo), hi);
}

AcGeBoundBlock3d AcGeCurve3d::orthoBoundBlock() const {
  double lo, hi;
  getInterval(lo, hi);
  if (!std::isfinite(lo) || !std::isfinite(hi)) return AcGeBoundBlock3d();
  AcGePoint3dArray pts;
  AcGeDoubleArray prm;
  AcGePoint3d s = evalPoint(lo);
  double size = 0.0;
  AcGePoint3dArray coarse;
  getSamplePoints(17, coarse);
  for (const AcGePoint3d& q : coarse) size = std::max(size, q.distanceTo(s));
  // Samples at a moderate tolerance, then each extreme of a coordinate
  // found exactly where its derivative changes sign between two samples:
  // as exact as dense samples, at a small part of their cost.
  getSamplePoints(lo, hi, std::max(size, 1.0) * 1e-5, pts, prm);
  AcGeBoundBlock3d box(pts[0], pts[0]);
  for (const AcGePoint3d& q : pts) box.extend(q);
  std::vector<AcGeVector3d> slope(pts.size());
  AcGeVector3dArray d;
  for (size_t i = 0; i < prm.size(); ++i) {
    evalPoint(prm[i], 1, d);
    slope[i] = d[0];
  }
  for (int axis = 0; axis < 3; ++axis) {
    for (size_t i = 0; i + 1 < prm.size(); ++i) {
      double a = prm[i], b = prm[i + 1];
      double da = slope[i][axis], db = slope[i + 1][axis];
      if (da == 0.0 || db == 0.0 || (da > 0) == (db > 0)) continue;
      for (int it = 0; it < 60 && b - a > 1e-15 * std::max(1.0, std::fabs(a)); ++it) {
        const double m = 0.5 * (a + b);
        evalPoint(m, 1, d);
        if ((d[0][axis] > 0) == (da > 0)) a = m;
        else b = m;
      }
      box.extend(evalPoint(0.5 * (a + b)));
    }
  }
  return box;
}

void AcGeCurve3d::getBreakParams(AcGeDoubleArray& params) const { params.clear(); }
