// kxcommonr/common/dist/internal/KXDistFunAccess.h
//
// The test hook of KXDistFun: access to its private workers for the tests
// and the accuracy report. Not installed, so not part of the API.
//
// The workers keep their own failure conventions, which the public
// functions translate into the missing value (internal/KXDistStatus.h):
// - the status workers set status to 0 on success, 1 for an invalid
//   argument (degrees of freedom or a shape not > 0, a probability out of
//   range) and 2 for a numerical failure, and then return the missing value;
// - betinv returns -1 for invalid arguments or a failed iteration;
// - derf, derfc and prbnrm never fail; probit and dnlgam return the missing
//   value outside their domain.
#ifndef KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTFUNACCESS_H
#define KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTFUNACCESS_H

#include "kxcommonr/common/dist/KXDistFun.h"

namespace KXCommon {

struct KXDistFunAccess {
  // Ooura's erf and erfc.
  static double derf(double x) { return KXDistFun::derf(x); }
  static double derfc(double x) { return KXDistFun::derfc(x); }
  // Phi(z) (0.5 for a NaN) and its inverse by AS 241 (missing unless
  // 0 < p < 1).
  static double prbnrm(double z) { return KXDistFun::prbnrm(z); }
  static double probit(double p) { return KXDistFun::probit(p); }
  // CdfT and IdfT with a status.
  static double zelkcdft(double t, double df, long& status) {
    return KXDistFun::zelkcdft(t, df, status);
  }
  static double zelkidft(double p, double df, long& status) {
    return KXDistFun::zelkidft(p, df, status);
  }
  // IdfChi with a status, and its bisection fallback from a starting
  // estimate start (status 1 for a start not > 0; the bracket is half and
  // twice start, its upper end widened once).
  static double zelkidfchi(double p, double df, long& status) {
    return KXDistFun::zelkidfchi(p, df, status);
  }
  static double idfchb(double p, double df, double start, long& status) {
    return KXDistFun::idfchb(p, df, start, status);
  }
  // CdfF and IdfF with a status.
  static double zelkcdff(double f, double df1, double df2, long& status) {
    return KXDistFun::zelkcdff(f, df1, df2, status);
  }
  static double zelkidff(double p, double df1, double df2, long& status) {
    return KXDistFun::zelkidff(p, df1, df2, status);
  }
  // Regularised incomplete beta I_x(a, b): status 1 and missing when a or b
  // is not > 0; 0 for x <= 0, 1 for x >= 1.
  static double cdfbet(double x, double a, double b, long& status) {
    return KXDistFun::cdfbet(x, a, b, status);
  }
  // x with I_x(a, b) = p: 0 for p == 0, 1 for p == 1, -1 for invalid
  // arguments or a failed iteration.
  static double betinv(double p, double a, double b) {
    return KXDistFun::betinv(p, a, b);
  }
  // Regularised incomplete gamma P(a, x) (lower) or Q(a, x) (upper): status
  // 1 and missing for a not > 0 or x < 0 (or NaN), 2 when the iteration
  // does not converge.
  static double gammad(double x, double a, bool lower, long& status) {
    return KXDistFun::gammad(x, a, lower, status);
  }
  // log Gamma(x) for x > 0, missing otherwise.
  static double dnlgam(double x) { return KXDistFun::dnlgam(x); }
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTFUNACCESS_H
