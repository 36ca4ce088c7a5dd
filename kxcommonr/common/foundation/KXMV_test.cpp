#include "kxcommonr/common/foundation/KXMV.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>

namespace {

using KXCommon::KXMV;

// The most negative finite double (one bit pattern), and nothing else.
TEST(KXMVTest, MissingIsTheMostNegativeFiniteDoubleAndNothingElse) {
  EXPECT_EQ(KXMV::Missing(), -DBL_MAX);
  EXPECT_EQ(KXMV::gMissingValue, -DBL_MAX);
  const struct { double x; bool missing; } table[] = {
      {-DBL_MAX, true}, {DBL_MAX, false}, {std::numeric_limits<double>::quiet_NaN(), false},
      {-HUGE_VAL, false}, {std::nextafter(-DBL_MAX, 0.0), false}, {0.0, false}};
  for (const auto& row : table) EXPECT_EQ(KXMV::IsMissing(row.x), row.missing) << row.x;
}

}  // namespace
