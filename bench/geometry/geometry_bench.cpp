// The curve kernel's speed on many polylines: each of COUNT closed rings of
// VERTICES vertices with random bulges is sampled to the chord tolerance
// and its area taken from the samples. The rings come from the generator
// that polys.py repeats, so that the peer works on the same shapes.
// Usage: zepk_bench_geometry COUNT VERTICES TOLERANCE
// Prints "polylines N vertices V samples S area A seconds T pervertex NS".
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "geometry/kernel.h"

using namespace zepk::geometry;

namespace {

struct Lcg {
  uint32_t x;
  double next() {
    x = 1664525u * x + 1013904223u;
    return x / 4294967296.0;
  }
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fprintf(stderr, "usage: zepk_bench_geometry COUNT VERTICES TOLERANCE\n");
    return 2;
  }
  const long count = std::atol(argv[1]);
  const int vertices = std::atoi(argv[2]);
  const double tolerance = std::atof(argv[3]);
  constexpr double kPi = 3.14159265358979323846;
  Lcg rng{12345};
  std::vector<LwPoly> polys(static_cast<size_t>(count));
  for (LwPoly& p : polys) {
    const double cx = rng.next() * 1000.0, cy = rng.next() * 1000.0;
    p.closed = true;
    p.verts.reserve(static_cast<size_t>(vertices));
    for (int i = 0; i < vertices; ++i) {
      const double t = 2 * kPi * (i + 0.2 + 0.6 * rng.next()) / vertices;
      const double r = 20.0 + 40.0 * rng.next();
      const double b = rng.next() - 0.5;
      p.verts.push_back({{cx + r * std::cos(t), cy + r * std::sin(t), 0.0}, b});
    }
  }
  const auto t0 = std::chrono::steady_clock::now();
  size_t samples = 0;
  double total = 0.0;
  for (const LwPoly& p : polys) {
    const std::vector<Point> pts = samplePoly(p, tolerance, true);
    samples += pts.size();
    total += std::fabs(signedArea(pts));
  }
  const double dt = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  std::printf("polylines %ld vertices %ld samples %zu area %.6f seconds %.4f pervertex %.1f\n", count,
              count * vertices, samples, total, dt, dt / (count * vertices) * 1e9);
  return 0;
}
