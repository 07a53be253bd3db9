// Making entities and table records: see create.h.
#include "drawing/create.h"

#include <cmath>
#include <cstdio>
#include <memory>

#include "host/ads.h"
#include "host/dbapserv.h"
#include "host/dbelipse.h"
#include "host/dbheader.h"
#include "host/dbmtext.h"
#include "host/dbpl.h"
#include "host/dbspline.h"
#include "host/dbsymtb.h"
#include "host/system/utf.h"

namespace zepk::drawing {

namespace {

// Closes a database-resident object, or deletes one that never got there.
void release(AcDbEntity* e) {
  if (!e) return;
  if (e->objectId().isNull()) {
    delete e;
  } else {
    e->close();
  }
}

// Whether the space to use is model space: by TILEMODE unless fixed.
bool isModel(Space space) {
  if (space != Space::kByTileMode) return space == Space::kModel;
  resbuf rb;
  if (acedGetVar(u"TILEMODE", &rb) != RTNORM) return true;
  return rb.restype != RTSHORT || rb.resval.rint != 0;
}

// The circle through three points in the plane of the first (z of p1);
// false when they are in line.
bool circleThrough(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c, AcGePoint3d& center,
                   double& radius) {
  double bx = b.x - a.x, by = b.y - a.y, cx = c.x - a.x, cy = c.y - a.y;
  double d = 2.0 * (bx * cy - by * cx);
  double scale = std::max({std::fabs(bx), std::fabs(by), std::fabs(cx), std::fabs(cy), 1e-300});
  if (std::fabs(d) <= 1e-12 * scale * scale) return false;
  double b2 = bx * bx + by * by, c2 = cx * cx + cy * cy;
  double ux = (cy * b2 - by * c2) / d, uy = (bx * c2 - cx * b2) / d;
  center.set(a.x + ux, a.y + uy, a.z);
  radius = std::hypot(ux, uy);
  return true;
}

// The linetype's id, or that of "CONTINUOUS" when the drawing lacks it.
AcDbObjectId linetypeOrContinuous(AcDbDatabase* db, const ACHAR* name) {
  AcDbLinetypeTable* lt = nullptr;
  if (db->getLinetypeTable(lt, AcDb::kForRead) != Acad::eOk) return AcDbObjectId::kNull;
  AcDbObjectId id;
  if (!name || !*name || lt->getAt(name, id) != Acad::eOk) lt->getAt(u"CONTINUOUS", id);
  lt->close();
  return id;
}

// Sets a name-valued header variable ($CLAYER, $TEXTSTYLE) of a drawing.
void setNameVar(AcDbDatabase* db, std::u16string_view var, const ACHAR* value, std::u16string_view sysvar) {
  if (db == acdbHostApplicationServices()->workingDatabase()) {
    resbuf rb;
    rb.restype = RTSTR;
    rb.resval.rstring = const_cast<ACHAR*>(value);
    if (acedSetVar(std::u16string(sysvar).c_str(), &rb) == RTNORM) return;
  }
  db::DxfItem item;
  item.code = var == u"$CLAYER" ? 8 : 7;
  item.s = value;
  db::setHeaderVar(db, var, item);
}

}  // namespace

AcDbDatabase* databaseOr(AcDbDatabase* db) { return db ? db : acdbHostApplicationServices()->workingDatabase(); }

const ACHAR* spaceName(Space space) { return isModel(space) ? ACDB_MODEL_SPACE : ACDB_PAPER_SPACE; }

Acad::ErrorStatus appendToSpace(AcDbEntity* entity, AcDbObjectId& id, AcDbDatabase* db, Space space) {
  id = AcDbObjectId::kNull;
  if (!entity) return Acad::eNullObjectPointer;
  db = databaseOr(db);
  if (!db) {
    release(entity);
    return Acad::eNullObjectPointer;
  }
  if (entity->objectId().isNull()) entity->setDatabaseDefaults(db);
  AcDbBlockTable* table = nullptr;
  Acad::ErrorStatus es = db->getBlockTable(table, AcDb::kForRead);
  AcDbObjectId spaceId;
  if (es == Acad::eOk) {
    es = table->getAt(spaceName(space), spaceId);
    table->close();
  }
  if (es != Acad::eOk) {
    release(entity);
    return es;
  }
  return appendToOwner(entity, spaceId, id);
}

Acad::ErrorStatus appendToOwner(AcDbEntity* entity, AcDbObjectId owner, AcDbObjectId& id) {
  id = AcDbObjectId::kNull;
  if (!entity) return Acad::eNullObjectPointer;
  AcDbObjectPointer<AcDbBlockTableRecord> record(owner, AcDb::kForWrite);
  Acad::ErrorStatus es = record.openStatus();
  if (es == Acad::eOk) es = record->appendAcDbEntity(id, entity);
  release(entity);
  if (es != Acad::eOk) id = AcDbObjectId::kNull;
  return es;
}

Acad::ErrorStatus appendToSpace(AcDbEntity* entity, AcDbDatabase* db, Space space) {
  AcDbObjectId id;
  return appendToSpace(entity, id, db, space);
}

Acad::ErrorStatus makeLine(AcDbObjectId& id, const AcGePoint3d& start, const AcGePoint3d& end, AcDbDatabase* db,
                           Space space) {
  return appendToSpace(new AcDbLine(start, end), id, db, space);
}

Acad::ErrorStatus makeCircle(AcDbObjectId& id, const AcGePoint3d& center, double radius, AcDbDatabase* db,
                             Space space) {
  id = AcDbObjectId::kNull;
  if (!(radius > 0.0) || !std::isfinite(radius)) return Acad::eInvalidInput;
  return appendToSpace(new AcDbCircle(center, AcGeVector3d::kZAxis, radius), id, db, space);
}

Acad::ErrorStatus makeCircle2P(AcDbObjectId& id, const AcGePoint3d& p1, const AcGePoint3d& p2, AcDbDatabase* db,
                               Space space) {
  AcGePoint3d mid((p1.x + p2.x) / 2, (p1.y + p2.y) / 2, (p1.z + p2.z) / 2);
  return makeCircle(id, mid, std::hypot(p2.x - p1.x, p2.y - p1.y) / 2, db, space);
}

Acad::ErrorStatus makeCircle3P(AcDbObjectId& id, const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3,
                               AcDbDatabase* db, Space space) {
  id = AcDbObjectId::kNull;
  AcGePoint3d c;
  double r = 0;
  if (!circleThrough(p1, p2, p3, c, r)) return Acad::eInvalidInput;
  return makeCircle(id, c, r, db, space);
}

Acad::ErrorStatus makeArc(AcDbObjectId& id, const AcGePoint3d& center, double radius, double startAngle,
                          double endAngle, AcDbDatabase* db, Space space) {
  id = AcDbObjectId::kNull;
  if (!(radius > 0.0) || !std::isfinite(radius)) return Acad::eInvalidInput;
  return appendToSpace(new AcDbArc(center, radius, startAngle, endAngle), id, db, space);
}

Acad::ErrorStatus makeArc3P(AcDbObjectId& id, const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3,
                            AcDbDatabase* db, Space space) {
  id = AcDbObjectId::kNull;
  AcGePoint3d c;
  double r = 0;
  if (!circleThrough(p1, p2, p3, c, r)) return Acad::eInvalidInput;
  double a1 = std::atan2(p1.y - c.y, p1.x - c.x), a3 = std::atan2(p3.y - c.y, p3.x - c.x);
  // The points turn counter-clockwise (p1, p2, p3 in that sense) when the
  // arc through them runs counter-clockwise from p1 to p3.
  double turn = (p2.x - p1.x) * (p3.y - p1.y) - (p2.y - p1.y) * (p3.x - p1.x);
  bool ccw = turn > 0;
  return makeArc(id, c, r, ccw ? a1 : a3, ccw ? a3 : a1, db, space);
}

AcDbPolyline* newLwPolyline(const PolylineData& d) {
  auto at = [](const std::vector<double>& v, size_t i) { return i < v.size() ? v[i] : 0.0; };
  auto* pl = new AcDbPolyline(static_cast<unsigned>(d.points.size()));
  for (size_t i = 0; i < d.points.size(); ++i) {
    pl->addVertexAt(static_cast<unsigned>(i), AcGePoint2d(d.points[i].x, d.points[i].y), at(d.bulges, i),
                    at(d.startWidths, i), at(d.endWidths, i));
  }
  if (!d.points.empty()) pl->setElevation(d.points[0].z);
  pl->setClosed(d.closed);
  return pl;
}

Acad::ErrorStatus makePolyline(AcDbObjectId& id, const PolylineData& d, PolyKind kind, AcDbDatabase* db,
                               Space space) {
  id = AcDbObjectId::kNull;
  size_t n = d.points.size();
  if (n < 2) return Acad::eInvalidInput;
  if (kind == PolyKind::kLight) return appendToSpace(newLwPolyline(d), id, db, space);
  AcGePoint3dArray pts(d.points.begin(), d.points.end());
  if (kind == PolyKind::k3d) {
    return appendToSpace(new AcDb3dPolyline(AcDb::k3dSimplePoly, pts, d.closed), id, db, space);
  }
  auto at = [](const std::vector<double>& v, size_t i) { return i < v.size() ? v[i] : 0.0; };
  auto* pl = new AcDb2dPolyline();
  for (size_t i = 0; i < n; ++i) {
    pl->appendVertex(new AcDb2dVertex(AcGePoint3d(d.points[i].x, d.points[i].y, 0.0), at(d.bulges, i),
                                      at(d.startWidths, i), at(d.endWidths, i)));
  }
  pl->setElevation(d.points[0].z);
  if (d.closed) pl->makeClosed();
  return appendToSpace(pl, id, db, space);
}

Acad::ErrorStatus makeEllipse(AcDbObjectId& id, const AcGePoint3d& center, const AcGeVector3d& normal,
                              const AcGeVector3d& majorAxis, double radiusRatio, double startAngle, double endAngle,
                              AcDbDatabase* db, Space space) {
  id = AcDbObjectId::kNull;
  if (majorAxis.length() <= 0.0 || !(radiusRatio > 0.0 && radiusRatio <= 1.0)) return Acad::eInvalidInput;
  return appendToSpace(new AcDbEllipse(center, normal.normal(), majorAxis, radiusRatio, startAngle, endAngle), id,
                       db, space);
}

Acad::ErrorStatus makeSpline(AcDbObjectId& id, const std::vector<AcGePoint3d>& fitPoints, AcDbDatabase* db,
                             Space space) {
  id = AcDbObjectId::kNull;
  if (fitPoints.size() < 2) return Acad::eInvalidInput;
  AcGePoint3dArray pts(fitPoints.begin(), fitPoints.end());
  return appendToSpace(new AcDbSpline(pts), id, db, space);
}

Acad::ErrorStatus makeText(AcDbObjectId& id, const AcGePoint3d& position, double height, const ACHAR* text,
                           double rotation, AcDbDatabase* db, Space space) {
  id = AcDbObjectId::kNull;
  auto* t = new AcDbText();
  t->setDatabaseDefaults(databaseOr(db));
  t->setPosition(position);
  if (height > 0) t->setHeight(height);
  t->setTextString(text ? text : u"");
  t->setRotation(rotation);
  return appendToSpace(t, id, db, space);
}

Acad::ErrorStatus makeMText(AcDbObjectId& id, const AcGePoint3d& location, double height, const ACHAR* contents,
                            double rotation, double width, AcDbDatabase* db, Space space) {
  id = AcDbObjectId::kNull;
  auto* t = new AcDbMText();
  t->setDatabaseDefaults(databaseOr(db));
  t->setLocation(location);
  if (height > 0) t->setTextHeight(height);
  t->setContents(contents ? contents : u"");
  t->setRotation(rotation);
  if (width > 0) t->setWidth(width);
  return appendToSpace(t, id, db, space);
}

Acad::ErrorStatus makeHatch(AcDbObjectId& id, const std::vector<HatchLoop>& loops, const ACHAR* pattern,
                            double scale, double angle, AcDbDatabase* db, Space space) {
  id = AcDbObjectId::kNull;
  if (loops.empty()) return Acad::eInvalidInput;
  auto* h = new AcDbHatch();
  h->setDatabaseDefaults(databaseOr(db));
  h->setPatternScale(scale > 0 ? scale : 1.0);
  h->setPatternAngle(angle);
  h->setPattern(AcDbHatch::kPreDefined, pattern && *pattern ? pattern : u"SOLID");
  for (const HatchLoop& loop : loops) {
    if (loop.points.size() < 3) {
      delete h;
      return Acad::eInvalidInput;
    }
    AcGePoint2dArray pts(loop.points.begin(), loop.points.end());
    AcGeDoubleArray bulges;
    if (!loop.bulges.empty()) bulges.resize(pts.size(), 0.0);
    for (size_t i = 0; i < bulges.size() && i < loop.bulges.size(); ++i) bulges[i] = loop.bulges[i];
    h->appendLoop(AcDbHatch::kExternal | AcDbHatch::kPolyline, pts, bulges);
  }
  return appendToSpace(h, id, db, space);
}

Acad::ErrorStatus makeBlockRecord(AcDbObjectId& blockId, const ACHAR* name, AcDbEntity* entity, bool appendIfExists,
                                  AcDbDatabase* db) {
  blockId = AcDbObjectId::kNull;
  db = databaseOr(db);
  if (!db || !name || !*name) {
    release(entity);
    return db ? Acad::eInvalidInput : Acad::eNullObjectPointer;
  }
  AcDbBlockTable* table = nullptr;
  Acad::ErrorStatus es = db->getBlockTable(table, AcDb::kForRead);
  if (es != Acad::eOk) {
    release(entity);
    return es;
  }
  AcDbBlockTableRecord* record = nullptr;
  if (table->getAt(name, record, AcDb::kForWrite) == Acad::eOk) {
    table->close();
    blockId = record->objectId();
    if (entity && appendIfExists) {
      if (entity->objectId().isNull()) entity->setDatabaseDefaults(db);
      es = record->appendAcDbEntity(entity);
    }
    record->close();
    release(entity);
    return es;
  }
  table->close();
  es = db->getBlockTable(table, AcDb::kForWrite);
  if (es != Acad::eOk) {
    acutPrintf(u"错误:块表无法写操作\n");
    release(entity);
    return es;
  }
  record = new AcDbBlockTableRecord();
  record->setName(name);
  record->setOrigin(AcGePoint3d::kOrigin);
  es = table->add(blockId, record);
  table->close();
  if (es != Acad::eOk) {
    delete record;
    release(entity);
    return es;
  }
  if (entity) {
    if (entity->objectId().isNull()) entity->setDatabaseDefaults(db);
    es = record->appendAcDbEntity(entity);
  }
  record->close();
  release(entity);
  return es;
}

Acad::ErrorStatus findOrLoadBlock(AcDbObjectId& blockId, const ACHAR* name, AcDbDatabase* db) {
  blockId = AcDbObjectId::kNull;
  db = databaseOr(db);
  if (!db) return Acad::eNullObjectPointer;
  if (!name || !*name) return Acad::eInvalidInput;
  AcDbBlockTable* table = nullptr;
  Acad::ErrorStatus es = db->getBlockTable(table, AcDb::kForRead);
  if (es != Acad::eOk) return es;
  bool found = table->getAt(name, blockId) == Acad::eOk;
  table->close();
  if (found) return Acad::eOk;
  // A drawing of that name along the support path, DXF before DWG.
  std::u16string file;
  ACHAR path[4096];
  for (const char16_t* ext : {u".dxf", u".dwg"}) {
    std::u16string candidate = std::u16string(name) + ext;
    if (acedFindFile(candidate.c_str(), path, sizeof path / sizeof path[0]) == RTNORM) {
      file = path;
      break;
    }
  }
  if (file.empty()) {
    acutPrintf(u"\n未找到指定名称的图块！");
    return Acad::eKeyNotFound;
  }
  auto source = std::make_unique<AcDbDatabase>(false, true);
  es = source->readDwgFile(file.c_str());
  if (es == Acad::eFileNotFound || es == Acad::eFileAccessErr) {
    acutPrintf(u"\n不能打开 \"%s\" 图块！", file.c_str());
    return es;
  }
  if (es != Acad::eOk) {
    acutPrintf(u"\n读取%s失败，错误：%d", file.c_str(), static_cast<int>(es));
    return es;
  }
  es = db->insert(blockId, name, source.get());
  if (es != Acad::eOk) acutPrintf(u"\n读取%s失败，错误：%d", file.c_str(), static_cast<int>(es));
  return es;
}

Acad::ErrorStatus insertBlock(AcDbObjectId& id, const ACHAR* name, const InsertData& d, AcDbDatabase* db,
                              Space space) {
  id = AcDbObjectId::kNull;
  db = databaseOr(db);
  AcDbObjectId block;
  Acad::ErrorStatus es = findOrLoadBlock(block, name, db);
  if (es != Acad::eOk) return es;
  AcDbBlockReference* ref = nullptr;
  if (d.columns > 1 || d.rows > 1) {
    auto* m = new AcDbMInsertBlock(d.position, block, static_cast<Adesk::UInt16>(std::max(1, d.columns)),
                                   static_cast<Adesk::UInt16>(std::max(1, d.rows)), d.columnSpacing, d.rowSpacing);
    ref = m;
  } else {
    ref = new AcDbBlockReference(d.position, block);
  }
  ref->setDatabaseDefaults(db);
  ref->setScaleFactors(d.scale);
  ref->setRotation(d.rotation);
  return appendToSpace(ref, id, db, space);
}

Acad::ErrorStatus makeLayer(AcDbObjectId& id, const ACHAR* name, int colorIndex, const ACHAR* linetype,
                            bool setCurrent, AcDbDatabase* db) {
  id = AcDbObjectId::kNull;
  db = databaseOr(db);
  if (!db) return Acad::eNullObjectPointer;
  if (!name || !*name) return Acad::eInvalidInput;
  AcDbObjectId ltype = linetypeOrContinuous(db, linetype);
  AcDbLayerTable* table = nullptr;
  Acad::ErrorStatus es = db->getLayerTable(table, AcDb::kForRead);
  if (es != Acad::eOk) return es;
  AcDbLayerTableRecord* rec = nullptr;
  if (table->getAt(name, rec, AcDb::kForWrite) == Acad::eOk) {
    table->close();
    id = rec->objectId();
    es = rec->setColorIndex(static_cast<Adesk::Int16>(colorIndex));
    if (!ltype.isNull()) rec->setLinetypeObjectId(ltype);
    rec->close();
  } else {
    table->close();
    es = db->getLayerTable(table, AcDb::kForWrite);
    if (es != Acad::eOk) {
      acutPrintf(u"错误:层表无法写操作\n");
      return es;
    }
    rec = new AcDbLayerTableRecord();
    rec->setName(name);
    rec->setIsFrozen(false);
    rec->setIsOff(false);
    rec->setVPDFLT(false);
    rec->setIsLocked(false);
    rec->setColorIndex(static_cast<Adesk::Int16>(colorIndex));
    if (!ltype.isNull()) rec->setLinetypeObjectId(ltype);
    es = table->add(id, rec);
    table->close();
    if (es != Acad::eOk) {
      delete rec;
      return es;
    }
    rec->close();
  }
  if (es == Acad::eOk && setCurrent) setNameVar(db, u"$CLAYER", name, u"CLAYER");
  return es;
}

Acad::ErrorStatus makeTextStyle(AcDbObjectId& id, const ACHAR* name, const TextStyleData& d, AcDbDatabase* db) {
  id = AcDbObjectId::kNull;
  db = databaseOr(db);
  if (!db) return Acad::eNullObjectPointer;
  if (!name || !*name) return Acad::eInvalidInput;
  AcDbTextStyleTable* table = nullptr;
  Acad::ErrorStatus es = db->getTextStyleTable(table, AcDb::kForWrite);
  if (es != Acad::eOk) {
    acutPrintf(u"错误:字体表无法写操作\n");
    return es;
  }
  AcDbTextStyleTableRecord* rec = nullptr;
  bool fresh = table->getAt(name, rec, AcDb::kForWrite) != Acad::eOk;
  if (fresh) {
    rec = new AcDbTextStyleTableRecord();
    rec->setName(name);
  }
  rec->setFileName(d.fontFile.c_str());
  rec->setBigFontFileName(d.bigFontFile.c_str());
  rec->setTextSize(d.size);
  rec->setXScale(d.widthFactor);
  rec->setObliquingAngle(d.obliqueAngle);
  rec->setPriorSize(d.priorSize);
  if (fresh) {
    es = table->add(id, rec);
    if (es != Acad::eOk) {
      delete rec;
      table->close();
      return es;
    }
  } else {
    id = rec->objectId();
  }
  rec->close();
  table->close();
  setNameVar(db, u"$TEXTSTYLE", name, u"TEXTSTYLE");
  return Acad::eOk;
}

}  // namespace zepk::drawing
