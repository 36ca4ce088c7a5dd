#include "kxcommonr/common/containers/KXPackedInt.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "kxcommonr/common/containers/KXHashKey.h"
#include "kxcommonr/testing/DisplayCapture.h"

namespace {

using KXCommon::KXPackedInt;

// Mixed radix written out: a new unit whenever the product of the counts in
// the current one would pass the hash key's bound (tested before the first
// position too, so a first count above it opens unit 1); the first position of
// a unit is its least significant digit; unfilled units stay 0.
std::vector<int> ReferencePack(const std::vector<int>& counts, int lowerBound,
                               const std::vector<int>& codes) {
  const std::int64_t bound = KXCommon::KXHashKey::GetElementUpperBound();
  std::vector<std::int64_t> runs;
  std::int64_t product = 1, weight = 1;
  int units = 1;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    const bool newUnit = product * counts[i] > bound;
    if (newUnit) ++units;
    product = newUnit ? counts[i] : product * counts[i];
    if (i == 0 || newUnit) {
      runs.push_back(0);
      weight = 1;
    }
    runs.back() += (codes[i] - lowerBound) * weight;
    weight *= counts[i];
  }
  std::vector<int> packed(runs.begin(), runs.end());
  packed.resize(static_cast<std::size_t>(units), 0);
  return packed;
}

TEST(KXPackedIntTest, PackMatchesTheMixedRadixAndUnpackInvertsIt) {
  std::mt19937 rng(31);
  for (int trial = 0; trial < 300; ++trial) {
    const int n = 1 + static_cast<int>(rng() % 12), lowerBound = static_cast<int>(rng() % 7) - 3;
    std::vector<int> counts(static_cast<std::size_t>(n)), codes(counts.size());
    for (int& c : counts) c = 1 + static_cast<int>(rng() % (trial % 3 == 0 ? 4 : 5000));
    if (trial % 50 == 0) counts[0] = 20000000;  // above the bound on its own
    for (std::size_t i = 0; i < codes.size(); ++i) {
      codes[i] = lowerBound + static_cast<int>(rng() % static_cast<unsigned>(counts[i]));
    }
    const KXPackedInt packer(n, lowerBound, counts);
    const std::vector<int> expected = ReferencePack(counts, lowerBound, codes);
    EXPECT_EQ(packer.GetNUnits(), static_cast<int>(expected.size()));
    EXPECT_EQ(packer.GetNDiffVal(n - 1), counts.back());
    std::vector<int> packed;
    ASSERT_TRUE(packer.Pack(codes, packed, true));
    EXPECT_EQ(packed, expected);
    // Unpack grows a short vector and leaves entries beyond n alone.
    std::vector<int> back(trial % 2 == 0 ? 0 : static_cast<std::size_t>(n) + 1, 99);
    ASSERT_TRUE(packer.Unpack(back, packed));
    EXPECT_EQ(back.back(), trial % 2 == 0 ? codes.back() : 99);
    back.resize(codes.size());
    EXPECT_EQ(back, codes);
  }
}

TEST(KXPackedIntTest, RefusalsChangeNothing) {
  KXPackedInt packer;
  const struct { int n; std::vector<int> counts; } layouts[] = {{2, {3, 0}}, {3, {3, 3}}, {0, {}}};
  for (const auto& layout : layouts) {
    EXPECT_FALSE(packer.SetForSequence(layout.n, 0, layout.counts));
    EXPECT_EQ(packer.GetNDiffVal(0), -1);  // n back at 0
  }
  ASSERT_TRUE(packer.SetForSequence(2, -1, {3, 4}));
  EXPECT_EQ(packer.GetLowerBound(), -1);
  EXPECT_EQ(packer.GetNDiffVal(2), -1);
  const struct { std::vector<int> codes; bool check; } codes[] = {
      {{2, 0}, true}, {{-2, 0}, true}, {{0, 3}, true}, {{0}, true}, {{0}, false}};
  for (const auto& row : codes) {
    std::vector<int> packed = {123};
    EXPECT_FALSE(packer.Pack(row.codes, packed, row.check));
    EXPECT_EQ(packed, std::vector<int>{123});
  }
  std::vector<int> unpacked;
  EXPECT_FALSE(packer.Unpack(unpacked, {}));
  EXPECT_TRUE(KXPackedInt().Unpack(unpacked, {}));  // nothing to unpack
  EXPECT_TRUE(unpacked.empty());
}

TEST(KXPackedIntTest, CopiesAreDeepAndDisplayListsTheFields) {
  KXPackedInt original(2, 1, {2, 3});
  const KXPackedInt copy = original;
  KXPackedInt assigned;
  assigned = original;
  original.SetForSequence(1, 0, {5});
  EXPECT_EQ(copy.GetNDiffVal(1) + assigned.GetNDiffVal(1), 6);
  kxtesting::DisplayCapture capture;
  copy.Display();
  EXPECT_EQ(capture.Text(),
            "\nKXPackedInt display start\nfN = 2\nfLowerBound = 1\nfvNDiffVal (size = 2)\n  2 3"
            "\nfNUnits = 1\nfvUnit (size = 2)\n  0 0\nfvMultiplier (size = 2)\n  2 6"
            "\nKXPackedInt display end");
}

}  // namespace
