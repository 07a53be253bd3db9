// Windows, timers and window messages for a host with no window system.
//
// A window is a record (class, title, visibility, parent). Timers fire from
// the command loop's idle time: pump() runs the timers that are due on the
// host's clock and hands queued messages to the watchers. The clock is the
// real monotonic clock until a program asks for the virtual one; then it
// stands still except when advance() moves it, firing every timer that
// falls due on the way in order of time, so that what a test sees does not
// depend on how fast the machine is.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/wincompat.h"

namespace zepk::sys {

// ---------------------------------------------------------------- windows

HWND createWindow(std::u16string_view className, std::u16string_view title, HWND parent, bool visible);
// Kills the window's timers and drops its queued messages.
void destroyWindow(HWND w);
bool windowExists(HWND w);
std::u16string windowTitle(HWND w);
std::u16string windowClass(HWND w);

// ------------------------------------------------------------------ clock

// Milliseconds since the clock started.
uint64_t now();
bool virtualClock();
// Switches to the virtual clock or back to the real one, which goes on
// from the virtual time. The virtual clock stands at 0 the first time it
// is used (timers keep their distances), so that times are the same on
// every run.
void useVirtualClock(bool on);
// Moves the virtual clock forward by ms, firing the timers due on the way
// (a timer due again within the step fires again). Switches to the virtual
// clock first. Gives the number of timer events fired.
int advance(uint64_t ms);

// ----------------------------------------------------------------- timers

UINT_PTR setTimer(HWND w, UINT_PTR id, UINT elapse, TIMERPROC proc);
bool killTimer(HWND w, UINT_PTR id);
size_t timerCount();

// --------------------------------------------------------------- messages

// A watcher sees every message the loop handles, as the host's registered
// window message watchers do (a timer with no procedure comes as WM_TIMER).
typedef void (*MessageWatcher)(const MSG*);
bool addWatcher(MessageWatcher fn);
bool removeWatcher(MessageWatcher fn);

bool postMessage(HWND w, UINT msg, WPARAM wp, LPARAM lp);
// Idle time of the command loop: fires the timers due on the real clock
// (once each, however many intervals passed) and delivers the queued
// messages. Gives the count of timer events and messages handled.
int pump();

// Forgets every window, timer, watcher and message and goes back to the
// real clock (tests).
void resetWindows();

}  // namespace zepk::sys
