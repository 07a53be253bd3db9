// Memory for reading large drawings. Filling new memory costs a page fault
// for each page the first time it is touched, and reading a large drawing
// is much about filling new memory: what the system can back with large
// pages (two megabytes, one fault where there were 512) is backed by them,
// and the heap the objects are made in is faulted in ahead of its use by a
// second thread, while the reader goes on with its work.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace zepk::dxf {

// Asks the system to back the whole large pages of [p, p + n) with large
// pages when they are first touched. Only a hint: nothing fails without it.
void adviseLargePages(void* p, std::size_t n);

// While one lives, the heap grows in large steps, each step backed by large
// pages and faulted in by a second thread as soon as poll() finds it. Made
// by a reader that is about to make many small objects; poll() is cheap
// enough to be called for each of them. Nothing of this changes what the
// heap holds: without the system's help it does nothing.
class LargePageHeap {
 public:
  LargePageHeap();
  ~LargePageHeap();
  LargePageHeap(const LargePageHeap&) = delete;
  LargePageHeap& operator=(const LargePageHeap&) = delete;

  void poll();

 private:
  void fault(std::uintptr_t from, std::uintptr_t to);
  void run();

  std::uintptr_t advisedTo_ = 0;  // the end of the heap advised so far
  std::thread thread_;
  bool noThread_ = false;
  std::mutex mutex_;
  std::condition_variable ready_;
  std::deque<std::pair<std::uintptr_t, std::uintptr_t>> ranges_;  // to fault in, oldest first
  bool stop_ = false;
};

}  // namespace zepk::dxf
