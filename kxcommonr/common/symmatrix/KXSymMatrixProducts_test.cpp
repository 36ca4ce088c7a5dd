// Updates and products of KXSymMatrix, checked against plain dense loops.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <vector>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"
#include "kxcommonr/testing/SymMatrixTestUtil.h"

namespace {

using KXCommon::KXBitSet;
using KXCommon::KXMV;
using KXCommon::KXSymMatrix;
using kxtesting::Dense;

const int kSizes[] = {0, 1, 2, 3, 7, 8, 17, 33, 64, 65};

// Relative tolerance for sums of n products of values in [-1, 1].
double Tolerance(std::size_t n) { return 64 * DBL_EPSILON * (n + 1); }

TEST(KXSymMatrixUpdates, RankOneMatchesDenseAccumulationBitForBit) {
  // Whatever vector path is dispatched, each element must see exactly the
  // operations a(i, j) += (x_i w) x_j in case order.
  for (int n : kSizes) {
    Dense expected = kxtesting::RandomSymmetric(n, 100 + n);
    KXSymMatrix s = kxtesting::ToSym(expected);
    for (unsigned c = 0; c < 5; ++c) {
      const std::vector<double> x = kxtesting::RandomVector(n, 7 * c + n, 0.3);
      const double w = 0.25 + c;
      ASSERT_TRUE(s.UpdateXX(x, w));
      for (int i = 0; i < n; ++i) {
        if (x[i] == 0.0) continue;
        for (int j = 0; j <= i; ++j) expected(i, j) += (x[i] * w) * x[j];
      }
    }
    for (int i = 0; i < n; ++i)
      for (int j = 0; j <= i; ++j) ASSERT_EQ(s.GetElem(i, j), expected(i, j)) << n;
  }
}

TEST(KXSymMatrixUpdates, RefusalsAndRemoval) {
  KXSymMatrix s = kxtesting::ToSym(kxtesting::RandomSymmetric(4, 2));
  const std::vector<double> before = s.AsVector();
  const std::vector<double> x = {1.0, -2.0, 0.0, 4.0};
  EXPECT_FALSE(s.UpdateXX(x, 0.0));
  EXPECT_FALSE(s.UpdateXX(x, -1.0));
  EXPECT_FALSE(s.UpdateXX(x, std::nan("")));
  EXPECT_FALSE(s.UpdateXX({1.0, 2.0}, 1.0));
  EXPECT_FALSE(s.UpdateXXPosNegW({1.0, 2.0, 3.0, 4.0, 5.0}, 1.0));
  EXPECT_FALSE(s.UpdateXXNonRedun({1.0}, KXBitSet(4), 1.0));
  EXPECT_EQ(s.AsVector(), before);

  // Integer data: adding then removing a case restores the matrix exactly.
  KXSymMatrix counts(4);
  counts.UpdateXX({3.0, 1.0, 2.0, 5.0}, 2.0);
  const std::vector<double> base = counts.AsVector();
  ASSERT_TRUE(counts.UpdateXX(x, 1.0));
  ASSERT_TRUE(counts.UpdateXXPosNegW(x, -1.0));
  EXPECT_EQ(counts.AsVector(), base);

  // A zero element leaves its whole row and column unchanged.
  KXSymMatrix t(3);
  ASSERT_TRUE(t.UpdateXX({0.0, 2.0, 3.0}, 1.0));
  EXPECT_EQ(t.AsVector(), (std::vector<double>{0, 0, 4, 0, 6, 9}));
}

TEST(KXSymMatrixUpdates, MaskedUpdate) {
  KXSymMatrix s(3);
  KXBitSet keep(3);
  keep.Set(0, true);
  keep.Set(2, true);
  ASSERT_TRUE(s.UpdateXXNonRedun({1.0, 1.0, 1.0}, keep, 1.0));
  EXPECT_EQ(s.AsVector(), (std::vector<double>{1, 0, 0, 1, 0, 1}));

  for (int n : {1, 5, 13}) {
    Dense expected = kxtesting::RandomSymmetric(n, n);
    KXSymMatrix m = kxtesting::ToSym(expected);
    KXBitSet mask(n - 1);  // the last row lies outside the set: never kept
    for (int i = 0; i < n - 1; i += 2) mask.Set(i, true);
    const std::vector<double> x = kxtesting::RandomVector(n, 50 + n);
    ASSERT_TRUE(m.UpdateXXNonRedun(x, mask, 1.5));
    for (int i = 0; i < n; ++i)
      for (int j = 0; j <= i; ++j)
        if (mask.IsIn(i) && mask.IsIn(j)) expected(i, j) += (x[i] * 1.5) * x[j];
    for (int i = 0; i < n; ++i)
      for (int j = 0; j <= i; ++j) EXPECT_EQ(m.GetElem(i, j), expected(i, j));
  }
}

TEST(KXSymMatrixUpdates, SparseUpdateFollowsTheOrderedWalk) {
  KXSymMatrix s(4);
  ASSERT_TRUE(s.UpdateXXSparse(2, {1, 3}, {2.0, 5.0}, 1.0));
  EXPECT_EQ(s.GetElem(1, 1), 4.0);
  EXPECT_EQ(s.GetElem(3, 1), 10.0);
  EXPECT_EQ(s.GetElem(3, 3), 25.0);
  EXPECT_EQ(s.Trace(), 29.0);

  // Unsorted: the walk for index 1 stops at once on 3, so (1, 1) is lost
  // while (3, 1) and (3, 3) are added.
  KXSymMatrix unsorted(4);
  ASSERT_TRUE(unsorted.UpdateXXSparse(2, {3, 1}, {5.0, 2.0}, 1.0));
  EXPECT_EQ(unsorted.GetElem(1, 1), 0.0);
  EXPECT_EQ(unsorted.GetElem(3, 1), 10.0);
  EXPECT_EQ(unsorted.GetElem(3, 3), 25.0);

  EXPECT_FALSE(s.UpdateXXSparse(3, {1, 3}, {2.0, 5.0, 1.0}, 1.0));
  EXPECT_FALSE(s.UpdateXXSparse(2, {1, 3}, {2.0}, 1.0));
  EXPECT_FALSE(s.UpdateXXSparse(2, {1, 3}, {2.0, 5.0}, 0.0));
  EXPECT_FALSE(s.UpdateXXSparse(-1, {}, {}, 1.0));

  // Sorted with out-of-range entries: the same as the dense update of the
  // in-range part (entries beyond nnz are ignored).
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
}

TEST(KXSymMatrixProducts, QuadraticFormsAgainstDense) {
  for (int n : kSizes) {
    const Dense d = kxtesting::RandomSymmetric(n, 200 + n);
    const KXSymMatrix s = kxtesting::ToSym(d);
    const std::vector<double> v = kxtesting::RandomVector(n, 300 + n);
    const std::vector<double> w = kxtesting::RandomVector(n, 400 + n);
    double vsw = 0.0, vsv = 0.0;
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) {
        vsw += v[i] * d(i, j) * w[j];
        vsv += v[i] * d(i, j) * v[j];
      }
    const double tol = Tolerance(n * n);
    EXPECT_NEAR(s.ComputeVSW(v, w), vsw, tol) << n;
    EXPECT_NEAR(s.ComputeVSV(v), vsv, tol) << n;
    EXPECT_NEAR(s.ComputeVSWParts(v, 0, w, 0), vsw, tol) << n;
    if (n == 0) continue;
    EXPECT_NEAR(s.ComputeVSWParts(v.data(), w.data()), vsw, tol);
    if (vsv >= 0) {
      EXPECT_NEAR(s.SquareRootVSV(v), std::sqrt(vsv), tol);
    }

    // Strided and offset forms read the same values from other layouts.
    std::vector<double> vStrided(3 * n, 99.0), wStrided(2 * n, 99.0);
    for (int i = 0; i < n; ++i) {
      vStrided[3 * i] = v[i];
      wStrided[2 * i] = w[i];
    }
    EXPECT_EQ(s.ComputeVSW(vStrided.data(), 3, wStrided.data(), 2),
              s.ComputeVSW(v, w));
    std::vector<double> both(v);
    both.insert(both.begin(), 5.0);
    both.insert(both.end(), w.begin(), w.end());
    EXPECT_EQ(s.ComputeVSW(both, 1, n + 1, n), s.ComputeVSW(v, w));
    EXPECT_EQ(s.ComputeVSWParts(both, 1, both, n + 1),
              s.ComputeVSWParts(v, 0, w, 0));
    // The leading k x k block.
    const int k = n / 2;
    double lead = 0.0;
    for (int i = 0; i < k; ++i)
      for (int j = 0; j < k; ++j) lead += v[i] * d(i, j) * w[j];
    std::vector<double> vw(v.begin(), v.begin() + k);
    vw.insert(vw.end(), w.begin(), w.begin() + k);
    EXPECT_NEAR(s.ComputeVSW(vw, 0, k, k), lead, tol);
  }
  KXSymMatrix s(3);
  EXPECT_EQ(KXSymMatrix().ComputeVSW(std::vector<double>(), std::vector<double>()), 0.0);
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeVSW({1, 2, 3}, {1, 2})));
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeVSV({1, 2, 3, 4})));
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeVSW(nullptr, 1, nullptr, 1)));
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeVSW({1, 2, 3}, 1, 0, 3)));
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeVSW({1, 2, 3}, 0, 0, 4)));
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeVSWParts({1, 2, 3}, 1, {1, 2, 3}, 0)));
  s.AddToDiagonal(-1.0);
  EXPECT_TRUE(KXMV::IsMissing(s.SquareRootVSV({1, 0, 0})));
}

