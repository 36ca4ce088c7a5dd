#include "kxcommonr/xml/internal/XMLLineReader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace KXXML_NAMESPACE::detail;

enum Reader { kPrologue, kStartObj, kEndObj, kInt, kUnsigned, kLong, kDouble, kString, kBool };

struct LineCase {
  Reader reader;
  bool older;        // the older dialect instead of the current one
  std::string text;  // the stream
  bool ok;
  std::string value;  // the value afterwards (the object name for kStartObj)
};

// Runs one reader on `text`; the value starts as 5 (numbers), "stale" or true
// and is returned as text, so that "unchanged" is visible.
std::string Read(const LineCase& c, bool& ok) {
  std::istringstream in(c.text);
  const ReaderDialect& dialect = c.older ? OlderDialect() : CurrentDialect();
  const auto parse = [&](auto value) {
    ok = ParseValue(in, value, dialect);
    return value;
  };
  char digits[32];
  switch (c.reader) {
    case kPrologue: ok = ParseStartXML(in, dialect); return c.value;
    case kStartObj: ok = ParseStartObj(in, c.value, dialect); return c.value;
    case kEndObj: ok = ParseEndObj(in, dialect); return c.value;
    case kInt: return std::to_string(parse(5));
    case kUnsigned: return std::to_string(parse(5u));
    case kLong: return std::to_string(parse(5L));
    case kDouble: std::snprintf(digits, sizeof digits, "%.17g", parse(5.0)); return digits;
    case kString: return parse(std::string("stale"));
    case kBool: return parse(true) ? "true" : "false";
  }
  return "";
}

TEST(XMLLineReaderTest, LinesFollowTheTokenRulesOfEachDialect) {
  const std::string prologue = "<?xml version=\"1.0\"?>\n<!DOCTYPE X SYSTEM \"x.dtd\">\n";
  const std::string value255 = std::string(255 - 18, 'x');  // 18: <String value=""/>
  const std::vector<LineCase> table = {
      {kPrologue, false, prologue + "<KXXMLRoot copyright=\"\">\n", true, ""},
      {kPrologue, false, prologue + "<OtherRoot>\n", false, ""},
      {kPrologue, true, prologue + "<OtherRoot>\n", true, ""},  // any third token
      {kPrologue, true, "<?xml version\r\n<!DOCTYPE X\r\n<OtherRoot>\r\n", true, ""},
      {kPrologue, true, "<?xml\r\n<!DOCTYPE X\r\n<OtherRoot>\r\n", false, ""},  // "?xml\r"
      {kPrologue, false, "<?xml\n<!DOCTYPE\n", false, ""},
      {kPrologue, true, "<?xml x\n<!DOCTYPE x\n\n", false, ""},  // no third token
      {kPrologue, false, "<?xml\n<DOCTYPE\n<KXXMLRoot>\n", false, ""},
      {kStartObj, false, "<Obj name=\"A\">\n", true, "A"},
      {kStartObj, false, "<Obj name=\"A\">\n", false, "a"},  // case-sensitive
      {kStartObj, false, "\n<Obj name=\"A\">\n", true, "A"},
      {kStartObj, false, "\r\n<Obj name=\"A\">\r\n", true, "A"},
      {kStartObj, true, "\r\n<Obj name=\"A\">\r\n", false, "A"},  // CR is no empty line
      {kStartObj, false, "\n\n<Obj name=\"A\">\n", false, "A"},
      {kStartObj, false, "<Obj name=\"a b<c=d\">\n", true, "a b<c=d"},
      {kStartObj, true, "<Obj name=\"a b\">\n", false, "a b"},
      {kStartObj, false, "<Object name=\"A\">\n", false, "A"},
      {kStartObj, false, "<Obj name=", false, ""},
      {kStartObj, false, "", false, "A"},
      {kStartObj, false, "\n", false, "A"},
      {kEndObj, false, "", false, ""},
      {kEndObj, false, "\t</Obj>\r\n", true, ""},
      {kEndObj, true, "</Object>\n", false, ""},
      {kInt, false, "<Int value=\"-12\"/>", true, "-12"},
      {kInt, false, "<Int value=\"99999999999\"/>", true, "2147483647"},
      {kInt, false, "<Int value=\"-99999999999\"/>", true, "-2147483648"},
      {kInt, false, "<Int value=\"12abc\"/>", true, "12"},
      {kInt, false, "<Long value=\"1\"/>", false, "5"},
      {kInt, false, "<Int valu=\"1\"/>", false, "5"},
      {kInt, false, "<Int  value=\"1\"/>", false, "5"},  // the blank joins the name
      {kInt, false, "<Int value=", false, "5"},
      {kUnsigned, false, "<Int value=\"4.29e+09\"/>", true, "4290000000"},
      {kUnsigned, true, "<Int value=\"4294967295\"/>", true, "4294967295"},
      {kUnsigned, false, "<Int value=\"-1\"/>", false, "5"},
      {kUnsigned, false, "<Int value=\"1e400\"/>", false, "5"},
      {kLong, false, "<Long value=\"-999999999999999\"/>", true, "-999999999999999"},
      {kLong, false, "<Long value=\"1e+18\"/>", true, "1"},  // as atol reads it
      {kLong, false, "<Int value=\"1\"/>", false, "5"},
      {kDouble, false, "\t<Double value=\"1.5E+300\"/>", true, "1.5000000000000001e+300"},
      {kDouble, false, "<Double value=\"2.5e-005\"/>", true, "2.5000000000000001e-05"},
      {kDouble, false, "<Double value=\"Missing\"/>", true, "-1.7976931348623157e+308"},
      {kDouble, true, "<Double value=\"Missing\"/>", true, "5"},
      {kDouble, false, "<Double value=\"abc\"/>", true, "5"},  // no number: unchanged
      {kDouble, false, "<Double value=\"1e999\"/>", true, "5"},
      {kDouble, false, "<Double value=", false, "5"},
      {kString, false, "<String value=\"\"/>", true, ""},
      {kString, false, "<String value=\" a b \"/>", true, " a b "},
      {kString, false, "<String value=\"&#32;x&amp;\"/>", true, "&#32;x&amp;"},  // not decoded
      {kString, false, "<String value=", true, ""},
      {kString, false, "<String value=\"" + value255 + "\"/>", true, value255},
      {kString, false, "<String value=\"x" + value255 + "\"/>", false, "stale"},
      {kBool, false, "<Int value=\"0\"/>", true, "false"},
      {kBool, false, "<Int value=\"1\"/>", true, "true"},
      {kBool, false, "<Int value=\"2\"/>", false, "true"},
      {kBool, false, "<Int value=", false, "true"}};
  for (const LineCase& row : table) {
    bool ok = !row.ok;
    EXPECT_EQ(Read(row, ok), row.value) << row.text;
    EXPECT_EQ(ok, row.ok) << row.text;
  }
}

TEST(XMLLineReaderTest, ALineBeyond255CharactersStopsTheStream) {
  std::istringstream in("<String value=\"" + std::string(300, 'x') + "\"/>\n<Int value=\"1\"/>\n");
  std::string text;
  int next = 0;
  EXPECT_FALSE(ParseValue(in, text, CurrentDialect()));
  EXPECT_FALSE(ParseValue(in, next, CurrentDialect()));
  EXPECT_EQ(next, 0);
}

}  // namespace
