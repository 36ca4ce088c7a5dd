#include "kxcommonr/common/containers/KXBitSet.h"

#include <algorithm>

#include "kxcommonr/common/display/KXComponentDisplay.h"

namespace KXCommon {

namespace {

int PopCount(std::uint32_t word) {
  int count = 0;
  while (word != 0) {
    word &= word - 1;
    ++count;
  }
  return count;
}

// Mask of bit positions lo..hi (inclusive) within one word.
std::uint32_t RangeMask(int lo, int hi) {
  const std::uint32_t upper =
      hi >= 31 ? 0xFFFFFFFFu : ((std::uint32_t{1} << (hi + 1)) - 1u);
  const std::uint32_t lower = (std::uint32_t{1} << lo) - 1u;
  return upper & ~lower;
}

}  // namespace

KXBitSet::KXBitSet() : fSize(0) {}

KXBitSet::KXBitSet(int n) : fSize(n > 0 ? n : 0), fWords(WordCount(n), 0u) {}

KXBitSet::KXBitSet(const KXBitSet& other) = default;

KXBitSet& KXBitSet::operator=(const KXBitSet& other) {
  if (this != &other) {
    fSize = other.fSize;
    fWords = other.fWords;
  }
  return *this;
}

KXBitSet::~KXBitSet() = default;

std::size_t KXBitSet::WordCount(int n) {
  if (n <= 0) return 0;
  return (static_cast<std::size_t>(n) + kWordBits - 1) / kWordBits;
}

void KXBitSet::ClearTail() {
  const int used = fSize % kWordBits;
  if (used != 0 && !fWords.empty()) fWords.back() &= RangeMask(0, used - 1);
}

bool KXBitSet::operator==(const KXBitSet& other) const {
  return fSize == other.fSize && fWords == other.fWords;
}

void KXBitSet::Resize(int n, bool value) {
  if (n < 1) {
    fSize = 0;
    fWords.clear();
    return;
  }
  fSize = n;
  fWords.assign(WordCount(n), value ? 0xFFFFFFFFu : 0u);
  ClearTail();
}

void KXBitSet::Clear() { std::fill(fWords.begin(), fWords.end(), 0u); }

int KXBitSet::Append(bool value) {
  if (fSize % kWordBits == 0) fWords.push_back(0u);
  ++fSize;
  Set(fSize - 1, value);
  return fSize;
}

bool KXBitSet::Set(int i, bool value) {
  if (i < 0 || i >= fSize) return false;
  const std::uint32_t bit = std::uint32_t{1} << (i % kWordBits);
  if (value) {
    fWords[static_cast<std::size_t>(i / kWordBits)] |= bit;
  } else {
    fWords[static_cast<std::size_t>(i / kWordBits)] &= ~bit;
  }
  return true;
}

bool KXBitSet::SetRange(int first, int last, bool value) {
  if (first < 0 || first > last || last >= fSize) return false;
  const int firstWord = first / kWordBits;
  const int lastWord = last / kWordBits;
  for (int w = firstWord; w <= lastWord; ++w) {
    const int lo = w == firstWord ? first % kWordBits : 0;
    const int hi = w == lastWord ? last % kWordBits : kWordBits - 1;
    const std::uint32_t mask = RangeMask(lo, hi);
    if (value) {
      fWords[static_cast<std::size_t>(w)] |= mask;
    } else {
      fWords[static_cast<std::size_t>(w)] &= ~mask;
    }
  }
  return true;
}

bool KXBitSet::SetSubset(std::vector<int> indices, bool value) {
  for (int i : indices) {
    if (i < 0 || i >= fSize) return false;
  }
  for (int i : indices) Set(i, value);
  return true;
}

bool KXBitSet::IsIn(int i) const {
  if (i < 0 || i >= fSize) return false;
  return ((fWords[static_cast<std::size_t>(i / kWordBits)] >>
           (i % kWordBits)) & 1u) != 0;
}

int KXBitSet::InRange(int first, int last) const {
  if (first < 0 || first > last || last >= fSize) return -1;
  const int firstWord = first / kWordBits;
  const int lastWord = last / kWordBits;
  int count = 0;
  for (int w = firstWord; w <= lastWord; ++w) {
    const int lo = w == firstWord ? first % kWordBits : 0;
    const int hi = w == lastWord ? last % kWordBits : kWordBits - 1;
    count += PopCount(fWords[static_cast<std::size_t>(w)] & RangeMask(lo, hi));
  }
  return count;
}

int KXBitSet::InRangeS(int start, int count) const {
  if (start < 0 || count < 0) return -1;
  // start + count - 1 >= size, evaluated without int overflow.
  if (static_cast<std::int64_t>(start) + count - 1 >= fSize) return -1;
  if (count == 0) return 0;
  return InRange(start, start + count - 1);
}

int KXBitSet::InSet() const {
  int count = 0;
  for (std::uint32_t word : fWords) count += PopCount(word);
  return count;
}

KXBitSet KXBitSet::GetSubset(int first, int last) const {
  first = std::max(first, 0);
  last = std::min(last, fSize - 1);
  if (first > last) return KXBitSet();
  KXBitSet result(last - first + 1);
  for (int k = 0; first + k <= last; ++k) result.Set(k, IsIn(first + k));
  return result;
}

void KXBitSet::Negate() {
  for (std::uint32_t& word : fWords) word = ~word;
  ClearTail();
}

void KXBitSet::DoAND(const KXBitSet& a, const KXBitSet& b) {
  // Computed into a fresh word vector so that a or b may be *this.
  std::vector<std::uint32_t> words(a.fWords);
  for (std::size_t w = 0; w < words.size(); ++w) {
    words[w] &= w < b.fWords.size() ? b.fWords[w] : 0u;
  }
  fSize = a.fSize;
  fWords.swap(words);
  ClearTail();
}

void KXBitSet::DoOR(const KXBitSet& a, const KXBitSet& b) {
  const int size = std::min(a.fSize, b.fSize);
  std::vector<std::uint32_t> words(WordCount(size), 0u);
  for (std::size_t w = 0; w < words.size(); ++w) {
    words[w] = a.fWords[w] | b.fWords[w];
  }
  fSize = size;
  fWords.swap(words);
  ClearTail();
}

bool KXBitSet::IsNewFalse(const KXBitSet& other, int n) const {
  const int limit = std::min(n, fSize);
  for (int i = 0; i < limit; ++i) {
    if (IsIn(i) && !other.IsIn(i)) return true;
  }
  return false;
}

void KXBitSet::Display() const {
  KXComponentDisplay::DisplayText(1, "KXBitSet display start");
  std::vector<bool> bits(static_cast<std::size_t>(fSize));
  for (int i = 0; i < fSize; ++i) bits[static_cast<std::size_t>(i)] = IsIn(i);
  KXComponentDisplay::DisplayBV("fbVec", bits);
  KXComponentDisplay::DisplayText(1, "KXBitSet display end");
}

}  // namespace KXCommon
