#include "frame/callbacks.h"

#include <cstdint>

#include "frame/app.h"
#include "frame/lisp_bridge.h"
#include "host/acedwin.h"
#include "host/wincompat.h"

namespace zepk::frame {

namespace {

// One timer slot and one hook for the whole module, shared by documents.
struct CallbackState {
  HWND timerWnd = nullptr;
  UINT_PTR timerId = 0;
  std::u16string timerName;
  std::u16string hookName;
  int32_t hookFlag = 0;
};

CallbackState& state() {
  static CallbackState s;
  return s;
}

// Window handles and message parameters go to LISP as 32-bit integers.
int32_t low32(uintptr_t v) { return static_cast<int32_t>(static_cast<uint32_t>(v)); }

// The answer of a callback: released when it worked, otherwise the status
// is printed and the argument list is left as it is.
void finishCall(resbuf* args, int st, resbuf* result) {
  if (st == RTNORM && result) {
    acutRelRb(result);
    acutRelRb(args);
    return;
  }
  if (result) acutRelRb(result);
  acutPrintf(u"\nError code is: %d.", st);
  // The argument list is not released on this path; it is dropped here so
  // that the session does not keep it.
  acutRelRb(args);
}

void timerRoutine(HWND wnd, UINT msg, UINT_PTR event, DWORD time) {
  CallbackState& s = state();
  // Only in the document where the timer was set.
  if (adsw_acadDocWnd() != s.timerWnd) return;
  resbuf* args = acutBuildList(RTSTR, s.timerName.c_str(), RTLONG, low32(reinterpret_cast<uintptr_t>(wnd)), RTLONG,
                               low32(msg), RTLONG, low32(event), RTLONG, low32(time), 0);
  if (!args) return;
  resbuf* result = nullptr;
  int st = acedInvoke(args, &result);
  finishCall(args, st, result);
}

void messageRoutine(const MSG* m) {
  CallbackState& s = state();
  if (!m || s.hookName.empty()) return;
  ads_point cursor = {static_cast<double>(m->pt.x), static_cast<double>(m->pt.y), 0.0};
  resbuf* args = acutBuildList(RTSTR, s.hookName.c_str(), RTLONG, low32(reinterpret_cast<uintptr_t>(m->hwnd)), RTLONG,
                               low32(m->message), RTLONG, low32(m->wParam), RTLONG, low32(static_cast<uintptr_t>(m->lParam)),
                               RTLONG, low32(m->time), RTPOINT, cursor, 0);
  if (!args) return;
  resbuf* result = nullptr;
  int st = acedInvoke(args, &result);
  finishCall(args, st, result);
}

}  // namespace

const std::u16string& catchWrapperText() {
  static const std::u16string text =
      u"(defun brightwren-Catch (Callback_Name Callback_Argument / catchit)"
      u"\t\t\t\t\t\t   (setq catchit (VL-CATCH-ALL-APPLY (read Callback_Name) (list Callback_Argument)))"
      u"\t\t\t\t\t\t   (if (vl-catch-all-error-p catchit)"
      u"\t\t\t\t\t\t   (strcat \"\\nERROR:\" (vl-catch-all-error-message catchit))"
      u"\t\t\t\t\t\t   catchit))";
  return text;
}

void queueCatchWrapper() {
  ads_queueexpr(u"(vl-acad-defun 'vl-acad-defun)");
  ads_queueexpr(catchWrapperText().c_str());
  ads_queueexpr(u"(vl-acad-defun 'brightwren-Catch)");
}

void defineCallback(const ACHAR* name) {
  resbuf* args = acutBuildList(RTSTR, u"vl-acad-defun", RTSTR, name, 0);
  if (!args) return;
  resbuf* result = nullptr;
  acedInvoke(args, &result);
  acutRelRb(args);
  if (result) acutRelRb(result);
}

int invokeCallback(const ACHAR* name, int type, const void* value, resbuf** result) {
  if (!name) return RTNONE;
  resbuf* args = acutBuildList(RTSTR, name, 0);
  if (!args) return RTERROR;
  resbuf* arg = acutNewRb(type);
  if (!arg) {
    acutRelRb(args);
    return RTERROR;
  }
  switch (type) {
    case RTREAL: arg->resval.rreal = *static_cast<const double*>(value); break;
    case RTSHORT: arg->resval.rint = *static_cast<const short*>(value); break;
    case RTLONG: arg->resval.rlong = *static_cast<const int32_t*>(value); break;
    case RTPOINT:
    case RT3DPOINT:
      for (int i = 0; i < 3; ++i) arg->resval.rpoint[i] = static_cast<const double*>(value)[i];
      break;
    case RTENAME:
    case RTPICKS: ads_name_set(static_cast<const int64_t*>(value), arg->resval.rlname); break;
    case RTSTR: {
      acutRelRb(arg);
      arg = acutBuildList(RTSTR, static_cast<const ACHAR*>(value), 0);
      break;
    }
    default: break;  // RTNIL, RTT and the like carry no value
  }
  if (!arg) {
    acutRelRb(args);
    return RTERROR;
  }
  args->rbnext = arg;
  int st = acedInvoke(args, result);
  acutRelRb(args);
  return st;
}

int lispSetLispTimer() {
  resbuf* cur = acedGetArgs();
  if (!cur) {
    acedRetNil();
    return RTNONE;
  }
  std::u16string name;
  if (RbGetCString(&cur, name) != RTNORM) return fail(u"\n第一个参数为字符串，代表回调函数");
  CallbackState& s = state();
  s.timerName = name;
  defineCallback(s.timerName.c_str());
  int32_t ms = 0;
  if (RbGetLong(&cur, ms) != RTNORM) {
    acutPrintf(u"\n第二个参数为时间间隔(INT)，毫秒为单位.");
    return RTNONE;
  }
  s.timerWnd = adsw_acadDocWnd();
  s.timerId = SetTimer(s.timerWnd, 1, static_cast<UINT>(ms), timerRoutine);
  acedRetInt(static_cast<int>(s.timerId));
  return RTNORM;
}

int lispKillLispTimer() {
  CallbackState& s = state();
  if (KillTimer(s.timerWnd, s.timerId)) {
    acedRetT();
    return RTNORM;
  }
  acedRetNil();
  return RTERROR;
}

bool hookInstalled() { return state().hookFlag == 1; }

bool removeHook() {
  CallbackState& s = state();
  if (s.hookFlag != 1) {
    acutPrintf(u"\nNo hook can be removed!\n");
    return false;
  }
  if (!acedRemoveWatchWinMsg(messageRoutine)) {
    acutPrintf(u"\nCan't remove the hook!\n");
    return false;
  }
  acutPrintf(u"\nHook has been removed!\n");
  s.hookFlag = 0;
  return true;
}

int lispRegisterHook() {
  resbuf* cur = acedGetArgs();
  if (!cur) {
    acutPrintf(u"\n参数为空，函数返回");
    acedRetNil();
    return RTNONE;
  }
  CallbackState& s = state();
  // An installed hook goes first, whatever the argument turns out to be.
  if (s.hookFlag == 1) removeHook();
  std::u16string name;
  if (RbGetCString(&cur, name) != RTNORM) return fail(u"\n参数为字符！代表回调函数!");
  s.hookName = name;
  defineCallback(s.hookName.c_str());
  if (acedRegisterWatchWinMsg(messageRoutine)) {
    acutPrintf(u"Hook is working now!\n");
    s.hookFlag = 1;
    acedRetT();
    return RTNORM;
  }
  acutPrintf(u"Hook can't be registered!\n");
  acedRetNil();
  return RTERROR;
}

int lispRemoveHook() {
  CallbackState& s = state();
  if (s.hookFlag != 1) {
    acutPrintf(u"\nNo hook can be removed!\n");
    acedRetNil();
    return RTNONE;
  }
  if (!removeHook()) {
    acedRetNil();
    return RTERROR;
  }
  acedRetT();
  return RTNORM;
}

namespace {

// The meter's functions fail with a void result set.
int failVoid(const std::u16string& text) {
  acdbFail(text.c_str());
  acedRetVoid();
  return RTERROR;
}

}  // namespace

int lispProgressInit() {
  resbuf* cur = acedGetArgs();
  ProgressMeter& pm = currentDocData().progress;
  const ACHAR* title = nullptr;
  int32_t limit = 100;
  if (cur && cur->restype == RTSTR) RbGetStrPtr(&cur, title);
  if (cur) {
    if (RbGetLong(&cur, limit) != RTNORM) return failVoid(u"第2个参数应为整数");
    if (cur) return failVoid(tooManyText(MsgStyle::Plain));
  }
  // The title points into the call's arguments, as the status bar takes it.
  pm.title = title;
  pm.limit = limit;
  pm.current = 0;
  pm.scale = 100;
  pm.shown = 0;
  acedSetStatusBarProgressMeter(title ? title : u"", 0, 100);
  acedRetVoid();
  return RSRSLT;
}

int lispProgress() {
  resbuf* cur = acedGetArgs();
  ProgressMeter& pm = currentDocData().progress;
  if (cur) {
    int32_t v = 0;
    if (RbGetLong(&cur, v) != RTNORM) return failVoid(u"参数应为整数");
    if (cur) return failVoid(tooManyText(MsgStyle::Plain));
    pm.current = v;
  } else {
    ++pm.current;
  }
  // A limit of 0 would divide by zero; the meter then stays where it is.
  if (pm.limit != 0) {
    int32_t pos = static_cast<int32_t>(static_cast<int64_t>(pm.scale) * pm.current / pm.limit);
    if (pos > pm.shown) {
      pm.shown = pos;
      acedSetStatusBarProgressMeterPos(pos);
    }
  }
  acedRetVoid();
  return RSRSLT;
}

int lispProgressDone() {
  if (acedGetArgs()) return failTooMany(MsgStyle::Plain);
  acedRestoreStatusBar();
  acedRetVoid();
  return RSRSLT;
}

// Hides the top dialog window, or else the tooltip demo window, and gives
// the handle's low 32 bits as the status, with no LISP value.
int lispModal2Modeless() {
  HWND w = FindWindowW(u"adesk_dlg0000", nullptr);
  if (!w) w = FindWindowW(nullptr, u"ToolTip Demo");
  if (w) ShowWindow(w, SW_HIDE);
  return low32(reinterpret_cast<uintptr_t>(w));
}

void cmdInvokeLsp() {
  if (ads_queueexpr(u"(load \"c:/test.lsp\")") == RTNORM) {
    acutPrintf(u"\n加载成功...");
  } else {
    acutPrintf(u"\n加载失败...");
  }
}

}  // namespace zepk::frame
