// kxcommonr/xml/XMLReader.h
//
// The streaming reader of the object stream written by XMLObj (XMLObj.h).
// It is not a general XML parser: each call reads one physical line from the
// file (ParseStartXML reads the three prologue lines), splits it into tokens
// and checks them against the expected element and attribute names. The
// caller drives the order, as the object wrote itself:
//
//   if (!ParseStartObj(in, "KXURandom") || !ParseValue(in, seed) ||
//       !ParseValue(in, usePortable) || !ParseEndObj(in)) { /* give up */ }
//
// Lines hold at most 255 characters; a longer line fails and leaves the
// stream in its fail state. Lines may end in LF or CR LF. Entities are not
// decoded: text the writer escaped ("&amp;", "&#32;", ...) is delivered as
// written, so only values that need no escaping read back unchanged.
//
// Every function returns true when the line had the expected shape and false
// otherwise, with no message. The value argument is written only on success
// (a Double line whose value is no number returns true and leaves it as it
// was). The stream stays positioned after the last line read, also after a
// failure; callers abandon the object on the first false.
//
// Thread-compatible: no hidden state (the tokenizer is the reader's own, not
// strtok), so different streams may be read from different threads.
#ifndef KXCOMMONR_XML_XMLREADER_H
#define KXCOMMONR_XML_XMLREADER_H

#include <fstream>
#include <string>

#include "kxcommonr/config.h"

namespace KXXML_NAMESPACE {

// Reads three lines: the first must start with "<?xml", the second with
// "<!DOCTYPE", the third with the root element "<KXXMLRoot"; the rest of
// each line is ignored. Stops at the first line that fails.
KXCOMMONR_API bool ParseStartXML(std::ifstream& is);

// Reads one line (and one more when the first is empty or a lone carriage
// return: one blank line before an object is tolerated, two are not) that
// must be <Obj name="NAME"> with NAME equal to `name`, case-sensitive. The
// name runs to the next double quote, so it may hold blanks, "<" and "=".
KXCOMMONR_API bool ParseStartObj(std::ifstream& is, const std::string& name);

// Reads one line that must start with </Obj>.
KXCOMMONR_API bool ParseEndObj(std::ifstream& is);

// Reads one line <Int value="V"/>; V as atoi reads it (no digits give 0;
// values beyond int are clamped to its range).
KXCOMMONR_API bool ParseValue(std::ifstream& is, int& value);

// Reads one line <Int value="V"/>; V as atof reads it, truncated. False when
// the number lies outside 0..4294967295.
KXCOMMONR_API bool ParseValue(std::ifstream& is, unsigned int& value);

// Reads one line <Long value="V"/>; V as atol reads it (clamped to long).
// The writer's 15 significant digits mean longs beyond 15 digits come back
// as the leading digits of their exponent form: keep longs below 10^15.
KXCOMMONR_API bool ParseValue(std::ifstream& is, long& value);

// Reads one line <Double value="V"/>; "Missing" gives the system-missing
// value, any other V is read in the classic locale ("." as separator, two- or
// three-digit exponents). V that is no number, or beyond the double range,
// leaves `value` unchanged and still returns true.
KXCOMMONR_API bool ParseValue(std::ifstream& is, double& value);

// Reads one line <String value="TEXT"/>; TEXT runs to the next double quote
// or line end, inner blanks kept, entities not decoded. value="" gives the
// empty string.
KXCOMMONR_API bool ParseValue(std::ifstream& is, std::string& value);

// Reads one line <Int value="V"/>; 0 gives false, 1 gives true, any other
// number makes the call fail.
KXCOMMONR_API bool ParseValue(std::ifstream& is, bool& value);

}  // namespace KXXML_NAMESPACE

#endif  // KXCOMMONR_XML_XMLREADER_H
