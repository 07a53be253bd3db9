// Shared names of the geometry library: the AcGe scope with its enumerations,
// and the process-wide context whose tolerance every comparison uses when it
// is given none.
#pragma once

#include "host/adesk.h"
#include "host/getol.h"

struct AcGe {
  // Kinds of geometric entity, answered by type() and tested by isKindOf().
  enum EntityId {
    kEntity2d,
    kEntity3d,
    kPointEnt2d,
    kPointEnt3d,
    kPosition2d,
    kPosition3d,
    kPointOnCurve2d,
    kPointOnCurve3d,
    kBoundBlock2d,
    kBoundBlock3d,
    kCurve2d,
    kCurve3d,
    kLinearEnt2d,
    kLinearEnt3d,
    kLine2d,
    kLine3d,
    kLineSeg2d,
    kLineSeg3d,
    kRay2d,
    kRay3d,
    kCircArc2d,
    kCircArc3d,
    kEllipArc2d,
    kEllipArc3d,
    kSplineEnt2d,
    kSplineEnt3d,
    kNurbCurve2d,
    kNurbCurve3d,
    kPolyline2d,
    kPolyline3d,
    kCompositeCrv2d,
    kCompositeCrv3d,
    kCurveCurveInt2d,
    kCurveCurveInt3d,
    kSurface,
    kPlanarEnt,
    kPlane,
    kBoundedPlane,
  };

  // Outcome of operations that can meet degenerate input.
  enum ErrorCondition {
    kOk,
    kNonCoplanarGeometry,
    kDegenerateGeometry,
    kSingularPoint,
  };

  // Where a point lies with respect to a closed region.
  enum PointContainment { kInside, kOutside, kOnBoundary };

  // How far a curve is taken when it is intersected or measured.
  enum ExtendFlags { kNoExtend = 0, kExtendFirst = 1, kExtendSecond = 2, kExtendBoth = 3 };
};

struct AcGeContext {
  // The default tolerance of every comparison that is given none. It is
  // process-wide and stays as set until it is set again.
  static AcGeTol gTol;
};