TEST(KXSymMatrixProducts, BlockQuadraticForm) {
  const Dense d = kxtesting::RandomSymmetric(6, 9);
  KXSymMatrix s = kxtesting::ToSym(d);
  ASSERT_TRUE(s.SetNBlocks(3));
  const std::vector<double> v = {1.0, -2.0}, w = {0.5, 3.0};
  for (int bi = 0; bi < 3; ++bi)
    for (int bj = 0; bj < 3; ++bj) {
      double expected = 0.0;
      for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 2; ++j) expected += v[i] * d(2 * bi + i, 2 * bj + j) * w[j];
      EXPECT_NEAR(s.ComputeBlockVSW(bi, bj, v, w), expected, 1e-14);
      EXPECT_EQ(s.ComputeBlockVSV(bi, bj, v), s.ComputeBlockVSW(bi, bj, v, v));
    }
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeBlockVSW(3, 0, v, w)));
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeBlockVSW(0, 0, {1.0, 2.0, 3.0}, w)));
}

TEST(KXSymMatrixProducts, VectorProductsAgainstDense) {
  for (int n : kSizes) {
    const Dense d = kxtesting::RandomSymmetric(n, 500 + n);
    const KXSymMatrix s = kxtesting::ToSym(d);
    const std::vector<double> v = kxtesting::RandomVector(n, 600 + n, 0.2);
    std::vector<double> sv, lv, ltv;
    ASSERT_TRUE(s.ComputeSV(v, sv));
    ASSERT_TRUE(s.ComputeLV(v, lv));
    ASSERT_TRUE(s.ComputeLTransV(v, ltv));
    ASSERT_EQ(sv.size(), static_cast<std::size_t>(n));
    const double tol = Tolerance(n);
    for (int i = 0; i < n; ++i) {
      double full = 0.0, lower = 0.0, upper = 0.0;
      for (int j = 0; j < n; ++j) {
        full += d(i, j) * v[j];
        if (j <= i) lower += d(i, j) * v[j];
        if (j >= i) upper += d(j, i) * v[j];
      }
      EXPECT_EQ(sv[i], full);  // the same index-order sum on every path
      EXPECT_NEAR(lv[i], lower, tol);
      EXPECT_NEAR(ltv[i], upper, tol);
      EXPECT_NEAR(s.ComputeRVD(i, v, 1), full, tol);
    }
    // The input vector may also receive the result.
    std::vector<double> inPlace = v;
    ASSERT_TRUE(s.ComputeSV(inPlace, inPlace));
    EXPECT_EQ(inPlace, sv);
    inPlace = v;
    ASSERT_TRUE(s.ComputeLTransV(inPlace, inPlace));
    EXPECT_EQ(inPlace, ltv);
    if (n < 2) continue;
    // Leading block product, strided row product, row dot products.
    std::vector<double> lead;
    ASSERT_TRUE(s.ComputeSV(n - 1, v, lead));
    ASSERT_EQ(lead.size(), static_cast<std::size_t>(n - 1));
    double first = 0.0;
    for (int j = 0; j < n - 1; ++j) first += d(0, j) * v[j];
    EXPECT_NEAR(lead[0], first, tol);
    std::vector<double> strided(2 * n, 1e300);
    for (int j = 0; j < n; ++j) strided[2 * j] = v[j];
    EXPECT_EQ(s.ComputeRVD(1, strided, 2), s.ComputeRVD(1, v, 1));
    const KXSymMatrix t = kxtesting::ToSym(kxtesting::RandomSymmetric(n, 700 + n));
    double rowDot = 0.0, selfDot = 0.0;
    for (int m = 0; m < n; ++m) {
      rowDot += d(n - 1, m) * t.GetElem(0, m);
      selfDot += d(n - 1, m) * d(1, m);
    }
    EXPECT_NEAR(s.ComputeRowDotProductS(n - 1, t, 0), rowDot, tol);
    EXPECT_NEAR(s.ComputeDotProduct2Rows(n - 1, 1), selfDot, tol);
  }
  KXSymMatrix s(3);
  std::vector<double> out = {42.0};
  EXPECT_FALSE(s.ComputeSV({1, 2}, out));
  EXPECT_FALSE(s.ComputeSV(4, {1, 2, 3, 4}, out));
  EXPECT_FALSE(s.ComputeLV({1, 2}, out));
  EXPECT_FALSE(s.ComputeLTransV({1, 2, 3, 4}, out));
  EXPECT_EQ(out, std::vector<double>{42.0});
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeRVD(3, {1, 2, 3}, 1)));
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeRVD(0, {1, 2, 3}, 2)));
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeRVD(0, nullptr, 1)));
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeRowDotProductS(0, KXSymMatrix(2), 0)));
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeRowDotProductS(0, std::vector<double>(5), 0)));
  EXPECT_TRUE(KXMV::IsMissing(s.ComputeDotProduct2Rows(0, 3)));
}

