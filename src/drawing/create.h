// Making entities and table records in a drawing. Every part of the
// toolkit that draws goes through these routines, so that the space a new
// entity lands in, its defaults, a layer that already exists and a
// linetype that is missing are decided in one place.
//
// Every routine takes an optional database; null means the working
// drawing. An entity handed to an append routine belongs to the drawing on
// success and is closed by the routine in every case; on failure it is
// closed too (a new entity that never reached the drawing is deleted).
// The result is the host's status, Acad::eOk for success.
#pragma once

#include <string>
#include <vector>

#include "host/dbents.h"
#include "host/dbhatch.h"
#include "host/dbmain.h"
#include "host/dbpl.h"
#include "host/gepnt3d.h"

namespace zepk::drawing {

// Where a new entity goes: the space TILEMODE names (non-zero model space,
// zero paper space), or always one of the two.
enum class Space { kByTileMode, kModel, kPaper };

// The database a routine works on: db, or the working drawing when null.
AcDbDatabase* databaseOr(AcDbDatabase* db);

// The block table record's name for a space in a drawing.
const ACHAR* spaceName(Space space);

Acad::ErrorStatus appendToSpace(AcDbEntity* entity, AcDbObjectId& id, AcDbDatabase* db = nullptr,
                                Space space = Space::kByTileMode);
Acad::ErrorStatus appendToSpace(AcDbEntity* entity, AcDbDatabase* db = nullptr, Space space = Space::kByTileMode);

// Appends the entity to the block record that owns another (the space an
// entity made from it belongs in).
Acad::ErrorStatus appendToOwner(AcDbEntity* entity, AcDbObjectId owner, AcDbObjectId& id);

// A polyline's data: one bulge and one pair of widths per vertex, or none.
struct PolylineData {
  std::vector<AcGePoint3d> points;
  std::vector<double> bulges;
  std::vector<double> startWidths;
  std::vector<double> endWidths;
  bool closed = false;
};

// A new lightweight polyline of the data (in no drawing; the caller owns
// it), at the elevation of the first point.
AcDbPolyline* newLwPolyline(const PolylineData& data);

// The kinds of polyline a drawing holds.
enum class PolyKind { kLight, k2d, k3d };

Acad::ErrorStatus makeLine(AcDbObjectId& id, const AcGePoint3d& start, const AcGePoint3d& end,
                           AcDbDatabase* db = nullptr, Space space = Space::kByTileMode);
Acad::ErrorStatus makeCircle(AcDbObjectId& id, const AcGePoint3d& center, double radius, AcDbDatabase* db = nullptr,
                             Space space = Space::kByTileMode);
// The circle whose diameter joins two points.
Acad::ErrorStatus makeCircle2P(AcDbObjectId& id, const AcGePoint3d& p1, const AcGePoint3d& p2,
                               AcDbDatabase* db = nullptr, Space space = Space::kByTileMode);
// The circle through three points (eInvalidInput when they are in line).
Acad::ErrorStatus makeCircle3P(AcDbObjectId& id, const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3,
                               AcDbDatabase* db = nullptr, Space space = Space::kByTileMode);
// An arc counter-clockwise from the start angle to the end angle (radians).
Acad::ErrorStatus makeArc(AcDbObjectId& id, const AcGePoint3d& center, double radius, double startAngle,
                          double endAngle, AcDbDatabase* db = nullptr, Space space = Space::kByTileMode);
// The arc from p1 through p2 to p3 (eInvalidInput when they are in line).
Acad::ErrorStatus makeArc3P(AcDbObjectId& id, const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3,
                            AcDbDatabase* db = nullptr, Space space = Space::kByTileMode);
Acad::ErrorStatus makePolyline(AcDbObjectId& id, const PolylineData& data, PolyKind kind = PolyKind::kLight,
                               AcDbDatabase* db = nullptr, Space space = Space::kByTileMode);
Acad::ErrorStatus makeEllipse(AcDbObjectId& id, const AcGePoint3d& center, const AcGeVector3d& normal,
                              const AcGeVector3d& majorAxis, double radiusRatio, double startAngle, double endAngle,
                              AcDbDatabase* db = nullptr, Space space = Space::kByTileMode);
// A spline through fit points.
Acad::ErrorStatus makeSpline(AcDbObjectId& id, const std::vector<AcGePoint3d>& fitPoints, AcDbDatabase* db = nullptr,
                             Space space = Space::kByTileMode);
Acad::ErrorStatus makeText(AcDbObjectId& id, const AcGePoint3d& position, double height, const ACHAR* text,
                           double rotation = 0.0, AcDbDatabase* db = nullptr, Space space = Space::kByTileMode);
Acad::ErrorStatus makeMText(AcDbObjectId& id, const AcGePoint3d& location, double height, const ACHAR* contents,
                            double rotation = 0.0, double width = 0.0, AcDbDatabase* db = nullptr,
                            Space space = Space::kByTileMode);
// A hatch of polyline loops (each loop closed, a bulge per vertex or none)
// with a predefined pattern ("SOLID" fills).
struct HatchLoop {
  std::vector<AcGePoint2d> points;
  std::vector<double> bulges;
};
Acad::ErrorStatus makeHatch(AcDbObjectId& id, const std::vector<HatchLoop>& loops, const ACHAR* pattern,
                            double scale = 1.0, double angle = 0.0, AcDbDatabase* db = nullptr,
                            Space space = Space::kByTileMode);

// A block definition holding one entity. When the name exists already the
// entity joins that definition if appendIfExists, else it is deleted; the
// existing definition's id is given back either way. A new definition has
// its origin at zero. The table that cannot be written prints
// "错误:块表无法写操作\n".
Acad::ErrorStatus makeBlockRecord(AcDbObjectId& blockId, const ACHAR* name, AcDbEntity* entity,
                                  bool appendIfExists = true, AcDbDatabase* db = nullptr);
// A definition's id by name; when the drawing lacks it, the drawing
// name.dxf (then name.dwg) is looked for along the support path and read in
// as that block. Messages: "\n未找到指定名称的图块！", "\n不能打开 \"%s\" 图块！",
// "\n读取%s失败，错误：%d".
Acad::ErrorStatus findOrLoadBlock(AcDbObjectId& blockId, const ACHAR* name, AcDbDatabase* db = nullptr);
// A reference to a block (read from a file when missing, as above); with
// columns or rows above one an array of references.
struct InsertData {
  AcGePoint3d position;
  AcGeScale3d scale{1.0, 1.0, 1.0};
  double rotation = 0.0;
  int columns = 1, rows = 1;
  double columnSpacing = 0.0, rowSpacing = 0.0;
};
Acad::ErrorStatus insertBlock(AcDbObjectId& id, const ACHAR* name, const InsertData& data,
                              AcDbDatabase* db = nullptr, Space space = Space::kByTileMode);

// A layer made, or the existing one given this colour index and linetype
// (its frozen, off and locked states stay). A linetype the drawing lacks
// becomes "CONTINUOUS" without complaint. With setCurrent the layer becomes
// the current one. The table that cannot be written prints
// "错误:层表无法写操作\n".
Acad::ErrorStatus makeLayer(AcDbObjectId& id, const ACHAR* name, int colorIndex, const ACHAR* linetype,
                            bool setCurrent = false, AcDbDatabase* db = nullptr);
// A text style made or updated, and made current. The table that cannot
// be written prints "错误:字体表无法写操作\n".
struct TextStyleData {
  std::u16string fontFile;
  std::u16string bigFontFile;
  double size = 0.0;
  double widthFactor = 1.0;
  double obliqueAngle = 0.0;
  double priorSize = 2.5;
};
Acad::ErrorStatus makeTextStyle(AcDbObjectId& id, const ACHAR* name, const TextStyleData& data,
                                AcDbDatabase* db = nullptr);

}  // namespace zepk::drawing
