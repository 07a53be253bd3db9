// Transforming entities: each kind moves, turns, scales and mirrors its own
// geometry by an affine matrix, as a CAD host does.
//
// Planar entities keep their points in their own coordinate system (OCS):
// those are taken to world coordinates, transformed, and brought into the
// OCS of the new normal. The new normal is the inverse transpose of the
// matrix applied to the old one, so that it stays perpendicular to the
// entity's plane; it is taken on the side of the matrix times the normal,
// so that a mirror in a line of the XY plane keeps a normal of +Z. Seen
// about that normal a mirror reverses the sense of rotation: arcs swap
// their ends, bulges change sign, texts read backwards (the generation flag
// says so) and block references get a negative X scale.
//
// Following the database's other code, a circle's or an arc's centre is in
// world coordinates; text, block reference, solid and trace points are in
// the OCS as files keep them.
#include <algorithm>
#include <cmath>
#include <memory>

#include "host/db/ents_internal.h"
#include "host/dbelipse.h"
#include "host/dbhatch.h"
#include "host/dbmtext.h"
#include "host/dbpl.h"
#include "host/dbray.h"
#include "host/dbregion.h"
#include "host/dbspline.h"
#include "host/dbsymtb.h"
#include "host/dbxline.h"
#include "host/gemat3d.h"
#include "host/imgent.h"

using zepk::db::EntityAccess;
using zepk::db::OwnedSequence;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2 * kPi;

double wrapAngle(double a) {
  a = std::fmod(a, kTwoPi);
  if (a < 0) a += kTwoPi;
  return a;
}

// The matrix with what every kind asks of it.
struct Xf {
  const AcGeMatrix3d& m;
  AcGeVector3d c0, c1, c2;  // images of the axes
  double det = 0;

  explicit Xf(const AcGeMatrix3d& mat) : m(mat) {
    c0 = AcGeVector3d(m.entry[0][0], m.entry[1][0], m.entry[2][0]);
    c1 = AcGeVector3d(m.entry[0][1], m.entry[1][1], m.entry[2][1]);
    c2 = AcGeVector3d(m.entry[0][2], m.entry[1][2], m.entry[2][2]);
    det = c0.dotProduct(c1.crossProduct(c2));
  }
  // Affine, finite and not singular.
  bool valid() const {
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c)
        if (!std::isfinite(m.entry[r][c])) return false;
    if (m.entry[3][0] != 0 || m.entry[3][1] != 0 || m.entry[3][2] != 0 || m.entry[3][3] != 1) return false;
    double n = c0.length() * c1.length() * c2.length();
    return n > 0 && std::fabs(det) > 1e-12 * n;
  }
  bool mirrors() const { return det < 0; }
  bool uniform() const { return m.isUniScaledOrtho(); }
  // The scale of a uniform matrix.
  double scale() const { return std::cbrt(std::fabs(det)); }
  AcGePoint3d pt(const AcGePoint3d& p) const {
    AcGePoint3d r = p;
    r.transformBy(m);
    return r;
  }
  AcGeVector3d vec(const AcGeVector3d& v) const { return c0 * v.x + c1 * v.y + c2 * v.z; }
  // The normal of the transformed plane whose normal was n (unit).
  AcGeVector3d normal(const AcGeVector3d& n) const {
    AcGeVector3d t = c1.crossProduct(c2) * n.x + c2.crossProduct(c0) * n.y + c0.crossProduct(c1) * n.z;
    if (det < 0) t = -t;
    double len = t.length();
    return len > 0 ? t / len : n;
  }
  // How far the matrix stretches along the normal n: thicknesses scale so.
  double along(const AcGeVector3d& n) const { return vec(n).dotProduct(normal(n)); }
};

// Old OCS coordinates (normal from) to new OCS coordinates (normal to).
AcGeMatrix3d ocsMap(const Xf& x, const AcGeVector3d& from, const AcGeVector3d& to) {
  return AcGeMatrix3d::worldToPlane(to) * x.m * AcGeMatrix3d::planeToWorld(from);
}

// The in-plane part of an OCS map: the angle the X axis turns by, whether
// it reflects, and the scale.
struct Planar {
  AcGeMatrix3d map;
  double turn = 0;
  bool reflect = false;
  double scale = 1;

