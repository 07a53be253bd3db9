// The drawing through LISP and the compiled functions: a drawing made,
// changed and erased through LISP alone is saved, reopened and read again,
// and read by ezdxf; the compiled acdb*/aced* functions agree with LISP;
// entity and selection-set names behave as the host's.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>

#include "host/db/dxffile.h"
#include "host/dxf/group.h"
#include "host/dbapserv.h"
#include "host/editor/sysvars.h"
#include "host/lisp/bridge.h"
#include "host/lisp/drawing.h"
#include "host/lisp/printer.h"
#include "host/system/utf.h"

using namespace zepk;

namespace {

class Drawing : public ::testing::Test {
 protected:
  void SetUp() override {
    db_ = std::make_unique<AcDbDatabase>(true);
    acdbHostApplicationServices()->setWorkingDatabase(db_.get());
    in_.setOutput(&out_);
    lisp::installBridge(in_);
    lisp::installDrawing(in_);
  }
  void TearDown() override { acdbHostApplicationServices()->setWorkingDatabase(nullptr); }

  // The printed value of the last expression of the text.
  std::string eval(const std::string& text) {
    lisp::Value v;
    if (!in_.evalText(sys::fromUtf8(text), &v)) return "error: " + out_.text;
    return sys::toUtf8(lisp::prin1String(v));
  }

  void reopen(const std::string& path) {
    std::unique_ptr<AcDbDatabase> read;
    std::string error;
    ASSERT_TRUE(db::readDxf(path, &read, &error)) << error;
    db_ = std::move(read);
    acdbHostApplicationServices()->setWorkingDatabase(db_.get());
  }

  std::string tempPath(const char* name) {
    char dir[] = "/tmp/zepk-drawing-XXXXXX";
    EXPECT_NE(mkdtemp(dir), nullptr);
    dirs_.push_back(dir);
    return std::string(dir) + "/" + name;
  }
  ~Drawing() override {
    for (const std::string& d : dirs_) std::system(("rm -rf " + d).c_str());
  }

  std::unique_ptr<AcDbDatabase> db_;
  lisp::Interp in_;
  lisp::StringOutput out_;
  std::vector<std::string> dirs_;
};

// A small survey drawing made through LISP only.
const char* kSurvey = R"LSP(
(regapp "ZEPK_SURVEY")
(entmake '((0 . "LINE") (8 . "Roads") (62 . 1) (10 0.0 0.0 0.0) (11 100.0 0.0 0.0)
           (-3 ("ZEPK_SURVEY" (1000 . "centre line") (1040 . 7.5)))))
