// Splines (SPLINE).
#include <cmath>

#include "host/db/ents_internal.h"
#include "host/dbspline.h"

using zepk::db::ClassSchema;
using zepk::db::customPart;
using zepk::db::field;
using zepk::db::kOptional;
using zepk::db::MemoryDxfFiler;

ZEPK_DEFINE_ENTITY_CLASS(AcDbSpline, AcDbCurve, u"SPLINE")
ZEPK_DEFINE_ENTITY_FILERS(AcDbSpline, AcDbCurve)

const ClassSchema& AcDbSpline::schema() {
  static const ClassSchema s{
      u"AcDbSpline",
      {
          field<&AcDbSpline::normal_>(210, "Normal", AcGeVector3d(0, 0, 1), kOptional),
          field<&AcDbSpline::flags_>(70, "Flags", 0),
          field<&AcDbSpline::degree_>(71, "Degree", 3),
          // The counts of knots, control points and fit points: the
          // vectors' own sizes.
          customPart(
              {72, 73, 74},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                auto* sp = static_cast<const AcDbSpline*>(o);
                f->writeInt16(72, static_cast<Adesk::Int16>(sp->knots_.size()));
                f->writeInt16(73, static_cast<Adesk::Int16>(sp->controlPoints_.size()));
                return f->writeInt16(74, static_cast<Adesk::Int16>(sp->fitPoints_.size()));
              },
              [](AcDbObject*, MemoryDxfFiler* f) {
                bool seen[3] = {false, false, false};
                while (!f->atEOF() && f->peekCode() >= 72 && f->peekCode() <= 74 && !seen[f->peekCode() - 72]) {
                  seen[f->peekCode() - 72] = true;
                  f->next();
                }
                return Acad::eOk;
              },
              [](const AcDbObject*, AcDbDwgFiler* f) { return f->filerStatus(); },
              [](AcDbObject*, AcDbDwgFiler* f) { return f->filerStatus(); }, nullptr),
          field<&AcDbSpline::knotTolerance_>(42, "KnotTol", 1e-10),
          field<&AcDbSpline::controlPointTolerance_>(43, "ControlPtTol", 1e-10),
          field<&AcDbSpline::fitTolerance_>(44, "FitTolerance", 1e-10, kOptional),
          field<&AcDbSpline::startTangent_>(12, "StartFitTangent", AcGeVector3d(), kOptional),
          field<&AcDbSpline::endTangent_>(13, "EndFitTangent", AcGeVector3d(), kOptional),
          zepk::db::repeatedReals<&AcDbSpline::knots_, 40>("Knots"),
          zepk::db::repeatedReals<&AcDbSpline::weights_, 41>("Weights"),
          zepk::db::repeatedPoints<&AcDbSpline::controlPoints_, 10>("ControlPoints"),
          zepk::db::repeatedPoints<&AcDbSpline::fitPoints_, 11>("FitPoints"),
      }};
  return s;
}

AcDbSpline::AcDbSpline(int degree, bool rational, bool closed, bool periodic, const AcGePoint3dArray& controlPoints,
                       const AcGeDoubleArray& knots, const AcGeDoubleArray& weights, double controlPtTol,
                       double knotTol) {
  setNurbsData(degree, rational, closed, periodic, controlPoints, knots, weights, controlPtTol, knotTol);
}

AcDbSpline::AcDbSpline(const AcGePoint3dArray& fitPoints, int order, double fitTolerance) {
  setFitData(fitPoints, order - 1, fitTolerance, AcGeVector3d(), AcGeVector3d());
}

AcDbSpline::AcDbSpline(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
                       const AcGeVector3d& endTangent, int order, double fitTolerance) {
  setFitData(fitPoints, order - 1, fitTolerance, startTangent, endTangent);
}

// Planar when the defining points lie in one plane, linear when on one line.
void AcDbSpline::updatePlanarity() {
  const AcGePoint3dArray& pts = controlPoints_.empty() ? fitPoints_ : controlPoints_;
  int f = flags_ & ~(kPlanar | kLinear);
  if (pts.size() < 2) {
    flags_ = static_cast<int16_t>(f | kPlanar);
    return;
  }
  double scale = 0;
  for (const AcGePoint3d& p : pts) scale = std::max(scale, p.distanceTo(pts[0]));
  double tol = 1e-10 * std::max(scale, 1.0);
  AcGeVector3d dir;
  for (const AcGePoint3d& p : pts)
    if ((p - pts[0]).length() > tol) {
      dir = (p - pts[0]) / (p - pts[0]).length();
      break;
    }
  AcGeVector3d normal;
  for (const AcGePoint3d& p : pts) {
    AcGeVector3d c = dir.crossProduct(p - pts[0]);
    if (c.length() > tol) {
      normal = c / c.length();
      break;
    }
  }
  if (normal.length() == 0) {
    flags_ = static_cast<int16_t>(f | kPlanar | kLinear);
    return;
  }
  for (const AcGePoint3d& p : pts)
    if (std::fabs(normal.dotProduct(p - pts[0])) > tol) {
      flags_ = static_cast<int16_t>(f);
      return;
    }
  if (normal.z < 0 || (normal.z == 0 && (normal.y < 0 || (normal.y == 0 && normal.x < 0)))) normal = -normal;
  normal_ = normal;
  flags_ = static_cast<int16_t>(f | kPlanar);
}

