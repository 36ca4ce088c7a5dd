// kxcommonr/xml/XMLDocType.h
//
// The prologue of a document: the XML declaration (UTF-8) and a document
// type declaration naming the root element and a system identifier, with an
// optional internal subset built from AddExtension texts. The object stream
// uses root "KXXMLRoot" and system identifier "savexml.dtd" (kXMLRootName,
// kXMLSystemId in XMLWriter.h).
//
// Thread-compatible: one object per thread while it is being extended.
#ifndef KXCOMMONR_XML_XMLDOCTYPE_H
#define KXCOMMONR_XML_XMLDOCTYPE_H

#include <string>

#include "kxcommonr/config.h"
#include "kxcommonr/xml/XMLInterface.h"

namespace KXXML_NAMESPACE {

class KXCOMMONR_API XMLDocType : public XMLInterface {
 public:
  // A new document type that the caller owns. `tag` is kept for the caller
  // (GetTag) and never written. Returns null only when allocation fails.
  static XMLDocType* Create(const std::string& rootName,
                            const std::string& systemId, long tag);

  ~XMLDocType() override;

  // Appends a line feed and `text` to the internal subset.
  void AddExtension(const std::string& text);

  // Appends, each line ending in a line feed:
  //   <?xml version="1.0" encoding="UTF-8" ?>
  //   <!DOCTYPE ROOT SYSTEM "SYSTEMID">
  // and, when extensions were added, "[" + extensions + "\n]" before the
  // final ">". Nothing is escaped. Leaves `format` unchanged. Returns 0.
  int ToString(std::string& out, ExportFormat& format) const override;

  const std::string& GetRootName() const { return fsRootName; }
  const std::string& GetSystemId() const { return fsSystemId; }
  const std::string& GetExtension() const { return fsExtension; }
  long GetTag() const { return flTag; }

 protected:
  XMLDocType(const std::string& rootName, const std::string& systemId, long tag);

 private:
  std::string fsRootName;
  std::string fsSystemId;
  std::string fsExtension;
  long flTag;
};

}  // namespace KXXML_NAMESPACE

#endif  // KXCOMMONR_XML_XMLDOCTYPE_H
