// LISP functions of the expression evaluators.
#include <string>
#include <vector>

#include "frame/lisp_bridge.h"
#include "host/ads.h"
#include "host/cstring.h"
#include "host/wincompat.h"
#include "services/express.h"
#include "services/lisp.h"

namespace zepk::services {

namespace {

// A list of numbers (reals, shorts or longs), or a point, which is how a
// list of two or three numbers arrives. False for anything else, the empty
// list included.
bool readNumbers(resbuf** cursor, std::vector<double>& out) {
  resbuf* rb = *cursor;
  if (!rb) return false;
  if (rb->restype == RTPOINT || rb->restype == RT3DPOINT) {
    out.assign(rb->resval.rpoint, rb->resval.rpoint + (rb->restype == RTPOINT ? 2 : 3));
    *cursor = rb->rbnext;
    return true;
  }
  if (rb->restype != RTLB) return false;
  std::vector<double> got;
  for (rb = rb->rbnext; rb && rb->restype != RTLE; rb = rb->rbnext) {
    if (rb->restype == RTREAL) got.push_back(rb->resval.rreal);
    else if (rb->restype == RTSHORT) got.push_back(rb->resval.rint);
    else if (rb->restype == RTLONG) got.push_back(rb->resval.rlong);
    else return false;
  }
  if (!rb || got.empty()) return false;
  out = std::move(got);
  *cursor = rb->rbnext;
  return true;
}

// The evaluator's failures are message boxes; the call still succeeds.
void showBox(const CString& text) { AfxMessageBox(text, MB_OK); }

}  // namespace

// (ZEPK-String-Express text [names values]): names as a list of strings or
// as strings one after another, values as a list of numbers. Every step is
// logged to "result.txt". Reports nothing: what it cannot read gives no
// result.
int lispStringExpress() {
  resbuf* cur = acedGetArgs();
  CString expr;
  if (RbGetCString(&cur, expr) != RTNORM) {
    acedRetNil();
    return RSRSLT;
  }
  CExpress express(showBox);
  if (!cur) {
    acedRetReal(express.evaluate(expr));
    return RSRSLT;
  }
  std::vector<std::u16string> names;
  std::vector<double> values;
  if (RbGetStringArray(&cur, names) != RTNORM || !readNumbers(&cur, values)) return RSRSLT;
  acedRetReal(express.evaluate(expr, std::vector<CString>(names.begin(), names.end()), values));
  return RSRSLT;
}

// (ZEPK-String-Cal text [format]): a format other than nil asks for text,
// and a short gives its number of decimals. A text that is a label rather
// than a formula comes back as it is, or as 0 when no text was asked for.
int lispStringCal() {
  resbuf* cur = acedGetArgs();
  if (!cur) return frame::fail(u"\n参数太少");
  CString text;
  if (RbGetCString(&cur, text) != RTNORM) return frame::fail(u"\n参数错误");
  bool asText = false;
  int decimals = -1;
  if (cur) {
    asText = cur->restype != RTNIL;
    if (cur->restype == RTSHORT) decimals = cur->resval.rint < 0 ? 0 : cur->resval.rint;
    cur = nextArgument(cur);
  }
  if (cur) return frame::fail(u"\n参数太多");

  std::optional<double> value = calculateFormula(text);
  if (!value) {
    if (asText) acedRetStr(text);
    else acedRetInt(0);
    return RSRSLT;
  }
  if (!asText) {
    acedRetReal(*value);
    return RSRSLT;
  }
  CString format(u"%0.f");
  if (decimals >= 0) format.Format(u"%%0.%df", decimals);
  CString result;
  result.Format(format, *value);
  acedRetStr(result);
  return RSRSLT;
}

}  // namespace zepk::services
