#include "kxcommonr/xml/XMLString.h"

#include <new>

#include "kxcommonr/xml/internal/XMLText.h"

namespace KXXML_NAMESPACE {

XMLString::XMLString(const std::string& text) : fsText(text) {}

XMLString::~XMLString() = default;

XMLString* XMLString::Create(const std::string& text) {
  return new (std::nothrow) XMLString(text);
}

int XMLString::ToString(std::string& out, ExportFormat& format) const {
  detail::AppendEscapedText(out, fsText);
  format.SetIsNewParagraph(false);
  format.SetIndentation(false);
  return 0;
}

}  // namespace KXXML_NAMESPACE
