#include "kxcommonr/common/vector/Blas1.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "kxcommonr/testing/BitCheck.h"

namespace {

using KXCommon::Blas1;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

using kxtesting::SameBits;
const auto& RandomVector = kxtesting::WideRandomVector;

// Memory index of element k under the reference stride rule.
std::ptrdiff_t At(int n, int inc, int k) {
  return inc >= 0 ? static_cast<std::ptrdiff_t>(k) * inc
                  : static_cast<std::ptrdiff_t>(1 - n + k) * inc;
}

// The classic scaled Euclidean norm, element by element.
double ScaledNormReference(int n, const double* x, int inc) {
  double scale = 0.0;
  double ssq = 1.0;
  for (int k = 0; k < n; ++k) {
    const double value = x[static_cast<std::ptrdiff_t>(k) * inc];
    if (value != 0.0) {
      const double a = std::fabs(value);
      // SSQ = ONE + SSQ*(SCALE/ABSXI)**2 and SSQ = SSQ + (ABSXI/SCALE)**2.
      if (scale < a) {
        const double square = (scale / a) * (scale / a);
        ssq = 1.0 + ssq * square;
        scale = a;
      } else {
        ssq += (a / scale) * (a / scale);
      }
    }
  }
  return scale * std::sqrt(ssq);
}

const int kSizes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 31, 32, 33,
                      63, 64, 65, 100, 127, 129, 1000, 1023, 1025, 4099};

TEST(Blas1Test, ScalarHelpers) {
  EXPECT_EQ(Blas1::D_Abs(-2.5), 2.5);
  EXPECT_EQ(Blas1::D_Abs(3.0), 3.0);
  EXPECT_TRUE(std::signbit(Blas1::D_Abs(-0.0)));  // x >= 0 returns x
  EXPECT_EQ(Blas1::D_Max(1, 2), 2);
  EXPECT_EQ(Blas1::D_Max(2, 1), 2);
  EXPECT_TRUE(std::isnan(Blas1::D_Max(1, kNaN)));
  EXPECT_EQ(Blas1::D_Max(kNaN, 1), 1);
  EXPECT_EQ(Blas1::D_Sign(0.0), 1.0);
  EXPECT_EQ(Blas1::D_Sign(-0.0), 1.0);
  EXPECT_EQ(Blas1::D_Sign(-1e-300), -1.0);
  EXPECT_EQ(Blas1::D_Sign(kNaN), 1.0);
  EXPECT_EQ(Blas1::I_Max(-3, 2), 2);
  EXPECT_EQ(Blas1::I_Min(-3, 2), -3);
  // LSame ignores the case of letters only.
  EXPECT_TRUE(Blas1::LSame('a', 'A'));
  EXPECT_TRUE(Blas1::LSame('Z', 'z'));
  EXPECT_TRUE(Blas1::LSame('q', 'q'));
  EXPECT_FALSE(Blas1::LSame('a', 'B'));
  EXPECT_TRUE(Blas1::LSame('1', '1'));
  EXPECT_FALSE(Blas1::LSame('@', '`'));  // 0x40 and 0x60 are not letters
  EXPECT_FALSE(Blas1::LSame('[', '{'));
}

TEST(Blas1Test, SumsAreBitIdenticalToAPlainIndexOrderLoop) {
  std::mt19937_64 rng(1);
  for (int n : kSizes) {
    for (int incx : {1, 2, -1, -3}) {
      for (int incy : {1, 3, -2}) {
        const int span = n * 3;
        const std::vector<double> x = RandomVector(static_cast<std::size_t>(span), rng);
        const std::vector<double> y = RandomVector(static_cast<std::size_t>(span), rng);
        double dot = 0.0;
        for (int k = 0; k < n; ++k) dot += x[At(n, incx, k)] * y[At(n, incy, k)];
        EXPECT_TRUE(SameBits(Blas1::DDot(n, x.data(), incx, y.data(), incy), dot))
            << "n=" << n << " incx=" << incx << " incy=" << incy;
      }
      if (incx > 0) {
        const std::vector<double> x =
            RandomVector(static_cast<std::size_t>(n * incx), rng);
        double asum = 0.0;
        for (int k = 0; k < n; ++k) asum += std::fabs(x[At(n, incx, k)]);
        EXPECT_TRUE(SameBits(Blas1::DASum(n, x.data(), incx), asum)) << n;
        EXPECT_TRUE(SameBits(Blas1::DASum(n, x.data(), -incx), asum)) << n;
      }
    }
  }
}

