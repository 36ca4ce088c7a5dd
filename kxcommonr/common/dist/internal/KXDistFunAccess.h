// kxcommonr/common/dist/internal/KXDistFunAccess.h
//
// Access to the private workers of KXDistFun for the tests and the accuracy
// report. Not installed.
#ifndef KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTFUNACCESS_H
#define KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTFUNACCESS_H

#include "kxcommonr/common/dist/KXDistFun.h"

namespace KXCommon {

struct KXDistFunAccess {
  static double derf(double x) { return KXDistFun::derf(x); }
  static double derfc(double x) { return KXDistFun::derfc(x); }
  static double prbnrm(double z) { return KXDistFun::prbnrm(z); }
  static double probit(double p) { return KXDistFun::probit(p); }
  static double zelkcdft(double t, double df, long& status) {
    return KXDistFun::zelkcdft(t, df, status);
  }
  static double zelkidft(double p, double df, long& status) {
    return KXDistFun::zelkidft(p, df, status);
  }
  static double zelkidfchi(double p, double df, long& status) {
    return KXDistFun::zelkidfchi(p, df, status);
  }
  static double idfchb(double p, double df, double start, long& status) {
    return KXDistFun::idfchb(p, df, start, status);
  }
  static double zelkcdff(double f, double df1, double df2, long& status) {
    return KXDistFun::zelkcdff(f, df1, df2, status);
  }
  static double zelkidff(double p, double df1, double df2, long& status) {
    return KXDistFun::zelkidff(p, df1, df2, status);
  }
  static double cdfbet(double x, double a, double b, long& status) {
    return KXDistFun::cdfbet(x, a, b, status);
  }
  static double betinv(double p, double a, double b) {
    return KXDistFun::betinv(p, a, b);
  }
  static double gammad(double x, double a, bool lower, long& status) {
    return KXDistFun::gammad(x, a, lower, status);
  }
  static double dnlgam(double x) { return KXDistFun::dnlgam(x); }
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTFUNACCESS_H
