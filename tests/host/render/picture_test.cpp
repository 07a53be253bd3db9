// Pictures of drawings made in the test, read back pixel by pixel: colours
// (index, true, ByLayer, ByBlock), layers off and frozen, blocks nested
// and in grids, wide polylines, hatches, text placed by its alignment;
// and the files: formats, bad names, failures that leave nothing behind.
#include <cairo.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "host/acgi.h"
#include "host/db/overlay.h"
#include "host/dbhatch.h"
#include "host/dbmtext.h"
#include "host/dbpl.h"
#include "host/dbsymtb.h"
#include "host/render/picture.h"
#include "host/render/text.h"

using namespace zepk::render;

namespace {

// Colours compare within a margin: edges of lines and glyphs are smoothed.
struct Rgb {
  int r, g, b;
  bool operator==(const Rgb& o) const {
    return std::abs(r - o.r) <= 40 && std::abs(g - o.g) <= 40 && std::abs(b - o.b) <= 40;
  }
};
std::ostream& operator<<(std::ostream& os, const Rgb& c) { return os << "(" << c.r << "," << c.g << "," << c.b << ")"; }
const Rgb kWhite{255, 255, 255}, kBlack{0, 0, 0}, kRed{255, 0, 0}, kGreen{0, 255, 0}, kBlue{0, 0, 255};

class Drawing {
 public:
  Drawing() : db_(new AcDbDatabase(true)) {}
  AcDbDatabase* db() { return db_.get(); }

  AcDbObjectId append(AcDbEntity* e, AcDbObjectId block = AcDbObjectId()) {
    if (block.isNull()) block = space();
    AcDbBlockTableRecord* rec = nullptr;
    EXPECT_EQ(acdbOpenObject(rec, block, AcDb::kForWrite), Acad::eOk);
    AcDbObjectId id;
    EXPECT_EQ(rec->appendAcDbEntity(id, e), Acad::eOk);
    e->close();
    rec->close();
    return id;
  }
  AcDbObjectId layer(const char16_t* name, int color, bool off = false, bool frozen = false) {
    AcDbLayerTable* t = nullptr;
    db_->getLayerTable(t, AcDb::kForWrite);
    auto* rec = new AcDbLayerTableRecord;
    rec->setName(name);
    rec->setColorIndex(static_cast<Adesk::Int16>(color));
    rec->setIsOff(off);
    rec->setIsFrozen(frozen);
    AcDbObjectId id;
    EXPECT_EQ(t->add(id, rec), Acad::eOk);
    rec->close();
    t->close();
    return id;
  }
  AcDbObjectId block(const char16_t* name) {
    AcDbBlockTable* t = nullptr;
    db_->getBlockTable(t, AcDb::kForWrite);
    auto* rec = new AcDbBlockTableRecord;
    rec->setName(name);
    AcDbObjectId id;
    EXPECT_EQ(t->add(id, rec), Acad::eOk);
    rec->close();
    t->close();
    return id;
  }
  AcDbObjectId space() {
    AcDbBlockTable* t = nullptr;
    db_->getBlockTable(t, AcDb::kForRead);
    AcDbObjectId id;
    t->getAt(u"*Model_Space", id);
    t->close();
    return id;
  }

