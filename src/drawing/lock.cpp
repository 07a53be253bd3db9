// Two whole-drawing commands: the drawing locked against editing, and a
// text file's lines written into the drawing as texts.
#include <cstdlib>
#include <string>
#include <vector>

#include "drawing/create.h"
#include "drawing/lisp.h"
#include "drawing/lisp_common.h"
#include "host/aced.h"
#include "host/dbidmap.h"
#include "host/dbsymtb.h"
#include "host/hostfile.h"
#include "services/textfiles.h"

namespace zepk::drawing {

namespace {

// The entities of model space, in drawing order.
std::vector<AcDbObjectId> modelSpaceEntities(AcDbDatabase* db, AcDbObjectId& space) {
  std::vector<AcDbObjectId> ids;
  AcDbBlockTable* table = nullptr;
  if (db->getBlockTable(table, AcDb::kForRead) != Acad::eOk) return ids;
  Acad::ErrorStatus es = table->getAt(ACDB_MODEL_SPACE, space);
  table->close();
  AcDbBlockTableRecord* rec = nullptr;
  if (es != Acad::eOk || acdbOpenObject(rec, space, AcDb::kForRead) != Acad::eOk) return ids;
  AcDbObjectIdArray all = rec->entityIds();
  rec->close();
  return std::vector<AcDbObjectId>(all.begin(), all.end());
}

// A new unnamed block definition that refuses exploding.
Acad::ErrorStatus makeLockedBlock(AcDbDatabase* db, AcDbObjectId& blockId) {
  AcDbBlockTable* table = nullptr;
  Acad::ErrorStatus es = db->getBlockTable(table, AcDb::kForWrite);
  if (es != Acad::eOk) return acutPrintf(u"错误:块表无法写操作\n"), es;
  auto* rec = new AcDbBlockTableRecord;
  rec->setName(u"*U");
  rec->setOrigin(AcGePoint3d::kOrigin);
  rec->setExplodable(false);
  es = table->add(blockId, rec);
  table->close();
  if (es != Acad::eOk) {
    delete rec;
    return es;
  }
  rec->close();
  return Acad::eOk;
}

}  // namespace

// Moves every entity of model space into one unnamed block that cannot be
// exploded, and puts a reference to it where they were: the drawing looks
// the same and its entities can no longer be picked one by one.
void cmdZepkLock() {
  AcDbDatabase* db = databaseOr(nullptr);
  if (!db) return;
  ACHAR answer[32] = u"";
  acedInitGet(0, u"Yes No");
  int st = acedGetKword(u"\n图形加锁后不能恢复编辑, 是否继续? [Yes/No] <No>: ", answer, 32);
  if (st != RTNORM || std::u16string(answer) != u"Yes") {
    acutPrintf(u"\n未加锁.");
    return;
  }
  AcDbObjectId space;
  std::vector<AcDbObjectId> ids = modelSpaceEntities(db, space);
  if (ids.empty()) {
    acutPrintf(u"\n图形中没有对象.");
    return;
  }
  AcDbObjectId blockId;
  if (makeLockedBlock(db, blockId) != Acad::eOk) return;
  AcDbIdMapping map;
  if (db->deepCloneObjects(AcDbObjectIdArray(ids.begin(), ids.end()), blockId, map) != Acad::eOk) {
    acutPrintf(u"\n加锁失败.");
    return;
  }
  int moved = 0;
  for (const AcDbObjectId& id : ids) {
    AcDbEntity* e = nullptr;
    if (acdbOpenObject(e, id, AcDb::kForWrite) != Acad::eOk) continue;
    e->erase();
    e->close();
    ++moved;
  }
  auto* ref = new AcDbBlockReference(AcGePoint3d::kOrigin, blockId);
  ref->setLayer(u"0");
  AcDbObjectId refId;
  if (appendToOwner(ref, space, refId) != Acad::eOk) return;
  acutPrintf(u"\n已加锁 %d 个对象.", moved);
}

// (c:filett): the lines of a text file (its encoding read from its first
// bytes) drawn as texts one under another from a picked point, at the
// current text height, a line and a half apart.
int lispFileToText() {
  Args a(kBang);
  if (!a.end()) return RTERROR;
  resbuf file{};
  if (acedGetFileD(u"选择文本文件", u"", u"txt", 0, &file) != RTNORM || file.restype != RTSTR) return retNil();
  std::u16string path = file.resval.rstring;
  std::free(file.resval.rstring);
  std::string bytes;
  if (!acutReadWholeFile(path, &bytes)) return frame::fail(u"\n文件无法读取!"), retNil();
  std::vector<std::u16string> lines = services::splitTextLines(services::decodeTextFile(bytes));
  ads_point start;
  if (acedGetPoint(nullptr, u"\n文字起点: ", start) != RTNORM) return retNil();
  resbuf size;
  double height = acedGetVar(u"TEXTSIZE", &size) == RTNORM && size.restype == RTREAL && size.resval.rreal > 0
                      ? size.resval.rreal
                      : 2.5;
  int made = 0;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].empty()) continue;
    AcDbObjectId id;
    AcGePoint3d at(start[0], start[1] - 1.5 * height * static_cast<double>(i), start[2]);
    if (makeText(id, at, height, lines[i].c_str()) == Acad::eOk) ++made;
  }
  acutPrintf(u"\n写入 %d 行文字.", made);
  acedRetVoid();
  return RSRSLT;
}

}  // namespace zepk::drawing
