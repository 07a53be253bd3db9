// Memory for reading large drawings: what the system can back with large
// pages (two megabytes each) is backed by them. Filling memory costs a page
// fault per page; large pages make that one fault where there were 512, and
// reading a large drawing is much about filling new memory.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zepk::dxf {

// Asks the system to back the whole large pages of [p, p + n) with large
// pages when they are first touched. Only a hint: nothing fails without it.
void adviseLargePages(void* p, std::size_t n);

// While one lives, the room the heap grows by is backed by large pages:
// the heap grows in big steps, and each step is advised as poll() finds
// it. Made by a reader that is about to make many small objects; poll()
// is cheap enough to be called for each of them.
class LargePageHeap {
 public:
  // `expected`: about how much the heap will grow by (the step it grows by
  // is at most that, and at most 64 MB).
  explicit LargePageHeap(std::size_t expected);
  ~LargePageHeap();
  LargePageHeap(const LargePageHeap&) = delete;
  LargePageHeap& operator=(const LargePageHeap&) = delete;

  void poll();

 private:
  std::uintptr_t advisedTo_ = 0;  // the end of the heap advised so far
};

}  // namespace zepk::dxf
