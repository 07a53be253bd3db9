#include "host/dxf/memory.h"

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

namespace zepk::dxf {

namespace {

constexpr std::uintptr_t kLarge = std::uintptr_t{1} << 21;
constexpr std::uintptr_t kPage = 4096;
// The step glibc's heap grows by unless told otherwise.
constexpr int kDefaultTopPad = 128 * 1024;
constexpr std::size_t kMaxStep = std::size_t{64} << 20;

std::uintptr_t heapEnd() { return reinterpret_cast<std::uintptr_t>(::sbrk(0)); }

}  // namespace

void adviseLargePages(void* p, std::size_t n) {
  const auto at = reinterpret_cast<std::uintptr_t>(p);
  const std::uintptr_t begin = (at + kLarge - 1) & ~(kLarge - 1);
  const std::uintptr_t end = (at + n) & ~(kLarge - 1);
  if (end > begin) ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

LargePageHeap::LargePageHeap(std::size_t expected) {
  // Steps of whole large pages, so that each step is mostly new large pages.
  const std::size_t step = std::max<std::size_t>(std::min(expected, kMaxStep) & ~(kLarge - 1), kLarge);
  ::mallopt(M_TOP_PAD, static_cast<int>(step));
  const std::uintptr_t end = heapEnd();
  advisedTo_ = end == static_cast<std::uintptr_t>(-1) ? 0 : (end + kPage - 1) & ~(kPage - 1);
}

LargePageHeap::~LargePageHeap() { ::mallopt(M_TOP_PAD, kDefaultTopPad); }

void LargePageHeap::poll() {
  if (advisedTo_ == 0) return;
  const std::uintptr_t end = heapEnd() & ~(kPage - 1);
  if (end > advisedTo_) {
    // The new room: its whole large pages come as large pages when touched
    // (the advice belongs to the room, so each step is advised anew).
    ::madvise(reinterpret_cast<void*>(advisedTo_), end - advisedTo_, MADV_HUGEPAGE);
    advisedTo_ = end;
  } else if (end < advisedTo_) {
    // The heap gave room back; what it grows into again is advised again.
    advisedTo_ = end;
  }
}

}  // namespace zepk::dxf
