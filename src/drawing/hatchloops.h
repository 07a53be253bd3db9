// The loops of a hatch as polylines, and polylines as hatch loops.
#pragma once

#include <vector>

#include "drawing/create.h"
#include "host/dbhatch.h"

namespace zepk::drawing {

// Each loop of the hatch as a closed polyline in world coordinates:
// polyline loops as they are; edge loops with lines and circular arcs
// exact (an arc becomes a bulge), elliptical arcs and splines by points
// along them.
std::vector<PolylineData> hatchLoops(const AcDbHatch& hatch);

}  // namespace zepk::drawing
