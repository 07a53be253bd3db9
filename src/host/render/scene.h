// Walks a drawing's model space and draws each entity through a sink: the
// entity's traits first, then the entity itself (its own worldDraw, else
// the host's drawing of its kind); block references draw their block's
// entities through the reference's transform, with ByBlock meaning the
// reference's properties, then their attributes.
#pragma once

#include "host/dbmain.h"
#include "host/render/sink.h"

class AcDbEntity;

namespace zepk::render {

void drawModelSpace(AcDbDatabase* db, Sink& sink);
// The same as a screen shows it with the drawing's temporary graphics:
// hidden entities left out, highlighted ones dashed, then the entities
// drawn again on top and the temporary vectors.
void drawModelSpaceWithOverlay(AcDbDatabase* db, Sink& sink);
void drawEntity(AcDbEntity* e, Sink& sink, int depth = 0);

// The extents of what model space draws, on the plan; false when nothing
// is drawn.
bool modelSpaceExtents(AcDbDatabase* db, double* minX, double* minY, double* maxX, double* maxY);

}  // namespace zepk::render
