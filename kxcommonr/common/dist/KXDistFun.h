// kxcommonr/common/dist/KXDistFun.h
//
// Cumulative (Cdf...), inverse (Idf...) and upper-tail significance (Sig...)
// functions of the normal, Student t, chi-square and F distributions, with
// the error functions, the incomplete beta and gamma functions and the log
// gamma function they rest on.
//
// Every public function takes and returns double and reports failure by
// returning the system-missing value (KXMV::Missing()); none throws or
// prints. The private workers named zelk... carry a status argument instead:
// 0 success, 1 invalid argument (degrees of freedom not > 0, probability out
// of range), 2 numerical failure.
//
// A missing argument is not recognised as such by the CDFs: it is an
// ordinary very negative number, so CdfStdNorm(KXMV::Missing()) is 0.
//
// Accuracy: the CDFs and upper tails compute the smaller tail directly, so
// both tails keep full relative accuracy; docs/accuracy.md lists the
// measured errors by region. IdfChi deliberately keeps the fixed AS 91
// iteration with relative tolerance 5e-7.
//
// Thread-safe: no mutable state; the few cached constants are compile-time
// or thread-safe function statics.
#ifndef KXCOMMONR_COMMON_DIST_KXDISTFUN_H
#define KXCOMMONR_COMMON_DIST_KXDISTFUN_H

#include "kxcommonr/config.h"

namespace KXCommon {

struct KXDistFunAccess;  // internal test and report access to the workers

class KXCOMMONR_API KXDistFun {
 public:
  // Standard normal CDF Phi(x). Never missing: a NaN gives 0.5, the missing
  // value (a very negative number) gives 0.
  static double CdfStdNorm(double x);
  // Phi((x - mean) / sd); missing if sd is not > 0 (or NaN). x is not tested.
  static double CdfNorm(double x, double mean, double sd);
  // z with Phi(z) = p; missing unless 0 < p < 1; exactly 0 for p == 0.5.
  static double IdfStdNorm(double p);
  // mean + sd * z with Phi(z) = p; missing unless 0 < p < 1 and sd > 0;
  // exactly mean for p == 0.5.
  static double IdfNorm(double p, double mean, double sd);

  // Student t: P(T <= t). Missing if df is not > 0. df > 1e8 uses the
  // normal limit; df == 1 is the Cauchy closed form.
  static double CdfT(double t, double df);
  // t with P(T <= t) = p; missing unless 0 < p < 1 and df > 0; exactly 0 for
  // p == 0.5; df >= 1e8 gives IdfStdNorm(p) (note: inclusive here,
  // exclusive in CdfT). Also missing when |t| would exceed about
  // 1e154 * sqrt(df) (tiny p with df < 1), where df/(df + t*t) underflows.
  static double IdfT(double p, double df);
  // One-tailed upper probability P(T > t); missing if df is not > 0 or t is
  // NaN. Deliberately has no large-df normal shortcut (unlike CdfT).
  static double SigT(double t, double df);

  // Chi-square: P(X <= x); missing if df is not > 0; 0 for x <= 0.
  static double CdfChi(double x, double df);
  // x with P(X <= x) = p by AS 91 (relative tolerance 5e-7) with a bisection
  // fallback; missing unless 0 <= p < 1 and df > 0; exactly 0 for p == 0.
  static double IdfChi(double p, double df);
  // P(X > x); missing if df is not > 0; 1 for x <= 0.
  static double SigChi(double x, double df);

  // F: P(F <= f); missing unless df1 > 0 and df2 > 0; 0 for f <= 0 or NaN.
  static double CdfF(double f, double df1, double df2);
  // f with P(F <= f) = p; missing unless 0 <= p < 1, df1 > 0 and df2 > 0;
  // exactly 0 for p == 0. Also missing when f would overflow its beta
  // variate's range (p within 1e-300-ish of 1 with a tiny df2).
  static double IdfF(double p, double df1, double df2);
  // P(F > f); missing unless df1 > 0 and df2 > 0; 1 for f <= 0; missing for
  // a NaN f (deliberately unlike CdfF, which gives 0).
  static double SigF(double f, double df1, double df2);

  // Natural logarithm of the gamma function for x > 0; missing for x <= 0
  // or NaN.
  static double zelkdnlgam(const double& x);

 private:
  friend struct KXDistFunAccess;

  // Error function pair (Ooura's double-precision approximations).
  static double derf(const double& x);
  static double derfc(const double& x);
  // Standard normal CDF and quantile (AS 241).
  static double prbnrm(const double& z);
  static double probit(const double& p);

  // Status-returning workers (status: 0 ok, 1 invalid argument, 2 failure).
  static double zelkcdft(const double& t, const double& df, long& status);
  static double zelkidft(const double& p, const double& df, long& status);
  static double zelkidfchi(const double& p, const double& df, long& status);
  static double idfchb(const double& p, const double& df, const double& start,
                       long& status);
  static double zelkcdff(const double& f, const double& df1, const double& df2,
                         long& status);
  static double zelkidff(const double& p, const double& df1, const double& df2,
                         long& status);

  // Beta/gamma group.
  // Regularised incomplete beta I_x(a, b); status 1 and missing when a or b
  // is not > 0; 0 for x <= 0, 1 for x >= 1.
  static double cdfbet(const double& x, const double& a, const double& b,
                       long& status);
  // x with I_x(a, b) = p; 0 for p == 0, 1 for p == 1, -1 for invalid
  // arguments or a failed iteration.
  static double betinv(const double& p, const double& a, const double& b);
  // Regularised incomplete gamma P(a, x) (lower) or Q(a, x) (upper); status
  // 1 and missing for a not > 0 or x < 0 (or NaN).
  static double gammad(const double& x, const double& a, bool lower,
                       long& status);
  // log Gamma(x) for x > 0, missing otherwise.
  static double dnlgam(const double& x);
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_DIST_KXDISTFUN_H
