#include "kxcommonr/xml/internal/XMLText.h"

#include <ostream>

namespace KXXML_NAMESPACE {
namespace detail {

namespace {
constexpr const char kSpaceReference[] = "&#32;";
}  // namespace

void AppendEscapedAttributeValue(std::string& out, const std::string& value) {
  const std::size_t begin = out.size();
  const std::size_t length = value.size();
  for (std::size_t i = 0; i < length; ++i) {
    const char c = value[i];
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      case '\t': out += "&#9;"; break;
      case '\n': out += "&#10;"; break;
      case '\r': out += "&#13;"; break;
      case ' ':
        // None of the entities above holds a blank, so runs of blanks are
        // those of the value: each pair becomes a blank and a reference.
        out += ' ';
        if (i + 1 < length && value[i + 1] == ' ') {
          out += kSpaceReference;
          ++i;
        }
        break;
      default: out += c; break;
    }
  }
  if (out.size() > begin) {
    if (out[begin] == ' ') out.replace(begin, 1, kSpaceReference);
    if (out.back() == ' ') out.replace(out.size() - 1, 1, kSpaceReference);
  }
}

std::string EscapeAttributeValue(const std::string& value) {
  std::string escaped;
  AppendEscapedAttributeValue(escaped, value);
  return escaped;
}

void AppendEscapedText(std::string& out, const std::string& text) {
  for (char c : text) {
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else {
      out += c;
    }
  }
}

void AppendAttribute(std::string& out, const std::string& name,
                     const std::string& value) {
  out += name;
  out += "=\"";
  AppendEscapedAttributeValue(out, value);
  out += '"';
}

void AppendTabs(std::string& out, int count) {
  if (count > 0) out.append(static_cast<std::size_t>(count), '\t');
}

void PutBytes(std::ostream& os, const std::string& bytes) {
  os.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace detail
}  // namespace KXXML_NAMESPACE
