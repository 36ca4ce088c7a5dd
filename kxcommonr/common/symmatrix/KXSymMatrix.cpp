// kxcommonr/common/symmatrix/KXSymMatrix.cpp
//
// KXSymMatrix storage family: shape changes, element and row writes,
// whole-matrix edits, extraction and the full-form display. The factorising
// family lives in KXSymMatrixFactor.cpp, the updates and products in
// KXSymMatrixProducts.cpp, the rectangular products in KXSymMatrixRect.cpp.
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"

#include <algorithm>
#include <cfloat>
#include <cstdint>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/display/KXComponentDisplay.h"

namespace KXCommon {

KXSymMatrix::KXSymMatrix() : KXSymMatrixData() {}

KXSymMatrix::KXSymMatrix(int n) : KXSymMatrixData(n) {}

KXSymMatrix::KXSymMatrix(int nBlocksIn, int blockSizeIn)
    : KXSymMatrixData(nBlocksIn, blockSizeIn) {}

void KXSymMatrix::SetData(const KXSymMatrixData& src) {
  KXSymMatrixData::operator=(src);
}

bool KXSymMatrix::Resize(int n) {
  int order = n < 0 ? 0 : n;
  if (!ResizeNRows(data, order)) return false;
  nRows = order;
  nBlocks = 1;
  blockSize = order;
  return true;
}

bool KXSymMatrix::SetNRows(int n) {
  if (!Resize(n)) return false;
  std::fill(data.begin(), data.end(), 0.0);
  return true;
}

bool KXSymMatrix::SetNBlocks(int nBlocksIn) {
  if (nBlocksIn < 1 || nRows < 1 || nRows % nBlocksIn != 0) return false;
  nBlocks = nBlocksIn;
  blockSize = nRows / nBlocksIn;
  return true;
}

void KXSymMatrix::Clear() { std::fill(data.begin(), data.end(), 0.0); }

bool KXSymMatrix::SetElem(int i, int j, double v) {
  if (i < 0 || j < 0 || i >= nRows || j >= nRows) return false;
  const std::size_t k = i >= j ? PackedIndex(i, j) : PackedIndex(j, i);
  if (k >= data.size()) return false;
  data[k] = v;
  return true;
}

bool KXSymMatrix::SetElem(int k, double v) {
  if (k < 0 || nRows < 1) return false;
  const std::size_t position = static_cast<std::size_t>(k);
  if (position >= PackedSize(nRows) || position >= data.size()) return false;
  data[position] = v;
  return true;
}

bool KXSymMatrix::PutRow(int i, const std::vector<double>& r) {
  if (i < 0 || i >= nRows || !HasConsistentData()) return false;
  const std::size_t n = static_cast<std::size_t>(nRows);
  if (r.size() < n) return false;
  const std::size_t row = static_cast<std::size_t>(i);
  double* stored = data.data() + PackedIndex(i, 0);
  for (std::size_t j = 0; j <= row; ++j) stored[j] = r[j];
  std::size_t k = PackedIndex(i, i) + row + 1;  // (i+1, i)
  for (std::size_t j = row + 1; j < n; ++j) {
    data[k] = r[j];
    k += j + 1;
  }
  return true;
}

bool KXSymMatrix::SetRowColToConst(int i, double c) {
  if (i < 0 || i >= nRows || !HasConsistentData()) return false;
  const std::size_t n = static_cast<std::size_t>(nRows);
  const std::size_t row = static_cast<std::size_t>(i);
  double* stored = data.data() + PackedIndex(i, 0);
  for (std::size_t j = 0; j <= row; ++j) stored[j] = c;
  std::size_t k = PackedIndex(i, i) + row + 1;
  for (std::size_t j = row + 1; j < n; ++j) {
    data[k] = c;
    k += j + 1;
  }
  return true;
}

bool KXSymMatrix::ZeroOut(int i) { return SetRowColToConst(i, 0.0); }

bool KXSymMatrix::SetToVV(const std::vector<double>& v) {
  if (v.size() > static_cast<std::size_t>(INT32_MAX)) return false;
  int order = static_cast<int>(v.size());
  std::vector<double> product;
  if (!ResizeNRows(product, order)) return false;
  std::size_t k = 0;
  for (std::size_t i = 0; i < v.size(); ++i) {
    for (std::size_t j = 0; j <= i; ++j) product[k++] = v[i] * v[j];
  }
  data.swap(product);
  nRows = order;
  nBlocks = 1;
  blockSize = order;
  return true;
}

void KXSymMatrix::ExtractFirstNRows(KXSymMatrix& out) const {
  if (nRows <= 1 || !HasConsistentData()) return;
  const int order = nRows - 1;
  if (&out == this) {
    KXSymMatrix copy(*this);
    copy.ExtractFirstNRows(out);
    return;
  }
  if (out.nRows != order || !out.HasConsistentData()) {
    if (!out.Resize(order)) return;
  }
  std::copy(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(PackedSize(order)),
            out.data.begin());
}

bool KXSymMatrix::ReplaceFirstRows(const KXSymMatrix& src, int k) {
  if (k < 1 || k > src.nRows || k > nRows || !HasConsistentData() ||
      !src.HasConsistentData())
    return false;
  if (&src == this) return true;
  const std::size_t count = PackedSize(k);
  std::copy(src.data.begin(), src.data.begin() + static_cast<std::ptrdiff_t>(count),
            data.begin());
  return true;
}

void KXSymMatrix::Expand(const KXBitSet& keep, KXSymMatrix& out) const {
  // Positions that receive this matrix's rows, in order, until they run out.
  std::vector<int> target;
  const int size = keep.Size();
  for (int p = 0; p < size && static_cast<int>(target.size()) < nRows; ++p) {
    if (keep.IsIn(p)) target.push_back(p);
  }
  KXSymMatrix expanded(size);
  if (!expanded.IsValidMatrix()) return;
  if (HasConsistentData()) {
    for (std::size_t r = 0; r < target.size(); ++r) {
      const double* stored = data.data() + PackedIndex(static_cast<int>(r), 0);
      for (std::size_t c = 0; c <= r; ++c) {
        expanded.data[PackedIndex(target[r], target[c])] = stored[c];
      }
    }
  }
  out = std::move(expanded);
}

bool KXSymMatrix::ExtractSubmatrix(const std::vector<int>& idx,
                                   KXSymMatrix& out) const {
  if (!HasConsistentData() || idx.size() > static_cast<std::size_t>(nRows))
    return false;
  for (std::size_t k = 0; k < idx.size(); ++k) {
    if (idx[k] < 0 || idx[k] >= nRows) return false;
    if (k > 0 && idx[k] <= idx[k - 1]) return false;
  }
  KXSymMatrix sub(static_cast<int>(idx.size()));
  if (!sub.IsValidMatrix()) return false;
  std::size_t position = 0;
  for (std::size_t r = 0; r < idx.size(); ++r) {
    const double* stored = data.data() + PackedIndex(idx[r], 0);
    for (std::size_t c = 0; c <= r; ++c) sub.data[position++] = stored[idx[c]];
  }
  out = std::move(sub);
  return true;
}

void KXSymMatrix::AddToDiagonal(double c) {
  if (!HasConsistentData()) return;
  std::size_t diagonal = 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(nRows); ++i) {
    data[diagonal] += c;
    diagonal += i + 2;
  }
}

