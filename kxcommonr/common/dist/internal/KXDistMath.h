// kxcommonr/common/dist/internal/KXDistMath.h
//
// Internal special-function kernels behind KXDistFun: log gamma, the
// regularised incomplete gamma and beta functions (both tails computed
// directly), the inverse incomplete beta, and the error function tail in
// extended precision. Not installed; public headers never include it.
//
// Arguments that are the complement of one another (x and y = 1 - x, p and
// q = 1 - p) are passed separately so that the caller can supply the small
// one with full relative accuracy; the *Lo arguments optionally carry the
// low-order part of a double-double value.
//
// Thread-safe: no state.
#ifndef KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTMATH_H
#define KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTMATH_H

namespace KXCommon {
namespace distmath {

// Error-free transformations (no fused multiply-add is assumed).
// a * b == hi + lo exactly.
void TwoProduct(double a, double b, double& hi, double& lo);
// a + b == hi + lo exactly.
void TwoSum(double a, double b, double& hi, double& lo);

// log(1 + e) - e for e > -1, accurate also for small |e|.
double Log1pmx(double e);
// Stirling series remainder: log Gamma(x) - [(x - 1/2) log x - x + log sqrt(2 pi)],
// for x >= 10.
double StirlingCorrection(double x);
// 1 / Gamma(1 + z) - 1 for |z| <= 0.5.
double RGamma1pm1(double z);
// Gamma(a) for 0 < a <= 20 (a few units in the last place).
double GammaSmall(double a);
// log Gamma(x) for x > 0.
double LogGamma(double x);
// log(Gamma(a + b) / (Gamma(a) a^b)) for a >= 10, b > 0 (small when b << a).
double LogGammaRatioScaled(double a, double b);

// x^a e^-x / Gamma(a) for a > 0, x > 0.
double GammaPowerTerm(double a, double x);
// Regularised incomplete gamma: lower = P(a, x), upper = Q(a, x), each
// computed without cancellation. Returns 0, or 2 when an iteration did not
// converge (lower/upper then hold the best estimate). Requires a > 0, x >= 0.
int IncGamma(double a, double x, double& lower, double& upper);

// x^a y^b / B(a, b) with y = 1 - x (x, y given separately; xLo, yLo are
// optional low-order parts).
double BetaPowerTerms(double a, double b, double x, double y, double xLo,
                      double yLo);
// Regularised incomplete beta: lower = I_x(a, b), upper = 1 - I_x(a, b),
// the smaller one computed directly. Requires a, b > 0, x, y in [0, 1] with
// x + y == 1 (to rounding). Returns 0; when no expansion converged, lower
// and upper hold a normal approximation and the return value is 2.
// When powerTerms is given it receives x^a y^b / B(a, b).
int IncBeta(double a, double b, double x, double y, double xLo, double yLo,
            double& lower, double& upper, double* powerTerms = nullptr);
// Solves I_x(a, b) = p for x, given p and q = 1 - p separately. Returns 0 on
// success with x and y = 1 - x (the smaller of the two accurate), or 2 when
// the iteration failed. startX, startY (= 1 - startX) optionally give a
// starting value; 0 lets the function choose one.
int InvBeta(double a, double b, double p, double q, double& x, double& y,
            double startX = 0.0, double startY = 0.0);

// Standard normal lower tail Phi(-z) for z > 0, with z * z carried in extra
// precision; 0 where Ooura's underflow guard (exponent below -708) applies.
double NormalLowerTail(double z);
// erfc(w) for w > 0 with exp(-w*w) formed from w*w split exactly; wLo is the
// low-order part of w. 0 where the exponent is below -708.
double ErfcPositive(double w, double wLo);

}  // namespace distmath
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTMATH_H
