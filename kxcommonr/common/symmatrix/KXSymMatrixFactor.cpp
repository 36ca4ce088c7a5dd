// kxcommonr/common/symmatrix/KXSymMatrixFactor.cpp
//
// KXSymMatrix factorising family: the sweep operator, the rank-tolerant
// Cholesky factorisation, determinants, inverses and triangular solves. The
// loops themselves are the packed component's kernels (KXPackedFactorKernels);
// this file validates arguments, keeps the masks and applies the pivot rules.
// Solves of possibly singular systems and the checks built on the
// factorisation are in KXSymMatrixSolve.cpp.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/foundation/KXAllocation.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/packed/KXPackedFactorKernels.h"
#include "kxcommonr/common/packed/KXPackedLayout.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"

namespace KXCommon {

namespace {

// Solves L y = b forward then L' x = y backward in place on x (which holds b
// on entry), with L the packed factor a of order n. A component whose pivot
// l_ii is 0 is set to 0. Returns the number of zero pivots.
int SubstituteInPlace(const double* a, int n, double* x) {
  int zeroPivots = 0;
  for (std::int64_t i = 0; i < n; ++i) {
    const double* row = a + KXPacked::Index(i, 0);
    double s = x[i];
    for (std::int64_t j = 0; j < i; ++j) s = s - row[j] * x[j];
    if (row[i] != 0.0) {
      x[i] = s / row[i];
    } else {
      x[i] = 0.0;
      ++zeroPivots;
    }
  }
  for (std::int64_t i = n - 1; i >= 0; --i) {
    const double* row = a + KXPacked::Index(i, 0);
    x[i] = row[i] != 0.0 ? x[i] / row[i] : 0.0;
    const double xi = x[i];
    for (std::int64_t j = 0; j < i; ++j) x[j] = x[j] - row[j] * xi;
  }
  return zeroPivots;
}

// Moves the base-10 mantissa of a determinant back into 1 <= |m| < 10.
void NormaliseDeterminant(double* det) {
  if (det[0] == 0.0 || !std::isfinite(det[0])) return;
  while (std::fabs(det[0]) < 1.0) {
    det[0] *= 10.0;
    det[1] -= 1.0;
  }
  while (std::fabs(det[0]) >= 10.0) {
    det[0] /= 10.0;
    det[1] += 1.0;
  }
}

}  // namespace

// ---------------------------------------------------------------------------
// Sweep
// ---------------------------------------------------------------------------

namespace {

// The pivot rule of the sweep for row k, reading the current diagonal as
// diag(i) and the current a_ik as column(i). A row not yet swept needs
// tol * origDiag[k] < a_kk, and every swept row j must keep its residual:
// (a_jj - a_jk^2 / a_kk) * tol * origDiag[j] > -1. A swept row is reversed
// unless its diagonal is 0 or NaN, which no sweep leaves (refused rather
// than divided by).
template <class Diag, class Column>
bool PivotAccepted(int k, int n, double tol, const double* origDiag, const KXBitSet& swept,
                   Diag diag, Column column) {
  const double d = diag(k);
  if (swept.IsIn(k)) return !(d == 0.0 || std::isnan(d));
  if (!(tol * origDiag[k] < d)) return false;
  for (int j = 0; j < n; ++j) {
    if (!swept.IsIn(j)) continue;
    const double ajk = column(j);
    if ((diag(j) - ajk * ajk / d) * tol * origDiag[j] <= -1.0) return false;
  }
  return true;
}

// The sweep's arguments as Sweep and SweepRows check them: the memory they
// touch always, the values only with check.
bool SweepArgumentsValid(int n, double tol, const std::vector<double>& origDiag,
                         const KXBitSet& swept, bool check) {
  const std::size_t un = static_cast<std::size_t>(n);
  if (origDiag.size() < un || static_cast<std::size_t>(swept.Size()) < un) return false;
  if (check) {
    if (!(tol > 0.0)) return false;
    for (std::size_t i = 0; i < un; ++i)
      if (origDiag[i] < 0.0) return false;
  }
  return true;
}

// The rule handed to the blocked kernel: it toggles the bit of every row it
// lets through, as Sweep does.
class SweepRule final : public internal::SweepPivotRule {
 public:
  SweepRule(int n, double tol, const double* origDiag, KXBitSet& swept)
      : n_(n), tol_(tol), origDiag_(origDiag), swept_(swept) {}
  bool Accept(int k, const double* diag, const double* column) override {
    if (!PivotAccepted(
            k, n_, tol_, origDiag_, swept_, [diag](int i) { return diag[i]; },
            [column](int i) { return column[i]; }))
      return false;
    swept_.Set(k, !swept_.IsIn(k));
    return true;
  }

