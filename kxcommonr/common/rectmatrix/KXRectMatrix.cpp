// kxcommonr/common/rectmatrix/KXRectMatrix.cpp
//
// Storage, shape, editing, copies and expansion of KXRectMatrix. Products
// live in KXRectMatrixProducts.cpp, the rank tools in KXRectMatrixRank.cpp.
#include "kxcommonr/common/rectmatrix/KXRectMatrix.h"

#include "kxcommonr/common/foundation/KXAllocation.h"

#include <cmath>
#include <utility>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/display/KXComponentDisplay.h"

namespace KXCommon {

namespace {

// Allocates rows * cols zeros into v; false (v untouched) on failure.
bool AllocateZeros(std::vector<double>& v, int rows, int cols) {
  return GuardAllocation([&] {
    std::vector<double> fresh(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols), 0.0);
    v.swap(fresh);
    return true;
  }, false);
}

}  // namespace

KXRectMatrix::KXRectMatrix() : KXRectMatrixData() {}

KXRectMatrix::KXRectMatrix(int rows, int cols) : KXRectMatrixData(rows, cols) {}

bool KXRectMatrix::SetElem(int i, int j, double v) {
  if (!ValidRow(i) || !ValidCol(j)) return false;
  data[Offset(i, j)] = v;
  return true;
}

void KXRectMatrix::DisplayF() const {
  using namespace KXComponentDisplay;
  DisplayText(1, "KXRectMatrix full matrix display start");
  DisplayI("Number of rows", nRows);
  DisplayI("Number of columns", nCols);
  for (int i = 0; i < nRows; ++i) DisplayRowDA("row ", i, data.data() + Offset(i, 0), nCols);
  DisplayText(1, "KXRectMatrix display end");
}

// ---------------------------------------------------------------------------
// Shape
// ---------------------------------------------------------------------------

int KXRectMatrix::AddRow() {
  if (!Resize(nRows + 1, nCols)) return -1;
  return nRows;
}

int KXRectMatrix::AddColumn() {
  if (!Resize(nRows, nCols + 1)) return -1;
  return nCols;
}

bool KXRectMatrix::Resize(int rows, int cols) {
  if (rows < 0 || cols < 0 || !HasConsistentData()) return false;
  if (cols == nCols) {
    // Row-major: the leading rows are already in place.
    if (!GuardAllocation([&] {
      data.resize(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols), 0.0);
      return true;
    }, false)) {
      return false;
    }
    nRows = rows;
    return true;
  }
  std::vector<double> fresh;
  if (!AllocateZeros(fresh, rows, cols)) return false;
  const int keepRows = rows < nRows ? rows : nRows;
  const int keepCols = cols < nCols ? cols : nCols;
  for (int i = 0; i < keepRows; ++i) {
    const double* src = data.data() + Offset(i, 0);
    double* dst = fresh.data() + static_cast<std::size_t>(i) * static_cast<std::size_t>(cols);
    for (int j = 0; j < keepCols; ++j) dst[j] = src[j];
  }
  data.swap(fresh);
  nRows = rows;
  nCols = cols;
  return true;
}

bool KXRectMatrix::SetNRowsCols(int rows, int cols) {
  if (rows < 0 || cols < 0) return false;
  if (!AllocateZeros(data, rows, cols)) return false;
  nRows = rows;
  nCols = cols;
  return true;
}

void KXRectMatrix::Clear() {
  for (double& x : data) x = 0.0;
}

bool KXRectMatrix::Transpose() {
  if (!HasConsistentData()) return false;
  if (nRows <= 1 || nCols <= 1) {
    // A vector's elements keep their order; only the shape changes.
    const int rows = nRows;
    nRows = nCols;
    nCols = rows;
    return true;
  }
  std::vector<double> fresh;
  if (!AllocateZeros(fresh, nCols, nRows)) return false;
  for (int i = 0; i < nRows; ++i) {
    const double* src = data.data() + Offset(i, 0);
    for (int j = 0; j < nCols; ++j)
      fresh[static_cast<std::size_t>(j) * static_cast<std::size_t>(nRows) + static_cast<std::size_t>(i)] = src[j];
  }
  data.swap(fresh);
  const int rows = nRows;
  nRows = nCols;
  nCols = rows;
  return true;
}

