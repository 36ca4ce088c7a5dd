#include "kxcommonr/common/symmatrix/KXSymMatrix.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <vector>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/testing/DisplayCapture.h"
#include "kxcommonr/testing/SymMatrixTestUtil.h"

namespace {

using KXCommon::KXBitSet;
using KXCommon::KXMV;
using KXCommon::KXSymMatrix;
using KXCommon::KXSymMatrixData;
using kxtesting::Dense;

TEST(KXSymMatrixStorage, PackedLayoutAndMirroredAccess) {
  KXSymMatrix s(3);
  ASSERT_EQ(s.AsVector().size(), 6u);
  // Lower triangle row by row: (0,0) (1,0) (1,1) (2,0) (2,1) (2,2).
  const int rows[] = {0, 1, 1, 2, 2, 2}, cols[] = {0, 0, 1, 0, 1, 2};
  for (int k = 0; k < 6; ++k) ASSERT_TRUE(s.SetElem(rows[k], cols[k], 10.0 + k));
  for (int k = 0; k < 6; ++k) EXPECT_EQ(s.AsVector()[k], 10.0 + k);
  EXPECT_TRUE(s.SetElem(0, 2, -1.0));
  EXPECT_EQ(s.AsVector()[3], -1.0);
  EXPECT_EQ(s.GetElem(2, 0), -1.0);
  EXPECT_TRUE(s.SetElem(5, 7.0));
  EXPECT_EQ(s.GetElem(2, 2), 7.0);

  // Out of range: missing value on read, false and no change on write.
  const std::vector<double> before = s.AsVector();
  EXPECT_TRUE(KXMV::IsMissing(s.GetElem(3, 0)));
  EXPECT_TRUE(KXMV::IsMissing(s.GetElem(0, -1)));
  EXPECT_FALSE(s.SetElem(-1, 0, 1.0));
  EXPECT_FALSE(s.SetElem(0, 3, 1.0));
  EXPECT_FALSE(s.SetElem(6, 1.0));
  EXPECT_FALSE(s.SetElem(-1, 1.0));
  EXPECT_EQ(s.AsVector(), before);

  // Offsets beyond 32 bits (orders from 65536 up).
  EXPECT_EQ(KXSymMatrixData::PackedIndex(70000, 5), 2450035005u);
  EXPECT_EQ(KXSymMatrixData::PackedSize(2147483647), 2305843008139952128u);
}

TEST(KXSymMatrixStorage, ConstructionAndBlocks) {
  KXSymMatrixData emptyBlocks(0, 5);
  EXPECT_EQ(emptyBlocks.GetNRows(), 0);
  EXPECT_EQ(emptyBlocks.GetNBlocks(), 0);
  EXPECT_EQ(emptyBlocks.GetBlockSize(), 0);
  KXSymMatrix negative(-4);
  EXPECT_EQ(negative.GetNRows(), 0);
  EXPECT_TRUE(negative.IsValidMatrix());

  KXSymMatrix s = kxtesting::ToSym(kxtesting::RandomSymmetric(6, 1));
  EXPECT_FALSE(s.SetNBlocks(4));
  EXPECT_EQ(s.GetNBlocks(), 1);
  EXPECT_EQ(s.GetBlockSize(), 6);
  EXPECT_FALSE(s.SetNBlocks(0));
  ASSERT_TRUE(s.SetNBlocks(3));
  EXPECT_EQ(s.GetBlockSize(), 2);
  // Every (bi, bj, i, j) reads global element (2 bi + i, 2 bj + j).
  for (int bi = 0; bi < 3; ++bi)
    for (int bj = 0; bj < 3; ++bj)
      for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 2; ++j)
          EXPECT_EQ(s.GetElem(bi, bj, i, j), s.GetElem(2 * bi + i, 2 * bj + j));
  EXPECT_EQ(s.GetElem(1, 2, 0, 1), s.GetElem(2, 5));
  EXPECT_TRUE(KXMV::IsMissing(s.GetElem(3, 0, 0, 0)));
  EXPECT_TRUE(KXMV::IsMissing(s.GetElem(0, 0, 0, -1)));

  KXSymMatrix blocked(2, 3);
  EXPECT_EQ(blocked.GetNRows(), 6);
  EXPECT_EQ(blocked.AsVector().size(), 21u);
  KXSymMatrixData data(4);
  KXSymMatrix copy;
  copy.SetData(data);
  EXPECT_EQ(copy.GetNRows(), 4);
  EXPECT_EQ(copy.AsVector(), std::vector<double>(10, 0.0));
}

