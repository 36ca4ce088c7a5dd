// kxcommonr/common/vector/KXMathFun.h
//
// KXMathFun: the vector helpers of the library over std::vector<double> with
// an explicit starting offset ("off", the index of the first element) and a
// stride ("inc"): the level-1 kernels, kernels that walk down a column of a
// packed triangular matrix (the "II" kernels, whose step grows by one after
// each element), quadratic forms on packed symmetric storage, difference
// norms and an interval search on sorted cut points.
//
// Packed symmetric storage: the lower triangle row by row, element (i, j),
// j <= i, at i*(i+1)/2 + j. Negative strides start the walk at
// off - (n-1)*inc and move towards off, where a helper accepts them.
//
// Results: sums add in index order with one accumulator, bit-identical to the
// classic routines. Arguments are validated: helpers that produce a value
// return 0 or the missing value (KXMV::Missing()) as each states, and a walk
// that would leave its vector makes a value helper return the missing value
// and a modifying helper change nothing. Nothing throws or allocates.
//
// All static and pure apart from the output vectors; calls on disjoint data
// may run concurrently.
#ifndef KXCOMMONR_COMMON_VECTOR_KXMATHFUN_H
#define KXCOMMONR_COMMON_VECTOR_KXMATHFUN_H

#include <vector>

#include "kxcommonr/config.h"

namespace KXCommon {

class KXCOMMONR_API KXMathFun {
 public:
  // sum |x| over n elements. 0 when n < 1 or x is empty.
  static double DASum(int n, const std::vector<double>& x, int off, int inc);
  // y += a * x. Nothing when n < 1 or a == 0.
  static void Daxpy(int n, double a, const std::vector<double>& x, int offx,
                    int incx, std::vector<double>& y, int offy, int incy);
  // The dot product. 0 when n < 1.
  static double DDot(int n, const std::vector<double>& x, int offx, int incx,
                     const std::vector<double>& y, int offy, int incy);
  // Sets n elements to a. Nothing when n < 1, off < 0 or (n-1)*inc + 1 < 1.
  static void DLoad(int n, double a, std::vector<double>& x, int off, int inc);
  // Euclidean norm by the scaled sum of squares, the same kernel and bits
  // as Blas1::DNrm2 (NaN when an element is NaN, else +inf when one is
  // infinite). 0 when n < 1 or (n-1)*inc + 1 < 1; |x[off]| when n == 1.
  static double DNrm2(int n, const std::vector<double>& x, int off, int inc);
  // x *= a: a == 1 does nothing, a == -1 negates. Nothing when n < 1 or
  // (n-1)*inc + 1 < 1.
  static void DScal(int n, double a, std::vector<double>& x, int off, int inc);
  // Plain sum of x[0], x[inc], ... 0 when n < 1; n * x[0] when inc == 0; and
  // 0.0 for a negative inc with n > 1 (the walk's start lies beyond its end:
  // kept deliberately as the defined result).
  static double DSum(int n, const std::vector<double>& x, int inc);

  // The "II" walks visit p_0 = off, p_(k+1) = p_k + inc + k: down a column of
  // a packed triangle when inc is the starting row.
  // Sets the n visited elements to a.
  static void IIInit(int n, double a, std::vector<double>& x, int off, int inc);
  // Multiplies the n visited elements by a.
  static void IIScal(int n, double a, std::vector<double>& x, int off, int inc);
  // y(p_k) += a * x(q_k) over the two growing walks.
  static void IIAxpy(int n, double a, const std::vector<double>& x, int offx,
                     int incx, std::vector<double>& y, int offy, int incy);
  // sum x(q_k) * y(p_k) over the two growing walks. 0 when n < 1.
  static double IIDot(int n, const std::vector<double>& x, int offx, int incx,
                      const std::vector<double>& y, int offy, int incy);

  // Row `row` of the n x n packed symmetric S times x (x[0], x[inc], ...):
  // along the stored row for columns 0..row, then down the column. The
  // missing value when n < 1, row is outside 0..n-1, S is shorter than
  // n(n+1)/2 or the walk over x leaves x.
  static double RVD(const std::vector<double>& S, int n, int row,
                    const std::vector<double>& x, int inc);
  // The quadratic form x'Sx with S packed. 0 when n == 0; the missing value
  // when n < 0, x has fewer than n elements or S fewer than n(n+1)/2.
  static double VSV(const std::vector<double>& S, int n,
                    const std::vector<double>& x);
  // max |a_k - b_k| / (|b_k| + t) over k < min(sizes), t = |tol|, or 1e-6
  // when tol == 0. 0 for empty vectors.
  static double VMaxRelDiff(const std::vector<double>& a,
                            const std::vector<double>& b, double tol);
  // Despite its name, the largest absolute difference max |a_k - b_k| over
  // k < min(sizes); 0 when that length is 0.
  static double VNrm1Diff(const std::vector<double>& a,
                          const std::vector<double>& b);

  // Interval search: v[lo..hi] are ascending cut points; returns k in lo..hi
  // with x in (v[k-1], v[k]] (or [v[k-1], v[k]) when rightOpen), the lower
  // bound open-ended for k == lo == 0. Returns -1 when x lies above the last
  // or below the first interval, and -2 when lo < 0, lo > hi or
  // hi >= v.size(). With repeated cut points the match found by bisection is
  // returned, not necessarily the first or last of the run.
  static int BinSearch(const std::vector<double>& v, int lo, int hi, double x,
                       bool rightOpen);
  static int BinSearch(const std::vector<int>& v, int lo, int hi, int x,
                       bool rightOpen);

  // True when -DBL_MAX <= x <= DBL_MAX: false for infinities and NaN, true
  // for the missing value itself.
  static bool IsValidDouble(double x);
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_VECTOR_KXMATHFUN_H
