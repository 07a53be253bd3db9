#include "host/render/picture.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/render/canvas.h"
#include "host/render/scene.h"

namespace zepk::render {

namespace {

std::string lower(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

bool endsWith(const std::string& s, const char* suffix) {
  size_t n = std::strlen(suffix);
  return s.size() > n && s.compare(s.size() - n, n, suffix) == 0;
}

bool parseNumber(std::string_view s, double* out) {
  std::string t(s);
  while (!t.empty() && t.front() == ' ') t.erase(t.begin());
  while (!t.empty() && t.back() == ' ') t.pop_back();
  if (t.empty()) return false;
  char* end = nullptr;
  *out = std::strtod(t.c_str(), &end);
  return end && *end == 0 && std::isfinite(*out);
}

// Where the picture's canvas lies on the drawing.
bool layOut(AcDbDatabase* db, const PictureOptions& o, int* w, int* h, ViewMap* view, double ext[4], bool* hasExt,
            std::string* error) {
  *hasExt = modelSpaceExtents(db, &ext[0], &ext[1], &ext[2], &ext[3]);
  double x0, y0, x1, y1;
  if (o.hasWindow) {
    x0 = std::min(o.window[0], o.window[2]), x1 = std::max(o.window[0], o.window[2]);
    y0 = std::min(o.window[1], o.window[3]), y1 = std::max(o.window[1], o.window[3]);
  } else if (*hasExt) {
    // The extents with a small margin, so that lines on the edge show.
    double m = 0.02 * std::max(ext[2] - ext[0], ext[3] - ext[1]);
    if (!(m > 0)) m = 1;
    x0 = ext[0] - m, y0 = ext[1] - m, x1 = ext[2] + m, y1 = ext[3] + m;
  } else {
    // An empty drawing: the default limits.
    x0 = 0, y0 = 0, x1 = 12, y1 = 9;
  }
  double ww = x1 - x0, wh = y1 - y0;
  if (!(ww > 0) || !(wh > 0) || !std::isfinite(ww) || !std::isfinite(wh)) {
    *error = "The window to show has no area.";
    return false;
  }
  if (o.scale > 0) {
    double pw = std::ceil(ww * o.scale), ph = std::ceil(wh * o.scale);
    if (!(pw <= kMaxPictureSide) || !(ph <= kMaxPictureSide)) {
      *error = "At that scale the picture would be larger than " + std::to_string(kMaxPictureSide) +
               " pixels a side.";
      return false;
    }
    *w = std::max(1, static_cast<int>(pw));
    *h = std::max(1, static_cast<int>(ph));
  } else {
    *w = o.width, *h = o.height;
    if (*w < 1 || *h < 1 || *w > kMaxPictureSide || *h > kMaxPictureSide) {
      *error = "The picture size must be from 1 to " + std::to_string(kMaxPictureSide) + " pixels a side.";
      return false;
    }
  }
  // The window fills the canvas one way and is centred the other.
  double s = std::min(*w / ww, *h / wh);
  view->scale = s;
  view->width = *w;
  view->height = *h;
  view->x0 = (x0 + x1) / 2 - *w / (2 * s);
  view->y0 = (y0 + y1) / 2 - *h / (2 * s);
  return true;
}

}  // namespace

bool pictureFormatOf(std::string_view path, PictureFormat* out) {
  std::string l = lower(path);
  if (endsWith(l, ".png")) *out = PictureFormat::Png;
  else if (endsWith(l, ".svg")) *out = PictureFormat::Svg;
  else if (endsWith(l, ".pdf")) *out = PictureFormat::Pdf;
  else return false;
  return true;
}

bool parsePictureSize(std::string_view s, int* width, int* height) {
  size_t x = s.find_first_of("xX*");
  if (x == std::string_view::npos) return false;
  double w, h;
  if (!parseNumber(s.substr(0, x), &w) || !parseNumber(s.substr(x + 1), &h)) return false;
  if (w != std::floor(w) || h != std::floor(h) || w < 1 || h < 1 || w > kMaxPictureSide || h > kMaxPictureSide)
    return false;
  *width = static_cast<int>(w);
  *height = static_cast<int>(h);
  return true;
}

bool parseWindow(std::string_view s, double out[4]) {
  double v[4];
  size_t from = 0;
  for (int i = 0; i < 4; ++i) {
    size_t comma = i < 3 ? s.find(',', from) : s.size();
    if (comma == std::string_view::npos) return false;
    if (!parseNumber(s.substr(from, comma - from), &v[i])) return false;
    from = comma + 1;
  }
  if (v[0] == v[2] || v[1] == v[3]) return false;
  std::copy(v, v + 4, out);
  return true;
}

bool writePicture(AcDbDatabase* db, const std::string& path, const PictureOptions& o, std::string* error) {
  PictureFormat format;
  if (!pictureFormatOf(path, &format)) {
    *error = "Cannot write \"" + path + "\": a picture's name ends in .png, .svg or .pdf.";
    return false;
  }
  if (!db) {
    *error = "There is no drawing to show.";
    return false;
  }
  int w = 0, h = 0;
  ViewMap view;
  double ext[4];
  bool hasExt = false;
  if (!layOut(db, o, &w, &h, &view, ext, &hasExt, error)) return false;

  // A temporary name in the same folder, renamed into place at the end.
  std::string tmp = path + ".partXXXXXX";
  int fd = mkstemp(tmp.data());
  if (fd < 0) {
    *error = "Cannot write \"" + path + "\": " + std::strerror(errno) + ".";
    return false;
  }
  // Made private by mkstemp: given the permissions a new file has.
  mode_t mask = umask(0);
  umask(mask);
  fchmod(fd, 0666 & ~mask);
  close(fd);

  cairo_surface_t* surface = nullptr;
  switch (format) {
    case PictureFormat::Png: surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, w, h); break;
    case PictureFormat::Svg: surface = cairo_svg_surface_create(tmp.c_str(), w, h); break;
    case PictureFormat::Pdf: surface = cairo_pdf_surface_create(tmp.c_str(), w, h); break;
  }
  cairo_t* cr = cairo_create(surface);
  if (o.blackBackground) cairo_set_source_rgb(cr, 0, 0, 0);
  else cairo_set_source_rgb(cr, 1, 1, 1);
  cairo_paint(cr);
  {
    DrawingProps props(db);
    CairoSink sink(props, cr, view, o.blackBackground);
    sink.viewHeight = h / view.scale;
    sink.viewCenterX = view.x0 + w / (2 * view.scale);
    sink.viewCenterY = view.y0 + h / (2 * view.scale);
    drawModelSpaceWithOverlay(db, sink);
  }
  if (o.frame && hasExt) {
    double ax, ay, bx, by;
    view.toDevice(ext[0], ext[1], &ax, &ay);
    view.toDevice(ext[2], ext[3], &bx, &by);
    cairo_set_dash(cr, nullptr, 0, 0);
    cairo_set_line_width(cr, 1.0);
    if (o.blackBackground) cairo_set_source_rgb(cr, 1, 1, 1);
    else cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_rectangle(cr, ax, by, bx - ax, ay - by);
    cairo_stroke(cr);
  }
  cairo_status_t st = cairo_status(cr);
  cairo_destroy(cr);
  if (st == CAIRO_STATUS_SUCCESS && format == PictureFormat::Png) st = cairo_surface_write_to_png(surface, tmp.c_str());
  cairo_surface_finish(surface);
  if (st == CAIRO_STATUS_SUCCESS) st = cairo_surface_status(surface);
  cairo_surface_destroy(surface);
  if (st != CAIRO_STATUS_SUCCESS) {
    std::remove(tmp.c_str());
    *error = "Cannot write \"" + path + "\": " + cairo_status_to_string(st) + ".";
    return false;
  }
  if (std::rename(tmp.c_str(), path.c_str()) != 0) {
    *error = "Cannot write \"" + path + "\": " + std::strerror(errno) + ".";
    std::remove(tmp.c_str());
    return false;
  }
  return true;
}

}  // namespace zepk::render
