// kxcommonr/common/symmatrix/KXSymMatrixData.cpp
//
// Packed symmetric storage: construction, element and row reads, display.
#include "kxcommonr/common/symmatrix/KXSymMatrixData.h"

#include <cstdint>

#include "kxcommonr/common/foundation/KXAllocation.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/display/KXComponentDisplay.h"

namespace KXCommon {

KXSymMatrixData::KXSymMatrixData() : nRows(0), nBlocks(0), blockSize(0) {}

KXSymMatrixData::KXSymMatrixData(int n) : nRows(0), nBlocks(1), blockSize(0) {
  int order = n < 0 ? 0 : n;
  if (!ResizeNRows(data, order)) {
    nRows = -1;  // allocation failed: an invalid matrix
    nBlocks = 0;
    return;
  }
  nRows = order;
  blockSize = order;
}

KXSymMatrixData::KXSymMatrixData(int nBlocksIn, int blockSizeIn)
    : nRows(0), nBlocks(0), blockSize(0) {
  if (nBlocksIn < 1 || blockSizeIn < 1) return;
  const std::int64_t order =
      static_cast<std::int64_t>(nBlocksIn) * static_cast<std::int64_t>(blockSizeIn);
  int n = order > INT32_MAX ? -1 : static_cast<int>(order);
  if (n < 0 || !ResizeNRows(data, n)) {
    nRows = -1;  // order not representable or allocation failed
    return;
  }
  nRows = n;
  nBlocks = nBlocksIn;
  blockSize = blockSizeIn;
}

bool KXSymMatrixData::ResizeNRows(std::vector<double>& packed, int& n) {
  if (n < 0) n = 0;
  const std::size_t wanted = PackedSize(n);
  return GuardAllocation([&] {
    packed.resize(wanted);
    return packed.size() == wanted;
  }, false);
}

double KXSymMatrixData::GetElem(int i, int j) const {
  if (i < 0 || j < 0 || i >= nRows || j >= nRows) return KXMV::Missing();
  const std::size_t k = i >= j ? PackedIndex(i, j) : PackedIndex(j, i);
  return k < data.size() ? data[k] : KXMV::Missing();
}

double KXSymMatrixData::GetElem(int bi, int bj, int i, int j) const {
  const std::int64_t row = static_cast<std::int64_t>(bi) * blockSize + i;
  const std::int64_t col = static_cast<std::int64_t>(bj) * blockSize + j;
  if (row < 0 || col < 0 || row >= nRows || col >= nRows) return KXMV::Missing();
  return GetElem(static_cast<int>(row), static_cast<int>(col));
}

void KXSymMatrixData::GetDiagonal(std::vector<double>& d) const {
  const std::size_t n = nRows > 0 ? static_cast<std::size_t>(nRows) : 0;
  if (d.size() != n) d.resize(n);
  std::size_t diagonal = 0;  // position of (i, i); advances by i + 2
  for (std::size_t i = 0; i < n; ++i) {
    d[i] = diagonal < data.size() ? data[diagonal] : KXMV::Missing();
    diagonal += i + 2;
  }
}

bool KXSymMatrixData::GetRow(int i, std::vector<double>& r) const {
  if (i < 0 || i >= nRows || !HasConsistentData()) return false;
  const std::size_t n = static_cast<std::size_t>(nRows);
  if (r.size() != n) r.resize(n);
  const std::size_t row = static_cast<std::size_t>(i);
  const double* stored = data.data() + PackedIndex(i, 0);
  for (std::size_t j = 0; j <= row; ++j) r[j] = stored[j];
  // Below the diagonal: walk down column i, advancing by the row length.
  std::size_t k = PackedIndex(i, i) + row + 1;
  for (std::size_t j = row + 1; j < n; ++j) {
    r[j] = data[k];
    k += j + 1;
  }
  return true;
}

void KXSymMatrixData::Display() const {
  using namespace KXComponentDisplay;
  DisplayText(1, "KXSymMatrixData display start");
  DisplayI("The number of rows", nRows);
  DisplayI("The number of blocks", nBlocks);
  DisplayI("The block size", blockSize);
  DisplayDV("Lower triangular", data, false);
  DisplayText(1, "KXSymMatrixData display end");
}

}  // namespace KXCommon
