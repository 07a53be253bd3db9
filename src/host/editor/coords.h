// Coordinate systems of points: the world, the current user system, the
// display (the user system in this headless host) and the system of an
// entity, whose X axis follows from its normal by the arbitrary-axis rule.
#pragma once

#include "host/ads.h"

namespace zepk::editor {

// An origin and three unit axes, in world coordinates.
struct CoordSys {
  double o[3] = {0, 0, 0};
  double x[3] = {1, 0, 0};
  double y[3] = {0, 1, 0};
  double z[3] = {0, 0, 1};
};

// The system of an entity with that normal (the normal need not be unit);
// false for a zero normal.
bool normalCs(const double normal[3], CoordSys* out);
// The current user system (UCSORG, UCSXDIR, UCSYDIR).
CoordSys currentUcs();
// The system a trans argument names: RTSHORT 0 (world), 1 or 2 (the
// current user system), an RTENAME (the entity's system, from its normal)
// or a point (the system of that normal).
bool coordSysOf(const resbuf* rb, CoordSys* out);
// The point (or, with disp, the displacement) from one system to another.
void transPoint(const double p[3], const CoordSys& from, const CoordSys& to, bool disp, double out[3]);

}  // namespace zepk::editor
