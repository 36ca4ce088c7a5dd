// The object model: elements, attributes, text nodes and the document type.
#include "kxcommonr/xml/XMLElement.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "kxcommonr/xml/XMLAttribute.h"
#include "kxcommonr/xml/XMLDocType.h"
#include "kxcommonr/xml/XMLString.h"

namespace {

using namespace KXXML_NAMESPACE;

// A caller's own text node, which the element hands the stream to.
class CData : public XMLString {
 public:
  explicit CData(const std::string& text) : XMLString(text) {}
  int ToString(std::string& out, ExportFormat& format) const override {
    out += "<![CDATA[" + GetText() + "]]>";
    format.SetIsNewParagraph(false);
    return 0;
  }
};

XMLElement* AddChild(XMLElement& parent, const char* name) {
  XMLElement* child = XMLElement::Create(name);
  EXPECT_EQ(parent.AddElement(child), 0);
  return child;
}

// <Root a="1" b="x y"> with an empty element, an element with one attribute,
// a text child, a text followed by an element, two levels of nesting and a
// node of the caller's.
std::unique_ptr<XMLElement> SampleTree() {
  std::unique_ptr<XMLElement> root(XMLElement::Create("Root"));
  root->AddAttribute("a", 1.0);
  root->AddAttribute(XMLAttribute::Create("b", "x y"));
  AddChild(*root, "Empty");
  AddChild(*root, "WithAttr")->AddAttribute("c", 0.1);
  AddChild(*root, "Text")->AddText(XMLString::Create("a<b&c>d"));
  XMLElement* mixed = AddChild(*root, "Mixed");
  mixed->AddText(XMLString::Create("t"));
  AddChild(*mixed, "E");
  XMLElement* nested = AddChild(*root, "Nested");
  AddChild(*nested, "Leaf")->AddAttribute("d", "q");
  nested->AddText(new CData("<c>"));
  return root;
}

// Formatted and one-line layouts; streaming (raw or through the UTF-8
// conversion, a no-op on ASCII) writes the very characters ToString builds.
TEST(XMLElementTest, LayoutsAreExactAndStreamingWritesTheSameCharacters) {
  const std::unique_ptr<XMLElement> root = SampleTree();
  const std::string formatted =
      "\n<Root\n\ta=\"1\"\n\tb=\"x y\">\n\t<Empty/>\n\t<WithAttr\n\t\tc=\"0.1\"/>"
      "\n\t<Text>a&lt;b&amp;c>d</Text>\n\t<Mixed>t<E/>\n\t</Mixed>"
      "\n\t<Nested>\n\t\t<Leaf\n\t\t\td=\"q\"/><![CDATA[<c>]]>\t</Nested>\n</Root>";
  const std::string oneLine =
      "<Root a=\"1\" b=\"x y\"><Empty/><WithAttr c=\"0.1\"/><Text>a&lt;b&amp;c>d</Text>"
      "<Mixed>t<E/></Mixed><Nested><Leaf d=\"q\"/><![CDATA[<c>]]></Nested></Root>";
  for (bool layout : {true, false}) {
    for (int output = 0; output < 3; ++output) {
      ExportFormat format;
      format.SetFormat(layout);
      std::string built;
      std::ostringstream streamed;
      if (output == 0) root->ToString(built, format);
      if (output > 0) root->ToStream(streamed, format, output == 2);
      EXPECT_EQ(built + streamed.str(), layout ? formatted : oneLine) << output;
      EXPECT_EQ(format.GetLevel(), 0);
      EXPECT_TRUE(format.IsNewParagraph() == layout && format.HasIndentation() == layout);
    }
  }
  EXPECT_EQ(root->GetName() + std::to_string(root->GetAttributeCount()) +
                std::to_string(root->GetChildCount()),
            "Root25");
}

TEST(XMLElementTest, RefusedChildrenAndAttributesLeaveTheElementUnchanged) {
  std::unique_ptr<XMLElement> element(XMLElement::Create("A"));
  EXPECT_EQ(element->AddElement(nullptr), -1);
  EXPECT_EQ(element->AddElement(element.get()), -1);
  EXPECT_EQ(element->AddText(nullptr), -1);
  EXPECT_EQ(element->AddAttribute(static_cast<XMLAttribute*>(nullptr)), -1);
  EXPECT_EQ(element->GetChildCount() + element->GetAttributeCount(), 0u);
}

TEST(XMLElementTest, DeepTreeIsReleasedWithoutRecursion) {
  // Deep enough to overflow a recursive release under ASan's larger frames.
  XMLElement* root = XMLElement::Create("Deep");
  XMLElement* tip = root;
  for (int depth = 0; depth < 200000; ++depth) tip = AddChild(*tip, "Deep");
  tip->AddText(XMLString::Create("bottom"));
  delete root;
}

// The document type and attributes append their text and leave the format as
// it was; a text node turns both layout flags off, and the master switch
// overrides both flags.
TEST(XMLElementTest, OtherNodesAndFormatFlags) {
  std::unique_ptr<XMLDocType> docType(XMLDocType::Create("R", "r.dtd", 7));
  const std::unique_ptr<XMLAttribute> attribute(XMLAttribute::Create("n", 2.5e-7));
  const std::unique_ptr<XMLString> node(XMLString::Create("x"));
  ExportFormat format;
  std::string text;
  docType->ToString(text, format);
  docType->AddExtension("<!ENTITY e \"v\">");
  docType->ToString(text, format);
  attribute->ToString(text, format);
  EXPECT_TRUE(format.IsNewParagraph() && format.HasIndentation());
  node->ToString(text, format);
  EXPECT_FALSE(format.IsNewParagraph() || format.HasIndentation());
  EXPECT_EQ(text,
            "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<!DOCTYPE R SYSTEM \"r.dtd\">\n"
            "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<!DOCTYPE R SYSTEM \"r.dtd\"\n"
            "[\n<!ENTITY e \"v\">\n]>\nn=\"2.5e-07\"x");
  EXPECT_EQ(docType->GetRootName() + docType->GetSystemId() + docType->GetExtension() +
                std::to_string(docType->GetTag()) + attribute->GetName() + attribute->GetValue(),
            "Rr.dtd\n<!ENTITY e \"v\">7n2.5e-07");
  format.SetIsNewParagraph(true);
  format.SetIndentation(true);
  format.SetFormat(false);
  EXPECT_FALSE(format.IsNewParagraph() || format.HasIndentation() || format.GetFormat());
}

}  // namespace
