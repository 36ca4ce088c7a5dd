// kxcommonr/testing/SymMatrixTestUtil.h
//
// Test helpers for the packed symmetric matrices: the dense matrices of
// DenseTestUtil.h loaded into and read out of a KXSymMatrix element by
// element, and a matrix given by its packed triangle.
#ifndef KXCOMMONR_TESTING_SYMMATRIXTESTUTIL_H
#define KXCOMMONR_TESTING_SYMMATRIXTESTUTIL_H

#include <cstddef>
#include <vector>

#include "kxcommonr/common/symmatrix/KXSymMatrix.h"
#include "kxcommonr/testing/DenseTestUtil.h"

namespace kxtesting {

// Loads a dense symmetric matrix through SetElem (the upper triangle, so the
// mirror rule of the setter is exercised).
inline KXCommon::KXSymMatrix ToSym(const Dense& d) {
  KXCommon::KXSymMatrix s(static_cast<int>(d.n));
  for (std::size_t i = 0; i < d.n; ++i)
    for (std::size_t j = i; j < d.n; ++j) s.SetElem(static_cast<int>(i), static_cast<int>(j), d(i, j));
  return s;
}

// Dense copy read through GetElem: the whole matrix, or only its lower
// triangle (a stored factor, zeros above the diagonal).
inline Dense ToDense(const KXCommon::KXSymMatrix& s, bool lowerOnly = false) {
  Dense d(static_cast<std::size_t>(s.GetNRows()));
  for (std::size_t i = 0; i < d.n; ++i)
    for (std::size_t j = 0; j <= (lowerOnly ? i : d.n - 1); ++j)
      d(i, j) = s.GetElem(static_cast<int>(i), static_cast<int>(j));
  return d;
}

// The matrix of order n whose packed lower triangle is given.
inline KXCommon::KXSymMatrix SymFromPacked(int n, const std::vector<double>& packed) {
  KXCommon::KXSymMatrix s(n);
  s.AsVector() = packed;
  return s;
}

}  // namespace kxtesting

#endif  // KXCOMMONR_TESTING_SYMMATRIXTESTUTIL_H
