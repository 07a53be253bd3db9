// Regions: made from closed curves and from open ones end to end, their
// measures, Boolean operations that keep arcs, explosion; and random
// unions, intersections and differences of circles and rectangles against
// shapely on finely sampled outlines.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <unistd.h>

#include "host/dbpl.h"
#include "host/dbregion.h"
#include "testseed.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

struct Owned {
  AcDbVoidPtrArray items;
  ~Owned() {
    for (void* p : items) delete static_cast<AcDbEntity*>(p);
  }
  AcDbRegion* region(size_t i) const { return AcDbRegion::cast(static_cast<AcDbObject*>(items[i])); }
};

std::unique_ptr<AcDbRegion> regionOf(AcDbCurve* c) {
  Owned o;
  AcDbVoidPtrArray in{c};
  EXPECT_EQ(AcDbRegion::createFromCurves(in, o.items), Acad::eOk);
  EXPECT_EQ(o.items.size(), 1u);
  if (o.items.size() != 1) return nullptr;
  auto r = std::unique_ptr<AcDbRegion>(o.region(0));
  o.items.clear();
  return r;
}

std::unique_ptr<AcDbPolyline> rect(double x0, double y0, double x1, double y1) {
  auto p = std::make_unique<AcDbPolyline>();
  p->addVertexAt(0, {x0, y0});
  p->addVertexAt(1, {x1, y0});
  p->addVertexAt(2, {x1, y1});
  p->addVertexAt(3, {x0, y1});
  p->setClosed(true);
  return p;
}

double area(const AcDbRegion& r) {
  double a = -1;
  EXPECT_EQ(r.getArea(a), Acad::eOk);
  return a;
}

TEST(DbRegions, MadeFromCurvesAndMeasured) {
  AcDbCircle c(AcGePoint3d(1, 2, 0), AcGeVector3d::kZAxis, 3.0);
  auto r = regionOf(&c);
  ASSERT_TRUE(r);
  EXPECT_NEAR(area(*r), 9 * kPi, 1e-9);
  double per;
  r->getPerimeter(per);
  EXPECT_NEAR(per, 6 * kPi, 1e-9);
  // Three lines and an arc end to end, one of them the wrong way round.
  AcDbLine l1(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0)), l2(AcGePoint3d(10, 0, 0), AcGePoint3d(10, 10, 0));
  AcDbLine l3(AcGePoint3d(0, 0, 0), AcGePoint3d(0, 10, 0));
  AcDbArc top(AcGePoint3d(5, 10, 0), 5.0, 0, kPi);
  Owned made;
  AcDbVoidPtrArray in{&l1, &l2, &top, &l3};
  ASSERT_EQ(AcDbRegion::createFromCurves(in, made.items), Acad::eOk);
  ASSERT_EQ(made.items.size(), 1u);
  EXPECT_NEAR(area(*made.region(0)), 100 + 12.5 * kPi, 1e-9);
  // Properties, centroid and moments of a rectangle off the origin.
  auto p = rect(2, 1, 6, 3);
  p->setColorIndex(5);
  auto rr = regionOf(p.get());
  EXPECT_EQ(rr->colorIndex(), 5);
  double perim, a, prod, mom[2], prin[2], radii[2];
  AcGePoint2d cen, lo, hi;
  AcGeVector2d axes[2];
  ASSERT_EQ(rr->getAreaProp(AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, perim, a, cen, mom,
                            prod, prin, axes, radii, lo, hi),
            Acad::eOk);
  EXPECT_NEAR(a, 8, 1e-9);
  EXPECT_NEAR(perim, 12, 1e-9);
  EXPECT_NEAR(cen.x, 4, 1e-9);
  EXPECT_NEAR(cen.y, 2, 1e-9);
  EXPECT_NEAR(mom[0], 4 * (27 - 1) / 3.0, 1e-9);  // integral of y^2 over the area
  EXPECT_NEAR(prin[0], 4 * 8 / 12.0, 1e-9);       // b h^3 / 12 about the centroid
  EXPECT_NEAR(std::fabs(axes[0].x), 1.0, 1e-9);
  EXPECT_NEAR(lo.x, 2, 1e-12);
  EXPECT_NEAR(hi.y, 3, 1e-12);
  // Nothing closes: refused.
  Owned none;
  AcDbVoidPtrArray openOnly{&l1, &l2};
  EXPECT_EQ(AcDbRegion::createFromCurves(openOnly, none.items), Acad::eInvalidInput);
}

