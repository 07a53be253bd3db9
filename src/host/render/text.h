// The host's text font and its metrics. Every text is drawn in the one CJK
// font of the system (through fontconfig), and what is measured (text
// extents, the width of a line for alignment and wrapping) comes from the
// same font, so what is measured is what is drawn.
#pragma once

#include <string>
#include <string_view>

namespace zepk::render {

// The family fontconfig is asked for.
extern const char* const kTextFont;

// A text's control codes made plain: %%d degree, %%p plus-minus, %%c
// diameter, %%% a percent sign, %%nnn the character of that code; %%u and
// %%o (underline, overline toggles) are dropped.
std::u16string decodeTextCodes(std::u16string_view s);

// The advance width of the text (codes already plain) at a capital height
// of 1 and width factor 1.
double textAdvance(std::u16string_view plain);
// How far the font's ascent and descent reach, at capital height 1.
double fontAscent();
double fontDescent();
// The em size (cairo font size) that gives a capital height of 1.
double emPerCapHeight();

// Makes the database's text measurements (text extents, picking) use this
// font. Idempotent.
void installTextMetrics();

}  // namespace zepk::render
