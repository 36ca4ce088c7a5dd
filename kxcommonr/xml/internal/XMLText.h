// kxcommonr/xml/internal/XMLText.h
//
// The character-level pieces shared by every XML writer of the library: the
// escaping of attribute values and of text, the one form of an attribute
// (name="escaped value"), tab indentation and unconverted output.
//
// Internal: not installed, not exported. Thread-safe: no state.
#ifndef KXCOMMONR_XML_INTERNAL_XMLTEXT_H
#define KXCOMMONR_XML_INTERNAL_XMLTEXT_H

#include <iosfwd>
#include <string>

#include "kxcommonr/config.h"

namespace KXXML_NAMESPACE {
namespace detail {

// Appends the attribute-value escape of `value` to `out`: "&" -> "&amp;",
// "<" -> "&lt;", ">" -> "&gt;", '"' -> "&quot;", tab -> "&#9;", line feed ->
// "&#10;", carriage return -> "&#13;"; each pair of spaces, taken left to
// right, -> " &#32;"; and then a space in the first and in the last position
// of the escaped value -> "&#32;". Leading, trailing and repeated blanks thus
// survive a reader's attribute normalisation.
void AppendEscapedAttributeValue(std::string& out, const std::string& value);

// The same escape as a new string.
std::string EscapeAttributeValue(const std::string& value);

// Appends the text-node escape of `text`: "&" -> "&amp;" and "<" -> "&lt;",
// nothing else.
void AppendEscapedText(std::string& out, const std::string& text);

// Appends name="escaped value" to `out`.
void AppendAttribute(std::string& out, const std::string& name,
                     const std::string& value);

// Appends `count` tab characters (none when count <= 0).
void AppendTabs(std::string& out, int count);

// Writes the bytes of `bytes` unconverted.
void PutBytes(std::ostream& os, const std::string& bytes);

}  // namespace detail
}  // namespace KXXML_NAMESPACE

#endif  // KXCOMMONR_XML_INTERNAL_XMLTEXT_H