 private:
  std::unique_ptr<AcDbDatabase> db_;
};

AcDbObjectId dashed(AcDbDatabase* db, const char16_t* name, std::initializer_list<double> dashes) {
  AcDbLinetypeTable* t = nullptr;
  db->getLinetypeTable(t, AcDb::kForWrite);
  auto* rec = new AcDbLinetypeTableRecord;
  rec->setName(name);
  rec->setNumDashes(static_cast<int>(dashes.size()));
  double total = 0;
  int i = 0;
  for (double d : dashes) rec->setDashLengthAt(i++, d), total += std::fabs(d);
  rec->setPatternLength(total);
  AcDbObjectId id;
  EXPECT_EQ(t->add(id, rec), Acad::eOk);
  rec->close();
  t->close();
  return id;
}

AcDbLine* line(double x0, double y0, double x1, double y1, int color = 256) {
  auto* l = new AcDbLine(AcGePoint3d(x0, y0, 0), AcGePoint3d(x1, y1, 0));
  l->setColorIndex(static_cast<Adesk::UInt16>(color));
  return l;
}

// An entity of a class the host does not know, which draws itself: a
// filled square in its own colour, a red circle and a text, through the
// graphics interface.
class Beacon : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(Beacon);
  AcGePoint3d at;
  Adesk::Boolean worldDraw(AcGiWorldDraw* wd) override {
    AcGiWorldGeometry& g = wd->geometry();
    AcGiSubEntityTraits& t = wd->subEntityTraits();
    AcGePoint3d sq[4] = {at + AcGeVector3d(-2, -2, 0), at + AcGeVector3d(2, -2, 0), at + AcGeVector3d(2, 2, 0),
                         at + AcGeVector3d(-2, 2, 0)};
    t.setFillType(kAcGiFillAlways);
    g.polygon(4, sq);
    t.setFillType(kAcGiFillNever);
    t.setColor(1);
    g.circle(at, 8, AcGeVector3d::kZAxis);
    t.setColor(256);  // ByLayer again
    g.text(at + AcGeVector3d(0, 10, 0), AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 4, 1, 0, u"B");
    return true;
  }
};
ACRX_DEFINE_MEMBERS(Beacon);

// A picture of the window (0,0)-(100,75) at 400 x 300: 4 pixels a unit.
class Picture : public ::testing::Test {
 protected:
  void SetUp() override {
    char tmpl[] = "/tmp/zepk-render-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    dir_ = tmpl;
    options_.width = 400, options_.height = 300;
    options_.hasWindow = true;
    options_.window[0] = 0, options_.window[1] = 0, options_.window[2] = 100, options_.window[3] = 75;
  }
  void TearDown() override {
    if (surface_) cairo_surface_destroy(surface_);
    std::filesystem::remove_all(dir_);
  }
  void render() {
    std::string path = dir_ + "/p.png", error;
    ASSERT_TRUE(writePicture(d_.db(), path, options_, &error)) << error;
    if (surface_) cairo_surface_destroy(surface_);
    surface_ = cairo_image_surface_create_from_png(path.c_str());
    ASSERT_EQ(cairo_surface_status(surface_), CAIRO_STATUS_SUCCESS);
    ASSERT_EQ(cairo_image_surface_get_width(surface_), 400);
    ASSERT_EQ(cairo_image_surface_get_height(surface_), 300);
  }
  // The pixel at the drawing point.
  Rgb at(double x, double y) {
    int px = static_cast<int>(std::floor(x * 4)), py = static_cast<int>(std::floor(300 - y * 4));
    unsigned char* data = cairo_image_surface_get_data(surface_);
    int stride = cairo_image_surface_get_stride(surface_);
    uint32_t v = *reinterpret_cast<uint32_t*>(data + py * stride + px * 4);
    return {static_cast<int>(v >> 16 & 0xFF), static_cast<int>(v >> 8 & 0xFF), static_cast<int>(v & 0xFF)};
  }
  // The box of pixels that are not background, in drawing units.
  void inkBox(double* x0, double* y0, double* x1, double* y1) {
    *x0 = *y0 = 1e9, *x1 = *y1 = -1e9;
    for (int py = 0; py < 300; ++py)
      for (int px = 0; px < 400; ++px) {
        Rgb c = at((px + 0.5) / 4, (300 - py - 0.5) / 4);
        if (c.r > 200 && c.g > 200 && c.b > 200) continue;
        *x0 = std::min(*x0, px / 4.0), *x1 = std::max(*x1, (px + 1) / 4.0);
        *y0 = std::min(*y0, (300 - py - 1) / 4.0), *y1 = std::max(*y1, (300 - py) / 4.0);
      }
  }

  std::string dir_;
  Drawing d_;
  PictureOptions options_;
  cairo_surface_t* surface_ = nullptr;
};

