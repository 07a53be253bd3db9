// Old-style polylines (POLYLINE) of the four kinds, and their vertices
// (VERTEX): 2D and 3D polylines, polygon meshes and polyface meshes.
#include "host/db/ents_internal.h"

using zepk::db::ClassSchema;
using zepk::db::field;
using zepk::db::kOptional;
using zepk::db::kDegreesInFile;

namespace {

const AcGeVector3d kZ(0, 0, 1);

bool always(const AcDbObject*) { return true; }

bool unitNormal(const AcGeVector3d& n, AcGeVector3d& out) {
  double len = n.length();
  if (!(len > 1e-12)) return false;
  out = n / len;
  return true;
}

// The position of a sub-entity id in the owner's sequence; -1 when absent.
long indexOf(const AcDbEntity* owner, AcDbObjectId id) {
  zepk::db::OwnedSequence* seq = zepk::db::EntityAccess::sequence(owner);
  if (!seq) return -1;
  for (size_t i = 0; i < seq->items.size(); ++i)
    if (seq->items[i].id == id) return static_cast<long>(i);
  return -1;
}

// Inserts after the vertex given, at the start for a null id.
Acad::ErrorStatus insertAfter(AcDbEntity* owner, AcDbObjectId& newId, AcDbObjectId after, AcDbEntity* sub) {
  long at = 0;
  if (!after.isNull()) {
    long i = indexOf(owner, after);
    if (i < 0) return Acad::eInvalidInput;
    at = i + 1;
  }
  return zepk::db::appendSubentity(owner, sub, &newId, at);
}

std::unique_ptr<zepk::db::OwnedSequence>& lazy(std::unique_ptr<zepk::db::OwnedSequence>& p) {
  if (!p) p = std::make_unique<zepk::db::OwnedSequence>();
  return p;
}

}  // namespace

// ---------------------------------------------------------------- vertices

ACRX_DEFINE_HOST_CLASS(AcDbVertex, AcDbEntity, nullptr, nullptr)

const ClassSchema& AcDbVertex::vertexSchema() {
  static const ClassSchema s{u"AcDbVertex", {}};
  return s;
}

// A vertex's parts: the entity's, the empty vertex part, its own.
#define ZEPK_VERTEX_FILERS(CLASS)                                                     \
  Acad::ErrorStatus CLASS::dwgOutFields(AcDbDwgFiler* f) const {                     \
    Acad::ErrorStatus es = AcDbVertex::dwgOutFields(f);                               \
    if (es == Acad::eOk) es = zepk::db::dwgOutPart(vertexSchema(), this, f);          \
    return es != Acad::eOk ? es : zepk::db::dwgOutPart(schema(), this, f);            \
  }                                                                                   \
  Acad::ErrorStatus CLASS::dwgInFields(AcDbDwgFiler* f) {                             \
    Acad::ErrorStatus es = AcDbVertex::dwgInFields(f);                                \
    if (es == Acad::eOk) es = zepk::db::dwgInPart(vertexSchema(), this, f);           \
    return es != Acad::eOk ? es : zepk::db::dwgInPart(schema(), this, f);             \
  }                                                                                   \
  Acad::ErrorStatus CLASS::dxfOutFields(AcDbDxfFiler* f) const {                     \
    Acad::ErrorStatus es = AcDbVertex::dxfOutFields(f);                               \
    if (es == Acad::eOk) es = zepk::db::dxfOutPart(vertexSchema(), this, f);          \
    return es != Acad::eOk ? es : zepk::db::dxfOutPart(schema(), this, f);            \
  }                                                                                   \
  Acad::ErrorStatus CLASS::dxfInFields(AcDbDxfFiler* f) {                             \
    Acad::ErrorStatus es = AcDbVertex::dxfInFields(f);                                \
    if (es == Acad::eOk) es = zepk::db::dxfInPart(vertexSchema(), this, f);           \
    return es != Acad::eOk ? es : zepk::db::dxfInPart(schema(), this, f);             \
  }

