// What the DXF file reader and writer share with each other and nothing
// else sees.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/db/dxffile.h"
#include "host/dbents.h"
#include "host/dxf/group.h"

namespace zepk::db {

// A section the host does not read (THUMBNAILIMAGE, ACDSDATA, sections of
// other programs): its name and body, written back as they were.
struct KeptSection {
  std::string name;
  std::vector<dxf::Group> body;
};

struct DxfFileData {
  std::vector<DxfClassRecord> classes;
  std::vector<KeptSection> sections;
};

// Reads as readDxfBytes does. When `bytesAreOurs`, the bytes are the
// caller's own buffer, which it drops after reading: the reader may give
// back the memory of those it is past (their content is then gone).
bool readDxfBytes(std::string_view bytes, std::unique_ptr<AcDbDatabase>* out, std::string* error,
                  const DxfReadOptions& options, bool bytesAreOurs);

// Writes the database as writeDxfBytes does, handing the bytes to `append`
// a piece at a time as they are made (false from it stops writing).
bool writeDxfPieces(AcDbDatabase* db, const std::function<bool(std::string_view)>& append, std::string* error);

// The file data of a database, made empty on first use.
DxfFileData& dxfFileData(AcDbDatabase* db);

// ---- values

inline DxfItem makeItem(int code, DxfItem::Kind kind) {
  DxfItem it;
  it.code = code;
  it.kind = kind;
  return it;
}

// Codes whose groups are the x of a point: the y is at code + 10, the z at
// code + 20.
inline bool isPointCode(int code) {
  return (code >= 10 && code <= 18) || (code >= 110 && code <= 112) || code == 210 || (code >= 1010 && code <= 1013);
}

// Groups that refer to other objects by handle (320-369, 390-399, 480-481).
inline bool isReferenceCode(int code) {
  return (code >= 320 && code <= 369) || (code >= 390 && code <= 399) || code == 480 || code == 481;
}

// A handle as a file writes it: 1 to 16 hexadecimal digits, with blanks
// around them allowed.
std::optional<uint64_t> parseHandle(std::string_view text);
std::string handleText(uint64_t value);

// Binary chunks: hexadecimal text, two digits a byte.
std::optional<std::string> hexToBytes(std::string_view text);
std::string bytesToHex(std::string_view bytes);

}  // namespace zepk::db

// ---- the frame of a block in a file

// The BLOCK and ENDBLK that open and close a block's entities in a file:
// entities of their own, with a handle, a layer and the rest of what every
// entity has. What the BLOCK says of the block (its flags, origin, path and
// description) is the block record's (AcDbBlockTableRecord::
// blockBeginSchema()); the file reader and writer hand that part over.
class AcDbBlockBegin : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbBlockBegin);
  AcDbBlockBegin() = default;
};

class AcDbBlockEnd : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbBlockEnd);
  AcDbBlockEnd() = default;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
};

namespace zepk::db {

// Registers the classes above and the proxies (called with the host's
// other classes).
void registerFileClasses();

// ---- structure the classes keep

// The vertices or attributes that follow an entity in a file, in order,
// and the SEQEND that closes them; none for other entities.
void entityParts(const AcDbObject* entity, std::vector<AcDbObjectId>& parts, AcDbObjectId& seqend);
// Makes the entities read after a polyline or block reference (already in
// its database) its vertices or attributes, and the SEQEND its end.
Acad::ErrorStatus linkParts(AcDbObjectId parent, const std::vector<AcDbObjectId>& parts, AcDbObjectId seqend);
// Adds to a drawing read from a file what every drawing has and the file
// did not hold (an R12 file holds no block records, layouts or
// dictionaries): the nine tables, the standard records, the two spaces,
// the named objects dictionary with its standard entries, a layout for
// each space. What it adds gets new handles. False with *error set when
// it cannot.
bool completeDrawing(AcDbDatabase* db, std::vector<std::string>* warnings, std::string* error);
// Only the tables and their standard records: done as soon as the tables
// are read, so that the entities find layer "0" and the linetypes.
bool completeTables(AcDbDatabase* db, std::string* error);

// ---- R12

// What an R12 record needs to be read as a later release writes it: the
// subclass markers in their places. `dxfName` is the record's type;
// `polylineFlags` is, for a VERTEX, the flags of the polyline it belongs to.
// Types the host has no layout for are left as they are.
void addSubclassMarkers(std::u16string_view dxfName, std::vector<DxfItem>& items, int polylineFlags);

}  // namespace zepk::db
