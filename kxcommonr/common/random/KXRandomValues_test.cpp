// Tests of the interface of KXRandomValues: the setters (what each accepts,
// and that a refusal changes nothing), the draws each distribution allows,
// the ownership of generators (run under ASan: no leak, no double free),
// copies, and the display.
#include "kxcommonr/common/random/KXRandomValues.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/testing/DisplayCapture.h"

namespace KXCommon {
namespace {

using Vec = std::vector<double>;
const double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();

KXSymMatrix Packed(int n, const Vec& lower) {
  KXSymMatrix m(n);
  m.AsVector() = lower;
  return m;
}

std::string Shown(const KXRandomValues& v) {
  kxtesting::DisplayCapture capture;
  v.Display();
  return capture.Text();
}

// Every refused call leaves the object as it was (its display, which shows
// every parameter, and its next draws).
TEST(KXRandomValuesTest, SettersRefuseInvalidParametersAndChangeNothing) {
  const KXSymMatrix pd = Packed(2, {2, 0.5, 1});
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
      [](KXRandomValues& v) { return v.SetParamNormal({0, 0}, 1e-12, Packed(2, {0, 1, 0})); },
      [](KXRandomValues& v) { return v.SetParamNormal({0, 0}, 1e-12, Packed(2, {1, 2, 1})); },
      [](KXRandomValues& v) { return v.SetParamNormal({0, 0}, 1e-12, Packed(2, {-1, 0, 1})); },
      [](KXRandomValues& v) { return v.SetParamNormal({0, 0}, 1e-12, Packed(2, {1, 1 + 1e-5, 1})); },
      [](KXRandomValues& v) { return v.SetParamNormal({0, 0}, 1e-12, Packed(2, {1, kInf, 1})); },
      [](KXRandomValues& v) { return v.SetParamWishart(2, 3, Packed(2, {1, 0, -1})); },
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
  EXPECT_TRUE(v.SetParamNormal({0, 0, 0}, 1e-10, Packed(3, {1, 1, 1, 0, 0, 0})));
  EXPECT_TRUE(v.SetParamNormal({0, 0}, 1e-8, Packed(2, {1, 1 + 1e-5, 1})));
  EXPECT_TRUE(v.SetParamWishart(2, 2));
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
      {[](KXRandomValues& v) { return v.SetParamNormal({0, 1}, 0, Packed(2, {1, 0, 1})); }, 1, 2, false, false},
      {[](KXRandomValues& v) { return v.SetParamWishart(2, 3); }, 3, 2, false, true},
      {[](KXRandomValues& v) { return v.SetParamWishart(2, 3, Packed(2, {1, 0, 1})); }, 3, 2, false, false},
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

// A counting generator shows which generator a draw came from.
struct Counting : KXRandom {
  double GetRandom() override { return ++count / 1000.0; }
  int count = 0;
};

TEST(KXRandomValuesTest, OwnedAndBorrowedGenerators) {
  Counting first, second;
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
  ASSERT_TRUE(v.SetParamWishart(2, 3, Packed(2, {1, 0.5, 2})));
  const std::string text = Shown(v);
  EXPECT_NE(text.find("\nDegrees of freedom = 3\nScale\nKXSymMatrixData display start"), std::string::npos);
}

}  // namespace
}  // namespace KXCommon
