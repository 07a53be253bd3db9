// What the drawing family's LISP functions share: the argument reader of
// the geometry family and a few ways of giving results back.
#pragma once

#include "geometry/lisp_args.h"
#include "host/dbapserv.h"
#include "host/dbents.h"

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

// A new selection set of the entities; nil when there are none.
int retSet(const std::vector<AcDbObjectId>& ids);

inline int retT() {
  acedRetT();
  return RSRSLT;
}

// The box of an entity in the frame turned by angle about the origin: the
// corners lower left, lower right, upper right, upper left, in world
// coordinates. False when the entity has no extents.
bool boxCorners(const AcDbEntity& e, double angle, AcGePoint3d corners[4]);
// A box as LISP gets it: the lower left and upper right corners, or nine
// points in reading order from the upper left; rounded to digits decimal
// places unless digits is negative.
int retBox(const AcGePoint3d corners[4], bool nine, int digits);

}  // namespace zepk::drawing
