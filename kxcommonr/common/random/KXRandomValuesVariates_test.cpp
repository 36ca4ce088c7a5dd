// Tests of the variates of KXRandomValues.
//   - Golden: every distribution against testdata/random_reference.txt,
//     computed independently (CPython's twister, the published algorithms
//     written out in Python): each value bit for bit and the uniforms each
//     draw consumed, so a change of stream cannot pass silently.
//   - Statistical, with fixed seeds: Kolmogorov-Smirnov tests of 20000
//     draws, each at level 1e-4 (17 tests), and moment checks at 5 standard
//     errors (two-sided 5.7e-7 each, 45 checks). A correct generator on
//     fresh seeds would fail some check with probability below 2e-3 in all.
//   - Edges of the private generators, and degenerate generators, which must
//     end in the missing value rather than loop.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "kxcommonr/common/dist/KXDistFun.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/random/KXRandomValues.h"
#include "kxcommonr/testing/TestData.h"

namespace KXCommon {
namespace internal {
// The private generators, for their edge cases.
struct RandomValuesAccess {
  static double Nor(KXRandomValues& v, double m, double sd) { return v.RVNor(m, sd); }
  static double Exp(KXRandomValues& v, double rate) { return v.RVExp(rate); }
  static double Uni(KXRandomValues& v, double a, double b) { return v.RVUni(a, b); }
  static double Chi(KXRandomValues& v, double df) { return v.RVChi(df); }
  static double Gam(KXRandomValues& v, double a, double rate) { return v.RVGam(a, rate); }
  static double AuxF(double t) { return KXRandomValues::RVAuxF(t); }
};
}  // namespace internal

namespace {

using Access = internal::RandomValuesAccess;
using Vec = std::vector<double>;

// The twister mode of KXURandom through a caller's generator that counts.
struct Counting : KXRandom {
  explicit Counting(unsigned long seed) { twister.Initialize(seed); }
  double GetRandom() override {
    ++count;
    return twister.GetRealOpen();
  }
  KXRandomTwister twister;
  long count = 0;
};

// Draws through a counting generator: the object borrows it.
struct Drawing {
  explicit Drawing(unsigned long seed) : counting(seed), urng(0, true, true, &counting) {
    values.SetURNGPtr(&urng);
  }
  Counting counting;
  KXURandom urng;
  KXRandomValues values;
};

KXSymMatrix Packed(int n, const Vec& lower) {
  KXSymMatrix m(n);
  m.AsVector() = lower;
  return m;
}

// The distributions of the reference file, set as the script describes them.
const std::vector<std::pair<std::string, std::function<bool(KXRandomValues&)>>>& Setters() {
  static const std::vector<std::pair<std::string, std::function<bool(KXRandomValues&)>>> table = {
      {"uniform_2_5", [](KXRandomValues& v) { return v.SetParamUniform(2, 5); }},
      {"normal", [](KXRandomValues& v) { return v.SetParamNormal(); }},
      {"normal_3_4", [](KXRandomValues& v) { return v.SetParamNormal(3, 4); }},
      {"chi_0.2", [](KXRandomValues& v) { return v.SetParamChi(0.2); }},
      {"chi_1", [](KXRandomValues& v) { return v.SetParamChi(1); }},
      {"chi_2", [](KXRandomValues& v) { return v.SetParamChi(2); }},
      {"chi_3", [](KXRandomValues& v) { return v.SetParamChi(3); }},
      {"chi_20", [](KXRandomValues& v) { return v.SetParamChi(20); }},
      {"chi_20000", [](KXRandomValues& v) { return v.SetParamChi(20000); }},
      {"mt_chi_3", [](KXRandomValues& v) { v.SetGammaMethod(KXRandomValues::kGammaMarsagliaTsang); return v.SetParamChi(3); }},
      {"mt_chi_20", [](KXRandomValues& v) { v.SetGammaMethod(KXRandomValues::kGammaMarsagliaTsang); return v.SetParamChi(20); }},
      {"mt_chi_2e+09", [](KXRandomValues& v) { v.SetGammaMethod(KXRandomValues::kGammaMarsagliaTsang); return v.SetParamChi(2e9); }},
      {"uniform_vec", [](KXRandomValues& v) { return v.SetParamUniform({0, -1, 10}, {1, 1, 20}); }},
      {"normal_vec", [](KXRandomValues& v) { return v.SetParamNormal(3); }},
      {"mvn", [](KXRandomValues& v) { return v.SetParamNormal({1, 2, 3}, 1e-12, Packed(3, {4, 1, 2, -0.5, 0.3, 1.5})); }},
      {"mvn_singular", [](KXRandomValues& v) { return v.SetParamNormal({0, 0, 0}, 1e-10, Packed(3, {1, 1, 1, 0, 0, 2})); }},
      {"wishart", [](KXRandomValues& v) { return v.SetParamWishart(3, 5.5); }},
      {"wishart_scale", [](KXRandomValues& v) { return v.SetParamWishart(2, 4, Packed(2, {2, 0.5, 1})); }},
  };
  return table;
}

TEST(KXRandomValuesVariatesTest, EveryDistributionMatchesTheIndependentReference) {
  std::ifstream in(kxtesting::TestDataPath("kxcommonr/common/random/testdata/random_reference.txt"));
  int checked = 0;
  for (std::string line; std::getline(in, line);) {
    std::istringstream fields(line);
    std::string label, colon;
    unsigned long seed;
    int draws, width;
    if (!(fields >> label >> seed >> draws >> width >> colon)) continue;
    const auto setter = std::find_if(Setters().begin(), Setters().end(),
                                     [&](const auto& entry) { return entry.first == label; });
    ASSERT_NE(setter, Setters().end()) << label;
    Drawing d(seed);
    ASSERT_TRUE(setter->second(d.values)) << label;
    for (int k = 0; k < draws; ++k) {
      Vec expected(static_cast<std::size_t>(width)), got;
      long uniforms;
      for (double& x : expected) fields >> x;
      fields >> uniforms;
      const long before = d.counting.count;
      KXSymMatrix matrix;
      if (d.values.IsScalar()) {
        got = {d.values.GetRandom()};
      } else if (d.values.GetDistributionType() == KXRandomValues::kWishart) {
        ASSERT_TRUE(d.values.GetRandom(matrix));
        got = matrix.AsVector();
      } else {
        ASSERT_TRUE(d.values.GetRandom(got));
      }
      ASSERT_EQ(got, expected) << label << " draw " << k;
      ASSERT_EQ(d.counting.count - before, uniforms) << label << " draw " << k;
    }
    ++checked;
  }
  EXPECT_EQ(checked, static_cast<int>(Setters().size()));
}

// The largest gap between the empirical distribution of x and cdf,
// against the Kolmogorov bound of level 1e-4: sqrt(log(2e4) / 2) / sqrt(n).
::testing::AssertionResult KolmogorovSmirnov(Vec x, const std::function<double(double)>& cdf) {
  std::sort(x.begin(), x.end());
  const double n = static_cast<double>(x.size());
  double gap = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double f = cdf(x[i]);
    gap = std::max({gap, f - i / n, (i + 1) / n - f});
  }
  const double bound = std::sqrt(std::log(2e4) / 2.0 / n);
  if (gap <= bound) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "KS distance " << gap << " above " << bound;
}

Vec Scalars(KXRandomValues& v, int n) {
  Vec x(static_cast<std::size_t>(n));
  for (double& xi : x) xi = v.GetRandom();
  return x;
}

TEST(KXRandomValuesVariatesTest, ScalarDrawsPassKolmogorovSmirnov) {
  KXRandomValues v;
  v.SetSeed(101);
  ASSERT_TRUE(v.SetParamUniform(-2, 3));
  EXPECT_TRUE(KolmogorovSmirnov(Scalars(v, 20000), [](double x) { return (x + 2) / 5; }));
  ASSERT_TRUE(v.SetParamNormal());
  EXPECT_TRUE(KolmogorovSmirnov(Scalars(v, 20000), KXDistFun::CdfStdNorm));
  ASSERT_TRUE(v.SetParamNormal(0, 4));  // the argument is a variance: sd 2
  EXPECT_TRUE(KolmogorovSmirnov(Scalars(v, 20000), [](double x) { return KXDistFun::CdfStdNorm(x / 2); }));
  for (const auto method : {KXRandomValues::kGammaFishman, KXRandomValues::kGammaMarsagliaTsang}) {
    v.SetGammaMethod(method);
    for (const double df : {0.2, 1.0, 2.0, 3.0, 7.0, 20.0, 2e4}) {
      if (method == KXRandomValues::kGammaMarsagliaTsang && df <= 2.0) continue;  // same algorithm
      ASSERT_TRUE(v.SetParamChi(df));
      EXPECT_TRUE(KolmogorovSmirnov(Scalars(v, 20000), [df](double x) { return KXDistFun::CdfChi(x, df); }))
          << "df " << df << " method " << method;
    }
  }
}

// |mean - mu| within 5 standard errors.
::testing::AssertionResult NearMean(double mean, double mu, double variance, double n) {
  const double bound = 5.0 * std::sqrt(variance / n);
  if (std::fabs(mean - mu) <= bound) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << mean << " differs from " << mu << " by more than " << bound;
}

// Uniform vectors: component means; multivariate normal: means and every
// covariance; Wishart: every element of the mean df * Scale, each within 5
// standard errors of its sample estimate (Var W_ij = df (S_ij^2 + S_ii S_jj),
// Var of a sample covariance about (C_ij^2 + C_ii C_jj) / n).
TEST(KXRandomValuesVariatesTest, VectorAndMatrixMoments) {
  const int n = 40000;
  KXRandomValues v;
  v.SetSeed(202);
  ASSERT_TRUE(v.SetParamUniform({0, -1, 10}, {1, 3, 10.5}));
  Vec x, sum(3, 0.0);
  for (int k = 0; k < n; ++k) {
    ASSERT_TRUE(v.SetParamUniform({0, -1, 10}, {1, 3, 10.5}) && v.GetRandom(x));
    for (int i = 0; i < 3; ++i) sum[i] += x[i];
  }
  EXPECT_TRUE(NearMean(sum[0] / n, 0.5, 1.0 / 12, n));
  EXPECT_TRUE(NearMean(sum[1] / n, 1.0, 16.0 / 12, n));
  EXPECT_TRUE(NearMean(sum[2] / n, 10.25, 0.25 / 12, n));

  const KXSymMatrix cov = Packed(3, {4, 1, 2, -0.5, 0.3, 1.5});
  const Vec mu = {1, -2, 0.5};
  ASSERT_TRUE(v.SetParamNormal(mu, 1e-12, cov));
  Vec mean(3, 0.0), cross(6, 0.0);
  std::vector<Vec> draws;
  for (int k = 0; k < n; ++k) {
    ASSERT_TRUE(v.GetRandom(x));
    draws.push_back(x);
    for (int i = 0; i < 3; ++i) mean[i] += x[i] / n;
  }
  for (const Vec& d : draws) {
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j <= i; ++j) cross[i * (i + 1) / 2 + j] += (d[i] - mean[i]) * (d[j] - mean[j]) / (n - 1);
    }
  }
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(NearMean(mean[i], mu[i], cov.GetElem(i, i), n)) << i;
    for (int j = 0; j <= i; ++j) {
      const double c = cov.GetElem(i, j);
      EXPECT_TRUE(NearMean(cross[i * (i + 1) / 2 + j], c, c * c + cov.GetElem(i, i) * cov.GetElem(j, j), n))
          << i << "," << j;
    }
  }

  const KXSymMatrix scale = Packed(3, {2, 0.5, 1, -0.3, 0.2, 0.5});
  for (const bool identity : {true, false}) {
    const double df = 6.5;
    ASSERT_TRUE(identity ? v.SetParamWishart(3, df) : v.SetParamWishart(3, df, scale));
    const KXSymMatrix s = identity ? Packed(3, {1, 0, 1, 0, 0, 1}) : scale;
    Vec total(6, 0.0);
    KXSymMatrix w;
    for (int k = 0; k < n / 4; ++k) {
      ASSERT_TRUE(v.GetRandom(w));
      for (int e = 0; e < 6; ++e) total[e] += w.AsVector()[e];
    }
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j <= i; ++j) {
        const double sij = s.GetElem(i, j);
        EXPECT_TRUE(NearMean(total[i * (i + 1) / 2 + j] / (n / 4), df * sij,
                             df * (sij * sij + s.GetElem(i, i) * s.GetElem(j, j)), n / 4))
            << (identity ? "identity " : "scale ") << i << "," << j;
      }
    }
  }
}

