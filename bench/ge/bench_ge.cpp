// Geometry benchmarks, each a plain command on an input file that
// make_inputs.py writes (peer_geos.py runs the peers on the same files):
//   zepk_bench_ge segments FILE   all meetings of the segments (and arcs) of
//                                 the file, pairs found through an R-tree;
//                                 prints the count of meeting points
//   zepk_bench_ge closest FILE    nearest points of the query points on the
//                                 polyline; prints the sum of distances
//   zepk_bench_ge union FILE      the union of the circles as regions, by
//                                 pairs; prints its area
#include <boost/geometry.hpp>
#include <boost/geometry/index/rtree.hpp>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/dbregion.h"
#include "host/gearc3d.h"
#include "host/gecint3d.h"
#include "host/gecomp3d.h"
#include "host/gelineseg3d.h"

namespace bg = boost::geometry;
namespace bgi = boost::geometry::index;
using BPoint = bg::model::point<double, 2, bg::cs::cartesian>;
using BBox = bg::model::box<BPoint>;
using Item = std::pair<BBox, size_t>;

namespace {

BBox boxOf(const AcGeCurve3d& c) {
  AcGePoint3d lo, hi;
  c.orthoBoundBlock().getMinMaxPoints(lo, hi);
  return BBox(BPoint(lo.x, lo.y), BPoint(hi.x, hi.y));
}

int segments(const char* path) {
  std::ifstream f(path);
  std::vector<std::unique_ptr<AcGeCurve3d>> curves;
  std::string kind;
  while (f >> kind) {
    if (kind == "L") {
      double x0, y0, x1, y1;
      f >> x0 >> y0 >> x1 >> y1;
      curves.emplace_back(new AcGeLineSeg3d(AcGePoint3d(x0, y0, 0), AcGePoint3d(x1, y1, 0)));
    } else {
      double cx, cy, r, a0, sweep;
      f >> cx >> cy >> r >> a0 >> sweep;
      AcGeVector3d n = sweep >= 0 ? AcGeVector3d::kZAxis : -AcGeVector3d::kZAxis;
      curves.emplace_back(new AcGeCircArc3d(AcGePoint3d(cx, cy, 0), n, AcGeVector3d(std::cos(a0), std::sin(a0), 0), r,
                                            0.0, std::fabs(sweep)));
    }
  }
  std::vector<Item> items;
  for (size_t i = 0; i < curves.size(); ++i) items.emplace_back(boxOf(*curves[i]), i);
  bgi::rtree<Item, bgi::rstar<16>> tree(items.begin(), items.end());
  size_t count = 0;
  std::vector<Item> near;
  for (const Item& it : items) {
    near.clear();
    tree.query(bgi::intersects(it.first), std::back_inserter(near));
    for (const Item& o : near) {
      if (o.second <= it.second) continue;
      count += zepk::ge::intersectCurves(*curves[it.second], *curves[o.second], false, AcGeContext::gTol).size();
    }
  }
  std::printf("%zu\n", count);
  return 0;
}

int closest(const char* path) {
  std::ifstream f(path);
  size_t n, q;
  f >> n >> q;
  std::vector<double> x(n), y(n), b(n);
  for (size_t i = 0; i < n; ++i) f >> x[i] >> y[i] >> b[i];
  AcGeCompositeCurve3d poly;
  for (size_t i = 0; i + 1 < n; ++i)
    poly.appendOwned(zepk::ge::bulgeSegment(AcGePoint3d(x[i], y[i], 0), AcGePoint3d(x[i + 1], y[i + 1], 0), b[i],
                                            AcGeVector3d::kZAxis));
  std::vector<Item> items;
  for (int i = 0; i < poly.numCurves(); ++i) items.emplace_back(boxOf(poly.curveAt(i)), i);
  bgi::rtree<Item, bgi::rstar<16>> tree(items.begin(), items.end());
  double total = 0;
  for (size_t k = 0; k < q; ++k) {
    double px, py;
    f >> px >> py;
    AcGePoint3d p(px, py, 0);
    BPoint bp(px, py);
    // The k nearest boxes, k doubled until the farthest of them lies
    // beyond the nearest curve found.
    double best = 1e300;
    std::vector<Item> near;
    for (unsigned k = 8;; k *= 2) {
      near.clear();
      tree.query(bgi::nearest(bp, k), std::back_inserter(near));
      double farthest = 0;
      for (const Item& it : near) {
        farthest = std::max(farthest, bg::distance(bp, it.first));
        best = std::min(best, poly.curveAt(static_cast<int>(it.second)).distanceTo(p));
      }
      if (farthest >= best || near.size() < k) break;
    }
    total += best;
  }
  std::printf("%.3f\n", total);
  return 0;
}

int unite(const char* path) {
  std::ifstream f(path);
  std::vector<std::unique_ptr<AcDbRegion>> regions;
  double cx, cy, r;
  while (f >> cx >> cy >> r) {
    AcDbCircle c(AcGePoint3d(cx, cy, 0), AcGeVector3d::kZAxis, r);
    AcDbVoidPtrArray in{&c}, out;
    if (AcDbRegion::createFromCurves(in, out) != Acad::eOk || out.size() != 1) return 1;
    regions.emplace_back(static_cast<AcDbRegion*>(out[0]));
  }
  // Pairs of neighbours, then pairs of those, so that each operation sees
  // operands of like size.
  while (regions.size() > 1) {
    std::vector<std::unique_ptr<AcDbRegion>> next;
    for (size_t i = 0; i + 1 < regions.size(); i += 2) {
      if (regions[i]->booleanOper(AcDb::kBoolUnite, regions[i + 1].get()) != Acad::eOk) return 1;
      next.push_back(std::move(regions[i]));
    }
    if (regions.size() % 2) next.push_back(std::move(regions.back()));
    regions.swap(next);
  }
  double area = 0;
  regions[0]->getArea(area);
  std::printf("%.3f\n", area);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: zepk_bench_ge segments|closest|union FILE\n");
    return 2;
  }
  std::string mode = argv[1];
  if (mode == "segments") return segments(argv[2]);
  if (mode == "closest") return closest(argv[2]);
  if (mode == "union") return unite(argv[2]);
  std::fprintf(stderr, "unknown mode %s\n", argv[1]);
  return 2;
}
