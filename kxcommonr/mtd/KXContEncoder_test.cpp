#include "kxcommonr/mtd/KXContEncoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/mtd/KXBinningEncoder.h"
#include "kxcommonr/mtd/KXRoundEncoder.h"
#include "kxcommonr/testing/DisplayCapture.h"
#include "kxcommonr/testing/ObjectStreamTestUtil.h"

namespace {

using KXCommon::KXMV;
using KXMTD_NAMESPACE::IKXVariable;
using KXMTD_NAMESPACE::KXBinningEncoder;
using KXMTD_NAMESPACE::KXContEncoder;
using KXMTD_NAMESPACE::KXRoundEncoder;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

// The bin of x counted the slow way: cut points strictly below it.
int CountBelow(const std::vector<double>& cuts, double x) {
  return static_cast<int>(std::count_if(cuts.begin(), cuts.end(), [x](double c) { return c < x; }));
}

TEST(KXContEncoderTest, BinsAreRightClosedAndMissingStaysMissing) {
  KXContEncoder encoder;
  EXPECT_EQ(encoder.Encode(3.25), 3.25);  // passes through
  EXPECT_EQ(encoder.GetNumberOfCategories(), 0);
  EXPECT_EQ(encoder.GetBinCode(3.25), -1);
  const std::vector<double> cuts = {-1, 0, 0.5, 10};
  ASSERT_TRUE(encoder.SetCutPoints(cuts));
  ASSERT_TRUE(encoder.AddMissingValue(99));
  EXPECT_EQ(encoder.GetNumberOfCategories(), 5);
  for (const double x : {-5.0, -1.0, -0.5, 0.0, -0.0, 0.5, 0.75, 10.0, 11.0, 1e300}) {
    SCOPED_TRACE(x);
    EXPECT_EQ(encoder.Encode(x), CountBelow(cuts, x));
  }
  for (const double x : {99.0, kNaN, kInf, -kInf, KXMV::Missing()}) {
    EXPECT_EQ(encoder.Encode(x), KXMV::Missing());
  }
  EXPECT_EQ(encoder.Encode(std::string(" 0.75 ")), 3);
  EXPECT_EQ(encoder.Encode(std::string("n/a")), KXMV::Missing());
  // Refused cut points leave the bins as they were; none at all is one bin.
  const std::vector<std::vector<double>> refused = {
      {1, 1}, {2, 1}, {0, kNaN}, {kInf}, {KXMV::Missing(), 0}};
  for (const auto& bad : refused) EXPECT_FALSE(encoder.SetCutPoints(bad));
  EXPECT_EQ(encoder.GetCutPoints(), cuts);
  ASSERT_TRUE(encoder.SetCutPoints({}));
  EXPECT_EQ(encoder.Encode(-7.0), 0);
  EXPECT_EQ(encoder.GetNumberOfCategories(), 1);
  encoder.ClearBins();
  EXPECT_EQ(encoder.Encode(-7.0), -7.0);
}

// The weighted j/n quantile by expanding integer weights into repeats.
std::vector<double> ExpandedQuantiles(const std::vector<std::pair<double, int>>& data, int bins) {
  std::vector<double> expanded;
  for (const auto& d : data) expanded.insert(expanded.end(), static_cast<std::size_t>(d.second), d.first);
  std::sort(expanded.begin(), expanded.end());
  std::vector<double> cuts;
  const double n = static_cast<double>(expanded.size());
  for (int j = 1; j < bins; ++j) {
    const double cut = expanded[static_cast<std::size_t>(std::ceil(n * j / bins)) - 1];
    if (cut < expanded.back() && (cuts.empty() || cut > cuts.back())) cuts.push_back(cut);
  }
  return cuts;
}

TEST(KXBinningEncoderTest, LearnsEqualWidthAndWeightedEqualFrequencyCuts) {
  KXBinningEncoder width(KXBinningEncoder::EqualWidth, 4);
  EXPECT_FALSE(width.ComputeCutPoints());  // no data yet
  for (const double x : {100.0, 0.0, 37.0}) EXPECT_TRUE(width.AddValue(x));
  EXPECT_FALSE(width.AddValue(kNaN));
  EXPECT_FALSE(width.AddValue(1, -1));
  EXPECT_FALSE(width.AddValue(1, kInf));
  EXPECT_TRUE(width.AddValue(500, 0));  // weight zero: ignored
  ASSERT_TRUE(width.ComputeCutPoints());
  EXPECT_EQ(width.GetCutPoints(), (std::vector<double>{25, 50, 75}));
  EXPECT_EQ(width.Encode(100.0), 3);

  std::mt19937 random(5);
  for (const int bins : {2, 3, 7, 10}) {
    std::vector<std::pair<double, int>> data;
    KXBinningEncoder frequency(KXBinningEncoder::EqualFrequency, bins);
    for (int i = 0; i < 400; ++i) {
      data.emplace_back(static_cast<double>(random() % 60) / 4, static_cast<int>(random() % 4));
      frequency.AddValue(data.back().first, data.back().second);
    }
    SCOPED_TRACE(bins);
    ASSERT_TRUE(frequency.ComputeCutPoints());
    EXPECT_EQ(frequency.GetCutPoints(), ExpandedQuantiles(data, bins));
  }
  const std::unique_ptr<KXMTD_NAMESPACE::IKXEncoder> clone(width.Clone());
  EXPECT_EQ(clone->Encode(60.0), 2);
  width.ClearData();
  EXPECT_FALSE(width.ComputeCutPoints());
  EXPECT_EQ(width.GetRequestedBins(), 4);
  KXBinningEncoder constant(KXBinningEncoder::EqualFrequency, 5);
  constant.AddValue(3, 2);
  constant.AddValue(3, 1);
  ASSERT_TRUE(constant.ComputeCutPoints());
  EXPECT_EQ(constant.GetNumberOfCategories(), 1);
  KXBinningEncoder extremes(KXBinningEncoder::EqualWidth, 2);  // the width must not overflow
  extremes.AddValue(-1.5e308);
  extremes.AddValue(1.5e308);
  ASSERT_TRUE(extremes.ComputeCutPoints());
  EXPECT_EQ(extremes.GetCutPoints(), std::vector<double>{0.0});
}

TEST(KXRoundEncoderTest, RoundsByTheOptionAndRefusesBadWeights) {
  const struct {
    double weight, truncated, closest;
  } cases[] = {{2.5, 2, 3}, {2.49, 2, 2}, {0, 0, 0}, {7, 7, 7}, {1e20, 1e20, 1e20}};
  KXRoundEncoder truncate(IKXVariable::WRoundTruncate), closest, asIs(IKXVariable::WRoundAsIs);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.weight);
    EXPECT_EQ(truncate.Encode(c.weight), c.truncated);
    EXPECT_EQ(closest.Encode(c.weight), c.closest);
    EXPECT_EQ(asIs.Encode(c.weight), c.weight);
  }
  for (const double bad : {-0.5, kNaN, kInf, KXMV::Missing()}) EXPECT_EQ(closest.Encode(bad), KXMV::Missing());
  EXPECT_EQ(closest.Encode(std::string("3.6")), 4);
  EXPECT_EQ(closest.GetNumberOfCategories(), 0);
  EXPECT_FALSE(closest.SetRoundingOption(static_cast<IKXVariable::WRoundingOption>(3)));
  EXPECT_TRUE(asIs.SetRoundingOption(IKXVariable::WRoundTruncate));
  const std::unique_ptr<KXMTD_NAMESPACE::IKXEncoder> clone(asIs.Clone());
  EXPECT_EQ(clone->Encode(2.7), 2);
  EXPECT_EQ(KXRoundEncoder(static_cast<IKXVariable::WRoundingOption>(-1)).GetRoundingOption(),
            IKXVariable::WRoundClosest);
}

