// Symbol tables and their records: blocks, layers, linetypes, text styles,
// dimension styles, user coordinate systems, views, viewports and
// registered applications.
//
// A table owns its records and keeps them in the order they were added.
// Names are unique in a table and compare without regard to ASCII case;
// a record keeps its name as it was given. Erased records stay in the
// table (undo can bring them back) but lookups and iterators skip them.
// Records carry their fields in one schema each; groups of a record that
// this host does not know are kept and written back, so that nothing in a
// drawing is lost.
//
// Angles that the drawing file keeps in degrees (a text style's obliquing
// angle, a view's twist, a linetype element's rotation) are held as the
// file has them; the accessors give and take radians, as the host's
// interface does.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/dbcolor.h"
#include "host/dbents.h"
#include "host/dbmain.h"
#include "host/gepnt2d.h"
#include "host/gepnt3d.h"
#include "host/gevec2d.h"
#include "host/gevec3d.h"

namespace zepk::db {
struct DxfItem;
class ClassSchema;
template <class Rec, class Iter>
class SymbolTableOf;
}  // namespace zepk::db

class AcDbSymbolTable;
class AcDbSortentsTable;

// The names of the two spaces.
#define ACDB_MODEL_SPACE u"*Model_Space"
#define ACDB_PAPER_SPACE u"*Paper_Space"

// ---------------------------------------------------------------- records

class AcDbSymbolTableRecord : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSymbolTableRecord);
  AcDbSymbolTableRecord();
  ~AcDbSymbolTableRecord() override;

  // The name. getName(ACHAR*&) gives a copy that the caller frees with
  // delete[]; getName(const ACHAR*&) the record's own text, valid while
  // the record is open and unchanged.
  Acad::ErrorStatus getName(ACHAR*& name) const;
  Acad::ErrorStatus getName(const ACHAR*& name) const;
  Acad::ErrorStatus getName(std::u16string& name) const;
  const std::u16string& name() const { return name_; }
  // Names are 1 to 255 characters without < > / \ " : ; ? * | , = ` or
  // control characters (eInvalidSymbolTableName); a record the drawing
  // cannot do without (layer "0", the standard linetypes, the two spaces)
  // cannot be renamed (eNotApplicable). A name another record of the table
  // has is refused with eDuplicateRecordName.
  Acad::ErrorStatus setName(const ACHAR* name);
  // A record that comes from an external reference ("XREF|NAME", flag 16),
  // and one whose reference was resolved (flag 32).
  bool isDependent() const { return (flags_ & 16) != 0; }
  bool isResolved() const { return (flags_ & 32) != 0; }
  bool isRenamable() const { return !isDependent() && !isStandardRecord(); }
  // Whether the drawing needs this record (it cannot be erased or renamed).
  virtual bool isStandardRecord() const { return false; }

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 protected:
  // Whether a name may name a record of this kind.
  virtual bool isValidName(std::u16string_view name) const;
  // Called when the record goes into a table of a database (open for
  // write), to take what it needs from the drawing.
  virtual void addedToTable(AcDbDatabase* db) {}
  // Clears what the class keeps beyond its schema's ordinary fields,
  // before a DXF read.
  virtual void resetCustomData();
  Acad::ErrorStatus subErase(bool erasing) override;
  // Tells the owning table that the record's name or state changed.
  void nameChanged() const;

  std::u16string name_;
  // Group 70: the standard flags (16 dependent, 32 resolved, 64
  // referenced) and the kind's own bits (a layer's frozen 1 and locked 4,
  // a block's anonymous 1 ...).
  Adesk::Int16 flags_ = 0;
  // Groups of the record's class data that this host does not know.
  std::vector<zepk::db::DxfItem> kept_;

 private:
  friend class AcDbSymbolTable;
  friend struct AcDbSymbolTableAccess;
};

