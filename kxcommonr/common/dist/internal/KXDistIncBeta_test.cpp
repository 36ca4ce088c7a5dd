// Tests of the incomplete beta kernel and its inverse (KXDistIncBeta.cpp):
// the ends of the range, the power term against long double, and the
// recurrence in the first shape parameter across the power series and the
// continued fraction.
#include "kxcommonr/common/dist/internal/KXDistIncBeta.h"

#include <gtest/gtest.h>

#include <cmath>

#include "kxcommonr/testing/Tolerance.h"

namespace {

using namespace KXCommon::distmath;
using kxtesting::NearRel;

TEST(KXDistIncBeta, EndsOfTheRange) {
  double lower, upper, power = -1.0, x, y;
  for (double at : {0.0, 1.0}) {
    EXPECT_EQ(IncBeta(2.0, 3.0, at, 1.0 - at, 0.0, 0.0, lower, upper, &power), 0);
    EXPECT_EQ(lower, at);
    EXPECT_EQ(upper, 1.0 - at);
    EXPECT_EQ(power, 0.0);
    EXPECT_EQ(InvBeta(2.0, 3.0, at, 1.0 - at, x, y), 0);
    EXPECT_EQ(x, at);
    EXPECT_EQ(y, 1.0 - at);
  }
}

const double kShapes[] = {0.5, 1.0, 2.5, 9.5, 30.0, 1e3};
// x and y = 1 - x both exact, so that the reference sees the same pair.
const double kPoints[] = {0.0078125, 0.3125, 0.5, 0.8, 0.99};

// The power term x^a y^b / B(a, b) against long double (whose exponent
// carries about 1e-19 of its size, below 1e4 here), and the recurrence
// I_x(a, b) = I_x(a + 1, b) + x^a y^b / (a B(a, b)), the same term added to
// the upper tail of (a, b) giving that of (a + 1, b): sums of positive
// terms, so the identity holds to the accuracy of the parts, computed by
// different expansions (hence the loose tier).
TEST(KXDistIncBeta, PowerTermAndRecurrenceInTheFirstShape) {
  for (double a : kShapes) {
    for (double b : kShapes) {
      for (double x : kPoints) {
        const double y = 1.0 - x;
        const long double la = a, lb = b, lx = x, ly = y;
        const double expected = static_cast<double>(std::exp(
            la * std::log(lx) + lb * std::log(ly) + std::lgamma(la + lb) - std::lgamma(la) -
            std::lgamma(lb)));
        double lower0, upper0, lower1, upper1, power;
        ASSERT_EQ(IncBeta(a, b, x, y, 0.0, 0.0, lower0, upper0, &power), 0);
        ASSERT_EQ(IncBeta(a + 1.0, b, x, y, 0.0, 0.0, lower1, upper1), 0);
        EXPECT_TRUE(NearRel(power, expected, kxtesting::kMedium)) << a << ", " << b << ", " << x;
        EXPECT_TRUE(NearRel(lower0, lower1 + power / a, kxtesting::kLoose))
            << a << ", " << b << ", " << x;
        EXPECT_TRUE(NearRel(upper1, upper0 + power / a, kxtesting::kLoose))
            << a << ", " << b << ", " << x;
        EXPECT_TRUE(NearRel(lower0 + upper0, 1.0, kxtesting::kTight));
      }
    }
  }
}

}  // namespace
