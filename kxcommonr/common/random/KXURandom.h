// kxcommonr/common/random/KXURandom.h
//
// KXURandom: the uniform generator every variate of the library draws from.
// Two flags and an optional caller's generator choose where a uniform comes
// from, in this order of precedence:
//   1. a caller's KXRandom, when one is held: its GetRandom();
//   2. use-portable false: the C library's rand() / RAND_MAX, on [0, 1]
//      (process-wide, seeded by srand; shared by every object in this mode);
//   3. use-portable true, use-twister false: the portable multiplicative
//      congruential generator seed = seed * 397204094 mod (2^31 - 1), giving
//      seed * 2^-31 on [0, 1); the seed is its whole state (a seed of 0, or
//      2^31 - 1, gives 0 for ever);
//   4. otherwise the Mersenne Twister (KXRandomTwister), (word + 0.5) *
//      2^-32, strictly inside (0, 1).
// The default generator is the twister seeded with 34567.
//
// Deliberate behaviour callers must not "fix":
//   - a copy restarts the twister from the stored seed, whatever the source
//     has drawn (to continue a stream, copy its twister: GetTwister());
//   - SetUsePortable(false) destroys the twister, and SetUsePortable(true)
//     does not bring it back: the portable generator takes over (one-way);
//   - ReadObject and ReadObjectXML set the seed and the flags only; they
//     neither reseed, create nor destroy the twister. When a record switches
//     the twister on for an object that has none, the object creates one on
//     its next draw or SetSeed, seeded from the stored seed, as a copy of it
//     would.
//
// Seeds are 32-bit: seeds given as unsigned long keep their low 32 bits.
//
// Records: WriteObject writes 20 bytes, little-endian whatever the machine:
//   offset 0  "KXUR" (4 ASCII bytes)    offset 4  the seed as an IEEE double
//   offset 12 use-portable (int32 1/0)  offset 16 use-twister (int32 1/0)
// WriteObjectXML writes the object "KXURandom" of the object stream: a
// Double (the seed) and two Int lines (use-portable, use-twister as 1/0).
// Neither holds the twister's position; KXRandomTwister::WriteState does.
//
// Example: a reproducible stream, saved with its settings.
//   KXCommon::KXURandom u(2024, true, true, nullptr);
//   double x = u.GetRandom();
//   std::fstream f("u.bin", std::ios::out | std::ios::binary);
//   u.WriteObject(f);
//
// Thread rule: thread-compatible, one object per thread at a time; the
// rand() mode shares the C library's process-wide generator.
#ifndef KXCOMMONR_COMMON_RANDOM_KXURANDOM_H
#define KXCOMMONR_COMMON_RANDOM_KXURANDOM_H

#include <cstdint>
#include <fstream>
#include <iosfwd>

#include "kxcommonr/common/random/KXRandom.h"
#include "kxcommonr/common/random/KXRandomTwister.h"
#include "kxcommonr/config.h"

namespace KXCommon {

namespace internal {
struct URandomAccess;
}

class KXCOMMONR_API KXURandom {
 public:
  // Bytes of the record written by WriteObject.
  static constexpr int kRecordBytes = 20;

  // Seed 34567, the twister, seeded with 34567.
  KXURandom();
  // Stores the seed and use-portable; use-twister becomes usePortable &&
  // useTwister && user == nullptr, and only then is a twister created and
  // seeded. user (may be null) is not owned: it must outlive its use here.
  KXURandom(unsigned long seed, bool usePortable, bool useTwister, KXRandom* user);
  // Copies the seed, the flags and the caller's generator pointer; with
  // use-twister the copy gets a twister of its own, seeded from the seed.
  KXURandom(const KXURandom& other);
  // As the copy constructor; nothing happens on self-assignment.
  KXURandom& operator=(const KXURandom& other);
  ~KXURandom();

  // Stores the seed; without use-portable also srand(seed); else with
  // use-twister reseeds the twister; else (portable generator) the seed is
  // the generator's new state.
  void SetSeed(unsigned long seed);
  // Stores the flag; false also switches the twister off and destroys it.
  // One-way: true does not bring the twister back.
  void SetUsePortable(bool usePortable);
  bool GetUsePortable() const { return fbUsePortable; }
  bool GetUseTwister() const { return fbUseTwister; }
  // The stored seed (for the portable generator: its current state).
  std::uint32_t GetSeed() const { return fuSeed; }
  // The twister, or null when there is none. It may be saved, restored or
  // jumped through this pointer; it stays owned by this object.
  KXRandomTwister* GetTwister() { return fpTwister; }
  const KXRandomTwister* GetTwister() const { return fpTwister; }

  // One uniform number by the rules above.
  double GetRandom();

  // Writes the 20-byte record. Returns 20, or 0 when the stream was not
  // good before writing (nothing written) or after it.
  int WriteObject(std::fstream& fs) const;
  // Does nothing and returns 0 when the stream is not good. Otherwise reads
  // 4 bytes and, only when they are "KXUR", the other 16; when the whole
  // record was read and its seed is a number in [0, 2^32) (truncated to an
  // integer), assigns the seed and the flags (each true exactly when its
  // integer is 1) and returns 20. Otherwise returns 0 with nothing assigned.
  int ReadObject(std::fstream& fs);

  // Writes the object "KXURandom" at the given indent (tabs). Returns 1, or
  // 0 when the stream is not good afterwards.
  int WriteObjectXML(std::ostream& os, int indent) const;
  // Reads the object "KXURandom": the start of the object, a Double, two
  // Int lines and the end of the object. When every step succeeds and the
  // Double is a number in [0, 2^32) (truncated), assigns the seed and the
  // flags (each true exactly when its value is 1) and returns 1. Otherwise
  // writes "Failure reading KXURandom!\n" to the standard error stream and
  // returns 0 with nothing assigned.
  int ReadObjectXML(std::ifstream& is);

  // Prints "KXURandom display start", "The seed", "Portable RNG indicator",
  // "Mersenne Twister RNG indicator" and "KXURandom display end" through
  // KXComponentDisplay.
  void Display() const;

 private:
  friend struct internal::URandomAccess;

  // A new twister seeded from the seed (replacing none).
  void CreateTwister();
  // Sets fpDrawTwister from the fields it derives from; called after every
  // change of them.
  void UpdateDrawPath();
  // Stores a seed read from a record when it is a number in [0, 2^32).
  bool AssignRead(double seed, bool usePortable, bool useTwister);

  std::uint32_t fuSeed;
  bool fbUsePortable;
  bool fbUseTwister;
  KXRandomTwister* fpTwister;  // owned; present with use-twister
  KXRandom* fpUser;            // not owned
  // The twister when it alone draws (no caller's generator, use-portable
  // and use-twister set), else null: the one test of the common draw.
  KXRandomTwister* fpDrawTwister;
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_RANDOM_KXURANDOM_H
