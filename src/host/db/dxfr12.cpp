// R12 records as later releases lay them out. An R12 file gives a record's
// groups without subclass markers; from R13 on, the groups stand in parts,
// each under the marker of the class that files them (100/AcDbEntity, then
// 100/AcDbLine ...). The classes read the later layout, so the reader puts
// the markers in: each group goes to the part that files its code, in the
// order it came.
#include <algorithm>
#include <initializer_list>
#include <vector>

#include "host/db/dxfinternal.h"

namespace zepk::db {

namespace {

// One part: its marker and the codes it files; an empty list with
// `rest` set takes every code no other part names.
struct Part {
  const char16_t* marker;
  std::vector<int> codes;
  bool rest = false;
};

Part rest(const char16_t* marker) { return Part{marker, {}, true}; }
Part only(const char16_t* marker, std::initializer_list<int> codes) { return Part{marker, codes, false}; }

// The groups every entity files in its AcDbEntity part.
const std::vector<int>& entityCodes() {
  static const std::vector<int> codes{8, 6, 62, 67, 48, 60, 370, 420, 430, 440, 390, 284, 347, 380};
  return codes;
}

int intOf(const std::vector<DxfItem>& items, int code, int dflt = 0) {
  for (const DxfItem& it : items)
    if (it.code == code && it.kind == DxfItem::Int) return static_cast<int>(it.i);
  return dflt;
}

// The text groups a text, attribute and attribute definition file under
// AcDbText.
const std::initializer_list<int> kTextCodes = {39, 10, 40, 1, 50, 41, 51, 7, 71, 72, 11, 210};

// The parts of an entity's own data; false for a type without a layout.
bool entityParts(std::u16string_view type, const std::vector<DxfItem>& items, int polylineFlags,
                 std::vector<Part>& parts) {
  if (type == u"LINE") parts = {rest(u"AcDbLine")};
  else if (type == u"POINT") parts = {rest(u"AcDbPoint")};
  else if (type == u"CIRCLE") parts = {rest(u"AcDbCircle")};
  else if (type == u"ARC") parts = {only(u"AcDbCircle", {39, 10, 40, 210}), rest(u"AcDbArc")};
  else if (type == u"TEXT") parts = {rest(u"AcDbText"), only(u"AcDbText", {73})};
  else if (type == u"ATTDEF") parts = {only(u"AcDbText", kTextCodes), rest(u"AcDbAttributeDefinition")};
  else if (type == u"ATTRIB") parts = {only(u"AcDbText", kTextCodes), rest(u"AcDbAttribute")};
  else if (type == u"SHAPE") parts = {rest(u"AcDbShape")};
  else if (type == u"SOLID" || type == u"TRACE") parts = {rest(u"AcDbTrace")};
  else if (type == u"3DFACE") parts = {rest(u"AcDbFace")};
  else if (type == u"VIEWPORT") parts = {rest(u"AcDbViewport")};
  else if (type == u"SEQEND") parts = {};
  else if (type == u"BLOCK") parts = {rest(u"AcDbBlockBegin")};
  else if (type == u"ENDBLK") parts = {rest(u"AcDbBlockEnd")};
  else if (type == u"INSERT") {
    // A block reference repeated in rows and columns is an MINSERT.
    bool array = intOf(items, 70, 1) > 1 || intOf(items, 71, 1) > 1;
    parts = {rest(array ? u"AcDbMInsertBlock" : u"AcDbBlockReference")};
  } else if (type == u"POLYLINE") {
    int flags = intOf(items, 70);
    parts = {rest(flags & 64   ? u"AcDbPolyFaceMesh"
                  : flags & 16 ? u"AcDbPolygonMesh"
                  : flags & 8  ? u"AcDb3dPolyline"
                               : u"AcDb2dPolyline")};
  } else if (type == u"VERTEX") {
    int own = intOf(items, 70);
    if (polylineFlags & 64) {
      // A polyface mesh has vertices (64 and 128) and face records (128).
      if ((own & 128) && !(own & 64)) parts = {rest(u"AcDbFaceRecord")};
      else parts = {only(u"AcDbVertex", {}), rest(u"AcDbPolyFaceMeshVertex")};
    } else if (polylineFlags & 16) {
      parts = {only(u"AcDbVertex", {}), rest(u"AcDbPolygonMeshVertex")};
    } else if (polylineFlags & 8) {
      parts = {only(u"AcDbVertex", {}), rest(u"AcDb3dPolylineVertex")};
    } else {
      parts = {only(u"AcDbVertex", {}), rest(u"AcDb2dVertex")};
    }
  } else if (type == u"DIMENSION") {
    Part common = only(u"AcDbDimension", {2, 3, 10, 11, 12, 70, 1, 71, 72, 41, 42, 53, 51, 210});
    switch (intOf(items, 70) & 7) {
      case 0: parts = {common, only(u"AcDbAlignedDimension", {13, 14}), rest(u"AcDbRotatedDimension")}; break;
      case 1: parts = {common, rest(u"AcDbAlignedDimension")}; break;
      case 2: parts = {common, rest(u"AcDb2LineAngularDimension")}; break;
      case 3: parts = {common, rest(u"AcDbDiametricDimension")}; break;
      case 4: parts = {common, rest(u"AcDbRadialDimension")}; break;
      case 5: parts = {common, rest(u"AcDb3PointAngularDimension")}; break;
      default: parts = {common, rest(u"AcDbOrdinateDimension")}; break;
    }
  } else {
    return false;
  }
  return true;
}

const char16_t* recordMarker(std::u16string_view type) {
  if (type == u"LAYER") return u"AcDbLayerTableRecord";
  if (type == u"LTYPE") return u"AcDbLinetypeTableRecord";
  if (type == u"STYLE") return u"AcDbTextStyleTableRecord";
  if (type == u"VIEW") return u"AcDbViewTableRecord";
  if (type == u"UCS") return u"AcDbUCSTableRecord";
  if (type == u"VPORT") return u"AcDbViewportTableRecord";
  if (type == u"APPID") return u"AcDbRegAppTableRecord";
  if (type == u"DIMSTYLE") return u"AcDbDimStyleTableRecord";
  if (type == u"BLOCK_RECORD") return u"AcDbBlockTableRecord";
  return nullptr;
}

DxfItem marker(const char16_t* name) {
  DxfItem it = makeItem(100, DxfItem::String);
  it.s = name;
  return it;
}

// Puts the items in their parts, each after its marker.
void distribute(std::vector<DxfItem>& items, const std::vector<Part>& parts) {
  std::vector<std::vector<DxfItem>> out(parts.size());
  std::vector<DxfItem> head;  // the object's own groups (330, 102), before every part
  for (DxfItem& it : items) {
    if (it.code == 330 || it.code == 102 || it.code == 360) {
      head.push_back(std::move(it));
      continue;
    }
    size_t to = parts.size();
    for (size_t k = 0; k < parts.size() && to == parts.size(); ++k)
      if (std::find(parts[k].codes.begin(), parts[k].codes.end(), it.code) != parts[k].codes.end()) to = k;
    for (size_t k = 0; k < parts.size() && to == parts.size(); ++k)
      if (parts[k].rest) to = k;
    if (to == parts.size()) to = parts.size() - 1;
    out[to].push_back(std::move(it));
  }
  items = std::move(head);
  for (size_t k = 0; k < parts.size(); ++k) {
    items.push_back(marker(parts[k].marker));
    for (DxfItem& it : out[k]) items.push_back(std::move(it));
  }
}

}  // namespace

void addSubclassMarkers(std::u16string_view dxfName, std::vector<DxfItem>& items, int polylineFlags) {
  if (std::any_of(items.begin(), items.end(), [](const DxfItem& it) { return it.code == 100; })) return;
  if (dxfName == u"TABLE") {
    distribute(items, {rest(u"AcDbSymbolTable")});
    return;
  }
  if (const char16_t* m = recordMarker(dxfName)) {
    distribute(items, {only(u"AcDbSymbolTableRecord", {}), rest(m)});
    return;
  }
  std::vector<Part> parts;
  if (!entityParts(dxfName, items, polylineFlags, parts)) return;
  Part common{u"AcDbEntity", entityCodes(), false};
  parts.insert(parts.begin(), common);
  distribute(items, parts);
}

}  // namespace zepk::db
