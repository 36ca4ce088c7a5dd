// Tests of the KXMathFun vector helpers against a model of their contract:
// the positions a walk visits are stepped out one by one, a walk that leaves
// its vector must give the missing value or change nothing, and every value
// is the plain loop over the visited positions, bit for bit. The packed
// helpers are checked against the full matrix, the interval search against a
// linear scan.
#include "kxcommonr/common/vector/KXMathFun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/vector/Blas1.h"
#include "kxcommonr/testing/BitCheck.h"
#include "kxcommonr/testing/Tolerance.h"

namespace {

using KXCommon::KXMathFun;
using kxtesting::SameBits;
using Vec = std::vector<double>;
using Positions = std::vector<long long>;

const double kMissing = KXCommon::KXMV::Missing();

// The n positions of a walk: from off by inc (from off - (n-1)*inc when
// inc < 0, moving back to off), or by growing steps p_(k+1) = p_k + inc + k.
Positions Walk(int n, int off, int inc, bool growing = false) {
  Positions visited;
  long long p = !growing && inc < 0 ? off - static_cast<long long>(n - 1) * inc : off;
  for (int k = 0; k < n; p += inc + (growing ? k : 0), ++k) visited.push_back(p);
  return visited;
}
bool Inside(const Positions& p, const Vec& x) {
  const long long size = static_cast<long long>(x.size());
  return std::all_of(p.begin(), p.end(), [size](long long q) { return q >= 0 && q < size; });
}

// Walks of up to 37 elements, strides of both signs, starts that put an end
// just inside or just outside a vector of 40: {n, off, inc}.
const int kWalks[][3] = {{0, 0, 1},   {-1, 0, 1},  {1, 0, 1},  {1, 39, -5}, {1, 40, 1},  {1, -1, 1},
                         {2, 1, -1},  {3, 1, 0},   {5, 4, 1},  {8, 3, 5},   {9, 3, 5},   {17, 2, 2},
                         {37, 0, 1},  {37, 3, 1},  {37, 4, 1}, {6, 30, -2}, {7, 30, -2}, {13, 1, 3},
                         {2, 5, -3},  {20, 1, 2},  {12, 7, -3}};

TEST(KXMathFunTest, WalkHelpersFollowTheModel) {
  std::mt19937_64 rng(11);
  for (const auto& [n, off, inc] : kWalks) {
    const Vec x = kxtesting::WideRandomVector(40, rng), y = kxtesting::WideRandomVector(40, rng);
    const Positions px = Walk(n, off, inc), py = Walk(n, 2, 1), backwards = Walk(n, 39 - off, -inc);
    const bool fits = Inside(px, x), forward = n == 1 || inc >= 0;
    double asum = 0, dot = 0, sum = 0;
    Vec walked, added = y, scaled = x, loaded = x;
    for (std::size_t k = 0; fits && k < px.size(); ++k) {
      asum += std::fabs(x[px[k]]);
      dot += x[px[k]] * y[py[k]];
      walked.push_back(x[px[k]]);
      if (Inside(backwards, y)) added[backwards[k]] += 0.3 * x[px[k]];
      if (forward) scaled[px[k]] *= -1.0;
      if (forward) loaded[px[k]] = 5.0;
    }
    const int step = std::max(inc, 0);  // DSum walks from x[0]
    const bool sumFits = (n - 1) * step < 40;
    for (int k = 0; k < n && sumFits; ++k) sum += x[k * step];
    const bool none = n < 1;
    EXPECT_TRUE(SameBits(KXMathFun::DASum(n, x, off, inc), none ? 0 : fits ? asum : kMissing)) << off;
    EXPECT_TRUE(SameBits(KXMathFun::DDot(n, x, off, inc, y, 2, 1), none ? 0 : fits ? dot : kMissing));
    // The norm: the Blas1 kernel over the walk; a longer reverse walk gives 0.
    const double norm =
        none || !forward ? 0 : fits ? KXCommon::Blas1::DNrm2(n, walked.data(), 1) : kMissing;
    EXPECT_TRUE(SameBits(KXMathFun::DNrm2(n, x, off, inc), norm)) << n << " " << off << " " << inc;
    // DSum: a longer reverse walk gives 0.0, a zero stride n x[0].
    const double expectedSum = none || !forward ? 0 : !sumFits ? kMissing : inc == 0 ? n * x[0] : sum;
    EXPECT_TRUE(SameBits(KXMathFun::DSum(n, x, inc), expectedSum)) << n << " " << inc;
    // Updates: a refused call (a walk leaving its vector, a reverse walk of
    // DScal and DLoad) changes nothing; a == 0 and a == 1 change nothing.
    Vec gotAdded = y, gotScaled = x, gotLoaded = x, unchanged = y;
    KXMathFun::Daxpy(n, 0.3, x, off, inc, gotAdded, 39 - off, -inc);
    KXMathFun::Daxpy(n, 0.0, x, off, inc, unchanged, 39 - off, -inc);
    KXMathFun::DScal(n, -1.0, gotScaled, off, inc);
    KXMathFun::DScal(n, 1.0, unchanged, off, inc);
    KXMathFun::DLoad(n, 5.0, gotLoaded, off, inc);
    EXPECT_EQ(gotAdded, added) << n << " " << off << " " << inc;
    EXPECT_EQ(gotScaled, scaled) << n << " " << off << " " << inc;
    EXPECT_EQ(gotLoaded, loaded) << n << " " << off << " " << inc;
    EXPECT_EQ(unchanged, y);
  }
  EXPECT_EQ(KXMathFun::DASum(2, Vec(), 0, 1), 0.0);
  Vec x = {1, -2, 4};
  KXMathFun::DScal(3, 0.5, x, 0, 1);
  EXPECT_EQ(x, (Vec{0.5, -1, 2}));
  const double big = KXMathFun::DNrm2(4, {0, -3e200, 4e200, 0}, 0, 1);
  EXPECT_TRUE(kxtesting::NearRel(big, 5e200, kxtesting::kTight));
}

// The "II" walks, down packed columns of order 7 (column j from
// j*(j+1)/2 + j with inc j+1) and elsewhere; leaving the vector (at either
// end) gives the missing value or no change.
TEST(KXMathFunTest, GrowingWalksFollowTheirSteps) {
  std::mt19937_64 rng(13);
  const int walks[][3] = {{7, 0, 1},  {5, 5, 3},  {1, 27, 7}, {4, 0, 2}, {5, 0, 2},
                          {3, 5, -3}, {4, 5, -3}, {3, 5, -4}, {0, 0, 1}, {3, 14, 5},
                          {6, 2, 2},  {8, 0, 1},  {3, 20, 5}, {3, 30, -4}};
  for (const auto& [n, off, inc] : walks) {
    const Vec x = kxtesting::WideRandomVector(28, rng), y = kxtesting::WideRandomVector(28, rng);
    const Positions p = Walk(n, off, inc, true), q = Walk(n, 0, 1, true);
    Vec filled = x, scaled = x, added = y;
    double dot = 0.0;
    for (std::size_t k = 0; Inside(p, x) && k < p.size(); ++k) {
      filled[p[k]] = 42.0;
      scaled[p[k]] *= -2.0;
      if (Inside(q, x)) added[p[k]] += 0.5 * x[q[k]];
      if (Inside(q, x)) dot += x[q[k]] * y[p[k]];
    }
    Vec gotFilled = x, gotScaled = x, gotAdded = y;
    KXMathFun::IIInit(n, 42.0, gotFilled, off, inc);
    KXMathFun::IIScal(n, -2.0, gotScaled, off, inc);
    KXMathFun::IIAxpy(n, 0.5, x, 0, 1, gotAdded, off, inc);
    EXPECT_EQ(gotFilled, filled) << n << " " << off << " " << inc;
    EXPECT_EQ(gotScaled, scaled) << n << " " << off << " " << inc;
    EXPECT_EQ(gotAdded, added) << n << " " << off << " " << inc;
    const double expected = n < 1 ? 0 : Inside(p, x) && Inside(q, x) ? dot : kMissing;
    EXPECT_TRUE(SameBits(KXMathFun::IIDot(n, x, 0, 1, y, off, inc), expected)) << n << " " << off;
  }
}

// Row products bit for bit and the quadratic form to rounding (summed in
// another order: a few roundings per term of the magnitude sum), against
// the full matrix; then the refusals.
TEST(KXMathFunTest, PackedRowProductsAndQuadraticFormsMatchTheFullMatrix) {
  std::mt19937_64 rng(14);
  for (int n : {1, 2, 5, 12}) {
    const Vec packed = kxtesting::WideRandomVector(n * (n + 1) / 2, rng);
    const Vec x = kxtesting::WideRandomVector(2 * n, rng);
    const auto s = [&packed](int i, int j) {
      return packed[i >= j ? i * (i + 1) / 2 + j : j * (j + 1) / 2 + i];
    };
    long double form = 0, magnitude = 0;
    for (int i = 0; i < n; ++i) {
      double row = 0.0;
      for (int j = 0; j < n; ++j) {
        row += s(i, j) * x[2 * j];
        form += static_cast<long double>(s(i, j)) * x[i] * x[j];
        magnitude += std::fabs(static_cast<long double>(s(i, j)) * x[i] * x[j]);
      }
      EXPECT_TRUE(SameBits(KXMathFun::RVD(packed, n, i, x, 2), row));
    }
    EXPECT_TRUE(kxtesting::NearRel(KXMathFun::VSV(packed, n, x), static_cast<double>(form),
                                   kxtesting::kMedium, static_cast<double>(magnitude)));
  }
  const Vec packed = {1, 2, 3, 4, 5, 6}, x = {1, 1, 1};  // n = 3
  const double cases[][2] = {
      {KXMathFun::RVD(packed, 0, 0, x, 1), kMissing},  {KXMathFun::RVD(packed, 3, 3, x, 1), kMissing},
      {KXMathFun::RVD(packed, 3, -1, x, 1), kMissing}, {KXMathFun::RVD(packed, 4, 0, Vec(4, 1), 1), kMissing},
      {KXMathFun::RVD(packed, 3, 0, x, 2), kMissing},  {KXMathFun::RVD(packed, 3, 0, x, -1), kMissing},
      {KXMathFun::RVD(packed, 3, 1, x, 1), 10.0},      {KXMathFun::RVD(packed, 3, 1, x, 0), 10.0},
      {KXMathFun::VSV(packed, 0, x), 0.0},             {KXMathFun::VSV(packed, -1, x), kMissing},
      {KXMathFun::VSV(Vec(5, 1.0), 3, x), kMissing},   {KXMathFun::VSV(packed, 3, Vec(2, 1)), kMissing},
      {KXMathFun::VSV(packed, 3, x), 1 + 3 + 6 + 2 * (2 + 4 + 5.0)}};
  for (const auto& [got, expected] : cases) EXPECT_TRUE(SameBits(got, expected));
}

TEST(KXMathFunTest, DifferenceNormsAndValidDoubles) {
  const double cases[][2] = {{KXMathFun::VMaxRelDiff({1}, {0}, 0), 1 / 1e-6},
                             {KXMathFun::VMaxRelDiff({1, 3}, {2, 1}, -1), 1.0},
                             {KXMathFun::VMaxRelDiff({1, 3, 100}, {2, 1}, 0.5), 2 / 1.5},
                             {KXMathFun::VMaxRelDiff({}, {1}, 0), 0.0},
                             {KXMathFun::VNrm1Diff({1, -4, 7}, {2, 4}), 8.0},
                             {KXMathFun::VNrm1Diff({1}, {}), 0.0}};
  for (const auto& [got, expected] : cases) {
    EXPECT_TRUE(kxtesting::NearRel(got, expected, kxtesting::kTight));
  }
  const double inf = std::numeric_limits<double>::infinity();
  for (double valid : {kMissing, DBL_MAX, 0.0}) EXPECT_TRUE(KXMathFun::IsValidDouble(valid));
  for (double invalid : {inf, -inf, std::nan("")}) EXPECT_FALSE(KXMathFun::IsValidDouble(invalid));
}

// Against a linear scan of the intervals (v[k-1], v[k]] or [v[k-1], v[k]),
// open below for k == 0, on random cut points and ranges (-2 for a range
// outside the vector or reversed), in doubles and in integers.
TEST(KXMathFunTest, BinSearchAgreesWithALinearScan) {
  std::mt19937_64 rng(15);
  std::uniform_int_distribution<int> cut(0, 20);
  for (int trial = 0; trial < 600; ++trial) {
    std::vector<int> cuts(1 + rng() % 12);
    for (int& c : cuts) c = 2 * cut(rng);
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
    const int size = static_cast<int>(cuts.size()), lo = static_cast<int>(rng() % (size + 2)) - 1;
    const int hi = trial % 5 == 0 ? lo - 1 + static_cast<int>(rng() % (size + 2 - lo)) : size - 1;
    const int x = 2 * cut(rng) + trial % 3 - 2;  // on a cut point or between two
    const Vec doubleCuts(cuts.begin(), cuts.end());
    for (const bool rightOpen : {false, true}) {
      int expected = lo < 0 || lo > hi || hi >= size ? -2 : -1;
      for (int k = hi; expected != -2 && k >= lo; --k) {
        const bool aboveLower = k == 0 || (rightOpen ? x >= cuts[k - 1] : x > cuts[k - 1]);
        if (aboveLower && (rightOpen ? x < cuts[k] : x <= cuts[k])) expected = k;
      }
      EXPECT_EQ(KXMathFun::BinSearch(cuts, lo, hi, x, rightOpen), expected) << x << " " << lo;
      EXPECT_EQ(KXMathFun::BinSearch(doubleCuts, lo, hi, x + 0.0, rightOpen), expected);
    }
  }
}

}  // namespace
