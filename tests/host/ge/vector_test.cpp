// Tolerances, vectors and points.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "host/gegbl.h"
#include "host/gemat2d.h"
#include "host/gemat3d.h"
#include "host/gelin2d.h"
#include "host/gelineseg2d.h"
#include "host/geplane.h"

namespace {

constexpr double kPi = std::numbers::pi;

// Restores the process-wide tolerance after tests that change it.
class GlobalTol : public ::testing::Test {
 protected:
  void SetUp() override { saved_ = AcGeContext::gTol; }
  void TearDown() override { AcGeContext::gTol = saved_; }
  AcGeTol saved_;
};

TEST_F(GlobalTol, DefaultsAndEveryDefaultComparisonFollowsTheGlobal) {
  EXPECT_EQ(AcGeTol().equalPoint(), 1e-10);
  EXPECT_EQ(AcGeTol().equalVector(), 1e-12);
  AcGePoint3d a(1000.0, 2000.0, 0.0), b(1000.0, 2000.0005, 0.0);
  EXPECT_FALSE(a.isEqualTo(b));
  EXPECT_FALSE(a == b);
  AcGeVector3d u(1.0, 0.0, 0.0), v(1.0, 1e-5, 0.0);
  EXPECT_FALSE(u.isParallelTo(v));

  AcGeContext::gTol.setEqualPoint(0.001);
  AcGeContext::gTol.setEqualVector(1e-4);
  EXPECT_TRUE(a.isEqualTo(b));
  EXPECT_TRUE(a == b);
  EXPECT_TRUE(u.isParallelTo(v));
  EXPECT_TRUE(u.isCodirectionalTo(v));
  EXPECT_TRUE(AcGeLineSeg2d(AcGePoint2d(0, 0), AcGePoint2d(10, 0)).isOn(AcGePoint2d(5, 0.0009)));
  EXPECT_TRUE(AcGeVector3d(0.0, 0.0, 5e-5).isZeroLength());
  // A tiny vector is now "zero": it normalises to itself.
  EXPECT_EQ(AcGeVector3d(5e-5, 0.0, 0.0).normal().x, 5e-5);

  // An explicit tolerance wins over the global one.
  EXPECT_FALSE(a.isEqualTo(b, AcGeTol()));
}

TEST(Tolerance, BoundariesAreInclusive) {
  AcGeTol tol;
  tol.setEqualPoint(0.5);
  tol.setEqualVector(0.5);
  EXPECT_TRUE(AcGePoint3d(0, 0, 0).isEqualTo(AcGePoint3d(0.3, 0.4, 0), tol));  // distance exactly 0.5
  EXPECT_FALSE(AcGePoint3d(0, 0, 0).isEqualTo(AcGePoint3d(0.3, 0.41, 0), tol));
  EXPECT_TRUE(AcGeVector3d(1.5, 0, 0).isUnitLength(tol));
  EXPECT_FALSE(AcGeVector3d(1.51, 0, 0).isUnitLength(tol));
  // Point equality is by distance, not per coordinate.
  tol.setEqualPoint(1.0);
  EXPECT_FALSE(AcGePoint2d(0, 0).isEqualTo(AcGePoint2d(0.8, 0.8), tol));
}

TEST(Vector3d, AnglesAreUnsignedOrMeasuredAboutAReference) {
  AcGeVector3d x = AcGeVector3d::kXAxis, y = AcGeVector3d::kYAxis, z = AcGeVector3d::kZAxis;
  EXPECT_DOUBLE_EQ(x.angleTo(y), kPi / 2);
  EXPECT_DOUBLE_EQ(y.angleTo(x), kPi / 2);
  EXPECT_DOUBLE_EQ(x.angleTo(-x), kPi);
  EXPECT_EQ(x.angleTo(x * 7.0), 0.0);
  // Near 0 and pi the angle keeps its precision.
  EXPECT_NEAR(x.angleTo(AcGeVector3d(1.0, 1e-9, 0.0)), 1e-9, 1e-20);
  EXPECT_NEAR(x.angleTo(AcGeVector3d(-1.0, 1e-9, 0.0)), kPi - 1e-9, 1e-15);
  EXPECT_EQ(x.angleTo(AcGeVector3d()), 0.0);

  // Counter-clockwise about the reference, in [0, 2 pi).
  EXPECT_DOUBLE_EQ(x.angleTo(y, z), kPi / 2);
  EXPECT_DOUBLE_EQ(y.angleTo(x, z), 3 * kPi / 2);
  EXPECT_DOUBLE_EQ(x.angleTo(y, -z), 3 * kPi / 2);
  EXPECT_DOUBLE_EQ(x.angleTo(-x, z), kPi);
  EXPECT_EQ(x.angleTo(x, z), 0.0);
  AcGeVector3d a(1.0, 0.0, 0.0), b(std::cos(5.0), std::sin(5.0), 0.3);
  double ang = a.angleTo(b, z);
  EXPECT_NEAR(ang, 2 * kPi - a.angleTo(b), 1e-15);
  EXPECT_LT(ang, 2 * kPi);
}

TEST(Vector3d, PerpVectorFollowsTheArbitraryAxisRule) {
  // Normals close to Z (both |x| and |y| under 1/64) use world Y x N.
  AcGeVector3d nz(0.0, 0.0, 1.0);
  EXPECT_TRUE(nz.perpVector().isEqualTo(AcGeVector3d(1.0, 0.0, 0.0)));
  EXPECT_TRUE((-nz).perpVector().isEqualTo(AcGeVector3d(-1.0, 0.0, 0.0)));
  AcGeVector3d near(0.0156, 0.0156, 1.0);
  EXPECT_TRUE(near.perpVector().isEqualTo(AcGeVector3d::kYAxis.crossProduct(near).normal()));
  // Just past 1/64 (of the unit vector) the rule is world Z x N.
  AcGeVector3d edge(0.0157, 0.0, std::sqrt(1.0 - 0.0157 * 0.0157));
  EXPECT_TRUE(edge.perpVector().isEqualTo(AcGeVector3d::kYAxis));
  // The test is on the unit vector, not on the raw components.
  EXPECT_TRUE((edge * 100.0).perpVector().isEqualTo(AcGeVector3d::kYAxis));
  EXPECT_TRUE((near * 100.0).perpVector().isEqualTo(near.perpVector()));
  // Everything else: world Z x N, unit length, whatever the input's length.
  AcGeVector3d n(3.0, 4.0, 12.0);
  AcGeVector3d p = n.perpVector();
  EXPECT_TRUE(p.isUnitLength());
  EXPECT_TRUE(p.isPerpendicularTo(n));
  EXPECT_TRUE(p.isEqualTo(AcGeVector3d(-0.8, 0.6, 0.0)));
  EXPECT_TRUE(AcGeVector3d().perpVector().isZeroLength());
  // The plane-to-world matrix of a normal uses the same X axis.
  EXPECT_TRUE(AcGeMatrix3d::planeToWorld(n).getCsXAxis().isEqualTo(p));
}

TEST(Vector3d, NormalizeLeavesZeroVectorsAlone) {
  AcGeVector3d v(3.0, 0.0, 4.0);
  EXPECT_TRUE(v.normal().isEqualTo(AcGeVector3d(0.6, 0.0, 0.8)));
  AcGe::ErrorCondition flag = AcGe::kDegenerateGeometry;
  v.normalize(AcGeContext::gTol, flag);
  EXPECT_EQ(flag, AcGe::kOk);
  AcGeVector3d zero;
  zero.normalize(AcGeContext::gTol, flag);
  EXPECT_EQ(flag, AcGe::kDegenerateGeometry);
  EXPECT_EQ(zero.length(), 0.0);
  EXPECT_FALSE(std::isnan(zero.normal().x));
}

TEST(Vector3d, DirectionTestsAreScaleFreeAndRejectZeroVectors) {
  AcGeVector3d a(1.0, 2.0, 3.0);
  // Lengths do not matter: only the sine of the angle.
  EXPECT_TRUE(a.isParallelTo(a * 1e-6));
  EXPECT_TRUE(a.isParallelTo(a * -1e6));
  EXPECT_TRUE(a.isCodirectionalTo(a * 1e6));
  EXPECT_FALSE(a.isCodirectionalTo(-a));
  // A turn of 1e-11 radians is beyond the default 1e-12 and within 1e-10.
  AcGeVector3d b = a;
  b.rotateBy(1e-11, a.perpVector());
  EXPECT_FALSE(a.isParallelTo(b));
  AcGeTol loose;
  loose.setEqualVector(1e-10);
  EXPECT_TRUE(a.isParallelTo(b, loose));
  EXPECT_TRUE(a.isPerpendicularTo(a.perpVector() * 1e5));
  EXPECT_FALSE(a.isPerpendicularTo(a.perpVector() + a * 1e-9));
  // Zero vectors have no direction.
  AcGeVector3d zero;
  EXPECT_FALSE(zero.isParallelTo(a));
  EXPECT_FALSE(a.isParallelTo(zero));
  EXPECT_FALSE(zero.isPerpendicularTo(a));
  EXPECT_FALSE(zero.isCodirectionalTo(zero));
  AcGe::ErrorCondition flag = AcGe::kOk;
  EXPECT_FALSE(a.isPerpendicularTo(zero, AcGeContext::gTol, flag));
  EXPECT_EQ(flag, AcGe::kDegenerateGeometry);
  EXPECT_TRUE(zero.isZeroLength());
  EXPECT_TRUE(AcGeVector3d(0.0, 0.0, -1.0).isUnitLength());
}

TEST(Vector3d, RotateToTurnsOntoTheTargetDirection) {
  AcGeVector3d a(1.0, 2.0, 3.0), b(-4.0, 0.5, 1.0);
  AcGeMatrix3d m = a.rotateTo(b);
  EXPECT_TRUE((m * a).isCodirectionalTo(b));
  EXPECT_NEAR((m * a).length(), a.length(), 1e-12);
  EXPECT_TRUE(m.isUniScaledOrtho());
  EXPECT_NEAR(m.det(), 1.0, 1e-12);
  // The axis of the turn is a x b: it stays where it is.
  AcGeVector3d axis = a.crossProduct(b);
  EXPECT_TRUE((m * axis).isEqualTo(axis, AcGeTol()));
  EXPECT_TRUE(a.rotateTo(a * 3.0).isEqualTo(AcGeMatrix3d::kIdentity));
  EXPECT_TRUE(a.rotateTo(AcGeVector3d()).isEqualTo(AcGeMatrix3d::kIdentity));
  // Opposite vectors: a half turn about the given axis, or about perpVector.
  AcGeVector3d x = AcGeVector3d::kXAxis;
  AcGeMatrix3d h = x.rotateTo(-x, AcGeVector3d::kZAxis);
  EXPECT_TRUE((h * x).isEqualTo(-x));
  EXPECT_TRUE((h * AcGeVector3d::kZAxis).isEqualTo(AcGeVector3d::kZAxis));
  EXPECT_TRUE((h * AcGeVector3d::kYAxis).isEqualTo(-AcGeVector3d::kYAxis));
  AcGeMatrix3d d = a.rotateTo(-a * 2.0);
  EXPECT_TRUE((d * a).isCodirectionalTo(-a));
  EXPECT_TRUE((d * a.perpVector()).isEqualTo(a.perpVector(), AcGeTol()));
  // An axis with a part along the vector still gives a half turn.
  AcGeMatrix3d s = x.rotateTo(-x, AcGeVector3d(1.0, 0.0, 1.0));
  EXPECT_TRUE((s * x).isEqualTo(-x));
}

TEST(Vector3d, ProjectionsAndMirror) {
  AcGeVector3d v(1.0, 2.0, 3.0), n(0.0, 0.0, 2.0);
  EXPECT_TRUE(v.orthoProject(n).isEqualTo(AcGeVector3d(1.0, 2.0, 0.0)));
  // Along (1, 0, 1) onto the XY plane: drop z along the direction.
  EXPECT_TRUE(v.project(n, AcGeVector3d(1.0, 0.0, 1.0)).isEqualTo(AcGeVector3d(-2.0, 2.0, 0.0)));
  // A direction in the plane cannot project.
  AcGe::ErrorCondition flag = AcGe::kOk;
  EXPECT_TRUE(v.project(n, AcGeVector3d(1.0, 1.0, 0.0), AcGeContext::gTol, flag).isEqualTo(v));
  EXPECT_EQ(flag, AcGe::kDegenerateGeometry);
  EXPECT_TRUE(AcGeVector3d(v).mirror(n).isEqualTo(AcGeVector3d(1.0, 2.0, -3.0)));
  EXPECT_TRUE(AcGeVector3d(v).mirror(AcGeVector3d()).isEqualTo(v));
  // Vectors ignore translation.
  EXPECT_TRUE((AcGeMatrix3d::translation(AcGeVector3d(5, 5, 5)) * v).isEqualTo(v));
  // In a plane's own axes and back.
  AcGePlane plane(AcGePoint3d(100, 0, 0), AcGeVector3d(1, 1, 1));
  AcGeVector3d inPlane = v.orthoProject(plane.normal());
  EXPECT_TRUE(AcGeVector3d(plane, inPlane.convert2d(plane)).isEqualTo(inPlane));
}

TEST(Point3d, ArithmeticAndTransformations) {
  AcGePoint3d p(1.0, 2.0, 3.0);
  EXPECT_TRUE((p + AcGeVector3d(1, 1, 1) - p).isEqualTo(AcGeVector3d(1, 1, 1)));
  EXPECT_DOUBLE_EQ(p.distanceTo(AcGePoint3d(4, 6, 3)), 5.0);
  EXPECT_TRUE(AcGePoint3d(p).scaleBy(2.0, AcGePoint3d(1, 1, 1)).isEqualTo(AcGePoint3d(1, 3, 5)));
  EXPECT_TRUE(AcGePoint3d(p).rotateBy(kPi / 2, AcGeVector3d::kZAxis, AcGePoint3d(1, 0, 0))
                  .isEqualTo(AcGePoint3d(-1, 0, 3)));
  AcGePlane xy;
  EXPECT_TRUE(AcGePoint3d(p).mirror(xy).isEqualTo(AcGePoint3d(1, 2, -3)));
  EXPECT_TRUE(p.orthoProject(xy).isEqualTo(AcGePoint3d(1, 2, 0)));
  EXPECT_TRUE(p.project(xy, AcGeVector3d(1, 0, -1)).isEqualTo(AcGePoint3d(4, 2, 0)));
  EXPECT_TRUE(p.project(xy, AcGeVector3d(1, 0, 0)).isEqualTo(p));
  // A matrix with a projective row divides by w.
  AcGeMatrix3d persp;
  persp.entry[3][2] = 1.0;
  EXPECT_TRUE((persp * p).isEqualTo(AcGePoint3d(0.25, 0.5, 0.75)));
  // Plane coordinates and back.
  AcGePlane tilted(AcGePoint3d(10, 20, 30), AcGeVector3d(1, -2, 0.5));
  AcGePoint3d on = p.orthoProject(tilted);
  EXPECT_TRUE(AcGePoint3d(tilted, on.convert2d(tilted)).isEqualTo(on));
  EXPECT_TRUE(AcGePoint3d(tilted, p.convert2d(tilted)).isEqualTo(on));
}

TEST(Vector2d, AnglesPerpendicularsAndMirrors) {
  EXPECT_EQ(AcGeVector2d(1, 0).angle(), 0.0);
  EXPECT_DOUBLE_EQ(AcGeVector2d(0, -1).angle(), 1.5 * kPi);
  EXPECT_LT(AcGeVector2d(1, -1e-300).angle(), 2 * kPi);
  EXPECT_DOUBLE_EQ(AcGeVector2d(1, 0).angleTo(AcGeVector2d(0, -1)), kPi / 2);
  EXPECT_TRUE(AcGeVector2d(2, 1).perpVector().isEqualTo(AcGeVector2d(-1, 2)));
  EXPECT_TRUE(AcGeVector2d(1, 0).rotateBy(kPi / 2).isEqualTo(AcGeVector2d(0, 1)));
  EXPECT_TRUE(AcGeVector2d(1, 2).mirror(AcGeVector2d(1, 1)).isEqualTo(AcGeVector2d(2, 1)));
  EXPECT_TRUE(AcGeVector2d(1, 2).isParallelTo(AcGeVector2d(-2, -4)));
  EXPECT_FALSE(AcGeVector2d(1, 2).isCodirectionalTo(AcGeVector2d(-2, -4)));
  EXPECT_FALSE(AcGeVector2d().isParallelTo(AcGeVector2d(1, 0)));
  AcGePoint2d p(3, 1);
  EXPECT_TRUE(AcGePoint2d(p).mirror(AcGeLine2d(AcGePoint2d(0, 0), AcGePoint2d(1, 1))).isEqualTo(AcGePoint2d(1, 3)));
  EXPECT_TRUE(AcGePoint2d(p).rotateBy(kPi, AcGePoint2d(1, 1)).isEqualTo(AcGePoint2d(-1, 1)));
  EXPECT_TRUE((AcGeMatrix2d::rotation(kPi, AcGePoint2d(1, 1)) * p).isEqualTo(AcGePoint2d(-1, 1)));
}

}  // namespace
