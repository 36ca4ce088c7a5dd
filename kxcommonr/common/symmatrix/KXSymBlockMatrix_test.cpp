#include "kxcommonr/common/symmatrix/KXSymBlockMatrix.h"

#include <gtest/gtest.h>

#include <string>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/testing/DisplayCapture.h"
#include "kxcommonr/testing/SymMatrixTestUtil.h"

namespace {

using KXCommon::KXMV;
using KXCommon::KXSymBlockMatrix;
using KXCommon::KXSymMatrix;

TEST(KXSymBlockMatrix, ShapeAndBlockAddressing) {
  KXSymBlockMatrix b(3, 2);
  EXPECT_TRUE(b.IsValidStruct());
  EXPECT_EQ(b.GetNBlockRows(), 3);
  EXPECT_EQ(b.GetBlockSize(), 2);
  // (0, 2) and (2, 0) are the same stored block.
  EXPECT_EQ(&b.GetElemSSRef(0, 2), &b.GetElemSSRef(2, 0));
  EXPECT_NE(&b.GetElemSSRef(1, 2), &b.GetElemSSRef(2, 0));
  for (int I = 0; I < 3; ++I)
    for (int J = 0; J < 3; ++J) {
      EXPECT_EQ(b.GetElemSSRef(I, J).GetNRows(), 2);
      EXPECT_EQ(b.GetElemSSRef(I, J).AsVector(), std::vector<double>(3, 0.0));
    }

  KXSymBlockMatrix huge;
  EXPECT_FALSE(huge.SetNRows(2147483647, 1));
  EXPECT_FALSE(huge.IsValidStruct());
  KXSymMatrix refused(2);
  EXPECT_EQ(huge.CopyToSymMatrix(refused), -1);
  EXPECT_EQ(refused.GetNRows(), 0);

  KXSymBlockMatrix empty;
  EXPECT_TRUE(empty.SetNRows(-1, 4));
  EXPECT_TRUE(empty.IsValidStruct());
  EXPECT_EQ(empty.GetNBlockRows(), 0);
  EXPECT_EQ(empty.GetBlockSize(), 4);
  KXSymMatrix out(3);
  EXPECT_EQ(empty.CopyToSymMatrix(out), 0);
  EXPECT_EQ(out.GetNRows(), 0);
}

TEST(KXSymBlockMatrix, ExpansionMatchesElementRule) {
  KXSymBlockMatrix two(2, 2);
  KXSymMatrix& lower = two.GetElemSSRef(1, 0);
  lower.SetElem(0, 0, 1.0);
  lower.SetElem(1, 0, 2.0);
  lower.SetElem(1, 1, 3.0);
  KXSymMatrix out;
  ASSERT_EQ(two.CopyToSymMatrix(out), 4);
  EXPECT_EQ(out.GetElem(2, 0), 1.0);
  EXPECT_EQ(out.GetElem(3, 0), 2.0);
  EXPECT_EQ(out.GetElem(2, 1), 2.0);
  EXPECT_EQ(out.GetElem(3, 1), 3.0);
  EXPECT_EQ(out.GetElem(0, 3), 2.0);
  EXPECT_EQ(out.GetElem(0, 0), 0.0);

  // Random blocks: full element (I b + i, J b + j) is block(I, J)(i, j).
  const int m = 4, size = 3;
  KXSymBlockMatrix b(m, size);
  for (int I = 0; I < m; ++I)
    for (int J = 0; J <= I; ++J)
      b.GetElemSSRef(I, J) = kxtesting::ToSym(kxtesting::RandomSymmetric(size, 10 * I + J));
  KXSymMatrix full(5);  // reshaped to order 12
  ASSERT_EQ(b.CopyToSymMatrix(full), m * size);
  ASSERT_EQ(full.GetNRows(), m * size);
  for (int I = 0; I < m; ++I)
    for (int J = 0; J < m; ++J)
      for (int i = 0; i < size; ++i)
        for (int j = 0; j < size; ++j)
          ASSERT_EQ(full.GetElem(I * size + i, J * size + j),
                    b.GetElemSSRef(I, J).GetElem(i, j));

  // One block row copies the block; a block shrunk by the caller reads as
  // missing beyond its order.
  KXSymBlockMatrix single(1, 2);
  single.GetElemSSRef(0, 0).SetElem(1, 0, 5.0);
  ASSERT_EQ(single.CopyToSymMatrix(out), 2);
  EXPECT_EQ(out.GetElem(0, 1), 5.0);
  b.GetElemSSRef(1, 1).SetNRows(2);
  ASSERT_EQ(b.CopyToSymMatrix(full), 12);
  EXPECT_TRUE(KXMV::IsMissing(full.GetElem(5, 5)));
  EXPECT_EQ(full.GetElem(4, 4), 0.0);

  b.Clear();
  ASSERT_EQ(b.CopyToSymMatrix(full), 12);
  // Zero everywhere except the missing third row and column of block (1, 1).
  int missing = 0;
  for (int i = 0; i < 12; ++i)
    for (int j = 0; j < 12; ++j) {
      if (KXMV::IsMissing(full.GetElem(i, j))) {
        ++missing;
        EXPECT_TRUE((i == 5 && j >= 3 && j <= 5) || (j == 5 && i >= 3 && i <= 5));
      } else {
        EXPECT_EQ(full.GetElem(i, j), 0.0);
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
