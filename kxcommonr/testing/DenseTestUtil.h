// kxcommonr/testing/DenseTestUtil.h
//
// Test helpers for packed triangles and symmetric matrices, independent of
// the library: a plain dense square matrix to compute expected results with,
// seeded random fills, and a row-by-row walk between a dense matrix and its
// packed lower triangle that does not use the library's index helpers.
#ifndef KXCOMMONR_TESTING_DENSETESTUTIL_H
#define KXCOMMONR_TESTING_DENSETESTUTIL_H

#include <cmath>
#include <cstddef>
#include <cstring>
#include <random>
#include <vector>

namespace kxtesting {

// A dense row-major n x n matrix.
struct Dense {
  std::size_t n = 0;
  std::vector<double> a;
  explicit Dense(std::size_t order = 0) : n(order), a(order * order, 0.0) {}
  double& operator()(std::size_t i, std::size_t j) { return a[i * n + j]; }
  double operator()(std::size_t i, std::size_t j) const { return a[i * n + j]; }
};

// Same size and the same bits in every element (NaNs and signed zeros count).
inline bool Identical(const std::vector<double>& x, const std::vector<double>& y) {
  return x.size() == y.size() &&
         (x.empty() || std::memcmp(x.data(), y.data(), x.size() * sizeof(double)) == 0);
}

// Random symmetric dense matrix with entries in [-1, 1), a fixed seed.
inline Dense RandomSymmetric(std::size_t n, unsigned seed) {
  std::mt19937_64 engine(seed);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  Dense d(n);
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t j = 0; j <= i; ++j) d(i, j) = d(j, i) = uniform(engine);
  return d;
}

// Random vector in [-1, 1); about zeroShare of its elements are exactly 0.
inline std::vector<double> RandomVector(std::size_t n, unsigned seed, double zeroShare = 0.0) {
  std::mt19937_64 engine(seed);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  std::vector<double> v(n);
  for (double& x : v) x = (uniform(engine) + 1.0) / 2.0 < zeroShare ? 0.0 : uniform(engine);
  return v;
}

// Random positive definite matrix B B' / p + shift I, B of order n x (n + 3).
inline Dense RandomSpd(std::size_t n, unsigned seed, double shift = 0.1) {
  std::mt19937_64 engine(seed);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  const std::size_t p = n + 3;
  std::vector<double> b(n * p);
  for (double& x : b) x = uniform(engine);
  Dense a(n);
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t j = 0; j <= i; ++j) {
      double s = 0.0;
      for (std::size_t k = 0; k < p; ++k) s += b[i * p + k] * b[j * p + k];
      a(i, j) = a(j, i) = s / static_cast<double>(p) + (i == j ? shift : 0.0);
    }
  return a;
}

// Cross products X'X of 3p + 5 cases whose columns listed in `dependent`
// (each >= 1) are exact combinations of earlier columns (small integers, so
// every product is exact): those rows, and only those, depend on the rows
// before them.
inline Dense DependentCrossProducts(std::size_t p, const std::vector<std::size_t>& dependent,
                                    unsigned seed) {
  std::mt19937_64 engine(seed);
  std::uniform_int_distribution<int> digit(-4, 4);
  std::vector<double> row(p);
  Dense a(p);
  for (std::size_t c = 0; c < 3 * p + 5; ++c) {
    for (std::size_t j = 0; j < p; ++j) row[j] = digit(engine);
    for (std::size_t j : dependent) row[j] = row[j - 1] - 2.0 * row[j / 2];
    for (std::size_t i = 0; i < p; ++i)
      for (std::size_t j = 0; j < p; ++j) a(i, j) += row[i] * row[j];
  }
  return a;
}

// The Hilbert matrix 1 / (i + j + 1), famously ill conditioned; the identity.
inline Dense Hilbert(std::size_t n) {
  Dense h(n);
  for (std::size_t q = 0; q < n * n; ++q) h.a[q] = 1.0 / static_cast<double>(q / n + q % n + 1);
  return h;
}
inline Dense Identity(std::size_t n) {
  Dense e(n);
  for (std::size_t i = 0; i < n; ++i) e(i, i) = 1.0;
  return e;
}

inline std::vector<double> Diagonal(const Dense& a) {
  std::vector<double> d(a.n);
  for (std::size_t i = 0; i < a.n; ++i) d[i] = a(i, i);
  return d;
}

// Product in long double, rounded once per element.
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

inline Dense Transpose(const Dense& x) {
  Dense t(x.n);
  for (std::size_t q = 0; q < x.n * x.n; ++q) t.a[q] = x(q % x.n, q / x.n);
  return t;
}

// Largest absolute element; largest absolute difference (infinite for
// different orders).
inline double MaxAbs(const Dense& x) {
  double m = 0.0;
  for (double v : x.a) m = std::fmax(m, std::fabs(v));
  return m;
}
inline double MaxAbsDiff(const Dense& x, const Dense& y) {
  double worst = x.n == y.n ? 0.0 : INFINITY;
  for (std::size_t k = 0; k < x.a.size() && x.n == y.n; ++k)
    worst = std::fmax(worst, std::fabs(x.a[k] - y.a[k]));
  return worst;
}

// The lower triangle of d, row by row.
inline std::vector<double> ToPacked(const Dense& d) {
  std::vector<double> packed;
  for (std::size_t i = 0; i < d.n; ++i)
    for (std::size_t j = 0; j <= i; ++j) packed.push_back(d(i, j));
  return packed;
}

// The matrix of order n whose packed lower triangle is given: lower
// triangular (zeros above the diagonal), or symmetric.
inline Dense FromPacked(const std::vector<double>& packed, std::size_t n, bool symmetric) {
  Dense l(n);
  std::size_t k = 0;
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t j = 0; j <= i; ++j, ++k) {
      l(i, j) = packed[k];
      if (symmetric) l(j, i) = packed[k];
    }
  return l;
}

}  // namespace kxtesting

#endif  // KXCOMMONR_TESTING_DENSETESTUTIL_H
