// The structure a file reader builds around the objects it reads: the
// sub-entities of polylines and block references, and what every drawing
// has that a file may not hold.
#include <string>
#include <vector>

#include "host/db/dbobjects.h"
#include "host/db/dxfinternal.h"
#include "host/db/ents_internal.h"
#include "host/db/internal.h"
#include "host/dbdict.h"
#include "host/dblayout.h"
#include "host/dbmstyle.h"
#include "host/dbproxy.h"
#include "host/dbsymtb.h"
#include "host/system/utf.h"

namespace {

AcRxObject* makeBlockBegin() { return new AcDbBlockBegin; }
AcRxObject* makeBlockEnd() { return new AcDbBlockEnd; }

}  // namespace

ACRX_DEFINE_HOST_CLASS(AcDbBlockBegin, AcDbEntity, u"BLOCK", makeBlockBegin)
ACRX_DEFINE_HOST_CLASS(AcDbBlockEnd, AcDbEntity, u"ENDBLK", makeBlockEnd)

// The ENDBLK's part is its marker alone.
Acad::ErrorStatus AcDbBlockEnd::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbEntity::dxfOutFields(f);
  return es != Acad::eOk ? es : f->writeString(100, u"AcDbBlockEnd");
}

Acad::ErrorStatus AcDbBlockEnd::dxfInFields(AcDbDxfFiler* f) {
  Acad::ErrorStatus es = AcDbEntity::dxfInFields(f);
  if (es != Acad::eOk) return es;
  f->atSubclassData(u"AcDbBlockEnd");
  return f->filerStatus();
}

