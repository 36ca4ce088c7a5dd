#include "kxcommonr/mtd/KXCategoryEncoder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/mtd/KXCatNumEncoder.h"
#include "kxcommonr/mtd/KXStringEncoder.h"
#include "kxcommonr/testing/DisplayCapture.h"
#include "kxcommonr/testing/ObjectStreamTestUtil.h"

namespace {

using KXCommon::KXMV;
using KXMTD_NAMESPACE::KXCatNumEncoder;
using KXMTD_NAMESPACE::KXStringEncoder;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

TEST(KXCatNumEncoderTest, EncodesByTheGrowingRule) {
  KXCatNumEncoder encoder(3);
  ASSERT_TRUE(encoder.AddMissingValue(9));
  EXPECT_FALSE(encoder.AddMissingValue(kNaN));
  const struct {
    double raw;
    double code;
  } cases[] = {{5, 0},     {-0.0, 1},         {0, 1},     {5, 0},    {9, KXMV::Missing()},
               {kNaN, KXMV::Missing()},       {kInf, KXMV::Missing()}, {KXMV::Missing(), KXMV::Missing()},
               {2.5, 2},   {-1e300, 3}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.raw);
    EXPECT_EQ(encoder.Encode(c.raw), c.code);
  }
  EXPECT_EQ(encoder.Encode(std::string(" +2.5\t")), 2);
  EXPECT_EQ(encoder.Encode(std::string("2.5x")), KXMV::Missing());
  EXPECT_EQ(encoder.Encode(std::string("")), KXMV::Missing());
  EXPECT_EQ(encoder.GetNumberOfCategories(), 4);
  encoder.SetGrowing(false);
  EXPECT_EQ(encoder.Encode(7.0), KXMV::Missing());
  EXPECT_EQ(encoder.AddCategory(7.0, "seven"), 4);  // adding stays possible
  EXPECT_EQ(encoder.AddCategory(9.0), -1);
  double value = 0;
  EXPECT_TRUE(encoder.GetValue(1, value));
  EXPECT_FALSE(std::signbit(value));  // -0 stored as 0
  EXPECT_FALSE(encoder.GetValue(5, value));
  EXPECT_EQ(*encoder.GetLabel(4), "seven");
  EXPECT_EQ(encoder.GetLabel(-1), nullptr);
  EXPECT_FALSE(encoder.SetLabel(5, "x"));
}

TEST(KXStringEncoderTest, ComparesBytesAndEncodesNumbersByTheirShortestText) {
  KXStringEncoder encoder;
  EXPECT_EQ(encoder.Encode(std::string("a")), 0);
  EXPECT_EQ(encoder.Encode(std::string("a ")), 1);
  EXPECT_EQ(encoder.Encode(std::string("")), 2);
  EXPECT_EQ(encoder.Encode(std::string("0.1")), 3);
  EXPECT_EQ(encoder.Encode(0.1), 3);
  EXPECT_EQ(encoder.Encode(2.0), 4);
  EXPECT_EQ(encoder.GetCode("2"), 4);
  EXPECT_EQ(encoder.Encode(KXMV::Missing()), KXMV::Missing());
  EXPECT_EQ(encoder.Encode(kNaN), KXMV::Missing());
  encoder.AddMissingValue("NA");
  EXPECT_EQ(encoder.Encode(std::string("NA")), KXMV::Missing());
}

// Codes follow first appearance, and value and code look each other up.
template <class Encoder, class MakeValue>
void CheckAgainstFirstAppearance(MakeValue make) {
  std::mt19937 random(7);
  std::map<typename Encoder::value_type, int> reference;
  Encoder encoder;
  for (int i = 0; i < 20000; ++i) {
    const auto value = make(random() % 5000);
    reference.emplace(value, static_cast<int>(reference.size()));
    ASSERT_EQ(encoder.EncodeCode(value), reference.at(value));
  }
  typename Encoder::value_type back{};
  for (const auto& entry : reference) {
    ASSERT_TRUE(encoder.GetValue(entry.second, back));
    EXPECT_EQ(back, entry.first);
  }
  EXPECT_EQ(encoder.GetNumberOfCategories(), static_cast<int>(reference.size()));
}

TEST(KXCategoryEncoderTest, CodesFollowFirstAppearance) {
  CheckAgainstFirstAppearance<KXCatNumEncoder>([](unsigned k) { return k * 0.25 - 300; });
  CheckAgainstFirstAppearance<KXStringEncoder>([](unsigned k) { return "v" + std::to_string(k); });
}

// Two halves merged give the single pass's dictionary once sorted, and the
// returned codes translate the second half's codes.
template <class Encoder, class MakeValue>
void CheckMerge(MakeValue make) {
  std::mt19937 random(11);
  std::vector<typename Encoder::value_type> data;
  for (int i = 0; i < 3000; ++i) data.push_back(make(random() % 700));
  Encoder whole, first, second;
  for (Encoder* e : {&whole, &first, &second}) e->AddMissingValue(make(1));
  for (std::size_t i = 0; i < data.size(); ++i) {
    whole.EncodeCode(data[i]);
    (i < 1000 ? first : second).EncodeCode(data[i]);
  }
  Encoder merged = first;
  const std::vector<int> codes = merged.Merge(second);
  for (std::size_t i = 1000; i < data.size(); ++i) {
    const int code = second.GetCode(data[i]);
    if (code >= 0) {
      ASSERT_EQ(codes[static_cast<std::size_t>(code)], merged.GetCode(data[i]));
    }
  }
  const std::vector<int> renumbered = merged.SortCategories();
  whole.SortCategories();
  EXPECT_TRUE(merged == whole);
  EXPECT_EQ(renumbered.size(), static_cast<std::size_t>(merged.GetNumberOfCategories()));
  // Merging the other way round gives the same sorted encoder.
  Encoder reversed = second;
  reversed.Merge(first);
  reversed.SortCategories();
  EXPECT_TRUE(reversed == whole);
  // A category of the other side that is user-missing here is not taken in.
  Encoder missingHere, codedThere;
  missingHere.AddMissingValue(make(3));
  codedThere.EncodeCode(make(3));
  EXPECT_EQ(missingHere.Merge(codedThere), std::vector<int>{-1});
  EXPECT_EQ(missingHere.GetNumberOfCategories(), 0);
}

