// Tests of the sweep, Cholesky, inverse and solve family of KXSymMatrix.
// Results are checked against independent computations: products formed
// densely in long double, sweeps reversed, factors multiplied back, and the
// certified NIST values of the Longley regression.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"
#include "kxcommonr/common/packed/KXPackedFactorKernels.h"
#include "kxcommonr/testing/SymMatrixTestUtil.h"
#include "kxcommonr/testing/TestData.h"

namespace {

using KXCommon::KXBitSet;
using KXCommon::KXMV;
using KXCommon::KXSymMatrix;
using kxtesting::Dense;
using kxtesting::LowerOf;
using kxtesting::Transpose;

// Random symmetric positive definite matrix B B' / p + shift I, with B of
// order n x p (p >= n keeps it well conditioned).
Dense RandomSpd(std::size_t n, unsigned seed, double shift = 0.1) {
  std::mt19937_64 engine(seed);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  const std::size_t p = n + 3;
  std::vector<double> b(n * p);
  for (double& x : b) x = uniform(engine);
  Dense a(n);
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t j = 0; j <= i; ++j) {
      double s = 0.0;
      for (std::size_t k = 0; k < p; ++k) s += b[i * p + k] * b[j * p + k];
      a(i, j) = a(j, i) = s / static_cast<double>(p) + (i == j ? shift : 0.0);
    }
  return a;
}

// Cross products X'X of cases whose columns listed in `copies` are exact
// combinations of earlier columns (small integers, so the products are
// exact): those rows, and only those, are linearly dependent.
Dense DependentCrossProducts(std::size_t p, const std::vector<std::size_t>& dependent,
                             unsigned seed) {
  std::mt19937_64 engine(seed);
  std::uniform_int_distribution<int> digit(-4, 4);
  const std::size_t cases = 3 * p + 5;
  std::vector<std::vector<double>> x(cases, std::vector<double>(p));
  for (auto& row : x) {
    for (std::size_t j = 0; j < p; ++j) row[j] = digit(engine);
    for (std::size_t j : dependent) row[j] = row[j - 1] - 2.0 * row[j / 2];
  }
  Dense a(p);
  for (const auto& row : x)
    for (std::size_t i = 0; i < p; ++i)
      for (std::size_t j = 0; j < p; ++j) a(i, j) += row[i] * row[j];
  return a;
}

std::vector<double> Diagonal(const Dense& a) {
  std::vector<double> d(a.n);
  for (std::size_t i = 0; i < a.n; ++i) d[i] = a(i, i);
  return d;
}

Dense Hilbert(std::size_t n) {
  Dense h(n);
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t j = 0; j < n; ++j) h(i, j) = 1.0 / static_cast<double>(i + j + 1);
  return h;
}

Dense Identity(std::size_t n) {
  Dense e(n);
  for (std::size_t i = 0; i < n; ++i) e(i, i) = 1.0;
  return e;
}

double MaxAbs(const Dense& x) {
  double m = 0.0;
  for (double v : x.a) m = std::fmax(m, std::fabs(v));
  return m;
}

// ---------------------------------------------------------------------------
// Small cases with known answers
// ---------------------------------------------------------------------------

TEST(KXSymMatrixSweep, TwoByTwoForwardAndReverse) {
  Dense d(2);
  d(0, 0) = 4; d(0, 1) = d(1, 0) = 2; d(1, 1) = 3;
  KXSymMatrix s = kxtesting::ToSym(d);
  const std::vector<double> orig = {4, 3};
  KXBitSet swept(2);
  ASSERT_TRUE(s.Sweep(0, 1e-8, orig, swept, true));
  EXPECT_TRUE(swept.IsIn(0));
  EXPECT_DOUBLE_EQ(s.GetElem(0, 0), -0.25);
  EXPECT_DOUBLE_EQ(s.GetElem(1, 0), 0.5);
  EXPECT_DOUBLE_EQ(s.GetElem(1, 1), 2.0);
  ASSERT_TRUE(s.Sweep(0, 1e-8, orig, swept, true));
  EXPECT_FALSE(swept.IsIn(0));
  EXPECT_DOUBLE_EQ(s.GetElem(0, 0), 4.0);
  EXPECT_DOUBLE_EQ(s.GetElem(1, 0), 2.0);
  EXPECT_DOUBLE_EQ(s.GetElem(1, 1), 3.0);
}

