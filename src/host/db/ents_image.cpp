// Raster images (IMAGE) and wipeouts (WIPEOUT).
#include <algorithm>

#include "host/db/ents_internal.h"
#include "host/gemat3d.h"
#include "host/imgent.h"

using zepk::db::ClassSchema;
using zepk::db::customPart;
using zepk::db::DxfItem;
using zepk::db::field;
using zepk::db::FieldType;
using zepk::db::kNone;
using zepk::db::kOptional;
using zepk::db::MemoryDxfFiler;

ZEPK_DEFINE_ENTITY_CLASS(AcDbRasterImage, AcDbEntity, u"IMAGE")
ZEPK_DEFINE_ENTITY_FILERS(AcDbRasterImage, AcDbEntity)

const ClassSchema& AcDbRasterImage::schema() {
  static const ClassSchema s{
      u"AcDbRasterImage",
      {
          field<&AcDbRasterImage::classVersion_>(90, "ClassVersion", 0),
          field<&AcDbRasterImage::origin_>(10, "Origin"),
          field<&AcDbRasterImage::u_>(11, "UVector", AcGeVector3d(1, 0, 0)),
          field<&AcDbRasterImage::v_>(12, "VVector", AcGeVector3d(0, 1, 0)),
          field<&AcDbRasterImage::size_>(13, "ImageSize", AcGePoint2d(1, 1)),
          field<&AcDbRasterImage::imageDef_>(340, "ImageDef", AcDbObjectId(), kNone, FieldType::HardPointer),
          field<&AcDbRasterImage::displayFlags_>(70, "DisplayOptions", 3),
          field<&AcDbRasterImage::clipping_>(280, "Clipping", 0),
          field<&AcDbRasterImage::brightness_>(281, "Brightness", 50),
          field<&AcDbRasterImage::contrast_>(282, "Contrast", 50),
          field<&AcDbRasterImage::fade_>(283, "Fade", 0),
          field<&AcDbRasterImage::imageDefReactor_>(360, "ImageDefReactor", AcDbObjectId(), kNone,
                                                    FieldType::HardOwner),
          field<&AcDbRasterImage::clipType_>(71, "ClipBoundaryType", kRect),
          // The clip boundary: 91 its count, then 14 each point.
          customPart(
              {91},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                const auto& clip = static_cast<const AcDbRasterImage*>(o)->clip_;
                f->writeInt32(91, static_cast<Adesk::Int32>(clip.size()));
                for (const AcGePoint2d& p : clip) f->writePoint2d(14, p);
                return f->filerStatus();
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                auto& clip = static_cast<AcDbRasterImage*>(o)->clip_;
                clip.clear();
                f->next();
                while (const DxfItem* it = zepk::db::take(f, 14)) {
                  if (it->kind != DxfItem::Point) return Acad::eInvalidResBuf;
                  clip.emplace_back(it->p[0], it->p[1]);
                }
                return Acad::eOk;
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                const auto& clip = static_cast<const AcDbRasterImage*>(o)->clip_;
                f->writeInt32(static_cast<Adesk::Int32>(clip.size()));
                for (const AcGePoint2d& p : clip) f->writePoint2d(p);
                return f->filerStatus();
              },
              [](AcDbObject* o, AcDbDwgFiler* f) {
                auto& clip = static_cast<AcDbRasterImage*>(o)->clip_;
                Adesk::Int32 n = 0;
                f->readInt32(&n);
                if (n < 0) return Acad::eFilerError;
                clip.assign(static_cast<size_t>(n), AcGePoint2d());
                for (AcGePoint2d& p : clip) f->readPoint2d(&p);
                return f->filerStatus();
              },
              [](AcDbObject* o) { static_cast<AcDbRasterImage*>(o)->clip_.clear(); }),
          field<&AcDbRasterImage::clipMode_>(290, "ClipInverted", false, kOptional),
      }};
  return s;
}

AcDbRasterImage::AcDbRasterImage() = default;

