// The variate generators of KXRandomValues. Each expression is evaluated in
// the order written (the build never contracts a*b+c), and the reference
// script testdata/make_random_reference.py follows the same order, so the
// draws are reproducible bit for bit.
#include <algorithm>
#include <cmath>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/random/KXRandomValues.h"
#include "kxcommonr/common/random/internal/KXRandomAccess.h"

#if defined(_MSC_VER)
#define KX_RANDOM_NOINLINE __declspec(noinline)
#else
#define KX_RANDOM_NOINLINE __attribute__((noinline))
#endif

namespace KXCommon {

namespace {

// A rejection loop that runs this often has a degenerate generator.
constexpr long kMaxTrials = 1000000;

// Kinderman and Ramage: the constants of the published generator.
constexpr double kXi = 2.216035867166471;
constexpr double kHalfXiSquared = 2.455407482284127;

inline double Signed(double t, double u2, double u3) { return u2 < u3 ? t : -t; }

// One uniform, or two in order, inlined into the variates.
KX_ALWAYS_INLINE double Draw(KXURandom* g) { return internal::URandomAccess::Draw(*g); }
KX_ALWAYS_INLINE void DrawPair(KXURandom* g, double& first, double& second) {
  internal::URandomAccess::DrawPair(*g, first, second);
}

// The auxiliary function of the normal generator (RVAuxF).
double AuxF(double t) {
  if (t == 0.0) return 0.0;
  const double f = 0.3989422804014327 * std::exp(-t * t / 2.0) -
                   0.180025191068563 * std::max(kXi - std::fabs(t), 0.0);
  return std::max(f, 0.0);
}

// The Kinderman-Ramage regions outside the centre, for u1 and the first u2
// already drawn; out of line, so that the centre stays small.
KX_RANDOM_NOINLINE double NormalOutside(KXURandom* g, double u1, double u2) {
  for (long trial = 0; trial < kMaxTrials; ++trial) {
    double u3;
    if (trial == 0) {
      u3 = Draw(g);
    } else {
      DrawPair(g, u2, u3);
    }
    const double lo = std::min(u2, u3), hi = std::max(u2, u3), gap = std::fabs(u2 - u3);
    if (u1 >= 0.973310954173898) {  // the tail beyond xi
      const double t = kHalfXiSquared - std::log(u3);
      if (u2 * u2 * t <= kHalfXiSquared) {
        const double x = std::sqrt(2.0 * t);
        return u1 < 0.986655477086949 ? x : -x;
      }
    } else if (u1 >= 0.958720824790463) {
      const double t = kXi - 0.63083480192196 * lo;
      if (hi <= 0.755591531667601 || 0.034240503750111 * gap <= AuxF(t)) return Signed(t, u2, u3);
    } else if (u1 >= 0.911312780288703) {
      const double t = 0.479727404222441 + 1.10547366102207 * lo;
      if (hi <= 0.87283497667179 || 0.049264496373128 * gap <= AuxF(t)) return Signed(t, u2, u3);
    } else {
      const double t = 0.479727404222441 - 0.59550713801594 * lo;
      if (t >= 0.0 && (hi <= 0.805577924423817 || 0.053377549506886 * gap <= AuxF(t))) {
        return Signed(t, u2, u3);
      }
    }
  }
  return KXMV::Missing();
}

// Kinderman and Ramage's standard normal. Every path draws u1 and then u2
// (the first of a trial's pair); the centre, 88% of the draws, needs no
// more and is inlined where the normal is drawn.
KX_ALWAYS_INLINE double StandardNormal(KXURandom* g) {
  double u1, u2;
  DrawPair(g, u1, u2);
  if (u1 < 0.884070402298758) return kXi * (1.13113163544418 * u1 + u2 - 1.0);
  return NormalOutside(g, u1, u2);
}

}  // namespace

// Here rather than with the other draws, so that the variates inline into it.
double KXRandomValues::GetRandom() {
  if (!fbScalar) return KXMV::Missing();  // the scalar types are 0, 1 and 2
  if (fiType == kUniform) return RVUni(fdA, fdB);
  if (fiType == kNormal) return RVNor(fdMean, fdSD);
  return RVChi(fdChiDF);
}

double KXRandomValues::Uniform() { return internal::URandomAccess::Draw(*fpURNG); }

double KXRandomValues::RVUni(double a, double b) {
  if (b < a) return KXMV::Missing();
  return a + (b - a) * Draw(fpURNG);
}

double KXRandomValues::RVExp(double rate) {
  if (rate <= 0.0) return KXMV::Missing();
  const double u = Draw(fpURNG);
  if (u >= 1.0) return KXMV::Missing();
  return -std::log(1.0 - u) / rate;
}

double KXRandomValues::RVNor(double mean, double sd) {
  if (sd == 0.0) return mean;
  if (sd < 0.0) return KXMV::Missing();
  const double z = StandardNormal(fpURNG);
  if (KXMV::IsMissing(z)) return z;
  return z * sd + mean;
}

double KXRandomValues::RVChi(double df) {
  if (df <= 0.0) return KXMV::Missing();
  return RVGam(df / 2.0, 0.5);
}

double KXRandomValues::RVAuxF(double t) { return AuxF(t); }

double KXRandomValues::RVSNor() { return StandardNormal(fpURNG); }

double KXRandomValues::RVGam(double a, double rate) {
  if (!(a > 0.0 && a < HUGE_VAL && rate > 0.0 && rate < HUGE_VAL)) return KXMV::Missing();
  double x = KXMV::Missing();
  if (a == 1.0) {
    x = RVExp(1.0);
  } else if (a < 1.0) {
    // Ahrens and Dieter's GS.
    const double e = 2.718281828459045;
    const double c = (a + e) / e;
    for (long trial = 0; trial < kMaxTrials; ++trial) {
      const double u = Draw(fpURNG);
      if (u == 0.0) continue;  // drawn again
      const double p = c * u;
      if (p <= 1.0) {
        const double s = std::log(p) / a;  // s <= 0
        const double candidate = s < -708.39 ? 0.0 : std::exp(s);
        if (std::exp(-candidate) >= Draw(fpURNG)) {
          x = candidate;
          break;
        }
      } else {
        const double candidate = -std::log((c - p) / a);
        if (candidate <= 0.0) continue;
        if ((a - 1.0) * std::log(candidate) >= std::log(1.0 - Draw(fpURNG))) {
          x = candidate;
          break;
        }
      }
    }
  } else if (fiGammaMethod == kGammaMarsagliaTsang) {
    x = RVGamMT(a);
  } else if (a <= kMaxFishmanShape) {
    // Fishman: an exponential of mean a, accepted with probability
    // (E e^(1-E))^(a-1).
    for (long trial = 0; trial < kMaxTrials; ++trial) {
      double u1, u2;
      DrawPair(fpURNG, u1, u2);
      const double e = -std::log(1.0 - u1);
      const double l = std::log(1.0 - u2);
      if ((a - 1.0) * (std::log(e) + 1.0 - e) >= l) {
        x = a * e;
        break;
      }
    }
  }
  if (KXMV::IsMissing(x)) return x;
  return x / rate;
}

double KXRandomValues::RVGamMT(double a) {
  const double d = a - 1.0 / 3.0;
  const double c = 1.0 / std::sqrt(9.0 * d);
  for (long trial = 0; trial < kMaxTrials; ++trial) {
    const double z = RVSNor();
    if (KXMV::IsMissing(z)) return z;
    double v = 1.0 + c * z;
    if (v <= 0.0) continue;
    v = v * v * v;
    const double u = Draw(fpURNG);
    const double z2 = z * z;
    if (u < 1.0 - 0.0331 * (z2 * z2) ||
        std::log(u) < 0.5 * z2 + d * (1.0 - v + std::log(v))) {
      return d * v;
    }
  }
  return KXMV::Missing();
}

}  // namespace KXCommon
