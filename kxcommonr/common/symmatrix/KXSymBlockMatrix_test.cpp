// Tests of KXSymBlockMatrix: block addressing, the expansion to the full
// matrix against the element rule, refusals and the display text.
#include "kxcommonr/common/symmatrix/KXSymBlockMatrix.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/testing/DisplayCapture.h"
#include "kxcommonr/testing/SymMatrixTestUtil.h"

namespace {

using KXCommon::KXMV;
using KXCommon::KXSymBlockMatrix;
using KXCommon::KXSymMatrix;

TEST(KXSymBlockMatrix, ShapeAddressingAndRefusals) {
  KXSymBlockMatrix b(3, 2);
  EXPECT_TRUE(b.IsValidStruct());
  EXPECT_EQ(b.GetNBlockRows() * 10 + b.GetBlockSize(), 32);
  // (I, J) and (J, I) are the same stored block, one of six distinct ones;
  // every block starts zero.
  std::set<const KXSymMatrix*> distinct;
  for (int q = 0; q < 9; ++q) {
    const int I = q / 3, J = q % 3;
    EXPECT_EQ(&b.GetElemSSRef(I, J), &b.GetElemSSRef(J, I));
    distinct.insert(&b.GetElemSSRef(I, J));
    EXPECT_EQ(b.GetElemSSRef(I, J).AsVector(), std::vector<double>(3, 0.0));
  }
  EXPECT_EQ(distinct.size(), 6u);
  KXSymBlockMatrix huge;
  EXPECT_FALSE(huge.SetNRows(2147483647, 1));
  EXPECT_FALSE(huge.IsValidStruct());
  KXSymMatrix refused(2);
  EXPECT_EQ(huge.CopyToSymMatrix(refused), -1);
  EXPECT_EQ(refused.GetNRows(), 0);
  KXSymBlockMatrix empty;
  EXPECT_TRUE(empty.SetNRows(-1, 4));
  EXPECT_EQ(empty.GetNBlockRows() * 10 + empty.GetBlockSize(), 4);
  EXPECT_EQ(empty.CopyToSymMatrix(refused), 0);
}

TEST(KXSymBlockMatrix, ExpansionMatchesElementRule) {
  // Random blocks: full element (I b + i, J b + j) is block(I, J)(i, j),
  // whichever order I, J and i, j come in.
  const int m = 4, size = 3;
  KXSymBlockMatrix b(m, size);
  for (int I = 0; I < m; ++I)
    for (int J = 0; J <= I; ++J)
      b.GetElemSSRef(I, J) = kxtesting::ToSym(kxtesting::RandomSymmetric(size, 10 * I + J));
  KXSymMatrix full(5);  // reshaped to order 12
  ASSERT_EQ(b.CopyToSymMatrix(full), m * size);
  for (int r = 0; r < m * size; ++r)
    for (int c = 0; c < m * size; ++c)
      ASSERT_EQ(full.GetElem(r, c), b.GetElemSSRef(r / size, c / size).GetElem(r % size, c % size));
  // One block row copies its block.
  KXSymBlockMatrix single(1, 2);
  single.GetElemSSRef(0, 0).SetElem(1, 0, 5.0);
  KXSymMatrix out;
  ASSERT_EQ(single.CopyToSymMatrix(out), 2);
  EXPECT_EQ(out.AsVector(), (std::vector<double>{0, 5, 0}));
  // A block shrunk by the caller reads as missing beyond its order; the
  // output of the same order is cleared and refilled.
  b.GetElemSSRef(1, 1).SetNRows(2);
  b.Clear();
  ASSERT_EQ(b.CopyToSymMatrix(full), 12);
  int missing = 0;
  for (int i = 0; i < 12; ++i)
    for (int j = 0; j < 12; ++j) {
      if (!KXMV::IsMissing(full.GetElem(i, j))) {
        EXPECT_EQ(full.GetElem(i, j), 0.0);
      } else {
        ++missing;
        EXPECT_TRUE((i == 5 && j >= 3 && j <= 5) || (j == 5 && i >= 3 && i <= 5)) << i << "," << j;
      }
    }
  EXPECT_EQ(missing, 5);
}

TEST(KXSymBlockMatrix, DisplayText) {
  KXSymBlockMatrix b(1, 1);
  b.GetElemSSRef(0, 0).SetElem(0, 0, 2.0);
  kxtesting::DisplayCapture capture;
  b.Display();
  EXPECT_EQ(capture.Text(),
            "\nKXSymBlockMatrix display start\nThe number of rows in the KXSymBlockMatrix = 1"
            "\nThe number of rows in each KXMATH_NAMESPACE::KXSymMatrix matrix = 1"
            "\nRow number in the KXSymBlockMatrix = 0\nColumn number in the KXSymBlockMatrix = 0"
            "\nKXMATH_NAMESPACE::KXSymMatrix matrix:\nKXSymMatrixData display start"
            "\nThe number of rows = 1\nThe number of blocks = 1\nThe block size = 1"
            "\nLower triangular (size = 1)\n  2\nKXSymMatrixData display end"
            "\nKXSymBlockMatrix display end");
}

}  // namespace