  Planar(const Xf& x, const AcGeVector3d& from, const AcGeVector3d& to) : map(ocsMap(x, from, to)) {
    double a = map.entry[0][0], b = map.entry[1][0], c = map.entry[0][1], d = map.entry[1][1];
    turn = std::atan2(b, a);
    reflect = a * d - b * c < 0;
    scale = std::hypot(a, b);
  }
  AcGePoint3d pt(const AcGePoint3d& p) const {
    AcGePoint3d r = p;
    r.transformBy(map);
    return r;
  }
  AcGePoint2d pt2(const AcGePoint2d& p, double z) const {
    AcGePoint3d r = pt(AcGePoint3d(p.x, p.y, z));
    return AcGePoint2d(r.x, r.y);
  }
  AcGeVector2d vec2(const AcGeVector2d& v) const {
    return AcGeVector2d(map.entry[0][0] * v.x + map.entry[0][1] * v.y, map.entry[1][0] * v.x + map.entry[1][1] * v.y);
  }
  // The direction at angle a, mapped.
  double angle(double a) const { return reflect ? turn - a : turn + a; }
};

// An arc from a0 to a1, counter-clockwise when ccw: its angles after the
// map, still counter-clockwise when ccw comes back true.
void mapArc(const Planar& p, double& a0, double& a1, bool& ccw) {
  double s = p.angle(a0), e = p.angle(a1);
  if (p.reflect) ccw = !ccw;
  a0 = wrapAngle(s);
  a1 = wrapAngle(e);
}

// A new entity like src: its own fields copied, without the sub-entities
// it owns (those the caller copies).
AcDbEntity* copyFields(const AcDbEntity* src) {
  AcDbEntity* copy = AcDbEntity::cast(src->isA()->create());
  if (!copy) return nullptr;
  zepk::db::MemoryDwgFiler filer(AcDb::kCopyFiler, src->database());
  if (src->dwgOutFields(&filer) != Acad::eOk) {
    delete copy;
    return nullptr;
  }
  filer.rewind();
  if (copy->dwgInFields(&filer) != Acad::eOk) {
    delete copy;
    return nullptr;
  }
  AcDbObjectAccess::detachCopy(copy);
  if (OwnedSequence* seq = EntityAccess::sequence(copy)) {
    seq->items.clear();
    seq->seqEnd = AcDbObjectId();
  }
  return copy;
}

// Applies f to each sub-entity (vertex, attribute) of the owner: opened for
// write when the owner is in a database, in place otherwise. Stops at the
// first failure.
template <class F>
Acad::ErrorStatus forEachSub(const AcDbEntity* owner, F f) {
  OwnedSequence* seq = EntityAccess::sequence(owner);
  if (!seq) return Acad::eOk;
  for (auto& slot : seq->items) {
    if (slot.pending) {
      Acad::ErrorStatus es = f(slot.pending.get());
      if (es != Acad::eOk) return es;
      continue;
    }
    if (slot.id.isNull() || slot.id.isErased()) continue;
    AcDbEntity* sub = nullptr;
    Acad::ErrorStatus es = acdbOpenObject(sub, slot.id, AcDb::kForWrite);
    if (es != Acad::eOk) return es;
    es = f(sub);
    sub->close();
    if (es != Acad::eOk) return es;
  }
  return Acad::eOk;
}

// Same for reading (copies).
template <class F>
Acad::ErrorStatus forEachSubRead(const AcDbEntity* owner, F f) {
  OwnedSequence* seq = EntityAccess::sequence(owner);
  if (!seq) return Acad::eOk;
  for (auto& slot : seq->items) {
    if (slot.pending) {
      Acad::ErrorStatus es = f(slot.pending.get());
      if (es != Acad::eOk) return es;
      continue;
    }
    if (slot.id.isNull() || slot.id.isErased()) continue;
    AcDbEntity* sub = nullptr;
    Acad::ErrorStatus es = acdbOpenObject(sub, slot.id, AcDb::kForRead);
    if (es != Acad::eOk) return es;
    es = f(sub);
    sub->close();
    if (es != Acad::eOk) return es;
  }
  return Acad::eOk;
}

