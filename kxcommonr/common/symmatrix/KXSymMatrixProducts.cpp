// kxcommonr/common/symmatrix/KXSymMatrixProducts.cpp
//
// KXSymMatrix update and product family: weighted cross-product updates,
// quadratic forms, matrix-vector and symmetric products, traces, and the
// elementwise edits and diagnostics of the packed triangle.
//
// Sums run in index order with one accumulator unless a comment says
// otherwise, so results do not depend on the build or the processor.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/packed/KXPackedLayout.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"

#include "kxcommonr/common/foundation/KXAllocation.h"
#include "kxcommonr/common/symmatrix/internal/KXSymKernels.h"

namespace KXCommon {

namespace {

// Element (i, j) of a consistent packed triangle, either order, no checks.
inline double At(const std::vector<double>& packed, std::size_t i,
                 std::size_t j) {
  return packed[KXPacked::SymIndex(i, j)];
}

// Calls visit(i, j, k) for every element (i, j), j < i, below the diagonal
// of a packed triangle of order n, row by row; k is its packed position.
template <class Visit>
void ForEachBelowDiagonal(std::size_t n, Visit visit) {
  std::size_t k = 0;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < i; ++j, ++k) visit(i, j, k);
    ++k;  // the diagonal
  }
}

// Full row i of the symmetric matrix of order n held in packed, times
// v[0], v[inc], ... in index order.
double FullRowDot(const double* packed, std::size_t n, std::size_t i,
                  const double* v, std::size_t inc) {
  const double* stored = packed + KXPacked::RowStart(i);
  double sum = 0.0;
  for (std::size_t j = 0; j <= i; ++j) sum += stored[j] * v[j * inc];
  std::size_t k = KXPacked::Index(i + 1, i);
  for (std::size_t j = i + 1; j < n; ++j) {
    sum += packed[k] * v[j * inc];
    k += j + 1;
  }
  return sum;
}

// Full row i of packed matrix a dot full row j of packed matrix b, both of
// order n, in index order.
double FullRowsDot(const double* a, std::size_t i, const double* b,
                   std::size_t j, std::size_t n) {
  double sum = 0.0;
  for (std::size_t m = 0; m < n; ++m) {
    sum += a[KXPacked::SymIndex(i, m)] * b[KXPacked::SymIndex(j, m)];
  }
  return sum;
}

// v'Sw over strided arrays as a sum of row totals, added in row order.
// Row i's total is v_i (sum over j < i of a_ij w_j) + w_i (sum over j < i
// of a_ij v_j) + a_ii v_i w_i, each inner sum in increasing j. Four rows
// are summed side by side (eight independent sums, so their adds overlap);
// every total is formed exactly as it would be alone.
double QuadraticForm(const double* packed, std::size_t n, const double* v,
                     std::size_t incv, const double* w, std::size_t incw) {
  double sum = 0.0;
  std::size_t i = 0;
  for (; i + 4 <= n; i += 4) {
    const double* a0 = packed + KXPacked::RowStart(i);
    const double* a1 = a0 + i + 1;
    const double* a2 = a1 + i + 2;
    const double* a3 = a2 + i + 3;
    double dw0 = 0.0, dw1 = 0.0, dw2 = 0.0, dw3 = 0.0;
    double dv0 = 0.0, dv1 = 0.0, dv2 = 0.0, dv3 = 0.0;
    for (std::size_t j = 0; j < i; ++j) {
      const double vj = v[j * incv], wj = w[j * incw];
      dw0 += a0[j] * wj;
      dv0 += a0[j] * vj;
      dw1 += a1[j] * wj;
      dv1 += a1[j] * vj;
      dw2 += a2[j] * wj;
      dv2 += a2[j] * vj;
      dw3 += a3[j] * wj;
      dv3 += a3[j] * vj;
    }
    const double* rows[4] = {a0, a1, a2, a3};
    double dw[4] = {dw0, dw1, dw2, dw3}, dv[4] = {dv0, dv1, dv2, dv3};
    for (std::size_t r = 0; r < 4; ++r) {
      for (std::size_t j = i; j < i + r; ++j) {
        dw[r] += rows[r][j] * w[j * incw];
        dv[r] += rows[r][j] * v[j * incv];
      }
      const double vi = v[(i + r) * incv], wi = w[(i + r) * incw];
      sum += (vi * dw[r] + wi * dv[r]) + rows[r][i + r] * vi * wi;
    }
  }
  for (; i < n; ++i) {
    const double* a = packed + KXPacked::RowStart(i);
    double dw = 0.0, dv = 0.0;
    for (std::size_t j = 0; j < i; ++j) {
      dw += a[j] * w[j * incw];
      dv += a[j] * v[j * incv];
    }
    const double vi = v[i * incv], wi = w[i * incw];
    sum += (vi * dw + wi * dv) + a[i] * vi * wi;
  }
  return sum;
}

