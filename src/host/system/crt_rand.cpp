#include "host/system/crt_rand.h"

#include "host/wincompat.h"

#include <atomic>
#include <cstdint>

namespace zepk::sys {

namespace {
std::atomic<uint32_t> gState{1};
}

int crtRand() {
  uint32_t s = gState.load(std::memory_order_relaxed);
  uint32_t next;
  do {
    next = s * 214013u + 2531011u;
  } while (!gState.compare_exchange_weak(s, next, std::memory_order_relaxed));
  return static_cast<int>((next >> 16) & 0x7FFF);
}

void crtSrand(unsigned seed) { gState.store(static_cast<uint32_t>(seed), std::memory_order_relaxed); }

}  // namespace zepk::sys

int winRand() { return zepk::sys::crtRand(); }
void winSrand(unsigned seed) { zepk::sys::crtSrand(seed); }