// The ellipse that a circular arc (or a whole circle) becomes under any
// affine matrix.
AcDbEllipse* ellipseOf(const Xf& x, const AcGePoint3d& center, const AcGeVector3d& normal, double radius, double a0,
                       double a1) {
  AcGeVector3d u = normal.perpVector() * radius;
  auto* e = new AcDbEllipse;
  // The ellipse's own code does the rest: an ellipse with a ratio of 1.
  if (e->set(center, normal, u, 1.0, 0.0, kTwoPi) != Acad::eOk) {
    delete e;
    return nullptr;
  }
  e->setStartParam(a0);
  e->setEndParam(a1);
  if (e->transformBy(x.m) != Acad::eOk) {
    delete e;
    return nullptr;
  }
  return e;
}

}  // namespace

// ------------------------------------------------------------ the base

void AcDbObjectAccess::detachCopy(AcDbObject* copy) {
  copy->owner_ = AcDbObjectId();
  copy->extDict_ = AcDbObjectId();
  copy->persistentReactors_.clear();
}

Acad::ErrorStatus AcDbEntity::transformBy(const AcGeMatrix3d&) { return Acad::eNotApplicable; }

Acad::ErrorStatus AcDbEntity::explode(AcDbVoidPtrArray&) const { return Acad::eNotApplicable; }

Acad::ErrorStatus AcDbEntity::getTransformedCopy(const AcGeMatrix3d& xform, AcDbEntity*& pEnt) const {
  pEnt = nullptr;
  AcDbEntity* copy = copyFields(this);
  if (!copy) return Acad::eNotApplicable;
  Acad::ErrorStatus es = Acad::eOk;
  if (EntityAccess::sequence(this)) {
    es = forEachSubRead(this, [&](AcDbEntity* sub) {
      AcDbEntity* subCopy = nullptr;
      Acad::ErrorStatus s = sub->getTransformedCopy(AcGeMatrix3d::kIdentity, subCopy);
      if (s != Acad::eOk) return s;
      s = zepk::db::appendSubentity(copy, subCopy, nullptr);
      if (s != Acad::eOk) delete subCopy;
      return s;
    });
  }
  if (es == Acad::eOk) es = copy->transformBy(xform);
  if (es != Acad::eOk) {
    delete copy;
    return es;
  }
  pEnt = copy;
  return Acad::eOk;
}

// ------------------------------------------------------------ curves