bool IsNegativeOrNaN(double x) { return !(x >= 0.0); }

// Where a product vector is formed: directly in out (its capacity reused)
// unless out is also the input, then in scratch that is swapped in after.
std::vector<double>& ResultBuffer(const std::vector<double>& input,
                                  std::vector<double>& out,
                                  std::vector<double>& scratch, std::size_t n) {
  std::vector<double>& target = &out == &input ? scratch : out;
  target.assign(n, 0.0);
  return target;
}

}  // namespace

// ---------------------------------------------------------------- updates

bool KXSymMatrix::UpdateXX(const std::vector<double>& x, double w) {
  if (!(w > 0.0)) return false;
  return UpdateXXPosNegW(x, w);
}

bool KXSymMatrix::UpdateXXPosNegW(const std::vector<double>& x, double w) {
  if (nRows < 0 || x.size() != static_cast<std::size_t>(nRows) ||
      !HasConsistentData())
    return false;
  if (nRows == 1) {  // x could alias the one-element triangle
    const double xi = x[0];
    if (xi != 0.0) data[0] += (xi * w) * xi;
    return true;
  }
  internal::PackedRankOneUpdate(data.data(), x.data(), x.size(), w);
  return true;
}

bool KXSymMatrix::UpdateXXNonRedun(const std::vector<double>& x,
                                   const KXBitSet& keep, double w) {
  if (nRows < 0 || x.size() != static_cast<std::size_t>(nRows) ||
      !HasConsistentData())
    return false;
  const std::size_t n = x.size();
  for (std::size_t i = 0; i < n; ++i) {
    const double xi = x[i];
    if (xi == 0.0 || !keep.IsIn(static_cast<int>(i))) continue;
    const double c = xi * w;
    double* stored = data.data() + KXPacked::RowStart(i);
    for (std::size_t j = 0; j <= i; ++j) {
      if (keep.IsIn(static_cast<int>(j))) stored[j] += c * x[j];
    }
  }
  return true;
}

bool KXSymMatrix::UpdateXXSparse(int nnz, const std::vector<int>& idx,
                                 const std::vector<double>& val, double w) {
  if (nnz < 0 || idx.size() < static_cast<std::size_t>(nnz) ||
      val.size() < static_cast<std::size_t>(nnz) || !(w > 0.0) ||
      !HasConsistentData())
    return false;
  for (int k = 0; k < nnz; ++k) {
    const int i = idx[k];
    if (i < 0 || i >= nRows) continue;
    const double c = w * val[k];
    double* stored = data.data() + PackedIndex(i, 0);
    for (int m = 0; m < nnz; ++m) {
      const int j = idx[m];
      if (j < 0 || j >= nRows) continue;
      if (j > i) break;  // relies on ascending indices
      stored[j] += c * val[m];
    }
  }
  return true;
}

// ------------------------------------------------------- quadratic forms

double KXSymMatrix::ComputeVSV(const std::vector<double>& v) const {
  return ComputeVSW(v, v);
}

double KXSymMatrix::ComputeVSW(const std::vector<double>& v,
                               const std::vector<double>& w) const {
  if (nRows < 0 || v.size() != static_cast<std::size_t>(nRows) ||
      w.size() != static_cast<std::size_t>(nRows) || !HasConsistentData())
    return KXMV::Missing();
  if (nRows == 0) return 0.0;
  return QuadraticForm(data.data(), v.size(), v.data(), 1, w.data(), 1);
}

