// The layout of multiline text: its formatting codes read, words wrapped
// at the width, lines spaced. Plain data; the width of a piece of text
// comes from the function given (the font's metrics).
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zepk::render {

struct MTextRun {
  double x = 0, y = 0;       // start of the baseline, from the top left corner (y up, so below 0)
  double height = 0;         // capital height
  double widthFactor = 1;
  double oblique = 0;        // radians
  int color = -1;            // an index colour set by \C, -1 the entity's
  long trueColor = -1;       // 0xRRGGBB set by \c, -1 none
  bool underline = false;
  double width = 0;          // advance of the run
  std::u16string text;
};

struct MTextLayout {
  std::vector<MTextRun> runs;
  double width = 0;   // of the widest line
  double height = 0;  // from the top of the first line to the baseline of the last
  int lines = 0;
};

// advance(text) is the width of plain text at capital height 1 and width
// factor 1. wrapWidth 0 or less: no wrapping. column: 0 left, 1 centre,
// 2 right, for lines narrower than the box (or than the widest line).
MTextLayout layoutMText(std::u16string_view contents, double height, double wrapWidth, double spacingFactor,
                        int column, const std::function<double(std::u16string_view)>& advance);

}  // namespace zepk::render
