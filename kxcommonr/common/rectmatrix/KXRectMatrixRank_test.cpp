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

using kxtesting::Bits;
using kxtesting::FromRows;
using kxtesting::RandomMatrix;

// A rows x 5 random matrix with column 2 = c0 + a c1 and column 4 = b c3 + c c1.
KXRectMatrix Design(int rows, double a, double b, double c, unsigned seed) {
  std::mt19937_64 gen(seed);
  KXRectMatrix design = RandomMatrix(rows, 5, gen);
  for (int i = 0; i < rows; ++i) {
    design.SetElem(i, 2, design.GetElem(i, 0) + a * design.GetElem(i, 1));
    design.SetElem(i, 4, b * design.GetElem(i, 3) + c * design.GetElem(i, 1));
  }
  return design;
}

TEST(KXRectMatrixRankTest, RedundantColumnsAndRows) {
  // Columns (1, 1), (2, 2), (0, 1): the second is twice the first.
  KXBitSet kept;
  EXPECT_EQ(FromRows({{1, 2, 0}, {1, 2, 1}}).FindRedundancies(1e-6, kept, false), 1);
  EXPECT_EQ(Bits(kept), "101");
  // c2 = c0 + c1, c4 = -3 c3: the earlier columns win, by columns or by
  // rows of the transpose.
  KXRectMatrix design = Design(40, 1.0, -3.0, 0.0, 17);
  EXPECT_EQ(design.FindRedundancies(1e-7, kept, false), 2);
  EXPECT_EQ(Bits(kept), "11010");
  std::vector<int> idx;
  EXPECT_EQ(design.FindNonRedunIndices(1e-7, idx, false), 2);
  EXPECT_EQ(idx, (std::vector<int>{0, 1, 3}));
  KXRectMatrix transposed(design), fullRank;
  ASSERT_TRUE(transposed.Transpose());
  EXPECT_EQ(transposed.FindRedundancies(1e-7, kept, true), 2);
  EXPECT_EQ(Bits(kept), "11010");
  EXPECT_EQ(design.ExtractFullRank(1e-7, fullRank, idx, false), 2);
  ASSERT_EQ(fullRank.GetNCols(), 3);
  EXPECT_EQ(fullRank.GetElem(5, 2), design.GetElem(5, 3));
  EXPECT_EQ(fullRank.FindRedundancies(1e-7, kept, false), 0);

  // Refusals leave their outputs; a zero column is always redundant.
  KXRectMatrix m = FromRows({{1, 0, 2}, {3, 0, 4}});
  KXBitSet one(1);
  idx = {7};
  KXRectMatrix out(1, 1);
  EXPECT_EQ(m.FindRedundancies(-1.0, one, false) + m.ExtractFullRank(-1.0, out, idx, false) +
                m.FindNonRedunIndices(std::nan(""), idx, true),
            -3);
  EXPECT_EQ(one.Size() + out.GetNRows() + idx.size(), 3u);
  EXPECT_EQ(idx, std::vector<int>{7});
  EXPECT_EQ(m.FindRedundancies(0.0, one, false), 1);
  EXPECT_EQ(Bits(one), "101");
  EXPECT_EQ(KXRectMatrix().FindRedundancies(1e-7, kept, false), 0);
}

TEST(KXRectMatrixRankTest, ToleranceAppliesToNorms) {
  // Rows (1, 0) and (1, 1e-4): the second row's residual norm is 1e-4 of
  // its own norm, so it is redundant at 1e-3 and kept at 1e-5.
  KXRectMatrix m = FromRows({{1, 0}, {1, 1e-4}});
  KXBitSet kept;
  EXPECT_EQ(m.FindRedundancies(1e-3, kept, true), 1);
  EXPECT_EQ(Bits(kept), "10");
  EXPECT_EQ(m.FindRedundancies(1e-5, kept, true), 0);
  EXPECT_EQ(Bits(kept), "11");
  // A column near the span of two others flips from kept to redundant as
  // the tolerance passes its residual ratio, from an independent projection.
  std::mt19937_64 gen(5);
  KXRectMatrix design = RandomMatrix(30, 3, gen);
  std::normal_distribution<double> normal;
  for (int i = 0; i < 30; ++i)
    design.SetElem(i, 2, design.GetElem(i, 0) - 0.5 * design.GetElem(i, 1) + 1e-4 * normal(gen));
  KXRectMatrix base, third;
  ASSERT_EQ(design.ExtractColumns({0, 1}, base) + design.ExtractColumns({2}, third), 3);
  KXBitSet bKept, nonZero;
  ASSERT_TRUE(third.ResidOfOrthProjection(base, 0.0, bKept, nonZero));
  const double ratio = third.ColNorm(0) / design.ColNorm(2);
  ASSERT_GT(ratio, 1e-6);
  EXPECT_EQ(design.FindRedundancies(ratio * 1.01, kept, false), 1);
  EXPECT_EQ(design.FindRedundancies(ratio * 0.99, kept, false), 0);
}

