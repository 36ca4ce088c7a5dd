// kxcommonr/common/foundation/KXMV.h
//
// The system-missing value: the one marker for an absent number used by every
// class of the library. It is the most negative finite double,
// -1.7976931348623157e308 (bits 0xFFEFFFFFFFFFFFFF), an ordinary number and
// not a NaN: arithmetic on it yields ordinary (wrong) numbers, so test with
// IsMissing before computing. A NaN is never missing.
//
// Thread-safe: no state.
#ifndef KXCOMMONR_COMMON_FOUNDATION_KXMV_H
#define KXCOMMONR_COMMON_FOUNDATION_KXMV_H

#include "kxcommonr/config.h"

namespace KXCommon {

class KXCOMMONR_API KXMV {
 public:
  // The missing value, -DBL_MAX.
  static const double gMissingValue;

  KXMV() = default;
  KXMV(const KXMV&) = default;
  // KXMV holds no data: assignment copies nothing.
  KXMV& operator=(const KXMV&) = default;

  // Returns the missing value.
  static double Missing() { return -1.7976931348623157e308; }

  // True exactly when x compares equal to the missing value (an ordered
  // equality test: NaN and -infinity yield false).
  static bool IsMissing(double x) { return x == Missing(); }
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_FOUNDATION_KXMV_H