TEST_F(Picture, ColoursAndLayers) {
  d_.append(line(10, 10.125, 90, 10.125, 1));  // red
  AcDbObjectId blue = d_.layer(u"Blue", 5), off = d_.layer(u"Off", 1, true), frozen = d_.layer(u"Frozen", 1, false, true);
  AcDbLine* l = line(10, 20.125, 90, 20.125);  // ByLayer on Blue
  l->setLayer(blue);
  d_.append(l);
  l = line(10, 30.125, 90, 30.125);
  l->setLayer(off);
  d_.append(l);
  l = line(10, 40.125, 90, 40.125);
  l->setLayer(frozen);
  d_.append(l);
  l = line(10, 50.125, 90, 50.125);
  AcCmColor c;
  c.setRGB(0, 255, 0);
  l->setColor(c);
  d_.append(l);
  d_.append(line(10, 60.125, 90, 60.125, 7));  // black on white, white on black
  render();
  EXPECT_EQ(at(50, 10.125), kRed);
  EXPECT_EQ(at(50, 20.125), kBlue);
  EXPECT_EQ(at(50, 30.125), kWhite);
  EXPECT_EQ(at(50, 40.125), kWhite);
  EXPECT_EQ(at(50, 50.125), kGreen);
  EXPECT_EQ(at(50, 60.125), kBlack);
  EXPECT_EQ(at(50, 15), kWhite);
  options_.blackBackground = true;
  render();
  EXPECT_EQ(at(50, 60.125), kWhite);
  EXPECT_EQ(at(50, 15), kBlack);
}

