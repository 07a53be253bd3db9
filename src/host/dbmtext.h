// Multiline text (MTEXT): contents with formatting codes (\P a paragraph
// break), placed by an attachment point within a reference rectangle.
#pragma once

#include <string>

#include "host/dbents.h"

class AcDbMText : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbMText);
  AcDbMText() = default;

  enum AttachmentPoint {
    kTopLeft = 1, kTopCenter = 2, kTopRight = 3,
    kMiddleLeft = 4, kMiddleCenter = 5, kMiddleRight = 6,
    kBottomLeft = 7, kBottomCenter = 8, kBottomRight = 9,
  };
  enum FlowDirection { kLtoR = 1, kRtoL = 2, kTtoB = 3, kBtoT = 4, kByStyle = 5 };
  enum LineSpacingStyle { kAtLeast = 1, kExactly = 2 };
  // Background fill flags (group 90).
  enum { kBackgroundColor = 1, kBackgroundWindowColor = 2, kBackgroundTextFrame = 16 };

  AcGePoint3d location() const { return location_; }
  Acad::ErrorStatus setLocation(const AcGePoint3d& p);
  AcGeVector3d normal() const { return normal_; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);
  // The direction of the text's X axis, in world coordinates.
  AcGeVector3d direction() const { return direction_; }
  Acad::ErrorStatus setDirection(const AcGeVector3d& d);
  double rotation() const { return rotation_; }
  // Sets the rotation and the direction with it.
  Acad::ErrorStatus setRotation(double a);
  double width() const { return width_; }
  Acad::ErrorStatus setWidth(double w);
  // The height of the reference rectangle (group 46; 0 for none).
  double height() const { return definedHeight_; }
  Acad::ErrorStatus setHeight(double h);
  double textHeight() const { return textHeight_; }
  // A height of 0 or less is refused (eInvalidInput).
  Acad::ErrorStatus setTextHeight(double h);
  AttachmentPoint attachment() const { return static_cast<AttachmentPoint>(attachment_); }
  Acad::ErrorStatus setAttachment(AttachmentPoint a);
  FlowDirection flowDirection() const { return static_cast<FlowDirection>(flow_); }
  Acad::ErrorStatus setFlowDirection(FlowDirection d);
  std::u16string contents() const { return contents_; }
  const ACHAR* contentsConst() const { return contents_.c_str(); }
  Acad::ErrorStatus setContents(const ACHAR* text);
  AcDbObjectId textStyle() const { return styleId_; }
  Acad::ErrorStatus setTextStyle(AcDbObjectId style);
  std::u16string textStyleName() const;
  Acad::ErrorStatus setTextStyleName(const ACHAR* name);
  LineSpacingStyle lineSpacingStyle() const { return static_cast<LineSpacingStyle>(spacingStyle_); }
  Acad::ErrorStatus setLineSpacingStyle(LineSpacingStyle s);
  double lineSpacingFactor() const { return spacingFactor_; }
  // A factor outside [0.25, 4] is refused (eInvalidInput).
  Acad::ErrorStatus setLineSpacingFactor(double f);
  // The extents of the text as last laid out (groups 42 and 43).
  double actualWidth() const { return actualWidth_; }
  double actualHeight() const { return actualHeight_; }
  void setActualExtents(double width, double height);

  bool backgroundFillOn() const { return bgFlags_ & (kBackgroundColor | kBackgroundWindowColor); }
  Acad::ErrorStatus setBackgroundFill(bool on);
  bool useBackgroundColorOn() const { return bgFlags_ & kBackgroundWindowColor; }
  Acad::ErrorStatus setUseBackgroundColor(bool on);
  Adesk::Int32 backgroundFlags() const { return bgFlags_; }
  AcCmColor backgroundFillColor() const;
  Acad::ErrorStatus setBackgroundFillColor(const AcCmColor& c);
  double backgroundScaleFactor() const { return bgScale_; }
  Acad::ErrorStatus setBackgroundScaleFactor(double s);
  AcCmTransparency backgroundTransparency() const;
  Acad::ErrorStatus setBackgroundTransparency(const AcCmTransparency& t);

  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 private:
  friend struct zepk::db::EntityAccess;
  AcGePoint3d location_;
  double textHeight_ = 2.5;
  double width_ = 0.0;
  double definedHeight_ = 0.0;
  int16_t attachment_ = kTopLeft;
  int16_t flow_ = kLtoR;
  std::u16string contents_;
  AcDbObjectId styleId_;
  std::u16string styleName_ = u"Standard";
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
  AcGeVector3d direction_ = AcGeVector3d(1, 0, 0);
  double actualWidth_ = 0.0, actualHeight_ = 0.0;
  double rotation_ = 0.0;
  int16_t spacingStyle_ = kAtLeast;
  double spacingFactor_ = 1.0;
  double bgScale_ = 1.5;
  int32_t bgFlags_ = 0;
  int16_t bgColorIndex_ = 0;
  int32_t bgTrueColor_ = -1;  // -1: none
  std::u16string bgColorName_;
  int32_t bgTransparency_ = 0;
};
