// Bounding blocks.
#include <algorithm>
#include <cmath>

#include "host/gebndblk3d.h"
#include "host/gemat3d.h"

AcGeBoundBlock3d::AcGeBoundBlock3d(const AcGePoint3d& point1, const AcGePoint3d& point2) { set(point1, point2); }

AcGeBoundBlock3d::AcGeBoundBlock3d(const AcGePoint3d& base, const AcGeVector3d& dir1, const AcGeVector3d& dir2,
                                   const AcGeVector3d& dir3) {
  set(base, dir1, dir2, dir3);
}

AcGeBoundBlock3d& AcGeBoundBlock3d::set(const AcGePoint3d& point1, const AcGePoint3d& point2) {
  base_.set(std::min(point1.x, point2.x), std::min(point1.y, point2.y), std::min(point1.z, point2.z));
  dir_[0].set(std::fabs(point1.x - point2.x), 0.0, 0.0);
  dir_[1].set(0.0, std::fabs(point1.y - point2.y), 0.0);
  dir_[2].set(0.0, 0.0, std::fabs(point1.z - point2.z));
  isBox_ = true;
  return *this;
}

AcGeBoundBlock3d& AcGeBoundBlock3d::set(const AcGePoint3d& base, const AcGeVector3d& dir1, const AcGeVector3d& dir2,
                                        const AcGeVector3d& dir3) {
  base_ = base;
  dir_[0] = dir1;
  dir_[1] = dir2;
  dir_[2] = dir3;
  // Directions along the world axes, one per axis and in order, make a box.
  isBox_ = dir1.y == 0.0 && dir1.z == 0.0 && dir2.x == 0.0 && dir2.z == 0.0 && dir3.x == 0.0 && dir3.y == 0.0;
  if (isBox_) set(base, base + dir1 + dir2 + dir3);
  return *this;
}

void AcGeBoundBlock3d::corners(AcGePoint3d out[8]) const {
  for (int i = 0; i < 8; ++i) {
    out[i] = base_;
    for (int k = 0; k < 3; ++k)
      if (i & (1 << k)) out[i] += dir_[k];
  }
}

void AcGeBoundBlock3d::getMinMaxPoints(AcGePoint3d& point1, AcGePoint3d& point2) const {
  AcGePoint3d c[8];
  corners(c);
  point1 = point2 = c[0];
  for (const AcGePoint3d& p : c)
    for (unsigned k = 0; k < 3; ++k) {
      point1[k] = std::min(point1[k], p[k]);
      point2[k] = std::max(point2[k], p[k]);
    }
}

void AcGeBoundBlock3d::get(AcGePoint3d& base, AcGeVector3d& side1, AcGeVector3d& side2,
                           AcGeVector3d& side3) const {
  base = base_;
  side1 = dir_[0];
  side2 = dir_[1];
  side3 = dir_[2];
}

namespace {

// Coordinates of p in the frame base + a d0 + b d1 + c d2, by Cramer's rule;
// false when the directions are dependent.
bool frameCoords(const AcGePoint3d& base, const AcGeVector3d d[3], const AcGePoint3d& p, double out[3]) {
  double det = d[0].dotProduct(d[1].crossProduct(d[2]));
  double scale = d[0].length() * d[1].length() * d[2].length();
  if (scale == 0.0 || std::fabs(det) <= AcGeContext::gTol.equalVector() * scale) return false;
  AcGeVector3d r = p - base;
  out[0] = r.dotProduct(d[1].crossProduct(d[2])) / det;
  out[1] = d[0].dotProduct(r.crossProduct(d[2])) / det;
  out[2] = d[0].dotProduct(d[1].crossProduct(r)) / det;
  return true;
}

}  // namespace

AcGeBoundBlock3d& AcGeBoundBlock3d::extend(const AcGePoint3d& point) {
  if (isBox_) {
    AcGePoint3d lo, hi;
    getMinMaxPoints(lo, hi);
    for (unsigned k = 0; k < 3; ++k) {
      lo[k] = std::min(lo[k], point[k]);
      hi[k] = std::max(hi[k], point[k]);
    }
    return set(lo, hi);
  }
  double t[3];
  if (!frameCoords(base_, dir_, point, t)) {
    setToBox(true);
    return extend(point);
  }
  AcGePoint3d base = base_;
  for (int k = 0; k < 3; ++k) {
    double lo = std::min(0.0, t[k]), hi = std::max(1.0, t[k]);
    base += dir_[k] * lo;
    dir_[k] *= hi - lo;
  }
  base_ = base;
  return *this;
}

AcGeBoundBlock3d& AcGeBoundBlock3d::swell(double distance) {
  // Each pair of faces moves out by distance along its normal: with n_k the
  // unit normal of the faces spanned by the other two directions, the
  // parameter along dir_k grows by distance / |n_k . dir_k| at each end.
  AcGeVector3d grow[3];
  for (int k = 0; k < 3; ++k) {
    AcGeVector3d n = dir_[(k + 1) % 3].crossProduct(dir_[(k + 2) % 3]).normal();
    double along = std::fabs(n.dotProduct(dir_[k]));
    if (n.isZeroLength() || along == 0.0) {
      // A flat or degenerate block: grow along the world axes instead.
      setToBox(true);
      AcGePoint3d lo, hi;
      getMinMaxPoints(lo, hi);
      AcGeVector3d d(distance, distance, distance);
      AcGePoint3d nlo = lo - d, nhi = hi + d;
      for (unsigned i = 0; i < 3; ++i)
        if (nlo[i] > nhi[i]) nlo[i] = nhi[i] = 0.5 * (lo[i] + hi[i]);
      return set(nlo, nhi);
    }
    grow[k] = dir_[k] * (distance / along);
  }
  for (int k = 0; k < 3; ++k) {
    AcGeVector3d d = dir_[k] + grow[k] * 2.0;
    if (d.dotProduct(dir_[k]) < 0.0) {
      // Swelled inwards past its middle: flat at the middle.
      base_ += dir_[k] * 0.5;
      dir_[k] = AcGeVector3d::kIdentity;
    } else {
      base_ -= grow[k];
      dir_[k] = d;
    }
  }
  return *this;
}

