// The interpreter's machinery as a program embedding it sees it: memory,
// recursion limits, reading and printing round trips, error positions.
#include <gtest/gtest.h>

#include "host/lisp/interp.h"
#include "host/lisp/printer.h"
#include "host/lisp/reader.h"
#include "host/system/utf.h"

namespace zepk::lisp {
namespace {

class InterpTest : public ::testing::Test {
 protected:
  InterpTest() { in.setOutput(&out); }
  // Evaluates text and gives the printed value of the last expression.
  std::string run(const char* text) {
    Value v;
    if (!in.evalText(sys::fromUtf8(text), &v)) return "<error>";
    return sys::toUtf8(prin1String(v));
  }
  Interp in;
  StringOutput out;
};

TEST_F(InterpTest, ProgramsLeaveNoObjectsBehind) {
  run("(defun build (n / acc) (repeat n (setq acc (cons (list n \"s\" 1.5) acc))) acc)");
  size_t before = Obj::live;
  // Millions of conses made and dropped: the count must come back.
  run("(repeat 6 (setq big (build 50000)) (setq big nil))");
  run("(setq s \"\") (repeat 1000 (setq s (strcat s \"ab\"))) (setq s nil)");
  run("(vl-catch-all-apply '(lambda () (setq tmp (build 100)) (/ 1 0)) nil) (setq tmp nil)");
  run("(setq sorted (vl-sort (build 1000) '(lambda (a b) (< (car a) (car b))))) (setq sorted nil)");
  EXPECT_EQ(Obj::live, before);
}

TEST_F(InterpTest, VeryLongAndDeepListsAreFreedWithoutRecursion) {
  size_t before = Obj::live;
  {
    Value longList;
    for (int i = 0; i < 1000000; ++i) longList = cons(Value::integer(i), std::move(longList));
    Value deep;
    for (int i = 0; i < 500000; ++i) deep = cons(std::move(deep), Value());
  }
  EXPECT_EQ(Obj::live, before);
}

TEST_F(InterpTest, RunawayRecursionIsAnErrorNotACrash) {
  in.maxDepth = 2000;
  EXPECT_EQ(run("(defun down (n) (down (1+ n))) (down 0)"), "<error>");
  EXPECT_NE(out.text.find("internal stack limit reached"), std::string::npos);
  // The interpreter is usable afterwards, with bindings restored.
  EXPECT_EQ(run("(setq n 'outer) (defun f (n) (if (> n 0) (f (1- n)) (/ 1 0))) (f 10) n"), "<error>");
  EXPECT_EQ(run("n"), "OUTER");
}

TEST_F(InterpTest, DeepNestingInTheReaderIsRefused) {
  std::u16string text(200000, u'(');
  Reader r(text);
  ReadError err;
  EXPECT_FALSE(r.next(&err).has_value());
  EXPECT_EQ(sys::toUtf8(err.message), "malformed list on input");
}

TEST_F(InterpTest, ReaderErrorsSayWhere) {
  EXPECT_EQ(run("(setq a 1)\n  (list 1\n  2"), "<error>");
  EXPECT_NE(out.text.find("malformed list on input at line 2, column 3"), std::string::npos) << out.text;
  out.text.clear();
  EXPECT_EQ(run("(+ 1 2))"), "<error>");
  EXPECT_NE(out.text.find("extra right paren on input at line 1, column 8"), std::string::npos) << out.text;
  out.text.clear();
  EXPECT_EQ(run("(princ \"abc)"), "<error>");
  EXPECT_NE(out.text.find("malformed string on input at line 1, column 8"), std::string::npos) << out.text;
}

TEST_F(InterpTest, Prin1ReadsBackAsTheSameValue) {
  const char* cases[] = {
      "(1 -2 3.5 \"a\\\"b\\\\c\\n\\t\" (X . Y) nil T)",
      "\"\\e\\r\\001 测试\"",
      "((1 . 2) (3 (4 (5))) . 6)",
      "(1.0e-006 123456.0 -0.5)",
  };
  for (const char* c : cases) {
    std::u16string src = sys::fromUtf8(c);
    Reader r(src);
    ReadError err;
    Value v = *r.next(&err);
    std::u16string printed = prin1String(v);
    Reader again(printed);
    Value w = *again.next(&err);
    EXPECT_TRUE(lispEqual(v, w, 0.0)) << c << " printed as " << sys::toUtf8(printed);
  }
}

TEST_F(InterpTest, IntegersAndRealsReadAsTheHostReadsThem) {
  EXPECT_EQ(run("(type 2147483647)"), "INT");
  EXPECT_EQ(run("(type 2147483648)"), "REAL");
  EXPECT_EQ(run("(type -2147483649)"), "REAL");
  EXPECT_EQ(run("(list 1. .5 -2. 1e3 1E-2 +7)"), "(1.0 0.5 -2.0 1000.0 0.01 7)");
  EXPECT_EQ(run("(list '1+ '- '.a 'a.b)"), "(1+ - .A A.B)");
}

TEST_F(InterpTest, FunctionsCanBeRedefinedWhileRunning) {
  EXPECT_EQ(run("(defun self () (defun self () 'second) 'first) (list (self) (self))"), "(FIRST SECOND)");
  EXPECT_EQ(run("(defun g (x) x) (g (progn (setq g nil) 5))"), "5");
}

}  // namespace
}  // namespace zepk::lisp
