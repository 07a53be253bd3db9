// Fitting of a 2D polyline's vertices: curve fit, spline fit, straighten.
// The numbers come from poly2dfit; here the vertices are removed, changed
// and inserted, in the polyline's own coordinates (OCS).
#include <cmath>
#include <cstdlib>
#include <functional>

#include "host/db/ents_internal.h"
#include "host/db/poly2dfit.h"
#include "host/dbapserv.h"
#include "host/dbheader.h"

namespace {

namespace fit = zepk::db::fit;

constexpr int kFitted = AcDbVertexFlags::kCurveFitExtra | AcDbVertexFlags::kSplineFit;
constexpr double kTwoPi = 6.283185307179586476925286766559;

// Calls f with the vertex of a slot, open for write when it is in the
// database; false when it cannot be opened.
bool withVertex(zepk::db::OwnedSequence::Slot& slot, const std::function<void(AcDb2dVertex*)>& f) {
  if (slot.pending) {
    auto* v = AcDb2dVertex::cast(slot.pending.get());
    if (!v) return false;
    f(v);
    return true;
  }
  AcDbObjectPointer<AcDb2dVertex> v(slot.id, AcDb::kForWrite);
  if (v.openStatus() != Acad::eOk) return false;
  f(v.object());
  return true;
}

int headerInt(AcDbDatabase* db, const char16_t* name, int fallback) {
  if (!db) db = acdbHostApplicationServices() ? acdbHostApplicationServices()->workingDatabase() : nullptr;
  zepk::db::DxfItem item;
  if (!db || !zepk::db::getHeaderVar(db, name, &item)) return fallback;
  if (item.kind == zepk::db::DxfItem::Int) return static_cast<int>(item.i);
  if (item.kind == zepk::db::DxfItem::Real) return static_cast<int>(item.p[0]);
  return fallback;
}

double angleOf(fit::Pt t) {
  double a = std::atan2(t.y, t.x);
  return a < 0 ? a + kTwoPi : a;
}

// The vertex state read before fitting.
struct Orig {
  fit::Pt p;
  double z = 0.0, sw = 0.0, ew = 0.0;
  bool tangentSet = false;
  double tangent = 0.0;
};

}  // namespace

Acad::ErrorStatus AcDb2dPolyline::convertToPolyType(AcDb::Poly2dType type) {
  switch (type) {
    case AcDb::k2dSimplePoly: return straighten();
    case AcDb::k2dFitCurvePoly: return curveFit();
    case AcDb::k2dQuadSplinePoly:
    case AcDb::k2dCubicSplinePoly: {
      int segs = headerInt(database(), u"$SPLINESEGS", 8);
      return splineFit(type, static_cast<Adesk::Int16>(segs));
    }
  }
  return Acad::eInvalidInput;
}

Acad::ErrorStatus AcDb2dPolyline::setPolyType(AcDb::Poly2dType type) { return convertToPolyType(type); }

Acad::ErrorStatus AcDb2dPolyline::straighten() { return refit(AcDb::k2dSimplePoly, 0); }

Acad::ErrorStatus AcDb2dPolyline::curveFit() { return refit(AcDb::k2dFitCurvePoly, 0); }

Acad::ErrorStatus AcDb2dPolyline::splineFit() {
  AcDb::Poly2dType type =
      headerInt(database(), u"$SPLINETYPE", 6) == 5 ? AcDb::k2dQuadSplinePoly : AcDb::k2dCubicSplinePoly;
  return splineFit(type, static_cast<Adesk::Int16>(headerInt(database(), u"$SPLINESEGS", 8)));
}

Acad::ErrorStatus AcDb2dPolyline::splineFit(AcDb::Poly2dType splineType, Adesk::Int16 splineSegs) {
  if (splineType != AcDb::k2dQuadSplinePoly && splineType != AcDb::k2dCubicSplinePoly) return Acad::eInvalidInput;
  // A negative count asks for as many segments (fitted with arcs by some
  // hosts); straight segments are drawn here either way.
  int segs = std::abs(static_cast<int>(splineSegs));
  if (segs == 0) return Acad::eInvalidInput;
  return refit(splineType, segs);
}

