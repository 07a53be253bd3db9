// Curves in the plane: segments, circular arcs and composite curves. Each
// kind evaluates, trims and reverses itself; the measures (nearest points,
// lengths, chord-tolerance samples) are those of the same curve in space in
// the XY plane, which has the same parameters.
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "host/gearc2d.h"
#include "host/gearc3d.h"
#include "host/gecomp2d.h"
#include "host/gecomp3d.h"
#include "host/gecurv2d.h"
#include "host/gelin2d.h"
#include "host/gelin3d.h"
#include "host/gelineseg2d.h"
#include "host/gelineseg3d.h"
#include "host/gemat2d.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2 * kPi;

AcGePoint3d lift(const AcGePoint2d& p) { return {p.x, p.y, 0.0}; }
AcGePoint2d drop(const AcGePoint3d& p) { return {p.x, p.y}; }

}  // namespace

// ---------------------------------------------------------------- AcGeCurve2d

double AcGeCurve2d::paramOf(const AcGePoint2d& pnt, const AcGeTol& tol) const {
  std::unique_ptr<AcGeCurve3d> c(to3d());
  return c->paramOf(lift(pnt), tol);
}

bool AcGeCurve2d::isOn(const AcGePoint2d& pnt, const AcGeTol& tol) const {
  double t;
  return isOn(pnt, t, tol);
}

bool AcGeCurve2d::isOn(const AcGePoint2d& pnt, double& param, const AcGeTol& tol) const {
  const double t = paramOf(pnt, tol);
  if (!isOn(t, tol) || evalPoint(t).distanceTo(pnt) > tol.equalPoint()) return false;
  param = t;
  return true;
}

bool AcGeCurve2d::isOn(double param, const AcGeTol& tol) const {
  double lo, hi;
  getInterval(lo, hi);
  const double slack = tol.equalPoint();
  return param >= lo - slack && param <= hi + slack;
}

bool AcGeCurve2d::isClosed(const AcGeTol& tol) const {
  double lo, hi;
  getInterval(lo, hi);
  if (!std::isfinite(lo) || !std::isfinite(hi)) return false;
  return evalPoint(lo).isEqualTo(evalPoint(hi), tol);
}

bool AcGeCurve2d::hasStartPoint(AcGePoint2d& startPnt) const {
  double lo, hi;
  getInterval(lo, hi);
  if (!std::isfinite(lo)) return false;
  startPnt = evalPoint(lo);
  return true;
}

bool AcGeCurve2d::hasEndPoint(AcGePoint2d& endPnt) const {
  double lo, hi;
  getInterval(lo, hi);
  if (!std::isfinite(hi)) return false;
  endPnt = evalPoint(hi);
  return true;
}

double AcGeCurve2d::length(double fromParam, double toParam, double tol) const {
  std::unique_ptr<AcGeCurve3d> c(to3d());
  return c->length(fromParam, toParam, tol);
}

double AcGeCurve2d::length() const {
  double lo, hi;
  getInterval(lo, hi);
  if (!std::isfinite(lo) || !std::isfinite(hi)) return std::numeric_limits<double>::infinity();
  return length(lo, hi);
}

