// Internal: what the curve operations of the curve classes share.
#pragma once

#include "host/dbents.h"

class AcGeCurve3d;
class AcGeCircArc3d;

namespace zepk::db {

// A curve entity of the geometry, of the kind of `like` where the
// geometry allows it (a polyline's pieces stay polylines of its class, in
// its plane; a circle's piece is an arc), with like's properties. Null for
// geometry no entity holds.
AcDbCurve* curveFromGe(const AcGeCurve3d& ge, const AcDbCurve* like);
// An arc entity of the geometry's arc, turned to face preferredNormal.
AcDbArc* arcFromGe(const AcGeCircArc3d& arc, const AcGeVector3d& preferredNormal);

}  // namespace zepk::db
