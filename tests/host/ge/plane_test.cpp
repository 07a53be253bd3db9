// Planes and bounding blocks.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>

#include "host/gebndblk3d.h"
#include "host/gelin3d.h"
#include "host/gelineseg3d.h"
#include "host/gemat3d.h"
#include "host/geplane.h"
#include "host/gescl3d.h"

namespace {

typedef AcGePoint3d P3;
typedef AcGeVector3d V3;

// The frame of a plane is orthonormal, with the normal u x v.
void expectFrame(const AcGePlane& pl) {
  P3 o;
  V3 u, v;
  pl.getCoordSystem(o, u, v);
  EXPECT_TRUE(u.isUnitLength() && v.isUnitLength() && pl.normal().isUnitLength());
  EXPECT_TRUE(u.isPerpendicularTo(v));
  EXPECT_TRUE(u.crossProduct(v).isEqualTo(pl.normal()));
}

TEST(Plane, EveryConstructionDescribesTheSamePlane) {
  // The plane x + 2y + 2z = 9 four ways.
  AcGePlane byNormal(P3(9, 0, 0), V3(2, 4, 4));
  AcGePlane byPoints(P3(1, 2, 2), P3(9, 0, 0), P3(1, 4, 0));
  AcGePlane byAxes(P3(1, 2, 2), V3(8, -2, -2), V3(0, 2, -2));
  AcGePlane byCoefficients(-1, -2, -2, 9);
  for (const AcGePlane* pl : {&byNormal, &byPoints, &byAxes, &byCoefficients}) {
    expectFrame(*pl);
    EXPECT_TRUE(pl->isOn(P3(3, 3, 0)));
    EXPECT_TRUE(pl->isCoplanarTo(byNormal));
    EXPECT_TRUE(pl->isEqualTo(byNormal));
    EXPECT_NEAR(pl->distanceTo(P3(0, 0, 0)), 3.0, 1e-14);
  }
  // Coefficients come back with the unit normal; its sign follows the construction.
  double a, b, c, d;
  byNormal.getCoefficients(a, b, c, d);
  EXPECT_NEAR(a, 1.0 / 3, 1e-15);
  EXPECT_NEAR(b, 2.0 / 3, 1e-15);
  EXPECT_NEAR(c, 2.0 / 3, 1e-15);
  EXPECT_NEAR(d, -3.0, 1e-14);
  EXPECT_TRUE(byCoefficients.normal().isEqualTo(V3(-1, -2, -2) / 3.0));
  // The coefficient form's origin is the point nearest the world origin.
  EXPECT_TRUE(byCoefficients.pointOnPlane().isEqualTo(P3(1, 2, 2)));
  // Three points: origin in the middle, normal (pntU - org) x (pntV - org).
  AcGePlane tri(P3(1, 0, 0), P3(0, 0, 0), P3(0, 1, 0));
  EXPECT_TRUE(tri.normal().isEqualTo(V3(0, 0, 1)));
  EXPECT_TRUE(AcGePlane(P3(0, 1, 0), P3(0, 0, 0), P3(1, 0, 0)).normal().isEqualTo(V3(0, 0, -1)));
  // A plane through the origin with normal Z has the world axes.
  P3 o;
  V3 u, v;
  AcGePlane(P3(0, 0, 0), V3(0, 0, 5)).getCoordSystem(o, u, v);
  EXPECT_TRUE(u.isEqualTo(V3(1, 0, 0)) && v.isEqualTo(V3(0, 1, 0)));
}

TEST(Plane, DegeneratePlanesMeetNothing) {
  AcGePlane line(P3(0, 0, 0), P3(1, 1, 1), P3(2, 2, 2));
  EXPECT_TRUE(line.normal().isZeroLength());
  EXPECT_FALSE(line.isOn(P3(1, 1, 1)));
  P3 x;
  EXPECT_FALSE(line.intersectWith(AcGeLine3d(P3(0, 0, 5), V3(0, 0, 1)), x));
  AcGeLine3d l;
  EXPECT_FALSE(line.intersectWith(AcGePlane(), l));
  EXPECT_TRUE(AcGeMatrix3d::mirroring(line).isEqualTo(AcGeMatrix3d::kIdentity));
  EXPECT_TRUE(AcGePlane(0, 0, 0, 1).normal().isZeroLength());
}

TEST(Plane, IntersectionsWithLinesAndPlanes) {
  AcGePlane pl(P3(0, 0, 10), V3(0, 0, 1));
  P3 x;
  ASSERT_TRUE(pl.intersectWith(AcGeLine3d(P3(1, 2, 0), V3(1, 1, 1)), x));
  EXPECT_TRUE(x.isEqualTo(P3(11, 12, 10)));
  EXPECT_TRUE(AcGeLine3d(P3(1, 2, 0), V3(1, 1, 1)).intersectWith(pl, x));
  // A segment must reach the plane.
  EXPECT_FALSE(pl.intersectWith(AcGeLineSeg3d(P3(0, 0, 0), P3(0, 0, 9.9)), x));
  EXPECT_TRUE(pl.intersectWith(AcGeLineSeg3d(P3(0, 0, 0), P3(0, 0, 10)), x));
  // Parallel lines, also those lying in the plane, do not cross it.
  EXPECT_FALSE(pl.intersectWith(AcGeLine3d(P3(0, 0, 0), V3(1, 1, 0)), x));
  EXPECT_FALSE(pl.intersectWith(AcGeLine3d(P3(0, 0, 10), V3(1, 1, 0)), x));

  AcGePlane other(P3(3, 0, 0), V3(1, 0, 1));
  AcGeLine3d line;
  ASSERT_TRUE(pl.intersectWith(other, line));
  EXPECT_TRUE(line.direction().isParallelTo(V3(0, 1, 0)));
  EXPECT_TRUE(line.direction().isCodirectionalTo(pl.normal().crossProduct(other.normal())));
  EXPECT_TRUE(pl.isOn(line.pointOnLine()) && other.isOn(line.pointOnLine()));
  EXPECT_TRUE(line.pointOnLine().isEqualTo(P3(-7, 0, 10)));  // nearest pl's origin
  // Parallel planes, distinct or the same, give no line.
  EXPECT_FALSE(pl.intersectWith(AcGePlane(P3(0, 0, 0), V3(0, 0, -2)), line));
  EXPECT_FALSE(pl.intersectWith(pl, line));
  // Far from the origin the line still lies on both.
  AcGePlane a(P3(500000, 3400000, 120), V3(0.1, 0.2, 1)), b(P3(500010, 3400005, 118), V3(-0.3, 0.05, 1));
  ASSERT_TRUE(a.intersectWith(b, line));
  AcGeTol survey;
  survey.setEqualPoint(1e-6);
  EXPECT_TRUE(a.isOn(line.pointOnLine(), survey) && b.isOn(line.pointOnLine(), survey));
  EXPECT_TRUE(a.isOn(line.evalPoint(1000), survey) && b.isOn(line.evalPoint(1000), survey));
}

TEST(Plane, ClosestPointsSignedDistanceAndTransforms) {
  AcGePlane pl(P3(1, 1, 1), V3(0, 0, 2));
  EXPECT_TRUE(pl.closestPointTo(P3(5, 6, 7)).isEqualTo(P3(5, 6, 1)));
  EXPECT_DOUBLE_EQ(pl.signedDistanceTo(P3(5, 6, 7)), 6.0);
  EXPECT_DOUBLE_EQ(pl.signedDistanceTo(P3(5, 6, -7)), -8.0);
  EXPECT_TRUE(pl.isOn(P3(9, 9, 1 + 5e-11)));
  EXPECT_FALSE(pl.isOn(P3(9, 9, 1 + 5e-10)));
  EXPECT_TRUE(pl.isParallelTo(AcGePlane(P3(0, 0, 0), V3(0, 0, -1))));
  EXPECT_TRUE(pl.isPerpendicularTo(AcGePlane(P3(0, 0, 0), V3(1, 0, 0))));
  EXPECT_TRUE(pl.isParallelTo(AcGeLine3d(P3(0, 0, 0), V3(1, 1, 0))));
  // Moving by a rigid motion moves every point with it; a mirror flips the normal.
  AcGeMatrix3d m = AcGeMatrix3d::rotation(0.7, V3(1, 2, 3), P3(4, 5, 6)) * AcGeMatrix3d::translation(V3(1, 0, 0));
  AcGePlane moved = pl;
  moved.transformBy(m);
  expectFrame(moved);
  EXPECT_TRUE(moved.isOn(m * P3(7, -3, 1)));
  EXPECT_TRUE(moved.normal().isEqualTo(m * pl.normal()));
  AcGePlane flipped = pl;
  flipped.transformBy(AcGeMatrix3d::mirroring(AcGePlane()));
  expectFrame(flipped);
  EXPECT_TRUE(flipped.normal().isEqualTo(V3(0, 0, -1)));
  // An uneven scaling keeps the points on the plane.
  AcGePlane slanted(P3(0, 0, 0), V3(1, 1, 1));
  AcGeMatrix3d stretch;
  stretch.entry[0][0] = 3.0;
  slanted.transformBy(stretch);
  expectFrame(slanted);
  EXPECT_TRUE(slanted.isOn(stretch * P3(1, -1, 0)) && slanted.isOn(stretch * P3(1, 0, -1)));
}

TEST(Matrix3d, PlaneFramesAndCoordinateSystems) {
  AcGePlane pl(P3(10, 20, 30), V3(1, -1, 2));
  AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(pl);
  AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(pl);
  EXPECT_TRUE((toWorld * toPlane).isEqualTo(AcGeMatrix3d::kIdentity, AcGeTol()));
  EXPECT_TRUE(toWorld.isUniScaledOrtho());
  // A point of the plane has z = 0 in the plane's system, and its x, y are
  // its plane coordinates.
  P3 on = pl.evalPoint(AcGePoint2d(3, -4));
  P3 local = toPlane * on;
  EXPECT_TRUE(local.isEqualTo(P3(3, -4, 0), AcGeTol()));
  // From a bare normal: through the origin, Z on the unit normal.
  AcGeMatrix3d ecs = AcGeMatrix3d::planeToWorld(V3(0, 0, -3));
  EXPECT_TRUE((ecs * V3(0, 0, 1)).isEqualTo(V3(0, 0, -1)));
  EXPECT_TRUE((ecs * V3(1, 0, 0)).isEqualTo(V3(-1, 0, 0)));
  EXPECT_TRUE(ecs.getCsOrigin().isEqualTo(P3(0, 0, 0)));
  EXPECT_TRUE(AcGeMatrix3d::planeToWorld(V3()).isEqualTo(AcGeMatrix3d::kIdentity));
  EXPECT_TRUE((AcGeMatrix3d::worldToPlane(V3(2, 3, 4)) * AcGeMatrix3d::planeToWorld(V3(2, 3, 4)))
                  .isEqualTo(AcGeMatrix3d::kIdentity));

  // A coordinate system reads back as it was set, axes as given.
  AcGeMatrix3d cs;
  cs.setCoordSystem(P3(1, 2, 3), V3(2, 0, 0), V3(0, 3, 1), V3(0, 0, 4));
  P3 o;
  V3 x, y, z;
  cs.getCoordSystem(o, x, y, z);
  EXPECT_TRUE(o.isEqualTo(P3(1, 2, 3)) && x.isEqualTo(V3(2, 0, 0)) && y.isEqualTo(V3(0, 3, 1)) &&
              z.isEqualTo(V3(0, 0, 4)));
  EXPECT_TRUE((cs * P3(1, 1, 1)).isEqualTo(P3(3, 5, 8)));
  EXPECT_TRUE(cs.translation().isEqualTo(V3(1, 2, 3)));
}

TEST(Matrix3d, ScaleNormOrthogonalityAndEquality) {
  AcGeMatrix3d r = AcGeMatrix3d::rotation(1.1, V3(1, 1, 0), P3(5, 5, 5));
  EXPECT_TRUE(r.isScaledOrtho() && r.isUniScaledOrtho());
  AcGeMatrix3d s = AcGeMatrix3d::scaling(2.5, P3(1, 2, 3)) * r;
  EXPECT_TRUE(s.isUniScaledOrtho());
  EXPECT_NEAR(s.scale(), 2.5, 1e-14);
  EXPECT_TRUE((s * P3(1, 2, 3)).isEqualTo(AcGeMatrix3d::scaling(2.5, P3(1, 2, 3)) * (r * P3(1, 2, 3))));
  AcGeMatrix3d uneven = AcGeScale3d(1, 2, 3);
  uneven = r * uneven;
  EXPECT_TRUE(uneven.isScaledOrtho());
  EXPECT_FALSE(uneven.isUniScaledOrtho());
  EXPECT_NEAR(uneven.scale(), 3.0, 1e-14);
  AcGeMatrix3d mirror = AcGeMatrix3d::mirroring(AcGePlane(P3(0, 0, 0), V3(1, 2, 3)));
  EXPECT_TRUE(mirror.isUniScaledOrtho());  // a reflection is orthogonal too
  AcGeMatrix3d shear;
  shear.entry[0][1] = 0.5;
  EXPECT_FALSE(shear.isScaledOrtho());
  AcGeMatrix3d flat = AcGeScale3d(1, 0, 1);
  EXPECT_FALSE(flat.isScaledOrtho());
  EXPECT_TRUE(flat.isSingular());
  AcGeMatrix3d m;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) m.entry[i][j] = i * 3 - j * 2;
  m.setTranslation(V3(100, -200, 300));
  EXPECT_DOUBLE_EQ(m.norm(), 6.0);  // translation is not part of it

