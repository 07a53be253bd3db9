// Offsets of plane polylines with bulges, on plain data: each segment moved
// sideways (lines parallel, arcs concentric), neighbours joined where their
// extensions meet (or by an arc about the vertex where they cannot meet),
// and the loops that crossing makes, which lie nearer the polyline than
// the distance, cut away.
#pragma once

#include <vector>

namespace zepk::ge {

struct BulgeVertex {
  double x = 0, y = 0, bulge = 0;
};

struct BulgePolyline {
  std::vector<BulgeVertex> verts;
  bool closed = false;
};

// The offsets of the polyline by dist: to the right of the direction of
// travel for a positive distance, to the left for a negative one. Arcs
// that shrink to nothing drop out. Empty when nothing is left (a polyline
// of no length, or an inside offset wider than the figure).
std::vector<BulgePolyline> offsetPolyline(const BulgePolyline& pl, double dist);

}  // namespace zepk::ge
