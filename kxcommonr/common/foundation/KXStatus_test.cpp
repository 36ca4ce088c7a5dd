#include "kxcommonr/common/foundation/KXStatus.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using KXCommon::KXStatus;

TEST(KXStatusTest, SeverityAloneDecidesTheKind) {
  const KXStatus ok;
  EXPECT_TRUE(ok.IsOK());
  EXPECT_FALSE(ok.IsError());
  EXPECT_FALSE(ok.IsWarning());
  EXPECT_EQ(ok.GetCode(), 0);

  const KXStatus warning(5, true);
  EXPECT_TRUE(warning.IsWarning());
  EXPECT_FALSE(warning.IsOK());
  EXPECT_EQ(warning.GetCode(), 5);
  EXPECT_EQ(warning.GetSeverity(), 1);

  const KXStatus error(5, false);
  EXPECT_TRUE(error.IsError());
  EXPECT_EQ(error.GetSeverity(), -1);

  // A zero code with a severity is still not OK.
  EXPECT_TRUE(KXStatus(0, false).IsError());
  for (unsigned i = 0; i < 3; ++i) {
    EXPECT_EQ(error.GetDiscreteDatum(i), 0);
    EXPECT_EQ(error.GetScaleDatum(i), 0.0);
  }
}

TEST(KXStatusTest, EqualityComparesEveryField) {
  KXStatus a(7, false);
  KXStatus b(7, false);
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a == KXStatus(7, true));
  EXPECT_FALSE(a == KXStatus(8, false));
  for (unsigned i = 0; i < 3; ++i) {
    KXStatus c = a;
    c.SetDiscreteDatum(i, 42);
    EXPECT_EQ(c.GetDiscreteDatum(i), 42);
    EXPECT_FALSE(a == c) << i;
    c = a;
    c.SetScaleDatum(i, 0.5);
    EXPECT_EQ(c.GetScaleDatum(i), 0.5);
    EXPECT_FALSE(a == c) << i;
    b.SetDiscreteDatum(i, static_cast<long>(i) + 1);
    b.SetScaleDatum(i, i * 2.5);
  }
  const KXStatus copy = b;
  EXPECT_TRUE(copy == b);
  EXPECT_FALSE(copy != b);
}

TEST(KXStatusTest, OddDetails) {
  // Details outside the three are ignored.
  KXStatus a(1, true);
  const KXStatus before = a;
  a.SetDiscreteDatum(3, 9);
  a.SetScaleDatum(100, 9.0);
  EXPECT_TRUE(a == before);
  EXPECT_EQ(a.GetDiscreteDatum(3), 0);
  EXPECT_EQ(a.GetScaleDatum(7), 0.0);
  // A NaN detail makes a status unequal even to itself.
  a.SetScaleDatum(2, std::numeric_limits<double>::quiet_NaN());
  const KXStatus& alias = a;
  EXPECT_FALSE(a == KXStatus(a));
  EXPECT_FALSE(a == alias);
}

}  // namespace
