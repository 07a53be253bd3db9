// LISP functions on old-style 2D polylines.
#pragma once

namespace zepk::geometry {

// (ZEPK-Poly->2dPoly entity-or-selection [keep]): each curve becomes a 2D
// polyline of the old style with the same vertices, bulges, widths,
// elevation, closed flag, properties and extended data.
int lispPolyTo2dPoly();

}  // namespace zepk::geometry
