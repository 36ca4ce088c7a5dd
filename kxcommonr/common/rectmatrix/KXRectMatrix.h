// kxcommonr/common/rectmatrix/KXRectMatrix.h
//
// KXRectMatrix: a dense row-major rectangular matrix (storage in
// KXRectMatrixData) with row and column editing, dot products, matrix
// products, and the rank tools that find and drop linearly dependent rows or
// columns of a design or contrast matrix.
//
// Example: drop the redundant columns of a design.
//   KXRectMatrix design(nCases, nParams);
//   ... fill with SetElem ...
//   KXRectMatrix fullRank;
//   std::vector<int> kept;
//   int nRedundant = design.ExtractFullRank(1e-7, fullRank, kept, false);
//
// Conventions:
//   - Failures are reported by the result: false, -1, or the missing value
//     (KXMV::Missing()) for a scalar. A refused operation leaves this matrix
//     and its outputs unchanged. Nothing throws.
//   - Rank tolerances are relative and apply to norms: a row or column is
//     redundant when the norm of its residual, after projection on the
//     earlier accepted ones, is at most tol times its own norm. Internally
//     the tolerance is squared and applied to a cross-product matrix. Earlier
//     rows (columns) always win: of two proportional ones the first is kept.
//   - The products accumulate every output element in increasing order of
//     the summation index, one product at a time, so their results are the
//     same bit for bit on every processor this library dispatches to, and
//     equal to a plain triple loop.
//
// Thread rule: a plain value without locking. Concurrent readers are safe;
// a writer needs exclusive access.
#ifndef KXCOMMONR_COMMON_RECTMATRIX_KXRECTMATRIX_H
#define KXCOMMONR_COMMON_RECTMATRIX_KXRECTMATRIX_H

#include <vector>

#include "kxcommonr/common/rectmatrix/KXRectMatrixData.h"
#include "kxcommonr/config.h"

namespace KXCommon {

class KXBitSet;

class KXCOMMONR_API KXRectMatrix : public KXRectMatrixData {
 public:
  // ======================================================================
  // Storage and access (KXRectMatrix.cpp)
  // ======================================================================

  KXRectMatrix();
  // nRows x nCols zeros (negative counts raised to 0).
  KXRectMatrix(int nRows, int nCols);
  KXRectMatrix(const KXRectMatrix& other) = default;
  KXRectMatrix& operator=(const KXRectMatrix& other) = default;
  ~KXRectMatrix() = default;

  // The row-major elements themselves, modifiable. The caller must keep the
  // size at nRows * nCols.
  std::vector<double>& AsVector() { return data; }

  // Sets (i, j). False (nothing changed) when i or j is out of range.
  bool SetElem(int i, int j, double v);

  // Full matrix: "KXRectMatrix full matrix display start", "Number of
  // rows", "Number of columns", each row under "row <i>: ", then
  // "KXRectMatrix display end".
  void DisplayF() const;

  // ======================================================================
  // Shape and whole-matrix edits (KXRectMatrix.cpp)
  // ======================================================================

  // Appends a zero row (a zero column); returns the new row (column) count,
  // -1 (nothing changed) when the elements cannot be allocated.
  int AddRow();
  int AddColumn();
  // Reshapes to nRows x nCols keeping every element (i, j) that fits in
  // both shapes; new elements are 0. False (nothing changed) for a negative
  // count or an allocation failure.
  bool Resize(int nRows, int nCols);
  // Reshapes to nRows x nCols with every element 0. False (nothing changed)
  // for a negative count or an allocation failure.
  bool SetNRowsCols(int nRows, int nCols);
  // Every element 0; shape unchanged.
  void Clear();
  // Replaces the matrix by its transpose. False (nothing changed) only on
  // allocation failure.
  bool Transpose();

  // ======================================================================
  // Column and row edits (KXRectMatrix.cpp)
  // ======================================================================

