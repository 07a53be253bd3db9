// Planes, lines and points for LISP: planes through three points or from
// four coefficients, where planes and lines meet, and the plain point
// computations on lines and triangles.
#include <vector>

#include "geometry/lines.h"
#include "geometry/lisp.h"
#include "geometry/lisp_args.h"
#include "host/dbapserv.h"
#include "host/dbents.h"
#include "host/gelin3d.h"
#include "host/geplane.h"

namespace zepk::geometry {

using namespace lispargs;

namespace {

Point plain(const AcGePoint3d& p) { return {p.x, p.y, p.z}; }
AcGePoint3d ge(const Point& p) { return AcGePoint3d(p.x, p.y, p.z); }
AcGePoint3d asPoint(const AcGeVector3d& v) { return AcGePoint3d(v.x, v.y, v.z); }

// An optional tolerance at the end, for both fields; 1e-6 by default.
bool optionalTolerance(Args& a, AcGeTol& tol) {
  double t = 1e-6;
  if (a.more() && !a.real(t)) return false;
  tol.setEqualPoint(t);
  tol.setEqualVector(t);
  return a.end();
}

}  // namespace

// (ZEPK-Plane p1 p2 p3) or (ZEPK-Plane a b c d): (normal (a b c d) origin
// u-axis v-axis). The middle point of three is the plane's origin.
int lispPlane() {
  Args a(kMat);
  AcGePlane plane;
  if (a.nextIsNumber()) {
    double c[4];
    for (double& v : c)
      if (!a.real(v)) return RTERROR;
    if (!a.end()) return RTERROR;
    plane.set(c[0], c[1], c[2], c[3]);
  } else {
    AcGePoint3d p1, p2, p3;
    if (!a.point(p1) || !a.point(p2) || !a.point(p3) || !a.end()) return RTERROR;
    plane.set(p1, p2, p3);
  }
  double c[4];
  plane.getCoefficients(c[0], c[1], c[2], c[3]);
  AcGePoint3d o;
  AcGeVector3d u, v;
  plane.getCoordSystem(o, u, v);
  AcGeVector3d n = plane.normal();
  ads_point np = {n.x, n.y, n.z}, op = {o.x, o.y, o.z}, up = {u.x, u.y, u.z}, vp = {v.x, v.y, v.z};
  return frame::retList(acutBuildList(RT3DPOINT, np, RTLB, RTREAL, c[0], RTREAL, c[1], RTREAL, c[2], RTREAL, c[3],
                                      RTLE, RT3DPOINT, op, RT3DPOINT, up, RT3DPOINT, vp, 0));
}

// A plane by three points, then a second plane by three points or a line
// by a point and a direction, then an optional tolerance. Plane and line:
// the point or nil; two planes: (point direction) of their line, or nil.
int lispPlaneIntersectWith() {
  Args a(kLines);
  AcGePoint3d p[3];
  for (AcGePoint3d& q : p)
    if (!a.point(q)) return RTERROR;
  std::vector<AcGePoint3d> second;
  while (a.nextIsPoint() && second.size() < 3) {
    AcGePoint3d q;
    a.point(q);
    second.push_back(q);
  }
  if (second.size() < 2) {
    AcGePoint3d q;
    if (!a.point(q)) return RTERROR;  // the message for what stands there
  }
  AcGeTol tol;
  if (!optionalTolerance(a, tol)) return RTERROR;
  AcGePlane plane(p[0], p[1], p[2]);
  if (second.size() == 3) {
    AcGeLine3d line;
    if (!plane.intersectWith(AcGePlane(second[0], second[1], second[2]), line, tol)) return retNil();
    return retPoints({line.pointOnLine(), asPoint(line.direction())});
  }
  AcGePoint3d at;
  AcGeLine3d line(second[0], AcGeVector3d(second[1].x, second[1].y, second[1].z));
  if (!plane.intersectWith(line, at, tol)) return retNil();
  return retPoint(at);
}

// Two lines, each a point and a direction, and an optional tolerance.
int lispLine3dIntersectWith() {
  Args a(kLines);
  AcGePoint3d p1, p2;
  AcGeVector3d v1, v2;
  if (!a.point(p1) || !a.vec(v1) || !a.point(p2) || !a.vec(v2)) return RTERROR;
  AcGeTol tol;
  if (!optionalTolerance(a, tol)) return RTERROR;
  AcGePoint3d at;
  if (!AcGeLine3d(p1, v1).intersectWith(AcGeLine3d(p2, v2), at, tol)) return retNil();
  return retPoint(at);
}

// Two lines seen along a direction: the point on each where their images
// meet.
int lispLine3dProjIntersectWith() {
  Args a(kLines);
  AcGePoint3d p1, p2;
  AcGeVector3d v1, v2, dir;
  if (!a.point(p1) || !a.vec(v1) || !a.point(p2) || !a.vec(v2) || !a.vec(dir)) return RTERROR;
  AcGeTol tol;
  if (!optionalTolerance(a, tol)) return RTERROR;
  AcGePoint3d on1, on2;
  if (!AcGeLine3d(p1, v1).projIntersectWith(AcGeLine3d(p2, v2), dir, on1, on2, tol)) return retNil();
  return retPoints({on1, on2});
}

// The lines through two pairs of points: where they meet, or nil.
int lispInters() {
  Args a(kVec);
  AcGePoint3d p[4];
  for (AcGePoint3d& q : p)
    if (!a.point(q)) return RTERROR;
  if (!a.end()) return RTERROR;
  auto at = intersectLines(plain(p[0]), plain(p[1]), plain(p[2]), plain(p[3]), AcGeContext::gTol.equalPoint());
  return at ? retPoint(ge(*at)) : retNil();
}

namespace {

// Two segments and optional tolerances: distance, then points (both the
// global point tolerance by default).
int colinear(Styles s) {
  Args a(s);
  AcGePoint3d p[4];
  for (AcGePoint3d& q : p)
    if (!a.point(q)) return RTERROR;
  double dist = AcGeContext::gTol.equalPoint(), pt = AcGeContext::gTol.equalPoint();
  if (a.more() && !a.real(dist)) return RTERROR;
  if (a.more() && !a.real(pt)) return RTERROR;
  if (!a.end()) return RTERROR;
  return retBool(onOneLine(plain(p[0]), plain(p[1]), plain(p[2]), plain(p[3]), dist, pt));
}

}  // namespace

int lispIsColinearTo() { return colinear(kPointLine); }
int lispPointIsColinearTo() { return colinear(kVec); }

// The part two segments on one line share, as two points, or nil.
int lispPointGetColinear() {
  Args a(kVec);
  AcGePoint3d p[4];
  for (AcGePoint3d& q : p)
    if (!a.point(q)) return RTERROR;
  double tol = AcGeContext::gTol.equalPoint();
  if (a.more() && !a.real(tol)) return RTERROR;
  if (!a.end()) return RTERROR;
  auto part = commonPart(plain(p[0]), plain(p[1]), plain(p[2]), plain(p[3]), tol);
  return part ? retPoints({ge(part->first), ge(part->second)}) : retNil();
}

// A point projected onto the plane of three points along a direction.
int lispPointProject() {
  Args a(kVec);
  AcGePoint3d p, q1, q2, q3;
  AcGeVector3d dir;
  if (!a.point(p) || !a.point(q1) || !a.point(q2) || !a.point(q3) || !a.vec(dir) || !a.end()) return RTERROR;
  return retPoint(p.project(AcGePlane(q1, q2, q3), dir));
}

int lispPointPerToLine() {
  Args a(kPointLine);
  AcGePoint3d p, q1, q2;
  if (!a.point(p) || !a.point(q1) || !a.point(q2) || !a.end()) return RTERROR;
  return retPoint(ge(perpendicularFoot(plain(p), plain(q1), plain(q2))));
}

int lispPointPerDistance() {
  Args a(kPointLine);
  AcGePoint3d p, q1, q2;
  if (!a.point(p) || !a.point(q1) || !a.point(q2) || !a.end()) return RTERROR;
  return retReal(distanceToLine(plain(p), plain(q1), plain(q2)));
}

// The point of the triangle's plane above or below a point, or nil.
int lispPointGetTriIntersElev() {
  Args a(kVec);
  AcGePoint3d p, t1, t2, t3;
  if (!a.point(p) || !a.point(t1) || !a.point(t2) || !a.point(t3) || !a.end()) return RTERROR;
  auto at = heightOnTriangle(plain(p), plain(t1), plain(t2), plain(t3));
  return at ? retPoint(ge(*at)) : retNil();
}

namespace {

int blockMatrix(bool inverse) {
  Args a(kMat);
  AcDbObjectId id;
  if (!a.objectId(id) || !a.end()) return RTERROR;
  AcDbObjectPointer<AcDbBlockReference> ref(id, AcDb::kForRead);
  if (ref.openStatus() != Acad::eOk) return frame::failBadArg(kMat.position, 1);
  AcGeMatrix3d m = ref->blockTransform();
  return retMatrix(inverse ? m.inverse() : m);
}

}  // namespace

int lispMatBlockTransform2Ref() { return blockMatrix(false); }
int lispMatBlockTransform2Def() { return blockMatrix(true); }

}  // namespace zepk::geometry