TEST(KXSymMatrixSweep, RejectionsLeaveMatrixAndBitsUnchanged) {
  KXSymMatrix s(2);
  s.SetElem(0, 0, 1); s.SetElem(1, 0, 1); s.SetElem(1, 1, 1);
  const std::vector<double> orig = {1, 1};
  KXBitSet swept(2);
  ASSERT_TRUE(s.Sweep(0, 1e-8, orig, swept, true));
  const std::vector<double> before = s.GetData();
  // Row 1 has residual 0 after row 0.
  EXPECT_FALSE(s.Sweep(1, 1e-8, orig, swept, true));
  EXPECT_EQ(s.GetData(), before);
  EXPECT_TRUE(swept.IsIn(0));
  EXPECT_FALSE(swept.IsIn(1));

  // A pivot equal to tol * origDiag is rejected; a hair above is accepted.
  KXSymMatrix t(1);
  t.SetElem(0, 0, 0.5);
  KXBitSet one(1);
  EXPECT_FALSE(t.Sweep(0, 0.25, {2.0}, one, true));
  EXPECT_DOUBLE_EQ(t.GetElem(0, 0), 0.5);
  EXPECT_TRUE(t.Sweep(0, 0.2499999, {2.0}, one, true));

  // Checked argument errors.
  KXSymMatrix u = kxtesting::ToSym(RandomSpd(3, 1));
  const std::vector<double> good = {1, 1, 1};
  KXBitSet bits(3);
  const std::vector<double> data = u.GetData();
  EXPECT_FALSE(u.Sweep(3, 1e-8, good, bits, true));
  EXPECT_FALSE(u.Sweep(-1, 1e-8, good, bits, false));
  EXPECT_FALSE(u.Sweep(0, 0.0, good, bits, true));
  EXPECT_FALSE(u.Sweep(0, 1e-8, {1, -1, 1}, bits, true));
  EXPECT_FALSE(u.Sweep(0, 1e-8, {1, 1}, bits, false));  // too short: never read
  KXBitSet shortBits(2);
  EXPECT_FALSE(u.Sweep(0, 1e-8, good, shortBits, false));
  EXPECT_EQ(u.GetData(), data);
  EXPECT_EQ(bits.InSet(), 0);
}

TEST(KXSymMatrixCholesky, SmallCasesAndChecks) {
  KXSymMatrix s(2);
  s.SetElem(0, 0, 1); s.SetElem(1, 0, 1); s.SetElem(1, 1, 1);
  KXBitSet nonRedundant;
  EXPECT_EQ(s.LTChol({1, 1}, 1e-8, nonRedundant, true), 1);
  EXPECT_EQ(nonRedundant.Size(), 2);
  EXPECT_TRUE(nonRedundant.IsIn(0));
  EXPECT_FALSE(nonRedundant.IsIn(1));
  EXPECT_EQ(s.GetData(), (std::vector<double>{1, 1, 0}));

  KXSymMatrix t = kxtesting::ToSym(RandomSpd(4, 2));
  const std::vector<double> before = t.GetData();
  KXBitSet bits(7);
  bits.Set(5, true);
  EXPECT_EQ(t.LTChol({1, 1, -1, 1}, 1e-8, bits, true), -1);
  EXPECT_EQ(t.LTChol({1, 1, 1, 1}, -1e-8, bits, true), -1);
  EXPECT_EQ(t.LTChol({1, 1, 1}, 1e-8, bits, false), -1);
  EXPECT_EQ(t.GetData(), before);
  EXPECT_TRUE(bits.IsIn(5));  // refused: the mask is untouched too
  // A longer mask keeps its size and is cleared before being filled.
  EXPECT_EQ(t.LTChol({1, 1, 1, 1}, 1e-8, bits, true), 0);
  EXPECT_EQ(bits.Size(), 7);
  EXPECT_EQ(bits.InSet(), 4);
  EXPECT_FALSE(bits.IsIn(5));

  // Self-derived diagonal: out is the smallest accepted pivot.
  KXSymMatrix u(2);
  u.SetElem(0, 0, 9); u.SetElem(1, 1, 4);
  double out = 0;
  EXPECT_EQ(u.LTChol(1e-8, out, true), 0);
  EXPECT_DOUBLE_EQ(out, 2.0);
  EXPECT_EQ(u.LTChol(-1.0, out, true), -1);
  EXPECT_TRUE(KXMV::IsMissing(out));
}