TEST(KXSymMatrixProducts, MatrixProductsAndTracesAgainstDense) {
  for (int n : {0, 1, 2, 5, 12}) {
    const Dense sd = kxtesting::RandomSymmetric(n, 800 + n);
    const Dense td = kxtesting::RandomSymmetric(n, 900 + n);
    const Dense ud = kxtesting::RandomSymmetric(n, 1000 + n);
    const KXSymMatrix s = kxtesting::ToSym(sd), t = kxtesting::ToSym(td),
                      u = kxtesting::ToSym(ud);
    const double tol = Tolerance(n * n);

    KXSymMatrix out;
    ASSERT_TRUE(s.ComputeGMG(t.AsVector(), out));
    EXPECT_LE(kxtesting::MaxAbsDiff(kxtesting::ToDense(out),
                                    kxtesting::Multiply(td, kxtesting::Multiply(sd, td))),
              tol);
    // L T L' with this matrix's lower triangle as L.
    const Dense l = kxtesting::LowerOf(s), lt = kxtesting::Transpose(l);
    ASSERT_TRUE(s.ComputeLSLTrans(t, out));
    EXPECT_LE(kxtesting::MaxAbsDiff(kxtesting::ToDense(out),
                                    kxtesting::Multiply(l, kxtesting::Multiply(td, lt))),
              tol);
    ASSERT_TRUE(s.ComputeSTransS(out));
    EXPECT_LE(kxtesting::MaxAbsDiff(kxtesting::ToDense(out), kxtesting::Multiply(sd, sd)),
              tol);
    // Products may write over their own operand.
    KXSymMatrix self = s;
    ASSERT_TRUE(self.ComputeSTransS(self));
    EXPECT_LE(kxtesting::MaxAbsDiff(kxtesting::ToDense(self), kxtesting::Multiply(sd, sd)),
              tol);

    const Dense st = kxtesting::Multiply(sd, td);
    const Dense stu = kxtesting::Multiply(st, ud);
    double trace = 0.0, trST = 0.0, trSTU = 0.0;
    for (int i = 0; i < n; ++i) {
      trace += sd(i, i);
      trST += st(i, i);
      trSTU += stu(i, i);
    }
    EXPECT_NEAR(s.Trace(), trace, tol);
    EXPECT_NEAR(s.TraceOfProduct(t), trST, tol);
    EXPECT_NEAR(s.TraceOfProductOfThree(t, u), trSTU, tol);
  }
  // A short G is padded with zeros; a long one is refused.
  const KXSymMatrix s = kxtesting::ToSym(kxtesting::RandomSymmetric(3, 1));
  KXSymMatrix out(1);
  ASSERT_TRUE(s.ComputeGMG({2.0}, out));  // G = diag(2, 0, 0)
  EXPECT_EQ(out.GetElem(0, 0), 4.0 * s.GetElem(0, 0));
  EXPECT_EQ(out.GetElem(2, 2), 0.0);
  EXPECT_FALSE(s.ComputeGMG(std::vector<double>(7, 1.0), out));
  EXPECT_FALSE(s.ComputeLSLTrans(KXSymMatrix(2), out));
  EXPECT_EQ(out.GetNRows(), 3);
  EXPECT_TRUE(KXMV::IsMissing(s.TraceOfProduct(KXSymMatrix(2))));
  EXPECT_TRUE(KXMV::IsMissing(s.TraceOfProductOfThree(s, KXSymMatrix(4))));
}

