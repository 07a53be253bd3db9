// Loads a DXF drawing and saves it again, timing each step and measuring the
// memory the open drawing holds:
//
//   dxf_bench IN.dxf OUT.dxf
//
// Prints "load S save S resident MB peak MB entities N cpuload S cpusave S",
// where resident is the growth of the process's resident memory from before
// loading to after (the drawing as it stays open), peak the process's
// high-water mark, and the cpu figures the processor time of each step
// (steadier than the elapsed time on a busy machine).
#include <time.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "host/db/dxffile.h"
#include "host/dbsymtb.h"

namespace {

// A field of /proc/self/status in kB ("VmRSS:", "VmHWM:").
long statusKb(const char* key) {
  std::FILE* f = std::fopen("/proc/self/status", "r");
  if (!f) return 0;
  char line[256];
  long kb = 0;
  size_t n = std::strlen(key);
  while (std::fgets(line, sizeof line, f)) {
    if (std::strncmp(line, key, n) == 0) {
      kb = std::atol(line + n);
      break;
    }
  }
  std::fclose(f);
  return kb;
}

long countModelSpace(AcDbDatabase* db) {
  AcDbBlockTable* table = nullptr;
  if (db->getBlockTable(table, AcDb::kForRead) != Acad::eOk) return -1;
  AcDbBlockTableRecord* ms = nullptr;
  long n = 0;
  if (table->getAt(ACDB_MODEL_SPACE, ms, AcDb::kForRead) == Acad::eOk) {
    AcDbBlockTableRecordIterator* it = nullptr;
    if (ms->newIterator(it) == Acad::eOk) {
      for (; !it->done(); it->step()) ++n;
      delete it;
    }
    ms->close();
  }
  table->close();
  return n;
}

double cpuSeconds() {
  timespec ts{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
  return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) * 1e-9;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s IN.dxf OUT.dxf\n", argv[0]);
    return 2;
  }
  using clock = std::chrono::steady_clock;
  long before = statusKb("VmRSS:");
  std::unique_ptr<AcDbDatabase> db;
  std::string error;
  const double c0 = cpuSeconds();
  auto t0 = clock::now();
  if (!zepk::db::readDxf(argv[1], &db, &error)) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  auto t1 = clock::now();
  const double c1 = cpuSeconds();
  long after = statusKb("VmRSS:");
  if (!zepk::db::writeDxf(db.get(), argv[2], &error)) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  auto t2 = clock::now();
  const double c2 = cpuSeconds();
  std::printf("load %.3f save %.3f resident %.1f peak %.1f entities %ld cpuload %.3f cpusave %.3f\n",
              std::chrono::duration<double>(t1 - t0).count(), std::chrono::duration<double>(t2 - t1).count(),
              (after - before) / 1024.0, statusKb("VmHWM:") / 1024.0, countModelSpace(db.get()), c1 - c0,
              c2 - c1);
  return 0;
}
