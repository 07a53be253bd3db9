#include "host/system/crt_rand.h"
#include "host/wincompat.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace zepk::sys {
namespace {

std::vector<int> draw(int n) {
  std::vector<int> v;
  for (int i = 0; i < n; ++i) v.push_back(crtRand());
  return v;
}

// The sequence written out from its definition, in 64-bit arithmetic reduced
// modulo 2^32 by hand.
std::vector<int> expected(uint64_t seed, int n) {
  std::vector<int> v;
  uint64_t s = seed % 4294967296ULL;
  for (int i = 0; i < n; ++i) {
    s = (s * 214013ULL + 2531011ULL) % 4294967296ULL;
    v.push_back(static_cast<int>((s / 65536) % 32768));
  }
  return v;
}

TEST(CrtRand, KnownSequenceAfterSeedOne) {
  crtSrand(1);
  EXPECT_EQ(draw(5), (std::vector<int>{41, 18467, 6334, 26500, 19169}));
  // The toolkit's face of the same generator.
  winSrand(1);
  EXPECT_EQ(winRand(), 41);
  EXPECT_EQ(crtRand(), 18467);
}

TEST(CrtRand, SeedsRestartTheSequence) {
  crtSrand(42);
  const std::vector<int> first = draw(1000);
  EXPECT_EQ(first, expected(42, 1000));
  crtSrand(42);
  EXPECT_EQ(draw(1000), first);
  crtSrand(0);
  EXPECT_EQ(draw(3), expected(0, 3));
  crtSrand(0xFFFFFFFFu);
  EXPECT_EQ(draw(3), expected(0xFFFFFFFFu, 3));
  for (int v : first) {
    EXPECT_GE(v, 0);
    EXPECT_LE(v, kCrtRandMax);
  }
}

// A fresh process starts as if seeded with 1.
TEST(CrtRandDeathTest, FreshProcessStartsFromSeedOne) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(std::exit(crtRand() == 41 && crtRand() == 18467 ? 0 : 1), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace zepk::sys
