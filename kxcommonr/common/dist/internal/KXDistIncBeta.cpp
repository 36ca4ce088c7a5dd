// kxcommonr/common/dist/internal/KXDistIncBeta.cpp
//
// Regularised incomplete beta I_x(a, b) and its inverse. The power term
// x^a y^b / B(a, b) is formed without subtracting large logarithms (for
// large parameters through the Stirling form around the mode, for small
// ones with pow and an accurate Gamma); the incomplete function evaluates
// the tail on the near side of the mode, by a power series or a continued
// fraction, so the small tail is always computed directly. The inverse is a
// safeguarded Halley iteration on the smaller tail.
#include "kxcommonr/common/dist/internal/KXDistIncBeta.h"

#include <cmath>
#include <limits>

#include "kxcommonr/common/dist/internal/KXDistElementary.h"
#include "kxcommonr/common/dist/internal/KXDistGammaFunction.h"

namespace KXCommon {
namespace distmath {

namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kTwoPi = 6.283185307179586476925286766559;
constexpr double kInvSqrt2 = 0.7071067811865476;
// Iteration caps of the incomplete beta expansions.
constexpr int kBetaMaxTerms = 10001;

// log(x) with x = 1 - y, using whichever of x and y is the accurate one.
inline double LogOfComplement(double x, double y, double xLo, double yLo) {
  if (x < 0.5) return std::log(x) + xLo / x;
  return std::log1p(-y) - yLo / x;
}

// x^a for x = 1 - y, from the accurate one of x and y.
inline double PowOfComplement(double x, double y, double xLo, double yLo,
                              double a) {
  if (x < 0.5) {
    const double p = std::pow(x, a);
    return xLo == 0.0 ? p : p * (1.0 + a * xLo / x);
  }
  return std::exp(a * (std::log1p(-y) - yLo / x));
}

// Normal approximation to I_x(a, b) (cube-root transformation), the last
// resort when no expansion converged.
double IncBetaNormalApprox(double a, double b, double x, double y) {
  const double w1 = std::cbrt(b * x);
  const double w2 = std::cbrt(a * y);
  const double z = 3.0 * (w1 * (1.0 - 1.0 / (9.0 * b)) -
                          w2 * (1.0 - 1.0 / (9.0 * a))) /
                   std::sqrt(w1 * w1 / b + w2 * w2 / a);
  return 0.5 * std::erfc(-z * kInvSqrt2);
}

// The continued fraction of I_x(a, b) = x^a y^b / (a B(a, b)) * C, with
// C = 1/(1 + d1/(1 + d2/(1 + ...))),
//   d(2m+1) = -(a+m)(a+b+m) x / ((a+2m)(a+2m+1)),
//   d(2m)   = m(b-m) x / ((a+2m-1)(a+2m)),
// evaluated in its even contraction
//   C = (1 + d2 + R) / (1 + d1 + d2 + R),
//   R = n1/(e1 + n2/(e2 + ...)), n_j = -d(2j) d(2j+1), e_j = 1 + d(2j+1) + d(2j+2),
// where, for x > 1/2, every 1 + d(2m+1) is formed from y without cancellation:
//   [a(2m+1-b) + m(3m+2-b) + (a+m)(a+b+m) y] / ((a+2m)(a+2m+1)).
// This keeps full accuracy when x is close to 1 and a is large (the t
// distribution with many degrees of freedom), where 1 + d(2m+1) is tiny.
double IncBetaContinuedFraction(double a, double b, double x, double y,
                                double xLo, double yLo, bool& converged) {
  constexpr double kFpMin = 1e-300;
  const double apb = a + b;
  auto odd = [&](double m) {
    return -(a + m) * (apb + m) * x / ((a + 2.0 * m) * (a + 2.0 * m + 1.0));
  };
  // For x <= 1/2 the y form would cancel when b is large, and the plain sum
  // 1 + d(2m+1) when x is close to the mode a/(a+b) (d(2m+1) near -1 for
  // large a). With delta = x (a+b) - a = x b - y a, formed accurately, the
  // numerator (a+2m)(a+2m+1) - (a+m)(a+b+m) x equals
  //   a(3m+1) + 2m(2m+1) - (a+m) delta - m x (a+m),
  // whose subtracted terms stay well below the first ones (x <= 1/2 and
  // delta is small on the near side of the mode).
  const bool fromY = x > 0.5;
  double delta = 0.0;
  if (!fromY) {
    double p1, r1, p2, r2;
    TwoProduct(x, b, p1, r1);
    TwoProduct(y, a, p2, r2);
    delta = (p1 - p2) + (r1 - r2) + (xLo * b - yLo * a);
  }
  auto onePlusOdd = [&](double m) {
    if (!fromY) {
      return (a * (3.0 * m + 1.0) + 2.0 * m * (2.0 * m + 1.0) -
              (a + m) * delta - m * x * (a + m)) /
             ((a + 2.0 * m) * (a + 2.0 * m + 1.0));
    }
    return (a * (2.0 * m + 1.0 - b) + m * (3.0 * m + 2.0 - b) +
            (a + m) * (apb + m) * y) /
           ((a + 2.0 * m) * (a + 2.0 * m + 1.0));
  };
  auto even = [&](double m) {
    return m * (b - m) * x / ((a + 2.0 * m - 1.0) * (a + 2.0 * m));
  };
  // Modified Lentz for R with a zero leading term.
  double f = kFpMin;
  double c = f;
  double d = 0.0;
  converged = false;
  for (int j = 1; j <= kBetaMaxTerms; ++j) {
    const double numerator = -even(j) * odd(j);
    const double denominator = onePlusOdd(j) + even(j + 1.0);
    d = denominator + numerator * d;
    if (std::fabs(d) < kFpMin) d = kFpMin;
    c = denominator + numerator / c;
    if (std::fabs(c) < kFpMin) c = kFpMin;
    d = 1.0 / d;
    const double delta = c * d;
    f *= delta;
    if (std::fabs(delta - 1.0) <= 1e-16) {
      converged = true;
      break;
    }
  }
  const double r = f == kFpMin ? 0.0 : f;
  const double d2 = even(1.0);
  return (1.0 + d2 + r) / (onePlusOdd(0.0) + d2 + r);
}

}  // namespace

double BetaPowerTerms(double a, double b, double x, double y, double xLo,
                      double yLo) {
  if (x <= 0.0 || y <= 0.0) return 0.0;
  if (a >= 10.0 && b >= 10.0) {
    // Around the mode x0 = a/(a+b): x = x0 (1 + e1), y = y0 (1 + e2), and
    // a log(1+e1) + b log(1+e2) = a Log1pmx(e1) + b Log1pmx(e2).
    const double apb = a + b;
    double p1, r1, p2, r2;
    TwoProduct(x, b, p1, r1);
    TwoProduct(y, a, p2, r2);
    const double d = (p1 - p2) + (r1 - r2) + (xLo * b - yLo * a);  // (x b - y a)
    const double correction = StirlingCorrection(a) + StirlingCorrection(b) -
                              StirlingCorrection(apb);
    // (x/x0)^a (y/y0)^b with pow where both factors are in range.
    bool okX = false, okY = false;
    const double powX = PowRatio(x, xLo, apb, a, a, okX);
    const double powY = okX ? PowRatio(y, yLo, apb, b, b, okY) : 0.0;
    if (okX && okY) {
      return std::sqrt(a * (b / (kTwoPi * apb))) * std::exp(-correction) *
             (powX * powY);
    }
    const double e1 = d / a;
    const double e2 = -d / b;
    if (std::fabs(e1) <= 0.5 && std::fabs(e2) <= 0.5) {
      // d = x b - y a in double-double for the deviance form.
      double dHi, dLo;
      TwoSum(p1, -p2, dHi, dLo);
      dLo += (r1 - r2) + (xLo * b - yLo * a);
      double hiA, loA, hiB, loB, hi, hiLo;
      ScaledLog1pmx(a, dHi, dLo, hiA, loA);
      ScaledLog1pmx(b, -dHi, -dLo, hiB, loB);
      TwoSum(hiA, hiB, hi, hiLo);
      return std::sqrt(a * (b / (kTwoPi * apb))) * std::exp(hi) *
             std::exp((hiLo + loA + loB) - correction);
    }
    // Far from the mode, log(x/x0) - e1 directly (1 + e1 would have lost the
    // digits of a small x), likewise for y.
    const double t1 = e1 < -0.5 || e1 > 1.0
                          ? std::log(x * apb / a) + xLo / x - e1
                          : Log1pmx(e1);
    const double t2 = e2 < -0.5 || e2 > 1.0
                          ? std::log(y * apb / b) + yLo / y - e2
                          : Log1pmx(e2);
    const double exponent = a * t1 + b * t2 - correction;
    return std::sqrt(a * (b / (kTwoPi * apb))) * std::exp(exponent);
  }
  if (a >= 10.0 || b >= 10.0) {
    // With big >= 10 > small (or both large here only through one side):
    // Gamma(big+small)/Gamma(big) = big^small exp(LogGammaRatioScaled), and
    // big^small goes with the small side's power so that their logarithms
    // do not cancel. The big side's power is formed with pow when its base
    // is the accurate one and it does not underflow: exp of a large
    // computed exponent would lose |exponent| * eps.
    const bool aBig = a >= 10.0;
    const double big = aBig ? a : b, small = aBig ? b : a;
    const double u = aBig ? x : y, uLo = aBig ? xLo : yLo;  // base of big
    const double w = aBig ? y : x, wLo = aBig ? yLo : xLo;  // base of small
    const double rest = small * std::log(big * (w + wLo)) +
                        LogGammaRatioScaled(big, small) - LogGamma(small);
    if (u < 0.5) {
      const double logPower = big * (std::log(u) + uLo / u);
      if (logPower > -700.0) {
        return std::pow(u, big) * (1.0 + big * uLo / u) * std::exp(rest);
      }
      return std::exp(logPower + rest);
    }
    // big log(1 - w) = -big w + big (log(1 - w) + w) with w <= 1/2: the
    // first product exactly, so that an exponent of several hundred keeps
    // its digits (the second part is at most about half as large).
    // Below an exponent of a few units the plain form is as accurate.
    if (big * w < 4.0) return std::exp(big * (std::log1p(-w) - wLo / u) + rest);
    double hi, hiLo;
    TwoProduct(-big, w, hi, hiLo);
    const double lo = hiLo + big * Log1pmx(-w) - big * wLo / u;
    return std::exp(hi) * std::exp(lo + rest);
  }
  const double gammaRatio = GammaSmall(a + b) / (GammaSmall(a) * GammaSmall(b));
  const double px = PowOfComplement(x, y, xLo, yLo, a);
  const double py = PowOfComplement(y, x, yLo, xLo, b);
  if (px > 1e-150 && py > 1e-150) return px * py * gammaRatio;
  return std::exp(a * LogOfComplement(x, y, xLo, yLo) +
                  b * LogOfComplement(y, x, yLo, xLo) + std::log(gammaRatio));
}

int IncBeta(double a, double b, double x, double y, double xLo, double yLo,
            double& lower, double& upper, double* powerTerms) {
  if (powerTerms != nullptr) *powerTerms = 0.0;
  if (x <= 0.0) {
    lower = 0.0;
    upper = 1.0;
    return 0;
  }
  if (y <= 0.0) {
    lower = 1.0;
    upper = 0.0;
    return 0;
  }
  // Closed forms: I_x(a, 1) = x^a, I_x(1, b) = 1 - y^b.
  if (b == 1.0 || a == 1.0) {
    const bool bIsOne = b == 1.0;
    const double e = bIsOne ? a * LogOfComplement(x, y, xLo, yLo)
                            : b * LogOfComplement(y, x, yLo, xLo);
    const double power = e < -708.0 ? 0.0 : std::exp(e);
    const double complement = e < -708.0 ? 1.0 : -std::expm1(e);
    lower = bIsOne ? power : complement;
    upper = bIsOne ? complement : power;
    if (powerTerms != nullptr) *powerTerms = BetaPowerTerms(a, b, x, y, xLo, yLo);
    return 0;
  }
  // Work on the tail on the near side of the mode: swap so that
  // x < (a+1)/(a+b+2).
  const bool swapped =
      x <= 0.5 ? x * (a + b + 2.0) > a + 1.0 : y * (a + b + 2.0) < b + 1.0;
  if (swapped) {
    double t = a;
    a = b;
    b = t;
    t = x;
    x = y;
    y = t;
    t = xLo;
    xLo = yLo;
    yLo = t;
  }
  double w = 0.0;
  bool converged = false;
  if (x <= 0.7 && (b <= 1.0 || b * x <= 0.7)) {
    // Power series: I_x(a,b) = x^a / (a B(a,b)) [1 + a sum_n c_n x^n/(a+n)],
    // c_n = (1-b)(2-b)...(n-b)/n!.
    double sum = 0.0;
    double c = 1.0;
    for (int n = 1; n <= kBetaMaxTerms; ++n) {
      c *= (n - b) * x / n;
      const double term = c / (a + n);
      sum += term;
      if (std::fabs(term) <= 1e-17 * std::fabs(sum) || c == 0.0) {
        converged = true;
        break;
      }
    }
    const double yPowB = std::exp(b * LogOfComplement(y, x, yLo, xLo));
    const double power = BetaPowerTerms(a, b, x, y, xLo, yLo);
    if (powerTerms != nullptr) *powerTerms = power;
    w = power / yPowB / a * (1.0 + a * sum);
  } else {
    const double power = BetaPowerTerms(a, b, x, y, xLo, yLo);
    if (powerTerms != nullptr) *powerTerms = power;
    w = power / a * IncBetaContinuedFraction(a, b, x, y, xLo, yLo, converged);
  }
  int status = 0;
  if (!converged || !(w >= 0.0)) {
    w = IncBetaNormalApprox(a, b, x, y);
    status = 2;
  }
  if (w > 1.0) w = 1.0;
  lower = swapped ? 1.0 - w : w;
  upper = swapped ? w : 1.0 - w;
  return status;
}

namespace {

// Starting value for I_u(a, b) = target (target <= 0.5), after Abramowitz
// and Stegun 26.5.22 with the small-u power form as fallback.
double InvBetaStart(double a, double b, double target, double z) {
  double u;
  const double logB = LogGamma(a) + LogGamma(b) - LogGamma(a + b);
  if (a > 1.0 && b > 1.0) {
    const double r = (z * z - 3.0) / 6.0;
    const double s = 1.0 / (2.0 * a - 1.0);
    const double t = 1.0 / (2.0 * b - 1.0);
    const double h = 2.0 / (s + t);
    const double w = z * std::sqrt(h + r) / h -
                     (t - s) * (r + 5.0 / 6.0 - 2.0 / (3.0 * h));
    u = a / (a + b * std::exp(2.0 * w));
  } else {
    const double r = 2.0 * b;
    double t = 1.0 / (9.0 * b);
    t = r * std::pow(1.0 - t + z * std::sqrt(t), 3.0);
    if (t <= 0.0) {
      u = -std::expm1((std::log1p(-target) + std::log(b) + logB) / b);
    } else {
      t = (4.0 * a + r - 2.0) / t;
      u = t <= 1.0 ? std::exp((std::log(target * a) + logB) / a)
                   : 1.0 - 2.0 / (t + 1.0);
    }
  }
  if (!(u > 0.0 && u < 1.0)) {
    u = std::exp((std::log(target * a) + logB) / a);
  }
  if (!(u >= 1e-8)) u = 1e-8;
  if (!(u <= 0.9999999)) u = 0.9999999;
  return u;
}

}  // namespace

int InvBeta(double a, double b, double p, double q, double& x, double& y,
            double startX, double startY) {
  if (p <= 0.0) {
    x = 0.0;
    y = 1.0;
    return 0;
  }
  if (q <= 0.0) {
    x = 1.0;
    y = 0.0;
    return 0;
  }
  if (a == b && p == q) {
    x = y = 0.5;
    return 0;
  }
  if (a == 0.5 && b == 0.5) {
    const double s = std::sin(p * (kTwoPi / 4.0));
    const double c = std::sin(q * (kTwoPi / 4.0));
    x = s * s;
    y = c * c;
    return 0;
  }
  if (a == 1.0 || b == 1.0) {
    // I_x(1, b) = 1 - y^b, I_x(a, 1) = x^a.
    const double logTarget = a == 1.0 ? (q < 0.5 ? std::log(q) : std::log1p(-p)) / b
                                      : (p < 0.5 ? std::log(p) : std::log1p(-q)) / a;
    const double power = std::exp(logTarget);
    const double complement = -std::expm1(logTarget);
    x = a == 1.0 ? complement : power;
    y = a == 1.0 ? power : complement;
    return 0;
  }
  // Solve on the smaller tail: I_u(al, be) = target with target <= 0.5,
  // u = x (lower) or u = y with (al, be) = (b, a).
  const bool swapped = p > q;
  const double al = swapped ? b : a;
  const double be = swapped ? a : b;
  const double target = swapped ? q : p;
  const double logTarget = std::log(target);
  double u, v;
  if (startX > 0.0 && startY > 0.0) {
    u = swapped ? startY : startX;
    v = swapped ? startX : startY;
  } else {
    // Upper normal quantile of target (Hastings' approximation suffices for
    // a starting value).
    const double r = std::sqrt(-2.0 * logTarget);
    const double z = r - (2.515517 + r * (0.802853 + r * 0.010328)) /
                             (1.0 + r * (1.432788 + r * (0.189269 + r * 0.001308)));
    u = InvBetaStart(al, be, target, z);
    v = 1.0 - u;
  }
  // Halley iteration on log F against the logarithm of the smaller of u and
  // v, safeguarded by a bracket [loU, hiU] (with complements).
  double loU = 0.0, loV = 1.0, hiU = 1.0, hiV = 0.0;
  bool converged = false;
  for (int iteration = 0; iteration < 50; ++iteration) {
    // The larger of u and v is 1 minus the smaller, carried as a
    // double-double so that the incomplete beta sees a consistent pair.
    double uLo = 0.0, vLo = 0.0;
    if (u <= 0.5) {
      TwoSum(1.0, -u, v, vLo);
    } else {
      TwoSum(1.0, -v, u, uLo);
    }
    double lowerTail, upperTail, power;  // power = u^al v^be / B(al, be)
    IncBeta(al, be, u, v, uLo, vLo, lowerTail, upperTail, &power);
    if (lowerTail == target) {
      converged = true;
      break;
    }
    if (lowerTail < target) {
      loU = u;
      loV = v;
    } else {
      hiU = u;
      hiV = v;
    }
    double nu = u, nv = v;
    bool stepped = false;
    double step = 0.0;
    double curvature = 0.0;  // |second / first derivative|
    if (lowerTail > 0.0 && power > 0.0) {
      const double g = std::log(lowerTail) - logTarget;
      // First and second derivatives of log F in s = log u (or log v).
      double d1, d2;
      if (u <= 0.5) {
        d1 = power / v / lowerTail;
        d2 = d1 * (al - (be - 1.0) * (u / v) - d1);
      } else {
        d1 = -power / u / lowerTail;
        d2 = d1 * (1.0 - ((al - 1.0) * (v / u) - (be - 1.0)) - d1);
      }
      curvature = std::fabs(d2 / d1);
      const double newton = -g / d1;
      const double correction = 1.0 + 0.5 * newton * d2 / d1;
      step = correction > 0.5 && correction < 2.0 ? newton / correction : newton;
      if (std::fabs(step) < 700.0) {
        stepped = true;
        if (u <= 0.5) {
          nu = u * std::exp(step);
          nv = 1.0 - nu;
        } else {
          nv = v * std::exp(step);
          nu = 1.0 - nv;
        }
      }
    }
    if (stepped && std::fabs(step) <= 4.0 * kEpsilon) {
      // The correction is below the rounding of u (or v).
      converged = true;
      break;
    }
    // The Newton point must fall strictly inside the bracket, judged on the
    // variable that was stepped (the other may round to an end).
    const bool inside = stepped && (u <= 0.5 ? nu > loU && nu < hiU
                                             : nv > hiV && nv < loV);
    if (inside && step * step * std::fabs(step) * (1.0 + curvature * curvature) <=
                      1e-18) {
      // Halley converges cubically, the error after the step being about
      // curvature^2 step^3: here far below the rounding of u.
      u = nu;
      v = nv;
      converged = true;
      break;
    }
    if (!inside) {
      // Bisect the bracket, geometrically when it spans orders of magnitude.
      if (loU <= 0.5 && hiU <= 0.5) {
        nu = loU > 0.0 && hiU > 8.0 * loU ? std::sqrt(loU * hiU)
                                          : 0.5 * (loU + hiU);
        if (loU == 0.0 && hiU > 1e-300) nu = std::fmin(0.5 * hiU, u * 1e-3);
        nv = 1.0 - nu;
      } else if (loV <= 0.5 && hiV <= 0.5) {
        nv = hiV > 0.0 && loV > 8.0 * hiV ? std::sqrt(loV * hiV)
                                          : 0.5 * (loV + hiV);
        if (hiV == 0.0 && loV > 1e-300) nv = std::fmin(0.5 * loV, v * 1e-3);
        nu = 1.0 - nv;
      } else {
        nu = 0.5 * (loU + hiU);
        nv = 0.5 * (loV + hiV);
      }
    }
    const bool unchanged = nu == u && nv == v;
    u = nu;
    v = nv;
    if (unchanged) {
      converged = true;
      break;
    }
  }
  if (!converged || !(u >= 0.0) || !(v >= 0.0)) {
    x = y = 0.0;
    return 2;
  }
  x = swapped ? v : u;
  y = swapped ? u : v;
  return 0;
}

}  // namespace distmath
}  // namespace KXCommon
