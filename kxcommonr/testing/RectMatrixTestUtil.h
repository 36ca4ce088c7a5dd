// kxcommonr/testing/RectMatrixTestUtil.h
//
// Test helpers for the rectangular matrices: seeded random fills, a
// matrix written row by row through SetElem, and a bit set as text.
#ifndef KXCOMMONR_TESTING_RECTMATRIXTESTUTIL_H
#define KXCOMMONR_TESTING_RECTMATRIXTESTUTIL_H

#include <random>
#include <string>
#include <vector>

#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/rectmatrix/KXRectMatrix.h"

namespace kxtesting {

// A rows x cols matrix of values uniform in [-2, 2).
inline KXCommon::KXRectMatrix RandomMatrix(int rows, int cols, std::mt19937_64& gen) {
  std::uniform_real_distribution<double> uniform(-2.0, 2.0);
  KXCommon::KXRectMatrix m(rows, cols);
  for (double& x : m.AsVector()) x = uniform(gen);
  return m;
}

inline KXCommon::KXRectMatrix FromRows(const std::vector<std::vector<double>>& rows) {
  KXCommon::KXRectMatrix m(static_cast<int>(rows.size()),
                           rows.empty() ? 0 : static_cast<int>(rows[0].size()));
  for (int i = 0; i < m.GetNRows(); ++i)
    for (int j = 0; j < m.GetNCols(); ++j) m.SetElem(i, j, rows[i][j]);
  return m;
}

// The set's bits as '0' and '1', position 0 first.
inline std::string Bits(const KXCommon::KXBitSet& set) {
  std::string bits;
  for (int i = 0; i < set.Size(); ++i) bits += set.IsIn(i) ? '1' : '0';
  return bits;
}

}  // namespace kxtesting

#endif  // KXCOMMONR_TESTING_RECTMATRIXTESTUTIL_H
