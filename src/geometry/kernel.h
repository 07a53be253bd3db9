// The curve kernel on plain data: points, polyline vertices with bulges,
// the arc arithmetic on bulges, areas and turning sense, rounding, and the
// polyline operations (sampling, splitting arcs, reversing, moving a closed
// polyline's start, chaining loose edges into rings). Nothing here touches
// a drawing: the layer over drawing curves (curves.h) converts to and from
// these types.
#pragma once

#include <cstddef>
#include <vector>

namespace zepk::geometry {

struct Point {
  double x = 0.0, y = 0.0, z = 0.0;
};

// A vertex of a lightweight polyline. A width of -1 stands for the
// polyline's constant width; it is what the kernel gives a vertex it makes
// without one.
struct PolyVertex {
  Point pt;
  double bulge = 0.0;
  double startWidth = -1.0;
  double endWidth = -1.0;
};

// A lightweight polyline: the segment at vertex i runs to vertex i+1, and
// in a closed polyline the last one runs back to vertex 0. All vertices lie
// at the elevation; their own z is not used.
struct LwPoly {
  std::vector<PolyVertex> verts;
  bool closed = false;
  double elevation = 0.0;
  Point normal{0.0, 0.0, 1.0};

  size_t numSegments() const {
    if (verts.size() < 2) return 0;
    return closed ? verts.size() : verts.size() - 1;
  }
};

// The tolerances the kernel works with.
inline constexpr double kNoCenterBulge = 1e-5;   // a smaller bulge has no centre
inline constexpr double kStraightBulge = 1e-6;   // a smaller bulge is a straight segment
inline constexpr double kSamePoint = 1e-6;       // consecutive samples nearer are one
inline constexpr double kNoShapeLength = 1e-8;   // a shorter curve samples to its two ends
inline constexpr double kSameVertex = 0.001;     // consecutive vertices nearer are one (segment points)
inline constexpr double kChordTolerance = 0.1;   // default chord tolerance of sampling
inline constexpr double kAreaTolerance = 0.005;  // default tolerance of multi-curve area work

// The angle of the direction from a to b in the XY plane, in [0, 2pi).
double angleOf(const Point& a, const Point& b);
// The distance from a to b in the XY plane.
double planeDistance(const Point& a, const Point& b);

// The bulge of the arc through start, middle and end:
// tan(0.5 * (angle(middle, end) - angle(start, middle))).
double calBulge(const Point& start, const Point& middle, const Point& end);

// The centre of the arc from start to end with the bulge. A bulge under
// 1e-5 in magnitude has none: center is set to start and the answer is false.
bool getCenter(const Point& start, const Point& end, double bulge, Point& center);

// The point half way along the arc (the chord's middle for a bulge under
// 1e-6 in magnitude). z is that of the chord's middle.
Point getArcMidPoint(const Point& start, const Point& end, double bulge);

// Half the shoelace sum over a ring (closing from the last point to the
// first): positive counter-clockwise; fewer than three points give 0.
double signedArea(const std::vector<Point>& ring);
// True when the ring turns clockwise (its shoelace sum is below 0).
bool isClockwise(const std::vector<Point>& ring);
// True when a, b, c turn clockwise; collinear points do not.
bool isClockwise3(const Point& a, const Point& b, const Point& c);

// Rounds the value to the digits after the point (a negative count rounds
// to tens, hundreds, ...), halves nudged up to 0.5001 away from zero.
double roundTo(double value, int digits);

// The point of the polyline at the parameter (segment index plus the share
// of the segment; on an arc the share of its angle). Parameters outside the
// polyline are clamped to it.
Point pointAtParam(const LwPoly& poly, double param);

// Vertices and bulges of a polyline with each arc cut into k pieces
// (segmentsPerArc below 2 counts as 1). A vertex that the next one repeats
// within 0.001 is dropped with its segment; an open polyline ends with its
// end point and bulge 0. Points carry the polyline's elevation as z.
struct PolyPoints {
  std::vector<Point> points;
  std::vector<double> bulges;
};
PolyPoints polySegmentPoints(const LwPoly& poly, int segmentsPerArc);

// The polyline's points with each arc sampled so that no chord strays from
// it by more than the tolerance; the closing point of a closed polyline is
// left out when dropClosingPoint is set. Points that repeat the one before
// within 1e-6 are dropped. z is the elevation.
std::vector<Point> samplePoly(const LwPoly& poly, double chordTolerance, bool dropClosingPoint);

// The length of the polyline, arcs included.
double polyLength(const LwPoly& poly);

// The polyline run the other way: vertices in reverse order, each carrying
// the bulge of the segment that used to end at it, negated, and its widths
// swapped.
LwPoly reversed(const LwPoly& poly);

// A closed polyline rebuilt to start at the vertex of the index, shape
// unchanged. An open polyline, or an index outside it, is given back as it is.
LwPoly rotatedStart(const LwPoly& poly, size_t index);

// Loose edges (each a small polyline) chained into closed rings: edges that
// are closed already are rings of their own; the others are joined end to
// end, each time with the edge whose start or end lies nearest to the
// chain's end (turned round when its end is the nearer), until the chain
// comes back to its start or nothing is left. Each ring is closed and has
// no vertex that repeats its successor.
std::vector<LwPoly> chainEdges(std::vector<LwPoly> edges, double tolerance);

// The area a closed polyline encloses, arcs included, with the sign of its
// turning sense (positive counter-clockwise).
double polySignedArea(const LwPoly& poly);

// Vertex dumping: a vertex that repeats the next one within the tolerance
// goes (its bulge passes to the next one unless that has a bulge of its
// own); with dropCollinear also a vertex between two straight segments of
// parallel directions (either way, as the host's parallel test has it). The
// walk stops when fewer than three vertices are left; a closed polyline
// wraps round, an open one keeps its end vertices. source[i] is the index
// in the input of the vertex that verts[i] is.
struct DumpedVertices {
  std::vector<PolyVertex> verts;
  std::vector<size_t> source;
};
DumpedVertices dumpVertices(const std::vector<PolyVertex>& verts, bool closed, double tolerance, bool dropCollinear);
// The same on a polyline: its shape without the dumped vertices.
LwPoly dumpPoints(const LwPoly& poly, double tolerance, bool dropCollinear);

// A curve as the duplicate test sees it: its kind (the class), its length,
// its defining points with the bulges of the segments that start at them
// (none for curves without bulges), and whether it is closed. Two curves
// are repeats when their kind is the same, their lengths differ by no more
// than lengthTolerance, and their points (with bulges) agree within
// pointTolerance either in order or run backwards (a closed curve from any of its
// vertices).
struct CurveShape {
  int kind = 0;
  double length = 0.0;
  std::vector<PolyVertex> verts;
  bool closed = false;
};
bool sameCurve(const CurveShape& a, const CurveShape& b, double lengthTolerance, double pointTolerance);

}  // namespace zepk::geometry
