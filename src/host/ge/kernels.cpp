// Numeric kernels of the curve classes. The B-spline algorithms follow the
// standard formulations (Cox-de Boor recurrences, Boehm insertion, Bezier
// decomposition for degree elevation).
#include "host/ge/kernels.h"

#include <algorithm>
#include <cmath>

namespace zepk::ge {

int findSpan(int n, int p, double u, const std::vector<double>& U) {
  if (u >= U[n + 1]) {
    int i = n;
    while (i > p && U[i] >= U[n + 1]) --i;
    return i;
  }
  if (u <= U[p]) {
    int i = p;
    while (i < n && U[i + 1] <= U[p]) ++i;
    return i;
  }
  int low = p, high = n + 1;
  int mid = (low + high) / 2;
  while (u < U[mid] || u >= U[mid + 1]) {
    if (u < U[mid])
      high = mid;
    else
      low = mid;
    mid = (low + high) / 2;
  }
  return mid;
}

void basisFuns(int span, double u, int p, const std::vector<double>& U, double* N) {
  std::vector<double> left(p + 1), right(p + 1);
  N[0] = 1.0;
  for (int j = 1; j <= p; ++j) {
    left[j] = u - U[span + 1 - j];
    right[j] = U[span + j] - u;
    double saved = 0.0;
    for (int r = 0; r < j; ++r) {
      double den = right[r + 1] + left[j - r];
      double temp = den == 0.0 ? 0.0 : N[r] / den;
      N[r] = saved + right[r + 1] * temp;
      saved = left[j - r] * temp;
    }
    N[j] = saved;
  }
}

void dersBasisFuns(int span, double u, int p, int nd, const std::vector<double>& U,
                   std::vector<std::vector<double>>& ders) {
  std::vector<std::vector<double>> ndu(p + 1, std::vector<double>(p + 1, 0.0));
  std::vector<double> left(p + 1), right(p + 1);
  ndu[0][0] = 1.0;
  for (int j = 1; j <= p; ++j) {
    left[j] = u - U[span + 1 - j];
    right[j] = U[span + j] - u;
    double saved = 0.0;
    for (int r = 0; r < j; ++r) {
      ndu[j][r] = right[r + 1] + left[j - r];
      double temp = ndu[j][r] == 0.0 ? 0.0 : ndu[r][j - 1] / ndu[j][r];
      ndu[r][j] = saved + right[r + 1] * temp;
      saved = left[j - r] * temp;
    }
    ndu[j][j] = saved;
  }
  ders.assign(nd + 1, std::vector<double>(p + 1, 0.0));
  for (int j = 0; j <= p; ++j) ders[0][j] = ndu[j][p];
  std::vector<std::vector<double>> a(2, std::vector<double>(p + 1, 0.0));
  for (int r = 0; r <= p; ++r) {
    int s1 = 0, s2 = 1;
    a[0][0] = 1.0;
    for (int k = 1; k <= nd && k <= p; ++k) {
      double d = 0.0;
      int rk = r - k, pk = p - k;
      if (r >= k) {
        a[s2][0] = ndu[pk + 1][rk] == 0.0 ? 0.0 : a[s1][0] / ndu[pk + 1][rk];
        d = a[s2][0] * ndu[rk][pk];
      }
      int j1 = rk >= -1 ? 1 : -rk;
      int j2 = (r - 1 <= pk) ? k - 1 : p - r;
      for (int j = j1; j <= j2; ++j) {
        a[s2][j] = ndu[pk + 1][rk + j] == 0.0 ? 0.0 : (a[s1][j] - a[s1][j - 1]) / ndu[pk + 1][rk + j];
        d += a[s2][j] * ndu[rk + j][pk];
      }
      if (r <= pk) {
        a[s2][k] = ndu[pk + 1][r] == 0.0 ? 0.0 : -a[s1][k - 1] / ndu[pk + 1][r];
        d += a[s2][k] * ndu[r][pk];
      }
      ders[k][r] = d;
      std::swap(s1, s2);
    }
  }
  int r = p;
  for (int k = 1; k <= nd && k <= p; ++k) {
    for (int j = 0; j <= p; ++j) ders[k][j] *= r;
    r *= (p - k);
  }
}

void nurbsDerivs(int p, const std::vector<double>& U, const std::vector<HPoint>& Pw, double u, int nd,
                 std::vector<HPoint>& out) {
  int n = static_cast<int>(Pw.size()) - 1;
  int span = findSpan(n, p, u, U);
  std::vector<std::vector<double>> ders;
  dersBasisFuns(span, u, p, nd, U, ders);
  // Derivatives of the homogeneous curve.
  std::vector<HPoint> A(nd + 1, HPoint{0, 0, 0, 0});
  for (int k = 0; k <= nd; ++k)
    for (int j = 0; j <= p; ++j) A[k] = A[k] + Pw[span - p + j] * ders[k][j];
  // Rational derivatives: C(k) = (A(k) - sum_i binom(k,i) w(i) C(k-i)) / w.
  out.assign(nd + 1, HPoint{0, 0, 0, 0});
  for (int k = 0; k <= nd; ++k) {
    double vx = A[k].x, vy = A[k].y, vz = A[k].z;
    double binom = 1.0;
    for (int i = 1; i <= k; ++i) {
      binom = binom * (k - i + 1) / i;
      vx -= binom * A[i].w * out[k - i].x;
      vy -= binom * A[i].w * out[k - i].y;
      vz -= binom * A[i].w * out[k - i].z;
    }
    double w = A[0].w == 0.0 ? 1.0 : A[0].w;
    out[k] = HPoint{vx / w, vy / w, vz / w, 0.0};
  }
}

void insertKnot(int p, std::vector<double>& U, std::vector<HPoint>& Pw, double u, int r) {
  if (r <= 0) return;
  int n = static_cast<int>(Pw.size()) - 1;
  int s = static_cast<int>(std::count(U.begin(), U.end(), u));
  r = std::min(r, p - s);
  if (r <= 0) return;
  // k: the last knot at or before u.
  int k = static_cast<int>(std::upper_bound(U.begin(), U.end(), u) - U.begin()) - 1;
  if (k < p || k + 1 >= static_cast<int>(U.size())) return;
  std::vector<double> UQ(U.size() + r);
  std::vector<HPoint> Qw(Pw.size() + r);
  for (int i = 0; i <= k; ++i) UQ[i] = U[i];
  for (int i = 1; i <= r; ++i) UQ[k + i] = u;
  for (size_t i = k + 1; i < U.size(); ++i) UQ[i + r] = U[i];
  for (int i = 0; i <= k - p; ++i) Qw[i] = Pw[i];
  for (int i = k - s; i <= n; ++i) Qw[i + r] = Pw[i];
  std::vector<HPoint> Rw(p + 1);
  for (int i = 0; i <= p - s; ++i) Rw[i] = Pw[k - p + i];
  int L = 0;
  for (int j = 1; j <= r; ++j) {
    L = k - p + j;
    for (int i = 0; i <= p - j - s; ++i) {
      double den = U[i + k + 1] - U[L + i];
      double alpha = den == 0.0 ? 0.0 : (u - U[L + i]) / den;
      Rw[i] = Rw[i + 1] * alpha + Rw[i] * (1.0 - alpha);
    }
    Qw[L] = Rw[0];
    Qw[k + r - j - s] = Rw[p - j - s];
  }
  for (int i = L + 1; i < k - s; ++i) Qw[i] = Rw[i - L];
  U.swap(UQ);
  Pw.swap(Qw);
}

void clampEnds(int p, std::vector<double>& U, std::vector<HPoint>& Pw) {
  int n = static_cast<int>(Pw.size()) - 1;
  clampTo(p, U, Pw, U[p], U[n + 1]);
}

void clampTo(int p, std::vector<double>& U, std::vector<HPoint>& Pw, double a, double b) {
  insertKnot(p, U, Pw, a, p);
  insertKnot(p, U, Pw, b, p);
  // The front: p copies of a leave the curve's start at the point before
  // them; p + 1 copies at the point where the run of a's begins.
  int first = static_cast<int>(std::lower_bound(U.begin(), U.end(), a) - U.begin());
  int last = static_cast<int>(std::upper_bound(U.begin(), U.end(), a) - U.begin()) - 1;
  std::vector<double> NU;
  std::vector<HPoint> NP;
  int p0;
  if (last - first + 1 >= p + 1) {
    p0 = last - p;
    NU.assign(U.begin() + p0, U.end());
  } else {
    p0 = first - 1;
    NU.push_back(a);
    NU.insert(NU.end(), U.begin() + first, U.end());
  }
  NP.assign(Pw.begin() + p0, Pw.end());
  // The back, the same way round.
  int bfirst = static_cast<int>(std::lower_bound(NU.begin(), NU.end(), b) - NU.begin());
  int blast = static_cast<int>(std::upper_bound(NU.begin(), NU.end(), b) - NU.begin()) - 1;
  if (blast - bfirst + 1 >= p + 1) {
    NU.resize(bfirst + p + 1);
  } else {
    NU.resize(blast + 1);
    NU.push_back(b);
  }
  NP.resize(NU.size() - p - 1);
  U.swap(NU);
  Pw.swap(NP);
}

namespace {

// Degree elevation of one Bezier segment of degree p by t.
std::vector<HPoint> elevateBezier(const std::vector<HPoint>& b, int p, int t) {
  int ph = p + t;
  std::vector<HPoint> e(ph + 1, HPoint{0, 0, 0, 0});
  auto binom = [](int n, int k) {
    double r = 1.0;
    for (int i = 1; i <= k; ++i) r = r * (n - k + i) / i;
    return r;
  };
  for (int i = 0; i <= ph; ++i) {
    int lo = std::max(0, i - t), hi = std::min(p, i);
    for (int j = lo; j <= hi; ++j) e[i] = e[i] + b[j] * (binom(p, j) * binom(t, i - j) / binom(ph, i));
  }
  return e;
}

}  // namespace

void elevateDegree(int& p, std::vector<double>& U, std::vector<HPoint>& Pw, int t) {
  if (t <= 0) return;
  clampEnds(p, U, Pw);
  // Interior knots and their multiplicities.
  std::vector<std::pair<double, int>> interior;
  int n = static_cast<int>(Pw.size()) - 1;
  for (int i = p + 1; i <= n; ++i) {
    if (!interior.empty() && interior.back().first == U[i])
      ++interior.back().second;
    else
      interior.push_back({U[i], 1});
  }
  // Decompose into Bezier segments.
  for (auto& [u, m] : interior) insertKnot(p, U, Pw, u, p - m);
  int segs = static_cast<int>(interior.size()) + 1;
  std::vector<HPoint> NP;
  for (int s = 0; s < segs; ++s) {
    std::vector<HPoint> b(Pw.begin() + s * p, Pw.begin() + s * p + p + 1);
    std::vector<HPoint> e = elevateBezier(b, p, t);
    for (int i = (s == 0 ? 0 : 1); i <= p + t; ++i) NP.push_back(e[i]);
  }
  int ph = p + t;
  std::vector<double> NU;
  for (int i = 0; i <= ph; ++i) NU.push_back(U.front());
  for (auto& [u, m] : interior)
    for (int i = 0; i < ph; ++i) NU.push_back(u);
  for (int i = 0; i <= ph; ++i) NU.push_back(U.back());
  p = ph;
  U.swap(NU);
  Pw.swap(NP);
  // Back to the original continuity: each interior knot had multiplicity
  // m and now has ph; it can go down to m + t.
  for (auto& [u, m] : interior) {
    double scale = 0.0;
    for (const HPoint& q : Pw) scale = std::max({scale, std::fabs(q.x), std::fabs(q.y), std::fabs(q.z)});
    removeKnot(p, U, Pw, u, ph - (m + t), 1e-12 * std::max(1.0, scale));
  }
}

int removeKnot(int p, std::vector<double>& U, std::vector<HPoint>& Pw, double u, int num, double tol) {
  int n = static_cast<int>(Pw.size()) - 1;
  int r = -1, s = 0;
  for (int i = 0; i < static_cast<int>(U.size()); ++i) {
    if (U[i] == u) {
      r = i;
      ++s;
    }
  }
  if (r < 0 || r <= p || r > n) return 0;
  int ord = p + 1;
  int fout = (2 * r - s - p) / 2;
  int last = r - s, first = r - p;
  std::vector<HPoint> temp(2 * p + 1);
  auto dist = [](const HPoint& a, const HPoint& b) {
    return std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y) + (a.z - b.z) * (a.z - b.z) +
                     (a.w - b.w) * (a.w - b.w));
  };
  int t = 0;
  for (; t < num; ++t) {
    int off = first - 1;
    temp[0] = Pw[off];
    temp[last + 1 - off] = Pw[last + 1];
    int i = first, j = last, ii = 1, jj = last - off;
    bool remflag = false;
    while (j - i > t) {
      double alfi = (u - U[i]) / (U[i + ord + t] - U[i]);
      double alfj = (u - U[j - t]) / (U[j + ord] - U[j - t]);
      temp[ii] = (Pw[i] - temp[ii - 1] * (1.0 - alfi)) * (1.0 / alfi);
      temp[jj] = (Pw[j] - temp[jj + 1] * alfj) * (1.0 / (1.0 - alfj));
      ++i;
      ++ii;
      --j;
      --jj;
    }
    if (j - i < t) {
      if (dist(temp[ii - 1], temp[jj + 1]) <= tol) remflag = true;
    } else {
      double alfi = (u - U[i]) / (U[i + ord + t] - U[i]);
      if (dist(Pw[i], temp[ii + t + 1] * alfi + temp[ii - 1] * (1.0 - alfi)) <= tol) remflag = true;
    }
    if (!remflag) break;
    i = first;
    j = last;
    while (j - i > t) {
      Pw[i] = temp[i - off];
      Pw[j] = temp[j - off];
      ++i;
      --j;
    }
    --first;
    ++last;
  }
  if (t == 0) return 0;
  for (int k = r + 1; k < static_cast<int>(U.size()); ++k) U[k - t] = U[k];
  U.resize(U.size() - t);
  int j = fout, i = j;
  for (int k = 1; k < t; ++k) {
    if (k % 2 == 1)
      ++i;
    else
      --j;
  }
  for (int k = i + 1; k <= n; ++k) {
    Pw[j] = Pw[k];
    ++j;
  }
  Pw.resize(Pw.size() - t);
  return t;
}

