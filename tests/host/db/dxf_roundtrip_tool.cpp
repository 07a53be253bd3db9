// Opens a DXF drawing and saves it again, as the host does:
//
//   dxf_roundtrip IN.dxf OUT.dxf
//
// Warnings go to standard error; the exit status is 0 when the drawing was
// read and saved, 1 otherwise. For the corpus round trip:
//
//   /usr/bin/python3 tests/host/dxf/corpus/roundtrip.py -- BUILD/tests/host/db/dxf_roundtrip {in} {out}
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "host/db/dxffile.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s IN.dxf OUT.dxf\n", argv[0]);
    return 2;
  }
  std::unique_ptr<AcDbDatabase> db;
  std::string error;
  std::vector<std::string> warnings;
  zepk::db::DxfReadOptions options;
  options.warnings = &warnings;
  bool ok = zepk::db::readDxf(argv[1], &db, &error, options);
  for (const std::string& w : warnings) std::fprintf(stderr, "%s: %s\n", argv[1], w.c_str());
  if (!ok) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  if (!zepk::db::writeDxf(db.get(), argv[2], &error)) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  return 0;
}