TEST(KXSymMatrixInverse, KnownInversesAndDeterminants) {
  KXSymMatrix d(2);
  d.SetElem(0, 0, 4); d.SetElem(1, 1, 9);
  KXSymMatrix inv;
  EXPECT_EQ(d.CholInverse({4, 9}, 1e-8, inv), 0);
  EXPECT_DOUBLE_EQ(inv.GetElem(0, 0), 0.25);
  EXPECT_DOUBLE_EQ(inv.GetElem(1, 1), 1.0 / 9.0);
  EXPECT_EQ(inv.GetElem(1, 0), 0.0);

  double minPivot = 0;
  EXPECT_EQ(d.CholInverse({4, 9}, 1e-8, inv, minPivot), 0);
  EXPECT_DOUBLE_EQ(minPivot, 2.0);
  KXSymMatrix empty;
  EXPECT_EQ(empty.CholInverse({}, 1e-8, inv, minPivot), 0);
  EXPECT_TRUE(KXMV::IsMissing(minPivot));
  // A refused factorisation leaves out as the copy.
  EXPECT_EQ(d.CholInverse({4, -9}, 1e-8, inv), -1);
  EXPECT_EQ(inv.GetData(), d.GetData());

  double det[2] = {0, 0};
  KXSymMatrix diag3(3);
  diag3.SetElem(0, 0, 2); diag3.SetElem(1, 1, 3); diag3.SetElem(2, 2, 40);
  ASSERT_TRUE(diag3.ComputeDeterminant(1e-10, det));
  EXPECT_NEAR(det[0], 2.4, 1e-14);
  EXPECT_EQ(det[1], 2.0);
  EXPECT_EQ(diag3.GetElem(2, 2), 40.0);  // computed on a copy

  // det(Hilbert 4) = 1 / 6048000.
  ASSERT_TRUE(kxtesting::ToSym(Hilbert(4)).ComputeDeterminant(1e-14, det));
  EXPECT_NEAR(det[0] * std::pow(10.0, det[1]), 1.0 / 6048000.0, 1e-12 / 6048000.0);
  EXPECT_GE(std::fabs(det[0]), 1.0);
  EXPECT_LT(std::fabs(det[0]), 10.0);
  // Large magnitudes stay in the mantissa-exponent form.
  KXSymMatrix big(40);
  for (int i = 0; i < 40; ++i) big.SetElem(i, i, 1e20);
  ASSERT_TRUE(big.ComputeDeterminant(1e-10, det));
  EXPECT_NEAR(det[0], 1.0, 1e-12);
  EXPECT_EQ(det[1], 800.0);
  // Singular: determinant 0.
  KXSymMatrix ones(2);
  ones.SetElem(0, 0, 1); ones.SetElem(1, 0, 1); ones.SetElem(1, 1, 1);
  ASSERT_TRUE(ones.ComputeDeterminant(1e-10, det));
  EXPECT_EQ(det[0], 0.0);
  EXPECT_FALSE(KXSymMatrix().ComputeDeterminant(1e-10, det));
  // The job digits: units = determinant only (factor untouched), tens =
  // inverse only (det untouched), both.
  KXSymMatrix factor(2);
  factor.SetElem(0, 0, 2); factor.SetElem(1, 0, 1); factor.SetElem(1, 1, 4);  // L
  const std::vector<double> stored = factor.GetData();
  EXPECT_EQ(factor.LTDetInverse(det, 1), 0);
  EXPECT_DOUBLE_EQ(det[0], 6.4);  // (2 * 4)^2 = 64
  EXPECT_EQ(det[1], 1.0);
  EXPECT_EQ(factor.GetData(), stored);
  det[0] = det[1] = -7;
  EXPECT_EQ(factor.LTDetInverse(det, 10), 0);
  EXPECT_EQ(det[0], -7.0);
  EXPECT_EQ(factor.GetData(), (std::vector<double>{0.5, -0.125, 0.25}));
  EXPECT_EQ(factor.LTDetInverse(det, 11), 0);  // inverting L^-1 gives L back
  EXPECT_EQ(factor.GetData(), stored);
  EXPECT_DOUBLE_EQ(det[0], 1.5625);  // (0.5 * 0.25)^2 = 0.015625
  EXPECT_EQ(det[1], -2.0);
  EXPECT_EQ(factor.LTDetInverse(det, -1), -1);
  EXPECT_FALSE(diag3.ComputeDeterminant(1e-10, nullptr));
  EXPECT_EQ(diag3.LTDetInverse(nullptr, 11), -1);
}

// ---------------------------------------------------------------------------
// Fast kernels against the plain loops, bit for bit, on every path the
// machine offers.
// ---------------------------------------------------------------------------

class KernelLevels : public ::testing::Test {
 protected:
  void TearDown() override { KXCommon::internal::SetKernelLevel(-1); }
  std::vector<int> Levels() {
    std::vector<int> levels;
    const int top = KXCommon::internal::SetKernelLevel(-1);
    for (int level = 0; level <= top; ++level) levels.push_back(level);
    return levels;
  }
};

TEST_F(KernelLevels, BlockedCholeskyMatchesPlainBitForBit) {
  namespace in = KXCommon::internal;
  struct Case { std::size_t n; std::vector<std::size_t> dependent; int width; };
  const std::vector<Case> cases = {
      {1, {}, 1},      {2, {}, 1},          {7, {3}, 2},          {17, {5, 9}, 3},
      {33, {}, 8},     {40, {10, 31}, 7},   {67, {2, 40, 66}, 16}, {100, {50}, 0},
      {131, {}, 0},    {150, {20, 100}, 33}};
  for (int level : Levels()) {
    in::SetKernelLevel(level);
    for (const Case& c : cases) {
      const Dense a = c.dependent.empty()
                          ? RandomSpd(c.n, static_cast<unsigned>(c.n))
                          : DependentCrossProducts(c.n, c.dependent, static_cast<unsigned>(c.n));
      const std::vector<double> orig = Diagonal(a);
      std::vector<double> plain = kxtesting::ToSym(a).GetData();
      std::vector<double> fast = plain;
      std::vector<unsigned char> plainOk(c.n), fastOk(c.n);
      const int plainCount = in::PackedCholeskyPlain(plain.data(), static_cast<int>(c.n),
                                                     orig.data(), 1e-9, plainOk.data());
      const int fastCount = in::PackedCholeskyWithPanel(
          fast.data(), static_cast<int>(c.n), orig.data(), 1e-9, fastOk.data(), c.width);
      EXPECT_EQ(plainCount, static_cast<int>(c.dependent.size())) << "n=" << c.n;
      EXPECT_EQ(fastCount, plainCount);
      EXPECT_EQ(fastOk, plainOk);
      EXPECT_EQ(0, std::memcmp(plain.data(), fast.data(), plain.size() * sizeof(double)))
          << "level " << level << " n=" << c.n << " width=" << c.width;
    }
  }
}

