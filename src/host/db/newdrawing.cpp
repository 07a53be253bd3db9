// A new drawing: what an empty drawing holds before anyone draws in it.
#include <string>

#include "host/db/dbobjects.h"
#include "host/db/internal.h"
#include "host/dbdict.h"
#include "host/dblayout.h"
#include "host/dbmstyle.h"
#include "host/dbsymtb.h"
#include "host/system/codepage.h"

// The drawing's own sheet remembers the viewport last shown in it.
struct AcDbLayoutAccess {
  static AcDbObjectId& lastViewport(AcDbLayout* layout) { return layout->lastViewport_; }
};

namespace zepk::db {

namespace {

// Adds a new object owned by nobody (a root) and closes it.
AcDbObjectId addRoot(AcDbDatabase* db, AcDbObject* obj, Acad::ErrorStatus& es) {
  AcDbObjectId id;
  if (es != Acad::eOk) {
    delete obj;
    return id;
  }
  es = db->addAcDbObject(id, obj);
  if (es != Acad::eOk) {
    delete obj;
    return id;
  }
  obj->close();
  return id;
}

// Adds a record to the table and closes both.
AcDbObjectId addRecord(AcDbObjectId tableId, AcDbSymbolTableRecord* rec, const ACHAR* name, Acad::ErrorStatus& es) {
  AcDbObjectId id;
  if (es == Acad::eOk) es = rec->setName(name);
  AcDbSymbolTable* table = nullptr;
  if (es == Acad::eOk) es = acdbOpenObject(table, tableId, AcDb::kForWrite);
  if (es == Acad::eOk) {
    es = table->add(id, rec);
    table->close();
  }
  if (es != Acad::eOk) {
    if (rec->objectId().isNull()) delete rec;
    return AcDbObjectId();
  }
  rec->close();
  return id;
}

// Files the object in the dictionary and closes both.
AcDbObjectId fileIn(AcDbObjectId dictId, const ACHAR* key, AcDbObject* obj, Acad::ErrorStatus& es) {
  AcDbObjectId id;
  AcDbDictionary* dict = nullptr;
  if (es == Acad::eOk) es = acdbOpenObject(dict, dictId, AcDb::kForWrite);
  if (es == Acad::eOk) {
    es = dict->setAt(key, obj, id);
    dict->close();
  }
  if (es != Acad::eOk) {
    if (obj->objectId().isNull()) delete obj;
    return AcDbObjectId();
  }
  obj->close();
  return id;
}

void setVar(AcDbDatabase* db, const char16_t* name, DxfItem value) {
  auto& vars = headerVars(db);
  for (HeaderVar& v : vars)
    if (v.name == name) {
      v.groups = {std::move(value)};
      return;
    }
  vars.push_back(HeaderVar{name, {std::move(value)}});
}

DxfItem text(int code, std::u16string s) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::String;
  it.s = std::move(s);
  return it;
}

DxfItem integer(int code, int64_t v) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::Int;
  it.i = v;
  return it;
}

DxfItem real(int code, double v) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::Real;
  it.p[0] = v;
  return it;
}

DxfItem point(int code, double x, double y, double z) {
  DxfItem it;
  it.code = code;
  it.kind = DxfItem::Point;
  it.p[0] = x, it.p[1] = y, it.p[2] = z;
  return it;
}

DxfItem point2d(int code, double x, double y) {
  DxfItem it = point(code, x, y, 0.0);
  it.dims = 2;
  return it;
}

