#include "kxcommonr/common/foundation/KXExtremeNum.h"

#include <cmath>

namespace KXCommon {
namespace KXExtremeNum {

bool SumSqRoot(double a, double b, double c, double d, double& result) {
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

}  // namespace KXExtremeNum
}  // namespace KXCommon