TEST(KXSymMatrixStorage, RowsRoundTripAgainstDense) {
  for (int n : {1, 2, 5, 9}) {
    const Dense d = kxtesting::RandomSymmetric(n, 10 + n);
    KXSymMatrix s(n);
    std::vector<double> row(n);
    for (int i = n - 1; i >= 0; --i) {  // later rows overwrite columns of earlier ones
      for (int j = 0; j < n; ++j) row[j] = d(i, j);
      ASSERT_TRUE(s.PutRow(i, row));
    }
    EXPECT_EQ(kxtesting::MaxAbsDiff(kxtesting::ToDense(s), d), 0.0) << n;
    std::vector<double> got;
    for (int i = 0; i < n; ++i) {
      ASSERT_TRUE(s.GetRow(i, got));
      for (int j = 0; j < n; ++j) EXPECT_EQ(got[j], d(i, j));
    }
    std::vector<double> diagonal;
    s.GetDiagonal(diagonal);
    ASSERT_EQ(diagonal.size(), static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) EXPECT_EQ(diagonal[i], d(i, i));

    EXPECT_FALSE(s.GetRow(n, got));
    EXPECT_FALSE(s.PutRow(0, std::vector<double>(n - 1, 1.0)));
    EXPECT_FALSE(s.PutRow(-1, row));

    // Row and column edits leave everything else alone.
    Dense expected = d;
    const int k = n / 2;
    for (int j = 0; j < n; ++j) expected(k, j) = expected(j, k) = 2.5;
    ASSERT_TRUE(s.SetRowColToConst(k, 2.5));
    EXPECT_EQ(kxtesting::MaxAbsDiff(kxtesting::ToDense(s), expected), 0.0);
    for (int j = 0; j < n; ++j) expected(k, j) = expected(j, k) = 0.0;
    ASSERT_TRUE(s.ZeroOut(k));
    EXPECT_EQ(kxtesting::MaxAbsDiff(kxtesting::ToDense(s), expected), 0.0);
    EXPECT_FALSE(s.ZeroOut(n));
  }
}

TEST(KXSymMatrixStorage, ReshapingKeepsOrClearsAsDocumented) {
  const Dense d = kxtesting::RandomSymmetric(5, 3);
  KXSymMatrix s = kxtesting::ToSym(d);
  ASSERT_TRUE(s.SetNBlocks(5));
  ASSERT_TRUE(s.Resize(7));
  EXPECT_EQ(s.GetNBlocks(), 1);
  for (int i = 0; i < 7; ++i)
    for (int j = 0; j < 7; ++j)
      EXPECT_EQ(s.GetElem(i, j), i < 5 && j < 5 ? d(i, j) : 0.0);
  ASSERT_TRUE(s.Resize(3));
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_EQ(s.GetElem(i, j), d(i, j));
  ASSERT_TRUE(s.SetNRows(4));
  EXPECT_EQ(s.AsVector(), std::vector<double>(10, 0.0));
  // A resize that cannot be allocated is refused and changes nothing.
  const std::vector<double> zeros = s.AsVector();
  EXPECT_FALSE(s.SetNRows(2147483647));
  EXPECT_FALSE(s.Resize(2147483647));
  EXPECT_EQ(s.GetNRows(), 4);
  EXPECT_EQ(s.AsVector(), zeros);
  EXPECT_FALSE(KXSymMatrix(2147483647).IsValidMatrix());
  EXPECT_FALSE(KXSymMatrix(65536, 65536).IsValidMatrix());
  ASSERT_TRUE(s.SetNRows(-2));
  EXPECT_EQ(s.GetNRows(), 0);
  EXPECT_TRUE(s.AsVector().empty());

  const std::vector<double> v = {1.0, -2.0, 3.0};
  ASSERT_TRUE(s.SetToVV(v));
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_EQ(s.GetElem(i, j), v[i] * v[j]);
}

