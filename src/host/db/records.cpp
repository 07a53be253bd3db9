// The symbol table records other than blocks: each kind's schema and
// accessors. Groups follow the public DXF reference for each kind.
#include <cmath>
#include <cstdlib>

#include "host/db/dbobjects.h"
#include "host/db/internal.h"
#include "host/dbdict.h"
#include "host/dbsymtb.h"

using namespace zepk::db;

namespace {

template <class T>
AcRxObject* make() {
  return new T;
}

constexpr double kDegrees = 180.0 / 3.14159265358979323846;

bool isName(const AcDbSymbolTableRecord* r, std::u16string_view name) { return sameName(r->name(), name); }

}  // namespace

ACRX_DEFINE_HOST_CLASS(AcDbLayerTableRecord, AcDbSymbolTableRecord, u"LAYER", make<AcDbLayerTableRecord>)
ACRX_DEFINE_HOST_CLASS(AcDbLinetypeTableRecord, AcDbSymbolTableRecord, u"LTYPE", make<AcDbLinetypeTableRecord>)
ACRX_DEFINE_HOST_CLASS(AcDbTextStyleTableRecord, AcDbSymbolTableRecord, u"STYLE", make<AcDbTextStyleTableRecord>)
ACRX_DEFINE_HOST_CLASS(AcDbDimStyleTableRecord, AcDbSymbolTableRecord, u"DIMSTYLE", make<AcDbDimStyleTableRecord>)
ACRX_DEFINE_HOST_CLASS(AcDbUCSTableRecord, AcDbSymbolTableRecord, u"UCS", make<AcDbUCSTableRecord>)
ACRX_DEFINE_HOST_CLASS(AcDbAbstractViewTableRecord, AcDbSymbolTableRecord, nullptr, nullptr)
ACRX_DEFINE_HOST_CLASS(AcDbViewTableRecord, AcDbAbstractViewTableRecord, u"VIEW", make<AcDbViewTableRecord>)
ACRX_DEFINE_HOST_CLASS(AcDbViewportTableRecord, AcDbAbstractViewTableRecord, u"VPORT", make<AcDbViewportTableRecord>)
ACRX_DEFINE_HOST_CLASS(AcDbRegAppTableRecord, AcDbSymbolTableRecord, u"APPID", make<AcDbRegAppTableRecord>)

// ---------------------------------------------------------------- layers

const ClassSchema& AcDbLayerTableRecord::schema() {
  using L = AcDbLayerTableRecord;
  static const ClassSchema s{
      u"AcDbLayerTableRecord",
      {
          field<&L::name_>(2, "Name"),
          field<&L::flags_>(70, "Flags", 0),
          // The colour, negative when the layer is off, and the true colour
          // when there is one.
          custom(
              {62, 420},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                auto* l = static_cast<const L*>(o);
                f->writeInt16(62, static_cast<Adesk::Int16>(l->off_ ? -l->color_ : l->color_));
                if (l->trueColor_ >= 0) f->writeInt32(420, l->trueColor_);
                return f->filerStatus();
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                auto* l = static_cast<L*>(o);
                for (int c = f->peekCode(); c == 62 || c == 420; c = f->peekCode()) {
                  const DxfItem* it = f->next();
                  if (it->kind != DxfItem::Int) return Acad::eInvalidResBuf;
                  if (c == 62) {
                    l->off_ = it->i < 0;
                    l->color_ = static_cast<Adesk::Int16>(std::abs(it->i));
                  } else {
                    l->trueColor_ = static_cast<Adesk::Int32>(it->i & 0xFFFFFF);
                  }
                }
                return f->filerStatus();
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                auto* l = static_cast<const L*>(o);
                f->writeInt16(l->color_);
                f->writeBool(l->off_);
                f->writeInt32(l->trueColor_);
                return f->filerStatus();
              },
              [](AcDbObject* o, AcDbDwgFiler* f) {
                auto* l = static_cast<L*>(o);
                f->readInt16(&l->color_);
                f->readBool(&l->off_);
                f->readInt32(&l->trueColor_);
                return f->filerStatus();
              }),
          // The linetype by name, as files name it.
          custom(
              {6},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                auto* l = static_cast<const L*>(o);
                std::u16string name = l->linetype_.isNull() ? l->linetypeName_ : recordName(l->linetype_);
                return f->writeString(6, name.empty() ? u"Continuous" : name);
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                auto* l = static_cast<L*>(o);
                const DxfItem* it = f->next();
                if (it->kind != DxfItem::String) return Acad::eInvalidResBuf;
                AcDbDatabase* db = f->database() ? f->database() : l->database();
                l->linetype_ = linetypeIdByName(db, it->s);
                l->linetypeName_ = l->linetype_.isNull() ? it->s : std::u16string();
                return f->filerStatus();
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                auto* l = static_cast<const L*>(o);
                f->writeHardPointerId(l->linetype_);
                f->writeString(l->linetypeName_);
                return f->filerStatus();
              },
              [](AcDbObject* o, AcDbDwgFiler* f) {
                auto* l = static_cast<L*>(o);
                f->readHardPointerId(&l->linetype_);
                f->readString(&l->linetypeName_);
                return f->filerStatus();
              }),
          field<&L::plottable_>(290, "Plottable", true, kOptional),
          field<&L::lineWeight_>(370, "LineWeight", -3),
          field<&L::plotStyle_>(390, "PlotStyleName", {}, kOptional, FieldType::HardPointer),
          keptGroups<&L::kept_, &L::schema>(),
      }};
  return s;
}

