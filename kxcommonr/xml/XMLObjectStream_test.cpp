// The object stream: XMLObj writes it, the two reader sets read it back.
#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/testing/XmlTestSupport.h"
#include "kxcommonr/xml/XMLDocType.h"
#include "kxcommonr/xml/XMLObj.h"
#include "kxcommonr/xml/XMLReader.h"
#include "kxcommonr/xml/XMLUReader.h"
#include "kxcommonr/xml/XMLWriter.h"

namespace {

using KXCommon::KXMV;
using namespace KXXML_NAMESPACE;

// A whole object-stream document around the objects `body` writes.
template <class Body>
std::string Document(Body body) {
  std::ostringstream out;
  std::unique_ptr<XMLDocType> docType(XMLDocType::Create(kXMLRootName, kXMLSystemId, 0));
  ExportFormat format;
  docType->ToStream(out, format, false);
  WriteHeader(out, "(c) 2026  kx");
  EndHeader(out);
  body(out);
  EndRoot(out);
  return out.str();
}

std::string CrLf(const std::string& text) {
  std::string converted;
  for (char c : text) {
    if (c == '\n') converted += '\r';
    converted += c;
  }
  return converted;
}

struct Sample {
  int integer = -7;
  unsigned int count = 4294967295u;
  bool flag = true;
  long big = 123456789012345L;
  double real = 0.1;
  double missing = KXMV::Missing();
  std::string label = "two words <x=y>";
  std::string empty;
};

void WriteSample(std::ostream& os, const Sample& s, int tabs) {
  XMLObj object("Sample", tabs);
  object.StartObj(os);
  object.WriteSubElement(os, s.integer);
  object.WriteSubElement(os, s.count);
  object.WriteSubElement(os, s.flag);
  object.WriteSubElement(os, s.big);
  object.WriteSubElement(os, s.real);
  object.WriteSubElement(os, s.missing);
  object.WriteSubElement(os, s.label);
  object.WriteSubElement(os, s.empty.c_str());  // a literal is a string, not a bool
  object.EndObj(os);
}

bool ReadSample(std::ifstream& in, Sample& s) {
  return ParseStartObj(in, "Sample") && ParseValue(in, s.integer) &&
         ParseValue(in, s.count) && ParseValue(in, s.flag) && ParseValue(in, s.big) &&
         ParseValue(in, s.real) && ParseValue(in, s.missing) && ParseValue(in, s.label) &&
         ParseValue(in, s.empty) && ParseEndObj(in);
}

TEST(XMLObjectStreamTest, WrittenTextIsExact) {
  Sample sample;
  const std::string text = Document([&](std::ostream& os) { WriteSample(os, sample, 1); });
  EXPECT_EQ(text,
            "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
            "<!DOCTYPE KXXMLRoot SYSTEM \"savexml.dtd\">\n"
            "<KXXMLRoot copyright=\"(c) 2026 &#32;kx\">\n"
            "\t<Obj name=\"Sample\">\n"
            "\t\t<Int value=\"-7\"/>\n"
            "\t\t<Int value=\"4294967295\"/>\n"
            "\t\t<Int value=\"1\"/>\n"
            "\t\t<Long value=\"123456789012345\"/>\n"
            "\t\t<Double value=\"0.1\"/>\n"
            "\t\t<Double value=\"Missing\"/>\n"
            "\t\t<String value=\"two words &lt;x=y&gt;\"/>\n"
            "\t\t<String value=\"\"/>\n"
            "\t</Obj>\n"
            "</KXXMLRoot>");
  if (!kxtesting::XmlLintAvailable()) GTEST_SKIP() << "xmllint not on PATH";
  bool ok = false;
  kxtesting::RunXmlLint("--noout", kxtesting::WriteTempFile("stream", text), ok);
  EXPECT_TRUE(ok);
}

TEST(XMLObjectStreamTest, EveryValueTypeRoundTripsWithLfAndCrLf) {
  Sample written;
  written.label = "blanks inside are kept";  // needs no escaping
  written.flag = false;
  written.integer = INT_MIN;
  written.big = -999999999999999L;
  written.real = -2.5e-300;
  const std::string text = Document([&](std::ostream& os) {
    WriteSample(os, written, 0);
    WriteSample(os, written, 3);
  });
  for (const std::string& bytes : {text, CrLf(text)}) {
    std::ifstream in(kxtesting::WriteTempFile("roundtrip", bytes), std::ios::binary);
    ASSERT_TRUE(ParseStartXML(in));
    for (int object = 0; object < 2; ++object) {
      Sample read;
      read.label = read.empty = "stale";
      read.missing = 0.0;
      ASSERT_TRUE(ReadSample(in, read));
      EXPECT_EQ(read.integer, written.integer);
      EXPECT_EQ(read.count, written.count);
      EXPECT_EQ(read.flag, written.flag);
      EXPECT_EQ(read.big, written.big);
      EXPECT_EQ(read.real, written.real);
      EXPECT_TRUE(KXMV::IsMissing(read.missing));
      EXPECT_EQ(read.label, written.label);
      EXPECT_EQ(read.empty, "");
    }
  }
}

TEST(XMLObjectStreamTest, DoublesComeBackAsTheirFifteenDigitText) {
  std::mt19937_64 rng(3);
  std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
  std::uniform_int_distribution<int> exponent(-300, 300);
  std::vector<double> values;
  for (int i = 0; i < 500; ++i) values.push_back(mantissa(rng) * std::pow(10.0, exponent(rng)));
  values.push_back(0.0);
  values.push_back(5e-324);  // the smallest subnormal
  const std::string text = Document([&](std::ostream& os) {
    XMLObj object("D", 0);
    for (double v : values) object.WriteSubElement(os, v);
  });
  std::ifstream in(kxtesting::WriteTempFile("doubles", text), std::ios::binary);
  ASSERT_TRUE(ParseStartXML(in));
  char digits[64];
  for (double v : values) {
    double read = 0.0;
    ASSERT_TRUE(ParseValue(in, read));
    std::snprintf(digits, sizeof digits, "%.15g", v);
    EXPECT_EQ(read, std::strtod(digits, nullptr)) << digits;
  }
}

// Reads `line` (a file of that one line plus a line feed) with `parse`.
template <class Parse>
bool ParseLine(const std::string& line, Parse parse) {
  std::ifstream in(kxtesting::WriteTempFile("line", line + "\n"), std::ios::binary);
  return parse(in);
}

TEST(XMLObjectStreamTest, ValueLinesFollowTheTokenRules) {
  double real = 3.0;
  EXPECT_TRUE(ParseLine("<Double value=\"Missing\"/>",
                        [&](std::ifstream& in) { return xmlu::ParseValue(in, real); }));
  EXPECT_EQ(real, 3.0);  // the older set does not know "Missing"
  EXPECT_TRUE(ParseLine("<Double value=\"abc\"/>",
                        [&](std::ifstream& in) { return ParseValue(in, real); }));
  EXPECT_EQ(real, 3.0);  // no number: unchanged, still true
  EXPECT_TRUE(ParseLine("\t<Double value=\"1.5E+300\"/>",
                        [&](std::ifstream& in) { return ParseValue(in, real); }));
  EXPECT_EQ(real, 1.5e300);

  bool flag = true;
  EXPECT_FALSE(ParseLine("<Int value=\"2\"/>", [&](std::ifstream& in) { return ParseValue(in, flag); }));
  EXPECT_TRUE(flag);
  EXPECT_TRUE(ParseLine("<Int value=\"0\"/>", [&](std::ifstream& in) { return ParseValue(in, flag); }));
  EXPECT_FALSE(flag);

  int integer = 5;
  EXPECT_FALSE(ParseLine("<Long value=\"1\"/>", [&](std::ifstream& in) { return ParseValue(in, integer); }));
  EXPECT_FALSE(ParseLine("<Int valu=\"1\"/>", [&](std::ifstream& in) { return ParseValue(in, integer); }));
  EXPECT_FALSE(ParseLine("<Int  value=\"1\"/>", [&](std::ifstream& in) { return ParseValue(in, integer); }));
  EXPECT_FALSE(ParseLine("<Int value=", [&](std::ifstream& in) { return ParseValue(in, integer); }));
  EXPECT_EQ(integer, 5);
  EXPECT_TRUE(ParseLine("<Int value=\"99999999999\"/>", [&](std::ifstream& in) { return ParseValue(in, integer); }));
  EXPECT_EQ(integer, INT_MAX);
  EXPECT_TRUE(ParseLine("<Int value=\"12abc\"/>", [&](std::ifstream& in) { return ParseValue(in, integer); }));
  EXPECT_EQ(integer, 12);

  unsigned int count = 9;
  EXPECT_TRUE(ParseLine("<Int value=\"4.29e+09\"/>", [&](std::ifstream& in) { return ParseValue(in, count); }));
  EXPECT_EQ(count, 4290000000u);
  EXPECT_FALSE(ParseLine("<Int value=\"-1\"/>", [&](std::ifstream& in) { return ParseValue(in, count); }));
  EXPECT_FALSE(ParseLine("<Int value=\"1e400\"/>", [&](std::ifstream& in) { return ParseValue(in, count); }));
  EXPECT_EQ(count, 4290000000u);

  std::string text = "stale";
  EXPECT_TRUE(ParseLine("<String value=\"\"/>", [&](std::ifstream& in) { return ParseValue(in, text); }));
  EXPECT_EQ(text, "");
  EXPECT_TRUE(ParseLine("<String value=\" a b \"/>", [&](std::ifstream& in) { return ParseValue(in, text); }));
  EXPECT_EQ(text, " a b ");
  EXPECT_TRUE(ParseLine("<String value=\"&#32;x&amp;\"/>", [&](std::ifstream& in) { return ParseValue(in, text); }));
  EXPECT_EQ(text, "&#32;x&amp;");  // entities are not decoded
  EXPECT_TRUE(ParseLine("<String value=", [&](std::ifstream& in) { return ParseValue(in, text); }));
  EXPECT_EQ(text, "");
}

TEST(XMLObjectStreamTest, ObjectLinesPrologueAndBlankLines) {
  auto startObj = [](const std::string& file, const std::string& name) {
    std::ifstream in(kxtesting::WriteTempFile("obj", file), std::ios::binary);
    return ParseStartObj(in, name);
  };
  EXPECT_TRUE(startObj("<Obj name=\"A\">\n", "A"));
  EXPECT_FALSE(startObj("<Obj name=\"A\">\n", "a"));
  EXPECT_TRUE(startObj("\n<Obj name=\"A\">\n", "A"));
  EXPECT_TRUE(startObj("\r\n<Obj name=\"A\">\r\n", "A"));
  EXPECT_FALSE(startObj("\n\n<Obj name=\"A\">\n", "A"));
  EXPECT_TRUE(startObj("<Obj name=\"a b<c=d\">\n", "a b<c=d"));
  EXPECT_FALSE(startObj("<Object name=\"A\">\n", "A"));
  {
    std::ifstream in(kxtesting::WriteTempFile("obj", "<Obj name=\"a b\">\n"), std::ios::binary);
    EXPECT_FALSE(xmlu::ParseStartObj(in, "a b"));
  }

  const std::string otherRoot =
      "<?xml version=\"1.0\"?>\n<!DOCTYPE X SYSTEM \"x.dtd\">\n<OtherRoot>\n";
  std::ifstream current(kxtesting::WriteTempFile("prologue", otherRoot), std::ios::binary);
  EXPECT_FALSE(ParseStartXML(current));
  std::ifstream older(kxtesting::WriteTempFile("prologue", otherRoot), std::ios::binary);
  EXPECT_TRUE(xmlu::ParseStartXML(older));
  std::ifstream crlf(kxtesting::WriteTempFile("prologue", CrLf(otherRoot)), std::ios::binary);
  EXPECT_TRUE(xmlu::ParseStartXML(crlf));  // the first token of each line is enough
}

TEST(XMLObjectStreamTest, OlderSetReadsLfFilesOnly) {
  // A blank line before the object: with CR LF line ends it holds a lone
  // carriage return, which only the current set takes for an empty line.
  const std::string text = Document([](std::ostream& os) {
    os << '\n';
    XMLObj object("Gen", 0);
    object.StartObj(os);
    object.WriteSubElement(os, 5489.0);
    object.WriteSubElement(os, 1);
    object.WriteSubElement(os, 77L);
    object.EndObj(os);
  });
  for (bool crlf : {false, true}) {
    const std::string path = kxtesting::WriteTempFile("older", crlf ? CrLf(text) : text);
    double seed = 0.0;
    int portable = 0;
    long big = 0;
    std::ifstream older(path, std::ios::binary);
    const bool olderRead = xmlu::ParseStartXML(older) && xmlu::ParseStartObj(older, "Gen") &&
                           xmlu::ParseValue(older, seed) && xmlu::ParseValue(older, portable) &&
                           xmlu::ParseValue(older, big) && xmlu::ParseEndObj(older);
    EXPECT_EQ(olderRead, !crlf);
    if (!crlf) {
      EXPECT_EQ(seed, 5489.0);
      EXPECT_EQ(portable, 1);
      EXPECT_EQ(big, 77L);
    }
    std::ifstream current(path, std::ios::binary);
    seed = 0.0;
    EXPECT_TRUE(ParseStartXML(current) && ParseStartObj(current, "Gen") &&
                ParseValue(current, seed) && ParseValue(current, portable) &&
                ParseValue(current, big) && ParseEndObj(current));
    EXPECT_EQ(seed, 5489.0);
  }
}

TEST(XMLObjectStreamTest, LinesBeyond255CharactersFail) {
  // <String value="..."/> is 18 characters around the text.
  for (int length : {255, 256, 1000}) {
    const std::string line = "<String value=\"" + std::string(length - 18, 'x') + "\"/>";
    ASSERT_EQ(static_cast<int>(line.size()), length);
    std::ifstream in(kxtesting::WriteTempFile("long", line + "\n<Int value=\"1\"/>\n"),
                     std::ios::binary);
    std::string value = "stale";
    EXPECT_EQ(ParseValue(in, value), length <= 255) << length;
    EXPECT_EQ(value, length <= 255 ? std::string(length - 18, 'x') : "stale");
    int next = 0;
    EXPECT_EQ(ParseValue(in, next), length <= 255);  // a failed line stops the stream
  }
}

TEST(XMLObjectStreamTest, TruncatedAndCorruptedStreamsFailCleanly) {
  Sample written;
  written.label = "plain";
  const std::string text = Document([&](std::ostream& os) { WriteSample(os, written, 1); });
  // Every proper prefix that cuts into the object fails somewhere.
  const std::size_t endOfObject = text.rfind("</Obj>");
  for (std::size_t cut = 0; cut < endOfObject + 3; cut += 3) {
    std::ifstream in(kxtesting::WriteTempFile("cut", text.substr(0, cut)), std::ios::binary);
    Sample read;
    EXPECT_FALSE(ParseStartXML(in) && ReadSample(in, read)) << cut;
  }
  // Random byte damage must never crash or read out of bounds (checked
  // under the sanitizers); results are whatever the damaged lines say.
  std::mt19937 rng(11);
  std::uniform_int_distribution<std::size_t> position(0, text.size() - 1);
  std::uniform_int_distribution<int> byte(0, 255);
  int failures = 0;
  for (int trial = 0; trial < 300; ++trial) {
    std::string damaged = text;
    for (int i = 0; i < 3; ++i) damaged[position(rng)] = static_cast<char>(byte(rng));
    std::ifstream in(kxtesting::WriteTempFile("damaged", damaged), std::ios::binary);
    Sample read;
    if (!(ParseStartXML(in) && ReadSample(in, read))) ++failures;
  }
  EXPECT_GT(failures, 0);
}

}  // namespace
