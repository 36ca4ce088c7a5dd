// Tests of the complementary error function and the normal lower tail
// (KXDistErfc.cpp) against the C library's long double erfc; Ooura's
// approximation is good to a few units in the last place (medium tier).
#include "kxcommonr/common/dist/internal/KXDistErfc.h"

#include <gtest/gtest.h>

#include <cmath>

#include "kxcommonr/testing/Tolerance.h"

namespace {

using namespace KXCommon::distmath;
using kxtesting::kMedium;
using kxtesting::NearRel;

TEST(KXDistErfc, AgreesWithLongDoubleErfc) {
  for (double w : {1e-3, 0.1, 0.5, 1.0, 2.2, 4.0, 6.9, 10.0, 20.0, 26.0}) {
    const double expected = static_cast<double>(std::erfc(static_cast<long double>(w)));
    EXPECT_TRUE(NearRel(ErfcPositive(w, 0.0), expected, kMedium)) << w;
  }
  for (double z : {0.01, 0.5, 1.0, 3.0, 8.5, 20.0, 37.0}) {
    const double expected = static_cast<double>(0.5L * std::erfc(z / std::sqrt(2.0L)));
    EXPECT_TRUE(NearRel(NormalLowerTail(z), expected, kMedium)) << z;
  }
  // Below exp(-708) the result is flushed to zero.
  EXPECT_EQ(ErfcPositive(27.0, 0.0), 0.0);
  EXPECT_EQ(NormalLowerTail(39.0), 0.0);
}

}  // namespace
