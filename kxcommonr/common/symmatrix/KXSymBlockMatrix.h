// kxcommonr/common/symmatrix/KXSymBlockMatrix.h
//
// KXSymBlockMatrix: a symmetric matrix of order m*b made of m x m blocks,
// each a symmetric b x b KXSymMatrix, such as the covariance of several
// parameter vectors where every block (I, J) is itself symmetric. Only the
// lower triangle of blocks is stored, in the packed order of KXSymMatrix:
// block (I, J) with J <= I at I(I+1)/2 + J; (I, J) with I < J is served from
// (J, I). Because every block is symmetric, element (I*b + i, J*b + j) of
// the full matrix is element (i, j) of block (I, J) for either order of i
// and j.
//
// Example:
//   KXCommon::KXSymBlockMatrix cov(2, 3);   // two parameter vectors of 3
//   cov.GetElemSSRef(1, 0).SetElem(0, 0, 0.5);
//   KXCommon::KXSymMatrix full;
//   cov.CopyToSymMatrix(full);              // order 6
//
// Thread rule: a plain value without locking. Concurrent readers are safe;
// a writer needs exclusive access.
#ifndef KXCOMMONR_COMMON_SYMMATRIX_KXSYMBLOCKMATRIX_H
#define KXCOMMONR_COMMON_SYMMATRIX_KXSYMBLOCKMATRIX_H

#include <vector>

#include "kxcommonr/common/symmatrix/KXSymMatrix.h"
#include "kxcommonr/config.h"

namespace KXCommon {

class KXCOMMONR_API KXSymBlockMatrix {
 public:
  // Empty: 0 block rows of order 0.
  KXSymBlockMatrix();
  // SetNRows(m, b).
  KXSymBlockMatrix(int m, int b);
  KXSymBlockMatrix(const KXSymBlockMatrix& other) = default;
  KXSymBlockMatrix& operator=(const KXSymBlockMatrix& other) = default;
  ~KXSymBlockMatrix() = default;

  // m and b are clamped at 0; the structure gets m(m+1)/2 zero blocks of
  // order b. When an allocation fails, blockSize becomes -1 (the structure
  // is invalid) and false is returned.
  bool SetNRows(int m, int b);
  // True when nBlockRows >= 0 and blockSize >= 0.
  bool IsValidStruct() const { return nBlockRows >= 0 && blockSize >= 0; }

  int GetNBlockRows() const { return nBlockRows; }
  int GetBlockSize() const { return blockSize; }

  // Block (I, J), or (J, I) when I < J. REQUIRES: 0 <= I, J < m; the
  // indices are not validated (an out-of-range index is undefined
  // behaviour, as for std::vector::operator[]).
  KXSymMatrix& GetElemSSRef(int I, int J);

  // Every element of every block set to 0; shape unchanged.
  void Clear();

  // out becomes the full symmetric matrix of order m*b (reshaped only when
  // its order differs, then zeroed). An element of a block smaller than b
  // is read as the missing value. Returns the order m*b, or -1 when out
  // could not be sized or the structure is invalid (out is then empty).
  int CopyToSymMatrix(KXSymMatrix& out) const;

  // Prints, through KXComponentDisplay, the shape and every stored block.
  void Display() const;

 private:
  // Resizes blocks to m(m+1)/2 entries; false on allocation failure.
  static bool ResizeNRows(std::vector<KXSymMatrix>& blocks, int& m);

  int nBlockRows;
  int blockSize;
  std::vector<KXSymMatrix> blocks;
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_SYMMATRIX_KXSYMBLOCKMATRIX_H
