// kxcommonr/common/foundation/KXPower.h
//
// KXPower: the machine constants of the library and exponentiation and
// multiplication guarded against overflow. Exponent and Power report through a
// PowerStatus and always write a result (the missing value where there is no
// number); Multiply signals overflow by returning the missing value, which
// callers test with KXMV::IsMissing.
//
// Deliberate asymmetries (do not "fix"): a negative base with exponent 0 gives
// 1.0 with status 5, a positive base gives 1.0 with status 0; odd roots of
// negative bases (y = 1/3, 1/5, ...) are defined and negative while y = 1/2 is
// refused; IsInteger has no lower bound.
//
// All static and pure; safe from any thread.
#ifndef KXCOMMONR_COMMON_FOUNDATION_KXPOWER_H
#define KXCOMMONR_COMMON_FOUNDATION_KXPOWER_H

#include "kxcommonr/config.h"

namespace KXCommon {

class KXCOMMONR_API KXPower {
 public:
  // Result of Exponent and Power; the numbers are fixed.
  enum PowerStatus {
    kPowerOK = 0,                    // the value
    kPowerUnderflow = 1,             // exponent below MinExp: 0.0 (or -0.0)
    kPowerOverflow = 2,              // exponent above MaxExp: missing value
    kPowerNegativeBaseOverflow = 3,  // negative base, odd power overflowed
    kPowerNegativeBaseInvalid = 4,   // negative base, exponent not usable
    kPowerNegativeBaseZero = 5,      // negative base, exponent 0: 1.0
    kPowerZeroBaseNegative = 6,      // base 0, negative exponent: missing
    kPowerZeroBaseZero = 7           // base 0, exponent 0: 1.0
  };

  // 2^-52.
  static const double gMachineEpsilon;
  // 709.0, the largest argument for which exp is evaluated.
  static const double gMachineMaxExp;
  // -708.39, the smallest argument for which exp is evaluated.
  static const double gMachineMinExp;
  // 2147483647.
  static const int gMachineMaxInt;

  static double MaxExp() { return gMachineMaxExp; }
  static double MinExp() { return gMachineMinExp; }
  static int MaxInt() { return gMachineMaxInt; }
  static double MEpsilon() { return gMachineEpsilon; }

  // x > MaxExp().
  static bool ExpOverflow(double x);
  // x < MinExp().
  static bool ExpUnderflow(double x);

  // x <= MaxInt() and floor(x) == x. No lower bound: -5e15 qualifies; NaN
  // does not.
  static bool IsInteger(double x);
  // IsInteger(x) and floor(x/2) == x/2.
  static bool IsEvenInteger(double x);
  // IsInteger(x) and v = x/2 + 1/2 has floor(v) == v.
  static bool IsOddInteger(double x);

  // Relative equality in units of machine epsilon: true when
  // ||a| - |b|| / max(|a|, |b|) <= tol * MEpsilon(). a == 0 requires b == 0;
  // values of opposite signs are never equal.
  static bool AlmostEqual(double a, double b, double tol);
  // x is 1/k for an even integer k, to tol epsilons. False for x == 0 or
  // 1/x > MaxInt().
  static bool IsOneOverEvenInteger(double x, double tol);
  // x is 1/k for an odd integer k, to tol epsilons. False for x == 0 or
  // 1/x > MaxInt().
  static bool IsOneOverOddInteger(double x, double tol);

  // result = exp(x): 0.0 with status 1 below MinExp(), the missing value with
  // status 2 above MaxExp().
  static PowerStatus Exponent(double x, double& result);
  // result = base^y, status as in PowerStatus. result is the missing value
  // whenever no number results. A NaN base gives status 4.
  static PowerStatus Power(double base, double y, double& result);
  // a * b computed through logarithms so that it never overflows: 0.0 (or
  // -0.0) on underflow, the missing value (never negated) on overflow.
  static double Multiply(double a, double b);
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_FOUNDATION_KXPOWER_H