double KXSymMatrix::ComputeVSW(const double* v, int incv, const double* w,
                               int incw) const {
  if (!HasConsistentData() || incv < 1 || incw < 1) return KXMV::Missing();
  if (nRows == 0) return 0.0;
  if (v == nullptr || w == nullptr) return KXMV::Missing();
  return QuadraticForm(data.data(), static_cast<std::size_t>(nRows), v,
                       static_cast<std::size_t>(incv), w,
                       static_cast<std::size_t>(incw));
}

double KXSymMatrix::ComputeVSW(const std::vector<double>& x, int vStart,
                               int wStart, int k) const {
  if (!HasConsistentData() || k < 0 || k > nRows || vStart < 0 || wStart < 0)
    return KXMV::Missing();
  const std::size_t count = static_cast<std::size_t>(k);
  if (static_cast<std::size_t>(vStart) + count > x.size() ||
      static_cast<std::size_t>(wStart) + count > x.size())
    return KXMV::Missing();
  if (k == 0) return 0.0;
  // The leading k x k block is the first k(k+1)/2 packed elements.
  return QuadraticForm(data.data(), count, x.data() + vStart, 1,
                       x.data() + wStart, 1);
}

double KXSymMatrix::ComputeVSWParts(const std::vector<double>& v, int vOffset,
                                    const std::vector<double>& w,
                                    int wOffset) const {
  if (!HasConsistentData() || vOffset < 0 || wOffset < 0)
    return KXMV::Missing();
  const std::size_t n = static_cast<std::size_t>(nRows);
  if (static_cast<std::size_t>(vOffset) + n > v.size() ||
      static_cast<std::size_t>(wOffset) + n > w.size())
    return KXMV::Missing();
  if (n == 0) return 0.0;
  return ComputeVSWParts(v.data() + vOffset, w.data() + wOffset);
}

double KXSymMatrix::ComputeVSWParts(const double* v, const double* w) const {
  if (!HasConsistentData()) return KXMV::Missing();
  if (nRows == 0) return 0.0;
  if (v == nullptr || w == nullptr) return KXMV::Missing();
  const std::size_t n = static_cast<std::size_t>(nRows);
  double diagonalPart = 0.0;
  double offDiagonalPart = 0.0;
  std::size_t k = 0;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < i; ++j, ++k) {
      offDiagonalPart += data[k] * (v[i] * w[j] + v[j] * w[i]);
    }
    diagonalPart += data[k++] * v[i] * w[i];
  }
  return diagonalPart + offDiagonalPart;
}

double KXSymMatrix::ComputeBlockVSW(int bi, int bj,
                                    const std::vector<double>& v,
                                    const std::vector<double>& w) const {
  if (!HasConsistentData() || blockSize < 0 || bi < 0 || bj < 0 ||
      bi >= nBlocks || bj >= nBlocks ||
      v.size() != static_cast<std::size_t>(blockSize) ||
      w.size() != static_cast<std::size_t>(blockSize))
    return KXMV::Missing();
  const std::size_t b = static_cast<std::size_t>(blockSize);
  const std::size_t rowBase = static_cast<std::size_t>(bi) * b;
  const std::size_t colBase = static_cast<std::size_t>(bj) * b;
  double sum = 0.0;
  for (std::size_t i = 0; i < b; ++i) {
    double rowSum = 0.0;
    for (std::size_t j = 0; j < b; ++j)
      rowSum += At(data, rowBase + i, colBase + j) * w[j];
    sum += v[i] * rowSum;
  }
  return sum;
}

double KXSymMatrix::ComputeBlockVSV(int bi, int bj,
                                    const std::vector<double>& v) const {
  return ComputeBlockVSW(bi, bj, v, v);
}

double KXSymMatrix::SquareRootVSV(const std::vector<double>& v) const {
  const double q = ComputeVSV(v);
  if (KXMV::IsMissing(q) || IsNegativeOrNaN(q)) return KXMV::Missing();
  return std::sqrt(q);
}

// ------------------------------------------------------- vector products

