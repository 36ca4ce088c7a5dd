// Tests of the double-double building blocks (KXDistElementary.h) against
// independent computations: the fused multiply-add, exact long double sums
// and the Mercator series of log(1 + e).
#include "kxcommonr/common/dist/internal/KXDistElementary.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "kxcommonr/testing/Tolerance.h"

namespace {

using namespace KXCommon::distmath;

TEST(KXDistElementary, SumAndProductAreErrorFree) {
  std::mt19937_64 random(20261122);
  std::uniform_real_distribution<double> mantissa(0.5, 1.0);
  std::uniform_int_distribution<int> exponent(-20, 20);
  for (int i = 0; i < 2000; ++i) {
    const double a = std::ldexp(mantissa(random), 10 * exponent(random));
    const int e = exponent(random);
    const double b = std::ldexp(i % 2 == 0 ? mantissa(random) : -mantissa(random), e);
    // Within 2^7 of b: 53 + 7 + 1 bits, so the long double sum is exact.
    const double c = std::ldexp(mantissa(random), e + exponent(random) / 3);
    double hi, lo;
    TwoProduct(a, b, hi, lo);
    EXPECT_EQ(hi, a * b);
    EXPECT_EQ(lo, std::fma(a, b, -hi)) << a << " * " << b;
    TwoSum(b, c, hi, lo);
    EXPECT_EQ(hi, b + c);
    EXPECT_EQ(static_cast<long double>(hi) + lo, static_cast<long double>(b) + c)
        << b << " + " << c;
  }
}

TEST(KXDistElementary, Log1pmxAgainstTheMercatorSeries) {
  for (double e : {-0.5, -0.3, -1e-3, -1e-9, 1e-9, 1e-3, 0.09, 0.2, 0.5}) {
    // log(1 + e) - e = sum_{k >= 2} (-1)^(k+1) e^k / k, in long double.
    long double series = 0.0L, power = e;
    for (int k = 2; k <= 120; ++k) series += (power *= -e) / k;
    EXPECT_TRUE(kxtesting::NearRel(Log1pmx(e), static_cast<double>(series), kxtesting::kTight))
        << e;
    // Scaled by a = 1024 (exactly): a (log(1 + d/a) - d/a) at d = e a.
    double hi, lo;
    ScaledLog1pmx(1024.0, e * 1024.0, 0.0, hi, lo);
    EXPECT_TRUE(kxtesting::NearRel(hi + lo, static_cast<double>(1024 * series), kxtesting::kTight))
        << e;
  }
}

}  // namespace
