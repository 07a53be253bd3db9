#include "host/dxf/memory.h"

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <exception>

namespace zepk::dxf {

namespace {

constexpr std::uintptr_t kLarge = std::uintptr_t{1} << 21;
constexpr std::uintptr_t kPage = 4096;
// The step glibc's heap grows by unless told otherwise.
constexpr int kDefaultTopPad = 128 * 1024;
// The heap's step while a LargePageHeap lives: far enough ahead for the
// second thread to stay ahead of the reader, little enough not to weigh on
// the peak of memory.
constexpr int kStep = 32 << 20;

std::uintptr_t heapEnd() { return reinterpret_cast<std::uintptr_t>(::sbrk(0)); }

}  // namespace

void adviseLargePages(void* p, std::size_t n) {
  const auto at = reinterpret_cast<std::uintptr_t>(p);
  const std::uintptr_t begin = (at + kLarge - 1) & ~(kLarge - 1);
  const std::uintptr_t end = (at + n) & ~(kLarge - 1);
  if (end > begin) ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

LargePageHeap::LargePageHeap() {
  ::mallopt(M_TOP_PAD, kStep);
  const std::uintptr_t end = heapEnd();
  advisedTo_ = end == static_cast<std::uintptr_t>(-1) ? 0 : (end + kPage - 1) & ~(kPage - 1);
}

LargePageHeap::~LargePageHeap() {
  if (thread_.joinable()) {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      stop_ = true;
    }
    ready_.notify_one();
    thread_.join();
  }
  ::mallopt(M_TOP_PAD, kDefaultTopPad);
}

void LargePageHeap::poll() {
  if (advisedTo_ == 0) return;
  const std::uintptr_t end = heapEnd() & ~(kPage - 1);
  if (end > advisedTo_) {
    // The new room: its whole large pages come as large pages when touched
    // (the advice belongs to the room, so each step is advised anew).
    ::madvise(reinterpret_cast<void*>(advisedTo_), end - advisedTo_, MADV_HUGEPAGE);
    fault(advisedTo_, end);
    advisedTo_ = end;
  } else if (end < advisedTo_) {
    // The heap gave room back; what it grows into again is advised again.
    advisedTo_ = end;
  }
}

void LargePageHeap::fault(std::uintptr_t from, std::uintptr_t to) {
  if (noThread_) return;
  if (!thread_.joinable()) {
    try {
      thread_ = std::thread([this] { run(); });
    } catch (const std::exception&) {
      noThread_ = true;  // the pages are faulted in as they are touched
      return;
    }
  }
  {
    std::lock_guard<std::mutex> lock(mutex_);
    ranges_.emplace_back(from, to);
  }
  ready_.notify_one();
}

void LargePageHeap::run() {
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    ready_.wait(lock, [&] { return stop_ || !ranges_.empty(); });
    if (stop_) return;
    auto [from, to] = ranges_.front();
    ranges_.pop_front();
    lock.unlock();
    // A large page at a time, so that a stop is heard soon. Faulting in
    // changes nothing the heap holds; room the heap has given back since
    // fails to fault in, and that is the end of this range.
    for (std::uintptr_t at = from; at < to;) {
      const std::uintptr_t next = std::min(to, (at + kLarge) & ~(kLarge - 1));
      if (::madvise(reinterpret_cast<void*>(at), next - at, MADV_POPULATE_WRITE) != 0) break;
      at = next;
      lock.lock();
      const bool stop = stop_;
      lock.unlock();
      if (stop) return;
    }
    lock.lock();
  }
}

}  // namespace zepk::dxf
