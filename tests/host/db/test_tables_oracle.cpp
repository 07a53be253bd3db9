// Tables and dictionaries as another program reads them: a drawing with a
// record of every kind, a group, an xrecord and a draw order is saved as
// DXF and read by ezdxf, which audits it and reports what it found.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "host/db/dxffile.h"
#include "host/dbdict.h"
#include "host/dbents.h"
#include "host/dbgroup.h"
#include "host/dbsymtb.h"
#include "host/dbxrecrd.h"
#include "host/sorttab.h"
#include "host/system/codepage.h"

namespace {

const double kPi = 3.14159265358979323846;

bool ezdxfAvailable() { return std::system("/usr/bin/python3 -c 'import ezdxf' >/dev/null 2>&1") == 0; }

std::string run(const std::string& cmd) {
  std::string out;
  FILE* p = popen(cmd.c_str(), "r");
  if (!p) return "cannot run " + cmd;
  char buf[512];
  while (size_t n = fread(buf, 1, sizeof buf, p)) out.append(buf, n);
  pclose(p);
  return out;
}

template <class Table, class Rec>
AcDbObjectId add(AcDbObjectId tableId, Rec* rec, const ACHAR* name) {
  AcDbObjectPointer<Table> table(tableId, AcDb::kForWrite);
  rec->setName(name);
  AcDbObjectId id;
  EXPECT_EQ(table->add(id, rec), Acad::eOk);
  rec->close();
  return id;
}

AcDbObjectId append(AcDbObjectId blockId, AcDbEntity* ent) {
  AcDbObjectPointer<AcDbBlockTableRecord> block(blockId, AcDb::kForWrite);
  AcDbObjectId id;
  EXPECT_EQ(block->appendAcDbEntity(id, ent), Acad::eOk);
  ent->close();
  return id;
}

const char* kCheck = R"PY(
import sys, ezdxf
doc = ezdxf.readfile(sys.argv[1])
errs = []
def check(ok, what):
    if not ok: errs.append(what)
a = doc.audit()
check(not a.errors and not a.fixes, 'audit: %s' % [e.message for e in list(a.errors) + list(a.fixes)])
layer = doc.layers.get('一层建筑面积线')
check(layer.is_off() and layer.is_locked() and not layer.is_frozen(), 'layer state')
check(layer.color == 3 and layer.dxf.true_color == 0x123456, 'layer colour %s' % layer.color)
check(layer.dxf.linetype == 'DASHEDX' and layer.dxf.lineweight == 30, 'layer linetype and weight')
tags = [(t.code, t.value) for t in doc.linetypes.get('dashedx').pattern_tags.tags]
check(tags[1:] == [(73, 2), (40, 0.75), (49, 0.5), (74, 0), (49, -0.25), (74, 0)], 'dashes %s' % tags)
gas = [(t.code, t.value) for t in doc.linetypes.get('GAS_LINE').pattern_tags.tags]
i = gas.index((9, 'GAS')) if (9, 'GAS') in gas else 8
element = dict(gas[i - 7:i])
check([c for c, _ in gas[i - 8:i]] == [49, 74, 75, 340, 46, 50, 44, 45] and element.get(74) == 2
      and element.get(340) == doc.styles.get('Standard').dxf.handle and abs(element.get(50) - 90.0) < 1e-9,
      'text element %s' % gas)
st = doc.styles.get('HZ')
check(st.dxf.font == 'simplex.shx' and st.dxf.bigfont == 'hztxt.shx', 'fonts')
check(st.dxf.height == 2.5 and st.dxf.width == 0.8 and abs(st.dxf.oblique - 15.0) < 1e-9, 'style sizes')
ds = doc.dimstyles.get('ISO')
check(ds.dxf.dimtxt == 2.5 and ds.dxf.dimasz == 3.0 and ds.dxf.dimtad == 1 and ds.dxf.dimdec == 2, 'dimension style')
check(doc.dimstyles.get('Standard') is not None, 'standard dimension style')
u = doc.ucs.get('Site')
check(tuple(u.dxf.origin) == (100, 200, 0) and tuple(u.dxf.xaxis) == (0, 1, 0) and tuple(u.dxf.yaxis) == (-1, 0, 0), 'ucs')
v = doc.views.get('Overview')
check(tuple(v.dxf.center)[:2] == (50, 60) and v.dxf.height == 100 and v.dxf.width == 150, 'view')
check(doc.appids.has_entry('ZEPK'), 'application')
check(len(doc.blocks.get('SYMBOL')) == 1, 'block')
# The text is UTF-8 (the layer name above); the code page stays the drawing's.
check(doc.header['$DWGCODEPAGE'] == sys.argv[4], 'code page %s' % doc.header['$DWGCODEPAGE'])
# A plain reference has no column and row counts; a grid has them.
refs = {e.dxf.handle: e for e in doc.modelspace().query('INSERT')}
plain, grid = refs.get(sys.argv[5]), refs.get(sys.argv[6])
check(plain is not None and not plain.dxf.hasattr('column_count') and not plain.dxf.hasattr('row_count')
      and not plain.mcount > 1, 'plain reference')
check(grid is not None and grid.dxf.column_count == 3 and grid.dxf.row_count == 2 and grid.dxf.column_spacing == 4.0
      and grid.mcount == 6, 'grid of references')
check(sorted(l.name for l in doc.layouts) == ['Layout1', 'Model'], 'layouts')
g = doc.groups.get('LOT7')
# ezdxf 0.18 loads a group's members into a set: compare them as one.
check(g is not None and g.dxf.description == 'lot 7' and sorted(e.dxf.handle for e in g) == sorted(sys.argv[2:4]), 'group')
x = doc.rootdict['ESTATE_DICT']['LAYERRECORD']
check([(t.code, t.value) for t in x.tags] == [(1, '一层'), (1, '二层'), (70, 3)], 'xrecord %s' % list(x.tags))
order = dict(doc.modelspace().get_redraw_order())
check(order.get(sys.argv[2]) == sys.argv[3] and order.get(sys.argv[3]) == sys.argv[2], 'draw order %s' % order)
print('\n'.join(errs) if errs else 'ok')
)PY";

