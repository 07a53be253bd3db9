// Areas bounded by loops of line and arc edges in the plane, and their
// Boolean operations kept exact: arcs stay arcs. The loops of both operands
// are split where they meet, each piece is kept or dropped by whether its
// middle lies inside the other operand (pieces shared by both boundaries by
// their direction), and the kept pieces are joined into loops again.
#pragma once

#include <functional>
#include <vector>

namespace zepk::ge {

// A line from a to b, or an arc about c of radius r from a to b sweeping
// `sweep` radians (positive counter-clockwise).
struct Edge2d {
  bool arc = false;
  double ax = 0, ay = 0, bx = 0, by = 0;
  double cx = 0, cy = 0, r = 0, sweep = 0;

  static Edge2d line(double ax, double ay, double bx, double by);
  // The arc about (cx, cy) from angle a0 sweeping `sweep`.
  static Edge2d arcOf(double cx, double cy, double r, double a0, double sweep);
  void pointAt(double f, double& x, double& y) const;  // f in [0, 1]
  void tangentAt(double f, double& x, double& y) const;
  double length() const;
  Edge2d reversed() const;
};

typedef std::vector<Edge2d> Loop2d;

// Signed area (positive counter-clockwise) and length of a closed loop.
double loopArea(const Loop2d& loop);
double loopLength(const Loop2d& loop);
// The integral over the area the loops bound (holes clockwise) of f, where
// g is given with dG/dy... as the line integral of (0, g(x, y)) around the
// loops: the area integral of dg/dx.
double boundaryIntegral(const std::vector<Loop2d>& loops, const std::function<double(double, double)>& g);

// Orients the loops: those inside an even number of others counter-
// clockwise (outer boundaries), the others clockwise (holes).
void orientLoops(std::vector<Loop2d>& loops);
// Winding of the loops about the point: above 0 inside.
int winding(const std::vector<Loop2d>& loops, double x, double y);

enum class BoolOp { Unite, Intersect, Subtract };

// The loops of the result of a op b (both oriented as orientLoops does);
// outer boundaries counter-clockwise, holes clockwise.
std::vector<Loop2d> booleanLoops(const std::vector<Loop2d>& a, const std::vector<Loop2d>& b, BoolOp op,
                                 double tol = 1e-9);

}  // namespace zepk::ge