// A layer: group 70 holds frozen (1), frozen in new viewports (2) and
// locked (4); the colour is written negative when the layer is off.
class AcDbLayerTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbLayerTableRecord);
  static const zepk::db::ClassSchema& schema();

  bool isFrozen() const { return (flags_ & 1) != 0; }
  Acad::ErrorStatus setIsFrozen(bool frozen);
  bool isOff() const { return off_; }
  void setIsOff(bool off);
  bool isLocked() const { return (flags_ & 4) != 0; }
  void setIsLocked(bool locked);
  bool VPDFLT() const { return (flags_ & 2) != 0; }
  void setVPDFLT(bool frozen);
  bool isPlottable() const { return plottable_; }
  Acad::ErrorStatus setIsPlottable(bool plot);
  // The colour index, 1 to 255 (7 for a new layer).
  Adesk::Int16 colorIndex() const { return color_; }
  Acad::ErrorStatus setColorIndex(Adesk::Int16 index);
  // The true colour as 0x00RRGGBB, -1 when the layer has none.
  Adesk::Int32 trueColor() const { return trueColor_; }
  void setTrueColor(Adesk::Int32 rgb);
  // The same as a colour: an index, or a true colour (whose index is the
  // nearest of the palette). By layer, by block and none are refused
  // (eInvalidInput).
  AcCmColor color() const;
  Acad::ErrorStatus setColor(const AcCmColor& color);
  // The linetype; a layer put in a table without one gets "Continuous".
  AcDbObjectId linetypeObjectId() const;
  Acad::ErrorStatus setLinetypeObjectId(AcDbObjectId id);
  // A layer's weight is one of the widths or the default (kLnWtByLwDefault);
  // by layer and by block mean nothing here (eInvalidInput).
  AcDb::LineWeight lineWeight() const { return static_cast<AcDb::LineWeight>(lineWeight_); }
  Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight);
  AcDbObjectId plotStyleNameId() const { return plotStyle_; }
  Acad::ErrorStatus setPlotStyleName(AcDbObjectId id);

  bool isStandardRecord() const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 protected:
  void addedToTable(AcDbDatabase* db) override;
  void resetCustomData() override;

 private:
  friend struct AcDbSymbolTableAccess;
  Adesk::Int16 color_ = 7;
  Adesk::Int32 trueColor_ = -1;
  bool off_ = false;
  AcDbObjectId linetype_;
  // The linetype's name as a file gave it, until the linetype is found.
  std::u16string linetypeName_;
  bool plottable_ = true;
  Adesk::Int16 lineWeight_ = -3;
  AcDbObjectId plotStyle_;
};

// A linetype: its description and its pattern of dashes (positive),
// gaps (negative) and dots (0), each of which may carry a shape or a text.
class AcDbLinetypeTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbLinetypeTableRecord);
  AcDbLinetypeTableRecord();
  ~AcDbLinetypeTableRecord() override;
  static const zepk::db::ClassSchema& schema();

  Acad::ErrorStatus comments(const ACHAR*& text) const;
  const std::u16string& comments() const { return comments_; }
  Acad::ErrorStatus setComments(const ACHAR* text);
  Acad::ErrorStatus asciiDescription(const ACHAR*& text) const { return comments(text); }
  Acad::ErrorStatus setAsciiDescription(const ACHAR* text) { return setComments(text); }
  double patternLength() const { return patternLength_; }
  Acad::ErrorStatus setPatternLength(double length);
  int numDashes() const { return static_cast<int>(dashes_.size()); }
  // Grows with zero dashes or cuts the pattern to n.
  Acad::ErrorStatus setNumDashes(int n);
  // Element access; an index out of range gives 0 / a null id / "" and the
  // setters eInvalidIndex.
  double dashLengthAt(int index) const;
  Acad::ErrorStatus setDashLengthAt(int index, double length);
  AcDbObjectId shapeStyleAt(int index) const;
  Acad::ErrorStatus setShapeStyleAt(int index, AcDbObjectId styleId);
  int shapeNumberAt(int index) const;
  Acad::ErrorStatus setShapeNumberAt(int index, int shapeNumber);
  AcGeVector2d shapeOffsetAt(int index) const;
  Acad::ErrorStatus setShapeOffsetAt(int index, const AcGeVector2d& offset);
  double shapeScaleAt(int index) const;
  Acad::ErrorStatus setShapeScaleAt(int index, double scale);
  // In radians.
  double shapeRotationAt(int index) const;
  Acad::ErrorStatus setShapeRotationAt(int index, double rotation);
  // Whether the rotation is absolute (to the coordinate system) rather
  // than along the line.
  bool shapeIsUcsOrientedAt(int index) const;
  Acad::ErrorStatus setShapeIsUcsOrientedAt(int index, bool isUcsOriented);
  Acad::ErrorStatus textAt(int index, const ACHAR*& text) const;
  // Setting a text makes the element a text element; "" removes it.
  Acad::ErrorStatus setTextAt(int index, const ACHAR* text);

  bool isStandardRecord() const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  // One element of the pattern, as group codes 49 to 9 describe it.
  struct Dash {
    double length = 0.0;          // 49
    Adesk::Int16 flags = 0;       // 74: 1 absolute rotation, 2 text, 4 shape
    Adesk::Int16 shapeNumber = 0; // 75
    AcDbObjectId style;           // 340
    double scale = 1.0;           // 46
    double rotation = 0.0;        // 50, degrees
    AcGeVector2d offset;          // 44, 45
    std::u16string text;          // 9
  };
  const std::vector<Dash>& dashes() const { return dashes_; }

 protected:
  void resetCustomData() override;

 private:
  friend struct AcDbSymbolTableAccess;
  std::u16string comments_;
  Adesk::Int16 alignment_ = 65;  // 'A', the only alignment there is
  double patternLength_ = 0.0;
  std::vector<Dash> dashes_;
};

