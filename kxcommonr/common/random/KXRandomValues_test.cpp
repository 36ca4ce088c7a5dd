// Tests of KXRandomValues.
//   - Interface: what each setter accepts (a refusal changes nothing), the
//     draws each distribution allows, owned and borrowed generators (run
//     under ASan: no leak, no double free), copies, the display.
//   - Golden: every distribution against testdata/random_reference.txt,
//     computed independently (CPython's twister, the published algorithms
//     written out in Python): each value bit for bit and the uniforms each
//     draw consumed, so a change of stream cannot pass silently.
//   - Statistical, with fixed seeds: Kolmogorov-Smirnov tests of 20000
//     draws, each at level 1e-4 (14 tests), and moment checks at 5 standard
//     errors (two-sided 5.7e-7 each, 21 checks). A correct generator on
//     fresh seeds would fail some check with probability below 2e-3 in all.
//   - Edges of the private generators, and degenerate generators, which must
//     end in the missing value rather than loop.
#include "kxcommonr/common/random/KXRandomValues.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "kxcommonr/common/dist/KXDistFun.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/testing/DisplayCapture.h"
#include "kxcommonr/testing/SymMatrixTestUtil.h"
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
const double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();

using kxtesting::SymFromPacked;

std::string Shown(const KXRandomValues& v) {
  kxtesting::DisplayCapture capture;
  v.Display();
  return capture.Text();
}

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

// Every refused call leaves the object as it was (its display, which shows
// every parameter, and its next draws).
TEST(KXRandomValuesTest, SettersRefuseInvalidParametersAndChangeNothing) {
  const KXSymMatrix pd = SymFromPacked(2, {2, 0.5, 1});
  const std::vector<std::function<bool(KXRandomValues&)>> refused = {
      [](KXRandomValues& v) { return v.SetParamUniform(1, 1); },
      [](KXRandomValues& v) { return v.SetParamUniform(2, 1); },
      [](KXRandomValues& v) { return v.SetParamUniform(kNaN, 1); },
      [](KXRandomValues& v) { return v.SetParamUniform(-kInf, 1); },
      [](KXRandomValues& v) { return v.SetParamUniform(-1e308, 1e308); },  // b - a overflows
      [](KXRandomValues& v) { return v.SetParamNormal(0, 0); },
      [](KXRandomValues& v) { return v.SetParamNormal(0, kNaN); },
      [](KXRandomValues& v) { return v.SetParamNormal(kInf, 1); },
      [](KXRandomValues& v) { return v.SetParamChi(0); },
      [](KXRandomValues& v) { return v.SetParamChi(kInf); },
      [](KXRandomValues& v) { return v.SetParamUniform(0); },
      [](KXRandomValues& v) { return v.SetParamNormal(-2); },
      [](KXRandomValues& v) { return v.SetParamUniform(Vec{}, Vec{}); },
      [](KXRandomValues& v) { return v.SetParamUniform(Vec{0, 0}, Vec{1}); },
      [](KXRandomValues& v) { return v.SetParamUniform(Vec{0, 0}, Vec{1, 0}); },
      [](KXRandomValues& v) { return v.SetParamWishart(3, 2.5); },  // df < n
      [](KXRandomValues& v) { return v.SetParamWishart(0, 2); },
      [](KXRandomValues& v) { return v.SetParamWishart(2, kInf); },
      [&](KXRandomValues& v) { return v.SetParamWishart(3, 5, pd); },  // order differs
      [&](KXRandomValues& v) { return v.SetParamNormal({0}, 1e-12, pd); },
      [&](KXRandomValues& v) { return v.SetParamNormal({0, kNaN}, 1e-12, pd); },
      [&](KXRandomValues& v) { return v.SetParamNormal({0, 0}, -1, pd); },
      [&](KXRandomValues& v) { return v.SetParamNormal({0, 0}, 1, pd); },
      [](KXRandomValues& v) { return v.SetParamNormal({0, 0}, 1e-12, SymFromPacked(2, {0, 1, 0})); },
      [](KXRandomValues& v) { return v.SetParamNormal({0, 0}, 1e-12, SymFromPacked(2, {1, 2, 1})); },
      [](KXRandomValues& v) { return v.SetParamNormal({0, 0}, 1e-12, SymFromPacked(2, {-1, 0, 1})); },
      [](KXRandomValues& v) { return v.SetParamNormal({0, 0}, 1e-12, SymFromPacked(2, {1, 1 + 1e-5, 1})); },
      [](KXRandomValues& v) { return v.SetParamNormal({0, 0}, 1e-12, SymFromPacked(2, {1, kInf, 1})); },
      [](KXRandomValues& v) { return v.SetParamWishart(2, 3, SymFromPacked(2, {1, 0, -1})); },
      [](KXRandomValues& v) { return v.SetTolerance(1); },
      [](KXRandomValues& v) { return v.SetTolerance(kNaN); },
  };
  for (std::size_t k = 0; k < refused.size(); ++k) {
    KXRandomValues v, twin;
    for (KXRandomValues* x : {&v, &twin}) ASSERT_TRUE(x->SetParamNormal({1, 2}, 1e-9, pd));
    const std::string before = Shown(v);
    EXPECT_FALSE(refused[k](v)) << "case " << k;
    EXPECT_EQ(Shown(v), before) << "case " << k;
    Vec a, b;
    ASSERT_TRUE(v.GetRandom(a) && twin.GetRandom(b));
    EXPECT_EQ(a, b) << "case " << k;
  }
  // Accepted: a singular covariance within the tolerance, and a covariance
  // whose factor gives it back within sqrt(tol).
  KXRandomValues v;
  EXPECT_TRUE(v.SetParamNormal({0, 0, 0}, 1e-10, SymFromPacked(3, {1, 1, 1, 0, 0, 0})));
  EXPECT_TRUE(v.SetParamNormal({0, 0}, 1e-8, SymFromPacked(2, {1, 1 + 1e-5, 1})));
  EXPECT_TRUE(v.SetParamWishart(2, 2));
  EXPECT_TRUE(v.SetTolerance(0.0));
  EXPECT_EQ(v.GetTolerance(), 0.0);
}

