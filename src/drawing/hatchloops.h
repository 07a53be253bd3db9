// The loops of a hatch as polylines, and polylines as hatch loops.
#pragma once

#include <vector>

#include "drawing/create.h"
#include "host/dbhatch.h"

namespace zepk::drawing {

// Each loop of the hatch as a closed polyline in the hatch's own plane
// (x and y of its coordinate system, z its elevation; world coordinates
// for a hatch seen from above):
// polyline loops as they are; edge loops with lines and circular arcs
// exact (an arc becomes a bulge), elliptical arcs and splines by points
// along them.
std::vector<PolylineData> hatchLoops(const AcDbHatch& hatch);

}  // namespace zepk::drawing