bool KXSymMatrix::ComputeSV(const std::vector<double>& v,
                            std::vector<double>& out) const {
  if (nRows < 0 || v.size() != static_cast<std::size_t>(nRows)) return false;
  return ComputeSV(nRows, v, out);
}

bool KXSymMatrix::ComputeSV(int k, const std::vector<double>& v,
                            std::vector<double>& out) const {
  if (!HasConsistentData() || k < 0 || k > nRows ||
      v.size() < static_cast<std::size_t>(k))
    return false;
  const std::size_t n = static_cast<std::size_t>(k);
  // out[i] = sum over j of a_ij v_j in index order, whatever the path.
  std::vector<double> scratch;
  std::vector<double>& result = ResultBuffer(v, out, scratch, n);
  internal::PackedSymMatVec(data.data(), v.data(), result.data(), n);
  if (&result == &scratch) out.swap(scratch);
  return true;
}

double KXSymMatrix::ComputeRVD(int row, const std::vector<double>& v,
                               int inc) const {
  if (nRows < 0 || inc < 1 ||
      v.size() < static_cast<std::size_t>(nRows) * static_cast<std::size_t>(inc))
    return KXMV::Missing();
  return ComputeRVD(row, v.data(), inc);
}

double KXSymMatrix::ComputeRVD(int row, const double* v, int inc) const {
  if (!HasConsistentData() || row < 0 || row >= nRows || inc < 1 ||
      v == nullptr)
    return KXMV::Missing();
  return FullRowDot(data.data(), static_cast<std::size_t>(nRows),
                    static_cast<std::size_t>(row), v,
                    static_cast<std::size_t>(inc));
}

double KXSymMatrix::ComputeRowDotProductS(int i, const KXSymMatrix& T,
                                          int j) const {
  if (T.nRows != nRows || !T.HasConsistentData()) return KXMV::Missing();
  return ComputeRowDotProductS(i, T.data, j);
}

double KXSymMatrix::ComputeRowDotProductS(int i,
                                          const std::vector<double>& tPacked,
                                          int j) const {
  if (!HasConsistentData() || i < 0 || j < 0 || i >= nRows || j >= nRows ||
      tPacked.size() < PackedSize(nRows))
    return KXMV::Missing();
  return FullRowsDot(data.data(), static_cast<std::size_t>(i), tPacked.data(),
                     static_cast<std::size_t>(j),
                     static_cast<std::size_t>(nRows));
}

double KXSymMatrix::ComputeDotProduct2Rows(int i, int j) const {
  return ComputeRowDotProductS(i, data, j);
}

bool KXSymMatrix::ComputeLV(const std::vector<double>& v,
                            std::vector<double>& out) const {
  if (!HasConsistentData() || v.size() != static_cast<std::size_t>(nRows))
    return false;
  const std::size_t n = v.size();
  std::vector<double> scratch;
  std::vector<double>& result = ResultBuffer(v, out, scratch, n);
  for (std::size_t i = 0; i < n; ++i) {
    const double* stored = data.data() + KXPacked::RowStart(i);
    double sum = 0.0;
    for (std::size_t j = 0; j <= i; ++j) sum += stored[j] * v[j];
    result[i] = sum;
  }
  if (&result == &scratch) out.swap(scratch);
  return true;
}

bool KXSymMatrix::ComputeLTransV(const std::vector<double>& v,
                                 std::vector<double>& out) const {
  if (!HasConsistentData() || v.size() != static_cast<std::size_t>(nRows))
    return false;
  const std::size_t n = v.size();
  // (L'v)_j = sum over i >= j of l_ij v_i, accumulated in increasing i.
  std::vector<double> scratch;
  std::vector<double>& result = ResultBuffer(v, out, scratch, n);
  for (std::size_t i = 0; i < n; ++i) {
    const double* stored = data.data() + KXPacked::RowStart(i);
    const double vi = v[i];
    for (std::size_t j = 0; j <= i; ++j) result[j] += stored[j] * vi;
  }
  if (&result == &scratch) out.swap(scratch);
  return true;
}

// ------------------------------------------- symmetric products, traces