// A text style: the font files and the default size, width and slant.
class AcDbTextStyleTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbTextStyleTableRecord);
  static const zepk::db::ClassSchema& schema();

  Acad::ErrorStatus fileName(const ACHAR*& name) const;
  const std::u16string& fileName() const { return fileName_; }
  Acad::ErrorStatus setFileName(const ACHAR* name);
  Acad::ErrorStatus bigFontFileName(const ACHAR*& name) const;
  const std::u16string& bigFontFileName() const { return bigFontFileName_; }
  Acad::ErrorStatus setBigFontFileName(const ACHAR* name);
  // The fixed height; 0 means texts choose theirs.
  double textSize() const { return textSize_; }
  Acad::ErrorStatus setTextSize(double size);
  double xScale() const { return xScale_; }
  Acad::ErrorStatus setXScale(double scale);
  // In radians.
  double obliquingAngle() const;
  Acad::ErrorStatus setObliquingAngle(double angle);
  // The height last used with the style.
  double priorSize() const { return priorSize_; }
  Acad::ErrorStatus setPriorSize(double size);
  bool isShapeFile() const { return (flags_ & 1) != 0; }
  void setIsShapeFile(bool shape);
  bool isVertical() const { return (flags_ & 4) != 0; }
  void setIsVertical(bool vertical);
  // Group 71: 2 backwards, 4 upside down.
  Adesk::UInt8 flagBits() const { return static_cast<Adesk::UInt8>(generation_); }
  void setFlagBits(Adesk::UInt8 bits);

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 private:
  friend struct AcDbSymbolTableAccess;
  double textSize_ = 0.0;
  double xScale_ = 1.0;
  double oblique_ = 0.0;  // degrees
  Adesk::Int16 generation_ = 0;
  double priorSize_ = 0.2;
  std::u16string fileName_ = u"txt";
  std::u16string bigFontFileName_;
};

// A dimension style: the DIM* variables under their group codes. The
// variables this host does not model are kept as read.
class AcDbDimStyleTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDimStyleTableRecord);
  static const zepk::db::ClassSchema& schema();