// The header of a new drawing: the variables a drawing file carries and
// the host's commands read. The handle seed is the database's own.
void setHeader(AcDbDatabase* db) {
  std::u16string codePage = u"ANSI_";
  for (char c : std::to_string(zepk::sys::systemCodePage())) codePage.push_back(static_cast<char16_t>(c));
  setVar(db, u"$ACADVER", text(1, u"AC1032"));
  setVar(db, u"$DWGCODEPAGE", text(3, codePage));
  setVar(db, u"$INSBASE", point(10, 0, 0, 0));
  setVar(db, u"$EXTMIN", point(10, 1e20, 1e20, 1e20));
  setVar(db, u"$EXTMAX", point(10, -1e20, -1e20, -1e20));
  setVar(db, u"$LIMMIN", point2d(10, 0, 0));
  setVar(db, u"$LIMMAX", point2d(10, 12, 9));
  setVar(db, u"$ORTHOMODE", integer(70, 0));
  setVar(db, u"$REGENMODE", integer(70, 1));
  setVar(db, u"$FILLMODE", integer(70, 1));
  setVar(db, u"$QTEXTMODE", integer(70, 0));
  setVar(db, u"$MIRRTEXT", integer(70, 0));
  setVar(db, u"$LTSCALE", real(40, 1.0));
  setVar(db, u"$ATTMODE", integer(70, 1));
  setVar(db, u"$TEXTSIZE", real(40, 0.2));
  setVar(db, u"$TRACEWID", real(40, 0.05));
  setVar(db, u"$TEXTSTYLE", text(7, u"Standard"));
  setVar(db, u"$CLAYER", text(8, u"0"));
  setVar(db, u"$CELTYPE", text(6, u"ByLayer"));
  setVar(db, u"$CECOLOR", integer(62, 256));
  setVar(db, u"$CELTSCALE", real(40, 1.0));
  setVar(db, u"$CELWEIGHT", integer(370, -1));
  setVar(db, u"$DIMSTYLE", text(2, u"Standard"));
  setVar(db, u"$LUNITS", integer(70, 2));
  setVar(db, u"$LUPREC", integer(70, 4));
  setVar(db, u"$AUNITS", integer(70, 0));
  setVar(db, u"$AUPREC", integer(70, 0));
  setVar(db, u"$ANGBASE", real(50, 0.0));
  setVar(db, u"$ANGDIR", integer(70, 0));
  setVar(db, u"$PDMODE", integer(70, 0));
  setVar(db, u"$PDSIZE", real(40, 0.0));
  setVar(db, u"$PLINEWID", real(40, 0.0));
  for (const char16_t* n : {u"$USERI1", u"$USERI2", u"$USERI3", u"$USERI4", u"$USERI5"}) setVar(db, n, integer(70, 0));
  for (const char16_t* n : {u"$USERR1", u"$USERR2", u"$USERR3", u"$USERR4", u"$USERR5"}) setVar(db, n, real(40, 0.0));
  setVar(db, u"$TILEMODE", integer(70, 1));
  setVar(db, u"$MEASUREMENT", integer(70, 0));
  setVar(db, u"$LWDISPLAY", integer(290, 0));
  setVar(db, u"$PSTYLEMODE", integer(290, 1));
}

}  // namespace

