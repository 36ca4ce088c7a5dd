// kxcommonr/common/dist/internal/KXDistIncGamma.cpp
//
// Regularised incomplete gamma P(a, x) and Q(a, x). The power term
// x^a e^-x / Gamma(a) is formed without subtracting large logarithms (for
// large a through the Stirling form around the mode, for small a with pow
// and an accurate Gamma); the expansion is chosen so that the tail on the
// near side of the mode is computed directly: a series for x < a + 1, a
// continued fraction beyond, and Temme's uniform expansion for very large a
// near the mode.
#include "kxcommonr/common/dist/internal/KXDistIncGamma.h"

#include <cmath>

#include "kxcommonr/common/dist/internal/KXDistElementary.h"
#include "kxcommonr/common/dist/internal/KXDistErfc.h"
#include "kxcommonr/common/dist/internal/KXDistGammaFunction.h"

namespace KXCommon {
namespace distmath {

namespace {

constexpr double kTwoPi = 6.283185307179586476925286766559;

// 1/Gamma(1+a) - 1 for 0 < a <= 1.
double RGamma1pm1Unit(double a) {
  if (a <= 0.5) return RGamma1pm1(a);
  // 1/Gamma(1+a) = (1/Gamma(a)) / a and 1/Gamma(a) = 1 + RGamma1pm1(a - 1).
  return (RGamma1pm1(a - 1.0) + (1.0 - a)) / a;
}

// sqrt(a / 2 pi) e^-corr(a), the a-only factor of the power term for a >= 10.
double GammaPowerScale(double a) {
  return std::sqrt(a / kTwoPi) * std::exp(-StirlingCorrection(a));
}

// The same factor for the half-integers a = 10, 10.5, ..., 100 (chi-square
// with integer df up to 200), computed once with the expression above so the
// results are bitwise those of the direct evaluation.
constexpr int kScaleFirst = 20;   // 2a
constexpr int kScaleLast = 200;
struct GammaScaleTable {
  double value[kScaleLast - kScaleFirst + 1];
  GammaScaleTable() {
    for (int k = kScaleFirst; k <= kScaleLast; ++k)
      value[k - kScaleFirst] = GammaPowerScale(0.5 * k);
  }
};

double GammaPowerScaleCached(double a) {
  const double twice = 2.0 * a;
  if (twice <= kScaleLast) {
    const int k = static_cast<int>(twice);
    if (k == twice) {
      static const GammaScaleTable table;
      return table.value[k - kScaleFirst];
    }
  }
  return GammaPowerScale(a);
}

// Temme's uniform expansion of the incomplete gamma ratios for large a near
// the mode: with lambda = x/a, a eta^2/2 = a (lambda - 1 - log lambda) and
// eta of the sign of lambda - 1,
//   Q = erfc(eta sqrt(a/2)) / 2 + exp(-a eta^2/2) / sqrt(2 pi a) S,
//   S = C0(eta) + C1(eta)/a + C2(eta)/a^2 + ...,
// C0 = 1/(lambda-1) - 1/eta, C1 = 1/eta^3 - 1/(lambda-1)^3 - 1/(lambda-1)^2
// - 1/(12(lambda-1)), C2 = C1'(eta)/eta + 1/(288(lambda-1)), here as their
// Taylor series in eta (kxcommonr/common/dist/testdata/make_temme_coefficients.py).
// Used for a >= 1e4 and |eta| <= 0.05, where the truncation of the series in
// eta and in 1/a stays below 1e-17 relative; replaces a series or continued
// fraction of about sqrt(a) terms whose rounding accumulates.
constexpr double kTemmeC0[10] = {
    -1.0 / 3,         1.0 / 12,           -2.0 / 135,
    1.0 / 864,        1.0 / 2835,         -139.0 / 777600,
    1.0 / 25515,      -571.0 / 261273600, -281.0 / 151559100,
    163879.0 / 197522841600};
constexpr double kTemmeC1[8] = {-1.0 / 540,      -1.0 / 288,
                                1.0 / 378,       -77.0 / 77760,
                                1.0 / 4860,      -1.0 / 2488320,
                                -2743.0 / 151559100, 41969.0 / 5486745600};
constexpr double kTemmeC2[6] = {25.0 / 6048,   -139.0 / 51840,
                                1.0 / 1296,    1.0 / 497664,
                                -6199.0 / 57736800, 5531.0 / 104509440};

double PolyEta(const double* c, int n, double eta) {
  double sum = 0.0;
  for (int k = n - 1; k >= 0; --k) sum = sum * eta + c[k];
  return sum;
}

// exp(hi) * exp(lo) for a value split as hi + lo (hi <= 0 large, lo the
// correction). Far from the mode with a large a, lo alone can pass 700
// while hi is far below -700: its whole part then moves into hi, exactly
// (hi + m stays on hi's grid), so neither factor overflows and the product
// is the honest 0 or tiny value instead of 0 times infinity.
double ExpOfSum(double hi, double lo) {
  if (lo > 700.0) {
    const double whole = std::floor(lo);
    hi += whole;
    lo -= whole;
  }
  return std::exp(hi) * std::exp(lo);
}

// Returns false (leaving lower and upper alone) outside the range above.
bool IncGammaTemme(double a, double x, double& lower, double& upper) {
  if (a < 1e4) return false;
  const double e = (x - a) / a;
  if (!(std::fabs(e) <= 0.06)) return false;
  double d, dLo, hi, lo;
  TwoSum(x, -a, d, dLo);
  ScaledLog1pmx(a, d, dLo, hi, lo);
  // h = -(hi + lo) = a eta^2 / 2 >= 0, w = sqrt(h) = |eta| sqrt(a/2).
  double h, hLo;
  TwoSum(-hi, -lo, h, hLo);
  if (!(h >= 0.0)) return false;
  const double eta = std::copysign(std::sqrt(2.0 * (h + hLo) / a), d);
  if (std::fabs(eta) > 0.05) return false;
  const double w = std::sqrt(h);
  double halfErfc = 0.5;
  if (w > 0.0) {
    double w2, w2Lo;
    TwoProduct(w, w, w2, w2Lo);
    const double wLo = (((h - w2) - w2Lo) + hLo) / (2.0 * w);
    halfErfc = 0.5 * ErfcPositive(w, wLo);
  }
  const double series = PolyEta(kTemmeC0, 10, eta) +
                        (PolyEta(kTemmeC1, 8, eta) +
                         PolyEta(kTemmeC2, 6, eta) / a) / a;
  const double r = ExpOfSum(hi, lo) / std::sqrt(kTwoPi * a) * series;
  if (d >= 0.0) {
    upper = halfErfc + r;
    lower = (0.5 - r) + (0.5 - halfErfc);
  } else {
    lower = halfErfc - r;
    upper = (0.5 + r) + (0.5 - halfErfc);
  }
  return true;
}

}  // namespace

double GammaPowerTerm(double a, double x) {
  if (a >= 10.0) {
    // x^a e^-x / Gamma(a) = sqrt(a / 2 pi) exp(a (log(l) - (l - 1)) - corr(a)).
    // x^a e^-x / Gamma(a) = sqrt(a / 2 pi) (x/a)^a e^(a-x) e^-corr(a): with
    // pow and an exact a - x where both factors are in range (the logarithmic
    // form below loses |exponent| * eps).
    double diff, diffLo;
    TwoSum(a, -x, diff, diffLo);
    if (std::fabs(diff) < 700.0) {
      bool ok = false;
      const double power = PowRatio(x, 0.0, 1.0, a, a, ok);
      if (ok) {
        return GammaPowerScaleCached(a) *
               (power * (std::exp(diff) * (1.0 + diffLo)));
      }
    }
    const double e = (x - a) / a;
    if (e >= -0.5 && e <= 0.5) {
      double d, dLo, hi, lo;
      TwoSum(x, -a, d, dLo);
      ScaledLog1pmx(a, d, dLo, hi, lo);
      return std::sqrt(a / kTwoPi) * ExpOfSum(hi, lo - StirlingCorrection(a));
    }
    // Far from the mode, log(x/a) - e directly: 1 + e would have lost the
    // digits of a small x.
    const double logTerm =
        e < -0.5 || e > 1.0 ? std::log(x / a) - e : Log1pmx(e);
    return std::sqrt(a / kTwoPi) *
           std::exp(a * logTerm - StirlingCorrection(a));
  }
  if (x < 700.0) {
    return std::pow(x, a) * std::exp(-x) / GammaSmall(a);
  }
  if (x > 2000.0) return 0.0;
  // exp(-x) underflows: apply it in two halves.
  const double half = std::exp(-0.5 * x);
  return std::pow(x, a) / GammaSmall(a) * half * half;
}

int IncGamma(double a, double x, double& lower, double& upper) {
  if (x <= 0.0) {
    lower = 0.0;
    upper = 1.0;
    return 0;
  }
  if (std::isinf(x)) {
    lower = 1.0;
    upper = 0.0;
    return 0;
  }
  if (IncGammaTemme(a, x, lower, upper)) return 0;
  const int maxIterations = 1000 + static_cast<int>(20.0 * std::sqrt(a));
  if (a <= 1.0 && x <= 1.5) {
    // P = x^a / Gamma(1+a) * J with J = sum (-x)^n a / ((a+n) n!), and
    // Q = [-expm1(a log x) - x^a g] + x^a (1+g) (1-J), g = 1/Gamma(1+a) - 1.
    const double g = RGamma1pm1Unit(a);
    const double xa = std::pow(x, a);
    double oneMinusJ = 0.0;
    double term = 1.0;  // (-x)^n / n!
    for (int n = 1; n < 200; ++n) {
      term *= -x / n;
      const double contribution = term / (a + n);
      oneMinusJ -= contribution;
      if (std::fabs(contribution) <= 1e-17 * std::fabs(oneMinusJ)) break;
    }
    oneMinusJ *= a;
    upper = (-std::expm1(a * std::log(x)) - xa * g) + xa * (1.0 + g) * oneMinusJ;
    lower = xa * (1.0 + g) * (1.0 - oneMinusJ);
    return 0;
  }
  // The series and the continued fractions below are multiplied by the
  // power term x^a e^-x / Gamma(a). When it underflows, so does the tail it
  // scales (the series sum over a and the fraction stay below 1 there): the
  // answer is then 0 and 1 without iterating - and the iterations, long for
  // a large a, could overflow on their own and leave 0 times infinity.
  const double powerTerm = GammaPowerTerm(a, x);
  if (powerTerm == 0.0) {
    const bool upperTail = !(x < a + 1.0);
    lower = upperTail ? 1.0 : 0.0;
    upper = upperTail ? 0.0 : 1.0;
    return 0;
  }
  if (x < a + 1.0) {
    // Series: P = x^a e^-x / Gamma(a+1) * sum x^n / ((a+1)...(a+n)).
    double sum = 1.0;
    double term = 1.0;
    double ap = a;
    int n = 0;
    // Up to a = 100, two terms per step sharing one division: with
    // inv = 1/((ap+1)(ap+2)), the terms are term x (ap+2) inv and term x^2 inv.
    // Above, where the series runs long, one rounded ratio per term keeps the
    // accumulated rounding smaller.
    const double x2 = x * x;
    for (; a <= 100.0 && n < maxIterations; n += 2) {
      const double ap1 = ap + 1.0;
      const double ap2 = ap + 2.0;
      ap = ap2;
      const double inv = 1.0 / (ap1 * ap2);
      const double first = term * x * ap2 * inv;
      term = term * x2 * inv;
      sum += first;
      sum += term;
      if (term <= sum * 5e-17) break;
    }
    for (; a > 100.0 && n < maxIterations; ++n) {
      ap += 1.0;
      term *= x / ap;
      sum += term;
      if (term <= sum * 5e-17) break;
    }
    lower = powerTerm / a * sum;
    upper = 1.0 - lower;
    return n < maxIterations ? 0 : 2;
  }
  if (a <= 100.0) {
    // Continued fraction for Q by its three-term recurrence: convergents
    // B_n / A_n of 1 / (b0 + a1 / (b1 + ...)), rescaled and tested every four
    // steps, so one division serves four steps (Lentz's form below needs two
    // divisions in its dependency chain per step). Falls through to that form
    // if a convergent leaves the safe range.
    double bn = x + 1.0 - a;
    double aPrev = 1.0, bPrev = 0.0;  // A_{n-1}, B_{n-1}
    double aCur = bn, bCur = 1.0;     // A_n, B_n
    double ratio = bCur / aCur;
    int n = 1;
    while (n < maxIterations) {
      for (int k = 0; k < 4; ++k, ++n) {
        const double an = -n * (n - a);
        bn += 2.0;
        const double aNext = bn * aCur + an * aPrev;
        const double bNext = bn * bCur + an * bPrev;
        aPrev = aCur;
        bPrev = bCur;
        aCur = aNext;
        bCur = bNext;
      }
      if (!(std::fabs(aCur) > 1e-290 && std::fabs(aCur) < 1e290)) break;
      const double scale = 1.0 / aCur;
      const double next = bCur * scale;
      aPrev *= scale;
      bPrev *= scale;
      aCur = 1.0;
      bCur = next;
      // Four steps' change within 4e-16, as the per-step 1e-16 test below.
      const bool done = std::fabs(next - ratio) <= 4e-16 * std::fabs(next);
      ratio = next;
      if (done) {
        upper = powerTerm * ratio;
        lower = 1.0 - upper;
        return 0;
      }
    }
  }
  // Continued fraction (modified Lentz) for Q.
  constexpr double kFpMin = 1e-300;
  double b = x + 1.0 - a;
  double c = 1.0 / kFpMin;
  double d = 1.0 / b;
  double h = d;
  int i = 1;
  for (; i < maxIterations; ++i) {
    const double an = -i * (i - a);
    b += 2.0;
    d = an * d + b;
    if (std::fabs(d) < kFpMin) d = kFpMin;
    c = b + an / c;
    if (std::fabs(c) < kFpMin) c = kFpMin;
    d = 1.0 / d;
    const double delta = d * c;
    h *= delta;
    if (std::fabs(delta - 1.0) <= 1e-16) break;
  }
  upper = powerTerm * h;
  lower = 1.0 - upper;
  return i < maxIterations ? 0 : 2;
}

}  // namespace distmath
}  // namespace KXCommon