TEST(KXRectMatrixRankTest, AddedColumnsAndEstimableFunctions) {
  // c2 = c0 - c1, c4 = 2 c3 + c1. Against the model {c1, c2}: c0 is
  // redundant (c0 = c1 + c2), c3 new, c4 redundant.
  KXRectMatrix design = Design(25, -1.0, 2.0, 1.0, 9);
  KXBitSet model(5), kept;
  model.Set(1, true);
  model.Set(2, true);
  EXPECT_EQ(design.CheckAddColRedundancies(model, kept), 2);
  EXPECT_EQ(Bits(kept), "01110");
  EXPECT_EQ(design.CheckAddColRedundancies(KXBitSet(3), kept), -1);

  // Intercept and three group dummies, 2 cases per group: the last dummy
  // is redundant (it equals the intercept minus the others).
  KXRectMatrix oneWay = FromRows({{1, 1, 0, 0}, {1, 1, 0, 0}, {1, 0, 1, 0},
                                        {1, 0, 1, 0}, {1, 0, 0, 1}, {1, 0, 0, 1}});
  ASSERT_EQ(oneWay.FindRedundancies(1e-7, kept, false), 1);
  EXPECT_TRUE(oneWay.IsEstimable(FromRows({{1, 1, 0, 0}, {0, 1, -1, 0}, {0, 1, 1, -2}, {0, 0, 0, 0}}),
                                 kept, 1e-9));
  for (const KXRectMatrix& notEstimable :
       {FromRows({{0, 1, 0, 0}}), FromRows({{1, 0, 0, 0}}),  // a group effect, the intercept alone
        FromRows({{1, 1, 0, 0}, {0, 0, 1, 0}}), FromRows({{1, 1, 0}})})  // the last: wrong width
    EXPECT_FALSE(oneWay.IsEstimable(notEstimable, kept, 1e-9));
  KXBitSet all(4);  // a full-rank design: everything is estimable
  all.Resize(4, true);
  EXPECT_TRUE(oneWay.IsEstimable(FromRows({{0, 1, 0, 0}}), all, 1e-9));
}

