// kxcommonr/common/dist/internal/KXDistGammaFunction.h
//
// The gamma function and its logarithm for the distribution kernels: the
// Stirling series remainder, 1/Gamma(1 + z) - 1 near 0, Gamma(a) for small
// a, log Gamma(x), and the scaled ratio Gamma(a + b) / Gamma(a). Not
// installed; public headers never include it.
//
// Thread-safe: no state.
#ifndef KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTGAMMAFUNCTION_H
#define KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTGAMMAFUNCTION_H

namespace KXCommon {
namespace distmath {

// Stirling series remainder: log Gamma(x) - [(x - 1/2) log x - x + log sqrt(2 pi)],
// for x >= 10.
double StirlingCorrection(double x);
// 1 / Gamma(1 + z) - 1 for |z| <= 0.5.
double RGamma1pm1(double z);
// Gamma(a) for 0 < a <= 20 (a few units in the last place; exact table
// values at the half-integers).
double GammaSmall(double a);
// log Gamma(x) for x > 0.
double LogGamma(double x);
// log(Gamma(a + b) / (Gamma(a) a^b)) for a >= 10, b > 0 (small when b << a).
double LogGammaRatioScaled(double a, double b);

}  // namespace distmath
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTGAMMAFUNCTION_H
