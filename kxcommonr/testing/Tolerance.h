// kxcommonr/testing/Tolerance.h
//
// Named tolerance tiers for the tests, in units of the machine epsilon, so
// that a tolerance says how much rounding a check allows instead of being a
// number picked case by case:
//   kTight  =   2 eps  a result rounded once or twice (a table value, a
//                      correctly rounded library call);
//   kMedium =  16 eps  a short computation: a few dozen operations, a
//                      well-conditioned solve of small order;
//   kLoose  = 256 eps  a long computation or a moderately conditioned one
//                      (factorisations of order 100, series and continued
//                      fractions near their switch points).
// Checks that are looser than these (an ill-conditioned matrix, a certified
// value with 15 digits) state their own bound and its reason beside it.
//
// Relative checks are made against max(|expected|, scale), so that an
// expected value of zero is compared absolutely on the given scale.
#ifndef KXCOMMONR_TESTING_TOLERANCE_H
#define KXCOMMONR_TESTING_TOLERANCE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace kxtesting {

constexpr double kEps = std::numeric_limits<double>::epsilon();
constexpr double kTight = 2 * kEps;
constexpr double kMedium = 16 * kEps;
constexpr double kLoose = 256 * kEps;

// |actual - expected| <= tol * max(|expected|, scale); NaN never passes.
inline ::testing::AssertionResult NearRel(double actual, double expected, double tol,
                                          double scale = 1.0) {
  const double bound = tol * std::max(std::fabs(expected), scale);
  const double error = std::fabs(actual - expected);
  if (error <= bound) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure()
         << actual << " differs from " << expected << " by " << error << " (bound " << bound
         << ")";
}

}  // namespace kxtesting

#endif  // KXCOMMONR_TESTING_TOLERANCE_H
