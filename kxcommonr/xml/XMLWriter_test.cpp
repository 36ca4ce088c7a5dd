#include "kxcommonr/xml/XMLWriter.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>
#include <locale>
#include <memory>
#include <random>
#include <sstream>
#include <string>

#include "kxcommonr/testing/XmlTestSupport.h"
#include "kxcommonr/xml/XMLAttribute.h"
#include "kxcommonr/xml/XMLDocType.h"
#include "kxcommonr/xml/XMLElement.h"
#include "kxcommonr/xml/XMLString.h"
#include "kxcommonr/xml/internal/KXCodePage.h"

namespace {

using namespace KXXML_NAMESPACE;

// <Root a="1" b="x y"> with an empty element, an element with one attribute,
// a text child, a text followed by an element, and two levels of nesting.
std::unique_ptr<XMLElement> SampleTree() {
  std::unique_ptr<XMLElement> root(XMLElement::Create("Root"));
  root->AddAttribute("a", 1.0);
  root->AddAttribute(XMLAttribute::Create("b", "x y"));
  root->AddElement(XMLElement::Create("Empty"));
  XMLElement* withAttribute = XMLElement::Create("WithAttr");
  withAttribute->AddAttribute("c", 0.1);
  root->AddElement(withAttribute);
  XMLElement* text = XMLElement::Create("Text");
  text->AddText(XMLString::Create("a<b&c>d"));
  root->AddElement(text);
  XMLElement* mixed = XMLElement::Create("Mixed");
  mixed->AddText(XMLString::Create("t"));
  mixed->AddElement(XMLElement::Create("E"));
  root->AddElement(mixed);
  XMLElement* nested = XMLElement::Create("Nested");
  XMLElement* leaf = XMLElement::Create("Leaf");
  leaf->AddAttribute("d", "q");
  nested->AddElement(leaf);
  nested->AddElement(XMLElement::Create("Leaf2"));
  root->AddElement(nested);
  return root;
}

std::string WriteToString(const XMLDocType* docType, const XMLElement& root,
                          bool format, bool utf8 = false) {
  std::ostringstream out;
  const int status = utf8 ? WriteTreeUTF8(out, docType, &root, format)
                          : WriteTree(out, docType, &root, format);
  EXPECT_EQ(status, 0);
  return out.str();
}

TEST(XMLWriteTreeTest, FormattedAndOneLineDocumentsAreExact) {
  const std::unique_ptr<XMLElement> root = SampleTree();
  std::unique_ptr<XMLDocType> docType(XMLDocType::Create("Root", "root.dtd", 7));
  docType->AddExtension("<!ENTITY e \"v\">");
  const std::string prologue =
      "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
      "<!DOCTYPE Root SYSTEM \"root.dtd\"\n[\n<!ENTITY e \"v\">\n]>\n";
  EXPECT_EQ(WriteToString(docType.get(), *root, true),
            prologue +
                "\n<Root\n\ta=\"1\"\n\tb=\"x y\">"
                "\n\t<Empty/>"
                "\n\t<WithAttr\n\t\tc=\"0.1\"/>"
                "\n\t<Text>a&lt;b&amp;c>d</Text>"
                "\n\t<Mixed>t<E/>\n\t</Mixed>"
                "\n\t<Nested>\n\t\t<Leaf\n\t\t\td=\"q\"/>\n\t\t<Leaf2/>\n\t</Nested>"
                "\n</Root>");
  EXPECT_EQ(WriteToString(nullptr, *root, false),
            "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
            "<Root a=\"1\" b=\"x y\"><Empty/><WithAttr c=\"0.1\"/>"
            "<Text>a&lt;b&amp;c>d</Text><Mixed>t<E/></Mixed>"
            "<Nested><Leaf d=\"q\"/><Leaf2/></Nested></Root>");
  // ToString builds the same characters that ToStream writes.
  ExportFormat format;
  std::string built;
  root->ToString(built, format);
  EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n" + built,
            WriteToString(nullptr, *root, true));
  EXPECT_EQ(format.GetLevel(), 0);
}

