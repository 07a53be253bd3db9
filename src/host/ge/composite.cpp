// Composite curves: pieces end to end, the parameter counting pieces.
#include <algorithm>
#include <cmath>

#include "host/gearc3d.h"
#include "host/gecomp3d.h"
#include "host/gelineseg3d.h"

AcGeCompositeCurve3d::AcGeCompositeCurve3d(const std::vector<AcGeCurve3d*>& curveList) { setCurveList(curveList); }

AcGeCompositeCurve3d::AcGeCompositeCurve3d(const AcGeCompositeCurve3d& src) : AcGeCurve3d(src) { *this = src; }

AcGeCompositeCurve3d& AcGeCompositeCurve3d::operator=(const AcGeCompositeCurve3d& src) {
  if (this == &src) return *this;
  curves_.clear();
  for (const auto& c : src.curves_) curves_.emplace_back(static_cast<AcGeCurve3d*>(c->copy()));
  return *this;
}

void AcGeCompositeCurve3d::getCurveList(std::vector<AcGeCurve3d*>& curveList) const {
  curveList.clear();
  for (const auto& c : curves_) curveList.push_back(c.get());
}

AcGeCompositeCurve3d& AcGeCompositeCurve3d::setCurveList(const std::vector<AcGeCurve3d*>& curveList) {
  curves_.clear();
  for (const AcGeCurve3d* c : curveList)
    if (c) curves_.emplace_back(static_cast<AcGeCurve3d*>(c->copy()));
  return *this;
}

AcGeCompositeCurve3d& AcGeCompositeCurve3d::appendOwned(AcGeCurve3d* curve) {
  if (curve) curves_.emplace_back(curve);
  return *this;
}

double AcGeCompositeCurve3d::globalToLocalParam(double param, int& segNum) const {
  int n = numCurves();
  if (n == 0) {
    segNum = 0;
    return 0.0;
  }
  int i = static_cast<int>(std::floor(param));
  i = std::clamp(i, 0, n - 1);
  double lo, hi;
  span(i, lo, hi);
  segNum = i;
  return lo + (param - i) * (hi - lo);
}

double AcGeCompositeCurve3d::localToGlobalParam(double param, int segNum) const {
  if (segNum < 0 || segNum >= numCurves()) return 0.0;
  double lo, hi;
  span(segNum, lo, hi);
  return segNum + (hi > lo ? (param - lo) / (hi - lo) : 0.0);
}

bool AcGeCompositeCurve3d::isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol) const {
  if (ent.type() != AcGe::kCompositeCrv3d) return false;
  const auto& o = static_cast<const AcGeCompositeCurve3d&>(ent);
  if (o.numCurves() != numCurves()) return false;
  for (int i = 0; i < numCurves(); ++i)
    if (!curves_[i]->isEqualTo(*o.curves_[i], tol)) return false;
  return true;
}

AcGeCompositeCurve3d& AcGeCompositeCurve3d::transformBy(const AcGeMatrix3d& xfm) {
  for (auto& c : curves_) c->transformBy(xfm);
  return *this;
}

void AcGeCompositeCurve3d::getInterval(double& lower, double& upper) const {
  lower = 0.0;
  upper = numCurves();
}

AcGePoint3d AcGeCompositeCurve3d::evalPoint(double param) const {
  if (curves_.empty()) return AcGePoint3d();
  int i;
  double t = globalToLocalParam(param, i);
  return curves_[i]->evalPoint(t);
}

AcGePoint3d AcGeCompositeCurve3d::evalPoint(double param, int numDeriv, AcGeVector3dArray& derivArray) const {
  if (curves_.empty()) {
    derivArray.assign(std::max(0, numDeriv), AcGeVector3d());
    return AcGePoint3d();
  }
  int i;
  double t = globalToLocalParam(param, i);
  AcGePoint3d p = curves_[i]->evalPoint(t, numDeriv, derivArray);
  double lo, hi;
  span(i, lo, hi);
  double s = hi - lo, f = s;
  for (auto& d : derivArray) {
    d *= f;
    f *= s;
  }
  return p;
}