TEST_F(KernelLevels, ChunkedSweepMatchesPlainBitForBit) {
  namespace in = KXCommon::internal;
  for (int level : Levels()) {
    in::SetKernelLevel(level);
    for (int n : {1, 2, 9, 64, 530, 2100}) {
      // Diagonally dominant, so every sweep has a healthy pivot.
      Dense a = kxtesting::RandomSymmetric(n, 7u + n);
      for (int i = 0; i < n; ++i) a(i, i) += n;
      std::vector<double> plain = kxtesting::ToSym(a).GetData();
      std::vector<double> fast = plain;
      // Even k visits the rows upwards, odd k downwards; above 2048 rows
      // the columns go in several chunks.
      const std::vector<int> ks =
          n > 1000 ? std::vector<int>{n - 1, n / 2}
                   : std::vector<int>{0, n / 2, n - 1, n / 3, std::min((n / 3) | 1, n - 1)};
      for (int k : ks) {
        in::PackedSweepRowPlain(plain.data(), n, k);
        in::PackedSweepRow(fast.data(), n, k);
      }
      EXPECT_EQ(0, std::memcmp(plain.data(), fast.data(), plain.size() * sizeof(double)))
          << "level " << level << " n=" << n;
    }
  }
}

TEST_F(KernelLevels, BlockedInverseAndProductMatchPlainBitForBit) {
  namespace in = KXCommon::internal;
  for (int level : Levels()) {
    in::SetKernelLevel(level);
    for (int n : {31, 32, 33, 47, 64, 101, 150}) {
      // A factor with two zero pivots (rows 5 and n-2), as LTChol leaves it.
      const Dense a = DependentCrossProducts(n, {5, static_cast<std::size_t>(n - 2)}, 40u + n);
      std::vector<double> factor = kxtesting::ToSym(a).GetData();
      std::vector<unsigned char> ok(n);
      const std::vector<double> orig = Diagonal(a);
      ASSERT_EQ(in::PackedCholesky(factor.data(), n, orig.data(), 1e-9, ok.data()), 2);
      std::vector<double> plain = factor, fast = factor;
      EXPECT_EQ(in::PackedLowerInversePlain(plain.data(), n), 2);
      EXPECT_EQ(in::PackedLowerInverse(fast.data(), n), 2);
      EXPECT_EQ(0, std::memcmp(plain.data(), fast.data(), plain.size() * sizeof(double)))
          << "inverse, level " << level << " n=" << n;
      in::PackedLowerTransLowerPlain(plain.data(), n);
      in::PackedLowerTransLower(fast.data(), n);
      EXPECT_EQ(0, std::memcmp(plain.data(), fast.data(), plain.size() * sizeof(double)))
          << "M'M, level " << level << " n=" << n;
    }
  }
}

// ---------------------------------------------------------------------------
// Properties against independent computations
// ---------------------------------------------------------------------------

// Factor, inverse and every solver on random positive definite matrices,
// each checked against a dense product with the original matrix.
TEST(KXSymMatrixCholesky, FactorInverseAndSolvesAgainstDenseProducts) {
  for (std::size_t n : {1u, 3u, 7u, 16u, 64u, 65u, 97u, 200u}) {
    SCOPED_TRACE(n);
    const Dense a = RandomSpd(n, 100 + static_cast<unsigned>(n));
    const double scale = MaxAbs(a);
    KXSymMatrix s = kxtesting::ToSym(a);
    KXBitSet nonRedundant;
    ASSERT_EQ(s.LTChol(Diagonal(a), 1e-10, nonRedundant, true), 0);
    EXPECT_EQ(nonRedundant.InSet(), static_cast<int>(n));
    const Dense l = LowerOf(s);
    EXPECT_LE(kxtesting::MaxAbsDiff(kxtesting::Multiply(l, Transpose(l)), a), 1e-13 * scale);
    // Solving with the stored factor: A x = b.
    const std::vector<double> b = kxtesting::RandomVector(n, 3);
    std::vector<double> x, y;
    ASSERT_EQ(s.LTSubstitute(b, x), 0);
    ASSERT_EQ(x.size(), n);
    for (std::size_t i = 0; i < n; ++i) {
      long double r = 0;
      for (std::size_t j = 0; j < n; ++j) r += static_cast<long double>(a(i, j)) * x[j];
      EXPECT_NEAR(static_cast<double>(r), b[i], 1e-11);
    }
    // LTLLTrans rebuilds the matrix from its factor in place.
    s.LTLLTrans();
    EXPECT_LE(kxtesting::MaxAbsDiff(kxtesting::ToDense(s), a), 1e-13 * scale);
    // Factor-and-solve in one call gives the same solution; the general
    // solvers agree and leave the matrix alone.
    ASSERT_EQ(kxtesting::ToSym(a).LTSolve(b, 1e-10, y), 0);
    EXPECT_EQ(y, x);
    KXSymMatrix t = kxtesting::ToSym(a);
    ASSERT_TRUE(t.SolveIndefinite(1e-12, b, y));
    for (std::size_t i = 0; i < n; ++i) EXPECT_NEAR(y[i], x[i], 1e-9);
    ASSERT_TRUE(t.SolveIndefiniteGI(1e-12, b, y));
    for (std::size_t i = 0; i < n; ++i) EXPECT_NEAR(y[i], x[i], 1e-9);
    EXPECT_EQ(t.GetData(), kxtesting::ToSym(a).GetData());
    KXSymMatrix inv;
    ASSERT_EQ(t.CholInverse(Diagonal(a), 1e-10, inv, nonRedundant), 0);
    EXPECT_LE(kxtesting::MaxAbsDiff(kxtesting::Multiply(kxtesting::ToDense(inv), a), Identity(n)),
              1e-11);
  }
}

