#include "kxcommonr/common/containers/KXBitSet.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "kxcommonr/testing/DisplayCapture.h"

namespace {

using KXCommon::KXBitSet;

// A bit set and a std::vector<bool> filled with the same random bits.
struct Mirrored {
  KXBitSet set;
  std::vector<bool> bits;
};

Mirrored RandomBits(int n, std::mt19937& rng) {
  Mirrored m{KXBitSet(n), std::vector<bool>(static_cast<std::size_t>(n))};
  for (int i = 0; i < n; ++i) {
    const bool value = (rng() & 1u) != 0;
    m.bits[static_cast<std::size_t>(i)] = value;
    EXPECT_TRUE(m.set.Set(i, value));
  }
  return m;
}

int CountTrue(const std::vector<bool>& bits, int first, int last) {
  int count = 0;
  for (int i = first; i <= last; ++i) count += bits[static_cast<std::size_t>(i)];
  return count;
}

void ExpectSame(const KXBitSet& set, const std::vector<bool>& bits) {
  ASSERT_EQ(set.Size(), static_cast<int>(bits.size()));
  for (int i = 0; i < set.Size(); ++i) {
    EXPECT_EQ(set.IsIn(i), bits[static_cast<std::size_t>(i)]) << "bit " << i;
  }
}

TEST(KXBitSetTest, ConstructionAndOutOfRangeReads) {
  EXPECT_EQ(KXBitSet().Size(), 0);
  EXPECT_EQ(KXBitSet(-4).Size(), 0);
  KXBitSet set(70);
  EXPECT_EQ(set.Size(), 70);
  EXPECT_EQ(set.InSet(), 0);
  EXPECT_FALSE(set.IsIn(-1));
  EXPECT_FALSE(set.IsIn(70));
  EXPECT_FALSE(set.Set(70, true));
  EXPECT_FALSE(set.Set(-1, true));
  EXPECT_EQ(set.InSet(), 0);
}

TEST(KXBitSetTest, CountsAgreeWithAPlainVectorAcrossWordBoundaries) {
  std::mt19937 rng(7);
  for (int n : {1, 31, 32, 33, 64, 65, 200}) {
    Mirrored m = RandomBits(n, rng);
    ExpectSame(m.set, m.bits);
    EXPECT_EQ(m.set.InSet(), CountTrue(m.bits, 0, n - 1));
    for (int first = 0; first < n; first += 7) {
      for (int last = first; last < n; last += 5) {
        EXPECT_EQ(m.set.InRange(first, last), CountTrue(m.bits, first, last));
        EXPECT_EQ(m.set.InRangeS(first, last - first + 1),
                  CountTrue(m.bits, first, last));
      }
    }
  }
}

TEST(KXBitSetTest, RangeQueriesRefuseBadBounds) {
  KXBitSet set(10);
  set.Resize(10, true);
  EXPECT_EQ(set.InRange(3, 2), -1);
  EXPECT_EQ(set.InRange(0, 10), -1);
  EXPECT_EQ(set.InRange(-1, 3), -1);
  EXPECT_EQ(set.InRange(9, 9), 1);
  EXPECT_EQ(set.InRangeS(4, 0), 0);
  EXPECT_EQ(set.InRangeS(-1, 2), -1);
  EXPECT_EQ(set.InRangeS(2, -1), -1);
  EXPECT_EQ(set.InRangeS(5, 6), -1);
  EXPECT_EQ(set.InRangeS(5, 5), 5);
  EXPECT_EQ(set.InRangeS(3, 2147483647), -1);
}

TEST(KXBitSetTest, SetRangeAndSetSubsetAreAllOrNothing) {
  KXBitSet set(40);
  EXPECT_FALSE(set.SetRange(5, 4, true));
  EXPECT_FALSE(set.SetRange(30, 40, true));
  EXPECT_TRUE(set.SetRange(30, 35, true));
  EXPECT_EQ(set.InSet(), 6);
  EXPECT_TRUE(set.SetRange(31, 34, false));
  EXPECT_EQ(set.InSet(), 2);

  const KXBitSet before = set;
  EXPECT_FALSE(set.SetSubset({1, 2, 40}, true));
  EXPECT_TRUE(set == before);
  EXPECT_FALSE(set.SetSubset({-1, 3}, true));
  EXPECT_TRUE(set == before);
  EXPECT_TRUE(set.SetSubset({}, true));
  EXPECT_TRUE(set == before);
  EXPECT_TRUE(set.SetSubset({1, 2, 2, 39}, true));
  EXPECT_EQ(set.InSet(), 5);
  EXPECT_TRUE(set.IsIn(39));
}

TEST(KXBitSetTest, ResizeReinitialisesEveryBitAndAppendGrows) {
  KXBitSet set(5);
  set.Set(1, true);
  set.Resize(40, false);
  EXPECT_EQ(set.Size(), 40);
  EXPECT_EQ(set.InSet(), 0);
  set.Resize(33, true);
  EXPECT_EQ(set.InSet(), 33);
  set.Resize(0, true);
  EXPECT_EQ(set.Size(), 0);

  std::vector<bool> mirror;
  for (int i = 0; i < 70; ++i) {
    const bool value = i % 3 == 0;
    mirror.push_back(value);
    EXPECT_EQ(set.Append(value), i + 1);
  }
  ExpectSame(set, mirror);
  set.Clear();
  EXPECT_EQ(set.Size(), 70);
  EXPECT_EQ(set.InSet(), 0);
}

TEST(KXBitSetTest, NegateOnlyTouchesValidBits) {
  KXBitSet set(35);
  set.Set(0, true);
  set.Negate();
  EXPECT_EQ(set.InSet(), 34);
  EXPECT_FALSE(set.IsIn(0));
  // A grown set must not see bits flipped beyond the old size.
  set.Append(false);
  EXPECT_EQ(set.InSet(), 34);
  KXBitSet all(35);
  all.Resize(35, true);
  all.Set(0, false);
  all.Append(false);
  EXPECT_TRUE(set == all);
}

TEST(KXBitSetTest, EqualityAndCopies) {
  EXPECT_TRUE(KXBitSet() == KXBitSet(0));
  EXPECT_FALSE(KXBitSet(3) == KXBitSet(4));
  KXBitSet a(50);
  a.Set(49, true);
  KXBitSet b(a);
  EXPECT_TRUE(a == b);
  b.Set(49, false);
  EXPECT_FALSE(a == b);
  EXPECT_TRUE(a.IsIn(49));  // the copy is deep
  b = a;
  EXPECT_TRUE(a == b);
  const KXBitSet& alias = b;
  b = alias;
  EXPECT_TRUE(a == b);
}

TEST(KXBitSetTest, GetSubsetClampsItsBounds) {
  std::mt19937 rng(3);
  Mirrored m = RandomBits(10, rng);
  EXPECT_TRUE(m.set.GetSubset(-5, 100) == m.set);
  KXBitSet middle = m.set.GetSubset(3, 6);
  ASSERT_EQ(middle.Size(), 4);
  for (int k = 0; k < 4; ++k) EXPECT_EQ(middle.IsIn(k), m.set.IsIn(3 + k));
  EXPECT_EQ(m.set.GetSubset(7, 6).Size(), 0);
  EXPECT_EQ(m.set.GetSubset(10, 20).Size(), 0);
}

TEST(KXBitSetTest, AndKeepsFirstLengthOrTruncatesToShorter) {
  std::mt19937 rng(11);
  Mirrored a = RandomBits(37, rng);
  Mirrored b = RandomBits(70, rng);
  KXBitSet result;
  result.DoAND(a.set, b.set);
  std::vector<bool> expected(37);
  for (std::size_t i = 0; i < 37; ++i) expected[i] = a.bits[i] && b.bits[i];
  ExpectSame(result, expected);

  result.DoAND(b.set, a.set);
  expected.assign(70, false);
  for (std::size_t i = 0; i < 37; ++i) expected[i] = a.bits[i] && b.bits[i];
  ExpectSame(result, expected);

  result.DoOR(b.set, a.set);
  expected.assign(37, false);
  for (std::size_t i = 0; i < 37; ++i) expected[i] = a.bits[i] || b.bits[i];
  ExpectSame(result, expected);

  // The operands may be the object itself.
  KXBitSet self = a.set;
  self.DoOR(self, b.set);
  ExpectSame(self, expected);
  self.DoAND(self, KXBitSet());
  EXPECT_EQ(self.Size(), 37);
  EXPECT_EQ(self.InSet(), 0);
}

TEST(KXBitSetTest, IsNewFalseLooksBelowTheLimitOnly) {
  KXBitSet mine(6);
  KXBitSet other(3);
  mine.Set(4, true);
  EXPECT_FALSE(mine.IsNewFalse(other, 0));
  EXPECT_FALSE(mine.IsNewFalse(other, 4));
  EXPECT_TRUE(mine.IsNewFalse(other, 5));  // beyond other's size reads false
  EXPECT_TRUE(mine.IsNewFalse(other, 100));
  other.Resize(6, true);
  EXPECT_FALSE(mine.IsNewFalse(other, 100));
  EXPECT_FALSE(KXBitSet().IsNewFalse(other, 5));
}

TEST(KXBitSetTest, DisplayPrintsTheBitsBetweenMarkers) {
  KXBitSet set(3);
  set.Set(1, true);
  kxtesting::DisplayCapture capture;
  set.Display();
  EXPECT_EQ(capture.Text(),
            "\nKXBitSet display start\nfbVec (size = 3)\n  f t f"
            "\nKXBitSet display end");
}

}  // namespace