// ---------------------------------------------------------------------------
// Column and row edits
// ---------------------------------------------------------------------------

bool KXRectMatrix::AddToColumn(int col, const KXRectMatrix& src, int srcCol, double a) {
  if (!ValidCol(col) || !src.ValidCol(srcCol) || src.nRows != nRows) return false;
  for (int i = 0; i < nRows; ++i) data[Offset(i, col)] += a * src.data[src.Offset(i, srcCol)];
  return true;
}

bool KXRectMatrix::ColScale(int col, double c) {
  if (!ValidCol(col)) return false;
  for (int i = 0; i < nRows; ++i) data[Offset(i, col)] *= c;
  return true;
}

double KXRectMatrix::ColNorm(int col) const {
  if (!ValidCol(col)) return KXMV::Missing();
  double sum = 0.0;
  for (int i = 0; i < nRows; ++i) {
    const double x = data[Offset(i, col)];
    sum += x * x;
  }
  return std::sqrt(sum);
}

double KXRectMatrix::RowNorm(int row) const {
  if (!ValidRow(row)) return KXMV::Missing();
  const double* r = data.data() + Offset(row, 0);
  double sum = 0.0;
  for (int j = 0; j < nCols; ++j) sum += r[j] * r[j];
  return std::sqrt(sum);
}

bool KXRectMatrix::ColClean(int col, double tol) {
  if (!ValidCol(col) || !(tol >= 0.0)) return false;
  double largest = 0.0;
  for (int i = 0; i < nRows; ++i) largest = std::fmax(largest, std::fabs(data[Offset(i, col)]));
  const double threshold = tol * largest;
  for (int i = 0; i < nRows; ++i) {
    double& x = data[Offset(i, col)];
    if (std::fabs(x) <= threshold) x = 0.0;
  }
  return true;
}

int KXRectMatrix::CheckForOnes(double tol) {
  if (!(tol >= 0.0)) return -1;
  int changed = 0;
  for (double& x : data) {
    if (x != 1.0 && std::fabs(x - 1.0) <= tol) {
      x = 1.0;
      ++changed;
    } else if (x != -1.0 && std::fabs(x + 1.0) <= tol) {
      x = -1.0;
      ++changed;
    }
  }
  return changed;
}

bool KXRectMatrix::ZeroOutCol(int col) {
  if (!ValidCol(col)) return false;
  for (int i = 0; i < nRows; ++i) data[Offset(i, col)] = 0.0;
  return true;
}

bool KXRectMatrix::ZeroOutPivotRow(int row, double tol, int& pivotCol) {
  if (!ValidRow(row) || !(tol >= 0.0)) return false;
  double largestInMatrix = 0.0;
  for (double x : data) largestInMatrix = std::fmax(largestInMatrix, std::fabs(x));
  double* pivotRow = data.data() + Offset(row, 0);
  int pivotIndex = -1;
  double pivotMagnitude = 0.0;
  for (int j = 0; j < nCols; ++j) {
    if (std::fabs(pivotRow[j]) > pivotMagnitude) {
      pivotMagnitude = std::fabs(pivotRow[j]);
      pivotIndex = j;
    }
  }
  if (pivotIndex < 0 || !(pivotMagnitude > tol * largestInMatrix)) return false;
  const double pivot = pivotRow[pivotIndex];
  for (int j = 0; j < nCols; ++j) pivotRow[j] /= pivot;
  pivotRow[pivotIndex] = 1.0;
  for (int i = 0; i < nRows; ++i) {
    if (i == row) continue;
    double* r = data.data() + Offset(i, 0);
    const double factor = r[pivotIndex];
    if (factor == 0.0) continue;
    for (int j = 0; j < nCols; ++j) r[j] -= factor * pivotRow[j];
    r[pivotIndex] = 0.0;
  }
  pivotCol = pivotIndex;
  return true;
}

