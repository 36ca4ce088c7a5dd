// kxcommonr/common/random/internal/KXTwisterKernels.h
//
// The block kernels of the Mersenne Twister MT19937 on a raw state of 624
// words: regenerating the whole block with the recurrence, tempering words
// into a caller's buffer (as words, or as reals on (0, 1)), and the jump
// ahead by a polynomial. Library-internal.
//
// Every kernel has exactly the result of the textbook loop: the words are
// integers, so the AVX-512, AVX2 and baseline versions chosen at run time
// (ActiveIsa(), capped for tests with SetKernelLevel) agree bit for bit.
//
// Thread rule: pure functions of their arguments.
#ifndef KXCOMMONR_COMMON_RANDOM_INTERNAL_KXTWISTERKERNELS_H
#define KXCOMMONR_COMMON_RANDOM_INTERNAL_KXTWISTERKERNELS_H

#include <cstdint>

#include "kxcommonr/common/simd/KXDispatch.h"

namespace KXCommon {
namespace internal {

constexpr int kTwisterWords = 624;  // n, the words of the state
constexpr int kTwisterShift = 397;  // m, the distance of the recurrence
constexpr std::uint32_t kTwisterMatrix = 0x9908b0dfu;
constexpr std::uint32_t kTwisterUpper = 0x80000000u;
constexpr std::uint32_t kTwisterLower = 0x7fffffffu;

// One step of the recurrence: the new word from the upper bit of `current`,
// the lower 31 bits of `next` and the word `far` positions ahead.
inline std::uint32_t TwisterTwist(std::uint32_t current, std::uint32_t next,
                                  std::uint32_t far) {
  const std::uint32_t y = (current & kTwisterUpper) | (next & kTwisterLower);
  return far ^ (y >> 1) ^ ((0u - (y & 1u)) & kTwisterMatrix);
}

// The output transformation of one word.
inline std::uint32_t TwisterTemper(std::uint32_t y) {
  y ^= y >> 11;
  y ^= (y << 7) & 0x9d2c5680u;
  y ^= (y << 15) & 0xefc60000u;
  y ^= y >> 18;
  return y;
}

// (w + 0.5) * 2^-32: a word as a real strictly inside (0, 1), computed
// exactly as (2w + 1) * 2^-33 (one operation fewer).
inline double TwisterRealOpen(std::uint32_t w) {
  return static_cast<double>(2 * static_cast<std::int64_t>(w) + 1) * 1.1641532182693481e-10;
}

// The next block of 624 words from the current one, in place: the reference
// loop word by word (TwisterRegeneratePlain) or vectorised at ActiveIsa().
void TwisterRegeneratePlain(std::uint32_t* state);
void TwisterRegenerate(std::uint32_t* state);

// out[i] = temper(words[i]) for i < n (TemperWords), or its real on (0, 1)
// (TemperRealsOpen), at ActiveIsa().
void TwisterTemperWords(const std::uint32_t* words, std::uint32_t* out, std::int64_t n);
void TwisterTemperRealsOpen(const std::uint32_t* words, double* out, std::int64_t n);

// Advances the generator whose block is `state` with position `index`
// (0..624) by q(t): afterwards the state is q applied by Horner's rule to the
// window of 624 words that starts one word after the next output, and index
// is 0. With q = t^(N-1) modulo the characteristic polynomial this is a jump
// of N words (KXTwisterJumpTable.h holds q for N = 2^128); q = t^(N-1)
// itself, for N <= 19937, needs no reduction. q has `words` words of
// coefficients, bit i of word k that of t^(32k+i).
void TwisterJump(std::uint32_t* state, std::int32_t& index, const std::uint32_t* q,
                 int words);

}  // namespace internal
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_RANDOM_INTERNAL_KXTWISTERKERNELS_H
