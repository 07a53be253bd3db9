#include "host/dxf/group.h"

#include <gtest/gtest.h>

namespace zepk::dxf {
namespace {

// The edges of each range, where a table is most easily wrong.
TEST(GroupType, EdgesOfTheCodeRanges) {
  using T = GroupType;
  const struct {
    int code;
    GroupType type;
  } cases[] = {
      {0, T::String},    {1, T::String},    {5, T::Handle},    {9, T::String},    {10, T::Real},
      {39, T::Real},     {59, T::Real},     {60, T::Int16},    {79, T::Int16},    {80, T::Unknown},
      {89, T::Unknown},  {90, T::Int32},    {99, T::Int32},    {100, T::String},  {102, T::String},
      {103, T::Unknown}, {105, T::Handle},  {110, T::Real},    {149, T::Real},    {150, T::Unknown},
      {160, T::Int64},   {169, T::Int64},   {170, T::Int16},   {179, T::Int16},   {180, T::Unknown},
      {210, T::Real},    {239, T::Real},    {240, T::Unknown}, {270, T::Int16},   {280, T::Int16},
      {289, T::Int16},   {290, T::Bool},    {299, T::Bool},    {300, T::String},  {309, T::String},
      {310, T::Binary},  {319, T::Binary},  {320, T::Handle},  {330, T::Handle},  {360, T::Handle},
      {369, T::Handle},  {370, T::Int16},   {389, T::Int16},   {390, T::Handle},  {399, T::Handle},
      {400, T::Int16},   {409, T::Int16},   {410, T::String},  {419, T::String},  {420, T::Int32},
      {429, T::Int32},   {430, T::String},  {439, T::String},  {440, T::Int32},   {459, T::Int32},
      {460, T::Real},    {469, T::Real},    {470, T::String},  {479, T::String},  {480, T::Handle},
      {481, T::Handle},  {482, T::Unknown}, {998, T::Unknown}, {999, T::String},  {1000, T::String},
      {1001, T::String}, {1003, T::String}, {1004, T::Binary}, {1005, T::Handle}, {1009, T::String},
      {1010, T::Real},   {1040, T::Real},   {1059, T::Real},   {1060, T::Int16},  {1070, T::Int16},
      {1071, T::Int32},  {1072, T::Unknown}, {-1, T::Unknown}, {-3, T::Unknown},
  };
  for (const auto& c : cases) EXPECT_EQ(groupType(c.code), c.type) << "code " << c.code;
}

TEST(GroupType, KindOfValueHeld) {
  EXPECT_EQ(valueKind(8), ValueKind::Text);
  EXPECT_EQ(valueKind(330), ValueKind::Text);
  EXPECT_EQ(valueKind(310), ValueKind::Text);
  EXPECT_EQ(valueKind(150), ValueKind::Text);  // unknown codes keep their text
  EXPECT_EQ(valueKind(10), ValueKind::Real);
  EXPECT_EQ(valueKind(1041), ValueKind::Real);
  EXPECT_EQ(valueKind(70), ValueKind::Integer);
  EXPECT_EQ(valueKind(160), ValueKind::Integer);
  EXPECT_EQ(valueKind(290), ValueKind::Integer);
}

TEST(Group, AccessorsAndEquality) {
  Group a{8, std::string("WALLS"), 12};
  Group b{8, std::string("WALLS"), 40};
  EXPECT_EQ(a, b);  // where it came from does not matter
  EXPECT_TRUE(a.is(8, "WALLS"));
  EXPECT_FALSE(a.is(2, "WALLS"));
  EXPECT_EQ(a.real(), 0.0);
  Group r{10, 2.5, 0};
  EXPECT_EQ(r.real(), 2.5);
  EXPECT_EQ(r.text(), "");
  EXPECT_FALSE(r.is(10, ""));
  EXPECT_NE(r, (Group{10, 2.25, 0}));
  EXPECT_NE(r, (Group{20, 2.5, 0}));
}

}  // namespace
}  // namespace zepk::dxf