TEST(KXSymMatrixCholesky, RedundantRowsAreExactlyTheDependentOnes) {
  const std::vector<std::size_t> dependent = {3, 8, 9, 30, 59};
  const Dense a = DependentCrossProducts(60, dependent, 5);
  KXSymMatrix s = kxtesting::ToSym(a);
  KXBitSet nonRedundant;
  ASSERT_EQ(s.LTChol(Diagonal(a), 1e-9, nonRedundant, true), 5);
  for (int i = 0; i < 60; ++i) {
    const bool isDependent =
        std::find(dependent.begin(), dependent.end(), static_cast<std::size_t>(i)) !=
        dependent.end();
    EXPECT_EQ(nonRedundant.IsIn(i), !isDependent) << i;
    if (isDependent) {
      EXPECT_EQ(s.GetElem(i, i), 0.0);
      for (int r = i + 1; r < 60; ++r) EXPECT_EQ(s.GetElem(r, i), 0.0);
    }
  }
  // The factor of the full-rank part still multiplies back to the matrix.
  const Dense l = LowerOf(s);
  EXPECT_LE(kxtesting::MaxAbsDiff(kxtesting::Multiply(l, Transpose(l)), a),
            1e-11 * MaxAbs(a));
  // CholIndNonRed finds the same rows, in increasing order.
  KXSymMatrix t = kxtesting::ToSym(a);
  std::vector<int> idx = {99};
  EXPECT_EQ(t.CholIndNonRed(0, 1e-9, idx), 5);
  std::vector<int> expected;
  for (int i = 0; i < 60; ++i)
    if (nonRedundant.IsIn(i)) expected.push_back(i);
  EXPECT_EQ(idx, expected);
  // Restricted to the leading rows, the rest of the triangle is untouched.
  KXSymMatrix u = kxtesting::ToSym(a);
  const std::vector<double> before = u.GetData();
  EXPECT_EQ(u.CholIndNonRed(10, 1e-9, idx), 3);
  EXPECT_EQ(idx, (std::vector<int>{0, 1, 2, 4, 5, 6, 7}));
  for (std::size_t k = KXSymMatrix::PackedSize(10); k < before.size(); ++k)
    ASSERT_EQ(u.GetData()[k], before[k]);
  EXPECT_EQ(u.CholIndNonRed(61, 1e-9, idx), -1);
  EXPECT_EQ(u.CholIndNonRed(-1, 1e-9, idx), -1);
}

TEST(KXSymMatrixSweep, ForwardThenReverseRestoresAndAllRowsGiveMinusInverse) {
  for (int n : {2, 11, 60, 130}) {
    const Dense a = RandomSpd(n, 300 + n);
    KXSymMatrix s = kxtesting::ToSym(a);
    const std::vector<double> orig = Diagonal(a);
    KXBitSet swept(n);
    for (int k = 0; k < n; ++k) ASSERT_TRUE(s.Sweep(k, 1e-10, orig, swept, true)) << k;
    EXPECT_EQ(swept.InSet(), n);
    // Swept on every row: minus the inverse, so A * (-S) is the identity.
    Dense minusS = kxtesting::ToDense(s);
    for (double& v : minusS.a) v = -v;
    EXPECT_LE(kxtesting::MaxAbsDiff(kxtesting::Multiply(a, minusS), Identity(n)), 1e-11);
    // Reversing in another order restores the matrix.
    for (int k = n - 1; k >= 0; k -= 2) ASSERT_TRUE(s.Sweep(k, 1e-10, orig, swept, true));
    for (int k = n % 2 == 0 ? 0 : 1; k < n; k += 2)
      ASSERT_TRUE(s.Sweep(k, 1e-10, orig, swept, true));
    EXPECT_EQ(swept.InSet(), 0);
    EXPECT_LE(kxtesting::MaxAbsDiff(kxtesting::ToDense(s), a), 1e-12 * MaxAbs(a));
  }
}

