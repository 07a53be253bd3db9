// The curve kernel over drawing curves: sampling a curve into points,
// turning any curve into a lightweight polyline (exactly where it can be,
// by arcs fitted to samples where it cannot), a region's loops into closed
// polylines, reversing a curve and moving a closed polyline's start. The
// entities made here are new and not in a drawing: the caller appends them
// or deletes them.
#pragma once

#include <memory>
#include <vector>

#include "geometry/kernel.h"
#include "host/dbents.h"
#include "host/dbpl.h"
#include "host/dbregion.h"
#include "host/gecomp2d.h"
#include "host/gecurv3d.h"

namespace zepk::geometry {

// A lightweight polyline as plain data, and plain data written into one
// (its vertices, closed flag and elevation; other properties stay).
LwPoly toLwPoly(const AcDbPolyline& pl);
void assignLwPoly(AcDbPolyline& pl, const LwPoly& poly);

// The curve's geometry, or null when it has none the kernel can use.
std::unique_ptr<AcGeCurve3d> dbCurveToGeCurve(const AcDbCurve* curve);

// A polyline as a composite curve in its own plane (the coordinates of its
// vertices): one piece per segment, a line segment or a circular arc, so
// that the composite's parameters are the polyline's. Null for fewer than
// two vertices.
std::unique_ptr<AcGeCompositeCurve2d> lwPolyToCurve2d(const LwPoly& poly);

// A new database curve (not in a drawing, without properties) of the
// geometry curve's shape: a line segment as a line, a circular arc as an
// arc or a whole circle as a circle, an elliptical arc as an ellipse, a
// NURBS curve as a spline, and a composite of line segments and circular
// arcs that lies in a plane as a lightweight polyline in that plane
// (closed when it comes back to its start). Null for any other curve.
// A curve in the plane is taken in the XY plane.
AcDbCurve* geCurveToDbCurve(const AcGeCurve3d* curve);
AcDbCurve* geCurveToDbCurve(const AcGeCurve2d* curve);

// Points along the curve no farther apart from it than the chord tolerance,
// without points that repeat the one before within 1e-6; a closed curve's
// closing point is left out when dropClosingPoint is set. A curve shorter
// than 1e-8 gives its start and end points. When the curve has no geometry
// "\n创建几何曲线失败" is printed and the list is empty.
std::vector<AcGePoint3d> sampleCurve(const AcDbCurve* curve, double chordTolerance, bool dropClosingPoint);
// count + 1 points at equal steps of the curve's parameter (the last left
// out of a closed curve when dropClosingPoint is set).
std::vector<AcGePoint3d> sampleCurveByCount(const AcDbCurve* curve, int count, bool dropClosingPoint);

// A new polyline of the same shape: exact for lines, arcs, circles and
// polylines of every kind that have straight and circular segments; by
// arcs fitted to samples (chord tolerance 0.1) for ellipses, splines and
// fitted 2D polylines. It takes the source's properties and extended data.
// Null for a curve of any other kind.
AcDbPolyline* curveToLwPoly(const AcDbCurve* curve);
// A new polyline through the curve's samples (half the chord tolerance
// when withArcs is set): straight between them, or with an arc through
// each three of them. Null when the curve gives no samples.
AcDbPolyline* sampledCurveToLwPoly(const AcDbCurve* curve, bool withArcs, double chordTolerance);

// Vertices and bulges of a line-and-arc curve with each arc cut into
// segmentsPerArc pieces (see polySegmentPoints): polylines of both kinds,
// arcs and circles. False for other kinds.
bool curvePolyPoints(const AcDbCurve* curve, int segmentsPerArc, PolyPoints& out);

// The region's loops as new closed polylines with the region's properties.
std::vector<AcDbPolyline*> regionToLwPolys(const AcDbRegion* region);

// Runs the curve (open for write) the other way with its shape kept: lines,
// polylines of all kinds and splines; eNotApplicable for other kinds.
Acad::ErrorStatus reverseCurve(AcDbCurve* curve);

// Rebuilds a closed polyline (open for write) to start at the vertex of
// the index; eNotApplicable for an open one, eInvalidIndex outside it.
Acad::ErrorStatus rotateClosedPolyStart(AcDbPolyline* poly, unsigned int index);

}  // namespace zepk::geometry
