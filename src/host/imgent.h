// Raster images (IMAGE) and wipeouts (WIPEOUT). An image is placed by its
// insertion point (lower left corner) and the vectors of one pixel along
// its bottom and left edges (groups 11 and 12); its clip boundary is in
// pixel coordinates: the first pixel's centre at (0, 0) in the top left
// corner, y downwards. A
// wipeout is an image without a picture: a polygon that hides what lies
// below it.
#pragma once

#include <vector>

#include "host/dbents.h"

class AcDbRasterImage : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbRasterImage);
  AcDbRasterImage();

  enum ClipBoundaryType { kInvalid = 0, kRect = 1, kPoly = 2 };
  // Display flags (group 70).
  enum ImageDisplayOpt { kShow = 1, kShowUnAligned = 2, kClip = 4, kTransparent = 8 };

  // The image definition object (IMAGEDEF) and its reactor.
  AcDbObjectId imageDefId() const { return imageDef_; }
  Acad::ErrorStatus setImageDefId(AcDbObjectId id);
  AcDbObjectId reactorId() const { return imageDefReactor_; }
  Acad::ErrorStatus setReactorId(AcDbObjectId id);

  // Insertion point, and the vectors of the whole image along its bottom
  // and left edges.
  Acad::ErrorStatus setOrientation(const AcGePoint3d& origin, const AcGeVector3d& uCorner,
                                   const AcGeVector3d& vOnPlane);
  void getOrientation(AcGePoint3d& origin, AcGeVector3d& u, AcGeVector3d& v) const;
  // The image's size in pixels.
  AcGeVector2d imageSize() const { return AcGeVector2d(size_.x, size_.y); }
  Acad::ErrorStatus setImageSize(const AcGeVector2d& size);

  ClipBoundaryType clipBoundaryType() const { return static_cast<ClipBoundaryType>(clipType_); }
  const AcGePoint2dArray& clipBoundary() const { return clip_; }
  // A rectangle by two corners or a polygon of three or more points (closed
  // by repeating the first, as files keep it); eInvalidInput otherwise.
  Acad::ErrorStatus setClipBoundary(ClipBoundaryType type, const AcGePoint2dArray& points);
  bool isClipped() const { return clipping_ != 0; }
  Acad::ErrorStatus setClipped(bool on);
  bool isClipInverted() const { return clipMode_; }
  Acad::ErrorStatus setClipInverted(bool inverted);
  bool isSetDisplayOpt(ImageDisplayOpt option) const { return displayFlags_ & option; }
  Acad::ErrorStatus setDisplayOpt(ImageDisplayOpt option, bool on);
  Adesk::Int8 brightness() const { return static_cast<Adesk::Int8>(brightness_); }
  Acad::ErrorStatus setBrightness(Adesk::Int8 value);
  Adesk::Int8 contrast() const { return static_cast<Adesk::Int8>(contrast_); }
  Acad::ErrorStatus setContrast(Adesk::Int8 value);
  Adesk::Int8 fade() const { return static_cast<Adesk::Int8>(fade_); }
  Acad::ErrorStatus setFade(Adesk::Int8 value);

  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 protected:
  friend struct zepk::db::EntityAccess;
  int32_t classVersion_ = 0;
  AcGePoint3d origin_;
  AcGeVector3d u_ = AcGeVector3d(1, 0, 0);
  AcGeVector3d v_ = AcGeVector3d(0, 1, 0);
  AcGePoint2d size_ = AcGePoint2d(1, 1);
  AcDbObjectId imageDef_;
  int16_t displayFlags_ = 3;
  int16_t clipping_ = 0;
  int16_t brightness_ = 50, contrast_ = 50, fade_ = 0;
  AcDbObjectId imageDefReactor_;
  int16_t clipType_ = kRect;
  AcGePoint2dArray clip_;
  bool clipMode_ = false;
};

// A wipeout: filed under the marker "AcDbWipeout" with the image's fields.
class AcDbWipeout : public AcDbRasterImage {
 public:
  ACRX_DECLARE_MEMBERS(AcDbWipeout);
  AcDbWipeout();

  // The polygon in world coordinates (in the plane z = the origin's):
  // sets the orientation to the points' bounding square and the clip
  // boundary to the points in its pixel coordinates, closed. Fewer than
  // three points are refused (eInvalidInput).
  Acad::ErrorStatus setFrom(const AcGePoint2dArray& points, const AcGeVector3d& normal = AcGeVector3d(0, 0, 1));
  // The boundary in world coordinates.
  void getVertices(AcGePoint3dArray& vertices) const;

  ZEPK_DB_ENTITY_FILERS;
};
