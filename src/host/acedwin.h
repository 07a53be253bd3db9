// The editor's window services: the host's windows, watchers of the window
// messages the command loop handles, and the progress meter of the status
// bar. This host has no screen: the windows are records (host/wincompat.h)
// and the status bar is a state that programs can read back
// (acedStatusBarProgress).
#pragma once

#include "host/acadstrc.h"
#include "host/ads.h"
#include "host/wincompat.h"

// The host's main window, and the window of the current document.
HWND adsw_acadMainWnd();
HWND adsw_acadDocWnd();

// Watchers see each message the command loop handles while idle (timers
// of windows with no procedure come as WM_TIMER, posted messages as
// posted). A function registered twice is refused (false).
typedef void (*AcedWatchWinMsgFn)(const MSG*);
bool acedRegisterWatchWinMsg(AcedWatchWinMsgFn pfn);
bool acedRemoveWatchWinMsg(AcedWatchWinMsgFn pfn);

// The progress meter: a label and a range, then positions within it.
// Each gives 0 on success, -1 without a meter or for a bad range.
int acedSetStatusBarProgressMeter(const ACHAR* pszLabel, int nMinPos, int nMaxPos);
int acedSetStatusBarProgressMeterPos(int nPos);
void acedRestoreStatusBar();

// What the meter shows now (for programs and tests).
struct AcedProgressState {
  bool shown = false;
  const ACHAR* label = nullptr;
  int minPos = 0, maxPos = 0, pos = 0;
  int updates = 0;  // positions set since the meter was set up
};
AcedProgressState acedStatusBarProgress();
