// kxcommonr/testing/SymMatrixTestUtil.h
//
// Test helpers for the packed symmetric matrices: a plain dense square
// matrix to compute expected results independently of the packed code, and
// seeded random fills.
#ifndef KXCOMMONR_TESTING_SYMMATRIXTESTUTIL_H
#define KXCOMMONR_TESTING_SYMMATRIXTESTUTIL_H

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "kxcommonr/common/symmatrix/KXSymMatrix.h"

namespace kxtesting {

// A dense row-major n x n matrix.
struct Dense {
  std::size_t n = 0;
  std::vector<double> a;
  explicit Dense(std::size_t order = 0) : n(order), a(order * order, 0.0) {}
  double& operator()(std::size_t i, std::size_t j) { return a[i * n + j]; }
  double operator()(std::size_t i, std::size_t j) const { return a[i * n + j]; }
};

// Random symmetric dense matrix with entries in [-1, 1), a fixed seed.
inline Dense RandomSymmetric(std::size_t n, unsigned seed) {
  std::mt19937_64 engine(seed);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  Dense d(n);
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t j = 0; j <= i; ++j) d(i, j) = d(j, i) = uniform(engine);
  return d;
}

inline std::vector<double> RandomVector(std::size_t n, unsigned seed,
                                        double zeroShare = 0.0) {
  std::mt19937_64 engine(seed);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  std::vector<double> v(n);
  for (double& x : v) {
    const double u = uniform(engine);
    x = (u + 1.0) / 2.0 < zeroShare ? 0.0 : uniform(engine);
  }
  return v;
}

// Loads a dense symmetric matrix element by element through SetElem (the
// upper triangle, so the mirror rule of the setter is exercised).
inline KXCommon::KXSymMatrix ToSym(const Dense& d) {
  KXCommon::KXSymMatrix s(static_cast<int>(d.n));
  for (std::size_t i = 0; i < d.n; ++i)
    for (std::size_t j = i; j < d.n; ++j)
      s.SetElem(static_cast<int>(i), static_cast<int>(j), d(i, j));
  return s;
}

// Dense copy read element by element through GetElem.
inline Dense ToDense(const KXCommon::KXSymMatrix& s) {
  Dense d(static_cast<std::size_t>(s.GetNRows()));
  for (std::size_t i = 0; i < d.n; ++i)
    for (std::size_t j = 0; j < d.n; ++j)
      d(i, j) = s.GetElem(static_cast<int>(i), static_cast<int>(j));
  return d;
}

inline Dense Multiply(const Dense& x, const Dense& y) {
  Dense z(x.n);
  for (std::size_t i = 0; i < x.n; ++i)
    for (std::size_t j = 0; j < x.n; ++j) {
      long double sum = 0;
      for (std::size_t k = 0; k < x.n; ++k) sum += static_cast<long double>(x(i, k)) * y(k, j);
      z(i, j) = static_cast<double>(sum);
    }
  return z;
}

// The factor stored in a packed matrix as a dense lower-triangular matrix.
inline Dense LowerOf(const KXCommon::KXSymMatrix& s) {
  Dense l(static_cast<std::size_t>(s.GetNRows()));
  for (std::size_t i = 0; i < l.n; ++i)
    for (std::size_t j = 0; j <= i; ++j)
      l(i, j) = s.GetElem(static_cast<int>(i), static_cast<int>(j));
  return l;
}

inline Dense Transpose(const Dense& x) {
  Dense t(x.n);
  for (std::size_t i = 0; i < x.n; ++i)
    for (std::size_t j = 0; j < x.n; ++j) t(i, j) = x(j, i);
  return t;
}

// Largest absolute elementwise difference.
inline double MaxAbsDiff(const Dense& x, const Dense& y) {
  double worst = x.n == y.n ? 0.0 : INFINITY;
  for (std::size_t k = 0; k < x.a.size() && x.n == y.n; ++k)
    worst = std::fmax(worst, std::fabs(x.a[k] - y.a[k]));
  return worst;
}

}  // namespace kxtesting

#endif  // KXCOMMONR_TESTING_SYMMATRIXTESTUTIL_H
