// Tolerances of the geometry library.
//
// Two numbers decide every tolerant comparison:
//   equalPoint   two points are equal when their distance is at most this;
//                a point is on a line or plane when its distance to it is at
//                most this.
//   equalVector  two vectors are equal when the length of their difference is
//                at most this; a vector is of zero length, or of unit length,
//                when its length differs from 0, or 1, by at most this; the
//                direction tests (parallel, codirectional, perpendicular)
//                compare the sine or cosine of the angle between the unit
//                vectors with it.
#pragma once

class AcGeTol {
 public:
  constexpr AcGeTol() = default;

  constexpr double equalPoint() const { return equalPoint_; }
  constexpr double equalVector() const { return equalVector_; }
  void setEqualPoint(double val) { equalPoint_ = val; }
  void setEqualVector(double val) { equalVector_ = val; }

 private:
  double equalPoint_ = 1e-10;
  double equalVector_ = 1e-12;
};
