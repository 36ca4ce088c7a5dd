// kxcommonr/common/symmatrix/KXSymBlockMatrix.cpp
#include "kxcommonr/common/symmatrix/KXSymBlockMatrix.h"

#include <cstdint>
#include <utility>

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/common/foundation/KXAllocation.h"
#include "kxcommonr/common/packed/KXPackedLayout.h"

namespace KXCommon {

KXSymBlockMatrix::KXSymBlockMatrix() : nBlockRows(0), blockSize(0) {}

KXSymBlockMatrix::KXSymBlockMatrix(int m, int b) : nBlockRows(0), blockSize(0) {
  SetNRows(m, b);
}

bool KXSymBlockMatrix::ResizeNRows(std::vector<KXSymMatrix>& blockVector,
                                   int& m) {
  if (m < 0) m = 0;
  const std::size_t wanted = KXSymMatrixData::PackedSize(m);
  return GuardAllocation([&] {
    blockVector.resize(wanted);
    return blockVector.size() == wanted;
  }, false);
}

bool KXSymBlockMatrix::SetNRows(int m, int b) {
  int rows = m < 0 ? 0 : m;
  const int order = b < 0 ? 0 : b;
  std::vector<KXSymMatrix> fresh;
  bool allocated = ResizeNRows(fresh, rows);
  for (std::size_t k = 0; allocated && k < fresh.size(); ++k) {
    allocated = fresh[k].SetNRows(order);
  }
  if (!allocated) {
    blockSize = -1;
    return false;
  }
  blocks.swap(fresh);
  nBlockRows = rows;
  blockSize = order;
  return true;
}

KXSymMatrix& KXSymBlockMatrix::GetElemSSRef(int I, int J) {
  return blocks[KXPacked::SymIndex(I, J)];
}

void KXSymBlockMatrix::Clear() {
  for (KXSymMatrix& block : blocks) block.Clear();
}

int KXSymBlockMatrix::CopyToSymMatrix(KXSymMatrix& out) const {
  const std::int64_t order64 =
      static_cast<std::int64_t>(nBlockRows) * static_cast<std::int64_t>(blockSize);
  if (!IsValidStruct() || order64 > INT32_MAX) {
    out.SetNRows(0);
    return -1;
  }
  const int order = static_cast<int>(order64);
  if (out.GetNRows() != order || out.AsVector().size() != KXSymMatrixData::PackedSize(order)) {
    if (!out.SetNRows(order)) {
      out.SetNRows(0);
      return -1;
    }
  } else {
    out.Clear();
  }
  if (nBlockRows == 1 && blocks[0].GetNRows() == blockSize) {
    out = blocks[0];
    return order;
  }
  const int b = blockSize;
  for (int I = 0; I < nBlockRows; ++I) {
    for (int J = 0; J <= I; ++J) {
      const KXSymMatrix& block = blocks[KXSymMatrixData::PackedIndex(I, J)];
      for (int i = 0; i < b; ++i) {
        for (int j = 0; j < b; ++j) {
          out.SetElem(I * b + i, J * b + j, block.GetElem(i, j));
        }
      }
    }
  }
  return order;
}

void KXSymBlockMatrix::Display() const {
  using namespace KXComponentDisplay;
  DisplayText(1, "KXSymBlockMatrix display start");
  DisplayI("The number of rows in the KXSymBlockMatrix", nBlockRows);
  DisplayI("The number of rows in each KXMATH_NAMESPACE::KXSymMatrix matrix",
           blockSize);
  for (int I = 0; I < nBlockRows; ++I) {
    for (int J = 0; J <= I; ++J) {
      DisplayI("Row number in the KXSymBlockMatrix", I);
      DisplayI("Column number in the KXSymBlockMatrix", J);
      DisplayText(1, "KXMATH_NAMESPACE::KXSymMatrix matrix:");
      blocks[KXSymMatrixData::PackedIndex(I, J)].Display();
    }
  }
  DisplayText(1, "KXSymBlockMatrix display end");
}

}  // namespace KXCommon
