// Tests of the KXSymMatrix members that take a KXRectMatrix: the block
// cross-product update against case-by-case UpdateXX (bit for bit), and the
// products against plain loops on full matrices.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "kxcommonr/common/rectmatrix/KXRectMatrix.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"
#include "kxcommonr/testing/RectMatrixTestUtil.h"

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
  const std::vector<double>& x = a.GetData();
  const std::vector<double>& y = b.GetData();
  return x.size() == y.size() && (x.empty() || std::memcmp(x.data(), y.data(), x.size() * sizeof(double)) == 0);
}

// Plain product of full matrices given by element accessors.
template <typename A, typename B>
std::vector<double> Multiply(int m, int k, int n, A a, B b) {
  std::vector<double> c(static_cast<std::size_t>(m) * n, 0.0);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < n; ++j) {
      double s = 0.0;
      for (int p = 0; p < k; ++p) s += a(i, p) * b(p, j);
      c[static_cast<std::size_t>(i) * n + j] = s;
    }
  return c;
}

double Scale(const std::vector<double>& v) {
  double largest = 1.0;
  for (double x : v) largest = std::fmax(largest, std::fabs(x));
  return largest;
}

// A block of cases must give the matrix that the same cases give one by
// one through UpdateXX, bit for bit; shapes cross the kernels' tile edges
// and a 256-case slab, and include zeros, which UpdateXX skips.
TEST(KXSymMatrixRectTest, BlockUpdateEqualsCaseByCase) {
  std::mt19937_64 gen(21);
  for (int p : {0, 1, 2, 5, 8, 16, 17, 50, 61}) {
    for (int cases : {0, 1, 3, 255, 300}) {
      KXRectMatrix block = RandomMatrix(cases, p, gen);
      for (int q = 0; q < cases * p; q += 7) block.AsVector()[q] = 0.0;
      const double w = 1.75;
      KXSymMatrix byBlock = RandomSym(p, gen);
      KXSymMatrix byCase(byBlock);
      ASSERT_TRUE(byBlock.UpdateXXMat2(block, block, w));
      std::vector<double> x;
      for (int c = 0; c < cases; ++c) {
        block.GetRow(c, x);
        ASSERT_TRUE(byCase.UpdateXX(x, w));
      }
      EXPECT_TRUE(SamePacked(byBlock, byCase)) << "p=" << p << " cases=" << cases;
    }
  }
}

// Case weights: r2 holds each case multiplied by its weight, w = 1.
TEST(KXSymMatrixRectTest, WeightedBlockEqualsWeightedCases) {
  std::mt19937_64 gen(4);
  std::uniform_real_distribution<double> weights(0.1, 5.0);
  const int p = 23, cases = 70;
  const KXRectMatrix block = RandomMatrix(cases, p, gen);
  KXRectMatrix weighted(block);
  std::vector<double> caseWeight(cases);
  for (int c = 0; c < cases; ++c) {
    caseWeight[c] = weights(gen);
    for (int j = 0; j < p; ++j) weighted.SetElem(c, j, block.GetElem(c, j) * caseWeight[c]);
  }
  KXSymMatrix byBlock(p);
  KXSymMatrix byCase(p);
  ASSERT_TRUE(byBlock.UpdateXXMat2(block, weighted, 1.0));
  std::vector<double> x;
  for (int c = 0; c < cases; ++c) {
    block.GetRow(c, x);
    ASSERT_TRUE(byCase.UpdateXX(x, caseWeight[c]));
  }
  EXPECT_TRUE(SamePacked(byBlock, byCase));
}

TEST(KXSymMatrixRectTest, BlockUpdateRefusals) {
  std::mt19937_64 gen(8);
  const KXRectMatrix block = RandomMatrix(4, 3, gen);
  KXSymMatrix s = RandomSym(3, gen);
  const KXSymMatrix before(s);
  EXPECT_FALSE(s.UpdateXXMat2(block, block, 0.0));
  EXPECT_FALSE(s.UpdateXXMat2(block, block, -1.0));
  EXPECT_FALSE(s.UpdateXXMat2(block, block, std::nan("")));
  EXPECT_FALSE(s.UpdateXXMat2(block, RandomMatrix(5, 3, gen), 1.0));
  EXPECT_FALSE(s.UpdateXXMat2(block, RandomMatrix(4, 2, gen), 1.0));
  EXPECT_FALSE(s.UpdateXXMat2(RandomMatrix(4, 2, gen), RandomMatrix(4, 2, gen), 1.0));
  KXRectMatrix broken(block);
  broken.AsVector().resize(11);
  EXPECT_FALSE(s.UpdateXXMat2(block, broken, 1.0));
  EXPECT_TRUE(SamePacked(s, before));
}

