#include "kxcommonr/mtd/KXContStats.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iostream>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/records/KXTextRecordIterator.h"
#include "kxcommonr/testing/DisplayCapture.h"
#include "kxcommonr/testing/ObjectStreamTestUtil.h"
#include "kxcommonr/testing/TestData.h"

namespace {

using KXCommon::KXMV;
using KXMTD_NAMESPACE::KXContStats;
using KXMTD_NAMESPACE::KXTextRecordIterator;
using KXMTD_NAMESPACE::RawData;
using KXMTD_NAMESPACE::RawRecord;

// The values of one StRD univariate data set, read as records of the text
// iterator.
std::vector<double> StrdValues(const std::string& name) {
  std::ifstream in(kxtesting::TestDataPath("kxcommonr/mtd/testdata/strd-univariate/" + name + ".csv"),
                   std::ios::binary);
  KXTextRecordIterator it(in, KXTextRecordIterator::Options(), {RawData::Real});
  std::vector<double> values;
  RawRecord record;
  double x = 0;
  while (it.Next(record)) {
    if (record[0].AsReal(x)) values.push_back(x);
  }
  EXPECT_EQ(it.GetFailReason(), "");
  return values;
}

// The certified mean and standard deviation of `name` from certified.json.
void Certified(const std::string& name, double& mean, double& sd) {
  std::ifstream in(kxtesting::TestDataPath("kxcommonr/mtd/testdata/strd-univariate/certified.json"));
  const std::string json((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  const std::size_t at = json.find("\"" + name + "\"");
  const auto field = [&](const char* key) {
    const std::size_t k = json.find(std::string("\"") + key + "\": \"", at);
    return std::stod(json.substr(k + std::string(key).size() + 5));
  };
  mean = field("mean");
  sd = field("sd");
}

// Correct significant digits (log relative error), 15 when exact.
double Digits(double estimate, double certified) {
  if (estimate == certified) return 15;
  return -std::log10(std::fabs(estimate - certified) / std::fabs(certified));
}

// Weighted moments of (value, weight) pairs the two-pass way in long double.
struct Reference {
  long double w = 0, mean = 0, m2 = 0, m3 = 0, m4 = 0;
  explicit Reference(const std::vector<std::pair<double, double>>& data) {
    for (const auto& d : data) {
      w += d.second;
      mean += static_cast<long double>(d.first) * d.second;
    }
    mean /= w;
    for (const auto& d : data) {
      const long double e = d.first - mean;
      m2 += d.second * e * e;
      m3 += d.second * e * e * e;
      m4 += d.second * e * e * e * e;
    }
  }
};

// The certified digits; and, since the decimal data are rounded to binary on
// reading (which bounds the digits of NumAcc3 and NumAcc4 against the
// decimal certificate), at least 13 digits against the exact standard
// deviation of the binary values themselves.
TEST(KXContStatsTest, CertifiedDigitsOnStrdWholeAndMergedFromSevenParts) {
  const struct {
    const char* name;
    double sdDigits;
  } sets[] = {{"PiDigits", 13}, {"Lottery", 13}, {"Lew", 13},     {"Mavro", 13},  {"Michelso", 13},
              {"NumAcc1", 13},  {"NumAcc2", 14}, {"NumAcc3", 9},  {"NumAcc4", 8}};
  for (const auto& set : sets) {
    SCOPED_TRACE(set.name);
    const std::vector<double> values = StrdValues(set.name);
    double mean = 0, sd = 0;
    Certified(set.name, mean, sd);
    KXContStats whole, merged;
    for (const double x : values) whole.Add(x);
    // Seven uneven parts: sizes in proportion 1 : 2 : ... : 7.
    std::size_t begin = 0;
    for (int part = 1; part <= 7; ++part) {
      const std::size_t end = part == 7 ? values.size() : values.size() * part * (part + 1) / 56;
      KXContStats piece;
      for (std::size_t i = begin; i < end; ++i) piece.Add(values[i]);
      merged.Merge(piece);
      begin = end;
    }
    std::vector<std::pair<double, double>> weighted;
    for (const double x : values) weighted.emplace_back(x, 1.0);
    const Reference binary(weighted);
    const double binarySd = static_cast<double>(std::sqrt(binary.m2 / (binary.w - 1)));
    for (const KXContStats* stats : {&whole, &merged}) {
      const double meanDigits = Digits(stats->GetMean(), mean);
      const double sdDigits = Digits(stats->GetStdDev(), sd);
      EXPECT_GE(meanDigits, 14);
      EXPECT_GE(sdDigits, set.sdDigits);
      EXPECT_GE(Digits(stats->GetStdDev(), binarySd), 13);
      std::cout << set.name << (stats == &whole ? " whole" : " merged") << ": mean " << meanDigits
                << " digits, sd " << sdDigits << " digits (" << Digits(stats->GetStdDev(), binarySd)
                << " against the binary data)\n";
    }
    EXPECT_EQ(merged.GetCounts().valid, static_cast<std::int64_t>(values.size()));
  }
}

TEST(KXContStatsTest, WeightedMomentsAndMergesAgreeWithTwoPasses) {
  std::mt19937 random(17);
  std::lognormal_distribution<double> skewed(1.0, 0.75);
  std::vector<std::pair<double, double>> data;
  for (int i = 0; i < 5000; ++i) data.emplace_back(1e3 + skewed(random), 1 + random() % 5);
  const Reference ref(data);
  const long double w = ref.w;
  const long double g1 = (ref.m3 / w) / std::pow(ref.m2 / w, 1.5L);
  const long double g2 = (ref.m4 / w) / ((ref.m2 / w) * (ref.m2 / w)) - 3;
  const double expected[] = {
      static_cast<double>(ref.mean), static_cast<double>(ref.m2 / (w - 1)),
      static_cast<double>(std::sqrt(w * (w - 1)) / (w - 2) * g1),
      static_cast<double>((w - 1) / ((w - 2) * (w - 3)) * ((w + 1) * g2 + 6))};
  KXContStats whole, parts[3], merged, bulk;
  std::vector<double> values, weights;
  for (const auto& d : data) {
    values.push_back(d.first);
    weights.push_back(d.second);
  }
  values.push_back(KXMV::Missing());
  weights.push_back(2);
  weights[7] = -1;  // refused: skipped
  EXPECT_EQ(bulk.Add(values.data(), weights.data(), values.size()), values.size() - 1);
  weights[7] = data[7].second;
  bulk.Add(values.data() + 7, weights.data() + 7, 1);
  EXPECT_EQ(bulk.GetCounts().missing, 1);
  for (std::size_t i = 0; i < data.size(); ++i) {
    whole.Add(data[i].first, data[i].second);
    parts[i < 100 ? 0 : i < 4000 ? 1 : 2].Add(data[i].first, data[i].second);
  }
  merged.Merge(parts[2]);
  merged.Merge(KXContStats());
  merged.Merge(parts[0]);
  merged.Merge(parts[1]);
  for (const KXContStats* s : {&whole, &merged, &bulk}) {
    const double got[] = {s->GetMean(), s->GetVariance(), s->GetSkewness(), s->GetKurtosis()};
    for (int k = 0; k < 4; ++k) EXPECT_NEAR(got[k], expected[k], 1e-12 * std::fabs(expected[k])) << k;
    EXPECT_EQ(s->GetCounts().weight, static_cast<double>(w));
  }
  EXPECT_EQ(bulk.GetCounts().valid, whole.GetCounts().valid);
  EXPECT_EQ(bulk.GetMin(), whole.GetMin());
  KXContStats ones(2);
  ones.Add(values.data(), nullptr, 3);
  EXPECT_EQ(ones.GetCounts().weight, 3);
  EXPECT_EQ(merged.GetMin(), whole.GetMin());
  EXPECT_EQ(merged.GetMax(), whole.GetMax());
  EXPECT_FALSE(merged.Merge(KXContStats(2)));
}

TEST(KXContStatsTest, MissingValuesWeightsAndUndefinedStatistics) {
  KXContStats stats;
  for (const double x : {KXMV::Missing(), std::numeric_limits<double>::quiet_NaN(),
                         std::numeric_limits<double>::infinity()}) {
    EXPECT_TRUE(stats.Add(x, 2));
  }
  EXPECT_FALSE(stats.Add(1, -1));
  EXPECT_FALSE(stats.Add(1, std::numeric_limits<double>::infinity()));
  EXPECT_TRUE(stats.Add(1, 0));
  EXPECT_EQ(stats.GetCounts().missing, 3);
  EXPECT_EQ(stats.GetCounts().missingWeight, 6);
  EXPECT_EQ(stats.GetCounts().valid, 0);
  for (const double v : {stats.GetMin(), stats.GetMean(), stats.GetVariance(), stats.GetSkewness()}) {
    EXPECT_TRUE(KXMV::IsMissing(v));
  }
  stats.Add(4);
  EXPECT_EQ(stats.GetMean(), 4);
  EXPECT_TRUE(KXMV::IsMissing(stats.GetStdDev()));  // one case: no variance
  stats.Add(4);
  stats.Add(4);
  EXPECT_EQ(stats.GetVariance(), 0);
  EXPECT_TRUE(KXMV::IsMissing(stats.GetSkewness()));  // no spread
  KXContStats two(2);
  two.Add(1);
  two.Add(3);
  two.Add(8);
  EXPECT_TRUE(KXMV::IsMissing(two.GetKurtosis()));
  EXPECT_EQ(two.GetVariance(), 13);
  EXPECT_EQ(KXContStats(3).GetMoments(), 4);
}

TEST(KXContStatsTest, SavedPartialStatesRestoreBitForBitAndMergeOn) {
  std::mt19937 random(5);
  std::normal_distribution<double> normal(10, 3);
  KXContStats first, second, read;
  for (int i = 0; i < 300; ++i) (i % 3 ? first : second).Add(normal(random), 1 + i % 4);
  second.Add(KXMV::Missing(), 2);
  kxtesting::ExpectRoundTrip(first, read);
  EXPECT_TRUE(read == first);
  KXContStats fromSaved = read, fromLive = first;
  fromSaved.Merge(second);
  fromLive.Merge(second);
  EXPECT_TRUE(fromSaved == fromLive);
  KXContStats empty(2);
  kxtesting::ExpectRoundTrip(KXContStats(2), empty);

  const std::string good = kxtesting::WrittenText(first);
  const auto line = [&good](int n) {  // the start of value line n (0-based)
    std::size_t at = good.find("<Obj");
    for (int i = 0; i <= n; ++i) at = good.find('\n', at) + 1;
    return at;
  };
  const auto withValue = [&](int n, const std::string& value) {
    std::string text = good;
    const std::size_t at = line(n), end = text.find('\n', at);
    return text.replace(at, end - at, "\t<Double value=\"" + value + "\"/>");
  };
  const struct {
    const char* what;
    std::string text;
  } cases[] = {{"moments 3", withValue(0, "3").replace(good.find("<Int value=\"4\"/>"), 16, "<Int value=\"3\"/>")},
               {"negative count", withValue(1, "-1")},
               {"fractional count", withValue(2, "0.5")},
               {"negative weight", withValue(3, "-2")},
               {"minimum above maximum", withValue(5, "1e300")},
               {"negative M2", withValue(9, "-1")},
               {"no number", withValue(8, "mean")}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    KXContStats target = second;
    const kxtesting::ReadOutcome outcome = kxtesting::ReadFromText(target, c.text);
    EXPECT_EQ(outcome.result, -1);
    EXPECT_EQ(outcome.errText, "Failure reading KXContStats!\n");
    EXPECT_TRUE(target == second);
  }
}

TEST(KXContStatsTest, Displays) {
  KXContStats stats;
  for (const double x : {1.0, 3.0, 5.0}) stats.Add(x);
  stats.Add(KXMV::Missing());
  kxtesting::DisplayCapture capture;
  stats.Display();
  EXPECT_EQ(capture.Text(),
            "\nContinuous statistics\nValid cases = 3\nMissing cases = 1\nSum of weights = 3"
            "\nMinimum = 1\nMaximum = 5\nMean = 3\nStandard deviation = 2"
            "\nSkewness = 0\nKurtosis = miss");
}

}  // namespace
