#include "kxcommonr/common/sparse/KXSparseVector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/testing/DisplayCapture.h"

namespace {

using KXCommon::KXMV;
using KXCommon::KXSparseVector;
using KXCommon::KXSymMatrix;

TEST(KXSparseVectorTest, BuildsAndEditsItsEntries) {
  KXSparseVector x(6);
  EXPECT_TRUE(x.Append(1, 2.5) && x.Append(3, 0.0) && x.Append(4, -1.0));
  EXPECT_FALSE(x.Append(4, 7.0) || x.Append(2, 7.0) || x.Append(6, 7.0));  // not ascending, out of range
  EXPECT_EQ(x.Indices(), (std::vector<int>{1, 4}));
  EXPECT_TRUE(x.Set(0, 9.0) && x.Set(4, 0.0) && x.Set(1, 3.0));
  EXPECT_FALSE(x.Set(-1, 1.0));
  EXPECT_EQ(x.ToDense(), (std::vector<double>{9, 3, 0, 0, 0, 0}));
  EXPECT_EQ(x.Get(2), 0.0);
  EXPECT_TRUE(KXMV::IsMissing(x.Get(6)));
  EXPECT_TRUE(x == KXSparseVector::FromDense(x.ToDense()));

  KXSparseVector y;
  EXPECT_TRUE(y.Assign(5, {{3, 1.0}, {0, 2.0}, {2, 0.0}}));
  EXPECT_EQ(y.Indices(), (std::vector<int>{0, 3}));
  for (const auto& bad : std::vector<std::vector<std::pair<int, double>>>{{{5, 1.0}}, {{-1, 1.0}}, {{2, 1.0}, {2, 3.0}}}) {
    EXPECT_FALSE(y.Assign(5, bad));
  }
  EXPECT_FALSE(y.Assign(-1, {}));
  EXPECT_EQ(y.Indices(), (std::vector<int>{0, 3}));
  y.Reset(2);
  EXPECT_EQ(y.NonZeros() + y.Dimension(), 2);
  EXPECT_EQ(KXSparseVector(-4).Dimension(), 0);
}

// Products and the cross-product update against the dense computation.
TEST(KXSparseVectorTest, ProductsAndUpdatesMatchTheDenseOnes) {
  std::mt19937 random(4);
  std::uniform_real_distribution<double> value(-2, 2);
  for (const int n : {1, 7, 70}) {
    std::vector<double> a(static_cast<std::size_t>(n)), b(a.size()), c(a.size());
    for (int i = 0; i < n; ++i) {
      a[i] = random() % 3 == 0 ? value(random) : 0.0;
      b[i] = random() % 2 == 0 ? value(random) : 0.0;
      c[i] = value(random);
    }
    const KXSparseVector sa = KXSparseVector::FromDense(a), sb = KXSparseVector::FromDense(b);
    double ab = 0, ac = 0;
    for (int i = 0; i < n; ++i) {
      ab += a[i] * b[i];
      ac += a[i] * c[i];
    }
    EXPECT_DOUBLE_EQ(sa.Dot(sb), ab);
    EXPECT_DOUBLE_EQ(sa.Dot(c), ac);
    KXSymMatrix sparse(n), dense(n);
    ASSERT_TRUE(sa.UpdateXX(sparse, 2.5) && sb.UpdateXX(sparse, 0.5));
    ASSERT_TRUE(dense.UpdateXX(a, 2.5) && dense.UpdateXX(b, 0.5));
    for (int i = 0; i < n; ++i) {
      for (int j = 0; j <= i; ++j) EXPECT_DOUBLE_EQ(sparse.GetElem(i, j), dense.GetElem(i, j));
    }
  }
  KXSparseVector x(3);
  KXSymMatrix wrong(4), right(3);
  EXPECT_FALSE(x.UpdateXX(wrong, 1.0) || x.UpdateXX(right, 0.0) ||
               x.UpdateXX(right, std::numeric_limits<double>::quiet_NaN()));
  EXPECT_TRUE(KXMV::IsMissing(x.Dot(std::vector<double>(2))) && KXMV::IsMissing(x.Dot(KXSparseVector(2))));
}

TEST(KXSparseVectorTest, Displays) {
  KXSparseVector x(5);
  x.Append(1, 0.5);
  x.Append(4, 2);
  kxtesting::DisplayCapture capture;
  x.Display("case");
  EXPECT_EQ(capture.Text(),
            "\ncase (dimension = 5, non-zeros = 2)\nIndices (size = 2)\n  1 4\nValues (size = 2)\n  0.5 2");
}

}  // namespace
