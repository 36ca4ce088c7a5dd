// kxcommonr/common/dist/KXDistFun.h
//
// Cumulative (Cdf...), inverse (Idf...) and upper-tail significance (Sig...)
// functions of the normal, Student t, chi-square and F distributions, and
// the log gamma function, all static.
//
// Failure: every public function takes and returns double and reports
// failure by returning the system-missing value KXMV::Missing() (the most
// negative finite double); none throws or prints. Each function below says
// when it returns it. A missing argument is not recognised as such by the
// CDFs: it is an ordinary very negative number, so
// CdfStdNorm(KXMV::Missing()) is 0. NaN and infinite arguments give what is
// stated per function; one that is not mentioned (a NaN mean, an infinite
// df) may give NaN.
//
// Accuracy: the CDFs and upper tails compute the smaller tail directly, so
// both tails keep full relative accuracy; docs/accuracy.md lists the
// measured errors by region. IdfChi deliberately keeps the fixed AS 91
// iteration with relative tolerance 5e-7.
//
// Example, a two-sided p-value of a t statistic:
//   const double p = 2.0 * KXDistFun::SigT(std::fabs(t), df);
//   if (KXMV::IsMissing(p)) { /* df was not > 0, or t was NaN */ }
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
  // Phi((x - mean) / sd); missing if sd is not > 0 (or NaN). x and mean are
  // not tested.
  static double CdfNorm(double x, double mean, double sd);
  // z with Phi(z) = p; missing unless 0 < p < 1; exactly 0 for p == 0.5.
  static double IdfStdNorm(double p);
  // mean + sd * z with Phi(z) = p; missing unless 0 < p < 1 and sd > 0;
  // exactly mean for p == 0.5. mean is not tested.
  static double IdfNorm(double p, double mean, double sd);

  // Student t: P(T <= t). Missing if df is not > 0, or for a NaN t (which
  // gives 0.5 in the normal limit and NaN for df == 1). df > 1e8 uses the
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

  // Chi-square: P(X <= x); 0 for x <= 0. Missing if df is not > 0, x is
  // NaN, or the incomplete gamma iteration does not converge.
  static double CdfChi(double x, double df);
  // x with P(X <= x) = p by AS 91 (relative tolerance 5e-7) with a bisection
  // fallback; exactly 0 for p == 0. Missing unless 0 <= p < 1 and df > 0,
  // and where both the iteration and its deliberately narrow fallback fail
  // (a few far lower-tail points).
  static double IdfChi(double p, double df);
  // P(X > x); 1 for x <= 0. Missing if df is not > 0, x is NaN, or the
  // incomplete gamma iteration does not converge.
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

  // Natural logarithm of the gamma function for x > 0 (+inf for +inf);
  // missing for x <= 0 or NaN.
  static double zelkdnlgam(const double& x);

 private:
  // Not part of the API: the workers behind the functions above, under the
  // names and signatures they have always had. Their own failure
  // conventions (a status argument, -1 from betinv) stay inside the
  // library; they are documented with the internal test hook
  // KXDistFunAccess.
  friend struct KXDistFunAccess;

  // Error function pair and the standard normal CDF and quantile.
  static double derf(const double& x);
  static double derfc(const double& x);
  static double prbnrm(const double& z);
  static double probit(const double& p);

  // The t, chi-square and F functions with a status.
  static double zelkcdft(const double& t, const double& df, long& status);
  static double zelkidft(const double& p, const double& df, long& status);
  static double zelkidfchi(const double& p, const double& df, long& status);
  static double idfchb(const double& p, const double& df, const double& start,
                       long& status);
  static double zelkcdff(const double& f, const double& df1, const double& df2,
                         long& status);
  static double zelkidff(const double& p, const double& df1, const double& df2,
                         long& status);

  // Incomplete beta and its inverse, incomplete gamma, log gamma.
  static double cdfbet(const double& x, const double& a, const double& b,
                       long& status);
  static double betinv(const double& p, const double& a, const double& b);
  static double gammad(const double& x, const double& a, bool lower,
                       long& status);
  static double dnlgam(const double& x);
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_DIST_KXDISTFUN_H
