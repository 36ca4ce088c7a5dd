// kxcommonr/common/rectmatrix/KXRectMatrixData.h
//
// KXRectMatrixData: the storage of a dense rectangular matrix of doubles,
// row-major. Element (i, j) lies at i * nCols + j, so a row is contiguous and
// a column is the strided sequence data + j, data + j + nCols, ... (which is
// how columns are handed to the vector kernels). Sizes and offsets are
// computed in 64 bits.
//
// KXRectMatrix (KXRectMatrix.h) adds editing, products and the rank tools,
// and no fields.
//
// Thread rule: a plain value without locking. Concurrent readers are safe;
// a writer needs exclusive access.
//
// Failures: getters return the missing value (KXMV::Missing()) or a null
// pointer for indices out of range; nothing throws.
#ifndef KXCOMMONR_COMMON_RECTMATRIX_KXRECTMATRIXDATA_H
#define KXCOMMONR_COMMON_RECTMATRIX_KXRECTMATRIXDATA_H

#include <cstddef>
#include <vector>

#include "kxcommonr/config.h"

namespace KXCommon {

class KXCOMMONR_API KXRectMatrixData {
 public:
  // Empty: 0 x 0.
  KXRectMatrixData();
  // nRows x nCols, all elements 0. A negative count is raised to 0; when the
  // elements cannot be allocated the matrix is 0 x 0.
  KXRectMatrixData(int nRows, int nCols);
  KXRectMatrixData(const KXRectMatrixData& other) = default;
  KXRectMatrixData& operator=(const KXRectMatrixData& other) = default;
  ~KXRectMatrixData() = default;

  int GetNRows() const { return nRows; }
  int GetNCols() const { return nCols; }
  // The row-major elements, read only.
  const std::vector<double>& GetData() const { return data; }

  // True when the element vector holds nRows * nCols elements, as it must
  // (AsVector callers must keep it so). Operations refuse an inconsistent
  // matrix rather than read past its elements.
  bool HasConsistentData() const {
    return nRows >= 0 && nCols >= 0 &&
           data.size() == static_cast<std::size_t>(nRows) * static_cast<std::size_t>(nCols);
  }

  // Element (i, j); the missing value when i lies outside 0..nRows-1 or j
  // outside 0..nCols-1.
  double GetElem(int i, int j) const;
  // Start of row i (nCols contiguous elements); null when i is out of range.
  const double* GetRowPtr(int i) const;
  // Start of column j (nRows elements at stride nCols); null when j is out
  // of range.
  const double* GetColPtr(int j) const;
  // Copies row i (nCols elements) into r, resized to fit. False (r
  // unchanged) when i is out of range.
  bool GetRow(int i, std::vector<double>& r) const;
  // Copies column j (nRows elements) into c, resized to fit. False (c
  // unchanged) when j is out of range.
  bool GetCol(int j, std::vector<double>& c) const;

  // Prints, through KXComponentDisplay: "KXRectMatrixData display start",
  // "The number of rows", "The number of columns", the elements under
  // "Row-major data", "KXRectMatrixData display end".
  void Display() const;

 protected:
  // Offset of element (i, j), in 64 bits.
  std::size_t Offset(int i, int j) const {
    return static_cast<std::size_t>(i) * static_cast<std::size_t>(nCols) +
           static_cast<std::size_t>(j);
  }
  // Index checks; both also refuse an inconsistent matrix.
  bool ValidRow(int i) const { return i >= 0 && i < nRows && HasConsistentData(); }
  bool ValidCol(int j) const { return j >= 0 && j < nCols && HasConsistentData(); }

  int nRows;
  int nCols;
  std::vector<double> data;
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_RECTMATRIX_KXRECTMATRIXDATA_H
