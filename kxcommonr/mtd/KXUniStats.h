// kxcommonr/mtd/KXUniStats.h
//
// KXUniStats: one-pass, weighted, missing-aware statistics of a categorical
// variable: case counts (KXCaseCounts.h) and, per category code, the number
// of cases and their total weight; the mode is the code of the largest total
// weight (the smallest such code on a tie). Codes are those of the
// variable's encoder, 0 .. k-1. Statistics of partitions merge exactly:
// counts and weights add code by code (through a code translation when the
// parts' encoders were merged, KXCategoryEncoder::Merge).
//
// Saved form, object "KXUniStats": the counts (Doubles, 17 digits), the
// number of codes (Int) and per code its case count and total weight
// (Doubles, 17 digits), so a saved partial state restores bit for bit.
#ifndef KXCOMMONR_MTD_KXUNISTATS_H
#define KXCOMMONR_MTD_KXUNISTATS_H

#include <cstdint>
#include <fstream>
#include <ostream>
#include <vector>

#include "kxcommonr/config.h"
#include "kxcommonr/mtd/KXCaseCounts.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API KXUniStats {
 public:
  // The largest code taken.
  static constexpr int kMaxCode = (1 << 24) - 1;

  KXUniStats() = default;

  // Takes category `code` with frequency `weight`. A missing code (the
  // system-missing value, NaN, a negative or fractional number) counts as
  // a missing case. Returns false, taking nothing, for a weight that is
  // negative or not finite, or a code above kMaxCode; a zero weight takes
  // nothing and returns true.
  bool Add(double code, double weight = 1.0);
  // Adds the other part's counts code by code.
  void Merge(const KXUniStats& other);
  // The same with other's code c counted as code codeMap[c] here (a
  // negative entry, or a code beyond the map, as missing). False, nothing
  // changed, when a mapped code is above kMaxCode.
  bool Merge(const KXUniStats& other, const std::vector<int>& codeMap);
  void Clear() { *this = KXUniStats(); }

  const KXCaseCounts& GetCounts() const { return fCounts; }
  // One more than the largest code seen (0 before any).
  int GetNumberOfCodes() const { return static_cast<int>(fvWeights.size()); }
  // Cases and total weight of `code` (0 for a code never seen or out of range).
  std::int64_t GetCount(int code) const;
  double GetFrequency(int code) const;
  // The mode, or -1 when no valid case was taken.
  int GetMode() const;

  int WriteObjectXML(std::ostream& os, int indent) const;
  // Returns the lines read, or -1 (with "Failure reading KXUniStats!" on
  // standard error, the statistics unchanged) for an inconsistent object.
  int ReadObjectXML(std::ifstream& is);
  void Display() const;

  friend bool operator==(const KXUniStats& a, const KXUniStats& b) {
    return a.fCounts == b.fCounts && a.fvCounts == b.fvCounts && a.fvWeights == b.fvWeights;
  }

 private:
  void Take(int code, std::int64_t count, double weight);

  KXCaseCounts fCounts;
  std::vector<std::int64_t> fvCounts;
  std::vector<double> fvWeights;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXUNISTATS_H
