// kxcommonr/testing/BitCheck.h
//
// Test helpers for kernels that must match a plain loop bit for bit: a
// bitwise comparison (so NaNs and signed zeros count) and random vectors
// spread over a wide exponent range with mixed signs, so that any change in
// the order of additions shows in the last bits.
#ifndef KXCOMMONR_TESTING_BITCHECK_H
#define KXCOMMONR_TESTING_BITCHECK_H

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace kxtesting {

inline ::testing::AssertionResult SameBits(double a, double b) {
  std::uint64_t ua, ub;
  std::memcpy(&ua, &a, sizeof a);
  std::memcpy(&ub, &b, sizeof b);
  if (ua == ub) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << a << " and " << b << " differ in their bits";
}

inline std::vector<double> WideRandomVector(std::size_t n, std::mt19937_64& rng) {
  std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
  std::uniform_int_distribution<int> exponent(-20, 20);
  std::vector<double> v(n);
  for (double& x : v) x = std::ldexp(mantissa(rng), exponent(rng));
  return v;
}

}  // namespace kxtesting

#endif  // KXCOMMONR_TESTING_BITCHECK_H