TEST(KXSymMatrixStorage, SubmatricesAgainstDense) {
  const Dense d = kxtesting::RandomSymmetric(6, 4);
  const KXSymMatrix s = kxtesting::ToSym(d);

  KXSymMatrix lead(9);  // reshaped because its order differs
  s.ExtractFirstNRows(lead);
  ASSERT_EQ(lead.GetNRows(), 5);
  for (int i = 0; i < 5; ++i)
    for (int j = 0; j < 5; ++j) EXPECT_EQ(lead.GetElem(i, j), d(i, j));
  KXSymMatrix one(1), untouched(2);
  untouched.SetElem(0, 0, 3.0);
  one.ExtractFirstNRows(untouched);
  EXPECT_EQ(untouched.GetNRows(), 2);
  EXPECT_EQ(untouched.GetElem(0, 0), 3.0);

  const std::vector<int> idx = {0, 2, 5};
  KXSymMatrix sub;
  ASSERT_TRUE(s.ExtractSubmatrix(idx, sub));
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) EXPECT_EQ(sub.GetElem(r, c), d(idx[r], idx[c]));
  KXSymMatrix keepMe(1);
  keepMe.SetElem(0, 0, 8.0);
  EXPECT_FALSE(s.ExtractSubmatrix({2, 1}, keepMe));
  EXPECT_FALSE(s.ExtractSubmatrix({1, 6}, keepMe));
  EXPECT_FALSE(s.ExtractSubmatrix({-1, 2}, keepMe));
  EXPECT_FALSE(s.ExtractSubmatrix({0, 1, 2, 3, 4, 5, 5}, keepMe));
  EXPECT_EQ(keepMe.GetElem(0, 0), 8.0);

  // Expand places rows 0.. at the set bits, in order, and stops when they
  // run out (bit 7 has no source row 3 in a 3 x 3 matrix).
  KXBitSet keep(8);
  for (int p : {1, 4, 6, 7}) keep.Set(p, true);
  KXSymMatrix expanded;
  sub.Expand(keep, expanded);
  ASSERT_EQ(expanded.GetNRows(), 8);
  const int at[] = {1, 4, 6};
  Dense expected(8);
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) expected(at[r], at[c]) = sub.GetElem(r, c);
  EXPECT_EQ(kxtesting::MaxAbsDiff(kxtesting::ToDense(expanded), expected), 0.0);

  KXSymMatrix target = kxtesting::ToSym(kxtesting::RandomSymmetric(4, 5));
  const KXSymMatrix original = target;
  EXPECT_FALSE(target.ReplaceFirstRows(s, 0));
  EXPECT_FALSE(target.ReplaceFirstRows(sub, 4));  // k beyond src
  EXPECT_FALSE(target.ReplaceFirstRows(s, 5));    // k beyond this matrix
  EXPECT_EQ(target.AsVector(), original.AsVector());
  ASSERT_TRUE(target.ReplaceFirstRows(s, 3));
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j)
      EXPECT_EQ(target.GetElem(i, j), i < 3 && j < 3 ? d(i, j) : original.GetElem(i, j));
}

TEST(KXSymMatrixStorage, WholeMatrixArithmetic) {
  const Dense d = kxtesting::RandomSymmetric(4, 6);
  KXSymMatrix s = kxtesting::ToSym(d);
  const KXSymMatrix x = kxtesting::ToSym(kxtesting::RandomSymmetric(4, 7));
  s.AddToDiagonal(2.0);
  s.MultiplyByNumber(3.0);
  s.ChangeSign();
  ASSERT_TRUE(s.ComputeAXpY(0.5, x));
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j)
      EXPECT_EQ(s.GetElem(i, j),
                -((d(i, j) + (i == j ? 2.0 : 0.0)) * 3.0) + 0.5 * x.GetElem(i, j));
  const std::vector<double> before = s.AsVector();
  EXPECT_FALSE(s.ComputeAXpY(1.0, KXSymMatrix(3)));
  EXPECT_EQ(s.AsVector(), before);

  double max = 0.0, min = 0.0;
  s.MaxMinDiag(max, min);
  double expectMax = -DBL_MAX, expectMin = DBL_MAX;
  for (int i = 0; i < 4; ++i) {
    expectMax = std::max(expectMax, s.GetElem(i, i));
    expectMin = std::min(expectMin, s.GetElem(i, i));
  }
  EXPECT_EQ(max, expectMax);
  EXPECT_EQ(min, expectMin);
  double keepMax = 11.0, keepMin = 12.0;
  KXSymMatrix().MaxMinDiag(keepMax, keepMin);
  EXPECT_EQ(keepMax, 11.0);
  EXPECT_EQ(keepMin, 12.0);
}

TEST(KXSymMatrixStorage, InconsistentDataIsRefusedNotRead) {
  KXSymMatrix s(3);
  s.AsVector().resize(2);  // a caller broke the size through AsVector()
  std::vector<double> row;
  EXPECT_FALSE(s.GetRow(2, row));
  EXPECT_TRUE(KXMV::IsMissing(s.GetElem(2, 2)));
  EXPECT_FALSE(s.SetElem(2, 2, 1.0));
  EXPECT_FALSE(s.PutRow(0, {1, 2, 3}));
  EXPECT_FALSE(s.UpdateXX({1, 2, 3}, 1.0));
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeVSV({1, 2, 3})));
  s.AddToDiagonal(1.0);
  EXPECT_EQ(s.AsVector().size(), 2u);
}

TEST(KXSymMatrixStorage, DisplayTexts) {
  KXSymMatrix s(2);
  s.SetElem(0, 0, 1.0);
  s.SetElem(1, 0, 2.5);
  s.SetElem(1, 1, -3.0);
  kxtesting::DisplayCapture capture;
  s.Display();
  EXPECT_EQ(capture.Text(),
            "\nKXSymMatrixData display start\nThe number of rows = 2\nThe number of blocks = 1"
            "\nThe block size = 2\nLower triangular (size = 3)\n  1 2.5 -3"
            "\nKXSymMatrixData display end");
  capture.Reset();
  s.DisplayF();
  EXPECT_EQ(capture.Text(),
            "\nKXSymMatrix full matrix display start\nNumber of rows = 2"
            "\nrow 0: \n  1 2.5\nrow 1: \n  2.5 -3\nKXSymMatrix display end");
}

}  // namespace