TEST(KXContEncoderTest, RoundTripsExactly) {
  KXContEncoder cont({-1e300, -4.9e-324, 0.1, 1.0 / 3, 1e300});
  cont.AddMissingValue(-99.5);
  KXContEncoder contRead;
  kxtesting::ExpectRoundTrip(cont, contRead);
  EXPECT_TRUE(contRead == cont);
  KXContEncoder passRead({1, 2});
  kxtesting::ExpectRoundTrip(KXContEncoder(), passRead);
  EXPECT_FALSE(passRead.IsBinned());

  KXBinningEncoder binning(KXBinningEncoder::EqualWidth, 3);
  binning.AddValue(0.1);
  binning.AddValue(0.7);
  binning.ComputeCutPoints();
  KXBinningEncoder binningRead;
  kxtesting::ExpectRoundTrip(binning, binningRead);
  EXPECT_EQ(binningRead.GetMethod(), KXBinningEncoder::EqualWidth);
  EXPECT_EQ(binningRead.GetCutPoints(), binning.GetCutPoints());

  KXRoundEncoder round(IKXVariable::WRoundAsIs), roundRead;
  kxtesting::ExpectRoundTrip(round, roundRead);
  EXPECT_EQ(roundRead.GetRoundingOption(), IKXVariable::WRoundAsIs);
}

