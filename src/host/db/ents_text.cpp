// Texts: single-line text, attributes and attribute definitions, and
// multiline text.
#include <cmath>

#include "host/db/ents_internal.h"
#include "host/dbmtext.h"

using zepk::db::ClassSchema;
using zepk::db::customPart;
using zepk::db::DxfItem;
using zepk::db::field;
using zepk::db::Field;
using zepk::db::kOptional;
using zepk::db::kDegreesInFile;
using zepk::db::MemoryDxfFiler;

namespace {

const AcGeVector3d kZ(0, 0, 1);



// The text style (group 7): a record of the text style table, by name in
// the file. "Standard" is the default.
template <auto Id, auto Name>
Field stylePart() {
  Field f = zepk::db::recordRefPart<Id, Name, 7, zepk::db::textStyleIdByName, zepk::db::RefDefault::Standard>();
  f.name = "TextStyle";
  return f;
}

// The version of an attribute's part (280), which files from 2010 on write
// right after the marker, before a second 280 (the lock flag). Taken only
// where it stands first; written when the lock flag is written, so that
// the two are never mistaken.
template <auto Version, auto Lock>
Field attributeVersionPart() {
  using C = typename zepk::db::MemberOf<Version>::Class;
  Field f = customPart(
      {280},
      [](const AcDbObject* o, AcDbDxfFiler* fl) {
        auto* e = static_cast<const C*>(o);
        if (fl->includesDefaultValues() || e->*Version != 0 || e->*Lock != 0) fl->writeInt16(280, e->*Version);
        return fl->filerStatus();
      },
      [](AcDbObject* o, MemoryDxfFiler* fl) {
        // Not first in the part (right after its marker): the lock flag's.
        const size_t at = fl->position();
        if (at == 0 || fl->items()[at - 1].code != 100) return Acad::eOk;
        const DxfItem* it = fl->next();
        if (it->kind != DxfItem::Int) return Acad::eInvalidResBuf;
        static_cast<C*>(o)->*Version = static_cast<int16_t>(it->i);
        return Acad::eOk;
      },
      [](const AcDbObject* o, AcDbDwgFiler* fl) { return fl->writeInt16(static_cast<const C*>(o)->*Version); },
      [](AcDbObject* o, AcDbDwgFiler* fl) { return fl->readInt16(&(static_cast<C*>(o)->*Version)); },
      [](AcDbObject* o) { static_cast<C*>(o)->*Version = 0; });
  f.name = "Version";
  return f;
}

}  // namespace

#define ZEPK_SET(CLASS, NAME, TYPE, MEMBER) \
  Acad::ErrorStatus CLASS::NAME(TYPE v) {   \
    assertWriteEnabled();                    \
    MEMBER = v;                              \
    return Acad::eOk;                        \
  }

// ---------------------------------------------------------------- text

ZEPK_DEFINE_ENTITY_CLASS(AcDbText, AcDbEntity, u"TEXT")

const ClassSchema& AcDbText::schema() {
  static const ClassSchema s{u"AcDbText",
                             {
                                 field<&AcDbText::thickness_>(39, "Thickness", 0.0, kOptional),
                                 field<&AcDbText::position_>(10, "Position"),
                                 field<&AcDbText::height_>(40, "Height", 0.0),
                                 field<&AcDbText::text_>(1, "TextString"),
                                 field<&AcDbText::rotation_>(50, "Rotation", 0.0, kOptional | kDegreesInFile),
                                 field<&AcDbText::widthFactor_>(41, "WidthFactor", 1.0, kOptional),
                                 field<&AcDbText::oblique_>(51, "Oblique", 0.0, kOptional | kDegreesInFile),
                                 stylePart<&AcDbText::styleId_, &AcDbText::styleName_>(),
                                 field<&AcDbText::generation_>(71, "TextGenerationFlag", 0, kOptional),
                                 field<&AcDbText::horizontal_>(72, "HorizontalMode", 0, kOptional),
                                 field<&AcDbText::alignment_>(11, "AlignmentPoint", AcGePoint3d(), kOptional),
                                 field<&AcDbText::normal_>(210, "Normal", kZ, kOptional),
                             }};
  return s;
}

const ClassSchema& AcDbText::alignmentSchema() {
  static const ClassSchema s{u"AcDbText", {field<&AcDbText::vertical_>(73, "VerticalMode", 0, kOptional)}};
  return s;
}