namespace zepk::db {

void registerFileClasses() {
  AcDbBlockBegin::desc();
  AcDbBlockEnd::desc();
  AcDbProxyObject::desc();
  AcDbProxyEntity::desc();
}

void entityParts(const AcDbObject* obj, std::vector<AcDbObjectId>& parts, AcDbObjectId& seqend) {
  parts.clear();
  seqend.setNull();
  const auto* e = AcDbEntity::cast(obj);
  if (!e || !hasSubentities(e)) return;
  parts = subentityIds(e);
  seqend = sequenceEndId(e);
  if (seqend.isNull()) {
    // A sequence made before its SEQEND was needed gets one now.
    AcDbEntity* open = nullptr;
    if (acdbOpenObject(open, e->objectId(), AcDb::kForWrite) == Acad::eOk) {
      seqend = ensureSequenceEnd(open);
      open->close();
    }
  }
}

Acad::ErrorStatus linkParts(AcDbObjectId parent, const std::vector<AcDbObjectId>& parts, AcDbObjectId seqend) {
  AcDbEntity* owner = nullptr;
  Acad::ErrorStatus es = acdbOpenObject(owner, parent, AcDb::kForWrite);
  if (es != Acad::eOk) return es;
  Acad::ErrorStatus result = Acad::eOk;
  for (AcDbObjectId id : parts) {
    es = adoptSubentity(owner, id);
    if (es != Acad::eOk && result == Acad::eOk) result = es;
  }
  if (!seqend.isNull()) {
    es = adoptSequenceEnd(owner, seqend);
    if (es != Acad::eOk && result == Acad::eOk) result = es;
  }
  owner->close();
  return result;
}

namespace {

struct TableKind {
  const char16_t* name;
  AcDbDatabase::Root root;
  std::vector<const char16_t*> standard;  // records every drawing has
};

const std::vector<TableKind>& tableKinds() {
  static const std::vector<TableKind> kinds = {
      {u"VPORT", AcDbDatabase::kRootViewportTable, {u"*Active"}},
      {u"LTYPE", AcDbDatabase::kRootLinetypeTable, {u"ByBlock", u"ByLayer", u"Continuous"}},
      {u"LAYER", AcDbDatabase::kRootLayerTable, {u"0"}},
      {u"STYLE", AcDbDatabase::kRootTextStyleTable, {u"Standard"}},
      {u"VIEW", AcDbDatabase::kRootViewTable, {}},
      {u"UCS", AcDbDatabase::kRootUcsTable, {}},
      {u"APPID", AcDbDatabase::kRootRegAppTable, {u"ACAD"}},
      {u"DIMSTYLE", AcDbDatabase::kRootDimStyleTable, {u"Standard"}},
      {u"BLOCK_RECORD", AcDbDatabase::kRootBlockTable, {ACDB_MODEL_SPACE, ACDB_PAPER_SPACE}},
  };
  return kinds;
}

AcDbObjectId rootOf(AcDbDatabase* db, AcDbDatabase::Root r) {
  switch (r) {
    case AcDbDatabase::kRootBlockTable: return db->blockTableId();
    case AcDbDatabase::kRootLayerTable: return db->layerTableId();
    case AcDbDatabase::kRootTextStyleTable: return db->textStyleTableId();
    case AcDbDatabase::kRootLinetypeTable: return db->linetypeTableId();
    case AcDbDatabase::kRootViewTable: return db->viewTableId();
    case AcDbDatabase::kRootUcsTable: return db->UCSTableId();
    case AcDbDatabase::kRootViewportTable: return db->viewportTableId();
    case AcDbDatabase::kRootRegAppTable: return db->regAppTableId();
    case AcDbDatabase::kRootDimStyleTable: return db->dimStyleTableId();
    case AcDbDatabase::kRootNamedObjects: return db->namedObjectsDictionaryId();
    default: return {};
  }
}

// Adds a new object to a dictionary under a key, closed; its id.
AcDbObjectId fileUnder(AcDbDictionary* dict, const char16_t* key, AcDbObject* obj) {
  AcDbObjectId id;
  if (dict->setAt(key, obj, id) != Acad::eOk) {
    if (!obj->objectId().isNull()) obj->close();
    else delete obj;
    return {};
  }
  obj->close();
  return id;
}

// The dictionary under the key of the named objects dictionary, made when
// missing.
AcDbObjectId ensureDictionary(AcDbDictionary* nod, const char16_t* key, AcDbDictionary* (*make)()) {
  AcDbObjectId id;
  if (nod->getAt(key, id) == Acad::eOk) return id;
  return fileUnder(nod, key, make());
}

}  // namespace

bool completeTables(AcDbDatabase* db, std::string* error) {
  auto failed = [&](const std::string& what) {
    if (error) *error = "cannot complete the drawing: " + what;
    return false;
  };
  // The tables and their standard records.
  for (const TableKind& kind : tableKinds()) {
    AcDbObjectId tableId = rootOf(db, kind.root);
    if (tableId.isNull()) {
      AcDbSymbolTable* t = newSymbolTable(kind.name);
      if (!t) return failed("no class for the " + sys::toUtf8(kind.name) + " table");
      if (db->addAcDbObject(tableId, t) != Acad::eOk) {
        delete t;
        return failed("a table could not be added");
      }
      t->close();
      db->setRootId(kind.root, tableId);
    }
    AcDbSymbolTable* table = nullptr;
    if (acdbOpenObject(table, tableId, AcDb::kForWrite) != Acad::eOk) return failed("a table could not be opened");
    for (const char16_t* name : kind.standard) {
      if (table->has(name)) continue;
      auto* rec = AcDbSymbolTableRecord::cast(table->recordClass()->create());
      if (!rec) continue;
      rec->setName(name);
      if (auto* lt = AcDbLinetypeTableRecord::cast(rec); lt && std::u16string(name) == u"Continuous")
        lt->setComments(u"Solid line");
      if (table->add(rec) != Acad::eOk) {
        delete rec;
        continue;
      }
      rec->close();
    }
    table->close();
  }
  return true;
}

bool completeDrawing(AcDbDatabase* db, std::vector<std::string>* warnings, std::string* error) {
  auto failed = [&](const std::string& what) {
    if (error) *error = "cannot complete the drawing: " + what;
    return false;
  };
  if (!completeTables(db, error)) return false;

  // The named objects dictionary and its standard entries.
  AcDbObjectId nodId = db->namedObjectsDictionaryId();
  if (nodId.isNull()) {
    auto* nod = new AcDbDictionary;
    if (db->addAcDbObject(nodId, nod) != Acad::eOk) {
      delete nod;
      return failed("the named objects dictionary could not be added");
    }
    nod->close();
    db->setRootId(AcDbDatabase::kRootNamedObjects, nodId);
  }
  AcDbDictionary* nod = nullptr;
  if (acdbOpenObject(nod, nodId, AcDb::kForWrite) != Acad::eOk) return failed("the named objects dictionary is not one");
  auto plainDict = []() { return new AcDbDictionary; };
  ensureDictionary(nod, u"ACAD_GROUP", plainDict);
  AcDbObjectId layoutsId = ensureDictionary(nod, u"ACAD_LAYOUT", plainDict);
  AcDbObjectId mlId = ensureDictionary(nod, u"ACAD_MLINESTYLE", plainDict);
  AcDbObjectId plotId;
  if (nod->getAt(u"ACAD_PLOTSTYLENAME", plotId) != Acad::eOk) {
    plotId = fileUnder(nod, u"ACAD_PLOTSTYLENAME", new AcDbDictionaryWithDefault);
    AcDbDictionaryWithDefault* plot = nullptr;
    if (acdbOpenObject(plot, plotId, AcDb::kForWrite) == Acad::eOk) {
      AcDbObjectId normal = fileUnder(plot, u"Normal", new AcDbPlaceHolder);
      plot->setDefaultId(normal);
      plot->close();
    }
  }
  nod->close();
  if (AcDbDictionary* ml = nullptr; acdbOpenObject(ml, mlId, AcDb::kForWrite) == Acad::eOk) {
    if (!ml->has(u"Standard")) {
      auto* style = new AcDbMlineStyle;
      style->setName(u"Standard");
      style->initMlineStyle();
      fileUnder(ml, u"Standard", style);
    }
    ml->close();
  }

  // A layout for each of the two spaces.
  AcDbBlockTable* bt = nullptr;
  if (db->getBlockTable(bt) != Acad::eOk) return failed("the block table could not be opened");
  AcDbObjectId spaces[2];
  bt->getAt(ACDB_MODEL_SPACE, spaces[0]);
  bt->getAt(ACDB_PAPER_SPACE, spaces[1]);
  bt->close();
  const char16_t* layoutNames[2] = {u"Model", u"Layout1"};
  for (int k = 0; k < 2; ++k) {
    AcDbBlockTableRecord* btr = nullptr;
    if (acdbOpenObject(btr, spaces[k], AcDb::kForWrite) != Acad::eOk) continue;
    if (btr->getLayoutId().isNull() || btr->getLayoutId().isErased()) {
      AcDbDictionary* layouts = nullptr;
      if (acdbOpenObject(layouts, layoutsId, AcDb::kForWrite) == Acad::eOk) {
        // A paper space sheet takes the first free name Layout1, Layout2 ...
        std::u16string name = layoutNames[k];
        for (int n = 2; k == 1 && layouts->has(name.c_str()) && n < 1000; ++n)
          name = u"Layout" + sys::fromUtf8(std::to_string(n));
        auto* layout = new AcDbLayout;
        layout->setLayoutName(name.c_str());
        layout->setTabOrder(k);
        layout->setBlockTableRecordId(spaces[k]);
        layout->setModelType(k == 0);
        AcDbObjectId layoutId = fileUnder(layouts, name.c_str(), layout);
        layouts->close();
        if (!layoutId.isNull()) btr->setLayoutId(layoutId);
        if (warnings && layoutId.isNull()) warnings->push_back("a layout for " + std::string(k ? "paper" : "model") + " space could not be made");
      }
    }
    btr->close();
  }
  return true;
}

}  // namespace zepk::db
