#include "kxcommonr/common/foundation/KXPower.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "kxcommonr/common/foundation/KXExtremeNum.h"
#include "kxcommonr/common/foundation/KXMV.h"

namespace {

using KXCommon::KXMV;
using KXCommon::KXPower;

const double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(KXPowerTest, Constants) {
  EXPECT_EQ(KXPower::MEpsilon(), std::ldexp(1.0, -52));
  EXPECT_EQ(KXPower::MaxExp(), 709.0);
  EXPECT_EQ(KXPower::MinExp(), -708.39);
  EXPECT_EQ(KXPower::MaxInt(), 2147483647);
  EXPECT_TRUE(KXPower::ExpOverflow(709.0000001));
  EXPECT_FALSE(KXPower::ExpOverflow(709.0));
  EXPECT_TRUE(KXPower::ExpUnderflow(-708.4));
  EXPECT_FALSE(KXPower::ExpUnderflow(-708.39));
}

TEST(KXPowerTest, IntegerClassification) {
  EXPECT_TRUE(KXPower::IsInteger(2147483647.0));
  EXPECT_FALSE(KXPower::IsInteger(2147483648.0));
  EXPECT_TRUE(KXPower::IsInteger(-5e15));  // no lower bound, deliberately
  EXPECT_FALSE(KXPower::IsInteger(0.5));
  EXPECT_FALSE(KXPower::IsInteger(kNaN));
  EXPECT_TRUE(KXPower::IsEvenInteger(-4));
  EXPECT_TRUE(KXPower::IsEvenInteger(0));
  EXPECT_FALSE(KXPower::IsEvenInteger(-3));
  EXPECT_TRUE(KXPower::IsOddInteger(-3));
  EXPECT_TRUE(KXPower::IsOddInteger(1));
  EXPECT_FALSE(KXPower::IsOddInteger(2));
  EXPECT_FALSE(KXPower::IsOddInteger(2.5));
  EXPECT_FALSE(KXPower::IsEvenInteger(2.5));
}

TEST(KXPowerTest, AlmostEqualCountsEpsilonsRelativeToTheLarger) {
  const double eps = std::ldexp(1.0, -52);
  EXPECT_TRUE(KXPower::AlmostEqual(1, 1 + eps, 1));
  EXPECT_TRUE(KXPower::AlmostEqual(1 + eps, 1, 1));
  EXPECT_FALSE(KXPower::AlmostEqual(1, 1 + 4 * eps, 2));
  EXPECT_TRUE(KXPower::AlmostEqual(1, 1 + 4 * eps, 4));
  EXPECT_FALSE(KXPower::AlmostEqual(1e-300, -1e-300, 1e6));
  EXPECT_TRUE(KXPower::AlmostEqual(0, 0, 0));
  EXPECT_FALSE(KXPower::AlmostEqual(0, 1e-300, 1e9));
  EXPECT_FALSE(KXPower::AlmostEqual(1e-300, 0, 1e9));
  EXPECT_TRUE(KXPower::AlmostEqual(-2, -2 * (1 + eps), 1));
}

TEST(KXPowerTest, OneOverIntegerRecognition) {
  EXPECT_TRUE(KXPower::IsOneOverOddInteger(1 / 3.0, 32));
  EXPECT_TRUE(KXPower::IsOneOverOddInteger(-1 / 5.0, 32));
  EXPECT_TRUE(KXPower::IsOneOverOddInteger(1.0, 32));
  EXPECT_FALSE(KXPower::IsOneOverOddInteger(0.5, 32));
  EXPECT_FALSE(KXPower::IsOneOverOddInteger(0.3, 32));
  EXPECT_FALSE(KXPower::IsOneOverOddInteger(0, 32));
  EXPECT_FALSE(KXPower::IsOneOverOddInteger(1e-10, 32));  // 1/x > MaxInt
  EXPECT_TRUE(KXPower::IsOneOverEvenInteger(0.5, 32));
  EXPECT_TRUE(KXPower::IsOneOverEvenInteger(0.25, 32));
  EXPECT_FALSE(KXPower::IsOneOverEvenInteger(1 / 3.0, 32));
  EXPECT_FALSE(KXPower::IsOneOverEvenInteger(0, 32));
}

TEST(KXPowerTest, ExponentGuardsBothEnds) {
  double result = 7;
  EXPECT_EQ(KXPower::Exponent(1.0, result), KXPower::kPowerOK);
  EXPECT_EQ(result, std::exp(1.0));
  EXPECT_EQ(KXPower::Exponent(-709, result), 1);
  EXPECT_EQ(result, 0.0);
  EXPECT_EQ(KXPower::Exponent(710, result), 2);
  EXPECT_TRUE(KXMV::IsMissing(result));
  EXPECT_EQ(KXPower::Exponent(709, result), 0);
  EXPECT_TRUE(std::isfinite(result));
}

struct PowerCase {
  double base;
  double y;
  int status;
  double result;  // NaN: the missing value expected
};

TEST(KXPowerTest, PowerStatusTable) {
  const PowerCase cases[] = {
      {0, 0, 7, 1.0},        {0, 2, 0, 0.0},       {0, -1, 6, kNaN},
      {2, 0, 0, 1.0},        {-2, 0, 5, 1.0},      {-8, 1 / 3.0, 0, -2.0},
      {-8, 0.5, 4, kNaN},    {-2, 2, 0, 4.0},      {-2, 3, 0, -8.0},
      {-2, -1, 0, -0.5},     {-2, 2.5, 4, kNaN},   {10, 400, 2, kNaN},
      {10, -400, 1, 0.0},    {-10, 401, 3, kNaN},  {-10, 400, 2, kNaN},
      {-10, -401, 1, -0.0},  {kNaN, 2, 4, kNaN},
  };
  for (const PowerCase& c : cases) {
    double result = 123;
    const int status = KXPower::Power(c.base, c.y, result);
    EXPECT_EQ(status, c.status) << c.base << "^" << c.y;
    if (std::isnan(c.result)) {
      EXPECT_TRUE(KXMV::IsMissing(result)) << c.base << "^" << c.y;
    } else {
      EXPECT_NEAR(result, c.result, 1e-14 * std::fabs(c.result))
          << c.base << "^" << c.y;
      EXPECT_EQ(std::signbit(result), std::signbit(c.result))
          << c.base << "^" << c.y;
    }
  }
}

TEST(KXPowerTest, PowerMatchesPowWhereDefined) {
  for (double base : {0.3, 1.7, 12.5, -0.3, -1.7, -12.5}) {
    for (double y : {-7.0, -2.0, -1.0, 1.0, 2.0, 3.0, 10.0}) {
      double result = 0;
      ASSERT_EQ(KXPower::Power(base, y, result), KXPower::kPowerOK);
      EXPECT_NEAR(result, std::pow(base, y), 1e-13 * std::fabs(std::pow(base, y)))
          << base << "^" << y;
    }
  }
}

TEST(KXPowerTest, MultiplyNeverOverflows) {
  EXPECT_TRUE(KXMV::IsMissing(KXPower::Multiply(1e200, -1e200)));
  EXPECT_TRUE(KXMV::IsMissing(KXPower::Multiply(1e200, 1e200)));
  const double tiny = KXPower::Multiply(-1e-200, 1e-200);
  EXPECT_EQ(tiny, 0.0);
  EXPECT_TRUE(std::signbit(tiny));
  EXPECT_FALSE(std::signbit(KXPower::Multiply(-1e-200, -1e-200)));
  EXPECT_EQ(KXPower::Multiply(0.0, -5.0), 0.0);
  EXPECT_NEAR(KXPower::Multiply(-3, 7), -21, 1e-13);
  EXPECT_NEAR(KXPower::Multiply(1e150, 1e150), 1e300, 1e287);
}

TEST(KXExtremeNumTest, SumSqRootCases) {
  using KXCommon::KXExtremeNum::SumSqRoot;
  double r = -1;
  EXPECT_TRUE(SumSqRoot(3, 1, 4, 1, r));
  EXPECT_EQ(r, 5.0);
  EXPECT_TRUE(SumSqRoot(3, -1, 4, 1, r));
  EXPECT_DOUBLE_EQ(r, std::sqrt(7.0));
  EXPECT_TRUE(SumSqRoot(4, 1, 3, -1, r));
  EXPECT_DOUBLE_EQ(r, std::sqrt(7.0));
  r = -1;
  EXPECT_FALSE(SumSqRoot(4, -1, 3, 1, r));
  EXPECT_FALSE(SumSqRoot(3, 1, 4, -1, r));
  EXPECT_FALSE(SumSqRoot(1, -1, 1, -1, r));
  EXPECT_FALSE(SumSqRoot(kNaN, 1, 1, 1, r));
  EXPECT_EQ(r, -1);  // untouched by every refusal
  EXPECT_TRUE(SumSqRoot(2, -1, 2, 1, r));
  EXPECT_EQ(r, 0.0);
  EXPECT_TRUE(SumSqRoot(2, 1, 2, 1, r));
  EXPECT_DOUBLE_EQ(r, std::sqrt(8.0));
  EXPECT_TRUE(SumSqRoot(0, 0, 0, 0, r));
  EXPECT_EQ(r, 0.0);
}

TEST(KXExtremeNumTest, SumSqRootStaysFiniteAtTheEndsOfTheRange) {
  using KXCommon::KXExtremeNum::SumSqRoot;
  double r = 0;
  ASSERT_TRUE(SumSqRoot(3e200, 1, 4e200, 1, r));
  EXPECT_NEAR(r, 5e200, 1e186);
  ASSERT_TRUE(SumSqRoot(3e-200, 4, 4e-200, 4, r));
  EXPECT_NEAR(r, 1e-199, 1e-213);
  ASSERT_TRUE(SumSqRoot(1e300, -1e10, 2e300, 1e10, r));
  EXPECT_NEAR(r, std::sqrt(3.0) * 1e305, 1e292);
  EXPECT_TRUE(std::isfinite(r));
}

}  // namespace
