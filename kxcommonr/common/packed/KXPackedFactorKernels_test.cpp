// Tests of the packed factor kernels: the plain loops against independent
// dense computations in long double, and every fast kernel against its
// plain companion bit for bit on every instruction-set path this processor
// offers, over orders and panel widths that reach every edge of the blocking.
#include "kxcommonr/common/packed/KXPackedFactorKernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "kxcommonr/common/packed/KXPackedLayout.h"
#include "kxcommonr/testing/DenseTestUtil.h"
#include "kxcommonr/testing/Tolerance.h"

namespace KXCommon {
namespace internal {
namespace {

using namespace kxtesting;  // the dense reference helpers and tolerance tiers

// A positive definite matrix, or cross products whose `dependent` rows are
// exact combinations of earlier ones.
Dense MatrixWith(std::size_t n, const std::vector<std::size_t>& dependent, unsigned seed) {
  return dependent.empty() ? RandomSpd(n, seed)
                           : DependentCrossProducts(n, dependent, seed);
}

bool IsDependent(const std::vector<std::size_t>& dependent, std::size_t i) {
  return std::find(dependent.begin(), dependent.end(), i) != dependent.end();
}

TEST(KXPackedFactorKernelsTest, PlainKernelsAgainstDenseProducts) {
  struct Case {
    std::size_t n;
    std::vector<std::size_t> dependent;
  };
  const Case cases[] = {{1, {}}, {6, {}}, {25, {}}, {6, {3}}, {25, {4, 13, 24}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "n=" << c.n << " dependent=" << c.dependent.size());
    const int n = static_cast<int>(c.n);
    const Dense a = MatrixWith(c.n, c.dependent, 3u + n);
    const double scale = MaxAbs(a);
    const std::vector<double> orig = Diagonal(a);
    // Cholesky: L L' = A, dependent rows included; those rows, and only
    // those, are refused, with a zero pivot and a zero column below it.
    std::vector<double> factor = ToPacked(a);
    std::vector<unsigned char> accepted(c.n, 7);
    ASSERT_EQ(PackedCholeskyPlain(factor.data(), n, orig.data(), 1e-9, accepted.data()),
              static_cast<int>(c.dependent.size()));
    const Dense l = FromPacked(factor, c.n, false);
    EXPECT_LE(MaxAbsDiff(Multiply(l, Transpose(l)), a), kMedium * scale);
    for (std::size_t i = 0; i < c.n; ++i) {
      EXPECT_EQ(accepted[i], IsDependent(c.dependent, i) ? 0 : 1) << i;
      if (!IsDependent(c.dependent, i)) continue;
      for (std::size_t r = i; r < c.n; ++r) EXPECT_EQ(l(r, i), 0.0);
    }
    // M M' of the factor rebuilds A.
    std::vector<double> rebuilt = factor;
    PackedLowerLowerTrans(rebuilt.data(), n);
    EXPECT_LE(MaxAbsDiff(FromPacked(rebuilt, c.n, true), a), kMedium * scale);
    // The inverse X of L: L X = I on the accepted rows and columns; the
    // rows and columns of zero pivots are 0.
    std::vector<double> inverse = factor;
    EXPECT_EQ(PackedLowerInversePlain(inverse.data(), n), static_cast<int>(c.dependent.size()));
    const Dense x = FromPacked(inverse, c.n, false);
    const Dense lx = Multiply(l, x);
    for (std::size_t i = 0; i < c.n; ++i)
      for (std::size_t j = 0; j < c.n; ++j) {
        if (IsDependent(c.dependent, i) || IsDependent(c.dependent, j)) {
          EXPECT_EQ(x(i, j), 0.0);
        } else {
          EXPECT_NEAR(lx(i, j), i == j ? 1.0 : 0.0, kMedium);
        }
      }
    // M'M of any lower triangle, here the inverse.
    std::vector<double> product = inverse;
    PackedLowerTransLowerPlain(product.data(), n);
    EXPECT_LE(MaxAbsDiff(FromPacked(product, c.n, true), Multiply(Transpose(x), x)),
              kMedium * std::max(1.0, MaxAbs(Multiply(Transpose(x), x))));
    if (!c.dependent.empty()) continue;
    // Sweeping every row gives minus the inverse; sweeping them all again,
    // in another order, restores the matrix.
    std::vector<double> swept = ToPacked(a);
    for (int k = 0; k < n; ++k) PackedSweepRowPlain(swept.data(), n, k);
    Dense minusInverse = FromPacked(swept, c.n, true);
    for (double& v : minusInverse.a) v = -v;
    EXPECT_LE(MaxAbsDiff(Multiply(a, minusInverse), Identity(c.n)), kMedium);
    for (int k = n - 1; k >= 0; --k) PackedSweepRowPlain(swept.data(), n, k);
    EXPECT_LE(MaxAbsDiff(FromPacked(swept, c.n, true), a), kMedium * scale);
  }
}

// ---------------------------------------------------------------------------
// Fast kernels against the plain loops, bit for bit, on every path the
// machine offers.
// ---------------------------------------------------------------------------

class KernelLevels : public ::testing::Test {
 protected:
  void TearDown() override { SetKernelLevel(-1); }
  std::vector<int> Levels() {
    std::vector<int> levels;
    const int top = SetKernelLevel(-1);
    for (int level = 0; level <= top; ++level) levels.push_back(level);
    return levels;
  }
};

TEST_F(KernelLevels, BlockedCholeskyMatchesPlainBitForBit) {
  struct Case {
    std::size_t n;
    std::vector<std::size_t> dependent;
    int width;  // panel width; 0 selects the default
  };
  const Case cases[] = {{1, {}, 1},          {2, {}, 1},       {7, {3}, 2},          {17, {5, 9}, 3},
                        {31, {5, 29}, 0},     {32, {5, 30}, 0}, {33, {}, 8},          {40, {10, 31}, 7},
                        {47, {5, 45}, 0},     {64, {5, 62}, 0}, {67, {2, 40, 66}, 16}, {100, {50}, 0},
                        {101, {5, 99}, 0},    {131, {}, 0},     {150, {20, 100}, 33}};
  for (int level : Levels()) {
    SetKernelLevel(level);
    for (const Case& c : cases) {
      const int n = static_cast<int>(c.n);
      const Dense a = MatrixWith(c.n, c.dependent, static_cast<unsigned>(c.n));
      const std::vector<double> orig = Diagonal(a);
      std::vector<double> plain = ToPacked(a);
      std::vector<double> fast = plain;
      std::vector<unsigned char> plainOk(c.n), fastOk(c.n);
      const int plainCount = PackedCholeskyPlain(plain.data(), n, orig.data(), 1e-9, plainOk.data());
      const int fastCount =
          PackedCholeskyWithPanel(fast.data(), n, orig.data(), 1e-9, fastOk.data(), c.width);
      EXPECT_EQ(plainCount, static_cast<int>(c.dependent.size())) << "n=" << n;
      EXPECT_EQ(fastCount, plainCount);
      EXPECT_EQ(fastOk, plainOk);
      EXPECT_TRUE(Identical(plain, fast)) << "level " << level << " n=" << n << " width=" << c.width;
      // The entry point picks the plain loop below order 32, the default
      // panel above: the same bits either way.
      std::vector<double> chosen = ToPacked(a);
      EXPECT_EQ(PackedCholesky(chosen.data(), n, orig.data(), 1e-9, fastOk.data()), plainCount);
      EXPECT_TRUE(Identical(plain, chosen));
      // The inverse of the factor (zero pivots included) and its M'M.
      std::vector<double> inverse = plain;
      EXPECT_EQ(PackedLowerInverse(fast.data(), n), PackedLowerInversePlain(inverse.data(), n));
      EXPECT_TRUE(Identical(inverse, fast)) << "inverse, level " << level << " n=" << n;
      PackedLowerTransLowerPlain(inverse.data(), n);
      PackedLowerTransLower(fast.data(), n);
      EXPECT_TRUE(Identical(inverse, fast)) << "M'M, level " << level << " n=" << n;
    }
  }
}

TEST_F(KernelLevels, ChunkedSweepMatchesPlainBitForBit) {
  for (int level : Levels()) {
    SetKernelLevel(level);
    for (int n : {1, 2, 9, 64, 530, 2100}) {
      // Diagonally dominant, so every sweep has a healthy pivot.
      Dense a = RandomSymmetric(n, 7u + n);
      for (int i = 0; i < n; ++i) a(i, i) += n;
      std::vector<double> plain = ToPacked(a);
      std::vector<double> fast = plain;
      // Even k visits the rows upwards, odd k downwards; above 2048 rows
      // the columns go in several chunks.
      const std::vector<int> ks =
          n > 1000 ? std::vector<int>{n - 1, n / 2}
                   : std::vector<int>{0, n / 2, n - 1, n / 3, std::min((n / 3) | 1, n - 1)};
      for (int k : ks) {
        PackedSweepRowPlain(plain.data(), n, k);
        PackedSweepRow(fast.data(), n, k);
      }
      EXPECT_TRUE(Identical(plain, fast)) << "level " << level << " n=" << n;
    }
  }
}

// A pivot rule that accepts a row whose diagonal is above 1e-9 of its
// starting value in magnitude (so the dependent rows of the test matrices
// are refused once the rows they depend on are swept) and logs the
// diagonal and the column sums it was shown, to prove both paths showed it
// the same matrix.
class LoggingRule final : public SweepPivotRule {
 public:
  explicit LoggingRule(std::vector<double> start) : start_(std::move(start)) {}
  bool Accept(int k, const double* diag, const double* column) override {
    double diagSum = 0.0, columnSum = 0.0;
    for (std::size_t i = 0; i < start_.size(); ++i) {
      diagSum += diag[i];
      columnSum += column[i];
    }
    log.insert(log.end(), {static_cast<double>(k), diag[k], diagSum, columnSum});
    return std::fabs(diag[k]) > 1e-9 * start_[k];
  }
  std::vector<double> log;

