// The lines of a hatch pattern inside its boundary. Plain data: loops are
// closed polygons, inside is by the even-odd rule (islands are holes).
#pragma once

#include <cstddef>
#include <vector>

#include "host/render/outline.h"

namespace zepk::render {

// One line family of a pattern, as a drawing holds it (already turned by
// the hatch's angle and scaled): lines through base at angle, the next one
// at base + offset, each dashed by dashes (+ dash, - gap, 0 dot; empty
// solid) from its own base point.
struct PatternFamily {
  double angle = 0;
  Pt base, offset;
  std::vector<double> dashes;
};

struct Segment {
  Pt a, b;  // a == b: a dot
};

// The pieces of the family's lines inside the loops. Stops (returns false)
// when the family would need more than maxSegments pieces, or more lines
// than that, so that a pattern too dense for its area cannot run away.
bool hatchSegments(const std::vector<std::vector<Pt>>& loops, const PatternFamily& family, size_t maxSegments,
                   std::vector<Segment>* out);

}  // namespace zepk::render
