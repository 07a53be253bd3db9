#include "host/render/text.h"

#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <mutex>

#include "host/db/textmetrics.h"
#include "host/system/utf.h"

namespace zepk::render {

const char* const kTextFont = "WenQuanYi Micro Hei";

namespace {

// One scratch context measures for everybody; cairo contexts are not
// shared between threads, so the lock covers every use.
struct Measurer {
  std::mutex lock;
  cairo_surface_t* surface = nullptr;
  cairo_t* cr = nullptr;
  double em = 1.0;  // em size per capital height
  double ascent = 1.0, descent = 0.25;

  Measurer() {
    surface = cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1);
    cr = cairo_create(surface);
    cairo_select_font_face(cr, kTextFont, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_font_options_t* fo = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(fo, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(fo, CAIRO_HINT_STYLE_NONE);
    cairo_set_font_options(cr, fo);
    cairo_font_options_destroy(fo);
    // Measured at a large size so that the figures are not rounded.
    cairo_set_font_size(cr, 1000.0);
    cairo_text_extents_t te;
    cairo_text_extents(cr, "H", &te);
    double cap = -te.y_bearing;
    if (cap > 0) em = 1000.0 / cap;
    cairo_font_extents_t fe;
    cairo_font_extents(cr, &fe);
    if (cap > 0) {
      ascent = fe.ascent / cap;
      descent = fe.descent / cap;
    }
    cairo_set_font_size(cr, em);
  }
  // At the end of the program cairo's and fontconfig's caches are let go
  // too, so that leak checkers see a clean exit.
  ~Measurer() {
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
    cairo_debug_reset_static_data();
    FcFini();
  }
};

Measurer& measurer() {
  static Measurer m;
  return m;
}

double installedAdvance(std::u16string_view raw) { return textAdvance(decodeTextCodes(raw)); }

}  // namespace

std::u16string decodeTextCodes(std::u16string_view s) {
  std::u16string out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] == u'%' && i + 2 < s.size() && s[i + 1] == u'%') {
      char16_t c = s[i + 2];
      switch (c) {
        case u'd': case u'D': out += u'\u00B0'; i += 2; continue;
        case u'p': case u'P': out += u'\u00B1'; i += 2; continue;
        case u'c': case u'C': out += u'\u00D8'; i += 2; continue;
        case u'%': out += u'%'; i += 2; continue;
        case u'u': case u'U': case u'o': case u'O': i += 2; continue;
        default: break;
      }
      if (c >= u'0' && c <= u'9') {
        int code = 0;
        size_t j = i + 2;
        for (; j < s.size() && j < i + 5 && s[j] >= u'0' && s[j] <= u'9'; ++j) code = code * 10 + (s[j] - u'0');
        out += static_cast<char16_t>(code);
        i = j - 1;
        continue;
      }
    }
    out += s[i];
  }
  return out;
}

double textAdvance(std::u16string_view plain) {
  if (plain.empty()) return 0.0;
  std::string utf8 = sys::toUtf8(std::u16string(plain));
  Measurer& m = measurer();
  std::lock_guard<std::mutex> g(m.lock);
  cairo_text_extents_t te;
  cairo_text_extents(m.cr, utf8.c_str(), &te);
  return te.x_advance;
}

double fontAscent() { return measurer().ascent; }
double fontDescent() { return measurer().descent; }
double emPerCapHeight() { return measurer().em; }

void installTextMetrics() { db::setTextAdvance(&installedAdvance); }

}  // namespace zepk::render