// What a program draws for the moment: a hidden entity is left out, one
// drawn on top covers what is over it, vectors show in their colour, a
// highlighted entity is dashed; a full redraw takes all of it away.
TEST_F(Picture, TemporaryGraphicsUntilTheNextRedraw) {
  AcDbObjectId hidden = d_.append(line(10, 10.125, 90, 10.125, 1));
  AcDbObjectId under = d_.append(line(10, 20.125, 90, 20.125, 5));
  AcDbObjectId highlighted = d_.append(line(10, 40.125, 90, 40.125, 1));
  d_.append(line(50.125, 15, 50.125, 45, 3));  // green, crossing the blue line after it
  zepk::db::Overlay& overlay = zepk::db::overlayOf(d_.db());
  overlay.hidden.insert(hidden);
  overlay.highlighted.insert(highlighted);
  AcDbEntity* e = nullptr;
  ASSERT_EQ(acdbOpenObject(e, under, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(e->draw(), Acad::eOk);
  e->close();
  overlay.vectors.push_back({AcGePoint3d(10, 30.125, 0), AcGePoint3d(90, 30.125, 0), 3, false});
  render();
  EXPECT_EQ(at(30, 10.125), kWhite);
  EXPECT_EQ(at(50.125, 20.125), kBlue);  // drawn again over the green line
  EXPECT_EQ(at(30, 30.125), kGreen);
  int red = 0, gaps = 0;
  for (double x = 12; x < 88; x += 0.25) (at(x, 40.125) == kRed ? red : gaps)++;
  EXPECT_GT(red, 40);
  EXPECT_GT(gaps, 20);
  overlay.clear();
  render();
  EXPECT_EQ(at(30, 10.125), kRed);
  EXPECT_EQ(at(30, 30.125), kWhite);
  EXPECT_EQ(at(50.125, 20.125), kGreen);
}

TEST_F(Picture, BlocksByBlockNestedAndInGrids) {
  // A block of a ByBlock line and a red one; a block holding it.
  AcDbObjectId inner = d_.block(u"INNER");
  d_.append(line(0, 0.0625, 10, 0.0625, 0), inner);
  d_.append(line(0, 2.0625, 10, 2.0625, 1), inner);
  AcDbObjectId outer = d_.block(u"OUTER");
  auto* nested = new AcDbBlockReference(AcGePoint3d(0, 0, 0), inner);
  nested->setColorIndex(0);  // ByBlock: takes the outer reference's colour
  d_.append(nested, outer);
  // OUTER at (20, 20), scaled 2, green.
  auto* r = new AcDbBlockReference(AcGePoint3d(20, 20, 0), outer);
  r->setScaleFactors(AcGeScale3d(2, 2, 1));
  r->setColorIndex(3);
  d_.append(r);
  // INNER in a grid of 2 columns 30 apart, 2 rows 20 apart, blue.
  auto* m = new AcDbMInsertBlock(AcGePoint3d(10, 40.0625, 0), inner, 2, 2, 30, 20);
  m->setColorIndex(5);
  d_.append(m);
  render();
  EXPECT_EQ(at(30, 20.125), kGreen);  // (0, 0.0625) * 2 + (20, 20)
  EXPECT_EQ(at(30, 24.125), kRed);    // the red line keeps its colour
  EXPECT_EQ(at(45, 20.125), kWhite);  // beyond the scaled line's end at x = 40
  for (double x : {15.0, 45.0})
    for (double y : {40.125, 60.125}) EXPECT_EQ(at(x, y), kBlue) << x << "," << y;
}

TEST_F(Picture, BlocksThatHoldThemselvesStillFinish) {
  // A holds a line and itself twice over; B and C hold each other. Each
  // is drawn once down the chain and the picture is made.
  AcDbObjectId a = d_.block(u"A"), b = d_.block(u"B"), c = d_.block(u"C");
  d_.append(line(0, 0.125, 10, 0.125, 1), a);
  for (int i = 0; i < 2; ++i) {
    d_.append(new AcDbBlockReference(AcGePoint3d(0, 5, 0), a), a);
    d_.append(new AcDbBlockReference(AcGePoint3d(0, 0, 0), c), b);
    d_.append(new AcDbBlockReference(AcGePoint3d(0, 0, 0), b), c);
  }
  d_.append(new AcDbBlockReference(AcGePoint3d(20, 20, 0), a));
  d_.append(new AcDbBlockReference(AcGePoint3d(20, 20, 0), b));
  render();
  EXPECT_EQ(at(25, 20.125), kRed);
  EXPECT_EQ(at(25, 25.125), kWhite);  // A inside A is not entered
}

TEST_F(Picture, WidePolylinesAndHatches) {
  auto* p = new AcDbPolyline;
  p->addVertexAt(0, AcGePoint2d(10, 10), 0, 4, 4);
  p->addVertexAt(1, AcGePoint2d(40, 10), 0, 4, 0);  // tapers to nothing at (70, 10)
  p->addVertexAt(2, AcGePoint2d(70, 10));
  p->setColorIndex(1);
  d_.append(p);
  // A solid square with a square hole; a pattern of vertical lines.
  auto* h = new AcDbHatch;
  h->setPattern(AcDbHatch::kPreDefined, u"SOLID");
  h->appendLoop(AcDbHatch::kExternal | AcDbHatch::kPolyline, {{10, 30}, {40, 30}, {40, 60}, {10, 60}}, {});
  h->appendLoop(AcDbHatch::kPolyline, {{20, 40}, {30, 40}, {30, 50}, {20, 50}}, {});
  h->setColorIndex(5);
  d_.append(h);
  auto* lines = new AcDbHatch;
  lines->setPattern(AcDbHatch::kUserDefined, u"_USER");
  AcDbHatch::PatternLine vertical;
  vertical.angle = M_PI / 2;
  vertical.baseX = 0.125;
  vertical.offsetX = -5;  // lines at x = 50.125, 55.125, 60.125 ...
  lines->setPatternDefinitions({vertical});
  lines->appendLoop(AcDbHatch::kExternal | AcDbHatch::kPolyline, {{48, 30}, {72, 30}, {72, 60}, {48, 60}}, {});
  lines->setColorIndex(3);
  d_.append(lines);
  render();
  EXPECT_EQ(at(25, 11.6), kRed);   // within the band 2 either side
  EXPECT_EQ(at(25, 12.6), kWhite);
  EXPECT_EQ(at(55, 11.6), kWhite);  // narrower past the taper's middle
  EXPECT_EQ(at(55, 10.125), kRed);
  EXPECT_EQ(at(15, 35), kBlue);
  EXPECT_EQ(at(25, 45), kWhite);  // the hole
  EXPECT_EQ(at(50.125, 45), kGreen);
  EXPECT_EQ(at(55.125, 45), kGreen);
  EXPECT_EQ(at(52.5, 45), kWhite);
  EXPECT_EQ(at(50.125, 62), kWhite);  // not past the boundary
}

TEST_F(Picture, LinetypesAndLineweights) {
  // Dashes of 5 and gaps of 5, at LTSCALE 1 and at the entity's scale 2;
  // the same pattern on a layer, taken ByLayer.
  AcDbObjectId dash = dashed(d_.db(), u"DASH5", {5, -5});
  AcDbLine* l = line(0, 10.125, 100, 10.125, 1);
  l->setLinetype(dash);
  d_.append(l);
  l = line(0, 20.125, 100, 20.125, 1);
  l->setLinetype(dash);
  l->setLinetypeScale(2);
  d_.append(l);
  AcDbObjectId layer = d_.layer(u"Dashed", 5);
  {
    AcDbLayerTableRecord* rec = nullptr;
    ASSERT_EQ(acdbOpenObject(rec, layer, AcDb::kForWrite), Acad::eOk);
    rec->setLinetypeObjectId(dash);
    rec->close();
  }
  l = line(0, 30.125, 100, 30.125);
  l->setLayer(layer);
  d_.append(l);
  // A polyline starts the pattern again at each vertex, unless its
  // linetype runs on along it (plinegen).
  AcDbObjectId dash64 = dashed(d_.db(), u"DASH64", {6, -4});
  for (int gen = 0; gen < 2; ++gen) {
    auto* p = new AcDbPolyline;
    for (unsigned i = 0; i < 3; ++i) p->addVertexAt(i, AcGePoint2d(i * 7.0, 60.125 + gen * 5));
    p->setLinetype(dash64);
    p->setColorIndex(1);
    p->setPlinegen(gen == 1);
    d_.append(p);
  }
  // A heavy line: 2.11 mm is eight pixels at 96 to the inch.
  l = line(10, 50, 90, 50, 3);
  l->setLineWeight(AcDb::kLnWt211);
  d_.append(l);
  render();
  EXPECT_EQ(at(2.5, 10.125), kRed);
  EXPECT_EQ(at(7.5, 10.125), kWhite);
  EXPECT_EQ(at(12.5, 10.125), kRed);
  EXPECT_EQ(at(5, 20.125), kRed);
  EXPECT_EQ(at(15, 20.125), kWhite);
  EXPECT_EQ(at(25, 20.125), kRed);
  EXPECT_EQ(at(2.5, 30.125), kBlue);
  EXPECT_EQ(at(7.5, 30.125), kWhite);
  EXPECT_EQ(at(7.5, 60.125), kRed);     // the second segment starts with a dash
  EXPECT_EQ(at(6.5, 60.125), kWhite);
  EXPECT_EQ(at(7.5, 65.125), kWhite);   // along the whole: still the gap from 6 to 10
  EXPECT_EQ(at(10.5, 65.125), kRed);
  EXPECT_EQ(at(50, 50.8), kGreen);
  EXPECT_EQ(at(50, 49.2), kGreen);
  EXPECT_EQ(at(50, 51.5), kWhite);
}

TEST_F(Picture, CustomEntitiesDrawThemselves) {
  if (!Beacon::gpDesc)
    Beacon::gpDesc = newAcRxClass(u"TestBeacon", u"AcDbEntity", [] { return static_cast<AcRxObject*>(new Beacon); },
                                  u"TESTBEACON", u"tests");
  auto* b = new Beacon;
  b->at = AcGePoint3d(50.125, 30.125, 0);
  b->setColorIndex(5);
  d_.append(b);
  // On a layer that is off, it is not asked to draw.
  AcDbObjectId off = d_.layer(u"Hidden", 3, true);
  b = new Beacon;
  b->at = AcGePoint3d(20, 30, 0);
  b->setLayer(off);
  d_.append(b);
  render();
  EXPECT_EQ(at(50.125, 30.125), kBlue);
  EXPECT_EQ(at(58.125, 30.125), kRed);
  EXPECT_EQ(at(50.125, 34), kWhite);
  double x0, y0, x1, y1;
  inkBox(&x0, &y0, &x1, &y1);
  EXPECT_NEAR(y1, 44.125, 0.5);  // the text's capitals reach 30 + 10 + 4
  EXPECT_GT(x0, 40);          // nothing of the hidden one
}

TEST_F(Picture, GeometryFarOffTheCanvasStillCrossesItRightly) {
  // Ends ten million units away (forty million pixels, beyond what the
  // canvas's numbers hold), and a circle of that radius whose top passes
  // through the window; a line with no number for an end spoils nothing.
  d_.append(line(-1e7, 20.125, 1e7, 20.125, 1));
  d_.append(line(50.125, -1e7, 50.125, 1e7, 3));
  auto* c = new AcDbCircle(AcGePoint3d(25.125, 60.125 - 1e7, 0), AcGeVector3d::kZAxis, 1e7);
  c->setColorIndex(5);
  d_.append(c);
  d_.append(line(std::nan(""), 0, 10, 10, 1));
  render();
  EXPECT_EQ(at(10, 20.125), kRed);
  EXPECT_EQ(at(90, 20.125), kRed);
  EXPECT_EQ(at(50.125, 5), kGreen);
  EXPECT_EQ(at(50.125, 70), kGreen);
  EXPECT_EQ(at(25.125, 60.125), kBlue);
  EXPECT_EQ(at(25.125, 62), kWhite);
  EXPECT_EQ(at(75, 40), kWhite);
}

TEST_F(Picture, TextStandsOnItsBaselineAtItsHeight) {
  // Capitals 10 high from (10, 20): the ink is 10 high and as wide as the
  // font measures.
  d_.append(new AcDbText(AcGePoint3d(10, 20, 0), u"HEH", AcDbObjectId::kNull, 10, 0));
  render();
  double x0, y0, x1, y1;
  inkBox(&x0, &y0, &x1, &y1);
  EXPECT_NEAR(y0, 20, 0.5);
  EXPECT_NEAR(y1, 30, 0.5);
  EXPECT_NEAR(x0, 10, 1.5);
  EXPECT_NEAR(x1, 10 + textAdvance(u"HEH") * 10, 1.5);
}

TEST_F(Picture, RightAlignedTextEndsAtItsPoint) {
  auto* t = new AcDbText(AcGePoint3d(0, 0, 0), u"HHHH", AcDbObjectId::kNull, 8, 0);
  t->setHorizontalMode(AcDb::kTextRight);
  t->setAlignmentPoint(AcGePoint3d(90, 40, 0));
  d_.append(t);
  render();
  double x0, y0, x1, y1;
  inkBox(&x0, &y0, &x1, &y1);
  EXPECT_NEAR(x1, 90, 1.5);
  EXPECT_NEAR(y0, 40, 0.5);
  EXPECT_NEAR(x1 - x0, textAdvance(u"HHHH") * 8, 2.5);
}

TEST_F(Picture, MTextWrapsAroundItsAttachmentPoint) {
  // Two paragraphs in a box 40 wide, the second red: the lines are
  // centred on (50, 40) both ways.
  auto* m = new AcDbMText;
  m->setLocation(AcGePoint3d(50, 40, 0));
  m->setTextHeight(5);
  m->setWidth(40);
  m->setAttachment(AcDbMText::kMiddleCenter);
  m->setContents(u"HHHHHH\\P{\\C1;HHHH}");
  d_.append(m);
  render();
  double x0, y0, x1, y1;
  inkBox(&x0, &y0, &x1, &y1);
  // Lines 5 high with their baselines 5 * 5 / 3 apart: 5 + 8.33 tall.
  EXPECT_NEAR(y1 - y0, 5 + 25.0 / 3, 0.75);
  EXPECT_NEAR((y0 + y1) / 2, 40, 0.75);
  EXPECT_NEAR((x0 + x1) / 2, 50, 0.75);
  EXPECT_NEAR(x1 - x0, textAdvance(u"HHHHHH") * 5, 1.5);  // less the side bearings
  // The second line is red.
  bool red = false;
  for (double x = 35; x < 65; x += 0.25) red = red || at(x, y0 + 2.5) == kRed;
  EXPECT_TRUE(red);
}

TEST_F(Picture, MTextMasksWhatIsBehindIt) {
  // A green line under an mtext with a mask in the background colour: the
  // line shows outside the box (grown by half the height each way at
  // factor 2) and not inside; a mask in its own colour, blue.
  d_.append(line(0, 40.125, 100, 40.125, 3));
  for (int own = 0; own < 2; ++own) {
    auto* m = new AcDbMText;
    m->setLocation(AcGePoint3d(20 + own * 40, 42, 0));
    m->setTextHeight(4);
    m->setWidth(20);
    m->setContents(u"HH");
    m->setBackgroundFill(true);
    m->setBackgroundScaleFactor(2);
    if (own) {
      AcCmColor c;
      c.setColorIndex(5);
      m->setBackgroundFillColor(c);
    } else {
      m->setUseBackgroundColor(true);
    }
    d_.append(m);
  }
  render();
  EXPECT_EQ(at(10, 40.125), kGreen);
  EXPECT_EQ(at(30, 40.125), kWhite);  // masked: the box reaches down to 42 - 4 - 2
  EXPECT_EQ(at(45, 40.125), kGreen);
  EXPECT_EQ(at(70, 40.125), kBlue);
}

TEST_F(Picture, FilesOfEachFormatAndFailuresLeaveNothing) {
  d_.append(line(0, 0, 10, 10, 1));
  std::string error;
  for (const char* name : {"a.svg", "a.pdf", "A.PNG"}) {
    std::string path = dir_ + "/" + name;
    ASSERT_TRUE(writePicture(d_.db(), path, options_, &error)) << error;
    std::ifstream f(path, std::ios::binary);
    std::string head(5, '\0');
    f.read(head.data(), 5);
    if (name[2] == 's') EXPECT_NE(head.find("<"), std::string::npos);
    if (name[2] == 'p') EXPECT_EQ(head, "%PDF-");
    if (name[2] == 'P') EXPECT_EQ(head.substr(1, 3), "PNG");
  }
  // A name of another kind: a message, and no file.
  EXPECT_FALSE(writePicture(d_.db(), dir_ + "/a.bmp", options_, &error));
  EXPECT_EQ(error, "Cannot write \"" + dir_ + "/a.bmp\": a picture's name ends in .png, .svg or .pdf.");
  EXPECT_FALSE(std::filesystem::exists(dir_ + "/a.bmp"));
  // A folder that is not there: a message, nothing left behind.
  EXPECT_FALSE(writePicture(d_.db(), dir_ + "/none/a.png", options_, &error));
  EXPECT_NE(error.find("No such file"), std::string::npos) << error;
  // A scale too large for a picture.
  PictureOptions big = options_;
  big.scale = 1e6;
  EXPECT_FALSE(writePicture(d_.db(), dir_ + "/big.png", big, &error));
  EXPECT_FALSE(std::filesystem::exists(dir_ + "/big.png"));
  int files = 0;
  for (auto& e : std::filesystem::directory_iterator(dir_)) files += e.is_regular_file() ? 1 : 0;
  EXPECT_EQ(files, 3);  // the three pictures, no temporary ones
  // At a scale the size follows from the window: 100 x 75 at 2 a unit.
  PictureOptions scaled = options_;
  scaled.scale = 2;
  ASSERT_TRUE(writePicture(d_.db(), dir_ + "/s.png", scaled, &error)) << error;
  cairo_surface_t* s = cairo_image_surface_create_from_png((dir_ + "/s.png").c_str());
  EXPECT_EQ(cairo_image_surface_get_width(s), 200);
  EXPECT_EQ(cairo_image_surface_get_height(s), 150);
  cairo_surface_destroy(s);
}

}  // namespace
