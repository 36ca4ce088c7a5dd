#include "kxcommonr/common/foundation/KXExtremeNum.h"

#include <cfloat>
#include <cmath>
#include <limits>

namespace KXCommon {
namespace KXExtremeNum {

namespace {

// The work of SumSqRoot on a and c divided by 2^e (exact), so that the
// magnitudes p and q below stay in range; the caller scales back.
bool ScaledSumSqRoot(double a, double b, double c, double d, double& result);

}  // namespace

bool SumSqRoot(double a, double b, double c, double d, double& result) {
  // Dividing a and c by the power of two of the larger one keeps p and q
  // from overflowing or underflowing; the scaling is exact, so the result is
  // the unscaled computation's wherever that stayed in range.
  const double larger = std::fmax(std::fabs(a), std::fabs(c));
  const int e = std::isfinite(larger) && larger > 0.0 ? std::ilogb(larger) : 0;
  double scaled = 0.0;
  if (!ScaledSumSqRoot(std::ldexp(a, -e), b, std::ldexp(c, -e), d, scaled)) return false;
  result = std::ldexp(scaled, e);
  // A root within a few roundings of the largest double (such as -M^2 + 2 M^2
  // for the largest M) is that double, not an infinity.
  const double largest = std::numeric_limits<double>::max();
  if (std::isinf(result) && scaled <= std::ldexp(largest, -e) * (1.0 + 8.0 * DBL_EPSILON)) {
    result = largest;
  }
  return true;
}

namespace {

bool ScaledSumSqRoot(double a, double b, double c, double d, double& result) {
  // The two terms are sign(b) * p^2 and sign(d) * q^2; a zero b or d counts
  // as non-negative.
  const double p = std::fabs(a) * std::sqrt(std::fabs(b));
  const double q = std::fabs(c) * std::sqrt(std::fabs(d));
  const bool firstNegative = b < 0;
  const bool secondNegative = d < 0;
  if (firstNegative && secondNegative) return false;
  if (firstNegative) {
    if (p > q) return false;
    if (q > p) {
      const double ratio = p / q;
      result = q * std::sqrt(1.0 - ratio * ratio);
      return true;
    }
    if (p == q) {
      result = 0.0;
      return true;
    }
    return false;
  }
  if (secondNegative) {
    if (q > p) return false;
    if (p > q) {
      const double ratio = q / p;
      result = p * std::sqrt(1.0 - ratio * ratio);
      return true;
    }
    if (p == q) {
      result = 0.0;
      return true;
    }
    return false;
  }
  if (p > q) {
    const double ratio = q / p;
    result = p * std::sqrt(1.0 + ratio * ratio);
    return true;
  }
  if (q > p) {
    const double ratio = p / q;
    result = q * std::sqrt(1.0 + ratio * ratio);
    return true;
  }
  if (p == q) {
    result = std::sqrt(2.0) * p;
    return true;
  }
  return false;  // a NaN argument
}

}  // namespace

}  // namespace KXExtremeNum
}  // namespace KXCommon
