#include "kxcommonr/xml/XMLObj.h"

#include <climits>
#include <ostream>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/xml/XMLWriter.h"
#include "kxcommonr/xml/internal/XMLText.h"

namespace KXXML_NAMESPACE {

XMLObj::XMLObj(const std::string& name, int nTabs)
    : fsName(name), fiTabs(nTabs) {}

int XMLObj::StartObj(std::ostream& os) const {
  std::string line = "\n";
  detail::AppendTabs(line, fiTabs);
  line += '<';
  line += kXMLObjectElement;
  line += ' ';
  detail::AppendAttribute(line, kXMLNameAttribute, fsName);
  line += '>';
  detail::PutBytes(os, line);
  return 0;
}

int XMLObj::EndObj(std::ostream& os) const {
  std::string line = "\n";
  detail::AppendTabs(line, fiTabs);
  line += "</";
  line += kXMLObjectElement;
  line += '>';
  detail::PutBytes(os, line);
  return 0;
}

void XMLObj::WriteValueLine(std::ostream& os, const char* element,
                            const std::string& attributeText) const {
  std::string line = "\n";
  // Value lines sit one tab deeper than their object.
  detail::AppendTabs(line, fiTabs < INT_MAX ? fiTabs + 1 : fiTabs);
  line += '<';
  line += element;
  line += ' ';
  line += attributeText;
  line += "/>";
  detail::PutBytes(os, line);
}

void XMLObj::WriteNumberLine(std::ostream& os, const char* element,
                             double value) const {
  std::string attributeText;
  detail::AppendAttribute(attributeText, kXMLValueAttribute, Format(value));
  WriteValueLine(os, element, attributeText);
}

int XMLObj::WriteSubElement(std::ostream& os, int value) const {
  WriteNumberLine(os, kXMLIntElement, static_cast<double>(value));
  return 0;
}

int XMLObj::WriteSubElement(std::ostream& os, unsigned int value) const {
  WriteNumberLine(os, kXMLIntElement, static_cast<double>(value));
  return 0;
}

int XMLObj::WriteSubElement(std::ostream& os, bool value) const {
  WriteNumberLine(os, kXMLIntElement, value ? 1.0 : 0.0);
  return 0;
}

int XMLObj::WriteSubElement(std::ostream& os, long value) const {
  WriteNumberLine(os, kXMLLongElement, static_cast<double>(value));
  return 0;
}

int XMLObj::WriteSubElement(std::ostream& os, double value) const {
  if (KXCommon::KXMV::IsMissing(value)) {
    std::string attributeText;
    detail::AppendAttribute(attributeText, kXMLValueAttribute, kXMLMissingWord);
    WriteValueLine(os, kXMLDoubleElement, attributeText);
  } else {
    WriteNumberLine(os, kXMLDoubleElement, value);
  }
  return 0;
}

int XMLObj::WriteExactSubElement(std::ostream& os, double value) const {
  if (KXCommon::KXMV::IsMissing(value)) return WriteSubElement(os, value);
  std::string attributeText;
  detail::AppendAttribute(attributeText, kXMLValueAttribute,
                          Format(value, true, "%.17g"));
  WriteValueLine(os, kXMLDoubleElement, attributeText);
  return 0;
}

int XMLObj::WriteSubElement(std::ostream& os, const std::string& value) const {
  std::string attributeText;
  detail::AppendAttribute(attributeText, kXMLValueAttribute, value);
  WriteValueLine(os, kXMLStringElement, attributeText);
  return 0;
}

int XMLObj::WriteSubElement(std::ostream& os, const char* value) const {
  return WriteSubElement(os, std::string(value != nullptr ? value : ""));
}

}  // namespace KXXML_NAMESPACE
