#include "kxcommonr/common/containers/KXHashKey.h"

#include <cstdint>
#include <cstdio>
#include <string>

#include "kxcommonr/common/display/KXComponentDisplay.h"

namespace KXCommon {

const int KXHashKey::PRIME_FACTOR[49] = {
    3,   5,   7,   11,  13,  17,  19,  23,  29,  31,  37,  41,  43,
    47,  53,  59,  61,  67,  71,  73,  79,  83,  89,  97,  101, 103,
    107, 109, 113, 127, 131, 137, 139, 149, 151, 157, 163, 167, 173,
    179, 181, 191, 193, 197, 199, 211, 223, 227, 229};

int KXHashKey::ADD_LOWER_BOUND = 53968;

KXHashKey::KXHashKey() : fCount(0), fHashCode(0), fScratch(0) {}

KXHashKey::KXHashKey(int n)
    : fElements(static_cast<std::size_t>(n > 0 ? n : 0), 0),
      fCount(n > 0 ? n : 0),
      fHashCode(0),
      fScratch(0) {
  fHashCode = ComputeHashCode();
}

KXHashKey::KXHashKey(const KXHashKey& other) = default;

KXHashKey& KXHashKey::operator=(const KXHashKey& other) {
  if (this != &other) {
    fElements = other.fElements;
    fCount = other.fCount;
    fHashCode = other.fHashCode;
  }
  return *this;
}

KXHashKey::~KXHashKey() = default;

int& KXHashKey::operator[](int i) {
  if (i < 0 || i >= fCount) return fScratch;
  return fElements[static_cast<std::size_t>(i)];
}

int KXHashKey::operator[](int i) const {
  if (i < 0 || i >= fCount) return fScratch;
  return fElements[static_cast<std::size_t>(i)];
}

int KXHashKey::ComputeHashCode() const {
  if (fCount < 1) return 0;
  // 32-bit two's-complement arithmetic with wrap-around, done unsigned.
  const std::uint32_t offset = static_cast<std::uint32_t>(ADD_LOWER_BOUND);
  std::uint32_t hash = 0;
  for (int i = 0; i < fCount; ++i) {
    const std::uint32_t prime = static_cast<std::uint32_t>(
        PRIME_FACTOR[static_cast<unsigned>(i) % 49u]);
    const std::uint32_t shifted =
        static_cast<std::uint32_t>(fElements[static_cast<std::size_t>(i)]) +
        offset;
    hash ^= prime * shifted;
  }
  return static_cast<int>(hash);
}

void KXHashKey::UpdateHashCode() { fHashCode = ComputeHashCode(); }

bool KXHashKey::operator==(const KXHashKey& other) const {
  return fHashCode == other.fHashCode && fCount == other.fCount &&
         fElements == other.fElements;
}

int KXHashKey::Mismatch(const KXHashKey& other) const {
  const int length = fCount < other.fCount ? fCount : other.fCount;
  int agreed = 0;
  while (agreed < length &&
         fElements[static_cast<std::size_t>(agreed)] ==
             other.fElements[static_cast<std::size_t>(agreed)]) {
    ++agreed;
  }
  return agreed;
}

void KXHashKey::SetElementOffset(int offset) { ADD_LOWER_BOUND = offset; }

int KXHashKey::GetElementOffset() { return ADD_LOWER_BOUND; }

int KXHashKey::GetElementUpperBound() {
  // In 32-bit wrap-around like the hash, so an extreme offset cannot overflow.
  return static_cast<int>(std::uint32_t{9377657u} -
                          static_cast<std::uint32_t>(ADD_LOWER_BOUND));
}

void KXHashKey::Display() const {
  std::string line = "\t Key: ";
  char buffer[24];
  for (int i = 0; i < fCount; ++i) {
    std::snprintf(buffer, sizeof buffer, "  %d",
                  fElements[static_cast<std::size_t>(i)]);
    line += buffer;
  }
  KXComponentDisplay::DisplayText(1, line);
}

bool operator<(const KXHashKey& a, const KXHashKey& b) {
  if (a.Size() != b.Size()) return a.Size() < b.Size();
  for (int i = 0; i < a.Size(); ++i) {
    if (a[i] != b[i]) return a[i] < b[i];
  }
  return false;
}

}  // namespace KXCommon
