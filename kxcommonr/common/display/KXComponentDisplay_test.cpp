#include "kxcommonr/common/display/KXComponentDisplay.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <iostream>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "kxcommonr/common/KXMV.h"
#include "kxcommonr/testing/DisplayCapture.h"

namespace {

using namespace KXComponentDisplay;
using kxtesting::DisplayCapture;

const double kMiss = KXCommon::KXMV::Missing();

TEST(KXComponentDisplayTest, StreamStartsAsStandardOutputAndCanBeReplaced) {
  EXPECT_EQ(GetOutStream(), &std::cout);
  std::ostringstream other;
  SetOutStream(other);
  EXPECT_EQ(GetOutStream(), &other);
  DisplayI("n", 1);
  SetOutStream(std::cout);
  EXPECT_EQ(other.str(), "\nn = 1");
}

TEST(KXComponentDisplayTest, TextPrintsBreaksThenTextWithoutTrailingBreak) {
  DisplayCapture capture;
  DisplayText(0, "x");
  EXPECT_EQ(capture.Text(), "x");
  DisplayText(2, std::string("yz"));
  EXPECT_EQ(capture.Text(), "x\n\nyz");
  DisplayText(3, static_cast<const char*>(nullptr));
  EXPECT_EQ(capture.Text(), "x\n\nyz");
}

TEST(KXComponentDisplayTest, ScalarLines) {
  DisplayCapture capture;
  DisplayB("flag", true);
  DisplayB("flag", false);
  DisplayI("count", -3);
  DisplayD("x", 0.1);
  DisplayD("x", kMiss);
  DisplayDF("x", 0.1);
  DisplayDF("x", kMiss);
  DisplayS("label", "abc");
  EXPECT_EQ(capture.Text(),
            "\nflag = true\nflag = false\ncount = -3\nx = 0.1\nx = miss"
            "\nx = 0.10000000000000001\nx = miss\nlabel = abc");
}

TEST(KXComponentDisplayTest, NaNAndNeighboursOfMissingPrintAsNumbers) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  char expected[64];
  std::snprintf(expected, sizeof expected, "\nv = %g", nan);
  DisplayCapture capture;
  DisplayD("v", nan);
  EXPECT_EQ(capture.Text(), expected);
  capture.Reset();
  DisplayD("v", -std::numeric_limits<double>::infinity());
  DisplayD("v", std::nextafter(kMiss, 0.0));
  EXPECT_EQ(capture.Text(), "\nv = -inf\nv = -1.79769e+308");
}

TEST(KXComponentDisplayTest, DoubleVectorBatchesTenPerLine) {
  DisplayCapture capture;
  DisplayDV("w", std::vector<double>(10, 1.0), false);
  EXPECT_EQ(capture.Text(), "\nw (size = 10)\n  1 1 1 1 1 1 1 1 1 1");
  capture.Reset();
  std::vector<double> eleven(11, 2.5);
  eleven[10] = kMiss;
  DisplayDV("w", eleven, false);
  EXPECT_EQ(capture.Text(),
            "\nw (size = 11)\n  2.5 2.5 2.5 2.5 2.5 2.5 2.5 2.5 2.5 2.5"
            "\n  miss");
  capture.Reset();
  DisplayDV("w", {}, false);
  EXPECT_EQ(capture.Text(), "\nw (size = 0)");
}

TEST(KXComponentDisplayTest, DoubleVectorOnePerLineKeepsItsTwoSpacings) {
  DisplayCapture capture;
  DisplayDV("weights", {0.1, kMiss}, true);
  EXPECT_EQ(capture.Text(),
            "\nweights (size = 2)\n  = 0.10000000000000001\n miss");
}

TEST(KXComponentDisplayTest, DoubleArrayHeaderWithAndWithoutSize) {
  const double values[3] = {1.5, kMiss, -2};
  DisplayCapture capture;
  DisplayDA("a", values, 3, true);
  DisplayDA("a", values, 2, false);
  EXPECT_EQ(capture.Text(), "\na (size = 3)\n  1.5 miss -2\na\n  1.5 miss");
  capture.Reset();
  DisplayDA("a", nullptr, 3, true);
  DisplayDA("a", values, -1, true);
  EXPECT_EQ(capture.Text(), "\na (size = 3)\na (size = -1)");
}

TEST(KXComponentDisplayTest, IntegerUnsignedAndBoolBatchSizes) {
  DisplayCapture capture;
  std::vector<int> ints(26);
  for (int i = 0; i < 26; ++i) ints[static_cast<std::size_t>(i)] = i - 1;
  DisplayIV("iv", ints);
  std::string expected = "\niv (size = 26)\n ";
  for (int i = 0; i < 25; ++i) expected += " " + std::to_string(i - 1);
  expected += "\n  24";
  EXPECT_EQ(capture.Text(), expected);

  capture.Reset();
  DisplayIV("iv", {});
  DisplayUV("uv", {4000000000u, 7u});
  EXPECT_EQ(capture.Text(), "\niv (size = 0)\nuv (size = 2)\n  4000000000 7");

  capture.Reset();
  std::vector<bool> bools(36, false);
  bools[0] = true;
  bools[35] = true;
  DisplayBV("bv", bools);
  expected = "\nbv (size = 36)\n  t";
  for (int i = 1; i < 35; ++i) expected += " f";
  expected += "\n  t";
  EXPECT_EQ(capture.Text(), expected);
}

