// kxcommonr/common/symmatrix/KXSymMatrixSolve.cpp
//
// KXSymMatrix: solves of possibly singular or indefinite systems, the shift
// to a positive definite matrix, dependency and generalised-inverse checks,
// and the regression coefficients of a swept cross-product matrix. Built on
// the factorisations of KXSymMatrixFactor.cpp.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/foundation/KXAllocation.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/packed/KXPackedLayout.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"

namespace KXCommon {

namespace {

// Element (i, j) of a packed symmetric triangle, either order.
inline double SymAt(const std::vector<double>& packed, std::int64_t i, std::int64_t j) {
  return packed[KXPacked::SymIndex(i, j)];
}

// Solves the dense m x m system (row-major a, right-hand side x) by Gaussian
// elimination with partial pivoting, in place. A pivot whose magnitude does
// not exceed threshold makes the system singular: returns false (a and x
// then hold intermediate values).
bool DenseSolve(std::vector<double>& a, std::vector<double>& x, std::size_t m,
                double threshold) {
  for (std::size_t k = 0; k < m; ++k) {
    std::size_t pivotRow = k;
    double largest = std::fabs(a[k * m + k]);
    for (std::size_t r = k + 1; r < m; ++r) {
      const double v = std::fabs(a[r * m + k]);
      if (v > largest) {
        largest = v;
        pivotRow = r;
      }
    }
    if (!(largest > threshold)) return false;
    if (pivotRow != k) {
      for (std::size_t c = 0; c < m; ++c) std::swap(a[k * m + c], a[pivotRow * m + c]);
      std::swap(x[k], x[pivotRow]);
    }
    const double pivot = a[k * m + k];
    for (std::size_t r = k + 1; r < m; ++r) {
      const double factor = a[r * m + k] / pivot;
      if (factor == 0.0) continue;
      for (std::size_t c = k + 1; c < m; ++c) a[r * m + c] -= factor * a[k * m + c];
      x[r] -= factor * x[k];
    }
  }
  for (std::size_t k = m; k-- > 0;) {
    double s = x[k];
    for (std::size_t c = k + 1; c < m; ++c) s -= a[k * m + c] * x[c];
    x[k] = s / a[k * m + k];
  }
  return true;
}

// Solves the subsystem of the packed matrix on the rows in idx (increasing)
// densely; components outside idx are 0. False when singular at threshold.
// True when every element is finite: a solution beyond the double range
// (a matrix of denormal numbers, say) is refused rather than returned as
// infinities and NaNs.
bool AllFinite(const std::vector<double>& v) {
  for (const double e : v) {
    if (!std::isfinite(e)) return false;
  }
  return true;
}

bool SolveOnRows(const std::vector<double>& packed, int n, const std::vector<int>& idx,
                 const std::vector<double>& b, double relativeTol,
                 std::vector<double>& x) {
  const std::size_t m = idx.size();
  std::vector<double> dense(m * m), rhs(m);
  double largest = 0.0;
  for (std::size_t r = 0; r < m; ++r) {
    rhs[r] = b[static_cast<std::size_t>(idx[r])];
    for (std::size_t c = 0; c < m; ++c) {
      dense[r * m + c] = SymAt(packed, idx[r], idx[c]);
      largest = std::max(largest, std::fabs(dense[r * m + c]));
    }
  }
  if (m > 0 && !DenseSolve(dense, rhs, m, relativeTol * largest)) return false;
  std::vector<double> solution(static_cast<std::size_t>(n), 0.0);
  for (std::size_t r = 0; r < m; ++r) solution[static_cast<std::size_t>(idx[r])] = rhs[r];
  if (!AllFinite(solution)) return false;
  x.swap(solution);
  return true;
}

// Largest absolute difference between two dense row-major matrices divided
// by the largest magnitude of the second (1 when that is 0).
double RelativeDifference(const std::vector<double>& x, const std::vector<double>& y) {
  double diff = 0.0, scale = 0.0;
  for (std::size_t k = 0; k < x.size(); ++k) {
    diff = std::max(diff, std::fabs(x[k] - y[k]));
    scale = std::max(scale, std::fabs(y[k]));
  }
  return diff / (scale > 0.0 ? scale : 1.0);
}

// z = x y for dense row-major n x n matrices.
void DenseProduct(const std::vector<double>& x, const std::vector<double>& y,
                  std::vector<double>& z, std::size_t n) {
  z.assign(n * n, 0.0);
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t k = 0; k < n; ++k) {
      const double xik = x[i * n + k];
      if (xik == 0.0) continue;
      for (std::size_t j = 0; j < n; ++j) z[i * n + j] += xik * y[k * n + j];
    }
}

}  // namespace