Acad::ErrorStatus AcDbText::dxfOutTextPart(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbEntity::dxfOutFields(f);
  return es != Acad::eOk ? es : zepk::db::dxfOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbText::dxfInTextPart(AcDbDxfFiler* f) {
  Acad::ErrorStatus es = AcDbEntity::dxfInFields(f);
  return es != Acad::eOk ? es : zepk::db::dxfInPart(schema(), this, f);
}

Acad::ErrorStatus AcDbText::dwgOutTextPart(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbEntity::dwgOutFields(f);
  return es != Acad::eOk ? es : zepk::db::dwgOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbText::dwgInTextPart(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbEntity::dwgInFields(f);
  return es != Acad::eOk ? es : zepk::db::dwgInPart(schema(), this, f);
}

Acad::ErrorStatus AcDbText::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = dxfOutTextPart(f);
  return es != Acad::eOk ? es : zepk::db::dxfOutPart(alignmentSchema(), this, f);
}

Acad::ErrorStatus AcDbText::dxfInFields(AcDbDxfFiler* f) {
  Acad::ErrorStatus es = dxfInTextPart(f);
  return es != Acad::eOk ? es : zepk::db::dxfInPart(alignmentSchema(), this, f);
}

Acad::ErrorStatus AcDbText::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = dwgOutTextPart(f);
  return es != Acad::eOk ? es : zepk::db::dwgOutPart(alignmentSchema(), this, f);
}

Acad::ErrorStatus AcDbText::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = dwgInTextPart(f);
  return es != Acad::eOk ? es : zepk::db::dwgInPart(alignmentSchema(), this, f);
}

AcDbText::AcDbText(const AcGePoint3d& position, const ACHAR* text, AcDbObjectId style, double height,
                   double rotation)
    : position_(position), height_(height), text_(text ? text : u""), rotation_(rotation), styleId_(style) {
  if (std::u16string n = zepk::db::recordName(style); !n.empty()) styleName_ = n;
}

ZEPK_SET(AcDbText, setPosition, const AcGePoint3d&, position_)
ZEPK_SET(AcDbText, setAlignmentPoint, const AcGePoint3d&, alignment_)
ZEPK_SET(AcDbText, setThickness, double, thickness_)
ZEPK_SET(AcDbText, setOblique, double, oblique_)
ZEPK_SET(AcDbText, setRotation, double, rotation_)

