// Input functions behind acedGetPoint and kin, on UTF-16 text.
#pragma once

#include <cstdint>
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
// An angle typed in the units of AUNITS, or with base a second point
// giving the direction from base; radians in [0, 2pi). getAngle measures
// from ANGBASE counter-clockwise; getOrient gives the absolute direction
// (from east, counter-clockwise), a typed angle being read as ANGBASE and
// ANGDIR say.
int getAngle(const double* base, const std::u16string& prompt, double* out);
int getOrient(const double* base, const std::u16string& prompt, double* out);
// The answer at a prompt that picks: RTNORM with a point, RTKWORD for a
// keyword of initGet, RTNONE for Enter, RTCAN; other text gives RTREJ with
// the text in *other, an entity name RTREJ with the name in name[2].
int getPickPoint(const std::u16string& prompt, double out[3], std::u16string* other, int64_t name[2]);
// spaces: the answer runs to the end of the line.
int getString(bool spaces, const std::u16string& prompt, std::u16string* out);
int getKword(const std::u16string& prompt, std::u16string* out);
// The keyword of the last input that answered RTKWORD.
const std::u16string& lastInputKeyword();

}  // namespace zepk::editor
