#include "kxcommonr/records/RawData.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace {

using KXMTD_NAMESPACE::RawData;

TEST(RawDataTest, ConversionsRefuseWhatDoesNotFit) {
  const double kNaN = std::numeric_limits<double>::quiet_NaN();
  const struct {
    RawData value;
    bool integerOk;
    std::int64_t integer;
    bool realOk;
    double real;
    const char* text;
  } cases[] = {
      {RawData::FromInteger(-42), true, -42, true, -42, "-42"},
      {RawData::FromInteger(9007199254740993LL), true, 9007199254740993LL, false, 0, "9007199254740993"},
      {RawData::FromReal(2.0), true, 2, true, 2, "2"},
      {RawData::FromReal(2.5), false, 0, true, 2.5, "2.5"},
      {RawData::FromReal(0.1), false, 0, true, 0.1, "0.1"},
      {RawData::FromReal(1e19), false, 0, true, 1e19, "1e+19"},
      {RawData::FromReal(kNaN), false, 0, true, kNaN, "nan"},
      {RawData::FromString(" +17 "), true, 17, true, 17, " +17 "},
      {RawData::FromString("1e3"), false, 0, true, 1000, "1e3"},
      {RawData::FromString("12,5"), false, 0, false, 0, "12,5"},
      {RawData::FromString(""), false, 0, false, 0, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    std::int64_t integer = 7;
    double real = 7;
    std::string text;
    EXPECT_EQ(c.value.AsInteger(integer), c.integerOk);
    EXPECT_EQ(integer, c.integerOk ? c.integer : 7);
    EXPECT_EQ(c.value.AsReal(real), c.realOk);
    if (c.realOk && !std::isnan(c.real)) {
      EXPECT_EQ(real, c.real);
    }
    ASSERT_TRUE(c.value.AsString(text));
    EXPECT_EQ(text, c.text);
  }
  RawData null = RawData::Null(RawData::Integer);
  std::int64_t integer = 7;
  std::string text = "kept";
  EXPECT_TRUE(null.IsNull());
  EXPECT_EQ(null.GetType(), RawData::Integer);
  EXPECT_FALSE(null.AsInteger(integer) || null.AsString(text));
  EXPECT_EQ(text, "kept");
}

TEST(RawDataTest, DatesTimesAndTimestampsReadAndWriteIso8601) {
  const struct {
    const char* text;
    std::int64_t days;
  } dates[] = {{"1970-01-01", 0},       {"2000-03-01", 11017}, {"0001-01-01", -719162},
               {"9999-12-31", 2932896}, {"1969-12-31", -1},    {"2000-02-29", 11016}};
  for (const auto& d : dates) {
    std::int64_t days = 0;
    ASSERT_TRUE(RawData::ParseDate(d.text, days)) << d.text;
    EXPECT_EQ(days, d.days) << d.text;
  }
  for (const char* bad : {"1900-02-29", "2023-04-31", "2023-13-01", "0000-01-01", "2023-1-01",
                          "20230101", "2023-01-01x"}) {
    std::int64_t days = 5;
    EXPECT_FALSE(RawData::ParseDate(bad, days)) << bad;
    EXPECT_EQ(days, 5);
  }
  // Every day of four centuries reads back from its text, one day apart.
  RawData value;
  std::string text;
  for (std::int64_t day = -146097 - 3; day < 146097; day += 1) {
    ASSERT_TRUE(value.SetDate(day));
    ASSERT_TRUE(value.AsString(text));
    std::int64_t back = 0;
    ASSERT_TRUE(RawData::ParseDate(text, back) && back == day) << text;
  }
  EXPECT_FALSE(value.SetDate(2932897));

  std::int64_t micros = 0;
  ASSERT_TRUE(RawData::ParseTime("13:45:30.25", micros));
  EXPECT_EQ(micros, ((13 * 60 + 45) * 60 + 30) * 1000000LL + 250000);
  ASSERT_TRUE(value.SetTime(micros) && value.AsString(text));
  EXPECT_EQ(text, "13:45:30.25");
  for (const char* bad : {"24:00:00", "12:60:00", "12:00:00.", "12:00:00.1234567", "1:00:00"}) {
    EXPECT_FALSE(RawData::ParseTime(bad, micros)) << bad;
  }
  ASSERT_TRUE(RawData::ParseTimestamp("1969-12-31 23:59:59.5", micros));
  EXPECT_EQ(micros, -500000);
  ASSERT_TRUE(value.SetTimestamp(micros) && value.AsString(text));
  EXPECT_EQ(text, "1969-12-31T23:59:59.5");
  double seconds = 0;
  ASSERT_TRUE(value.AsReal(seconds));
  EXPECT_EQ(seconds, -0.5);
}

TEST(RawDataTest, EqualityAndReuse) {
  RawData a = RawData::FromString("abc"), b;
  EXPECT_FALSE(a == b);
  b.SetString("abc");
  EXPECT_TRUE(a == b);
  b.SetReal(-0.0);
  EXPECT_FALSE(b == RawData::FromReal(0.0));  // bitwise
  EXPECT_TRUE(RawData::Null(RawData::Date) == RawData::Null(RawData::Date));
  EXPECT_FALSE(RawData::Null(RawData::Date) == RawData::Null(RawData::Time));
  EXPECT_EQ(RawData::Null(static_cast<RawData::Type>(9)).GetType(), RawData::Real);
}

}  // namespace
