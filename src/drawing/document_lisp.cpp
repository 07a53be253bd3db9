// Documents for LISP and the document commands: entities written to a
// drawing file, a drawing file read in as a block, named coordinate
// systems, text background fill.
#include <memory>
#include <string>
#include <vector>

#include "drawing/create.h"
#include "drawing/lisp.h"
#include "drawing/lisp_common.h"
#include "host/aced.h"
#include "host/dbmtext.h"
#include "host/dbsymtb.h"

namespace zepk::drawing {

namespace {

// The selected entities, after the prompt; empty after a cancel or an
// empty selection.
std::vector<AcDbObjectId> selectEntities(const resbuf* filter = nullptr) {
  std::vector<AcDbObjectId> ids;
  ads_name ss;
  if (acedSSGet(nullptr, nullptr, nullptr, filter, ss) != RTNORM) return ids;
  int32_t n = 0;
  acedSSLength(ss, &n);
  for (int32_t i = 0; i < n; ++i) {
    ads_name e;
    AcDbObjectId id;
    if (acedSSName(ss, i, e) == RTNORM && acdbGetObjectId(id, e) == Acad::eOk) ids.push_back(id);
  }
  acedSSFree(ss);
  return ids;
}

// Writes the entities (all of the drawing when none) to a drawing file.
Acad::ErrorStatus writeBlock(const std::u16string& file, const std::vector<AcDbObjectId>& ids,
                             const AcGePoint3d& base) {
  AcDbDatabase* db = databaseOr(nullptr);
  if (!db) return Acad::eNullObjectPointer;
  AcDbDatabase* out = nullptr;
  Acad::ErrorStatus es = ids.empty() ? db->wblock(out) : db->wblock(out, AcDbObjectIdArray(ids.begin(), ids.end()), base);
  if (es != Acad::eOk || !out) return es == Acad::eOk ? Acad::eNullObjectPointer : es;
  std::unique_ptr<AcDbDatabase> owned(out);
  return out->saveAs(file.c_str());
}

// The file's name without its folder and extension.
std::u16string baseName(const std::u16string& path) {
  size_t slash = path.find_last_of(u"/\\");
  std::u16string name = slash == std::u16string::npos ? path : path.substr(slash + 1);
  size_t dot = name.rfind(u'.');
  return dot == std::u16string::npos || dot == 0 ? name : name.substr(0, dot);
}

}  // namespace

// file [entities] [base point] -> T: the entities, or the whole drawing,
// written to a drawing file.
int lispDocWBlock() {
  Args a(kBang);
  std::u16string file;
  std::vector<AcDbObjectId> ids;
  AcGePoint3d base;
  if (!a.string(file)) return RTERROR;
  if (a.more() && a.type() != RTNIL && !a.entities(ids)) return RTERROR;
  if (a.more() && a.type() == RTNIL) a.flag();
  if (a.more() && !a.point(base)) return RTERROR;
  if (!a.end()) return RTERROR;
  if (file.empty()) return frame::failBadArg(MsgStyle::Bang, 1), RTERROR;
  return writeBlock(file, ids, base) == Acad::eOk ? retT() : retNil();
}

// file [name] -> the name of the block definition the drawing file became.
int lispDocInsert() {
  Args a(kBang);
  std::u16string file, name;
  if (!a.string(file)) return RTERROR;
  if (a.more() && !a.string(name)) return RTERROR;
  if (!a.end()) return RTERROR;
  if (name.empty()) name = baseName(file);
  if (file.empty() || name.empty()) return frame::failBadArg(MsgStyle::Bang, 1), RTERROR;
  AcDbDatabase* db = databaseOr(nullptr);
  if (!db) return retNil();
  AcDbDatabase source(false, true);
  if (source.readDwgFile(file.c_str()) != Acad::eOk) return frame::fail(u"\n打开对象错误!"), retNil();
  AcDbObjectId block;
  if (db->insert(block, name.c_str(), &source) != Acad::eOk) return retNil();
  acedRetStr(name.c_str());
  return RSRSLT;
}

// Writes a selection to a drawing file.
void cmdMyWblock() {
  acutPrintf(u"\n选择要写出的对象:");
  std::vector<AcDbObjectId> ids = selectEntities();
  if (ids.empty()) return;
  ads_point p = {0, 0, 0};
  acedInitGet(0, nullptr);
  int rc = acedGetPoint(nullptr, u"\n基点 <0,0,0>: ", p);
  if (rc == RTCAN) return;
  if (rc != RTNORM) p[0] = p[1] = p[2] = 0;
  ACHAR file[1024];
  if (acedGetString(1, u"\n文件名: ", file, 1024) != RTNORM || !file[0]) return;
  Acad::ErrorStatus es = writeBlock(file, ids, AcGePoint3d(p[0], p[1], p[2]));
  if (es == Acad::eOk) {
    acutPrintf(u"\n已写出 %d 个对象到 %s.", static_cast<int>(ids.size()), file);
  } else {
    acutPrintf(u"\n写文件 %s 失败，错误：%d", file, static_cast<int>(es));
  }
}

// A named coordinate system from its origin, a point on its x axis and a
// point on the positive y side.
void cmdZkUcs() {
  ACHAR name[256];
  if (acedGetString(0, u"\n坐标系名称: ", name, 256) != RTNORM || !name[0]) return;
  ads_point o, px, py;
  if (acedGetPoint(nullptr, u"\n原点: ", o) != RTNORM) return;
  if (acedGetPoint(o, u"\nX轴上的点: ", px) != RTNORM) return;
  if (acedGetPoint(o, u"\nXY平面上Y轴正向的点: ", py) != RTNORM) return;
  AcGePoint3d origin(o[0], o[1], o[2]);
  AcGeVector3d x = AcGePoint3d(px[0], px[1], px[2]) - origin;
  AcGeVector3d toY = AcGePoint3d(py[0], py[1], py[2]) - origin;
  AcGeVector3d z = x.crossProduct(toY);
  if (x.length() < 1e-10 || z.length() < 1e-10 * x.length() * toY.length()) {
    acutPrintf(u"\n三点共线，无法确定坐标系.");
    return;
  }
  x.normalize();
  AcGeVector3d y = z.normal().crossProduct(x);
  AcDbDatabase* db = databaseOr(nullptr);
  AcDbUCSTable* table = nullptr;
  if (!db || db->getUCSTable(table, AcDb::kForWrite) != Acad::eOk) {
    acutPrintf(u"\n错误:坐标系表无法写操作");
    return;
  }
  AcDbUCSTableRecord* rec = nullptr;
  bool fresh = table->getAt(name, rec, AcDb::kForWrite) != Acad::eOk;
  if (fresh) {
    rec = new AcDbUCSTableRecord();
    if (rec->setName(name) != Acad::eOk) {
      delete rec;
      table->close();
      acutPrintf(u"\n名称无效.");
      return;
    }
  }
  rec->setOrigin(origin);
  rec->setXAxis(x);
  rec->setYAxis(y);
  if (fresh && table->add(rec) != Acad::eOk) {
    delete rec;
    table->close();
    return;
  }
  rec->close();
  table->close();
  acutPrintf(fresh ? u"\n坐标系 %s 已建立." : u"\n坐标系 %s 已更新.", name);
}

// Multiline texts given a background fill in the drawing's background
// colour, with a margin of half the text height.
void cmdMtbgf() {
  resbuf filter;
  filter.restype = 0;
  filter.resval.rstring = const_cast<ACHAR*>(u"MTEXT");
  filter.rbnext = nullptr;
  acutPrintf(u"\n选择多行文字:");
  int done = 0;
  for (AcDbObjectId id : selectEntities(&filter)) {
    AcDbObjectPointer<AcDbMText> m(id, AcDb::kForWrite);
    if (m.openStatus() != Acad::eOk) continue;
    m->setBackgroundFill(true);
    m->setUseBackgroundColor(true);
    m->setBackgroundScaleFactor(1.5);
    ++done;
  }
  acutPrintf(u"\n%d 个多行文字设置了背景填充.", done);
}

}  // namespace zepk::drawing
