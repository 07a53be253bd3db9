#include "host/system/winmsg.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <map>
#include <memory>

#include "host/system/utf.h"

namespace zepk::sys {

namespace {

struct Window {
  std::u16string cls, title;
  HWND parent = nullptr;
  bool visible = false;
};

struct Timer {
  HWND w;
  UINT_PTR id;
  UINT elapse;
  TIMERPROC proc;
  uint64_t due;
  uint64_t seq;  // order of setting, for timers due at the same time
};

struct State {
  // Handles are small numbers, never reused, so that a stale handle names
  // no window.
  std::map<uintptr_t, Window> windows;
  uintptr_t nextWindow = 0x10010;
  std::vector<Timer> timers;
  UINT_PTR nextTimerId = 1;
  uint64_t timerSeq = 0;
  std::deque<MSG> queue;
  std::vector<MessageWatcher> watchers;
  bool virt = false;
  bool virtUsed = false;
  uint64_t virtNow = 0;
  // The real clock runs on from this offset after a virtual spell.
  int64_t realOffset = 0;
  std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
  int dispatching = 0;
};

State& st() {
  static auto* s = new State;
  return *s;
}

uintptr_t key(HWND w) { return reinterpret_cast<uintptr_t>(w); }

uint64_t realNow() {
  auto d = std::chrono::steady_clock::now() - st().start;
  int64_t ms = std::chrono::duration_cast<std::chrono::milliseconds>(d).count() + st().realOffset;
  return ms < 0 ? 0 : static_cast<uint64_t>(ms);
}

void deliver(const MSG& m) {
  // A watcher may remove itself or add another while it runs.
  std::vector<MessageWatcher> ws = st().watchers;
  for (MessageWatcher w : ws) {
    if (std::find(st().watchers.begin(), st().watchers.end(), w) != st().watchers.end()) w(&m);
  }
}

// Runs one timer event at time t: its procedure, else WM_TIMER to the
// watchers. The timer is looked up again afterwards, since its procedure
// may kill or reset it.
void fire(const Timer& t, uint64_t at) {
  MSG m{t.w, WM_TIMER, t.id, reinterpret_cast<LPARAM>(t.proc), static_cast<DWORD>(at), {0, 0}};
  ++st().dispatching;
  if (t.proc) {
    // The watchers see the message before it is dispatched to the procedure.
    deliver(m);
    t.proc(t.w, WM_TIMER, t.id, static_cast<DWORD>(at));
  } else {
    deliver(m);
  }
  --st().dispatching;
}

Timer* findTimer(HWND w, UINT_PTR id) {
  for (Timer& t : st().timers) {
    if (t.w == w && t.id == id) return &t;
  }
  return nullptr;
}

// The timer due first at or before `limit`, earliest setting first among
// equals; null if none.
const Timer* nextDue(uint64_t limit) {
  const Timer* best = nullptr;
  for (const Timer& t : st().timers) {
    if (t.due > limit) continue;
    if (!best || t.due < best->due || (t.due == best->due && t.seq < best->seq)) best = &t;
  }
  return best;
}

}  // namespace

HWND createWindow(std::u16string_view className, std::u16string_view title, HWND parent, bool visible) {
  uintptr_t h = st().nextWindow;
  st().nextWindow += 2;
  Window w;
  w.cls = std::u16string(className);
  w.title = std::u16string(title);
  w.parent = parent;
  w.visible = visible;
  st().windows.emplace(h, std::move(w));
  return reinterpret_cast<HWND>(h);
}

void destroyWindow(HWND w) {
  if (!st().windows.erase(key(w))) return;
  auto& ts = st().timers;
  ts.erase(std::remove_if(ts.begin(), ts.end(), [&](const Timer& t) { return t.w == w; }), ts.end());
  auto& q = st().queue;
  q.erase(std::remove_if(q.begin(), q.end(), [&](const MSG& m) { return m.hwnd == w; }), q.end());
}

bool windowExists(HWND w) { return st().windows.count(key(w)) != 0; }

std::u16string windowTitle(HWND w) {
  auto it = st().windows.find(key(w));
  return it == st().windows.end() ? std::u16string() : it->second.title;
}

std::u16string windowClass(HWND w) {
  auto it = st().windows.find(key(w));
  return it == st().windows.end() ? std::u16string() : it->second.cls;
}

uint64_t now() { return st().virt ? st().virtNow : realNow(); }

bool virtualClock() { return st().virt; }

void useVirtualClock(bool on) {
  State& s = st();
  if (on == s.virt) return;
  if (on) {
    // The virtual clock starts at 0 the first time, and goes on from the
    // real clock's time after that; the timers keep their distances.
    uint64_t r = realNow();
    uint64_t start = s.virtUsed ? r : 0;
    int64_t delta = static_cast<int64_t>(start) - static_cast<int64_t>(r);
    for (Timer& t : s.timers) {
      int64_t due = static_cast<int64_t>(t.due) + delta;
      t.due = due < 0 ? 0 : static_cast<uint64_t>(due);
    }
    s.realOffset += delta;
    s.virtNow = start;
    s.virt = true;
    s.virtUsed = true;
  } else {
    // The real clock goes on from the virtual time.
    s.virt = false;
    s.realOffset += static_cast<int64_t>(s.virtNow) - static_cast<int64_t>(realNow());
  }
}

int advance(uint64_t ms) {
  useVirtualClock(true);
  State& s = st();
  uint64_t target = s.virtNow + ms;
  int fired = 0;
  // Bounded: a procedure that keeps resetting its timer to zero time, or
  // a step of hours over a 10 ms timer, cannot hold the host for ever.
  const int kMaxEvents = 1000000;
  while (fired < kMaxEvents) {
    const Timer* t = nextDue(target);
    if (!t) break;
    Timer copy = *t;
    s.virtNow = std::max(s.virtNow, copy.due);
    if (Timer* live = findTimer(copy.w, copy.id)) {
      live->due = copy.due + copy.elapse;
    }
    fire(copy, s.virtNow);
    ++fired;
  }
  s.virtNow = target;
  // Messages posted meanwhile go out too.
  while (!s.queue.empty()) {
    MSG m = s.queue.front();
    s.queue.pop_front();
    ++s.dispatching;
    deliver(m);
    --s.dispatching;
  }
  return fired;
}

UINT_PTR setTimer(HWND w, UINT_PTR id, UINT elapse, TIMERPROC proc) {
  State& s = st();
  if (w && !windowExists(w)) return 0;
  if (elapse < 10) elapse = 10;
  if (!w) {
    // A timer of no window gets an id of its own.
    id = s.nextTimerId++;
  }
  uint64_t due = now() + elapse;
  if (Timer* t = findTimer(w, id)) {
    t->elapse = elapse;
    t->proc = proc;
    t->due = due;
    return w ? (id ? id : 1) : id;
  }
  s.timers.push_back(Timer{w, id, elapse, proc, due, s.timerSeq++});
  // A window's timer answers 1 for event 0, as a non-zero success.
  return w ? (id ? id : 1) : id;
}

bool killTimer(HWND w, UINT_PTR id) {
  auto& ts = st().timers;
  auto it = std::find_if(ts.begin(), ts.end(), [&](const Timer& t) { return t.w == w && t.id == id; });
  if (it == ts.end()) return false;
  ts.erase(it);
  return true;
}

size_t timerCount() { return st().timers.size(); }

bool addWatcher(MessageWatcher fn) {
  if (!fn) return false;
  auto& ws = st().watchers;
  if (std::find(ws.begin(), ws.end(), fn) != ws.end()) return false;
  ws.push_back(fn);
  return true;
}

bool removeWatcher(MessageWatcher fn) {
  auto& ws = st().watchers;
  auto it = std::find(ws.begin(), ws.end(), fn);
  if (it == ws.end()) return false;
  ws.erase(it);
  return true;
}

bool postMessage(HWND w, UINT msg, WPARAM wp, LPARAM lp) {
  if (w && !windowExists(w)) return false;
  st().queue.push_back(MSG{w, msg, wp, lp, static_cast<DWORD>(now()), {0, 0}});
  return true;
}

int pump() {
  State& s = st();
  // A timer procedure that waits for input lets the command loop run
  // again: it must not fire the timers a second time inside.
  if (s.dispatching) return 0;
  int handled = 0;
  uint64_t t = now();
  // Each due timer fires once, however many intervals passed; the order is
  // that of their due times.
  std::vector<Timer> due;
  for (const Timer& tm : s.timers) {
    if (tm.due <= t) due.push_back(tm);
  }
  std::sort(due.begin(), due.end(), [](const Timer& a, const Timer& b) {
    return a.due != b.due ? a.due < b.due : a.seq < b.seq;
  });
  for (const Timer& tm : due) {
    Timer* live = findTimer(tm.w, tm.id);
    if (!live || live->seq != tm.seq) continue;
    live->due = t + live->elapse;
    fire(tm, t);
    ++handled;
  }
  size_t n = s.queue.size();
  while (n-- > 0 && !s.queue.empty()) {
    MSG m = s.queue.front();
    s.queue.pop_front();
    ++s.dispatching;
    deliver(m);
    --s.dispatching;
    ++handled;
  }
  return handled;
}

void resetWindows() {
  State& s = st();
  s.windows.clear();
  s.timers.clear();
  s.queue.clear();
  s.watchers.clear();
  s.virt = false;
  s.virtUsed = false;
  s.virtNow = 0;
  s.realOffset = 0;
  s.start = std::chrono::steady_clock::now();
}

}  // namespace zepk::sys

