// Colours and transparency of entities.
//
// A colour is a method and a value: ByLayer, ByBlock, an index of the
// 256-colour palette (ACI), or a true colour given by red, green and blue.
// In DXF the index is group 62 (256 ByLayer, 0 ByBlock), a true colour
// group 420 (0x00RRGGBB, written with the nearest index in 62 for readers
// that know only indices), and a colour-book colour group 430
// ("BOOK$NAME"). Transparency is group 440: ByLayer when absent.
#pragma once

#include <cstdint>
#include <string>

#include "host/acadstrc.h"
#include "host/adesk.h"
#include "host/ads.h"

class AcCmEntityColor {
 public:
  enum ColorMethod : Adesk::UInt8 {
    kByLayer = 0xC0,
    kByBlock = 0xC1,
    kByColor = 0xC2,
    kByACI = 0xC3,
    kByPen = 0xC4,
    kForeground = 0xC5,
    kLayerOff = 0xC6,
    kLayerFrozen = 0xC7,
    kNone = 0xC8,
  };
  enum ACIcolorMethod {
    kACIbyBlock = 0,
    kACIRed = 1,
    kACIYellow = 2,
    kACIGreen = 3,
    kACICyan = 4,
    kACIBlue = 5,
    kACIMagenta = 6,
    kACIforeground = 7,
    kACIstandard = 7,
    kACImaxStandard = 255,
    kACIbyLayer = 256,
    kACInone = 257,
  };

  AcCmEntityColor() = default;
  AcCmEntityColor(ColorMethod method) { setColorMethod(method); }
  AcCmEntityColor(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) { setRGB(red, green, blue); }

  ColorMethod colorMethod() const { return method_; }
  // Setting a method keeps the value where it still means something: an
  // index stays an index, a colour stays a colour.
  Acad::ErrorStatus setColorMethod(ColorMethod method);
  bool isByLayer() const { return method_ == kByLayer; }
  bool isByBlock() const { return method_ == kByBlock; }
  bool isByColor() const { return method_ == kByColor; }
  bool isByACI() const { return method_ == kByACI; }
  bool isByPen() const { return method_ == kByPen; }
  bool isForeground() const { return method_ == kForeground; }
  bool isNone() const { return method_ == kNone; }
  Acad::ErrorStatus setByLayer() { return setColorMethod(kByLayer); }
  Acad::ErrorStatus setByBlock() { return setColorMethod(kByBlock); }

  // The index: 256 ByLayer, 0 ByBlock, 7 the foreground, 257 none, and for
  // a true colour the nearest index of the palette.
  Adesk::UInt16 colorIndex() const;
  // 0 makes the colour ByBlock, 256 ByLayer, 257 none; 1 to 255 an index.
  // Anything else is refused (eInvalidInput) and changes nothing.
  Acad::ErrorStatus setColorIndex(Adesk::UInt16 colorIndex);
  // A true colour.
  Acad::ErrorStatus setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue);
  Acad::ErrorStatus setRGB(Adesk::UInt32 rgb) {
    return setRGB(Adesk::UInt8(rgb >> 16), Adesk::UInt8(rgb >> 8), Adesk::UInt8(rgb));
  }
  // The components: of a true colour as set, of an index from the palette,
  // 0 otherwise.
  Adesk::UInt8 red() const;
  Adesk::UInt8 green() const;
  Adesk::UInt8 blue() const;
  // 0x00RRGGBB as above.
  Adesk::UInt32 rgb() const;

  // Method and value in one number, method in the high byte.
  Adesk::UInt32 color() const { return (Adesk::UInt32(method_) << 24) | (value_ & 0xFFFFFF); }
  Acad::ErrorStatus setColor(Adesk::UInt32 color);

  // The palette: 0x00RRGGBB of an index (0 for 0), and the index (1 to
  // 255) whose colour is nearest to the one given.
  static Adesk::UInt32 lookUpRGB(Adesk::UInt8 colorIndex);
  static Adesk::UInt8 lookUpACI(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue);

  bool operator==(const AcCmEntityColor& o) const { return method_ == o.method_ && value_ == o.value_; }
  bool operator!=(const AcCmEntityColor& o) const { return !(*this == o); }

 protected:
  ColorMethod method_ = kByLayer;
  // The index for kByACI (256 for ByLayer, 0 ByBlock, 7 foreground), or
  // 0x00RRGGBB for kByColor.
  Adesk::UInt32 value_ = kACIbyLayer;
};

