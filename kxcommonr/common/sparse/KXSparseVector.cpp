#include "kxcommonr/common/sparse/KXSparseVector.h"

#include <algorithm>

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/common/foundation/KXMV.h"

namespace KXCommon {

KXSparseVector::KXSparseVector(int dimension) : fiDimension(dimension > 0 ? dimension : 0) {}

KXSparseVector KXSparseVector::FromDense(const std::vector<double>& dense) {
  KXSparseVector x(static_cast<int>(dense.size()));
  for (std::size_t i = 0; i < dense.size(); ++i) x.Append(static_cast<int>(i), dense[i]);
  return x;
}

bool KXSparseVector::Assign(int dimension, const std::vector<std::pair<int, double>>& pairs) {
  if (dimension < 0) return false;
  std::vector<std::pair<int, double>> sorted(pairs);
  std::sort(sorted.begin(), sorted.end(),
            [](const std::pair<int, double>& a, const std::pair<int, double>& b) { return a.first < b.first; });
  for (std::size_t k = 0; k < sorted.size(); ++k) {
    if (sorted[k].first < 0 || sorted[k].first >= dimension) return false;
    if (k > 0 && sorted[k].first == sorted[k - 1].first) return false;
  }
  KXSparseVector built(dimension);
  for (const auto& p : sorted) built.Append(p.first, p.second);
  *this = std::move(built);
  return true;
}

bool KXSparseVector::Append(int index, double value) {
  if (index < 0 || index >= fiDimension || (!fvIndices.empty() && index <= fvIndices.back())) {
    return false;
  }
  if (value != 0.0) {
    fvIndices.push_back(index);
    fvValues.push_back(value);
  }
  return true;
}

bool KXSparseVector::Set(int index, double value) {
  if (index < 0 || index >= fiDimension) return false;
  const auto at = std::lower_bound(fvIndices.begin(), fvIndices.end(), index);
  const std::size_t k = static_cast<std::size_t>(at - fvIndices.begin());
  const bool stored = at != fvIndices.end() && *at == index;
  if (value == 0.0) {
    if (stored) {
      fvIndices.erase(at);
      fvValues.erase(fvValues.begin() + static_cast<std::ptrdiff_t>(k));
    }
  } else if (stored) {
    fvValues[k] = value;
  } else {
    fvIndices.insert(at, index);
    fvValues.insert(fvValues.begin() + static_cast<std::ptrdiff_t>(k), value);
  }
  return true;
}

void KXSparseVector::Reset(int dimension) {
  fiDimension = dimension > 0 ? dimension : 0;
  fvIndices.clear();
  fvValues.clear();
}

double KXSparseVector::Get(int index) const {
  if (index < 0 || index >= fiDimension) return KXMV::Missing();
  const auto at = std::lower_bound(fvIndices.begin(), fvIndices.end(), index);
  return at != fvIndices.end() && *at == index
             ? fvValues[static_cast<std::size_t>(at - fvIndices.begin())]
             : 0.0;
}

std::vector<double> KXSparseVector::ToDense() const {
  std::vector<double> dense(static_cast<std::size_t>(fiDimension), 0.0);
  for (std::size_t k = 0; k < fvIndices.size(); ++k) {
    dense[static_cast<std::size_t>(fvIndices[k])] = fvValues[k];
  }
  return dense;
}

double KXSparseVector::Dot(const std::vector<double>& dense) const {
  if (dense.size() != static_cast<std::size_t>(fiDimension)) return KXMV::Missing();
  double sum = 0.0;
  for (std::size_t k = 0; k < fvIndices.size(); ++k) {
    sum += fvValues[k] * dense[static_cast<std::size_t>(fvIndices[k])];
  }
  return sum;
}

double KXSparseVector::Dot(const KXSparseVector& other) const {
  if (other.fiDimension != fiDimension) return KXMV::Missing();
  double sum = 0.0;
  std::size_t a = 0, b = 0;
  while (a < fvIndices.size() && b < other.fvIndices.size()) {
    if (fvIndices[a] < other.fvIndices[b]) {
      ++a;
    } else if (fvIndices[a] > other.fvIndices[b]) {
      ++b;
    } else {
      sum += fvValues[a++] * other.fvValues[b++];
    }
  }
  return sum;
}

bool KXSparseVector::UpdateXX(KXSymMatrix& sscp, double w) const {
  if (sscp.GetNRows() != fiDimension || !(w > 0.0)) return false;
  return sscp.UpdateXXSparse(NonZeros(), fvIndices, fvValues, w);
}

void KXSparseVector::Display(const std::string& name) const {
  KXComponentDisplay::DisplayText(1, name + " (dimension = " + std::to_string(fiDimension) +
                                         ", non-zeros = " + std::to_string(NonZeros()) + ")");
  KXComponentDisplay::DisplayIV("Indices", fvIndices);
  KXComponentDisplay::DisplayDV("Values", fvValues, false);
}

}  // namespace KXCommon
