// Vectors and 4x4 matrices for LISP: each function reads its arguments,
// runs one operation of the geometry classes and gives the value back.
// Vectors and points are lists of three numbers, matrices lists of four
// rows of four numbers.
#include <vector>

#include "frame/lisp_bridge.h"
#include "geometry/lisp.h"
#include "geometry/lisp_args.h"
#include "host/gemat3d.h"
#include "host/geplane.h"
#include "host/gevec3d.h"

namespace zepk::geometry {

using namespace lispargs;

namespace {

AcGeVector3d planeNormal(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
  return (b - a).crossProduct(c - a);
}

// One vector in, one value out.
template <class F>
int oneVec(Styles s, F f) {
  Args a(s);
  AcGeVector3d v;
  if (!a.vec(v) || !a.end()) return RTERROR;
  return f(v);
}

// Two vectors in, one value out.
template <class F>
int twoVecs(Styles s, F f) {
  Args a(s);
  AcGeVector3d u, v;
  if (!a.vec(u) || !a.vec(v) || !a.end()) return RTERROR;
  return f(u, v);
}

// One matrix in, one value out.
template <class F>
int oneMat(F f) {
  Args a(kMat);
  AcGeMatrix3d m;
  if (!a.matrix(m) || !a.end()) return RTERROR;
  return f(m);
}

}  // namespace

// ---------------------------------------------------------------- vectors

// A zero vector comes back as it is.
int lispVecUnit() { return oneVec(kVec, [](AcGeVector3d v) { return retVec(v.normalize()); }); }
int lispVecNorm() { return oneVec(kVec, [](AcGeVector3d v) { return retReal(v.length()); }); }
int lispVecCross() {
  return twoVecs(kVec, [](const AcGeVector3d& u, const AcGeVector3d& v) { return retVec(u.crossProduct(v)); });
}
int lispVecDot() {
  return twoVecs(kVec, [](const AcGeVector3d& u, const AcGeVector3d& v) { return retReal(u.dotProduct(v)); });
}
int lispVecAdd() {
  return twoVecs(kVec, [](const AcGeVector3d& u, const AcGeVector3d& v) { return retVec(u + v); });
}
int lispVecSub() {
  return twoVecs(kVec, [](const AcGeVector3d& u, const AcGeVector3d& v) { return retVec(u - v); });
}

int lispVecScale() {
  Args a(kVec);
  AcGeVector3d v;
  double s = 0;
  if (!a.vec(v) || !a.real(s) || !a.end()) return RTERROR;
  return retVec(v * s);
}

int lispVecMxV() {
  Args a(kVec);
  AcGeMatrix3d m;
  AcGeVector3d v;
  if (!a.matrix(m) || !a.vec(v) || !a.end()) return RTERROR;
  return retVec(AcGeVector3d().setToProduct(m, v));
}

int lispVecIsCodirectional() {
  return twoVecs(kVecTests, [](const AcGeVector3d& u, const AcGeVector3d& v) { return retBool(u.isCodirectionalTo(v)); });
}
int lispVecIsParallel() {
  return twoVecs(kVecTests, [](const AcGeVector3d& u, const AcGeVector3d& v) { return retBool(u.isParallelTo(v)); });
}
int lispVecIsPerpendicular() {
  return twoVecs(kVecTests, [](const AcGeVector3d& u, const AcGeVector3d& v) { return retBool(u.isPerpendicularTo(v)); });
}
int lispVecIsUnit() { return oneVec(kVecTests, [](const AcGeVector3d& v) { return retBool(v.isUnitLength()); }); }
int lispVecIsZero() { return oneVec(kVecTests, [](const AcGeVector3d& v) { return retBool(v.isZeroLength()); }); }
int lispVecPerp() { return oneVec(kVecTests, [](const AcGeVector3d& v) { return retVec(v.perpVector()); }); }
int lispVecNegate() { return oneVec(kVecTests, [](AcGeVector3d v) { return retVec(v.negate()); }); }

int lispVecRotateTo() {
  Args a(kVecTests);
  AcGeVector3d u, v, axis;
  if (!a.vec(u) || !a.vec(v) || !a.vec(axis) || !a.end()) return RTERROR;
  return retMatrix(u.rotateTo(v, axis));
}

int lispVecOrthoProject() {
  Args a(kVecTests);
  AcGeVector3d v;
  AcGePoint3d p1, p2, p3;
  if (!a.vec(v) || !a.point(p1) || !a.point(p2) || !a.point(p3) || !a.end()) return RTERROR;
  return retVec(v.orthoProject(planeNormal(p1, p2, p3)));
}

int lispVecProject() {
  Args a(kVecTests);
  AcGeVector3d v, dir;
  AcGePoint3d p1, p2, p3;
  if (!a.vec(v) || !a.point(p1) || !a.point(p2) || !a.point(p3) || !a.vec(dir) || !a.end()) return RTERROR;
  return retVec(v.project(planeNormal(p1, p2, p3), dir));
}

int lispVecMirror() {
  Args a(kVecTests);
  AcGeVector3d v;
  AcGePoint3d p1, p2, p3;
  if (!a.vec(v) || !a.point(p1) || !a.point(p2) || !a.point(p3) || !a.end()) return RTERROR;
  return retVec(v.mirror(planeNormal(p1, p2, p3)));
}

int lispVecRotateBy() {
  Args a(kVec);
  AcGeVector3d v, axis;
  double ang = 0;
  if (!a.vec(v) || !a.real(ang) || !a.vec(axis) || !a.end()) return RTERROR;
  return retVec(v.rotateBy(ang, axis));
}

int lispVecAngleTo() {
  Args a(kVec);
  AcGeVector3d u, v, ref;
  if (!a.vec(u) || !a.vec(v)) return RTERROR;
  if (!a.more()) return retReal(u.angleTo(v));
  if (!a.vec(ref) || !a.end()) return RTERROR;
  return retReal(u.angleTo(v, ref));
}

// ---------------------------------------------------------------- matrices

int lispMatIdentity() {
  Args a(kMat);
  if (!a.end()) return RTERROR;
  return retMatrix(AcGeMatrix3d::kIdentity);
}

int lispMatDet() { return oneMat([](const AcGeMatrix3d& m) { return retReal(m.det()); }); }
// A singular matrix has no inverse and comes back as it is.
int lispMatInverse() { return oneMat([](const AcGeMatrix3d& m) { return retMatrix(m.inverse()); }); }
int lispMatTrp() { return oneMat([](const AcGeMatrix3d& m) { return retMatrix(m.transpose()); }); }
int lispMatIsScaledOrtho() { return oneMat([](const AcGeMatrix3d& m) { return retBool(m.isScaledOrtho()); }); }
int lispMatIsUniScaledOrtho() { return oneMat([](const AcGeMatrix3d& m) { return retBool(m.isUniScaledOrtho()); }); }
int lispMatNorm() { return oneMat([](const AcGeMatrix3d& m) { return retReal(m.norm()); }); }
int lispMatScale() { return oneMat([](const AcGeMatrix3d& m) { return retReal(m.scale()); }); }

// Two or more matrices, multiplied from the left: (A B C) gives A*B*C.
int lispMatProduct() {
  Args a(kMat);
  AcGeMatrix3d m, next;
  if (!a.matrix(m) || !a.matrix(next)) return RTERROR;
  m.postMultBy(next);
  while (a.more()) {
    if (!a.matrix(next)) return RTERROR;
    m.postMultBy(next);
  }
  return retMatrix(m);
}

// A vector, or a matrix and then a vector: the translation after the
// matrix's own transformation.
int lispMatTranslation() {
  Args a(kMat);
  AcGeMatrix3d m;
  AcGeVector3d v;
  bool withMatrix = a.type() == RTLB;
  if (withMatrix && !a.matrix(m)) return RTERROR;
  if (!a.vec(v) || !a.end()) return RTERROR;
  AcGeMatrix3d t;
  t.setToTranslation(v);
  return retMatrix(withMatrix ? t * m : t);
}

// An angle, an axis and a centre, optionally after a matrix: the rotation
// follows the matrix's own transformation.
int lispMatRotation() {
  Args a(kMat);
  AcGeMatrix3d m;
  bool withMatrix = a.type() == RTLB;
  if (withMatrix && !a.matrix(m)) return RTERROR;
  double ang = 0;
  AcGeVector3d axis;
  AcGePoint3d centre;
  if (!a.real(ang) || !a.vec(axis) || !a.point(centre) || !a.end()) return RTERROR;
  AcGeMatrix3d r;
  r.setToRotation(ang, axis, centre);
  return retMatrix(withMatrix ? AcGeMatrix3d().setToProduct(r, m) : r);
}

int lispMatGetCoordSystem() {
  return oneMat([](const AcGeMatrix3d& m) {
    AcGePoint3d o;
    AcGeVector3d x, y, z;
    m.getCoordSystem(o, x, y, z);
    return frame::retList(RbFromPoints3d({o, AcGePoint3d(x.x, x.y, x.z), AcGePoint3d(y.x, y.y, y.z),
                                          AcGePoint3d(z.x, z.y, z.z)}));
  });
}

// Origin and two axes; the third axis, when not given, is their cross
// product.
int lispMatSetCoordSystem() {
  Args a(kMat);
  AcGePoint3d o;
  AcGeVector3d x, y, z;
  if (!a.point(o) || !a.vec(x) || !a.vec(y)) return RTERROR;
  if (a.more()) {
    if (!a.vec(z) || !a.end()) return RTERROR;
  } else {
    z = x.crossProduct(y);
  }
  return retMatrix(AcGeMatrix3d().setCoordSystem(o, x, y, z));
}

int lispMatAlignCoordSys() {
  Args a(kMat);
  AcGePoint3d o1, o2;
  AcGeVector3d x1, y1, z1, x2, y2, z2;
  if (!a.point(o1) || !a.vec(x1) || !a.vec(y1) || !a.vec(z1) || !a.point(o2) || !a.vec(x2) || !a.vec(y2) ||
      !a.vec(z2) || !a.end())
    return RTERROR;
  return retMatrix(AcGeMatrix3d().setToAlignCoordSys(o1, x1, y1, z1, o2, x2, y2, z2));
}

// Mirroring in the plane through three points.
int lispMatMirroring() {
  Args a(kMat);
  AcGePoint3d p1, p2, p3;
  if (!a.point(p1) || !a.point(p2) || !a.point(p3) || !a.end()) return RTERROR;
  return retMatrix(AcGeMatrix3d().setToMirroring(AcGePlane(p1, planeNormal(p1, p2, p3))));
}

int lispMatScaling() {
  Args a(kMat);
  double s = 1;
  AcGePoint3d c;
  if (!a.real(s) || !a.point(c) || !a.end()) return RTERROR;
  return retMatrix(AcGeMatrix3d().setToScaling(s, c));
}

namespace {

// The system with that origin and Z direction: X by the arbitrary-axis
// rule, Y = Z x X, turned about Z by the optional angle.
int ucsMatrix(bool inverse) {
  Args a(kMat);
  AcGePoint3d o, zp;
  double ang = 0;
  if (!a.point(o) || !a.point(zp)) return RTERROR;
  if (a.more() && (!a.real(ang) || !a.end())) return RTERROR;
  AcGeVector3d z(zp.x, zp.y, zp.z);
  z.normalize();
  AcGeVector3d x = z.perpVector();
  AcGeVector3d y = z.crossProduct(x);
  if (ang != 0) {
    x.rotateBy(ang, z);
    y.rotateBy(ang, z);
  }
  AcGeMatrix3d m;
  m.setCoordSystem(o, x, y, z);
  return retMatrix(inverse ? m.inverse() : m);
}

}  // namespace

int lispMatUcs2Wcs() { return ucsMatrix(false); }
int lispMatWcs2Ucs() { return ucsMatrix(true); }

int lispMatMxP() {
  Args a(kMat);
  AcGeMatrix3d m;
  AcGePoint3d p;
  if (!a.matrix(m) || !a.point(p) || !a.end()) return RTERROR;
  return retPoint(p.transformBy(m));
}

}  // namespace zepk::geometry