#define ZEPK_DIMVAR(type, name, setter) \
  type name() const { return name##_; } \
  Acad::ErrorStatus setter(type v) {     \
    assertWriteEnabled();                \
    name##_ = v;                         \
    return Acad::eOk;                    \
  }
  ZEPK_DIMVAR(double, dimscale, setDimscale)
  ZEPK_DIMVAR(double, dimasz, setDimasz)
  ZEPK_DIMVAR(double, dimexo, setDimexo)
  ZEPK_DIMVAR(double, dimdli, setDimdli)
  ZEPK_DIMVAR(double, dimexe, setDimexe)
  ZEPK_DIMVAR(double, dimrnd, setDimrnd)
  ZEPK_DIMVAR(double, dimdle, setDimdle)
  ZEPK_DIMVAR(double, dimtp, setDimtp)
  ZEPK_DIMVAR(double, dimtm, setDimtm)
  ZEPK_DIMVAR(double, dimtxt, setDimtxt)
  ZEPK_DIMVAR(double, dimcen, setDimcen)
  ZEPK_DIMVAR(double, dimtsz, setDimtsz)
  ZEPK_DIMVAR(double, dimaltf, setDimaltf)
  ZEPK_DIMVAR(double, dimlfac, setDimlfac)
  ZEPK_DIMVAR(double, dimtvp, setDimtvp)
  ZEPK_DIMVAR(double, dimtfac, setDimtfac)
  ZEPK_DIMVAR(double, dimgap, setDimgap)
  ZEPK_DIMVAR(bool, dimtol, setDimtol)
  ZEPK_DIMVAR(bool, dimlim, setDimlim)
  ZEPK_DIMVAR(bool, dimtih, setDimtih)
  ZEPK_DIMVAR(bool, dimtoh, setDimtoh)
  ZEPK_DIMVAR(bool, dimse1, setDimse1)
  ZEPK_DIMVAR(bool, dimse2, setDimse2)
  ZEPK_DIMVAR(Adesk::Int16, dimtad, setDimtad)
  ZEPK_DIMVAR(Adesk::Int16, dimzin, setDimzin)
  ZEPK_DIMVAR(bool, dimalt, setDimalt)
  ZEPK_DIMVAR(Adesk::Int16, dimaltd, setDimaltd)
  ZEPK_DIMVAR(bool, dimtofl, setDimtofl)
  ZEPK_DIMVAR(bool, dimsah, setDimsah)
  ZEPK_DIMVAR(bool, dimtix, setDimtix)
  ZEPK_DIMVAR(bool, dimsoxd, setDimsoxd)
  ZEPK_DIMVAR(Adesk::Int16, dimclrd, setDimclrd)
  ZEPK_DIMVAR(Adesk::Int16, dimclre, setDimclre)
  ZEPK_DIMVAR(Adesk::Int16, dimclrt, setDimclrt)
  ZEPK_DIMVAR(Adesk::Int16, dimadec, setDimadec)
  ZEPK_DIMVAR(Adesk::Int16, dimdec, setDimdec)
  ZEPK_DIMVAR(Adesk::Int16, dimtdec, setDimtdec)
  ZEPK_DIMVAR(Adesk::Int16, dimaunit, setDimaunit)
  ZEPK_DIMVAR(Adesk::Int16, dimlunit, setDimlunit)
  ZEPK_DIMVAR(Adesk::Int16, dimdsep, setDimdsep)
  ZEPK_DIMVAR(Adesk::Int16, dimtmove, setDimtmove)
  ZEPK_DIMVAR(Adesk::Int16, dimjust, setDimjust)
  ZEPK_DIMVAR(Adesk::Int16, dimatfit, setDimatfit)
  ZEPK_DIMVAR(AcDbObjectId, dimtxsty, setDimtxsty)
  ZEPK_DIMVAR(AcDbObjectId, dimblk, setDimblk)
  ZEPK_DIMVAR(Adesk::Int16, dimlwd, setDimlwd)
  ZEPK_DIMVAR(Adesk::Int16, dimlwe, setDimlwe)
#undef ZEPK_DIMVAR
  const std::u16string& dimpost() const { return dimpost_; }
  Acad::ErrorStatus setDimpost(const ACHAR* s);

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 protected:
  void addedToTable(AcDbDatabase* db) override;

 private:
  friend struct AcDbSymbolTableAccess;
  // Defaults as a new drawing in inches has them.
  std::u16string dimpost_, dimapost_;
  double dimscale_ = 1.0, dimasz_ = 0.18, dimexo_ = 0.0625, dimdli_ = 0.38, dimexe_ = 0.18, dimrnd_ = 0.0,
         dimdle_ = 0.0, dimtp_ = 0.0, dimtm_ = 0.0, dimtxt_ = 0.18, dimcen_ = 0.09, dimtsz_ = 0.0, dimaltf_ = 25.4,
         dimlfac_ = 1.0, dimtvp_ = 0.0, dimtfac_ = 1.0, dimgap_ = 0.09, dimaltrnd_ = 0.0;
  bool dimtol_ = false, dimlim_ = false, dimtih_ = true, dimtoh_ = true, dimse1_ = false, dimse2_ = false;
  Adesk::Int16 dimtad_ = 0, dimzin_ = 0, dimazin_ = 0;
  bool dimalt_ = false;
  Adesk::Int16 dimaltd_ = 2;
  bool dimtofl_ = false, dimsah_ = false, dimtix_ = false, dimsoxd_ = false;
  Adesk::Int16 dimclrd_ = 0, dimclre_ = 0, dimclrt_ = 0, dimadec_ = 0, dimdec_ = 4, dimtdec_ = 4, dimaltu_ = 2,
               dimalttd_ = 2, dimaunit_ = 0, dimfrac_ = 0, dimlunit_ = 2, dimdsep_ = u'.', dimtmove_ = 0,
               dimjust_ = 0;
  bool dimsd1_ = false, dimsd2_ = false;
  Adesk::Int16 dimtolj_ = 1, dimtzin_ = 0, dimaltz_ = 0, dimalttz_ = 0;
  bool dimupt_ = false;
  Adesk::Int16 dimatfit_ = 3;
  AcDbObjectId dimtxsty_, dimldrblk_, dimblk_, dimblk1_, dimblk2_;
  Adesk::Int16 dimlwd_ = -2, dimlwe_ = -2;
};

// A named user coordinate system.
class AcDbUCSTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbUCSTableRecord);
  static const zepk::db::ClassSchema& schema();

  AcGePoint3d origin() const { return origin_; }
  void setOrigin(const AcGePoint3d& p);
  AcGeVector3d xAxis() const { return xAxis_; }
  void setXAxis(const AcGeVector3d& v);
  AcGeVector3d yAxis() const { return yAxis_; }
  void setYAxis(const AcGeVector3d& v);

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 private:
  friend struct AcDbSymbolTableAccess;
  AcGePoint3d origin_;
  AcGeVector3d xAxis_{1, 0, 0};
  AcGeVector3d yAxis_{0, 1, 0};
  Adesk::Int16 zero_ = 0;  // group 79, always 0
  double elevation_ = 0.0;
  AcDbObjectId baseUcs_;
};