ZEPK_SCHEMA_FILERS(AcDbLayerTableRecord, AcDbSymbolTableRecord, schema)

void AcDbLayerTableRecord::resetCustomData() {
  AcDbSymbolTableRecord::resetCustomData();
  color_ = 7;
  trueColor_ = -1;
  off_ = false;
  linetype_.setNull();
  linetypeName_.clear();
}

bool AcDbLayerTableRecord::isStandardRecord() const { return name_ == u"0"; }

void AcDbLayerTableRecord::addedToTable(AcDbDatabase* db) {
  // A layer without a linetype draws with "Continuous", one without a
  // plot style with the drawing's default ("Normal").
  if (linetype_.isNull()) {
    linetype_ = linetypeIdByName(db, linetypeName_.empty() ? u"Continuous" : linetypeName_);
    if (!linetype_.isNull()) linetypeName_.clear();
  }
  if (plotStyle_.isNull())
    if (auto* styles = peek<AcDbDictionaryWithDefault>(db->plotStyleNameDictionaryId()))
      plotStyle_ = styles->defaultId();
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsFrozen(bool frozen) {
  assertWriteEnabled();
  flags_ = static_cast<Adesk::Int16>(frozen ? (flags_ | 1) : (flags_ & ~1));
  return Acad::eOk;
}

void AcDbLayerTableRecord::setIsOff(bool off) {
  assertWriteEnabled();
  off_ = off;
}

void AcDbLayerTableRecord::setIsLocked(bool locked) {
  assertWriteEnabled();
  flags_ = static_cast<Adesk::Int16>(locked ? (flags_ | 4) : (flags_ & ~4));
}

void AcDbLayerTableRecord::setVPDFLT(bool frozen) {
  assertWriteEnabled();
  flags_ = static_cast<Adesk::Int16>(frozen ? (flags_ | 2) : (flags_ & ~2));
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsPlottable(bool plot) {
  assertWriteEnabled();
  plottable_ = plot;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLayerTableRecord::setColorIndex(Adesk::Int16 index) {
  // By block (0) and by layer (256) mean nothing for a layer.
  if (index < 1 || index > 255) return Acad::eInvalidInput;
  assertWriteEnabled();
  color_ = index;
  trueColor_ = -1;
  return Acad::eOk;
}

void AcDbLayerTableRecord::setTrueColor(Adesk::Int32 rgb) {
  assertWriteEnabled();
  trueColor_ = rgb < 0 ? -1 : (rgb & 0xFFFFFF);
}

AcCmColor AcDbLayerTableRecord::color() const {
  AcCmColor c;
  if (trueColor_ >= 0) c.setRGB(static_cast<Adesk::UInt32>(trueColor_));
  else c.setColorIndex(static_cast<Adesk::UInt16>(color_));
  return c;
}

Acad::ErrorStatus AcDbLayerTableRecord::setColor(const AcCmColor& c) {
  if (c.isByColor()) {
    assertWriteEnabled();
    trueColor_ = static_cast<Adesk::Int32>(c.rgb() & 0xFFFFFF);
    color_ = static_cast<Adesk::Int16>(c.colorIndex());
    return Acad::eOk;
  }
  if (!c.isByACI()) return Acad::eInvalidInput;
  return setColorIndex(static_cast<Adesk::Int16>(c.colorIndex()));
}

AcDbObjectId AcDbLayerTableRecord::linetypeObjectId() const {
  // A linetype a file named before the drawing had it is looked up again.
  if (linetype_.isNull() && !linetypeName_.empty()) return linetypeIdByName(database(), linetypeName_);
  return linetype_;
}

Acad::ErrorStatus AcDbLayerTableRecord::setLinetypeObjectId(AcDbObjectId id) {
  if (id.isNull()) return Acad::eNullObjectId;
  if (!peek<AcDbLinetypeTableRecord>(id)) return Acad::eWrongObjectType;
  if (database() && id.database() != database()) return Acad::eWrongDatabase;
  assertWriteEnabled();
  linetype_ = id;
  linetypeName_.clear();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLayerTableRecord::setLineWeight(AcDb::LineWeight weight) {
  static const Adesk::Int16 kWeights[] = {-3, 0,  5,  9,  13, 15,  18,  20,  25,  30,  35,  40, 50,
                                          53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};
  bool valid = false;
  for (Adesk::Int16 w : kWeights) valid = valid || w == weight;
  if (!valid) return Acad::eInvalidInput;
  assertWriteEnabled();
  lineWeight_ = static_cast<Adesk::Int16>(weight);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLayerTableRecord::setPlotStyleName(AcDbObjectId id) {
  assertWriteEnabled();
  plotStyle_ = id;
  return Acad::eOk;
}

// ---------------------------------------------------------------- linetypes

AcDbLinetypeTableRecord::AcDbLinetypeTableRecord() = default;
AcDbLinetypeTableRecord::~AcDbLinetypeTableRecord() = default;

const ClassSchema& AcDbLinetypeTableRecord::schema() {
  using L = AcDbLinetypeTableRecord;
  static const ClassSchema s{
      u"AcDbLinetypeTableRecord",
      {
          field<&L::name_>(2, "Name"),
          field<&L::flags_>(70, "Flags", 0),
          field<&L::comments_>(3, "Description"),
          field<&L::alignment_>(72, "Alignment", 65),
          // The pattern: the count of elements, the length, then each
          // element, its shape or text only when it has one.
          custom(
              {73, 40, 49, 74, 75, 340, 46, 50, 44, 45, 9},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                auto* l = static_cast<const L*>(o);
                f->writeInt16(73, static_cast<Adesk::Int16>(l->dashes_.size()));
                f->writeDouble(40, l->patternLength_);
                for (const Dash& d : l->dashes_) {
                  f->writeDouble(49, d.length);
                  f->writeInt16(74, d.flags);
                  if (d.flags == 0) continue;
                  f->writeInt16(75, (d.flags & 2) ? 0 : d.shapeNumber);
                  f->writeObjectId(340, d.style);
                  f->writeDouble(46, d.scale);
                  f->writeDouble(50, d.rotation);
                  f->writeDouble(44, d.offset.x);
                  f->writeDouble(45, d.offset.y);
                  if (d.flags & 2) f->writeString(9, d.text);
                }
                return f->filerStatus();
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                auto* l = static_cast<L*>(o);
                for (;;) {
                  int c = f->peekCode();
                  if (c != 73 && c != 40 && c != 49 && c != 74 && c != 75 && c != 340 && c != 46 && c != 50 &&
                      c != 44 && c != 45 && c != 9)
                    break;
                  const DxfItem* it = f->next();
                  bool real = it->kind == DxfItem::Real || it->kind == DxfItem::Int;
                  double v = it->kind == DxfItem::Int ? static_cast<double>(it->i) : it->p[0];
                  if (c == 73) continue;  // the count is what the elements are
                  if (c == 40) {
                    if (!real) return Acad::eInvalidResBuf;
                    l->patternLength_ = v;
                    continue;
                  }
                  if (c == 49) {
                    if (!real) return Acad::eInvalidResBuf;
                    l->dashes_.emplace_back();
                    l->dashes_.back().length = v;
                    continue;
                  }
                  // A group of an element before any element: the file's
                  // fault, and nothing to put it in.
                  if (l->dashes_.empty()) continue;
                  Dash& d = l->dashes_.back();
                  switch (c) {
                    case 74:
                    case 75:
                      if (it->kind != DxfItem::Int) return Acad::eInvalidResBuf;
                      (c == 74 ? d.flags : d.shapeNumber) = static_cast<Adesk::Int16>(it->i);
                      break;
                    case 340:
                      if (it->kind != DxfItem::Id) return Acad::eInvalidResBuf;
                      d.style = it->id;
                      break;
                    case 9:
                      if (it->kind != DxfItem::String) return Acad::eInvalidResBuf;
                      d.text = it->s;
                      break;
                    default:
                      if (!real) return Acad::eInvalidResBuf;
                      if (c == 46) d.scale = v;
                      if (c == 50) d.rotation = v;
                      if (c == 44) d.offset.x = v;
                      if (c == 45) d.offset.y = v;
                      break;
                  }
                }
                return f->filerStatus();
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                auto* l = static_cast<const L*>(o);
                f->writeDouble(l->patternLength_);
                f->writeInt32(static_cast<Adesk::Int32>(l->dashes_.size()));
                for (const Dash& d : l->dashes_) {
                  f->writeDouble(d.length);
                  f->writeInt16(d.flags);
                  f->writeInt16(d.shapeNumber);
                  f->writeHardPointerId(d.style);
                  f->writeDouble(d.scale);
                  f->writeDouble(d.rotation);
                  f->writeDouble(d.offset.x);
                  f->writeDouble(d.offset.y);
                  f->writeString(d.text);
                }
                return f->filerStatus();
              },
              [](AcDbObject* o, AcDbDwgFiler* f) {
                auto* l = static_cast<L*>(o);
                f->readDouble(&l->patternLength_);
                Adesk::Int32 n = 0;
                f->readInt32(&n);
                l->dashes_.clear();
                for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
                  Dash d;
                  f->readDouble(&d.length);
                  f->readInt16(&d.flags);
                  f->readInt16(&d.shapeNumber);
                  f->readHardPointerId(&d.style);
                  f->readDouble(&d.scale);
                  f->readDouble(&d.rotation);
                  f->readDouble(&d.offset.x);
                  f->readDouble(&d.offset.y);
                  f->readString(&d.text);
                  l->dashes_.push_back(std::move(d));
                }
                return f->filerStatus();
              }),
          keptGroups<&L::kept_, &L::schema>(),
      }};
  return s;
}

ZEPK_SCHEMA_FILERS(AcDbLinetypeTableRecord, AcDbSymbolTableRecord, schema)

void AcDbLinetypeTableRecord::resetCustomData() {
  AcDbSymbolTableRecord::resetCustomData();
  patternLength_ = 0.0;
  dashes_.clear();
}

bool AcDbLinetypeTableRecord::isStandardRecord() const {
  return isName(this, u"ByBlock") || isName(this, u"ByLayer") || isName(this, u"Continuous");
}

Acad::ErrorStatus AcDbLinetypeTableRecord::comments(const ACHAR*& text) const {
  text = comments_.c_str();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLinetypeTableRecord::setComments(const ACHAR* text) {
  assertWriteEnabled();
  comments_ = text ? text : u"";
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLinetypeTableRecord::setPatternLength(double length) {
  if (length < 0.0) return Acad::eInvalidInput;
  assertWriteEnabled();
  patternLength_ = length;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLinetypeTableRecord::setNumDashes(int n) {
  if (n < 0 || n > 12) return Acad::eInvalidInput;  // the host's limit
  assertWriteEnabled();
  dashes_.resize(static_cast<size_t>(n));
  return Acad::eOk;
}

#define ZEPK_DASH_GET(expr, none)                                                 \
  if (index < 0 || index >= static_cast<int>(dashes_.size())) return none;         \
  const Dash& d = dashes_[static_cast<size_t>(index)];                            \
  return expr;
#define ZEPK_DASH_SET(stmt)                                                       \
  if (index < 0 || index >= static_cast<int>(dashes_.size())) return Acad::eInvalidIndex; \
  assertWriteEnabled();                                                           \
  Dash& d = dashes_[static_cast<size_t>(index)];                                  \
  stmt;                                                                           \
  return Acad::eOk;

double AcDbLinetypeTableRecord::dashLengthAt(int index) const { ZEPK_DASH_GET(d.length, 0.0) }
Acad::ErrorStatus AcDbLinetypeTableRecord::setDashLengthAt(int index, double length) { ZEPK_DASH_SET(d.length = length) }
AcDbObjectId AcDbLinetypeTableRecord::shapeStyleAt(int index) const { ZEPK_DASH_GET(d.style, AcDbObjectId()) }
Acad::ErrorStatus AcDbLinetypeTableRecord::setShapeStyleAt(int index, AcDbObjectId styleId) {
  ZEPK_DASH_SET(d.style = styleId)
}
int AcDbLinetypeTableRecord::shapeNumberAt(int index) const { ZEPK_DASH_GET(d.shapeNumber, 0) }
Acad::ErrorStatus AcDbLinetypeTableRecord::setShapeNumberAt(int index, int shapeNumber) {
  ZEPK_DASH_SET(d.shapeNumber = static_cast<Adesk::Int16>(shapeNumber);
                d.flags = static_cast<Adesk::Int16>(shapeNumber ? ((d.flags | 4) & ~2) : (d.flags & ~4)))
}
AcGeVector2d AcDbLinetypeTableRecord::shapeOffsetAt(int index) const { ZEPK_DASH_GET(d.offset, AcGeVector2d()) }
Acad::ErrorStatus AcDbLinetypeTableRecord::setShapeOffsetAt(int index, const AcGeVector2d& offset) {
  ZEPK_DASH_SET(d.offset = offset)
}
double AcDbLinetypeTableRecord::shapeScaleAt(int index) const { ZEPK_DASH_GET(d.scale, 0.0) }
Acad::ErrorStatus AcDbLinetypeTableRecord::setShapeScaleAt(int index, double scale) { ZEPK_DASH_SET(d.scale = scale) }
double AcDbLinetypeTableRecord::shapeRotationAt(int index) const { ZEPK_DASH_GET(d.rotation / kDegrees, 0.0) }
Acad::ErrorStatus AcDbLinetypeTableRecord::setShapeRotationAt(int index, double rotation) {
  ZEPK_DASH_SET(d.rotation = rotation * kDegrees)
}
bool AcDbLinetypeTableRecord::shapeIsUcsOrientedAt(int index) const { ZEPK_DASH_GET((d.flags & 1) != 0, false) }
Acad::ErrorStatus AcDbLinetypeTableRecord::setShapeIsUcsOrientedAt(int index, bool isUcsOriented) {
  ZEPK_DASH_SET(d.flags = static_cast<Adesk::Int16>(isUcsOriented ? (d.flags | 1) : (d.flags & ~1)))
}
Acad::ErrorStatus AcDbLinetypeTableRecord::textAt(int index, const ACHAR*& text) const {
  if (index < 0 || index >= static_cast<int>(dashes_.size())) return Acad::eInvalidIndex;
  text = dashes_[static_cast<size_t>(index)].text.c_str();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbLinetypeTableRecord::setTextAt(int index, const ACHAR* text) {
  ZEPK_DASH_SET(d.text = text ? text : u"";
                d.flags = static_cast<Adesk::Int16>(d.text.empty() ? (d.flags & ~2) : ((d.flags | 2) & ~4)))
}
#undef ZEPK_DASH_GET
#undef ZEPK_DASH_SET

// ---------------------------------------------------------------- text styles

const ClassSchema& AcDbTextStyleTableRecord::schema() {
  using T = AcDbTextStyleTableRecord;
  static const ClassSchema s{u"AcDbTextStyleTableRecord",
                             {
                                 field<&T::name_>(2, "Name"),
                                 field<&T::flags_>(70, "Flags", 0),
                                 field<&T::textSize_>(40, "Height", 0.0),
                                 field<&T::xScale_>(41, "Width", 1.0),
                                 field<&T::oblique_>(50, "ObliqueAngle", 0.0),
                                 field<&T::generation_>(71, "TextGenerationFlag", 0),
                                 field<&T::priorSize_>(42, "LastHeight", 0.2),
                                 field<&T::fileName_>(3, "FontFile", u"txt"),
                                 field<&T::bigFontFileName_>(4, "BigFontFile"),
                                 keptGroups<&T::kept_, &T::schema>(),
                             }};
  return s;
}

ZEPK_SCHEMA_FILERS(AcDbTextStyleTableRecord, AcDbSymbolTableRecord, schema)

Acad::ErrorStatus AcDbTextStyleTableRecord::fileName(const ACHAR*& name) const {
  name = fileName_.c_str();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setFileName(const ACHAR* name) {
  assertWriteEnabled();
  fileName_ = name ? name : u"";
  return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::bigFontFileName(const ACHAR*& name) const {
  name = bigFontFileName_.c_str();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setBigFontFileName(const ACHAR* name) {
  assertWriteEnabled();
  bigFontFileName_ = name ? name : u"";
  return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setTextSize(double size) {
  if (!(size >= 0.0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  textSize_ = size;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setXScale(double scale) {
  if (!(scale > 0.0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  xScale_ = scale;
  return Acad::eOk;
}

double AcDbTextStyleTableRecord::obliquingAngle() const { return oblique_ / kDegrees; }

Acad::ErrorStatus AcDbTextStyleTableRecord::setObliquingAngle(double angle) {
  // The host takes slants up to 85 degrees either way (an angle of 355
  // degrees is -5).
  double deg = std::remainder(angle * kDegrees, 360.0);
  if (!(std::fabs(deg) <= 85.0 + 1e-9)) return Acad::eInvalidInput;
  assertWriteEnabled();
  oblique_ = deg;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setPriorSize(double size) {
  if (!(size > 0.0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  priorSize_ = size;
  return Acad::eOk;
}

void AcDbTextStyleTableRecord::setIsShapeFile(bool shape) {
  assertWriteEnabled();
  flags_ = static_cast<Adesk::Int16>(shape ? (flags_ | 1) : (flags_ & ~1));
}

void AcDbTextStyleTableRecord::setIsVertical(bool vertical) {
  assertWriteEnabled();
  flags_ = static_cast<Adesk::Int16>(vertical ? (flags_ | 4) : (flags_ & ~4));
}

void AcDbTextStyleTableRecord::setFlagBits(Adesk::UInt8 bits) {
  assertWriteEnabled();
  generation_ = static_cast<Adesk::Int16>(bits & 6);
}

// ---------------------------------------------------------------- dimension styles

const ClassSchema& AcDbDimStyleTableRecord::schema() {
  using D = AcDbDimStyleTableRecord;
  // Every variable is written: readers fill a missing one with defaults of
  // their own, which differ between metric and imperial drawings.
  static const ClassSchema s{u"AcDbDimStyleTableRecord",
                             {
                                 field<&D::name_>(2, "Name"),
                                 field<&D::flags_>(70, "Flags", 0),
                                 field<&D::dimpost_>(3, "DIMPOST", u""),
                                 field<&D::dimapost_>(4, "DIMAPOST", u""),
                                 field<&D::dimscale_>(40, "DIMSCALE", 1.0),
                                 field<&D::dimasz_>(41, "DIMASZ", 0.18),
                                 field<&D::dimexo_>(42, "DIMEXO", 0.0625),
                                 field<&D::dimdli_>(43, "DIMDLI", 0.38),
                                 field<&D::dimexe_>(44, "DIMEXE", 0.18),
                                 field<&D::dimrnd_>(45, "DIMRND", 0.0),
                                 field<&D::dimdle_>(46, "DIMDLE", 0.0),
                                 field<&D::dimtp_>(47, "DIMTP", 0.0),
                                 field<&D::dimtm_>(48, "DIMTM", 0.0),
                                 field<&D::dimtxt_>(140, "DIMTXT", 0.18),
                                 field<&D::dimcen_>(141, "DIMCEN", 0.09),
                                 field<&D::dimtsz_>(142, "DIMTSZ", 0.0),
                                 field<&D::dimaltf_>(143, "DIMALTF", 25.4),
                                 field<&D::dimlfac_>(144, "DIMLFAC", 1.0),
                                 field<&D::dimtvp_>(145, "DIMTVP", 0.0),
                                 field<&D::dimtfac_>(146, "DIMTFAC", 1.0),
                                 field<&D::dimgap_>(147, "DIMGAP", 0.09),
                                 field<&D::dimaltrnd_>(148, "DIMALTRND", 0.0),
                                 field<&D::dimtol_>(71, "DIMTOL", false),
                                 field<&D::dimlim_>(72, "DIMLIM", false),
                                 field<&D::dimtih_>(73, "DIMTIH", true),
                                 field<&D::dimtoh_>(74, "DIMTOH", true),
                                 field<&D::dimse1_>(75, "DIMSE1", false),
                                 field<&D::dimse2_>(76, "DIMSE2", false),
                                 field<&D::dimtad_>(77, "DIMTAD", 0),
                                 field<&D::dimzin_>(78, "DIMZIN", 0),
                                 field<&D::dimazin_>(79, "DIMAZIN", 0),
                                 field<&D::dimalt_>(170, "DIMALT", false),
                                 field<&D::dimaltd_>(171, "DIMALTD", 2),
                                 field<&D::dimtofl_>(172, "DIMTOFL", false),
                                 field<&D::dimsah_>(173, "DIMSAH", false),
                                 field<&D::dimtix_>(174, "DIMTIX", false),
                                 field<&D::dimsoxd_>(175, "DIMSOXD", false),
                                 field<&D::dimclrd_>(176, "DIMCLRD", 0),
                                 field<&D::dimclre_>(177, "DIMCLRE", 0),
                                 field<&D::dimclrt_>(178, "DIMCLRT", 0),
                                 field<&D::dimadec_>(179, "DIMADEC", 0),
                                 field<&D::dimdec_>(271, "DIMDEC", 4),
                                 field<&D::dimtdec_>(272, "DIMTDEC", 4),
                                 field<&D::dimaltu_>(273, "DIMALTU", 2),
                                 field<&D::dimalttd_>(274, "DIMALTTD", 2),
                                 field<&D::dimaunit_>(275, "DIMAUNIT", 0),
                                 field<&D::dimfrac_>(276, "DIMFRAC", 0),
                                 field<&D::dimlunit_>(277, "DIMLUNIT", 2),
                                 field<&D::dimdsep_>(278, "DIMDSEP", u'.'),
                                 field<&D::dimtmove_>(279, "DIMTMOVE", 0),
                                 field<&D::dimjust_>(280, "DIMJUST", 0),
                                 field<&D::dimsd1_>(281, "DIMSD1", false),
                                 field<&D::dimsd2_>(282, "DIMSD2", false),
                                 field<&D::dimtolj_>(283, "DIMTOLJ", 1),
                                 field<&D::dimtzin_>(284, "DIMTZIN", 0),
                                 field<&D::dimaltz_>(285, "DIMALTZ", 0),
                                 field<&D::dimalttz_>(286, "DIMALTTZ", 0),
                                 field<&D::dimupt_>(288, "DIMUPT", false),
                                 field<&D::dimatfit_>(289, "DIMATFIT", 3),
                                 field<&D::dimtxsty_>(340, "DIMTXSTY", {}, kNone, FieldType::HardPointer),
                                 field<&D::dimldrblk_>(341, "DIMLDRBLK", {}, kOptional, FieldType::HardPointer),
                                 field<&D::dimblk_>(342, "DIMBLK", {}, kOptional, FieldType::HardPointer),
                                 field<&D::dimblk1_>(343, "DIMBLK1", {}, kOptional, FieldType::HardPointer),
                                 field<&D::dimblk2_>(344, "DIMBLK2", {}, kOptional, FieldType::HardPointer),
                                 field<&D::dimlwd_>(371, "DIMLWD", -2),
                                 field<&D::dimlwe_>(372, "DIMLWE", -2),
                                 keptGroups<&D::kept_, &D::schema>(),
                             }};
  return s;
}

ZEPK_SCHEMA_FILERS(AcDbDimStyleTableRecord, AcDbSymbolTableRecord, schema)

Acad::ErrorStatus AcDbDimStyleTableRecord::setDimpost(const ACHAR* text) {
  assertWriteEnabled();
  dimpost_ = text ? text : u"";
  return Acad::eOk;
}

void AcDbDimStyleTableRecord::addedToTable(AcDbDatabase* db) {
  // A style without a text style writes with "Standard".
  if (dimtxsty_.isNull())
    if (auto* styles = peek<AcDbSymbolTable>(db->textStyleTableId())) styles->getAt(u"Standard", dimtxsty_);
}

// ---------------------------------------------------------------- user coordinate systems

const ClassSchema& AcDbUCSTableRecord::schema() {
  using U = AcDbUCSTableRecord;
  static const ClassSchema s{
      u"AcDbUCSTableRecord",
      {
          field<&U::name_>(2, "Name"),
          field<&U::flags_>(70, "Flags", 0),
          field<&U::origin_>(10, "Origin"),
          field<&U::xAxis_>(11, "XAxis", AcGeVector3d(1, 0, 0)),
          field<&U::yAxis_>(12, "YAxis", AcGeVector3d(0, 1, 0)),
          field<&U::zero_>(79, "Unused", 0),
          field<&U::elevation_>(146, "Elevation", 0.0, kOptional),
          field<&U::baseUcs_>(346, "BaseUcs", {}, kOptional, FieldType::HardPointer),
          keptGroups<&U::kept_, &U::schema>(),
      }};
  return s;
}

ZEPK_SCHEMA_FILERS(AcDbUCSTableRecord, AcDbSymbolTableRecord, schema)

void AcDbUCSTableRecord::setOrigin(const AcGePoint3d& p) {
  assertWriteEnabled();
  origin_ = p;
}
void AcDbUCSTableRecord::setXAxis(const AcGeVector3d& v) {
  assertWriteEnabled();
  xAxis_ = v;
}
void AcDbUCSTableRecord::setYAxis(const AcGeVector3d& v) {
  assertWriteEnabled();
  yAxis_ = v;
}

// ---------------------------------------------------------------- views

void AcDbAbstractViewTableRecord::setCenterPoint(const AcGePoint2d& p) {
  assertWriteEnabled();
  center_ = p;
}
void AcDbAbstractViewTableRecord::setHeight(double h) {
  assertWriteEnabled();
  height_ = h;
}
void AcDbAbstractViewTableRecord::setTarget(const AcGePoint3d& p) {
  assertWriteEnabled();
  target_ = p;
}
void AcDbAbstractViewTableRecord::setViewDirection(const AcGeVector3d& v) {
  assertWriteEnabled();
  direction_ = v;
}
double AcDbAbstractViewTableRecord::viewTwist() const { return twist_ / kDegrees; }
void AcDbAbstractViewTableRecord::setViewTwist(double angle) {
  assertWriteEnabled();
  twist_ = angle * kDegrees;
}
void AcDbAbstractViewTableRecord::setLensLength(double l) {
  assertWriteEnabled();
  lensLength_ = l;
}
void AcDbAbstractViewTableRecord::setFrontClipDistance(double d) {
  assertWriteEnabled();
  frontClip_ = d;
}
void AcDbAbstractViewTableRecord::setBackClipDistance(double d) {
  assertWriteEnabled();
  backClip_ = d;
}
void AcDbAbstractViewTableRecord::setPerspectiveEnabled(bool on) {
  assertWriteEnabled();
  viewMode_ = static_cast<Adesk::Int16>(on ? (viewMode_ | 1) : (viewMode_ & ~1));
}
void AcDbAbstractViewTableRecord::setFrontClipEnabled(bool on) {
  assertWriteEnabled();
  viewMode_ = static_cast<Adesk::Int16>(on ? (viewMode_ | 2) : (viewMode_ & ~2));
}
void AcDbAbstractViewTableRecord::setBackClipEnabled(bool on) {
  assertWriteEnabled();
  viewMode_ = static_cast<Adesk::Int16>(on ? (viewMode_ | 4) : (viewMode_ & ~4));
}
Acad::ErrorStatus AcDbAbstractViewTableRecord::setUcs(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                                                      const AcGeVector3d& yAxis) {
  assertWriteEnabled();
  ucsOrigin_ = origin;
  ucsXAxis_ = xAxis;
  ucsYAxis_ = yAxis;
  return Acad::eOk;
}
void AcDbAbstractViewTableRecord::setElevation(double e) {
  assertWriteEnabled();
  elevation_ = e;
}

const ClassSchema& AcDbViewTableRecord::schema() {
  using V = AcDbViewTableRecord;
  static const ClassSchema s{
      u"AcDbViewTableRecord",
      {
          field<&V::name_>(2, "Name"),
          field<&V::flags_>(70, "Flags", 0),
          field<&V::height_>(40, "Height", 1.0),
          field<&V::center_>(10, "Center"),
          field<&V::width_>(41, "Width", 1.0),
          field<&V::direction_>(11, "Direction", AcGeVector3d(0, 0, 1)),
          field<&V::target_>(12, "Target"),
          field<&V::lensLength_>(42, "LensLength", 50.0),
          field<&V::frontClip_>(43, "FrontClipDistance", 0.0),
          field<&V::backClip_>(44, "BackClipDistance", 0.0),
          field<&V::twist_>(50, "Twist", 0.0),
          field<&V::viewMode_>(71, "ViewMode", 0),
          field<&V::renderMode_>(281, "RenderMode", 0),
          field<&V::ucsAssociated_>(72, "UcsAssociated", 0),
          field<&V::ucsOrigin_>(110, "UcsOrigin", AcGePoint3d(), kOptional),
          field<&V::ucsXAxis_>(111, "UcsXAxis", AcGeVector3d(1, 0, 0), kOptional),
          field<&V::ucsYAxis_>(112, "UcsYAxis", AcGeVector3d(0, 1, 0), kOptional),
          field<&V::orthoType_>(79, "UcsOrthographicType", 0, kOptional),
          field<&V::elevation_>(146, "Elevation", 0.0, kOptional),
          keptGroups<&V::kept_, &V::schema>(),
      }};
  return s;
}

ZEPK_SCHEMA_FILERS(AcDbViewTableRecord, AcDbAbstractViewTableRecord, schema)

void AcDbViewTableRecord::setWidth(double w) {
  assertWriteEnabled();
  width_ = w;
}

void AcDbViewTableRecord::setIsPaperspaceView(bool paper) {
  assertWriteEnabled();
  flags_ = static_cast<Adesk::Int16>(paper ? (flags_ | 1) : (flags_ & ~1));
}

// ---------------------------------------------------------------- viewports

const ClassSchema& AcDbViewportTableRecord::schema() {
  using V = AcDbViewportTableRecord;
  static const ClassSchema s{
      u"AcDbViewportTableRecord",
      {
          field<&V::name_>(2, "Name"),
          field<&V::flags_>(70, "Flags", 0),
          field<&V::lowerLeft_>(10, "LowerLeftCorner", AcGePoint2d(0, 0)),
          field<&V::upperRight_>(11, "UpperRightCorner", AcGePoint2d(1, 1)),
          field<&V::center_>(12, "Center"),
          field<&V::snapBase_>(13, "SnapBasePoint"),
          field<&V::snapSpacing_>(14, "SnapSpacing", AcGePoint2d(0.5, 0.5)),
          field<&V::gridSpacing_>(15, "GridSpacing", AcGePoint2d(0.5, 0.5)),
          field<&V::direction_>(16, "Direction", AcGeVector3d(0, 0, 1)),
          field<&V::target_>(17, "Target"),
          field<&V::height_>(40, "Height", 1.0),
          field<&V::aspect_>(41, "AspectRatio", 1.0),
          field<&V::lensLength_>(42, "LensLength", 50.0),
          field<&V::frontClip_>(43, "FrontClipDistance", 0.0),
          field<&V::backClip_>(44, "BackClipDistance", 0.0),
          field<&V::snapAngle_>(50, "SnapRotation", 0.0),
          field<&V::twist_>(51, "Twist", 0.0),
          field<&V::viewMode_>(71, "ViewMode", 0),
          field<&V::circleSides_>(72, "CircleSides", 1000),
          field<&V::fastZoom_>(73, "FastZoom", 1),
          field<&V::ucsIcon_>(74, "UcsIcon", 3),
          field<&V::snapOn_>(75, "SnapOn", 0),
          field<&V::gridOn_>(76, "GridOn", 0),
          field<&V::snapStyle_>(77, "SnapStyle", 0),
          field<&V::snapIsoPair_>(78, "SnapIsoPair", 0),
          field<&V::renderMode_>(281, "RenderMode", 0),
          field<&V::ucsPerViewport_>(65, "UcsPerViewport", 1),
          field<&V::ucsOrigin_>(110, "UcsOrigin"),
          field<&V::ucsXAxis_>(111, "UcsXAxis", AcGeVector3d(1, 0, 0)),
          field<&V::ucsYAxis_>(112, "UcsYAxis", AcGeVector3d(0, 1, 0)),
          field<&V::orthoType_>(79, "UcsOrthographicType", 0),
          field<&V::elevation_>(146, "Elevation", 0.0),
          keptGroups<&V::kept_, &V::schema>(),
      }};
  return s;
}

ZEPK_SCHEMA_FILERS(AcDbViewportTableRecord, AcDbAbstractViewTableRecord, schema)

bool AcDbViewportTableRecord::isValidName(std::u16string_view name) const {
  // "*Active" is the name of the viewport on the screen.
  if (!name.empty() && name[0] == u'*') name.remove_prefix(1);
  return AcDbSymbolTableRecord::isValidName(name);
}

void AcDbViewportTableRecord::setWidth(double w) {
  assertWriteEnabled();
  if (height_ != 0.0) aspect_ = w / height_;
}
void AcDbViewportTableRecord::setAspectRatio(double a) {
  assertWriteEnabled();
  aspect_ = a;
}
void AcDbViewportTableRecord::setLowerLeftCorner(const AcGePoint2d& p) {
  assertWriteEnabled();
  lowerLeft_ = p;
}
void AcDbViewportTableRecord::setUpperRightCorner(const AcGePoint2d& p) {
  assertWriteEnabled();
  upperRight_ = p;
}
void AcDbViewportTableRecord::setSnapEnabled(bool on) {
  assertWriteEnabled();
  snapOn_ = on ? 1 : 0;
}
void AcDbViewportTableRecord::setGridEnabled(bool on) {
  assertWriteEnabled();
  gridOn_ = on ? 1 : 0;
}
void AcDbViewportTableRecord::setSnapBase(const AcGePoint2d& p) {
  assertWriteEnabled();
  snapBase_ = p;
}
void AcDbViewportTableRecord::setSnapIncrements(const AcGeVector2d& v) {
  assertWriteEnabled();
  snapSpacing_ = AcGePoint2d(v.x, v.y);
}
void AcDbViewportTableRecord::setGridIncrements(const AcGeVector2d& v) {
  assertWriteEnabled();
  gridSpacing_ = AcGePoint2d(v.x, v.y);
}
double AcDbViewportTableRecord::snapAngle() const { return snapAngle_ / kDegrees; }
void AcDbViewportTableRecord::setSnapAngle(double angle) {
  assertWriteEnabled();
  snapAngle_ = angle * kDegrees;
}
void AcDbViewportTableRecord::setCircleSides(Adesk::Int16 n) {
  assertWriteEnabled();
  circleSides_ = n;
}

// ---------------------------------------------------------------- registered applications

const ClassSchema& AcDbRegAppTableRecord::schema() {
  using R = AcDbRegAppTableRecord;
  static const ClassSchema s{u"AcDbRegAppTableRecord",
                             {
                                 field<&R::name_>(2, "Name"),
                                 field<&R::flags_>(70, "Flags", 0),
                                 keptGroups<&R::kept_, &R::schema>(),
                             }};
  return s;
}

ZEPK_SCHEMA_FILERS(AcDbRegAppTableRecord, AcDbSymbolTableRecord, schema)

bool AcDbRegAppTableRecord::isStandardRecord() const { return isName(this, u"ACAD"); }
