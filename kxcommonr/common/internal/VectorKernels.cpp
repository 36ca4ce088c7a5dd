#include "kxcommonr/common/internal/VectorKernels.h"

#include <cmath>

// Runtime dispatch of the unit-stride paths to wide vector units: the loader
// picks the AVX-512, AVX2 or baseline clone once, inside one portable binary.
// Only elementwise work and exact maxima are vectorised, so every clone gives
// the same bits. Other compilers and platforms compile the plain loops.
#if defined(__GNUC__) && defined(__x86_64__) && defined(__linux__) && \
    !defined(KXCOMMONR_NO_DISPATCH)
#define KX_DISPATCH __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define KX_DISPATCH
#endif

namespace KXCommon {
namespace internal {

namespace {

// Elements scanned per block by the vectorised maximum searches: small enough
// to be re-read from the first-level cache.
constexpr std::ptrdiff_t kMaxBlock = 1024;
// Independent running maxima, enough to hide the compare latency.
constexpr int kMaxLanes = 32;
// Elements per block of the scaled norm.
constexpr std::ptrdiff_t kNormBlock = 64;

KX_DISPATCH std::ptrdiff_t FirstAbsMaxUnit(std::ptrdiff_t n, const double* x) {
  double best = std::fabs(x[0]);
  std::ptrdiff_t bestIndex = 0;
  if (std::isnan(best)) return 0;  // nothing compares greater than a NaN
  std::ptrdiff_t start = 1;
  while (start < n) {
    const std::ptrdiff_t length = n - start < kMaxBlock ? n - start : kMaxBlock;
    const double* block = x + start;
    // Largest non-NaN magnitude in the block (a NaN never wins a > test).
    double lanes[kMaxLanes];
    for (int l = 0; l < kMaxLanes; ++l) lanes[l] = -1.0;
    std::ptrdiff_t j = 0;
    for (; j + kMaxLanes <= length; j += kMaxLanes) {
      for (int l = 0; l < kMaxLanes; ++l) {
        const double magnitude = std::fabs(block[j + l]);
        lanes[l] = magnitude > lanes[l] ? magnitude : lanes[l];
      }
    }
    for (; j < length; ++j) {
      const double magnitude = std::fabs(block[j]);
      lanes[0] = magnitude > lanes[0] ? magnitude : lanes[0];
    }
    double blockMax = lanes[0];
    for (int l = 1; l < kMaxLanes; ++l) {
      blockMax = lanes[l] > blockMax ? lanes[l] : blockMax;
    }
    // The sequential search would end this block at the first element equal
    // to the block's maximum, if that maximum beats the running one.
    if (blockMax > best) {
      for (j = 0; std::fabs(block[j]) != blockMax; ++j) {
      }
      best = blockMax;
      bestIndex = start + j;
    }
    start += length;
  }
  return bestIndex;
}

KX_DISPATCH double ScaledNormUnit(std::ptrdiff_t n, const double* x) {
  double scale = 0.0;
  double ssq = 1.0;
  std::ptrdiff_t k = 0;
  // One element of the sequential algorithm.
#define KX_NORM_STEP(value)                     \
  do {                                          \
    const double element = (value);             \
    if (element != 0.0) {                       \
      const double magnitude = std::fabs(element); \
      if (magnitude > scale) {                  \
        const double ratio = scale / magnitude; \
        ssq = 1.0 + ssq * (ratio * ratio);      \
        scale = magnitude;                      \
      } else {                                  \
        const double ratio = magnitude / scale; \
        ssq += ratio * ratio;                   \
      }                                         \
    }                                           \
  } while (0)
  // Until a positive scale exists the divisions below are not defined.
  for (; k < n && !(scale > 0.0); ++k) KX_NORM_STEP(x[k]);
  double squares[kNormBlock];
  while (k < n) {
    const std::ptrdiff_t length = n - k < kNormBlock ? n - k : kNormBlock;
    const double* block = x + k;
    // Largest non-NaN magnitude of the block, over independent lanes.
    double lanes[8] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
    std::ptrdiff_t j = 0;
    for (; j + 8 <= length; j += 8) {
      for (int l = 0; l < 8; ++l) {
        const double magnitude = std::fabs(block[j + l]);
        lanes[l] = magnitude > lanes[l] ? magnitude : lanes[l];
      }
    }
    for (; j < length; ++j) {
      const double magnitude = std::fabs(block[j]);
      lanes[0] = magnitude > lanes[0] ? magnitude : lanes[0];
    }
    double blockMax = lanes[0];
    for (int l = 1; l < 8; ++l) {
      blockMax = lanes[l] > blockMax ? lanes[l] : blockMax;
    }
    if (blockMax > scale) {
      for (std::ptrdiff_t j = 0; j < length; ++j) KX_NORM_STEP(block[j]);
    } else {
      // No element raises the scale: every term is (|x|/scale)^2, computed
      // side by side, then added in index order. A zero adds exactly 0 to
      // ssq (>= 1 or NaN), as skipping it would.
      for (std::ptrdiff_t j = 0; j < length; ++j) {
        const double ratio = std::fabs(block[j]) / scale;
        squares[j] = ratio * ratio;
      }
      for (std::ptrdiff_t j = 0; j < length; ++j) ssq += squares[j];
    }
    k += length;
  }
#undef KX_NORM_STEP
  return scale * std::sqrt(ssq);
}

KX_DISPATCH void AxpyUnit(std::ptrdiff_t n, double a, const double* x,
                          double* y) {
  for (std::ptrdiff_t k = 0; k < n; ++k) y[k] += a * x[k];
}

KX_DISPATCH void ScaleUnit(std::ptrdiff_t n, double a, double* x) {
  for (std::ptrdiff_t k = 0; k < n; ++k) x[k] *= a;
}

KX_DISPATCH void CopyUnit(std::ptrdiff_t n, const double* x, double* y) {
  for (std::ptrdiff_t k = 0; k < n; ++k) y[k] = x[k];
}

KX_DISPATCH void SwapUnit(std::ptrdiff_t n, double* x, double* y) {
  for (std::ptrdiff_t k = 0; k < n; ++k) {
    const double held = x[k];
    x[k] = y[k];
    y[k] = held;
  }
}

KX_DISPATCH void RotateUnit(std::ptrdiff_t n, double* x, double* y, double c,
                            double s) {
  for (std::ptrdiff_t k = 0; k < n; ++k) {
    const double xk = x[k];
    const double yk = y[k];
    x[k] = c * xk + s * yk;
    y[k] = c * yk - s * xk;
  }
}

}  // namespace

double SumAbs(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx) {
  double sum = 0.0;
  if (incx == 1) {
    for (std::ptrdiff_t k = 0; k < n; ++k) sum += std::fabs(x[k]);
  } else {
    for (std::ptrdiff_t k = 0; k < n; ++k) sum += std::fabs(x[k * incx]);
  }
  return sum;
}

double Sum(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx) {
  double sum = 0.0;
  if (incx == 1) {
    for (std::ptrdiff_t k = 0; k < n; ++k) sum += x[k];
  } else {
    for (std::ptrdiff_t k = 0; k < n; ++k) sum += x[k * incx];
  }
  return sum;
}

double Dot(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx,
           const double* y, std::ptrdiff_t incy) {
  double sum = 0.0;
  if (incx == 1 && incy == 1) {
    for (std::ptrdiff_t k = 0; k < n; ++k) sum += x[k] * y[k];
  } else {
    for (std::ptrdiff_t k = 0; k < n; ++k) sum += x[k * incx] * y[k * incy];
  }
  return sum;
}

double ScaledNorm(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx) {
  if (n < 1) return 0.0;
  if (incx == 1) return ScaledNormUnit(n, x);
  double scale = 0.0;
  double ssq = 1.0;
  for (std::ptrdiff_t k = 0; k < n; ++k) {
    const double element = x[k * incx];
    if (element == 0.0) continue;
    const double magnitude = std::fabs(element);
    if (magnitude > scale) {
      const double ratio = scale / magnitude;
      ssq = 1.0 + ssq * (ratio * ratio);
      scale = magnitude;
    } else {
      const double ratio = magnitude / scale;
      ssq += ratio * ratio;
    }
  }
  return scale * std::sqrt(ssq);
}

void Axpy(std::ptrdiff_t n, double a, const double* x, std::ptrdiff_t incx,
          double* y, std::ptrdiff_t incy) {
  if (n < 1) return;
  if (incx == 1 && incy == 1) {
    AxpyUnit(n, a, x, y);
    return;
  }
  for (std::ptrdiff_t k = 0; k < n; ++k) y[k * incy] += a * x[k * incx];
}

void Scale(std::ptrdiff_t n, double a, double* x, std::ptrdiff_t incx) {
  if (n < 1) return;
  if (incx == 1) {
    ScaleUnit(n, a, x);
    return;
  }
  for (std::ptrdiff_t k = 0; k < n; ++k) x[k * incx] *= a;
}

void Negate(std::ptrdiff_t n, double* x, std::ptrdiff_t incx) {
  for (std::ptrdiff_t k = 0; k < n; ++k) x[k * incx] = -x[k * incx];
}

void Fill(std::ptrdiff_t n, double a, double* x, std::ptrdiff_t incx) {
  for (std::ptrdiff_t k = 0; k < n; ++k) x[k * incx] = a;
}

void Copy(std::ptrdiff_t n, const double* x, std::ptrdiff_t incx, double* y,
          std::ptrdiff_t incy) {
  if (n < 1) return;
  if (incx == 1 && incy == 1) {
    CopyUnit(n, x, y);
    return;
  }
  for (std::ptrdiff_t k = 0; k < n; ++k) y[k * incy] = x[k * incx];
}

void Swap(std::ptrdiff_t n, double* x, std::ptrdiff_t incx, double* y,
          std::ptrdiff_t incy) {
  if (n < 1) return;
  if (incx == 1 && incy == 1) {
    SwapUnit(n, x, y);
    return;
  }
  for (std::ptrdiff_t k = 0; k < n; ++k) {
    const double held = x[k * incx];
    x[k * incx] = y[k * incy];
    y[k * incy] = held;
  }
}

void Rotate(std::ptrdiff_t n, double* x, std::ptrdiff_t incx, double* y,
            std::ptrdiff_t incy, double c, double s) {
  if (n < 1) return;
  if (incx == 1 && incy == 1) {
    RotateUnit(n, x, y, c, s);
    return;
  }
  for (std::ptrdiff_t k = 0; k < n; ++k) {
    const double xk = x[k * incx];
    const double yk = y[k * incy];
    x[k * incx] = c * xk + s * yk;
    y[k * incy] = c * yk - s * xk;
  }
}

std::ptrdiff_t FirstAbsMax(std::ptrdiff_t n, const double* x,
                           std::ptrdiff_t incx) {
  if (n < 1) return -1;
  if (incx == 1) return FirstAbsMaxUnit(n, x);
  double best = std::fabs(x[0]);
  std::ptrdiff_t bestIndex = 0;
  for (std::ptrdiff_t k = 1; k < n; ++k) {
    const double magnitude = std::fabs(x[k * incx]);
    if (magnitude > best) {
      best = magnitude;
      bestIndex = k;
    }
  }
  return bestIndex;
}

}  // namespace internal
}  // namespace KXCommon