  // Column col += a * column srcCol of src. False when an index is out of
  // range or the row counts differ. src may be this matrix.
  bool AddToColumn(int col, const KXRectMatrix& src, int srcCol, double a);
  // Column col *= c. False when col is out of range.
  bool ColScale(int col, double c);
  // Euclidean norm of a column (row); the missing value when out of range.
  double ColNorm(int col) const;
  double RowNorm(int row) const;
  // Sets to 0 every element of column col whose magnitude is at most tol
  // times the column's largest magnitude (clears rounding noise left by
  // eliminations). False when col is out of range or tol < 0.
  bool ColClean(int col, double tol);
  // Snaps every element within tol of +1 or -1 to exactly +1 or -1 (tol is
  // absolute: contrast and design codes are of unit scale). Returns the
  // number of elements changed, -1 (nothing changed) when tol < 0.
  int CheckForOnes(double tol);
  // Column col set to 0. False when out of range.
  bool ZeroOutCol(int col);
  // One Gauss-Jordan step on row `row`: the pivot is the row's element of
  // largest magnitude (the first of equal ones), its column is returned in
  // pivotCol; the pivot row is divided by the pivot and the pivot column is
  // eliminated from every other row (then exactly 0 there). False (nothing
  // changed, pivotCol untouched) when row is out of range, tol < 0, or the
  // pivot's magnitude does not exceed tol times the largest magnitude in
  // the matrix (a zero row is always refused).
  bool ZeroOutPivotRow(int row, double tol, int& pivotCol);
  // Elements firstCol..lastCol (inclusive) of row `row` set to 0. False
  // unless 0 <= firstCol <= lastCol < nCols and row is in range.
  bool ZeroOutRowPart(int row, int firstCol, int lastCol);
  // True when every element of the column (row) is exactly 0; false also
  // when the index is out of range.
  bool IsColZero(int col) const;
  bool IsRowZero(int row) const;
  // Looks at the columns of row `row` whose bit is set in cols (columns
  // beyond the set are ignored). True when exactly one of them holds a
  // non-zero, whose column is written to col; otherwise false and col is
  // set to -1 (col untouched when row is out of range).
  bool IsRowZeroButOne(int row, const KXBitSet& cols, int& col) const;
  // First column j whose |a(row, j)| exceeds tol times the row's largest
  // magnitude; -1 when there is none, row is out of range or tol < 0.
  int FindFirstNonZeroInRow(int row, double tol) const;

  // ======================================================================
  // Copies, extraction and expansion (KXRectMatrix.cpp)
  // ======================================================================

