// kxcommonr/common/rectmatrix/KXDenseKernels.h
//
// Register-blocked matrix-multiply kernels behind the rectangular products,
// the cross products of the rank tools, and the products and block
// cross-product update of KXSymMatrix (the symmetric matrices rest on this
// component). Library-internal: not installed, as no *Kernels.h header is.
//
// Every output element is accumulated in increasing order of the summation
// index, one product at a time (c = c + a * b, never fused), starting from
// its current value. The result is therefore identical bit for bit to the
// plain loop
//   for p in 0..k-1: c(i, j) = c(i, j) + a(i, p) * b(p, j)
// whichever vector unit the code dispatches to at run time (AVX-512, AVX2 or
// the baseline path); only the number of outputs computed at once differs.
//
// Thread rule: reentrant. Each thread keeps its own packing buffers, which
// grow on first use and are then reused (no allocation in steady state).
#ifndef KXCOMMONR_COMMON_RECTMATRIX_KXDENSEKERNELS_H
#define KXCOMMONR_COMMON_RECTMATRIX_KXDENSEKERNELS_H

#include <cstddef>

namespace KXCommon {
namespace internal {

// A read-only matrix view: element (i, p) at base[i * rowStride + p * colStride].
// Either stride may be 1, so a row-major matrix and its transpose are both
// views of the same storage.
struct StridedView {
  const double* base;
  std::ptrdiff_t rowStride;
  std::ptrdiff_t colStride;
  double At(std::ptrdiff_t i, std::ptrdiff_t p) const { return base[i * rowStride + p * colStride]; }
};

// c(i, j) += sum_p a(i, p) * b(p, j) for i < m, j < n, p < k; c is row-major
// with leading dimension ldc. c must not overlap a or b.
void GemmAccumulate(int m, int n, int k, StridedView a, StridedView b, double* c,
                    std::ptrdiff_t ldc);

// The lower triangle of a packed symmetric matrix of order n (the layout of
// KXPackedLayout.h): packed(i, j) += sum_p (a(i, p) * scale) *
// b(p, j), in increasing p. With scale == 1 the factor changes nothing.
void PackedLowerAccumulate(int n, int k, StridedView a, double scale, StridedView b,
                           double* packed);

// Name of the code path chosen on this processor ("avx512", "avx2",
// "baseline" or "portable"), for benchmarks and diagnostics.
const char* DenseKernelPath();

// For tests: forces the code path named as DenseKernelPath() names it, or
// restores the processor's choice for an empty name or null. False (nothing
// changed) when this processor cannot run that path. The path is the level
// set by SetKernelLevel (KXDispatch.h), so the packed factor kernels follow
// it too. Not thread-safe: call it only while no other thread uses these
// kernels.
bool SelectDenseKernelPath(const char* name);

}  // namespace internal
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_RECTMATRIX_KXDENSEKERNELS_H