  // Equality: columns as vectors (equalVector), translation as a point (equalPoint).
  AcGeMatrix3d a = AcGeMatrix3d::translation(V3(1000, 0, 0));
  AcGeMatrix3d b = AcGeMatrix3d::translation(V3(1000 + 5e-11, 0, 0));
  EXPECT_TRUE(a == b);
  b.entry[0][0] += 5e-12;
  EXPECT_FALSE(a == b);
  EXPECT_FALSE(a == AcGeMatrix3d::translation(V3(1000 + 5e-10, 0, 0)));

  // Scale factors out of a matrix and back.
  AcGeMatrix3d scaled = r * AcGeMatrix3d(AcGeScale3d(2, 3, 4));
  AcGeScale3d sc;
  sc.removeScale(scaled);
  EXPECT_TRUE(sc.isEqualTo(AcGeScale3d(2, 3, 4), AcGeTol()) || (sc.sx - 2 < 1e-12 && sc.sz - 4 < 1e-12));
  EXPECT_TRUE(scaled.isUniScaledOrtho());
  EXPECT_TRUE(AcGeScale3d(2, 4, 0.5).inverse().isEqualTo(AcGeScale3d(0.5, 0.25, 2)));
  EXPECT_TRUE(AcGeScale3d(2, 0, 1).inverse().isEqualTo(AcGeScale3d(2, 0, 1)));
  EXPECT_FALSE(AcGeScale3d(2, 0, 1).isProperScale());
}