  // Column srcCol of this matrix into column dstCol of dst. False when an
  // index is out of range or the row counts differ. dst may be this matrix.
  bool CopyColToCol(int srcCol, KXRectMatrix& dst, int dstCol) const;
  // Column srcCol of this matrix into row dstRow of dst. False when an
  // index is out of range or nRows differs from dst's column count.
  bool CopyColToRow(int srcCol, KXRectMatrix& dst, int dstRow) const;
  // Column col into v[start .. start+nRows-1]; v grows when shorter. False
  // (v unchanged) when col is out of range, start < 0 or the memory for a
  // longer v cannot be had.
  bool CopyColToVec(int col, std::vector<double>& v, int start) const;
  // count columns of src, from srcFirst, over the columns of this matrix
  // from dstFirst. False (nothing changed) when a range is out of bounds,
  // count < 0 or the row counts differ.
  bool CopyColumns(const KXRectMatrix& src, int srcFirst, int count,
                   int dstFirst);
  // count rows of src, from srcFirst, over the rows of this matrix from
  // dstFirst. False (nothing changed) when a range is out of bounds, count
  // < 0 or the column counts differ.
  bool CopyRows(const KXRectMatrix& src, int srcFirst, int count,
                int dstFirst);
  // Row srcRow of this matrix into row dstRow of dst. False when an index
  // is out of range or the column counts differ. dst may be this matrix.
  bool CopyRowToRow(int srcRow, KXRectMatrix& dst, int dstRow) const;
  // out becomes the columns (rows) listed in idx, in the order listed
  // (repeats allowed). Returns the number extracted, -1 (out unchanged)
  // when an index is out of range. out may be this matrix.
  int ExtractColumns(const std::vector<int>& idx, KXRectMatrix& out) const;
  int ExtractRows(const std::vector<int>& idx, KXRectMatrix& out) const;
  // Byrows: out becomes keep.Size() x nCols of zeros with the rows of this
  // matrix placed, in order, at the set positions of keep; otherwise out
  // becomes nRows x keep.Size() with the columns placed likewise. Stops
  // when this matrix's rows (columns) are used up. out may be this matrix.
  // On allocation failure out is unchanged.
  void Expand(const KXBitSet& keep, bool byRows, KXRectMatrix& out) const;
  // For a square matrix: out becomes keep.Size() square of zeros with
  // element (i, j) placed at (p_i, p_j), p_k the k-th set position of keep.
  // False (out unchanged) when this matrix is not square or keep has fewer
  // set bits than this matrix has rows.
  bool ExpandSquare(const KXBitSet& keep, KXRectMatrix& out) const;
  // out becomes the block-diagonal matrix with nBlocks copies of this
  // matrix on its diagonal. False (out unchanged) when nBlocks < 1.
  bool CreateBlockDiagonal(int nBlocks, KXRectMatrix& out) const;
  // out becomes this matrix with k zero columns (rows) in front of it, so
  // element (i, j) moves to (i, j + k) ((i + k, j)), as when a block is
  // placed in a wider design. False (out unchanged) when k < 0. This matrix
  // is not changed.
  bool ShiftColumns(int k, KXRectMatrix& out);
  bool ShiftRows(int k, KXRectMatrix& out);
  // out[start + i*inc] += c * a(i, col) for i = 0..nRows-1; with reset true
  // the target elements are set to c * a(i, col) instead. False (out
  // unchanged) when col is out of range, start < 0, inc < 1 or out is too
  // short.
  bool IncrVecByColumn(int col, std::vector<double>& out, int start, int inc,
                       double c, bool reset) const;

  // ======================================================================
  // Dot products and products (KXRectMatrixProducts.cpp)
  // ======================================================================

  // Column c1 . column c2 of this matrix.
  double DotProductCol(int c1, int c2) const;
  // Column col of this . column bCol of B (row counts must agree).
  double DotProductColCol(int col, const KXRectMatrix& B, int bCol) const;
  // Row r1 . row r2 of this matrix.
  double DotProductRows(int r1, int r2) const;
  // Row row of this . column bCol of B (nCols must equal B's row count).
  double DotProductRowCol(int row, const KXRectMatrix& B, int bCol) const;
  // Row row of this . row bRow of B (column counts must agree).
  // All dot products sum in index order and return the missing value on a
  // bad index or mismatched length.
  double DotProductRowRow(int row, const KXRectMatrix& B, int bRow) const;

  // out = A B (A this matrix). False (out unchanged) when nCols differs
  // from B's row count. out may be this matrix or B.
  bool ComputeMatrixProduct(const KXRectMatrix& B, KXRectMatrix& out) const;
  // out = A B'. False (out unchanged) when the column counts differ. out may
  // be this matrix or B.
  bool ComputeProductMatrixTrans(const KXRectMatrix& B,
                                 KXRectMatrix& out) const;
  // out = A v (resized to nRows). False (out unchanged) when size(v) !=
  // nCols.
  bool ComputeRV(const std::vector<double>& v, std::vector<double>& out) const;
  // out = v'A (resized to nCols). False (out unchanged) when size(v) !=
  // nRows.
  bool ComputeVR(const std::vector<double>& v, std::vector<double>& out) const;

  // ======================================================================
  // Rank and estimability tools (KXRectMatrixRank.cpp)
  // ======================================================================

