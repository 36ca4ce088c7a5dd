// kxcommonr/common/random/KXRandomTwister.h
//
// KXRandomTwister: the 32-bit Mersenne Twister MT19937 of Matsumoto and
// Nishimura, with its published initialisations, recurrence and tempering
// unchanged; its outputs equal the reference implementation's (and
// std::mt19937's) word for word. All arithmetic is on 32-bit words, whatever
// the width of long.
//
// Beyond the reference generator it offers:
//   - bulk fills of a caller's buffer (FillInteger32, FillRealOpen), the same
//     words as repeated draws, whole blocks regenerated and tempered with the
//     wide vector units the processor has;
//   - the full state (624 words and the position) saved and restored, in a
//     versioned binary record and in the object stream, so that a restored
//     generator resumes mid-stream;
//   - Jump(): the state 2^128 words ahead, for independent parallel streams.
//
// The state lives in one heap block allocated by the constructor (the only
// allocation: the constructors throw std::bad_alloc when it fails) and
// released by the destructor. A generator drawn from before any Initialize
// seeds itself with 5489 on its first draw, as the reference code does.
//
// Example: four non-overlapping streams of 2^128 words each.
//   KXCommon::KXRandomTwister streams[4];
//   streams[0].Initialize(2024);
//   for (int k = 1; k < 4; ++k) { streams[k] = streams[k - 1]; streams[k].Jump(); }
//
// Thread rule: thread-compatible; one object per thread at a time.
#ifndef KXCOMMONR_COMMON_RANDOM_KXRANDOMTWISTER_H
#define KXCOMMONR_COMMON_RANDOM_KXRANDOMTWISTER_H

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iosfwd>

#include "kxcommonr/config.h"

namespace KXCommon {

namespace internal {
struct TwisterAccess;
}

class KXCOMMONR_API KXRandomTwister {
 public:
  // Bytes of the binary state record written by WriteState.
  static constexpr int kStateRecordBytes = 2508;

  // Not yet seeded (position 625): the first draw seeds with 5489.
  KXRandomTwister();
  // Copies the whole state, position included: the copy continues the same
  // stream.
  KXRandomTwister(const KXRandomTwister& other);
  KXRandomTwister& operator=(const KXRandomTwister& other);
  ~KXRandomTwister();

  // The reference single-integer initialisation with the low 32 bits of
  // seed: state[0] = seed, state[i] = 1812433253 * (state[i-1] xor
  // (state[i-1] >> 30)) + i; the next draw regenerates the block.
  void Initialize(unsigned long seed);
  // The reference array initialisation with the low 32 bits of key[0 ..
  // length-1]. Returns false, and changes nothing, when key is null or length
  // is 0 (the reference code would read key[0] all the same).
  bool InitByArray(unsigned long* key, unsigned long length);

  // The next tempered word.
  std::uint32_t GetInteger32();
  // GetInteger32() >> 1, on [0, 2^31 - 1].
  long GetInteger31();
  // GetInteger32() / (2^32 - 1), on [0, 1].
  double GetRealClosed();
  // GetInteger32() * 2^-32, on [0, 1).
  double GetRealClosedOpen();
  // (GetInteger32() + 0.5) * 2^-32, strictly inside (0, 1).
  double GetRealOpen();
  // Two draws a = w1 >> 5, b = w2 >> 6 (in that order): (a * 2^26 + b) *
  // 2^-53, on [0, 1) with 53-bit resolution.
  double GetRealRes53();

  // out[0..n-1] receive the next n words (FillInteger32) or the next n
  // GetRealOpen() values (FillRealOpen): exactly what n draws would give,
  // and the generator stands where they would leave it. Returns false,
  // and changes nothing, when out is null and n > 0. Never allocates.
  bool FillInteger32(std::uint32_t* out, std::size_t n);
  bool FillRealOpen(double* out, std::size_t n);

  // Advances the generator by 2^128 words, as 2^128 draws would (a
  // generator never seeded is seeded with 5489 first). Jumping k times from
  // one seed gives streams that do not overlap for 2^128 words each. Takes
  // about a millisecond; never allocates.
  void Jump();

  // Writes the whole state as a binary record of kStateRecordBytes bytes,
  // little-endian whatever the machine: the tag "KXMT", the format version
  // 1 (32 bits), the position (32 bits, 0..625) and the 624 words. Returns
  // kStateRecordBytes, or 0 when the stream was not good before or after
  // writing.
  int WriteState(std::ostream& os) const;
  // Reads a record written by WriteState and resumes exactly where the
  // writer stood. All or nothing: the generator is changed only when the
  // whole record was read and is valid (tag, version 1, position 0..625,
  // and a state that does not generate zeros for ever). Returns
  // kStateRecordBytes on success, 0 otherwise; the stream stands after
  // what was read.
  int ReadState(std::istream& is);

  // The same in the object stream: an object "KXRandomTwister" at the given
  // indent (tabs) holding Int lines for the version (1), the position and
  // the 624 words. Returns 1, or 0 when the stream is not good afterwards.
  int WriteStateXML(std::ostream& os, int indent) const;
  // Reads what WriteStateXML wrote, with the same checks as ReadState and
  // all or nothing. Returns 1 on success; on failure it writes "Failure
  // reading KXRandomTwister!\n" to the standard error stream, returns 0 and
  // leaves the generator unchanged.
  int ReadStateXML(std::ifstream& is);

 private:
  friend struct internal::TwisterAccess;

  // The heap block: the 624 words, then the position of the next word to
  // temper (624: the block is used up; 625: never seeded).
  struct State {
    alignas(64) std::uint32_t words[624];
    std::int32_t index;
  };

  // Seeds a generator that never was, then regenerates the block.
  void Refill();
  // Applies a validated state.
  void Assign(const std::uint32_t* words, std::int32_t index);

  State* fpState;
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_RANDOM_KXRANDOMTWISTER_H