TEST(KXSymMatrixEdits, CorrelationBoundAndZeroPatterns) {
  // diag (4, 9, 1): the bound on (1, 0) is 0.5 * 6 = 3, on (2, 1) 1.5.
  KXSymMatrix s(3);
  s.AsVector() = {4, 5, 9, -1, -2, 1};
  ASSERT_TRUE(s.AdjustOffDiagCorr(0.5));
  EXPECT_EQ(s.AsVector(), (std::vector<double>{4, 3, 9, -1, -1.5, 1}));
  const std::vector<double> adjusted = s.AsVector();
  EXPECT_FALSE(s.AdjustOffDiagCorr(1.5));
  EXPECT_FALSE(s.AdjustOffDiagCorr(-0.1));
  KXSymMatrix negative(2);
  negative.AsVector() = {-1, 0.5, 1};
  EXPECT_FALSE(negative.AdjustOffDiagCorr(0.9));
  EXPECT_EQ(negative.AsVector(), (std::vector<double>{-1, 0.5, 1}));
  EXPECT_EQ(s.AsVector(), adjusted);

  KXSymMatrix pattern(3);
  pattern.AsVector() = {0, 1, 0, 0, 1, 0};  // diagonal zeros do not count
  ASSERT_TRUE(s.SetCovarZeros(pattern));
  EXPECT_EQ(s.AsVector(), (std::vector<double>{4, 3, 9, 0, -1.5, 1}));
  EXPECT_FALSE(s.SetCovarZeros(negative));

  KXSymMatrix noisy(3);
  noisy.AsVector() = {2, 1e-17, 1e-3, -1e-16, 0.5, 4};
  EXPECT_EQ(noisy.ZeroOutAllSmall(1e-15), 2);
  EXPECT_EQ(noisy.AsVector(), (std::vector<double>{2, 0, 1e-3, 0, 0.5, 4}));
  EXPECT_EQ(noisy.ZeroOutAllSmall(-1.0), -1);
  // Relative to sqrt(a_ii a_jj): 0.0447 for (1, 0), 2.83 for (2, 0) and
  // 0.0632 for (2, 1).
  noisy.AsVector() = {2, 0.05, 1e-3, 0.1, 0.5, 4};
  EXPECT_EQ(noisy.ZeroOutNonDiag(0.01), 0);
  EXPECT_EQ(noisy.ZeroOutNonDiag(1.2), 2);
  EXPECT_EQ(noisy.AsVector(), (std::vector<double>{2, 0, 1e-3, 0, 0.5, 4}));
  EXPECT_EQ(noisy.ZeroOutNonDiag(std::nan("")), -1);

  // Rows whose diagonal is at most tol times the largest one are cleared.
  noisy.AsVector() = {2, 0.05, 1e-3, 0.1, 0.5, 4};
  EXPECT_EQ(noisy.ZeroOutRowsForSmallDiag(1e-3), 1);
  EXPECT_EQ(noisy.AsVector(), (std::vector<double>{2, 0, 0, 0.1, 0, 4}));
  EXPECT_EQ(KXSymMatrix(2).ZeroOutRowsForSmallDiag(0.1), 0);
}

