#include "kxcommonr/common/foundation/KXPower.h"

#include <cmath>

#include "kxcommonr/common/foundation/KXMV.h"

namespace KXCommon {

const double KXPower::gMachineEpsilon = 2.220446049250313080847e-16;
const double KXPower::gMachineMaxExp = 709.0;
const double KXPower::gMachineMinExp = -708.39;
const int KXPower::gMachineMaxInt = 2147483647;

bool KXPower::ExpOverflow(double x) { return x > gMachineMaxExp; }

bool KXPower::ExpUnderflow(double x) { return x < gMachineMinExp; }

bool KXPower::IsInteger(double x) {
  return x <= static_cast<double>(gMachineMaxInt) && std::floor(x) == x;
}

bool KXPower::IsEvenInteger(double x) {
  const double half = x * 0.5;
  return IsInteger(x) && std::floor(half) == half;
}

bool KXPower::IsOddInteger(double x) {
  const double v = x * 0.5 + 0.5;
  return IsInteger(x) && std::floor(v) == v;
}

bool KXPower::AlmostEqual(double a, double b, double tol) {
  if (a == 0) return b == 0;
  if (b == 0 || (a < 0) != (b < 0)) return false;
  const double d = std::fabs(a) - std::fabs(b);
  const double relative = d < 0 ? -d / std::fabs(b) : d / std::fabs(a);
  return gMachineEpsilon * tol >= relative;
}

bool KXPower::IsOneOverEvenInteger(double x, double tol) {
  if (x == 0) return false;
  const double y = 1.0 / x;
  if (y > static_cast<double>(gMachineMaxInt)) return false;
  const double h = y * 0.5;
  return AlmostEqual(h, std::floor(h + 0.5), tol);
}

bool KXPower::IsOneOverOddInteger(double x, double tol) {
  if (x == 0) return false;
  const double y = 1.0 / x;
  if (y > static_cast<double>(gMachineMaxInt)) return false;
  const double h = y * 0.5 + 0.5;
  return AlmostEqual(h, std::floor(h + 0.5), tol);
}

KXPower::PowerStatus KXPower::Exponent(double x, double& result) {
  if (x < gMachineMinExp) {
    result = 0.0;
    return kPowerUnderflow;
  }
  if (x > gMachineMaxExp) {
    result = KXMV::Missing();
    return kPowerOverflow;
  }
  result = std::exp(x);
  return kPowerOK;
}

KXPower::PowerStatus KXPower::Power(double base, double y, double& result) {
  result = KXMV::Missing();
  if (base == 0) {
    if (y == 0) {
      result = 1.0;
      return kPowerZeroBaseZero;
    }
    if (y > 0) {
      result = 0.0;
      return kPowerOK;
    }
    if (y < 0) return kPowerZeroBaseNegative;
    return kPowerNegativeBaseInvalid;  // NaN exponent of a zero base
  }
  if (base > 0) {
    if (y == 0) {
      result = 1.0;
      return kPowerOK;
    }
    return Exponent(std::log(base) * y, result);
  }
  if (!(base < 0)) return kPowerNegativeBaseInvalid;  // NaN base
  if (y == 0) {
    result = 1.0;
    return kPowerNegativeBaseZero;
  }
  if (IsEvenInteger(y)) return Exponent(std::log(-base) * y, result);
  if (IsOddInteger(y) || IsOneOverOddInteger(y, 32.0)) {
    PowerStatus status = Exponent(std::log(-base) * y, result);
    if (KXMV::IsMissing(result)) {
      if (y > 0) status = kPowerNegativeBaseOverflow;
    } else {
      result = -result;
    }
    return status;
  }
  return kPowerNegativeBaseInvalid;
}

double KXPower::Multiply(double a, double b) {
  if (a == 0 || b == 0) return 0.0;
  const bool negative = (a < 0) != (b < 0);
  const double s = std::log(std::fabs(a)) + std::log(std::fabs(b));
  if (s < gMachineMinExp) return negative ? -0.0 : 0.0;
  if (s > gMachineMaxExp) return KXMV::Missing();
  const double magnitude = std::exp(s);
  return negative ? -magnitude : magnitude;
}

}  // namespace KXCommon