TEST(TablesOracle, AnotherReaderSeesWhatTheTablesHold) {
  if (!ezdxfAvailable()) GTEST_SKIP() << "python3-ezdxf is not installed";
  AcDbDatabase db(true);

  auto* dashed = new AcDbLinetypeTableRecord;
  dashed->setComments(u"Dashed __ __");
  dashed->setPatternLength(0.75);
  dashed->setNumDashes(2);
  dashed->setDashLengthAt(0, 0.5);
  dashed->setDashLengthAt(1, -0.25);
  add<AcDbLinetypeTable>(db.linetypeTableId(), dashed, u"DASHEDX");
  AcDbObjectId standard;
  {
    AcDbObjectPointer<AcDbTextStyleTable> styles(db.textStyleTableId(), AcDb::kForRead);
    styles->getAt(u"Standard", standard);
  }
  auto* gas = new AcDbLinetypeTableRecord;
  gas->setPatternLength(1.5);
  gas->setNumDashes(3);
  gas->setDashLengthAt(0, 1.0);
  gas->setDashLengthAt(1, -0.25);
  gas->setTextAt(1, u"GAS");
  gas->setShapeStyleAt(1, standard);
  gas->setShapeScaleAt(1, 0.1);
  gas->setShapeRotationAt(1, kPi / 2);
  gas->setDashLengthAt(2, -0.25);
  add<AcDbLinetypeTable>(db.linetypeTableId(), gas, u"GAS_LINE");

  auto* layer = new AcDbLayerTableRecord;
  layer->setColorIndex(3);
  layer->setTrueColor(0x123456);
  layer->setIsOff(true);
  layer->setIsLocked(true);
  layer->setLineWeight(AcDb::kLnWt030);
  AcDbObjectId dashedId;
  {
    AcDbObjectPointer<AcDbLinetypeTable> lts(db.linetypeTableId(), AcDb::kForRead);
    lts->getAt(u"dashedx", dashedId);
  }
  layer->setLinetypeObjectId(dashedId);
  add<AcDbLayerTable>(db.layerTableId(), layer, u"一层建筑面积线");

  auto* style = new AcDbTextStyleTableRecord;
  style->setFileName(u"simplex.shx");
  style->setBigFontFileName(u"hztxt.shx");
  style->setTextSize(2.5);
  style->setXScale(0.8);
  style->setObliquingAngle(kPi / 12);
  add<AcDbTextStyleTable>(db.textStyleTableId(), style, u"HZ");

  auto* ds = new AcDbDimStyleTableRecord;
  ds->setDimtxt(2.5);
  ds->setDimasz(3.0);
  ds->setDimtad(1);
  ds->setDimdec(2);
  add<AcDbDimStyleTable>(db.dimStyleTableId(), ds, u"ISO");

  auto* ucs = new AcDbUCSTableRecord;
  ucs->setOrigin(AcGePoint3d(100, 200, 0));
  ucs->setXAxis(AcGeVector3d(0, 1, 0));
  ucs->setYAxis(AcGeVector3d(-1, 0, 0));
  add<AcDbUCSTable>(db.UCSTableId(), ucs, u"Site");

  auto* view = new AcDbViewTableRecord;
  view->setCenterPoint(AcGePoint2d(50, 60));
  view->setHeight(100);
  view->setWidth(150);
  add<AcDbViewTable>(db.viewTableId(), view, u"Overview");
  add<AcDbRegAppTable>(db.regAppTableId(), new AcDbRegAppTableRecord, u"ZEPK");

  AcDbObjectId symbol = add<AcDbBlockTable>(db.blockTableId(), new AcDbBlockTableRecord, u"SYMBOL");
  append(symbol, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
  AcDbObjectId model;
  {
    AcDbObjectPointer<AcDbBlockTable> blocks(db.blockTableId(), AcDb::kForRead);
    blocks->getAt(ACDB_MODEL_SPACE, model);
  }
  AcDbObjectId plain = append(model, new AcDbBlockReference(AcGePoint3d(10, 0, 0), symbol));
  AcDbObjectId grid = append(model, new AcDbMInsertBlock(AcGePoint3d(20, 0, 0), symbol, 3, 2, 4.0, 5.0));
  AcDbObjectId a = append(model, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(5, 5, 0)));
  AcDbObjectId b = append(model, new AcDbLine(AcGePoint3d(0, 5, 0), AcGePoint3d(5, 0, 0)));

  {
    AcDbDictionary* groups = nullptr;
    ASSERT_EQ(db.getGroupDictionary(groups, AcDb::kForWrite), Acad::eOk);
    auto* g = new AcDbGroup(u"lot 7");
    AcDbObjectId gid;
    ASSERT_EQ(groups->setAt(u"LOT7", g, gid), Acad::eOk);
    groups->close();
    g->append(a);
    g->append(b);
    g->close();
  }
  {
    AcDbDictionary* nod = nullptr;
    ASSERT_EQ(db.getNamedObjectsDictionary(nod, AcDb::kForWrite), Acad::eOk);
    auto* estate = new AcDbDictionary;
    AcDbObjectId id;
    nod->setAt(u"ESTATE_DICT", estate, id);
    nod->close();
    auto* floors = new AcDbXrecord;
    estate->setAt(u"LAYERRECORD", floors, id);
    estate->close();
    resbuf* list = acutBuildList(1, u"一层", 1, u"二层", 70, 3, 0);
    EXPECT_EQ(floors->setFromRbChain(list), Acad::eOk);
    acutRelRb(list);
    floors->close();
  }
  {
    AcDbObjectPointer<AcDbBlockTableRecord> ms(model, AcDb::kForWrite);
    AcDbSortentsTable* sort = nullptr;
    ASSERT_EQ(ms->getSortentsTable(sort, AcDb::kForWrite, true), Acad::eOk);
    sort->swapOrder(a, b);
    sort->close();
  }

  char dir[] = "/tmp/zepk-tables-XXXXXX";
  ASSERT_NE(mkdtemp(dir), nullptr);
  const std::string path = std::string(dir) + "/tables.dxf", script = std::string(dir) + "/check.py";
  std::string error;
  ASSERT_TRUE(zepk::db::writeDxf(&db, path, &error)) << error;
  std::ofstream(script) << kCheck;
  auto hex = [](AcDbObjectId id) {
    std::string s;
    for (char16_t c : id.handle().ascii()) s += static_cast<char>(c);
    return s;
  };
  const std::string codePage = "ANSI_" + std::to_string(zepk::sys::systemCodePage());
  std::string report = run("PYTHONIOENCODING=utf-8 /usr/bin/python3 " + script + " " + path + " " + hex(a) + " " +
                           hex(b) + " " + codePage + " " + hex(plain) + " " + hex(grid) + " 2>&1");
  EXPECT_EQ(report, "ok\n");
  std::remove(script.c_str());
  std::remove(path.c_str());
  rmdir(dir);
}

}  // namespace
