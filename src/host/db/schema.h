// One description of a class's persistent fields: group code, type, name and
// default, declared once as a table. The DWG-style stream (copy, undo), DXF
// in and out (files, entget, entmod) and property access by name all walk
// this table; no class writes its field list a second time.
//
//   const ClassSchema AcDbLine::schema{u"AcDbLine", {
//       field<&AcDbLine::start_>(10, "StartPoint"),
//       field<&AcDbLine::end_>(11, "EndPoint"),
//       field<&AcDbLine::thickness_>(39, "Thickness", 0.0, kOptional),
//       field<&AcDbLine::normal_>(210, "Normal", AcGeVector3d::kZAxis, kOptional),
//   }};
//
// Classes whose data repeats (polyline vertices, hatch loops) add custom
// parts: a pair of functions that write and read that stretch of groups,
// placed in the table where the stretch stands.
#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "host/db/memfiler.h"
#include "host/dbmain.h"

namespace zepk::db {

enum class FieldType { Bool, Int16, Int32, Real, Point2d, Point3d, Vector3d, String, HardPointer, SoftPointer, HardOwner, SoftOwner };

enum FieldFlags : unsigned {
  kNone = 0,
  // Not written to DXF when it holds its default.
  kOptional = 1,
  // An angle kept in radians that a drawing file writes in degrees (arc
  // angles, text and block rotations); entity lists give radians.
  kDegreesInFile = 2,
  // Left out wherever it holds its default, entity lists included: a
  // block reference's column and row counts, which only a grid has.
  kOmittedWhenDefault = 4,
};

// Access to one field through the object; made by field<> below.
struct Field {
  int code = 0;
  FieldType type = FieldType::Real;
  const char* name = "";
  unsigned flags = kNone;
  // Custom part: when set, these replace the typed access.
  Acad::ErrorStatus (*customDxfOut)(const AcDbObject*, AcDbDxfFiler*) = nullptr;
  // Reads the part's groups from the filer's current place; returns eOk
  // having consumed only its own groups.
  Acad::ErrorStatus (*customDxfIn)(AcDbObject*, MemoryDxfFiler*) = nullptr;
  Acad::ErrorStatus (*customDwgOut)(const AcDbObject*, AcDbDwgFiler*) = nullptr;
  Acad::ErrorStatus (*customDwgIn)(AcDbObject*, AcDbDwgFiler*) = nullptr;
  // Codes the custom part reads in DXF.
  std::vector<int> customCodes;

  // Typed access for ordinary fields.
  void (*writeDxf)(const AcDbObject*, const Field&, AcDbDxfFiler*) = nullptr;
  bool (*readDxf)(AcDbObject*, const DxfItem&) = nullptr;
  void (*writeDwg)(const AcDbObject*, AcDbDwgFiler*) = nullptr;
  void (*readDwg)(AcDbObject*, AcDbDwgFiler*) = nullptr;
  bool (*isDefault)(const AcDbObject*) = nullptr;
  void (*reset)(AcDbObject*) = nullptr;
};

class ClassSchema {
 public:
  ClassSchema(const char16_t* subclassMarker, std::vector<Field> fields)
      : marker_(subclassMarker), fields_(std::move(fields)) {}
  const char16_t* marker() const { return marker_; }
  const std::vector<Field>& fields() const { return fields_; }

  // The class's own part: its subclass marker, then its fields in order.
  Acad::ErrorStatus dxfOut(const AcDbObject* obj, AcDbDxfFiler* f) const;
  // Reads the class's own part: the subclass marker must stand first
  // (eBadDxfSequence otherwise). Fields not present keep their defaults;
  // groups of the part's codes are taken in order, so that two fields with
  // one code fill in turn; reading stops at the next subclass marker, at
  // extended data, or at the end.
  Acad::ErrorStatus dxfIn(AcDbObject* obj, AcDbDxfFiler* f) const;
  Acad::ErrorStatus dwgOut(const AcDbObject* obj, AcDbDwgFiler* f) const;
  Acad::ErrorStatus dwgIn(AcDbObject* obj, AcDbDwgFiler* f) const;
  // The field with this property name (case-insensitive), or null.
  const Field* byName(std::string_view name) const;

