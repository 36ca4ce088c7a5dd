// kxcommonr/common/containers/KXBitSet.h
//
// KXBitSet: a growable vector of booleans with an explicit logical size. The
// matrix classes use it as a mask of rows or columns (redundant, swept,
// selected): they read it as a const input mask and fill it as an output mask.
// Positions outside the set read as false. Bit i lives in 32-bit word i / 32
// at bit position i % 32 (least significant bit first).
//
// A value type: copies are deep. Thread-compatible: one object per thread at a
// time; const members may run concurrently.
//
// Example:
//   KXCommon::KXBitSet swept(5);          // five false bits
//   swept.Set(2, true);
//   int count = swept.InSet();            // 1
#ifndef KXCOMMONR_COMMON_CONTAINERS_KXBITSET_H
#define KXCOMMONR_COMMON_CONTAINERS_KXBITSET_H

#include <cstdint>
#include <vector>

#include "kxcommonr/config.h"

namespace KXCommon {

class KXCOMMONR_API KXBitSet {
 public:
  // An empty set (size 0).
  KXBitSet();
  // n false bits; size 0 when n < 0.
  explicit KXBitSet(int n);
  KXBitSet(const KXBitSet& other);
  KXBitSet& operator=(const KXBitSet& other);
  ~KXBitSet();

  // True when the sizes are equal and every bit is equal.
  bool operator==(const KXBitSet& other) const;

  // The number of valid bits.
  int Size() const { return fSize; }

  // Re-initialises the set: n < 1 gives size 0, otherwise size n with every
  // bit (existing ones too, deliberately) set to value.
  void Resize(int n, bool value);
  // Sets every bit false; the size is unchanged.
  void Clear();
  // Adds one bit at the end and returns the new size.
  int Append(bool value);
  // Sets bit i. Returns false, changing nothing, unless 0 <= i < Size().
  bool Set(int i, bool value);
  // Sets bits first..last inclusive. Returns false, changing nothing, unless
  // 0 <= first <= last < Size().
  bool SetRange(int first, int last, bool value);
  // Sets every listed bit. All indices are validated first: if any lies
  // outside 0..Size()-1 nothing changes and false is returned. An empty list
  // returns true.
  bool SetSubset(std::vector<int> indices, bool value);

  // Bit i, or false when i is outside 0..Size()-1.
  bool IsIn(int i) const;
  // Number of true bits in first..last inclusive; -1 unless
  // 0 <= first <= last < Size().
  int InRange(int first, int last) const;
  // Number of true bits in start..start+count-1; -1 when start < 0, count < 0
  // or start+count-1 >= Size(); 0 when count is 0 (and start is valid).
  int InRangeS(int start, int count) const;
  // Number of true bits; 0 for an empty set.
  int InSet() const;
  // Bits first..last as a new set, after raising first to 0 and lowering last
  // to Size()-1; an empty set when then first > last. This set is unchanged.
  KXBitSet GetSubset(int first, int last) const;

  // Flips every bit.
  void Negate();
  // This set takes a's size; bit i = a[i] AND b[i], where bits beyond b's
  // size count as false. (AND keeps the first operand's length.)
  void DoAND(const KXBitSet& a, const KXBitSet& b);
  // This set takes the smaller of the two sizes; bit i = a[i] OR b[i].
  // (OR truncates to the shorter operand, unlike DoAND: intended.)
  void DoOR(const KXBitSet& a, const KXBitSet& b);
  // True if some position i < min(n, Size()) is true here and false in other
  // (positions beyond other's size count as false); false otherwise, also
  // when min(n, Size()) < 1.
  bool IsNewFalse(const KXBitSet& other, int n) const;

  // Prints "KXBitSet display start", the bits under "fbVec" and
  // "KXBitSet display end" through the diagnostic display.
  void Display() const;

 private:
  static constexpr int kWordBits = 32;

  // Words needed for n bits.
  static std::size_t WordCount(int n);
  // Clears the unused high bits of the last word so that whole-word
  // operations (counting, equality) see only valid bits.
  void ClearTail();

  int fSize;
  std::vector<std::uint32_t> fWords;
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_CONTAINERS_KXBITSET_H