bool KXSymMatrix::ComputeGMG(const std::vector<double>& g,
                             KXSymMatrix& out) const {
  if (!HasConsistentData() || g.size() > data.size()) return false;
  const std::size_t n = static_cast<std::size_t>(nRows);
  std::vector<double> gPacked(g);
  gPacked.resize(data.size(), 0.0);  // a short g is padded with zeros
  std::vector<double> gFull(n * n), sFull;
  KXPacked::ToSquare(gPacked.data(), nRows, gFull.data());
  ExpandSym(sFull);
  // sg = S G, then out_ij = sum_k G_ik (S G)_kj for j <= i.
  std::vector<double> sg(n * n, 0.0);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      double sum = 0.0;
      for (std::size_t k = 0; k < n; ++k) sum += sFull[i * n + k] * gFull[k * n + j];
      sg[i * n + j] = sum;
    }
  }
  KXSymMatrix result(nRows);
  if (!result.IsValidMatrix()) return false;
  std::size_t position = 0;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      double sum = 0.0;
      for (std::size_t k = 0; k < n; ++k) sum += gFull[i * n + k] * sg[k * n + j];
      result.data[position++] = sum;
    }
  }
  out = std::move(result);
  return true;
}

bool KXSymMatrix::ComputeLSLTrans(const KXSymMatrix& T,
                                  KXSymMatrix& out) const {
  if (T.nRows != nRows || !HasConsistentData() || !T.HasConsistentData())
    return false;
  const std::size_t n = static_cast<std::size_t>(nRows);
  // lt = L T with L this lower triangle: (L T)_ik = sum_{m<=i} l_im t_mk.
  std::vector<double> lt(n * n, 0.0);
  for (std::size_t i = 0; i < n; ++i) {
    const double* stored = data.data() + KXPacked::RowStart(i);
    for (std::size_t k = 0; k < n; ++k) {
      double sum = 0.0;
      for (std::size_t m = 0; m <= i; ++m) sum += stored[m] * At(T.data, m, k);
      lt[i * n + k] = sum;
    }
  }
  KXSymMatrix result(nRows);
  if (!result.IsValidMatrix()) return false;
  std::size_t position = 0;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      const double* factorRow = data.data() + KXPacked::RowStart(j);
      double sum = 0.0;
      for (std::size_t k = 0; k <= j; ++k) sum += lt[i * n + k] * factorRow[k];
      result.data[position++] = sum;
    }
  }
  out = std::move(result);
  return true;
}

bool KXSymMatrix::ComputeSTransS(KXSymMatrix& out) const {
  if (!HasConsistentData()) return false;
  const std::size_t n = static_cast<std::size_t>(nRows);
  KXSymMatrix result(nRows);
  if (!result.IsValidMatrix()) return false;
  std::size_t position = 0;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      result.data[position++] = FullRowsDot(data.data(), i, data.data(), j, n);
    }
  }
  out = std::move(result);
  return true;
}

double KXSymMatrix::Trace() const {
  if (!HasConsistentData()) return KXMV::Missing();
  double sum = 0.0;
  std::size_t diagonal = 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(nRows); ++i) {
    sum += data[diagonal];
    diagonal += i + 2;
  }
  return sum;
}

double KXSymMatrix::TraceOfProduct(const KXSymMatrix& T) const {
  if (T.nRows != nRows || !HasConsistentData() || !T.HasConsistentData())
    return KXMV::Missing();
  // tr(S T) = sum_i s_ii t_ii + 2 sum_{j<i} s_ij t_ij, row by row.
  double sum = 0.0;
  std::size_t k = 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(nRows); ++i) {
    for (std::size_t j = 0; j < i; ++j, ++k) sum += 2.0 * data[k] * T.data[k];
    sum += data[k] * T.data[k];
    ++k;
  }
  return sum;
}