TEST(BoundBlock3d, BoxesGrowContainAndSeparate) {
  AcGeBoundBlock3d empty;
  empty.extend(P3(5, 6, 7));
  P3 lo, hi;
  empty.getMinMaxPoints(lo, hi);
  EXPECT_TRUE(lo.isEqualTo(P3(0, 0, 0)));  // the default block holds the origin
  EXPECT_TRUE(hi.isEqualTo(P3(5, 6, 7)));

  AcGeBoundBlock3d box(P3(10, 0, 5), P3(0, 10, 0));
  box.getMinMaxPoints(lo, hi);
  EXPECT_TRUE(lo.isEqualTo(P3(0, 0, 0)) && hi.isEqualTo(P3(10, 10, 5)));
  EXPECT_TRUE(box.contains(P3(10, 10, 5)));
  EXPECT_TRUE(box.contains(P3(10 + 5e-11, 5, 2)));
  EXPECT_FALSE(box.contains(P3(10 + 5e-10, 5, 2)));
  box.extend(P3(-2, 3, 3));
  box.getMinMaxPoints(lo, hi);
  EXPECT_TRUE(lo.isEqualTo(P3(-2, 0, 0)));
  box.swell(1.0);
  box.getMinMaxPoints(lo, hi);
  EXPECT_TRUE(lo.isEqualTo(P3(-3, -1, -1)) && hi.isEqualTo(P3(11, 11, 6)));
  box.swell(-100.0);
  box.getMinMaxPoints(lo, hi);
  EXPECT_TRUE(lo.isEqualTo(hi));  // swelled in to a point at its centre
  EXPECT_TRUE(lo.isEqualTo(P3(4, 5, 2.5)));

  AcGeBoundBlock3d a(P3(0, 0, 0), P3(1, 1, 1));
  EXPECT_FALSE(a.isDisjoint(AcGeBoundBlock3d(P3(1, 0, 0), P3(2, 1, 1))));  // touching faces
  EXPECT_TRUE(a.isDisjoint(AcGeBoundBlock3d(P3(1.001, 0, 0), P3(2, 1, 1))));
  EXPECT_FALSE(a.isDisjoint(AcGeBoundBlock3d(P3(0.2, 0.2, 0.2), P3(0.3, 0.3, 0.3))));  // inside
  EXPECT_TRUE(a.isOn(P3(0.5, 0.5, 0.5)));
}