Acad::ErrorStatus AcDbSpline::getControlPointAt(int index, AcGePoint3d& point) const {
  if (index < 0 || index >= numControlPoints()) return Acad::eInvalidIndex;
  point = controlPoints_[static_cast<size_t>(index)];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setControlPointAt(int index, const AcGePoint3d& point) {
  if (index < 0 || index >= numControlPoints()) return Acad::eInvalidIndex;
  assertWriteEnabled();
  controlPoints_[static_cast<size_t>(index)] = point;
  updatePlanarity();
  return Acad::eOk;
}

double AcDbSpline::weightAt(int index) const {
  if (index < 0 || static_cast<size_t>(index) >= weights_.size()) return 1.0;
  return weights_[static_cast<size_t>(index)];
}

Acad::ErrorStatus AcDbSpline::setWeightAt(int index, double weight) {
  if (index < 0 || index >= numControlPoints()) return Acad::eInvalidIndex;
  if (!(weight > 0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  if (weights_.size() != controlPoints_.size()) weights_.assign(controlPoints_.size(), 1.0);
  weights_[static_cast<size_t>(index)] = weight;
  flags_ = static_cast<int16_t>(flags_ | kRational);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getNurbsData(int& degree, bool& rational, bool& closed, bool& periodic,
                                           AcGePoint3dArray& controlPoints, AcGeDoubleArray& knots,
                                           AcGeDoubleArray& weights, double& controlPtTol, double& knotTol) const {
  degree = degree_;
  rational = isRational();
  closed = isClosed();
  periodic = isPeriodic();
  controlPoints = controlPoints_;
  knots = knots_;
  weights = weights_;
  controlPtTol = controlPointTolerance_;
  knotTol = knotTolerance_;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setNurbsData(int degree, bool rational, bool closed, bool periodic,
                                           const AcGePoint3dArray& controlPoints, const AcGeDoubleArray& knots,
                                           const AcGeDoubleArray& weights, double controlPtTol, double knotTol) {
  if (degree < 1 || degree > 25) return Acad::eInvalidInput;
  if (knots.size() != controlPoints.size() + static_cast<size_t>(degree) + 1) return Acad::eInvalidInput;
  if (!weights.empty() && weights.size() != controlPoints.size()) return Acad::eInvalidInput;
  assertWriteEnabled();
  degree_ = static_cast<int16_t>(degree);
  controlPoints_ = controlPoints;
  knots_ = knots;
  weights_ = rational ? weights : AcGeDoubleArray();
  if (rational && weights_.empty()) weights_.assign(controlPoints.size(), 1.0);
  controlPointTolerance_ = controlPtTol > 0 ? controlPtTol : 1e-10;
  knotTolerance_ = knotTol > 0 ? knotTol : 1e-10;
  fitPoints_.clear();
  startTangent_ = endTangent_ = AcGeVector3d();
  flags_ = static_cast<int16_t>((closed ? kClosed : 0) | (periodic ? kPeriodic : 0) | (rational ? kRational : 0));
  updatePlanarity();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getFitPointAt(int index, AcGePoint3d& point) const {
  if (index < 0 || index >= numFitPoints()) return Acad::eInvalidIndex;
  point = fitPoints_[static_cast<size_t>(index)];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setFitPointAt(int index, const AcGePoint3d& point) {
  if (index < 0 || index >= numFitPoints()) return Acad::eInvalidIndex;
  assertWriteEnabled();
  fitPoints_[static_cast<size_t>(index)] = point;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::insertFitPointAt(int index, const AcGePoint3d& point) {
  if (index < 0 || index > numFitPoints()) return Acad::eInvalidIndex;
  assertWriteEnabled();
  fitPoints_.insert(fitPoints_.begin() + index, point);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::removeFitPointAt(int index) {
  if (index < 0 || index >= numFitPoints()) return Acad::eInvalidIndex;
  assertWriteEnabled();
  fitPoints_.erase(fitPoints_.begin() + index);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getFitData(AcGePoint3dArray& fitPoints, int& degree, double& fitTolerance,
                                         bool& tangentsExist, AcGeVector3d& startTangent,
                                         AcGeVector3d& endTangent) const {
  if (fitPoints_.empty()) return Acad::eNotApplicable;
  fitPoints = fitPoints_;
  degree = degree_;
  fitTolerance = fitTolerance_;
  startTangent = startTangent_;
  endTangent = endTangent_;
  tangentsExist = startTangent_.length() > 0 || endTangent_.length() > 0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setFitData(const AcGePoint3dArray& fitPoints, int degree, double fitTolerance,
                                         const AcGeVector3d& startTangent, const AcGeVector3d& endTangent) {
  if (fitPoints.size() < 2 || degree < 1 || degree > 25 || fitTolerance < 0) return Acad::eInvalidInput;
  assertWriteEnabled();
  fitPoints_ = fitPoints;
  degree_ = static_cast<int16_t>(degree);
  fitTolerance_ = fitTolerance > 0 ? fitTolerance : 1e-10;
  startTangent_ = startTangent;
  endTangent_ = endTangent;
  updatePlanarity();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getFitTangents(AcGeVector3d& startTangent, AcGeVector3d& endTangent) const {
  if (startTangent_.length() == 0 && endTangent_.length() == 0) return Acad::eNotApplicable;
  startTangent = startTangent_;
  endTangent = endTangent_;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setFitTangents(const AcGeVector3d& startTangent, const AcGeVector3d& endTangent) {
  if (fitPoints_.empty()) return Acad::eNotApplicable;
  assertWriteEnabled();
  startTangent_ = startTangent;
  endTangent_ = endTangent;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setFitTol(double tol) {
  if (tol < 0) return Acad::eInvalidInput;
  if (fitPoints_.empty()) return Acad::eNotApplicable;
  assertWriteEnabled();
  fitTolerance_ = tol;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::purgeFitData() {
  if (fitPoints_.empty()) return Acad::eOk;
  assertWriteEnabled();
  fitPoints_.clear();
  startTangent_ = endTangent_ = AcGeVector3d();
  fitTolerance_ = 1e-10;
  return Acad::eOk;
}