TEST(KXComponentDisplayTest, StringVectorsQuoteEachValue) {
  DisplayCapture capture;
  DisplaySV("s", {"a b", ""});
  EXPECT_EQ(capture.Text(), "\ns (size = 2)\n  \"a b\" \"\"");
  capture.Reset();
  DisplaySVV("names", {});
  DisplaySVV("names", {{"x"}, {}});
  EXPECT_EQ(capture.Text(),
            "\nnames <none>\nnames\nvec[0] (size = 1)\n  \"x\""
            "\nvec[1] (size = 0)");
}

TEST(KXComponentDisplayTest, NestedDoubleVectors) {
  DisplayCapture capture;
  DisplayDVV("m", {}, false);
  DisplayDVV("m", {{1, 2}, {3}}, false);
  DisplayDVV("m", {{0.5}}, true);
  EXPECT_EQ(capture.Text(),
            "\nm <none>\nm\nvec[0] (size = 2)\n  1 2\nvec[1] (size = 1)\n  3"
            "\nm\nvec[0] (size = 1)\n  = 0.5");
}

TEST(KXComponentDisplayTest, BoolMatrixConcatenatesMarks) {
  DisplayCapture capture;
  DisplayBVV("mask", {{true, false, true}, {}}, ".", "X");
  DisplayBVV("mask", {}, ".", "X");
  EXPECT_EQ(capture.Text(),
            "\nmask ( number of rows = 2, number of columns = 3 )\nX.X\n"
            "\nmask ( number of rows = 0 )");
}

TEST(KXComponentDisplayTest, MapsOfVectors) {
  DisplayCapture capture;
  DisplaySLDM("sl", {});
  DisplaySLDM("sl", {{{"a"}, 2.0}});
  EXPECT_EQ(capture.Text(),
            "\nsl <none>\nsl\nMap's StringList: (size = 1)\n  \"a\""
            "\nMap's double = 2");
  capture.Reset();
  DisplayIntVecDVecMap("idv", {{{2}, {0.5}}, {{1, 1}, {}}});
  EXPECT_EQ(capture.Text(),
            "\nidv\nMap key (size = 2)\n  1 1\nMap value (size = 0)"
            "\nMap key (size = 1)\n  2\nMap value (size = 1)\n  0.5");
  capture.Reset();
  DisplayIntVecIntMap("ivi", {{{7}, 9}});
  DisplayIntVecIntMap("ivi", {});
  EXPECT_EQ(capture.Text(),
            "\nivi\nMap key (size = 1)\n  7\nMap value = 9\nivi");
}

TEST(KXComponentDisplayTest, IntMapsShareTheNameLineAndDifferWhenEmpty) {
  DisplayCapture capture;
  DisplayIIM("pairs", {});
  DisplayVIM("pairs", {});
  EXPECT_EQ(capture.Text(), "\nmap size = 0\npairs <none>");

  capture.Reset();
  std::map<int, int> eleven;
  for (int k = 0; k < 11; ++k) eleven[k] = -k;
  DisplayIIM("pairs", eleven);
  std::string expected = "\nmap size = 11\npairs";
  for (int k = 0; k < 10; ++k) {
    expected += " (" + std::to_string(k) + "," + std::to_string(-k) + ")";
  }
  expected += "\n  (10,-10)";
  EXPECT_EQ(capture.Text(), expected);

  capture.Reset();
  DisplayVIM("pairs", eleven);
  expected = "\npairs";
  for (int k = 0; k < 11; ++k) {
    expected += " (" + std::to_string(k) + "," + std::to_string(-k) + ")";
  }
  EXPECT_EQ(capture.Text(), expected);
}

TEST(KXComponentDisplayTest, PackedTriangleStopsInsideAShortRow) {
  DisplayCapture capture;
  DisplayDVTR("tri", {1, 2, 3, 4}, 3);
  EXPECT_EQ(capture.Text(),
            "\ntri (number of elements = 4, number of rows = 3)"
            "\nrow  0: \n  1\nrow  1: \n  2 3\nrow  2: \n  4");
  capture.Reset();
  DisplayDVTR("tri", {1, 2, 3}, 2);
  EXPECT_EQ(capture.Text(),
            "\ntri (number of elements = 3, number of rows = 2)"
            "\nrow  0: \n  1\nrow  1: \n  2 3");
}

// Each value text brings its own leading space, and a separator space is
// added between the two: hence "  1.5  miss".
TEST(KXComponentDisplayTest, PairVectors) {
  DisplayCapture capture;
  DisplayVPD("pd", {{1.5, kMiss}});
  DisplayVPDI("pdi", {{kMiss, 4}, {0.25, -1}});
  DisplayVPII("pii", {{1, 2}, {3, 4}});
  EXPECT_EQ(capture.Text(),
            "\npd (size = 1)\n  1.5  miss\npdi (size = 2)\n  miss 4"
            "\n  0.25 -1\npii (size = 2)\n (1,2) (3,4) ");
}

TEST(KXComponentDisplayTest, TimeStampHasTheFixedShape) {
  DisplayCapture capture;
  DisplayTimeStamp("start");
  const std::string text = capture.Text();
  // "\nstart: YYYY-MM-DD-hh-mm-ss"
  ASSERT_EQ(text.size(), std::string("\nstart: ").size() + 19);
  EXPECT_EQ(text.substr(0, 8), "\nstart: ");
  const std::string stamp = text.substr(8);
  for (std::size_t i = 0; i < stamp.size(); ++i) {
    if (i == 4 || i == 7 || i == 10 || i == 13 || i == 16) {
      EXPECT_EQ(stamp[i], '-') << stamp;
    } else {
      EXPECT_TRUE(stamp[i] >= '0' && stamp[i] <= '9') << stamp;
    }
  }
}

}  // namespace