// What views and viewports share: where the view looks from and at, how
// much of the drawing it shows, and the coordinate system it shows.
class AcDbAbstractViewTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbAbstractViewTableRecord);

  AcGePoint2d centerPoint() const { return center_; }
  void setCenterPoint(const AcGePoint2d& p);
  double height() const { return height_; }
  void setHeight(double h);
  virtual double width() const = 0;
  virtual void setWidth(double w) = 0;
  AcGePoint3d target() const { return target_; }
  void setTarget(const AcGePoint3d& p);
  AcGeVector3d viewDirection() const { return direction_; }
  void setViewDirection(const AcGeVector3d& v);
  // In radians.
  double viewTwist() const;
  void setViewTwist(double angle);
  double lensLength() const { return lensLength_; }
  void setLensLength(double l);
  double frontClipDistance() const { return frontClip_; }
  void setFrontClipDistance(double d);
  double backClipDistance() const { return backClip_; }
  void setBackClipDistance(double d);
  bool perspectiveEnabled() const { return (viewMode_ & 1) != 0; }
  void setPerspectiveEnabled(bool on);
  bool frontClipEnabled() const { return (viewMode_ & 2) != 0; }
  void setFrontClipEnabled(bool on);
  bool backClipEnabled() const { return (viewMode_ & 4) != 0; }
  void setBackClipEnabled(bool on);
  AcGePoint3d ucsOrigin() const { return ucsOrigin_; }
  AcGeVector3d ucsXAxis() const { return ucsXAxis_; }
  AcGeVector3d ucsYAxis() const { return ucsYAxis_; }
  Acad::ErrorStatus setUcs(const AcGePoint3d& origin, const AcGeVector3d& xAxis, const AcGeVector3d& yAxis);
  double elevation() const { return elevation_; }
  void setElevation(double e);

 protected:
  friend struct AcDbSymbolTableAccess;
  AcGePoint2d center_;
  double height_ = 1.0;
  AcGePoint3d target_;
  AcGeVector3d direction_{0, 0, 1};
  double twist_ = 0.0;  // degrees
  double lensLength_ = 50.0;
  double frontClip_ = 0.0;
  double backClip_ = 0.0;
  Adesk::Int16 viewMode_ = 0;
  Adesk::Int16 renderMode_ = 0;
  AcGePoint3d ucsOrigin_;
  AcGeVector3d ucsXAxis_{1, 0, 0};
  AcGeVector3d ucsYAxis_{0, 1, 0};
  Adesk::Int16 orthoType_ = 0;
  double elevation_ = 0.0;
};

// A named view.
class AcDbViewTableRecord : public AcDbAbstractViewTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbViewTableRecord);
  static const zepk::db::ClassSchema& schema();

  double width() const override { return width_; }
  void setWidth(double w) override;
  // A view of paper space (flag 1).
  bool isPaperspaceView() const { return (flags_ & 1) != 0; }
  void setIsPaperspaceView(bool paper);
  bool isUcsAssociatedToView() const { return ucsAssociated_ != 0; }

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 private:
  friend struct AcDbSymbolTableAccess;
  double width_ = 1.0;
  Adesk::Int16 ucsAssociated_ = 0;
};

// A tiled viewport of model space; "*Active" is the one shown.
class AcDbViewportTableRecord : public AcDbAbstractViewTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbViewportTableRecord);
  static const zepk::db::ClassSchema& schema();

  // The width is the height times the aspect ratio (group 41).
  double width() const override { return height_ * aspect_; }
  void setWidth(double w) override;
  double aspectRatio() const { return aspect_; }
  void setAspectRatio(double a);
  // Corners of the viewport on the screen, 0 to 1.
  AcGePoint2d lowerLeftCorner() const { return lowerLeft_; }
  void setLowerLeftCorner(const AcGePoint2d& p);
  AcGePoint2d upperRightCorner() const { return upperRight_; }
  void setUpperRightCorner(const AcGePoint2d& p);
  bool snapEnabled() const { return snapOn_ != 0; }
  void setSnapEnabled(bool on);
  bool gridEnabled() const { return gridOn_ != 0; }
  void setGridEnabled(bool on);
  AcGePoint2d snapBase() const { return snapBase_; }
  void setSnapBase(const AcGePoint2d& p);
  AcGeVector2d snapIncrements() const { return AcGeVector2d(snapSpacing_.x, snapSpacing_.y); }
  void setSnapIncrements(const AcGeVector2d& v);
  AcGeVector2d gridIncrements() const { return AcGeVector2d(gridSpacing_.x, gridSpacing_.y); }
  void setGridIncrements(const AcGeVector2d& v);
  // In radians.
  double snapAngle() const;
  void setSnapAngle(double angle);
  Adesk::Int16 circleSides() const { return circleSides_; }
  void setCircleSides(Adesk::Int16 n);

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 protected:
  bool isValidName(std::u16string_view name) const override;

 private:
  friend struct AcDbSymbolTableAccess;
  AcGePoint2d lowerLeft_{0, 0};
  AcGePoint2d upperRight_{1, 1};
  AcGePoint2d snapBase_;
  AcGePoint2d snapSpacing_{0.5, 0.5};
  AcGePoint2d gridSpacing_{0.5, 0.5};
  double aspect_ = 1.0;
  double snapAngle_ = 0.0;  // degrees
  Adesk::Int16 circleSides_ = 1000;
  Adesk::Int16 fastZoom_ = 1;
  Adesk::Int16 ucsIcon_ = 3;
  Adesk::Int16 snapOn_ = 0;
  Adesk::Int16 gridOn_ = 0;
  Adesk::Int16 snapStyle_ = 0;
  Adesk::Int16 snapIsoPair_ = 0;
  Adesk::Int16 ucsPerViewport_ = 1;
};