TEST(KXRandomValuesVariatesTest, PrivateGeneratorEdges) {
  KXRandomValues v;
  const double missing = KXMV::Missing();
  EXPECT_EQ(Access::Nor(v, 2.5, 0.0), 2.5);
  EXPECT_EQ(Access::Nor(v, 2.5, -1.0), missing);
  EXPECT_EQ(Access::Exp(v, 0.0), missing);
  EXPECT_EQ(Access::Uni(v, 2.0, 1.0), missing);
  EXPECT_EQ(Access::Chi(v, 0.0), missing);
  for (const double a : {0.0, -1.0, std::nan(""), HUGE_VAL}) EXPECT_EQ(Access::Gam(v, a, 1.0), missing) << a;
  EXPECT_EQ(Access::Gam(v, 2.0, 0.0), missing);
  EXPECT_EQ(Access::Gam(v, 2e6, 1.0), missing);  // beyond Fishman's shapes
  v.SetGammaMethod(KXRandomValues::kGammaMarsagliaTsang);
  EXPECT_NEAR(Access::Gam(v, 2e6, 1.0), 2e6, 2e6 * 1e-2);
  // The auxiliary function: 0 at 0, the bare density beyond xi, never below 0.
  EXPECT_EQ(Access::AuxF(0.0), 0.0);
  EXPECT_EQ(Access::AuxF(-3.0), 0.3989422804014327 * std::exp(-4.5));
  for (double t = -2.5; t <= 2.5; t += 0.01) EXPECT_GE(Access::AuxF(t), 0.0) << t;
  EXPECT_GT(Access::AuxF(1.0), 0.0);
}

