#include "kxcommonr/xml/internal/XMLText.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>

#include "kxcommonr/testing/XmlTestSupport.h"

namespace {

namespace detail = KXXML_NAMESPACE::detail;

TEST(XMLTextTest, EscapesAsTabulated) {
  const struct { const char* value; const char* attribute; const char* text; } table[] = {
      {" a  b ", "&#32;a &#32;b&#32;", " a  b "},
      {"   ", "&#32;&#32;&#32;", "   "},
      {"a    b", "a &#32; &#32;b", "a    b"},
      {"", "", ""},
      {"&lt;<>\"\t\n\r", "&amp;lt;&lt;&gt;&quot;&#9;&#10;&#13;", "&amp;lt;&lt;>\"\t\n\r"}};
  for (const auto& row : table) {
    EXPECT_EQ(detail::EscapeAttributeValue(row.value), row.attribute) << row.value;
    std::string attribute = "<", text = "<";  // appended, never replaced
    detail::AppendAttribute(attribute, "v", row.value);
    detail::AppendEscapedText(text, row.value);
    EXPECT_EQ(attribute, std::string("<v=\"") + row.attribute + "\"");
    EXPECT_EQ(text, std::string("<") + row.text);
  }
  std::string tabs = "x";
  detail::AppendTabs(tabs, -1);
  detail::AppendTabs(tabs, 3);
  std::ostringstream out;
  detail::PutBytes(out, std::string("a\0b", 3));
  EXPECT_EQ(tabs + out.str(), std::string("x\t\t\ta\0b", 7));
}

// Random values over every character the escapes handle: libxml2 must report
// the attribute value as given (after its attribute-value normalisation) and
// the text with CR and CR LF turned into LF, as XML prescribes.
TEST(XMLTextTest, EscapedValuesSurviveAConformingParser) {
  if (!kxtesting::XmlLintAvailable()) GTEST_SKIP() << "xmllint not on PATH";
  std::mt19937 rng(7);
  const std::string alphabet = "  ab&<>\"'\t\n\r;#=/";
  for (int trial = 0; trial < 12; ++trial) {
    std::string value, expectedText;
    for (int i = 0; i < 14; ++i) value += alphabet[rng() % alphabet.size()];
    for (std::size_t i = 0; i < value.size(); ++i) {
      expectedText += value[i] == '\r' ? '\n' : value[i];
      if (value[i] == '\r' && i + 1 < value.size() && value[i + 1] == '\n') ++i;
    }
    std::string document = "<A ";
    detail::AppendAttribute(document, "v", value);
    document += '>';
    detail::AppendEscapedText(document, value);
    document += "</A>";
    const std::string path = kxtesting::WriteTempFile("escape", document);
    bool ok = false;
    // xmllint ends what --xpath prints with a line feed of its own.
    auto parsed = [&](const std::string& xpath) {
      const std::string printed = kxtesting::RunXmlLint("--xpath '" + xpath + "'", path, ok);
      return printed.substr(0, printed.size() - (!printed.empty() && printed.back() == '\n'));
    };
    EXPECT_EQ(parsed("string(/A/@v)"), value) << path;
    ASSERT_TRUE(ok) << path;
    EXPECT_EQ(parsed("string(/A)"), expectedText) << path;
  }
}

}  // namespace