double KXSymMatrix::TraceOfProductOfThree(const KXSymMatrix& T,
                                          const KXSymMatrix& U) const {
  if (T.nRows != nRows || U.nRows != nRows || !HasConsistentData() ||
      !T.HasConsistentData() || !U.HasConsistentData())
    return KXMV::Missing();
  const std::size_t n = static_cast<std::size_t>(nRows);
  // tr(S T U) = sum_i sum_j (S T)_ij u_ji, (S T)_ij a full-row product.
  double sum = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      double st = 0.0;
      for (std::size_t m = 0; m < n; ++m) st += At(data, i, m) * At(T.data, m, j);
      sum += st * At(U.data, j, i);
    }
  }
  return sum;
}

// ------------------------------------------ elementwise edits, diagnostics

bool KXSymMatrix::AdjustOffDiagCorr(double maxCorr) {
  if (!(maxCorr >= 0.0 && maxCorr <= 1.0) || !HasConsistentData())
    return false;
  const std::size_t n = static_cast<std::size_t>(nRows);
  std::vector<double> diagonal;
  GetDiagonal(diagonal);
  for (double d : diagonal) {
    if (IsNegativeOrNaN(d)) return false;
  }
  ForEachBelowDiagonal(n, [&](std::size_t i, std::size_t j, std::size_t k) {
    const double bound = maxCorr * std::sqrt(diagonal[i] * diagonal[j]);
    if (data[k] > bound) data[k] = bound;
    else if (data[k] < -bound) data[k] = -bound;
  });
  return true;
}

bool KXSymMatrix::SetCovarZeros(KXSymMatrix& pattern) {
  if (pattern.nRows != nRows || !HasConsistentData() ||
      !pattern.HasConsistentData())
    return false;
  ForEachBelowDiagonal(static_cast<std::size_t>(nRows),
                       [&](std::size_t, std::size_t, std::size_t k) {
                         if (pattern.data[k] == 0.0) data[k] = 0.0;
                       });
  return true;
}

int KXSymMatrix::ZeroOutAllSmall(double tol) {
  if (IsNegativeOrNaN(tol) || !HasConsistentData()) return -1;
  int zeroed = 0;
  for (double& a : data) {
    if (std::fabs(a) <= tol && a != 0.0) {
      a = 0.0;
      ++zeroed;
    }
  }
  return zeroed;
}

int KXSymMatrix::ZeroOutNonDiag(double tol) {
  if (IsNegativeOrNaN(tol) || !HasConsistentData()) return -1;
  std::vector<double> diagonal;
  GetDiagonal(diagonal);
  int zeroed = 0;
  ForEachBelowDiagonal(static_cast<std::size_t>(nRows),
                       [&](std::size_t i, std::size_t j, std::size_t k) {
                         const double bound =
                             tol * std::sqrt(std::fabs(diagonal[i] * diagonal[j]));
                         if (data[k] != 0.0 && std::fabs(data[k]) <= bound) {
                           data[k] = 0.0;
                           ++zeroed;
                         }
                       });
  return zeroed;
}

int KXSymMatrix::ZeroOutRowsForSmallDiag(double tol) {
  if (IsNegativeOrNaN(tol) || !HasConsistentData()) return -1;
  std::vector<double> diagonal;
  GetDiagonal(diagonal);
  double largest = 0.0;
  for (double d : diagonal) largest = std::max(largest, d);
  if (!(largest > 0.0)) return 0;
  const double threshold = tol * largest;
  int zeroed = 0;
  for (int i = 0; i < nRows; ++i) {
    if (!(diagonal[static_cast<std::size_t>(i)] > threshold)) {
      ZeroOut(i);
      ++zeroed;
    }
  }
  return zeroed;
}

bool KXSymMatrix::MaxMinDiagOffDiag(double& maxDiag, double& minDiag,
                                    double& maxOff, double& minOff) const {
  if (nRows < 1 || !HasConsistentData()) return false;
  double dMax = -DBL_MAX, dMin = DBL_MAX, oMax = -DBL_MAX, oMin = DBL_MAX;
  std::size_t k = 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(nRows); ++i) {
    for (std::size_t j = 0; j < i; ++j, ++k) {
      oMax = std::max(oMax, data[k]);
      oMin = std::min(oMin, data[k]);
    }
    dMax = std::max(dMax, data[k]);
    dMin = std::min(dMin, data[k]);
    ++k;
  }
  maxDiag = dMax;
  minDiag = dMin;
  if (nRows > 1) {
    maxOff = oMax;
    minOff = oMin;
  }
  return true;
}

