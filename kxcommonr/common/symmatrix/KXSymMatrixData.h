// kxcommonr/common/symmatrix/KXSymMatrixData.h
//
// KXSymMatrixData: the storage of a real symmetric matrix in packed
// lower-triangular form (the layout of KXPackedLayout.h). Element (i, j) with
// j <= i (0-based) lies at packed position i*(i+1)/2 + j; an access to (i, j)
// with i < j is served from (j, i). Row i of the triangle is contiguous and
// ends with the diagonal, which lies at i*(i+3)/2. Offsets are computed in 64
// bits, so orders beyond 65535 address correctly.
//
// The rows may also be divided into nBlocks equal blocks of blockSize rows
// (always nRows == nBlocks * blockSize); element (bi, bj, i, j) of a blocked
// matrix is global element (bi*blockSize + i, bj*blockSize + j). Blocking is
// only a second way of indexing; it never changes the storage.
//
// KXSymMatrix (KXSymMatrix.h) adds the numerical operations and no fields.
//
// Thread rule: a plain value without locking. Concurrent readers are safe;
// a writer needs exclusive access.
//
// Failures: getters return the missing value (KXMV::Missing()) for indices
// out of range; nothing throws.
#ifndef KXCOMMONR_COMMON_SYMMATRIX_KXSYMMATRIXDATA_H
#define KXCOMMONR_COMMON_SYMMATRIX_KXSYMMATRIXDATA_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kxcommonr/common/packed/KXPackedLayout.h"
#include "kxcommonr/config.h"

namespace KXCommon {

class KXCOMMONR_API KXSymMatrixData {
 public:
  // Empty: order 0, 0 blocks of size 0, no data.
  KXSymMatrixData();
  // Order max(n, 0), one block of n rows, all elements 0.
  explicit KXSymMatrixData(int n);
  // nBlocks blocks of blockSize rows, all elements 0. When either count is
  // below 1 both become 0 and the matrix is empty.
  KXSymMatrixData(int nBlocks, int blockSize);
  KXSymMatrixData(const KXSymMatrixData& other) = default;
  KXSymMatrixData& operator=(const KXSymMatrixData& other) = default;
  ~KXSymMatrixData() = default;

  // True when nRows >= 0 (a negative order marks an invalid matrix).
  bool IsValidMatrix() const { return nRows >= 0; }

  int GetNRows() const { return nRows; }
  int GetNBlocks() const { return nBlocks; }
  int GetBlockSize() const { return blockSize; }
  // The packed lower triangle, read only.
  const std::vector<double>& GetData() const { return data; }

  // Element (i, j), either order of i and j. Returns the missing value when
  // i or j lies outside 0..n-1.
  double GetElem(int i, int j) const;
  // Element (bi*blockSize + i, bj*blockSize + j). Returns the missing value
  // when either global index lies outside 0..n-1.
  double GetElem(int bi, int bj, int i, int j) const;
  // d is resized to n when its size differs, then receives the diagonal.
  void GetDiagonal(std::vector<double>& d) const;
  // Row i in full (elements (i, 0) .. (i, n-1), read across the symmetry)
  // into r, resized to n when its size differs. Returns false (r unchanged)
  // when i lies outside 0..n-1.
  bool GetRow(int i, std::vector<double>& r) const;

  // Prints, through KXComponentDisplay: "KXSymMatrixData display start",
  // "The number of rows", "The number of blocks", "The block size", the
  // packed data under "Lower triangular", "KXSymMatrixData display end".
  void Display() const;

  // Packed position of element (i, j) with 0 <= j <= i, in 64 bits
  // (KXPacked::Index).
  static std::size_t PackedIndex(int i, int j) { return KXPacked::Index(i, j); }
  // Number of packed elements of a matrix of order n (0 for n <= 0), in 64
  // bits (KXPacked::Size).
  static std::size_t PackedSize(int n) { return KXPacked::Size(n); }

 protected:
  // Resizes data to n(n+1)/2 elements (0 for n <= 0; n below 0 is raised to
  // 0) and returns whether the vector now has that size. An allocation
  // failure is caught and reported as false; data is then left as it was.
  static bool ResizeNRows(std::vector<double>& data, int& n);
  // True when the order is valid and the data vector holds exactly
  // n(n+1)/2 elements (a caller may have resized it through AsVector()).
  // Operations that walk the triangle refuse an inconsistent matrix.
  bool HasConsistentData() const {
    return nRows >= 0 && data.size() == PackedSize(nRows);
  }

  int nRows;
  int nBlocks;
  int blockSize;
  std::vector<double> data;
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_SYMMATRIX_KXSYMMATRIXDATA_H
