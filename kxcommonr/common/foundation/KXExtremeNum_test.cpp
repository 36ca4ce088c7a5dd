#include "kxcommonr/common/foundation/KXExtremeNum.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "kxcommonr/testing/Tolerance.h"

namespace {

using KXCommon::KXExtremeNum::SumSqRoot;

const double kNaN = std::numeric_limits<double>::quiet_NaN();

// sqrt(a*a*b + c*c*d) against a long double reference where the sum is
// representable; scaling a and c by a power of two scales the result exactly,
// down to the ends of the double range. A negative sum or a NaN is refused
// and leaves the result as it was.
TEST(KXExtremeNumTest, SumSqRootAtAnyScaleAndItsRefusals) {
  const struct { double a, b, c, d; bool ok; } table[] = {
      {3, 1, 4, 1, true},     {4, 1, 3, 1, true},      {2, 1, 2, 1, true},      {0, 0, 0, 0, true},
      {3, -1, 4, 1, true},    {2, -1, 2, 1, true},     {4, 1, 3, -1, true},     {2, 1, 2, -1, true},
      {1.5, 2, 0, -7, true},  {-5, 2, 3, -1, true},    {7, 1e-3, -1, 1e3, true},
      {4, -1, 3, 1, false},   {3, 1, 4, -1, false},    {1, -1, 1, -1, false},
      {1, 1, kNaN, 1, false}, {1, -1, kNaN, 1, false}, {kNaN, 1, 1, -1, false}};
  for (const auto& row : table) {
    SCOPED_TRACE(testing::Message() << row.a << " " << row.b << " " << row.c << " " << row.d);
    double result = -1;
    ASSERT_EQ(SumSqRoot(row.a, row.b, row.c, row.d, result), row.ok);
    if (!row.ok) {
      EXPECT_EQ(result, -1);
      continue;
    }
    const long double sum = static_cast<long double>(row.a) * row.a * row.b +
                            static_cast<long double>(row.c) * row.c * row.d;
    EXPECT_TRUE(kxtesting::NearRel(result, std::sqrt(sum), kxtesting::kMedium, 0.0));
    for (int exponent : {-1000, -600, 600, 1000}) {
      double scaled = -1;
      ASSERT_TRUE(SumSqRoot(std::ldexp(row.a, exponent), row.b, std::ldexp(row.c, exponent),
                            row.d, scaled));
      EXPECT_EQ(scaled, std::ldexp(result, exponent)) << exponent;
    }
  }
  // Terms beyond the double range whose root is in it: -M^2 + 2 M^2 = M^2.
  const double largest = std::numeric_limits<double>::max();
  double result = 0;
  ASSERT_TRUE(SumSqRoot(-largest, -1, -largest, 2, result));
  EXPECT_EQ(result, largest);
  ASSERT_TRUE(SumSqRoot(1e-300, 1e-300, 0, 0, result));  // 1e-450: below the range
  EXPECT_EQ(result, 0);
}

}  // namespace