Acad::ErrorStatus AcDbText::setNormal(const AcGeVector3d& n) {
  double len = n.length();
  if (!(len > 1e-12)) return Acad::eInvalidInput;
  assertWriteEnabled();
  normal_ = n / len;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setHeight(double h) {
  if (!(h > 0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  height_ = h;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setWidthFactor(double w) {
  if (!(w > 0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  widthFactor_ = w;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::mirroredInX(bool mirror) {
  assertWriteEnabled();
  generation_ = static_cast<int16_t>(mirror ? (generation_ | 2) : (generation_ & ~2));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::mirroredInY(bool mirror) {
  assertWriteEnabled();
  generation_ = static_cast<int16_t>(mirror ? (generation_ | 4) : (generation_ & ~4));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setHorizontalMode(AcDb::TextHorzMode mode) {
  if (mode < AcDb::kTextLeft || mode > AcDb::kTextFit) return Acad::eInvalidInput;
  assertWriteEnabled();
  horizontal_ = static_cast<int16_t>(mode);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setVerticalMode(AcDb::TextVertMode mode) {
  if (mode < AcDb::kTextBase || mode > AcDb::kTextTop) return Acad::eInvalidInput;
  assertWriteEnabled();
  vertical_ = static_cast<int16_t>(mode);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setTextString(const ACHAR* text) {
  assertWriteEnabled();
  text_ = text ? text : u"";
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setTextStyle(AcDbObjectId style) {
  if (style.isNull()) return Acad::eNullObjectId;
  assertWriteEnabled();
  styleId_ = style;
  if (std::u16string n = zepk::db::recordName(style); !n.empty()) styleName_ = n;
  return Acad::eOk;
}

std::u16string AcDbText::textStyleName() const { return zepk::db::recordNameOr(styleId_, styleName_); }

Acad::ErrorStatus AcDbText::setTextStyleName(const ACHAR* name) {
  if (!name || !*name) return Acad::eInvalidInput;
  assertWriteEnabled();
  AcDbDatabase* db = database();
  styleId_ = db ? zepk::db::textStyleIdByName(db, name) : AcDbObjectId();
  styleName_ = styleId_.isNull() ? std::u16string(name) : zepk::db::recordName(styleId_);
  return Acad::eOk;
}

// ---------------------------------------------------------------- attributes

namespace {

bool validTag(const ACHAR* tag) {
  if (!tag || !*tag) return false;
  for (const ACHAR* p = tag; *p; ++p)
    if (*p == u' ') return false;
  return true;
}

std::u16string upper(const ACHAR* s) {
  std::u16string out = s;
  for (char16_t& c : out)
    if (c >= u'a' && c <= u'z') c = char16_t(c - 32);
  return out;
}

}  // namespace

ZEPK_DEFINE_ENTITY_CLASS(AcDbAttribute, AcDbText, u"ATTRIB")

const ClassSchema& AcDbAttribute::schema() {
  static const ClassSchema s{
      u"AcDbAttribute",
      {
          attributeVersionPart<&AcDbAttribute::version_, &AcDbAttribute::lockPosition_>(),
          field<&AcDbAttribute::tag_>(2, "Tag"),
          field<&AcDbAttribute::flags_>(70, "Flags", 0),
          field<&AcDbAttribute::fieldLength_>(73, "FieldLength", 0, kOptional),
          field<&AcDbAttribute::vertical_>(74, "VerticalMode", 0, kOptional),
          field<&AcDbAttribute::lockPosition_>(280, "LockPositionInBlock", 0, kOptional),
      }};
  return s;
}

Acad::ErrorStatus AcDbAttribute::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = dxfOutTextPart(f);
  return es != Acad::eOk ? es : zepk::db::dxfOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbAttribute::dxfInFields(AcDbDxfFiler* f) {
  Acad::ErrorStatus es = dxfInTextPart(f);
  return es != Acad::eOk ? es : zepk::db::dxfInPart(schema(), this, f);
}

Acad::ErrorStatus AcDbAttribute::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = dwgOutTextPart(f);
  return es != Acad::eOk ? es : zepk::db::dwgOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbAttribute::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = dwgInTextPart(f);
  return es != Acad::eOk ? es : zepk::db::dwgInPart(schema(), this, f);
}

AcDbAttribute::AcDbAttribute(const AcGePoint3d& position, const ACHAR* text, const ACHAR* tag, AcDbObjectId style)
    : AcDbText(position, text, style) {
  if (validTag(tag)) tag_ = upper(tag);
}

Acad::ErrorStatus AcDbAttribute::setTag(const ACHAR* tag) {
  if (!validTag(tag)) return Acad::eInvalidInput;
  assertWriteEnabled();
  tag_ = upper(tag);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbAttribute::setInvisible(bool invisible) {
  assertWriteEnabled();
  flags_ = static_cast<int16_t>(invisible ? (flags_ | AcDbAttributeFlags::kInvisible)
                                          : (flags_ & ~AcDbAttributeFlags::kInvisible));
  return Acad::eOk;
}

ZEPK_SET(AcDbAttribute, setFieldLength, Adesk::UInt16, fieldLength_)

Acad::ErrorStatus AcDbAttribute::setLockPositionInBlock(bool lock) {
  assertWriteEnabled();
  lockPosition_ = lock ? 1 : 0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbAttribute::setAttributeFromBlock(const AcDbAttributeDefinition* def) {
  if (!def) return Acad::eNullObjectPointer;
  assertWriteEnabled();
  setPropertiesFrom(def, false);
  thickness_ = def->thickness_;
  position_ = def->position_;
  height_ = def->height_;
  text_ = def->text_;
  rotation_ = def->rotation_;
  widthFactor_ = def->widthFactor_;
  oblique_ = def->oblique_;
  styleId_ = def->styleId_;
  styleName_ = def->styleName_;
  generation_ = def->generation_;
  horizontal_ = def->horizontal_;
  alignment_ = def->alignment_;
  normal_ = def->normal_;
  vertical_ = def->vertical_;
  tag_ = def->tag_;
  flags_ = def->flags_;
  fieldLength_ = def->fieldLength_;
  lockPosition_ = def->lockPosition_;
  return Acad::eOk;
}

ZEPK_DEFINE_ENTITY_CLASS(AcDbAttributeDefinition, AcDbText, u"ATTDEF")

const ClassSchema& AcDbAttributeDefinition::schema() {
  static const ClassSchema s{
      u"AcDbAttributeDefinition",
      {
          attributeVersionPart<&AcDbAttributeDefinition::version_, &AcDbAttributeDefinition::lockPosition_>(),
          field<&AcDbAttributeDefinition::prompt_>(3, "Prompt"),
          field<&AcDbAttributeDefinition::tag_>(2, "Tag"),
          field<&AcDbAttributeDefinition::flags_>(70, "Flags", 0),
          field<&AcDbAttributeDefinition::fieldLength_>(73, "FieldLength", 0, kOptional),
          field<&AcDbAttributeDefinition::vertical_>(74, "VerticalMode", 0, kOptional),
          field<&AcDbAttributeDefinition::lockPosition_>(280, "LockPositionInBlock", 0, kOptional),
      }};
  return s;
}

Acad::ErrorStatus AcDbAttributeDefinition::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = dxfOutTextPart(f);
  return es != Acad::eOk ? es : zepk::db::dxfOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbAttributeDefinition::dxfInFields(AcDbDxfFiler* f) {
  Acad::ErrorStatus es = dxfInTextPart(f);
  return es != Acad::eOk ? es : zepk::db::dxfInPart(schema(), this, f);
}

Acad::ErrorStatus AcDbAttributeDefinition::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = dwgOutTextPart(f);
  return es != Acad::eOk ? es : zepk::db::dwgOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbAttributeDefinition::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = dwgInTextPart(f);
  return es != Acad::eOk ? es : zepk::db::dwgInPart(schema(), this, f);
}

AcDbAttributeDefinition::AcDbAttributeDefinition(const AcGePoint3d& position, const ACHAR* text, const ACHAR* tag,
                                                 const ACHAR* prompt, AcDbObjectId style)
    : AcDbText(position, text, style), prompt_(prompt ? prompt : u"") {
  if (validTag(tag)) tag_ = upper(tag);
}

Acad::ErrorStatus AcDbAttributeDefinition::setTag(const ACHAR* tag) {
  if (!validTag(tag)) return Acad::eInvalidInput;
  assertWriteEnabled();
  tag_ = upper(tag);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setPrompt(const ACHAR* prompt) {
  assertWriteEnabled();
  prompt_ = prompt ? prompt : u"";
  return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setFlag(int bit, bool on) {
  assertWriteEnabled();
  flags_ = static_cast<int16_t>(on ? (flags_ | bit) : (flags_ & ~bit));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setInvisible(bool v) { return setFlag(AcDbAttributeFlags::kInvisible, v); }
Acad::ErrorStatus AcDbAttributeDefinition::setConstant(bool v) { return setFlag(AcDbAttributeFlags::kConstant, v); }
Acad::ErrorStatus AcDbAttributeDefinition::setVerifiable(bool v) { return setFlag(AcDbAttributeFlags::kVerifiable, v); }
Acad::ErrorStatus AcDbAttributeDefinition::setPreset(bool v) { return setFlag(AcDbAttributeFlags::kPreset, v); }
ZEPK_SET(AcDbAttributeDefinition, setFieldLength, Adesk::UInt16, fieldLength_)

Acad::ErrorStatus AcDbAttributeDefinition::setLockPositionInBlock(bool lock) {
  assertWriteEnabled();
  lockPosition_ = lock ? 1 : 0;
  return Acad::eOk;
}

// ---------------------------------------------------------------- multiline text

namespace {

// Contents go out in chunks of at most 250 units: all but the last as
// group 3, the last as group 1. A chunk never splits a surrogate pair.
constexpr size_t kChunk = 250;

}  // namespace

ZEPK_DEFINE_ENTITY_CLASS(AcDbMText, AcDbEntity, u"MTEXT")
ZEPK_DEFINE_ENTITY_FILERS(AcDbMText, AcDbEntity)

const ClassSchema& AcDbMText::schema() {
  static const ClassSchema s{
      u"AcDbMText",
      {
          field<&AcDbMText::location_>(10, "Location"),
          field<&AcDbMText::textHeight_>(40, "TextHeight", 2.5),
          field<&AcDbMText::width_>(41, "Width", 0.0),
          field<&AcDbMText::definedHeight_>(46, "Height", 0.0, kOptional),
          field<&AcDbMText::attachment_>(71, "Attachment", kTopLeft),
          field<&AcDbMText::flow_>(72, "FlowDirection", kLtoR),
          customPart(
              {3, 1},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                const std::u16string& t = static_cast<const AcDbMText*>(o)->contents_;
                size_t at = 0;
                while (t.size() - at > kChunk) {
                  size_t n = kChunk;
                  if (t[at + n - 1] >= 0xD800 && t[at + n - 1] <= 0xDBFF) --n;
                  f->writeString(3, t.substr(at, n));
                  at += n;
                }
                return f->writeString(1, t.substr(at));
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                std::u16string& t = static_cast<AcDbMText*>(o)->contents_;
                t.clear();
                while (const DxfItem* it = zepk::db::take(f, 3)) {
                  if (it->kind != DxfItem::String) return Acad::eInvalidResBuf;
                  t += it->s;
                }
                if (const DxfItem* it = zepk::db::take(f, 1)) {
                  if (it->kind != DxfItem::String) return Acad::eInvalidResBuf;
                  t += it->s;
                }
                return Acad::eOk;
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                return f->writeString(static_cast<const AcDbMText*>(o)->contents_);
              },
              [](AcDbObject* o, AcDbDwgFiler* f) { return f->readString(&static_cast<AcDbMText*>(o)->contents_); },
              [](AcDbObject* o) { static_cast<AcDbMText*>(o)->contents_.clear(); }),
          stylePart<&AcDbMText::styleId_, &AcDbMText::styleName_>(),
          field<&AcDbMText::normal_>(210, "Normal", kZ, kOptional),
          field<&AcDbMText::direction_>(11, "Direction", AcGeVector3d(1, 0, 0), kOptional),
          field<&AcDbMText::actualWidth_>(42, "ActualWidth", 0.0, kOptional),
          field<&AcDbMText::actualHeight_>(43, "ActualHeight", 0.0, kOptional),
          field<&AcDbMText::rotation_>(50, "Rotation", 0.0, kOptional),
          field<&AcDbMText::spacingStyle_>(73, "LineSpacingStyle", kAtLeast, kOptional),
          field<&AcDbMText::spacingFactor_>(44, "LineSpacingFactor", 1.0, kOptional),
          field<&AcDbMText::bgScale_>(45, "BackgroundScaleFactor", 1.5, kOptional),
          field<&AcDbMText::bgFlags_>(90, "BackgroundFill", 0, kOptional),
          // The fill colour's index stands whenever there is a fill.
          customPart(
              {63},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                auto* m = static_cast<const AcDbMText*>(o);
                if (f->includesDefaultValues() || m->bgFlags_ != 0 || m->bgColorIndex_ != 0)
                  f->writeInt16(63, m->bgColorIndex_);
                return f->filerStatus();
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                const DxfItem* it = f->next();
                if (it->kind != DxfItem::Int) return Acad::eInvalidResBuf;
                static_cast<AcDbMText*>(o)->bgColorIndex_ = static_cast<int16_t>(it->i);
                return Acad::eOk;
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) { return f->writeInt16(static_cast<const AcDbMText*>(o)->bgColorIndex_); },
              [](AcDbObject* o, AcDbDwgFiler* f) { return f->readInt16(&static_cast<AcDbMText*>(o)->bgColorIndex_); },
              [](AcDbObject* o) { static_cast<AcDbMText*>(o)->bgColorIndex_ = 0; }),
          field<&AcDbMText::bgTrueColor_>(421, "BackgroundFillTrueColor", -1, kOptional),
          field<&AcDbMText::bgColorName_>(431, "BackgroundFillColorName", u"", kOptional),
          field<&AcDbMText::bgTransparency_>(441, "BackgroundTransparency", 0, kOptional),
      }};
  return s;
}

ZEPK_SET(AcDbMText, setLocation, const AcGePoint3d&, location_)
ZEPK_SET(AcDbMText, setWidth, double, width_)
ZEPK_SET(AcDbMText, setHeight, double, definedHeight_)

Acad::ErrorStatus AcDbMText::setNormal(const AcGeVector3d& n) {
  double len = n.length();
  if (!(len > 1e-12)) return Acad::eInvalidInput;
  assertWriteEnabled();
  normal_ = n / len;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setDirection(const AcGeVector3d& d) {
  double len = d.length();
  if (!(len > 1e-12)) return Acad::eInvalidInput;
  assertWriteEnabled();
  direction_ = d / len;
  rotation_ = std::atan2(direction_.y, direction_.x);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setRotation(double a) {
  assertWriteEnabled();
  rotation_ = a;
  direction_ = AcGeVector3d(std::cos(a), std::sin(a), 0);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setTextHeight(double h) {
  if (!(h > 0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  textHeight_ = h;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setAttachment(AttachmentPoint a) {
  if (a < kTopLeft || a > kBottomRight) return Acad::eInvalidInput;
  assertWriteEnabled();
  attachment_ = static_cast<int16_t>(a);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setFlowDirection(FlowDirection d) {
  if (d < kLtoR || d > kByStyle) return Acad::eInvalidInput;
  assertWriteEnabled();
  flow_ = static_cast<int16_t>(d);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setContents(const ACHAR* text) {
  assertWriteEnabled();
  contents_ = text ? text : u"";
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setTextStyle(AcDbObjectId style) {
  if (style.isNull()) return Acad::eNullObjectId;
  assertWriteEnabled();
  styleId_ = style;
  if (std::u16string n = zepk::db::recordName(style); !n.empty()) styleName_ = n;
  return Acad::eOk;
}

std::u16string AcDbMText::textStyleName() const { return zepk::db::recordNameOr(styleId_, styleName_); }

Acad::ErrorStatus AcDbMText::setTextStyleName(const ACHAR* name) {
  if (!name || !*name) return Acad::eInvalidInput;
  assertWriteEnabled();
  AcDbDatabase* db = database();
  styleId_ = db ? zepk::db::textStyleIdByName(db, name) : AcDbObjectId();
  styleName_ = styleId_.isNull() ? std::u16string(name) : zepk::db::recordName(styleId_);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setLineSpacingStyle(LineSpacingStyle s) {
  if (s != kAtLeast && s != kExactly) return Acad::eInvalidInput;
  assertWriteEnabled();
  spacingStyle_ = static_cast<int16_t>(s);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setLineSpacingFactor(double f) {
  if (!(f >= 0.25 && f <= 4.0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  spacingFactor_ = f;
  return Acad::eOk;
}

void AcDbMText::setActualExtents(double width, double height) {
  assertWriteEnabled();
  actualWidth_ = width;
  actualHeight_ = height;
}

Acad::ErrorStatus AcDbMText::setBackgroundFill(bool on) {
  assertWriteEnabled();
  bgFlags_ = on ? (bgFlags_ | kBackgroundColor) : (bgFlags_ & ~(kBackgroundColor | kBackgroundWindowColor));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setUseBackgroundColor(bool on) {
  assertWriteEnabled();
  bgFlags_ = on ? (bgFlags_ | kBackgroundWindowColor) : (bgFlags_ & ~kBackgroundWindowColor);
  return Acad::eOk;
}

AcCmColor AcDbMText::backgroundFillColor() const {
  AcCmColor c;
  if (bgTrueColor_ >= 0) c.setRGB(static_cast<Adesk::UInt32>(bgTrueColor_));
  else c.setColorIndex(static_cast<Adesk::UInt16>(bgColorIndex_));
  if (!bgColorName_.empty()) c.setNamesFromDictionaryKey(bgColorName_.c_str());
  return c;
}

Acad::ErrorStatus AcDbMText::setBackgroundFillColor(const AcCmColor& c) {
  assertWriteEnabled();
  bgColorIndex_ = static_cast<int16_t>(c.colorIndex());
  bgTrueColor_ = c.isByColor() ? static_cast<int32_t>(c.rgb()) : -1;
  bgColorName_ = c.getDictionaryKey();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setBackgroundScaleFactor(double s) {
  if (!(s >= 1.0 && s <= 5.0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  bgScale_ = s;
  return Acad::eOk;
}

AcCmTransparency AcDbMText::backgroundTransparency() const {
  AcCmTransparency t;
  t.serializeIn(static_cast<Adesk::UInt32>(bgTransparency_));
  return t;
}

Acad::ErrorStatus AcDbMText::setBackgroundTransparency(const AcCmTransparency& t) {
  if (t.isInvalid()) return Acad::eInvalidInput;
  assertWriteEnabled();
  bgTransparency_ = static_cast<int32_t>(t.serializeOut());
  return Acad::eOk;
}
