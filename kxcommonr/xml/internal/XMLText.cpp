#include "kxcommonr/xml/internal/XMLText.h"

#include <ostream>

namespace KXXML_NAMESPACE {
namespace detail {

namespace {
constexpr const char kSpaceReference[] = "&#32;";
}  // namespace

std::string EscapeAttributeValue(const std::string& value) {
  std::string escaped;
  escaped.reserve(value.size() + 8);
  const std::size_t length = value.size();
  for (std::size_t i = 0; i < length; ++i) {
    const char c = value[i];
    switch (c) {
      case '&': escaped += "&amp;"; break;
      case '<': escaped += "&lt;"; break;
      case '>': escaped += "&gt;"; break;
      case '"': escaped += "&quot;"; break;
      case '\t': escaped += "&#9;"; break;
      case '\n': escaped += "&#10;"; break;
      case '\r': escaped += "&#13;"; break;
      case ' ':
        // None of the entities above holds a blank, so runs of blanks are
        // those of the value: each pair becomes a blank and a reference.
        if (i + 1 < length && value[i + 1] == ' ') {
          escaped += ' ';
          escaped += kSpaceReference;
          ++i;
        } else {
          escaped += ' ';
        }
        break;
      default: escaped += c; break;
    }
  }
  if (!escaped.empty()) {
    if (escaped.front() == ' ') escaped.replace(0, 1, kSpaceReference);
    if (escaped.back() == ' ') escaped.replace(escaped.size() - 1, 1, kSpaceReference);
  }
  return escaped;
}

std::string EscapeText(const std::string& text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (char c : text) {
    if (c == '&') {
      escaped += "&amp;";
    } else if (c == '<') {
      escaped += "&lt;";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

void AppendAttribute(std::string& out, const std::string& name,
                     const std::string& value) {
  out += name;
  out += "=\"";
  out += EscapeAttributeValue(value);
  out += '"';
}

void AppendTabs(std::string& out, int count) {
  if (count > 0) out.append(static_cast<std::size_t>(count), '\t');
}

void PutBytes(std::ostream& os, const std::string& bytes) {
  for (char c : bytes) os.put(c);
}

}  // namespace detail
}  // namespace KXXML_NAMESPACE