// A registered application: the name extended data is filed under.
class AcDbRegAppTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbRegAppTableRecord);
  static const zepk::db::ClassSchema& schema();

  bool isStandardRecord() const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
};

class AcDbBlockTableRecordIterator;

// A block: a named list of entities in drawing order, with the point it is
// inserted by. "*Model_Space" and "*Paper_Space" are blocks whose
// entities are the drawing itself. A file keeps a block in two places: a
// BLOCK_RECORD in the tables (schema()) and the BLOCK that starts its
// entities in the BLOCKS section (blockBeginSchema(): group 70 flags, 10
// origin, 1 the external reference's path, 4 the description).
class AcDbBlockTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbBlockTableRecord);
  AcDbBlockTableRecord();
  ~AcDbBlockTableRecord() override;
  static const zepk::db::ClassSchema& schema();
  static const zepk::db::ClassSchema& blockBeginSchema();

  // Appends an entity that is in no database yet: it goes into the
  // block's database with the next handle, owned by the block, after the
  // block's other entities, and is left open for write for the caller to
  // close. The block must be open for write (eNotOpenForWrite) and in a
  // database (eNotInDatabase); an object that is not an entity gives
  // eNotAnEntity, one already in a database eAlreadyInDb.
  template <class E>
  Acad::ErrorStatus appendAcDbEntity(E* entity) {
    AcDbObjectId id;
    return appendEntityObject(id, static_cast<AcDbObject*>(entity));
  }
  template <class E>
  Acad::ErrorStatus appendAcDbEntity(AcDbObjectId& id, E* entity) {
    return appendEntityObject(id, static_cast<AcDbObject*>(entity));
  }
  Acad::ErrorStatus appendEntityObject(AcDbObjectId& id, AcDbObject* entity);

  // The entities in order; erased ones are skipped by the iterator unless
  // asked for.
  Acad::ErrorStatus newIterator(AcDbBlockTableRecordIterator*& it, bool atBeginning = true,
                                bool skipDeleted = true) const;
  AcDbObjectIdArray entityIds(bool includeErased = false) const;
  bool hasEntities() const;

  AcGePoint3d origin() const { return origin_; }
  Acad::ErrorStatus setOrigin(const AcGePoint3d& p);
  Acad::ErrorStatus comments(const ACHAR*& text) const;
  Acad::ErrorStatus setComments(const ACHAR* text);
  Acad::ErrorStatus pathName(const ACHAR*& path) const;
  Acad::ErrorStatus setPathName(const ACHAR* path);
  bool isAnonymous() const { return (flags_ & 1) != 0; }
  Acad::ErrorStatus setIsAnonymous(bool anonymous);
  bool hasAttributeDefinitions() const { return (flags_ & 2) != 0; }
  Acad::ErrorStatus setHasAttributeDefinitions(bool has);
  bool isFromExternalReference() const { return (flags_ & 4) != 0; }
  bool isFromOverlayReference() const { return (flags_ & 8) != 0; }
  // A space (its name starts with "*Model_Space" or "*Paper_Space").
  bool isLayout() const;
  AcDbObjectId getLayoutId() const { return layout_; }
  Acad::ErrorStatus setLayoutId(AcDbObjectId id);
  // Units of the block for insertion (an AcDb::UnitsValue; 0 none).
  Adesk::Int16 blockInsertUnits() const { return units_; }
  Acad::ErrorStatus setBlockInsertUnits(Adesk::Int16 units);
  bool explodable() const { return explodable_ != 0; }
  Acad::ErrorStatus setExplodable(bool explodable);
  // The draw order table of the block, in its extension dictionary
  // (ACAD_SORTENTS); made there when asked for and missing. Opened for
  // write (with create) the block must be open for write too.
  Acad::ErrorStatus getSortentsTable(AcDbSortentsTable*& table, AcDb::OpenMode mode,
                                     bool createIfNecessary = false);

  // The BLOCK and ENDBLK that frame the block in a file, as objects of
  // their own with their handles (null until the file reader or writer
  // puts them).
  AcDbObjectId blockBeginId() const { return blockBegin_; }
  AcDbObjectId blockEndId() const { return blockEnd_; }
  void setBlockBeginAndEnd(AcDbObjectId begin, AcDbObjectId end);

  bool isStandardRecord() const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 protected:
  bool isValidName(std::u16string_view name) const override;
  // Erasing a block erases its entities with it; unerasing brings them back.
  Acad::ErrorStatus subErase(bool erasing) override;

 private:
  friend struct AcDbSymbolTableAccess;
  AcGePoint3d origin_;
  std::u16string comments_;
  std::u16string pathName_;
  AcDbObjectId layout_;
  Adesk::Int16 units_ = 0;
  Adesk::Int16 explodable_ = 1;
  Adesk::Int16 scalable_ = 0;
  AcDbObjectIdArray entities_;
  AcDbObjectId blockBegin_, blockEnd_;
};

// ---------------------------------------------------------------- iterators

