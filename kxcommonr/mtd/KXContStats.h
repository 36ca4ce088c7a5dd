// kxcommonr/mtd/KXContStats.h
//
// KXContStats: one-pass, weighted, missing-aware statistics of a continuous
// variable: case counts (KXCaseCounts.h), minimum, maximum, mean, variance
// and standard deviation, and - when four moments are kept - skewness and
// kurtosis. Values are taken one at a time with frequency weights and
// folded in by the stable recurrences (West's weighted update of the mean
// and the sum of squared deviations; Pebay's for the third and fourth),
// never by raw power sums. The values are taken relative to the first valid
// one (a shift that makes the running mean and deviations small numbers, so
// data with a small spread about a large mean keep their digits).
// Statistics of partitions merge by the pairwise
// formulas of Chan, Golub and LeVeque and of Pebay, so a merge of parts gives
// what one pass over all of them gives, up to rounding.
//
// With W the total weight of the valid cases and M2, M3, M4 the weighted
// sums of the 2nd to 4th powers of the deviations from the mean:
//   variance  M2 / (W - 1)                              (needs W > 1)
//   skewness  sqrt(W (W - 1)) / (W - 2) * g1,  g1 = (M3/W) / (M2/W)^1.5
//                                                   (needs W > 2, M2 > 0)
//   kurtosis  (W - 1) / ((W - 2)(W - 3)) * ((W + 1) g2 + 6),
//             g2 = (M4/W) / (M2/W)^2 - 3            (needs W > 3, M2 > 0)
// (the sample skewness and excess kurtosis of SPSS and SAS with frequency
// weights). A statistic that is not defined is the system-missing value.
//
// Saved form, object "KXContStats": the number of moments (Int), then the
// counts, minimum, maximum, shift, mean of the shifted values, M2, M3 and M4
// as Doubles with 17 digits,
// so a saved partial state restores bit for bit and merges on.
#ifndef KXCOMMONR_MTD_KXCONTSTATS_H
#define KXCOMMONR_MTD_KXCONTSTATS_H

#include <cstddef>
#include <fstream>
#include <ostream>

#include "kxcommonr/config.h"
#include "kxcommonr/mtd/KXCaseCounts.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API KXContStats {
 public:
  // `moments` 4 keeps everything; 2 keeps the mean and variance only (a
  // faster Add); any other value is taken as 4.
  explicit KXContStats(int moments = 4);

  // Takes `value` with frequency `weight`. A missing value (the system
  // missing value, a NaN or an infinity) counts as a missing case. Returns
  // false, taking nothing, for a weight that is negative or not finite; a
  // zero weight takes nothing and returns true.
  bool Add(double value, double weight = 1.0);
  // Takes n values (with their weights, or weight 1 each when `weights` is
  // null) as n calls of Add would, but a block at a time: each block's
  // moments by two passes about its own mean, then merged in. The results
  // agree with Add's to rounding, not bit for bit. A value whose weight is
  // refused is skipped. Returns the number of values taken.
  std::size_t Add(const double* values, const double* weights, std::size_t n);
  // Takes in the statistics of another part of the data. False (nothing
  // changed) when the two keep different numbers of moments.
  bool Merge(const KXContStats& other);
  void Clear();

  int GetMoments() const { return fiMoments; }
  const KXCaseCounts& GetCounts() const { return fCounts; }
  double GetMin() const;
  double GetMax() const;
  double GetMean() const;
  double GetVariance() const;
  double GetStdDev() const;
  double GetSkewness() const;
  double GetKurtosis() const;
  // The sums of powers of deviations (M2, M3, M4: 0 when not kept).
  double GetM2() const { return fdM2; }

  // Returns the lines written, or -1 when the stream failed.
  int WriteObjectXML(std::ostream& os, int indent) const;
  // Returns the lines read, or -1 (with "Failure reading KXContStats!" on
  // standard error, the statistics unchanged) for an object that is not a
  // consistent state (negative counts or weights, a minimum above the
  // maximum, ...).
  int ReadObjectXML(std::ifstream& is);
  void Display() const;

  // Bitwise equal states.
  friend KXCOMMONR_API bool operator==(const KXContStats& a, const KXContStats& b);

 private:
  // Folds in a part with total weight `weight`, mean `mean` (relative to
  // this shift) and sums of powers of deviations m2, m3, m4.
  void MergeMoments(double weight, double mean, double m2, double m3, double m4);

  int fiMoments;
  KXCaseCounts fCounts;
  double fdMin, fdMax;  // the missing value while no valid case
  double fdShift = 0.0;  // the first valid value
  double fdMean = 0.0;   // the mean of the values less the shift
  double fdM2 = 0.0, fdM3 = 0.0, fdM4 = 0.0;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXCONTSTATS_H
