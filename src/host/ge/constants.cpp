// Process-wide values of the geometry library. Every one has a constant
// initializer, so each is ready before any static constructor runs.
#include "host/gegbl.h"
#include "host/gemat2d.h"
#include "host/gemat3d.h"
#include "host/gescl3d.h"

AcGeTol AcGeContext::gTol;

const AcGeVector2d AcGeVector2d::kIdentity(0.0, 0.0);
const AcGeVector2d AcGeVector2d::kXAxis(1.0, 0.0);
const AcGeVector2d AcGeVector2d::kYAxis(0.0, 1.0);
const AcGePoint2d AcGePoint2d::kOrigin(0.0, 0.0);

const AcGeVector3d AcGeVector3d::kIdentity(0.0, 0.0, 0.0);
const AcGeVector3d AcGeVector3d::kXAxis(1.0, 0.0, 0.0);
const AcGeVector3d AcGeVector3d::kYAxis(0.0, 1.0, 0.0);
const AcGeVector3d AcGeVector3d::kZAxis(0.0, 0.0, 1.0);
const AcGePoint3d AcGePoint3d::kOrigin(0.0, 0.0, 0.0);

const AcGeMatrix2d AcGeMatrix2d::kIdentity;
const AcGeMatrix3d AcGeMatrix3d::kIdentity;
const AcGeScale3d AcGeScale3d::kIdentity(1.0, 1.0, 1.0);
