#include "kxcommonr/common/vector/Blas1.h"

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <iostream>

#include "kxcommonr/common/vector/internal/VectorKernels.h"

namespace KXCommon {

namespace {

// The walk's first element under the reverse-start rule: x itself for a
// non-negative stride, x + (1 - n) * inc for a negative one.
template <typename T>
T* WalkStart(int n, T* x, int inc) {
  if (inc >= 0) return x;
  return x + (1 - static_cast<std::ptrdiff_t>(n)) * inc;
}

}  // namespace

double Blas1::D_Abs(double x) { return x >= 0 ? x : -x; }

double Blas1::D_Max(double a, double b) { return a > b ? a : b; }

double Blas1::D_Sign(double x) { return x < 0 ? -1.0 : 1.0; }

int Blas1::I_Max(int a, int b) { return a > b ? a : b; }

int Blas1::I_Min(int a, int b) { return a < b ? a : b; }

double Blas1::DASum(int n, const double* x, int inc) {
  if (n < 1) return 0.0;
  // The stride is taken as positive: a negative one walks forward by its
  // magnitude, so no element before x is ever read.
  const std::ptrdiff_t stride = inc < 0 ? -static_cast<std::ptrdiff_t>(inc) : inc;
  return internal::SumAbs(n, x, stride);
}

void Blas1::Daxpy(int n, double a, const double* x, int incx, double* y,
                  int incy) {
  if (n < 1 || a == 0) return;
  internal::Axpy(n, a, WalkStart(n, x, incx), incx, WalkStart(n, y, incy),
                 incy);
}

void Blas1::DCopy(int n, const double* x, int incx, double* y, int incy) {
  if (n < 1) return;
  internal::Copy(n, WalkStart(n, x, incx), incx, WalkStart(n, y, incy), incy);
}

double Blas1::DDot(int n, const double* x, int incx, const double* y,
                   int incy) {
  if (n < 1) return 0.0;
  return internal::Dot(n, WalkStart(n, x, incx), incx, WalkStart(n, y, incy),
                       incy);
}

double Blas1::DNrm2(int n, const double* x, int inc) {
  if (n < 1 || inc < 1) return 0.0;
  if (n == 1) return std::fabs(x[0]);
  return internal::ScaledNorm(n, x, inc);
}

void Blas1::DRot(int n, double* x, int incx, double* y, int incy, double c,
                 double s) {
  if (n < 1) return;
  internal::Rotate(n, WalkStart(n, x, incx), incx, WalkStart(n, y, incy), incy,
                   c, s);
}

void Blas1::DRotG(double* a, double* b, double* c, double* s) {
  const double roe = std::fabs(*b) > std::fabs(*a) ? *b : *a;
  const double scale = std::fabs(*a) + std::fabs(*b);
  double r;
  if (scale == 0) {
    *c = 1.0;
    *s = 0.0;
    r = 0.0;
  } else if (std::isinf(scale) && std::isfinite(*a) && std::isfinite(*b)) {
    // |a| + |b| overflows: scale by the larger instead, and take c and s
    // from the scaled values (r itself may be beyond the double range).
    const double larger = std::fmax(std::fabs(*a), std::fabs(*b));
    const double aScaled = *a / larger;
    const double bScaled = *b / larger;
    double rScaled = std::sqrt(aScaled * aScaled + bScaled * bScaled);
    if (roe < 0) rScaled = -rScaled;
    *c = aScaled / rScaled;
    *s = bScaled / rScaled;
    r = larger * rScaled;
  } else {
    const double aScaled = *a / scale;
    const double bScaled = *b / scale;
    r = scale * std::sqrt(aScaled * aScaled + bScaled * bScaled);
    if (roe < 0) r = -r;
    *c = *a / r;
    *s = *b / r;
  }
  // s is compared with its sign here, not |s|: kept as the classic code has
  // it.
  const double z = (std::fabs(*c) > 0 && *s >= std::fabs(*c)) ? 1.0 / *c : *s;
  *a = r;
  *b = z;
}

void Blas1::DScal(int n, double a, double* x, int inc) {
  if (n < 1 || inc < 1) return;
  internal::Scale(n, a, x, inc);
}

void Blas1::DSwap(int n, double* x, int incx, double* y, int incy) {
  if (n < 1) return;
  internal::Swap(n, WalkStart(n, x, incx), incx, WalkStart(n, y, incy), incy);
}

int Blas1::IDAMax(int n, const double* x, int inc) {
  if (n < 1 || inc < 1) return 0;
  if (n == 1) return 1;
  return static_cast<int>(internal::FirstAbsMax(n, x, inc)) + 1;
}

bool Blas1::LSame(char a, char b) {
  if (a == b) return true;
  const int difference = 'a' - 'A';
  if (a >= 'A' && a <= 'Z') return b == a + difference;
  if (a >= 'a' && a <= 'z') return b == a - difference;
  return false;
}

double Blas1::DMach(int job) {
  // Relative precision: halve while 1 + eps/2 is still distinguishable
  // from 1. volatile keeps each step in double precision.
  volatile double eps = 1.0;
  volatile double probe = 1.0 + eps / 2.0;
  while (probe > 1.0) {
    eps = eps / 2.0;
    probe = 1.0 + eps / 2.0;
  }
  // Smallest power of 16 that is not zero (gradual underflow: 2^-1072).
  volatile double smallest = 1.0;
  volatile double next = smallest / 16.0;
  while (next != 0.0) {
    smallest = next;
    next = smallest / 16.0;
  }
  const double tiny = (smallest / eps) * 100.0;
  switch (job) {
    case 1:
      return eps;
    case 2:
      return tiny;
    case 3:
      return 1.0 / tiny;
    default:
      XErBla("DMACH", 1);
  }
}

void Blas1::XErBla(const char* routine, int param) {
  std::cout << "\nXERBLA - Fatal error!\n"
            << "  On entry to routine " << (routine ? routine : "") << "\n"
            << "  input parameter number " << param
            << " had an illegal value.\n"
            << std::flush;
  std::exit(1);
}

}  // namespace KXCommon
