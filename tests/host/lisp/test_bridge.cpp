// The LISP bridge: what compiled functions receive, what LISP gets back,
// status handling, failures, and calls from compiled code back into LISP.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string>

#include "host/ads.h"
#include "host/lisp/bridge.h"
#include "host/lisp/interp.h"
#include "host/lisp/printer.h"
#include "host/system/utf.h"

namespace zepk::lisp {
namespace {

std::string num(double d) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%g", d);
  return buf;
}

// A chain as text: "RTLB RTSHORT(1) RTDOTE RTSTR(a) RTLE", a group-code node
// as its code with its value.
std::string describe(const resbuf* rb) {
  std::string out;
  for (; rb; rb = rb->rbnext) {
    if (!out.empty()) out += ' ';
    const auto& v = rb->resval;
    auto pt = [&](const char* name) { return std::string(name) + "(" + num(v.rpoint[0]) + "," + num(v.rpoint[1]) + "," + num(v.rpoint[2]) + ")"; };
    switch (rb->restype) {
      case RTLB: out += "RTLB"; break;
      case RTLE: out += "RTLE"; break;
      case RTDOTE: out += "RTDOTE"; break;
      case RTNIL: out += "RTNIL"; break;
      case RTT: out += "RTT"; break;
      case RTVOID: out += "RTVOID"; break;
      case RTSHORT: out += "RTSHORT(" + std::to_string(v.rint) + ")"; break;
      case RTLONG: out += "RTLONG(" + std::to_string(v.rlong) + ")"; break;
      case RTREAL: out += "RTREAL(" + num(v.rreal) + ")"; break;
      case RTSTR: out += "RTSTR(" + sys::toUtf8(v.rstring ? v.rstring : u"") + ")"; break;
      case RTPOINT: out += pt("RTPOINT"); break;
      case RT3DPOINT: out += pt("RT3DPOINT"); break;
      case RTENAME: out += "RTENAME(" + std::to_string(v.rlname[0]) + ")"; break;
      case RTPICKS: out += "RTPICKS(" + std::to_string(v.rlname[0]) + ")"; break;
      default:
        switch (rbKind(rb->restype)) {
          case RbKind::Point: out += pt(std::to_string(rb->restype).c_str()); break;
          case RbKind::String: out += std::to_string(rb->restype) + "(" + sys::toUtf8(v.rstring ? v.rstring : u"") + ")"; break;
          case RbKind::Short: out += std::to_string(rb->restype) + "(" + std::to_string(v.rint) + ")"; break;
          case RbKind::Long: out += std::to_string(rb->restype) + "(" + std::to_string(v.rlong) + ")"; break;
          case RbKind::Real: out += std::to_string(rb->restype) + "(" + num(v.rreal) + ")"; break;
          case RbKind::Int64: out += std::to_string(rb->restype) + "(" + std::to_string(v.mnInt64) + ")"; break;
          case RbKind::Binary: out += std::to_string(rb->restype) + "[" + std::to_string(v.rbinary.clen) + "]"; break;
          default: out += std::to_string(rb->restype); break;
        }
    }
  }
  return out;
}

// Compiled functions of the tests run the hook of the test.
std::function<int()> gHook;
int runHook() { return gHook(); }
std::string gSeen;
int recordArgs() {
  gSeen = describe(acedGetArgs());
  acedRetT();
  return RSRSLT;
}
int echoList() {
  acedRetList(acedGetArgs());
  return RSRSLT;
}
int echoValue() {
  acedRetVal(acedGetArgs());
  return RSRSLT;
}

class Bridge : public ::testing::Test {
 protected:
  Interp in;
  StringOutput out;

