// Plain-data geometry of pictures: the filled outline of a polyline's wide
// segments, and arcs of bulges as points.
#pragma once

#include <vector>

namespace zepk::render {

struct Pt {
  double x = 0, y = 0;
};

struct WideVertex {
  Pt p;
  double bulge = 0;
  double startWidth = 0, endWidth = 0;  // of the segment that starts here
};

// The points along the segment from a to b with that bulge, a first and b
// last, no chord farther than tol from the arc.
std::vector<Pt> bulgePoints(Pt a, Pt b, double bulge, double tol);

// One closed outline per segment of non-zero width, widths tapering along
// it; where two wide segments meet with the same width their edges are
// mitred so that the band has no notch. Segments of zero width at both
// ends give an empty outline (drawn as lines by the caller).
std::vector<std::vector<Pt>> wideOutlines(const std::vector<WideVertex>& v, bool closed, double tol);

}  // namespace zepk::render
