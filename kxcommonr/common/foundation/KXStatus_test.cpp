#include "kxcommonr/common/foundation/KXStatus.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

using KXCommon::KXStatus;

TEST(KXStatusTest, SeverityAloneDecidesTheKindAndDetailsStartAtZero) {
  const struct { KXStatus status; long code; int severity; } table[] = {
      {KXStatus(), 0, 0}, {KXStatus(5, true), 5, 1}, {KXStatus(5, false), 5, -1},
      {KXStatus(0, false), 0, -1}, {KXStatus(INT32_MIN, true), INT32_MIN, 1}};
  for (const auto& row : table) {
    EXPECT_TRUE(row.status.GetCode() == row.code && row.status.GetSeverity() == row.severity);
    EXPECT_EQ(row.status.IsOK(), row.severity == 0);
    EXPECT_EQ(row.status.IsError(), row.severity < 0);
    EXPECT_EQ(row.status.IsWarning(), row.severity > 0);
    for (unsigned i = 0; i < 4; ++i) {
      EXPECT_TRUE(row.status.GetDiscreteDatum(i) == 0 && row.status.GetScaleDatum(i) == 0.0);
    }
  }
}

// Each of the three details takes part in ==, a fourth is ignored, and a NaN
// detail makes a status unequal even to itself.
TEST(KXStatusTest, EqualityComparesEveryField) {
  const KXStatus base(7, false);
  EXPECT_TRUE(base != KXStatus(7, true) && base != KXStatus(8, false));
  KXStatus detailed = base;
  for (unsigned i = 0; i < 4; ++i) {
    KXStatus discrete = base, scale = base;
    discrete.SetDiscreteDatum(i, INT32_MAX);
    scale.SetScaleDatum(i, 0.5);
    EXPECT_EQ(discrete.GetDiscreteDatum(i) + scale.GetScaleDatum(i), i < 3 ? INT32_MAX + 0.5 : 0);
    EXPECT_EQ(discrete == base, i == 3) << i;
    EXPECT_EQ(scale == base, i == 3) << i;
    detailed.SetDiscreteDatum(i, i + 1);
    detailed.SetScaleDatum(i, i * 2.5);
  }
  EXPECT_TRUE(detailed == KXStatus(detailed));
  EXPECT_TRUE(detailed.GetDiscreteDatum(3) == 0 && detailed.GetScaleDatum(3) == 0.0);
  detailed.SetScaleDatum(2, std::numeric_limits<double>::quiet_NaN());
  const KXStatus& alias = detailed;
  EXPECT_TRUE(detailed != alias);
}

}  // namespace
