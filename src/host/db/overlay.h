// What a program draws over a drawing for the moment, as the screen of a
// CAD program would show it until the next redraw: temporary vectors,
// entities hidden or highlighted, and entities drawn again on top. Kept
// with the database; pictures of the drawing show it.
#pragma once

#include <set>
#include <vector>

#include "host/dbid.h"
#include "host/gepnt3d.h"

class AcDbDatabase;

namespace zepk::db {

struct TransientVector {
  AcGePoint3d from, to;  // world coordinates
  int color = 7;         // colour index; -1 draws in the colour that contrasts with what is under it
  bool highlight = false;
};

struct Overlay {
  std::vector<TransientVector> vectors;
  std::set<AcDbObjectId> hidden;
  std::set<AcDbObjectId> highlighted;
  std::vector<AcDbObjectId> onTop;
  bool empty() const { return vectors.empty() && hidden.empty() && highlighted.empty() && onTop.empty(); }
  // A full redraw: everything temporary is gone.
  void clear() { *this = Overlay(); }
};

// The overlay of a database, made on first use; lives as long as the
// database.
Overlay& overlayOf(AcDbDatabase* db);

}  // namespace zepk::db
