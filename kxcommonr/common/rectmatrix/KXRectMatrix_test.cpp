// Tests of KXRectMatrix storage, editing and products. Products are checked
// against plain triple loops: the library accumulates each output in the
// same index order, so the comparison is exact.
#include "kxcommonr/common/rectmatrix/KXRectMatrix.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/testing/BitCheck.h"
#include "kxcommonr/testing/DisplayCapture.h"
#include "kxcommonr/testing/RectMatrixTestUtil.h"

namespace KXCommon {
namespace {

using kxtesting::FromRows;
using kxtesting::RandomMatrix;
using kxtesting::SameBits;

TEST(KXRectMatrixTest, RowMajorLayoutAndRangeChecks) {
  KXRectMatrix m(2, 3);
  for (int q = 0; q < 6; ++q) m.AsVector()[q] = q;
  EXPECT_EQ(m.GetElem(0, 2), 2.0);
  EXPECT_EQ(m.GetElem(1, 0), 3.0);
  const double* column = m.GetColPtr(1);
  ASSERT_NE(column, nullptr);
  EXPECT_EQ(column[0], m.GetElem(0, 1));
  EXPECT_EQ(column[3], m.GetElem(1, 1));
  EXPECT_TRUE(KXMV::IsMissing(m.GetElem(0, 3)));
  EXPECT_TRUE(KXMV::IsMissing(m.GetElem(-1, 0)));
  EXPECT_EQ(m.GetRowPtr(2), nullptr);
  EXPECT_EQ(m.GetColPtr(3), nullptr);
  EXPECT_FALSE(m.SetElem(2, 0, 1.0));
  std::vector<double> out{9.0};
  EXPECT_FALSE(m.GetCol(3, out));
  EXPECT_EQ(out, std::vector<double>{9.0});
  ASSERT_TRUE(m.GetCol(2, out));
  EXPECT_EQ(out, (std::vector<double>{2.0, 5.0}));
  KXRectMatrix negative(-3, 4);
  EXPECT_EQ(negative.GetNRows(), 0);
  EXPECT_TRUE(negative.GetData().empty());
}

TEST(KXRectMatrixTest, ShapeChangesKeepElementsInPlace) {
  KXRectMatrix m = FromRows({{1, 2, 3}, {4, 5, 6}});
  ASSERT_TRUE(m.Resize(3, 2));
  EXPECT_EQ(m.GetData(), (std::vector<double>{1, 2, 4, 5, 0, 0}));
  EXPECT_EQ(m.AddColumn(), 3);
  EXPECT_EQ(m.GetElem(1, 1), 5.0);
  EXPECT_EQ(m.GetElem(1, 2), 0.0);
  EXPECT_EQ(m.AddRow(), 4);
  EXPECT_FALSE(m.Resize(-1, 2));
  EXPECT_EQ(m.GetNRows(), 4);

  std::mt19937_64 gen(7);
  KXRectMatrix r = RandomMatrix(5, 3, gen);
  KXRectMatrix t(r);
  ASSERT_TRUE(t.Transpose());
  ASSERT_EQ(t.GetNRows(), 3);
  for (int i = 0; i < 5; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_EQ(t.GetElem(j, i), r.GetElem(i, j));
  ASSERT_TRUE(t.Transpose());
  EXPECT_EQ(t.GetData(), r.GetData());
  ASSERT_TRUE(t.SetNRowsCols(2, 2));
  EXPECT_EQ(t.GetData(), std::vector<double>(4, 0.0));
}

TEST(KXRectMatrixTest, ColumnAndRowEdits) {
  KXRectMatrix m = FromRows({{3, 0, 4}, {0, 0, 0}, {1e-12, 2, 1}});
  EXPECT_DOUBLE_EQ(m.RowNorm(0), 5.0);
  EXPECT_TRUE(KXMV::IsMissing(m.ColNorm(3)));
  EXPECT_TRUE(m.IsRowZero(1));
  EXPECT_FALSE(m.IsColZero(1));
  EXPECT_FALSE(m.IsRowZero(7));
  ASSERT_TRUE(m.ColClean(0, 1e-9));
  EXPECT_EQ(m.GetElem(2, 0), 0.0);
  EXPECT_EQ(m.FindFirstNonZeroInRow(2, 0.6), 1);
  EXPECT_EQ(m.FindFirstNonZeroInRow(1, 0.0), -1);
  ASSERT_TRUE(m.AddToColumn(1, m, 2, 2.0));
  EXPECT_EQ(m.GetElem(0, 1), 8.0);
  EXPECT_EQ(m.GetElem(2, 1), 4.0);
  EXPECT_FALSE(m.ZeroOutRowPart(0, 2, 1));
  ASSERT_TRUE(m.ZeroOutRowPart(0, 1, 2));
  EXPECT_EQ(m.GetElem(0, 0), 3.0);
  EXPECT_EQ(m.GetElem(0, 2), 0.0);

  KXBitSet cols(3);
  cols.Set(0, true);
  cols.Set(2, true);
  int col = 99;
  EXPECT_TRUE(m.IsRowZeroButOne(0, cols, col));  // column 1 is outside the set
  EXPECT_EQ(col, 0);
  EXPECT_FALSE(m.IsRowZeroButOne(1, cols, col));
  EXPECT_EQ(col, -1);

  KXRectMatrix codes = FromRows({{0.9999999, -1.0000001, 0.5}});
  EXPECT_EQ(codes.CheckForOnes(1e-6), 2);
  EXPECT_EQ(codes.GetData(), (std::vector<double>{1.0, -1.0, 0.5}));
  EXPECT_EQ(codes.CheckForOnes(-1.0), -1);
}

TEST(KXRectMatrixTest, PivotStepClearsThePivotColumn) {
  KXRectMatrix m = FromRows({{1, 2, 3}, {2, -8, 1}, {0, 1, 1}});
  const KXRectMatrix before(m);
  int pivot = -1;
  ASSERT_TRUE(m.ZeroOutPivotRow(1, 1e-12, pivot));
  EXPECT_EQ(pivot, 1);
  EXPECT_EQ(m.GetElem(1, 1), 1.0);
  EXPECT_EQ(m.GetElem(0, 1), 0.0);
  EXPECT_EQ(m.GetElem(2, 1), 0.0);
  // Row 0 is row 0 minus twice the scaled pivot row (a row operation).
  // Every other row lost its pivot-column share of the old pivot row.
  for (int r : {0, 2})
    for (int j = 0; j < 3; ++j) {
      const double share = before.GetElem(r, 1) / before.GetElem(1, 1);
      EXPECT_NEAR(m.GetElem(r, j), before.GetElem(r, j) - share * before.GetElem(1, j), 1e-14);
    }
  KXRectMatrix zero(2, 2);
  EXPECT_FALSE(zero.ZeroOutPivotRow(0, 0.0, pivot));
  EXPECT_EQ(pivot, 1);
}

TEST(KXRectMatrixTest, CopiesExtractionAndExpansion) {
  std::mt19937_64 gen(3);
  KXRectMatrix m = RandomMatrix(4, 3, gen);
  KXRectMatrix cols;
  ASSERT_EQ(m.ExtractColumns({2, 0, 2}, cols), 3);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(cols.GetElem(i, 0), m.GetElem(i, 2));
    EXPECT_EQ(cols.GetElem(i, 1), m.GetElem(i, 0));
  }
  KXRectMatrix untouched(1, 1);
  EXPECT_EQ(m.ExtractRows({0, 4}, untouched), -1);
  EXPECT_EQ(untouched.GetNRows(), 1);

  KXBitSet keep(6);
  keep.Set(1, true);
  keep.Set(2, true);
  keep.Set(4, true);
  keep.Set(5, true);
  KXRectMatrix expanded;
  m.Expand(keep, true, expanded);
  ASSERT_EQ(expanded.GetNRows(), 6);
  EXPECT_TRUE(expanded.IsRowZero(0));
  EXPECT_TRUE(expanded.IsRowZero(3));
  EXPECT_EQ(expanded.GetElem(4, 1), m.GetElem(2, 1));
  EXPECT_EQ(expanded.GetElem(5, 2), m.GetElem(3, 2));

  KXRectMatrix square = RandomMatrix(2, 2, gen);
  KXBitSet where(3);
  where.Set(0, true);
  where.Set(2, true);
  ASSERT_TRUE(square.ExpandSquare(where, expanded));
  EXPECT_EQ(expanded.GetElem(2, 0), square.GetElem(1, 0));
  EXPECT_EQ(expanded.GetElem(1, 1), 0.0);
  EXPECT_FALSE(m.ExpandSquare(keep, expanded));

  KXRectMatrix block;
  ASSERT_TRUE(square.CreateBlockDiagonal(3, block));
  ASSERT_EQ(block.GetNRows(), 6);
  EXPECT_EQ(block.GetElem(5, 4), square.GetElem(1, 0));
  EXPECT_EQ(block.GetElem(5, 0), 0.0);
  EXPECT_FALSE(square.CreateBlockDiagonal(0, block));

  KXRectMatrix shifted;
  ASSERT_TRUE(m.ShiftColumns(2, shifted));
  EXPECT_EQ(shifted.GetNCols(), 5);
  EXPECT_EQ(shifted.GetElem(3, 4), m.GetElem(3, 2));
  EXPECT_TRUE(shifted.IsColZero(1));
  ASSERT_TRUE(m.ShiftRows(1, shifted));
  EXPECT_EQ(shifted.GetElem(4, 0), m.GetElem(3, 0));
  EXPECT_FALSE(m.ShiftRows(-1, shifted));

  KXRectMatrix target(3, 4);
  ASSERT_TRUE(m.CopyColToRow(1, target, 2));
  EXPECT_EQ(target.GetElem(2, 3), m.GetElem(3, 1));
  EXPECT_FALSE(m.CopyColToRow(1, target, 3));
  ASSERT_TRUE(target.CopyRows(target, 2, 1, 0));
  EXPECT_EQ(target.GetElem(0, 3), m.GetElem(3, 1));
  KXRectMatrix wide(4, 5);
  ASSERT_TRUE(wide.CopyColumns(m, 1, 2, 3));
  EXPECT_EQ(wide.GetElem(2, 4), m.GetElem(2, 2));
  EXPECT_FALSE(wide.CopyColumns(m, 2, 2, 0));

  std::vector<double> v(2, 1.0);
  ASSERT_TRUE(m.IncrVecByColumn(0, v, 1, 1, 2.0, false) == false);  // too short
  v.assign(8, 1.0);
  ASSERT_TRUE(m.IncrVecByColumn(0, v, 1, 2, 2.0, false));
  EXPECT_EQ(v[1], 1.0 + 2.0 * m.GetElem(0, 0));
  EXPECT_EQ(v[7], 1.0 + 2.0 * m.GetElem(3, 0));
  EXPECT_EQ(v[2], 1.0);
  ASSERT_TRUE(m.CopyColToVec(2, v, 6));
  EXPECT_EQ(v.size(), 10u);
  EXPECT_EQ(v[9], m.GetElem(3, 2));
}

TEST(KXRectMatrixTest, DisplayTexts) {
  kxtesting::DisplayCapture capture;
  KXRectMatrix m = FromRows({{1.5, 2}, {3, -4}, {5, 6}});
  m.Display();
  m.DisplayF();
  EXPECT_EQ(capture.Text(),
            "\nKXRectMatrixData display start\nThe number of rows = 3\nThe number of columns = 2"
            "\nRow-major data (size = 6)\n  1.5 2 3 -4 5 6\nKXRectMatrixData display end"
            "\nKXRectMatrix full matrix display start\nNumber of rows = 3\nNumber of columns = 2"
            "\nrow 0: \n  1.5 2\nrow 1: \n  3 -4\nrow 2: \n  5 6\nKXRectMatrix display end");
}

// Products against plain loops, exactly, over shapes that include 0 and 1
// and cross the kernels' tile and slab edges.
TEST(KXRectMatrixTest, ProductsMatchPlainLoopsExactly) {
  std::mt19937_64 gen(11);
  const int sizes[] = {0, 1, 2, 7, 9, 17, 33, 260};
  int checked = 0;
  for (int m : sizes)
    for (int k : sizes)
      for (int n : {0, 1, 5, 16, 19}) {
        if (m * k * n > 300000) continue;
        const KXRectMatrix a = RandomMatrix(m, k, gen);
        const KXRectMatrix b = RandomMatrix(k, n, gen);
        KXRectMatrix c;
        ASSERT_TRUE(a.ComputeMatrixProduct(b, c));
        ASSERT_EQ(c.GetNRows(), m);
        ASSERT_EQ(c.GetNCols(), n);
        const KXRectMatrix bt = RandomMatrix(n, k, gen);
        KXRectMatrix d;
        ASSERT_TRUE(a.ComputeProductMatrixTrans(bt, d));
        for (int i = 0; i < m; ++i)
          for (int j = 0; j < n; ++j) {
            double s = 0.0, t = 0.0;
            for (int p = 0; p < k; ++p) {
              s += a.GetElem(i, p) * b.GetElem(p, j);
              t += a.GetElem(i, p) * bt.GetElem(j, p);
            }
            ASSERT_TRUE(SameBits(s, c.GetElem(i, j))) << m << "x" << k << "x" << n;
            ASSERT_TRUE(SameBits(t, d.GetElem(i, j)));
            ++checked;
          }
      }
  EXPECT_GT(checked, 10000);
}

TEST(KXRectMatrixTest, VectorProductsAndDotProducts) {
  std::mt19937_64 gen(5);
  const KXRectMatrix a = RandomMatrix(6, 4, gen);
  const KXRectMatrix b = RandomMatrix(4, 3, gen);
  std::vector<double> v{1.5, -2.0, 0.25, 3.0};
  std::vector<double> rv;
  ASSERT_TRUE(a.ComputeRV(v, rv));
  ASSERT_EQ(rv.size(), 6u);
  std::vector<double> w{1, 2, 3, 4, 5, 6};
  std::vector<double> vr;
  ASSERT_TRUE(a.ComputeVR(w, vr));
  ASSERT_EQ(vr.size(), 4u);
  for (int i = 0; i < 6; ++i) {
    double s = 0.0;
    for (int j = 0; j < 4; ++j) s += a.GetElem(i, j) * v[j];
    EXPECT_EQ(rv[i], s);
  }
  for (int j = 0; j < 4; ++j) {
    double s = 0.0;
    for (int i = 0; i < 6; ++i) s += w[i] * a.GetElem(i, j);
    EXPECT_EQ(vr[j], s);
    EXPECT_NEAR(a.DotProductCol(j, j), a.ColNorm(j) * a.ColNorm(j), 1e-12);
  }
  std::vector<double> keep{42.0};
  EXPECT_FALSE(a.ComputeRV(w, keep));
  EXPECT_FALSE(a.ComputeVR(v, keep));
  EXPECT_EQ(keep, std::vector<double>{42.0});

  KXRectMatrix product;
  ASSERT_TRUE(a.ComputeMatrixProduct(b, product));
  EXPECT_EQ(a.DotProductRowCol(2, b, 1), product.GetElem(2, 1));
  EXPECT_EQ(a.DotProductRowRow(3, a, 5), a.DotProductRows(3, 5));
  EXPECT_EQ(a.DotProductColCol(1, a, 2), a.DotProductCol(1, 2));
  EXPECT_TRUE(KXMV::IsMissing(a.DotProductRowCol(0, a, 0)));  // 4 != 6
  EXPECT_TRUE(KXMV::IsMissing(a.DotProductCol(0, 4)));
  KXRectMatrix untouched(1, 1);
  EXPECT_FALSE(a.ComputeMatrixProduct(a, untouched));
  EXPECT_EQ(untouched.GetNRows(), 1);
  // A matrix whose element vector was resized through AsVector is refused.
  KXRectMatrix broken = RandomMatrix(4, 4, gen);
  broken.AsVector().resize(5);
  EXPECT_FALSE(broken.HasConsistentData());
  EXPECT_FALSE(broken.ComputeMatrixProduct(b, untouched));
  EXPECT_FALSE(a.ComputeProductMatrixTrans(broken, untouched));
  EXPECT_TRUE(KXMV::IsMissing(broken.GetElem(3, 3)));
  EXPECT_FALSE(broken.Transpose());
  EXPECT_EQ(untouched.GetNRows(), 1);
  // The output may be one of the operands.
  KXRectMatrix self(a);
  ASSERT_TRUE(self.ComputeMatrixProduct(b, self));
  EXPECT_EQ(self.GetData(), product.GetData());
}

}  // namespace
}  // namespace KXCommon
