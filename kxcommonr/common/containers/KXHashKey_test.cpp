#include "kxcommonr/common/containers/KXHashKey.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "kxcommonr/testing/DisplayCapture.h"

namespace {

using KXCommon::KXHashKey;

KXHashKey MakeKey(const std::vector<int>& elements) {
  KXHashKey key(static_cast<int>(elements.size()));
  for (std::size_t i = 0; i < elements.size(); ++i) key[static_cast<int>(i)] = elements[i];
  key.UpdateHashCode();
  return key;
}

// The hash written out in 64-bit arithmetic over the first 49 odd primes,
// found by trial division.
int IndependentHash(const std::vector<int>& elements, int offset) {
  std::vector<std::int64_t> primes;
  for (int p = 3; primes.size() < 49; p += 2) {
    bool prime = true;
    for (int d = 3; d * d <= p; d += 2) prime = prime && p % d != 0;
    if (prime) primes.push_back(p);
  }
  std::uint64_t h = 0;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    h ^= static_cast<std::uint64_t>(primes[i % 49] * (elements[i] + std::int64_t{offset}));
  }
  return static_cast<int>(static_cast<std::uint32_t>(h));
}

TEST(KXHashKeyTest, HashAgreesWithAnIndependentComputationForEveryOffset) {
  EXPECT_EQ(KXHashKey::PRIME_FACTOR[48], 229);
  EXPECT_EQ(KXHashKey().GetHashcode(), 0);
  EXPECT_EQ(KXHashKey(1).GetHashcode(), 3 * 53968);  // built with zeros
  std::mt19937 rng(21);
  std::uniform_int_distribution<int> element(-100, 9323689);
  // The last offset wraps around in the hash, never traps.
  const std::pair<int, int> offsetsAndBounds[] = {{53968, 9323689}, {10, 9377647},
                                                  {2147483647, -2138105990}};
  for (const auto& [offset, bound] : offsetsAndBounds) {
    KXHashKey::SetElementOffset(offset);
    EXPECT_EQ(KXHashKey::GetElementOffset(), offset);
    EXPECT_EQ(KXHashKey::GetElementUpperBound(), bound);
    for (int length : {1, 2, 48, 49, 50, 120}) {  // primes repeat from element 49 on
      std::vector<int> elements(static_cast<std::size_t>(length));
      for (int& e : elements) e = element(rng);
      EXPECT_EQ(MakeKey(elements).GetHashcode(), IndependentHash(elements, offset)) << length;
    }
  }
  KXHashKey::SetElementOffset(53968);
}

TEST(KXHashKeyTest, HashIsCachedCopiedAndUpdatedOnRequestOnly) {
  KXHashKey key = MakeKey({4, 5});
  const int before = key.GetHashcode();
  key[0] = 6;
  const KXHashKey copy = key;
  EXPECT_EQ(copy.GetHashcode(), before);  // stale, and copied as it is
  EXPECT_TRUE(copy != MakeKey({6, 5}));   // equality includes the stored hash
  key.UpdateHashCode();
  EXPECT_TRUE(key == MakeKey({6, 5}));
  key[1] = 9;
  key[2] = 77;  // indices outside touch a scratch int, not the elements
  key[-1] = 78;
  key.UpdateHashCode();
  EXPECT_TRUE(key == MakeKey({6, 9}));
  EXPECT_EQ(copy[1], 5);  // deep copy
  KXHashKey assigned;
  const KXHashKey& alias = assigned;
  assigned = key;
  assigned = alias;
  EXPECT_TRUE(assigned == key);
  EXPECT_TRUE(KXHashKey(-3) == KXHashKey());
}

// Mismatch counts the common prefix; < orders by length, then elementwise, as
// std::pair<size, std::vector> does.
TEST(KXHashKeyTest, MismatchAndOrderAgreeWithAReference) {
  std::mt19937 rng(5);
  for (int trial = 0; trial < 500; ++trial) {
    std::vector<int> a(rng() % 4), b(rng() % 4);
    for (int& e : a) e = static_cast<int>(rng() % 3) - 1;
    for (int& e : b) e = static_cast<int>(rng() % 3) - 1;
    std::size_t prefix = 0;
    while (prefix < a.size() && prefix < b.size() && a[prefix] == b[prefix]) ++prefix;
    EXPECT_EQ(MakeKey(a).Mismatch(MakeKey(b)), static_cast<int>(prefix));
    EXPECT_EQ(MakeKey(a) < MakeKey(b), std::make_pair(a.size(), a) < std::make_pair(b.size(), b));
    EXPECT_EQ(MakeKey(a) == MakeKey(b), a == b);
  }
  kxtesting::DisplayCapture capture;
  MakeKey({3, -1}).Display();
  EXPECT_EQ(capture.Text(), "\n\t Key:   3  -1");
}

}  // namespace
