#include "kxcommonr/common/containers/KXPackedInt.h"

#include <cmath>
#include <cstdint>
#include <cstddef>

#include "kxcommonr/common/containers/KXHashKey.h"
#include "kxcommonr/common/display/KXComponentDisplay.h"

namespace KXCommon {

KXPackedInt::KXPackedInt() : fN(0), fLowerBound(0), fNUnits(0) {}

KXPackedInt::KXPackedInt(int n, int lowerBound, const std::vector<int>& counts)
    : fN(n), fLowerBound(lowerBound), fvNDiffVal(counts), fNUnits(0) {
  Setup();
}

KXPackedInt::KXPackedInt(const KXPackedInt& other) = default;

KXPackedInt& KXPackedInt::operator=(const KXPackedInt& other) = default;

KXPackedInt::~KXPackedInt() = default;

bool KXPackedInt::SetForSequence(int n, int lowerBound,
                                 const std::vector<int>& counts) {
  fN = n;
  fLowerBound = lowerBound;
  fvNDiffVal = counts;
  return Setup();
}

bool KXPackedInt::Setup() {
  fNUnits = 0;
  fvUnit.clear();
  fvMultiplier.clear();
  bool usable = fN >= 1 && fvNDiffVal.size() >= static_cast<std::size_t>(fN);
  for (int i = 0; usable && i < fN; ++i) {
    if (fvNDiffVal[static_cast<std::size_t>(i)] < 1) usable = false;
  }
  if (!usable) {
    fN = 0;
    fvNDiffVal.clear();
    return false;
  }
  const std::size_t n = static_cast<std::size_t>(fN);
  fvUnit.resize(n);
  fvMultiplier.resize(n);
  const double cap =
      std::log(static_cast<double>(KXHashKey::GetElementUpperBound()));
  double logSum = 0.0;
  int unit = 0;
  std::int64_t product = 1;
  for (std::size_t i = 0; i < n; ++i) {
    const int count = fvNDiffVal[i];
    const double logCount = std::log(static_cast<double>(count));
    logSum += logCount;
    if (logSum > cap) {
      // Start a new unit (tested even before the first unit holds anything).
      ++unit;
      logSum = logCount;
      product = count;
    } else {
      product *= count;
    }
    fvMultiplier[i] = static_cast<int>(product);
    fvUnit[i] = unit;
  }
  fNUnits = unit + 1;
  return true;
}

int KXPackedInt::GetNDiffVal(int i) const {
  if (i < 0 || i >= fN) return -1;
  return fvNDiffVal[static_cast<std::size_t>(i)];
}

bool KXPackedInt::Pack(const std::vector<int>& codes, std::vector<int>& packed,
                       bool check) const {
  const std::size_t n = static_cast<std::size_t>(fN);
  if (codes.size() < n) return false;
  if (check) {
    for (std::size_t i = 0; i < n; ++i) {
      const std::int64_t digit =
          static_cast<std::int64_t>(codes[i]) - fLowerBound;
      if (digit < 0 || digit >= fvNDiffVal[i]) return false;
    }
  }
  packed.assign(static_cast<std::size_t>(fNUnits), 0);
  std::size_t entry = 0;
  std::int64_t accumulated = 0;
  std::int64_t weight = 1;
  for (std::size_t i = 0; i < n; ++i) {
    accumulated += (static_cast<std::int64_t>(codes[i]) - fLowerBound) * weight;
    if (i + 1 < n && fvUnit[i + 1] == fvUnit[i]) {
      weight = fvMultiplier[i];
    } else {
      packed[entry++] = static_cast<int>(accumulated);
      accumulated = 0;
      weight = 1;
    }
  }
  return true;
}

bool KXPackedInt::Unpack(std::vector<int>& codes,
                         const std::vector<int>& packed) const {
  if (packed.size() < static_cast<std::size_t>(fNUnits)) return false;
  const std::size_t n = static_cast<std::size_t>(fN);
  if (n == 0) return true;
  if (codes.size() < n) codes.resize(n);
  // Pack fills one entry per run of positions sharing a unit, in order.
  std::size_t entries = 1;
  for (std::size_t i = 1; i < n; ++i) {
    if (fvUnit[i] != fvUnit[i - 1]) ++entries;
  }
  std::size_t entry = entries - 1;
  std::int64_t remaining = packed[entry];
  for (std::size_t i = n; i-- > 0;) {
    const bool sharesUnit = i > 0 && fvUnit[i - 1] == fvUnit[i];
    const std::int64_t divisor = sharesUnit ? fvMultiplier[i - 1] : 1;
    codes[i] = static_cast<int>(remaining / divisor + fLowerBound);
    remaining %= divisor;
    if (!sharesUnit && i > 0) remaining = packed[--entry];
  }
  return true;
}

void KXPackedInt::Display() const {
  KXComponentDisplay::DisplayText(1, "KXPackedInt display start");
  KXComponentDisplay::DisplayI("fN", fN);
  KXComponentDisplay::DisplayI("fLowerBound", fLowerBound);
  KXComponentDisplay::DisplayIV("fvNDiffVal", fvNDiffVal);
  KXComponentDisplay::DisplayI("fNUnits", fNUnits);
  KXComponentDisplay::DisplayIV("fvUnit", fvUnit);
  KXComponentDisplay::DisplayIV("fvMultiplier", fvMultiplier);
  KXComponentDisplay::DisplayText(1, "KXPackedInt display end");
}

}  // namespace KXCommon
