#include "kxcommonr/common/random/KXRandomTwister.h"

#include <algorithm>
#include <cstring>
#include <iostream>

#include "kxcommonr/common/random/internal/KXByteOrder.h"
#include "kxcommonr/common/random/internal/KXRandomAccess.h"
#include "kxcommonr/common/random/internal/KXTwisterJumpTable.h"
#include "kxcommonr/common/random/internal/KXTwisterKernels.h"
#include "kxcommonr/xml/XMLObj.h"
#include "kxcommonr/xml/XMLReader.h"

namespace KXCommon {

namespace {

constexpr int kN = internal::kTwisterWords;
constexpr std::int32_t kUsedUp = kN;         // the block must be regenerated
constexpr std::int32_t kNeverSeeded = kN + 1;
constexpr std::uint32_t kStateVersion = 1;
const char kStateTag[4] = {'K', 'X', 'M', 'T'};
const char kStateObject[] = "KXRandomTwister";

// A state is usable when its position is 0..625 and, unless it was never
// seeded, the part the recurrence reads (the upper bit of word 0 and words
// 1..623) is not all zero: such a state generates zeros for ever.
bool ValidState(const std::uint32_t* words, std::int32_t index) {
  if (index < 0 || index > kNeverSeeded) return false;
  if (index == kNeverSeeded || (words[0] & internal::kTwisterUpper) != 0) return true;
  return std::any_of(words + 1, words + kN, [](std::uint32_t w) { return w != 0; });
}

}  // namespace

KXRandomTwister::KXRandomTwister() : fpState(new State()) { fpState->index = kNeverSeeded; }

KXRandomTwister::KXRandomTwister(const KXRandomTwister& other)
    : fpState(new State(*other.fpState)) {}

KXRandomTwister& KXRandomTwister::operator=(const KXRandomTwister& other) {
  *fpState = *other.fpState;
  return *this;
}

KXRandomTwister::~KXRandomTwister() { delete fpState; }

void KXRandomTwister::Initialize(unsigned long seed) {
  std::uint32_t* mt = fpState->words;
  mt[0] = static_cast<std::uint32_t>(seed);
  for (int i = 1; i < kN; ++i) {
    mt[i] = 1812433253u * (mt[i - 1] ^ (mt[i - 1] >> 30)) + static_cast<std::uint32_t>(i);
  }
  fpState->index = kUsedUp;
}

bool KXRandomTwister::InitByArray(unsigned long* key, unsigned long length) {
  if (key == nullptr || length == 0) return false;
  Initialize(19650218u);
  std::uint32_t* mt = fpState->words;
  int i = 1;
  unsigned long j = 0;
  for (unsigned long k = std::max<unsigned long>(kN, length); k > 0; --k) {
    mt[i] = (mt[i] ^ ((mt[i - 1] ^ (mt[i - 1] >> 30)) * 1664525u)) +
            static_cast<std::uint32_t>(key[j]) + static_cast<std::uint32_t>(j);
    if (++i >= kN) {
      mt[0] = mt[kN - 1];
      i = 1;
    }
    if (++j >= length) j = 0;
  }
  for (int k = kN - 1; k > 0; --k) {
    mt[i] = (mt[i] ^ ((mt[i - 1] ^ (mt[i - 1] >> 30)) * 1566083941u)) -
            static_cast<std::uint32_t>(i);
    if (++i >= kN) {
      mt[0] = mt[kN - 1];
      i = 1;
    }
  }
  mt[0] = 0x80000000u;
  return true;
}

void KXRandomTwister::Refill() {
  if (fpState->index == kNeverSeeded) Initialize(5489u);
  internal::TwisterRegenerate(fpState->words);
  fpState->index = 0;
}

std::uint32_t KXRandomTwister::GetInteger32() { return internal::TwisterAccess::Next(*this); }

long KXRandomTwister::GetInteger31() { return static_cast<long>(GetInteger32() >> 1); }

double KXRandomTwister::GetRealClosed() { return GetInteger32() * (1.0 / 4294967295.0); }

double KXRandomTwister::GetRealClosedOpen() { return GetInteger32() * 2.3283064365386963e-10; }

double KXRandomTwister::GetRealOpen() { return internal::TwisterRealOpen(GetInteger32()); }

double KXRandomTwister::GetRealRes53() {
  const std::uint32_t a = GetInteger32() >> 5;
  const std::uint32_t b = GetInteger32() >> 6;
  return (a * 67108864.0 + b) * (1.0 / 9007199254740992.0);
}

namespace {

// Tempers the next n words of t into out through `temper`, block by block:
// the rest of the current block, then whole blocks regenerated in place.
template <class T, class Temper>
bool Fill(KXRandomTwister& t, T* out, std::size_t n, Temper temper) {
  if (n == 0) return true;
  if (out == nullptr) return false;
  std::uint32_t* words = internal::TwisterAccess::Words(t);
  std::int32_t& index = internal::TwisterAccess::Index(t);
  if (index == kNeverSeeded) t.Initialize(5489u);
  while (n > 0) {
    if (index >= kN) {
      internal::TwisterRegenerate(words);
      index = 0;
    }
    const std::size_t take = std::min<std::size_t>(n, static_cast<std::size_t>(kN - index));
    temper(words + index, out, static_cast<std::int64_t>(take));
    index += static_cast<std::int32_t>(take);
    out += take;
    n -= take;
  }
  return true;
}

}  // namespace

bool KXRandomTwister::FillInteger32(std::uint32_t* out, std::size_t n) {
  return Fill(*this, out, n, internal::TwisterTemperWords);
}

bool KXRandomTwister::FillRealOpen(double* out, std::size_t n) {
  return Fill(*this, out, n, internal::TwisterTemperRealsOpen);
}

void KXRandomTwister::Jump() {
  if (fpState->index == kNeverSeeded) Initialize(5489u);
  internal::TwisterJump(fpState->words, fpState->index, internal::kTwisterJump2p128, kN);
}

void KXRandomTwister::Assign(const std::uint32_t* words, std::int32_t index) {
  std::copy(words, words + kN, fpState->words);
  fpState->index = index;
}

int KXRandomTwister::WriteState(std::ostream& os) const {
  if (!os.good()) return 0;
  unsigned char record[kStateRecordBytes];
  std::memcpy(record, kStateTag, 4);
  internal::PutLE32(record + 4, kStateVersion);
  internal::PutLE32(record + 8, static_cast<std::uint32_t>(fpState->index));
  for (int i = 0; i < kN; ++i) internal::PutLE32(record + 12 + 4 * i, fpState->words[i]);
  os.write(reinterpret_cast<const char*>(record), kStateRecordBytes);
  return os.good() ? kStateRecordBytes : 0;
}

int KXRandomTwister::ReadState(std::istream& is) {
  unsigned char record[kStateRecordBytes];
  if (!is.good() ||
      !is.read(reinterpret_cast<char*>(record), kStateRecordBytes) ||
      std::memcmp(record, kStateTag, 4) != 0 || internal::GetLE32(record + 4) != kStateVersion) {
    return 0;
  }
  std::uint32_t words[kN];
  for (int i = 0; i < kN; ++i) words[i] = internal::GetLE32(record + 12 + 4 * i);
  const auto index = static_cast<std::int32_t>(internal::GetLE32(record + 8));
  if (!ValidState(words, index)) return 0;
  Assign(words, index);
  return kStateRecordBytes;
}

int KXRandomTwister::WriteStateXML(std::ostream& os, int indent) const {
  const KXXML::XMLObj obj(kStateObject, indent);
  obj.StartObj(os);
  obj.WriteSubElement(os, static_cast<int>(kStateVersion));
  obj.WriteSubElement(os, static_cast<int>(fpState->index));
  for (int i = 0; i < kN; ++i) obj.WriteSubElement(os, static_cast<unsigned int>(fpState->words[i]));
  obj.EndObj(os);
  return os.good() ? 1 : 0;
}

int KXRandomTwister::ReadStateXML(std::ifstream& is) {
  int version = 0, index = -1;
  bool ok = KXXML::ParseStartObj(is, kStateObject) && KXXML::ParseValue(is, version) &&
            version == static_cast<int>(kStateVersion) && KXXML::ParseValue(is, index);
  std::uint32_t words[kN];
  for (int i = 0; ok && i < kN; ++i) {
    unsigned int word = 0;
    ok = KXXML::ParseValue(is, word);
    words[i] = static_cast<std::uint32_t>(word);
  }
  if (!ok || !KXXML::ParseEndObj(is) || !ValidState(words, index)) {
    std::cerr << "Failure reading KXRandomTwister!\n";
    return 0;
  }
  Assign(words, index);
  return 1;
}

}  // namespace KXCommon
