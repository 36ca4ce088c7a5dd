// kxcommonr/common/dist/internal/KXDistIncGamma.h
//
// The regularised incomplete gamma function behind the chi-square
// functions, both tails computed directly, and its power term. Not
// installed; public headers never include it.
//
// Thread-safe: no mutable state (a table of constants is filled once by a
// thread-safe function static).
#ifndef KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTINCGAMMA_H
#define KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTINCGAMMA_H

namespace KXCommon {
namespace distmath {

// x^a e^-x / Gamma(a) for a > 0, x > 0.
double GammaPowerTerm(double a, double x);
// Regularised incomplete gamma: lower = P(a, x), upper = Q(a, x), each
// computed without cancellation. Returns 0, or 2 when an iteration did not
// converge (lower/upper then hold the best estimate). Requires a > 0, x >= 0.
int IncGamma(double a, double x, double& lower, double& upper);

}  // namespace distmath
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTINCGAMMA_H
