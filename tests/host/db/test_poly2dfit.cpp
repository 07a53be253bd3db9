// Fitting of old-style 2D polylines: the arcs of a curve fit, the B-spline
// of a spline fit (checked against scipy), and the polyline in a drawing
// fitted, straightened, measured and saved (read back by ezdxf).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "host/db/dxffile.h"
#include "host/db/ents_internal.h"
#include "host/db/poly2dfit.h"
#include "host/dbents.h"
#include "host/dbheader.h"
#include "host/dbsymtb.h"

namespace {

namespace fit = zepk::db::fit;
using fit::Pt;

constexpr double kPi = 3.14159265358979323846;

double dist(Pt a, Pt b) { return std::hypot(a.x - b.x, a.y - b.y); }

// The arc from a to b with the bulge: its tangent directions at both ends.
void arcTangents(Pt a, Pt b, double bulge, Pt& ta, Pt& tb) {
  double theta = 2.0 * std::atan(bulge);  // tangent-to-chord angle at a
  double cx = b.x - a.x, cy = b.y - a.y, l = std::hypot(cx, cy);
  cx /= l;
  cy /= l;
  // The chord is the start tangent turned by theta, the end tangent the
  // chord turned by theta again.
  ta = {cx * std::cos(-theta) - cy * std::sin(-theta), cx * std::sin(-theta) + cy * std::cos(-theta)};
  tb = {cx * std::cos(theta) - cy * std::sin(theta), cx * std::sin(theta) + cy * std::cos(theta)};
}

double angleBetween(Pt a, Pt b) { return std::fabs(std::atan2(a.x * b.y - a.y * b.x, a.x * b.x + a.y * b.y)); }

std::vector<Pt> randomPolyline(std::mt19937& rng, size_t n) {
  // A wandering walk, so that segments turn both ways (up to about 70
  // degrees, no hairpins) and vary in length.
  std::uniform_real_distribution<double> step(1.0, 20.0), turn(-1.2, 1.2);
  std::vector<Pt> pts{{0, 0}};
  double heading = 0;
  for (size_t i = 1; i < n; ++i) {
    heading += turn(rng);
    double s = step(rng);
    pts.push_back({pts.back().x + s * std::cos(heading), pts.back().y + s * std::sin(heading)});
  }
  return pts;
}

// ---------------------------------------------------------------- curve fit

TEST(Poly2dCurveFit, PointsOnACircleFitTheCircle) {
  // Unevenly spaced points on one circle: every arc of the fit is that circle.
  const double r = 7, cx = 3, cy = -2;
  std::vector<Pt> pts;
  for (double a : {0.1, 0.5, 1.4, 1.9, 3.0, 4.4})
    pts.push_back({cx + r * std::cos(a), cy + r * std::sin(a)});
  for (bool closed : {false, true}) {
    fit::CurveFit f = fit::curveFit(pts, closed);
    ASSERT_EQ(f.arcs.size(), closed ? pts.size() : pts.size() - 1);
    for (size_t i = 0; i < f.arcs.size(); ++i) {
      const fit::Biarc& b = f.arcs[i];
      EXPECT_NEAR(dist(b.joint, {cx, cy}), r, 1e-9) << i;
      EXPECT_GT(b.bulge1, 0) << i;  // counterclockwise, as the points go
      if (i + 1 < pts.size() || !closed) {
        // Both halves turn by the same angle as the circle between them.
        Pt a = pts[i], c = pts[(i + 1) % pts.size()];
        double whole = std::atan2(c.y - cy, c.x - cx) - std::atan2(a.y - cy, a.x - cx);
        if (whole < 0) whole += 2 * kPi;
        double sum = 4 * std::atan(b.bulge1) + 4 * std::atan(b.bulge2);
        EXPECT_NEAR(sum, whole, 1e-9) << i;
      }
    }
  }
}

TEST(Poly2dCurveFit, ArcsPassThroughEveryVertexWithoutKinks) {
  std::mt19937 rng(20261123);
  for (int trial = 0; trial < 40; ++trial) {
    const bool closed = trial % 2 == 1;
    std::vector<Pt> pts = randomPolyline(rng, 3 + trial % 9);
    fit::CurveFit f = fit::curveFit(pts, closed);
    const size_t n = pts.size();
    Pt prevEnd{0, 0};
    for (size_t i = 0; i < f.arcs.size(); ++i) {
      Pt a = pts[i], b = pts[(i + 1) % n];
      const fit::Biarc& arc = f.arcs[i];
      Pt t1a, t1b, t2a, t2b;
      arcTangents(a, arc.joint, arc.bulge1, t1a, t1b);
      arcTangents(arc.joint, b, arc.bulge2, t2a, t2b);
      // Leaves the vertex along its tangent, turns smoothly at the joint.
      EXPECT_LT(angleBetween(t1a, f.tangents[i]), 1e-7) << trial << " seg " << i;
      EXPECT_LT(angleBetween(t1b, t2a), 1e-7) << trial << " seg " << i;
      EXPECT_LT(angleBetween(t2b, f.tangents[(i + 1) % n]), 1e-7) << trial << " seg " << i;
      if (i > 0) {
        EXPECT_LT(angleBetween(prevEnd, t1a), 1e-7) << trial << " at vertex " << i;
      }
      prevEnd = t2b;
      // The joint lies between the two vertices, not beyond them (the
      // closing segment of a random walk may need a loop).
      if (i + 1 < n) EXPECT_LT(dist(a, arc.joint), dist(a, b) * 1.5) << trial << " seg " << i;
    }
  }
}

TEST(Poly2dCurveFit, StraightAndShortPolylinesStayStraight) {
  fit::CurveFit f = fit::curveFit({{0, 0}, {5, 0}, {12, 0}}, false);
  for (const fit::Biarc& b : f.arcs) {
    EXPECT_NEAR(b.bulge1, 0, 1e-12);
    EXPECT_NEAR(b.bulge2, 0, 1e-12);
    EXPECT_NEAR(b.joint.y, 0, 1e-12);
  }
  f = fit::curveFit({{0, 0}, {4, 3}}, false);
  ASSERT_EQ(f.arcs.size(), 1u);
  EXPECT_NEAR(f.arcs[0].joint.x, 2, 1e-12);
  EXPECT_NEAR(f.arcs[0].joint.y, 1.5, 1e-12);
  // Repeated vertices do not turn the tangents into nonsense.
  f = fit::curveFit({{0, 0}, {5, 0}, {5, 0}, {5, 5}}, false);
  for (const Pt& t : f.tangents) EXPECT_NEAR(std::hypot(t.x, t.y), 1.0, 1e-12);
  for (const fit::Biarc& b : f.arcs) {
    EXPECT_TRUE(std::isfinite(b.bulge1) && std::isfinite(b.bulge2));
  }
}

// ---------------------------------------------------------------- spline fit

TEST(Poly2dSplineFit, OpenSplineStartsAndEndsOnTheFrame) {
  std::vector<Pt> frame{{0, 0}, {10, 10}, {20, -10}, {30, 0}};
  for (int degree : {2, 3}) {
    std::vector<Pt> fp = fit::splineFitPoints(frame, degree, false, 8);
    ASSERT_EQ(fp.size(), 8u * 3 + 1);
    EXPECT_EQ(fp.front().x, 0);
    EXPECT_EQ(fp.back().x, 30);
    // Inside the convex hull of the frame: never above the highest point.
    for (const Pt& p : fp) EXPECT_LE(std::fabs(p.y), 10.0);
  }
  // Two frame points: a straight line however high the degree.
  std::vector<Pt> fp = fit::splineFitPoints({{0, 0}, {4, 2}}, 3, false, 4);
  ASSERT_EQ(fp.size(), 5u);
  EXPECT_NEAR(fp[2].x, 2, 1e-12);
  EXPECT_NEAR(fp[2].y, 1, 1e-12);
  // A closed frame gives a closed ring with no repeated closing point.
  fp = fit::splineFitPoints({{0, 0}, {10, 0}, {10, 10}, {0, 10}}, 3, true, 5);
  ASSERT_EQ(fp.size(), 20u);
  EXPECT_GT(dist(fp.front(), fp.back()), 1e-3);
  // Symmetric frame, symmetric curve: centre of the ring at the square's centre.
  double sx = 0, sy = 0;
  for (const Pt& p : fp) sx += p.x, sy += p.y;
  EXPECT_NEAR(sx / 20, 5, 1e-9);
  EXPECT_NEAR(sy / 20, 5, 1e-9);
}

std::string runPython(const std::string& script, const std::string& input) {
  char dir[] = "/tmp/zepk-poly2dfit-XXXXXX";
  if (!mkdtemp(dir)) return "";
  std::string py = std::string(dir) + "/check.py", in = std::string(dir) + "/in.txt";
  std::ofstream(py) << script;
  std::ofstream(in) << input;
  std::string out;
  if (FILE* p = popen(("/usr/bin/python3 " + py + " " + in + " 2>&1").c_str(), "r")) {
    char buf[4096];
    size_t k;
    while ((k = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, k);
    pclose(p);
  }
  std::remove(py.c_str());
  std::remove(in.c_str());
  rmdir(dir);
  return out;
}

TEST(Poly2dSplineFit, FitPointsLieOnScipysBSpline) {
  if (std::system("/usr/bin/python3 -c 'import scipy.interpolate' >/dev/null 2>&1") != 0)
    GTEST_SKIP() << "python3-scipy is not installed";
  // Each case: degree, closed, the frame, the fit points; scipy evaluates
  // its own B-spline with the same knots and prints the largest distance.
  std::mt19937 rng(7);
  std::ostringstream in;
  in.precision(17);
  int cases = 0;
  for (int degree : {2, 3}) {
    for (bool closed : {false, true}) {
      for (size_t n : {3u, 4u, 5u, 9u}) {
        std::vector<Pt> frame = randomPolyline(rng, n);
        fit::UniformBSpline s(frame, degree, closed);
        std::vector<Pt> fp = fit::splineFitPoints(frame, degree, closed, 6);
        in << "case " << s.degree() << " " << (s.closed() ? 1 : 0) << " " << s.endParam() << "\n";
        in << "knots";
        for (double k : s.knots()) in << " " << k;
        in << "\nctrl";
        for (const Pt& p : s.unwrappedCtrl()) in << " " << p.x << " " << p.y;
        in << "\nfit";
        for (const Pt& p : fp) in << " " << p.x << " " << p.y;
        in << "\n";
        ++cases;
      }
    }
  }
  const std::string script = R"PY(
import sys
import numpy as np
from scipy.interpolate import BSpline
lines = open(sys.argv[1]).read().split("\n")
worst = 0.0
count = 0
for i in range(0, len(lines) - 1, 4):
    head = lines[i].split()
    k, closed, end = int(head[1]), head[2] == "1", float(head[3])
    t = np.array([float(v) for v in lines[i + 1].split()[1:]])
    c = np.array([float(v) for v in lines[i + 2].split()[1:]]).reshape(-1, 2)
    f = np.array([float(v) for v in lines[i + 3].split()[1:]]).reshape(-1, 2)
    total = len(f) if closed else len(f) - 1
    u = np.linspace(0.0, end, total + 1)[: len(f)]
    ref = BSpline(t, c, k)(u)
    worst = max(worst, float(np.max(np.hypot(*(ref - f).T))))
    count += 1
print(count, "%.3e" % worst)
)PY";
  std::string out = runPython(script, in.str());
  int count = 0;
  double worst = 1;
  ASSERT_EQ(std::sscanf(out.c_str(), "%d %lf", &count, &worst), 2) << out;
  EXPECT_EQ(count, cases);
  EXPECT_LT(worst, 1e-9);
}

// ---------------------------------------------------------------- in a drawing

AcDbObjectId modelSpace(AcDbDatabase* db) {
  AcDbBlockTable* t = nullptr;
  EXPECT_EQ(db->getBlockTable(t, AcDb::kForRead), Acad::eOk);
  AcDbObjectId id;
  t->getAt(ACDB_MODEL_SPACE, id);
  t->close();
  return id;
}

AcDbObjectId append(AcDbDatabase* db, AcDbEntity* ent) {
  AcDbBlockTableRecord* b = nullptr;
  EXPECT_EQ(acdbOpenObject(b, modelSpace(db), AcDb::kForWrite), Acad::eOk);
  AcDbObjectId id;
  EXPECT_EQ(b->appendAcDbEntity(id, ent), Acad::eOk);
  ent->close();
  b->close();
  return id;
}

struct VertexInfo {
  AcDbObjectId id;
  AcGePoint3d p;
  double bulge;
  AcDb::Vertex2dType type;
};

std::vector<VertexInfo> vertices(const AcDb2dPolyline& pl) {
  std::vector<VertexInfo> out;
  std::unique_ptr<AcDbObjectIterator> it(pl.vertexIterator());
  for (; !it->done(); it->step()) {
    AcDbObjectPointer<AcDb2dVertex> v(it->objectId(), AcDb::kForRead);
    if (v.openStatus() != Acad::eOk) continue;
    out.push_back({it->objectId(), v->position(), v->bulge(), v->vertexType()});
  }
  return out;
}

double length(const AcDbCurve& c) {
  double end = 0, d = -1;
  c.getEndParam(end);
  c.getDistAtParam(end, d);
  return d;
}

const AcGePoint3dArray kZigzag{{0, 0, 0}, {10, 8, 0}, {20, 0, 0}, {30, 8, 0}, {40, 0, 0}};

TEST(Poly2dFitInADrawing, FitStraightenAndFitAgain) {
  AcDbDatabase db(true);
  AcDbObjectId id = append(&db, new AcDb2dPolyline(AcDb::k2dSimplePoly, kZigzag, 2.5));
  std::vector<AcDbObjectId> originals;
  double straightLength = 0;
  {
    AcDbObjectPointer<AcDb2dPolyline> p(id, AcDb::kForRead);
    for (const VertexInfo& v : vertices(*p.object())) originals.push_back(v.id);
    straightLength = length(*p.object());
    // A fit needs the polyline open for write.
    EXPECT_EQ(p->curveFit(), Acad::eNotOpenForWrite);
  }
  {
    AcDbObjectPointer<AcDb2dPolyline> p(id, AcDb::kForWrite);
    ASSERT_EQ(p->curveFit(), Acad::eOk);
    EXPECT_EQ(p->polyType(), AcDb::k2dFitCurvePoly);
    EXPECT_TRUE(p->flags() & AcDbPolylineFlags::kCurveFit);
    std::vector<VertexInfo> vs = vertices(*p.object());
    ASSERT_EQ(vs.size(), 9u);
    for (size_t i = 0; i < vs.size(); ++i) {
      EXPECT_EQ(vs[i].type, i % 2 ? AcDb::k2dCurveFitVertex : AcDb::k2dVertex) << i;
      if (i % 2 == 0) EXPECT_EQ(vs[i].id, originals[i / 2]);  // the vertices keep their ids
      if (i + 1 < vs.size()) EXPECT_NE(vs[i].bulge, 0.0) << i;
    }
    // The curve passes through the original vertices and is longer.
    AcGePoint3d q;
    ASSERT_EQ(p->getPointAtParam(4.0, q), Acad::eOk);
    EXPECT_NEAR(q.x, 20, 1e-9);
    EXPECT_NEAR(q.z, 2.5, 1e-12);
    EXPECT_GT(length(*p.object()), straightLength);
    // Fitting again replaces the fit instead of fitting the fit.
    ASSERT_EQ(p->curveFit(), Acad::eOk);
    EXPECT_EQ(vertices(*p.object()).size(), 9u);
  }
  {
    AcDbObjectPointer<AcDb2dPolyline> p(id, AcDb::kForWrite);
    ASSERT_EQ(p->splineFit(AcDb::k2dQuadSplinePoly, 4), Acad::eOk);
    EXPECT_EQ(p->polyType(), AcDb::k2dQuadSplinePoly);
    EXPECT_EQ(p->curveType(), 5);
    std::vector<VertexInfo> vs = vertices(*p.object());
    ASSERT_EQ(vs.size(), 5u + 4 * 4 + 1);
    for (size_t i = 0; i < 5; ++i) {
      EXPECT_EQ(vs[i].type, AcDb::k2dSplineCtlVertex);
      EXPECT_EQ(vs[i].id, originals[i]);
    }
    for (size_t i = 5; i < vs.size(); ++i) EXPECT_EQ(vs[i].type, AcDb::k2dSplineFitVertex);
    // The curve is the fit vertices': from the first frame point to the
    // last, inside the frame, and shorter than the frame.
    double end = 0;
    p->getEndParam(end);
    EXPECT_EQ(end, 16.0);
    AcGePoint3d s, e;
    p->getStartPoint(s);
    p->getEndPoint(e);
    EXPECT_NEAR(s.x, 0, 1e-12);
    EXPECT_NEAR(e.x, 40, 1e-12);
    EXPECT_LT(length(*p.object()), straightLength);
    // The extents are the curve's: it does not reach the frame's peaks.
    AcDbExtents ext;
    ASSERT_EQ(p->getGeomExtents(ext), Acad::eOk);
    EXPECT_LT(ext.maxPoint().y, 7.0);
    EXPECT_GT(ext.maxPoint().y, 2.0);
    AcDbVoidPtrArray pieces;
    ASSERT_EQ(p->explode(pieces), Acad::eOk);
    EXPECT_EQ(pieces.size(), 16u);
    for (void* x : pieces) delete static_cast<AcDbEntity*>(x);
  }
  {
    AcDbObjectPointer<AcDb2dPolyline> p(id, AcDb::kForWrite);
    ASSERT_EQ(p->straighten(), Acad::eOk);
    EXPECT_EQ(p->polyType(), AcDb::k2dSimplePoly);
    std::vector<VertexInfo> vs = vertices(*p.object());
    ASSERT_EQ(vs.size(), 5u);
    for (size_t i = 0; i < 5; ++i) {
      EXPECT_EQ(vs[i].id, originals[i]);
      EXPECT_EQ(vs[i].type, AcDb::k2dVertex);
      EXPECT_EQ(vs[i].bulge, 0.0);
      EXPECT_EQ(vs[i].p.x, kZigzag[i].x);
    }
    EXPECT_NEAR(length(*p.object()), straightLength, 1e-9);
  }
}

TEST(Poly2dFitInADrawing, ClosedPolylinesAndTheDrawingsSettings) {
  AcDbDatabase db(true);
  AcGePoint3dArray square{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}};
  auto* pl = new AcDb2dPolyline(AcDb::k2dSimplePoly, square, 0, true);
  AcDbObjectId id = append(&db, pl);
  AcDbObjectPointer<AcDb2dPolyline> p(id, AcDb::kForWrite);
  // Without SPLINETYPE and SPLINESEGS in the drawing: cubic, 8 a span.
  ASSERT_EQ(p->splineFit(), Acad::eOk);
  EXPECT_EQ(p->polyType(), AcDb::k2dCubicSplinePoly);
  EXPECT_EQ(vertices(*p.object()).size(), 4u + 4 * 8);
  EXPECT_TRUE(p->isClosed());
  double area = 0;
  ASSERT_EQ(p->getArea(area), Acad::eOk);
  EXPECT_GT(area, 20);
  EXPECT_LT(area, 100);
  zepk::db::DxfItem segs;
  segs.code = 70;
  segs.kind = zepk::db::DxfItem::Int;
  segs.i = 3;
  zepk::db::setHeaderVar(&db, u"$SPLINESEGS", segs);
  segs.i = 5;
  zepk::db::setHeaderVar(&db, u"$SPLINETYPE", segs);
  ASSERT_EQ(p->splineFit(), Acad::eOk);
  EXPECT_EQ(p->polyType(), AcDb::k2dQuadSplinePoly);
  EXPECT_EQ(vertices(*p.object()).size(), 4u + 4 * 3);
  ASSERT_EQ(p->convertToPolyType(AcDb::k2dFitCurvePoly), Acad::eOk);
  EXPECT_EQ(vertices(*p.object()).size(), 8u);  // closed: a joint on each of four sides
  ASSERT_EQ(p->getArea(area), Acad::eOk);
  EXPECT_GT(area, 100);  // the arcs bulge outwards through the corners
  EXPECT_EQ(p->splineFit(AcDb::k2dSimplePoly, 4), Acad::eInvalidInput);
  EXPECT_EQ(p->splineFit(AcDb::k2dCubicSplinePoly, 0), Acad::eInvalidInput);
}

