// Grip and stretch points of the host's own entity kinds.
#include <cmath>
#include <memory>

#include "host/dbelipse.h"
#include "host/dbents.h"
#include "host/dbmtext.h"
#include "host/dbpl.h"
#include "host/dbspline.h"

namespace {

constexpr double kHalfPi = 1.5707963267948966;

void vertices(const AcDbEntity* e, std::vector<AcGePoint3d>& out) {
  if (auto* pl = AcDbPolyline::cast(e)) {
    for (unsigned i = 0; i < pl->numVerts(); ++i) {
      AcGePoint3d p;
      if (pl->getPointAt(i, p) == Acad::eOk) out.push_back(p);
    }
    return;
  }
  if (auto* p2 = AcDb2dPolyline::cast(e)) {
    std::unique_ptr<AcDbObjectIterator> it(p2->vertexIterator());
    for (it->start(); !it->done(); it->step()) {
      if (auto* v = AcDb2dVertex::cast(it->entity())) out.push_back(p2->vertexPosition(*v));
    }
    return;
  }
  if (auto* p3 = AcDb3dPolyline::cast(e)) {
    std::unique_ptr<AcDbObjectIterator> it(p3->vertexIterator());
    for (it->start(); !it->done(); it->step()) {
      if (auto* v = AcDb3dPolylineVertex::cast(it->entity())) out.push_back(v->position());
    }
  }
}

// Points of a curve at its parameters.
void atParams(const AcDbCurve* c, std::initializer_list<double> params, std::vector<AcGePoint3d>& out) {
  for (double t : params) {
    AcGePoint3d p;
    if (c->getPointAtParam(t, p) == Acad::eOk) out.push_back(p);
  }
}

Acad::ErrorStatus points(const AcDbEntity* e, bool stretch, std::vector<AcGePoint3d>& out) {
  out.clear();
  if (auto* l = AcDbLine::cast(e)) {
    out.push_back(l->startPoint());
    if (!stretch) out.push_back(l->startPoint() + (l->endPoint() - l->startPoint()) / 2.0);
    out.push_back(l->endPoint());
  } else if (auto* a = AcDbArc::cast(e)) {
    AcGePoint3d s, m, en;
    double t0 = 0, t1 = 0;
    a->getStartParam(t0);
    a->getEndParam(t1);
    a->getStartPoint(s);
    a->getEndPoint(en);
    out.push_back(s);
    if (!stretch) {
      a->getPointAtParam((t0 + t1) / 2, m);
      out.push_back(m);
    }
    out.push_back(en);
    if (!stretch) out.push_back(a->center());
  } else if (auto* c = AcDbCircle::cast(e)) {
    out.push_back(c->center());
    if (!stretch) atParams(c, {0.0, kHalfPi, 2 * kHalfPi, 3 * kHalfPi}, out);
  } else if (auto* el = AcDbEllipse::cast(e)) {
    out.push_back(el->center());
    AcGeVector3d major = el->majorAxis(), minor = el->minorAxis();
    for (const AcGeVector3d& v : {major, minor, -major, -minor}) out.push_back(el->center() + v);
  } else if (auto* sp = AcDbSpline::cast(e)) {
    AcGePoint3d p;
    if (sp->hasFitData()) {
      for (int i = 0; i < sp->numFitPoints(); ++i)
        if (sp->getFitPointAt(i, p) == Acad::eOk) out.push_back(p);
    } else {
      for (int i = 0; i < sp->numControlPoints(); ++i)
        if (sp->getControlPointAt(i, p) == Acad::eOk) out.push_back(p);
    }
  } else if (AcDbPolyline::cast(e) || AcDb2dPolyline::cast(e) || AcDb3dPolyline::cast(e)) {
    vertices(e, out);
  } else if (auto* pt = AcDbPoint::cast(e)) {
    out.push_back(pt->position());
  } else if (auto* t = AcDbText::cast(e)) {
    out.push_back(t->position());
    if (!t->alignmentPoint().isEqualTo(t->position()) && !t->alignmentPoint().isEqualTo(AcGePoint3d::kOrigin))
      out.push_back(t->alignmentPoint());
  } else if (auto* mt = AcDbMText::cast(e)) {
    out.push_back(mt->location());
  } else if (auto* br = AcDbBlockReference::cast(e)) {
    out.push_back(br->position());
  } else {
    return Acad::eNotApplicable;
  }
  return Acad::eOk;
}

}  // namespace

Acad::ErrorStatus AcDbEntity::getGripPoints(std::vector<AcGePoint3d>& gripPoints) const {
  return points(this, false, gripPoints);
}

Acad::ErrorStatus AcDbEntity::getStretchPoints(std::vector<AcGePoint3d>& stretchPoints) const {
  return points(this, true, stretchPoints);
}