Acad::ErrorStatus initNewDrawing(AcDbDatabase* db) {
  if (!db) return Acad::eNullObjectPointer;
  const AcDbObjectId roots[] = {db->blockTableId(),    db->layerTableId(),    db->textStyleTableId(),
                                db->linetypeTableId(), db->viewTableId(),     db->UCSTableId(),
                                db->viewportTableId(), db->regAppTableId(),   db->dimStyleTableId(),
                                db->namedObjectsDictionaryId()};
  for (const AcDbObjectId& id : roots)
    if (!id.isNull()) return Acad::eAlreadyInDb;
  Acad::ErrorStatus es = Acad::eOk;
  // The tables and the named objects dictionary: the drawing's roots.
  db->setRootId(AcDbDatabase::kRootBlockTable, addRoot(db, new AcDbBlockTable, es));
  db->setRootId(AcDbDatabase::kRootLayerTable, addRoot(db, new AcDbLayerTable, es));
  db->setRootId(AcDbDatabase::kRootTextStyleTable, addRoot(db, new AcDbTextStyleTable, es));
  db->setRootId(AcDbDatabase::kRootLinetypeTable, addRoot(db, new AcDbLinetypeTable, es));
  db->setRootId(AcDbDatabase::kRootViewTable, addRoot(db, new AcDbViewTable, es));
  db->setRootId(AcDbDatabase::kRootUcsTable, addRoot(db, new AcDbUCSTable, es));
  db->setRootId(AcDbDatabase::kRootViewportTable, addRoot(db, new AcDbViewportTable, es));
  db->setRootId(AcDbDatabase::kRootRegAppTable, addRoot(db, new AcDbRegAppTable, es));
  db->setRootId(AcDbDatabase::kRootDimStyleTable, addRoot(db, new AcDbDimStyleTable, es));
  AcDbObjectId nod = addRoot(db, new AcDbDictionary, es);
  db->setRootId(AcDbDatabase::kRootNamedObjects, nod);
  if (es != Acad::eOk) return es;

  // Plot styles first: a layer takes the default one ("Normal") when made.
  auto* plotStyles = new AcDbDictionaryWithDefault;
  AcDbObjectId plotStylesId = fileIn(nod, u"ACAD_PLOTSTYLENAME", plotStyles, es);
  AcDbObjectId normal = fileIn(plotStylesId, u"Normal", new AcDbPlaceHolder, es);
  if (es == Acad::eOk) {
    AcDbDictionaryWithDefault* d = nullptr;
    es = acdbOpenObject(d, plotStylesId, AcDb::kForWrite);
    if (es == Acad::eOk) {
      d->setDefaultId(normal);
      d->close();
    }
  }

  auto* byBlock = new AcDbLinetypeTableRecord;
  auto* byLayer = new AcDbLinetypeTableRecord;
  auto* continuous = new AcDbLinetypeTableRecord;
  continuous->setComments(u"Solid line");
  addRecord(db->linetypeTableId(), byBlock, u"ByBlock", es);
  addRecord(db->linetypeTableId(), byLayer, u"ByLayer", es);
  addRecord(db->linetypeTableId(), continuous, u"Continuous", es);

  addRecord(db->layerTableId(), new AcDbLayerTableRecord, u"0", es);
  AcDbObjectId standardStyle = addRecord(db->textStyleTableId(), new AcDbTextStyleTableRecord, u"Standard", es);
  addRecord(db->regAppTableId(), new AcDbRegAppTableRecord, u"ACAD", es);
  auto* dimStyle = new AcDbDimStyleTableRecord;
  dimStyle->setDimtxsty(standardStyle);
  addRecord(db->dimStyleTableId(), dimStyle, u"Standard", es);

  // The viewport on the screen shows the limits.
  auto* active = new AcDbViewportTableRecord;
  active->setCenterPoint(AcGePoint2d(6.0, 4.5));
  active->setHeight(9.0);
  active->setAspectRatio(12.0 / 9.0);
  AcDbObjectId activeId = addRecord(db->viewportTableId(), active, u"*Active", es);

  // The two spaces and their sheets.
  AcDbObjectId model = addRecord(db->blockTableId(), new AcDbBlockTableRecord, ACDB_MODEL_SPACE, es);
  AcDbObjectId paper = addRecord(db->blockTableId(), new AcDbBlockTableRecord, ACDB_PAPER_SPACE, es);
  auto* layouts = new AcDbDictionary;
  AcDbObjectId layoutsId = fileIn(nod, u"ACAD_LAYOUT", layouts, es);
  auto makeLayout = [&](const ACHAR* name, int tab, AcDbObjectId block, AcDbObjectId lastViewport) {
    auto* layout = new AcDbLayout;
    layout->setLayoutName(name);
    layout->setTabOrder(tab);
    layout->setBlockTableRecordId(block);
    layout->setModelType(tab == 0);
    AcDbLayoutAccess::lastViewport(layout) = lastViewport;
    AcDbObjectId id = fileIn(layoutsId, name, layout, es);
    AcDbBlockTableRecord* rec = nullptr;
    if (es == Acad::eOk) es = acdbOpenObject(rec, block, AcDb::kForWrite);
    if (es == Acad::eOk) {
      rec->setLayoutId(id);
      rec->close();
    }
  };
  makeLayout(u"Model", 0, model, activeId);
  makeLayout(u"Layout1", 1, paper, AcDbObjectId());

  fileIn(nod, u"ACAD_GROUP", new AcDbDictionary, es);
  AcDbObjectId mlineStyles = fileIn(nod, u"ACAD_MLINESTYLE", new AcDbDictionary, es);
  auto* standardMline = new AcDbMlineStyle;
  standardMline->setName(u"Standard");
  standardMline->initMlineStyle();
  fileIn(mlineStyles, u"Standard", standardMline, es);
  if (es != Acad::eOk) return es;

  setHeader(db);
  return Acad::eOk;
}

}  // namespace zepk::db

AcDbDatabase::AcDbDatabase(bool buildDefaultDrawing, bool) : AcDbDatabase() {
  if (buildDefaultDrawing) zepk::db::initNewDrawing(this);
}
