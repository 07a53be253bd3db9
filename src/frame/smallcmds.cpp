#include "frame/smallcmds.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "frame/callbacks.h"
#include "host/acdocman.h"
#include "host/aced.h"
#include "host/dbapserv.h"
#include "host/dbents.h"
#include "host/dbsymtb.h"
#include "host/hostfile.h"
#include "host/rxregsvc.h"
#include "host/wincompat.h"

namespace zepk::frame {

namespace {

AcDbDatabase* workingDb() { return acdbHostApplicationServices()->workingDatabase(); }

// Appends an entity to model space; the entity is the database's after
// success, deleted otherwise.
bool appendToModelSpace(AcDbEntity* ent) {
  AcDbBlockTable* bt = nullptr;
  if (workingDb()->getBlockTable(bt, AcDb::kForRead) != Acad::eOk) {
    delete ent;
    return false;
  }
  AcDbBlockTableRecord* ms = nullptr;
  Acad::ErrorStatus es = bt->getAt(ACDB_MODEL_SPACE, ms, AcDb::kForWrite);
  bt->close();
  if (es != Acad::eOk) {
    delete ent;
    return false;
  }
  es = ms->appendAcDbEntity(ent);
  ms->close();
  if (es != Acad::eOk) {
    delete ent;
    return false;
  }
  ent->close();
  return true;
}

}  // namespace

// A layer of colour 2 and linetype CONTINUOUS; an existing layer is left
// as it is.
void cmdNewLayer() {
  ACHAR name[256] = {0};
  if (acedGetString(1, u"\n输入新图层名: ", name, 256) != RTNORM || !name[0]) return;
  AcDbLayerTable* lt = nullptr;
  if (workingDb()->getLayerTable(lt, AcDb::kForWrite) != Acad::eOk) return;
  if (lt->has(name)) {
    lt->close();
    acutPrintf(u"\n图层 %s 已存在.", name);
    return;
  }
  auto* rec = new AcDbLayerTableRecord;
  if (rec->setName(name) != Acad::eOk) {
    delete rec;
    lt->close();
    acutPrintf(u"\n无效的图层名: %s", name);
    return;
  }
  rec->setColorIndex(2);
  AcDbLinetypeTable* ltt = nullptr;
  if (workingDb()->getLinetypeTable(ltt, AcDb::kForRead) == Acad::eOk) {
    AcDbObjectId cont;
    if (ltt->getAt(u"CONTINUOUS", cont) == Acad::eOk) rec->setLinetypeObjectId(cont);
    ltt->close();
  }
  if (lt->add(rec) != Acad::eOk) {
    delete rec;
  } else {
    rec->close();
  }
  lt->close();
}

// Picks a line and makes it red.
void cmdChangeLineColour() {
  ads_name en;
  ads_point pt;
  if (acedEntSel(u"\n选择直线: ", en, pt) != RTNORM) return;
  AcDbObjectId id;
  if (acdbGetObjectId(id, en) != Acad::eOk) return;
  AcDbObjectPointer<AcDbLine> line(id, AcDb::kForWrite);
  if (line.openStatus() != Acad::eOk) {
    acutPrintf(u"\n所选对象不是直线.");
    return;
  }
  line->setColorIndex(1);
}

// Points given until Enter, printed sorted by x, then y, then z.
void cmdSortTest() {
  std::vector<AcGePoint3d> pts;
  ads_point p;
  while (acedGetPoint(nullptr, u"\n指定点<结束>: ", p) == RTNORM) pts.emplace_back(p[0], p[1], p[2]);
  std::sort(pts.begin(), pts.end(), [](const AcGePoint3d& a, const AcGePoint3d& b) {
    if (a.x != b.x) return a.x < b.x;
    if (a.y != b.y) return a.y < b.y;
    return a.z < b.z;
  });
  for (const AcGePoint3d& q : pts) acutPrintf(u"\n%0.0f,%0.0f,%0.0f", q.x, q.y, q.z);
}

namespace {

int askLineCount() {
  int n = 1000;
  acedInitGet(6, nullptr);
  int st = acedGetInt(u"\n直线数量 <1000>: ", &n);
  if (st == RTNONE) return 1000;
  return st == RTNORM ? n : 0;
}

void reportTime(std::chrono::steady_clock::time_point start) {
  double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  acutPrintf(u"\n耗时 :%g 秒.", s);
}

}  // namespace

// Timing: lines appended to model space through one open of the space.
void cmdPrb() {
  int n = askLineCount();
  if (n <= 0) return;
  auto start = std::chrono::steady_clock::now();
  AcDbBlockTable* bt = nullptr;
  if (workingDb()->getBlockTable(bt, AcDb::kForRead) != Acad::eOk) return;
  AcDbBlockTableRecord* ms = nullptr;
  Acad::ErrorStatus es = bt->getAt(ACDB_MODEL_SPACE, ms, AcDb::kForWrite);
  bt->close();
  if (es != Acad::eOk) return;
  for (int i = 0; i < n; ++i) {
    auto* line = new AcDbLine(AcGePoint3d(0, i, 0), AcGePoint3d(100, i, 0));
    if (ms->appendAcDbEntity(line) != Acad::eOk) {
      delete line;
      break;
    }
    line->close();
  }
  ms->close();
  reportTime(start);
}

// Timing: the same lines, each made from its entity list.
void cmdPrb1() {
  int n = askLineCount();
  if (n <= 0) return;
  auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < n; ++i) {
    ads_point a = {0, static_cast<double>(i), 0}, b = {100, static_cast<double>(i), 0};
    resbuf* ent = acutBuildList(RTDXF0, u"LINE", 10, a, 11, b, 0);
    int st = ent ? acdbEntMake(ent) : RTERROR;
    if (ent) acutRelRb(ent);
    if (st != RTNORM) break;
  }
  reportTime(start);
}