TEST(XMLWriteTreeTest, RefusedInputsLeaveThingsUnchanged) {
  std::ostringstream out;
  EXPECT_EQ(WriteTree(out, nullptr, nullptr, true), -1);
  EXPECT_EQ(WriteTreeUTF8(out, nullptr, nullptr, true), -1);
  EXPECT_TRUE(out.str().empty());
  std::unique_ptr<XMLElement> element(XMLElement::Create("A"));
  EXPECT_EQ(element->AddElement(nullptr), -1);
  EXPECT_EQ(element->AddElement(element.get()), -1);
  EXPECT_EQ(element->AddText(nullptr), -1);
  EXPECT_EQ(element->AddAttribute(static_cast<XMLAttribute*>(nullptr)), -1);
  EXPECT_EQ(element->GetChildCount(), 0u);
  EXPECT_EQ(element->GetAttributeCount(), 0u);
}

TEST(XMLWriteTreeTest, DeepTreeIsReleasedWithoutRecursion) {
  // Deep enough to overflow a recursive release under ASan's larger frames.
  XMLElement* root = XMLElement::Create("Deep");
  XMLElement* tip = root;
  for (int depth = 0; depth < 200000; ++depth) {
    XMLElement* child = XMLElement::Create("Deep");
    ASSERT_EQ(tip->AddElement(child), 0);
    tip = child;
  }
  tip->AddText(XMLString::Create("bottom"));
  delete root;
}

TEST(XMLAttributeTest, EscapesMarkupLineEndsAndSignificantBlanks) {
  auto text = [](const std::string& value) {
    std::unique_ptr<XMLAttribute> attribute(XMLAttribute::Create("v", value));
    ExportFormat format;
    std::string out;
    attribute->ToString(out, format);
    return out;
  };
  EXPECT_EQ(text(" a  b "), "v=\"&#32;a &#32;b&#32;\"");
  EXPECT_EQ(text("   "), "v=\"&#32;&#32;&#32;\"");
  EXPECT_EQ(text("a    b"), "v=\"a &#32; &#32;b\"");
  EXPECT_EQ(text(" "), "v=\"&#32;\"");
  EXPECT_EQ(text(""), "v=\"\"");
  EXPECT_EQ(text("&lt;<>\"\t\n\r"), "v=\"&amp;lt;&lt;&gt;&quot;&#9;&#10;&#13;\"");
}

// Writes `root` to a file and checks it with xmllint.
void ExpectWellFormed(const XMLDocType* docType, const XMLElement& root, bool format) {
  const std::string path =
      kxtesting::WriteTempFile("tree", WriteToString(docType, root, format));
  bool ok = false;
  kxtesting::RunXmlLint("--noout", path, ok);
  EXPECT_TRUE(ok) << "xmllint rejects " << path;
}

TEST(XMLWriteTreeTest, DocumentsAreWellFormedAndAttributeValuesSurviveAParser) {
  if (!kxtesting::XmlLintAvailable()) GTEST_SKIP() << "xmllint not on PATH";
  const std::unique_ptr<XMLElement> sample = SampleTree();
  std::unique_ptr<XMLDocType> docType(XMLDocType::Create("Root", "root.dtd", 0));
  docType->AddExtension("<!ENTITY e \"v\">");
  ExpectWellFormed(docType.get(), *sample, true);
  ExpectWellFormed(nullptr, *sample, false);

  // Random values over the characters the escape handles: the value that
  // libxml2 reports after attribute normalisation must be the value given.
  std::mt19937 rng(7);
  const std::string alphabet = "  ab&<>\"'\t\n\r;#=/";
  std::uniform_int_distribution<int> pick(0, static_cast<int>(alphabet.size()) - 1);
  for (int trial = 0; trial < 12; ++trial) {
    std::string value;
    for (int i = 0; i < 14; ++i) value += alphabet[pick(rng)];
    std::unique_ptr<XMLElement> root(XMLElement::Create("A"));
    root->AddAttribute("v", value);
    root->AddText(XMLString::Create(value));
    const std::string path =
        kxtesting::WriteTempFile("attr", WriteToString(nullptr, *root, trial % 2 == 0));
    bool ok = false;
    // xmllint ends what --xpath prints with a line feed of its own.
    auto parsed = [&](const char* xpath) {
      std::string printed = kxtesting::RunXmlLint(std::string("--xpath '") + xpath + "'", path, ok);
      if (!printed.empty() && printed.back() == '\n') printed.pop_back();
      return printed;
    };
    const std::string attribute = parsed("string(/A/@v)");
    ASSERT_TRUE(ok) << path;
    EXPECT_EQ(attribute, value) << path;
    // Text keeps its characters too; the parser turns CR and CR LF into LF.
    std::string expectedText;
    for (std::size_t i = 0; i < value.size(); ++i) {
      if (value[i] == '\r') {
        expectedText += '\n';
        if (i + 1 < value.size() && value[i + 1] == '\n') ++i;
      } else {
        expectedText += value[i];
      }
    }
    EXPECT_EQ(parsed("string(/A)"), expectedText);
  }
}

