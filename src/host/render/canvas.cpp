#include "host/render/canvas.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "host/render/text.h"
#include "host/system/utf.h"

namespace zepk::render {

namespace {

// Lineweights are shown as on a screen of 96 pixels to the inch, and never
// thinner than a pixel.
constexpr double kPixelsPerMm = 96.0 / 25.4;

bool usable(const cairo_matrix_t& m) {
  double det = m.xx * m.yy - m.xy * m.yx;
  return std::isfinite(det) && std::fabs(det) > 1e-18 && std::isfinite(m.x0) && std::isfinite(m.y0);
}

}  // namespace

CairoDashes cairoDashes(const std::vector<double>& px) {
  CairoDashes out;
  if (px.empty()) return out;
  double total = 0;
  for (double d : px) total += std::fabs(d);
  // Too fine to tell from a solid line: drawn solid, as the host does.
  if (!(total >= 3.0)) return out;
  // Alternating on/off, starting with on; a dot is a dash of no length
  // (drawn by the round cap).
  std::vector<double> on_off;
  double lead = 0;  // gaps before the first dash
  bool started = false;
  for (double d : px) {
    bool on = d >= 0;
    double len = std::fabs(d);
    if (!started) {
      if (!on) {
        lead += len;
        continue;
      }
      started = true;
      on_off.push_back(len);
      continue;
    }
    bool lastOn = on_off.size() % 2 == 1;
    if (on == lastOn) on_off.back() += len;
    else on_off.push_back(len);
  }
  if (on_off.empty()) return out;
  if (lead > 0) {
    // The leading gaps go to the end; the stroke starts at them.
    if (on_off.size() % 2 == 0) on_off.back() += lead;
    else on_off.push_back(lead);
    out.offset = total - lead;
  }
  if (on_off.size() % 2 == 1) {
    // Ends with a dash: it joins the first one.
    double last = on_off.back();
    on_off.pop_back();
    if (on_off.empty()) return out;  // all dash
    on_off.front() += last;
    out.offset = std::fmod(out.offset + last, total);
  }
  out.lengths = std::move(on_off);
  return out;
}

// ------------------------------------------------------------ cairo

CairoSink::CairoSink(DrawingProps& props, cairo_t* cr, const ViewMap& view, bool black)
    : Sink(props), cr_(cr), view_(view), black_(black) {
  setPixelsPerUnit(view.scale);
  face_ = cairo_toy_font_face_create(kTextFont, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_line_join(cr_, CAIRO_LINE_JOIN_ROUND);
  cairo_font_options_t* fo = cairo_font_options_create();
  cairo_font_options_set_hint_metrics(fo, CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_hint_style(fo, CAIRO_HINT_STYLE_NONE);
  cairo_set_font_options(cr_, fo);
  cairo_font_options_destroy(fo);
}

CairoSink::~CairoSink() {
  if (face_) cairo_font_face_destroy(face_);
}

void CairoSink::setColour(const Style& s) {
  uint32_t rgb = s.rgb;
  if (s.background) rgb = black_ ? 0x000000 : 0xFFFFFF;
  else if (s.foreground) rgb = black_ ? 0xFFFFFF : 0x000000;
  // A colour the same as the background is shown in the foreground
  // colour, as on a screen.
  else if (rgb == (black_ ? 0x000000u : 0xFFFFFFu)) rgb = black_ ? 0xFFFFFF : 0x000000;
  cairo_set_source_rgb(cr_, ((rgb >> 16) & 0xFF) / 255.0, ((rgb >> 8) & 0xFF) / 255.0, (rgb & 0xFF) / 255.0);
}

void CairoSink::setDashes(const Style& s, double width) {
  if (s.dashes.empty()) {
    cairo_set_dash(cr_, nullptr, 0, 0);
    cairo_set_line_cap(cr_, CAIRO_LINE_CAP_BUTT);
    return;
  }
  std::vector<double> px;
  px.reserve(s.dashes.size());
  for (double d : s.dashes) px.push_back(d * view_.scale);
  CairoDashes c = cairoDashes(px);
  if (c.lengths.empty()) {
    cairo_set_dash(cr_, nullptr, 0, 0);
    cairo_set_line_cap(cr_, CAIRO_LINE_CAP_BUTT);
    return;
  }
  cairo_set_dash(cr_, c.lengths.data(), static_cast<int>(c.lengths.size()), c.offset);
  cairo_set_line_cap(cr_, CAIRO_LINE_CAP_ROUND);
}

namespace {

// How far past the canvas paths are kept: beyond it lines are cut, so that
// coordinates stay well inside what cairo's fixed-point numbers hold.
constexpr double kMargin = 2048;
// Arcs larger than this (pixels) are drawn as points along them.
constexpr double kLargestArc = 1 << 22;

struct Box {
  double x0, y0, x1, y1;
};

// Cuts the segment to the box (Liang-Barsky); false when none of it is in.
bool clipSegment(const Box& b, double& ax, double& ay, double& bx, double& by) {
  double t0 = 0, t1 = 1, dx = bx - ax, dy = by - ay;
  const double p[4] = {-dx, dx, -dy, dy};
  const double q[4] = {ax - b.x0, b.x1 - ax, ay - b.y0, b.y1 - ay};
  for (int i = 0; i < 4; ++i) {
    if (p[i] == 0) {
      if (q[i] < 0) return false;
      continue;
    }
    double r = q[i] / p[i];
    if (p[i] < 0) t0 = std::max(t0, r);
    else t1 = std::min(t1, r);
    if (t0 > t1) return false;
  }
  double sx = ax + t0 * dx, sy = ay + t0 * dy, ex = ax + t1 * dx, ey = ay + t1 * dy;
  ax = sx, ay = sy, bx = ex, by = ey;
  return true;
}

bool finite(double x, double y) { return std::isfinite(x) && std::isfinite(y); }

}  // namespace

void CairoSink::emitPath(const Path& path, const Style& style, bool fill) {
  double w = std::max(1.0, style.lineweightMm * kPixelsPerMm);
  const Box box{-kMargin, -kMargin, view_.width + kMargin, view_.height + kMargin};
  cairo_new_path(cr_);
  setColour(style);
  if (path.ops.size() == 1 && path.ops[0].kind == Path::Op::Move) {
    double x, y;
    view_.toDevice(path.ops[0].x, path.ops[0].y, &x, &y);
    if (!finite(x, y) || x < box.x0 || x > box.x1 || y < box.y0 || y > box.y1) return;
    cairo_rectangle(cr_, x - w / 2, y - w / 2, w, w);
    cairo_fill(cr_);
    return;
  }
  // The current point and the start of the subpath, on the canvas; down:
  // cairo's own current point is the current point.
  double cx = 0, cy = 0, sx = 0, sy = 0;
  bool have = false, down = false;
  auto jump = [&](double x, double y) {
    cx = x, cy = y, sx = x, sy = y;
    have = true;
    down = false;
  };
  auto lineTo = [&](double x, double y) {
    if (!have) return jump(x, y);
    double ax = cx, ay = cy, bx = x, by = y;
    if (fill) {
      // A filled outline keeps its shape on the canvas when far corners
      // are pulled in to the margin.
      ax = std::clamp(ax, box.x0, box.x1), ay = std::clamp(ay, box.y0, box.y1);
      bx = std::clamp(bx, box.x0, box.x1), by = std::clamp(by, box.y0, box.y1);
      if (!down) cairo_move_to(cr_, ax, ay);
      cairo_line_to(cr_, bx, by);
      down = true;
    } else if (clipSegment(box, ax, ay, bx, by)) {
      if (!down || ax != cx || ay != cy) cairo_move_to(cr_, ax, ay);
      cairo_line_to(cr_, bx, by);
      down = bx == x && by == y;
    } else {
      down = false;
    }
    cx = x, cy = y;
  };
  for (const Path::Op& op : path.ops) {
    double x, y;
    switch (op.kind) {
      case Path::Op::Move:
        view_.toDevice(op.x, op.y, &x, &y);
        if (finite(x, y)) jump(x, y);
        break;
      case Path::Op::Line:
        view_.toDevice(op.x, op.y, &x, &y);
        if (finite(x, y)) lineTo(x, y);
        break;
      case Path::Op::Arc: {
        cairo_matrix_t m;
        const Affine& a = op.arc;
        cairo_matrix_init(&m, a.xx * view_.scale, -a.yx * view_.scale, a.xy * view_.scale, -a.yy * view_.scale,
                          (a.x0 - view_.x0) * view_.scale, view_.height - (a.y0 - view_.y0) * view_.scale);
        auto at = [&](double t, double* px, double* py) {
          *px = m.xx * std::cos(t) + m.xy * std::sin(t) + m.x0;
          *py = m.yx * std::cos(t) + m.yy * std::sin(t) + m.y0;
        };
        double ax, ay, ex, ey;
        at(op.t0, &ax, &ay);
        at(op.t1, &ex, &ey);
        if (!finite(ax, ay) || !finite(ex, ey)) break;
        double rx = std::fabs(m.xx) + std::fabs(m.xy), ry = std::fabs(m.yx) + std::fabs(m.yy);
        if (m.x0 + rx < box.x0 || m.x0 - rx > box.x1 || m.y0 + ry < box.y0 || m.y0 - ry > box.y1) {
          // Wholly off the canvas: the pen goes on from its end.
          if (have) lineTo(ax, ay);
          cx = ex, cy = ey, down = false;
          if (!have) jump(ex, ey);
          break;
        }
        if (!usable(m) || rx > kLargestArc || ry > kLargestArc) {
          // Flat on the plan (seen edge on), or too large for cairo: as
          // points along it.
          double r = std::max(rx, ry);
          int n = usable(m) ? std::clamp(static_cast<int>(std::fabs(op.t1 - op.t0) * std::sqrt(r)), 2, 20000) : 1;
          lineTo(ax, ay);
          for (int i = 1; i <= n; ++i) {
            double px, py;
            at(op.t0 + (op.t1 - op.t0) * i / n, &px, &py);
            lineTo(px, py);
          }
          break;
        }
        if (have) lineTo(ax, ay);
        else jump(ax, ay);
        if (!down) cairo_new_sub_path(cr_);
        cairo_save(cr_);
        cairo_transform(cr_, &m);
        if (op.t1 >= op.t0) cairo_arc(cr_, 0, 0, 1, op.t0, op.t1);
        else cairo_arc_negative(cr_, 0, 0, 1, op.t0, op.t1);
        cairo_restore(cr_);
        cx = ex, cy = ey, down = true;
        break;
      }
      case Path::Op::Close:
        if (have) {
          lineTo(sx, sy);
          if (down) cairo_close_path(cr_);
        }
        have = false;
        down = false;
        break;
    }
  }
  if (fill) {
    cairo_set_fill_rule(cr_, CAIRO_FILL_RULE_EVEN_ODD);
    // The outline too, so that a face seen edge on still shows.
    cairo_fill_preserve(cr_);
    cairo_set_dash(cr_, nullptr, 0, 0);
    cairo_set_line_width(cr_, 1.0);
    cairo_stroke(cr_);
    return;
  }
  cairo_set_line_width(cr_, w);
  setDashes(style, w);
  cairo_stroke(cr_);
}

void CairoSink::emitText(const TextRun& run, const Style& style) {
  if (run.text.empty()) return;
  const Affine& a = run.place;
  // Text units to canvas, y turned down as cairo's glyphs are.
  cairo_matrix_t m;
  cairo_matrix_init(&m, a.xx * view_.scale, -a.yx * view_.scale, -a.xy * view_.scale, a.yy * view_.scale,
                    (a.x0 - view_.x0) * view_.scale, view_.height - (a.y0 - view_.y0) * view_.scale);
  if (!usable(m)) return;
  // A text far smaller than a pixel is a speck: not worth the glyphs.
  double size = std::sqrt(std::fabs(m.xx * m.yy - m.xy * m.yx));
  setColour(style);
  if (size < 0.5) return;
  std::string utf8 = sys::toUtf8(run.text);
  cairo_save(cr_);
  cairo_new_path(cr_);
  cairo_set_matrix(cr_, &m);
  cairo_set_font_face(cr_, face_);
  cairo_set_font_size(cr_, emPerCapHeight());
  cairo_move_to(cr_, 0, 0);
  cairo_show_text(cr_, utf8.c_str());
  cairo_restore(cr_);
}

// ------------------------------------------------------------ extents

void ExtentsSink::add(double x, double y) {
  if (!std::isfinite(x) || !std::isfinite(y)) return;
  if (!any_) {
    minX = maxX = x;
    minY = maxY = y;
    any_ = true;
    return;
  }
  minX = std::min(minX, x), maxX = std::max(maxX, x);
  minY = std::min(minY, y), maxY = std::max(maxY, y);
}

void ExtentsSink::emitPath(const Path& path, const Style&, bool) {
  for (const Path::Op& op : path.ops) {
    if (op.kind == Path::Op::Move || op.kind == Path::Op::Line) {
      add(op.x, op.y);
    } else if (op.kind == Path::Op::Arc) {
      const Affine& a = op.arc;
      // The extremes of the ellipse within the sweep, and its ends.
      double ts[6] = {op.t0, op.t1, std::atan2(a.xy, a.xx), std::atan2(a.xy, a.xx) + M_PI, std::atan2(a.yy, a.yx),
                      std::atan2(a.yy, a.yx) + M_PI};
      double lo = std::min(op.t0, op.t1), hi = std::max(op.t0, op.t1);
      for (int i = 0; i < 6; ++i) {
        double t = ts[i];
        if (i >= 2) {
          // Bring the angle into the sweep when some turn of it is there.
          t = lo + std::fmod(std::fmod(t - lo, 2 * M_PI) + 2 * M_PI, 2 * M_PI);
          if (t > hi + 1e-12) continue;
        }
        double x, y;
        a.apply(std::cos(t), std::sin(t), &x, &y);
        add(x, y);
      }
    }
  }
}

void ExtentsSink::emitText(const TextRun& run, const Style&) {
  double w = textAdvance(run.text);
  const double corners[4][2] = {{0, 0}, {w, 0}, {w, 1}, {0, 1}};
  for (const auto& c : corners) {
    double x, y;
    run.place.apply(c[0], c[1], &x, &y);
    add(x, y);
  }
}

}  // namespace zepk::render