TEST(KXRandomValuesTest, EachDistributionAllowsItsDraws) {
  struct Case {
    std::function<bool(KXRandomValues&)> set;
    int type, dimension;
    bool scalar, standard;
  };
  const std::vector<Case> cases = {
      {[](KXRandomValues& v) { return v.SetParamUniform(); }, 0, 1, true, true},
      {[](KXRandomValues& v) { return v.SetParamUniform(0, 1); }, 0, 1, true, true},
      {[](KXRandomValues& v) { return v.SetParamUniform(0, 2); }, 0, 1, true, false},
      {[](KXRandomValues& v) { return v.SetParamNormal(); }, 1, 1, true, true},
      {[](KXRandomValues& v) { return v.SetParamNormal(0, 1); }, 1, 1, true, false},
      {[](KXRandomValues& v) { return v.SetParamChi(4); }, 2, 1, true, false},
      {[](KXRandomValues& v) { return v.SetParamUniform(4); }, 0, 4, false, true},
      {[](KXRandomValues& v) { return v.SetParamUniform({0, 1}, {1, 2}); }, 0, 2, false, false},
      {[](KXRandomValues& v) { return v.SetParamNormal(3); }, 1, 3, false, true},
      {[](KXRandomValues& v) { return v.SetParamNormal({0, 1}, 0, SymFromPacked(2, {1, 0, 1})); }, 1, 2, false, false},
      {[](KXRandomValues& v) { return v.SetParamWishart(2, 3); }, 3, 2, false, true},
      {[](KXRandomValues& v) { return v.SetParamWishart(2, 3, SymFromPacked(2, {1, 0, 1})); }, 3, 2, false, false},
  };
  for (std::size_t k = 0; k < cases.size(); ++k) {
    const Case& c = cases[k];
    KXRandomValues v;
    ASSERT_TRUE(c.set(v)) << k;
    EXPECT_EQ(v.GetDistributionType(), c.type) << k;
    EXPECT_EQ(v.IsScalar(), c.scalar) << k;
    EXPECT_EQ(v.IsStandard(), c.standard) << k;
    if (!c.scalar) {
      EXPECT_EQ(v.GetDimension(), c.dimension) << k;
    }
    Vec vector = {9.0};
    KXSymMatrix matrix(1);
    const double scalar = v.GetRandom();
    const bool gotVector = v.GetRandom(vector), gotMatrix = v.GetRandom(matrix);
    EXPECT_EQ(!KXMV::IsMissing(scalar), c.scalar) << k;
    EXPECT_EQ(gotVector, !c.scalar && c.type != 3) << k;
    EXPECT_EQ(gotMatrix, c.type == 3) << k;
    EXPECT_EQ(vector.size(), gotVector ? static_cast<std::size_t>(c.dimension) : 1u) << k;
    EXPECT_EQ(matrix.GetNRows(), gotMatrix ? c.dimension : 1) << k;
  }
}

