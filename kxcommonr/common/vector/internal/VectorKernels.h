// kxcommonr/common/vector/internal/VectorKernels.h  (internal, not installed)
//
// The level-1 kernels behind Blas1 and the KXMathFun vector helpers. Each
// kernel walks its arrays literally: element k of x is x[k * incx], whatever
// the sign of the stride; callers that follow the reverse-start rule for
// negative strides pass the pointer of the walk's first element. Counts and
// strides are 64-bit so that no offset overflows.
//
// Summations (SumAbs, Sum, Dot, the scaled norm) keep one accumulator added in
// index order, so their results are bit-identical to a plain loop. The
// elementwise kernels and the maximum search are vectorised on unit strides
// and give the same results on every instruction-set path.
//
// No kernel allocates. Pure apart from the output arrays.
#ifndef KXCOMMONR_COMMON_VECTOR_INTERNAL_VECTORKERNELS_H
#define KXCOMMONR_COMMON_VECTOR_INTERNAL_VECTORKERNELS_H

#include <cstddef>

namespace KXCommon {
namespace internal {

// sum |x_k|, in index order. 0 for n < 1.
double SumAbs(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx);
// sum x_k, in index order. 0 for n < 1.
double Sum(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx);
// sum x_k * y_k, in index order. 0 for n < 1.
double Dot(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx,
           const double* y, std::ptrdiff_t incy);
// The scaled Euclidean norm over all n elements (zeros skipped, a NaN counts
// as non-zero): scale * sqrt(ssq), bit for bit the sequential algorithm,
// except that an infinity after the scale has become infinite is skipped
// (so the norm is +inf, or NaN when a NaN is present). 0 for n < 1.
double ScaledNorm(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx);
// y_k += a * x_k.
void Axpy(std::ptrdiff_t n, double a, const double* x, std::ptrdiff_t incx,
          double* y, std::ptrdiff_t incy);
// x_k *= a.
void Scale(std::ptrdiff_t n, double a, double* x, std::ptrdiff_t incx);
// x_k = -x_k.
void Negate(std::ptrdiff_t n, double* x, std::ptrdiff_t incx);
// x_k = a.
void Fill(std::ptrdiff_t n, double a, double* x, std::ptrdiff_t incx);
// y_k = x_k, in index order (forward).
void Copy(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx, double* y,
          std::ptrdiff_t incy);
// exchanges x_k and y_k.
void Swap(std::ptrdiff_t n, double* x, std::ptrdiff_t incx, double* y,
          std::ptrdiff_t incy);
// x_k' = c x_k + s y_k, y_k' = c y_k - s x_k.
void Rotate(std::ptrdiff_t n, double* x, std::ptrdiff_t incx, double* y,
            std::ptrdiff_t incy, double c, double s);
// 0-based index of the first k whose |x_k| exceeds every earlier one with a
// strict greater-than test starting from |x_0| (so NaNs never win, and a NaN
// at x_0 keeps index 0). -1 for n < 1.
std::ptrdiff_t FirstAbsMax(std::ptrdiff_t n, const double* x,
                           std::ptrdiff_t incx);

}  // namespace internal
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_VECTOR_INTERNAL_VECTORKERNELS_H
