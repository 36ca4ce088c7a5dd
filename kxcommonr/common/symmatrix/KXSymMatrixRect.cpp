// kxcommonr/common/symmatrix/KXSymMatrixRect.cpp
//
// The KXSymMatrix members that take a KXRectMatrix: the block cross-product
// update and the products with rectangular matrices. They run on the blocked
// kernels of the rectangular matrices (KXDenseKernels), which accumulate
// every output in increasing order of the summation index (results
// independent of the vector unit in use).
#include <cmath>
#include <cstddef>
#include <vector>

#include "kxcommonr/common/packed/KXPackedLayout.h"
#include "kxcommonr/common/foundation/KXAllocation.h"
#include "kxcommonr/common/rectmatrix/KXDenseKernels.h"
#include "kxcommonr/common/rectmatrix/KXRectMatrix.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"

namespace KXCommon {

namespace {
using internal::StridedView;
}  // namespace

bool KXSymMatrix::UpdateXXMat2(const KXRectMatrix& r1, const KXRectMatrix& r2, double w) {
  const int n = nRows;
  const int cases = r1.GetNRows();
  if (n < 0 || r1.GetNCols() != n || r2.GetNCols() != n || r2.GetNRows() != cases || !(w > 0.0) ||
      !HasConsistentData() || !r1.HasConsistentData() || !r2.HasConsistentData())
    return false;
  if (n == 0 || cases == 0) return true;
  // (i, j), j <= i, += sum over cases p of (r2(p, i) * w) * r1(p, j).
  internal::PackedLowerAccumulate(n, cases, StridedView{r2.GetData().data(), 1, n}, w,
                                  StridedView{r1.GetData().data(), n, 1}, data.data());
  return true;
}

bool KXSymMatrix::ComputeRS(const KXRectMatrix& R, KXRectMatrix& out) const {
  const int n = nRows;
  if (n < 0 || R.GetNCols() != n || !HasConsistentData() || !R.HasConsistentData()) return false;
  return GuardAllocation([&] {
    std::vector<double> full;
    ExpandSym(full);
    KXRectMatrix result(R.GetNRows(), n);
    if (result.GetNRows() != R.GetNRows() || result.GetNCols() != n) return false;
    internal::GemmAccumulate(R.GetNRows(), n, n, StridedView{R.GetData().data(), n, 1},
                             StridedView{full.data(), n, 1}, result.AsVector().data(), n);
    out = result;
    return true;
  }, false);
}

bool KXSymMatrix::ComputeRSRTrans(const KXRectMatrix& R, KXSymMatrix& out) const {
  const int n = nRows;
  const int m = R.GetNRows();
  if (n < 0 || R.GetNCols() != n || !HasConsistentData() || !R.HasConsistentData()) return false;
  return GuardAllocation([&] {
    std::vector<double> full;
    ExpandSym(full);
    // T = R S (m x n), then (i, j) = sum_p T(i, p) R(j, p).
    std::vector<double> rs(static_cast<std::size_t>(m) * static_cast<std::size_t>(n), 0.0);
    internal::GemmAccumulate(m, n, n, StridedView{R.GetData().data(), n, 1},
                             StridedView{full.data(), n, 1}, rs.data(), n);
    KXSymMatrix result(m);
    if (result.data.size() != PackedSize(m)) return false;
    internal::PackedLowerAccumulate(m, n, StridedView{rs.data(), n, 1}, 1.0,
                                    StridedView{R.GetData().data(), 1, n}, result.data.data());
    out = result;
    return true;
  }, false);
}

bool KXSymMatrix::ComputeRTransSR(const KXRectMatrix& R, KXSymMatrix& out) const {
  const int n = nRows;
  const int q = R.GetNCols();
  if (n < 0 || R.GetNRows() != n || !HasConsistentData() || !R.HasConsistentData()) return false;
  return GuardAllocation([&] {
    std::vector<double> full;
    ExpandSym(full);
    // T = S R (n x q), then (i, j) = sum_p R(p, i) T(p, j).
    std::vector<double> sr(static_cast<std::size_t>(n) * static_cast<std::size_t>(q), 0.0);
    internal::GemmAccumulate(n, q, n, StridedView{full.data(), n, 1},
                             StridedView{R.GetData().data(), q, 1}, sr.data(), q);
    KXSymMatrix result(q);
    if (result.data.size() != PackedSize(q)) return false;
    internal::PackedLowerAccumulate(q, n, StridedView{R.GetData().data(), 1, q}, 1.0,
                                    StridedView{sr.data(), q, 1}, result.data.data());
    out = result;
    return true;
  }, false);
}

bool KXSymMatrix::ComputeSS(const KXSymMatrix& T, KXRectMatrix& out) const {
  const int n = nRows;
  if (n < 0 || T.nRows != n || !HasConsistentData() || !T.HasConsistentData()) return false;
  return GuardAllocation([&] {
    std::vector<double> left;
    std::vector<double> right;
    ExpandSym(left);
    T.ExpandSym(right);
    KXRectMatrix result(n, n);
    if (result.GetNRows() != n || result.GetNCols() != n) return false;
    internal::GemmAccumulate(n, n, n, StridedView{left.data(), n, 1}, StridedView{right.data(), n, 1},
                             result.AsVector().data(), n);
    out = result;
    return true;
  }, false);
}

bool KXSymMatrix::ComputeRByRTrans(const KXRectMatrix& R) {
  const int m = R.GetNRows();
  const int n = R.GetNCols();
  if (!R.HasConsistentData()) return false;
  return GuardAllocation([&] {
    KXSymMatrix result(m);
    if (result.data.size() != PackedSize(m)) return false;
    // (i, j) = sum_p R(i, p) R(j, p).
    internal::PackedLowerAccumulate(m, n, StridedView{R.GetData().data(), n, 1}, 1.0,
                                    StridedView{R.GetData().data(), 1, n}, result.data.data());
    *this = result;
    return true;
  }, false);
}

bool KXSymMatrix::ComputeRTransByR(const KXRectMatrix& R) {
  const int m = R.GetNRows();
  const int n = R.GetNCols();
  if (!R.HasConsistentData()) return false;
  return GuardAllocation([&] {
    KXSymMatrix result(n);
    if (result.data.size() != PackedSize(n)) return false;
    // (i, j) = sum_p R(p, i) R(p, j).
    internal::PackedLowerAccumulate(n, m, StridedView{R.GetData().data(), 1, n}, 1.0,
                                    StridedView{R.GetData().data(), n, 1}, result.data.data());
    *this = result;
    return true;
  }, false);
}

bool KXSymMatrix::CopyRowToRColumn(int i, KXRectMatrix& out, int col, int startRow) const {
  const int n = nRows;
  if (i < 0 || i >= n || col < 0 || col >= out.GetNCols() || startRow < 0 || !HasConsistentData() ||
      static_cast<long long>(startRow) + n > out.GetNRows())
    return false;
  for (int j = 0; j < n; ++j) out.SetElem(startRow + j, col, data[KXPacked::SymIndex(i, j)]);
  return true;
}

bool KXSymMatrix::ExpandSymToRect(KXRectMatrix& out) const {
  const int n = nRows < 0 ? 0 : nRows;
  if (!HasConsistentData()) return false;
  return GuardAllocation([&] {
    std::vector<double> full;
    ExpandSym(full);
    KXRectMatrix result(n, n);
    if (result.GetNRows() != n || result.GetNCols() != n) return false;
    result.AsVector().swap(full);
    out = result;
    return true;
  }, false);
}

}  // namespace KXCommon
