// kxcommonr/xml/internal/XMLText.h
//
// The character-level pieces shared by every XML writer of the library: the
// escaping of attribute values and of text, the one form of an attribute
// (name="escaped value"), tab indentation and byte-by-byte output.
//
// Internal: not installed, not exported. Thread-safe: no state.
#ifndef KXCOMMONR_XML_INTERNAL_XMLTEXT_H
#define KXCOMMONR_XML_INTERNAL_XMLTEXT_H

#include <iosfwd>
#include <string>

#include "kxcommonr/config.h"

namespace KXXML_NAMESPACE {
namespace detail {

// The attribute-value escape: "&" -> "&amp;", "<" -> "&lt;", ">" -> "&gt;",
// '"' -> "&quot;", tab -> "&#9;", line feed -> "&#10;", carriage return ->
// "&#13;"; each pair of spaces, taken left to right, -> " &#32;"; and then a
// space in the first and in the last position -> "&#32;". Leading, trailing
// and repeated blanks thus survive a reader's attribute normalisation.
std::string EscapeAttributeValue(const std::string& value);

// The text-node escape: "&" -> "&amp;" and "<" -> "&lt;", nothing else.
std::string EscapeText(const std::string& text);

// Appends name="escaped value" to `out`.
void AppendAttribute(std::string& out, const std::string& name,
                     const std::string& value);

// Appends `count` tab characters (none when count <= 0).
void AppendTabs(std::string& out, int count);

// Writes the bytes of `bytes` with put, one by one, unconverted.
void PutBytes(std::ostream& os, const std::string& bytes);

}  // namespace detail
}  // namespace KXXML_NAMESPACE

#endif  // KXCOMMONR_XML_INTERNAL_XMLTEXT_H
