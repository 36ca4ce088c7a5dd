// kxcommonr/common/dist/KXDistFunBeta.cpp
//
// Incomplete beta function, its inverse, and the Student t and F functions
// of KXDistFun built on them.
//
// The t and F arguments of the incomplete beta, x = df/(df + t*t) and
// x = df1 f/(df2 + df1 f), are formed in double-double together with their
// complements, so that neither tail loses accuracy to the rounding of x or
// to a subtraction from 1.
#include <cmath>

#include "kxcommonr/common/dist/KXDistFun.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/dist/internal/KXDistElementary.h"
#include "kxcommonr/common/dist/internal/KXDistIncBeta.h"
#include "kxcommonr/common/dist/internal/KXDistStatus.h"

namespace KXCommon {

namespace {

constexpr double kPi = 3.14159265358979323846;

// With n = nHi + nLo > 0 and m > 0: x = n / (n + m) and y = m / (n + m),
// each as a double-double (x + xLo, y + yLo).
void SplitRatio(double nHi, double nLo, double m, double& x, double& xLo,
                double& y, double& yLo) {
  double sHi, sLo;
  distmath::TwoSum(nHi, m, sHi, sLo);
  sLo += nLo;
  const double s = sHi + sLo;
  const double sTail = sLo - (s - sHi);
  double ph, pl;
  x = nHi / s;
  distmath::TwoProduct(x, s, ph, pl);
  xLo = (((nHi - ph) - pl) + nLo - x * sTail) / s;
  y = m / s;
  distmath::TwoProduct(y, s, ph, pl);
  yLo = (((m - ph) - pl) - y * sTail) / s;
}

// Both tails of the t distribution's incomplete beta: for |t| > 1,
// r = I_x(df/2, 1/2) with x = df/(df + t*t) (the two-sided tail); for
// |t| <= 1, r = I_x(1/2, df/2) with x = t*t/(df + t*t) (the central mass).
// Returns false for a NaN t.
bool TBetaTails(double t, double df, double& r, double& rComplement) {
  const double at = std::fabs(t);
  if (std::isnan(t)) return false;
  double x, xLo, y, yLo;  // x = df/(df + t^2), y = t^2/(df + t^2)
  if (at > 1e-100 && at < 1e150) {
    double tt, ttLo;
    distmath::TwoProduct(at, at, tt, ttLo);
    SplitRatio(tt, ttLo, df, y, yLo, x, xLo);
  } else {
    const double dt = df / at;
    x = dt / (dt + at);
    y = at / (dt + at);
    xLo = yLo = 0.0;
  }
  if (at > 1.0) {
    distmath::IncBeta(0.5 * df, 0.5, x, y, xLo, yLo, r, rComplement);
  } else {
    distmath::IncBeta(0.5, 0.5 * df, y, x, yLo, xLo, r, rComplement);
  }
  return true;
}

// Lower and upper tails of F(df1, df2) at f > 0 (finite):
// I_X(df1/2, df2/2) and its complement, X = df1 f / (df2 + df1 f).
void FTails(double f, double df1, double df2, double& lower, double& upper) {
  double ph, pl;
  distmath::TwoProduct(df1, f, ph, pl);
  double x, xLo, y, yLo;
  if (ph < 1e290 && ph > 1e-290) {
    SplitRatio(ph, pl, df2, x, xLo, y, yLo);
  } else {
    const double u = df2 / df1;
    x = f / (u + f);
    y = u / (u + f);
    xLo = yLo = 0.0;
  }
  distmath::IncBeta(0.5 * df1, 0.5 * df2, x, y, xLo, yLo, lower, upper);
}

// Quantile of F given p and its exact complement; status as the workers.
double FQuantile(double p, double df1, double df2, long& status) {
  status = diststatus::kOk;
  if (!(p >= 0.0 && p < 1.0) || !(df1 > 0.0) || !(df2 > 0.0)) {
    status = diststatus::kInvalidArgument;
    return KXMV::Missing();
  }
  if (p == 0.0) return 0.0;
  double x, y;
  if (distmath::InvBeta(0.5 * df1, 0.5 * df2, p, 1.0 - p, x, y) != 0 ||
      !(x >= 0.0) || !(y > 0.0)) {
    status = diststatus::kFailed;
    return KXMV::Missing();
  }
  const double f = (df2 / df1) * (x / y);
  if (!std::isfinite(f)) {
    status = diststatus::kFailed;
    return KXMV::Missing();
  }
  return f;
}

// CDF of F with the status conventions of zelkcdff.
double FCdf(double f, double df1, double df2, long& status) {
  status = diststatus::kOk;
  if (!(df1 > 0.0) || !(df2 > 0.0)) {
    status = diststatus::kInvalidArgument;
    return KXMV::Missing();
  }
  if (!(f > 0.0)) return 0.0;  // also NaN
  if (std::isinf(f)) return 1.0;
  double lower, upper;
  FTails(f, df1, df2, lower, upper);
  return lower;
}

}  // namespace

double KXDistFun::cdfbet(const double& x, const double& a, const double& b,
                         long& status) {
  status = diststatus::kOk;
  if (!(a > 0.0) || !(b > 0.0)) {
    status = diststatus::kInvalidArgument;
    return KXMV::Missing();
  }
  if (x <= 0.0) return 0.0;
  if (x >= 1.0) return 1.0;
  if (std::isnan(x)) return KXMV::Missing();
  double lower, upper;
  // A non-converged expansion yields the normal approximation (status 0).
  distmath::IncBeta(a, b, x, 1.0 - x, 0.0, 0.0, lower, upper);
  return lower;
}

double KXDistFun::betinv(const double& p, const double& a, const double& b) {
  if (!(a > 0.0) || !(b > 0.0) || !(p >= 0.0 && p <= 1.0)) return -1.0;
  if (p == 0.0) return 0.0;
  if (p == 1.0) return 1.0;
  double x, y;
  if (distmath::InvBeta(a, b, p, 1.0 - p, x, y) != 0) return -1.0;
  return x;
}

double KXDistFun::zelkcdft(const double& t, const double& df, long& status) {
  status = diststatus::kOk;
  if (!(df > 0.0)) {
    status = diststatus::kInvalidArgument;
    return KXMV::Missing();
  }
  if (df > 1e8) {
    const double value = prbnrm(t);
    if (KXMV::IsMissing(value)) status = diststatus::kFailed;
    return value;
  }
  if (t == 0.0) return 0.5;
  if (df == 1.0) {
    // atan(t)/pi + 0.5, with the left tail formed as atan(-1/t)/pi so that
    // it keeps its relative accuracy.
    return t < -1.0 ? std::atan(-1.0 / t) / kPi : std::atan(t) / kPi + 0.5;
  }
  double r, rComplement;
  if (!TBetaTails(t, df, r, rComplement)) return KXMV::Missing();
  if (std::fabs(t) > 1.0) return t > 1.0 ? 1.0 - 0.5 * r : 0.5 * r;
  return t < 0.0 ? 0.5 - 0.5 * r : 0.5 + 0.5 * r;
}

double KXDistFun::CdfT(double t, double df) {
  return diststatus::ValueOrMissing(
      [&](long& status) { return zelkcdft(t, df, status); });
}

double KXDistFun::SigT(double t, double df) {
  if (!(df > 0.0)) return KXMV::Missing();
  if (t == 0.0) return 0.5;
  if (std::isnan(t)) return KXMV::Missing();
  if (df == 1.0) {
    // 0.5 - atan(t)/pi, with the upper tail formed as atan(1/t)/pi.
    return t > 1.0 ? std::atan(1.0 / t) / kPi : 0.5 - std::atan(t) / kPi;
  }
  // No large-df shortcut here, unlike CdfT.
  double r, rComplement;
  if (!TBetaTails(t, df, r, rComplement)) return KXMV::Missing();
  if (std::fabs(t) > 1.0) return t > 1.0 ? 0.5 * r : (0.5 - 0.5 * r) + 0.5;
  return t > 0.0 ? 0.5 - 0.5 * r : 0.5 + 0.5 * r;
}

double KXDistFun::zelkidft(const double& p, const double& df, long& status) {
  status = diststatus::kOk;
  if (!(p > 0.0 && p < 1.0) || !(df > 0.0)) {
    status = diststatus::kInvalidArgument;
    return KXMV::Missing();
  }
  if (p == 0.5) return 0.0;
  if (df >= 1e8) return IdfStdNorm(p);
  // Two-sided tail probability q and its complement, both exact.
  const double q = p < 0.5 ? 2.0 * p : 2.0 * (1.0 - p);
  const double qComplement = p < 0.5 ? 1.0 - 2.0 * p : 2.0 * p - 1.0;
  // Starting value from the Cornish-Fisher expansion of t in the normal
  // quantile (Abramowitz and Stegun 26.7.5) where its last term is small.
  double startX = 0.0, startY = 0.0;
  if (df >= 4.0) {
    const double z = std::fabs(probit(p));
    const double z2 = z * z;
    const double g1 = (z2 + 1.0) * z / 4.0;
    const double g2 = ((5.0 * z2 + 16.0) * z2 + 3.0) * z / 96.0;
    const double g3 = (((3.0 * z2 + 19.0) * z2 + 17.0) * z2 - 15.0) * z / 384.0;
    const double g4 =
        ((((79.0 * z2 + 776.0) * z2 + 1482.0) * z2 - 1920.0) * z2 - 945.0) * z /
        92160.0;
    const double r = 1.0 / df;
    const double last = g4 * r * r * r * r;
    const double t0 = z + r * (g1 + r * (g2 + r * (g3 + r * g4)));
    if (std::fabs(last) <= 1e-3 * z && t0 > 0.0) {
      const double tt = t0 * t0;
      startX = df / (df + tt);
      startY = tt / (df + tt);
    }
  }
  double x, y;  // x = df/(df + t^2), y = 1 - x
  if (distmath::InvBeta(0.5 * df, 0.5, q, qComplement, x, y, startX, startY) !=
      0) {
    status = diststatus::kFailed;
    return KXMV::Missing();
  }
  const double v = df * (y / x);  // df (1/x - 1)
  if (!(v >= 0.0) || std::isinf(v)) {
    status = diststatus::kFailed;
    return KXMV::Missing();
  }
  const double t = std::sqrt(v);
  return p < 0.5 ? -t : t;
}

double KXDistFun::IdfT(double p, double df) {
  return diststatus::ValueOrMissing(
      [&](long& status) { return zelkidft(p, df, status); });
}

double KXDistFun::zelkcdff(const double& f, const double& df1,
                           const double& df2, long& status) {
  return FCdf(f, df1, df2, status);
}

double KXDistFun::CdfF(double f, double df1, double df2) {
  return diststatus::ValueOrMissing(
      [&](long& status) { return FCdf(f, df1, df2, status); });
}

double KXDistFun::SigF(double f, double df1, double df2) {
  if (!(df1 > 0.0) || !(df2 > 0.0)) return KXMV::Missing();
  if (std::isnan(f)) return KXMV::Missing();
  if (f <= 0.0) return 1.0;
  if (std::isinf(f)) return 0.0;
  double lower, upper;
  FTails(f, df1, df2, lower, upper);
  return upper;
}

double KXDistFun::zelkidff(const double& p, const double& df1,
                           const double& df2, long& status) {
  return FQuantile(p, df1, df2, status);
}

double KXDistFun::IdfF(double p, double df1, double df2) {
  return diststatus::ValueOrMissing(
      [&](long& status) { return FQuantile(p, df1, df2, status); });
}

}  // namespace KXCommon