TEST(KXSymMatrixInverse, IllConditionedHilbertMatrices) {
  // Hilbert 8 (condition about 1.5e10): still an inverse to 1e-5.
  const Dense h = Hilbert(8);
  KXSymMatrix inv;
  ASSERT_EQ(kxtesting::ToSym(h).CholInverse(Diagonal(h), 1e-14, inv), 0);
  EXPECT_LE(kxtesting::MaxAbsDiff(kxtesting::Multiply(kxtesting::ToDense(inv), h),
                                  Identity(8)),
            1e-5);
  // Hilbert 14 is numerically singular at tol 1e-7: rows become redundant,
  // and the result is a generalised inverse G with H G H = H and G H G = G
  // (to the accuracy its condition allows).
  const Dense h14 = Hilbert(14);
  KXBitSet kept;
  const int dropped = kxtesting::ToSym(h14).CholInverse(Diagonal(h14), 1e-7, inv, kept);
  EXPECT_GT(dropped, 0);
  EXPECT_EQ(dropped, 14 - kept.InSet());
  EXPECT_TRUE(kxtesting::ToSym(h14).CheckGMG(inv.GetData(), 1e-5));
  std::vector<double> scaled = inv.GetData();
  for (double& v : scaled) v *= 1.001;
  EXPECT_FALSE(kxtesting::ToSym(h14).CheckGMG(scaled, 1e-5));
}

TEST(KXSymMatrixInverse, RankDeficientInverseIsGeneralisedInverse) {
  const Dense a = DependentCrossProducts(25, {4, 13}, 9);
  KXSymMatrix g;
  KXBitSet kept;
  ASSERT_EQ(kxtesting::ToSym(a).CholInverse(Diagonal(a), 1e-9, g, kept), 2);
  for (int r = 0; r < 25; ++r) {
    if (kept.IsIn(r)) continue;
    for (int c = 0; c < 25; ++c) EXPECT_EQ(g.GetElem(r, c), 0.0);
  }
  const KXSymMatrix s = kxtesting::ToSym(a);
  EXPECT_TRUE(s.CheckGMG(g.GetData(), 1e-10));
  // Sweeping the kept rows gives the same generalised inverse (negated).
  KXSymMatrix swept = s;
  KXBitSet bits(25);
  const std::vector<double> orig = Diagonal(a);
  for (int k = 0; k < 25; ++k) EXPECT_EQ(swept.Sweep(k, 1e-9, orig, bits, true), kept.IsIn(k));
  for (int r = 0; r < 25; ++r)
    for (int c = 0; c <= r; ++c) {
      if (!kept.IsIn(r) || !kept.IsIn(c)) continue;
      EXPECT_NEAR(-swept.GetElem(r, c), g.GetElem(r, c),
                  1e-9 * std::fabs(g.GetElem(r, r)) + 1e-12);
    }
  // A perturbed matrix is not a generalised inverse.
  std::vector<double> wrong = g.GetData();
  wrong[0] *= 1.01;
  EXPECT_FALSE(s.CheckGMG(wrong, 1e-6));
  EXPECT_FALSE(s.CheckGMG({1.0}, 1e-6));
}

TEST(KXSymMatrixSolve, RefusalsAndZeroPivots) {
  KXSymMatrix s = kxtesting::ToSym(RandomSpd(3, 1));
  std::vector<double> x = {5};
  EXPECT_EQ(s.LTSolve({1, 2}, 1e-10, x), -1);
  EXPECT_EQ(s.LTSolve({1, 2, 3}, 0.0, x), -1);
  EXPECT_EQ(x, std::vector<double>{5});
  EXPECT_EQ(s.LTSubstitute({1, 2}, x), -1);
  // A zero pivot gives a zero component.
  KXSymMatrix ones(2);
  ones.SetElem(0, 0, 1); ones.SetElem(1, 0, 1); ones.SetElem(1, 1, 1);
  ASSERT_EQ(ones.LTSolve({2, 2}, 1e-10, x), 1);
  EXPECT_EQ(x, (std::vector<double>{2, 0}));
}

