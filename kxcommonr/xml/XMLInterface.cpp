#include "kxcommonr/xml/XMLInterface.h"

#include <ostream>

#include "kxcommonr/xml/XMLWriter.h"
#include "kxcommonr/xml/internal/XMLText.h"

namespace KXXML_NAMESPACE {

XMLInterface::~XMLInterface() = default;

int XMLInterface::ToStream(std::ostream& os, ExportFormat& format,
                           bool utf8) const {
  std::string text;
  ToString(text, format);
  if (utf8) {
    WriteUTF(os, text);
  } else {
    detail::PutBytes(os, text);
  }
  return 0;
}

}  // namespace KXXML_NAMESPACE
