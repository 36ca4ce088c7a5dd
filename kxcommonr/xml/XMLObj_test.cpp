#include "kxcommonr/xml/XMLObj.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/testing/XmlTestSupport.h"
#include "kxcommonr/xml/XMLDocType.h"
#include "kxcommonr/xml/XMLWriter.h"

namespace {

using namespace KXXML_NAMESPACE;

// A whole object-stream document: every value form, escaping, nested tabs.
TEST(XMLObjTest, WritesTheObjectStreamExactly) {
  std::ostringstream out;
  const std::unique_ptr<XMLDocType> docType(XMLDocType::Create(kXMLRootName, kXMLSystemId, 0));
  ExportFormat format;
  docType->ToStream(out, format, false);
  WriteHeader(out, "(c) 2026  kx");
  EndHeader(out);
  const XMLObj object("Sample", 1), flat("Flat", -2);
  EXPECT_EQ(object.GetName() + std::to_string(object.GetNTabs()), "Sample1");
  object.StartObj(out);
  object.WriteSubElement(out, -7);
  object.WriteSubElement(out, 4294967295u);
  object.WriteSubElement(out, true);
  object.WriteSubElement(out, 123456789012345L);
  object.WriteSubElement(out, 1234567890123456789L);  // 15 significant digits
  object.WriteSubElement(out, 0.1);
  object.WriteSubElement(out, KXCommon::KXMV::Missing());
  object.WriteExactSubElement(out, 0.1);
  object.WriteExactSubElement(out, KXCommon::KXMV::Missing());
  object.WriteSubElement(out, std::string("two words <x=y>"));
  object.WriteSubElement(out, "");  // a literal is a string, not a bool
  object.WriteSubElement(out, static_cast<const char*>(nullptr));
  object.EndObj(out);
  flat.StartObj(out);
  flat.EndObj(out);
  EndRoot(out);
  const std::string text = out.str();
  EXPECT_EQ(text,
            "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
            "<!DOCTYPE KXXMLRoot SYSTEM \"savexml.dtd\">\n"
            "<KXXMLRoot copyright=\"(c) 2026 &#32;kx\">\n"
            "\t<Obj name=\"Sample\">\n"
            "\t\t<Int value=\"-7\"/>\n\t\t<Int value=\"4294967295\"/>\n\t\t<Int value=\"1\"/>\n"
            "\t\t<Long value=\"123456789012345\"/>\n\t\t<Long value=\"1.23456789012346e+18\"/>\n"
            "\t\t<Double value=\"0.1\"/>\n\t\t<Double value=\"Missing\"/>\n"
            "\t\t<Double value=\"0.10000000000000001\"/>\n\t\t<Double value=\"Missing\"/>\n"
            "\t\t<String value=\"two words &lt;x=y&gt;\"/>\n"
            "\t\t<String value=\"\"/>\n\t\t<String value=\"\"/>\n"
            "\t</Obj>\n<Obj name=\"Flat\">\n</Obj>\n"
            "</KXXMLRoot>");
  if (!kxtesting::XmlLintAvailable()) GTEST_SKIP() << "xmllint not on PATH";
  EXPECT_TRUE(kxtesting::XmlLintAccepts(text));
}

}  // namespace
