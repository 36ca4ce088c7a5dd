#include "kxcommonr/mtd/KXUniStats.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/mtd/KXStringEncoder.h"
#include "kxcommonr/testing/DisplayCapture.h"
#include "kxcommonr/testing/ObjectStreamTestUtil.h"

namespace {

using KXCommon::KXMV;
using KXMTD_NAMESPACE::KXStringEncoder;
using KXMTD_NAMESPACE::KXUniStats;

TEST(KXUniStatsTest, CountsFrequenciesAndMode) {
  KXUniStats stats;
  const struct {
    double code, weight;
    bool taken;
  } cases[] = {{2, 1.5, true},  {0, 1, true},   {2, 0.5, true},  {0, 2, true},
               {-1, 1, true},   {1.5, 1, true}, {KXMV::Missing(), 3, true},
               {std::numeric_limits<double>::quiet_NaN(), 1, true},
               {1, -1, false},  {1, 0, true},   {KXUniStats::kMaxCode + 1.0, 1, false}};
  for (const auto& c : cases) EXPECT_EQ(stats.Add(c.code, c.weight), c.taken) << c.code;
  EXPECT_EQ(stats.GetCounts().valid, 4);
  EXPECT_EQ(stats.GetCounts().missing, 4);
  EXPECT_EQ(stats.GetCounts().missingWeight, 6);
  EXPECT_EQ(stats.GetNumberOfCodes(), 3);
  EXPECT_EQ(stats.GetFrequency(0), 3);
  EXPECT_EQ(stats.GetFrequency(1), 0);
  EXPECT_EQ(stats.GetCount(2), 2);
  EXPECT_EQ(stats.GetCount(9), 0);
  EXPECT_EQ(stats.GetMode(), 0);  // 0 and 2 tie at weight 3: the smaller code
  EXPECT_EQ(KXUniStats().GetMode(), -1);
}

// Two parts encoded by their own encoders, merged through the encoders'
// code translation, count as one pass over one encoder does.
TEST(KXUniStatsTest, PartsMergedThroughTheirEncodersEqualOnePass) {
  std::mt19937 random(9);
  std::vector<std::string> data;
  for (int i = 0; i < 2000; ++i) data.push_back("level" + std::to_string(random() % 40));
  data.push_back("NA");
  KXStringEncoder wholeCodes, firstCodes, secondCodes;
  for (KXStringEncoder* e : {&wholeCodes, &firstCodes, &secondCodes}) e->AddMissingValue("NA");
  KXUniStats whole, first, second;
  for (std::size_t i = 0; i < data.size(); ++i) {
    whole.Add(wholeCodes.Encode(data[i]), 1 + i % 3);
    if (i < 700) {
      first.Add(firstCodes.Encode(data[i]), 1 + i % 3);
    } else {
      second.Add(secondCodes.Encode(data[i]), 1 + i % 3);
    }
  }
  const std::vector<int> map = firstCodes.Merge(secondCodes);
  KXUniStats merged = first;
  ASSERT_TRUE(merged.Merge(second, map));
  ASSERT_EQ(firstCodes.GetNumberOfCategories(), wholeCodes.GetNumberOfCategories());
  for (int code = 0; code < wholeCodes.GetNumberOfCategories(); ++code) {
    const std::string value = *firstCodes.GetLabel(code) + firstCodes.GetDictionary().Value(code);
    const int wholeCode = wholeCodes.GetCode(firstCodes.GetDictionary().Value(code));
    EXPECT_EQ(merged.GetFrequency(code), whole.GetFrequency(wholeCode)) << value;
    EXPECT_EQ(merged.GetCount(code), whole.GetCount(wholeCode)) << value;
  }
  EXPECT_TRUE(merged.GetCounts() == whole.GetCounts());
  KXUniStats plain = first;
  plain.Merge(first);
  EXPECT_EQ(plain.GetFrequency(0), 2 * first.GetFrequency(0));
  EXPECT_FALSE(plain.Merge(first, {KXUniStats::kMaxCode + 1}));
  KXUniStats dropped;
  ASSERT_TRUE(dropped.Merge(first, {-1}));  // code 0 becomes missing, the rest too
  EXPECT_EQ(dropped.GetCounts().valid, 0);
  EXPECT_EQ(dropped.GetCounts().missing, first.GetCounts().valid + first.GetCounts().missing);
}

TEST(KXUniStatsTest, SavesExactlyAndRefusesInconsistentObjects) {
  KXUniStats stats, read;
  stats.Add(3, 0.1);
  stats.Add(0, 1.0 / 3);
  stats.Add(KXMV::Missing(), 2);
  kxtesting::ExpectRoundTrip(stats, read);
  EXPECT_TRUE(read == stats);
  std::string text = kxtesting::WrittenText(stats);
  text.replace(text.find("<Int value=\"4\"/>"), 16, "<Int value=\"-4\"/>");
  const kxtesting::ReadOutcome outcome = kxtesting::ReadFromText(read, text);
  EXPECT_EQ(outcome.result, -1);
  EXPECT_EQ(outcome.errText, "Failure reading KXUniStats!\n");
  EXPECT_TRUE(read == stats);

  kxtesting::DisplayCapture capture;
  stats.Display();
  EXPECT_EQ(capture.Text(),
            "\nCategorical statistics\nValid cases = 2\nMissing cases = 1\nSum of weights = 0.433333"
            "\nFrequencies (size = 4)\n  0.333333 0 0 0.1\nMode = 0");
}

}  // namespace