TEST(Blas1Test, SumsOfNothing) {
  double x[2] = {1, 2};
  EXPECT_EQ(Blas1::DDot(0, x, 1, x, 1), 0.0);
  EXPECT_EQ(Blas1::DDot(-1, x, 1, x, 1), 0.0);
  EXPECT_EQ(Blas1::DASum(0, x, 1), 0.0);
  EXPECT_EQ(Blas1::DNrm2(0, x, 1), 0.0);
  EXPECT_EQ(Blas1::DNrm2(2, x, 0), 0.0);
  EXPECT_EQ(Blas1::DNrm2(2, x, -1), 0.0);
  EXPECT_EQ(Blas1::IDAMax(0, x, 1), 0);
  EXPECT_EQ(Blas1::IDAMax(2, x, 0), 0);
  EXPECT_EQ(Blas1::IDAMax(1, x, 1), 1);
  // A zero stride reads the first element n times.
  EXPECT_EQ(Blas1::DASum(3, x, 0), 3.0);
  const double z[3] = {1, 2, 3};
  EXPECT_EQ(Blas1::DDot(3, z, 0, z, 1), 6.0);
}

TEST(Blas1Test, NormKeepsTheScaledAlgorithmBitForBit) {
  std::mt19937_64 rng(2);
  for (int n : kSizes) {
    for (int inc : {1, 2}) {
      std::vector<double> x = RandomVector(static_cast<std::size_t>(n * inc), rng);
      // Zeros, and a growing magnitude late in the vector, exercise the
      // skipped elements and the rescaling.
      for (std::size_t k = 0; k < x.size(); k += 5) x[k] = 0.0;
      if (n > 40) x[static_cast<std::size_t>((n - 3) * inc)] = 1e7;
      // Rising stretches raise the scale many times within a block.
      if (n > 300) {
        for (int k = 100; k < 300; ++k) x[static_cast<std::size_t>(k * inc)] = 2e7 + k * (k % 3);
      }
      const double expected = ScaledNormReference(n, x.data(), inc);
      const double got = Blas1::DNrm2(n, x.data(), inc);
      if (n == 1) {
        EXPECT_EQ(got, std::fabs(x[0]));
      } else {
        EXPECT_TRUE(SameBits(got, expected)) << "n=" << n << " inc=" << inc;
      }
      // And it is the Euclidean norm, to rounding.
      long double sumSquares = 0;
      for (int k = 0; k < n; ++k) {
        const long double value = x[static_cast<std::size_t>(k * inc)];
        sumSquares += value * value;
      }
      EXPECT_NEAR(got, static_cast<double>(std::sqrt(sumSquares)),
                  1e-14 * static_cast<double>(std::sqrt(sumSquares)));
    }
  }
}

TEST(Blas1Test, NormOfExtremeAndNonFiniteValues) {
  const double big[2] = {3e200, 4e200};
  EXPECT_DOUBLE_EQ(Blas1::DNrm2(2, big, 1), 5e200);
  const double small[2] = {3e-200, -4e-200};
  EXPECT_DOUBLE_EQ(Blas1::DNrm2(2, small, 1), 5e-200);
  const double zeros[2] = {0, 0};
  EXPECT_EQ(Blas1::DNrm2(2, zeros, 1), 0.0);
  const double single[1] = {-7};
  EXPECT_EQ(Blas1::DNrm2(1, single, 1), 7.0);
  // NaN and infinity propagate as in the sequential algorithm.
  for (int n : {3, 70, 300}) {
    for (int where : {0, 1, n - 1}) {
      for (double oddValue : {kNaN, kInf, -kInf}) {
        std::vector<double> x(static_cast<std::size_t>(n), 1.5);
        x[static_cast<std::size_t>(where)] = oddValue;
        EXPECT_TRUE(SameBits(Blas1::DNrm2(n, x.data(), 1),
                             ScaledNormReference(n, x.data(), 1)))
            << "n=" << n << " at " << where << " value " << oddValue;
      }
    }
  }
}

// An elementwise kernel and the new (x_k, y_k) it should produce from the old.
struct ElementwiseKernel {
  const char* name;
  void (*run)(int n, double* x, int incx, double* y, int incy);
  void (*element)(double& xk, double& yk);
};

const ElementwiseKernel kElementwise[] = {
    {"Daxpy", [](int n, double* x, int incx, double* y, int incy) { Blas1::Daxpy(n, 0.7313, x, incx, y, incy); },
     [](double& xk, double& yk) { yk += 0.7313 * xk; }},
    {"DCopy", [](int n, double* x, int incx, double* y, int incy) { Blas1::DCopy(n, x, incx, y, incy); },
     [](double& xk, double& yk) { yk = xk; }},
    {"DSwap", [](int n, double* x, int incx, double* y, int incy) { Blas1::DSwap(n, x, incx, y, incy); },
     [](double& xk, double& yk) { std::swap(xk, yk); }},
    {"DRot", [](int n, double* x, int incx, double* y, int incy) { Blas1::DRot(n, x, incx, y, incy, 0.28, -0.96); },
     [](double& xk, double& yk) {
       const double x0 = xk, y0 = yk;
       xk = 0.28 * x0 + -0.96 * y0;
       yk = 0.28 * y0 - -0.96 * x0;
     }},
};

