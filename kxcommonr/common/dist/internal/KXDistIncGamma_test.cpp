// Tests of the incomplete gamma kernel (KXDistIncGamma.cpp): the ends of
// the range, the power term against long double, and the recurrence in the
// shape parameter across the series, continued fraction and uniform
// expansions.
#include "kxcommonr/common/dist/internal/KXDistIncGamma.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "kxcommonr/testing/Tolerance.h"

namespace {

using namespace KXCommon::distmath;
using kxtesting::NearRel;

TEST(KXDistIncGamma, EndsOfTheRangeAndPowerTerm) {
  double lower, upper;
  for (double x : {0.0, std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(IncGamma(3.0, x, lower, upper), 0);
    EXPECT_EQ(lower, x == 0.0 ? 0.0 : 1.0);
    EXPECT_EQ(upper, x == 0.0 ? 1.0 : 0.0);
  }
  EXPECT_EQ(GammaPowerTerm(5.0, 2500.0), 0.0);  // below the double range
  // x^a e^-x / Gamma(a) against long double, whose exponent carries about
  // 1e-19 of its size (below 2000 here).
  const double points[][2] = {{0.3, 1e-4}, {0.5, 2.0},    {3.0, 0.5},    {9.5, 30.0},
                              {9.5, 750.0}, {10.0, 10.0}, {25.0, 3.0},   {47.5, 60.0},
                              {150.0, 149.0}, {150.0, 900.0}};
  for (const auto& p : points) {
    const long double a = p[0], x = p[1];
    const double expected = static_cast<double>(std::exp(a * std::log(x) - x - std::lgamma(a)));
    EXPECT_TRUE(NearRel(GammaPowerTerm(p[0], p[1]), expected, kxtesting::kMedium))
        << p[0] << ", " << p[1];
  }
}

// P(a, x) = P(a + 1, x) + x^a e^-x / Gamma(a + 1), and Q(a + 1, x) = Q(a, x)
// plus the same term: sums of positive terms, so the identity holds to the
// accuracy of the parts, computed by different expansions near their switch
// points (hence the loose tier).
TEST(KXDistIncGamma, RecurrenceInTheShape) {
  for (double a : {0.3, 0.9, 2.5, 9.5, 47.0, 99.5, 100.0, 150.0, 1e4, 2.5e4}) {
    for (double ratio : {1e-3, 0.3, 0.9, 0.99, 1.0, 1.02, 1.5, 3.0}) {
      const double x = ratio * a;
      double p0, q0, p1, q1;
      ASSERT_EQ(IncGamma(a, x, p0, q0), 0) << a << ", " << x;
      ASSERT_EQ(IncGamma(a + 1.0, x, p1, q1), 0) << a + 1.0 << ", " << x;
      const double term = GammaPowerTerm(a, x) / a;
      EXPECT_TRUE(NearRel(p0, p1 + term, kxtesting::kLoose)) << a << ", " << x;
      EXPECT_TRUE(NearRel(q1, q0 + term, kxtesting::kLoose)) << a << ", " << x;
      EXPECT_TRUE(NearRel(p0 + q0, 1.0, kxtesting::kTight)) << a << ", " << x;
    }
  }
}

}  // namespace
