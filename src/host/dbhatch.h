// Hatches (HATCH): an area bounded by loops, filled solid, with a pattern
// of lines, or with a gradient. A loop is either a polyline (vertices with
// bulges) or a chain of edges: lines, circular arcs, elliptical arcs and
// splines. Coordinates of loops, seed points and patterns are 2D in the
// hatch's own coordinate system (its normal and elevation).
#pragma once

#include <string>
#include <vector>

#include "host/dbents.h"

class AcDbHatch : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbHatch);
  AcDbHatch() = default;

  enum HatchPatternType { kUserDefined = 0, kPreDefined = 1, kCustomDefined = 2 };
  enum HatchStyle { kNormal = 0, kOuter = 1, kIgnore = 2 };
  enum HatchObjectType { kHatchObject = 0, kGradientObject = 1 };
  enum GradientPatternType { kPreDefinedGradient = 0, kUserDefinedGradient = 1 };
  // Loop type flags (group 92).
  enum HatchLoopType {
    kDefault = 0,
    kExternal = 1,
    kPolyline = 2,
    kDerived = 4,
    kTextbox = 8,
    kOutermost = 0x10,
    kNotClosed = 0x20,
    kSelfIntersecting = 0x40,
    kTextIsland = 0x80,
    kDuplicate = 0x100,
  };
  enum HatchEdgeType { kLine = 1, kCirArc = 2, kEllArc = 3, kSpline = 4 };

  // One edge of an edge loop. Angles are in radians, counter-clockwise
  // unless ccw is false, in which case they are measured clockwise as the
  // file keeps them.
  struct Edge {
    HatchEdgeType type = kLine;
    AcGePoint2d start, end;            // kLine
    AcGePoint2d center;                // kCirArc, kEllArc
    double radius = 0.0;               // kCirArc
    AcGeVector2d majorAxis;            // kEllArc: the end of the major axis relative to the centre
    double minorMajorRatio = 1.0;      // kEllArc
    double startAngle = 0.0, endAngle = 0.0;
    bool ccw = true;
    // kSpline
    int degree = 3;
    bool rational = false, periodic = false;
    std::vector<double> knots;
    std::vector<AcGePoint2d> controlPoints;
    std::vector<double> weights;
    std::vector<AcGePoint2d> fitPoints;
    bool hasFitCount = false;          // the file gave the fit point count (97)
    bool hasStartTangent = false, hasEndTangent = false;
    AcGeVector2d startTangent, endTangent;
  };
  struct Loop {
    Adesk::Int32 type = kDefault;
    // Polyline loops (type has kPolyline).
    std::vector<AcGePoint2d> vertices;
    std::vector<double> bulges;        // one per vertex, or none
    bool closed = true;
    // Edge loops.
    std::vector<Edge> edges;
    // The entities the loop was made from (an associative hatch).
    AcDbObjectIdArray sourceIds;
  };
  // One line family of a pattern: angle, base point, offset between lines,
  // and the dash lengths (positive a dash, negative a gap, 0 a dot).
  struct PatternLine {
    double angle = 0.0;
    double baseX = 0.0, baseY = 0.0;
    double offsetX = 0.0, offsetY = 0.0;
    std::vector<double> dashes;
  };
  struct GradientColor {
    double value = 0.0;                // group 463
    Adesk::Int16 colorIndex = -1;      // group 63, -1 when not given
    Adesk::UInt32 rgb = 0;             // group 421
  };

  // Loops.
  int numLoops() const { return static_cast<int>(loops_.size()); }
  Adesk::Int32 loopTypeAt(int loopIndex) const;
  const Loop& loopAt(int loopIndex) const { return loops_.at(loopIndex); }
  // A polyline loop: vertices and their bulges (none or one per vertex).
  Acad::ErrorStatus appendLoop(Adesk::Int32 loopType, const AcGePoint2dArray& vertices, const AcGeDoubleArray& bulges);
  // An edge loop.
  Acad::ErrorStatus appendLoop(Adesk::Int32 loopType, const std::vector<Edge>& edges);
  Acad::ErrorStatus appendLoop(const Loop& loop);
  Acad::ErrorStatus insertLoopAt(int loopIndex, const Loop& loop);
  Acad::ErrorStatus removeLoopAt(int loopIndex);
  Acad::ErrorStatus getLoopAt(int loopIndex, Adesk::Int32& loopType, AcGePoint2dArray& vertices,
                              AcGeDoubleArray& bulges) const;
  Acad::ErrorStatus getAssocObjIdsAt(int loopIndex, AcDbObjectIdArray& dbObjIds) const;
  Acad::ErrorStatus setAssocObjIdsAt(int loopIndex, const AcDbObjectIdArray& dbObjIds);
  bool associative() const { return associative_ != 0; }
  Acad::ErrorStatus setAssociative(bool isAssociative);

  // Fill.
  HatchObjectType hatchObjectType() const { return isGradient() ? kGradientObject : kHatchObject; }
  Acad::ErrorStatus setHatchObjectType(HatchObjectType type);
  bool isSolidFill() const { return solidFill_ != 0; }
  bool isGradient() const { return gradient_.present && gradient_.solidOrGradient == 1; }
  bool isHatch() const { return !isGradient(); }
  HatchStyle hatchStyle() const { return static_cast<HatchStyle>(style_); }
  Acad::ErrorStatus setHatchStyle(HatchStyle style);
  HatchPatternType patternType() const { return static_cast<HatchPatternType>(patternType_); }
  std::u16string patternName() const { return patternName_; }
  // "SOLID" makes a solid fill.
  Acad::ErrorStatus setPattern(HatchPatternType patType, const ACHAR* patName);
  double patternAngle() const { return patternAngle_; }
  Acad::ErrorStatus setPatternAngle(double angle);
  // Group 41: the scale of a predefined pattern, the spacing of a
  // user-defined one.
  double patternScale() const { return patternScale_; }
  Acad::ErrorStatus setPatternScale(double scale);
  double patternSpace() const { return patternScale_; }
  Acad::ErrorStatus setPatternSpace(double space);
  bool patternDouble() const { return patternDouble_ != 0; }
  Acad::ErrorStatus setPatternDouble(bool isDouble);
  int numPatternDefinitions() const { return static_cast<int>(patternLines_.size()); }
  Acad::ErrorStatus getPatternDefinitionAt(int index, double& angle, double& baseX, double& baseY, double& offsetX,
                                           double& offsetY, AcGeDoubleArray& dashes) const;
  // The line families of the pattern, as the pattern file defines them
  // after scale and angle.
  Acad::ErrorStatus setPatternDefinitions(const std::vector<PatternLine>& lines);

  // Gradient.
  std::u16string gradientName() const { return gradient_.name; }
  // Files do not keep whether a gradient was predefined: every gradient
  // reads back as kPreDefinedGradient.
  GradientPatternType gradientType() const { return kPreDefinedGradient; }
  Acad::ErrorStatus setGradient(GradientPatternType gradType, const ACHAR* gradName);
  double gradientAngle() const { return gradient_.angle; }
  Acad::ErrorStatus setGradientAngle(double angle);
  double gradientShift() const { return gradient_.shift; }
  Acad::ErrorStatus setGradientShift(double shift);
  double shadeTintValue() const { return gradient_.tint; }
  Acad::ErrorStatus setShadeTintValue(double value);
  bool getGradientOneColorMode() const { return gradient_.oneColor != 0; }
  Acad::ErrorStatus setGradientOneColorMode(bool oneColor);
  const std::vector<GradientColor>& gradientColors() const { return gradient_.colors; }
  Acad::ErrorStatus setGradientColors(const std::vector<GradientColor>& colors);

  // Placement.
  double elevation() const { return elevationPoint_.z; }
  Acad::ErrorStatus setElevation(double z);
  AcGeVector3d normal() const { return normal_; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);
  double pixelSize() const { return pixelSize_; }
  Acad::ErrorStatus setPixelSize(double size);

  // The area the hatch fills: its loops nest by containment, and the hatch
  // style says which levels fill (normal: alternate levels; outer: the
  // outermost less its first islands; ignore: the outermost only). Loops
  // marked as duplicates are left out; a loop that does not close is closed
  // by a chord. Arcs and ellipses count exactly, splines by fine samples.
  Acad::ErrorStatus getArea(double& area) const;

  // Seed points: a point inside each area that was picked to make it.
  int numSeedPoints() const { return static_cast<int>(seeds_.size()); }
  const AcGePoint2dArray& seedPoints() const { return seeds_; }
  Acad::ErrorStatus setSeedPoints(const AcGePoint2dArray& points);

  ZEPK_DB_TRANSFORM;
  ZEPK_DB_ENTITY_FILERS;

 private:
  friend struct zepk::db::EntityAccess;
  struct Gradient {
    // Whether the gradient groups (450...) are there at all: files from 2004
    // on carry them for solid hatches too.
    bool present = false;
    Adesk::Int32 solidOrGradient = 0;  // group 450: 1 gradient
    Adesk::Int32 reserved = 0;         // 451
    Adesk::Int32 oneColor = 0;         // 452
    double angle = 0.0;                // 460
    double shift = 0.0;                // 461
    double tint = 0.0;                 // 462
    std::vector<GradientColor> colors; // 453 count, then 463/63/421 each
    std::u16string name;               // 470
  };
  AcGePoint3d elevationPoint_;
  AcGeVector3d normal_ = AcGeVector3d(0, 0, 1);
  std::u16string patternName_ = u"SOLID";
  int16_t solidFill_ = 1;
  int16_t associative_ = 0;
  std::vector<Loop> loops_;
  int16_t style_ = kNormal;
  int16_t patternType_ = kPreDefined;
  double patternAngle_ = 0.0;
  double patternScale_ = 1.0;
  int16_t patternDouble_ = 0;
  std::vector<PatternLine> patternLines_;
  double pixelSize_ = 0.0;
  AcGePoint2dArray seeds_;
  Gradient gradient_;
};
