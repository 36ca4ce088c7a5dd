// kxcommonr/common/symmatrix/KXSymMatrix.h
//
// KXSymMatrix: the library's covariance and cross-product matrix. A
// KXSymMatrixData (packed lower triangle, optional equal row blocks) with the
// whole numerical repertoire: element and row access, whole-matrix edits,
// the sweep operator, a rank-tolerant Cholesky factorisation with inverses,
// determinants and solves, weighted cross-product updates one case at a time,
// and products and traces with vectors, symmetric and rectangular matrices.
//
// Masks are KXBitSet and rectangular operands KXRectMatrix; both headers are
// included here. The symmetric matrices rest on the rectangular ones (this
// component depends on rectmatrix, never the other way round), so every
// member declared here, the products with KXRectMatrix included, is built
// by this component.
//
// Example: weighted cross products of the cases, then a quadratic form.
//   KXSymMatrix sscp(3);
//   for (const auto& c : cases) sscp.UpdateXX(c.x, c.weight);
//   double q = sscp.ComputeVSV(v);
//
// Conventions:
//   - Failures are reported by the result: false, -1, or the missing value
//     (KXMV::Missing()) for a scalar; a refused operation leaves this matrix
//     and its outputs unchanged unless the comment says otherwise. Nothing
//     throws.
//   - Tolerances are relative: a pivot or element counts as zero when it
//     does not exceed tol times the matching (initial) diagonal element.
//   - Masks are KXBitSet; a position outside a set reads as false.
//
// Thread rule: a plain value without locking. Concurrent readers are safe;
// a writer needs exclusive access.
#ifndef KXCOMMONR_COMMON_SYMMATRIX_KXSYMMATRIX_H
#define KXCOMMONR_COMMON_SYMMATRIX_KXSYMMATRIX_H

#include <vector>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/rectmatrix/KXRectMatrix.h"
#include "kxcommonr/common/symmatrix/KXSymMatrixData.h"
#include "kxcommonr/config.h"

namespace KXCommon {

class KXCOMMONR_API KXSymMatrix : public KXSymMatrixData {
 public:
  // ======================================================================
  // Storage and access
  // ======================================================================

  // Empty matrix.
  KXSymMatrix();
  // Zero matrix of order max(n, 0), one block. When the triangle cannot be
  // allocated the matrix is invalid (IsValidMatrix() false, order -1).
  explicit KXSymMatrix(int n);
  // Zero matrix of nBlocks blocks of blockSize rows; empty when either count
  // is below 1; invalid when the order exceeds the int range or the
  // triangle cannot be allocated.
  KXSymMatrix(int nBlocks, int blockSize);
  KXSymMatrix(const KXSymMatrix& other) = default;
  KXSymMatrix& operator=(const KXSymMatrix& other) = default;
  ~KXSymMatrix() = default;

  // Copies the counts and the data of src.
  void SetData(const KXSymMatrixData& src);
  // The packed lower triangle itself, modifiable. The caller must keep its
  // size at n(n+1)/2.
  std::vector<double>& AsVector() { return data; }
  const std::vector<double>& AsVector() const { return data; }

  // One block of max(n, 0) rows. The leading packed elements are kept (the
  // leading block of the old matrix survives), new elements are 0. Returns
  // false on allocation failure; the matrix is then unchanged.
  bool Resize(int n);
  // One block of max(n, 0) rows, every element 0. Returns false on
  // allocation failure; the matrix is then unchanged.
  bool SetNRows(int n);
  // Divides the rows into nBlocks equal blocks. False (nothing changed) when
  // nBlocks < 1, n < 1 or n is not a multiple of nBlocks.
  bool SetNBlocks(int nBlocks);
  // Every element 0; shape unchanged.
  void Clear();

  // Sets (i, j) and thereby (j, i). False (nothing changed) when i or j lies
  // outside 0..n-1.
  bool SetElem(int i, int j, double v);
  // Sets packed position k. False when k lies outside 0..n(n+1)/2-1.
  bool SetElem(int k, double v);
  // Sets (i, j) = r[j] for every j. False when i lies outside 0..n-1 or r
  // has fewer than n elements.
  bool PutRow(int i, const std::vector<double>& r);
  // Row and column i, diagonal included, set to c. False outside 0..n-1.
  bool SetRowColToConst(int i, double c);
  // Row and column i set to 0. False outside 0..n-1.
  bool ZeroOut(int i);
  // Becomes the outer product v v' of order size(v), one block. Returns
  // false on allocation failure (matrix unchanged).
  bool SetToVV(const std::vector<double>& v);

