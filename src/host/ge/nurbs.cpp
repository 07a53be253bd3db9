// NURBS curves: evaluation and editing through the kernels, exact
// conversions from the other kinds.
#include <algorithm>
#include <cmath>

#include "host/ge/kernels.h"
#include "host/gearc3d.h"
#include "host/gecomp3d.h"
#include "host/geell3d.h"
#include "host/gelinent3d.h"
#include "host/gelineseg3d.h"
#include "host/gemat3d.h"
#include "host/genurb3d.h"

using zepk::ge::HPoint;

namespace {
constexpr double kPi = 3.14159265358979323846;

std::vector<HPoint> homogeneous(const AcGePoint3dArray& pts, const AcGeDoubleArray& w) {
  std::vector<HPoint> r(pts.size());
  for (size_t i = 0; i < pts.size(); ++i) {
    double wi = i < w.size() ? w[i] : 1.0;
    r[i] = HPoint{pts[i].x * wi, pts[i].y * wi, pts[i].z * wi, wi};
  }
  return r;
}

HPoint hp(const AcGePoint3d& p) { return HPoint{p.x, p.y, p.z, 1.0}; }

// A conic arc c + P cos t + Q sin t for t in [a, b], as a rational
// quadratic curve of spans of at most a quarter turn, knots in t.
void conicArc(const AcGePoint3d& c, const AcGeVector3d& P, const AcGeVector3d& Q, double a, double b,
              AcGeDoubleArray& knots, AcGePoint3dArray& pts, AcGeDoubleArray& w) {
  double sweep = b - a;
  int spans = std::max(1, static_cast<int>(std::ceil(sweep / (kPi / 2) - 1e-9)));
  double d = sweep / spans;
  double wm = std::cos(d / 2);
  knots.assign(3, a);
  pts.clear();
  w.clear();
  for (int i = 0; i < spans; ++i) {
    double t0 = a + d * i, tm = t0 + d / 2;
    if (i == 0) {
      pts.push_back(c + P * std::cos(t0) + Q * std::sin(t0));
      w.push_back(1.0);
    }
    pts.push_back(c + (P * std::cos(tm) + Q * std::sin(tm)) / wm);
    w.push_back(wm);
    double t1 = i == spans - 1 ? b : t0 + d;
    pts.push_back(c + P * std::cos(t1) + Q * std::sin(t1));
    w.push_back(1.0);
    if (i < spans - 1) {
      knots.push_back(t1);
      knots.push_back(t1);
    }
  }
  knots.insert(knots.end(), 3, b);
}

}  // namespace

AcGeNurbCurve3d::AcGeNurbCurve3d(int degree, const AcGeDoubleArray& knots, const AcGePoint3dArray& controlPoints,
                                 bool isPeriodic)
    : AcGeNurbCurve3d(degree, knots, controlPoints, AcGeDoubleArray(), isPeriodic) {}

AcGeNurbCurve3d::AcGeNurbCurve3d(int degree, const AcGeDoubleArray& knots, const AcGePoint3dArray& controlPoints,
                                 const AcGeDoubleArray& weights, bool isPeriodic) {
  if (degree < 1 || controlPoints.size() < static_cast<size_t>(degree + 1) ||
      knots.size() != controlPoints.size() + degree + 1 ||
      (!weights.empty() && weights.size() != controlPoints.size()) || !std::is_sorted(knots.begin(), knots.end()))
    return;
  degree_ = degree;
  knots_ = knots;
  points_ = controlPoints;
  periodic_ = isPeriodic;
  if (!weights.empty()) {
    weights_ = weights;
    setRational();
  }
}

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
                                 const AcGeVector3d& endTangent, bool startTangentDefined, bool endTangentDefined,
                                 int degree) {
  std::vector<HPoint> pts;
  for (const AcGePoint3d& p : fitPoints) pts.push_back(hp(p));
  HPoint st{startTangent.x, startTangent.y, startTangent.z, 0}, et{endTangent.x, endTangent.y, endTangent.z, 0};
  bool tans = startTangentDefined && endTangentDefined && !startTangent.isZeroLength() && !endTangent.isZeroLength();
  int p;
  std::vector<double> U;
  std::vector<HPoint> Pw;
  if (!zepk::ge::interpolate(pts, degree, tans ? &st : nullptr, tans ? &et : nullptr, p, U, Pw)) return;
  degree_ = p;
  knots_ = U;
  for (const HPoint& q : Pw) points_.push_back({q.x, q.y, q.z});
}

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGePoint3dArray& fitPoints, int degree)
    : AcGeNurbCurve3d(fitPoints, AcGeVector3d(), AcGeVector3d(), false, false, degree) {}

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGeLineSeg3d& seg) {
  degree_ = 1;
  knots_ = {0.0, 0.0, 1.0, 1.0};
  points_ = {seg.startPoint(), seg.endPoint()};
}

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGeCircArc3d& arc) {
  degree_ = 2;
  AcGeVector3d P = arc.refVec() * arc.radius(), Q = arc.normal().crossProduct(arc.refVec()) * arc.radius();
  conicArc(arc.center(), P, Q, arc.startAng(), arc.endAng(), knots_, points_, weights_);
  setRational();
}

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGeEllipArc3d& e) {
  degree_ = 2;
  conicArc(e.center(), e.majorAxis() * e.majorRadius(), e.minorAxis() * e.minorRadius(), e.startAng(), e.endAng(),
           knots_, points_, weights_);
  setRational();
}