void AcGeCurve2d::getSamplePoints(int numSample, AcGePoint2dArray& pointArray) const {
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

void AcGeCurve2d::getSamplePoints(double fromParam, double toParam, double approxEps, AcGePoint2dArray& pointArray,
                                  AcGeDoubleArray& paramArray) const {
  pointArray.clear();
  paramArray.clear();
  std::unique_ptr<AcGeCurve3d> c(to3d());
  AcGePoint3dArray pts;
  c->getSamplePoints(fromParam, toParam, approxEps, pts, paramArray);
  for (const AcGePoint3d& p : pts) pointArray.push_back(drop(p));
}

void AcGeCurve2d::getSplitCurves(double param, AcGeCurve2d*& piece1, AcGeCurve2d*& piece2) const {
  double lo, hi;
  getInterval(lo, hi);
  piece1 = trimmedCopy(lo, param);
  piece2 = trimmedCopy(param, hi);
}

// ---------------------------------------------------------------- linear

AcGeCurve2d* AcGeLinearEnt2d::trimmedCopy(double fromParam, double toParam) const {
  double lo, hi;
  getInterval(lo, hi);
  const double a = std::max(std::min(fromParam, toParam), lo), b = std::min(std::max(fromParam, toParam), hi);
  if (!(a < b)) return nullptr;
  return new AcGeLineSeg2d(evalPoint(a), evalPoint(b));
}

AcGeCurve2d& AcGeLinearEnt2d::reverseParam() {
  double lo, hi;
  getInterval(lo, hi);
  // A segment keeps its parameters 0 to 1 from the other end; a line runs
  // the other way through the same point.
  if (std::isfinite(lo) && std::isfinite(hi)) point_ = point_ + vector_ * (lo + hi);
  vector_ = -vector_;
  return *this;
}

AcGeCurve3d* AcGeLinearEnt2d::to3d() const {
  const AcGeVector3d v(vector_.x, vector_.y, 0.0);
  if (isBounded()) return new AcGeLineSeg3d(lift(point_), v);
  return new AcGeLine3d(lift(point_), v);
}

// ---------------------------------------------------------------- arcs

AcGeCircArc2d::AcGeCircArc2d(const AcGePoint2d& cent, double radius) { set(cent, radius); }

AcGeCircArc2d::AcGeCircArc2d(const AcGePoint2d& cent, double radius, double startAng, double endAng,
                             const AcGeVector2d& refVec, bool isClockWise) {
  set(cent, radius, startAng, endAng, refVec, isClockWise);
}

AcGeCircArc2d::AcGeCircArc2d(const AcGePoint2d& s, const AcGePoint2d& p, const AcGePoint2d& e) { set(s, p, e); }

AcGeCircArc2d::AcGeCircArc2d(const AcGePoint2d& s, const AcGePoint2d& e, double bulge, bool bulgeFlag) {
  set(s, e, bulge, bulgeFlag);
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& cent, double radius) {
  return set(cent, radius, 0.0, kTwoPi);
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& cent, double radius, double startAng, double endAng,
                                  const AcGeVector2d& refVec, bool isClockWise) {
  center_ = cent;
  radius_ = radius;
  refVec_ = refVec.isZeroLength() ? AcGeVector2d(1.0, 0.0) : refVec.normal();
  clockwise_ = isClockWise;
  return setAngles(startAng, endAng);
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& s, const AcGePoint2d& p, const AcGePoint2d& e) {
  const AcGeCircArc3d a(lift(s), lift(p), lift(e));
  center_ = drop(a.center());
  radius_ = a.radius();
  clockwise_ = a.normal().z < 0;
  const AcGeVector3d r = a.refVec();
  refVec_.set(r.x, r.y);
  startAng_ = a.startAng();
  endAng_ = a.endAng();
  return *this;
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& s, const AcGePoint2d& e, double bulge, bool bulgeFlag) {
  // The included angle, signed counter-clockwise.
  const double theta = bulgeFlag ? 4.0 * std::atan(bulge) : bulge;
  const double chord = s.distanceTo(e);
  if (chord == 0.0 || std::fabs(theta) < 1e-12) {
    // No arc: a degenerate one at the start point.
    center_ = s;
    radius_ = 0.0;
    refVec_.set(1.0, 0.0);
    clockwise_ = theta < 0;
    startAng_ = endAng_ = 0.0;
    return *this;
  }
  const double sweep = std::fabs(theta);
  radius_ = chord / (2.0 * std::sin(sweep / 2));
  const AcGeVector2d u = (e - s) / chord;
  // The centre lies to the left of the chord for a counter-clockwise arc,
  // at r cos(sweep / 2) from its middle (past a half turn, to the right).
  const AcGeVector2d left(-u.y, u.x);
  const double h = radius_ * std::cos(sweep / 2) * (theta > 0 ? 1.0 : -1.0);
  center_ = s + (e - s) * 0.5 + left * h;
  refVec_ = (s - center_).normal();
  clockwise_ = theta < 0;
  startAng_ = 0.0;
  endAng_ = sweep;
  return *this;
}

AcGeCircArc2d& AcGeCircArc2d::setAngles(double startAng, double endAng) {
  double sweep = endAng - startAng;
  if (sweep > kTwoPi || sweep <= 0.0) {
    sweep = std::fmod(sweep, kTwoPi);
    if (sweep <= 0.0) sweep += kTwoPi;
  }
  startAng_ = startAng;
  endAng_ = startAng + sweep;
  return *this;
}

AcGeCircArc2d& AcGeCircArc2d::setToComplement() {
  const double sweep = endAng_ - startAng_;
  if (sweep >= kTwoPi) return *this;
  const double s = endAng_;
  startAng_ = s;
  endAng_ = s + (kTwoPi - sweep);
  return *this;
}

bool AcGeCircArc2d::isEqualTo(const AcGeEntity2d& ent, const AcGeTol& tol) const {
  if (ent.type() != AcGe::kCircArc2d) return false;
  const auto& o = static_cast<const AcGeCircArc2d&>(ent);
  if (!center_.isEqualTo(o.center_, tol) || std::fabs(radius_ - o.radius_) > tol.equalPoint()) return false;
  const bool full = endAng_ - startAng_ >= kTwoPi - 1e-12, ofull = o.endAng_ - o.startAng_ >= kTwoPi - 1e-12;
  if (full || ofull) return full == ofull;
  // The same ends, in either order of travel.
  const AcGePoint2d s = startPoint(), e = endPoint(), os = o.startPoint(), oe = o.endPoint();
  const AcGePoint2d m = evalPoint((startAng_ + endAng_) / 2);
  const bool ends = (s.isEqualTo(os, tol) && e.isEqualTo(oe, tol)) || (s.isEqualTo(oe, tol) && e.isEqualTo(os, tol));
  return ends && o.isOn(m, tol);
}

AcGeCircArc2d& AcGeCircArc2d::transformBy(const AcGeMatrix2d& xfm) {
  const AcGePoint2d c = center_;
  AcGePoint2d c2 = c;
  c2.transformBy(xfm);
  AcGePoint2d r0 = c + refVec_, p0 = c + perp();
  r0.transformBy(xfm);
  p0.transformBy(xfm);
  const AcGeVector2d ref = r0 - c2, per = p0 - c2;
  const double scale = ref.length();
  center_ = c2;
  radius_ *= scale;
  refVec_ = scale > 0 ? ref / scale : AcGeVector2d(1.0, 0.0);
  // The image of the perpendicular tells whether a mirror turned the sense.
  const double cross = ref.x * per.y - ref.y * per.x;
  const bool ccwNow = cross > 0;
  clockwise_ = !ccwNow;
  return *this;
}

void AcGeCircArc2d::getInterval(double& lower, double& upper) const {
  lower = startAng_;
  upper = endAng_;
}

AcGePoint2d AcGeCircArc2d::evalPoint(double param) const {
  const AcGeVector2d p = perp();
  return center_ + refVec_ * (radius_ * std::cos(param)) + p * (radius_ * std::sin(param));
}

AcGeCurve2d* AcGeCircArc2d::trimmedCopy(double fromParam, double toParam) const {
  const double a = std::max(std::min(fromParam, toParam), startAng_);
  const double b = std::min(std::max(fromParam, toParam), endAng_);
  if (!(a < b)) return nullptr;
  auto* r = new AcGeCircArc2d(*this);
  r->startAng_ = a;
  r->endAng_ = b;
  return r;
}

AcGeCurve2d& AcGeCircArc2d::reverseParam() {
  // The point at angle t of one sense is the point at -t of the other.
  clockwise_ = !clockwise_;
  const double s = -endAng_, e = -startAng_;
  const double shift = std::floor(s / kTwoPi) * kTwoPi;
  startAng_ = s - shift;
  endAng_ = e - shift;
  return *this;
}

AcGeCurve3d* AcGeCircArc2d::to3d() const {
  return new AcGeCircArc3d(lift(center_), AcGeVector3d(0, 0, clockwise_ ? -1.0 : 1.0),
                           AcGeVector3d(refVec_.x, refVec_.y, 0.0), radius_, startAng_, endAng_);
}

// ---------------------------------------------------------------- composites

AcGeCompositeCurve2d::AcGeCompositeCurve2d(const std::vector<AcGeCurve2d*>& curveList) { setCurveList(curveList); }

AcGeCompositeCurve2d::AcGeCompositeCurve2d(const AcGeCompositeCurve2d& src) : AcGeCurve2d(src) { *this = src; }

AcGeCompositeCurve2d& AcGeCompositeCurve2d::operator=(const AcGeCompositeCurve2d& src) {
  if (this == &src) return *this;
  curves_.clear();
  for (const auto& c : src.curves_) curves_.emplace_back(static_cast<AcGeCurve2d*>(c->copy()));
  return *this;
}

void AcGeCompositeCurve2d::getCurveList(std::vector<AcGeCurve2d*>& curveList) const {
  curveList.clear();
  for (const auto& c : curves_) curveList.push_back(c.get());
}

AcGeCompositeCurve2d& AcGeCompositeCurve2d::setCurveList(const std::vector<AcGeCurve2d*>& curveList) {
  curves_.clear();
  for (const AcGeCurve2d* c : curveList)
    if (c) curves_.emplace_back(static_cast<AcGeCurve2d*>(c->copy()));
  return *this;
}

AcGeCompositeCurve2d& AcGeCompositeCurve2d::appendOwned(AcGeCurve2d* curve) {
  if (curve) curves_.emplace_back(curve);
  return *this;
}

double AcGeCompositeCurve2d::globalToLocalParam(double param, int& segNum) const {
  const int n = numCurves();
  if (n == 0) {
    segNum = 0;
    return 0.0;
  }
  const int i = std::clamp(static_cast<int>(std::floor(param)), 0, n - 1);
  double lo, hi;
  curves_[i]->getInterval(lo, hi);
  segNum = i;
  return lo + (param - i) * (hi - lo);
}

double AcGeCompositeCurve2d::localToGlobalParam(double param, int segNum) const {
  if (segNum < 0 || segNum >= numCurves()) return 0.0;
  double lo, hi;
  curves_[segNum]->getInterval(lo, hi);
  return segNum + (hi > lo ? (param - lo) / (hi - lo) : 0.0);
}

bool AcGeCompositeCurve2d::isEqualTo(const AcGeEntity2d& ent, const AcGeTol& tol) const {
  if (ent.type() != AcGe::kCompositeCrv2d) return false;
  const auto& o = static_cast<const AcGeCompositeCurve2d&>(ent);
  if (o.numCurves() != numCurves()) return false;
  for (int i = 0; i < numCurves(); ++i)
    if (!curves_[i]->isEqualTo(*o.curves_[i], tol)) return false;
  return true;
}

AcGeCompositeCurve2d& AcGeCompositeCurve2d::transformBy(const AcGeMatrix2d& xfm) {
  for (auto& c : curves_) c->transformBy(xfm);
  return *this;
}

void AcGeCompositeCurve2d::getInterval(double& lower, double& upper) const {
  lower = 0.0;
  upper = numCurves();
}

AcGePoint2d AcGeCompositeCurve2d::evalPoint(double param) const {
  if (curves_.empty()) return AcGePoint2d();
  int i;
  const double t = globalToLocalParam(param, i);
  return curves_[i]->evalPoint(t);
}

AcGeCurve2d* AcGeCompositeCurve2d::trimmedCopy(double fromParam, double toParam) const {
  const int n = numCurves();
  const double a = std::clamp(std::min(fromParam, toParam), 0.0, static_cast<double>(n));
  const double b = std::clamp(std::max(fromParam, toParam), 0.0, static_cast<double>(n));
  if (!(a < b)) return nullptr;
  auto* r = new AcGeCompositeCurve2d();
  for (int i = 0; i < n; ++i) {
    const double s = std::max(a, static_cast<double>(i)), e = std::min(b, static_cast<double>(i + 1));
    if (e - s <= 1e-12) continue;
    double lo, hi;
    curves_[i]->getInterval(lo, hi);
    if (AcGeCurve2d* piece = curves_[i]->trimmedCopy(lo + (s - i) * (hi - lo), lo + (e - i) * (hi - lo)))
      r->curves_.emplace_back(piece);
  }
  if (r->curves_.empty()) {
    delete r;
    return nullptr;
  }
  return r;
}

AcGeCurve2d& AcGeCompositeCurve2d::reverseParam() {
  std::reverse(curves_.begin(), curves_.end());
  for (auto& c : curves_) c->reverseParam();
  return *this;
}

AcGeCurve3d* AcGeCompositeCurve2d::to3d() const {
  auto* c = new AcGeCompositeCurve3d();
  for (const auto& piece : curves_) c->appendOwned(piece->to3d());
  return c;
}
