// Plane geometry that needs no drawing: polar, angle, distance, inters.
#include <cmath>

#include "host/lisp/interp.h"

namespace zepk::lisp {

namespace {

constexpr double kTwoPi = 6.28318530717958647692;

Value fnPolar(Interp& in, ArgSpan a) {
  checkArgc(in, a, 3, 3);
  double p[3];
  int dim;
  argPoint(in, a[0], p, &dim);
  double ang = argNum(in, a[1]);
  double d = argNum(in, a[2]);
  p[0] += d * std::cos(ang);
  p[1] += d * std::sin(ang);
  return pointValue(p, dim);
}

// The angle of the line from the first point to the second, projected on the
// XY plane, in radians from 0 to 2 pi.
Value fnAngle(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  double p[3], q[3];
  argPoint(in, a[0], p);
  argPoint(in, a[1], q);
  double r = std::atan2(q[1] - p[1], q[0] - p[0]);
  if (r < 0) r += kTwoPi;
  return Value::real(r);
}

// 3D distance when both points are 3D, else in the XY plane.
Value fnDistance(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  double p[3], q[3];
  int dp, dq;
  argPoint(in, a[0], p, &dp);
  argPoint(in, a[1], q, &dq);
  double dx = q[0] - p[0], dy = q[1] - p[1], dz = (dp == 3 && dq == 3) ? q[2] - p[2] : 0.0;
  return Value::real(std::sqrt(dx * dx + dy * dy + dz * dz));
}

// (inters p1 p2 p3 p4 [onseg]): where line p1p2 meets line p3p4, or nil.
// With onseg nil the lines are infinite; otherwise the point must lie on
// both segments. Points are 2D unless all four are 3D; 3D lines that do not
// meet give nil.
Value fnInters(Interp& in, ArgSpan a) {
  checkArgc(in, a, 4, 5);
  double p[4][3];
  int dims[4];
  for (int i = 0; i < 4; ++i) argPoint(in, a[i], p[i], &dims[i]);
  bool onSeg = a.size < 5 || a[4].truthy();
  bool three = dims[0] == 3 && dims[1] == 3 && dims[2] == 3 && dims[3] == 3;
  double d1[3], d2[3], w[3];
  for (int k = 0; k < 3; ++k) {
    d1[k] = p[1][k] - p[0][k];
    d2[k] = p[3][k] - p[2][k];
    w[k] = p[2][k] - p[0][k];
  }
  if (!three) d1[2] = d2[2] = w[2] = 0;
  // Solve p0 + t d1 = p2 + s d2 in the least-squares sense.
  double a11 = d1[0] * d1[0] + d1[1] * d1[1] + d1[2] * d1[2];
  double a12 = -(d1[0] * d2[0] + d1[1] * d2[1] + d1[2] * d2[2]);
  double a22 = d2[0] * d2[0] + d2[1] * d2[1] + d2[2] * d2[2];
  double b1 = d1[0] * w[0] + d1[1] * w[1] + d1[2] * w[2];
  double b2 = -(d2[0] * w[0] + d2[1] * w[1] + d2[2] * w[2]);
  double det = a11 * a22 - a12 * a12;
  double scale = a11 * a22;
  if (scale == 0 || std::fabs(det) <= 1e-12 * scale) return Value();
  double t = (b1 * a22 - a12 * b2) / det;
  double s = (a11 * b2 - a12 * b1) / det;
  double r[3], q[3];
  for (int k = 0; k < 3; ++k) {
    r[k] = p[0][k] + t * d1[k];
    q[k] = p[2][k] + s * d2[k];
  }
  if (three) {
    double gap = std::sqrt((r[0] - q[0]) * (r[0] - q[0]) + (r[1] - q[1]) * (r[1] - q[1]) + (r[2] - q[2]) * (r[2] - q[2]));
    double size = std::sqrt(a11) + std::sqrt(a22);
    if (gap > 1e-10 * (1 + size)) return Value();
  }
  const double eps = 1e-10;
  if (onSeg && (t < -eps || t > 1 + eps || s < -eps || s > 1 + eps)) return Value();
  return pointValue(r, three ? 3 : 2);
}

}  // namespace

void registerGeometry(Interp& in) {
  in.defSubr("polar", fnPolar);
  in.defSubr("angle", fnAngle);
  in.defSubr("distance", fnDistance);
  in.defSubr("inters", fnInters);
}

}  // namespace zepk::lisp