// Walks a table's records in table order. It sees the table as it was
// when it was made.
class AcDbSymbolTableIterator {
 public:
  virtual ~AcDbSymbolTableIterator() = default;
  void start(bool atBeginning = true, bool skipDeleted = true);
  bool done() const { return pos_ < 0 || pos_ >= static_cast<long>(ids_.size()); }
  void step(bool forward = true, bool skipDeleted = true);
  Acad::ErrorStatus getRecordId(AcDbObjectId& id) const;
  Acad::ErrorStatus getRecord(AcDbSymbolTableRecord*& record, AcDb::OpenMode mode = AcDb::kForRead,
                              bool openErasedRecord = false) const;
  // Goes to the record; eKeyNotFound when the table does not hold it.
  Acad::ErrorStatus seek(AcDbObjectId id);

  explicit AcDbSymbolTableIterator(AcDbObjectIdArray ids) : ids_(std::move(ids)) {}

 protected:
  void skip(bool forward, bool skipDeleted);
  AcDbObjectIdArray ids_;
  long pos_ = 0;
};

template <class Rec>
class AcDbSymbolTableIteratorOf : public AcDbSymbolTableIterator {
 public:
  using AcDbSymbolTableIterator::AcDbSymbolTableIterator;
  using AcDbSymbolTableIterator::getRecord;
  Acad::ErrorStatus getRecord(Rec*& record, AcDb::OpenMode mode = AcDb::kForRead,
                              bool openErasedRecord = false) const {
    AcDbObjectId id;
    record = nullptr;
    Acad::ErrorStatus es = getRecordId(id);
    return es != Acad::eOk ? es : acdbOpenObject(record, id, mode, openErasedRecord);
  }
};

#define ZEPK_TABLE_ITERATOR(NAME, REC)                      \
  class NAME : public AcDbSymbolTableIteratorOf<REC> {      \
   public:                                                  \
    using AcDbSymbolTableIteratorOf<REC>::AcDbSymbolTableIteratorOf; \
  };
ZEPK_TABLE_ITERATOR(AcDbBlockTableIterator, AcDbBlockTableRecord)
ZEPK_TABLE_ITERATOR(AcDbLayerTableIterator, AcDbLayerTableRecord)
ZEPK_TABLE_ITERATOR(AcDbTextStyleTableIterator, AcDbTextStyleTableRecord)
ZEPK_TABLE_ITERATOR(AcDbLinetypeTableIterator, AcDbLinetypeTableRecord)
ZEPK_TABLE_ITERATOR(AcDbDimStyleTableIterator, AcDbDimStyleTableRecord)
ZEPK_TABLE_ITERATOR(AcDbUCSTableIterator, AcDbUCSTableRecord)
ZEPK_TABLE_ITERATOR(AcDbViewTableIterator, AcDbViewTableRecord)
ZEPK_TABLE_ITERATOR(AcDbViewportTableIterator, AcDbViewportTableRecord)
ZEPK_TABLE_ITERATOR(AcDbRegAppTableIterator, AcDbRegAppTableRecord)
#undef ZEPK_TABLE_ITERATOR

// Walks a block's entities in order, as they were when it was made.
class AcDbBlockTableRecordIterator {
 public:
  explicit AcDbBlockTableRecordIterator(AcDbObjectIdArray ids) : ids_(std::move(ids)) {}
  void start(bool atBeginning = true, bool skipDeleted = true);
  bool done() const { return pos_ < 0 || pos_ >= static_cast<long>(ids_.size()); }
  void step(bool forward = true, bool skipDeleted = true);
  Acad::ErrorStatus getEntityId(AcDbObjectId& id) const;
  // Opens the entity; E is AcDbEntity or a class derived from it.
  template <class E>
  Acad::ErrorStatus getEntity(E*& entity, AcDb::OpenMode mode = AcDb::kForRead, bool openErased = false) const {
    AcDbObjectId id;
    entity = nullptr;
    Acad::ErrorStatus es = getEntityId(id);
    return es != Acad::eOk ? es : acdbOpenObject(entity, id, mode, openErased);
  }
  Acad::ErrorStatus seek(AcDbObjectId id);

 private:
  void skip(bool forward, bool skipDeleted);
  AcDbObjectIdArray ids_;
  long pos_ = 0;
};

// ---------------------------------------------------------------- tables

