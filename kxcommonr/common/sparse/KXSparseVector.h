// kxcommonr/common/sparse/KXSparseVector.h
//
// KXSparseVector: a vector of a given dimension that stores only its
// non-zero entries, as ascending, unique indices with their values - the
// shape of a case whose categorical predictors are dummy coded (one 1 among
// many zeros per factor). Inner products touch only the stored entries, and
// UpdateXX adds w x x' to a KXSymMatrix touching only the pairs of stored
// entries.
//
//   KXSparseVector x(70);
//   x.Append(3, 1.25);      // ascending indices, built without sorting
//   x.Append(41, 1.0);
//   x.UpdateXX(sscp, weight);   // sscp a KXSymMatrix of order 70
//
// An entry set to zero is removed; a NaN is stored (it is not zero).
// Failures are reported by the result: false for a refused change (the
// vector unchanged), the system-missing value for a product that cannot be
// formed.
//
// A plain value; thread-compatible.
#ifndef KXCOMMONR_COMMON_SPARSE_KXSPARSEVECTOR_H
#define KXCOMMONR_COMMON_SPARSE_KXSPARSEVECTOR_H

#include <string>
#include <utility>
#include <vector>

#include "kxcommonr/common/symmatrix/KXSymMatrix.h"
#include "kxcommonr/config.h"

namespace KXCommon {

class KXCOMMONR_API KXSparseVector {
 public:
  // The zero vector of dimension 0.
  KXSparseVector() = default;
  // The zero vector of `dimension` (negative taken as 0).
  explicit KXSparseVector(int dimension);
  // The non-zero entries of `dense`.
  static KXSparseVector FromDense(const std::vector<double>& dense);

  // Replaces the contents by (index, value) pairs in any order, zeros
  // dropped. False, the vector unchanged, when dimension < 0, an index is
  // outside 0..dimension-1 or appears twice.
  bool Assign(int dimension, const std::vector<std::pair<int, double>>& pairs);
  // Adds an entry after the last one: false (unchanged) when index is not
  // above the last stored index or outside the dimension. A zero value is
  // accepted and not stored.
  bool Append(int index, double value);
  // Sets entry `index` (a zero removes it). False when out of range.
  bool Set(int index, double value);
  // The zero vector of `dimension` (storage kept for reuse; negative as 0).
  void Reset(int dimension);

  int Dimension() const { return fiDimension; }
  int NonZeros() const { return static_cast<int>(fvIndices.size()); }
  const std::vector<int>& Indices() const { return fvIndices; }
  const std::vector<double>& Values() const { return fvValues; }
  // Entry `index`: 0 when not stored, the missing value out of range.
  double Get(int index) const;
  std::vector<double> ToDense() const;

  // Inner products, summed in ascending index order. The missing value when
  // the dimensions differ.
  double Dot(const std::vector<double>& dense) const;
  double Dot(const KXSparseVector& other) const;
  // Adds w x x' to the lower triangle of `sscp` for the stored pairs only.
  // False (nothing added) when the order of sscp is not the dimension or w
  // is not positive.
  bool UpdateXX(KXSymMatrix& sscp, double w) const;

  // "name (dimension = d, non-zeros = k)", then the indices and the values
  // as DisplayIV and DisplayDV print them.
  void Display(const std::string& name) const;

  friend bool operator==(const KXSparseVector& a, const KXSparseVector& b) {
    return a.fiDimension == b.fiDimension && a.fvIndices == b.fvIndices && a.fvValues == b.fvValues;
  }

 private:
  int fiDimension = 0;
  std::vector<int> fvIndices;     // ascending, unique
  std::vector<double> fvValues;   // non-zero
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_SPARSE_KXSPARSEVECTOR_H