bool AcGeBoundBlock3d::contains(const AcGePoint3d& point) const {
  const AcGeTol& tol = AcGeContext::gTol;
  if (isBox_) {
    AcGePoint3d lo, hi;
    getMinMaxPoints(lo, hi);
    for (unsigned k = 0; k < 3; ++k)
      if (point[k] < lo[k] - tol.equalPoint() || point[k] > hi[k] + tol.equalPoint()) return false;
    return true;
  }
  // The distance to each pair of faces, measured along their normals.
  for (int k = 0; k < 3; ++k) {
    AcGeVector3d n = dir_[(k + 1) % 3].crossProduct(dir_[(k + 2) % 3]).normal();
    if (n.isZeroLength()) {
      // Dependent directions: no volume to measure by; use the box of the corners.
      AcGeBoundBlock3d box = *this;
      return box.setToBox(true).contains(point);
    }
    double lo = n.dotProduct(base_.asVector()), hi = lo + n.dotProduct(dir_[k]);
    if (lo > hi) std::swap(lo, hi);
    double x = n.dotProduct(point.asVector());
    if (x < lo - tol.equalPoint() || x > hi + tol.equalPoint()) return false;
  }
  return true;
}

bool AcGeBoundBlock3d::isDisjoint(const AcGeBoundBlock3d& block) const {
  // Separating axes of two parallelepipeds: the face normals of each and the
  // cross products of their edge directions. The blocks are disjoint when
  // their shadows on one axis are more than equalPoint apart.
  AcGePoint3d a[8], b[8];
  corners(a);
  block.corners(b);
  AcGeVector3d axes[15];
  int n = 0;
  const AcGeVector3d* da = dir_;
  const AcGeVector3d* db = block.dir_;
  AcGeVector3d ea[3], eb[3];
  for (int k = 0; k < 3; ++k) {
    // A flat block's missing direction is replaced by a world axis so that
    // its faces still give normals.
    ea[k] = da[k].isZeroLength() ? AcGeVector3d(k == 0, k == 1, k == 2) : da[k];
    eb[k] = db[k].isZeroLength() ? AcGeVector3d(k == 0, k == 1, k == 2) : db[k];
  }
  for (int k = 0; k < 3; ++k) {
    axes[n++] = ea[(k + 1) % 3].crossProduct(ea[(k + 2) % 3]);
    axes[n++] = eb[(k + 1) % 3].crossProduct(eb[(k + 2) % 3]);
  }
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) axes[n++] = ea[i].crossProduct(eb[j]);
  const double eps = AcGeContext::gTol.equalPoint();
  for (int i = 0; i < n; ++i) {
    AcGeVector3d ax = axes[i].normal();
    if (ax.isZeroLength()) continue;
    double amin = ax.dotProduct(a[0].asVector()), amax = amin;
    double bmin = ax.dotProduct(b[0].asVector()), bmax = bmin;
    for (int k = 1; k < 8; ++k) {
      double pa = ax.dotProduct(a[k].asVector()), pb = ax.dotProduct(b[k].asVector());
      amin = std::min(amin, pa);
      amax = std::max(amax, pa);
      bmin = std::min(bmin, pb);
      bmax = std::max(bmax, pb);
    }
    if (amax + eps < bmin || bmax + eps < amin) return true;
  }
  return false;
}

AcGeBoundBlock3d& AcGeBoundBlock3d::setToBox(bool toBox) {
  if (toBox) {
    if (!isBox_) {
      AcGePoint3d lo, hi;
      getMinMaxPoints(lo, hi);
      set(lo, hi);
    }
  } else {
    isBox_ = false;
  }
  return *this;
}

bool AcGeBoundBlock3d::isEqualTo(const AcGeEntity3d& ent, const AcGeTol& tol) const {
  if (ent.type() != AcGe::kBoundBlock3d) return false;
  const auto& o = static_cast<const AcGeBoundBlock3d&>(ent);
  if (isBox_ != o.isBox_ || !base_.isEqualTo(o.base_, tol)) return false;
  for (int k = 0; k < 3; ++k)
    if (!(base_ + dir_[k]).isEqualTo(o.base_ + o.dir_[k], tol)) return false;
  return true;
}

bool AcGeBoundBlock3d::isOn(const AcGePoint3d& pnt, const AcGeTol& tol) const { return contains(pnt); }

AcGeBoundBlock3d& AcGeBoundBlock3d::transformBy(const AcGeMatrix3d& xfm) {
  if (isBox_) {
    AcGePoint3d c[8];
    corners(c);
    AcGePoint3d lo = xfm * c[0], hi = lo;
    for (const AcGePoint3d& p : c) {
      AcGePoint3d q = xfm * p;
      for (unsigned k = 0; k < 3; ++k) {
        lo[k] = std::min(lo[k], q[k]);
        hi[k] = std::max(hi[k], q[k]);
      }
    }
    return set(lo, hi);
  }
  base_.transformBy(xfm);
  for (AcGeVector3d& d : dir_) d.transformBy(xfm);
  return *this;
}
