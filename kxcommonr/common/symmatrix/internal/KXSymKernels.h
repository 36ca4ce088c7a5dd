// kxcommonr/common/symmatrix/internal/KXSymKernels.h
//
// Internal hot kernels of the packed symmetric matrix, not installed.
//
// On x86-64 with GCC or clang (ELF) each kernel is compiled for AVX-512,
// AVX2 and baseline x86-64, and the widest one the processor supports is
// chosen at load time (target_clones). The kernels vectorise across
// independent outputs only: every element gets the same IEEE operations in
// the same order on every path (the build uses -ffp-contract=off: no fused
// multiply-add), so results are bitwise identical whichever path runs.
// Elsewhere the plain loop is compiled once.
//
// Thread-safe: no state. No allocation.
#ifndef KXCOMMONR_COMMON_SYMMATRIX_INTERNAL_KXSYMKERNELS_H
#define KXCOMMONR_COMMON_SYMMATRIX_INTERNAL_KXSYMKERNELS_H

#include <cstddef>

namespace KXCommon {
namespace internal {

// Rank-one update of a packed lower triangle of order n: for every row i
// with x[i] != 0, c = x[i] * w and a(i, j) += c * x[j] for j = 0..i.
// packed holds n(n+1)/2 elements; x must not overlap packed.
void PackedRankOneUpdate(double* packed, const double* x, std::size_t n,
                         double w);

// out = S v for the packed symmetric matrix S of order n. Every out[i] is
// the sum over j = 0..n-1 of a(i, j) * v[j], accumulated from 0 in
// increasing j, exactly as the plain double loop would. out must not
// overlap packed or v.
void PackedSymMatVec(const double* packed, const double* v, double* out,
                     std::size_t n);

}  // namespace internal
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_SYMMATRIX_INTERNAL_KXSYMKERNELS_H
