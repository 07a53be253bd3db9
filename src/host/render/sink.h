// The graphics sink behind AcGiWorldDraw: it takes the primitives an
// entity draws, brings them through the block transforms onto the plan
// (the view from above), resolves the traits (ByLayer, ByBlock, the
// default lineweight) into a drawing style, and hands plain paths and
// texts to its output: the cairo canvas, or the extents collector.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "host/acgi.h"
#include "host/dbmain.h"

namespace zepk::render {

// A 2D affine map: x' = xx x + xy y + x0, y' = yx x + yy y + y0.
struct Affine {
  double xx = 1, yx = 0, xy = 0, yy = 1, x0 = 0, y0 = 0;
  void apply(double x, double y, double* ox, double* oy) const {
    *ox = xx * x + xy * y + x0;
    *oy = yx * x + yy * y + y0;
  }
};

// A path on the plan in drawing units. An arc is the image under its map
// of the unit circle from t0 to t1 (decreasing when t1 < t0).
struct Path {
  struct Op {
    enum Kind : uint8_t { Move, Line, Arc, Close } kind;
    double x = 0, y = 0;
    Affine arc;
    double t0 = 0, t1 = 0;
  };
  std::vector<Op> ops;
  void moveTo(double x, double y) { ops.push_back({Op::Move, x, y, {}, 0, 0}); }
  void lineTo(double x, double y) { ops.push_back({Op::Line, x, y, {}, 0, 0}); }
  void arc(const Affine& a, double t0, double t1) { ops.push_back({Op::Arc, 0, 0, a, t0, t1}); }
  void close() { ops.push_back({Op::Close, 0, 0, {}, 0, 0}); }
};

// A line of text: the map takes the text's own units (capital height 1,
// baseline on y = 0, y up) to the plan.
struct TextRun {
  Affine place;
  std::u16string text;  // plain, codes already decoded
};

// What a primitive is drawn with, all resolved.
struct Style {
  uint32_t rgb = 0;            // 0xRRGGBB
  bool foreground = false;     // index colour 7: black on white, white on black
  bool background = false;     // the background colour (wipeouts)
  double lineweightMm = 0.25;
  std::vector<double> dashes;  // drawing units: + dash, - gap, 0 dot; empty: continuous
};

// The drawing's tables as the sink needs them, read once.
class DrawingProps {
 public:
  explicit DrawingProps(AcDbDatabase* db);

  struct Layer {
    bool off = false, frozen = false, isZero = false;
    AcCmEntityColor color;
    AcDbObjectId linetype;
    int lineweight = -3;
  };
  struct Linetype {
    enum Kind { Continuous, ByLayer, ByBlock, Pattern } kind = Continuous;
    std::vector<double> dashes;
  };
  const Layer& layer(AcDbObjectId id);
  const Linetype& linetype(AcDbObjectId id);

  AcDbDatabase* db;
  double ltscale = 1.0;
  int pdmode = 0;
  double pdsize = 0.0;
  double lwdefaultMm = 0.25;

 private:
  std::map<AcDbObjectId, Layer> layers_;
  std::map<AcDbObjectId, Linetype> linetypes_;
};

class Sink : public AcGiWorldDraw, public AcGiWorldGeometry, public AcGiSubEntityTraits {
 public:
  explicit Sink(DrawingProps& props) : props_(props) {}

  // AcGiWorldDraw
  AcGiWorldGeometry& geometry() const override { return *const_cast<Sink*>(this); }
  AcGiSubEntityTraits& subEntityTraits() const override { return *const_cast<Sink*>(this); }
  double deviation() const override { return pixelsPerUnit_; }

  // AcGiSubEntityTraits
  void setColor(Adesk::UInt16 color) override;
  void setTrueColor(const AcCmEntityColor& color) override { color_ = color; }
  void setLayer(AcDbObjectId layerId) override { layer_ = layerId; }
  void setLineType(AcDbObjectId linetypeId) override { linetype_ = linetypeId; }
  void setLineWeight(AcDb::LineWeight lw) override { lineweight_ = lw; }
  void setLineTypeScale(double scale) override { ltscale_ = scale; }
  void setFillType(AcGiFillType type) override { fill_ = type; }
  Adesk::UInt16 color() const override { return color_.colorIndex(); }
  AcCmEntityColor trueColor() const override { return color_; }
  AcDbObjectId layerId() const override { return layer_; }
  AcDbObjectId lineTypeId() const override { return linetype_; }
  AcDb::LineWeight lineWeight() const override { return lineweight_; }
  double lineTypeScale() const override { return ltscale_; }
  AcGiFillType fillType() const override { return fill_; }