  // Number of redundant rows (byRows) or columns; nonRedundant (grown to
  // the row or column count when shorter) marks the kept ones. -1
  // (nonRedundant untouched) when tol < 0 or NaN. Norm tolerances below
  // about 1e-7 sit at the rounding level of the squared cross products.
  int FindRedundancies(double tol, KXBitSet& nonRedundant, bool byRows);
  // The same, with the indices of the kept rows (columns), increasing, in
  // idx. -1 (idx untouched) when tol < 0.
  int FindNonRedunIndices(double tol, std::vector<int>& idx, bool byRows);
  // FindNonRedunIndices, then out = the kept rows (columns). Returns the
  // number of redundant ones; -1 (out and idx untouched) when tol < 0.
  int ExtractFullRank(double tol, KXRectMatrix& out, std::vector<int>& idx,
                      bool byRows);

  // Columns already in a model are marked in inModel; every other column is
  // then examined in increasing order and accepted when it is not
  // redundant given the model's columns and the columns accepted before it
  // (with the library's default rank tolerance, 1e-7 on norms).
  // nonRedundant receives the accepted model columns and the accepted new
  // ones. Returns the number of new columns found redundant; -1
  // (nonRedundant untouched) when inModel has fewer bits than nCols.
  int CheckAddColRedundancies(const KXBitSet& inModel,
                              KXBitSet& nonRedundant) const;

  // This matrix is a design X (cases in rows); nonRedundant marks its
  // non-redundant columns (as FindRedundancies(tol, set, false) gives).
  // True when every row l of L is an estimable function, i.e. lies in the
  // row space of X: for each redundant column r, written X_r = X_N b_r over
  // the kept columns N, the coefficients must satisfy l_r = l_N . b_r
  // within tol times the sum of the magnitudes of the terms. False when L's
  // column count differs from nCols, nonRedundant has fewer bits than
  // nCols, tol < 0, or some row is not estimable.
  bool IsEstimable(const KXRectMatrix& L, const KXBitSet& nonRedundant,
                   double tol);

  // Least-squares solution b of X b = y through a generalised inverse of
  // X'X (this matrix X, cases in rows): redundant columns (tolerance tol on
  // norms) get b = 0, the others the least-squares coefficients on the
  // kept columns. b is resized to nCols. Returns the number of redundant
  // columns; -1 (b untouched) when size(y) != nRows or tol < 0.
  int EstimateLinearGI(const std::vector<double>& y, std::vector<double>& b,
                       double tol) const;

  // Replaces this matrix (m x p) by the residual of its orthogonal
  // projection on the column space of B (m x q): A - B (B'B)^- B'A.
  // bNonRedundant receives B's non-redundant columns (tolerance tol), used
  // for the projection; residNonZero marks the columns of the residual
  // whose norm exceeds tol times the column's original norm; the others
  // lie in B's column space and are set to exactly 0. False (nothing
  // changed) when the row counts differ or tol < 0.
  bool ResidOfOrthProjection(const KXRectMatrix& B, double tol,
                             KXBitSet& bNonRedundant,
                             KXBitSet& residNonZero);

  // Solves A x = b for a square A by Gaussian elimination with scaled
  // partial pivoting. False (x unchanged) when A is not square, size(b)
  // differs from its order, tol < 0, or a pivot does not exceed tol times
  // the largest magnitude of its row in A (numerically singular).
  bool SolveLinearSquare(const std::vector<double>& b, std::vector<double>& x,
                         double tol) const;

  // True when row i is a multiple of row k: elements whose magnitude is at
  // most zeroTol times their row's largest magnitude count as zero; both
  // rows must have their non-zeros in the same columns, and with factor =
  // a(i, j0) / a(k, j0) at the first of them, |a(i, j) - factor * a(k, j)|
  // <= ratioTol * |a(i, j)| at every other. A zero row i is 0 times any
  // non-zero row k. False (factor untouched) when an index is out of range,
  // i == k, a tolerance is negative, row k is zero, or the rows differ.
  bool IsERowMultipleOfAnother(int i, int k, double zeroTol, double ratioTol,
                               double& factor) const;
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_RECTMATRIX_KXRECTMATRIX_H
