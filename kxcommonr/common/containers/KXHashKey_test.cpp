#include "kxcommonr/common/containers/KXHashKey.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <vector>

#include "kxcommonr/testing/DisplayCapture.h"

namespace {

using KXCommon::KXHashKey;

KXHashKey MakeKey(const std::vector<int>& elements) {
  KXHashKey key(static_cast<int>(elements.size()));
  for (std::size_t i = 0; i < elements.size(); ++i) {
    key[static_cast<int>(i)] = elements[i];
  }
  key.UpdateHashCode();
  return key;
}

// The first 49 odd primes, by trial division.
std::vector<int> OddPrimes() {
  std::vector<int> primes;
  for (int p = 3; primes.size() < 49; p += 2) {
    bool prime = true;
    for (int d = 3; d * d <= p; d += 2) prime = prime && p % d != 0;
    if (prime) primes.push_back(p);
  }
  return primes;
}

// The hash written out with 64-bit arithmetic and the prime list above.
int IndependentHash(const std::vector<int>& elements, int offset) {
  const std::vector<int> primes = OddPrimes();
  std::uint64_t h = 0;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const std::int64_t product =
        static_cast<std::int64_t>(primes[i % 49]) * (elements[i] + static_cast<std::int64_t>(offset));
    h ^= static_cast<std::uint64_t>(product) & 0xFFFFFFFFu;
  }
  return static_cast<int>(static_cast<std::uint32_t>(h));
}

TEST(KXHashKeyTest, PrimeTableHoldsTheOddPrimesUpTo229) {
  const std::vector<int> primes = OddPrimes();
  EXPECT_EQ(primes.back(), 229);
  for (int i = 0; i < 49; ++i) EXPECT_EQ(KXHashKey::PRIME_FACTOR[i], primes[i]) << i;
}

TEST(KXHashKeyTest, KnownHashes) {
  EXPECT_EQ(KXHashKey::GetElementOffset(), 53968);
  EXPECT_EQ(KXHashKey::GetElementUpperBound(), 9323689);
  const KXHashKey empty;
  EXPECT_EQ(empty.GetHashcode(), 0);
  EXPECT_EQ(empty.Size(), 0);
  EXPECT_TRUE(empty == KXHashKey());
  EXPECT_TRUE(empty == KXHashKey(0));
  EXPECT_EQ(MakeKey({0}).GetHashcode(), 161904);
  EXPECT_EQ(KXHashKey(1).GetHashcode(), 161904);  // built with zeros
  EXPECT_NE(MakeKey({1, 2}).GetHashcode(), MakeKey({2, 1}).GetHashcode());
  EXPECT_EQ(MakeKey({1, 2}).GetHashcode(), (3 * 53969) ^ (5 * 53970));
}

TEST(KXHashKeyTest, HashAgreesWithAnIndependentComputation) {
  std::mt19937 rng(21);
  std::uniform_int_distribution<int> element(-100, 9323689);
  for (int length : {1, 2, 48, 49, 50, 120}) {
    std::vector<int> elements(static_cast<std::size_t>(length));
    for (int& e : elements) e = element(rng);
    EXPECT_EQ(MakeKey(elements).GetHashcode(), IndependentHash(elements, 53968))
        << length;
  }
  // A 50-element key reuses prime 3 for its last element.
  std::vector<int> fifty(50, 0);
  const int base = MakeKey(fifty).GetHashcode();
  fifty[49] = 1;
  EXPECT_EQ(MakeKey(fifty).GetHashcode() ^ base, (3 * 53969) ^ (3 * 53968));
}

TEST(KXHashKeyTest, OffsetChangesLaterHashes) {
  KXHashKey::SetElementOffset(10);
  EXPECT_EQ(KXHashKey::GetElementUpperBound(), 9377647);
  EXPECT_EQ(MakeKey({1}).GetHashcode(), 33);
  KXHashKey::SetElementOffset(2147483647);  // wraps, never traps
  EXPECT_EQ(MakeKey({7, -3}).GetHashcode(), IndependentHash({7, -3}, 2147483647));
  KXHashKey::SetElementOffset(53968);
  EXPECT_EQ(MakeKey({1}).GetHashcode(), 3 * 53969);
}

TEST(KXHashKeyTest, CachedHashIsCopiedAndOnlyUpdatedOnRequest) {
  KXHashKey key = MakeKey({4, 5});
  const int before = key.GetHashcode();
  key[0] = 6;
  EXPECT_EQ(key.GetHashcode(), before);
  const KXHashKey copy = key;
  EXPECT_EQ(copy.GetHashcode(), before);  // copied, not recomputed
  EXPECT_FALSE(copy == MakeKey({6, 5}));  // stale hash: not equal
  key.UpdateHashCode();
  EXPECT_TRUE(key == MakeKey({6, 5}));
  EXPECT_EQ(copy[0], 6);
  key[1] = 9;
  EXPECT_EQ(copy[1], 5);  // deep copy
  // An index out of range does not touch the elements.
  key[2] = 77;
  key[-1] = 78;
  key.UpdateHashCode();
  EXPECT_TRUE(key == MakeKey({6, 9}));
}

TEST(KXHashKeyTest, MismatchAndOrder) {
  EXPECT_EQ(MakeKey({1, 2, 3}).Mismatch(MakeKey({1, 2})), 2);
  EXPECT_EQ(MakeKey({1, 2, 3}).Mismatch(MakeKey({1, 5, 3})), 1);
  EXPECT_EQ(MakeKey({1, 2, 3}).Mismatch(MakeKey({1, 2, 3})), 3);
  EXPECT_EQ(KXHashKey().Mismatch(MakeKey({1})), 0);
  EXPECT_TRUE(MakeKey({5}) < MakeKey({1, 1}));
  EXPECT_FALSE(MakeKey({1, 1}) < MakeKey({5}));
  EXPECT_TRUE(MakeKey({1, 2}) < MakeKey({1, 3}));
  EXPECT_TRUE(MakeKey({-1, 9}) < MakeKey({0, 0}));
  EXPECT_FALSE(MakeKey({1, 2}) < MakeKey({1, 2}));
  std::set<KXHashKey> keys = {MakeKey({2}), MakeKey({1, 0}), MakeKey({1})};
  std::vector<int> firsts;
  for (const KXHashKey& k : keys) firsts.push_back(k[0] * 10 + k.Size());
  EXPECT_EQ(firsts, (std::vector<int>{11, 21, 12}));
}

TEST(KXHashKeyTest, Display) {
  kxtesting::DisplayCapture capture;
  MakeKey({3, -1}).Display();
  EXPECT_EQ(capture.Text(), "\n\t Key:   3  -1");
}

}  // namespace
