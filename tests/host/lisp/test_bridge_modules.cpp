// Compiled modules: their messages in order, dispatch of their functions,
// arxload / arxunload / arx, and the sample module.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "host/ads.h"
#include "host/lisp/bridge.h"
#include "host/lisp/interp.h"
#include "host/lisp/printer.h"
#include "host/rxmodule.h"
#include "host/system/utf.h"

namespace zepk::lisp {
namespace {

std::vector<std::string> gLog;
AcRx::AppMsgCode gRefuse = AcRx::kNullMsg;  // the message that gets kRetError
bool gThrowOnInit = false;

const char* msgName(AcRx::AppMsgCode m) {
  switch (m) {
    case AcRx::kInitAppMsg: return "init";
    case AcRx::kUnloadAppMsg: return "unloadapp";
    case AcRx::kLoadDwgMsg: return "loaddwg";
    case AcRx::kUnloadDwgMsg: return "unloaddwg";
    case AcRx::kInvkSubrMsg: return "invoke";
    default: return "other";
  }
}

int fakeDirect() {
  acedRetStr(acedGetAppName());
  return RSRSLT;
}

// "zepkfake": defines fake-a (0, by message), fake-b (1, direct) and
// fake-left (2, never undefined by the module itself).
AcRx::AppRetCode fakeEntry(AcRx::AppMsgCode msg, void* pkt) {
  std::string entry = msgName(msg);
  if (msg == AcRx::kInvkSubrMsg) entry += ":" + std::to_string(acedGetFunCode());
  if ((msg == AcRx::kInitAppMsg || msg == AcRx::kUnloadAppMsg) && !pkt) entry += "(no handle)";
  gLog.push_back("fake " + entry);
  // A refusal comes after the work, so that what the module did before it
  // refused is there to be cleaned up.
  switch (msg) {
    case AcRx::kInitAppMsg:
      if (gThrowOnInit) throw std::runtime_error("init failed");
      acedDefun(u"fake-early", 9);
      break;
    case AcRx::kLoadDwgMsg:
      acedDefun(u"fake-a", 0);
      acedDefun(u"fake-b", 1);
      acedRegFunc(fakeDirect, 1);
      acedDefun(u"fake-left", 2);
      break;
    case AcRx::kUnloadDwgMsg:
      acedUndef(u"fake-a", 0);
      acedUndef(u"fake-b", 1);
      break;
    case AcRx::kInvkSubrMsg: {
      const resbuf* a = acedGetArgs();
      acedRetInt(100 + acedGetFunCode() + (a && a->restype == RTSHORT ? a->resval.rint : 0));
      return static_cast<AcRx::AppRetCode>(RSRSLT);
    }
    default: break;
  }
  return msg == gRefuse ? AcRx::kRetError : AcRx::kRetOK;
}

// "zepkfake2": the same code 0 for a function of its own.
AcRx::AppRetCode fake2Entry(AcRx::AppMsgCode msg, void*) {
  gLog.push_back(std::string("fake2 ") + msgName(msg));
  if (msg == AcRx::kLoadDwgMsg) acedDefun(u"fake2-a", 0);
  if (msg == AcRx::kInvkSubrMsg) {
    acedRetInt(200 + acedGetFunCode());
    return static_cast<AcRx::AppRetCode>(RSRSLT);
  }
  return AcRx::kRetOK;
}

AcRx::AppRetCode autoEntry(AcRx::AppMsgCode msg, void*) {
  gLog.push_back(std::string("auto ") + msgName(msg));
  return AcRx::kRetOK;
}

rx::ModuleRegistrar fake(u"ZepkFake", fakeEntry);
rx::ModuleRegistrar fake2(u"zepkfake2", fake2Entry);
rx::ModuleRegistrar autoloaded(u"zepkauto", autoEntry, true);

class Modules : public ::testing::Test {
 protected:
  Interp in;
  StringOutput out;