bool KXRectMatrix::ZeroOutRowPart(int row, int firstCol, int lastCol) {
  if (!ValidRow(row) || firstCol < 0 || firstCol > lastCol || lastCol >= nCols) return false;
  double* r = data.data() + Offset(row, 0);
  for (int j = firstCol; j <= lastCol; ++j) r[j] = 0.0;
  return true;
}

bool KXRectMatrix::IsColZero(int col) const {
  if (!ValidCol(col)) return false;
  for (int i = 0; i < nRows; ++i)
    if (data[Offset(i, col)] != 0.0) return false;
  return true;
}

bool KXRectMatrix::IsRowZero(int row) const {
  if (!ValidRow(row)) return false;
  const double* r = data.data() + Offset(row, 0);
  for (int j = 0; j < nCols; ++j)
    if (r[j] != 0.0) return false;
  return true;
}

bool KXRectMatrix::IsRowZeroButOne(int row, const KXBitSet& cols, int& col) const {
  if (!ValidRow(row)) return false;
  const double* r = data.data() + Offset(row, 0);
  int found = -1;
  for (int j = 0; j < nCols; ++j) {
    if (!cols.IsIn(j) || r[j] == 0.0) continue;
    if (found >= 0) {
      col = -1;
      return false;
    }
    found = j;
  }
  col = found;
  return found >= 0;
}

int KXRectMatrix::FindFirstNonZeroInRow(int row, double tol) const {
  if (!ValidRow(row) || !(tol >= 0.0)) return -1;
  const double* r = data.data() + Offset(row, 0);
  double largest = 0.0;
  for (int j = 0; j < nCols; ++j) largest = std::fmax(largest, std::fabs(r[j]));
  const double threshold = tol * largest;
  for (int j = 0; j < nCols; ++j)
    if (r[j] != 0.0 && std::fabs(r[j]) > threshold) return j;
  return -1;
}

// ---------------------------------------------------------------------------
// Copies, extraction and expansion
// ---------------------------------------------------------------------------

bool KXRectMatrix::CopyColToCol(int srcCol, KXRectMatrix& dst, int dstCol) const {
  if (!ValidCol(srcCol) || !dst.ValidCol(dstCol) || dst.nRows != nRows) return false;
  for (int i = 0; i < nRows; ++i) dst.data[dst.Offset(i, dstCol)] = data[Offset(i, srcCol)];
  return true;
}

bool KXRectMatrix::CopyColToRow(int srcCol, KXRectMatrix& dst, int dstRow) const {
  if (!ValidCol(srcCol) || !dst.ValidRow(dstRow) || dst.nCols != nRows) return false;
  if (&dst == this) {
    // Row and column overlap in one element: read the column first.
    std::vector<double> column;
    GetCol(srcCol, column);
    for (int i = 0; i < nRows; ++i) dst.data[dst.Offset(dstRow, i)] = column[static_cast<std::size_t>(i)];
    return true;
  }
  for (int i = 0; i < nRows; ++i) dst.data[dst.Offset(dstRow, i)] = data[Offset(i, srcCol)];
  return true;
}

bool KXRectMatrix::CopyColToVec(int col, std::vector<double>& v, int start) const {
  if (!ValidCol(col) || start < 0) return false;
  const std::size_t end = static_cast<std::size_t>(start) + static_cast<std::size_t>(nRows);
  if (v.size() < end && !TryResize(v, end, 0.0)) return false;
  for (int i = 0; i < nRows; ++i) v[static_cast<std::size_t>(start) + static_cast<std::size_t>(i)] = data[Offset(i, col)];
  return true;
}