  // AcGiWorldGeometry
  Adesk::Boolean circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) const override;
  Adesk::Boolean circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                             const AcGeVector3d& startVector, double sweepAngle,
                             AcGiArcType arcType = kAcGiArcSimple) const override;
  Adesk::Boolean ellipticalArc(const AcGePoint3d& center, const AcGeVector3d& majorAxis,
                               const AcGeVector3d& minorAxis, double startParam, double endParam) const override;
  Adesk::Boolean polyline(Adesk::UInt32 n, const AcGePoint3d* pts, const AcGeVector3d* normal = nullptr,
                          Adesk::LongPtr marker = -1) const override;
  Adesk::Boolean polygon(Adesk::UInt32 n, const AcGePoint3d* pts) const override;
  Adesk::Boolean polyPolygon(Adesk::UInt32 nbLoops, const Adesk::UInt32* sizes,
                             const AcGePoint3d* pts) const override;
  Adesk::Boolean shell(Adesk::UInt32 nbVertex, const AcGePoint3d* pts, Adesk::UInt32 faceListSize,
                       const Adesk::Int32* faces) const override;
  Adesk::Boolean text(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
                      double height, double width, double oblique, const ACHAR* msg) const override;
  Adesk::Boolean pushModelTransform(const AcGeMatrix3d& m) override;
  Adesk::Boolean popModelTransform() override;

  // Entering a block reference: what ByBlock means inside it, and the
  // layer that its entities on layer 0 take. Taken from the current traits
  // (those of the reference).
  void pushBlock();
  void popBlock();
  // The layer the current traits draw on, after layer 0 in blocks takes
  // the reference's; false when that layer is off or frozen.
  bool layerVisible() const;
  // Whether the reference's layer (current traits) is frozen: then nothing
  // of the block shows.
  bool layerFrozen() const;

  // While set, lines are drawn solid whatever their linetype (the lines
  // of a hatch pattern, which carry their own dashes).
  void setSolidLines(bool on) { solidLines_ = on; }

  DrawingProps& props() { return props_; }
  // Pixels per drawing unit of the output (0 when it has none).
  void setPixelsPerUnit(double s) { pixelsPerUnit_ = s; }
  double pixelsPerUnit() const { return pixelsPerUnit_; }
  // The height and centre of the view in drawing units (points are sized
  // relative to it, infinite lines drawn across it).
  double viewHeight = 1.0;
  double viewCenterX = 0.0, viewCenterY = 0.0;
  // How many entities have been drawn (nested ones counted each time).
  long entitiesDrawn = 0;
  // Highlighted drawing: every line dashed, whatever its linetype.
  bool highlight = false;

 protected:
  // The output: a path stroked with the style, or filled (closed
  // subpaths, even-odd) when fill is set. A path of one Move alone is a
  // point.
  virtual void emitPath(const Path& path, const Style& style, bool fill) = 0;
  virtual void emitText(const TextRun& run, const Style& style) = 0;

  Style resolve() const;

 private:
  struct Inherited {
    AcDbObjectId layer;
    AcCmEntityColor color;
    AcDbObjectId linetype;
    int lineweight = -3;
  };
  AcDbObjectId effectiveLayer() const;
  AcGePoint3d toPlan(const AcGePoint3d& p) const;
  Affine arcMap(const AcGePoint3d& c, const AcGeVector3d& u, const AcGeVector3d& v) const;
  void points(Path& path, Adesk::UInt32 n, const AcGePoint3d* pts) const;
  void emit(const Path& path, bool fill) const;

  DrawingProps& props_;
  AcCmEntityColor color_;
  AcDbObjectId layer_, linetype_;
  AcDb::LineWeight lineweight_ = AcDb::kLnWtByLayer;
  double ltscale_ = 1.0;
  AcGiFillType fill_ = kAcGiFillNever;
  std::vector<AcGeMatrix3d> transforms_;
  AcGeMatrix3d model_;
  bool identity_ = true;
  std::vector<Inherited> blocks_;
  double pixelsPerUnit_ = 0.0;
  bool solidLines_ = false;
};

}  // namespace zepk::render