TEST(BoundBlock3d, ParallelepipedsAndTransforms) {
  // A cube turned 45 degrees about Z: as a box it grows, as a block it does not.
  AcGeMatrix3d turn = AcGeMatrix3d::rotation(std::numbers::pi / 4, V3(0, 0, 1));
  AcGeBoundBlock3d box(P3(0, 0, 0), P3(1, 1, 1));
  AcGeBoundBlock3d block = box;
  block.setToBox(false);
  box.transformBy(turn);
  block.transformBy(turn);
  EXPECT_TRUE(box.isBox());
  EXPECT_FALSE(block.isBox());
  P3 lo, hi;
  box.getMinMaxPoints(lo, hi);
  EXPECT_TRUE(lo.isEqualTo(P3(-std::sqrt(0.5), 0, 0), AcGeTol()) && hi.isEqualTo(P3(std::sqrt(0.5), std::sqrt(2.0), 1), AcGeTol()));
  // The box's corner region is not part of the turned block.
  P3 corner(-0.6, 0.05, 0.5);
  EXPECT_TRUE(box.contains(corner));
  EXPECT_FALSE(block.contains(corner));
  EXPECT_TRUE(block.contains(turn * P3(0.99, 0.99, 0.5)));
  // Separated only along a diagonal: the face normals of the turned block see the gap.
  AcGeBoundBlock3d near(P3(-0.7, 0.0, 0.0), P3(-0.6, 0.05, 1.0));
  EXPECT_FALSE(box.isDisjoint(near));
  EXPECT_TRUE(block.isDisjoint(near));
  // Extending a block follows its own directions.
  block.extend(turn * P3(2, 0.5, 0.5));
  V3 s1, s2, s3;
  P3 base;
  block.get(base, s1, s2, s3);
  EXPECT_NEAR(s1.length(), 2.0, 1e-12);
  EXPECT_NEAR(s2.length(), 1.0, 1e-12);
  EXPECT_TRUE(block.contains(turn * P3(1.9, 0.1, 0.1)));
  // Swelling a block moves its faces out along their normals.
  block.swell(0.5);
  block.get(base, s1, s2, s3);
  EXPECT_NEAR(s1.length(), 3.0, 1e-12);
  EXPECT_NEAR(s3.length(), 2.0, 1e-12);
  EXPECT_TRUE(block.contains(turn * P3(-0.49, -0.49, -0.49)));
  EXPECT_FALSE(block.contains(turn * P3(-0.51, 0, 0)));
  std::unique_ptr<AcGeEntity3d> copy(block.copy());
  EXPECT_TRUE(copy->isEqualTo(block));
  EXPECT_FALSE(copy->isEqualTo(box));
}

}  // namespace