bool KXRectMatrix::CopyColumns(const KXRectMatrix& src, int srcFirst, int count, int dstFirst) {
  if (count < 0 || srcFirst < 0 || dstFirst < 0 || src.nRows != nRows || !HasConsistentData() ||
      !src.HasConsistentData())
    return false;
  if (static_cast<long long>(srcFirst) + count > src.nCols ||
      static_cast<long long>(dstFirst) + count > nCols)
    return false;
  if (&src == this) {
    const KXRectMatrix copy(src);
    return CopyColumns(copy, srcFirst, count, dstFirst);
  }
  for (int i = 0; i < nRows; ++i) {
    const double* s = src.data.data() + src.Offset(i, srcFirst);
    double* d = data.data() + Offset(i, dstFirst);
    for (int j = 0; j < count; ++j) d[j] = s[j];
  }
  return true;
}

bool KXRectMatrix::CopyRows(const KXRectMatrix& src, int srcFirst, int count, int dstFirst) {
  if (count < 0 || srcFirst < 0 || dstFirst < 0 || src.nCols != nCols || !HasConsistentData() ||
      !src.HasConsistentData())
    return false;
  if (static_cast<long long>(srcFirst) + count > src.nRows ||
      static_cast<long long>(dstFirst) + count > nRows)
    return false;
  if (&src == this) {
    const KXRectMatrix copy(src);
    return CopyRows(copy, srcFirst, count, dstFirst);
  }
  const std::size_t n = static_cast<std::size_t>(count) * static_cast<std::size_t>(nCols);
  const double* s = src.data.data() + src.Offset(srcFirst, 0);
  double* d = data.data() + Offset(dstFirst, 0);
  for (std::size_t k = 0; k < n; ++k) d[k] = s[k];
  return true;
}

bool KXRectMatrix::CopyRowToRow(int srcRow, KXRectMatrix& dst, int dstRow) const {
  if (!ValidRow(srcRow) || !dst.ValidRow(dstRow) || dst.nCols != nCols) return false;
  const double* s = data.data() + Offset(srcRow, 0);
  double* d = dst.data.data() + dst.Offset(dstRow, 0);
  if (s != d)
    for (int j = 0; j < nCols; ++j) d[j] = s[j];
  return true;
}

int KXRectMatrix::ExtractColumns(const std::vector<int>& idx, KXRectMatrix& out) const {
  for (int j : idx)
    if (!ValidCol(j)) return -1;
  const int count = static_cast<int>(idx.size());
  KXRectMatrix result;
  if (!result.SetNRowsCols(nRows, count)) return -1;
  for (int i = 0; i < nRows; ++i) {
    const double* s = data.data() + Offset(i, 0);
    double* d = result.data.data() + result.Offset(i, 0);
    for (int k = 0; k < count; ++k) d[k] = s[idx[static_cast<std::size_t>(k)]];
  }
  out = std::move(result);
  return count;
}

int KXRectMatrix::ExtractRows(const std::vector<int>& idx, KXRectMatrix& out) const {
  for (int i : idx)
    if (!ValidRow(i)) return -1;
  const int count = static_cast<int>(idx.size());
  KXRectMatrix result;
  if (!result.SetNRowsCols(count, nCols)) return -1;
  for (int k = 0; k < count; ++k) {
    const double* s = data.data() + Offset(idx[static_cast<std::size_t>(k)], 0);
    double* d = result.data.data() + result.Offset(k, 0);
    for (int j = 0; j < nCols; ++j) d[j] = s[j];
  }
  out = std::move(result);
  return count;
}

void KXRectMatrix::Expand(const KXBitSet& keep, bool byRows, KXRectMatrix& out) const {
  const int size = keep.Size();
  if (!HasConsistentData()) return;
  KXRectMatrix result;
  if (byRows) {
    if (!result.SetNRowsCols(size, nCols)) return;
    int next = 0;
    for (int p = 0; p < size && next < nRows; ++p) {
      if (!keep.IsIn(p)) continue;
      CopyRowToRow(next++, result, p);
    }
  } else {
    if (!result.SetNRowsCols(nRows, size)) return;
    int next = 0;
    for (int p = 0; p < size && next < nCols; ++p) {
      if (!keep.IsIn(p)) continue;
      CopyColToCol(next++, result, p);
    }
  }
  out = std::move(result);
}