// ---------------------------------------------------------------- Windows

using namespace zepk;

namespace {
thread_local DWORD gLastError = 0;
}

DWORD GetLastError() { return gLastError; }
void SetLastError(DWORD code) { gLastError = code; }

HWND FindWindowW(LPCWSTR cls, LPCWSTR title) {
  for (auto& [h, w] : sys::st().windows) {
    if (cls && *cls && w.cls != cls) continue;
    if (title && *title && w.title != title) continue;
    if (w.parent) continue;  // top-level windows only
    return reinterpret_cast<HWND>(h);
  }
  SetLastError(ERROR_FILE_NOT_FOUND);
  return nullptr;
}

BOOL ShowWindow(HWND hWnd, int cmd) {
  auto it = sys::st().windows.find(sys::key(hWnd));
  if (it == sys::st().windows.end()) return FALSE;
  bool was = it->second.visible;
  it->second.visible = cmd != SW_HIDE;
  return was ? TRUE : FALSE;
}

BOOL IsWindow(HWND hWnd) { return sys::windowExists(hWnd) ? TRUE : FALSE; }

BOOL IsWindowVisible(HWND hWnd) {
  auto it = sys::st().windows.find(sys::key(hWnd));
  return it != sys::st().windows.end() && it->second.visible ? TRUE : FALSE;
}