TEST(XMLFormatTest, StreamBranchMatchesPrintfWithFifteenDigits) {
  std::mt19937_64 rng(42);
  std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
  std::uniform_int_distribution<int> exponent(-320, 300);
  char expected[64];
  for (int trial = 0; trial < 20000; ++trial) {
    const double value = mantissa(rng) * std::pow(10.0, exponent(rng));
    std::snprintf(expected, sizeof expected, "%.15g", value);
    ASSERT_EQ(Format(value), expected);
    ASSERT_EQ(Format(value, true), expected);
  }
  EXPECT_EQ(Format(0.1), "0.1");
  EXPECT_EQ(Format(1e15), "1e+15");
  EXPECT_EQ(Format(123456789012345.0), "123456789012345");
  EXPECT_EQ(Format(0.0001), "0.0001");
  EXPECT_EQ(Format(0.00001), "1e-05");
  EXPECT_EQ(Format(1234567890123456789L), "1.23456789012346e+18");
  EXPECT_EQ(Format(-42L), "-42");
  EXPECT_EQ(GetDefaultNumericFormat(), "%.15g");
  EXPECT_EQ(GetListSeparator(), ";");
}

TEST(XMLFormatTest, CallerFormatsAreUsedOnlyWhenSafe) {
  EXPECT_EQ(Format(2.5, true, "%.3f"), "2.500");
  EXPECT_EQ(Format(2.5, true, "x=%+08.2e%%"), "x=+2.50e+00%");
  // Formats that would read another argument or are not floating
  // conversions fall back to "%.15g".
  for (const char* unsafe : {"%s", "%d", "%f %f", "%*f", "%n", "", "%", "%1234f",
                             "%.5000f", "%'f", "no conversion"}) {
    EXPECT_EQ(Format(0.25, true, unsafe), "0.25") << unsafe;
  }
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
  const std::string saved = std::setlocale(LC_NUMERIC, nullptr);
  const char* comma = nullptr;
  for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE"}) {
    if (std::setlocale(LC_NUMERIC, name) != nullptr) {
      comma = name;
      break;
    }
  }
  if (comma == nullptr) GTEST_SKIP() << "no locale with a decimal comma installed";
  EXPECT_EQ(GetDecimalCharacter(), ",");
  EXPECT_EQ(Format(1.5), "1.5");
  EXPECT_EQ(Format(1.5, true), "1.5");
  EXPECT_EQ(Format(-2.25, true, "%.3e"), "-2.250e+00");
  std::setlocale(LC_NUMERIC, saved.c_str());
}

// Restores LC_CTYPE when it goes out of scope.
class CharacterSetScope {
 public:
  explicit CharacterSetScope(const char* name) : saved_(std::setlocale(LC_CTYPE, nullptr)) {
    active_ = std::setlocale(LC_CTYPE, name) != nullptr;
  }
  ~CharacterSetScope() { std::setlocale(LC_CTYPE, saved_.c_str()); }
  bool active() const { return active_; }

 private:
  std::string saved_;
  bool active_ = false;
};

