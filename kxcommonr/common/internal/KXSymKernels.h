// kxcommonr/common/internal/KXSymKernels.h
//
// Internal hot kernels of the packed symmetric matrix, not installed.
//
// Each kernel is compiled several times, for AVX-512, AVX2 and baseline
// x86-64, and the widest one the processor supports is chosen at load time
// (GCC/clang target_clones over ELF ifuncs). The kernels vectorise across
// independent outputs only; every output is computed by the same sequence of
// IEEE operations on every path, so results are bitwise identical whichever
// path runs (the build uses -ffp-contract=off: no fused multiply-add).
// Elsewhere the plain code is compiled once.
//
// Thread-safe: no state. No allocation.
#ifndef KXCOMMONR_COMMON_INTERNAL_KXSYMKERNELS_H
#define KXCOMMONR_COMMON_INTERNAL_KXSYMKERNELS_H

#include <cstddef>

#if defined(__x86_64__) && defined(__ELF__) && \
    (defined(__GNUC__) || defined(__clang__)) && !defined(KXCOMMONR_NO_DISPATCH)
#define KXSYM_DISPATCH_CLONES \
  __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define KXSYM_DISPATCH_CLONES
#endif

namespace KXCommon {
namespace internal {

// Rank-one update of a packed lower triangle of order n:
// for every row i with x[i] != 0, c = x[i] * w and a(i, j) += c * x[j] for
// j = 0..i. packed holds n(n+1)/2 elements; x must not overlap packed.
void PackedRankOneUpdate(double* packed, const double* x, std::size_t n,
                         double w);

// y[j] += c * x[j] for j = 0..count-1 (x and y must not overlap).
void ScaledAdd(double* y, const double* x, double c, std::size_t count);

}  // namespace internal
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_INTERNAL_KXSYMKERNELS_H
