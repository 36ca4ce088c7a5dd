// Tests of the storage family of KXSymMatrix (KXSymMatrixData.cpp,
// KXSymMatrix.cpp): the packed layout seen through the accessors, every
// edit against the same edit of a dense copy, shape changes, submatrices,
// refusals and the display texts.
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
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
using namespace kxtesting;  // the dense reference helpers and tolerance tiers

TEST(KXSymMatrixStorage, PackedLayoutAndMirroredAccess) {
  KXSymMatrix s(3);
  ASSERT_EQ(s.AsVector().size(), 6u);
  // Lower triangle row by row: (0,0) (1,0) (1,1) (2,0) (2,1) (2,2); the
  // upper triangle mirrors it.
  const int rows[] = {0, 1, 1, 2, 2, 2}, cols[] = {0, 0, 1, 0, 1, 2};
  for (int k = 0; k < 6; ++k) ASSERT_TRUE(s.SetElem(cols[k], rows[k], 10.0 + k));
  for (int k = 0; k < 6; ++k) EXPECT_EQ(s.AsVector()[k], 10.0 + k);
  EXPECT_EQ(s.GetElem(0, 2), 13.0);
  EXPECT_TRUE(s.SetElem(5, 7.0));
  EXPECT_EQ(s.GetElem(2, 2), 7.0);
  // Out of range: missing value on read, false and no change on write.
  const std::vector<double> before = s.AsVector();
  for (int bad : {-1, 3}) {
    EXPECT_TRUE(KXMV::IsMissing(s.GetElem(bad, 0)) && KXMV::IsMissing(s.GetElem(0, bad)));
    EXPECT_FALSE(s.SetElem(bad, 0, 1.0) || s.SetElem(0, bad, 1.0));
  }
  for (int k : {6, -1}) EXPECT_FALSE(s.SetElem(k, 1.0));
  EXPECT_FALSE(KXSymMatrix().SetElem(0, 1.0));
  EXPECT_EQ(s.AsVector(), before);
  // The public index helpers, offsets beyond 32 bits included.
  EXPECT_EQ(KXSymMatrixData::PackedIndex(70000, 5), 2450035005u);  // 70000 * 70001 / 2 + 5
  EXPECT_EQ(KXSymMatrixData::PackedSize(2147483647), 2305843008139952128u);
  EXPECT_EQ(KXSymMatrixData::PackedSize(-1), 0u);
}

TEST(KXSymMatrixStorage, ConstructionShapesAndBlocks) {
  KXSymMatrixData emptyBlocks(0, 5);
  EXPECT_EQ(emptyBlocks.GetNRows() + emptyBlocks.GetNBlocks() + emptyBlocks.GetBlockSize(), 0);
  EXPECT_EQ(KXSymMatrix(-4).GetNRows(), 0);
  EXPECT_TRUE(KXSymMatrix(-4).IsValidMatrix());
  EXPECT_FALSE(KXSymMatrix(2147483647).IsValidMatrix() ||
               KXSymMatrix(65536, 65536).IsValidMatrix());  // order beyond int
  EXPECT_EQ(KXSymMatrix(2, 3).AsVector().size(), 21u);
  KXSymMatrix copy;
  copy.SetData(KXSymMatrixData(4));
  EXPECT_EQ(copy.AsVector(), std::vector<double>(10, 0.0));

  const Dense d = RandomSymmetric(6, 1);
  KXSymMatrix s = ToSym(d);
  EXPECT_FALSE(s.SetNBlocks(4) || s.SetNBlocks(0));
  ASSERT_TRUE(s.SetNBlocks(3));
  EXPECT_EQ(s.GetBlockSize(), 2);
  for (int q = 0; q < 36; ++q) {  // every (bi, bj, i, j): element (2 bi + i, 2 bj + j)
    const int bi = q / 12, bj = q / 4 % 3, i = q / 2 % 2, j = q % 2;
    EXPECT_EQ(s.GetElem(bi, bj, i, j), d(2 * bi + i, 2 * bj + j));
  }
  EXPECT_TRUE(KXMV::IsMissing(s.GetElem(3, 0, 0, 0)) && KXMV::IsMissing(s.GetElem(0, 0, 0, -1)));
  // Resize keeps the leading block and gives one block; SetNRows clears.
  ASSERT_TRUE(s.Resize(8));
  EXPECT_EQ(s.GetNBlocks(), 1);
  for (int i = 0; i < 8; ++i)
    for (int j = 0; j < 8; ++j) EXPECT_EQ(s.GetElem(i, j), i < 6 && j < 6 ? d(i, j) : 0.0);
  ASSERT_TRUE(s.Resize(3));
  EXPECT_EQ(s.GetElem(2, 1), d(2, 1));
  // A resize that cannot be allocated is refused and changes nothing.
  EXPECT_FALSE(s.SetNRows(2147483647) || s.Resize(2147483647));
  EXPECT_EQ(s.GetNRows(), 3);
  ASSERT_TRUE(s.SetNRows(4));
  EXPECT_EQ(s.AsVector(), std::vector<double>(10, 0.0));
  ASSERT_TRUE(s.SetNRows(-2));
  EXPECT_TRUE(s.AsVector().empty());
  ASSERT_TRUE(s.SetToVV({1.0, -2.0, 3.0}));
  EXPECT_EQ(s.AsVector(), (std::vector<double>{1, -2, 4, 3, -6, 9}));
}

