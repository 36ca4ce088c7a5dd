// kxcommonr/common/dist/KXDistFunNormal.cpp
//
// Error function pair, standard normal CDF and quantile, and the public
// normal distribution functions of KXDistFun.
#include <cmath>

#include "kxcommonr/common/dist/KXDistFun.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/dist/internal/KXDistErfc.h"
#include "kxcommonr/common/dist/internal/KXDistTables.h"

namespace KXCommon {

namespace {

// Horner evaluation of a degree-12 row, highest power first.
inline double PolyRow13(const double (&row)[13], double t) {
  double y = row[0];
  for (int i = 1; i < 13; ++i) y = y * t + row[i];
  return y;
}

// Ratio of two degree-7 polynomials with coefficients from the constant up.
inline double Rational8(const double (&num)[8], const double (&den)[8],
                        double r) {
  double n = num[7];
  double d = den[7];
  for (int i = 6; i >= 0; --i) {
    n = n * r + num[i];
    d = d * r + den[i];
  }
  return n / d;
}

}  // namespace

double KXDistFun::derf(const double& x) {
  using disttables::kOouraErfA;
  using disttables::kOouraErfB;
  const double w = std::fabs(x);
  double y;
  if (!(w > 0.0)) {
    y = 0.0;
  } else if (w < 2.2) {
    const double t = w * w;
    const int k = static_cast<int>(t);
    y = w * PolyRow13(kOouraErfA[k], t - k);
  } else if (w < 6.9) {
    const int k = static_cast<int>(w);
    double p = PolyRow13(kOouraErfB[k - 2], w - k);
    p *= p;
    p *= p;
    p *= p;
    p *= p;
    y = 1.0 - p;
  } else {
    y = 1.0;
  }
  return x < 0.0 ? -y : y;
}

double KXDistFun::derfc(const double& x) {
  const double w = std::fabs(x);
  if (!(w > 0.0)) return 1.0;  // also NaN
  const double value = distmath::ErfcPositive(w, 0.0);
  return x < 0.0 ? 2.0 - value : value;
}

double KXDistFun::prbnrm(const double& z) {
  // 1/sqrt(2), computed once (a constant expression, so thread-safe).
  static const double kInvSqrt2 = 1.0 / std::sqrt(2.0);
  if (z > 0.0) return (derf(z * kInvSqrt2) + 1.0) * 0.5;
  if (z < 0.0) return distmath::NormalLowerTail(-z);
  return 0.5;  // z == 0 or NaN
}

double KXDistFun::probit(const double& p) {
  using namespace disttables;
  if (!(p > 0.0 && p < 1.0)) return KXMV::Missing();
  const double q = p - 0.5;
  if (q == 0.0) return 0.0;
  if (std::fabs(q) <= 0.425) {
    const double r = 0.180625 - q * q;
    return q * Rational8(kAS241A, kAS241B, r);
  }
  double r = q < 0.0 ? p : 1.0 - p;
  r = std::sqrt(-std::log(r));
  const double value = r <= 5.0 ? Rational8(kAS241C, kAS241D, r - 1.6)
                                 : Rational8(kAS241E, kAS241F, r - 5.0);
  return q < 0.0 ? -value : value;
}

double KXDistFun::CdfStdNorm(double x) { return prbnrm(x); }

double KXDistFun::CdfNorm(double x, double mean, double sd) {
  if (!(sd > 0.0)) return KXMV::Missing();
  return prbnrm((x - mean) / sd);
}

double KXDistFun::IdfStdNorm(double p) {
  if (!(p > 0.0 && p < 1.0)) return KXMV::Missing();
  if (p == 0.5) return 0.0;
  return probit(p);
}

double KXDistFun::IdfNorm(double p, double mean, double sd) {
  if (!(p > 0.0 && p < 1.0) || !(sd > 0.0)) return KXMV::Missing();
  if (p == 0.5) return mean;
  const double z = probit(p);
  if (KXMV::IsMissing(z)) return KXMV::Missing();
  return mean + z * sd;
}

}  // namespace KXCommon