  // When n > 1, out becomes the leading (n-1) x (n-1) matrix (reshaped only
  // when its order differs). Nothing happens for n <= 1.
  void ExtractFirstNRows(KXSymMatrix& out) const;
  // Copies the leading k x k block of src over this matrix's leading block.
  // False (nothing changed) unless 1 <= k <= src order and k <= n.
  bool ReplaceFirstRows(const KXSymMatrix& src, int k);
  // out becomes a zero matrix of order keep.Size(); the rows and columns of
  // this matrix are placed, in order, at the set positions of keep. Stops
  // when this matrix's rows are used up.
  void Expand(const KXBitSet& keep, KXSymMatrix& out) const;
  // out becomes the submatrix on rows and columns idx. False (out untouched)
  // unless idx holds at most n strictly increasing indices in 0..n-1.
  bool ExtractSubmatrix(const std::vector<int>& idx, KXSymMatrix& out) const;

  // Every diagonal element += c.
  void AddToDiagonal(double c);
  // Every element negated.
  void ChangeSign();
  // Every element multiplied by c.
  void MultiplyByNumber(double c);
  // this += a * x over the packed data. False (nothing changed) when the
  // orders differ.
  bool ComputeAXpY(double a, const KXSymMatrix& x);
  // Largest and smallest diagonal element. For n < 1 both outputs are left
  // untouched.
  void MaxMinDiag(double& max, double& min) const;

  // Full square form: "KXSymMatrix full matrix display start", "Number of
  // rows", then each row under "row <i>: ", then "KXSymMatrix display end".
  void DisplayF() const;

  // ======================================================================
  // Sweep, Cholesky, inverse and solve (KXSymMatrixFactor.cpp,
  // KXSymMatrixSolve.cpp)
  // ======================================================================
  //
  // origDiag is the diagonal before any sweeping or factorising (one
  // element per row, non-negative); a pivot of row i counts as zero when it
  // does not exceed tol * origDiag[i]. A factorised matrix holds L (A = L L')
  // in the same packed positions. A redundant row i has l_ii == 0 and a zero
  // column below it; its own entries l_ij (j < i) stay as computed, so L L'
  // still reproduces A. Later operations skip a zero diagonal of L.
  //
  // Allocation: Sweep never allocates. LTChol allocates one panel of scratch
  // (about 48 * n doubles) per call and falls back to an unblocked loop
  // with identical results when that fails; the inverses allocate one
  // scratch of similar size. Results are the same bit for bit on every
  // machine, whichever vector instructions are used.

  // Sweeps row k in place, or reverses the sweep when row k is already
  // swept (bit k of swept set); sweeping a row twice restores the matrix up
  // to rounding. After a sweep with pivot d: a_kk = -1/d, a_ik = a_ik / d,
  // a_ij = a_ij - a_ik a_jk / d. A sweep is accepted only when
  // tol * origDiag[k] < a_kk (strictly) and, for every swept row j,
  // (a_jj - a_jk^2 / a_kk) * tol * origDiag[j] > -1 (the earlier row's
  // residual stays above tol * origDiag[j]). A reverse sweep makes no pivot
  // test; it refuses only a zero or NaN diagonal, which no sweep leaves.
  // Toggles bit k on success. Returns false, matrix and swept unchanged,
  // when a test fails, when k is out of range or origDiag or swept has
  // fewer than n elements (always checked), or, with check, when tol <= 0
  // or an origDiag element is negative.
  bool Sweep(int k, double tol, const std::vector<double>& origDiag,
             KXBitSet& swept, bool check);
  // Sweeps (or reverses) rows[0], rows[1], ... in that order, with the
  // result bit for bit of Sweep(rows[0], ...), Sweep(rows[1], ...), ... :
  // a row whose pivot test fails is left as it is and the next one goes on;
  // a row listed twice is swept and then reversed. Runs of distinct rows are
  // swept in blocks that pass over the matrix once per block instead of once
  // per row, the faster way to sweep many rows (every row: the negated
  // inverse). Returns the number of rows swept or reversed; -1, nothing
  // changed, when a row is out of range or origDiag or swept has fewer than
  // n elements (always checked) or, with check, when tol <= 0 or an
  // origDiag element is negative. Allocates about 48 * n doubles of
  // scratch, and sweeps row by row (same result) when that fails.
  int SweepRows(const std::vector<int>& rows, double tol, const std::vector<double>& origDiag,
                KXBitSet& swept, bool check);