  void SetUp() override {
    in.setOutput(&out);
    installBridge(in);
    gLog.clear();
    gRefuse = AcRx::kNullMsg;
    gThrowOnInit = false;
  }
  void TearDown() override {
    gRefuse = AcRx::kNullMsg;
    rx::unloadAllModules();
    in.setOutput(nullptr);
  }
  std::string eval(const std::string& src) {
    Value v;
    if (!in.evalText(sys::fromUtf8(src), &v)) return "ERROR";
    return sys::toUtf8(prin1String(v));
  }
  using Log = std::vector<std::string>;
};

TEST_F(Modules, LoadCallAndUnloadInTheHostsOrder) {
  EXPECT_EQ(eval("(arxload \"zepkfake\")"), "\"zepkfake\"");
  EXPECT_EQ(gLog, (Log{"fake init", "fake loaddwg"}));
  EXPECT_EQ(eval("(arx)"), "(\"ZepkFake\")");

  gLog.clear();
  EXPECT_EQ(eval("(list (fake-a) (fake-a 5) (fake-left) (fake-b))"), "(100 105 102 \"ZepkFake\")");
  EXPECT_EQ(gLog, (Log{"fake invoke:0", "fake invoke:0", "fake invoke:2"}));

  gLog.clear();
  EXPECT_EQ(eval("(arxunload \"zepkfake\")"), "\"zepkfake\"");
  EXPECT_EQ(gLog, (Log{"fake unloaddwg", "fake unloadapp"}));
  EXPECT_EQ(eval("(arx)"), "nil");
  // What the module did not undefine itself goes with it.
  EXPECT_EQ(eval("(list fake-a fake-b fake-left fake-early)"), "(nil nil nil nil)");
}

TEST_F(Modules, FunctionCodesArePerModule) {
  ASSERT_EQ(eval("(arxload \"zepkfake\")"), "\"zepkfake\"");
  ASSERT_EQ(eval("(arxload \"zepkfake2\")"), "\"zepkfake2\"");
  gLog.clear();
  EXPECT_EQ(eval("(list (fake2-a) (fake-a) (fake2-a))"), "(200 100 200)");
  EXPECT_EQ(gLog, (Log{"fake2 invoke", "fake invoke:0", "fake2 invoke"}));
  EXPECT_EQ(eval("(arx)"), "(\"ZepkFake\" \"zepkfake2\")");
  // Shut-down unloads in reverse order.
  gLog.clear();
  EXPECT_EQ(rx::unloadAllModules(), 0);
  EXPECT_EQ(gLog, (Log{"fake2 unloaddwg", "fake2 unloadapp", "fake unloaddwg", "fake unloadapp"}));
}

TEST_F(Modules, NamesIgnoreFolderExtensionAndCase) {
  EXPECT_EQ(rx::moduleKey(u"C:\\Apps\\ZepkFake.ARX"), u"zepkfake");
  EXPECT_EQ(rx::moduleKey(u"/opt/zepk/zepkfake.crx"), u"zepkfake");
  EXPECT_EQ(rx::moduleKey(u"X:zepkfake"), u"zepkfake");
  EXPECT_EQ(rx::moduleKey(u"zepkfake.lsp"), u"zepkfake.lsp");
  EXPECT_EQ(eval("(arxload \"C:\\\\Apps\\\\ZEPKFAKE.arx\")"), "\"C:\\\\Apps\\\\ZEPKFAKE.arx\"");
  EXPECT_TRUE(rx::isLoaded(u"zepkfake"));
  EXPECT_EQ(eval("(arxunload \"zepkfake.crx\")"), "\"zepkfake.crx\"");
  EXPECT_FALSE(rx::registerModule(u"zepkFAKE.arx", autoEntry));
}

TEST_F(Modules, FailuresAreLispErrorsUnlessOnFailureIsGiven) {
  EXPECT_EQ(eval("(arxload \"nosuch\")"), "ERROR");
  EXPECT_EQ(out.text, "; error: LOAD failed: \"nosuch\"\n");
  EXPECT_EQ(eval("(arxload \"nosuch\" 'gone)"), "GONE");
  EXPECT_EQ(eval("(arxload \"nosuch\" (lambda () (strcat \"no\" \"pe\")))"), "\"nope\"");
  out.text.clear();
  EXPECT_EQ(eval("(arxunload \"zepkfake\")"), "ERROR");
  EXPECT_EQ(out.text, "; error: ARXUNLOAD failed: \"zepkfake\"\n");
  EXPECT_EQ(eval("(arxunload \"zepkfake\" nil)"), "nil");

  ASSERT_EQ(eval("(arxload \"zepkfake\")"), "\"zepkfake\"");
  gLog.clear();
  EXPECT_EQ(eval("(arxload \"zepkfake\" 'again)"), "AGAIN");
  EXPECT_TRUE(gLog.empty());
  EXPECT_EQ(eval("(arxload 1)"), "ERROR");
  EXPECT_EQ(eval("(arx 1)"), "ERROR");
}

TEST_F(Modules, ModuleCanRefuse) {
  // Refused at initialisation: not loaded, nothing it defined remains.
  gRefuse = AcRx::kInitAppMsg;
  EXPECT_EQ(eval("(arxload \"zepkfake\" 'refused)"), "REFUSED");
  EXPECT_EQ(eval("(list (arx) fake-early)"), "(nil nil)");
  EXPECT_EQ(gLog, (Log{"fake init"}));

  // Refused for the document: told to unload, not loaded.
  gLog.clear();
  gRefuse = AcRx::kLoadDwgMsg;
  EXPECT_EQ(eval("(arxload \"zepkfake\" 'refused)"), "REFUSED");
  EXPECT_EQ(gLog, (Log{"fake init", "fake loaddwg", "fake unloadapp"}));
  EXPECT_EQ(eval("(list (arx) fake-early fake-a)"), "(nil nil nil)");

  // Refused unload: stays loaded and keeps working.
  gRefuse = AcRx::kNullMsg;
  ASSERT_EQ(eval("(arxload \"zepkfake\")"), "\"zepkfake\"");
  gRefuse = AcRx::kUnloadAppMsg;
  gLog.clear();
  EXPECT_EQ(eval("(arxunload \"zepkfake\" 'stays)"), "STAYS");
  EXPECT_EQ(gLog, (Log{"fake unloaddwg", "fake unloadapp"}));
  EXPECT_EQ(eval("(list (arx) (fake-left))"), "((\"ZepkFake\") 102)");
  gRefuse = AcRx::kUnloadDwgMsg;
  gLog.clear();
  EXPECT_EQ(rx::unloadModule(u"zepkfake"), rx::Status::Refused);
  EXPECT_EQ(gLog, (Log{"fake unloaddwg"}));
  gRefuse = AcRx::kNullMsg;
  EXPECT_EQ(rx::unloadModule(u"zepkfake"), rx::Status::Ok);
}

TEST_F(Modules, ExceptionInAModuleIsARefusal) {
  gThrowOnInit = true;
  EXPECT_EQ(rx::loadModule(u"zepkfake"), rx::Status::Refused);
  EXPECT_NE(out.text.find("Unhandled exception in application \"ZepkFake\": init failed"), std::string::npos) << out.text;
  EXPECT_FALSE(rx::isLoaded(u"zepkfake"));
  EXPECT_EQ(eval("(+ 1 2)"), "3");
}

TEST_F(Modules, AutoloadAndDocuments) {
  EXPECT_EQ(rx::loadAutoloadModules(), 1);
  EXPECT_EQ(gLog, (Log{"auto init", "auto loaddwg"}));
  EXPECT_EQ(rx::loadedModules(), std::vector<std::u16string>{u"zepkauto"});
  ASSERT_EQ(acedArxLoad(u"zepkfake2"), RTNORM);
  EXPECT_EQ(acedArxLoad(u"zepkfake2"), RTERROR);
  gLog.clear();
  rx::documentOpened();
  rx::documentClosing();
  EXPECT_EQ(gLog, (Log{"auto loaddwg", "fake2 loaddwg", "fake2 unloaddwg", "auto unloaddwg"}));
  resbuf* names = acedArxLoaded();
  ASSERT_NE(names, nullptr);
  ASSERT_NE(names->rbnext, nullptr);
  EXPECT_EQ(std::u16string(names->rbnext->resval.rstring), u"zepkfake2");
  acutRelRb(names);
  EXPECT_EQ(acedArxUnload(u"zepkauto"), RTNORM);
  EXPECT_EQ(acedArxUnload(u"zepkauto"), RTERROR);
}

// The sample module that ships with the host.
TEST_F(Modules, SampleModule) {
  EXPECT_EQ(eval("(arxload \"zepksample\")"), "\"zepksample\"");
  EXPECT_EQ(out.text, "\nZEPK sample module loaded.");
  EXPECT_EQ(eval("(sample-midpoint '(0 0) '(4 2 6))"), "(2.0 1.0 3.0)");
  EXPECT_EQ(eval("(sample-midpoint '(10 2.0 4.0) '(0 0 0))"), "(5.0 1.0 2.0)");
  EXPECT_EQ(eval("(list (sample-sum 1 2 70000) (sample-sum 1 2.5) (sample-sum))"), "(70003 3.5 0)");
  EXPECT_EQ(eval("(sample-apply \"strcat\" '(\"中\" \"文\"))"), "\"中文\"");
  EXPECT_EQ(eval("(sample-apply \"list\" '(1 2 3))"), "(1.0 2.0 3.0)");
  EXPECT_EQ(eval("(sample-apply \"list\" '(1 (2 . \"x\") 3 4))"), "(1 (2 . \"x\") 3 4)");
  EXPECT_EQ(eval("(sample-apply \"sample-sum\" '(1 2))"), "3.0");
  EXPECT_EQ(eval("(sample-describe '(1 2) 70000 '(10 1.0 2.0) '(0 . \"LINE\") nil T)"),
            "(\"RTPOINT\" \"RTLONG\" \"10\" \"RTLB\" \"RTSHORT\" \"RTDOTE\" \"RTSTR\" \"RTLE\" \"RTNIL\" \"RTT\")");
  out.text.clear();
  EXPECT_EQ(eval("(list (sample-fail) (sample-sum \"x\") (sample-midpoint '(1 2)))"), "(nil nil nil)");
  EXPECT_EQ(out.text, "\nsample-fail: 示例失败!\nsample-sum: 参数应为数值.\nsample-midpoint: 需要两个点.");
  out.text.clear();
  EXPECT_EQ(eval("(sample-apply \"nosuch\" nil)"), "nil");
  EXPECT_NE(out.text.find("sample-apply: nosuch 调用失败."), std::string::npos) << out.text;
  out.text.clear();
  Value v;
  ASSERT_TRUE(in.evalText(u"(c:samplehello)", &v));
  EXPECT_TRUE(isVoid(v));
  EXPECT_EQ(out.text, "\nHello from zepksample.");
  EXPECT_EQ(eval("(arxunload \"zepksample\")"), "\"zepksample\"");
  EXPECT_EQ(eval("sample-sum"), "nil");
}

}  // namespace
}  // namespace zepk::lisp