Acad::ErrorStatus AcDb2dPolyline::refit(AcDb::Poly2dType type, int splineSegs) {
  if (database() && !isWriteEnabled()) return Acad::eNotOpenForWrite;
  zepk::db::OwnedSequence* seq = ownedSequence();
  if (!seq) return Acad::eWrongObjectType;
  zepk::db::flushSubentities(this);
  assertWriteEnabled();

  // Every vertex must open for write (none on a locked layer, none open
  // elsewhere) before anything changes.
  for (auto& slot : seq->items) {
    if (!slot.pending && slot.id.isErased()) continue;
    if (!withVertex(slot, [](AcDb2dVertex*) {})) return Acad::eWasOpenForWrite;
  }

  // 1. Drop the vertices an earlier fit made; read the others.
  std::vector<Orig> orig;
  std::vector<zepk::db::OwnedSequence::Slot> kept;
  for (auto& slot : seq->items) {
    if (!slot.pending && slot.id.isErased()) continue;
    bool fitted = false;
    Orig o;
    bool ok = withVertex(slot, [&](AcDb2dVertex* v) {
      fitted = (v->flags() & kFitted) != 0;
      if (fitted) {
        if (!slot.pending) v->erase();
        return;
      }
      AcGePoint3d p = v->position();
      o.p = {p.x, p.y};
      o.z = p.z;
      o.sw = v->startWidth();
      o.ew = v->endWidth();
      o.tangentSet = v->isTangentUsed();
      o.tangent = v->tangent();
    });
    if (!ok || fitted) continue;
    orig.push_back(o);
    kept.push_back(std::move(slot));
  }
  seq->items = std::move(kept);
  setTypeFlags(type);

  const size_t n = orig.size();
  const bool closed = isClosed();
  const double elev = elevation();
  std::vector<fit::Pt> pts;
  for (const Orig& o : orig) pts.push_back(o.p);

  // 2. The kept vertices: frame vertices for a spline, plain ones otherwise.
  fit::CurveFit cf;
  if (type == AcDb::k2dFitCurvePoly) {
    std::vector<fit::Pt> fixed(n);
    for (size_t i = 0; i < n; ++i)
      if (orig[i].tangentSet) fixed[i] = {std::cos(orig[i].tangent), std::sin(orig[i].tangent)};
    cf = fit::curveFit(pts, closed, &fixed);
  }
  const size_t segCount = n < 2 ? 0 : (closed ? n : n - 1);
  for (size_t i = 0; i < n; ++i) {
    withVertex(seq->items[i], [&](AcDb2dVertex* v) {
      v->setVertexType(type == AcDb::k2dQuadSplinePoly || type == AcDb::k2dCubicSplinePoly ? AcDb::k2dSplineCtlVertex
                                                                                         : AcDb::k2dVertex);
      if (type == AcDb::k2dFitCurvePoly && i < segCount) {
        v->setBulge(cf.arcs[i].bulge1);
        v->setEndWidth((orig[i].sw + orig[i].ew) / 2.0);
        if (!orig[i].tangentSet) v->setTangent(angleOf(cf.tangents[i]));
      } else {
        v->setBulge(0.0);
      }
    });
  }

  // 3. New vertices.
  auto insert = [&](AcDb2dVertex* v, long at) {
    if (zepk::db::appendSubentity(this, v, nullptr, at) != Acad::eOk) delete v;
  };
  if (type == AcDb::k2dFitCurvePoly) {
    for (size_t i = 0; i < segCount; ++i) {
      const fit::Biarc& b = cf.arcs[i];
      double mid = (orig[i].sw + orig[i].ew) / 2.0;
      auto* v = new AcDb2dVertex(AcGePoint3d(b.joint.x, b.joint.y, elev), b.bulge2, mid, orig[i].ew,
                                 angleOf(b.jointTangent));
      v->setPropertiesFrom(this, false);
      v->setVertexType(AcDb::k2dCurveFitVertex);
      v->useTangent();
      insert(v, static_cast<long>(2 * i + 1));
    }
  } else if (type == AcDb::k2dQuadSplinePoly || type == AcDb::k2dCubicSplinePoly) {
    int degree = type == AcDb::k2dQuadSplinePoly ? 2 : 3;
    std::vector<fit::Pt> fp = fit::splineFitPoints(pts, degree, closed, splineSegs);
    // Widths run along the frame edges: fit point k lies on edge k / segs.
    auto widthAt = [&](size_t k) {
      if (n == 0) return 0.0;
      size_t edge = k / static_cast<size_t>(splineSegs);
      double f = static_cast<double>(k % static_cast<size_t>(splineSegs)) / splineSegs;
      if (edge >= n) return orig.back().ew;
      return orig[edge].sw * (1.0 - f) + orig[edge].ew * f;
    };
    for (size_t k = 0; k < fp.size(); ++k) {
      auto* v = new AcDb2dVertex(AcGePoint3d(fp[k].x, fp[k].y, elev), 0.0, widthAt(k), widthAt(k + 1));
      v->setPropertiesFrom(this, false);
      v->setVertexType(AcDb::k2dSplineFitVertex);
      insert(v, -1);
    }
  }
  return Acad::eOk;
}
