// kxcommonr/testing/SymMatrixTestUtil.h
//
// Test helpers for the packed symmetric matrices: the dense matrices of
// DenseTestUtil.h loaded into and read out of a KXSymMatrix element by
// element.
#ifndef KXCOMMONR_TESTING_SYMMATRIXTESTUTIL_H
#define KXCOMMONR_TESTING_SYMMATRIXTESTUTIL_H

#include <cstddef>
#include <vector>

#include "kxcommonr/common/symmatrix/KXSymMatrix.h"
#include "kxcommonr/testing/DenseTestUtil.h"

namespace kxtesting {

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

// A matrix of order n holding the given packed lower triangle as it is.
inline KXCommon::KXSymMatrix FromPacked(int n, const std::vector<double>& packed) {
  KXCommon::KXSymMatrix s(n);
  s.AsVector() = packed;
  return s;
}

// The factor stored in a packed matrix as a dense lower-triangular matrix.
inline Dense LowerOf(const KXCommon::KXSymMatrix& s) {
  Dense l(static_cast<std::size_t>(s.GetNRows()));
  for (std::size_t i = 0; i < l.n; ++i)
    for (std::size_t j = 0; j <= i; ++j)
      l(i, j) = s.GetElem(static_cast<int>(i), static_cast<int>(j));
  return l;
}

}  // namespace kxtesting

#endif  // KXCOMMONR_TESTING_SYMMATRIXTESTUTIL_H
