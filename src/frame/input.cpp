#include "frame/input.h"

#include <cmath>
#include <string>

#include "frame/lisp_bridge.h"
#include "frame/version.h"
#include "host/aced.h"
#include "host/gegbl.h"

namespace zepk::frame {

namespace {

constexpr MsgStyle kStyle = MsgStyle::Plain;

// The one optional argument of the simple input functions: a prompt.
// False after the failure was printed.
bool optionalPrompt(std::u16string& prompt) {
  resbuf* cur = acedGetArgs();
  if (!cur) return true;
  if (RbGetCString(&cur, prompt) != RTNORM) {
    failBadArg(kStyle);
    return false;
  }
  if (cur) {
    failTooMany(kStyle);
    return false;
  }
  return true;
}

// The result of an input call: a cancel fails silently, Enter gives nil.
int inputDone(int st) {
  if (st == RTNONE) {
    acedRetNil();
    return RSRSLT;
  }
  return RTERROR;
}

}  // namespace

int lispGetInt() {
  std::u16string prompt = u"\n输入整数: ";
  if (!optionalPrompt(prompt)) return RTERROR;
  int v = 0;
  int st = acedGetInt(prompt.c_str(), &v);
  if (st != RTNORM) return inputDone(st);
  acedRetInt(v);
  return RSRSLT;
}

int lispGetReal() {
  std::u16string prompt = u"\n输入实数: ";
  if (!optionalPrompt(prompt)) return RTERROR;
  double v = 0;
  int st = acedGetReal(prompt.c_str(), &v);
  if (st != RTNORM) return inputDone(st);
  acedRetReal(v);
  return RSRSLT;
}

int lispGetString() {
  std::u16string prompt = u"\n输入字符串: ";
  if (!optionalPrompt(prompt)) return RTERROR;
  ACHAR buf[2049] = {0};
  int st = acedGetString(0, prompt.c_str(), buf, 2049);
  if (st != RTNORM) return inputDone(st);
  acedRetStr(buf);
  return RSRSLT;
}

// (ZEPK-GetPoint [base] [prompt]) or (ZEPK-GetPoint prompt).
int lispGetPoint() {
  resbuf* cur = acedGetArgs();
  std::u16string prompt = u"\n指定点: ";
  ads_point base;
  bool hasBase = false;
  if (cur) {
    if (RbGetPoint3d(&cur, base) == RTNORM) {
      hasBase = true;
      if (cur && RbGetCString(&cur, prompt) != RTNORM) return failBadArg(kStyle, 2);
    } else if (RbGetCString(&cur, prompt) != RTNORM) {
      return failBadArg(kStyle, 1);
    }
    if (cur) return failTooMany(kStyle);
  }
  ads_point pt;
  int st = acedGetPoint(hasBase ? base : nullptr, prompt.c_str(), pt);
  if (st != RTNORM) return inputDone(st);
  acedRetPoint(pt);
  return RSRSLT;
}

int lispEntSel() {
  std::u16string prompt = u"\n选择对象: ";
  if (!optionalPrompt(prompt)) return RTERROR;
  ads_name ent;
  ads_point pt;
  int st = acedEntSel(prompt.c_str(), ent, pt);
  if (st == RTNORM) {
    return retList(acutBuildList(RTENAME, ent, RT3DPOINT, pt, 0));
  }
  if (st == RTKWORD) {
    ACHAR kw[512] = {0};
    acedGetInput(kw, 512);
    acedRetStr(kw);
    return RSRSLT;
  }
  acedRetNil();
  return RSRSLT;
}

// An example command: an integer that must be positive and non-zero, then
// a real or one of four keywords, with 12.0 for Enter.
int lispMyInput() {
  int n = 0;
  acedInitGet(6, nullptr);
  int st = acedGetInt(u"\nEnter an integer value: ", &n);
  if (st != RTNORM) return RTERROR;
  double value = 12.0;
  acedInitGet(0, u"PI A B C");
  st = acedGetReal(u"\nEnter a real value [PI/A/B/C] <C>: ", &value);
  if (st == RTKWORD) {
    ACHAR kw[64] = {0};
    acedGetInput(kw, 64);
    std::u16string k = kw;
    if (k == u"PI") {
      value = M_PI;
    } else if (k == u"C") {
      value = 12.0;
    } else {
      acutPrintf(u"\nInteger %d, keyword %s.", n, kw);
      acedRetVoid();
      return RSRSLT;
    }
  } else if (st == RTNONE) {
    value = 12.0;
  } else if (st != RTNORM) {
    return RTERROR;
  }
  acutPrintf(u"\nInteger %d, real %g.", n, value);
  acedRetVoid();
  return RSRSLT;
}

// The number goes into both fields of the global tolerance before the
// surplus test, so (ZEPK-SetPrec 1e-6 2) fails with the tolerance set. A
// value of another type is ignored without a word.
int lispSetPrec() {
  resbuf* cur = acedGetArgs();
  if (!cur) return failTooFew(kStyle);
  double v = 0;
  if (RbGetReal(&cur, v) == RTNORM) {
    AcGeContext::gTol.setEqualPoint(v);
    AcGeContext::gTol.setEqualVector(v);
  } else {
    cur = cur->rbnext;
  }
  if (cur) return failTooMany(kStyle);
  acedRetT();
  return RSRSLT;
}

int lispGetPrec() {
  if (acedGetArgs()) return failTooMany(kStyle);
  double v[2] = {AcGeContext::gTol.equalPoint(), AcGeContext::gTol.equalVector()};
  return retList(RbFromReals(v, 2));
}

// A surplus argument is reported but the call still succeeds, with no
// result.
int lispGetVersion() {
  if (acedGetArgs()) {
    acdbFail(tooManyText(kStyle).c_str());
    return RSRSLT;
  }
  acedRetStr(kVersion);
  return RSRSLT;
}

}  // namespace zepk::frame
