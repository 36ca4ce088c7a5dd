// kxcommonr/common/packed/KXPackedLayout.h
//
// The layout of a packed lower triangle, the storage of every symmetric and
// lower-triangular matrix in this library: the lower triangle row by row,
// element (i, j) with 0 <= j <= i at position i*(i+1)/2 + j. Row i starts at
// i*(i+1)/2 and ends with its diagonal at i*(i+3)/2; a triangle of order n
// holds n*(n+1)/2 elements.
//
// This header is the one place where that arithmetic is written; everything
// else (KXSymMatrixData::PackedIndex, the kernels, the display of a triangle)
// calls these functions. Offsets are computed in 64 bits (std::size_t)
// whatever the type of the indices, so orders from 65536 up, whose offsets
// pass 2^31, address correctly.
//
// Example: the full square of a 3 x 3 triangle, and one element.
//   const double packed[6] = {a00, a10, a11, a20, a21, a22};
//   double square[9];
//   KXPacked::ToSquare(packed, 3, square);   // square[1] == square[3] == a10
//   double a21 = packed[KXPacked::Index(2, 1)];
//
// Thread rule: pure functions of their arguments.
#ifndef KXCOMMONR_COMMON_PACKED_KXPACKEDLAYOUT_H
#define KXCOMMONR_COMMON_PACKED_KXPACKEDLAYOUT_H

#include <cstddef>
#include <cstdint>

namespace KXCommon {
namespace KXPacked {

// Position of the first element of row i, i >= 0.
constexpr std::size_t RowStart(std::int64_t i) {
  return static_cast<std::size_t>(i) * (static_cast<std::size_t>(i) + 1) / 2;
}

// Position of element (i, j). REQUIRES: 0 <= j <= i.
constexpr std::size_t Index(std::int64_t i, std::int64_t j) {
  return RowStart(i) + static_cast<std::size_t>(j);
}

// Position of element (i, j) of a symmetric matrix, either order of i and j
// (that of the element in the lower triangle). REQUIRES: i, j >= 0.
constexpr std::size_t SymIndex(std::int64_t i, std::int64_t j) {
  return i >= j ? Index(i, j) : Index(j, i);
}

// Number of elements of a triangle of order n; 0 for n <= 0.
constexpr std::size_t Size(std::int64_t n) { return n <= 0 ? 0 : RowStart(n); }

// Writes the full symmetric matrix of order n whose lower triangle packed
// holds into square, row-major: square[i*n + j] = square[j*n + i] = element
// (i, j). REQUIRES: packed holds Size(n) elements, square n*n, and the two
// do not overlap. Nothing happens for n <= 0.
inline void ToSquare(const double* packed, std::int64_t n, double* square) {
  const std::size_t order = n <= 0 ? 0 : static_cast<std::size_t>(n);
  std::size_t k = 0;
  for (std::size_t i = 0; i < order; ++i) {
    for (std::size_t j = 0; j <= i; ++j, ++k) {
      square[i * order + j] = packed[k];
      square[j * order + i] = packed[k];
    }
  }
}

}  // namespace KXPacked
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_PACKED_KXPACKEDLAYOUT_H