namespace {

// Solves A x = b by Gaussian elimination with partial pivoting; A is n x n.
bool solve(std::vector<std::vector<double>> A, std::vector<HPoint>& b) {
  int n = static_cast<int>(A.size());
  for (int c = 0; c < n; ++c) {
    int piv = c;
    for (int r = c + 1; r < n; ++r)
      if (std::fabs(A[r][c]) > std::fabs(A[piv][c])) piv = r;
    if (std::fabs(A[piv][c]) < 1e-300) return false;
    std::swap(A[c], A[piv]);
    std::swap(b[c], b[piv]);
    for (int r = c + 1; r < n; ++r) {
      double f = A[r][c] / A[c][c];
      if (f == 0.0) continue;
      for (int k = c; k < n; ++k) A[r][k] -= f * A[c][k];
      b[r] = b[r] - b[c] * f;
    }
  }
  for (int c = n - 1; c >= 0; --c) {
    HPoint s = b[c];
    for (int k = c + 1; k < n; ++k) s = s - b[k] * A[c][k];
    b[c] = s * (1.0 / A[c][c]);
  }
  return true;
}

}  // namespace

bool interpolate(const std::vector<HPoint>& pts, int degree, const HPoint* startTan, const HPoint* endTan, int& p,
                 std::vector<double>& U, std::vector<HPoint>& Pw) {
  int m = static_cast<int>(pts.size());
  if (m < 2) return false;
  std::vector<double> chord(m, 0.0);
  for (int i = 1; i < m; ++i) {
    HPoint d = pts[i] - pts[i - 1];
    double l = std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
    if (l == 0.0) return false;
    chord[i] = chord[i - 1] + l;
  }
  double total = chord.back();
  std::vector<double> ub(m);
  for (int i = 0; i < m; ++i) ub[i] = chord[i] / total;
  bool tans = startTan && endTan;
  int n = m - 1 + (tans ? 2 : 0);  // index of the last control point
  p = std::min(degree, n);
  if (p < 1) p = 1;
  // Knots: averaging of the parameters (with tangents, the parameters are
  // taken with the first and last doubled).
  std::vector<double> par;
  if (tans) {
    par.push_back(0.0);
    for (double v : ub) par.push_back(v);
    par.push_back(1.0);
  } else {
    par = ub;
  }
  U.assign(n + p + 2, 0.0);
  for (int i = 0; i <= p; ++i) {
    U[i] = 0.0;
    U[n + 1 + i] = 1.0;
  }
  for (int j = 1; j <= n - p; ++j) {
    double s = 0.0;
    for (int i = j; i < j + p; ++i) s += par[i];
    U[j + p] = s / p;
  }
  // Equations: the curve passes through each point; with tangents, the
  // first derivative at each end.
  int rows = n + 1;
  std::vector<std::vector<double>> A(rows, std::vector<double>(rows, 0.0));
  std::vector<HPoint> b(rows);
  int row = 0;
  auto putPoint = [&](double u, const HPoint& q) {
    int span = findSpan(n, p, u, U);
    std::vector<double> N(p + 1);
    basisFuns(span, u, p, U, N.data());
    for (int j = 0; j <= p; ++j) A[row][span - p + j] = N[j];
    b[row] = q;
    ++row;
  };
  auto putTangent = [&](double u, const HPoint& d) {
    int span = findSpan(n, p, u, U);
    std::vector<std::vector<double>> ders;
    dersBasisFuns(span, u, p, 1, U, ders);
    for (int j = 0; j <= p; ++j) A[row][span - p + j] = ders[1][j];
    double l = std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
    double s = l == 0.0 ? 0.0 : total / l;
    b[row] = HPoint{d.x * s, d.y * s, d.z * s, 0.0};
    ++row;
  };
  putPoint(0.0, pts[0]);
  if (tans) putTangent(0.0, *startTan);
  for (int i = 1; i < m - 1; ++i) putPoint(ub[i], pts[i]);
  if (tans) putTangent(1.0, *endTan);
  putPoint(1.0, pts[m - 1]);
  for (auto& q : b) q.w = 0.0;
  if (!solve(A, b)) return false;
  Pw = b;
  for (auto& q : Pw) q.w = 1.0;
  return true;
}