 private:
  std::vector<double> start_;
};

TEST_F(KernelLevels, BlockedSweepsMatchRowByRowSweepsBitForBit) {
  struct Case {
    int n;
    std::vector<std::size_t> dependent;
    int width;              // block width; 0 selects the default
    std::vector<int> rows;  // empty: every row, upwards
  };
  const Case cases[] = {
      {1, {}, 1, {}},
      {7, {3}, 3, {}},
      {33, {}, 32, {}},                              // one full block and one row
      {40, {10, 31}, 7, {}},
      {67, {2, 40}, 8, {5, 60, 5, 12, 12, 30, 2, 40, 66, 0, 1, 3, 4, 6, 7, 8, 9, 60}},
      {150, {20, 100}, 0, {}},
  };
  for (int level : Levels()) {
    SetKernelLevel(level);
    for (const Case& c : cases) {
      const Dense a = MatrixWith(c.n, c.dependent, 11u + c.n);
      std::vector<int> rows = c.rows;
      if (rows.empty())
        for (int k = 0; k < c.n; ++k) rows.push_back(k);
      // Every row, then every row again (which reverses the first pass).
      std::vector<int> twice = rows;
      twice.insert(twice.end(), rows.begin(), rows.end());
      for (const std::vector<int>* list : {&rows, &twice}) {
        std::vector<double> plain = ToPacked(a), blocked = plain;
        LoggingRule plainRule(Diagonal(a)), blockedRule(Diagonal(a));
        int plainCount = 0;
        std::vector<double> diag(c.n), column(c.n);
        for (int k : *list) {
          for (int i = 0; i < c.n; ++i) {
            diag[i] = plain[KXPacked::Index(i, i)];
            column[i] = plain[KXPacked::SymIndex(i, k)];
          }
          if (!plainRule.Accept(k, diag.data(), column.data())) continue;
          PackedSweepRowPlain(plain.data(), c.n, k);
          ++plainCount;
        }
        const int count = static_cast<int>(list->size());
        EXPECT_EQ(PackedSweepRowsWithBlock(blocked.data(), c.n, list->data(), count, blockedRule,
                                           c.width),
                  plainCount);
        if (c.rows.empty() && list == &rows) {  // the dependent rows refused, the others swept
          EXPECT_EQ(plainCount, c.n - static_cast<int>(c.dependent.size())) << "n=" << c.n;
        }
        EXPECT_TRUE(Identical(plainRule.log, blockedRule.log)) << "level " << level << " n=" << c.n;
        EXPECT_TRUE(Identical(plain, blocked)) << "level " << level << " n=" << c.n;
      }
    }
  }
}

}  // namespace
}  // namespace internal
}  // namespace KXCommon
