#include "kxcommonr/xml/XMLWriter.h"

#include <clocale>
#include <cstdio>
#include <cstring>
#include <locale>
#include <ostream>
#include <sstream>
#include <utility>

#include "kxcommonr/xml/XMLDocType.h"
#include "kxcommonr/xml/XMLElement.h"
#include "kxcommonr/xml/internal/KXCodePage.h"
#include "kxcommonr/xml/internal/XMLText.h"

namespace KXXML_NAMESPACE {

namespace {

constexpr const char kDeclarationLine[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n";
constexpr const char kDefaultNumericFormat[] = "%.15g";

int WriteDocument(std::ostream& os, const XMLDocType* docType,
                  const XMLElement* root, bool format, bool utf8) {
  if (root == nullptr) return -1;
  ExportFormat layout;
  layout.SetFormat(format);
  if (docType == nullptr) {
    if (utf8) {
      WriteUTF(os, kDeclarationLine);
    } else {
      detail::PutBytes(os, kDeclarationLine);
    }
  } else {
    docType->ToStream(os, layout, utf8);
  }
  root->ToStream(os, layout, utf8);
  return 0;
}

// Skips at most three digits; false when there are more.
bool SkipDigits(const char*& p) {
  int digits = 0;
  while (*p >= '0' && *p <= '9') {
    ++p;
    if (++digits > 3) return false;
  }
  return true;
}

// True when `format` is a printf format with exactly one floating-point
// conversion and nothing that would read a further argument: "%%" pairs,
// then one '%', flags among "-+ #0", up to three digits for the width, an
// optional '.' and up to three digits for the precision, and one of
// f F e E g G a A. (The digit limits keep the text to a sane length.)
bool IsSingleFloatingFormat(const char* format) {
  int conversions = 0;
  for (const char* p = format; *p != '\0'; ++p) {
    if (*p != '%') continue;
    ++p;
    if (*p == '%') continue;
    while (*p != '\0' && std::strchr("-+ #0", *p) != nullptr) ++p;
    if (!SkipDigits(p)) return false;
    if (*p == '.') {
      ++p;
      if (!SkipDigits(p)) return false;
    }
    if (*p == '\0' || std::strchr("fFeEgGaA", *p) == nullptr) return false;
    ++conversions;
  }
  return conversions == 1;
}

std::string FormatWithPrintf(double value, const char* format) {
  if (format == nullptr || !IsSingleFloatingFormat(format)) {
    format = kDefaultNumericFormat;
  }
  char small[64];
  const int length = std::snprintf(small, sizeof small, format, value);
  if (length < 0) return std::string();
  std::string text;
  if (static_cast<std::size_t>(length) < sizeof small) {
    text.assign(small, static_cast<std::size_t>(length));
  } else {
    text.resize(static_cast<std::size_t>(length) + 1);
    std::snprintf(&text[0], text.size(), format, value);
    text.resize(static_cast<std::size_t>(length));
  }
  // printf writes the C locale's decimal point; files always carry ".".
  const std::string point = GetDecimalCharacter();
  if (!point.empty() && point != ".") {
    const std::string::size_type at = text.find(point);
    if (at != std::string::npos) text.replace(at, point.size(), ".");
  }
  return text;
}

}  // namespace

int WriteTree(std::ostream& os, const XMLDocType* docType,
              const XMLElement* root, bool format) {
  return WriteDocument(os, docType, root, format, false);
}

int WriteTreeUTF8(std::ostream& os, const XMLDocType* docType,
                  const XMLElement* root, bool format) {
  return WriteDocument(os, docType, root, format, true);
}

int Write(std::ostream& os, const std::string& text) {
  os.write(text.data(), static_cast<std::streamsize>(text.size()));
  return 0;
}

int WriteUTF(std::ostream& os, const std::string& text) {
  detail::PutBytes(os, detail::SystemCodePageToUtf8(text));
  return 0;
}

int WriteHeader(std::ostream& os, std::string text) {
  return StartRoot(os, std::move(text));
}

int StartRoot(std::ostream& os, std::string text) {
  std::string line = "<";
  line += kXMLRootName;
  line += ' ';
  detail::AppendAttribute(line, kXMLCopyrightAttribute, text);
  line += '>';
  detail::PutBytes(os, line);
  return 0;
}

int EndHeader(std::ostream&) { return 0; }

int EndRoot(std::ostream& os) {
  std::string line = "\n</";
  line += kXMLRootName;
  line += '>';
  detail::PutBytes(os, line);
  return 0;
}

std::string Format(double value, bool useSprintf, const char* format) {
  if (useSprintf) return FormatWithPrintf(value, format);
  return ReplaceSep(value, nullptr);
}

std::string Format(long value) { return Format(static_cast<double>(value), true); }

std::string ReplaceSep(double value, char*) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream.precision(15);
  stream << value;
  return stream.str();
}

std::string GetDefaultNumericFormat() { return kDefaultNumericFormat; }

std::string GetListSeparator() { return ";"; }

std::string GetDecimalCharacter() {
  const std::lconv* conventions = std::localeconv();
  if (conventions == nullptr || conventions->decimal_point == nullptr) return ".";
  return conventions->decimal_point;
}

}  // namespace KXXML_NAMESPACE