bool KXSymMatrix::SolveIndefinite(double tol, const std::vector<double>& b,
                                  std::vector<double>& x) {
  if (!HasConsistentData() || !(tol > 0.0)) return false;
  if (b.size() < static_cast<std::size_t>(nRows)) return false;
  return GuardAllocation([&] {
    std::vector<int> all(static_cast<std::size_t>(nRows));
    for (int i = 0; i < nRows; ++i) all[i] = i;
    return SolveOnRows(data, nRows, all, b, tol, x);
  }, false);
}

bool KXSymMatrix::SolveIndefinite(const KXBitSet& nonRedundant,
                                  const std::vector<double>& b,
                                  std::vector<double>& x) {
  if (!HasConsistentData() || nonRedundant.Size() < nRows) return false;
  if (b.size() < static_cast<std::size_t>(nRows)) return false;
  return GuardAllocation([&] {
    std::vector<int> rows;
    for (int i = 0; i < nRows; ++i)
      if (nonRedundant.IsIn(i)) rows.push_back(i);
    return SolveOnRows(data, nRows, rows, b, 0.0, x);
  }, false);
}

bool KXSymMatrix::SolveIndefiniteGI(double tol, const std::vector<double>& b,
                                    std::vector<double>& x) {
  if (!HasConsistentData() || !(tol > 0.0)) return false;
  const std::size_t n = static_cast<std::size_t>(nRows);
  if (b.size() < n) return false;
  return GuardAllocation([&] {
    // Gauss-Jordan sweeps on the diagonal of a copy, in row order; a pivot
    // of either sign is taken when its magnitude exceeds tol times the
    // magnitude of the row's initial diagonal. The swept block then holds
    // minus the inverse of the swept rows' submatrix.
    std::vector<double> a(data);
    std::vector<char> swept(n, 0);
    for (std::size_t k = 0; k < n; ++k) {
      const double d = a[KXPacked::Index(k, k)];
      if (!(std::fabs(d) > tol * std::fabs(data[KXPacked::Index(k, k)])) || d == 0.0) continue;
      std::vector<double> column(n);
      for (std::size_t i = 0; i < n; ++i) column[i] = i == k ? 0.0 : SymAt(a, i, k);
      for (std::size_t i = 0; i < n; ++i) {
        if (i == k) continue;
        double* row = a.data() + KXPacked::Index(i, 0);
        for (std::size_t j = 0; j <= i; ++j)
          if (j != k) row[j] -= column[i] * column[j] / d;
      }
      for (std::size_t i = 0; i < n; ++i)
        if (i != k) (i > k ? a[KXPacked::Index(i, k)] : a[KXPacked::Index(k, i)]) = column[i] / d;
      a[KXPacked::Index(k, k)] = -1.0 / d;
      swept[k] = 1;
    }
    std::vector<double> solution(n, 0.0);
    for (std::size_t i = 0; i < n; ++i) {
      if (!swept[i]) continue;
      double s = 0.0;
      for (std::size_t j = 0; j < n; ++j)
        if (swept[j]) s -= SymAt(a, i, j) * b[j];
      solution[i] = s;
    }
    if (!AllFinite(solution)) return false;
    x.swap(solution);
    return true;
  }, false);
}

