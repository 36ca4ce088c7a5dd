// kxcommonr/common/packed/KXPackedFactorKernels.h
//
// The factorising kernels of the library, working on a raw packed lower
// triangle (the layout of KXPackedLayout.h; all offsets in 64 bits): the
// rank-tolerant Cholesky, the sweep, the triangular inverse and the
// triangular products. KXSymMatrix factorises through them, and the rank
// tools of KXRectMatrix factor their cross products with them directly.
// Library-internal: the components above this one may include it, but it is
// not installed (no *Kernels.h header is) and public headers never include it.
//
// Each fast kernel has a plain companion (suffix "Plain") that follows the
// textbook loop literally. The fast kernels evaluate every output element
// with exactly the same operations in the same order as their plain
// companions, so the two agree bit for bit; they differ only in the order in
// which independent outputs are visited (blocking, vectorising across
// outputs). The same holds for every instruction set picked at run time:
// results never depend on the machine.
//
// Thread rule: pure functions of their arguments.
#ifndef KXCOMMONR_COMMON_PACKED_KXPACKEDFACTORKERNELS_H
#define KXCOMMONR_COMMON_PACKED_KXPACKEDFACTORKERNELS_H

// The fast kernels run at ActiveIsa(); tests compare the instruction-set
// paths with SetKernelLevel. Both come from this header.
#include "kxcommonr/common/simd/KXDispatch.h"

namespace KXCommon {
namespace internal {

// Cholesky factor in place, rank tolerant. Row by row, for j <= i:
//   s = a_ij - l_i0 l_j0 - l_i1 l_j1 - ... - l_i(j-1) l_j(j-1)
// (subtracted one product at a time, in that order);
//   j < i:  l_ij = s / l_jj, or 0 when l_jj == 0;
//   j == i: the row is accepted (accepted[i] = 1, l_ii = sqrt(s)) only when
//           s > tol * origDiag[i]; otherwise (NaN included) it is redundant:
//           l_ii = 0, accepted[i] = 0.
// Returns the number of redundant rows. accepted has n elements.
int PackedCholeskyPlain(double* a, int n, const double* origDiag, double tol,
                        unsigned char* accepted);
// The same result, bit for bit, by a blocked right-looking factorisation
// with vectorised register-blocked updates. Allocates one panel of scratch
// (about 48 * n doubles); if that allocation fails it runs the plain loop.
int PackedCholesky(double* a, int n, const double* origDiag, double tol,
                   unsigned char* accepted);
// Cholesky restricted to rows [0, n) using panels of the given width; the
// width only changes the visiting order (exposed so tests can force small
// panels and every edge path). width < 1 selects the default.
int PackedCholeskyWithPanel(double* a, int n, const double* origDiag, double tol,
                            unsigned char* accepted, int width);

// The sweep transformation of row k (no pivot tests), with d = a_kk != 0:
//   a_kk := -1/d; for i != k: c = a_ik, negated when d > 0, a_ik := a_ik/|d|;
//   a_ij := a_ij + c * a_jk (a_jk already rescaled) for j <= i, j != k.
// Applying it twice restores the matrix up to rounding.
void PackedSweepRowPlain(double* a, int n, int k);
// The same result, bit for bit, visiting the triangle in column chunks
// through a fixed stack buffer; never allocates.
void PackedSweepRow(double* a, int n, int k);

// Decides each pivot of PackedSweepRows. Accept is called before row k is
// swept, with the matrix as it stands then: diag[i] = a_ii and column[i] =
// a_ik for every i < n. It returns true to sweep the row (and records
// whatever the caller tracks, such as the set of swept rows), false to leave
// the row as it is and go on with the next one.
class SweepPivotRule {
 public:
  virtual bool Accept(int k, const double* diag, const double* column) = 0;

 protected:
  ~SweepPivotRule() = default;
};

// Sweeps rows[0], rows[1], ..., rows[count-1] in that order, each one the
// rule accepts, with the same result bit for bit as PackedSweepRow applied
// to those rows one after the other (a row may come back; the second sweep
// reverses the first). Consecutive distinct rows are taken in blocks: the
// block's own rows and columns are swept one by one in scratch, and the
// pending sweeps are then added to the rest of the triangle in one pass,
// each element still receiving them one at a time in order. Returns the
// number of rows swept, or -1 (nothing changed, the rule never called) when
// the scratch, about 3 * width * n doubles, cannot be allocated. Every row
// must lie in [0, n). width < 1 selects the default block width.
int PackedSweepRows(double* a, int n, const int* rows, int count, SweepPivotRule& rule);
int PackedSweepRowsWithBlock(double* a, int n, const int* rows, int count,
                             SweepPivotRule& rule, int width);

// Inverse of a lower-triangular factor in place. A zero diagonal element
// marks a redundant row: its row and column of the result are 0 (the
// generalised inverse of the full-rank part). Returns the number of such
// rows. The fast form allocates one row of scratch and runs the plain loop
// if it cannot.
int PackedLowerInversePlain(double* a, int n);
int PackedLowerInverse(double* a, int n);

// The stored lower triangle M replaced by the lower triangle of M'M.
void PackedLowerTransLowerPlain(double* a, int n);
void PackedLowerTransLower(double* a, int n);

// The stored lower triangle M replaced by the lower triangle of M M'.
void PackedLowerLowerTrans(double* a, int n);

}  // namespace internal
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_PACKED_KXPACKEDFACTORKERNELS_H
