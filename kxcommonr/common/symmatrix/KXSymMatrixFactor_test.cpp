// Tests of the sweep, Cholesky, inverse and solve family of KXSymMatrix
// (KXSymMatrixFactor.cpp, KXSymMatrixSolve.cpp): small cases with known
// answers and refusals, then properties checked against independent
// computations (dense products in long double, sweeps reversed, factors
// multiplied back, normal equations solved densely). The kernels beneath
// are tested in the packed component.
#include <gtest/gtest.h>

#include <limits>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"
#include "kxcommonr/testing/RectMatrixTestUtil.h"
#include "kxcommonr/testing/SymMatrixTestUtil.h"
#include "kxcommonr/testing/Tolerance.h"

namespace {

using KXCommon::KXBitSet;
using KXCommon::KXMV;
using KXCommon::KXSymMatrix;
using namespace kxtesting;  // the dense reference helpers and tolerance tiers

const auto FromPacked = SymFromPacked;

// Every element of x within tol (relative, see NearRel) of y.
void ExpectNear(const std::vector<double>& x, const std::vector<double>& y, double tol) {
  ASSERT_EQ(x.size(), y.size());
  for (std::size_t i = 0; i < x.size(); ++i) EXPECT_TRUE(NearRel(x[i], y[i], tol)) << i;
}

// A x for a dense A, in long double.
std::vector<double> Times(const Dense& a, const std::vector<double>& x) {
  std::vector<double> y(a.n);
  for (std::size_t i = 0; i < a.n; ++i) {
    long double sum = 0;
    for (std::size_t j = 0; j < a.n; ++j) sum += static_cast<long double>(a(i, j)) * x[j];
    y[i] = static_cast<double>(sum);
  }
  return y;
}

// ---------------------------------------------------------------------------
// Small cases with known answers, and refusals
// ---------------------------------------------------------------------------

TEST(KXSymMatrixSweep, KnownCaseThresholdsAndRefusals) {
  KXSymMatrix s = FromPacked(2, {4, 2, 3});
  const std::vector<double> orig = {4, 3};
  KXBitSet swept(2);
  ASSERT_TRUE(s.Sweep(0, 1e-8, orig, swept, true));
  EXPECT_EQ(Bits(swept), "10");
  EXPECT_EQ(s.GetData(), (std::vector<double>{-0.25, 0.5, 2.0}));
  ASSERT_TRUE(s.Sweep(0, 1e-8, orig, swept, true));  // reversed
  EXPECT_EQ(Bits(swept), "00");
  EXPECT_EQ(s.GetData(), (std::vector<double>{4, 2, 3}));

  // Row 1 of the all-ones matrix has residual 0 once row 0 is swept; a
  // pivot equal to tol * origDiag is refused, one a hair above accepted.
  KXSymMatrix ones = FromPacked(2, {1, 1, 1});
  ASSERT_TRUE(ones.Sweep(0, 1e-8, {1, 1}, swept, true));
  EXPECT_FALSE(ones.Sweep(1, 1e-8, {1, 1}, swept, true));
  EXPECT_EQ(ones.GetData(), (std::vector<double>{-1, 1, 0}));
  EXPECT_EQ(Bits(swept), "10");
  KXSymMatrix half = FromPacked(1, {0.5});
  KXBitSet one(1);
  EXPECT_FALSE(half.Sweep(0, 0.25, {2.0}, one, true));
  EXPECT_TRUE(half.Sweep(0, 0.2499999, {2.0}, one, true));
}

// SweepRows gives the matrix, the bits and the count of the same Sweep
// calls one by one, whatever the list: every row, every row twice (the
// second pass reverses the first), a subset with repeats, rows swept
// before the call; the dependent rows are refused by the residual test
// of the rows swept before them.
TEST(KXSymMatrixSweep, SweepRowsEqualsTheRowByRowSweeps) {
  struct Case {
    std::size_t n;
    std::vector<std::size_t> dependent;
    std::vector<int> rows;  // empty: every row, upwards
    std::vector<int> before;  // swept before the call
  };
  const Case cases[] = {
      {5, {2}, {}, {}},
      {40, {3, 17}, {}, {}},
      {40, {3, 17}, {39, 3, 3, 0, 17, 2, 1, 0, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29}, {5, 17}},
      {70, {1, 69}, {}, {10}},
  };
  for (const Case& c : cases) {
    const Dense a = DependentCrossProducts(c.n, c.dependent, 3u + static_cast<unsigned>(c.n));
    const std::vector<double> orig = Diagonal(a);
    const int n = static_cast<int>(c.n);
    std::vector<int> rows = c.rows;
    if (rows.empty())
      for (int k = 0; k < n; ++k) rows.push_back(k);
    std::vector<int> twice = rows;
    twice.insert(twice.end(), rows.begin(), rows.end());
    for (const std::vector<int>* list : {&rows, &twice}) {
      for (bool check : {true, false}) {
        KXSymMatrix byRow = ToSym(a);
        KXBitSet byRowBits(n);
        for (int k : c.before) byRow.Sweep(k, 1e-9, orig, byRowBits, check);
        KXSymMatrix blocked = byRow;
        KXBitSet blockedBits = byRowBits;
        int count = 0;
        for (int k : *list) count += byRow.Sweep(k, 1e-9, orig, byRowBits, check) ? 1 : 0;
        EXPECT_EQ(blocked.SweepRows(*list, 1e-9, orig, blockedBits, check), count);
        EXPECT_EQ(blocked.GetData(), byRow.GetData()) << "n=" << n;
        EXPECT_EQ(Bits(blockedBits), Bits(byRowBits));
        if (c.rows.empty() && c.before.empty() && list == &rows) {
          EXPECT_EQ(count, n - static_cast<int>(c.dependent.size()));
        }
      }
    }
  }
  // Refusals of Sweep (false) and SweepRows (-1) change nothing; short
  // arguments are never read, whatever check says.
  KXSymMatrix u = ToSym(RandomSpd(3, 2));
  const std::vector<double> data = u.GetData(), good = {1, 1, 1};
  KXBitSet bits(3), shortBits(2);
  const struct {
    int row;
    double tol;
    std::vector<double> orig;
    KXBitSet* swept;
    bool check;
  } refused[] = {{3, 1e-8, good, &bits, true},        {-1, 1e-8, good, &bits, false},
                 {0, 1e-8, {1, 1}, &bits, false},      {0, 1e-8, good, &shortBits, false},
                 {0, 0.0, good, &bits, true},          {0, 1e-8, {1, -1, 1}, &bits, true}};
  for (const auto& r : refused) {
    EXPECT_FALSE(u.Sweep(r.row, r.tol, r.orig, *r.swept, r.check)) << r.row << " " << r.tol;
    EXPECT_EQ(u.SweepRows({0, r.row}, r.tol, r.orig, *r.swept, r.check), -1);
  }
  EXPECT_EQ(u.SweepRows({}, 1e-8, good, bits, true), 0);
  bits.Set(1, true);  // "already swept" with a zero pivot: nothing to reverse
  u.SetElem(1, 1, 0.0);
  EXPECT_FALSE(u.Sweep(1, 1e-8, good, bits, false));
  u.SetElem(1, 1, data[2]);
  EXPECT_EQ(u.GetData(), data);
  EXPECT_EQ(bits.InSet(), 1);
}

TEST(KXSymMatrixCholesky, SmallCasesMasksAndRefusals) {
  KXSymMatrix s = FromPacked(2, {1, 1, 1});
  KXBitSet nonRedundant;
  EXPECT_EQ(s.LTChol({1, 1}, 1e-8, nonRedundant, true), 1);
  EXPECT_EQ(Bits(nonRedundant), "10");
  EXPECT_EQ(s.GetData(), (std::vector<double>{1, 1, 0}));

  KXSymMatrix t = ToSym(RandomSpd(4, 2));
  const std::vector<double> before = t.GetData();
  KXBitSet bits(7);
  bits.Set(5, true);
  EXPECT_EQ(t.LTChol({1, 1, -1, 1}, 1e-8, bits, true), -1);
  EXPECT_EQ(t.LTChol({1, 1, 1, 1}, -1e-8, bits, true), -1);
  EXPECT_EQ(t.LTChol({1, 1, 1}, 1e-8, bits, false), -1);
  EXPECT_EQ(t.GetData(), before);
  EXPECT_EQ(Bits(bits), "0000010");  // refused: the mask is untouched too
  // A longer mask keeps its size and is cleared before being filled.
  EXPECT_EQ(t.LTChol({1, 1, 1, 1}, 1e-8, bits, true), 0);
  EXPECT_EQ(Bits(bits), "1111000");

  // Self-derived diagonal: out is the smallest accepted pivot.
  KXSymMatrix u = FromPacked(2, {9, 0, 4});
  double out = 0;
  EXPECT_EQ(u.LTChol(1e-8, out, true), 0);
  EXPECT_EQ(out, 2.0);
  EXPECT_EQ(u.LTChol(-1.0, out, true), -1);
  EXPECT_TRUE(KXMV::IsMissing(out));
  KXSymMatrix broken(2);
  broken.AsVector().resize(2);  // a caller broke the size through AsVector()
  std::vector<int> idx;
  EXPECT_EQ(broken.LTChol({1, 1}, 1e-8, false) + broken.LTChol(1e-8, out, false) +
                broken.CholIndNonRed(0, 1e-8, idx),
            -3);
}

TEST(KXSymMatrixInverse, KnownInversesAndDeterminants) {
  const KXSymMatrix d = FromPacked(2, {4, 0, 9});
  KXSymMatrix inv;
  double minPivot = 0;
  EXPECT_EQ(d.CholInverse({4, 9}, 1e-8, inv, minPivot), 0);
  EXPECT_EQ(inv.GetData(), (std::vector<double>{0.25, 0.0, 1.0 / 9.0}));
  EXPECT_EQ(minPivot, 2.0);
  EXPECT_EQ(KXSymMatrix().CholInverse({}, 1e-8, inv, minPivot), 0);
  EXPECT_TRUE(KXMV::IsMissing(minPivot));
  EXPECT_EQ(d.CholInverse({4, -9}, 1e-8, inv, minPivot) + d.CholInverse({4, -9}, 1e-8, inv), -2);
  EXPECT_EQ(inv.GetData(), d.GetData());  // refused: out is left as the copy

  // Determinants as mantissa and decimal exponent, computed on a copy.
  struct Case {
    Dense matrix;
    double mantissa, exponent, tol;
  };
  Dense diag(3), big(40), ones(2);
  diag(0, 0) = 2, diag(1, 1) = 3, diag(2, 2) = 40;
  for (int i = 0; i < 40; ++i) big(i, i) = 1e20;  // 1e800, beyond double
  ones.a.assign(4, 1.0);
  // Hilbert 4's condition number, 1.5e4, magnifies the rounding of its
  // factor: a looser bound there.
  const Case cases[] = {{diag, 2.4, 2, kLoose},
                        {Hilbert(4), 1e7 / 6048000.0, -7, 16 * kLoose},
                        {big, 1.0, 800, kLoose},
                        {ones, 0.0, 0, kLoose}};
  for (const Case& c : cases) {
    const KXSymMatrix s = ToSym(c.matrix);
    double det[2] = {0, 0};
    ASSERT_TRUE(s.ComputeDeterminant(1e-14, det));
    EXPECT_EQ(s.GetData(), ToSym(c.matrix).GetData());
    EXPECT_TRUE(NearRel(det[0], c.mantissa, c.tol)) << c.matrix.n;
    EXPECT_EQ(det[1], c.exponent);
  }
  double det[2] = {0, 0};
  EXPECT_FALSE(KXSymMatrix().ComputeDeterminant(1e-10, det) || d.ComputeDeterminant(-1.0, det) ||
               d.ComputeDeterminant(1e-10, nullptr));

  // The job digits: units = determinant only (factor untouched), tens =
  // inverse only (det untouched), both.
  KXSymMatrix factor = FromPacked(2, {2, 1, 4});  // L
  const std::vector<double> stored = factor.GetData();
  EXPECT_EQ(factor.LTDetInverse(det, 1), 0);
  EXPECT_EQ(std::vector<double>(det, det + 2), (std::vector<double>{6.4, 1}));  // (2 * 4)^2
  EXPECT_EQ(factor.GetData(), stored);
  det[0] = det[1] = -7;
  EXPECT_EQ(factor.LTDetInverse(det, 10), 0);
  EXPECT_EQ(std::vector<double>(det, det + 2), (std::vector<double>{-7, -7}));
  EXPECT_EQ(factor.GetData(), (std::vector<double>{0.5, -0.125, 0.25}));
  EXPECT_EQ(factor.LTDetInverse(det, 11), 0);  // inverting L^-1 gives L back
  EXPECT_EQ(factor.GetData(), stored);
  EXPECT_EQ(std::vector<double>(det, det + 2), (std::vector<double>{1.5625, -2}));  // (0.5 * 0.25)^2
  EXPECT_EQ(factor.LTDetInverse(det, -1) + factor.LTDetInverse(nullptr, 11), -2);
  // Zero pivots are counted, make the determinant 0 and their rows of the
  // inverse 0.
  KXSymMatrix singular = FromPacked(2, {3, 1, 0});
  EXPECT_EQ(singular.LTDetInverse(det, 11), 1);
  EXPECT_EQ(std::vector<double>(det, det + 2), (std::vector<double>{0, 0}));
  EXPECT_EQ(singular.GetData(), (std::vector<double>{1.0 / 3.0, 0, 0}));
}

// ---------------------------------------------------------------------------
// Properties against independent computations
// ---------------------------------------------------------------------------

// Factor, inverse and every solver on random positive definite matrices,
// each checked against a dense product with the original matrix.
TEST(KXSymMatrixCholesky, FactorInverseAndSolvesAgainstDenseProducts) {
  for (std::size_t n : {1u, 7u, 40u, 97u}) {
    SCOPED_TRACE(n);
    const Dense a = RandomSpd(n, 100 + static_cast<unsigned>(n));
    const double scale = MaxAbs(a);
    KXSymMatrix s = ToSym(a);
    KXBitSet nonRedundant;
    ASSERT_EQ(s.LTChol(Diagonal(a), 1e-10, nonRedundant, true), 0);
    EXPECT_EQ(nonRedundant.InSet(), static_cast<int>(n));
    const Dense l = ToDense(s, true);
    EXPECT_LE(MaxAbsDiff(Multiply(l, Transpose(l)), a), kMedium * scale);
    // Solving with the stored factor: A x = b.
    const std::vector<double> b = RandomVector(n, 3);
    std::vector<double> x, y;
    ASSERT_EQ(s.LTSubstitute(b, x), 0);
    ExpectNear(Times(a, x), b, kLoose);
    // LTLLTrans rebuilds the matrix from its factor in place; LTLTransL
    // turns the inverted factor into the inverse.
    KXSymMatrix rebuilt = s;
    rebuilt.LTLLTrans();
    EXPECT_LE(MaxAbsDiff(ToDense(rebuilt), a), kMedium * scale);
    s.LTInverse();
    EXPECT_LE(MaxAbsDiff(Multiply(ToDense(s), a), Identity(n)), kLoose);
    // Factor-and-solve in one call gives the same solution; the general
    // solvers agree and leave the matrix alone.
    ASSERT_EQ(ToSym(a).LTSolve(b, 1e-10, y), 0);
    EXPECT_EQ(y, x);
    const KXSymMatrix t = ToSym(a);
    KXSymMatrix inv;
    ASSERT_EQ(t.CholInverse(Diagonal(a), 1e-10, inv, nonRedundant), 0);
    EXPECT_EQ(inv.GetData(), s.GetData());
    KXSymMatrix general = t;
    ASSERT_TRUE(general.SolveIndefinite(1e-12, b, y));
    ExpectNear(y, x, kLoose);
    ASSERT_TRUE(general.SolveIndefiniteGI(1e-12, b, y));
    ExpectNear(y, x, kLoose);
    EXPECT_EQ(general.GetData(), t.GetData());
  }
}

TEST(KXSymMatrixCholesky, RedundantRowsAreExactlyTheDependentOnes) {
  const std::vector<std::size_t> dependent = {3, 8, 9, 30, 59};
  const Dense a = DependentCrossProducts(60, dependent, 5);
  KXSymMatrix s = ToSym(a);
  KXBitSet nonRedundant;
  ASSERT_EQ(s.LTChol(Diagonal(a), 1e-9, nonRedundant, true), 5);
  std::vector<int> expected;
  for (int i = 0; i < 60; ++i) {
    const bool isDependent = std::count(dependent.begin(), dependent.end(), i) > 0;
    EXPECT_EQ(nonRedundant.IsIn(i), !isDependent) << i;
    if (!isDependent) expected.push_back(i);
  }
  // CholIndNonRed finds the same rows, in increasing order; restricted to
  // the leading rows it leaves the rest of the triangle untouched.
  std::vector<int> idx = {99};
  EXPECT_EQ(ToSym(a).CholIndNonRed(0, 1e-9, idx), 5);
  EXPECT_EQ(idx, expected);
  KXSymMatrix u = ToSym(a);
  const std::vector<double> before = u.GetData();
  EXPECT_EQ(u.CholIndNonRed(10, 1e-9, idx), 3);
  EXPECT_EQ(idx, (std::vector<int>{0, 1, 2, 4, 5, 6, 7}));
  EXPECT_TRUE(std::equal(before.begin() + 55, before.end(), u.GetData().begin() + 55));
  for (int bad : {61, -1}) EXPECT_EQ(u.CholIndNonRed(bad, 1e-9, idx), -1);
  EXPECT_EQ(u.CholIndNonRed(0, -1.0, idx), -1);
  EXPECT_EQ(FromPacked(1, {-1}).CholIndNonRed(0, 1e-9, idx), -1);  // negative diagonal
  EXPECT_EQ(idx, (std::vector<int>{0, 1, 2, 4, 5, 6, 7}));

  // The inverse is then a generalised inverse, zero on the redundant rows,
  // and sweeping the kept rows gives it too (negated).
  const Dense c = DependentCrossProducts(25, {4, 13}, 9);
  KXSymMatrix g;
  KXBitSet kept;
  ASSERT_EQ(ToSym(c).CholInverse(Diagonal(c), 1e-9, g, kept), 2);
  const KXSymMatrix cs = ToSym(c);
  EXPECT_TRUE(cs.CheckGMG(g.GetData(), 1e-10));
  KXSymMatrix swept = cs;
  KXBitSet bits(25);
  for (int k = 0; k < 25; ++k) EXPECT_EQ(swept.Sweep(k, 1e-9, Diagonal(c), bits, true), kept.IsIn(k));
  // The two routes round differently; the kept block has condition
  // numbers near 1e4, hence the looser bound.
  for (int q = 0; q < 625; ++q) {
    const int r = q / 25, c = q % 25;
    const bool both = kept.IsIn(r) && kept.IsIn(c);
    EXPECT_TRUE(NearRel(g.GetElem(r, c), both ? -swept.GetElem(r, c) : 0.0, both ? 1e4 * kLoose : 0.0,
                        std::fabs(g.GetElem(r, r))));
  }
  std::vector<double> wrong = g.GetData();
  wrong[0] *= 1.01;
  EXPECT_FALSE(cs.CheckGMG(wrong, 1e-6) || cs.CheckGMG({1.0}, 1e-6) || cs.CheckGMG(g.GetData(), -1.0));
}

TEST(KXSymMatrixInverse, IllConditionedHilbertMatrices) {
  // Hilbert 8 (condition about 1.5e10): an inverse to about 1e10 * eps.
  const Dense h = Hilbert(8), h14 = Hilbert(14);
  KXSymMatrix inv;
  ASSERT_EQ(ToSym(h).CholInverse(Diagonal(h), 1e-14, inv), 0);
  EXPECT_LE(MaxAbsDiff(Multiply(ToDense(inv), h), Identity(8)), 1e-5);
  // Hilbert 14 is numerically singular at tol 1e-7: rows become redundant,
  // and the result is a generalised inverse G with H G H = H and G H G = G
  // (to the accuracy its condition allows).
  KXBitSet kept;
  const int dropped = ToSym(h14).CholInverse(Diagonal(h14), 1e-7, inv, kept);
  EXPECT_GT(dropped, 0);
  EXPECT_EQ(dropped, 14 - kept.InSet());
  EXPECT_TRUE(ToSym(h14).CheckGMG(inv.GetData(), 1e-5));
  std::vector<double> scaled = inv.GetData();
  for (double& v : scaled) v *= 1.001;
  EXPECT_FALSE(ToSym(h14).CheckGMG(scaled, 1e-5));
}

TEST(KXSymMatrixSolve, SolversOnSingularIndefiniteAndRefusedSystems) {
  KXSymMatrix s = ToSym(RandomSpd(3, 1));
  std::vector<double> x = {5};
  EXPECT_EQ(s.LTSolve({1, 2}, 1e-10, x) + s.LTSolve({1, 2, 3}, 0.0, x) + s.LTSubstitute({1, 2}, x), -3);
  EXPECT_FALSE(s.SolveIndefinite(1e-12, {1, 2}, x) || s.SolveIndefiniteGI(1e-12, {1, 2}, x));
  EXPECT_EQ(x, std::vector<double>{5});
  // A zero pivot gives a zero component.
  ASSERT_EQ(FromPacked(2, {1, 1, 1}).LTSolve({2, 2}, 1e-10, x), 1);
  EXPECT_EQ(x, (std::vector<double>{2, 0}));
  // Indefinite, nonsingular, with a zero diagonal: [[0, 1], [1, 0]] x = (2, 3).
  ASSERT_TRUE(FromPacked(2, {0, 1, 0}).SolveIndefinite(1e-12, {2, 3}, x));
  EXPECT_EQ(x, (std::vector<double>{3, 2}));
  // Singular: refused, x unchanged; on a subset of rows it solves.
  KXSymMatrix ones = FromPacked(3, {1, 1, 1, 1, 1, 1});
  EXPECT_FALSE(ones.SolveIndefinite(1e-12, {1, 1, 1}, x));
  EXPECT_EQ(x, (std::vector<double>{3, 2}));
  KXBitSet rows(3);
  rows.Set(1, true);
  ASSERT_TRUE(ones.SolveIndefinite(rows, {4, 5, 6}, x));
  EXPECT_EQ(x, (std::vector<double>{0, 5, 0}));
  EXPECT_FALSE(ones.SolveIndefinite(KXBitSet(2), {4, 5, 6}, x));
  // A solution beyond the double range (a matrix of denormal numbers) is
  // refused, not returned as infinities and NaNs.
  const double tiny = std::numeric_limits<double>::denorm_min();
  KXSymMatrix denormal = FromPacked(3, {5 * tiny, 2 * tiny, 5 * tiny, 3 * tiny, 3 * tiny, 5 * tiny});
  EXPECT_FALSE(denormal.SolveIndefinite(tiny, {1, 1, 1}, x) ||
               denormal.SolveIndefiniteGI(tiny, {1, 1, 1}, x));
  EXPECT_EQ(x, (std::vector<double>{0, 5, 0}));
  // Generalised-inverse solution of a consistent singular system: A x = b.
  const Dense a = DependentCrossProducts(12, {5}, 21);
  const std::vector<double> b = Times(a, RandomVector(12, 8));
  ASSERT_TRUE(ToSym(a).SolveIndefiniteGI(1e-9, b, x));
  EXPECT_EQ(x[5], 0.0);
  const std::vector<double> ax = Times(a, x);
  // The cross products reach 300 and the system's condition about 1e3.
  for (std::size_t i = 0; i < 12; ++i) EXPECT_TRUE(NearRel(ax[i], b[i], 1e3 * kLoose, MaxAbs(a)));
  EXPECT_FALSE(ToSym(a).SolveIndefiniteGI(0.0, b, x));
}

TEST(KXSymMatrixSolve, ShiftToPositiveDefinite) {
  Dense a = RandomSpd(6, 4);
  a(2, 2) -= 5.0;  // indefinite
  KXSymMatrix s = ToSym(a);
  bool changed = false;
  double shift = -1;
  EXPECT_GE(s.TransformToPositiveDefinite(1e-8, changed, shift), 1);
  EXPECT_TRUE(changed && shift > 0.0);
  for (int i = 0; i < 6; ++i)
    for (int j = 0; j <= i; ++j) EXPECT_EQ(s.GetElem(i, j), a(i, j) + (i == j ? shift : 0.0));
  EXPECT_EQ(KXSymMatrix(s).LTChol(std::vector<double>(6, 1.0), 0.0, true), 0);
  // Already positive definite: nothing changes. Refusals change nothing.
  EXPECT_EQ(s.TransformToPositiveDefinite(1e-8, changed, shift), 0);
  EXPECT_TRUE(!changed && shift == 0.0);
  KXSymMatrix bad = s;
  bad.SetElem(3, 1, std::nan(""));
  EXPECT_EQ(s.TransformToPositiveDefinite(0.0, changed, shift) +
                bad.TransformToPositiveDefinite(1e-8, changed, shift),
            -2);
  // The zero matrix needs a ridge of about tol.
  KXSymMatrix zero(4);
  EXPECT_EQ(zero.TransformToPositiveDefinite(1e-8, changed, shift), 4);
  EXPECT_TRUE(changed && shift > 1e-8 && shift < 1e-7) << shift;
}

TEST(KXSymMatrixSolve, DependencyChecksAndMasks) {
  const Dense a = DependentCrossProducts(8, {6}, 31);  // row 6 from rows 5 and 3
  KXSymMatrix s = ToSym(a);
  const std::vector<double> orig = Diagonal(a);
  KXBitSet mask(8);
  mask.SetRange(0, 5, true);
  EXPECT_EQ(s.CheckMDependent(6, orig, mask, 1e-9), 1);
  mask.Set(5, false);
  EXPECT_EQ(s.CheckMDependent(6, orig, mask, 1e-9), 0);
  EXPECT_EQ(s.CheckMDependent(8, orig, mask, 1e-9) + s.CheckMDependent(0, {1.0}, mask, 1e-9) +
                s.CheckMDependent(6, orig, mask, -1.0),
            -3);

  KXBitSet keep(8);
  keep.SetRange(0, 7, true);
  keep.Set(2, false);
  EXPECT_TRUE(s.ZeroOutRedundant(keep));
  for (int j = 0; j < 8; ++j) EXPECT_EQ(s.GetElem(2, j), 0.0);
  EXPECT_EQ(s.GetElem(3, 1), a(3, 1));
  EXPECT_FALSE(s.ZeroOutRedundant(KXBitSet(7)));
}

// Regression: sweeping the predictors of a cross-product matrix whose last
// row is the response leaves the coefficients in that row; they solve the
// normal equations X'X b = X'y, checked in long double.
TEST(KXSymMatrixRegression, CoefficientsSolveTheNormalEquations) {
  const int p = 5;
  const Dense a = RandomSpd(p + 1, 77);  // (X'X, X'y; y'X, y'y)
  KXSymMatrix sscp = ToSym(a);
  KXBitSet swept(p + 1);
  for (int k = 0; k < p; ++k) ASSERT_TRUE(sscp.Sweep(k, 1e-10, Diagonal(a), swept, true));
  std::vector<double> coeffs;
  ASSERT_TRUE(sscp.GetRegCoeffs(coeffs, swept));
  ASSERT_EQ(coeffs.size(), static_cast<std::size_t>(p));
  coeffs.push_back(0.0);  // the response's column of X'X takes no part
  const std::vector<double> xty = Times(a, coeffs);
  for (int i = 0; i < p; ++i) EXPECT_TRUE(NearRel(xty[i], a(i, p), kLoose)) << i;
  EXPECT_GT(sscp.GetElem(p, p), 0.0);  // the residual sum of squares
  swept.Set(2, false);                 // an unswept predictor gets 0
  ASSERT_TRUE(sscp.GetRegCoeffs(coeffs, swept));
  EXPECT_EQ(coeffs[2], 0.0);
  swept.Set(p, true);
  EXPECT_FALSE(sscp.GetRegCoeffs(coeffs, swept) || sscp.GetRegCoeffs(coeffs, KXBitSet(2)) ||
               KXSymMatrix(1).GetRegCoeffs(coeffs, swept));
}

}  // namespace
