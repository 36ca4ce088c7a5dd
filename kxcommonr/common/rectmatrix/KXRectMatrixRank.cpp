// kxcommonr/common/rectmatrix/KXRectMatrixRank.cpp
//
// Rank and estimability tools of KXRectMatrix. They form the cross products
// of the rows or columns as a packed triangle (with the dense kernels) and
// factorise it with the redundancy-marking Cholesky of the packed
// component. Tolerances apply to norms: internally they are squared,
// because they are compared with cross products, whose entries scale with
// the square of the data.
#include <cmath>
#include <cstddef>
#include <new>
#include <utility>
#include <vector>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/foundation/KXAllocation.h"
#include "kxcommonr/common/packed/KXPackedFactorKernels.h"
#include "kxcommonr/common/packed/KXPackedLayout.h"
#include "kxcommonr/common/rectmatrix/KXDenseKernels.h"
#include "kxcommonr/common/rectmatrix/KXRectMatrix.h"

namespace KXCommon {

namespace {

using internal::StridedView;

// Default relative tolerance on norms where an operation takes none.
constexpr double kDefaultRankTolerance = 1e-7;

// The rank-tolerant Cholesky factor of a cross-product matrix.
struct CrossProductFactor {
  std::vector<double> factor;           // L, packed
  std::vector<unsigned char> accepted;  // one flag per row, 1 when accepted
  int redundant = -1;                   // the number of redundant rows; -1 on failure
};

// The cross products of a's rows (A A', byRows) or columns (A'A) as a packed
// triangle, factorised in place. A pivot is redundant when it does not
// exceed tol^2 times its row's initial diagonal. Fails (redundant -1) when
// a's data is inconsistent. Throws std::bad_alloc.
CrossProductFactor FactorCrossProducts(const KXRectMatrix& a, bool byRows, double tol) {
  CrossProductFactor result;
  if (!a.HasConsistentData()) return result;
  const int rows = a.GetNRows();
  const int cols = a.GetNCols();
  const int order = byRows ? rows : cols;
  const double* x = a.GetData().data();
  // (i, j) = sum over p, in increasing p, of x(i, p) x(j, p) (rows) or
  // x(p, i) x(p, j) (columns).
  const StridedView left = byRows ? StridedView{x, cols, 1} : StridedView{x, 1, cols};
  const StridedView right = byRows ? StridedView{x, 1, cols} : StridedView{x, cols, 1};
  std::vector<double>& factor = result.factor;
  factor.assign(KXPacked::Size(order), 0.0);
  internal::PackedLowerAccumulate(order, byRows ? cols : rows, left, 1.0, right, factor.data());
  std::vector<double> diagonal(static_cast<std::size_t>(order));
  for (int i = 0; i < order; ++i) diagonal[static_cast<std::size_t>(i)] = factor[KXPacked::Index(i, i)];
  result.accepted.assign(static_cast<std::size_t>(order), 0);
  result.redundant =
      internal::PackedCholesky(factor.data(), order, diagonal.data(), tol * tol, result.accepted.data());
  return result;
}

// Sets the bits of the accepted rows in mask, which is first grown to their
// count when shorter, else cleared (keeping its size).
void MarkAccepted(const std::vector<unsigned char>& accepted, KXBitSet& mask) {
  const int count = static_cast<int>(accepted.size());
  if (mask.Size() < count)
    mask.Resize(count, false);
  else
    mask.Clear();
  for (int i = 0; i < count; ++i)
    if (accepted[static_cast<std::size_t>(i)]) mask.Set(i, true);
}

// Solves L L' x = rhs in place with the packed factor L of order n; a
// component whose pivot is 0 (a redundant row) is set to 0, which gives the
// solution restricted to the accepted rows.
void SolveWithFactor(const std::vector<double>& factor, int n, double* x) {
  for (int i = 0; i < n; ++i) {
    const double* row = factor.data() + KXPacked::RowStart(i);
    double s = x[i];
    for (int j = 0; j < i; ++j) s -= row[j] * x[j];
    x[i] = row[i] != 0.0 ? s / row[i] : 0.0;
  }
  for (int i = n - 1; i >= 0; --i) {
    double s = x[i];
    for (int j = i + 1; j < n; ++j) s -= factor[KXPacked::Index(j, i)] * x[j];
    const double pivot = factor[KXPacked::Index(i, i)];
    x[i] = pivot != 0.0 ? s / pivot : 0.0;
  }
}

}  // namespace

int KXRectMatrix::FindRedundancies(double tol, KXBitSet& nonRedundant, bool byRows) {
  if (!(tol >= 0.0)) return -1;
  return GuardAllocation([&] {
    const CrossProductFactor cross = FactorCrossProducts(*this, byRows, tol);
    if (cross.redundant >= 0) MarkAccepted(cross.accepted, nonRedundant);
    return cross.redundant;
  }, -1);
}

int KXRectMatrix::FindNonRedunIndices(double tol, std::vector<int>& idx, bool byRows) {
  if (!(tol >= 0.0)) return -1;
  return GuardAllocation([&] {
    const CrossProductFactor cross = FactorCrossProducts(*this, byRows, tol);
    if (cross.redundant < 0) return -1;
    std::vector<int> kept;
    kept.reserve(cross.accepted.size());
    for (std::size_t i = 0; i < cross.accepted.size(); ++i)
      if (cross.accepted[i]) kept.push_back(static_cast<int>(i));
    idx.swap(kept);
    return cross.redundant;
  }, -1);
}

int KXRectMatrix::ExtractFullRank(double tol, KXRectMatrix& out, std::vector<int>& idx, bool byRows) {
  if (!(tol >= 0.0)) return -1;
  std::vector<int> kept;
  const int redundant = FindNonRedunIndices(tol, kept, byRows);
  if (redundant < 0) return redundant;
  KXRectMatrix result;
  if ((byRows ? ExtractRows(kept, result) : ExtractColumns(kept, result)) < 0) return -1;
  out = result;
  idx.swap(kept);
  return redundant;
}

int KXRectMatrix::CheckAddColRedundancies(const KXBitSet& inModel, KXBitSet& nonRedundant) const {
  if (inModel.Size() < nCols || !HasConsistentData()) return -1;
  return GuardAllocation([&] {
    // The model's columns first, then the candidates, each in increasing
    // order: the Cholesky order decides which of dependent columns stays.
    std::vector<int> order;
    order.reserve(static_cast<std::size_t>(nCols));
    for (int j = 0; j < nCols; ++j)
      if (inModel.IsIn(j)) order.push_back(j);
    const int modelCount = static_cast<int>(order.size());
    for (int j = 0; j < nCols; ++j)
      if (!inModel.IsIn(j)) order.push_back(j);
    KXRectMatrix permuted;
    if (ExtractColumns(order, permuted) < 0) return -1;
    const CrossProductFactor cross = FactorCrossProducts(permuted, false, kDefaultRankTolerance);
    if (cross.redundant < 0) return -1;
    KXBitSet result(nCols);
    int redundantCandidates = 0;
    for (int q = 0; q < nCols; ++q) {
      if (cross.accepted[static_cast<std::size_t>(q)]) {
        result.Set(order[static_cast<std::size_t>(q)], true);
      } else if (q >= modelCount) {
        ++redundantCandidates;
      }
    }
    nonRedundant = result;
    return redundantCandidates;
  }, -1);
}

bool KXRectMatrix::IsEstimable(const KXRectMatrix& L, const KXBitSet& nonRedundant, double tol) {
  if (L.nCols != nCols || nonRedundant.Size() < nCols || !(tol >= 0.0) || !HasConsistentData() ||
      !L.HasConsistentData())
    return false;
  return GuardAllocation([&] {
    std::vector<int> kept;
    std::vector<int> redundant;
    for (int j = 0; j < nCols; ++j) (nonRedundant.IsIn(j) ? kept : redundant).push_back(j);
    if (redundant.empty()) return true;
    const int nKept = static_cast<int>(kept.size());
    // Each redundant column r written over the kept ones: X_r = X_N b_r,
    // b_r the least-squares coefficients (exact when r is truly redundant).
    std::vector<std::vector<double>> coefficients(redundant.size());
    if (nKept > 0) {
      KXRectMatrix keptColumns;
      if (ExtractColumns(kept, keptColumns) < 0) return false;
      const CrossProductFactor cross = FactorCrossProducts(keptColumns, false, 0.0);
      if (cross.redundant < 0) return false;
      for (std::size_t q = 0; q < redundant.size(); ++q) {
        std::vector<double>& b = coefficients[q];
        b.resize(static_cast<std::size_t>(nKept));
        for (int k = 0; k < nKept; ++k) b[static_cast<std::size_t>(k)] = keptColumns.DotProductColCol(k, *this, redundant[q]);
        SolveWithFactor(cross.factor, nKept, b.data());
      }
    }
    // l is estimable when, for every redundant r, l_r = l_N . b_r.
    for (int row = 0; row < L.nRows; ++row) {
      const double* l = L.data.data() + L.Offset(row, 0);
      for (std::size_t q = 0; q < redundant.size(); ++q) {
        double combination = 0.0;
        double scale = std::fabs(l[redundant[q]]);
        for (int k = 0; k < nKept; ++k) {
          const double term = l[kept[static_cast<std::size_t>(k)]] * coefficients[q][static_cast<std::size_t>(k)];
          combination += term;
          scale += std::fabs(term);
        }
        if (!(std::fabs(l[redundant[q]] - combination) <= tol * scale)) return false;
      }
    }
    return true;
  }, false);
}

int KXRectMatrix::EstimateLinearGI(const std::vector<double>& y, std::vector<double>& b, double tol) const {
  if (y.size() != static_cast<std::size_t>(nRows) || !(tol >= 0.0)) return -1;
  return GuardAllocation([&] {
    const CrossProductFactor cross = FactorCrossProducts(*this, false, tol);
    if (cross.redundant < 0) return -1;
    std::vector<double> solution;
    if (!ComputeVR(y, solution)) return -1;  // X'y
    SolveWithFactor(cross.factor, nCols, solution.data());
    b.swap(solution);
    return cross.redundant;
  }, -1);
}

bool KXRectMatrix::ResidOfOrthProjection(const KXRectMatrix& B, double tol, KXBitSet& bNonRedundant,
                                         KXBitSet& residNonZero) {
  if (B.nRows != nRows || !(tol >= 0.0) || !HasConsistentData() || !B.HasConsistentData()) return false;
  return GuardAllocation([&] {
    const CrossProductFactor cross = FactorCrossProducts(B, false, tol);
    if (cross.redundant < 0) return false;
    // Coefficients C = (B'B)^- B'A, column by column, then A - B C.
    KXRectMatrix transposedB(B);
    if (!transposedB.Transpose()) return false;
    KXRectMatrix coefficients;
    if (!transposedB.ComputeMatrixProduct(*this, coefficients)) return false;
    std::vector<double> column;
    for (int c = 0; c < nCols; ++c) {
      coefficients.GetCol(c, column);
      SolveWithFactor(cross.factor, B.nCols, column.data());
      for (int k = 0; k < B.nCols; ++k) coefficients.SetElem(k, c, column[static_cast<std::size_t>(k)]);
    }
    KXRectMatrix fitted;
    if (!B.ComputeMatrixProduct(coefficients, fitted)) return false;
    KXRectMatrix residual(*this);
    for (std::size_t q = 0; q < residual.data.size(); ++q) residual.data[q] -= fitted.data[q];
    KXBitSet nonZero(nCols);
    for (int c = 0; c < nCols; ++c) {
      if (residual.ColNorm(c) > tol * ColNorm(c)) {
        nonZero.Set(c, true);
      } else {
        residual.ZeroOutCol(c);
      }
    }
    KXBitSet acceptedColumns;
    MarkAccepted(cross.accepted, acceptedColumns);
    *this = residual;
    bNonRedundant = acceptedColumns;
    residNonZero = nonZero;
    return true;
  }, false);
}

bool KXRectMatrix::SolveLinearSquare(const std::vector<double>& b, std::vector<double>& x, double tol) const {
  const int n = nRows;
  if (nCols != n || b.size() != static_cast<std::size_t>(n) || !(tol >= 0.0) || !HasConsistentData())
    return false;
  return GuardAllocation([&] {
    std::vector<double> work(data);
    std::vector<double> rhs(b);
    std::vector<double> rowScale(static_cast<std::size_t>(n), 0.0);
    const std::size_t order = static_cast<std::size_t>(n);
    for (std::size_t i = 0; i < order; ++i)
      for (std::size_t j = 0; j < order; ++j) rowScale[i] = std::fmax(rowScale[i], std::fabs(work[i * order + j]));
    for (std::size_t k = 0; k < order; ++k) {
      // Scaled partial pivoting: the largest |a_ik| relative to its row.
      std::size_t pivotRow = order;
      double best = -1.0;
      for (std::size_t i = k; i < order; ++i) {
        if (!(rowScale[i] > 0.0)) continue;
        const double relative = std::fabs(work[i * order + k]) / rowScale[i];
        if (relative > best) {
          best = relative;
          pivotRow = i;
        }
      }
      if (pivotRow == order || !(best > tol) || best == 0.0) return false;
      if (pivotRow != k) {
        for (std::size_t j = 0; j < order; ++j) std::swap(work[k * order + j], work[pivotRow * order + j]);
        std::swap(rhs[k], rhs[pivotRow]);
        std::swap(rowScale[k], rowScale[pivotRow]);
      }
      const double pivot = work[k * order + k];
      for (std::size_t i = k + 1; i < order; ++i) {
        const double factor = work[i * order + k] / pivot;
        if (factor == 0.0) continue;
        for (std::size_t j = k; j < order; ++j) work[i * order + j] -= factor * work[k * order + j];
        rhs[i] -= factor * rhs[k];
      }
    }
    for (std::size_t q = order; q-- > 0;) {
      double s = rhs[q];
      for (std::size_t j = q + 1; j < order; ++j) s -= work[q * order + j] * rhs[j];
      rhs[q] = s / work[q * order + q];
    }
    x.swap(rhs);
    return true;
  }, false);
}

bool KXRectMatrix::IsERowMultipleOfAnother(int i, int k, double zeroTol, double ratioTol, double& factor) const {
  if (!ValidRow(i) || !ValidRow(k) || i == k || !(zeroTol >= 0.0) || !(ratioTol >= 0.0)) return false;
  const double* rowI = data.data() + Offset(i, 0);
  const double* rowK = data.data() + Offset(k, 0);
  double largestI = 0.0;
  double largestK = 0.0;
  for (int j = 0; j < nCols; ++j) {
    largestI = std::fmax(largestI, std::fabs(rowI[j]));
    largestK = std::fmax(largestK, std::fabs(rowK[j]));
  }
  if (!(largestK > 0.0)) return false;
  if (largestI == 0.0) {
    factor = 0.0;
    return true;
  }
  double ratio = 0.0;
  bool haveRatio = false;
  for (int j = 0; j < nCols; ++j) {
    const bool zeroI = std::fabs(rowI[j]) <= zeroTol * largestI;
    const bool zeroK = std::fabs(rowK[j]) <= zeroTol * largestK;
    if (zeroI != zeroK) return false;
    if (zeroI) continue;
    if (!haveRatio) {
      ratio = rowI[j] / rowK[j];
      haveRatio = true;
    } else if (!(std::fabs(rowI[j] - ratio * rowK[j]) <= ratioTol * std::fabs(rowI[j]))) {
      return false;
    }
  }
  if (!haveRatio) return false;
  factor = ratio;
  return true;
}

}  // namespace KXCommon
