// Tests of the gamma and log gamma kernels (KXDistGammaFunction.cpp)
// against the C library's tgamma and lgamma, which are good to a few units
// in the last place (hence the medium tier). LogGammaRatioScaled is checked
// through the beta power term (KXDistIncBeta_test.cpp).
#include "kxcommonr/common/dist/internal/KXDistGammaFunction.h"

#include <gtest/gtest.h>

#include <cmath>

#include "kxcommonr/testing/Tolerance.h"

namespace {

using namespace KXCommon::distmath;
using kxtesting::kMedium;
using kxtesting::NearRel;

TEST(KXDistGammaFunction, AgreesWithTheCLibrary) {
  for (double a : {0.05, 0.3, 0.5, 0.75, 1.0, 1.3, 2.5, 3.7, 7.5, 12.25, 19.5, 20.0}) {
    EXPECT_TRUE(NearRel(GammaSmall(a), std::tgamma(a), kMedium)) << a;
  }
  // Relative to max(1, |log Gamma|): zeros at 1 and 2.
  for (double x : {1e-300, 1e-5, 0.3, 0.9, 1.5, 2.2, 3.0, 9.5, 10.0, 55.5, 1e3, 1e7, 1e300}) {
    EXPECT_TRUE(NearRel(LogGamma(x), std::lgamma(x), kMedium, 1.0)) << x;
  }
  for (double z : {-0.5, -0.2, 0.2, 0.5}) {
    EXPECT_TRUE(NearRel(RGamma1pm1(z), 1.0 / std::tgamma(1.0 + z) - 1.0, kMedium)) << z;
  }
}

}  // namespace
