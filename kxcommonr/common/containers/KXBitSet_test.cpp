#include "kxcommonr/common/containers/KXBitSet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <vector>

#include "kxcommonr/testing/DisplayCapture.h"

namespace {

using KXCommon::KXBitSet;
using Bits = std::vector<bool>;

// The reference: a plain vector of booleans, read as the header describes.
bool At(const Bits& bits, int i) { return i >= 0 && i < static_cast<int>(bits.size()) && bits[i]; }
bool ValidRange(const Bits& bits, int first, int last) {
  return 0 <= first && first <= last && last < static_cast<int>(bits.size());
}
int CountIn(const Bits& bits, int first, int last) {
  if (!ValidRange(bits, first, last)) return -1;
  return static_cast<int>(std::count(bits.begin() + first, bits.begin() + last + 1, true));
}
KXBitSet Build(const Bits& bits) {
  KXBitSet set(static_cast<int>(bits.size()));
  for (std::size_t i = 0; i < bits.size(); ++i) set.Set(static_cast<int>(i), bits[i]);
  return set;
}
Bits RandomBits(int n, std::mt19937& rng) {
  Bits bits(static_cast<std::size_t>(n));
  for (std::size_t i = 0; i < bits.size(); ++i) bits[i] = (rng() & 1u) != 0;
  return bits;
}
int RandomIndex(int n, std::mt19937& rng) { return static_cast<int>(rng() % (n + 4)) - 2; }

// Every query, on random bounds that are valid or not, against the reference.
void ExpectSameAsReference(const KXBitSet& set, const Bits& bits, std::mt19937& rng) {
  const int n = static_cast<int>(bits.size());
  ASSERT_EQ(set.Size(), n);
  for (int i = -2; i < n + 2; ++i) ASSERT_EQ(set.IsIn(i), At(bits, i)) << i;
  EXPECT_EQ(set.InSet(), n == 0 ? 0 : CountIn(bits, 0, n - 1));
  EXPECT_TRUE(set == Build(bits));  // also: no stray bits beyond the size
  const int first = RandomIndex(n, rng), last = RandomIndex(n, rng), count = last - first + 1;
  EXPECT_EQ(set.InRange(first, last), CountIn(bits, first, last)) << first << ".." << last;
  EXPECT_EQ(set.InRangeS(first, count),
            count == 0 && first >= 0 && first <= n ? 0 : CountIn(bits, first, last));
  const int lo = std::max(first, 0), hi = std::min(last, n - 1);
  EXPECT_TRUE(set.GetSubset(first, last) ==
              Build(lo > hi ? Bits() : Bits(bits.begin() + lo, bits.begin() + hi + 1)));
  const Bits other = RandomBits(static_cast<int>(rng() % 70), rng);
  bool newFalse = false;
  for (int i = 0; i < std::min(last, n); ++i) newFalse = newFalse || (bits[i] && !At(other, i));
  EXPECT_EQ(set.IsNewFalse(Build(other), last), newFalse);
}

// Random operations on sizes around the 32-bit words, each applied to the set
// and to the reference, refusals included (a refused call changes nothing).
TEST(KXBitSetTest, EveryOperationAgreesWithAVectorOfBools) {
  std::mt19937 rng(7);
  KXBitSet set;
  Bits bits;
  for (int step = 0; step < 3000; ++step) {
    const int n = static_cast<int>(bits.size());
    const bool value = (rng() & 1u) != 0;
    const int first = RandomIndex(n, rng), last = RandomIndex(n, rng);
    switch (rng() % 8) {
      case 0: {
        const int sizes[] = {-1, 0, 1, 31, 32, 33, 64, 65, 97};
        const int size = sizes[rng() % 9];
        set.Resize(size, value);  // every bit reinitialised, deliberately
        bits.assign(static_cast<std::size_t>(std::max(size, 0)), value);
        break;
      }
      case 1:
        EXPECT_EQ(set.Append(value), n + 1);
        bits.push_back(value);
        break;
      case 2: {  // Set, or SetRange
        const int to = rng() % 2 == 0 ? first : last;
        const bool valid = ValidRange(bits, first, to);
        ASSERT_EQ(to == first ? set.Set(first, value) : set.SetRange(first, to, value), valid);
        if (valid) std::fill(bits.begin() + first, bits.begin() + to + 1, value);
        break;
      }
      case 3: {
        std::vector<int> indices(rng() % 4);
        for (int& i : indices) i = RandomIndex(n, rng);
        const bool valid = std::all_of(indices.begin(), indices.end(),
                                       [&](int i) { return ValidRange(bits, i, i); });
        ASSERT_EQ(set.SetSubset(indices, value), valid);
        if (valid) for (int i : indices) bits[i] = value;
        break;
      }
      case 4:
        set.Negate();
        bits.flip();
        break;
      case 5:
        set.Clear();
        bits.assign(bits.size(), false);
        break;
      default: {  // AND keeps the first operand's size, OR the smaller one
        const Bits other = RandomBits(static_cast<int>(rng() % 80), rng);
        const KXBitSet otherSet = Build(other);
        const bool isAnd = rng() % 2 == 0, setFirst = value;
        const Bits& a = setFirst ? bits : other;
        const Bits& b = setFirst ? other : bits;
        Bits result(isAnd ? a.size() : std::min(a.size(), b.size()));
        for (std::size_t i = 0; i < result.size(); ++i) {
          result[i] = isAnd ? a[i] && At(b, static_cast<int>(i)) : a[i] || b[i];
        }
        // set is an operand: the result may alias it.
        (set.*(isAnd ? &KXBitSet::DoAND : &KXBitSet::DoOR))(setFirst ? set : otherSet,
                                                            setFirst ? otherSet : set);
        bits = result;
      }
    }
    ExpectSameAsReference(set, bits, rng);
    if (HasFatalFailure()) return;
  }
}

TEST(KXBitSetTest, CopiesAreDeepAndDisplayPrintsTheBits) {
  EXPECT_EQ(KXBitSet(-4).Size(), 0);
  KXBitSet a(3), b(a);
  a.Set(1, true);
  EXPECT_FALSE(b.IsIn(1));
  b = a;
  const KXBitSet& alias = b;
  b = alias;
  EXPECT_TRUE(b == a);
  EXPECT_EQ(a.InRangeS(1, INT_MAX), -1);  // no int overflow in start + count
  kxtesting::DisplayCapture capture;
  a.Display();
  EXPECT_EQ(capture.Text(),
            "\nKXBitSet display start\nfbVec (size = 3)\n  f t f\nKXBitSet display end");
}

}  // namespace
