#include "kxcommonr/common/containers/KXPackedInt.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "kxcommonr/common/containers/KXHashKey.h"
#include "kxcommonr/testing/DisplayCapture.h"

namespace {

using KXCommon::KXPackedInt;

TEST(KXPackedIntTest, UnitsFillUpToTheHashKeyBound) {
  KXPackedInt packer(3, 0, {1000, 1000, 1000});
  EXPECT_EQ(packer.GetNUnits(), 2);
  EXPECT_EQ(packer.GetNDiffVal(2), 1000);
  EXPECT_EQ(packer.GetNDiffVal(3), -1);
  EXPECT_EQ(packer.GetNDiffVal(-1), -1);
  std::vector<int> packed;
  ASSERT_TRUE(packer.Pack({999, 998, 7}, packed, true));
  // The first position of a unit is its least significant digit.
  EXPECT_EQ(packed, (std::vector<int>{999 + 998 * 1000, 7}));
  for (int value : packed) {
    EXPECT_LT(value, KXCommon::KXHashKey::GetElementUpperBound());
  }
}

TEST(KXPackedIntTest, RefusesBadLayoutsAndCodes) {
  KXPackedInt packer;
  EXPECT_FALSE(packer.SetForSequence(2, 0, {3, 0}));
  EXPECT_EQ(packer.GetNDiffVal(0), -1);  // n back at 0
  EXPECT_FALSE(packer.SetForSequence(3, 0, {3, 3}));
  EXPECT_FALSE(packer.SetForSequence(0, 0, {}));
  ASSERT_TRUE(packer.SetForSequence(2, -1, {3, 4}));
  EXPECT_EQ(packer.GetLowerBound(), -1);
  std::vector<int> packed = {123};
  EXPECT_FALSE(packer.Pack({2, 0}, packed, true));   // 2 = lower bound + count
  EXPECT_FALSE(packer.Pack({-2, 0}, packed, true));
  EXPECT_FALSE(packer.Pack({0}, packed, true));
  EXPECT_FALSE(packer.Pack({0}, packed, false));     // too short even unchecked
  EXPECT_EQ(packed, std::vector<int>{123});          // nothing written
  EXPECT_TRUE(packer.Pack({1, 2}, packed, true));
  std::vector<int> codes;
  EXPECT_FALSE(packer.Unpack(codes, {}));
  EXPECT_TRUE(codes.empty());
}

TEST(KXPackedIntTest, UnpackInvertsPackForRandomLayouts) {
  std::mt19937 rng(31);
  std::uniform_int_distribution<int> countDraw(1, 5000);
  for (int trial = 0; trial < 200; ++trial) {
    const int n = 1 + static_cast<int>(rng() % 12);
    const int lowerBound = static_cast<int>(rng() % 7) - 3;
    std::vector<int> counts(static_cast<std::size_t>(n));
    for (int& c : counts) c = trial % 3 == 0 ? 1 + static_cast<int>(rng() % 4) : countDraw(rng);
    KXPackedInt packer;
    ASSERT_TRUE(packer.SetForSequence(n, lowerBound, counts));
    // Units: as many as the running log-sum of the counts requires.
    const double cap = std::log(static_cast<double>(KXCommon::KXHashKey::GetElementUpperBound()));
    int units = 1;
    double sum = 0;
    for (int c : counts) {
      sum += std::log(static_cast<double>(c));
      if (sum > cap) {
        ++units;
        sum = std::log(static_cast<double>(c));
      }
    }
    EXPECT_EQ(packer.GetNUnits(), units);
    std::vector<int> codes(static_cast<std::size_t>(n));
    for (std::size_t i = 0; i < codes.size(); ++i) {
      codes[i] = lowerBound + static_cast<int>(rng() % static_cast<unsigned>(counts[i]));
    }
    std::vector<int> packed;
    ASSERT_TRUE(packer.Pack(codes, packed, true));
    EXPECT_EQ(static_cast<int>(packed.size()), units);
    std::vector<int> back(1, 99);
    ASSERT_TRUE(packer.Unpack(back, packed));
    EXPECT_EQ(back, codes);
    // Distinct tuples pack differently.
    std::vector<int> changed = codes;
    const std::size_t at = rng() % changed.size();
    if (counts[at] > 1) {
      changed[at] = changed[at] == lowerBound ? lowerBound + 1 : lowerBound;
      std::vector<int> packedChanged;
      ASSERT_TRUE(packer.Pack(changed, packedChanged, true));
      EXPECT_NE(packedChanged, packed);
    }
  }
}

TEST(KXPackedIntTest, AFirstCountAboveTheBoundOpensUnitOne) {
  KXPackedInt packer(2, 0, {20000000, 3});
  EXPECT_EQ(packer.GetNUnits(), 3);
  std::vector<int> packed;
  ASSERT_TRUE(packer.Pack({19999999, 2}, packed, true));
  ASSERT_EQ(packed.size(), 3u);
  std::vector<int> back;
  ASSERT_TRUE(packer.Unpack(back, packed));
  EXPECT_EQ(back, (std::vector<int>{19999999, 2}));
}

TEST(KXPackedIntTest, CopiesAreDeepAndDisplayListsTheFields) {
  KXPackedInt original(2, 1, {2, 3});
  KXPackedInt copy = original;
  original.SetForSequence(1, 0, {5});
  EXPECT_EQ(copy.GetNDiffVal(1), 3);
  kxtesting::DisplayCapture capture;
  copy.Display();
  EXPECT_EQ(capture.Text(),
            "\nKXPackedInt display start\nfN = 2\nfLowerBound = 1"
            "\nfvNDiffVal (size = 2)\n  2 3\nfNUnits = 1\nfvUnit (size = 2)"
            "\n  0 0\nfvMultiplier (size = 2)\n  2 6\nKXPackedInt display end");
}

}  // namespace
