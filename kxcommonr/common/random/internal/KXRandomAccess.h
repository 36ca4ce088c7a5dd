// kxcommonr/common/random/internal/KXRandomAccess.h
//
// The draw paths of the generators as inline functions, for the variates
// and the generators themselves: a draw inside the library costs no call
// through the exported interface. Tests use TwisterAccess to reach the raw
// state. Library-internal.
//
// Thread rule: as the objects they are called on.
#ifndef KXCOMMONR_COMMON_RANDOM_INTERNAL_KXRANDOMACCESS_H
#define KXCOMMONR_COMMON_RANDOM_INTERNAL_KXRANDOMACCESS_H

#include <cstdint>
#include <cstdlib>

#include "kxcommonr/common/random/KXRandomTwister.h"
#include "kxcommonr/common/random/KXURandom.h"
#include "kxcommonr/common/random/internal/KXTwisterKernels.h"

namespace KXCommon {
namespace internal {

struct TwisterAccess {
  static KX_ALWAYS_INLINE std::uint32_t Next(KXRandomTwister& t) {
    KXRandomTwister::State& s = *t.fpState;
    if (s.index >= kTwisterWords) t.Refill();
    return TwisterTemper(s.words[s.index++]);
  }
  static std::uint32_t* Words(KXRandomTwister& t) { return t.fpState->words; }
  static std::int32_t& Index(KXRandomTwister& t) { return t.fpState->index; }
};

struct URandomAccess {
  // KXURandom::GetRandom: the caller's generator, rand(), the portable
  // congruential generator or the twister, in that order of precedence.
  static KX_ALWAYS_INLINE double Draw(KXURandom& g) {
    if (g.fpUser != nullptr) return g.fpUser->GetRandom();
    if (!g.fbUsePortable) return std::rand() / static_cast<double>(RAND_MAX);
    if (!g.fbUseTwister) {
      g.fuSeed = static_cast<std::uint32_t>(static_cast<std::uint64_t>(g.fuSeed) * 397204094u %
                                            2147483647u);
      return g.fuSeed * 4.656612873077393e-10;
    }
    if (g.fpTwister == nullptr) g.CreateTwister();
    return TwisterRealOpen(TwisterAccess::Next(*g.fpTwister));
  }
};

}  // namespace internal
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_RANDOM_INTERNAL_KXRANDOMACCESS_H