ZEPK_DEFINE_ENTITY_CLASS(AcDb2dVertex, AcDbVertex, u"VERTEX")
ZEPK_VERTEX_FILERS(AcDb2dVertex)

const ClassSchema& AcDb2dVertex::schema() {
  static const ClassSchema s{u"AcDb2dVertex",
                             {
                                 field<&AcDb2dVertex::position_>(10, "Position"),
                                 field<&AcDb2dVertex::startWidth_>(40, "StartWidth", 0.0, kOptional),
                                 field<&AcDb2dVertex::endWidth_>(41, "EndWidth", 0.0, kOptional),
                                 field<&AcDb2dVertex::bulge_>(42, "Bulge", 0.0, kOptional),
                                 field<&AcDb2dVertex::flags_>(70, "Flags", 0),
                                 field<&AcDb2dVertex::tangent_>(50, "Tangent", 0.0, kOptional | kDegreesInFile),
                                 field<&AcDb2dVertex::vertexId_>(91, "VertexIdentifier", 0, kOptional),
                             }};
  return s;
}

AcDb2dVertex::AcDb2dVertex(const AcGePoint3d& position, double bulge, double startWidth, double endWidth,
                           double tangent, Adesk::Int32 vertexIdentifier)
    : position_(position),
      startWidth_(startWidth),
      endWidth_(endWidth),
      bulge_(bulge),
      tangent_(tangent),
      vertexId_(vertexIdentifier) {}

AcDb::Vertex2dType AcDb2dVertex::vertexType() const {
  if (flags_ & AcDbVertexFlags::kSplineFrame) return AcDb::k2dSplineCtlVertex;
  if (flags_ & AcDbVertexFlags::kSplineFit) return AcDb::k2dSplineFitVertex;
  if (flags_ & AcDbVertexFlags::kCurveFitExtra) return AcDb::k2dCurveFitVertex;
  return AcDb::k2dVertex;
}

Acad::ErrorStatus AcDb2dVertex::setVertexType(AcDb::Vertex2dType type) {
  assertWriteEnabled();
  int f = flags_ & ~(AcDbVertexFlags::kSplineFrame | AcDbVertexFlags::kSplineFit | AcDbVertexFlags::kCurveFitExtra);
  switch (type) {
    case AcDb::k2dSplineCtlVertex: f |= AcDbVertexFlags::kSplineFrame; break;
    case AcDb::k2dSplineFitVertex: f |= AcDbVertexFlags::kSplineFit; break;
    case AcDb::k2dCurveFitVertex: f |= AcDbVertexFlags::kCurveFitExtra; break;
    default: break;
  }
  flags_ = static_cast<int16_t>(f);
  return Acad::eOk;
}

#define ZEPK_SET(CLASS, NAME, TYPE, MEMBER) \
  Acad::ErrorStatus CLASS::NAME(TYPE v) {   \
    assertWriteEnabled();                    \
    MEMBER = v;                              \
    return Acad::eOk;                        \
  }

ZEPK_SET(AcDb2dVertex, setPosition, const AcGePoint3d&, position_)
ZEPK_SET(AcDb2dVertex, setStartWidth, double, startWidth_)
ZEPK_SET(AcDb2dVertex, setEndWidth, double, endWidth_)
ZEPK_SET(AcDb2dVertex, setBulge, double, bulge_)
ZEPK_SET(AcDb2dVertex, setTangent, double, tangent_)
ZEPK_SET(AcDb2dVertex, setVertexIdentifier, Adesk::Int32, vertexId_)

Acad::ErrorStatus AcDb2dVertex::useTangent() {
  assertWriteEnabled();
  flags_ = static_cast<int16_t>(flags_ | AcDbVertexFlags::kTangentUsed);
  return Acad::eOk;
}

Acad::ErrorStatus AcDb2dVertex::ignoreTangent() {
  assertWriteEnabled();
  flags_ = static_cast<int16_t>(flags_ & ~AcDbVertexFlags::kTangentUsed);
  return Acad::eOk;
}

