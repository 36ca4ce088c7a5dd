// kxcommonr/mtd/KXValueSet.h
//
// KXValueSet<T>: a small sorted set of values (the user-missing values of an
// encoder): Insert keeps the values ascending without repeats, Contains is a
// binary search that returns at once when the set is empty.
#ifndef KXCOMMONR_MTD_KXVALUESET_H
#define KXCOMMONR_MTD_KXVALUESET_H

#include <algorithm>
#include <vector>

#include "kxcommonr/config.h"

namespace KXMTD_NAMESPACE {

template <class T>
class KXValueSet {
 public:
  void Insert(const T& value) {
    const auto at = std::lower_bound(fvValues.begin(), fvValues.end(), value);
    if (at == fvValues.end() || *at != value) fvValues.insert(at, value);
  }
  bool Contains(const T& value) const {
    return !fvValues.empty() && std::binary_search(fvValues.begin(), fvValues.end(), value);
  }
  // The values, ascending.
  const std::vector<T>& Values() const { return fvValues; }
  void Clear() { fvValues.clear(); }
  friend bool operator==(const KXValueSet& a, const KXValueSet& b) {
    return a.fvValues == b.fvValues;
  }

 private:
  std::vector<T> fvValues;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXVALUESET_H
