#include "kxcommonr/common/vector/KXMathFun.h"

#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/packed/KXPackedLayout.h"
#include "kxcommonr/common/vector/internal/VectorKernels.h"

namespace KXCommon {

namespace {

using Index = std::int64_t;

// Offset of row i of a packed lower triangle, as a signed index.
Index PackedRowStart(Index i) { return static_cast<Index>(KXPacked::RowStart(i)); }

// True when the n elements off, off+inc, ... (in either direction) lie in a
// vector of `size` elements. n >= 1.
bool WalkFits(Index n, Index off, Index inc, std::size_t size) {
  const Index span = (n - 1) * (inc < 0 ? -inc : inc);
  return off >= 0 && off + span < static_cast<Index>(size);
}

// Index of the walk's first element: off, or off - (n-1)*inc for a negative
// stride (the walk then moves back towards off).
Index WalkFirst(Index n, Index off, Index inc) {
  return inc < 0 ? off - (n - 1) * inc : off;
}

// Position k of a growing walk: p_0 = off, p_(k+1) = p_k + inc + k.
Index GrowingPosition(Index off, Index inc, Index k) {
  return off + k * inc + k * (k - 1) / 2;
}

// True when every position of an n-element growing walk lies in the vector.
// The steps inc + k increase, so the positions fall until the step turns
// non-negative and rise afterwards: the extremes are at the ends and where
// the step changes sign.
bool GrowingWalkFits(Index n, Index off, Index inc, std::size_t size) {
  const Index last = n - 1;
  Index turn = 1 - inc;
  if (turn < 0) turn = 0;
  if (turn > last) turn = last;
  const Index lowest = GrowingPosition(off, inc, turn);
  const Index first = GrowingPosition(off, inc, 0);
  const Index end = GrowingPosition(off, inc, last);
  const Index highest = first > end ? first : end;
  return lowest >= 0 && first >= 0 && highest < static_cast<Index>(size);
}

template <typename T>
int BinSearchImpl(const std::vector<T>& v, int lo, int hi, T x,
                  bool rightOpen) {
  if (lo < 0 || lo > hi || static_cast<std::size_t>(hi) >= v.size()) {
    return -2;
  }
  const std::size_t top = static_cast<std::size_t>(hi);
  if (x > v[top] || (x == v[top] && rightOpen)) return -1;  // above the last
  if (lo > 0) {
    const T below = v[static_cast<std::size_t>(lo - 1)];
    if (below > x || (x == below && !rightOpen)) return -1;  // below the first
  }
  if (lo == hi) return lo;
  int low = lo;
  int high = hi - 1;
  int mid = lo;
  while (low <= high) {
    mid = low + (high - low) / 2;
    const T cut = v[static_cast<std::size_t>(mid)];
    if (x == cut) return rightOpen ? mid + 1 : mid;
    if (cut > x) {
      high = mid - 1;
    } else {
      low = mid + 1;
    }
  }
  return v[static_cast<std::size_t>(mid)] > x ? mid : mid + 1;
}

}  // namespace

double KXMathFun::DASum(int n, const std::vector<double>& x, int off,
                        int inc) {
  if (n < 1 || x.empty()) return 0.0;
  if (!WalkFits(n, off, inc, x.size())) return KXMV::Missing();
  return internal::SumAbs(n, x.data() + WalkFirst(n, off, inc), inc);
}

void KXMathFun::Daxpy(int n, double a, const std::vector<double>& x, int offx,
                      int incx, std::vector<double>& y, int offy, int incy) {
  if (n < 1 || a == 0) return;
  if (!WalkFits(n, offx, incx, x.size()) || !WalkFits(n, offy, incy, y.size())) {
    return;
  }
  // With |a| == 1 the product is exact, so y += x and y -= x give the same
  // bits as the multiplication.
  internal::Axpy(n, a, x.data() + WalkFirst(n, offx, incx), incx,
                 y.data() + WalkFirst(n, offy, incy), incy);
}

double KXMathFun::DDot(int n, const std::vector<double>& x, int offx,
                       int incx, const std::vector<double>& y, int offy,
                       int incy) {
  if (n < 1) return 0.0;
  if (!WalkFits(n, offx, incx, x.size()) || !WalkFits(n, offy, incy, y.size())) {
    return KXMV::Missing();
  }
  return internal::Dot(n, x.data() + WalkFirst(n, offx, incx), incx,
                       y.data() + WalkFirst(n, offy, incy), incy);
}

void KXMathFun::DLoad(int n, double a, std::vector<double>& x, int off,
                      int inc) {
  if (n < 1 || off < 0 || static_cast<Index>(n - 1) * inc + 1 < 1) return;
  if (!WalkFits(n, off, inc, x.size())) return;
  internal::Fill(n, a, x.data() + off, inc);
}

double KXMathFun::DNrm2(int n, const std::vector<double>& x, int off,
                        int inc) {
  if (n < 1) return 0.0;
  if (n == 1) {
    if (off < 0 || static_cast<std::size_t>(off) >= x.size()) {
      return KXMV::Missing();
    }
    return std::fabs(x[static_cast<std::size_t>(off)]);
  }
  if (static_cast<Index>(n - 1) * inc + 1 < 1) return 0.0;
  if (!WalkFits(n, off, inc, x.size())) return KXMV::Missing();
  return internal::ScaledNorm(n, x.data() + off, inc);
}

void KXMathFun::DScal(int n, double a, std::vector<double>& x, int off,
                      int inc) {
  if (a == 1.0 || n < 1 || static_cast<Index>(n - 1) * inc + 1 < 1) return;
  if (!WalkFits(n, off, inc, x.size())) return;
  if (a == -1.0) {
    internal::Negate(n, x.data() + off, inc);
  } else {
    internal::Scale(n, a, x.data() + off, inc);
  }
}

double KXMathFun::DSum(int n, const std::vector<double>& x, int inc) {
  if (n < 1) return 0.0;
  if (inc < 0 && n > 1) return 0.0;
  if (!WalkFits(n, 0, inc, x.size())) return KXMV::Missing();
  if (inc == 0) return n * x[0];
  return internal::Sum(n, x.data(), inc);
}

void KXMathFun::IIInit(int n, double a, std::vector<double>& x, int off,
                       int inc) {
  if (n < 1 || !GrowingWalkFits(n, off, inc, x.size())) return;
  Index position = off;
  for (Index k = 0; k < n; ++k) {
    x[static_cast<std::size_t>(position)] = a;
    position += inc + k;
  }
}

void KXMathFun::IIScal(int n, double a, std::vector<double>& x, int off,
                       int inc) {
  if (n < 1 || !GrowingWalkFits(n, off, inc, x.size())) return;
  Index position = off;
  for (Index k = 0; k < n; ++k) {
    x[static_cast<std::size_t>(position)] *= a;
    position += inc + k;
  }
}

void KXMathFun::IIAxpy(int n, double a, const std::vector<double>& x,
                       int offx, int incx, std::vector<double>& y, int offy,
                       int incy) {
  if (n < 1 || !GrowingWalkFits(n, offx, incx, x.size()) ||
      !GrowingWalkFits(n, offy, incy, y.size())) {
    return;
  }
  Index p = offy;
  Index q = offx;
  for (Index k = 0; k < n; ++k) {
    y[static_cast<std::size_t>(p)] += a * x[static_cast<std::size_t>(q)];
    p += incy + k;
    q += incx + k;
  }
}

double KXMathFun::IIDot(int n, const std::vector<double>& x, int offx,
                        int incx, const std::vector<double>& y, int offy,
                        int incy) {
  if (n < 1) return 0.0;
  if (!GrowingWalkFits(n, offx, incx, x.size()) ||
      !GrowingWalkFits(n, offy, incy, y.size())) {
    return KXMV::Missing();
  }
  double sum = 0.0;
  Index p = offy;
  Index q = offx;
  for (Index k = 0; k < n; ++k) {
    sum += x[static_cast<std::size_t>(q)] * y[static_cast<std::size_t>(p)];
    p += incy + k;
    q += incx + k;
  }
  return sum;
}

double KXMathFun::RVD(const std::vector<double>& S, int n, int row,
                      const std::vector<double>& x, int inc) {
  if (n < 1 || row < 0 || row >= n) return KXMV::Missing();
  if (static_cast<Index>(S.size()) < PackedRowStart(n)) return KXMV::Missing();
  if (inc < 0 || !WalkFits(n, 0, inc, x.size())) return KXMV::Missing();
  // Columns 0..row lie along the stored row; the rest down column `row`.
  const Index rowStart = PackedRowStart(row);
  double sum = internal::Dot(row + 1, S.data() + rowStart, 1, x.data(), inc);
  for (Index i = row + 1; i < n; ++i) {
    sum += S[static_cast<std::size_t>(PackedRowStart(i) + row)] *
           x[static_cast<std::size_t>(i * inc)];
  }
  return sum;
}

double KXMathFun::VSV(const std::vector<double>& S, int n,
                      const std::vector<double>& x) {
  if (n == 0) return 0.0;
  if (n < 0 || x.size() < static_cast<std::size_t>(n) ||
      static_cast<Index>(S.size()) < PackedRowStart(n)) {
    return KXMV::Missing();
  }
  // Each off-diagonal element stands for two of the full matrix.
  double sum = 0.0;
  for (Index i = 0; i < n; ++i) {
    const double* row = S.data() + PackedRowStart(i);
    const double offDiagonal = internal::Dot(i, row, 1, x.data(), 1);
    const double xi = x[static_cast<std::size_t>(i)];
    sum += xi * (2.0 * offDiagonal + row[i] * xi);
  }
  return sum;
}

double KXMathFun::VMaxRelDiff(const std::vector<double>& a,
                              const std::vector<double>& b, double tol) {
  const double t = tol == 0 ? 1e-6 : std::fabs(tol);
  const std::size_t length = a.size() < b.size() ? a.size() : b.size();
  double largest = 0.0;
  for (std::size_t k = 0; k < length; ++k) {
    const double relative = std::fabs(a[k] - b[k]) / (std::fabs(b[k]) + t);
    if (relative > largest) largest = relative;
  }
  return largest;
}

double KXMathFun::VNrm1Diff(const std::vector<double>& a,
                            const std::vector<double>& b) {
  const std::size_t length = a.size() < b.size() ? a.size() : b.size();
  double largest = 0.0;
  for (std::size_t k = 0; k < length; ++k) {
    const double difference = std::fabs(a[k] - b[k]);
    if (difference > largest) largest = difference;
  }
  return largest;
}

int KXMathFun::BinSearch(const std::vector<double>& v, int lo, int hi,
                         double x, bool rightOpen) {
  return BinSearchImpl(v, lo, hi, x, rightOpen);
}

int KXMathFun::BinSearch(const std::vector<int>& v, int lo, int hi, int x,
                         bool rightOpen) {
  return BinSearchImpl(v, lo, hi, x, rightOpen);
}

bool KXMathFun::IsValidDouble(double x) { return x >= -DBL_MAX && x <= DBL_MAX; }

}  // namespace KXCommon
