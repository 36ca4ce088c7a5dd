// The public reader sets on files that XMLObj wrote: write, then read back.
#include "kxcommonr/xml/XMLReader.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/testing/XmlTestSupport.h"
#include "kxcommonr/xml/XMLObj.h"
#include "kxcommonr/xml/XMLUReader.h"
#include "kxcommonr/xml/XMLWriter.h"

namespace {

using namespace KXXML_NAMESPACE;

// A document of the objects `body` writes (a plain prologue: the readers look
// at its first tokens only), as a file, with LF or CR LF line ends.
template <class Body>
std::ifstream Document(Body body, bool crlf = false) {
  std::ostringstream out;
  out << "<?xml version=\"1.0\" ?>\n<!DOCTYPE KXXMLRoot SYSTEM \"x\">\n";
  WriteHeader(out, "kx");
  body(out);
  EndRoot(out);
  std::string bytes;
  for (char c : out.str()) bytes += crlf && c == '\n' ? std::string("\r\n") : std::string(1, c);
  return std::ifstream(kxtesting::WriteTempFile("stream", bytes), std::ios::binary);
}

struct Sample {
  int integer = INT_MIN;
  unsigned int count = 4294967295u;
  bool flag = false;
  long big = -999999999999999L;
  double real = -2.5e-300;
  double missing = KXCommon::KXMV::Missing();
  std::string label = "blanks inside are kept";  // needs no escaping
  std::string empty;
};
// What a reader must overwrite.
const Sample kStale{0, 0, true, 0, 0.0, 0.0, "stale", "stale"};

// One object holding a value line per value.
template <class... Values>
void WriteObject(std::ostream& os, const char* name, int tabs, const Values&... values) {
  const XMLObj object(name, tabs);
  object.StartObj(os);
  (object.WriteSubElement(os, values), ...);
  object.EndObj(os);
}

void WriteSample(std::ostream& os, const Sample& s, int tabs) {
  WriteObject(os, "Sample", tabs, s.integer, s.count, s.flag, s.big, s.real, s.missing, s.label,
              s.empty);
}

bool ReadSample(std::ifstream& in, Sample& s) {
  const auto read = [&](auto&... values) { return (ParseValue(in, values) && ...); };
  return ParseStartObj(in, "Sample") &&
         read(s.integer, s.count, s.flag, s.big, s.real, s.missing, s.label, s.empty) &&
         ParseEndObj(in);
}

// Two objects of every value type, then doubles over the whole exponent range
// (the smallest subnormal too), each read back as its "%.15g" text.
TEST(XMLReaderTest, EveryValueTypeRoundTripsWithLfAndCrLf) {
  const Sample written;
  std::mt19937_64 rng(3);
  std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
  std::vector<double> values = {0.0, 5e-324};
  for (int i = 0; i < 500; ++i) {
    values.push_back(mantissa(rng) * std::pow(10.0, static_cast<int>(rng() % 601) - 300));
  }
  char digits[64];
  for (bool crlf : {false, true}) {
    std::ifstream in = Document([&](std::ostream& os) {
      WriteSample(os, written, 0);
      WriteSample(os, written, 3);
      for (double v : values) XMLObj("D", 0).WriteSubElement(os, v);
    }, crlf);
    ASSERT_TRUE(ParseStartXML(in));
    for (int object = 0; object < 2; ++object) {
      Sample read = kStale;
      ASSERT_TRUE(ReadSample(in, read));
      EXPECT_TRUE(read.integer == written.integer && read.count == written.count &&
                  read.flag == written.flag && read.big == written.big &&
                  read.real == written.real && read.missing == written.missing &&
                  read.label == written.label && read.empty.empty());
    }
    for (double v : values) {
      double read = 0.0;
      ASSERT_TRUE(ParseValue(in, read));
      std::snprintf(digits, sizeof digits, "%.15g", v);
      EXPECT_EQ(read, std::strtod(digits, nullptr)) << digits;
    }
  }
}

// The older set reads the same numbers from LF files; with CR LF line ends the
// blank line before the object holds a lone carriage return, which only the
// current set takes for an empty line.
TEST(XMLReaderTest, OlderSetReadsLfFilesOnly) {
  const Sample written;
  for (bool crlf : {false, true}) {
    std::ifstream in = Document([&](std::ostream& os) {
      os << '\n';
      WriteObject(os, "Gen", 0, written.real, written.integer, written.count, written.big);
    }, crlf);
    Sample read = kStale;
    EXPECT_EQ(xmlu::ParseStartXML(in) && xmlu::ParseStartObj(in, "Gen") &&
                  xmlu::ParseValue(in, read.real) && xmlu::ParseValue(in, read.integer) &&
                  xmlu::ParseValue(in, read.count) && xmlu::ParseValue(in, read.big) &&
                  xmlu::ParseEndObj(in),
              !crlf);
    EXPECT_EQ(read.real == written.real && read.integer == written.integer &&
                  read.count == written.count && read.big == written.big,
              !crlf);
  }
}

// Every proper prefix that cuts into the object fails somewhere (random
// damage is the fuzzer's job: xml/fuzz).
TEST(XMLReaderTest, TruncatedStreamsFail) {
  std::ostringstream out;
  WriteSample(out, Sample(), 1);
  const std::string object = out.str();
  for (std::size_t cut = 0; cut + 4 < object.size(); cut += 3) {
    std::ifstream in = Document([&](std::ostream& os) { os << object.substr(0, cut); });
    Sample read;
    EXPECT_FALSE(ParseStartXML(in) && ReadSample(in, read)) << cut;
  }
}

}  // namespace
