#include "kxcommonr/mtd/KXUniStats.h"

#include <cmath>

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/mtd/internal/KXObjectIO.h"

namespace KXMTD_NAMESPACE {

namespace {

const char kObjectName[] = "KXUniStats";

bool IsCount(double v) { return v >= 0.0 && v < 9.0e15 && std::trunc(v) == v; }
bool IsWeight(double v) { return std::isfinite(v) && v >= 0.0; }

}  // namespace

void KXUniStats::Take(int code, std::int64_t count, double weight) {
  if (static_cast<std::size_t>(code) >= fvWeights.size()) {
    fvCounts.resize(static_cast<std::size_t>(code) + 1, 0);
    fvWeights.resize(static_cast<std::size_t>(code) + 1, 0.0);
  }
  fvCounts[static_cast<std::size_t>(code)] += count;
  fvWeights[static_cast<std::size_t>(code)] += weight;
  fCounts.valid += count;
  fCounts.weight += weight;
}

bool KXUniStats::Add(double code, double weight) {
  if (!std::isfinite(weight) || weight < 0.0) return false;
  if (code > kMaxCode && std::isfinite(code)) return false;
  if (weight == 0.0) return true;
  if (!(code >= 0.0) || !std::isfinite(code) || std::trunc(code) != code) {
    ++fCounts.missing;
    fCounts.missingWeight += weight;
    return true;
  }
  Take(static_cast<int>(code), 1, weight);
  return true;
}

void KXUniStats::Merge(const KXUniStats& other) {
  std::vector<int> identity(other.fvWeights.size());
  for (std::size_t c = 0; c < identity.size(); ++c) identity[c] = static_cast<int>(c);
  Merge(other, identity);
}

bool KXUniStats::Merge(const KXUniStats& other, const std::vector<int>& codeMap) {
  for (const int mapped : codeMap) {
    if (mapped > kMaxCode) return false;
  }
  for (std::size_t c = 0; c < other.fvWeights.size(); ++c) {
    if (other.fvCounts[c] == 0 && other.fvWeights[c] == 0.0) continue;
    const int mapped = c < codeMap.size() ? codeMap[c] : -1;
    if (mapped >= 0) {
      Take(mapped, other.fvCounts[c], other.fvWeights[c]);
    } else {
      fCounts.missing += other.fvCounts[c];
      fCounts.missingWeight += other.fvWeights[c];
    }
  }
  fCounts.missing += other.fCounts.missing;
  fCounts.missingWeight += other.fCounts.missingWeight;
  return true;
}

std::int64_t KXUniStats::GetCount(int code) const {
  return code >= 0 && code < GetNumberOfCodes() ? fvCounts[static_cast<std::size_t>(code)] : 0;
}

double KXUniStats::GetFrequency(int code) const {
  return code >= 0 && code < GetNumberOfCodes() ? fvWeights[static_cast<std::size_t>(code)] : 0.0;
}

int KXUniStats::GetMode() const {
  int mode = -1;
  for (std::size_t c = 0; c < fvWeights.size(); ++c) {
    if (fvCounts[c] > 0 && (mode < 0 || fvWeights[c] > fvWeights[static_cast<std::size_t>(mode)])) {
      mode = static_cast<int>(c);
    }
  }
  return mode;
}

int KXUniStats::WriteObjectXML(std::ostream& os, int indent) const {
  detail::ObjectWriter out(os, kObjectName, indent);
  out.Exact(static_cast<double>(fCounts.valid));
  out.Exact(static_cast<double>(fCounts.missing));
  out.Exact(fCounts.weight);
  out.Exact(fCounts.missingWeight);
  out.Value(GetNumberOfCodes());
  for (std::size_t c = 0; c < fvWeights.size(); ++c) {
    out.Exact(static_cast<double>(fvCounts[c]));
    out.Exact(fvWeights[c]);
  }
  return out.End();
}

int KXUniStats::ReadObjectXML(std::ifstream& is) {
  detail::ObjectReader in(is);
  KXUniStats read;
  double valid = 0, missing = 0, weight = 0, missingWeight = 0, count = 0, frequency = 0;
  int codes = 0;
  bool ok = in.Start(kObjectName) && in.Number(valid) && IsCount(valid) && in.Number(missing) &&
            IsCount(missing) && in.Number(weight) && IsWeight(weight) &&
            in.Number(missingWeight) && IsWeight(missingWeight) && in.Count(codes) &&
            codes <= kMaxCode + 1;
  for (int c = 0; ok && c < codes; ++c) {
    ok = in.Number(count) && IsCount(count) && in.Number(frequency) && IsWeight(frequency);
    if (ok) {
      read.fvCounts.push_back(static_cast<std::int64_t>(count));
      read.fvWeights.push_back(frequency);
    }
  }
  if (!ok || !in.End()) return detail::ReportReadFailure(kObjectName);
  read.fCounts.valid = static_cast<std::int64_t>(valid);
  read.fCounts.missing = static_cast<std::int64_t>(missing);
  read.fCounts.weight = weight;
  read.fCounts.missingWeight = missingWeight;
  *this = read;
  return in.Items();
}

void KXUniStats::Display() const {
  using namespace KXComponentDisplay;
  DisplayText(1, "Categorical statistics");
  DisplayI("Valid cases", static_cast<int>(fCounts.valid));
  DisplayI("Missing cases", static_cast<int>(fCounts.missing));
  DisplayD("Sum of weights", fCounts.weight);
  DisplayDV("Frequencies", fvWeights, false);
  DisplayI("Mode", GetMode());
}

}  // namespace KXMTD_NAMESPACE
