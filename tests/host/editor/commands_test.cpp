// The command stack and the input functions through the host API, without
// a drawing: commands registered by a module, found by their names, run on
// the answers given to them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/aced.h"
#include "host/editor/commands.h"

namespace {

std::vector<std::string> calls;
double got[3];
double gotReal;
int gotStatus;
ACHAR gotWord[32];

void cmdA() { calls.push_back("A"); }
void cmdB() { calls.push_back("B"); }
void cmdPointAndReal() {
  calls.push_back("PR");
  gotStatus = acedGetPoint(nullptr, u"\nPoint: ", got);
  if (gotStatus != RTNORM) return;
  acedInitGet(RSG_NONEG, u"Diameter");
  gotStatus = acedGetDist(got, u"\nRadius or [Diameter]: ", &gotReal);
  if (gotStatus == RTKWORD) acedGetInput(gotWord, 32);
}

class CommandStack : public ::testing::Test {
 protected:
  void SetUp() override {
    calls.clear();
    gotStatus = 0;
    gotWord[0] = 0;
  }
  void TearDown() override {
    acedRegCmds->removeGroup(u"TEST1");
    acedRegCmds->removeGroup(u"TEST2");
  }
};

TEST_F(CommandStack, NamesGlobalLocalAndPrefixes) {
  ASSERT_EQ(acedRegCmds->addCommand(u"TEST1", u"Survey", u"Cehui", ACRX_CMD_MODAL, cmdA), Acad::eOk);
  // The same names again in the group are refused; another group may reuse them.
  EXPECT_EQ(acedRegCmds->addCommand(u"TEST1", u"SURVEY", u"Other", ACRX_CMD_MODAL, cmdB), Acad::eDuplicateKey);
  EXPECT_EQ(acedRegCmds->addCommand(u"TEST1", u"Other", u"cehui", ACRX_CMD_MODAL, cmdB), Acad::eDuplicateKey);
  auto& c = zepk::editor::Commands::get();
  EXPECT_NE(c.find(u"cehui"), nullptr);
  EXPECT_NE(c.find(u"_survey"), nullptr);
  EXPECT_EQ(c.find(u"survey"), nullptr);  // the global name needs "_"
  EXPECT_EQ(c.find(u"_cehui"), nullptr);
  EXPECT_EQ(c.find(u".cehui"), nullptr);  // a module's command is no built-in
  EXPECT_EQ(acedCommandS(RTSTR, u"CEHUI", RTSTR, u"_Survey", RTNONE), RTNORM);
  EXPECT_EQ(calls, (std::vector<std::string>{"A", "A"}));
  EXPECT_EQ(acedCommandS(RTSTR, u"SURVEY", RTNONE), RTERROR);
  // A later group hides the name until it is removed.
  ASSERT_EQ(acedRegCmds->addCommand(u"TEST2", u"Survey", u"Cehui", ACRX_CMD_MODAL, cmdB), Acad::eOk);
  acedCommandS(RTSTR, u"cehui", RTNONE);
  EXPECT_EQ(acedRegCmds->removeGroup(u"test2"), Acad::eOk);
  EXPECT_EQ(acedRegCmds->removeGroup(u"TEST2"), Acad::eKeyNotFound);
  acedCommandS(RTSTR, u"cehui", RTNONE);
  EXPECT_EQ(calls, (std::vector<std::string>{"A", "A", "B", "A"}));
  EXPECT_EQ(acedRegCmds->removeCmd(u"TEST1", u"SURVEY"), Acad::eOk);
  EXPECT_EQ(c.find(u"cehui"), nullptr);
}

TEST_F(CommandStack, AnswersAsTextPointsAndNumbers) {
  acedRegCmds->addCommand(u"TEST1", u"PR", u"PR", ACRX_CMD_MODAL, cmdPointAndReal);
  ads_point p = {1, 2, 0};
  EXPECT_EQ(acedCommandS(RTSTR, u"PR", RTPOINT, p, RTREAL, 2.5, RTNONE), RTNORM);
  EXPECT_EQ(gotStatus, RTNORM);
  EXPECT_DOUBLE_EQ(got[1], 2);
  EXPECT_DOUBLE_EQ(gotReal, 2.5);
  // Typed forms: relative points, a distance given by a second point.
  EXPECT_EQ(acedCommandS(RTSTR, u"PR", RTSTR, u"10,10", RTSTR, u"@3,4", RTNONE), RTNORM);
  EXPECT_DOUBLE_EQ(gotReal, 5);
  // Bad answers are asked again; a keyword by its abbreviation.
  EXPECT_EQ(acedCommandS(RTSTR, u"PR", RTSTR, u"x", RTSTR, u"0,0", RTSTR, u"-1", RTSTR, u"d", RTNONE), RTNORM);
  EXPECT_EQ(gotStatus, RTKWORD);
  EXPECT_EQ(std::u16string(gotWord), u"Diameter");
  // Running out of answers cancels the command.
  EXPECT_EQ(acedCommandS(RTSTR, u"PR", RTSTR, u"0,0", RTNONE), RTCAN);
  EXPECT_EQ(gotStatus, RTCAN);
  EXPECT_EQ(zepk::editor::Commands::get().queued(), 0u);
}

TEST(PointText, FormsTheUserTypes) {
  double last[3] = {1, 1, 1}, p[3];
  using zepk::editor::parsePoint;
  ASSERT_TRUE(parsePoint(u"3,4", last, p));
  EXPECT_EQ(p[2], 0);
  ASSERT_TRUE(parsePoint(u"@3,4", last, p));
  EXPECT_EQ(p[0], 4);
  EXPECT_EQ(p[2], 1);
  ASSERT_TRUE(parsePoint(u"2<90", last, p));
  EXPECT_NEAR(p[0], 0, 1e-12);
  EXPECT_NEAR(p[1], 2, 1e-12);
  ASSERT_TRUE(parsePoint(u"@", last, p));
  EXPECT_EQ(p[0], 1);
  for (const char16_t* bad : {u"", u"3", u"3,", u"1,2,3,4", u"a,b", u"3 ,4", u"<5"})
    EXPECT_FALSE(parsePoint(bad, last, p));
}

}  // namespace