ZEPK_DEFINE_ENTITY_CLASS(AcDb3dPolylineVertex, AcDbVertex, u"VERTEX")
ZEPK_VERTEX_FILERS(AcDb3dPolylineVertex)

const ClassSchema& AcDb3dPolylineVertex::schema() {
  static const ClassSchema s{u"AcDb3dPolylineVertex",
                             {
                                 field<&AcDb3dPolylineVertex::position_>(10, "Position"),
                                 field<&AcDb3dPolylineVertex::flags_>(70, "Flags", AcDbVertexFlags::k3dPolyline),
                                 field<&AcDb3dPolylineVertex::vertexId_>(91, "VertexIdentifier", 0, kOptional),
                             }};
  return s;
}

AcDb::Vertex3dType AcDb3dPolylineVertex::vertexType() const {
  if (flags_ & AcDbVertexFlags::kSplineFrame) return AcDb::k3dControlVertex;
  if (flags_ & AcDbVertexFlags::kSplineFit) return AcDb::k3dFitVertex;
  return AcDb::k3dSimpleVertex;
}

Acad::ErrorStatus AcDb3dPolylineVertex::setVertexType(AcDb::Vertex3dType type) {
  assertWriteEnabled();
  int f = (flags_ & ~(AcDbVertexFlags::kSplineFrame | AcDbVertexFlags::kSplineFit)) | AcDbVertexFlags::k3dPolyline;
  if (type == AcDb::k3dControlVertex) f |= AcDbVertexFlags::kSplineFrame;
  if (type == AcDb::k3dFitVertex) f |= AcDbVertexFlags::kSplineFit;
  flags_ = static_cast<int16_t>(f);
  return Acad::eOk;
}

ZEPK_SET(AcDb3dPolylineVertex, setPosition, const AcGePoint3d&, position_)

ZEPK_DEFINE_ENTITY_CLASS(AcDbPolygonMeshVertex, AcDbVertex, u"VERTEX")
ZEPK_VERTEX_FILERS(AcDbPolygonMeshVertex)

const ClassSchema& AcDbPolygonMeshVertex::schema() {
  static const ClassSchema s{u"AcDbPolygonMeshVertex",
                             {
                                 field<&AcDbPolygonMeshVertex::position_>(10, "Position"),
                                 field<&AcDbPolygonMeshVertex::flags_>(70, "Flags", AcDbVertexFlags::kPolygonMesh),
                             }};
  return s;
}

ZEPK_SET(AcDbPolygonMeshVertex, setPosition, const AcGePoint3d&, position_)

ZEPK_DEFINE_ENTITY_CLASS(AcDbPolyFaceMeshVertex, AcDbVertex, u"VERTEX")
ZEPK_VERTEX_FILERS(AcDbPolyFaceMeshVertex)

const ClassSchema& AcDbPolyFaceMeshVertex::schema() {
  static const ClassSchema s{
      u"AcDbPolyFaceMeshVertex",
      {
          field<&AcDbPolyFaceMeshVertex::position_>(10, "Position"),
          field<&AcDbPolyFaceMeshVertex::flags_>(70, "Flags",
                                                 AcDbVertexFlags::kPolyfaceMesh | AcDbVertexFlags::kPolygonMesh),
      }};
  return s;
}

ZEPK_SET(AcDbPolyFaceMeshVertex, setPosition, const AcGePoint3d&, position_)

// A face record files no "AcDbVertex" part; one found in a file is passed over.
ZEPK_DEFINE_ENTITY_CLASS(AcDbFaceRecord, AcDbVertex, u"VERTEX")

Acad::ErrorStatus AcDbFaceRecord::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbVertex::dwgOutFields(f);
  return es != Acad::eOk ? es : zepk::db::dwgOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbFaceRecord::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbVertex::dwgInFields(f);
  return es != Acad::eOk ? es : zepk::db::dwgInPart(schema(), this, f);
}

