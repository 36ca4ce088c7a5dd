// Tests of the blocked kernels: every code path this processor can run must
// give the plain loop's result bit for bit, on shapes that cross the tile,
// slab and block edges, for row-major and transposed views.
#include "kxcommonr/common/rectmatrix/KXDenseKernels.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "kxcommonr/common/packed/KXPackedLayout.h"
#include "kxcommonr/testing/DenseTestUtil.h"

namespace KXCommon {
namespace internal {
namespace {

using kxtesting::Identical;

struct PathGuard {
  ~PathGuard() { SelectDenseKernelPath(nullptr); }
};

std::vector<double> Random(std::size_t count, std::mt19937_64& gen) {
  std::uniform_real_distribution<double> uniform(-3.0, 3.0);
  std::vector<double> v(count);
  for (double& x : v) x = uniform(gen);
  return v;
}

TEST(KXDenseKernelsTest, EveryPathEqualsThePlainLoop) {
  PathGuard restore;
  int pathsRun = 0;
  // "portable" is the one path of a build without dispatch.
  for (const char* path : {"avx512", "avx2", "baseline", "portable"}) {
    if (!SelectDenseKernelPath(path)) continue;
    ASSERT_EQ(std::string(DenseKernelPath()), path);
    ++pathsRun;
    std::mt19937_64 gen(99);  // the same inputs on every path
    const int shapes[][3] = {{1, 1, 1}, {3, 5, 2}, {8, 16, 256}, {9, 17, 257}, {97, 20, 40},
                             {20, 530, 3}, {33, 7, 600}, {5, 0, 4}, {0, 3, 3}, {4, 97, 300},
                             {2, 200, 70}};
    for (const auto& shape : shapes) {
      const int m = shape[0], n = shape[1], k = shape[2];
      // a read through a transposed view, b through a row-major one.
      const std::vector<double> aT = Random(static_cast<std::size_t>(k) * m, gen);
      const std::vector<double> b = Random(static_cast<std::size_t>(k) * n, gen);
      std::vector<double> c = Random(static_cast<std::size_t>(m) * n, gen);
      std::vector<double> expect(c);
      for (std::size_t i = 0; i < std::size_t(m); ++i)
        for (std::size_t j = 0; j < std::size_t(n); ++j)
          for (std::size_t p = 0; p < std::size_t(k); ++p) expect[i * n + j] += aT[p * m + i] * b[p * n + j];
      GemmAccumulate(m, n, k, StridedView{aT.data(), 1, m}, StridedView{b.data(), n, 1}, c.data(), n);
      EXPECT_TRUE(Identical(c, expect)) << path << " gemm " << m << "x" << n << "x" << k;

      // Packed lower triangle of order n, with a scale on the a side and
      // without (then a and b are views of one matrix, which the kernels
      // pack once).
      for (const double scale : {0.37, 1.0}) {
        std::vector<double> packed = Random(KXPacked::Size(n), gen);
        std::vector<double> expectPacked(packed);
        const std::vector<double> x = Random(static_cast<std::size_t>(k) * n, gen);
        for (std::size_t i = 0; i < std::size_t(n); ++i)
          for (std::size_t j = 0; j <= i; ++j)
            for (std::size_t p = 0; p < std::size_t(k); ++p)
              expectPacked[KXPacked::Index(i, j)] += (x[p * n + i] * scale) * x[p * n + j];
        PackedLowerAccumulate(n, k, StridedView{x.data(), 1, n}, scale, StridedView{x.data(), n, 1},
                              packed.data());
        EXPECT_TRUE(Identical(packed, expectPacked)) << path << " packed " << n << "x" << k << " scale " << scale;
      }
    }
  }
  EXPECT_GE(pathsRun, 1);
  // The lowest path of the build can always be forced.
  EXPECT_TRUE(SelectDenseKernelPath("baseline") || SelectDenseKernelPath("portable"));
  EXPECT_FALSE(SelectDenseKernelPath("no-such-unit"));
}

}  // namespace
}  // namespace internal
}  // namespace KXCommon