// Every edit of a matrix against the same edit of a dense copy, exactly.
TEST(KXSymMatrixStorage, EditsAgainstDense) {
  // Each edit, and the dense matrix it should leave (element (i, j) from
  // the original d).
  using Element = std::function<double(const Dense&, std::size_t, std::size_t)>;
  struct Edit {
    const char* what;
    std::function<bool(KXSymMatrix&, const Dense&)> apply;
    Element expected;
  };
  const Edit edits[] = {
      {"PutRow, rows from the last",
       [](KXSymMatrix& s, const Dense& d) {
         s.Clear();
         bool ok = true;
         for (std::size_t i = d.n; i-- > 0;)
           ok = ok && s.PutRow(static_cast<int>(i), {d.a.begin() + i * d.n, d.a.begin() + (i + 1) * d.n});
         return ok;
       },
       [](const Dense& d, std::size_t i, std::size_t j) { return d(i, j); }},
      {"SetRowColToConst",
       [](KXSymMatrix& s, const Dense& d) { return s.SetRowColToConst(static_cast<int>(d.n / 2), 2.5); },
       [](const Dense& d, std::size_t i, std::size_t j) {
         return i == d.n / 2 || j == d.n / 2 ? 2.5 : d(i, j);
       }},
      {"ZeroOut", [](KXSymMatrix& s, const Dense& d) { return s.ZeroOut(static_cast<int>(d.n - 1)); },
       [](const Dense& d, std::size_t i, std::size_t j) {
         return i == d.n - 1 || j == d.n - 1 ? 0.0 : d(i, j);
       }},
      {"AddToDiagonal, MultiplyByNumber, ChangeSign",
       [](KXSymMatrix& s, const Dense&) {
         s.AddToDiagonal(2.0);
         s.MultiplyByNumber(3.0);
         s.ChangeSign();
         return true;
       },
       [](const Dense& d, std::size_t i, std::size_t j) { return -((d(i, j) + (i == j ? 2.0 : 0.0)) * 3.0); }},
      {"ComputeAXpY (a zero a adds nothing)",
       [](KXSymMatrix& s, const Dense& d) {
         return s.ComputeAXpY(-0.5, ToSym(d)) && s.ComputeAXpY(0.0, ToSym(RandomSymmetric(d.n, 3)));
       },
       [](const Dense& d, std::size_t i, std::size_t j) { return d(i, j) + -0.5 * d(i, j); }}};
  for (int n : {1, 2, 5, 9}) {
    const Dense d = RandomSymmetric(n, 10 + n);
    for (const Edit& edit : edits) {
      SCOPED_TRACE(testing::Message() << edit.what << ", n=" << n);
      KXSymMatrix s = ToSym(d);
      ASSERT_TRUE(edit.apply(s, d));
      Dense expected(n);
      for (int q = 0; q < n * n; ++q) expected.a[q] = edit.expected(d, q / n, q % n);
      EXPECT_EQ(MaxAbsDiff(ToDense(s), expected), 0.0);
      std::vector<double> row, diagonal;
      s.GetDiagonal(diagonal);
      for (int i = 0; i < n; ++i) {
        ASSERT_TRUE(s.GetRow(i, row));
        EXPECT_EQ(row, std::vector<double>(expected.a.begin() + i * n,
                                           expected.a.begin() + (i + 1) * n));
        EXPECT_EQ(diagonal[i], expected(i, i));
      }
      double max = 0, min = 0;
      s.MaxMinDiag(max, min);
      EXPECT_EQ(max, *std::max_element(diagonal.begin(), diagonal.end()));
      EXPECT_EQ(min, *std::min_element(diagonal.begin(), diagonal.end()));
    }
    // Refusals change nothing.
    KXSymMatrix s = ToSym(d);
    std::vector<double> row(n, 1.0);
    EXPECT_FALSE(s.GetRow(n, row) || s.PutRow(-1, row) || s.ZeroOut(n) || s.SetRowColToConst(-1, 1.0) ||
                 s.PutRow(0, std::vector<double>(n - 1, 1.0)) || s.ComputeAXpY(1.0, KXSymMatrix(n + 1)));
    EXPECT_EQ(MaxAbsDiff(ToDense(s), d), 0.0);
  }
  double keepMax = 11, keepMin = 12;
  KXSymMatrix().MaxMinDiag(keepMax, keepMin);  // nothing to read: outputs untouched
  EXPECT_EQ(keepMax + keepMin, 23.0);
}

