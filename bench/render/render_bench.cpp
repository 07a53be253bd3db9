// Loads a drawing and writes its picture, timing each: the workload of
// bench/run's render comparison.
//
// Usage: render_bench IN.dxf OUT.png WIDTH HEIGHT
// Prints "load S draw S entities N".
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "host/dbsymtb.h"
#include "host/render/picture.h"
#include "host/render/text.h"
#include "host/system/utf.h"

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fprintf(stderr, "usage: render_bench IN.dxf OUT.png WIDTH HEIGHT\n");
    return 2;
  }
  using Clock = std::chrono::steady_clock;
  zepk::render::installTextMetrics();
  auto t0 = Clock::now();
  auto db = std::make_unique<AcDbDatabase>(false);
  if (db->readDwgFile(zepk::sys::fromUtf8(argv[1]).c_str()) != Acad::eOk) {
    std::fprintf(stderr, "cannot read %s: %s\n", argv[1], db->lastFileError().c_str());
    return 1;
  }
  auto t1 = Clock::now();
  zepk::render::PictureOptions o;
  o.width = std::atoi(argv[3]);
  o.height = std::atoi(argv[4]);
  std::string error;
  if (!zepk::render::writePicture(db.get(), argv[2], o, &error)) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  auto t2 = Clock::now();
  size_t n = 0;
  AcDbBlockTable* table = nullptr;
  AcDbBlockTableRecord* ms = nullptr;
  if (db->getBlockTable(table, AcDb::kForRead) == Acad::eOk) {
    if (table->getAt(u"*Model_Space", ms, AcDb::kForRead) == Acad::eOk) {
      n = ms->entityIds().size();
      ms->close();
    }
    table->close();
  }
  std::printf("load %.3f draw %.3f entities %zu\n", std::chrono::duration<double>(t1 - t0).count(),
              std::chrono::duration<double>(t2 - t1).count(), n);
  return 0;
}
