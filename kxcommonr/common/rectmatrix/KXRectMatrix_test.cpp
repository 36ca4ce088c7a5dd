// Tests of KXRectMatrix storage, editing and products. Edits are checked on
// small integer matrices against the whole expected element vector;
// products against plain triple loops: the library accumulates each output
// in the same index order, so the comparison is exact.
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
using V = std::vector<double>;

KXBitSet SetOf(int size, std::initializer_list<int> bits) {
  KXBitSet set(size);
  for (int b : bits) set.Set(b, true);
  return set;
}

TEST(KXRectMatrixTest, RowMajorLayoutShapesAndRangeChecks) {
  KXRectMatrix m(2, 3);
  for (int q = 0; q < 6; ++q) m.AsVector()[q] = q;
  EXPECT_EQ(m.GetElem(0, 2) + 10 * m.GetElem(1, 0), 32.0);
  const double* column = m.GetColPtr(1);
  ASSERT_NE(column, nullptr);
  EXPECT_EQ(column[0] + 10 * column[3], 41.0);  // (0, 1) and (1, 1)
  EXPECT_TRUE(KXMV::IsMissing(m.GetElem(0, 3)) && KXMV::IsMissing(m.GetElem(-1, 0)));
  EXPECT_TRUE(m.GetRowPtr(2) == nullptr && m.GetColPtr(3) == nullptr);
  V out{9.0};
  EXPECT_FALSE(m.SetElem(2, 0, 1.0) || m.GetCol(3, out));
  EXPECT_EQ(out, V{9.0});
  ASSERT_TRUE(m.GetCol(2, out));
  EXPECT_EQ(out, (V{2.0, 5.0}));
  EXPECT_EQ(KXRectMatrix(-3, 4).GetNRows(), 0);
  EXPECT_TRUE(KXRectMatrix(-3, 4).GetData().empty());

  m = FromRows({{1, 2, 3}, {4, 5, 6}});
  ASSERT_TRUE(m.Resize(3, 2));
  EXPECT_EQ(m.GetData(), (V{1, 2, 4, 5, 0, 0}));
  EXPECT_EQ(m.AddColumn(), 3);
  EXPECT_EQ(m.AddRow(), 4);
  EXPECT_EQ(m.GetData(), (V{1, 2, 0, 4, 5, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_FALSE(m.Resize(-1, 2));
  EXPECT_EQ(m.GetNRows(), 4);
  std::mt19937_64 gen(7);
  const KXRectMatrix r = RandomMatrix(5, 3, gen);
  KXRectMatrix t(r);
  ASSERT_TRUE(t.Transpose());
  ASSERT_EQ(t.GetNRows(), 3);
  for (int q = 0; q < 15; ++q) EXPECT_EQ(t.GetElem(q % 3, q / 3), r.GetElem(q / 3, q % 3));
  ASSERT_TRUE(t.Transpose());
  EXPECT_EQ(t.GetData(), r.GetData());
  ASSERT_TRUE(t.SetNRowsCols(2, 2));
  EXPECT_EQ(t.GetData(), V(4, 0.0));
}

TEST(KXRectMatrixTest, ColumnAndRowEdits) {
  KXRectMatrix m = FromRows({{3, 0, 4}, {0, 0, 0}, {1e-12, 2, 1}});
  EXPECT_DOUBLE_EQ(m.RowNorm(0), 5.0);
  EXPECT_TRUE(KXMV::IsMissing(m.ColNorm(3)));
  EXPECT_TRUE(m.IsRowZero(1));
  EXPECT_FALSE(m.IsColZero(1) || m.IsRowZero(7));
  ASSERT_TRUE(m.ColClean(0, 1e-9));
  EXPECT_EQ(m.GetElem(2, 0), 0.0);
  EXPECT_EQ(m.FindFirstNonZeroInRow(2, 0.6), 1);
  EXPECT_EQ(m.FindFirstNonZeroInRow(1, 0.0), -1);
  ASSERT_TRUE(m.AddToColumn(1, m, 2, 2.0));
  EXPECT_FALSE(m.ZeroOutRowPart(0, 2, 1));
  ASSERT_TRUE(m.ZeroOutRowPart(0, 1, 2));
  EXPECT_EQ(m.GetData(), (V{3, 0, 0, 0, 0, 0, 0, 4, 1}));
  int col = 99;
  const KXBitSet cols = SetOf(3, {0, 2});
  ASSERT_TRUE(m.SetElem(0, 1, 8.0));
  EXPECT_TRUE(m.IsRowZeroButOne(0, cols, col));  // column 1 is outside the set
  EXPECT_EQ(col, 0);
  EXPECT_FALSE(m.IsRowZeroButOne(1, cols, col));
  EXPECT_EQ(col, -1);

  KXRectMatrix codes = FromRows({{0.9999999, -1.0000001, 0.5}});
  EXPECT_EQ(codes.CheckForOnes(1e-6), 2);
  EXPECT_EQ(codes.GetData(), (V{1.0, -1.0, 0.5}));
  EXPECT_EQ(codes.CheckForOnes(-1.0), -1);

  // A Gauss-Jordan step: the pivot row divided by its largest element, the
  // pivot column cleared from every other row by a row operation.
  KXRectMatrix g = FromRows({{1, 2, 3}, {2, -8, 1}, {0, 1, 1}});
  int pivot = -1;
  ASSERT_TRUE(g.ZeroOutPivotRow(1, 1e-12, pivot));
  EXPECT_EQ(pivot, 1);
  const V expected = {1.5, 0, 3.25, -0.25, 1, -0.125, 0.25, 0, 1.125};
  for (int q = 0; q < 9; ++q) EXPECT_NEAR(g.GetData()[q], expected[q], 1e-15) << q;
  EXPECT_EQ(g.GetElem(0, 1) + g.GetElem(2, 1), 0.0);
  EXPECT_FALSE(KXRectMatrix(2, 2).ZeroOutPivotRow(0, 0.0, pivot));
  EXPECT_EQ(pivot, 1);
}

TEST(KXRectMatrixTest, CopiesExtractionAndExpansion) {
  const KXRectMatrix m = FromRows({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12}});
  KXRectMatrix out, untouched(1, 1);
  ASSERT_EQ(m.ExtractColumns({2, 0, 2}, out), 3);
  EXPECT_EQ(out.GetData(), (V{3, 1, 3, 6, 4, 6, 9, 7, 9, 12, 10, 12}));
  EXPECT_EQ(m.ExtractRows({0, 4}, untouched), -1);
  EXPECT_EQ(untouched.GetNRows(), 1);
  m.Expand(SetOf(6, {1, 2, 4, 5}), true, out);
  EXPECT_EQ(out.GetData(), (V{0, 0, 0, 1, 2, 3, 4, 5, 6, 0, 0, 0, 7, 8, 9, 10, 11, 12}));

  const KXRectMatrix square = FromRows({{1, 2}, {3, 4}});
  ASSERT_TRUE(square.ExpandSquare(SetOf(3, {0, 2}), out));
  EXPECT_EQ(out.GetData(), (V{1, 0, 2, 0, 0, 0, 3, 0, 4}));
  EXPECT_FALSE(m.ExpandSquare(SetOf(6, {1, 2, 4, 5}), out));
  ASSERT_TRUE(square.CreateBlockDiagonal(3, out));
  ASSERT_EQ(out.GetNRows(), 6);
  for (int q = 0; q < 36; ++q) {
    const int i = q / 6, j = q % 6;
    EXPECT_EQ(out.GetElem(i, j), i / 2 == j / 2 ? square.GetElem(i % 2, j % 2) : 0.0);
  }
  EXPECT_FALSE(square.CreateBlockDiagonal(0, out));

  KXRectMatrix source(m);
  ASSERT_TRUE(source.ShiftColumns(2, out));
  EXPECT_EQ(out.GetData(), (V{0, 0, 1, 2, 3, 0, 0, 4, 5, 6, 0, 0, 7, 8, 9, 0, 0, 10, 11, 12}));
  ASSERT_TRUE(source.ShiftRows(1, out));
  EXPECT_EQ(out.GetData(), (V{0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
  EXPECT_FALSE(source.ShiftRows(-1, out));

  KXRectMatrix target(3, 4), wide(4, 5);
  ASSERT_TRUE(m.CopyColToRow(1, target, 2));
  EXPECT_FALSE(m.CopyColToRow(1, target, 3));
  ASSERT_TRUE(target.CopyRows(target, 2, 1, 0));
  EXPECT_EQ(target.GetData(), (V{2, 5, 8, 11, 0, 0, 0, 0, 2, 5, 8, 11}));
  ASSERT_TRUE(wide.CopyColumns(m, 1, 2, 3));
  EXPECT_FALSE(wide.CopyColumns(m, 2, 2, 0));
  EXPECT_EQ(wide.GetData(), (V{0, 0, 0, 2, 3, 0, 0, 0, 5, 6, 0, 0, 0, 8, 9, 0, 0, 0, 11, 12}));

  V v(2, 1.0);
  EXPECT_FALSE(m.IncrVecByColumn(0, v, 1, 1, 2.0, false));  // too short
  v.assign(8, 1.0);
  ASSERT_TRUE(m.IncrVecByColumn(0, v, 1, 2, 2.0, false));
  ASSERT_TRUE(m.CopyColToVec(2, v, 6));  // grows v
  EXPECT_EQ(v, (V{1, 3, 1, 9, 1, 15, 3, 6, 9, 12}));
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
// and cross the kernels' tile and slab edges; the vector products and dot
// products on the same operands.
TEST(KXRectMatrixTest, ProductsMatchPlainLoopsExactly) {
  std::mt19937_64 gen(11);
  const int sizes[] = {0, 1, 2, 7, 9, 17, 33, 260};
  int checked = 0;
  for (int m : sizes)
    for (int k : sizes)
      for (int n : {0, 1, 5, 16, 19}) {
        if (m * k * n > 300000) continue;
        const KXRectMatrix a = RandomMatrix(m, k, gen), b = RandomMatrix(k, n, gen),
                           bt = RandomMatrix(n, k, gen);
        KXRectMatrix c, d;
        ASSERT_TRUE(a.ComputeMatrixProduct(b, c) && a.ComputeProductMatrixTrans(bt, d));
        ASSERT_EQ(c.GetNRows() * 1000 + c.GetNCols(), m * 1000 + n);
        for (int i = 0; i < m; ++i)
          for (int j = 0; j < n; ++j) {
            double s = 0.0, t = 0.0;
            for (int p = 0; p < k; ++p) {
              s += a.GetElem(i, p) * b.GetElem(p, j);
              t += a.GetElem(i, p) * bt.GetElem(j, p);
            }
            ASSERT_TRUE(kxtesting::SameBits(s, c.GetElem(i, j))) << m << "x" << k << "x" << n;
            ASSERT_TRUE(kxtesting::SameBits(t, d.GetElem(i, j)));
            ++checked;
          }
      }
  EXPECT_GT(checked, 10000);

  const KXRectMatrix a = RandomMatrix(6, 4, gen), b = RandomMatrix(4, 3, gen);
  const V v{1.5, -2.0, 0.25, 3.0}, w{1, 2, 3, 4, 5, 6};
  V rv, vr;
  ASSERT_TRUE(a.ComputeRV(v, rv) && a.ComputeVR(w, vr));
  ASSERT_EQ(rv.size() * 10 + vr.size(), 64u);
  V sumRV(6, 0.0), sumVR(4, 0.0);  // the same sums in the same order
  for (int q = 0; q < 24; ++q) sumRV[q / 4] += a.GetElem(q / 4, q % 4) * v[q % 4];
  for (int q = 0; q < 24; ++q) sumVR[q / 6] += w[q % 6] * a.GetElem(q % 6, q / 6);
  EXPECT_EQ(rv, sumRV);
  EXPECT_EQ(vr, sumVR);
  for (int j = 0; j < 4; ++j) EXPECT_NEAR(a.DotProductCol(j, j), a.ColNorm(j) * a.ColNorm(j), 1e-12);
  V keep{42.0};
  EXPECT_FALSE(a.ComputeRV(w, keep) || a.ComputeVR(v, keep));
  EXPECT_EQ(keep, V{42.0});
  KXRectMatrix product, untouched(1, 1);
  ASSERT_TRUE(a.ComputeMatrixProduct(b, product));
  EXPECT_EQ(a.DotProductRowCol(2, b, 1), product.GetElem(2, 1));
  EXPECT_EQ(a.DotProductRowRow(3, a, 5), a.DotProductRows(3, 5));
  EXPECT_EQ(a.DotProductColCol(1, a, 2), a.DotProductCol(1, 2));
  EXPECT_TRUE(KXMV::IsMissing(a.DotProductRowCol(0, a, 0)));  // 4 != 6
  EXPECT_TRUE(KXMV::IsMissing(a.DotProductCol(0, 4)));
  EXPECT_FALSE(a.ComputeMatrixProduct(a, untouched));
  // A matrix whose element vector was resized through AsVector is refused.
  KXRectMatrix broken = RandomMatrix(4, 4, gen);
  broken.AsVector().resize(5);
  EXPECT_FALSE(broken.HasConsistentData() || broken.ComputeMatrixProduct(b, untouched) ||
               a.ComputeProductMatrixTrans(broken, untouched) || broken.Transpose());
  EXPECT_TRUE(KXMV::IsMissing(broken.GetElem(3, 3)));
  EXPECT_EQ(untouched.GetNRows(), 1);
  KXRectMatrix self(a);  // the output may be one of the operands
  ASSERT_TRUE(self.ComputeMatrixProduct(b, self));
  EXPECT_EQ(self.GetData(), product.GetData());
}

}  // namespace
}  // namespace KXCommon
