// Tests of the KXSymMatrix members that take a KXRectMatrix
// (KXSymMatrixRect.cpp): the block cross-product update against case-by-case
// UpdateXX, bit for bit, and the products against plain loops on full
// matrices.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "kxcommonr/common/rectmatrix/KXRectMatrix.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"
#include "kxcommonr/testing/RectMatrixTestUtil.h"
#include "kxcommonr/testing/SymMatrixTestUtil.h"

namespace KXCommon {
namespace {

using kxtesting::RandomMatrix;

KXSymMatrix RandomSym(int n, std::mt19937_64& gen) {
  std::uniform_real_distribution<double> uniform(-2.0, 2.0);
  KXSymMatrix s(n);
  for (double& x : s.AsVector()) x = uniform(gen);
  return s;
}

bool SamePacked(const KXSymMatrix& a, const KXSymMatrix& b) {
  return kxtesting::Identical(a.GetData(), b.GetData());
}

// Plain product of full matrices given by element accessors, each output
// summed from 0 in increasing p.
template <typename A, typename B>
std::vector<double> Multiply(int m, int k, int n, A a, B b) {
  std::vector<double> c(static_cast<std::size_t>(m) * n, 0.0);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < n; ++j)
      for (int p = 0; p < k; ++p) c[static_cast<std::size_t>(i) * n + j] += a(i, p) * b(p, j);
  return c;
}

// The lower triangle, row by row, of the n x n row-major matrix full.
std::vector<double> Lower(const std::vector<double>& full, int n) {
  kxtesting::Dense d(static_cast<std::size_t>(n));
  d.a = full;
  return kxtesting::ToPacked(d);
}

// A block of cases gives the matrix that the same cases give one by one
// through UpdateXX, bit for bit, unweighted (r2 = r1, weight w) and with
// case weights (r2 = each case times its weight, w = 1); shapes cross the
// kernels' tile edges and a 256-case slab, and include zeros, which UpdateXX
// skips.
TEST(KXSymMatrixRectTest, BlockUpdateEqualsCaseByCase) {
  std::mt19937_64 gen(21);
  std::uniform_real_distribution<double> weights(0.1, 5.0);
  for (int p : {0, 1, 2, 5, 8, 16, 17, 23, 50, 61}) {
    for (int cases : {0, 1, 3, 70, 255, 300}) {
      KXRectMatrix block = RandomMatrix(cases, p, gen);
      for (int q = 0; q < cases * p; q += 7) block.AsVector()[q] = 0.0;
      KXRectMatrix weighted(block);
      std::vector<double> caseWeight(cases);
      for (int c = 0; c < cases; ++c) {
        caseWeight[c] = weights(gen);
        for (int j = 0; j < p; ++j) weighted.SetElem(c, j, block.GetElem(c, j) * caseWeight[c]);
      }
      KXSymMatrix byBlock = RandomSym(p, gen), byWeights(byBlock), byCase(byBlock),
                  byWeightedCase(byBlock);
      ASSERT_TRUE(byBlock.UpdateXXMat2(block, block, 1.75));
      ASSERT_TRUE(byWeights.UpdateXXMat2(block, weighted, 1.0));
      std::vector<double> x;
      for (int c = 0; c < cases; ++c) {
        block.GetRow(c, x);
        ASSERT_TRUE(byCase.UpdateXX(x, 1.75));
        ASSERT_TRUE(byWeightedCase.UpdateXX(x, caseWeight[c]));
      }
      EXPECT_TRUE(SamePacked(byBlock, byCase)) << "p=" << p << " cases=" << cases;
      EXPECT_TRUE(SamePacked(byWeights, byWeightedCase)) << "p=" << p << " cases=" << cases;
    }
  }
}

// Every product against plain loops over the full matrices: the library
// sums each output in the same order, so the results agree exactly (the
// symmetric ones on their stored lower triangle).
TEST(KXSymMatrixRectTest, ProductsMatchPlainLoops) {
  std::mt19937_64 gen(13);
  for (int n : {0, 1, 3, 10, 19}) {
    for (int m : {0, 1, 4, 13}) {
      const KXSymMatrix s = RandomSym(n, gen), t = RandomSym(n, gen);
      const KXRectMatrix r = RandomMatrix(m, n, gen), q = RandomMatrix(n, m, gen);
      auto sAt = [&](int i, int j) { return s.GetElem(i, j); };
      auto rAt = [&](int i, int j) { return r.GetElem(i, j); };
      auto rtAt = [&](int i, int j) { return r.GetElem(j, i); };
      const std::vector<double> rs = Multiply(m, n, n, rAt, sAt);
      const std::vector<double> sq = Multiply(n, n, m, sAt, [&](int i, int j) { return q.GetElem(i, j); });
      KXRectMatrix rsOut, stOut, full;
      KXSymMatrix rsr, qsq, rrt, rtr;
      ASSERT_TRUE(s.ComputeRS(r, rsOut) && s.ComputeSS(t, stOut) && s.ExpandSymToRect(full));
      ASSERT_TRUE(s.ComputeRSRTrans(r, rsr) && s.ComputeRTransSR(q, qsq));
      ASSERT_TRUE(rrt.ComputeRByRTrans(r) && rtr.ComputeRTransByR(r));
      EXPECT_EQ(rsOut.GetData(), rs);
      EXPECT_EQ(stOut.GetData(), Multiply(n, n, n, sAt, [&](int i, int j) { return t.GetElem(i, j); }));
      EXPECT_EQ(full.GetData(), kxtesting::ToDense(s).a);
      EXPECT_EQ(rsr.GetData(),
                Lower(Multiply(m, n, m, [&](int i, int p) { return rs[i * n + p]; }, rtAt), m));
      EXPECT_EQ(qsq.GetData(), Lower(Multiply(m, n, m, [&](int i, int p) { return q.GetElem(p, i); },
                                              [&](int p, int j) { return sq[p * m + j]; }),
                                     m));
      EXPECT_EQ(rrt.GetData(), Lower(Multiply(m, n, m, rAt, rtAt), m));
      EXPECT_EQ(rtr.GetData(), Lower(Multiply(n, m, n, rtAt, rAt), n));
      EXPECT_EQ(rsr.GetNRows() + qsq.GetNRows() + rrt.GetNRows() + rtr.GetNRows(), n + 3 * m);
    }
  }
}

TEST(KXSymMatrixRectTest, RefusalsLeaveOutputs) {
  std::mt19937_64 gen(8);
  const KXRectMatrix block = RandomMatrix(4, 3, gen), wrong = RandomMatrix(4, 4, gen);
  KXSymMatrix s = RandomSym(3, gen);
  const KXSymMatrix before(s);
  KXRectMatrix broken(block), rect(1, 1);
  broken.AsVector().resize(11);
  for (double w : {0.0, -1.0, std::nan("")}) EXPECT_FALSE(s.UpdateXXMat2(block, block, w));
  const KXRectMatrix tall = RandomMatrix(5, 3, gen), narrow = RandomMatrix(4, 2, gen);
  EXPECT_FALSE(s.UpdateXXMat2(block, tall, 1.0) || s.UpdateXXMat2(block, narrow, 1.0) ||  // shapes differ
               s.UpdateXXMat2(narrow, narrow, 1.0) ||  // not n columns
               s.UpdateXXMat2(block, broken, 1.0) || s.ComputeRByRTrans(broken) || s.ComputeRTransByR(broken));
  EXPECT_TRUE(SamePacked(s, before));
  KXSymMatrix sym(2);
  EXPECT_FALSE(s.ComputeRS(wrong, rect) || s.ComputeRSRTrans(wrong, sym) || s.ComputeRTransSR(wrong, sym) ||
               s.ComputeSS(KXSymMatrix(4), rect));
  EXPECT_EQ(rect.GetNRows() + sym.GetNRows(), 3);
  s.AsVector().resize(2);  // a caller broke the size through AsVector()
  EXPECT_FALSE(s.ExpandSymToRect(rect) || s.CopyRowToRColumn(0, rect, 0, 0));
  EXPECT_EQ(rect.GetNRows(), 1);
}

TEST(KXSymMatrixRectTest, RowToColumn) {
  std::mt19937_64 gen(6);
  const KXSymMatrix s = RandomSym(4, gen);
  KXRectMatrix target(6, 2);
  ASSERT_TRUE(s.CopyRowToRColumn(1, target, 1, 2));
  for (int i = 0; i < 6; ++i)
    EXPECT_EQ(target.GetElem(i, 1), i >= 2 ? s.GetElem(1, i - 2) : 0.0);
  EXPECT_FALSE(s.CopyRowToRColumn(1, target, 1, 3) ||  // runs past the end
               s.CopyRowToRColumn(4, target, 0, 0) || s.CopyRowToRColumn(0, target, 2, 0) ||
               s.CopyRowToRColumn(0, target, 0, -1));
}

}  // namespace
}  // namespace KXCommon