int KXSymMatrix::TransformToPositiveDefinite(double tol, bool& changed, double& shift) {
  if (!HasConsistentData() || !(tol > 0.0)) return -1;
  return GuardAllocation([&] {
    // Each row is judged against the magnitude of its own diagonal, or the
    // largest diagonal magnitude when its own is 0.
    double largest = 0.0;
    for (int i = 0; i < nRows; ++i)
      largest = std::max(largest, std::fabs(data[KXPacked::Index(i, i)]));
    const double scale = largest > 0.0 ? largest : 1.0;
    std::vector<double> origDiag(static_cast<std::size_t>(nRows));
    for (int i = 0; i < nRows; ++i) {
      const double d = std::fabs(data[KXPacked::Index(i, i)]);
      origDiag[i] = d > 0.0 ? d : scale;
    }
    KXSymMatrix trial(*this);
    const int failing = trial.LTChol(origDiag, tol, false);
    if (failing == 0) {
      changed = false;
      shift = 0.0;
      return 0;
    }
    // A ridge of gershgorin makes every row diagonally dominant with a
    // margin above its threshold, so the doubling below ends by then (up to
    // rounding; it gives up at four times that bound). A non-finite bound
    // means non-finite elements: refused.
    double gershgorin = 0.0;
    for (int i = 0; i < nRows; ++i) {
      double offDiagonal = 0.0;
      for (int j = 0; j < nRows; ++j)
        if (j != i) offDiagonal += std::fabs(SymAt(data, i, j));
      gershgorin = std::max(gershgorin, offDiagonal - data[KXPacked::Index(i, i)] +
                                            tol * origDiag[static_cast<std::size_t>(i)]);
    }
    if (!std::isfinite(gershgorin)) return -1;
    // Double a ridge from tol * scale until the shifted matrix factorises
    // with every pivot accepted.
    double ridge = tol * scale;
    for (; ridge <= 4.0 * gershgorin + tol * scale && std::isfinite(ridge); ridge *= 2.0) {
      trial = *this;
      trial.AddToDiagonal(ridge);
      if (trial.LTChol(origDiag, tol, false) == 0) {
        AddToDiagonal(ridge);
        changed = true;
        shift = ridge;
        return failing;
      }
    }
    return -1;
  }, -1);
}

int KXSymMatrix::CheckMDependent(int row, const std::vector<double>& origDiag,
                                 const KXBitSet& mask, double tol) {
  if (!HasConsistentData() || row < 0 || row >= nRows) return -1;
  if (origDiag.size() < static_cast<std::size_t>(nRows) || tol < 0.0 || std::isnan(tol))
    return -1;
  return GuardAllocation([&] {
    std::vector<int> rows;
    for (int i = 0; i < nRows && i < mask.Size(); ++i)
      if (i != row && mask.IsIn(i)) rows.push_back(i);
    rows.push_back(row);
    KXSymMatrix sub(static_cast<int>(rows.size()));
    std::vector<double> subDiag(rows.size());
    for (std::size_t r = 0; r < rows.size(); ++r) {
      subDiag[r] = origDiag[static_cast<std::size_t>(rows[r])];
      if (subDiag[r] < 0.0) return -1;
      for (std::size_t c = 0; c <= r; ++c)
        sub.data[KXPacked::Index(static_cast<std::int64_t>(r), static_cast<std::int64_t>(c))] =
            SymAt(data, rows[r], rows[c]);
    }
    KXBitSet accepted;
    if (sub.LTChol(subDiag, tol, accepted, true) < 0) return -1;
    return accepted.IsIn(static_cast<int>(rows.size()) - 1) ? 0 : 1;
  }, -1);
}

bool KXSymMatrix::GetRegCoeffs(std::vector<double>& coeffs, const KXBitSet& swept) const {
  if (!HasConsistentData() || nRows < 2 || swept.Size() < nRows - 1) return false;
  const int response = nRows - 1;
  if (swept.IsIn(response)) return false;
  return GuardAllocation([&] {
    std::vector<double> result(static_cast<std::size_t>(response), 0.0);
    const double* row = data.data() + KXPacked::Index(response, 0);
    for (int i = 0; i < response; ++i)
      if (swept.IsIn(i)) result[i] = row[i];
    coeffs.swap(result);
    return true;
  }, false);
}

bool KXSymMatrix::CheckGMG(const std::vector<double>& g, double tol) const {
  if (!HasConsistentData() || tol < 0.0 || std::isnan(tol)) return false;
  if (g.size() != PackedSize(nRows)) return false;
  return GuardAllocation([&] {
    const std::size_t n = static_cast<std::size_t>(nRows);
    std::vector<double> s(n * n), gd(n * n), sg, sgs, gs, gsg;
    for (std::size_t i = 0; i < n; ++i)
      for (std::size_t j = 0; j < n; ++j) {
        s[i * n + j] = SymAt(data, i, j);
        gd[i * n + j] = SymAt(g, i, j);
      }
    DenseProduct(s, gd, sg, n);
    DenseProduct(sg, s, sgs, n);
    DenseProduct(gd, s, gs, n);
    DenseProduct(gs, gd, gsg, n);
    return RelativeDifference(sgs, s) <= tol && RelativeDifference(gsg, gd) <= tol;
  }, false);
}

}  // namespace KXCommon
