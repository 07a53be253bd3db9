// Duplicate removal for LISP: repeated vertices of polylines of every kind,
// and curves that repeat one another in a selection.
#include <memory>
#include <vector>

#include "frame/lisp_bridge.h"
#include "geometry/curves.h"
#include "geometry/kernel.h"
#include "geometry/lisp.h"
#include "geometry/lisp_args.h"
#include "host/dbents.h"
#include "host/dbpl.h"

namespace zepk::geometry {

using namespace lispargs;

namespace {

constexpr Styles kBangStyle{MsgStyle::Bang, MsgStyle::Bang};
constexpr double kDefaultTolerance = 1e-5;

Point plain(const AcGePoint3d& p) { return {p.x, p.y, p.z}; }

// The vertex entities of an old-style polyline with their ids, in order
// (erased ones are passed over by the iterator).
template <class Vertex, class Poly>
bool vertexIds(const Poly* poly, std::vector<AcDbObjectId>& ids) {
  std::unique_ptr<AcDbObjectIterator> it(poly->vertexIterator());
  if (!it) return false;
  for (; !it->done(); it->step()) {
    if (it->objectId().isNull()) return false;  // not in a drawing
    ids.push_back(it->objectId());
  }
  return true;
}

// Erases the vertices that did not stay, and gives those that did the bulge
// the dumping left them (2D only).
template <class Vertex>
void applyDump(const std::vector<AcDbObjectId>& ids, const DumpedVertices& d, bool bulges) {
  std::vector<bool> kept(ids.size(), false);
  for (size_t k = 0; k < d.source.size(); ++k) {
    kept[d.source[k]] = true;
    if (!bulges) continue;
    AcDbObjectPointer<AcDb2dVertex> v(ids[d.source[k]], AcDb::kForWrite);
    if (v.openStatus() == Acad::eOk && v->bulge() != d.verts[k].bulge) v->setBulge(d.verts[k].bulge);
  }
  for (size_t i = 0; i < ids.size(); ++i) {
    if (kept[i]) continue;
    AcDbObjectPointer<Vertex> v(ids[i], AcDb::kForWrite);
    if (v.openStatus() == Acad::eOk) v->erase();
  }
}

// Dumps the vertices of one polyline of any kind; false when the entity is
// none. A fitted old-style polyline is left as it is: its vertices are
// made by the fitting.
bool dumpPolyline(const AcDbObjectId& id, double tol, bool collinear) {
  AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForWrite);
  if (e.openStatus() != Acad::eOk) return false;
  if (auto* pl = AcDbPolyline::cast(e.object())) {
    const LwPoly before = toLwPoly(*pl);
    const LwPoly after = dumpPoints(before, tol, collinear);
    // Bulges change only where a vertex goes.
    if (after.verts.size() != before.verts.size())
      assignLwPoly(*pl, after);
    return true;
  }
  if (auto* p2 = AcDb2dPolyline::cast(e.object())) {
    if (p2->polyType() != AcDb::k2dSimplePoly) return true;
    std::vector<AcDbObjectId> ids;
    if (!vertexIds<AcDb2dVertex>(p2, ids)) return true;
    std::vector<PolyVertex> verts;
    for (const AcDbObjectId& vid : ids) {
      AcDbObjectPointer<AcDb2dVertex> v(vid, AcDb::kForRead);
      if (v.openStatus() != Acad::eOk) return true;
      verts.push_back({plain(v->position()), v->bulge(), v->startWidth(), v->endWidth()});
    }
    applyDump<AcDb2dVertex>(ids, dumpVertices(verts, p2->isClosed(), tol, collinear), true);
    return true;
  }
  if (auto* p3 = AcDb3dPolyline::cast(e.object())) {
    if (p3->polyType() != AcDb::k3dSimplePoly) return true;
    std::vector<AcDbObjectId> ids;
    if (!vertexIds<AcDb3dPolylineVertex>(p3, ids)) return true;
    std::vector<PolyVertex> verts;
    for (const AcDbObjectId& vid : ids) {
      AcDbObjectPointer<AcDb3dPolylineVertex> v(vid, AcDb::kForRead);
      if (v.openStatus() != Acad::eOk) return true;
      verts.push_back({plain(v->position())});
    }
    applyDump<AcDb3dPolylineVertex>(ids, dumpVertices(verts, p3->isClosed(), tol, collinear), false);
    return true;
  }
  return false;
}

}  // namespace

// (pl-or-ss [tolerance] [collinear]): repeated vertices removed, and with
// the flag the vertices inside straight runs. T.
int lispPolyDumpPoint() {
  Args a(kBangStyle);
  const bool single = a.type() == RTENAME;
  std::vector<AcDbObjectId> ids;
  if (!a.entities(ids)) return RTERROR;
  double tol = kDefaultTolerance;
  if (a.more() && !a.real(tol)) return RTERROR;
  const bool collinear = a.more() && a.flag();
  if (!a.end()) return RTERROR;
  for (const AcDbObjectId& id : ids) {
    if (!dumpPolyline(id, tol, collinear) && single) return frame::failBadArg(MsgStyle::Bang, 1);
  }
  acedRetT();
  return RSRSLT;
}

}  // namespace zepk::geometry
