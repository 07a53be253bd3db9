// Selecting objects: the "Select objects:" prompt that commands and ssget
// share, and the selection modes on the working drawing.
//
// Commands that work on objects call selectObjects; it reads answers until
// Enter:
//   a point             the entity under it (see pick.h); on nothing, the
//                       point is a window's first corner ("Specify opposite
//                       corner:"): to the right a window, to the left crossing
//   W, C, BOX           a window, a crossing window, or either by the corners
//   WP, CP, F           a window polygon, crossing polygon or fence by
//                       points until Enter ("U" takes the last point back)
//   ALL, L, P, G        all (but frozen), the last entity, the previous
//                       selection, a group by name
//   R, A                remove mode ("Remove objects:"), add mode again
//   M                   several picks until Enter, counted together
//   U                   takes the last selection back
//   AU, SI              automatic picking (the default); one selection only
//   an entity name or a selection set given by a program
// Each selection says "n found" (with the duplicates, removed and total
// counts once the set has members); anything else is "*Invalid selection*"
// with the list of what the prompt expects.
#pragma once

#include <string>
#include <vector>

#include "host/db/memfiler.h"
#include "host/dbid.h"
#include "host/editor/selgeom.h"

namespace zepk::editor {

struct SelectOptions {
  std::u16string prompt = u"\nSelect objects: ";
  std::u16string removePrompt = u"\nRemove objects: ";
  // Ends after the first selection (ssget ":S", the SI answer).
  bool single = false;
  // Leaves out entities on locked layers, saying "n was on a locked
  // layer." (commands that change entities; ssget ":L").
  bool rejectLocked = false;
  // A pick takes every entity under the point, not the top one (":E").
  bool everythingUnderPick = false;
  // An ssget filter list that every entity selected must pass.
  std::vector<db::DxfItem> filter;
};

// Asks until Enter. RTNORM with the entities selected (in the order
// selected; possibly none), RTCAN when cancelled.
int selectObjects(const SelectOptions& options, std::vector<AcDbObjectId>* out);

// The geometric modes without asking, in display (user) coordinates.
enum class ShapeMode { Window, Crossing, WPolygon, CPolygon, Fence };
std::vector<AcDbObjectId> selectByShape(ShapeMode mode, const std::vector<selgeom::Pt>& points,
                                        bool rejectLocked = false);

}  // namespace zepk::editor
