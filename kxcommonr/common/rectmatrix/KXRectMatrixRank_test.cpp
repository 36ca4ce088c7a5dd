// Tests of the rank and estimability tools of KXRectMatrix on constructed
// matrices whose dependencies are known.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/rectmatrix/KXRectMatrix.h"
#include "kxcommonr/testing/RectMatrixTestUtil.h"

namespace KXCommon {
namespace {

using kxtesting::FromRows;
using kxtesting::RandomMatrix;

std::vector<bool> Bits(const KXBitSet& set) {
  std::vector<bool> bits;
  for (int i = 0; i < set.Size(); ++i) bits.push_back(set.IsIn(i));
  return bits;
}

TEST(KXRectMatrixRankTest, ProportionalAndSummedColumns) {
  // Columns (1, 1), (2, 2), (0, 1): the second is twice the first.
  KXRectMatrix m = FromRows({{1, 2, 0}, {1, 2, 1}});
  KXBitSet kept;
  EXPECT_EQ(m.FindRedundancies(1e-6, kept, false), 1);
  EXPECT_EQ(Bits(kept), (std::vector<bool>{true, false, true}));

  // Five columns of a 40-case design: c2 = c0 + c1, c4 = -3 c3; the
  // earlier columns win.
  std::mt19937_64 gen(17);
  KXRectMatrix design = RandomMatrix(40, 5, gen);
  for (int i = 0; i < 40; ++i) {
    design.SetElem(i, 2, design.GetElem(i, 0) + design.GetElem(i, 1));
    design.SetElem(i, 4, -3.0 * design.GetElem(i, 3));
  }
  EXPECT_EQ(design.FindRedundancies(1e-7, kept, false), 2);
  EXPECT_EQ(Bits(kept), (std::vector<bool>{true, true, false, true, false}));
  std::vector<int> idx;
  EXPECT_EQ(design.FindNonRedunIndices(1e-7, idx, false), 2);
  EXPECT_EQ(idx, (std::vector<int>{0, 1, 3}));

  // By rows on the transpose gives the same answer.
  KXRectMatrix transposed(design);
  ASSERT_TRUE(transposed.Transpose());
  EXPECT_EQ(transposed.FindRedundancies(1e-7, kept, true), 2);
  EXPECT_EQ(Bits(kept), (std::vector<bool>{true, true, false, true, false}));

  KXRectMatrix fullRank;
  EXPECT_EQ(design.ExtractFullRank(1e-7, fullRank, idx, false), 2);
  ASSERT_EQ(fullRank.GetNCols(), 3);
  EXPECT_EQ(fullRank.GetElem(5, 2), design.GetElem(5, 3));
  EXPECT_EQ(fullRank.FindRedundancies(1e-7, kept, false), 0);
}

TEST(KXRectMatrixRankTest, ToleranceAppliesToNorms) {
  // Rows (1, 0) and (1, 1e-4): the second row's residual norm is 1e-4 of
  // its own norm, so it is redundant at 1e-3 and kept at 1e-5.
  KXRectMatrix m = FromRows({{1, 0}, {1, 1e-4}});
  KXBitSet kept;
  EXPECT_EQ(m.FindRedundancies(1e-3, kept, true), 1);
  EXPECT_FALSE(kept.IsIn(1));
  EXPECT_EQ(m.FindRedundancies(1e-5, kept, true), 0);
  EXPECT_TRUE(kept.IsIn(1));

  // A column near the span of two others: its residual norm ratio is
  // about delta; it flips from kept to redundant as the tolerance passes.
  std::mt19937_64 gen(5);
  KXRectMatrix design = RandomMatrix(30, 3, gen);
  const double delta = 1e-4;
  std::vector<double> noise(30);
  std::normal_distribution<double> normal;
  for (double& e : noise) e = normal(gen);
  for (int i = 0; i < 30; ++i)
    design.SetElem(i, 2, design.GetElem(i, 0) - 0.5 * design.GetElem(i, 1) + delta * noise[i]);
  // The exact residual ratio, from an independent projection.
  KXRectMatrix resid(design);
  KXRectMatrix base;
  ASSERT_EQ(design.ExtractColumns({0, 1}, base), 2);
  KXRectMatrix third;
  ASSERT_EQ(design.ExtractColumns({2}, third), 1);
  KXBitSet bKept, nonZero;
  ASSERT_TRUE(third.ResidOfOrthProjection(base, 0.0, bKept, nonZero));
  const double ratio = third.ColNorm(0) / design.ColNorm(2);
  ASSERT_GT(ratio, 1e-6);
  EXPECT_EQ(design.FindRedundancies(ratio * 1.01, kept, false), 1);
  EXPECT_EQ(design.FindRedundancies(ratio * 0.99, kept, false), 0);
}

TEST(KXRectMatrixRankTest, RefusalsAndZeroColumns) {
  KXRectMatrix m = FromRows({{1, 0, 2}, {3, 0, 4}});
  KXBitSet kept(1);
  EXPECT_EQ(m.FindRedundancies(-1.0, kept, false), -1);
  EXPECT_EQ(kept.Size(), 1);
  std::vector<int> idx{7};
  KXRectMatrix out(1, 1);
  EXPECT_EQ(m.ExtractFullRank(-1.0, out, idx, false), -1);
  EXPECT_EQ(idx, std::vector<int>{7});
  EXPECT_EQ(out.GetNRows(), 1);
  EXPECT_EQ(m.FindNonRedunIndices(std::nan(""), idx, true), -1);
  // A zero column is always redundant.
  EXPECT_EQ(m.FindRedundancies(0.0, kept, false), 1);
  EXPECT_EQ(Bits(kept), (std::vector<bool>{true, false, true}));
  KXRectMatrix empty;
  EXPECT_EQ(empty.FindRedundancies(1e-7, kept, false), 0);
}

TEST(KXRectMatrixRankTest, AddedColumnsAgainstAModel) {
  // Columns: c0, c1 random; c2 = c0 - c1; c3 random; c4 = 2 c3 + c1.
  std::mt19937_64 gen(9);
  KXRectMatrix design = RandomMatrix(25, 5, gen);
  for (int i = 0; i < 25; ++i) {
    design.SetElem(i, 2, design.GetElem(i, 0) - design.GetElem(i, 1));
    design.SetElem(i, 4, 2.0 * design.GetElem(i, 3) + design.GetElem(i, 1));
  }
  // Model {c1, c2}: c0 is then redundant (c0 = c1 + c2), c3 new, c4 redundant.
  KXBitSet model(5);
  model.Set(1, true);
  model.Set(2, true);
  KXBitSet kept;
  EXPECT_EQ(design.CheckAddColRedundancies(model, kept), 2);
  EXPECT_EQ(Bits(kept), (std::vector<bool>{false, true, true, true, false}));
  KXBitSet shortModel(3);
  EXPECT_EQ(design.CheckAddColRedundancies(shortModel, kept), -1);
}

TEST(KXRectMatrixRankTest, EstimableFunctionsOfAOneWayDesign) {
  // Intercept and three group dummies, 2 cases per group: the last dummy
  // is redundant (it equals the intercept minus the others).
  KXRectMatrix design = FromRows({{1, 1, 0, 0}, {1, 1, 0, 0}, {1, 0, 1, 0},
                                  {1, 0, 1, 0}, {1, 0, 0, 1}, {1, 0, 0, 1}});
  KXBitSet kept;
  ASSERT_EQ(design.FindRedundancies(1e-7, kept, false), 1);
  const KXRectMatrix estimable = FromRows({{1, 1, 0, 0}, {0, 1, -1, 0}, {0, 1, 1, -2}, {0, 0, 0, 0}});
  EXPECT_TRUE(design.IsEstimable(estimable, kept, 1e-9));
  EXPECT_FALSE(design.IsEstimable(FromRows({{0, 1, 0, 0}}), kept, 1e-9));  // a group effect alone
  EXPECT_FALSE(design.IsEstimable(FromRows({{1, 0, 0, 0}}), kept, 1e-9));  // the intercept alone
  EXPECT_FALSE(design.IsEstimable(FromRows({{1, 1, 0, 0}, {0, 0, 1, 0}}), kept, 1e-9));
  EXPECT_FALSE(design.IsEstimable(FromRows({{1, 1, 0}}), kept, 1e-9));  // wrong width
  // Full-rank design: everything is estimable.
  KXBitSet all(4);
  all.Resize(4, true);
  EXPECT_TRUE(design.IsEstimable(FromRows({{0, 1, 0, 0}}), all, 1e-9));
}

TEST(KXRectMatrixRankTest, GeneralisedInverseSolutionSatisfiesNormalEquations) {
  std::mt19937_64 gen(31);
  KXRectMatrix design = RandomMatrix(50, 4, gen);
  const std::vector<double> beta{1.5, -2.0, 0.5, 3.0};
  std::vector<double> y;
  ASSERT_TRUE(design.ComputeRV(beta, y));
  std::vector<double> b;
  EXPECT_EQ(design.EstimateLinearGI(y, b, 1e-7), 0);
  for (int j = 0; j < 4; ++j) EXPECT_NEAR(b[j], beta[j], 1e-12);

  // Add a redundant column (= c0 + c3) and noise: the redundant coefficient
  // is 0 and the residual is orthogonal to every column.
  ASSERT_EQ(design.AddColumn(), 5);
  for (int i = 0; i < 50; ++i) design.SetElem(i, 4, design.GetElem(i, 0) + design.GetElem(i, 3));
  std::normal_distribution<double> normal;
  for (double& v : y) v += 0.1 * normal(gen);
  EXPECT_EQ(design.EstimateLinearGI(y, b, 1e-7), 1);
  ASSERT_EQ(b.size(), 5u);
  EXPECT_EQ(b[4], 0.0);
  std::vector<double> fitted;
  ASSERT_TRUE(design.ComputeRV(b, fitted));
  for (int i = 0; i < 50; ++i) fitted[i] = y[i] - fitted[i];
  std::vector<double> xtr;
  ASSERT_TRUE(design.ComputeVR(fitted, xtr));
  for (double v : xtr) EXPECT_NEAR(v, 0.0, 1e-11);
  std::vector<double> untouched{1.0};
  EXPECT_EQ(design.EstimateLinearGI(beta, untouched, 1e-7), -1);
  EXPECT_EQ(untouched, std::vector<double>{1.0});
}

TEST(KXRectMatrixRankTest, ResidualOfProjectionIsOrthogonal) {
  std::mt19937_64 gen(12);
  KXRectMatrix base = RandomMatrix(20, 3, gen);
  for (int i = 0; i < 20; ++i) base.SetElem(i, 2, 2.0 * base.GetElem(i, 0));  // rank 2
  KXRectMatrix a = RandomMatrix(20, 3, gen);
  for (int i = 0; i < 20; ++i) a.SetElem(i, 1, base.GetElem(i, 0) - 4.0 * base.GetElem(i, 1));
  KXBitSet baseKept, nonZero;
  ASSERT_TRUE(a.ResidOfOrthProjection(base, 1e-6, baseKept, nonZero));
  EXPECT_EQ(Bits(baseKept), (std::vector<bool>{true, true, false}));
  EXPECT_EQ(Bits(nonZero), (std::vector<bool>{true, false, true}));
  EXPECT_TRUE(a.IsColZero(1));
  for (int c = 0; c < 3; ++c)
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(a.DotProductColCol(c, base, k), 0.0, 1e-12);
  KXRectMatrix wrongRows = RandomMatrix(5, 2, gen);
  const KXRectMatrix before(wrongRows);
  EXPECT_FALSE(wrongRows.ResidOfOrthProjection(base, 1e-8, baseKept, nonZero));
  EXPECT_EQ(wrongRows.GetData(), before.GetData());
}

TEST(KXRectMatrixRankTest, SquareSolveWithPivoting) {
  std::mt19937_64 gen(44);
  for (int n : {1, 2, 5, 12}) {
    KXRectMatrix a = RandomMatrix(n, n, gen);
    a.SetElem(0, 0, 0.0);  // forces a row exchange
    std::vector<double> x0(n);
    for (int i = 0; i < n; ++i) x0[i] = i + 1.0;
    std::vector<double> b;
    ASSERT_TRUE(a.ComputeRV(x0, b));
    std::vector<double> x;
    if (n == 1) {
      EXPECT_FALSE(a.SolveLinearSquare(b, x, 1e-12));  // the 1 x 1 zero matrix
      continue;
    }
    ASSERT_TRUE(a.SolveLinearSquare(b, x, 1e-12));
    for (int i = 0; i < n; ++i) EXPECT_NEAR(x[i], x0[i], 1e-9);
  }
  KXRectMatrix singular = FromRows({{1, 2}, {2, 4}});
  std::vector<double> x{5.0};
  EXPECT_FALSE(singular.SolveLinearSquare({1, 2}, x, 1e-12));
  EXPECT_EQ(x, std::vector<double>{5.0});
  EXPECT_FALSE(FromRows({{1, 2, 3}}).SolveLinearSquare({1}, x, 0.0));
}

TEST(KXRectMatrixRankTest, RowMultiples) {
  KXRectMatrix m = FromRows({{2, 0, -4, 1}, {1, 1, 0, 0}, {-5, 0, 10, -2.5}, {0, 0, 0, 0}, {-5, 1e-20, 10, -2.5}});
  double factor = 99.0;
  EXPECT_TRUE(m.IsERowMultipleOfAnother(2, 0, 1e-12, 1e-12, factor));
  EXPECT_DOUBLE_EQ(factor, -2.5);
  EXPECT_TRUE(m.IsERowMultipleOfAnother(4, 0, 1e-12, 1e-12, factor));  // 1e-20 counts as zero
  EXPECT_FALSE(m.IsERowMultipleOfAnother(4, 0, 0.0, 1e-12, factor));
  factor = 99.0;
  EXPECT_FALSE(m.IsERowMultipleOfAnother(1, 0, 1e-12, 1e-12, factor));
  EXPECT_FALSE(m.IsERowMultipleOfAnother(0, 3, 1e-12, 1e-12, factor));  // zero row k
  EXPECT_EQ(factor, 99.0);
  EXPECT_TRUE(m.IsERowMultipleOfAnother(3, 1, 1e-12, 1e-12, factor));
  EXPECT_EQ(factor, 0.0);
  EXPECT_FALSE(m.IsERowMultipleOfAnother(0, 0, 1e-12, 1e-12, factor));
}

}  // namespace
}  // namespace KXCommon