Acad::ErrorStatus AcDbLine::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  assertWriteEnabled();
  start_ = x.pt(start_);
  end_ = x.pt(end_);
  thickness_ *= x.along(normal_);
  normal_ = x.normal(normal_);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  if (!x.uniform()) return Acad::eCannotScaleNonUniformly;
  assertWriteEnabled();
  center_ = x.pt(center_);
  radius_ *= x.scale();
  thickness_ *= x.along(normal_);
  normal_ = x.normal(normal_);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getTransformedCopy(const AcGeMatrix3d& xform, AcDbEntity*& pEnt) const {
  Xf x(xform);
  if (!x.valid() || x.uniform()) return AcDbEntity::getTransformedCopy(xform, pEnt);
  pEnt = nullptr;
  AcDbEllipse* e = ellipseOf(x, center_, normal_, radius_, 0.0, kTwoPi);
  if (!e) return Acad::eInvalidInput;
  e->setPropertiesFrom(this);
  pEnt = e;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  if (!x.uniform()) return Acad::eCannotScaleNonUniformly;
  AcGeVector3d n = x.normal(normal_);
  Planar p(x, normal_, n);
  double a0 = startAngle_, a1 = endAngle_;
  bool ccw = true;
  mapArc(p, a0, a1, ccw);
  assertWriteEnabled();
  center_ = x.pt(center_);
  radius_ *= x.scale();
  thickness_ *= x.along(normal_);
  normal_ = n;
  startAngle_ = ccw ? a0 : a1;
  endAngle_ = ccw ? a1 : a0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getTransformedCopy(const AcGeMatrix3d& xform, AcDbEntity*& pEnt) const {
  Xf x(xform);
  if (!x.valid() || x.uniform()) return AcDbEntity::getTransformedCopy(xform, pEnt);
  pEnt = nullptr;
  double a0 = startAngle_, a1 = endAngle_;
  if (a1 <= a0) a1 += kTwoPi;
  AcDbEllipse* e = ellipseOf(x, center_, normal_, radius_, a0, a1);
  if (!e) return Acad::eInvalidInput;
  e->setPropertiesFrom(this);
  pEnt = e;
  return Acad::eOk;
}

// Under any affine matrix an ellipse stays one: the images of two conjugate
// semi-diameters are conjugate, and turning the parameter by t0 makes them
// perpendicular again (the new axes).
Acad::ErrorStatus AcDbEllipse::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  AcGeVector3d a = x.vec(majorAxis_);
  AcGeVector3d b = x.vec(minorAxis());
  AcGeVector3d n = x.normal(normal_);
  // u(t) = a cos t + b sin t and v(t) = -a sin t + b cos t are
  // perpendicular when tan 2t = 2 a.b / (a.a - b.b).
  double t0 = 0.5 * std::atan2(2 * a.dotProduct(b), a.dotProduct(a) - b.dotProduct(b));
  AcGeVector3d u = a * std::cos(t0) + b * std::sin(t0);
  AcGeVector3d v = b * std::cos(t0) - a * std::sin(t0);
  // A point at parameter t is c + u cos(t - t0) + v sin(t - t0).
  double s0 = startParam_ - t0, s1 = endParam_ - t0;
  bool whole = isClosed();
  if (u.crossProduct(v).dotProduct(n) < 0) {
    // Mirrored: run the other way round, s -> -s, so that the minor axis
    // keeps to the normal's left.
    v = -v;
    double e0 = -s1, e1 = -s0;
    s0 = e0;
    s1 = e1;
  }
  if (v.length() > u.length()) {
    // The axes change roles: c + v cos s' + (-u) sin s' with s' = s - pi/2.
    AcGeVector3d w = -u;
    u = v;
    v = w;
    s0 -= kPi / 2;
    s1 -= kPi / 2;
  }
  double ratio = v.length() / u.length();
  if (!(ratio > 0) || ratio > 1 + 1e-12) return Acad::eInvalidInput;
  assertWriteEnabled();
  center_ = x.pt(center_);
  majorAxis_ = u;
  // The normal is exactly perpendicular to the new axes.
  AcGeVector3d un = u.crossProduct(v);
  normal_ = un.length() > 0 ? un / un.length() : n;
  ratio_ = std::min(ratio, 1.0);
  if (whole) {
    startParam_ = 0;
    endParam_ = kTwoPi;
  } else {
    // The start in [0, 2 pi), the span as it was.
    startParam_ = wrapAngle(s0);
    endParam_ = startParam_ + (s1 - s0);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRay::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  AcGeVector3d d = x.vec(unitDir_);
  assertWriteEnabled();
  basePoint_ = x.pt(basePoint_);
  unitDir_ = d / d.length();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbXline::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  AcGeVector3d d = x.vec(unitDir_);
  assertWriteEnabled();
  basePoint_ = x.pt(basePoint_);
  unitDir_ = d / d.length();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  assertWriteEnabled();
  for (AcGePoint3d& p : controlPoints_) p = x.pt(p);
  for (AcGePoint3d& p : fitPoints_) p = x.pt(p);
  startTangent_ = x.vec(startTangent_);
  endTangent_ = x.vec(endTangent_);
  normal_ = x.normal(normal_);
  updatePlanarity();
  return Acad::eOk;
}

// Lightweight polylines: widths scale with the matrix, which must then be
// uniform in the polyline's plane, as must arcs; a polyline of straight
// segments without width takes any matrix that keeps its plane flat.
Acad::ErrorStatus AcDbPolyline::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  AcGeVector3d n = x.normal(normal_);
  Planar p(x, normal_, n);
  bool curved = !isOnlyLines() || hasWidth() || constantWidth_ != 0;
  if (curved && !x.uniform()) return Acad::eCannotScaleNonUniformly;
  assertWriteEnabled();
  double z = elevation_;
  for (Vertex& v : verts_) {
    AcGePoint3d q = p.pt(AcGePoint3d(v.point.x, v.point.y, z));
    v.point = AcGePoint2d(q.x, q.y);
    elevation_ = q.z;
    if (p.reflect) v.bulge = -v.bulge;
    if (v.startWidth > 0) v.startWidth *= p.scale;
    if (v.endWidth > 0) v.endWidth *= p.scale;
  }
  if (verts_.empty()) elevation_ = p.pt(AcGePoint3d(0, 0, z)).z;
  constantWidth_ *= p.scale;
  thickness_ *= x.along(normal_);
  normal_ = n;
  return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  if (!x.uniform()) return Acad::eCannotScaleNonUniformly;
  AcGeVector3d n = x.normal(normal_);
  Planar p(x, normal_, n);
  assertWriteEnabled();
  double z = elevationPoint_.z;
  Acad::ErrorStatus es = forEachSub(this, [&](AcDbEntity* e) {
    AcDb2dVertex* v = AcDb2dVertex::cast(e);
    if (!v) return Acad::eOk;
    AcGePoint3d q = p.pt(AcGePoint3d(v->position().x, v->position().y, z));
    v->setPosition(AcGePoint3d(q.x, q.y, q.z));
    if (p.reflect && v->bulge() != 0) v->setBulge(-v->bulge());
    if (v->startWidth() != 0) v->setStartWidth(v->startWidth() * p.scale);
    if (v->endWidth() != 0) v->setEndWidth(v->endWidth() * p.scale);
    return Acad::eOk;
  });
  if (es != Acad::eOk) return es;
  elevationPoint_.z = p.pt(AcGePoint3d(0, 0, z)).z;
  defaultStartWidth_ *= p.scale;
  defaultEndWidth_ *= p.scale;
  thickness_ *= x.along(normal_);
  normal_ = n;
  return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  assertWriteEnabled();
  return forEachSub(this, [&](AcDbEntity* e) { return e->transformBy(xform); });
}