bool KXRectMatrix::ExpandSquare(const KXBitSet& keep, KXRectMatrix& out) const {
  if (nRows != nCols || keep.InSet() < nRows || !HasConsistentData()) return false;
  std::vector<int> position;
  position.reserve(static_cast<std::size_t>(nRows));
  for (int p = 0; p < keep.Size() && static_cast<int>(position.size()) < nRows; ++p)
    if (keep.IsIn(p)) position.push_back(p);
  KXRectMatrix result;
  if (!result.SetNRowsCols(keep.Size(), keep.Size())) return false;
  for (int i = 0; i < nRows; ++i)
    for (int j = 0; j < nCols; ++j)
      result.data[result.Offset(position[static_cast<std::size_t>(i)], position[static_cast<std::size_t>(j)])] =
          data[Offset(i, j)];
  out = std::move(result);
  return true;
}

bool KXRectMatrix::CreateBlockDiagonal(int nBlocks, KXRectMatrix& out) const {
  if (nBlocks < 1 || !HasConsistentData()) return false;
  const long long rows = static_cast<long long>(nRows) * nBlocks;
  const long long cols = static_cast<long long>(nCols) * nBlocks;
  if (rows > 2147483647LL || cols > 2147483647LL) return false;
  KXRectMatrix result;
  if (!result.SetNRowsCols(static_cast<int>(rows), static_cast<int>(cols))) return false;
  for (int b = 0; b < nBlocks; ++b)
    for (int i = 0; i < nRows; ++i) {
      const double* s = data.data() + Offset(i, 0);
      double* d = result.data.data() + result.Offset(b * nRows + i, b * nCols);
      for (int j = 0; j < nCols; ++j) d[j] = s[j];
    }
  out = std::move(result);
  return true;
}

bool KXRectMatrix::ShiftColumns(int k, KXRectMatrix& out) {
  if (k < 0 || static_cast<long long>(nCols) + k > 2147483647LL || !HasConsistentData()) return false;
  KXRectMatrix result;
  if (!result.SetNRowsCols(nRows, nCols + k)) return false;
  for (int i = 0; i < nRows; ++i) {
    const double* s = data.data() + Offset(i, 0);
    double* d = result.data.data() + result.Offset(i, k);
    for (int j = 0; j < nCols; ++j) d[j] = s[j];
  }
  out = std::move(result);
  return true;
}

bool KXRectMatrix::ShiftRows(int k, KXRectMatrix& out) {
  if (k < 0 || static_cast<long long>(nRows) + k > 2147483647LL || !HasConsistentData()) return false;
  KXRectMatrix result;
  if (!result.SetNRowsCols(nRows + k, nCols)) return false;
  const std::size_t n = data.size();
  double* d = result.data.data() + result.Offset(k, 0);
  for (std::size_t q = 0; q < n; ++q) d[q] = data[q];
  out = std::move(result);
  return true;
}

bool KXRectMatrix::IncrVecByColumn(int col, std::vector<double>& out, int start, int inc,
                                   double c, bool reset) const {
  if (!ValidCol(col) || start < 0 || inc < 1) return false;
  if (nRows > 0) {
    const std::size_t last = static_cast<std::size_t>(start) +
                             static_cast<std::size_t>(nRows - 1) * static_cast<std::size_t>(inc);
    if (last >= out.size()) return false;
  }
  std::size_t q = static_cast<std::size_t>(start);
  for (int i = 0; i < nRows; ++i, q += static_cast<std::size_t>(inc)) {
    const double term = c * data[Offset(i, col)];
    out[q] = reset ? term : out[q] + term;
  }
  return true;
}

}  // namespace KXCommon
