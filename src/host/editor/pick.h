// Entities as selection sees them, and picking by a point.
//
// With no screen, the view is the current user coordinate system seen from
// above: the points a user gives are in that system, and entities are
// flattened into it (see selgeom.h for the tests on the flat shapes). A
// pick takes the entity under the point within PICKBOX pixels, a pixel
// being VIEWSIZE divided by the screen's height in pixels (SCREENSIZE).
// Of several under the point, the one drawn last is on top and is taken.
#pragma once

#include <string>
#include <vector>

#include "host/dbents.h"
#include "host/editor/selgeom.h"
#include "host/gemat3d.h"

namespace zepk::editor {

// The entity flattened into the display. xf carries the entity's
// coordinates to the world (a block reference's transform for entities of
// its block). Entities on layers off or frozen inside a block leave no
// part. False when the entity has no shape that can be picked.
bool entityShape(const AcDbEntity* e, const AcGeMatrix3d& xf, selgeom::Shape* out);

// The world to display (user system) transform.
AcGeMatrix3d worldToDisplay();
// A block reference's block coordinates to the world.
AcGeMatrix3d blockTransform(const AcDbBlockReference* ref);

struct Candidate {
  AcDbObjectId id;
  selgeom::Shape shape;
  bool locked = false;  // on a locked layer
};
// The entities of the current space a user can see, in drawing order:
// visible, on layers that are on and thawed.
std::vector<Candidate> visibleEntities();
// True when the entity can be seen (its layer on and thawed, itself visible).
bool isVisible(const AcDbEntity* e);
// The pick box's half side in drawing units.
double pickTolerance();

// The top entity under the point (display coordinates); null if none.
AcDbObjectId pickAt(const std::vector<Candidate>& cands, const double p[3]);

// A pick that goes into block references: the entity hit, the transform
// from its coordinates to the world, and the references that hold it, the
// innermost first. An attribute is its reference's own entity.
struct NestedPick {
  AcDbObjectId id;
  AcGeMatrix3d xf;
  std::vector<AcDbObjectId> containers;
};
bool nestedPickAt(const double p[3], NestedPick* out);

// The entity of a "Select object:" answer (at the point given, else
// asked): RTNORM with the pick (nested goes into references) and the point,
// RTERROR for a pick on nothing (ERRNO 7) or Enter (ERRNO 52), RTKWORD,
// RTCAN.
int pickOne(const std::u16string& prompt, const double* given, bool nested, double pt[3], NestedPick* out);

}  // namespace zepk::editor