  // In-place Cholesky factor, row by row: s = a_ij - sum_{m<j} l_im l_jm;
  // l_ij = s / l_jj (0 when l_jj == 0); row i is redundant (l_ii = 0, bit i
  // clear) when s <= tol * origDiag[i] (or s is NaN), else l_ii = sqrt(s) and
  // bit i of nonRedundant is set. nonRedundant is resized to n when shorter,
  // and cleared. Returns the number of redundant rows, or -1 (matrix and
  // nonRedundant unchanged) when origDiag has fewer than n elements or, with
  // check, tol < 0 or an origDiag element is negative.
  int LTChol(const std::vector<double>& origDiag, double tol,
             KXBitSet& nonRedundant, bool check);
  // The same without recording the rows.
  int LTChol(const std::vector<double>& origDiag, double tol, bool check);
  // The same with origDiag taken from the matrix's own diagonal, each
  // element below tol replaced by 1.0. out is first set to the missing
  // value; after factorising it holds the smallest accepted pivot l_ii (it
  // stays missing when no row is accepted). -1 when check and tol < 0.
  int LTChol(double tol, double& out, bool check);

  // Determinant and/or inverse of the stored factor L. A nonzero tens digit
  // of job asks for the inverse L^-1 (in place; rows and columns of zero
  // pivots become 0), a nonzero units digit for the determinant of L L',
  // the product of the squared l_ii, as det[0] * 10^det[1] with
  // 1 <= |det[0]| < 10, or det[0] == det[1] == 0 when a pivot is 0. Returns
  // the number of zero pivots; -1 (nothing done) when job < 0 or det is
  // null while the determinant is asked for.
  int LTDetInverse(double* det, int job);
  // Replaces the stored lower triangle M by M'M (applied to L^-1 this is the
  // inverse of L L').
  void LTLTransL();
  // Replaces the stored lower triangle M by M M' (rebuilds the matrix from
  // its factor).
  void LTLLTrans();
  // LTDetInverse(det, 10) then LTLTransL(): the inverse of the matrix whose
  // factor is stored; with redundant rows, the generalised inverse that is
  // the inverse on the accepted rows and 0 on the others.
  void LTInverse();

  // out becomes a copy of this matrix, factorised by LTChol (check on) and
  // inverted by LTInverse. Returns the LTChol result; when it is negative
  // out is left as the copy.
  int CholInverse(const std::vector<double>& origDiag, double tol,
                  KXSymMatrix& out) const;
  // The same, recording the accepted rows.
  int CholInverse(const std::vector<double>& origDiag, double tol,
                  KXSymMatrix& out, KXBitSet& nonRedundant) const;
  // The same, also returning the smallest diagonal element of the factor,
  // zeros of redundant rows included (the missing value for an empty matrix
  // or a refused factorisation).
  int CholInverse(const std::vector<double>& origDiag, double tol,
                  KXSymMatrix& out, double& minPivot) const;

  // Determinant of the matrix through a factorised copy (LTChol(tol, out,
  // true) then LTDetInverse(det, 1)), as det[0] * 10^det[1]; 0 when a row
  // is redundant. False for an empty matrix, a null det or tol < 0; the
  // matrix is never changed.
  bool ComputeDeterminant(double tol, double* det) const;
  // Row and column i set to 0 for every clear bit i. False (nothing
  // changed) when the set has fewer bits than the matrix has rows.
  bool ZeroOutRedundant(const KXBitSet& nonRedundant);

  // Factorises in place (LTChol with the matrix's own diagonal as origDiag,
  // check on; x is used as its scratch) and solves L y = b, L' x = y; a
  // component whose pivot is 0 is set to 0. Returns the number of redundant
  // rows; -1 when tol <= 0 or b has fewer than n elements (matrix and x
  // unchanged), or the negative LTChol result (matrix unchanged, x then
  // holds the diagonal).
  int LTSolve(const std::vector<double>& b, double tol,
              std::vector<double>& x);
  // The two substitutions with a factor already stored; a component whose
  // pivot is 0 is set to 0. x is resized to n. Returns the number of zero
  // pivots; -1 (x unchanged) when b has fewer than n elements.
  int LTSubstitute(const std::vector<double>& b, std::vector<double>& x) const;

