// Tying a hatch to the curves that bound it.
#pragma once

#include <vector>

#include "drawing/create.h"
#include "host/dbid.h"

namespace zepk::drawing {

// Whether two closed outlines (points with bulges, x and y only) are the
// same shape within tol: every point sampled along each lies within tol of
// the other. Where each starts and which way it runs do not matter.
bool sameOutline(const PolylineData& a, const PolylineData& b, double tol);

// The distance from (x, y) to the outline (closed or open as it says).
double distanceToOutline(const PolylineData& outline, double x, double y);

// Each loop of the hatch whose shape a closed curve of the list has gets
// that curve as its source object; the hatch becomes associative and each
// source curve gets it as a persistent reactor. The number of loops tied;
// -1 when the hatch cannot be opened for write.
int associateHatch(AcDbObjectId hatch, const std::vector<AcDbObjectId>& curves);

// HATCHASSOC: a hatch, then closed curves.
void cmdHatchAssoc();

}  // namespace zepk::drawing
