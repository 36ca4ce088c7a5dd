// kxcommonr/common/simd/KXSimd.h
//
// The vector types, loads, stores and small kernels that the hot kernels of
// every component share (namespace KXCommon::internal::simd): the shapes
// below, LoadU and StoreU, the row updates Axpy and Axmy, and the register
// tile of the blocked products, TileKernel. Not part of the public interface.
//
// Vectors always run across independent outputs: each output element gets
// exactly the operations of the scalar loop, in the same order (the build
// forbids contracting a*b+c into one fused instruction), so the lane count
// of a shape never changes a result, and neither does the instruction set
// a function is compiled for.
//
// Shapes. IsaShape<V, Lanes, Rows, Vecs> names the register type V of one
// instruction set (Lanes doubles) and the register tile of Rows x Vecs
// registers that the blocked kernels update at once:
//   IsaAvx512  8 lanes, 8 x 2 tile   for functions marked KX_TARGET("avx512f")
//   IsaAvx2    4 lanes, 6 x 2 tile   for functions marked KX_TARGET("avx2")
//   IsaBase    2 lanes, 4 x 2 tile   the baseline (SSE2, or 128-bit vectors
//                                    of another GNU target); plain double,
//                                    1 lane, 4 x 4 tile without KX_VECTOR_EXT
//   IsaCloned  8 lanes, for KX_TARGET_CLONES functions: each clone lowers a
//              Vec8 operation to its own registers (one AVX-512 register,
//              two AVX2 or four SSE2 ones); IsaBase without KX_VECTOR_EXT.
// A function using a shape wider than its target still works (the compiler
// splits the vectors), only slower.
//
// Vectors pass by reference only: passing or returning them by value would
// tie the ABI to the instruction set. Every function here is inlined into
// the target-specific function that calls it (KX_ALWAYS_INLINE).
//
// Thread rule: no state.
#ifndef KXCOMMONR_COMMON_SIMD_KXSIMD_H
#define KXCOMMONR_COMMON_SIMD_KXSIMD_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "kxcommonr/common/simd/KXDispatch.h"