  // Cholesky in place of the leading nLead x nLead block (all rows when
  // nLead == 0), each row judged against its own diagonal: redundant when
  // its residual pivot does not exceed tol times its diagonal. Rows beyond
  // nLead are untouched. idx receives the indices of the accepted rows in
  // increasing order. Returns the number of redundant rows; -1 (nothing
  // changed) when nLead is outside 0..n, tol < 0 or a leading diagonal
  // element is negative.
  int CholIndNonRed(int nLead, double tol, std::vector<int>& idx);
  // Solves A x = b for a symmetric matrix of any sign pattern by Gaussian
  // elimination with row pivoting on a copy (the matrix is not changed).
  // False (x unchanged) when tol <= 0, b has fewer than n elements, or a
  // pivot's magnitude does not exceed tol times the largest magnitude of
  // the matrix (numerically singular), or the solution is beyond the double
  // range.
  bool SolveIndefinite(double tol, const std::vector<double>& b,
                       std::vector<double>& x);
  // Solves the subsystem on the rows whose bit is set (for example the
  // accepted rows of LTChol); the other components of x are 0. The matrix
  // is not changed. False (x unchanged) when the set has fewer than n bits,
  // b fewer than n elements, the subsystem is exactly singular, or the
  // solution is beyond the double range.
  bool SolveIndefinite(const KXBitSet& nonRedundant,
                       const std::vector<double>& b, std::vector<double>& x);
  // Solution by generalised inverse x = G b: Gauss-Jordan pivots on the
  // diagonal of a copy, in row order, each taken when its magnitude exceeds
  // tol times the magnitude of the row's initial diagonal (either sign);
  // G is the inverse on the pivoted rows and 0 elsewhere, so x solves every
  // consistent system whose dependent rows are left unpivoted. (A residual
  // block with a zero diagonal, as in [[0, 1], [1, 0]], gets no pivot: use
  // SolveIndefinite(tol, ...) for such nonsingular matrices.) The matrix is
  // not changed. False (x unchanged) when tol <= 0, b is too short, or the
  // solution is beyond the double range.
  bool SolveIndefiniteGI(double tol, const std::vector<double>& b,
                         std::vector<double>& x);
  // Makes the matrix positive definite by adding a ridge to its diagonal
  // when needed. Each row is judged by LTChol against the magnitude of its
  // own diagonal (the largest diagonal magnitude when its own is 0) at tol.
  // When every row passes, nothing changes: changed = false, shift = 0,
  // returns 0. Otherwise the ridge starts at tol times the largest diagonal
  // magnitude and doubles until the shifted matrix passes; it is then
  // added (changed = true, shift = the ridge) and the number of rows that
  // failed before is returned. -1 (nothing changed) when tol <= 0, an
  // element is not finite, or no ridge up to four times the Gershgorin
  // bound succeeds.
  int TransformToPositiveDefinite(double tol, bool& changed, double& shift);
  // 1 when row `row` is a linear combination of the rows set in mask (its
  // residual pivot after them, by Cholesky of that submatrix, does not
  // exceed tol * origDiag[row]), 0 when not, -1 for a row out of range,
  // an origDiag shorter than n, tol < 0 or a negative origDiag element
  // among the rows used. The matrix is not changed; bit `row` itself is
  // ignored.
  int CheckMDependent(int row, const std::vector<double>& origDiag,
                      const KXBitSet& mask, double tol);
  // The regression coefficients of a swept cross-product matrix whose last
  // row is the response: coeffs (resized to n-1) gets a_(n-1, i) for every
  // swept row i, 0 for the others. False (coeffs unchanged) when n < 2,
  // swept has fewer than n-1 bits, or the response row is itself swept.
  bool GetRegCoeffs(std::vector<double>& coeffs,
                    const KXBitSet& swept) const;
  // True when the symmetric matrix G given by its packed triangle g is a
  // reflexive generalised inverse of this matrix S: S G S = S and G S G = G,
  // each to tol relative to the largest magnitude of S resp. G. False when
  // g does not hold exactly n(n+1)/2 elements or tol < 0.
  bool CheckGMG(const std::vector<double>& g, double tol) const;

  // ======================================================================
  // Cross-product updates and products (KXSymMatrixProducts.cpp)
  // ======================================================================