(entmake '((0 . "CIRCLE") (8 . "Wells") (10 50.0 20.0 0.0) (40 . 1.25)))
(entmake '((0 . "TEXT") (8 . "Notes") (10 5.0 5.0 0.0) (40 . 2.5) (1 . "Station 12")))
(entmake '((0 . "LWPOLYLINE") (100 . "AcDbEntity") (8 . "Parcels") (100 . "AcDbPolyline") (90 . 4) (70 . 1)
           (10 0.0 0.0) (10 30.0 0.0) (10 30.0 20.0) (10 0.0 20.0)))
(entmake '((0 . "POLYLINE") (8 . "Contours") (66 . 1) (70 . 8)))
(entmake '((0 . "VERTEX") (8 . "Contours") (70 . 32) (10 0.0 0.0 10.0)))
(entmake '((0 . "VERTEX") (8 . "Contours") (70 . 32) (10 10.0 5.0 12.5)))
(entmake '((0 . "SEQEND")))
(entmake '((0 . "BLOCK") (2 . "BENCHMARK") (70 . 2) (10 0.0 0.0 0.0)))
(entmake '((0 . "CIRCLE") (10 0.0 0.0 0.0) (40 . 0.5)))
(entmake '((0 . "ATTDEF") (10 1.0 0.0 0.0) (40 . 0.5) (1 . "") (2 . "ELEV") (3 . "Elevation") (70 . 0)))
(entmake '((0 . "ENDBLK")))
(entmake '((0 . "INSERT") (2 . "BENCHMARK") (8 . "Marks") (66 . 1) (10 70.0 40.0 0.0)))
(entmake '((0 . "ATTRIB") (8 . "Marks") (10 71.0 40.0 0.0) (40 . 0.5) (1 . "102.345") (2 . "ELEV")))
(entmake '((0 . "SEQEND")))
(entmake '((0 . "POINT") (8 . "Temporary") (10 1.0 1.0 0.0)))
(entdel (entlast))
(setq c (ssname (ssget "X" '((0 . "CIRCLE") (8 . "Wells"))) 0))
(entmod (subst '(40 . 2.0) (assoc 40 (entget c)) (entget c)))
(setvar "USERR1" 2.5)
(setvar "USERI2" 42)
(setvar "CLAYER" "Roads")
(setvar "LUNITS" 4)
)LSP";

TEST_F(Drawing, MadeThroughLispSavedAndReopened) {
  ASSERT_EQ(eval(kSurvey), "4") << out_.text;
  const std::string path = tempPath("survey.dxf");
  std::string error;
  ASSERT_TRUE(db::writeDxf(db_.get(), path, &error)) << error;
  reopen(path);

  EXPECT_EQ(eval("(sslength (ssget \"X\"))"), "6");
  EXPECT_EQ(eval("(ssget \"X\" '((8 . \"Temporary\")))"), "nil");
  EXPECT_EQ(eval("(cdr (assoc 40 (entget (ssname (ssget \"X\" '((0 . \"CIRCLE\"))) 0))))"), "2.0");
  EXPECT_EQ(eval("(setq l (entget (ssname (ssget \"X\" '((0 . \"LINE\"))) 0) '(\"*\")))"
                 "(list (assoc 8 l) (assoc 62 l) (assoc 11 l) (assoc -3 l))"),
            "((8 . \"Roads\") (62 . 1) (11 100.0 0.0 0.0) (-3 (\"ZEPK_SURVEY\" (1000 . \"centre line\") (1040 . 7.5))))");
  EXPECT_EQ(eval("(length (vl-remove-if-not '(lambda (g) (= (car g) 10))"
                 " (entget (ssname (ssget \"X\" '((0 . \"LWPOLYLINE\"))) 0))))"),
            "4");
  // The 3D polyline's vertices and the block reference's attribute.
  EXPECT_EQ(eval("(setq p (ssname (ssget \"X\" '((0 . \"POLYLINE\"))) 0))"
                 "(list (cdr (assoc 10 (entget (entnext p)))) (cdr (assoc 10 (entget (entnext (entnext p)))))"
                 " (cdr (assoc 0 (entget (entnext (entnext (entnext p)))))))"),
            "((0.0 0.0 10.0) (10.0 5.0 12.5) \"SEQEND\")");
  EXPECT_EQ(eval("(setq i (ssname (ssget \"X\" '((0 . \"INSERT\"))) 0))"
                 "(list (cdr (assoc 2 (entget i))) (cdr (assoc 1 (entget (entnext i)))))"),
            "(\"BENCHMARK\" \"102.345\")");
  EXPECT_EQ(eval("(cdr (assoc 70 (tblsearch \"BLOCK\" \"BENCHMARK\")))"), "2");
  EXPECT_EQ(eval("(mapcar 'getvar '(\"USERR1\" \"USERI2\" \"CLAYER\" \"LUNITS\"))"), "(2.5 42 \"Roads\" 4)");
  EXPECT_EQ(eval("(cdr (assoc 2 (tblsearch \"APPID\" \"ZEPK_SURVEY\")))"), "\"ZEPK_SURVEY\"");
}

bool ezdxfAvailable() { return std::system("/usr/bin/python3 -c 'import ezdxf' >/dev/null 2>&1") == 0; }

const char* kOracle = R"PY(
import sys, ezdxf
doc = ezdxf.readfile(sys.argv[1])
errs = []
def check(ok, what):
    if not ok: errs.append(what)
auditor = doc.audit()
check(not auditor.has_errors, "audit errors: %s" % [str(e.message) for e in auditor.errors])
msp = doc.modelspace()
types = sorted(e.dxftype() for e in msp)
check(types == ["CIRCLE", "INSERT", "LINE", "LWPOLYLINE", "POLYLINE", "TEXT"], "types %s" % types)
line = msp.query("LINE")[0]
check(line.dxf.layer == "Roads" and line.dxf.color == 1, "line layer/colour")
check(tuple(line.dxf.end) == (100.0, 0.0, 0.0), "line end %s" % (line.dxf.end,))
xd = line.get_xdata("ZEPK_SURVEY")
check([(t.code, t.value) for t in xd] == [(1000, "centre line"), (1040, 7.5)], "xdata %s" % xd)
circle = msp.query("CIRCLE")[0]
check(circle.dxf.layer == "Wells" and circle.dxf.radius == 2.0, "circle radius %s" % circle.dxf.radius)
check(tuple(circle.dxf.center) == (50.0, 20.0, 0.0), "circle centre")
text = msp.query("TEXT")[0]
check(text.dxf.text == "Station 12" and text.dxf.height == 2.5, "text")
lw = msp.query("LWPOLYLINE")[0]
check(lw.closed and [tuple(p[:2]) for p in lw.get_points()] == [(0, 0), (30, 0), (30, 20), (0, 20)], "lwpolyline")
pl = msp.query("POLYLINE")[0]
check(pl.is_3d_polyline, "3d polyline")
check([tuple(v.dxf.location) for v in pl.vertices] == [(0, 0, 10), (10, 5, 12.5)], "vertices")
ins = msp.query("INSERT")[0]
check(ins.dxf.name == "BENCHMARK" and ins.dxf.layer == "Marks", "insert")
check([(a.dxf.tag, a.dxf.text) for a in ins.attribs] == [("ELEV", "102.345")], "attribs")
blk = doc.blocks.get("BENCHMARK")
check(blk is not None and sorted(e.dxftype() for e in blk) == ["ATTDEF", "CIRCLE"], "block")
check(doc.header.get("$USERR1") == 2.5 and doc.header.get("$USERI2") == 42, "header user variables")
check(doc.header.get("$CLAYER") == "Roads" and doc.header.get("$LUNITS") == 4, "header CLAYER/LUNITS")
check("ZEPK_SURVEY" in doc.appids, "appid")
check(all(l in doc.layers for l in ["Roads", "Wells", "Notes", "Parcels", "Contours", "Marks"]), "layers")
print("\n".join(errs) if errs else "OK")
)PY";

TEST_F(Drawing, EzdxfReadsTheDrawingLispMade) {
  if (!ezdxfAvailable()) GTEST_SKIP() << "python3-ezdxf is not installed";
  ASSERT_EQ(eval(kSurvey), "4") << out_.text;
  const std::string path = tempPath("survey.dxf");
  std::string error;
  ASSERT_TRUE(db::writeDxf(db_.get(), path, &error)) << error;
  const std::string script = tempPath("oracle.py");
  std::ofstream(script) << kOracle;
  std::string out;
  FILE* p = popen(("/usr/bin/python3 " + script + " " + path + " 2>&1").c_str(), "r");
  ASSERT_NE(p, nullptr);
  char buf[512];
  while (size_t n = fread(buf, 1, sizeof buf, p)) out.append(buf, n);
  pclose(p);
  EXPECT_EQ(out, "OK\n");
}

TEST_F(Drawing, CompiledFunctionsAgreeWithLisp) {
  ads_point from = {1, 2, 0}, to = {4, 6, 0};
  resbuf* line = acutBuildList(RTDXF0, u"LINE", 8, u"Survey", 10, from, 11, to, 0);
  ASSERT_EQ(acdbEntMake(line), RTNORM);
  acutRelRb(line);
  ads_name last, first;
  ASSERT_EQ(acdbEntLast(last), RTNORM);
  ASSERT_EQ(acdbEntNext(nullptr, first), RTNORM);
  EXPECT_TRUE(ads_name_equal(last, first));
  ads_name none;
  EXPECT_EQ(acdbEntNext(last, none), RTERROR);

  // The list through the compiled function and through LISP.
  resbuf* got = acdbEntGet(last);
  ASSERT_NE(got, nullptr);
  lisp::Value asList;
  ASSERT_TRUE(lisp::rbToList(got, &asList));
  acutRelRb(got);
  EXPECT_EQ(eval("(setq e (entlast)) (entget e)"), sys::toUtf8(lisp::prin1String(asList)));

  // acdbEntMod of a changed chain.
  got = acdbEntGet(last);
  for (resbuf* r = got; r; r = r->rbnext)
    if (r->restype == 11) r->resval.rpoint[0] = 40.0;
  EXPECT_EQ(acdbEntMod(got), RTNORM);
  acutRelRb(got);
  EXPECT_EQ(eval("(cdr (assoc 11 (entget e)))"), "(40.0 6.0 0.0)");
  // A chain with a node of the wrong value type is refused.
  resbuf* bad = acutBuildList(RTDXF0, u"LINE", 10, from, 0);
  EXPECT_NE(acdbEntMake(bad), RTNORM);
  acutRelRb(bad);

  // Selection sets with a filter chain.
  resbuf* filter = acutBuildList(-4, u"<OR", RTDXF0, u"LINE", RTDXF0, u"ARC", -4, u"OR>", 0);
  ads_name ss;
  ASSERT_EQ(acedSSGet(u"X", nullptr, nullptr, filter, ss), RTNORM);
  acutRelRb(filter);
  int32_t n = 0;
  EXPECT_EQ(acedSSLength(ss, &n), RTNORM);
  EXPECT_EQ(n, 1);
  ads_name member;
  EXPECT_EQ(acedSSName(ss, 0, member), RTNORM);
  EXPECT_TRUE(ads_name_equal(member, last));
  EXPECT_EQ(acedSSMemb(last, ss), RTNORM);
  EXPECT_EQ(acedSSDel(last, ss), RTNORM);
  EXPECT_EQ(acedSSMemb(last, ss), RTERROR);
  ads_name same;
  EXPECT_EQ(acedSSAdd(last, ss, same), RTNORM);
  EXPECT_TRUE(ads_name_equal(same, ss));
  EXPECT_EQ(acedSSFree(ss), RTNORM);
  EXPECT_EQ(acedSSLength(ss, &n), RTERROR);
  filter = acutBuildList(RTDXF0, u"CIRCLE", 0);
  EXPECT_EQ(acedSSGet(u"X", nullptr, nullptr, filter, ss), RTERROR);
  acutRelRb(filter);
  // Asking for objects with no input left is a cancel.
  EXPECT_EQ(acedSSGet(nullptr, nullptr, nullptr, nullptr, ss), RTCAN);

  // Handles, tables, system variables, trans.
  resbuf* h = acdbEntGet(last);
  ads_name byHandle;
  for (resbuf* r = h; r; r = r->rbnext)
    if (r->restype == 5) {
      EXPECT_EQ(acdbHandEnt(r->resval.rstring, byHandle), RTNORM);
    }
  acutRelRb(h);
  EXPECT_TRUE(ads_name_equal(byHandle, last));
  resbuf* layer = acdbTblSearch(u"LAYER", u"survey", 0);
  ASSERT_NE(layer, nullptr);
  EXPECT_EQ(layer->restype, 0);
  acutRelRb(layer);
  EXPECT_EQ(acdbTblSearch(u"LAYER", u"nothing", 0), nullptr);
  EXPECT_EQ(acdbRegApp(u"ZEPK_TEST"), RTNORM);
  EXPECT_EQ(acdbRegApp(u"ZEPK_TEST"), RTERROR);

  resbuf v{};
  ASSERT_EQ(acedGetVar(u"clayer", &v), RTNORM);
  EXPECT_EQ(v.restype, RTSTR);
  EXPECT_EQ(std::u16string(v.resval.rstring), u"0");
  std::free(v.resval.rstring);
  resbuf set{};
  set.restype = RTSHORT;
  set.resval.rint = 3;
  EXPECT_EQ(acedSetVar(u"USERR3", &set), RTNORM);
  ASSERT_EQ(acedGetVar(u"USERR3", &v), RTNORM);
  EXPECT_EQ(v.restype, RTREAL);
  EXPECT_EQ(v.resval.rreal, 3.0);
  set.restype = RTREAL;
  set.resval.rreal = 1.5;
  EXPECT_EQ(acedSetVar(u"USERI3", &set), RTERROR);
  EXPECT_EQ(acedSetVar(u"NO_SUCH", &set), RTERROR);
  EXPECT_EQ(acedGetVar(u"NO_SUCH", &v), RTERROR);

  resbuf world{}, normal{};
  world.restype = RTSHORT;
  world.resval.rint = 0;
  normal.restype = RT3DPOINT;
  normal.resval.rpoint[0] = 1;
  ads_point p = {1, 2, 3}, q;
  ASSERT_EQ(acedTrans(p, &world, &normal, 0, q), RTNORM);
  EXPECT_DOUBLE_EQ(q[0], 2);
  EXPECT_DOUBLE_EQ(q[1], 3);
  EXPECT_DOUBLE_EQ(q[2], 1);
}

// A set a compiled function keeps and returns is one LISP object however
// often it comes back, and the host frees it when LISP drops it.
ads_name gKept;
int keepSet() {
  acedRetName(gKept, RTPICKS);
  return RSRSLT;
}

TEST_F(Drawing, OneLispObjectPerSelectionSet) {
  ASSERT_EQ(eval("(entmake '((0 . \"POINT\") (10 0 0 0)))"), "((0 . \"POINT\") (10 0 0 0))");
  ASSERT_EQ(acedSSGet(u"X", nullptr, nullptr, nullptr, gKept), RTNORM);
  ASSERT_EQ(acedDefun(u"keepset", 7), RTNORM);
  ASSERT_EQ(acedRegFunc(keepSet, 7), RTNORM);
  EXPECT_EQ(eval("(setq a (keepset) b (keepset)) (eq a b)"), "T");
  EXPECT_EQ(eval("(setq a nil) (sslength b)"), "1");
  int32_t n = 0;
  EXPECT_EQ(acedSSLength(gKept, &n), RTNORM);
  eval("(setq b nil)");
  EXPECT_EQ(acedSSLength(gKept, &n), RTERROR);
  acedUndef(u"keepset", 7);
  acedRegFunc(nullptr, 7);
}

TEST_F(Drawing, EntityNamesOfAClosedDrawingNameNothing) {
  ASSERT_EQ(eval("(entmake '((0 . \"POINT\") (10 0 0 0)))"), "((0 . \"POINT\") (10 0 0 0))");
  ads_name e;
  ASSERT_EQ(acdbEntLast(e), RTNORM);
  AcDbObjectId id;
  ASSERT_EQ(acdbGetObjectId(id, e), Acad::eOk);
  ads_name again;
  ASSERT_EQ(acdbGetAdsName(again, id), Acad::eOk);
  EXPECT_TRUE(ads_name_equal(e, again));
  eval("(setq old (entlast))");
  db_ = std::make_unique<AcDbDatabase>(true);
  acdbHostApplicationServices()->setWorkingDatabase(db_.get());
  EXPECT_EQ(acdbGetObjectId(id, e), Acad::eInvalidAdsName);
  EXPECT_EQ(eval("(entget old)"), "nil");
  EXPECT_EQ(eval("(entdel old)"), "nil");
  ads_name forged = {12345, 0};
  EXPECT_EQ(acdbGetObjectId(id, forged), Acad::eInvalidAdsName);
}

}  // namespace

namespace {

// A user system turned a quarter turn about Z and moved to (10, 20, 0):
// points go between it and the world both ways, displacements without the
// origin, and the display system is the user system.
TEST_F(Drawing, TransAndTheUserCoordinateSystem) {
  const double origin[3] = {10, 20, 0}, x[3] = {0, 2, 0}, y[3] = {-1, 0.5, 0};
  ASSERT_TRUE(editor::setCurrentUcs(origin, x, y));
  EXPECT_EQ(eval("(getvar \"UCSXDIR\")"), "(0.0 1.0 0.0)");
  EXPECT_EQ(eval("(getvar \"UCSYDIR\")"), "(-1.0 0.0 0.0)");
  EXPECT_EQ(eval("(getvar \"WORLDUCS\")"), "0");
  EXPECT_EQ(eval("(trans '(1 2 3) 1 0)"), "(8.0 21.0 3.0)");
  EXPECT_EQ(eval("(trans '(8 21 3) 0 1)"), "(1.0 2.0 3.0)");
  EXPECT_EQ(eval("(trans '(1 2 3) 1 0 T)"), "(-2.0 1.0 3.0)");
  EXPECT_EQ(eval("(trans '(1 2 3) 1 2)"), "(1.0 2.0 3.0)");
  ads_point p = {1, 2, 3}, q;
  ASSERT_TRUE(acdbUcs2Wcs(p, q, false));
  EXPECT_DOUBLE_EQ(q[0], 8);
  EXPECT_DOUBLE_EQ(q[1], 21);
  ASSERT_TRUE(acdbWcs2Ucs(q, q, false));
  EXPECT_DOUBLE_EQ(q[0], 1);
  EXPECT_DOUBLE_EQ(q[1], 2);
  // An entity's system follows its normal, not the user system.
  ads_point n = {0, 0, -1}, e;
  ASSERT_TRUE(acdbWcs2Ecs(p, e, n, false));
  EXPECT_DOUBLE_EQ(e[0], -1);
  EXPECT_DOUBLE_EQ(e[1], 2);
  EXPECT_DOUBLE_EQ(e[2], -3);
  ads_point zero = {0, 0, 0};
  EXPECT_FALSE(acdbEcs2Wcs(p, e, zero, false));
  // The user system is the drawing's: it is saved with it.
  const std::string path = tempPath("ucs.dxf");
  std::string error;
  ASSERT_TRUE(db::writeDxf(db_.get(), path, &error)) << error;
  reopen(path);
  EXPECT_EQ(eval("(getvar \"UCSORG\")"), "(10.0 20.0 0.0)");
  EXPECT_EQ(eval("(trans '(1 2 3) 1 0)"), "(8.0 21.0 3.0)");
}

}  // namespace

namespace {

// Groups a file gives an entity that its class does not model stay through
// entmod; groups a list gives that the class does not take are dropped.
TEST_F(Drawing, EntmodKeepsWhatTheFileGave) {
  ASSERT_EQ(eval("(length (entmake '((0 . \"LINE\") (10 0 0 0) (11 5 0 0))))"), "3");
  std::string bytes, error;
  ASSERT_TRUE(db::writeDxfBytes(db_.get(), &bytes, &error)) << error;
  const std::string eol = bytes.find("\r\n") != std::string::npos ? "\r\n" : "\n";
  size_t at = bytes.find(eol + "AcDbLine" + eol);
  ASSERT_NE(at, std::string::npos);
  at += eol.size() + 8 + eol.size() - 1;
  bytes.insert(at + 1, "  1" + eol + "kept by the file" + eol);
  std::unique_ptr<AcDbDatabase> read;
  ASSERT_TRUE(db::readDxfBytes(bytes, &read, &error)) << error;
  db_ = std::move(read);
  acdbHostApplicationServices()->setWorkingDatabase(db_.get());
  EXPECT_EQ(eval("(setq e (entlast)) (cdr (assoc 1 (entget e)))"), "\"kept by the file\"");
  EXPECT_EQ(eval("(length (entmod (list (cons -1 e) '(8 . \"Moved\") '(62 . 2) '(999 . \"not kept\"))))"), "4");
  EXPECT_EQ(eval("(mapcar '(lambda (c) (cdr (assoc c (entget e)))) '(1 8 62 999))"),
            "(\"kept by the file\" \"Moved\" 2 nil)");
  ASSERT_TRUE(db::writeDxfBytes(db_.get(), &bytes, &error)) << error;
  EXPECT_NE(bytes.find("kept by the file"), std::string::npos);
  EXPECT_EQ(bytes.find("not kept"), std::string::npos);
}

}  // namespace

namespace {

// Result buffers take each group code's value type from the one table of
// group codes: only points (held in one node) and handles (held as text)
// differ in form.
TEST(GroupNodes, ValueTypesFollowTheGroupCodeTable) {
  using lisp::RbKind;
  using dxf::GroupType;
  for (int code = 0; code <= 1071; ++code) {
    RbKind k = lisp::rbKind(code);
    switch (dxf::groupType(code)) {
      case GroupType::Real: EXPECT_TRUE(k == RbKind::Real || k == RbKind::Point) << code; break;
      case GroupType::Int16:
      case GroupType::Bool: EXPECT_EQ(k, RbKind::Short) << code; break;
      case GroupType::Int32: EXPECT_EQ(k, RbKind::Long) << code; break;
      case GroupType::Int64: EXPECT_EQ(k, RbKind::Int64) << code; break;
      case GroupType::String: EXPECT_EQ(k, RbKind::String) << code; break;
      case GroupType::Binary: EXPECT_EQ(k, RbKind::Binary) << code; break;
      case GroupType::Handle: EXPECT_TRUE(k == RbKind::Name || k == RbKind::String) << code; break;
      case GroupType::Unknown: EXPECT_EQ(k, RbKind::Unknown) << code; break;
    }
  }
  EXPECT_EQ(lisp::rbKind(10), RbKind::Point);
  EXPECT_EQ(lisp::rbKind(5), RbKind::String);
  EXPECT_EQ(lisp::rbKind(330), RbKind::Name);
  EXPECT_EQ(lisp::rbKind(1005), RbKind::String);
  EXPECT_EQ(lisp::rbKind(-1), RbKind::Name);
  EXPECT_EQ(lisp::rbKind(-4), RbKind::String);
}

}  // namespace
