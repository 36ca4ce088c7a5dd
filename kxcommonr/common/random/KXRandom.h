// kxcommonr/common/random/KXRandom.h
//
// KXRandom: the interface of a uniform generator that a caller supplies to
// KXURandom (KXURandom.h). When a KXURandom holds one, every uniform the
// library draws through that KXURandom is the result of GetRandom() on it,
// so a caller can substitute any generator, count draws, or replay a
// recorded sequence.
//
// The layout of the virtual table is fixed: the destructor in the first
// slot, GetRandom in the second.
//
// Example: a generator that counts the uniforms it hands out.
//   class Counting : public KXCommon::KXRandom {
//    public:
//     double GetRandom() override { ++count; return twister.GetRealOpen(); }
//     KXCommon::KXRandomTwister twister;
//     long count = 0;
//   };
//
// Thread rule: whatever the implementation provides; the library calls it
// only from the thread that draws from the KXURandom holding it.
#ifndef KXCOMMONR_COMMON_RANDOM_KXRANDOM_H
#define KXCOMMONR_COMMON_RANDOM_KXRANDOM_H

#include "kxcommonr/config.h"

namespace KXCommon {

class KXCOMMONR_API KXRandom {
 public:
  KXRandom() = default;
  KXRandom(const KXRandom&) = default;
  KXRandom& operator=(const KXRandom&) = default;
  virtual ~KXRandom();

  // One uniform number. The library expects values in [0, 1]; it never
  // checks them, but no value (NaN included) makes a draw of the library
  // crash or hang: a variate that cannot use it returns the missing value.
  virtual double GetRandom() = 0;
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_RANDOM_KXRANDOM_H