  // --- Updates. Each adds to the lower triangle only and returns false,
  // --- adding nothing, when its arguments are refused.

  // Adds w * x x'. Rows with x_i == 0 are skipped whole. False when
  // size(x) != n or w <= 0 (or w is NaN). Never allocates; the result is
  // the same bit for bit whichever vector instructions the processor has.
  bool UpdateXX(const std::vector<double>& x, double w);
  // Adds w * x x' for a weight of either sign (a negative weight removes a
  // case added before). False when size(x) != n.
  bool UpdateXXPosNegW(const std::vector<double>& x, double w);
  // Adds w * x_i * x_j only where both i and j are in keep. False when
  // size(x) != n.
  bool UpdateXXNonRedun(const std::vector<double>& x, const KXBitSet& keep,
                        double w);
  // Adds w * val[k] * val[m] at (idx[k], idx[m]) for a sparse case of nnz
  // entries sorted by ascending index. Entries with an index outside 0..n-1
  // are skipped. For each entry k the walk over m stops at the first entry
  // whose index exceeds idx[k]; so an unsorted list silently loses pairs
  // (deliberate: the rule relies on the ordering). False when nnz < 0, idx
  // or val has fewer than nnz entries, or w <= 0.
  bool UpdateXXSparse(int nnz, const std::vector<int>& idx,
                      const std::vector<double>& val, double w);

  // --- Quadratic forms and vector products.

  // v'Sv. Missing when size(v) != n; 0 for an empty matrix.
  double ComputeVSV(const std::vector<double>& v) const;
  // v'Sw. Missing when either size differs from n; 0 for an empty matrix.
  double ComputeVSW(const std::vector<double>& v,
                    const std::vector<double>& w) const;
  // v'Sw over raw arrays: v[0], v[incv], ... and w[0], w[incw], ..., n
  // elements each. Missing when a pointer is null (n > 0) or an increment is
  // below 1.
  double ComputeVSW(const double* v, int incv, const double* w,
                    int incw) const;
  // v'S_k w over the leading k x k block S_k, with v = x[vStart ..
  // vStart+k-1] and w = x[wStart .. wStart+k-1] both taken from x. Missing
  // when k is outside 0..n, a start is negative or x is too short.
  double ComputeVSW(const std::vector<double>& x, int vStart, int wStart,
                    int k) const;
  // v'Sw accumulated in two parts, the diagonal terms sum_i v_i a_ii w_i and
  // the off-diagonal terms sum_{j<i} a_ij (v_i w_j + v_j w_i), each in index
  // order, added at the end. v and w are read from vOffset and wOffset.
  // Missing when a vector holds fewer than offset + n elements or an offset
  // is negative.
  double ComputeVSWParts(const std::vector<double>& v, int vOffset,
                         const std::vector<double>& w, int wOffset) const;
  // The same on raw arrays of n elements; missing when a pointer is null
  // and n > 0.
  double ComputeVSWParts(const double* v, const double* w) const;
  // v'S_(bi,bj) w on block (bi, bj) of a blocked matrix; v and w hold
  // blockSize elements. Missing when a block index is out of range or a
  // size differs from blockSize.
  double ComputeBlockVSW(int bi, int bj, const std::vector<double>& v,
                         const std::vector<double>& w) const;
  double ComputeBlockVSV(int bi, int bj, const std::vector<double>& v) const;
  // sqrt(v'Sv); missing when v'Sv is missing or negative.
  double SquareRootVSV(const std::vector<double>& v) const;

  // out = S v (out resized to n). False (out unchanged) when size(v) != n.
  bool ComputeSV(const std::vector<double>& v, std::vector<double>& out) const;
  // out = S_k v over the leading k x k block (out resized to k). False when
  // k is outside 0..n or v has fewer than k elements.
  bool ComputeSV(int k, const std::vector<double>& v,
                 std::vector<double>& out) const;
  // Row `row` of S times v[0], v[inc], ..., v[(n-1)*inc]. Missing when row
  // lies outside 0..n-1, inc < 1, or v holds fewer than n * inc elements.
  double ComputeRVD(int row, const std::vector<double>& v, int inc) const;
  // The same on a raw array; missing when row or inc is bad or v is null.
  double ComputeRVD(int row, const double* v, int inc) const;
  // Full row i of S dot full row j of T. Missing when the orders differ or
  // an index is out of range.
  double ComputeRowDotProductS(int i, const KXSymMatrix& T, int j) const;
  // Full row i of S dot full row j of the symmetric matrix of order n whose
  // packed triangle is tPacked. Missing when tPacked holds fewer than
  // n(n+1)/2 elements or an index is out of range.
  double ComputeRowDotProductS(int i, const std::vector<double>& tPacked,
                               int j) const;
  // Full row i of S dot full row j of S. Missing for a bad index.
  double ComputeDotProduct2Rows(int i, int j) const;
  // out = L v and out = L' v, the lower triangle read as a triangular
  // factor L (out resized to n). False (out unchanged) when size(v) != n.
  bool ComputeLV(const std::vector<double>& v, std::vector<double>& out) const;
  bool ComputeLTransV(const std::vector<double>& v,
                      std::vector<double>& out) const;