double AcGeCompositeCurve3d::paramOf(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  double best = 0.0, bestD = -1.0;
  for (int i = 0; i < numCurves(); ++i) {
    // A segment gives the foot on its whole line: kept to the piece.
    double lo, hi;
    span(i, lo, hi);
    double t = std::clamp(curves_[i]->paramOf(pnt, tol), lo, hi);
    double d = curves_[i]->evalPoint(t).distanceTo(pnt);
    // Strictly nearer, so that a point at a joint takes the earlier piece's end.
    if (bestD < 0 || d < bestD - 1e-14) {
      bestD = d;
      best = localToGlobalParam(t, i);
    }
  }
  return best;
}

double AcGeCompositeCurve3d::length(double fromParam, double toParam, double tol) const {
  double a = std::clamp(std::min(fromParam, toParam), 0.0, static_cast<double>(numCurves()));
  double b = std::clamp(std::max(fromParam, toParam), 0.0, static_cast<double>(numCurves()));
  double total = 0.0;
  for (int i = 0; i < numCurves(); ++i) {
    double s = std::max(a, static_cast<double>(i)), e = std::min(b, static_cast<double>(i + 1));
    if (e <= s) continue;
    int k;
    double ls = globalToLocalParam(s, k);
    double lo, hi;
    span(i, lo, hi);
    double le = lo + (e - i) * (hi - lo);
    total += curves_[i]->length(ls, le, tol);
  }
  return total;
}

double AcGeCompositeCurve3d::paramAtLength(double datumParam, double len, bool posParamDir, double tol) const {
  int n = numCurves();
  if (n == 0) return 0.0;
  bool forward = posParamDir == (len >= 0);
  double remaining = std::fabs(len);
  double t = std::clamp(datumParam, 0.0, static_cast<double>(n));
  if (forward) {
    int i = std::min(static_cast<int>(std::floor(t)), n - 1);
    for (; i < n; ++i) {
      double rest = length(t, i + 1, tol);
      if (rest >= remaining) {
        double lo, hi;
        span(i, lo, hi);
        double lt = lo + (t - i) * (hi - lo);
        double lp = curves_[i]->paramAtLength(lt, remaining, true, tol);
        return localToGlobalParam(lp, i);
      }
      remaining -= rest;
      t = i + 1;
    }
    return n;
  }
  int i = std::max(static_cast<int>(std::ceil(t)) - 1, 0);
  for (; i >= 0; --i) {
    double rest = length(i, t, tol);
    if (rest >= remaining) {
      double lo, hi;
      span(i, lo, hi);
      double lt = lo + (t - i) * (hi - lo);
      double lp = curves_[i]->paramAtLength(lt, remaining, false, tol);
      return localToGlobalParam(lp, i);
    }
    remaining -= rest;
    t = i;
  }
  return 0.0;
}

void AcGeCompositeCurve3d::getSamplePoints(double fromParam, double toParam, double approxEps,
                                           AcGePoint3dArray& pointArray, AcGeDoubleArray& paramArray) const {
  pointArray.clear();
  paramArray.clear();
  int n = numCurves();
  double a = std::clamp(std::min(fromParam, toParam), 0.0, static_cast<double>(n));
  double b = std::clamp(std::max(fromParam, toParam), 0.0, static_cast<double>(n));
  for (int i = 0; i < n; ++i) {
    double s = std::max(a, static_cast<double>(i)), e = std::min(b, static_cast<double>(i + 1));
    if (e < s || (e == s && !(a == b && i == std::min(static_cast<int>(a), n - 1)))) continue;
    double lo, hi;
    span(i, lo, hi);
    AcGePoint3dArray pts;
    AcGeDoubleArray prm;
    double eps = approxEps;
    if (curves_[i]->isKindOf(AcGe::kLinearEnt3d)) {
      pts = {curves_[i]->evalPoint(lo + (s - i) * (hi - lo)), curves_[i]->evalPoint(lo + (e - i) * (hi - lo))};
      prm = {lo + (s - i) * (hi - lo), lo + (e - i) * (hi - lo)};
      if (s == e) pts.pop_back(), prm.pop_back();
    } else {
      curves_[i]->getSamplePoints(lo + (s - i) * (hi - lo), lo + (e - i) * (hi - lo), eps, pts, prm);
    }
    for (size_t k = 0; k < pts.size(); ++k) {
      if (!pointArray.empty() && k == 0) continue;  // the joint is the previous piece's end
      pointArray.push_back(pts[k]);
      paramArray.push_back(localToGlobalParam(prm[k], i));
    }
  }
  if (fromParam > toParam) {
    std::reverse(pointArray.begin(), pointArray.end());
    std::reverse(paramArray.begin(), paramArray.end());
  }
}

