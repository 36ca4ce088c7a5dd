// kxcommonr/xml/XMLWriter.h
//
// The free functions of the XML writer: whole documents from the object model
// (WriteTree, WriteTreeUTF8), raw and UTF-8 output of strings, the root
// element of the object stream (StartRoot / EndRoot), and the one number
// formatter used for every number the library writes as XML text.
//
// Numbers are written with at most 15 significant digits ("%.15g" rules) and
// always with "." as the decimal separator, whatever the user's locale, so
// files do not depend on where they were written. Exponents have the C
// library's digit count (two on Linux, three with older Windows runtimes);
// the readers accept both.
//
// UTF-8 output takes the bytes to be in the system code page: the ANSI code
// page on Windows, the character set of the current C locale (LC_CTYPE)
// elsewhere; bytes the code page does not define are written as U+FFFD.
//
// Thread rule: the functions keep no state. The sprintf branch of Format,
// GetDecimalCharacter and the UTF-8 conversion read the process locale, so
// they must not run while another thread changes it.
#ifndef KXCOMMONR_XML_XMLWRITER_H
#define KXCOMMONR_XML_XMLWRITER_H

#include <iosfwd>
#include <string>

#include "kxcommonr/config.h"

namespace KXXML_NAMESPACE {

class XMLDocType;
class XMLElement;

// Names fixed by the object-stream format.
inline constexpr const char kXMLRootName[] = "KXXMLRoot";
inline constexpr const char kXMLSystemId[] = "savexml.dtd";
inline constexpr const char kXMLObjectElement[] = "Obj";
inline constexpr const char kXMLIntElement[] = "Int";
inline constexpr const char kXMLLongElement[] = "Long";
inline constexpr const char kXMLDoubleElement[] = "Double";
inline constexpr const char kXMLStringElement[] = "String";
inline constexpr const char kXMLNameAttribute[] = "name";
inline constexpr const char kXMLValueAttribute[] = "value";
inline constexpr const char kXMLCopyrightAttribute[] = "copyright";
// The text that stands for the system-missing value in a Double line.
inline constexpr const char kXMLMissingWord[] = "Missing";

// Writes a document: the prologue (`docType`'s text, or when docType is null
// the line <?xml version="1.0" encoding="UTF-8" ?> and a line feed) and then
// `root` with its subtree, laid out with new lines and tabs when `format` is
// true and on one line otherwise. Bytes are written as they are. A formatted
// document has an empty line between prologue and root (intended).
// Returns 0; returns -1 and writes nothing when root is null.
KXCOMMONR_API int WriteTree(std::ostream& os, const XMLDocType* docType,
                            const XMLElement* root, bool format);

// WriteTree with every piece converted to UTF-8 (see WriteUTF).
// Returns 0; returns -1 and writes nothing when root is null.
KXCOMMONR_API int WriteTreeUTF8(std::ostream& os, const XMLDocType* docType,
                                const XMLElement* root, bool format);

// Writes the bytes of `text` unchanged. Returns 0 (the stream is not checked).
KXCOMMONR_API int Write(std::ostream& os, const std::string& text);

// Writes `text`, taken to be in the system code page, as UTF-8.
// Returns 0 (the stream is not checked).
KXCOMMONR_API int WriteUTF(std::ostream& os, const std::string& text);

// StartRoot(os, text). Returns 0.
KXCOMMONR_API int WriteHeader(std::ostream& os, std::string text);

// Writes <KXXMLRoot copyright="TEXT"> with TEXT escaped as every attribute
// value, and no line feed. Returns 0.
KXCOMMONR_API int StartRoot(std::ostream& os, std::string text);

// Writes nothing; kept for the symmetry of the object-stream calls. Returns 0.
KXCOMMONR_API int EndHeader(std::ostream& os);

// Writes a line feed and </KXXMLRoot>. Returns 0.
KXCOMMONR_API int EndRoot(std::ostream& os);

// The text of `value`. With useSprintf false (the default, and the form used
// for every number in an attribute): 15 significant digits in the classic
// "C" locale, as ReplaceSep. With useSprintf true: printf formatting with
// `format`, or "%.15g" when format is null, and the current locale's decimal
// point replaced by ".". A format must hold exactly one conversion among
// f F e E g G a A (flags, width and precision allowed, no '*' and no "'"
// grouping); any other format text is ignored and "%.15g" is used instead.
// Infinities and NaN are written as the C library prints them.
KXCOMMONR_API std::string Format(double value, bool useSprintf = false,
                                 const char* format = nullptr);

// Format(static_cast<double>(value), true): integers beyond 15 digits are
// rounded to 15 significant digits.
KXCOMMONR_API std::string Format(long value);

// The stream branch of Format: `value` with precision 15 in the classic
// locale, so the decimal separator is "." whatever the user's locale. The
// format text is not consulted; the layout is always that of "%.15g".
KXCOMMONR_API std::string ReplaceSep(double value, char* format);

// "%.15g".
KXCOMMONR_API std::string GetDefaultNumericFormat();

// ";".
KXCOMMONR_API std::string GetListSeparator();

// The decimal point of the C runtime's current locale (localeconv), for
// example "." in the "C" locale.
KXCOMMONR_API std::string GetDecimalCharacter();

}  // namespace KXXML_NAMESPACE

#endif  // KXCOMMONR_XML_XMLWRITER_H