  // --- Products with symmetric matrices and traces.

  // out = G S G, G symmetric of order n given by its packed triangle g.
  // False (out unchanged) when g holds more than n(n+1)/2 elements; a
  // shorter g is padded with zeros. An empty matrix gives an empty out.
  bool ComputeGMG(const std::vector<double>& g, KXSymMatrix& out) const;
  // out = L T L', this matrix's lower triangle read as the factor L, T the
  // symmetric matrix. False (out unchanged) when the orders differ; out is
  // reshaped to order n.
  bool ComputeLSLTrans(const KXSymMatrix& T, KXSymMatrix& out) const;
  // out = S'S = S S (out reshaped to order n). False (out unchanged) only
  // when this matrix's data vector has lost its packed size.
  bool ComputeSTransS(KXSymMatrix& out) const;
  // tr S (0 for an empty matrix).
  double Trace() const;
  // tr(S T); missing when the orders differ.
  double TraceOfProduct(const KXSymMatrix& T) const;
  // tr(S T U); missing when the orders differ.
  double TraceOfProductOfThree(const KXSymMatrix& T,
                               const KXSymMatrix& U) const;

  // --- Elementwise edits and diagnostics.

  // Shrinks every off-diagonal element so that |a_ij| <= maxCorr *
  // sqrt(a_ii a_jj) (its sign kept), e.g. to keep an estimated covariance
  // away from perfect correlation. Off-diagonals against a diagonal <= 0
  // become 0. False (nothing changed) when maxCorr is outside [0, 1] or a
  // diagonal element is negative.
  bool AdjustOffDiagCorr(double maxCorr);
  // Imposes pattern's structural zeros: every off-diagonal element whose
  // counterpart in pattern is exactly 0 is set to 0 here. False (nothing
  // changed) when the orders differ. pattern is not modified.
  bool SetCovarZeros(KXSymMatrix& pattern);
  // Every element (diagonal included) with |a_ij| <= tol set to 0 (an
  // absolute threshold, for clearing rounding noise). Returns the number of
  // elements zeroed, -1 (nothing changed) when tol < 0 or NaN.
  int ZeroOutAllSmall(double tol);
  // Every off-diagonal element with |a_ij| <= tol * sqrt(|a_ii a_jj|) set to
  // 0 (relative to the diagonal). Returns the number zeroed, -1 (nothing
  // changed) when tol < 0 or NaN.
  int ZeroOutNonDiag(double tol);
  // Row and column i set to 0 for every row whose diagonal does not exceed
  // tol times the largest diagonal element. Returns the number of rows
  // zeroed, -1 (nothing changed) when tol < 0 or NaN; 0 when no diagonal
  // element is positive.
  int ZeroOutRowsForSmallDiag(double tol);
  // Largest and smallest diagonal and off-diagonal (j < i) element. False
  // and all outputs untouched for n < 1; for n == 1 the off-diagonal outputs
  // are left untouched.
  bool MaxMinDiagOffDiag(double& maxDiag, double& minDiag, double& maxOff,
                         double& minOff) const;
  // d receives the diagonal (resized to n); each element below tol becomes
  // replacement, giving a diagonal usable as origDiag. Returns the number
  // replaced.
  int GetNCheckDiagonal(std::vector<double>& d, double tol,
                        double replacement) const;
  // out[start + j*inc] += c * a_(row, j) for j = 0..n-1 (fullRow) or
  // j = 0..row (stored part only). False (out unchanged) when row is out of
  // range, start < 0, inc < 1 or out is too short.
  bool IncrVecByRow(int row, std::vector<double>& out, int start, int inc,
                    double c, bool fullRow) const;
  // Copies elements (first..last, col) of column col into out[outStart ..]
  // (out grows when shorter). False (out unchanged) when an index is out of
  // range, first > last, outStart < 0 or the memory for a longer out cannot
  // be had.
  bool GetPCol(int col, int first, int last, std::vector<double>& out,
               int outStart) const;
  // The full n x n matrix, row-major, into full (resized to n*n).
  void ExpandSym(std::vector<double>& full) const;
  // out becomes the principal submatrix on rows first..first+count-1. False
  // (out unchanged) when the range is outside 0..n-1 or count < 0.
  bool ExtractH(int first, int count, KXSymMatrix& out) const;
  // True when row i is exactly 0 at every column whose bit is set in cols.
  // False when i is outside 0..n-1.
  bool IsZeroRow(int i, const KXBitSet& cols) const;
  // Congruence with a diagonal matrix D = diag(scale): S := D S D, as when
  // reparameterising by scaling each parameter. False (nothing changed)
  // when scale has fewer than n elements.
  bool TransformParameterMatrix(const std::vector<double>& scale);
  // The same, scaling only the rows in rows (others use 1). False when
  // scale has fewer than n elements.
  bool TransformParameterMatrix(const std::vector<double>& scale,
                                const KXBitSet& rows);

