// The C runtime's pseudo-random generator, reproduced exactly so that a
// sequence seeded by the toolkit or by LISP matches the original program:
//   state = state * 214013 + 2531011 (mod 2^32), value = (state >> 16) & 0x7FFF.
// The state is process-wide and starts at 1, as if crtSrand(1) had run.
#pragma once

namespace zepk::sys {

inline constexpr int kCrtRandMax = 0x7FFF;

// The next value, 0..kCrtRandMax.
int crtRand();
void crtSrand(unsigned seed);

}  // namespace zepk::sys
