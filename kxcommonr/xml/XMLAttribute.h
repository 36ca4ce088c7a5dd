// kxcommonr/xml/XMLAttribute.h
//
// One attribute of an XMLElement: a name and a value, written as
// name="value" with the value escaped so that markup characters, tabs, line
// ends and leading, trailing or repeated blanks survive a conforming reader.
// Attributes are created by the factories only and owned by the element they
// are added to.
//
// Thread-compatible: immutable once created.
#ifndef KXCOMMONR_XML_XMLATTRIBUTE_H
#define KXCOMMONR_XML_XMLATTRIBUTE_H

#include <string>

#include "kxcommonr/config.h"
#include "kxcommonr/xml/XMLInterface.h"

namespace KXXML_NAMESPACE {

class KXCOMMONR_API XMLAttribute : public XMLInterface {
 public:
  // A new attribute that the caller owns. Returns null only when allocation
  // fails. The name is written as given (it is not checked or escaped).
  static XMLAttribute* Create(const std::string& name, const std::string& value);
  // The value is Format(value): 15 significant digits, "." as separator.
  static XMLAttribute* Create(const std::string& name, double value);

  ~XMLAttribute() override;

  // Appends name="escaped value" (no leading blank or line feed: the element
  // places its attributes). Leaves `format` unchanged. Returns 0.
  int ToString(std::string& out, ExportFormat& format) const override;

  const std::string& GetName() const { return fsName; }
  // The value as given, before escaping.
  const std::string& GetValue() const { return fsValue; }

 protected:
  XMLAttribute(const std::string& name, const std::string& value);

 private:
  std::string fsName;
  std::string fsValue;
};

}  // namespace KXXML_NAMESPACE

#endif  // KXCOMMONR_XML_XMLATTRIBUTE_H
