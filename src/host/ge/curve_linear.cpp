// Lines, rays and segments as curves.
#include <algorithm>
#include <cmath>
#include <limits>

#include "host/gelin3d.h"
#include "host/gelineseg3d.h"
#include "host/geray3d.h"

AcGePoint3d AcGeLinearEnt3d::evalPoint(double param, int numDeriv, AcGeVector3dArray& derivArray) const {
  derivArray.assign(std::max(0, numDeriv), AcGeVector3d());
  if (numDeriv >= 1) derivArray[0] = vector_;
  return evalPoint(param);
}

double AcGeLinearEnt3d::length(double fromParam, double toParam, double) const {
  return std::fabs(toParam - fromParam) * vector_.length();
}

double AcGeLinearEnt3d::paramAtLength(double datumParam, double len, bool posParamDir, double) const {
  double v = vector_.length();
  if (v == 0.0) return datumParam;
  double t = datumParam + (posParamDir ? len : -len) / v;
  double lo, hi;
  getInterval(lo, hi);
  return std::clamp(t, lo, hi);
}

AcGeCurve3d* AcGeLinearEnt3d::trimmedCopy(double fromParam, double toParam) const {
  double lo, hi;
  getInterval(lo, hi);
  double a = std::max(std::min(fromParam, toParam), lo), b = std::min(std::max(fromParam, toParam), hi);
  if (!(a < b)) return nullptr;
  bool fa = std::isfinite(a), fb = std::isfinite(b);
  if (fa && fb) return new AcGeLineSeg3d(evalPoint(a), evalPoint(b));
  if (fa) return new AcGeRay3d(evalPoint(a), vector_);
  if (fb) return new AcGeRay3d(evalPoint(b), -vector_);
  return new AcGeLine3d(point_, vector_);
}

AcGeCurve3d& AcGeLinearEnt3d::reverseParam() {
  double lo, hi;
  getInterval(lo, hi);
  if (std::isfinite(lo) && std::isfinite(hi)) {
    point_ = evalPoint(hi);
    vector_ = -vector_;
  } else if (!std::isfinite(lo) && !std::isfinite(hi)) {
    vector_ = -vector_;
  }
  return *this;
}

AcGeBoundBlock3d AcGeLinearEnt3d::orthoBoundBlock() const {
  double lo, hi;
  getInterval(lo, hi);
  if (!std::isfinite(lo) || !std::isfinite(hi)) return AcGeCurve3d::orthoBoundBlock();
  return AcGeBoundBlock3d(evalPoint(lo), evalPoint(hi));
}

bool AcGeRay3d::isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol) const {
  if (ent.type() != AcGe::kRay3d) return false;
  const auto& r = static_cast<const AcGeRay3d&>(ent);
  return point_.isEqualTo(r.point_, tol) && vector_.isCodirectionalTo(r.vector_, tol);
}

void AcGeRay3d::getInterval(double& lower, double& upper) const {
  lower = 0.0;
  upper = std::numeric_limits<double>::infinity();
}