AcGeNurbCurve3d* AcGeNurbCurve3d::convertFrom(const AcGeCurve3d& curve) {
  double lo, hi;
  curve.getInterval(lo, hi);
  if (!std::isfinite(lo) || !std::isfinite(hi)) return nullptr;
  switch (curve.type()) {
    case AcGe::kNurbCurve3d:
      return new AcGeNurbCurve3d(static_cast<const AcGeNurbCurve3d&>(curve));
    case AcGe::kCircArc3d:
      return new AcGeNurbCurve3d(static_cast<const AcGeCircArc3d&>(curve));
    case AcGe::kEllipArc3d:
      return new AcGeNurbCurve3d(static_cast<const AcGeEllipArc3d&>(curve));
    case AcGe::kCompositeCrv3d: {
      const auto& comp = static_cast<const AcGeCompositeCurve3d&>(curve);
      AcGeNurbCurve3d* r = nullptr;
      for (int i = 0; i < comp.numCurves(); ++i) {
        AcGeNurbCurve3d* part = convertFrom(comp.curveAt(i));
        if (!part || part->numControlPoints() == 0) {
          delete part;
          continue;
        }
        if (!r) {
          r = part;
        } else {
          r->joinWith(*part);
          delete part;
        }
      }
      return r;
    }
    default:
      if (curve.isKindOf(AcGe::kLinearEnt3d))
        return new AcGeNurbCurve3d(AcGeLineSeg3d(curve.evalPoint(lo), curve.evalPoint(hi)));
      return nullptr;
  }
}

void AcGeNurbCurve3d::setRational() {
  rational_ = false;
  for (double w : weights_)
    if (std::fabs(w - 1.0) > 1e-14) rational_ = true;
  if (!rational_) weights_.clear();
}

