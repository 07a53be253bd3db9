// The outputs of the sink: a cairo canvas that paints, and a collector of
// the extents of what would be painted.
#pragma once

#include <cairo.h>

#include "host/render/sink.h"

namespace zepk::render {

// The window of the drawing shown, and its mapping onto the canvas.
struct ViewMap {
  double x0 = 0, y0 = 0;  // the drawing point at the canvas's lower left corner
  double scale = 1;       // pixels per drawing unit
  double width = 0, height = 0;  // canvas size in pixels
  void toDevice(double x, double y, double* dx, double* dy) const {
    *dx = (x - x0) * scale;
    *dy = height - (y - y0) * scale;
  }
};

class CairoSink : public Sink {
 public:
  CairoSink(DrawingProps& props, cairo_t* cr, const ViewMap& view, bool blackBackground);
  ~CairoSink() override;

 protected:
  void emitPath(const Path& path, const Style& style, bool fill) override;
  void emitText(const TextRun& run, const Style& style) override;

 private:
  void setColour(const Style& style);
  void setDashes(const Style& style, double widthPx);
  cairo_t* cr_;
  ViewMap view_;
  bool black_;
  cairo_font_face_t* face_ = nullptr;
};

// Collects the box of everything drawn, on the plan.
class ExtentsSink : public Sink {
 public:
  explicit ExtentsSink(DrawingProps& props) : Sink(props) {}
  bool empty() const { return !any_; }
  double minX = 0, minY = 0, maxX = 0, maxY = 0;

 protected:
  void emitPath(const Path& path, const Style& style, bool fill) override;
  void emitText(const TextRun& run, const Style& style) override;

 private:
  void add(double x, double y);
  bool any_ = false;
};

// The on/off lengths cairo takes for a pattern of dashes (+), gaps (-) and
// dots (0) already in pixels, with the offset at which the stroke starts;
// empty when the line is to be drawn solid (no pattern, or one too fine to
// show).
struct CairoDashes {
  std::vector<double> lengths;
  double offset = 0;
};
CairoDashes cairoDashes(const std::vector<double>& pixels);

}  // namespace zepk::render
