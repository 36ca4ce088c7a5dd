#include "kxcommonr/xml/XMLWriter.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <locale>
#include <memory>
#include <random>
#include <sstream>
#include <string>

#include "kxcommonr/testing/XmlTestSupport.h"
#include "kxcommonr/xml/XMLDocType.h"
#include "kxcommonr/xml/XMLElement.h"
#include "kxcommonr/xml/XMLString.h"

namespace {

using namespace KXXML_NAMESPACE;

const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n";

std::string WriteToString(const XMLDocType* docType, const XMLElement* root, bool format,
                          bool utf8, int expectedStatus = 0) {
  std::ostringstream out;
  const int status = utf8 ? WriteTreeUTF8(out, docType, root, format)
                          : WriteTree(out, docType, root, format);
  EXPECT_EQ(status, expectedStatus);
  return out.str();
}

// A document is the prologue (the document type's text, or the declaration
// alone) and the root as ToString lays it out; xmllint must accept it. The
// two-byte characters make the streamed blocks end next to them: a character
// cut in two would come out as U+FFFD.
TEST(XMLWriteTreeTest, DocumentsArePrologueAndTreeAndWellFormed) {
  kxtesting::LocaleScope utf8(LC_CTYPE, "C.UTF-8");
  if (!utf8.active()) GTEST_SKIP() << "C.UTF-8 not available";
  std::unique_ptr<XMLElement> root(XMLElement::Create("R"));
  for (int i = 0; i < 3000; ++i) {
    XMLElement* row = XMLElement::Create("\xC3\xA9");
    row->AddAttribute("v", std::string(static_cast<std::size_t>(i % 7), 'x') + "\xC3\xA9 &<");
    row->AddText(XMLString::Create("\xC3\xA9\xC3\xA9<&"));
    root->AddElement(row);
  }
  std::unique_ptr<XMLDocType> docType(XMLDocType::Create("R", "r.dtd", 0));
  docType->AddExtension("<!ENTITY e \"v\">");
  for (bool format : {true, false}) {
    ExportFormat layout, ignored;
    layout.SetFormat(format);
    std::string tree, prologue;
    root->ToString(tree, layout);
    docType->ToString(prologue, ignored);
    ASSERT_GT(tree.size(), 64000u);
    for (bool toUtf8 : {false, true}) {
      const std::string written = WriteToString(docType.get(), root.get(), format, toUtf8);
      EXPECT_EQ(written, prologue + tree);
      EXPECT_EQ(WriteToString(nullptr, root.get(), format, toUtf8), kDeclaration + tree);
      EXPECT_TRUE(!kxtesting::XmlLintAvailable() || kxtesting::XmlLintAccepts(written)) << format;
    }
  }
  EXPECT_EQ(WriteToString(docType.get(), nullptr, true, false, -1), "");
  EXPECT_EQ(WriteToString(nullptr, nullptr, true, true, -1), "");
}

TEST(XMLWriteTreeTest, Utf8OutputConvertsFromTheLocaleAndStaysWellFormed) {
  kxtesting::LocaleScope ascii(LC_CTYPE, "C");
  std::unique_ptr<XMLElement> root(XMLElement::Create("R"));
  root->AddAttribute("v", "\xE9t\xE9");
  root->AddText(XMLString::Create("\xFC"));
  const std::string written = WriteToString(nullptr, root.get(), false, true);
  EXPECT_EQ(written, kDeclaration + "<R v=\"\xEF\xBF\xBDt\xEF\xBF\xBD\">\xEF\xBF\xBD</R>");
  std::ostringstream raw, converted, rootTags;
  Write(raw, "\xE9");
  WriteUTF(converted, "\xE9");
  StartRoot(rootTags, " a");
  EndRoot(rootTags);
  EXPECT_EQ(raw.str() + converted.str() + rootTags.str(),
            "\xE9\xEF\xBF\xBD<KXXMLRoot copyright=\"&#32;a\">\n</KXXMLRoot>");
  if (!kxtesting::XmlLintAvailable()) GTEST_SKIP() << "xmllint not on PATH";
  EXPECT_TRUE(kxtesting::XmlLintAccepts(written));
}

// Both branches of Format against printf's "%.15g"; a caller's format is used
// only when it holds one floating conversion and reads no other argument.
TEST(XMLFormatTest, NumbersAsPrintfWritesThem) {
  std::mt19937_64 rng(42);
  std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
  char expected[128];
  for (int trial = 0; trial < 20000; ++trial) {
    const double value = mantissa(rng) * std::pow(10.0, static_cast<int>(rng() % 621) - 320);
    std::snprintf(expected, sizeof expected, "%.15g", value);
    ASSERT_EQ(Format(value), expected);
    ASSERT_EQ(Format(value, true), expected);
  }
  std::snprintf(expected, sizeof expected, "%.100f", 0.1);  // longer than the small buffer
  EXPECT_EQ(Format(0.1, true, "%.100f"), expected);
  EXPECT_EQ(Format(2.5, true, "x=%+08.2e%%"), "x=+2.50e+00%");
  EXPECT_EQ(Format(1234567890123456789L) + Format(-42L) + ReplaceSep(1e15, nullptr),
            "1.23456789012346e+18-421e+15");
  for (const char* unsafe : {"%s", "%d", "%f %f", "%*f", "%n", "", "%", "%1234f", "%.5000f",
                             "%'f", "no conversion"}) {
    EXPECT_EQ(Format(0.25, true, unsafe), "0.25") << unsafe;
  }
  EXPECT_EQ(GetDefaultNumericFormat() + GetListSeparator() + GetDecimalCharacter(), "%.15g;.");
}

TEST(XMLFormatTest, DecimalPointIsAlwaysAFullStop) {
  // The C++ global locale does not reach the stream branch.
  struct CommaPoint : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
  };
  const std::locale previous = std::locale::global(std::locale(std::locale(), new CommaPoint));
  EXPECT_EQ(Format(1.5), "1.5");
  std::locale::global(previous);
  // Nor does a C locale with a decimal comma reach either branch.
  for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE"}) {
    kxtesting::LocaleScope comma(LC_NUMERIC, name);
    if (!comma.active()) continue;
    EXPECT_EQ(GetDecimalCharacter(), ",");
    EXPECT_EQ(Format(1.5) + Format(1.5, true) + Format(-2.25, true, "%.3e"), "1.51.5-2.250e+00");
    return;
  }
  GTEST_SKIP() << "no locale with a decimal comma installed";
}

}  // namespace