void KXSymMatrix::ChangeSign() {
  for (double& a : data) a = -a;
}

void KXSymMatrix::MultiplyByNumber(double c) {
  for (double& a : data) a *= c;
}

bool KXSymMatrix::ComputeAXpY(double a, const KXSymMatrix& x) {
  if (nRows != x.nRows || !HasConsistentData() || !x.HasConsistentData())
    return false;
  if (a == 0.0) return true;  // as the classic daxpy: nothing to add
  const std::size_t count = data.size();
  double* y = data.data();
  const double* xs = x.data.data();
  for (std::size_t k = 0; k < count; ++k) y[k] += a * xs[k];
  return true;
}

void KXSymMatrix::MaxMinDiag(double& max, double& min) const {
  if (nRows < 1 || !HasConsistentData()) return;
  max = -DBL_MAX;
  min = DBL_MAX;
  std::size_t diagonal = 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(nRows); ++i) {
    const double d = data[diagonal];
    if (d > max) max = d;
    if (d < min) min = d;
    diagonal += i + 2;
  }
}

void KXSymMatrix::DisplayF() const {
  using namespace KXComponentDisplay;
  DisplayText(1, "KXSymMatrix full matrix display start");
  DisplayI("Number of rows", nRows);
  std::vector<double> row;
  for (int i = 0; i < nRows; ++i) {
    if (!GetRow(i, row)) break;
    DisplayRowDA("row ", i, row.data(), nRows);
  }
  DisplayText(1, "KXSymMatrix display end");
}

}  // namespace KXCommon
