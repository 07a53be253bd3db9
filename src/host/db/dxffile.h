// Drawings as DXF files: reading a file into a new database and writing a
// database to a file.
//
// Reading takes every release from R12 (AC1009) on, text in the code page
// the file names (see dxf/reader.h). The drawing is read into a database of
// its own; on any fault the message names the line and what was expected
// there, and no database is made, so the caller's open drawing stays as it
// was. Records of classes the host does not know, and records their class
// cannot read, become proxies that write back unchanged (dbproxy.h).
//
// Writing gives an AC1032 (2018) file in UTF-8, written to a temporary name
// and renamed into place: the old file stays whole when anything fails.
//
// Nothing here throws; failures are the result and the message.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/db/memfiler.h"
#include "host/dbmain.h"

namespace zepk::db {

struct DxfReadOptions {
  // The code page of text in a pre-2007 file that names none (see
  // dxf::ReadOptions); 0 for the DXF default, 1252.
  int fallbackCodePage = 0;
  // Filled with what the reader went past or repaired ("line 120: LINE 2F:
  // kept as a proxy: ..."), when given.
  std::vector<std::string>* warnings = nullptr;
};

// Reads the file at `path` (a POSIX path) into a new database. On success
// *out holds it and the result is true; otherwise *out is left untouched and
// *error (when given) says why ("line 1234: expected ...", or "cannot read
// \"path\": ...").
bool readDxf(const std::string& path, std::unique_ptr<AcDbDatabase>* out, std::string* error,
             const DxfReadOptions& options = {});
// The same from the bytes of a file.
bool readDxfBytes(std::string_view bytes, std::unique_ptr<AcDbDatabase>* out, std::string* error,
                  const DxfReadOptions& options = {});

// Writes the database as an AC1032 DXF file, atomically. On failure the file
// at `path` is as it was and *error says why.
bool writeDxf(AcDbDatabase* db, const std::string& path, std::string* error);
// The bytes of that file.
bool writeDxfBytes(AcDbDatabase* db, std::string* bytes, std::string* error);

// ---- What a drawing keeps from its file beyond its objects.

// A record of the CLASSES section.
struct DxfClassRecord {
  std::u16string dxfName;    // 1
  std::u16string className;  // 2, the C++ class
  std::u16string appName;    // 3
  int32_t proxyFlags = 0;    // 90
  int32_t instances = 0;     // 91
  bool wasProxy = false;     // 280
  bool isEntity = false;     // 281
};

// The class records of the drawing, in file order (empty for a drawing not
// read from a file). Writing keeps them and adds records for classes that
// applications registered and whose objects the drawing holds.
std::vector<DxfClassRecord>& dxfClassRecords(AcDbDatabase* db);

// ---- Used by the database's own sources.

// A proxy's kept class: names, flags and the groups of its data as read,
// with references as ids.
struct ProxyData {
  std::u16string dxfName;
  std::u16string className;
  std::u16string appName;
  int proxyFlags = 0;
  // A proxy entity whose entity part (layer, colour ...) was not read as
  // such: that part is in `items` too.
  bool rawEntityPart = false;
  std::vector<DxfItem> items;

  Acad::ErrorStatus dwgOut(AcDbDwgFiler* f) const;
  Acad::ErrorStatus dwgIn(AcDbDwgFiler* f);
  Acad::ErrorStatus dxfOut(AcDbDxfFiler* f) const;
  // Takes every group up to extended data or the end.
  Acad::ErrorStatus dxfIn(AcDbDxfFiler* f);
  void references(AcDbObjectIdArray& ids) const;
};

// A new proxy object or entity (not in a database) of that class.
AcDbObject* makeProxy(bool entity, const std::u16string& dxfName, const std::u16string& className,
                      const std::u16string& appName, int proxyFlags);
// The data of a proxy, null for other objects.
ProxyData* proxyData(AcDbObject* obj);
const ProxyData* proxyData(const AcDbObject* obj);

}  // namespace zepk::db