Acad::ErrorStatus AcDbFaceRecord::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbVertex::dxfOutFields(f);
  return es != Acad::eOk ? es : zepk::db::dxfOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbFaceRecord::dxfInFields(AcDbDxfFiler* f) {
  Acad::ErrorStatus es = AcDbVertex::dxfInFields(f);
  if (es != Acad::eOk) return es;
  f->atSubclassData(u"AcDbVertex");
  return zepk::db::dxfInPart(schema(), this, f);
}

const ClassSchema& AcDbFaceRecord::schema() {
  static const ClassSchema s{u"AcDbFaceRecord",
                             {
                                 field<&AcDbFaceRecord::position_>(10, "Position"),
                                 field<&AcDbFaceRecord::flags_>(70, "Flags", AcDbVertexFlags::kPolyfaceMesh),
                                 field<&AcDbFaceRecord::v0_>(71, "Vertex0", 0, kOptional),
                                 field<&AcDbFaceRecord::v1_>(72, "Vertex1", 0, kOptional),
                                 field<&AcDbFaceRecord::v2_>(73, "Vertex2", 0, kOptional),
                                 field<&AcDbFaceRecord::v3_>(74, "Vertex3", 0, kOptional),
                             }};
  return s;
}

AcDbFaceRecord::AcDbFaceRecord(Adesk::Int16 vtx0, Adesk::Int16 vtx1, Adesk::Int16 vtx2, Adesk::Int16 vtx3)
    : v0_(vtx0), v1_(vtx1), v2_(vtx2), v3_(vtx3) {}

int16_t* AcDbFaceRecord::slot(Adesk::UInt16 i) {
  int16_t* s[4] = {&v0_, &v1_, &v2_, &v3_};
  return i < 4 ? s[i] : nullptr;
}