Acad::ErrorStatus AcDb3dPolylineVertex::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  assertWriteEnabled();
  position_ = x.pt(position_);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolygonMeshVertex::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  assertWriteEnabled();
  position_ = x.pt(position_);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyFaceMeshVertex::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  assertWriteEnabled();
  position_ = x.pt(position_);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolygonMesh::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  assertWriteEnabled();
  normal_ = x.normal(normal_);
  return forEachSub(this, [&](AcDbEntity* e) { return e->transformBy(xform); });
}

Acad::ErrorStatus AcDbPolyFaceMesh::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  assertWriteEnabled();
  normal_ = x.normal(normal_);
  // Face records hold vertex numbers only.
  return forEachSub(this, [&](AcDbEntity* e) {
    return AcDbFaceRecord::cast(e) ? Acad::eOk : e->transformBy(xform);
  });
}

// ------------------------------------------------------------ points and faces

Acad::ErrorStatus AcDbPoint::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  AcGeVector3d n = x.normal(normal_);
  Planar p(x, normal_, n);
  assertWriteEnabled();
  position_ = x.pt(position_);
  ecsRotation_ = wrapAngle(p.angle(ecsRotation_));
  thickness_ *= x.along(normal_);
  normal_ = n;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  assertWriteEnabled();
  p0_ = x.pt(p0_);
  p1_ = x.pt(p1_);
  p2_ = x.pt(p2_);
  p3_ = x.pt(p3_);
  return Acad::eOk;
}

namespace {

Acad::ErrorStatus transformQuad(const Xf& x, AcGePoint3d* pts[4], double& thickness, AcGeVector3d& normal) {
  AcGeVector3d n = x.normal(normal);
  Planar p(x, normal, n);
  for (int i = 0; i < 4; ++i) *pts[i] = p.pt(*pts[i]);
  thickness *= x.along(normal);
  normal = n;
  return Acad::eOk;
}

}  // namespace

Acad::ErrorStatus AcDbSolid::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  assertWriteEnabled();
  AcGePoint3d* pts[4] = {&p0_, &p1_, &p2_, &p3_};
  return transformQuad(x, pts, thickness_, normal_);
}

Acad::ErrorStatus AcDbTrace::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  assertWriteEnabled();
  AcGePoint3d* pts[4] = {&p0_, &p1_, &p2_, &p3_};
  return transformQuad(x, pts, thickness_, normal_);
}

// ------------------------------------------------------------ text