TEST(KXSymMatrixSolve, IndefiniteAndSingularSystems) {
  // Indefinite, nonsingular, with a zero diagonal: [[0, 1], [1, 0]] x = (2, 3).
  KXSymMatrix swap(2);
  swap.SetElem(1, 0, 1);
  std::vector<double> x;
  ASSERT_TRUE(swap.SolveIndefinite(1e-12, {2, 3}, x));
  EXPECT_EQ(x, (std::vector<double>{3, 2}));
  // Singular: refused, x unchanged.
  KXSymMatrix ones(3);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j <= i; ++j) ones.SetElem(i, j, 1.0);
  EXPECT_FALSE(ones.SolveIndefinite(1e-12, {1, 1, 1}, x));
  EXPECT_EQ(x, (std::vector<double>{3, 2}));
  // On a subset of rows.
  KXBitSet rows(3);
  rows.Set(1, true);
  ASSERT_TRUE(ones.SolveIndefinite(rows, {4, 5, 6}, x));
  EXPECT_EQ(x, (std::vector<double>{0, 5, 0}));
  // Generalised-inverse solution of a consistent singular system: A x = b.
  const Dense a = DependentCrossProducts(12, {5}, 21);
  std::vector<double> truth = kxtesting::RandomVector(12, 8), b(12, 0.0);
  for (std::size_t i = 0; i < 12; ++i)
    for (std::size_t j = 0; j < 12; ++j) b[i] += a(i, j) * truth[j];
  KXSymMatrix s = kxtesting::ToSym(a);
  ASSERT_TRUE(s.SolveIndefiniteGI(1e-9, b, x));
  EXPECT_EQ(x[5], 0.0);
  for (std::size_t i = 0; i < 12; ++i) {
    double r = 0;
    for (std::size_t j = 0; j < 12; ++j) r += a(i, j) * x[j];
    EXPECT_NEAR(r, b[i], 1e-8 * std::fabs(a(i, i)) + 1e-8);
  }
  EXPECT_FALSE(s.SolveIndefiniteGI(0.0, b, x));
}

TEST(KXSymMatrixSolve, ShiftToPositiveDefinite) {
  Dense a = RandomSpd(6, 4);
  a(2, 2) -= 5.0;  // indefinite
  KXSymMatrix s = kxtesting::ToSym(a);
  bool changed = false;
  double shift = -1;
  const int failing = s.TransformToPositiveDefinite(1e-8, changed, shift);
  EXPECT_GE(failing, 1);
  EXPECT_TRUE(changed);
  EXPECT_GT(shift, 0.0);
  for (int i = 0; i < 6; ++i)
    for (int j = 0; j <= i; ++j)
      EXPECT_EQ(s.GetElem(i, j), a(i, j) + (i == j ? shift : 0.0));
  KXSymMatrix copy = s;
  KXBitSet ok;
  EXPECT_EQ(copy.LTChol(std::vector<double>(6, 1.0), 0.0, ok, true), 0);
  // Already positive definite: nothing changes.
  EXPECT_EQ(s.TransformToPositiveDefinite(1e-8, changed, shift), 0);
  EXPECT_FALSE(changed);
  EXPECT_EQ(shift, 0.0);
  EXPECT_EQ(s.TransformToPositiveDefinite(0.0, changed, shift), -1);
  KXSymMatrix bad = s;
  bad.SetElem(3, 1, std::nan(""));
  EXPECT_EQ(bad.TransformToPositiveDefinite(1e-8, changed, shift), -1);
  // The zero matrix needs a ridge of about tol.
  KXSymMatrix zero(4);
  EXPECT_EQ(zero.TransformToPositiveDefinite(1e-8, changed, shift), 4);
  EXPECT_TRUE(changed);
  EXPECT_GT(shift, 1e-8);
  EXPECT_LT(shift, 1e-7);
}

TEST(KXSymMatrixSolve, DependencyChecksAndMasks) {
  const Dense a = DependentCrossProducts(8, {6}, 31);  // row 6 from rows 5 and 3
  KXSymMatrix s = kxtesting::ToSym(a);
  const std::vector<double> orig = Diagonal(a);
  KXBitSet mask(8);
  mask.SetRange(0, 5, true);
  EXPECT_EQ(s.CheckMDependent(6, orig, mask, 1e-9), 1);
  mask.Set(5, false);
  EXPECT_EQ(s.CheckMDependent(6, orig, mask, 1e-9), 0);
  EXPECT_EQ(s.CheckMDependent(8, orig, mask, 1e-9), -1);
  EXPECT_EQ(s.CheckMDependent(0, {1.0}, mask, 1e-9), -1);

  KXBitSet keep(8);
  keep.SetRange(0, 7, true);
  keep.Set(2, false);
  EXPECT_TRUE(s.ZeroOutRedundant(keep));
  for (int j = 0; j < 8; ++j) EXPECT_EQ(s.GetElem(2, j), 0.0);
  EXPECT_EQ(s.GetElem(3, 1), a(3, 1));
  EXPECT_FALSE(s.ZeroOutRedundant(KXBitSet(7)));
}

// ---------------------------------------------------------------------------
// Regression through UpdateXX and Sweep
// ---------------------------------------------------------------------------

