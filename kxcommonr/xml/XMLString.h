// kxcommonr/xml/XMLString.h
//
// A text node: character data inside an element. Only "&" and "<" are
// escaped. Writing a text node switches the format's new-paragraph and
// indentation flags off, so that the enclosing element's closing tag follows
// the text on the same line (<A>text</A>); the next element turns them on.
//
// Thread-compatible: immutable once created.
#ifndef KXCOMMONR_XML_XMLSTRING_H
#define KXCOMMONR_XML_XMLSTRING_H

#include <string>

#include "kxcommonr/config.h"
#include "kxcommonr/xml/XMLInterface.h"

namespace KXXML_NAMESPACE {

class KXCOMMONR_API XMLString : public XMLInterface {
 public:
  // A new text node that the caller owns until it is added to an element.
  // Returns null only when allocation fails.
  static XMLString* Create(const std::string& text);

  ~XMLString() override;

  // Appends the escaped text and turns the format's new-paragraph and
  // indentation flags off. Returns 0.
  int ToString(std::string& out, ExportFormat& format) const override;

  const std::string& GetText() const { return fsText; }

 protected:
  explicit XMLString(const std::string& text);

 private:
  std::string fsText;
};

}  // namespace KXXML_NAMESPACE

#endif  // KXCOMMONR_XML_XMLSTRING_H
