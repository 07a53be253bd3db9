// Windows, timers on the virtual clock, and messages to the watchers.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/system/winmsg.h"

namespace sys = zepk::sys;

namespace {

struct Event {
  HWND w;
  UINT msg;
  UINT_PTR id;
  DWORD time;
};
std::vector<Event> fired;
std::vector<MSG> watched;

void proc(HWND w, UINT msg, UINT_PTR id, DWORD time) { fired.push_back({w, msg, id, time}); }
void watcher(const MSG* m) { watched.push_back(*m); }
void killSelf(HWND w, UINT msg, UINT_PTR id, DWORD time) {
  fired.push_back({w, msg, id, time});
  KillTimer(w, id);
}

class Windows : public ::testing::Test {
 protected:
  void SetUp() override {
    sys::resetWindows();
    fired.clear();
    watched.clear();
  }
  void TearDown() override { sys::resetWindows(); }
};

TEST_F(Windows, FoundByClassAndTitleShownAndRetitled) {
  HWND main = sys::createWindow(u"MainFrame", u"ZEPK", nullptr, true);
  HWND tip = sys::createWindow(u"tooltips", u"ToolTip Demo", nullptr, true);
  HWND child = sys::createWindow(u"Child", u"Drawing1.dwg", main, true);
  EXPECT_EQ(FindWindowW(u"MainFrame", nullptr), main);
  EXPECT_EQ(FindWindowW(nullptr, u"ToolTip Demo"), tip);
  EXPECT_EQ(FindWindowW(u"tooltips", u"ZEPK"), nullptr);
  EXPECT_EQ(FindWindowW(u"Child", nullptr), nullptr);  // only top-level windows
  EXPECT_TRUE(ShowWindow(tip, SW_HIDE));
  EXPECT_FALSE(IsWindowVisible(tip));
  EXPECT_FALSE(ShowWindow(tip, SW_SHOW));
  EXPECT_TRUE(SetWindowTextW(child, u"测量.dxf"));
  WCHAR buf[5];
  EXPECT_EQ(GetWindowTextW(child, buf, 5), 4);
  EXPECT_EQ(std::u16string(buf), u"测量.d");
  EXPECT_EQ(GetWindowTextLengthW(child), 6);
  sys::destroyWindow(child);
  EXPECT_FALSE(IsWindow(child));
  EXPECT_FALSE(SetWindowTextW(child, u"x"));
  EXPECT_EQ(GetWindowTextW(child, buf, 5), 0);
}

TEST_F(Windows, TimersFireInOrderOfTimeOnTheVirtualClock) {
  HWND a = sys::createWindow(u"Doc", u"A", nullptr, true);
  HWND b = sys::createWindow(u"Doc", u"B", nullptr, true);
  sys::useVirtualClock(true);
  EXPECT_EQ(sys::now(), 0u);  // the first virtual time is 0 on every run
  EXPECT_EQ(SetTimer(a, 1, 300, proc), 1u);
  EXPECT_EQ(SetTimer(b, 7, 200, proc), 7u);
  EXPECT_EQ(sys::advance(199), 0);
  EXPECT_EQ(sys::advance(1), 1);
  EXPECT_EQ(sys::advance(600), 5);  // b at 400, 600, 800; a at 300 and 600
  ASSERT_EQ(fired.size(), 6u);
  std::vector<std::pair<HWND, DWORD>> got;
  for (const Event& e : fired) got.push_back({e.w, e.time});
  std::vector<std::pair<HWND, DWORD>> want{{b, 200}, {a, 300}, {b, 400}, {a, 600}, {b, 600}, {b, 800}};
  EXPECT_EQ(got, want);
  EXPECT_EQ(fired[0].msg, static_cast<UINT>(WM_TIMER));
  EXPECT_EQ(fired[0].id, 7u);
  // Setting the same window and event again changes the interval of that
  // one timer; killing it stops it, and a second kill fails.
  fired.clear();
  EXPECT_EQ(SetTimer(a, 1, 50, proc), 1u);
  EXPECT_EQ(sys::timerCount(), 2u);
  sys::advance(100);
  EXPECT_EQ(fired.size(), 2u);
  EXPECT_TRUE(KillTimer(a, 1));
  EXPECT_FALSE(KillTimer(a, 1));
  EXPECT_FALSE(KillTimer(b, 1));
  // A timer of a window that goes, goes with it.
  sys::destroyWindow(b);
  EXPECT_EQ(sys::timerCount(), 0u);
  EXPECT_EQ(SetTimer(b, 1, 10, proc), 0u);
}

TEST_F(Windows, ProcedureMayKillItsTimerAndWatchersSeeTheRest) {
  HWND a = sys::createWindow(u"Doc", u"A", nullptr, true);
  ASSERT_TRUE(sys::addWatcher(watcher));
  EXPECT_FALSE(sys::addWatcher(watcher));
  sys::useVirtualClock(true);
  SetTimer(a, 3, 10, killSelf);
  SetTimer(a, 4, 25, nullptr);  // no procedure: WM_TIMER to the watchers
  ASSERT_TRUE(PostMessageW(a, WM_COMMAND, 1001, 0));
  sys::advance(60);
  EXPECT_EQ(fired.size(), 1u);  // killed itself at the first event
  int timers = 0, commands = 0;
  for (const MSG& m : watched) {
    if (m.message == WM_TIMER && m.wParam == 4) ++timers;
    if (m.message == WM_COMMAND && m.wParam == 1001) ++commands;
  }
  EXPECT_EQ(timers, 2);  // 25 and 50
  EXPECT_EQ(commands, 1);
  EXPECT_TRUE(sys::removeWatcher(watcher));
  EXPECT_FALSE(sys::removeWatcher(watcher));
  EXPECT_FALSE(PostMessageW(reinterpret_cast<HWND>(uintptr_t{3}), WM_COMMAND, 0, 0));
}

TEST_F(Windows, RealClockFiresOnceForManyMissedIntervals) {
  HWND a = sys::createWindow(u"Doc", u"A", nullptr, true);
  SetTimer(a, 1, 10, proc);
  // Idle time after a long busy spell: the timer comes once, as WM_TIMER
  // messages do, and is due again an interval later.
  sys::useVirtualClock(true);
  sys::useVirtualClock(false);
  EXPECT_EQ(sys::pump(), 0);
  uint64_t start = sys::now();
  while (sys::now() < start + 40) {
  }
  EXPECT_EQ(sys::pump(), 1);
  EXPECT_EQ(fired.size(), 1u);
  EXPECT_EQ(sys::pump(), 0);
}

}  // namespace