TEST(DbRegions, BooleansKeepArcsAsArcs) {
  AcDbCircle c(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 2.0);
  auto square = rect(0, 0, 4, 4);
  auto a = regionOf(&c), b = regionOf(square.get());
  ASSERT_EQ(a->booleanOper(AcDb::kBoolSubtract, b.get()), Acad::eOk);
  EXPECT_NEAR(area(*a), 3 * kPi, 1e-9);
  EXPECT_EQ(b->numLoops(), 0);  // the other region is used up
  Owned parts;
  ASSERT_EQ(a->explode(parts.items), Acad::eOk);
  int arcs = 0, lines = 0;
  for (void* p : parts.items) {
    arcs += AcDbArc::cast(static_cast<AcDbObject*>(p)) != nullptr;
    lines += AcDbLine::cast(static_cast<AcDbObject*>(p)) != nullptr;
  }
  EXPECT_EQ(arcs, 1);
  EXPECT_EQ(lines, 2);
  // Union of two overlapping discs, intersection of the same.
  AcDbCircle c1(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 1.0), c2(AcGePoint3d(1, 0, 0), AcGeVector3d::kZAxis, 1.0);
  auto u1 = regionOf(&c1), u2 = regionOf(&c2), i1 = regionOf(&c1), i2 = regionOf(&c2);
  double lens = 2 * (kPi / 3 - std::sqrt(3.0) / 4);
  u1->booleanOper(AcDb::kBoolUnite, u2.get());
  i1->booleanOper(AcDb::kBoolIntersect, i2.get());
  EXPECT_NEAR(area(*u1), 2 * kPi - lens, 1e-9);
  EXPECT_NEAR(area(*i1), lens, 1e-9);
  EXPECT_EQ(u1->numLoops(), 1);
  // A hole: a square minus a disc inside it.
  auto big = rect(-5, -5, 5, 5);
  auto h = regionOf(big.get()), disc = regionOf(&c1);
  h->booleanOper(AcDb::kBoolSubtract, disc.get());
  EXPECT_EQ(h->numLoops(), 2);
  EXPECT_NEAR(area(*h), 100 - kPi, 1e-9);
  // Squares that share a side unite into one loop; apart they stay two.
  auto s1 = rect(0, 0, 1, 1), s2 = rect(1, 0, 2, 1), s3 = rect(5, 5, 6, 6);
  auto r1 = regionOf(s1.get()), r2 = regionOf(s2.get()), r3 = regionOf(s3.get());
  r1->booleanOper(AcDb::kBoolUnite, r2.get());
  EXPECT_EQ(r1->numLoops(), 1);
  EXPECT_NEAR(area(*r1), 2, 1e-12);
  r1->booleanOper(AcDb::kBoolUnite, r3.get());
  EXPECT_EQ(r1->numLoops(), 2);
  EXPECT_NEAR(area(*r1), 3, 1e-12);
  auto r4 = regionOf(s1.get()), r5 = regionOf(s3.get());
  r4->booleanOper(AcDb::kBoolIntersect, r5.get());
  EXPECT_EQ(r4->numLoops(), 0);
}

// Areas of random Boolean operations against shapely (buffered discs of
// 4096 segments a quarter, so within 1e-6 of the true areas).
TEST(DbRegions, RandomBooleansAgainstShapely) {
  unsigned seed = testSeed();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> u(0, 10), rad(0.5, 4);
  struct Case {
    std::string script;
    double ours;
  };
  std::vector<Case> cases;
  const char* ops[] = {"union", "intersection", "difference"};
  for (int k = 0; k < 9; ++k) {
    int op = k % 3;
    std::string geoms[2];
    std::unique_ptr<AcDbRegion> regs[2];
    for (int j = 0; j < 2; ++j) {
      char buf[200];
      if ((k + j) % 2 == 0) {
        double x = u(rng), y = u(rng), r = rad(rng);
        AcDbCircle c(AcGePoint3d(x, y, 0), AcGeVector3d::kZAxis, r);
        regs[j] = regionOf(&c);
        std::snprintf(buf, sizeof buf, "Point(%.17g,%.17g).buffer(%.17g,4096)", x, y, r);
      } else {
        double x = u(rng), y = u(rng), w = rad(rng) * 2, h = rad(rng) * 2;
        auto p = rect(x, y, x + w, y + h);
        regs[j] = regionOf(p.get());
        std::snprintf(buf, sizeof buf, "box(%.17g,%.17g,%.17g,%.17g)", x, y, x + w, y + h);
      }
      geoms[j] = buf;
    }
    regs[0]->booleanOper(static_cast<AcDb::BoolOperType>(op), regs[1].get());
    double a = 0;
    if (regs[0]->numLoops()) regs[0]->getArea(a);
    cases.push_back({"print(" + geoms[0] + "." + ops[op] + "(" + geoms[1] + ").area)", a});
  }
  char path[] = "/tmp/zepk_region_oracle_XXXXXX";
  int fd = mkstemp(path);
  ASSERT_GE(fd, 0);
  ::close(fd);
  {
    std::ofstream f(path);
    f << "from shapely.geometry import Point, box\n";
    for (const Case& c : cases) f << c.script << "\n";
  }
  std::string cmd = std::string("/usr/bin/python3 ") + path + " 2>&1";
  FILE* p = ::popen(cmd.c_str(), "r");
  std::string out;
  char buf[4096];
  size_t n;
  while (p && (n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
  EXPECT_EQ(p ? ::pclose(p) : -1, 0) << out;
  std::remove(path);
  std::istringstream lines(out);
  for (const Case& c : cases) {
    double want = -1;
    lines >> want;
    EXPECT_NEAR(c.ours, want, 1e-5 * std::max(1.0, want)) << c.script;
  }
}

}  // namespace
