// kxcommonr/xml/XMLObj.h
//
// XMLObj writes one object of the object stream, the line-oriented XML in
// which the library's objects save themselves. An object is an Obj element
// named after its class holding one value line per field, in a fixed order
// that the reader (XMLReader.h) follows back:
//
//   <Obj name="KXURandom">
//   	<Double value="5489"/>
//   	<Int value="1"/>
//   </Obj>
//
// Every line starts with a line feed and the object's tab count (value lines
// one tab deeper). Numbers of every type are written as Format(double)
// writes them: 15 significant digits, so longs beyond 15 digits and doubles
// needing 16 or 17 digits do not come back exactly. The system-missing value
// is written as value="Missing". Strings are escaped as attribute values;
// the reader does not decode entities, so only strings needing no escape
// (no & < > " tab or line end, no leading, trailing or doubled blank) read
// back unchanged, and a line must stay within 255 characters to be read.
//
// The enclosing document is written by the caller: the prologue (an
// XMLDocType for kXMLRootName and kXMLSystemId), StartRoot, the objects,
// EndRoot.
//
// Thread-compatible: a plain value; the writers only read it.
#ifndef KXCOMMONR_XML_XMLOBJ_H
#define KXCOMMONR_XML_XMLOBJ_H

#include <iosfwd>
#include <string>

#include "kxcommonr/config.h"

namespace KXXML_NAMESPACE {

class KXCOMMONR_API XMLObj {
 public:
  // An object named `name` (written as an escaped attribute value) whose
  // lines are indented by `nTabs` tabs (none when nTabs <= 0).
  XMLObj(const std::string& name, int nTabs);
  XMLObj(const XMLObj&) = default;
  XMLObj& operator=(const XMLObj&) = default;
  ~XMLObj() = default;

  int GetNTabs() const { return fiTabs; }
  const std::string& GetName() const { return fsName; }

  // Line feed, tabs, <Obj name="NAME">. Returns 0 (the stream is not checked).
  int StartObj(std::ostream& os) const;
  // Line feed, tabs, </Obj>. Returns 0.
  int EndObj(std::ostream& os) const;

  // Line feed, tabs + 1, <Int value="V"/>. Returns 0.
  int WriteSubElement(std::ostream& os, int value) const;
  // As int: element Int.
  int WriteSubElement(std::ostream& os, unsigned int value) const;
  // Element Int, value 1 for true and 0 for false.
  int WriteSubElement(std::ostream& os, bool value) const;
  // Element Long (15 significant digits, see above).
  int WriteSubElement(std::ostream& os, long value) const;
  // Element Double; the system-missing value is written as "Missing".
  int WriteSubElement(std::ostream& os, double value) const;
  // Element Double with 17 significant digits, so that every finite double
  // reads back exactly through ParseValue(double); the system-missing value
  // is written as "Missing". For formats that must round-trip a double.
  int WriteExactSubElement(std::ostream& os, double value) const;
  // Element String, the text escaped as an attribute value.
  int WriteSubElement(std::ostream& os, const std::string& value) const;
  // As the string form (null writes the empty string). Without it a string
  // literal would silently pick the bool form.
  int WriteSubElement(std::ostream& os, const char* value) const;

 private:
  void WriteValueLine(std::ostream& os, const char* element,
                      const std::string& attributeText) const;
  void WriteNumberLine(std::ostream& os, const char* element, double value) const;

  std::string fsName;
  int fiTabs;
};

}  // namespace KXXML_NAMESPACE

#endif  // KXCOMMONR_XML_XMLOBJ_H
