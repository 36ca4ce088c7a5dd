// kxcommonr/common/containers/KXHashKey.h
//
// KXHashKey: a fixed-length tuple of ints with a cached 32-bit hash code, the
// key of hash tables and ordered maps addressed by combinations of integer
// codes (for example the category codes of several variables). The hash mixes
// the elements with a table of small primes after shifting every element by a
// library-wide offset:
//   h = XOR over i of PRIME_FACTOR[i mod 49] * (element[i] + offset)
// in 32-bit wrap-around arithmetic; an empty key hashes to 0.
//
// The hash is cached: writing elements through operator[] does not update it;
// call UpdateHashCode() after filling a key.
//
// Threads: keys are values, one object per thread at a time. The element
// offset is one process-wide value read without locks: set it once, before
// keys are built (changing it changes every hash computed afterwards).
#ifndef KXCOMMONR_COMMON_CONTAINERS_KXHASHKEY_H
#define KXCOMMONR_COMMON_CONTAINERS_KXHASHKEY_H

#include <vector>

#include "kxcommonr/config.h"

namespace KXCommon {

class KXCOMMONR_API KXHashKey {
 public:
  // The 49 odd primes 3, 5, 7, ..., 227, 229.
  static const int PRIME_FACTOR[49];

  // Count 0, no elements, hash 0.
  KXHashKey();
  // n elements, all 0, and the hash computed from them. n < 0 gives an empty
  // key.
  explicit KXHashKey(int n);
  // Deep copies; the hash code is copied, not recomputed.
  KXHashKey(const KXHashKey& other);
  KXHashKey& operator=(const KXHashKey& other);
  ~KXHashKey();

  // Element i, writable; does not update the hash. REQUIRES 0 <= i < count:
  // an index outside reads and writes a scratch int of this key instead of
  // memory outside it.
  int& operator[](int i);
  int operator[](int i) const;
  // The number of elements.
  int Size() const { return fCount; }

  // Recomputes and stores the hash; call after filling the elements.
  void UpdateHashCode();
  // The stored hash.
  int GetHashcode() const { return fHashCode; }

  // Equal stored hashes, equal counts and equal elements.
  bool operator==(const KXHashKey& other) const;
  bool operator!=(const KXHashKey& other) const { return !(*this == other); }
  // The number of leading positions at which the two keys agree, stopping at
  // the end of either key; 0 for an empty key.
  int Mismatch(const KXHashKey& other) const;

  // The process-wide element offset (initially 53968).
  static void SetElementOffset(int offset);
  static int GetElementOffset();
  // The largest element value the hash is meant for: 9377657 - offset.
  static int GetElementUpperBound();

  // Prints "\t Key: " followed by "  %d" per element through the diagnostic
  // display.
  void Display() const;

 private:
  int ComputeHashCode() const;

  static int ADD_LOWER_BOUND;

  std::vector<int> fElements;
  int fCount;
  int fHashCode;
  int fScratch;
};

// A shorter key orders first; keys of equal length compare element by element
// as signed ints. The hash code plays no part.
KXCOMMONR_API bool operator<(const KXHashKey& a, const KXHashKey& b);

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_CONTAINERS_KXHASHKEY_H