TEST(KXSymMatrixStorage, SubmatricesAgainstDense) {
  const Dense d = RandomSymmetric(6, 4);
  const KXSymMatrix s = ToSym(d);
  KXSymMatrix lead(9), self = s, one(1), untouched(2);  // lead is reshaped
  s.ExtractFirstNRows(lead);
  self.ExtractFirstNRows(self);
  untouched.SetElem(0, 0, 3.0);
  one.ExtractFirstNRows(untouched);  // nothing happens for n <= 1
  EXPECT_EQ(untouched.GetElem(0, 0), 3.0);
  for (const KXSymMatrix* m : {&lead, &self}) {
    ASSERT_EQ(m->GetNRows(), 5);
    for (int q = 0; q < 25; ++q) EXPECT_EQ(m->GetElem(q / 5, q % 5), d(q / 5, q % 5));
  }
  const int idx[] = {0, 2, 5};
  KXSymMatrix sub;
  ASSERT_TRUE(s.ExtractSubmatrix({0, 2, 5}, sub));
  for (int q = 0; q < 9; ++q) EXPECT_EQ(sub.GetElem(q / 3, q % 3), d(idx[q / 3], idx[q % 3]));
  KXSymMatrix keepMe = one;
  for (const std::vector<int>& bad : {std::vector<int>{2, 1}, {1, 6}, {-1, 2}, {0, 1, 2, 3, 4, 5, 5}})
    EXPECT_FALSE(s.ExtractSubmatrix(bad, keepMe));
  EXPECT_EQ(keepMe.GetData(), one.GetData());
  // Expand places rows 0.. at the set bits, in order, and stops when they
  // run out (bit 7 has no source row 3 in a 3 x 3 matrix).
  KXBitSet keep(8);
  for (int p : {1, 4, 6, 7}) keep.Set(p, true);
  KXSymMatrix expanded;
  sub.Expand(keep, expanded);
  const int at[] = {1, 4, 6};
  Dense expected(8);
  for (int q = 0; q < 9; ++q) expected(at[q / 3], at[q % 3]) = sub.GetElem(q / 3, q % 3);
  EXPECT_EQ(MaxAbsDiff(ToDense(expanded), expected), 0.0);
  // The leading k x k block of another matrix.
  KXSymMatrix target = ToSym(RandomSymmetric(4, 5));
  const KXSymMatrix original = target;
  EXPECT_FALSE(target.ReplaceFirstRows(s, 0) || target.ReplaceFirstRows(sub, 4) ||
               target.ReplaceFirstRows(s, 5));  // k beyond src, beyond this matrix
  EXPECT_TRUE(target.ReplaceFirstRows(target, 2));
  EXPECT_EQ(target.AsVector(), original.AsVector());
  ASSERT_TRUE(target.ReplaceFirstRows(s, 3));
  for (int q = 0; q < 16; ++q) {
    const int i = q / 4, j = q % 4;
    EXPECT_EQ(target.GetElem(i, j), i < 3 && j < 3 ? d(i, j) : original.GetElem(i, j));
  }
}

TEST(KXSymMatrixStorage, InconsistentDataIsRefusedNotRead) {
  KXSymMatrix s(3);
  s.AsVector().resize(2);  // a caller broke the size through AsVector()
  std::vector<double> row, diagonal;
  EXPECT_FALSE(s.GetRow(2, row) || s.SetElem(2, 2, 1.0) || s.SetElem(4, 1.0) ||
               s.PutRow(0, {1, 2, 3}) || s.SetRowColToConst(0, 1.0) || s.UpdateXX({1, 2, 3}, 1.0));
  EXPECT_TRUE(KXMV::IsMissing(s.GetElem(2, 2)));
  s.GetDiagonal(diagonal);
  EXPECT_TRUE(KXMV::IsMissing(diagonal[2]));
  KXSymMatrix out(1), copy(s);
  s.ExtractFirstNRows(out);
  EXPECT_EQ(out.GetNRows(), 1);
  EXPECT_FALSE(s.ExtractSubmatrix({0}, out));
  s.Expand(KXBitSet(2), out);  // a zero matrix of the set's size
  s.AddToDiagonal(1.0);
  s.MaxMinDiag(out.AsVector()[0], out.AsVector()[1]);
  EXPECT_EQ(s.AsVector(), copy.AsVector());
  EXPECT_EQ(out.AsVector(), std::vector<double>(3, 0.0));
}

TEST(KXSymMatrixStorage, DisplayTexts) {
  KXSymMatrix s(2);
  s.AsVector() = {1.0, 2.5, -3.0};
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
