// Input functions behind acedGetPoint and kin, on UTF-16 text.
#pragma once

#include <string>
#include <string_view>

namespace zepk::editor {

int initGet(int bits, std::u16string_view keywords);
// base: the point that relative input and distances start from; null for
// the last point entered.
int getPoint(const double* base, const std::u16string& prompt, double out[3]);
// A number; integer asks for an integer; with base a point answers with its
// distance from base.
int getReal(const std::u16string& prompt, double* out, bool integer, const double* base);
// An angle in degrees, made radians in [0, 2pi); with base a second point
// gives the direction from base.
int getAngle(const double* base, const std::u16string& prompt, double* out);
// spaces: the answer runs to the end of the line.
int getString(bool spaces, const std::u16string& prompt, std::u16string* out);
int getKword(const std::u16string& prompt, std::u16string* out);
// The keyword of the last input that answered RTKWORD.
const std::u16string& lastInputKeyword();

}  // namespace zepk::editor
