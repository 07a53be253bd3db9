// What the drawing family's LISP functions share: the argument reader of
// the geometry family and a few ways of giving results back.
#pragma once

#include "geometry/lisp_args.h"
#include "host/dbapserv.h"

namespace zepk::drawing {

using geometry::lispargs::Args;
using geometry::lispargs::retBool;
using geometry::lispargs::retNil;
using geometry::lispargs::Styles;
using frame::MsgStyle;

// The style of the wrappers that have none of their own.
inline constexpr Styles kBang{MsgStyle::Bang, MsgStyle::Bang};

// The entity name of an object, or nil when it has none.
inline int retName(AcDbObjectId id) {
  ads_name n;
  if (id.isNull() || acdbGetAdsName(n, id) != Acad::eOk) return retNil();
  acedRetName(n, RTENAME);
  return RSRSLT;
}

inline int retT() {
  acedRetT();
  return RSRSLT;
}

}  // namespace zepk::drawing
