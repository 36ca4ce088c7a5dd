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
  // The next two words, when the block holds both (false: nothing drawn).
  static KX_ALWAYS_INLINE bool NextPair(KXRandomTwister& t, std::uint32_t& a, std::uint32_t& b) {
    KXRandomTwister::State& s = *t.fpState;
    if (s.index > kTwisterWords - 2) return false;
    a = TwisterTemper(s.words[s.index]);
    b = TwisterTemper(s.words[s.index + 1]);
    s.index += 2;
    return true;
  }
  static std::uint32_t* Words(KXRandomTwister& t) { return t.fpState->words; }
  static std::int32_t& Index(KXRandomTwister& t) { return t.fpState->index; }
};

struct URandomAccess {
  // KXURandom::GetRandom: the caller's generator, rand(), the portable
  // congruential generator or the twister, in that order of precedence. The
  // common case, the twister, is inline; the others are not.
  static KX_ALWAYS_INLINE double Draw(KXURandom& g) {
    if (g.fpDrawTwister != nullptr) return TwisterRealOpen(TwisterAccess::Next(*g.fpDrawTwister));
    return DrawOther(g);
  }
  // Two draws in order, exactly as two calls of Draw: one pass through the
  // precedence when the twister's block holds both words.
  static KX_ALWAYS_INLINE void DrawPair(KXURandom& g, double& first, double& second) {
    std::uint32_t a, b;
    if (g.fpDrawTwister != nullptr && TwisterAccess::NextPair(*g.fpDrawTwister, a, b)) {
      first = TwisterRealOpen(a);
      second = TwisterRealOpen(b);
      return;
    }
    first = Draw(g);
    second = Draw(g);
  }
  // Draw by the full order of precedence (KXURandom.cpp).
  static double DrawOther(KXURandom& g);
};

}  // namespace internal
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_RANDOM_INTERNAL_KXRANDOMACCESS_H
