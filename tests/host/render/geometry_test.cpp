// The plain-data parts of pictures: dash patterns for cairo, the outline
// of wide polylines, hatch pattern lines, mtext layout, text codes and the
// font's metrics.
#include <gtest/gtest.h>

#include <cmath>

#include "host/db/textmetrics.h"
#include "host/render/canvas.h"
#include "host/render/hatchlines.h"
#include "host/render/mtext.h"
#include "host/render/outline.h"
#include "host/render/picture.h"
#include "host/render/text.h"

using namespace zepk::render;

namespace {

double polygonArea(const std::vector<Pt>& p) {
  double a = 0;
  for (size_t i = 0; i < p.size(); ++i) {
    const Pt& q = p[i];
    const Pt& r = p[(i + 1) % p.size()];
    a += q.x * r.y - r.x * q.y;
  }
  return std::fabs(a) / 2;
}

double totalLength(const std::vector<Segment>& s) {
  double l = 0;
  for (const Segment& g : s) l += std::hypot(g.b.x - g.a.x, g.b.y - g.a.y);
  return l;
}

TEST(CairoDashes, PatternsBecomeOnOffStartingWithADash) {
  // Dash, gap, dot, gap: the dot is a dash of no length.
  CairoDashes c = cairoDashes({10, -5, 0, -5});
  ASSERT_EQ(c.lengths, (std::vector<double>{10, 5, 0, 5}));
  EXPECT_EQ(c.offset, 0);
  // A pattern starting with a gap starts the stroke inside the pattern.
  c = cairoDashes({-4, 6});
  ASSERT_EQ(c.lengths, (std::vector<double>{6, 4}));
  EXPECT_DOUBLE_EQ(c.offset, 6);
  // Two dashes in a row join; ending with a dash joins the first one.
  c = cairoDashes({3, 2, -5, 4});
  ASSERT_EQ(c.lengths, (std::vector<double>{9, 5}));
  EXPECT_DOUBLE_EQ(c.offset, 4);
  // Too fine to see, or all dash: solid.
  EXPECT_TRUE(cairoDashes({1, -1}).lengths.empty());
  EXPECT_TRUE(cairoDashes({10}).lengths.empty());
  EXPECT_TRUE(cairoDashes({}).lengths.empty());
}

TEST(WideOutlines, TaperingStraightSegmentAndMitredCorner) {
  // One segment from width 2 to width 0: a triangle of area 10 * 2 / 2.
  std::vector<WideVertex> v = {{{0, 0}, 0, 2, 0}, {{10, 0}, 0, 0, 0}};
  auto o = wideOutlines(v, false, 0.01);
  ASSERT_EQ(o.size(), 1u);
  EXPECT_NEAR(polygonArea(o[0]), 10, 1e-9);
  // A right-angled corner of constant width 2: the two bands meet at the
  // mitre (11, -1) outside and (9, 1) inside, so no notch.
  v = {{{0, 0}, 0, 2, 2}, {{10, 0}, 0, 2, 2}, {{10, 10}, 0, 0, 0}};
  o = wideOutlines(v, false, 0.01);
  ASSERT_EQ(o.size(), 2u);
  EXPECT_NEAR(polygonArea(o[0]) + polygonArea(o[1]), 2 * 20, 1e-9);
  bool outer = false;
  for (const Pt& p : o[0]) outer = outer || (std::fabs(p.x - 11) < 1e-9 && std::fabs(p.y + 1) < 1e-9);
  EXPECT_TRUE(outer);
  // Zero width: no outline, the caller draws a line.
  v = {{{0, 0}, 0, 0, 0}, {{10, 0}, 0, 0, 0}};
  o = wideOutlines(v, false, 0.01);
  ASSERT_EQ(o.size(), 1u);
  EXPECT_TRUE(o[0].empty());
}

TEST(WideOutlines, ArcBandAndBulgePoints) {
  // A half circle of radius 5 (bulge 1) of width 2: a half annulus.
  std::vector<WideVertex> v = {{{0, 0}, 1, 2, 2}, {{10, 0}, 0, 0, 0}};
  auto o = wideOutlines(v, false, 1e-4);
  ASSERT_EQ(o.size(), 1u);
  EXPECT_NEAR(polygonArea(o[0]), M_PI * (36 - 16) / 2, 1e-2);
  // The arc's points lie on the circle, on the right of the chord for a
  // positive bulge going from (0,0) to (10,0) (counterclockwise).
  std::vector<Pt> p = bulgePoints({0, 0}, {10, 0}, 1, 1e-3);
  ASSERT_GT(p.size(), 10u);
  for (const Pt& q : p) EXPECT_NEAR(std::hypot(q.x - 5, q.y), 5, 1e-9);
  EXPECT_LT(p[p.size() / 2].y, -4.9);
  EXPECT_EQ(bulgePoints({0, 0}, {10, 0}, 0, 1e-3).size(), 2u);
}

TEST(HatchSegments, LinesCoverTheAreaAndSkipIslands) {
  std::vector<std::vector<Pt>> square = {{{0, 0}, {10, 0}, {10, 10}, {0, 10}}};
  PatternFamily f;
  f.angle = M_PI / 4;
  f.offset = {-std::sin(f.angle) * 0.5, std::cos(f.angle) * 0.5};
  std::vector<Segment> s;
  ASSERT_TRUE(hatchSegments(square, f, 100000, &s));
  // Lines 0.5 apart over an area of 100: about 200 units of line.
  EXPECT_NEAR(totalLength(s), 200, 5);
  // An island of area 16 in the middle is left out.
  auto withHole = square;
  withHole.push_back({{3, 3}, {7, 3}, {7, 7}, {3, 7}});
  s.clear();
  ASSERT_TRUE(hatchSegments(withHole, f, 100000, &s));
  EXPECT_NEAR(totalLength(s), (100 - 16) / 0.5, 5);
  for (const Segment& g : s) {
    double mx = (g.a.x + g.b.x) / 2, my = (g.a.y + g.b.y) / 2;
    EXPECT_FALSE(mx > 3.01 && mx < 6.99 && my > 3.01 && my < 6.99);
  }
  // Dashes of 1 with gaps of 1: half the length.
  f.dashes = {1, -1};
  s.clear();
  ASSERT_TRUE(hatchSegments(square, f, 100000, &s));
  EXPECT_NEAR(totalLength(s), 100, 8);
  // A family far too dense for its area is refused, not run.
  f.offset = {0, 1e-9};
  f.angle = 0;
  s.clear();
  EXPECT_FALSE(hatchSegments(square, f, 100000, &s));
}

double charWidth(std::u16string_view s) { return static_cast<double>(s.size()); }

TEST(MTextLayout, WrappingParagraphsAndFormatting) {
  // Words of one unit per character at height 1, wrapped at 7.
  MTextLayout l = layoutMText(u"aaa bbb ccc", 1, 7, 1, 0, charWidth);
  ASSERT_EQ(l.lines, 2);
  ASSERT_EQ(l.runs.size(), 2u);
  EXPECT_EQ(l.runs[0].text, u"aaa bbb");
  EXPECT_EQ(l.runs[1].text, u"ccc");
  EXPECT_DOUBLE_EQ(l.runs[0].y, -1);
  EXPECT_DOUBLE_EQ(l.runs[1].y, -1 - 5.0 / 3.0);
  // \P breaks; a CJK line wraps between characters.
  l = layoutMText(u"ab\\Pcd", 2, 0, 1, 0, charWidth);
  ASSERT_EQ(l.lines, 2);
  EXPECT_EQ(l.runs[1].text, u"cd");
  l = layoutMText(u"测量测量测量", 1, 4, 1, 0, charWidth);
  EXPECT_EQ(l.lines, 2);
  // Height, colour and grouping: {\H2x;\C1;big} then plain again.
  l = layoutMText(u"a{\\H2x;\\C1;big}c", 1, 0, 1, 0, charWidth);
  ASSERT_EQ(l.runs.size(), 3u);
  EXPECT_DOUBLE_EQ(l.runs[1].height, 2);
  EXPECT_EQ(l.runs[1].color, 1);
  EXPECT_EQ(l.runs[2].color, -1);
  EXPECT_DOUBLE_EQ(l.runs[2].x, 1 + 3 * 2);
  // Escapes, stacking and codes that take a value up to ";".
  l = layoutMText(u"\\fArial|b1;1\\S1^2;\\\\\\{", 1, 0, 1, 0, charWidth);
  ASSERT_EQ(l.runs.size(), 1u);
  EXPECT_EQ(l.runs[0].text, u"11/2\\{");
  // Centred lines in a box of width 10.
  l = layoutMText(u"abcd", 1, 10, 1, 1, charWidth);
  EXPECT_DOUBLE_EQ(l.runs[0].x, 3);
}

TEST(TextMetrics, CodesAndTheFontMeasureWhatIsDrawn) {
  EXPECT_EQ(decodeTextCodes(u"45%%d %%p0.5 %%c10 100%%% %%uU%%u %%065"), u"45\u00B0 \u00B10.5 \u00D810 100% U A");
  // Capital height 1: the ascent reaches above it, the descent below.
  EXPECT_GT(fontAscent(), 1.0);
  EXPECT_GT(fontDescent(), 0.0);
  double one = textAdvance(u"H"), two = textAdvance(u"HH");
  EXPECT_GT(one, 0.3);
  EXPECT_NEAR(two, 2 * one, 1e-9);
  // A CJK character is about a square, wider than a Latin "i".
  EXPECT_GT(textAdvance(u"测"), 1.0);
  EXPECT_GT(textAdvance(u"测"), 2 * textAdvance(u"i"));
  // Installed, the database measures with the same font (codes decoded).
  installTextMetrics();
  EXPECT_NEAR(zepk::db::textWidth(u"HH", 2.5), 2.5 * two, 1e-9);
  EXPECT_NEAR(zepk::db::textAdvance(u"%%d"), textAdvance(u"\u00B0"), 1e-9);
}

TEST(PictureOptions, SizesWindowsAndFormats) {
  int w = 0, h = 0;
  EXPECT_TRUE(parsePictureSize("1600x1200", &w, &h));
  EXPECT_EQ(w, 1600);
  EXPECT_EQ(h, 1200);
  EXPECT_TRUE(parsePictureSize("640X480", &w, &h));
  for (const char* bad : {"", "1600", "0x10", "10x0", "12.5x10", "x", "99999x10", "-5x10", "axb"})
    EXPECT_FALSE(parsePictureSize(bad, &w, &h)) << bad;
  double win[4];
  EXPECT_TRUE(parseWindow("0,0,10.5,-3", win));
  EXPECT_DOUBLE_EQ(win[3], -3);
  for (const char* bad : {"0,0,10", "0,0,0,5", "1,1,5,1", "a,0,1,1", "0,0,1,1,"}) EXPECT_FALSE(parseWindow(bad, win)) << bad;
  PictureFormat f;
  EXPECT_TRUE(pictureFormatOf("a/b.PNG", &f));
  EXPECT_EQ(f, PictureFormat::Png);
  EXPECT_TRUE(pictureFormatOf("x.svg", &f));
  EXPECT_EQ(f, PictureFormat::Svg);
  EXPECT_TRUE(pictureFormatOf("x.Pdf", &f));
  EXPECT_EQ(f, PictureFormat::Pdf);
  EXPECT_FALSE(pictureFormatOf("x.bmp", &f));
  EXPECT_FALSE(pictureFormatOf(".png", &f));
  EXPECT_FALSE(pictureFormatOf("png", &f));
}

}  // namespace