Acad::ErrorStatus AcDbRasterImage::setImageDefId(AcDbObjectId id) {
  assertWriteEnabled();
  imageDef_ = id;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::setReactorId(AcDbObjectId id) {
  assertWriteEnabled();
  imageDefReactor_ = id;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::setOrientation(const AcGePoint3d& origin, const AcGeVector3d& uCorner,
                                                  const AcGeVector3d& vOnPlane) {
  if (uCorner.length() == 0 || vOnPlane.length() == 0 || uCorner.crossProduct(vOnPlane).length() == 0)
    return Acad::eInvalidInput;
  assertWriteEnabled();
  origin_ = origin;
  u_ = uCorner / size_.x;
  v_ = vOnPlane / size_.y;
  return Acad::eOk;
}

void AcDbRasterImage::getOrientation(AcGePoint3d& origin, AcGeVector3d& u, AcGeVector3d& v) const {
  origin = origin_;
  u = u_ * size_.x;
  v = v_ * size_.y;
}

Acad::ErrorStatus AcDbRasterImage::setImageSize(const AcGeVector2d& size) {
  if (!(size.x > 0 && size.y > 0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  // The image keeps its extent in the drawing.
  u_ = u_ * (size_.x / size.x);
  v_ = v_ * (size_.y / size.y);
  size_ = AcGePoint2d(size.x, size.y);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::setClipBoundary(ClipBoundaryType type, const AcGePoint2dArray& points) {
  if (type == kRect ? points.size() != 2 : type == kPoly ? points.size() < 3 : true) return Acad::eInvalidInput;
  assertWriteEnabled();
  clipType_ = static_cast<int16_t>(type);
  clip_ = points;
  if (type == kPoly && !clip_.front().isEqualTo(clip_.back())) clip_.push_back(clip_.front());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::setClipped(bool on) {
  assertWriteEnabled();
  clipping_ = on ? 1 : 0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::setClipInverted(bool inverted) {
  assertWriteEnabled();
  clipMode_ = inverted;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImage::setDisplayOpt(ImageDisplayOpt option, bool on) {
  assertWriteEnabled();
  displayFlags_ = static_cast<int16_t>(on ? (displayFlags_ | option) : (displayFlags_ & ~option));
  return Acad::eOk;
}

#define ZEPK_PERCENT_SETTER(NAME, MEMBER)                  \
  Acad::ErrorStatus AcDbRasterImage::NAME(Adesk::Int8 v) { \
    if (v < 0 || v > 100) return Acad::eInvalidInput;      \
    assertWriteEnabled();                                  \
    MEMBER = v;                                            \
    return Acad::eOk;                                      \
  }
ZEPK_PERCENT_SETTER(setBrightness, brightness_)
ZEPK_PERCENT_SETTER(setContrast, contrast_)
ZEPK_PERCENT_SETTER(setFade, fade_)

// ---------------------------------------------------------------- wipeout

ZEPK_DEFINE_ENTITY_CLASS(AcDbWipeout, AcDbRasterImage, u"WIPEOUT")

// The image's fields under the wipeout's own marker.
const ClassSchema& AcDbWipeout::schema() {
  static const ClassSchema s{u"AcDbWipeout", AcDbRasterImage::schema().fields()};
  return s;
}

Acad::ErrorStatus AcDbWipeout::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbEntity::dwgOutFields(f);
  return es != Acad::eOk ? es : zepk::db::dwgOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbWipeout::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbEntity::dwgInFields(f);
  return es != Acad::eOk ? es : zepk::db::dwgInPart(schema(), this, f);
}

Acad::ErrorStatus AcDbWipeout::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbEntity::dxfOutFields(f);
  return es != Acad::eOk ? es : zepk::db::dxfOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbWipeout::dxfInFields(AcDbDxfFiler* f) {
  Acad::ErrorStatus es = AcDbEntity::dxfInFields(f);
  return es != Acad::eOk ? es : zepk::db::dxfInPart(schema(), this, f);
}

AcDbWipeout::AcDbWipeout() {
  displayFlags_ = kShow | kShowUnAligned | kClip;
  clipping_ = 1;
  clipType_ = kPoly;
}

Acad::ErrorStatus AcDbWipeout::setFrom(const AcGePoint2dArray& points, const AcGeVector3d& normal) {
  if (points.size() < 3 || normal.length() == 0) return Acad::eInvalidInput;
  double minX = points[0].x, minY = points[0].y, maxX = minX, maxY = minY;
  for (const AcGePoint2d& p : points) {
    minX = std::min(minX, p.x), maxX = std::max(maxX, p.x);
    minY = std::min(minY, p.y), maxY = std::max(maxY, p.y);
  }
  double w = maxX - minX, h = maxY - minY;
  if (!(w > 0 && h > 0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal);
  origin_ = AcGePoint3d(minX, minY, 0);
  origin_.transformBy(toWorld);
  u_ = AcGeVector3d(w, 0, 0);
  u_.transformBy(toWorld);
  v_ = AcGeVector3d(0, h, 0);
  v_.transformBy(toWorld);
  size_ = AcGePoint2d(1, 1);
  clipType_ = kPoly;
  clipping_ = 1;
  clip_.clear();
  for (const AcGePoint2d& p : points) clip_.emplace_back((p.x - minX) / w - 0.5, 0.5 - (p.y - minY) / h);
  if (!clip_.front().isEqualTo(clip_.back())) clip_.push_back(clip_.front());
  return Acad::eOk;
}

// Pixel (x, y), y downwards from the top, to the drawing.
void AcDbWipeout::getVertices(AcGePoint3dArray& vertices) const {
  vertices.clear();
  AcGePoint2dArray pts = clip_;
  if (clipType_ == kRect && pts.size() == 2) {
    pts = {pts[0], AcGePoint2d(pts[1].x, pts[0].y), pts[1], AcGePoint2d(pts[0].x, pts[1].y), pts[0]};
  }
  for (const AcGePoint2d& p : pts)
    vertices.push_back(origin_ + u_ * (p.x + 0.5) + v_ * (size_.y - 0.5 - p.y));
}