// A text (and so an attribute or an attribute definition): placed by its
// points, turned by its rotation, scaled by its height. Mirrored, it reads
// backwards: the glyphs advance along the mirrored baseline, which is
// written as the opposite rotation with the backwards flag turned over
// (for aligned and fitted text, whose direction comes from its two points,
// the points change places instead of the rotation turning).
Acad::ErrorStatus AcDbText::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  AcGeVector3d n = x.normal(normal_);
  Planar p(x, normal_, n);
  // The baseline and the up direction, mapped: they must stay square (a
  // scale along the text's own axes changes its height and width factor).
  AcGeVector2d d = p.vec2(AcGeVector2d(std::cos(rotation_), std::sin(rotation_)));
  AcGeVector2d u = p.vec2(AcGeVector2d(-std::sin(rotation_), std::cos(rotation_)));
  double dl = d.length(), ul = u.length();
  if (!(dl > 0 && ul > 0)) return Acad::eInvalidInput;
  if (std::fabs(d.x * u.x + d.y * u.y) > 1e-9 * dl * ul) return Acad::eCannotScaleNonUniformly;
  assertWriteEnabled();
  AcGePoint3d pos = p.pt(position_), align = p.pt(alignment_);
  double rot = std::atan2(d.y, d.x);
  bool twoPoints = horizontal_ == AcDb::kTextAlign || horizontal_ == AcDb::kTextFit;
  if (p.reflect) {
    generation_ ^= 2;
    rot += kPi;
    if (twoPoints) std::swap(pos, align);
  }
  position_ = pos;
  alignment_ = align;
  rotation_ = wrapAngle(rot);
  height_ *= ul;
  widthFactor_ *= dl / ul;
  thickness_ *= x.along(normal_);
  normal_ = n;
  return Acad::eOk;
}

// Multiline text cannot read backwards: mirrored, it keeps to the
// direction of the two that reads from left to right.
Acad::ErrorStatus AcDbMText::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  if (!x.uniform()) return Acad::eCannotScaleNonUniformly;
  AcGeVector3d n = x.normal(normal_);
  AcGeVector3d d = x.vec(direction_);
  if (d.length() == 0) return Acad::eInvalidInput;
  d = d / d.length();
  if (x.mirrors()) {
    AcGeMatrix3d toOcs = AcGeMatrix3d::worldToPlane(n);
    AcGeVector3d od = d;
    od.transformBy(toOcs);
    if (od.x < -1e-12 || (std::fabs(od.x) <= 1e-12 && od.y < 0)) d = -d;
  }
  double s = x.scale();
  assertWriteEnabled();
  location_ = x.pt(location_);
  normal_ = n;
  direction_ = d;
  AcGeVector3d od = d;
  od.transformBy(AcGeMatrix3d::worldToPlane(n));
  rotation_ = wrapAngle(std::atan2(od.y, od.x));
  textHeight_ *= s;
  width_ *= s;
  definedHeight_ *= s;
  actualWidth_ *= s;
  actualHeight_ *= s;
  return Acad::eOk;
}

// ------------------------------------------------------------ block references

// The reference's placement is the matrix position x OCS x rotation x
// scale; the matrix given goes in front, and the product is read back as a
// placement. A product with skewed axes (a non-uniform scale across a
// turned block) is no placement: eCannotScaleNonUniformly. A mirror comes
// out as a negative X scale. The attributes go with the reference.
Acad::ErrorStatus AcDbBlockReference::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  AcGeMatrix3d place = AcGeMatrix3d::planeToWorld(normal_) * AcGeMatrix3d::translation(position_.asVector()) *
                       AcGeMatrix3d::rotation(rotation_, AcGeVector3d::kZAxis);
  AcGeMatrix3d scale;
  scale.entry[0][0] = scaleX_;
  scale.entry[1][1] = scaleY_;
  scale.entry[2][2] = scaleZ_;
  AcGeMatrix3d full = xform * place * scale;
  AcGeVector3d n = x.normal(normal_);
  AcGeMatrix3d local = AcGeMatrix3d::worldToPlane(n) * full;
  AcGeVector3d X(local.entry[0][0], local.entry[1][0], local.entry[2][0]);
  AcGeVector3d Y(local.entry[0][1], local.entry[1][1], local.entry[2][1]);
  AcGeVector3d Z(local.entry[0][2], local.entry[1][2], local.entry[2][2]);
  double size = std::max({X.length(), Y.length(), Z.length()});
  double tol = 1e-9 * size;
  if (std::fabs(X.z) > tol || std::fabs(Y.z) > tol || std::fabs(Z.x) > tol || std::fabs(Z.y) > tol ||
      std::fabs(X.x * Y.x + X.y * Y.y) > tol * size)
    return Acad::eCannotScaleNonUniformly;
  double sx = std::hypot(X.x, X.y);
  double rot = std::atan2(X.y, X.x);
  double sy = -Y.x * std::sin(rot) + Y.y * std::cos(rot);
  double sz = Z.z;
  if (sy < 0 && sx > 0) {
    sx = -sx;
    sy = -sy;
    rot += kPi;
  }
  if (sx == 0 || sy == 0 || sz == 0) return Acad::eInvalidInput;
  Acad::ErrorStatus es = forEachSub(this, [&](AcDbEntity* e) { return e->transformBy(xform); });
  if (es != Acad::eOk) return es;
  assertWriteEnabled();
  position_ = AcGePoint3d(local.entry[0][3], local.entry[1][3], local.entry[2][3]);
  normal_ = n;
  rotation_ = wrapAngle(rot);
  scaleX_ = sx;
  scaleY_ = sy;
  scaleZ_ = sz;
  return Acad::eOk;
}

