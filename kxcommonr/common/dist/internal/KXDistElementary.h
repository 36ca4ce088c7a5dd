// kxcommonr/common/dist/internal/KXDistElementary.h
//
// Elementary building blocks of the distribution kernels, carried in extra
// precision: the error-free transformations of a sum and a product, log(1 + e)
// - e, its scaled double-double form around the mode of a power term, and
// powers of ratios formed in double-double. Defined here, inline, so that
// the kernels keep them in their loops. Not installed; public headers never
// include it.
//
// Thread-safe: no state.
#ifndef KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTELEMENTARY_H
#define KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTELEMENTARY_H

#include <cmath>

namespace KXCommon {
namespace distmath {

// a + b == hi + lo exactly.
inline void TwoSum(double a, double b, double& hi, double& lo) {
  hi = a + b;
  const double bb = hi - a;
  lo = (a - (hi - bb)) + (b - bb);
}

// a * b == hi + lo exactly: Dekker's product with Veltkamp splitting (no
// fused multiply-add is assumed).
inline void TwoProduct(double a, double b, double& hi, double& lo) {
  constexpr double kSplit = 134217729.0;  // 2^27 + 1
  hi = a * b;
  const double ca = kSplit * a;
  const double ah = ca - (ca - a);
  const double al = a - ah;
  const double cb = kSplit * b;
  const double bh = cb - (cb - b);
  const double bl = b - bh;
  lo = ((ah * bh - hi) + ah * bl + al * bh) + al * bl;
}

// log(1 + e) - e for e > -1, accurate also for small |e|.
inline double Log1pmx(double e) {
  if (e < -0.5 || e > 1.0) return std::log1p(e) - e;
  // log(1+e) = 2 atanh(s), s = e/(2+e); log(1+e) - e = -e^2/(2+e) + 2 s^3/3 + ...
  const double s = e / (2.0 + e);
  const double s2 = s * s;
  // Terms s2^k / (2k+3) until they fall below 1e-17 of the leading 1/3.
  const int last = s2 < 1e-4 ? 9 : s2 < 1e-2 ? 17 : 37;
  double series = 0.0;
  for (int k = last; k >= 3; k -= 2) series = series * s2 + 1.0 / k;
  return -e * e / (2.0 + e) + 2.0 * s * s2 * series;
}

// (x * num / den)^power, x carried as x + xLo, with x * num / den formed in
// double-double so that the result keeps the accuracy of pow instead of
// losing power * eps to the rounding of the base. ok is false (and the
// result 0) when |power * log| exceeds 700, where the caller must use its
// logarithmic form.
inline double PowRatio(double x, double xLo, double num, double den,
                       double power, bool& ok) {
  double p, pl;
  TwoProduct(x, num, p, pl);
  pl += xLo * num;
  const double q = p / den;
  double qd, qdl;
  TwoProduct(q, den, qd, qdl);
  const double qLo = (((p - qd) - qdl) + pl) / den;
  // |power * log q| < 700 exactly when q^power lies within (e^-700, e^700):
  // checked on the power itself, which saves a logarithm.
  constexpr double kExpMinus700 = 9.859676543759770e-305;
  constexpr double kExpPlus700 = 1.0142320547350045e304;
  const double raised = std::pow(q, power);
  ok = raised > kExpMinus700 && raised < kExpPlus700;
  if (!ok) return 0.0;
  return raised * (1.0 + power * qLo / q);
}

// a * (log(1 + d/a) - d/a) for d = dHi + dLo with |d/a| <= 1/2, as hi + lo
// where hi carries the leading -d^2 / (2a + d) rounded once and lo the rest
// (at most a few percent of hi; callers needing one rounded value renormalise
// with TwoSum). An exponent of several hundred keeps an absolute error of a
// few eps instead of |exponent| * eps.
inline void ScaledLog1pmx(double a, double dHi, double dLo, double& hi,
                          double& lo) {
  // With s = d / (2a + d),
  //   a (log(1 + d/a) - d/a) = -d^2 / (2a + d) + 2a s^3 (1/3 + s^2/5 + ...),
  // the leading term formed in double-double.
  double sq, sqLo;
  TwoProduct(dHi, dHi, sq, sqLo);
  sqLo += 2.0 * dHi * dLo;
  double den, denLo;
  TwoSum(2.0 * a, dHi, den, denLo);
  denLo += dLo;
  const double q = sq / den;
  double qd, qdLo;
  TwoProduct(q, den, qd, qdLo);
  const double qLo = (((sq - qd) - qdLo) + sqLo - q * denLo) / den;
  const double s = dHi / den;
  const double s2 = s * s;
  const int last = s2 < 1e-4 ? 9 : s2 < 1e-2 ? 17 : 37;
  double series = 0.0;
  for (int k = last; k >= 3; k -= 2) series = series * s2 + 1.0 / k;
  hi = -q;
  lo = -qLo + 2.0 * a * (s * s2) * series;
}

}  // namespace distmath
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTELEMENTARY_H