Acad::ErrorStatus AcDbFaceRecord::getVertexAt(Adesk::UInt16 faceIdx, Adesk::Int16& vtxIdx) const {
  int16_t* p = const_cast<AcDbFaceRecord*>(this)->slot(faceIdx);
  if (!p) return Acad::eInvalidIndex;
  vtxIdx = static_cast<Adesk::Int16>(*p < 0 ? -*p : *p);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFaceRecord::setVertexAt(Adesk::UInt16 faceIdx, Adesk::Int16 vtxIdx) {
  int16_t* p = slot(faceIdx);
  if (!p || vtxIdx < 0) return p ? Acad::eInvalidInput : Acad::eInvalidIndex;
  assertWriteEnabled();
  *p = static_cast<int16_t>(*p < 0 ? -vtxIdx : vtxIdx);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFaceRecord::isEdgeVisibleAt(Adesk::UInt16 faceIndex, bool& visible) const {
  int16_t* p = const_cast<AcDbFaceRecord*>(this)->slot(faceIndex);
  if (!p) return Acad::eInvalidIndex;
  visible = *p >= 0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFaceRecord::makeEdgeVisibleAt(Adesk::UInt16 faceIndex) {
  int16_t* p = slot(faceIndex);
  if (!p) return Acad::eInvalidIndex;
  assertWriteEnabled();
  if (*p < 0) *p = static_cast<int16_t>(-*p);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFaceRecord::makeEdgeInvisibleAt(Adesk::UInt16 faceIndex) {
  int16_t* p = slot(faceIndex);
  if (!p) return Acad::eInvalidIndex;
  assertWriteEnabled();
  if (*p > 0) *p = static_cast<int16_t>(-*p);
  return Acad::eOk;
}

// ---------------------------------------------------------------- 2D polyline

ZEPK_DEFINE_ENTITY_CLASS(AcDb2dPolyline, AcDbCurve, u"POLYLINE")
ZEPK_DEFINE_ENTITY_FILERS(AcDb2dPolyline, AcDbCurve)

const ClassSchema& AcDb2dPolyline::schema() {
  static const ClassSchema s{
      u"AcDb2dPolyline",
      {
          zepk::db::followsFlagPart<always>(),
          field<&AcDb2dPolyline::elevationPoint_>(10, "ElevationPoint"),
          field<&AcDb2dPolyline::flags_>(70, "Flags", 0),
          field<&AcDb2dPolyline::defaultStartWidth_>(40, "DefaultStartWidth", 0.0, kOptional),
          field<&AcDb2dPolyline::defaultEndWidth_>(41, "DefaultEndWidth", 0.0, kOptional),
          field<&AcDb2dPolyline::curveType_>(75, "CurveType", 0, kOptional),
          field<&AcDb2dPolyline::thickness_>(39, "Thickness", 0.0, kOptional),
          field<&AcDb2dPolyline::normal_>(210, "Normal", kZ, kOptional),
          zepk::db::sequencePart(),
      }};
  return s;
}

AcDb2dPolyline::AcDb2dPolyline() = default;
AcDb2dPolyline::~AcDb2dPolyline() = default;

AcDb2dPolyline::AcDb2dPolyline(AcDb::Poly2dType type, const AcGePoint3dArray& vertices, double elevation,
                               bool closed, double defStartWidth, double defEndWidth, const AcGeDoubleArray* bulges)
    : elevationPoint_(0, 0, elevation), defaultStartWidth_(defStartWidth), defaultEndWidth_(defEndWidth) {
  if (closed) flags_ = static_cast<int16_t>(flags_ | AcDbPolylineFlags::kClosed);
  for (size_t i = 0; i < vertices.size(); ++i) {
    double bulge = bulges && i < bulges->size() ? (*bulges)[i] : 0.0;
    auto* v = new AcDb2dVertex(AcGePoint3d(vertices[i].x, vertices[i].y, elevation), bulge, defStartWidth,
                               defEndWidth);
    if (zepk::db::appendSubentity(this, v, nullptr) != Acad::eOk) delete v;
  }
  // The vertices given are those of the polyline before fitting.
  if (type != AcDb::k2dSimplePoly) convertToPolyType(type);
}

zepk::db::OwnedSequence* AcDb2dPolyline::ownedSequence() const { return lazy(seq_).get(); }

AcDb::Poly2dType AcDb2dPolyline::polyType() const {
  if (flags_ & AcDbPolylineFlags::kSplineFit) return curveType_ == 5 ? AcDb::k2dQuadSplinePoly : AcDb::k2dCubicSplinePoly;
  if (flags_ & AcDbPolylineFlags::kCurveFit) return AcDb::k2dFitCurvePoly;
  return AcDb::k2dSimplePoly;
}

void AcDb2dPolyline::setTypeFlags(AcDb::Poly2dType type) {
  int f = flags_ & ~(AcDbPolylineFlags::kCurveFit | AcDbPolylineFlags::kSplineFit);
  curveType_ = 0;
  switch (type) {
    case AcDb::k2dFitCurvePoly: f |= AcDbPolylineFlags::kCurveFit; break;
    case AcDb::k2dQuadSplinePoly:
      f |= AcDbPolylineFlags::kSplineFit;
      curveType_ = 5;
      break;
    case AcDb::k2dCubicSplinePoly:
      f |= AcDbPolylineFlags::kSplineFit;
      curveType_ = 6;
      break;
    default: break;
  }
  flags_ = static_cast<int16_t>(f);
}

#define ZEPK_FLAG(CLASS, NAME, BIT, ON)                                              \
  Acad::ErrorStatus CLASS::NAME() {                                                  \
    assertWriteEnabled();                                                            \
    flags_ = static_cast<int16_t>((ON) ? (flags_ | (BIT)) : (flags_ & ~(BIT)));      \
    return Acad::eOk;                                                                \
  }

ZEPK_FLAG(AcDb2dPolyline, makeClosed, AcDbPolylineFlags::kClosed, true)
ZEPK_FLAG(AcDb2dPolyline, makeOpen, AcDbPolylineFlags::kClosed, false)
ZEPK_FLAG(AcDb2dPolyline, setLinetypeGenerationOn, AcDbPolylineFlags::kPlinegen, true)
ZEPK_FLAG(AcDb2dPolyline, setLinetypeGenerationOff, AcDbPolylineFlags::kPlinegen, false)
ZEPK_SET(AcDb2dPolyline, setDefaultStartWidth, double, defaultStartWidth_)
ZEPK_SET(AcDb2dPolyline, setDefaultEndWidth, double, defaultEndWidth_)
ZEPK_SET(AcDb2dPolyline, setThickness, double, thickness_)
ZEPK_SET(AcDb2dPolyline, setElevation, double, elevationPoint_.z)

Acad::ErrorStatus AcDb2dPolyline::setNormal(const AcGeVector3d& n) {
  AcGeVector3d u;
  if (!unitNormal(n, u)) return Acad::eInvalidInput;
  assertWriteEnabled();
  normal_ = u;
  return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDb2dVertex* v) { return zepk::db::appendSubentity(this, v, nullptr); }
Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDbObjectId& id, AcDb2dVertex* v) {
  return zepk::db::appendSubentity(this, v, &id);
}
Acad::ErrorStatus AcDb2dPolyline::insertVertexAt(AcDbObjectId& newId, AcDbObjectId after, AcDb2dVertex* v) {
  return insertAfter(this, newId, after, v);
}
AcDbObjectIterator* AcDb2dPolyline::vertexIterator() const { return zepk::db::newSubentityIterator(this); }
Acad::ErrorStatus AcDb2dPolyline::openSequenceEnd(AcDbSequenceEnd*& p, AcDb::OpenMode mode) {
  return zepk::db::openSequenceEnd(this, p, mode);
}

AcGePoint3d AcDb2dPolyline::vertexPosition(const AcDb2dVertex& vertex) const {
  AcGePoint3d p = vertex.position();
  return zepk::db::ecsToWcs(normal_, AcGePoint3d(p.x, p.y, elevationPoint_.z));
}

// ---------------------------------------------------------------- 3D polyline

ZEPK_DEFINE_ENTITY_CLASS(AcDb3dPolyline, AcDbCurve, u"POLYLINE")
ZEPK_DEFINE_ENTITY_FILERS(AcDb3dPolyline, AcDbCurve)

const ClassSchema& AcDb3dPolyline::schema() {
  static const ClassSchema s{u"AcDb3dPolyline",
                             {
                                 zepk::db::followsFlagPart<always>(),
                                 field<&AcDb3dPolyline::elevationPoint_>(10, "ElevationPoint"),
                                 field<&AcDb3dPolyline::flags_>(70, "Flags", AcDbPolylineFlags::k3d),
                                 field<&AcDb3dPolyline::curveType_>(75, "CurveType", 0, kOptional),
                                 zepk::db::sequencePart(),
                             }};
  return s;
}

AcDb3dPolyline::AcDb3dPolyline() = default;
AcDb3dPolyline::~AcDb3dPolyline() = default;

AcDb3dPolyline::AcDb3dPolyline(AcDb::Poly3dType type, const AcGePoint3dArray& vertices, bool closed) {
  setPolyType(type);
  if (closed) flags_ = static_cast<int16_t>(flags_ | AcDbPolylineFlags::kClosed);
  for (const AcGePoint3d& p : vertices) {
    auto* v = new AcDb3dPolylineVertex(p);
    if (zepk::db::appendSubentity(this, v, nullptr) != Acad::eOk) delete v;
  }
}

zepk::db::OwnedSequence* AcDb3dPolyline::ownedSequence() const { return lazy(seq_).get(); }

AcDb::Poly3dType AcDb3dPolyline::polyType() const {
  if (!(flags_ & AcDbPolylineFlags::kSplineFit)) return AcDb::k3dSimplePoly;
  return curveType_ == 5 ? AcDb::k3dQuadSplinePoly : AcDb::k3dCubicSplinePoly;
}

Acad::ErrorStatus AcDb3dPolyline::setPolyType(AcDb::Poly3dType type) {
  assertWriteEnabled();
  int f = (flags_ & ~AcDbPolylineFlags::kSplineFit) | AcDbPolylineFlags::k3d;
  curveType_ = 0;
  if (type != AcDb::k3dSimplePoly) {
    f |= AcDbPolylineFlags::kSplineFit;
    curveType_ = type == AcDb::k3dQuadSplinePoly ? 5 : 6;
  }
  flags_ = static_cast<int16_t>(f);
  return Acad::eOk;
}

ZEPK_FLAG(AcDb3dPolyline, makeClosed, AcDbPolylineFlags::kClosed, true)
ZEPK_FLAG(AcDb3dPolyline, makeOpen, AcDbPolylineFlags::kClosed, false)

Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDb3dPolylineVertex* v) {
  return zepk::db::appendSubentity(this, v, nullptr);
}
Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDbObjectId& id, AcDb3dPolylineVertex* v) {
  return zepk::db::appendSubentity(this, v, &id);
}
Acad::ErrorStatus AcDb3dPolyline::insertVertexAt(AcDbObjectId& newId, AcDbObjectId after, AcDb3dPolylineVertex* v) {
  return insertAfter(this, newId, after, v);
}
AcDbObjectIterator* AcDb3dPolyline::vertexIterator() const { return zepk::db::newSubentityIterator(this); }
Acad::ErrorStatus AcDb3dPolyline::openSequenceEnd(AcDbSequenceEnd*& p, AcDb::OpenMode mode) {
  return zepk::db::openSequenceEnd(this, p, mode);
}

// ---------------------------------------------------------------- polygon mesh

ZEPK_DEFINE_ENTITY_CLASS(AcDbPolygonMesh, AcDbEntity, u"POLYLINE")
ZEPK_DEFINE_ENTITY_FILERS(AcDbPolygonMesh, AcDbEntity)

const ClassSchema& AcDbPolygonMesh::schema() {
  static const ClassSchema s{u"AcDbPolygonMesh",
                             {
                                 zepk::db::followsFlagPart<always>(),
                                 field<&AcDbPolygonMesh::elevationPoint_>(10, "ElevationPoint"),
                                 field<&AcDbPolygonMesh::flags_>(70, "Flags", AcDbPolylineFlags::kPolygonMesh),
                                 field<&AcDbPolygonMesh::mCount_>(71, "MSize", 0),
                                 field<&AcDbPolygonMesh::nCount_>(72, "NSize", 0),
                                 field<&AcDbPolygonMesh::mDensity_>(73, "MSurfaceDensity", 0, kOptional),
                                 field<&AcDbPolygonMesh::nDensity_>(74, "NSurfaceDensity", 0, kOptional),
                                 field<&AcDbPolygonMesh::surfaceType_>(75, "PolyMeshType", 0, kOptional),
                                 field<&AcDbPolygonMesh::normal_>(210, "Normal", kZ, kOptional),
                                 zepk::db::sequencePart(),
                             }};
  return s;
}

AcDbPolygonMesh::AcDbPolygonMesh() = default;
AcDbPolygonMesh::~AcDbPolygonMesh() = default;
zepk::db::OwnedSequence* AcDbPolygonMesh::ownedSequence() const { return lazy(seq_).get(); }

Acad::ErrorStatus AcDbPolygonMesh::setPolyMeshType(AcDb::PolyMeshType type) {
  assertWriteEnabled();
  surfaceType_ = static_cast<int16_t>(type);
  return Acad::eOk;
}

ZEPK_SET(AcDbPolygonMesh, setMSize, Adesk::Int16, mCount_)
ZEPK_SET(AcDbPolygonMesh, setNSize, Adesk::Int16, nCount_)
ZEPK_SET(AcDbPolygonMesh, setMSurfaceDensity, Adesk::Int16, mDensity_)
ZEPK_SET(AcDbPolygonMesh, setNSurfaceDensity, Adesk::Int16, nDensity_)
ZEPK_FLAG(AcDbPolygonMesh, makeMClosed, AcDbPolylineFlags::kClosed, true)
ZEPK_FLAG(AcDbPolygonMesh, makeMOpen, AcDbPolylineFlags::kClosed, false)
ZEPK_FLAG(AcDbPolygonMesh, makeNClosed, AcDbPolylineFlags::kClosedN, true)
ZEPK_FLAG(AcDbPolygonMesh, makeNOpen, AcDbPolylineFlags::kClosedN, false)

Acad::ErrorStatus AcDbPolygonMesh::appendVertex(AcDbPolygonMeshVertex* v) {
  return zepk::db::appendSubentity(this, v, nullptr);
}
Acad::ErrorStatus AcDbPolygonMesh::appendVertex(AcDbObjectId& id, AcDbPolygonMeshVertex* v) {
  return zepk::db::appendSubentity(this, v, &id);
}
AcDbObjectIterator* AcDbPolygonMesh::vertexIterator() const { return zepk::db::newSubentityIterator(this); }
Acad::ErrorStatus AcDbPolygonMesh::openSequenceEnd(AcDbSequenceEnd*& p, AcDb::OpenMode mode) {
  return zepk::db::openSequenceEnd(this, p, mode);
}

// ---------------------------------------------------------------- polyface mesh

ZEPK_DEFINE_ENTITY_CLASS(AcDbPolyFaceMesh, AcDbEntity, u"POLYLINE")
ZEPK_DEFINE_ENTITY_FILERS(AcDbPolyFaceMesh, AcDbEntity)

const ClassSchema& AcDbPolyFaceMesh::schema() {
  static const ClassSchema s{u"AcDbPolyFaceMesh",
                             {
                                 zepk::db::followsFlagPart<always>(),
                                 field<&AcDbPolyFaceMesh::elevationPoint_>(10, "ElevationPoint"),
                                 field<&AcDbPolyFaceMesh::flags_>(70, "Flags", AcDbPolylineFlags::kPolyfaceMesh),
                                 field<&AcDbPolyFaceMesh::numVertices_>(71, "NumVertices", 0),
                                 field<&AcDbPolyFaceMesh::numFaces_>(72, "NumFaces", 0),
                                 field<&AcDbPolyFaceMesh::normal_>(210, "Normal", kZ, kOptional),
                                 zepk::db::sequencePart(),
                             }};
  return s;
}

AcDbPolyFaceMesh::AcDbPolyFaceMesh() = default;
AcDbPolyFaceMesh::~AcDbPolyFaceMesh() = default;
zepk::db::OwnedSequence* AcDbPolyFaceMesh::ownedSequence() const { return lazy(seq_).get(); }

Acad::ErrorStatus AcDbPolyFaceMesh::appendVertex(AcDbPolyFaceMeshVertex* v) {
  AcDbObjectId id;
  return appendVertex(id, v);
}

// Vertices stand before the faces.
Acad::ErrorStatus AcDbPolyFaceMesh::appendVertex(AcDbObjectId& id, AcDbPolyFaceMeshVertex* v) {
  long at = 0;
  for (const auto& slot : lazy(seq_)->items) {
    const AcDbObject* o = slot.pending ? slot.pending.get() : slot.id.isNull() ? nullptr : slot.id.stub()->object;
    if (AcDbFaceRecord::cast(o)) break;
    ++at;
  }
  Acad::ErrorStatus es = zepk::db::appendSubentity(this, v, &id, at);
  if (es == Acad::eOk) ++numVertices_;
  return es;
}

Acad::ErrorStatus AcDbPolyFaceMesh::appendFaceRecord(AcDbFaceRecord* face) {
  AcDbObjectId id;
  return appendFaceRecord(id, face);
}

Acad::ErrorStatus AcDbPolyFaceMesh::appendFaceRecord(AcDbObjectId& id, AcDbFaceRecord* face) {
  Acad::ErrorStatus es = zepk::db::appendSubentity(this, face, &id);
  if (es == Acad::eOk) ++numFaces_;
  return es;
}

AcDbObjectIterator* AcDbPolyFaceMesh::vertexIterator() const { return zepk::db::newSubentityIterator(this); }
Acad::ErrorStatus AcDbPolyFaceMesh::openSequenceEnd(AcDbSequenceEnd*& p, AcDb::OpenMode mode) {
  return zepk::db::openSequenceEnd(this, p, mode);
}