// A constant generator of 0 (the portable one seeded with 0), of 1 or of
// NaN: every draw ends, the rejection loops with the missing value.
TEST(KXRandomValuesVariatesTest, DegenerateGeneratorsEndInTheMissingValue) {
  struct Constant : KXRandom {
    explicit Constant(double v) : value(v) {}
    double GetRandom() override { return value; }
    double value;
  };
  const double missing = KXMV::Missing();
  KXURandom zero(0, true, false, nullptr);
  Constant one(1.0), nan(std::nan(""));
  KXURandom ones(0, true, true, &one), nans(0, true, true, &nan);
  for (KXURandom* urng : {&zero, &ones, &nans}) {
    KXRandomValues v;
    v.SetURNGPtr(urng);
    for (const double df : {1.0, 3.0}) {
      ASSERT_TRUE(v.SetParamChi(df));
      const double x = v.GetRandom();
      EXPECT_TRUE(x == missing || (urng == &ones && x == HUGE_VAL)) << df << " " << x;
    }
    ASSERT_TRUE(v.SetParamNormal(3));
    Vec out = {7.0};
    const bool drawn = v.GetRandom(out);
    EXPECT_EQ(drawn, urng == &zero || urng == &ones);  // they stay in the first region
    if (!drawn) {
      EXPECT_EQ(out, Vec{7.0});
    }
  }
  KXRandomValues v;
  v.SetURNGPtr(&ones);
  EXPECT_EQ(Access::Exp(v, 1.0), missing);  // U == 1
}

}  // namespace
}  // namespace KXCommon
