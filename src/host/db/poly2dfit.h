// Fitting of old-style 2D polylines on plain data: the curve fit (a pair
// of tangent arcs per segment through every vertex) and the spline fit (a
// uniform quadratic or cubic B-spline on the vertices as its frame,
// sampled into straight segments). AcDb2dPolyline turns the results into
// vertices; nothing here knows a drawing.
#pragma once

#include <vector>

namespace zepk::db::fit {

struct Pt {
  double x = 0.0, y = 0.0;
};

// ---- curve fit

// The unit tangent direction at each vertex: the tangent of the circle
// through the vertex and its two neighbours (cyclic neighbours when closed).
// At the ends of an open polyline, the tangent at the end point of the
// circle through the first (last) three vertices; with two vertices, the
// chord. Repeated points are passed over when looking for neighbours.
std::vector<Pt> fitTangents(const std::vector<Pt>& pts, bool closed);

// One segment of the curve fit: two arcs from a to b, tangent to ta at a,
// to tb at b, and to each other at the joint. The bulges are those of the
// arcs from a to joint and from joint to b; jointTangent is the direction
// at the joint.
struct Biarc {
  Pt joint;
  double bulge1 = 0.0, bulge2 = 0.0;
  Pt jointTangent;
};
Biarc biarc(Pt a, Pt ta, Pt b, Pt tb);

// The bulge of the arc from a to b that leaves a in direction t.
double bulgeFromTangent(Pt a, Pt t, Pt b);

// The whole curve fit: for each segment (n-1 open, n closed) the biarc.
struct CurveFit {
  std::vector<Pt> tangents;  // one per vertex
  std::vector<Biarc> arcs;   // one per segment
};
CurveFit curveFit(const std::vector<Pt>& pts, bool closed, const std::vector<Pt>* fixedTangents = nullptr);

// ---- spline fit

// A uniform B-spline of degree p on the control points: clamped at the
// ends when open (knots p+1 times 0, 1, 2, ..., p+1 times n-p), periodic
// when closed (the frame wraps around, knots uniform). A frame shorter than
// the degree asks lowers the degree to what it can carry.
class UniformBSpline {
 public:
  UniformBSpline(std::vector<Pt> ctrl, int degree, bool closed);
  int degree() const { return degree_; }
  bool closed() const { return closed_; }
  // The parameter range: [0, n-p] open, [0, n) closed.
  double endParam() const;
  Pt at(double u) const;
  // The knot vector of the open form (empty when closed); for a closed
  // spline, the knots of the unwrapped form with the control points
  // wrapped (n+p control points, knots -p .. n+p), as unwrappedCtrl gives.
  std::vector<double> knots() const;
  std::vector<Pt> unwrappedCtrl() const;

 private:
  std::vector<Pt> ctrl_;
  int degree_;
  bool closed_;
};

// The fit points: segsPerSpan points per edge of the frame (n-1 edges
// open, n closed), spaced evenly in the spline's parameter. Open: from the
// first control point to the last, both included (segsPerSpan * (n-1) + 1
// points); closed: segsPerSpan * n points, the closing one left out.
std::vector<Pt> splineFitPoints(const std::vector<Pt>& frame, int degree, bool closed, int segsPerSpan);

}  // namespace zepk::db::fit
