// Tests of the packed layout: every position against a counter that walks
// the triangle row by row, offsets past 32 bits worked out by hand, and the
// square expansion against the same walk.
#include "kxcommonr/common/packed/KXPackedLayout.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace KXCommon {
namespace {

static_assert(KXPacked::Index(2, 1) == 4, "usable in constant expressions");

TEST(KXPackedLayoutTest, PositionsNumberTheTriangleRowByRow) {
  std::size_t next = 0;  // where a row-by-row walk stands
  for (int i = 0; i < 50; ++i) {
    EXPECT_EQ(KXPacked::RowStart(i), next);
    for (int j = 0; j <= i; ++j, ++next) {
      ASSERT_EQ(KXPacked::Index(i, j), next) << i << "," << j;
      ASSERT_EQ(KXPacked::SymIndex(i, j), next);
      ASSERT_EQ(KXPacked::SymIndex(j, i), next);
    }
    EXPECT_EQ(KXPacked::Size(i + 1), next);
  }
  EXPECT_EQ(KXPacked::Size(0), 0u);
  EXPECT_EQ(KXPacked::Size(-3), 0u);
}

TEST(KXPackedLayoutTest, OffsetsPast32Bits) {
  // i (i + 1) / 2 + j by hand: row 65535 starts at 2147450880, the last
  // start that fits an int; row 65536 at 2^31 + 2^15; the last element of
  // the largest order, 2^31 - 1, lies just before its size 2^30 (2^31 - 1).
  struct Case {
    std::int64_t i, j;
    std::size_t position;
  };
  const Case cases[] = {{65535, 65535, 2147516415u},
                        {65536, 0, 2147516416u},
                        {70000, 5, 2450035005u},
                        {2147483646, 2147483646, 2305843008139952127u}};
  for (const Case& c : cases) {
    EXPECT_EQ(KXPacked::Index(c.i, c.j), c.position) << c.i;
    EXPECT_EQ(KXPacked::SymIndex(c.j, c.i), c.position);
  }
  EXPECT_EQ(KXPacked::Size(2147483647), 2305843008139952128u);
}

TEST(KXPackedLayoutTest, SquareMirrorsTheTriangle) {
  for (int n : {0, 1, 2, 5, 9}) {
    std::vector<double> packed(KXPacked::Size(n));
    for (std::size_t k = 0; k < packed.size(); ++k) packed[k] = 1.0 + static_cast<double>(k);
    std::vector<double> square(static_cast<std::size_t>(n * n) + 1, -1.0);  // one guard
    KXPacked::ToSquare(packed.data(), n, square.data());
    std::size_t k = 0;
    for (int i = 0; i < n; ++i)
      for (int j = 0; j <= i; ++j, ++k) {
        EXPECT_EQ(square[static_cast<std::size_t>(i * n + j)], packed[k]);
        EXPECT_EQ(square[static_cast<std::size_t>(j * n + i)], packed[k]);
      }
    EXPECT_EQ(square.back(), -1.0) << "wrote past n*n for n=" << n;
  }
}

}  // namespace
}  // namespace KXCommon
