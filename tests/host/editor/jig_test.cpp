// A jig fed by answers: each answer a sample, Enter ends the drag with the
// last one; keywords give kKW1 and on; the end of input cancels.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "host/dbjig.h"
#include "host/editor/commands.h"

using zepk::editor::Commands;

namespace {

void feed(std::vector<std::string> lines) {
  auto shared = std::make_shared<std::vector<std::string>>(std::move(lines));
  auto pos = std::make_shared<size_t>(0);
  Commands::get().quiet = true;
  Commands::get().setLineSource(
      [shared, pos](std::string* out) {
        if (*pos >= shared->size()) return false;
        *out = (*shared)[(*pos)++];
        return true;
      },
      false);
}

// Drags a radius from a centre, counting the updates it sees.
class RadiusJig : public AcEdJig {
 public:
  AcGePoint3d centre{1, 1, 0};
  double radius = 0;
  int updates = 0;
  DragStatus sampler() override {
    setDispPrompt(u"\nRadius: ");
    setKeywordList(u"Diameter Exit");
    double d = 0;
    DragStatus s = acquireDist(d, centre);
    if (s == kNormal) {
      if (d == radius) return kNoChange;
      radius = d;
    }
    return s;
  }
  Adesk::Boolean update() override {
    ++updates;
    return Adesk::kTrue;
  }
};

TEST(Jig, SamplesUntilEnter) {
  feed({"2", "4,1", "4,1", "", });
  RadiusJig j;
  EXPECT_EQ(j.drag(), AcEdJig::kNormal);
  EXPECT_DOUBLE_EQ(j.radius, 3.0);  // the last sample: (4,1) is 3 from the centre
  EXPECT_EQ(j.updates, 2);          // the repeated sample changed nothing
}

TEST(Jig, KeywordsCancelAndNothing) {
  feed({"2", "e"});
  RadiusJig j;
  EXPECT_EQ(j.drag(), AcEdJig::kKW2);
  feed({"D"});
  EXPECT_EQ(RadiusJig().drag(), AcEdJig::kKW1);
  feed({"3"});  // the input ends before Enter
  EXPECT_EQ(RadiusJig().drag(), AcEdJig::kCancel);
  // Enter first ends at once only when a null answer is accepted.
  feed({""});
  RadiusJig n;
  n.setUserInputControls(AcEdJig::kNullResponseAccepted);
  EXPECT_EQ(n.drag(), AcEdJig::kNull);
  EXPECT_EQ(n.updates, 0);
}

}  // namespace
