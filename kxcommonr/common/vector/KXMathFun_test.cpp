#include "kxcommonr/common/vector/KXMathFun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "kxcommonr/common/vector/Blas1.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/testing/BitCheck.h"

namespace {

using KXCommon::Blas1;
using KXCommon::KXMathFun;
using KXCommon::KXMV;
using Vec = std::vector<double>;

using kxtesting::SameBits;

const auto& RandomVector = kxtesting::WideRandomVector;

// Index of element k of a walk that starts at off - (n-1)*inc for inc < 0.
std::size_t At(int n, int off, int inc, int k) {
  const int first = inc < 0 ? off - (n - 1) * inc : off;
  return static_cast<std::size_t>(first + k * inc);
}

// Full n x n matrix from packed lower-triangular storage, read in order.
std::vector<Vec> Unpacked(const Vec& packed, int n) {
  std::vector<Vec> full(n, Vec(n));
  std::size_t p = 0;
  for (int i = 0; i < n; ++i)
    for (int j = 0; j <= i; ++j) full[i][j] = full[j][i] = packed[p++];
  return full;
}

TEST(KXMathFunTest, VectorSumsAreBitIdenticalToPlainLoops) {
  std::mt19937_64 rng(11);
  for (int n : {1, 2, 5, 17, 100, 1001}) {
    for (int inc : {1, 3, -2}) {
      const int off = 4;
      const Vec x = RandomVector(static_cast<std::size_t>(off + 3 * n + 4), rng);
      const Vec y = RandomVector(x.size(), rng);
      double asum = 0, dot = 0;
      for (int k = 0; k < n; ++k) {
        asum += std::fabs(x[At(n, off, inc, k)]);
        dot += x[At(n, off, inc, k)] * y[At(n, 2, 1, k)];
      }
      EXPECT_TRUE(SameBits(KXMathFun::DASum(n, x, off, inc), asum)) << n;
      EXPECT_TRUE(SameBits(KXMathFun::DDot(n, x, off, inc, y, 2, 1), dot)) << n;
      if (inc > 0) {
        double sum = 0;
        for (int k = 0; k < n; ++k) sum += x[static_cast<std::size_t>(k * inc)];
        EXPECT_TRUE(SameBits(KXMathFun::DSum(n, x, inc), sum)) << n;
        // The norm is the same kernel as Blas1's.
        EXPECT_TRUE(SameBits(KXMathFun::DNrm2(n, x, off, inc),
                             Blas1::DNrm2(n, x.data() + off, inc)));
      }
    }
  }
}

TEST(KXMathFunTest, SumEdgeCases) {
  const Vec x = {2.5, 7, 9};
  EXPECT_EQ(KXMathFun::DSum(3, x, -1), 0.0);
  EXPECT_EQ(KXMathFun::DSum(1, x, -1), 2.5);
  EXPECT_EQ(KXMathFun::DSum(3, x, 0), 7.5);
  EXPECT_EQ(KXMathFun::DSum(0, x, 1), 0.0);
  EXPECT_EQ(KXMathFun::DSum(2, x, 2), 11.5);
  EXPECT_TRUE(KXMV::IsMissing(KXMathFun::DSum(3, x, 2)));  // runs past the end
  EXPECT_EQ(KXMathFun::DASum(0, x, 0, 1), 0.0);
  EXPECT_EQ(KXMathFun::DASum(2, Vec(), 0, 1), 0.0);
  EXPECT_TRUE(KXMV::IsMissing(KXMathFun::DASum(2, x, 2, 1)));
  EXPECT_TRUE(KXMV::IsMissing(KXMathFun::DASum(2, x, -1, 1)));
  EXPECT_EQ(KXMathFun::DASum(2, x, 1, -1), 16.0);
  EXPECT_EQ(KXMathFun::DDot(0, x, 0, 1, x, 0, 1), 0.0);
  EXPECT_TRUE(KXMV::IsMissing(KXMathFun::DDot(2, x, 0, 3, x, 0, 1)));
}

TEST(KXMathFunTest, NormEdgeCases) {
  const Vec x = {0, -3e200, 4e200, 0};
  EXPECT_EQ(KXMathFun::DNrm2(0, x, 0, 1), 0.0);
  EXPECT_EQ(KXMathFun::DNrm2(1, x, 1, 1), 3e200);
  EXPECT_EQ(KXMathFun::DNrm2(1, x, 1, -5), 3e200);
  EXPECT_EQ(KXMathFun::DNrm2(2, x, 1, -1), 0.0);
  EXPECT_DOUBLE_EQ(KXMathFun::DNrm2(4, x, 0, 1), 5e200);
  EXPECT_DOUBLE_EQ(KXMathFun::DNrm2(3, x, 1, 0), std::sqrt(3.0) * 3e200);
  EXPECT_TRUE(KXMV::IsMissing(KXMathFun::DNrm2(5, x, 0, 1)));
}

TEST(KXMathFunTest, UpdatesMatchPlainLoops) {
  std::mt19937_64 rng(12);
  for (int n : {1, 3, 8, 37}) {
    for (int incx : {1, 2, -1}) {
      for (int incy : {1, -2}) {
        for (double a : {0.3, 1.0, -1.0}) {
          const Vec x = RandomVector(static_cast<std::size_t>(3 * n + 3), rng);
          Vec y = RandomVector(static_cast<std::size_t>(3 * n + 3), rng);
          Vec expected = y;
          for (int k = 0; k < n; ++k) {
            expected[At(n, 1, incy, k)] += a * x[At(n, 2, incx, k)];
          }
          KXMathFun::Daxpy(n, a, x, 2, incx, y, 1, incy);
          EXPECT_EQ(y, expected) << n << " " << a;
        }
      }
      if (incx > 0) {
        for (double a : {0.3, 1.0, -1.0, 0.0}) {
          Vec x = RandomVector(static_cast<std::size_t>(3 * n + 3), rng);
          Vec expected = x;
          for (int k = 0; k < n; ++k) expected[static_cast<std::size_t>(1 + k * incx)] *= a;
          KXMathFun::DScal(n, a, x, 1, incx);
          EXPECT_EQ(x, expected) << n << " " << a;
          KXMathFun::DLoad(n, a + 5, x, 1, incx);
          for (int k = 0; k < n; ++k) expected[static_cast<std::size_t>(1 + k * incx)] = a + 5;
          EXPECT_EQ(x, expected) << n << " " << a;
        }
      }
    }
  }
}

TEST(KXMathFunTest, UpdatesRefuseBadWalksWithoutWriting) {
  const Vec x = {1, 2, 3};
  Vec y = {4, 5, 6};
  const Vec y0 = y;
  KXMathFun::Daxpy(3, 2.0, x, 1, 1, y, 0, 1);   // x walk leaves x
  KXMathFun::Daxpy(3, 2.0, x, 0, 1, y, 0, 2);   // y walk leaves y
  KXMathFun::Daxpy(3, 0.0, x, 0, 1, y, 0, 1);   // a == 0
  KXMathFun::DLoad(2, 9.0, y, -1, 1);
  KXMathFun::DLoad(2, 9.0, y, 2, -1);           // (n-1)*inc + 1 < 1
  KXMathFun::DLoad(4, 9.0, y, 0, 1);
  KXMathFun::DScal(2, 9.0, y, 0, -1);
  KXMathFun::DScal(4, 9.0, y, 0, 1);
  KXMathFun::DScal(3, 1.0, y, 0, 1);
  EXPECT_EQ(y, y0);
  KXMathFun::DLoad(3, 9.0, y, 1, 0);            // a zero stride loads one
  EXPECT_EQ(y, (Vec{4, 9, 6}));
  KXMathFun::DScal(2, 2.0, y, 1, 0);            // and scales it twice
  EXPECT_EQ(y, (Vec{4, 36, 6}));
}

// Column j of a packed triangle, from the diagonal down: element (r, j) at
// r*(r+1)/2 + j, which is the walk from off = j*(j+1)/2 + j with inc = j+1.
std::vector<std::size_t> PackedColumn(int n, int j) {
  std::vector<std::size_t> positions;
  for (int r = j; r < n; ++r) positions.push_back(static_cast<std::size_t>(r * (r + 1) / 2 + j));
  return positions;
}

TEST(KXMathFunTest, GrowingWalksFollowAPackedColumn) {
  const int n = 7;
  std::mt19937_64 rng(13);
  const Vec x = RandomVector(static_cast<std::size_t>(n * (n + 1) / 2), rng);
  const Vec y = RandomVector(x.size(), rng);
  for (int j = 0; j < n; ++j) {
    const std::vector<std::size_t> column = PackedColumn(n, j);
    const int length = static_cast<int>(column.size());
    const int off = j * (j + 1) / 2 + j;
    Vec filled = x, scaled = x, updated = y;
    Vec expectedFilled = x, expectedScaled = x, expectedUpdated = y;
    double expectedDot = 0.0;
    for (std::size_t p : column) {
      expectedFilled[p] = 42.0;
      expectedScaled[p] *= -2.0;
      expectedUpdated[p] += 0.5 * x[p];
      expectedDot += x[p] * y[p];
    }
    KXMathFun::IIInit(length, 42.0, filled, off, j + 1);
    KXMathFun::IIScal(length, -2.0, scaled, off, j + 1);
    KXMathFun::IIAxpy(length, 0.5, x, off, j + 1, updated, off, j + 1);
    EXPECT_EQ(filled, expectedFilled) << j;
    EXPECT_EQ(scaled, expectedScaled) << j;
    EXPECT_EQ(updated, expectedUpdated) << j;
    EXPECT_TRUE(SameBits(KXMathFun::IIDot(length, x, off, j + 1, y, off, j + 1), expectedDot));
  }
  // Two different walks: column 0 of x against column 2 of y.
  const std::vector<std::size_t> first = PackedColumn(n, 0), third = PackedColumn(n, 2);
  double expected = 0.0;
  for (std::size_t k = 0; k < third.size(); ++k) expected += x[first[k]] * y[third[k]];
  EXPECT_TRUE(SameBits(KXMathFun::IIDot(static_cast<int>(third.size()), x, 0, 1, y, 5, 3), expected));
}

TEST(KXMathFunTest, GrowingWalksRefuseToLeaveTheVector) {
  Vec x(10, 1.0);
  const Vec x0 = x;
  // Positions 0, 2, 5, 9 fit; a fifth (14) does not.
  EXPECT_EQ(KXMathFun::IIDot(4, x, 0, 2, x, 0, 2), 4.0);
  EXPECT_TRUE(KXMV::IsMissing(KXMathFun::IIDot(5, x, 0, 2, x, 0, 2)));
  KXMathFun::IIInit(5, 3.0, x, 0, 2);
  KXMathFun::IIScal(5, 3.0, x, 0, 2);
  KXMathFun::IIAxpy(5, 3.0, x0, 0, 2, x, 0, 1);
  // A negative stride first walks down: 5, 1, -2 leaves the vector.
  KXMathFun::IIInit(3, 3.0, x, 5, -4);
  EXPECT_EQ(x, x0);
  // 5, 2, 0, -1 ... : three positions fit.
  KXMathFun::IIInit(3, 3.0, x, 5, -3);
  EXPECT_EQ(x[5], 3.0);
  EXPECT_EQ(x[2], 3.0);
  EXPECT_EQ(x[0], 3.0);
  EXPECT_EQ(KXMathFun::IIDot(0, x, 0, 1, x, 0, 1), 0.0);
}

TEST(KXMathFunTest, PackedRowProductsAndQuadraticFormsMatchTheFullMatrix) {
  std::mt19937_64 rng(14);
  for (int n : {1, 2, 5, 12}) {
    const Vec packed = RandomVector(static_cast<std::size_t>(n * (n + 1) / 2), rng);
    const std::vector<Vec> full = Unpacked(packed, n);
    const Vec x = RandomVector(static_cast<std::size_t>(2 * n), rng);
    long double form = 0, magnitude = 0;
    for (int i = 0; i < n; ++i) {
      double row = 0.0;
      for (int j = 0; j < n; ++j) {
        row += full[i][j] * x[2 * j];
        const long double term = static_cast<long double>(full[i][j]) * x[i] * x[j];
        form += term;
        magnitude += std::fabs(term);
      }
      EXPECT_TRUE(SameBits(KXMathFun::RVD(packed, n, i, x, 2), row));
    }
    EXPECT_NEAR(KXMathFun::VSV(packed, n, x), static_cast<double>(form),
                1e-15 * n * static_cast<double>(magnitude));
  }
}

TEST(KXMathFunTest, PackedHelpersRefuseShortOrBadArguments) {
  const Vec packed = {1, 2, 3, 4, 5, 6};  // n = 3
  const Vec x = {1, 1, 1};
  EXPECT_TRUE(KXMV::IsMissing(KXMathFun::RVD(packed, 0, 0, x, 1)));
  EXPECT_TRUE(KXMV::IsMissing(KXMathFun::RVD(packed, 3, 3, x, 1)));
  EXPECT_TRUE(KXMV::IsMissing(KXMathFun::RVD(packed, 3, -1, x, 1)));
  EXPECT_TRUE(KXMV::IsMissing(KXMathFun::RVD(packed, 4, 0, x, 1)));
  EXPECT_TRUE(KXMV::IsMissing(KXMathFun::RVD(packed, 3, 0, x, 2)));
  EXPECT_EQ(KXMathFun::RVD(packed, 3, 1, x, 1), 2.0 + 3.0 + 5.0);
  EXPECT_EQ(KXMathFun::RVD(packed, 3, 1, x, 0), 10.0);
  EXPECT_EQ(KXMathFun::VSV(packed, 0, x), 0.0);
  EXPECT_TRUE(KXMV::IsMissing(KXMathFun::VSV(packed, -1, x)));
  EXPECT_TRUE(KXMV::IsMissing(KXMathFun::VSV(Vec(5, 1.0), 3, x)));
  EXPECT_TRUE(KXMV::IsMissing(KXMathFun::VSV(packed, 3, Vec(2, 1.0))));
  EXPECT_EQ(KXMathFun::VSV(packed, 3, x), 1 + 3 + 6 + 2 * (2 + 4 + 5.0));
}

TEST(KXMathFunTest, DifferenceNorms) {
  EXPECT_DOUBLE_EQ(KXMathFun::VMaxRelDiff({1}, {0}, 0), 1e6);
  EXPECT_DOUBLE_EQ(KXMathFun::VMaxRelDiff({1, 3}, {2, 1}, -1), 1.0);
  EXPECT_DOUBLE_EQ(KXMathFun::VMaxRelDiff({1, 3, 100}, {2, 1}, 0.5), 2 / 1.5);
  EXPECT_EQ(KXMathFun::VMaxRelDiff({}, {1}, 0), 0.0);
  EXPECT_EQ(KXMathFun::VNrm1Diff({1, -4, 7}, {2, 4}), 8.0);
  EXPECT_EQ(KXMathFun::VNrm1Diff({1}, {}), 0.0);
}

TEST(KXMathFunTest, BinSearchFindsTheInterval) {
  const Vec v = {1, 2, 3};
  EXPECT_EQ(KXMathFun::BinSearch(v, 0, 2, 2.0, false), 1);
  EXPECT_EQ(KXMathFun::BinSearch(v, 0, 2, 2.0, true), 2);
  EXPECT_EQ(KXMathFun::BinSearch(v, 0, 2, 3.0, true), -1);
  EXPECT_EQ(KXMathFun::BinSearch(v, 0, 2, 3.0, false), 2);
  EXPECT_EQ(KXMathFun::BinSearch(v, 0, 2, 0.5, false), 0);
  EXPECT_EQ(KXMathFun::BinSearch(v, 0, 3, 0.5, false), -2);
  EXPECT_EQ(KXMathFun::BinSearch(v, 2, 1, 0.5, false), -2);
  EXPECT_EQ(KXMathFun::BinSearch(v, -1, 1, 0.5, false), -2);
  EXPECT_EQ(KXMathFun::BinSearch(v, 0, 2, 3.5, false), -1);
  // With lo > 0 the cut below lo bounds the first interval.
  EXPECT_EQ(KXMathFun::BinSearch(v, 1, 2, 1.0, false), -1);
  EXPECT_EQ(KXMathFun::BinSearch(v, 1, 2, 1.0, true), 1);
  EXPECT_EQ(KXMathFun::BinSearch(v, 1, 2, 0.9, true), -1);
  EXPECT_EQ(KXMathFun::BinSearch(v, 2, 2, 2.5, false), 2);
  const std::vector<int> iv = {10, 20, 30, 40};
  EXPECT_EQ(KXMathFun::BinSearch(iv, 0, 3, 25, false), 2);
  EXPECT_EQ(KXMathFun::BinSearch(iv, 0, 3, 40, true), -1);
  EXPECT_EQ(KXMathFun::BinSearch(iv, 0, 3, 30, true), 3);
}

TEST(KXMathFunTest, BinSearchAgreesWithALinearScan) {
  std::mt19937_64 rng(15);
  std::uniform_int_distribution<int> cut(0, 20);
  for (int trial = 0; trial < 300; ++trial) {
    Vec v(1 + rng() % 12);
    for (double& c : v) c = cut(rng);
    std::sort(v.begin(), v.end());
    v.erase(std::unique(v.begin(), v.end()), v.end());  // distinct cuts
    const int hi = static_cast<int>(v.size()) - 1;
    const int lo = static_cast<int>(rng() % v.size());
    const double x = cut(rng) + (trial % 2 ? 0.5 : 0.0) - 1;
    for (bool rightOpen : {false, true}) {
      int expected = -1;
      for (int k = lo; k <= hi; ++k) {
        const std::size_t ku = static_cast<std::size_t>(k);
        const bool aboveLower =
            k == 0 ? true
                   : (rightOpen ? x >= v[ku - 1] : x > v[ku - 1]);
        const bool belowUpper = rightOpen ? x < v[ku] : x <= v[ku];
        if (aboveLower && belowUpper) {
          expected = k;
          break;
        }
      }
      EXPECT_EQ(KXMathFun::BinSearch(v, lo, hi, x, rightOpen), expected)
          << "x=" << x << " lo=" << lo << " rightOpen=" << rightOpen;
    }
  }
}

TEST(KXMathFunTest, IsValidDouble) {
  EXPECT_TRUE(KXMathFun::IsValidDouble(KXMV::Missing()));
  EXPECT_TRUE(KXMathFun::IsValidDouble(DBL_MAX));
  EXPECT_TRUE(KXMathFun::IsValidDouble(0.0));
  EXPECT_FALSE(KXMathFun::IsValidDouble(std::numeric_limits<double>::infinity()));
  EXPECT_FALSE(KXMathFun::IsValidDouble(-std::numeric_limits<double>::infinity()));
  EXPECT_FALSE(KXMathFun::IsValidDouble(std::numeric_limits<double>::quiet_NaN()));
}

}  // namespace