TEST(KXRandomValuesTest, OwnedAndBorrowedGenerators) {
  Counting first(1), second(2);  // the counts show which one drew
  KXURandom* p1 = new KXURandom(0, true, true, &first);  // SetSeed below deletes it
  KXURandom p2(0, true, true, &second);
  KXRandomValues v;
  EXPECT_FALSE(v.SetURNGPtr(nullptr));
  EXPECT_TRUE(v.SetURNGPtr(p1));
  EXPECT_TRUE(v.SetURNGPtr(&p2));  // ignored: the first borrowed one stays
  EXPECT_EQ(v.GetURNGPtr(), p1);
  v.GetRandom();
  EXPECT_EQ(first.count, 1);
  EXPECT_EQ(second.count, 0);
  {
    KXRandomValues copy(v);  // a generator of its own, a copy of p1
    copy.GetRandom();
    EXPECT_NE(copy.GetURNGPtr(), p1);
    EXPECT_EQ(first.count, 2);
  }
  v.SetSeed(99);  // deletes p1; the new generator is not owned, so...
  EXPECT_TRUE(v.SetURNGPtr(&p2));
  EXPECT_NE(v.GetURNGPtr(), &p2);  // ...p2 is still ignored
  KXRandomTwister reference;
  reference.Initialize(99);
  EXPECT_EQ(v.GetRandom(), reference.GetRealOpen());
  v.SetSeed(5);  // deletes the generator the first SetSeed made
  // The destructor deletes the last one: ASan reports any leak.

  KXRandomValues owned, assigned;
  owned.SetSeed(7);
  owned.GetRandom();
  assigned = owned;
  const KXRandomValues& self = assigned;
  assigned = self;  // self-assignment changes nothing
  reference.Initialize(7);
  EXPECT_EQ(assigned.GetRandom(), reference.GetRealOpen());  // restarted from the seed
  EXPECT_TRUE(assigned.SetURNGPtr(&p2));
  EXPECT_EQ(assigned.GetURNGPtr(), &p2);
  assigned = owned;  // drops the borrowed generator without deleting it
  EXPECT_NE(assigned.GetURNGPtr(), &p2);
}

TEST(KXRandomValuesTest, Display) {
  KXRandomValues v;
  v.SetSeed(12);
  ASSERT_TRUE(v.SetParamNormal(2, 0.25));
  EXPECT_EQ(Shown(v),
            "\nKXRandomValues display start\nThe seed = 12\nThe tolerance = 1e-12"
            "\nThe distribution type = 1\nThe dimension = 1\nScalar draw indicator = true"
            "\nStandard distribution indicator = false\nOwned generator indicator = true"
            "\nThe gamma method = 0\nMean = 2\nVariance = 0.25\nStandard deviation = 0.5"
            "\nKXURandom display start\nThe seed = 12\nPortable RNG indicator = true"
            "\nMersenne Twister RNG indicator = true\nKXURandom display end"
            "\nKXRandomValues display end");
  // The parameters each distribution shows.
  const std::vector<std::pair<std::function<bool(KXRandomValues&)>, std::string>> shown = {
      {[](KXRandomValues& x) { return x.SetParamUniform(2, 3); }, "\nLower bound = 2\nUpper bound = 3\n"},
      {[](KXRandomValues& x) { return x.SetParamUniform(Vec{0}, Vec{2}); }, "\nUpper bound (size = 1)\n  2\n"},
      {[](KXRandomValues& x) { return x.SetParamNormal({5}, 0, SymFromPacked(1, {2})); }, "\nMean (size = 1)\n  5\nVariance\n"},
      {[](KXRandomValues& x) { return x.SetParamChi(4); }, "\nDegrees of freedom = 4\n"},
      {[](KXRandomValues& x) { return x.SetParamWishart(2, 3, SymFromPacked(2, {1, 0.5, 2})); },
       "\nDegrees of freedom = 3\nScale\nKXSymMatrixData display start"}};
  for (const auto& entry : shown) {
    ASSERT_TRUE(entry.first(v));
    EXPECT_NE(Shown(v).find(entry.second), std::string::npos) << entry.second;
  }
}

