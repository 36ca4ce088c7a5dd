#include "kxcommonr/common/display/KXComponentDisplay.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <ctime>
#include <functional>
#include <iostream>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"
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

// Texts built independently of the display code, for the long batches.
std::string Joined(int first, int last, const std::function<std::string(int)>& item) {
  std::string text;
  for (int k = first; k <= last; ++k) text += item(k);
  return text;
}
std::string Pair(int k) { return " (" + std::to_string(k) + "," + std::to_string(-k) + ")"; }

std::map<int, int> ElevenPairs() {
  std::map<int, int> m;
  for (int k = 0; k < 11; ++k) m[k] = -k;
  return m;
}

// Every distinct output format, with the exact text it prints.
TEST(KXComponentDisplayTest, EachFormatPrintsItsExactText) {
  const double values[3] = {1.5, kMiss, -2};
  std::vector<double> eleven(11, 2.5);
  eleven[10] = kMiss;
  std::vector<int> ints(26);
  for (int i = 0; i < 26; ++i) ints[static_cast<std::size_t>(i)] = i - 1;
  std::vector<bool> bools(36, false);
  bools[0] = bools[35] = true;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  char nanText[32];
  std::snprintf(nanText, sizeof nanText, "%g", nan);
  struct Case {
    const char* what;
    std::function<void()> print;
    std::string expected;
  };
  const Case cases[] = {
      {"text: breaks first, none after; null prints nothing",
       [] { DisplayText(0, "x"); DisplayText(2, std::string("yz"));
            DisplayText(3, static_cast<const char*>(nullptr)); },
       "x\n\nyz"},
      {"scalars",
       [] { DisplayB("flag", true); DisplayB("flag", false); DisplayI("count", -3);
            DisplayD("x", 0.1); DisplayD("x", kMiss); DisplayDF("x", 0.1);
            DisplayDF("x", kMiss); DisplayS("label", "abc"); },
       "\nflag = true\nflag = false\ncount = -3\nx = 0.1\nx = miss"
       "\nx = 0.10000000000000001\nx = miss\nlabel = abc"},
      {"infinity, NaN (as the C library prints it) and the neighbour of missing are numbers",
       [&] { DisplayD("v", -std::numeric_limits<double>::infinity()); DisplayD("v", nan);
            DisplayD("v", std::nextafter(kMiss, 0.0)); },
       "\nv = -inf\nv = " + std::string(nanText) + "\nv = -1.79769e+308"},
      {"double vector, ten per line",
       [&] { DisplayDV("w", std::vector<double>(10, 1.0), false); DisplayDV("w", eleven, false);
             DisplayDV("w", {}, false); },
       "\nw (size = 10)\n  1 1 1 1 1 1 1 1 1 1"
       "\nw (size = 11)\n  2.5 2.5 2.5 2.5 2.5 2.5 2.5 2.5 2.5 2.5\n  miss\nw (size = 0)"},
      {"double vector, one per line with its two spacings",
       [] { DisplayDV("weights", {0.1, kMiss}, true); },
       "\nweights (size = 2)\n  = 0.10000000000000001\n miss"},
      {"double array with and without size, null and negative length",
       [&] { DisplayDA("a", values, 3, true); DisplayDA("a", values, 2, false);
             DisplayDA("a", nullptr, 3, true); DisplayDA("a", values, -1, true); },
       "\na (size = 3)\n  1.5 miss -2\na\n  1.5 miss\na (size = 3)\na (size = -1)"},
      {"integers, 25 per line",
       [&] { DisplayIV("iv", ints); DisplayIV("iv", {}); },
       "\niv (size = 26)\n " + Joined(-1, 23, [](int k) { return " " + std::to_string(k); }) +
           "\n  24\niv (size = 0)"},
      {"unsigned", [] { DisplayUV("uv", {4000000000u, 7u}); }, "\nuv (size = 2)\n  4000000000 7"},
      {"bools, 35 per line",
       [&] { DisplayBV("bv", bools); },
       "\nbv (size = 36)\n  t" + Joined(1, 34, [](int) { return std::string(" f"); }) + "\n  t"},
      {"strings quoted",
       [] { DisplaySV("s", {"a b", ""}); DisplaySVV("names", {}); DisplaySVV("names", {{"x"}, {}}); },
       "\ns (size = 2)\n  \"a b\" \"\"\nnames <none>\nnames\nvec[0] (size = 1)\n  \"x\""
       "\nvec[1] (size = 0)"},
      {"nested double vectors",
       [] { DisplayDVV("m", {}, false); DisplayDVV("m", {{1, 2}, {3}}, false);
            DisplayDVV("m", {{0.5}}, true); },
       "\nm <none>\nm\nvec[0] (size = 2)\n  1 2\nvec[1] (size = 1)\n  3"
       "\nm\nvec[0] (size = 1)\n  = 0.5"},
      {"bool matrix concatenates marks",
       [] { DisplayBVV("mask", {{true, false, true}, {}}, ".", "X"); DisplayBVV("mask", {}, ".", "X"); },
       "\nmask ( number of rows = 2, number of columns = 3 )\nX.X\n"
       "\nmask ( number of rows = 0 )"},
      {"string-list map",
       [] { DisplaySLDM("sl", {}); DisplaySLDM("sl", {{{"a"}, 2.0}}); },
       "\nsl <none>\nsl\nMap's StringList: (size = 1)\n  \"a\"\nMap's double = 2"},
      {"vector maps",
       [] { DisplayIntVecDVecMap("idv", {{{2}, {0.5}}, {{1, 1}, {}}});
            DisplayIntVecIntMap("ivi", {{{7}, 9}}); DisplayIntVecIntMap("ivi", {}); },
       "\nidv\nMap key (size = 2)\n  1 1\nMap value (size = 0)"
       "\nMap key (size = 1)\n  2\nMap value (size = 1)\n  0.5"
       "\nivi\nMap key (size = 1)\n  7\nMap value = 9\nivi"},
      {"empty int maps differ", [] { DisplayIIM("pairs", {}); DisplayVIM("pairs", {}); },
       "\nmap size = 0\npairs <none>"},
      {"int map, ten pairs per line", [] { DisplayIIM("pairs", ElevenPairs()); },
       "\nmap size = 11\npairs" + Joined(0, 9, Pair) + "\n  (10,-10)"},
      {"int map, one line", [] { DisplayVIM("pairs", ElevenPairs()); },
       "\npairs" + Joined(0, 10, Pair)},
      {"labelled rows: the prefix, the number, a colon, then the values",
       [&] { DisplayRowDA("row ", 12, values, 3); DisplayRowDA("r", -1, values, 0);
             DisplayRowDA("", 0, nullptr, 2); },
       "\nrow 12: \n  1.5 miss -2\nr-1: \n0: "},
      {"packed triangle stops inside a short row",
       [] { DisplayDVTR("tri", {1, 2, 3, 4}, 3); DisplayDVTR("tri", {1, 2, 3}, 2); },
       "\ntri (number of elements = 4, number of rows = 3)"
       "\nrow  0: \n  1\nrow  1: \n  2 3\nrow  2: \n  4"
       "\ntri (number of elements = 3, number of rows = 2)\nrow  0: \n  1\nrow  1: \n  2 3"},
      // Each value text brings its own leading space, plus a separator.
      {"pair vectors",
       [] { DisplayVPD("pd", {{1.5, kMiss}}); DisplayVPDI("pdi", {{kMiss, 4}, {0.25, -1}});
            DisplayVPII("pii", {{1, 2}, {3, 4}}); },
       "\npd (size = 1)\n  1.5  miss\npdi (size = 2)\n  miss 4"
       "\n  0.25 -1\npii (size = 2)\n (1,2) (3,4) "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    DisplayCapture capture;
    c.print();
    EXPECT_EQ(capture.Text(), c.expected);
  }
}

// The stamp is the local time as strftime writes it, read before or after.
TEST(KXComponentDisplayTest, TimeStampIsTheLocalTime) {
  const auto now = [] {
    const std::time_t time = std::time(nullptr);
    char text[32];
    std::strftime(text, sizeof text, "\nstart: %Y-%m-%d-%H-%M-%S", std::localtime(&time));
    return std::string(text);
  };
  const std::string before = now();
  DisplayCapture capture;
  DisplayTimeStamp("start");
  const std::string after = now();
  EXPECT_TRUE(capture.Text() == before || capture.Text() == after) << capture.Text();
}

}  // namespace