// ------------------------------------------------------------ hatches, regions, images

namespace {

void mapHatchEdge(const Planar& p, double z, AcDbHatch::Edge& e) {
  switch (e.type) {
    case AcDbHatch::kLine:
      e.start = p.pt2(e.start, z);
      e.end = p.pt2(e.end, z);
      break;
    case AcDbHatch::kCirArc: {
      // Clockwise arcs keep their angles measured clockwise.
      double a0 = e.ccw ? e.startAngle : -e.startAngle, a1 = e.ccw ? e.endAngle : -e.endAngle;
      bool ccw = e.ccw;
      mapArc(p, a0, a1, ccw);
      e.center = p.pt2(e.center, z);
      e.radius *= p.scale;
      e.ccw = ccw;
      e.startAngle = ccw ? a0 : wrapAngle(-a0);
      e.endAngle = ccw ? a1 : wrapAngle(-a1);
      break;
    }
    case AcDbHatch::kEllArc: {
      // Parameters: a reflection runs them the other way (t -> -t), a turn
      // carries the major axis round with it.
      e.center = p.pt2(e.center, z);
      e.majorAxis = p.vec2(e.majorAxis);
      if (p.reflect) {
        double a0 = e.ccw ? e.startAngle : -e.startAngle, a1 = e.ccw ? e.endAngle : -e.endAngle;
        a0 = -a0;
        a1 = -a1;
        e.ccw = !e.ccw;
        e.startAngle = e.ccw ? wrapAngle(a0) : wrapAngle(-a0);
        e.endAngle = e.ccw ? wrapAngle(a1) : wrapAngle(-a1);
      }
      break;
    }
    case AcDbHatch::kSpline:
      for (AcGePoint2d& c : e.controlPoints) c = p.pt2(c, z);
      for (AcGePoint2d& f : e.fitPoints) f = p.pt2(f, z);
      e.startTangent = p.vec2(e.startTangent);
      e.endTangent = p.vec2(e.endTangent);
      break;
  }
}

}  // namespace

// A hatch keeps its loops, seeds and pattern in its plane: they follow the
// in-plane part of the matrix, which must be uniform.
Acad::ErrorStatus AcDbHatch::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  if (!x.uniform()) return Acad::eCannotScaleNonUniformly;
  AcGeVector3d n = x.normal(normal_);
  Planar p(x, normal_, n);
  double z = elevationPoint_.z;
  assertWriteEnabled();
  for (Loop& loop : loops_) {
    for (AcGePoint2d& v : loop.vertices) v = p.pt2(v, z);
    if (p.reflect)
      for (double& b : loop.bulges) b = -b;
    for (Edge& e : loop.edges) mapHatchEdge(p, z, e);
  }
  for (AcGePoint2d& s : seeds_) s = p.pt2(s, z);
  for (PatternLine& l : patternLines_) {
    l.angle = wrapAngle(p.angle(l.angle));
    AcGePoint2d b = p.pt2(AcGePoint2d(l.baseX, l.baseY), z);
    l.baseX = b.x;
    l.baseY = b.y;
    AcGeVector2d o = p.vec2(AcGeVector2d(l.offsetX, l.offsetY));
    l.offsetX = o.x;
    l.offsetY = o.y;
    for (double& d : l.dashes) d *= p.scale;
  }
  patternAngle_ = wrapAngle(p.angle(patternAngle_));
  if (!isSolidFill()) patternScale_ *= p.scale;
  if (gradient_.present) gradient_.angle = wrapAngle(p.angle(gradient_.angle));
  pixelSize_ *= p.scale;
  elevationPoint_.z = p.pt(AcGePoint3d(0, 0, z)).z;
  normal_ = n;
  return Acad::eOk;
}

