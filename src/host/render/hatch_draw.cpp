// Hatches: the boundary loops flattened in the hatch's plane, then filled
// (solid, gradient as its first colour) or crossed by the lines of the
// pattern.
#include <cmath>
#include <memory>

#include "host/dbhatch.h"
#include "host/genurb3d.h"
#include "host/render/entities.h"
#include "host/render/hatchlines.h"

namespace zepk::render {

namespace {

constexpr double kTwoPi = 6.28318530717958647692;
// No hatch draws more pattern pieces than this; a denser one is filled.
constexpr size_t kMaxPieces = 2000000;

void arcPoints(std::vector<Pt>& out, Pt c, double rx, Pt major, double ratio, double a0, double a1, bool ccw,
               double tol) {
  // Angles of a clockwise edge are given counterclockwise from the
  // mirrored axis: the edge runs from -a0 to -a1.
  if (!ccw) a0 = -a0, a1 = -a1;
  double sweep = ccw ? a1 - a0 : a1 - a0;
  if (ccw) {
    while (sweep < 0) sweep += kTwoPi;
  } else {
    while (sweep > 0) sweep -= kTwoPi;
  }
  if (std::fabs(sweep) < 1e-12) sweep = ccw ? kTwoPi : -kTwoPi;
  double r = std::max(rx, 1e-12);
  double step = tol >= r ? M_PI / 4 : 2 * std::acos(1 - tol / r);
  int n = std::clamp(static_cast<int>(std::ceil(std::fabs(sweep) / std::max(step, 1e-3))), 4, 1024);
  double len = std::hypot(major.x, major.y);
  double ux = major.x / len, uy = major.y / len;
  for (int i = 0; i <= n; ++i) {
    double t = a0 + sweep * i / n;
    double px = std::cos(t) * len, py = std::sin(t) * len * ratio;
    out.push_back({c.x + px * ux - py * uy, c.y + px * uy + py * ux});
  }
}

std::vector<std::vector<Pt>> loopsOf(const AcDbHatch* h, double tol) {
  std::vector<std::vector<Pt>> loops;
  for (int i = 0; i < h->numLoops(); ++i) {
    const AcDbHatch::Loop& l = h->loopAt(i);
    std::vector<Pt> pts;
    if (l.type & AcDbHatch::kPolyline) {
      size_t n = l.vertices.size();
      for (size_t k = 0; k < n; ++k) {
        if (k + 1 == n && !l.closed) {
          pts.push_back({l.vertices[k].x, l.vertices[k].y});
          break;
        }
        Pt a{l.vertices[k].x, l.vertices[k].y}, b{l.vertices[(k + 1) % n].x, l.vertices[(k + 1) % n].y};
        double bulge = k < l.bulges.size() ? l.bulges[k] : 0.0;
        std::vector<Pt> seg = bulgePoints(a, b, bulge, tol);
        pts.insert(pts.end(), seg.begin(), seg.end() - 1);
      }
    } else {
      for (const AcDbHatch::Edge& e : l.edges) {
        switch (e.type) {
          case AcDbHatch::kLine:
            pts.push_back({e.start.x, e.start.y});
            pts.push_back({e.end.x, e.end.y});
            break;
          case AcDbHatch::kCirArc:
            arcPoints(pts, {e.center.x, e.center.y}, e.radius, {e.radius, 0}, 1.0, e.startAngle, e.endAngle, e.ccw,
                      tol);
            break;
          case AcDbHatch::kEllArc: {
            double len = std::hypot(e.majorAxis.x, e.majorAxis.y);
            arcPoints(pts, {e.center.x, e.center.y}, len, {e.majorAxis.x, e.majorAxis.y}, e.minorMajorRatio,
                      e.startAngle, e.endAngle, e.ccw, tol);
            break;
          }
          case AcDbHatch::kSpline: {
            AcGePoint3dArray cps;
            for (const AcGePoint2d& p : e.controlPoints) cps.emplace_back(p.x, p.y, 0);
            if (cps.size() < 2 || e.knots.size() != cps.size() + e.degree + 1) {
              for (const AcGePoint3d& p : cps) pts.push_back({p.x, p.y});
              break;
            }
            std::unique_ptr<AcGeNurbCurve3d> c;
            if (e.rational && e.weights.size() == cps.size())
              c = std::make_unique<AcGeNurbCurve3d>(e.degree, e.knots, cps, e.weights, e.periodic);
            else
              c = std::make_unique<AcGeNurbCurve3d>(e.degree, e.knots, cps, e.periodic);
            double lo = 0, hi = 0;
            c->getInterval(lo, hi);
            AcGePoint3dArray sp;
            AcGeDoubleArray params;
            c->getSamplePoints(lo, hi, tol, sp, params);
            for (const AcGePoint3d& p : sp) pts.push_back({p.x, p.y});
            break;
          }
        }
      }
    }
    if (pts.size() >= 3) loops.push_back(std::move(pts));
  }
  return loops;
}

}  // namespace

void drawHatch(const AcDbHatch* h, Sink& s) {
  double size = 0;
  for (int i = 0; i < h->numLoops(); ++i)
    for (const AcGePoint2d& p : h->loopAt(i).vertices) size = std::max({size, std::fabs(p.x), std::fabs(p.y)});
  double tol = s.pixelsPerUnit() > 0 ? 0.25 / s.pixelsPerUnit() : std::max(size, 1.0) * 1e-3;
  std::vector<std::vector<Pt>> loops = loopsOf(h, tol);
  if (loops.empty()) return;
  // The hatch's plane: its normal and elevation.
  AcGeMatrix3d ocs = AcGeMatrix3d::planeToWorld(h->normal());
  double z = h->elevation();
  auto world = [&](const Pt& p) {
    AcGePoint3d q(p.x, p.y, z);
    q.transformBy(ocs);
    return q;
  };

  std::vector<Segment> pieces;
  bool lines = !h->isSolidFill() && !h->isGradient();
  if (lines) {
    std::vector<PatternFamily> families;
    for (int i = 0; i < h->numPatternDefinitions(); ++i) {
      PatternFamily f;
      AcGeDoubleArray dashes;
      h->getPatternDefinitionAt(i, f.angle, f.base.x, f.base.y, f.offset.x, f.offset.y, dashes);
      f.dashes.assign(dashes.begin(), dashes.end());
      families.push_back(f);
    }
    if (families.empty()) {
      // No definition in the drawing: a user-defined pattern is lines at
      // its angle and spacing (crossed when double); a named one shows as
      // the plain 45 degree lines of the standard pattern.
      bool user = h->patternType() == AcDbHatch::kUserDefined;
      double a = h->patternAngle() + (user ? 0.0 : M_PI / 4);
      double step = user ? h->patternSpace() : 3.175 * h->patternScale();
      for (int k = 0; k < (user && h->patternDouble() ? 2 : 1); ++k) {
        PatternFamily f;
        f.angle = a + k * M_PI / 2;
        f.offset = {-std::sin(f.angle) * step, std::cos(f.angle) * step};
        families.push_back(f);
      }
    }
    for (const PatternFamily& f : families) {
      lines = hatchSegments(loops, f, kMaxPieces, &pieces);
      if (!lines) break;
    }
    // Lines finer than a pixel look like a fill: drawn as one.
    if (lines && s.pixelsPerUnit() > 0 && pieces.size() > kMaxPieces / 2) lines = false;
  }
  if (lines) {
    // Pattern lines carry their own dashes: drawn solid.
    s.setSolidLines(true);
    for (const Segment& g : pieces) {
      AcGePoint3d e[2] = {world(g.a), world(g.b)};
      s.polyline(g.a.x == g.b.x && g.a.y == g.b.y ? 1 : 2, e);
    }
    s.setSolidLines(false);
    return;
  }
  std::vector<Adesk::UInt32> sizes;
  std::vector<AcGePoint3d> pts;
  for (const auto& loop : loops) {
    sizes.push_back(static_cast<Adesk::UInt32>(loop.size()));
    for (const Pt& p : loop) pts.push_back(world(p));
  }
  AcCmEntityColor was = s.trueColor();
  if (h->isGradient() && !h->gradientColors().empty()) {
    const AcDbHatch::GradientColor& g = h->gradientColors().front();
    AcCmEntityColor c;
    if (g.colorIndex > 0 && g.colorIndex < 256) c.setColorIndex(g.colorIndex);
    else c.setRGB(g.rgb);
    s.setTrueColor(c);
  }
  AcGiFillType fill = s.fillType();
  s.setFillType(kAcGiFillAlways);
  s.polyPolygon(static_cast<Adesk::UInt32>(sizes.size()), sizes.data(), pts.data());
  s.setFillType(fill);
  s.setTrueColor(was);
}

}  // namespace zepk::render
