// kxcommonr/common/rectmatrix/KXRectMatrixProducts.cpp
//
// Dot products and matrix products of KXRectMatrix. The matrix products run
// on the blocked kernels of KXDenseKernels, which accumulate every
// output in increasing order of the summation index (results independent of
// the vector unit in use and equal to a plain triple loop).
#include <cstddef>
#include <utility>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/foundation/KXAllocation.h"
#include "kxcommonr/common/rectmatrix/KXDenseKernels.h"
#include "kxcommonr/common/rectmatrix/KXRectMatrix.h"

namespace KXCommon {

namespace {

// sum_q x[q * incx] * y[q * incy] for q < n, in index order.
double StridedDot(int n, const double* x, std::ptrdiff_t incx, const double* y, std::ptrdiff_t incy) {
  double sum = 0.0;
  for (int q = 0; q < n; ++q) sum += x[q * incx] * y[q * incy];
  return sum;
}

}  // namespace

double KXRectMatrix::DotProductCol(int c1, int c2) const {
  if (!ValidCol(c1) || !ValidCol(c2)) return KXMV::Missing();
  return StridedDot(nRows, data.data() + c1, nCols, data.data() + c2, nCols);
}

double KXRectMatrix::DotProductColCol(int col, const KXRectMatrix& B, int bCol) const {
  if (!ValidCol(col) || !B.ValidCol(bCol) || B.nRows != nRows) return KXMV::Missing();
  return StridedDot(nRows, data.data() + col, nCols, B.data.data() + bCol, B.nCols);
}

double KXRectMatrix::DotProductRows(int r1, int r2) const {
  if (!ValidRow(r1) || !ValidRow(r2)) return KXMV::Missing();
  return StridedDot(nCols, data.data() + Offset(r1, 0), 1, data.data() + Offset(r2, 0), 1);
}

double KXRectMatrix::DotProductRowCol(int row, const KXRectMatrix& B, int bCol) const {
  if (!ValidRow(row) || !B.ValidCol(bCol) || B.nRows != nCols) return KXMV::Missing();
  return StridedDot(nCols, data.data() + Offset(row, 0), 1, B.data.data() + bCol, B.nCols);
}

double KXRectMatrix::DotProductRowRow(int row, const KXRectMatrix& B, int bRow) const {
  if (!ValidRow(row) || !B.ValidRow(bRow) || B.nCols != nCols) return KXMV::Missing();
  return StridedDot(nCols, data.data() + Offset(row, 0), 1, B.data.data() + B.Offset(bRow, 0), 1);
}

bool KXRectMatrix::ComputeMatrixProduct(const KXRectMatrix& B, KXRectMatrix& out) const {
  if (nCols != B.nRows || !HasConsistentData() || !B.HasConsistentData()) return false;
  const internal::StridedView a{data.data(), nCols, 1};
  const internal::StridedView b{B.data.data(), B.nCols, 1};
  if (&out != this && &out != &B && out.nRows == nRows && out.nCols == B.nCols) {
    // Reuse the output's storage (no allocation when called in a loop).
    out.Clear();
    internal::GemmAccumulate(nRows, B.nCols, nCols, a, b, out.data.data(), B.nCols);
    return true;
  }
  KXRectMatrix result;
  if (!result.SetNRowsCols(nRows, B.nCols)) return false;
  internal::GemmAccumulate(nRows, B.nCols, nCols, a, b, result.data.data(), B.nCols);
  out = std::move(result);
  return true;
}

bool KXRectMatrix::ComputeProductMatrixTrans(const KXRectMatrix& B, KXRectMatrix& out) const {
  if (nCols != B.nCols || !HasConsistentData() || !B.HasConsistentData()) return false;
  KXRectMatrix result;
  if (!result.SetNRowsCols(nRows, B.nRows)) return false;
  // (A B')(i, j) = sum_p a(i, p) b(j, p): B read through its transposed view.
  internal::GemmAccumulate(nRows, B.nRows, nCols, internal::StridedView{data.data(), nCols, 1},
                           internal::StridedView{B.data.data(), 1, B.nCols}, result.data.data(),
                           B.nRows);
  out = std::move(result);
  return true;
}

bool KXRectMatrix::ComputeRV(const std::vector<double>& v, std::vector<double>& out) const {
  if (v.size() != static_cast<std::size_t>(nCols) || !HasConsistentData()) return false;
  std::vector<double> result;
  if (!GuardAllocation([&] {
    result.resize(static_cast<std::size_t>(nRows));
    return true;
  }, false)) {
    return false;
  }
  for (int i = 0; i < nRows; ++i)
    result[static_cast<std::size_t>(i)] = StridedDot(nCols, data.data() + Offset(i, 0), 1, v.data(), 1);
  out.swap(result);
  return true;
}

bool KXRectMatrix::ComputeVR(const std::vector<double>& v, std::vector<double>& out) const {
  if (v.size() != static_cast<std::size_t>(nRows) || !HasConsistentData()) return false;
  // Row by row, so each output sums over i in increasing order while the
  // inner loop runs over contiguous elements.
  std::vector<double> result;
  if (!GuardAllocation([&] {
    result.assign(static_cast<std::size_t>(nCols), 0.0);
    return true;
  }, false)) {
    return false;
  }
  for (int i = 0; i < nRows; ++i) {
    const double vi = v[static_cast<std::size_t>(i)];
    const double* row = data.data() + Offset(i, 0);
    for (int j = 0; j < nCols; ++j) result[static_cast<std::size_t>(j)] += vi * row[j];
  }
  out.swap(result);
  return true;
}

}  // namespace KXCommon
