// kxcommonr/common/foundation/KXExtremeNum.h
//
// Arithmetic on numbers near the ends of the double range: one overflow-safe
// square root of a signed sum of scaled squares. Pure; safe from any thread.
#ifndef KXCOMMONR_COMMON_FOUNDATION_KXEXTREMENUM_H
#define KXCOMMONR_COMMON_FOUNDATION_KXEXTREMENUM_H

#include "kxcommonr/config.h"

namespace KXCommon {
namespace KXExtremeNum {

// result = sqrt(a*a*b + c*c*d) for b and d of either sign, without forming the
// squares (so neither overflows nor underflows where the result is
// representable; a result within a few roundings of the largest double is
// returned as that double). Returns true when a result was written; returns false,
// leaving result unchanged, when the sum is negative (both b and d negative,
// or the negative term dominates) or when an argument is NaN.
KXCOMMONR_API bool SumSqRoot(double a, double b, double c, double d,
                             double& result);

}  // namespace KXExtremeNum
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_FOUNDATION_KXEXTREMENUM_H
