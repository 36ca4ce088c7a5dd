#include "kxcommonr/common/vector/internal/VectorKernels.h"

#include <cmath>
#include <cstdint>
#include <cstring>

// Runtime dispatch of the unit-stride paths to wide vector units: the loader
// picks the AVX-512, AVX2 or baseline clone once, inside one portable binary.
// Only elementwise work and exact maxima are vectorised, so every clone gives
// the same bits. Other compilers and platforms compile the plain loops.
#include "kxcommonr/common/simd/KXDispatch.h"
#include "kxcommonr/common/simd/KXSimd.h"

// The summations stay one accumulator in index order; unrolling only cuts
// the loop overhead around the chain of dependent additions.
#if defined(__GNUC__) && !defined(__clang__)
#define KX_UNROLL8 _Pragma("GCC unroll 8")
#elif defined(__clang__)
#define KX_UNROLL8 _Pragma("clang loop unroll_count(8)")
#else
#define KX_UNROLL8
#endif

namespace KXCommon {
namespace internal {

namespace {

using simd::LoadU;
using simd::StoreU;
// Vectors of every clone of a KX_TARGET_CLONES function (plain doubles where
// vector extensions are missing).
typedef simd::IsaCloned::V Lanes;
constexpr int kLanes = simd::IsaCloned::kLanes;

// The classic scaled sum of squares: scale is the largest magnitude so far,
// ssq the sum of the squared magnitudes over scale, and the norm is
// scale * sqrt(ssq). No element is squared directly, so nothing overflows or
// underflows for representable inputs.
struct ScaledSquares {
  double scale = 0.0;
  double ssq = 1.0;

  // One element. A zero is skipped; a NaN never raises the scale and makes
  // ssq NaN.
  KX_ALWAYS_INLINE void Add(double element) {
    if (element == 0.0) return;
    const double magnitude = std::fabs(element);
    if (magnitude > scale) {
      const double ratio = scale / magnitude;
      ssq = 1.0 + ssq * (ratio * ratio);
      scale = magnitude;
    } else {
      const double ratio = magnitude / scale;
      ssq += ratio * ratio;
    }
  }

  // The same, except that once the scale is infinite a further infinity is
  // skipped (Add would divide it by the scale and make ssq NaN): the norm
  // of a vector holding an infinity is infinite, unless it holds a NaN.
  KX_ALWAYS_INLINE void AddChecked(double element) {
    if (std::isinf(scale) && std::isinf(element)) return;
    Add(element);
  }