TEST(XMLWriteUTFTest, ConvertsFromTheLocaleCharacterSet) {
  const std::string mixed = "a\xC3\xA9z\xE2\x82\xAC\xF0\x9F\x98\x80!";  // a é z € 😀 !
  {
    CharacterSetScope utf8("C.UTF-8");
    if (!utf8.active()) GTEST_SKIP() << "C.UTF-8 not available";
    // iconv decodes to UTF-16 (a surrogate pair for U+1F600) and the
    // encoder must give back the very same bytes.
    std::ostringstream out;
    WriteUTF(out, mixed);
    EXPECT_EQ(out.str(), mixed);
    // A cut-off sequence and a stray continuation byte become U+FFFD.
    std::ostringstream broken;
    WriteUTF(broken, "x\x80y\xC3");
    EXPECT_EQ(broken.str(), "x\xEF\xBF\xBDy\xEF\xBF\xBD");
  }
  {
    CharacterSetScope ascii("C");
    std::ostringstream out;
    WriteUTF(out, "ok\xE9");
    EXPECT_EQ(out.str(), "ok\xEF\xBF\xBD");
  }
  {
    CharacterSetScope latin1("de_DE.ISO-8859-1");
    if (latin1.active()) {
      std::ostringstream out;
      WriteUTF(out, "caf\xE9");
      EXPECT_EQ(out.str(), "caf\xC3\xA9");
    }
  }
}

TEST(XMLWriteUTFTest, LargeTreesStreamTheSameCharactersAsToString) {
  CharacterSetScope utf8("C.UTF-8");
  if (!utf8.active()) GTEST_SKIP() << "C.UTF-8 not available";
  // Far more text than one block of streamed output, with two-byte
  // characters everywhere, so block ends fall next to them: a character cut
  // in two would come out as U+FFFD.
  std::unique_ptr<XMLElement> root(XMLElement::Create("R"));
  for (int i = 0; i < 3000; ++i) {
    XMLElement* row = XMLElement::Create("\xC3\xA9");
    row->AddAttribute("v", std::string(static_cast<std::size_t>(i % 7), 'x') + "\xC3\xA9");
    row->AddText(XMLString::Create("\xC3\xA9\xC3\xA9"));
    root->AddElement(row);
  }
  ExportFormat format;
  std::string built;
  root->ToString(built, format);
  ASSERT_GT(built.size(), 64000u);
  const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n";
  EXPECT_EQ(WriteToString(nullptr, *root, true, true), declaration + built);
  EXPECT_EQ(WriteToString(nullptr, *root, true, false), declaration + built);
}

TEST(XMLWriteUTFTest, TreeWrittenAsUtf8IsWellFormed) {
  CharacterSetScope latin1("C");
  std::unique_ptr<XMLElement> root(XMLElement::Create("R"));
  root->AddAttribute("v", "\xE9t\xE9");
  root->AddText(XMLString::Create("\xFC"));
  const std::string written = WriteToString(nullptr, *root, false, true);
  EXPECT_EQ(written,
            "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<R v=\"\xEF\xBF\xBDt\xEF\xBF\xBD\">"
            "\xEF\xBF\xBD</R>");
  if (!kxtesting::XmlLintAvailable()) GTEST_SKIP() << "xmllint not on PATH";
  bool ok = false;
  kxtesting::RunXmlLint("--noout", kxtesting::WriteTempFile("utf8", written), ok);
  EXPECT_TRUE(ok);
}

TEST(XMLWriteUTFTest, UnpairedSurrogatesTakeThreeBytes) {
  using KXXML_NAMESPACE::detail::EncodeUtf16AsUtf8;
  EXPECT_EQ(EncodeUtf16AsUtf8(u"\x41\x07FF\x0800"), "A\xDF\xBF\xE0\xA0\x80");
  EXPECT_EQ(EncodeUtf16AsUtf8(std::u16string{0xD83D, 0xDE00}), "\xF0\x9F\x98\x80");
  EXPECT_EQ(EncodeUtf16AsUtf8(std::u16string{0xD800, 0x41}), "\xED\xA0\x80" "A");
  EXPECT_EQ(EncodeUtf16AsUtf8(std::u16string{0xDC00}), "\xED\xB0\x80");
}

}  // namespace
