#include "host/render/scene.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "host/db/memfiler.h"
#include "host/db/overlay.h"
#include "host/dbents.h"
#include "host/dbproxy.h"
#include "host/dbsymtb.h"
#include "host/render/canvas.h"
#include "host/render/entities.h"

namespace zepk::render {

namespace {

// Blocks nest at most this deep.
constexpr int kMaxDepth = 32;
// No picture draws more entities than this (references to blocks of
// references multiply): the rest is left out rather than never finished.
constexpr long kMaxEntities = 20000000;

// The blocks being drawn, outermost first: a block that holds itself,
// directly or further down, is not entered again.
thread_local std::vector<AcDbObjectId> drawing;

void setTraits(const AcDbEntity* e, Sink& s) {
  s.setLayer(e->layerId());
  s.setTrueColor(e->entityColor());
  s.setLineType(e->linetypeId());
  s.setLineWeight(e->lineWeight());
  s.setLineTypeScale(e->linetypeScale());
  s.setFillType(kAcGiFillNever);
}

void drawBlockEntities(AcDbObjectId blockId, Sink& s, int depth) {
  if (std::find(drawing.begin(), drawing.end(), blockId) != drawing.end()) return;
  drawing.push_back(blockId);
  struct Leave {
    ~Leave() { drawing.pop_back(); }
  } leave;
  AcDbBlockTableRecord* rec = nullptr;
  if (acdbOpenObject(rec, blockId, AcDb::kForRead) != Acad::eOk) return;
  AcDbObjectIdArray ids = rec->entityIds();
  rec->close();
  for (const AcDbObjectId& id : ids) {
    AcDbEntity* e = nullptr;
    if (acdbOpenObject(e, id, AcDb::kForRead) != Acad::eOk) continue;
    // Definitions of attributes show in references only as the
    // attributes themselves, except constant ones, which have none.
    const AcDbAttributeDefinition* def = AcDbAttributeDefinition::cast(e);
    if (!def) {
      drawEntity(e, s, depth);
    } else if (def->isConstant() && !def->isInvisible()) {
      setTraits(e, s);
      if (s.layerVisible()) drawText(def, s);
    }
    e->close();
  }
}

void drawBlockReference(const AcDbBlockReference* r, Sink& s, int depth) {
  if (depth >= kMaxDepth) return;
  AcDbObjectId block = r->blockTableRecord();
  AcGeMatrix3d m = r->blockTransform();
  s.pushBlock();
  const AcDbMInsertBlock* grid = AcDbMInsertBlock::cast(r);
  int rows = grid ? std::max<int>(1, grid->rows()) : 1, cols = grid ? std::max<int>(1, grid->columns()) : 1;
  // Very large grids are drawn as far as a sensible picture goes.
  if (static_cast<long>(rows) * cols > 100000) rows = cols = 1;
  AcGeMatrix3d ocs = AcGeMatrix3d::planeToWorld(r->normal()) * AcGeMatrix3d::rotation(r->rotation(), AcGeVector3d::kZAxis);
  for (int i = 0; i < rows; ++i) {
    for (int j = 0; j < cols; ++j) {
      AcGeMatrix3d place = m;
      if (grid) {
        AcGeVector3d off(j * grid->columnSpacing(), i * grid->rowSpacing(), 0);
        off.transformBy(ocs);
        place = AcGeMatrix3d::translation(off) * m;
      }
      s.pushModelTransform(place);
      drawBlockEntities(block, s, depth + 1);
      s.popModelTransform();
    }
  }
  std::unique_ptr<AcDbObjectIterator> it(r->attributeIterator());
  for (; it && !it->done(); it->step()) {
    AcDbEntity* a = nullptr;
    if (acdbOpenObject(a, it->objectId(), AcDb::kForRead) != Acad::eOk) continue;
    drawEntity(a, s, depth + 1);
    a->close();
  }
  s.popBlock();
}

// A dimension the database keeps as it was read: the block that the
// file gives as its picture (group 2), drawn where it is, ByBlock meaning
// the dimension's own properties.
bool drawDimensionBlock(const AcDbProxyEntity* p, Sink& s, int depth) {
  std::u16string dxfName = p->originalDxfName() ? p->originalDxfName() : u"";
  if (dxfName != u"DIMENSION" || depth >= kMaxDepth) return false;
  db::MemoryDxfFiler filer(AcDb::kFileFiler, p->database());
  if (p->dxfOutFields(&filer) != Acad::eOk) return false;
  std::u16string block;
  for (const db::DxfItem& item : filer.items())
    if (item.code == 2 && item.kind == db::DxfItem::String) block = item.s;
  if (block.empty() || !p->database()) return false;
  AcDbBlockTable* table = nullptr;
  if (p->database()->getBlockTable(table, AcDb::kForRead) != Acad::eOk) return false;
  AcDbObjectId id;
  Acad::ErrorStatus es = table->getAt(block.c_str(), id);
  table->close();
  if (es != Acad::eOk) return false;
  s.pushBlock();
  drawBlockEntities(id, s, depth + 1);
  s.popBlock();
  return true;
}

}  // namespace

void drawEntity(AcDbEntity* e, Sink& s, int depth) {
  if (!e || e->visibility() == AcDb::kInvisible) return;
  if (++s.entitiesDrawn > kMaxEntities) return;
  setTraits(e, s);
  if (const AcDbBlockReference* r = AcDbBlockReference::cast(e)) {
    // A reference on a layer that is off still shows its entities of
    // other layers; on a frozen layer nothing of it shows.
    if (!s.layerFrozen()) drawBlockReference(r, s, depth);
    return;
  }
  if (!s.layerVisible()) return;
  if (const AcDbProxyEntity* p = AcDbProxyEntity::cast(e)) {
    drawDimensionBlock(p, s, depth);
    return;
  }
  if (e->worldDraw(&s)) return;
  drawHostEntity(e, s);
}

namespace {

void drawModelSpaceWith(AcDbDatabase* db, Sink& s, const zepk::db::Overlay* overlay) {
  if (!db) return;
  AcDbBlockTable* table = nullptr;
  if (db->getBlockTable(table, AcDb::kForRead) != Acad::eOk) return;
  AcDbObjectId ms;
  Acad::ErrorStatus es = table->getAt(u"*Model_Space", ms);
  table->close();
  if (es != Acad::eOk) return;
  AcDbBlockTableRecord* rec = nullptr;
  if (acdbOpenObject(rec, ms, AcDb::kForRead) != Acad::eOk) return;
  AcDbObjectIdArray ids = rec->entityIds();
  rec->close();
  for (const AcDbObjectId& id : ids) {
    if (overlay && overlay->hidden.count(id)) continue;
    AcDbEntity* e = nullptr;
    if (acdbOpenObject(e, id, AcDb::kForRead) != Acad::eOk) continue;
    s.highlight = overlay && overlay->highlighted.count(id);
    drawEntity(e, s, 0);
    s.highlight = false;
    e->close();
  }
}

}  // namespace

void drawModelSpace(AcDbDatabase* db, Sink& s) { drawModelSpaceWith(db, s, nullptr); }

void drawModelSpaceWithOverlay(AcDbDatabase* db, Sink& s) {
  if (!db) return;
  const zepk::db::Overlay& overlay = zepk::db::overlayOf(db);
  drawModelSpaceWith(db, s, &overlay);
  for (const AcDbObjectId& id : overlay.onTop) {
    AcDbEntity* e = nullptr;
    if (overlay.hidden.count(id) || acdbOpenObject(e, id, AcDb::kForRead) != Acad::eOk) continue;
    drawEntity(e, s, 0);
    e->close();
  }
  // Vectors in their colour on no layer, continuous, or dashed when
  // highlighted.
  s.setLayer(AcDbObjectId());
  s.setLineType(AcDbObjectId());
  s.setLineWeight(AcDb::kLnWtByLwDefault);
  s.setFillType(kAcGiFillNever);
  for (const zepk::db::TransientVector& v : overlay.vectors) {
    s.setColor(static_cast<Adesk::UInt16>(v.color > 0 ? v.color : 7));
    s.highlight = v.highlight;
    AcGePoint3d pts[2] = {v.from, v.to};
    s.polyline(2, pts);
  }
  s.highlight = false;
}

bool modelSpaceExtents(AcDbDatabase* db, double* minX, double* minY, double* maxX, double* maxY) {
  DrawingProps props(db);
  ExtentsSink sink(props);
  drawModelSpace(db, sink);
  if (sink.empty()) return false;
  *minX = sink.minX, *minY = sink.minY, *maxX = sink.maxX, *maxY = sink.maxY;
  return true;
}

}  // namespace zepk::render