TEST(KXContEncoderTest, RefusesCorruptObjectsAndStaysUnchanged) {
  const auto cont = [](const std::string& body) {
    return "<Obj name=\"KXContEncoder\">\n" + body + "</Obj>\n";
  };
  const std::string twoCuts = "<Int value=\"1\"/>\n<Int value=\"2\"/>\n";
  const struct {
    const char* what;
    const char* name;
    std::string text;
  } cases[] = {
      {"cuts not increasing", "KXContEncoder",
       cont(twoCuts + "<Double value=\"2\"/>\n<Double value=\"1\"/>\n<Int value=\"0\"/>\n")},
      {"cut no number", "KXContEncoder", cont(twoCuts + "<Double value=\"x\"/>\n")},
      {"cuts while passing through", "KXContEncoder",
       cont("<Int value=\"0\"/>\n<Int value=\"1\"/>\n<Double value=\"1\"/>\n<Int value=\"0\"/>\n")},
      {"binning method", "KXBinningEncoder",
       "<Obj name=\"KXBinningEncoder\">\n<Int value=\"7\"/>\n<Int value=\"3\"/>\n"},
      {"binning bins", "KXBinningEncoder",
       "<Obj name=\"KXBinningEncoder\">\n<Int value=\"0\"/>\n<Int value=\"0\"/>\n"},
      {"rounding option", "KXRoundEncoder",
       "<Obj name=\"KXRoundEncoder\">\n<Int value=\"3\"/>\n</Obj>\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    KXBinningEncoder binning(KXBinningEncoder::EqualWidth, 2);
    ASSERT_TRUE(binning.SetCutPoints({4}));
    KXContEncoder plain(binning.GetCutPoints());
    KXRoundEncoder round(IKXVariable::WRoundTruncate);
    const std::string name = c.name;
    const kxtesting::ReadOutcome outcome =
        name == "KXRoundEncoder"     ? kxtesting::ReadFromText(round, c.text)
        : name == "KXContEncoder" ? kxtesting::ReadFromText(plain, c.text)
                                  : kxtesting::ReadFromText(binning, c.text);
    EXPECT_EQ(outcome.result, -1);
    EXPECT_EQ(outcome.errText, "Failure reading " + name + "!\n");
    EXPECT_EQ(plain.GetCutPoints(), std::vector<double>{4});
    EXPECT_EQ(binning.GetCutPoints(), std::vector<double>{4});
    EXPECT_EQ(round.GetRoundingOption(), IKXVariable::WRoundTruncate);
  }
}

TEST(KXContEncoderTest, Displays) {
  KXBinningEncoder encoder(KXBinningEncoder::EqualWidth, 2);
  encoder.SetCutPoints({0.5});
  kxtesting::DisplayCapture capture;
  encoder.Display();
  KXRoundEncoder(IKXVariable::WRoundTruncate).Display();
  EXPECT_EQ(capture.Text(),
            "\nBinning encoder\nBinning method = equal width\nRequested number of bins = 2"
            "\nBinned = true\nNumber of categories = 2\nCut points (size = 1)\n  = 0.5"
            "\nUser-missing values (size = 0)\nRounding encoder"
            "\nRounding option = Truncate to smaller int");
}

}  // namespace