class AcDbSymbolTable : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSymbolTable);
  AcDbSymbolTable();
  ~AcDbSymbolTable() override;

  // The record of that name, not erased unless asked for (a live record
  // of the name comes before an erased one). eKeyNotFound when there is
  // none.
  Acad::ErrorStatus getAt(const ACHAR* name, AcDbSymbolTableRecord*& record, AcDb::OpenMode mode,
                          bool openErasedRecord = false) const;
  Acad::ErrorStatus getAt(const ACHAR* name, AcDbObjectId& id, bool getErasedRecord = false) const;
  bool has(const ACHAR* name) const;
  bool has(AcDbObjectId id) const;
  // Adds a new record (in no database yet) at the end: the record goes
  // into the table's database, owned by the table, and stays open for
  // write for the caller to close. The table must be open for write
  // (eNotOpenForWrite) and in a database (eNotInDatabase); a record of
  // another kind gives eWrongObjectType, one in a database eAlreadyInDb, a
  // name the table has eDuplicateRecordName, no name eInvalidInput.
  Acad::ErrorStatus add(AcDbSymbolTableRecord* record);
  Acad::ErrorStatus add(AcDbObjectId& id, AcDbSymbolTableRecord* record);
  Acad::ErrorStatus newIterator(AcDbSymbolTableIterator*& it, bool atBeginning = true,
                                bool skipDeleted = true) const;
  // The records in table order.
  AcDbObjectIdArray recordIds(bool includeErased = false) const;
  // The class of the records this table holds.
  virtual AcRxClass* recordClass() const;

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 protected:
  // Gives a record about to be added its final name (numbered anonymous
  // blocks); false refuses the record.
  virtual bool prepareNewRecord(AcDbSymbolTableRecord* record) const { return true; }

 private:
  friend class AcDbSymbolTableRecord;
  friend struct AcDbSymbolTableAccess;
  AcDbObjectId find(std::u16string_view name) const;
  void rebuildIndex() const;

  AcDbObjectIdArray records_;
  // Folded name -> the live record of that name; rebuilt when a record's
  // name or state changed.
  mutable std::unordered_map<std::u16string, AcDbObjectId> index_;
  mutable bool indexValid_ = false;
};

namespace zepk::db {

// A table of one kind of record: getAt, add and newIterator typed for it.
template <class Rec, class Iter>
class SymbolTableOf : public AcDbSymbolTable {
 public:
  using AcDbSymbolTable::add;
  using AcDbSymbolTable::getAt;
  using AcDbSymbolTable::newIterator;
  Acad::ErrorStatus getAt(const ACHAR* name, Rec*& record, AcDb::OpenMode mode,
                          bool openErasedRecord = false) const {
    record = nullptr;
    AcDbObjectId id;
    Acad::ErrorStatus es = AcDbSymbolTable::getAt(name, id, openErasedRecord);
    return es != Acad::eOk ? es : acdbOpenObject(record, id, mode, openErasedRecord);
  }
  Acad::ErrorStatus add(Rec* record) { return AcDbSymbolTable::add(static_cast<AcDbSymbolTableRecord*>(record)); }
  Acad::ErrorStatus add(AcDbObjectId& id, Rec* record) {
    return AcDbSymbolTable::add(id, static_cast<AcDbSymbolTableRecord*>(record));
  }
  Acad::ErrorStatus newIterator(Iter*& it, bool atBeginning = true, bool skipDeleted = true) const {
    it = new Iter(recordIds(true));
    it->start(atBeginning, skipDeleted);
    return Acad::eOk;
  }
  AcRxClass* recordClass() const override { return Rec::desc(); }
};

}  // namespace zepk::db

#define ZEPK_SYMBOL_TABLE(NAME, REC, ITER)                       \
  class NAME : public zepk::db::SymbolTableOf<REC, ITER> {       \
   public:                                                       \
    ACRX_DECLARE_MEMBERS(NAME);                                  \
  };
ZEPK_SYMBOL_TABLE(AcDbLayerTable, AcDbLayerTableRecord, AcDbLayerTableIterator)
ZEPK_SYMBOL_TABLE(AcDbTextStyleTable, AcDbTextStyleTableRecord, AcDbTextStyleTableIterator)
ZEPK_SYMBOL_TABLE(AcDbLinetypeTable, AcDbLinetypeTableRecord, AcDbLinetypeTableIterator)
ZEPK_SYMBOL_TABLE(AcDbUCSTable, AcDbUCSTableRecord, AcDbUCSTableIterator)
ZEPK_SYMBOL_TABLE(AcDbViewTable, AcDbViewTableRecord, AcDbViewTableIterator)
ZEPK_SYMBOL_TABLE(AcDbViewportTable, AcDbViewportTableRecord, AcDbViewportTableIterator)
ZEPK_SYMBOL_TABLE(AcDbRegAppTable, AcDbRegAppTableRecord, AcDbRegAppTableIterator)
#undef ZEPK_SYMBOL_TABLE

// The dimension style table also lists its records in its own part.
class AcDbDimStyleTable : public zepk::db::SymbolTableOf<AcDbDimStyleTableRecord, AcDbDimStyleTableIterator> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDimStyleTable);
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
};

// The block table numbers the names of anonymous blocks: a record added
// as "*U" (a star and one letter) becomes "*U1", "*U2", ... and is marked
// anonymous.
class AcDbBlockTable : public zepk::db::SymbolTableOf<AcDbBlockTableRecord, AcDbBlockTableIterator> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbBlockTable);

 protected:
  bool prepareNewRecord(AcDbSymbolTableRecord* record) const override;
};