  void SetUp() override {
    in.setOutput(&out);
    installBridge(in);
    define(u"hook", 1, runHook);
    define(u"rec", 2, recordArgs);
    define(u"echo-list", 3, echoList);
    define(u"echo-val", 4, echoValue);
  }
  void TearDown() override {
    undefineModuleFunctions(nullptr);
    gHook = nullptr;
    in.setOutput(nullptr);
  }
  void define(const char16_t* name, short code, AcedFunction f) {
    ASSERT_EQ(acedDefun(name, code), RTNORM);
    ASSERT_EQ(acedRegFunc(f, code), RTNORM);
  }
  // The value of the last expression, printed, or "ERROR".
  std::string eval(const std::string& src) {
    Value v;
    if (!in.evalText(sys::fromUtf8(src), &v)) return "ERROR";
    return sys::toUtf8(prin1String(v));
  }
  std::string args(const std::string& call) {
    gSeen = "?";
    EXPECT_EQ(eval(call), "T") << call;
    return gSeen;
  }
};

TEST_F(Bridge, ArgumentsArriveAsNodes) {
  // Points, and the coded form whose x is a group code.
  EXPECT_EQ(args("(rec '(1 2))"), "RTPOINT(1,2,0)");
  EXPECT_EQ(args("(rec '(1 2.5 3))"), "RT3DPOINT(1,2.5,3)");
  EXPECT_EQ(args("(rec '(10 1.0 2.0))"), "10(1,2,0)");
  EXPECT_EQ(args("(rec '(210 0 1) '(112 5 6))"), "210(0,1,0) 112(5,6,0)");
  EXPECT_EQ(args("(rec '(10.0 1 2) '(9 1 2) '(10 1))"), "RT3DPOINT(10,1,2) RT3DPOINT(9,1,2) RTPOINT(10,1,0)");
  // Lists that are no points.
  EXPECT_EQ(args("(rec '(10 1 2 3))"), "RTLB RTSHORT(10) RTSHORT(1) RTSHORT(2) RTSHORT(3) RTLE");
  EXPECT_EQ(args("(rec '(1) '(1 \"a\"))"), "RTLB RTSHORT(1) RTLE RTLB RTSHORT(1) RTSTR(a) RTLE");
  EXPECT_EQ(args("(rec '(0 . \"LINE\"))"), "RTLB RTSHORT(0) RTDOTE RTSTR(LINE) RTLE");
  EXPECT_EQ(args("(rec '(1 2 . 3))"), "RTLB RTSHORT(1) RTSHORT(2) RTDOTE RTSHORT(3) RTLE");
  EXPECT_EQ(args("(rec '((1 2) (\"a\" (3 4 5)) nil (8 . \"0\")))"),
            "RTLB RTPOINT(1,2,0) RTLB RTSTR(a) RT3DPOINT(3,4,5) RTLE RTNIL RTLB RTSHORT(8) RTDOTE RTSTR(0) RTLE RTLE");
  // Integers by size, atoms.
  EXPECT_EQ(args("(rec 32767 32768 -32768 -32769)"), "RTSHORT(32767) RTLONG(32768) RTSHORT(-32768) RTLONG(-32769)");
  EXPECT_EQ(args("(rec nil T 2.5 \"中文字符\" 'abc)"), "RTNIL RTT RTREAL(2.5) RTSTR(中文字符) RTSTR(ABC)");
  EXPECT_EQ(args("(rec (princ))"), "RTVOID");
  EXPECT_EQ(args("(rec)"), "");
}

TEST_F(Bridge, ValuesWithoutNodeFormAreRefused) {
  EXPECT_EQ(eval("(rec car)"), "ERROR");
  EXPECT_NE(out.text.find("; error: bad argument type: #<SUBR @"), std::string::npos) << out.text;
  EXPECT_EQ(eval("(rec (list 1 (lambda (x) x) '(1 (2 car))))"), "ERROR");
  EXPECT_EQ(eval("(+ 1 2)"), "3");
}

TEST_F(Bridge, DeeplyNestedListsCrossBothWays) {
  EXPECT_EQ(eval("(setq x \"end\") (repeat 20000 (setq x (list x))) (equal (echo-val x) x)"), "T");
}

TEST_F(Bridge, ValuesComeBackAsTheyWent) {
  const char* same[] = {
      "\"中文\"", "\"\"", "70000", "-32769", "2.5", "T", "nil", "(1 2 . 3)", "((1 . 2) (\"a\" . \"b\"))",
      "(1.5 2.5)", "(1.0 2.0 3.0)", "(\"a\" (1 (2 (3 \"b\"))) nil T)", "(0 . \"LINE\")", "(10 1 2 3)",
  };
  for (const char* v : same) EXPECT_EQ(eval(std::string("(echo-val '") + v + ")"), v) << v;
  // Points come back as reals; the coded form comes back with its z.
  EXPECT_EQ(eval("(echo-val '(1 2))"), "(1.0 2.0)");
  EXPECT_EQ(eval("(echo-val '(10 1.0 2.0))"), "(10 1.0 2.0 0.0)");
  // acedRetList: a chain that is one list is that list; members make one.
  EXPECT_EQ(eval("(echo-list '(\"a\" \"b\"))"), "(\"a\" \"b\")");
  EXPECT_EQ(eval("(echo-list \"a\" \"b\")"), "(\"a\" \"b\")");
  EXPECT_EQ(eval("(echo-list '(\"a\") '(\"b\"))"), "((\"a\") (\"b\"))");
  EXPECT_EQ(eval("(echo-list '(1 2 3))"), "((1.0 2.0 3.0))");
  EXPECT_EQ(eval("(echo-list)"), "nil");
}

TEST_F(Bridge, ResultChainsBecomeLispValues) {
  auto ret = [&](resbuf* rb, bool asList) {
    gHook = [=] {
      int st = asList ? acedRetList(rb) : acedRetVal(rb);
      acutRelRb(rb);
      return st == RTNORM ? RSRSLT : RTERROR;
    };
    return eval("(hook)");
  };
  ads_point p = {1, 2, 3};
  ads_name e = {7, 8};
  EXPECT_EQ(ret(acutBuildList(RT3DPOINT, p, RTPOINT, p, 0), true), "((1.0 2.0 3.0) (1.0 2.0))");
  EXPECT_EQ(ret(acutBuildList(RTSHORT, 0, RTDOTE, RTSTR, u"LINE", 0), true), "(0 . \"LINE\")");
  EXPECT_EQ(ret(acutBuildList(RTLB, RTSHORT, 1, RTLE, RTLB, RTLONG, 70000, RTLE, 0), true), "((1) (70000))");
  EXPECT_EQ(ret(acutBuildList(RTSHORT, 5, RTSHORT, 6, 0), false), "5");
  EXPECT_EQ(ret(acutBuildList(RTLB, RTNIL, RTT, RTREAL, 0.5, RTLE, RTSHORT, 6, 0), false), "(nil T 0.5)");
  // Group codes become dotted pairs by their value type.
  EXPECT_EQ(ret(acutBuildList(-1, e, RTDXF0, u"LINE", 8, u"图层", 10, p, 40, 2.5, 70, 1, 90, 70000, 0), true),
            "((-1 . <Entity name: 7>) (0 . \"LINE\") (8 . \"图层\") (10 1.0 2.0 3.0) (40 . 2.5) (70 . 1) (90 . 70000))");
  char bytes[] = {0x0a, static_cast<char>(0xff)};
  ads_binary bin = {2, bytes};
  EXPECT_EQ(ret(acutBuildList(1004, &bin, 160, int64_t(1) << 40, 0), true), "((1004 . \"0AFF\") (160 . 1.09951e+012))");
  // Extended data after -3 is grouped by application.
  EXPECT_EQ(ret(acutBuildList(RTDXF0, u"LINE", -3, 1001, u"APP1", 1000, u"x", 1070, 5, 1001, u"APP2", 1040, 1.5, 0), true),
            "((0 . \"LINE\") (-3 (\"APP1\" (1000 . \"x\") (1070 . 5)) (\"APP2\" (1040 . 1.5))))");
  // Chains that do not parse set no result.
  EXPECT_EQ(ret(acutBuildList(RTLE, 0), true), "nil");
  EXPECT_EQ(ret(acutBuildList(RTLB, RTSHORT, 1, 0), true), "nil");
  EXPECT_EQ(ret(acutBuildList(RTLB, RTDOTE, RTSHORT, 1, RTLE, 0), true), "nil");
  EXPECT_EQ(ret(acutBuildList(RTLB, RTSHORT, 1, RTDOTE, RTSHORT, 2, RTSHORT, 3, RTLE, 0), false), "nil");
  EXPECT_EQ(ret(nullptr, false), "nil");
}

TEST_F(Bridge, StatusDecidesWhatLispSees) {
  auto with = [&](int status, int results) {
    gHook = [=] {
      for (int i = 1; i <= results; ++i) acedRetInt(i);
      return status;
    };
    return eval("(hook)");
  };
  EXPECT_EQ(with(RSRSLT, 1), "1");
  EXPECT_EQ(with(RTNORM, 1), "1");
  EXPECT_EQ(with(RTNONE, 1), "1");
  EXPECT_EQ(with(RSERR, 1), "1");
  EXPECT_EQ(with(42, 1), "1");
  EXPECT_EQ(with(RTERROR, 1), "nil");
  EXPECT_EQ(with(RSRSLT, 0), "nil");
  EXPECT_EQ(with(RSRSLT, 2), "2");  // the last result stands
  EXPECT_EQ(out.text, "");

  gHook = [] { return acedRetVoid() == RTNORM ? RSRSLT : RTERROR; };
  Value v;
  ASSERT_TRUE(in.evalText(u"(hook)", &v));
  EXPECT_TRUE(isVoid(v));
}

TEST_F(Bridge, FailurePrintsItsTextAndGivesNil) {
  gHook = [] {
    acdbFail(u"\n参数太少!");
    return RTERROR;
  };
  EXPECT_EQ(eval("(list (hook) (+ 1 2))"), "(nil 3)");
  EXPECT_EQ(out.text, "\n参数太少!");
  out.text.clear();
  gHook = [] {
    acdbFail(u"50% done");
    return RTERROR;
  };
  EXPECT_EQ(eval("(hook)"), "nil");
  EXPECT_EQ(out.text, "50% done");
}

TEST_F(Bridge, ExceptionInCompiledFunctionIsALispError) {
  gHook = []() -> int { throw std::runtime_error("boom"); };
  EXPECT_EQ(eval("(hook)"), "ERROR");
  EXPECT_NE(out.text.find("; error: exception in HOOK: boom"), std::string::npos) << out.text;
  EXPECT_EQ(acedGetArgs(), nullptr);
  EXPECT_EQ(eval("(vl-catch-all-error-message (vl-catch-all-apply 'hook '(1)))"), "\"exception in HOOK: boom\"");
  EXPECT_EQ(eval("(rec 1)"), "T");
}

TEST_F(Bridge, OutsideACallThereIsNothingToAnswer) {
  EXPECT_EQ(acedGetArgs(), nullptr);
  EXPECT_EQ(acedGetFunCode(), RTERROR);
  EXPECT_EQ(acedRetT(), RTERROR);
  EXPECT_EQ(acedRetStr(u"x"), RTERROR);
}

TEST_F(Bridge, ArgumentChainMayBeCutOrRearranged) {
  // As a sub-list walker does: the members end in place, and the nodes
  // after them are no longer reachable from the head.
  gHook = [] {
    resbuf* rb = acedGetArgs();
    resbuf* second = rb->rbnext;
    rb->rbnext = nullptr;
    std::swap(second->restype, rb->restype);
    std::swap(second->resval, rb->resval);
    acedRetList(second);
    return RSRSLT;
  };
  EXPECT_EQ(eval("(hook \"a\" 2 \"b\")"), "(\"a\" \"b\")");
}

TEST_F(Bridge, DefinitionsBelongToTheirName) {
  EXPECT_EQ(eval("(type rec)"), "EXRXSUBR");
  EXPECT_EQ(eval("(REC 1)"), "T");
  EXPECT_EQ(acedDefun(u"T", 9), RTERROR);
  EXPECT_EQ(acedDefun(u"", 9), RTERROR);

  // Undefining takes the code it was defined with.
  EXPECT_EQ(eval("(setq keep rec)"), eval("rec"));
  EXPECT_EQ(acedUndef(u"rec", 3), RTERROR);
  EXPECT_EQ(eval("(rec 1)"), "T");
  EXPECT_EQ(acedUndef(u"REC", 2), RTNORM);
  EXPECT_EQ(eval("rec"), "nil");
  EXPECT_EQ(eval("(rec 1)"), "ERROR");
  // A copy of the function kept in a variable is gone with it.
  out.text.clear();
  EXPECT_EQ(eval("(keep 1)"), "ERROR");
  EXPECT_NE(out.text.find("no function definition: REC"), std::string::npos) << out.text;

  // Defined, but bound to nothing and owned by no module.
  ASSERT_EQ(acedDefun(u"C:LONELY", 77), RTNORM);
  EXPECT_EQ(eval("(type c:lonely)"), "EXRXSUBR");
  EXPECT_EQ(eval("(c:lonely)"), "ERROR");
  // Another definition of a name replaces the first.
  define(u"echo-val", 5, recordArgs);
  EXPECT_EQ(eval("(echo-val 1)"), "T");
}

TEST_F(Bridge, SelectionSetComesBackAsTheSameObject) {
  in.setVar("SS", Value::obj(new Pickset(11, 12)));
  gHook = [] {
    acedRetName(acedGetArgs()->resval.rlname, RTPICKS);
    return RSRSLT;
  };
  EXPECT_EQ(eval("(eq (hook ss) ss)"), "T");
  EXPECT_EQ(args("(rec ss)"), "RTPICKS(11)");
}

// LISP calls compiled code that calls LISP that calls compiled code.
TEST_F(Bridge, InvokeIsReentrant) {
  define(u"inner", 21, []() -> int {
    const resbuf* a = acedGetArgs();
    resbuf* r = acutBuildList(RTSHORT, acedGetFunCode(), RTSHORT, a->resval.rint * 2, 0);
    acedRetList(r);
    acutRelRb(r);
    return RSRSLT;
  });
  gHook = [] {
    std::string before = describe(acedGetArgs());
    resbuf* call = acutBuildList(RTSTR, u"middle", RTSHORT, acedGetArgs()->resval.rint, 0);
    resbuf* result = nullptr;
    int st = acedInvoke(call, &result);
    acutRelRb(call);
    // The outer call's arguments and code are still its own.
    resbuf* mine = acutBuildList(RTSTR, describe(acedGetArgs()) == before ? u"args kept" : u"args lost",
                                 RTSHORT, acedGetFunCode(), RTSHORT, st == RTNORM ? 1 : 0, 0);
    resbuf* tail = mine;
    while (tail->rbnext) tail = tail->rbnext;
    tail->rbnext = result;
    acedRetList(mine);
    acutRelRb(mine);
    return RSRSLT;
  };
  EXPECT_EQ(eval("(defun middle (x) (list 'm (inner (+ x 1))))"), "MIDDLE");
  EXPECT_EQ(eval("(hook 5 \"x\")"), "(\"args kept\" 1 1 (\"M\" (21.0 12.0)))");
  EXPECT_EQ(acedGetArgs(), nullptr);
}

int invokeStatus(const char16_t* fn, resbuf* rest, resbuf** result) {
  resbuf* call = acutBuildList(RTSTR, fn, 0);
  call->rbnext = rest;
  int st = acedInvoke(call, result);
  acutRelRb(call);
  return st;
}

TEST_F(Bridge, InvokeReportsErrorsAsStatus) {
  resbuf* r = nullptr;
  EXPECT_EQ(invokeStatus(u"nosuchfunction", nullptr, &r), RTERROR);
  EXPECT_EQ(r, nullptr);
  EXPECT_NE(out.text.find("; error: no function definition: NOSUCHFUNCTION"), std::string::npos) << out.text;

  ASSERT_EQ(eval("(defun bad (x) (/ x 0))"), "BAD");
  out.text.clear();
  EXPECT_EQ(invokeStatus(u"bad", acutBuildList(RTSHORT, 1, 0), &r), RTERROR);
  EXPECT_EQ(out.text, "; error: divide by zero\n");

  // Inside vl-catch-all-apply the compiled caller still gets the status and
  // goes on: the error does not unwind through it.
  gHook = [] {
    resbuf* r = nullptr;
    int st = invokeStatus(u"bad", acutBuildList(RTSHORT, 1, 0), &r);
    acedRetInt(st);
    return RSRSLT;
  };
  EXPECT_EQ(eval("(vl-catch-all-apply 'hook nil)"), std::to_string(RTERROR));
  // ... and *error* runs where the error happened, with its locals bound.
  ASSERT_EQ(eval("(defun bad (x / loc) (setq loc \"-inner\") (/ x 0))"), "BAD");
  ASSERT_EQ(eval("(defun *error* (m) (princ m) (princ loc))"), "*ERROR*");
  out.text.clear();
  EXPECT_EQ(eval("(vl-catch-all-apply 'hook nil)"), std::to_string(RTERROR));
  EXPECT_EQ(out.text, "divide by zero-inner");
  ASSERT_EQ(eval("(setq *error* nil)"), "nil");

  resbuf* wrong = acutBuildList(RTSHORT, 1, 0);
  EXPECT_EQ(acedInvoke(wrong, &r), RTERROR);
  acutRelRb(wrong);

  EXPECT_EQ(invokeStatus(u"+", acutBuildList(RTSHORT, 1, RTLONG, 70000, RTREAL, 0.5, 0), &r), RTNORM);
  EXPECT_EQ(describe(r), "RTREAL(70001.5)");
  acutRelRb(r);
  EXPECT_EQ(invokeStatus(u"list", acutBuildList(RTSHORT, 1, RTSTR, u"a", 0), &r), RTNORM);
  EXPECT_EQ(describe(r), "RTLB RTSHORT(1) RTSTR(a) RTLE");
  acutRelRb(r);
  EXPECT_EQ(invokeStatus(u"princ", nullptr, &r), RTNORM);
  EXPECT_EQ(describe(r), "RTVOID");
  acutRelRb(r);
  EXPECT_EQ(invokeStatus(u"vl-exit-with-value", acutBuildList(RTSHORT, 9, 0), &r), RTNORM);
  EXPECT_EQ(describe(r), "RTSHORT(9)");
  acutRelRb(r);
  EXPECT_EQ(invokeStatus(u"car", nullptr, nullptr), RTERROR);
}

TEST_F(Bridge, SymbolsAndQueuedExpressions) {
  resbuf* v = acutBuildList(RTLB, RTSHORT, 1, RTSTR, u"二", RTLB, RTREAL, 3.5, RTLE, RTLE, 0);
  EXPECT_EQ(acedPutSym(u"zz", v), RTNORM);
  acutRelRb(v);
  EXPECT_EQ(eval("zz"), "(1 \"二\" (3.5))");
  resbuf* got = nullptr;
  ASSERT_EQ(acedGetSym(u"ZZ", &got), RTNORM);
  EXPECT_EQ(describe(got), "RTLB RTSHORT(1) RTSTR(二) RTLB RTREAL(3.5) RTLE RTLE");
  acutRelRb(got);

  ASSERT_EQ(acedGetSym(u"never-bound-symbol", &got), RTNORM);
  EXPECT_EQ(describe(got), "RTNIL");
  acutRelRb(got);
  EXPECT_EQ(acedGetSym(u"car", &got), RTERROR);
  EXPECT_EQ(got, nullptr);

  EXPECT_EQ(acedPutSym(u"zz", nullptr), RTNORM);
  EXPECT_EQ(eval("zz"), "nil");
  resbuf* t = acutBuildList(RTT, 0);
  EXPECT_EQ(acedPutSym(u"T", t), RTERROR);
  acutRelRb(t);

  EXPECT_EQ(ads_queueexpr(u"(setq queued (* 6 7))"), RTNORM);
  EXPECT_EQ(eval("queued"), "nil");
  in.runQueued();
  EXPECT_EQ(eval("queued"), "42");
}

TEST_F(Bridge, PrintfFollowsTheHostFormats) {
  const char16_t* expected = u"中文=5 7 0.13 1.000000e+006";
  EXPECT_EQ(acutPrintf(u"%s=%d %ld %.2f %e", u"中文", 5, 7, 0.125, 1e6), int(std::u16string(expected).size()));
  EXPECT_EQ(out.text, sys::toUtf8(expected));
}

TEST_F(Bridge, BuildListTakesEachTypesValue) {
  ads_point p = {1, 2, 3};
  ads_name n = {5, 6};
  resbuf* rb = acutBuildList(RTSHORT, 7, RTLONG, -100000, RTREAL, 1.5, RTANG, 0.25, RTSTR, u"s", RTPOINT, p, RT3DPOINT, p,
                             RTENAME, n, RTPICKS, n, RTLB, RTNIL, RTT, RTLE, RTDOTE, RTVOID, RTNONE);
  EXPECT_EQ(describe(rb),
            "RTSHORT(7) RTLONG(-100000) RTREAL(1.5) 5004(0.25) RTSTR(s) RTPOINT(1,2,3) RT3DPOINT(1,2,3) RTENAME(5) "
            "RTPICKS(5) RTLB RTNIL RTT RTLE RTDOTE RTVOID");
  acutRelRb(rb);
  rb = acutBuildList(RTDXF0, u"CIRCLE", 62, 1, 1071, 70000, 330, n, 1010, p, 0);
  EXPECT_EQ(describe(rb), "0(CIRCLE) 62(1) 1071(70000) 330 1010(1,2,3)");
  acutRelRb(rb);
  EXPECT_EQ(acutBuildList(RTSHORT, 1, RTRESBUF, nullptr, 0), nullptr);
  EXPECT_EQ(acutBuildList(RTSHORT, 1, 88, 1, 0), nullptr);
  EXPECT_EQ(acutRelRb(nullptr), RTNORM);
}

}  // namespace
}  // namespace zepk::lisp
