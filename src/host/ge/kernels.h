// The numeric kernels of the curve classes, on plain numbers: B-spline
// basis functions and NURBS evaluation, knot insertion and degree
// elevation, line and circle intersections in the plane, adaptive arc
// length. The curve classes call these; each is tested on its own.
#pragma once

#include <functional>
#include <vector>

namespace zepk::ge {

// A point in homogeneous form: (w x, w y, w z, w).
struct HPoint {
  double x = 0, y = 0, z = 0, w = 1;
  HPoint operator+(const HPoint& o) const { return {x + o.x, y + o.y, z + o.z, w + o.w}; }
  HPoint operator-(const HPoint& o) const { return {x - o.x, y - o.y, z - o.z, w - o.w}; }
  HPoint operator*(double s) const { return {x * s, y * s, z * s, w * s}; }
};

// ---- B-splines. p is the degree, U the knots, n + 1 control points with
// U.size() == n + p + 2.

// The span index i with U[i] <= u < U[i+1], clamped to [p, n]; u at the
// end of the domain falls in the last non-empty span.
int findSpan(int n, int p, double u, const std::vector<double>& U);
// The p + 1 basis functions that are not zero on the span.
void basisFuns(int span, double u, int p, const std::vector<double>& U, double* N);
// Basis functions and their derivatives up to order nd: ders[k][j] is the
// k-th derivative of N(span - p + j).
void dersBasisFuns(int span, double u, int p, int nd, const std::vector<double>& U,
                   std::vector<std::vector<double>>& ders);

// The point and its derivatives up to order nd (out[0] the point, out[k]
// the k-th derivative) of a rational curve given by homogeneous control
// points. Each out entry is (x, y, z) in its first three members.
void nurbsDerivs(int p, const std::vector<double>& U, const std::vector<HPoint>& Pw, double u, int nd,
                 std::vector<HPoint>& out);

// Inserts the knot u r times (Boehm); the curve does not change.
void insertKnot(int p, std::vector<double>& U, std::vector<HPoint>& Pw, double u, int r);
// Raises the degree by t; the curve does not change. Interior knots keep
// their continuity (each multiplicity grows by t).
void elevateDegree(int& p, std::vector<double>& U, std::vector<HPoint>& Pw, int t);
// Removes the interior knot u up to num times where that does not move the
// curve by more than tol; returns how many times it was removed.
int removeKnot(int p, std::vector<double>& U, std::vector<HPoint>& Pw, double u, int num, double tol);

// Makes the knot vector clamped (first and last knots of multiplicity
// p + 1) by inserting knots at the ends of the domain and dropping what
// lies outside it.
void clampEnds(int p, std::vector<double>& U, std::vector<HPoint>& Pw);
// The part of the curve over [a, b] (inside the domain), clamped.
void clampTo(int p, std::vector<double>& U, std::vector<HPoint>& Pw, double a, double b);

// The cubic (or lower degree) curve through the points, parameters by
// chord length and averaged knots; with end tangents when given (non-null,
// any length: they are scaled to the chord-length parameterisation).
// False when the points are fewer than two or repeat consecutively.
bool interpolate(const std::vector<HPoint>& pts, int degree, const HPoint* startTan, const HPoint* endTan, int& p,
                 std::vector<double>& U, std::vector<HPoint>& Pw);

// ---- Plane intersections.

// Parameters t (points p + t d) where the line meets the circle, counted
// with tangency: 0, 1 (tangent within tol of the radius) or 2, in
// increasing order.
int intersectLineCircle(double px, double py, double dx, double dy, double cx, double cy, double r, double tol,
                        double t[2]);
// Points where two circles meet: 0, 1 (tangent within tol) or 2; -1 for
// the same circle.
int intersectCircles(double c1x, double c1y, double r1, double c2x, double c2y, double r2, double tol,
                     double out[4]);

// ---- Measures.

// The integral of f over [a, b], adaptive Gauss-Kronrod to a relative
// tolerance, or to the absolute one when that is larger.
double integrate(const std::function<double(double)>& f, double a, double b, double relTol = 1e-12,
                 double absTol = 0.0);

}  // namespace zepk::ge
