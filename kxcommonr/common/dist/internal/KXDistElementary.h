// kxcommonr/common/dist/internal/KXDistElementary.h
//
// Elementary building blocks of the distribution kernels, carried in extra
// precision: the error-free transformations of a sum and a product, log(1 + e)
// - e, its scaled double-double form around the mode of a power term, and
// powers of ratios formed in double-double. Not installed; public headers
// never include it.
//
// Thread-safe: no state.
#ifndef KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTELEMENTARY_H
#define KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTELEMENTARY_H

namespace KXCommon {
namespace distmath {

// Error-free transformations (no fused multiply-add is assumed).
// a * b == hi + lo exactly.
void TwoProduct(double a, double b, double& hi, double& lo);
// a + b == hi + lo exactly.
void TwoSum(double a, double b, double& hi, double& lo);

// log(1 + e) - e for e > -1, accurate also for small |e|.
double Log1pmx(double e);

// a * (log(1 + d/a) - d/a) for d = dHi + dLo with |d/a| <= 1/2, as hi + lo
// where hi carries the leading -d^2 / (2a + d) rounded once and lo the rest
// (at most a few percent of hi; callers needing one rounded value renormalise
// with TwoSum). An exponent of several hundred keeps an absolute error of a
// few eps instead of |exponent| * eps.
void ScaledLog1pmx(double a, double dHi, double dLo, double& hi, double& lo);

// (x * num / den)^power, x carried as x + xLo, with x * num / den formed in
// double-double so that the result keeps the accuracy of pow instead of
// losing power * eps to the rounding of the base. ok is false (and the
// result 0) when |power * log| exceeds 700, where the caller must use its
// logarithmic form.
double PowRatio(double x, double xLo, double num, double den, double power,
                bool& ok);

}  // namespace distmath
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTELEMENTARY_H
