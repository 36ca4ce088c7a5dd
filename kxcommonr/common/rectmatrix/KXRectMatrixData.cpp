// kxcommonr/common/rectmatrix/KXRectMatrixData.cpp
#include "kxcommonr/common/rectmatrix/KXRectMatrixData.h"

#include "kxcommonr/common/foundation/KXAllocation.h"


#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/display/KXComponentDisplay.h"

namespace KXCommon {

KXRectMatrixData::KXRectMatrixData() : nRows(0), nCols(0) {}

KXRectMatrixData::KXRectMatrixData(int rows, int cols)
    : nRows(rows < 0 ? 0 : rows), nCols(cols < 0 ? 0 : cols) {
  if (!TryResize(data, static_cast<std::size_t>(nRows) * static_cast<std::size_t>(nCols), 0.0)) {
    nRows = 0;
    nCols = 0;
  }
}

double KXRectMatrixData::GetElem(int i, int j) const {
  if (!ValidRow(i) || !ValidCol(j)) return KXMV::Missing();
  return data[Offset(i, j)];
}

const double* KXRectMatrixData::GetRowPtr(int i) const {
  if (!ValidRow(i) || nCols == 0) return nullptr;
  return data.data() + Offset(i, 0);
}

const double* KXRectMatrixData::GetColPtr(int j) const {
  if (!ValidCol(j) || nRows == 0) return nullptr;
  return data.data() + j;
}

bool KXRectMatrixData::GetRow(int i, std::vector<double>& r) const {
  if (!ValidRow(i)) return false;
  const double* row = data.data() + Offset(i, 0);
  r.assign(row, row + nCols);
  return true;
}

bool KXRectMatrixData::GetCol(int j, std::vector<double>& c) const {
  if (!ValidCol(j)) return false;
  c.resize(static_cast<std::size_t>(nRows));
  for (int i = 0; i < nRows; ++i) c[static_cast<std::size_t>(i)] = data[Offset(i, j)];
  return true;
}

void KXRectMatrixData::Display() const {
  using namespace KXComponentDisplay;
  DisplayText(1, "KXRectMatrixData display start");
  DisplayI("The number of rows", nRows);
  DisplayI("The number of columns", nCols);
  DisplayDV("Row-major data", data, false);
  DisplayText(1, "KXRectMatrixData display end");
}

}  // namespace KXCommon
