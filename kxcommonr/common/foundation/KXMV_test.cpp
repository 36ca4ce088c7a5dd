#include "kxcommonr/common/foundation/KXMV.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

using KXCommon::KXMV;

TEST(KXMVTest, MissingIsMostNegativeFiniteDouble) {
  EXPECT_EQ(KXMV::Missing(), -DBL_MAX);
  EXPECT_EQ(KXMV::gMissingValue, -DBL_MAX);
  double m = KXMV::Missing();
  std::uint64_t bits;
  std::memcpy(&bits, &m, sizeof bits);
  EXPECT_EQ(bits, 0xFFEFFFFFFFFFFFFFull);
}

TEST(KXMVTest, IsMissingIsExactEquality) {
  EXPECT_TRUE(KXMV::IsMissing(-DBL_MAX));
  EXPECT_FALSE(KXMV::IsMissing(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_FALSE(KXMV::IsMissing(-std::numeric_limits<double>::infinity()));
  EXPECT_FALSE(KXMV::IsMissing(DBL_MAX));
  EXPECT_FALSE(KXMV::IsMissing(std::nextafter(-DBL_MAX, 0.0)));
}

}  // namespace
