// kxcommonr/common/dist/internal/KXDistStatus.h
//
// The status codes of the KXDistFun workers (their long& status argument)
// and the one place where a worker's status becomes the public convention:
// a non-zero status gives the missing value. Not installed; public headers
// never include it.
//
// Thread-safe: no state.
#ifndef KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTSTATUS_H
#define KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTSTATUS_H

#include "kxcommonr/common/foundation/KXMV.h"

namespace KXCommon {
namespace diststatus {

constexpr long kOk = 0;
// Degrees of freedom or a shape parameter not > 0, a probability out of
// range.
constexpr long kInvalidArgument = 1;
// An inner function returned missing or a value out of range, or an
// iteration did not converge.
constexpr long kFailed = 2;

// Runs worker(status) with status set to kOk and returns its value, or the
// missing value when the worker left a non-zero status.
template <typename Worker>
double ValueOrMissing(Worker worker) {
  long status = kOk;
  const double value = worker(status);
  return status != kOk ? KXMV::Missing() : value;
}

}  // namespace diststatus
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTSTATUS_H
