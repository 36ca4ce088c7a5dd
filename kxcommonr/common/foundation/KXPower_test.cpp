#include "kxcommonr/common/foundation/KXPower.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/testing/BitCheck.h"
#include "kxcommonr/testing/Tolerance.h"

namespace {

using KXCommon::KXMV;
using KXCommon::KXPower;
using kxtesting::NearRel;
using kxtesting::SameBits;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kEps = std::ldexp(1.0, -52);
const double kExponent = std::numeric_limits<double>::infinity();  // a row of Exponent(y)

TEST(KXPowerTest, ConstantsAndPredicates) {
  EXPECT_TRUE(KXPower::MEpsilon() == kEps && KXPower::MaxInt() == 2147483647);
  EXPECT_TRUE(KXPower::ExpOverflow(std::nextafter(KXPower::MaxExp(), 710.0)));
  EXPECT_TRUE(KXPower::ExpUnderflow(std::nextafter(KXPower::MinExp(), -709.0)));
  EXPECT_FALSE(KXPower::ExpOverflow(709.0) || KXPower::ExpUnderflow(-708.39));
  const struct { double x; bool integer, even, odd; } integers[] = {
      {2147483647.0, true, false, true}, {2147483648.0, false, false, false},
      {-5e15, true, true, false},  // no lower bound, deliberately
      {0, true, true, false}, {-3, true, false, true}, {2.5, false, false, false},
      {kNaN, false, false, false}};
  for (const auto& row : integers) {
    EXPECT_EQ(KXPower::IsInteger(row.x), row.integer) << row.x;
    EXPECT_EQ(KXPower::IsEvenInteger(row.x), row.even) << row.x;
    EXPECT_EQ(KXPower::IsOddInteger(row.x), row.odd) << row.x;
  }
  // Relative to the larger magnitude; zero equals only zero, signs must agree.
  const struct { double a, b, tol; bool equal; } pairs[] = {
      {1, 1 + kEps, 1, true}, {1 + kEps, 1, 1, true}, {1, 1 + 4 * kEps, 2, false},
      {-2, -2 - 8 * kEps, 4, true}, {1e-300, -1e-300, 1e6, false}, {0, 0, 0, true},
      {0, 1e-300, 1e9, false}, {1e-300, 0, 1e9, false}};
  for (const auto& row : pairs) {
    EXPECT_EQ(KXPower::AlmostEqual(row.a, row.b, row.tol), row.equal) << row.a << " " << row.b;
  }
  const struct { double x; bool oneOverOdd, oneOverEven; } reciprocals[] = {
      {1 / 3.0, true, false}, {-1 / 5.0, true, false}, {0.25, false, true}, {0.3, false, false},
      {0.25 * (1 + 4 * kEps), false, true},  // 1/x a little below 4: within 32 eps
      {0, false, false}, {1e-10, false, false}};  // 1/1e-10 beyond MaxInt
  for (const auto& row : reciprocals) {
    EXPECT_EQ(KXPower::IsOneOverOddInteger(row.x, 32), row.oneOverOdd) << row.x;
    EXPECT_EQ(KXPower::IsOneOverEvenInteger(row.x, 32), row.oneOverEven) << row.x;
  }
}

// Status and result of Power, and of Exponent (base kExponent); NaN stands for
// the missing value, and the sign of a zero counts.
TEST(KXPowerTest, PowerAndExponentStatusTable) {
  const struct { double base, y; int status; double result; } table[] = {
      {0, 0, 7, 1.0}, {0, 2, 0, 0.0}, {0, -1, 6, kNaN}, {0, kNaN, 4, kNaN}, {2, 0, 0, 1.0},
      {-2, 0, 5, 1.0}, {-8, 1 / 3.0, 0, -2.0}, {-8, (1 + 16 * kEps) / 3, 0, -2.0},
      {-8, 0.5, 4, kNaN}, {-2, 2, 0, 4.0},
      {-2, -1, 0, -0.5}, {-2, 2.5, 4, kNaN}, {10, 400, 2, kNaN}, {10, -400, 1, 0.0},
      {-10, 401, 3, kNaN}, {-10, 400, 2, kNaN}, {-10, -401, 1, -0.0}, {-1e-10, -41, 2, kNaN},
      {kNaN, 2, 4, kNaN}, {kExponent, 709, 0, std::exp(709.0)}, {kExponent, -709, 1, 0.0},
      {kExponent, 710, 2, kNaN}};
  for (const auto& row : table) {
    double result = 123;
    const int status = row.base == kExponent ? KXPower::Exponent(row.y, result)
                                             : KXPower::Power(row.base, row.y, result);
    EXPECT_EQ(status, row.status) << row.base << "^" << row.y;
    EXPECT_TRUE(std::isnan(row.result) ? KXMV::IsMissing(result)
                                       : std::signbit(result) == std::signbit(row.result) &&
                                             NearRel(result, row.result, kxtesting::kMedium, 0.0))
        << row.base << "^" << row.y << " = " << result;
  }
}

// Power goes through exp(y log|base|), whose relative error grows with the
// size of the exponent: 64 eps covers |y log|base|| up to about 26.
TEST(KXPowerTest, PowerAndMultiplyAgreeWithDirectArithmetic) {
  for (double base : {0.3, 1.7, 12.5, -0.3, -1.7, -12.5}) {
    for (double y : {-7.0, -2.0, -1.0, 1.0, 2.0, 3.0, 10.0}) {
      double result = 0;
      ASSERT_EQ(KXPower::Power(base, y, result), KXPower::kPowerOK);
      EXPECT_TRUE(NearRel(result, std::pow(base, y), 64 * kEps)) << base << "^" << y;
      EXPECT_TRUE(NearRel(KXPower::Multiply(base, y), base * y, kxtesting::kMedium, 0.0));
    }
  }
  // Beyond the double range: the missing value, or a zero with the sign.
  EXPECT_TRUE(KXMV::IsMissing(KXPower::Multiply(1e200, -1e200)));
  EXPECT_TRUE(SameBits(KXPower::Multiply(-1e-200, 1e-200), -0.0));
  EXPECT_TRUE(SameBits(KXPower::Multiply(-1e-200, -1e-200), 0.0));
  EXPECT_TRUE(SameBits(KXPower::Multiply(0.0, -5.0), 0.0));
  EXPECT_TRUE(SameBits(KXPower::Multiply(-5.0, 0.0), 0.0));
  // log(1e150) * 2 = 690.8: the exponential amplifies its rounding ~690 times.
  EXPECT_TRUE(NearRel(KXPower::Multiply(1e150, 1e150), 1e300, 1024 * kEps));
}

}  // namespace