AcGeNurbCurve3d& AcGeNurbCurve3d::setControlPointAt(int idx, const AcGePoint3d& pnt) {
  if (idx >= 0 && idx < numControlPoints()) points_[idx] = pnt;
  return *this;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::setWeightAt(int idx, double weight) {
  if (idx < 0 || idx >= numControlPoints() || weight <= 0) return *this;
  if (weights_.empty()) weights_.assign(points_.size(), 1.0);
  weights_[idx] = weight;
  setRational();
  return *this;
}

bool AcGeNurbCurve3d::isRational(const AcGeTol&) const { return rational_; }

void AcGeNurbCurve3d::getDefinitionData(int& degree, bool& rational, bool& periodic, AcGeDoubleArray& knots,
                                        AcGePoint3dArray& controlPoints, AcGeDoubleArray& weights) const {
  degree = degree_;
  rational = rational_;
  periodic = periodic_;
  knots = knots_;
  controlPoints = points_;
  weights = rational_ ? weights_ : AcGeDoubleArray();
}

AcGeNurbCurve3d& AcGeNurbCurve3d::insertKnot(double newKnot) {
  if (points_.empty()) return *this;
  std::vector<HPoint> Pw = homogeneous(points_, weights_);
  zepk::ge::insertKnot(degree_, knots_, Pw, newKnot, 1);
  points_.clear();
  weights_.clear();
  for (const HPoint& q : Pw) {
    points_.push_back({q.x / q.w, q.y / q.w, q.z / q.w});
    weights_.push_back(q.w);
  }
  setRational();
  return *this;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::elevateDegree(int plusDegree) {
  if (points_.empty() || plusDegree <= 0) return *this;
  std::vector<HPoint> Pw = homogeneous(points_, weights_);
  zepk::ge::elevateDegree(degree_, knots_, Pw, plusDegree);
  points_.clear();
  weights_.clear();
  for (const HPoint& q : Pw) {
    points_.push_back({q.x / q.w, q.y / q.w, q.z / q.w});
    weights_.push_back(q.w);
  }
  periodic_ = false;
  setRational();
  return *this;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::joinWith(const AcGeNurbCurve3d& curve) {
  if (points_.empty() || curve.points_.empty()) return *this;
  double lo, hi, olo, ohi;
  getInterval(lo, hi);
  curve.getInterval(olo, ohi);
  if (!evalPoint(hi).isEqualTo(curve.evalPoint(olo))) return *this;
  AcGeNurbCurve3d other(curve);
  if (other.degree_ < degree_) other.elevateDegree(degree_ - other.degree_);
  if (degree_ < other.degree_) elevateDegree(other.degree_ - degree_);
  int p = degree_;
  std::vector<HPoint> A = homogeneous(points_, weights_), B = homogeneous(other.points_, other.weights_);
  std::vector<double> UA = knots_, UB = other.knots_;
  zepk::ge::clampEnds(p, UA, A);
  zepk::ge::clampEnds(p, UB, B);
  // Scale the other's weights so that the shared point has one weight.
  double k = A.back().w / B.front().w;
  for (HPoint& q : B) q = q * k;
  double shift = UA.back() - UB.front();
  std::vector<double> U(UA.begin(), UA.end() - 1);
  for (size_t i = p + 1; i < UB.size(); ++i) U.push_back(UB[i] + shift);
  std::vector<HPoint> P = A;
  P.insert(P.end(), B.begin() + 1, B.end());
  knots_ = U;
  points_.clear();
  weights_.clear();
  for (const HPoint& q : P) {
    points_.push_back({q.x / q.w, q.y / q.w, q.z / q.w});
    weights_.push_back(q.w);
  }
  periodic_ = false;
  setRational();
  return *this;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::hardTrimByParams(double newStartParam, double newEndParam) {
  double lo, hi;
  getInterval(lo, hi);
  double a = std::max(std::min(newStartParam, newEndParam), lo);
  double b = std::min(std::max(newStartParam, newEndParam), hi);
  if (points_.empty() || !(a < b)) return *this;
  std::vector<HPoint> Pw = homogeneous(points_, weights_);
  zepk::ge::clampTo(degree_, knots_, Pw, a, b);
  points_.clear();
  weights_.clear();
  for (const HPoint& q : Pw) {
    points_.push_back({q.x / q.w, q.y / q.w, q.z / q.w});
    weights_.push_back(q.w);
  }
  periodic_ = false;
  setRational();
  return *this;
}

bool AcGeNurbCurve3d::isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol) const {
  if (ent.type() != AcGe::kNurbCurve3d) return false;
  const auto& o = static_cast<const AcGeNurbCurve3d&>(ent);
  if (o.degree_ != degree_ || o.points_.size() != points_.size() || o.knots_.size() != knots_.size()) return false;
  for (size_t i = 0; i < knots_.size(); ++i)
    if (std::fabs(knots_[i] - o.knots_[i]) > tol.equalVector()) return false;
  for (size_t i = 0; i < points_.size(); ++i)
    if (!points_[i].isEqualTo(o.points_[i], tol) || std::fabs(weightAt(i) - o.weightAt(i)) > tol.equalVector())
      return false;
  return true;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::transformBy(const AcGeMatrix3d& xfm) {
  for (AcGePoint3d& p : points_) p = xfm * p;
  return *this;
}

void AcGeNurbCurve3d::getInterval(double& lower, double& upper) const {
  if (points_.empty()) {
    lower = upper = 0.0;
    return;
  }
  lower = knots_[degree_];
  upper = knots_[points_.size()];
}

AcGePoint3d AcGeNurbCurve3d::evalPoint(double param) const {
  AcGeVector3dArray d;
  return evalPoint(param, 0, d);
}

AcGePoint3d AcGeNurbCurve3d::evalPoint(double param, int numDeriv, AcGeVector3dArray& derivArray) const {
  derivArray.assign(std::max(0, numDeriv), AcGeVector3d());
  if (points_.empty()) return AcGePoint3d();
  double lo, hi;
  getInterval(lo, hi);
  double u = std::clamp(param, lo, hi);
  std::vector<HPoint> out;
  zepk::ge::nurbsDerivs(degree_, knots_, homogeneous(points_, weights_), u, std::max(0, numDeriv), out);
  for (int k = 1; k <= numDeriv; ++k) derivArray[k - 1] = {out[k].x, out[k].y, out[k].z};
  return {out[0].x, out[0].y, out[0].z};
}

bool AcGeNurbCurve3d::isPeriodic(double& period) const {
  double lo, hi;
  getInterval(lo, hi);
  period = hi - lo;
  return periodic_;
}

AcGeCurve3d* AcGeNurbCurve3d::trimmedCopy(double fromParam, double toParam) const {
  double lo, hi;
  getInterval(lo, hi);
  double a = std::max(std::min(fromParam, toParam), lo), b = std::min(std::max(fromParam, toParam), hi);
  if (!(a < b)) return nullptr;
  auto* r = new AcGeNurbCurve3d(*this);
  r->hardTrimByParams(a, b);
  return r;
}

AcGeCurve3d& AcGeNurbCurve3d::reverseParam() {
  // u -> lo + hi - u over the domain.
  double lo, hi;
  getInterval(lo, hi);
  std::reverse(points_.begin(), points_.end());
  std::reverse(weights_.begin(), weights_.end());
  AcGeDoubleArray k(knots_.size());
  for (size_t i = 0; i < knots_.size(); ++i) k[i] = lo + hi - knots_[knots_.size() - 1 - i];
  knots_ = k;
  return *this;
}

void AcGeNurbCurve3d::getBreakParams(AcGeDoubleArray& params) const {
  params.clear();
  double lo, hi;
  getInterval(lo, hi);
  for (double k : knots_)
    if (k > lo && k < hi && (params.empty() || params.back() != k)) params.push_back(k);
}
