// Tests of Blas1: every kernel against the element-by-element loop of the
// reference routines (bit for bit, over sizes that cross the vector blocks,
// strides of both signs and arrays that share memory), the norm also against
// a long double sum, and the helpers on tables of exact cases.
#include "kxcommonr/common/vector/Blas1.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include "kxcommonr/testing/BitCheck.h"
#include "kxcommonr/testing/Tolerance.h"

namespace {

using KXCommon::Blas1;
using kxtesting::NearRel;
using kxtesting::SameBits;
using Vec = std::vector<double>;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();
const int kSizes[] = {1, 2, 3, 4, 5, 7, 8, 9, 16, 17, 31, 33, 64, 65, 100, 129, 1023, 4099};

// Memory index of element k under the reference stride rule.
std::ptrdiff_t At(int n, int inc, int k) {
  return static_cast<std::ptrdiff_t>(inc >= 0 ? k : 1 - n + k) * inc;
}

// The classic scaled sum of squares, element by element.
double ClassicNorm(const Vec& x, int n, int inc) {
  double scale = 0.0, ssq = 1.0;
  for (int k = 0; k < n; ++k) {
    const double a = std::fabs(x[static_cast<std::size_t>(k * inc)]);
    if (a == 0.0) continue;
    ssq = scale < a ? 1.0 + ssq * ((scale / a) * (scale / a)) : ssq + (a / scale) * (a / scale);
    scale = scale < a ? a : scale;
  }
  return scale * std::sqrt(ssq);
}

TEST(Blas1Test, ScalarHelpers) {
  const std::pair<double, double> values[] = {
      {Blas1::D_Abs(-2.5), 2.5}, {Blas1::D_Abs(-0.0), -0.0},   {Blas1::D_Max(1, 2), 2},
      {Blas1::D_Max(2, 1), 2},   {Blas1::D_Max(kNaN, 1), 1},   {Blas1::D_Sign(0.0), 1},
      {Blas1::D_Sign(-0.0), 1},  {Blas1::D_Sign(-1e-300), -1}, {Blas1::D_Sign(kNaN), 1},
      {Blas1::I_Max(-3, 2), 2},  {Blas1::I_Min(-3, 2), -3}};
  for (const auto& [got, expected] : values) EXPECT_TRUE(SameBits(got, expected));
  EXPECT_TRUE(std::isnan(Blas1::D_Max(1, kNaN)));
  // Only letters compare without case: '@'/'`' and '['/'{' differ by 32 too.
  for (const char* same : {"aA", "Zz", "qq", "11"}) EXPECT_TRUE(Blas1::LSame(same[0], same[1]));
  for (const char* other : {"aB", "@`", "[{", "a1"}) EXPECT_FALSE(Blas1::LSame(other[0], other[1]));
}

TEST(Blas1Test, SumsAreBitIdenticalToAPlainIndexOrderLoop) {
  std::mt19937_64 rng(1);
  for (int n : kSizes) {
    for (int incx : {1, 2, -1, -3}) {
      const Vec x = kxtesting::WideRandomVector(3 * n, rng), y = kxtesting::WideRandomVector(3 * n, rng);
      for (int incy : {1, 3, -2}) {
        double dot = 0.0;
        for (int k = 0; k < n; ++k) dot += x[At(n, incx, k)] * y[At(n, incy, k)];
        EXPECT_TRUE(SameBits(Blas1::DDot(n, x.data(), incx, y.data(), incy), dot)) << n;
      }
      double asum = 0.0;  // the stride taken as positive: no reverse start
      for (int k = 0; k < n; ++k) asum += std::fabs(x[k * std::abs(incx)]);
      EXPECT_TRUE(SameBits(Blas1::DASum(n, x.data(), incx), asum)) << n;
    }
  }
  const double x[3] = {1, 2, 3};
  const std::pair<double, double> edges[] = {  // a zero stride repeats x[0]
      {Blas1::DDot(0, x, 1, x, 1), 0}, {Blas1::DDot(-1, x, 1, x, 1), 0}, {Blas1::DASum(0, x, 1), 0},
      {Blas1::DASum(3, x, 0), 3},      {Blas1::DDot(3, x, 0, x, 1), 6}};
  for (const auto& [got, expected] : edges) EXPECT_EQ(got, expected);
}

// The classic algorithm bit for bit, zeros skipped and the scale raised
// early, late and many times in a row, on magnitudes spread widely and on
// magnitudes alike (whose squares all count; another order of additions
// shows where the sum crosses a power of two, so ten vectors of each size);
// the Euclidean norm to rounding (up to 4099 terms: the loose tier); no
// overflow or underflow; NaN wins, an infinity gives +inf.
TEST(Blas1Test, NormKeepsTheClassicAlgorithm) {
  std::mt19937_64 rng(2);
  std::uniform_real_distribution<double> alike(-1.0, 1.0);
  for (int n : kSizes) {
    for (int trial = 0; trial < 12; ++trial) {
      const int inc = trial == 1 ? 2 : 1;
      const bool spread = trial < 2;
      Vec x = kxtesting::WideRandomVector(n * inc, rng);
      if (!spread) std::generate(x.begin(), x.end(), [&] { return alike(rng); });
      for (std::size_t k = 0; k < x.size(); k += 5) x[k] = 0.0;
      if (spread && n > 40) x[(n - 3) * inc] = 1e7;
      for (int k = 100; spread && k < 300 && k < n; ++k) x[k * inc] = 2e7 + k * (k % 3);
      const double got = Blas1::DNrm2(n, x.data(), inc);
      EXPECT_TRUE(SameBits(got, ClassicNorm(x, n, inc))) << n;
      long double squares = 0;
      for (int k = 0; k < n; ++k) squares += std::pow(static_cast<long double>(x[k * inc]), 2);
      EXPECT_TRUE(NearRel(got, static_cast<double>(std::sqrt(squares)), kxtesting::kLoose));
    }
  }
  const std::pair<Vec, double> cases[] = {
      {{3e200, 4e200}, 5e200}, {{3e-200, -4e-200}, 5e-200}, {{0, 0}, 0}, {{-7}, 7},
      {{-kInf}, kInf},         {{kInf, kInf}, kInf},         {{1, kInf, -kInf, 2}, kInf},
      {{kInf, kNaN}, kNaN},    {{kNaN, -kInf, kInf}, kNaN}};
  for (const auto& [x, expected] : cases) {
    for (int inc : {1, 2, 0, -1}) {
      Vec strided(x.size() * 2);
      for (std::size_t k = 0; k < x.size(); ++k) strided[k * std::max(inc, 1)] = x[k];
      const double got = Blas1::DNrm2(static_cast<int>(x.size()), strided.data(), inc);
      if (inc < 1 || !std::isfinite(expected)) {
        EXPECT_TRUE(inc < 1 ? got == 0.0 : std::isnan(expected) ? std::isnan(got) : got == expected);
      } else {
        EXPECT_TRUE(NearRel(got, expected, kxtesting::kTight));
      }
    }
  }
  // One NaN or infinity anywhere (before, inside and after the vector
  // groups), as in the classic algorithm; a second infinity gives +inf.
  for (int n : {3, 70, 300}) {
    for (int where : {0, 1, 37, n - 1}) {
      for (double odd : {kNaN, kInf, -kInf}) {
        if (where >= n) continue;
        Vec x(static_cast<std::size_t>(n), 1.5);
        x[where] = odd;
        EXPECT_TRUE(SameBits(Blas1::DNrm2(n, x.data(), 1), ClassicNorm(x, n, 1))) << n << " " << where;
        x[n - 1 - where / 2] = -kInf;
        const double got = Blas1::DNrm2(n, x.data(), 1);
        EXPECT_TRUE(std::isnan(odd) ? std::isnan(got) : got == kInf) << n << " " << where;
      }
    }
  }
}

// The elementwise kernels on separate strided arrays, and on unit-stride
// arrays at every alignment that share memory: the blocked paths must give
// what the forward walk gives, and n < 1 changes nothing.
TEST(Blas1Test, ElementwiseKernelsMatchTheForwardWalk) {
  struct Kernel {
    const char* name;
    void (*run)(int n, double* x, int incx, double* y, int incy);
    void (*element)(double& xk, double& yk);
  };
  const Kernel kernels[] = {
      {"Daxpy", [](int n, double* x, int ix, double* y, int iy) { Blas1::Daxpy(n, 0.73, x, ix, y, iy); },
       [](double& xk, double& yk) { yk += 0.73 * xk; }},
      {"DCopy", [](int n, double* x, int ix, double* y, int iy) { Blas1::DCopy(n, x, ix, y, iy); },
       [](double& xk, double& yk) { yk = xk; }},
      {"DSwap", [](int n, double* x, int ix, double* y, int iy) { Blas1::DSwap(n, x, ix, y, iy); },
       [](double& xk, double& yk) { std::swap(xk, yk); }},
      {"DRot", [](int n, double* x, int ix, double* y, int iy) { Blas1::DRot(n, x, ix, y, iy, 0.28, -0.96); },
       [](double& xk, double& yk) {
         std::tie(xk, yk) = std::pair(0.28 * xk + -0.96 * yk, 0.28 * yk - -0.96 * xk);
       }},
      {"DScal", [](int n, double* x, int ix, double*, int) { Blas1::DScal(n, -0.37, x, ix); },
       [](double& xk, double&) { xk *= -0.37; }}};
  std::mt19937_64 rng(3);
  const Vec buffer = kxtesting::WideRandomVector(26000, rng);  // > 6n + 5 for n = 4099
  std::vector<int> sizes = {-1, 0};  // nothing to do
  sizes.insert(sizes.end(), std::begin(kSizes), std::end(kSizes));
  for (const Kernel& kernel : kernels) {
    const auto check = [&](int n, int xAt, int incx, int yAt, int incy) {
      Vec got = buffer, expected = buffer;
      kernel.run(n, got.data() + xAt, incx, got.data() + yAt, incy);
      for (int k = 0; k < n; ++k) {
        kernel.element(expected[xAt + At(n, incx, k)], expected[yAt + At(n, incy, k)]);
      }
      EXPECT_EQ(got, expected) << kernel.name << " n=" << n << " x " << xAt << "/" << incx << " y "
                               << yAt << "/" << incy;
    };
    for (int n : sizes) {
      for (int incx : {1, 2, -1}) {
        for (int incy : {1, -3}) {
          if (kernel.run != kernels[4].run || incx > 0) check(n, 0, incx, 3 * n + 5, incy);
        }
      }
      for (int xStart : {0, 1, 3}) {
        for (int shift : {-9, -1, 0, 1, 2, 7, 40}) {
          if (n < 200) check(n, 100 + xStart, 1, 100 + xStart + shift, 1);
        }
      }
    }
  }
  Vec x = {1, kInf, 3}, y = {4, kInf, 6};  // a == 0 adds nothing, not even 0 * inf
  const Vec x0 = x, y0 = y;
  Blas1::Daxpy(3, 0.0, x.data(), 1, y.data(), 1);
  for (int inc : {0, -1}) Blas1::DScal(3, 2.0, x.data(), inc);
  EXPECT_EQ(x, x0);
  EXPECT_EQ(y, y0);
}

// Exact cases (ties, NaNs first and later, strides, refusals), then the
// sequential scan on few distinct magnitudes, NaNs, infinities and a rising
// sequence that beats the maximum in every block.
TEST(Blas1Test, IDAMaxFindsTheFirstStrictMaximum) {
  Vec longNanFirst(300, 2.0), longTie(300, 2.0);
  longNanFirst[0] = kNaN;
  longNanFirst[200] = longTie[0] = -9.0;
  longTie[200] = 9.0;
  const double strided[6] = {1, 100, -4, 100, 4, 100};
  EXPECT_EQ(Blas1::IDAMax(3, strided, 2), 2);
  EXPECT_EQ(Blas1::IDAMax(2, strided, 0), 0);
  const std::pair<Vec, int> cases[] = {{{1, -3, 3}, 2}, {{kNaN, 5, 7}, 1}, {{1, kNaN, -2, 2}, 3},
                                       {{}, 0},         {{4}, 1},          {longNanFirst, 1},
                                       {longTie, 1}};
  for (const auto& [x, expected] : cases) {
    EXPECT_EQ(Blas1::IDAMax(static_cast<int>(x.size()), x.data(), 1), expected);
  }
  std::mt19937_64 rng(4);
  std::uniform_int_distribution<int> small(-50, 50);
  for (int n : {2, 3, 33, 1024, 1025, 2049, 5000}) {
    for (int trial = 0; trial < 20; ++trial) {
      Vec x(static_cast<std::size_t>(n));
      for (int k = 0; k < n; ++k) x[k] = trial % 4 == 3 ? k * (k % 2 ? 1 : -1) : small(rng);
      if (trial % 4 == 1 || trial % 4 == 2) x[rng() % x.size()] = trial % 4 == 1 ? kNaN : -kInf;
      int expected = 1;
      for (int k = 1; k < n; ++k) {
        if (std::fabs(x[k]) > std::fabs(x[expected - 1])) expected = k + 1;
      }
      EXPECT_EQ(Blas1::IDAMax(n, x.data(), 1), expected) << "n=" << n;
    }
  }
}

// (a, b) -> (r, z) and (c, s): signs follow the larger input, z is 1/c or s
// (s compared with its sign), and extreme magnitudes neither overflow nor
// underflow.
TEST(Blas1Test, GivensRotation) {
  const double root = std::sqrt(0.5);
  const double cases[][6] = {  // a, b, r, z, c, s
      {3, 4, 5, 1 / 0.6, 0.6, 0.8},     {4, 3, 5, 0.6, 0.8, 0.6},      {-3, 4, 5, -1 / 0.6, -0.6, 0.8},
      {3, -4, -5, -1 / 0.6, -0.6, 0.8}, {0, 0, 0, 0, 1, 0},            {0, 2, 2, 1, 0, 1},
      {-4, -3, -5, 0.6, 0.8, 0.6},      {4, -4, 4 / root, -root, root, -root},
      {3e200, 4e200, 5e200, 1 / 0.6, 0.6, 0.8}, {-3e-200, 4e-200, 5e-200, -1 / 0.6, -0.6, 0.8},
      // |a| + |b| beyond the range: the rotation stays exact, r overflows.
      {1.2e308, 1.6e308, HUGE_VAL, 1 / 0.6, 0.6, 0.8},
      {-1.7976931348623157e308, -1.7976931348623157e308, -HUGE_VAL, 1 / root, root, root}};
  for (const auto& t : cases) {
    double a = t[0], b = t[1], c = -9, s = -9;
    Blas1::DRotG(&a, &b, &c, &s);
    const double got[4] = {a, b, c, s};
    for (int k = 0; k < 4; ++k) {
      EXPECT_TRUE(got[k] == t[k + 2] || NearRel(got[k], t[k + 2], kxtesting::kMedium)) << t[0] << t[1];
    }
  }
}

TEST(Blas1DeathTest, MachineConstantsAndTheFatalReport) {
  EXPECT_EQ(Blas1::DMach(1), std::ldexp(1.0, -52));
  EXPECT_EQ(Blas1::DMach(2), 8.900295434028806e-306);
  EXPECT_EQ(Blas1::DMach(3), 1.1235582092889475e+305);
  // The report goes to standard output: routed to the error stream, which
  // the death test examines.
  const auto report = [](const char* routine, int param) {
    std::cout.rdbuf(std::cerr.rdbuf());
    if (routine == nullptr) Blas1::DMach(param);
    Blas1::XErBla(routine, param);
  };
  EXPECT_EXIT(report("DGEMV", 3), ::testing::ExitedWithCode(1),
              "^\nXERBLA - Fatal error!\n  On entry to routine DGEMV\n"
              "  input parameter number 3 had an illegal value.\n$");
  EXPECT_EXIT(report(nullptr, 4), ::testing::ExitedWithCode(1),
              "On entry to routine DMACH\n  input parameter number 1 ");
}

}  // namespace
