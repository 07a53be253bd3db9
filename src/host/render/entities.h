// How the host's own entities draw: each kind as the primitives of the
// graphics interface, into any sink. Block references are walked by the
// scene (they need the block's entities and the trait inheritance).
#pragma once

#include <string>

#include "host/dbents.h"
#include "host/render/sink.h"

class AcDbText;
class AcDbMText;
class AcDbHatch;

namespace zepk::render {

// Where a point an entity keeps in its own coordinate system (that of its
// normal, as a drawing file holds the centres of circles and arcs, the
// corners of solids and the points of texts) lies in the world.
AcGePoint3d fromOcs(const AcGeVector3d& normal, const AcGePoint3d& p);

// Draws an entity of the host's own classes; false when the kind is not
// one the renderer draws (or is a block reference).
bool drawHostEntity(AcDbEntity* e, Sink& sink);

// Texts (text.cpp's font): single-line text with its alignment, and mtext
// with its wrapping and formatting codes.
void drawText(const AcDbText* t, Sink& sink, const std::u16string* shown = nullptr);
void drawMText(const AcDbMText* t, Sink& sink);
// Hatches: solid fill or the lines of the pattern.
void drawHatch(const AcDbHatch* h, Sink& sink);

}  // namespace zepk::render