TEST(Poly2dFitInADrawing, TheConstructorFitsAndAPolylineOutsideADrawingFitsToo) {
  AcDb2dPolyline p(AcDb::k2dFitCurvePoly, kZigzag);
  EXPECT_EQ(p.polyType(), AcDb::k2dFitCurvePoly);
  EXPECT_EQ(zepk::db::EntityAccess::sequence(&p)->items.size(), 9u);
  ASSERT_EQ(p.splineFit(AcDb::k2dCubicSplinePoly, 2), Acad::eOk);
  EXPECT_EQ(zepk::db::EntityAccess::sequence(&p)->items.size(), 5u + 2 * 4 + 1);
  ASSERT_EQ(p.setPolyType(AcDb::k2dSimplePoly), Acad::eOk);
  EXPECT_EQ(zepk::db::EntityAccess::sequence(&p)->items.size(), 5u);
}

TEST(Poly2dFitInADrawing, SavedFileKeepsFrameAndFitVerticesForEzdxf) {
  if (std::system("/usr/bin/python3 -c 'import ezdxf' >/dev/null 2>&1") != 0)
    GTEST_SKIP() << "python3-ezdxf is not installed";
  AcDbDatabase db(true);
  AcDbObjectId spline = append(&db, new AcDb2dPolyline(AcDb::k2dSimplePoly, kZigzag));
  AcDbObjectId curve = append(&db, new AcDb2dPolyline(AcDb::k2dSimplePoly, kZigzag, 1.0, true));
  {
    AcDbObjectPointer<AcDb2dPolyline> p(spline, AcDb::kForWrite);
    ASSERT_EQ(p->splineFit(AcDb::k2dQuadSplinePoly, 3), Acad::eOk);
    AcDbObjectPointer<AcDb2dPolyline> q(curve, AcDb::kForWrite);
    ASSERT_EQ(q->curveFit(), Acad::eOk);
  }
  std::string bytes, error;
  ASSERT_TRUE(zepk::db::writeDxfBytes(&db, &bytes, &error)) << error;

  // Our own reader gets the same vertices back.
  std::unique_ptr<AcDbDatabase> again;
  ASSERT_TRUE(zepk::db::readDxfBytes(bytes, &again, &error)) << error;

  // ezdxf: the polyline's mode, flags and curve type, each vertex's flags.
  const std::string script = R"PY(
import sys, ezdxf
doc = ezdxf.readfile(sys.argv[1])
for p in doc.modelspace().query("POLYLINE"):
    print(p.get_mode(), p.dxf.flags, p.dxf.smooth_type, len(p.vertices),
          "".join("%d," % v.dxf.flags for v in p.vertices))
)PY";
  std::string out = runPython(script, bytes);
  std::istringstream lines(out);
  std::string l1, l2;
  std::getline(lines, l1);
  std::getline(lines, l2);
  EXPECT_EQ(l1, "AcDb2dPolyline 4 5 18 16,16,16,16,16,8,8,8,8,8,8,8,8,8,8,8,8,8,") << out;
  EXPECT_EQ(l2, "AcDb2dPolyline 3 0 10 0,3,0,3,0,3,0,3,0,3,") << out;

  // Read back here, the fit is the same.
  AcDbBlockTable* t = nullptr;
  ASSERT_EQ(again->getBlockTable(t, AcDb::kForRead), Acad::eOk);
  AcDbObjectId ms;
  t->getAt(ACDB_MODEL_SPACE, ms);
  t->close();
  AcDbBlockTableRecord* b = nullptr;
  ASSERT_EQ(acdbOpenObject(b, ms, AcDb::kForRead), Acad::eOk);
  AcDbBlockTableRecordIterator* it = nullptr;
  b->newIterator(it);
  std::vector<double> lengths;
  for (; !it->done(); it->step()) {
    AcDbEntity* e = nullptr;
    if (it->getEntity(e, AcDb::kForRead) != Acad::eOk) continue;
    if (auto* p = AcDb2dPolyline::cast(e)) lengths.push_back(length(*p));
    e->close();
  }
  delete it;
  b->close();
  ASSERT_EQ(lengths.size(), 2u);
  AcDbObjectPointer<AcDb2dPolyline> p(spline, AcDb::kForRead), q(curve, AcDb::kForRead);
  EXPECT_NEAR(lengths[0], length(*p.object()), 1e-9);
  EXPECT_NEAR(lengths[1], length(*q.object()), 1e-9);
}

}  // namespace