TEST(KXSymMatrixRectTest, ProductsMatchPlainLoops) {
  std::mt19937_64 gen(13);
  for (int n : {0, 1, 3, 10, 19}) {
    for (int m : {0, 1, 4, 13}) {
      const KXSymMatrix s = RandomSym(n, gen);
      auto sAt = [&](int i, int j) { return s.GetElem(i, j); };
      const KXRectMatrix r = RandomMatrix(m, n, gen);   // R S, R S R'
      const KXRectMatrix q = RandomMatrix(n, m, gen);   // R' S R with R = q
      auto rAt = [&](int i, int j) { return r.GetElem(i, j); };
      auto rtAt = [&](int i, int j) { return r.GetElem(j, i); };
      auto qAt = [&](int i, int j) { return q.GetElem(i, j); };
      auto qtAt = [&](int i, int j) { return q.GetElem(j, i); };

      KXRectMatrix rs;
      ASSERT_TRUE(s.ComputeRS(r, rs));
      const std::vector<double> expectRS = Multiply(m, n, n, rAt, sAt);
      EXPECT_EQ(rs.GetData(), expectRS);

      KXSymMatrix rsr;
      ASSERT_TRUE(s.ComputeRSRTrans(r, rsr));
      ASSERT_EQ(rsr.GetNRows(), m);
      auto rsAt = [&](int i, int j) { return expectRS[static_cast<std::size_t>(i) * n + j]; };
      const std::vector<double> expectRSR = Multiply(m, n, m, rsAt, rtAt);
      const double tol = 1e-13 * Scale(expectRSR);
      for (int i = 0; i < m; ++i)
        for (int j = 0; j < m; ++j) EXPECT_NEAR(rsr.GetElem(i, j), expectRSR[i * m + j], tol);

      KXSymMatrix rtsr;
      ASSERT_TRUE(s.ComputeRTransSR(q, rtsr));
      ASSERT_EQ(rtsr.GetNRows(), m);
      const std::vector<double> sq = Multiply(n, n, m, sAt, qAt);
      auto sqAt = [&](int i, int j) { return sq[static_cast<std::size_t>(i) * m + j]; };
      const std::vector<double> expectRtSR = Multiply(m, n, m, qtAt, sqAt);
      for (int i = 0; i < m; ++i)
        for (int j = 0; j < m; ++j) EXPECT_NEAR(rtsr.GetElem(i, j), expectRtSR[i * m + j], 1e-13 * Scale(expectRtSR));

      KXSymMatrix rrt;
      ASSERT_TRUE(rrt.ComputeRByRTrans(r));
      KXSymMatrix rtr;
      ASSERT_TRUE(rtr.ComputeRTransByR(r));
      ASSERT_EQ(rrt.GetNRows(), m);
      ASSERT_EQ(rtr.GetNRows(), n);
      const std::vector<double> expectRRt = Multiply(m, n, m, rAt, rtAt);
      const std::vector<double> expectRtR = Multiply(n, m, n, rtAt, rAt);
      for (int i = 0; i < m; ++i)
        for (int j = 0; j < m; ++j) EXPECT_EQ(rrt.GetElem(i, j), expectRRt[i * m + j]);
      for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) EXPECT_EQ(rtr.GetElem(i, j), expectRtR[i * n + j]);

      const KXSymMatrix t = RandomSym(n, gen);
      KXRectMatrix st;
      ASSERT_TRUE(s.ComputeSS(t, st));
      EXPECT_EQ(st.GetData(), Multiply(n, n, n, sAt, [&](int i, int j) { return t.GetElem(i, j); }));
    }
  }
}

TEST(KXSymMatrixRectTest, ProductRefusalsLeaveOutputs) {
  std::mt19937_64 gen(2);
  const KXSymMatrix s = RandomSym(3, gen);
  const KXRectMatrix wrong = RandomMatrix(4, 4, gen);
  KXRectMatrix rect(1, 1);
  KXSymMatrix sym(2);
  EXPECT_FALSE(s.ComputeRS(wrong, rect));
  EXPECT_FALSE(s.ComputeRSRTrans(wrong, sym));
  EXPECT_FALSE(s.ComputeRTransSR(wrong, sym));
  EXPECT_FALSE(s.ComputeSS(KXSymMatrix(4), rect));
  EXPECT_EQ(rect.GetNRows(), 1);
  EXPECT_EQ(sym.GetNRows(), 2);
}

TEST(KXSymMatrixRectTest, RowToColumnAndExpansion) {
  std::mt19937_64 gen(6);
  const KXSymMatrix s = RandomSym(4, gen);
  KXRectMatrix full;
  ASSERT_TRUE(s.ExpandSymToRect(full));
  ASSERT_EQ(full.GetNRows(), 4);
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) EXPECT_EQ(full.GetElem(i, j), s.GetElem(i, j));
  KXRectMatrix target(6, 2);
  ASSERT_TRUE(s.CopyRowToRColumn(1, target, 1, 2));
  for (int j = 0; j < 4; ++j) EXPECT_EQ(target.GetElem(2 + j, 1), s.GetElem(1, j));
  EXPECT_EQ(target.GetElem(1, 1), 0.0);
  EXPECT_FALSE(s.CopyRowToRColumn(1, target, 1, 3));  // runs past the end
  EXPECT_FALSE(s.CopyRowToRColumn(4, target, 0, 0));
  EXPECT_FALSE(s.CopyRowToRColumn(0, target, 2, 0));
}

}  // namespace
}  // namespace KXCommon
