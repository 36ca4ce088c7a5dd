// Tests of the update and product family of KXSymMatrix
// (KXSymMatrixProducts.cpp), against plain dense loops: bit for bit where
// the library promises the same summation order, within a rounding bound
// elsewhere; then the elementwise edits on small exact cases.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"
#include "kxcommonr/testing/SymMatrixTestUtil.h"
#include "kxcommonr/testing/Tolerance.h"

namespace {

using KXCommon::KXBitSet;
using KXCommon::KXMV;
using KXCommon::KXSymMatrix;
using namespace kxtesting;  // the dense reference helpers and tolerance tiers

const int kSizes[] = {0, 1, 2, 3, 7, 8, 17, 33, 64, 65};

// A sum of `terms` products of values in [-1, 1] differs from the exact sum
// by at most about `terms` roundings of magnitude 1.
double SumTolerance(int terms) { return kTight * (terms + 1); }

const auto FromPacked = SymFromPacked;

// ---------------------------------------------------------------- updates

TEST(KXSymMatrixUpdates, FullMaskedAndSparseUpdatesMatchDenseAccumulation) {
  for (int n : kSizes) {
    // Whatever vector path is dispatched, each element must see exactly the
    // operations a(i, j) += (x_i w) x_j in case order, zero x_i skipped.
    Dense full = RandomSymmetric(n, 100 + n), masked = full;
    KXSymMatrix s = ToSym(full), m = ToSym(full);
    KXBitSet mask(n > 0 ? n - 1 : 0);  // the last row lies outside the set: never kept
    for (int i = 0; i + 1 < n; i += 2) mask.Set(i, true);
    for (unsigned c = 0; c < 5; ++c) {
      const std::vector<double> x = RandomVector(n, 7 * c + n, 0.3);
      const double w = 0.25 + c;
      ASSERT_TRUE(s.UpdateXX(x, w));
      ASSERT_TRUE(m.UpdateXXNonRedun(x, mask, w));
      for (int i = 0; i < n; ++i)
        for (int j = 0; j <= i && x[i] != 0.0; ++j) {
          full(i, j) += (x[i] * w) * x[j];
          if (mask.IsIn(i) && mask.IsIn(j)) masked(i, j) += (x[i] * w) * x[j];
        }
    }
    for (int i = 0; i < n; ++i)
      for (int j = 0; j <= i; ++j) {
        ASSERT_EQ(s.GetElem(i, j), full(i, j)) << n;
        ASSERT_EQ(m.GetElem(i, j), masked(i, j)) << n;
      }
  }
  // A sparse case sorted by index, with out-of-range entries (and entries
  // beyond nnz), adds what the dense update of its in-range part adds.
  const int n = 9;
  KXSymMatrix sparse(n), dense(n);
  const std::vector<int> idx = {-2, 0, 3, 4, 8, 9, 12, 1};
  const std::vector<double> val = {7.0, 0.5, -1.5, 2.0, 3.0, 11.0, 13.0, 9.0};
  ASSERT_TRUE(sparse.UpdateXXSparse(7, idx, val, 2.0));
  std::vector<double> x(n, 0.0);
  for (int k = 0; k < 7; ++k)
    if (idx[k] >= 0 && idx[k] < n) x[idx[k]] = val[k];
  ASSERT_TRUE(dense.UpdateXX(x, 2.0));
  EXPECT_EQ(sparse.AsVector(), dense.AsVector());
  // Unsorted: the walk for index 1 stops at once on 3, so (1, 1) is lost
  // while (3, 1) and (3, 3) are added.
  KXSymMatrix unsorted(4);
  ASSERT_TRUE(unsorted.UpdateXXSparse(2, {3, 1}, {5.0, 2.0}, 1.0));
  EXPECT_EQ(unsorted.AsVector(), (std::vector<double>{0, 0, 0, 0, 0, 0, 0, 10, 0, 25}));
}

TEST(KXSymMatrixUpdates, RefusalsAndRemoval) {
  KXSymMatrix s = ToSym(RandomSymmetric(4, 2));
  const std::vector<double> before = s.AsVector();
  const std::vector<double> x = {1.0, -2.0, 0.0, 4.0};
  EXPECT_FALSE(s.UpdateXX(x, 0.0) || s.UpdateXX(x, -1.0) || s.UpdateXX(x, std::nan("")) ||
               s.UpdateXX({1.0, 2.0}, 1.0) || s.UpdateXXPosNegW({1.0, 2.0, 3.0, 4.0, 5.0}, 1.0) ||
               s.UpdateXXNonRedun({1.0}, KXBitSet(4), 1.0));
  EXPECT_FALSE(s.UpdateXXSparse(3, {1, 3}, {2.0, 5.0, 1.0}, 1.0) || s.UpdateXXSparse(2, {1, 3}, {2.0}, 1.0) ||
               s.UpdateXXSparse(2, {1, 3}, {2.0, 5.0}, 0.0) || s.UpdateXXSparse(-1, {}, {}, 1.0));
  EXPECT_EQ(s.AsVector(), before);
  // Integer data: adding then removing a case restores the matrix exactly,
  // the one-element matrix included.
  for (int n : {1, 4}) {
    KXSymMatrix counts(n);
    counts.UpdateXX(std::vector<double>(x.begin(), x.begin() + n), 2.0);
    const std::vector<double> base = counts.AsVector();
    ASSERT_TRUE(counts.UpdateXX({x.begin(), x.begin() + n}, 1.0));
    ASSERT_TRUE(counts.UpdateXXPosNegW({x.begin(), x.begin() + n}, -1.0));
    EXPECT_EQ(counts.AsVector(), base);
  }
}

// ------------------------------------------------ forms and vector products

// Every vector product against plain loops: exactly where the library sums
// in the same order (S v, L v, L' v, full rows), within rounding elsewhere.
TEST(KXSymMatrixProducts, VectorProductsAndFormsAgainstDense) {
  for (int n : kSizes) {
    SCOPED_TRACE(n);
    const Dense d = RandomSymmetric(n, 500 + n);
    const KXSymMatrix s = ToSym(d), t = ToSym(RandomSymmetric(n, 700 + n));
    const std::vector<double> v = RandomVector(n, 600 + n, 0.2), w = RandomVector(n, 400 + n);
    const int k = n / 2;  // the leading k x k block
    std::vector<double> sv, lv, ltv, lead, strided(2 * n, 1e300);
    ASSERT_TRUE(s.ComputeSV(v, sv) && s.ComputeLV(v, lv) && s.ComputeLTransV(v, ltv));
    ASSERT_TRUE(s.ComputeSV(k, v, lead));
    ASSERT_EQ(lead.size(), static_cast<std::size_t>(k));
    for (int j = 0; j < n; ++j) strided[2 * j] = v[j];
    double vsw = 0.0, vsv = 0.0, leadVsw = 0.0;
    for (int i = 0; i < n; ++i) {
      double full = 0.0, lower = 0.0, upper = 0.0, leading = 0.0, rowDot = 0.0, selfDot = 0.0;
      for (int j = 0; j < n; ++j) {
        full += d(i, j) * v[j];
        if (j <= i) lower += d(i, j) * v[j];
        if (j >= i) upper += d(j, i) * v[j];
        if (j < k) leading += d(i, j) * v[j];
        rowDot += d(i, j) * t.GetElem(0, j);
        selfDot += d(i, j) * d(n - 1, j);
        vsw += v[i] * d(i, j) * w[j];
        vsv += v[i] * d(i, j) * v[j];
        if (i < k && j < k) leadVsw += v[i] * d(i, j) * w[j];
      }
      EXPECT_EQ((std::vector<double>{sv[i], lv[i], ltv[i], s.ComputeRVD(i, v, 1), s.ComputeRVD(i, strided, 2),
                                     s.ComputeRowDotProductS(i, t, 0), s.ComputeDotProduct2Rows(i, n - 1)}),
                (std::vector<double>{full, lower, upper, full, full, rowDot, selfDot}));
      if (i < k) {
        EXPECT_EQ(lead[i], leading);
      }
    }
    // The input vector may also receive the result.
    for (auto product : {&KXSymMatrix::ComputeLV, &KXSymMatrix::ComputeLTransV}) {
      std::vector<double> inPlace = v, expected;
      ASSERT_TRUE((s.*product)(inPlace, inPlace) && (s.*product)(v, expected));
      EXPECT_EQ(inPlace, expected);
    }
    std::vector<double> inPlace = v;
    ASSERT_TRUE(s.ComputeSV(inPlace, inPlace));
    EXPECT_EQ(inPlace, sv);
    // The forms sum in their own groupings: within rounding. Strided,
    // offset and raw forms read the same values from other layouts.
    const double tol = SumTolerance(n * n);
    EXPECT_NEAR(s.ComputeVSW(v, w), vsw, tol);
    EXPECT_NEAR(s.ComputeVSV(v), vsv, tol);
    EXPECT_NEAR(s.ComputeVSWParts(v, 0, w, 0), vsw, tol);
    const double wsw = s.ComputeVSV(w);  // either sign: a square root, or missing
    EXPECT_EQ(s.SquareRootVSV(w), wsw >= 0 ? std::sqrt(wsw) : KXMV::Missing());
    std::vector<double> vStrided(3 * n, 99.0), both(v);
    for (int i = 0; i < n; ++i) vStrided[3 * i] = v[i];
    both.insert(both.begin(), 5.0);
    both.insert(both.end(), w.begin(), w.end());
    EXPECT_EQ(s.ComputeVSW(vStrided.data(), 3, w.data(), 1), s.ComputeVSW(v, w));
    EXPECT_EQ(s.ComputeVSW(both, 1, n + 1, n), s.ComputeVSW(v, w));
    EXPECT_EQ(s.ComputeVSWParts(both, 1, both, n + 1), s.ComputeVSWParts(v, 0, w, 0));
    EXPECT_EQ(s.ComputeVSWParts(v.data(), w.data()), s.ComputeVSWParts(v, 0, w, 0));
    std::vector<double> vw(v.begin(), v.begin() + k);
    vw.insert(vw.end(), w.begin(), w.begin() + k);
    EXPECT_NEAR(s.ComputeVSW(vw, 0, k, k), leadVsw, tol);
  }
  // Blocks: v'S_(bi,bj)w over block (bi, bj) of three blocks of two rows.
  const Dense d = RandomSymmetric(6, 9);
  KXSymMatrix s = ToSym(d);
  ASSERT_TRUE(s.SetNBlocks(3));
  const std::vector<double> v = {1.0, -2.0}, w = {0.5, 3.0};
  for (int b = 0; b < 9; ++b) {
    const int bi = b / 3, bj = b % 3;
    double expected = 0.0;
    for (int q = 0; q < 4; ++q) expected += v[q / 2] * (d(2 * bi + q / 2, 2 * bj + q % 2) * w[q % 2]);
    EXPECT_NEAR(s.ComputeBlockVSW(bi, bj, v, w), expected, SumTolerance(4) * 6);  // |v|, |w| <= 3
    EXPECT_EQ(s.ComputeBlockVSV(bi, bj, v), s.ComputeBlockVSW(bi, bj, v, v));
  }
  std::vector<double> out = {42.0};
  EXPECT_FALSE(s.ComputeSV({1, 2}, out) || s.ComputeSV(7, std::vector<double>(7), out) ||
               s.ComputeSV(3, {1, 2}, out) || s.ComputeLV({1, 2}, out) || s.ComputeLTransV({1, 2}, out));
  EXPECT_EQ(out, std::vector<double>{42.0});
  const std::function<double()> missing[] = {
      [&] { return s.ComputeBlockVSW(3, 0, v, w); },
      [&] { return s.ComputeBlockVSW(0, 0, {1.0, 2.0, 3.0}, w); },
      [&] { return s.ComputeVSW({1, 2, 3}, {1, 2}); },
      [&] { return s.ComputeVSV({1, 2, 3, 4}); },
      [&] { return s.ComputeVSW(nullptr, 1, nullptr, 1); },
      [&] { return s.ComputeVSW(v.data(), 0, w.data(), 1); },
      [&] { return s.ComputeVSW({1, 2, 3}, 1, 0, 3); },
      [&] { return s.ComputeVSW({1, 2, 3}, 0, 0, 7); },
      [&] { return s.ComputeVSWParts({1, 2, 3}, 1, {1, 2, 3}, 0); },
      [&] { return s.ComputeVSWParts(std::vector<double>(6), -1, std::vector<double>(6), 0); },
      [&] { return s.ComputeVSWParts(nullptr, w.data()); },
      [&] { return FromPacked(1, {-1}).SquareRootVSV({1}); },
      [&] { return s.ComputeRVD(6, std::vector<double>(6), 1); },
      [&] { return s.ComputeRVD(0, {1, 2, 3}, 2); },
      [&] { return s.ComputeRVD(0, nullptr, 1); },
      [&] { return s.ComputeRowDotProductS(0, KXSymMatrix(2), 0); },
      [&] { return s.ComputeRowDotProductS(0, std::vector<double>(5), 0); },
      [&] { return s.ComputeDotProduct2Rows(0, 6); }};
  for (const auto& call : missing) EXPECT_TRUE(KXMV::IsMissing(call()));
  const KXSymMatrix empty;
  EXPECT_EQ((std::vector<double>{empty.ComputeVSW(std::vector<double>(), std::vector<double>()),
                                 empty.ComputeVSW(nullptr, 1, nullptr, 1), empty.ComputeVSWParts(nullptr, nullptr),
                                 s.ComputeVSW({1.0}, 0, 0, 0)}),
            std::vector<double>(4, 0.0));
}

// ------------------------------------------------ matrix products, traces

TEST(KXSymMatrixProducts, MatrixProductsAndTracesAgainstDense) {
  for (int n : {0, 1, 2, 5, 12}) {
    const Dense sd = RandomSymmetric(n, 800 + n), td = RandomSymmetric(n, 900 + n),
                ud = RandomSymmetric(n, 1000 + n);
    const KXSymMatrix s = ToSym(sd), t = ToSym(td), u = ToSym(ud);
    const double tol = SumTolerance(n * n);
    KXSymMatrix out, self = s;
    ASSERT_TRUE(s.ComputeGMG(t.AsVector(), out));
    EXPECT_LE(MaxAbsDiff(ToDense(out), Multiply(td, Multiply(sd, td))), tol);
    // L T L' with this matrix's lower triangle as L.
    const Dense l = ToDense(s, true);
    ASSERT_TRUE(s.ComputeLSLTrans(t, out));
    EXPECT_LE(MaxAbsDiff(ToDense(out), Multiply(l, Multiply(td, Transpose(l)))),
              tol);
    ASSERT_TRUE(self.ComputeSTransS(self));  // products may write over their operand
    EXPECT_LE(MaxAbsDiff(ToDense(self), Multiply(sd, sd)), tol);
    const Dense st = Multiply(sd, td), stu = Multiply(st, ud);
    double trace = 0.0, trST = 0.0, trSTU = 0.0;
    for (int i = 0; i < n; ++i) trace += sd(i, i), trST += st(i, i), trSTU += stu(i, i);
    EXPECT_NEAR(s.Trace(), trace, tol);
    EXPECT_NEAR(s.TraceOfProduct(t), trST, tol);
    EXPECT_NEAR(s.TraceOfProductOfThree(t, u), trSTU, tol);
  }
  // A short G is padded with zeros; a long one is refused.
  const KXSymMatrix s = ToSym(RandomSymmetric(3, 1));
  KXSymMatrix out(1);
  ASSERT_TRUE(s.ComputeGMG({2.0}, out));  // G = diag(2, 0, 0)
  EXPECT_EQ(out.AsVector(), (std::vector<double>{4.0 * s.GetElem(0, 0), 0, 0, 0, 0, 0}));
  KXSymMatrix broken(2);
  broken.AsVector().resize(1);
  EXPECT_FALSE(s.ComputeGMG(std::vector<double>(7, 1.0), out) || s.ComputeLSLTrans(KXSymMatrix(2), out) ||
               broken.ComputeSTransS(out));
  EXPECT_EQ(out.GetNRows(), 3);
  EXPECT_TRUE(KXMV::IsMissing(s.TraceOfProduct(KXSymMatrix(2))) &&
              KXMV::IsMissing(s.TraceOfProductOfThree(s, KXSymMatrix(4))) && KXMV::IsMissing(broken.Trace()));
}

// ------------------------------------------ elementwise edits, diagnostics

TEST(KXSymMatrixEdits, CorrelationBoundAndZeroPatterns) {
  // diag (4, 9, 1): the bound on (1, 0) is 0.5 * 6 = 3, on (2, 1) 1.5.
  KXSymMatrix s = FromPacked(3, {4, 5, 9, -1, -2, 1});
  ASSERT_TRUE(s.AdjustOffDiagCorr(0.5));
  EXPECT_EQ(s.AsVector(), (std::vector<double>{4, 3, 9, -1, -1.5, 1}));
  KXSymMatrix negative = FromPacked(2, {-1, 0.5, 1});
  EXPECT_FALSE(s.AdjustOffDiagCorr(1.5) || s.AdjustOffDiagCorr(-0.1) || negative.AdjustOffDiagCorr(0.9));
  EXPECT_EQ(negative.AsVector(), (std::vector<double>{-1, 0.5, 1}));
  // Structural zeros of a pattern (diagonal zeros do not count).
  KXSymMatrix pattern = FromPacked(3, {0, 1, 0, 0, 1, 0});
  ASSERT_TRUE(s.SetCovarZeros(pattern));
  EXPECT_EQ(s.AsVector(), (std::vector<double>{4, 3, 9, 0, -1.5, 1}));
  EXPECT_FALSE(s.SetCovarZeros(negative));

  struct Case {
    const char* what;
    std::function<int(KXSymMatrix&)> edit;
    int zeroed;
    std::vector<double> after;
  };
  // Relative to sqrt(a_ii a_jj): 0.0447 for (1, 0), 2.83 for (2, 0) and
  // 0.0632 for (2, 1); the largest diagonal is 4.
  const std::vector<double> start = {2, 0.05, 1e-3, 0.1, 0.5, 4};
  const Case cases[] = {
      {"absolute", [](KXSymMatrix& m) { return m.ZeroOutAllSmall(0.06); }, 2, {2, 0, 0, 0.1, 0.5, 4}},
      {"off-diagonal, none", [](KXSymMatrix& m) { return m.ZeroOutNonDiag(0.01); }, 0, start},
      {"off-diagonal", [](KXSymMatrix& m) { return m.ZeroOutNonDiag(1.2); }, 2, {2, 0, 1e-3, 0, 0.5, 4}},
      {"small diagonal", [](KXSymMatrix& m) { return m.ZeroOutRowsForSmallDiag(1e-3); }, 1,
       {2, 0, 0, 0.1, 0, 4}},
      {"bad tolerances",
       [](KXSymMatrix& m) {
         return m.ZeroOutAllSmall(-1.0) + m.ZeroOutNonDiag(std::nan("")) +
                m.ZeroOutRowsForSmallDiag(-1.0);
       },
       -3, start}};
  for (const Case& c : cases) {
    KXSymMatrix m = FromPacked(3, start);
    EXPECT_EQ(c.edit(m), c.zeroed) << c.what;
    EXPECT_EQ(m.AsVector(), c.after) << c.what;
  }
  EXPECT_EQ(KXSymMatrix(2).ZeroOutRowsForSmallDiag(0.1), 0);  // no positive diagonal
}

TEST(KXSymMatrixEdits, ReadersOfTheTriangle) {
  const KXSymMatrix s = FromPacked(3, {4, -5, 9, 7, 0, 0.5});
  double maxD = 0, minD = 0, maxO = 0, minO = 0;
  ASSERT_TRUE(s.MaxMinDiagOffDiag(maxD, minD, maxO, minO));
  EXPECT_EQ(std::vector<double>({maxD, minD, maxO, minO}), (std::vector<double>{9, 0.5, 7, -5}));
  double a = 1, b = 2, c = 3, d = 4;
  EXPECT_FALSE(KXSymMatrix().MaxMinDiagOffDiag(a, b, c, d));
  ASSERT_TRUE(FromPacked(1, {6}).MaxMinDiagOffDiag(a, b, c, d));
  EXPECT_EQ(std::vector<double>({a, b, c, d}), (std::vector<double>{6, 6, 3, 4}));

  std::vector<double> diagonal;
  EXPECT_EQ(s.GetNCheckDiagonal(diagonal, 1.0, 1.0), 1);
  EXPECT_EQ(diagonal, (std::vector<double>{4, 9, 1}));

  std::vector<double> acc(7, 1.0);
  ASSERT_TRUE(s.IncrVecByRow(1, acc, 1, 2, 2.0, true));  // row 1: -5 9 0
  EXPECT_EQ(acc, (std::vector<double>{1, -9, 1, 19, 1, 1, 1}));
  ASSERT_TRUE(s.IncrVecByRow(2, acc, 0, 1, 1.0, false));  // stored: 7 0 0.5
  EXPECT_EQ(acc, (std::vector<double>{8, -9, 1.5, 19, 1, 1, 1}));
  EXPECT_FALSE(s.IncrVecByRow(1, acc, 3, 2, 1.0, true) ||  // needs index 7
               s.IncrVecByRow(3, acc, 0, 1, 1.0, true) || s.IncrVecByRow(0, acc, 0, 0, 1.0, true));

  std::vector<double> column = {-1.0};
  ASSERT_TRUE(s.GetPCol(0, 1, 2, column, 2));
  EXPECT_EQ(column, (std::vector<double>{-1, 0, -5, 7}));
  EXPECT_FALSE(s.GetPCol(0, 2, 1, column, 0) || s.GetPCol(3, 0, 1, column, 0));

  std::vector<double> full = {1.0};
  s.ExpandSym(full);
  EXPECT_EQ(full, (std::vector<double>{4, -5, 7, -5, 9, 0, 7, 0, 0.5}));
  KXSymMatrix broken(2);
  broken.AsVector().resize(1);
  broken.ExpandSym(full);
  EXPECT_TRUE(full.empty());

  KXSymMatrix h;
  ASSERT_TRUE(s.ExtractH(1, 2, h));
  EXPECT_EQ(h.AsVector(), (std::vector<double>{9, 0, 0.5}));
  EXPECT_FALSE(s.ExtractH(2, 2, h));
  EXPECT_EQ(h.GetNRows(), 2);

  KXBitSet cols(3);
  cols.Set(2, true);
  EXPECT_TRUE(s.IsZeroRow(1, cols));
  cols.Set(0, true);
  EXPECT_FALSE(s.IsZeroRow(1, cols) || s.IsZeroRow(3, cols));
}

TEST(KXSymMatrixEdits, ParameterScalingIsACongruence) {
  const Dense d = RandomSymmetric(4, 77);
  KXSymMatrix s = ToSym(d), masked = ToSym(d);
  const std::vector<double> scale = {2.0, 0.5, -1.0, 3.0};
  KXBitSet rows(4);
  rows.Set(1, true);
  ASSERT_TRUE(s.TransformParameterMatrix(scale));
  ASSERT_TRUE(masked.TransformParameterMatrix(scale, rows));
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) {
      EXPECT_EQ(s.GetElem(i, j), scale[i] * d(i, j) * scale[j]);
      EXPECT_EQ(masked.GetElem(i, j), (i == 1 ? 0.5 : 1.0) * d(i, j) * (j == 1 ? 0.5 : 1.0));
    }
  EXPECT_FALSE(masked.TransformParameterMatrix({1.0, 2.0}) || masked.TransformParameterMatrix({1.0, 2.0}, rows));
}

}  // namespace