// Runs the kernel on x = buffer + xAt and y = buffer + yAt (the arrays may
// share memory) and compares with the element-by-element forward walk.
void CheckElementwise(const ElementwiseKernel& kernel, const std::vector<double>& buffer, int n,
                      int xAt, int incx, int yAt, int incy) {
  std::vector<double> got = buffer, expected = buffer;
  kernel.run(n, got.data() + xAt, incx, got.data() + yAt, incy);
  for (int k = 0; k < n; ++k) {
    double xk = expected[static_cast<std::size_t>(xAt + At(n, incx, k))];
    double yk = expected[static_cast<std::size_t>(yAt + At(n, incy, k))];
    kernel.element(xk, yk);
    expected[static_cast<std::size_t>(xAt + At(n, incx, k))] = xk;
    expected[static_cast<std::size_t>(yAt + At(n, incy, k))] = yk;
  }
  EXPECT_EQ(got, expected) << kernel.name << " n=" << n << " x at " << xAt << " by " << incx
                           << ", y at " << yAt << " by " << incy;
}

// Separate strided arrays, and unit-stride arrays at every alignment that
// share memory: the blocked paths must give what the forward walk gives.
TEST(Blas1Test, ElementwiseKernelsMatchTheForwardWalk) {
  std::mt19937_64 rng(3);
  const std::vector<double> buffer = RandomVector(26000, rng);  // > 6n + 5 for n = 4099
  for (const ElementwiseKernel& kernel : kElementwise) {
    for (int n : kSizes) {
      for (int incx : {1, 2, -1}) {
        for (int incy : {1, -3}) CheckElementwise(kernel, buffer, n, 0, incx, 3 * n + 5, incy);
      }
      if (n > 200) continue;
      for (int xStart : {0, 1, 3}) {
        for (int shift : {-9, -1, 0, 1, 2, 7, 40}) {
          CheckElementwise(kernel, buffer, n, 100 + xStart, 1, 100 + xStart + shift, 1);
        }
      }
    }
  }
  for (int n : kSizes) {
    for (int start : {0, 1, 5}) {
      std::vector<double> x = RandomVector(static_cast<std::size_t>(2 * n + start), rng);
      std::vector<double> expected = x;
      Blas1::DScal(n, -0.37, x.data() + start, 2);
      for (int k = 0; k < n; ++k) expected[static_cast<std::size_t>(start + 2 * k)] *= -0.37;
      EXPECT_EQ(x, expected) << "DScal n=" << n;
      Blas1::DScal(2 * n, 3.0, x.data() + start, 1);
      for (std::size_t k = static_cast<std::size_t>(start); k < x.size(); ++k) expected[k] *= 3.0;
      EXPECT_EQ(x, expected) << "DScal n=" << 2 * n << " from " << start;
    }
  }
}

TEST(Blas1Test, ElementwiseKernelsRefuseQuietly) {
  std::vector<double> x = {1, 2, 3};
  std::vector<double> y = {4, 5, 6};
  const std::vector<double> x0 = x, y0 = y;
  Blas1::Daxpy(3, 0.0, x.data(), 1, y.data(), 1);  // a == 0: nothing
  Blas1::Daxpy(0, 2.0, x.data(), 1, y.data(), 1);
  Blas1::DCopy(-1, x.data(), 1, y.data(), 1);
  Blas1::DSwap(0, x.data(), 1, y.data(), 1);
  Blas1::DRot(0, x.data(), 1, y.data(), 1, 0.0, 1.0);
  Blas1::DScal(0, 2.0, x.data(), 1);
  Blas1::DScal(3, 2.0, x.data(), 0);
  Blas1::DScal(3, 2.0, x.data(), -1);
  EXPECT_EQ(x, x0);
  EXPECT_EQ(y, y0);
  // a == 0 leaves even NaNs in y alone (no 0 * x added).
  y[1] = kInf;
  x[1] = kInf;
  Blas1::Daxpy(3, 0.0, x.data(), 1, y.data(), 1);
  EXPECT_EQ(y[1], kInf);
}

TEST(Blas1Test, IDAMaxReturnsFirstStrictMaximum) {
  const double tied[3] = {1, -3, 3};
  EXPECT_EQ(Blas1::IDAMax(3, tied, 1), 2);
  const double nanFirst[3] = {kNaN, 5, 7};
  EXPECT_EQ(Blas1::IDAMax(3, nanFirst, 1), 1);
  const double nanLater[4] = {1, kNaN, -2, 2};
  EXPECT_EQ(Blas1::IDAMax(4, nanLater, 1), 3);
  std::vector<double> longNanFirst(300, 2.0);
  longNanFirst[0] = kNaN;
  longNanFirst[200] = 9.0;
  EXPECT_EQ(Blas1::IDAMax(300, longNanFirst.data(), 1), 1);
  longNanFirst[0] = -9.0;  // the first of two equal maxima
  EXPECT_EQ(Blas1::IDAMax(300, longNanFirst.data(), 1), 1);
  const double strided[6] = {1, 100, -4, 100, 4, 100};
  EXPECT_EQ(Blas1::IDAMax(3, strided, 2), 2);
}