AcGeCurve3d* AcGeCompositeCurve3d::trimmedCopy(double fromParam, double toParam) const {
  int n = numCurves();
  double a = std::clamp(std::min(fromParam, toParam), 0.0, static_cast<double>(n));
  double b = std::clamp(std::max(fromParam, toParam), 0.0, static_cast<double>(n));
  if (!(a < b)) return nullptr;
  auto* r = new AcGeCompositeCurve3d();
  const double eps = 1e-12;
  for (int i = 0; i < n; ++i) {
    double s = std::max(a, static_cast<double>(i)), e = std::min(b, static_cast<double>(i + 1));
    if (e - s <= eps) continue;
    double lo, hi;
    span(i, lo, hi);
    AcGeCurve3d* piece = curves_[i]->trimmedCopy(lo + (s - i) * (hi - lo), lo + (e - i) * (hi - lo));
    if (piece) r->curves_.emplace_back(piece);
  }
  if (r->curves_.empty()) {
    delete r;
    return nullptr;
  }
  return r;
}

AcGeCurve3d& AcGeCompositeCurve3d::reverseParam() {
  std::reverse(curves_.begin(), curves_.end());
  for (auto& c : curves_) c->reverseParam();
  return *this;
}

AcGeBoundBlock3d AcGeCompositeCurve3d::orthoBoundBlock() const {
  if (curves_.empty()) return AcGeBoundBlock3d();
  AcGeBoundBlock3d box = curves_[0]->orthoBoundBlock();
  AcGePoint3d lo, hi;
  for (size_t i = 1; i < curves_.size(); ++i) {
    curves_[i]->orthoBoundBlock().getMinMaxPoints(lo, hi);
    box.extend(lo);
    box.extend(hi);
  }
  return box;
}

void AcGeCompositeCurve3d::getBreakParams(AcGeDoubleArray& params) const {
  params.clear();
  for (int i = 1; i < numCurves(); ++i) params.push_back(i);
  // The pieces' own breaks, mapped.
  for (int i = 0; i < numCurves(); ++i) {
    AcGeDoubleArray inner;
    curves_[i]->getBreakParams(inner);
    for (double t : inner) params.push_back(localToGlobalParam(t, i));
  }
  std::sort(params.begin(), params.end());
}

namespace zepk::ge {

AcGeCurve3d* bulgeSegment(const AcGePoint3d& a, const AcGePoint3d& b, double bulge, const AcGeVector3d& normal) {
  double chord = a.distanceTo(b);
  if (std::fabs(bulge) < 1e-12 || chord == 0.0) return new AcGeLineSeg3d(a, b);
  // Included angle 4 atan(bulge); radius chord / (2 sin(angle / 2)).
  double theta = 4.0 * std::atan(std::fabs(bulge));
  double r = chord / (2.0 * std::sin(theta / 2));
  AcGeVector3d n = normal.normal();
  if (bulge < 0) n = -n;
  AcGeVector3d u = (b - a) / chord;
  AcGeVector3d toCentre = n.crossProduct(u);  // left of the chord seen along n
  // The centre is on the left for arcs under a half turn, on the right above.
  double h = r * std::cos(theta / 2);
  AcGePoint3d c = a + (b - a) * 0.5 + toCentre * h;
  AcGeVector3d ref = a - c;
  return new AcGeCircArc3d(c, n, ref, r, 0.0, theta);
}

}  // namespace zepk::ge
