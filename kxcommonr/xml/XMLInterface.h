// kxcommonr/xml/XMLInterface.h
//
// XMLInterface is the abstract base of the nodes of the XML object model
// (XMLElement, XMLAttribute, XMLString, XMLDocType). A node appends its text
// to a string (ToString) or writes it to a byte stream (ToStream), optionally
// converted from the system code page to UTF-8. Nodes are created by their
// classes' Create factories and deleted by their owner: an element owns its
// attributes and children; the caller owns the root and the document type.
//
// Thread-compatible: serialising a tree only reads it, but the ExportFormat
// passed in is changed, so give each thread its own format.
#ifndef KXCOMMONR_XML_XMLINTERFACE_H
#define KXCOMMONR_XML_XMLINTERFACE_H

#include <iosfwd>
#include <string>

#include "kxcommonr/config.h"
#include "kxcommonr/xml/ExportFormat.h"

namespace KXXML_NAMESPACE {

class KXCOMMONR_API XMLInterface {
 public:
  virtual ~XMLInterface();

  // Appends the node's text to `out`, laid out by `format` (whose level and
  // flags the node may change, see ExportFormat). Returns 0.
  virtual int ToString(std::string& out, ExportFormat& format) const = 0;

  // Writes the node's text to `os`: this base version builds it with
  // ToString and writes it through WriteUTF when `utf8` is true, else
  // unchanged. The stream's state is not checked. Returns 0.
  virtual int ToStream(std::ostream& os, ExportFormat& format, bool utf8) const;

 protected:
  XMLInterface() = default;
  XMLInterface(const XMLInterface&) = default;
  XMLInterface& operator=(const XMLInterface&) = default;
};

}  // namespace KXXML_NAMESPACE

#endif  // KXCOMMONR_XML_XMLINTERFACE_H