BOOL SetWindowTextW(HWND hWnd, LPCWSTR text) {
  auto it = sys::st().windows.find(sys::key(hWnd));
  if (it == sys::st().windows.end()) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  it->second.title = text ? text : u"";
  return TRUE;
}

int GetWindowTextW(HWND hWnd, LPWSTR buf, int max) {
  if (!buf || max <= 0) return 0;
  auto it = sys::st().windows.find(sys::key(hWnd));
  if (it == sys::st().windows.end()) {
    buf[0] = 0;
    SetLastError(ERROR_INVALID_HANDLE);
    return 0;
  }
  const std::u16string& t = it->second.title;
  size_t n = std::min(t.size(), static_cast<size_t>(max - 1));
  std::copy(t.begin(), t.begin() + static_cast<std::ptrdiff_t>(n), buf);
  buf[n] = 0;
  return static_cast<int>(n);
}

int GetWindowTextLengthW(HWND hWnd) { return static_cast<int>(sys::windowTitle(hWnd).size()); }

BOOL PostMessageW(HWND hWnd, UINT msg, WPARAM wp, LPARAM lp) {
  return sys::postMessage(hWnd, msg, wp, lp) ? TRUE : FALSE;
}

UINT_PTR SetTimer(HWND hWnd, UINT_PTR id, UINT elapse, TIMERPROC proc) {
  UINT_PTR r = sys::setTimer(hWnd, id, elapse, proc);
  if (!r) SetLastError(ERROR_INVALID_HANDLE);
  return r;
}

BOOL KillTimer(HWND hWnd, UINT_PTR id) { return sys::killTimer(hWnd, id) ? TRUE : FALSE; }

DWORD GetTickCount() { return static_cast<DWORD>(sys::now()); }
