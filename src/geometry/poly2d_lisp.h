// LISP functions on old-style 2D polylines.
#pragma once

#include <string>

#include "host/dbid.h"

namespace zepk::geometry {

// The 2D polyline standing for the curve: a 2D polyline is itself; any
// other curve the kernel models as a polyline gets a new one beside it
// (same vertices, bulges, widths, elevation, closed flag, properties and
// extended data), and unless kept the source is erased. Null when none can
// be made.
AcDbObjectId curveTo2dPoly(AcDbObjectId curve, bool keep);

// (ZEPK-Poly->2dPoly entity-or-selection [keep]): each curve becomes a 2D
// polyline of the old style with the same vertices, bulges, widths,
// elevation, closed flag, properties and extended data.
int lispPolyTo2dPoly();

}  // namespace zepk::geometry