  // ======================================================================
  // Products with rectangular matrices (KXSymMatrixRect.cpp)
  // ======================================================================

  // These members accumulate every output in increasing order of the
  // summation index on blocked kernels dispatched to the widest vector unit
  // available; results are the same bit for bit on every path. Outputs may
  // be this matrix; a refused call leaves this matrix and out unchanged.

  // Block form of UpdateXX. r1 holds a block of cases, one per row, with n
  // columns; r2 holds the same cases, either as they are (r2 = r1) or each
  // row already multiplied by its case weight. For every (i, j), j <= i,
  // adds sum over the cases p, in order, of (r2(p, i) * w) * r1(p, j). So:
  //   UpdateXXMat2(X, X, w)   == UpdateXX(row p of X, w) for p = 0, 1, ...
  //   UpdateXXMat2(X, FX, 1)  == UpdateXX(row p of X, f_p) for p = 0, 1, ...
  // where row p of FX is row p of X times f_p (computed as x * f_p), both
  // bit for bit for finite data (UpdateXX skips zero elements, which can
  // only change the sign of a zero). Only the lower triangle of r2'r1 is
  // used, so r2 must be a row-scaled copy of r1 for the result to be a
  // cross-product matrix. False (nothing added) when r1 does not have n
  // columns, r2 differs from r1 in shape, or w <= 0 (or NaN).
  bool UpdateXXMat2(const KXRectMatrix& r1, const KXRectMatrix& r2, double w);
  // out = R S, R of n columns (out m x n). False when R's column count
  // differs from n.
  bool ComputeRS(const KXRectMatrix& R, KXRectMatrix& out) const;
  // out = R S R', R of n columns (out of order R's row count). False when
  // R's column count differs from n.
  bool ComputeRSRTrans(const KXRectMatrix& R, KXSymMatrix& out) const;
  // out = R' S R, R of n rows (out of order R's column count). False when
  // R's row count differs from n.
  bool ComputeRTransSR(const KXRectMatrix& R, KXSymMatrix& out) const;
  // out = S T (n x n, not symmetric in general). False when the orders
  // differ.
  bool ComputeSS(const KXSymMatrix& T, KXRectMatrix& out) const;
  // This matrix becomes R R' (order R's row count, one block). False
  // (unchanged) only on allocation failure.
  bool ComputeRByRTrans(const KXRectMatrix& R);
  // This matrix becomes R'R (order R's column count, one block). False
  // (unchanged) only on allocation failure.
  bool ComputeRTransByR(const KXRectMatrix& R);
  // Copies full row i (n elements) into column col of out, rows startRow ..
  // startRow+n-1. False (out unchanged) when i or col is out of range,
  // startRow < 0, or the rows run past the end of out.
  bool CopyRowToRColumn(int i, KXRectMatrix& out, int col, int startRow) const;
  // out becomes the full n x n matrix. False (out unchanged) only on
  // allocation failure.
  bool ExpandSymToRect(KXRectMatrix& out) const;
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_SYMMATRIX_KXSYMMATRIX_H
