#include "kxcommonr/xml/XMLDocType.h"

#include <new>

namespace KXXML_NAMESPACE {

XMLDocType::XMLDocType(const std::string& rootName, const std::string& systemId,
                       long tag)
    : fsRootName(rootName), fsSystemId(systemId), flTag(tag) {}

XMLDocType::~XMLDocType() = default;

XMLDocType* XMLDocType::Create(const std::string& rootName,
                               const std::string& systemId, long tag) {
  return new (std::nothrow) XMLDocType(rootName, systemId, tag);
}

void XMLDocType::AddExtension(const std::string& text) {
  fsExtension += '\n';
  fsExtension += text;
}

int XMLDocType::ToString(std::string& out, ExportFormat&) const {
  out += "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n";
  out += "<!DOCTYPE ";
  out += fsRootName;
  out += " SYSTEM \"";
  out += fsSystemId;
  out += '"';
  if (!fsExtension.empty()) {
    out += "\n[";
    out += fsExtension;
    out += "\n]";
  }
  out += ">\n";
  return 0;
}

}  // namespace KXXML_NAMESPACE