  double Norm() const { return scale * std::sqrt(ssq); }
};

// One pass with 32 lanes, each keeping its largest magnitude and the first
// position where it occurred (strict >, so NaNs never enter). The answer is
// the first position of the overall maximum: the smallest position among
// the lanes holding that maximum; the scalar tail continues the scan.
KX_TARGET_CLONES std::ptrdiff_t FirstAbsMaxUnit(std::ptrdiff_t n, const double* x) {
  if (std::isnan(x[0])) return 0;  // nothing compares greater than a NaN
  double best = -1.0;
  std::ptrdiff_t bestIndex = 0;
  std::ptrdiff_t k = 0;
#if defined(KX_VECTOR_EXT)
  if (n >= 64) {
    typedef simd::Vec8 Doubles8;
    typedef simd::Bits8 Bits8;
    Doubles8 laneBest[4];
    Bits8 laneWhere[4];
    Bits8 position[4];
    for (int g = 0; g < 4; ++g) {
      for (int l = 0; l < 8; ++l) {
        laneBest[g][l] = -1.0;
        laneWhere[g][l] = 0;
        position[g][l] = 8 * g + l;
      }
    }
    for (; k + 32 <= n; k += 32) {
      for (int g = 0; g < 4; ++g) {
        Doubles8 magnitude;
        LoadU(magnitude, x + k + 8 * g);
        simd::AbsLanes(magnitude, magnitude);
        const Bits8 greater = magnitude > laneBest[g];
        simd::SelectLanes(laneBest[g], greater, magnitude, laneBest[g]);
        laneWhere[g] = (position[g] & greater) | (laneWhere[g] & ~greater);
        position[g] += 32;
      }
    }
    for (int g = 0; g < 4; ++g) {
      for (int l = 0; l < 8; ++l) {
        const double value = laneBest[g][l];
        const std::ptrdiff_t where = static_cast<std::ptrdiff_t>(laneWhere[g][l]);
        if (value > best || (value == best && where < bestIndex)) {
          best = value;
          bestIndex = where;
        }
      }
    }
  }
#endif
  if (k == 0) {
    best = std::fabs(x[0]);
    k = 1;
  }
  for (; k < n; ++k) {
    const double magnitude = std::fabs(x[k]);
    if (magnitude > best) {
      best = magnitude;
      bestIndex = k;
    }
  }
  return bestIndex;
}

// Four elements at a time: when none of them exceeds the scale (finite and
// positive), their terms (|x|/scale)^2 are computed side by side and added
// to ssq one by one in index order, exactly as Add would; a zero adds
// exactly 0 to ssq (>= 1 or NaN), as skipping it does, and a NaN gives NaN
// in both. Four elements that raise the scale take AddChecked one by one:
// new maxima are rare past the first elements, and small groups keep the
// one-by-one work (a division each) short. The additions into ssq form one
// chain in index order, which bounds the speed.
KX_TARGET_CLONES double ScaledNormUnit(std::ptrdiff_t n, const double* x) {
  ScaledSquares sum;
  std::ptrdiff_t k = 0;
  for (; k < n && !(sum.scale > 0.0); ++k) sum.Add(x[k]);
#if defined(KX_VECTOR_EXT)
  constexpr int kNormGroup = 4;
  typedef simd::VectorOf<kNormGroup>::V NormGroup;
  for (; k + kNormGroup <= n && !std::isinf(sum.scale); k += kNormGroup) {
    NormGroup magnitude;
    LoadU(magnitude, x + k);
    simd::AbsLanes(magnitude, magnitude);
    if (simd::AnyLane(magnitude > sum.scale)) {
      for (int l = 0; l < kNormGroup; ++l) sum.AddChecked(x[k + l]);
      continue;
    }
    NormGroup term = magnitude / sum.scale;
    term = term * term;
    double ssq = sum.ssq;
    for (int l = 0; l < kNormGroup; ++l) ssq += term[l];
    sum.ssq = ssq;
  }
#endif
  for (; k < n; ++k) sum.AddChecked(x[k]);
  return sum.Norm();
}

// True when y starts strictly inside x[0..n): a forward loop then reads
// elements it has already written, which block processing would not
// reproduce, so such calls take the plain loop.
bool StartsInside(const double* x, const double* y, std::ptrdiff_t n) {
  const std::uintptr_t xa = reinterpret_cast<std::uintptr_t>(x);
  const std::uintptr_t ya = reinterpret_cast<std::uintptr_t>(y);
  return ya > xa && ya - xa < static_cast<std::uintptr_t>(n) * sizeof(double);
}

// True when x[0..n) and y[0..n) share memory without being the same array.
bool PartlyOverlap(const double* x, const double* y, std::ptrdiff_t n) {
  return x != y && (StartsInside(x, y, n) || StartsInside(y, x, n));
}

// Each elementwise kernel: one(k) on single elements until `aligned` + k
// lies on a 64-byte boundary, block(k) on kBlock elements from k (all loads
// of a block before its stores), one(k) on the tail. Every element gets
// exactly the scalar operation, so all paths agree.
template <std::ptrdiff_t kBlock, class One, class Block>
KX_ALWAYS_INLINE void ByBlocks(std::ptrdiff_t n, const double* aligned, One one, Block block) {
  std::ptrdiff_t k = 0;
  for (const std::ptrdiff_t head = simd::PeelTo64(aligned, n); k < head; ++k) one(k);
  for (; k + kBlock <= n; k += kBlock) block(k);
  for (; k < n; ++k) one(k);
}

KX_TARGET_CLONES void AxpyUnit(std::ptrdiff_t n, double a, const double* x, double* y) {
  std::ptrdiff_t k = 0;
  if (!StartsInside(x, y, n)) {
    for (const std::ptrdiff_t head = simd::PeelTo64(y, n); k < head; ++k) y[k] += a * x[k];
    simd::Axpy<simd::IsaCloned>(y + k, x + k, a, n - k);
    return;
  }
  for (; k < n; ++k) y[k] += a * x[k];
}

KX_TARGET_CLONES void ScaleUnit(std::ptrdiff_t n, double a, double* x) {
  ByBlocks<4 * kLanes>(n, x, [x, a](std::ptrdiff_t k) KX_INLINE_LAMBDA { x[k] *= a; },
                       [x, a](std::ptrdiff_t k) KX_INLINE_LAMBDA {
                         Lanes v[4];
                         for (int g = 0; g < 4; ++g) LoadU(v[g], x + k + g * kLanes);
                         for (int g = 0; g < 4; ++g) StoreU(x + k + g * kLanes, v[g] * a);
                       });
}

void CopyUnit(std::ptrdiff_t n, const double* x, double* y) {
  if (StartsInside(x, y, n)) {
    // y runs ahead inside x: the forward copy repeats the leading elements.
    for (std::ptrdiff_t k = 0; k < n; ++k) y[k] = x[k];
    return;
  }
  // Otherwise a forward copy equals a move.
  std::memmove(y, x, static_cast<std::size_t>(n) * sizeof(double));
}

KX_TARGET_CLONES void SwapUnit(std::ptrdiff_t n, double* x, double* y) {
  const auto swapOne = [x, y](std::ptrdiff_t k) KX_INLINE_LAMBDA {
    const double held = x[k];
    x[k] = y[k];
    y[k] = held;
  };
  if (PartlyOverlap(x, y, n)) {
    for (std::ptrdiff_t k = 0; k < n; ++k) swapOne(k);
    return;
  }
  ByBlocks<4 * kLanes>(n, y, swapOne, [x, y](std::ptrdiff_t k) KX_INLINE_LAMBDA {
    Lanes xv[4], yv[4];
    for (int g = 0; g < 4; ++g) {
      LoadU(xv[g], x + k + g * kLanes);
      LoadU(yv[g], y + k + g * kLanes);
    }
    for (int g = 0; g < 4; ++g) {
      StoreU(x + k + g * kLanes, yv[g]);
      StoreU(y + k + g * kLanes, xv[g]);
    }
  });
}

KX_TARGET_CLONES void RotateUnit(std::ptrdiff_t n, double* x, double* y, double c,
                                 double s) {
  const auto rotateOne = [x, y, c, s](std::ptrdiff_t k) KX_INLINE_LAMBDA {
    const double xk = x[k];
    const double yk = y[k];
    x[k] = c * xk + s * yk;
    y[k] = c * yk - s * xk;
  };
  if (PartlyOverlap(x, y, n)) {
    for (std::ptrdiff_t k = 0; k < n; ++k) rotateOne(k);
    return;
  }
  ByBlocks<2 * kLanes>(n, y, rotateOne, [x, y, c, s](std::ptrdiff_t k) KX_INLINE_LAMBDA {
    Lanes xv[2], yv[2];
    for (int g = 0; g < 2; ++g) {
      LoadU(xv[g], x + k + g * kLanes);
      LoadU(yv[g], y + k + g * kLanes);
    }
    for (int g = 0; g < 2; ++g) {
      StoreU(x + k + g * kLanes, c * xv[g] + s * yv[g]);
      StoreU(y + k + g * kLanes, c * yv[g] - s * xv[g]);
    }
  });
}

}  // namespace

double SumAbs(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx) {
  double sum = 0.0;
  if (incx == 1) {
    KX_UNROLL8
    for (std::ptrdiff_t k = 0; k < n; ++k) sum += std::fabs(x[k]);
  } else {
    for (std::ptrdiff_t k = 0; k < n; ++k) sum += std::fabs(x[k * incx]);
  }
  return sum;
}

double Sum(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx) {
  double sum = 0.0;
  if (incx == 1) {
    KX_UNROLL8
    for (std::ptrdiff_t k = 0; k < n; ++k) sum += x[k];
  } else {
    for (std::ptrdiff_t k = 0; k < n; ++k) sum += x[k * incx];
  }
  return sum;
}

double Dot(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx,
           const double* y, std::ptrdiff_t incy) {
  double sum = 0.0;
  if (incx == 1 && incy == 1) {
    KX_UNROLL8
    for (std::ptrdiff_t k = 0; k < n; ++k) sum += x[k] * y[k];
  } else {
    for (std::ptrdiff_t k = 0; k < n; ++k) sum += x[k * incx] * y[k * incy];
  }
  return sum;
}

double ScaledNorm(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx) {
  if (n < 1) return 0.0;
  if (incx == 1) return ScaledNormUnit(n, x);
  ScaledSquares sum;
  for (std::ptrdiff_t k = 0; k < n; ++k) sum.AddChecked(x[k * incx]);
  return sum.Norm();
}

void Axpy(std::ptrdiff_t n, double a, const double* x, std::ptrdiff_t incx,
          double* y, std::ptrdiff_t incy) {
  if (n < 1) return;
  if (incx == 1 && incy == 1) {
    AxpyUnit(n, a, x, y);
    return;
  }
  for (std::ptrdiff_t k = 0; k < n; ++k) y[k * incy] += a * x[k * incx];
}

void Scale(std::ptrdiff_t n, double a, double* x, std::ptrdiff_t incx) {
  if (n < 1) return;
  if (incx == 1) {
    ScaleUnit(n, a, x);
    return;
  }
  for (std::ptrdiff_t k = 0; k < n; ++k) x[k * incx] *= a;
}

void Negate(std::ptrdiff_t n, double* x, std::ptrdiff_t incx) {
  for (std::ptrdiff_t k = 0; k < n; ++k) x[k * incx] = -x[k * incx];
}

void Fill(std::ptrdiff_t n, double a, double* x, std::ptrdiff_t incx) {
  for (std::ptrdiff_t k = 0; k < n; ++k) x[k * incx] = a;
}

void Copy(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx, double* y,
          std::ptrdiff_t incy) {
  if (n < 1) return;
  if (incx == 1 && incy == 1) {
    CopyUnit(n, x, y);
    return;
  }
  for (std::ptrdiff_t k = 0; k < n; ++k) y[k * incy] = x[k * incx];
}

void Swap(std::ptrdiff_t n, double* x, std::ptrdiff_t incx, double* y,
          std::ptrdiff_t incy) {
  if (n < 1) return;
  if (incx == 1 && incy == 1) {
    SwapUnit(n, x, y);
    return;
  }
  for (std::ptrdiff_t k = 0; k < n; ++k) {
    const double held = x[k * incx];
    x[k * incx] = y[k * incy];
    y[k * incy] = held;
  }
}

void Rotate(std::ptrdiff_t n, double* x, std::ptrdiff_t incx, double* y,
            std::ptrdiff_t incy, double c, double s) {
  if (n < 1) return;
  if (incx == 1 && incy == 1) {
    RotateUnit(n, x, y, c, s);
    return;
  }
  for (std::ptrdiff_t k = 0; k < n; ++k) {
    const double xk = x[k * incx];
    const double yk = y[k * incy];
    x[k * incx] = c * xk + s * yk;
    y[k * incy] = c * yk - s * xk;
  }
}

std::ptrdiff_t FirstAbsMax(std::ptrdiff_t n, const double* x,
                           std::ptrdiff_t incx) {
  if (n < 1) return -1;
  if (incx == 1) return FirstAbsMaxUnit(n, x);
  double best = std::fabs(x[0]);
  std::ptrdiff_t bestIndex = 0;
  for (std::ptrdiff_t k = 1; k < n; ++k) {
    const double magnitude = std::fabs(x[k * incx]);
    if (magnitude > best) {
      best = magnitude;
      bestIndex = k;
    }
  }
  return bestIndex;
}

}  // namespace internal
}  // namespace KXCommon