// An entity's colour: the method and value, and for a colour taken from a
// colour book its names.
class AcCmColor : public AcCmEntityColor {
 public:
  AcCmColor() = default;
  AcCmColor(const AcCmEntityColor& c) : AcCmEntityColor(c) {}

  AcCmEntityColor entityColor() const { return *this; }
  // Setting any value drops the book names; setNames puts them back.
  Acad::ErrorStatus setColorMethod(ColorMethod method);
  Acad::ErrorStatus setColorIndex(Adesk::UInt16 colorIndex);
  Acad::ErrorStatus setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue);
  Acad::ErrorStatus setRGB(Adesk::UInt32 rgb) {
    return setRGB(Adesk::UInt8(rgb >> 16), Adesk::UInt8(rgb >> 8), Adesk::UInt8(rgb));
  }
  Acad::ErrorStatus setColor(Adesk::UInt32 color);
  Acad::ErrorStatus setByLayer() { return setColorMethod(kByLayer); }
  Acad::ErrorStatus setByBlock() { return setColorMethod(kByBlock); }

  // The colour's name in its book, and the book's.
  const std::u16string& colorName() const { return colorName_; }
  const std::u16string& bookName() const { return bookName_; }
  Acad::ErrorStatus setNames(const ACHAR* colorName, const ACHAR* bookName = nullptr);
  // "BOOK$NAME" as DXF group 430 holds it; "" without a name.
  std::u16string getDictionaryKey() const;
  // Reads "BOOK$NAME" (a name alone is a name without a book).
  Acad::ErrorStatus setNamesFromDictionaryKey(const ACHAR* key);

  bool operator==(const AcCmColor& o) const {
    return AcCmEntityColor::operator==(o) && colorName_ == o.colorName_ && bookName_ == o.bookName_;
  }
  bool operator!=(const AcCmColor& o) const { return !(*this == o); }

 private:
  std::u16string colorName_, bookName_;
};

// Transparency: ByLayer, ByBlock, or an alpha from 0 (clear) to 255
// (opaque). DXF group 440 holds 0x020000AA for an alpha and 0x01000000 for
// ByBlock; ByLayer is the group's absence.
class AcCmTransparency {
 public:
  enum transparencyMethod : Adesk::UInt8 {
    kByLayer = 0,
    kByBlock = 1,
    kByAlpha = 2,
    kErrorValue = 3,
  };
  enum { kTransparencyByLayer = 0, kTransparencyByBlock = 0x01000000, kTransparencyByAlpha = 0x02000000 };

  AcCmTransparency() = default;
  explicit AcCmTransparency(Adesk::UInt8 alpha) { setAlpha(alpha); }

  transparencyMethod method() const { return method_; }
  void setMethod(transparencyMethod m) { method_ = m; }
  bool isByLayer() const { return method_ == kByLayer; }
  bool isByBlock() const { return method_ == kByBlock; }
  bool isByAlpha() const { return method_ == kByAlpha; }
  bool isClear() const { return method_ == kByAlpha && alpha_ == 0; }
  bool isSolid() const { return method_ == kByAlpha && alpha_ == 255; }
  bool isInvalid() const { return method_ == kErrorValue; }

  Adesk::UInt8 alpha() const { return alpha_; }
  void setAlpha(Adesk::UInt8 alpha) {
    method_ = kByAlpha;
    alpha_ = alpha;
  }
  // Opacity as a fraction: 1.0 opaque, 0.0 clear.
  double alphaPercent() const { return alpha_ / 255.0; }
  void setAlphaPercent(double fraction);

  // The value of group 440, and back; a value of no known form gives
  // kErrorValue.
  Adesk::UInt32 serializeOut() const;
  void serializeIn(Adesk::UInt32 value);

  bool operator==(const AcCmTransparency& o) const {
    return method_ == o.method_ && (method_ != kByAlpha || alpha_ == o.alpha_);
  }
  bool operator!=(const AcCmTransparency& o) const { return !(*this == o); }

 private:
  transparencyMethod method_ = kByLayer;
  Adesk::UInt8 alpha_ = 255;
};