TEST(KXSymMatrixEdits, ReadersOfTheTriangle) {
  KXSymMatrix s(3);
  s.AsVector() = {4, -5, 9, 7, 0, 0.5};
  double maxD = 0, minD = 0, maxO = 0, minO = 0;
  ASSERT_TRUE(s.MaxMinDiagOffDiag(maxD, minD, maxO, minO));
  EXPECT_EQ(maxD, 9.0);
  EXPECT_EQ(minD, 0.5);
  EXPECT_EQ(maxO, 7.0);
  EXPECT_EQ(minO, -5.0);
  double a = 1, b = 2, c = 3, d = 4;
  EXPECT_FALSE(KXSymMatrix().MaxMinDiagOffDiag(a, b, c, d));
  KXSymMatrix one(1);
  one.SetElem(0, 0, 6.0);
  ASSERT_TRUE(one.MaxMinDiagOffDiag(a, b, c, d));
  EXPECT_EQ(a, 6.0);
  EXPECT_EQ(b, 6.0);
  EXPECT_EQ(c, 3.0);
  EXPECT_EQ(d, 4.0);

  std::vector<double> diagonal;
  EXPECT_EQ(s.GetNCheckDiagonal(diagonal, 1.0, 1.0), 1);
  EXPECT_EQ(diagonal, (std::vector<double>{4, 9, 1}));

  std::vector<double> acc(7, 1.0);
  ASSERT_TRUE(s.IncrVecByRow(1, acc, 1, 2, 2.0, true));  // row 1: -5 9 0
  EXPECT_EQ(acc, (std::vector<double>{1, -9, 1, 19, 1, 1, 1}));
  ASSERT_TRUE(s.IncrVecByRow(2, acc, 0, 1, 1.0, false));  // stored: 7 0 0.5
  EXPECT_EQ(acc, (std::vector<double>{8, -9, 1.5, 19, 1, 1, 1}));
  EXPECT_FALSE(s.IncrVecByRow(1, acc, 3, 2, 1.0, true));  // needs index 7
  EXPECT_FALSE(s.IncrVecByRow(3, acc, 0, 1, 1.0, true));
  EXPECT_FALSE(s.IncrVecByRow(0, acc, 0, 0, 1.0, true));

  std::vector<double> column = {-1.0};
  ASSERT_TRUE(s.GetPCol(0, 1, 2, column, 2));
  EXPECT_EQ(column, (std::vector<double>{-1, 0, -5, 7}));
  EXPECT_FALSE(s.GetPCol(0, 2, 1, column, 0));
  EXPECT_FALSE(s.GetPCol(3, 0, 1, column, 0));

  std::vector<double> full;
  s.ExpandSym(full);
  EXPECT_EQ(full, (std::vector<double>{4, -5, 7, -5, 9, 0, 7, 0, 0.5}));

  KXSymMatrix h;
  ASSERT_TRUE(s.ExtractH(1, 2, h));
  EXPECT_EQ(h.AsVector(), (std::vector<double>{9, 0, 0.5}));
  EXPECT_FALSE(s.ExtractH(2, 2, h));
  EXPECT_EQ(h.GetNRows(), 2);

  KXBitSet cols(3);
  cols.Set(2, true);
  EXPECT_TRUE(s.IsZeroRow(1, cols));
  cols.Set(0, true);
  EXPECT_FALSE(s.IsZeroRow(1, cols));
  EXPECT_FALSE(s.IsZeroRow(3, cols));
}

TEST(KXSymMatrixEdits, ParameterScalingIsACongruence) {
  const Dense d = kxtesting::RandomSymmetric(4, 77);
  KXSymMatrix s = kxtesting::ToSym(d);
  const std::vector<double> scale = {2.0, 0.5, -1.0, 3.0};
  ASSERT_TRUE(s.TransformParameterMatrix(scale));
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j)
      EXPECT_DOUBLE_EQ(s.GetElem(i, j), scale[i] * d(i, j) * scale[j]);
  KXSymMatrix masked = kxtesting::ToSym(d);
  KXBitSet rows(4);
  rows.Set(1, true);
  ASSERT_TRUE(masked.TransformParameterMatrix(scale, rows));
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j)
      EXPECT_DOUBLE_EQ(masked.GetElem(i, j),
                       (i == 1 ? 0.5 : 1.0) * d(i, j) * (j == 1 ? 0.5 : 1.0));
  EXPECT_FALSE(masked.TransformParameterMatrix({1.0, 2.0}));
}

}  // namespace