TEST(KXRectMatrixRankTest, LeastSquaresAndProjections) {
  std::mt19937_64 gen(31);
  KXRectMatrix design = RandomMatrix(50, 4, gen);
  const std::vector<double> beta{1.5, -2.0, 0.5, 3.0};
  std::vector<double> y, b, fitted, xtr, untouched{1.0};
  ASSERT_TRUE(design.ComputeRV(beta, y));
  EXPECT_EQ(design.EstimateLinearGI(y, b, 1e-7), 0);
  for (int j = 0; j < 4; ++j) EXPECT_NEAR(b[j], beta[j], 1e-12);
  // A redundant column (= c0 + c3) and noise: its coefficient is 0 and the
  // residual is orthogonal to every column.
  ASSERT_EQ(design.AddColumn(), 5);
  for (int i = 0; i < 50; ++i) design.SetElem(i, 4, design.GetElem(i, 0) + design.GetElem(i, 3));
  std::normal_distribution<double> normal;
  for (double& v : y) v += 0.1 * normal(gen);
  EXPECT_EQ(design.EstimateLinearGI(y, b, 1e-7), 1);
  ASSERT_EQ(b.size(), 5u);
  EXPECT_EQ(b[4], 0.0);
  ASSERT_TRUE(design.ComputeRV(b, fitted));
  for (int i = 0; i < 50; ++i) fitted[i] = y[i] - fitted[i];
  ASSERT_TRUE(design.ComputeVR(fitted, xtr));
  for (double v : xtr) EXPECT_NEAR(v, 0.0, 1e-11);
  EXPECT_EQ(design.EstimateLinearGI(beta, untouched, 1e-7), -1);
  EXPECT_EQ(untouched, std::vector<double>{1.0});

  // The residual of a projection on a rank-2 base is orthogonal to it.
  KXRectMatrix base = RandomMatrix(20, 3, gen);
  for (int i = 0; i < 20; ++i) base.SetElem(i, 2, 2.0 * base.GetElem(i, 0));
  KXRectMatrix a = RandomMatrix(20, 3, gen);
  for (int i = 0; i < 20; ++i) a.SetElem(i, 1, base.GetElem(i, 0) - 4.0 * base.GetElem(i, 1));
  KXBitSet baseKept, nonZero;
  ASSERT_TRUE(a.ResidOfOrthProjection(base, 1e-6, baseKept, nonZero));
  EXPECT_EQ(Bits(baseKept) + Bits(nonZero), "110101");
  EXPECT_TRUE(a.IsColZero(1));
  for (int q = 0; q < 9; ++q) EXPECT_NEAR(a.DotProductColCol(q / 3, base, q % 3), 0.0, 1e-12);
  KXRectMatrix wrongRows = RandomMatrix(5, 2, gen);
  const KXRectMatrix before(wrongRows);
  EXPECT_FALSE(wrongRows.ResidOfOrthProjection(base, 1e-8, baseKept, nonZero));
  EXPECT_EQ(wrongRows.GetData(), before.GetData());
}

TEST(KXRectMatrixRankTest, SquareSolveWithPivoting) {
  std::mt19937_64 gen(44);
  for (int n : {1, 2, 5, 12}) {
    KXRectMatrix a = RandomMatrix(n, n, gen);
    a.SetElem(0, 0, 0.0);  // forces a row exchange; the 1 x 1 zero matrix is singular
    std::vector<double> x0(n), b, x;
    for (int i = 0; i < n; ++i) x0[i] = i + 1.0;
    ASSERT_TRUE(a.ComputeRV(x0, b));
    ASSERT_EQ(a.SolveLinearSquare(b, x, 1e-12), n > 1);
    for (int i = 0; i < n && n > 1; ++i) EXPECT_NEAR(x[i], x0[i], 1e-9);
  }
  std::vector<double> x{5.0};
  EXPECT_FALSE(FromRows({{1, 2}, {2, 4}}).SolveLinearSquare({1, 2}, x, 1e-12) ||
               FromRows({{1, 2, 3}}).SolveLinearSquare({1}, x, 0.0));
  EXPECT_EQ(x, std::vector<double>{5.0});
}

TEST(KXRectMatrixRankTest, RowMultiples) {
  KXRectMatrix m =
      FromRows({{2, 0, -4, 1}, {1, 1, 0, 0}, {-5, 0, 10, -2.5}, {0, 0, 0, 0}, {-5, 1e-20, 10, -2.5}});
  double factor = 99.0;
  EXPECT_TRUE(m.IsERowMultipleOfAnother(2, 0, 1e-12, 1e-12, factor));
  EXPECT_DOUBLE_EQ(factor, -2.5);
  EXPECT_TRUE(m.IsERowMultipleOfAnother(4, 0, 1e-12, 1e-12, factor));  // 1e-20 counts as zero
  factor = 99.0;
  EXPECT_FALSE(m.IsERowMultipleOfAnother(4, 0, 0.0, 1e-12, factor) ||
               m.IsERowMultipleOfAnother(1, 0, 1e-12, 1e-12, factor) ||
               m.IsERowMultipleOfAnother(0, 3, 1e-12, 1e-12, factor));  // zero row k
  EXPECT_EQ(factor, 99.0);
  EXPECT_TRUE(m.IsERowMultipleOfAnother(3, 1, 1e-12, 1e-12, factor));
  EXPECT_EQ(factor, 0.0);
  EXPECT_FALSE(m.IsERowMultipleOfAnother(0, 0, 1e-12, 1e-12, factor));
}

}  // namespace
}  // namespace KXCommon