 private:
  const char16_t* marker_;
  std::vector<Field> fields_;
};

// ---- typed fields

template <auto Member>
struct MemberOf;
template <class C, class T, T C::*M>
struct MemberOf<M> {
  using Class = C;
  using Type = T;
};

template <class T>
constexpr FieldType fieldTypeOf() {
  if constexpr (std::is_same_v<T, bool>) return FieldType::Bool;
  else if constexpr (std::is_same_v<T, int16_t>) return FieldType::Int16;
  else if constexpr (std::is_same_v<T, int32_t>) return FieldType::Int32;
  else if constexpr (std::is_same_v<T, double>) return FieldType::Real;
  else if constexpr (std::is_same_v<T, AcGePoint2d>) return FieldType::Point2d;
  else if constexpr (std::is_same_v<T, AcGePoint3d>) return FieldType::Point3d;
  else if constexpr (std::is_same_v<T, AcGeVector3d>) return FieldType::Vector3d;
  else if constexpr (std::is_same_v<T, std::u16string>) return FieldType::String;
  else if constexpr (std::is_same_v<T, AcDbObjectId>) return FieldType::SoftPointer;
  else static_assert(!sizeof(T), "no field type for this member type");
}

namespace detail {

template <class T>
void writeDxfValue(AcDbDxfFiler* f, int code, FieldType type, const T& v) {
  if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, int16_t> || std::is_same_v<T, int32_t>) {
    f->writeInt64(code, v);
  } else if constexpr (std::is_same_v<T, double>) {
    f->writeDouble(code, v);
  } else if constexpr (std::is_same_v<T, AcGePoint2d>) {
    f->writePoint2d(code, v);
  } else if constexpr (std::is_same_v<T, AcGePoint3d>) {
    f->writePoint3d(code, v);
  } else if constexpr (std::is_same_v<T, AcGeVector3d>) {
    f->writeVector3d(code, v);
  } else if constexpr (std::is_same_v<T, std::u16string>) {
    f->writeString(code, v);
  } else if constexpr (std::is_same_v<T, AcDbObjectId>) {
    f->writeObjectId(code, v);
  }
}

// Takes a group's value into a field; false when the group's value is not
// of the field's kind.
template <class T>
bool readDxfValue(const DxfItem& it, T* out) {
  if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, int16_t> || std::is_same_v<T, int32_t>) {
    if (it.kind != DxfItem::Int) return false;
    *out = static_cast<T>(it.i);
  } else if constexpr (std::is_same_v<T, double>) {
    if (it.kind == DxfItem::Real) *out = it.p[0];
    else if (it.kind == DxfItem::Int) *out = static_cast<double>(it.i);
    else return false;
  } else if constexpr (std::is_same_v<T, AcGePoint2d>) {
    if (it.kind != DxfItem::Point) return false;
    *out = AcGePoint2d(it.p[0], it.p[1]);
  } else if constexpr (std::is_same_v<T, AcGePoint3d>) {
    if (it.kind != DxfItem::Point) return false;
    *out = AcGePoint3d(it.p[0], it.p[1], it.p[2]);
  } else if constexpr (std::is_same_v<T, AcGeVector3d>) {
    if (it.kind != DxfItem::Point) return false;
    *out = AcGeVector3d(it.p[0], it.p[1], it.p[2]);
  } else if constexpr (std::is_same_v<T, std::u16string>) {
    if (it.kind != DxfItem::String) return false;
    *out = it.s;
  } else if constexpr (std::is_same_v<T, AcDbObjectId>) {
    if (it.kind != DxfItem::Id) return false;
    *out = it.id;
  }
  return true;
}

template <class T>
void writeDwgValue(AcDbDwgFiler* f, FieldType type, const T& v) {
  if constexpr (std::is_same_v<T, bool>) f->writeBool(v);
  else if constexpr (std::is_same_v<T, int16_t>) f->writeInt16(v);
  else if constexpr (std::is_same_v<T, int32_t>) f->writeInt32(v);
  else if constexpr (std::is_same_v<T, double>) f->writeDouble(v);
  else if constexpr (std::is_same_v<T, AcGePoint2d>) f->writePoint2d(v);
  else if constexpr (std::is_same_v<T, AcGePoint3d>) f->writePoint3d(v);
  else if constexpr (std::is_same_v<T, AcGeVector3d>) f->writeVector3d(v);
  else if constexpr (std::is_same_v<T, std::u16string>) f->writeString(v);
  else if constexpr (std::is_same_v<T, AcDbObjectId>) {
    switch (type) {
      case FieldType::HardOwner: f->writeHardOwnershipId(v); break;
      case FieldType::SoftOwner: f->writeSoftOwnershipId(v); break;
      case FieldType::HardPointer: f->writeHardPointerId(v); break;
      default: f->writeSoftPointerId(v); break;
    }
  }
}