void cmdNewDwg() {
  if (acDocManager->appContextNewDocument(nullptr) != Acad::eOk) acutPrintf(u"\n新建图形失败.");
}

// Writes a line of text to c:\ftest.txt (the root of the mapped C: drive).
void cmdFileTest() {
  const ACHAR* path = u"c:\\ftest.txt";
  if (acutWriteWholeFile(path, "ZEPK API file test\n")) {
    acutPrintf(u"\n已写入 %s.", path);
  } else {
    acutPrintf(u"\n无法写入 %s.", path);
  }
}

// A circle by its centre and radius, then one by two ends of a diameter.
void cmdAddCircle() {
  ads_point c;
  double r = 0;
  if (acedGetPoint(nullptr, u"\n圆心: ", c) != RTNORM) return;
  acedInitGet(6, nullptr);
  if (acedGetDist(c, u"\n半径: ", &r) != RTNORM) return;
  appendToModelSpace(new AcDbCircle(AcGePoint3d(c[0], c[1], c[2]), AcGeVector3d::kZAxis, r));
  ads_point a, b;
  if (acedGetPoint(nullptr, u"\n直径第一点: ", a) != RTNORM) return;
  if (acedGetPoint(a, u"\n直径第二点: ", b) != RTNORM) return;
  AcGePoint3d pa(a[0], a[1], a[2]), pb(b[0], b[1], b[2]);
  double d = pa.distanceTo(pb);
  if (d <= 0) {
    acutPrintf(u"\n两点重合.");
    return;
  }
  appendToModelSpace(new AcDbCircle(pa + (pb - pa) / 2.0, AcGeVector3d::kZAxis, d / 2.0));
}

// Removes <product key>\Applications\ZEPK API from the user's and the
// machine's hive.
void cmdUnRegZepk() {
  std::u16string key = std::u16string(acrxProductKey()) + u"\\Applications\\ZEPK API";
  RegDeleteKeyW(HKEY_CURRENT_USER, key.c_str());
  RegDeleteKeyW(HKEY_LOCAL_MACHINE, key.c_str());
  acutPrintf(u"\n已成功删除ZEPK API注册信息.");
}

void invokeLspCommand() { cmdInvokeLsp(); }

}  // namespace zepk::frame