 private:
  int n_;
  double tol_;
  const double* origDiag_;
  KXBitSet& swept_;
};

}  // namespace

bool KXSymMatrix::Sweep(int k, double tol, const std::vector<double>& origDiag,
                        KXBitSet& swept, bool check) {
  if (!HasConsistentData() || k < 0 || k >= nRows ||
      !SweepArgumentsValid(nRows, tol, origDiag, swept, check))
    return false;
  double* a = data.data();
  if (!PivotAccepted(
          k, nRows, tol, origDiag.data(), swept,
          [a](int i) { return a[KXPacked::Index(i, i)]; },
          [a, k](int i) { return a[KXPacked::SymIndex(i, k)]; }))
    return false;
  internal::PackedSweepRow(a, nRows, k);
  swept.Set(k, !swept.IsIn(k));
  return true;
}

int KXSymMatrix::SweepRows(const std::vector<int>& rows, double tol,
                           const std::vector<double>& origDiag, KXBitSet& swept, bool check) {
  if (!HasConsistentData() || !SweepArgumentsValid(nRows, tol, origDiag, swept, check))
    return -1;
  for (int k : rows)
    if (k < 0 || k >= nRows) return -1;
  if (rows.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) return -1;
  SweepRule rule(nRows, tol, origDiag.data(), swept);
  const int done = internal::PackedSweepRows(data.data(), nRows, rows.data(),
                                             static_cast<int>(rows.size()), rule);
  if (done >= 0) return done;
  // No room for the block scratch: the same sweeps one row at a time.
  int count = 0;
  for (int k : rows) count += Sweep(k, tol, origDiag, swept, false) ? 1 : 0;
  return count;
}

// ---------------------------------------------------------------------------
// Cholesky
// ---------------------------------------------------------------------------

int KXSymMatrix::LTChol(const std::vector<double>& origDiag, double tol,
                        KXBitSet& nonRedundant, bool check) {
  if (!HasConsistentData()) return -1;
  const std::size_t n = static_cast<std::size_t>(nRows);
  if (origDiag.size() < n) return -1;
  if (check) {
    if (tol < 0.0 || std::isnan(tol)) return -1;
    for (std::size_t i = 0; i < n; ++i)
      if (origDiag[i] < 0.0) return -1;
  }
  std::vector<unsigned char> accepted;
  if (!GuardAllocation([&] {
    accepted.assign(n, 0);
    return true;
  }, false)) {
    return -1;
  }
  if (static_cast<std::size_t>(nonRedundant.Size()) < n)
    nonRedundant.Resize(nRows, false);
  else
    nonRedundant.Clear();
  const int redundant =
      internal::PackedCholesky(data.data(), nRows, origDiag.data(), tol, accepted.data());
  for (int i = 0; i < nRows; ++i)
    if (accepted[i]) nonRedundant.Set(i, true);
  return redundant;
}

int KXSymMatrix::LTChol(const std::vector<double>& origDiag, double tol, bool check) {
  KXBitSet unused;
  return LTChol(origDiag, tol, unused, check);
}

int KXSymMatrix::LTChol(double tol, double& out, bool check) {
  out = KXMV::Missing();
  if (!HasConsistentData()) return -1;
  if (check && (tol < 0.0 || std::isnan(tol))) return -1;
  std::vector<double> diagonal;
  if (!GuardAllocation([&] {
    GetDiagonal(diagonal);
    return true;
  }, false)) {
    return -1;
  }
  for (double& d : diagonal)
    if (d < tol) d = 1.0;
  KXBitSet accepted;
  const int redundant = LTChol(diagonal, tol, accepted, check);
  if (redundant < 0) return redundant;
  for (int i = 0; i < nRows; ++i) {
    if (!accepted.IsIn(i)) continue;
    const double pivot = data[KXPacked::Index(i, i)];
    if (KXMV::IsMissing(out) || pivot < out) out = pivot;
  }
  return redundant;
}

int KXSymMatrix::CholIndNonRed(int nLead, double tol, std::vector<int>& idx) {
  if (!HasConsistentData() || nLead < 0 || nLead > nRows) return -1;
  if (tol < 0.0 || std::isnan(tol)) return -1;
  const int m = nLead == 0 ? nRows : nLead;
  std::vector<double> diagonal;
  std::vector<unsigned char> accepted;
  std::vector<int> indices;
  if (!GuardAllocation([&] {
    diagonal.resize(static_cast<std::size_t>(m));
    accepted.assign(static_cast<std::size_t>(m), 0);
    indices.reserve(static_cast<std::size_t>(m));
    return true;
  }, false)) {
    return -1;
  }
  for (int i = 0; i < m; ++i) {
    diagonal[i] = data[KXPacked::Index(i, i)];
    if (diagonal[i] < 0.0) return -1;
  }
  // The leading m rows of the packed triangle are its first m(m+1)/2
  // elements: factorising them in place leaves the later rows untouched.
  const int redundant =
      internal::PackedCholesky(data.data(), m, diagonal.data(), tol, accepted.data());
  for (int i = 0; i < m; ++i)
    if (accepted[i]) indices.push_back(i);
  idx.swap(indices);
  return redundant;
}

// ---------------------------------------------------------------------------
// Inverses and determinants of a stored factor
// ---------------------------------------------------------------------------

int KXSymMatrix::LTDetInverse(double* det, int job) {
  if (!HasConsistentData() || job < 0) return -1;
  const bool wantDet = job % 10 != 0;
  const bool wantInverse = (job / 10) % 10 != 0;
  if (wantDet && det == nullptr) return -1;
  int zeroPivots = 0;
  for (int i = 0; i < nRows; ++i)
    if (data[KXPacked::Index(i, i)] == 0.0) ++zeroPivots;
  if (wantDet) {
    det[0] = 1.0;
    det[1] = 0.0;
    for (int i = 0; i < nRows; ++i) {
      const double pivot = data[KXPacked::Index(i, i)];
      // The square is taken in two steps, normalising between them, so a
      // large pivot does not overflow the mantissa.
      det[0] *= pivot;
      NormaliseDeterminant(det);
      det[0] *= pivot;
      NormaliseDeterminant(det);
      if (det[0] == 0.0) {
        det[1] = 0.0;
        break;
      }
    }
  }
  if (wantInverse) internal::PackedLowerInverse(data.data(), nRows);
  return zeroPivots;
}

void KXSymMatrix::LTLTransL() {
  if (!HasConsistentData()) return;
  internal::PackedLowerTransLower(data.data(), nRows);
}

void KXSymMatrix::LTLLTrans() {
  if (!HasConsistentData()) return;
  internal::PackedLowerLowerTrans(data.data(), nRows);
}

void KXSymMatrix::LTInverse() {
  if (!HasConsistentData()) return;
  double det[2];
  LTDetInverse(det, 10);
  LTLTransL();
}

int KXSymMatrix::CholInverse(const std::vector<double>& origDiag, double tol,
                             KXSymMatrix& out, KXBitSet& nonRedundant) const {
  out = *this;
  const int redundant = out.LTChol(origDiag, tol, nonRedundant, true);
  if (redundant < 0) return redundant;
  out.LTInverse();
  return redundant;
}

int KXSymMatrix::CholInverse(const std::vector<double>& origDiag, double tol,
                             KXSymMatrix& out) const {
  KXBitSet unused;
  return CholInverse(origDiag, tol, out, unused);
}

int KXSymMatrix::CholInverse(const std::vector<double>& origDiag, double tol,
                             KXSymMatrix& out, double& minPivot) const {
  minPivot = KXMV::Missing();
  out = *this;
  const int redundant = out.LTChol(origDiag, tol, true);
  if (redundant < 0) return redundant;
  for (int i = 0; i < out.nRows; ++i) {
    const double pivot = out.data[KXPacked::Index(i, i)];
    if (i == 0 || pivot < minPivot) minPivot = pivot;
  }
  out.LTInverse();
  return redundant;
}

bool KXSymMatrix::ComputeDeterminant(double tol, double* det) const {
  if (nRows < 1 || det == nullptr || !HasConsistentData()) return false;
  KXSymMatrix factor;
  if (!GuardAllocation([&] {
    factor = *this;
    return true;
  }, false)) {
    return false;
  }
  double smallestPivot = 0.0;
  if (factor.LTChol(tol, smallestPivot, true) < 0) return false;
  return factor.LTDetInverse(det, 1) >= 0;
}

bool KXSymMatrix::ZeroOutRedundant(const KXBitSet& nonRedundant) {
  if (!HasConsistentData() || nonRedundant.Size() < nRows) return false;
  for (int i = 0; i < nRows; ++i) {
    if (nonRedundant.IsIn(i)) continue;
    double* row = data.data() + KXPacked::Index(i, 0);
    for (int j = 0; j <= i; ++j) row[j] = 0.0;
    for (int m = i + 1; m < nRows; ++m) data[KXPacked::Index(m, i)] = 0.0;
  }
  return true;
}

// ---------------------------------------------------------------------------
// Solves with the factor
// ---------------------------------------------------------------------------

int KXSymMatrix::LTSolve(const std::vector<double>& b, double tol,
                         std::vector<double>& x) {
  if (!HasConsistentData() || !(tol > 0.0)) return -1;
  const std::size_t n = static_cast<std::size_t>(nRows);
  if (b.size() < n) return -1;
  std::vector<double> rhs;
  if (!GuardAllocation([&] {
    rhs.assign(b.begin(), b.begin() + static_cast<std::ptrdiff_t>(n));
    GetDiagonal(x);  // x serves as origDiag until the solve
    return true;
  }, false)) {
    return -1;
  }
  const int redundant = LTChol(x, tol, true);
  if (redundant < 0) return redundant;
  x.swap(rhs);
  SubstituteInPlace(data.data(), nRows, x.data());
  return redundant;
}

int KXSymMatrix::LTSubstitute(const std::vector<double>& b,
                              std::vector<double>& x) const {
  if (!HasConsistentData()) return -1;
  const std::size_t n = static_cast<std::size_t>(nRows);
  if (b.size() < n) return -1;
  std::vector<double> solution;
  if (!GuardAllocation([&] {
    solution.assign(b.begin(), b.begin() + static_cast<std::ptrdiff_t>(n));
    return true;
  }, false)) {
    return -1;
  }
  const int zeroPivots = SubstituteInPlace(data.data(), nRows, solution.data());
  x.swap(solution);
  return zeroPivots;
}

}  // namespace KXCommon
