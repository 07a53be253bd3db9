// How wide a line of text is, for the database's and the editor's
// measurements of texts (extents, picking). The picture renderer installs
// the metrics of the font it draws with, so that what is measured is what
// is drawn; until then an estimate serves (a wide CJK character a square,
// others six tenths of one).
#pragma once

#include <string_view>

namespace zepk::db {

// The advance of the text at capital height 1 and width factor 1; the text
// is as stored (with its %% codes).
using TextAdvanceFn = double (*)(std::u16string_view text);

void setTextAdvance(TextAdvanceFn fn);
double textAdvance(std::u16string_view text);

// The text's width at that height (and width factor 1).
inline double textWidth(std::u16string_view text, double height) { return textAdvance(text) * height; }

}  // namespace zepk::db
