// Seeds for tests on random input: a new seed each run, so that runs cover
// more cases over time, or the one in ZEPK_SEED to repeat a run that
// failed. Tests print the seed they used in their failure messages.
#pragma once

#include <cstdlib>
#include <random>

inline unsigned testSeed() {
  if (const char* s = std::getenv("ZEPK_SEED"); s && *s) return static_cast<unsigned>(std::strtoul(s, nullptr, 10));
  return std::random_device{}();
}