namespace KXCommon {
namespace internal {
namespace simd {

template <class Vector, int Lanes, int Rows, int Vecs>
struct IsaShape {
  typedef Vector V;
  static constexpr int kLanes = Lanes;
  static constexpr int kRows = Rows;
  static constexpr int kVecs = Vecs;
};

#if defined(KX_VECTOR_EXT)
// Register vectors of doubles, naturally aligned: memory goes through
// LoadU and StoreU, which take any 8-byte aligned address.
typedef double Vec8 __attribute__((vector_size(64)));
typedef double Vec4 __attribute__((vector_size(32)));
typedef double Vec2 __attribute__((vector_size(16)));
// 64-bit integer lanes: the bit patterns of the vectors above and the
// masks their comparisons give (all bits set where true).
typedef long long Bits8 __attribute__((vector_size(64)));
typedef long long Bits4 __attribute__((vector_size(32)));
typedef long long Bits2 __attribute__((vector_size(16)));
template <class V> struct MaskOf;
template <> struct MaskOf<Vec8> { typedef Bits8 M; };
template <> struct MaskOf<Vec4> { typedef Bits4 M; };
template <> struct MaskOf<Vec2> { typedef Bits2 M; };

// The vector of a given number of lanes (1: a plain double).
template <int Lanes> struct VectorOf { typedef double V; };
template <> struct VectorOf<2> { typedef Vec2 V; };
template <> struct VectorOf<4> { typedef Vec4 V; };
template <> struct VectorOf<8> { typedef Vec8 V; };

typedef IsaShape<Vec8, 8, 8, 2> IsaAvx512;
typedef IsaShape<Vec4, 4, 6, 2> IsaAvx2;
typedef IsaShape<Vec2, 2, 4, 2> IsaBase;
typedef IsaShape<Vec8, 8, 8, 2> IsaCloned;
#else
template <int Lanes> struct VectorOf { typedef double V; };

typedef IsaShape<double, 1, 4, 4> IsaBase;
typedef IsaBase IsaCloned;
#endif

// Loads or stores one vector at p, which needs only the alignment of a
// double.
template <class V>
KX_ALWAYS_INLINE void LoadU(V& v, const double* p) {
  std::memcpy(&v, p, sizeof(V));
}
template <class V>
KX_ALWAYS_INLINE void StoreU(double* p, const V& v) {
  std::memcpy(p, &v, sizeof(V));
}

#if defined(KX_VECTOR_EXT)
// out = |v| lane by lane, by clearing the sign bits (a NaN stays a NaN).
template <class V>
KX_ALWAYS_INLINE void AbsLanes(V& out, const V& v) {
  typedef typename MaskOf<V>::M M;
  const M magnitudeBits = M{} + 0x7FFFFFFFFFFFFFFFLL;
  out = (V)((M)v & magnitudeBits);
}

// out = mask ? a : b, lane by lane (a comparison mask: all bits of a lane
// set or none).
template <class V>
KX_ALWAYS_INLINE void SelectLanes(V& out, const typename MaskOf<V>::M& mask, const V& a,
                                  const V& b) {
  typedef typename MaskOf<V>::M M;
  out = (V)(((M)a & mask) | ((M)b & ~mask));
}

// True when some lane of a comparison mask is set: the halves are or-ed
// together until two lanes remain.
KX_ALWAYS_INLINE bool AnyLane(const Bits2& mask) { return (mask[0] | mask[1]) != 0; }
KX_ALWAYS_INLINE bool AnyLane(const Bits4& mask);
template <class Half, class M>
KX_ALWAYS_INLINE bool AnyLaneOfHalves(const M& mask) {
  Half low, high;
  std::memcpy(&low, &mask, sizeof low);
  std::memcpy(&high, reinterpret_cast<const char*>(&mask) + sizeof low, sizeof high);
  low |= high;
  return AnyLane(low);
}
KX_ALWAYS_INLINE bool AnyLane(const Bits4& mask) { return AnyLaneOfHalves<Bits2>(mask); }
KX_ALWAYS_INLINE bool AnyLane(const Bits8& mask) { return AnyLaneOfHalves<Bits4>(mask); }
#endif

// How many leading elements of p to handle one by one so that the rest
// starts on a 64-byte (cache line) boundary, at most n; 0 when p is on one
// already or is not aligned to a double.
inline std::ptrdiff_t PeelTo64(const double* p, std::ptrdiff_t n) {
  const std::uintptr_t misaligned = reinterpret_cast<std::uintptr_t>(p) & 63u;
  if (misaligned == 0 || (misaligned & 7u) != 0) return 0;
  const std::ptrdiff_t peel = static_cast<std::ptrdiff_t>((64u - misaligned) / 8u);
  return peel < n ? peel : n;
}

// The row updates y[j] = y[j] + c * x[j] (Axpy) and y[j] = y[j] - c * x[j]
// (Axmy) for j < count: whole vectors, then what remains in steps of half a
// vector, a quarter and so on down to one element, each taken at most once
// (short rows take a few narrow vector steps instead of a scalar loop). Each
// step loads its operands before it stores, so y may also start before x
// inside the same array (y <= x): every x[j] is read before the element of
// y that shares its memory is written.

// One step of W lanes at j when it fits (a plain double for W == 1), then
// the steps of W/2, W/4, ... 1.
template <int W, bool kSubtract>
KX_ALWAYS_INLINE void UpdateScaledRest(double* y, const double* x, double c, std::int64_t j,
                                       std::int64_t count) {
  if (j + W <= count) {
    typename VectorOf<W>::V y0, x0;
    LoadU(y0, y + j);
    LoadU(x0, x + j);
    y0 = kSubtract ? y0 - c * x0 : y0 + c * x0;
    StoreU(y + j, y0);
    j += W;
  }
  if constexpr (W > 1) UpdateScaledRest<W / 2, kSubtract>(y, x, c, j, count);
}

template <class Isa, bool kSubtract>
KX_ALWAYS_INLINE void UpdateScaled(double* y, const double* x, double c, std::int64_t count) {
  typedef typename Isa::V V;
  constexpr int L = Isa::kLanes;
  std::int64_t j = 0;
  for (; j + L <= count; j += L) {
    V y0, x0;
    LoadU(y0, y + j);
    LoadU(x0, x + j);
    y0 = kSubtract ? y0 - c * x0 : y0 + c * x0;
    StoreU(y + j, y0);
  }
  if constexpr (L > 1) UpdateScaledRest<L / 2, kSubtract>(y, x, c, j, count);
}

template <class Isa>
KX_ALWAYS_INLINE void Axpy(double* y, const double* x, double c, std::int64_t count) {
  UpdateScaled<Isa, false>(y, x, c, count);
}
template <class Isa>
KX_ALWAYS_INLINE void Axmy(double* y, const double* x, double c, std::int64_t count) {
  UpdateScaled<Isa, true>(y, x, c, count);
}

// The register tile of the blocked kernels: for t = 0 .. count-1,
//   c[r][q] = c[r][q] -/+ a_t[r] * b_t[q],  r < R, q < NV * kLanes,
// one product at a time in increasing t, with a_0 = a, b_0 = b and
// a_(t+1) = a_t + aStride_t, aStride_(t+1) = aStride_t + aGrow (b likewise).
// A grow of 0 gives a fixed stride (a packed panel); 1 walks down a column
// of a packed triangle, whose stride is the length of the next row.
// c[r] points at the NV * kLanes outputs of tile row r.
template <class Isa, int R, int NV, bool kSubtract>
KX_ALWAYS_INLINE void TileKernel(double* const* c, const double* a, std::int64_t aStride,
                                 std::int64_t aGrow, const double* b, std::int64_t bStride,
                                 std::int64_t bGrow, std::int64_t count) {
  typedef typename Isa::V V;
  constexpr int L = Isa::kLanes;
  V acc[R][NV];
#pragma GCC unroll 16
  for (int r = 0; r < R; ++r)
#pragma GCC unroll 4
    for (int v = 0; v < NV; ++v) LoadU(acc[r][v], c[r] + v * L);
  for (std::int64_t t = 0; t < count; ++t) {
    V bv[NV];
#pragma GCC unroll 4
    for (int v = 0; v < NV; ++v) LoadU(bv[v], b + v * L);
#pragma GCC unroll 16
    for (int r = 0; r < R; ++r) {
      const double ar = a[r];
#pragma GCC unroll 4
      for (int v = 0; v < NV; ++v) {
        if (kSubtract)
          acc[r][v] = acc[r][v] - ar * bv[v];
        else
          acc[r][v] = acc[r][v] + ar * bv[v];
      }
    }
    a += aStride;
    aStride += aGrow;
    b += bStride;
    bStride += bGrow;
  }
#pragma GCC unroll 16
  for (int r = 0; r < R; ++r)
#pragma GCC unroll 4
    for (int v = 0; v < NV; ++v) StoreU(c[r] + v * L, acc[r][v]);
}

}  // namespace simd
}  // namespace internal
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_SIMD_KXSIMD_H