// A region's loops lie in the plane through the origin: a matrix that
// takes that plane off the origin (a move along the normal) has no place
// to put them and gives eNotApplicable, as does a region that holds only
// another modeller's data.
Acad::ErrorStatus AcDbRegion::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  if (hasModelerData() || loops_.empty()) return Acad::eNotApplicable;
  if (!x.uniform()) return Acad::eCannotScaleNonUniformly;
  AcGeVector3d n = x.normal(normal_);
  Planar p(x, normal_, n);
  double z = p.pt(AcGePoint3d(0, 0, 0)).z;
  if (std::fabs(z) > 1e-9 * std::max(1.0, x.m.translation().length())) return Acad::eNotApplicable;
  assertWriteEnabled();
  for (Loop& loop : loops_)
    for (Edge& e : loop) {
      e.start = p.pt2(e.start, 0);
      e.end = p.pt2(e.end, 0);
      if (!e.isArc) continue;
      // The edge keeps its ends; its angles follow the map, and a
      // reflection turns its sense.
      double a0 = e.startAngle, a1 = e.endAngle;
      bool ccw = e.ccw;
      mapArc(p, a0, a1, ccw);
      e.center = p.pt2(e.center, 0);
      e.radius *= p.scale;
      e.startAngle = a0;
      e.endAngle = a1;
      e.ccw = ccw;
    }
  normal_ = n;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::transformBy(const AcGeMatrix3d& xform) {
  Xf x(xform);
  if (!x.valid()) return Acad::eInvalidInput;
  assertWriteEnabled();
  origin_ = x.pt(origin_);
  u_ = x.vec(u_);
  v_ = x.vec(v_);
  return Acad::eOk;
}

// ------------------------------------------------------------ exploding references

// The block's entities placed as the reference shows them, each keeping its
// own layer, colour and linetype. The reference's attributes go; the
// block's attribute definitions come out as they are defined (their tags
// show), as the host leaves them. A repeated reference (MINSERT) does not
// explode. Where an entity cannot take the reference's scale (a text
// scaled unevenly) the whole explosion is refused with that status.
// Block coordinates to world: the block's base point to the origin, the
// scale factors, the rotation about the reference's Z axis, the position in
// the reference's own system, and that system to world.
AcGeMatrix3d AcDbBlockReference::placement(const AcGePoint3d& base) const {
  AcGeMatrix3d scale;
  scale.entry[0][0] = scaleX_;
  scale.entry[1][1] = scaleY_;
  scale.entry[2][2] = scaleZ_;
  return AcGeMatrix3d::planeToWorld(normal_) * AcGeMatrix3d::translation(position_.asVector()) *
         AcGeMatrix3d::rotation(rotation_, AcGeVector3d::kZAxis) * scale * AcGeMatrix3d::translation(-base.asVector());
}

AcGeMatrix3d AcDbBlockReference::blockTransform() const {
  AcGePoint3d base;
  AcDbBlockTableRecord* rec = nullptr;
  if (acdbOpenObject(rec, blockTableRecord(), AcDb::kForRead) == Acad::eOk) {
    base = rec->origin();
    rec->close();
  }
  return placement(base);
}

Acad::ErrorStatus AcDbBlockReference::explode(AcDbVoidPtrArray& entitySet) const {
  if (columns_ > 1 || rows_ > 1) return Acad::eNotApplicable;
  AcDbObjectId block = blockTableRecord();
  AcDbBlockTableRecord* rec = nullptr;
  Acad::ErrorStatus es = acdbOpenObject(rec, block, AcDb::kForRead);
  if (es != Acad::eOk) return es;
  AcGeMatrix3d place = placement(rec->origin());
  AcDbBlockTableRecordIterator* it = nullptr;
  es = rec->newIterator(it);
  rec->close();
  if (es != Acad::eOk) return es;
  std::unique_ptr<AcDbBlockTableRecordIterator> own(it);
  AcDbVoidPtrArray made;
  for (; !it->done(); it->step()) {
    AcDbEntity* e = nullptr;
    if (it->getEntity(e) != Acad::eOk) continue;
    AcDbEntity* copy = nullptr;
    es = e->getTransformedCopy(place, copy);
    e->close();
    if (es == Acad::eNotApplicable) continue;  // nothing to place (a proxy)
    if (es != Acad::eOk) {
      for (void* p : made) delete static_cast<AcDbEntity*>(p);
      return es;
    }
    made.push_back(copy);
  }
  entitySet.insert(entitySet.end(), made.begin(), made.end());
  return Acad::eOk;
}
