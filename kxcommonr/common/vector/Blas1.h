// kxcommonr/common/vector/Blas1.h
//
// Blas1: the level-1 Basic Linear Algebra Subprograms on raw arrays of doubles,
// with the scalar helpers and the argument reporter that the library's dense
// routines share. Semantics are those of the reference level-1 BLAS: element k
// of a vector is x[k * inc]; indices returned are 1-based (IDAMax); where a
// routine accepts a negative stride the walk starts at element (1 - n) * inc
// and moves towards x[0]. The pointers address the first element in memory.
//
// Results: DDot and DASum add in index order with one accumulator, and DNrm2
// keeps the classic scaled sum of squares (the reference dnrm2 up to LAPACK
// 3.9; later releases use another algorithm), so results are bit-identical to
// the classic routines (DNrm2 returns +inf rather than NaN for a vector
// holding two infinities). The elementwise kernels run vectorised on unit strides,
// with identical results on every processor.
//
// Failures: the kernels validate only the count (and the stride where stated)
// and return quietly. DMach with an unknown job, and XErBla itself, end the
// process (deliberately fatal, like the reference reporter).
//
// All static and pure apart from the output arrays; calls on disjoint data may
// run concurrently. No kernel allocates. Read-only arrays are taken as
// const double*, so both const and mutable arrays can be passed.
#ifndef KXCOMMONR_COMMON_VECTOR_BLAS1_H
#define KXCOMMONR_COMMON_VECTOR_BLAS1_H

#include "kxcommonr/config.h"

namespace KXCommon {

class KXCOMMONR_API Blas1 {
 public:
  // |x| as x when x >= 0, else -x (so -0.0 stays -0.0 and NaN stays NaN).
  static double D_Abs(double x);
  // a when a > b, else b.
  static double D_Max(double a, double b);
  // -1.0 when x < 0, else 1.0 (zero of either sign gives 1.0). One argument:
  // a sign function, not the two-argument sign transfer.
  static double D_Sign(double x);
  static int I_Max(int a, int b);
  static int I_Min(int a, int b);

  // sum |x_k| in index order over x[0], x[|inc|], ... (the stride is taken
  // as positive: no reverse-start rule, nothing before x is read). 0 for
  // n < 1.
  static double DASum(int n, const double* x, int inc);
  // y += a * x. Nothing when n < 1 or a == 0. Negative strides supported.
  static void Daxpy(int n, double a, const double* x, int incx, double* y,
                    int incy);
  // y = x, element by element in walk order. Nothing when n < 1. Negative
  // strides supported.
  static void DCopy(int n, const double* x, int incx, double* y, int incy);
  // sum x_k * y_k in index order. 0 for n < 1. Negative strides supported.
  static double DDot(int n, const double* x, int incx, const double* y,
                     int incy);
  // Euclidean norm by the scaled sum of squares (never overflows or
  // underflows for representable inputs), bit for bit the classic
  // sequential algorithm. 0 when n < 1 or inc < 1; |x[0]| when n == 1. NaN
  // when an element is NaN; otherwise +inf when an element is infinite
  // (where the classic algorithm would give NaN for a second infinity).
  static double DNrm2(int n, const double* x, int inc);
  // Plane rotation: x_k' = c x_k + s y_k, y_k' = c y_k - s x_k. Nothing when
  // n < 1. Negative strides supported.
  static void DRot(int n, double* x, int incx, double* y, int incy, double c,
                   double s);
  // Constructs a Givens rotation from (a, b): on return *a holds r, *b holds
  // z, and *c, *s the rotation. For finite a and b whose |a| + |b| overflows
  // (two missing values, say) the rotation is still exact to rounding and r
  // is +-infinity when sqrt(a^2 + b^2) is beyond the double range; a NaN or
  // infinite argument gives NaN.
  static void DRotG(double* a, double* b, double* c, double* s);
  // x *= a. Nothing when n < 1 or inc < 1.
  static void DScal(int n, double a, double* x, int inc);
  // Exchanges x and y. Nothing when n < 1. Negative strides supported.
  static void DSwap(int n, double* x, int incx, double* y, int incy);
  // 1-based position of the first element of largest |x_k| (strict >, so
  // ties go to the earliest and NaNs never win). 0 when n < 1 or inc < 1.
  static int IDAMax(int n, const double* x, int inc);

  // Case-insensitive equality of ASCII letters; other characters compare
  // exactly.
  static bool LSame(char a, char b);
  // Machine constants, computed at each call: job 1 the relative precision
  // eps = 2^-52, job 2 the safe minimum tiny = 8.900295434028806e-306, job 3
  // huge = 1 / tiny. Any other job calls XErBla("DMACH", 1): the process
  // ends.
  static double DMach(int job);
  // Writes the fatal argument report to standard output:
  //   "\nXERBLA - Fatal error!\n  On entry to routine <routine>\n"
  //   "  input parameter number <param> had an illegal value.\n"
  // and ends the process with exit status 1. Never returns.
  [[noreturn]] static void XErBla(const char* routine, int param);
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_VECTOR_BLAS1_H
