#include "kxcommonr/xml/XMLAttribute.h"

#include <new>

#include "kxcommonr/xml/XMLWriter.h"
#include "kxcommonr/xml/internal/XMLText.h"

namespace KXXML_NAMESPACE {

XMLAttribute::XMLAttribute(const std::string& name, const std::string& value)
    : fsName(name), fsValue(value) {}

XMLAttribute::~XMLAttribute() = default;

XMLAttribute* XMLAttribute::Create(const std::string& name,
                                   const std::string& value) {
  return new (std::nothrow) XMLAttribute(name, value);
}

XMLAttribute* XMLAttribute::Create(const std::string& name, double value) {
  return Create(name, Format(value));
}

int XMLAttribute::ToString(std::string& out, ExportFormat&) const {
  detail::AppendAttribute(out, fsName, fsValue);
  return 0;
}

}  // namespace KXXML_NAMESPACE