TEST(KXCategoryEncoderTest, MergedHalvesEqualOnePass) {
  CheckMerge<KXCatNumEncoder>([](unsigned k) { return std::ldexp(k, -3); });
  CheckMerge<KXStringEncoder>([](unsigned k) { return std::string(k % 3, ' ') + std::to_string(k); });
}

TEST(KXCategoryEncoderTest, RoundTripsEveryValueAndLabelExactly) {
  KXCatNumEncoder numeric;
  for (const double v : {0.1, 1.0 / 3, -1e-300, 1e300, 4.9e-324, 123456789012345678.0}) {
    numeric.AddCategory(v, "label of " + std::to_string(v));
  }
  numeric.AddMissingValue(-99);
  numeric.SetGrowing(false);
  KXCatNumEncoder numericRead;
  kxtesting::ExpectRoundTrip(numeric, numericRead);
  EXPECT_TRUE(numericRead == numeric);

  KXStringEncoder strings;
  const std::string awkward[] = {"",       " two  blanks ", "a&b<c>\"d\"'e'", "100% %41",
                                 "tab\tline\r\nend", "caf\xc3\xa9", std::string(500, 'x') + "%",
                                 std::string(1, '\0')};
  for (const std::string& s : awkward) strings.AddCategory(s, s + s);
  strings.AddMissingValue(" ");
  KXStringEncoder stringsRead(2);
  kxtesting::ExpectRoundTrip(strings, stringsRead);
  EXPECT_TRUE(stringsRead == strings);
  const std::unique_ptr<KXMTD_NAMESPACE::IKXEncoder> clone(strings.Clone());
  EXPECT_TRUE(*static_cast<KXStringEncoder*>(clone.get()) == strings);
}

TEST(KXCategoryEncoderTest, RefusesCorruptObjectsAndStaysUnchanged) {
  const std::string start = "<Obj name=\"KXCatNumEncoder\">\n<Int value=\"1\"/>\n";
  const std::string tail = "<Int value=\"0\"/>\n<Int value=\"1\"/>\n"
                           "<Double value=\"5\"/>\n<String value=\"\"/>\n</Obj>\n";
  const struct {
    const char* what;
    std::string text;
  } cases[] = {
      {"wrong name", "<Obj name=\"KXStringEncoder\">\n" + tail},
      {"negative count", start + "<Int value=\"-1\"/>\n"},
      {"duplicate value", start + "<Int value=\"0\"/>\n<Int value=\"2\"/>\n<Double value=\"5\"/>\n"
                              "<String value=\"\"/>\n<Double value=\"5\"/>\n<String value=\"\"/>\n</Obj>\n"},
      {"value no number", start + "<Int value=\"0\"/>\n<Int value=\"1\"/>\n<Double value=\"five\"/>\n"},
      {"missing as a category", start + "<Int value=\"0\"/>\n<Int value=\"1\"/>\n<Double value=\"Missing\"/>\n"},
      {"bad escape", start + "<Int value=\"0\"/>\n<Int value=\"1\"/>\n<Double value=\"5\"/>\n"
                         "<String value=\"%G1\"/>\n</Obj>\n"},
      {"truncated", start + "<Int value=\"0\"/>\n<Int value=\"3\"/>\n<Double value=\"5\"/>\n"},
      {"over-long line", start + "<Int value=\"0\"/>\n<Int value=\"1\"/>\n<Double value=\"5\"/>\n"
                             "<String value=\"" + std::string(300, 'a') + "\"/>\n</Obj>\n"},
      {"no end", start + tail.substr(0, tail.size() - 7)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    KXCatNumEncoder encoder;
    encoder.AddCategory(42);
    const kxtesting::ReadOutcome outcome = kxtesting::ReadFromText(encoder, c.text);
    EXPECT_EQ(outcome.result, -1);
    EXPECT_EQ(outcome.errText, "Failure reading KXCatNumEncoder!\n");
    EXPECT_EQ(encoder.GetNumberOfCategories(), 1);
    EXPECT_EQ(encoder.GetCode(42), 0);
  }
  KXCatNumEncoder encoder;
  EXPECT_EQ(kxtesting::ReadFromText(encoder, start + tail).result, 7);
}

TEST(KXCategoryEncoderTest, Displays) {
  KXStringEncoder encoder;
  encoder.AddCategory("m", "male");
  encoder.AddMissingValue("?");
  KXCatNumEncoder numeric;
  numeric.AddCategory(1.5, "one and a half");
  kxtesting::DisplayCapture capture;
  numeric.Display();
  EXPECT_EQ(capture.Text(),
            "\nNumeric category encoder\nNumber of categories = 1\nGrowing dictionary = true"
            "\nUser-missing values (size = 0)\nCategory values (size = 1)\n  1.5"
            "\nCategory labels (size = 1)\n  \"one and a half\"");
  capture.Reset();
  encoder.Display();
  EXPECT_EQ(capture.Text(),
            "\nString category encoder\nNumber of categories = 1\nGrowing dictionary = true"
            "\nUser-missing values (size = 1)\n  \"?\"\nCategory values (size = 1)\n  \"m\""
            "\nCategory labels (size = 1)\n  \"male\"");
}

}  // namespace