int intersectLineCircle(double px, double py, double dx, double dy, double cx, double cy, double r, double tol,
                        double t[2]) {
  double dd = dx * dx + dy * dy;
  if (dd == 0.0) return 0;
  double len = std::sqrt(dd);
  // Foot of the centre on the line, and its distance.
  double tf = ((cx - px) * dx + (cy - py) * dy) / dd;
  double fx = px + tf * dx - cx, fy = py + tf * dy - cy;
  double h = std::hypot(fx, fy);
  if (h > r + tol) return 0;
  if (std::fabs(h - r) <= tol) {
    t[0] = tf;
    return 1;
  }
  double half = std::sqrt(std::max(0.0, r * r - h * h)) / len;
  t[0] = tf - half;
  t[1] = tf + half;
  return 2;
}

int intersectCircles(double c1x, double c1y, double r1, double c2x, double c2y, double r2, double tol,
                     double out[4]) {
  double dx = c2x - c1x, dy = c2y - c1y;
  double d = std::hypot(dx, dy);
  if (d <= tol && std::fabs(r1 - r2) <= tol) return -1;
  if (d <= tol) return 0;
  if (d > r1 + r2 + tol || d < std::fabs(r1 - r2) - tol) return 0;
  double ux = dx / d, uy = dy / d;
  if (std::fabs(d - (r1 + r2)) <= tol || std::fabs(d - std::fabs(r1 - r2)) <= tol) {
    // Tangent: the point on the line of centres.
    double a = (d * d + r1 * r1 - r2 * r2) / (2 * d);
    double s = a >= 0 ? r1 : -r1;
    out[0] = c1x + ux * s;
    out[1] = c1y + uy * s;
    return 1;
  }
  double a = (d * d + r1 * r1 - r2 * r2) / (2 * d);
  double h = std::sqrt(std::max(0.0, r1 * r1 - a * a));
  double mx = c1x + ux * a, my = c1y + uy * a;
  out[0] = mx + uy * h;
  out[1] = my - ux * h;
  out[2] = mx - uy * h;
  out[3] = my + ux * h;
  return 2;
}