template <class T>
void readDwgValue(AcDbDwgFiler* f, FieldType type, T* v) {
  if constexpr (std::is_same_v<T, bool>) f->readBool(v);
  else if constexpr (std::is_same_v<T, int16_t>) f->readInt16(v);
  else if constexpr (std::is_same_v<T, int32_t>) f->readInt32(v);
  else if constexpr (std::is_same_v<T, double>) f->readDouble(v);
  else if constexpr (std::is_same_v<T, AcGePoint2d>) f->readPoint2d(v);
  else if constexpr (std::is_same_v<T, AcGePoint3d>) f->readPoint3d(v);
  else if constexpr (std::is_same_v<T, AcGeVector3d>) f->readVector3d(v);
  else if constexpr (std::is_same_v<T, std::u16string>) f->readString(v);
  else if constexpr (std::is_same_v<T, AcDbObjectId>) {
    switch (type) {
      case FieldType::HardOwner: f->readHardOwnershipId(v); break;
      case FieldType::SoftOwner: f->readSoftOwnershipId(v); break;
      case FieldType::HardPointer: f->readHardPointerId(v); break;
      default: f->readSoftPointerId(v); break;
    }
  }
}

template <class T>
bool sameValue(const T& a, const T& b) {
  if constexpr (std::is_same_v<T, AcGePoint2d>) {
    return a.x == b.x && a.y == b.y;
  } else if constexpr (std::is_same_v<T, AcGePoint3d> || std::is_same_v<T, AcGeVector3d>) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
  } else {
    return a == b;
  }
}

}  // namespace detail

// An ordinary field: the member, its group code, its property name, its
// default (what a new object holds and what a DXF without the group gives)
// and flags. A member of type AcDbObjectId is a soft pointer unless the
// type says otherwise.
template <auto Member>
Field field(int code, const char* name, typename MemberOf<Member>::Type def = {}, unsigned flags = kNone,
            FieldType type = fieldTypeOf<typename MemberOf<Member>::Type>()) {
  using C = typename MemberOf<Member>::Class;
  using T = typename MemberOf<Member>::Type;
  // The default is kept in a static of this instantiation: one per field.
  static T gDefault;
  gDefault = def;
  static FieldType gType;
  gType = type;
  Field f;
  f.code = code;
  f.type = type;
  f.name = name;
  f.flags = flags;
  f.writeDxf = [](const AcDbObject* o, const Field& fd, AcDbDxfFiler* filer) {
    detail::writeDxfValue(filer, fd.code, fd.type, static_cast<const C*>(o)->*Member);
  };
  f.readDxf = [](AcDbObject* o, const DxfItem& it) { return detail::readDxfValue(it, &(static_cast<C*>(o)->*Member)); };
  f.writeDwg = [](const AcDbObject* o, AcDbDwgFiler* filer) {
    detail::writeDwgValue(filer, gType, static_cast<const C*>(o)->*Member);
  };
  f.readDwg = [](AcDbObject* o, AcDbDwgFiler* filer) { detail::readDwgValue(filer, gType, &(static_cast<C*>(o)->*Member)); };
  f.isDefault = [](const AcDbObject* o) { return detail::sameValue(static_cast<const C*>(o)->*Member, gDefault); };
  f.reset = [](AcDbObject* o) { static_cast<C*>(o)->*Member = gDefault; };
  return f;
}

// A custom part of the table: a stretch of groups that repeats or nests.
inline Field custom(std::vector<int> codes, Acad::ErrorStatus (*dxfOut)(const AcDbObject*, AcDbDxfFiler*),
                    Acad::ErrorStatus (*dxfIn)(AcDbObject*, MemoryDxfFiler*),
                    Acad::ErrorStatus (*dwgOut)(const AcDbObject*, AcDbDwgFiler*),
                    Acad::ErrorStatus (*dwgIn)(AcDbObject*, AcDbDwgFiler*)) {
  Field f;
  f.customCodes = std::move(codes);
  f.customDxfOut = dxfOut;
  f.customDxfIn = dxfIn;
  f.customDwgOut = dwgOut;
  f.customDwgIn = dwgIn;
  return f;
}

}  // namespace zepk::db
