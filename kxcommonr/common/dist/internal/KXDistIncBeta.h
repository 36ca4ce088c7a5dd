// kxcommonr/common/dist/internal/KXDistIncBeta.h
//
// The regularised incomplete beta function behind the t and F functions,
// both tails computed directly, its power term, and its inverse. Not
// installed; public headers never include it.
//
// Arguments that are the complement of one another (x and y = 1 - x, p and
// q = 1 - p) are passed separately so that the caller can supply the small
// one with full relative accuracy; the *Lo arguments optionally carry the
// low-order part of a double-double value.
//
// Thread-safe: no state.
#ifndef KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTINCBETA_H
#define KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTINCBETA_H

namespace KXCommon {
namespace distmath {

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

}  // namespace distmath
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTINCBETA_H