int KXSymMatrix::GetNCheckDiagonal(std::vector<double>& d, double tol,
                                   double replacement) const {
  GetDiagonal(d);
  int replaced = 0;
  for (double& value : d) {
    if (value < tol) {
      value = replacement;
      ++replaced;
    }
  }
  return replaced;
}

bool KXSymMatrix::IncrVecByRow(int row, std::vector<double>& out, int start,
                               int inc, double c, bool fullRow) const {
  if (!HasConsistentData() || row < 0 || row >= nRows || start < 0 || inc < 1)
    return false;
  const std::size_t count =
      fullRow ? static_cast<std::size_t>(nRows) : static_cast<std::size_t>(row) + 1;
  const std::size_t first = static_cast<std::size_t>(start);
  const std::size_t step = static_cast<std::size_t>(inc);
  if (first + (count - 1) * step >= out.size()) return false;
  const std::size_t i = static_cast<std::size_t>(row);
  for (std::size_t j = 0; j < count; ++j) out[first + j * step] += c * At(data, i, j);
  return true;
}

bool KXSymMatrix::GetPCol(int col, int first, int last,
                          std::vector<double>& out, int outStart) const {
  if (!HasConsistentData() || col < 0 || col >= nRows || first < 0 ||
      last >= nRows || first > last || outStart < 0)
    return false;
  const std::size_t count = static_cast<std::size_t>(last - first) + 1;
  const std::size_t base = static_cast<std::size_t>(outStart);
  if (out.size() < base + count && !TryResize(out, base + count, 0.0)) return false;
  for (std::size_t r = 0; r < count; ++r) {
    out[base + r] = At(data, static_cast<std::size_t>(first) + r,
                       static_cast<std::size_t>(col));
  }
  return true;
}

void KXSymMatrix::ExpandSym(std::vector<double>& full) const {
  if (!HasConsistentData()) {
    full.clear();
    return;
  }
  const std::size_t n = static_cast<std::size_t>(nRows);
  full.resize(n * n);
  KXPacked::ToSquare(data.data(), nRows, full.data());
}

bool KXSymMatrix::ExtractH(int first, int count, KXSymMatrix& out) const {
  if (!HasConsistentData() || first < 0 || count < 0 ||
      static_cast<std::int64_t>(first) + count > nRows)
    return false;
  KXSymMatrix block(count);
  if (!block.IsValidMatrix()) return false;
  std::size_t position = 0;
  for (int r = 0; r < count; ++r) {
    const double* stored = data.data() + PackedIndex(first + r, first);
    for (int c = 0; c <= r; ++c) block.data[position++] = stored[c];
  }
  out = std::move(block);
  return true;
}

bool KXSymMatrix::IsZeroRow(int i, const KXBitSet& cols) const {
  if (!HasConsistentData() || i < 0 || i >= nRows) return false;
  const std::size_t row = static_cast<std::size_t>(i);
  for (int j = 0; j < nRows; ++j) {
    if (cols.IsIn(j) && At(data, row, static_cast<std::size_t>(j)) != 0.0)
      return false;
  }
  return true;
}

bool KXSymMatrix::TransformParameterMatrix(const std::vector<double>& scale) {
  if (!HasConsistentData() || scale.size() < static_cast<std::size_t>(nRows))
    return false;
  std::size_t k = 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(nRows); ++i) {
    for (std::size_t j = 0; j <= i; ++j, ++k) data[k] = scale[i] * data[k] * scale[j];
  }
  return true;
}

bool KXSymMatrix::TransformParameterMatrix(const std::vector<double>& scale,
                                           const KXBitSet& rows) {
  if (!HasConsistentData() || scale.size() < static_cast<std::size_t>(nRows))
    return false;
  std::vector<double> effective(scale.begin(), scale.begin() + nRows);
  for (int i = 0; i < nRows; ++i) {
    if (!rows.IsIn(i)) effective[static_cast<std::size_t>(i)] = 1.0;
  }
  return TransformParameterMatrix(effective);
}

}  // namespace KXCommon