// Sets the distribution of a reference-file label as the script describes
// it: chi_DF and mt_chi_DF (Marsaglia-Tsang) by their df, the rest by name.
bool SetByLabel(KXRandomValues& v, const std::string& label) {
  const bool mt = label.rfind("mt_", 0) == 0;
  if (mt) v.SetGammaMethod(KXRandomValues::kGammaMarsagliaTsang);
  if (label.rfind(mt ? "mt_chi_" : "chi_", 0) == 0) return v.SetParamChi(std::stod(label.substr(mt ? 7 : 4)));
  if (label == "uniform_2_5") return v.SetParamUniform(2, 5);
  if (label == "normal") return v.SetParamNormal();
  if (label == "normal_3_4") return v.SetParamNormal(3, 4);
  if (label == "uniform_vec") return v.SetParamUniform({0, -1, 10}, {1, 1, 20});
  if (label == "normal_vec") return v.SetParamNormal(3);
  if (label == "mvn") return v.SetParamNormal({1, 2, 3}, 1e-12, SymFromPacked(3, {4, 1, 2, -0.5, 0.3, 1.5}));
  if (label == "mvn_singular") return v.SetParamNormal({0, 0, 0}, 1e-10, SymFromPacked(3, {1, 1, 1, 0, 0, 2}));
  if (label == "wishart") return v.SetParamWishart(3, 5.5);
  if (label == "wishart_scale") return v.SetParamWishart(2, 4, SymFromPacked(2, {2, 0.5, 1}));
  return false;
}

TEST(KXRandomValuesTest, EveryDistributionMatchesTheIndependentReference) {
  std::ifstream in(kxtesting::TestDataPath("kxcommonr/common/random/testdata/random_reference.txt"));
  int checked = 0;
  for (std::string line; std::getline(in, line);) {
    std::istringstream fields(line);
    std::string label, colon;
    unsigned long seed;
    int draws, width;
    if (!(fields >> label >> seed >> draws >> width >> colon)) continue;
    Drawing d(seed);
    ASSERT_TRUE(SetByLabel(d.values, label)) << label;
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
  EXPECT_EQ(checked, 18);
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

TEST(KXRandomValuesTest, ScalarDrawsPassKolmogorovSmirnov) {
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

// Multivariate normal: means and every covariance; Wishart: every element
// of the mean df * Scale, each within 5 standard errors of its sample
// estimate (Var W_ij = df (S_ij^2 + S_ii S_jj),
// Var of a sample covariance about (C_ij^2 + C_ii C_jj) / n).
TEST(KXRandomValuesTest, VectorAndMatrixMoments) {
  const int n = 40000;
  KXRandomValues v;
  v.SetSeed(202);
  Vec x;
  const KXSymMatrix cov = SymFromPacked(3, {4, 1, 2, -0.5, 0.3, 1.5});
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

  const KXSymMatrix scale = SymFromPacked(3, {2, 0.5, 1, -0.3, 0.2, 0.5});
  for (const bool identity : {true, false}) {
    const double df = 6.5;
    ASSERT_TRUE(identity ? v.SetParamWishart(3, df) : v.SetParamWishart(3, df, scale));
    const KXSymMatrix s = identity ? SymFromPacked(3, {1, 0, 1, 0, 0, 1}) : scale;
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

TEST(KXRandomValuesTest, PrivateGeneratorEdges) {
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
TEST(KXRandomValuesTest, DegenerateGeneratorsEndInTheMissingValue) {
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
