// The geometric tests behind selection, on plain data: an entity seen from
// above as paths of straight and arc segments (bulges, as lightweight
// polylines carry them), and windows, polygons and fences as points.
//
//   inside a window    the shape's extents lie inside the window
//   crossing a window  inside, or some segment meets the window, or the
//                      window lies inside a filled shape (a solid, a hatch)
//   inside a polygon   every vertex inside and no segment meets an edge
//   crossing a polygon inside, or a segment meets an edge, or the polygon
//                      lies inside a filled shape
//   fence              some segment of the fence meets the shape
//
// Touching counts as meeting. Nothing here knows of a drawing.
#pragma once

#include <cstddef>
#include <vector>

namespace zepk::editor::selgeom {

struct Pt {
  double x = 0, y = 0;
};

// A run of vertices. bulges[i] (when given; else 0) bends the segment from
// vertex i to the next: the tangent of a quarter of its included angle,
// positive counter-clockwise. A closed path has a segment back to its
// first vertex. One vertex alone is a point.
struct Path {
  std::vector<Pt> pts;
  std::vector<double> bulges;
  bool closed = false;
  double bulge(size_t i) const { return i < bulges.size() ? bulges[i] : 0.0; }
};

struct Shape {
  std::vector<Path> paths;
  // The closed paths bound an area that counts as part of the shape (an
  // even-odd fill: a path inside another makes a hole).
  bool filled = false;
};

struct Box {
  Pt lo{1e300, 1e300}, hi{-1e300, -1e300};
  bool empty() const { return lo.x > hi.x; }
  void add(Pt p);
};

// The box of a window given by any two opposite corners.
Box windowOf(Pt a, Pt b);
// The extents of the shape, arcs included exactly.
Box extents(const Shape& s);

bool insideWindow(const Shape& s, const Box& window);
bool crossesWindow(const Shape& s, const Box& window);
bool insidePolygon(const Shape& s, const std::vector<Pt>& polygon);
bool crossesPolygon(const Shape& s, const std::vector<Pt>& polygon);
bool crossesFence(const Shape& s, const std::vector<Pt>& fence);
// The distance from the point to the shape; 0 inside a filled shape.
double distanceTo(const Shape& s, Pt p);

// Even-odd test of a point against a polygon's outline.
bool pointInPolygon(Pt p, const std::vector<Pt>& polygon);

}  // namespace zepk::editor::selgeom
