// kxcommonr/common/internal/KXSymKernels.cpp
#include "kxcommonr/common/internal/KXSymKernels.h"

#if defined(__x86_64__) && defined(__ELF__) && \
    (defined(__GNUC__) || defined(__clang__)) && !defined(KXCOMMONR_NO_DISPATCH)
#define KXSYM_DISPATCH_CLONES \
  __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define KXSYM_DISPATCH_CLONES
#endif

namespace KXCommon {
namespace internal {

namespace {

// One stored row: y[j] += c * x[j]. Each y[j] is an independent output, so
// the compiler's vectorisation of this loop cannot change any result. The
// short scalar tail of each row is deliberate: a masked vector store there
// would block store forwarding into the next row, which starts right after.
inline void AddScaledRow(double* __restrict y, const double* __restrict x,
                         double c, std::size_t count) {
  for (std::size_t j = 0; j < count; ++j) y[j] += c * x[j];
}

}  // namespace

KXSYM_DISPATCH_CLONES
void PackedRankOneUpdate(double* packed, const double* x, std::size_t n,
                         double w) {
  double* row = packed;
  for (std::size_t i = 0; i < n; ++i) {
    const double xi = x[i];
    if (xi != 0.0) AddScaledRow(row, x, xi * w, i + 1);
    row += i + 1;
  }
}

}  // namespace internal
}  // namespace KXCommon