namespace {

// 7-point Gauss and 15-point Kronrod nodes and weights on [-1, 1].
const double kXk[8] = {0.991455371120812639, 0.949107912342758525, 0.864864423359769073, 0.741531185599394440,
                       0.586087235467691130, 0.405845151377397167, 0.207784955007898468, 0.0};
const double kWk[8] = {0.022935322010529225, 0.063092092629978553, 0.104790010322250184, 0.140653259715525919,
                       0.169004726639267903, 0.190350578064785410, 0.204432940075298892, 0.209482141084727828};
const double kWg[4] = {0.129484966168869693, 0.279705391489276668, 0.381830050505118945, 0.417959183673469388};

void gk15(const std::function<double(double)>& f, double a, double b, double& k, double& err) {
  double c = 0.5 * (a + b), h = 0.5 * (b - a);
  double fc = f(c);
  double kr = fc * kWk[7], ga = fc * kWg[3];
  for (int j = 0; j < 7; ++j) {
    double x = h * kXk[j];
    double f1 = f(c - x), f2 = f(c + x);
    kr += kWk[j] * (f1 + f2);
    if (j % 2 == 1) ga += kWg[j / 2] * (f1 + f2);
  }
  k = kr * h;
  err = std::fabs((kr - ga) * h);
}

double adapt(const std::function<double(double)>& f, double a, double b, double tol, int depth) {
  double k, err;
  gk15(f, a, b, k, err);
  if (err <= tol || depth >= 30 || b - a < 1e-14 * std::max(1.0, std::fabs(a)))
    return k;
  double m = 0.5 * (a + b);
  return adapt(f, a, m, tol * 0.5, depth + 1) + adapt(f, m, b, tol * 0.5, depth + 1);
}

}  // namespace

double integrate(const std::function<double(double)>& f, double a, double b, double relTol, double absTol) {
  if (a == b) return 0.0;
  double k, err;
  gk15(f, a, b, k, err);
  double tol = std::max({std::fabs(k) * relTol, absTol, 1e-300});
  if (err <= tol) return k;
  double m = 0.5 * (a + b);
  return adapt(f, a, m, tol * 0.5, 1) + adapt(f, m, b, tol * 0.5, 1);
}

}  // namespace zepk::ge
