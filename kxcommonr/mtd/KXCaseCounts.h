// kxcommonr/mtd/KXCaseCounts.h
//
// KXCaseCounts: the case counts every univariate statistic keeps - cases
// with a valid value and with a missing one, unweighted and weighted by
// their frequency weights. Counts of partitions add.
#ifndef KXCOMMONR_MTD_KXCASECOUNTS_H
#define KXCOMMONR_MTD_KXCASECOUNTS_H

#include <cstdint>

#include "kxcommonr/config.h"

namespace KXMTD_NAMESPACE {

struct KXCOMMONR_API KXCaseCounts {
  std::int64_t valid = 0;      // cases with a valid value
  std::int64_t missing = 0;    // cases with a missing value
  double weight = 0.0;         // total weight of the valid cases
  double missingWeight = 0.0;  // total weight of the missing ones

  void Add(const KXCaseCounts& other) {
    valid += other.valid;
    missing += other.missing;
    weight += other.weight;
    missingWeight += other.missingWeight;
  }
  friend bool operator==(const KXCaseCounts& a, const KXCaseCounts& b) {
    return a.valid == b.valid && a.missing == b.missing && a.weight == b.weight &&
           a.missingWeight == b.missingWeight;
  }
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXCASECOUNTS_H
