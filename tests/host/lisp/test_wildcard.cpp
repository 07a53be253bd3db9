#include "host/lisp/wildcard.h"

#include <gtest/gtest.h>

#include <string>

namespace zepk::lisp {
namespace {

bool m(std::u16string_view s, std::u16string_view p) { return wcMatch(s, p, true); }
bool mi(std::u16string_view s, std::u16string_view p) { return wcMatch(s, p, false); }

TEST(Wildcard, SingleCharacterClasses) {
  EXPECT_TRUE(m(u"A7", u"@#"));
  EXPECT_FALSE(m(u"77", u"@#"));
  EXPECT_FALSE(m(u"A", u"@#"));  // too short
  EXPECT_TRUE(m(u"-", u"."));
  EXPECT_TRUE(m(u" ", u"."));
  EXPECT_FALSE(m(u"a", u"."));
  EXPECT_FALSE(m(u"5", u"."));
  EXPECT_TRUE(m(u"x", u"?"));
  EXPECT_FALSE(m(u"", u"?"));
  EXPECT_FALSE(m(u"xy", u"?"));
  // Letters beyond ASCII: Latin-1 and Chinese are alphabetic, Chinese
  // punctuation is not.
  EXPECT_TRUE(m(u"\u00e9", u"@"));
  EXPECT_TRUE(m(u"测试", u"@@"));
  EXPECT_TRUE(m(u"\u3002", u"."));
  EXPECT_FALSE(m(u"\u00d7", u"@"));  // the multiplication sign
}

TEST(Wildcard, StarMatchesAnySequence) {
  EXPECT_TRUE(m(u"", u"*"));
  EXPECT_TRUE(m(u"LAYER-1", u"LAYER*"));
  EXPECT_TRUE(m(u"LAYER", u"LAYER*"));
  EXPECT_TRUE(m(u"abcabd", u"*abd"));
  EXPECT_TRUE(m(u"道路中心线", u"道路*线"));
  EXPECT_FALSE(m(u"道路边线x", u"道路*线"));
  EXPECT_TRUE(m(u"a1b", u"*#*"));
  EXPECT_FALSE(m(u"ab", u"*#*"));
}

TEST(Wildcard, WholeStringMustMatch) {
  EXPECT_FALSE(m(u"ABC", u"AB"));
  EXPECT_FALSE(m(u"ABC", u"BC"));
  EXPECT_TRUE(m(u"", u""));
  EXPECT_FALSE(m(u"a", u""));
}

TEST(Wildcard, NegationAppliesToEachAlternative) {
  EXPECT_TRUE(m(u"WALL", u"~DIM*"));
  EXPECT_FALSE(m(u"DIMS", u"~DIM*"));
  EXPECT_TRUE(m(u"abc", u"~"));  // not the empty string
  EXPECT_FALSE(m(u"", u"~"));
  // "~" after the start is an ordinary character.
  EXPECT_TRUE(m(u"a~b", u"a~b"));
  EXPECT_TRUE(m(u"BBC", u"X*,~A*"));
  EXPECT_FALSE(m(u"ABC", u"~A*,B*"));
}

TEST(Wildcard, Alternatives) {
  EXPECT_TRUE(m(u"DOOR", u"WALL,DOOR,WINDOW"));
  EXPECT_TRUE(m(u"WINDOW", u"WALL,DOOR,WINDOW"));
  EXPECT_FALSE(m(u"DOORS", u"WALL,DOOR,WINDOW"));
  // An empty alternative matches the empty string.
  EXPECT_TRUE(m(u"", u"A,"));
  EXPECT_FALSE(m(u"B", u"A,"));
}

TEST(Wildcard, BracketSets) {
  EXPECT_TRUE(m(u"B1", u"[ABC]#"));
  EXPECT_FALSE(m(u"D1", u"[ABC]#"));
  EXPECT_TRUE(m(u"D1", u"[~ABC]#"));
  EXPECT_FALSE(m(u"A1", u"[~ABC]#"));
  EXPECT_TRUE(m(u"m", u"[a-z]"));
  EXPECT_FALSE(m(u"M", u"[a-z]"));
  EXPECT_TRUE(m(u"7", u"[0-35-9]"));
  EXPECT_FALSE(m(u"4", u"[0-35-9]"));
  // "-" at either end is a member.
  EXPECT_TRUE(m(u"-", u"[a-]"));
  EXPECT_TRUE(m(u"-", u"[-a]"));
  // A "]" first in the set is a member; a "," inside is a member.
  EXPECT_TRUE(m(u"]", u"[]]"));
  EXPECT_TRUE(m(u",", u"[,;]"));
  EXPECT_FALSE(m(u"x", u"[,;]"));
  // Special characters are plain inside a set.
  EXPECT_TRUE(m(u"*", u"[*?]"));
  EXPECT_FALSE(m(u"a", u"[*?]"));
  // An unclosed "[" is an ordinary character.
  EXPECT_TRUE(m(u"[ab", u"[ab"));
  EXPECT_FALSE(m(u"a", u"[ab"));
}

TEST(Wildcard, BackquoteEscapes) {
  EXPECT_TRUE(m(u"a*b", u"a`*b"));
  EXPECT_FALSE(m(u"axb", u"a`*b"));
  EXPECT_TRUE(m(u"1,2", u"1`,2"));
  EXPECT_FALSE(m(u"1", u"1`,2"));
  EXPECT_TRUE(m(u"#", u"`#"));
  EXPECT_FALSE(m(u"5", u"`#"));
  EXPECT_TRUE(m(u"~x", u"`~x"));
  EXPECT_TRUE(m(u"]", u"[`]]"));
  EXPECT_TRUE(m(u"a`", u"a`"));  // a backquote at the end stands for itself
}

TEST(Wildcard, CaseFolding) {
  EXPECT_FALSE(m(u"abc", u"ABC"));
  EXPECT_TRUE(mi(u"abc", u"ABC"));
  EXPECT_TRUE(mi(u"Layer-2", u"LAYER-#"));
  EXPECT_TRUE(mi(u"q", u"[A-Z]"));
  EXPECT_TRUE(mi(u"Q", u"[a-z]"));
  EXPECT_FALSE(mi(u"q", u"[~A-Z]"));
  EXPECT_TRUE(mi(u"\u00c9TAGE", u"\u00e9tage"));
  EXPECT_TRUE(mi(u"测试", u"测试"));
}

TEST(Wildcard, ManyStarsDoNotBacktrack) {
  // With backtracking this pattern takes exponential time on a long run of
  // "a"; it must answer at once.
  std::u16string s(20000, u'a');
  EXPECT_FALSE(m(s, u"*a*a*a*a*a*a*a*a*a*a*b"));
  s.back() = u'b';
  EXPECT_TRUE(m(s, u"*a*a*a*a*a*a*a*a*a*a*b"));
  EXPECT_TRUE(m(s, u"a**********b"));
}

TEST(Wildcard, FoldOnlyChangesLetters) {
  EXPECT_EQ(foldUpper(u'a'), u'A');
  EXPECT_EQ(foldUpper(u'\u00fe'), u'\u00de');
  EXPECT_EQ(foldUpper(u'\u00f7'), u'\u00f7');
  EXPECT_EQ(foldUpper(u'\u00df'), u'\u00df');
  EXPECT_EQ(foldLower(u'\u00d7'), u'\u00d7');
  EXPECT_EQ(foldLower(u'测'), u'测');
  EXPECT_EQ(foldLower(u'['), u'[');
}

}  // namespace
}  // namespace zepk::lisp
