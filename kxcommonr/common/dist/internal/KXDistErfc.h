// kxcommonr/common/dist/internal/KXDistErfc.h
//
// The complementary error function for positive arguments (Ooura's
// approximation with exp(-w*w) formed from the exact square) and the normal
// lower tail built on it. Not installed; public headers never include it.
//
// Thread-safe: no state.
#ifndef KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTERFC_H
#define KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTERFC_H

namespace KXCommon {
namespace distmath {

// erfc(w) for w > 0 with exp(-w*w) formed from w*w split exactly; wLo is the
// low-order part of w. 0 where the exponent is below -708.
double ErfcPositive(double w, double wLo);
// Standard normal lower tail Phi(-z) for z > 0, with z * z carried in extra
// precision; 0 where Ooura's underflow guard (exponent below -708) applies.
double NormalLowerTail(double z);

}  // namespace distmath
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_DIST_INTERNAL_KXDISTERFC_H
