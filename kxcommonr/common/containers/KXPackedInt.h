// kxcommonr/common/containers/KXPackedInt.h
//
// KXPackedInt: packs a tuple of small integer codes into as few ints as
// possible by mixed radix, each packed int staying below the hash key's element
// upper bound (KXHashKey::GetElementUpperBound()), so that a long tuple of
// codes becomes a short KXHashKey. Position i takes the codes
// lowerBound .. lowerBound + count[i] - 1. Consecutive positions share a
// storage unit while the product of their counts stays below the bound; the
// first position of a unit is its least significant digit.
//
// One quirk is kept on purpose: the unit test is made before anything is in
// the first unit, so a first position whose count alone exceeds the bound is
// numbered unit 1 and the unit count is one larger than the units filled.
// Counts are meant to stay below the bound.
//
// A value type. Thread-compatible; the layout depends on the hash key's
// process-wide element offset at the time it is set up.
#ifndef KXCOMMONR_COMMON_CONTAINERS_KXPACKEDINT_H
#define KXCOMMONR_COMMON_CONTAINERS_KXPACKEDINT_H

#include <vector>

#include "kxcommonr/config.h"

namespace KXCommon {

class KXCOMMONR_API KXPackedInt {
 public:
  // Everything 0 or empty.
  KXPackedInt();
  // Stores the arguments and lays out the units; a refused layout (see
  // SetForSequence) leaves n at 0.
  KXPackedInt(int n, int lowerBound, const std::vector<int>& counts);
  KXPackedInt(const KXPackedInt& other);
  KXPackedInt& operator=(const KXPackedInt& other);
  ~KXPackedInt();

  // Stores the arguments and lays out the units. Returns false, leaving n at
  // 0 and no value counts, when n < 1, counts has fewer than n entries or one
  // of the first n counts is below 1.
  bool SetForSequence(int n, int lowerBound, const std::vector<int>& counts);

  int GetLowerBound() const { return fLowerBound; }
  // Value count of position i; -1 when i is outside 0..n-1.
  int GetNDiffVal(int i) const;
  // The number of packed ints a tuple needs.
  int GetNUnits() const { return fNUnits; }

  // Packs codes[0..n-1] into `packed` (resized to the unit count). With
  // check, codes must hold n entries each within its position's range,
  // otherwise false is returned and nothing is written. Without check the
  // ranges are trusted, but codes shorter than n is still refused.
  bool Pack(const std::vector<int>& codes, std::vector<int>& packed,
            bool check) const;
  // Unpacks into codes, grown to n entries if shorter. Returns false, writing
  // nothing, when packed has fewer entries than the unit count. Inverts Pack
  // for every tuple that passes its check.
  bool Unpack(std::vector<int>& codes, const std::vector<int>& packed) const;

  // Prints the fields between "KXPackedInt display start" and
  // "KXPackedInt display end" through the diagnostic display.
  void Display() const;

 private:
  bool Setup();

  int fN;
  int fLowerBound;
  std::vector<int> fvNDiffVal;
  int fNUnits;
  std::vector<int> fvUnit;
  std::vector<int> fvMultiplier;
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_CONTAINERS_KXPACKEDINT_H