TEST(Blas1Test, IDAMaxAgreesWithTheSequentialScanAcrossBlocks) {
  std::mt19937_64 rng(4);
  std::uniform_int_distribution<int> small(-50, 50);
  for (int n : {2, 3, 33, 1024, 1025, 2049, 5000}) {
    for (int trial = 0; trial < 20; ++trial) {
      // Few distinct magnitudes: many ties, some NaNs and infinities.
      std::vector<double> x(static_cast<std::size_t>(n));
      for (double& v : x) v = small(rng);
      if (trial % 4 == 1) x[static_cast<std::size_t>(rng() % x.size())] = kNaN;
      if (trial % 4 == 2) x[static_cast<std::size_t>(rng() % x.size())] = -kInf;
      if (trial % 4 == 3) {
        // A steadily rising sequence beats the maximum in every block.
        for (int k = 0; k < n; ++k) x[static_cast<std::size_t>(k)] = k * (k % 2 ? 1 : -1);
      }
      double best = std::fabs(x[0]);
      int expected = 1;
      for (int k = 1; k < n; ++k) {
        if (std::fabs(x[static_cast<std::size_t>(k)]) > best) {
          best = std::fabs(x[static_cast<std::size_t>(k)]);
          expected = k + 1;
        }
      }
      EXPECT_EQ(Blas1::IDAMax(n, x.data(), 1), expected) << "n=" << n;
    }
  }
}

TEST(Blas1Test, GivensRotation) {
  struct Case {
    double a, b, r, z, c, s;
  };
  const Case cases[] = {
      {3, 4, 5, 1 / 0.6, 0.6, 0.8},     {4, 3, 5, 0.6, 0.8, 0.6},
      {-3, 4, 5, -1 / 0.6, -0.6, 0.8},  {3, -4, -5, -1 / 0.6, -0.6, 0.8},
      {0, 0, 0, 0, 1, 0},               {0, 2, 2, 1, 0, 1},
      {-4, -3, -5, 0.6, 0.8, 0.6},
  };
  for (const Case& t : cases) {
    double a = t.a, b = t.b, c = -9, s = -9;
    Blas1::DRotG(&a, &b, &c, &s);
    EXPECT_NEAR(a, t.r, 1e-15) << t.a << "," << t.b;
    EXPECT_NEAR(b, t.z, 1e-14) << t.a << "," << t.b;
    EXPECT_NEAR(c, t.c, 1e-15) << t.a << "," << t.b;
    EXPECT_NEAR(s, t.s, 1e-15) << t.a << "," << t.b;
  }
  // The rotation maps (a, b) to (r, 0), for any inputs.
  std::mt19937_64 rng(5);
  for (const double ab : {1e-200, 1.0, 1e200}) {
    const std::vector<double> v = RandomVector(40, rng);
    for (std::size_t k = 0; k < v.size(); k += 2) {
      double a = v[k] * ab, b = v[k + 1] * ab, c, s;
      const double a0 = a, b0 = b;
      Blas1::DRotG(&a, &b, &c, &s);
      EXPECT_NEAR(c * c + s * s, 1.0, 1e-15);
      EXPECT_NEAR(c * a0 + s * b0, a, 4e-15 * std::fabs(a));
      EXPECT_NEAR(-s * a0 + c * b0, 0.0, 4e-15 * std::fabs(a));
    }
  }
}

TEST(Blas1Test, MachineConstants) {
  EXPECT_EQ(Blas1::DMach(1), std::ldexp(1.0, -52));
  EXPECT_EQ(Blas1::DMach(2), 8.900295434028806e-306);
  EXPECT_EQ(Blas1::DMach(3), 1.1235582092889475e+305);
}

TEST(Blas1DeathTest, XErBlaReportsAndExitsWithStatusOne) {
  // The report goes to standard output; route it to the error stream, which
  // the death test examines.
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        Blas1::XErBla("DGEMV", 3);
      },
      ::testing::ExitedWithCode(1),
      "^\nXERBLA - Fatal error!\n  On entry to routine DGEMV\n"
      "  input parameter number 3 had an illegal value.\n$");
}

TEST(Blas1DeathTest, DMachWithAnUnknownJobIsFatal) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        Blas1::DMach(4);
      },
      ::testing::ExitedWithCode(1), "On entry to routine DMACH\n  input parameter number 1 ");
}

}  // namespace
