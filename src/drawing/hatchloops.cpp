// The loops of a hatch as polylines: see hatchloops.h.
#include "drawing/hatchloops.h"

#include <cmath>

#include "host/gemat3d.h"
#include "host/genurb3d.h"

namespace zepk::drawing {

namespace {

constexpr int kSamples = 48;  // points along an elliptical arc or a spline edge

double positiveSweep(double from, double to) {
  double s = std::fmod(to - from, 2 * M_PI);
  if (s <= 1e-12) s += 2 * M_PI;
  return s;
}

// Appends the edge's points, each with the bulge of the part that starts
// there; the edge's end is the next edge's start.
void appendEdge(const AcDbHatch::Edge& e, std::vector<AcGePoint2d>& pts, std::vector<double>& bulges) {
  switch (e.type) {
    case AcDbHatch::kLine:
      pts.push_back(e.start);
      bulges.push_back(0.0);
      break;
    case AcDbHatch::kCirArc: {
      // A clockwise arc keeps its angles measured clockwise.
      double s = e.ccw ? e.startAngle : -e.startAngle;
      double sweep = positiveSweep(e.startAngle, e.endAngle);
      if (sweep >= 2 * M_PI - 1e-12) {
        // A whole circle: two half arcs.
        double b = e.ccw ? 1.0 : -1.0;
        pts.emplace_back(e.center.x + e.radius * std::cos(s), e.center.y + e.radius * std::sin(s));
        bulges.push_back(b);
        pts.emplace_back(e.center.x - e.radius * std::cos(s), e.center.y - e.radius * std::sin(s));
        bulges.push_back(b);
        break;
      }
      pts.emplace_back(e.center.x + e.radius * std::cos(s), e.center.y + e.radius * std::sin(s));
      bulges.push_back((e.ccw ? 1 : -1) * std::tan(sweep / 4));
      break;
    }
    case AcDbHatch::kEllArc: {
      double a = e.majorAxis.length(), rot = std::atan2(e.majorAxis.y, e.majorAxis.x);
      double b = a * e.minorMajorRatio, dir = e.ccw ? 1 : -1;
      double s = dir * e.startAngle, sweep = positiveSweep(e.startAngle, e.endAngle);
      for (int k = 0; k < kSamples; ++k) {
        double u = s + dir * sweep * k / kSamples;
        double x = a * std::cos(u), y = b * std::sin(u);
        pts.emplace_back(e.center.x + x * std::cos(rot) - y * std::sin(rot),
                         e.center.y + x * std::sin(rot) + y * std::cos(rot));
        bulges.push_back(0.0);
      }
      break;
    }
    case AcDbHatch::kSpline: {
      AcGePoint3dArray cps;
      for (const AcGePoint2d& p : e.controlPoints) cps.emplace_back(p.x, p.y, 0.0);
      AcGeDoubleArray knots(e.knots.begin(), e.knots.end());
      AcGeNurbCurve3d curve = e.weights.size() == cps.size()
                                  ? AcGeNurbCurve3d(e.degree, knots, cps, AcGeDoubleArray(e.weights.begin(), e.weights.end()))
                                  : AcGeNurbCurve3d(e.degree, knots, cps);
      size_t n = cps.size();
      if (n == 0 || knots.size() != n + e.degree + 1) {
        // Data that makes no curve: its control points.
        for (const AcGePoint2d& p : e.controlPoints) {
          pts.push_back(p);
          bulges.push_back(0.0);
        }
        break;
      }
      double t0 = knots[e.degree], t1 = knots[n];
      for (int k = 0; k < kSamples; ++k) {
        AcGePoint3d p = curve.evalPoint(t0 + (t1 - t0) * k / kSamples);
        pts.emplace_back(p.x, p.y);
        bulges.push_back(0.0);
      }
      break;
    }
  }
}

}  // namespace

std::vector<PolylineData> hatchLoops(const AcDbHatch& hatch) {
  std::vector<PolylineData> out;
  for (int i = 0; i < hatch.numLoops(); ++i) {
    const AcDbHatch::Loop& loop = hatch.loopAt(i);
    std::vector<AcGePoint2d> pts;
    std::vector<double> bulges;
    if (loop.type & AcDbHatch::kPolyline) {
      pts = loop.vertices;
      bulges = loop.bulges;
      bulges.resize(pts.size(), 0.0);
    } else {
      for (const AcDbHatch::Edge& e : loop.edges) appendEdge(e, pts, bulges);
    }
    if (pts.size() < 2) continue;
    PolylineData d;
    d.closed = true;
    d.bulges = bulges;
    for (const AcGePoint2d& p : pts) d.points.emplace_back(p.x, p.y, hatch.elevation());
    out.push_back(std::move(d));
  }
  return out;
}

}  // namespace zepk::drawing
