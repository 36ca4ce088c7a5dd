// kxcommonr/common/dist/internal/KXDistErfc.cpp
//
// Ooura's complementary error function, its polynomial in Estrin's scheme
// and exp(-w*w) from the exact square, and the normal lower tail with its
// argument z / sqrt(2) in double-double.
#include "kxcommonr/common/dist/internal/KXDistErfc.h"

#include <cmath>

#include "kxcommonr/common/dist/internal/KXDistElementary.h"
#include "kxcommonr/common/dist/internal/KXDistTables.h"

namespace KXCommon {
namespace distmath {

namespace {

// 1/sqrt(2) as a double-double.
constexpr double kInvSqrt2Hi = 0.7071067811865476;
constexpr double kInvSqrt2Lo = -4.833646656726457e-17;

}  // namespace

double ErfcPositive(double w, double wLo) {
  using disttables::kOouraErfc;
  using disttables::kOouraErfcT;
  const double t = kOouraErfcT / (w + kOouraErfcT);
  const double u = t - 0.5;
  // Degree-22 polynomial in Estrin's scheme (pairs, then powers u^2, u^4,
  // u^8, u^16), for instruction-level parallelism.
  const double* c = kOouraErfc;  // c[0] multiplies u^22
  const double u2 = u * u;
  const double u4 = u2 * u2;
  const double u8 = u4 * u4;
  const double u16 = u8 * u8;
  // Pairs c[22-2k] + c[21-2k] u for the powers u^(2k).
  const double p0 = c[22] + c[21] * u, p1 = c[20] + c[19] * u;
  const double p2 = c[18] + c[17] * u, p3 = c[16] + c[15] * u;
  const double p4 = c[14] + c[13] * u, p5 = c[12] + c[11] * u;
  const double p6 = c[10] + c[9] * u, p7 = c[8] + c[7] * u;
  const double p8 = c[6] + c[5] * u, p9 = c[4] + c[3] * u;
  const double p10 = c[2] + c[1] * u;
  const double q0 = p0 + p1 * u2, q1 = p2 + p3 * u2;
  const double q2 = p4 + p5 * u2, q3 = p6 + p7 * u2;
  const double q4 = p8 + p9 * u2, q5 = p10 + c[0] * u2;
  const double r0 = q0 + q1 * u4, r1 = q2 + q3 * u4, r2 = q4 + q5 * u4;
  const double poly = (r0 + r1 * u8) + r2 * u16;
  const double y = t * poly;
  if (!(y > 0.0)) return 0.0;
  // Underflow guard of the logarithmic form; the value itself is formed from
  // the exact square w*w = hi + lo so that exp(-w*w) keeps full accuracy.
  // erfc(w) exp(w*w) = y <= 1 and y > 0.02 while w*w < 700, so the
  // logarithm is needed only beyond.
  if (w * w >= 700.0 && std::log(y) - w * w < -708.0) return 0.0;
  double squareHi, squareLo;
  TwoProduct(w, w, squareHi, squareLo);
  const double squareTail = squareLo + 2.0 * w * wLo;
  return y * std::exp(-squareHi) * (1.0 - squareTail);
}

double NormalLowerTail(double z) {
  double wHi, wLo;
  TwoProduct(z, kInvSqrt2Hi, wHi, wLo);
  wLo += z * kInvSqrt2Lo;
  double hi, lo;
  TwoSum(wHi, wLo, hi, lo);
  return 0.5 * ErfcPositive(hi, lo);
}

}  // namespace distmath
}  // namespace KXCommon