TEST(KXSymMatrixRegression, WeightedFitMatchesNormalEquations) {
  std::mt19937_64 engine(77);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  const int p = 5;
  KXSymMatrix sscp(p + 1);  // predictors then the response
  Dense xtwx(p);
  std::vector<double> xtwy(p, 0.0);
  for (int c = 0; c < 200; ++c) {
    std::vector<double> row(p + 1);
    row[0] = 1.0;
    for (int j = 1; j < p; ++j) row[j] = uniform(engine);
    row[p] = 2.0 - row[1] + 0.5 * row[3] + 0.1 * uniform(engine);
    const double w = 1.0 + (c % 3);
    ASSERT_TRUE(sscp.UpdateXX(row, w));
    for (int i = 0; i < p; ++i) {
      xtwy[i] += w * row[i] * row[p];
      for (int j = 0; j < p; ++j) xtwx(i, j) += w * row[i] * row[j];
    }
  }
  std::vector<double> orig;
  sscp.GetDiagonal(orig);
  KXBitSet swept(p + 1);
  for (int k = 0; k < p; ++k) ASSERT_TRUE(sscp.Sweep(k, 1e-10, orig, swept, true));
  std::vector<double> coeffs;
  ASSERT_TRUE(sscp.GetRegCoeffs(coeffs, swept));
  // The normal equations solved by dense elimination.
  KXSymMatrix normal = kxtesting::ToSym(xtwx);
  std::vector<double> beta;
  ASSERT_TRUE(normal.SolveIndefinite(1e-14, xtwy, beta));
  ASSERT_EQ(coeffs.size(), static_cast<std::size_t>(p));
  for (int i = 0; i < p; ++i) EXPECT_NEAR(coeffs[i], beta[i], 1e-12);
  // The residual sum of squares sits on the response diagonal.
  EXPECT_GT(sscp.GetElem(p, p), 0.0);
  swept.Set(p, true);
  EXPECT_FALSE(sscp.GetRegCoeffs(coeffs, swept));
}

// Reads the Longley table (header y,x1..x6) and the certified coefficients.
bool ReadLongley(std::vector<std::vector<double>>& rows, std::vector<double>& certified) {
  std::ifstream csv(kxtesting::TestDataPath("examples/data/Longley.csv"));
  std::string line;
  if (!std::getline(csv, line)) return false;
  while (std::getline(csv, line)) {
    std::stringstream fields(line);
    std::string field;
    std::vector<double> row;
    while (std::getline(fields, field, ',')) row.push_back(std::stod(field));
    if (row.size() == 7) rows.push_back(row);
  }
  std::ifstream json(kxtesting::TestDataPath("examples/data/certified.json"));
  std::stringstream all;
  all << json.rdbuf();
  const std::string text = all.str();
  std::size_t at = text.find("\"Longley\"");
  if (at == std::string::npos) return false;
  at = text.find("\"coefficients\"", at);
  at = text.find('[', at);
  const std::size_t end = text.find(']', at);
  std::stringstream numbers(text.substr(at + 1, end - at - 1));
  std::string number;
  while (std::getline(numbers, number, ',')) certified.push_back(std::stod(number));
  return rows.size() == 16 && certified.size() == 7;
}

TEST(KXSymMatrixRegression, LongleyCertifiedCoefficients) {
  std::vector<std::vector<double>> rows;
  std::vector<double> certified;
  ASSERT_TRUE(ReadLongley(rows, certified));
  // Centred cross products of (x1..x6, y).
  std::vector<double> mean(7, 0.0);
  for (const auto& r : rows) {
    for (int j = 0; j < 6; ++j) mean[j] += r[j + 1] / 16.0;
    mean[6] += r[0] / 16.0;
  }
  KXSymMatrix sscp(7);
  for (const auto& r : rows) {
    std::vector<double> x(7);
    for (int j = 0; j < 6; ++j) x[j] = r[j + 1] - mean[j];
    x[6] = r[0] - mean[6];
    ASSERT_TRUE(sscp.UpdateXX(x, 1.0));
  }
  std::vector<double> orig;
  sscp.GetDiagonal(orig);
  KXBitSet swept(7);
  for (int k = 0; k < 6; ++k) ASSERT_TRUE(sscp.Sweep(k, 1e-12, orig, swept, true)) << k;
  std::vector<double> b;
  ASSERT_TRUE(sscp.GetRegCoeffs(b, swept));
  double intercept = mean[6];
  for (int j = 0; j < 6; ++j) intercept -= b[j] * mean[j];
  EXPECT_NEAR(intercept, certified[0], 1e-8 * std::fabs(certified[0]));
  for (int j = 0; j < 6; ++j)
    EXPECT_NEAR(b[j], certified[j + 1], 1e-8 * std::fabs(certified[j + 1])) << j;
  // The same coefficients through LTSolve on the centred normal equations.
  KXSymMatrix xtx(6);
  std::vector<double> xty(6, 0.0);
  for (const auto& r : rows) {
    std::vector<double> x(6);
    for (int j = 0; j < 6; ++j) x[j] = r[j + 1] - mean[j];
    ASSERT_TRUE(xtx.UpdateXX(x, 1.0));
    for (int j = 0; j < 6; ++j) xty[j] += x[j] * (r[0] - mean[6]);
  }
  std::vector<double> beta;
  ASSERT_EQ(xtx.LTSolve(xty, 1e-12, beta), 0);
  for (int j = 0; j < 6; ++j)
    EXPECT_NEAR(beta[j], certified[j + 1], 1e-8 * std::fabs(certified[j + 1])) << j;
}

}  // namespace
