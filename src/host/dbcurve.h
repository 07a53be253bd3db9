// Curves: AcDbCurve and the curve entities of dbents.h (lines, circles,
// arcs, old-style polylines), with the others in their own headers.
#pragma once

#include "host/dbents.h"
