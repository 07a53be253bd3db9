// Multiline styles.
#include <algorithm>

#include "host/db/dbobjects.h"
#include "host/db/internal.h"
#include "host/dbmstyle.h"

using namespace zepk::db;

namespace {

AcRxObject* makeMlineStyle() { return new AcDbMlineStyle; }

constexpr double kDegrees = 180.0 / 3.14159265358979323846;

}  // namespace

ACRX_DEFINE_HOST_CLASS(AcDbMlineStyle, AcDbObject, u"MLINESTYLE", makeMlineStyle)

const ClassSchema& AcDbMlineStyle::schema() {
  using M = AcDbMlineStyle;
  static const ClassSchema s{
      u"AcDbMlineStyle",
      {
          field<&M::name_>(2, "Name"),
          field<&M::flags_>(70, "Flags", 0),
          field<&M::description_>(3, "Description"),
          field<&M::fillColor_>(62, "FillColor", 256),
          field<&M::startAngle_>(51, "StartAngle", 90.0),
          field<&M::endAngle_>(52, "EndAngle", 90.0),
          // The lines: their count, then offset, colour and linetype of each.
          custom(
              {71, 49},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                auto* m = static_cast<const M*>(o);
                f->writeInt16(71, static_cast<Adesk::Int16>(m->elements_.size()));
                for (const Element& e : m->elements_) {
                  f->writeDouble(49, e.offset);
                  f->writeInt16(62, e.color);
                  f->writeString(6, e.linetype);
                }
                return f->filerStatus();
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                auto* m = static_cast<M*>(o);
                for (int c = f->peekCode(); !f->atEOF() && (c == 71 || c == 49 || c == 62 || c == 6); c = f->peekCode()) {
                  if (c != 71 && c != 49 && m->elements_.empty()) break;
                  const DxfItem* it = f->next();
                  if (c == 71) continue;  // the count is what the lines are
                  if (c == 49) {
                    if (it->kind != DxfItem::Real && it->kind != DxfItem::Int) return Acad::eInvalidResBuf;
                    m->elements_.emplace_back();
                    m->elements_.back().offset = it->kind == DxfItem::Int ? static_cast<double>(it->i) : it->p[0];
                  } else if (c == 62) {
                    if (it->kind != DxfItem::Int) return Acad::eInvalidResBuf;
                    m->elements_.back().color = static_cast<Adesk::Int16>(it->i);
                  } else {
                    if (it->kind != DxfItem::String) return Acad::eInvalidResBuf;
                    m->elements_.back().linetype = it->s;
                  }
                }
                return f->filerStatus();
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                auto* m = static_cast<const M*>(o);
                f->writeInt32(static_cast<Adesk::Int32>(m->elements_.size()));
                for (const Element& e : m->elements_) {
                  f->writeDouble(e.offset);
                  f->writeInt16(e.color);
                  f->writeString(e.linetype);
                }
                return f->filerStatus();
              },
              [](AcDbObject* o, AcDbDwgFiler* f) {
                auto* m = static_cast<M*>(o);
                m->elements_.clear();
                Adesk::Int32 n = 0;
                f->readInt32(&n);
                for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
                  Element e;
                  f->readDouble(&e.offset);
                  f->readInt16(&e.color);
                  f->readString(&e.linetype);
                  m->elements_.push_back(std::move(e));
                }
                return f->filerStatus();
              }),
      }};
  return s;
}

Acad::ErrorStatus AcDbMlineStyle::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dwgOutFields(f);
  return es != Acad::eOk ? es : schema().dwgOut(this, f);
}

Acad::ErrorStatus AcDbMlineStyle::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbObject::dwgInFields(f);
  return es != Acad::eOk ? es : schema().dwgIn(this, f);
}

Acad::ErrorStatus AcDbMlineStyle::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dxfOutFields(f);
  return es != Acad::eOk ? es : schema().dxfOut(this, f);
}

Acad::ErrorStatus AcDbMlineStyle::dxfInFields(AcDbDxfFiler* f) {
  elements_.clear();
  Acad::ErrorStatus es = AcDbObject::dxfInFields(f);
  return es != Acad::eOk ? es : schema().dxfIn(this, f);
}

void AcDbMlineStyle::initMlineStyle() {
  assertWriteEnabled();
  flags_ = 0;
  description_.clear();
  fillColor_ = 256;
  startAngle_ = endAngle_ = 90.0;
  elements_ = {{0.5, 256, u"BYLAYER"}, {-0.5, 256, u"BYLAYER"}};
}

Acad::ErrorStatus AcDbMlineStyle::setName(const ACHAR* name) {
  if (!name || !*name) return Acad::eInvalidInput;
  assertWriteEnabled();
  name_ = name;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMlineStyle::setDescription(const ACHAR* text) {
  assertWriteEnabled();
  description_ = text ? text : u"";
  return Acad::eOk;
}

void AcDbMlineStyle::setFlags(Adesk::Int16 flags) {
  assertWriteEnabled();
  flags_ = flags;
}

double AcDbMlineStyle::startAngle() const { return startAngle_ / kDegrees; }
double AcDbMlineStyle::endAngle() const { return endAngle_ / kDegrees; }

void AcDbMlineStyle::setStartAngle(double a) {
  assertWriteEnabled();
  startAngle_ = a * kDegrees;
}

void AcDbMlineStyle::setEndAngle(double a) {
  assertWriteEnabled();
  endAngle_ = a * kDegrees;
}

Acad::ErrorStatus AcDbMlineStyle::addElement(double offset, Adesk::Int16 color, const ACHAR* linetype) {
  if (elements_.size() >= 16) return Acad::eInvalidInput;  // the host's limit
  assertWriteEnabled();
  Element e{offset, color, linetype && *linetype ? linetype : u"BYLAYER"};
  auto at = std::find_if(elements_.begin(), elements_.end(), [&](const Element& x) { return x.offset < offset; });
  elements_.insert(at, std::move(e));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMlineStyle::removeElementAt(int index) {
  if (index < 0 || index >= static_cast<int>(elements_.size())) return Acad::eInvalidIndex;
  assertWriteEnabled();
  elements_.erase(elements_.begin() + index);
  return Acad::eOk;
}
